// SPDX-License-Identifier: Apache-2.0
//
// Property lists: reading, writing, positions, and the checks of names over the entries of list controls.
#include "library/designer/proputil.h"

#include "library/designer/propedit.h"
#include "library/system/system.h"
#include "os/files.h"
#include "platform/model/view.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

using namespace std::string_literals;

class Proputil : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
};

const std::string ok = "NAME=ok\nTYPEOF=Pushbutton\nPOSITION=7 8 55 15\nCAPTION=\"&OK\"\nHINT=\"\"\n";

TEST_F(Proputil, ValuesOfAList) {
    struct Case {
        std::string list, name, value;
    };
    const Case cases[] = {
        {ok, "NAME", "ok"},
        {ok, "name", "ok"},
        {ok, "Caption", "&OK"},
        {ok, "HINT", ""},
        {ok, "VALUE", ""},
        {ok, "POSITION", "7 8 55 15"},
        {"", "NAME", ""},
        {"NAME=last", "NAME", "last"},
        {"name=small", "NAME", "small"},
        {"A=1\nA=2\n", "A", "1"},
        {"SYSNAME=x\nNAME=y\n", "NAME", "y"},
        {"SYSNAME=x\n", "NAME", ""},
        {"NAME2=x\n", "NAME", ""},
        {"A=b=c=d\n", "A", "b=c=d"},
        {"A=  b \t\n", "A", "  b \t"},
        {"A=\r\n", "A", "\r"},
        {"A=\"b\n", "A", "\"b"},
        {"A=b\"\n", "A", "b\""},
        {"A=\"\"\"\"\n", "A", "\"\""},
        {"A=\"\n", "A", "\""},
        {"A=\"b\" \n", "A", "\"b\" "},
        {"A=b\0c\nD=e\n"s, "A", "b"},
        {"A=b\0c\nD=e\n"s, "D", "e"},
        {"A=b\0C=d\n"s, "C", ""},  // lines begin behind LF alone
        {"\n\nA=b\n", "A", "b"},
        {"A\n=b\n", "A", ""},
        {"A=\nB=2\n", "A", ""},
        {"=x\n", "", "x\n"},
        {"A=1\nno line\nB=2\n", "B", "2"},
        {"A=1\xFF\n", "A", "1\xFF"},
    };
    for (const Case& c : cases) EXPECT_EQ(GETPROPVALUE(c.list, c.name), c.value) << c.list << "|" << c.name;
}

TEST_F(Proputil, AllValuesAndNamesInTheirOrder) {
    EXPECT_EQ(GETPROPVALUE(ok, ""), "ok\nPushbutton\n7 8 55 15\n&OK\n\n");
    EXPECT_EQ(GETPROPVALUE("A=1\nB=\"x=y\"", ""), "1\nx=y\n");
    EXPECT_EQ(GETPROPVALUE("A=1\0B=2\n"s, ""), "1\n2\n");
    EXPECT_EQ(GETPROPVALUE("", ""), "");
    EXPECT_EQ(GETPROPVALUE("no equals sign\n", ""), "");
    EXPECT_EQ(GETPROPNAMES(ok), "NAME\nTYPEOF\nPOSITION\nCAPTION\nHINT\n");
    EXPECT_EQ(GETPROPNAMES("A=1=2\nb=\"x=y\""), "A\nb\n");
    EXPECT_EQ(GETPROPNAMES("A=1\0B=2\n"s), "A\nB\n");
    EXPECT_EQ(GETPROPNAMES("comment\nA=1\n"), "comment\nA\n");
    EXPECT_EQ(GETPROPNAMES(""), "");
    EXPECT_EQ(GETPROPNAMES("none"), "");
}

