// SPDX-License-Identifier: Apache-2.0
//
// What the debugger's user does to the values in the list, from the keys on.
#include "kernel/lists/lists.h"
#include "kernel/values/owned.h"
#include "kernel/values/strings.h"
#include "unit/kernel/debug/debug_fixture.h"

namespace tarn {
namespace {

using platform::DebugMessage;

class ValueCommands : public StoppedProgram {
protected:
    void SetUp() override {
        StoppedProgram::SetUp();
        ListInit(list_.get(), UNBOUNDED, nullptr, KindInteger, false);
        for (std::int32_t i = 1; i <= 250; ++i) ListAppend(&i, KindInteger, list_.get());
        text_.assign(std::string(3000, 'x'));
    }
    void TearDown() override {
        list_ = ListValue();
        text_ = String();
        StoppedProgram::TearDown();
    }
    // Stops in a function that has the values, with the list of them shown.
    void withValues(Hand hand) {
        hands().push_back([hand](platform::DebugWindow& window) {
            command(window, DEBUG_VALUES);
            hand(window);
        });
        const Called f("Sums", "DO_ADD", 2);
        RegisterVariable("list", 'V', KindList, list_.get());
        RegisterVariable("text", 'V', KindString, text_.get());
        RegisterVariable("number", 'V', KindInteger, &number_);
        stampAt(5);
        ASSERT_FALSE(stops().empty());
    }
    static void select(platform::DebugWindow& window, int line, int number) {
        platform::DebugSelect(window, line, false);
        command(window, number);
    }

    ListValue list_;
    String text_;
    std::int32_t number_ = 7;
};

TEST_F(ValueCommands, TurnPages) {
    withValues([](platform::DebugWindow& window) {
        select(window, 1, DEBUG_NEXT_PAGE);
        EXPECT_EQ(platform::DebugLine(window, 2), "   {...elements 1 to 100 of 250...}");
        EXPECT_EQ(platform::DebugSelected(window), 1);
        command(window, DEBUG_NEXT_PAGE);
        command(window, DEBUG_NEXT_PAGE);
        EXPECT_EQ(platform::DebugLine(window, 2), "   {...elements 201 to 250 of 250...}");
        command(window, DEBUG_PREVIOUS_PAGE);
        EXPECT_EQ(platform::DebugLine(window, 3), "   101,");
    });
}

TEST_F(ValueCommands, ShowAValueWhole) {
    withValues([](platform::DebugWindow& window) {
        EXPECT_EQ(platform::DebugLine(window, 2), "text : String = {...too big...}");
        select(window, 2, DEBUG_WHOLE);
        EXPECT_EQ(platform::DebugCount(window), 2 + 31);
        command(window, DEBUG_WHOLE);
        EXPECT_EQ(platform::DebugCount(window), 3);
    });
}

TEST_F(ValueCommands, BeepWhereThereIsNothingToDo) {
    withValues([](platform::DebugWindow& window) {
        const int beeps = platform::headlessBeeps();
        for (const int number : {DEBUG_NEXT_PAGE, DEBUG_PREVIOUS_PAGE, DEBUG_WHOLE}) {
            select(window, 0, number);
            select(window, 3, number);
        }
        select(window, 1, DEBUG_PREVIOUS_PAGE);
        command(window, DEBUG_CODE);
        select(window, 1, DEBUG_NEXT_PAGE);
        EXPECT_EQ(platform::headlessBeeps(), beeps + 8);
    });
}

TEST_F(ValueCommands, WhatTheyAskForIsForgottenWithTheDebugger) {
    withValues([](platform::DebugWindow& window) { select(window, 1, DEBUG_NEXT_PAGE); });
    DebugEnd();
    settings("SingleStep=1\r\n");
    start();
    addClass("Sums", 40, {3, 5, 9, 12});
    withValues([](platform::DebugWindow& window) {
        event(window, DebugMessage::DoubleClick, 1);
        EXPECT_EQ(platform::DebugLine(window, 2), "   1,");
    });
}

}  // namespace
}  // namespace tarn
