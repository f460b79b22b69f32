/* SPDX-License-Identifier: Apache-2.0
 *
 * What a compiled class does with values, in C as it is: each function of the value part of the interface is
 * called here at least once. api_values_test.cpp runs these functions.
 */
#include "kernel/api/api.h"

#include <string.h>

void api_check(int32_t holds, const char* what, int32_t line); /* in api_values_test.cpp */
#define CHECK(condition) api_check((condition) ? 1 : 0, #condition, __LINE__)
#define CHECK_ERROR(code) CHECK(take_error() == (code))

static int32_t take_error(void) {
    const int32_t error = tarn_error_cell;
    tarn_clear_error();
    return error;
}

/* ---- texts ---- */

static tarn_string made(const char* text) {
    tarn_string s;
    tarn_string_init(&s, TARN_UNBOUNDED);
    tarn_string_assign_bytes(&s, text, (int32_t)strlen(text));
    return s;
}

static int is(const tarn_string* s, const char* text) {
    const int32_t length = tarn_string_length(s);
    if (length != (int32_t)strlen(text)) return 0;
    for (int32_t i = 1; i <= length; ++i)
        if (tarn_string_get(s, i) != (unsigned char)text[i - 1]) return 0;
    return 1;
}

void api_strings(void) {
    tarn_string a = made("abc"), b = made("abd"), c = made(""), fixed;
    CHECK(tarn_string_length(&a) == 3);
    CHECK(tarn_string_get(&a, 2) == 'b');
    CHECK(tarn_string_get(&a, 4) == 0);
    CHECK(tarn_string_compare(&a, &b) == -1);
    tarn_string_put(&b, 3, 'c');
    CHECK(tarn_string_compare(&a, &b) == 0);
    tarn_string_concat(&a, &b, &c);
    CHECK(is(&c, "abcabc"));
    tarn_string_init(&fixed, 4);
    tarn_string_assign(&fixed, &c);
    CHECK_ERROR(615);
    CHECK(is(&fixed, "abca"));
    tarn_string_assign_bytes(&fixed, 0, 3);
    CHECK(is(&fixed, ""));
    tarn_string_assign_bytes(&c, "x", -1);
    CHECK(is(&c, ""));
    tarn_string_free(&fixed);
    tarn_string_free(&c);
    tarn_string_free(&b);
    tarn_string_free(&a);
    CHECK_ERROR(0);
}

/* ---- values of any kind ---- */

void api_adt(void) {
    tarn_string a = made("-12"), b;
    int32_t i = 77;
    tarn_adt_init(&b, &a, TARN_STRING);
    tarn_adt_copy(&a, &b, TARN_STRING);
    CHECK(is(&b, "-12"));
    CHECK(tarn_adt_compare("EQ", &a, &b, TARN_STRING) == 1);
    CHECK(tarn_adt_compare("NE", &a, &b, TARN_STRING) == 0);
    CHECK(tarn_adt_compare(0, &a, &b, TARN_STRING) == 0);
    CHECK(tarn_adt_convert(&a, TARN_STRING, &i, TARN_INTEGER) == 1);
    CHECK(i == -12);
    tarn_adt_clear(&b, TARN_STRING);
    CHECK(is(&b, ""));
    CHECK(tarn_adt_convert(&b, TARN_STRING, &i, TARN_INTEGER) == 1);
    CHECK(i == -12);
    CHECK_ERROR(983);
    CHECK(tarn_adt_convert(&i, TARN_INTEGER, &b, TARN_LIST) == 0);
    CHECK_ERROR(0);
    tarn_adt_free(&b, TARN_STRING);
    tarn_adt_free(&a, TARN_STRING);
}

/* ---- arrays ---- */

#define NONE TARN_NO_DIMENSION

