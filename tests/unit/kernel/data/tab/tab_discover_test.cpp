// SPDX-License-Identifier: Apache-2.0
//
// Names and types of the columns of delimited text.
#include "unit/kernel/tab_fixture.h"

namespace tarn {
namespace {

class TabDiscovery : public Tab {
protected:
    // The columns alone, or the message.
    std::string columns(std::string_view text, const DataOptions& options = CommaRows) {
        files_.put("/d/a.csv", std::string(text));
        found_ = TabDiscover("/d/a.csv", options, MaxTypeInfo);
        if (!found_.message.empty()) {
            EXPECT_EQ(found_.typeText, "");
            return found_.message;
        }
        std::string lines = found_.typeText;
        EXPECT_TRUE(lines.starts_with("Ta : record\n")) << lines;
        EXPECT_TRUE(lines.ends_with("\nend record\n")) << lines;
        lines.erase(0, lines.find('\n') + 1);
        lines.erase(lines.rfind("end record"));
        TypeInfoChangeIndent(-1, lines, MaxTypeInfo);
        return lines;
    }
    static constexpr DataOptions header{1, 0, ',', -1}, dashes{2, 0, ',', -1};
    TabStructure found_;
};

TEST_F(TabDiscovery, TypesComeFromTheCells) {
    EXPECT_EQ(columns("1,1.5,1E5,true,abc,2020-01-31 00:00:00,[1..3,7],\n"),
              "FIELD1 : integer\nFIELD2 : fixed\nFIELD3 : real\nFIELD4 : boolean\nFIELD5 : string[3]\n"
              "FIELD6 : Tdatetime[24]\nFIELD7 : string[5]\nFIELD8 : string[2]\nFIELD9 : Any\n")
        << "a set's comma separates here";
    EXPECT_EQ(columns("[1..3,7]\t9\n", {0, 0, '\t', -1}), "FIELD1 : set[1:7]\nFIELD2 : integer\n");
    EXPECT_EQ(found_.rowsSeen, 1);
    EXPECT_EQ(found_.columnsSeen, 2);
}

TEST_F(TabDiscovery, NamesComeFromTheHeader) {
    EXPECT_EQ(columns("a,b\n1,2\n", header), "a : integer\nb : integer\n");
    EXPECT_EQ(
        columns("first name,\"b\",x-y,p;q,9lives, c ,,_u\n1,2,3,4,5,6,7,8\n", header),
        "\"first name\" : integer\nb : integer\n\"x-y\" : integer\n\"p;q\" : integer\n\"9lives\" : integer\n"
        "c : integer\nFIELD7 : integer\n_u : integer\n");
    EXPECT_EQ(columns("a\x80\x01"
                      "b,c(d)\n1,2\n",
                      header),
              "ab : integer\n\"c(d)\" : integer\n");
    EXPECT_EQ(columns(std::string(300, 'n') + "\n1\n", header), std::string(255, 'n') + " : integer\n");
}

TEST_F(TabDiscovery, QuotedNamesHoldAnyBytes) {
    EXPECT_EQ(columns("\"a,b\",c\n1,x\n", header), "\"a,b\" : integer\nc : string[1]\n");
    EXPECT_EQ(columns("\"say \"\"hi\"\"\" ,c\n1,x\n", header), "\"say hi\" : integer\nc : string[1]\n");
    EXPECT_EQ(columns("\"a\r\nb\",c\r\n1,x\r\n", header), "ab : integer\nc : string[1]\n");
    EXPECT_EQ(columns("\"a\nb\",c\n--,---\nx,y\n", dashes), "ab : string[2]\nc : string[3]\n");
    EXPECT_EQ(columns("\1\"a\1b\"\1c\1\n\0015\1x\1\n", {1, 0, 1, -1}), "ab : integer\nc : string[1]\n");
    EXPECT_EQ(columns("5\" pipe,b\n1,x\n", header), "\"5 pipe\" : integer\nb : string[1]\n");
    EXPECT_EQ(columns("\"a,b\n1,2\n", header), "a : integer\nb : integer\n") << "never closed";
}

TEST_F(TabDiscovery, OnlyAHeaderGivesAny) {
    EXPECT_EQ(columns("a,b\n", header), "a : Any\nb : Any\n");
    EXPECT_EQ(columns("a,b,c\n1\n", header), "a : integer\nb : Any\nc : Any\n");
    EXPECT_EQ(found_.columnsSeen, 3);
}

TEST_F(TabDiscovery, RowsWiden) {
    EXPECT_EQ(columns("1\n2\n3.5\n"), "FIELD1 : real\n");
    EXPECT_EQ(columns("3.5\n1\n2.25\n"), "FIELD1 : real\n");
    EXPECT_EQ(columns("3.5\n1.25\n"), "FIELD1 : fixed\n");
    EXPECT_EQ(columns("3.5\n1E3\n"), "FIELD1 : real\n");
    EXPECT_EQ(columns("1\nabc\n"), "FIELD1 : string[40]\n");
    EXPECT_EQ(columns("abc\nabcdef\nab\n"), "FIELD1 : string[6]\n");
    EXPECT_EQ(columns(",x\n7,x\nNULL,x\n,x\n"), "FIELD1 : integer\nFIELD2 : string[1]\n");
    EXPECT_EQ(columns("1\n2,b\n3\n"), "FIELD1 : integer\nFIELD2 : string[1]\n");
}

TEST_F(TabDiscovery, MoreDecimalsThanAFixedNumberKeepsAreReal) {
    EXPECT_EQ(columns("52.520008\n"), "FIELD1 : real\n");
    EXPECT_EQ(columns("52.5200\n"), "FIELD1 : fixed\n");
}

TEST_F(TabDiscovery, NullIsSkipped) {
    EXPECT_EQ(columns("NULL\n5\n"), "FIELD1 : integer\n");
    EXPECT_EQ(columns("null\n"), "FIELD1 : Any\n");
}

TEST_F(TabDiscovery, RowsThatDoNotFitAreReported) {
    EXPECT_EQ(columns("a,b\ntrue,x\n5,y\n", header),
              "The type of element 'a' changed, from boolean to integer");
}

TEST_F(TabDiscovery, QuotedCellsAreTextsOfAnyBytes) {
    EXPECT_EQ(columns("\"1\",2\n\"a\nb,c\",3\n"), "FIELD1 : string[7]\nFIELD2 : integer\n");
    EXPECT_EQ(columns("\"01234\"\n"), "FIELD1 : string[7]\n");
}

TEST_F(TabDiscovery, DashesGiveTheWidthOfTexts) {
    EXPECT_EQ(columns("a,b,c\n---------,-----,--\nabc,1,abc\n", dashes),
              "a : string[9]\nb : integer\nc : string[3]\n");
    EXPECT_EQ(columns("a\n", dashes), "a : Any\n");
}

TEST_F(TabDiscovery, AFrameOfSeparatorsIsRemoved) {
    EXPECT_EQ(columns("\1a\1b\1\n\1-\1--\1\n\0015\1x\1\n", {2, 0, 1, -1}), "a : integer\nb : string[2]\n");
}

TEST_F(TabDiscovery, StopsAtAnEmptyLineTheFooterAndTheLimit) {
    EXPECT_EQ(columns("1\n2\n\nx\n"), "FIELD1 : integer\n");
    EXPECT_EQ(found_.rowsSeen, 2);
    EXPECT_EQ(columns("1\n2\n(2 rows affected)\n", {0, 1, ',', -1}), "FIELD1 : integer\n");
    EXPECT_EQ(columns("1\n2\nx\n", {0, 0, ',', 2}), "FIELD1 : integer\n");
    EXPECT_EQ(found_.rowsSeen, 2);
}

TEST_F(TabDiscovery, AtMostFortyEightColumnsAreDeclaredAndAllAreCounted) {
    std::string row = "1";
    for (int i = 2; i <= 60; ++i) row += ",1";
    const std::string text = columns(row + "\n" + row + "\n", header);
    EXPECT_EQ(found_.columnsSeen, 60);
    EXPECT_TRUE(text.ends_with("\"1\" : integer\n"));
    EXPECT_EQ(columns(row + "\n").substr(0, 17), "FIELD1 : integer\n");
    EXPECT_EQ(found_.columnsSeen, 60);
}

TEST_F(TabDiscovery, NoDataIsTold) {
    const char* const nothing = "Cannot find the structure of 'a.csv', there is no data in the file";
    EXPECT_EQ(columns(""), nothing);
    EXPECT_EQ(columns("\n1\n"), nothing);
    EXPECT_EQ(columns("1\n", {0, 0, ',', 0}), nothing);
}

TEST_F(TabDiscovery, AFileThatCannotBeReadIsNotSaidToHaveNoData) {
    EXPECT_EQ(TabDiscover("/d/none", CommaRows, MaxTypeInfo).message,
              "Cannot find the structure of 'none', the file cannot be read (error 651)");
    files_.failAt(os::FileCall::Read, 1, os::FileError::ReadFailed);
    EXPECT_EQ(columns("a,b\n1,2\n"),
              "Cannot find the structure of 'a.csv', the file cannot be read (error 651)");
    files_.stopFailing();
    std::string rows;
    while (rows.size() < 600'000) rows += "1\n";
    files_.failAt(os::FileCall::Read, 2, os::FileError::ReadFailed);
    EXPECT_EQ(columns(rows), "Cannot find the structure of 'a.csv', the file cannot be read (error 651)");
    files_.stopFailing();
}

TEST_F(TabDiscovery, RowsEndAtTheFirstEmptyLine) {
    const struct {
        const char* text;
        std::int32_t most, rows;
    } cases[] = {
        {"1\n2\n", -1, 2}, {"1\n\n2\n", -1, 1}, {"1\n\n2\n", 2, 1},        {"1\n\n2\n", 3, 1},
        {"\n1\n", -1, 0},  {"1\n\n", -1, 1},    {"1\r\n\r\nx\r\n", -1, 1}, {"1\n\n\n2", -1, 1},
    };
    for (const auto& c : cases) {
        columns(c.text, {0, 0, ',', c.most});
        EXPECT_EQ(found_.rowsSeen, c.rows) << c.text;
    }
}

TEST_F(TabDiscovery, ColumnsOfAllRowsAreCountedWhereTheyDoNotFitEachOther) {
    EXPECT_EQ(columns("True\n1\n\n1,2,3\n").substr(0, 19), "The type of element");
    EXPECT_EQ(found_.columnsSeen, 3);
    EXPECT_EQ(columns("1\n2\n" + std::string(59, ',') + "\n"),
              columns("1\n2\n" + std::string(47, ',') + "\n"));
    columns("1\n2\n" + std::string(59, ',') + "\n");
    EXPECT_EQ(found_.columnsSeen, 60);
}

// ---- cells one by one ----

TEST_F(TabDiscovery, EveryCellIsVisitedAsAStringWouldTakeIt) {
    std::string seen;
    const auto visit = [&](std::int32_t row, std::int32_t column, std::string_view text) {
        seen += std::to_string(row) + ":" + std::to_string(column) + "=" + std::string(text) + ";";
    };
    const auto visited = [&](const std::string& text, const DataOptions& options) {
        seen.clear();
        files_.put("/d/a.csv", text);
        const DataResult result = TabVisitCells("/d/a.csv", options, visit);
        EXPECT_FALSE(result.stopped);
        return result.code == 0 ? seen + std::to_string(result.rows) : std::to_string(result.code);
    };
    EXPECT_EQ(visited("a,b\n 1 ,\"x\"\"\ny\"\n\n2,\n", header), "1:1= 1;1:2=x\"\ny;3:1=2;3:2=;3");
    EXPECT_EQ(visited("1\n2\n3\n", {0, 1, ',', 1}), "1:1=1;1");
    EXPECT_EQ(visited("1\n2\n3\n", {0, 1, ',', -1}), "1:1=1;2:1=2;2");
    EXPECT_EQ(visited(std::string(60, ','), CommaRows).substr(0, 6), "1:1=;1");
    EXPECT_EQ(std::count(seen.begin(), seen.end(), ';'), MaxTabColumns);
    EXPECT_EQ(TabVisitCells("/d/none", CommaRows, visit).code, ERR_FILE_READ);
    UseProgress([](std::int64_t, std::int64_t) { return false; });
    files_.put("/d/a.csv", std::string(2 * ProgressStep, '\n'));
    EXPECT_TRUE(TabVisitCells("/d/a.csv", CommaRows, visit).stopped);
    UseProgress({});
}

TEST_F(TabDiscovery, SeparatorsThatCannotBeAreTold) {
    for (const std::int32_t code : {0, 10, 34, 256, -2})
        EXPECT_EQ(columns("a,b\n1,2\n", {1, 0, code, -1}),
                  "Cannot find the structure of 'a.csv', the character with the code " +
                      std::to_string(code) + " cannot be a separator");
    EXPECT_EQ(columns("a,b\n1\n", {1, 0, -1, -1}), "\"a,b\" : integer\n") << "lines have none";
}

TEST_F(TabDiscovery, TheNameOfTheRecordIsThatOfTheFile) {
    files_.put("/d/my file.v2.csv", "1\n");
    EXPECT_EQ(TabDiscover("/d/my file.v2.csv", CommaRows, MaxTypeInfo).typeText,
              "\"Tmy file.v2\" : record\n\tFIELD1 : integer\nend record\n");
}

TEST_F(TabDiscovery, TheTextIsCutToItsSize) {
    files_.put("/d/a.csv", "1\n");
    EXPECT_EQ(TabDiscover("/d/a.csv", CommaRows, 10).typeText, "Ta : reco");
}

TEST_F(TabDiscovery, WhatWasDiscoveredCanBeLoaded) {
    const std::string text = "id,name,ratio,when,\"q\"\n1,abc,1.5,2020-01-31 10:00:00,\"x\ny\"\n"
                             "2,\"d,e\",NULL,,\n,NULL,2,,\"1\"\n";
    const std::string fields = columns(text, header);
    EXPECT_EQ(loaded(text, fields, header),
              "{1|abc|1.5r|2020-01-31 10:00:00|x\ny}{2|d,e|0r||}{0|NULL|2r||1}");
}

}  // namespace
}  // namespace tarn
