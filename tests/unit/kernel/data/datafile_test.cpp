// SPDX-License-Identifier: Apache-2.0
//
// What is in a data file, and whole values by format.
#include "kernel/data/datafile.h"
#include "kernel/values/string_text.h"
#include "support/tempfolder.h"
#include "unit/kernel/tab_fixture.h"
#include "unit/kernel/table_rows.h"

#include <sys/stat.h>

namespace tarn {
namespace {

using namespace std::string_literals;

class DataFiles : public Tab {
protected:
    std::string message(std::string_view bytes, const std::string& name = "/d/f") {
        files_.put(name, std::string(bytes));
        const DataFileInfo info = GetDataFileInfo(name, nullptr);
        EXPECT_EQ(info.typeText.empty(), !info.message.empty());
        return info.message;
    }
};

TEST_F(DataFiles, FormatsAreToldByTheExtension) {
    const struct {
        const char* name;
        DataFormat format;
    } cases[] = {{"a.txt", FormatText},       {"a.csv", FormatComma},      {"a.TAB", FormatTab},
                 {"a.bin", FormatBinary},     {"a.Dbf", FormatXbase},      {"a.xbf", FormatXbase},
                 {"/x.csv/a.xml", FormatXml}, {"/x.csv/a", FormatUnknown}, {"a.csv.bak", FormatUnknown},
                 {"", FormatUnknown}};
    for (const auto& c : cases) EXPECT_EQ(DataFormatOf(c.name), c.format) << c.name;
}

TEST_F(DataFiles, FilesThatCannotBeUsedSaySo) {
    const char* const invalid = "File '/d/f' is invalid, does not exist or is empty.";
    EXPECT_EQ(message(""), invalid);
    EXPECT_EQ(message("", "/d/f.csv"), "File '/d/f.csv' is invalid, does not exist or is empty.");
    EXPECT_EQ(message("\0\0\0\0abc"s), invalid);
    EXPECT_EQ(message("\0"s), invalid);
    EXPECT_EQ(GetDataFileInfo("/d/none", nullptr).message,
              "File '/d/none' is invalid, does not exist or is empty.");
    EXPECT_EQ(GetDataFileInfo("/d", nullptr).message, "File '/d' is invalid, does not exist or is empty.");
    EXPECT_EQ(GetDataFileInfo("", nullptr).message, "File '' is invalid, does not exist or is empty.");
    files_.put("/d/f", "1,2\n", 0);
    EXPECT_EQ(GetDataFileInfo("/d/f", nullptr).message,
              "File '/d/f' cannot be opened, it is currently locked by another application.");
    files_.put("/d/f", "1,2\n");
    files_.failAt(os::FileCall::Read, 1, os::FileError::ReadFailed);
    EXPECT_EQ(GetDataFileInfo("/d/f", nullptr).message,
              "File '/d/f' cannot be opened, it is currently locked by another application.");
}

TEST_F(DataFiles, UnknownTypesShowTheirFirstBytes) {
    EXPECT_EQ(message("\x89PNG\r\n"),
              "File '/d/f' is an unknown file type (first four bytes = 89 50 4E 47).");
    EXPECT_EQ(message("#1"), "File '/d/f' is an unknown file type (first four bytes = 23 31 00 00).");
    EXPECT_EQ(message("ab\xFF"), "File '/d/f' is an unknown file type (first four bytes = 61 62 FF 00).");
    EXPECT_EQ(message("\nabc"), "File '/d/f' is an unknown file type (first four bytes = 0A 61 62 63).");
}

TEST_F(DataFiles, TableFilesAreToldByTheirDates) {
    for (const int version : {3, 4, 5, 48, 131, 139})
        EXPECT_EQ(message(std::string(1, static_cast<char>(version)) + "\x7D\x0C\x1F"),
                  "Xbase file header is incomplete")
            << version;
    EXPECT_EQ(message("\3\x7D\x0D\x1F"),
              "File '/d/f' is an unknown file type (first four bytes = 03 7D 0D 1F).");
    EXPECT_EQ(message("\3\x7D\x0C\x20"),
              "File '/d/f' is an unknown file type (first four bytes = 03 7D 0C 20).");
    EXPECT_EQ(message("\3\x7D\0\x1F"s),
              "File '/d/f' is an unknown file type (first four bytes = 03 7D 00 1F).");
    EXPECT_EQ(message("\3\x7D\x0C\0"s),
              "File '/d/f' is an unknown file type (first four bytes = 03 7D 0C 00).");
}

TEST_F(DataFiles, RowsOfTablesAloneTellNothing) {
    EXPECT_EQ(message("\0\0\0\1", "/d/f.bin"), "File '/d/f.bin' is invalid, does not exist or is empty.");
    EXPECT_EQ(message("\0\0\0\1"s, "/d/f.bin"),
              "File '/d/f.bin' is an unknown file type (first four bytes = 00 00 00 01).");
}

TEST_F(DataFiles, TextIsReadByItsFirstLine) {
    files_.put("/d/f", "1,a\n2,b\n");
    DataFileInfo info = GetDataFileInfo("/d/f", nullptr);
    EXPECT_EQ(info.format, FormatComma);
    EXPECT_EQ(info.message, "");
    EXPECT_EQ(info.typeText, "FIELD1 : integer\nFIELD2 : string[1]\n");
    EXPECT_EQ(info.options.separatorchar, ',');
    EXPECT_EQ(info.options.numheaderrows, 0);
    EXPECT_EQ(info.options.maxdatarows, 100);
    files_.put("/d/f", "id\tname\n--\t----\n1\ta,b\n");
    info = GetDataFileInfo("/d/f", nullptr);
    EXPECT_EQ(info.format, FormatTab);
    EXPECT_EQ(info.typeText, "id : integer\nname : string[4]\n");
    EXPECT_EQ(info.keys, "id,name");
    const DataOptions header{1, 0, ',', -1};
    files_.put("/d/f", "a,b\n1,2\n");
    info = GetDataFileInfo("/d/f", &header);
    EXPECT_EQ(info.format, FormatComma);
    EXPECT_EQ(info.typeText, "a : integer\nb : integer\n");
    EXPECT_EQ(info.options.maxdatarows, -1);
}

TEST_F(DataFiles, KeysHaveTheRepairedNamesOfTheColumns) {
    const struct {
        const char *header, *row, *keys;
    } cases[] = {{"id,end,qty", "1,2,3", "id,end_1,qty"},
                 {"id,End,qty", "1,2,3", "id,End_1,qty"},
                 {"\"price : EUR\",qty", "1,2", "price___EUR,qty"},
                 {"\"last; first\",qty", "1,2", "last__first,qty"},
                 {"order no,group", "1,2", "order_no,group_1"},
                 {"a heading of just over thirty-eight chars,qty", "1,2",
                  "a_heading_of_just_over_thirty_eight_char,qty"}};
    const DataOptions header{1, 0, ',', -1};
    for (const auto& c : cases) {
        files_.put("/d/f.csv", c.header + "\n"s + c.row + "\n" + c.row + "\n");
        const DataFileInfo info = GetDataFileInfo("/d/f.csv", &header);
        EXPECT_EQ(info.message, "") << c.header;
        EXPECT_EQ(info.keys, c.keys) << info.typeText;
    }
    files_.put(
        "/d/f",
        "<rows><r><id>1</id><end>5</end><qty>3</qty></r><r><id>2</id><end>6</end><qty>4</qty></r></rows>");
    const DataFileInfo info = GetDataFileInfo("/d/f", nullptr);
    EXPECT_EQ(info.typeText, "id : integer\nend : integer\nqty : integer\n");
    EXPECT_EQ(info.keys, "id,end_1,qty");
}

TEST_F(DataFiles, WithoutOptionsAHundredRowsAreLookedAt) {
    std::string text;
    for (int i = 0; i < 100; ++i) text += "1,2\n";
    EXPECT_EQ(message(text + "x,y\n"), "");
    EXPECT_EQ(GetDataFileInfo("/d/f", nullptr).typeText, "FIELD1 : integer\nFIELD2 : integer\n");
    EXPECT_EQ(GetDataFileInfo("/d/f", &CommaRows).typeText, "FIELD1 : string[40]\nFIELD2 : string[40]\n");
}

TEST_F(DataFiles, ShortFilesAreTextToo) {
    for (const char* text : {"1", "1,2", "a\n1", "1\r\n", "\"\"\"\"", "\1a\1\n"})
        EXPECT_EQ(message(text), "") << text;
}

TEST_F(DataFiles, TheMessageOfDiscoveryIsHandedOn) {
    EXPECT_EQ(message("true,1\n5,1\n"), "The type of element 'FIELD1' changed, from boolean to integer");
    EXPECT_EQ(message("a\tb\n"), "");
    EXPECT_EQ(message("   \n"), "");
    const DataOptions many{9, 0, ',', -1};
    EXPECT_EQ(GetDataFileInfo("/d/f", &many).message, "");
}

TEST_F(DataFiles, XmlGivesItsColumns) {
    files_.put("/d/f", "<data><list><row><a>1</a><b>x</b></row><row><a>2</a><b>yz</b></row></list></data>");
    const DataFileInfo info = GetDataFileInfo("/d/f", nullptr);
    EXPECT_EQ(info.format, FormatXml);
    EXPECT_EQ(info.message, "");
    EXPECT_EQ(info.typeText, "a : integer\nb : string[2]\n");
    EXPECT_EQ(message("<data><a>1</a><b><c>1</c><d>2</d></b></data>"),
              "Column number 2 \"b\" contains a nested record - columns cannot contain nested data");
    EXPECT_EQ(message("<data><a>1</a><b type='union'></b><c>2</c></data>"),
              "Column number 2 \"b\" contains a nested record - columns cannot contain nested data");
    for (const std::string name : {"end", "End"})
        EXPECT_EQ(message("<data><a>1</a><" + name + "><c>1</c><d>2</d></" + name + "></data>"),
                  "Column number 2 \"" + name +
                      "\" contains a nested record - columns cannot contain nested data");
    EXPECT_EQ(message("<data/>"), "File '/d/f' contains no XML data apart from the outermost element.");
    files_.put("/d/f", "<l><r><a>1</a><b/><c>x</c></r><r><a>2</a><b/><c>y</c></r></l>");
    EXPECT_EQ(GetDataFileInfo("/d/f", nullptr).typeText, "a : integer\nb : string[1024]\nc : string[1]\n")
        << "a column that is always empty";
    const std::string broken = message("<data><a>1</b></data>");
    EXPECT_NE(broken.find(" (Line 1, Position "), std::string::npos) << broken;
}

TEST_F(DataFiles, XmlMayBeginWithAByteOrderMarkButNotWithBlanks) {
    const std::string rows = "<l><r><a>1</a></r><r><a>2</a></r></l>";
    EXPECT_EQ(message("\xEF\xBB\xBF" + rows), "");
    EXPECT_EQ(GetDataFileInfo("/d/f", nullptr).typeText, "a : integer\n");
    EXPECT_EQ(GetDataFileInfo("/d/f", nullptr).format, FormatXml);
    EXPECT_EQ(message(" " + rows), "File '/d/f' is an unknown file type (first four bytes = 20 3C 6C 3E).");
    EXPECT_EQ(message("\xEF\xBB\xBF"
                      "a,b\n"),
              "File '/d/f' is an unknown file type (first four bytes = EF BB BF 61).");
    EXPECT_EQ(message("\xEF\xBB\xBF<5"),
              "File '/d/f' is an unknown file type (first four bytes = EF BB BF 3C).");
}

TEST_F(DataFiles, WhatHasNoPlaceInAFileIsToldWithoutOne) {
    files_.put("/d/f", "<a><b>1</b><c>2</c></a>");
    files_.failAt(os::FileCall::Read, 2, os::FileError::ReadFailed);
    EXPECT_EQ(GetDataFileInfo("/d/f", nullptr).message, "Cannot read from file");
}

TEST_F(DataFiles, XmlHoldsWholeValues) {
    Typed list("x : list\n\ti : integer\nend list\n");
    std::string words;
    files_.put("/d/in", "1\n2\n");
    ASSERT_EQ(TabLoad("/d/in", CommaRows, list.get(), KindList).code, 0);
    EXPECT_EQ(SaveValue("/d/f.xml", FormatXml, {}, 0, list.get(), KindList).code, 0);
    ListClear(list.get<ListDescriptor>());
    EXPECT_EQ(LoadValue("/d/f.xml", FormatXml, {}, list.get(), KindList, words).code, 0);
    EXPECT_EQ(Shown(list.get(), KindList), "{1}{2}");
    files_.put("/d/f.xml", "<l>\n<i>1</i>\n<i><b/></i></l>");
    const DataResult result = LoadValue("/d/f.xml", FormatXml, {}, list.get(), KindList, words);
    EXPECT_EQ(result.code, ERR_INTEGER_CONVERSION);
    EXPECT_EQ(result.line, 3);
    EXPECT_EQ(result.row, 0);
}

bool stopAtOnce(std::int64_t, std::int64_t) {
    return false;
}

TEST_F(DataFiles, ALookThatIsStoppedSaysNothingElse) {
    std::string rows, elements;
    while (rows.size() < std::size_t{3 * ProgressStep}) rows += "1,some text\n";
    while (elements.size() < std::size_t{3 * ProgressStep}) elements += "<r><a>1</a></r>\n";
    files_.put("/d/f.csv", rows);
    files_.put("/d/f.xml", "<l>" + elements + "</l>");
    files_.put("/d/g.xml", "<l><r>&no;</r>" + elements + "</l>");
    const DataOptions all = CommaRows;
    UseProgress(stopAtOnce);
    for (const char* name : {"/d/f.csv", "/d/f.xml", "/d/g.xml"}) {
        const DataFileInfo info = GetDataFileInfo(name, &all);
        EXPECT_TRUE(info.stopped) << name;
        EXPECT_EQ(info.message + info.typeText + info.keys, "") << name;
        EXPECT_EQ(info.rowsSeen + info.columnsSeen, 0) << name;
    }
    EXPECT_TRUE(TabDiscover("/d/f.csv", CommaRows, MaxTypeInfo).stopped);
    const String name(std::string_view("/d/f.xml"));
    String keys, type, text;
    GetDataFileInfo(name.get(), nullptr, keys.get(), type.get(), text.get());
    EXPECT_EQ(type.view(), "");
    EXPECT_EQ(text.view(), "Data File information cannot be obtained");
    UseProgress(nullptr);
    EXPECT_FALSE(GetDataFileInfo("/d/f.csv", &all).stopped);
}

TEST_F(DataFiles, TheLanguageGetsThreeStrings) {
    files_.put("/d/f", "1,a\n");
    const String name(std::string_view("/d/f"));
    String keys, type, text;
    GetDataFileInfo(name.get(), nullptr, keys.get(), type.get(), text.get());
    EXPECT_EQ(type.view(), "FIELD1 : integer\nFIELD2 : string[1]\n");
    EXPECT_EQ(text.view(), "");
    EXPECT_EQ(keys.view(), "FIELD1");
    type.assign("x");
    StringDescriptor none{};
    GetDataFileInfo(name.get(), nullptr, &none, type.get(), text.get());
    GetDataFileInfo(nullptr, nullptr, keys.get(), type.get(), text.get());
    EXPECT_EQ(type.view(), "x");
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- the outer lines ----

TEST_F(DataFiles, OuterPairsAreStripped) {
    const struct {
        const char *text, *stripped;
    } cases[] = {
        {"x : table\n\tr : record\n\t\ta : integer\n\tend record\nend table\n", "a : integer\n"},
        {"x : list\n\tr : record\n\t\ta : integer\n\tend record\nend table\n", "a : integer\n"},
        {"r : record\n\ta : integer\n\ts : record\n\t\tb : bit\n\tend record\nend record\n",
         "a : integer\ns : record\n\tb : bit\nend record\n"},
        {"x : list\n\ta : integer\nend list\n", "a : integer\n"},
        {"a : integer\n", "a : integer\n"},
        {"r : record\n\ta : bit\nend record\ns : record\n\tb : bit\nend record\n",
         "r : record\n\ta : bit\nend record\ns : record\n\tb : bit\nend record\n"},
        {"r : record\n\ta : bit\n", "r : record\n\ta : bit\n"},
        {"", ""},
    };
    for (const auto& c : cases) {
        std::string text = c.text;
        TypeInfoStripOuter(text, MaxTypeInfo);
        EXPECT_EQ(text, c.stripped);
    }
    std::string text = "abcdef";
    TypeInfoStripOuter(text, 4);
    EXPECT_EQ(text, "abc");
}

// ---- whole values ----

TEST_F(DataFiles, WhatAFormatCannotHoldIsRefused) {
    String text(std::string_view("x"));
    std::string words;
    for (const std::int32_t format : {0, 4, 8, -1, 99}) {
        const auto code = static_cast<DataFormat>(format);
        EXPECT_EQ(LoadValue("/d/f", code, {}, text.get(), KindString, words).code, 658) << format;
        EXPECT_EQ(SaveValue("/d/f", code, {}, 0, text.get(), KindString).code, 658) << format;
    }
    EXPECT_FALSE(files_.has("/d/f"));
}

TEST_F(DataFiles, WideTextsAreReadByTheirCharacters) {
    CharacterWidth = 2;
    {
        files_.put("/d/f", "1,a\n");
        const String name(std::string_view("/d/f"));
        String keys, type, words;
        GetDataFileInfo(name.get(), nullptr, keys.get(), type.get(), words.get());
        EXPECT_EQ(StringLength(words.get()), 0);
        EXPECT_EQ(NarrowText(type.get()).view(), "FIELD1 : integer\nFIELD2 : string[1]\n");
        const String text("t : table\n\tT : record\n\t\tid : integer\n\t\tname : string[4]\n\tend record\n"
                          "end table\n");
        TableValue table;
        TypeInfoToTable(text.get(), table.get());
        RecordValue row = recordOf({integer(1), tarn::text("ab", 4)});
        TableAdd(table.get(), 1, row.get());
        const DataOptions names{1, 0, ',', -1};
        EXPECT_EQ(SaveValue("/d/g.csv", FormatComma, names, 0, table.get(), KindTable).code, 0);
        EXPECT_EQ(files_.contents("/d/g.csv"), "id,name\n1,ab\n");
        EXPECT_EQ(SaveValue("/d/g.xml", FormatXml, names, 0, table.get(), KindTable).code, 0);
        EXPECT_NE(files_.contents("/d/g.xml").find("<name type=\"string[4]\">ab</name>"), std::string::npos)
            << files_.contents("/d/g.xml");
    }
    CharacterWidth = 1;
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(DataFiles, LinesGoToListsOfTextsAndBack) {
    Typed list("x : list\n\ts : string[20]\nend list\n");
    std::string words;
    files_.put("/d/f", " a,b \n\n\"c\n");
    const DataOptions ignored{2, 2, ',', 1};
    EXPECT_EQ(LoadValue("/d/f", FormatText, ignored, list.get(), KindList, words).rows, 3);
    EXPECT_EQ(Shown(list.get(), KindList), "{ a,b }{}{\"c}");
    EXPECT_EQ(SaveValue("/d/g", FormatText, ignored, 0, list.get(), KindList).rows, 3);
    EXPECT_EQ(files_.contents("/d/g"), files_.contents("/d/f"));
}

// ---- files of other kinds, on the real system ----

class OtherFiles : public Runtime {
protected:
    // How a file ends that is read in all ways: codes of the loads, and what it is said to be.
    static std::string readings(const std::string& name) {
        Typed list("x : list\n\ts : string\nend list\n");
        std::string words, codes;
        for (const std::int32_t format : {FormatText, FormatComma, FormatBinary, FormatXml}) {
            const auto code = static_cast<DataFormat>(format);
            String text;
            const bool binary = format == FormatBinary;
            codes += std::to_string(LoadValue(name, code, CommaRows,
                                              binary ? static_cast<void*>(text.get()) : list.get(),
                                              binary ? KindString : KindList, words)
                                        .code) +
                     " ";
        }
        return codes + GetDataFileInfo(name, &CommaRows).message;
    }
    TempFolder folder;
};

TEST_F(OtherFiles, DevicesAndPipesCannotBeRead) {
    const std::string pipe = folder / "pipe.csv";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& name : {pipe, std::string("/dev/zero")})
        EXPECT_EQ(readings(name),
                  "651 651 651 651 File '" + name + "' is invalid, does not exist or is empty.");
}

TEST_F(OtherFiles, FilesThatTellNoSizeAreReadToTheirEnd) {
    Typed list("x : list\n\ts : string\nend list\n");
    std::string words;
    const DataResult result =
        LoadValue("/proc/self/status", FormatText, CommaRows, list.get(), KindList, words);
    EXPECT_EQ(result.code, 0);
    EXPECT_GT(result.rows, 10);
    EXPECT_EQ(Shown(list.get(), KindList).substr(0, 6), "{Name:");
    String text;
    EXPECT_EQ(LoadValue("/proc/self/status", FormatBinary, CommaRows, text.get(), KindString, words).code, 0);
    EXPECT_EQ(text.view().substr(0, 5), "Name:");
    EXPECT_EQ(GetDataFileInfo("/proc/self/status", &TabRows).message, "");
    // One that is empty.
    ASSERT_TRUE(os::saveFile(folder / "empty", "", os::Durability::Unsynced).ok());
    EXPECT_EQ(LoadValue(folder / "empty", FormatText, CommaRows, list.get(), KindList, words).rows, 0);
    EXPECT_EQ(Shown(list.get(), KindList), "");
}

}  // namespace
}  // namespace tarn
