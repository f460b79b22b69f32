// SPDX-License-Identifier: Apache-2.0
//
// The numbers that take more than a line. These functions compute on their arguments alone and set their own
// codes, and so have no frames.
#include "library/system/numbers.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"

#include <bit>
#include <cmath>
#include <random>

namespace tarn {

// The root of word * 10000, so that the result is again in ten-thousandths: bit by bit, which is exact.
FixedValue SQR(FixedValue n) {
    if (n.word < 0) {
        SetError(ERR_PRECONDITION);
        return {};
    }
    __extension__ using Wide = unsigned __int128;
    const Wide square = static_cast<Wide>(n.word) * static_cast<Wide>(FixedOne);
    std::uint64_t root = 0;
    for (std::uint64_t bit = std::uint64_t{1} << 38; bit != 0; bit >>= 1) {
        const std::uint64_t next = root | bit;
        if (static_cast<Wide>(next) * next <= square) root = next;
    }
    return FixedValue(static_cast<Fixed>(root));
}

double SQR(double n) {
    if (n < 0) {
        SetError(ERR_PRECONDITION);
        return 0;
    }
    return std::sqrt(n);
}

double PWR(double base, double exponent) {
    std::int32_t error = 0;
    if (base == 0 && exponent < 0)
        error = ERR_DIVISION_BY_ZERO;
    else if (base < 0 && exponent != std::trunc(exponent))
        error = ERR_PRECONDITION;
    const double power = error == 0 ? std::pow(base, exponent) : 0;
    if (std::isinf(power) && !std::isinf(base) && !std::isinf(exponent)) error = ERR_NUMBER_TOO_LARGE;
    if (error != 0) SetError(error);
    return error == 0 ? power : 0;
}

std::int32_t RANDOM(std::int32_t count) {
    static std::mt19937 generator{std::random_device{}()};
    if (count < 1) return 0;
    return std::uniform_int_distribution<std::int32_t>(0, count - 1)(generator);
}

}  // namespace tarn
