// SPDX-License-Identifier: Apache-2.0
//
// Data files as tables of the explorer and the preview, without a screen: the columns keep their number and
// order whatever their names are, and what cannot be shown as it is, is told.
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "kernel/values/values.h"
#include "library/data/dbutil.h"
#include "library/data/dbutil_grid.h"
#include "library/data/dbutil_windows.h"
#include "library/system/system.h"
#include "os/files.h"
#include "platform/model/view.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

class LoadTable : public ::testing::Test {
protected:
    LoadTable() : steered_(files_) { files_.putFolder("/d"); }
    void SetUp() override {
        ClearError();
        before_ = platform::useView(platform::makeHeadlessView());
    }
    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(before_));
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(files_.openHandles(), 0);
        ClearError();
    }
    using Names = std::vector<std::string>;
    struct Loaded {
        std::string message;
        Names columns;
        std::int32_t rows = 0;
    };
    Loaded load(const std::string& file, std::string_view bytes, const DataOptions* options,
                DataFormat format) {
        files_.put(file, bytes);
        const DataTable data = LOADDATATABLE(file, options, format);
        EXPECT_EQ(data.step, DataTable::Step::Done);
        EXPECT_EQ(data.columns, static_cast<int>(TABLEFIELDNAMES(data.table.get()).size()));
        return {data.message + data.remark, TABLEFIELDNAMES(data.table.get()), TableCount(data.table.get())};
    }

    os::SteeredFiles files_;
    os::Steered steered_;
    std::unique_ptr<platform::View> before_;
};

// What stands behind the rows that are shown is not read: it may be a gigabyte, and may not fit.
TEST_F(LoadTable, OfALongFileTheFirstRowsTellTheColumns) {
    constexpr int most = MaxBlock / KindSize[KindRecord];
    std::string text = "id,name\n";
    for (int n = 1; n <= most + 1; ++n) text += std::to_string(n) + ",x\n";
    text += "no number,x\n";
    const DataOptions options{1, 0, ',', -1, false};
    files_.put("/d/long.csv", text);
    const DataTable data = LOADDATATABLE("/d/long.csv", &options, FormatComma);
    EXPECT_EQ(data.remark, "Only the first 113777 rows are shown, a table in memory holds no more.");
    EXPECT_EQ(TableCount(data.table.get()), most);
    const auto* const row = static_cast<const RecordDescriptor*>(ListRef(TableRows(data.table.get()), most));
    EXPECT_EQ(RecordFieldKind(row, 1), KindInteger);
    EXPECT_EQ(ReadAt<std::int32_t>(RecordFieldAddress(row, 1)), most);
}

TEST_F(LoadTable, XmlRowsKeepEveryColumn) {
    const Loaded loaded = load("/d/f.xml",
                               "<rows><r><id>1</id><end>5</end><qty>3</qty></r>"
                               "<r><id>2</id><end>6</end><qty>4</qty></r></rows>",
                               nullptr, FormatXml);
    EXPECT_EQ(loaded.message, "");
    EXPECT_EQ(loaded.columns, (Names{"id", "end_1", "qty"}));
    EXPECT_EQ(loaded.rows, 2);
}

TEST_F(LoadTable, ASingleXmlRecordKeepsEveryColumn) {
    for (const std::string name : {"end", "END", "first-name"}) {
        const Loaded loaded = load("/d/f.xml", "<r><id>1</id><" + name + ">5</" + name + "><qty>3</qty></r>",
                                   nullptr, FormatXml);
        EXPECT_EQ(loaded.message, "") << name;
        EXPECT_EQ(loaded.columns.size(), 3U) << name;
        EXPECT_EQ(loaded.rows, 1) << name;
    }
}

