// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/fixture.h"

#include <filesystem>
#include <random>

namespace tarn::datatool {
namespace {

constexpr int Well = 0, Failed = 1, WrongUsage = 2;

struct Row {
    const char *words, *said;
};

std::string repeated(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) result += text;
    return result;
}

TEST_F(TarnData, WrongUsageSaysWhatIsWrongAndHasTheStatusTwo) {
    write("a.csv", "a,b\n1,2\n");
    write("a.xml", "<l><r><a>1</a><b>2</b></r><r><a>1</a><b>2</b></r></l>");
    const Row rows[] = {
        {"", "A command is missing."},
        {"look a.csv", "There is no command 'look'."},
        {"info", "The name of a file is missing."},
        {"info a.csv b.csv", "'b.csv' is one file too many."},
        {"convert a.csv", "The name of a file is missing."},
        {"convert a.csv b.csv c.csv", "'c.csv' is one file too many."},
        {"convert a.csv b.doc", "its extension is none of xml, dbf, csv, tab, txt and bin"},
        {"convert a.csv b", "its extension is none of xml, dbf, csv, tab, txt and bin"},
        {"convert missing.csv b", "its extension is none of xml, dbf, csv, tab, txt and bin"},
        {"info --colour a.csv", "There is no option '--colour'."},
        {"info a.csv --header-rows", "The option '--header-rows' needs a value."},
        {"info a.csv --plain=1", "The option '--plain' takes no value."},
        {"info a.csv --text=", "'' cannot be the value of '--text'.\nIt must be the name of a column."},
        {"info a.csv --text=c", "There is no column 'c' in 'a.csv'.\nIts columns are a, b."},
        {"convert a.csv b.csv --text=c", "There is no column 'c' in 'a.csv'.\nIts columns are a, b."},
        {"info a.csv --null=", "'' cannot be the value of '--null'"},
        {"info a.csv --plain", "'--plain' means nothing to 'info'"},
        {"info a.csv --header-rows=3", "'3' cannot be the value of '--header-rows'.\nIt must be 0, 1 or 2."},
        {"info a.csv --header-rows=", "'' cannot be the value"},
        {"info a.csv --footer-rows=x", "'x' cannot be the value"},
        {"info a.csv --max-rows=-1", "'-1' cannot be the value"},
        {"info a.csv --max-rows=2147483648", "It must be a number from 0 to 2147483647."},
        {"info a.csv --separator=ab", "It must be one character"},
        {"info a.csv '--separator=\"'", "It must be one character"},
        {"convert a.csv b.csv --to-separator=.", "It must be one character"},
        {"convert a.csv b.csv --to-separator=e", "It must be one character"},
        {"info a.csv --replace", "'--replace' means nothing to 'info'"},
        {"info a.csv --to-separator=x", "cannot be the value"},
        {"convert a.csv b.xml --to-header-rows=1", "is XML, which has no separator, header or footer"},
        {"convert a.csv b.txt --to-header-rows=1", "--to-separator=C makes it delimited text"},
        {"convert a.xml b.csv --max-rows=1", "is XML, which has no separator, header, footer or row limit"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(tarnData(row.words), WrongUsage) << row.words;
        EXPECT_EQ(errors.substr(0, 11), "tarn-data: ") << row.words;
        EXPECT_NE(errors.find(row.said), std::string::npos) << row.words << "\n" << errors;
        EXPECT_EQ(output, "") << row.words;
    }
    EXPECT_FALSE(exists("b.csv") || exists("b.xml") || exists("b.txt"));
}

TEST_F(TarnData, HelpAndVersionGoToStandardOutput) {
    EXPECT_EQ(tarnData("--help"), Well);
    for (const char* word : {"info FILE", "convert A B", "--separator=C", "--replace", "Exit status"})
        EXPECT_NE(output.find(word), std::string::npos) << word;
    EXPECT_EQ(tarnData("convert --help"), Well);
    EXPECT_EQ(tarnData("--version"), Well);
    EXPECT_EQ(output, "tarn-data (Tarnwick) 1.3.2207\n");
    EXPECT_EQ(errors, "");
    EXPECT_EQ(tarnData("--help >/dev/full"), Failed);
    EXPECT_NE(errors.find("cannot be written to standard output"), std::string::npos);
}

TEST_F(TarnData, DataThatCannotBeHandledIsToldWithItsPlaceAndTheStatusOne) {
    write("empty.csv", "");
    write("zeros.csv", std::string(8, '\0'));
    write("bytes.csv", std::string("\x7F"
                                   "ELF\1\0\0\0",
                                   8));
    write("wide16.xml", std::string("\xFF\xFE"
                                    "<\0a\0>\0",
                                    8));
    write("wide.csv", "a" + repeated(",a", 48) + "\n");
    write("gap.csv", "a,b\n1,2\n\n3,4\n");
    write("gaps.csv", "a,b\n1,2\n\n,\n\"\" , \n\n3,\n");
    write("ragged.csv", "a,b\nTrue,2\n5,3\n" + repeated(",", 48) + "\n");
    std::string wide;
    for (int i = 1; i <= 49; ++i) wide += "<c" + std::to_string(i) + ">1</c" + std::to_string(i) + ">";
    write("wide.xml", "<l><r>" + wide + "</r><r>" + wide + "</r></l>");
    write("wideone.xml", "<l><r>" + wide + "</r></l>");
    write("wideinner.xml", "<d><l><r>" + wide + "</r><r>" + wide + "</r></l></d>");
    write("long.csv", "a,b\n1," + std::string(40000, 'x') + "\n");
    write("open.xml", "<l>\n<r>\n</l>");
    write("nested.xml",
          "<l><r><a>1</a><b><c>1</c><d>2</d></b></r><r><a>1</a><b><c>1</c><d>2</d></b></r></l>");
    write("another.xml", "<l><i>1</i><i>2</i>\n<j/></l>");
    write("two.csv", "a,b\nx,\"p,q\"\n");
    write("lines.csv", "a,b\nx,\"p\nq\"\n");
    write("quote.csv", "a,b\nx,\"\"\"q\"\n");
    write("sets.tab", "a\tb\nx\t[1,2]\n");
    write("latin.csv", "a,b\nx,\xE9t\n");
    write("control.csv", "a,b\nx,\1\n");
    write("blank.txt", "x\n\ny\n");
    write("feed.csv", "a,b\nx,\"p\r\nq\"\n");
    write("feedlong.csv", "a,b\nx,\"p\r\n" + repeated("q", 300) + "\"\n");
    write("both.csv", "a,b\nx,\"p,q\r\"\n");
    write("zero.csv", std::string("a,b\nx,\"p\0q\"\n", 12));
    write("zeros.txt", std::string("x\np\0q\n", 6));
    const Row rows[] = {
        {"info none.csv", "There is no such file"},
        {"info .", "It is a folder"},
        {"info /dev/null", "It is no regular file"},
        {"info empty.csv", "File 'empty.csv' is invalid, does not exist or is empty.\nIt is empty"},
        {"info zeros.csv", "is invalid, does not exist or is empty"},
        {"info bytes.csv", "is an unknown file type (first four bytes = 7F 45 4C 46)"},
        {"info wide16.xml", "Symbol \"\\x1A\" is not allowed here (Line 1, Position"},
        {"info wide.csv", "has 49 columns; at most 48 can be handled"},
        {"convert wide.csv b.xml", "has 49 columns"},
        {"convert --text ragged.csv b.xml", "has 49 columns"},
        {"info wide.xml",
         "has 49 columns; at most 48 can be handled.\nSplit it into files of fewer columns."},
        {"convert wide.xml b.dbf", "has 49 columns"},
        {"convert --text wide.xml b.xml", "has 49 columns"},
        {"convert wideone.xml b.xml", "has 49 columns"},
        {"convert wideinner.xml b.xml", "has 49 columns"},
        {"convert gap.csv b.xml", "row 2 is empty, and row 3 is not.\nTake the empty line out"},
        {"convert gaps.csv b.xml", "row 2 is empty, and row 6 is not.\nTake the empty line out"},
        {"convert --plain long.csv b.csv", "Row 1 would be a line of more than 32767 characters."},
        {"info open.xml", "Start tag \"r\" and end tag \"l\" are different (Line 3, Position"},
        {"info nested.xml", "line 1: the element 'b' of row 1 holds other elements."},
        {"convert another.xml b.csv", "line 2: the rows are called 'i', and row 3 'j'."},
        {"convert --plain two.csv b.csv",
         "Row 1, column 'b' holds the separator.\nChoose another separator with --to-separator, leave "
         "--plain away, or write '?'"},
        {"convert two.csv b.txt", "There are 2 columns, and lines of text hold one."},
        {"convert --plain lines.csv b.tab",
         "Row 1, column 'b' holds a line end.\nLeave --plain away, or write '?' instead with --replace."},
        {"convert --text zeros.txt b.xml", "holds a control character, which XML cannot hold.\nWrite csv,"},
        {"convert zero.csv b.xml", "holds a control character, which XML cannot hold.\nWrite csv,"},
        {"convert zero.csv b.dbf", "Row 1, column 'b' holds a zero byte.\nWrite csv, which holds it"},
        {"convert --plain quote.csv b.tab", "Row 1, column 'b' begins with a quote.\nLeave --plain away"},
        {"convert latin.csv b.xml",
         "Row 1, column 'b' holds a byte that XML cannot hold (it is no UTF-8).\nConvert the file that is "
         "read to UTF-8 first, if this is its encoding: iconv -f ISO-8859-1 -t UTF-8 'latin.csv' "
         ">'latin-utf8.csv'\nOr write '?'"},
        {"convert control.csv b.xml",
         "Row 1, column 'b' holds a control character, which XML cannot hold.\nWrite csv,"},
        {"convert --plain blank.txt b.csv", "Row 2 is empty, and would be an empty line."},
        {"convert two.csv none/b.xml", "File 'none/b.xml' cannot be written: "},
    };
    for (const char* name : {"b.csv", "b.tab", "b.txt", "b.xml"}) write(name, "as it was");
    const auto files = std::distance(std::filesystem::directory_iterator(dir.path()), {});
    for (const Row& row : rows) {
        EXPECT_EQ(tarnData(row.words), Failed) << row.words;
        EXPECT_NE(errors.find(row.said), std::string::npos) << row.words << "\n" << errors;
        EXPECT_EQ(output, "") << row.words;
    }
    for (const char* name : {"b.csv", "b.tab", "b.txt", "b.xml"}) EXPECT_EQ(read(name), "as it was") << name;
    // Only the two files of the shell came.
    EXPECT_LE(std::distance(std::filesystem::directory_iterator(dir.path()), {}), files + 3);
}

TEST_F(TarnData, InfoTellsFormRowsKeysAndDeclaration) {
    write("cust.csv", "id,first name,when\n1,Ann,2.5\n2,Bob,3.5\n");
    EXPECT_EQ(tarnData("info cust.csv"), Well);
    EXPECT_EQ(output,
              "file: cust.csv\ntype: delimited text, separator ',', 1 header row, 0 footer rows\nrows: 2\n"
              "columns: 3\ndefault keys: id,first_name,when_1\nrenamed: \"first name\" to first_name\n"
              "renamed: when to when_1\ndeclaration:\ncust : table\n\tTcust : record\n\t\tid : integer\n"
              "\t\tfirst_name : string[3]\n\t\twhen_1 : fixed\n\tend record\nend table\n");
    write("cust.xml", "<l><r><a>1</a></r><r><a>2</a></r><r><a>3</a></r></l>");
    EXPECT_EQ(tarnData("info cust.xml"), Well);
    EXPECT_EQ(output,
              "file: cust.xml\ntype: XML\nrows: 3\ncolumns: 1\ndefault keys: a\ndeclaration:\ncust : table\n"
              "\tTcust : record\n\t\ta : integer\n\tend record\nend table\n");
    write("x.txt", "a,b\n1,2\n");
    EXPECT_EQ(tarnData("info x.txt"), Well);
    EXPECT_NE(output.find("type: lines of text\n"), std::string::npos) << output;
    EXPECT_EQ(tarnData("info x.txt --separator=,"), Well);
    EXPECT_NE(output.find("type: delimited text, separator ',', 1 header row"), std::string::npos) << output;
}

TEST_F(TarnData, InfoTellsOfRowsBehindAnEmptyLine) {
    write("gap.csv", "a,b\n1,2\n\n3,x\n");
    EXPECT_EQ(tarnData("info gap.csv"), Well);
    EXPECT_NE(output.find("\nrows: 1\n"), std::string::npos) << output;
    EXPECT_EQ(errors,
              "tarn-data: note: File 'gap.csv' row 2 is empty, and row 3 is not. Only rows ahead of it "
              "are counted.\n");
    for (const char* words : {"info gap.csv --max-rows=2", "info gap.csv --footer-rows=1", "info end.csv"}) {
        write("end.csv", "a,b\n1,2\n\n\n");
        EXPECT_EQ(tarnData(words), Well);
        EXPECT_EQ(errors, "") << words;
    }
}

TEST_F(TarnData, ZeroBytesOfDelimitedTextStay) {
    const std::string text("a,b\n1,\"x\0y\"\n2,\"p\0q\"\n", 20);
    write("z.csv", std::string_view("a,b\n1,x\0y\n2,\"p\0q\"\n", 18));
    EXPECT_EQ(tarnData("convert z.csv b.csv"), Well) << errors;
    EXPECT_EQ(read("b.csv"), text);
    EXPECT_EQ(tarnData("convert b.csv c.csv"), Well) << errors;
    EXPECT_EQ(read("c.csv"), text);
    EXPECT_EQ(tarnData("convert z.csv z.dbf"), Failed);
    EXPECT_EQ(tarnData("convert z.csv z.dbf --replace && " + program() + " convert z.dbf b.csv"), Well);
    EXPECT_EQ(read("b.csv"), "a,b\n1,x?y\n2,p?q\n");
    write("end.csv", std::string_view("a,b\n1,x\0\n", 9));
    EXPECT_EQ(tarnData("convert end.csv z.dbf"), Failed) << "at the end of a text as well";
}

// ---- numbers ----

const char* const longNumbers[] = {
    "9007199254740993", "12345678901234567890", "0.1234567890123456789", "-123456789012345678",
    "1e-400",           "1152921504606846977",  "1.00000000000000000001"};

TEST_F(TarnData, NumbersThatNoRealHoldsStayAsTheyAre) {
    for (const std::string number : longNumbers) {
        const std::string text = "id,n\n1," + number + "\n2,1.123456\n";
        write("a.csv", text);
        const std::string told =
            "tarn-data: note: Column 'n' of 'a.csv' is taken as text: no real holds every "
            "digit of " +
            number + " (row 1).\n";
        for (const char* target : {"b.csv", "b.tab", "b.xml", "b.dbf"}) {
            EXPECT_EQ(tarnData(std::string("convert a.csv ") + target), Well) << number << errors;
            EXPECT_EQ(errors, std::string_view(target) == "b.dbf" ? told : "");
            EXPECT_EQ(tarnData(std::string("convert ") + target + " c.csv"), Well) << number << errors;
            EXPECT_EQ(errors, "");
            EXPECT_EQ(read("c.csv"), text) << target;
        }
        EXPECT_EQ(tarnData("info a.csv"), Well);
        EXPECT_EQ(errors, told);
        EXPECT_NE(
            output.find("\t\tn : string[" + std::to_string(std::max<std::size_t>(number.size(), 8)) + "]\n"),
            std::string::npos)
            << output;
        EXPECT_EQ(tarnData("convert --text a.csv b.csv"), Well);
        EXPECT_EQ(errors, "");
    }
    write("a.xml", "<l><r><id>1</id><n> 9007199254740993 </n></r><r><id>2</id><n/></r></l>");
    EXPECT_EQ(tarnData("convert a.xml b.dbf"), Well) << errors;
    EXPECT_NE(errors.find("note: Column 'n' of 'a.xml' is taken as text"), std::string::npos) << errors;
    EXPECT_EQ(tarnData("convert a.xml b.csv"), Well) << errors;
    EXPECT_NE(read("b.csv").find("9007199254740993"), std::string::npos);
    write("a.xml", "<l><v>1</v><v>12345678901234567890</v></l>");
    EXPECT_EQ(tarnData("convert a.xml b.csv"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "v\n1\n12345678901234567890\n");
    write("a.xml", "<r><a>1</a><b>12345678901234567890</b></r>");
    EXPECT_EQ(tarnData("convert a.xml b.csv"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "a,b\n1,12345678901234567890\n");
}

TEST_F(TarnData, NumbersThatARealHoldsAreRealsAndStayAsTheyStand) {
    for (const char* number : {"0.12345", "1e300", "9007199254740992", "0.30000000000000004",
                               "+3.0000000000000004E-0001", "1234567890.123456", "123456789012345000000000",
                               "NULL", "null", "0.000000000000000000000", "-0.00000", ""}) {
        const std::string text = std::string("id,n\n1,1e5\n2,") + number + "\n";
        write("a.csv", text);
        EXPECT_EQ(tarnData("info a.csv"), Well) << number << errors;
        EXPECT_NE(output.find("\t\tn : real\n"), std::string::npos) << number << output;
        EXPECT_EQ(errors, "") << number;
        for (const char* target : {"b.tab", "b.xml"}) {
            EXPECT_EQ(tarnData(std::string("convert a.csv ") + target), Well) << number << errors;
            EXPECT_EQ(tarnData(std::string("convert ") + target + " b.csv"), Well) << number << errors;
            EXPECT_EQ(errors, "") << number;
            EXPECT_EQ(read("b.csv"), text);
        }
    }
}

TEST_F(TarnData, ATableFileTakesNoNumberThatItsFieldDoesNotHold) {
    const struct {
        const char *file, *text, *type, *said;
    } cases[] = {
        {"a.csv", "n\n1.5\n9007199254740993\n", "real", "Row 2, column 'n' holds 9007199254740993, which"},
        {"a.csv", "n\n0.12345\n", "fixed", "Row 1, column 'n' holds 0.12345, which"},
        {"a.xml", "<l><r><n>1</n></r><r><n>2.5</n></r></l>", "integer", "Row 2, column 'n' holds 2.5, which"},
        {"a.xml", "<l><r><n>x</n></r><r><n/></r></l>", "integer", "Row 1, column 'n' holds x, which"},
        {"a.xml", "<l><r><n>256</n></r><r><n/></r></l>", "enum", "Row 1, column 'n' holds 256, which"},
        {"a.csv", "n\n9007199254740993\n", "string[20]", ""},
        {"a.csv", "n\n9007199254740992\n", "real", ""},
        {"a.csv", "n\n1.5000000\n", "fixed", ""},
        {"a.xml", "<l><r><n>255</n></r><r><n/></r></l>", "enum", ""},
        {"a.xml", "<l><r><n>-5</n></r><r><n>NULL</n></r></l>", "integer", ""},
    };
    for (const auto& c : cases) {
        write(c.file, c.text);
        write("type", std::string("r : record\n\tn : ") + c.type + "\nend record\n");
        write("b.bin", "as it was");
        EXPECT_EQ(tarnData(std::string("convert --type=type ") + c.file + " b.bin"), *c.said ? Failed : Well)
            << c.text << c.type << errors;
        EXPECT_NE(errors.find(c.said), std::string::npos) << c.text << errors;
        EXPECT_EQ(read("b.bin") == "as it was", *c.said != '\0') << c.text;
    }
}

TEST_F(TarnData, OptionsSayHowTheFileThatIsReadIsLaidOut) {
    write("a.csv", "x;y\n1;2\n3;4\n\n(2 rows affected)\n");
    EXPECT_EQ(tarnData("convert a.csv b.csv --footer-rows=2"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "x,y\n1,2\n3,4\n");
    EXPECT_EQ(tarnData("convert a.csv b.csv --max-rows 1"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "x,y\n1,2\n");
    EXPECT_EQ(tarnData("convert a.csv b.csv --header-rows 0 --separator '|' --max-rows 1"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "x;y\n");
    EXPECT_EQ(tarnData("convert a.csv b.csv --header-rows 0 --max-rows 1 --to-header-rows=1"), Well);
    EXPECT_EQ(read("b.csv"), "FIELD1,FIELD2\nx,y\n");
    EXPECT_EQ(tarnData("convert a.csv b.txt --max-rows=2 --to-separator='\\t' --to-header-rows=2 "
                       "--to-footer-rows=1"),
              Well)
        << errors;
    EXPECT_EQ(read("b.txt"), "x\ty\n-\t-\n1\t2\n3\t4\n(2 rows affected)\n");
    write("-a.csv", "a,b\n007,1.50\n");
    EXPECT_EQ(tarnData("convert --text -- -a.csv b.csv"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "a,b\n007,1.50\n");
    EXPECT_EQ(tarnData("convert -- -a.csv b.csv"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "a,b\n007,1.50\n");
}

TEST_F(TarnData, EachFormBecomesEachOther) {
    const std::string lines = "alpha\nbeta gamma\nx<&>y;'z'\n",
                      table = "id,name,ok\n1,Ann,True\n2,B & <C>,False\n";
    write("seed.txt", lines);
    write("seed.csv", table);
    for (const std::string from : {"csv", "tab", "txt", "xml"}) {
        for (const std::string to : {"csv", "tab", "txt", "xml"}) {
            EXPECT_EQ(tarnData("convert seed.txt a." + from), Well) << errors;
            EXPECT_EQ(tarnData("convert a." + from + " b." + to), Well) << from << to << errors;
            EXPECT_EQ(tarnData("convert b." + to + " end.txt"), Well) << from << to << errors;
            EXPECT_EQ(read("end.txt"), lines) << from << " to " << to;
            if (from == "txt" || to == "txt") continue;
            EXPECT_EQ(tarnData("convert seed.csv a." + from), Well) << errors;
            EXPECT_EQ(tarnData("convert a." + from + " b." + to), Well) << from << to << errors;
            EXPECT_EQ(tarnData("convert b." + to + " end.csv"), Well) << from << to << errors;
            EXPECT_EQ(read("end.csv"), table) << from << " to " << to;
        }
    }
}

TEST_F(TarnData, XmlOfManyShapesGivesRows) {
    const Row rows[] = {
        {"<l><i>1</i><i>x y</i></l>", "i\n1\nx y\n"},
        {"<r><a>1</a><b>two</b></r>", "a,b\n1,two\n"},
        {"<l><r><a>1</a><b>two</b></r></l>", "a,b\n1,two\n"},
        {"<l><r><a>1 < 2</a><b>x</b></r><r><a><</a><b>y</b></r></l>", "a,b\n1 < 2,x\n<,y\n"},
        {"<l><r a='1' b='x'/><r a='2' b='y'/></l>", "a,b\n1,x\n2,y\n"},
        {"<d><rows><r><a>1</a><b>x</b></r><r><a>2</a><b/></r></rows></d>", "a,b\n1,x\n2,\n"},
        {"<!DOCTYPE l [<!ENTITY e 'x>'><!-- ' -->]><l><!-- <r> --><r><a>&e;</a><b><![CDATA[<q>]]></b></r>"
         "<?pi <r> ?><r><a>2</a><b>y</b></r></l>",
         "a,b\nx>,<q>\n2,y\n"},
    };
    for (const Row& row : rows) {
        write("a.xml", row.words);
        EXPECT_EQ(tarnData("convert a.xml b.csv"), Well) << row.words << errors;
        EXPECT_EQ(read("b.csv"), row.said) << row.words;
    }
}

TEST_F(TarnData, WhatDoesNotFitIsReplacedWhenThatIsWanted) {
    write("a.csv", "a,b\n1,\"p,q\nr\"\n2,\"\"\"s\"\n");
    EXPECT_EQ(tarnData("convert --plain --replace a.csv b.csv"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "a,b\n1,p?q?r\n2,?s\n");
    write("a.csv", "a,b\n1,\x01\xE9t\xC3\xA9\xED\xA0\x80\n");
    EXPECT_EQ(tarnData("convert --replace a.csv b.xml"), Well) << errors;
    EXPECT_NE(read("b.xml").find(">?"
                                 "?t\xC3\xA9?"
                                 "?"
                                 "?<"),
              std::string::npos)
        << read("b.xml");
}

TEST_F(TarnData, AFileCanTakeItsOwnPlaceAndIsWrittenThroughALink) {
    write("a.csv", "a b,a-b,9\n1,2,3\n");
    std::filesystem::create_symlink("a.csv", dir / "link.csv");
    EXPECT_EQ(tarnData("convert a.csv link.csv --header-rows=1"), Well) << errors;
    EXPECT_EQ(read("a.csv"), "a b,a-b,9\n1,2,3\n");
    EXPECT_TRUE(std::filesystem::is_symlink(dir / "link.csv"));
}

// Rows go by one at a time; those of XML that memory has no room for through a file. Such texts are compared
// without a look for what differs, which would take all memory.
TEST_F(TarnData, MoreRowsThanAValueHoldsAreConverted) {
    std::string text = "id,name\n";
    for (int i = 1; i <= 130000; ++i) text += std::to_string(i) + ",n\n";
    write("big.csv", text);
    EXPECT_EQ(tarnData("info big.csv"), Well) << errors;
    EXPECT_NE(output.find("\nrows: 130000\n"), std::string::npos) << output;
    const std::string work = "mkdir -p work && TMPDIR=$PWD/work " + program() + " ";
    for (const char* words : {"big.csv b.csv", "big.csv --text b.csv", "big.csv b.dbf", "b.dbf c.csv"}) {
        EXPECT_EQ(shell(work + "convert " + words + " && ls work"), Well) << words << errors;
        EXPECT_EQ(output, "") << words;
    }
    EXPECT_TRUE(read("b.csv") == text);
    EXPECT_TRUE(read("c.csv") == text);
    EXPECT_EQ(shell("TMPDIR=/none " + program() + " convert big.csv b.csv"), Well) << errors;
    EXPECT_EQ(tarnData("convert big.csv b.csv --max-rows=100000"), Well) << errors;
    EXPECT_TRUE(read("b.csv") == text.substr(0, text.find("100001,")));
}

TEST_F(TarnData, MoreRowsThanAValueHoldsComeFromEveryForm) {
    constexpr int rows = 130000;
    const auto repeated = [&](const std::function<std::string(const std::string&)>& row) {
        std::string text;
        for (int i = 1; i <= rows; ++i) text += row(std::to_string(i));
        return text;
    };
    const std::string numbers = repeated([](const std::string& i) { return i + "\n"; });
    write("values.xml", "<l>\n" + repeated([](const auto& i) { return "<v>" + i + "</v>\n"; }) + "</l>\n");
    write("inner.xml", "<d><l>\n" + repeated([](const auto& i) {
                           return "<r><v>" + i + "</v><w>a</w></r>\n";
                       }) + "</l></d>\n");
    write("mixed.csv", "v,w\ntrue,\"a,\nb\"\n" + numbers);
    const std::string work = "mkdir -p work && TMPDIR=$PWD/work " + program() + " ";
    for (const char* words : {"values.xml b.csv", "values.xml --text b.csv"}) {
        EXPECT_EQ(shell(work + "convert " + words + " && ls work"), Well) << words << errors;
        EXPECT_EQ(output, "") << words;
        EXPECT_TRUE(read("b.csv") == "v\n" + numbers) << words;
    }
    for (const char* words : {"inner.xml b.csv", "inner.xml --text b.csv"}) {
        EXPECT_EQ(tarnData(std::string("convert ") + words), Well) << words << errors;
        EXPECT_TRUE(read("b.csv") == "v,w\n" + repeated([](const auto& i) { return i + ",a\n"; })) << words;
    }
    EXPECT_EQ(tarnData("convert mixed.csv b.xml"), Well) << errors;
    // Rows of text go from one file to the other, and need no folder for the work.
    EXPECT_EQ(shell("TMPDIR=/none " + program() + " convert b.xml c.xml"), Well) << errors;
    EXPECT_EQ(tarnData("convert b.xml --to-separator=\\; b.csv"), Well) << errors;
    EXPECT_TRUE(read("b.csv") == "v;w\ntrue;\"a,\nb\"\n" + repeated([](const auto& i) { return i + ";\n"; }));
    write("entity.xml", "<!DOCTYPE l [<!ENTITY e 'much more'>]>" + read("values.xml"));
    EXPECT_EQ(tarnData("convert entity.xml b.csv"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "v\n" + numbers);
}

// Whenever the signal comes, the target is the old one or the new one, and the status says which.
TEST_F(TarnData, AStoppedConversionLeavesTheTargetAsItWas) {
    std::string text = "id,name\n";
    for (int i = 1; i <= 100000; ++i)
        text += std::to_string(i) + ",a name of some length " + std::to_string(i) + "\n";
    write("big.csv", text);
    int stopped = 0;
    for (int i = 0; i < 40; ++i) {
        write("b.csv", "as it was");
        const std::string delay = "0.0" + std::to_string(i / 10) + std::to_string(i % 10);
        const int status = python("interrupt.py", delay + " " + program() + " convert big.csv b.csv");
        if (status == Well) {
            EXPECT_EQ(read("b.csv"), text);
            continue;
        }
        EXPECT_EQ(status, 130) << errors;
        EXPECT_EQ(read("b.csv"), "as it was");
        if (errors.find("Stopped.") != std::string::npos) ++stopped;
    }
    EXPECT_GT(stopped, 0);
}

TEST_F(TarnData, LongWorkShowsItsProgressOnATerminalOnly) {
    std::string text = "id,name\n";
    for (int i = 1; i <= 6000000; ++i) text += std::to_string(i) + ",a name of some length\n";
    write("big.csv", text);
    EXPECT_EQ(python("terminal.py", program() + " info big.csv"), Well) << errors;
    EXPECT_NE(output.find("reading big.csv: "), std::string::npos) << output;
    EXPECT_NE(output.find(" %"), std::string::npos);
    EXPECT_EQ(tarnData("info big.csv"), Well);
    EXPECT_EQ(errors, "");
    EXPECT_EQ(python("terminal.py", program() + " info big.csv --progress"), Well) << errors;
    EXPECT_EQ(output.find("tarn-data: reading"), std::string::npos) << output;
    EXPECT_EQ(tarnData("info big.csv --progress"), Well);
    EXPECT_TRUE(errors.starts_with("tarn-data: reading big.csv: ")) << errors;
    EXPECT_TRUE(errors.ends_with(" %\n")) << errors;
    EXPECT_EQ(errors.find_first_of("\r\033"), std::string::npos);
}

TEST_F(TarnData, HostileFilesEndInAStatus) {
    const std::string seeds[] = {
        "id,name,x\n1,\"a \"\"q\"\" b\",2.5\n2,\"c\nd\",[1,2]\n",
        "<?xml version=\"1.0\"?><!DOCTYPE l [<!ENTITY e \"v\">]><l><r "
        "a=\"1\"><b>&e;&#65;</b></r><r><b/></r></l>",
        "a\tb\n-\t--\n1\t2024-01-02\n",
    };
    std::mt19937 random(20240611);
    for (int i = 0; i < 90; ++i) {
        std::string text = seeds[i % 3];
        for (int n = 0; n < 4; ++n) text[random() % text.size()] = static_cast<char>(random() % 256);
        const std::string name = i % 3 == 1 ? "h.xml" : "h.csv";
        write(name, text);
        SCOPED_TRACE(i);
        EXPECT_LE(tarnData("convert --replace " + name + " b.xml"), Failed) << text << errors;
    }
    write("deep.xml", repeated("<a>", 50000));
    EXPECT_EQ(tarnData("info deep.xml"), Failed);
    write("laughs.xml",
          "<!DOCTYPE a [<!ENTITY b '" + repeated("x", 400) + "'>]><a>" + repeated("&b;", 1000) + "</a>");
    EXPECT_LE(tarnData("info laughs.xml"), Failed);
    write("quote.csv", "a,b\n1,\"" + repeated("x,\n", 100000));
    EXPECT_LE(tarnData("convert --replace quote.csv b.xml"), Failed);
    write("oneline.csv", repeated("x", 1 << 20));
    EXPECT_EQ(tarnData("convert oneline.csv b.xml --header-rows=0"), Well) << errors;
}

}  // namespace
}  // namespace tarn::datatool
