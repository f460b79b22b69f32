// SPDX-License-Identifier: Apache-2.0
#include "unit/kernel/xml_fixture.h"

#include <limits>

namespace tarn {

namespace {

class XmlWriteTest : public Xml {
protected:
    void SetUp() override {
        Xml::SetUp();
        clock.setLocal({2001, 2, 3, 4, 5, 6, 0});
    }
    // What stands behind the two lines of the head.
    std::string written(const AnyValue& value, std::int32_t options = 0, std::string_view names = {}) {
        const XmlResult result = XmlSave(file, options, value.get(), value.kind(), names);
        EXPECT_EQ(shown(result.error), "");
        const std::string text = disk.contents(file);
        const std::string head =
            "<?xml version=\"1.0\"?>\r\n<!-- \"Tarnwick XML file\" \"2001-02-03 04:05:06.0000\" -->\r\n";
        EXPECT_EQ(text.substr(0, head.size()), head);
        return text.substr(std::min(head.size(), text.size()));
    }
    // A value read from a text first.
    std::string written(std::string_view declaration, const std::string& text, std::int32_t options = 0,
                        std::string_view names = {}) {
        AnyValue value(declaration);
        EXPECT_EQ(shown(readInto(value, text)), "");
        return written(value, options, names);
    }

    os::SteeredClock clock;
    os::Steered clockInForce{clock};
};

TEST_F(XmlWriteTest, TheFiveMarksAreEscaped) {
    EXPECT_EQ(XmlEscape("a\"b&c'd<e>f"), "a&quot;b&amp;c&apos;d&lt;e&gt;f");
    EXPECT_EQ(XmlEscape(""), "");
    EXPECT_EQ(XmlEscape("&&"), "&amp;&amp;");
    EXPECT_EQ(XmlEscape("\t\r\n\x01\xFF"), "\t\r\n\x01\xFF");
    EXPECT_EQ(XmlEscape("&amp;"), "&amp;amp;");
}

TEST_F(XmlWriteTest, TextsStandOnOneLine) {
    const struct {
        const char *declaration, *text, *expected;
    } cases[] = {
        {"x : boolean", "yes", "<data type=\"boolean\">True</data>\r\n"},
        {"x : enum", "7", "<data type=\"enum\">7</data>\r\n"},
        {"x : integer", "-5", "<data type=\"integer\">-5</data>\r\n"},
        {"x : fixed", "-.5", "<data type=\"fixed\">-0.5000</data>\r\n"},
        {"x : real", "0.125", "<data type=\"real\">+1.2500000000000000E-0001</data>\r\n"},
        {"x : string", "a&lt;b", "<data type=\"string\">a&lt;b</data>\r\n"},
        {"x : string[9]", "a b", "<data type=\"string[9]\">a b</data>\r\n"},
        {"x : set[-1:9]", "[1..3,7]", "<data type=\"set[-1:9]\">[1..3,7]</data>\r\n"},
        {"x : set[1:9]", "[]", "<data type=\"set[1:9]\">[]</data>\r\n"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(written(c.declaration, std::string("<a>") + c.text + "</a>"), c.expected) << c.declaration;
}

constexpr const char* pair = "r : record\n\tx : integer\n\ty : string[5]\nend record\n";

TEST_F(XmlWriteTest, CompositesStandOnLinesOfTheirOwn) {
    EXPECT_EQ(written(pair, "<a x='1' y='two'/>"),
              "<data type=\"record\">\r\n  <Field1 type=\"integer\">1</Field1>\r\n"
              "  <Field2 type=\"string[5]\">two</Field2>\r\n</data>\r\n");
    EXPECT_EQ(written("u : union\n\tx : integer\nend union\n", "<a/>"),
              "<data type=\"union\">\r\n  <Field1 type=\"integer\">0</Field1>\r\n</data>\r\n");
    EXPECT_EQ(written("r : record\nend record\n", "<a/>"), "<data type=\"record\">\r\n</data>\r\n");
    EXPECT_EQ(written("l : list\n\tm : list\n\t\ti : integer\n\tend list\nend list\n",
                      "<a><m><i>1</i></m><m/></a>"),
              "<data type=\"list\">\r\n  <component type=\"list\">\r\n"
              "    <component type=\"integer\">1</component>\r\n  </component>\r\n"
              "  <component type=\"list\">\r\n  </component>\r\n</data>\r\n");
    AnyValue bounded = AnyValue::list("x : boolean", 5);
    EXPECT_EQ(written(bounded), "<data type=\"list[5]\">\r\n</data>\r\n");
}

TEST_F(XmlWriteTest, ElementsOfArraysSayTheirIndexes) {
    AnyValue grid = AnyValue::array(KindInteger, {{-1, 0}, {2, 3}});
    EXPECT_EQ(bound(grid, "<a><c>1</c><c>2</c><c>3</c><c>4</c></a>"), "<-1:0,2:3>(1,2,3,4)");
    EXPECT_EQ(
        written(grid),
        "<data type=\"array[-1:0,2:3]\">\r\n  <component type=\"integer\" index=\"-1,2\">1</component>\r\n"
        "  <component type=\"integer\" index=\"-1,3\">2</component>\r\n"
        "  <component type=\"integer\" index=\"0,2\">3</component>\r\n"
        "  <component type=\"integer\" index=\"0,3\">4</component>\r\n</data>\r\n");
    AnyValue line = AnyValue::array(KindBoolean, {{5, 5}});
    EXPECT_EQ(written(line),
              "<data type=\"array[5:5]\">\r\n  <component type=\"boolean\" index=\"5\">False</component>\r\n"
              "</data>\r\n");
    AnyValue cube = AnyValue::array(KindEnum, {{1, 1}, {2, 2}, {3, 4}});
    EXPECT_EQ(written(cube), "<data type=\"array[1:1,2:2,3:4]\">\r\n"
                             "  <component type=\"enum\" index=\"1,2,3\">0</component>\r\n"
                             "  <component type=\"enum\" index=\"1,2,4\">0</component>\r\n</data>\r\n");
    EXPECT_EQ(written(AnyValue::array(KindInteger, {})), "<data type=\"array\">\r\n</data>\r\n");
}

constexpr const char* row = "r : record\n\tn : integer\n\ts : string\nend record\n";

std::string component(std::string_view n, std::string_view s, std::string_view first = "Field1",
                      std::string_view second = "Field2") {
    std::string text = "  <component type=\"record\">\r\n    <";
    text.append(first).append(" type=\"integer\">").append(n).append("</").append(first);
    text.append(">\r\n    <")
        .append(second)
        .append(" type=\"string\">")
        .append(s)
        .append("</")
        .append(second);
    return text.append(">\r\n  </component>\r\n");
}

TEST_F(XmlWriteTest, RowsStandInTheOrderOfTheFirstIndex) {
    const std::string text = "<t><r n='3' s='a'/><r n='1' s='c'/><r n='2' s='b'/></t>";
    AnyValue table = AnyValue::table(row, {MakeKeyMap(1), MakeKeyMap(2)});
    EXPECT_EQ(shown(readInto(table, text)), "");
    EXPECT_EQ(written(table), "<data type=\"table\">\r\n" + component("1", "c") + component("2", "b") +
                                  component("3", "a") + "</data>\r\n");
    AnyValue plain = AnyValue::table(row, {}, 5, "number : integer\n\"first name\" : string\n");
    EXPECT_EQ(shown(readInto(plain, text)), "");
    EXPECT_EQ(written(plain), "<data type=\"table[5]\">\r\n" + component("3", "a", "number", "first_name") +
                                  component("1", "c", "number", "first_name") +
                                  component("2", "b", "number", "first_name") + "</data>\r\n");
    AnyValue whole = AnyValue::table(row, {MakeKeyMap(1)}, UNBOUNDED, row);
    EXPECT_EQ(written(whole), "<data type=\"table\">\r\n</data>\r\n");
    EXPECT_EQ(shown(readInto(whole, "<t><r n='3' s='a'/></t>")), "");
    EXPECT_EQ(written(whole), "<data type=\"table\">\r\n" + component("3", "a", "n", "s") + "</data>\r\n");
}

TEST_F(XmlWriteTest, FieldsHaveTheNamesThatAreGivenWhereTheyCanBeNames) {
    const struct {
        const char *names, *first, *second;
    } cases[] = {
        {"", "Field1", "Field2"},
        {"one\ntwo\n", "one", "two"},
        {"one : integer\ntwo", "one", "two"},
        {"\ntwo", "Field1", "two"},
        {"same\nSAME", "same", "Field2"},
        {"\"a b\"\n9c", "a_b", "_9c"},
        {"\"a : b\"\n\"last, first\" : string[4]", "a_:_b", "last__first"},
        {"\"a heading of just over thirty-eight chars\"\nb", "a_heading_of_just_over_thirty-eight_ch", "b"},
        {"x<y\na:b-c.d", "x_y", "a:b-c.d"},
        {"one\ntwo\nthree", "one", "two"},
    };
    const std::string list =
        "l : list\n\tr : record\n\t\tn : integer\n\t\ts : string\n\tend record\nend list\n";
    for (const auto& c : cases)
        EXPECT_EQ(written(list, "<t><r n='1' s='a'/></t>", 0, c.names),
                  "<data type=\"list\">\r\n" + component("1", "a", c.first, c.second) + "</data>\r\n")
            << c.names;
    EXPECT_EQ(written(pair, "<a x='1' y='two'/>", 0, "one\ntwo"),
              "<data type=\"record\">\r\n  <one type=\"integer\">1</one>\r\n"
              "  <two type=\"string[5]\">two</two>\r\n</data>\r\n");
}

TEST_F(XmlWriteTest, FlatRecordsMayBeAttributesOfAnEmptyTag) {
    EXPECT_EQ(written(pair, "<a x='1' y='&quot;&lt;'/>", XmlFieldAttributes, "x\ny"),
              "<data type=\"record\" x=\"1\" y=\"&quot;&lt;\"/>\r\n");
    EXPECT_EQ(written(pair, "<a/>", XmlFieldAttributes | XmlTypeAttributes),
              "<data type=\"record\" Field1=\"0\" Field2=\"\"/>\r\n");
    EXPECT_EQ(written("l : list\n\tr : record\n\t\tn : integer\n\tend record\nend list\n",
                      "<a><r n='1'/><r n='2'/></a>", XmlFieldAttributes),
              "<data type=\"list\">\r\n  <component type=\"record\" Field1=\"1\"/>\r\n"
              "  <component type=\"record\" Field1=\"2\"/>\r\n</data>\r\n");
    // Not flat, a union, and names that mean something else in a tag.
    EXPECT_EQ(written("r : record\n\tm : set[1:2]\nend record\n", "<a/>", XmlFieldAttributes),
              "<data type=\"record\">\r\n  <Field1 type=\"set[1:2]\">[]</Field1>\r\n</data>\r\n");
    EXPECT_EQ(written("r : union\n\tm : integer\nend union\n", "<a/>", XmlFieldAttributes),
              "<data type=\"union\">\r\n  <Field1 type=\"integer\">0</Field1>\r\n</data>\r\n");
    EXPECT_EQ(written("r : record\n\tm : integer\nend record\n", "<a/>", XmlFieldAttributes, "Type"),
              "<data type=\"record\">\r\n  <Type type=\"integer\">0</Type>\r\n</data>\r\n");
    // Bytes that end an attribute, and those that others make blanks of.
    EXPECT_EQ(written(pair, "<a><x/><y>a\x01</y></a>", XmlFieldAttributes),
              "<data type=\"record\">\r\n  <Field1 type=\"integer\">0</Field1>\r\n"
              "  <Field2 type=\"string[5]\">a\x01</Field2>\r\n</data>\r\n");
    for (const std::string text : {"a\tb", "a\nb", "\t", "\n"})
        EXPECT_EQ(written(pair, "<a><x/><y>" + text + "</y></a>", XmlFieldAttributes),
                  "<data type=\"record\">\r\n  <Field1 type=\"integer\">0</Field1>\r\n"
                  "  <Field2 type=\"string[5]\">" +
                      text + "</Field2>\r\n</data>\r\n");
    const AnyValue element(pair);
    AnyValue array = AnyValue::array(KindRecord, {{1, 1}}, element.get());
    EXPECT_EQ(written(array, XmlFieldAttributes, "n\ns"),
              "<data type=\"array[1:1]\">\r\n  <component type=\"record\" index=\"1\" n=\"0\" s=\"\"/>\r\n"
              "</data>\r\n");
}

TEST_F(XmlWriteTest, TheCountIsThatOfTheItemsOnTop) {
    const auto count = [&](const AnyValue& value, std::int32_t options = 0) {
        return XmlSave(file, options, value.get(), value.kind()).count;
    };
    EXPECT_EQ(count(AnyValue("x : integer")), 1);
    EXPECT_EQ(count(AnyValue("x : string")), 1);
    EXPECT_EQ(count(AnyValue("x : set[1:9]")), 1);
    EXPECT_EQ(count(AnyValue(pair)), 2);
    EXPECT_EQ(count(AnyValue(pair), XmlFieldAttributes), 2);
    EXPECT_EQ(count(AnyValue::list("x : integer", 5)), 0);
    EXPECT_EQ(count(AnyValue::array(KindInteger, {{1, 2}, {1, 3}})), 6);
    AnyValue list("l : list\n\tm : list\n\t\ti : integer\n\tend list\nend list\n");
    EXPECT_EQ(bound(list, "<a><m><i>1</i><i>2</i></m><m/></a>"), "((1,2),())");
    EXPECT_EQ(count(list), 2);
}

TEST_F(XmlWriteTest, WhatIsNoValueIsRefusedAndTheOldFileStays) {
    disk.put(file, "old");
    const AnyValue number("x : integer");
    const auto refused = [&](const std::string& name, const void* value, Kind kind) {
        const XmlResult result = XmlSave(name, 0, value, kind);
        EXPECT_EQ(result.count, 0);
        const std::int32_t cell = takeError();
        EXPECT_TRUE(cell == 0 || cell == result.error.code);
        return std::to_string(result.error.code) + (cell != 0 ? " in the cell" : "");
    };
    EXPECT_EQ(refused("", number.get(), KindInteger), "764 in the cell");
    EXPECT_EQ(refused(file, number.get(), KindNone), "764 in the cell");
    EXPECT_EQ(refused(file, number.get(), static_cast<Kind>(13)), "764 in the cell");
    EXPECT_EQ(refused(file, nullptr, KindInteger), "764 in the cell");
    const StringDescriptor zero{};
    EXPECT_EQ(refused(file, &zero, KindString), "756");
    RecordDescriptor unshaped{};
    RecordInit(&unshaped, TagRecord, MakeFieldKinds({KindInteger, KindList}));
    EXPECT_EQ(refused(file, &unshaped, KindRecord), "761");
    ListDescriptor held{};
    ListInit(&held, UNBOUNDED, nullptr, KindInteger, true);
    EXPECT_EQ(refused(file, &held, KindList), "660 in the cell");
    std::memcpy(RecordFieldAddress(&unshaped, 2), &held, sizeof held);
    EXPECT_EQ(refused(file, &unshaped, KindRecord), "660 in the cell");
    AdtFree(&unshaped, KindRecord);
    const AnyValue like(row);
    TableDescriptor table{};
    TableInit(&table, UNBOUNDED, like.as<RecordDescriptor>(), {}, "", true);
    EXPECT_EQ(refused(file, &table, KindTable), "660 in the cell");
    AdtFree(&table, KindTable);
    EXPECT_EQ(disk.contents(file), "old");
}

TEST_F(XmlWriteTest, TextsThatWouldNotComeBackAreRefusedAndTheOldFileStays) {
    disk.put(file, "old");
    const auto refused = [&](const AnyValue& value, std::int32_t options = 0) {
        const XmlResult result = XmlSave(file, options, value.get(), value.kind());
        EXPECT_EQ(result.count, 0);
        EXPECT_EQ(disk.contents(file), "old");
        return shown(result.error);
    };
    AnyValue text("s : string"), list("l : list\n\tr : record\n\t\ts : string\n\tend record\nend list\n");
    auto* const s = text.as<StringDescriptor>();
    StringAssignView(s, "a\x1A"
                        "b");
    EXPECT_EQ(refused(text), "673 0:0 the text of 'data' has the character 26, which would end the file");
    RecordValue row;
    AdtInit(row.get(), At(list.as<ListDescriptor>()->prototype), KindRecord);
    for (const char* word : {"a", "\x1A"}) {
        StringAssignView(static_cast<StringDescriptor*>(RecordFieldAddress(row.get(), 1)), word);
        ListAppend(row.get(), KindRecord, list.as<ListDescriptor>());
    }
    for (const std::int32_t options : {0, XmlFieldAttributes})
        EXPECT_EQ(refused(list, options),
                  "673 0:0 Item 2: the text of 'Field1' has the character 26, which would end the file");
    std::string lines;
    for (int i = 0; i < 64; ++i) lines += std::string(511, 'x') + "\n";
    StringAssignView(s, lines + "x");
    EXPECT_EQ(refused(text), "671 0:0 the text of 'data' is too long, max length is 32768");
    AnyValue wide("s : set[1:20000]");
    for (std::int32_t member = 1; member < 20000; member += 2) SetInclude(member, wide.as<SetDescriptor>());
    EXPECT_EQ(refused(wide), "671 0:0 the text of 'data' makes a line too long, max length is 32768");
}

// At every length around the limits, what is saved comes back, and nothing else is saved.
TEST_F(XmlWriteTest, TheLongestTextsComeBack) {
    AnyValue text("s : string"), back("s : string");
    auto* const s = text.as<StringDescriptor>();
    int saved = 0, refused = 0;
    const auto check = [&](const std::string& words) {
        StringAssignView(s, words);
        disk.put(file, "old");
        const XmlResult result = XmlSave(file, 0, text.get(), KindString);
        if (result.error.code != 0) {
            ++refused;
            EXPECT_EQ(result.error.code, ERR_XML_OVERFLOW);
            EXPECT_EQ(disk.contents(file), "old");
            return;
        }
        ++saved;
        EXPECT_EQ(shown(XmlLoad(file, back.get(), KindString).error), "") << words.size();
        EXPECT_EQ(StringView(back.as<StringDescriptor>()), words);
    };
    std::string lines;
    for (int i = 0; i < 63; ++i) lines += std::string(511, 'x') + "\n";
    for (std::size_t n = 500; n < 520; ++n) check(lines + std::string(n, 'y'));
    for (std::size_t n = 32720; n < 32790; ++n) {
        check(std::string(n, 'x'));
        check(std::string(n - 1, 'x') + "\n");
        check("\n" + std::string(n - 1, 'x'));
        check(std::string(n - 5, 'x') + "&");
    }
    EXPECT_GT(saved, 100);
    EXPECT_GT(refused, 50);
}

TEST_F(XmlWriteTest, AFailureAtAnyCallLeavesTheOldOrTheNewFile) {
    const AnyValue number("x : integer");
    const std::string whole = [&] {
        written(number);
        return disk.contents(file);
    }();
    int failures = 0;
    for (int call = 1; call < 30; ++call) {
        SCOPED_TRACE(call);
        disk.put(file, "old");
        disk.failAt(call, os::FileError::DiskFull);
        const XmlResult result = XmlSave(file, 0, number.get(), KindInteger);
        disk.stopFailing();
        if (result.error.code != 0) {
            ++failures;
            EXPECT_EQ(shown(result.error), "654 0:0 Disk drive full up");
            EXPECT_EQ(result.count, 0);
        }
        const std::string now = disk.contents(file);
        EXPECT_TRUE(now == "old" || now == whole);
        EXPECT_TRUE(result.error.code != 0 || now == whole);
    }
    EXPECT_GT(failures, 2);
    EXPECT_EQ(XmlSave("/none/x.xml", 0, number.get(), KindInteger).error.code, ERR_FILE_WRITE);
}

bool goOn = true;
std::vector<std::int64_t> totals;
bool progress(std::int64_t done, std::int64_t total) {
    EXPECT_LE(done, total);
    totals.push_back(total);
    return goOn;
}

TEST_F(XmlWriteTest, ASaveThatIsStoppedLeavesTheOldFile) {
    AnyValue list("l : list\n\ts : string\nend list\n");
    const String text("some text of an element");
    for (int i = 0; i < 40000; ++i) ListAppend(text.get(), KindString, list.as<ListDescriptor>());
    disk.put(file, "old");
    UseProgress(progress);
    goOn = false;
    XmlResult result = XmlSave(file, 0, list.get(), KindList);
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(result.count, 0);
    EXPECT_EQ(disk.contents(file), "old");
    goOn = true;
    result = XmlSave(file, 0, list.get(), KindList);
    EXPECT_FALSE(result.stopped);
    EXPECT_EQ(result.count, 40000);
    ASSERT_FALSE(totals.empty());
    const auto size = static_cast<std::int64_t>(disk.contents(file).size());
    EXPECT_NEAR(static_cast<double>(totals.back()), static_cast<double>(size), 100000);
}

TEST_F(XmlWriteTest, ASaveOfWhatIsInsideAnotherValueIsToldToo) {
    AnyValue record("r : record\n\tn : integer\n\tl : list\n\t\ts : string\n\tend list\nend record\n");
    auto* const list = static_cast<ListDescriptor*>(RecordFieldAddress(record.as<RecordDescriptor>(), 2));
    const String text("some text of an element");
    for (int i = 0; i < 40000; ++i) ListAppend(text.get(), KindString, list);
    disk.put(file, "old");
    UseProgress(progress);
    goOn = false;
    EXPECT_TRUE(XmlSave(file, 0, record.get(), KindRecord).stopped);
    EXPECT_EQ(disk.contents(file), "old");
    goOn = true;
    totals.clear();
    EXPECT_EQ(XmlSave(file, 0, record.get(), KindRecord).count, 2);
    ASSERT_GE(totals.size(), 2U);
    const auto size = static_cast<double>(disk.contents(file).size());
    EXPECT_GT(static_cast<double>(totals.back()), size / 2);
    EXPECT_LT(static_cast<double>(totals.back()), 2 * size);
}

TEST_F(XmlWriteTest, ValuesThatHoldOneAnotherTooDeepAreRefused) {
    ListDescriptor list{};
    ListInit(&list, UNBOUNDED, nullptr, KindInteger, false);
    for (int depth = 1; depth < 300; ++depth) {
        ListDescriptor outer{};
        ListInit(&outer, UNBOUNDED, &list, KindList, false);
        ListAppend(&list, KindList, &outer);
        AdtFree(&list, KindList);
        list = outer;
        if (depth != 200 && depth != 299) continue;
        const XmlResult result = XmlSave(file, 0, &list, KindList);
        EXPECT_EQ(result.error.code, depth == 200 ? 0 : ERR_XML_TOO_COMPLEX);
        EXPECT_TRUE(depth != 200 || XmlLoad(file, &list, KindList).error.code == 0);
    }
    AdtFree(&list, KindList);
}

TEST_F(XmlWriteTest, WithoutMemoryNothingIsWritten) {
    AnyValue table =
        AnyValue::table("r : record\n\tm : set[1:9]\n\ts : string\nend record\n", {MakeKeyMap(2)});
    EXPECT_EQ(shown(readInto(table, "<t><r><m>[1]</m><s>a</s></r><r><m>[2]</m><s>b</s></r></t>")), "");
    for (std::int64_t n = 0;; ++n) {
        SCOPED_TRACE(n);
        disk.put(file, "old");
        FailAllocation(n);
        const XmlResult result = XmlSave(file, 0, table.get(), KindTable);
        FailAllocation(-1);
        if (result.error.code == 0) break;
        EXPECT_EQ(result.error.code, ERR_OUT_OF_MEMORY);
        EXPECT_EQ(disk.contents(file), "old");
        ASSERT_LT(n, 100);
    }
}

}  // namespace

}  // namespace tarn
