// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/difference.h"

#include "ide/editor/linediff.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/system/system.h"

MODULE("textedit")

namespace tarn {
namespace {

const DialogShape shape = [] {
    DialogShape difference;
    difference.cancel = "";
    difference.showHelp = SHOWWINDOWHELP;
    difference.load = [](const Object& window) { SetFontName(FINDCONTROL(window, "edit1"), "monospace"); };
    return difference;
}();
const RegisteredWindow registered("DifferenceDlg", DIFFERENCEDLG);

}  // namespace

void SHOWDIFFERENCE(const Difference& difference) {
    FRAME(SHOWDIFFERENCE);
    constexpr int most = 2000;
    STAMP();
    Load(DifferenceDlg);
    SetCaption(DifferenceDlg, difference.caption);
    SetCaption(FINDCONTROL(DifferenceDlg, "label1"), PLAINCAPTION(difference.heading));
    SetCaption(FINDCONTROL(DifferenceDlg, "label2"), difference.prompt);
    STAMP();
    const std::string lines = LINEDIFFERENCE(difference.first, difference.second, most);
    SetText(FINDCONTROL(DifferenceDlg, "edit1"), lines.empty() ? "There is none.\n" : lines);
    STAMP();
    Show(DifferenceDlg, true);
    STAMP();
}

bool DIFFERENCEDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(DIFFERENCEDLG);
    STAMP();
    return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
}

}  // namespace tarn