void api_arrays(void) {
    static const int32_t three[6] = {1, 3, NONE, NONE, NONE, NONE};
    static const int32_t four[6] = {1, 4, NONE, NONE, NONE, NONE};
    static const int32_t grid[6] = {0, 1, 5, 7, NONE, NONE};
    static const int32_t cube[6] = {0, 1, 0, 1, 0, 1};
    tarn_array a, b, g, c, d;
    int32_t v = 11;

    tarn_array_init(&a, TARN_INTEGER, three, 0);
    tarn_array_put(&a, 3, &v, TARN_INTEGER);
    v = 0;
    tarn_array_get(&a, 3, &v, TARN_INTEGER);
    CHECK(v == 11);
    memcpy(&v, tarn_array_ref(&a, 3), sizeof v);
    CHECK(v == 11);
    CHECK(tarn_array_ref(&a, 4) == 0);
    CHECK_ERROR(602);
    CHECK(tarn_array_dimensions(&a) == 1);
    CHECK(tarn_array_lower(&a, 1) == 1);
    CHECK(tarn_array_upper(&a, 1) == 3);

    tarn_array_init(&g, TARN_INTEGER, grid, 0);
    tarn_array_put2(&g, 1, 6, &v, TARN_INTEGER);
    v = 0;
    tarn_array_get2(&g, 1, 6, &v, TARN_INTEGER);
    CHECK(v == 11);
    CHECK(tarn_array_ref2(&g, 1, 6) != 0);
    CHECK(tarn_array_upper(&g, 2) == 7);

    tarn_array_init(&c, TARN_INTEGER, cube, 0);
    tarn_array_put3(&c, 1, 0, 1, &v, TARN_INTEGER);
    v = 0;
    tarn_array_get3(&c, 1, 0, 1, &v, TARN_INTEGER);
    CHECK(v == 11);
    CHECK(tarn_array_ref3(&c, 1, 0, 1) != 0);

    tarn_array_init_dynamic(&b, TARN_INTEGER, 0);
    tarn_array_assign(&b, &a);
    CHECK(tarn_array_upper(&b, 1) == 3);
    tarn_array_redim(&b, four, 1);
    tarn_array_get(&b, 3, &v, TARN_INTEGER);
    CHECK(v == 11);
    CHECK(tarn_array_upper(&b, 1) == 4);
    tarn_array_redim(&b, 0, 1);
    CHECK_ERROR(760);
    CHECK(tarn_array_upper(&b, 1) == 4);

    tarn_array_init_dynamic(&d, 0, 0);
    for (v = 5; v <= 6; ++v) tarn_array_auto_assign(&d, 1, v, &v, TARN_INTEGER);
    CHECK(tarn_array_lower(&d, 1) == 5);
    CHECK(tarn_array_upper(&d, 1) == 6);
    tarn_array_get(&d, 5, &v, TARN_INTEGER);
    CHECK(v == 5);

    tarn_adt_free(&d, TARN_ARRAY);
    tarn_adt_free(&b, TARN_ARRAY);
    tarn_adt_free(&c, TARN_ARRAY);
    tarn_adt_free(&g, TARN_ARRAY);
    tarn_adt_free(&a, TARN_ARRAY);
    CHECK_ERROR(0);

    tarn_array_init(&a, TARN_INTEGER, 0, 0);
    CHECK_ERROR(760);
    CHECK(a.tag == 0 && a.data == 0);
}

/* ---- sets ---- */

static int set_is(const tarn_set* s, const char* text) {
    tarn_string got = made("");
    tarn_set_to_text(s, 1, &got);
    const int same = is(&got, text);
    tarn_string_free(&got);
    return same;
}

