// SPDX-License-Identifier: Apache-2.0
//
// Declarations to descriptors of fields and back.
//
// Names that a declaration could not hold, or holds already, are changed when a file is declared: odd
// characters, the word that closes blocks, names that are missing or stand twice. Names of more than 11
// characters that are the same once they are cut are told apart by a number when a file is written.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xbase/xbase_access_internal.h"
#include "kernel/run/errors.h"
#include "kernel/tables/table_access.h"
#include "kernel/values/arrays.h"
#include "kernel/values/strings.h"
#include "os/clock.h"
#include "os/paths.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

// ---- names ----

bool isTaken(const std::vector<std::string>& names, std::string_view name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& other) { return ascii::equal(other, name); });
}

// The name, or one with a number behind it that is not among `names`; at most `limit` characters of it.
std::string freeName(const std::vector<std::string>& names, const std::string& name, std::size_t limit) {
    std::string free = name.substr(0, limit);
    for (std::size_t n = 2; isTaken(names, free); ++n) {
        const std::string mark = "_" + std::to_string(n);
        free = name.substr(0, std::min(name.size(), limit - mark.size())) + mark;
    }
    return free;
}

// The characters that stand in quotes, in keys and in code that is made from a declaration.
std::string cleanName(std::string_view name, std::int32_t number) {
    while (!name.empty() && name.back() == ' ') name.remove_suffix(1);
    while (!name.empty() && name.front() == ' ') name.remove_prefix(1);
    if (name.empty()) return "FIELD" + std::to_string(number);
    std::string clean(name);
    const auto isOdd = [](char c) { return c < ' ' || c > '~' || c == '"' || c == ','; };
    std::replace_if(clean.begin(), clean.end(), isOdd, '_');
    return clean;
}

// As type information text holds it: in quotes where it would not be read again as it stands.
std::string declaredName(const std::string& name) {
    const bool plain = std::all_of(name.begin(), name.end(), IsTypeInfoNameChar) && name.front() != ':' &&
                       name.back() != ':' && !ascii::equal(name, "end");
    return plain ? name : '"' + name + '"';
}

std::string withoutQuotes(const std::string& name) {
    const bool quoted = name.size() >= 2 && name.front() == '"' && name.back() == '"';
    return quoted ? name.substr(1, name.size() - 2) : name;
}

std::string typeNameOf(std::string_view filename) {
    std::string name = "T" + std::string(paths::stem(filename));
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !ascii::isSymbol(c); }, '_');
    return name;
}

// ---- the declaration of a file ----

constexpr struct {
    char type;
    const char* name;
} typeNames[] = {
    {XbaseCharacters, "Tchars"}, {XbaseDate, "Tdate"}, {XbaseLogical, "Tlogical"}, {XbaseNumber, "Tnumeric"}};

// "" for a type that is none of the four.
std::string typeTextOf(char type, std::int32_t length) {
    for (const auto& row : typeNames) {
        if (row.type != type) continue;
        const std::int32_t last = type == XbaseLogical ? 1 : std::max(length, 1);
        return std::string(row.name) + "[1:" + std::to_string(last) + "]";
    }
    return {};
}

std::string declare(const std::string& filename, const XbaseHeader& header, std::string& message) {
    std::string text = typeNameOf(filename) + " : record\n";
    std::vector<std::string> names{std::string(DeleteFlagName)};
    text.append("\t").append(DeleteFlagName).append(" : ").append(DeleteFlagType).append("\n");
    for (std::int32_t i = 0; i < header.fieldCount; ++i) {
        const std::string type = typeTextOf(header.type[i], header.length[i]);
        if (type.empty()) {
            message = "Xbase field number " + std::to_string(i + 1) + " is type " + header.type[i] +
                      " which is not a standard Xbase type";
            return {};
        }
        names.push_back(freeName(names, cleanName(header.name[i], i + 1), std::size_t{MaxTypeInfoName}));
        text.append("\t").append(declaredName(names.back())).append(" : ").append(type).append("\n");
    }
    return text + "end record\n";
}

// ---- descriptors ----

bool isDeleteFlag(const XbaseDeclared& field) {
    return ascii::equal(withoutQuotes(field.name), DeleteFlagName) &&
           ascii::equal(field.typeName, DeleteFlagType);
}

