// SPDX-License-Identifier: Apache-2.0
//
// Rows of Xbase files, to values and back.
#include "kernel/data/tab/tab_fields.h"
#include "kernel/data/xbase/xbase_access_internal.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/arrays.h"
#include "kernel/values/heap.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

bool isNumber(Kind kind) {
    return kind >= KindEnum && kind <= KindReal;
}
bool isString(const void* at, Kind kind) {
    return kind == KindString && IsWellFormed(at) && KindOf(at) == KindString;
}
bool isCharacters(const void* at, Kind kind) {
    return kind == KindArray && IsWellFormed(at) &&
           ArrayIsCharacters(static_cast<const ArrayDescriptor*>(at));
}
bool isText(char type) {
    return type == XbaseCharacters || type == XbaseDate;
}

// ---- from a row ----

// A text that a fixed string cannot hold is cut.
std::int32_t putString(std::string_view text, StringDescriptor& s) {
    const bool fits = s.maxlength == UNBOUNDED || text.size() <= static_cast<std::size_t>(s.maxlength);
    if (!fits) text = text.substr(0, static_cast<std::size_t>(s.maxlength));
    StringAssignView(&s, text);
    if (static_cast<std::size_t>(s.length) != text.size()) return ERR_OUT_OF_MEMORY;
    return fits ? 0 : std::int32_t{ERR_COMPONENT_UNREPRESENTABLE};
}

// As much as the array has room for, and blanks behind it.
void putCharacters(std::string_view text, const ArrayDescriptor& array) {
    const auto size = static_cast<std::size_t>(array.size);
    std::memset(At(array.data), ' ', size);
    text.copy(At(array.data), size);
}

void clear(char* at, Kind kind) {
    if (isString(at, kind)) return StringAssignView(reinterpret_cast<StringDescriptor*>(at), {});
    if (isCharacters(at, kind)) return putCharacters({}, ReadAt<ArrayDescriptor>(at));
    if (!IsAdtKind(kind)) std::memset(at, 0, static_cast<std::size_t>(KindSize[kind]));
}

bool isTrue(std::string_view text) {
    return !text.empty() && (text[0] == 'T' || text[0] == 't' || text[0] == 'Y' || text[0] == 'y');
}

// 0, or why the value has not got what the field says.
std::int32_t readField(std::string_view text, char type, char* at, Kind kind) {
    if (kind == KindBoolean && type == XbaseLogical) {
        *at = isTrue(text) ? 1 : 0;
        return 0;
    }
    if (isNumber(kind) && type == XbaseNumber && ReadXbaseNumber(text, at, kind)) return 0;
    if (isText(type) && isString(at, kind))
        return putString(WithoutXbaseFill(text), *reinterpret_cast<StringDescriptor*>(at));
    if (isCharacters(at, kind)) return putCharacters(text, ReadAt<ArrayDescriptor>(at)), 0;
    clear(at, kind);
    return ERR_COMPONENT_UNREPRESENTABLE;
}

// ---- to a row ----

bool writeString(const StringDescriptor& s, char* field, std::size_t length) {
    std::string narrow;
    if (CharacterWidth != 1) narrow = NarrowTabText(&s);
    const std::string_view text = WithoutXbaseFill(CharacterWidth == 1 ? StringView(&s) : narrow);
    if (text.size() > length) return false;
    text.copy(field, length);
    return true;
}

// A longer array fits when what lies behind the field is blank.
bool writeCharacters(const ArrayDescriptor& array, char* field, std::size_t length) {
    const std::string_view text(At(array.data), static_cast<std::size_t>(array.size));
    if (WithoutXbaseFill(text).size() > length) return false;
    text.copy(field, length);
    return true;
}

// The field is blank. False when the value does not fit; the field is blank then, too.
bool writeField(const char* at, Kind kind, char type, std::int32_t decimals, char* field,
                std::int32_t length) {
    const auto bytes = static_cast<std::size_t>(length);
    if (kind == KindBoolean && type == XbaseLogical && length > 0) {
        *field = *at != 0 ? 'T' : 'F';
        return true;
    }
    if (isNumber(kind)) return type == XbaseNumber && WriteXbaseNumber(at, kind, decimals, field, length);
    if (isString(at, kind))
        return isText(type) && writeString(*reinterpret_cast<const StringDescriptor*>(at), field, bytes);
    return isCharacters(at, kind) && writeCharacters(ReadAt<ArrayDescriptor>(at), field, bytes);
}

