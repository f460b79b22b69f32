// SPDX-License-Identifier: Apache-2.0
//
// What the tests of the files of lists and tables share beside a disk: an opening whose outcome is a code.
#pragma once

#include "kernel/tables/tables.h"
#include "unit/kernel/filelists_fixture.h"

#include <string>

namespace tarn {

class FileValues : public FileLists {
protected:
    static inline const ValueModel number = model::Number(KindInteger, 0);

    // The code of an opening; the value is closed again.
    static std::int32_t openError(ListValue& l, const std::string& name) {
        FileOpen(l.get(), KindList, name);
        const std::int32_t error = takeError();
        EXPECT_EQ(FileExists(l.get(), KindList), error == 0);
        FileClose(l.get(), KindList);
        takeError();
        return error;
    }
};

}  // namespace tarn
