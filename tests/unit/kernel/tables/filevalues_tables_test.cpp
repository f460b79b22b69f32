// SPDX-License-Identifier: Apache-2.0
//
// Opening the files of tables: the order of checks, their type text, and what may not be written.
#include "unit/kernel/filevalues_fixture.h"

namespace tarn {
namespace {

using model::Number;
using model::Record;
using model::Text;

// ---- tables ----

// A table of a number, with an index on it.
TableValue tableOf(std::string_view typeText, std::int32_t maxlength = UNBOUNDED) {
    TableValue t;
    const OddValue row(Record({Number(KindInteger, 0)}));
    TableInit(t.get(), maxlength, static_cast<const RecordDescriptor*>(row.at()), {MakeKeyMap(1)}, typeText,
              true);
    return t;
}

TEST_F(FileValues, OpeningATableChecksInOrder) {
    TableValue good = tableOf("a : integer\n"), other = tableOf("a : string[3]\n"), open = tableOf("");
    FileOpen(open.get(), KindTable, "/d/open.tab");
    files_.put("/d/torn.tab", "12345");
    files_.put("/d/full.tab", fromHex("00000002 00000001 00000002"));
    files_.put("/d/bare.tab", fromHex("00000001"));
    TableValue small = tableOf("", 1);
    struct Case {
        TableDescriptor* t;
        std::string name;
        std::int32_t error;
    };
    const Case cases[] = {
        {open.get(), "", 764},
        {other.get(), "", 661},
        {other.get(), "/d/", 657},
        {other.get(), "/d/torn.tab", 762},
        {other.get(), "/d/new.tab", 762},
        {good.get(), "/d/torn.tab", 655},
        {small.get(), "/d/full.tab", 619},
        {good.get(), "/d/bare.tab", 656},
    };
    for (const Case& c : cases) {
        FileOpen(c.t, KindTable, c.name);
        EXPECT_EQ(takeError(), c.error) << &c - cases;
        EXPECT_EQ(FileExists(c.t, KindTable), c.t == open.get());
        EXPECT_EQ(c.t->count, 0);
    }
    EXPECT_FALSE(files_.has("/d/new.tab"));
}

TEST_F(FileValues, TheTypeTextIsTheFieldsOrTheWholeDeclaration) {
    for (const char* text : {"", "a : integer\n", "r : record\n\ta : integer\nend record\n",
                             "t : table\n\tr : record\n\t\ta : integer\n\tend record\nend table\n"}) {
        TableValue t = tableOf(text);
        FileOpen(t.get(), KindTable, "/d/a.tab");
        EXPECT_EQ(takeError(), 0) << text;
    }
}

TEST_F(FileValues, ATableThatMayNotBeWrittenIsReadWithAndWithoutRows) {
    for (const bool empty : {true, false}) {
        files_.putFolder("/d", 0755);
        {
            TableValue t = tableOf("");
            FileOpen(t.get(), KindTable, "/d/a.tab");
            const OddValue row(Record({Number(KindInteger, 7)}));
            if (!empty) TableAdd(t.get(), 1, static_cast<const RecordDescriptor*>(row.at()));
        }
        for (const std::string& file : files_.allFiles()) files_.put(file, files_.contents(file), 0444);
        files_.putFolder("/d", 0555);
        TableValue t = tableOf("");
        FileOpen(t.get(), KindTable, "/d/a.tab");
        EXPECT_EQ(takeError(), 0);
        RecordValue row;
        bool found = false;
        TableFind("FIRST", t.get(), 1, nullptr, row.get(), found);
        EXPECT_EQ(found, !empty);
        FileClose(t.get(), KindTable);
        EXPECT_EQ(takeError(), 0);
        files_.putFolder("/d", 0755);
        for (const std::string& file : files_.allFiles()) files_.remove(file);
    }
}

TEST_F(FileValues, OpeningNeedsNoMemoryOfTheHeap) {
    ListValue l = listOf(Text("", 3), 2);
    FailAllocation(0);
    FileOpen(l.get(), KindList, "/d/a.tab");
    FailAllocation(-1);
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(FileExists(l.get(), KindList));
}

}  // namespace
}  // namespace tarn
