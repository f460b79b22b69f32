// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/names.h"

#include "os/text/ascii.h"
#include "toolchain/language/words.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace tarn::toolchain {
namespace {

std::string prefix(const std::string& className) {
    return std::to_string(className.size()) + ascii::lowered(className) + "_";
}

struct CNames {
    const char* variable;
    const char* place;
    char letter;  // in the names of functions
};
constexpr auto Names = std::to_array<CNames>({
    {"void", "void", 'v'},
    {"uint8_t", "quarn_u8", 'b'},
    {"uint8_t", "quarn_u8", 'e'},
    {"int32_t", "quarn_i32", 'i'},
    {"int64_t", "quarn_i64", 'f'},
    {"double", "quarn_f64", 'r'},
    {"tarn_string", "tarn_string", 's'},
    {"tarn_record", "tarn_record", 'R'},
    {"tarn_record", "tarn_record", 'U'},
    {"tarn_set", "tarn_set", 'S'},
    {"tarn_array", "tarn_array", 'A'},
    {"tarn_list", "tarn_list", 'L'},
    {"tarn_table", "tarn_table", 'T'},
    {"void", "void", 'x'},
});

const CNames& namesOf(Kind kind) {
    return Names[static_cast<std::size_t>(kind)];
}

}  // namespace

std::string classSymbol(const std::string& className, std::string_view what) {
    return "c" + prefix(className) + std::string(what);
}

std::string itemSymbol(const Declaration& item) {
    const bool isFunction = item.kind == DeclarationKind::Function;
    std::string symbol = (isFunction ? "f" : "g") + prefix(item.owner->name) + ascii::lowered(item.name);
    if (!isFunction || item.function->parameters.empty()) return symbol;
    symbol += "__";
    for (const auto& parameter : item.function->parameters) symbol += namesOf(parameter->type->kind).letter;
    return symbol;
}

std::string localSymbol(const Declaration& item) {
    return "v_" + ascii::lowered(item.name);
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

std::string cType(Kind kind) {
    return namesOf(kind).variable;
}

std::string cPlace(Kind kind) {
    return namesOf(kind).place;
}

std::string cKind(Kind kind) {
    return std::to_string(static_cast<int>(kind));
}

std::string cNumber(const Value& value) {
    if (value.kind == Kind::Real) {
        char text[40];
        std::snprintf(text, sizeof text, "%a", value.real);  // exact, in C as here
        if (std::isinf(value.real)) return value.real < 0 ? "(-1e999)" : "1e999";
        return value.real < 0 ? "(" + std::string(text) + ")" : text;
    }
    if (value.kind == Kind::Fixed) {
        if (value.number == INT64_MIN) return "(-9223372036854775807LL - 1)";
        const std::string text = std::to_string(value.number) + "LL";
        return value.number < 0 ? "(" + text + ")" : text;
    }
    if (value.number == INT32_MIN) return "(-2147483647 - 1)";
    return value.number < 0 ? "(" + std::to_string(value.number) + ")" : std::to_string(value.number);
}

}  // namespace tarn::toolchain
