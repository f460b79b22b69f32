// SPDX-License-Identifier: Apache-2.0
//
// The heads of the windowing operations and of the library's functions in class text, made from their lists in
// kernel/windows/operations.h and library/system/functions.h. An argument has the name that it has there; where the language keeps that word it gets a "the" in front.
#include "kernel/text/words.h"
#include "kernel/values/values.h"
#include "kernel/windows/operations.h"
#include "library/system/functions.h"
#include "library/system/numbers.h"
#include "os/text/ascii.h"
#include "platform/windowing.h"
#include "toolchain/language/library.h"
#include "toolchain/language/words.h"

#include <type_traits>
#include <vector>

namespace tarn::toolchain {

// The heads as function types; nothing has these names.
namespace heads {
using namespace platform;
using namespace platform::constants;
#define TARN_HEAD(result, name, symbol, parameters, arguments) result symbol parameters;
TARN_WINDOW_OPERATIONS(TARN_HEAD)
TARN_LIBRARY_FUNCTIONS(TARN_HEAD)
TARN_LIBRARY_WINDOW_FUNCTIONS(TARN_HEAD)
#undef TARN_HEAD
}  // namespace heads

namespace {

// What a type is called in the language; null for one that it does not have.
template <class T>
const char* languageType() {
    using namespace platform;
    if constexpr (std::is_same_v<T, bool>)
        return "boolean";
    else if constexpr (std::is_same_v<T, std::uint8_t>)
        return "enum";
    else if constexpr (std::is_same_v<T, SetDescriptor*>)
        return "set";
    else if constexpr (std::is_same_v<T, ListDescriptor*>)
        return "TSTRINGS";
    else if constexpr (std::is_same_v<T, std::int64_t> || std::is_same_v<T, double>)
        return "real";
    else if constexpr (std::is_same_v<T, FixedValue>)
        return "fixed";
    else if constexpr (std::is_integral_v<T> || std::is_enum_v<T>)
        return "integer";
    else if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, std::string_view>)
        return "string";
    else if constexpr (std::is_same_v<T, Object>)
        return "Control";
    else if constexpr (std::is_same_v<T, Rect>)
        return "TRECT";
    else if constexpr (std::is_same_v<T, Picture>)
        return "TPICTURE";
    else if constexpr (std::is_same_v<T, Font>)
        return "TFONT";
    else if constexpr (std::is_same_v<T, Selection>)
        return "TSELECTION";
    else if constexpr (std::is_same_v<T, TrackLimits>)
        return "TTRACKLIMITS";
    else if constexpr (std::is_same_v<T, PrintChoice>)
        return "TPRINTCHOICE";
    else if constexpr (std::is_same_v<T, RegInfo>)
        return "TREGINFO";
    else if constexpr (std::is_same_v<T, CommTimeouts>)
        return "TCOMMTIMEOUTS";
    else if constexpr (std::is_same_v<T, std::vector<std::string>>)
        return "TSTRINGS";
    else if constexpr (std::is_same_v<T, std::vector<Object>>)
        return "TCONTROLS";
    else if constexpr (std::is_same_v<T, std::vector<Process>>)
        return "TPROCESSES";
    else
        return nullptr;
}

// What is handed on by a pointer is changed.
template <class T>
const char* mode() {
    return std::is_pointer_v<T> ? "inout " : "";
}

template <class Head>
struct Shape;

template <class R, class... A>
struct Shape<R(A...)> {
    static constexpr bool isVoid = std::is_void_v<R>;
    static const char* result() {
        if constexpr (isVoid)
            return "";
        else
            return languageType<R>();
    }
    static std::vector<const char*> parameters() { return {languageType<std::remove_cvref_t<A>>()...}; }
    static std::vector<const char*> modes() { return {mode<A>()...}; }
};

// The names of the parameters in "(const Object& object, int x = 0)".
std::vector<std::string> namesIn(std::string_view parameters) {
    std::vector<std::string> names;
    parameters = parameters.substr(1, parameters.size() - 2);
    while (!parameters.empty()) {
        const std::size_t comma = parameters.find(',');
        std::string_view one = parameters.substr(0, comma);
        parameters.remove_prefix(comma == std::string_view::npos ? parameters.size() : comma + 1);
        one = one.substr(0, one.find('='));
        while (one.ends_with(' ')) one.remove_suffix(1);
        std::string name(one.substr(one.find_last_of(" &") + 1));
        if (IsReservedWord(ascii::lowered(name)) || IsFutureReservedWord(ascii::lowered(name)))
            name.insert(0, "the");
        names.push_back(std::move(name));
    }
    return names;
}

template <class Head>
std::string headText(const char* name, const std::string& symbol, std::string_view parameters) {
    const std::vector<const char*> types = Shape<Head>::parameters();
    const std::vector<std::string> names = namesIn(parameters);
    const char* result = Shape<Head>::result();
    if (result == nullptr) return {};
    std::string text = std::string("public function ") + name + "(";
    const std::vector<const char*> modes = Shape<Head>::modes();
    for (std::size_t i = 0; i < types.size(); ++i)
        text += (i == 0 ? "" : ", ") + (modes[i] + names[i]) + " : " + types[i];
    text += ")";
    if (!Shape<Head>::isVoid) text += std::string(" return ") + result;
    return text + " external \"" + symbol + "\"\n";
}

}  // namespace

std::string windowHeads() {
    std::string text;
#define TARN_TEXT(result, name, symbol, parameters, arguments)                                               \
    text += headText<decltype(heads::symbol)>(#name, "tarn_win_" #symbol, #parameters);
#define TARN_PLAIN(result, name, symbol, parameters, arguments)                                              \
    text += headText<decltype(heads::symbol)>(#name, "tarn_lib_" #symbol, #parameters);
    TARN_WINDOW_OPERATIONS(TARN_TEXT)
    TARN_LIBRARY_WINDOW_FUNCTIONS(TARN_TEXT)
    TARN_LIBRARY_FUNCTIONS(TARN_PLAIN)
#undef TARN_TEXT
#undef TARN_PLAIN
    return text;
}

}  // namespace tarn::toolchain
