// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/files/openresource.h"

#include "ide/designer/files/scratch.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/system/system.h"

MODULE("dlgedit")

namespace tarn {
namespace {

const Object OpenResourceDlg("OpenResourceDlg");
const RegisteredWindow registered("OpenResourceDlg", OPENRESOURCEDLG);

Object part(std::string_view name) {
    return FINDCONTROL(OpenResourceDlg, name);
}
std::string kind() {
    return GetCaption(part("lblkind"));
}
std::string chosenFile() {
    return STRTRIM(GetText(part("edit1")));
}
std::string chosenName() {
    const int row = GetListIndex(part("listbox1"));
    return row == 0 ? std::string() : GetList(part("listbox1"), row);
}

// The resources of the file, with the one of that name selected, else the first.
void FILLNAMES(const std::string& name) {
    FRAME(FILLNAMES);
    STAMP();
    const std::string names = RESOURCENAMES(chosenFile(), STRUPPER(kind())).text;
    const Object list = part("listbox1");
    Clear(list);
    int selected = names.empty() ? 0 : 1;
    for (int n = 1; n <= STRLINES(names); ++n) {
        STAMP();
        AddItem(list, STRLINE(names, n));
        if (STREQUAL(STRLINE(names, n), name)) selected = n;
    }
    SetListIndex(list, selected);
    STAMP();
}

void BROWSE(const Object& window) {
    FRAME(BROWSE);
    STAMP();
    const std::string file = OpenFileDialog(GetCaption(window), chosenFile(), "Resource files (*.rc)|*.rc|");
    if (file.empty()) return;
    STAMP();
    SetText(part("edit1"), file);
    FILLNAMES("");
}

std::string problemOf(const Object&) {
    const std::string file = chosenFile();
    if (file.empty()) return "Choose a resource file first.";
    if (FileSize(file) < 0) return "'" + file + "' does not exist.";
    const ResourceText names = RESOURCENAMES(file, STRUPPER(kind()));
    if (!names.error.empty()) return names.error;
    if (names.text.empty()) return "'" + file + "' has no " + kind() + ".";
    return chosenName().empty() ? "Choose a " + kind() + " first." : "";
}

void accept(const Object&) {
    SetCaption(part("lblchosen"), "1");
}

constexpr DialogShape shape{
    .showHelp = SHOWWINDOWHELP, .problem = problemOf, .accept = accept, .hides = true};

}  // namespace

bool OPENRESOURCEDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(OPENRESOURCEDLG);
    STAMP();
    const std::string name = GetName(control);
    if (event == CHANGE_EVENT && name == "edit1") {
        FILLNAMES("");
        return true;
    }
    if (event == COMMAND_EVENT && name == "pushbutton4") {
        BROWSE(window);
        return true;
    }
    STAMP();
    const bool twice = event == DBLCLICK_EVENT && name == "listbox1";
    const bool result = twice ? DIALOGSHAPEEVENT(shape, window, COMMAND_EVENT, part("pushbutton1"), 0)
                              : DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

ResourceChoice OPENRESOURCEDIALOG(const std::string& title, const std::string& word, const std::string& file,
                                  const std::string& name) {
    FRAME(OPENRESOURCEDIALOG);
    STAMP();
    Load(OpenResourceDlg);
    STAMP();
    SetCaption(OpenResourceDlg, title);
    SetCaption(part("lblkind"), word);
    SetCaption(part("label2"), "Choose a &" + word + ":");
    SetText(part("edit1"), file);
    FILLNAMES(name);
    STAMP();
    Show(OpenResourceDlg, true);
    STAMP();
    ResourceChoice choice;
    if (IsLoaded(OpenResourceDlg) && GetCaption(part("lblchosen")) == "1")
        choice = {chosenFile(), chosenName()};
    if (IsLoaded(OpenResourceDlg)) Unload(OpenResourceDlg);
    STAMP();
    return choice;
}

}  // namespace tarn
