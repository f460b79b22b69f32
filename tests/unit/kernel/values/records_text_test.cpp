// SPDX-License-Identifier: Apache-2.0
//
// Fields of records as text.
#include "kernel/run/errors.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "unit/kernel/values_fixture.h"

#include <gtest/gtest.h>
#include <string>

using namespace tarn;
using namespace std::string_view_literals;

namespace {

class RecordTexts : public Values {
protected:
    static RecordDescriptor* record(OddValue& value) { return value.as<RecordDescriptor>(); }
    static std::string textOf(OddValue& r, std::int32_t n) {
        String s(std::string_view("before"));
        RecordGetAsText(record(r), n, s.get());
        return std::string(s.view());
    }
    static void put(OddValue& r, std::int32_t n, std::string_view text) {
        const String s(text);
        RecordPutFromText(n, s.get(), record(r));
    }
};

ValueModel characters(std::string_view text, std::int32_t count) {
    std::vector<ValueModel> parts;
    for (const char c : text) parts.push_back(model::Number(KindEnum, static_cast<unsigned char>(c)));
    return model::Array({{1, count}}, model::Number(KindEnum, 0), parts);
}

// A boolean stands before each, so that it has an odd address.
ValueModel with(const ValueModel& field, Kind kind = KindRecord) {
    return model::Record({model::Number(KindBoolean, 1), field}, kind);
}

TEST_F(RecordTexts, EveryKindThatHasATextGivesIt) {
    const struct {
        ValueModel field;
        std::string text;
    } rows[] = {
        {model::Number(KindBoolean, 0), "False"},
        {model::Number(KindBoolean, 1), "True"},
        {model::Number(KindEnum, 200), "200"},
        {model::Number(KindInteger, INT32_MIN), "-2147483648"},
        {model::Number(KindFixed, 15000), "1.5000"},
        {model::Number(KindFixed, -1), "-0.0001"},
        {model::Text("a \"text\""), "a \"text\""},
        {model::Text("cap", 9), "cap"},
        {model::Text(""), ""},
        {characters("abc", 3), "\"abc\""},
        {characters("a\"b", 3), "\"a\"\"b\""},
        {model::Set(1, 9, {1, 2, 3, 7}), "[1..3,7]"},
        {model::Set(1, 9, {}), "[]"},
    };
    for (const auto& row : rows) {
        for (const Kind kind : {KindRecord, KindUnion}) {
            OddValue r(with(row.field, kind));
            EXPECT_EQ(textOf(r, 2), row.text);
            EXPECT_EQ(takeError(), 0) << row.text;
        }
    }
}

TEST_F(RecordTexts, ATextGivesEveryKindItsValue) {
    const struct {
        ValueModel before;
        std::string_view text;
        ValueModel after;
    } rows[] = {
        {model::Number(KindBoolean, 0), "True", model::Number(KindBoolean, 1)},
        {model::Number(KindBoolean, 0), "yes", model::Number(KindBoolean, 1)},
        {model::Number(KindBoolean, 1), "NO", model::Number(KindBoolean, 0)},
        {model::Number(KindEnum, 1), "255", model::Number(KindEnum, 255)},
        {model::Number(KindEnum, 1), "0", model::Number(KindEnum, 0)},
        {model::Number(KindInteger, 1), "-2147483648", model::Number(KindInteger, INT32_MIN)},
        {model::Number(KindInteger, 1), "NULL", model::Number(KindInteger, 0)},
        {model::Number(KindFixed, 1), "-1.25", model::Number(KindFixed, -12500)},
        {model::Real(1), "-1.250E-1", model::Real(-0.125)},
        {model::Text("old"), "new text", model::Text("new text")},
        {model::Text("old", 8), "new text", model::Text("new text", 8)},
        {model::Text("old"), "", model::Text("")},
        {characters("xyz", 3), "\"abc\"", characters("abc", 3)},
        {characters("xyz", 3), "\"a\"", characters("a  ", 3)},
        {characters("xyz", 3), "\"\"", characters("   ", 3)},
        {characters("xyz", 3), "\"abcdef\"", characters("abc", 3)},
        {characters("xyz", 3), "\"\"\"b\"\"\"", characters("\"b\"", 3)},
        {characters("xyz", 3), "abc", characters("abc", 3)},
        {model::Set(1, 9, {4}), "[1,2,5..7]", model::Set(1, 9, {1, 2, 5, 6, 7})},
        {model::Set(1, 9, {4}), "[]", model::Set(1, 9, {})},
    };
    for (const auto& row : rows) {
        OddValue r(with(row.before));
        put(r, 2, row.text);
        EXPECT_EQ(takeError(), 0) << row.text;
        EXPECT_EQ(model::Differs(with(row.after), r.at()), "") << row.text;
    }
}

TEST_F(RecordTexts, RealsComeBackFromTheirText) {
    for (const double x : {0.0, 0.125, -10.0, 3.5e12, 1.0}) {
        OddValue r(with(model::Real(x))), back(with(model::Real(99)));
        const std::string text = textOf(r, 2);
        EXPECT_NE(text.find('E'), std::string::npos) << text;
        put(back, 2, text);
        EXPECT_EQ(model::Differs(with(model::Real(x)), back.at()), "") << text;
    }
}

TEST_F(RecordTexts, FieldsWithoutATextGiveTheConversionErrorOfTheirKind) {
    const ValueModel fields[] = {
        model::Record({model::Real(1)}),
        model::Record({model::Real(1)}, KindUnion),
        model::Array({{1, 2}}, model::Number(KindInteger, 0)),
        model::Array({{0, 2}}, model::Number(KindEnum, 65)),
        model::Array({{1, 2}, {1, 2}}, model::Number(KindEnum, 65)),
        model::Array({}, model::Number(KindEnum, 65), {}, DYNAMIC_BOUNDS),
        model::List(model::Real(0), {model::Real(1)}),
    };
    for (const ValueModel& field : fields) {
        SCOPED_TRACE(field.kind);
        OddValue r(with(field));
        EXPECT_EQ(textOf(r, 2), "");
        EXPECT_EQ(takeError(), AdtConversionError(field.kind));
        put(r, 2, "1");
        EXPECT_EQ(takeError(), AdtConversionError(field.kind));
        EXPECT_EQ(model::Differs(with(field), r.at()), "");
    }
}

TEST_F(RecordTexts, ATextThatIsNoValueChangesNothing) {
    const struct {
        ValueModel field;
        std::string_view text;
    } rows[] = {
        {model::Number(KindBoolean, 1), "maybe"}, {model::Number(KindBoolean, 1), ""},
        {model::Number(KindEnum, 9), "256"},      {model::Number(KindEnum, 9), "-1"},
        {model::Number(KindEnum, 9), "x"},        {model::Number(KindEnum, 9), ""},
        {model::Number(KindInteger, 9), "x"},     {model::Number(KindInteger, 9), "2147483648"},
        {model::Number(KindFixed, 9), "1.2.3"},   {model::Real(9), "1.0X"},
        {model::Set(1, 9, {4}), "1,2"},           {model::Set(1, 9, {4}), "[1,"},
    };
    for (const auto& row : rows) {
        OddValue r(with(row.field));
        put(r, 2, row.text);
        EXPECT_EQ(takeError(), AdtConversionError(row.field.kind)) << row.field.kind << ' ' << row.text;
        EXPECT_EQ(model::Differs(with(row.field), r.at()), "") << row.text;
    }
}

TEST_F(RecordTexts, ALongTextIsCutInAFixedString) {
    OddValue r(with(model::Text("", 4)));
    put(r, 2, "abcdef");
    EXPECT_EQ(takeError(), ERR_FIXED_STRING);
    EXPECT_EQ(model::Differs(with(model::Text("abcd", 4)), r.at()), "");
    OddValue wide(with(model::Text("abcdef")));
    String s(3);
    RecordGetAsText(record(wide), 2, s.get());
    EXPECT_EQ(takeError(), ERR_FIXED_STRING);
    EXPECT_EQ(s.view(), "abc");
}

TEST_F(RecordTexts, MembersThatDoNotFitTheSetAreReported) {
    OddValue r(with(model::Set(1, 9, {4})));
    put(r, 2, "[1,10]");
    EXPECT_EQ(takeError(), ERR_FIXED_SET);
    put(r, 2, "[1,40000]");
    EXPECT_EQ(takeError(), ERR_SET_BOUNDS);
}

TEST_F(RecordTexts, WhatIsNoRecordComesBeforeAFieldThatDoesNotExist) {
    RecordDescriptor zero{};
    const String text("1");
    for (RecordDescriptor* bad : {static_cast<RecordDescriptor*>(nullptr), &zero}) {
        String out(std::string_view("before"));
        RecordGetAsText(bad, 99, out.get());
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE);
        EXPECT_EQ(out.view(), "");
        RecordPutFromText(99, text.get(), bad);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE);
    }
    for (const Kind kind : {KindRecord, KindUnion}) {
        const ValueModel m = with(model::Real(1), kind);
        for (const std::int32_t n : {INT32_MIN, 0, 3, 49}) {
            OddValue r(m);
            EXPECT_EQ(textOf(r, n), "");
            EXPECT_EQ(takeError(), kind == KindRecord ? ERR_RECORD_TYPE : ERR_UNION_TYPE);
            put(r, n, "1");
            EXPECT_EQ(takeError(), kind == KindRecord ? ERR_RECORD_TYPE : ERR_UNION_TYPE);
            EXPECT_EQ(model::Differs(m, r.at()), "");
        }
    }
}