TEST_F(LoadTable, DelimitedTextKeepsEveryColumn) {
    const DataOptions header{1, 0, ',', -1};
    const Loaded loaded =
        load("/d/f.csv", "id,end,\"price : EUR\",order no\n1,2,3,4\n", &header, FormatComma);
    EXPECT_EQ(loaded.message, "");
    EXPECT_EQ(loaded.columns, (Names{"id", "end_1", "price___EUR", "order_no"}));
    EXPECT_EQ(loaded.rows, 1);
}

TEST_F(LoadTable, AByteOrderMarkIsNoTextOfTheFirstCell) {
    const DataOptions header{1, 0, ',', -1}, footers{0, 2, ',', -1};
    const std::string mark = "\xEF\xBB\xBF";
    const Loaded loaded = load("/d/f.csv", mark + "id,name\n1,Ann\n", &header, FormatComma);
    EXPECT_EQ(loaded.message, "");
    EXPECT_EQ(loaded.columns, (Names{"id", "name"}));
    EXPECT_EQ(loaded.rows, 1);
    EXPECT_EQ(GETPOSSIBLEFILEDETAILS("/d/f.csv").headerRows, "1");
    files_.put("/d/f.csv", mark + "1\n");
    EXPECT_EQ(LOADDATATABLE("/d/f.csv", &footers, FormatComma).step, DataTable::Step::Columns);
    // Programs read it as it stands.
    EXPECT_NE(GetDataFileInfo("/d/f.csv", &header).message.find("unknown file type"), std::string::npos);
}

// ---- cells, remarks and failures ----

std::string cell(const RecordDescriptor* row, std::int32_t n) {
    const void* const field = RecordFieldAddress(row, n);
    switch (FieldKindAt(row->kinds, n)) {
    case KindInteger: return STR(ReadAt<std::int32_t>(field));
    case KindReal: return STR(static_cast<int>(ReadAt<double>(field) * 1000)) + "/1000";
    case KindString: return std::string(StringView(static_cast<const StringDescriptor*>(field)));
    default: return "?";
    }
}

class DataTables : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        before = platform::useView(platform::makeHeadlessView());
    }
    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(before));
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    DataTable load(const std::string& name, const std::string& text, const DataOptions* options = nullptr) {
        EXPECT_TRUE(os::saveFile(folder / name, text, os::Durability::Unsynced).ok());
        return LOADDATATABLE(folder / name, options, DataFormatOf(name));
    }
    // Names and rows, or why there are none.
    static std::string shown(const DataTable& data) {
        if (data.step == DataTable::Step::Stopped) return "stopped" + data.message;
        if (data.step != DataTable::Step::Done) return data.message;
        std::string text;
        for (const std::string& name : TABLEFIELDNAMES(data.table.get())) text += name + " ";
        const ListDescriptor* const rows = TableRows(data.table.get());
        for (std::int32_t i = 1; i <= rows->count; ++i) {
            const auto* const row = static_cast<const RecordDescriptor*>(ListRef(rows, i));
            text += '{';
            for (std::int32_t n = 1; n <= FieldCountOf(row->kinds); ++n)
                text += (n > 1 ? "|" : "") + cell(row, n);
            text += '}';
        }
        return text;
    }
    static constexpr DataOptions header{1, 0, ',', -1};
    TempFolder folder;

private:
    std::unique_ptr<platform::View> before;
};

TEST_F(DataTables, RemarksTellRowsOfDelimitedTextAndLinesOfXml) {
    const DataOptions two{0, 0, ',', 2};
    DataTable data = load("a.csv", "1\n2\n", &two);
    EXPECT_EQ(shown(data), "FIELD1 {1}{2}");
    EXPECT_EQ(data.remark, "");
    data = load("a.csv", "a\n1\n\nx\n", &header);
    EXPECT_EQ(shown(data), "a {1}{0}{0}");
    EXPECT_EQ(data.remark.substr(0, 7), "Row 3: ") << data.remark;
    data = load("a.xml", "<l>\n<r><a>1</a><b type='real'>1</b></r>\n<r><a>2</a><b type='real'>x</b></r></l>");
    EXPECT_EQ(shown(data), "a b {1|1000/1000}{2|0/1000}");
    EXPECT_EQ(data.remark, "Line 3: Real number expected here\n"
                           "Values that could not be read are shown as 0, or cut.");
}

