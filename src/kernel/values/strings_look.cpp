// SPDX-License-Identifier: Apache-2.0
//
// Comparing strings, and looking at their characters.
#include "kernel/text/relations.h"
#include "kernel/values/string_access_internal.h"

namespace tarn {

using namespace strings;

namespace {

std::int32_t fold(std::int32_t c) {
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
}

std::int32_t sign(std::int32_t value) {
    return (value > 0) - (value < 0);
}

std::int32_t compare(const Text& a, const Text& b, bool ignoreCase) {
    const std::int32_t common = std::min(a.count, b.count);
    if (a.width == 1 && b.width == 1 && !ignoreCase) {
        const int difference =
            common == 0 ? 0 : std::memcmp(a.bytes, b.bytes, static_cast<std::size_t>(common));
        return difference != 0 ? sign(difference) : sign(a.count - b.count);
    }
    for (std::int32_t i = 0; i < common; ++i) {
        std::int32_t left = characterAt(a, i), right = characterAt(b, i);
        if (ignoreCase) {
            left = fold(left);
            right = fold(right);
        }
        if (left != right) return sign(left - right);
    }
    return sign(a.count - b.count);
}

bool holds(std::string_view op, const Text& a, const Text& b) {
    const std::uint8_t relation = RelationOf(op);
    const bool equality = relation == RelationEqual || relation == RelationDifferent;
    // Texts of other lengths are not equal, whatever stands in them.
    if (equality && a.count != b.count) return relation != RelationEqual;
    return RelationHolds(relation, compare(a, b, false));
}

}  // namespace

void StringCompare(const StringDescriptor* a, const StringDescriptor* b, bool ignoreCase,
                   std::int32_t& result) {
    result = accept(a, b) ? compare(textOf(a), textOf(b), ignoreCase) : 0;
}

std::int32_t strings::CompareOp(std::string_view op, const StringDescriptor* a, const StringDescriptor* b) {
    return accept(a, b) && holds(op, textOf(a), textOf(b)) ? 1 : 0;
}

std::int32_t StringCompareOp(std::string_view op, const StringDescriptor* a, std::string_view b) {
    return accept(a) && holds(op, textOf(a), textOf(b)) ? 1 : 0;
}

std::int32_t StringCompareOp(std::string_view op, std::string_view a, const StringDescriptor* b) {
    return accept(b) && holds(op, textOf(a), textOf(b)) ? 1 : 0;
}

std::int32_t StringCompareOp(std::string_view op, std::string_view a, std::string_view b) {
    return holds(op, textOf(a), textOf(b)) ? 1 : 0;
}

bool StringIsNull(const StringDescriptor* s) {
    using namespace std::string_view_literals;
    return accept(s) && holds("EQ", textOf(s), textOf("\0NULL\0"sv));
}

std::int32_t StringGetChar(const StringDescriptor* s, std::int32_t position) {
    if (!accept(s) || position < 1 || position > s->length) return 0;
    return characterAt(textOf(s), position - 1);
}

void StringPutChar(StringDescriptor* s, std::int32_t position, std::int32_t c) {
    if (!accept(s) || position < 1 || position > s->length) return;
    storeCharacter(At(s->data) + bytesOf(position - 1), c);
}

std::int32_t StringLength(const StringDescriptor* s) {
    return s != nullptr && accept(s) ? s->length : 0;
}

std::int32_t StringMaxLength(const StringDescriptor* s) {
    return s != nullptr && accept(s) ? s->maxlength : 0;
}

std::string_view StringView(const StringDescriptor* s) {
    if (!accept(s) || s->length == 0) return {};
    return {At(s->data), bytesOf(s->length)};
}

}  // namespace tarn
