// SPDX-License-Identifier: Apache-2.0
//
// Random operations on sets of many bounds against std::set. After each step the bytes of the changed set are
// those that the model gives, member by member.
#include "kernel/values/sets.h"

#include "kernel/run/errors.h"
#include "kernel/values/adt.h"
#include "unit/kernel/runtime_fixture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <set>

using namespace tarn;

namespace {

using Members = std::set<std::int32_t>;

struct Model {
    std::int32_t lower = 1, upper = 1;
    bool dynamic = false;
    Members members;

    [[nodiscard]] bool holds(std::int32_t i) const { return i >= lower && i <= upper; }
};

std::int32_t byteOf(std::int32_t i) {
    return static_cast<std::int32_t>(std::ceil(i / 8.0));
}

std::string bytesOf(const Model& model) {
    std::string bytes(static_cast<std::size_t>(byteOf(model.upper) - byteOf(model.lower) + 1), '\0');
    for (const std::int32_t i : model.members) {
        char& byte = bytes[static_cast<std::size_t>(byteOf(i) - byteOf(model.lower))];
        byte = static_cast<char>(static_cast<unsigned char>(byte) | 128 >> ((i - 1) % 8 + 8) % 8);
    }
    return bytes;
}

std::string textOf(const Members& members, const std::string& to) {
    std::string text;
    for (auto at = members.begin(); at != members.end();) {
        const std::int32_t lo = *at;
        std::int32_t hi = lo;
        while (++at != members.end() && *at == hi + 1) ++hi;
        text += (text.empty() ? "" : ",") + std::to_string(lo);
        if (hi > lo) text += to + std::to_string(hi);
    }
    return "[" + text + "]";
}

// The highest member that only one has decides.
int orderOf(const Members& a, const Members& b) {
    Members differing;
    std::set_symmetric_difference(a.begin(), a.end(), b.begin(), b.end(),
                                  std::inserter(differing, differing.end()));
    if (differing.empty()) return 0;
    return a.count(*differing.rbegin()) != 0 ? 1 : -1;
}

class SetModel : public Runtime {
protected:
    static constexpr int count = 4, steps = 30000;

    void run(unsigned seed) {
        random_.seed(seed);
        SetMemoryChecking(seed % 2 == 0);
        for (int i = 0; i < count; ++i) create(i);
        for (int step = 0; step < steps && !HasFailure(); ++step) {
            SCOPED_TRACE(step);
            oneStep();
        }
        for (int i = 0; i < count; ++i) SetFree(set(i));
        EXPECT_EQ(LiveBlocks(), 0);
        SetMemoryChecking(false);
    }

private:
    // Not at an even address.
    SetDescriptor* set(int i) {
        return reinterpret_cast<SetDescriptor*>(storage_ + 1 + static_cast<std::size_t>(i) * 45);
    }
    Model& model(int i) { return models_[static_cast<std::size_t>(i)]; }
    std::int32_t upTo(std::int32_t n) { return static_cast<std::int32_t>(random_() % (unsigned(n) + 1)); }
    std::int32_t between(std::int32_t a, std::int32_t b) { return a + upTo(b - a); }
    int any() { return upTo(count - 1); }
    std::int32_t member() { return upTo(200) == 0 ? between(-40000, 40000) : between(-130, 150); }

    void expectError(std::int32_t expected) {
        EXPECT_EQ(ErrorCell(), expected);
        ClearError();
    }

    void create(int i) {
        const std::int32_t lower = between(-120, 100), upper = between(lower, 140);
        Model made;
        made.dynamic = upTo(1) == 0;
        if (!made.dynamic) {
            made.lower = lower;
            made.upper = upper;
        }
        SetInit(set(i), made.dynamic ? UNBOUNDED : lower, made.dynamic ? UNBOUNDED : upper);
        model(i) = made;
        verify(i);
    }

    void verify(int i) {
        const Model& expected = model(i);
        SetDescriptor* s = set(i);
        EXPECT_EQ(AdtCheck(s, KindSet), "");
        ASSERT_EQ(SetLowerBound(s), expected.lower);
        ASSERT_EQ(SetUpperBound(s), expected.upper);
        const std::string bytes = bytesOf(expected);
        ASSERT_EQ(std::int32_t{s->size}, static_cast<std::int32_t>(bytes.size()));
        ASSERT_EQ(std::memcmp(At(s->data), bytes.data(), bytes.size()), 0) << textOf(expected.members, "..");
        EXPECT_EQ(SetCount(s), static_cast<std::int32_t>(expected.members.size()));
        EXPECT_EQ(ErrorCell(), 0);
    }