TEST_F(Proputil, WritingReplacesTheLine) {
    struct Case {
        std::string list, name, value, result;
    };
    const Case cases[] = {
        {"A=1\nB=2\nC=3\n", "b", "x y", "A=1\nB=x y\nC=3\n"},
        {"a=1\n", "a", "2", "A=2\n"},
        {"A=1", "A", "2", "A=2\n"},
        {"A=1\nA=2\n", "A", "9", "A=9\nA=2\n"},
        {"SYSNAME=1\nNAME=2\n", "NAME", "3", "SYSNAME=1\nNAME=3\n"},
        {"A=1\0rest\nB=2\n"s, "A", "x", "A=x\nrest\nB=2\n"},
        {"A=\nB=2\n", "A", "", "A=\nB=2\n"},
        {"A=1\nB=2\n", "C", "3", "A=1\nB=2\n"},
        {"A=1", "C", "3", "A=1"},
        {"", "A", "1", ""},
        {"A=1\r\nB\n", "B", "3", "A=1\r\nB\n"},
    };
    for (const Case& c : cases) {
        std::string list = c.list;
        SETPROPVALUE(c.name, c.value, list);
        EXPECT_EQ(list, c.result) << c.list << "|" << c.name;
    }
}

TEST_F(Proputil, ParallelLists) {
    const std::string names = "Name\nDirectory\nProgram Type\n", values = "demo\n/tmp/\n1\n";
    EXPECT_EQ(GETPROPVALUE("directory", names, values), "/tmp/");
    EXPECT_EQ(GETPROPVALUE("NAME", names, values), "demo");
    EXPECT_EQ(GETPROPVALUE("Program Type", names, values), "1");
    EXPECT_EQ(GETPROPVALUE("Program", names, values), "");
    EXPECT_EQ(GETPROPVALUE("Type", names, values), "");
    EXPECT_EQ(GETPROPVALUE("Name", "Name", values), "") << "a name is a whole line";
    EXPECT_EQ(GETPROPVALUE("Program Type", names, "demo\n/tmp/\n1"), "") << "and so is a value";
    EXPECT_EQ(GETPROPVALUE("Program Type", names, "demo\n"), "");
    EXPECT_EQ(GETPROPVALUE("", "a\n\nb\n", "1\n2\n3\n"), "2");
    EXPECT_EQ(GETPROPVALUE("a", "a\na\n", "1\n2\n"), "1");
    EXPECT_EQ(GETPROPVALUE("a", "a\n", "\"1\"\r\n"), "\"1\"\r") << "nothing is taken off";

    std::string changed = values;
    SETPROPVALUE("directory", "/home/", names, changed);
    EXPECT_EQ(changed, "demo\n/home/\n1\n");
    SETPROPVALUE("PROGRAM TYPE", "", names, changed);
    EXPECT_EQ(changed, "demo\n/home/\n\n");
    const std::string before = changed;
    SETPROPVALUE("Icon", "x", names, changed);
    EXPECT_EQ(changed, before);
    changed = "demo\n";
    SETPROPVALUE("Directory", "x", names, changed);
    EXPECT_EQ(changed, "demo\n");
}

TEST_F(Proputil, Integers) {
    struct Case {
        std::string value;
        int number;
    };
    const Case cases[] = {{"12", 12},
                          {"-12", -12},
                          {"+12", 12},
                          {"0x00FF00", 65280},
                          {"0XfF", 255},
                          {"0xFFFFFFFF", -1},
                          {"0x1FFFFFFFF", 0},
                          {"0x", 0},
                          {"0xG", 0},
                          {"0x10 ", 0},
                          {"12a", 0},
                          {"\"12\"", 0},
                          {"", 0},
                          {"99999999999", 0},
                          {"2147483647", INT_MAX},
                          {"-2147483648", INT_MIN}};
    for (const Case& c : cases) EXPECT_EQ(GETPROPINT("A=1\nV=" + c.value + "\n", "v"), c.number) << c.value;
    EXPECT_EQ(GETPROPINT("A=1\n", "B"), 0);
    EXPECT_EQ(GETPROPINT("=7\n", ""), 0);
    EXPECT_EQ(GETPROPVALUE("V=0x00FF00\n", "V"), "0x00FF00");
    std::string list = "A=1\nB=0xFF\n";
    SETPROPINT("b", -5, list);
    EXPECT_EQ(list, "A=1\nB=-5\n");
    SETPROPINT("c", 5, list);
    EXPECT_EQ(list, "A=1\nB=-5\n");
}

