// SPDX-License-Identifier: GPL-3.0-or-later
//
// The property sheet and the windows in which a value is chosen, as the environment's resources have them, on the
// object model alone.
#include "library/designer/propedit.h"
#include "library/designer/propedit_sheet.h"
#include "library/designer/proputil.h"
#include "support/doings_fixture.h"

#include <filesystem>

namespace tarn {
namespace {

class PropertySheet : public DoingsTest {
protected:
    void TearDown() override {
        for (const Object& window : {PropertiesDlg, ColorBoxDlg, ExclusiveBoxDlg, InclusiveBoxDlg})
            EXPECT_FALSE(IsLoaded(window)) << window.window();
        DoingsTest::TearDown();
    }

    static Object part(const std::string& name) { return FINDCONTROL(PropertiesDlg, name); }
    static Object part(const std::string& name, int row) { return part(name + STR(row)); }
    static void press(const Object& control) { platform::userCommand(*platform::findControl(control)); }
    static bool key(const Object& window, const Object& focus, int code) {
        return platform::userKey(*platform::findWindow(window), platform::findControl(focus), code);
    }
    static void keyAt(int row, int code) { key(PropertiesDlg, part("edtvalue", row), code); }
    static std::string value(int row) { return GetText(part("edtvalue", row)); }
    static void enter(int row, const std::string& text) { SetText(part("edtvalue", row), text); }

