// SPDX-License-Identifier: Apache-2.0
//
// What programs need around data files, and whole values through the system library.
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "library/data/dbutil.h"
#include "library/system/system.h"
#include "support/errorcell.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace tarn {
namespace {

class DataHelpers : public ::testing::Test {
protected:
    DataHelpers() : steered_(files_) { files_.putFolder("/d"); }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(files_.openHandles(), 0);
    }
    // Header rows and separator, with "|" between.
    std::string details(std::string_view text) {
        files_.put("/d/f.csv", text);
        const PossibleFileDetails found = GETPOSSIBLEFILEDETAILS("/d/f.csv");
        return found.headerRows + "|" + found.separator;
    }

    os::SteeredFiles files_;
    os::Steered steered_;
};

TEST_F(DataHelpers, DatabaseFilesAreToldByTheirExtension) {
    for (const char* name : {"a.dbf", "a.DBF", "/x/a.Xbf"}) EXPECT_TRUE(ISDBASEFILE(name)) << name;
    for (const char* name : {"a.dbf.csv", "dbf", "a.xml", ""}) EXPECT_FALSE(ISDBASEFILE(name)) << name;
}

TEST_F(DataHelpers, TheLayoutIsSuggestedFromTwoLines) {
    EXPECT_EQ(details("a,b\n1,2\n"), "1|,");
    EXPECT_EQ(details("1,2\n"), "0|,");
    EXPECT_EQ(details("name,age\n---,---\n"), "2|,");
    EXPECT_EQ(details("name,age\n---, ---\nx,1\n"), "2|,");
    EXPECT_EQ(details("name,age\n,\n"), "1|,");
    EXPECT_EQ(details("a;b\n1;2\n"), "1|;");
    EXPECT_EQ(details("a:b\n1:2\n"), "1|:");
    EXPECT_EQ(details("a~b\n1~2\n"), "1|~");
    EXPECT_EQ(details("a|b\n1|2\n"), "1||");
    EXPECT_EQ(details("a\tb\n1\t2\n"), "1|\\t");
    EXPECT_EQ(details("a,b;c\n1;2\n"), "0|;");  // the comma is not in the second line
    EXPECT_EQ(details("a;b,c\n"), "0|,");       // the order of separators, not of the line
    EXPECT_EQ(details("\"first name\", b \n1,2\n"), "1|,");
    EXPECT_EQ(details("a,,b\n1,2,3\n"), "1|,");
    EXPECT_EQ(details("a,b,\n1,2,\n"), "1|,");
    EXPECT_EQ(details("a,\"\",b\n--,,--\n"), "2|,");
    EXPECT_EQ(details("a,,2\n1,2,3\n"), "0|,");
    EXPECT_EQ(details(std::string(41, 'n') + ",b\n1,2\n"), "0|,");
    EXPECT_EQ(details("first\nsecond\n"), "1|,");
    EXPECT_EQ(details("first\n---\n"), "2|,");
    EXPECT_EQ(details(""), "0|,");
    EXPECT_EQ(details("\n\n"), "0|,");
}

TEST_F(DataHelpers, AFileThatCannotBeReadGivesTheFirstSuggestion) {
    for (const char* file : {"/d/none", "/d", ""}) {
        const PossibleFileDetails found = GETPOSSIBLEFILEDETAILS(file);
        EXPECT_EQ(found.headerRows, "0");
        EXPECT_EQ(found.separator, ",");
    }
}

TEST(OtherFiles, APipeIsNotWaitedFor) {
    const TempFolder folder;
    const std::string pipe = folder / "pipe.csv";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(GETPOSSIBLEFILEDETAILS(pipe).headerRows, "0");
}

TEST_F(DataHelpers, SeparatorsAreWrittenInManyWays) {
    const struct {
        const char* text;
        std::string separator;
    } cases[] = {{",", ","},        {"  ; ", ";"},    {"\\t", "\t"},  {"\"\\t\"", "\t"},  {"' '", " "},
                 {"\",\"", ","},    {"''", "''"},     {"\"", "\""},   {"\",'", "\",'"},   {"\\x01", "\1"},
                 {"\\xfF", "\xFF"}, {"\\x1", "\\x1"}, {"\\\\", "\\"}, {"\\n\\r", "\n\r"}, {"\\\"", "\""},
                 {"\\q", "\\q"},    {"\\", "\\"},     {"", ""},       {"\t", ""}};
    for (const auto& c : cases) EXPECT_EQ(GETSEPARATOR(c.text), c.separator) << c.text;
}

