// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/framevariables.h"

#include "unit/kernel/debug/framevariables_fixture.h"

#include <gtest/gtest.h>

using namespace tarn;

namespace {

class VariablesOfFrames : public FrameValues {};

TEST_F(VariablesOfFrames, AreThoseFromItsFirstOneToThatOfTheNextFrame) {
    EXPECT_EQ(VariablesOf(1).count, 0);
    addInteger("a", 1);
    addInteger("b", 2);
    FunctionEnter("Main", "empty", 1);
    FunctionEnter("Main", "deeper", 1);
    addInteger("c", 3);
    EXPECT_EQ(VariablesOf(1).count, 2);
    EXPECT_STREQ(VariablesOf(1).first[1].name, "b");
    EXPECT_EQ(VariablesOf(2).count, 0);
    EXPECT_EQ(VariablesOf(3).count, 1);
    for (const std::int32_t outside : {-1, 0, 4, 500, 501, INT32_MAX})
        EXPECT_EQ(VariablesOf(outside).count, 0);
}

TEST_F(VariablesOfFrames, AreFoundInAnyCaseAndTheFirstOfTwo) {
    addInteger("Count", 1);
    addInteger("other", 2);
    addInteger("COUNT", 3);
    const FrameVariables variables = VariablesOf(1);
    EXPECT_EQ(FindVariable(variables, "count"), variables.first);
    EXPECT_EQ(FindVariable(variables, "OTHER"), variables.first + 1);
    EXPECT_EQ(FindVariable(variables, ""), nullptr);
    EXPECT_EQ(FindVariable({}, "count"), nullptr);
}

TEST_F(VariablesOfFrames, OfFramesThatAreNotRecordedAreNotKept) {
    addInteger("a", 1);
    while (FrameCount() < MaxFrames) FunctionEnter("Main", "deeper", 1);
    addInteger("last", 1);
    FunctionEnter("Main", "beyond", 1);
    addInteger("lost", 1);
    EXPECT_EQ(VariablesOf(MaxFrames).count, 1);
    FunctionLeave();
    EXPECT_EQ(VariablesOf(MaxFrames).count, 1);
    FunctionLeave();
    EXPECT_EQ(variableTable->count, 1);
}

TEST_F(VariablesOfFrames, AreNoneWithoutATable) {
    DebugEnd();
    EXPECT_EQ(VariablesOf(1).count, 0);
    DebugStart(1, "", "", "", "");
    FunctionEnter("Main", "work", 1);
    EXPECT_EQ(VariablesOf(1).count, 0);
}

}  // namespace