    // Three lists out of lines "name|options|value".
    struct Rows {
        std::string names, options, values;
        explicit Rows(const std::vector<std::string>& lines) {
            for (const std::string& line : lines) {
                const std::size_t first = line.find('|'), second = line.find('|', first + 1);
                names += line.substr(0, first) + "\n";
                options += line.substr(first + 1, second - first - 1) + "\n";
                values += line.substr(second + 1) + "\n";
            }
        }
    };
    static bool show(Rows& rows, const std::string& help = "help.htm",
                     const std::string& topic = "Properties") {
        return PROPERTIESDIALOG("ok:Pushbutton", help, topic, rows.names, rows.options, rows.values);
    }
    static Rows some() {
        return Rows({"NAME|NAME(1:40)|ok", "TYPEOF|CONST|Pushbutton", "SECRET|HIDDEN|kept as it is",
                     "SIDE|ENUM(Left,Right,Centre)|1", "SIZE|INTEGER(0:100)|12", "ON|BOOLEAN|Yes"});
    }
};

TEST_F(PropertySheet, ShowsARowForEachPropertyThatIsNotHidden) {
    Rows rows = some();
    doings = {[] {
        EXPECT_EQ(GetCaption(PropertiesDlg), "ok:Pushbutton");
        EXPECT_EQ(GetCaption(part("lbltitle")), "ok:Pushbutton");
        EXPECT_EQ(GetCaption(part("lblhelpfile")), "help.htm");
        EXPECT_EQ(GetCaption(part("lblhelpkey")), "Properties");
        EXPECT_TRUE(GetEnabled(part("idhelp")));
        const struct {
            const char *name, *value, *options;
            bool enabled, drops;
            int maxLength;
        } expected[] = {{"NAME", "ok", "NAME(1:40)", true, false, 40},
                        {"TYPEOF", "Pushbutton", "CONST", false, false, 0},
                        {"SIDE", "1-Right", "ENUM(Left,Right,Centre)", true, true, 0},
                        {"SIZE", "12", "INTEGER(0:100)", true, false, 0},
                        {"ON", "Yes", "BOOLEAN", true, false, 0}};
        int row = 0;
        for (const auto& one : expected) {
            ++row;
            EXPECT_EQ(GetCaption(part("lblname", row)), one.name);
            EXPECT_EQ(value(row), one.value);
            EXPECT_EQ(GetText(part("edtoptions", row)), one.options);
            EXPECT_EQ(GetEnabled(part("edtvalue", row)), one.enabled);
            EXPECT_EQ(GetVisible(part("btndrop", row)), one.drops);
            EXPECT_EQ(GetPicture(part("btndrop", row)), one.drops ? "droparrow" : "");
            EXPECT_EQ(GetMaxLength(part("edtvalue", row)), one.maxLength);
            EXPECT_TRUE(GetVisible(part("linerow", row)));
        }
        for (const char* name : {"lblname6", "edtvalue6", "btndrop6", "linerow6", "edtvalue32"})
            EXPECT_FALSE(GetVisible(part(name))) << name;
        press(part("idcancel"));
    }};
    const std::string before = rows.values;
    EXPECT_FALSE(show(rows));
    EXPECT_EQ(rows.values, before);
}

TEST_F(PropertySheet, TheWindowEndsBelowItsLastRow) {
    for (const int count : {0, 1, 5, 32}) {
        Rows rows(std::vector<std::string>(static_cast<std::size_t>(count), "A|STRING|x"));
        doings = {[count] {
            const auto place = [](const Object& object) { return GetPosition(object, CLIENT_UNIT); };
            const Rect frame = place(part("shpframe")), ok = place(part("idok"));
            int bottom = frame.y;
            if (count > 0) bottom = place(part("linerow", count)).y + place(part("linerow", count)).h;
            for (const char* name : {"shpframe", "shpcolumn1", "shpcolumn2"})
                EXPECT_EQ(place(part(name)).y + place(part(name)).h, bottom) << name;
            for (const char* name : {"idok", "idcancel", "idhelp"})
                EXPECT_EQ(place(part(name)).y, bottom + 10);
            EXPECT_EQ(place(PropertiesDlg).h, ok.y + ok.h + 10);
            EXPECT_TRUE(key(PropertiesDlg, PropertiesDlg, KEY_ESCAPE));
        }};
        EXPECT_FALSE(show(rows));
    }
}

TEST_F(PropertySheet, OkTakesWhatWasEnteredAndLeavesTheRest) {
    Rows rows = some();
    rows.values += "a value without a property\n";
    doings = {[] {
        enter(1, "cancel");
        enter(3, "2-Centre");
        enter(5, "n");
        press(part("idok"));
    }};
    EXPECT_TRUE(show(rows));
    EXPECT_EQ(rows.values, "cancel\nPushbutton\nkept as it is\n2\n12\nFalse\na value without a property\n");
}

TEST_F(PropertySheet, ReturnIsOkAndEscapeIsCancel) {
    Rows rows = some();
    doings = {[] { keyAt(1, KEY_RETURN); }};
    EXPECT_TRUE(show(rows));
    EXPECT_EQ(rows.values, "ok\nPushbutton\nkept as it is\n1\n12\nTrue\n");
    doings = {[] {
        enter(1, "other");
        keyAt(1, KEY_ESCAPE);
    }};
    EXPECT_FALSE(show(rows));
    EXPECT_EQ(rows.values, "ok\nPushbutton\nkept as it is\n1\n12\nTrue\n");
}

TEST_F(PropertySheet, ValuesThatAreNotAllowedAreShownAsTheDefault) {
    Rows rows({"SIDE|ENUM(Left,Right)|7", "ON|INTEGER(1-\"Yes\",0-\"No\")|x", "SIZE|INTEGER(5:9)|99",
               "AT|INTEGER[1:4]|1 2", "FLAGS|INTEGER{1-\"a\",2-\"b\"}|4",
               "KIND|STRING(\"one\",\"two\")|three", "COLOUR|COLOUR|red", "EMPTY|ENUM(Left,Right)|"});
    rows.values = rows.values.substr(0, rows.values.size() - 1);  // the last value is missing altogether
    doings = {[] {
        const char* const expected[] = {"0-Left", "1-Yes", "5", "0 0 0 0", "0", "one", "0x000000", "0-Left"};
        int row = 0;
        for (const char* text : expected) EXPECT_EQ(value(++row), text);
        press(part("idok"));
    }};
    EXPECT_TRUE(show(rows));
    EXPECT_EQ(rows.values, "0\n1\n5\n0 0 0 0\n0\none\n0x000000\n0\n");
}

TEST_F(PropertySheet, RowsThatFindNoRoomKeepTheirValues) {
    std::vector<std::string> lines;
    for (int i = 1; i <= 40; ++i) lines.push_back("P" + STR(i) + "|STRING|value " + STR(i));
    Rows rows(lines);
    const std::string before = rows.values;
    doings = {[] {
        EXPECT_TRUE(GetVisible(part("edtvalue32")));
        enter(32, "changed");
        press(part("idok"));
    }};
    EXPECT_TRUE(show(rows));
    EXPECT_EQ(rows.values, STRREPLACE(before, "value 32", "changed"));
}

TEST_F(PropertySheet, HelpNeedsAFileAndATopic) {
    Rows rows = some();
    for (const auto& [file, topic] : {std::pair("", "Topic"), std::pair("help.htm", ""), std::pair("", "")}) {
        doings = {[] {
            EXPECT_FALSE(GetEnabled(part("idhelp")));
            EXPECT_TRUE(key(PropertiesDlg, PropertiesDlg, KEY_F1));
            press(part("idcancel"));
        }};
        EXPECT_FALSE(show(rows, file, topic));
    }
    EXPECT_TRUE(asked.empty());
    doings = {[] {
        press(part("idhelp"));
        keyAt(1, KEY_F1);
        press(part("idcancel"));
    }};
    EXPECT_FALSE(show(rows, dir + "none.htm", "Topic"));
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].text, "Help file '" + dir + "none.htm' was empty or not found.");
    EXPECT_EQ(asked[1].text, asked[0].text);
}

