// SPDX-License-Identifier: Apache-2.0
//
// What the tests of mending the files of tables share: tables that are closed, torn or left by a process that died.
#pragma once

#include "kernel/tables/tables_file_mend.h"
#include "unit/kernel/filetables_fixture.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn {

class MendedTables : public FileTables {
protected:
    using Numbers = std::vector<int>;
    using Names = std::vector<std::string>;

    RebuiltTable mend(const std::string& name = "/d/a.tab") {
        const RebuiltTable result = RebuildTableFile(*t(), name);
        EXPECT_EQ(takeError(), 0);
        EXPECT_FALSE(FileExists(t(), KindTable));
        return result;
    }
    void expectRows(const Numbers& expected, const std::string& name = "/d/a.tab") {
        ASSERT_EQ(open(name), 0);
        EXPECT_EQ(numbers(), expected);
        expectWhole();
        close();
    }
    void closedWith(int count, const KeyMaps& maps = {byNumber, byName}, std::int32_t maxlength = UNBOUNDED) {
        newDisk();
        make(maps, maxlength);
        fill(count);
        close();
    }
    void put(const std::string& name, const std::string& content) { files().put("/d/" + name, content); }
    // The process dies in an updating, when the row is noted and not yet written.
    void dieWithNote(const Cells& key, const Cells& cells, const Cells& old, std::int32_t rowBytes) {
        files().clearLog();
        ASSERT_EQ(update(1, key, cells), 0);
        const std::vector<std::string> log = files().log();
        const auto at = std::find(log.begin(), log.end(), "write " + std::to_string(rowBytes));
        ASSERT_NE(at, log.end());
        const RecordValue newKey = recordOf(key.size() == 1 && key[0].kind == KindArray ? cells : key);
        TableUpdate(recordOf(old).get(), 1, newKey.get(), t());
        ASSERT_EQ(takeError(), 0);
        files().dieAt(static_cast<int>(at - log.begin()) + 1);
        EXPECT_THROW(update(1, key, cells), os::ProcessDeath);
        abandon();
        files().revive();
        takeError();
    }
    // The bytes of row `number` of a plain file.
    std::string rowOf(int number) {
        return bytes("a.tab").substr(static_cast<std::size_t>((number - 1) * rowBytes), rowBytes);
    }
};

}  // namespace tarn
