// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/fewbytes.h"

#include <gtest/gtest.h>
#include <string>

using namespace tarn;

namespace {

constexpr std::size_t most = 70;

std::string someBytes(std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(i * 37 + 1);
    return bytes;
}

TEST(FewBytes, OfEveryNumberAreMovedAndNoOthers) {
    for (std::size_t count = 0; count <= most; ++count) {
        const std::string from = someBytes(count);
        std::string to(count + 2, '#');
        MoveBytes(to.data() + 1, from.data(), count);
        EXPECT_EQ(to, "#" + from + "#");
    }
}

TEST(FewBytes, MayMoveToWhereTheyPartlyStand) {
    for (std::size_t count = 1; count <= most; ++count) {
        for (std::size_t by = 1; by <= count; ++by) {
            const std::string bytes = someBytes(count);
            std::string up = bytes + std::string(by, '#'), down = std::string(by, '#') + bytes;
            MoveBytes(up.data() + by, up.data(), count);
            MoveBytes(down.data(), down.data() + by, count);
            ASSERT_EQ(up.substr(by), bytes) << count << " by " << by;
            ASSERT_EQ(down.substr(0, count), bytes) << count << " by " << by;
        }
    }
}

TEST(FewBytes, AreTheSameWhenEachOfThemIs) {
    for (std::size_t count = 0; count <= most; ++count) {
        const std::string bytes = someBytes(count);
        std::string other = bytes;
        EXPECT_TRUE(SameBytes(bytes.data(), other.data(), count)) << count;
        for (char& byte : other) {
            byte = static_cast<char>(byte ^ 0x10);
            ASSERT_FALSE(SameBytes(bytes.data(), other.data(), count)) << count;
            byte = static_cast<char>(byte ^ 0x10);
        }
    }
}

}  // namespace
