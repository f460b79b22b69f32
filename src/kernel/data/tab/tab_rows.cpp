// SPDX-License-Identifier: Apache-2.0
//
// A block is filled up whenever it may hold less than one whole line of the longest kind, so that every row
// is found in one piece and no byte is looked at for a second block. The quotes of a block are sought only
// once: a file without any costs one memchr a row.
#include "kernel/data/tab/tab_rows.h"

#include "kernel/data/formats.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/progress.h"
#include "kernel/run/runtime.h"
#include "os/text/ascii.h"
#include "os/tinylimits.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace tarn {

namespace {

constexpr std::ptrdiff_t longestRow = MaxTabLine + 2;  // with its line end
constexpr std::ptrdiff_t blockBytes =
    limits::Tiny ? longestRow + limits::TabBlockBytes : limits::TabBlockBytes;
constexpr std::int32_t framesBelow = 27, mostHeaders = 2;
constexpr std::int64_t mostHeld = 256 * 1024 * 1024;

const char* findByte(const char* from, const char* to, int byte) {
    const void* found = from == to ? nullptr : std::memchr(from, byte, static_cast<std::size_t>(to - from));
    return found != nullptr ? static_cast<const char*>(found) : to;
}

}  // namespace

// ---- the file ----

TabFile::~TabFile() {
    try {
        if (handle_ >= 0) os::files().close(handle_);
    } catch (...) {  // the end of the process, in a test
    }
}

std::int32_t TabFile::open(const std::string& filename) {
    const std::string path = os::native(filename);
    os::FileInfo info;
    os::FileError error = os::files().info(path, info);
    if (error == os::FileError::None && info.folder) error = os::FileError::IsFolder;
    if (error == os::FileError::None && info.special) return ERR_FILE_READ;
    if (error == os::FileError::None) error = os::files().open(path, os::OpenMode::Read, 0, handle_);
    if (error != os::FileError::None) handle_ = -1;
    size_ = info.size;
    return error == os::FileError::None && size_ == 0 ? hold() : FileReadCode(error);
}

// Files that the system makes up when they are read tell that they are empty.
std::int32_t TabFile::hold() {
    constexpr std::size_t step = 64 * 1024;
    for (std::size_t got = step; got > 0;) {
        held_.resize(static_cast<std::size_t>(size_) + step);
        const os::FileError error = os::files().read(handle_, size_, held_.data() + size_, step, got);
        if (error != os::FileError::None) return FileReadCode(error);
        size_ += static_cast<std::int64_t>(got);
        if (size_ > mostHeld) return ERR_FILE_READ;
    }
    held_.resize(static_cast<std::size_t>(size_));
    return 0;
}

std::int32_t TabFile::read(std::int64_t offset, char* into, std::size_t count) {
    if (!held_.empty()) {
        std::memcpy(into, held_.data() + offset, count);
        return 0;
    }
    return ReadWhole(handle_, offset, into, count);
}

// ---- blocks ----

bool TabReader::tell(std::int64_t done) {
    if (done - told_ < ProgressStep) return true;
    told_ = done;
    stopped_ = !Progress(done, file_.size());
    return !stopped_;
}

// Moves what is unread to the front and reads on behind it.
bool TabReader::fill() {
    if (have_ - at_ >= longestRow || base_ == limit_) return true;
    if (!tell(base_)) return false;
    std::memmove(block_.data(), block_.data() + at_, static_cast<std::size_t>(have_ - at_));
    have_ -= at_;
    at_ = 0;
    quote_ = -1;
    const auto room = static_cast<std::ptrdiff_t>(block_.size()) - have_;
    const auto count = static_cast<std::ptrdiff_t>(std::min<std::int64_t>(room, limit_ - base_));
    code_ = file_.read(base_, block_.data() + have_, static_cast<std::size_t>(count));
    if (code_ != 0) return false;
    have_ += count;
    base_ += count;
    return true;
}

std::int32_t TabReader::skipMark() {
    char start[ByteOrderMark.size()];
    if (file_.size() < static_cast<std::int64_t>(sizeof start)) return 0;
    const std::int32_t code = file_.read(0, start, sizeof start);
    if (code == 0 && std::string_view(start, sizeof start) == ByteOrderMark) base_ = sizeof start;
    return code;
}

// Counts lines from the end of the file: the last one may lack its line feed.
std::int32_t TabReader::findFooters(std::int32_t count) {
    limit_ = file_.size();
    if (count <= 0) return 0;
    bool last = true;  // the byte at the end, which ends the last line and separates nothing
    for (std::int64_t begin = limit_, end = limit_; begin > 0; end = begin) {
        begin = std::max<std::int64_t>(0, end - static_cast<std::int64_t>(block_.size()));
        const std::int32_t code = file_.read(begin, block_.data(), static_cast<std::size_t>(end - begin));
        if (code != 0) return code;
        for (std::int64_t i = end - begin; i-- > 0; last = false) {
            if (block_[static_cast<std::size_t>(i)] != '\n' || last || --count > 0) continue;
            limit_ = begin + i + 1;
            return 0;
        }
    }
    limit_ = 0;
    return 0;
}

// The first line tells whether the separators stand around lines as a frame.
void TabReader::readHeaders(std::int32_t count) {
    std::string_view line;
    for (std::int32_t n = 0; n < count && takeLine(true, line); ++n) {
        const auto frame = static_cast<char>(separator_);
        if (n == 0)
            framed_ = separator_ >= 1 && separator_ < framesBelow && line.size() >= 2 && line[0] == frame &&
                      line.back() == frame;
        if (n < mostHeaders) headers_.emplace_back(withoutFrame(line));
    }
    skipLongLine();
}