// ---- both ----

// The place of a field in a row.
struct Place {
    std::int32_t index = -1;  // from 0; -1 when the file has no such field
    std::size_t offset = 0;
    std::int32_t length = 0;
};

// A row that is gone through, a field after the other.
struct Cursor {
    const XbaseHeader& header;
    std::size_t rowSize;
    std::size_t& position;
    std::int32_t& fieldNumber;
    XbaseFault& fault;

    [[nodiscard]] bool isAtStart() const { return position == 0 && fieldNumber == 1 && rowSize > 0; }
    void fail(std::int32_t field, std::int32_t code) const {
        if (code != 0 && fault.errorCode == 0) fault = {field, code};
    }
    Place next() const {
        const std::int32_t index = fieldNumber++ - 1;
        if (index < 0 || index >= header.fieldCount) return {};
        const std::int32_t length = header.length[index];
        if (position > rowSize || rowSize - position < static_cast<std::size_t>(length)) return {};
        const Place place{index, position, length};
        position += static_cast<std::size_t>(length);
        if (fieldNumber > header.fieldCount) checkEnd();
        return place;
    }

private:
    void checkEnd() const {
        if (position != static_cast<std::size_t>(header.recordSize) && MemoryChecking())
            SetError(ERR_ADT_LOAD);
    }
};

void readNext(const Cursor& cursor, const char* row, char* at, Kind kind) {
    const std::int32_t number = cursor.fieldNumber;
    const Place place = cursor.next();
    std::int32_t code = ERR_COMPONENT_UNREPRESENTABLE;
    if (place.index < 0)
        clear(at, kind);
    else
        code = readField({row + place.offset, static_cast<std::size_t>(place.length)},
                         cursor.header.type[place.index], at, kind);
    cursor.fail(number, code);
}

void writeNext(const Cursor& cursor, char* row, const char* at, Kind kind) {
    const std::int32_t number = cursor.fieldNumber;
    const Place place = cursor.next();
    char* const field = row + place.offset;
    std::memset(field, ' ', static_cast<std::size_t>(place.length));
    const XbaseHeader& header = cursor.header;
    const bool written = place.index >= 0 && writeField(at, kind, header.type[place.index],
                                                        header.decimals[place.index], field, place.length);
    if (!written) cursor.fail(number, ERR_COMPONENT_UNREPRESENTABLE);
}

// Characters of a field without any stand in an array of one. An array that is shorter than its field, be it
// a logical one, would blank the rest when its row is written.
bool fitsCharacters(const ArrayDescriptor& array, std::int32_t length) {
    return array.size == std::max(length, 1);
}

// What a file has for a field of a value.
bool fits(const char* at, Kind kind, char type, std::int32_t length) {
    if (kind == KindBoolean) return type == XbaseLogical && length > 0;
    if (isNumber(kind)) return type == XbaseNumber && length > 0;
    if (isString(at, kind)) {
        const std::int32_t most = ReadAt<StringDescriptor>(at).maxlength;
        return isText(type) && (most == UNBOUNDED || most >= length);
    }
    return isCharacters(at, kind) && fitsCharacters(ReadAt<ArrayDescriptor>(at), length);
}

// 0, or the number of the first field of the file that a value does not fit. Its first `skip` fields are
// passed over.
std::int32_t misfit(const XbaseHeader& header, const void* value, Kind kind, std::int32_t skip) {
    std::int32_t n = -skip;
    const auto check = [&](const char* at, Kind fieldKind) {
        const std::int32_t i = n++;
        return i < 0 || (i < header.fieldCount && fits(at, fieldKind, header.type[i], header.length[i]));
    };
    if (!EachXbaseField(static_cast<const char*>(value), kind, check)) return n;
    return n == header.fieldCount ? 0 : n + 1;
}

// Calls `visit` with each field of a value but the deletion mark, whose address is the result; null for none.
template <class Byte, class Visit>
Byte* eachFileField(Byte* value, Kind kind, bool marked, const Visit& visit) {
    bool first = marked && FirstXbaseKind(value, kind) == KindEnum;
    Byte* mark = nullptr;
    EachXbaseField(value, kind, [&](Byte* at, Kind fieldKind) {
        if (!first) return visit(at, fieldKind);
        first = false;
        mark = at;
        return true;
    });
    return mark;
}