void api_sets(void) {
    tarn_set a, b, c;
    tarn_string text = made("x[1..3, 7]y");
    int32_t position = 2;
    tarn_set_init(&a, TARN_UNBOUNDED, TARN_UNBOUNDED);
    tarn_set_init(&b, 1, 20);
    tarn_set_init(&c, TARN_UNBOUNDED, TARN_UNBOUNDED);
    CHECK(tarn_set_from_text(&text, &position, &a) == 0);
    CHECK(position == 11);
    CHECK(set_is(&a, "[1..3,7]"));
    CHECK(tarn_set_from_text(&text, &position, &a) == 1);
    CHECK(tarn_set_from_text(&text, 0, &a) == 610);
    CHECK_ERROR(610);
    tarn_set_include(5, &b);
    tarn_set_include_range(2, 8, &b);
    tarn_set_exclude(8, &b);
    tarn_set_exclude_range(4, 5, &b);
    CHECK(set_is(&b, "[2..3,6..7]"));
    CHECK(tarn_set_contains(7, &b) == 1);
    CHECK(tarn_set_contains(5, &b) == 0);
    tarn_set_union(&a, &b, &c);
    CHECK(set_is(&c, "[1..3,6..7]"));
    tarn_set_intersect(&a, &b, &c);
    CHECK(set_is(&c, "[2..3,7]"));
    tarn_set_difference(&a, &b, &c);
    CHECK(set_is(&c, "[1]"));
    CHECK(tarn_set_compare("GT", &a, &b) == 0);
    tarn_set_assign(&c, &b);
    CHECK(tarn_set_compare("EQ", &c, &b) == 1);
    CHECK(tarn_set_lower(&c) == 1);
    CHECK(tarn_set_upper(&c) == 20);
    tarn_set_redim(&c, 3, 6, 1);
    CHECK(set_is(&c, "[3,6]"));
    tarn_set_clear(&c);
    CHECK(set_is(&c, "[]"));
    tarn_set_free(&c);
    tarn_set_free(&b);
    tarn_set_free(&a);
    tarn_string_free(&text);
    CHECK_ERROR(0);
}

/* ---- records ---- */

/* The kinds of integer, string, fixed. */
static const uint8_t row_kinds[24] = {TARN_INTEGER << 4 | TARN_STRING, TARN_FIXED << 4};
static const uint8_t key_kinds[24] = {TARN_INTEGER << 4};

static tarn_record row_of(int32_t number, const char* name) {
    tarn_record r;
    tarn_string text = made(name);
    tarn_record_init(&r, TARN_TAG_RECORD, row_kinds);
    tarn_string_init((tarn_string*)tarn_record_field(&r, 2), TARN_UNBOUNDED);
    tarn_record_put(&r, 1, &number, TARN_INTEGER);
    tarn_record_put(&r, 2, &text, TARN_STRING);
    tarn_string_free(&text);
    return r;
}

void api_records(void) {
    tarn_record r = row_of(7, "seven"), copy;
    tarn_string text = made(" 1.25 ");
    int32_t number = 0;
    int64_t f = 0;
    double x = 2.5;
    CHECK(tarn_record_field_count(&r) == 3);
    CHECK(tarn_record_field_kind(&r, 2) == TARN_STRING);
    CHECK(tarn_record_field(&r, 4) == 0);
    tarn_record_get(&r, 1, &number, TARN_INTEGER);
    CHECK(number == 7);
    CHECK(is((const tarn_string*)tarn_record_field(&r, 2), "seven"));
    tarn_record_put_from_text(3, &text, &r);
    tarn_record_get(&r, 3, &f, TARN_FIXED);
    CHECK(f == 12500);
    tarn_record_get_as_text(&r, 3, &text);
    CHECK(is(&text, "1.2500"));
    tarn_record_append(&r, &x, TARN_REAL);
    CHECK(tarn_record_field_count(&r) == 4);
    tarn_adt_init(&copy, &r, TARN_RECORD);
    tarn_record_copy(&r, &copy);
    CHECK(tarn_adt_compare("EQ", &r, &copy, TARN_RECORD) == 1);
    tarn_record_free(&copy);
    tarn_record_free(&r);
    tarn_string_free(&text);
    CHECK_ERROR(0);
    tarn_record_init(&r, TARN_TAG_RECORD, 0);
    CHECK_ERROR(757);
    tarn_record_init(&r, TARN_TAG_UNION, 0);
    CHECK_ERROR(758);
    CHECK(r.tag == 0);
}

