// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_file.h"

#include "kernel/index/index_filedisk.h"
#include "kernel/index/index_filelayout.h"
#include "kernel/lists/rowfile_names.h"
#include "kernel/lists/rowformat.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/numbers.h"
#include "os/paths.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <new>
#include <utility>

namespace tarn {

namespace {

// The name as it stands in the header, with the zeros behind it.
void putTableName(char* at, std::string_view tableFile) {
    std::memset(at, 0, MaxIndexTableName + 1);
    paths::fileName(tableFile).copy(at, MaxIndexTableName);
}

std::string_view wholeLines(std::string_view text) {
    if (text.size() <= static_cast<std::size_t>(MaxIndexText)) return text;
    const std::size_t end = text.rfind('\n', MaxIndexText - 1);
    return end == std::string_view::npos ? std::string_view() : text.substr(0, end + 1);
}

std::string headerOf(std::string_view tableFile, std::string_view keyText) {
    std::string header(IndexHeaderBytes, '\0');
    PutWord(header.data(), IndexHeaderBytes);
    putTableName(header.data() + IndexTableNameAt, tableFile);
    wholeLines(keyText).copy(header.data() + IndexTextAt, MaxIndexText);
    return header;
}

// Beside what stands there, if anything does.
os::FileError makeNewFile(const std::string& path, NewFile& made) {
    const os::FileError error =
        os::files().open(path, os::OpenMode::CreateNew, NewFile::usualMode, made.handle);
    if (error == os::FileError::Exists) return MakeFileBeside(path, made);
    if (error == os::FileError::None) made.path = path;
    return error;
}

// Closes it.
os::FileError fillNewFile(NewFile& made, std::string_view tableFile, std::string_view bytes) {
    os::FileError error = os::files().write(made.handle, 0, bytes);
    const os::FileError closed = made.close();
    if (error == os::FileError::None) error = closed;
    return error == os::FileError::None ? GiveRightsOf(tableFile, made.path) : error;
}

// The header of an index file; empty when there is none.
std::string headerIn(const std::string& path) {
    std::string header(IndexHeaderBytes, '\0');
    IndexDisk disk;
    if (disk.open(path, os::OpenMode::Read) != 0 || disk.size() < IndexHeaderBytes) return {};
    return disk.read(0, header.data(), IndexHeaderBytes) == 0 ? header : std::string();
}

// 0, or the code of what failed. `before` becomes the name that stood there.
std::int32_t writeTableName(const std::string& path, const char* name, char* before) {
    IndexDisk disk;
    if (const std::int32_t code = disk.open(path, os::OpenMode::ReadWrite); code != 0) return code;
    if (disk.size() < IndexHeaderBytes) return ERR_INDEX_FILE_SIZE;
    constexpr std::int32_t bytes = MaxIndexTableName + 1;
    std::int32_t code = disk.read(IndexTableNameAt, before, bytes);
    if (code != 0) return code;
    disk.begin();
    code = disk.write(IndexTableNameAt, {name, bytes}, {before, bytes});
    if (code == 0) code = disk.close();
    if (code == 0) return 0;
    if (disk.isOpen() || disk.reopen() == 0) disk.takeBack();
    return code;
}

}  // namespace

// Its owner may always write. Where this user cannot give it to the other owner, the group alone may do.
os::FileError GiveRightsOf(std::string_view tableFile, const std::string& path) {
    constexpr std::uint32_t withoutRunning = 0666, own = 0600;
    const os::FileInfo rows = os::infoOf(std::string(tableFile)), made = os::infoOf(path);
    if (!rows.exists) return os::FileError::None;
    const bool others = rows.owner != made.owner || rows.group != made.group;
    if (others && os::files().setOwner(path, rows.owner, rows.group) != os::FileError::None)
        (void)os::files().setOwner(path, made.owner, rows.group);
    const std::uint32_t mode = (rows.mode & withoutRunning) | own;
    return mode == made.mode ? os::FileError::None : os::files().setMode(path, mode);
}

namespace {

// The last bytes of the name stay.
std::string shortened(std::string path, std::size_t last) {
    constexpr std::size_t longest = 255, sumDigits = 8;
    constexpr int base = 16;
    const std::string_view name = paths::fileName(path);
    if (name.size() <= longest) return path;
    char sum[sumDigits];
    const auto written = std::to_chars(sum, sum + sumDigits, Crc32(name.data(), name.size()), base);
    const std::string_view digits(sum, static_cast<std::size_t>(written.ptr - sum));
    const std::size_t from = path.size() - name.size() + longest - last - sumDigits - 1;
    return path.replace(from, path.size() - last - from, "-" + std::string(digits));
}

}  // namespace

IndexHeaderTexts TextsOfIndexHeader(std::string_view bytes) {
    if (bytes.size() < std::size_t{IndexHeaderBytes} || WordAt(bytes.data()) != IndexHeaderBytes) return {};
    return {bytes.substr(IndexTableNameAt, MaxIndexTableName + 1),
            bytes.substr(IndexTextAt, MaxIndexText + 1)};
}

std::string IndexFileName(std::string_view tableFile, std::int32_t index) {
    const bool scratch = IsScratchName(tableFile);
    std::string path(scratch ? tableFile : paths::withoutExtension(tableFile));
    if (!scratch) path += ".i";
    path += static_cast<char>('0' + index);
    return path;
}

std::string MarkedIndexName(std::string_view indexFile, std::string_view mark) {
    constexpr std::size_t extension = 2;
    std::string name(indexFile);
    const bool scratch = IsScratchName(name);
    if (scratch)
        name.insert(name.size() - 1, mark);
    else
        name.replace(name.size() - extension, 1, mark);
    return shortened(std::move(name), mark.size() + (scratch ? 1 : extension));
}

std::int32_t IndexRecordSize(const KeyView& key) {
    KeyLayout layout;
    return LayoutOfKey(key, layout) ? layout.recordSize : 0;
}

bool CreateIndexFile(const std::string& path, std::string_view tableFile, std::string_view keyText) {
    LetGoOfIndex();
    NewFile made;
    os::FileError error = os::FileError::None;
    bool memory = true;
    try {
        const std::string header = headerOf(tableFile, keyText);
        error = makeNewFile(path, made);
        if (error != os::FileError::None) return Refuse(FileWriteCode(error));
        error = fillNewFile(made, tableFile, header);
        if (error == os::FileError::None && made.path != path) error = os::files().rename(made.path, path);
        if (error == os::FileError::None) {
            made.path.clear();
            return true;
        }
    } catch (const std::bad_alloc&) {
        memory = false;
    }
    return Refuse(memory ? FileWriteCode(error) : std::int32_t{ERR_OUT_OF_MEMORY});
}

bool IsEmptyIndexFile(const std::string& path, std::string_view tableFile, std::string_view keyText) {
    const os::FileInfo info = os::infoOf(path);
    return info.exists && !info.folder && !info.special && info.size == IndexHeaderBytes &&
           headerIn(path) == headerOf(tableFile, keyText);
}

bool CanEmptyIndexFile(const std::string& path) {
    const os::FileInfo info = os::infoOf(path);
    return info.exists && !info.folder && !info.special && info.writable && info.links == 1 &&
           !headerIn(path).empty();
}

// Cut off first: an index without nodes whose file is too long would pass for whole.
bool EmptyIndexFile(const std::string& path, std::string_view tableFile, std::string_view keyText) {
    const std::string header = headerOf(tableFile, keyText);
    LetGoOfIndex();
    os::Handle handle = -1;
    if (os::files().open(path, os::OpenMode::ReadWrite, 0, handle) != os::FileError::None) return false;
    os::FileError error = os::files().truncate(handle, IndexHeaderBytes);
    if (error == os::FileError::None) error = os::files().write(handle, 0, header);
    const os::FileError closed = os::files().close(handle);
    return error == os::FileError::None && closed == os::FileError::None;
}

bool RenameIndexFile(const std::string& from, const std::string& to, std::string_view tableFile) {
    LetGoOfIndex();
    char name[MaxIndexTableName + 1], before[MaxIndexTableName + 1];
    putTableName(name, tableFile);
    try {
        std::int32_t code = writeTableName(from, name, before);
        if (code != 0) return Refuse(code);
        code = FileWriteCode(os::files().rename(from, to));
        if (code == 0) return true;
        writeTableName(from, before, name);
        return Refuse(code);
    } catch (const std::bad_alloc&) {
        return Refuse(ERR_OUT_OF_MEMORY);
    }
}

// The name ends at its NUL; the last byte of its place is none of it.
std::string IndexTableName(const std::string& path) {
    try {
        const std::string header = headerIn(path);
        const std::string_view place = TextsOfIndexHeader(header).tableName;
        return std::string(
            place.substr(0, std::min(place.find('\0'), std::max<std::size_t>(place.size(), 1) - 1)));
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace tarn