TEST_F(PropertySheet, UpAndDownStepThroughAList) {
    Rows rows = some();
    doings = {[] {
        const struct {
            int code;
            const char* value;
        } steps[] = {{KEY_DOWN, "2-Centre"}, {KEY_DOWN, "0-Left"}, {KEY_UP, "2-Centre"}, {KEY_UP, "1-Right"}};
        for (const auto& step : steps) {
            EXPECT_TRUE(key(PropertiesDlg, part("edtvalue3"), step.code));
            EXPECT_EQ(value(3), step.value);
        }
        enter(3, "none");
        EXPECT_TRUE(key(PropertiesDlg, part("edtvalue3"), KEY_DOWN));
        EXPECT_EQ(value(3), "none");
        enter(3, "");
        EXPECT_TRUE(key(PropertiesDlg, part("edtvalue3"), KEY_UP));
        EXPECT_EQ(value(3), "2-Centre");
        EXPECT_TRUE(key(PropertiesDlg, part("edtvalue1"), KEY_DOWN)) << "swallowed, with a beep";
        EXPECT_EQ(value(1), "ok");
        EXPECT_FALSE(key(PropertiesDlg, part("idok"), KEY_DOWN));
        EXPECT_FALSE(key(PropertiesDlg, PropertiesDlg, KEY_DOWN));
        press(part("idcancel"));
    }};
    EXPECT_FALSE(show(rows));
}

TEST_F(PropertySheet, WhatIsWrongIsToldAndTheSheetStays) {
    Rows rows = some();
    doings = {[this] {
        enter(4, "101");
        enter(1, "no name");
        enter(5, "y");
        press(part("idok"));
        ASSERT_EQ(asked.size(), 1u);
        EXPECT_EQ(asked[0].title, "ok:Pushbutton");
        EXPECT_EQ(asked[0].text, "There is a problem with the 'NAME' property.\nA name should be used.\n"
                                 "(consisting of letters, numbers, or '_' with length of 1 to 40)\n");
        EXPECT_EQ(value(5), "y") << "the rows behind the wrong one are not looked at";
        enter(1, "fine");
        press(part("idok"));
        ASSERT_EQ(asked.size(), 2u);
        EXPECT_EQ(asked[1].text, "There is a problem with the 'SIZE' property.\nA number should be used.\n"
                                 "(between 0 and 100)\n");
        EXPECT_EQ(value(3), "1") << "the row before is in its stored form";
        EXPECT_TRUE(GetVisible(PropertiesDlg));
        enter(4, "100");
        press(part("idok"));
    }};
    EXPECT_TRUE(show(rows));
    EXPECT_EQ(rows.values, "fine\nPushbutton\nkept as it is\n1\n100\nTrue\n");
}

