// SPDX-License-Identifier: Apache-2.0
//
// Blocks of type information text as wholes.
#include "kernel/data/typeinfo/typeinfo_text_internal.h"

namespace tarn {

using namespace typeinfo;

namespace {

// The line of a block that closes it, when that is the last one; otherwise 0.
std::int32_t closingLine(std::string_view text) {
    const auto lines = static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n'));
    const std::int32_t indent = TypeInfoIndent(text, 1);
    for (std::int32_t n = 2; n <= lines; ++n) {
        const TypeInfoElement element = TypeInfoParseLine(text, n);
        if (element.indent <= indent) return n == lines && element.isEnd() ? n : 0;
    }
    return 0;
}

bool isListOrTable(std::string_view typeName) {
    return ascii::equal(typeName, "list") || ascii::equal(typeName, "table");
}
bool isRecord(std::string_view typeName) {
    return ascii::equal(typeName, "record");
}

void stripPair(std::string& text, std::int32_t size, bool opens(std::string_view)) {
    const std::int32_t last = opens(TypeInfoParseLine(text, 1).typeName) ? closingLine(text) : 0;
    if (last == 0 || !opens(TypeInfoParseLine(text, last).typeName)) return;
    TypeInfoDeleteLine(text, last);
    TypeInfoDeleteLine(text, 1);
    TypeInfoChangeIndent(-1, text, size);
}

}  // namespace

bool TypeInfoIsNested(const TypeInfoElement& element) {
    const std::string& type = element.typeName;
    return isRecord(type) || ascii::equal(type, "union") || isListOrTable(type);
}

void TypeInfoStripOuter(std::string& text, std::int32_t size) {
    stripPair(text, size, isListOrTable);
    stripPair(text, size, isRecord);
    const auto most = static_cast<std::size_t>(std::max(size, 1)) - 1;
    if (text.size() > most) text.resize(most);
}

}  // namespace tarn
