// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/indexes.h"

#include "kernel/index/index_nodes.h"
#include "kernel/run/errors.h"
#include "support/errorcell.h"
#include "unit/kernel/index_cases.h"
#include "unit/kernel/index_model.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <functional>

using namespace tarn;
using namespace tarn::indexcases;

namespace {

const IndexBlock memory;

class Indexes : public Runtime {
protected:
    void SetUp() override {
        Runtime::SetUp();
        IndexInit(&root);
    }
    void TearDown() override {
        FailAllocation(-1);
        if (root.tag == TagRecord) IndexClear(&root, memory);
        EXPECT_EQ(takeError(), 0);
        Runtime::TearDown();
    }
    std::int32_t insert(const Cells& key, std::int32_t row) {
        return IndexInsert(&root, memory, recordOf(key).get(), row);
    }
    void insertIntegers(std::initializer_list<int> keys) {
        for (const int key : keys) EXPECT_EQ(insert({integer(key)}, key * 10), 0);
    }
    void remove(const Cells& key) { IndexDelete(&root, memory, recordOf(key).get()); }
    // The row, or -1 for none.
    std::int32_t find(std::string_view op, const Cells& key) const {
        const IndexHit hit = IndexFind(op, &root, memory, recordOf(key).get());
        return hit.found ? hit.row : -1;
    }
    std::string picture() const {
        const String text;
        IndexPrint(&root, memory, const_cast<StringDescriptor*>(text.get()));
        return std::string(text.view());
    }
    // As bytes: nodes in pre-order with key, balance and row, for trees of single integers.
    std::string form() const { return form(root.data); }

    static char* node(Offset data) { return At(data); }
    static RecordDescriptor link(Offset data, int at) { return ReadAt<RecordDescriptor>(node(data) + at); }
    static std::string form(Offset data) {
        if (data == 0) return ".";
        const auto key = ReadAt<std::int32_t>(node(data) + 88),
                   balance = ReadAt<std::int32_t>(node(data) + 4);
        const std::string mark = balance == 0 ? "" : balance < 0 ? "-" : "+";
        const std::string left = form(link(data, 16).data), right = form(link(data, 52).data);
        if (left == "." && right == ".") return mark + std::to_string(key);
        return "(" + left + " " + mark + std::to_string(key) + " " + right + ")";
    }

