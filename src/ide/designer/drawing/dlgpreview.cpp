// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/drawing/dlgpreview.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/drawing/dlgscroll.h"
#include "ide/designer/drawing/drawing.h"
#include "ide/designer/drawing/geometry.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/windows/drawscale.h"
#include "library/dialogs/dialogshape.h"
#include "library/system/system.h"

#include <algorithm>
#include <utility>

MODULE("dlgpreview")

namespace tarn {
namespace {

// The design when the preview was opened, which blocks it.
DesignPicture shown;

Object in(const Object& window, std::string_view control) {
    return FINDCONTROL(window, control);
}
Object imageOf(const Object& window) {
    return in(window, "imgpicture");
}
ScrollBars barsOf(const Object& window) {
    return {in(window, "sclacross"), in(window, "scldown")};
}

// ---- what is chosen ----

constexpr std::pair<std::string_view, int> scales[] = {
    {"optscale1", 100}, {"optscale2", 150}, {"optscale3", 200}};

bool isOn(const Object& window, std::string_view control) {
    return GetValue(in(window, control)) != 0;
}

int chosenScale(const Object& window) {
    for (const auto& [control, percent] : scales)
        if (isOn(window, control)) return percent;
    return 100;
}

DrawColours chosenColours(const Object& window) {
    return isOn(window, "optcolours2") ? DARK_COLOURS : LIGHT_COLOURS;
}

// ---- places ----

// Around what the preview has beside the picture.
struct Surroundings {
    int left, top;      // of a picture that is as wide as the window
    int width, height;  // of the window's frame
};

Surroundings around(const Object& window) {
    const Rect image = GetPosition(imageOf(window), CLIENT_UNIT);
    const Rect outer = GetPosition(window, WINDOW_UNIT), client = GetPosition(window, CLIENT_UNIT);
    const Rect first = GetPosition(in(window, "optcolours1"), CLIENT_UNIT);
    return {first.x, image.y, outer.w - client.w, outer.h - client.h};
}

// The controls above the picture have room at any size.
int leastWidth(const Object& window) {
    const Rect help = GetPosition(in(window, "pushbutton2"), CLIENT_UNIT);
    return help.x + help.w + around(window).left;
}

// A window that has been moved, or has grown, stays on the screen.
void giveSize(const Object& window, int w, int h) {
    const Rect now = GetPosition(window, CLIENT_UNIT);
    if (now.w != w || now.h != h) SetPosition(window, CLIENT_UNIT, {now.x, now.y, w, h});
    if (!GetVisible(window)) return;
    const Rect screen = ScreenSize(), frame = GetPosition(window, WINDOW_UNIT);
    const Rect at = {std::max(std::min(frame.x, screen.x + screen.w - frame.w), screen.x),
                     std::max(std::min(frame.y, screen.y + screen.h - frame.h), screen.y), frame.w, frame.h};
    if (at != frame) SetPosition(window, WINDOW_UNIT, at);
}

// As large as the picture, or as the screen has room for; the rest is behind the scroll bars. What is narrower than the window
// stands in its middle.
void layOut(const Object& window) {
    const Object image = imageOf(window);
    const Surroundings at = around(window);
    const Rect frame = CALCOFFSETS(image, shown.dialog[0], shown.mode).frame, screen = ScreenSize();
    const int scale = chosenScale(window);
    const auto scaled = [scale](int pixels) { return (pixels * scale + 99) / 100; };
    const int width = scaled(frame.w), height = scaled(frame.h);
    Rect place = {at.left, at.top, std::min(width, screen.w - at.width - 2 * at.left),
                  std::min(height, screen.h - at.height - at.top - at.left)};
    const bool wide = place.w < width, high = place.h < height;
    if (high && !wide) place.w = std::min(width + SCROLLBAR_WIDTH, screen.w - at.width - 2 * at.left);
    if (wide && !high) place.h = std::min(height + SCROLLBAR_WIDTH, screen.h - at.height - at.top - at.left);
    const int whole = std::max(place.w + 2 * at.left, leastWidth(window));
    giveSize(window, whole, at.top + place.h + at.left);
    place.x = (whole - place.w) / 2;
    SetPosition(image, CLIENT_UNIT, LAYOUTSCROLLBARS(barsOf(window), place, width, height));
}

// ---- the picture ----

void draw(const Object& window) {
    const Rect moved = SCROLLEDBY(barsOf(window));
    const int scale = chosenScale(window);
    shown.margin = {-moved.x * 100 / scale, -moved.y * 100 / scale, 0, 0};
    DRAWWINDOW(imageOf(window), shown);
}

void show(const Object& window) {
    FRAME(SHOW);
    const Object image = imageOf(window);
    STAMP();
    shown.largerFont = isOn(window, "chklarger") ? 1 : 0;
    SetDrawColours(image, chosenColours(window));
    SetDrawScale(image, chosenScale(window));
    USEDESIGNFONT(image, shown);
    STAMP();
    layOut(window);
    STAMP();
    draw(window);
    STAMP();
}

// ---- the window ----

// The other colours than those of the design beside it.
void loaded(const Object& window) {
    SetValue(in(window, DesktopInfo().dark ? "optcolours1" : "optcolours2"), 1);
    show(window);
}

constexpr DialogShape shape = {
    .ok = "", .cancel = "pushbutton1", .help = "pushbutton2", .showHelp = SHOWWINDOWHELP, .load = loaded};
const RegisteredWindow registered("PreviewDlg", PREVIEWDLG);

constexpr struct {
    int key, across, down;
} arrows[] = {{KEY_LEFT, -1, 0}, {KEY_RIGHT, 1, 0}, {KEY_UP, 0, -1}, {KEY_DOWN, 0, 1}};

// The arrows scroll, where they do not choose.
bool arrowPressed(const Object& window, const Object& control, int key) {
    if (GetTypeof(control) == "Radiobutton") return false;
    for (const auto& arrow : arrows) {
        if (arrow.key != key) continue;
        if (SCROLLBY(barsOf(window), arrow.across, arrow.down)) draw(window);
        return true;
    }
    return false;
}

bool isChoice(const Object& control) {
    const std::string type = GetTypeof(control);
    return type == "Radiobutton" || type == "Checkbox";
}

bool handle(const Object& window, int event, const Object& control, int parameter) {
    if (event == COMMAND_EVENT && isChoice(control)) return show(window), true;
    if (event == CHANGE_EVENT) return draw(window), true;
    if (event == KEYPRESS_EVENT && arrowPressed(window, control, parameter)) return true;
    return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
}

}  // namespace

bool PREVIEWDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(PREVIEWDLG);
    STAMP();
    const bool result = handle(window, event, control, parameter);
    STAMP();
    return result;
}

void SHOWPREVIEW() {
    FRAME(SHOWPREVIEW);
    STAMP();
    if (!IsLoaded(DialogDlg) || DIALOGGETFILENAME().empty()) return Sound();
    shown = DIALOGPICTURE();
    shown.grid = "0 0";
    shown.mode = FULL_FRAME;
    shown.link = false;
    shown.running = true;
    STAMP();
    Load(PreviewDlg);
    STAMP();
    Show(PreviewDlg, true);
    STAMP();
    shown = {};
}

}  // namespace tarn
