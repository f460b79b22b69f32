// SPDX-License-Identifier: Apache-2.0
// The settings of the debugger: any bytes give values of legal shape, and what was read is the same when it is written and
// read again.
#include "kernel/debug/breakpoints.h"
#include "kernel/debug/debugsettings.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

void require(bool held) {
    if (!held) std::abort();
}

void readValues(std::string_view text) {
    const auto rules = tarn::ParseDebugRules(text);
    require(tarn::ParseDebugRules(tarn::FormatDebugRules(rules)) == rules);
    for (const tarn::DebugRule& rule : rules)
        require(!rule.plain() && !rule.className.empty() && rule.line >= 0);
    const auto codes = tarn::ParseStopCodes(text);
    require(tarn::ParseStopCodes(tarn::FormatStopCodes(codes)) == codes);
    const auto watches = tarn::ParseWatches(text);
    require(tarn::ParseWatches(tarn::FormatWatches(watches)) == watches);
    tarn::DebugRule rule{"A", 1, "", 0, ""};
    if (tarn::ParseRuleParts(text, rule).empty()) {
        tarn::DebugRule again{"A", 1, "", 0, ""};
        require(tarn::ParseRuleParts(tarn::FormatRuleParts(rule), again).empty());
        require(again.condition == rule.condition && again.log == rule.log);
    }
}

void readFile(const std::string& text) {
    static const std::string file = "/tmp/tarnwick-fuzz-debug-" + std::to_string(getpid()) + ".ini";
    static tarn::BreakpointTable table;
    std::FILE* out = std::fopen(file.c_str(), "wb");
    if (out == nullptr) return;
    for (const std::string& part : {std::string("[debug]\nbreakpoints="), text, "\n_Position=" + text})
        std::fwrite(part.data(), 1, part.size(), out);
    std::fclose(out);
    const tarn::DebugSettings settings = tarn::LoadDebugSettings(file, tarn::DebugSection, &table);
    require(table.count >= 0 && table.count <= tarn::MaxBreakpoints);
    for (int i = 0; i < table.count; ++i)
        require(table.entries[i].className[0] != 0 && table.entries[i].line >= 0);
    require(settings.right >= settings.left && settings.bottom >= settings.top && settings.left >= 0);
    std::remove(file.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    readValues(text);
    readFile(text);
    return 0;
}