    RecordDescriptor root{};
};

// ---- shape ----

TEST_F(Indexes, AnEmptyTreeIsALinkWithoutData) {
    EXPECT_EQ(root.tag, 14);
    EXPECT_EQ(root.size, 0);
    EXPECT_EQ(root.data, 0U);
    EXPECT_EQ(IndexCount(&root, memory), 0);
    EXPECT_EQ(IndexHeight(&root, memory).height, 0);
    EXPECT_FALSE(IndexFind("FIRST", &root, memory, nullptr).found);
    EXPECT_FALSE(IndexFind("LAST", &root, memory, nullptr).found);
    EXPECT_EQ(find("EQ", {integer(1)}), -1);
}

TEST_F(Indexes, ANodeIsARecordWithRowBalanceLinksAndKeyAt88) {
    EXPECT_EQ(insert({integer(7), text("ab", 5)}, 42), 0);
    EXPECT_EQ(root.size, 88 + 4 + 24);
    EXPECT_EQ(ReadAt<std::int32_t>(node(root.data)), 42);
    for (const int at : {4, 8, 12}) EXPECT_EQ(ReadAt<std::int32_t>(node(root.data) + at), 0);
    for (const int at : {16, 52}) {
        EXPECT_EQ(link(root.data, at).tag, 14);
        EXPECT_EQ(link(root.data, at).data, 0U);
    }
    EXPECT_EQ(ReadAt<std::int32_t>(node(root.data) + 88), 7);
    const auto s = ReadAt<StringDescriptor>(node(root.data) + 92);
    EXPECT_EQ(s.maxlength, 5);
    EXPECT_EQ(s.size, 5);
    EXPECT_EQ(std::string(At(s.data), 5), std::string("ab\0\0\0", 5));
    constexpr int kinds[] = {3, 3, 3, 3, 7, 7, 3, 6, 0};
    for (int n = 1; n <= 9; ++n) EXPECT_EQ(RecordFieldKind(&root, n), kinds[n - 1]);
    EXPECT_EQ(AdtCheck(&root, KindRecord), "");
}

TEST_F(Indexes, ATreeOfNodesIsAWholeRecord) {
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(insert({characters(std::to_string(i * 7 % 50), 4), real(i)}, i), 0);
    EXPECT_EQ(AdtCheck(&root, KindRecord), "");
    AdtFree(&root, KindRecord);
    EXPECT_EQ(LiveBlocks(), 0);
}

// ---- inserting ----

TEST_F(Indexes, AscendingKeysTurnLeft) {
    insertIntegers({1, 2, 3});
    EXPECT_EQ(form(), "(1 2 3)");
}

TEST_F(Indexes, InsertingTurnsAsTheBalancesSay) {
    for (const Insertion& c : insertions) {
        IndexClear(&root, memory);
        insertIntegers(c.keys);
        EXPECT_EQ(form(), c.form);
        EXPECT_EQ(IndexHeight(&root, memory).bad, 0U);
    }
}

TEST_F(Indexes, ADuplicateIsToldAndNotSet) {
    insertIntegers({1, 2, 3});
    EXPECT_EQ(insert({integer(2)}, 99), 635);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(find("EQ", {integer(2)}), 20);
    EXPECT_EQ(IndexCount(&root, memory), 3);
}

// ---- deleting ----

TEST_F(Indexes, DeletingTheOnlyKeyLeavesAnEmptyRoot) {
    insertIntegers({1});
    remove({integer(1)});
    EXPECT_EQ(root.data, 0U);
    EXPECT_EQ(root.size, 0);
    EXPECT_EQ(root.tag, 14);
    EXPECT_EQ(LiveBlocks(), 0);
}

TEST_F(Indexes, DeletingTurnsAsTheBalancesSay) {
    for (const Deletion& c : deletions) {
        SCOPED_TRACE(c.what);
        IndexClear(&root, memory);
        insertIntegers(c.keys);
        remove({integer(c.gone)});
        EXPECT_EQ(form(), c.form);
        EXPECT_EQ(IndexHeight(&root, memory).bad, 0U);
        EXPECT_EQ(IndexCount(&root, memory), static_cast<std::int32_t>(c.keys.size()) - 1);
    }
}

TEST_F(Indexes, AnAbsentKeyCannotBeDeletedOrChanged) {
    insertIntegers({1, 3});
    remove({integer(2)});
    EXPECT_EQ(takeError(), 604);
    IndexUpdateRow(&root, memory, recordOf({integer(2)}).get(), 5);
    EXPECT_EQ(takeError(), 604);
    EXPECT_EQ(form(), "(. +1 3)");
}

TEST_F(Indexes, TheRowOfAKeyCanBeChanged) {
    insertIntegers({1, 2, 3});
    IndexUpdateRow(&root, memory, recordOf({integer(3)}).get(), 77);
    EXPECT_EQ(find("EQ", {integer(3)}), 77);
    EXPECT_EQ(form(), "(1 2 3)");
}

// ---- searching ----

TEST_F(Indexes, OperatorsFindNeighbours) {
    insertIntegers({10, 20, 30, 40, 50});
    for (const Search& c : searches) EXPECT_EQ(find(c.op, {integer(c.key)}), c.row) << c.op << " " << c.key;
}

TEST_F(Indexes, AnUnknownOperatorIsAnError) {
    insertIntegers({1});
    for (const char* op : {"", "E", "EQU", "NE", "EQUALSS", "PREVIOUSLY", "GE ", "FIRSTFIRSTFIRST"}) {
        EXPECT_EQ(find(op, {integer(1)}), -1);
        EXPECT_EQ(takeError(), 636) << op;
    }
}

TEST_F(Indexes, FirstAndLastTakeNoKey) {
    insertIntegers({1, 2});
    EXPECT_EQ(IndexFind("FIRST", &root, memory, nullptr).row, 10);
    EXPECT_EQ(IndexFind("LAST", &root, memory, recordOf({text("x")}).get()).row, 20);
}

TEST_F(Indexes, TheKeyThatWasFoundIsGiven) {
    EXPECT_EQ(insert({integer(5), text("five")}, 1), 0);
    EXPECT_EQ(insert({integer(5), text("fix")}, 2), 0);
    const RecordValue key = recordOf({integer(5), text("fj")});
    RecordValue found = recordOf({integer(0), text("")});
    EXPECT_EQ(IndexFind("LT", &root, memory, key.get(), found.get()).row, 2);
    EXPECT_TRUE(sameCells(cellsOf(found.get(), {integer(0), text("")}), {integer(5), text("fix")}));
    EXPECT_EQ(IndexFind("LT", &root, memory, found.get(), found.get()).row, 1);
    EXPECT_TRUE(sameCells(cellsOf(found.get(), {integer(0), text("")}), {integer(5), text("five")}));
    EXPECT_FALSE(IndexFind("LT", &root, memory, found.get(), found.get()).found);
    EXPECT_TRUE(sameCells(cellsOf(found.get(), {integer(0), text("")}), {integer(5), text("five")}));
    EXPECT_FALSE(IndexFind("FIRST", &root, memory, nullptr, recordOf({integer(1)}).get()).found);
    EXPECT_EQ(takeError(), 636);
}

// ---- order of keys ----

TEST_F(Indexes, KeysOfEveryKindHaveTheirOrder) {
    std::vector<std::vector<Cells>> ascending = ascendingKeys();
    ascending.push_back({{text("")},
                         {text(std::string(1, '\0'))},
                         {text("A")},
                         {text("AB")},
                         {text("B")},
                         {text("a")},
                         {text("\x80")},
                         {text("\xff")}});
    ascending.push_back({{text("a"), flag(true), characters("z", 2), real(1)},
                         {text("a"), flag(true), characters("z", 2), real(NaN)},
                         {text("aa"), flag(false), characters("a", 2), real(0)}});
    for (const std::vector<Cells>& keys : ascending) {
        IndexClear(&root, memory);
        for (std::size_t i = keys.size(); i-- > 0;)
            EXPECT_EQ(insert(keys[i], static_cast<std::int32_t>(i)), 0);
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const auto row = static_cast<std::int32_t>(i);
            EXPECT_EQ(insert(keys[i], 99), 635);
            EXPECT_EQ(find("EQ", keys[i]), row);
            EXPECT_EQ(find("LT", keys[i]), row - 1);
            EXPECT_EQ(find("GT", keys[i]), i + 1 < keys.size() ? row + 1 : -1);
        }
    }
}

