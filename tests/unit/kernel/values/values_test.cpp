// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/values.h"

#include "kernel/run/errors.h"
#include "unit/kernel/values_fixture.h"

#include <cstddef>
#include <gtest/gtest.h>

using namespace tarn;

namespace {

using ValueLayout = Values;

TEST_F(ValueLayout, EveryKindHasItsNumberAndItsSize) {
    constexpr struct {
        Kind kind;
        std::int32_t number, size;
    } rows[] = {{KindNone, 0, 0},   {KindBoolean, 1, 1}, {KindEnum, 2, 1},    {KindInteger, 3, 4},
                {KindFixed, 4, 8},  {KindReal, 5, 8},    {KindString, 6, 24}, {KindRecord, 7, 36},
                {KindUnion, 8, 36}, {KindSet, 9, 44},    {KindArray, 10, 44}, {KindList, 11, 24},
                {KindTable, 12, 24}};
    EXPECT_EQ(KindCount, 13);
    for (const auto& row : rows) {
        EXPECT_EQ(row.kind, row.number);
        EXPECT_EQ(KindSize[row.kind], row.size) << row.number;
    }
}

TEST_F(ValueLayout, TheSentinelsAreDistinctFromEachOtherAndFromBounds) {
    EXPECT_EQ(UNBOUNDED, -1000000);
    EXPECT_EQ(DYNAMIC_BOUNDS, -1000001);
    EXPECT_EQ(NO_DIMENSION, -999999);
    EXPECT_LT(NO_DIMENSION, LowestBound);
    EXPECT_EQ(LowestBound, -32768);
    EXPECT_EQ(HighestBound, 32767);
}

TEST_F(ValueLayout, EveryDescriptorBeginsWithTheSameWords) {
    EXPECT_EQ(offsetof(DescriptorHead, size), 0U);
    EXPECT_EQ(offsetof(DescriptorHead, tag), 4U);
    EXPECT_EQ(offsetof(DescriptorHead, data), 8U);
    EXPECT_EQ(offsetof(DescriptorHead, maxlength), 12U);
#define SAME_HEAD(Descriptor)                                                                                \
    EXPECT_EQ(offsetof(Descriptor, size), 0U);                                                               \
    EXPECT_EQ(offsetof(Descriptor, tag), 4U);                                                                \
    EXPECT_EQ(offsetof(Descriptor, data), 8U);                                                               \
    EXPECT_EQ(alignof(Descriptor), 1U)
    SAME_HEAD(StringDescriptor);
    SAME_HEAD(RecordDescriptor);
    SAME_HEAD(SetDescriptor);
    SAME_HEAD(ArrayDescriptor);
    SAME_HEAD(ListDescriptor);
    SAME_HEAD(TableDescriptor);
#undef SAME_HEAD
    EXPECT_EQ(offsetof(StringDescriptor, maxlength), 12U);
    EXPECT_EQ(offsetof(SetDescriptor, maxlength), 12U);
    EXPECT_EQ(offsetof(ArrayDescriptor, maxlength), 12U);
    EXPECT_EQ(offsetof(ListDescriptor, maxlength), 12U);
    EXPECT_EQ(offsetof(TableDescriptor, maxlength), 12U);
}

TEST_F(ValueLayout, TheWordsBehindTheHeadStandInTheOrderOfTheirKind) {
    EXPECT_EQ(offsetof(StringDescriptor, length), 16U);
    EXPECT_EQ(offsetof(StringDescriptor, reserved), 20U);
    EXPECT_EQ(offsetof(RecordDescriptor, kinds), 12U);
    EXPECT_EQ(sizeof(FieldKinds), 24U);
    EXPECT_EQ(offsetof(SetDescriptor, lower), 16U);
    EXPECT_EQ(offsetof(SetDescriptor, upper), 20U);
    EXPECT_EQ(offsetof(SetDescriptor, unused), 24U);
    EXPECT_EQ(offsetof(SetDescriptor, reserved), 40U);
    EXPECT_EQ(offsetof(ArrayDescriptor, bounds), 16U);
    EXPECT_EQ(offsetof(ArrayBounds, upper), 4U);
    EXPECT_EQ(sizeof(ArrayBounds), 8U);
    EXPECT_EQ(offsetof(ArrayDescriptor, prototype), 40U);
    EXPECT_EQ(offsetof(ListDescriptor, count), 16U);
    EXPECT_EQ(offsetof(ListDescriptor, prototype), 20U);
    EXPECT_EQ(offsetof(TableDescriptor, count), 16U);
    EXPECT_EQ(offsetof(TableDescriptor, reserved), 20U);
}

TEST_F(ValueLayout, KindsOneToTwelveAreValuesAndSixToTwelveHaveDescriptors) {
    for (const std::int32_t kind : {INT32_MIN, -1, 0, 13, 16, INT32_MAX}) {
        EXPECT_FALSE(IsValueKind(kind)) << kind;
        EXPECT_FALSE(IsAdtKind(kind)) << kind;
    }
    for (std::int32_t kind = 1; kind <= 12; ++kind) {
        EXPECT_TRUE(IsValueKind(kind)) << kind;
        EXPECT_EQ(IsAdtKind(kind), kind >= 6) << kind;
    }
}

TEST_F(ValueLayout, ADescriptorIsWellFormedByTagAndSizeAlone) {
    constexpr struct {
        std::int32_t tag, size;
        bool good;
    } rows[] = {{0, 0, true},          {1, 0, true},          {13, 0, true},   {28, 5, true},
                {29, 0, true},         {29, INT32_MAX, true}, {30, 0, false},  {-1, 0, false},
                {INT32_MIN, 0, false}, {INT32_MAX, 0, false}, {14, -1, false}, {29, INT32_MIN, false},
                {30, -1, false}};
    for (const auto& row : rows) {
        const StringDescriptor d{row.size, row.tag, 0, UNBOUNDED, 0, 0};
        EXPECT_EQ(IsWellFormed(&d), row.good) << "tag " << row.tag << " size " << row.size;
    }
    EXPECT_FALSE(IsWellFormed(nullptr));
}

// Tag, maxlength, size and data, in the order in which they are asked.
struct KindRow {
    std::int32_t tag, maxlength, size;
    Offset data;
    Kind kind;
};

constexpr KindRow kindRows[] = {
    {14, 0, 0, 0, KindRecord},
    {14, 0x33330000, 8, 64, KindRecord},
    {14, UNBOUNDED, 8, 64, KindRecord},
    {14, DYNAMIC_BOUNDS, 8, 64, KindRecord},
    {15, 0, 0, 0, KindUnion},
    {15, UNBOUNDED, 8, 64, KindUnion},
    {16, UNBOUNDED, 36, 64, KindTable},
    {16, 0, 36, 64, KindTable},
    {16, 12, 36, 64, KindTable},
    {29, UNBOUNDED, 0, 0, KindString},
    {29, 1, 1, 64, KindString},
    {29, INT32_MAX, 1, 64, KindString},
    {29, 0, 2, 64, KindSet},
    {29, DYNAMIC_BOUNDS, 2, 64, KindSet},
    {1, DYNAMIC_BOUNDS, 0, 0, KindArray},
    {1, 0, 4, 64, KindArray},
    {12, DYNAMIC_BOUNDS, 24, 64, KindArray},
    {12, 0, 24, 64, KindArray},
    {17, 0, 255, 64, KindArray},
    {28, DYNAMIC_BOUNDS, 255, 64, KindArray},
    {1, UNBOUNDED, 0, 0, KindList},
    {1, 1, 1, 64, KindList},
    {12, INT32_MAX, 24, 64, KindList},
    {17, UNBOUNDED, 255, 64, KindList},
    {28, 7, 255, 64, KindList},
    {0, DYNAMIC_BOUNDS, 0, 0, KindArray},
    {0, UNBOUNDED, 0, 0, KindList},
    {0, 0, 0, 0, KindNone},
    {0, 7, 0, 0, KindNone},
    {0, DYNAMIC_BOUNDS, 8, 0, KindNone},
    {0, DYNAMIC_BOUNDS, 0, 64, KindNone},
    {0, UNBOUNDED, 8, 0, KindNone},
    {0, UNBOUNDED, 0, 64, KindNone},
    {13, UNBOUNDED, 0, 0, KindNone},
    {13, 0, 0, 0, KindNone},
    {30, UNBOUNDED, 0, 0, KindNone},
    {-1, UNBOUNDED, 0, 0, KindNone},
    {INT32_MIN, 0, 0, 0, KindNone},
    {INT32_MAX, 0, 0, 0, KindNone},
};

ArrayDescriptor descriptorOf(const KindRow& row) {
    return {row.size, row.tag, row.data, row.maxlength, {}, 0};
}

TEST_F(ValueLayout, TheKindIsToldByTagAndMaxlength) {
    for (const KindRow& row : kindRows) {
        const ArrayDescriptor d = descriptorOf(row);
        EXPECT_EQ(KindOf(&d), row.kind) << "tag " << row.tag << " maxlength " << row.maxlength;
    }
    EXPECT_EQ(KindOf(nullptr), KindNone);
}

TEST_F(ValueLayout, EveryElementTagIsThatOfAnArrayOrAList) {
    for (std::int32_t tag = 1; tag <= 28; ++tag) {
        if (tag > 12 && tag < 17) continue;
        for (const std::int32_t maxlength : {0, DYNAMIC_BOUNDS, UNBOUNDED, 1}) {
            const KindRow row{tag, maxlength, 0, 0,
                              maxlength == 0 || maxlength == DYNAMIC_BOUNDS ? KindArray : KindList};
            const ArrayDescriptor d = descriptorOf(row);
            EXPECT_EQ(KindOf(&d), row.kind) << tag << ' ' << maxlength;
        }
    }
}

TEST_F(ValueLayout, ABlockMustHoldTheWholeDescriptor) {
    for (const KindRow& row : kindRows) {
        const ArrayDescriptor d = descriptorOf(row);
        for (const std::int32_t bytes :
             {INT32_MIN, -1, 0, 4, 15, 16, 23, 24, 25, 35, 36, 37, 43, 44, 45, 4096000}) {
            const Kind kind = bytes >= KindSize[row.kind] ? row.kind : KindNone;
            EXPECT_EQ(KindOf(&d, bytes), kind) << "tag " << row.tag << ", " << bytes << " bytes";
        }
    }
    EXPECT_EQ(KindOf(nullptr, 44), KindNone);
}

TEST_F(ValueLayout, ABlockTooShortForAHeadIsNotReadBeyondItsEnd) {
    // The block is the last bytes of the array, so that a checked build sees what is read behind it.
    for (std::int32_t bytes = 0; bytes < 16; ++bytes) {
        const std::vector<char> block(static_cast<std::size_t>(bytes), 14);
        EXPECT_EQ(KindOf(block.data(), bytes), KindNone) << bytes;
    }
}

TEST_F(ValueLayout, AKindIsToldAtAnyAddress) {
    char bytes[64] = {};
    for (std::size_t shift = 0; shift < 8; ++shift) {
        WriteAt(bytes + shift, StringDescriptor{0, 29, 0, UNBOUNDED, 0, 0});
        EXPECT_EQ(KindOf(bytes + shift), KindString) << shift;
        EXPECT_TRUE(IsWellFormed(bytes + shift)) << shift;
    }
}

TEST_F(ValueLayout, NumbersAreReadAndWrittenAtAnyAddress) {
    for (std::size_t shift = 0; shift < 8; ++shift) {
        char bytes[24];
        std::memset(bytes, 0x5A, sizeof bytes);
        WriteAt(bytes + 1 + shift, std::int64_t{-0x0123456789ABCDEF});
        EXPECT_EQ(ReadAt<std::int64_t>(bytes + 1 + shift), -0x0123456789ABCDEF);
        EXPECT_EQ(bytes[shift], 0x5A);
        EXPECT_EQ(bytes[9 + shift], 0x5A);
        WriteAt(bytes + 1 + shift, 1.25);
        EXPECT_EQ(ReadAt<double>(bytes + 1 + shift), 1.25);
    }
}

TEST_F(ValueLayout, DataAndSizeOfADescriptorChangeTogether) {
    RecordDescriptor d{};
    EXPECT_TRUE(AllocateData(d, 10));
    EXPECT_EQ(d.size, 10);
    EXPECT_NE(d.data, 0U);
    std::memcpy(At(d.data), "0123456789", 10);
    EXPECT_TRUE(ResizeData(d, 4000));
    EXPECT_EQ(d.size, 4000);
    EXPECT_EQ(std::string_view(At(d.data), 10), "0123456789");
    EXPECT_TRUE(ResizeData(d, 3));
    EXPECT_EQ(d.size, 3);
    EXPECT_EQ(std::string_view(At(d.data), 3), "012");
    FreeData(d);
    EXPECT_EQ(d.size, 0);
    EXPECT_EQ(d.data, 0U);
    FreeData(d);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(ValueLayout, ResizingFromAndToNothingAllocatesAndFrees) {
    RecordDescriptor d{};
    EXPECT_TRUE(ResizeData(d, 0));
    EXPECT_EQ(d.data, 0U);
    EXPECT_TRUE(ResizeData(d, 5));
    EXPECT_EQ(d.size, 5);
    EXPECT_EQ(CountLeaks().bytes, 5);
    EXPECT_TRUE(ResizeData(d, 0));
    EXPECT_EQ(d.size, 0);
    EXPECT_EQ(d.data, 0U);
    EXPECT_EQ(LiveBlocks(), 0);
}

TEST_F(ValueLayout, DataThatCannotBeHadLeavesTheDescriptorAsItWas) {
    constexpr struct {
        std::int32_t size, error;
    } rows[] = {{-1, ERR_BLOCK_TOO_LARGE}, {MaxBlock + 1, ERR_BLOCK_TOO_LARGE}};
    for (const auto& row : rows) {
        RecordDescriptor d{};
        EXPECT_FALSE(AllocateData(d, row.size));
        EXPECT_EQ(takeError(), row.error);
        EXPECT_EQ(d.size, 0);
        EXPECT_FALSE(ResizeData(d, row.size));
        EXPECT_EQ(takeError(), row.error);
        EXPECT_TRUE(AllocateData(d, 8));
        const Offset block = d.data;
        EXPECT_FALSE(ResizeData(d, row.size));
        EXPECT_EQ(takeError(), row.error);
        EXPECT_EQ(d.size, 8);
        EXPECT_EQ(d.data, block);
        FreeData(d);
    }
    RecordDescriptor d{};
    EXPECT_FALSE(AllocateData(d, 0));
    EXPECT_EQ(takeError(), ERR_EMPTY_BLOCK);
    FailAllocation(0);
    EXPECT_FALSE(ResizeData(d, 8));
    EXPECT_EQ(takeError(), ERR_OUT_OF_MEMORY);
    EXPECT_EQ(d.size, 0);
    EXPECT_TRUE(AllocateData(d, 8));
    FailAllocation(0);
    EXPECT_FALSE(ResizeData(d, 4000));
    EXPECT_EQ(takeError(), ERR_OUT_OF_MEMORY);
    EXPECT_EQ(d.size, 8);
    FreeData(d);
}

}  // namespace
