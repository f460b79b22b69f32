// SPDX-License-Identifier: Apache-2.0
//
// What the tests of Xbase files share: files that are put together byte by byte, without the kernel.
#pragma once

#include "kernel/data/xbase/xbase.h"
#include "support/errorcell.h"
#include "unit/kernel/tab_fixture.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct XField {
    std::string name;
    char type = 'C';
    int length = 1, decimals = 0;
};
using XFields = std::vector<XField>;

inline std::string LittleEndian(std::uint32_t number, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(number >> (8 * i) & 0xFF);
    return text;
}

inline std::string FieldBytes(const XField& field) {
    std::string bytes = field.name;
    bytes.resize(11);
    bytes += field.type;
    bytes.append(4, '\0');
    bytes += static_cast<char>(field.length);
    bytes += static_cast<char>(field.decimals);
    return bytes + std::string(14, '\0');
}

inline std::uint32_t RecordSize(const XFields& fields) {
    std::uint32_t size = 1;
    for (const XField& field : fields) size += static_cast<std::uint32_t>(field.length);
    return size;
}

// A header of 2001-02-03. The sizes are those of the fields where they are not given.
inline std::string HeadBytes(const XFields& fields, std::uint32_t records = 0, int headerSize = -1,
                             int recordSize = -1) {
    const auto size = static_cast<std::uint32_t>(headerSize >= 0 ? headerSize : 33 + 32 * fields.size());
    std::string bytes = "\x03\x01\x02\x03" + LittleEndian(records, 4) + LittleEndian(size, 2);
    bytes += LittleEndian(recordSize >= 0 ? static_cast<std::uint32_t>(recordSize) : RecordSize(fields), 2);
    bytes += std::string(20, '\0');
    for (const XField& field : fields) bytes += FieldBytes(field);
    return bytes + "\r";
}

inline std::string FileBytes(const XFields& fields, const std::vector<std::string>& rows) {
    std::string bytes = HeadBytes(fields, static_cast<std::uint32_t>(rows.size()));
    for (const std::string& row : rows) bytes += row;
    return bytes + '\x1A';
}

class Xbase : public Tab {
protected:
    static XbaseHeader headerOf(const XFields& fields) {
        XbaseHeader header;
        EXPECT_EQ(XbaseDecodeHeader(HeadBytes(fields), header), "");
        return header;
    }
    static std::string messageOf(const std::string& bytes) {
        XbaseHeader header;
        return XbaseDecodeHeader(bytes, header);
    }
};

}  // namespace tarn