TEST_F(Indexes, ZerosOfBothSignsAreOneKey) {
    EXPECT_EQ(insert({real(0.0)}, 1), 0);
    EXPECT_EQ(insert({real(-0.0)}, 2), 635);
    EXPECT_EQ(insert({real(-NaN)}, 2), 0);
    EXPECT_EQ(insert({real(NaN)}, 3), 635);
}

TEST_F(Indexes, WideCharactersAreComparedWhole) {
    CharacterWidth = 2;
    EXPECT_EQ(insert({text("b")}, 1), 0);
    EXPECT_EQ(insert({text("ab")}, 2), 0);
    RecordValue wide = recordOf({text("a")});
    auto* s = static_cast<StringDescriptor*>(RecordFieldAddress(wide.get(), 1));
    WriteAt(At(s->data), std::uint16_t{0x0161});  // above "b", though its low byte is not
    EXPECT_EQ(IndexFind("LT", &root, memory, wide.get()).row, 1);
    EXPECT_EQ(find("GT", {text("a")}), 2);
    EXPECT_EQ(find("EQ", {text("ab")}), 2);
    IndexClear(&root, memory);
    CharacterWidth = 1;
}

// ---- errors ----

TEST_F(Indexes, ARootThatIsNoLinkIsAnError) {
    const RecordValue key = recordOf({integer(1)});
    RecordDescriptor roots[] = {{}, {0, TagUnion, 0, {}}, {92, TagRecord, 0, {}}};
    const auto all = [&](RecordDescriptor* bad) {
        String out;
        const std::function<void()> calls[] = {
            [&] { IndexInsert(bad, memory, key.get(), 1); },
            [&] { IndexDelete(bad, memory, key.get()); },
            [&] { IndexUpdateRow(bad, memory, key.get(), 1); },
            [&] { IndexFind("XX", bad, memory, nullptr); },
            [&] { EXPECT_EQ(IndexCount(bad, memory), 0); },
            [&] { IndexHeight(bad, memory); },
            [&] { IndexPrint(bad, memory, out.get()); },
            [&] { IndexClear(bad, memory); },
        };
        for (const auto& call : calls) {
            call();
            EXPECT_EQ(takeError(), 763);
        }
    };
    all(nullptr);
    for (RecordDescriptor& bad : roots) all(&bad);
    EXPECT_EQ(insert({integer(1)}, 1), 0);
    RecordDescriptor other = *recordOf({integer(1), integer(2)}).get();
    other.data = root.data;
    all(&other);
    IndexInit(nullptr);
    EXPECT_EQ(takeError(), 763);
}

