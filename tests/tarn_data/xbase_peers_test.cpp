// SPDX-License-Identifier: Apache-2.0
//
// Xbase files that shapelib, python's dbf module and GDAL write, read field by field; ours read by them.
// Programs that are not installed are skipped, and say so.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xbase/xbase.h"
#include "kernel/lists/lists.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "tarn_data/fixture.h"

#include <cstdio>
#include <random>

namespace tarn::datatool {
namespace {

using namespace std::string_literals;

// One row as all sides show it: mark|id|price|ratio|name|ok|day.
struct Row {
    char mark = ' ';
    std::int32_t id = 0;
    Fixed price = 0;
    double ratio = 0;
    std::string name;
    bool ok = false;
    std::string day;
};
using Rows = std::vector<Row>;

std::string shown(const Row& row) {
    char numbers[80];
    std::snprintf(numbers, sizeof numbers, "|%d|%.4f|%.4f|", row.id, FixedToReal(row.price), row.ratio);
    return row.mark + std::string(numbers) + row.name + (row.ok ? "|T|" : "|F|") + row.day + "\n";
}

std::string shown(const Rows& rows) {
    std::string text;
    for (const Row& row : rows) text += shown(row);
    return text;
}

Rows chosenRows() {
    return {{' ', 1, 25000, 0.5, "Ann", true, "20240229"},
            {'*', -2, -1250, -0.125, "deleted", false, "19991231"},
            {' ', 0, 0, 0, "", false, ""},
            {' ', 2147483647, 9999999999999, 1234567.0625, "  leading, \"and\" ;'", true, "20000101"},
            {' ', -214748364, -9999999999999, -1234567.0625, "h\xE4\xF6\xFC\xDF", true, "20991231"},
            {'*', 7, 1, 0.0625, "exactly twenty-four char", false, "20010203"}};
}

Rows manyRows() {
    Rows rows = chosenRows();
    std::mt19937 random(20240229);
    for (int i = 0; i < 2000; ++i) {
        std::string name(random() % 25, ' ');
        for (char& c : name) c = "abcXYZ 0189.,;-+*'\"/()\xE4\xF6"[random() % 24];
        name.erase(name.find_last_not_of(' ') + 1);
        const std::string day = "20" + std::to_string(10 + random() % 90) + "1" +
                                std::to_string(random() % 3) + std::to_string(10 + random() % 20);
        rows.push_back({random() % 5 == 0 ? '*' : ' ', static_cast<std::int32_t>(random() % 1000000000),
                        static_cast<Fixed>(random()) * 1000 - 2000000000000,
                        (static_cast<double>(random()) - 2147483648.0) / 65536 * 16, name, random() % 2 == 0,
                        random() % 7 == 0 ? "" : day});
        rows.back().ratio = static_cast<double>(static_cast<std::int64_t>(rows.back().ratio)) / 16;
    }
    return rows;
}

const char* const fields =
    "delete_flag : Tchar\nid : integer\nprice : fixed\nratio : real\nname : string[24]\n"
    "ok : boolean\nday : Tdate[1:8]\n";

class XbasePeers : public TarnData {
protected:
    void TearDown() override {
        AdtFree(&list_, KindList);
        EXPECT_EQ(ErrorCell(), 0);
    }
    // An empty list of rows with these fields.
    ListDescriptor& list(std::string lines) {
        AdtFree(&list_, KindList);
        TypeInfoChangeIndent(2, lines, MaxTypeInfo);
        std::size_t position = 0;
        TypeInfoToValue("x : list\n\tr : record\n" + lines + "\tend record\nend list\n", position, &list_);
        return list_;
    }
    void writeOurs(const std::string& file, const Rows& rows) {
        ListDescriptor& values = list(fields);
        for (const Row& row : rows) put(row, static_cast<RecordDescriptor*>(ListAppendEmpty(&values)));
        EXPECT_EQ(XbaseSave(dir / file, &values, KindList, fields).code, 0);
    }
    // What a load of the file gives, or the failure.
    std::string readOurs(const std::string& file, const std::string& lines = fields) {
        ListDescriptor& values = list(lines);
        std::string message, text;
        const DataResult result = XbaseLoad(dir / file, &values, KindList, message, -1, lines);
        if (result.code != 0) text = std::to_string(result.code) + "@" + std::to_string(result.row) + message;
        for (std::int32_t i = 1; i <= values.count; ++i)
            text += shown(get(static_cast<const RecordDescriptor*>(ListRef(&values, i))));
        return text;
    }
    bool installed(const std::string& command) { return shell(command) == 0; }

private:
    static void put(const Row& row, RecordDescriptor* record) {
        *static_cast<char*>(RecordFieldAddress(record, 1)) = row.mark;
        WriteAt(RecordFieldAddress(record, 2), row.id);
        WriteAt(RecordFieldAddress(record, 3), row.price);
        WriteAt(RecordFieldAddress(record, 4), row.ratio);
        StringAssignView(static_cast<StringDescriptor*>(RecordFieldAddress(record, 5)), row.name);
        *static_cast<char*>(RecordFieldAddress(record, 6)) = row.ok ? 1 : 0;
        char* const day = At(static_cast<ArrayDescriptor*>(RecordFieldAddress(record, 7))->data);
        std::memcpy(day, row.day.empty() ? "        " : row.day.data(), 8);
    }
    static Row get(const RecordDescriptor* record) {
        const auto at = [&](std::int32_t n) {
            return static_cast<const char*>(RecordFieldAddress(record, n));
        };
        Row row;
        row.mark = *at(1);
        row.id = ReadAt<std::int32_t>(at(2));
        row.price = ReadAt<Fixed>(at(3));
        row.ratio = ReadAt<double>(at(4));
        row.name = StringView(reinterpret_cast<const StringDescriptor*>(at(5)));
        row.ok = RecordFieldKind(record, 6) == KindBoolean
                     ? *at(6) != 0
                     : StringView(reinterpret_cast<const StringDescriptor*>(at(6))) == "T";
        row.day.assign(At(reinterpret_cast<const ArrayDescriptor*>(at(7))->data), 8);
        row.day.erase(row.day.find_last_not_of(' ') + 1);
        return row;
    }

