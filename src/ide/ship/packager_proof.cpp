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
#include "library/ship/outsidetools.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"

MODULE("progmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

const Object ProofDlg("ProofDlg");
constexpr const char* Title = "Proof of Package";
constexpr std::string_view ProofProgram = "tarnwick-proof";

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

ship::ToolRun proofOf(const std::string& package) {
    os::makeFolders(os::runtimeFolder());
    const ship::ScratchFile told(os::runtimeFolder(), "proof-", ".txt");
    return ship::runTool(ProofProgram, {package}, told.path());
}

}  // namespace

void packager::proof(const Object& window) {
    FRAME(PACKAGER_PROOF);
    STAMP();
    if (ship::outsideTool(ProofProgram).empty())
        return MSGBOX(Title,
                      "This command requires the 'proof' program to start the package in an empty system.\n"
                      "However the proof program '" +
                          ship::toolPath(ProofProgram) + "' does not exist.");
    const std::string package =
        OpenFileDialog(Title, FILEGETDIR(mainClassOf(window)),
                       "Packages (*.deb;*.zip;*.exe)|*.deb;*.zip;*.exe|All files (*.*)|*.*|");
    STAMP();
    if (package.empty()) return;
    const Object label = FINDCONTROL(window, "lblwait");
    SetCaption(label, "Please wait, starting the program in an empty system...");
    const ship::ToolRun run = proofOf(package);
    if (IsLoaded(window)) SetCaption(label, "");
    STAMP();
    if (!run.stopped) show(run.output);
    STAMP();
}

}  // namespace tarn
