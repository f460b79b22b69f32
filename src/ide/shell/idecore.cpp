// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/idecore.h"

#include "ide/build/toolrun.h"
#include "ide/shell/windows.h"
#include "library/net/netutil.h"
#include "library/settings/profstr.h"
#include "library/source/codewiz.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"
#include "os/text/initext.h"
#include "platform/registry.h"

#include <algorithm>
#include <array>

namespace tarn {
namespace {

std::string pathSetting(std::string_view key) {
    return PROFILESTRGET(GETIDEINIFILE(), "PathsOptionsDlg", key);
}

std::string folderSetting(std::string_view key) {
    const std::string folder = pathSetting(key);
    return folder.empty() ? folder : FILEADDSEPARATOR(folder);
}

}  // namespace
}  // namespace tarn

MODULE("idecore", tarn::TOOL_ONERROR)

namespace tarn {

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
    if (os::infoOf(own).exists) return own;
    std::string shipped;
    os::readFile(beside, shipped);
    const bool made = os::makeFolders(os::settingsFolder()) == os::FileError::None &&
                      os::saveFile(own, shipped, os::Durability::Unsynced).ok();
    return made ? own : beside;
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

// Each message has a page beside the help file; numbers of other compilers have none. Compiled help has them as topics.
std::string GETMESSAGEPAGE(int number) {
    FRAME(GETMESSAGEPAGE);
    if (STRLOWER(FILEGETEXT(GETHELPFILE())) == ".qch") return {};
    const std::string page = FILEGETDIR(GETHELPFILE()) + "messages/" + STR(number) + ".htm";
    return FileSize(page) > 0 ? page : "";
}

std::string GETMAINCAPTIONSTR() {
    FRAME(GETMAINCAPTIONSTR);
    return REPLACECONSTANTS(PROFILESTRGET(GETIDEINIFILE(), "GenOptionsDlg", "Combo1"));
}

namespace {

std::string fullName(const std::string& given) {
    std::string file = STRREMOVEQUOTES(given);
    if (file.empty()) return file;
    if (FILEGETEXT(file).empty()) file += ClassExtension;
    if (!ISROOTED(file)) file = FILEADDSEPARATOR(GETCURDIR()) + file;
    return file;
}

}  // namespace

std::string GETCOMMANDLINEFILE() {
    FRAME(GETCOMMANDLINEFILE);
    std::string file;
    for (const std::string& argument : os::commandLine()) ADDWORD(argument, " ", file);
    return fullName(file);
}

std::vector<std::string> GETCOMMANDLINEFILES() {
    FRAME(GETCOMMANDLINEFILES);
    const std::string whole = GETCOMMANDLINEFILE();
    if (whole.empty()) return {};
    std::vector<std::string> files;
    for (const std::string& argument : os::commandLine())
        if (const std::string file = fullName(argument); !file.empty()) files.push_back(file);
    const bool any =
        std::any_of(files.begin(), files.end(), [](const std::string& file) { return FileSize(file) >= 0; });
    return FileSize(whole) >= 0 || !any ? std::vector{whole} : files;
}

std::string MISSINGFILETEXT(const std::string& file) {
    FRAME(MISSINGFILETEXT);
    return "The following file:\n\n\t'" + file +
           "'\n\ndoes not exist and cannot be opened. Try again with another file.";
}

namespace {

// Where the compiler and the make tool are called: they write beside the name they are called by, so a user
// who may not write beside the executable gets links to them in a folder of their own.
std::string toolFolder(const std::string& app) {
    if (os::infoOf(app).writable) return app;
    const std::string folder = os::settingsFolder() + "tools/";
    os::makeFolders(folder);
    for (const std::string_view tool : {CompilerProgram, MakeProgram, std::string_view("libtarnwick.so")}) {
        const std::string name(tool);
        if (os::infoOf(app + name).exists && !os::infoOf(folder + name).exists) {
            os::files().remove(folder + name);  // a link that has lost its target
            os::files().link(app + name, folder + name);
        }
    }
    return folder;
}

}  // namespace

namespace {

// Where the paths lead that the settings leave empty.
std::array<std::pair<const char*, std::string>, 4> usualPlaces() {
    const std::string app = os::executableFolder();
    return {
        {{"Edit2", app + "help/"}, {"Edit3", toolFolder(app)}, {"Edit4", app + "examples/"}, {"Edit5", app}}};
}

// What the settings begin with when they have been deleted or emptied under the running program: the copy
// that was installed, or its backup where the program works on that copy itself.
std::string freshSettings() {
    const std::string shipped = os::executableFolder() + "ide.ini";
    std::string text;
    os::readFile(GETIDEINIFILE() == shipped ? FILECHANGEEXT(shipped, ".bak") : shipped, text);
    if (text.empty()) return text;
    for (const auto& [key, folder] : usualPlaces()) {
        if (ini::get(text, "PathsOptionsDlg", key).empty()) ini::put(text, "PathsOptionsDlg", key, folder);
    }
    return text;
}

}  // namespace

void PREPARESETTINGS() {
    FRAME(PREPARESETTINGS);
    const std::string ini = GETIDEINIFILE();
    if (FileSize(ini) < 1) return;
    PROFILESTRORIGIN(ini, freshSettings);
    for (const auto& [key, folder] : usualPlaces()) {
        STAMP();
        if (pathSetting(key).empty()) PROFILESTRPUT(ini, "PathsOptionsDlg", key, folder);
    }
    STAMP();
    const std::string known = FILEGETDIR(ini) + "ide";
    const std::string key = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ide.exe";
    if (platform::RegGetSetting(key, "") != known) platform::RegSaveSetting(key, "", known);
    STAMP();
    PREPAREMAIL();
}

std::string HELPTOPIC(std::string_view caption) {
    FRAME(HELPTOPIC);
    std::string topic(caption);
    for (char& c : topic) {
        if (c == '-') c = '_';
    }
    return STRTRIM(topic.substr(0, topic.find('(')));
}

void SHOWWINDOWHELP(const Object& window) {
    FRAME(SHOWWINDOWHELP);
    STAMP();
    SHOWHELP(HELPTOPIC(GetCaption(window)));
}

namespace {

// What MULTIHELP says, and what to do about it.
void tellMissing(const std::string& file) {
    const std::string own = os::executableFolder() + "help/";
    const bool there = os::infoOf(own).exists && own != FILEGETDIR(file);
    MSGBOX("MultiHelp",
           "Help file '" + file + "' was empty or not found.\n\n" +
               (there ? "The help that came with the program lies in '" + own +
                            "': name this folder at Help files in Tools-Options-Paths."
                      : "Install the program again, or name the folder of the help at Help files "
                        "in Tools-Options-Paths."));
}

}  // namespace

void SHOWHELP(const std::string& topic) {
    FRAME(SHOWHELP);
    STAMP();
    const std::string file = GETHELPFILE();
    if (FileSize(file) > 0)
        MULTIHELP(0, file, 257, topic);
    else
        tellMissing(file);
}

void TELLERROR(std::int32_t code, const std::string& sentence) {
    const Reporting report;
    if (!report.entered()) return;
    Sound();
    MsgBox("Error", ErrorMessage(code) + " (error " + STR(code) + ").\n" + sentence, "OK", BoxIcon::Error);
    ContinueAfterError();
}

}  // namespace tarn