TEST_F(RecordTexts, WhatIsNoTextChangesNothing) {
    const ValueModel m = with(model::Text("abc"));
    OddValue r(m);
    StringDescriptor zero{}, malformed{0, 30, 0, UNBOUNDED, 0, 0};
    for (StringDescriptor* bad : {static_cast<StringDescriptor*>(nullptr), &zero, &malformed}) {
        RecordGetAsText(record(r), 2, bad);
        EXPECT_NE(takeError(), 0);
        RecordPutFromText(2, bad, record(r));
        EXPECT_NE(takeError(), 0);
        EXPECT_EQ(model::Differs(m, r.at()), "");
    }
}

TEST_F(RecordTexts, AFieldMayBeItsOwnText) {
    OddValue r(with(model::Text("abc")));
    auto* field = static_cast<StringDescriptor*>(RecordFieldAddress(record(r), 2));
    RecordGetAsText(record(r), 2, field);
    RecordPutFromText(2, field, record(r));
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(model::Differs(with(model::Text("abc")), r.at()), "");
}

TEST_F(RecordTexts, WithoutMemoryATextIsEmptyAndAFieldAsItWasOrEmpty) {
    const ValueModel fields[] = {model::Text("abc"), model::Number(KindInteger, 12345), characters("abc", 3),
                                 model::Set(1, 9, {1, 2})};
    for (const ValueModel& field : fields) {
        OddValue r(with(field));
        const std::string whole = textOf(r, 2);
        for (std::int64_t n = 0;; ++n) {
            String s(std::string_view("before"));
            FailAllocation(n);
            RecordGetAsText(record(r), 2, s.get());
            FailAllocation(-1);
            const std::int32_t error = takeError();
            EXPECT_EQ(s.view(), error == 0 ? whole : "") << field.kind;
            if (error == 0) break;
            EXPECT_EQ(error, ERR_OUT_OF_MEMORY);
            ASSERT_LT(n, 100);
        }
        const String text(whole);
        for (std::int64_t n = 0;; ++n) {
            const ValueModel old = with(model::Emptied(field));
            OddValue target(old);
            FailAllocation(n);
            RecordPutFromText(2, text.get(), record(target));
            FailAllocation(-1);
            const std::int32_t error = takeError();
            EXPECT_EQ(model::Differs(error == 0 ? with(field) : old, target.at()), "") << field.kind;
            if (error == 0) break;
            EXPECT_EQ(error, ERR_OUT_OF_MEMORY);
            ASSERT_LT(n, 100);
        }
    }
}

}  // namespace
