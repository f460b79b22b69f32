// SPDX-License-Identifier: Apache-2.0
//
// Symbol files: what is read from them, debug levels, and the lines of the browser.
#include "library/source/symbolfiles.h"

#include "library/system/system.h"
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

class SymbolFiles : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    os::SteeredFiles files;
    os::Steered steered{files};
};

std::string cells(const std::string& name, int scope, const std::string& signature, const std::string& sort,
                  const std::string& className = "A", const std::string& typeName = "", int compno = 0,
                  const std::string& comment = "") {
    return "\"" + name + "\"," + STR(scope) + ",\"" + signature + "\",\"" + sort + "\",11,12,13,\"" +
           className + "\",1,2,3,4,5,6,\"d\",\"" + typeName + "\"," + STR(compno) + ",99,\"" + comment +
           "\"\n";
}
std::string options(const std::string& text) {
    return cells("program", 2, "", "program", "A", "", 0, text);
}

// ---- records ----

TEST_F(SymbolFiles, ARecordHasAllFieldsInTheirOrder) {
    files.put("/a.sym",
              "\"f\",1,\"function f(a, b)\",\"function\",3,4,5,\"A\",6,7,8,9,10,11,\"over\",\"integer\",2,-7,"
              "\"why \"\"so\"\"\"\n");
    const std::vector<SymbolRecord> records = SYMLOAD("/a.sym");
    ASSERT_EQ(records.size(), 1U);
    const SymbolRecord& r = records[0];
    EXPECT_EQ(r.name, "f");
    EXPECT_EQ(r.scope, public_scope);
    EXPECT_EQ(r.signature, "function f(a, b)");
    EXPECT_EQ(r.sort, "function");
    EXPECT_EQ(r.classname, "A");
    EXPECT_EQ(r.disambig, "over");
    EXPECT_EQ(r.typeName, "integer");
    EXPECT_EQ(r.comment, "why \"so\"");
    const int numbers[] = {r.decline, r.impline, r.useline, r.lb1,    r.ub1,       r.lb2,
                           r.ub2,     r.lb3,     r.ub3,     r.compno, r.constvalue};
    const int wanted[] = {3, 4, 5, 6, 7, 8, 9, 10, 11, 2, -7};
    for (std::size_t i = 0; i < std::size(numbers); ++i) EXPECT_EQ(numbers[i], wanted[i]) << i;
}

TEST_F(SymbolFiles, OddFilesGiveWhatCanBeRead) {
    struct Case {
        const char *what, *text;
        std::size_t records;
        const char *name, *sort;
        int decline;
    };
    const Case cases[] = {
        {"empty", "", 0, "", "", 0},
        {"empty lines", "\n\r\n\n", 0, "", "", 0},
        {"without a line end", "f,1,,function,7", 1, "f", "function", 7},
        {"carriage returns", "f,1,,function,7,8\r\ng,1,,function,9\r\n", 2, "f", "function", 7},
        {"no numbers", "f,one,,function,seven", 1, "f", "function", 0},
        {"a number that is too large", "f,1,,function,99999999999", 1, "f", "function", 0},
        {"blanks around a number", "f,1,,function, 7 ,8", 1, "f", "function", 7},
        {"cells too many", "f,1,,function,7,,,,,,,,,,,,,,c,x,y,z\n", 1, "f", "function", 7},
        {"a quote that never closes", "\"f,1,,function,7\n", 1, "\"f", "function", 7},
        {"another file", "Class A\nEnd class\n", 2, "Class A", "", 0},
    };
    for (const Case& c : cases) {
        files.put("/a.sym", c.text);
        const std::vector<SymbolRecord> records = SYMLOAD("/a.sym");
        ASSERT_EQ(records.size(), c.records) << c.what;
        if (records.empty()) continue;
        EXPECT_EQ(records[0].name, c.name) << c.what;
        EXPECT_EQ(records[0].sort, c.sort) << c.what;
        EXPECT_EQ(records[0].decline, c.decline) << c.what;
    }
    EXPECT_TRUE(SYMLOAD("/none.sym").empty());
    EXPECT_TRUE(SYMLOAD("").empty());
    files.putFolder("/folder.sym");
    EXPECT_TRUE(SYMLOAD("/folder.sym").empty());
    files.put("/a.sym", cells("f", 1, "", "function"));
    files.failAlways(os::FileCall::Read, os::FileError::ReadFailed);
    EXPECT_TRUE(SYMLOAD("/a.sym").empty());
}

