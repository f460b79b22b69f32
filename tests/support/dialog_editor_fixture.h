// SPDX-License-Identifier: Apache-2.0
//
// The environment with a dialog of a resource file open in the dialog editor, on the object model alone: letters are 6
// pixels wide and 13 high.
#pragma once

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/drawing/geometry.h"
#include "ide/designer/objects/dlgobjects.h"
#include "ide/designer/toolbox.h"
#include "library/designer/propedit_sheet.h"
#include "library/designer/proputil.h"
#include "support/doings_fixture.h"

namespace tarn {

class DialogEditorTest : public DoingsTest {
protected:
    std::string file;

    void SetUp() override {
        DoingsTest::SetUp();
        start({write("nothing.txt", "")});
        asked.clear();
    }

    static std::string control(const std::string& type, const std::string& name, const std::string& place,
                               const std::string& rest = "") {
        return "  " + type + " " + name + "\n    POSITION=" + place + "\n" + rest;
    }
    // A dialog of 200 x 100 units with these controls.
    static std::string dialog(const std::string& controls, const std::string& name = "Dlg",
                              const std::string& own = "") {
        return name + " DIALOG\n  POSITION=0 0 200 100\n  CAPTION=\"" + name + "\"\n  FONTNAME=\"Sans\"\n" +
               own + controls + "END\n";
    }
    void open(const std::string& text, int flags = 0, const std::string& name = "Dlg") {
        file = write("a.rc", text);
        OPENDIALOG(file, name, flags);
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }

    static std::string item(int index) { return DESIGNITEM(index); }
    static std::string property(int index, const std::string& name) {
        return GETPROPVALUE(item(index), name);
    }
    static int count(const std::string& list = "datalist") { return GetListCount(DESIGNCONTROL(list)); }
    static std::string names() { return GETPROPVALUE(DATALIST(), "NAME"); }

    // ---- what the user does ----
    static bool key(int code, const Object& window = DialogDlg) {
        return platform::userKey(*platform::findWindow(window), nullptr, code);
    }
    // A place of the window over a place of the dialog's client area.
    static platform::Point at(int x, int y) {
        const Rect corner = CALCOFFSETS(DialogDlg, DESIGNITEM(1), FULL_FRAME, DIALOGGETMARGIN());
        return {x + corner.x, y + corner.y};
    }
    static void click(int x, int y) {
        const auto place = at(x, y);
        platform::userMouseDown(*platform::findWindow(DialogDlg), place.x, place.y);
    }
    static void drag(int x, int y, int dx, int dy) {
        const auto from = at(x, y), to = at(x + dx, y + dy);
        platform::userDrag(from, to);
        platform::userMouseDown(*platform::findWindow(DialogDlg), from.x, from.y);
    }
    static void resize(int dw, int dh) {
        Rect frame = GetPosition(DialogDlg, WINDOW_UNIT);
        frame.w += dw;
        frame.h += dh;
        platform::userMoved(*platform::findWindow(DialogDlg), frame, 0);
    }
    static void press(const std::string& tool) {
        platform::userCommand(*platform::findControl(FINDCONTROL(ToolboxDlg, tool)));
    }
    // In the property sheet: the value of a property.
    static Object sheetRow(const std::string& property) {
        for (int n = 1; n <= 32; ++n)
            if (STREQUAL(GetCaption(FINDCONTROL(PropertiesDlg, "lblname" + STR(n))), property))
                return FINDCONTROL(PropertiesDlg, "edtvalue" + STR(n));
        ADD_FAILURE() << "no row " << property;
        return {};
    }
    std::function<void()> enter(std::string property, std::string value) {
        return [=] { SetText(sheetRow(property), value); };
    }
    static void pressOk() {
        platform::userCommand(*platform::findControl(FINDCONTROL(PropertiesDlg, "idok")));
    }
    static void pressCancel() {
        platform::userCommand(*platform::findControl(FINDCONTROL(PropertiesDlg, "idcancel")));
    }
    // Edits the selected object in the sheet.
    void edit(const std::vector<std::pair<std::string, std::string>>& values, int with = KEY_F2) {
        for (const auto& [name, value] : values) doings.push_back(enter(name, value));
        doings.emplace_back(pressOk);
        key(with);
    }
    // Expects a beep of what is done, or none.
    static bool beeps(const std::function<void()>& action) {
        const int before = platform::headlessBeeps();
        action();
        return platform::headlessBeeps() > before;
    }
};

}  // namespace tarn
