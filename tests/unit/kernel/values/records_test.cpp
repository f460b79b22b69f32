// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/records.h"

#include "kernel/run/errors.h"
#include "kernel/values/strings.h"
#include "unit/kernel/values_fixture.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

using namespace tarn;

namespace {

bool isZero(const RecordDescriptor& r) {
    constexpr RecordDescriptor zero{};
    return std::memcmp(&r, &zero, sizeof r) == 0;
}

RecordDescriptor* record(OddValue& value) {
    return value.as<RecordDescriptor>();
}

// A boolean first, so that all that follows stands at odd offsets.
const ValueModel& everyKind() {
    static const ValueModel m = model::Record({
        model::Number(KindBoolean, 1),
        model::Number(KindEnum, 250),
        model::Number(KindInteger, INT32_MIN),
        model::Number(KindFixed, INT64_MAX - 1),
        model::Real(-2.5e-300),
        model::Text("unbounded"),
        model::Text("fixed", 9),
        model::Record({model::Number(KindBoolean, 1), model::Text("inner")}),
        model::Record({model::Text("variant"), model::Real(1)}, KindUnion),
        model::Array({{-1, 1}}, model::Text(""), {model::Text("p"), model::Text("q"), model::Text("")}),
        model::Number(KindBoolean, 1),
    });
    return m;
}

class Records : public Values {};

// ---- field kinds ----

TEST_F(Records, FieldKindsAreNibblesTheFirstInTheHighOne) {
    const FieldKinds kinds = MakeFieldKinds({KindString, KindInteger, KindTable});
    EXPECT_EQ(kinds.nibbles[0], 0x63);
    EXPECT_EQ(kinds.nibbles[1], 0xC0);
    for (std::size_t i = 2; i < 24; ++i) EXPECT_EQ(kinds.nibbles[i], 0);
    EXPECT_EQ(FieldCountOf(kinds), 3);
    EXPECT_EQ(FieldBytesOf(kinds), 24 + 4 + 24);
    EXPECT_EQ(FieldKindAt(kinds, 1), KindString);
    EXPECT_EQ(FieldKindAt(kinds, 3), KindTable);
    for (const std::int32_t n : {INT32_MIN, -1, 0, 4, 48, 49, INT32_MAX})
        EXPECT_EQ(FieldKindAt(kinds, n), KindNone) << n;
}

TEST_F(Records, FortyEightFieldsFillTheMap) {
    FieldKinds kinds{};
    EXPECT_EQ(FieldCountOf(kinds), 0);
    EXPECT_EQ(FieldBytesOf(kinds), 0);
    for (std::int32_t n = 1; n <= 48; ++n) {
        SetFieldKindAt(kinds, n, static_cast<Kind>((n - 1) % 12 + 1));
        EXPECT_EQ(FieldCountOf(kinds), n);
    }
    for (std::int32_t n = 1; n <= 48; ++n) EXPECT_EQ(FieldKindAt(kinds, n), (n - 1) % 12 + 1);
    EXPECT_EQ(FieldBytesOf(kinds), 4 * (1 + 1 + 4 + 8 + 8 + 24 + 36 + 36 + 44 + 44 + 24 + 24));
    EXPECT_EQ(FieldKindAt(kinds, 49), KindNone);
    SetFieldKindAt(kinds, 2, KindArray);
    EXPECT_EQ(kinds.nibbles[0], 0x1A);
}

// ---- making ----

TEST_F(Records, ARecordTakesTheSumOfItsFieldsAndIsZero) {
    for (const std::int32_t tag : {TagRecord, TagUnion}) {
        RecordDescriptor r;
        std::memset(&r, 0xAA, sizeof r);
        const FieldKinds kinds = MakeFieldKinds({KindBoolean, KindReal, KindString, KindArray});
        RecordInit(&r, tag, kinds);
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(r.tag, tag);
        EXPECT_EQ(r.size, 1 + 8 + 24 + 44);
        EXPECT_EQ(std::memcmp(&r.kinds, &kinds, sizeof kinds), 0);
        for (std::int32_t i = 0; i < r.size; ++i) EXPECT_EQ(At(r.data)[i], 0);
        EXPECT_EQ(RecordFieldCount(&r), 4);
        EXPECT_EQ(CountLeaks().bytes, 77);
        EXPECT_EQ(CountLeaks().blocks, 1);
        EXPECT_EQ(AdtCheck(&r, tag == TagRecord ? KindRecord : KindUnion), "");
        AdtFree(&r, tag == TagRecord ? KindRecord : KindUnion);
        EXPECT_TRUE(isZero(r));
    }
}

TEST_F(Records, ARecordWithoutFieldsHasNoBlock) {
    RecordDescriptor r;
    RecordInit(&r, TagRecord, FieldKinds{});
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(r.tag, TagRecord);
    EXPECT_EQ(r.size, 0);
    EXPECT_EQ(r.data, 0U);
    EXPECT_EQ(RecordFieldCount(&r), 0);
    EXPECT_EQ(KindOf(&r), KindRecord);
    EXPECT_EQ(AdtCheck(&r, KindRecord), "");
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Records, ImpossibleTagsAndKindsLeaveAZeroDescriptor) {
    for (const std::int32_t tag : {0, 7, 13, 16, 29, -1}) {
        RecordDescriptor r;
        std::memset(&r, 0xAA, sizeof r);
        RecordInit(&r, tag, MakeFieldKinds({KindInteger}));
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << tag;
        EXPECT_TRUE(isZero(r)) << tag;
    }
    for (const int nibble : {13, 14, 15}) {
        FieldKinds kinds = MakeFieldKinds({KindInteger, KindReal});
        kinds.nibbles[1] = static_cast<std::uint8_t>(nibble << 4);
        RecordDescriptor r;
        std::memset(&r, 0xAA, sizeof r);
        RecordInit(&r, TagRecord, kinds);
        EXPECT_EQ(takeError(), ERR_RECORD_TYPE) << nibble;
        EXPECT_TRUE(isZero(r));
        RecordInit(&r, TagUnion, kinds);
        EXPECT_EQ(takeError(), ERR_UNION_TYPE) << nibble;
        EXPECT_TRUE(isZero(r));
        RecordInit(&r, 13, kinds);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE);
    }
}

