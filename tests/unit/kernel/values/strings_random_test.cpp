// SPDX-License-Identifier: Apache-2.0
//
// Long random work on strings, beside a model.
#include "unit/kernel/strings_fixture.h"

#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"
#include "support/errorcell.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

using namespace tarn;

namespace {

// A string model beside the kernel's strings: 200,000 random operations on a handful of strings.
class Model {
public:
    explicit Model(std::uint32_t seed) : random_(seed) {
        for (const std::int32_t capacity : capacities) {
            strings_.emplace_back(capacity);
            texts_.emplace_back();
        }
    }
    void step() {
        const std::size_t d = pick(), a = pick(), b = pick();
        const std::string text = someText();
        const auto position = static_cast<std::int32_t>(random_() % 40),
                   count = static_cast<std::int32_t>(random_() % 30);
        switch (random_() % 9) {
        case 0: StringAssign(at(d), at(a)), set(d, texts_[a]); break;
        case 1: StringAssignView(at(d), text), set(d, text); break;
        case 2: StringConcat(at(a), at(b), at(d)), set(d, texts_[a] + texts_[b]); break;
        case 3: StringConcat(at(a), text, at(d)), set(d, texts_[a] + text); break;
        case 4: StringAppend(at(d), at(a)), append(d, texts_[a]); break;
        case 5: StringDelete(at(d), position, count), erase(d, position, count); break;
        case 6: StringPutChar(at(d), position, 'p'), putChar(d, position); break;
        case 7: StringClear(at(d)), texts_[d].clear(); break;
        default:
            StringAssignView(at(d), StringView(at(d)).substr(texts_[d].size() / 2)),
                set(d, texts_[d].substr(texts_[d].size() / 2));
            break;
        }
        // Unbounded strings would double for ever.
        if (texts_[d].size() > 400) StringAssignView(at(d), "short"), set(d, "short");
        check(d, a, b);
    }

private:
    static constexpr std::int32_t capacities[] = {UNBOUNDED, UNBOUNDED, UNBOUNDED, 1, 10, 50};

    StringDescriptor* at(std::size_t i) { return strings_[i].get(); }
    std::size_t pick() { return random_() % strings_.size(); }
    std::string someText() {
        std::string text(random_() % (random_() % 10 == 0 ? 100 : 12), ' ');
        for (char& c : text) c = static_cast<char>("abcABC\0\xFF"[random_() % 8]);
        return text;
    }
    static std::size_t room(std::size_t i) {
        return capacities[i] == UNBOUNDED ? std::string::npos : static_cast<std::size_t>(capacities[i]);
    }
    void set(std::size_t i, const std::string& text) {
        if (text.size() > room(i)) expected_ = 615;
        texts_[i] = text.substr(0, room(i));
    }
    void append(std::size_t i, const std::string& text) {
        if (capacities[i] != UNBOUNDED) texts_[i] = (texts_[i] + text).substr(0, room(i));
    }
    void erase(std::size_t i, std::int32_t position, std::int32_t count) {
        std::string& text = texts_[i];
        if (capacities[i] == UNBOUNDED || position < 1 || static_cast<std::size_t>(position) > text.size())
            return;
        text.erase(static_cast<std::size_t>(position) - 1, static_cast<std::size_t>(count));
    }
    void putChar(std::size_t i, std::int32_t position) {
        const auto index = static_cast<std::size_t>(position);
        if (index >= 1 && index <= texts_[i].size()) texts_[i][index - 1] = 'p';
    }
    void check(std::size_t d, std::size_t a, std::size_t b) {
        ASSERT_EQ(StringView(at(d)), texts_[d]);
        ASSERT_EQ(StringLength(at(d)), static_cast<std::int32_t>(texts_[d].size()));
        ASSERT_EQ(ErrorCell(), expected_);
        ClearError();
        expected_ = 0;
        std::int32_t order = 9;
        StringCompare(at(a), at(b), false, order);
        const int model = texts_[a].compare(texts_[b]);
        ASSERT_EQ(order, (model > 0) - (model < 0));
    }

    std::mt19937 random_;
    std::vector<String> strings_;
    std::vector<std::string> texts_;
    std::int32_t expected_ = 0;
};

class RandomStrings : public Strings, public ::testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(Checking, RandomStrings, ::testing::Bool());

TEST_P(RandomStrings, AgreeWithAModel) {
    SetMemoryChecking(GetParam());
    Model model(20071101);
    for (int i = 0; i < 200000; ++i) {
        model.step();
        if (HasFatalFailure()) FAIL() << "step " << i;
    }
}

}  // namespace
