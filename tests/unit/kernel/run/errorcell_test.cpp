// SPDX-License-Identifier: Apache-2.0
#include "kernel/run/errorcell.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

class ErrorCellTest : public testing::Test {
protected:
    ErrorCellTest() { ClearError(); }
    ~ErrorCellTest() override { ClearError(); }
};

TEST_F(ErrorCellTest, AnErrorIsTakenOnce) {
    SetError(602);
    EXPECT_EQ(TakeError(), 602);
    EXPECT_EQ(TakeError(), 0);
}

// What is found in the cell while a guard lives, and what is left when it has gone.
struct Left {
    std::int32_t seen, after;
};
template <class Guard>
Left run(std::int32_t before, std::int32_t own) {
    if (before != 0) SetError(before);
    Left left{};
    {
        const Guard guard;
        if (own != 0) SetError(own);
        left.seen = ErrorCell();
    }
    left.after = TakeError();
    return left;
}

TEST_F(ErrorCellTest, TheWorkSeesItsOwnErrorsAlone) {
    for (const std::int32_t before : {0, 602}) {
        EXPECT_EQ(run<ErrorCellAside>(before, 0).seen, 0);
        EXPECT_EQ(run<ErrorCellAside>(before, 651).seen, 651);
        EXPECT_EQ(run<OwnErrors>(before, 0).seen, 0);
        EXPECT_EQ(run<OwnErrors>(before, 651).seen, 651);
    }
}

TEST_F(ErrorCellTest, WhatWasPendingBeforeIsPendingAgain) {
    for (const std::int32_t own : {0, 651}) {
        EXPECT_EQ(run<ErrorCellAside>(602, own).after, 602);
        EXPECT_EQ(run<OwnErrors>(602, own).after, 602);
    }
}

TEST_F(ErrorCellTest, ACellPutAsideDropsItsErrorsAndOwnErrorsGetOut) {
    EXPECT_EQ(run<ErrorCellAside>(0, 651).after, 0);
    EXPECT_EQ(run<OwnErrors>(0, 651).after, 651);
}

TEST_F(ErrorCellTest, AnErrorThatIsForgottenDoesNotGetOut) {
    {
        const OwnErrors errors;
        SetError(651);
        EXPECT_EQ(OwnErrors::code(), 651);
        OwnErrors::forget();
        EXPECT_EQ(OwnErrors::code(), 0);
    }
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(ErrorCellTest, GuardsNest) {
    SetError(602);
    {
        const ErrorCellAside outer;
        SetError(651);
        {
            const OwnErrors inner;
            SetError(652);
        }
        EXPECT_EQ(ErrorCell(), 651);
    }
    EXPECT_EQ(ErrorCell(), 602);
}

}  // namespace
}  // namespace tarn
