// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/compiler.h"

#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/toolresults.h"

#include <utility>

MODULE("idecore", tarn::RESULTS_ONERROR)

namespace tarn {

// ---- the compiler's command line ----

namespace {

int compilerNumber(std::string_view key) {
    return PROFILESTRGETINT(GETIDEINIFILE(), "CompOptionsDlg", key);
}

// The product version in a Windows program's version block: the UTF-16 text behind the key, empty without
// one.
std::string productVersion(const std::string& file) {
    std::string bytes;
    if (os::readFile(file, bytes) != os::FileError::None) return {};
    std::string key;
    for (const char c : std::string_view("ProductVersion")) key += {c, '\0'};
    std::size_t at = bytes.find(key);
    if (at == std::string::npos) return {};
    at += key.size() + 2;
    while (at + 1 < bytes.size() && bytes[at] == 0 && bytes[at + 1] == 0) at += 2;
    std::string version;
    for (; at + 1 < bytes.size() && (bytes[at] != 0 || bytes[at + 1] != 0) && version.size() < 40; at += 2)
        version += bytes[at];
    return version;
}

std::string backEndSwitch() {
    const std::string folder = GETCOMPILERDIR();
    if (FileSize(folder + "dcc32.exe") >= 0) {
        const std::string version = productVersion(folder + "dcc32.exe");
        if (version.starts_with("4.0")) return "/gd32";
        if (version.starts_with("10.0")) return "/gdv10";
    }
    return FileSize(folder + "ppc386.exe") >= 0 ? "/gfpc" : "";
}

// In quotes whatever it holds, as the line is read by SPLITARGUMENTS.
std::string quoted(const std::string& text) {
    return "\"" + STRREPLACE(text, "\"", "\"\"") + "\"";
}

std::string levelSwitch(std::string_view name, int level) {
    return level == 1 || level == 2 ? std::string(name) + STR(level) : std::string();
}

}  // namespace

CompilerOptions GETCOMPILEROPTIONS() {
    FRAME(GETCOMPILEROPTIONS);
    CompilerOptions o;
    o.precond = (compilerNumber("Precond1") == 1 ? 1 : 0) + (compilerNumber("Precond2") == 1 ? 2 : 0);
    o.debug = (compilerNumber("Debug1") == 1 ? 1 : 0) + (compilerNumber("Debug2") == 1 ? 2 : 0);
    o.quiet = compilerNumber("Quiet0");
    o.verification = compilerNumber("Verification");
    o.manifest = compilerNumber("Manifest");
    o.shortcutFile = compilerNumber("ShortcutFile");
    o.symbols = compilerNumber("Symbols");
    o.extra = PROFILESTRGET(GETIDEINIFILE(), "CompOptionsDlg", "Extra");
    o.inheritPaths = GETINHERITEDPATHS();
    o.resourcePaths = PROFILESTRGET(GETIDEINIFILE(), "PathsOptionsDlg", "Edit5");
    return o;
}

std::string SAVECOMMANDLINE(const CompilerOptions& o, int windowMode, bool write) {
    FRAME(SAVECOMMANDLINE);
    const std::string extra = STRTRIM(o.extra);
    const std::string pieces[] = {
        quoted(GETCOMPILEREXE()),
        levelSwitch("/p", o.precond),
        levelSwitch("/d", o.debug),
        o.quiet == 1 ? "/q" : "",
        o.verification == 1 ? "/v" : "",
        o.manifest == 1 ? "/om" : "",
        o.shortcutFile == 1 ? "/os" : "",
        "/s" + STR(o.symbols),
        extra,
        o.inheritPaths.empty() ? "" : "/i" + quoted(o.inheritPaths),
        o.resourcePaths.empty() ? "" : "/r" + quoted(o.resourcePaths),
        windowMode >= 0 && windowMode <= 11 ? "/lw" + STR(windowMode) : "",
        backEndSwitch(),
        "^" + std::string(ClassExtension),
    };
    std::string line;
    for (const std::string& piece : pieces) {
        if (!piece.empty()) line += piece + " ";
    }
    line = STRTRIM(line);
    STAMP();
    if (write) PROFILESTRPUT(GETIDEINIFILE(), "ordo", STRUPPER(ClassExtension.substr(1)), line);
    return line;
}

void REFRESHCOMMANDLINE() {
    FRAME(REFRESHCOMMANDLINE);
    STAMP();
    SAVECOMMANDLINE(GETCOMPILEROPTIONS(), 0, true);
}

// ---- compile one class ----

namespace {

// Why the file cannot be given to the compiler; empty if it can.
std::string compileObstacle(const std::string& file) {
    const std::string compiler = GETCOMPILEREXE();
    if (FINDTOOL(compiler).empty())
        return "Cannot find the compiler. It should be in the following file:\n\t'" + compiler +
               "'\n\nUse Tools-Options-Paths to make sure it is in the directory specified by the compiler "
               "file "
               "path.\n";
    if (!ISCLASSFILE(file) || FileSize(file) < 1)
        return "Cannot compile '" + file +
               "'\nThe file cannot be found, or it does not have the correct extension (*.cls)\n";
    if (!SYMISCLASS(1, file, ProductWord, "CLASS"))
        return "Cannot compile '" + file + "'\nThis file is not a valid class.\n";
    return {};
}

// What went wrong in a run of the compiler; empty if nothing did.
struct Compilation {
    bool started = false;
    std::string failure;
};

Compilation runCompiler(const std::string& file, int windowMode) {
    std::string line = SAVECOMMANDLINE(GETCOMPILEROPTIONS(), 1, false);
    // A file is opened by its name as given, and not as the line has the extension.
    line = STRREPLACE(line, "^" + std::string(ClassExtension), "^" + FILEGETEXT(file));
    line = FILESUBSTITUTENAME(line, "^", STRREPLACE(FILEGETDIR(file) + FILEBASENAME(file), "\"", "\"\""));
    std::vector<std::string> words = SPLITARGUMENTS(line);
    words.erase(words.begin());  // the compiler itself
    std::string arguments;
    for (const std::string& word : words) arguments += QUOTEARGUMENT(word) + " ";
    const std::string compiler = FINDTOOL(GETCOMPILEREXE());
    const std::string results = os::resultFile(FILEGETDIR(compiler), CompilerMessages);
    const ToolRun run = RUNTOOL(compiler, arguments, windowMode, results);
    FILEDELETE(results);
    return {run.started, run.fault + (ISCLEAN(run.messages) ? "" : run.messages)};
}

}  // namespace

void COMPILESINGLEFILE(const std::string& file, int windowMode) {
    FRAME(COMPILESINGLEFILE);
    if (windowMode < 0 || windowMode > 11) windowMode = 1;
    STAMP();
    Compilation run{true, compileObstacle(file)};
    STAMP();
    if (run.failure.empty()) run = runCompiler(file, windowMode);
    STAMP();  // tells why a compiler could not be started
    if (!run.started) return;
    if (run.failure.empty()) {
        MsgBox("Run-Compile", "Successfully compiled '" + file + "'", "OK", BoxIcon::Information);
        return;
    }
    MsgBox("Run-Compile", "Cannot compile '" + file + "'\n\n" + LIMITLINES(run.failure), "OK",
           BoxIcon::Error);
}

// ---- the make tool's lists ----

namespace {

std::string dependencyObstacle(const std::string& file, const std::string& tool) {
    if (file.empty()) return "No file has been specified.";
    const std::string extension = FILEGETEXT(file);
    if (!STREQUAL(extension, ClassExtension) && !STREQUAL(extension, ResourceExtension))
        return "'" + file + "' is not a class or resource file (*.cls, *.rc)";
    if (FileSize(file) < 0) return "The file '" + file + "' was not found.";
    if (FINDTOOL(tool).empty()) return "The file '" + tool + "' was not found.";
    return {};
}

std::string namesOnly(const std::string& list) {
    std::string names;
    for (int i = 1; i <= STRLINES(list); i++) names += FILEGETFNAME(STRLINE(list, i)) + "\n";
    return names;
}

}  // namespace

DependencyList LOADDEPLIST(const std::string& file, const std::string& options, bool fullPaths) {
    FRAME(LOADDEPLIST);
    DependencyList result;
    const std::string tool = GETORDOEXE();
    const std::string output = GETMAKEMESSAGES();
    const std::string line = options + " " + QUOTEARGUMENT(file) + " -i" +
                             QUOTEARGUMENT(GETINHERITEDPATHS()) + " -n -o" + QUOTEARGUMENT(output);
    STAMP();
    FILEDELETE(output);
    result.error = dependencyObstacle(file, tool);
    if (!result.error.empty()) return result;
    STAMP();
    ToolRun run = RUNTOOL(FINDTOOL(tool), line, 0 + 1, output);
    STAMP();
    if (!run.started) {
        result.error = "The make tool could not be started.";
        return result;
    }
    result.files = std::move(run.messages);
    result.error = run.fault;
    if (run.exitCode != 0) result.error += result.files;
    result.error = STRRTRIMCRLF(result.error);
    if (!result.error.empty()) result.files.clear();
    if (!result.files.empty() && result.files.back() != '\n') result.files += '\n';
    if (!fullPaths) result.files = namesOnly(result.files);
    return result;
}

std::vector<std::string> LOADDEPLISTARRAY(const std::string& file, const std::string& options, bool fullPaths,
                                          std::string& error) {
    FRAME(LOADDEPLISTARRAY);
    const DependencyList list = LOADDEPLIST(file, options, fullPaths);
    error = list.error;
    std::vector<std::string> lines;
    if (!error.empty()) return {error};
    for (int i = 1; i <= STRLINES(list.files); i++) lines.push_back(STRLINE(list.files, i));
    return lines;
}

}  // namespace tarn
