// SPDX-License-Identifier: Apache-2.0
//
// What the modules of Xbase files share. Only they include this.
#pragma once

#include "kernel/data/tab/tab_rows.h"
#include "kernel/data/xbase/xbase.h"
#include "kernel/values/records.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

inline constexpr std::int32_t XbaseStartBytes = 32, XbaseDescriptorBytes = 32;
inline constexpr std::int32_t MaxXbaseHead = XbaseStartBytes + MaxXbaseFields * XbaseDescriptorBytes;
inline constexpr char XbaseTerminator = 13, XbaseLive = ' ', XbaseDeleted = '*';
inline constexpr char XbaseCharacters = 'C', XbaseDate = 'D', XbaseLogical = 'L', XbaseNumber = 'N';

// The line of a declaration that stands for the deletion mark.
inline constexpr std::string_view DeleteFlagName = "delete_flag", DeleteFlagType = "Tchar";

// What fields are filled up with: blanks, and bytes 0 by some programs.
constexpr bool IsXbaseFill(char c) {
    return c == ' ' || c == '\0';
}
constexpr std::string_view WithoutXbaseFill(std::string_view text) {
    while (!text.empty() && IsXbaseFill(text.back())) text.remove_suffix(1);
    return text;
}

// Reads the header of a file that is open. `code` tells why the file could not be read.
std::string ReadXbaseHeader(TabFile& file, XbaseHeader& header, std::int32_t& code);
std::string XbaseOpenMessage(std::int32_t code);

// The fields that a declaration names, in order: without the lines that open and close blocks, and those of
// types that hold no value. A line may be a name alone.
struct XbaseDeclared {
    std::string name, typeName;
};
std::vector<XbaseDeclared> XbaseDeclaredFields(std::string_view typeText);

// Records within records.
inline constexpr std::int32_t MaxXbaseNesting = 64;

// Calls `visit` with the address and the kind of each field of a record, those of the records and unions
// inside it in their place; with the value itself when it is no record. A record that cannot be walked is
// visited as if it were a field. False as soon as `visit` is.
template <class Byte, class Visit>
bool EachXbaseField(Byte* at, Kind kind, const Visit& visit, std::int32_t depth = 0) {
    const bool record = (kind == KindRecord || kind == KindUnion) && depth < MaxXbaseNesting &&
                        IsWellFormed(at) && KindOf(at) == kind;
    if (!record) return visit(at, kind);
    const auto fields = ReadAt<RecordDescriptor>(at);
    Byte* field = At(fields.data);
    if (field == nullptr) return FieldCountOf(fields.kinds) == 0 || visit(at, kind);
    for (std::int32_t n = 1; n <= MaxFields; ++n) {
        const Kind fieldKind = FieldKindAt(fields.kinds, n);
        if (!IsValueKind(fieldKind)) return true;
        if (!EachXbaseField(field, fieldKind, visit, depth + 1)) return false;
        field += KindSize[fieldKind];
    }
    return true;
}

inline std::int32_t CountXbaseFields(const void* value, Kind kind) {
    std::int32_t count = 0;
    EachXbaseField(static_cast<const char*>(value), kind, [&](const char*, Kind) { return ++count > 0; });
    return count;
}
// What a record that may hold the deletion mark begins with; KindNone for any other value.
inline Kind FirstXbaseKind(const void* value, Kind kind) {
    if (kind != KindRecord || !IsWellFormed(value) || KindOf(value) != kind) return KindNone;
    return FieldKindAt(ReadAt<RecordDescriptor>(value).kinds, 1);
}

// The header of a file of these fields, dated today.
std::string XbaseHeaderBytes(const XbaseHeader& header, std::uint32_t records);

// ---- whole files (xbase_files.cpp) ----

// The shape of the rows of a value.
struct XbaseShape {
    const char* at = nullptr;
    Kind kind = KindNone;
};
XbaseShape XbaseShapeOf(const void* value, Kind kind);
// 0, or why such a value cannot be read from rows or written as rows.
std::int32_t XbaseRefusal(const void* value, Kind kind);
// The declaration of a value's row: a table has its own, if any.
std::string XbaseDeclarationOf(const void* value, Kind kind, std::string_view typeText);

// ---- numbers as text (xbase_numbers.cpp) ----

// The text of a field, blanks around it or not, to a number of the kind at `at` (enum to real). A blank text
// is 0. False, with 0 there, for what is no such number.
bool ReadXbaseNumber(std::string_view text, char* at, Kind kind);
// Right-aligned in a field of `length` blanks. False, and blanks, for what does not fit and for what is no
// number.
bool WriteXbaseNumber(const char* at, Kind kind, std::int32_t decimals, char* field, std::int32_t length);

}  // namespace tarn