TEST_F(Indexes, AKeyThatDoesNotFitIsAnError) {
    EXPECT_EQ(insert({integer(1), text("a")}, 1), 0);
    const Cells wrong[] = {{integer(1)},
                           {text("a"), integer(1)},
                           {integer(1), text("a"), integer(2)},
                           {integer(1), real(2)},
                           {integer(1), integer(1), integer(1), integer(1), integer(1)}};
    for (const Cells& key : wrong) {
        EXPECT_EQ(insert(key, 2), 0);
        EXPECT_EQ(takeError(), 636);
        remove(key);
        EXPECT_EQ(takeError(), 636);
        EXPECT_EQ(find("EQ", key), -1);
        EXPECT_EQ(takeError(), 636);
        IndexUpdateRow(&root, memory, recordOf(key).get(), 2);
        EXPECT_EQ(takeError(), 636);
    }
    EXPECT_EQ(IndexCount(&root, memory), 1);
}

TEST_F(Indexes, AKeyThatIsNoneIsAnError) {
    RecordValue noFields, list, raw;
    RecordInit(noFields.get(), TagRecord, {});
    RecordInit(list.get(), TagRecord, MakeFieldKinds({KindList}));
    RecordInit(raw.get(), TagRecord, MakeFieldKinds({KindString}));
    RecordDescriptor zero{}, unionKey = *recordOf({integer(1)}).get();
    unionKey.tag = TagUnion;
    const RecordDescriptor* none[] = {nullptr, noFields.get(), list.get(), raw.get(), &zero, &unionKey};
    for (const RecordDescriptor* key : none) {
        EXPECT_EQ(IndexInsert(&root, memory, key, 1), 0);
        EXPECT_EQ(takeError(), 636);
    }
    EXPECT_EQ(insert({integer(1), integer(1), integer(1), integer(1), integer(1)}, 1), 0);
    EXPECT_EQ(takeError(), 636);
    ArrayValue numbers;
    ArrayInit(numbers.get(), KindInteger, 1, 3);
    RecordValue key;
    RecordInit(key.get(), TagRecord, {});
    RecordAppend(key.get(), numbers.get(), KindArray);
    EXPECT_EQ(IndexInsert(&root, memory, key.get(), 1), 0);
    EXPECT_EQ(takeError(), 636);
    EXPECT_EQ(root.data, 0U);
}

TEST_F(Indexes, AMissingKeyComesAfterABadOperator) {
    IndexFind("XX", &root, memory, nullptr);
    EXPECT_EQ(takeError(), 636);
    EXPECT_FALSE(IndexFind("EQ", &root, memory, nullptr).found);
    EXPECT_EQ(takeError(), 636);
}

// ---- height, picture ----

TEST_F(Indexes, HeightNamesTheFirstBadBalance) {
    insertIntegers({4, 2, 6, 1, 3, 5, 7, 8});
    EXPECT_EQ(IndexHeight(&root, memory).height, 4);
    EXPECT_EQ(IndexHeight(&root, memory).bad, 0U);
    const Offset right = link(root.data, 52).data;
    WriteAt(node(right) + 4, std::int32_t{-1});
    EXPECT_EQ(IndexHeight(&root, memory).height, 4);
    EXPECT_EQ(IndexHeight(&root, memory).bad, right);
    WriteAt(node(right) + 4, std::int32_t{1});
}

