// SPDX-License-Identifier: GPL-3.0-or-later
//
// Random work in the dialog editor by its keys, its mouse and the commands of the menu: undone it leaves every byte of the
// file as it was, and redone the file says what the lists say.
#include "ide/designer/dlghistory.h"
#include "kernel/windows/resources.h"
#include "platform/resources/properties.h"
#include "support/dialog_editor_fixture.h"
#include "support/rounds.h"

#include <random>

namespace tarn {
namespace {

constexpr int Ctrl = 0x1000, Shift = 0x2000;

class DialogHistorySoak : public DialogEditorTest {
protected:
    std::mt19937 random_{4711};

    int below(int most) { return std::uniform_int_distribution<int>(0, most - 1)(random_); }
    template <class T, std::size_t N>
    const T& anyOf(const T (&list)[N]) {
        return list[static_cast<std::size_t>(below(N))];
    }

    // ---- a file ----

    std::string noise() {
        static const char* const pieces[] = {"", "", "\n", "  // a comment\n", "    // deeper\n", "\t\n"};
        return anyOf(pieces);
    }
    std::string caption() {
        static const char* const pieces[] = {"a", " ",  "&B",   "\\n", "\xc3\xa4", "\xff",
                                             "'", "//", "\\\\", "END", "="};
        std::string text;
        for (int n = below(6); n > 0; --n) text += anyOf(pieces);
        return text;
    }
    std::string anyControl(int number) {
        static const char* const types[] = {"LABEL",      "EDIT",        "Checkbox",    "RADIOBUTTON",
                                            "PUSHBUTTON", "GROUPBOX",    "COMBOBOX",    "LISTBOX",
                                            "ICONLIST",   "IMAGE",       "SHAPE",       "ICON",
                                            "SCROLLBAR",  "PROGRESSBAR", "BITMAPBUTTON"};
        static const char* const rest[] = {"",
                                           "",
                                           "    ENABLED=0\n",
                                           "    HINT = \"h\"  // beside\n",
                                           "    ODD=1 2\n",
                                           "    DEFAULT=1\n",
                                           "    ARRAY=n1\n"};
        return noise() + "  " + anyOf(types) + " n" + STR(number) +
               (below(2) == 0 ? " " + STR(1000 + number) : "") + "\n" + noise() +
               "    POSITION=" + STR(below(180)) + " " + STR(below(90)) + " " + STR(1 + below(60)) + " " +
               STR(1 + below(40)) + "\n" + (below(2) == 0 ? "    CAPTION=\"" + caption() + "\"\n" : "") +
               anyOf(rest);
    }
    std::string anyFile() {
        std::string controls;
        for (int n = below(12); n > 0; --n) controls += anyControl(n);
        const bool menu = below(2) == 0;
        std::string text =
            "// Before\nFirst DIALOG\n  POSITION=1 1 9 9\nEND\n\n" +
            dialog(controls + noise(), "Dlg", menu ? "  MENU=Bar\n" : "") +
            (menu ? "Bar MENU\n  Menuitem a 9 // item\n    POSITION=1\n    CAPTION=\"A\"\nEND\n" : "") +
            "// After\n";
        return below(2) == 0 ? text : STRREPLACE(text, "\n", "\r\n");
    }

    // ---- a user ----

