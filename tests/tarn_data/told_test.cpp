// SPDX-License-Identifier: Apache-2.0
//
// What a conversion tells when a file comes out as another one than it went in: names, ends, lengths, forms of values,
// and files that cannot be read or written.
#include "tarn_data/tables_fixture.h"

namespace tarn::datatool {
namespace {

using namespace std::string_literals;

class Told : public Tables {
protected:
    void expectNote(const std::string& text) {
        EXPECT_NE(errors.find("note: " + text), std::string::npos) << text << "\n" << errors;
    }
    // The file that `words` write; what was said stands in `errors`.
    std::string converted(const std::string& words, const std::string& file) {
        EXPECT_EQ(tarnData("convert " + words), Well) << words << "\n" << errors;
        return read(file);
    }
    void expectFailure(const std::string& words, const std::string& said) {
        EXPECT_EQ(tarnData(words), Failed) << words;
        EXPECT_NE(errors.find(said), std::string::npos) << words << "\n" << errors;
    }
};

// ---- Xbase and table files ----

TEST_F(Told, WhatInfoPrintsOfAnXbaseFileCarriesItsCells) {
    write("n.dbf", dbf({" Ann  "
                        "-1.5",
                        "*Bob  "
                        " 2.0",
                        " Cy   "
                        "    "}));
    ASSERT_EQ(tarnData("info n.dbf >n.type"), Well) << errors;
    converted("n.dbf n.bin --type=n.type", "n.bin");
    expectNote("The marks of deletion of 'n.dbf' become the column 'delete_flag'.");
    expectNote("1 row marked as deleted in 'n.dbf' left out");
    EXPECT_EQ(converted("n.bin b.csv --type=n.type", "b.csv"), "delete_flag,NAME,N\n,Ann,-1.5\n,Cy,\n");
    EXPECT_EQ(errors, "");
}

TEST_F(Told, CharactersOfNumbersAndTruthsAreThoseOfXbaseFiles) {
    write("l.type", "record\n\tn : Tnumeric[1:5]\n\tok : Tlogical[1:1]\n\tt : Tchars[1:3]\nend record\n");
    write("l.bin", "  -12"
                   "T"
                   " x "
                   "     "
                   "?"
                   "abc");
    EXPECT_EQ(converted("l.bin b.csv --type=l.type", "b.csv"), "n,ok,t\n-12,True,\" x\"\n,,abc\n");
    EXPECT_EQ(converted("b.csv c.bin --type=l.type && " + program() + " convert c.bin c.csv --type=l.type",
                        "c.csv"),
              "n,ok,t\n-12,True,\" x\"\n,,abc\n");
    EXPECT_EQ(errors, "");
    EXPECT_EQ(read("c.bin"), "-12  "
                             "T"
                             " x "
                             "     "
                             " "
                             "abc");
    write("s.csv", "n,ok,t\n7,maybe,xyz\n");
    expectFailure("convert s.csv s.bin --type=l.type", "column 'ok'");
}

TEST_F(Told, FieldsThatNoFieldOfTheDeclarationHoldsAreRefused) {
    const auto refused = [&](const std::string& row, const std::string& type) {
        write("n.dbf", dbf({row}));
        write("n.type", "record\n\tNAME : string[5]\n\tN : " + type + "\nend record\n");
        expectFailure("convert n.dbf n.bin --type=n.type", "row 1, field 2 cannot be read");
    };
    refused(" Ann  "
            "   x",
            "real");
    write("d.csv", "id,n\n1,1.234567\n");
    converted("d.csv d.dbf", "d.dbf");
    write("d.type", "record\n\tid : integer\n\tn : fixed\nend record\n");
    expectFailure("convert d.dbf d.bin --type=d.type", "row 1, field 2 cannot be read");
    write("d.csv", "id,ok\n1,True\n2,\n");
    converted("d.csv d.dbf", "d.dbf");
    std::string bytes = read("d.dbf");
    bytes[bytes.size() - 2] = '?';
    write("d.dbf", bytes);
    write("d.type", "record\n\tid : integer\n\tok : boolean\nend record\n");
    converted("d.dbf d.bin --type=d.type", "d.bin");
    expectNote("1 blank fields of 'd.dbf' become 0 or False (the first in row 2)");
}

TEST_F(Told, NamesOfXbaseFieldsStayAsTheyStand) {
    write("d.csv", "x,b\n1,2\n");
    std::string bytes = converted("d.csv d.dbf", "d.dbf");
    bytes.replace(32, 11, "delete_flag");
    write("d.dbf", bytes);
    EXPECT_EQ(converted("d.dbf b.csv", "b.csv"), "delete_flag,b\n1,2\n");
    ASSERT_EQ(tarnData("info d.dbf >d.type"), Well);
    EXPECT_NE(read("d.type").find("renamed: delete_flag to delete_flag_2\n"), std::string::npos)
        << read("d.type");
    converted("d.dbf d.bin --type=d.type", "d.bin");
    expectNote("Columns renamed: 'delete_flag' to delete_flag_2.");
}

TEST_F(Told, BytesBehindTheRowsOfAnXbaseFileAreTold) {
    const std::string whole = dbf({" Ann  "
                                   " 1.5"});
    for (const std::string& end : {"\x1A"s, ""s, std::string(40, '\0'), "\r\n"s}) {
        write("n.dbf", whole + end);
        EXPECT_EQ(converted("n.dbf b.csv", "b.csv"), "NAME,N\nAnn,1.5\n");
        EXPECT_EQ(errors, "") << end.size();
    }
    write("n.dbf", whole + "more");
    converted("n.dbf b.csv", "b.csv");
    expectNote("Left out of 'n.dbf': 4 bytes behind its rows; 'tarn-data check' tells more.");
}

TEST_F(Told, ARowThatIsNoneNamesItsFileAndField) {
    write("b.type", "record\n\tid : integer\n\tn : string[4]\nend record\n");
    write("b.bin", std::string("\0\0\0\1\0\0\0\3Ann\0\0\0\0\2\0\0\0\x63"
                               "Bob\0",
                               24));
    write("s.type", "record\n\tid : integer\n\tn : Tchars[1:8]\nend record\n");
    for (const char* target : {"b.csv", "b.xml", "b.dbf", "c.bin"})
        expectFailure(
            std::string("convert b.bin ") + target + " --type=b.type",
            "File 'b.bin' row 2 cannot be read: its bytes are no value of field 'n'.\nLook whether the "
            "declaration is that of its rows; 'tarn-data check' names every such row.");
    EXPECT_FALSE(exists("c.bin"));
}

// A separator that is told makes a file text, whatever it begins with: the advice to tell one holds.
TEST_F(Told, AFileWithAZeroByteIsTextBySeparator) {
    for (const std::string mark : {";", "|", ":", ","}) {
        for (const std::string head : {"a", "\"a\"", "\xC3\xA4", "ab cd"}) {
            const std::string start = head + mark + "b\n1" + mark + "x";
            write("z.dat", start + std::string("\0y\n", 3));
            ASSERT_EQ(tarnData("convert z.dat b.csv --header-rows=1 --separator='" + mark + "'"), Well)
                << start << errors;
            EXPECT_EQ(read("b.csv"), (head[0] == '"' ? "a" : head) + std::string(",b\n1,\"x\0y\"\n", 11))
                << start;
        }
    }
    write("z.dat", std::string("PK\3\4;b\0\n", 9));
    expectFailure("convert z.dat b.csv --separator=';'", "unpack it, or save it as csv, first.");
}

TEST_F(Told, ADbfFileCountsItsOwnIndexesAlone) {
    write("i.type", "record\n\tid : integer\n\tn : string[4]\nend record\n");
    write("a.csv", "id,n\n1,x\n2,y\n");
    converted("a.csv a.bin --type=i.type --keys=id --keys=n", "a.bin");
    converted("a.csv a.dbf", "a.dbf");
    ASSERT_EQ(tarnData("check a.dbf"), Well) << output << errors;
    EXPECT_NE(output.find("a.i1: It is that of the table file 'a.bin'"), std::string::npos) << output;
    EXPECT_NE(output.find("a.dbf: whole, 2 rows\n"), std::string::npos) << output;
    ASSERT_EQ(tarnData("check a.bin --type=i.type"), Well) << output << errors;
    EXPECT_NE(output.find("a.bin: whole, 2 rows, 2 indexes\n"), std::string::npos) << output;
}

TEST_F(Told, IndexFilesOfAnotherTableAreNamed) {
    write("i.type", "record\n\tid : integer\nend record\n");
    write("i.csv", "id\n1\n2\n");
    converted("i.csv a.bin --type=i.type --keys=id", "a.bin");
    const std::string index = read("a.i1");
    expectFailure(
        "convert i.csv a.tabl --type=i.type --to-table --keys=id",
        "'a.tabl' cannot have the index file 'a.i1'. It is that of the table file 'a.bin'; of two files "
        "whose names differ in their extension alone only one can have indexes.\nChoose another name");
    EXPECT_FALSE(exists("a.tabl"));
    converted("i.csv a.tabl --type=i.type --to-table", "a.tabl");
    ASSERT_EQ(tarnData("info a.tabl --type=i.type"), Well) << errors;
    EXPECT_NE(output.find("index 1: a.i1, cannot be used: It is that of the table file 'a.bin'"),
              std::string::npos)
        << output;
    ASSERT_EQ(tarnData("check a.tabl --type=i.type"), Well) << output << errors;
    EXPECT_NE(output.find("note: a.i1: It is that of the table file 'a.bin'"), std::string::npos) << output;
    EXPECT_NE(output.find("a.tabl: whole, 2 rows, no index\n"), std::string::npos) << output;
    ASSERT_EQ(tarnData("rebuild a.tabl --type=i.type --dry-run"), Well) << errors;
    ASSERT_EQ(tarnData("rebuild a.tabl --type=i.type"), Well) << errors;
    expectFailure("rebuild a.tabl --type=i.type --keys=id", "belongs to another table beside it");
    EXPECT_EQ(read("a.i1"), index);
    expectWhole("a.bin --type=i.type");
}

// ---- names ----

TEST_F(Told, EveryRenamingIsNoted) {
    const struct {
        const char *text, *renamed;
    } cases[] = {
        {"a,\"\",b\n1,2,3\n", "Columns renamed: '' to FIELD2."},
        {"\" a\",b\n1,2\n", "Columns renamed: ' a' to a."},
        {"\"a \",b c\n1,2\n", "Columns renamed: 'a ' to a, 'b c' to b_c."},
        {"x,end,x\n1,2,3\n", "Columns renamed: 'end' to end_1, 'x' to x_2."},
    };
    for (const auto& c : cases) {
        write("r.csv", c.text);
        ASSERT_EQ(tarnData("info r.csv --header-rows=1 >r.type"), Well) << c.text << errors;
        for (const char* target : {"r.xml", "r.dbf", "r.bin --type=r.type", "p.csv --plain"}) {
            converted(std::string("r.csv --header-rows=1 ") + target, "r.xml");
            expectNote(c.renamed);
        }
        EXPECT_EQ(converted("r.csv q.csv --header-rows=1", "q.csv"), c.text);
        EXPECT_EQ(errors, "");
    }
    write("id.csv", "ID,name\n1,Ann\n");
    converted("id.csv t.bin --type=t.type", "t.bin");
    expectNote("Columns renamed: 'ID' to id.");
}

TEST_F(Told, HeadingsWithoutRowsComeBackOrAreTold) {
    write("h.csv", "a,b,c\n");
    write("h1.csv", "a\n");
    for (const char* target : {"tab", "dbf", "csv"}) {
        converted("h.csv x." + std::string(target), "");
        EXPECT_EQ(errors, "");
        EXPECT_EQ(converted("x." + std::string(target) + " y.csv", "y.csv"), "a,b,c\n");
    }
    converted("h.csv h.xml", "h.xml");
    expectNote(
        "There are no rows, and XML names columns in its rows alone: a, b, c stands nowhere in 'h.xml'.");
    expectFailure("convert h.csv h.txt", "There are 3 columns, and lines of text hold one.");
    write("h.type", "record\n\ta : integer\n\tb : integer\n\tc : integer\nend record\n");
    EXPECT_EQ(converted("h.csv h.bin --type=h.type", "h.bin"), "");
    EXPECT_EQ(converted("h.bin y.csv --type=h.type", "y.csv"), "a,b,c\n");
    for (const char* rows : {"", "1\n2\n"}) {
        write("h1.csv", "a\n"s + rows);
        EXPECT_EQ(converted("h1.csv h1.txt --header-rows=1", "h1.txt"), rows);
        expectNote("Lines of text have no heading: 'a' stands nowhere in 'h1.txt'.");
    }
}

TEST_F(Told, NamesOfXmlBeyondAsciiAreTheFault) {
    const char* const advice = "Names of elements and attributes have the letters A to Z";
    for (const char* text :
         {"<l><r><na\xC3\xAFve>1</na\xC3\xAFve></r></l>", "<l>\n<\xC3\xA4>1</\xC3\xA4></l>",
          "<\xC3\xA4><r><a>1</a></r></\xC3\xA4>", "<l><r \xC3\xA4='1'/></l>"}) {
        write("n.xml", text);
        expectFailure("convert n.xml n.csv", advice);
    }
    for (const char* text : {"<l><r><a>1</b></r></l>", "<l><r><a>1</a></r></l>\xC3\xA4"}) {
        write("n.xml", text);
        EXPECT_EQ(tarnData("convert n.xml n.csv"), Failed);
        EXPECT_EQ(errors.find(advice), std::string::npos) << errors;
    }
    write("l.csv", "<\xC3\xA4,b\n1,2\n");
    EXPECT_EQ(converted("l.csv m.csv", "m.csv"), "\"<\xC3\xA4\",b\n1,2\n");
}

// ---- forms of values ----

TEST_F(Told, ValuesThatComeBackInAnotherFormAreNoted) {
    write("v.type", "record\n\tok : boolean\n\tr : real\n\tn : integer\nend record\n");
    write("v.csv", "ok,r,n\nTrue,1.5,7\nyes,-inf,+7\nNO,2,007\nTRUE,1.50, 7\n");
    converted("v.csv v.bin --type=v.type", "v.bin");
    expectNote("Column 'ok': 3 cells come back in another form (the first in row 2: 'yes' as 'True').");
    expectNote("Column 'n': 3 cells come back in another form (the first in row 2: '+7' as '7').");
    expectNote("Column 'r': 2 cells come back in another form (the first in row 2: '-inf' as '-INF').");
    write("v.csv", "ok,r,n\nTrue,1.5,7\nFalse,-0.25,-3\n");
    EXPECT_EQ(converted("v.csv v.bin --type=v.type && " + program() + " convert v.bin w.csv --type=v.type",
                        "w.csv"),
              read("v.csv"));
    EXPECT_EQ(errors, "");
    write("v.csv", "ok,n\nTrue,1\nyes, 2\n");
    converted("v.csv v.dbf", "v.dbf");
    expectNote("Column 'ok' is written as T and F, for True and False, like 'yes' in row 2.");
    expectNote("Column 'n' has 1 cell with blanks around the value, which a dbf file does not keep "
               "(the first in "
               "row 2).");
}

TEST_F(Told, OneXmlRowOfAttributesIsARow) {
    write("r.xml", "<l><r a='1' b='x'/></l>");
    EXPECT_EQ(converted("r.xml b.csv", "b.csv"), "a,b\n1,x\n");
    write("r.xml", "<l v='2'><r a='1' b='x'/></l>");
    EXPECT_EQ(converted("r.xml b.csv", "b.csv"), "v,r_a,r_b\n2,1,x\n");
    write("r.xml", "<p><name lang='en'>Ann</name></p>");
    EXPECT_EQ(converted("r.xml b.csv", "b.csv"), "name_lang,name\nen,Ann\n");
}

TEST_F(Told, LinesThatBeginAsAnXbaseFileDoesAreLines) {
    write("x.txt", "01\n\n-0\n");
    EXPECT_EQ(converted("x.txt x.xml && " + program() + " convert x.xml y.txt", "y.txt"), read("x.txt"));
    write("d.txt", dbf({" Ann  "
                        " 1.5"}));
    EXPECT_EQ(converted("d.txt b.csv", "b.csv"), "NAME,N\nAnn,1.5\n");
}

// ---- encodings and ends ----

TEST_F(Told, Utf32IsRead) {
    const std::string plain = "h\xC3\xA4,b\n\xE2\x82\xAC,1\n\xF0\x9F\x98\x80,2\n";
    write("u.csv", plain);
    write("u.xml", "<l><r><a>\xC3\xA4</a></r><r><a>2</a></r></l>");
    const struct {
        const char *encoding, *mark;
    } cases[] = {{"UTF-32LE", "\\377\\376\\000\\000"},
                 {"UTF-32BE", "\\000\\000\\376\\377"},
                 {"UTF-32LE", ""},
                 {"UTF-32BE", ""}};
    for (const auto& c : cases) {
        const std::string iconv =
            std::string("{ printf '") + c.mark + "'; iconv -f UTF-8 -t " + c.encoding + " ";
        ASSERT_EQ(shell(iconv + "u.csv; } >w.csv; " + iconv + "u.xml; } >w.xml"), 0) << errors;
        EXPECT_EQ(converted("w.csv b.csv", "b.csv"), plain) << c.encoding;
        expectNote("File 'w.csv' is UTF-32 text. It is read as UTF-8, and what is written is UTF-8.");
        EXPECT_EQ(converted("w.xml b.csv", "b.csv"), "a\n\xC3\xA4\n2\n") << c.encoding;
    }
    write("w.csv", "\xFF\xFE\0\0a\0\0\0\n\0\0\0\0\xD8\0\0"s);
    expectFailure("convert w.csv b.csv", "is UTF-32 text, but for the bytes at 12, which are no character");
    write("w.csv", "\xFF\xFE\0\0a\0\0\0\n\0"s);
    expectFailure("convert w.csv b.csv", "is UTF-32 text, but for the bytes at 8, which are no character");
}

TEST_F(Told, WhatStandsBehindTheEndIsTold) {
    const struct {
        std::string text, rows, note;
    } cases[] = {
        {"a,b\n1,2\n\x1A", "a,b\n1,2\n",
         "File 'z.csv' ends with 1 byte that mark its end (1A) and are no text: left out."},
        {"a,b\n1,2\x1A", "a,b\n1,2\n", "File 'z.csv' ends with 1 byte that mark"},
        {"a,b\n1,2\n\x1A\0\0"s, "a,b\n1,2\n", "File 'z.csv' ends with 3 bytes that mark"},
        {"a,b\n1,2\n\n , \n\n", "a,b\n1,2\n",
         "1 line of 'z.csv' behind an empty one with separators and blanks alone left out."},
    };
    for (const auto& c : cases) {
        write("z.csv", c.text);
        EXPECT_EQ(converted("z.csv b.csv", "b.csv"), c.rows) << c.text;
        expectNote(c.note);
    }
    for (const std::size_t bytes : {4095U, 4096U, 4097U, 65535U, 65536U, 65537U, 200000U}) {
        for (const std::string& fill : {std::string(bytes, '\x1A'), "\x1A" + std::string(bytes - 1, '\0')}) {
            write("z.csv", "a,b\n1,2\n" + fill);
            EXPECT_EQ(converted("z.csv b.csv", "b.csv"), "a,b\n1,2\n") << bytes;
            expectNote("File 'z.csv' ends with " + std::to_string(bytes) + " bytes that mark");
        }
    }
    write("z.csv", "a,b\n1,2\n\x1A\nx,y\n");
    EXPECT_EQ(converted("z.csv b.csv", "b.csv"), read("z.csv")) << "no end where more follows";
    write("z.txt", "x\ny\n\x1A");
    EXPECT_EQ(converted("z.txt b.csv", "b.csv"), "line\nx\ny\n");
    expectNote("File 'z.txt' ends with 1 byte that mark");
    write("z.xml", "<l><v>1</v><v>2</v></l>\x1A and more");
    EXPECT_EQ(converted("z.xml b.csv", "b.csv"), "v\n1\n2\n");
    expectNote("Left out of 'z.xml': 9 bytes behind the mark of its end (the byte 1A at 23).");
    write("z.xml", "<l><v>1</v><v>2</v></l>\x1A\r\n");
    converted("z.xml b.csv", "b.csv");
    EXPECT_EQ(errors, "");
}

// ---- lengths ----

TEST_F(Told, XmlTakesLongTextsAndLines) {
    const std::string text = "a,b\n1," + std::string(40000, 'x') + "\n2,y\n";
    write("l.csv", text);
    converted("l.csv l.xml", "l.xml");
    expectNote("1 cell is longer than the 32767 bytes of a line that programs of the system read in XML (the "
               "first in "
               "row 1, column 'b').");
    EXPECT_TRUE(converted("l.xml b.csv", "b.csv") == text);
    EXPECT_EQ(errors, "");
    write("l.xml", "<l><r><a>1</a><b>" + std::string(40000, 'x') + "</b></r><r><a>2</a><b>y</b></r></l>");
    ASSERT_EQ(tarnData("info l.xml"), Well) << errors;
    EXPECT_NE(output.find("b : string[40000]\n"), std::string::npos) << output;
    std::string line = "<l>", rows = "a,b\n";
    for (int i = 0; i < 5000; ++i) {
        line += "<r><a>" + std::to_string(i) + "</a><b>y</b></r>";
        rows += std::to_string(i) + ",y\n";
    }
    write("l.xml", line + "</l>");
    EXPECT_TRUE(converted("l.xml b.csv", "b.csv") == rows);
    EXPECT_EQ(errors, "");
    write("l.xml", "<l><r a='" + std::string(70000, 'x') + "'/><r a='y'/></l>");
    EXPECT_TRUE(converted("l.xml b.csv", "b.csv") == "a\n" + std::string(70000, 'x') + "\ny\n");
    // Of those that hold quotes or line ends, the scanner keeps no more.
    write("l.xml",
          "<l><r a='" + std::string(20000, 'x') + "\n" + std::string(20000, 'x') + "'/><r a='y'/></l>");
    expectFailure("convert l.xml b.csv", "Attribute is too long, max length is 32768");
    write("l.xml", "<l><v>" + std::string(std::size_t{17} << 20, 'x') + "</v><v/></l>");
    expectFailure("convert l.xml b.csv", "Line too long, max length is 16777216");
}

}  // namespace
}  // namespace tarn::datatool
