// SPDX-License-Identifier: Apache-2.0
//
// No conversion changes a value in silence: what a file holds comes out as it went in, or a note says what
// became of it.
#include "os/text/ascii.h"
#include "tarn_data/fixture.h"

#include <sstream>

namespace tarn::datatool {
namespace {

constexpr int Well = 0, Failed = 1;

class Honest : public TarnData {
protected:
    // Converts a file that holds the text, and gives what the other one holds; the notes stand in `errors`.
    std::string convert(const std::string& from, std::string_view text, const std::string& to,
                        const std::string& options = {}) {
        write(from, text);
        EXPECT_EQ(tarnData("convert " + from + " " + to + " " + options), Well) << text << errors;
        return read(to);
    }
    // To another form and back.
    std::string there(const std::string& text, const std::string& form) {
        convert("a.csv", text, "there." + form);
        const std::string noted = errors;
        EXPECT_EQ(tarnData("convert there." + form + " back.csv"), Well) << text << errors;
        errors = noted + errors;
        return read("back.csv");
    }
    void expectNote(const std::string& text) {
        EXPECT_NE(errors.find("note: " + text), std::string::npos) << text << "\n" << errors;
    }
    std::string infoOf(const std::string& text, const std::string& options = {}) {
        write("a.csv", text);
        EXPECT_EQ(tarnData("info a.csv " + options), Well) << text << errors;
        return output;
    }
    void expectColumn(const std::string& text, const std::string& column) {
        EXPECT_NE(infoOf(text).find("\t\t" + column + "\n"), std::string::npos) << text << output;
    }
};

// ---- cells that hold nothing, and numbers that are no values ----

TEST_F(Honest, TextFormsGiveEveryCellBackByteForByte) {
    const std::string texts[] = {
        "id,n\n1,\n2,5\n3,NULL\n4,null\n",
        "zip,d\n01234,0.1\n00000,0.10\n1,.5\n",
        "a,b\n+49,1e5\n-0,1E+05\n",
        "a,b\nTrue,yes\nfalse,No\n,\n",
        "a,b\n2024-01-05,n/a\n2024-01-05 10:11:12.1234567890,x\n",
        "a,b\n\"x \"\"y\"\"\",\"1,2\"\n\"two\nlines\",\"\r\"\n",
        "a,b\n\" x\",\"x \"\n",
        "a,b\n\"007\",\"\"\n",
        "first name,Stra\xC3\x9F"
        "e,9\nAnn,x,1\n",
        "a\n\"\"\nx\n",
        "a,b\nh\xC3\xA4\xE2\x82\xAC,\xF0\x9F\x98\x80\n",
    };
    for (const std::string& text : texts) {
        EXPECT_EQ(convert("a.csv", text, "b.csv"), text);
        EXPECT_EQ(there(text, "tab"), text);
        EXPECT_EQ(errors, "") << text;
    }
    for (const char* text : {"id,n\n1,\n2,5\n3,NULL\n", "zip,d\n01234,0.1\n00000,0.10\n",
                             "a,b\n2024-01-05,n/a\n2024-01-05,x\n", "a,b\n\"two\nlines\",\"x\r\"\n"})
        EXPECT_EQ(there(text, "xml"), text);
    EXPECT_EQ(errors, "");
}

// A program's load would refuse an empty text there.
TEST_F(Honest, EmptyCellsOfNumbersAreElementsWithoutContentInXml) {
    const std::string text =
        "id,amt,ok,r,m,day\n1,1.50,True,1.5E3,[1],2000-01-31\n2,,,,,\n3,2.50,False,2.5E3,[2],\n";
    EXPECT_EQ(there(text, "xml"), text);
    EXPECT_EQ(errors, "");
    const std::string xml = read("there.xml");
    for (const char* part :
         {"<amt type=\"fixed\">1.50</amt>", "<amt type=\"fixed\"/>", "<ok type=\"boolean\"/>",
          "<r type=\"real\"/>", "<m type=\"set[1:2]\"/>", "<day type=\"string\"></day>"})
        EXPECT_NE(xml.find(part), std::string::npos) << part << "\n" << xml;
}

TEST_F(Honest, WordsForNothingStayInXmlAndANoteTellsWhatALoadMakesOfThem) {
    const std::string text = "id,amt,ok\n1,1.50,True\n2,NULL,\nNULL,null,NULL\n";
    EXPECT_EQ(there(text, "xml"), text);
    expectNote("Column 'id': 1 cell says in words that there is nothing (the first in row 3: 'NULL'). A "
               "program that "
               "loads the file into such fields reads 0; --null='NULL' leaves them empty.");
    expectNote("Column 'amt': 2 cells say in words that there is nothing (the first in row 2: 'NULL'). A "
               "program that "
               "loads the file into such fields gets the error 984;");
    expectNote("Column 'ok': 1 cell says in words that there is nothing (the first in row 3: 'NULL'). A "
               "program that "
               "loads the file into such fields gets the error 981;");
    convert("a.csv", text, "b.xml", "--null=NULL --null=null");
    EXPECT_EQ(errors, "");
    EXPECT_EQ(read("b.xml").find("NULL"), std::string::npos);
}

TEST_F(Honest, AFileThatIsProtectedAndOneThatIsNotThereAreToldFromOthers) {
    write("a.csv", "id\n1\n");
    write("t.type", "record\n\tid : integer\nend record\n");
    for (const std::string target : {"b.xml", "b.csv", "b.dbf", "b.bin --type=t.type"}) {
        const std::string name = target.substr(0, target.find(' '));
        write(name, "old");
        shell("chmod 444 " + name);
        EXPECT_EQ(tarnData("convert a.csv " + target), Failed);
        EXPECT_NE(errors.find("File '" + name + "' cannot be written: it is protected against writing."),
                  std::string::npos)
            << errors;
        EXPECT_NE(errors.find("chmod u+w"), std::string::npos) << errors;
        EXPECT_EQ(read(name), "old");
        EXPECT_EQ(tarnData("convert a.csv none/" + target), Failed);
        EXPECT_EQ(errors.find("as it was"), std::string::npos) << errors;
        EXPECT_NE(errors.find("No file was made."), std::string::npos) << errors;
        EXPECT_EQ(errors.find(".."), std::string::npos) << errors;
    }
}

TEST_F(Honest, EmptyNumbersOfXbaseStayEmptyAndNullIsNoted) {
    EXPECT_EQ(there("id,n,ok\n1,,True\n2,5.25,\n3,7,False\n", "dbf"),
              "id,n,ok\n1,,True\n2,5.25,\n3,7,False\n");
    EXPECT_EQ(errors, "");
    EXPECT_EQ(there("id,n\n1,5\n2,NULL\n3,null\n", "dbf"), "id,n\n1,5\n2,\n3,\n");
    expectNote("Column 'n' has 2 cells of NULL, left blank (the first in row 2).");
    EXPECT_EQ(there("id,s\n1,x \n2,y\n", "dbf"), "id,s\n1,x\n2,y\n");
    expectNote("Column 's' has 1 text with blanks at the end, which a dbf file does not keep (the first in "
               "row 1).");
    EXPECT_EQ(there("id,ok\n1,yes\n2,no\n", "dbf"), "id,ok\n1,True\n2,False\n");
    expectNote("Column 'ok' is written as T and F, for True and False, like 'yes' in row 1.");
}

TEST_F(Honest, TableFilesCountWhatBecomesZero) {
    write("t.type", "record\n\tid : integer\n\tn : real\n\tok : boolean\n\ts : string[4]\nend record\n");
    write("a.csv", "id,n,ok,s\n1,2.5,True,x\n2,,,\n3,NULL,no,NULL\n,-0.125,yes,\n");
    ASSERT_EQ(tarnData("convert a.csv t.bin --type=t.type"), Well) << errors;
    expectNote("Column 'n': 2 cells that hold nothing become 0 or False (the first in row 2)");
    expectNote("Column 'ok': 1 cell that holds nothing becomes 0 or False (the first in row 2)");
    expectNote("Column 'id': 1 cell that holds nothing becomes 0 or False (the first in row 4)");
    EXPECT_EQ(errors.find("Column 's'"), std::string::npos) << errors;
    ASSERT_EQ(tarnData("convert t.bin b.csv --type=t.type"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "id,n,ok,s\n1,2.5,True,x\n2,0,False,\n3,0,False,NULL\n0,-0.125,True,\n");
    write("t.type", "record\n\tid : integer\n\tc : set[1:5]\nend record\n");
    write("a.csv", "id;c\n1;[2]\n2;\n");
    ASSERT_EQ(tarnData("convert a.csv t.bin --type=t.type"), Well) << errors;
    expectNote("Column 'c': 1 cell that holds nothing becomes [] (the first in row 2): a table file has no "
               "other set");
}

TEST_F(Honest, ARowOfAnotherLengthIsHeldAgainstTheFirst) {
    write("a.csv", "a,b\n1,2\n3\n4,5,6\n");
    for (const char* const target : {"b.csv", "b.xml", "b.dbf"}) {
        ASSERT_EQ(tarnData("convert a.csv " + std::string(target)), Well) << errors;
        expectNote("Row 2 of 'a.csv' has 1 cell, and the first line has 2; there are 2 such rows.");
    }
}

TEST_F(Honest, TableFilesRefuseWhatAFieldDoesNotHoldByRowAndCell) {
    const struct {
        const char *type, *cell;
    } cases[] = {{"integer", "x"},    {"integer", "1.5"},   {"integer", "2147483648"},
                 {"enum", "256"},     {"boolean", "1"},     {"fixed", "0.12345"},
                 {"real", "n/a"},     {"string[2]", "abc"}, {"Tchars[1:2]", "abc"},
                 {"set[1:5]", "[9]"}, {"set[1:5]", "x"}};
    for (const auto& c : cases) {
        write("t.type", std::string("record\n\tid : integer\n\tn : ") + c.type + "\nend record\n");
        write("a.csv", std::string("id;n\n1;\n2;") + c.cell + "\n");
        EXPECT_EQ(tarnData("convert a.csv t.bin --type=t.type"), Failed) << c.type;
        EXPECT_NE(errors.find(std::string("Row 2, column 'n' holds ") + c.cell), std::string::npos)
            << c.type << errors;
        EXPECT_FALSE(exists("t.bin"));
    }
    write("a.csv", "id,n\n1,n/a\n");
    write("t.type", "record\n\tid : integer\n\tn : real\nend record\n");
    EXPECT_EQ(tarnData("convert a.csv t.bin --type=t.type --null=n/a"), Well) << errors;
    write("a.csv", "id,n\n1,2,3\n");
    EXPECT_EQ(tarnData("convert a.csv t.bin --type=t.type"), Failed);
    EXPECT_NE(errors.find("Row 1 has 3 cells, and the declaration 2 columns."), std::string::npos) << errors;
}

TEST_F(Honest, BlankNumbersOfXbaseInTableFilesAreCounted) {
    convert("a.csv", "id,n\n1,2.5\n2,\n", "d.dbf");
    write("t.type", "record\n\tid : integer\n\tn : real\nend record\n");
    ASSERT_EQ(tarnData("convert d.dbf t.bin --type=t.type"), Well) << errors;
    expectNote("1 blank fields of 'd.dbf' become 0 or False (the first in row 2)");
}

// ---- types of columns ----

TEST_F(Honest, ColumnsThatNoValueGivesBackAreText) {
    expectColumn("a\n1\n01234\n", "a : string[5]");
    expectNote("Column 'a' of 'a.csv' is taken as text: 01234 begins with a zero (row 2).");
    expectColumn("a\n1\n+49\n", "a : string[3]");
    expectNote("Column 'a' of 'a.csv' is taken as text: +49 begins with a plus sign (row 2).");
    expectColumn("a\n0\n0.5\n-0.25\n", "a : real");
    EXPECT_EQ(errors, "");
    expectColumn("a\n+1.0000000000000000E+0005\n", "a : real");
    EXPECT_EQ(errors, "");
    EXPECT_EQ(there("zip\n01234\n99999\n", "dbf"), "zip\n01234\n99999\n");
    expectNote("Column 'zip' of 'a.csv' is taken as text: 01234 begins with a zero (row 1).");
}

TEST_F(Honest, DatesThatAreTooLongAreText) {
    expectColumn("a\n2024-01-05\n2024-01-06\n", "a : Tdatetime[24]");
    expectColumn("a\n2024-01-05                 \n", "a : string[27]");
}

TEST_F(Honest, AnOddCellIsNamedWithItsRow) {
    expectColumn("when,n\n2024-01-05,1\nn/a,2\n2024-02-01,3\n", "when_1 : string[10]");
    expectNote("Column 'when' of 'a.csv' is taken as text: row 2 holds 'n/a', and row 1 '2024-01-05'. "
               "--null='n/a' takes such cells as empty, --text='when' leaves this note away.");
    infoOf(read("a.csv"), "--null=n/a");
    EXPECT_NE(output.find("when_1 : Tdatetime[24]\n"), std::string::npos) << output;
    EXPECT_EQ(errors, "");
    infoOf(read("a.csv"), "--text=WHEN");
    EXPECT_NE(output.find("when_1 : string[10]\n"), std::string::npos) << output;
    EXPECT_EQ(errors, "");
    expectColumn("a,b\n1,x\n2,y\n?,z\n", "a : string[1]");
    expectNote("Column 'a' of 'a.csv' is taken as text: row 3 holds '?', and row 1 '1'.");
    infoOf("a,b\n1,-\n.,-\n-,2\n", "--null=. --null=-");
    EXPECT_NE(output.find("a : integer\n\t\tb : integer\n"), std::string::npos) << output;
    EXPECT_EQ(convert("a.csv", "a,b\n1,n/a\n", "b.csv", "--null=n/a"), "a,b\n1,\n");
    // Where most cells are texts nobody takes the column for numbers.
    infoOf("a\nx1\nx2\n3\nx4\n");
    EXPECT_EQ(errors, "");
    expectColumn("v,w\ntrue,1\n5,2\n", "v : string[4]");
    expectNote("Column 'v' of 'a.csv' is taken as text: row 2 holds '5', and row 1 'true'.");
}

TEST_F(Honest, DeclaredLengthsAreThoseOfTheTexts) {
    expectColumn("a,b\n\"x,\"\"y\",1\n", "a : string[4]");
    expectColumn("a,b\n\"12\",1\n", "a : string[2]");
}

// ---- headings ----

TEST_F(Honest, HeadingsAreToldFromRowsAndComeBack) {
    const struct {
        const char *text, *columns;
    } cases[] = {
        {"Name,Gr\xC3\xB6\xC3\x9F"
         "e (m)\nAnn,1.80\n",
         "Gr____e__m_ : fixed"},
        {"Stra\xC3\x9F"
         "e;2019;2020\nx;1.5;2.5\ny;2.5;3.5\n",
         ""},
        {"a b,2nd,c-d\n1,2,3\n", "n"},
        {"St\xC3\xBC"
         "ck,Preis in \xE2\x82\xAC\n1,2\n",
         "Preis_in____"},
    };
    for (const auto& c : cases) {
        const std::string text = c.text;
        if (*c.columns == '\0') continue;
        infoOf(text);
        EXPECT_NE(output.find(", 1 header row,"), std::string::npos) << text << output;
        EXPECT_NE(output.find(c.columns), std::string::npos) << text << output;
        EXPECT_EQ(convert("a.csv", text, "b.csv"), text);
        EXPECT_EQ(errors, "");
        convert("a.csv", text, "b.xml");
        expectNote("Columns renamed: '");
    }
    infoOf("1,2\n3,4\n");
    EXPECT_NE(output.find(", 0 header rows,"), std::string::npos) << output;
    infoOf("K\xC3\xB6ln,5\nBonn,7\n");
    EXPECT_NE(output.find(", 0 header rows,"), std::string::npos) << output;
    infoOf("\xC3\xA4,b\n\xC3\xA4,1\n");
    EXPECT_NE(output.find(", 0 header rows,"), std::string::npos) << output;
    EXPECT_EQ(convert("a.csv", "1,2\n3,4\n", "b.csv"), "1,2\n3,4\n");
    convert("a.csv", "first name,x\nAnn,1\n", "b.dbf");
    expectNote("Columns renamed: 'first name' to first_name.");
}

// ---- delimited text ----

TEST_F(Honest, LineEndsOfTheSourceStay) {
    EXPECT_EQ(convert("a.csv", "a,b\r\n1,\"x\r\ny\"\r\n", "b.csv"), "a,b\r\n1,\"x\r\ny\"\r\n");
    EXPECT_EQ(convert("a.csv", "a,b\n1,x", "b.csv"), "a,b\n1,x\n");
    EXPECT_EQ(convert("a.csv", "a,b\r\n\"1\",\"x\"\r\n", "b.tab"), "a\tb\r\n\"1\"\tx\r\n");
}

TEST_F(Honest, QuotesThatDoNotCloseAreCharacters) {
    const struct {
        const char *text, *rows;
    } cases[] = {
        {"a,b\n5\" disk,x\n", "a,b\n\"5\"\" disk\",x\n"},
        {"a,b\n\"x\"y,z\n", "a,b\n\"\"\"x\"\"y\",z\n"},
        {"a,b\n\"never,closed\nx,y\n", "a,b\n\"\"\"never\",closed\nx,y\n"},
        {"a,b\n\"x\" ,z\n", "a,b\nx,z\n"},
        {"a,b\n\"\"\"\",\"\"\"x\"\n", "a,b\n\"\"\"\",\"\"\"x\"\n"},
        {"a,b\n\"\",x\n", "a,b\n\"\",x\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(convert("a.csv", c.text, "b.csv"), c.rows) << c.text;
    EXPECT_EQ(errors, "");
    convert("a.csv", "a,b\nx,1\n\"never,closed\n\"x\"y,z\n", "b.csv");
    expectNote(
        "Row 2 of 'a.csv' has a cell that begins with a quote and does not end with one, or has single ones "
        "in it: such cells are taken as they stand, quotes and all.");
}

TEST_F(Honest, BlocksAndLongCellsHoldTogether) {
    std::string text = "a,b\n", cell;
    for (int i = 0; i < 60000; ++i) cell += "line \"\"" + std::to_string(i) + "\"\"\n";
    for (int i = 0; i < 20000; ++i)
        text +=
            std::to_string(i) + ",\"x" + std::string(static_cast<std::size_t>(i % 57), 'y') + ",\"\"\r\n\"\n";
    text += "1,\"" + cell.substr(0, 900000) + "\"\n";
    EXPECT_TRUE(convert("a.csv", text, "b.csv") == text);
    EXPECT_TRUE(there(text, "tab") == text);
    write("b.csv", "as it was");
    write("a.csv", "a,b\n" + std::string(std::size_t{40} << 20, 'x'));
    EXPECT_EQ(tarnData("convert a.csv b.csv"), Failed);
    EXPECT_NE(errors.find("is longer than 16777216 bytes"), std::string::npos) << errors;
    EXPECT_EQ(read("b.csv"), "as it was");
}

TEST_F(Honest, PlainTextIsTheFormOfTheSystemsOwnPrograms) {
    EXPECT_EQ(convert("a.csv", "first name,b\nx y,1\n", "b.csv", "--plain"), "first_name,b\nx y,1\n");
    write("a.csv", "a,b\n\"1,2\",x\n");
    EXPECT_EQ(tarnData("convert a.csv b.csv --plain"), Failed);
    EXPECT_EQ(convert("a.csv", "a,b\n\"1,2\",x\n", "b.csv", "--plain --to-separator=';'"), "a;b\n1,2;x\n");
    EXPECT_EQ(convert("a.csv", "a,b\n\"1,2\",x\n", "b.csv", "--plain --replace"), "a,b\n1?2,x\n");
}

TEST_F(Honest, ManyColumnsGoFromTextToText) {
    std::string text = "c1";
    for (int n = 2; n <= 200; ++n) text += ",c" + std::to_string(n);
    text += "\n1" + std::string(199, ',') + "\n";
    EXPECT_EQ(convert("a.csv", text, "b.csv"), text);
    EXPECT_EQ(there(text, "tab"), text);
    EXPECT_EQ(tarnData("convert a.csv b.dbf"), Failed);
    EXPECT_NE(errors.find("has 200 columns; at most 48"), std::string::npos) << errors;
}

TEST_F(Honest, SeparatorsAreToldFromManyLines) {
    const struct {
        const char *name, *text, *separator;
    } cases[] = {
        {"a.csv", "a;b (x,y);c\n1;2,5;3\n2;3,5;4\n", "';'"},
        {"a.csv", "when|x\n08:15|1\n09:30|2\n", "'|'"},
        {"a.tab", "name\tnote\nA, B\tx, y\nC, D\tz, z\n", "\\t"},
        {"a.tab", "#a comment, with commas,\n# and, more\nx\ty\n1\t2\n", "\\t"},
        {"a.tab", "\"# a \"\"comment\"\", with commas\"\n\"# and, \"\"more\"\"\"\nx\ty\n1\t2\n", "\\t"},
        {"a.csv", "a,b\n1,2\n", "','"},
        {"a.csv", "one\ntwo\n", "','"},
    };
    for (const auto& c : cases) {
        write(c.name, c.text);
        EXPECT_EQ(tarnData(std::string("info ") + c.name), Well) << c.text << errors;
        EXPECT_NE(output.find(std::string("separator ") + c.separator + ","), std::string::npos)
            << c.text << output;
    }
}

TEST_F(Honest, WhatInfoPrintsDeclaresATableFile) {
    for (const char* text : {"a,b\n1,2\n3,4,5\n", "a,b\n1,\n", "first name,end\nx,True\n", "1,2\n3,4\n",
                             "when,s\n2024-01-05,[1..3]\n"}) {
        write("a.csv", text);
        ASSERT_EQ(
            shell(program() + " info a.csv >t.type && " + program() + " convert a.csv t.bin --type=t.type"),
            Well)
            << text << errors;
        EXPECT_EQ(tarnData("check t.bin --type=t.type"), Well) << text << output;
    }
}

TEST_F(Honest, WhatLooksLikeAMistakeIsHinted) {
    write("cr.csv", "a,b\r1,2\r");
    EXPECT_EQ(tarnData("info cr.csv"), Failed);
    EXPECT_EQ(errors,
              "tarn-data: File 'cr.csv' ends its lines with carriage returns alone.\nMake line feeds of "
              "them first: tr '\\r' '\\n' <'cr.csv' >'new-cr.csv'\n");
    const std::string ragged = "a,b\n1,2\n3,4,5\n6\n";
    EXPECT_EQ(convert("a.csv", ragged, "b.csv"), ragged);
    expectNote(
        "Row 2 of 'a.csv' has 3 cells, and the first line has 2; there are 2 such rows. Look whether a "
        "cell holds the separator without quotes.");
    EXPECT_EQ(convert("a.csv", "# made today\n# by hand\na,b\n1,2\n", "b.csv"),
              "# made today\n# by hand\na,b\n1,2\n");
    expectNote(
        "File 'a.csv' begins with 2 lines that '#' begins, read like any other. If these are comments, "
        "take them out first: grep -v '^#' 'a.csv' >'new-a.csv'");
    EXPECT_EQ(convert("a.csv", "08:15\n09:30\n", "b.csv"), "08:15\n09:30\n");
    expectNote("The lines of 'a.csv' are taken as times, one in each; --separator=: splits them.");
    infoOf("08:15\n09:30\n", "--separator=:");
    EXPECT_NE(output.find("columns: 2\n"), std::string::npos) << output;
    infoOf("\ta\tb\t\n\t1\t2\t\n");
    expectNote("File 'a.csv' has separators at both ends of its first line: they are taken as a frame");
    EXPECT_NE(output.find("columns: 2\n"), std::string::npos) << output;
}

// Rows go by one at a time, however many there are.
TEST_F(Honest, MemoryStaysBounded) {
    constexpr int rows = 400000, most = 64 * 1024;
    std::string text = "id,name,price,note\n";
    for (int i = 1; i <= rows; ++i)
        text += std::to_string(i) + ",a name of some length," + std::to_string(i % 1000) + ".25,\"a note, y" +
                std::string(static_cast<std::size_t>(i % 60), 'x') + "\"\n";
    write("a.csv", text);
    ASSERT_EQ(tarnData("info a.csv >t.type"), Well) << errors;
    std::string commands;
    for (const char* words : {"a.csv b.csv", "a.csv b.tab", "a.csv b.dbf", "b.dbf c.csv", "a.csv b.xml",
                              "a.csv b.bin --type=t.type", "b.bin d.csv --type=t.type"})
        commands += " '" + program() + " convert " + words + "'";
    ASSERT_EQ(python("memory.py", "'" + program() + " info a.csv'" + commands + " >taken"), 0) << errors;
    std::istringstream taken(read("taken"));
    int lines = 0;
    for (std::string line; std::getline(taken, line);) {
        if (!ascii::isDigit(line[0])) continue;
        EXPECT_LT(std::stoi(line), most) << line;
        ++lines;
    }
    EXPECT_EQ(lines, 8);
    for (const char* file : {"b.csv", "c.csv", "d.csv"}) EXPECT_TRUE(read(file) == text) << file;
}

// Few rows of many long fields, whose values would take many times as much in memory as in the file.
TEST_F(Honest, MemoryStaysBoundedForLongRows) {
    constexpr int rows = 12000, columns = 48, most = 64 * 1024;
    std::string text, type = "t : table\n\tr : record\n";
    for (int n = 1; n <= columns; ++n) {
        text += (n > 1 ? ",c" : "c") + std::to_string(n);
        type += "\t\tc" + std::to_string(n) + " : string[90]\n";
    }
    text += '\n';
    for (int i = 1; i <= rows; ++i) {
        for (int n = 1; n <= columns; ++n)
            text += (n > 1 ? ",a" : "a") + std::to_string(i) + std::string(60, 'x');
        text += '\n';
    }
    write("a.csv", text);
    write("t.type", type + "\tend record\nend table\n");
    std::string commands;
    for (const char* words : {"a.csv b.dbf", "b.dbf c.bin --type=t.type", "c.bin d.csv --type=t.type"})
        commands += " '" + program() + " convert " + words + "'";
    ASSERT_EQ(python("memory.py", commands + " >taken"), 0) << errors;
    std::istringstream taken(read("taken"));
    for (std::string line; std::getline(taken, line);) EXPECT_LT(std::stoi(line), most) << line;
    EXPECT_TRUE(read("d.csv") == text);
}

// ---- encodings ----

TEST_F(Honest, MarksAreTakenOffAndUtf16IsConverted) {
    const std::string plain = "h\xC3\xA4,b\n\xE2\x82\xAC,1\n";
    EXPECT_EQ(convert("a.csv", "\xEF\xBB\xBF" + plain, "b.csv"), plain);
    EXPECT_EQ(errors, "");
    EXPECT_EQ(convert("a.txt", "\xEF\xBB\xBFx\n", "b.csv"), "line\nx\n");
    for (const char* encoding : {"UTF-16", "UTF-16LE", "UTF-16BE"}) {
        write("u.csv", plain + "\xF0\x9F\x98\x80,2\n");
        ASSERT_EQ(shell(std::string("iconv -f UTF-8 -t ") + encoding + " u.csv >w.csv"), 0) << errors;
        ASSERT_EQ(tarnData("convert w.csv b.csv"), Well) << encoding << errors;
        EXPECT_EQ(read("b.csv"), read("u.csv")) << encoding;
        expectNote("File 'w.csv' is UTF-16 text. It is read as UTF-8, and what is written is UTF-8.");
    }
    write("w.csv", std::string_view("\xFF\xFE"
                                    "a\0,\0b\0\n\0\x00\xDC"
                                    "1\0\n\0",
                                    16));
    EXPECT_EQ(tarnData("convert w.csv b.csv"), Failed);
    EXPECT_NE(errors.find("is UTF-16 text, but for the bytes at 10, which are no character"),
              std::string::npos)
        << errors;
}

TEST_F(Honest, BytesOfOtherEncodingsStayAndXmlNamesTheCommand) {
    const std::string latin = "a,b\nx,\xE9t\xE9\n", windows = "a,b\nx,\x80\xE9\n";
    EXPECT_EQ(convert("a.csv", latin, "b.csv"), latin);
    EXPECT_EQ(there(latin, "tab"), latin);
    EXPECT_EQ(there(latin, "dbf"), latin);
    EXPECT_EQ(tarnData("convert a.csv b.xml"), Failed);
    EXPECT_NE(errors.find("iconv -f ISO-8859-1 -t UTF-8 'a.csv' >'a-utf8.csv'"), std::string::npos) << errors;
    infoOf("a,b\nx,y\nx,\xE9t\xE9\n");
    expectNote(
        "File 'a.csv' is no UTF-8: the first byte that is not stands in line 3. If it is ISO-8859-1, this "
        "converts it: iconv -f ISO-8859-1 -t UTF-8 'a.csv' >'a-utf8.csv'");
    write("a.csv", windows);
    EXPECT_EQ(tarnData("convert a.csv b.xml"), Failed);
    EXPECT_NE(errors.find("iconv -f WINDOWS-1252 -t UTF-8"), std::string::npos) << errors;
}

TEST_F(Honest, MessagesShowNoControlsAndNoHalfCharacters) {
    write("a.csv", "a\x1B[31m,b\nx\x07,1\nx,\x1B]0;t\x07\n");
    EXPECT_EQ(tarnData("convert a.csv b.xml"), Failed);
    EXPECT_NE(errors.find("column 'a\\x1B[31m'"), std::string::npos) << errors;
    EXPECT_EQ(errors.find('\x1B'), std::string::npos);
    std::string cell = "x";
    for (int i = 0; i < 60; ++i) cell += "\xC3\xA4";
    infoOf("a\n1\n2\n3\n4\n" + cell + "\n");
    EXPECT_NE(errors.find("\xC3\xA4...'"), std::string::npos) << errors;
    EXPECT_EQ(errors.find("\\xC3"), std::string::npos) << errors;
    EXPECT_EQ(shell(program() + " info \"$(printf 'no\\033[31m\\n.csv')\""), Failed);
    EXPECT_NE(errors.find("'no\\x1B[31m\\x0A.csv'"), std::string::npos) << errors;
}

}  // namespace
}  // namespace tarn::datatool
