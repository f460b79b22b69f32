// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables/tables_file_note.h"

#include "kernel/lists/rowfile_access.h"
#include "kernel/text/numbers.h"
#include "os/text/bigendian.h"

#include <algorithm>
#include <string_view>

namespace tarn {

namespace {

constexpr std::string_view mark = "\xA7row\xA7\x1A\r\n";
constexpr std::size_t positionAt = 16, bytesAt = 20, headBytes = 24, checkBytes = 4;
constexpr char endByte = '\xA7';

constexpr std::size_t noteBytesFor(std::size_t rowBytes) {
    const std::size_t bytes = headBytes + rowBytes + checkBytes + 1;
    return bytes % rowBytes == 0 ? bytes + 1 : bytes;
}

std::uint32_t numberAt(std::string_view bytes, std::size_t at) {
    return bigendian::at<std::uint32_t>(bytes.data() + at);
}

// What a note at that place begins with.
std::string beginning(std::int64_t offset) {
    std::string bytes(mark);
    bigendian::append(bytes, offset);
    return bytes;
}

std::string noteOf(std::int64_t offset, std::int32_t position, std::string_view row) {
    std::string note = beginning(offset);
    bigendian::append(note, position);
    bigendian::append(note, static_cast<std::uint32_t>(row.size()));
    note += row;
    bigendian::append(note, Crc32(note.data(), note.size()));
    note.resize(noteBytesFor(row.size()), endByte);
    return note;
}

void readNote(std::string_view bytes, std::size_t rowBytes, RowNote& note) {
    const std::size_t checked = headBytes + rowBytes;
    if (bytes.size() != noteBytesFor(rowBytes) || numberAt(bytes, bytesAt) != rowBytes) return;
    if (Crc32(bytes.data(), checked) != numberAt(bytes, checked)) return;
    note.position = static_cast<std::int32_t>(numberAt(bytes, positionAt));
    note.row = bytes.substr(headBytes, rowBytes);
}

// The last bytes of a file, and where they begin.
bool readEnd(const std::string& path, std::int64_t most, std::int64_t& start, std::string& bytes) {
    os::Handle handle = -1;
    bytes.resize(static_cast<std::size_t>(most));
    os::FileError error = os::files().open(path, os::OpenMode::Read, 0, handle);
    if (error != os::FileError::None) return RefuseRead(error);
    std::int64_t size = 0;
    error = os::files().size(handle, size);
    start = std::max<std::int64_t>(size - most, 0);
    bytes.resize(static_cast<std::size_t>(size - start));
    std::size_t done = 0, got = 1;
    while (error == os::FileError::None && done < bytes.size() && got != 0) {
        error = os::files().read(handle, start + static_cast<std::int64_t>(done), bytes.data() + done,
                                 bytes.size() - done, got);
        done += got;
    }
    os::files().close(handle);
    bytes.resize(done);
    return error == os::FileError::None || RefuseRead(error);
}

}  // namespace

bool ReplaceRow(ListDescriptor& l, std::int32_t position, const void* element) {
    return WithMemory([&] {
        RowChange change(l);
        std::string row;
        if (!change.begin(RowChange::Know::Rows) || !change.copyBefore(position) ||
            !change.file().pack(element, row))
            return false;
        if (row.size() == 1) return change.end(change.file().write(position, row), l.count);
        RowFile& file = change.file();
        os::FileError error = os::FileError::None;
        const std::int64_t size = change.size();
        const std::int64_t behind = (size - file.offsetOf(1)) / file.rowBytes() + 1;
        const auto step = [&](auto work) {
            if (error == os::FileError::None) error = work();
        };
        step([&] { return file.write(behind, noteOf(size, position, row)); });
        step([&] { return file.write(position, row); });
        step([&] { return file.cutTo(size); });
        return change.end(error, l.count);
    });
}

// A note begins where a row would. Where the file is torn, what is left of one is told by its first bytes;
// where its size is that of whole rows, those are rows unless they hold all that tells a note at this place.
bool FindRowNote(const std::string& path, std::int64_t headerBytes, std::int32_t rowBytes, RowNote& note) {
    constexpr std::size_t leastBytes = 4;
    const auto length = static_cast<std::size_t>(rowBytes);
    std::int64_t start = 0;
    std::string bytes;
    note = {};
    if (rowBytes == 1) return true;
    if (!readEnd(path, static_cast<std::int64_t>(noteBytesFor(length)), start, bytes)) return false;
    const std::int64_t end = start + static_cast<std::int64_t>(bytes.size());
    std::int64_t at =
        headerBytes + std::max<std::int64_t>(start - headerBytes + rowBytes - 1, 0) / rowBytes * rowBytes;
    const bool whole = (end - headerBytes) % rowBytes == 0;
    const std::size_t least = whole ? beginning(0).size() : leastBytes;
    for (; at + static_cast<std::int64_t>(least) <= end; at += rowBytes) {
        const std::string_view tail = std::string_view(bytes).substr(static_cast<std::size_t>(at - start));
        const std::string wanted = beginning(at);
        const std::size_t common = std::min(tail.size(), wanted.size());
        if (tail.substr(0, common) != std::string_view(wanted).substr(0, common)) continue;
        note.offset = at;
        readNote(tail, length, note);
        return true;
    }
    return true;
}

}  // namespace tarn
