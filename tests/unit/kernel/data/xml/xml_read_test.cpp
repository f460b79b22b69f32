// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/xml/xml_entities.h"
#include "unit/kernel/xml_fixture.h"

#include <chrono>
#include <memory>
#include <random>

namespace tarn {

namespace {

std::string repeated(std::string_view text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

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

// ---- the prolog ----

TEST_F(XmlReadTest, TheDeclarationMayBeMissingOrWhole) {
    const char* prologs[] = {
        "",
        "<?xml version=\"1.0\"?>",
        "<?xml version='1.0' encoding='UTF-8'?>\r\n",
        "<?xml version=\"1.0\" encoding=\"x\" standalone=\"yes\"?>\n<!-- c -->\n<?pi some <thing> ?>",
        "<?xml version=\"1.0\" standalone=\"no\" ?>",
        "<!-- a --><!-- b -->",
        "<?xml-stylesheet href=\"x\"?>",
        "<?xml version=\"1.0\"?><?xml-stylesheet href=\"x\"?><!-- b --><?xml-model a?>",
        "\xEF\xBB\xBF",
        "\xEF\xBB\xBF<?xml version=\"1.0\"?>",
        "<!DOCTYPE a>",
        "<!DOCTYPE a SYSTEM \"x.dtd\">",
        "<!DOCTYPE a PUBLIC 'p' 's'><!-- behind -->",
        "<!DOCTYPE a []>",
        "<!DOCTYPE a SYSTEM 'x' [<!ELEMENT a (b|c)*> <!ATTLIST a x CDATA #IMPLIED>\n<!NOTATION n SYSTEM 'x'>"
        " <!-- c --> <?pi ?> %name; <?xml-x ?> ]>",
        "<!DOCTYPE a [<!ENTITY x SYSTEM 'u'><!ENTITY y PUBLIC 'p' 's' NDATA gif><!ENTITY % z 'v'>"
        "<!ENTITY % w SYSTEM 'u'>]>",
    };
    for (const std::string prolog : prologs)
        EXPECT_EQ(structure(prolog + "<a>1</a><!-- end --><?pi end?>\n"), "a : integer\n") << prolog;
}

TEST_F(XmlReadTest, FaultsOfThePrologAreToldWithTheirPlace) {
    const Case cases[] = {
        {"", "672 0:0 Symbol \"\\x1A\" is not allowed here"},
        {"hello", "672 1:5 Symbol \"<XmlIdentifier>\" is not allowed here"},
        {"<?xml?><a/>", "672 1:7 Symbol \"?>\" is not allowed here"},
        {"<?xml version?><a/>", "672 1:15 Symbol \"?>\" is not allowed here"},
        {"<?xml version=1.0?><a/>", "672 1:17 Symbol \"1.0\" is not allowed here"},
        {"<?xml version='1'\nx?><a/>", "672 2:1 Symbol \"<XmlIdentifier>\" is not allowed here"},
        {"<!DOCTYPE><a/>", "672 1:10 Symbol \">\" is not allowed here"},
        {"<!DOCTYPE a SYSTEM><a/>", "672 1:19 Symbol \">\" is not allowed here"},
        {"<!DOCTYPE a PUBLIC 'x'><a/>", "672 1:23 Symbol \">\" is not allowed here"},
        {"<!DOCTYPE a [x]><a/>", "672 1:14 Symbol \"<XmlIdentifier>\" is not allowed here"},
        {"<!DOCTYPE a [% n;]><a/>", "672 1:16 No spaces allowed between \"%\" and \"Name\""},
        {"<!DOCTYPE a [%n ;]><a/>", "672 1:15 %Name must be followed by \";\""},
        {"<!DOCTYPE a [% 5]><a/>", "672 1:16 Symbol \"5\" is not allowed here"},
        {"<!DOCTYPE a [<!ENTITY 'x'>]><a/>", "672 1:25 Symbol \"<SingleQuoteString>\" is not allowed here"},
        {"<!DOCTYPE a [<!ENTITY % % 'x'>]><a/>", "672 1:25 Symbol \"%\" is not allowed here"},
        {"<!DOCTYPE a [<!ENTITY x>]><a/>", "672 1:24 Symbol \">\" is not allowed here"},
        {"<!DOCTYPE a [<!ENTITY x SYSTEM>]><a/>", "672 1:31 Symbol \">\" is not allowed here"},
        {"<!DOCTYPE a [<!ENTITY x SYSTEM 'u' NDATA>]><a/>", "672 1:41 Symbol \">\" is not allowed here"},
        {"<!DOCTYPE a [<!ENTITY % x SYSTEM 'u' NDATA n>]><a/>",
         "672 1:42 Symbol \"NDATA\" is not allowed here"},
        {"<!-- never\nends", "672 2:0 Comment which started on line 1 was not terminated"},
        {"<?pi never ends", "672 1:0 Symbol \"\\x1A\" is not allowed here"},
    };
    for (const Case& c : cases) EXPECT_EQ(complaint(c.text), c.expected) << c.text;
}

// ---- entities ----

TEST_F(XmlReadTest, EntitiesStandForTheirText) {
    const std::string prolog =
        "<!DOCTYPE a [<!ENTITY e 'text'><!ENTITY e 'second'><!ENTITY none ''><!ENTITY raw '&#65;<b/>'>"
        "<!ENTITY % p 'x'><!ENTITY E \"upper\">]>";
    const Case cases[] = {
        {"<a>&e;</a>", "'text'"},
        {"<a>[&e;&E;]</a>", "'[textupper]'"},
        {"<a>-&none;-</a>", "'--'"},
        {"<a>&raw;</a>", "'&#65;<b/>'"},
        {"<a>&amp;&lt;&gt;&apos;&quot;</a>", "'&<>'\"'"},
        {"<a>&amp;lt;</a>", "'&lt;'"},
        {"<a>a &1 && b & c &</a>", "'a &1 && b & c &'"},
        {"<a>&p;</a>", "'' 672 The entity reference &p; is not allowed"},
    };
    for (const Case& c : cases) EXPECT_EQ(bound("x : string", prolog + c.text), c.expected) << c.text;
}

TEST_F(XmlReadTest, FaultyReferencesAreToldAndTheReadGoesOn) {
    const Case cases[] = {
        {"<a>x&unknown;y</a>", "'xy' 672 The entity reference &unknown; is not allowed"},
        {"<a>x&lt y</a>", "'x< y' 672 Symbol \";\" must occur at end of an entity reference"},
        {"<a>x&lt</a>", "'x<' 672 Symbol \";\" must occur at end of an entity reference"},
        {"<a>AT&T y</a>", "'AT y' 672 The entity reference &T; is not allowed"},
        {"<a>x&#65 y</a>", "'x y' 672 Symbol \";\" must occur at end of a character reference"},
        {"<a>x&#6z5;y</a>", "'xz5;y' 672 Symbol \";\" must occur at end of a character reference"},
        {"<a>&lt;&#65;&#x41;&#x6a;&#x6A;&#321;</a>", "'<AAjjA'"},
        {"<a>&#1F;&#4x1;</a>", "'\x01\x04'"},
        {"<a>&#10;</a>", "'\n'"},
    };
    for (const Case& c : cases) EXPECT_EQ(bound("x : string", c.text), c.expected) << c.text;
    EXPECT_EQ(bound("x : string", "<a>&#" + repeated("0", 498) + "65;</a>"), "'A'");
    EXPECT_EQ(bound("x : string", "<a>&#" + repeated("0", 499) + "65;</a>"),
              "'5;' 672 Symbol \";\" must occur at end of a character reference");
    EXPECT_EQ(complaint("<a>\n x&unknown;</a>"), "672 2:11 The entity reference &unknown; is not allowed");
    EXPECT_EQ(complaint("<a x='&unknown;'/>"), "672 1:16 The entity reference &unknown; is not allowed");
}

TEST_F(XmlReadTest, ThereAreAHundredEntitiesOfFiveHundredCharacters) {
    std::string subset;
    for (int i = 0; i < 95; ++i)
        subset += "<!ENTITY e" + std::to_string(i) + " '" + std::to_string(i) + "'>\n";
    const auto file = [](const std::string& declarations) {
        return "<!DOCTYPE a [" + declarations + "]><a>&e94;&amp;</a>";
    };
    EXPECT_EQ(bound("x : string", file(subset)), "'94&'");
    EXPECT_EQ(bound("x : string", file(subset + "<!ENTITY e0 'again'>")), "'94&'");
    EXPECT_EQ(bound("x : string", file(subset + "<!ENTITY more 'x'>")),
              "'94&' 671 Too many entities, the maximum number is 100");
    const auto sized = [](int length) {
        return "<!DOCTYPE a [<!ENTITY e '" + repeated("v", length) + "'>]><a/>";
    };
    EXPECT_EQ(complaint(sized(496)), "");
    EXPECT_EQ(complaint(sized(497)),
              "671 1:524 Entity and replacement text is too long, max combined length is 500");
    EXPECT_EQ(complaint(sized(5000)),
              "671 1:5027 Entity and replacement text is too long, max combined length is 500");
}

TEST_F(XmlReadTest, TheTableOfEntitiesStaysSorted) {
    const auto table = std::make_unique<EntityTable>();
    EntityInit(*table);
    EXPECT_EQ(table->count, 5);
    std::mt19937 random(7);
    std::vector<std::string> names;
    for (int i = 0; i < 95; ++i) {
        names.push_back("&n" + std::to_string(random()) + ";");
        EXPECT_EQ(EntityAdd(*table, names.back(), names.back().substr(2)), "");
    }
    std::string_view found;
    for (const std::string& name : names) {
        ASSERT_TRUE(EntityFind(*table, name, found));
        EXPECT_EQ(found, name.substr(2));
    }
    EXPECT_TRUE(EntityFind(*table, "&amp;", found));
    EXPECT_EQ(found, "&");
    EXPECT_FALSE(EntityFind(*table, "&AMP;", found));
    EXPECT_FALSE(EntityFind(*table, "&am", found));
    EXPECT_FALSE(EntityFind(*table, "", found));
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

// ---- reads as a whole ----

TEST_F(XmlReadTest, NoNameDoesNothingAndNoFileIsAnError) {
    AnyValue value("x : integer");
    WriteAt(value.get(), std::int32_t{5});
    std::string typeText = "before";
    EXPECT_EQ(XmlRead("", 0, value.get(), KindInteger, nullptr, 0).code, 0);
    EXPECT_EQ(shown(XmlRead("/data/none.xml", 0, value.get(), KindInteger, &typeText, 100)),
              "651 0:0 Cannot read from file");
    EXPECT_EQ(shown(value), "5");
    EXPECT_EQ(typeText, "");
    EXPECT_EQ(XmlRead("/data", 0, value.get(), KindInteger, nullptr, 0).code, ERR_FILE_READ);
}

TEST_F(XmlReadTest, AFileThatCannotBeReadToItsEndChangesNothing) {
    AnyValue value("x : integer");
    WriteAt(value.get(), std::int32_t{5});
    disk.put(file, "<a>7</a>");
    disk.failAt(os::FileCall::Read, 1, os::FileError::ReadFailed);
    EXPECT_EQ(XmlRead(file, 0, value.get(), KindInteger, nullptr, 0).code, ERR_FILE_READ);
    disk.stopFailing();
    EXPECT_EQ(shown(value), "5");
    EXPECT_EQ(XmlRead(file, 0, value.get(), KindInteger, nullptr, 0).code, 0);
    EXPECT_EQ(shown(value), "7");
}

TEST_F(XmlReadTest, APendingErrorStaysTheCallers) {
    AnyValue value("x : boolean");
    disk.put(file, "<a>maybe</a>");
    SetError(ERR_FILE_WRITE);
    EXPECT_EQ(XmlRead(file, 0, value.get(), KindBoolean, nullptr, 0).code, ERR_BOOLEAN_CONVERSION);
    EXPECT_EQ(XmlSave(file, 0, value.get(), KindBoolean).error.code, 0);
    EXPECT_EQ(XmlLoad(file, value.get(), KindBoolean).error.code, 0);
    EXPECT_EQ(takeError(), ERR_FILE_WRITE);
}

// A file of one record for each line, larger than some steps of progress.
std::string largeFile(int rows) {
    std::string text = "<t>\n";
    for (int i = 0; i < rows; ++i)
        text += "<r><n>" + std::to_string(i) + "</n><s>some text of a row</s></r>\n";
    return text + "</t>\n";
}

std::vector<std::pair<std::int64_t, std::int64_t>> steps;
std::int64_t stopAt = 0;

bool recordSteps(std::int64_t done, std::int64_t total) {
    steps.emplace_back(done, total);
    return done < stopAt;
}

TEST_F(XmlReadTest, AReadThatIsStoppedChangesNothing) {
    const std::string text = largeFile(80000);
    disk.put(file, text);
    AnyValue value("l : list\n\tr : record\n\t\tn : integer\n\t\ts : string\n\tend record\nend list\n");
    EXPECT_EQ(bound(value, "<t><r><n>1</n></r></t>"), "({1,''})");
    disk.put(file, text);
    for (const std::int64_t stop : {1, 2'000'000}) {
        steps.clear();
        stopAt = stop;
        UseProgress(recordSteps);
        std::string typeText;
        XmlRead(file, 0, value.get(), KindList, &typeText, MaxTypeInfo);
        EXPECT_EQ(typeText, "");
        EXPECT_TRUE(XmlLoad(file, value.get(), KindList).stopped);
        UseProgress(nullptr);
        EXPECT_EQ(shown(value), "({1,''})");
        ASSERT_FALSE(steps.empty());
        EXPECT_EQ(steps[0].second, static_cast<std::int64_t>(text.size()));
        EXPECT_GE(steps[0].first, ProgressStep);
        EXPECT_LE(steps[0].first, ProgressStep + 200'000);
    }
    EXPECT_EQ(XmlRead(file, 0, value.get(), KindList, nullptr, 0).code, 0);
    EXPECT_EQ(ListCount(value.as<ListDescriptor>()), 80000);
}

int looks = 0;
bool stopAndCount(std::int64_t, std::int64_t) {
    ++looks;
    return false;
}

TEST_F(XmlReadTest, AStopEndsTheReadWhereverItIs) {
    const std::string lines = repeated("some text of a line\n", 150'000);
    const std::string declarations = repeated("<!ELEMENT x (y|z)>\n", 150'000);
    const std::string instructions = repeated("<?some text?>\n", 150'000);
    std::string attributes;
    for (int i = 0; i < 150'000; ++i) attributes += " a='some text'\n";
    const std::string texts[] = {
        "<?pi " + lines + "?><a/>",
        "<!DOCTYPE a [<!ELEMENT " + lines + ">]><a/>",
        "<!DOCTYPE a [" + declarations + "]><a/>",
        instructions + "<a/>",
        "<a>" + lines + "</a>",
        "<a><?pi " + lines + "?></a>",
        "<a><![CDATA[" + lines + "]]></a>",
        "<a" + attributes + "/>",
        "<a>" + repeated("<b/>\n", 600'000) + "</a>",
        "<a/>" + instructions,
    };
    UseProgress(stopAndCount);
    for (const std::string& text : texts) {
        disk.put(file, text);
        looks = 0;
        EXPECT_TRUE(XmlDiscover(file, MaxTypeInfo).stopped) << text.substr(0, 20);
        EXPECT_EQ(looks, 1) << text.substr(0, 20);
    }
}

ErrorRecord inner;

bool readAnother(std::int64_t, std::int64_t) {
    inner = XmlRead("/data/other.xml", 0, nullptr, KindNone, nullptr, 0);
    return true;
}

TEST_F(XmlReadTest, OnlyOneFileIsReadAtATime) {
    disk.put("/data/other.xml", "<a/>");
    const std::string text = largeFile(40000);
    UseProgress(readAnother);
    EXPECT_EQ(structure(text).substr(0, 9), "t : list\n");
    EXPECT_EQ(shown(inner), "651 0:0 Only one XML file can be read at a time");
}

// Every text gives a structure or an error, and a value of legal shape.
TEST_F(XmlReadTest, AFileThatIsCutAnywhereGivesAnErrorOrAShorterValue) {
    const std::string seed =
        "<?xml version=\"1.0\"?>\n<!DOCTYPE t [<!ENTITY e 'x'><!ELEMENT t ANY>%p;]>\n<!-- c --><t a='1' "
        "b='&e;'>"
        "<r n='1' s='a'/>\n<r><n>2</n><s>b&amp;&#65;&e;</s></r><?pi?><r><n>3</n><s><![CDATA[<x>]]></s></r>"
        "</t>\n<!-- end -->";
    const char* declaration =
        "l : list\n\tr : record\n\t\tn : integer\n\t\ts : string\n\tend record\nend list\n";
    EXPECT_EQ(bound(declaration, seed), "({1,'a'},{2,'b&Ax'},{3,'<x>'})");
    for (std::size_t length = 0; length < seed.size(); ++length) {
        SCOPED_TRACE(length);
        AnyValue value(declaration);
        const ErrorRecord error = readInto(value, seed.substr(0, length));
        EXPECT_LE(ListCount(value.as<ListDescriptor>()), 3);
        const bool whole = length >= seed.find("</t>") + 4;
        EXPECT_TRUE(whole || error.code != 0);
        std::string typeText;
        EXPECT_EQ(readStructure(seed.substr(0, length), typeText).code != 0, error.code != 0);
    }
}

TEST_F(XmlReadTest, AFileWithAnyByteChangedIsReadToItsEnd) {
    const std::string seed = "<?xml version=\"1.0\"?><!DOCTYPE t [<!ENTITY e 'x'>]><t><r n='1' "
                             "s='a'/><r><n>2</n><s>b&amp;&e;</s></r>"
                             "<!-- c --><r><n>3</n><s><![CDATA[<x>]]></s></r></t>";
    const char* declaration =
        "l : list\n\tr : record\n\t\tn : integer\n\t\ts : string\n\tend record\nend list\n";
    const std::string marks = std::string("<>&/'\"![]=-?;%#x \n\x1A\x01") + '\0';
    for (std::size_t at = 0; at < seed.size(); ++at) {
        for (const char mark : marks) {
            std::string text = seed;
            text[at] = mark;
            SCOPED_TRACE(text);
            AnyValue value(declaration);
            readInto(value, text);
            std::string typeText;
            readStructure(text, typeText);
        }
    }
}

}  // namespace

}  // namespace tarn
