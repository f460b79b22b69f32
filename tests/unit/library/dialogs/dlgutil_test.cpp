// SPDX-License-Identifier: Apache-2.0
//
// Numbers of controls, from a resource file and from a program's own.
#include "library/dialogs/dlgutil.h"

#include "kernel/run/runtime.h"
#include "kernel/windows/resources.h"
#include "os/files.h"
#include "platform/model/view.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

constexpr const char* resource = "Main DIALOG\n"
                                 "  Pushbutton File_Open 1203\n"
                                 "  Label label1 1204\n"
                                 "END\n"
                                 "Other DIALOG\n"
                                 "  Label label1 7\n"
                                 "END\n";

TEST(Dlgutil, TheNumberOfAControl) {
    const TempFolder folder;
    const std::string rc = folder / "prog.rc";
    ASSERT_TRUE(os::saveFile(rc, resource).ok());
    EXPECT_EQ(GETVISUALOBJECTINFO(rc, "Main", "file_open"), 1203);
    EXPECT_EQ(GETVISUALOBJECTINFO(rc, "OTHER", "Label1"), 7);
    for (const char* const none : {"", "label", "label11"})
        EXPECT_EQ(GETVISUALOBJECTINFO(rc, "Main", none), 0) << none;
    EXPECT_EQ(GETVISUALOBJECTINFO(rc, "None", "label1"), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO(rc, "", "label1"), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO(folder / "none.rc", "Main", "label1"), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO("", "Main", "label1"), 0);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST(Dlgutil, TheNumberOfAControlOfAProgram) {
    const TempFolder folder;
    ASSERT_TRUE(os::saveFile(folder / "x.rc", resource).ok());
    ASSERT_EQ(CompileResources({folder / "x.rc"}, folder / "prog.rcx"), "");
    for (const char* const program : {"prog", "prog.exe", "prog.rcx"})
        EXPECT_EQ(GETVISUALOBJECTINFO(folder / program, "FILE_OPEN"), 1203) << program;
    EXPECT_EQ(GETVISUALOBJECTINFO(folder / "prog", "none"), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO(folder / "prog", ""), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO(folder / "other", "label1"), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO("", "label1"), 0);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST(Dlgutil, ARangeOfControlsIsEnabledButForLabelsAndGroups) {
    const TempFolder folder;
    std::unique_ptr<platform::View> before = platform::useView(platform::makeHeadlessView());
    const std::string rc = folder / "range.rc";
    ASSERT_TRUE(os::saveFile(rc, "Range DIALOG\n  Edit e1 1\n  Label l 2\n  Checkbox c 3\n  Radiobutton r 4\n"
                                 "  Groupbox g 5\n  Listbox list 6\n  Pushbutton p 7\n  Edit e2 8\nEND\n"
                                 "Editor EDITWINDOW\nEND\n")
                    .ok());
    const Object window("Range");
    ASSERT_EQ(Load(window, rc, "Range"), "");
    const auto off = [&] {
        std::string numbers;
        for (const Object& control : ControlList(window))
            if (!GetEnabled(control)) numbers += std::to_string(control.number());
        return numbers;
    };
    SETENABLEDRANGE(window, Object("Range", 3), Object("Range", 7), false);
    EXPECT_EQ(off(), "3467");
    SETENABLEDRANGE(window, Object("Range", 4), Object("Range", 4), true);
    EXPECT_EQ(off(), "367");
    SETENABLEDRANGE(window, Object("Range", 1), Object("Range", 8), true);
    EXPECT_EQ(off(), "");
    SETENABLEDRANGE(window, Object("Range", 99), Object("Range", 8), false);
    EXPECT_EQ(off(), "");
    SETENABLEDRANGE(window, Object("Range", 7), Object("Range", 1), false);  // there is no end: to the last
    EXPECT_EQ(off(), "78");
    EXPECT_EQ(ErrorCell(), 0);
    Unload(window);
    platform::useView(std::move(before));
}

TEST(Dlgutil, AControlIsPutWhereTheNumbersSay) {
    const TempFolder folder;
    std::unique_ptr<platform::View> before = platform::useView(platform::makeHeadlessView());
    const std::string rc = folder / "place.rc";
    ASSERT_TRUE(
        os::saveFile(rc, "Place DIALOG\n  POSITION=0 0 200 200\n  Edit e 1\n    POSITION=8 8 40 14\nEND\n")
            .ok());
    const Object window("Place"), edit("Place", 1);
    ASSERT_EQ(Load(window, rc, "Place"), "");
    const auto place = [&] {
        return std::vector<int>{GETX(edit), GETY(edit), GETWIDTH(edit), GETHEIGHT(edit)};
    };
    AUTOPOSITION(edit, 11, 12, 53, 24);
    EXPECT_EQ(place(), (std::vector<int>{11, 12, 53, 24}));
    AUTOPOSITION(edit, -1, 0, -1, 30);
    EXPECT_EQ(place(), (std::vector<int>{11, 0, 53, 30}));
    EXPECT_EQ(ErrorCell(), 0);
    Unload(window);
    platform::useView(std::move(before));
}

TEST(Dlgutil, ARowIsFoundByItsBeginningOrAsAWhole) {
    const TempFolder folder;
    std::unique_ptr<platform::View> before = platform::useView(platform::makeHeadlessView());
    const std::string rc = folder / "rows.rc";
    ASSERT_TRUE(os::saveFile(rc, "Rows DIALOG\n  Listbox l 1\n  Listbox none 2\nEND\n").ok());
    const Object window("Rows"), list("Rows", 1), none("Rows", 2);
    ASSERT_EQ(Load(window, rc, "Rows"), "");
    for (const char* const row : {"Apple", "Pear", "apple pie", "", "PEAR"}) AddItem(list, row);
    const struct {
        const char* text;
        int start, begins, whole;
    } table[] = {
        {"APP", 0, 1, 0},  {"app", 1, 3, 0},  {"app", 3, 1, 0},        {"apple", 0, 1, 1}, {"apple", 1, 3, 1},
        {"pear", 2, 5, 5}, {"pear", 5, 2, 2}, {"", 0, 1, 4},           {"", 4, 5, 4},      {"plum", 0, 0, 0},
        {"app", 99, 1, 0}, {"app", -1, 1, 0}, {"apple pies", 0, 0, 0},
    };
    for (const auto& row : table) {
        EXPECT_EQ(FINDSTRING(list, row.text, row.start), row.begins) << row.text << " " << row.start;
        EXPECT_EQ(FINDSTRINGEXACT(list, row.text, row.start), row.whole) << row.text << " " << row.start;
    }
    EXPECT_EQ(FINDSTRING(none, "", 0), 0);
    EXPECT_EQ(ErrorCell(), 0);
    Unload(window);
    platform::useView(std::move(before));
}

TEST(Dlgutil, ACaptionIsShownWithoutItsMarks) {
    const struct {
        const char *caption, *shown;
        int mnemonic;
    } cases[] = {{"", "", 0},
                 {"Plain", "Plain", 0},
                 {"&File", "File", 1},
                 {"E&xit", "Exit", 2},
                 {"a && b", "a & b", 0},
                 {"a & b", "a & b", 0},
                 {"a&", "a&", 0},
                 {"&", "&", 0},
                 {"&&", "&", 0},
                 {"&&&", "&&", 0},
                 {"&&&x", "&x", 3},
                 {"&&&&x&", "&&x&", 0},
                 {"a & &b", "a & b", 5},
                 {"&1 x & y", "1 x & y", 1},
                 {"&\xC3\xA4", "\xC3\xA4", 1},
                 {"&.", "&.", 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(SHOWNCAPTION(c.caption), c.shown) << c.caption;
        EXPECT_EQ(FINDMNEMONIC(c.caption), c.mnemonic) << c.caption;
        EXPECT_EQ(SHOWNCAPTION(PLAINCAPTION(c.caption)), c.caption);
    }
}

TEST(DialogTexts, LinesOfAMessageStandBehindATab) {
    for (const auto& [lines, text] : {std::pair{"", ""},
                                      {"a", "\ta\n"},
                                      {"a\n", "\ta\n"},
                                      {"a\n b", "\ta\n\t b\n"},
                                      {"a\n\nb\n", "\ta\n\t\n\tb\n"}})
        EXPECT_EQ(INDENTLINES(lines), text) << lines;
}

}  // namespace
}  // namespace tarn
