// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/scanner/scanner_lines.h"

#include "kernel/data/scanner/scanner_bytes.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace tarn {

namespace {

constexpr char noLine[1 + ScannerSlack] = {};
constexpr char endOfFile[1 + ScannerSlack] = {EndOfFileMark};

}  // namespace

os::FileError LineReader::open(const std::string& path, std::int32_t longest) {
    close();
    maxLine_ = static_cast<std::size_t>(longest);
    os::FileInfo info;
    const bool special = os::files().info(path, info) == os::FileError::None && info.special;
    error_ = special ? os::FileError::ReadFailed : os::files().open(path, os::OpenMode::Read, 0, handle_);
    ended_ = error_ != os::FileError::None;
    if (ended_) handle_ = -1;
    return error_;
}

void LineReader::close() {
    if (handle_ >= 0) os::files().close(handle_);
    handle_ = -1;
    offset_ = 0;
    ended_ = true;
    next_ = filled_ = 0;
    line_ = noLine;
    length_ = number_ = 0;
    cut_ = false;
    maxLine_ = usualLine;
    room_ = usualRoom;
    buffer_ = usual_;
    large_.reset();
}

// The buffer with what is in it. False, as where the file cannot be read, when there is no memory.
bool LineReader::makeRoom(std::size_t bytes) {
    if (bytes <= room_) return true;
    const std::size_t room = std::max(bytes, 2 * room_);
    std::unique_ptr<char[]> made(new (std::nothrow) char[room]);
    if (made == nullptr) {
        ended_ = true;
        error_ = os::FileError::ReadFailed;
        return false;
    }
    std::memcpy(made.get(), buffer_, filled_);
    large_ = std::move(made);
    buffer_ = large_.get();
    room_ = room;
    return true;
}

// Reads a block behind the first `keep` bytes of the buffer. False at the end.
bool LineReader::readBehind(std::size_t keep) {
    if (ended_ || !makeRoom(keep + readSize + 1 + ScannerSlack)) return false;
    std::size_t got = 0;
    error_ = os::files().read(handle_, offset_, buffer_ + keep, readSize, got);
    ended_ = error_ != os::FileError::None || got == 0;
    if (ended_) return false;
    offset_ += static_cast<std::int64_t>(got);
    filled_ = keep + got;
    return true;
}

// At most maxLine_ + 1 bytes may be waiting.
bool LineReader::fill() {
    const std::size_t waiting = filled_ - next_;
    std::memmove(buffer_, buffer_ + next_, waiting);
    next_ = 0;
    filled_ = waiting;
    return readBehind(waiting);
}

void LineReader::next() {
    cut_ = false;
    std::size_t searched = 0;
    for (;;) {
        const std::size_t waiting = filled_ - next_;
        const void* const end = std::memchr(buffer_ + next_ + searched, LineEnd, waiting - searched);
        if (end != nullptr) {
            const std::size_t length =
                static_cast<std::size_t>(static_cast<const char*>(end) - buffer_) - next_;
            take(length);
            next_ += length + 1;
            return;
        }
        searched = waiting;
        if (searched > maxLine_ + 1) return takeLong();
        if (!fill()) break;
    }
    if (searched == 0) {
        line_ = endOfFile;
        length_ = 1;
        return;
    }
    take(searched);
    next_ = filled_;
}

// Makes a line of the next bytes, which a line end follows, or the end of the file.
void LineReader::take(std::size_t length) {
    if (length > 0 && buffer_[next_ + length - 1] == '\r') --length;
    setLine(length);
}

void LineReader::setLine(std::size_t length) {
    cut_ = length >= maxLine_;
    if (cut_) length = maxLine_ - 1;
    buffer_[next_ + length] = LineEnd;
    line_ = buffer_ + next_;
    length_ = static_cast<std::int32_t>(length + 1);
    number_ = lineNumberAfter(number_);
}

// More is waiting than a line may hold, and its end was not read yet. What lies beyond is read over the same
// place again and again until the end is found. The room for that comes first: the line must not move.
void LineReader::takeLong() {
    (void)makeRoom(maxLine_ + readSize + 1 + ScannerSlack);  // without it nothing more is read
    std::memmove(buffer_, buffer_ + next_, maxLine_);
    next_ = 0;
    setLine(maxLine_);
    const void* end = nullptr;
    while (end == nullptr && readBehind(maxLine_))
        end = std::memchr(buffer_ + maxLine_, LineEnd, filled_ - maxLine_);
    if (end == nullptr) {
        next_ = filled_;
    } else {
        next_ = static_cast<std::size_t>(static_cast<const char*>(end) - buffer_) + 1;
    }
}

}  // namespace tarn