TEST_F(PropertySheet, ValuesAreStoredInTheirPlainForm) {
    std::filesystem::create_directory(dir + "sub");
    const struct {
        std::string options, entered, stored;
    } cases[] = {
        {"BOOLEAN", "Y", "True"},
        {"BOOLEAN", "yes", "True"},
        {"BOOLEAN", "t", "True"},
        {"BOOLEAN", "TRUE", "True"},
        {"BOOLEAN", "N", "False"},
        {"BOOLEAN", "no", "False"},
        {"BOOLEAN", "f", "False"},
        {"BOOLEAN", "false", "False"},
        {"ENUM(Left,Right)", "0-Left", "0"},
        {"ENUM(Left,Right)", "1-what", "1"},
        {"ENUM(Left,Right)", "1", "1"},
        {"INTEGER(1-\"Yes\",0-\"No\")", "0-No", "0"},
        {"INTEGER(0:9)", "5-anything", "5"},
        {"INTEGER{1-\"a\",2-\"b\"}", "3", "3"},
        {"INTEGER[1:4]", "10 -5 3 4", "10 -5 3 4"},
        {"FOLDER", dir + "sub", dir + "sub/"},
        {"FOLDER", dir + "sub/", dir + "sub/"},
        {"FOLDER", STRREPLACE(dir + "sub", "/", "\\"), STRREPLACE(dir + "sub\\", "/", "\\")},
        {"STRING", "1-as it is", "1-as it is"},
        {"CHAR(\"xyz\")", "y", "y"},
    };
    for (const auto& one : cases) {
        Rows rows({"P|" + one.options + "|"});
        doings = {[&one] {
            enter(1, one.entered);
            press(part("idok"));
        }};
        EXPECT_TRUE(show(rows)) << one.options << " " << one.entered;
        EXPECT_EQ(rows.values, one.stored + "\n") << one.options << " " << one.entered;
    }
    EXPECT_TRUE(asked.empty()) << lastText();
}

TEST_F(PropertySheet, AFolderOfADriveGetsItsOwnSeparator) {
    Rows rows({"Directory|FOLDER|/"});
    doings = {[this] {
        enter(1, "C:\\tmp");
        press(part("idok"));
        EXPECT_EQ(value(1), "C:\\tmp\\");
        EXPECT_EQ(lastText(),
                  "There is a problem with the 'Directory' property.\nA folder name should be used\n"
                  "(must be a drive letter and a full directory path starting from the root directory)\n");
        press(part("idcancel"));
    }};
    EXPECT_FALSE(show(rows));
}

TEST_F(PropertySheet, EveryTypeFitsIntoTheSheet) {
    for (const std::string type :
         {"Dialog", "Editwindow", "Richeditwindow", "Label", "Edit", "Combobox", "Listbox", "Iconlist",
          "Pushbutton", "Bitmapbutton", "Checkbox", "Radiobutton", "Groupbox", "Scrollbar", "Progressbar",
          "Shape", "Icon", "Image", "Menuitem"}) {
        const std::string list = GETOBJECTDEFAULTS(type), types = GETOBJECTTYPELIST(type);
        std::string values = GETPROPVALUE(list, ""), options;
        const std::string names = GETPROPNAMES(list);
        for (int i = 1; i <= STRLINES(types); ++i)
            options += STRTRIM(STRLINE(types, i).substr(STRLINE(names, i).size())) + "\n";
        doings = {[&names] {
            EXPECT_TRUE(GetVisible(part("edtvalue", STRLINES(names))));
            press(part("idok"));
        }};
        EXPECT_TRUE(PROPERTIESDIALOG(type, "", "", names, options, values)) << type;
        EXPECT_EQ(STRLINES(values), STRLINES(names)) << type;
        EXPECT_EQ(STRFIND("1-Yes", values), 0) << "choices are stored as numbers: " << values;
    }
}

// ---- choosing ----

