// SPDX-License-Identifier: Apache-2.0
#include "unit/kernel/xml_fixture.h"

#include <random>

namespace tarn {

namespace {

class XmlLoadTest : public Xml {
protected:
    XmlResult load(AnyValue& value, const std::string& text) {
        disk.put(file, text);
        return load(value);
    }
    XmlResult load(AnyValue& value) {
        XmlResult result = XmlLoad(file, value.get(), value.kind());
        EXPECT_EQ(AdtCheck(value.get(), value.kind()), "");
        EXPECT_EQ(ErrorCell(), 0);
        return result;
    }
    // The value after loading, the count, and what went wrong.
    std::string loaded(AnyValue& value, const std::string& text) {
        const XmlResult result = load(value, text);
        const std::string error = problem(result.error);
        return shown(value) + " " + std::to_string(result.count) + (error.empty() ? "" : " " + error);
    }
};

constexpr const char* row = "r : record\n\tn : integer\n\ts : string\nend record\n";
constexpr const char* notUnique = " 637 A unique table index cannot be created";

TEST_F(XmlLoadTest, ValuesOfEveryKindLoad) {
    const struct {
        const char *declaration, *text, *expected;
    } cases[] = {
        {"x : integer", "<a>5</a>", "5 1"},
        {"x : set[1:9]", "<a>[5]</a>", "[5] 1"},
        {row, "<a><n>1</n><s>x</s></a>", "{1,'x'} 2"},
        {"l : list\n\ti : integer\nend list\n", "<a><i>1</i><i>2</i></a>", "(1,2) 2"},
        {"x : boolean", "<a>5</a>", "False 1 981 True/False expected here"},
    };
    for (const auto& c : cases) {
        AnyValue value(c.declaration);
        EXPECT_EQ(loaded(value, c.text), c.expected) << c.declaration;
    }
    AnyValue array = AnyValue::array(KindInteger, {{1, 2}});
    EXPECT_EQ(loaded(array, "<a><i>1</i></a>"), "<1:2>(1,0) 2");
    EXPECT_EQ(XmlLoad("", array.get(), KindArray).count, 0);
    EXPECT_EQ(XmlLoad("/data/none", array.get(), KindArray).error.code, ERR_FILE_READ);
    EXPECT_EQ(XmlLoad(file, array.get(), KindList).error.code, ERR_LIST_TYPE);
    EXPECT_EQ(XmlLoad(file, nullptr, KindList).count, 0);
    EXPECT_EQ(XmlLoad(file, nullptr, KindTable).error.code, ERR_UNIDENTIFIABLE);
    EXPECT_EQ(XmlLoad(file, nullptr, KindInteger).error.code, ERR_UNIDENTIFIABLE);
    EXPECT_EQ(XmlRead(file, 0, nullptr, KindList, nullptr, 0).code, 0) << "a read need not have one";
}

TEST_F(XmlLoadTest, TablesTakeRowsAsTheyStandInTheOutermostElement) {
    AnyValue table = AnyValue::table(row, {MakeKeyMap(1)});
    EXPECT_EQ(loaded(table, "<t><r><n>1</n><s>a</s></r><r n='2' s='b'/></t>"), "|{1,'a'},{2,'b'}| 2");
    EXPECT_EQ(loaded(table, "<t><r><n>3</n></r></t>"), "|{3,''}| 1");
    EXPECT_EQ(loaded(table, "<t/>"), "|| 0");
}

TEST_F(XmlLoadTest, AnElementWithoutContentIsNothingWhateverItsType) {
    AnyValue table =
        AnyValue::table("r : record\n\tf : fixed\n\tb : boolean\n\tr : real\n\ts : set[1:9]\n\ti : integer\n"
                        "end record\n",
                        {});
    EXPECT_EQ(load(table, "<data type='table'><component type='record'><f type='fixed'/><b type='boolean'/>"
                          "<r type='real'/><s type='set[1:9]'/><i type='integer'/></component></data>")
                  .error.code,
              0);
    EXPECT_EQ(TableCount(static_cast<TableDescriptor*>(table.get())), 1);
}

TEST_F(XmlLoadTest, RowsThatCollideAreReportedAsAnIndexThatCannotBe) {
    AnyValue table = AnyValue::table(row, {MakeKeyMap(1)});
    EXPECT_EQ(loaded(table, "<t><r><n>1</n><s>a</s></r><r><n>1</n><s>b</s></r></t>"),
              std::string("|{1,'a'}| 1") + notUnique);
    EXPECT_EQ(shown(load(table, "<t>\n<r n='1'/>\n<r n='1'/></t>").error),
              "637 3:10 A unique table index cannot be created");
}

TEST_F(XmlLoadTest, TablesTakeRowsFromAListInside) {
    AnyValue table = AnyValue::table(row, {MakeKeyMap(1)});
    const std::string rows = "<r><n>1</n><s>a</s></r>\n<r><n>2</n><s>b</s></r>";
    EXPECT_EQ(loaded(table, "<d>\n<t>" + rows + "</t>\n</d>"), "|{1,'a'},{2,'b'}| 2");
    EXPECT_EQ(loaded(table, "<d><t>" + rows + "</t><more>5</more></d>"), "|{1,'a'},{2,'b'}| 2");
    EXPECT_EQ(loaded(table, "<d><t>" + rows + "<r><n>1</n><s>c</s></r></t></d>"),
              std::string("|{1,'a'},{2,'b'}| 2") + notUnique);
    AnyValue small = AnyValue::table(row, {}, 1);
    EXPECT_EQ(loaded(small, "<d><t>" + rows + "</t></d>"),
              "|{1,'a'}| 1 619 Table filled up after 1 element(s)");
    EXPECT_EQ(loaded(table, "<d><t><r n='1' s='a'/><r n='2' s='b'/></t></d>"), "|{1,'a'},{2,'b'}| 2");
    // One row is no list, and a list that is not the first is not looked for.
    EXPECT_EQ(loaded(table, "<d><t><r><n>1</n><s>a</s></r></t></d>"),
              "|{0,''}| 1 983 Integer value expected here, instead of element tags");
    EXPECT_EQ(loaded(table, "<d><x>5</x><t>" + rows + "</t></d>"),
              "|{0,''}| 1 983 Integer value expected here, instead of element tags")
        << "the one row that was there before";
}

TEST_F(XmlLoadTest, TablesTakeOneRowFromARecordThatMatches) {
    const char* fixed = "r : record\n\tn : integer\n\ts : string[2]\nend record\n";
    AnyValue table = AnyValue::table(fixed, {MakeKeyMap(1)});
    EXPECT_EQ(loaded(table, "<d><n>7</n><s>ab</s></d>"), "|{7,'ab'}| 1");
    EXPECT_EQ(loaded(table, "<d><n>8</n><s type='string[2]'>x</s></d>"), "|{8,'x'}| 1");
    AnyValue plain = AnyValue::table(row, {});
    EXPECT_EQ(loaded(plain, "<d><n>7</n><s type='string'>ab</s></d>"), "|{7,'ab'}| 1");
    // What the writer makes of such a record.
    AnyValue record(fixed);
    EXPECT_EQ(bound(record, "<a n='5' s='x'/>"), "{5,'x'}");
    EXPECT_EQ(XmlSave(file, 0, record.get(), KindRecord).error.code, 0);
    EXPECT_EQ(load(table).count, 1);
    EXPECT_EQ(shown(table), "|{5,'x'}|");
}

// The length of a text is part of its type, be it that of the text itself or one that a `type` gives.
TEST_F(XmlLoadTest, ARecordThatDoesNotMatchTheRowsIsNotInserted) {
    AnyValue table =
        AnyValue::table("r : record\n\tn : integer\n\ts : string[2]\nend record\n", {MakeKeyMap(1)});
    EXPECT_EQ(loaded(table, "<t><r n='5' s='ol'/></t>"), "|{5,'ol'}| 1");
    for (const char* text : {
             "<d><n>9</n><s>a</s></d>",
             "<d><n>9</n><s>abc</s></d>",
             "<d><n>9</n><s/></d>",
             "<d><n>9</n><s type='string'>ab</s></d>",
             "<d><n>9</n><s type='string[3]'>ab</s></d>",
             "<d><n>9.5</n><s>ab</s></d>",
             "<d><n>9</n><s>ab</s><more>1</more></d>",
             "<d><n>9</n></d>",
         })
        EXPECT_EQ(loaded(table, text),
                  "|{5,'ol'}| 1 673 The text of element 'n' cannot be loaded, fields are expected there")
            << text;
    AnyValue plain = AnyValue::table(row, {});
    EXPECT_EQ(load(plain, "<d><n>7</n><s>ab</s></d>").error.code, ERR_XML_DATA) << "no length, and one of 2";
    EXPECT_EQ(shown(plain), "||");
}

TEST_F(XmlLoadTest, WhatTheTableHasNoPlaceForIsAnErrorAndTheOldRowsStay) {
    const struct {
        const char *text, *expected;
    } cases[] = {
        {"<d><n>9</n></d>", "673 The text of element 'n' cannot be loaded, fields are expected there"},
        {"<d><n>x</n><s>y</s></d>",
         "673 The text of element 'n' cannot be loaded, fields are expected there"},
        {"<d><s>x</s><n>9</n></d>",
         "673 The text of element 's' cannot be loaded, fields are expected there"},
        {"<d><n>9</n><s>x</s><more>y</more></d>",
         "673 The text of element 'n' cannot be loaded, fields are expected there"},
        {"<l><v>1</v><v>2</v></l>",
         "673 The text of element 'v' cannot be loaded, fields are expected there"},
        {"<l>text</l>", "673 The text of element 'l' cannot be loaded, fields are expected there"},
        {"<t><r n='1' s='a'/><r>text</r></t>",
         "673 The text of element 'r' cannot be loaded, fields are expected there"},
        {"<d><t><r><n>1</n><s>a</s></r><r>text</r></t><u/></d>",
         "673 The text of element 'r' cannot be loaded, fields are expected there"},
        {"<d><x>5</x><t><r n='1' s='a'/><r n='2' s='b'/></t></d>",
         "673 The text of element 'x' cannot be loaded, fields are expected there"},
        {"<d><t><r n='1' s='a'/></t></d>",
         "673 The attributes of element 'r' cannot be loaded, fields are expected there"},
    };
    for (const KeyMaps& keys : {KeyMaps{}, KeyMaps{MakeKeyMap(2)}}) {
        AnyValue table = AnyValue::table(row, keys);
        EXPECT_EQ(loaded(table, "<t><r n='5' s='old'/></t>"), "|{5,'old'}| 1");
        for (const auto& c : cases)
            EXPECT_EQ(loaded(table, c.text), std::string("|{5,'old'}| 1 ") + c.expected) << c.text;
        EXPECT_EQ(shown(load(table, "<l>\n<v>1</v>\n<v>2</v></l>").error).substr(0, 7), "673 2:6");
    }
}

TEST_F(XmlLoadTest, AttributesBesideContentAreNoData) {
    AnyValue table = AnyValue::table(row, {});
    EXPECT_EQ(loaded(table, "<t version='1'><r><n unit='kg'>1</n><s>a</s></r></t>"), "|{1,'a'}| 1");
    EXPECT_EQ(loaded(table, "<d version='1'><t count='2'><r n='1' s='a'/><r n='2' s='b'/></t></d>"),
              "|{1,'a'},{2,'b'}| 2");
    EXPECT_EQ(loaded(table, "<t count='0'/>"), "|| 0");
}

int stepsLeft = 0;
bool countDown(std::int64_t, std::int64_t) {
    return stepsLeft-- > 0;
}

TEST_F(XmlLoadTest, ALoadThatIsStoppedInAnyOfItsReadsChangesNothing) {
    std::string text = "<d><t>\n";
    for (int i = 0; i < 60000; ++i) text += "<r><n>" + std::to_string(i) + "</n><s>some text</s></r>\n";
    text += "</t></d>";
    AnyValue table = AnyValue::table(row, {MakeKeyMap(1)});
    EXPECT_EQ(loaded(table, "<t><r n='1' s='a'/></t>"), "|{1,'a'}| 1");
    disk.put(file, text);
    UseProgress(countDown);
    bool stopped = true;
    int steps = 0;
    for (; stopped && steps < 20; ++steps) {
        SCOPED_TRACE(steps);
        stepsLeft = steps;
        const XmlResult result = load(table);
        stopped = result.stopped;
        EXPECT_EQ(shown(table) == "|{1,'a'}|", stopped);
        EXPECT_EQ(result.count, stopped ? 1 : 60000);
    }
    EXPECT_GT(steps, 5);  // three reads of two steps
    EXPECT_LT(steps, 20);
}

TEST_F(XmlLoadTest, AFileThatCannotBeReadLeavesTheTable) {
    AnyValue table = AnyValue::table(row, {MakeKeyMap(1)});
    EXPECT_EQ(loaded(table, "<t><r n='1' s='a'/></t>"), "|{1,'a'}| 1");
    disk.failAlways(os::FileCall::Read, os::FileError::ReadFailed);
    EXPECT_EQ(load(table).error.code, ERR_FILE_READ);
    disk.stopFailing();
    EXPECT_EQ(shown(table), "|{1,'a'}|");
    EXPECT_EQ(XmlLoad("/data/none", table.get(), KindTable).error.code, ERR_FILE_READ);
    EXPECT_EQ(shown(table), "|{1,'a'}|");
}

TEST_F(XmlLoadTest, WithoutMemoryALoadFailsAndNothingLeaks) {
    const std::string forms[] = {"<t><r n='1' s='a'/><r n='2' s='b'/></t>",
                                 "<d><t><r n='1' s='a'/><r n='2' s='b'/></t></d>"};
    AnyValue table = AnyValue::table(row, {MakeKeyMap(1)});
    for (const std::string& form : forms) {
        disk.put(file, form);
        int failures = 0;
        for (std::int64_t n = 0; n < 200; ++n) {
            SCOPED_TRACE(n);
            FailAllocation(n);
            const XmlResult result = load(table);
            FailAllocation(-1);
            if (result.error.code != 0) ++failures;
        }
        EXPECT_GT(failures, 10);
        EXPECT_EQ(shown(table), "|{1,'a'},{2,'b'}|");
    }
}

// ---- round trips ----

// Declarations, values and texts that are made at random.
class Maker {
public:
    explicit Maker(std::uint32_t seed) : random_(seed) {}

