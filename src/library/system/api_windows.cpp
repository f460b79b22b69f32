// SPDX-License-Identifier: Apache-2.0
//
// The windowing operations as compiled programs see them: for each line of kernel/windows/operations.h a
// constant pointer to a C function, `tarn_win_` and the word of the line. The heads that the language sees are
// made of the same list (toolchain/language/windowheads.cpp).
#include "library/system/api_bridge.h"

namespace tarn::api {

// The heads as function types; nothing has these names.
namespace heads {
#define TARN_HEAD(result, name, symbol, parameters, arguments) result symbol parameters;
TARN_WINDOW_OPERATIONS(TARN_HEAD)
#undef TARN_HEAD
}  // namespace heads

#define TARN_BRIDGE(result, name, symbol, parameters, arguments)                                             \
    extern "C" const auto tarn_win_##symbol =                                                                \
        bridge::Bridge<decltype(heads::symbol), [](auto&&... values) -> decltype(auto) {                     \
            return tarn::name(std::forward<decltype(values)>(values)...);                                    \
        }>::function();
TARN_WINDOW_OPERATIONS(TARN_BRIDGE)
#undef TARN_BRIDGE

}  // namespace tarn::api