TEST_F(PropertySheet, WhichFormsHaveSomethingToChooseFrom) {
    for (const char* options : {"COLOUR(0:15)", "color(0:15)", "COLOUR", "FILENAME(bmp)", "FOLDER", "ENUM(a)",
                                "INTEGER(1-\"a\")", "STRING(\"a\")", "INTEGER{1-\"a\"}"})
        EXPECT_TRUE(EXTRAPROPS(options)) << options;
    for (const char* options :
         {"INTEGER(0:100)", "INTEGER", "INTEGER[1:4]", "STRING", "STRING(5)", "ENUM()", "NAME", "NAME(1:5)",
          "BOOLEAN", "CONST", "CHAR(\"a\")", "FILENAME", "HIDDEN", ""}) {
        EXPECT_FALSE(EXTRAPROPS(options)) << options;
        std::string value = "x";
        EXPECT_FALSE(EXTRAPROPS(options, PropertiesDlg, 0, 0, "", value)) << options;
        EXPECT_EQ(value, "x");
    }
}

TEST_F(PropertySheet, TheDropButtonOpensTheListUnderTheValue) {
    Rows rows = some();
    const Object list = Object("exclusiveboxdlg", 101);
    doings = {
        [] { press(part("btndrop3")); },
        [&] {
            EXPECT_EQ(GetCaption(ExclusiveBoxDlg), "SIDE Property");
            EXPECT_EQ(GetListCount(list), 3);
            EXPECT_EQ(GetList(list, 3), "2-Centre");
            EXPECT_EQ(GetListIndex(list), 2);
            const Rect box = GetPosition(ExclusiveBoxDlg, WINDOW_UNIT),
                       sheet = GetPosition(PropertiesDlg, CLIENT_UNIT),
                       edit = GetPosition(part("edtvalue3"), CLIENT_UNIT);
            EXPECT_EQ(box.x, sheet.x + edit.x);
            EXPECT_EQ(box.y, sheet.y + edit.y + edit.h);
            SetListIndex(list, 3);
            platform::userDoubleClick(*platform::findControl(list), 1, 1);
        },
        [] {
            EXPECT_EQ(value(3), "2-Centre");
            keyAt(3, KEY_F4);
        },
        [&] {
            EXPECT_EQ(GetListIndex(list), 3);
            SetListIndex(list, 1);
            EXPECT_TRUE(key(ExclusiveBoxDlg, list, KEY_RETURN));
        },
        [] {
            EXPECT_EQ(value(3), "0-Left");
            press(part("btndrop3"));
        },
        [&] {
            SetListIndex(list, 2);
            EXPECT_TRUE(key(ExclusiveBoxDlg, list, KEY_ESCAPE));
        },
        [] {
            EXPECT_EQ(value(3), "0-Left");
            press(part("idok"));
        },
    };
    EXPECT_TRUE(show(rows));
    EXPECT_EQ(STRLINE(rows.values, 4), "0");
}

TEST_F(PropertySheet, AListBoxStaysOnTheScreen) {
    std::string value = "a1", options = "STRING(";
    for (int i = 1; i <= 300; ++i) options += (i > 1 ? ",\"a" : "\"a") + STR(i) + "\"";
    doings = {[] {
        const Rect box = GetPosition(ExclusiveBoxDlg, WINDOW_UNIT), screen = ScreenSize();
        EXPECT_GE(box.x, screen.x);
        EXPECT_GE(box.y, screen.y);
        EXPECT_LE(box.x + box.w, screen.x + screen.w);
        EXPECT_LE(box.y + box.h, screen.y + screen.h);
        EXPECT_LE(box.h, screen.h * 2 / 3);
        key(ExclusiveBoxDlg, ExclusiveBoxDlg, KEY_ESCAPE);
    }};
    EXPECT_TRUE(EXTRAPROPS(options + ")", Object(), 100000, 100000, "Letter Property", value));
    EXPECT_EQ(value, "a1");
}

TEST_F(PropertySheet, NothingIsTakenFromAListWithoutAChoice) {
    std::string value = "none";
    doings = {[] {
        EXPECT_EQ(GetListIndex(Object("exclusiveboxdlg", 101)), 0);
        EXPECT_TRUE(key(ExclusiveBoxDlg, ExclusiveBoxDlg, KEY_RETURN));
        EXPECT_TRUE(IsLoaded(ExclusiveBoxDlg));
        platform::userClose(*platform::findWindow(ExclusiveBoxDlg));
    }};
    EXPECT_TRUE(EXTRAPROPS("STRING(\"a\",\"b\")", Object(), 0, 0, "", value));
    EXPECT_EQ(value, "none");
}