    ListDescriptor list_{};
};

// ---- shapelib ----

#ifdef DBF_PEER
#define NEED_SHAPELIB()
#else
#define DBF_PEER ""
#define NEED_SHAPELIB() GTEST_SKIP() << "libshp-dev is not installed"
#endif

TEST_F(XbasePeers, FilesOfShapelibAreReadFieldByField) {
    NEED_SHAPELIB();
    for (const Rows& rows : {chosenRows(), manyRows()}) {
        write("rows.txt", shown(rows));
        ASSERT_EQ(shell(DBF_PEER " write a.dbf rows.txt"), 0) << errors;
        EXPECT_EQ(readOurs("a.dbf"), shown(rows));
    }
    std::string message;
    EXPECT_EQ(XbaseTypeInfo(dir / "a.dbf", message),
              "Ta : record\n\tdelete_flag : Tchar\n\tID : Tnumeric[1:10]\n\tPRICE : Tnumeric[1:20]\n"
              "\tRATIO : Tnumeric[1:19]\n\tNAME : Tchars[1:24]\n\tOK : Tlogical[1:1]\n\tDAY : Tdate[1:8]\n"
              "end record\n");
    EXPECT_EQ(message, "");
}

TEST_F(XbasePeers, OurFilesAreReadByShapelib) {
    NEED_SHAPELIB();
    for (const Rows& rows : {Rows{}, chosenRows(), manyRows()}) {
        writeOurs("a.dbf", rows);
        ASSERT_EQ(shell(DBF_PEER " dump a.dbf"), 0) << errors;
        EXPECT_EQ(output, shown(rows));
    }
    ASSERT_EQ(shell(DBF_PEER " fields a.dbf"), 0) << errors;
    EXPECT_EQ(output, "id N 12 0\nprice N 20 4\nratio N 20 4\nname C 24 0\nok L 1 0\nday D 8 0\n");
}

TEST_F(XbasePeers, FilesWithoutRowsAndFieldsOfShapelibAreRead) {
    NEED_SHAPELIB();
    write("rows.txt", "");
    ASSERT_EQ(shell(DBF_PEER " write a.dbf rows.txt"), 0) << errors;
    EXPECT_EQ(readOurs("a.dbf"), "");
}

// Numbers that are not known are '*' there, which is no number; all else is empty.
TEST_F(XbasePeers, NumbersThatShapelibDoesNotKnowAreFailures) {
    NEED_SHAPELIB();
    ASSERT_EQ(shell(DBF_PEER " nulls a.dbf"), 0) << errors;
    EXPECT_EQ(readOurs("a.dbf"), "658@1 |0|0.0000|0.0000||F|00000000\n");
}

// ---- python ----

TEST_F(XbasePeers, FilesOfPythonAreReadFieldByField) {
    if (!installed("/usr/bin/python3 -W ignore -c 'import dbf'"))
        GTEST_SKIP() << "python3-dbf is not installed";
    // It takes the blanks in front of a text away.
    Rows rows = manyRows();
    std::erase_if(rows, [](const Row& row) { return row.name.starts_with(' '); });
    write("rows.txt", shown(rows));
    ASSERT_EQ(python("dbf_peers.py", "write a.dbf rows.txt"), 0) << errors;
    EXPECT_EQ(readOurs("a.dbf"), shown(rows));
}

TEST_F(XbasePeers, OurFilesAreReadByPython) {
    if (!installed("/usr/bin/python3 -W ignore -c 'import dbf'"))
        GTEST_SKIP() << "python3-dbf is not installed";
    for (const Rows& rows : {Rows{}, chosenRows(), manyRows()}) {
        writeOurs("a.dbf", rows);
        ASSERT_EQ(python("dbf_peers.py", "dump a.dbf"), 0) << errors;
        EXPECT_EQ(output, shown(rows));
    }
}

// ---- GDAL ----

// It does not show rows that are deleted, takes the blanks in front of a text away, and writes an empty date
// as zeros.
Rows rowsForGdal() {
    Rows rows = manyRows();
    std::erase_if(
        rows, [](const Row& row) { return row.mark != ' ' || row.name.starts_with(' ') || row.day.empty(); });
    return rows;
}

TEST_F(XbasePeers, OurFilesAreReadByGdal) {
    if (!installed("command -v ogr2ogr")) GTEST_SKIP() << "gdal-bin is not installed";
    writeOurs("a.dbf", rowsForGdal());
    ASSERT_EQ(shell("ogr2ogr -f CSV a.csv a.dbf"), 0) << errors;
    ASSERT_EQ(python("dbf_peers.py", "csv a.csv"), 0) << errors;
    EXPECT_EQ(output, shown(rowsForGdal()));
}

TEST_F(XbasePeers, FilesOfGdalAreReadFieldByField) {
    if (!installed("command -v ogr2ogr")) GTEST_SKIP() << "gdal-bin is not installed";
    writeOurs("a.dbf", rowsForGdal());
    ASSERT_EQ(shell("ogr2ogr -f 'ESRI Shapefile' -lco ENCODING=ISO-8859-1 b.dbf a.dbf"), 0) << errors;
    EXPECT_EQ(
        readOurs("b.dbf", std::string(fields).replace(std::string_view(fields).find("boolean"), 7, "string")),
        shown(rowsForGdal()));
}

}  // namespace
}  // namespace tarn::datatool
