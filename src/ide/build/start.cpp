// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/start.h"

#include "ide/build/build.h"
#include "ide/build/compiler.h"
#include "ide/build/runexe.h"
#include "ide/build/toolrun.h"
#include "ide/options/compoptions.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/settings/profstr.h"
#include "library/source/symbolfiles.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

MODULE("runmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

// What is known of a program before it is started.
struct StartFacts {
    bool upToDate = false;
    bool optionsHaveD2 = false;        // of the compiler
    bool allCompiledWithD2 = false;    // every class has full debug information
    bool compiledFilesHaveD2 = false;  // every class that is current has it
};

bool isStartable(const std::string& file) {
    if (file == Untitled) return SYMISCLASS(0, GetText(SDIEdit), ProductWord, "CLASS");
    return ISCLASSFILE(file);
}

std::string exeOf(const std::string& file) {
    return FILECHANGEEXT(file, ".exe");
}

// The lines that are not among the others.
std::string STRREMOVEMULTILINE(const std::string& lines, const std::string& others) {
    std::string left;
    for (int i = 1; i <= STRLINES(lines); i++) {
        const std::string line = STRLINE(lines, i);
        bool among = false;
        for (int j = 1; j <= STRLINES(others) && !among; j++) among = STRLINE(others, j) == line;
        if (!among) left += line + "\n";
    }
    return left;
}

bool haveD2(const std::string& classes) {
    return SYMGETDEBUGFLAGS(SYMGETDEBUGLEVELS(classes)).all2;
}

// The library's class is compiled by nobody.
std::string withoutLibrary(const std::string& files) {
    std::string left;
    for (int i = 1; i <= STRLINES(files); i++)
        if (!STREQUAL(FILEBASENAME(STRLINE(files, i)), "system")) left += STRLINE(files, i) + "\n";
    return left;
}

void findLevels(const std::string& file, StartFacts& facts) {
    const std::string classes = withoutLibrary(LOADDEPLIST(file, "/fa", true).files);
    facts.allCompiledWithD2 = haveD2(classes);
    facts.compiledFilesHaveD2 = haveD2(STRREMOVEMULTILINE(classes, LOADDEPLIST(file, "/fq", true).files));
}

void traceStart(const std::string& file, bool debug, const StartFacts& facts) {
    const std::pair<std::string_view, bool> flags[] = {
        {"SingleStep = ", debug},
        {"fUpToDate = ", facts.upToDate},
        {"fAllCompiledWithD2 = ", facts.allCompiledWithD2},
        {"fCompOptionsHasD2 = ", facts.optionsHaveD2},
        {"fCompiledFilesHaveD2 = ", facts.compiledFilesHaveD2}};
    Trace("StartFile = " + file);
    for (const auto& [name, value] : flags) Trace(std::string(name) + (value ? "1" : "0"));
}

bool agrees(const std::string& title, const std::string& text) {
    Sound();
    return MsgBox(title, text, "&OK\n&Cancel", BoxIcon::Question) == "&OK";
}

bool mayRebuildAll(const std::string& title, const std::string& file) {
    return agrees(title, "The following program:\n\t'" + file +
                             "'\nmust be compiled with 'Full debugging' information before using the "
                             "debugger.\nDo you want to compile with 'Full debugging' information and debug "
                             "it?");
}

// A program that is missing or out of date is rebuilt without a question.
bool mayRebuild(const std::string& title, const std::string& exe, const std::string& state) {
    constexpr bool asks = false;
    return !asks || agrees(title, "The following program:\n\t'" + exe + "'\n" + state + " Rebuild now?");
}

bool build(const std::string& title, const char* options, std::string& file) {
    bool ok = false;
    RUN_BUILD(title, options, file, ok);
    return ok;
}

// True if the program can be started; `file` is then its class.
bool makeReady(const std::string& title, const StartFacts& facts, std::string& file) {
    const std::string exe = exeOf(file);
    if (FileSize(exe) < 1) return mayRebuild(title, exe, "does not exist.") && build(title, "-fq", file);
    if (!facts.upToDate)
        return mayRebuild(title, exe, "is out of date and needs rebuilding.") && build(title, "-fq", file);
    return true;
}

// The same with full debug information in every class.
bool makeReadyForDebugger(const std::string& title, const StartFacts& facts, std::string& file) {
    const bool current = facts.upToDate && facts.allCompiledWithD2 && FileSize(exeOf(file)) > 0;
    const bool quick = current || facts.compiledFilesHaveD2;
    if (!quick && !mayRebuildAll(title, file)) return false;
    STAMP();
    if (!facts.optionsHaveD2) SETCOMPILEROPTION("-D2");
    STAMP();
    return current || build(title, quick ? "-fm" : "-fa", file);
}

// Looks at the program and makes it ready; empty if it cannot be started.
std::string readyProgram(const std::string& title, bool debug, std::string file) {
    StartFacts facts;
    facts.upToDate = ISUPTODATE(file);
    facts.optionsHaveD2 = PROFILESTRGET(GETIDEINIFILE(), "CompOptionsDlg", "Debug2") == "1";
    STAMP();
    if (!isStartable(file)) {
        SHOWNOCLASSERROR(title, file);
        return {};
    }
    STAMP();
    if (debug) findLevels(file, facts);
    STAMP();
    traceStart(file, debug, facts);
    const bool ready = debug ? makeReadyForDebugger(title, facts, file) : makeReady(title, facts, file);
    STAMP();
    return ready ? exeOf(file) : std::string();
}

int traceLevel() {
    return PROFILESTRGETINT(GETIDEINIFILE(), "DebugOptionsDlg", "Traceprogram");
}

}  // namespace

void RUN_START(const std::string& title, bool debug, const std::string& file) {
    FRAME(RUN_START);
    STAMP();
    const int trace = traceLevel();
    const std::string exe = readyProgram(title, debug, file);
    STAMP();
    if (exe.empty()) return;
    RUNEXEFILE(title, exe, trace, debug);
    STAMP();
}

void RUN_TO_LINE(const std::string& title, const std::string& file, const std::string& className, int line) {
    FRAME(RUN_TO_LINE);
    STAMP();
    const int trace = traceLevel();
    const std::string exe = readyProgram(title, true, file);
    STAMP();
    if (exe.empty()) return;
    RUNEXEFILE(title, exe, trace, false, className + " " + STR(line));
    STAMP();
}

}  // namespace tarn