TEST_F(PropertySheet, BitsAreChosenAsCheckBoxes) {
    const std::string options = "INTEGER{1-\"One\",2-\"R & D\",4-\"Four\",3-\"One and two\"}";
    const auto box = [](int n) { return FINDCONTROL(InclusiveBoxDlg, "chkoption" + STR(n)); };
    const struct {
        std::string before, after;
        bool checked[4];
        int toggle;
    } cases[] = {{"5", "4", {true, false, true, false}, 1},
                 {"0x5", "0x7", {true, false, true, false}, 2},
                 {"0", "3", {false, false, false, false}, 4},
                 {"7", "7", {true, true, true, true}, 1},
                 {"junk", "2", {false, false, false, false}, 2}};
    for (const auto& one : cases) {
        std::string value = one.before;
        doings = {[&] {
            EXPECT_EQ(GetCaption(InclusiveBoxDlg), "FLAGS Property");
            EXPECT_EQ(GetCaption(box(2)), "2-R && D");
            for (int n = 1; n <= 4; ++n)
                EXPECT_EQ(GetChecked(box(n)), one.checked[n - 1]) << one.before << " " << n;
            EXPECT_FALSE(GetVisible(box(5)));
            SetChecked(box(one.toggle), !GetChecked(box(one.toggle)));
            key(InclusiveBoxDlg, box(1), KEY_RETURN);
        }};
        EXPECT_TRUE(EXTRAPROPS(options, Object(), 10, 10, "FLAGS Property", value));
        EXPECT_EQ(value, one.after) << one.before;
    }
    for (const bool escape : {true, false}) {
        std::string value = "5";
        doings = {[&] {
            SetChecked(box(1), false);
            if (escape)
                key(InclusiveBoxDlg, box(1), KEY_ESCAPE);
            else
                press(FINDCONTROL(InclusiveBoxDlg, "idcancel"));
        }};
        EXPECT_TRUE(EXTRAPROPS(options, Object(), 10, 10, "", value));
        EXPECT_EQ(value, "5");
    }
}

TEST_F(PropertySheet, BasicColoursAreChosenByClickOrKeys) {
    const auto colour = [](int n) { return FINDCONTROL(ColorBoxDlg, "btncolour" + STR(n)); };
    const struct {
        std::string before, after;
        std::vector<int> keys;
    } cases[] = {
        {"0x000000", "0x800000", {KEY_RIGHT, KEY_RETURN}},
        {"0x0000FF", "0x000080", {KEY_UP, KEY_RETURN}},
        {"0x000080", "0x0000FF", {KEY_DOWN, KEY_RETURN}},
        {"255", "128", {KEY_UP, KEY_RETURN}},
        {"0xFFFFFF", "0xFFFFFF", {KEY_RIGHT, KEY_DOWN, KEY_RETURN}},
        {"0x000000", "0x000000", {KEY_LEFT, KEY_UP, KEY_RETURN}},
        {"0xC0C0C0", "0x808080", {KEY_LEFT, KEY_RETURN}},
        {"0x123456", "0x000000", {KEY_RETURN}},  // none of them: the first is marked
        {"red", "0", {KEY_RETURN}},
        {"0x0000FF", "0x0000FF", {KEY_UP, KEY_ESCAPE}},
    };
    for (const auto& one : cases) {
        std::string value = one.before;
        doings = {[&] {
            for (const int code : one.keys) EXPECT_TRUE(key(ColorBoxDlg, ColorBoxDlg, code));
        }};
        EXPECT_TRUE(EXTRAPROPS("COLOUR(0:15)", Object(), 10, 10, "BACKCOLOUR Property", value));
        EXPECT_EQ(value, one.after) << one.before;
    }
    for (int n = 1; n <= 16; ++n) {
        std::string value = "0x", decimal = "1";
        for (std::string* text : {&value, &decimal}) {
            doings = {[&] { press(colour(n)); }};
            EXPECT_TRUE(EXTRAPROPS("COLOR(0:15)", Object(), 10, 10, "", *text));
        }
        EXPECT_EQ(value, "0x" + HEXSTR(BasicColours[static_cast<std::size_t>(n - 1)], 6));
        EXPECT_EQ(decimal, STR(static_cast<int>(BasicColours[static_cast<std::size_t>(n - 1)])));
    }
}

