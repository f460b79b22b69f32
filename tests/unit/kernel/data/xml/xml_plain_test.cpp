// SPDX-License-Identifier: Apache-2.0
//
// Children and attributes in the form that most files have are read from the line at once, others by symbols:
// both must give the same.
#include "unit/kernel/xml_fixture.h"

namespace tarn {
namespace {

class XmlPlain : public Xml {
protected:
    static constexpr const char* kinds[] = {"integer",   "fixed", "real",      "boolean",
                                            "string[3]", "enum",  "set[1:10]", "string"};
    static constexpr const char* texts[] = {
        "",       "1",    " 12 ",       "3.5",       "True",   "abcd", "a\tb",  "a&amp;b", "&bad;", "a & b",
        "[1..3]", "x]]>", "2020-01-02", "a<!--c-->", "a\nb\n", "it's", "\x01z", "a\x1A",   "\"q\""};

    // What a record with one field of each kind, a list of them and no value at all make of a text.
    std::vector<std::string> results(const std::string& document) {
        std::vector<std::string> all{structure(document)};
        for (const std::string kind : kinds) {
            all.push_back(bound("r : record\n\tf : " + kind + "\n\tg : string\nend record\n", document));
            all.push_back(bound("l : list\n\te : " + kind + "\nend list\n", document));
        }
        return all;
    }
};

TEST_F(XmlPlain, ChildrenReadTheSameWithBlanksInTheirTags) {
    for (const std::string text : texts) {
        SCOPED_TRACE(text);
        const std::string plain = "<r><f>" + text + "</f><g>" + text + "</g></r>";
        const std::string spaced = "<r><f >" + text + "</f ><g\n>" + text + "</g\n></r>";
        EXPECT_EQ(results(plain), results(spaced));
    }
}

TEST_F(XmlPlain, AttributesReadTheSameWithBlanksInThem) {
    for (const std::string text : texts) {
        for (const std::string quote : {"\"", "'"}) {
            if (text.find(quote) != std::string::npos) continue;  // the value ends there
            SCOPED_TRACE(text + quote);
            const std::string value = quote + text + quote;
            EXPECT_EQ(results("<r f=" + value + " g=" + value + "/>"),
                      results("<r f = " + value + " g\n=\n" + value + "/>"));
        }
    }
}

TEST_F(XmlPlain, AnErrorInAPlainChildStandsWhereItsEndTagBegins) {
    AnyValue value("r : record\n\tf : integer\n\tg : boolean\nend record\n");
    EXPECT_EQ(shown(readInto(value, "<r>\n<f>1</f><g>maybe</g></r>")), "981 2:18 True/False expected here");
    EXPECT_EQ(shown(readInto(value, "<r>\n<f>1</f><g >maybe</g></r>")), "981 2:19 True/False expected here");
}

TEST_F(XmlPlain, AnErrorInAPlainAttributeStandsBehindItsValue) {
    AnyValue value("r : record\n\tf : boolean\nend record\n");
    EXPECT_EQ(shown(readInto(value, "<r f=\"maybe\"/>")), "981 1:12 True/False expected here");
    EXPECT_EQ(shown(readInto(value, "<r f= \"maybe\"/>")), "981 1:13 True/False expected here");
}

TEST_F(XmlPlain, AChildWithAnotherEndTagIsNoPlainOne) {
    EXPECT_EQ(complaint("<r><f>1</g></r>"), "672 1:10 Start tag \"f\" and end tag \"g\" are different");
    EXPECT_EQ(complaint("<r><f>1</ff></r>"), "672 1:11 Start tag \"f\" and end tag \"ff\" are different");
    EXPECT_EQ(complaint("<r><ff>1</f></r>"), "672 1:11 Start tag \"ff\" and end tag \"f\" are different");
}

TEST_F(XmlPlain, ElementsThatFitWhatWasSeenLeaveTheStructureAsItIs) {
    std::string text = "<l>";
    for (int i = 0; i < 1000; ++i)
        text += "<r><a>" + std::string(static_cast<std::size_t>(i * 7 % 211 + 1), 'x') + "</a></r>\n";
    EXPECT_EQ(structure(text + "</l>"),
              "l : list\n\tr : record\n\t\ta : string[211]\n\tend record\nend list\n");
}

}  // namespace
}  // namespace tarn