bool holdsMark(const void* row, Kind kind, const std::vector<XbaseDeclared>& declared) {
    if (FirstXbaseKind(row, kind) != KindEnum) return false;
    if (!declared.empty() && isDeleteFlag(declared[0])) return true;
    const bool isNamedField = !declared.empty() && CountXbaseFields(row, kind) == 1;
    return !isNamedField && TypeInfoIsXbaseRecord(static_cast<const RecordDescriptor*>(row));
}

// Of an array of characters, by the type that it is declared with; 0 for another type.
char declaredType(const std::string& typeName) {
    for (const auto& row : typeNames) {
        if (ascii::equal(typeName, row.name)) return row.type;
    }
    return 0;
}

struct FieldForm {
    char type = 0;  // 0: the value has no descriptor
    std::int32_t length = 0, decimals = 0;
};

FieldForm formOfString(const void* at) {
    if (!IsWellFormed(at) || KindOf(at) != KindString) return {};
    const std::int32_t most = ReadAt<StringDescriptor>(at).maxlength;
    if (most == UNBOUNDED) return {XbaseCharacters, MaxXbaseFieldLength};
    return most <= MaxXbaseFieldLength ? FieldForm{XbaseCharacters, most} : FieldForm{};
}

FieldForm formOfArray(const void* at, const std::string& typeName) {
    if (!IsWellFormed(at) || !ArrayIsCharacters(static_cast<const ArrayDescriptor*>(at))) return {};
    const std::int32_t last = ReadAt<ArrayDescriptor>(at).bounds[0].upper;
    if (last > MaxXbaseFieldLength) return {};
    const char type = declaredType(typeName);
    return {type, last, type == XbaseNumber ? 4 : 0};
}

FieldForm formOf(const void* at, Kind kind, const std::string& typeName) {
    switch (kind) {
    case KindBoolean: return {XbaseLogical, 1};
    case KindEnum: return {XbaseNumber, 4};
    case KindInteger: return {XbaseNumber, 12};
    case KindFixed:
    case KindReal: return {XbaseNumber, 20, 4};
    case KindString: return formOfString(at);
    case KindArray: return formOfArray(at, typeName);
    default: return {};
    }
}

// The row of a list or a table; other values are what they are.
void goToRow(const void*& value, Kind& kind) {
    if (kind == KindTable && IsTable(static_cast<const TableDescriptor*>(value))) {
        value = &RowShape(HeaderOf(*static_cast<const TableDescriptor*>(value)));
        kind = KindRecord;
    } else if (kind == KindList && IsWellFormed(value) && KindOf(value) == KindList) {
        const auto list = ReadAt<ListDescriptor>(value);
        kind = static_cast<Kind>(list.tag > TagInFile ? list.tag - TagInFile : list.tag);
        value = At(list.prototype);
    }
}

class Building {
public:
    Building(const std::vector<XbaseDeclared>& declared, XbaseHeader& header)
        : declared_(declared), header_(header) {}

    bool build(const void* value, Kind kind) {
        bool first = holdsMark(value, kind, declared_);
        const bool all = EachXbaseField(static_cast<const char*>(value), kind, [&](const char* at, Kind k) {
            if (!std::exchange(first, false)) return add(at, k);
            ++line_;
            return true;
        });
        return all && header_.fieldCount > 0;
    }

private:
    bool add(const char* at, Kind kind) {
        if (header_.fieldCount == MaxXbaseFields || line_ == declared_.size()) return false;
        const XbaseDeclared& field = declared_[line_++];
        const FieldForm form = formOf(at, kind, field.typeName);
        const std::string name = withoutQuotes(field.name);
        if (form.type == 0 || name.empty()) return false;
        const std::int32_t n = header_.fieldCount++;
        names_.push_back(freeName(names_, name, std::size_t{MaxXbaseFieldName}));
        names_.back().copy(header_.name[n], std::size_t{MaxXbaseFieldName});
        header_.type[n] = form.type;
        header_.length[n] = static_cast<std::uint8_t>(form.length);
        header_.decimals[n] = static_cast<std::uint8_t>(form.decimals);
        return true;
    }

    const std::vector<XbaseDeclared>& declared_;
    XbaseHeader& header_;
    std::vector<std::string> names_;
    std::size_t line_ = 0;
};

// ---- bytes ----

void putWord(std::string& bytes, std::int32_t word) {
    bytes += static_cast<char>(word & 0xFF);
    bytes += static_cast<char>(word >> 8 & 0xFF);
}

