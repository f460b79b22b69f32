// SPDX-License-Identifier: Apache-2.0
//
// The file below an index: read with what stands around when the ways lead to near places, as they do at the
// end of a way down among keys that came in order, and in an index that was written at once; written with a
// note of what stood there, so that a change can be taken back. Only the modules of index files include this.
// Results are error codes, 0 for success: 653 no such file, 651 and 652 it cannot be read or written, 654 the
// disk is full, 657 a name that is not allowed, 802 memory is short.
//
// One file may be left open from one operation to the next: it is taken over when it is opened again, given
// back when that is closed, and closed when another is opened. Its name may have come to stand for another
// file, as the current folder or the name of a file can change; then the one that is there now is opened. A
// file that is held (index_filehold.h) is used instead. Records of either kind of file may be in memory, too.
#pragma once

#include "kernel/index/index_filehold.h"
#include "os/files.h"
#include "os/tinylimits.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// Closes the file that was left open, if there is one, and those that are held; with a path only if it is that
// one.
void LetGoOfIndex();
void LetGoOfIndex(std::string_view path);

class IndexDisk {
public:
    static constexpr std::int32_t aroundBytes = limits::AroundNodeBytes, mostPeek = limits::MostPeekBytes,
                                  frontBytes = limits::FrontOfIndexBytes;

    IndexDisk() {}  // leaves the buffer as it is
    ~IndexDisk();
    IndexDisk(const IndexDisk&) = delete;
    IndexDisk& operator=(const IndexDisk&) = delete;

    std::int32_t open(const std::string& path, os::OpenMode mode);
    // Opens the file again that was open; 656 when its size is another one now.
    std::int32_t reopen();
    [[nodiscard]] bool isOpen() const { return handle_ >= 0; }
    std::int32_t close();
    void leaveOpen();  // open for the next operation, too

    [[nodiscard]] std::int64_t size() const { return size_; }
    // Reads `count` bytes; all of them must stand in the file.
    std::int32_t read(std::int64_t offset, char* into, std::int32_t count);
    // The same for mostPeek bytes at most: where they stand until the next reading or writing. Null on
    // failure.
    const char* peek(std::int64_t offset, std::int32_t count, std::int32_t& code);
    // Reads the header and the first records, which are the highest of a tree that grew, and keeps them for this
    // operation.
    std::int32_t readFront();
    // The same without reading; null where that were needed.
    const char* peekKnown(std::int64_t offset, std::int32_t count);
    // Of a file that was just opened: so many bytes of each record are remembered, and what was is recalled.
    void useRecords(std::int32_t recordSize, std::int32_t nearBytes);

    // ---- changes ----

    void begin();  // what follows can be taken back together
    // `before` is what stands there now, as far as that is in the file.
    std::int32_t write(std::int64_t offset, std::string_view bytes, std::string_view before);
    std::int32_t write(std::int64_t offset, std::string_view bytes);  // reads what stands there
    std::int32_t cut(std::int64_t size);
    std::int32_t cutForGood(std::int64_t size);  // what is cut off is not noted
    // Writes back what stood there. Goes on after a failure and gives the first.
    std::int32_t takeBack();

private:
    struct Change {
        std::int64_t offset;
        std::size_t at, size;  // in before_
    };

    std::int32_t adopt(std::int64_t& size);
    bool giveBack() noexcept;
    void leaveRecords() noexcept;
    std::int32_t fill(std::int64_t offset, std::int32_t count);
    std::int32_t bytesAt(std::int64_t offset, std::int64_t count, std::string& bytes);
    void changing();
    std::int32_t note(std::int64_t offset, std::string_view before);

    os::Handle handle_ = -1;
    os::OpenMode mode_ = os::OpenMode::Read;
    bool staysOpen_ = false;
    HeldIndex* held_ = nullptr;
    RememberedRecords* records_ = nullptr;  // while they are of use
    bool changed_ = false;                  // since it was opened
    std::uint64_t device_ = 0, inode_ = 0;  // of one that stays open
    std::string path_;
    os::FileInfo info_;  // when it was opened, unless it is held
    std::int64_t size_ = 0, sizeBefore_ = 0;
    std::vector<Change> changes_;
    std::string before_;
    std::int64_t bufferAt_ = 0, peekedAt_ = 0;
    std::int32_t inBuffer_ = 0;
    bool ofUse_ = false;  // the buffer, since it was filled
    std::int32_t inFront_ = 0;
    char front_[frontBytes];
    char buffer_[mostPeek + 2 * aroundBytes];
};

}  // namespace tarn
