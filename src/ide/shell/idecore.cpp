// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/idecore.h"

#include "ide/shell/windows.h"
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"
#include "platform/registry.h"

#include <algorithm>

namespace tarn {
namespace {

std::string pathSetting(std::string_view key) {
    return PROFILESTRGET(GETIDEINIFILE(), "PathsOptionsDlg", key);
}

std::string folderSetting(std::string_view key) {
    const std::string folder = pathSetting(key);
    return folder.empty() ? folder : FILEADDSEPARATOR(folder);
}

int compilerNumber(std::string_view key) {
    return PROFILESTRGETINT(GETIDEINIFILE(), "CompOptionsDlg", key);
}

}  // namespace
}  // namespace tarn

MODULE("idecore", tarn::TOOL_ONERROR)

namespace tarn {

void TOOL_ONERROR(std::int32_t code) {
    const bool tool = code >= 901 && code <= 909, file = code >= 651 && code <= 659;
    if (!tool && !file) return DefaultErrorHandler(code);
    const Reporting report;
    if (!report.entered()) return;
    Sound();
    MsgBox(
        "Error",
        ErrorMessage(code) + " (error " + STR(code) + ").\n" +
            (tool ? "Cannot run external program."
                  : "The results of a tool could not be read or removed. Use Tools-Options-Paths to choose a "
                    "compiler file path that you may write."),
        "OK", BoxIcon::Error);
    ContinueAfterError();
}

// ---- where things are ----

std::string GETAPPDIR() {
    FRAME(GETAPPDIR);
    return os::executableFolder();
}

std::string GETIDEINIFILE() {
    FRAME(GETIDEINIFILE);
    const std::string beside = os::executableFolder() + "ide.ini";
    if (os::infoOf(os::executableFolder()).writable) return beside;
    const std::string own = os::settingsFolder() + "ide.ini";
    if (!os::infoOf(own).exists) {
        std::string shipped;
        os::readFile(beside, shipped);
        if (os::makeFolders(os::settingsFolder()) == os::FileError::None)
            static_cast<void>(os::saveFile(own, shipped, os::Durability::Unsynced));
    }
    return own;
}

std::string GETCOMPILERDIR() {
    FRAME(GETCOMPILERDIR);
    return folderSetting("Edit3");
}

std::string GETRESOURCEDIR() {
    FRAME(GETRESOURCEDIR);
    return folderSetting("Edit5");
}

std::string GETEXAMPLEDIR() {
    FRAME(GETEXAMPLEDIR);
    return folderSetting("Edit4");
}

std::string GETINHERITEDPATHS() {
    FRAME(GETINHERITEDPATHS);
    return pathSetting("Edit1");
}

std::string GETINHERITEDPATHSML() {
    FRAME(GETINHERITEDPATHSML);
    std::string lines;
    const std::string paths = GETINHERITEDPATHS();
    for (std::size_t at = 0; at < paths.size();) {
        const std::size_t end = std::min(paths.find(';', at), paths.size());
        const std::string path = STRTRIM(std::string_view(paths).substr(at, end - at));
        if (!path.empty()) lines += FILEADDSEPARATOR(path) + "\n";
        at = end + 1;
    }
    return lines;
}

std::string GETINHERITEDLIBPATH() {
    FRAME(GETINHERITEDLIBPATH);
    const std::string paths = GETINHERITEDPATHS();
    return paths.substr(0, paths.find(';'));
}

std::string GETHELPFILE() {
    FRAME(GETHELPFILE);
    const std::string stem = folderSetting("Edit2") + std::string(ProductWord) + ".";
    std::string types = STRLOWER(PROFILESTRGET(GETIDEINIFILE(), "GenOptionsDlg", "HelpFileTypes"));
    for (char& c : types) {
        if (c == ';' || c == ',') c = ' ';
    }
    const int count = STRWORDCOUNT(types);
    for (int i = 1; i <= count; i++) {
        const std::string file = stem + STRWORD(types, i);
        if (FileSize(file) >= 0) return file;
    }
    return stem + STRWORD(types, 1);
}

std::string REPLACECONSTANTS(std::string text) {
    FRAME(REPLACECONSTANTS);
    static constexpr std::pair<std::string_view, std::string_view> constants[] = {
        {"%PRODUCT_NAME%", ProductWord},
        {"%VERSION_NUMBER%", ProductVersion},
        {"%RELEASE_NUMBER%", ProductBuild},
        {"%SOURCE_EXT%", ClassExtension},
        {"%APPLICATION_ICON%", "mainicon.ico"},
        {"%MAX_FIELDS%", "48"},
        {"%MAX_SEGMENTS%", "4"},
    };
    for (const auto& [name, value] : constants) text = STRREPLACE(text, name, value);
    return text;
}

std::string GETMAINCAPTIONSTR() {
    FRAME(GETMAINCAPTIONSTR);
    return REPLACECONSTANTS(PROFILESTRGET(GETIDEINIFILE(), "GenOptionsDlg", "Combo1"));
}

std::string GETCOMMANDLINEFILE() {
    FRAME(GETCOMMANDLINEFILE);
    std::string file;
    for (const std::string& argument : os::commandLine()) ADDWORD(argument, " ", file);
    file = STRREMOVEQUOTES(file);
    if (file.empty()) return file;
    if (FILEGETEXT(file).empty()) file += ClassExtension;
    if (!ISROOTED(file)) file = FILEADDSEPARATOR(GETCURDIR()) + file;
    return file;
}

namespace {

// Where the compiler and the make tool are called: they write beside the name they are called by, so a user
// who may not write beside the executable gets links to them in a folder of their own.
std::string toolFolder(const std::string& app) {
    if (os::infoOf(app).writable) return app;
    const std::string folder = os::settingsFolder() + "tools/";
    os::makeFolders(folder);
    for (const char* name : {"quarn.exe", "ordo.exe", "libtarnwick.so"}) {
        if (os::infoOf(app + name).exists && !os::infoOf(folder + name).exists) {
            os::files().remove(folder + name);  // a link that has lost its target
            os::files().link(app + name, folder + name);
        }
    }
    return folder;
}

}  // namespace

void PREPARESETTINGS() {
    FRAME(PREPARESETTINGS);
    const std::string ini = GETIDEINIFILE();
    if (FileSize(ini) < 1) return;
    const std::string app = os::executableFolder();
    const std::pair<const char*, std::string> places[] = {
        {"Edit2", app + "help/"}, {"Edit3", toolFolder(app)}, {"Edit4", app + "examples/"}, {"Edit5", app}};
    for (const auto& [key, folder] : places) {
        STAMP();
        if (pathSetting(key).empty()) PROFILESTRPUT(ini, "PathsOptionsDlg", key, folder);
    }
    STAMP();
    const std::string known = FILEGETDIR(ini) + "ide";
    const std::string key = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ide.exe";
    if (platform::RegGetSetting(key, "") != known) platform::RegSaveSetting(key, "", known);
}

std::string HELPTOPIC(std::string_view caption) {
    FRAME(HELPTOPIC);
    std::string topic(caption);
    for (char& c : topic) {
        if (c == '-') c = '_';
    }
    return topic;
}

void SHOWHELP(const std::string& topic) {
    FRAME(SHOWHELP);
    STAMP();
    MULTIHELP(0, GETHELPFILE(), 257, topic);
}

// ---- the compiler's command line ----

namespace {

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

std::string levelSwitch(std::string_view name, int level) {
    return level == 1 || level == 2 ? std::string(name) + STR(level) : std::string();
}

}  // namespace

std::string GETCOMPILEREXE() {
    FRAME(GETCOMPILEREXE);
    return GETCOMPILERDIR() + "quarn.exe";
}

std::string GETORDOEXE() {
    FRAME(GETORDOEXE);
    return GETCOMPILERDIR() + "ordo" + ".exe";
}

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
    o.resourcePaths = pathSetting("Edit5");
    return o;
}

