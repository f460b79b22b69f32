// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/ship/packager.h"

#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "ide/ship/packager_internal.h"
#include "library/dialogs/dialogshape.h"
#include "library/settings/profstr.h"
#include "library/ship/copyutil.h"
#include "library/ship/workfolder.h"
#include "library/system/system.h"

MODULE("progmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

// What the window knows stands in it, under these names.
constexpr std::string_view MainClassValue = "mainclass", FilesValue = "files";

Object rowsOf(const Object& window) {
    return FINDCONTROL(window, "iconlist1");
}

// ---- buttons ----

constexpr int FaceWidth = 64, FaceHeight = 64;  // pixels

struct Face {
    std::string_view button, caption, icon;
};
constexpr Face faces[] = {
    {"bitmapbutton1", "Copy to\nfloppy", "disk09.ico"},
    {"bitmapbutton2", "Copy to\nfolder", "folder1.ico"},
    {"bitmapbutton3", "Copy to\nzip file", "zip.ico"},
    {"bitmapbutton4", "Create\ninstaller", "installer1.ico"},
    {"bitmapbutton5", "Help", "help95.ico"},
    {"bitmapbutton6", "Close\nwindow", "exit3.ico"},
    {"bitmapbutton7", "Copy to\n.deb", "package1.ico"},
    {"bitmapbutton8", "Proof of\npackage", "proof1.ico"},
};
// A row as it is shown: the name and the size of a file.
std::string rowOf(const std::string& path) {
    const std::int64_t size = FileSize(path);
    return FILEGETFNAME(path) + "\t" + (size < 0 ? "(missing)" : std::to_string(size) + " byte(s)");
}

// Whether the rows no longer tell what is on the disk.
bool isOutOfDate(const Object& window) {
    const std::string lines = packager::filesOf(window) + "\n";
    int row = 0;
    for (int i = 1; i <= STRLINES(lines); ++i) {
        const std::string path = COPYPATH(STRLINE(lines, i));
        if (!path.empty() && GetList(rowsOf(window), ++row) != rowOf(path)) return true;
    }
    return false;
}

// What a command has met, or a build before it has changed, is seen behind it.
template <void (*command)(const Object&)>
void doAndLook(const Object& window) {
    command(window);
    if (IsLoaded(window) && isOutOfDate(window)) packager::setFiles(window, packager::filesOf(window));
}

constexpr DialogButton buttons[] = {
    {"bitmapbutton1", doAndLook<packager::copyToFloppy>},
    {"bitmapbutton2", doAndLook<packager::copyToFolder>},
    {"bitmapbutton3", doAndLook<packager::copyToZip>},
    {"bitmapbutton4", doAndLook<packager::createInstaller>},
    {"bitmapbutton7", doAndLook<packager::copyToDeb>},
    {"bitmapbutton8", doAndLook<packager::proof>},
};

void load(const Object& window) {
    for (const Face& face : faces) {
        const std::string icon =
            FILEBASENAME(face.icon);  // a resource of this program, which has no extension
        SetPicture(FINDCONTROL(window, face.button),
                   PictureName(TBITMAP(FaceWidth, FaceHeight, face.caption, icon)));
    }
}

constexpr DialogShape shape{.ok = "",
                            .cancel = "bitmapbutton6",
                            .help = "bitmapbutton5",
                            .showHelp = SHOWWINDOWHELP,
                            .load = load,
                            .buttons = buttons};
const RegisteredWindow registered("PackagerDlg", PACKAGERDLG);

}  // namespace

std::string packager::mainClassOf(const Object& window) {
    return GetArrayValue(window, MainClassValue);
}
std::string packager::filesOf(const Object& window) {
    return GetArrayValue(window, FilesValue);
}
void packager::setFiles(const Object& window, const std::string& files) {
    FRAME(PACKAGER_SETFILES);
    STAMP();
    const std::string each = FILELISTONCE(files);
    SetArrayValue(window, FilesValue, each);
    LISTBOXADDFILES(rowsOf(window), each);
    SetCaption(FINDCONTROL(window, "label2"), "&Files (" + STR(LISTBOXCOUNTFILES(rowsOf(window))) + "):");
    STAMP();
}

bool PACKAGERDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(PACKAGERDLG);
    STAMP();
    const bool result = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

void PACKAGERDIALOG(const Object& owner, const std::string& mainClass, const std::string& files,
                    const std::string& text) {
    FRAME(PACKAGERDIALOG);
    static_cast<void>(owner);  // a modal window belongs to the one that is active
    STAMP();
    Load(PackagerDlg);
    STAMP();
    ship::REMOVEDEADWORK(FILEGETDIR(mainClass));  // where most of what is made goes
    SetArrayValue(PackagerDlg, MainClassValue, mainClass);
    SetCaption(FINDCONTROL(PackagerDlg, "label1"), text);
    packager::setFiles(PackagerDlg, files);
    STAMP();
    Show(PackagerDlg, true);
    STAMP();
}

// ---- rows ----

void LISTBOXADDFILES(const Object& control, const std::string& files) {
    FRAME(LISTBOXADDFILES);
    STAMP();
    Clear(control);
    const std::string lines = files + "\n";
    for (int i = 1; i <= STRLINES(lines); ++i) {
        STAMP();
        const std::string path = COPYPATH(STRLINE(lines, i));
        if (path.empty()) continue;
        AddItem(control, rowOf(path), FileSize(path) < 0 ? "cross" : "tick");
    }
    STAMP();
}

int LISTBOXCOUNTFILES(const Object& control) {
    FRAME(LISTBOXCOUNTFILES);
    STAMP();
    return GetListCount(control);
}

}  // namespace tarn