TEST_F(Indexes, PrintDrawsTheTree) {
    EXPECT_EQ(picture(), "Index is empty.");
    insertIntegers({2});
    EXPECT_EQ(picture(), "[2 0]");
    insertIntegers({1, 4, 3, 6, 5, 7});
    EXPECT_EQ(picture(), "  |-[1 0]\n"
                         "|-[2 0]\n"
                         "| |-[3 0]\n"
                         "[4 0]\n"
                         "| |-[5 0]\n"
                         "|-[6 0]\n"
                         "  |-[7 0]");
}

TEST_F(Indexes, PrintShowsKeysOfSeveralFieldsOnOneLine) {
    EXPECT_EQ(insert({flag(true), ordinal(3), fixedNumber(12500), text("a\nb")}, 1), 0);
    EXPECT_EQ(picture(), "[True,3,1.2500,a.b 0]");
}

TEST_F(Indexes, PrintRefusesMoreThan32Nodes) {
    for (int i = 1; i <= 32; ++i) EXPECT_EQ(insert({integer(i)}, i), 0);
    EXPECT_NE(picture().find("[32 0]"), std::string::npos);
    EXPECT_EQ(insert({integer(33)}, 33), 0);
    EXPECT_EQ(picture(), "Cannot print, too many nodes (maximum is 32).");
}

// ---- damage ----

TEST_F(Indexes, ACircleOfLinksEndsWithAnError) {
    insertIntegers({2, 1, 3});
    const RecordDescriptor saved = link(root.data, 52);
    WriteAt(node(root.data) + 52, root);  // the right child is the root itself
    EXPECT_EQ(find("GE", {integer(9)}), -1);
    EXPECT_EQ(takeError(), 763);
    EXPECT_EQ(find("LAST", {integer(9)}), -1);
    EXPECT_EQ(takeError(), 763);
    EXPECT_EQ(insert({integer(9)}, 9), 0);
    EXPECT_EQ(takeError(), 763);
    remove({integer(9)});
    EXPECT_EQ(takeError(), 763);
    EXPECT_EQ(IndexCount(&root, memory), 0);
    EXPECT_EQ(takeError(), 763);
    EXPECT_EQ(IndexHeight(&root, memory).height, 0);
    EXPECT_EQ(takeError(), 763);
    EXPECT_EQ(picture(), "");
    EXPECT_EQ(takeError(), 763);
    WriteAt(node(root.data) + 52, saved);
    EXPECT_EQ(form(), "(1 2 3)");
}

TEST_F(Indexes, ManyPathsToOneNodeEndWithAnError) {
    for (int i = 1; i <= 63; ++i) EXPECT_EQ(insert({integer(i)}, i), 0);
    std::vector<std::pair<Offset, RecordDescriptor>> saved;
    for (Offset at = root.data; link(at, 16).data != 0; at = link(at, 16).data) {
        saved.emplace_back(at, link(at, 52));
        WriteAt(node(at) + 52, link(at, 16));
    }
    const RecordDescriptor top = root;
    const Offset lowest = link(saved.back().first, 16).data;
    const RecordDescriptor leaf = link(lowest, 16);
    WriteAt(node(lowest) + 16, top);
    WriteAt(node(lowest) + 52, top);
    EXPECT_EQ(IndexCount(&root, memory), 0);
    EXPECT_EQ(takeError(), 763);
    EXPECT_EQ(IndexHeight(&root, memory).height, 0);
    EXPECT_EQ(takeError(), 763);
    for (const auto& [at, right] : saved) WriteAt(node(at) + 52, right);
    WriteAt(node(lowest) + 16, leaf);
    WriteAt(node(lowest) + 52, leaf);
    EXPECT_EQ(IndexCount(&root, memory), 63);
}

