// SPDX-License-Identifier: Apache-2.0
#include "os/programfile.h"

#include "os/files.h"

#include <array>

namespace tarn::os {
namespace {

constexpr std::string_view Elf = "\177ELF", Script = "#!";

}  // namespace

ProgramFile programFileOf(std::string_view bytes) {
    if (bytes.starts_with(Elf)) return ProgramFile::Elf;
    return bytes.starts_with(Script) ? ProgramFile::Script : ProgramFile::None;
}

ProgramFile programFileAt(const std::string& path) {
    std::array<char, Elf.size()> bytes{};
    std::size_t got = 0;
    Handle handle = -1;
    if (files().open(path, OpenMode::Read, 0, handle) != FileError::None) return ProgramFile::None;
    const FileError error = readUpTo(handle, 0, bytes.data(), bytes.size(), got);
    files().close(handle);
    return error == FileError::None ? programFileOf({bytes.data(), got}) : ProgramFile::None;
}

}  // namespace tarn::os
