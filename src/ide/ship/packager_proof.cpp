// SPDX-License-Identifier: GPL-3.0-or-later
//
// The button that proves a package: the program `tarnwick-proof`, which lies beside this one, installs it into an empty system
// and starts it there, and what it tells is shown.
#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windowtable.h"
#include "ide/ship/packager.h"
#include "ide/ship/packager_internal.h"
#include "library/settings/profstr.h"
#include "library/ship/copyutil.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"

MODULE("progmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

const Object ProofDlg("ProofDlg");
constexpr const char* Title = "Proof of Package";
constexpr int Waiting = 0;  // the mode that waits, without a window

bool proofDlg(const Object& window, int event, const Object&, int parameter) {
    const bool leaves = event == KEYPRESS_EVENT && (parameter == KEY_ESCAPE || parameter == KEY_RETURN);
    if (leaves) Unload(window);
    if (event == KEYPRESS_EVENT && parameter == KEY_F1) SHOWWINDOWHELP(window);
    return leaves;
}
const RegisteredWindow registered("ProofDlg", proofDlg);

void show(const std::string& text) {
    Load(ProofDlg);
    STAMP();
    if (!IsLoaded(ProofDlg)) return;
    SetText(ProofDlg, text);
    SetSelection(ProofDlg, 1, 0);
    Show(ProofDlg, true);
    if (IsLoaded(ProofDlg)) Unload(ProofDlg);
    STAMP();
}

// What the proof tells; `stopped` by the user.
std::string reportOf(const std::string& package, bool& stopped) {
    const std::string output = os::native(FILETEMPNAME(os::runtimeFolder(), "proof-", ".txt"));
    std::string text;
    os::makeFolders(os::runtimeFolder());
    const ExecResult run = EXEC(FINDTOOL(os::executableFolder() + "tarnwick-proof"),
                                std::vector<std::string>{package}, Waiting, {}, {{}, output});
    ClearError();
    stopped = run.stopped;
    if (FileSize(output) > 0) LOADFILE(output, text);
    ClearError();
    os::files().remove(output);
    return text;
}

}  // namespace

void packager::proof(const Object& window) {
    FRAME(PACKAGER_PROOF);
    STAMP();
    const std::string program = os::executableFolder() + "tarnwick-proof";
    if (FINDTOOL(program).empty())
        return MSGBOX(Title,
                      "This command requires the 'proof' program to start the package in an empty system.\n"
                      "However the proof program '" +
                          program + "' does not exist.");
    const std::string package =
        OpenFileDialog(Title, FILEGETDIR(mainClassOf(window)),
                       "Packages (*.deb;*.zip;*.exe)|*.deb;*.zip;*.exe|All files (*.*)|*.*|");
    STAMP();
    if (package.empty()) return;
    const Object label = FINDCONTROL(window, "lblwait");
    SetCaption(label, "Please wait, starting the program in an empty system...");
    bool stopped = false;
    const std::string text = reportOf(package, stopped);
    if (IsLoaded(window)) SetCaption(label, "");
    STAMP();
    if (!stopped) show(text);
    STAMP();
}

}  // namespace tarn
