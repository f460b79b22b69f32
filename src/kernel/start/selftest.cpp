// SPDX-License-Identifier: Apache-2.0
//
// The tests that each start of a process runs: a machine or a build on which they fail must not touch
// anybody's data.
#include "kernel/lists/lists.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/start/process.h"
#include "kernel/tables/tables.h"
#include "kernel/text/dates.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"

#include <cstddef>

namespace tarn {

namespace {

std::string narrow(const String& s) {
    std::string text(static_cast<std::size_t>(s.length()) + 1, 0);
    if (s.length() > 0) StringToText(text.data(), s.length(), s.get());
    text.pop_back();
    return text;
}

bool joins() {
    constexpr struct {
        std::int32_t capacity;
        std::string_view a, b, result;
        std::int32_t error;
    } rows[] = {
        {10, "", "abcdefghijk", "abcdefghij", ERR_FIXED_STRING},
        {10, "abcdefghijk", "", "abcdefghij", ERR_FIXED_STRING},
        {10, "abcdef", "ghijkl", "abcdefghij", ERR_FIXED_STRING},
        {10, "abcde", "fghij", "abcdefghij", ERR_NONE},
        {UNBOUNDED, "abcdef", "ghijkl", "abcdefghijkl", ERR_NONE},
        {UNBOUNDED, "", "", "", ERR_NONE},
    };
    for (const auto& row : rows) {
        String s(row.capacity), a(row.a), b(row.b);
        StringConcat(a.get(), b.get(), s.get());
        if (narrow(s) != row.result || TakeError() != row.error) return false;
    }
    return true;
}

bool appends() {
    constexpr struct {
        std::int32_t capacity;
        std::string_view text, more, result;
    } rows[] = {
        {8, "1234", "EFGHIJ", "1234EFGH"},   {10, "PQRSTUVWXY", "R", "PQRSTUVWXY"},
        {10, "1234", "ABCD", "1234ABCD"},    {10, "123456", "ABCDEF", "123456ABCD"},
        {UNBOUNDED, "1234", "ABCD", "1234"},
    };
    for (const auto& row : rows) {
        String s(row.capacity);
        const String more(row.more);
        s.assign(row.text);
        StringAppend(s.get(), more.get());
        if (narrow(s) != row.result || TakeError() != ERR_NONE) return false;
    }
    return true;
}

bool deletes() {
    constexpr std::int32_t all = INT32_MAX;
    constexpr struct {
        std::int32_t position, count;
        std::string_view result;
    } rows[] = {
        {6, 4, "123450"}, {2, 8, "10"},      {2, 2, "14567890"},     {6, 5, "12345"},
        {6, 6, "12345"},  {6, all, "12345"}, {1, 5, "67890"},        {1, 10, ""},
        {1, 11, ""},      {1, all, ""},      {0, all, "1234567890"}, {11, all, "1234567890"},
    };
    for (const auto& row : rows) {
        String s(10);
        s.assign("1234567890");
        StringDelete(s.get(), row.position, row.count);
        if (narrow(s) != row.result || TakeError() != ERR_NONE) return false;
    }
    return true;
}

bool comparisons() {
    constexpr struct {
        std::string_view a, b;
        std::int32_t exact, folded;
    } rows[] = {
        {"", "", 0, 0},        {"A", "a", -1, 0},      {"A", "B", -1, -1},     {"a", "B", 1, -1},
        {"AZZ", "azz", -1, 0}, {"AZZ", "BZZ", -1, -1}, {"ZAZ", "ZBZ", -1, -1}, {"ZZA", "ZZB", -1, -1},
        {"A", "", 1, 1},       {"AB", "A", 1, 1},      {"\x80", "A", 1, 1},
    };
    for (const auto& row : rows) {
        const String a(row.a), b(row.b);
        std::int32_t exact = 9, folded = 9;
        StringCompare(a.get(), b.get(), false, exact);
        StringCompare(a.get(), b.get(), true, folded);
        if (exact != row.exact || folded != row.folded) return false;
        if ((StringCompareOp("eq", a.get(), b.get()) != 0) != (row.exact == 0)) return false;
        if ((StringCompareOp("LT", a.get(), b.get()) != 0) != (row.exact < 0)) return false;
        if ((StringCompareOp("Ge", a.get(), b.get()) != 0) != (row.exact >= 0)) return false;
    }
    return TakeError() == ERR_NONE;
}

bool divisions() {
    constexpr struct {
        std::int32_t a, b, quotient, rest, error;
    } rows[] = {
        {-7, 2, -4, 1, 0},
        {7, -2, -4, -1, 0},
        {-7, -2, 3, -1, 0},
        {7, 2, 3, 1, 0},
        {INT32_MIN, -1, INT32_MIN, 0, 0},
        {5, 0, 0, 0, ERR_DIVISION_BY_ZERO},
    };
    for (const auto& row : rows) {
        if (IntegerDiv(row.a, row.b) != row.quotient || TakeError() != row.error) return false;
        if (IntegerMod(row.a, row.b) != row.rest || TakeError() != row.error) return false;
    }
    return true;
}

bool integerTexts() {
    constexpr struct {
        std::int32_t value, width;
        std::string_view text;
    } rows[] = {
        {0, 1, "0"},
        {123456789, 12, "   123456789"},
        {-123456789, 12, "  -123456789"},
        {0, 12, "           0"},
        {123456789, -12, "123456789   "},
        {-123456789, -12, "-123456789  "},
        {0, -12, "0           "},
    };
    for (const auto& row : rows) {
        if (IntegerToText(row.value, row.width) != row.text) return false;
    }
    std::int32_t plus = 0, minus = 0;
    std::size_t end = 0;
    IntegerFromText("+987654321", plus, end);
    IntegerFromText("-987654321", minus, end);
    return plus == 987654321 && minus == -987654321 && end == 10;
}

bool booleanTexts() {
    constexpr struct {
        std::string_view text;
        bool ok, value;
    } rows[] = {{"True", true, true},
                {"YES", true, true},
                {"false", true, false},
                {"No", true, false},
                {"maybe", false, false}};
    for (const auto& row : rows) {
        bool value = false, ok = false;
        BooleanFromText(row.text, value, ok);
        if (ok != row.ok || value != row.value) return false;
    }
    return BooleanToText(true) == "True" && BooleanToText(false) == "False";
}

bool checkSums() {
    return Crc32("ABC", 3) == 0xA3830348U && Crc32("abc", 3) == 0x352441C2U && Crc32("", 0) == 0 &&
           Crc32("This is a string", 16) == 0x0876633FU;
}

std::string textOf(const OwnedSet& set, bool dots) {
    String text;
    SetToText(set.get(), dots, text.get());
    return narrow(text);
}

bool setBounds() {
    OwnedSet fixed, copy, dynamic;
    SetInit(fixed.get(), -10, 10);
    SetIncludeRange(-10, -6, fixed.get());
    SetIncludeRange(6, 10, fixed.get());
    AdtCopy(fixed.get(), copy.get(), KindSet);
    if (SetLowerBound(copy.get()) != -10 || SetUpperBound(copy.get()) != 10) return false;
    if (!SetContains(-10, copy.get()) || !SetContains(10, copy.get()) || SetContains(0, copy.get()))
        return false;
    SetInit(dynamic.get(), UNBOUNDED, UNBOUNDED);
    SetInclude(100, dynamic.get());
    if (SetUpperBound(dynamic.get()) != 100 || SetContains(1, dynamic.get())) return false;
    SetInclude(40000, dynamic.get());
    return TakeError() == ERR_SET_BOUNDS;
}

bool setTexts() {
    OwnedSet low, high;
    SetInit(low.get(), UNBOUNDED, UNBOUNDED);
    SetInit(high.get(), UNBOUNDED, UNBOUNDED);
    std::int32_t position = 1, error = 0;
    SetFromText("[1,2,3,7]", position, low.get(), error);
    if (error != 0 || position != 10) return false;
    if (textOf(low, true) != "[1..3,7]" || textOf(low, false) != "[1:3,7]") return false;
    SetInclude(9, high.get());
    return SetCompare("GT", high.get(), low.get()) && !SetCompare("EQ", high.get(), low.get());
}

bool fixedNumbers() {
    Fixed f = 0, r = 0;
    bool ok = false;
    FixedFromText("-.0001", f, ok);
    if (!ok || f != -1) return false;
    FixedFromText("2147483648.9999", f, ok);
    if (!ok || f != 21474836489999) return false;
    constexpr Fixed million = 1000000000000 * FixedOne;
    FixedMul(million, million, r);
    if (r != LargestFixed) return false;
    FixedMul(million, -million, r);
    if (r != SmallestFixed) return false;
    FixedDiv(SmallestFixed, -1, r);
    if (r != LargestFixed) return false;
    FixedDiv(7 * FixedOne, 0, r);
    return r == 0 && TakeError() == ERR_DIVISION_BY_ZERO && FixedToText(-12345) == "-1.2345";
}

bool realTexts() {
    constexpr struct {
        double x;
        std::int32_t decimals;
        std::string_view text;
    } rows[] = {
        {0.125, 2, "+1.25E-0001"}, {1, 2, "+1.00E+0000"},     {-10, 2, "-1.00E+0001"},
        {0, 1, "+0.0E+0000"},      {3.5E12, 1, "+3.5E+0012"},
    };
    for (const auto& row : rows) {
        double read = -1;
        bool ok = false;
        RealFromText(row.text, read, ok);
        if (RealToText(row.x, row.decimals) != row.text || !ok || (row.x != 0 && read / row.x > 1.01))
            return false;
    }
    return TakeError() == ERR_NONE;
}

bool dates() {
    constexpr struct {
        std::string_view unit;
        std::int32_t n;
        std::string_view date, result;
    } rows[] = {
        {"YYYY", 1, "2000-02-29 23:59:59.0001", "2001-02-28 23:59:59.0001"},
        {"YYYY", -400, "2000-02-29 23:59:59.0001", "1600-02-29 23:59:59.0001"},
        {"MM", 3, "2000-01-31 01:01:01.4321", "2000-04-30 01:01:01.4321"},
        {"MM", -23, "2000-01-31 01:01:01.4321", "1998-02-28 01:01:01.4321"},
        {"MS", 1, "2000-01-01 23:59:59.9990", "2000-01-02 00:00:00.0000"},
        {"H", 1, "2000-01-01 23:59:59.9999", "2000-01-02 00:59:59.9999"},
    };
    char text[DateSize];
    for (const auto& row : rows) {
        DateAdd(row.unit, row.n, row.date, text, DateSize);
        if (text != row.result) return false;
    }
    DateFromSeconds(31622400 * FixedOne, text, DateSize);
    return std::string_view(text) == "1601-01-01 00:00:00.0000";
}

// Rows in and out of a list of records with one index, each found by its key afterwards.
bool tables() {
    TableValue table;
    RecordValue row, key;
    RecordInit(row.get(), TagRecord, MakeFieldKinds({KindInteger, KindInteger}));
    TableInit(table.get(), UNBOUNDED, row.get(), {MakeKeyMap(1)}, "", false);
    for (std::int32_t i = 1; i <= 3; ++i) {
        const std::int32_t square = i * i;
        RecordPut(row.get(), 1, &i, KindInteger);
        RecordPut(row.get(), 2, &square, KindInteger);
        TableAdd(table.get(), 1, row.get());
    }
    TableAdd(table.get(), 1, row.get());
    if (TakeError() != ERR_DUPLICATE_FIELDS || TableCount(table.get()) != 3) return false;
    const std::int32_t first = 1, last = 3;
    RecordInit(key.get(), TagRecord, MakeFieldKinds({KindInteger}));
    RecordPut(key.get(), 1, &first, KindInteger);
    TableDelete(table.get(), 1, key.get());
    RecordPut(key.get(), 1, &last, KindInteger);
    TableRead(table.get(), 1, key.get(), row.get());
    std::int32_t square = 0;
    RecordGet(row.get(), 2, &square, KindInteger);
    return square == 9 && TakeError() == ERR_NONE && AdtCheck(table.get(), KindTable).empty();
}

}  // namespace

bool SelfTest() {
    const ErrorCellAside aside;
    return joins() && appends() && deletes() && comparisons() && divisions() && integerTexts() &&
           booleanTexts() && checkSums() && setBounds() && setTexts() && fixedNumbers() && realTexts() &&
           dates() && tables();
}

}  // namespace tarn