/* A fixed number behind a boolean stands at an odd address; it is read and written where it stands. */
void api_odd_addresses(void) {
    static const uint8_t kinds[24] = {TARN_BOOLEAN << 4 | TARN_FIXED, TARN_REAL << 4 | TARN_INTEGER};
    tarn_record r;
    tarn_string fixed = made("1.25"), real = made("-2.5E1"), integer = made(" 12"), yes = made("Yes"),
                set = made("[3]"), date = made("2001-02-03 04:05:06.0789");
    char place[64];
    int64_t f = 0;
    double x = 0;
    int32_t i = 0, parts[7];
    tarn_set s;
    tarn_record_init(&r, TARN_TAG_RECORD, kinds);
    CHECK(tarn_fixed_from_text(&fixed, (int64_t*)tarn_record_field(&r, 2)) == 1);
    CHECK(tarn_real_from_text(&real, (double*)tarn_record_field(&r, 3)) == 1);
    CHECK(tarn_integer_from_text(&integer, (int32_t*)tarn_record_field(&r, 4)) == 1);
    tarn_record_get(&r, 2, &f, TARN_FIXED);
    tarn_record_get(&r, 3, &x, TARN_REAL);
    tarn_record_get(&r, 4, &i, TARN_INTEGER);
    CHECK(f == 12500);
    CHECK(x == -25);
    CHECK(i == 12);
    for (int odd = 0; odd < 4; ++odd) {
        CHECK(tarn_boolean_from_text(&yes, (int32_t*)(place + odd)) == 1);
        memcpy(&i, place + odd, sizeof i);
        CHECK(i == 1);
        tarn_date_split(&date, (int32_t*)(place + odd));
        memcpy(parts, place + odd, sizeof parts);
        CHECK(parts[0] == 2001 && parts[3] == 4 && parts[6] == 789);
        i = 1;
        memcpy(place + odd, &i, sizeof i);
        tarn_set_init(&s, 1, 9);
        CHECK(tarn_set_from_text(&set, (int32_t*)(place + odd), &s) == 0);
        memcpy(&i, place + odd, sizeof i);
        CHECK(i == 4);
        tarn_set_free(&s);
    }
    tarn_record_free(&r);
    tarn_string_free(&date);
    tarn_string_free(&set);
    tarn_string_free(&yes);
    tarn_string_free(&integer);
    tarn_string_free(&real);
    tarn_string_free(&fixed);
    CHECK_ERROR(0);
}

/* ---- lists ---- */

void api_lists(void) {
    tarn_list l, file;
    tarn_string prototype = made(""), s = made("b");
    int32_t v = 4;
    tarn_list_init(&l, TARN_UNBOUNDED, &prototype, TARN_STRING, 0);
    tarn_list_append(&s, TARN_STRING, &l);
    tarn_string_put(&s, 1, 'c');
    tarn_list_append(&s, TARN_STRING, &l);
    tarn_string_put(&s, 1, 'a');
    tarn_list_insert(2, &s, &l);
    CHECK(tarn_list_count(&l) == 3);
    CHECK(is((const tarn_string*)tarn_list_ref(&l, 2), "a"));
    CHECK(tarn_list_ref(&l, 4) == 0);
    CHECK_ERROR(603);
    tarn_list_sort(&l, 1, 0);
    CHECK(tarn_list_string_find(&l, &s, 0) == 1);
    tarn_string_put(&s, 1, 'z');
    tarn_list_put(&s, TARN_STRING, 1, &l);
    tarn_string_put(&s, 1, '-');
    tarn_list_get(&l, 1, &s, TARN_STRING);
    CHECK(is(&s, "z"));
    tarn_list_delete(2, 1, &l);
    tarn_list_remove_last(&l);
    CHECK(tarn_list_count(&l) == 1);
    tarn_list_resize(5, &s, &l);
    CHECK_ERROR(761);
    tarn_list_clear(&l);
    CHECK(tarn_list_count(&l) == 0);
    tarn_list_init(&file, TARN_UNBOUNDED, 0, TARN_INTEGER, 1);
    tarn_list_append(&v, TARN_INTEGER, &file);
    CHECK_ERROR(661);
    tarn_adt_free(&file, TARN_LIST);
    tarn_adt_free(&l, TARN_LIST);
    tarn_string_free(&s);
    tarn_string_free(&prototype);
    CHECK_ERROR(0);
}

/* ---- tables ---- */