TEST_F(Proputil, NumbersInTexts) {
    struct Case {
        std::string text;
        std::size_t from;
        int value;
        std::size_t behind;
    };
    const Case cases[] = {{"12 34", 1, 12, 3},
                          {"12 34", 3, 34, 6},
                          {"   -5,6", 1, -5, 6},
                          {"+7x", 1, 7, 3},
                          {",8", 1, 0, 1},
                          {"", 1, 0, 1},
                          {"-", 1, 0, 2},
                          {"\t9", 1, 0, 1},
                          {"5", 9, 0, 9},
                          {"99999999999", 1, INT_MAX, 12},
                          {"-99999999999", 1, INT_MIN, 13},
                          {"-2147483648", 1, INT_MIN, 12}};
    for (const Case& c : cases) {
        std::size_t position = c.from;
        EXPECT_EQ(GETINT(c.text, position), c.value) << c.text;
        EXPECT_EQ(position, c.behind) << c.text;
    }
}

TEST_F(Proputil, Positions) {
    EXPECT_EQ(GETPROPPOSITION(ok), (UnitRect{7, 8, 55, 15}));
    EXPECT_EQ(GETPROPPOSITION("A=1\nposition= -1  -2 +3 4"), (UnitRect{-1, -2, 3, 4}));
    EXPECT_EQ(GETPROPPOSITION("POSITION=1 2\n"), (UnitRect{1, 2, 0, 0}));
    EXPECT_EQ(GETPROPPOSITION("POSITION=1,2,3,4\n"), (UnitRect{1, 0, 0, 0})) << "only blanks part numbers";
    EXPECT_EQ(GETPROPPOSITION("POSITION=1 2 3\n4\n"), (UnitRect{1, 2, 3, 0}));
    EXPECT_EQ(GETPROPPOSITION("12 8 80 14"), (UnitRect{12, 8, 80, 14}));
    EXPECT_EQ(GETPROPPOSITION("-12 8"), (UnitRect{-12, 8, 0, 0}));
    EXPECT_EQ(GETPROPPOSITION(" 12 8 80 14"), UnitRect{}) << "a bare list begins with its number";
    EXPECT_EQ(GETPROPPOSITION("7=x\nPOSITION=1 2 3 4\n"), (UnitRect{1, 2, 3, 4}));
    EXPECT_EQ(GETPROPPOSITION("A=1\n"), UnitRect{});
    EXPECT_EQ(GETPROPPOSITION(""), UnitRect{});
    std::string list = ok;
    SETPROPPOSITION(list, {-1, 2, 3, 40});
    EXPECT_EQ(list, "NAME=ok\nTYPEOF=Pushbutton\nPOSITION=-1 2 3 40\nCAPTION=\"&OK\"\nHINT=\"\"\n");
    list = "A=1";
    SETPROPPOSITION(list, {1, 2, 3, 4});
    EXPECT_EQ(list, "A=1");
}

