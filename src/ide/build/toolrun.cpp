// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/toolrun.h"

#include "ide/shell/idecore.h"
#include "library/system/system.h"
#include "os/toolresults.h"

MODULE("toolrun", tarn::RESULTS_ONERROR)

namespace tarn {
namespace {

std::string nextStep(std::int32_t code) {
    return code == ERR_EXEC_PERMISSIONS
               ? "\nMake its file executable, or choose other tools in Tools-Options-Paths."
               : "";
}

void tellToolOrFile(std::int32_t code, const std::string& ofFile) {
    const bool tool = code >= 901 && code <= 909;
    if (!tool && !ISFILEERROR(code)) return DefaultErrorHandler(code);
    TELLERROR(code, tool ? "Cannot run external program." + nextStep(code) : ofFile);
}

}  // namespace

void TOOL_ONERROR(std::int32_t code) {
    tellToolOrFile(code, "Check that the file is there, and that you may read and write it.");
}

void RESULTS_ONERROR(std::int32_t code) {
    tellToolOrFile(code,
                   "The results of a tool could not be read or removed. Use Tools-Options-Paths to choose a "
                   "compiler file path that you may write.");
}

// ---- names ----

std::string GETCOMPILEREXE() {
    FRAME(GETCOMPILEREXE);
    return GETCOMPILERDIR() + std::string(CompilerProgram);
}

std::string GETORDOEXE() {
    FRAME(GETORDOEXE);
    return GETCOMPILERDIR() + std::string(MakeProgram);
}

std::string GETCOMPILERMESSAGES() {
    FRAME(GETCOMPILERMESSAGES);
    return os::resultFile(GETCOMPILERDIR(), CompilerMessages);
}

std::string GETMAKEMESSAGES() {
    FRAME(GETMAKEMESSAGES);
    return os::resultFile(GETCOMPILERDIR(), MakeMessages);
}

// ---- runs ----

bool ISCLEAN(const std::string& messages) {
    FRAME(ISCLEAN);
    return messages.empty() || STRFIND(": 0 errors.", messages) != 0;
}

std::string RUNFAULT(const ExecResult& run, const std::string& tool, bool hasMessages) {
    FRAME(RUNFAULT);
    const std::string name = "'" + FILEGETFNAME(tool) + "' ";
    const std::string advice = "\nCheck the compiler file path in Tools-Options-Paths, or try again.\n";
    if (run.stopped) return name + "was stopped before it had finished.\n";
    if (run.signal != 0) return name + "ended by signal " + STR(run.signal) + "." + advice;
    if (run.code == 0 || hasMessages) return {};
    return name + "failed with exit code " + STR(run.code) + " and gave no message." + advice;
}

namespace {

std::string readIfThere(const std::string& file) {
    std::string text;
    if (FileSize(file) > 0) LOADFILE(file, text);
    return text;
}

}  // namespace

ToolRun RUNTOOL(const std::string& executable, const std::string& arguments, int windowMode,
                const std::string& results, const std::string& otherwise) {
    FRAME(RUNTOOL);
    ToolRun result;
    STAMP();
    FILEDELETE(results);
    if (!otherwise.empty()) FILEDELETE(otherwise);
    STAMP();
    const ExecResult run = EXEC(executable, arguments, windowMode);
    STAMP();
    result.started = run.started;
    if (!run.started) return result;
    result.exitCode = run.code;
    result.messages = readIfThere(results);
    if (run.code != 0 && result.messages.empty() && !otherwise.empty())
        result.messages = readIfThere(otherwise);
    STAMP();
    result.fault = RUNFAULT(run, executable, !ISCLEAN(result.messages));
    return result;
}

}  // namespace tarn
