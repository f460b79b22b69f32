// SPDX-License-Identifier: Apache-2.0
//
// XML into other forms, and back: nothing of it changes or goes without a word.
#include "tarn_data/fixture.h"

#include <filesystem>

namespace tarn::datatool {
namespace {

constexpr int Well = 0, Failed = 1;

class TarnDataXml : public TarnData {
protected:
    // What becomes of an XML text as csv, with the notes ahead of it.
    std::string csvOf(const std::string& text, const std::string& options = {}) {
        write("a.xml", text);
        const int status = tarnData("convert a.xml b.csv " + options);
        return errors + (status == Well ? read("b.csv") : std::string());
    }
    static std::string noted(const std::string& what) { return "tarn-data: note: " + what + "\n"; }
};

TEST_F(TarnDataXml, AttributesAreColumnsWhereverTheyStandInARow) {
    const struct {
        const char *text, *csv;
    } cases[] = {
        {"<l><r id='1'><n>x</n></r><r id='2'><n>y</n></r></l>", "id,n\n1,x\n2,y\n"},
        {"<l><r><n lang='en'>x</n></r><r><n lang='de'>y</n></r></l>", "n_lang,n\nen,x\nde,y\n"},
        {"<l><v id='1'>x</v><v id='2'>y</v></l>", "id,v\n1,x\n2,y\n"},
        {"<l><v x='1'/><v x='2'/></l>", "x\n1\n2\n"},
        {"<l><r><p x='1' y='2'/></r><r><p x='3' y='4'/></r></l>", "p_x,p_y\n1,2\n3,4\n"},
        {"<l><r a='1' b='2'><c>3</c></r><r a='4' b='5'>\n<c>6</c></r></l>", "a,b,c\n1,2,3\n4,5,6\n"},
        {"<l><r a='1'/><r><a>2</a></r></l>", "a\n1\n2\n"},
        {"<l><r><t type='home'>1</t></r><r><t type='work'>2</t></r></l>", "t_type,t\nhome,1\nwork,2\n"},
        {"<l type='table'><r type='record'><t type='integer'>1</t></r>"
         "<r type='record'><t type='integer'>2</t></r></l>",
         "t\n1\n2\n"},
        {"<l><f n='a' type='integer' index='1'/><f n='b' type='file' index='2'/></l>",
         "n,type,index\na,integer,1\nb,file,2\n"},
        {"<l><r><n type='string'>x</n></r><r><n type='file'>y</n></r></l>", "n_type,n\nstring,x\nfile,y\n"},
        {"<l><r><a u='1'>  </a><b>x</b></r></l>", "a_u,a,b\n1,\"  \",x\n"},
        {"<l><r><a u='1'>\n  </a><b>x</b></r></l>", "a_u,b\n1,x\n"},
        // What a reference or a section gives is no layout, however blank it is.
        {"<l><r><a u='1'>&#10;</a><b>x</b></r></l>", "a_u,a,b\n1,\"\n\",x\n"},
        {"<l><r><a u='1'>\n&#32;\n</a><b>x</b></r></l>", "a_u,a,b\n1,\"\n \n\",x\n"},
        {"<l><r><a u='1'><![CDATA[\n]]></a><b>x</b></r></l>", "a_u,a,b\n1,\"\n\",x\n"},
        {"<l><r><a u='1'>&#10;</a><b v='2'>\n</b></r></l>", "a_u,a,b_v\n1,\"\n\",2\n"},
        {"<l><v u='1'>&#10;</v><v u='2'>\n</v></l>", "u,v\n1,\"\n\"\n2,\n"},
        {"<r a='1'><b c='2'>3</b></r>", "a,b_c,b\n1,2,3\n"},
        {"<l xmlns='u' xmlns:x='v'><r x:a='1'/><r x:a='2'/></l>", "x:a\n1\n2\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(csvOf(c.text), c.csv) << c.text;
}

TEST_F(TarnDataXml, DataThatHasNoPlaceIsCounted) {
    const struct {
        const char *text, *note, *csv;
    } cases[] = {
        {"<l v='1'>\n<r><n>x</n></r><r><n>y</n></r></l>",
         "Left out of 'a.xml': 1 attribute around the rows, the first in line 1 ('v' of 'l').", "n\nx\ny\n"},
        {"<d a='1' b='2'>\n<l c='3'><r><n>x</n></r><r><n>y</n></r></l></d>",
         "Left out of 'a.xml': 3 attributes around the rows, the first in line 1 ('a' of 'd').", "n\nx\ny\n"},
        {"<l><r><n>x</n></r>\n<r>so <n>y</n> it is</r></l>",
         "Left out of 'a.xml': 2 texts beside elements, the first in line 2 (text in row 2).", "n\nx\ny\n"},
        {"<l>and<r><n>x</n></r><r><n>y</n></r></l>",
         "Left out of 'a.xml': 1 text beside elements, the first in line 1 (text around the rows).",
         "n\nx\ny\n"},
        {"<d><l><r><n>x</n></r><r><n>y</n></r></l>\n<m><k>1</k></m></d>",
         "Left out of 'a.xml': 1 element beside the rows, the first in line 2 (element 'm').", "n\nx\ny\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(csvOf(c.text), noted(c.note) + c.csv) << c.text;
    EXPECT_EQ(tarnData("info a.xml"), Well);
    EXPECT_EQ(errors, noted(cases[4].note));
}

TEST_F(TarnDataXml, FieldsAreFoundByTheirNames) {
    const struct {
        const char *text, *csv;
    } cases[] = {
        {"<l><r><a>1</a><b>2</b></r>\n<r><b>3</b></r></l>", "a,b\n1,2\n,3\n"},
        {"<l><r a='1' b='2' c='3'/>\n<r a='1' c='3'/></l>", "a,b,c\n1,2,3\n1,,3\n"},
        {"<l><r><a>1</a></r>\n<r><a>1</a><b>3</b></r></l>", "a,b\n1,\n1,3\n"},
        {"<l><r><a>1</a></r>\n<r/></l>", "a\n1\n\"\"\n"},
        {"<l><r><a>1</a><b>2</b></r><r><b>3</b><a>4</a></r></l>", "a,b\n1,2\n4,3\n"},
        {"<l><r><b>1</b></r><r><a>2</a><b>3</b><c>4</c></r></l>", "a,b,c\n,1,\n2,3,4\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(csvOf(c.text), c.csv) << c.text;
}

TEST_F(TarnDataXml, RowsThatNoTableTakesAreRefused) {
    const struct {
        const char *text, *said;
    } cases[] = {
        {"<l><r><a>1</a><b><c>1</c><d>2</d></b></r><r><a>1</a><b>\n<c>1</c><d>2</d></b></r></l>",
         "line 1: the element 'b' of row 1 holds other elements.\nOnly rows of simple columns"},
        {"<l><r><a>1</a><t>x</t><t>y</t></r>\n<r><a>1</a></r></l>", "line 1: row 1 has 't' more than once."},
        {"<l><r a='1'><a>2</a></r><r/></l>", "line 1: row 1 has 'a' more than once."},
        {"<l><i>1</i><i>2</i>\n<j/></l>", "line 2: the rows are called 'i', and row 3 'j'."},
        {"<l>\n<r>\n</l>", "Start tag \"r\" and end tag \"l\" are different (Line 3, Position"},
        {"<l/>", "contains no XML data apart from the outermost element."},
        {"<l><r><a>&none;</a></r></l>", "The entity reference &none; is not allowed (Line 1, Position"},
        {"<l><r>\x01</r><r>\xC3</r></l><\xC3>", "Found unexpected symbol"},
    };
    write("b.csv", "as it was");
    for (const auto& c : cases) {
        write("a.xml", c.text);
        for (const char* words : {"convert a.xml b.csv", "convert --text a.xml b.csv", "info a.xml"}) {
            EXPECT_EQ(tarnData(words), Failed) << c.text;
            EXPECT_NE(errors.find(c.said), std::string::npos) << c.text << errors;
        }
    }
    EXPECT_EQ(read("b.csv"), "as it was");
}

// Half characters and control bytes must not reach a terminal.
TEST_F(TarnDataXml, MessagesEscapeWhatNoTerminalShows) {
    const auto clean = [&](const std::string& text) {
        write("a.xml", text);
        EXPECT_EQ(tarnData("convert a.xml b.csv"), Failed) << text;
        for (const char c : errors)
            EXPECT_TRUE(c == '\n' || (c >= ' ' && c < '\x7F')) << text << "\n" << errors;
        return errors;
    };
    EXPECT_NE(clean("<a><b>1</b></a>\x1B[31m").find("x1B"), std::string::npos);
    EXPECT_NE(clean("<a><b>1</b></a>\xC3").find("\\xC3"), std::string::npos);
    EXPECT_NE(clean("<a \xE2=''>1</a>").find("\\xE2"), std::string::npos);
    EXPECT_NE(clean("<?xml version='1.0' encoding='\x1B[31m\xC3'?><a>1</a>").find("\\x1B[31m\\xC3"),
              std::string::npos);
}

TEST_F(TarnDataXml, TypesThatDifferMakeAColumnOfTexts) {
    const std::string text = "<l><r><a>1</a></r><r><a>2024-01-02</a></r><r><a>True</a></r></l>";
    EXPECT_EQ(csvOf(text), "a\n1\n2024-01-02\nTrue\n");
    EXPECT_EQ(csvOf(text, "--text"), "a\n1\n2024-01-02\nTrue\n");
    for (const char* words : {"convert a.xml b.xml", "convert --text a.xml b.xml"}) {
        EXPECT_EQ(tarnData(words), Well) << errors;
        EXPECT_NE(read("b.xml").find("<a type=\"string\">2024-01-02</a>"), std::string::npos)
            << read("b.xml");
    }
}

TEST_F(TarnDataXml, TextMakesEveryLeafText) {
    write("a.xml", "<l><r><a>1</a><b>True</b></r><r><a>2</a><b>False</b></r></l>");
    EXPECT_EQ(tarnData("convert --text a.xml b.xml"), Well) << errors;
    EXPECT_NE(read("b.xml").find("<a type=\"string\">1</a>"), std::string::npos) << read("b.xml");
    EXPECT_NE(read("b.xml").find("<b type=\"string\">True</b>"), std::string::npos);
    EXPECT_EQ(tarnData("info --text a.xml"), Well) << errors;
    EXPECT_NE(output.find("a : string[1]\n"), std::string::npos) << output;
    EXPECT_NE(output.find("b : string[5]\n"), std::string::npos) << output;
}

TEST_F(TarnDataXml, NumbersStayAsTheyAreWritten) {
    const std::string csv = "num,n,d,id\n070,1.50,,12345678901234567890\n071,2,0.1,1\n";
    EXPECT_EQ(csvOf("<l><r><num>070</num><n>1.50</n><d/><id>12345678901234567890</id></r>"
                    "<r><num>071</num><n>2</n><d>0.1</d><id>1</id></r></l>"),
              csv);
    EXPECT_EQ(tarnData("convert a.xml b.xml"), Well) << errors;
    EXPECT_NE(read("b.xml").find("<num type=\"string\">070</num>"), std::string::npos) << read("b.xml");
    EXPECT_NE(read("b.xml").find(">1.50</n>"), std::string::npos);
    EXPECT_NE(read("b.xml").find("<d type=\"fixed\"/>"), std::string::npos) << read("b.xml");
    EXPECT_EQ(tarnData("convert b.xml c.csv"), Well) << errors;
    EXPECT_EQ(read("c.csv"), csv);
    EXPECT_EQ(tarnData("info a.xml"), Well);
    EXPECT_NE(errors.find("note: Column 'num' of 'a.xml' is taken as text: 070 begins with a zero (row 1)."),
              std::string::npos)
        << errors;
    EXPECT_NE(output.find("num : string[3]\n"), std::string::npos) << output;
}

TEST_F(TarnDataXml, EmptyNumbersAreNotedWhereTheTargetHasNothingForThem) {
    write("a.xml", "<l><r><a>1</a><n>5</n></r><r><a>2</a><n/></r><r><a>3</a></r></l>");
    for (const char* target : {"b.csv", "b.tab", "b.xml"}) {
        EXPECT_EQ(tarnData(std::string("convert a.xml ") + target), Well);
        EXPECT_EQ(errors, "") << target;
        EXPECT_EQ(tarnData(std::string("convert ") + target + " c.csv"), Well);
        EXPECT_EQ(read("c.csv"), "a,n\n1,5\n2,\n3,\n") << target;
    }
    write("type", "r : record\n\ta : integer\n\tn : integer\nend record\n");
    EXPECT_EQ(tarnData("convert a.xml b.bin --type=type"), Well) << errors;
    EXPECT_NE(errors.find("Column 'n': 2 cells that hold nothing become 0 or False (the first in row 2)"),
              std::string::npos)
        << errors;
}

// ---- encodings ----

TEST_F(TarnDataXml, FilesOfOtherEncodingsAreReadAsUtf8WithANote) {
    const std::string rows = "<l><r><a>x</a></r><r><a>\xC3\xA9 \xE2\x82\xAC</a></r></l>";
    const std::string csv = "a\nx\n\xC3\xA9 \xE2\x82\xAC\n";
    const auto head = [](const char* encoding) {
        return "<?xml version=\"1.0\" encoding=\"" + std::string(encoding) + "\"?>\n";
    };
    EXPECT_EQ(csvOf("\xEF\xBB\xBF" + rows), csv);
    EXPECT_EQ(csvOf("\xEF\xBB\xBF" + head("UTF-8") + rows), csv);
    EXPECT_EQ(csvOf(head("utf-8") + rows), csv);
    const struct {
        const char *text, *encoding, *told;
    } cases[] = {
        {"<l><r><a>x</a></r><r><a>\xE9 \x80</a></r></l>", "windows-1252", "Windows-1252"},
        {"<l><r><a>x</a></r><r><a>\xE9 \xA4</a></r></l>", "ISO-8859-15", "ISO-8859-15"},
        {"<l><r><a>x</a></r><r><a>\xE9 &#8364;</a></r></l>", "ISO-8859-1", "ISO-8859-1"},
        {"<l><r><a>x</a></r><r><a>\xE9 &#x20AC;</a></r></l>", "Latin1", "ISO-8859-1"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(csvOf(head(c.encoding) + c.text),
                  noted("File 'a.xml' is " + std::string(c.told) +
                        " text. It is read as UTF-8, and what is written is UTF-8.") +
                      csv);
    const std::string text = head("UTF-16") + rows;
    write("u.xml", text);
    for (const char* form : {"UTF-16", "UTF-16LE", "UTF-16BE"}) {
        EXPECT_EQ(shell(std::string("iconv -f UTF-8 -t ") + form + " u.xml >a.xml"), 0) << errors;
        EXPECT_EQ(tarnData("convert a.xml b.csv"), Well) << form << errors;
        EXPECT_EQ(read("b.csv"), csv) << form;
        EXPECT_EQ(errors,
                  noted("File 'a.xml' is UTF-16 text. It is read as UTF-8, and what is written is UTF-8."));
        EXPECT_EQ(tarnData("info a.xml"), Well) << form << errors;
    }
}

TEST_F(TarnDataXml, FilesOfUnknownEncodingsAreRefusedWithTheCommandThatConvertsThem) {
    EXPECT_EQ(csvOf("<?xml version='1.0' encoding='Shift_JIS'?><l><r>1</r></l>"),
              "tarn-data: File 'a.xml' is declared to be in the encoding 'Shift_JIS'.\n"
              "Convert it first: iconv -f Shift_JIS -t UTF-8 'a.xml' >'a-utf8.xml'\n");
}

TEST_F(TarnDataXml, CharacterReferencesAreCharacters) {
    EXPECT_EQ(csvOf("<l><r a='&#233;'>&#x4E2D;</r><r a='&lt;'>&#128512;</r></l>"),
              "a,r\n\xC3\xA9,\xE4\xB8\xAD\n<,\xF0\x9F\x98\x80\n");
    EXPECT_NE(csvOf("<l><r>&#xD800;</r><r/></l>").find("The character reference &#xD800; is not allowed"),
              std::string::npos);
}

// ---- large files ----

TEST_F(TarnDataXml, HostileSizesAreRefused) {
    const std::string longText(17 << 20, 'x');
    std::string lines;
    for (std::size_t at = 0; at < longText.size(); at += 100) lines += longText.substr(at, 100) + "\n";
    EXPECT_NE(
        csvOf("<l><r>" + lines + "</r><r/></l>").find("Character data at this nesting level is too long"),
        std::string::npos);
    std::string rows;
    for (int i = 0; i < 1100; ++i)
        rows += "<r><a>1</a><b" + std::to_string(i) + ">2</b" + std::to_string(i) + "></r>\n";
    csvOf("<l>" + rows + "</l>");
    EXPECT_TRUE(errors.find("there are more than 1000 columns.") != std::string::npos ||
                errors.find("too large or too deeply nested") != std::string::npos)
        << errors;
}

// Whenever the signal comes, the target is the old one or the new one.
TEST_F(TarnDataXml, AStoppedConversionLeavesTheTargetAsItWas) {
    std::string text = "<l>\n";
    for (int i = 1; i <= 60000; ++i) text += "<r><id>" + std::to_string(i) + "</id><n>a name</n></r>\n";
    write("a.xml", text + "</l>\n");
    EXPECT_EQ(tarnData("convert a.xml whole.csv"), Well) << errors;
    int stopped = 0;
    for (int i = 0; i < 20; ++i) {
        write("b.csv", "as it was");
        const std::string delay = "0." + std::to_string(i / 10) + std::to_string(i % 10);
        const int status = python("interrupt.py", delay + " " + program() + " convert a.xml b.csv");
        EXPECT_EQ(read("b.csv"), status == Well ? read("whole.csv") : "as it was");
        if (errors.find("Stopped.") != std::string::npos) ++stopped;
    }
    EXPECT_GT(stopped, 0);
}

TEST_F(TarnDataXml, LongWorkShowsItsProgressOnATerminal) {
    std::string text = "<l>\n";
    for (int i = 1; i <= 1600000; ++i) text += "<r><id>" + std::to_string(i) + "</id><n>a name</n></r>\n";
    write("a.xml", text + "</l>\n");
    EXPECT_EQ(python("terminal.py", program() + " info a.xml"), Well) << errors;
    EXPECT_NE(output.find("reading a.xml: "), std::string::npos) << output;
    EXPECT_NE(output.find(" %"), std::string::npos);
}

TEST_F(TarnDataXml, MemoryDoesNotGrowWithTheFile) {
    std::string text = "<rows>\n";
    for (int i = 1; i <= 150000; ++i)
        text += "<row id=\"" + std::to_string(i) + "\"><name lang=\"en\">a name of some length</name><n>" +
                std::to_string(i % 977) + ".5</n></row>\n";
    write("a.xml", text + "</rows>\n");
    write("type", "r : record\n\tid : integer\n\tname_lang : string[2]\n\tname : string[30]\n\tn : "
                  "fixed\nend record\n");
    for (const char* words : {"a.xml b.csv", "a.xml b.tab", "a.xml b.xml", "a.xml b.dbf",
                              "a.xml b.bin --type=type", "b.csv c.xml", "b.dbf c.xml", "b.xml c.csv"}) {
        EXPECT_EQ(shell("ulimit -v 200000; " + program() + " convert " + words), Well) << words << errors;
    }
    EXPECT_EQ(read("c.csv"), read("b.csv"));
}

}  // namespace
}  // namespace tarn::datatool
