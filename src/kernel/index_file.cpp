// SPDX-License-Identifier: Apache-2.0
#include "kernel/index_file.h"

#include "kernel/errors.h"
#include "kernel/fileerrors.h"
#include "kernel/index_filedisk.h"
#include "kernel/index_filelayout.h"
#include "kernel/runtime.h"

#include <cstring>
#include <new>

namespace tarn {

namespace {

constexpr std::uint32_t usualMode = 0666;  // the user's mask takes its part away

bool fail(std::int32_t code) {
    SetError(code);
    return false;
}

std::string_view fileNameOf(std::string_view path) {
    const std::size_t separator = path.find_last_of("/\\");
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

// The name as it stands in the header, with the zeros behind it.
void putTableName(char* at, std::string_view tableFile) {
    std::memset(at, 0, MaxIndexTableName + 1);
    fileNameOf(tableFile).copy(at, MaxIndexTableName);
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

// 0, or the code of what failed.
std::int32_t writeNewFile(const std::string& path, std::string_view bytes) {
    os::Handle handle = -1;
    const os::FileError opened = os::files().open(path, os::OpenMode::Truncate, usualMode, handle);
    if (opened != os::FileError::None) return FileWriteCode(opened);
    const os::FileError written = os::files().write(handle, 0, bytes);
    const os::FileError closed = os::files().close(handle);
    return FileWriteCode(written != os::FileError::None ? written : closed);
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

std::string IndexFileName(std::string_view tableFile, std::int32_t index) {
    const std::string_view name = fileNameOf(tableFile);
    const std::size_t folder = tableFile.size() - name.size(), point = name.rfind('.');
    std::string path(
        tableFile.substr(0, point == std::string_view::npos ? tableFile.size() : folder + point));
    path += ".i";
    path += static_cast<char>('0' + index);
    return path;
}

std::int32_t IndexRecordSize(const KeyView& key) {
    KeyLayout layout;
    return LayoutOfKey(key, layout) ? layout.recordSize : 0;
}

bool CreateIndexFile(const std::string& path, std::string_view tableFile, std::string_view keyText) {
    CloseKeptIndex();
    std::int32_t code = ERR_OUT_OF_MEMORY;
    try {
        code = writeNewFile(path, headerOf(tableFile, keyText));
        if (code == 0) return true;
        os::files().remove(path);
    } catch (const std::bad_alloc&) {}
    return fail(code);
}

bool RenameIndexFile(const std::string& from, const std::string& to, std::string_view tableFile) {
    CloseKeptIndex();
    char name[MaxIndexTableName + 1], before[MaxIndexTableName + 1];
    putTableName(name, tableFile);
    try {
        std::int32_t code = writeTableName(from, name, before);
        if (code != 0) return fail(code);
        code = FileWriteCode(os::files().rename(from, to));
        if (code == 0) return true;
        writeTableName(from, before, name);
        return fail(code);
    } catch (const std::bad_alloc&) {
        return fail(ERR_OUT_OF_MEMORY);
    }
}

std::string IndexFileText(const std::string& path) {
    char header[IndexHeaderBytes];
    try {
        IndexDisk disk;
        if (disk.open(path, os::OpenMode::Read) != 0 || disk.size() < IndexHeaderBytes) return {};
        if (disk.read(0, header, IndexHeaderBytes) != 0 || WordAt(header) != IndexHeaderBytes) return {};
        const char* const text = header + IndexTextAt;
        return {text, ::strnlen(text, MaxIndexText)};
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace tarn