TEST_F(SymbolFiles, TextsAreCutToTheirFieldsAndTheirSequencesUndone) {
    const std::string text(2000, 'x');
    files.put("/a.sym", cells(text, 1, text, text, text, text, 0, text));
    SymbolRecord r = SYMLOAD("/a.sym").at(0);
    EXPECT_EQ(r.name.size(), 40U);
    EXPECT_EQ(r.signature.size(), 657U);
    EXPECT_EQ(r.sort.size(), 40U);
    EXPECT_EQ(r.classname.size(), 40U);
    EXPECT_EQ(r.typeName.size(), 40U);
    EXPECT_EQ(r.comment.size(), 1000U);

    std::string bitmap;
    for (int i = 0; i < 1000; ++i) bitmap += "\\xFF";
    files.put("/a.sym", cells("debug", 2, R"(\\ \t\n\r \x41\x00\xe4 \q \x4 \)", "debug", "A", "", 0, bitmap));
    r = SYMLOAD("/a.sym").at(0);
    EXPECT_EQ(r.signature, std::string("\\ \t\n\r A\0\xE4 \\q \\x4 \\", 18));
    EXPECT_EQ(r.comment, std::string(1000, '\xFF'));
}

// ---- debug levels ----

TEST_F(SymbolFiles, TheOptionsStandInTheRecordOfTheProgram) {
    files.put("/a.sym", cells("program", 1, "", "function", "A", "", 0, "-d1") +
                            cells("f", 1, "", "program", "A", "", 0, "-d0") + options("-d2 -p0") +
                            options("-d1"));
    EXPECT_EQ(SYMGETOPTIONS("/a.sym"), "-d2 -p0");
    EXPECT_EQ(SYMGETOPTIONS("/none.sym"), "");
    files.put("/b.sym", cells("f", 1, "", "function"));
    EXPECT_EQ(SYMGETOPTIONS("/b.sym"), "");
}

TEST_F(SymbolFiles, TheDebugLevelIsThatOfTheOptions) {
    struct Case {
        const char* options;
        int level;
    };
    const Case cases[] = {{"-d2", 2},  {"-p0 -D1", 1}, {"-d0 -s3000", 0}, {"", -1},      {"-p2 -q", -1},
                          {"/d2", -1}, {"-d3", -1},    {"-d0 -d1", 1},    {"-d1 -d2", 2}};
    for (const Case& c : cases) {
        files.put("/a.sym", options(c.options));
        EXPECT_EQ(SYMGETDEBUGLEVEL("/a.cls"), c.level) << c.options;
        EXPECT_EQ(SYMGETDEBUGLEVEL("/a.sym"), c.level) << c.options;
    }
    files.put("/empty.sym", "");
    for (const char* file : {"/empty.cls", "/none.cls", ""}) EXPECT_EQ(SYMGETDEBUGLEVEL(file), -1) << file;
}

TEST_F(SymbolFiles, AListOfFilesGivesAListOfLevels) {
    for (int level = 0; level <= 2; ++level) files.put("/" + STR(level) + ".sym", options("-d" + STR(level)));
    EXPECT_EQ(SYMGETDEBUGLEVELS("/2.cls\n/0.CLS\r\n/1.sym\n/1.rc\n/none.cls\n/2\n\n/0.cls"),
              "2\n0\n1\n-1\n-1\n-1\n-1\n0\n");
    EXPECT_EQ(SYMGETDEBUGLEVELS(""), "");
}

TEST_F(SymbolFiles, WhatLevelsHaveInCommon) {
    struct Case {
        const char* levels;
        DebugFlags flags;
    };
    const Case cases[] = {
        {"", {}},
        {"2\n2\n", {false, false, true, true}},
        {"2\n1\n", {false, false, false, true}},
        {"1\n", {false, true, false, true}},
        {"0\n0\n0\n", {true, false, false, true}},
        {"0\r\n0", {true, false, false, true}},
        {"0\n1\n2\n", {false, false, false, true}},
        {"2\n-1\n2\n", {}},
        {"-1\n", {}},
        {"2\n\n", {}},
        {"3\n", {}},
        {"22\n", {}},
    };
    for (const Case& c : cases) EXPECT_EQ(SYMGETDEBUGFLAGS(c.levels), c.flags) << c.levels;
}

// ---- lines ----

TEST_F(SymbolFiles, PlaceholdersStandForTheValues) {
    SymbolRecord r;
    r.name = "Box";
    r.scope = function_scope;
    r.signature = "ok";
    r.sort = "type";
    r.decline = 12;
    r.classname = "A";
    r.typeName = "window";
    EXPECT_EQ(
        SYMFORMATSTR(
            r, "$NAME$ $SCOPE$ $SIGNATURE$ $SORT$ $DECLINE$ $CLASSNAME$ $TYPENAME$ $FILENAME$ $name$ $"),
        "Box function_scope ok type 12 A window $FILENAME$ $name$ $");
    r.sort = "visualobject";
    EXPECT_EQ(SYMFORMATSTR(r, "$NAME$"), "Box.ok");
    r.signature = "";
    EXPECT_EQ(SYMFORMATSTR(r, "$NAME$$NAME$"), "BoxBox");
    struct Case {
        int scope;
        const char* word;
    };
    for (const Case& c :
         {Case{1, "public_scope"}, {2, "private_scope"}, {3, "function_scope"}, {0, ""}, {4, ""}}) {
        r.scope = c.scope;
        EXPECT_EQ(SYMFORMATSTR(r, "$SCOPE$"), c.word);
    }
    r.name = "a\tb\n\x7F$SORT$";
    EXPECT_EQ(SYMFORMATSTR(r, "$NAME$|$SORT$"), "a b  $SORT$|visualobject");
    EXPECT_EQ(SYMFORMATSTR(r, ""), "");
}

