// SPDX-License-Identifier: Apache-2.0
#include "kernel/index_file.h"

#include "index_file_fixture.h"

using namespace tarn;

namespace {

TEST_F(IndexFiles, AscendingKeysTurnLeft) {
    makeIntegers({1, 2, 3});
    EXPECT_EQ(bytes().size(), 1104U + 3 * 28);
    EXPECT_EQ(rootRecord(), 2);
    EXPECT_EQ(word(at(2, 1)), 0);
    EXPECT_EQ(picture(), "|-[1 0]\n[2 0]\n|-[3 0]");
    EXPECT_EQ(check(), "");
    EXPECT_EQ(find("GE", {integer(2)}), 20);
    remove({integer(2)});
    EXPECT_EQ(check(), "");
    EXPECT_EQ(firstFree(), 2);
    EXPECT_EQ(insert({integer(9)}, 90), 0);
    EXPECT_EQ(check(), "");
    EXPECT_EQ(firstFree(), 0);
    for (const int k : {1, 3, 9}) {
        remove({integer(k)});
        EXPECT_EQ(check(), "");
    }
    EXPECT_EQ(bytes().size(), 1104U);
    EXPECT_EQ(rootRecord(), 0);
}

}  // namespace
