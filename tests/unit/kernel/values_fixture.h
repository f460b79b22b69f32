// SPDX-License-Identifier: Apache-2.0
//
// For tests of values of any kind.
#pragma once

#include "kernel/run/errors.h"
#include "kernel/values/adt.h"
#include "support/value_model.h"
#include "unit/kernel/checked_fixture.h"

#include <array>

namespace tarn {

class Values : public Checked {};

// Runs `call` with the n-th request failing, until it succeeds; `after` sees the state after each failure.
template <class Before, class Call, class After>
void failEveryRequest(Before before, Call call, After after) {
    for (std::int64_t n = 0;; ++n) {
        SCOPED_TRACE("request " + std::to_string(n));
        const std::int64_t blocks = LiveBlocks();
        {
            auto value = before();
            FailAllocation(n);
            call(value);
            FailAllocation(-1);
            const std::int32_t error = ErrorCell();
            ClearError();
            after(value, error != 0);
            if (error == 0) {
                EXPECT_GT(n, 0);
                return;
            }
            EXPECT_EQ(error, ERR_OUT_OF_MEMORY);
        }
        ASSERT_EQ(LiveBlocks(), blocks);
        ASSERT_LT(n, 1000);
    }
}

// A value of any kind at an odd address, all zero or as a model says; freed at the end.
class OddValue {
public:
    explicit OddValue(Kind kind) : kind_(kind) {}
    explicit OddValue(const ValueModel& model) : kind_(model.kind) { model::Make(model, at()); }
    OddValue(const OddValue&) = delete;
    OddValue& operator=(const OddValue&) = delete;
    ~OddValue() { AdtFree(at(), kind_); }

    [[nodiscard]] void* at() { return bytes_.data() + 1; }
    [[nodiscard]] const void* at() const { return bytes_.data() + 1; }
    [[nodiscard]] Kind kind() const { return kind_; }
    [[nodiscard]] bool isZero() const {
        for (const char c : bytes_)
            if (c != 0) return false;
        return true;
    }
    template <class Descriptor>
    [[nodiscard]] Descriptor* as() {
        return reinterpret_cast<Descriptor*>(at());
    }

private:
    Kind kind_;
    alignas(8) std::array<char, 56> bytes_{};
};

}  // namespace tarn