void api_files(const char* file, const char* table_file) {
    static const int32_t maps[5] = {0x01000000, 0, 0, 0, 0};
    int32_t number = 7, read = 0, found = 0;
    tarn_string name = made(file), fixed;
    tarn_list l;
    tarn_table t;
    tarn_record row, key;
    tarn_list_init(&l, 5, 0, TARN_INTEGER, 1);
    CHECK(tarn_file_exists(&l, TARN_LIST) == 0);
    tarn_list_append(&number, TARN_INTEGER, &l);
    CHECK_ERROR(661);
    CHECK(tarn_file_format(&l, TARN_LIST) == 0);
    CHECK_ERROR(661);
    tarn_file_open(&l, TARN_LIST, &name);
    CHECK_ERROR(0);
    CHECK(tarn_file_exists(&l, TARN_LIST) == 1);
    CHECK(tarn_file_format(&l, TARN_LIST) == 4);
    CHECK(tarn_file_record_length(&l, TARN_LIST) == 4);
    CHECK(tarn_file_header_size(&l, TARN_LIST) == 4);
    tarn_list_append(&number, TARN_INTEGER, &l);
    tarn_list_get(&l, 1, &read, TARN_INTEGER);
    CHECK(read == 7);
    tarn_file_close(&l, TARN_LIST);
    CHECK(tarn_file_exists(&l, TARN_LIST) == 0);
    tarn_file_open(&l, TARN_LIST, &name);
    CHECK(tarn_list_count(&l) == 1);
    tarn_list_clear(&l);
    tarn_adt_free(&l, TARN_LIST);
    tarn_string_free(&name);
    CHECK_ERROR(0);

    name = made("");
    tarn_string_init(&fixed, 10);
    tarn_record_init(&row, TARN_TAG_RECORD, key_kinds);
    tarn_record_init(&key, TARN_TAG_RECORD, key_kinds);
    tarn_record_append(&row, &fixed, TARN_STRING);
    tarn_table_init(&t, TARN_UNBOUNDED, &row, maps, "", 1);
    tarn_file_open(&t, TARN_TABLE, &name);
    CHECK_ERROR(661);
    tarn_string_free(&name);
    name = made(table_file);
    tarn_file_open(&t, TARN_TABLE, &name);
    CHECK_ERROR(0);
    tarn_record_put(&row, 1, &number, TARN_INTEGER);
    tarn_record_put(&key, 1, &number, TARN_INTEGER);
    tarn_table_add(&t, 1, &row);
    found = tarn_table_find("EQ", &t, 1, &key, &row);
    CHECK(found == 1);
    tarn_file_close(&t, TARN_TABLE);
    tarn_adt_free(&t, TARN_TABLE);
    tarn_record_free(&row);
    tarn_record_free(&key);
    tarn_string_free(&fixed);
    tarn_string_free(&name);
    CHECK_ERROR(0);
}

void api_tables(void) {
    static const int32_t maps[5] = {0x01000000, 0, 0, 0, 0};
    tarn_table t;
    tarn_record row = row_of(2, "two"), other = row_of(1, "one"), read = row_of(0, ""), key;
    int32_t number = 2;
    tarn_table_init(&t, TARN_UNBOUNDED, &row, maps, "", 0);
    tarn_record_init(&key, TARN_TAG_RECORD, key_kinds);
    tarn_record_put(&key, 1, &number, TARN_INTEGER);
    tarn_table_add(&t, 1, &row);
    tarn_table_add(&t, 1, &other);
    CHECK(tarn_table_count(&t) == 2);
    CHECK(tarn_table_index_count(&t) == 1);
    CHECK(tarn_table_index_for(&t, &key) == 1);
    tarn_table_add(&t, 1, &row);
    CHECK_ERROR(635);
    tarn_table_read(&t, 1, &key, &read);
    CHECK(is((const tarn_string*)tarn_record_field(&read, 2), "two"));
    CHECK(tarn_table_find("FIRST", &t, 1, 0, &read) == 1);
    CHECK(is((const tarn_string*)tarn_record_field(&read, 2), "one"));
    CHECK(tarn_table_find("GT", &t, 1, &key, &read) == 0);
    tarn_table_row(&t, 1, &read);
    CHECK(is((const tarn_string*)tarn_record_field(&read, 2), "two"));
    number = 9;
    tarn_record_put(&row, 1, &number, TARN_INTEGER);
    tarn_table_update(&row, 1, &key, &t);
    tarn_table_key_from_row(&t, 1, &row, &key);
    tarn_record_get(&key, 1, &number, TARN_INTEGER);
    CHECK(number == 9);
    CHECK(tarn_table_find("EQ", &t, 1, &key, &read) == 1);
    tarn_table_rebuild(&t);
    tarn_table_hold(&t);
    tarn_table_release(&t);
    tarn_table_delete(&t, 1, &key);
    CHECK(tarn_table_count(&t) == 1);
    tarn_table_clear(&t);
    CHECK(tarn_table_count(&t) == 0);
    tarn_adt_free(&t, TARN_TABLE);
    CHECK_ERROR(0);
    tarn_table_init(&t, TARN_UNBOUNDED, &row, 0, "", 0);
    CHECK_ERROR(762);
    CHECK(t.tag == 0);
    tarn_record_free(&key);
    tarn_record_free(&read);
    tarn_record_free(&other);
    tarn_record_free(&row);
    CHECK_ERROR(0);
}

