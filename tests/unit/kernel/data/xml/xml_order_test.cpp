// SPDX-License-Identifier: Apache-2.0
//
// The rows of XML files as the columns of a table.
#include "kernel/data/xml/xml_order.h"
#include "unit/kernel/xml_fixture.h"

namespace tarn {

namespace {

using Form = XmlRows::Form;

class XmlOrderTest : public Xml {
protected:
    static std::string formOf(std::string_view structure) {
        const XmlRows rows = XmlRowsOf(structure);
        const char* const names[] = {"rows", "values", "single"};
        return names[static_cast<std::size_t>(rows.form)] + std::to_string(rows.depth);
    }
    // The message without the file, or the number of rows.
    std::string order(const std::string& text, const std::vector<std::string>& columns,
                      const XmlRows& rows = {}) {
        disk.put(file, text);
        const XmlOrder found = XmlCheckOrder(file, columns, rows);
        EXPECT_EQ(found.message.empty() && found.missing.empty(), found.advice.empty());
        const std::string head = "File '/data/file.xml' ";
        const std::string missing =
            found.missing.empty() ? std::string() : found.missing.substr(head.size()) + " ";
        return missing +
               (found.message.empty() ? std::to_string(found.rows) : found.message.substr(head.size()));
    }
    std::string rowsOf(const std::string& text, std::string_view row, Form form) {
        disk.put(file, text);
        AnyValue table = AnyValue::table(row, {});
        const XmlResult result = XmlLoadRows(file, form, table.as<TableDescriptor>());
        EXPECT_EQ(AdtCheck(table.get(), KindTable), "");
        const std::string error = problem(result.error);
        return shown(table) + " " + std::to_string(result.count) + (error.empty() ? "" : " " + error);
    }
    static constexpr const char* one = "r : record\n\tv : integer\nend record\n";
    static constexpr const char* two = "r : record\n\tn : integer\n\ts : string\nend record\n";
};

TEST_F(XmlOrderTest, TheStructureTellsWhichElementsAreRows) {
    EXPECT_EQ(formOf("l : list\n\tr : record\n\t\ta : integer\n\tend record\nend list\n"), "rows2");
    EXPECT_EQ(formOf("l : list\n\tv : integer\nend list\n"), "values2");
    EXPECT_EQ(formOf("d : record\n\tl : list\n\t\tr : record\n\t\t\ta : integer\n\t\tend record\n\tend list\n"
                     "end record\n"),
              "rows3");
    EXPECT_EQ(formOf("d : record\n\ta : integer\nend record\n"), "single1");
    EXPECT_EQ(formOf("a : integer\n"), "single1");
    EXPECT_EQ(formOf(""), "single1");
}

TEST_F(XmlOrderTest, FieldsStandInTheOrderOfTheColumns) {
    EXPECT_EQ(order("<l><r><a>1</a><b>2</b></r><r><a/><b/></r></l>", {"a", "b"}), "2");
    EXPECT_EQ(order("<l><r a='1' b='2'/><r type='record' index='1' a='1' b=''/></l>", {"a", "b"}), "2");
    EXPECT_EQ(order("<l><!-- <x> --><r><?x <y>?><a><![CDATA[<z>]]></a></r></l>", {"a"}), "1");
    EXPECT_EQ(order("<l><r>\n<b>2</b></r></l>", {"a", "b"}),
              "line 2: element 'b' does not stand in the place of its column.");
    EXPECT_EQ(order("<l><r><a/><b/><c/></r></l>", {"a", "b"}),
              "line 1: element 'c' does not stand in the place of its column.");
    EXPECT_EQ(order("<l><r b='2'/></l>", {"a", "b"}),
              "line 1: attribute 'b' does not stand in the place of its column.");
    EXPECT_EQ(order("<l><v x='2'/><v y='2'/></l>", {"v"}, {Form::Values, 2}), "2");
    EXPECT_EQ(order("<r><a/><b/></r>", {"a", "b"}, {Form::Single, 1}), "1");
    EXPECT_EQ(order("<d><l><r><a/></r><r><a/></r></l></d>", {"a"}, {Form::Rows, 3}), "2");
    EXPECT_EQ(XmlCheckOrder("/data/none", {"a"}, {}).message, "File '/data/none' cannot be read.");
}

TEST_F(XmlOrderTest, TheFirstRowThatLacksItsLastFieldsIsTold) {
    EXPECT_EQ(order("<l><r><a>1</a></r>\n<r><a>1</a><b>3</b></r></l>", {"a", "b"}),
              "line 1: the row has no 'b'. 2");
    EXPECT_EQ(order("<l><r><a>1</a><b>2</b></r>\n<r/><r><a/></r></l>", {"a", "b"}),
              "line 2: the row has no 'a'. 3");
    EXPECT_EQ(order("<l><r><a>1</a></r>\n<r/></l>", {"a"}), "line 2: the row has no 'a'. 2");
    EXPECT_EQ(order("<l><r a='1' b='2'/>\n<r a='1'\n/></l>", {"a", "b"}), "line 2: the row has no 'b'. 2");
    EXPECT_EQ(order("<l><r><a/></r>\n<r><b/></r><r/></l>", {"a", "b"}),
              "line 1: the row has no 'b'. line 2: element 'b' does not stand in the place of its column.");
    EXPECT_EQ(order("<l><r type='record' a='1'/><r type='record' b='2'/></l>", {"a"}), "2");
    EXPECT_EQ(order("<l><v>1</v><v/></l>", {"v"}, {Form::Values, 2}), "2");
    EXPECT_EQ(order("<v>1</v>", {"v"}, {Form::Single, 1}), "1");
}

TEST_F(XmlOrderTest, ALoneLessThanIsText) {
    EXPECT_EQ(order("<l><r><a>1 < 2</a><b><</b></r><r><a>x <</a><b><3 <= <\t>\" ' <</b></r></l>", {"a", "b"}),
              "2");
    EXPECT_EQ(order("<l><r><a>1 <\n2</a>\n<b>3</b><c/></r></l>", {"a", "b"}),
              "line 3: element 'c' does not stand in the place of its column.");
    EXPECT_EQ(order("<l><r><_a>1</_a><:b/></r></l>", {"_a", ":b"}), "1");
}

TEST_F(XmlOrderTest, RowsOfEveryFormAreLoaded) {
    EXPECT_EQ(rowsOf("<l><r><n>1</n><s>a</s></r><r n='2' s='b'/></l>", two, Form::Rows),
              "|{1,'a'},{2,'b'}| 2");
    EXPECT_EQ(rowsOf("<l><v>1</v><v/><v>3</v></l>", one, Form::Values), "|{1},{0},{3}| 3");
    EXPECT_EQ(rowsOf("<l><v x='1'/><v x='2'/></l>", one, Form::Values), "|{1},{2}| 2");
    EXPECT_EQ(rowsOf("<l><v>x y</v><v>z</v></l>", "r : record\n\tv : string\nend record\n", Form::Values),
              "|{'x y'},{'z'}| 2");
    EXPECT_EQ(rowsOf("<l/>", one, Form::Values), "|| 0");
    EXPECT_EQ(rowsOf("<r><n>1</n><s>a</s></r>", two, Form::Single), "|{1,'a'}| 1");
    EXPECT_EQ(rowsOf("<r n='1' s='a'/>", two, Form::Single), "|{1,'a'}| 1");
    EXPECT_EQ(rowsOf("<v>7</v>", one, Form::Single), "|{7}| 1");
    EXPECT_EQ(rowsOf("<v x='7'/>", one, Form::Single), "|{7}| 1");
    EXPECT_EQ(rowsOf("<l><v x='1'/><v>2</v></l>", one, Form::Values),
              "|| 0 673 The text of element 'v' cannot be loaded, fields are expected there");
}

TEST_F(XmlOrderTest, WithoutMemoryRowsAreNotLoadedAndNothingLeaks) {
    const struct {
        const char *text, *row;
        Form form;
    } cases[] = {{"<l><v>one</v><v>two</v></l>", "r : record\n\tv : string\nend record\n", Form::Values},
                 {"<r><n>1</n><s>a</s></r>", two, Form::Single},
                 {"<v>seven</v>", "r : record\n\tv : string\nend record\n", Form::Single}};
    for (const auto& c : cases) {
        disk.put(file, c.text);
        std::int64_t n = 0;
        for (std::int32_t code = -1; code != 0; ++n) {
            SCOPED_TRACE(n);
            AnyValue table = AnyValue::table(c.row, {});
            FailAllocation(n);
            code = XmlLoadRows(file, c.form, table.as<TableDescriptor>()).error.code;
            FailAllocation(-1);
            EXPECT_TRUE(code == 0 || code == ERR_OUT_OF_MEMORY) << code;
            EXPECT_EQ(AdtCheck(table.get(), KindTable), "");
            ASSERT_LT(n, 100);
        }
        EXPECT_GT(n, 3);
    }
}

TEST_F(XmlOrderTest, TheLookIsStoppedByTheUser) {
    std::string text = "<l>\n";
    while (text.size() < std::size_t{2 * ProgressStep}) text += "<r><a>1</a></r>\n";
    disk.put(file, text + "</l>");
    UseProgress([](std::int64_t done, std::int64_t total) {
        EXPECT_LE(done, total);
        return false;
    });
    const XmlOrder found = XmlCheckOrder(file, {"a"}, {});
    EXPECT_TRUE(found.stopped);
    EXPECT_EQ(found.message, "");
}

}  // namespace

}  // namespace tarn
