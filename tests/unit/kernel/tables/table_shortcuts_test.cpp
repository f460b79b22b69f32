// SPDX-License-Identifier: Apache-2.0
//
// Searches by shortcuts whose lines are full of slots and entries that were left: none of them is a row, whatever the
// key that is sought. Keys of zeros alone are the ones that such leftovers look like most.
#include "kernel/index/index_heads.h"
#include "kernel/tables/table_mirrors.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <functional>
#include <random>
#include <set>
#include <string>
#include <vector>

using namespace tarn;

namespace {

// Keys of one kind, each made of a number: that of 0 is all zeros.
struct Keys {
    const char* name;
    Cells (*of)(std::uint32_t n);
};

Cells fourBytes(std::uint32_t n) {
    Cells cells;
    for (const std::uint32_t shift : {24U, 16U, 8U, 0U}) cells.push_back(ordinal(n >> shift & 0xFFU));
    return cells;
}
std::string characterBytes(std::uint32_t n) {
    std::string bytes;
    for (const Cell& cell : fourBytes(n)) bytes += static_cast<char>(cell.number);
    return bytes;
}

const Keys everyKind[] = {
    {"integer", [](std::uint32_t n) { return Cells{integer(static_cast<std::int32_t>(n ^ 0x80000000U))}; }},
    {"enums", fourBytes},
    {"characters", [](std::uint32_t n) { return Cells{characters(characterBytes(n), 4)}; }},
    {"string", [](std::uint32_t n) { return Cells{text(n == 0 ? "" : "k" + std::to_string(n))}; }},
};

std::uint32_t hashOf(const Keys& keys, std::uint32_t n) {
    if (keys.of != everyKind[3].of) return HashOfWhole(std::uint64_t{n} << 32U);
    const std::string word = n == 0 ? "" : "k" + std::to_string(n);
    KeyView view;
    view.count = 1;
    view.parts[0] = {KindString, static_cast<std::int32_t>(word.size()), word.data(), nullptr};
    return HashOfKey(view, HeadOfKey(view));
}

// The first key from `n` on with such a hash.
std::uint32_t keyWith(const Keys& keys, const std::function<bool(std::uint32_t)>& isWanted,
                      std::uint32_t n = 1) {
    while (!isWanted(hashOf(keys, n))) ++n;
    return n;
}
// Hashes of the first line, where the key of zeros is, and of others, for the tables of these tests.
bool isInFirstLine(std::uint32_t hash) {
    return hash < 1U << 27U;
}
bool isInAnotherLine(std::uint32_t hash) {
    return hash >= 1U << 29U;
}

class Shortcuts : public Runtime, public ::testing::WithParamInterface<std::tuple<int, bool>> {
protected:
    void SetUp() override {
        Runtime::SetUp();
        const auto kinds = static_cast<std::int32_t>(keys.of(0).size());
        out = recordOf(rowOf(0));
        const std::int32_t map = kinds == 1 ? MakeKeyMap(1) : MakeKeyMap(1, 2, 3, 4);
        TableInit(table.get(), UNBOUNDED, recordOf(rowOf(0)).get(), {map}, "", false);
        if (std::get<1>(GetParam())) TableRoot(table.get(), 1);  // the tree keeps its nodes
    }
    void TearDown() override {
        table = TableValue();
        out = RecordValue();
        EXPECT_EQ(takeError(), 0);
        Runtime::TearDown();
    }
    [[nodiscard]] Cells rowOf(std::uint32_t n) const {
        Cells cells = keys.of(n);
        cells.push_back(fixedNumber(n));
        return cells;
    }
    void add(std::uint32_t n) { TableAdd(table.get(), 1, recordOf(rowOf(n)).get()); }
    void remove(std::uint32_t n) { TableDelete(table.get(), 1, recordOf(keys.of(n)).get()); }
    std::int32_t read(std::uint32_t n) {
        TableRead(table.get(), 1, recordOf(keys.of(n)).get(), out.get());
        return takeError();
    }
    // Rows whose shortcuts, which there then are, stand in other lines; the keys.
    std::vector<std::uint32_t> fill(int count) {
        std::vector<std::uint32_t> added;
        for (std::uint32_t n = 1; static_cast<int>(added.size()) < count; ++n) {
            n = keyWith(keys, isInAnotherLine, n);
            add(n);
            added.push_back(n);
        }
        for (const std::uint32_t n : added) EXPECT_EQ(read(n), 0);
        EXPECT_TRUE(IsMirrored(HeaderOf(*table.get()), 0));
        return added;
    }
    // Keys that are close to that of zeros in all that a search by a shortcut looks at, and others of its line.
    [[nodiscard]] std::vector<std::uint32_t> closeKeys() const {
        std::vector<std::uint32_t> close = {0};
        for (std::uint32_t tag = 0; tag < 4; ++tag) {
            close.push_back(keyWith(
                keys, [=](std::uint32_t hash) { return isInFirstLine(hash) && (hash & 0xFFFFU) == tag; }));
        }
        for (int i = 0; i < 5; ++i) close.push_back(keyWith(keys, isInFirstLine, close.back() + 1));
        return close;
    }
    void expectNone(std::uint32_t n) {
        EXPECT_EQ(read(n), 604);
        bool found = true;
        TableFind("EQ", table.get(), 1, recordOf(keys.of(n)).get(), out.get(), found);
        EXPECT_FALSE(found);
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(CheckTableMirrors(HeaderOf(*table.get())), "");
    }

