// SPDX-License-Identifier: Apache-2.0
#include "unit/kernel/xml_fixture.h"

namespace tarn {

namespace {

using XmlBindTest = Xml;

struct Case {
    const char *declaration, *text, *expected;
};

TEST_F(XmlBindTest, TextsAreReadByTheKindOfTheTarget) {
    const Case cases[] = {
        {"x : boolean", "<a>True</a>", "True"},
        {"x : boolean", "<a>\n\t yes \r\n</a>", "True"},
        {"x : boolean", "<a>no</a>", "False"},
        {"x : boolean", "<a>1</a>", "False 981 True/False expected here"},
        {"x : boolean", "<a></a>", "False 981 True/False expected here"},
        {"x : boolean", "<a/>", "False"},
        {"x : boolean", "<a>maybe", "False 981 True/False expected here"},
        {"x : boolean", "<a>maybe</b>", "False 981 True/False expected here"},
        {"x : enum", "<a>7</a>", "#7"},
        {"x : enum", "<a>255</a>", "#255"},
        {"x : enum", "<a>256</a>", "#0"},
        {"x : enum", "<a>-1</a>", "#0"},
        {"x : enum", "<a>red</a>", "#0"},
        {"x : integer", "<a>-12</a>", "-12"},
        {"x : integer", "<a> 12 </a>", "12"},
        {"x : integer", "<a>12.9</a>", "0"},
        {"x : integer", "<a>12 apples</a>", "0"},
        {"x : integer", "<a>+12</a>", "12"},
        {"x : enum", "<a>7th</a>", "#0"},
        {"x : integer", "<a>abc</a>", "0"},
        {"x : integer", "<a></a>", "0"},
        {"x : integer", "<a>2147483648</a>", "0"},
        {"x : fixed", "<a>1.23456</a>", "1.2345"},
        {"x : fixed", "<a>\n-.5\n</a>", "-0.5000"},
        {"x : fixed", "<a>1e5</a>", "0.0000 984 Fixed point number expected here"},
        {"x : fixed", "<a></a>", "0.0000 984 Fixed point number expected here"},
        {"x : real", "<a>1e5</a>", "+1.00E+0005"},
        {"x : real", "<a>x</a>", "+0.00E+0000 985 Real number expected here"},
        {"x : real", "<a>1e999</a>", "+0.00E+0000 985 Real number expected here"},
        {"x : string", "<a> two\n words </a>", "' two\n words '"},
        {"x : string[3]", "<a>abc</a>", "'abc'"},
        {"x : string[3]", "<a>abcd</a>",
         "'abc' 986 String text is too long, maximum length is 3 character(s)"},
        {"x : set[1:9]", "<a>[1..3, 7]</a>", "[1..3,7]"},
        {"x : set[1:9]", "<a> [] </a>", "[]"},
        {"x : set[1:9]", "<a>[1..30]</a>",
         "[1..9] 989 Set literal expected here, with values between 1 and 9"},
        {"x : set[-5:9]", "<a>1</a>", "[] 989 Set literal expected here, with values between -5 and 9"},
        {"x : set[1:9]", "<a></a>", "[] 989 Set literal expected here, with values between 1 and 9"},
        {"x : set", "<a>[5,70..80]</a>", "[5,70..80]"},
        {"r : record\n\tx : integer\nend record\n", "<a>5</a>", "{0}"},
        {"l : list\n\tx : integer\nend list\n", "<a>5</a>", "()"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(bound(c.declaration, c.text), c.expected) << c.declaration << c.text;
}

TEST_F(XmlBindTest, ElementsWhereTextBelongsAreErrorsAndTheTextCountsStill) {
    const Case cases[] = {
        {"x : boolean", "<a>True<b>False</b></a>",
         "True 981 True/False expected here, instead of element tags"},
        {"x : enum", "<a>5<b/></a>", "#5 982 Enum value expected here, instead of element tags"},
        {"x : integer", "<a>1<b>7</b>2</a>", "12 983 Integer value expected here, instead of element tags"},
        {"x : fixed", "<a>1<b/></a>", "1.0000 984 Fixed point value expected here, instead of element tags"},
        {"x : real", "<a>1<b/></a>", "+1.00E+0000 985 Real number expected here, instead of element tags"},
        {"x : string", "<a>x<b>y</b>z</a>", "'xz' 986 String text expected here, instead of element tags"},
        {"x : set[1:9]", "<a>[1]<b/></a>", "[1] 989 Set literal expected here, instead of element tags"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(bound(c.declaration, c.text), c.expected) << c.declaration << c.text;
}

TEST_F(XmlBindTest, ErrorsOfBindingHaveTheirPlace) {
    AnyValue record("r : record\n\tx : integer\n\ty : boolean\nend record\n");
    EXPECT_EQ(shown(readInto(record, "<a>\n<x>1</x>\n<y>perhaps</y></a>")),
              "981 3:12 True/False expected here");
    EXPECT_EQ(shown(readInto(record, "<a>\n<x>\n<z/></x>\n<y/></a>")),
              "983 3:1 Integer value expected here, instead of element tags");
    EXPECT_EQ(shown(readInto(record, "<a x='1' y='perhaps'/>")), "981 1:20 True/False expected here");
}

constexpr const char* pair = "r : record\n\tx : integer\n\ty : string[5]\nend record\n";

TEST_F(XmlBindTest, FieldsAreTakenByTheirNumber) {
    const Case cases[] = {
        {pair, "<a><p>1</p><q>two</q></a>", "{1,'two'}"},
        {pair, "<a><p>1</p></a>", "{1,''}"},
        {pair, "<a/>", "{0,''}"},
        {pair, "<a><p>1</p><q>two</q><r>3<s/></r><t><u>5</u></t></a>", "{1,'two'}"},
        {pair, "<a>text<p>1</p>text<q>two</q>text</a>", "{1,'two'}"},
        {pair, "<a><p/><q>two</q></a>", "{0,'two'}"},
        {"u : union\n\tx : integer\n\ty : string\nend union\n", "<a><x>1</x><y>2</y></a>", "{1,'2'}"},
        {"r : record\n\tq : record\n\t\tx : integer\n\tend record\n\tl : list\n\t\ti : integer\n\tend list\n"
         "end record\n",
         "<a><q><x>1</x></q><l><i>2</i><i>3</i></l></a>", "{{1},(2,3)}"},
        {"r : record\nend record\n", "<a><b>1</b></a>", "{}"},
    };
    for (const Case& c : cases) EXPECT_EQ(bound(c.declaration, c.text), c.expected) << c.text;
}

TEST_F(XmlBindTest, AttributesAreFieldsAndGiveWayToContent) {
    const Case cases[] = {
        {pair, "<a x='1' y='two'/>", "{1,'two'}"},
        {pair, "<a type='record' x='1' index='5' y='&lt;&#65;'/>", "{1,'<A'}"},
        {pair, "<a x='1' y='two' z='3' w='4'/>", "{1,'two'}"},
        {pair, "<a x='1' y='too long'/>",
         "{1,'too l'} 986 String text is too long, maximum length is 5 character(s)"},
        {pair, "<a x='1' y='two'></a>", "{1,'two'}"},
        {pair, "<a x='1' y='two'>\n </a>", "{1,'two'}"},
        {pair, "<a x='1' y='two'>text</a>", "{0,''}"},
        {pair, "<a x='1' y='two'><p>7</p></a>", "{7,''}"},
        {pair, "<a x='1' y='too long'><p>7</p></a>", "{7,''}"},
        {pair, "<a x='1' y='too long'>text</a>", "{0,''}"},
        {"r : record\n\tl : list\n\t\ti : integer\n\tend list\n\tx : integer\nend record\n",
         "<a l='1' x='2'/>", "{(),2}"},
        {"x : integer", "<a x='1'/>", "0"},
    };
    for (const Case& c : cases) EXPECT_EQ(bound(c.declaration, c.text), c.expected) << c.text;
}

TEST_F(XmlBindTest, ErrorsBeforeTheAttributesStayWhenTheyGiveWay) {
    const char* declaration =
        "r : record\n\tb : boolean\n\tq : record\n\t\ts : string[1]\n\tend record\nend record\n";
    EXPECT_EQ(bound(declaration, "<a><b>x</b><q s='long'><s>1</s></q></a>"),
              "{False,{'1'}} 981 True/False expected here");
    EXPECT_EQ(bound(declaration, "<a><b>x</b><q s='1'><s>2</s></q></a>"),
              "{False,{'2'}} 981 True/False expected here");
    EXPECT_EQ(bound(declaration, "<a><b/><q s='&no;'><s>2</s></q></a>"),
              "{False,{'2'}} 672 The entity reference &no; is not allowed");
}

TEST_F(XmlBindTest, ListsAppend) {
    EXPECT_EQ(bound("l : list\n\ti : integer\nend list\n", "<a><i>1</i> <j/><i>3</i></a>"), "(1,0,3)");
    EXPECT_EQ(bound("l : list\n\ti : string[2]\nend list\n", "<a><i>abc</i><i>b</i></a>"),
              "('ab','b') 986 String text is too long, maximum length is 2 character(s)");
    EXPECT_EQ(bound("l : list\n\tm : list\n\t\ti : integer\n\tend list\nend list\n",
                    "<a><m><i>1</i></m><m/><m><i>2</i><i>3</i></m></a>"),
              "((1),(),(2,3))");
    AnyValue small = AnyValue::list("s : string", 2);
    EXPECT_EQ(bound(small, "<a><i>1</i><i>2</i></a>"), "('1','2')");
    EXPECT_EQ(bound(small, "<a><i>3</i><i>4</i><i>5</i></a>"),
              "('3','4') 618 List filled up after 2 element(s)");
    EXPECT_EQ(shown(readInto(small, "<a><i>3</i><i>4</i>\n<i>5</i>\n<i>6</i></a>")),
              "618 2:8 List filled up after 2 element(s)");
    ListDescriptor l{};
    ListInit(&l, UNBOUNDED, nullptr, KindNone, false);
    AnyValue untyped = AnyValue::adopt(&l, KindList);
    EXPECT_EQ(bound(untyped, "<a/>"), "()");
    EXPECT_EQ(bound(untyped, "<a><i>1</i></a>"), "() 761 Error with list type");
}

TEST_F(XmlBindTest, TheOldValueGoes) {
    AnyValue list("l : list\n\ti : integer\nend list\n"), record(pair);
    EXPECT_EQ(bound(list, "<a><i>1</i><i>2</i></a>"), "(1,2)");
    EXPECT_EQ(bound(list, "<a><i>3</i></a>"), "(3)");
    EXPECT_EQ(bound(list, "<a/>"), "()");
    EXPECT_EQ(bound(record, "<a x='1' y='two'/>"), "{1,'two'}");
    EXPECT_EQ(bound(record, "<a><x>5</x></a>"), "{5,''}");
    EXPECT_EQ(bound(record, "not XML").substr(0, 10), "{0,''} 672");
}

TEST_F(XmlBindTest, ElementsOfFixedArraysGoByNumberOrIndex) {
    AnyValue line = AnyValue::array(KindInteger, {{-1, 2}});
    EXPECT_EQ(bound(line, "<a><c>1</c><c>2</c></a>"), "<-1:2>(1,2,0,0)");
    EXPECT_EQ(bound(line, "<a><c index='2'>1</c><c INDEX=' -1 '>2</c></a>"), "<-1:2>(2,0,0,1)");
    EXPECT_EQ(bound(line, "<a><c index='0'>1</c><c index='0'>2</c></a>"), "<-1:2>(0,2,0,0)");
    EXPECT_EQ(shown(readInto(line, "<a>\n<c index='3'>1</c></a>")),
              "602 2:18 XML element (number 1) c caused a bounds error in the following array: a[-1:2]");
    EXPECT_EQ(bound(line, "<a><c>1</c><c>2</c><c>3</c><c>4</c><d>5</d></a>"),
              "<-1:2>(1,2,3,4) 602 XML element (number 5) d caused a bounds error in the following array: "
              "a[-1:2]");
    for (const char* index : {"1,1", "x", "1,", "1,1,1,1", "99999999999", "1 2"})
        EXPECT_EQ(bound(line, std::string("<a><c index='") + index + "'>1</c></a>").substr(0, 19),
                  "<-1:2>(0,0,0,0) 602")
            << index;
    AnyValue grid = AnyValue::array(KindInteger, {{1, 2}, {5, 7}});
    EXPECT_EQ(bound(grid, "<a><c>1</c><c>2</c><c>3</c><c>4</c></a>"), "<1:2,5:7>(1,2,3,4,0,0)");
    EXPECT_EQ(bound(grid, "<a><c index='2,5'>1</c><c index='1,7'>2</c></a>"), "<1:2,5:7>(0,0,2,1,0,0)");
    EXPECT_EQ(bound(grid, "<a><c index='1'>1</c></a>"),
              "<1:2,5:7>(0,0,0,0,0,0) 602 XML element (number 1) c caused a bounds error in the following "
              "array: a[1:2,5:7]");
    AnyValue cube = AnyValue::array(KindInteger, {{0, 1}, {0, 1}, {0, 1}});
    EXPECT_EQ(bound(cube, "<a><c/><c>2</c><c>3</c><c/><c>5</c><c index='1,1,1'>8</c></a>"),
              "<0:1,0:1,0:1>(0,2,3,0,5,0,0,8)");
}

TEST_F(XmlBindTest, GrowableArraysGrow) {
    AnyValue line = AnyValue::array(KindInteger, {});
    EXPECT_EQ(bound(line, "<a/>"), "<>()");
    EXPECT_EQ(bound(line, "<a><c>1</c><c>2</c><c>3</c></a>"), "<1:3>(1,2,3)");
    EXPECT_EQ(bound(line, "<a><c index='5'>1</c><c index='3'>2</c></a>"), "<3:5>(2,0,1)");
    EXPECT_EQ(bound(line, "<a><c index='5'>1</c><c>2</c></a>"), "<5:6>(1,2)");
    EXPECT_EQ(bound(line, "<a><c index='2,2'>1</c><c index='3,1'>2</c></a>"), "<2:3,1:2>(0,1,2,0)");
    EXPECT_EQ(bound(line, "<a><c index='2,2'>1</c><c index='2,3'/><c>5</c><c>6</c></a>"),
              "<2:3,2:3>(1,0,5,6)");
    EXPECT_EQ(bound(line, "<a><c index='1,1,1'>1</c><c index='1,2,2'>2</c></a>"), "<1:1,1:2,1:2>(1,0,0,2)");
    EXPECT_EQ(bound(line, "<a><c index='1,1'>1</c><c index='2'>2</c></a>"),
              "<1:1,1:1>(1) 602 XML element (number 2) c caused a bounds error in the following array: "
              "a[1:1,1:1]");
    EXPECT_EQ(bound(line, "<a><c index='32768'>1</c></a>"),
              "<>() 602 XML element (number 1) c caused a bounds error in the following array: a[]");
    EXPECT_EQ(bound(line, "<a><c index='-32768'>1</c><c index='-32769'>1</c></a>").substr(0, 23),
              "<-32768:-32768>(1) 602 ");
    const String like;
    AnyValue texts = AnyValue::array(KindString, {}, like.get());
    EXPECT_EQ(bound(texts, "<a><c index='-1'>x</c><c index='1'>y</c></a>"), "<-1:1>('x','','y')");
}

TEST_F(XmlBindTest, LongArraysGrowInLinearTime) {
    std::string up, down;
    for (int i = 1; i <= 32000; ++i) {
        up += "<c>" + std::to_string(i) + "</c>\n";
        down += "<c index='" + std::to_string(-i) + "'>" + std::to_string(i) + "</c>\n";
    }
    AnyValue line = AnyValue::array(KindInteger, {});
    EXPECT_EQ(readInto(line, "<a>" + up + "</a>").code, 0);
    EXPECT_EQ(ArrayUpperBound(line.as<ArrayDescriptor>(), 1), 32000);
    EXPECT_EQ(readInto(line, "<a>" + down + "</a>").code, 0);
    EXPECT_EQ(ArrayLowerBound(line.as<ArrayDescriptor>(), 1), -32000);
    EXPECT_EQ(ArrayUpperBound(line.as<ArrayDescriptor>(), 1), -1);
    EXPECT_EQ(ReadAt<std::int32_t>(ArrayRef(line.as<ArrayDescriptor>(), -31999)), 31999);
}

constexpr const char* row = "r : record\n\tn : integer\n\ts : string\nend record\n";

TEST_F(XmlBindTest, TablesInsertWhatTheirIndexesTake) {
    AnyValue table = AnyValue::table(row, {MakeKeyMap(1)});
    EXPECT_EQ(bound(table, "<t><r><n>2</n><s>b</s></r><r n='1' s='a'/></t>"), "|{2,'b'},{1,'a'}|");
    EXPECT_EQ(shown(readInto(table, "<t>\n<r n='1' s='a'/>\n<r n='1' s='b'/>\n<r n='2' s='c'/></t>")),
              "635 3:16 Cannot add record, field(s) are not unique.");
    EXPECT_EQ(shown(table), "|{1,'a'},{2,'c'}|");
    AnyValue plain = AnyValue::table(row, {});
    EXPECT_EQ(bound(plain, "<t><r n='1'/><r n='1'/></t>"), "|{1,''},{1,''}|");
    AnyValue small = AnyValue::table(row, {MakeKeyMap(1)}, 2);
    EXPECT_EQ(bound(small, "<t><r n='1'/><r n='2'/><r n='3'/></t>"),
              "|{1,''},{2,''}| 619 Table filled up after 2 element(s)");
    AnyValue inner("r : record\n\tx : integer\nend record\n");
    EXPECT_EQ(bound(table, "<t/>"), "||");
}

TEST_F(XmlBindTest, TargetsThatAreNoValuesAreRefused) {
    disk.put(file, "<a><i>1</i></a>");
    std::int32_t number = 5;
    EXPECT_EQ(XmlRead(file, 0, &number, KindNone, nullptr, 0).code, ERR_UNIDENTIFIABLE);
    EXPECT_EQ(XmlRead(file, 0, &number, static_cast<Kind>(13), nullptr, 0).code, ERR_UNIDENTIFIABLE);
    ListDescriptor zero{};
    EXPECT_EQ(XmlRead(file, 0, &zero, KindList, nullptr, 0).code, ERR_LIST_TYPE);
    EXPECT_EQ(XmlRead(file, 0, &zero, KindTable, nullptr, 0).code, ERR_TABLE_TYPE);
    ListDescriptor held{};
    ListInit(&held, UNBOUNDED, nullptr, KindInteger, true);
    const ListDescriptor before = held;
    EXPECT_EQ(XmlRead(file, 0, &held, KindList, nullptr, 0).code, ERR_FILE_NOT_OPEN);
    EXPECT_EQ(XmlLoad(file, &held, KindList).error.code, ERR_FILE_NOT_OPEN);
    EXPECT_EQ(std::memcmp(&held, &before, sizeof held), 0);
    AdtFree(&held, KindList);
    EXPECT_EQ(number, 5);
}

TEST_F(XmlBindTest, MembersThatWereNeverShapedAreReported) {
    RecordDescriptor r{};
    RecordInit(&r, TagRecord, MakeFieldKinds({KindString, KindSet, KindArray, KindList, KindTable}));
    AnyValue record = AnyValue::adopt(&r, KindRecord);
    const Case cases[] = {
        {"", "<a><s>x</s></a>", "756"},
        {"", "<a><s/><s>[1]</s></a>", "989"},
        {"", "<a><s/><s/><s><c>1</c></s></a>", "760"},
        {"", "<a><s/><s/><s/><s><c>1</c></s></a>", "761"},
        {"", "<a><s/><s/><s/><s/><s><c>1</c></s></a>", "762"},
    };
    for (const Case& c : cases) {
        disk.put(file, c.text);
        EXPECT_EQ(std::to_string(XmlRead(file, 0, record.get(), KindRecord, nullptr, 0).code), c.expected);
    }
}

TEST_F(XmlBindTest, WithoutMemoryTheReadFailsAndNothingLeaks) {
    const char* declaration =
        "l : list\n\tr : record\n\t\tn : integer\n\t\ts : string\n\t\tq : list\n\t\t\ti : string[4]\n\t\tend "
        "list\n\t\tm : set\n\tend record\nend list\n";
    const std::string text =
        "<a><r n='1' s='text'><n>1</n><s>longer text</s><q><i>x</i><i>y</i></q><m>[1..300]</m></r><r "
        "n='2' s='y'/></a>";
    const auto check = [&](AnyValue& value, const std::string& xml) {
        disk.put(file, xml);
        std::string before = shown(value);
        int failures = 0;
        for (std::int64_t n = 0; n < 150; ++n) {
            SCOPED_TRACE(n);
            FailAllocation(n);
            const ErrorRecord error = XmlRead(file, 0, value.get(), value.kind(), nullptr, 0);
            FailAllocation(-1);
            EXPECT_TRUE(error.code == 0 || shown(value) == before) << shown(value);
            before = shown(value);
            EXPECT_EQ(AdtCheck(value.get(), value.kind()), "");
            EXPECT_EQ(ErrorCell(), 0);
            EXPECT_TRUE(error.code == 0 || error.code == ERR_OUT_OF_MEMORY) << error.message;
            if (error.code != 0) ++failures;
        }
        return failures;
    };
    AnyValue list(declaration);
    EXPECT_EQ(bound(list, "<a><r n='9' s='old'/></a>"), "({9,'old',(),[]})");
    EXPECT_GT(check(list, text), 10);
    EXPECT_EQ(shown(list), "({1,'longer text',('x','y'),[1..300]},{2,'y',(),[]})");
    AnyValue table = AnyValue::table(row, {MakeKeyMap(1), MakeKeyMap(2)});
    EXPECT_EQ(bound(table, "<a><r n='9' s='old'/></a>"), "|{9,'old'}|");
    EXPECT_GT(check(table, "<a><r n='1' s='text'/><r n='2'><n>3</n><s>b</s></r></a>"), 10);
    const String like;
    AnyValue array = AnyValue::array(KindString, {}, like.get());
    EXPECT_GT(check(array, "<a><c>x</c><c>y</c><c index='4'>z</c></a>"), 4);
    EXPECT_EQ(shown(array), "<1:4>('x','y','','z')");
}

TEST_F(XmlBindTest, WantOfMemoryIsToldAlsoBehindOtherErrors) {
    const std::string text = "<a><r n='x' b='perhaps' s='one'/><r n='2' b='yes' s='two'/></a>";
    AnyValue list(
        "l : list\n\tr : record\n\t\tn : integer\n\t\tb : boolean\n\t\ts : string\n\tend record\nend list\n");
    EXPECT_EQ(bound(list, "<a><r n='9' b='yes' s='old'/></a>"), "({9,True,'old'})");
    int failures = 0;
    for (std::int64_t n = 0; n < 60; ++n) {
        SCOPED_TRACE(n);
        disk.put(file, text);
        FailAllocation(n);
        const ErrorRecord error = XmlRead(file, 0, list.get(), KindList, nullptr, 0);
        FailAllocation(-1);
        if (error.code == ERR_BOOLEAN_CONVERSION) break;
        ++failures;
        EXPECT_EQ(error.code, ERR_OUT_OF_MEMORY);
        EXPECT_EQ(shown(list), "({9,True,'old'})");
    }
    EXPECT_GT(failures, 5);
    EXPECT_EQ(shown(list), "({0,False,'one'},{2,True,'two'})");
}

}  // namespace

}  // namespace tarn
