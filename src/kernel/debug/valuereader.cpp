// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/valuereader_internal.h"

#include "kernel/data/elements.h"
#include "kernel/debug/exactnumbers.h"
#include "kernel/debug/fieldnames.h"
#include "kernel/debug/setfaults.h"
#include "kernel/debug/valueelements_internal.h"
#include "kernel/debug/valuetext.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errorcell.h"
#include "kernel/tables/tables.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/arrays.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>

namespace tarn {

namespace {

// The element of a value in memory that stands at `index`, or null.
const void* elementOf(const void* value, Kind kind, std::int32_t index) {
    if (value == nullptr || IsZeroValue(value, kind)) return nullptr;
    ValueElements all(value, kind);
    return index < all.count() ? all.at(index) : nullptr;
}

// A text in quotes can be its characters. A dynamic array that is read has no bounds yet.
bool takesCharacters(const void* into, const void* old, Kind kind) {
    if (kind != KindArray || ReadAt<ArrayDescriptor>(into).tag != KindEnum) return false;
    const std::int32_t dimensions = DimensionCount(ReadAt<ArrayDescriptor>(into));
    const bool isNew =
        dimensions == 0 && (old == nullptr || DimensionCount(ReadAt<ArrayDescriptor>(old)) <= 1);
    return dimensions == 1 || isNew;
}

bool isInFile(const void* value) {
    return ReadAt<DescriptorHead>(value).tag > TagInFile;
}

}  // namespace

// ---- the text ----

void ValueReader::skipBlanks() {
    while (!atEnd() && ascii::isSpace(text_[at_])) ++at_;
}

bool ValueReader::take(char expected) {
    if (atEnd() || text_[at_] != expected) return false;
    ++at_;
    return true;
}

template <class Belongs>
std::string_view ValueReader::run(Belongs belongs) const {
    std::size_t end = at_;
    while (end < text_.size() && belongs(text_[end])) ++end;
    return text_.substr(at_, end - at_);
}

// Within the quotes; the text is behind the closing one then.
bool ValueReader::quoted(std::string& bytes) {
    if (!take('"')) return false;
    while (!atEnd()) {
        const auto plain = run([](char c) { return c != '"' && c != '\\'; });
        bytes.append(plain);
        at_ += plain.size();
        if (take('"')) {
            if (!take('"')) return true;
            bytes += '"';
        } else if (!atEnd() && !escaped(bytes)) {
            return false;
        }
    }
    return false;
}

// At a backslash, where the text stays if what follows means nothing.
bool ValueReader::escaped(std::string& bytes) {
    constexpr struct {
        char letter, byte;
    } letters[] = {{'t', '\t'}, {'n', '\n'}, {'r', '\r'}, {'\\', '\\'}, {'"', '"'}};
    const std::string_view rest = text_.substr(at_ + 1);
    for (const auto& entry : letters) {
        if (!rest.starts_with(entry.letter)) continue;
        bytes += entry.byte;
        at_ += 2;
        return true;
    }
    constexpr std::size_t length = 4, base = 16;
    if (!rest.starts_with('x') || rest.size() < length - 1) return false;
    const int high = ascii::hexDigit(rest[1]), low = ascii::hexDigit(rest[2]);
    if (high < 0 || low < 0) return false;
    bytes += static_cast<char>(static_cast<std::size_t>(high) * base + static_cast<std::size_t>(low));
    at_ += length;
    return true;
}

// ---- single values ----

bool ValueReader::boolean(void* into) {
    const std::string_view word = run(ascii::isLetter);
    bool value = false, ok = false;
    BooleanFromText(word, value, ok);
    if (!ok) return false;
    WriteAt<std::uint8_t>(into, value ? 1 : 0);
    at_ += word.size();
    return true;
}

bool ValueReader::integer(std::int32_t& number) {
    const std::string_view rest = text_.substr(at_);
    std::size_t length = 0;
    if (rest.starts_with("0x") || rest.starts_with("0X")) {
        std::uint32_t bits = 0;
        const auto end = std::from_chars(rest.data() + 2, rest.data() + rest.size(), bits, 16);
        if (end.ec != std::errc()) return false;
        number = static_cast<std::int32_t>(bits);
        length = static_cast<std::size_t>(end.ptr - rest.data());
    } else {
        IntegerFromText(rest, number, length);
    }
    at_ += length;
    return length != 0;
}

bool ValueReader::ordinal(void* into, std::string_view names) {
    const std::size_t start = at_;
    highest_ = HighestOrdinal(names);
    std::int32_t number = 0;
    if (integer(number) && number >= 0 && number <= highest_) {
        WriteAt(into, static_cast<std::uint8_t>(number));
        return true;
    }
    at_ = start;
    return false;
}

bool ValueReader::fixed(void* into) {
    const std::string_view word =
        run([](char c) { return ascii::isDigit(c) || c == '+' || c == '-' || c == '.'; });
    Fixed number = 0;
    bool ok = false;
    FixedFromText(word, number, ok);
    if (!ok) return false;
    if (exact_ && !KeptByFixed(word)) kept_ = ValueText(&number, KindFixed, 0);
    if (!kept_.empty()) return false;
    WriteAt(into, number);
    at_ += word.size();
    return true;
}

bool ValueReader::real(void* into) {
    const std::string_view word =
        run([](char c) { return ascii::isSymbol(c) || c == '+' || c == '-' || c == '.'; });
    double number = 0;
    bool ok = false;
    RealFromText(word, number, ok);
    if (!ok) return false;
    if (exact_ && !KeptByReal(word, number)) kept_ = ValueText(&number, KindReal, 0);
    if (!kept_.empty()) return false;
    WriteAt(into, number);
    at_ += word.size();
    return true;
}

bool ValueReader::string(StringDescriptor* into) {
    const std::size_t start = at_;
    std::string bytes;
    if (!quoted(bytes)) return false;
    const bool fits =
        into->maxlength == UNBOUNDED || bytes.size() <= static_cast<std::size_t>(into->maxlength);
    if (fits) StringAssignView(into, bytes);
    if (fits && OwnErrors::code() == 0) return true;
    if (!fits) capacity_ = into->maxlength;
    at_ = start;
    return false;
}

// Leaves the text at what is wrong.
bool ValueReader::isFaultless(const SetDescriptor& set) {
    const bool bounded = set.maxlength != DYNAMIC_BOUNDS;
    const auto fault = FaultOfSet(text_, at_, bounded ? std::int32_t{set.lower} : LowestBound,
                                  bounded ? std::int32_t{set.upper} : HighestBound);
    if (!fault) return true;
    at_ = fault->at;
    why_ = fault->why;
    return false;
}

bool ValueReader::set(SetDescriptor* into) {
    const std::size_t start = at_;
    auto position = static_cast<std::int32_t>(at_ + 1);
    std::int32_t error = 0;
    if (exact_ && !isFaultless(*into)) return false;
    SetFromText(text_, position, into, error);
    constexpr std::int32_t syntaxError = 1;
    at_ = error == 0 || error == syntaxError ? static_cast<std::size_t>(position) - 1 : start;
    return error == 0;
}

// The innermost value that does not fit is the first that says so.
bool ValueReader::value(void* into, const FormerValue& old, Kind kind) {
    const bool read = valueOf(into, old, kind);
    if (!read && wanted_ == KindNone) wanted_ = kind;
    return read;
}

bool ValueReader::valueOf(void* into, const FormerValue& old, Kind kind) {
    switch (kind) {
    case KindBoolean: return boolean(into);
    case KindEnum: return ordinal(into, old.names);
    case KindInteger: {
        std::int32_t number = 0;
        if (!integer(number)) return false;
        WriteAt(into, number);
        return true;
    }
    case KindFixed: return fixed(into);
    case KindReal: return real(into);
    case KindString: return string(static_cast<StringDescriptor*>(into));
    case KindSet: return set(static_cast<SetDescriptor*>(into));
    default: break;
    }
    if (next() == '"' && takesCharacters(into, old.value, kind))
        return characters(static_cast<ArrayDescriptor*>(into), old.value);
    return take('{') && composite(into, old, kind, true);
}

bool ValueReader::outermost(void* into, const FormerValue& old, Kind kind) {
    skipBlanks();
    if (atEnd() || next() == '}') return false;
    const bool bare = !exact_ && IsComposite(kind) && next() != '{' &&
                      !(next() == '"' && takesCharacters(into, old.value, kind));
    return bare ? composite(into, old, kind, false) : value(into, old, kind);
}

bool ValueReader::ends() {
    skipBlanks();
    return atEnd();
}

// ---- composites ----

template <class Read>
bool ValueReader::elements(bool braced, Read read) {
    skipBlanks();
    if (braced && take('}')) return true;
    for (std::int32_t i = 0;; ++i) {
        skipBlanks();
        if (!read(i)) return false;
        const std::size_t behind = at_;
        skipBlanks();
        if (take(',')) continue;
        if (!braced) at_ = behind;
        return !braced || take('}');
    }
}

bool ValueReader::element(void* into, const FormerValue& old, Kind kind) {
    const bool isEmpty = atEnd() || next() == ',' || next() == '}';
    return isEmpty || value(into, old, kind);
}

bool ValueReader::composite(void* into, const FormerValue& old, Kind kind, bool braced) {
    // Without a shape it has no elements.
    if (IsZeroValue(into, kind)) return elements(braced, [](std::int32_t) { return false; });
    switch (kind) {
    case KindRecord:
    case KindUnion: return record(static_cast<RecordDescriptor*>(into), old, braced);
    case KindArray: return array(static_cast<ArrayDescriptor*>(into), old, braced);
    case KindList: return list(static_cast<ListDescriptor*>(into), old, braced);
    default: return table(static_cast<TableDescriptor*>(into), old, braced);
    }
}

bool ValueReader::record(RecordDescriptor* into, const FormerValue& old, bool braced) {
    const auto kind = into->tag == TagUnion ? KindUnion : KindRecord;
    char* field = At(into->data);
    std::int32_t count = 0;
    const bool all = elements(braced, [&](std::int32_t i) {
        count = i + 1;
        const Kind fieldKind = FieldKindAt(into->kinds, i + 1);
        if (fieldKind == KindNone) return false;
        char* const at = field;
        field += KindSize[fieldKind];
        return element(at, {elementOf(old.value, kind, i), FieldNamesAt(old.names, i + 1)}, fieldKind);
    });
    return all && isComplete(count, FieldCountOf(into->kinds), "fields");
}

// How many elements stand up to the brace that closes, or up to the end. Each is no longer than the text, so that a
// text that does not fit is found out by reading it.
std::int64_t ValueReader::countElements(bool braced) const {
    std::int64_t count = 0;
    std::int32_t depth = 0;
    bool inText = false, any = !braced;
    for (std::size_t i = at_; i < text_.size(); ++i) {
        const char c = text_[i];
        any = any || !(ascii::isSpace(c) || c == '}');
        if (inText && c == '\\') ++i;
        if (c == '"') inText = !inText;
        if (inText || c == '"') continue;
        if (c == '{' || c == '[') ++depth;
        if ((c == '}' || c == ']') && --depth < 0) break;
        if (c == ',' && depth == 0) ++count;
    }
    return any ? count + 1 : 0;
}

bool ValueReader::isComplete(std::int32_t read, std::int32_t count, std::string_view elements) {
    if (!exact_ || read == 0 || read == count) return true;
    --at_;
    why_ = "there are " + std::to_string(read) + " of " + std::to_string(count) + ' ' +
           std::string(elements) +
           ": write all, or nothing between the commas for those that become 0 or empty";
    return false;
}

// For a dynamic array. One of more dimensions has the bounds that it had, and so has one whose text is empty.
bool ValueReader::giveBounds(ArrayDescriptor& array, const void* old, std::int64_t count) {
    const ArrayDescriptor before =
        old != nullptr && !IsZeroValue(old, KindArray) ? ReadAt<ArrayDescriptor>(old) : array;
    const std::int32_t dimensions = DimensionCount(before);
    if (dimensions > 1 || (dimensions == 1 && count == 0)) {
        const ArrayBounds one = before.bounds[0], two = before.bounds[1], three = before.bounds[2];
        ArrayRedim(&array, one.lower, one.upper, two.lower, two.upper, three.lower, three.upper, false);
    } else if (count > 0) {
        const std::int64_t lower = dimensions == 1 ? std::int32_t{before.bounds[0].lower} : 1;
        if (lower + count - 1 > HighestBound) return false;
        ArrayRedim(&array, static_cast<std::int32_t>(lower), static_cast<std::int32_t>(lower + count - 1),
                   false);
    }
    return OwnErrors::code() == 0;
}

bool ValueReader::array(ArrayDescriptor* into, const FormerValue& old, bool braced) {
    const std::int64_t given = into->maxlength == DYNAMIC_BOUNDS ? countElements(braced) : 0;
    if (given > 0 && !giveBounds(*into, old.value, given)) return false;
    const auto kind = static_cast<Kind>(into->tag);
    const std::int32_t count = kind == KindNone ? 0 : into->size / KindSize[kind];
    std::int32_t read = 0;
    const bool all = elements(braced, [&](std::int32_t i) {
        read = i + 1;
        char* const at = At(into->data) + std::int64_t{i} * KindSize[kind];
        const void* const before = IsAdtKind(kind) ? elementOf(old.value, KindArray, i) : nullptr;
        return i < count && element(at, {before, ElementNames(old.names)}, kind);
    });
    return all && isComplete(read, count, "elements");
}

bool ValueReader::characters(ArrayDescriptor* into, const void* old) {
    const std::size_t start = at_;
    std::string bytes;
    if (!quoted(bytes)) return false;
    const bool bounded =
        into->maxlength != DYNAMIC_BOUNDS || giveBounds(*into, old, static_cast<std::int64_t>(bytes.size()));
    if (bounded && bytes.size() <= static_cast<std::size_t>(into->size)) {
        std::copy(bytes.begin(), bytes.end(), At(into->data));
        return true;
    }
    at_ = start;
    return false;
}

bool ValueReader::list(ListDescriptor* into, const FormerValue& old, bool braced) {
    ElementSink sink(*into);
    const bool hasOld = old.value != nullptr && !isInFile(old.value);
    return elements(braced, [&](std::int32_t i) {
        const Kind kind = ListElementKind(into);
        void* const at = kind != KindNone ? sink.next() : nullptr;
        const void* const before = hasOld && IsAdtKind(kind) ? elementOf(old.value, KindList, i) : nullptr;
        return at != nullptr && element(at, {before, ElementNames(old.names)}, kind) && sink.add();
    });
}

bool ValueReader::table(TableDescriptor* into, const FormerValue& old, bool braced) {
    RecordValue row;
    AdtInit(row.get(), At(TableRows(into)->prototype), KindRecord);
    const std::int32_t index = TableIndexCount(into) > 0 ? 1 : 0;
    return elements(braced, [&](std::int32_t) {
        const std::size_t start = at_;
        AdtClear(row.get(), KindRecord);
        if (!element(row.get(), {nullptr, ElementNames(old.names)}, KindRecord)) return false;
        TableAdd(into, index, row.get());
        if (OwnErrors::code() == 0) return true;
        at_ = start;
        return false;
    });
}

}  // namespace tarn
