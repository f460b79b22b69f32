// SPDX-License-Identifier: Apache-2.0
//
// Help on the pending error, and on the debugger itself: topics of the program's help file.
#include "kernel/debug/engine_internal.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "platform/text.h"

namespace tarn::debug {

namespace {

constexpr std::string_view NoError =
    "At the moment there is no error.\nYou are stopped in the debugger because of a breakpoint,\n"
    "or because of stepping through some code.";

// The folder and the first of the types, as the environment's dialogs keep them.
std::string helpFile() {
    std::string folder = DebugSetting(engine.settingsFile, "Pathsoptionsdlg", "Edit2");
    std::string type = DebugSetting(engine.settingsFile, "Genoptionsdlg", "HelpFileTypes");
    if (!folder.empty() && paths::filePosition(folder) != folder.size()) folder += '/';
    type = platform::trim(std::string_view(type).substr(0, type.find(';')));
    if (!type.empty() && type.front() != '.') type.insert(0, ".");
    return folder + engine.product + type;
}

// Help with a window of its own. The classic one has no viewer on this system.
bool isCompiled(std::string_view file) {
    const std::string_view type = paths::extension(file);
    return ascii::equal(type, ".chm") || ascii::equal(type, ".qch");
}

// A program may have no viewer for compiled help; the same pages stand beside it for the browser.
bool shows(const std::string& file, const std::string& topic) {
    return platform::HtmlHelpApi(file, topic) ||
           platform::HtmlHelpApi(std::string(paths::withoutExtension(file)) + ".htm", topic);
}

}  // namespace

void ShowHelp(const std::string& topic) {
    const std::string file = os::native(helpFile());
    if (!isCompiled(file) || !shows(file, topic)) Beep();
}

void HelpOnError() {
    if (ErrorCell() != 0) return ShowHelp(std::to_string(ErrorCell()));
    static_cast<void>(platform::MsgBox(std::string(DebuggerTitle), std::string(NoError), "Sorry"));
}

}  // namespace tarn::debug