/* ---- numbers ---- */

void api_arithmetic(void) {
    CHECK(tarn_integer_div(-7, 2) == -4);
    CHECK(tarn_integer_mod(-7, 2) == 1);
    CHECK(tarn_integer_div(1, 0) == 0);
    CHECK_ERROR(643);
    CHECK(tarn_integer_add(INT32_MAX, 1) == INT32_MIN);
    CHECK(tarn_integer_sub(INT32_MIN, 1) == INT32_MAX);
    CHECK(tarn_integer_mul(INT32_MIN, -1) == INT32_MIN);
    CHECK(tarn_integer_neg(INT32_MIN) == INT32_MIN);
    CHECK(tarn_fixed_from_real(1.25) == 12500);
    CHECK(tarn_fixed_from_real(1e300) == 0);
    CHECK_ERROR(641);
    CHECK(tarn_fixed_to_real(-12500) == -1.25);
    CHECK(tarn_fixed_from_integer(INT32_MIN) == INT32_MIN * INT64_C(10000));
    CHECK(tarn_fixed_to_integer(-19999) == -1);
    CHECK(tarn_fixed_to_integer(INT64_C(42949672970000)) == 1);
    CHECK(tarn_fixed_mul(15000, -20000) == -30000);
    CHECK(tarn_fixed_mul(INT64_C(10000000000000000), INT64_C(10000000000000000)) == INT64_MAX);
    CHECK(tarn_fixed_div(10000, 30000) == 3333);
    CHECK(tarn_fixed_div(1, 0) == 0);
    CHECK_ERROR(643);
    CHECK(tarn_fixed_add(INT64_MAX, 1) == INT64_MIN);
    CHECK(tarn_fixed_sub(INT64_MIN, 1) == INT64_MAX);
    CHECK(tarn_fixed_neg(INT64_MIN) == INT64_MIN);
    CHECK(tarn_real_div(1, 4) == 0.25);
    CHECK(tarn_real_div(1, 0) == 0);
    CHECK_ERROR(643);
    CHECK(tarn_crc32("ABC", 3, 0) == 0xA3830348u);
    CHECK(tarn_crc32("bc", 2, tarn_crc32("a", 1, 0)) == 0x352441C2u);
    CHECK(tarn_crc32(0, 3, 5) == 5);
    CHECK(tarn_crc32("a", -1, 5) == 5);
}

