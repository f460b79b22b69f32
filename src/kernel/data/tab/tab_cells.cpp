// SPDX-License-Identifier: Apache-2.0
//
// Cells straight to fields. Short numbers are read here, longer and odder ones by the readers of numbers;
// both give the same results.
#include "kernel/data/short_number.h"
#include "kernel/data/tab/tab_fields.h"
#include "kernel/data/tab/tab_rows.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

std::string_view withoutTail(std::string_view text, std::string_view characters) {
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

constexpr std::string_view spaces = " \t\r\n";

std::string_view withoutHead(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(spaces), text.size()));
}

bool isNull(std::string_view cell) {
    constexpr std::string_view word = "null";
    return cell.size() == word.size() &&
           std::equal(cell.begin(), cell.end(), word.begin(), [](char a, char b) { return (a | 0x20) == b; });
}

// ---- numbers ----

// False for what has another form, or digits that are more than a real holds exactly.
bool readShort(std::string_view text, ShortNumber& number) {
    constexpr std::size_t most = MostShortDigits;
    const char* at = text.data();
    const char* const end = at + text.size();
    number.negative = at != end && *at == '-';
    if (number.negative) ++at;
    const char* const first = at;
    for (; at != end && static_cast<unsigned>(*at - '0') <= 9; ++at) {
        if (static_cast<std::size_t>(at - first) == most) return false;
        number.digits = number.digits * 10 + (*at - '0');
    }
    if (at == first) return false;
    if (at == end) return true;
    if (*at++ != '.') return false;
    for (const char* const point = at; at != end && static_cast<unsigned>(*at - '0') <= 9; ++at) {
        if (static_cast<std::size_t>(at - first) > most) return false;
        number.digits = number.digits * 10 + (*at - '0');
        number.decimals = static_cast<std::int32_t>(at - point) + 1;
    }
    return at == end;
}

bool readInteger(std::string_view text, char* at) {
    std::int32_t value = 0;
    std::size_t end = 0;
    IntegerFromText(text, value, end);
    if (end != text.size()) return false;
    WriteAt(at, value);
    return true;
}

bool readEnum(std::string_view text, char* at) {
    std::int32_t value = 0;
    if (!readInteger(text, reinterpret_cast<char*>(&value)) || value < 0 || value > UINT8_MAX) return false;
    WriteAt(at, static_cast<std::uint8_t>(value));
    return true;
}

bool readBoolean(std::string_view text, char* at) {
    bool value = false, ok = false;
    BooleanFromText(text, value, ok);
    if (ok) WriteAt<std::uint8_t>(at, value ? 1 : 0);
    return ok;
}

bool readFixed(std::string_view text, char* at) {
    ShortNumber number;
    return FixedFieldFrom(readShort(text, number), number, text, at);
}

bool readReal(std::string_view text, char* at) {
    ShortNumber number;
    return RealFieldFrom(readShort(text, number), number, text, at);
}

struct NumberReader {
    bool (*read)(std::string_view text, char* at);
    std::int32_t code;
};
constexpr NumberReader numberReaders[] = {{nullptr, 0},
                                          {readBoolean, ERR_BOOLEAN_CONVERSION},
                                          {readEnum, ERR_ENUM_CONVERSION},
                                          {readInteger, ERR_INTEGER_CONVERSION},
                                          {readFixed, ERR_FIXED_CONVERSION},
                                          {readReal, ERR_REAL_CONVERSION}};

char* recordData(const char* at) {
    return At(ReadAt<RecordDescriptor>(at).data);
}

void clearField(const TabField& field, char* at) {
    switch (field.kind) {
    case KindRecord:
    case KindUnion:
        for (const TabField& inner : field.fields) clearField(inner, recordData(at) + inner.offset);
        return;
    case KindString: return StringAssignView(reinterpret_cast<StringDescriptor*>(at), {});
    case KindSet: return SetClear(reinterpret_cast<SetDescriptor*>(at));
    case KindArray: {
        const auto array = ReadAt<ArrayDescriptor>(at);
        std::memset(At(array.data), 0, static_cast<std::size_t>(array.size));
        return;
    }
    default: std::memset(at, 0, static_cast<std::size_t>(KindSize[field.kind]));
    }
}

}  // namespace

