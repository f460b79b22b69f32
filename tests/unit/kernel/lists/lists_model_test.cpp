// SPDX-License-Identifier: Apache-2.0
//
// Random operations on lists, each also done to a vector; both must agree after every step.
#include "kernel/lists/lists.h"
#include "unit/kernel/lists_fixture.h"

#include <algorithm>
#include <random>

using namespace tarn;

namespace {

constexpr std::int32_t smallCapacity = 40;  // of a fixed list: errors of full lists come often
constexpr std::int32_t most = 300;
constexpr int stepsOfASeed = 4000, seeds = 60;

// How the values of a kind are made, read and put into lists. A value of the model is a number; texts and
// records are made from it.
struct Numbers {
    using Value = std::int32_t;
    static constexpr Kind kind = KindInteger;
    static Value make(std::int32_t n) { return n; }
    static const void* address(const Value& v) { return &v; }
    static void* address(Value& v) { return &v; }
    static std::int32_t read(const void* element) { return ReadAt<std::int32_t>(element); }
};

std::string textOf(std::int32_t n) {
    return n == 0 ? std::string() : std::string(static_cast<std::size_t>(n % 50), '*') + std::to_string(n);
}
std::int32_t numberOf(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of('*'), text.size()));
    return text.empty() ? 0 : std::stoi(std::string(text));
}

struct Strings {
    using Value = String;
    static constexpr Kind kind = KindString;
    static Value make(std::int32_t n) { return String(textOf(n)); }
    static const void* address(const Value& v) { return v.get(); }
    static void* address(Value& v) { return v.get(); }
    static std::int32_t read(const void* element) {
        return numberOf(StringView(static_cast<const StringDescriptor*>(element)));
    }
};

RecordValue recordOf(std::int32_t n) {
    RecordValue r;
    RecordInit(r.get(), TagRecord, MakeFieldKinds({KindInteger, KindString, KindBoolean}));
    RecordPut(r.get(), 1, &n, KindInteger);
    auto* text = static_cast<StringDescriptor*>(RecordFieldAddress(r.get(), 2));
    StringInit(text, UNBOUNDED);
    StringAssignView(text, textOf(n));
    return r;
}

struct Records {
    using Value = RecordValue;
    static constexpr Kind kind = KindRecord;
    static Value make(std::int32_t n) { return recordOf(n); }
    static const void* address(const Value& v) { return v.get(); }
    static void* address(Value& v) { return v.get(); }
    static std::int32_t read(const void* element) {
        const auto* r = static_cast<const RecordDescriptor*>(element);
        const auto n = ReadAt<std::int32_t>(RecordFieldAddress(r, 1));
        const auto* text = static_cast<const StringDescriptor*>(RecordFieldAddress(r, 2));
        return numberOf(StringView(text)) == n ? n : -1;
    }
};

enum class Life { fixed, unbounded, untyped };

template <class Values>
class Model {
public:
    Model(std::uint32_t seed, Life life) : random_(seed), life_(life) { start(l_); }

    void step() {
        if (static_cast<std::int32_t>(model_.size()) > most) return void(clear());
        static constexpr void (Model::*operations[])() = {
            &Model::append, &Model::append, &Model::append, &Model::append, &Model::appendOwn,
            &Model::append, &Model::append, &Model::put,    &Model::putOwn, &Model::get,
            &Model::erase,  &Model::last,   &Model::copy,   &Model::insert, &Model::sortAndFind};
        (this->*operations[below(std::int32_t{std::size(operations)})])();
        if (below(200) == 0) clear();
    }

    // The steps compare counts and one element; this, everything.
    void compareAll() {
        ASSERT_EQ(AdtCheck(l_.get(), KindList), "");
        ASSERT_EQ(ListCount(l_.get()), static_cast<std::int32_t>(model_.size()));
        for (std::int32_t i = 1; i <= ListCount(l_.get()); ++i)
            ASSERT_EQ(Values::read(ListRef(l_.get(), i)), at(i)) << "at " << i;
    }
    void compareSome() {
        ASSERT_EQ(ListCount(l_.get()), static_cast<std::int32_t>(model_.size()));
        if (model_.empty()) return;
        const std::int32_t i = position();
        ASSERT_EQ(Values::read(ListRef(l_.get(), i)), at(i)) << "at " << i;
        const std::int32_t slots = life_ == Life::fixed ? smallCapacity : ListCount(l_.get());
        ASSERT_EQ(l_.get()->size, slots * KindSize[Values::kind]);
    }

private:
    std::int32_t below(std::int32_t n) { return std::uniform_int_distribution(0, n - 1)(random_); }
    std::int32_t position() { return 1 + below(static_cast<std::int32_t>(model_.size())); }
    std::int32_t& at(std::int32_t i) { return model_[static_cast<std::size_t>(i) - 1]; }
    // Any position, now and then outside.
    std::int32_t anyPosition() { return below(static_cast<std::int32_t>(model_.size()) + 3) - 1; }
    bool isThere(std::int32_t i) const { return i >= 1 && i <= static_cast<std::int32_t>(model_.size()); }
    bool isFull() const { return life_ == Life::fixed && model_.size() == std::size_t{smallCapacity}; }
    void expectError(std::int32_t code) {
        EXPECT_EQ(ErrorCell(), code);
        ClearError();
    }

