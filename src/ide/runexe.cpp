// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/runexe.h"

#include "ide/idecore.h"
#include "library/profstr.h"
#include "library/system.h"

namespace tarn {
namespace {

void onerror(std::int32_t code) {
    if (code < 901 || code > 909) return DefaultErrorHandler(code);
    const Reporting report;
    if (!report.entered()) return;
    Sound();
    MsgBox("Error", ErrorMessage(code) + " (error " + STR(code) + ").\nCannot run the program. Build it again with "
                                                                 "Run-Full Rebuild.",
           "OK", BoxIcon::Error);
    ContinueAfterError();
}

}  // namespace
}  // namespace tarn

MODULE("runexe", tarn::onerror)

namespace tarn {

void RUNEXEFILE(const std::string& exe, int trace, bool singleStep) {
    FRAME(RUNEXEFILE);
    const std::string ini = GETIDEINIFILE();
    STAMP();
    PROFILESTRPUT(ini, "debug", "TraceProgram", STR(trace));
    PROFILESTRPUT(ini, "debug", "SingleStep", singleStep ? "1" : "0");
    // A program runs in its own folder, where the files lie that it names without one.
    const std::string folder = GETCURDIR();
    STAMP();
    SETCURDIR(FILEGETDIR(exe));
    STAMP();
    EXEC(exe, PROFILESTRGET(ini, "ArgumentsDlg", "Edit1"), 16 + 1);
    SETCURDIR(folder);
    STAMP();
}

}  // namespace tarn