    void oneStep() {
        using Step = void (SetModel::*)();
        static constexpr Step table[] = {
            &SetModel::includeOne, &SetModel::includeRange, &SetModel::excludeOne, &SetModel::excludeRange,
            &SetModel::includeOne, &SetModel::includeRange, &SetModel::redim,      &SetModel::combine,
            &SetModel::combine,    &SetModel::assign,       &SetModel::compare,    &SetModel::contains,
            &SetModel::asText,     &SetModel::fromText,     &SetModel::copy,       &SetModel::renew};
        (this->*table[upTo(std::size(table) - 1)])();
    }

    void put(std::int32_t lo, std::int32_t hi, bool in) {
        const int i = any();
        Model& m = model(i);
        const bool legal = lo >= -32768 && hi <= 32767 && lo <= hi;
        const bool good = legal && (m.dynamic || (m.holds(lo) && m.holds(hi)));
        if (lo == hi && upTo(1) == 0)
            (in ? SetInclude : SetExclude)(lo, set(i));
        else
            (in ? SetIncludeRange : SetExcludeRange)(lo, hi, set(i));
        expectError(good ? 0 : 601);
        if (good && in) {
            m.lower = std::min(m.lower, lo);
            m.upper = std::max(m.upper, hi);
            for (std::int32_t k = lo; k <= hi; ++k) m.members.insert(k);
        } else if (good) {
            m.members.erase(m.members.lower_bound(lo), m.members.upper_bound(hi));
        }
        verify(i);
        if (m.upper - m.lower > 400) shrink(i);
    }
    void includeOne() {
        const std::int32_t i = member();
        put(i, i, true);
    }
    void excludeOne() {
        const std::int32_t i = member();
        put(i, i, false);
    }
    void includeRange() {
        const std::int32_t lo = between(-130, 150);
        put(lo, lo + between(-2, 90), true);
    }
    void excludeRange() {
        const std::int32_t lo = member();
        put(lo, lo + between(-2, 90), false);
    }

    void newBounds(int i, std::int32_t lower, std::int32_t upper, bool preserve) {
        Model& m = model(i);
        SetRedim(set(i), lower, upper, preserve);
        expectError(!m.dynamic ? 614 : lower > upper ? 601 : 0);
        if (!m.dynamic || lower > upper) return verify(i);
        m.lower = lower;
        m.upper = upper;
        if (!preserve) m.members.clear();
        m.members.erase(m.members.begin(), m.members.lower_bound(lower));
        m.members.erase(m.members.upper_bound(upper), m.members.end());
        verify(i);
    }
    void redim() {
        const std::int32_t lower = between(-130, 140);
        newBounds(any(), lower, between(lower - 3, 150), upTo(4) != 0);
    }
    // A far member has made it too large for the model to be quick.
    void shrink(int i) { newBounds(i, between(-130, 0), between(0, 150), true); }

    // What dest holds after these members with these bounds were assigned; the result is the error.
    static std::int32_t store(Model& dest, const Model& from) {
        if (dest.dynamic) {
            dest.members = from.members;
            dest.lower = from.lower;
            dest.upper = from.upper;
            return 0;
        }
        Members kept;
        std::copy_if(from.members.begin(), from.members.end(), std::inserter(kept, kept.end()),
                     [&](std::int32_t k) { return dest.holds(k); });
        dest.members = kept;
        return kept.size() == from.members.size() ? 0 : 616;
    }

    void combine() {
        const int a = any(), b = any(), dest = any(), which = upTo(2);
        const Model left = model(a), right = model(b);
        Model result{std::min(left.lower, right.lower), std::max(left.upper, right.upper), true, {}};
        std::insert_iterator<Members> into(result.members, result.members.end());
        const Members &x = left.members, &y = right.members;
        if (which == 0) {
            std::set_union(x.begin(), x.end(), y.begin(), y.end(), into);
            SetUnion(set(a), set(b), set(dest));
        } else if (which == 1) {
            std::set_intersection(x.begin(), x.end(), y.begin(), y.end(), into);
            SetIntersect(set(a), set(b), set(dest));
        } else {
            std::set_difference(x.begin(), x.end(), y.begin(), y.end(), into);
            SetDifference(set(a), set(b), set(dest));
        }
        expectError(store(model(dest), result));
        for (const int i : {a, b, dest}) verify(i);
    }