TEST_F(PropertySheet, ColoursBeyondTheSixteenAreChosenFromAll) {
    const struct {
        const char *before, *answer, *after;
    } cases[] = {
        {"0x0000FF", "0x123456", "0x123456"},
        {"255", "0x123456", "1193046"},
        {"0x0000FF", "", "0x0000FF"},  // cancelled
        {"red", "", "red"},
        {"-1", "", "-1"},
        {"-1", "0x000001", "1"},
    };
    for (const auto& one : cases) {
        std::string value = one.before;
        answers = {one.answer};
        EXPECT_TRUE(EXTRAPROPS("COLOUR", Object(), 10, 10, "BACKCOLOUR Property", value));
        EXPECT_EQ(value, one.after) << one.before << " " << one.answer;
    }
}

TEST_F(PropertySheet, TheMarkStandsAroundTheColour) {
    std::string value = "0x00FFFF";
    doings = {[] {
        const Rect mark = GetPosition(FINDCONTROL(ColorBoxDlg, "shpmark"), CLIENT_UNIT),
                   button = GetPosition(FINDCONTROL(ColorBoxDlg, "btncolour15"), CLIENT_UNIT);
        EXPECT_LT(mark.x, button.x);
        EXPECT_LT(mark.y, button.y);
        EXPECT_GT(mark.x + mark.w, button.x + button.w);
        EXPECT_GT(mark.y + mark.h, button.y + button.h);
        EXPECT_FALSE(key(ColorBoxDlg, ColorBoxDlg, KEY_DELETE));
        key(ColorBoxDlg, ColorBoxDlg, KEY_ESCAPE);
    }};
    EXPECT_TRUE(EXTRAPROPS("COLOUR(0:15)", Object(), 10, 10, "", value));
}

TEST_F(PropertySheet, FilesAndFoldersAreAskedFor) {
    std::string value;
    answers = {"/pictures/new.bmp"};
    EXPECT_TRUE(EXTRAPROPS("FILENAME(bmp,png)", Object(), 0, 0, "PICTURE Property", value));
    EXPECT_EQ(value, "/pictures/new.bmp");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].kind, platform::Question::Kind::OpenFile);
    EXPECT_EQ(asked[0].title, "PICTURE Property");
    EXPECT_EQ(asked[0].value, "*.bmp");
    EXPECT_EQ(asked[0].filter, "Bitmap Files (*.bmp)|(*.bmp)|PNG Files (*.png)|(*.png)|");
    EXPECT_TRUE(EXTRAPROPS("FILENAME(bmp,png)", Object(), 0, 0, "", value)) << "closed without an answer";
    EXPECT_EQ(value, "/pictures/new.bmp");
    EXPECT_EQ(asked[1].value, "/pictures/new.bmp");
    answers = {"/tmp"};
    EXPECT_TRUE(EXTRAPROPS("FOLDER", Object(), 0, 0, "Directory Property", value));
    EXPECT_EQ(value, "/tmp");
    EXPECT_EQ(asked[2].kind, platform::Question::Kind::Folder);
    EXPECT_EQ(asked[2].title, "Directory Property");
    EXPECT_TRUE(EXTRAPROPS("FOLDER", Object(), 0, 0, "", value));
    EXPECT_EQ(value, "/tmp");
}

TEST_F(PropertySheet, WithoutItsWindowNothingIsShown) {
    platform::SetApplicationResources(dir + "none.rcx");
    Rows rows = some();
    const std::string before = rows.values;
    EXPECT_FALSE(show(rows));
    EXPECT_EQ(rows.values, before);
    EXPECT_NE(ErrorCell(), 0);
    ClearError();
}

}  // namespace
}  // namespace tarn
