// SPDX-License-Identifier: Apache-2.0
//
// Index files that a program holds open from one operation to the next (TableHold), with records that are remembered
// of them. Only the modules of index files include this, and the one of held tables.
//
// While a HeldIndex lives, every IndexDisk of its path uses its handle. Nothing is held back: what an operation
// writes is in the file when it has ended. What another program writes between two operations is noticed at the next
// one, and the remembered records are read again. They are, too, when such a writing need not show: the file was neither
// stamped nor unchanged for a while when it was last looked at. A file that has lost its name, or was let go, is opened
// anew.
//
// Cost: one look at the file for an operation, and a stamp for one that changes it.
#pragma once

#include "kernel/index/index_fileremember.h"
#include "os/files.h"
#include "os/tinylimits.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// The code of an opening that failed.
std::int32_t IndexOpenCode(os::FileError error, os::OpenMode mode);

class HeldIndex {
public:
    explicit HeldIndex(std::string path);
    ~HeldIndex();  // closes the file
    HeldIndex(const HeldIndex&) = delete;
    HeldIndex& operator=(const HeldIndex&) = delete;

    // The one of a path that is not in use; null: there is none.
    static HeldIndex* of(std::string_view path);
    // Closes the file, or all, until the next operation: another is to stand under its name.
    static void letGo();
    static void letGo(std::string_view path);

    // The open file and its size, for one operation. `mode` becomes that in which it is open. 0 or a code.
    std::int32_t take(os::OpenMode& mode, os::Handle& handle, std::int64_t& size);
    void giveBack(bool changed);
    std::int32_t close();
    RememberedRecords& records() { return records_; }

private:
    bool isAsItWas();
    void look(const os::FileInfo& info);
    std::int32_t openFile(os::OpenMode mode);

    std::string path_;
    os::Handle handle_ = -1;
    os::OpenMode mode_ = os::OpenMode::Read;
    const os::FileSystem* system_ = nullptr;  // which has opened it
    bool inUse_ = false;
    os::FileInfo info_;   // when it was last looked at or stamped
    bool lasts_ = false;  // any change since then would show
    RememberedRecords records_{limits::HeldIndexBytes};
    HeldIndex* next_;
};

}  // namespace tarn
