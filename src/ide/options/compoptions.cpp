// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/compoptions.h"

#include "ide/build/compiler.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/data/dbutil_windows.h"
#include "library/dialogs/dialogshape.h"
#include "library/settings/profstr.h"
#include "library/system/product.h"
#include "library/system/system.h"

MODULE("toolmenu")

namespace tarn {
namespace {

constexpr int LeastSymbols = 3000, MostSymbols = MaxCompilerSymbols, SymbolDigits = 4;
constexpr int WindowMode = 0;  // of the compiler's window

// The switches, and where their state stands.
constexpr struct {
    std::string_view control;
    int CompilerOptions::*value;
} switches[] = {{"quiet0", &CompilerOptions::quiet},
                {"verification", &CompilerOptions::verification},
                {"manifest", &CompilerOptions::manifest},
                {"shortcutfile", &CompilerOptions::shortcutFile}};

Object in(const Object& window, std::string_view control) {
    return FINDCONTROL(window, control);
}

int levelIn(const Object& window, std::string_view first) {
    return Controlselectionpos(in(window, first)) - 1;
}

// The compiler takes the two levels of the settings as a sum, so both of them at once is a level that it does not have.
void showLevel(const Object& window, std::string_view first, int level) {
    SetValue(ControlElement(in(window, first), level <= 2 ? level + 1 : 1), 1);
}

int symbolsIn(const Object& window) {
    bool ok = false;
    const int symbols = CVTI(STRTRIM(GetText(in(window, "symbols"))), ok);
    return ok ? symbols : 0;
}

CompilerOptions optionsIn(const Object& window) {
    CompilerOptions options;
    options.precond = levelIn(window, "precond0");
    options.debug = levelIn(window, "debug0");
    for (const auto& one : switches) options.*one.value = GetValue(in(window, one.control));
    options.symbols = symbolsIn(window);
    options.extra = GetText(in(window, "extra"));
    options.inheritPaths = GetCaption(in(window, "lblinheritstr"));
    options.resourcePaths = GetCaption(in(window, "lblresourcestr"));
    return options;
}

void showCommandLine(const Object& window) {
    SetText(in(window, "edit1"), SAVECOMMANDLINE(optionsIn(window), WindowMode, false));
}

// A level or a switch that the settings have as another number than 0 and 1 shows as the command line takes it.
void load(const Object& window) {
    LOADINIFILE(GETIDEINIFILE(), window);
    const CompilerOptions stored = GETCOMPILEROPTIONS();
    SetCaption(in(window, "lblinheritstr"), stored.inheritPaths);
    SetCaption(in(window, "lblresourcestr"), stored.resourcePaths);
    showLevel(window, "precond0", stored.precond);
    showLevel(window, "debug0", stored.debug);
    for (const auto& one : switches) SetValue(in(window, one.control), stored.*one.value == 1 ? 1 : 0);
    SetMaxLength(in(window, "symbols"), SymbolDigits);
    SetValue(in(window, "chkok"), 0);
    showCommandLine(window);
}

std::string problem(const Object& window) {
    return DLGCHECKINTFIELD(in(window, "symbols"), "Maximum symbols (MAX_SYMBOLS)", LeastSymbols,
                            MostSymbols);
}

void save(const Object& window) {
    SAVEINIFILE(GETIDEINIFILE(), window);
    SAVECOMMANDLINE(optionsIn(window), WindowMode, true);
}

void hearText(const Object& window, const Object& control) {
    const bool isSymbols = GetName(control) == "symbols";
    const std::string text = GetText(control);
    if (isSymbols && !text.empty() && !ISDIGITS(text)) return Sound();
    showCommandLine(window);
}

bool isMark(const Object& control) {
    const std::string type = GetTypeof(control);
    return type == "Checkbox" || type == "Radiobutton";
}

constexpr DialogShape shape{.showHelp = SHOWWINDOWHELP,
                            .load = load,
                            .problem = problem,
                            .accept = [](const Object& window) { SetValue(in(window, "chkok"), 1); }};
const RegisteredWindow registered("CompOptionsDlg", COMPOPTIONSDLG);

bool handle(const Object& window, int event, const Object& control, int parameter) {
    if (event == CHANGE_EVENT && GetName(control) != "edit1") return hearText(window, control), true;
    if (event == COMMAND_EVENT && isMark(control)) return showCommandLine(window), true;
    if (event != CLOSE_EVENT) return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    if (GetValue(in(window, "chkok")) == 1) save(window);
    return false;
}

}  // namespace

bool COMPOPTIONSDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(COMPOPTIONSDLG);
    STAMP();
    const bool result = handle(window, event, control, parameter);
    STAMP();
    return result;
}

void COMPOPTIONSDIALOG() {
    FRAME(COMPOPTIONSDIALOG);
    STAMP();
    Load(CompOptionsDlg);
    STAMP();
    Show(CompOptionsDlg, true);
    STAMP();
}

void SETCOMPILEROPTION(const std::string& option) {
    FRAME(SETCOMPILEROPTION);
    static constexpr std::pair<std::string_view, std::string_view> levels[] = {
        {"-P0", "precond0"}, {"-P1", "precond1"}, {"-P2", "precond2"},
        {"-D0", "debug0"},   {"-D1", "debug1"},   {"-D2", "debug2"}};
    for (const auto& [name, control] : levels) {
        if (STRUPPER(option) != name) continue;
        STAMP();
        Load(CompOptionsDlg);
        STAMP();
        SetValue(in(CompOptionsDlg, control), 1);
        SetValue(in(CompOptionsDlg, "chkok"), 1);
        STAMP();
        Unload(CompOptionsDlg);
    }
    STAMP();
}

}  // namespace tarn
