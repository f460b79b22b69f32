// SPDX-License-Identifier: Apache-2.0
//
// Any bytes as a class: parser and checker end, with messages or without; what is free of messages becomes C,
// and a symbol file of whole lines.
#include "toolchain/language/checker.h"
#include "toolchain/language/classes.h"
#include "toolchain/language/parser.h"
#include "toolchain/output/generator.h"
#include "toolchain/output/symfile.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarn::toolchain;
    Messages messages;
    const auto tree =
        parseClass(std::string_view(reinterpret_cast<const char*>(data), size), "fuzz.cls", messages);
    if (!tree->name.empty()) checkClass(*tree, messages);
    const std::string report = messages.report("fuzz.cls");
    if (messages.empty() != (report.find(": 0 errors.") != std::string::npos)) std::abort();
    // Classes that it uses were not read; in a compile that is a message.
    for (const UsedClass& used : tree->uses)
        if (!isBuiltInClass(used.name)) return 0;
    if (!messages.empty()) return 0;
    const Generated made = generateC(*tree, {2, 2});
    const std::string symbols = symbolFile(*tree, "-d2", made.codeLines);
    if (made.text.empty() || symbols.empty() || symbols.back() != '\n') std::abort();
    return 0;
}