// A record that lacks the last fields of the file would lose them when it is written.
void checkAllRead(const Cursor& cursor, Kind kind) {
    if ((kind == KindRecord || kind == KindUnion) && cursor.fieldNumber <= cursor.header.fieldCount)
        cursor.fail(cursor.fieldNumber, ERR_COMPONENT_UNREPRESENTABLE);
}

}  // namespace

void XbaseFromRow(std::string_view rowBytes, std::size_t& position, const XbaseHeader& header,
                  std::int32_t& fieldNumber, void* value, Kind kind, XbaseFault& fault) {
    const Cursor cursor{header, rowBytes.size(), position, fieldNumber, fault};
    if (cursor.isAtStart()) ++position;
    EachXbaseField(static_cast<char*>(value), kind, [&](char* at, Kind fieldKind) {
        readNext(cursor, rowBytes.data(), at, fieldKind);
        return true;
    });
}

XbaseFault XbaseReadRow(std::string_view rowBytes, const XbaseHeader& header, void* value, Kind kind) {
    return XbaseReadRow(rowBytes, header, value, kind, XbaseHoldsMark(value, kind));
}

XbaseFault XbaseWriteRow(const void* value, Kind kind, const XbaseHeader& header, std::string& rowBytes) {
    return XbaseWriteRow(value, kind, header, rowBytes, XbaseHoldsMark(value, kind));
}

void XbaseToRow(const void* value, Kind kind, const XbaseHeader& header, std::int32_t& fieldNumber,
                std::string& rowBytes, std::size_t& position, XbaseFault& fault) {
    rowBytes.resize(static_cast<std::size_t>(header.recordSize), XbaseLive);
    const Cursor cursor{header, rowBytes.size(), position, fieldNumber, fault};
    if (cursor.isAtStart()) rowBytes[position++] = XbaseLive;
    EachXbaseField(static_cast<const char*>(value), kind, [&](const char* at, Kind fieldKind) {
        writeNext(cursor, rowBytes.data(), at, fieldKind);
        return true;
    });
}

XbaseFault XbaseReadRow(std::string_view rowBytes, const XbaseHeader& header, void* value, Kind kind,
                        bool marked) {
    XbaseFault fault;
    std::size_t position = 1;
    std::int32_t fieldNumber = 1;
    const Cursor cursor{header, rowBytes.size(), position, fieldNumber, fault};
    const auto read = [&](char* at, Kind fieldKind) {
        readNext(cursor, rowBytes.data(), at, fieldKind);
        return true;
    };
    char* const mark = eachFileField(static_cast<char*>(value), kind, marked, read);
    checkAllRead(cursor, kind);
    if (mark != nullptr) *mark = rowBytes.empty() ? XbaseLive : rowBytes[0];
    return fault;
}

XbaseFault XbaseWriteRow(const void* value, Kind kind, const XbaseHeader& header, std::string& rowBytes,
                         bool marked) {
    XbaseFault fault;
    rowBytes.assign(static_cast<std::size_t>(header.recordSize), XbaseLive);
    std::size_t position = 1;
    std::int32_t fieldNumber = 1;
    const Cursor cursor{header, rowBytes.size(), position, fieldNumber, fault};
    const auto write = [&](const char* at, Kind fieldKind) {
        writeNext(cursor, rowBytes.data(), at, fieldKind);
        return true;
    };
    const char* const mark = eachFileField(static_cast<const char*>(value), kind, marked, write);
    checkAllRead(cursor, kind);
    if (mark != nullptr && *mark != 0 && !rowBytes.empty()) rowBytes[0] = *mark;
    return fault;
}

std::int32_t XbaseCheckValue(const XbaseHeader& header, Kind kind, const void* value) {
    return misfit(header, value, kind, XbaseHoldsMark(value, kind) ? 1 : 0);
}

std::int32_t XbaseCheckValue(const std::string& filename, Kind kind, const void* value) {
    XbaseHeader header;
    return XbaseReadHeader(filename, header).empty() ? XbaseCheckValue(header, kind, value) : 1;
}

}  // namespace tarn
