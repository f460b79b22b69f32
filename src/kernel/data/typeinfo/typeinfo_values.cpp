// SPDX-License-Identifier: Apache-2.0
//
// From a declaration to an empty value and back. A block is read to its "end" line, whatever word stands
// behind that, so the indents do not matter. Blocks are read by recursion up to a fixed depth; what lies
// deeper, and tables inside of other values, is passed over as a block of kind 0.
#include "kernel/data/typeinfo/typeinfo_text_internal.h"

#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/string_text.h"

#include <cstring>
#include <iterator>

namespace tarn {

using namespace typeinfo;

namespace {

// ---- reading ----

constexpr std::int32_t lengthOfAny = 1024;

std::int32_t capacityOf(const Line& line) {
    if (ascii::equal(line.typeName, "any")) return lengthOfAny;
    return line.bounds.lb1 == TypeInfoNoValue ? UNBOUNDED : line.bounds.lb1;
}

bool makeString(const Line& line, void* value) {
    auto* s = static_cast<StringDescriptor*>(value);
    StringInit(s, capacityOf(line));
    if (s->data != 0 || s->maxlength == UNBOUNDED) return true;
    *s = {};
    return false;
}

// A set without bounds is a dynamic one; the numbers that stand for that elsewhere are no bounds.
bool makeSet(const Line& line, void* value) {
    auto* s = static_cast<SetDescriptor*>(value);
    const TypeBounds& b = line.bounds;
    const bool dynamic = b.lb1 == TypeInfoNoValue && b.ub1 == TypeInfoNoValue;
    *s = {};
    if (b.lb1 == UNBOUNDED)
        SetError(ERR_SET_BOUNDS);
    else
        SetInit(s, dynamic ? UNBOUNDED : b.lb1, dynamic ? UNBOUNDED : b.ub1);
    return s->tag != 0;
}

bool makeArray(const Line& line, void* value) {
    auto* a = static_cast<ArrayDescriptor*>(value);
    ArrayInit(a, KindEnum, line.bounds.lb1, line.bounds.ub1);
    return a->tag != 0;
}

// A value of a kind that one line declares.
bool makeSimple(const Line& line, Kind kind, void* value) {
    switch (kind) {
    case KindString: return makeString(line, value);
    case KindSet: return makeSet(line, value);
    case KindArray: return makeArray(line, value);
    default: std::memset(value, 0, static_cast<std::size_t>(KindSize[kind])); return true;
    }
}

class ValueReader {
public:
    ValueReader(std::string_view text, std::size_t position)
        : size_(text.size()), rest_(text.substr(std::min(position, text.size()))) {}

    [[nodiscard]] std::size_t position() const { return size_ - rest_.size(); }

    // The kind of the next element, which is built at `value` unless that is null; KindNone when it cannot be
    // made.
    std::int32_t element(void* value) {
        const std::int32_t kind = element(nextLine(), value, 1);
        return failed_ ? std::int32_t{KindNone} : kind;
    }

private:
    Line nextLine() { return readLine(ascii::takeLine(rest_)); }

    std::int32_t element(const Line& line, void* value, std::int32_t depth) {
        if (line.isEnd()) return KindNone;
        if (failed_) value = nullptr;
        const std::int32_t kind = TypeInfoKind(line.typeName);
        if (opensBlock(line)) {
            if (depth >= TooDeep || !IsValueKind(kind)) return skipBlock();
            return kind == KindList ? list(value, depth) : record(value, static_cast<Kind>(kind), depth);
        }
        if (value != nullptr && IsValueKind(kind))
            failed_ = !makeSimple(line, static_cast<Kind>(kind), value);
        return kind;
    }
    std::int32_t skipBlock() {
        for (std::int32_t open = 1; open > 0 && !rest_.empty();) {
            const Line line = nextLine();
            if (line.isEnd())
                --open;
            else if (opensBlock(line))
                ++open;
        }
        return KindNone;
    }