std::string_view TabReader::withoutFrame(std::string_view row) const {
    if (!framed_) return row;
    const auto frame = static_cast<char>(separator_);
    if (row.starts_with(frame)) row.remove_prefix(1);
    if (row.ends_with(frame)) row.remove_suffix(1);
    return row;
}

std::int32_t TabReader::open(const std::string& filename, const DataOptions& options) {
    separator_ = IsTabSeparator(options.separatorchar) ? options.separatorchar : NoTabSeparator;
    code_ = file_.open(filename);
    if (code_ != 0) return code_;
    try {
        const auto most = std::clamp<std::int64_t>(file_.size(), 1, blockBytes);
        block_.resize(static_cast<std::size_t>(most));
        code_ = options.skipMark ? skipMark() : 0;
        if (code_ == 0) code_ = findFooters(options.numfooterrows);
        limit_ = std::max(limit_, base_);
        if (code_ == 0) readHeaders(options.numheaderrows);
    } catch (const std::bad_alloc&) {
        code_ = ERR_OUT_OF_MEMORY;
    }
    return code_;
}

// ---- rows ----

const char* EndOfQuoted(const char* from, const char* to) {
    for (const char* at = from + 1;;) {
        at = findByte(at, to, '"');
        if (at == to) return nullptr;
        if (at + 1 == to || at[1] != '"') return at + 1;
        at += 2;
    }
}

// The line feed behind the row, or `to`.
const char* TabReader::endOfRow(const char* from, const char* to, bool quotes) {
    const char* const lineEnd = findByte(from, to, '\n');
    if (!quotes || separator_ == NoTabSeparator) return lineEnd;
    const char* const block = block_.data();
    if (quote_ < from - block) quote_ = findByte(from, block + have_, '"') - block;
    return block + quote_ >= lineEnd ? lineEnd : endOfQuotedRow(from, to);
}

const char* TabReader::endOfQuotedRow(const char* from, const char* to) const {
    if (framed_ && from != to && *from == static_cast<char>(separator_)) ++from;
    const char* lineEnd = findByte(from, to, '\n');
    for (const char* cell = from;;) {
        const char* at = cell != to && *cell == '"' ? EndOfQuoted(cell, to) : cell;
        if (at == nullptr) at = cell;
        if (at > lineEnd) lineEnd = findByte(at, to, '\n');
        at = findByte(at, lineEnd, separator_);
        if (at == lineEnd) return lineEnd;
        cell = at + 1;
    }
}

// Goes to the end of a line that was longer than a row may be: the block may hold only a part of it.
void TabReader::skipLongLine() {
    while (inLongLine_ && fill() && at_ != have_) {
        const char* const from = block_.data() + at_;
        const char* const to = block_.data() + have_;
        const char* const end = findByte(from, to, '\n');
        inLongLine_ = end == to;
        at_ = end - block_.data() + (inLongLine_ ? 0 : 1);
    }
}

bool TabReader::takeLine(bool quotes, std::string_view& row) {
    cut_ = false;
    skipLongLine();
    if (code_ != 0 || stopped_ || !fill() || at_ == have_) return false;
    const char* const from = block_.data() + at_;
    const char* const to = from + std::min<std::ptrdiff_t>(have_ - at_, longestRow);
    const char* end = endOfRow(from, to, quotes);
    inLongLine_ = end == to && to - from == longestRow;
    at_ = end - block_.data() + (end != to ? 1 : 0);
    while (end != from && end[-1] == '\r') --end;
    row = {from, static_cast<std::size_t>(end - from)};
    if (row.size() > std::size_t{MaxTabLine}) {
        cut_ = true;
        row = row.substr(0, std::size_t{MaxTabLine});
    }
    return true;
}

bool TabReader::next(std::string_view& row) {
    if (!takeLine(true, row)) return false;
    row = withoutFrame(row);
    return true;
}

// ---- cells ----

std::string_view UnquotedText(std::string_view quoted, std::string& scratch) {
    quoted = quoted.substr(1, quoted.size() - 2);
    std::size_t quote = quoted.find('"');
    if (quote == std::string_view::npos) return quoted;
    scratch.clear();
    for (; quote != std::string_view::npos; quote = quoted.find('"')) {
        scratch.append(quoted.substr(0, quote + 1));
        quoted.remove_prefix(quote + 2);
    }
    return scratch.append(quoted);
}

void TabCells::skipBlanks() {
    while (at_ != end_ && ascii::isSpace(*at_) && static_cast<unsigned char>(*at_) != separator_) ++at_;
}

std::string_view TabCells::nextPlain() {
    quoted_ = false;
    const char* const from = at_;
    const char* const end = separator_ == NoTabSeparator ? end_ : findByte(from, end_, separator_);
    separated_ = end != end_;
    at_ = separated_ ? end + 1 : end_;
    return {from, static_cast<std::size_t>(end - from)};
}

std::string_view TabCells::next() {
    if (at_ == end_ || *at_ != '"' || separator_ == NoTabSeparator) return nextPlain();
    const char* const from = at_;
    const char* const end = EndOfQuoted(from, end_);
    if (end == nullptr) return nextPlain();
    at_ = end;
    nextPlain();
    quoted_ = true;
    return {from, static_cast<std::size_t>(end - from)};
}

}  // namespace tarn
