// SPDX-License-Identifier: Apache-2.0
//
// Random operations on a list in a file, each also done to a list in memory of the same shape and to a
// vector: results, errors and contents must agree.
#include "unit/kernel/filelists_fixture.h"

#include <algorithm>
#include <random>

namespace tarn {
namespace {

using model::Number;
using model::Record;
using model::Text;

constexpr std::int32_t smallCapacity = 40;  // of a fixed list: errors of full lists come often
constexpr std::int32_t most = 120;
constexpr int stepsOfASeed = 1500, seeds = 14;
const std::string file = "/d/a.tab", other = "/d/b.tab";

std::string textOf(std::int32_t n) {
    return n == 0 ? std::string() : std::string(static_cast<std::size_t>(n % 3), 'A') + std::to_string(n);
}

// The element that stands for a number, in the shape of the list; a text may be longer than its capacity.
ValueModel elementOf(Kind kind, std::int32_t n) {
    if (kind == KindInteger) return Number(KindInteger, n);
    if (kind == KindString) return Text(textOf(n), 6);
    return Record({Number(KindInteger, n), Text(textOf(n), 6), Number(KindBoolean, n & 1)});
}

class FileListModel : public FileLists {
protected:
    void start(std::uint32_t seed, Kind kind, std::int32_t capacity) {
        random_.seed(seed);
        kind_ = kind;
        capacity_ = capacity;
        model_.clear();
        inFile_ = opened(file, elementOf(kind, 0), capacity);
        second_ = opened(other, elementOf(kind, 0), capacity);
        const OddValue like(elementOf(kind, 0));
        ListInit(memory_.get(), capacity, like.at(), kind, false);
    }
    void end() {
        for (ListValue* l : {&inFile_, &second_, &memory_}) AdtFree(l->get(), KindList);
        for (const std::string& name : files_.allFiles()) files_.remove(name);
    }

    void step() {
        const int operation = number(0, 15);
        switch (operation) {
        case 0: return get();
        case 1: return put();
        case 2: return number(0, 2) == 0 ? removeStretch() : remove();
        case 3: return number(0, 19) == 0 || tooMany() ? clear() : append();
        case 4: return number(0, 4) == 0 ? resize() : append();
        case 5: return sort();
        case 6: return find();
        case 7: return number(0, 3) == 0 ? copy() : append();
        case 8: return number(0, 3) == 0 ? reopen() : append();
        case 9: return compare();
        case 10: return number(0, 3) == 0 ? batch() : append();
        default: return append();
        }
    }
    void checkAll() {
        ASSERT_EQ(ListCount(inFile_.get()), static_cast<std::int32_t>(model_.size()));
        ASSERT_EQ(ListCount(memory_.get()), static_cast<std::int32_t>(model_.size()));
        for (std::size_t i = 0; i < model_.size(); ++i) {
            const auto position = static_cast<std::int32_t>(i + 1);
            for (ListValue* l : {&inFile_, &memory_}) {
                OddValue v(elementOf(kind_, 0));
                ListGet(l->get(), position, v.at(), kind_);
                ASSERT_EQ(model::Differs(elementOf(kind_, model_[i]), v.at()), "") << position;
            }
        }
        ASSERT_EQ(AdtCheck(inFile_.get(), KindList), "");
        ASSERT_TRUE(AdtCompare("EQ", inFile_.get(), memory_.get(), KindList));
        ASSERT_TRUE(AdtCompare("EQ", memory_.get(), inFile_.get(), KindList));
        ASSERT_EQ(takeError(), 0);
    }

private:
    std::int32_t number(std::int32_t low, std::int32_t high) {
        return std::uniform_int_distribution<std::int32_t>(low, high)(random_);
    }
    [[nodiscard]] std::int32_t count() const { return static_cast<std::int32_t>(model_.size()); }
    [[nodiscard]] bool tooMany() const { return count() > most; }
    // Sometimes none that there is.
    std::int32_t position() {
        return number(0, 9) == 0 || model_.empty() ? number(-1, count() + 2) : number(1, count());
    }

    // Does the same to both lists, and gives the error, which must be one.
    template <class Work>
    std::int32_t both(const char* name, Work work) {
        work(inFile_.get());
        const std::int32_t ofFile = takeError();
        work(memory_.get());
        EXPECT_EQ(takeError(), ofFile) << name;
        return ofFile;
    }