constexpr const char* Resources = "SymDlg DIALOG\n"
                                  "    POSITION=10 10 200 100\n"
                                  "    Iconlist icons\n"
                                  "    Listbox box\n"
                                  "    Combobox combo\n"
                                  "END\n";

class SymbolLists : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        before = platform::useView(platform::makeHeadlessView());
        ASSERT_TRUE(os::saveFile(folder / "x.rc", Resources).ok());
        ASSERT_EQ(Load(dialog, folder / "x.rc", "SymDlg"), "");
    }
    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(before));
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    std::string add(const std::string& text, std::string_view filter, const std::string& control = "icons") {
        EXPECT_TRUE(os::saveFile(folder / "a.sym", text).ok());
        const Object list = FINDCONTROL(dialog, control);
        Clear(list);
        SYMADDSYMBOLS(folder / "a.sym", "/a b.cls",
                      "$NAME$\t$SORT$\t$CLASSNAME$\t$FILENAME$\t$DECLINE$\t$TYPENAME$", filter, list);
        std::string rows;
        for (int row = 1; row <= GetListCount(list); ++row) rows += GetList(list, row) + "\n";
        return rows;
    }
    std::string pictures() {
        std::string names;
        for (const platform::Row& row : platform::findControl(FINDCONTROL(dialog, "icons"))->rows)
            names += row.picture + " ";
        return names;
    }
    TempFolder folder;
    const Object dialog{"SymDlg"};
    std::unique_ptr<platform::View> before;
};

TEST_F(SymbolLists, ALineTellsWhereASymbolIs) {
    EXPECT_EQ(add(cells("f", 1, "function f()", "function", "B", "integer") +
                      cells("Dlg", 1, "btnok", "visualobject", "B", "pushbutton"),
                  "*"),
              "f\tfunction\tB\t\"/a b.cls\"\t11\tinteger\nDlg.btnok\tvisualobject\tB\t\"/a "
              "b.cls\"\t11\tpushbutton\n");
    EXPECT_EQ(add(cells("$FILENAME$", 1, "", "const", "$SORT$"), "*"),
              "$FILENAME$\tconst\t$SORT$\t\"/a b.cls\"\t11\t\n");
}

TEST_F(SymbolLists, TheFilterChoosesSorts) {
    const std::string all = cells("a", 1, "", "const") + cells("b", 1, "", "type") +
                            cells("c", 1, "", "debug") + cells("d", 1, "", "");
    const auto names = [&](std::string_view filter) {
        std::string found;
        const std::string rows = add(all, filter);
        for (int n = 1; n <= STRLINES(rows); ++n) found += STRLINE(rows, n)[0];
        return found;
    };
    EXPECT_EQ(names("*"), "abcd");
    EXPECT_EQ(names("const debug"), "ac");
    EXPECT_EQ(names("  TYPE  "), "b");
    EXPECT_EQ(names("cons types"), "");
    EXPECT_EQ(names(""), "");
}

TEST_F(SymbolLists, PrivateSymbolsOfOthersStayHidden) {
    std::string text;
    for (int compno = 0; compno <= 1; ++compno)
        for (int scope = 1; scope <= 3; ++scope)
            text += cells("s" + STR(scope) + "_" + STR(compno), scope, "", "type", "A", "t", compno);
    std::string found;
    const std::string rows = add(text, "type");
    for (int n = 1; n <= STRLINES(rows); ++n) found += STRLINE(rows, n).substr(0, 4) + " ";
    EXPECT_EQ(found, "s1_0 s2_0 s3_0 s1_1 s3_1 ");
}

TEST_F(SymbolLists, IconListsGetAPictureForEachSort) {
    std::string text;
    for (const char* sort :
         {"const", "type", "function", "debug", "Class", "program", "variable", "", "visualobject"})
        text += cells("n", 1, "", sort);
    text += cells("n", 1, "", "visualobject", "A", "Window");
    add(text, "*");
    EXPECT_EQ(
        pictures(),
        "symconst symtype symfunction symdebug symclass symother symother symother symobject symwindow ");
}

TEST_F(SymbolLists, OnlyListsTakeLines) {
    const std::string text = cells("a", 1, "", "const", "A", "t");
    EXPECT_NE(add(text, "*", "box"), "");
    EXPECT_EQ(add(text, "*", "combo"), "");
    SYMADDSYMBOLS(folder / "a.sym", "/a.cls", "$NAME$", "*", dialog);
    SYMADDSYMBOLS(folder / "a.sym", "/a.cls", "$NAME$", "*", Object("None"));
    SYMADDSYMBOLS(folder / "none.sym", "/a.cls", "$NAME$", "*", FINDCONTROL(dialog, "icons"));
    EXPECT_EQ(GetListCount(FINDCONTROL(dialog, "icons")), 0);
}

}  // namespace
}  // namespace tarn
