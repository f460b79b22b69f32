// SPDX-License-Identifier: Apache-2.0
//
// Sets made of texts, and looked at as texts.
#pragma once

#include "kernel/run/errors.h"
#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/sets.h"
#include "unit/kernel/checked_fixture.h"

#include <cstring>
#include <gtest/gtest.h>

namespace tarn {

class Sets : public Checked {
protected:
    static constexpr std::int32_t lowest = -32768, highest = 32767;

    static OwnedSet dynamic(std::string_view members = "[]") { return made(UNBOUNDED, UNBOUNDED, members); }
    static OwnedSet fixed(std::int32_t lower, std::int32_t upper, std::string_view members = "[]") {
        return made(lower, upper, members);
    }
    static std::string textOf(const SetDescriptor* s, bool dots = true) {
        String text;
        SetToText(s, dots, text.get());
        return std::string(text.view());
    }
    static std::string textOf(const OwnedSet& s) { return textOf(s.get()); }
    // "lower..upper[members]", and what is wrong with the set.
    static std::string whole(const SetDescriptor* s) {
        return std::to_string(SetLowerBound(s)) + ".." + std::to_string(SetUpperBound(s)) + textOf(s) +
               AdtCheck(s, KindSet);
    }
    static std::string whole(const OwnedSet& s) { return whole(s.get()); }
    static bool isZero(const SetDescriptor& s) {
        const SetDescriptor zero{};
        return std::memcmp(&s, &zero, sizeof s) == 0;
    }

    struct Read {
        std::int32_t error, position;
        bool operator==(const Read& other) const = default;
        friend std::ostream& operator<<(std::ostream& out, const Read& read) {
            return out << "error " << read.error << ", position " << read.position;
        }
    };
    static Read read(std::string_view text, const OwnedSet& s, std::int32_t position = 1) {
        Read result{-1, position};
        SetFromText(text, result.position, const_cast<OwnedSet&>(s).get(), result.error);
        return result;
    }

private:
    static OwnedSet made(std::int32_t lower, std::int32_t upper, std::string_view members) {
        OwnedSet s;
        SetInit(s.get(), lower, upper);
        EXPECT_EQ(read(members, s).error, 0) << members;
        return s;
    }
};

}  // namespace tarn
