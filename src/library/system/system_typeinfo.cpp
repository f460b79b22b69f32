// SPDX-License-Identifier: Apache-2.0
//
// Names from elsewhere made into identifiers: of columns of foreign data, in type information text, before
// they reach generated code.
#include "library/system/words.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/owned.h"
#include "kernel/values/string_text.h"
#include "os/text/ascii.h"

#include <utility>

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

std::string joined(const ListDescriptor* lines) {
    std::string text;
    String line;
    for (std::int32_t n = 1; n <= ListCount(lines); ++n) {
        const void* element = ListIsInFile(lines) ? nullptr : ListRef(lines, n);
        if (element == nullptr) ListGet(lines, n, line.get(), KindString);
        if (element == nullptr) element = line.get();
        text.append(NarrowText(static_cast<const StringDescriptor*>(element)).view()) += '\n';
    }
    return text;
}

// Calls `put` with each line as a string of its own, until it gives false or a line cannot be made.
template <class Put>
bool eachLine(std::string_view rest, Put put) {
    while (!rest.empty()) {
        std::string_view body = ascii::takeLine(rest);
        if (body.back() == '\n') body.remove_suffix(1);
        const String line(body);
        if (line.length() < static_cast<std::int32_t>(body.size()) || !put(line)) return false;
    }
    return true;
}

bool append(const String& line, ListDescriptor* lines) {
    const std::int32_t before = ListCount(lines);
    ListAppend(line.get(), KindString, lines);
    return ListCount(lines) > before;
}

// The lines go into a list of the same shape, which then takes the place of the old one: a list that cannot
// hold them stays as it was. A line that is cut (615) is no reason for that.
void replaceLines(std::string_view text, ListDescriptor* lines) {
    ListValue fresh;
    ListInit(fresh.get(), lines->maxlength, ListRef(lines, 1), KindString, false);
    if (eachLine(text, [&](const String& line) { return append(line, fresh.get()); }))
        std::swap(*lines, *fresh.get());
}

// In a file: what makes the list longer comes first, and goes again when it does not fit.
void putLines(std::string_view text, ListDescriptor* lines) {
    const std::int32_t before = ListCount(lines);
    std::int32_t number = 0;
    const bool fits =
        eachLine(text, [&](const String& line) { return ++number <= before || append(line, lines); });
    for (std::int32_t n = ListCount(lines); !fits && n > before; --n) ListRemoveLast(lines);
    if (!fits) return;
    number = 0;
    const bool all = eachLine(text, [&](const String& line) {
        if (++number <= before) ListPut(line.get(), KindString, number, lines);
        return ErrorCell() == 0 || ErrorCell() == ERR_FIXED_STRING;
    });
    for (std::int32_t n = before; all && n > number; --n) ListRemoveLast(lines);
}

}  // namespace

std::string STRTOIDENTIFIER(std::string_view text, int maxLength, std::string_view replacement) {
    return TypeInfoIdentifier(text, maxLength, replacement);
}

std::string STRTOIDENTIFIER(std::string_view text, std::string_view firstSet, std::string_view replacement) {
    return TypeInfoIdentifier(text, firstSet, replacement);
}

std::string TYPEINFOFIXIDENTIFIERS(std::string_view text, int maxLength, bool dropDeleteFlag) {
    return TypeInfoFixNames(text, maxLength, dropDeleteFlag);
}

std::string TYPEINFOFIXIDENTIFIERS(std::string_view text, std::string_view replacement) {
    return TypeInfoFixNames(text, replacement);
}

void TYPEINFOFIXIDENTIFIERS(StringDescriptor* text, int maxLength, bool dropDeleteFlag) {
    FRAME(TYPEINFOFIXIDENTIFIERS);
    STAMP();
    if (KindOf(text) != KindString) return SetError(ERR_STRING_TYPE);
    const std::string repaired = TypeInfoFixNames(NarrowText(text).view(), maxLength, dropDeleteFlag);
    if (text->maxlength != UNBOUNDED) return StringAssignView(text, repaired);
    String fresh{std::string_view(repaired)};
    if (fresh.length() == static_cast<std::int32_t>(repaired.size())) std::swap(*text, *fresh.get());
}

void TYPEINFOFIXIDENTIFIERS(ListDescriptor* lines, int maxLength, bool dropDeleteFlag) {
    FRAME(TYPEINFOFIXIDENTIFIERS);
    STAMP();
    if (KindOf(lines) != KindList) return SetError(ERR_LIST_TYPE);
    const Kind kind = ListElementKind(lines);
    if (kind != KindString && kind != KindNone) return SetError(ERR_LIST_TYPE);
    const std::string text = joined(lines);
    // What could not be read must not be written back.
    if (ErrorCell() != 0 || text.empty()) return;
    const std::string repaired = TypeInfoFixNames(text, maxLength, dropDeleteFlag);
    if (ListIsInFile(lines))
        putLines(repaired, lines);
    else
        replaceLines(repaired, lines);
}

}  // namespace tarn