void api_number_texts(void) {
    tarn_string s = made(""), small;
    int32_t i = 77;
    int64_t f = 77;
    double x = 77;
    tarn_integer_to_text(255, -4, 16, &s);
    CHECK(is(&s, "FF  "));
    tarn_integer_to_text(-255, 1, 7, &s);
    CHECK(is(&s, "-255"));
    CHECK(tarn_integer_from_text(&s, &i) == 1 && i == -255);
    tarn_boolean_to_text(2, 60000, &s);
    CHECK(is(&s, "  True"));
    CHECK(tarn_boolean_from_text(&s, &i) == 1 && i == 1);
    tarn_fixed_to_text(-12345, 81000, &s);
    CHECK(is(&s, "    -1.2"));
    CHECK(tarn_fixed_from_text(&s, &f) == 1 && f == -12000);
    tarn_real_to_text(0.125, 12000, &s);
    CHECK(is(&s, "+1.25E-0001"));
    CHECK(tarn_real_from_text(&s, &x) == 1 && x == 0.125);
    tarn_string_assign_bytes(&s, "NULL", 4);
    CHECK(tarn_integer_from_text(&s, &i) == 1 && i == 0);
    CHECK(tarn_fixed_from_text(&s, &f) == 0 && f == -12000);
    tarn_string_assign_bytes(&s, "1E400", 5);
    CHECK(tarn_real_from_text(&s, &x) == 0 && x == 0.125);
    CHECK(tarn_integer_from_text(&s, &i) == 0 && i == 0);
    CHECK(tarn_boolean_from_text(&s, &i) == 0 && i == 0);
    CHECK_ERROR(0);
    CHECK(tarn_integer_from_text(&s, 0) == 0);
    CHECK_ERROR(610);
    CHECK(tarn_real_from_text(0, &x) == 0);
    CHECK_ERROR(756);
    tarn_string_init(&small, 3);
    tarn_integer_to_text(12345, 1, 10, &small);
    CHECK_ERROR(615);
    CHECK(is(&small, "123"));
    tarn_string_free(&small);
    tarn_string_free(&s);
}

/* ---- dates ---- */

void api_dates(void) {
    tarn_string date = made(""), unit = made("mm"), loose = made("31-Jan-2000 1:30 PM"), path = made("/");
    int32_t parts[7];
    tarn_date_make(2000, 1, 31, 1, 2, 3, 4, &date);
    CHECK(is(&date, "2000-01-31 01:02:03.0004"));
    tarn_date_split(&date, parts);
    CHECK(parts[0] == 2000 && parts[1] == 1 && parts[2] == 31 && parts[3] == 1 && parts[4] == 2 &&
          parts[5] == 3 && parts[6] == 4);
    CHECK(tarn_date_part(&unit, &date) == 1);
    tarn_date_add(&unit, 1, &date, &date);
    CHECK(is(&date, "2000-02-29 01:02:03.0004"));
    tarn_date_from_seconds(316224000000, &date);
    CHECK(is(&date, "1601-01-01 00:00:00.0000"));
    CHECK(tarn_date_to_seconds(&date) == 316224000000);
    CHECK(tarn_date_valid(2001, 2, 29, 0, 0, 0, 0) == 0);
    CHECK(tarn_date_valid(2000, 2, 29, 23, 59, 59, 9999) == 1);
    CHECK(tarn_days_in_month(1900, 2) == 28);
    CHECK(tarn_days_in_month(1900, 13) == 0);
    CHECK(tarn_date_parse(&loose, &date) == 1);
    CHECK(is(&date, "2000-01-31 13:30:00.0000"));
    CHECK(tarn_date_parse(&unit, &date) == 0);
    CHECK(is(&date, ""));
    CHECK(tarn_date_to_seconds(&date) == 0);
    tarn_date_split(&date, parts);
    CHECK(parts[0] == 0 && parts[6] == 0);
    tarn_date_make(2000, 13, 1, 0, 0, 0, 0, &date);
    CHECK(is(&date, ""));
    tarn_date_now(&date);
    CHECK(tarn_string_length(&date) == 24);
    tarn_file_time_text(&path, &date);
    CHECK(tarn_string_length(&date) == 24);
    tarn_string_assign_bytes(&path, "", 0);
    tarn_file_time_text(&path, &date);
    CHECK(is(&date, ""));
    CHECK_ERROR(0);
    tarn_date_split(&date, 0);
    CHECK_ERROR(610);
    CHECK(tarn_date_to_seconds(0) == 0);
    CHECK_ERROR(756);
    tarn_string_free(&path);
    tarn_string_free(&loose);
    tarn_string_free(&unit);
    tarn_string_free(&date);
}