TEST_F(DataHelpers, TheOptionsRecordIsMadeOfFourTexts) {
    RecordDescriptor record{};
    GETOPTIONSRECORD("2", " 1 ", "\\t", "-1", &record);
    DataOptions options = DataOptionsOf(&record, 2);
    EXPECT_EQ(options.numheaderrows, 2);
    EXPECT_EQ(options.numfooterrows, 1);
    EXPECT_EQ(options.separatorchar, 9);
    EXPECT_EQ(options.maxdatarows, -1);
    GETOPTIONSRECORD("x", "", "", "7", &record);
    options = DataOptionsOf(&record, 2);
    EXPECT_EQ(options.numheaderrows, 0);
    EXPECT_EQ(options.numfooterrows, 0);
    EXPECT_EQ(options.separatorchar, 0);
    EXPECT_EQ(options.maxdatarows, 7);
    GETOPTIONSRECORD("0", "0", "\xFF", "0", &record);
    EXPECT_EQ(DataOptionsOf(&record, 2).separatorchar, 255);
    GETOPTIONSRECORD("0", "0", "\t", "0", &record);
    EXPECT_EQ(DataOptionsOf(&record, 2).separatorchar, 9);
    RecordFree(&record);
}

TEST_F(DataHelpers, SuggestionsLeadToTheColumns) {
    const struct {
        const char *text, *columns;
    } cases[] = {{"a,b\n1,2\n", "a : integer\nb : integer\n"},
                 {"1,2\n", "FIELD1 : integer\nFIELD2 : integer\n"},
                 {"name,age\n---------,---\nx,1\n", "name : string[9]\nage : integer\n"}};
    for (const auto& c : cases) {
        files_.put("/d/f.csv", c.text);
        const PossibleFileDetails found = GETPOSSIBLEFILEDETAILS("/d/f.csv");
        RecordDescriptor record{};
        GETOPTIONSRECORD(found.headerRows, "0", found.separator, "-1", &record);
        const DataOptions options = DataOptionsOf(&record, 2);
        const DataFileInfo info = GetDataFileInfo("/d/f.csv", &options);
        EXPECT_EQ(info.format, FormatComma);
        EXPECT_EQ(info.typeText, c.columns);
        RecordFree(&record);
    }
}

TEST_F(DataHelpers, FoldersAreFoundOnAPath) {
    files_.putFolder("/d/Sub");
    EXPECT_TRUE(DIRFINDPATH("/d", "/x;/d"));
    EXPECT_TRUE(DIRFINDPATH("/d/", "/D"));
    EXPECT_TRUE(DIRFINDPATH("\\d\\sub", " /d/Sub/ ;/x"));
    EXPECT_TRUE(DIRFINDPATH("/d/./x/../sub", "/d/sub"));
    EXPECT_FALSE(DIRFINDPATH("/d", "/d/sub;/"));
    EXPECT_FALSE(DIRFINDPATH("c:/d", "c:/d"));
    EXPECT_FALSE(DIRFINDPATH("", "/d;"));
    EXPECT_FALSE(DIRFINDPATH("/d", ""));
    SETCURDIR("/d");
    EXPECT_TRUE(DIRFINDPATH("sub", "/d/sub"));
    EXPECT_TRUE(DIRFINDPATH("..", "/"));
    SETCURDIR("/");
}

TEST_F(DataHelpers, CharactersAreCountedAndLinesSplit) {
    EXPECT_EQ(STRCHARCOUNT("a,b,,c", ','), 3);
    EXPECT_EQ(STRCHARCOUNT("", ','), 0);
    const LineTokens tokens = GETLINETOKENS(" \tone two\t\tthree four\r\n");
    EXPECT_EQ(tokens.a, "one");
    EXPECT_EQ(tokens.b, "two");
    EXPECT_EQ(tokens.c, "three");
    EXPECT_EQ(GETLINETOKENS("one").b, "");
    EXPECT_EQ(GETLINETOKENS("").a, "");
}

