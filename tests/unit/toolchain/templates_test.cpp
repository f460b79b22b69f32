// SPDX-License-Identifier: Apache-2.0
//
// The templates that the settings ship are text of the language: each of them, with its parameters filled in, is
// accepted by the compiler, and the program that it becomes or belongs to runs without a display. The templates
// are expanded here by a small expander of this test's own.
#include "library/settings/profstr.h"
#include "support/places.h"
#include "support/toolchain_folder.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tarn::toolchain {
namespace {

using Parameters = std::map<std::string, std::string>;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

void replaceAll(std::string& text, const std::string& what, const std::string& with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
        text.replace(at, what.size(), with);
}

// `#FOR %i% = 1 TO n` ... `#NEXT %i%`, the outer loops first.
std::vector<std::string> unrolled(std::vector<std::string> lines) {
    for (bool again = true; std::exchange(again, false);) {
        std::vector<std::string> result;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            char name[20] = "";
            int from = 0, to = 0;
            if (std::sscanf(lines[i].c_str(), "#FOR %%%19[a-z]%% = %d TO %d", name, &from, &to) != 3) {
                result.push_back(lines[i]);
                continue;
            }
            again = true;
            const std::string variable = "%" + std::string(name) + "%";
            std::size_t next = i + 1;
            while (next < lines.size() && lines[next] != "#NEXT " + variable) ++next;
            for (int n = from; n <= to; ++n)
                for (std::size_t line = i + 1; line < next; ++line)
                    replaceAll(result.emplace_back(lines[line]), variable, std::to_string(n));
            i = next;
        }
        lines = std::move(result);
    }
    return lines;
}

// The `$Name$` and `$Name=TYPE$` of a line; those that have no value are empty.
std::string filled(const std::string& line, const Parameters& parameters) {
    std::string result;
    std::size_t at = 0;
    for (std::size_t sign = 0; (sign = line.find('$', at)) != std::string::npos;) {
        const std::size_t end = line.find('$', sign + 1);
        std::string name = line.substr(sign + 1, end - sign - 1);
        name.resize(std::min(name.find('='), name.size()));
        const auto value = parameters.find(name);
        result += line.substr(at, sign - at) + (value == parameters.end() ? "" : value->second);
        at = end + 1;
    }
    return result + line.substr(at);
}

std::vector<std::string> tokensOf(const std::string& line) {
    std::vector<std::string> tokens;
    std::size_t at = 0;
    while ((at = line.find_first_not_of(' ', at)) != std::string::npos) {
        const bool quoted = line[at] == '"';
        const std::size_t end = std::min(line.find(quoted ? '"' : ' ', at + 1), line.size());
        tokens.push_back(quoted ? line.substr(at + 1, end - at - 1) : line.substr(at, end - at));
        at = end + (quoted ? 1 : 0);
    }
    return tokens;
}

bool holds(const std::string& left, const std::string& relation, const std::string& right) {
    if (relation == "=") return left == right;
    if (relation == "<>") return left != right;
    EXPECT_EQ(relation, "IN");
    return ("," + right + ",").find(left) != std::string::npos;
}

// `#IF a = b #OR c IN d`, from left to right.
bool condition(const std::string& line) {
    const std::vector<std::string> tokens = tokensOf(line.substr(3));
    bool result = false;
    for (std::size_t i = 0; i + 2 < tokens.size(); i += 4) {
        const bool relation = holds(tokens[i], tokens[i + 1], tokens[i + 2]);
        if (i == 0)
            result = relation;
        else if (tokens[i - 1] == "#AND")
            result = result && relation;
        else
            result = result || relation;
    }
    return result;
}

std::string expanded(const std::string& name, const Parameters& parameters) {
    std::string text = PROFILESTRGET(SOURCE_DIR "/src/ide/ide.ini", "Template." + name + ".cls", "");
    EXPECT_NE(text, "") << name;
    replaceAll(text, "%MAX_FIELDS%", "48");
    std::string result;
    int depth = 0, skip = 0;
    for (const std::string& source : unrolled(linesOf(text))) {
        const std::string line = filled(source, parameters);
        if (line.starts_with("#//")) continue;
        if (line.starts_with("#IF")) {
            if (++depth > 0 && skip == 0 && !condition(line)) skip = depth;
        } else if (line.starts_with("#ELSE")) {
            skip = skip == 0 ? depth : skip == depth ? 0 : skip;
        } else if (line.starts_with("#END")) {
            if (skip == depth) skip = 0;
            --depth;
        } else if (skip == 0) {
            result += line + "\n";
        }
    }
    EXPECT_EQ(depth, 0) << name;
    return result;
}

class Templates : public ToolchainTest {
protected:
    // Builds the class and runs its program; what it writes, or the messages of the build.
    std::string built(const std::string& main) {
        if (ordo({"-fa", dir + main + ".cls", "-o" + dir + "o"}) != 0) return errors();
        EXPECT_EQ(run(dir + main + ".exe", {"--strict"}), 0) << output;
        return output;
    }
};

