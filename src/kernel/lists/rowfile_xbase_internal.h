// SPDX-License-Identifier: Apache-2.0
//
// What the rows of a list need of Xbase files: the one way from here to data/xbase.h.
#pragma once

#include "kernel/lists/rowformat.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

struct XbaseHeader;

// Rows that an Xbase file can hold: 658 when they are not.
bool AcceptXbaseRows(const ListDescriptor& l);
// The header of a new file, with a count of 0. The fields have the names of `typeText`, or FIELD1 and so on
// when it is empty. 658.
bool MakeXbaseHeader(const ListDescriptor& l, std::string_view typeText, std::string& bytes);
// Rows that were not written yet, behind what is in `bytes`.
void AddEmptyXbaseRows(std::string_view name, std::size_t rowBytes, std::int32_t rows, std::string& bytes);

// The fields of an open file.
class XbaseRows {
public:
    static constexpr std::size_t MostHeaderBytes = 32 * 49 + 2;

    XbaseRows();
    ~XbaseRows();
    // `bytes` are the first of the file, as many as MostHeaderBytes or all that there are. 655 for a file
    // that is shorter than its header, 658 for one that is no Xbase file.
    bool read(std::string_view bytes);
    bool accept(const ListDescriptor& l) const;  // 658 when the rows do not have the fields of the file
    [[nodiscard]] std::int32_t headerSize() const;
    [[nodiscard]] std::int32_t rowBytes() const;
    bool pack(const void* element, Kind kind, std::string& bytes) const;  // appends; 658
    bool unpack(std::string_view bytes, void* element, Kind kind) const;  // 658

private:
    std::unique_ptr<XbaseHeader> header_;
};

}  // namespace tarn
