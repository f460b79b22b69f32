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
        if (i == 0) result = relation;
        else if (tokens[i - 1] == "#AND") result = result && relation;
        else result = result || relation;
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
                          " Command(GetHandle(Dialog1), 20000, \"\")\n PRINT(STR(IsLoaded(Dialog1)))\nend function\nEnd class\n");
    EXPECT_EQ(built("app1"), "Dialog1\nFalse\n");
}

TEST_F(Templates, ANewClassCanBeUsed) {
    write("new1.cls", expanded("NewNonMainClass", {{"Name", "New1"}}));
    write("app1.cls",
          "Tarnwick Class App1\nUses new1\nfunction main()\n PRINT(DESCRIPTION())\nend function\nEnd class\n");
    EXPECT_EQ(built("app1"), "Class New1\n");
}

// ---- data sources ----

// The types of columns, and how each shows the text "1" that is put into it.
constexpr std::pair<const char*, const char*> Types[] = {{"integer", "1"},
                                                         {"string[255]", "1"},
                                                         {"fixed", "1.0000"},
                                                         {"real", "+1.0000000000000000E+0000"},
                                                         {"boolean", "True"},
                                                         {"enum", "1"},
                                                         {"Tdatetime[24]", "1"},
                                                         {"Tchars[1:255]", "1"},
                                                         {"Tnumeric[1:20]", "1"},
                                                         {"Tlogical[1:1]", "1"},
                                                         {"Tdate[1:8]", "1"}};
const auto& typeOf(int column) {
    return Types[(column - 1) % static_cast<int>(std::size(Types))];
}

struct Source {
    int columns, shown, keys;
    bool isText;
};

Parameters parametersOf(const Source& source, const std::string& name) {
    Parameters all = {{"ClassName", "Orders"},          {"DbFile", source.isText ? "orders.csv" : "orders.data"},
                      {"DlgName", name},                {"Caption", name},
                      {"DlgRecName", "orders_RecordView"}, {"DlgTabName", "orders_TableView"},
                      {"NumHeaderRows", "1"},           {"NumFooterRows", "0"},
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

TEST_P(DataSources, TheConnectorClassListsItsRows) {
    write("orders.cls", expanded("DatabaseDialog", parametersOf(GetParam(), "orders_DataView")));
    std::string windows;
    for (const char* kind : {"DataView", "RecordView", "TableView"})
        windows +=
            expanded(std::string(kind) + "Dialog", parametersOf(GetParam(), "orders_" + std::string(kind)));
    write("orders.rc", windows);
    std::string fill, show;
    for (int i = 1; i <= GetParam().columns; ++i) {
        const std::string column = "\"c" + std::to_string(i) + "\"";
        fill += " SETCOLUMN(" + column + ", \"1\", row)\n";
        show += (i == 1 ? "" : " + \" \" + ") + std::string("COLUMNTEXT(row, ") + column + ")";
    }
    write("app1.cls", "Tarnwick Class App1\nUses orders\nfunction main()\nvar row : OrdersRec\n OPENROWS()\n" + fill +
                          " TABADD(OrdersRows, row)\n SHOWROWS()\n for each row in OrdersRows loop\n  PRINT(" + show +
                          ")\n end loop\n CLOSEROWS()\nend function\nEnd class\n");
    std::string expected;
    for (int i = 1; i <= GetParam().columns; ++i)
        expected += (i == 1 ? "" : " ") + std::string(typeOf(i).second);
    EXPECT_EQ(built("app1"), expected + "\n");
}

}  // namespace
}  // namespace tarn::toolchain