TEST_F(Records, WithoutMemoryNoRecordIsMade) {
    RecordDescriptor r;
    std::memset(&r, 0xAA, sizeof r);
    FailAllocation(0);
    RecordInit(&r, TagRecord, MakeFieldKinds({KindInteger}));
    EXPECT_EQ(takeError(), ERR_OUT_OF_MEMORY);
    EXPECT_TRUE(isZero(r));
}

// ---- fields ----

TEST_F(Records, FieldsStandBehindEachOtherWithoutGaps) {
    OddValue r(everyKind());
    EXPECT_EQ(RecordFieldCount(record(r)), 11);
    char* at = At(record(r)->data);
    for (std::int32_t n = 1; n <= 11; ++n) {
        const Kind kind = everyKind().parts[static_cast<std::size_t>(n - 1)].kind;
        EXPECT_EQ(RecordFieldKind(record(r), n), kind) << n;
        EXPECT_EQ(RecordFieldAddress(record(r), n), at) << n;
        EXPECT_EQ(RecordFieldAddress(static_cast<const RecordDescriptor*>(record(r)), n), at) << n;
        at += KindSize[kind];
    }
    EXPECT_EQ(at, At(record(r)->data) + record(r)->size);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Records, AFieldThatDoesNotExistHasNoAddress) {
    OddValue r(everyKind());
    for (const std::int32_t n : {INT32_MIN, -1, 0, 12, 48, 49, INT32_MAX}) {
        EXPECT_EQ(RecordFieldAddress(record(r), n), nullptr) << n;
        EXPECT_EQ(ErrorCell(), 0) << n;
        EXPECT_EQ(RecordFieldKind(record(r), n), KindNone) << n;
        ClearError();
    }
}