    std::string declaration(int depth) { return element("x", depth, 0); }
    void fill(void* value, Kind kind) {
        switch (kind) {
        case KindBoolean: return WriteAt(value, static_cast<std::uint8_t>(below(2)));
        case KindEnum: return WriteAt(value, static_cast<std::uint8_t>(below(256)));
        case KindInteger: return WriteAt(value, number());
        case KindFixed:
            return WriteAt(value,
                           static_cast<Fixed>(std::int64_t{number()} * (below(2) == 0 ? 1 : 4294967295)));
        case KindReal: return WriteAt(value, real());
        case KindString:
            return StringAssignView(static_cast<StringDescriptor*>(value), text(capacity(value)));
        case KindSet: return fillSet(static_cast<SetDescriptor*>(value));
        case KindRecord:
        case KindUnion: return fillRecord(static_cast<RecordDescriptor*>(value));
        case KindArray: return fillArray(static_cast<ArrayDescriptor*>(value));
        case KindList: return fillList(static_cast<ListDescriptor*>(value));
        default: return;
        }
    }
    std::int32_t below(std::int32_t n) {
        return static_cast<std::int32_t>(random_() % static_cast<std::uint32_t>(n));
    }
    std::string text(std::int32_t most) {
        constexpr std::string_view marks = "<>&'\";#/!?[]-= \t\n:x";
        std::string text;
        for (std::int32_t left = below(std::min(most, 30) + 1); left > 0; --left) {
            char c = below(2) == 0 ? marks[static_cast<std::size_t>(below(static_cast<int>(marks.size())))]
                                   : static_cast<char>(below(256));
            if (c == '\r' || c == '\x1A') c = ' ';  // see what does not come back
            text += c;
        }
        return text;
    }

private:
    std::string element(const std::string& name, int depth, int indent) {
        const std::string tabs(static_cast<std::size_t>(indent), '\t');
        const std::string head = tabs + name + " : ";
        switch (below(depth > 0 ? 11 : 8)) {
        case 0: return head + "boolean\n";
        case 1: return head + "enum\n";
        case 2: return head + "integer\n";
        case 3: return head + "fixed\n";
        case 4: return head + "real\n";
        case 5: return head + "string\n";
        case 6: return head + "string[" + std::to_string(1 + below(20)) + "]\n";
        case 7:
            return head + "set[" + std::to_string(-below(9)) + ":" + std::to_string(1 + below(40)) + "]\n";
        case 8: return head + "list\n" + element("e", depth - 1, indent + 1) + tabs + "end list\n";
        case 9: return head + "Tchars[1:" + std::to_string(1 + below(5)) + "]\n";
        default: {
            const char* const type = below(4) == 0 ? "union" : "record";
            std::string all = head + type + "\n";
            for (int n = 1 + below(4); n > 0; --n)
                all += element("f" + std::to_string(n), depth - 1, indent + 1);
            return all + tabs + "end " + type + "\n";
        }
        }
    }
    std::int32_t number() { return static_cast<std::int32_t>(random_()) >> below(32); }
    double real() {
        switch (below(8)) {
        case 0: return 0;
        case 1: return -1e300;
        case 2: return 5e-324;
        case 3: return std::numeric_limits<double>::infinity();
        default: return static_cast<double>(number()) / (1 + below(1000));
        }
    }
    static std::int32_t capacity(const void* value) {
        const std::int32_t most = ReadAt<DescriptorHead>(value).maxlength;
        return most == UNBOUNDED ? 1000 : most;
    }
    void fillSet(SetDescriptor* s) {
        for (std::int32_t n = below(5); n > 0; --n) SetInclude(s->lower + below(s->upper - s->lower + 1), s);
    }
    void fillRecord(RecordDescriptor* r) {
        for (std::int32_t n = 1; n <= FieldCountOf(r->kinds); ++n)
            fill(RecordFieldAddress(r, n), FieldKindAt(r->kinds, n));
    }
    void fillArray(ArrayDescriptor* a) {
        for (std::int32_t i = 0; i < ArrayElementCount(a); ++i)
            fill(At(a->data) + std::ptrdiff_t{i} * KindSize[a->tag], static_cast<Kind>(a->tag));
    }
    void fillList(ListDescriptor* l) {
        const Kind kind = ListElementKind(l);
        for (std::int32_t n = below(5); n > 0; --n) {
            char element[sizeof(ArrayDescriptor)] = {};
            if (IsAdtKind(kind)) AdtInit(element, At(l->prototype), kind);
            fill(element, kind);
            ListAppend(element, kind, l);
            AdtFree(element, kind);
        }
    }

