// SPDX-License-Identifier: Apache-2.0
//
// Opening the Xbase files of lists: counts, fields that do not fit, marks of the end.
#include "unit/kernel/filevalues_fixture.h"

namespace tarn {
namespace {

using model::Number;
using model::Record;

// ---- Xbase ----

// A header of one field of three characters, and `records` in it.
std::string xbaseFile(char records, std::string_view rows) {
    std::string bytes(65, '\0');
    bytes[0] = 3;
    bytes[4] = records;
    bytes[8] = 65;
    bytes[10] = 4;
    bytes.replace(32, 4, "NAME");
    bytes[43] = 'C';
    bytes[48] = 3;
    bytes[64] = 13;
    return bytes.append(rows);
}

TEST_F(FileValues, AnXbaseFileIsOpenedWithItsCount) {
    files_.put("/d/a.dbf", xbaseFile(2, " ann*bob"));
    const ListValue l = opened("/d/a.dbf", xbaseRow());
    ASSERT_EQ(ListCount(l.get()), 2);
    const ValueModel rows[] = {xbaseRow("ann", ' '), xbaseRow("bob", '*')};
    for (std::int32_t n = 1; n <= 2; ++n) {
        RecordValue row;
        ListGet(l.get(), n, row.get(), KindRecord);
        EXPECT_EQ(model::Differs(rows[n - 1], row.get()), "");
    }
    EXPECT_EQ(FileHeaderSize(l.get(), KindList), 65);
    EXPECT_EQ(check(l), "");
}

TEST_F(FileValues, XbaseFilesThatDoNotFitAreRefused) {
    const ValueModel good = xbaseRow(), numbersRow = Record({number});
    const std::string whole = xbaseFile(1, " ann");
    std::string signature = whole, sizes = whole, longField = whole, many = whole, negative = whole;
    signature[0] = 7;
    sizes[10] = 5;
    longField[48] = 4;
    longField[10] = 5;
    longField += "x";
    many[4] = 2;
    negative[7] = '\x80';
    struct Case {
        const ValueModel& row;
        std::string bytes;
        std::int32_t error;
    };
    const Case cases[] = {
        {good, whole, 0},
        {numbersRow, whole, 658},
        {numbersRow, "", 658},
        {good, "", 655},
        {good, whole.substr(0, 31), 655},
        {good, whole.substr(0, 64), 655},
        {good, signature, 658},
        {good, sizes, 658},
        {good, longField, 658},
        {good, many, 655},
        {good, negative, 655},
        {good, whole + "x", 655},
        {good, whole.substr(0, 68), 655},
        {good, whole.substr(0, 65), 655},
    };
    for (const Case& c : cases) {
        files_.put("/d/a.dbf", c.bytes);
        ListValue l = listOf(c.row);
        EXPECT_EQ(openError(l, "/d/a.dbf"), c.error) << &c - cases;
        EXPECT_EQ(bytesOf("/d/a.dbf"), c.bytes) << &c - cases;
    }
    files_.put("/d/a.dbf", xbaseFile(3, " ann bob eve"));
    ListValue fixed = listOf(good, 2);
    EXPECT_EQ(openError(fixed, "/d/a.dbf"), 619);
    ListValue made = listOf(numbersRow);
    EXPECT_EQ(openError(made, "/d/new.dbf"), 658);
    EXPECT_FALSE(files_.has("/d/new.dbf"));
}

// Neither for a field that the rows lack nor alone.
TEST_F(FileValues, TheMarkStandsForNoField) {
    std::string number = xbaseFile(1, " 042");
    number[43] = 'N';
    for (const std::string& bytes : {number, xbaseFile(1, "*ann")}) {
        files_.put("/d/a.dbf", bytes);
        ListValue alone = listOf(Record({Number(KindEnum, 0)}));
        EXPECT_EQ(openError(alone, "/d/a.dbf"), 658);
        EXPECT_EQ(bytesOf("/d/a.dbf"), bytes);
    }
    ListValue alone = listOf(Record({Number(KindEnum, 0)}));
    EXPECT_EQ(openError(alone, "/d/new.dbf"), 658);
    EXPECT_FALSE(files_.has("/d/new.dbf"));
    // A file of the fields N3 and C3, a row of the mark and three characters.
    std::string two = xbaseFile(1, " 042Ann");
    const std::string field = two.substr(32, 32);
    two.insert(64, field);
    two[8] = 97;
    two[10] = 7;
    two[43] = 'N';
    files_.put("/d/a.dbf", two);
    ListValue less = listOf(xbaseRow());
    EXPECT_EQ(openError(less, "/d/a.dbf"), 658);
}

TEST_F(FileValues, AnEndMarkGoesWhenAnXbaseFileIsOpened) {
    files_.put("/d/a.dbf", xbaseFile(1, " ann\x1A"));
    ListValue l = opened("/d/a.dbf", xbaseRow());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(bytesOf("/d/a.dbf"), xbaseFile(1, " ann"));
    EXPECT_EQ(ListCount(l.get()), 1);
    EXPECT_EQ(check(l), "");
}

TEST_F(FileValues, AnEndMarkIsPassedOverWhereTheFileMayNotBeWritten) {
    const std::string bytes = xbaseFile(1, " ann\x1A");
    files_.put("/d/a.dbf", bytes, 0444);
    ListValue l = opened("/d/a.dbf", xbaseRow());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(bytesOf("/d/a.dbf"), bytes);
    EXPECT_EQ(ListCount(l.get()), 1);
    EXPECT_EQ(check(l), "");
    FileClose(l.get(), KindList);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(FileValues, AnEndMarkThatCannotBeRemovedIsAnError) {
    const std::string bytes = xbaseFile(1, " ann\x1A");
    for (int call = 1; call <= 3; ++call) {
        files_.put("/d/a.dbf", bytes);
        ListValue l = listOf(xbaseRow());
        files_.failAt(call, os::FileError::WriteFailed);
        FileOpen(l.get(), KindList, "/d/a.dbf");
        files_.stopFailing();
        EXPECT_EQ(takeError(), 652);
        EXPECT_FALSE(FileExists(l.get(), KindList));
    }
}

}  // namespace
}  // namespace tarn