    const Keys& keys = everyKind[std::get<0>(GetParam())];
    TableValue table;
    RecordValue out;
};

TEST_P(Shortcuts, AKeyOfZerosIsNotFoundInWhatDeletedRowsLeft) {
    const std::uint32_t first = fill(40)[0];
    const std::uint32_t left =
        keyWith(keys, [](std::uint32_t hash) { return isInFirstLine(hash) && (hash & 0xFFFFU) > 3; });
    const std::uint32_t alike =
        keyWith(keys, [](std::uint32_t hash) { return isInFirstLine(hash) && (hash & 0xFFFFU) <= 1; });
    add(left);
    add(alike);
    remove(first);  // the last row, `alike`, takes its number
    remove(left);   // the slot above that of `alike` still has its number
    expectNone(0);
    add(0);
    EXPECT_EQ(read(0), 0);
    EXPECT_EQ(read(alike), 0);
    remove(0);
    expectNone(0);
}

TEST_P(Shortcuts, AKeyOfZerosIsNotFoundInLinesThatNoRowWasIn) {
    fill(40);
    expectNone(0);
    add(keyWith(keys, isInFirstLine));
    expectNone(0);
}

TEST_P(Shortcuts, OnlyRowsThatAreThereAreFoundWhateverWasLeft) {
    const std::vector<std::uint32_t> others = fill(40);
    std::vector<std::uint32_t> drawn = closeKeys();
    drawn.insert(drawn.end(), others.begin(), others.begin() + 10);
    std::set<std::uint32_t> there(others.begin(), others.end());
    std::mt19937 random(9);
    for (int step = 0; step < 4000 && !HasFailure(); ++step) {
        const std::uint32_t n = drawn[random() % drawn.size()];
        switch (random() % 4) {
        case 0:
            add(n);
            EXPECT_EQ(takeError(), there.insert(n).second ? 0 : 635);
            break;
        case 1:
            remove(n);
            EXPECT_EQ(takeError(), there.erase(n) != 0 ? 0 : 604);
            break;
        default:
            ASSERT_EQ(read(n), there.count(n) != 0 ? 0 : 604);
            ASSERT_TRUE(there.count(n) == 0 || sameCells(cellsOf(out.get(), rowOf(n)), rowOf(n)));
        }
        EXPECT_EQ(CheckTableMirrors(HeaderOf(*table.get())), "");
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, Shortcuts, ::testing::Combine(::testing::Range(0, 4), ::testing::Bool()),
                         [](const auto& info) {
                             return std::string(everyKind[std::get<0>(info.param)].name) +
                                    (std::get<1>(info.param) ? "WithNodes" : "");
                         });

}  // namespace