// What is read and written is what the LF in front of a list would give, over lists of all sorts of lines.
TEST_F(Proputil, LookupsAreThoseOfAnAnchoredSearch) {
    const auto search = [](const std::string& list, const std::string& name) -> std::size_t {
        const int at = STRFIND("\n" + name + "=", "\n" + list);
        return at == 0 ? std::string::npos : static_cast<std::size_t>(at) - 1;
    };
    const std::string pieces[] = {"A", "b", "=", "\n", "AB", "=1", "\"", "\0"s, " ", "\nA=", "\nAB=x"};
    std::mt19937 random(7);
    int found = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string list;
        for (std::size_t n = random() % 9; n > 0; --n) list += pieces[random() % std::size(pieces)];
        for (const std::string name : {"A", "ab", "B", "A=", "b\nA"}) {
            const std::size_t line = search(list, name);
            std::string value, changed = list, expected = list;
            if (line != std::string::npos) {
                const std::size_t begin = line + name.size() + 1,
                                  end = std::min(list.find_first_of("\n\0"s, begin), list.size());
                value = list.substr(begin, end - begin);
                if (value.size() >= 2 && value[0] == '"' && value.back() == '"')
                    value = value.substr(1, value.size() - 2);
                expected = list.substr(0, line) + STRUPPER(name) + "=new\n" +
                           (end < list.size() ? list.substr(end + 1) : "");
                ++found;
            }
            ASSERT_EQ(GETPROPVALUE(list, name), value) << list << "|" << name;
            SETPROPVALUE(name, "new", changed);
            ASSERT_EQ(changed, expected) << list << "|" << name;
        }
    }
    EXPECT_GT(found, 1000);
}

// ---- list controls ----

constexpr const char* Resources = "ListDlg DIALOG\n"
                                  "    POSITION=10 10 200 100\n"
                                  "    Listbox datalist 101\n"
                                  "    Listbox menulist 102\n"
                                  "    Label label1 103\n"
                                  "END\n";

class ProputilLists : public Proputil {
protected:
    void SetUp() override {
        Proputil::SetUp();
        before = platform::useView(platform::makeHeadlessView());
        ASSERT_TRUE(os::saveFile(folder / "x.rc", Resources).ok());
        ASSERT_EQ(Load(Object("ListDlg"), folder / "x.rc", "ListDlg"), "");
    }
    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(before));
        Proputil::TearDown();
    }
    static void fill(const Object& list, const std::vector<std::string>& namesAndTypes) {
        Clear(list);
        for (const std::string& one : namesAndTypes) {
            const std::size_t colon = one.find(':');
            AddItem(list, "NAME=" + one.substr(0, colon) + "\nTYPEOF=" + one.substr(colon + 1));
        }
    }
    TempFolder folder;
    std::unique_ptr<platform::View> before;
    const Object data{"ListDlg", 101}, menu{"ListDlg", 102}, label{"ListDlg", 103};
};

TEST_F(ProputilLists, ThePropertyOfEveryEntry) {
    fill(data, {"Main:Dialog", "ok:Pushbutton"});
    AddItem(data, "TYPEOF=Label");
    EXPECT_EQ(GETPROPVALUE(data, "name"), "Main\nok\n\n");
    EXPECT_EQ(GETPROPVALUE(data, "TYPEOF"), "Dialog\nPushbutton\nLabel\n");
    EXPECT_EQ(GETPROPVALUE(menu, "NAME"), "");
    EXPECT_EQ(GETPROPVALUE(label, "NAME"), "");
    EXPECT_EQ(GETPROPVALUE(Object("None", 1), "NAME"), "");
}

TEST_F(ProputilLists, EntriesAsAnObjectArray) {
    fill(data, {"Main:Dialog", "ok:Pushbutton"});
    ObjectArray array = TSTRINGARRAY(data);
    EXPECT_EQ(array[0], "NAME=Main\nTYPEOF=Dialog\n");
    EXPECT_EQ(array[1], "NAME=ok\nTYPEOF=Pushbutton\n");
    EXPECT_EQ(array[2], "");
    for (int i = 0; i < 300; ++i) AddItem(data, "N=" + STR(i));
    array = TSTRINGARRAY(data);
    EXPECT_EQ(array[255], "N=253\n");
    for (const std::string& element : TSTRINGARRAY(label)) EXPECT_EQ(element, "");
}

