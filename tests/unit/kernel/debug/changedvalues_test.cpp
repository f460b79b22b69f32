// SPDX-License-Identifier: Apache-2.0
//
// The values that the list marks as changed: against those of the last stop, whatever was looked at there.
#include "unit/kernel/debug/debug_fixture.h"
#include "unit/kernel/debug/debuggedvalues.h"

#include "kernel/debug/valuetext.h"
#include "kernel/lists/lists.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tarn {
namespace {

using platform::DebugMessage;
using platform::types::DEBUG_CHANGED;

using Lines = std::vector<int>;

class ChangedValues : public StoppedProgram {
protected:
    // The numbers of the lines that are marked.
    static Lines changed(platform::DebugWindow& window) {
        Lines all;
        for (int line = 1; line <= platform::DebugCount(window); ++line)
            if ((platform::DebugFlags(window, line) & DEBUG_CHANGED) != 0) all.push_back(line);
        return all;
    }
    // At the next stop the values are shown, and these lines are to be marked; then one step.
    static void expectAtNextStop(const Lines& lines) {
        hands().push_back([lines](platform::DebugWindow& window) {
            command(window, DEBUG_VALUES);
            EXPECT_EQ(changed(window), lines) << listOf(window);
            command(window, DEBUG_STEP_INTO);
        });
    }
    // At the next stop nothing is looked at.
    static void stepAtNextStop() {
        hands().push_back([](platform::DebugWindow& window) { command(window, DEBUG_STEP_INTO); });
    }
    static void put(OddValue& list, std::int32_t position, std::int32_t number) {
        ListPut(&number, KindInteger, position, list.as<ListDescriptor>());
    }
};

TEST_F(ChangedValues, AreThoseSinceTheLastStopThoughItShowedNone) {
    std::int32_t a = 1, b = 1;
    const Called f("Sums", "F", 2);
    RegisterVariable("a", 'V', KindInteger, &a);
    RegisterVariable("b", 'V', KindInteger, &b);
    expectAtNextStop({});
    stampAt(3);
    a = 2;
    stepAtNextStop();
    stampAt(5);
    b = 2;
    expectAtNextStop({2});
    stampAt(9);
    expectAtNextStop({});
    stampAt(12);
    EXPECT_EQ(stops().size(), 4U);
}

TEST_F(ChangedValues, AreMarkedWhenTheyAreLookedAtForTheFirstTime) {
    std::int32_t a = 1;
    const Called f("Sums", "F", 2);
    RegisterVariable("a", 'V', KindInteger, &a);
    stepAtNextStop();
    stampAt(3);
    a = 2;
    expectAtNextStop({1});
    stampAt(5);
}

TEST_F(ChangedValues, AreAlsoThoseOfTheCallers) {
    std::int32_t outer = 1, inner = 1;
    const Called f("Sums", "F", 2);
    RegisterVariable("a", 'V', KindInteger, &outer);
    {
        const Called g("Sums", "G", 8);
        RegisterVariable("b", 'V', KindInteger, &inner);
        expectAtNextStop({});
        stampAt(9);
        outer = 2;
    }
    expectAtNextStop({1});
    stampAt(5);
    const Called h("Sums", "H", 8);
    RegisterVariable("b", 'V', KindInteger, &inner);
    inner = 2;
    expectAtNextStop({});  // another function than the one at this depth
    stampAt(9);
    EXPECT_EQ(stops().size(), 3U);
}

TEST_F(ChangedValues, AreSeenInElementsThatWereNotShownBefore) {
    OddValue list(debugged::integers({1, 2, 3}));
    const Called f("Sums", "F", 2);
    RegisterVariable("l", 'V', KindList, list.at());
    stepAtNextStop();
    stampAt(3);
    put(list, 2, 9);
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(changed(window), Lines{1});
        event(window, DebugMessage::DoubleClick, 1);
        EXPECT_EQ(changed(window), Lines{3}) << listOf(window);
        event(window, DebugMessage::DoubleClick, 1);
        EXPECT_EQ(changed(window), Lines{1});
        command(window, DEBUG_STEP_INTO);
    });
    stampAt(5);
    expectAtNextStop({});
    stampAt(9);
    EXPECT_EQ(stops().size(), 3U);
}