    std::mt19937 random_;
};

TEST_F(XmlLoadTest, WhatIsSavedComesBack) {
    int records = 0;
    for (std::uint32_t seed = 1; records < 20000; ++seed) {
        SCOPED_TRACE(seed);
        Maker maker(seed);
        const std::string declaration = "l : list\n\tr : record\n\t\ta : integer\n" + [&] {
            std::string fields;
            for (int n = 1 + maker.below(4); n > 0; --n) {
                std::string one = maker.declaration(2);
                TypeInfoChangeIndent(2, one, MaxTypeInfo);
                fields += one;
            }
            return fields;
        }() + "\tend record\nend list\n";
        AnyValue value(declaration), back(declaration);
        for (int n = 0; n < 10; ++n) maker.fill(value.get(), KindList);
        ASSERT_EQ(takeError(), 0);
        records += ListCount(value.as<ListDescriptor>());
        const std::int32_t options = maker.below(2) == 0 ? 0 : XmlFieldAttributes;
        const XmlResult saved = XmlSave(file, options, value.get(), KindList);
        ASSERT_EQ(shown(saved.error), "") << declaration;
        const XmlResult result = load(back);
        ASSERT_EQ(shown(result.error), "") << declaration << disk.contents(file);
        ASSERT_EQ(result.count, saved.count);
        ASSERT_TRUE(AdtCompare("EQ", value.get(), back.get(), KindList)) << disk.contents(file);
    }
}

TEST_F(XmlLoadTest, ValuesOfEveryKindComeBack) {
    for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
        SCOPED_TRACE(seed);
        Maker maker(seed);
        const std::string declaration = maker.declaration(3);
        AnyValue value(declaration), back(declaration);
        maker.fill(value.get(), value.kind());
        ASSERT_EQ(shown(XmlSave(file, 0, value.get(), value.kind()).error), "");
        ASSERT_EQ(shown(load(back).error), "") << declaration << disk.contents(file);
        ASSERT_TRUE(AdtCompare("EQ", value.get(), back.get(), value.kind())) << disk.contents(file);
    }
}

TEST_F(XmlLoadTest, ArraysOfAnyBoundsComeBack) {
    for (std::uint32_t seed = 1; seed <= 500; ++seed) {
        SCOPED_TRACE(seed);
        Maker maker(seed);
        const std::string element = maker.declaration(1);
        const AnyValue like(element);
        const void* const prototype = IsAdtKind(like.kind()) ? like.get() : nullptr;
        std::vector<ArrayBounds> bounds;
        for (std::int32_t d = 1 + maker.below(3); d > 0; --d) {
            const std::int32_t lower = maker.below(2000) - 1000;
            bounds.push_back({lower, lower + maker.below(4)});
        }
        AnyValue fixed = AnyValue::array(like.kind(), bounds, prototype);
        AnyValue fixedBack = AnyValue::array(like.kind(), bounds, prototype);
        AnyValue growing = AnyValue::array(like.kind(), {}, prototype);
        maker.fill(fixed.get(), KindArray);
        ASSERT_EQ(shown(XmlSave(file, 0, fixed.get(), KindArray).error), "");
        ASSERT_EQ(shown(load(fixedBack).error), "") << disk.contents(file);
        ASSERT_EQ(shown(load(growing).error), "");
        EXPECT_EQ(shown(fixed), shown(fixedBack));
        EXPECT_EQ(shown(fixed), shown(growing));
    }
}

TEST_F(XmlLoadTest, TablesComeBackInTheOrderOfTheirIndex) {
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        Maker maker(seed);
        AnyValue table = AnyValue::table(row, {MakeKeyMap(1), MakeKeyMap(2, 1)});
        AnyValue back(table.get(), KindTable), again(table.get(), KindTable);
        RecordValue one;
        AdtInit(one.get(), AnyValue(row).get(), KindRecord);
        const std::int32_t rows = maker.below(300);
        for (std::int32_t i = 0; i < rows; ++i) {
            maker.fill(one.get(), KindRecord);
            TableAdd(table.as<TableDescriptor>(), 1, one.get());
        }
        ClearError();
        ASSERT_EQ(shown(XmlSave(file, 0, table.get(), KindTable).error), "");
        const XmlResult result = load(back);
        ASSERT_EQ(shown(result.error), "");
        ASSERT_EQ(result.count, TableCount(table.as<TableDescriptor>()));
        const std::string first = disk.contents(file);
        ASSERT_EQ(shown(XmlSave(file, 0, back.get(), KindTable).error), "");
        // The head has the time.
        EXPECT_EQ(disk.contents(file).substr(90), first.substr(90));
        load(again);
        EXPECT_TRUE(AdtCompare("EQ", back.get(), again.get(), KindTable));
    }
}

