// SPDX-License-Identifier: Apache-2.0
//
// The prolog of XML files, and entities.
#include "kernel/data/xml/xml_entities.h"
#include "unit/kernel/xml_fixture.h"

#include <memory>
#include <random>

namespace tarn {
namespace {

using XmlReadTest = Xml;

struct Case {
    const char *text, *expected;
};

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

}  // namespace
}  // namespace tarn