TEST_F(Records, WhatIsNoRecordHasNoFields) {
    RecordDescriptor zero{}, table{0, TagTable, 0, {}}, string{0, TagString, 0, {}};
    for (RecordDescriptor* bad : {static_cast<RecordDescriptor*>(nullptr), &zero, &table, &string}) {
        EXPECT_EQ(RecordFieldCount(bad), 0);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE);
        EXPECT_EQ(RecordFieldKind(bad, 1), KindNone);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE);
        EXPECT_EQ(RecordFieldAddress(bad, 1), nullptr);
        ClearError();
    }
}

TEST_F(Records, EveryKindIsPutAndGotByCopyAtOddAddresses) {
    for (const Kind kind : {KindRecord, KindUnion}) {
        const ValueModel whole = model::Record(everyKind().parts, kind);
        OddValue r(model::Emptied(whole));
        for (std::size_t i = 0; i < whole.parts.size(); ++i) {
            const ValueModel& field = whole.parts[i];
            const auto n = static_cast<std::int32_t>(i + 1);
            OddValue in(field), out(model::Emptied(field));
            RecordPut(record(r), n, in.at(), field.kind);
            RecordGet(record(r), n, out.at(), field.kind);
            EXPECT_EQ(ErrorCell(), 0) << n;
            EXPECT_EQ(model::Differs(field, out.at()), "") << n;
            EXPECT_EQ(model::Differs(field, in.at()), "") << n;
        }
        EXPECT_EQ(model::Differs(whole, r.at()), "");
        EXPECT_EQ(AdtCheck(r.at(), kind), "");
    }
}

TEST_F(Records, AFieldMayBePutInItself) {
    OddValue r(everyKind());
    for (std::int32_t n = 1; n <= 11; ++n) {
        const Kind kind = RecordFieldKind(record(r), n);
        RecordPut(record(r), n, RecordFieldAddress(record(r), n), kind);
        RecordGet(record(r), n, RecordFieldAddress(record(r), n), kind);
    }
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(model::Differs(everyKind(), r.at()), "");
}

TEST_F(Records, TheFieldsOfABoundedShapeKeepTheirBounds) {
    OddValue r(model::Record({model::Text("", 4), model::Array({{1, 2}}, model::Number(KindInteger, 0))}));
    const String text("abcdef");
    RecordPut(record(r), 1, text.get(), KindString);
    EXPECT_EQ(takeError(), ERR_FIXED_STRING);
    EXPECT_EQ(StringView(static_cast<StringDescriptor*>(RecordFieldAddress(record(r), 1))), "abcd");
    OddValue three(model::Array({{1, 3}}, model::Number(KindInteger, 0)));
    RecordPut(record(r), 2, three.at(), KindArray);
    EXPECT_EQ(takeError(), ERR_FIXED_ARRAY);
    String small(2);
    RecordGet(record(r), 1, small.get(), KindString);
    EXPECT_EQ(takeError(), ERR_FIXED_STRING);
    EXPECT_EQ(small.view(), "ab");
}

// ---- the order of checks ----

