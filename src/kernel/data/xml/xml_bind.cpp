// SPDX-License-Identifier: Apache-2.0
//
// Data goes from elements into values. An element of a list in memory is bound where it stands, in a slot
// that was appended empty; elements of a list in a file, rows of tables and elements of arrays are bound
// beside them, for only what is whole can be written, has a key, and only the start tag names the element.
//
// A growable array grows by half of its extent at a time, and loses what is to spare at the end.
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/tables/tables.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarn {

namespace {

constexpr std::string_view insteadOfTags = " expected here, instead of element tags";
constexpr struct {
    Kind kind;
    std::string_view what;
} textKinds[] = {
    {KindBoolean, "True/False"},      {KindEnum, "Enum value"},  {KindInteger, "Integer value"},
    {KindFixed, "Fixed point value"}, {KindReal, "Real number"}, {KindString, "String text"},
    {KindSet, "Set literal"},
};

// What is no integer from its first to its last character reads as 0.
std::int32_t integerOf(std::string_view text) {
    std::int32_t value = 0;
    std::size_t end = 0;
    IntegerFromText(text, value, end);
    return end == text.size() ? value : 0;
}

// ---- texts, by kind; false for a text that is no value of it ----

bool bindBoolean(void* value, std::string_view text) {
    bool read = false, ok = false;
    BooleanFromText(text, read, ok);
    if (ok) WriteAt(value, static_cast<std::uint8_t>(read));
    return ok;
}
bool bindEnum(void* value, std::string_view text) {
    const std::int32_t read = integerOf(text);
    WriteAt(value, static_cast<std::uint8_t>(read >= 0 && read <= 255 ? read : 0));
    return true;
}
bool bindInteger(void* value, std::string_view text) {
    WriteAt(value, integerOf(text));
    return true;
}
bool bindFixed(void* value, std::string_view text) {
    Fixed read = 0;
    bool ok = false;
    FixedFromText(text, read, ok);
    if (ok) WriteAt(value, read);
    return ok;
}
bool bindReal(void* value, std::string_view text) {
    double read = 0;
    bool ok = false;
    RealFromText(text, read, ok);
    if (ok) WriteAt(value, read);
    return ok;
}
bool bindString(void* value, std::string_view text) {
    StringAssignView(static_cast<StringDescriptor*>(value), text);
    return ErrorCell() != ERR_FIXED_STRING;
}
bool bindSet(void* value, std::string_view text) {
    std::int32_t position = 1, error = 0;
    SetFromText(text, position, static_cast<SetDescriptor*>(value), error);
    return error == 0 || ErrorCell() == ERR_OUT_OF_MEMORY;
}

using TextBinder = bool (*)(void*, std::string_view);
constexpr TextBinder textBinders[KindCount] = {nullptr,  bindBoolean, bindEnum, bindInteger, bindFixed,
                                               bindReal, bindString,  nullptr,  nullptr,     bindSet,
                                               nullptr,  nullptr,     nullptr};

// What is wrong with a text that was no value of the target.
std::string complaintOf(XmlTarget target) {
    switch (target.kind) {
    case KindBoolean: return "True/False expected here";
    case KindFixed: return "Fixed point number expected here";
    case KindReal: return "Real number expected here";
    case KindString:
        return "String text is too long, maximum length is " +
               std::to_string(StringMaxLength(static_cast<StringDescriptor*>(target.value))) +
               " character(s)";
    default: break;
    }
    const auto* s = static_cast<SetDescriptor*>(target.value);
    return "Set literal expected here, with values between " + std::to_string(SetLowerBound(s)) + " and " +
           std::to_string(SetUpperBound(s));
}

// ---- bounds ----

bool exists(const ArrayBounds& bounds) {
    return bounds.lower != NO_DIMENSION;
}
std::int32_t extent(const ArrayBounds& bounds) {
    return exists(bounds) ? bounds.upper - bounds.lower + 1 : 1;
}
bool inside(const ArrayBounds& inner, const ArrayBounds& outer) {
    return inner.lower >= outer.lower && inner.upper <= outer.upper;
}
// False for a subscript that no array can have.
bool widen(ArrayBounds& bounds, std::int32_t i) {
    if (i < LowestBound || i > HighestBound) return false;
    bounds = exists(bounds) ? ArrayBounds{std::min<std::int32_t>(bounds.lower, i),
                                          std::max<std::int32_t>(bounds.upper, i)}
                            : ArrayBounds{i, i};
    return true;
}
// With some to spare on the side to which they grew.
ArrayBounds roomier(ArrayBounds bounds, const ArrayBounds& before) {
    const std::int32_t spare = extent(before) / 2;
    if (bounds.upper > before.upper)
        bounds.upper = std::min(bounds.upper + spare, HighestBound);
    else
        bounds.lower = std::max(bounds.lower - spare, LowestBound);
    return bounds;
}
std::string boundsText(const ArrayBounds (&bounds)[MaxDimensions]) {
    std::string text;
    for (const ArrayBounds& b : bounds) {
        if (!exists(b)) break;
        if (!text.empty()) text += ',';
        text += std::to_string(b.lower) + ":" + std::to_string(b.upper);
    }
    return text;
}

bool isGrowable(const ArrayDescriptor& a) {
    return a.maxlength == DYNAMIC_BOUNDS;
}
bool isShapeless(const ArrayDescriptor& a) {
    return !exists(a.bounds[0]);
}

void* elementAt(ArrayDescriptor* a, const std::array<std::int32_t, MaxDimensions>& at,
                std::int32_t dimensions) {
    switch (dimensions) {
    case 1: return ArrayRef(a, at[0]);
    case 2: return ArrayRef2(a, at[0], at[1]);
    default: return ArrayRef3(a, at[0], at[1], at[2]);
    }
}

// Fields that can be emptied where they stand.
bool areTexts(const FieldKinds& kinds) {
    for (std::int32_t n = 1; FieldKindAt(kinds, n) != KindNone; ++n)
        if (FieldKindAt(kinds, n) > KindString) return false;
    return true;
}
// Strings keep their blocks.
void clearTexts(RecordDescriptor& record) {
    XmlFields fields({&record, KindRecord});
    for (XmlTarget field = fields.next(); field.value != nullptr; field = fields.next()) {
        if (field.kind == KindString)
            StringClear(static_cast<StringDescriptor*>(field.value));
        else
            std::memset(field.value, 0, static_cast<std::size_t>(KindSize[field.kind]));
    }
}

bool refuse() {
    SetError(ERR_ARRAY_BOUNDS);
    return false;
}
bool isOutside(std::int32_t code) {
    return code == ERR_ARRAY_BOUNDS || code == ERR_ARRAY_DIMENSION;
}

}  // namespace

void XmlBindText(XmlPass& pass, XmlTarget target, std::string_view text) {
    if (target.kind != KindString) text = XmlTrimmed(text);
    const bool bound = textBinders[target.kind](target.value, text);
    const std::int32_t code = TakeError();
    if (!bound)
        XmlReport(pass, AdtConversionError(target.kind), complaintOf(target));
    else if (code != 0)
        XmlReport(pass, code, ErrorText(code));
}

// ---- destinations ----

XmlChildren::~XmlChildren() {
    if (IsAdtKind(scratchKind_)) AdtFree(bytes_, scratchKind_);
}

bool XmlChildren::makeScratch(const void* like, Kind kind) {
    if (scratchKind_ != KindNone) return true;
    if (!IsValueKind(kind))
        failed_ = AdtTypeError(target_.kind);
    else if (IsAdtKind(kind))
        AdtInit(bytes_, like, kind);
    if (failed_ == 0) failed_ = TakeError();
    if (failed_ != 0) return false;
    scratchKind_ = kind;
    holdsTexts_ = kind == KindRecord && areTexts(reinterpret_cast<RecordDescriptor*>(bytes_)->kinds);
    return true;
}

void XmlChildren::clearScratch() {
    if (!IsAdtKind(scratchKind_))
        std::fill(std::begin(bytes_), std::end(bytes_), '\0');
    else if (holdsTexts_)
        clearTexts(*reinterpret_cast<RecordDescriptor*>(bytes_));
    else
        AdtClear(bytes_, scratchKind_);
}

XmlTarget XmlChildren::listSlot() {
    auto* list = static_cast<ListDescriptor*>(target_.value);
    if (isListInFile())
        return makeScratch(At(list->prototype), ListElementKind(list)) ? scratch() : XmlTarget{};
    void* const slot = ListAppendEmpty(list);
    failed_ = TakeError();
    if (slot == nullptr) return {};
    return {slot, ListElementKind(list)};
}

bool XmlChildren::isListInFile() const {
    return target_.kind == KindList && ListIsInFile(static_cast<const ListDescriptor*>(target_.value));
}

XmlTarget XmlChildren::arrayElement() {
    const auto* array = static_cast<const ArrayDescriptor*>(target_.value);
    return makeScratch(At(array->prototype), static_cast<Kind>(array->tag)) ? scratch() : XmlTarget{};
}

XmlTarget XmlChildren::tableRow() {
    if (scratchKind_ != KindNone) return scratch();
    const ListDescriptor* rows = TableRows(static_cast<TableDescriptor*>(target_.value));
    if (rows == nullptr) failed_ = ERR_TABLE_TYPE;
    return rows != nullptr && makeScratch(At(rows->prototype), KindRecord) ? scratch() : XmlTarget{};
}

XmlTarget XmlChildren::placeInTable() {
    if (form_ == XmlTableForm::RowsInFirst) return std::exchange(given_, true) ? XmlTarget{} : target_;
    const XmlTarget row = tableRow();
    return form_ == XmlTableForm::Values ? XmlFields(row).next() : row;
}

XmlTarget XmlChildren::destination() {
    if (target_.value == nullptr) return {};
    if (target_.hasFields()) return fields_.next();
    if (target_.kind == KindList) return listSlot();
    if (target_.kind == KindArray) return arrayElement();
    if (target_.kind == KindTable) return placeInTable();
    for (const auto& row : textKinds)
        if (row.kind == target_.kind)
            XmlReport(pass_, AdtConversionError(row.kind), std::string(row.what).append(insteadOfTags));
    return {};
}

// ---- elements of arrays ----

// Up to three integers with "," between. False for anything else.
bool XmlChildren::readIndex(std::string_view text, Subscripts& at, std::int32_t& dimensions) const {
    for (dimensions = 0; dimensions < MaxDimensions;) {
        const std::string_view part = XmlTrimmed(text.substr(0, text.find(',')));
        std::size_t end = 0;
        IntegerFromText(part, at[static_cast<std::size_t>(dimensions)], end);
        if (end == 0 || end != part.size()) return false;
        ++dimensions;
        if (text.find(',') == std::string_view::npos) return true;
        text.remove_prefix(text.find(',') + 1);
    }
    return false;
}

// In row-major order; a growable array has any number of rows.
void XmlChildren::nthElement(std::int32_t n, Subscripts& at, std::int32_t& dimensions) const {
    const auto& array = *static_cast<const ArrayDescriptor*>(target_.value);
    const auto& bounds = isGrowable(array) ? used_ : array.bounds;
    if (isShapeless(array)) {
        at[0] = n;
        dimensions = 1;
        return;
    }
    std::int32_t rest = n - 1;
    for (std::size_t d = MaxDimensions; d-- > 1;) {
        at[d] = exists(bounds[d]) ? bounds[d].lower + rest % extent(bounds[d]) : 0;
        rest /= extent(bounds[d]);
        if (exists(bounds[d])) dimensions = std::max(dimensions, static_cast<std::int32_t>(d) + 1);
    }
    dimensions = std::max(dimensions, 1);
    const std::int64_t first = std::int64_t{bounds[0].lower} + rest;
    at[0] = static_cast<std::int32_t>(std::min<std::int64_t>(first, INT32_MAX));
}

bool XmlChildren::redim(const ArrayBounds (&b)[MaxDimensions]) {
    ArrayRedim(static_cast<ArrayDescriptor*>(target_.value), b[0].lower, b[0].upper, b[1].lower, b[1].upper,
               b[2].lower, b[2].upper, true);
    return ErrorCell() == 0;
}

// Makes room for the element in a growable array; the error is in the cell when it cannot be.
bool XmlChildren::extend(const Subscripts& at, std::int32_t dimensions) {
    const auto& array = *static_cast<const ArrayDescriptor*>(target_.value);
    const bool first = isShapeless(array);
    ArrayBounds needed[MaxDimensions], roomy[MaxDimensions];
    bool fits = !first;
    for (std::int32_t d = 0; d < MaxDimensions; ++d) {
        const bool named = d < dimensions;
        needed[d] = first ? ArrayBounds{NO_DIMENSION, NO_DIMENSION} : used_[d];
        if (!first && named != exists(used_[d])) return refuse();
        if (named && !widen(needed[d], at[static_cast<std::size_t>(d)])) return refuse();
        roomy[d] = needed[d];
        if (!first && named && !inside(needed[d], array.bounds[d])) {
            fits = false;
            roomy[d] = roomier(needed[d], used_[d]);
        }
    }
    if (!fits && !redim(roomy)) {
        TakeError();
        if (!redim(needed)) return false;
    }
    std::copy(std::begin(needed), std::end(needed), used_);
    return true;
}

std::int32_t XmlChildren::addToArray(std::int32_t n, std::string_view index) {
    auto* array = static_cast<ArrayDescriptor*>(target_.value);
    Subscripts at{};
    std::int32_t dimensions = 0;
    if (index.empty())
        nthElement(n, at, dimensions);
    else if (!readIndex(index, at, dimensions))
        return ERR_ARRAY_BOUNDS;
    if (isGrowable(*array) && !extend(at, dimensions)) return TakeError();
    char* const element = static_cast<char*>(elementAt(array, at, dimensions));
    // What was there goes with the scratch value.
    if (element != nullptr) std::swap_ranges(element, element + KindSize[scratchKind_], bytes_);
    return TakeError();
}

// ---- adding ----

void XmlChildren::report(std::int32_t code, std::int32_t n, std::string_view parent, std::string_view child) {
    std::string message = ErrorText(code);
    const auto filledUp = [](std::string_view what, std::int32_t count) {
        return std::string(what) + " filled up after " + std::to_string(count) + " element(s)";
    };
    if (target_.kind == KindList && code == ERR_FIXED_LIST) {
        message = filledUp("List", static_cast<ListDescriptor*>(target_.value)->count);
    } else if (target_.kind == KindTable && code == ERR_FIXED_TABLE) {
        message = filledUp("Table", TableCount(static_cast<TableDescriptor*>(target_.value)));
    } else if (target_.kind == KindTable && code == ERR_DUPLICATE_FIELDS) {
        message = "Cannot add record, field(s) are not unique.";
    } else if (target_.kind == KindArray && isOutside(code)) {
        const auto& array = *static_cast<const ArrayDescriptor*>(target_.value);
        const bool used = isGrowable(array) && !isShapeless(array);
        code = ERR_ARRAY_BOUNDS;
        message = "XML element (number " + std::to_string(n) + ") " + std::string(child) +
                  " caused a bounds error in the following array: " + std::string(parent) + "[" +
                  boundsText(used ? used_ : array.bounds) + "]";
    }
    XmlReport(pass_, code, message);
}

void XmlChildren::add(std::int32_t n, std::string_view parent, std::string_view child,
                      std::string_view index) {
    std::int32_t code = std::exchange(failed_, 0);
    if (code == 0 && scratchKind_ != KindNone) {
        if (target_.kind == KindArray) {
            code = addToArray(n, index);
        } else if (target_.kind == KindList) {
            ListAppend(bytes_, scratchKind_, static_cast<ListDescriptor*>(target_.value));
            code = TakeError();
        } else {
            auto* table = static_cast<TableDescriptor*>(target_.value);
            TableAdd(table, std::min(TableIndexCount(table), 1), reinterpret_cast<RecordDescriptor*>(bytes_));
            code = TakeError();
        }
        clearScratch();
        if (code == 0) code = TakeError();
    }
    if (code != 0) report(code, n, parent, child);
}

void XmlChildren::finish() {
    if (target_.value == nullptr || target_.kind != KindArray) return;
    const auto& array = *static_cast<const ArrayDescriptor*>(target_.value);
    if (!isGrowable(array) || isShapeless(array)) return;
    for (std::size_t d = 0; d < MaxDimensions; ++d) {
        if (!exists(used_[d]) || inside(array.bounds[d], used_[d])) continue;
        redim(used_);
        break;
    }
    const std::int32_t code = TakeError();
    if (code != 0) XmlReport(pass_, code, ErrorText(code));
}

}  // namespace tarn