// Freeing the nodes that may still be linked would free some of them twice.
TEST_F(Indexes, ADamagedTreeIsLeftToLeak) {
    constexpr struct {
        const char* what;
        int link, target;  // which of the nodes is linked where
    } damages[] = {{"a circle", 52, 0}, {"a node with two parents", 52, 1}};
    for (const auto& damage : damages) {
        SCOPED_TRACE(damage.what);
        insertIntegers({2, 1, 3});
        const Offset nodes[] = {root.data, link(root.data, 16).data, link(root.data, 52).data};
        const FieldKinds kinds = root.kinds;
        const std::int64_t blocks = LiveBlocks();
        RecordDescriptor wrong = root;
        wrong.data = nodes[damage.target];
        WriteAt(node(nodes[0]) + damage.link, wrong);
        IndexClear(&root, memory);
        EXPECT_EQ(takeError(), 763);
        EXPECT_EQ(LiveBlocks(), blocks);
        EXPECT_EQ(root.data, 0U);
        for (const Offset left : nodes) FreeNode(left, kinds);
        EXPECT_EQ(insert({integer(9)}, 9), 0);  // the tree can be used again
        IndexClear(&root, memory);
    }
}

TEST_F(Indexes, WithMemoryCheckingDamagedNodesAreFound) {
    IndexClear(&root, memory);
    SetMemoryChecking(true);
    insertIntegers({4, 2, 6, 1, 3, 5, 7});
    const std::string before = form();
    const Offset right = link(root.data, 52).data;
    struct Damage {
        int at;
        std::int32_t value;
    };
    constexpr Damage damages[] = {{4, 2},  {4, -999},   {16 + 4, 15}, {16, 3},
                                  {52, 0}, {52 + 4, 0}, {52 + 8, 0}};
    for (const Damage& damage : damages) {
        const auto was = ReadAt<std::int32_t>(node(right) + damage.at);
        WriteAt(node(right) + damage.at, damage.value);
        EXPECT_EQ(find("EQ", {integer(5)}), -1);
        EXPECT_EQ(takeError(), 763) << damage.at;
        EXPECT_EQ(find("LAST", {integer(5)}), -1);
        EXPECT_EQ(takeError(), 763);
        insert({integer(8)}, 8);
        EXPECT_EQ(takeError(), 763);
        remove({integer(7)});
        EXPECT_EQ(takeError(), 763);
        remove({integer(1)});  // its neighbours' turn would touch the node
        EXPECT_EQ(takeError(), 763);
        WriteAt(node(right) + damage.at, was);
        EXPECT_EQ(form(), before);
    }
    const RecordDescriptor was = link(right, 52);
    RecordDescriptor outside = was;
    outside.data = 0xFFFFFF00U;
    WriteAt(node(right) + 52, outside);
    EXPECT_EQ(find("EQ", {integer(7)}), -1);
    EXPECT_EQ(takeError(), 763);
    EXPECT_EQ(IndexHeight(&root, memory).height, 0);
    EXPECT_EQ(takeError(), 763);
    WriteAt(node(right) + 52, was);
    IndexClear(&root, memory);
}

// ---- memory ----

TEST_F(Indexes, WhenMemoryIsShortTheTreeIsAsItWas) {
    const auto key = [](int i) { return Cells{integer(i), text("t", 9), text("u"), characters("v", 3)}; };
    for (int i = 0; i < 10; ++i) EXPECT_EQ(insert(key(i), i), 0);
    const RecordValue added = recordOf(key(11));
    const std::string before = form();
    const std::int64_t blocks = LiveBlocks();
    int failures = 0;
    for (;; ++failures) {
        FailAllocation(failures);
        EXPECT_EQ(IndexInsert(&root, memory, added.get(), 11), 0);
        FailAllocation(-1);
        if (takeError() == 0) break;
        EXPECT_EQ(LiveBlocks(), blocks);
        EXPECT_EQ(form(), before);
    }
    EXPECT_EQ(failures, 4);
    EXPECT_EQ(find("EQ", key(11)), 11);
}

