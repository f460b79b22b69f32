// SPDX-License-Identifier: Apache-2.0
//
// A value of each kind to a file and back, by the forms of LOADFILE and SAVEFILE that know the kind.
#include "library/system/files.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "platform/model/view.h"
#include "support/errorcell.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

class ValueFiles : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        before_ = platform::useView(platform::makeHeadlessView());
        files.putFolder("/a");
    }
    void TearDown() override {
        platform::useView(std::move(before_));
        EXPECT_EQ(takeError(), 0);
    }
    // The value comes back into one of the same shape, and an unreadable file leaves that as it is.
    template <class Owner>
    void goesAndComes(const Owner& value, Owner& fresh, Kind kind) {
        EXPECT_EQ(SAVEFILE("/a/x", value).code, 0);
        EXPECT_EQ(LOADFILE("/a/x", fresh).code, 0);
        EXPECT_EQ(takeError(), 0);
        EXPECT_TRUE(AdtCompare("EQ", value.get(), fresh.get(), kind));
        EXPECT_EQ(LOADFILE("/a/none", fresh).code, 651);
        EXPECT_EQ(takeError(), 651);
        EXPECT_TRUE(AdtCompare("EQ", value.get(), fresh.get(), kind));
        files.failAlways(os::FileCall::Write, os::FileError::DiskFull);
        EXPECT_EQ(SAVEFILE("/a/x", value).code, 654);
        files.failAlways(os::FileCall::Write, os::FileError::None);
        EXPECT_EQ(takeError(), 654);
        EXPECT_EQ(LOADFILE("/a/x", fresh).code, 0) << "the file is as it was";
    }
    static void typed(const char* text, RecordDescriptor* record) {
        TypeInfoToRecord(String(std::string_view(text)).get(), record);
    }

    os::SteeredFiles files;
    const os::Steered steered{files};

private:
    std::unique_ptr<platform::View> before_;
};

TEST_F(ValueFiles, TextsAndStringsAreTheirBytes) {
    const std::string bytes("a\0b\r\n\xFF", 6);
    std::string text;
    EXPECT_TRUE(SAVEFILE("/a/x", bytes));
    EXPECT_EQ(files.contents("/a/x"), bytes);
    EXPECT_TRUE(LOADFILE("/a/x", text));
    EXPECT_EQ(text, bytes);
    const String value{std::string_view(bytes)};
    String fresh;
    goesAndComes(value, fresh, KindString);
    EXPECT_EQ(files.contents("/a/x"), bytes);
    EXPECT_TRUE(SAVEFILE("/a/x", "a literal"));
    EXPECT_EQ(files.contents("/a/x"), "a literal");
}

TEST_F(ValueFiles, LinesAreEndedByNewlines) {
    EXPECT_TRUE(SAVEFILE("/a/x", std::vector<std::string>{"one", "", "two"}));
    EXPECT_EQ(files.contents("/a/x"), "one\n\ntwo\n");
    EXPECT_TRUE(SAVEFILE("/a/x", std::vector<std::string>{}));
    EXPECT_EQ(files.contents("/a/x"), "");
}

TEST_F(ValueFiles, RecordsAndUnions) {
    const std::int32_t number = 42;
    const String name(std::string_view("name"));
    RecordValue record, fresh;
    for (RecordValue* one : {&record, &fresh})
        typed("r : record\n\ta : integer\n\tb : string[10]\nend record\n", one->get());
    RecordPut(record.get(), 1, &number, KindInteger);
    RecordPut(record.get(), 2, name.get(), KindString);
    goesAndComes(record, fresh, KindRecord);
    UnionValue joined, freshUnion;
    for (UnionValue* one : {&joined, &freshUnion}) {
        typed("r : record\n\ta : integer\n\tb : fixed\nend record\n", one->get());
        one->get()->tag = TagUnion;
    }
    RecordPut(joined.get(), 1, &number, KindInteger);
    goesAndComes(joined, freshUnion, KindUnion);
}

TEST_F(ValueFiles, SetsAndArrays) {
    OwnedSet set, freshSet;
    for (OwnedSet* one : {&set, &freshSet}) SetInit(one->get(), 1, 100);
    SetIncludeRange(20, 30, set.get());
    goesAndComes(set, freshSet, KindSet);
    ArrayValue array, freshArray;
    for (ArrayValue* one : {&array, &freshArray}) ArrayInit(one->get(), KindReal, -1, 1);
    const double number = 1.5;
    ArrayPut(array.get(), 0, &number, KindReal);
    goesAndComes(array, freshArray, KindArray);
}

TEST_F(ValueFiles, ListsAndTables) {
    ListValue list, freshList;
    for (ListValue* one : {&list, &freshList}) ListInit(one->get(), UNBOUNDED, nullptr, KindInteger, false);
    for (const std::int32_t number : {3, 1, 2}) ListAppend(&number, KindInteger, list.get());
    goesAndComes(list, freshList, KindList);
    RecordValue row;
    typed("r : record\n\ta : integer\n\tb : string[10]\nend record\n", row.get());
    TableValue table, freshTable;
    for (TableValue* one : {&table, &freshTable})
        TableInit(one->get(), UNBOUNDED, row.get(), KeyMaps{MakeKeyMap(1)}, "", false);
    for (const std::int32_t number : {7, 5}) {
        RecordPut(row.get(), 1, &number, KindInteger);
        TableAdd(table.get(), 1, row.get());
    }
    ASSERT_EQ(takeError(), 0);
    goesAndComes(table, freshTable, KindTable);
}

}  // namespace
}  // namespace tarn