    // Fields are built one behind another and then moved into the block of the record.
    std::int32_t record(void* value, Kind kind, std::int32_t depth) {
        char fields[MaxFields * LargestKind];
        FieldKinds kinds{};
        std::int32_t count = 0;
        char* next = fields;
        while (!rest_.empty()) {
            const Line line = nextLine();
            if (line.isEnd()) break;
            const bool stored = value != nullptr && count < MaxFields;
            const std::int32_t fieldKind = element(line, stored ? next : nullptr, depth + 1);
            if (!stored || failed_ || !IsValueKind(fieldKind)) continue;
            SetFieldKindAt(kinds, ++count, static_cast<Kind>(fieldKind));
            next += KindSize[fieldKind];
        }
        if (value == nullptr) return kind;
        auto* r = static_cast<RecordDescriptor*>(value);
        *r = {};
        if (!failed_) moveFields(*r, kind, kinds, fields, next - fields);
        if (failed_) freeFields(kinds, fields);
        return kind;
    }
    void moveFields(RecordDescriptor& r, Kind kind, const FieldKinds& kinds, const char* fields,
                    std::ptrdiff_t bytes) {
        RecordInit(&r, kind == KindUnion ? TagUnion : TagRecord, kinds);
        failed_ = r.tag == 0;
        if (!failed_ && bytes > 0) std::memcpy(At(r.data), fields, static_cast<std::size_t>(bytes));
    }
    static void freeFields(const FieldKinds& kinds, char* fields) {
        for (std::int32_t n = 1; n <= FieldCountOf(kinds); ++n) {
            const Kind kind = FieldKindAt(kinds, n);
            AdtFree(fields, kind);
            fields += KindSize[kind];
        }
    }

    // The first line declares the element; what else there is before the closing line is passed over.
    std::int32_t list(void* value, std::int32_t depth) {
        char shape[LargestKind] = {};
        std::int32_t kind = KindNone;
        bool first = true;
        while (!rest_.empty()) {
            const Line line = nextLine();
            if (line.isEnd()) break;
            const std::int32_t read = element(line, first && value != nullptr ? shape : nullptr, depth + 1);
            if (first) kind = read;
            first = false;
        }
        if (value == nullptr || !IsValueKind(kind)) return IsValueKind(kind) ? KindList : KindNone;
        auto* l = static_cast<ListDescriptor*>(value);
        const auto elementKind = static_cast<Kind>(kind);
        *l = {};
        if (!failed_) {
            ListInit(l, UNBOUNDED, IsAdtKind(kind) ? shape : nullptr, elementKind, false);
            AdtFree(shape, elementKind);
            failed_ = l->tag == 0;
        }
        return KindList;
    }