std::string_view TabCells::text(std::string& scratch) {
    const std::string_view cell = next();
    if (separator_ == NoTabSeparator) return cell;
    if (quoted_) return UnquotedText(cell, scratch);
    return withoutTail(cell.substr(0, cell.find('\0')), " ");
}

// One row on its way into one value.
class TabRowReader::Row {
public:
    Row(std::string_view row, std::int32_t separator, std::string& scratch)
        : cells_(row, separator), scratch_(scratch) {}

    void read(const TabField& field, char* at) {
        if (code_ != 0) return clearField(field, at);
        switch (field.kind) {
        case KindRecord:
        case KindUnion:
            for (const TabField& inner : field.fields) read(inner, recordData(at) + inner.offset);
            return;
        case KindString: return readString(*reinterpret_cast<StringDescriptor*>(at));
        case KindSet: return readSet(field, at);
        case KindArray: return readCharacters(ReadAt<ArrayDescriptor>(at));
        default: return readNumber(field, at);
        }
    }
    [[nodiscard]] std::int32_t code() const { return code_; }

private:
    // What the error cell says of an assignment; a text that was cut stays so.
    void check() {
        if (tarn_error_cell == 0) return;
        code_ = tarn_error_cell == ERR_FIXED_STRING ? std::int32_t{ERR_STRING_CONVERSION} : tarn_error_cell;
        tarn_error_cell = 0;
    }

    void readString(StringDescriptor& s) {
        StringAssignView(&s, cells_.text(scratch_));
        check();
    }

    // An empty cell is zero, a shorter text is filled up with blanks.
    void readCharacters(const ArrayDescriptor& array) {
        const std::string_view characters = cells_.text(scratch_);
        const auto room = static_cast<std::size_t>(array.size);
        const std::size_t count = std::min(room, characters.size());
        std::memset(At(array.data), characters.empty() ? 0 : ' ', room);
        std::memcpy(At(array.data), characters.data(), count);
        if (count < characters.size()) code_ = ERR_STRING_CONVERSION;
    }

    void readNumber(const TabField& field, char* at) {
        cells_.skipBlanks();
        std::string_view cell = cells_.next();
        if (cells_.quoted()) cell = withoutHead(UnquotedText(cell, scratch_));
        cell = withoutTail(cell, spaces);
        const NumberReader& reader = numberReaders[field.kind];
        const bool empty = cell.empty() || isNull(cell);
        if (!empty && reader.read(cell, at)) return;
        clearField(field, at);
        if (!empty) code_ = reader.code;
        tarn_error_cell = 0;  // that a number is too large is told by the code
    }

    // A literal may hold the separator, so it is read where it stands.
    void readSet(const TabField& field, char* at) {
        cells_.skipBlanks();
        std::string_view literal = cells_.rest();
        const bool inPlace = literal.starts_with('[');
        if (!inPlace) literal = cells_.next();
        if (!inPlace && cells_.quoted()) literal = UnquotedText(literal, scratch_);
        if (withoutHead(literal).empty()) return clearField(field, at);

        std::int32_t position = 1, error = 0;
        SetFromText(literal, position, reinterpret_cast<SetDescriptor*>(at), error);
        const bool noMemory = tarn_error_cell == ERR_OUT_OF_MEMORY;
        tarn_error_cell = 0;
        literal.remove_prefix(static_cast<std::size_t>(position) - 1);
        if (inPlace) {
            cells_.advance(static_cast<std::size_t>(position) - 1);
            literal = cells_.nextPlain();
        }
        if (error == 0 && withoutHead(literal).empty()) return;
        clearField(field, at);
        code_ = noMemory ? ERR_OUT_OF_MEMORY : ERR_SET_CONVERSION;
    }

    TabCells cells_;
    std::int32_t code_ = 0;
    std::string& scratch_;
};

std::int32_t TabRowReader::read(std::string_view row, void* value) {
    Row reading(row, separator_, scratch_);
    reading.read(row_, static_cast<char*>(value));
    return reading.code();
}

}  // namespace tarn
