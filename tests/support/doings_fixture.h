// SPDX-License-Identifier: Apache-2.0
//
// The environment on the object model alone, with a user for windows that wait: each time one does, the next thing is done.
// When nothing is left to do the window is left. At its end a test has done everything, and no error is pending.
#pragma once

#include "support/ide_fixture.h"

#include <deque>
#include <functional>

namespace tarn {

class DoingsTest : public IdeTest {
protected:
    std::deque<std::function<void()>> doings;  // what the user does in turn

    void SetUp() override {
        IdeTest::SetUp();
        platform::view().setIdle([this] {
            if (doings.empty()) return platform::QuitMainLoop();
            const auto next = doings.front();
            doings.pop_front();
            next();
        });
    }
    void TearDown() override {
        platform::view().setIdle({});
        EXPECT_TRUE(doings.empty());
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
};

}  // namespace tarn
