// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/commdlgs_about.h"

#include "kernel/text/systeminfo.h"
#include "library/system/shortname.h"
#include "library/system/system.h"

MODULE("commdlgs")

namespace tarn {
namespace {

// What the buttons do stands in the window, under these names and the button's number.
constexpr std::string_view ActionValue = "action", TopicValue = "topic";
constexpr std::string_view ButtonName = "pushbutton";

std::string numbered(std::string_view name, int number) {
    return std::string(name) + STR(number);
}

void act(const Object& window, int number) {
    const std::string action = GetArrayValue(window, numbered(ActionValue, number));
    const std::string topic = GetArrayValue(window, numbered(TopicValue, number));
    if (action.empty()) return;
    if (!topic.empty()) return MULTIHELP(0, action, 257, topic);
    if (action == "Unload") return Unload(window);
    if (action == "Copy") return SetText(Sysclipboard, GetText(FINDCONTROL(window, "edit1")));
    OPENBROWSER(0, action);
}

void showHelp(const Object& window) {
    for (int i = 1; !FINDCONTROL(window, numbered(ButtonName, i)).empty(); i++)
        if (!GetArrayValue(window, numbered(TopicValue, i)).empty()) return act(window, i);
}

bool keyPressed(const Object& window, int key) {
    if (key == KEY_ESCAPE) Unload(window);
    if (key == KEY_F1) showHelp(window);
    return key == KEY_ESCAPE || key == KEY_F1;
}

bool aboutDlg(const Object& window, int event, const Object& control, int parameter) {
    if (event == KEYPRESS_EVENT) return keyPressed(window, parameter);
    if (event != COMMAND_EVENT) return false;
    bool ok = false;
    const std::string name = GetName(control);
    if (!name.starts_with(ButtonName)) return false;
    act(window, CVTI(name.substr(ButtonName.size()), ok));
    return true;
}

void setButtons(const AboutButtons& buttons) {
    for (int i = 1; !FINDCONTROL(AboutDlg, numbered(ButtonName, i)).empty(); i++) {
        const Object control = FINDCONTROL(AboutDlg, numbered(ButtonName, i));
        const bool wanted = static_cast<std::size_t>(i) <= buttons.size();
        const AboutButton button = wanted ? buttons[static_cast<std::size_t>(i - 1)] : AboutButton();
        SetVisible(control, wanted);
        SetCaption(control, button.caption);
        SetEnabled(control, !button.action.empty());
        SetArrayValue(AboutDlg, numbered(ActionValue, i), button.action);
        SetArrayValue(AboutDlg, numbered(TopicValue, i), button.topic);
    }
}

std::string fitted(std::string_view value, int width) {
    return ISROOTED(value) ? FILESHORTENNAME(value, width) : FIRSTBYTES(value, width);
}

}  // namespace

AboutButtons TBUTTONS(std::initializer_list<AboutButton> pairs) {
    FRAME(TBUTTONS);
    return pairs;
}

std::string ABOUTDIALOGINFO(int width) {
    FRAME(ABOUTDIALOGINFO);
    constexpr std::string_view Between = " = ";
    const std::string all = SystemInformation();
    std::string text;
    STAMP();
    for (int i = 1; i <= STRLINES(all); i++) {
        const std::string line = STRLINE(all, i);
        const std::size_t value = line.find(Between) + Between.size();
        text += line.substr(0, value) + fitted(std::string_view(line).substr(value), width) + "\n";
    }
    return text;
}

void ABOUTDIALOG(const std::string& caption, const std::string& icon, const std::string& text,
                 const AboutButtons& buttons) {
    FRAME(ABOUTDIALOG);
    STAMP();
    RegisterWindow(AboutDlg, aboutDlg);
    Load(AboutDlg);
    STAMP();
    SetCaption(AboutDlg, caption);
    SetPicture(FINDCONTROL(AboutDlg, "icon1"), icon);
    SetText(FINDCONTROL(AboutDlg, "edit1"), text);
    setButtons(buttons);
    STAMP();
    Show(AboutDlg, true);
    STAMP();
}

}  // namespace tarn