// Every set of faults at once: the first in the order is what is reported.
TEST_F(Records, TheFirstFaultOfAnAccessIsReported) {
    enum Fault { NoRecord = 1, Value = 2, Field = 4, Type = 8, AllFaults = 16 };
    for (const Kind kind : {KindRecord, KindUnion}) {
        const std::int32_t errors[] = {ERR_UNIDENTIFIABLE, ERR_COMPONENT_INVALID,
                                       kind == KindRecord ? ERR_RECORD_TYPE : ERR_UNION_TYPE,
                                       ERR_COMPONENT_TYPE};
        for (const bool reads : {true, false}) {
            for (int faults = 1; faults < AllFaults; ++faults) {
                SCOPED_TRACE((reads ? "get with faults " : "put with faults ") + std::to_string(faults));
                const ValueModel m = model::Record({model::Number(KindInteger, 5), model::Text("abc")}, kind);
                OddValue r(m);
                RecordDescriptor* at = (faults & NoRecord) != 0 ? nullptr : record(r);
                double real = 9;
                std::int32_t integer = 9;
                void* v = (faults & Type) != 0 ? static_cast<void*>(&real) : &integer;
                if ((faults & Value) != 0) v = nullptr;
                const std::int32_t n = (faults & Field) != 0 ? 3 : 1;
                const Kind type = (faults & Type) != 0 ? KindReal : KindInteger;
                reads ? RecordGet(at, n, v, type) : RecordPut(at, n, v, type);
                int first = 0;
                while ((faults >> first & 1) == 0) ++first;
                EXPECT_EQ(takeError(), errors[first]);
                EXPECT_EQ(model::Differs(m, r.at()), "");
                const bool cleared = reads && (faults & Value) == 0;
                EXPECT_EQ(integer, cleared && (faults & Type) == 0 ? 0 : 9);
                EXPECT_EQ(real, cleared && (faults & Type) != 0 ? 0 : 9);
            }
        }
    }
}

TEST_F(Records, FieldNumbersOutsideTheRecordAreItsKindsError) {
    for (const Kind kind : {KindRecord, KindUnion}) {
        OddValue r(model::Record({model::Number(KindInteger, 5)}, kind));
        for (const std::int32_t n : {INT32_MIN, -1, 0, 2, 48, 49, INT32_MAX}) {
            std::int32_t value = 9;
            RecordPut(record(r), n, &value, KindInteger);
            EXPECT_EQ(takeError(), kind == KindRecord ? ERR_RECORD_TYPE : ERR_UNION_TYPE) << n;
            RecordGet(record(r), n, &value, KindInteger);
            EXPECT_EQ(takeError(), kind == KindRecord ? ERR_RECORD_TYPE : ERR_UNION_TYPE) << n;
            EXPECT_EQ(value, 0);
        }
    }
}

TEST_F(Records, WhatIsNoRecordOrUnionIs764) {
    RecordDescriptor zero{}, list{0, KindInteger, 0, {}}, unused{0, 13, 0, {}}, table{0, TagTable, 0, {}},
        string{0, TagString, 0, {}};
    for (RecordDescriptor* bad :
         {static_cast<RecordDescriptor*>(nullptr), &zero, &list, &unused, &table, &string}) {
        std::int32_t value = 9;
        RecordPut(bad, 1, &value, KindInteger);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE);
        RecordAppend(bad, &value, KindInteger);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE);
        RecordGet(bad, 1, &value, KindInteger);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE);
        EXPECT_EQ(value, 0);
    }
}

TEST_F(Records, AValueThatIsNoneIs610) {
    OddValue r(model::Record({model::Text("abc")}));
    std::int32_t integer = 5;
    StringDescriptor badTag{0, 30, 0, UNBOUNDED, 0, 0}, badSize{-1, 29, 0, UNBOUNDED, 0, 0};
    const struct {
        void* value;
        std::int32_t kind;
    } rows[] = {{nullptr, KindString}, {&integer, 0},         {&integer, 13},
                {&integer, -1},        {&badTag, KindString}, {&badSize, KindString}};
    for (const auto& row : rows) {
        const auto kind = static_cast<Kind>(row.kind);
        const std::vector<std::function<void()>> calls = {
            [&] { RecordPut(record(r), 1, row.value, kind); },
            [&] { RecordGet(record(r), 1, row.value, kind); },
            [&] { RecordAppend(record(r), row.value, kind); },
        };
        for (const auto& call : calls) {
            call();
            EXPECT_EQ(takeError(), ERR_COMPONENT_INVALID) << row.kind;
        }
    }
    EXPECT_EQ(integer, 5);
    EXPECT_EQ(model::Differs(model::Record({model::Text("abc")}), r.at()), "");
}