TEST_F(Templates, ANewProgramWithoutAWindowBuildsAndRuns) {
    write("app1.cls", expanded("NewMainClass", {{"Name", "App1"}, {"Program Type", "0"}}));
    EXPECT_NE(built("app1").find("Hello from App1."), std::string::npos) << output;
}

TEST_F(Templates, ANewProgramWithAWindowBuildsAndRuns) {
    const Parameters window = {{"Name", "Main"}, {"Caption", "Main"}};
    write("app1.cls", expanded("NewMainClass", {{"Name", "App1"}, {"Program Type", "1"}}));
    write("app1.rc", expanded("NewDialog", window));
    EXPECT_EQ(read("app1.cls").find("MSGBOX"), std::string::npos);
    EXPECT_EQ(built("app1"), "");
    EXPECT_TRUE(exists("app1.rcx"));
}

// As the environment adds it: the text of the window behind the resources, and its function in the class.
TEST_F(Templates, AnAddedWindowHasItsFunction) {
    const Parameters window = {{"Name", "Dialog1"}, {"Caption", "Dialog1"}};
    write("app1.rc", expanded("DialogBody", window));
    write("app1.cls", "Tarnwick Class App1\n" + expanded("FunctionBody", window) +
                          "function main()\n Load(Dialog1)\n PRINT(GetCaption(Dialog1))\n"
                          " Command(GetHandle(Dialog1), 20000, \"\")\n PRINT(STR(IsLoaded(Dialog1)))\nend "
                          "function\nEnd class\n");
    EXPECT_EQ(built("app1"), "Dialog1\nFalse\n");
}

TEST_F(Templates, ANewClassCanBeUsed) {
    write("new1.cls", expanded("NewNonMainClass", {{"Name", "New1"}}));
    write(
        "app1.cls",
        "Tarnwick Class App1\nUses new1\nfunction main()\n PRINT(DESCRIPTION())\nend function\nEnd class\n");
    EXPECT_EQ(built("app1"), "Class New1\n");
}

// ---- data sources ----

// The types of columns, and how each shows the text "1" that is put into it.
constexpr std::pair<const char*, const char*> Types[] = {
    {"integer", "1"},        {"string[255]", "1"},
    {"fixed", "1.0000"},     {"real", "+1.0000000000000000E+0000"},
    {"boolean", "True"},     {"enum", "1"},
    {"Tdatetime[24]", "1"},  {"Tchars[1:255]", "1"},
    {"Tnumeric[1:20]", "1"}, {"Tlogical[1:1]", "1"},
    {"Tdate[1:8]", "1"}};
const auto& typeOf(int column) {
    return Types[(column - 1) % static_cast<int>(std::size(Types))];
}

struct Source {
    int columns, shown, keys;
    bool isText;
};

Parameters parametersOf(const Source& source, const std::string& name) {
    Parameters all = {{"ClassName", "Orders"},
                      {"DbFile", source.isText ? "orders.csv" : "orders.data"},
                      {"DlgName", name},
                      {"Caption", name},
                      {"DlgRecName", "orders_RecordView"},
                      {"DlgTabName", "orders_TableView"},
                      {"NumHeaderRows", "1"},
                      {"NumFooterRows", "0"},
                      {"SeparatorChar", source.isText ? "44" : ""}};
    for (int i = 1; i <= source.columns; ++i) {
        const std::string n = std::to_string(i), column = "c" + n, type = typeOf(i).first;
        all["DbFields" + n] = column;
        all["DbTypes" + n] = type;
        all["DbDeclares" + n] = column + " : " + type;
        if (i <= source.shown) all["DlgFields" + n] = column;
        if (i <= source.shown) all["Status" + n] = std::to_string(i * 16 - 8);
        if (i <= source.keys) all["Keys" + n] = column;
        if (i <= source.keys) all["PrimaryKey"] += (i == 1 ? "" : ",") + column;
    }
    all["Offset"] = std::to_string(source.shown * 16 + 9);
    return all;
}

class DataSources : public Templates, public ::testing::WithParamInterface<Source> {};
INSTANTIATE_TEST_SUITE_P(Columns, DataSources,
                         ::testing::Values(Source{1, 1, 1, false}, Source{4, 3, 2, true},
                                           Source{48, 48, 4, false}));

TEST_P(DataSources, TheTableDeclarationIsText) {
    write("app1.cls", "Tarnwick Class App1\n" + expanded("TableDeclaration", parametersOf(GetParam(), "")) +
                          "private var rows : OrdersTable\n row : OrdersRec\nfunction main()\n row.c1 := 7\n"
                          " TABADD(rows, row)\n PRINT(STR(TABCOUNT(rows)))\nend function\nEnd class\n");
    EXPECT_EQ(built("app1"), "1\n");
}

