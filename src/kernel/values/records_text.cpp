// SPDX-License-Identifier: Apache-2.0
//
// Fields of records as text, and back.
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/numbers.h"
#include "kernel/text/padding.h"
#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/arrays.h"
#include "kernel/values/convert.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/string_text.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

constexpr char quote = '"';

std::string quoted(std::string_view characters) {
    std::string text(1, quote);
    for (const char c : characters) text.append(c == quote ? 2 : 1, c);
    return text + quote;
}

// What stands between quotes, two of them read as one; a text without quotes as it stands.
std::string unquoted(std::string_view text) {
    if (text.size() < 2 || text.front() != quote || text.back() != quote) return std::string(text);
    text = text.substr(1, text.size() - 2);
    std::string characters;
    for (std::size_t i = 0; i < text.size(); ++i) {
        characters += text[i];
        if (text[i] == quote && i + 1 < text.size() && text[i + 1] == quote) ++i;
    }
    return characters;
}

bool isCharacters(const void* field, Kind kind) {
    return kind == KindArray && ArrayIsCharacters(static_cast<const ArrayDescriptor*>(field));
}

void charactersFromText(std::string_view text, const ArrayDescriptor& array) {
    const std::string characters = unquoted(text);
    const std::size_t room = static_cast<std::size_t>(array.size), count = std::min(room, characters.size());
    std::memcpy(At(array.data), characters.data(), count);
    std::memset(At(array.data) + count, ' ', room - count);
}

bool booleanFromText(std::string_view text, void* field) {
    bool value = false, ok = false;
    BooleanFromText(Unpadded(text), value, ok);
    if (ok) WriteAt<std::uint8_t>(field, value ? 1 : 0);
    return ok;
}

bool enumFromText(std::string_view text, void* field) {
    text = Unpadded(text);
    std::int32_t value = 0;
    std::size_t end = 0;
    IntegerFromText(text, value, end);
    const bool good = end == text.size() && end > 0 && value >= 0 && value <= UINT8_MAX;
    if (good) WriteAt(field, static_cast<std::uint8_t>(value));
    return good;
}

// A text that does not fit a set's bounds is told by 601 and 616 in the cell.
bool setFromText(std::string_view text, void* field) {
    std::int32_t position = 1, error = 0;
    SetFromText(text, position, static_cast<SetDescriptor*>(field), error);
    return error != 1;
}

bool numberFromText(const StringDescriptor* text, void* field, Kind kind) {
    bool ok = false;
    AdtConvert(text, KindString, field, kind, ok);
    return ok;
}

bool putText(const StringDescriptor* text, void* field, Kind kind) {
    const NarrowText narrow(text);
    const std::string_view characters = narrow.view();
    switch (kind) {
    case KindBoolean: return booleanFromText(characters, field);
    case KindEnum: return enumFromText(characters, field);
    case KindSet: return setFromText(characters, field);
    case KindArray:
        if (!isCharacters(field, kind)) return false;
        charactersFromText(characters, *static_cast<const ArrayDescriptor*>(field));
        return true;
    default: return numberFromText(text, field, kind);
    }
}

bool getText(const void* field, Kind kind, StringDescriptor* text) {
    if (!IsOfKind(field, kind)) return false;
    if (kind == KindSet) {
        SetToText(static_cast<const SetDescriptor*>(field), true, text);
        return true;
    }
    if (isCharacters(field, kind)) {
        const auto& array = *static_cast<const ArrayDescriptor*>(field);
        StringAssignView(text, quoted({At(array.data), static_cast<std::size_t>(array.size)}));
        return true;
    }
    bool ok = false;
    AdtConvert(field, kind, text, KindString, ok);
    return ok;
}

bool acceptText(const StringDescriptor* text) {
    if (KindOf(text) == KindString) return true;
    SetError(ERR_STRING_TYPE);
    return false;
}

// The kind of field n; KindNone, and the error set, when there is none.
Kind existingField(const RecordDescriptor* r, std::int32_t n) {
    if (KindOf(r) != KindRecord && KindOf(r) != KindUnion) {
        SetError(ERR_UNIDENTIFIABLE);
        return KindNone;
    }
    const Kind kind = FieldKindAt(r->kinds, n);
    if (kind == KindNone) SetError(r->tag == TagUnion ? ERR_UNION_TYPE : ERR_RECORD_TYPE);
    return kind;
}

}  // namespace

void RecordGetAsText(const RecordDescriptor* r, std::int32_t n, StringDescriptor* text) {
    if (!acceptText(text)) return;
    const Kind kind = existingField(r, n);
    if (kind != KindNone && getText(RecordFieldAddress(r, n), kind, text)) return;
    StringClear(text);
    if (kind != KindNone) SetError(AdtConversionError(kind));
}

void RecordPutFromText(std::int32_t n, const StringDescriptor* text, RecordDescriptor* r) {
    if (!acceptText(text)) return;
    const Kind kind = existingField(r, n);
    if (kind == KindNone) return;
    if (!putText(text, RecordFieldAddress(r, n), kind)) SetError(AdtConversionError(kind));
}

}  // namespace tarn
