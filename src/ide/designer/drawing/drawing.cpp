// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/drawing/drawing.h"

#include "ide/designer/drawing/dlgdraw.h"
#include "ide/designer/drawing/dlgmarks.h"
#include "ide/designer/drawing/dlgzoom.h"
#include "kernel/windows/drawscale.h"
#include "library/designer/proputil.h"
#include "library/dialogs/dlgutil.h"
#include "library/system/strings.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

MODULE("dlgedit")

namespace tarn {
namespace {

constexpr int TextInset = 3;  // pixels between the edge of a bar and its text

// What the frame is painted in; the desktop's letters and ground are the rest.
struct FrameColours {
    Bevel outer;
    int inner, selection, hollow;
};
constexpr FrameColours light = {{0xE0E0E0, WHITE, DARKGREY, BLACK, NO_COLOUR}, LIGHTGREY, BLACK, WHITE};
constexpr FrameColours dark = {{0x606060, 0x707070, 0x303030, BLACK, NO_COLOUR}, 0x484848, WHITE, BLACK};
constexpr int CaptionGround = 0x8C5F3A, CaptionInk = WHITE;
constexpr int ClickedGround = 0x2A7A2A;  // of numbers that the user has chosen

struct Painting {
    const Object& window;
    const DesignPicture& picture;
    std::string_view dialog;  // its list
    FrameRects rects;
    LetterSize letter;
    FrameColours colours;
};

bool isSet(std::string_view list, std::string_view name) {
    return GETPROPINT(list, name) != 0;
}

void setFont(const Object& window, const std::string& name, int size, bool bold, bool italic) {
    SetFontName(window, name);
    SetFontSize(window, size);
    SetFontBold(window, bold);
    SetFontItalic(window, italic);
}

void setFrameFont(const Object& window) {
    setFont(window, std::string(FRAME_FONT), FRAME_FONT_SIZE, false, false);
}

int atMost(int size, int most) {
    return most > 0 ? std::min(size, most) : size;
}

// The frame and the margins around it, on the screen. The window takes that size, as far as it may.
Rect fitWindow(const Object& window, const DesignPicture& picture, const Rect& frame) {
    const Margin& margin = picture.margin;
    const Rect whole = {0, 0, ZOOMEDPIXELS(window, margin.left + frame.w + margin.right),
                        ZOOMEDPIXELS(window, margin.top + frame.h + margin.bottom)};
    if (!picture.link) return whole;
    const Rect now = GetPosition(window, CLIENT_UNIT);
    const int w = atMost(whole.w, picture.mostWidth), h = atMost(whole.h, picture.mostHeight);
    if (now.w != w || now.h != h) SetPosition(window, CLIENT_UNIT, {now.x, now.y, w, h});
    return whole;
}

// The pixels between its lines; nothing in one direction means no grid.
Rect gridOf(const Painting& p) {
    std::size_t at = 1;
    const int across = GETINT(p.picture.grid, at), down = GETINT(p.picture.grid, at);
    const Rect step = RCUNITSTOPIXELS(p.letter, {0, 0, across, down});
    return step.w > 0 && step.h > 0 ? step : Rect{};
}

// The window's own ground; a little more than the corner where a pixel of the drawing is several there.
void drawCorner(const Painting& p) {
    const Rect& corner = p.picture.corner;
    if (corner.w <= 0 || corner.h <= 0) return;
    const int x = UNZOOMEDPIXELS(p.window, corner.x), y = UNZOOMEDPIXELS(p.window, corner.y);
    DrawControl(p.window, "TYPEOF=Dialog\n", x - p.picture.margin.left, y - p.picture.margin.top,
                UNZOOMEDPIXELS(p.window, corner.x + corner.w) - x + 1,
                UNZOOMEDPIXELS(p.window, corner.y + corner.h) - y + 1);
}

// What a program's window stands on; a design lets its editor's window be seen.
void drawGround(const Painting& p) {
    if (!p.picture.running) return;
    const Rect& all = p.rects.frame;
    DrawControl(p.window, "TYPEOF=Dialog\n", 0, 0, all.w, all.h);
}

void drawGrid(const Painting& p) {
    const Rect step = gridOf(p);
    DRAWCELLS(p.window, p.rects.client, step.w, step.h, GRID_GREY);
}

Rect placeOf(const Painting& p, std::string_view control) {
    const Rect place = RCUNITSTOPIXELS(p.letter, GETPROPPOSITION(control));
    return {p.rects.client.x + place.x, p.rects.client.y + place.y, place.w, place.h};
}

bool takesFocus(std::string_view control) {
    constexpr std::string_view none[] = {"", "Label", "Groupbox", "Progressbar", "Shape", "Icon", "Image"};
    const std::string type = GETPROPVALUE(control, "TYPEOF");
    return std::none_of(std::begin(none), std::end(none),
                        [&](std::string_view n) { return STREQUAL(n, type); });
}

void drawControls(const Painting& p) {
    const ObjectArray& objects = p.picture.dialog;
    const PictureFolders folders = {p.picture.resourceFolder, p.picture.compilerFolder,
                                    p.picture.resourceFile};
    const bool menu = !GETPROPVALUE(p.dialog, "MENU").empty(), grid = gridOf(p).w != 0;
    for (std::size_t i = 1; i < objects.size() && !objects[i].empty(); ++i) {
        if (p.picture.running && GETPROPVALUE(objects[i], "VISIBLE") == "0") continue;
        const bool leads = i + 1 < objects.size() && takesFocus(objects[i + 1]);
        DRAWCONTROL(
            {p.window, placeOf(p, objects[i]), objects[i], folders, menu, leads, grid, p.picture.running});
    }
}

// Null if the picture has no such control.
const std::string* controlOf(const Painting& p, int index) {
    if (index < 2 || static_cast<std::size_t>(index) > p.picture.dialog.size()) return nullptr;
    const std::string& control = p.picture.dialog[static_cast<std::size_t>(index) - 1];
    return control.empty() ? nullptr : &control;
}

// The first selected one above the others.
void drawSelection(const Painting& p) {
    for (const int index : p.picture.others)
        if (const std::string* const control = controlOf(p, index); control != nullptr)
            DRAWHOLLOWHANDLERECT(p.window, placeOf(p, *control), HANDLEPIXELS(p.window), p.colours.selection,
                                 p.colours.hollow);
    if (const std::string* const control = controlOf(p, p.picture.selection); control != nullptr)
        DRAWHANDLERECT(p.window, placeOf(p, *control), HANDLEPIXELS(p.window), p.colours.selection,
                       NO_COLOUR);
}

void drawLocks(const Painting& p) {
    for (const int index : p.picture.locked)
        if (const std::string* const control = controlOf(p, index); control != nullptr)
            DRAWLOCKMARK(p.window, placeOf(p, *control), p.colours.selection, p.colours.hollow);
}

void drawTabOrder(const Painting& p) {
    setFrameFont(p.window);
    for (std::size_t i = 0; i < p.picture.tabOrder.size(); ++i)
        if (const std::string* const control = controlOf(p, p.picture.tabOrder[i]); control != nullptr)
            DRAWNUMBERMARK(p.window, placeOf(p, *control), static_cast<int>(i) + 1, CaptionInk,
                           i < p.picture.clicked ? ClickedGround : CaptionGround);
}

void drawMarks(const Painting& p) {
    if (p.picture.running) return;
    drawLocks(p);
    if (p.picture.tabOrder.empty())
        drawSelection(p);
    else
        drawTabOrder(p);
}

// From the right: close, maximise, minimise. The caption has what is left.
void drawCaptionBar(const Painting& p) {
    const Rect& bar = p.rects.caption;
    if (bar.w <= 0 || bar.h <= 0) return;
    setFrameFont(p.window);
    DRAWCOLOREDRECT(p.window, bar.x, bar.y, bar.x + bar.w - 1, bar.y + bar.h - 1, {.fill = CaptionGround});
    constexpr std::pair<std::string_view, NcButton> buttons[] = {
        {"CLOSEBOX", NcButton::Close}, {"MAXBUTTON", NcButton::Maximise}, {"MINBUTTON", NcButton::Minimise}};
    const int side = bar.h - 2;
    int right = bar.x + bar.w;
    for (const auto& [name, button] : buttons) {
        if (!isSet(p.dialog, name) || right - side - 1 < bar.x) continue;
        right -= side + 1;
        DRAWNCBUTTON(p.window, {right, bar.y + 1, side, side}, button);
    }
    SetForeColour(p.window, CaptionInk);
    SetBackColour(p.window, NO_COLOUR);
    DRAWCONTROLTEXT(p.window, {bar.x + TextInset, bar.y, right - bar.x - 2 * TextInset, bar.h},
                    GETPROPVALUE(p.dialog, "CAPTION"), 0);
}

std::string menuText(const ObjectArray& menu) {
    if (menu[1].empty()) return "<<No Menuitems>>";
    std::string text;
    for (std::size_t i = 1; i < menu.size() && !menu[i].empty(); ++i) {
        if (GETPROPPOSITION(menu[i]).x != 1) continue;
        if (!text.empty()) text += "  ";
        text += SHOWNCAPTION(GETPROPVALUE(menu[i], "CAPTION"));
    }
    return text;
}

void drawMenuBar(const Painting& p) {
    const Rect& bar = p.rects.menu;
    if (bar.w <= 0 || bar.h <= 0) return;
    setFrameFont(p.window);
    SetForeColour(p.window, GRID_GREY);
    DrawLine(p.window, bar.x, bar.y + bar.h - 1, bar.x + bar.w - 1, bar.y + bar.h - 1);
    SetForeColour(p.window, NO_COLOUR);
    SetBackColour(p.window, NO_COLOUR);
    DRAWCONTROLTEXT(p.window, {bar.x + TextInset, bar.y, bar.w - 2 * TextInset, bar.h},
                    menuText(p.picture.menu), 0);
    if (p.picture.selection == -1 && !p.picture.running)
        DRAWHANDLERECT(p.window, bar, HANDLEPIXELS(p.window), p.colours.selection, NO_COLOUR);
}

void drawFrame(const Painting& p) {
    if (p.picture.mode != FULL_FRAME || !isSet(p.dialog, "BORDERSTYLE")) return;
    const int right = p.rects.frame.w - 1, bottom = p.rects.frame.h - 1, inner = p.colours.inner;
    DRAWCOLOREDRECT(p.window, 0, 0, right, bottom, p.colours.outer);
    DRAWCOLOREDRECT(p.window, 2, 2, right - 2, bottom - 2, {inner, inner, inner, inner, NO_COLOUR});
}

bool isDark(const Object& window) {
    const DrawColours colours = GetDrawColours(window);
    return colours == DESKTOP_COLOURS ? DesktopInfo().dark : colours == DARK_COLOURS;
}

}  // namespace

void USEDESIGNFONT(const Object& window, const DesignPicture& picture) {
    FRAME(USEDESIGNFONT);
    const std::string& dialog = picture.dialog[0];
    STAMP();
    setFont(window, GETPROPVALUE(dialog, "FONTNAME"), GETPROPINT(dialog, "FONTSIZE"),
            isSet(dialog, "FONTBOLD"), isSet(dialog, "FONTITALIC"));
    STAMP();
    if (picture.largerFont != 0) SetFontSize(window, FONTPOINTS(window) + picture.largerFont);
    STAMP();
}

Rect FITDESIGN(const Object& window, const DesignPicture& picture) {
    FRAME(FITDESIGN);
    STAMP();
    USEDESIGNFONT(window, picture);
    STAMP();
    return fitWindow(window, picture, CALCOFFSETS(window, picture.dialog[0], picture.mode).frame);
}

void DRAWWINDOW(const Object& window, const DesignPicture& picture) {
    FRAME(DRAWWINDOW);
    const std::string& dialog = picture.dialog[0];
    STAMP();
    USEDESIGNFONT(window, picture);
    STAMP();
    const Painting painting = {window,
                               picture,
                               dialog,
                               CALCOFFSETS(window, dialog, picture.mode),
                               LETTERSIZE(window),
                               isDark(window) ? dark : light};
    STAMP();
    fitWindow(window, picture, painting.rects.frame);
    STAMP();
    StartGraph(window, picture.margin.left, picture.margin.top);
    Clear(window);
    STAMP();
    drawGround(painting);
    drawGrid(painting);
    STAMP();
    drawControls(painting);
    drawMarks(painting);
    STAMP();
    drawCaptionBar(painting);
    drawMenuBar(painting);
    STAMP();
    drawFrame(painting);
    drawCorner(painting);
    EndGraph(window);
}

}  // namespace tarn
