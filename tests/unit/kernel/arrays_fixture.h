// SPDX-License-Identifier: Apache-2.0
//
// Arrays of numbers and of texts, and what stands in them as text.
#pragma once

#include "kernel/values/arrays.h"
#include "kernel/values/strings.h"
#include "unit/kernel/values_fixture.h"

#include <gtest/gtest.h>
#include <vector>

namespace tarn {

class Arrays : public Values {
protected:
    static constexpr std::int32_t none = NO_DIMENSION;
    static constexpr ArrayDescriptor zeroArray{};

    static bool isZero(const ArrayDescriptor& a) { return std::memcmp(&a, &zeroArray, sizeof a) == 0; }

    static void putInteger(ArrayDescriptor* a, std::int32_t i, std::int32_t value) {
        ArrayPut(a, i, &value, KindInteger);
    }
    static std::int32_t integerAt(const ArrayDescriptor* a, std::int32_t i) {
        std::int32_t value = -77;
        ArrayGet(a, i, &value, KindInteger);
        return value;
    }
    static void putText(ArrayDescriptor* a, std::int32_t i, std::string_view text) {
        const String s(text);
        ArrayPut(a, i, s.get(), KindString);
    }
    static std::string textAt(const ArrayDescriptor* a, std::int32_t i) {
        String s;
        ArrayGet(a, i, s.get(), KindString);
        return std::string(s.view());
    }
    // 1..n with the elements 10, 20, ...
    static ArrayValue tens(std::int32_t lower, std::int32_t upper, std::int32_t maxlength = 0) {
        ArrayValue a;
        if (maxlength == DYNAMIC_BOUNDS) {
            ArrayInitDynamic(a.get(), KindInteger, nullptr);
            ArrayRedim(a.get(), lower, upper, false);
        } else {
            ArrayInit(a.get(), KindInteger, lower, upper);
        }
        for (std::int32_t i = lower; i <= upper; ++i) putInteger(a.get(), i, (i - lower + 1) * 10);
        return a;
    }
    static ArrayValue texts(std::vector<std::string> elements, std::int32_t maxlength = 0,
                            std::int32_t capacity = UNBOUNDED) {
        const String like(capacity);
        ArrayValue a;
        const auto n = static_cast<std::int32_t>(elements.size());
        if (maxlength == DYNAMIC_BOUNDS) {
            ArrayInitDynamic(a.get(), KindString, like.get());
            ArrayRedim(a.get(), 1, n, false);
        } else {
            ArrayInit(a.get(), KindString, 1, n, like.get());
        }
        for (std::int32_t i = 1; i <= n; ++i) putText(a.get(), i, elements[static_cast<std::size_t>(i - 1)]);
        return a;
    }
    static std::string contentOf(const ArrayDescriptor* a) {
        std::string all;
        for (std::int32_t i = a->bounds[0].lower; i <= a->bounds[0].upper; ++i)
            all += (a->tag == KindString ? textAt(a, i) : std::to_string(integerAt(a, i))) + ",";
        return all;
    }
    static void expectSound(const ArrayDescriptor* a) { EXPECT_EQ(AdtCheck(a, KindArray), ""); }
};

}  // namespace tarn
