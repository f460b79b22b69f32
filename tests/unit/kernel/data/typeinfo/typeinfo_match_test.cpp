// SPDX-License-Identifier: Apache-2.0
//
// Declarations that are printed from values and matched against them: sets, arrays and blocks of every kind.
#include "kernel/data/typeinfo/typeinfo.h"

#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "unit/kernel/values_fixture.h"

#include <string>

namespace tarn {
namespace {

class TypeInfoMatch : public Values {
protected:
    // A record of the fields that `types` declares, one for each word.
    static std::int32_t make(std::string_view types, RecordDescriptor* record) {
        std::string text = "r : record\n";
        for (std::int32_t n = 1; !types.empty(); ++n) {
            const std::size_t end = std::min(types.find(' '), types.size());
            text.append("\tf" + std::to_string(n) + " : ").append(types.substr(0, end)) += '\n';
            types.remove_prefix(std::min(end + 1, types.size()));
        }
        const String source(text + "end record\n");
        TypeInfoToRecord(source.get(), record);
        return takeError();
    }
    static std::string printed(const RecordValue& record) {
        return TypeInfoFromValue(record.get(), KindRecord);
    }
    static std::int32_t matches(std::string_view text, const RecordValue& record) {
        const std::int32_t number = TypeInfoMatchesValue(text, record.get());
        EXPECT_EQ(ErrorCell(), 0);
        return number;
    }
};

// ---- sets ----

TEST_F(TypeInfoMatch, ADynamicSetIsDeclaredWithoutBounds) {
    RecordValue record;
    ASSERT_EQ(make("set set[1:1]", record.get()), 0);
    EXPECT_EQ(printed(record), "FIELD1 : set\nFIELD2 : set[1:1]\n");
    EXPECT_EQ(matches(printed(record), record), 0);
    EXPECT_EQ(matches("a : set[1:1]\nb : set[1:1]\n", record), 1);
    EXPECT_EQ(matches("a : set\nb : set\n", record), 2);
    EXPECT_EQ(matches("a : adt\nb : adt[1:1]\n", record), 0);
    // Whatever bounds it has at the time.
    SetInclude(7, static_cast<SetDescriptor*>(RecordFieldAddress(record.get(), 1)));
    SetInclude(-9, static_cast<SetDescriptor*>(RecordFieldAddress(record.get(), 1)));
    EXPECT_EQ(printed(record), "FIELD1 : set\nFIELD2 : set[1:1]\n");
    EXPECT_EQ(matches(printed(record), record), 0);
    EXPECT_EQ(matches("a : set[-9:7]\n", record), 1);
    EXPECT_EQ(matches("a : set[-1000000]\n", record), 1);
}

TEST_F(TypeInfoMatch, TheNumbersThatStandForNoBoundsAreNoBoundsOfASet) {
    for (const char* type : {"set[-1000000:-1000000]", "set[-1000000]", "set[-1000000:5]", "set[5:-1000000]",
                             "set[-1000001:-1000001]"}) {
        RecordValue record;
        EXPECT_EQ(make(std::string("integer ") + type + " any", record.get()), ERR_SET_BOUNDS) << type;
        EXPECT_EQ(record.get()->tag, 0);
    }
}

// ---- arrays ----

TEST_F(TypeInfoMatch, OtherArraysThanCharactersPrintWithoutBoundsAndMatchWithThem) {
    RecordValue record;
    ASSERT_EQ(make("", record.get()), 0);
    ArrayValue numbers, grid, cube;
    ArrayInit(numbers.get(), KindInteger, 1, 3);
    ArrayInit(grid.get(), KindEnum, 1, 3, 0, 2, NO_DIMENSION, NO_DIMENSION, nullptr);
    ArrayInit(cube.get(), KindReal, 1, 2, 3, 4, -5, 6, nullptr);
    for (ArrayValue* array : {&numbers, &grid, &cube}) RecordAppend(record.get(), array->get(), KindArray);
    ASSERT_EQ(takeError(), 0);
    EXPECT_EQ(printed(record), "FIELD1 : adt\nFIELD2 : adt\nFIELD3 : adt\n");
    EXPECT_EQ(matches(printed(record), record), 1);
    EXPECT_EQ(matches("a : adt[1:3]\nb : adt[1:3,0:2]\nc : adt[1:2,3:4,-5:6]\n", record), 0);
    EXPECT_EQ(matches("a : adt[1:4]\n", record), 1);
    EXPECT_EQ(matches("a : adt[1:3]\nb : adt[1:3]\n", record), 2);
    EXPECT_EQ(matches("a : adt[1:3]\nb : adt[1:3,0:2]\nc : adt[1:2,3:4,-5:7]\n", record), 3);
    EXPECT_EQ(matches("a : adt[1:3]\nb : adt[1:3,0:2]\nc : adt[1:2,3:4,-4:6]\n", record), 3);
    EXPECT_EQ(matches("a : adt[1:3]\nb : adt[1:3,0:2]\nc : adt[1:2,3:4,-5:6]\n", record), 0);
    // The names of character arrays match by their bounds too.
    EXPECT_EQ(matches("a : Tchars[1:3]\nb : Tdate[1:3,0:2]\nc : Tchars[1:2,3:4,-5:6]\n", record), 0);
}

TEST_F(TypeInfoMatch, AnArrayThatGrowsHasNoBoundsUntilItIsUsed) {
    RecordValue record;
    ASSERT_EQ(make("", record.get()), 0);
    ArrayValue array;
    ArrayInitDynamic(array.get(), KindEnum, nullptr);
    RecordAppend(record.get(), array.get(), KindArray);
    ASSERT_EQ(takeError(), 0);
    EXPECT_EQ(printed(record), "FIELD1 : adt\n");
    EXPECT_EQ(matches(printed(record), record), 0);
}

TEST_F(TypeInfoMatch, CharactersHaveOneDimensionOfWhatIsDeclared) {
    RecordValue record;
    ASSERT_EQ(make("Tchars[1:4,2:3] Tchars[-2:2]", record.get()), 0);
    EXPECT_EQ(printed(record), "FIELD1 : Tchars[1:4]\nFIELD2 : Tchars[-2:2]\n");
    EXPECT_EQ(matches(printed(record), record), 0);
    EXPECT_EQ(matches("a : Tchars[1:4,2:3]\n", record), 1);
}

// ---- blocks ----

TEST_F(TypeInfoMatch, AUnionIsPrintedAndMatchedAsItsFields) {
    std::size_t position = 0;
    UnionValue value;
    ASSERT_EQ(
        TypeInfoToValue("u : union\n\ta : integer\n\tb : string[9]\nend union\n", position, value.get()),
        KindUnion);
    EXPECT_EQ(TypeInfoFromValue(value.get(), KindUnion, "a\nb\n"), "a : integer\nb : string[9]\n");
    EXPECT_EQ(TypeInfoMatchesValue("a : integer\nb : string[9]\n", value.get()), 0);
    EXPECT_EQ(TypeInfoMatchesValue("a : integer\nb : string[8]\n", value.get()), 2);
    EXPECT_EQ(TypeInfoFromValue(value.get(), KindRecord), "");

    RecordValue outer;
    ASSERT_EQ(make("integer", outer.get()), 0);
    RecordAppend(outer.get(), value.get(), KindUnion);
    ASSERT_EQ(takeError(), 0);
    EXPECT_EQ(printed(outer), "FIELD1 : integer\nFIELD2 : adt\n");
    EXPECT_EQ(matches(printed(outer), outer), 0);
    EXPECT_EQ(matches("a : integer\nb : union\n", outer), 0);
    EXPECT_EQ(matches("a : integer\nb : record\n", outer), 2);
}

TEST_F(TypeInfoMatch, EveryBoundCounts) {
    RecordValue record;
    ASSERT_EQ(make("string[4] set[1:9]", record.get()), 0);
    const char* const rest[] = {",2", ",2:3", ",2,3", ",2:3,4:5"};
    for (const std::string more : rest) {
        EXPECT_EQ(matches("a : string[4" + more + "]\n", record), 1) << more;
        EXPECT_EQ(matches("a : string[4]\nb : set[1:9" + more + "]\n", record), 2) << more;
    }
    EXPECT_EQ(matches("a : string[ +4 ]\nb : set\t[ 1 : 9 ]\n", record), 0);
}

}  // namespace
}  // namespace tarn
