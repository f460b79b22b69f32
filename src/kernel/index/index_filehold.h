// SPDX-License-Identifier: Apache-2.0
//
// What is kept of index files from one operation to the next: a bounded number of records, and, of a file that is
// held, its handle. Only the modules of index files include this, and the one of held tables.
//
// While a HeldIndex lives, every IndexDisk of its path uses its handle. Nothing is held back: what an operation
// writes is in the file when it has ended. What another program writes is noticed at the next operation as far as
// the size and the times of the file tell it, and the records in memory are read again; a file that has lost its
// name, or was let go, is opened anew.
//
// Cost: one look at the file for an operation, and one more for one that changes it.
#pragma once

#include "kernel/index/index_filelayout.h"
#include "os/files.h"
#include "os/tinylimits.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

// The code of an opening that failed.
std::int32_t IndexOpenCode(os::FileError error, os::OpenMode mode);

// Records as they stand in a file, each up to so many bytes. Two have one place between them, where the one that was
// used again stays longer. There are few places at first, and more as records come.
class HeldRecords {
public:
    explicit HeldRecords(std::size_t mostBytes) : mostBytes_(mostBytes) {}
    // `kept` bytes of each record. What is there goes when one of these is not what it was.
    void shape(std::int32_t recordSize, std::int32_t kept);
    // These bytes, which begin a record or are the control record of the header; null when they are not there.
    // Valid until the next call.
    const char* find(std::int64_t offset, std::int32_t count);
    void put(std::int64_t offset, const char* bytes, std::int32_t count);
    void wrote(std::int64_t offset, std::string_view bytes);
    void forget();

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };
    using Bytes = std::unique_ptr<char, Free>;
    static constexpr std::size_t ways = 2, controlBytes = IndexControlWords * WordBytes;

    [[nodiscard]] std::int32_t numberAt(std::int64_t offset, std::int32_t count) const;
    // A slot is the tag of its record, which tells whether it is one of those that were not forgotten, and bytes.
    [[nodiscard]] std::size_t slotBytes() const {
        return sizeof(std::uint64_t) + static_cast<std::size_t>(kept_);
    }
    [[nodiscard]] std::uint64_t tagOf(std::int32_t number) const {
        return std::uint64_t{round_} << 32U | static_cast<std::uint32_t>(number);
    }
    [[nodiscard]] char* placeOf(std::int32_t number) const {
        return slots_.get() + (static_cast<std::uint32_t>(number) & (places_ - 1)) * ways * slotBytes();
    }
    bool hold(char* slot, std::uint64_t tag, const char* bytes) const;
    void resize(std::size_t places);

    std::size_t mostBytes_;
    std::int32_t recordSize_ = 0, kept_ = 0;
    std::size_t places_ = 0, added_ = 0;  // places: a power of two, or 0
    std::uint32_t round_ = 1;             // goes on when all are forgotten
    Bytes slots_;
    bool hasControl_ = false;
    char control_[controlBytes];
};

// The records that are remembered of a file that operations open one by one, and of the few that were used before.
// `info` tells how the open file is now: what has changed since its records were read has another size or time.
// Null for a file that was changed so shortly before that another change might have the same time. The records are
// of use until the file is written.
HeldRecords* RememberedRecords(const os::FileInfo& info);
// They are used no more, and may give way to those of another file. Nothing for other records, or null.
void LeaveRecords(const HeldRecords* records);

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
    HeldRecords& records() { return records_; }

private:
    bool isAsItWas();
    std::int32_t openFile(os::OpenMode mode);

    std::string path_;
    os::Handle handle_ = -1;
    os::OpenMode mode_ = os::OpenMode::Read;
    const os::FileSystem* system_ = nullptr;  // which has opened it
    bool inUse_ = false;
    os::FileInfo info_;  // when the last operation had ended
    HeldRecords records_{limits::HeldIndexBytes};
    HeldIndex* next_;
};

}  // namespace tarn
