// SPDX-License-Identifier: Apache-2.0
//
// What the tests of operations on tables in files share beside a table on a disk.
#pragma once

#include "kernel/index/index_file.h"
#include "unit/kernel/filetables_fixture.h"

#include <algorithm>
#include <string>
#include <vector>

namespace tarn {

class TablesInFiles : public FileTables {
protected:
    using Numbers = std::vector<int>;
    using Names = std::vector<std::string>;

    std::string keyText(const char* name) {
        return std::string(bytes(name).substr(IndexTextAt, MaxIndexText + 1).c_str());
    }
    static bool same(const Rows& a, const Rows& b) {
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), sameCells);
    }
};

}  // namespace tarn