    void assign() {
        const int dest = any(), src = any();
        const Model from = model(src);
        const std::int32_t expected = store(model(dest), from);
        std::int32_t error = -1;
        SetAssign(set(dest), set(src), error);
        EXPECT_EQ(error, expected);
        expectError(expected);
        verify(dest);
        verify(src);
    }

    void copy() {
        const int dest = any(), src = any();
        const Model from = model(src);
        if (upTo(3) == 0 && dest != src) {
            SetFree(set(dest));
            model(dest) = from;
            AdtCopy(set(src), set(dest), KindSet);
        } else {
            const std::int32_t expected = store(model(dest), from);
            AdtCopy(set(src), set(dest), KindSet, 1);
            expectError(expected);
        }
        verify(dest);
    }

    void renew() {
        const int i = any();
        switch (upTo(3)) {
        case 0:
            SetFree(set(i));
            create(i);
            break;
        case 1:
            SetClear(set(i));
            model(i).members.clear();
            break;
        case 2:
            AdtClear(set(i), KindSet);
            model(i).members.clear();
            if (model(i).dynamic) model(i).lower = model(i).upper = 1;
            break;
        default: break;
        }
        verify(i);
    }

    void compare() {
        const int a = any(), b = any();
        const int order = orderOf(model(a).members, model(b).members);
        EXPECT_EQ(SetCompare("EQ", set(a), set(b)), order == 0);
        EXPECT_EQ(SetCompare("NE", set(a), set(b)), order != 0);
        EXPECT_EQ(SetCompare("GT", set(a), set(b)), order > 0);
        EXPECT_EQ(SetCompare("LT", set(a), set(b)), order < 0);
        EXPECT_EQ(SetCompare("GE", set(a), set(b)), order >= 0);
        EXPECT_EQ(SetCompare("LE", set(a), set(b)), order <= 0);
        EXPECT_EQ(AdtCompare("EQ", set(a), set(b), KindSet), order == 0);
        expectError(0);
    }

    void contains() {
        const int i = any();
        for (std::int32_t k = -140; k < 160; k += 1 + upTo(20)) {
            EXPECT_EQ(SetContains(k, set(i)), model(i).members.count(k) != 0) << k;
        }
        expectError(0);
    }

    void asText() {
        const int i = any();
        String text;
        const bool dots = upTo(1) == 0;
        SetToText(set(i), dots, text.get());
        EXPECT_EQ(text.view(), textOf(model(i).members, dots ? ".." : ":"));
        expectError(0);
    }

    void fromText() {
        const int i = any();
        const std::string text = textOf(model(any()).members, upTo(1) == 0 ? ".." : ":");
        Model read = model(i);  // of which the members are replaced by those of the text
        const Members members = parsed(text);
        read.members = members;
        read.lower = members.empty() ? 1 : std::min(1, *members.begin());
        read.upper = members.empty() ? 1 : std::max(1, *members.rbegin());
        const std::int32_t expected = store(model(i), read);
        std::int32_t position = 3, error = -1;
        SetFromText("]]" + text + "]]", position, set(i), error);
        EXPECT_EQ(error, expected);
        EXPECT_EQ(position, static_cast<std::int32_t>(text.size()) + 3);
        expectError(expected);
        verify(i);
    }

    static Members parsed(const std::string& text) {
        Members members;
        for (std::size_t at = 1; at + 1 < text.size();) {
            std::size_t used = 0;
            const int lo = std::stoi(text.substr(at), &used);
            at += used;
            int hi = lo;
            if (text[at] == '.' || text[at] == ':') {
                at += text[at] == '.' ? 2 : 1;
                hi = std::stoi(text.substr(at), &used);
                at += used;
            }
            for (int k = lo; k <= hi; ++k) members.insert(k);
            ++at;
        }
        return members;
    }

    std::mt19937 random_;
    std::array<Model, count> models_;
    alignas(8) char storage_[256] = {};
};

TEST_F(SetModel, OperationsDoWhatTheyDoToSetsOfNumbers) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        run(seed);
        if (HasFailure()) return;
    }
}

}  // namespace
