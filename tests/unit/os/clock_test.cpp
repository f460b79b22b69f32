// SPDX-License-Identifier: Apache-2.0
#include "os/clock.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn::os {
namespace {

constexpr std::int64_t second = 1'000'000'000;

std::string textOf(const CivilTime& t) {
    char text[80];
    std::snprintf(text, sizeof text, "%d-%d-%d %d:%d:%d.%d", t.year, t.month, t.day, t.hour, t.minute,
                  t.second, t.nanosecond);
    return text;
}

const struct {
    std::int64_t moment;
    const char* utc;
} moments[] = {
    {0, "1970-1-1 0:0:0.0"},
    {-1, "1969-12-31 23:59:59.999999999"},
    {951'782'399 * second + 5, "2000-2-28 23:59:59.5"},
    {951'868'799 * second, "2000-2-29 23:59:59.0"},
    {951'868'800 * second, "2000-3-1 0:0:0.0"},
    {4'107'542'399 * second, "2100-2-28 23:59:59.0"},
    {4'107'542'400 * second, "2100-3-1 0:0:0.0"},
    {-2'208'988'800 * second, "1900-1-1 0:0:0.0"},
    {981'173'106 * second, "2001-2-3 4:5:6.0"},
};

TEST(ClockTest, tellsTheLocalTimeInTheZoneInForce) {
    {
        const Variable zone("TZ", "UTC0");
        for (const auto& row : moments) EXPECT_EQ(textOf(clock().local(row.moment)), row.utc);
    }
    const Variable zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(textOf(clock().local(1'711'846'799 * second)), "2024-3-31 1:59:59.0");
    EXPECT_EQ(textOf(clock().local(1'711'846'800 * second)), "2024-3-31 3:0:0.0");
}

TEST(ClockTest, theSteadyClockGoesOnWhileSleeping) {
    const std::int64_t start = clock().steady();
    clock().sleep(3'000'000);
    EXPECT_GE(clock().steady() - start, 3'000'000);
    clock().sleep(0);
    clock().sleep(-second);
    EXPECT_LT(clock().steady() - start, 5 * second);
    EXPECT_GT(clock().now(), 1'700'000'000 * second);
}

TEST(SteeredClockTest, tellsTheSameTimesAsTheRealOne) {
    const Variable zone("TZ", "UTC0");
    SteeredClock steered;
    for (const auto& row : moments) EXPECT_EQ(textOf(steered.local(row.moment)), row.utc);
    for (std::int64_t day = -80'000; day < 80'000; day += 13) {
        const std::int64_t moment = day * 86'400 * second + day * 7;
        ASSERT_EQ(textOf(steered.local(moment)), textOf(clock().local(moment)));
    }
}

TEST(SteeredClockTest, movesOnlyWhenTold) {
    SteeredClock steered;
    {
        const Steered inForce(steered);
        EXPECT_EQ(&clock(), &steered);
        EXPECT_EQ(textOf(clock().local(clock().now())), "2001-2-3 4:5:6.0");
        const std::int64_t start = clock().steady();
        clock().sleep(3 * second);
        EXPECT_EQ(clock().steady() - start, 3 * second);
        EXPECT_EQ(textOf(clock().local(clock().now())), "2001-2-3 4:5:9.0");
        steered.setOffset(-5 * 3600);
        EXPECT_EQ(textOf(clock().local(clock().now())), "2001-2-2 23:5:9.0");
        steered.setLocal({2024, 2, 29, 12, 30, 15, 7});
        EXPECT_EQ(textOf(clock().local(clock().now())), "2024-2-29 12:30:15.7");
        EXPECT_EQ(clock().steady() - start, 3 * second);
    }
    EXPECT_NE(&clock(), &steered);
}

}  // namespace
}  // namespace tarn::os