TEST_F(ProputilLists, AWholeDialogAsText) {
    AddItem(data, "NAME=Main\nTYPEOF=Dialog\nCAPTION=\"x\"");
    AddItem(data, "NAME=\"ok\"\nTYPEOF=Pushbutton");
    AddItem(menu, "NAME=Menu1\nTYPEOF=Menuitem");
    EXPECT_EQ(GETPROPERTYLISTS(data, menu), "Menu1:Menuitem\n"
                                            "      NAME=Menu1\n"
                                            "      TYPEOF=Menuitem\n"
                                            "END\n\n"
                                            "Main:Dialog\n"
                                            "      NAME=Main\n"
                                            "      TYPEOF=Dialog\n"
                                            "      CAPTION=\"x\"\n"
                                            "END\n\n"
                                            "\"ok\":Pushbutton\n"
                                            "      NAME=\"ok\"\n"
                                            "      TYPEOF=Pushbutton\n"
                                            "END\n\n");
    EXPECT_EQ(GETPROPERTYLISTS(data, label), "");
    EXPECT_EQ(GETPROPERTYLISTS(label, menu), "");
    Clear(data);
    Clear(menu);
    EXPECT_EQ(GETPROPERTYLISTS(data, menu), "");
}

TEST_F(ProputilLists, SearchForAnEntry) {
    fill(data, {"Main:Dialog", "ok:Pushbutton", "OK:Label"});
    EXPECT_EQ(SEARCHPROPLIST(data, "NAME", "Ok"), 2);
    EXPECT_EQ(SEARCHPROPLIST(data, "typeof", "LABEL"), 3);
    EXPECT_EQ(SEARCHPROPLIST(data, "NAME", "none"), -1);
    EXPECT_EQ(SEARCHPROPLIST(data, "NAME", ""), -1);
    EXPECT_EQ(SEARCHPROPLIST(data, "", "ok"), -1);
    EXPECT_EQ(SEARCHPROPLIST(label, "NAME", "ok"), -1);
}

TEST_F(ProputilLists, TwoObjectsOfOneNameAreTold) {
    struct Case {
        std::vector<std::string> data, menu;
        int index;
        bool second;
        int found;
        bool foundSecond;
    };
    const Case cases[] = {
        {{"Main:Dialog", "a:Label", "b:Edit"}, {"Menu1:Menuitem", "c:Menuitem"}, -1, false, -1, false},
        {{"Main:Dialog", "a:Label", "b:Edit", "A:Pushbutton"}, {"M:Menuitem"}, -1, false, 4, false},
        {{"Main:Dialog", "a:Label", "b:Edit", "A:Pushbutton"}, {"M:Menuitem"}, 4, false, 2, false},
        {{"Main:Dialog", "a:Label", "b:Edit", "A:Pushbutton"}, {"M:Menuitem"}, 3, false, -1, false},
        {{"Main:Dialog", "a:Label"}, {"M:Menuitem", "x:Menuitem", "a:Menuitem"}, -1, false, 3, true},
        {{"Main:Dialog", "a:Label"}, {"M:Menuitem", "x:Menuitem", "a:Menuitem"}, 3, true, 2, false},
        {{"Main:Dialog", "a:Label"}, {"M:Menuitem", "x:Menuitem", "a:Menuitem"}, 2, true, -1, false},
        {{"Main:Dialog"}, {"M:Menuitem", "x:Menuitem", "X:Menuitem"}, -1, false, 3, true},
        {{}, {"M:Menuitem", "x:Menuitem", "X:Menuitem"}, -1, false, 3, true},
        // The dialog and the menu themselves take no part, and objects without a name neither.
        {{"a:Dialog", "a:Label"}, {"a:Menuitem"}, -1, false, -1, false},
        {{"Main:Dialog", ":Label", ":Edit"}, {"M:Menuitem", ":Menuitem"}, -1, false, -1, false},
        // Places that no object has.
        {{"Main:Dialog", "a:Label", "a:Edit"}, {"M:Menuitem"}, 0, false, -1, false},
        {{"Main:Dialog", "a:Label", "a:Edit"}, {"M:Menuitem"}, 1, false, -1, false},
        {{"Main:Dialog", "a:Label", "a:Edit"}, {"M:Menuitem"}, 4, false, -1, false},
        {{"Main:Dialog", "a:Label", "a:Edit"}, {"M:Menuitem"}, 2, true, -1, false},
        {{"Main:Dialog", "a:Label", "a:Edit"}, {"M:Menuitem"}, -2, false, -1, false},
    };
    int n = 0;
    for (const Case& c : cases) {
        fill(data, c.data);
        fill(menu, c.menu);
        const NameFault fault = CHECKDUPLICATES(data, menu, c.index, c.second);
        EXPECT_EQ(fault.index, c.found) << n;
        EXPECT_EQ(fault.second, c.foundSecond) << n;
        EXPECT_EQ(fault.message.empty(), c.found == -1) << n++;
    }
    fill(data, {"Main:Dialog", "a:Label", "A:Pushbutton"});
    EXPECT_EQ(CHECKDUPLICATES(data, menu, -1, false).message,
              "All control objects in a dialog must be unique (ie have different names).\n"
              "However the following control object:\n\n\t'a:Label'\n\n"
              "has a duplicate of type:\n\n\t'Pushbutton'\n\n"
              "The duplicate should be renamed to something else.\n");
    EXPECT_EQ(CHECKDUPLICATES(label, menu, -1, false).index, -1);
    EXPECT_EQ(CHECKDUPLICATES(data, label, -1, false).message, "");
}

