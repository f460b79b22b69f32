// SPDX-License-Identifier: GPL-3.0-or-later
//
// The routines of the control types. The desktop draws a control from its whole list; what a routine adds is what only the
// design knows: where pictures are, and that a control with nothing to show can still be found.
#include "ide/designer/drawing/dlgdraw.h"

#include "library/designer/proputil.h"
#include "library/settings/placeholders.h"
#include "library/system/files.h"
#include "library/system/programs.h"
#include "library/system/strings.h"
#include "os/paths.h"

MODULE("dlgdraw")

namespace tarn {
namespace {

void drawShown(const DesignControl& control, std::string_view properties) {
    const Rect& r = control.rect;
    if (!control.running) return DrawControl(control.window, properties, r.x, r.y, r.w, r.h);
    DrawControl(control.window, std::string(properties) + "RUNNING=1\n", r.x, r.y, r.w, r.h);
}

void drawShown(const DesignControl& control) {
    drawShown(control, control.properties);
}

// Letters that stand on the dialog's ground.
void drawLettered(const DesignControl& control) {
    std::string list(control.properties);
    if (control.leads) list += "BUDDY=1\n";
    if (control.ground) list += "GROUND=1\n";
    drawShown(control, list);
}

void drawOutline(const DesignControl& control) {
    if (control.running) return;
    const Rect& r = control.rect;
    SetForeColour(control.window, GRID_GREY);
    SetBackColour(control.window, NO_COLOUR);
    DrawShape(control.window, RECTANGLE_SHAPE, r.x, r.y, r.w, r.h);
}

std::string absolute(const std::string& path, const PictureFolders& folders) {
    const std::string resolved = FILERESOLVEPATHS(path, {folders.resources, folders.compiler});
    if (resolved.empty() || ISROOTED(resolved)) return resolved;
    return std::string(folders.file.empty() ? folders.resources : paths::folder(folders.file)) + resolved;
}

// The file that a PICTURE means: itself, or what the resource file declares under that name.
std::string pictureFile(const std::string& picture, const PictureFolders& folders) {
    const std::string file = absolute(picture, folders);
    if (folders.file.empty() || picture.find_first_of("./\\") != std::string::npos) return file;
    const std::string declared = RESOURCEGETFILENAME(folders.file, "BITMAP", picture);
    return declared.empty() ? file : absolute(declared, folders);
}

std::string withPicture(const DesignControl& control) {
    std::string list(control.properties);
    const std::string picture = GETPROPVALUE(list, "PICTURE");
    if (!picture.empty()) SETPROPVALUE("PICTURE", STRADDQUOTES(pictureFile(picture, control.folders)), list);
    return list;
}

// Without a picture there is nothing to see but the border, if it has one.
void drawPictured(const DesignControl& control) {
    drawShown(control, withPicture(control));
    if (GETPROPVALUE(control.properties, "PICTURE").empty() &&
        GETPROPINT(control.properties, "BORDERSTYLE") == 0)
        drawOutline(control);
}

struct TypeRoutine {
    std::string_view type;
    void (*draw)(const DesignControl& control);
};
constexpr TypeRoutine routines[] = {
    {"Bitmapbutton", DRAWBITMAPBUTTON},
    {"Checkbox", DRAWCHECKBOX},
    {"Combobox", DRAWCOMBOBOX},
    {"Edit", DRAWEDIT},
    {"Groupbox", DRAWGROUPBOX},
    {"Icon", DRAWICON},
    {"Iconlist", DRAWICONLIST},
    {"Image", DRAWIMAGE},
    {"Label", DRAWLABEL},
    {"Listbox", DRAWLISTBOX},
    {"Progressbar", DRAWPROGRESSBAR},
    {"Pushbutton", DRAWPUSHBUTTON},
    {"Radiobutton", DRAWRADIOBUTTON},
    {"Scrollbar", DRAWSCROLLBAR},
    {"Shape", DRAWSHAPE},
};

}  // namespace

void DRAWCONTROL(const DesignControl& control) {
    FRAME(DRAWCONTROL);
    STAMP();
    const std::string type = GETPROPVALUE(control.properties, "TYPEOF");
    for (const TypeRoutine& routine : routines)
        if (STREQUAL(routine.type, type)) return routine.draw(control);
    if (control.running) return;
    drawOutline(control);
    SetForeColour(control.window, NO_COLOUR);
    STAMP();
    DRAWCONTROLTEXT(control.window, control.rect, GETPROPVALUE(control.properties, "NAME"), 2);
}

// On a window with a menu such buttons are those of a toolbar.
void DRAWBITMAPBUTTON(const DesignControl& control) {
    FRAME(DRAWBITMAPBUTTON);
    STAMP();
    std::string list = withPicture(control);
    if (control.menu) list += "MENU=1\n";
    drawShown(control, list);
    if (control.menu && GETPROPVALUE(list, "PICTURE").empty() && GETPROPVALUE(list, "CAPTION").empty())
        drawOutline(control);
}

void DRAWICON(const DesignControl& control) {
    FRAME(DRAWICON);
    STAMP();
    drawPictured(control);
}

void DRAWIMAGE(const DesignControl& control) {
    FRAME(DRAWIMAGE);
    STAMP();
    drawPictured(control);
}

void DRAWLABEL(const DesignControl& control) {
    FRAME(DRAWLABEL);
    STAMP();
    drawLettered(control);
    if (GETPROPVALUE(control.properties, "CAPTION").empty() &&
        GETPROPINT(control.properties, "BORDERSTYLE") == 0)
        drawOutline(control);
}

void DRAWCHECKBOX(const DesignControl& control) {
    FRAME(DRAWCHECKBOX);
    STAMP();
    drawLettered(control);
}

void DRAWCOMBOBOX(const DesignControl& control) {
    FRAME(DRAWCOMBOBOX);
    STAMP();
    drawShown(control);
}

void DRAWEDIT(const DesignControl& control) {
    FRAME(DRAWEDIT);
    STAMP();
    drawShown(control);
}

void DRAWGROUPBOX(const DesignControl& control) {
    FRAME(DRAWGROUPBOX);
    STAMP();
    drawShown(control);
}

void DRAWICONLIST(const DesignControl& control) {
    FRAME(DRAWICONLIST);
    STAMP();
    drawShown(control);
}

void DRAWLISTBOX(const DesignControl& control) {
    FRAME(DRAWLISTBOX);
    STAMP();
    drawShown(control);
}

void DRAWPROGRESSBAR(const DesignControl& control) {
    FRAME(DRAWPROGRESSBAR);
    STAMP();
    drawShown(control);
}

void DRAWPUSHBUTTON(const DesignControl& control) {
    FRAME(DRAWPUSHBUTTON);
    STAMP();
    drawShown(control);
}

void DRAWRADIOBUTTON(const DesignControl& control) {
    FRAME(DRAWRADIOBUTTON);
    STAMP();
    drawLettered(control);
}

void DRAWSCROLLBAR(const DesignControl& control) {
    FRAME(DRAWSCROLLBAR);
    STAMP();
    drawShown(control);
}

void DRAWSHAPE(const DesignControl& control) {
    FRAME(DRAWSHAPE);
    STAMP();
    drawShown(control);
}

}  // namespace tarn