// The differences that the format has.
TEST_F(XmlLoadTest, WhatDoesNotComeBack) {
    const auto trip = [&](std::string_view declaration, const auto& fill) {
        AnyValue value(declaration), back(declaration);
        fill(value);
        EXPECT_EQ(XmlSave(file, 0, value.get(), value.kind()).error.code, 0);
        const XmlResult result = load(back);
        return shown(back) + (result.error.code != 0 ? " " + std::to_string(result.error.code) : "");
    };
    const auto text = [&](const std::string& s) {
        return trip("s : string",
                    [&](AnyValue& value) { StringAssignView(value.as<StringDescriptor>(), s); });
    };
    EXPECT_EQ(text("a\nb"), "'a\nb'");
    EXPECT_EQ(text("a\r\nb\rc"), "'a\nb\rc'");
    // The bounds of a dynamic set.
    AnyValue wide("s : set");
    SetRedim(wide.as<SetDescriptor>(), -5, 90, false);
    SetInclude(7, wide.as<SetDescriptor>());
    EXPECT_EQ(XmlSave(file, 0, wide.get(), KindSet).error.code, 0);
    AnyValue back("s : set");
    EXPECT_EQ(load(back).error.code, 0);
    EXPECT_TRUE(AdtCompare("EQ", wide.get(), back.get(), KindSet));
    EXPECT_NE(SetUpperBound(back.as<SetDescriptor>()), 90);
}

TEST_F(XmlLoadTest, TheStructureOfASavedTableIsAListOfRecords) {
    AnyValue table = AnyValue::table(row, {MakeKeyMap(1)}, UNBOUNDED, "id : integer\nname : string\n");
    EXPECT_EQ(loaded(table, "<t><r n='1' s='5'/><r n='2' s='True'/></t>"), "|{1,'5'},{2,'True'}| 2");
    EXPECT_EQ(XmlSave(file, 0, table.get(), KindTable).error.code, 0);
    EXPECT_EQ(
        structure(disk.contents(file)),
        "data : list\n\tcomponent : record\n\t\tid : integer\n\t\tname : string\n\tend record\nend list\n");
}

}  // namespace

}  // namespace tarn
