// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/changes.h"

#include "ide/shell/rescue.h"
#include "library/system/system.h"

MODULE("projedit")

namespace tarn {
namespace {

constexpr const char* Title = "Unfinished Changes";

std::string listed(const std::string& heading, const std::vector<std::string>& files) {
    if (files.empty()) return {};
    std::string text = heading + "\n";
    for (const std::string& file : files) text += "\t'" + file + "'\n";
    return text + "\n";
}

}  // namespace

std::string CHANGEFILES(const std::vector<os::FileChange>& changes) {
    FRAME(CHANGEFILES);
    STAMP();
    const os::ChangeResult result = os::changeFiles(changes);
    if (result.ok()) return {};
    return "'" + result.path + "'\ncould not be written: " + std::string(os::describe(result.error)) + "\n" +
           (result.pending
                ? "The files could not be put back as they were. The next start of the environment "
                  "finishes what was begun."
                : "Nothing was changed. Try again when the cause is gone.");
}

bool FINISHCHANGES() {
    FRAME(FINISHCHANGES);
    STAMP();
    const os::FinishedChanges finished = os::finishChanges();
    const std::string text =
        listed("These files got the contents that they were to have:", finished.written) +
        listed("These have been changed since, and stay as they are:", finished.left) +
        listed("These could not be written. The next start tries again:", finished.failed) +
        listed("These notes of changes cannot be read, and are kept:", finished.damaged);
    if (text.empty()) return false;
    for (const std::string& file : finished.written) DROPRESCUEDTEXT(file);
    STAMP();
    MsgBox(Title,
           "The environment was stopped while it changed several files that belong together.\n\n" +
               STRRTRIMCRLF(LIMITLINES(text)),
           "OK", BoxIcon::Information);
    STAMP();
    return true;
}

}  // namespace tarn