TEST_F(DataTables, SignsOfAFileThatWasCutOffOrFollowsOtherRulesAreTold) {
    const auto xbase = [](char counted, const std::string& rows) {
        std::string head = {3, 126, 11, 22, counted, 0, 0, 0, 65, 0, 4, 0};
        head.resize(65);
        head.replace(32, 1, "A");
        head[43] = 'C';
        head[48] = 3;
        head[64] = 13;
        return head + rows;
    };
    EXPECT_EQ(load("a.dbf", xbase(2, " one two\x1A")).remark, "");
    EXPECT_EQ(load("a.dbf", xbase(3, " one two")).remark,
              "Its header counts 3 rows, and 2 rows are there: it may have been cut off.");
    EXPECT_EQ(load("a.dbf", xbase(2, " one tw")).remark,
              "Its header counts 2 rows, and 1 row is there: it may have been cut off.");
    EXPECT_EQ(load("a.dbf", xbase(1, " one two")).remark,
              "Its header counts 1 row, and 2 rows are shown: the last ones may be no rows.");
    EXPECT_EQ(load("a.csv", "a,b\r1,2\r", &header).remark,
              "Its lines end with carriage returns alone, which end no line here: all of it is one.");
    EXPECT_EQ(load("a.csv", "a,b\r\n1,2\r\n", &header).remark, "");
    EXPECT_EQ(
        load("a.csv", std::string("a,b\n1,2\nx\0y,2\n", 13), &header).remark,
        "Line 3 holds a byte 0, at which a cell without quotes ends: what follows in the cell is not shown.");
}

TEST_F(DataTables, ARowOfOtherTypesIsNamedByItsNumber) {
    const DataTable data = load("a.csv", "d\n2000-01-31\n2000-02-01\nx\n2000-02-03\n", &header);
    EXPECT_EQ(data.step, DataTable::Step::Columns);
    EXPECT_EQ(data.message,
              "The type of element 'd' changed, from Tdatetime to string\n"
              "It changed in data row 3. Look whether that cell is right, and whether the header rows and "
              "the separator are.");
}

TEST_F(DataTables, XmlOfManyShapesGivesRows) {
    const struct {
        const char *text, *expected;
    } cases[] = {
        {"<l><r><a>1</a><b>x</b></r><r><a>2</a><b>yy</b></r></l>", "a b {1|x}{2|yy}"},
        {"<l><r a='1' b='x'/><r a='2' b='y'/></l>", "a b {1|x}{2|y}"},
        {"<d><l><r><a>1</a><b/></r><r><a>2</a><b>y</b></r></l></d>", "a b {1|}{2|y}"},
        {"<l><r><a>1</a><b/><c>3</c></r><r><a>4</a><b/><c>6</c></r></l>", "a b c {1||3}{4||6}"},
        {"<l><v>1</v><v>2</v></l>", "v {1}{2}"},
        {"<l><v>one</v><v>2</v><v/></l>", "v {one}{2}{}"},
        {"<l><v x='1'/><v x='2'/></l>", "v {1}{2}"},
        {"<r><a>1</a><b>x</b></r>", "a b {1|x}"},
        {"<r first-name='x' last-name='y'/>", "first_name last_name {x|y}"},
        {"<r>5</r>", "r {5}"},
        {"<r x='5'/>", "r {5}"},
        {"<c><phone type='home'>1</phone><phone type='mobile'>2</phone></c>", "phone {1}{2}"},
    };
    for (const auto& c : cases) {
        const DataTable data = load("a.xml", c.text);
        EXPECT_EQ(shown(data), c.expected) << c.text;
        EXPECT_EQ(data.remark, "") << c.text;
    }
}

