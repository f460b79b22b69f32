// SPDX-License-Identifier: Apache-2.0
//
// What the generic operations refuse, the check of values, memory checking, and owners.
#include "unit/kernel/adt_fixture.h"

#include "kernel/lists/lists.h"
#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/records.h"
#include "unit/kernel/values_fixture.h"

#include <gtest/gtest.h>
#include <string>

using namespace tarn;

namespace {

using namespace tarn::model;

constexpr Kind adtKinds[] = {KindString, KindRecord, KindUnion, KindSet, KindArray, KindList, KindTable};

// ---- faults ----

TEST_F(GenericOperations, AKindThatIsNoneIs764) {
    OddValue a(Text("abc")), b(Text("def"));
    for (const std::int32_t number : {INT32_MIN, -1, 0, 13, 14, 29, INT32_MAX}) {
        const auto kind = static_cast<Kind>(number);
        AdtInit(a.at(), b.at(), kind);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        AdtCopy(b.at(), a.at(), kind);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        AdtFree(a.at(), kind);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        AdtClear(a.at(), kind);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        EXPECT_FALSE(AdtCompare("EQ", a.at(), a.at(), kind));
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        EXPECT_FALSE(AdtCompare("NE", a.at(), b.at(), kind));
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        EXPECT_FALSE(AdtSameShape(a.at(), b.at(), kind));
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        EXPECT_NE(AdtCheck(a.at(), kind), "");
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(AdtTypeError(kind), ERR_UNIDENTIFIABLE);
        EXPECT_EQ(AdtConversionError(kind), ERR_UNIDENTIFIABLE);
    }
    EXPECT_EQ(Differs(Text("abc"), a.at()), "");
}

TEST_F(GenericOperations, EveryKindHasItsErrors) {
    for (std::int32_t kind = 1; kind <= 12; ++kind) {
        EXPECT_EQ(AdtTypeError(static_cast<Kind>(kind)), 750 + kind);
        EXPECT_EQ(AdtConversionError(static_cast<Kind>(kind)), 980 + kind);
    }
}

TEST_F(GenericOperations, FreeingNothingIsNoError) {
    for (const Kind kind : adtKinds) {
        AdtFree(nullptr, kind);
        OddValue zero(kind);
        AdtFree(zero.at(), kind);
        EXPECT_TRUE(zero.isZero());
        EXPECT_EQ(ErrorCell(), 0) << kind;
    }
    AdtFree(nullptr, KindNone);
    AdtFree(nullptr, static_cast<Kind>(13));
    AdtFree(nullptr, KindInteger);
    std::int32_t number = 5;
    AdtFree(&number, KindInteger);
    EXPECT_EQ(number, 5);
    EXPECT_EQ(ErrorCell(), 0);
}

// A descriptor of one kind, given as each other kind.
TEST_F(GenericOperations, ADescriptorOfAnotherKindIsThatKindsError) {
    const ValueModel models[] = {Text("abc"), person("Ada", 36), Record({Text("u")}, KindUnion),
                                 Array({{1, 2}}, Text(""), {Text("x"), Text("y")})};
    for (const ValueModel& m : models) {
        for (const Kind kind : {KindString, KindRecord, KindUnion, KindArray}) {
            if (kind == m.kind) continue;
            SCOPED_TRACE(std::to_string(m.kind) + " as " + std::to_string(kind));
            OddValue v(m);
            char target[64];
            AdtInit(target, v.at(), kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            for (std::int32_t i = 0; i < KindSize[kind]; ++i) ASSERT_EQ(target[i], 0);
            AdtCopy(v.at(), v.at(), kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            AdtCopy(v.at(), target, kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            for (const char* op : {"EQ", "NE", "GT", "LE"}) {
                EXPECT_FALSE(AdtCompare(op, v.at(), v.at(), kind)) << op;
                EXPECT_EQ(takeError(), AdtTypeError(kind)) << op;
            }
            AdtClear(v.at(), kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            EXPECT_FALSE(AdtSameShape(v.at(), v.at(), kind));
            takeError();
            EXPECT_NE(AdtCheck(v.at(), kind), "");
            AdtFree(v.at(), kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            EXPECT_EQ(Differs(m, v.at()), "");
        }
    }
}

TEST_F(GenericOperations, ATargetOfAnotherKindIsRefused) {
    OddValue text(Text("abc")), record(person("Ada", 36));
    AdtCopy(text.at(), record.at(), KindString);
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
    AdtCopy(record.at(), text.at(), KindRecord);
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
    EXPECT_EQ(Differs(Text("abc"), text.at()), "");
    EXPECT_EQ(Differs(person("Ada", 36), record.at()), "");
    EXPECT_FALSE(AdtCompare("EQ", record.at(), text.at(), KindRecord));
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
    EXPECT_FALSE(AdtCompare("NE", record.at(), text.at(), KindRecord));
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
}

TEST_F(GenericOperations, ARecordAndAUnionOfTheSameFieldsAreNotOfOneKind) {
    OddValue record(Record({Text("abc")})), other(Record({Text("abc")}, KindUnion));
    AdtCopy(record.at(), other.at(), KindRecord);
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
    AdtCopy(record.at(), other.at(), KindUnion);
    EXPECT_EQ(takeError(), ERR_UNION_TYPE);
    EXPECT_FALSE(AdtCompare("NE", record.at(), other.at(), KindRecord));
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
}

TEST_F(GenericOperations, ANullAddressIsAnErrorAndTouchesNothing) {
    const ValueModel models[] = {Number(KindInteger, 5), Text("abc"), person("Ada", 36)};
    for (const ValueModel& m : models) {
        OddValue v(m);
        AdtInit(nullptr, v.at(), m.kind);
        EXPECT_NE(takeError(), 0);
        AdtCopy(nullptr, v.at(), m.kind);
        EXPECT_NE(takeError(), 0);
        AdtCopy(v.at(), nullptr, m.kind);
        EXPECT_NE(takeError(), 0);
        AdtClear(nullptr, m.kind);
        EXPECT_NE(takeError(), 0);
        EXPECT_FALSE(AdtCompare("NE", nullptr, v.at(), m.kind));
        EXPECT_NE(takeError(), 0);
        EXPECT_FALSE(AdtCompare("NE", v.at(), nullptr, m.kind));
        EXPECT_NE(takeError(), 0);
        EXPECT_EQ(Differs(m, v.at()), "");
        EXPECT_NE(AdtCheck(nullptr, m.kind), "");
    }
}

TEST_F(GenericOperations, AZeroDescriptorIsNoSource) {
    for (const Kind kind : {KindString, KindRecord, KindUnion, KindArray}) {
        OddValue zero(kind), target(kind);
        AdtInit(target.at(), zero.at(), kind);
        EXPECT_EQ(takeError(), AdtTypeError(kind)) << kind;
        EXPECT_TRUE(target.isZero());
        AdtCopy(zero.at(), target.at(), kind);
        EXPECT_EQ(takeError(), AdtTypeError(kind)) << kind;
        EXPECT_FALSE(AdtCompare("EQ", zero.at(), target.at(), kind));
        EXPECT_EQ(takeError(), AdtTypeError(kind)) << kind;
        EXPECT_EQ(AdtCheck(zero.at(), kind), "");
    }
}

TEST_F(GenericOperations, AnUnopenedFileListWithinAValueIsNotCompared) {
    ListValue inFile;
    ListInit(inFile.get(), UNBOUNDED, nullptr, KindInteger, true);
    RecordValue a, b;
    for (RecordValue* record : {&a, &b}) {
        RecordInit(record->get(), TagRecord, {});
        RecordAppend(record->get(), inFile.get(), KindList);
    }
    for (const char* op : {"EQ", "NE"}) {
        EXPECT_FALSE(AdtCompare(op, a.get(), b.get(), KindRecord)) << op;
        EXPECT_EQ(takeError(), ERR_FILE_NOT_OPEN) << op;
    }
}

TEST_F(GenericOperations, ValuesAreCopiedUpToABoundOfNesting) {
    SetMemoryChecking(false);
    RecordValue empty;
    RecordInit(empty.get(), TagRecord, {});
    for (const std::int32_t levels : {MaxNesting - 1, MaxNesting + 20}) {
        RecordValue nested, copy;
        AdtInit(nested.get(), empty.get(), KindRecord);
        RecordDescriptor* inner = nested.get();
        for (std::int32_t level = 1; level < levels; ++level) {
            RecordAppend(inner, empty.get(), KindRecord);
            inner = static_cast<RecordDescriptor*>(RecordFieldAddress(inner, 1));
        }
        EXPECT_EQ(takeError(), 0);
        AdtCopy(nested.get(), copy.get(), KindRecord);
        EXPECT_EQ(takeError(), levels <= MaxNesting ? 0 : int{ERR_UNIDENTIFIABLE});
        EXPECT_EQ(copy.get()->data != 0, levels <= MaxNesting);
        EXPECT_EQ(AdtCheck(nested.get(), KindRecord), "");
    }
}

TEST_F(GenericOperations, AnUnopenedFileListIsNotCompared) {
    ListDescriptor a{0, KindInteger + TagInFile, 0, UNBOUNDED, 0, 0};
    ASSERT_TRUE(AllocateData(a, 255));
    std::memset(At(a.data), 0, 255);
    for (const char* op : {"EQ", "NE"}) {
        EXPECT_FALSE(AdtCompare(op, &a, &a, KindList));
        EXPECT_EQ(takeError(), ERR_FILE_NOT_OPEN) << op;
    }
    FreeData(a);
}

// ---- the check ----

TEST_F(GenericOperations, TheCheckFindsWhatIsWrong) {
    const ValueModel m =
        Record({Number(KindBoolean, 1), Text("abc"), Array({{1, 2}}, Text(""), {Text("x"), Text("y")})});
    OddValue v(m);
    auto* r = v.as<RecordDescriptor>();
    const auto wrong = [&](void* word, std::int32_t value) {
        const auto old = ReadAt<std::int32_t>(word);
        WriteAt(word, value);
        EXPECT_NE(AdtCheck(v.at(), KindRecord), "") << value << " for " << old;
        WriteAt(word, old);
        EXPECT_EQ(AdtCheck(v.at(), KindRecord), "");
    };
    auto* text = static_cast<char*>(RecordFieldAddress(r, 2));
    auto* array = static_cast<char*>(RecordFieldAddress(r, 3));
    char* element = At(ReadAt<ArrayDescriptor>(array).data);
    wrong(&r->size, r->size - 1);
    wrong(&r->tag, 13);
    wrong(text, 4);              // its size
    wrong(text + 16, 4);         // its length
    wrong(text + 16, -1);        // its length
    wrong(text + 4, 13);         // its tag
    wrong(text + 8, 0);          // its data
    wrong(array, 47);            // its size
    wrong(array + 16, 3);        // its lower bound
    wrong(array + 20, 3);        // its upper bound
    wrong(array + 24, 1);        // half a second dimension
    wrong(array + 4, KindReal);  // its element kind
    wrong(array + 40, 0);        // its prototype
    wrong(element + 4, 13);      // the tag of its first element
    wrong(element + 16, 7);      // the length of its first element
    wrong(&r->kinds, 0x16);      // a field less than the size says
}

// ---- memory checking on whole values ----

TEST_F(GenericOperations, ALeftValueIsCountedWithAllItsBlocks) {
    // 24 bytes of a record, 24 of its text.
    RecordDescriptor r;
    Make(Record({Text("twenty-four characters..")}), &r);
    EXPECT_EQ(CountLeaks().bytes, 48);
    EXPECT_EQ(CountLeaks().blocks, 2);
    EXPECT_EQ(endOf([] { ProcessStop(); }), 0);
    ASSERT_FALSE(log().empty());
    EXPECT_EQ(log()[0], "fatal|Error 826|Some memory was not freed\n\n(48 byte(s) in 2 block(s))\n");
    ClearError();
    AdtFree(&r, KindRecord);
    EXPECT_EQ(LiveBlocks(), 0);
}

// The tail guard stands right behind the bytes of a block.
TEST_F(GenericOperations, AnOverwrittenGuardShowsWhenTheValueIsFreed) {
    const ValueModel m = Array({{1, 3}}, Number(KindBoolean, 0));
    ArrayDescriptor a;
    Make(m, &a);
    Offset block = a.data;
    const std::int32_t size = a.size;
    const char guard = At(block)[size];
    At(block)[size] = 'x';
    EXPECT_EQ(CountLeaks().bytes, -1);
    AdtFree(&a, KindArray);
    EXPECT_EQ(takeError(), ERR_BLOCK_OVERWRITTEN);
    EXPECT_EQ(LiveBlocks(), 1);
    At(block)[size] = guard;
    Free(block, size);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(GenericOperations, AnOverwrittenGuardDeepInAValueShowsAndTheRestIsFreed) {
    RecordDescriptor r;
    Make(
        Record({Number(KindBoolean, 1), Array({{1, 2}}, Text(""), {Text("abc"), Text("def")}), Text("last")}),
        &r);
    const auto array = ReadAt<ArrayDescriptor>(RecordFieldAddress(&r, 2));
    const auto text = ReadAt<StringDescriptor>(At(array.data));
    Offset block = text.data;
    const char guard = At(block)[3];
    At(block)[3] = 'x';
    AdtFree(&r, KindRecord);
    EXPECT_EQ(takeError(), ERR_BLOCK_OVERWRITTEN);
    EXPECT_EQ(LiveBlocks(), 1);
    At(block)[3] = guard;
    Free(block, 3);
    EXPECT_EQ(LiveBlocks(), 0);
}

// ---- the owning types ----

TEST_F(GenericOperations, OwnersFreeAndMove) {
    ArrayValue a, b;
    Make(Array({{1, 2}}, Text(""), {Text("x"), Text("y")}), a.get());
    const ArrayDescriptor was = *a.get();
    b = std::move(a);
    EXPECT_EQ(b.get()->data, was.data);
    EXPECT_EQ(a.get()->data, 0U);
    EXPECT_EQ(a.get()->tag, 0);
    ArrayValue c(std::move(b));
    EXPECT_EQ(c.get()->data, was.data);
    Make(Array({{1, 2}}, Text(""), {Text("x"), Text("y")}), b.get());
    c = std::move(b);
    EXPECT_NE(c.get()->data, was.data);
    ArrayValue& same = c;
    c = std::move(same);
    EXPECT_EQ(Differs(Array({{1, 2}}, Text(""), {Text("x"), Text("y")}), c.get()), "");
}

TEST_F(GenericOperations, AUnionHasAnOwnerOfItsOwn) {
    UnionValue u;
    Make(Record({Text("abc"), Real(1)}, KindUnion), u.get());
    UnionValue other = std::move(u);
    EXPECT_EQ(u.get()->tag, 0);
    EXPECT_EQ(AdtCheck(other.get(), KindUnion), "");
}

}  // namespace
