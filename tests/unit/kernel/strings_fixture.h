// SPDX-License-Identifier: Apache-2.0
//
// What the tests of strings share.
#pragma once

#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"
#include "unit/kernel/checked_fixture.h"

#include <gtest/gtest.h>

namespace tarn {

class Strings : public Checked {
protected:
    void TearDown() override {
        CharacterWidth = 1;
        Checked::TearDown();
    }
    static String fixed(std::int32_t capacity, std::string_view text) {
        String s(capacity);
        s.assign(text);
        return s;
    }
};

}  // namespace tarn
