// SPDX-License-Identifier: Apache-2.0
//
// Readers as objects: what a walk tells, and readers inside of readers.
#include "kernel/data/xml/xml_reader.h"
#include "unit/kernel/xml_fixture.h"

#include <functional>

namespace tarn {

namespace {

// <name@line, attribute=[value], "text", >.
class Told : public XmlEvents {
public:
    void start(std::string_view name, std::int32_t line) override {
        say("<" + std::string(name) + (line > 1 ? "@" + std::to_string(line) : ""));
        if (atStart) atStart(name);
    }
    void attribute(std::string_view name, std::string_view value) override {
        say(std::string(name) + "=[" + std::string(value) + "]");
    }
    void text(std::string_view part) override {
        if (joined_)
            seen.insert(seen.size() - 1, part);
        else
            say("\"" + std::string(part) + "\"");
        joined_ = true;
    }
    void end() override { say(">"); }

    std::string seen;
    std::function<void(std::string_view)> atStart;

private:
    void say(const std::string& what) {
        seen += (seen.empty() ? "" : " ") + what;
        joined_ = false;
    }
    bool joined_ = false;
};

class XmlReaderTest : public Xml {
protected:
    // What a walk tells, and what goes wrong behind a bar.
    std::string walked(const std::string& text, XmlCharacters characters = XmlCharacters::Bytes) {
        disk.put(file, text);
        XmlReader reader;
        Told told;
        const XmlReadResult result = reader.walk(file, told, characters);
        EXPECT_FALSE(reader.isReading());
        const std::string wrong = problem(result.error);
        return told.seen + (wrong.empty() ? "" : " | " + wrong);
    }
    static XmlReader* another;
    static std::string anothers;
    static bool loadAnother(std::int64_t, std::int64_t) {
        AnyValue value("l : list\n\ti : integer\nend list\n");
        anothers = problem(another->load("/data/other.xml", value.get(), KindList).error);
        anothers += shown(value);
        return true;
    }
};

XmlReader* XmlReaderTest::another = nullptr;
std::string XmlReaderTest::anothers;

TEST_F(XmlReaderTest, AWalkTellsTagsAttributesAndTexts) {
    const struct {
        const char *text, *told;
    } cases[] = {
        {"<a/>", "<a >"},
        {"<a></a>", "<a >"},
        {"<a>x</a>", "<a \"x\" >"},
        {"<a> x\r\n y </a>", "<a \" x\n y \" >"},
        {"<a><b>1</b><b/>\n<c>2</c></a>", "<a <b \"1\" > <b > \"\n\" <c@2 \"2\" > >"},
        {"<a b='1' c=\"&lt;2\"/>", "<a b=[1] c=[<2] >"},
        {"<a b='1'>x<c d='2'>y</c>z</a>", "<a b=[1] \"x\" <c d=[2] \"y\" > \"z\" >"},
        {"<a type='integer' INDEX = '3'/>", "<a type=[integer] INDEX=[3] >"},
        {"<?xml version='1.0'?><!-- c --><?p i?><!DOCTYPE a [<!ENTITY e 'E'>]>\n<a>&e;<!-- n --><?p?>"
         "<![CDATA[<b>&e;]]>&#65;</a><!-- end -->",
         "<a@2 \"E<b>&e;A\" >"},
        {"\xEF\xBB\xBF<a>x</a>", "<a \"x\" >"},
        {"<a\n>\n<b\nc='1'\n>\n</b></a>", "<a \"\n\" <b@3 c=[1] \"\n\" > >"},
        {"<a>1 < 2 & 3</a>", "<a \"1 < 2 & 3\" >"},
    };
    for (const auto& c : cases) EXPECT_EQ(walked(c.text), c.told) << c.text;
}

TEST_F(XmlReaderTest, AWalkEndsWithWhatIsWrong) {
    EXPECT_EQ(walked(""), " | 672 Symbol \"\\x1A\" is not allowed here");
    EXPECT_EQ(walked("<a><b></a>\n"),
              "<a <b > \"\n\" > | 672 Start tag \"b\" and end tag \"a\" are different");
    EXPECT_EQ(walked("<a>x\n"), "<a \"x\n\" > | 672 Symbol \"\\x1A\" is not allowed here");
    EXPECT_EQ(walked("<a/><b/>").substr(0, 32), "<a > | 672 Found unexpected elem");
    EXPECT_EQ(walked("<a>&none;</a>"), "<a > | 672 The entity reference &none; is not allowed");
    std::string deep;
    for (int i = 0; i < 1000; ++i) deep += "<a>";
    EXPECT_NE(walked(deep).find("| 674 XML file structure is too large or too deeply nested"),
              std::string::npos);
    XmlReader reader;
    Told told;
    EXPECT_EQ(reader.walk("/data/none", told).fileError, os::FileError::NotFound);
    EXPECT_EQ(reader.walk("/data/none", told).error.code, ERR_FILE_READ);
    EXPECT_EQ(told.seen, "");
}

TEST_F(XmlReaderTest, TextsOfAWalkMayBeOfAnyLength) {
    std::string text;
    for (int i = 0; i < 10000; ++i) text += "ten bytes\n";
    EXPECT_EQ(walked("<a>" + text + "</a>"), "<a \"" + text + "\" >");
}

TEST_F(XmlReaderTest, ReferencesGiveBytesOrCharacters) {
    const struct {
        const char *reference, *bytes, *characters;
    } cases[] = {
        {"&#65;", "A", "A"},
        {"&#233;", "\xE9", "\xC3\xA9"},
        {"&#x20AC;", "\xAC", "\xE2\x82\xAC"},
        {"&#x1F600;", nullptr, "\xF0\x9F\x98\x80"},
        {"&#0000000233;", "\xE9", "\xC3\xA9"},
    };
    for (const auto& c : cases) {
        const std::string text = "<a b='" + std::string(c.reference) + "'>" + c.reference + "</a>";
        const auto told = [](const std::string& s) { return "<a b=[" + s + "] \"" + s + "\" >"; };
        if (c.bytes != nullptr) {
            EXPECT_EQ(walked(text), told(c.bytes)) << c.reference;
        }
        EXPECT_EQ(walked(text, XmlCharacters::Utf8), told(c.characters)) << c.reference;
    }
    for (const char* none : {"&#0;", "&#xD800;", "&#x110000;", "&#99999999999999999999;", "&#;", "&#4a;"})
        EXPECT_EQ(walked(std::string("<a>") + none + "</a>", XmlCharacters::Utf8),
                  std::string("<a > | 672 The character reference ") + none + " is not allowed");
}

TEST_F(XmlReaderTest, AReaderIsOpenedInsideOfAnother) {
    disk.put(file, "<a>\n<b>1</b><b x='2'/></a>");
    disk.put("/data/other.xml", "<o><p>&amp;</p></o>");
    XmlReader reader;
    Told told;
    std::string inner;
    told.atStart = [&](std::string_view) {
        XmlReader second;
        Told toldToo;
        EXPECT_EQ(problem(second.walk("/data/other.xml", toldToo).error), "");
        inner += toldToo.seen + ";";
        // The reader of the operations stands in no file.
        std::string text;
        EXPECT_EQ(XmlRead("/data/other.xml", 0, nullptr, KindNone, &text, MaxTypeInfo).code, 0);
        EXPECT_EQ(text, "o : record\n\tp : string[1]\nend record\n");
        EXPECT_EQ(problem(reader.walk("/data/other.xml", toldToo).error),
                  "651 Only one XML file can be read at a time");
    };
    EXPECT_EQ(problem(reader.walk(file, told).error), "");
    EXPECT_EQ(told.seen, "<a \"\n\" <b@2 \"1\" > <b@2 x=[2] > >");
    const std::string once = "<o <p \"&\" > >;";
    EXPECT_EQ(inner, once + once + once);
}

TEST_F(XmlReaderTest, AReaderIsOpenedInTheMiddleOfALoad) {
    std::string text = "<l>\n";
    while (text.size() < std::size_t{3 * ProgressStep})
        text += "<r><i>1</i></r>\n<r><i>2</i></r>\n" + std::string(200, ' ') + "\n";
    disk.put(file, text + "</l>");
    disk.put("/data/other.xml", "<l><i>7</i><i>8</i></l>");
    XmlReader reader;
    another = &reader;
    UseProgress(loadAnother);
    AnyValue value("l : list\n\tr : record\n\t\ti : integer\n\tend record\nend list\n");
    const XmlResult loaded = XmlLoad(file, value.get(), KindList);
    EXPECT_EQ(problem(loaded.error), "");
    EXPECT_EQ(shown(value).substr(0, 17), "({1},{2},{1},{2},");
    EXPECT_EQ(anothers, "(7,8)");
}

TEST_F(XmlReaderTest, TwoFilesAreReadInTurns) {
    disk.put(file, "<l><r><a>1</a></r><r a='2'/>\n<r>3</r></l>");
    disk.put("/data/other.xml", "<l>x<r>a</r>y<r/></l>");
    XmlReader one, two;
    Told first, second;
    EXPECT_EQ(one.startWalk(file, first).code, 0);
    EXPECT_EQ(two.startWalk("/data/other.xml", second).code, 0);
    EXPECT_EQ(one.startWalk(file, first).message, "Only one XML file can be read at a time");
    EXPECT_TRUE(one.walkOn(2));
    EXPECT_EQ(first.seen, "<l <r <a \"1\" > >");
    EXPECT_TRUE(two.walkOn(2));
    EXPECT_EQ(second.seen, "<l \"x\" <r \"a\" >");
    EXPECT_TRUE(one.walkOn(2));
    EXPECT_EQ(first.seen, "<l <r <a \"1\" > > <r a=[2] >");
    EXPECT_TRUE(two.walkOn(2));
    EXPECT_EQ(second.seen, "<l \"x\" <r \"a\" > \"y\" <r >");
    EXPECT_FALSE(two.walkOn(2));
    EXPECT_FALSE(two.walkOn(2));
    EXPECT_EQ(problem(two.endWalk().error), "");
    EXPECT_FALSE(two.isReading());
    EXPECT_TRUE(one.isReading());
    EXPECT_TRUE(one.walkOn(2));
    EXPECT_EQ(problem(one.endWalk().error), "");
    EXPECT_EQ(first.seen, "<l <r <a \"1\" > > <r a=[2] > \"\n\" <r@2 \"3\" >");
    EXPECT_EQ(problem(two.endWalk().error), "");
}

XmlReader* busy = nullptr;

TEST_F(XmlReaderTest, ALoadIsNoWalk) {
    std::string text = "<l>\n";
    while (text.size() < std::size_t{2 * ProgressStep})
        text += "<r><a>1</a></r>\n" + std::string(200, ' ') + "\n";
    disk.put(file, text + "</l>");
    XmlReader reader;
    busy = &reader;
    UseProgress([](std::int64_t, std::int64_t) {
        EXPECT_TRUE(busy->isReading());
        EXPECT_FALSE(busy->walkOn(1));
        EXPECT_EQ(busy->endWalk().error.code, 0);
        return true;
    });
    std::string structure;
    EXPECT_EQ(problem(reader.read(file, nullptr, KindNone, &structure, MaxTypeInfo).error), "");
    EXPECT_EQ(structure.substr(0, 9), "l : list\n");
}

TEST_F(XmlReaderTest, AWalkLeavesTheErrorCellAsItIsAndIsStoppedByTheUser) {
    std::string text = "<l>\n";
    while (text.size() < std::size_t{2 * ProgressStep}) text += "<r><a>1</a></r>\n";
    disk.put(file, text + "</l>");
    XmlReader reader;
    Told told;
    SetError(ERR_LIST_TYPE);
    UseProgress([](std::int64_t, std::int64_t) { return false; });
    EXPECT_TRUE(reader.walk(file, told).stopped);
    EXPECT_EQ(ErrorCell(), ERR_LIST_TYPE);
    ClearError();
}

TEST_F(XmlReaderTest, LinesAndTextsOfAnyLengthAreWalkedWhereThatIsWanted) {
    const std::string text(100000, 'x');
    disk.put(file, "<a><b>" + text + "</b><c d='" + text + "'/>\n<e/>" + std::string(50000, ' ') + "</a>");
    XmlReader reader;
    Told told;
    EXPECT_EQ(problem(reader.walk(file, told).error), "671 Line too long, max length is 32768");
    told.seen.clear();
    ASSERT_EQ(reader.startWalk(file, told, XmlCharacters::Bytes, XmlLengths::Long).code, 0);
    while (reader.walkOn(1)) {}
    EXPECT_EQ(problem(reader.endWalk().error), "");
    EXPECT_TRUE(told.seen == "<a <b \"" + text + "\" > <c d=[" + text + "] > \"\n\" <e@2 > \"" +
                                 std::string(50000, ' ') + "\" >");
    std::string structure;
    EXPECT_EQ(problem(reader.discover(file, structure, MaxTypeInfo, XmlLengths::Long).error), "");
    EXPECT_NE(structure.find("b : string[100000]\n"), std::string::npos) << structure;
    EXPECT_EQ(problem(reader.discover(file, structure, MaxTypeInfo, XmlLengths::Told).error),
              "671 Line too long, max length is 32768");
    disk.put(file, "<a>" + std::string(std::size_t{LongestXmlLine}, 'x') + "</a>");
    ASSERT_EQ(reader.startWalk(file, told, XmlCharacters::Bytes, XmlLengths::Long).code, 0);
    while (reader.walkOn(1)) {}
    EXPECT_EQ(problem(reader.endWalk().error), "671 Line too long, max length is 16777216");
    const std::string half(20000, 'x');
    EXPECT_NE(walked("<a b='" + half + "\n" + half + "'/>")
                  .find(" | 671 Attribute is too long, max length is 32768"),
              std::string::npos);
}

}  // namespace

}  // namespace tarn
