// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window with the arguments of the program. They stay in the settings, where RUNEXEFILE reads them.
#include "ide/build/arguments.h"

#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"

MODULE("runmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

constexpr DialogShape shape{.settings = GETIDEINIFILE, .showHelp = SHOWWINDOWHELP};
const RegisteredWindow registered("ArgumentsDlg", ARGUMENTSDLG);

}  // namespace

bool ARGUMENTSDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(ARGUMENTSDLG);
    STAMP();
    const bool result = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

}  // namespace tarn
