// SPDX-License-Identifier: Apache-2.0
//
// The structure of XML files: what is made of elements, attributes and content, and which faults are told.
#include "unit/kernel/xml_fixture.h"

#include <chrono>

namespace tarn {
namespace {

using XmlReadTest = Xml;

// ---- structures ----

struct Case {
    const char *text, *expected;
};

TEST_F(XmlReadTest, TheStructureOfSingleElementsIsTheTypeOfTheirText) {
    const Case cases[] = {
        {"<a>1</a>", "a : integer\n"},
        {"<a>abc</a>", "a : string[3]\n"},
        {"<a/>", ""},
        {"<a></a>", ""},
        {"<a> \n\t </a>", ""},
        {"<a>1.5</a>", "a : fixed\n"},
        {"<a>True</a>", "a : boolean\n"},
        {"<a>[1..3,7]</a>", "a : set[1:7]\n"},
        {"<a>99999999999</a>", "a : real\n"},
        {"<a>NULL</a>", "a : string[4]\n"},
        {"<a><![CDATA[<b>]]></a>", "a : string[3]\n"},
        {"<a><!-- 1 --></a>", ""},
        {"<a>1<!-- 2 -->3</a>", "a : integer\n"},
        {"<a:b-c.d_e>1</a:b-c.d_e>", "a:b-c.d_e : integer\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(structure(c.text), c.expected) << c.text;
}

TEST_F(XmlReadTest, TwoChildrenOfOneNameMakeAListAndOthersARecord) {
    const Case cases[] = {
        {"<a><b/><b/></a>", "a : list\nend list\n"},
        {"<a><b/><c/></a>", "a : record\n\tb : Any\n\tc : Any\nend record\n"},
        {"<a><b/></a>", "a : record\n\tb : Any\nend record\n"},
        {"<a><b>1</b></a>", "a : record\n\tb : integer\nend record\n"},
        {"<a><b>1</b><c>x</c></a>", "a : record\n\tb : integer\n\tc : string[1]\nend record\n"},
        {"<list><item>1</item><item>x</item></list>", "list : list\n\titem : string[40]\nend list\n"},
        {"<l><i>1</i><i>2.5</i><i>3</i></l>", "l : list\n\ti : fixed\nend list\n"},
        {"<l><i>ab</i><i>abcd</i><i>a</i></l>", "l : list\n\ti : string[4]\nend list\n"},
        {"<l><i/><i>5</i><i/></l>", "l : list\n\ti : integer\nend list\n"},
        {"<r><a/><b>5</b><c/></r>", "r : record\n\ta : Any\n\tb : integer\n\tc : Any\nend record\n"},
        {"<l><r><x/><y/></r><r><x>1</x><y/></r></l>",
         "l : list\n\tr : record\n\t\tx : integer\n\t\ty : Any\n\tend record\nend list\n"},
        {"<l><r><x/><y>1</y></r><r><x><i>1</i><i>2</i></x><y>2</y></r></l>",
         "l : list\n\tr : record\n\t\tx : list\n\t\t\ti : integer\n\t\tend list\n\t\ty : integer\n"
         "\tend record\nend list\n"},
        {"<r><a/><a>1</a><a>2</a></r>", "r : list\n\ta : integer\nend list\n"},
        {"<t><r><x>1</x><y>a</y></r><r><x>2</x><y>abc</y></r></t>",
         "t : list\n\tr : record\n\t\tx : integer\n\t\ty : string[3]\n\tend record\nend list\n"},
        {"<t><r><x>1</x><y>a</y></r><r><x>2</x></r></t>",
         "t : list\n\tr : record\n\t\tx : integer\n\t\ty : string[1]\n\tend record\nend list\n"},
        {"<d><l><r><x>1</x></r><r><x>2</x></r></l></d>", "d : record\n\tl : list\n\t\tr : record\n\t\t\tx : "
                                                         "integer\n\t\tend record\n\tend list\nend record\n"},
        {"<a>text<b>1</b>text</a>", "a : record\n\tb : integer\nend record\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(structure(c.text), c.expected) << c.text;
}

TEST_F(XmlReadTest, MoreDecimalsThanAFixedNumberKeepsAreReal) {
    const Case cases[] = {
        {"<a>52.520008</a>", "a : real\n"},
        {"<a>\n 52.5200 </a>", "a : fixed\n"},
        {"<a x='52.520008'/>", "a : real\n"},
        {"<a x='1.5' y='52.520008'/>", "a : record\n\tx : fixed\n\ty : real\nend record\n"},
        {"<a>2020-01-31 10:00:00.0000</a>", "a : Tdatetime[24]\n"},
        {"<a>1.2.34567</a>", "a : string[9]\n"},
        {"<l><v>1.5</v><v>1.234567</v><v>2</v></l>", "l : list\n\tv : real\nend list\n"},
        {"<l><v>1.234567</v><v>1.5</v></l>", "l : list\n\tv : real\nend list\n"},
        {"<l><p><x>1.5</x><y>1.5</y></p><p><x>2.5</x><y>1.23456</y></p><p><x>3.5</x><y>9.5</y></p></l>",
         "l : list\n\tp : record\n\t\tx : fixed\n\t\ty : real\n\tend record\nend list\n"},
        {"<l><p><q><v>1.5</v></q><v>1.23456</v></p><p><q><v>1.5</v></q><v>2.5</v></p></l>",
         "l : list\n\tp : record\n\t\tq : record\n\t\t\tv : fixed\n\t\tend record\n\t\tv : real\n"
         "\tend record\nend list\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(structure(c.text), c.expected) << c.text;
}

TEST_F(XmlReadTest, AttributesAreFieldsUnlessContentSaysMore) {
    const Case cases[] = {
        {"<a x=\"1\"/>", "a : integer\n"},
        {"<a x='1'/>", "a : integer\n"},
        {"<a x=\"\"/>", "a : Any\n"},
        {"<a x=\"1\" y=\"abc\"/>", "a : record\n\tx : integer\n\ty : string[3]\nend record\n"},
        {"<a x = \"1\"\n\t y\n=\n'2'/>", "a : record\n\tx : integer\n\ty : integer\nend record\n"},
        {"<a x=\"\" y=\"1\"/>", "a : record\n\tx : Any\n\ty : integer\nend record\n"},
        {"<a x=\"1\">abc</a>", "a : string[3]\n"},
        {"<a x=\"1\"></a>", "a : integer\n"},
        {"<a x=\"1\" y=\"2\"><b>abc</b></a>", "a : record\n\tb : string[3]\nend record\n"},
        {"<a x=\"&lt;&#65;&#x42;\"/>", "a : string[3]\n"},
        {"<a x=\"a & b\"/>", "a : string[5]\n"},
        {"<a version=\"1\" encoding=\"2\" SYSTEM=\"3\"/>",
         "a : record\n\tversion : integer\n\tencoding : integer\n\tSYSTEM : integer\nend record\n"},
        {"<version><NDATA>1</NDATA></version>", "version : record\n\tNDATA : integer\nend record\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(structure(c.text), c.expected) << c.text;
}

TEST_F(XmlReadTest, TheAttributesTypeAndIndexAreNoFields) {
    const Case cases[] = {
        {"<a TYPE=\"x\"/>", ""},
        {"<a TYPE=\"x\" y=\"1\" INDEX=\"5\"/>", "a : integer\n"},
        {"<a Type=\"string[9]\">1</a>", "a : integer\n"},
        {"<l><i type=\"string[9]\">1</i></l>", "l : record\n\ti : string[9]\nend record\n"},
        {"<l><i type=\"string\">1</i><i type=\"string\">True</i></l>", "l : list\n\ti : string\nend list\n"},
        {"<l><i type=\"set[1:9]\">[1]</i></l>", "l : record\n\ti : set[1:9]\nend record\n"},
        {"<l><i type=\"string[9]\"/></l>", "l : record\n\ti : string[9]\nend record\n"},
        {"<l><i type=\"list\"/></l>",
         "l : record\n\ti : list\n\t\tcomponent : Any\n\tend list\nend record\n"},
        {"<l><i type=\"table[5]\"></i></l>",
         "l : record\n\ti : list\n\t\tcomponent : Any\n\tend list\nend record\n"},
        {"<l><i type=\"List\">1</i></l>",
         "l : record\n\ti : list\n\t\tcomponent : Any\n\tend list\nend record\n"},
        {"<l><i type=\"record\"/></l>", "l : record\n\ti : record\n\tend record\nend record\n"},
        {"<l><i type=\"union\" x=\"1\"/></l>",
         "l : record\n\ti : record\n\t\tx : integer\n\tend record\nend record\n"},
        {"<l><i type=\"record\"><x>1</x></i></l>",
         "l : record\n\ti : record\n\t\tx : integer\n\tend record\nend record\n"},
        {"<l><i type=\"??\">1</i></l>", "l : record\n\ti : integer\nend record\n"},
        {"<l><i type=\"\">1</i></l>", "l : record\n\ti : integer\nend record\n"},
        {"<l><i type=\"integer\">abc</i></l>", "l : record\n\ti : integer\nend record\n"},
        {"<l><i type=\"Tdatetime[24]\"/></l>", "l : record\n\ti : Tdatetime[24]\nend record\n"},
        {"<l><i type=\"UNION\"/></l>", "l : record\n\ti : union\n\tend union\nend record\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(structure(c.text), c.expected) << c.text;
}

TEST_F(XmlReadTest, WordsThatAreNoTypesChangeNothing) {
    const Case cases[] = {
        {"<c><phone type=\"mobile\">1</phone><phone type=\"home\">2</phone></c>",
         "c : list\n\tphone : integer\nend list\n"},
        {"<l><p type=\"mobile\">1</p><q>ab</q></l>",
         "l : record\n\tp : integer\n\tq : string[2]\nend record\n"},
        {"<l><p type=\"adt\">1</p></l>", "l : record\n\tp : integer\nend record\n"},
        {"<l><p type=\"adt\" x=\"1\" y=\"2\"/></l>",
         "l : record\n\tp : record\n\t\tx : integer\n\t\ty : integer\n\tend record\nend record\n"},
        {"<l><p type=\"records\" x=\"1\"/></l>", "l : record\n\tp : integer\nend record\n"},
        {"<l><p type=\"listing\">1</p></l>", "l : record\n\tp : integer\nend record\n"},
        {"<l><p type=\"end record\">1</p></l>", "l : record\n\tp : integer\nend record\n"},
        {"<l><p type=\"integer of some\">x</p></l>", "l : record\n\tp : integer\nend record\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(structure(c.text), c.expected) << c.text;
}

TEST_F(XmlReadTest, AnyLeavesBecomeStrings) {
    EXPECT_EQ(TypeInfoFixAny("a : Any\n"), "a : string[1024]\n");
    EXPECT_EQ(TypeInfoFixAny("a : record\n\tb : any\n\tany : integer\n\tc : ANY\nend record\n"),
              "a : record\n\tb : string[1024]\n\tany : integer\n\tc : string[1024]\nend record\n");
    EXPECT_EQ(TypeInfoFixAny("a : Any"), "a : string[1024]");
    EXPECT_EQ(TypeInfoFixAny(""), "");
    EXPECT_EQ(TypeInfoFixAny("\n\nx\n"), "\n\nx\n");
}

// ---- tags and content ----

TEST_F(XmlReadTest, FaultsOfTagsAreToldWithTheirPlace) {
    const Case cases[] = {
        {"< a/>", "672 1:3 No spaces allowed between \"<\" and \"Name\""},
        {"<\na/>", "672 2:1 No spaces allowed between \"<\" and \"Name\""},
        {"<5/>", "672 1:2 Symbol \"5\" is not allowed here"},
        {"< 5/>", "672 1:3 Symbol \"5\" is not allowed here"},
        {"<a", "672 1:0 Symbol \"\\x1A\" is not allowed here"},
        {"<a b/>", "672 1:6 Symbol \"/>\" is not allowed here"},
        {"<a b=/>", "672 1:7 Symbol \"/>\" is not allowed here"},
        {"<a b=c/>", "672 1:6 Symbol \"<XmlIdentifier>\" is not allowed here"},
        {"<a =></a>", "672 1:4 Symbol \"=\" is not allowed here"},
        {"<a b='1/>", "672 1:0 String was not terminated"},
        {"<a>", "672 1:0 Symbol \"\\x1A\" is not allowed here"},
        {"<a></b>", "672 1:6 Start tag \"a\" and end tag \"b\" are different"},
        {"<a></A>", "672 1:6 Start tag \"a\" and end tag \"A\" are different"},
        {"<a></ a>", "672 1:7 No spaces allowed between \"</\" and \"Name\""},
        {"<a></ b>", "672 1:7 No spaces allowed between \"</\" and \"Name\""},
        {"<a></>", "672 1:6 Symbol \">\" is not allowed here"},
        {"<a></a", "672 1:0 Symbol \"\\x1A\" is not allowed here"},
        {"<a><b></a></b>", "672 1:9 Start tag \"b\" and end tag \"a\" are different"},
        {"<a><!x></a>", "672 1:4 Symbol \"<\" is not allowed here"},
        {"<a><!DOCTYPE x></a>", "672 1:12 Symbol \"<!DOCTYPE\" is not allowed here"},
        {"<a/><b/>",
         "672 1:6 Found unexpected element \"b\" following the final end tag, this may be caused by an XML "
         "document with multiple elements and no outer element"},
        {"<a/>text", "672 1:8 Found unexpected symbol \"text\" following the final end tag"},
        {"<a/><!-- c --> >", "672 1:16 Found unexpected symbol \">\" following the final end tag"},
        {"<a/></a>", "672 1:6 Found unexpected symbol \"</\" following the final end tag"},
        {"<a/>< >", "672 1:7 Found unexpected symbol \"<\" following the final end tag"},
    };
    for (const Case& c : cases) EXPECT_EQ(complaint(c.text), c.expected) << c.text;
}

TEST_F(XmlReadTest, EverythingElseInContentIsText) {
    const Case cases[] = {
        {"<a>1 < 2 << 3 <5 </a>", "'1 < 2 << 3 <5 '"},
        {"<a> x \t y </a>", "' x \t y '"},
        {"<a>one\r\ntwo\nthree\n</a>", "'one\ntwo\nthree\n'"},
        {"<a>\n\n</a>", "'\n\n'"},
        {"<a>x<!-- <b> & -->y</a>", "'xy'"},
        {"<a>x<!-- one\ntwo -->y</a>", "'xy'"},
        {"<a>x<?pi <b> &\n ?>y</a>", "'xy'"},
        {"<a><![CDATA[<b>&amp;]]></a>", "'<b>&amp;'"},
        {"<a>x<![CDATA[]]>y<![CDATA[ ]] > ]]]>z</a>", "'xy ]] > ]z'"},
        {"<a><![CDATA[one\ntwo\n]]></a>", "'one\ntwo\n'"},
        {"<a>\x7F\x01\xC3\xA9</a>", "'\x7F\x01\xC3\xA9'"},
        {"<a>]]></a>", "']]>'"},
        {"<a>0x 1e+ 'x \"y</a>", "'0x 1e+ 'x \"y'"},
    };
    for (const Case& c : cases) EXPECT_EQ(bound("x : string", c.text), c.expected) << c.text;
    EXPECT_EQ(bound("x : string", std::string("<a>x\0y</a>", 10)), std::string("'x\0y'", 5));
}

TEST_F(XmlReadTest, TheMarkOfTheEndOfAFileEndsContent) {
    EXPECT_EQ(bound("x : string", "<a>x\x1Ay</a>"), "'x' 672 Symbol \"\\x1A\" is not allowed here");
    EXPECT_EQ(bound("x : string", "<a><![CDATA[x\x1Ay]]></a>"),
              "'x' 672 Symbol \"\\x1A\" is not allowed here");
    EXPECT_EQ(complaint("<a><?pi \x1A ?></a>"), "672 1:8 Symbol \"\\x1A\" is not allowed here");
    EXPECT_EQ(complaint("<a/>\x1A anything"), "");
}

TEST_F(XmlReadTest, TextsAreLimited) {
    const std::string line = repeated("x", 1023) + "\n";
    EXPECT_EQ(bound("x : string", "<a>" + repeated(line, 32) + "</a>"), "'" + repeated(line, 32) + "'");
    EXPECT_EQ(bound("x : string", "<a>" + repeated(line, 32) + "y</a>"),
              "'" + repeated(line, 32) +
                  "' 671 Character data at this nesting level is too long, max length is 32768");
    EXPECT_EQ(bound("x : string", "<a><![CDATA[" + repeated(line, 40) + "]]></a>"),
              "'" + repeated(line, 32) +
                  "' 671 Character data at this nesting level is too long, max length is 32768");
    EXPECT_EQ(complaint("<a>\n" + repeated("x", 40000) + "\n</a>"),
              "671 2:0 Line too long, max length is 32768");
    EXPECT_EQ(complaint("<?pi\n" + repeated("x", 40000) + "\n?><a/>"),
              "671 2:0 Line too long, max length is 32768");
}

TEST_F(XmlReadTest, BlanksBetweenManyElementsAreNoText) {
    const std::string rows = repeated("\n                    <b>1</b>", 10000);
    EXPECT_EQ(structure("<a>" + rows + "\n</a>"), "a : list\n\tb : integer\nend list\n");
}

// Merging each of these rows would take the time of 1200 lines.
TEST_F(XmlReadTest, RowsOfAFewShapesAreMergedOnce) {
    std::string wide, rows;
    for (int i = 0; i < 1200; ++i) wide += "<f" + std::to_string(i) + ">1</f" + std::to_string(i) + ">\n";
    for (int i = 0; i < 30000; ++i)
        rows += "<r><f" + std::to_string(i % 50) + ">1</f" + std::to_string(i % 50) + "></r>\n";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(structure("<l><r>" + wide + "</r>\n" + rows + "</l>").substr(0, 9), "l : list\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(XmlReadTest, MoreShapesThanAreRememberedAreMergedStill) {
    std::string wide, rows, expected = "l : list\n\tr : record\n";
    for (int i = 0; i < 250; ++i) {
        const std::string name = "f" + std::to_string(i);
        wide += "<" + name + ">x</" + name + ">";
        rows += "<r><" + name + ">xy</" + name + "></r>";
        expected += "\t\t" + name + " : string[2]\n";
    }
    EXPECT_EQ(structure("<l><r>" + wide + "</r>" + repeated(rows + "\n", 2) + "</l>"),
              expected + "\tend record\nend list\n");
}

// ---- errors of structures ----

TEST_F(XmlReadTest, StructuresThatDoNotFitAreToldWithTheirPlace) {
    const Case cases[] = {
        {"<a><b>1</b><c>2</c><b>3</b></a>", "673 1:27 Element 'b' occurred multiple times in the record 'a'"},
        {"<a><b/><c/><b/></a>", "673 1:15 Element 'b' occurred multiple times in the record 'a'"},
        {"<a><b/><B/></a>", "673 1:11 Element 'B' occurred multiple times in the record 'a'"},
        {"<a><b>1</b><b>2</b><c>3</c></a>", "673 1:27 The name of an element changed, from 'b' to 'c'"},
        {"<a><b>1</b><b>2</b><c/></a>", "673 1:23 The name of an element changed, from 'b' to 'c'"},
        {"<a><b>1</b><b>2</b><c></c></a>", "673 1:26 The name of an element changed, from 'b' to 'c'"},
        {"<a><b/><b/><c>1</c></a>", "673 1:19 The name of an element changed, from 'b' to 'c'"},
        {"<a><b>1</b><b/><B/></a>", "673 1:19 The name of an element changed, from 'b' to 'B'"},
        {"<a><b>True</b><b>5</b></a>", "673 1:22 The type of element 'b' changed, from boolean to integer"},
        {"<a>\n<b>\n<x>1</x>\n</b>\n<b>\n<x>True</x>\n</b>\n</a>",
         "673 7:4 The type of element 'x' changed, from integer to boolean, between line 5 and 7"},
    };
    for (const Case& c : cases) EXPECT_EQ(complaint(c.text), c.expected) << c.text;
}

TEST_F(XmlReadTest, StructuresAreLimited) {
    std::string fields;
    for (int i = 0; fields.size() < 60000; ++i)
        fields += "<f" + std::to_string(i) + ">1</f" + std::to_string(i) + ">\n";
    EXPECT_EQ(structure("<a>" + fields + "</a>"), "674 XML file structure is too large or too deeply nested");
    // Rows that fit, but not what holds them all.
    const std::size_t half = fields.find("<f1000>"), more = fields.find("<f1100>"),
                      most = fields.find("<f2200>");
    const std::string rows = "<l><r><a>1</a>" + fields.substr(0, half) + "<z>1</z></r><r><a>1</a><z>1</z>";
    EXPECT_EQ(structure(rows + fields.substr(half, more - half) + "</r></l>").substr(0, 9), "l : list\n");
    EXPECT_EQ(structure(rows + fields.substr(half, most - half) + "</r></l>"),
              "674 XML file structure is too large or too deeply nested");
    std::string small;
    const std::string text = "<a><b>1</b><c>2</c></a>";
    disk.put(file, text);
    EXPECT_EQ(problem(XmlRead(file, 0, nullptr, KindNone, &small, 20)),
              "674 XML file structure is too large or too deeply nested");
    EXPECT_EQ(small, "a : record\n\tb : int");
    EXPECT_EQ(XmlRead(file, 0, nullptr, KindNone, &small, 0).code, ERR_XML_TOO_COMPLEX);
    EXPECT_EQ(small, "");
    EXPECT_EQ(XmlRead(file, 0, nullptr, KindNone, nullptr, 0).code, 0);
}

TEST_F(XmlReadTest, ElementsInsideOneAnotherAreLimited) {
    const auto nested = [](int depth) { return repeated("<a>\n", depth) + repeated("</a>\n", depth); };
    disk.put(file, nested(251));
    EXPECT_EQ(XmlRead(file, 0, nullptr, KindNone, nullptr, 0).code, 0);
    for (const int depth : {252, 1000, 100000}) {
        disk.put(file, nested(depth));
        const ErrorRecord error = XmlRead(file, 0, nullptr, KindNone, nullptr, 0);
        EXPECT_EQ(shown(error), "674 252:0 XML file structure is too large or too deeply nested");
    }
    EXPECT_EQ(structure(nested(100)).substr(0, 11), "a : record\n");
    EXPECT_EQ(structure(nested(250)), "674 XML file structure is too large or too deeply nested");
}

}  // namespace
}  // namespace tarn
