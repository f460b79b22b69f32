// SPDX-License-Identifier: Apache-2.0
//
// XML files that are not read to their end: missing, stopped, cut or changed anywhere.
#include "unit/kernel/xml_fixture.h"

namespace tarn {
namespace {

using XmlReadTest = Xml;

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
