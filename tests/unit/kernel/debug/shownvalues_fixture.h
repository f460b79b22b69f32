// SPDX-License-Identifier: Apache-2.0
//
// Values that tests of the debugger show, and the window they are shown in.
#pragma once

#include "unit/kernel/debug/debuggedvalues.h"
#include "unit/kernel/debug/framevariables_fixture.h"

#include <gtest/gtest.h>

namespace tarn {

using debugged::integer;
inline ValueModel integers(std::int32_t count) {
    std::vector<ValueModel> parts;
    for (std::int32_t i = 1; i <= count; ++i) parts.push_back(integer(i));
    return model::List(integer(0), parts);
}

// A window that nobody works in.
class WindowOfValues : public FrameValues {
protected:
    void SetUp() override {
        FrameValues::SetUp();
        window_ = platform::StartDebug({}, "", "", "",
                                       [](platform::DebugWindow&, const platform::types::DebugEvent&) {}, {});
        ASSERT_NE(window_, nullptr);
    }
    void TearDown() override {
        platform::EndDebug(window_);
        FrameValues::TearDown();
    }

    platform::DebugWindow* window_ = nullptr;
};

}  // namespace tarn
