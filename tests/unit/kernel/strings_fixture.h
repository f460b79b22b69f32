// SPDX-License-Identifier: Apache-2.0
//
// Strings under memory checking.
#pragma once

#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"
#include "support/errorcell.h"

#include <gtest/gtest.h>

namespace tarn {

// Every string lives and dies under memory checking, so that a leak or a wrong free fails the test.
class Strings : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        ASSERT_EQ(LiveBlocks(), 0);
        SetMemoryChecking(true);
    }
    void TearDown() override {
        FailAllocation(-1);
        CharacterWidth = 1;
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(LiveBlocks(), 0);
        SetMemoryChecking(false);
        ClearError();
    }
    static String fixed(std::int32_t capacity, std::string_view text) {
        String s(capacity);
        s.assign(text);
        return s;
    }
};

}  // namespace tarn