class Connector : public DataSources {
protected:
    void SetUp() override {
        DataSources::SetUp();
        write("orders.cls", expanded("DatabaseDialog", parametersOf(GetParam(), "orders_DataView")));
        std::string windows;
        for (const std::string kind : {"DataView", "RecordView", "TableView"})
            windows += expanded(kind + "Dialog", parametersOf(GetParam(), "orders_" + kind));
        write("orders.rc", windows);
    }
    std::string program(const std::string& functions, const std::string& statements) {
        write("app1.cls", "Tarnwick Class App1\nUses orders\n" + functions +
                              "function main()\nvar row : OrdersRec\n" + statements +
                              "end function\nEnd class\n");
        return built("app1");
    }
    // A statement that prints all columns of `row`.
    static std::string show() {
        std::string text;
        for (int i = 1; i <= GetParam().columns; ++i)
            text += (i == 1 ? " PRINT(" : " + \" \" + ") + std::string("COLUMNTEXT(row, \"c") +
                    std::to_string(i) + "\")";
        return text + ")\n";
    }
};
INSTANTIATE_TEST_SUITE_P(Columns, Connector,
                         ::testing::Values(Source{1, 1, 1, false}, Source{4, 3, 2, true},
                                           Source{48, 48, 4, false}));

TEST_P(Connector, KeepsARowWithTheValueOfEachColumn) {
    std::string fill, expected;
    for (int i = 1; i <= GetParam().columns; ++i) {
        fill += " SETCOLUMN(\"c" + std::to_string(i) + "\", \"1\", row)\n";
        expected += (i == 1 ? "" : " ") + std::string(typeOf(i).second);
    }
    EXPECT_EQ(program("", " OPENROWS()\n" + fill + " TABADD(OrdersRows, row)\n CLOSEROWS()\n OPENROWS()\n" +
                              " for each row in OrdersRows loop\n" + show() + " end loop\n CLOSEROWS()\n"),
              expected + "\n");
}

TEST_P(Connector, ShowsItsRowsWithoutADisplayToo) {
    EXPECT_EQ(program("", " SHOWROWS()\n Load(orders_TableView)\n Load(orders_RecordView)\n"
                          " PRINT(GetCaption(orders_TableView.lsttable))\n"
                          " PRINT(STR(ControlUbound(orders_RecordView.fields)))\n CLOSEROWS()\n")
                  .substr(0, 2),
              "c1");
    EXPECT_TRUE(output.ends_with("\n" + std::to_string(GetParam().shown) + "\n")) << output;
}

// The row that is selected in the list is opened, and what the user does in its window changes the table. The user is
// the function of a window of the program's own.
TEST_P(Connector, ChangesTheRowThatIsOpened) {
    write("app1.rc", "User DIALOG\nEND\n");
    EXPECT_EQ(program(R"(
function PRESS(window : Control, button : string)
    var item : Control
    item := FINDCONTROL(window, button)
    Command(GetHandle(window), item.item, "")
end function
callback function User(in anEvent : integer, aControl : Control, aParameter : integer, out handled : boolean)
    if anEvent = TIMER_EVENT then
        PRINT(GetText(orders_RecordView.fields[1]))
        SetText(orders_RecordView.fields[1], "7")
        PRESS(orders_RecordView, "btnok")
    end if
end function
)",
                      R"(
    OPENROWS()
    row.c1 := 5
    TABADD(OrdersRows, row)
    row.c1 := 9
    TABADD(OrdersRows, row)
    Load(User)
    Load(orders_DataView)
    PRINT(STR(GetListCount(orders_DataView.lstrows)))
    SetListIndex(orders_DataView.lstrows, 2)
    POSTMESSAGE(User, TIMER_EVENT, 0)
    PRESS(orders_DataView, "btnopen")
    PRINT(STR(IsLoaded(orders_RecordView)))
    for each row in OrdersRows loop
        PRINT(STR(row.c1))
    end loop
    PRESS(orders_DataView, "btnclose")
    CLOSEROWS()
)"),
              "2\n9\nFalse\n5\n7\n");
}

// Of text the lines ahead of the rows are passed over, and what is changed is in the file when it is closed.
TEST_F(Templates, AConnectorOfTextReadsAndWritesIt) {
    const Parameters all = parametersOf({4, 4, 1, true}, "orders_DataView");
    write("orders.cls", expanded("DatabaseDialog", all));
    write("orders.rc", expanded("DataViewDialog", all) +
                           expanded("RecordViewDialog", parametersOf({4, 4, 1, true}, "orders_RecordView")) +
                           expanded("TableViewDialog", parametersOf({4, 4, 1, true}, "orders_TableView")));
    write("orders.csv", "c1,c2,c3,c4\n5,Ann,2.5,1.5\n3,Bob,0.25,7\n");
    write("app1.cls",
          "Tarnwick Class App1\nUses orders\nfunction main()\nvar row : OrdersRec\n OPENROWS()\n"
          " for each row in OrdersRows loop\n  PRINT(row.c2)\n end loop\n row.c1 := 4\n row.c2 := \"Cy\"\n"
          " TABADD(OrdersRows, row)\n CLOSEROWS()\nend function\nEnd class\n");
    EXPECT_EQ(built("app1"), "Bob\nAnn\n");
    EXPECT_NE(read("orders.csv").find("Cy"), std::string::npos) << read("orders.csv");
    EXPECT_TRUE(read("orders.csv").starts_with("c1,c2,c3,c4")) << read("orders.csv");
}

}  // namespace
}  // namespace tarn::toolchain