TEST_F(ProputilLists, NamesOfLibraryObjectsAreRefused) {
    struct Case {
        std::vector<std::string> data, menu;
        int index;
        bool second;
        int found;
        bool foundSecond;
    };
    const Case cases[] = {
        {{"Main:Dialog", "a:Label"}, {}, -1, false, -1, false},
        {{"Main:Dialog", "Screen:Label"}, {}, -1, false, 2, false},
        {{"window:Dialog"}, {}, -1, false, 1, false},
        {{"Main:Dialog"}, {"Menu1:Menuitem", "CLIPBOARD:Menuitem"}, -1, false, 2, true},
        {{"Main:Dialog"}, {"Menu1:Menuitem", "CLIPBOARD:Menuitem"}, 2, true, 2, true},
        {{"Main:Dialog"}, {"Menu1:Menuitem", "CLIPBOARD:Menuitem"}, 1, true, -1, false},
        {{"Main:Dialog", "Printer:Label"}, {}, 1, false, -1, false},
        {{"Main:Dialog", "Printer:Label"}, {}, 2, false, 2, false},
        {{"Main:Dialog", "Printer:Label"}, {}, 0, false, -1, false},
        {{"Main:Dialog", "Printer:Label"}, {}, 3, false, -1, false},
        {{"Main:Dialog", "Print:Label", "Sys:Edit", ":Label"}, {}, -1, false, -1, false},
    };
    int n = 0;
    for (const Case& c : cases) {
        fill(data, c.data);
        fill(menu, c.menu);
        const NameFault fault = CHECKBADNAMES(data, menu, c.index, c.second, BadNames);
        EXPECT_EQ(fault.index, c.found) << n;
        EXPECT_EQ(fault.second, c.foundSecond) << n;
        EXPECT_EQ(fault.message.empty(), c.found == -1) << n++;
    }
    fill(data, {"Main:Dialog", "Screen:Label"});
    EXPECT_EQ(CHECKBADNAMES(data, menu, -1, false, BadNames).message,
              "The following control object:\n\n\tScreen:Label\n\n"
              "should be given a different name. Its current name (screen) conflicts with existing library "
              "objects.\n");
    EXPECT_EQ(CHECKBADNAMES(data, menu, -1, false, "").index, -1);
    EXPECT_EQ(CHECKBADNAMES(data, menu, -1, false, "a screen").index, 2);
    EXPECT_EQ(CHECKBADNAMES(label, menu, -1, false, BadNames).index, -1);
}

}  // namespace
}  // namespace tarn