    void append() {
        const std::int32_t n = number(0, 999);
        const OddValue v(elementOf(kind_, n));
        const bool full = capacity_ != UNBOUNDED && count() == capacity_;
        EXPECT_EQ(both("append", [&](auto* l) { ListAppend(v.at(), kind_, l); }), full ? 618 : 0);
        if (!full) model_.push_back(n);
    }
    void get() {
        const std::int32_t at = position();
        const bool there = at >= 1 && at <= count();
        EXPECT_EQ(both("get",
                       [&](auto* l) {
                           OddValue v(elementOf(kind_, 77));
                           ListGet(l, at, v.at(), kind_);
                           const std::int32_t n = there ? model_[static_cast<std::size_t>(at - 1)] : 0;
                           EXPECT_EQ(model::Differs(elementOf(kind_, n), v.at()), "");
                       }),
                  there ? 0 : 603);
    }
    void put() {
        const std::int32_t at = position(), n = number(0, 999);
        const OddValue v(elementOf(kind_, n));
        const bool there = at >= 1 && at <= count();
        EXPECT_EQ(both("put", [&](auto* l) { ListPut(v.at(), kind_, at, l); }), there ? 0 : 603);
        if (there) model_[static_cast<std::size_t>(at - 1)] = n;
    }
    void remove() {
        EXPECT_EQ(both("remove", [](auto* l) { ListRemoveLast(l); }), model_.empty() ? 603 : 0);
        if (!model_.empty()) model_.pop_back();
    }
    void removeStretch() {
        const std::int32_t at = position(), n = number(-1, 5);
        const bool there = at >= 1 && at <= count();
        EXPECT_EQ(both("delete", [=](auto* l) { ListDelete(at, n, l); }), there ? 0 : 603);
        if (!there || n < 1) return;
        model_.erase(model_.begin() + at - 1, model_.begin() + at - 1 + std::min(n, count() - at + 1));
    }
    void clear() {
        both("clear", [](auto* l) { ListClear(l); });
        model_.clear();
    }
    // Which a list in memory cannot do.
    void resize() {
        const std::int32_t n = number(-1, count() + 5), fill = number(0, 999);
        const OddValue v(elementOf(kind_, fill));
        ListResize(n, v.at(), inFile_.get());
        const std::int32_t error = takeError();
        const bool full = capacity_ != UNBOUNDED && n > capacity_;
        EXPECT_EQ(error, n < 0 ? 603 : full ? 618 : 0);
        if (error != 0) return;
        while (count() > n) {
            ListRemoveLast(memory_.get());
            model_.pop_back();
        }
        while (count() < n) {
            ListAppend(v.at(), kind_, memory_.get());
            model_.push_back(fill);
        }
        EXPECT_EQ(takeError(), 0);
    }
    void sort() {
        const bool ascending = number(0, 1) == 0, ignoreCase = number(0, 1) == 0;
        EXPECT_EQ(both("sort", [&](auto* l) { ListSort(l, ascending, ignoreCase); }),
                  kind_ == KindString ? 0 : 761);
        if (kind_ != KindString) return;
        std::sort(model_.begin(), model_.end(), [=](std::int32_t a, std::int32_t b) {
            return ascending ? textOf(a) < textOf(b) : textOf(a) > textOf(b);
        });
    }
    void find() {
        const String text(textOf(number(0, 99)));
        std::int32_t found[2] = {}, next = 0;
        both("find", [&](auto* l) { found[next++] = ListStringFind(l, text.get(), false); });
        EXPECT_EQ(found[0], found[1]);
        if (kind_ != KindString) return;
        const auto at = std::find_if(model_.begin(), model_.end(),
                                     [&](std::int32_t n) { return textOf(n) == text.view(); });
        EXPECT_EQ(found[0], at == model_.end() ? 0 : at - model_.begin() + 1);
    }
    // Around: file to file, to memory and back.
    void copy() {
        AdtCopy(inFile_.get(), second_.get(), KindList);
        AdtCopy(second_.get(), memory_.get(), KindList);
        AdtCopy(memory_.get(), inFile_.get(), KindList);
        EXPECT_EQ(takeError(), 0);
        EXPECT_TRUE(AdtCompare("EQ", second_.get(), inFile_.get(), KindList));
    }
    void reopen() {
        FileClose(inFile_.get(), KindList);
        FileClose(second_.get(), KindList);
        files_.afterMachineDeath(os::SteeredFiles::Names::Lost);
        FileOpen(inFile_.get(), KindList, file);
        FileOpen(second_.get(), KindList, other);
        EXPECT_EQ(takeError(), 0);
    }
    void compare() {
        const bool equal = AdtCompare("EQ", inFile_.get(), second_.get(), KindList);
        const bool differ = AdtCompare("NE", second_.get(), inFile_.get(), KindList);
        EXPECT_NE(equal, differ);
        EXPECT_EQ(takeError(), 0);
    }
    // A stretch of operations under one handle.
    void batch() {
        RowBatch rows(*inFile_.get());
        for (int n = number(1, 30); n > 0; --n) {
            switch (number(0, 7)) {
            case 0: get(); break;
            case 1: put(); break;
            case 2: number(0, 2) == 0 ? removeStretch() : remove(); break;
            case 3: number(0, 9) == 0 ? resize() : append(); break;
            default: append();
            }
        }
        EXPECT_TRUE(rows.finish());
    }

    std::mt19937 random_;
    Kind kind_ = KindNone;
    std::int32_t capacity_ = UNBOUNDED;
    ListValue inFile_, second_, memory_;
    std::vector<std::int32_t> model_;
};

TEST_F(FileListModel, RandomOperationsAgreeWithMemoryAndAVector) {
    SetMemoryChecking(false);
    for (const Kind kind : {KindInteger, KindString, KindRecord}) {
        for (const std::int32_t capacity : {UNBOUNDED, smallCapacity}) {
            for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
                SCOPED_TRACE("kind " + std::to_string(kind) + " capacity " + std::to_string(capacity) +
                             " seed " + std::to_string(seed));
                start(seed, kind, capacity);
                for (int i = 1; i <= stepsOfASeed && !HasFailure(); ++i) {
                    step();
                    if (i % 100 == 0) checkAll();
                }
                end();
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

}  // namespace
}  // namespace tarn
