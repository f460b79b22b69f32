// SPDX-License-Identifier: Apache-2.0
//
// How often a test of random input runs: `usual` times among the others, and as many times more as the variable
// TEST_ROUNDS says, which `./dev soak` sets. Such tests stand in a suite whose name ends in "Soak".
#pragma once

#include <cstdlib>

namespace tarn {

inline int rounds(int usual) {
    const char* const more = std::getenv("TEST_ROUNDS");
    const int times = more == nullptr ? 1 : std::atoi(more);
    return usual * (times > 1 ? times : 1);
}

}  // namespace tarn
