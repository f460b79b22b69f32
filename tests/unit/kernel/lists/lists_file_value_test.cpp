// SPDX-License-Identifier: Apache-2.0
//
// Lists in files as values: copies between memory and files, comparison, and values that hold such lists.
#include "support/tempfolder.h"
#include "unit/kernel/filelists_fixture.h"

namespace tarn {
namespace {

using model::Number;
using model::Record;
using model::Text;

class FileListValues : public FileLists {
protected:
    static ListValue memoryTexts(const Texts& values, std::int32_t maxlength = UNBOUNDED,
                                 std::int32_t capacity = UNBOUNDED) {
        ListValue l;
        const String like(capacity);
        ListInit(l.get(), maxlength, like.get(), KindString, false);
        for (const std::string& value : values) append(l, value);
        return l;
    }
    static void copy(const ListValue& from, ListValue& to) { AdtCopy(from.get(), to.get(), KindList); }
};

// ---- copying ----

TEST_F(FileListValues, CopiesGoBetweenMemoryAndFilesInFourWays) {
    const Texts values{"a", "", "ccc"};
    ListValue memory = memoryTexts(values), other = memoryTexts({"old"}),
              file = texts("/d/a.tab", {"o", "ld"}), second = texts("/d/b.tab", {"x", "y", "z", "u"}, 9);
    copy(memory, other);
    copy(memory, file);
    EXPECT_EQ(textsIn(file), values);
    EXPECT_EQ(bytesOf("/d/a.tab").size(), 3 * 9U);
    copy(file, second);
    EXPECT_EQ(textsIn(second), values);
    EXPECT_EQ(nameOf(second), "/d/b.tab");
    ListValue back = memoryTexts({"old", "values"});
    copy(second, back);
    EXPECT_EQ(textsIn(back), values);
    EXPECT_EQ(check(file) + check(second) + check(back), "");
    EXPECT_EQ(files_.allFiles(), (Texts{"/d/a.tab", "/d/b.tab"}));
    EXPECT_EQ(takeError(), 0);
}

TEST_F(FileListValues, AnUntypedListTakesKindAndShapeFromAFileAndEmptiesOne) {
    ListValue file = texts("/d/a.tab", {"a", "b"}), untyped, empty;
    ListInit(untyped.get(), UNBOUNDED, nullptr, KindNone, false);
    ListInit(empty.get(), UNBOUNDED, nullptr, KindNone, false);
    copy(file, untyped);
    EXPECT_EQ(textsIn(untyped), (Texts{"a", "b"}));
    EXPECT_EQ(untyped.get()->tag, KindString);
    EXPECT_EQ(check(untyped), "");
    copy(empty, file);
    EXPECT_EQ(ListCount(file.get()), 0);
    EXPECT_EQ(bytesOf("/d/a.tab"), "");
}

TEST_F(FileListValues, CopyingChecksInOrder) {
    ListValue memory = memoryTexts({"a", "b"}), open = texts("/d/a.tab", {"a", "b"}),
              ofNumbers = numbers("/d/n.tab", {1}), small = texts("/d/s.tab", {"s"}, 1),
              smallMemory = memoryTexts({"s"}, 1, 5), gone = texts("/d/gone.tab", {"g"}),
              unopened = listOf(Text("", 5)), alsoUnopened = listOf(Text("", 5), 3);
    files_.remove("/d/gone.tab");
    struct Case {
        ListValue *from, *to;
        std::int32_t error;
    };
    ListValue zero;
    const Case cases[] = {
        {&memory, &unopened, 661}, {&unopened, &memory, 661},     {&open, &unopened, 661},
        {&unopened, &open, 661},   {&unopened, &alsoUnopened, 0}, {&open, &zero, 661},
        {&ofNumbers, &open, 611},  {&open, &ofNumbers, 611},      {&memory, &ofNumbers, 611},
        {&ofNumbers, &small, 611}, {&ofNumbers, &memory, 611},    {&open, &small, 618},
        {&memory, &small, 618},    {&open, &smallMemory, 618},    {&gone, &open, 653},
        {&gone, &memory, 653},     {&open, &gone, 653},           {&memory, &gone, 653},
    };
    for (const Case& c : cases) {
        AdtCopy(c.from->get(), c.to->get(), KindList);
        EXPECT_EQ(takeError(), c.error) << &c - cases;
    }
    EXPECT_EQ(textsIn(memory), (Texts{"a", "b"}));
    EXPECT_EQ(textsIn(open), (Texts{"a", "b"}));
    EXPECT_EQ(numbersIn(ofNumbers), (Numbers{1}));
    EXPECT_EQ(textsIn(small), (Texts{"s"}));
    EXPECT_FALSE(files_.has("/d/gone.tab"));
}

TEST_F(FileListValues, TextsAreCutToTheCapacityOfTheFile) {
    for (const bool checking : {false, true}) {
        SetMemoryChecking(checking);
        ListValue memory = memoryTexts({"abcdefg", "x"}), file = texts("/d/a.tab", {"old"}, UNBOUNDED, 3);
        copy(memory, file);
        EXPECT_EQ(takeError(), 615);
        EXPECT_EQ(textsIn(file), (Texts{"abc", "x"}));
    }
}

TEST_F(FileListValues, RecordsOfAnotherShapeLeaveTheRowsAlone) {
    const ValueModel row = Record({Number(KindInteger, 1), Text("a", 3)});
    ListValue file = opened("/d/a.tab", model::Emptied(row)), memory;
    const OddValue good(row), other(Record({Text("a", 3)}));
    ListAppend(good.at(), KindRecord, file.get());
    ListInit(memory.get(), UNBOUNDED, other.at(), KindRecord, false);
    ListAppend(other.at(), KindRecord, memory.get());
    copy(memory, file);
    EXPECT_EQ(takeError(), 611);
    copy(file, memory);
    EXPECT_EQ(takeError(), 611);
    EXPECT_EQ(ListCount(file.get()), 1);
    EXPECT_EQ(check(file), "");
}

TEST_F(FileListValues, AFileIsNotCopiedOntoItself) {
    files_.putLink("/d/a.tab", "/d/link.tab");
    ListValue first = texts("/d/a.tab", {"a", "b"}), second = texts("/d/a.tab"), link = texts("/d/link.tab");
    files_.clearLog();
    copy(first, first);
    copy(first, second);
    copy(link, first);
    copy(first, link);
    EXPECT_EQ(files_.calls(), 0);
    EXPECT_EQ(textsIn(first), (Texts{"a", "b"}));
}

TEST_F(FileListValues, ACopyKeepsTheFieldsOfAnXbaseFile) {
    ListValue l = opened("/d/a.dbf", xbaseRow()), memory;
    std::string bytes = bytesOf("/d/a.dbf");
    bytes.replace(32, 6, "NAME\0\0", 6);
    files_.put("/d/a.dbf", bytes);
    const OddValue row(xbaseRow("ann", '*')), like(xbaseRow());
    ListInit(memory.get(), UNBOUNDED, like.at(), KindRecord, false);
    ListAppend(row.at(), KindRecord, memory.get());
    copy(memory, l);
    EXPECT_EQ(takeError(), 0);
    bytes[4] = 1;
    EXPECT_EQ(bytesOf("/d/a.dbf"), bytes + "*ann");
    EXPECT_EQ(check(l), "");
}

TEST_F(FileListValues, ACopyInAFixedFileIsItsRowsAlone) {
    ListValue file = numbers("/d/a.tab", {1, 2}, 4), memory;
    ListInit(memory.get(), UNBOUNDED, nullptr, KindInteger, false);
    const std::int32_t seven = 7;
    ListAppend(&seven, KindInteger, memory.get());
    copy(memory, file);
    EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("00000001 00000007"));
    for (std::int32_t n = 1; n <= 4; ++n) ListAppend(&n, KindInteger, file.get());
    EXPECT_EQ(takeError(), 618);
    EXPECT_EQ(numbersIn(file), (Numbers{7, 1, 2, 3}));
}

// Rows that were synced stay until synced ones are there.
TEST_F(FileListValues, TheDeathOfTheMachineLeavesTheOldRowsOrTheNew) {
    const ListValue memory = memoryTexts({"new", "rows"});
    for (const auto names : {os::SteeredFiles::Names::Lost, os::SteeredFiles::Names::Kept}) {
        for (int call = 1;; ++call) {
            for (const std::string& file : files_.allFiles()) files_.remove(file);
            ListValue l = texts("/d/a.tab", {"old"});
            FileClose(l.get(), KindList);
            FileOpen(l.get(), KindList, "/d/a.tab");
            files_.dieAt(call);
            bool died = false;
            try {
                copy(memory, l);
            } catch (const os::ProcessDeath&) {
                died = true;
            }
            files_.stopFailing();
            files_.afterMachineDeath(names);
            ListValue found = texts("/d/a.tab");
            const Texts rows = textsIn(found);
            EXPECT_TRUE(rows == (Texts{"old"}) || rows == (Texts{"new", "rows"})) << call;
            if (!died) break;
        }
    }
}

// ---- comparing ----

TEST_F(FileListValues, ListsAreComparedRowByRowWhereverTheyStand) {
    ListValue a = texts("/d/a.tab", {"a", "b"}), same = texts("/d/b.tab", {"a", "b"}, 9),
              differs = texts("/d/c.tab", {"a", "c"}), longer = texts("/d/d.tab", {"a", "b", "c"}),
              memory = memoryTexts({"a", "b"}), ofNumbers = numbers("/d/n.tab", {1, 2}),
              empty = texts("/d/e.tab"), noNumbers = numbers("/d/m.tab"),
              gone = texts("/d/gone.tab", {"a", "b"});
    files_.remove("/d/gone.tab");
    struct Case {
        const ListValue *a, *b;
        bool equal;
    };
    const Case cases[] = {{&a, &same, true},          {&a, &differs, false}, {&a, &longer, false},
                          {&a, &memory, true},        {&memory, &a, true},   {&a, &ofNumbers, false},
                          {&empty, &noNumbers, true}, {&a, &a, true}};
    for (const Case& c : cases) {
        EXPECT_EQ(AdtCompare("EQ", c.a->get(), c.b->get(), KindList), c.equal) << &c - cases;
        EXPECT_EQ(AdtCompare("NE", c.a->get(), c.b->get(), KindList), !c.equal) << &c - cases;
        EXPECT_EQ(takeError(), 0);
    }
    for (const char* op : {"EQ", "NE"}) {
        EXPECT_FALSE(AdtCompare(op, a.get(), gone.get(), KindList));
        EXPECT_EQ(takeError(), 653);
        EXPECT_FALSE(AdtCompare(op, gone.get(), memory.get(), KindList));
        EXPECT_EQ(takeError(), 653);
    }
}

// ---- values that hold them ----

TEST_F(FileListValues, ARecordThatHoldsAFileIsCopiedFieldByField) {
    const auto holder = [](const ListDescriptor* like, std::int32_t number) {
        RecordValue r;
        RecordInit(r.get(), TagRecord, MakeFieldKinds({KindInteger, KindList}));
        RecordPut(r.get(), 1, &number, KindInteger);
        AdtInit(RecordFieldAddress(r.get(), 2), like, KindList);
        return r;
    };
    const ListValue like = listOf(Text("", 5));
    RecordValue from = holder(like.get(), 1), to = holder(like.get(), 2);
    AdtCopy(from.get(), to.get(), KindRecord);  // nothing is open: nothing to copy
    EXPECT_EQ(takeError(), 0);
    auto* source = static_cast<ListDescriptor*>(RecordFieldAddress(from.get(), 2));
    auto* target = static_cast<ListDescriptor*>(RecordFieldAddress(to.get(), 2));
    FileOpen(source, KindList, "/d/a.tab");
    const String text("a");
    ListAppend(text.get(), KindString, source);
    AdtCopy(from.get(), to.get(), KindRecord);
    EXPECT_EQ(takeError(), 661);
    FileOpen(target, KindList, "/d/b.tab");
    AdtCopy(from.get(), to.get(), KindRecord);
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(AdtCompare("EQ", from.get(), to.get(), KindRecord));
    EXPECT_EQ(bytesOf("/d/b.tab"), fromHex("00000001 6100000000"));
    EXPECT_EQ(FileNameOf(target, KindList), "/d/b.tab");
}

TEST_F(FileListValues, ARecordInAListCannotTakeAnOpenFile) {
    RecordValue r;
    RecordInit(r.get(), TagRecord, MakeFieldKinds({KindList}));
    auto* field = static_cast<ListDescriptor*>(RecordFieldAddress(r.get(), 1));
    ListInit(field, UNBOUNDED, nullptr, KindInteger, true);
    ListValue records;
    ListInit(records.get(), UNBOUNDED, r.get(), KindRecord, false);
    FileOpen(field, KindList, "/d/a.tab");
    ListAppend(r.get(), KindRecord, records.get());
    EXPECT_EQ(takeError(), 661);
    EXPECT_EQ(ListCount(records.get()), 0);
    EXPECT_EQ(FileNameOf(field, KindList), "/d/a.tab");
}

// ---- on a disk ----

TEST_F(FileListValues, RealFilesBehaveTheSame) {
    const os::Steered real(os::realFiles());
    const TempFolder folder;
    const std::string plain = folder / "a.tab", fixed = folder / "b.tab";
    ListValue a = texts(plain, {"b", "a"}), b = texts(fixed, {"x"}, 3), memory = memoryTexts({});
    ListSort(a.get(), true, false);
    copy(a, b);
    copy(b, memory);
    EXPECT_EQ(textsIn(memory), (Texts{"a", "b"}));
    ListRemoveLast(b.get());
    EXPECT_EQ(textsIn(b), (Texts{"a"}));
    const String text("zz");
    ListResize(3, text.get(), b.get());
    EXPECT_EQ(textsIn(b), (Texts{"a", "zz", "zz"}));
    ListPut(text.get(), KindString, 1, a.get());
    EXPECT_EQ(check(a) + check(b), "");
    EXPECT_EQ(os::sizeOf(fixed), 4 + 3 * 9);
    std::vector<std::string> names;
    os::files().list(folder.path(), names);
    EXPECT_EQ(names, (Texts{"a.tab", "b.tab"}));
    FileClose(a.get(), KindList);
    FileOpen(a.get(), KindList, plain);
    EXPECT_EQ(textsIn(a), (Texts{"zz", "b"}));
    os::files().remove(plain);
    ListRemoveLast(a.get());
    EXPECT_EQ(takeError(), 653);
}

}  // namespace
}  // namespace tarn