    void start(ListValue& l) {
        if (life_ == Life::untyped) return ListInit(l.get(), UNBOUNDED, nullptr, KindNone, false);
        const std::int32_t maxlength = life_ == Life::fixed ? smallCapacity : UNBOUNDED;
        const auto like = Values::make(0);
        const void* prototype = IsAdtKind(Values::kind) ? Values::address(like) : nullptr;
        ListInit(l.get(), maxlength, prototype, Values::kind, false);
    }
    void added(std::int32_t index, std::int32_t n) {
        if (isFull()) return expectError(618);
        model_.insert(model_.begin() + index, n);
        expectError(0);
    }

    void append() {
        const std::int32_t n = below(100000);
        const auto v = Values::make(n);
        ListAppend(Values::address(v), Values::kind, l_.get());
        added(static_cast<std::int32_t>(model_.size()), n);
    }
    void appendOwn() {
        if (model_.empty()) return;
        const std::int32_t i = position(), n = at(i);
        ListAppend(ListRef(l_.get(), i), Values::kind, l_.get());
        added(static_cast<std::int32_t>(model_.size()), n);
    }
    void put() {
        const std::int32_t i = anyPosition(), n = below(100000);
        const auto v = Values::make(n);
        ListPut(Values::address(v), Values::kind, i, l_.get());
        if (isThere(i)) at(i) = n;
        expectError(isThere(i) ? 0 : 603);
    }
    void putOwn() {
        if (model_.empty()) return;
        const std::int32_t from = position(), to = position();
        ListPut(ListRef(l_.get(), from), Values::kind, to, l_.get());
        at(to) = at(from);
        expectError(0);
    }
    void get() {
        const std::int32_t i = anyPosition();
        auto v = Values::make(12345);
        ListGet(l_.get(), i, Values::address(v), Values::kind);
        EXPECT_EQ(Values::read(Values::address(v)), isThere(i) ? at(i) : 0);
        expectError(isThere(i) ? 0 : 603);
    }
    void erase() {
        const std::int32_t i = anyPosition(), n = below(5) - 1;
        const bool there = isThere(i);
        ListDelete(i, n, l_.get());
        if (there && n > 0) {
            const auto first = model_.begin() + (i - 1);
            model_.erase(first, first + std::min<std::ptrdiff_t>(n, model_.end() - first));
        }
        expectError(there ? 0 : 603);
    }
    void last() {
        const bool empty = model_.empty();
        ListRemoveLast(l_.get());
        if (!empty) model_.pop_back();
        expectError(empty ? 603 : 0);
    }
    void clear() {
        ListClear(l_.get());
        model_.clear();
        expectError(0);
    }
    // Goes on with a copy of itself, in a list that had other elements.
    void copy() {
        if (below(10) != 0) return;
        ListValue other;
        start(other);
        const auto v = Values::make(777);
        ListAppend(Values::address(v), Values::kind, other.get());
        AdtCopy(l_.get(), other.get(), KindList);
        expectError(0);
        if (ListElementKind(l_.get()) == KindNone) return;
        EXPECT_TRUE(AdtCompare("EQ", l_.get(), other.get(), KindList));
        l_ = std::move(other);
    }
    void insert() {
        if constexpr (Values::kind == KindString) {
            const std::int32_t i = anyPosition(), n = below(100000);
            const bool good = isThere(i) || i == static_cast<std::int32_t>(model_.size()) + 1;
            const String v(textOf(n));
            ListInsert(i, v.get(), l_.get());
            if (good) return added(i - 1, n);
            expectError(603);
        }
    }
    void sortAndFind() {
        if constexpr (Values::kind == KindString) {
            if (below(10) == 0) {
                ListSort(l_.get(), true, false);
                std::sort(model_.begin(), model_.end(),
                          [](std::int32_t a, std::int32_t b) { return textOf(a) < textOf(b); });
            }
            const std::int32_t n = model_.empty() || below(2) == 0 ? below(100000) : at(position());
            const auto found = std::find(model_.begin(), model_.end(), n);
            const String text(textOf(n));
            EXPECT_EQ(ListStringFind(l_.get(), text.get(), false),
                      found == model_.end() ? 0 : found - model_.begin() + 1);
            expectError(0);
        }
    }

    std::mt19937 random_;
    Life life_;
    ListValue l_;
    std::vector<std::int32_t> model_;
};

template <class Values>
class ListModel : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        ASSERT_EQ(LiveBlocks(), 0);
    }
    void TearDown() override {
        EXPECT_EQ(LiveBlocks(), 0);
        ClearError();
    }
};
using Kinds = ::testing::Types<Numbers, Strings, Records>;
TYPED_TEST_SUITE(ListModel, Kinds);

TYPED_TEST(ListModel, ListsOfEveryLifeActLikeVectors) {
    for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Model<TypeParam> model(seed, static_cast<Life>(seed % 3));
        for (int i = 0; i < stepsOfASeed && !this->HasFailure(); ++i) {
            model.step();
            model.compareSome();
            if (i % 16 == 0) model.compareAll();
        }
        if (this->HasFailure()) return;
    }
}

}  // namespace
