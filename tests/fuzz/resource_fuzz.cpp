// SPDX-License-Identifier: Apache-2.0
// Resource text and compiled resources: any bytes are told as a fault or are read, and what was read and is
// written unchanged changes no byte.
#include "platform/resources/rctext.h"
#include "platform/resources/rcx.h"
#include "platform/resources/resource.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

using namespace tarn::platform;

std::string readAll(const std::string& file) {
    std::string text;
    std::FILE* const in = std::fopen(file.c_str(), "rb");
    for (int c = in == nullptr ? EOF : std::fgetc(in); c != EOF; c = std::fgetc(in))
        text += static_cast<char>(c);
    if (in != nullptr) std::fclose(in);
    return text;
}

void expect(bool holds) {
    if (!holds) std::abort();
}

void rewrite(const std::string& file, const std::string& name, const std::string& text) {
    ObjectArray objects{}, again{};
    if (!ResourceRead(file, name, objects).empty() || !ResourceWrite(objects, {}, file).empty()) return;
    expect(readAll(file) == text);
    // Written afresh and read again, every property is the same.
    const std::string copy = file + ".copy";
    std::remove(copy.c_str());
    if (ResourceWrite(objects, {}, copy).empty()) {
        expect(ResourceRead(copy, name, again).empty());
        expect(again == objects);
    }
    std::remove(copy.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string file = "/tmp/tarnwick-fuzz-" + std::to_string(getpid()) + ".rc";
    const std::string text(reinterpret_cast<const char*>(data), size);
    CompiledResources damaged;
    static_cast<void>(damaged.open(text));
    const RcFile parsed = parseResourceText(text);
    if (!parsed.fault.empty()) return 0;
    std::FILE* const out = std::fopen(file.c_str(), "wb");
    if (out == nullptr) return 0;
    std::fwrite(text.data(), 1, text.size(), out);
    std::fclose(out);
    static_cast<void>(ResourceInfo(file, "*", "*"));
    int windows = 0;
    for (const RcStatement& statement : parsed.statements) {
        if (statement.kind != RcKind::Window || ++windows > 3) continue;
        WindowTemplate made, decoded;
        if (makeTemplate(parsed, statement.name, made).empty()) {
            CompiledResources compiled;
            expect(compiled.open(encodeResources({{"DIALOG", statement.name, "", encodeWindow(made)}}, {}))
                       .empty());
            expect(compiled.window(statement.name, decoded));
            expect(encodeWindow(decoded) == encodeWindow(made));
        }
        rewrite(file, statement.name, text);
    }
    std::remove(file.c_str());
    return 0;
}