TEST_F(DataHelpers, FreeNamesHaveShortForms) {
    SETCURDIR("/d");
    EXPECT_EQ(FILETEMPNAMES("x").next, "x1.tmp");
    files_.put("/d/x7.tmp", "");
    EXPECT_EQ(FILETEMPNAMES("x2").last, "x7.tmp");
    EXPECT_EQ(FILETEMPNAMES("x").next, "x8.tmp");
    EXPECT_EQ(FILETEMPNAMES("x", ".csv").next, "x1.csv");
    EXPECT_EQ(FILETEMPNAMES("x", ".csv").last, "x.csv");
    SETCURDIR("/");
}

// ---- whole values ----

TEST_F(DataHelpers, ValuesGoToFilesAndBackByFormat) {
    String text(std::string_view("a\nb"));
    EXPECT_EQ(SAVEFILE("/d/f", 1, text.get(), KindString).rows, 2);
    EXPECT_EQ(files_.contents("/d/f"), "a\nb\n");
    EXPECT_EQ(SAVEFILE("/d/f", text.get(), KindString).code, 0);
    EXPECT_EQ(files_.contents("/d/f"), "a\nb");
    EXPECT_EQ(SAVEFILE("/d/f", 7, text.get(), KindString).code, 0);
    EXPECT_EQ(files_.contents("/d/f"), "FIELD1\n------\na\nb\n");
    text.assign("");
    EXPECT_EQ(LOADFILE("/d/f", 7, text.get(), KindString).rows, 2);
    EXPECT_EQ(text.view(), "a\nb\n");
    EXPECT_EQ(LOADFILE("/d/f", 2, text.get(), KindString).code, 0);
    EXPECT_EQ(text.view(), "FIELD1\n------\na\nb\n");
    RecordDescriptor options{};
    GETOPTIONSRECORD("1", "1", ",", "-1", &options);
    EXPECT_EQ(LOADFILE("/d/f", 2, &options, text.get(), KindString).code, 0);
    EXPECT_EQ(text.view(), "------\na\n");
    RecordFree(&options);
    EXPECT_EQ(LOADFILE("/d/f", text.get(), KindString).code, 0);
    EXPECT_EQ(text.view(), "FIELD1\n------\na\nb\n");
}

TEST_F(DataHelpers, FailuresAreInTheCellToo) {
    String text(std::string_view("old"));
    EXPECT_EQ(LOADFILE("/d/none", 2, text.get(), KindString).code, 651);
    EXPECT_EQ(takeError(), 651);
    EXPECT_EQ(LOADFILE("/d/none", 4, text.get(), KindString).code, 658);
    EXPECT_EQ(takeError(), 658);
    EXPECT_EQ(SAVEFILE("/none/f", text.get(), KindString).code, 652);
    EXPECT_EQ(takeError(), 652);
    RecordDescriptor wrong{};
    RecordInit(&wrong, TagRecord, MakeFieldKinds({KindInteger}));
    EXPECT_EQ(LOADFILE("/d/none", 2, &wrong, text.get(), KindString).code, 757);
    EXPECT_EQ(takeError(), 757);
    EXPECT_EQ(SAVEFILE("/d/f", 2, &wrong, text.get(), KindString).code, 757);
    EXPECT_EQ(takeError(), 757);
    RecordFree(&wrong);
    EXPECT_EQ(text.view(), "old");
    EXPECT_FALSE(files_.has("/d/f"));
}

TEST_F(DataHelpers, ACellThatDoesNotConvertTellsItsRow) {
    files_.put("/d/f", "1,2\nx,3\n");
    RecordDescriptor record{};
    RecordInit(&record, TagRecord, MakeFieldKinds({KindInteger, KindInteger}));
    EXPECT_EQ(LOADFILE("/d/f", 2, &record, KindRecord).code, 0);
    files_.put("/d/f", "x,3\n");
    const DataResult result = LOADFILE("/d/f", 2, &record, KindRecord);
    EXPECT_EQ(result.code, 983);
    EXPECT_EQ(result.row, 1);
    EXPECT_EQ(takeError(), 983);
    RecordFree(&record);
}

}  // namespace
}  // namespace tarn
