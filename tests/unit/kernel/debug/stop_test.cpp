// SPDX-License-Identifier: Apache-2.0
//
// What a stop says, and when there is one beside breakpoints and steps.
#include "unit/kernel/debug/debug_fixture.h"

#include "kernel/run/errors.h"
#include "platform/operations/system.h"

namespace tarn {
namespace {

class StopStatus : public StoppedProgram {};

TEST_F(StopStatus, TheStatusIsThePlace) {
    stopAndDo([](platform::DebugWindow&) {});
    EXPECT_EQ(stops()[0].status, "File Sums, function do_add, line 5");
}

TEST_F(StopStatus, TheStatusBeginsWithTheError) {
    stopAndDo([](platform::DebugWindow&) {});
    const Called f("Sums", "DO_ADD", 2);
    stampAt(9);
    SetError(601);
    stampAt(12);
    ASSERT_EQ(stops().size(), 2U);
    EXPECT_EQ(stops()[1].line, 9) << "an error stops at its own line";
    EXPECT_EQ(stops()[1].status,
              "Error 601, Set reference out of bounds, File Sums, function do_add, line 9\n");
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(LastError(), 601);
}

TEST_F(StopStatus, TheStatusOfAnAssertHasItsText) {
    const Called f("Sums", "DO_ADD", 2);
    stampAt(9);
    Assert(false, "x is 3");
    stampAt(12);
    ASSERT_EQ(stops().size(), 2U);
    EXPECT_EQ(stops()[1].status,
              "Error 687, Assert check failed, File Sums, function do_add, line 9\nx is 3\n");
}

TEST_F(StopStatus, WithoutAFrameThereIsNoPlace) {
    stampAt(5);
    ASSERT_EQ(stops().size(), 1U);
    EXPECT_EQ(stops()[0].status, "");
    SetError(643);
    stampAt(6);
    ASSERT_EQ(stops().size(), 2U);
    EXPECT_EQ(stops()[1].status, "Error 643, Division by zero\n");
}

TEST_F(StopStatus, TheStatusHasAtMost1024Characters) {
    const Called f("Sums", "DO_ADD", 2);
    stampAt(9);
    Assert(false, std::string(255, 'x'));
    stampAt(12);
    EXPECT_LE(stops().back().status.size(), 1024U);
}

TEST_F(StopStatus, AnErrorStopsWithoutItsHandler) {
    static int handled;
    handled = 0;
    const Called f("Sums", "DO_ADD", 2);
    stampAt(9);
    for (const int code : {901, 601, 687, 5}) {
        SetError(code);
        stampAt(12, ReportErrors, [](std::int32_t) { ++handled; });
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(LastError(), code);
    }
    EXPECT_EQ(handled, 0);
    EXPECT_EQ(stopsText(), "Sums9/1 Sums9/1 Sums12/1 Sums12/1 Sums12/1");
}

TEST_F(StopStatus, TheUsersBreakStops) {
    const Called f("Sums", "DO_ADD", 2);
    stampAt(3);
    stampAt(5);
    EXPECT_EQ(stops().size(), 1U);
    platform::SetUserBreak(1);
    stampAt(9);
    stampAt(12);
    EXPECT_EQ(stopsText(), "Sums3/1 Sums9/1");
    EXPECT_EQ(platform::GetUserBreak(), 0);
}

TEST_F(StopStatus, AStampInsideOfAStopDoesNotStop) {
    stopAndDo([](platform::DebugWindow&) {
        stampAt(9);
        SetError(601);
        stampAt(12);
        platform::SetUserBreak(1);
        stampAt(12);
    });
    EXPECT_EQ(stops().size(), 1U);
}

}  // namespace
}  // namespace tarn