    std::size_t size_;
    std::string_view rest_;
    bool failed_ = false;
};

// A value of one kind that a text says, or nothing.
bool buildValue(std::string_view text, Kind kind, void* value) {
    char built[LargestKind] = {};
    std::size_t position = 0;
    const std::int32_t found = TypeInfoToValue(text, position, built);
    if (found == kind) {
        std::memcpy(value, built, static_cast<std::size_t>(KindSize[kind]));
        return true;
    }
    if (IsValueKind(found)) AdtFree(built, static_cast<Kind>(found));
    return false;
}

// ---- printing ----

constexpr std::string_view typeNames[KindCount] = {
    "", "boolean", "enum", "integer", "fixed", "real", "string", "adt", "adt", "set", "adt", "adt", "adt"};
constexpr std::size_t longestName = 40;

// One dimension of enums, with bounds.
bool isCharacters(const void* value) {
    const auto a = ReadAt<ArrayDescriptor>(value);
    return a.tag == KindEnum && a.bounds[0].lower != NO_DIMENSION && a.bounds[1].lower == NO_DIMENSION;
}

TypeBounds boundsOf(const void* value, Kind kind) {
    TypeBounds bounds;
    if (kind == KindString) {
        const std::int32_t capacity = ReadAt<StringDescriptor>(value).maxlength;
        bounds.lb1 = capacity == UNBOUNDED ? TypeInfoNoValue : capacity;
    } else if (kind == KindSet) {
        const auto s = ReadAt<SetDescriptor>(value);
        if (s.maxlength == DYNAMIC_BOUNDS) return bounds;
        bounds.lb1 = s.lower;
        bounds.ub1 = s.upper;
    } else if (kind == KindArray) {
        static_assert(NO_DIMENSION == TypeInfoNoValue);
        const auto a = ReadAt<ArrayDescriptor>(value);
        bounds = {a.bounds[0].lower, a.bounds[0].upper, a.bounds[1].lower,
                  a.bounds[1].upper, a.bounds[2].lower, a.bounds[2].upper};
    }
    return bounds;
}

void printField(const void* value, Kind kind, const std::string& name, std::string& text) {
    const bool characters = kind == KindArray && isCharacters(value);
    const bool bounded = kind == KindString || kind == KindSet || characters;
    text.append(name).append(" : ").append(characters ? "Tchars" : typeNames[kind]);
    if (bounded) text += boundsText(boundsOf(value, kind));
    text += '\n';
}

// ---- matching ----

bool isIdentifier(std::string_view name) {
    return !name.empty() && ascii::isLetter(name.front()) &&
           std::all_of(name.begin(), name.end(), ascii::isSymbol);
}

// What a declared element says of the bounds of its value.
TypeBounds declaredBounds(const Line& line) {
    TypeBounds bounds = line.bounds;
    if (TypeInfoKind(line.typeName) != KindString) return bounds;
    const std::int32_t capacity = capacityOf(line);
    bounds.lb1 = capacity == UNBOUNDED ? TypeInfoNoValue : capacity;
    return bounds;
}

bool matchesField(const Line& line, const void* value, Kind kind) {
    if (line.isEnd() || line.indent != 0 || !isIdentifier(line.name)) return false;
    const std::int32_t declared = TypeInfoKind(line.typeName);
    if (declared != kind && !(declared == KindAnyAdt && IsAdtKind(kind))) return false;
    return declaredBounds(line) == boundsOf(value, kind);
}

// Those behind the last line that says something.
void dropEmptyLines(std::string& text) {
    const std::size_t last = text.find_last_not_of(" \t\r\n");
    const std::size_t end = last == std::string::npos ? last : text.find('\n', last);
    text.resize(end == std::string::npos ? 0 : end + 1);
}

bool isRecord(const void* value) {
    const Kind kind = value != nullptr ? KindOf(value) : KindNone;
    return kind == KindRecord || kind == KindUnion;
}

}  // namespace

namespace typeinfo {

Source sourceOf(std::string_view text) {
    Source source{std::string(text.substr(0, MaxTypeInfo - 1))};
    if (!source.text.empty() && source.text.back() != '\n') source.text += '\n';
    const auto kindOf = [](const Line& line) {
        if (ascii::equal(line.typeName, "list")) return std::int32_t{KindList};
        return ascii::equal(line.typeName, "table") ? std::int32_t{KindTable} : std::int32_t{KindNone};
    };
    dropEmptyLines(source.text);
    const std::int32_t lines = countLines(source.text);
    const Line first = readLine(lineOf(source.text, 1)), last = readLine(lineOf(source.text, lines));
    const bool pair = lines >= 2 && !first.isEnd() && last.isEnd() && kindOf(first) != 0 && kindOf(last) != 0;
    if (!pair) return source;
    source.outer = kindOf(first);
    TypeInfoDeleteLine(source.text, lines);
    TypeInfoDeleteLine(source.text, 1);
    TypeInfoChangeIndent(-1, source.text, INT32_MAX);
    return source;
}

bool takeText(const StringDescriptor* text, std::string& taken) {
    if (KindOf(text) != KindString) {
        SetError(ERR_STRING_TYPE);
        return false;
    }
    taken = NarrowText(text).view().substr(0, MaxTypeInfo);
    return true;
}

bool freeTarget(void* value, Kind kind) {
    constexpr char zero[LargestKind] = {};
    const auto bytes = static_cast<std::size_t>(KindSize[kind]);
    if (value == nullptr) return false;
    if (std::memcmp(value, zero, bytes) == 0) return true;
    if (KindOf(value) != kind) return false;
    AdtFree(value, kind);
    return true;
}

bool buildList(const Source& source, ListDescriptor& value, bool inFile) {
    value = {};
    char element[LargestKind] = {};
    std::size_t position = 0;
    std::int32_t kind = TypeInfoToValue(source.text, position, element);
    if (kind == KindList && !inFile) {
        std::memcpy(&value, element, sizeof value);
        return true;
    }
    if (IsValueKind(kind) && kind != KindList && source.outer != 0)
        ListInit(&value, UNBOUNDED, IsAdtKind(kind) ? element : nullptr, static_cast<Kind>(kind), inFile);
    if (IsValueKind(kind)) AdtFree(element, static_cast<Kind>(kind));
    return value.tag != 0;
}

}  // namespace typeinfo

std::int32_t TypeInfoToValue(std::string_view text, std::size_t& position, void* value) {
    ValueReader reader(text, position);
    const std::int32_t kind = reader.element(value);
    position = reader.position();
    return kind;
}

void TypeInfoToRecord(const StringDescriptor* text, RecordDescriptor* value) {
    std::string taken;
    if (!takeText(text, taken)) return;
    if (!freeTarget(value, KindRecord) || !buildValue(sourceOf(taken).text, KindRecord, value))
        SetError(ERR_RECORD_TYPE);
}

void TypeInfoToList(const StringDescriptor* text, ListDescriptor* value) {
    std::string taken;
    if (!takeText(text, taken)) return;
    if (!freeTarget(value, KindList) || !buildList(sourceOf(taken), *value, false)) SetError(ERR_LIST_TYPE);
}

std::string TypeInfoDefaultName(std::string_view names, std::int32_t number) {
    const std::string_view line = trimmed(ascii::withoutLineEnd(lineOf(names, number)));
    const bool quoted = !line.empty() && line.front() == '"';
    std::string_view name = quoted ? readLine(line).name : std::string_view();
    if (name.size() > longestName) return std::string(name.substr(0, longestName - 1)) + '"';
    if (name.empty()) name = trimmed(line.substr(0, line.find(" : ")));
    if (name.empty()) return "FIELD" + std::to_string(number);
    return std::string(name.substr(0, longestName));
}

std::string TypeInfoFromValue(const void* value, Kind kind, std::string_view names) {
    std::string text;
    if (value == nullptr || !IsValueKind(kind) || (kind > KindUnion && kind != KindArray)) return text;
    if (IsAdtKind(kind) && KindOf(value) != kind) return text;
    if (kind != KindRecord && kind != KindUnion) {
        printField(value, kind, TypeInfoDefaultName(names, 1), text);
        return text;
    }
    const auto* record = static_cast<const RecordDescriptor*>(value);
    for (std::int32_t n = 1; n <= FieldCountOf(record->kinds); ++n)
        printField(RecordFieldAddress(record, n), FieldKindAt(record->kinds, n),
                   TypeInfoDefaultName(names, n), text);
    return text;
}

std::int32_t TypeInfoMatchesValue(std::string_view text, const RecordDescriptor* value) {
    if (text.empty() || text.size() > std::size_t{MaxTypeInfo} || !isRecord(value)) return 1;
    const std::int32_t declared = countLines(text), fields = FieldCountOf(value->kinds);
    const std::int32_t common = std::min(declared, fields);
    for (std::int32_t n = 1; n <= common; ++n)
        if (!matchesField(readLine(ascii::takeLine(text)), RecordFieldAddress(value, n),
                          FieldKindAt(value->kinds, n)))
            return n;
    return declared == fields ? 0 : common + 1;
}

bool TypeInfoIsPath(std::string_view text, std::string_view path) {
    if (path.size() < 2 || path.front() != '/' || path.back() == '/') return false;
    const std::int64_t segments = std::count(path.begin(), path.end(), '/');
    if (countLines(text) < 2 * segments) return false;
    while (!path.empty()) {
        path.remove_prefix(1);
        const std::string_view segment = path.substr(0, path.find('/'));
        path.remove_prefix(segment.size());
        if (segment.empty() || !ascii::equal(readLine(ascii::takeLine(text)).typeName, segment)) return false;
    }
    return true;
}

}  // namespace tarn