TEST_F(Indexes, AFoundKeyIsClearedWhenMemoryIsShort) {
    const std::string longText(1000, 'x');
    EXPECT_EQ(insert({text(longText), text("more")}, 1), 0);
    const RecordValue key = recordOf({text(longText), text("more")});
    int failures = 0;
    for (;; ++failures) {
        RecordValue foundKey = recordOf({text("old"), text("old")});
        FailAllocation(failures);
        const IndexHit hit = IndexFind("EQ", &root, memory, key.get(), foundKey.get());
        FailAllocation(-1);
        const std::int32_t error = takeError();
        const Cells cells = cellsOf(foundKey.get(), {text(""), text("")});
        EXPECT_EQ(hit.found, error == 0);
        EXPECT_EQ(cells[0].text, error == 0 ? longText : "");
        EXPECT_EQ(cells[1].text, error == 0 ? "more" : "");
        if (error == 0) break;
        EXPECT_EQ(error, 802);
    }
    EXPECT_GT(failures, 0);
}

TEST_F(Indexes, DeletingAndSearchingNeedNoMemory) {
    for (int i = 0; i < 100; ++i) EXPECT_EQ(insert({text(std::to_string(i), 9)}, i), 0);
    const RecordValue key = recordOf({text("42", 9)});
    FailAllocation(0);
    EXPECT_EQ(IndexFind("EQ", &root, memory, key.get()).row, 42);
    EXPECT_TRUE(IndexFind("NEXT", &root, memory, key.get()).found);
    IndexUpdateRow(&root, memory, key.get(), 43);
    IndexDelete(&root, memory, key.get());
    EXPECT_EQ(IndexCount(&root, memory), 99);
    IndexClear(&root, memory);
    FailAllocation(-1);
    EXPECT_EQ(takeError(), 0);
}

// ---- against a model ----

class IndexModel : public Indexes, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(IndexModel, TheTreeDoesAsAnOrderedMapDoes) {
    const KeyShape& shape = keyShapes[GetParam()];
    static const char* const operators[] = {"EQ", "FIRST", "LAST", "GE", "GT", "LE", "LT"};
    constexpr int stepsOfRun = 30000;
    const unsigned seed = 1000 + static_cast<unsigned>(GetParam());
    SCOPED_TRACE(shape.name + std::string(", seed ") + std::to_string(seed));
    std::mt19937 random(seed);
    IndexModelMap model;
    for (int step = 0; step < stepsOfRun && !HasFailure(); ++step) {
        const bool growing = step / 1500 % 2 == 0;
        const Cells key = randomKey(shape, random);
        const RecordValue record = recordOf(key);
        const auto choice = static_cast<unsigned>(random() % 10);
        if (choice < (growing ? 5U : 1U)) {
            const bool fresh = model.size() < 500 && model.emplace(key, step).second;
            const bool full = model.size() >= 500 && model.count(key) == 0;
            if (!full) {
                EXPECT_EQ(IndexInsert(&root, memory, record.get(), step), fresh ? 0 : 635);
            }
        } else if (choice < 6) {
            IndexDelete(&root, memory, record.get());
            EXPECT_EQ(takeError(), model.erase(key) != 0 ? 0 : 604);
        } else if (choice == 6) {
            IndexUpdateRow(&root, memory, record.get(), -step);
            EXPECT_EQ(takeError(), model.count(key) != 0 ? 0 : 604);
            if (model.count(key) != 0) model[key] = -step;
        } else {
            const char* op = operators[random() % 7];
            const IndexHit hit = IndexFind(op, &root, memory, record.get()),
                           right = expectedHit(model, op, key);
            EXPECT_EQ(hit.found, right.found) << op;
            EXPECT_EQ(hit.row, right.row) << op;
        }
        if (step % 16 != 0) continue;
        const IndexShape measured = IndexHeight(&root, memory);
        EXPECT_EQ(measured.bad, 0U);
        EXPECT_LE(measured.height, 1.44 * std::log2(static_cast<double>(model.size()) + 2));
        EXPECT_EQ(IndexCount(&root, memory), static_cast<std::int32_t>(model.size()));
    }
    EXPECT_EQ(AdtCheck(&root, KindRecord), "");
    for (const auto& [key, row] : model) EXPECT_EQ(find("EQ", key), row);
}

INSTANTIATE_TEST_SUITE_P(KeyShapes, IndexModel, ::testing::Range<std::size_t>(0, std::size(keyShapes)));

}  // namespace