TEST_F(Records, ADescriptorOfAnotherKindThanItSaysChangesNothing) {
    OddValue r(model::Record({model::Text("abc"), model::Record({model::Real(1)})}));
    StringDescriptor zero{};
    RecordPut(record(r), 1, &zero, KindString);
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
    const String text("x");
    RecordPut(record(r), 2, text.get(), KindRecord);
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
    OddValue other(model::Record({model::Number(KindInteger, 1)}));
    RecordPut(record(r), 2, other.at(), KindRecord);
    EXPECT_EQ(takeError(), ERR_COMPONENT_TYPE);
    EXPECT_EQ(model::Differs(model::Record({model::Text("abc"), model::Record({model::Real(1)})}), r.at()),
              "");
}

TEST_F(Records, AFailedReadingEmptiesItsOutputAndKeepsTheShapeOfIt) {
    OddValue r(model::Record({model::Number(KindBoolean, 1)}));
    for (const ValueModel& m : everyKind().parts) {
        for (const std::int32_t n : {1, 2}) {
            if (m.kind == KindBoolean && n == 1) continue;
            OddValue out(m);
            RecordGet(record(r), n, out.at(), m.kind);
            EXPECT_EQ(takeError(), n == 2 ? ERR_RECORD_TYPE : ERR_COMPONENT_TYPE);
            EXPECT_EQ(model::Differs(model::Emptied(m), out.at()), "");
        }
        OddValue out(m);
        RecordGet(nullptr, 1, out.at(), m.kind);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE);
        EXPECT_EQ(model::Differs(model::Emptied(m), out.at()), "");
    }
}

// ---- appending ----

TEST_F(Records, ARecordGrowsFromNothingFieldByField) {
    for (const Kind kind : {KindRecord, KindUnion}) {
        OddValue r(model::Record({}, kind));
        std::vector<ValueModel> fields;
        for (const ValueModel& field : everyKind().parts) {
            OddValue v(field);
            RecordAppend(record(r), v.at(), field.kind);
            EXPECT_EQ(ErrorCell(), 0);
            fields.push_back(field);
            ASSERT_EQ(model::Differs(model::Record(fields, kind), r.at()), "");
            EXPECT_EQ(model::Differs(field, v.at()), "");
            EXPECT_EQ(AdtCheck(r.at(), kind), "");
        }
        const model::HeapUse use = model::UseOf(model::Record(fields, kind));
        EXPECT_EQ(CountLeaks().bytes, use.bytes);
        EXPECT_EQ(CountLeaks().blocks, use.blocks);
    }
}

TEST_F(Records, AFortyNinthFieldIsRefused) {
    for (const Kind kind : {KindRecord, KindUnion}) {
        OddValue r(model::Record({}, kind));
        std::vector<ValueModel> fields;
        for (std::int32_t n = 1; n <= 48; ++n) {
            RecordAppend(record(r), &n, KindInteger);
            fields.push_back(model::Number(KindInteger, n));
        }
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(RecordFieldCount(record(r)), 48);
        const std::int32_t value = 49;
        RecordAppend(record(r), &value, KindInteger);
        EXPECT_EQ(takeError(), kind == KindRecord ? ERR_RECORD_TYPE : ERR_UNION_TYPE);
        EXPECT_EQ(model::Differs(model::Record(fields, kind), r.at()), "");
        RecordAppend(record(r), nullptr, KindInteger);  // the value is looked at first
        EXPECT_EQ(takeError(), ERR_COMPONENT_INVALID);
    }
}

TEST_F(Records, AnAppendedFieldTakesTheShapeOfItsValue) {
    OddValue r(model::Record({}));
    String text(5);
    text.assign("abc");
    RecordAppend(record(r), text.get(), KindString);
    EXPECT_EQ(model::Differs(model::Record({model::Text("abc", 5)}), r.at()), "");
    text.assign("other");
    EXPECT_EQ(model::Differs(model::Record({model::Text("abc", 5)}), r.at()), "");
}

