// SPDX-License-Identifier: Apache-2.0
//
// The way from row files to Xbase files: the one place of lists that knows them.
#include "kernel/lists/rowfile_xbase_internal.h"

#include "kernel/data/xbase/xbase.h"
#include "kernel/values/records.h"

namespace tarn {

namespace {

const RecordDescriptor* rowOf(const ListDescriptor& l) {
    const bool record = ElementKindOf(l) == KindRecord;
    return record ? reinterpret_cast<const RecordDescriptor*>(At(l.prototype)) : nullptr;
}

// The declaration of a row that has none: the mark of deletion, and fields of characters.
std::string defaultText(const RecordDescriptor& row) {
    std::string text = "delete_flag : Tchar\n";
    for (std::int32_t n = 2; n <= FieldCountOf(row.kinds); ++n) {
        const auto field = ReadAt<ArrayDescriptor>(RecordFieldAddress(&row, n));
        text +=
            "FIELD" + std::to_string(n - 1) + " : Tchars[1:" + std::to_string(field.bounds[0].upper) + "]\n";
    }
    return text;
}

std::uint32_t wordAt(std::string_view bytes, std::size_t at) {
    return std::uint32_t{static_cast<unsigned char>(bytes[at])} |
           std::uint32_t{static_cast<unsigned char>(bytes[at + 1])} << 8U;
}

bool carried(const XbaseFault& fault) {
    return fault.errorCode == 0 || Refuse(fault.errorCode);
}

}  // namespace

bool AcceptXbaseRows(const ListDescriptor& l) {
    const RecordDescriptor* const row = rowOf(l);
    return (row != nullptr && TypeInfoIsXbaseRecord(row)) || Refuse(ERR_COMPONENT_UNREPRESENTABLE);
}

bool MakeXbaseHeader(const ListDescriptor& l, std::string_view typeText, std::string& bytes) {
    std::string own;
    if (typeText.empty()) typeText = own = defaultText(*rowOf(l));
    // A file without fields could not be read again.
    if (FieldCountOf(rowOf(l)->kinds) == 1) return Refuse(ERR_COMPONENT_UNREPRESENTABLE);
    std::int32_t code = 0;
    bytes = XbaseHeaderBytes(rowOf(l), KindRecord, typeText, 0, code);
    return code == 0 || Refuse(code);
}

void AddEmptyXbaseRows(std::string_view name, std::size_t rowBytes, std::int32_t rows, std::string& bytes) {
    for (; rows > 0; --rows) {
        const std::size_t at = bytes.size();
        bytes.resize(at + rowBytes);
        XbaseEmptyRow(name, bytes.data() + at, rowBytes);
    }
}

XbaseRows::XbaseRows() : header_(std::make_unique<XbaseHeader>()) {}
XbaseRows::~XbaseRows() = default;

bool XbaseRows::read(std::string_view bytes) {
    constexpr std::size_t fixedPart = 32, sizeAt = 8;
    if (bytes.size() < fixedPart) return Refuse(ERR_FILE_SIZE);
    const std::size_t size = wordAt(bytes, sizeAt);
    if (bytes.size() < std::min(size, MostHeaderBytes)) return Refuse(ERR_FILE_SIZE);
    return XbaseDecodeHeader(bytes.substr(0, size), *header_).empty() ||
           Refuse(ERR_COMPONENT_UNREPRESENTABLE);
}

bool XbaseRows::accept(const ListDescriptor& l) const {
    return XbaseCheckValue(*header_, KindRecord, rowOf(l)) == 0 || Refuse(ERR_COMPONENT_UNREPRESENTABLE);
}

std::int32_t XbaseRows::headerSize() const {
    return header_->headerSize;
}

std::int32_t XbaseRows::rowBytes() const {
    return header_->recordSize;
}

bool XbaseRows::pack(const void* element, Kind kind, std::string& bytes) const {
    std::string row;
    if (!carried(XbaseWriteRow(element, kind, *header_, row, true))) return false;
    bytes += row;
    return true;
}

bool XbaseRows::unpack(std::string_view bytes, void* element, Kind kind) const {
    return carried(XbaseReadRow(bytes, *header_, element, kind, true));
}

}  // namespace tarn
