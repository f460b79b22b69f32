// SPDX-License-Identifier: Apache-2.0
//
// The values as compiled programs see them. What they do stands in api_values_c.c, which is C; what only the
// kernel can set up is here.
#include "kernel/api/api.h"
#include "kernel/values/strings.h"
#include "support/errorcell.h"
#include "support/tempfolder.h"
#include "unit/kernel/runtime_fixture.h"

#include <string>

extern "C" {
void api_strings(void);
void api_adt(void);
void api_arrays(void);
void api_sets(void);
void api_records(void);
void api_odd_addresses(void);
void api_lists(void);
void api_tables(void);
void api_files(const char* file, const char* table_file);
void api_arithmetic(void);
void api_number_texts(void);
void api_dates(void);

void api_check(int32_t holds, const char* what, int32_t line) {
    if (holds == 0) ADD_FAILURE_AT("api_values_c.c", line) << what;
}
}

namespace tarn {
namespace {

using namespace std::string_view_literals;

class ApiValues : public Runtime {
protected:
    void TearDown() override {
        CharacterWidth = 1;
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }
    static tarn_string* in(String& s) { return reinterpret_cast<tarn_string*>(s.get()); }
    static const tarn_string* in(const String& s) { return reinterpret_cast<const tarn_string*>(s.get()); }
};

TEST_F(ApiValues, StringsWorkInC) {
    api_strings();
}
TEST_F(ApiValues, ValuesOfAnyKindWorkInC) {
    api_adt();
}
TEST_F(ApiValues, ArraysWorkInC) {
    api_arrays();
}
TEST_F(ApiValues, SetsWorkInC) {
    api_sets();
}
TEST_F(ApiValues, RecordsWorkInC) {
    api_records();
}
TEST_F(ApiValues, NumbersAreReadIntoOddAddresses) {
    api_odd_addresses();
}
TEST_F(ApiValues, ListsWorkInC) {
    api_lists();
}
TEST_F(ApiValues, TablesWorkInC) {
    api_tables();
}
TEST_F(ApiValues, ValuesInFilesWorkInC) {
    const TempFolder folder;
    api_files((folder / "list.lst").c_str(), (folder / "table.tab").c_str());
}
TEST_F(ApiValues, ArithmeticWorksInC) {
    api_arithmetic();
}
TEST_F(ApiValues, TextsOfNumbersWorkInC) {
    api_number_texts();
}
TEST_F(ApiValues, DatesWorkInC) {
    api_dates();
}

// Every reader of a text, by the result of the good texts below; all others give `none`.
constexpr std::string_view texts[] = {
    "12"sv, "Yes"sv, "1.25"sv, "2.5E1"sv, "2000-01-31 01:02:03.0004"sv, "31-Jan-2000"sv, "[3]"sv};

void expectAllRead(const std::vector<const tarn_string*>& s) {
    std::int32_t i = 77, parts[7] = {}, position = 1;
    std::int64_t f = 77;
    double x = 77;
    EXPECT_EQ(tarn_integer_from_text(s[0], &i), 1);
    EXPECT_EQ(i, 12);
    EXPECT_EQ(tarn_sys_cvti(s[0]), 12);
    i = 77;
    EXPECT_EQ(tarn_adt_convert(s[0], TARN_STRING, &i, TARN_INTEGER), 1);
    EXPECT_EQ(i, 12);
    EXPECT_EQ(tarn_boolean_from_text(s[1], &i), 1);
    EXPECT_EQ(i, 1);
    EXPECT_EQ(tarn_fixed_from_text(s[2], &f), 1);
    EXPECT_EQ(f, 12500);
    EXPECT_EQ(tarn_real_from_text(s[3], &x), 1);
    EXPECT_EQ(x, 25);
    tarn_date_split(s[4], parts);
    EXPECT_EQ(parts[6], 4);
    EXPECT_EQ(tarn_date_to_seconds(s[4]), 126253765230004);
    String unit("D"sv), result;
    auto* const u = reinterpret_cast<tarn_string*>(unit.get());
    auto* const r = reinterpret_cast<tarn_string*>(result.get());
    EXPECT_EQ(tarn_date_part(u, s[4]), 31);
    tarn_date_add(u, 1, s[4], r);
    EXPECT_EQ(tarn_date_part(u, r), 1);
    EXPECT_EQ(tarn_date_parse(s[5], r), 1);
    EXPECT_EQ(tarn_date_part(u, r), 31);
    tarn_set set;
    tarn_set_init(&set, 1, 9);
    EXPECT_EQ(tarn_set_from_text(s[6], &position, &set), 0);
    EXPECT_EQ(tarn_set_contains(3, &set), 1);
    tarn_set_free(&set);
}

TEST_F(ApiValues, WideAndTerminatedStringsAreReadAsPlainOnes) {
    for (const std::int32_t width : {1, 2}) {
        for (const bool terminated : {false, true}) {
            SCOPED_TRACE(std::to_string(width) + (terminated ? " terminated" : ""));
            CharacterWidth = width;
            std::vector<String> strings;
            std::vector<const tarn_string*> addresses;
            for (const std::string_view text : texts) {
                strings.emplace_back(40);
                strings.back().assign(text);
                if (terminated) StringTerminate(strings.back().get());
            }
            for (const String& s : strings) addresses.push_back(in(s));
            expectAllRead(addresses);
        }
    }
}

TEST_F(ApiValues, AWideCharacterIsNoDigitWhateverItsLowByte) {
    CharacterWidth = 2;
    String text("12"sv);
    StringPutChar(text.get(), 2, 0x0132);
    std::int32_t value = 77;
    EXPECT_EQ(tarn_integer_from_text(in(text), &value), 0);
    EXPECT_EQ(value, 77);
}

TEST_F(ApiValues, OnlyOneNulAtTheEndIsNoPartOfAText) {
    for (const std::string_view bad : {"12\0\0"sv, "\0"sv, "\00012"sv, "1\0002"sv, "12\0 "sv}) {
        const String text(bad);
        std::int32_t i = 77;
        std::int64_t f = 77;
        double x = 77;
        EXPECT_EQ(tarn_integer_from_text(in(text), &i), 0);
        EXPECT_EQ(tarn_fixed_from_text(in(text), &f), 0);
        EXPECT_EQ(tarn_real_from_text(in(text), &x), 0);
        EXPECT_EQ(i, 77);
        EXPECT_EQ(f, 77);
        EXPECT_EQ(x, 77);
    }
}

TEST_F(ApiValues, WhatIsNoStringIs756ForEveryReader) {
    tarn_string zero{};
    String result;
    std::int32_t i = 77, parts[7] = {77}, position = 1;
    std::int64_t f = 77;
    double x = 77;
    tarn_set set;
    tarn_set_init(&set, 1, 9);
    for (const tarn_string* none :
         {static_cast<const tarn_string*>(nullptr), const_cast<const tarn_string*>(&zero)}) {
        EXPECT_EQ(tarn_integer_from_text(none, &i), 0);
        EXPECT_EQ(takeError(), 756);
        EXPECT_EQ(tarn_boolean_from_text(none, &i), 0);
        EXPECT_EQ(takeError(), 756);
        EXPECT_EQ(tarn_fixed_from_text(none, &f), 0);
        EXPECT_EQ(takeError(), 756);
        EXPECT_EQ(tarn_real_from_text(none, &x), 0);
        EXPECT_EQ(takeError(), 756);
        EXPECT_EQ(tarn_set_from_text(none, &position, &set), 756);
        EXPECT_EQ(takeError(), 756);
        tarn_date_split(none, parts);
        EXPECT_EQ(takeError(), 756);
        EXPECT_EQ(tarn_date_to_seconds(none), 0);
        EXPECT_EQ(takeError(), 756);
        EXPECT_EQ(tarn_date_part(none, in(result)), 0);
        EXPECT_EQ(takeError(), 756);
        EXPECT_EQ(tarn_date_parse(none, in(result)), 0);
        EXPECT_EQ(takeError(), 756);
        tarn_date_add(none, 1, none, in(result));
        EXPECT_EQ(takeError(), 756);
        tarn_file_time_text(none, in(result));
        EXPECT_EQ(takeError(), 756);
    }
    EXPECT_EQ(i, 77);
    EXPECT_EQ(f, 77);
    EXPECT_EQ(x, 77);
    EXPECT_EQ(parts[0], 77);
    tarn_set_free(&set);
}

}  // namespace
}  // namespace tarn
