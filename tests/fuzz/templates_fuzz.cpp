// SPDX-License-Identifier: Apache-2.0
// Templates: the first line is the value of all parameters, the rest a template. Lists of parameters have a line for each
// name; what comes out ends its lines as it was asked for, and stays below the limit.
#include "kernel/run/runtime.h"
#include "library/source/codewiz.h"
#include "library/system/system.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace tarn;

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void checkLists(const TemplateParameters& list) {
    const int count = STRLINES(list.names);
    require(STRLINES(list.types) == count && STRLINES(list.values) == count);
    for (int i = 1; i <= count; ++i) {
        const std::string name = STRLINE(list.names, i);
        require(!name.empty() && name.find('$') == std::string::npos && !STRLINE(list.types, i).empty());
    }
}

void checkText(const TemplateParameters& list, const std::string& text) {
    const TemplateText plain = UPDATETEMPLATE(list, text, false), pairs = UPDATETEMPLATE(list, text, true);
    require(plain.text.size() < MaxTemplateText && pairs.text.size() < MaxTemplateText);
    require(plain.message.empty() || plain.text.empty());
    for (std::size_t at = pairs.text.find('\n'); at != std::string::npos; at = pairs.text.find('\n', at + 1))
        require(at > 0 && pairs.text[at - 1] == '\r');
}

void checkLine(const std::string& line) {
    const ForLoop loop = PARSEFORLOOP(line);
    require((loop.from == -1) == (loop.to == -1) && loop.from >= -1);
    require(loop.from == -1 || loop.variable.size() > 2);
    for (std::size_t position = 1; position <= line.size();) {
        const std::size_t before = position;
        const bool ignored = PARSERELEXP(line, position);
        static_cast<void>(ignored);
        require(position > before);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string value = text.substr(0, end);
    text.erase(0, end + 1);
    TemplateParameters list = TEMPLATETOPROPLIST(text);
    checkLists(list);
    checkText(list, text);
    list.values.clear();
    for (int i = STRLINES(list.names); i > 0; --i) list.values += value + "\n";
    checkText(list, text);
    static_cast<void>(FUNCTIONFROMTEMPLATE(value, text));
    checkLine(value);
    require(ErrorCell() == 0);
    return 0;
}
