// SPDX-License-Identifier: Apache-2.0
//
// Headers of Xbase files, from their bytes.
#include "kernel/data/datafile.h"
#include "kernel/data/xbase/xbase_access_internal.h"
#include "kernel/run/runtime.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

constexpr std::size_t recordsOffset = 4, headerSizeOffset = 8, recordSizeOffset = 10;
constexpr std::size_t typeOffset = 11, lengthOffset = 16, decimalsOffset = 17;
constexpr std::int32_t smallestHeader = 33;
constexpr std::string_view signatures = "\x03\x04\x05\x30\x83\x8B";

// Little-endian; bytes that are not there are 0.
std::uint32_t numberAt(std::string_view bytes, std::size_t offset, std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = size; i > 0; --i) {
        const std::size_t at = offset + i - 1;
        number = number << 8U | (at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U);
    }
    return number;
}
std::int32_t wordAt(std::string_view bytes, std::size_t offset) {
    return static_cast<std::int32_t>(numberAt(bytes, offset, 2));
}

// A byte 0 may stand behind the terminator.
std::int32_t fieldsIn(std::int32_t headerSize) {
    const std::int32_t end = headerSize % XbaseDescriptorBytes == 2 ? 2 : 1;
    return (headerSize - end) / XbaseDescriptorBytes - 1;
}

bool isFieldType(char c) {
    return ascii::isDigit(c) || ascii::isUpper(c);
}

std::string startProblem(std::string_view bytes, const XbaseHeader& header) {
    if (bytes.empty() || signatures.find(bytes[0]) == std::string_view::npos)
        return "Xbase file does not start with a valid signature byte";
    if (bytes.size() <= std::size_t{XbaseStartBytes}) return "Xbase file header is incomplete";
    if (header.headerSize < smallestHeader) return "Xbase file header is too small";
    if (header.fieldCount < 1 || header.fieldCount > MaxXbaseFields)
        return "Xbase file has " + std::to_string(header.fieldCount) + " fields (maximum is " +
               std::to_string(MaxXbaseFields) + ")";
    return {};
}

// The fields that are said to be there, or fewer.
std::string readFields(std::string_view bytes, XbaseHeader& header) {
    for (std::int32_t i = 0; i < header.fieldCount; ++i) {
        const auto offset = static_cast<std::size_t>(XbaseStartBytes + i * XbaseDescriptorBytes);
        const std::string_view field = bytes.substr(std::min(offset, bytes.size()), XbaseDescriptorBytes);
        if (field.size() < std::size_t{XbaseDescriptorBytes})
            return "Could not read field descriptors from Xbase file";
        if (field[0] == XbaseTerminator) {
            header.fieldCount = i;
            return {};
        }
        const std::string_view name = field.substr(0, typeOffset);
        name.copy(header.name[i], std::min(name.find('\0'), name.size()));
        header.type[i] = field[typeOffset];
        header.length[i] = static_cast<std::uint8_t>(field[lengthOffset]);
        header.decimals[i] = static_cast<std::uint8_t>(field[decimalsOffset]);
        if (!isFieldType(header.type[i])) return "Field type characters must be A-Z or 0-9";
    }
    return {};
}

std::int32_t recordSizeOf(const XbaseHeader& header) {
    std::int32_t size = 1;
    for (std::int32_t i = 0; i < header.fieldCount; ++i) size += header.length[i];
    return size;
}

std::string decode(std::string_view bytes, XbaseHeader& header) {
    header.records = numberAt(bytes, recordsOffset, sizeof header.records);
    header.headerSize = wordAt(bytes, headerSizeOffset);
    header.recordSize = wordAt(bytes, recordSizeOffset);
    header.fieldCount = fieldsIn(header.headerSize);
    std::string message = startProblem(bytes, header);
    if (message.empty()) message = readFields(bytes, header);
    if (!message.empty() || recordSizeOf(header) == header.recordSize) return message;
    return "Field sizes do not match the size stored in the header (calculated size = " +
           std::to_string(recordSizeOf(header)) + ", size in header = " + std::to_string(header.recordSize) +
           ")";
}

}  // namespace

std::string XbaseDecodeHeader(std::string_view bytes, XbaseHeader& header) {
    header = {};
    std::string message = decode(bytes, header);
    if (!message.empty()) header = {};
    return message;
}

std::string XbaseOpenMessage(std::int32_t code) {
    return "Could not open the file (error " + std::to_string(code) + ")";
}

std::string ReadXbaseHeader(TabFile& file, XbaseHeader& header, std::int32_t& code) {
    char bytes[MaxXbaseHead];
    const std::int64_t most = std::min<std::int64_t>(file.size(), sizeof bytes);
    const auto count = static_cast<std::size_t>(std::max<std::int64_t>(most, 0));
    code = file.read(0, bytes, count);
    if (code == 0) return XbaseDecodeHeader({bytes, count}, header);
    header = {};
    return "Xbase file header is incomplete";
}

std::string XbaseReadHeader(const std::string& filename, XbaseHeader& header) {
    header = {};
    TabFile file;
    std::int32_t code = file.open(filename);
    if (code == 0) return ReadXbaseHeader(file, header, code);
    SetError(code);
    return XbaseOpenMessage(code);
}

bool XbaseFileName(std::string_view name) {
    return DataFormatOf(name) == FormatXbase;
}

void XbaseSetRecords(std::string& headerBytes, std::uint32_t records) {
    if (headerBytes.size() < headerSizeOffset) return;
    for (std::size_t i = recordsOffset; i < headerSizeOffset; ++i, records >>= 8U)
        headerBytes[i] = static_cast<char>(records & 0xFFU);
}

void XbaseEmptyRow(std::string_view filename, char* buffer, std::size_t size) {
    if (buffer == nullptr || size == 0) return;
    const bool xbase = XbaseFileName(filename);
    std::memset(buffer, xbase ? ' ' : 0, size);
    if (xbase) buffer[0] = XbaseDeleted;
}

}  // namespace tarn
