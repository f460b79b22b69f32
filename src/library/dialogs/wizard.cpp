// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/wizard.h"

#include "library/system/system.h"

MODULE("dlgutil")

namespace tarn {
namespace {

constexpr int None = -1, Ok = 1, Retry = 4;  // what a page's modal Show answers

struct Button {
    std::string_view control, word, caption;
};
constexpr Button buttons[] = {
    {"IDRETRY", "Back", "&Back <<"},
    {"IDOK", "Next", "&Next >>"},
    {"IDCANCEL", "Cancel", "Cancel"},
};

void prepare(const Object& page, const std::string& title, std::size_t number, std::size_t count) {
    SetCaption(page, count > 1 ? title + " (" + std::to_string(number) + " of " + std::to_string(count) + ")"
                               : title);
    for (const Button& button : buttons) {
        const Object control = FINDCONTROL(page, button.control);
        SetVisible(control, true);
        SetEnabled(control, true);
        SetCaption(control, button.caption);
    }
    if (number == 1) SetEnabled(FINDCONTROL(page, "IDRETRY"), false);
    if (number == count) SetCaption(FINDCONTROL(page, "IDOK"), "Done");
}

// Shows one page; the number of the button that ended it.
int showPage(const Object& page, std::vector<std::string>& values) {
    const int result = Show(page, true);
    STAMP();
    if (!IsLoaded(page)) return result;
    values = GetArrayValues(page, "*");
    STAMP();
    Unload(page);
    return result;
}

}  // namespace

bool CHECKALLOWEDINWIZARD(const Object& window) {
    FRAME(CHECKALLOWEDINWIZARD);
    STAMP();
    const std::string name = GetName(window);
    std::string faults;
    for (const Button& button : buttons)
        if (FINDCONTROL(window, button.control).empty())
            faults += name + " does not have a '" + std::string(button.word) + "' button (" +
                      std::string(button.control) + ")\n";
    STAMP();
    if (GetVisible(window)) faults += name + " is not allowed to Show itself while loading\n";
    STAMP();
    if (!faults.empty()) MsgBox("Wizard", STRRTRIMCRLF(faults), "OK", BoxIcon::Error);
    return faults.empty();
}

bool WIZARDDIALOG(const std::string& title, const std::vector<Object>& pages,
                  std::vector<std::string>& values) {
    FRAME(WIZARDDIALOG);
    std::size_t number = 1;
    int result = None;
    while (number >= 1 && number <= pages.size() && (result == None || result == Retry || result == Ok)) {
        const Object& page = pages[number - 1];
        STAMP();
        Load(page, values);
        STAMP();
        if (!IsLoaded(page)) return false;
        if (!CHECKALLOWEDINWIZARD(page)) return Unload(page), false;
        STAMP();
        prepare(page, title, number, pages.size());
        STAMP();
        result = showPage(page, values);
        STAMP();
        if (result == Ok) ++number;
        if (result == Retry) --number;
    }
    return result == Ok;
}

}  // namespace tarn