    void pressKey() {
        static constexpr int codes[] = {
            KEY_LEFT,   KEY_RIGHT,       KEY_UP,       KEY_DOWN,   Ctrl + KEY_LEFT,
            KEY_DELETE, Ctrl + KEY_DOWN, Ctrl + 'Z',   Ctrl + 'Z', Ctrl + 'Y',
            9,          Shift + 9,       Ctrl + 'X',   Ctrl + 'C', Ctrl + 'V',
            Ctrl + 'A', KEY_ESCAPE,      Ctrl + KEY_UP};
        key(anyOf(codes));
    }
    void pickCommand() {
        static const char* const commands[] = {
            "edit_undo_typing", "edit_redo_typing",     "edit_copy", "edit_cut", "edit_paste",
            "edit_delete",      "edit_dialog_duplicate"};
        pick(anyOf(commands));
    }
    void pressTool() {
        static const char* const tools[] = {"label_ctl",   "edit_ctl",     "pushbutton_ctl",
                                            "listbox_ctl", "menuitem_ctl", "Scrollbar_vertical",
                                            "up_tool",     "down_tool"};
        const std::string tool = anyOf(tools);
        if (tool.ends_with("_tool")) answers.emplace_back("Yes please");
        press(tool);
        answers.clear();
    }
    void useMouse() {
        const int x = below(300), y = below(160);
        below(2) == 0 ? click(x, y) : drag(x, y, below(80) - 40, below(80) - 40);
    }
    void editProperty() {
        const int last = count();
        SELECTOBJECT(1 + below(last));
        const std::string type = property(SELECTEDOBJECT(), "TYPEOF");
        if (type == "Dialog" || type == "Label" || type == "Pushbutton") edit({{"CAPTION", caption()}});
    }
    void act() {
        switch (below(12)) {
        case 0: return pressTool();
        case 1: return editProperty();
        case 2: return resize(below(21) - 10, below(21) - 10);
        case 3:
        case 4: return useMouse();
        case 5:
        case 6: return pickCommand();
        default: return pressKey();
        }
    }
    static void undoAll() {
        while (DIALOGCANUNDO()) DIALOGUNDO();
    }
    static void redoAll() {
        while (DIALOGCANREDO()) DIALOGREDO();
    }

    // The same properties, whether a choice is told by its number or its word.
    static std::vector<std::string> plain(const std::vector<std::string>& lists) {
        std::vector<std::string> result;
        for (const std::string& list : lists) {
            if (list.empty()) break;
            const platform::ParsedList parsed = platform::parsePropertyList(list);
            result.push_back(platform::makePropertyList(parsed.name, parsed.type, parsed.properties));
        }
        return result;
    }
    void expectFileSays(const std::string& name, const std::vector<std::string>& lists) {
        ObjectArray objects;
        ASSERT_EQ(ResourceRead(file, name, objects), "");
        EXPECT_EQ(plain({objects.begin(), objects.end()}), plain(lists));
    }
    void expectFileSaysTheLists() {
        const DesignLists now = DESIGNLISTS();
        expectFileSays("Dlg", now.dialog);
        const std::string menu = GETPROPVALUE(now.dialog[0], "MENU");
        EXPECT_EQ(menu.empty(), now.menu.empty());
        if (!menu.empty()) expectFileSays(menu, now.menu);
    }
};

TEST_F(DialogHistorySoak, UndoneLeavesEveryByteAndRedoneTheFileSaysTheLists) {
    SetText(clipboard, "");
    for (int round = 0; round < rounds(10); ++round) {
        const std::string before = anyFile();
        open(before);
        ASSERT_TRUE(IsLoaded(DialogDlg)) << lastText() << before;
        const DesignLists start = DESIGNLISTS();
        for (int n = 0; n < 50; ++n) act();
        undoAll();
        ASSERT_EQ(DESIGNLISTS().dialog, start.dialog) << "round " << round;
        ASSERT_EQ(DESIGNLISTS().menu, start.menu) << "round " << round;
        ASSERT_FALSE(DIALOGGETMODIFY()) << "round " << round;
        DIALOGSETMODIFY(true);
        DIALOGSAVE();
        ASSERT_EQ(read(file), before) << "round " << round;
        redoAll();
        asked.clear();
        DIALOGSAVE();
        ASSERT_FALSE(DIALOGGETMODIFY()) << "round " << round << lastText();
        expectFileSaysTheLists();
        if (HasFailure()) FAIL() << "round " << round << "\n" << before;
    }
}

}  // namespace
}  // namespace tarn
