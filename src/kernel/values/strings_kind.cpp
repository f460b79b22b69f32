// SPDX-License-Identifier: Apache-2.0
//
// Strings as values: making, copying, comparing and checking them whole.
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/strings.h"

#include <algorithm>

namespace tarn {

namespace {

const StringDescriptor& stringAt(const void* value) {
    return *static_cast<const StringDescriptor*>(value);
}

bool initString(void* target, const void* like) {
    auto* s = static_cast<StringDescriptor*>(target);
    const std::int32_t maxlength = stringAt(like).maxlength;
    StringInit(s, maxlength);
    if (maxlength == UNBOUNDED || s->data != 0) return true;
    *s = {};
    return false;
}

// What an assignment can fail with shows in its result: the cell may hold an older error.
bool copyString(const void* source, void* target) {
    const StringDescriptor& from = stringAt(source);
    auto* to = static_cast<StringDescriptor*>(target);
    if (KindOf(&from) != KindString || KindOf(to) != KindString) return Refuse(ERR_STRING_TYPE);
    const std::int32_t length = from.length, room = to->maxlength == UNBOUNDED ? length : to->maxlength;
    StringAssign(to, &from);
    return to->length == std::min(length, room);
}

void freeString(void* value) {
    FreeData(*static_cast<StringDescriptor*>(value));
}

bool equalStrings(const void* a, const void* b) {
    return StringCompareOp("EQ", &stringAt(a), &stringAt(b)) != 0;
}

bool sameStringShape(const void* a, const void* b) {
    return stringAt(a).maxlength == stringAt(b).maxlength;
}

std::string checkString(const void* value) {
    const auto s = ReadAt<StringDescriptor>(value);
    const std::int64_t capacity = s.maxlength == UNBOUNDED ? s.length : s.maxlength;
    if (s.length < 0 || s.length > capacity) return "string: length out of range";
    const bool terminated = s.maxlength == UNBOUNDED && s.size == (capacity + 1) * CharacterWidth;
    if (s.size != capacity * CharacterWidth && !(terminated && At(s.data)[s.size - 1] == 0))
        return "string: size is not that of its characters";
    if ((s.size == 0) != (s.data == 0)) return "string: size without data or data without size";
    return {};
}

void emptyString(void* value) {
    auto& s = *static_cast<StringDescriptor*>(value);
    if (s.maxlength == UNBOUNDED) FreeData(s);
    s.length = 0;
}

}  // namespace

const KindOperations StringOperations = {initString,      copyString,  freeString, equalStrings,
                                         sameStringShape, checkString, emptyString};

}  // namespace tarn
