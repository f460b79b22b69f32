// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the dialog check finds, and what it leaves alone. Without a screen a letter is 6 pixels wide and a line 13 high.
#include "ide/designer/check/dlgcheck.h"
#include "library/designer/propedit.h"
#include "library/designer/proputil.h"
#include "support/ide_fixture.h"

#include <functional>
#include <random>

namespace tarn {
namespace {

using Strings = std::vector<std::string>;

// Any dialog that is loaded.
const Object Measure("exclusiveboxdlg");

class DialogCheck : public IdeTest {
protected:
    ObjectArray dialog, menu;

    void SetUp() override {
        IdeTest::SetUp();
        REGISTERWINDOWS();
        Load(Measure);
        ASSERT_TRUE(IsLoaded(Measure));
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }

    // "Type name x y w h|NAME=value|..." as a property list, each list on the defaults of its type.
    static std::string object(const std::string& text) {
        const std::size_t end = std::min(text.find('|'), text.size());
        const std::string head = text.substr(0, end), type = head.substr(0, head.find(' '));
        const std::string rest = head.substr(std::min(type.size() + 1, head.size()));
        const std::string name = rest.substr(0, rest.find(' '));
        std::string list = GETOBJECTDEFAULTS(type);
        for (const char* colour : {"FORECOLOUR", "BACKCOLOUR"}) SETPROPVALUE(colour, "-1", list);
        SETPROPVALUE("NAME", name, list);
        SETPROPVALUE("POSITION", rest.substr(std::min(name.size() + 1, rest.size())), list);
        for (std::size_t at = end; at < text.size();) {
            const std::size_t next = std::min(text.find('|', at + 1), text.size());
            const std::string line = text.substr(at + 1, next - at - 1);
            const std::size_t sign = line.find('=');
            SETPROPVALUE(line.substr(0, sign), line.substr(sign + 1), list);
            at = next;
        }
        return list;
    }
    static ObjectArray arrayOf(const std::string& first, const Strings& texts) {
        ObjectArray array;
        array[0] = object(first);
        for (std::size_t n = 0; n < texts.size(); ++n) array[n + 1] = object(texts[n]);
        return array;
    }
    std::vector<DialogFinding> find(const Strings& controls, const Strings& items = {}) {
        dialog = arrayOf("Dialog Test 0 0 200 100", controls);
        menu = items.empty() ? ObjectArray{} : arrayOf("Menuitem TestMenu 0", items);
        return CHECKDIALOG(Measure, dialog, menu);
    }
    // "n: text" of each finding, "m n: text" in the menu.
    Strings told(const Strings& controls, const Strings& items = {}) {
        Strings lines;
        for (const DialogFinding& one : find(controls, items))
            lines.push_back((one.inMenu ? "m " : "") + STR(one.index) + ": " + one.text);
        return lines;
    }
    // The value that the repair of the one finding gives the property.
    std::string repaired(const std::string& property, const Strings& controls, const Strings& items = {}) {
        const auto findings = find(controls, items);
        EXPECT_EQ(findings.size(), 1u);
        return findings.empty() ? "" : GETPROPVALUE(findings[0].repair, property);
    }
    static std::string ok() { return "Pushbutton ok 140 80 52 16|CAPTION=\"OK\"|DEFAULT=1"; }
};

TEST_F(DialogCheck, FindsNothingInADialogThatIsRight) {
    EXPECT_EQ(
        told({"Label label1 8 10 40 10|CAPTION=\"&Name:\"", "Edit edit1 50 8 100 14",
              "Checkbox check1 8 30 100 11|CAPTION=\"&Quiet\"", ok(),
              "Pushbutton cancel 80 80 52 16|CAPTION=\"Cancel\"|CANCEL=1"},
             {"Menuitem file 1|CAPTION=\"&File\"", "Menuitem open 2|CAPTION=\"&Open...\"", "Menuitem x 2",
              "Menuitem exit 2|CAPTION=\"&Exit\"", "Menuitem edit 1|CAPTION=\"&Edit\""}),
        Strings{
            "6: Tab leads from Pushbutton 'ok' back to Pushbutton 'cancel', which is read before it. Move it "
            "forward in the order of the objects."});
    EXPECT_EQ(told({}), Strings{});
    dialog = {};
    menu = {};
    EXPECT_TRUE(CHECKDIALOG(Measure, dialog, menu).empty());
}

// ---- keys ----

TEST_F(DialogCheck, MnemonicsThatAreMissing) {
    const char* const missing =
        " has no mnemonic, so that no key picks it. Put a & before a letter of its caption.";
    EXPECT_EQ(
        told({"Label label1 8 10 40 10|CAPTION=\"Name:\"", "Edit edit1 50 8 100 14",
              "Checkbox check1 8 30 100 11|CAPTION=\"A && B\"",
              "Radiobutton radio1 8 44 100 11|CAPTION=\"Radio\"",
              "Pushbutton add 80 80 52 16|CAPTION=\"Add\"", ok()}),
        (Strings{std::string("2: Label 'label1'") + missing, std::string("4: Checkbox 'check1'") + missing,
                 std::string("5: Radiobutton 'radio1'") + missing,
                 std::string("6: Pushbutton 'add'") + missing}));
}

TEST_F(DialogCheck, WhatNeedsNoMnemonic) {
    for (const char* control :
         {"Label label1 8 8 60 10|CAPTION=\"Only a text\"", "Groupbox group1 8 8 100 40|CAPTION=\"Group\"",
          "Pushbutton cancel 8 8 52 16|CAPTION=\"Cancel\"|CANCEL=1",
          "Checkbox check1 8 8 100 11|CAPTION=\"\"", "Pushbutton more 8 8 52 16|CAPTION=\"...\"",
          "Pushbutton more 8 8 52 16|CAPTION=\"\xe2\x80\xa6\"",
          "Checkbox check1 8 8 100 11|CAPTION=\"Hidden\"|VISIBLE=0",
          "Checkbox check1 8 8 100 11|CAPTION=\"No stop\"|TABSTOP=0"})
        EXPECT_EQ(told({control, ok()}), Strings{}) << control;
    EXPECT_EQ(told({"Edit e 8 8 80 14|HINT=\"File\"", "Pushbutton b 92 7 40 16|CAPTION=\"Find\"", ok()}),
              Strings{});
    EXPECT_EQ(
        told({"Edit e 8 8 80 14|HINT=\"File\"", "Pushbutton b 92 30 40 16|CAPTION=\"Find\"", ok()}).size(),
        1u);
}

TEST_F(DialogCheck, OneMnemonicIsEnoughForAGroupOfRadioButtons) {
    const auto button = [](int n, const char* caption, const char* array) {
        return "Radiobutton r" + STR(n) + " 8 " + STR(n * 12) + " 100 11|CAPTION=\"" + caption +
               "\"|ARRAY=" + array;
    };
    const std::string label = "Label l 8 2 60 9|CAPTION=\"&Colour:\"",
                      box = "Groupbox g 2 0 120 70|CAPTION=\"&Colour\"";
    EXPECT_EQ(told({button(1, "Red", "c"), button(2, "&Green", "c"), button(3, "Blue", "c")}), Strings{});
    EXPECT_EQ(told({label, button(1, "Red", "c"), button(2, "Green", "c")}), Strings{});
    EXPECT_EQ(told({box, button(1, "Red", "c"), button(2, "Green", "c")}), Strings{});
    EXPECT_EQ(told({button(1, "Red", "c"), button(2, "Green", "c")}).size(), 2u);
    EXPECT_EQ(told({button(1, "&Red", "c"), button(2, "Green", "d")}).size(), 1u) << "another group";
    EXPECT_EQ(told({button(1, "Red", ""), button(2, "&Green", "")}), Strings{})
        << "those that stand together are one";
}

TEST_F(DialogCheck, MnemonicsThatAreUsedTwice) {
    EXPECT_EQ(told({"Checkbox check1 8 30 100 11|CAPTION=\"&Add it\"",
                    "Pushbutton add 80 80 52 16|CAPTION=\"&add\"", ok()}),
              (Strings{"3: Pushbutton 'add' has the mnemonic A, which Checkbox 'check1' has too. Put the & "
                       "before another "
                       "letter."}));
    EXPECT_EQ(told({"Checkbox check1 8 30 100 11|CAPTION=\"&File it\"", ok()},
                   {"Menuitem file 1|CAPTION=\"&File\""}),
              (Strings{"2: Checkbox 'check1' has the mnemonic F, which Menuitem 'file' has too. Put the & "
                       "before another "
                       "letter."}));
    EXPECT_EQ(told({"Checkbox check1 8 30 100 11|CAPTION=\"&A\"",
                    "Checkbox hidden 8 50 100 11|CAPTION=\"&A\"|VISIBLE=0", ok()}),
              Strings{});
}

TEST_F(DialogCheck, ARepairTakesTheBestFreeLetter) {
    const struct {
        const char *taken, *caption, *repaired;
    } cases[] = {{"x", "Move Up", "&Move Up"},
                 {"m", "Move Up", "Move &Up"},
                 {"mu", "Move Up", "M&ove Up"},
                 {"a", "&Add", "A&dd"},
                 {"ad", "Add", ""},
                 {"f", "A && Fb", "&A && Fb"},
                 {"af", "A && Fb", "A && F&b"},
                 {"",
                  "\xc3\xa4"
                  "x",
                  "\xc3\xa4&x"}};
    for (const auto& one : cases) {
        Strings controls;
        int y = 0;
        for (const char c : std::string(one.taken)) {
            ++y;
            controls.push_back("Checkbox c" + STR(y) + " 8 " + STR(y * 12) + " 60 11|CAPTION=\"&" + c + "\"");
        }
        controls.push_back(std::string("Checkbox last 80 8 100 11|CAPTION=\"") + one.caption + "\"");
        controls.push_back(ok());
        EXPECT_EQ(repaired("CAPTION", controls), one.repaired) << one.caption;
    }
}

TEST_F(DialogCheck, TwoRepairsTakeTwoLetters) {
    const auto findings =
        find({"Checkbox a 8 8 100 11|CAPTION=\"Same\"", "Checkbox b 8 20 100 11|CAPTION=\"Same\"", ok()});
    ASSERT_EQ(findings.size(), 2u);
    EXPECT_EQ(GETPROPVALUE(findings[0].repair, "CAPTION"), "&Same");
    EXPECT_EQ(GETPROPVALUE(findings[1].repair, "CAPTION"), "S&ame");
}

TEST_F(DialogCheck, AnAmpersandThatMarksNothingIsNoMnemonic) {
    const auto findings = find({"Checkbox a 8 8 100 11|CAPTION=\"Tom & Ann\"",
                                "Checkbox b 8 20 100 11|CAPTION=\"Tea & cake &\"", ok()});
    ASSERT_EQ(findings.size(), 2u);
    EXPECT_TRUE(findings[0].text.find("has no mnemonic") != std::string::npos) << findings[0].text;
    EXPECT_EQ(GETPROPVALUE(findings[0].repair, "CAPTION"), "&Tom & Ann");
    EXPECT_EQ(GETPROPVALUE(findings[1].repair, "CAPTION"), "Tea & &cake &");
}

TEST_F(DialogCheck, EachLevelOfTheMenuHasItsOwnMnemonics) {
    const Strings items = {"Menuitem file 1|CAPTION=\"&File\"",        "Menuitem f1 2|CAPTION=\"&First\"",
                           "Menuitem f2 2|CAPTION=\"&Fourth\"",        "Menuitem f3 3|CAPTION=\"&Fifth\"",
                           "Menuitem f4 2|CAPTION=\"Plain\tCtrl+P\"",  "Menuitem f5 2|CAPTION=\"---\"",
                           "Menuitem edit 1|CAPTION=\"&Edit\"",        "Menuitem e1 2|CAPTION=\"&First\"",
                           "Menuitem e2 2|CAPTION=\"&Full\"|VISIBLE=0"};
    EXPECT_EQ(told({ok()}, items), (Strings{"m 4: Menuitem 'f2' has the mnemonic F, which Menuitem 'f1' has "
                                            "too. Put the & before another letter.",
                                            "m 6: Menuitem 'f4' has no mnemonic, so that no key picks it. "
                                            "Put a & before a letter of its caption."}));
    const auto findings = find({ok()}, items);
    EXPECT_EQ(GETPROPVALUE(findings[0].repair, "CAPTION"), "F&ourth");
    EXPECT_EQ(GETPROPVALUE(findings[1].repair, "CAPTION"), "&Plain\tCtrl+P");
}

TEST_F(DialogCheck, TheDefaultButton) {
    EXPECT_EQ(
        told(
            {"Pushbutton a 8 8 52 16|CAPTION=\"Close\"|CANCEL=1", "Pushbutton b 68 8 52 16|CAPTION=\"&Go\""}),
        (Strings{
            "3: No button is the default one, so that Return presses none. Set DEFAULT of one to 1, as of "
            "Pushbutton 'b'."}));
    EXPECT_EQ(repaired("DEFAULT",
                       {"Pushbutton a 8 8 52 16|CAPTION=\"&Go\"", "Pushbutton b 68 8 52 16|CAPTION=\"O&K\"",
                        "Pushbutton c 128 8 52 16|CAPTION=\"Cancel\"|CANCEL=1"}),
              "1");
    EXPECT_EQ(told({ok(), "Pushbutton b 8 96 52 4|CAPTION=\"&Go\"|DEFAULT=1"}),
              (Strings{"3: Pushbutton 'b' and Pushbutton 'ok' are both the default button; Return presses "
                       "the first. Set "
                       "DEFAULT of one to 0."}));
}

// ---- the order of Tab ----

TEST_F(DialogCheck, TabFollowsTheReadingOrder) {
    const struct {
        const char *first, *second;
        bool wrong;
    } cases[] = {{"8 8 40 14", "60 8 40 14", false},  {"60 8 40 14", "8 8 40 14", true},
                 {"8 8 40 14", "8 30 40 14", false},  {"8 30 40 14", "8 8 40 14", true},
                 {"8 50 40 14", "60 8 40 14", false}, {"60 8 40 14", "8 50 40 14", false},
                 {"60 50 40 14", "8 8 40 14", true},  {"60 10 40 14", "8 8 40 14", true},
                 {"8 8 40 40", "60 40 40 14", false}, {"8 8 40 14", "8 8 40 14", false}};
    for (const auto& one : cases) {
        int steps = 0;
        for (const DialogFinding& finding :
             find({"Scrollbar a " + std::string(one.first), "Scrollbar b " + std::string(one.second)}))
            steps += finding.text.starts_with("Tab leads from Scrollbar 'a' back to Scrollbar 'b'") ? 1 : 0;
        EXPECT_EQ(steps, one.wrong ? 1 : 0) << one.first << ", " << one.second;
    }
    EXPECT_EQ(told({"Scrollbar a 8 30 40 14", "Scrollbar b 8 8 40 14|TABSTOP=0",
                    "Label c 60 8 40 14|CAPTION=\"x\""}),
              Strings{});
    EXPECT_EQ(told({"Scrollbar a 8 30 40 14", "Edit b 8 8 40 14|READONLY=1|HINT=\"x\""}), Strings{});
    const std::string list = "Scrollbar list 8 30 100 40",
                      first = "Bitmapbutton a 8 8 16 16|HINT=\"A\"|TABSTOP=1";
    const std::string second = "Bitmapbutton b 30 8 16 16|HINT=\"B\"|TABSTOP=1";
    EXPECT_EQ(told({list, first, second}), Strings{}) << "tools may come behind what they work on";
    EXPECT_EQ(told({list, second, first}).size(), 1u) << "but in their order";
}

// ---- room ----

TEST_F(DialogCheck, ControlsThatCoverEachOther) {
    EXPECT_EQ(told({"Scrollbar a 8 8 40 20", "Scrollbar b 47 27 40 20"}),
              (Strings{"3: Scrollbar 'b' covers a part of Scrollbar 'a'. Move one of them."}));
    for (const Strings& fine : {Strings{"Scrollbar a 8 8 40 20", "Scrollbar b 48 8 40 20"},
                                Strings{"Groupbox g 8 8 100 60", "Scrollbar b 20 20 40 20"},
                                Strings{"Scrollbar b 20 20 40 20", "Groupbox g 8 8 100 60"},
                                Strings{"Shape s 8 8 30 30", "Scrollbar b 20 20 40 20"},
                                Strings{"Scrollbar a 8 8 40 20", "Scrollbar b 10 10 40 20|VISIBLE=0"},
                                Strings{"Scrollbar a 8 8 0 0", "Scrollbar b 8 8 40 20"},
                                Strings{"Combobox c 8 8 40 64|HINT=\"c\"", "Scrollbar b 8 40 40 20"}})
        EXPECT_EQ(told(fine), Strings{}) << fine[0];
    EXPECT_EQ(told({"Groupbox g 8 8 100 60", "Scrollbar b 90 20 40 20"}).size(), 1u) << "half in the box";
    EXPECT_EQ(told({"Combobox c 8 8 40 64|HINT=\"c\"|COMBOSTYLE=0", "Scrollbar b 8 40 40 20"}).size(), 1u);
}

TEST_F(DialogCheck, ControlsThatReachOutOfTheWindow) {
    const char* const out = " reaches out of the window. Move it inside, or make the window larger.";
    const struct {
        const char *place, *repaired;
    } cases[] = {{"180 8 40 20", "160 8 40 20"},
                 {"-4 8 40 20", "0 8 40 20"},
                 {"8 90 40 20", "8 80 40 20"},
                 {"8 -1 40 20", "8 0 40 20"},
                 {"8 8 300 20", ""},
                 {"32767 32767 40 20", "160 80 40 20"},
                 {"-32768 -32768 9 9", "0 0 9 9"},
                 {"2147483647 0 2147483647 9", ""}};
    for (const auto& one : cases) {
        const auto findings = find({std::string("Scrollbar a ") + one.place});
        ASSERT_EQ(findings.size(), 1u) << one.place;
        EXPECT_EQ(findings[0].text, std::string("Scrollbar 'a'") + out);
        EXPECT_EQ(GETPROPVALUE(findings[0].repair, "POSITION"), one.repaired);
    }
    EXPECT_EQ(repaired("POSITION", {"Scrollbar b 150 8 50 20", "Scrollbar a 190 30 40 20"}), "160 30 40 20");
    EXPECT_EQ(repaired("POSITION", {"Scrollbar b 150 8 50 20", "Scrollbar a 220 8 40 20"}), "")
        << "onto another";
}

TEST_F(DialogCheck, CaptionsThatAreCutOff) {
    // 6 pixels are 4 units, so a letter takes 4.
    const auto cut = [](const char* object, int units) {
        return Strings{std::string("2: The caption of ") + object + " is cut off at 100 %. Make it " +
                       STR(units) + " units wider, or its caption shorter."};
    };
    EXPECT_EQ(told({"Label a 8 8 40 10|CAPTION=\"0123456789\""}), Strings{});
    EXPECT_EQ(told({"Label a 8 8 36 10|CAPTION=\"0123456789\""}), cut("Label 'a'", 4));
    EXPECT_EQ(told({"Label a 8 8 36 10|CAPTION=\"&123456&&9\""}), Strings{}) << "marks take no room";
    EXPECT_EQ(told({"Checkbox a 8 8 40 11|CAPTION=\"&12345678\""}), cut("Checkbox 'a'", 4))
        << "the mark takes some";
    EXPECT_EQ(told({"Pushbutton a 8 8 40 16|CAPTION=\"123456789\"|DEFAULT=1"}), cut("Pushbutton 'a'", 4));
    EXPECT_EQ(told({"Label a 8 8 40 16|CAPTION=\"several words here\""}), Strings{})
        << "two lines have room for it";
    EXPECT_EQ(told({"Label a 8 8 40 16|CAPTION=\"several words here and there\""}).size(), 1u);
    EXPECT_EQ(told({"Label a 8 8 40 24|CAPTION=\"oneverylongword\""}), cut("Label 'a'", 20));
    EXPECT_EQ(told({"Label a 8 8 20 24|CAPTION=\"one\\ntwo\""}), Strings{});
    EXPECT_EQ(told({"Label a 8 8 20 24|CAPTION=\"\"", "Edit b 40 8 20 14"}), Strings{});
}

TEST_F(DialogCheck, ACaptionIsGivenTheRoomThatThereIs) {
    EXPECT_EQ(repaired("POSITION", {"Label a 8 8 36 10|CAPTION=\"0123456789\""}), "8 8 40 10");
    EXPECT_EQ(repaired("POSITION", {"Label a 8 8 36 10|CAPTION=\"0123456789\"", "Scrollbar b 46 8 20 10"}),
              "");
    EXPECT_EQ(repaired("POSITION", {"Label a 164 8 36 10|CAPTION=\"0123456789\""}), "");
}

TEST_F(DialogCheck, CaptionsAreNotMeasuredWithoutAWindow) {
    dialog = arrayOf("Dialog Test 0 0 200 100", {"Label a 8 8 36 10|CAPTION=\"0123456789\""});
    EXPECT_TRUE(CHECKDIALOG(Object("none"), dialog, menu).empty());
    EXPECT_TRUE(CHECKDIALOG(SDIEdit, dialog, menu).empty());
    Load(SDIEdit);
    EXPECT_TRUE(CHECKDIALOG(SDIEdit, dialog, menu).empty()) << "nothing can be drawn there";
}

// ---- reading ----

TEST_F(DialogCheck, FieldsWithoutALabel) {
    for (const std::string type : {"Edit", "Combobox", "Listbox", "Iconlist"}) {
        const std::string wrong =
            type + " 'a' has no label before it, so that a screen reader cannot name it. Put a Label in "
                   "front of it in the order of the objects, or give it a HINT.";
        const std::string field = type + " a 60 8 40 14";
        EXPECT_EQ(told({field}), Strings{"2: " + wrong});
        EXPECT_EQ(told({field + "|HINT=\"Name\""}), Strings{});
        EXPECT_EQ(told({"Label l 8 8 40 10|CAPTION=\"&Name:\"", field}), Strings{});
        EXPECT_EQ(told({"Label l 8 8 40 10|CAPTION=\"\"", field}), Strings{}) << "the program sets it";
        EXPECT_EQ(told({"Label l 8 8 40 10|CAPTION=\"x\"|VISIBLE=0", field}), Strings{"3: " + wrong});
        EXPECT_EQ(told({"Label l 8 8 40 10|CAPTION=\"x\"", "Shape s 8 50 9 9", field}),
                  Strings{"4: " + wrong});
    }
}

TEST_F(DialogCheck, PicturesWithoutAName) {
    for (const std::string type : {"Bitmapbutton", "Icon", "Image"}) {
        const std::string picture = type + " a 60 8 16 16|PICTURE=\"x.svg\"";
        EXPECT_EQ(told({picture}),
                  Strings{"2: " + type +
                          " 'a' shows a picture alone, which a screen reader cannot tell. Give it a HINT."});
        EXPECT_EQ(told({picture + "|HINT=\"Open\""}), Strings{});
        EXPECT_EQ(told({picture + "|VISIBLE=0"}), Strings{});
    }
    EXPECT_EQ(told({"Bitmapbutton a 60 8 16 16|CAPTION=\"Open\""}), Strings{});
}

TEST_F(DialogCheck, ColoursWithoutContrast) {
    const struct {
        const char *fore, *back, *contrast, *repaired;
    } cases[] = {{"0x000000", "0xFFFFFF", "", ""},
                 {"0x777777", "0xFFFFFF", "4.4", "0x000000"},
                 {"0x767676", "0xFFFFFF", "", ""},
                 {"0xFFFFFF", "0xFFFFFF", "1.0", "0x000000"},
                 {"0x404040", "0x000000", "2.0", "0xFFFFFF"},
                 {"0xFF0000", "0xFFFFFF", "", ""},
                 {"0x00FF00", "0xFFFFFF", "1.3", "0x000000"},
                 {"0x0000FF", "0xFFFFFF", "3.9", "0x000000"},
                 {"-1", "0xFFFFFF", "", ""},
                 {"0xFFFFFF", "-1", "", ""}};
    for (const auto& one : cases) {
        const std::string control =
            std::string("Progressbar a 8 8 80 12|FORECOLOUR=") + one.fore + "|BACKCOLOUR=" + one.back;
        const auto findings = find({control});
        ASSERT_EQ(findings.size(), one.contrast[0] == '\0' ? 0u : 1u) << one.fore;
        if (findings.empty()) continue;
        EXPECT_TRUE(findings[0].text.starts_with(
            std::string("The colours of Progressbar 'a' have a contrast of ") + one.contrast +
            " to 1, which is hard to see; at least 4.5 to 1 is needed."))
            << findings[0].text;
        EXPECT_EQ(GETPROPVALUE(findings[0].repair, "FORECOLOUR"), one.repaired);
    }
    EXPECT_EQ(told({"Shape a 8 8 80 12|FORECOLOUR=0x808080|BACKCOLOUR=0x808080"}), Strings{});
}

// ---- all together ----

TEST_F(DialogCheck, FindingsStandInTheOrderOfTheObjects) {
    std::pair<bool, int> before;
    for (const DialogFinding& one :
         find({"Edit a 300 8 40 14", "Checkbox b 8 8 20 11|CAPTION=\"Long caption\"", "Image c 0 0 9 9"},
              {"Menuitem m 1|CAPTION=\"M\""})) {
        EXPECT_LE(before, std::pair(one.inMenu, one.index));
        before = {one.inMenu, one.index};
    }
    EXPECT_EQ(before, (std::pair(true, 2)));
}

TEST_F(DialogCheck, WhatIsRepairedIsNotFoundAgain) {
    std::mt19937 random(3);
    const auto any = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const char* const kinds[] = {"Label",    "Edit",  "Checkbox",    "Pushbutton",
                                 "Groupbox", "Image", "Progressbar", "Radiobutton"};
    const char* const captions[] = {"",   "&Add",     "Add", "A longer caption",
                                    "&&", "\xff\xfe", "&",   "Two\\nlines"};
    for (int round = 0; round < 300; ++round) {
        Strings controls;
        for (int n = any(8); n >= 0; --n)
            controls.push_back(std::string(kinds[any(8)]) + " c" + STR(n) + " " + STR(any(240) - 20) + " " +
                               STR(any(120) - 10) + " " + STR(any(80)) + " " + STR(any(30)) + "|CAPTION=\"" +
                               captions[any(8)] + "\"");
        for (const DialogFinding& one : find(controls)) {
            if (one.repair.empty()) continue;
            ObjectArray changed = dialog;
            changed[static_cast<std::size_t>(one.index - 1)] = one.repair;
            for (const DialogFinding& still : CHECKDIALOG(Measure, changed, menu))
                EXPECT_FALSE(still.index == one.index && still.text == one.text) << one.text;
        }
    }
}

// Buttons of which the program sets the caption, and looks it up by its text.
bool isSetByTheProgram(const std::string& dialog, const std::string& text) {
    const struct {
        const char *dialog, *button;
    } buttons[] = {{"UndoDlg", "pushbutton2"},
                   {"AboutDlg", "pushbutton2"},
                   {"AboutDlg", "pushbutton3"},
                   {"AboutDlg", "pushbutton4"}};
    for (const auto& one : buttons)
        if (dialog == one.dialog &&
            text.starts_with("Pushbutton '" + std::string(one.button) + "' has no mnemonic"))
            return true;
    return false;
}

TEST_F(DialogCheck, TheSystemsOwnDialogsHaveNoFindings) {
    int dialogs = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SOURCE_DIR "/src/ide")) {
        if (entry.path().extension() != ".rc") continue;
        const std::string file = entry.path().string(), names = ResourceInfo(file, "DIALOG", "*").text;
        for (int n = 1; n <= STRLINES(names); ++n) {
            const std::string name = STRSPLIT(STRLINE(names, n)).left;
            menu = {};
            ASSERT_EQ(ResourceRead(file, name, dialog), "") << file << " " << name;
            const std::string menuName = GETPROPVALUE(dialog[0], "MENU");
            if (!menuName.empty()) {
                ASSERT_EQ(ResourceRead(file, menuName, menu), "");
            }
            for (const DialogFinding& one : CHECKDIALOG(Measure, dialog, menu))
                if (!isSetByTheProgram(name, one.text))
                    ADD_FAILURE() << entry.path().filename() << " " << name << (one.inMenu ? " menu " : " ")
                                  << one.index << ": " << one.text;
            ++dialogs;
        }
    }
    EXPECT_GT(dialogs, 30);
}

}  // namespace
}  // namespace tarn