TEST_F(ChangedValues, AreSeenInElementsThatAreTooBigToBeShown) {
    OddValue list(
        debugged::List(debugged::Text(""), {debugged::Text("a"), debugged::Text(std::string(3000, 'x'))}));
    const Called f("Sums", "F", 2);
    RegisterVariable("l", 'V', KindList, list.at());
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        event(window, DebugMessage::DoubleClick, 1);
        command(window, DEBUG_STEP_INTO);
    });
    stampAt(3);
    {
        OddValue other(debugged::Text(std::string(2999, 'x') + "y"));
        ListPut(other.at(), KindString, 2, list.as<ListDescriptor>());
    }
    expectAtNextStop({3});
    stampAt(5);
    EXPECT_EQ(stops().size(), 2U);
}

// Integers of two characters and a comma: the element stands behind what counts of a value.
TEST_F(ChangedValues, BeyondWhatCountsAreSeenInWhatIsExpanded) {
    constexpr std::int32_t count = 40000;
    OddValue list(debugged::integers(std::vector<std::int64_t>(count, 7)));
    ASSERT_GT(std::size_t{count}, MaxValueText / 3);
    const Called f("Sums", "F", 2);
    RegisterVariable("l", 'V', KindList, list.at());
    stepAtNextStop();
    stampAt(3);
    put(list, count, 8);
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(changed(window), Lines{});
        event(window, DebugMessage::DoubleClick, 1);
        command(window, DEBUG_STEP_INTO);
    });
    stampAt(5);
    put(list, count, 9);
    expectAtNextStop({count + 1});
    stampAt(9);
    EXPECT_EQ(stops().size(), 3U);
}

TEST_F(ChangedValues, AreNoneWhenIntegersAreShownInAnotherWay) {
    std::int32_t a = 1;
    const Called f("Sums", "F", 2);
    RegisterVariable("a", 'V', KindInteger, &a);
    expectAtNextStop({});
    stampAt(3);
    write("ide.ini", "[Debugoptionsdlg]\r\nDebugHexOn=1\r\n");
    expectAtNextStop({});
    stampAt(5);
    EXPECT_EQ(stops().size(), 2U);
}

TEST_F(ChangedValues, AreThoseThatTheUserHasChangedAtThisStopOnly) {
    std::int32_t a = 1;
    answers() = {"5"};
    const Called f("Sums", "F", 2);
    RegisterVariable("a", 'V', KindInteger, &a);
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(changed(window), Lines{});
        command(window, DEBUG_STEP_INTO);
    });
    stampAt(3);
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        event(window, DebugMessage::Edit, 1);
        EXPECT_EQ(changed(window), Lines{1});
        command(window, DEBUG_STEP_INTO);
    });
    stampAt(5);
    expectAtNextStop({});
    stampAt(9);
    EXPECT_EQ(a, 5);
}

TEST_F(ChangedValues, AnotherVariableInThePlaceOfOneThatEndedHasNotChanged) {
    std::int32_t place = 1;
    const Called f("Sums", "F", 2);
    {
        RegisterVariable("a", 'V', KindInteger, &place);
        expectAtNextStop({});
        stampAt(3);
    }
    variableTable->entries[variableTable->count - 1].name[0] = 'b';
    place = 2;
    expectAtNextStop({});
    stampAt(5);
    EXPECT_EQ(stops().size(), 2U);
}

TEST_F(ChangedValues, LeaveThePendingError) {
    std::int32_t a = 1;
    const Called f("Sums", "F", 2);
    RegisterVariable("a", 'V', KindInteger, &a);
    expectAtNextStop({});
    SetError(603);
    stampAt(3);
    EXPECT_EQ(LastError(), 603);
    ClearError();
}

}  // namespace
}  // namespace tarn