TEST_F(DataTables, XmlRowsThatLackTheirLastFieldsAreShownWithARemark) {
    const DataTable data = load("a.xml", "<l><r><a>1</a><b>2</b></r>\n<r><a>3</a></r><r/></l>");
    EXPECT_EQ(shown(data), "a b {1|2}{3|0}{0|0}");
    EXPECT_EQ(data.remark, "File '" + (folder / "a.xml") +
                               "' line 2: the row has no 'b'.\n"
                               "Fields that are missing are shown as 0, or empty.");
}

TEST_F(DataTables, ColumnsThatAreNotShownAreTold) {
    const std::string told = "Only the first 48 of 60 columns are shown.";
    const auto row = [](int columns, const char* before, const char* behind) {
        std::string text;
        for (int i = 1; i <= columns; ++i) text += before + STR(i) + behind;
        return text;
    };
    DataTable data = load("a.csv", row(60, "c", ",") + "\n" + row(60, "", ",") + "\n", &header);
    EXPECT_EQ(data.columns, 48);
    EXPECT_EQ(data.remark, "Only the first 48 of 61 columns are shown.");
    std::string names;
    for (int i = 1; i <= 60; ++i) names += "<c" + STR(i) + ">1</c" + STR(i) + ">";
    data = load("a.xml", "<l><r>" + names + "</r><r>" + names + "</r></l>");
    EXPECT_EQ(data.columns, 48);
    EXPECT_EQ(data.remark, told);
    data = load("a.xml", "<r>" + names + "</r>");
    EXPECT_EQ(data.remark, told);
    data = load("a.xml", "<d><l><r>" + names + "</r><r>" + names + "<extra/></r></l></d>");
    EXPECT_EQ(data.remark,
              "File '" + (folder / "a.xml") +
                  "' line 1: the row has no 'extra'.\nFields that are missing are shown as 0, or "
                  "empty.\nOnly the first 48 of 61 columns are shown.");
    data = load("a.csv", row(48, "c", ",").substr(0, row(48, "c", ",").size() - 1) + "\n", &header);
    EXPECT_EQ(data.columns, 48);
    EXPECT_EQ(data.remark, "");
}

TEST_F(DataTables, XmlThatWouldBeShownUnderWrongNamesIsNotShown) {
    const struct {
        const char *text, *expected;
    } cases[] = {
        {"<l>\n<r><a>1</a><c>3</c></r>\n<r><a>4</a><b>5</b><c>6</c></r></l>",
         " line 2: element 'c' does not stand in the place of its column."},
        {"<l><r a='1' b='2' c='3'/>\n<r a='1' c='3'/></l>",
         " line 2: attribute 'c' does not stand in the place of its column."},
        {"<l><r type='record' b='1'/>\n<r a='1' b='2'/></l>",
         " line 1: attribute 'b' does not stand in the place of its column."},
        {"<l><r a='1' b='2'><c>1</c><d>1</d></r><r><c>1</c><d>1</d></r></l>",
         " line 1: element 'c' stands in a row that has data in attributes, too."},
    };
    for (const auto& c : cases) {
        const DataTable data = load("a.xml", c.text);
        EXPECT_EQ(data.step, DataTable::Step::Rows) << c.text;
        EXPECT_EQ(data.message.substr(0, data.message.find('\n')),
                  "File '" + (folder / "a.xml") + "'" + c.expected);
        EXPECT_EQ(data.table.get()->tag, 0) << c.text;
    }
    const DataTable data = load("a.xml", "<l>\n<v x='5'/>\n<v>6</v></l>");
    EXPECT_EQ(data.step, DataTable::Step::Rows);
    EXPECT_EQ(data.message, "Line 3: The text of element 'v' cannot be loaded, fields are expected there");
}

}  // namespace
}  // namespace tarn