std::string startBytes(const XbaseHeader& header) {
    std::string bytes = "\x03" + XbaseDateToday();
    bytes.append(4, '\0');
    putWord(bytes, header.headerSize);
    putWord(bytes, header.recordSize);
    bytes.resize(std::size_t{XbaseStartBytes});
    return bytes;
}

std::string fieldBytes(const XbaseHeader& header, std::int32_t n) {
    std::string bytes(header.name[n], std::size_t{MaxXbaseFieldName});
    bytes += header.type[n];
    bytes.append(4, '\0');
    bytes += static_cast<char>(header.length[n]);
    bytes += static_cast<char>(header.decimals[n]);
    bytes.resize(std::size_t{XbaseDescriptorBytes});
    return bytes;
}

}  // namespace

std::string XbaseDateToday() {
    const os::CivilTime now = os::clock().local(os::clock().now());
    return {static_cast<char>(now.year % 100), static_cast<char>(now.month), static_cast<char>(now.day)};
}

std::vector<XbaseDeclared> XbaseDeclaredFields(std::string_view typeText) {
    std::vector<XbaseDeclared> fields;
    while (!typeText.empty()) {
        TypeInfoElement element = TypeInfoParseLine(ascii::takeLine(typeText), 1);
        const std::int32_t kind = TypeInfoKind(element.typeName);
        const bool opens = kind == KindRecord || kind == KindUnion || kind == KindList;
        const bool field = element.typeName.empty() || (IsValueKind(kind) && !opens);
        if (field && !element.isEnd())
            fields.push_back({std::move(element.name), std::move(element.typeName)});
    }
    return fields;
}

std::string XbaseTypeInfo(const std::string& filename, std::string& message) {
    XbaseHeader header;
    message = XbaseReadHeader(filename, header);
    return message.empty() && header.fieldCount > 0 ? declare(filename, header, message) : std::string();
}

std::int32_t XbaseBuildDescriptors(const void* value, Kind kind, std::string_view typeText,
                                   XbaseHeader& header) {
    header = {};
    const std::vector<XbaseDeclared> declared = XbaseDeclaredFields(typeText);
    goToRow(value, kind);
    if (declared.empty() || !Building(declared, header).build(value, kind)) {
        header = {};
        return ERR_COMPONENT_UNREPRESENTABLE;
    }
    header.headerSize = XbaseStartBytes + header.fieldCount * XbaseDescriptorBytes + 1;
    header.recordSize = 1;
    for (std::int32_t i = 0; i < header.fieldCount; ++i) header.recordSize += header.length[i];
    return 0;
}

std::string XbaseHeaderBytes(const XbaseHeader& header, std::uint32_t records) {
    XbaseHeader written = header;
    written.headerSize = XbaseStartBytes + header.fieldCount * XbaseDescriptorBytes + 1;
    std::string bytes = startBytes(written);
    for (std::int32_t n = 0; n < header.fieldCount; ++n) bytes += fieldBytes(header, n);
    bytes += XbaseTerminator;
    XbaseSetRecords(bytes, records);
    return bytes;
}

std::string XbaseHeaderBytes(const void* value, Kind kind, std::string_view typeText, std::uint32_t records,
                             std::int32_t& errorCode) {
    XbaseHeader header;
    errorCode = XbaseBuildDescriptors(value, kind, typeText, header);
    if (errorCode != 0) return {};
    std::string bytes = XbaseHeaderBytes(header, records);
    if (bytes.size() == static_cast<std::size_t>(header.headerSize)) return bytes;
    errorCode = ERR_COMPONENT_UNREPRESENTABLE;
    return {};
}

bool XbaseHoldsMark(const void* row, Kind kind, std::string_view typeText) {
    return holdsMark(row, kind, XbaseDeclaredFields(typeText));
}

bool TypeInfoIsXbaseRecord(const RecordDescriptor* row) {
    if (FirstXbaseKind(row, KindRecord) != KindEnum) return false;
    const auto fields = ReadAt<RecordDescriptor>(row);
    if (fields.data == 0) return false;
    const char* at = At(fields.data) + KindSize[KindEnum];
    for (std::int32_t n = 2; n <= FieldCountOf(fields.kinds); ++n, at += KindSize[KindArray]) {
        if (FieldKindAt(fields.kinds, n) != KindArray) return false;
        const auto array = ReadAt<ArrayDescriptor>(at);
        if (!ArrayIsCharacters(&array) || array.bounds[0].upper > MaxXbaseFieldLength) return false;
    }
    return true;
}

}  // namespace tarn
