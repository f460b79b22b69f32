// SPDX-License-Identifier: Apache-2.0
//
// Records of index files that are remembered from one operation to the next: a bounded number of each of a few
// files, as they stand there. Nothing is held back: what an operation writes is in the file when it has ended. Only
// the modules of index files include this.
//
// What another program writes in between must show. A disk gives files that are changed one soon after the other the
// same time, so times tell only of files that have not changed for a while; or of those that were stamped: their time of
// modification was set to one that no change gives, as it differs from the time of that setting. Any change then makes
// both alike, and another change of the one moves the other.
#pragma once

#include "kernel/index/index_filelayout.h"
#include "os/files.h"
#include "os/tinylimits.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace tarn {

// Records as they stand in a file, each up to so many bytes. Two have one place between them, where the one that was
// used again stays longer. There are few places at first, and more as records come.
class RememberedRecords {
public:
    explicit RememberedRecords(std::size_t mostBytes) : mostBytes_(mostBytes) {}
    // The first `nearBytes` bytes of each record. What is there goes when one of these is not what it was.
    void shape(std::int32_t recordSize, std::int32_t nearBytes);
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
        return sizeof(std::uint64_t) + static_cast<std::size_t>(nearBytes_);
    }
    [[nodiscard]] std::uint64_t tagOf(std::int32_t number) const {
        return std::uint64_t{round_} << 32U | static_cast<std::uint32_t>(number);
    }
    [[nodiscard]] char* placeOf(std::int32_t number) const {
        return slots_.get() + (static_cast<std::uint32_t>(number) & (places_ - 1)) * ways * slotBytes();
    }
    bool enter(char* slot, std::uint64_t tag, const char* bytes) const;
    void resize(std::size_t places);

    std::size_t mostBytes_;
    std::int32_t recordSize_ = 0, nearBytes_ = 0;
    std::size_t places_ = 0, added_ = 0;  // places: a power of two, or 0
    std::uint32_t round_ = 1;             // goes on when all are forgotten
    Bytes slots_;
    bool hasControl_ = false;
    char control_[controlBytes];
};

// Whether an open file is as it was, as far as its size and its times tell.
bool IsSameState(const os::FileInfo& a, const os::FileInfo& b);

// Whether a later change of the file would give it another time, as it has not changed for a while.
bool IsSettled(const os::FileInfo& info);

// Stamps a file that may be written; `info` tells how it is then. False where it takes no stamp, or another program
// came between: whether the file changed is not known then.
bool StampFile(os::Handle handle, os::FileInfo& info);

// The records that are remembered of a file that operations open one by one, and of the few that were used before.
// `info` tells how the open file is now: what has changed since its records were read has another size or time.
// Where that is not sure, as the file was changed so shortly before that another change might have the same time, it is
// null, or without a record for an operation that may write. Writings are told to the records.
RememberedRecords* RecallRecords(const os::FileInfo& info, bool mayWrite);
// For what was written: gives the file, whose records these are, a time of its own, so that they last. A file that
// takes none has records for this operation alone. Two calls of the system.
void StampRecords(RememberedRecords* records, os::Handle handle);
// The file is about to change: the records are of this operation alone until they are stamped.
void ChangeRecords(RememberedRecords* records);
// They are used no more by this operation, and may give way to those of another file. Nothing for other records, or
// null.
void LeaveRecords(RememberedRecords* records);

}  // namespace tarn
