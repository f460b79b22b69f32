// SPDX-License-Identifier: Apache-2.0
//
// The functions of library/system/functions.h as compiled programs see them: constant pointers to C functions,
// `tarn_lib_` and the word of the line; `tarn_win_` for those that may handle events.
#include "library/system/functions.h"

#include "library/net/netutil.h"
#include "library/settings/profstr.h"
#include "library/source/bmptotxt.h"
#include "library/system/api_bridge.h"
#include "library/system/system.h"
#include "library/time/timeutil.h"

namespace tarn::api {

// The heads as function types; nothing has these names.
namespace heads {
#define TARN_HEAD(result, name, symbol, parameters, arguments) result symbol parameters;
TARN_LIBRARY_FUNCTIONS(TARN_HEAD)
TARN_LIBRARY_WINDOW_FUNCTIONS(TARN_HEAD)
#undef TARN_HEAD
}  // namespace heads

#define TARN_BRIDGE(kind, name, symbol)                                                                      \
    extern "C" const auto kind##symbol =                                                                     \
        bridge::Bridge<decltype(heads::symbol), [](auto&&... values) -> decltype(auto) {                     \
            return tarn::name(std::forward<decltype(values)>(values)...);                                    \
        }>::function();
#define TARN_PLAIN(result, name, symbol, parameters, arguments) TARN_BRIDGE(tarn_lib_, name, symbol)
#define TARN_WINDOW(result, name, symbol, parameters, arguments) TARN_BRIDGE(tarn_win_, name, symbol)
TARN_LIBRARY_FUNCTIONS(TARN_PLAIN)
TARN_LIBRARY_WINDOW_FUNCTIONS(TARN_WINDOW)
#undef TARN_PLAIN
#undef TARN_WINDOW
#undef TARN_BRIDGE

namespace {

// The exit code; what failed is in the error cell.
std::int32_t exec(const std::string& command, const std::string& arguments, int mode) {
    return EXEC(command, arguments, mode).code;
}
std::int32_t execList(const std::string& command, const std::vector<std::string>& arguments, int mode) {
    return EXEC(command, arguments, mode).code;
}
std::int32_t execListIn(const std::string& command, const std::vector<std::string>& arguments, int mode,
                        const std::string& folder) {
    return EXEC(command, arguments, mode, folder).code;
}
std::int32_t execIn(const std::string& command, const std::string& arguments, int mode,
                    const std::string& folder) {
    return EXEC(command, arguments, mode, folder).code;
}

template <auto Call>
constexpr auto Of = [](auto&&... values) { return Call(std::forward<decltype(values)>(values)...); };

}  // namespace

extern "C" const auto tarn_win_exec =
    bridge::Bridge<std::int32_t(const std::string&, const std::string&, int), Of<exec>>::function();
extern "C" const auto tarn_win_exec_in =
    bridge::Bridge<std::int32_t(const std::string&, const std::string&, int, const std::string&),
                   Of<execIn>>::function();
extern "C" const auto tarn_win_exec_list =
    bridge::Bridge<std::int32_t(const std::string&, const std::vector<std::string>&, int),
                   Of<execList>>::function();
extern "C" const auto tarn_win_exec_list_in =
    bridge::Bridge<std::int32_t(const std::string&, const std::vector<std::string>&, int, const std::string&),
                   Of<execListIn>>::function();

}  // namespace tarn::api
