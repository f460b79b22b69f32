// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/names.h"

#include "os/text/ascii.h"
#include "toolchain/language/words.h"

namespace tarn::toolchain {
namespace {

std::string prefix(const std::string& className) {
    return std::to_string(className.size()) + ascii::lowered(className) + "_";
}

}  // namespace

std::string classSymbol(const std::string& className, std::string_view what) {
    return "c" + prefix(className) + std::string(what);
}

std::string itemSymbol(const Declaration& item) {
    const char* kind = item.kind == DeclarationKind::Function ? "f" : "g";
    return kind + prefix(item.owner->name) + ascii::lowered(item.name);
}

std::string cString(std::string_view bytes) {
    std::string result = "\"";
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (code >= 32 && code < 127 && c != '"' && c != '\\' && c != '?') {
            result += c;
            continue;
        }
        result += '\\';
        for (const int shift : {6, 3, 0}) result += static_cast<char>('0' + ((code >> shift) & 7));
    }
    return result + "\"";
}

}  // namespace tarn::toolchain
