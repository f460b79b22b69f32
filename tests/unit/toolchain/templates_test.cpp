// SPDX-License-Identifier: Apache-2.0
//
// The templates that the settings ship are text of the language: each of them, with its parameters filled in, is
// accepted by the compiler, and the program that it becomes or belongs to runs without a display.
#include "library/designer/proputil.h"
#include "library/source/codewiz.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "support/places.h"
#include "support/toolchain_folder.h"

#include <map>
#include <string>
#include <utility>

namespace tarn::toolchain {
namespace {

using Parameters = std::map<std::string, std::string>;

std::string loaded(const std::string& name) {
    const TemplateText loaded = LOADTEMPLATE(SOURCE_DIR "/src/ide/ide.ini", "Template." + name + ".cls");
    EXPECT_EQ(loaded.message, "");
    return loaded.text;
}

// Parameters that are not given are empty.
std::string expanded(const std::string& name, const Parameters& parameters) {
    const std::string text = loaded(name);
    TemplateParameters list = TEMPLATETOPROPLIST(text);
    for (const auto& [parameter, value] : parameters) SETPROPVALUE(parameter, value, list.names, list.values);
    const TemplateText result = UPDATETEMPLATE(list, text, true);
    EXPECT_EQ(result.message, "");
    return result.text;
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
    write("app1.rc", expanded("NewDialog", {{"Name", "Other"}, {"Caption", "Other"}}) + "\r\n" +
                         expanded("DialogBody", window));
    std::string text = "Tarnwick Class App1\nfunction main()\n Load(Dialog1)\n PRINT(GetCaption(Dialog1))\n"
                       " Command(GetHandle(Dialog1), 20000, \"\")\n PRINT(STR(IsLoaded(Dialog1)))\nend "
                       "function\nEnd class\n";
    EXPECT_EQ(SYMADDFUNCTION(FUNCTIONFROMTEMPLATE("Dialog1", loaded("FunctionBody")).text, 0, text), "");
    write("app1.cls", text);
    EXPECT_EQ(built("app1"), "Dialog1\nFalse\n");
}

TEST_F(Templates, TheFunctionOfAWindowFitsOneWithoutButtonsToo) {
    write("app1.rc", expanded("NewDialog", {{"Name", "Plain"}, {"Caption", "Plain"}}));
    write("app1.cls", "Tarnwick Class App1\n" + FUNCTIONFROMTEMPLATE("Plain", loaded("FunctionBody")).text +
                          "function main()\n Load(Plain)\n PRINT(GetCaption(Plain))\n Unload(Plain)\n"
                          " PRINT(STR(IsLoaded(Plain)))\nend function\nEnd class\n");
    EXPECT_EQ(built("app1"), "Plain\nFalse\n");
}

TEST_F(Templates, TheArgumentsOfAWindowFunctionStandBelowEachOther) {
    std::string text = FUNCTIONFROMTEMPLATE("AnyName", loaded("FunctionBody")).text;
    const std::string before = text;
    EXPECT_EQ(SYMINDENTFUNCHEADER("*", 0, text), "");
    EXPECT_EQ(text, before);
}

TEST_F(Templates, ANewClassCanBeUsed) {
    write("new1.cls", expanded("NewNonMainClass", {{"Name", "New1"}}));
    write(
        "app1.cls",
        "Tarnwick Class App1\nUses new1\nfunction main()\n PRINT(DESCRIPTION())\nend function\nEnd class\n");
    EXPECT_EQ(built("app1"), "Class New1\n");
}

TEST_F(Templates, NewClassesDoNotCollide) {
    for (const std::string name : {"New1", "New2"})
        write(name + ".cls", expanded("NewNonMainClass", {{"Name", name}}));
    write("app1.cls", "Tarnwick Class App1\nUses New1 New2\nfunction main()\n PRINT(\"both\")\nend "
                      "function\nEnd class\n");
    EXPECT_EQ(built("app1"), "both\n");
}

// As the program's properties name it: the placeholder has a backslash, which a resource text writes twice.
TEST_F(Templates, ANewProgramKnowsItsIcon) {
    const std::string window = expanded(
        "NewDialog", {{"Name", "Main"}, {"Caption", "Main"}, {"Program Icon", "<RESOURCEDIR>\\tree.ico"}});
    EXPECT_NE(window.find("ProgramIcon ICON \"<RESOURCEDIR>\\\\tree.ico\""), std::string::npos) << window;
    EXPECT_EQ(RESOURCEGETFILENAME(write("app1.rc", window), "ICON", "ProgramIcon"),
              "<RESOURCEDIR>\\tree.ico");
}

TEST_F(Templates, EachOneIsLoadedAndLeavesNoCommandBehind) {
    std::string names;
    for (const char* name :
         {"NewMainClass", "NewNonMainClass", "NewDialog", "DialogBody", "FunctionBody", "DatabaseDialog",
          "DataViewDialog", "RecordViewDialog", "TableViewDialog", "TableDeclaration"}) {
        names += "Template." + std::string(name) + ".cls\n";
        const std::string text = expanded(name, {});
        for (const char* rest : {"$", "#IF", "#END", "#ELSE", "#//", "#FOR", "#NEXT", "%"})
            EXPECT_EQ(text.find(rest), std::string::npos) << name << ": " << rest;
        EXPECT_EQ(text.find("   \r\n"), std::string::npos) << name;
    }
    EXPECT_EQ(TEMPLATESECTIONS(SOURCE_DIR "/src/ide/ide.ini"), names);
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