std::string SAVECOMMANDLINE(const CompilerOptions& o, int windowMode, bool write) {
    FRAME(SAVECOMMANDLINE);
    const std::string extra = STRTRIM(o.extra);
    const std::string pieces[] = {
        "\"" + GETCOMPILEREXE() + "\"",
        levelSwitch("/p", o.precond),
        levelSwitch("/d", o.debug),
        o.quiet == 1 ? "/q" : "",
        o.verification == 1 ? "/v" : "",
        o.manifest == 1 ? "/om" : "",
        o.shortcutFile == 1 ? "/os" : "",
        "/s" + STR(o.symbols),
        extra,
        o.inheritPaths.empty() ? "" : "/i\"" + o.inheritPaths + "\"",
        o.resourcePaths.empty() ? "" : "/r\"" + o.resourcePaths + "\"",
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
        return "Cannot find the compiler. It should be in the following file:\n'" + compiler +
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

struct CompilerRun {
    bool started = false;
    std::string failure;  // empty if it went well
};

CompilerRun runCompiler(const std::string& file, int windowMode) {
    std::string line = SAVECOMMANDLINE(GETCOMPILEROPTIONS(), 1, false);
    line = FILESUBSTITUTENAME(line, "^", FILEGETDIR(file) + FILEBASENAME(file));
    const std::string arguments = STRTRIM(std::string_view(line).substr(STRTOKEN(line, 1).size()));
    const std::string compiler = FINDTOOL(GETCOMPILEREXE());
    const std::string errorFile = FILEGETDIR(compiler) + "sarn.err";
    FILEDELETE(errorFile);
    const ExecResult run = EXEC(compiler, arguments, 0 + windowMode);
    if (!run.started) return {};
    std::string text;
    if (FileSize(errorFile) > 0) LOADFILE(errorFile, text);
    FILEDELETE(errorFile);
    const bool clean = text.empty() || STRFIND(NoErrors, text) != 0;
    const std::string fault = RUNFAULT(run, compiler, !clean);
    return {true, fault + (clean ? "" : text)};
}

}  // namespace

std::string RUNFAULT(const ExecResult& run, const std::string& tool, bool hasMessages) {
    FRAME(RUNFAULT);
    const std::string name = "'" + FILEGETFNAME(tool) + "' ";
    const std::string advice = "\nCheck the compiler file path in Tools-Options-Paths, or try again.\n";
    if (run.stopped) return name + "was stopped before it had finished.\n";
    if (run.signal != 0) return name + "ended by signal " + STR(run.signal) + "." + advice;
    if (run.code == 0 || hasMessages) return {};
    return name + "failed with exit code " + STR(run.code) + " and gave no message." + advice;
}

void COMPILESINGLEFILE(const std::string& file, int windowMode) {
    FRAME(COMPILESINGLEFILE);
    if (windowMode < 0 || windowMode > 11) windowMode = 1;
    STAMP();
    CompilerRun run{true, compileObstacle(file)};
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
    const std::string output = GETCOMPILERDIR() + "ordo.err";
    const std::string line =
        options + " \"" + file + "\" -i\"" + GETINHERITEDPATHS() + "\" -n -o\"" + output + "\"";
    STAMP();
    FILEDELETE(output);
    result.error = dependencyObstacle(file, tool);
    if (!result.error.empty()) return result;
    STAMP();
    const ExecResult run = EXEC(FINDTOOL(tool), line, 0 + 1);
    STAMP();
    if (!run.started) {
        result.error = "The make tool could not be started.";
        return result;
    }
    if (FileSize(output) > 0) LOADFILE(output, result.files);
    STAMP();
    result.error = RUNFAULT(run, tool, !result.files.empty());
    if (run.code != 0) result.error += result.files;
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
