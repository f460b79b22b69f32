// SPDX-License-Identifier: Apache-2.0
//
// An installer, made by the installer's compiler of a script.
#include "library/ship/copyutil.h"
#include "library/ship/copyutil_internal.h"
#include "library/ship/workfolder.h"
#include "os/files.h"

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

using namespace ship;

namespace {

constexpr std::string_view InstallerProgram = "iscc.exe";
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr const char* WaitText = "Please wait, creating the installer...";

const Object ScriptDlg("ScriptDlg");

bool scriptDlg(const Object& window, int event, const Object&, int parameter) {
    const bool chosen = event == DBLCLICK_EVENT || (event == KEYPRESS_EVENT && parameter == KEY_RETURN);
    if (chosen) SetText(Sysclipboard, GetText(window));
    const bool leaves = event == KEYPRESS_EVENT && parameter == KEY_ESCAPE;
    if (leaves) Unload(window);
    return chosen || leaves;
}

// The file that is there, so that a new one can be told from it.
struct Seen {
    std::int64_t modified = -1;
    std::uint64_t inode = 0;
    bool operator==(const Seen&) const = default;
};
Seen seen(const std::string& file) {
    const os::FileInfo info = os::infoOf(os::native(file));
    return info.exists ? Seen{info.modified, info.inode} : Seen{};
}

struct Made {
    bool ok = false, stopped = false;
    std::string messages;  // of the compiler, or why it was not run
};

// The compiler's exit code says nothing here: what counts is whether a file has come.
Made compile(const std::string& script, const std::string& installer) {
    const LongWork work(WaitText);
    const Seen before = seen(installer);
    const WorkFolder scratch(installer);
    if (scratch.path().empty()) return {false, false, unwritten(installer, scratch.error())};
    const std::string beside = FILEGETDIR(installer);
    const std::string folder = STRLEFT(beside, static_cast<int>(beside.size()) - 1);
    const ToolRun run = runTool(
        InstallerProgram, {script, "/O" + (folder.empty() ? "/" : folder), "/F" + FILEBASENAME(installer)},
        scratch.path() + "tool.txt");
    return {FileSize(installer) > 0 && seen(installer) != before, run.stopped, run.output};
}

std::string adviceFor(os::FileError error) {
    return error == os::FileError::IsFolder
               ? "Rename that folder, and try again."
               : "An installer is made beside its program: copy the program to a folder that you may write, "
                 "or make room on its disk, and try again.";
}

// The script, on the disk; why it is not, else. One that begins with a byte order mark goes on doing so.
std::string saved(const std::string& script, const std::string& text) {
    std::string before;
    os::readFile(script, before);
    const std::string_view mark = before.starts_with(ByteOrderMark) ? ByteOrderMark : std::string_view();
    const os::SaveResult result = os::saveFile(os::native(script), std::string(mark) + text);
    return result.ok() ? std::string()
                       : "The script '" + script +
                             "' could not be written: " + std::string(os::describe(result.error)) + "\n" +
                             adviceFor(result.error);
}

void tellMade(const Object& owner, const Made& made, const std::string& installer, const std::string& text) {
    const std::string messages =
        made.ok ? std::string() : STRRTRIMCRLF(LIMITLINES(made.messages, MostListed));
    const std::string answer = ask(owner,
                                   (made.ok ? "Created '" : "Could not create '") + installer + "'" +
                                       (messages.empty() ? "" : "\n\n" + messages),
                                   "Close\nShow Script", made.ok ? BoxIcon::Information : BoxIcon::Error);
    if (answer == "Show Script") SHOWSCRIPT(text);
}

// The icon that was given, else the first one among the files.
std::string iconOf(const std::string& given, const std::string& files) {
    if (!given.empty() && FileSize(given) > 0) return given;
    return STRLINE(GETEXTNFILELIST(files, EXT_ICO), 1);
}

// An icon that has the name already under which icons are installed comes along once.
std::string filesBesideIcon(const CopyList& list, const std::string& icon) {
    std::string files;
    for (const CopyFile& file : list.files)
        if (file.Name != icon || FILEGETFNAME(icon) != "mainicon.ico") files += file.Name + "\n";
    return files;
}

// The main program as it stands among the files, else as it was given.
std::string exeOf(const std::string& given, const std::string& files) {
    const std::string programs = GETEXTNFILELIST(files, EXT_EXE);
    for (int i = 1; i <= STRLINES(programs); ++i)
        if (STREQUAL(FILEGETFNAME(STRLINE(programs, i)), FILEGETFNAME(given))) return STRLINE(programs, i);
    return given.empty() ? STRLINE(programs, 1) : given;
}

}  // namespace

void SHOWSCRIPT(const std::string& text) {
    FRAME(SHOWSCRIPT);
    STAMP();
    RegisterWindow(ScriptDlg, scriptDlg);
    Load(ScriptDlg);
    STAMP();
    if (!IsLoaded(ScriptDlg)) return;
    SetCaption(ScriptDlg, "(Double click to copy to clipboard)");
    SetText(ScriptDlg, text);
    SetSelection(ScriptDlg, 1, 0);
    STAMP();
    Show(ScriptDlg, true);
    if (IsLoaded(ScriptDlg)) Unload(ScriptDlg);
    STAMP();
}

bool COPYTOINSTALLER(const Object& owner, const std::string& company, const std::string& copyright,
                     const std::string& product, const std::string& description,
                     const std::string& versionText, const std::string& version, const std::string& iconFile,
                     const std::string& files, const std::string& mainExe) {
    FRAME(COPYTOINSTALLER);
    STAMP();
    if (!hasTool(owner, InstallerProgram, "installer", "create the installer.")) return false;
    STAMP();
    const CopyList list = checked(
        owner, files, "Some of the files do not exist, or they are too large to fit in the installer.",
        "the maximum size of the files to be installed");
    STAMP();
    if (!list.canBeCopied()) return false;
    const std::string exe = exeOf(mainExe, files);
    const std::string stem = FILEGETDIR(exe) + FILEBASENAME(exe) + "-install";
    for (const std::string& made : {stem + ".iss", stem + std::string(EXT_EXE)})
        if (!ISAPART(owner, list.paths(1), made)) return false;
    STAMP();
    const WaitLabel wait(owner, WaitText);
    const std::string icon = iconOf(iconFile, files);
    const std::string text = CREATEISSSCRIPT(company, copyright, product, description, versionText, version,
                                             filesBesideIcon(list, icon), exe, icon);
    STAMP();
    const std::string unsaved = saved(stem + ".iss", text);
    const Made made =
        unsaved.empty() ? compile(stem + ".iss", stem + std::string(EXT_EXE)) : Made{false, false, unsaved};
    STAMP();
    if (made.stopped) return false;
    tellMade(owner, made, stem + std::string(EXT_EXE), text);
    return made.ok;
}

}  // namespace tarn
