// SPDX-License-Identifier: Apache-2.0
#include "unit/kernel/debug/debug_fixture.h"

#include <gtest/gtest.h>
#include <string>

namespace tarn {
namespace {

using platform::DebugMessage;

class DebugWatches : public DebuggedProgram {
protected:
    // With so many watches in the settings, `1 + 1`, `1 + 2` and on.
    void stopWith(int count, Hand hand) {
        std::string watches;
        for (int i = 1; i <= count; ++i) watches += "1 + " + std::to_string(i) + " ; ";
        settings("SingleStep=1\r\nWatches=" + watches + "\r\n");
        start();
        addClass("Sums", 40, {5});
        hands().push_back(std::move(hand));
        const Called f("Sums", "F", 2);
        stampAt(5);
        EXPECT_EQ(stops().size(), 1U);
    }
};

TEST_F(DebugWatches, TheOneThatWasAddedIsSelectedSoThatItIsSeen) {
    for (const int count : {0, 6, 20, 60}) {
        answers() = {"2 * 3"};
        stops().clear();
        stopWith(count, [count](platform::DebugWindow& window) {
            command(window, DEBUG_WATCH);
            EXPECT_EQ(platform::DebugCount(window), count + 1);
            EXPECT_EQ(platform::DebugSelected(window), count + 1);
            EXPECT_EQ(platform::DebugLine(window, count + 1), "2 * 3 = 6");
        });
        DebugEnd();
    }
}

TEST_F(DebugWatches, TheOneThatWasChangedStaysSelected) {
    answers() = {"2 * 3"};
    stopWith(30, [](platform::DebugWindow& window) {
        command(window, DEBUG_WATCH);
        event(window, DebugMessage::Edit, 25);
        EXPECT_EQ(platform::DebugSelected(window), 31);
        answers() = {"2 * 4"};
        event(window, DebugMessage::Edit, 25);
        EXPECT_EQ(platform::DebugLine(window, 25), "2 * 4 = 8");
        EXPECT_EQ(platform::DebugSelected(window), 25);
    });
}

TEST_F(DebugWatches, BehindOneThatWasRemovedTheNextIsSelected) {
    answers() = {"", "Yes", "Yes"};
    stopWith(3, [](platform::DebugWindow& window) {
        command(window, DEBUG_WATCH);
        EXPECT_EQ(platform::DebugSelected(window), 0);
        event(window, DebugMessage::DoubleClick, 1);
        EXPECT_EQ(platform::DebugSelected(window), 1);
        EXPECT_EQ(platform::DebugLine(window, 1), "1 + 2 = 3");
        event(window, DebugMessage::DoubleClick, 2);
        EXPECT_EQ(platform::DebugSelected(window), 1);
        answers() = {"Yes"};
        event(window, DebugMessage::DoubleClick, 1);
        EXPECT_EQ(platform::DebugCount(window), 0);
        EXPECT_EQ(platform::DebugSelected(window), 0);
    });
}

}  // namespace
}  // namespace tarn
