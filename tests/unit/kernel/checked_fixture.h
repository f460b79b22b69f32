// SPDX-License-Identifier: Apache-2.0
//
// Every value lives and dies under memory checking, so that a leak or a wrong free fails the test; and each test ends
// with a clear error cell.
#pragma once

#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <gtest/gtest.h>

namespace tarn {

class Checked : public Runtime {
protected:
    void SetUp() override {
        Runtime::SetUp();
        ASSERT_EQ(LiveBlocks(), 0);
        SetMemoryChecking(true);
    }
    void TearDown() override {
        FailAllocation(-1);
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }
};

}  // namespace tarn