TEST_F(Records, AValueOfAnotherKindThanItSaysIsNotAppended) {
    const ValueModel m = model::Record({model::Number(KindInteger, 1)});
    const ValueModel values[] = {model::Text("abc"), model::Record({model::Text("r")}),
                                 model::Set(1, 9, {1, 2}), model::Array({{1, 2}}, model::Real(0))};
    for (const ValueModel& value : values) {
        for (const Kind kind : {KindString, KindRecord, KindUnion, KindSet, KindArray, KindList}) {
            if (kind == value.kind) continue;
            SCOPED_TRACE(std::to_string(value.kind) + " as " + std::to_string(kind));
            OddValue r(m), v(value);
            RecordAppend(record(r), v.at(), kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            EXPECT_EQ(model::Differs(m, r.at()), "");
        }
    }
}

TEST_F(Records, AFieldAndTheRecordItselfMayBeAppended) {
    const ValueModel m = model::Record({model::Text("abc"), model::Number(KindInteger, 5)});
    OddValue r(m);
    RecordAppend(record(r), RecordFieldAddress(record(r), 1), KindString);
    EXPECT_EQ(ErrorCell(), 0);
    const ValueModel three =
        model::Record({model::Text("abc"), model::Number(KindInteger, 5), model::Text("abc")});
    EXPECT_EQ(model::Differs(three, r.at()), "");
    RecordAppend(record(r), r.at(), KindRecord);
    EXPECT_EQ(ErrorCell(), 0);
    ValueModel nested = three;
    nested.parts.push_back(three);
    EXPECT_EQ(model::Differs(nested, r.at()), "");
}

TEST_F(Records, WithoutMemoryNothingIsAppended) {
    for (const ValueModel& field : everyKind().parts) {
        const ValueModel m = model::Record({model::Number(KindBoolean, 1), model::Text("abc")});
        OddValue v(field);
        failEveryRequest([&] { return std::make_unique<OddValue>(m); },
                         [&](auto& r) { RecordAppend(record(*r), v.at(), field.kind); },
                         [&](auto& r, bool failed) {
                             ValueModel longer = m;
                             longer.parts.push_back(field);
                             EXPECT_EQ(model::Differs(failed ? m : longer, r->at()), "");
                         });
    }
}

TEST_F(Records, WithoutMemoryPuttingAndGettingStaySound) {
    for (std::int32_t n = 6; n <= 10; ++n) {
        const ValueModel& field = everyKind().parts[static_cast<std::size_t>(n - 1)];
        if (field.kind == KindString && field.maxlength != UNBOUNDED) continue;  // asks for nothing
        OddValue in(field), source(everyKind());
        failEveryRequest([&] { return std::make_unique<OddValue>(model::Emptied(everyKind())); },
                         [&](auto& r) { RecordPut(record(*r), n, in.at(), field.kind); },
                         [&](auto& r, bool failed) {
                             EXPECT_EQ(AdtCheck(r->at(), KindRecord), "");
                             if (!failed) {
                                 EXPECT_EQ(model::Differs(field, RecordFieldAddress(record(*r), n)), "");
                             }
                         });
        failEveryRequest([&] { return std::make_unique<OddValue>(model::Emptied(field)); },
                         [&](auto& out) { RecordGet(record(source), n, out->at(), field.kind); },
                         [&](auto& out, bool failed) {
                             EXPECT_EQ(AdtCheck(out->at(), field.kind), "");
                             if (!failed) {
                                 EXPECT_EQ(model::Differs(field, out->at()), "");
                             }
                         });
        EXPECT_EQ(model::Differs(everyKind(), source.at()), "");
    }
}

// ---- whole records ----

TEST_F(Records, CopyAndFreeServeRecordsAndUnions) {
    for (const Kind kind : {KindRecord, KindUnion}) {
        const ValueModel m = model::Record(everyKind().parts, kind);
        OddValue source(m), target(kind);
        RecordCopy(record(source), record(target));
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(model::Differs(m, target.at()), "");
        RecordFree(record(source));
        EXPECT_TRUE(source.isZero());
        RecordFree(record(source));
        RecordFree(nullptr);
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(model::Differs(m, target.at()), "");
    }
}

}  // namespace
