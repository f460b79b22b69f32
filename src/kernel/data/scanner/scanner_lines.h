// SPDX-License-Identifier: Apache-2.0
//
// The lines of a file, read in blocks and served from where they were read: nothing is copied but the head of
// a line that a block cuts in two. The buffer is large, and not cleared by the constructor; only lines longer than
// usual, where they are asked for, need one that grows with them.
#pragma once

#include "kernel/data/scanner/scanner_text.h"
#include "os/files.h"
#include "os/tinylimits.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace tarn {

// Lines are counted as far as their number can be told.
constexpr std::int32_t lineNumberAfter(std::int32_t number) {
    return number < INT32_MAX ? number + 1 : number;
}

class LineReader {
public:
    LineReader() { close(); }
    ~LineReader() { close(); }
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;
    // ReadFailed for what is no regular file. `longest`: bytes of a line with its end.
    os::FileError open(const std::string& path, std::int32_t longest = MaxScannerLine);
    void close();

    // Goes to the next line. Its line end is one byte 10 in place of LF or CR LF, also behind a last line
    // without one. The end of the file, and a failure to read, is a "line" of the byte 26 alone.
    void next();

    // The line with its end; empty before the first.
    [[nodiscard]] const unsigned char* begin() const { return reinterpret_cast<const unsigned char*>(line_); }
    [[nodiscard]] const unsigned char* end() const { return begin() + length_; }
    [[nodiscard]] std::int32_t number() const { return number_; }  // stays at the end of the file
    [[nodiscard]] std::int64_t bytesRead() const { return offset_; }
    [[nodiscard]] bool cut() const { return cut_; }  // the line was too long
    [[nodiscard]] std::int32_t longest() const { return static_cast<std::int32_t>(maxLine_); }
    [[nodiscard]] os::FileError error() const {
        return error_;
    }  // of the opening or of a read; kept by `close`

private:
    static constexpr std::size_t readSize = limits::ScannerReadBytes;
    static constexpr std::size_t usualLine = MaxScannerLine,
                                 usualRoom = usualLine + 1 + readSize + 1 + ScannerSlack;

    bool makeRoom(std::size_t bytes);
    bool fill();
    bool readBehind(std::size_t keep);
    void take(std::size_t length);
    void setLine(std::size_t length);
    void takeLong();

    os::Handle handle_ = -1;
    std::int64_t offset_ = 0;  // of what comes next in the file
    bool ended_ = true;
    os::FileError error_ = os::FileError::None;
    std::size_t next_ = 0, filled_ = 0;  // what was read and not served yet stands between them
    const char* line_ = nullptr;
    std::int32_t length_ = 0, number_ = 0;
    bool cut_ = false;
    std::size_t maxLine_ = usualLine, room_ = usualRoom;
    char* buffer_ = usual_;
    std::unique_ptr<char[]> large_;
    char usual_[usualRoom];
};

}  // namespace tarn
