// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/commdlgs.h"

#include "library/system/system.h"
#include "os/process.h"

#include <algorithm>

MODULE("commdlgs")

namespace tarn {
namespace {

constexpr int Patience = 3000;    // milliseconds that the window is looked at
constexpr int Margin = 36;        // pixels between the window's edge and the lines
constexpr int Bands = 4;          // each line has this part of the height inside
constexpr int ShadowDepth = 4;    // pixels to the right and down
constexpr int LargestFont = 144;  // points

constexpr int rgb(int red, int green, int blue) {
    return red | green << 8 | blue << 16;
}
constexpr int TextColour = rgb(240, 170, 50), ShadowColour = rgb(60, 50, 10);
constexpr int GroundColour = rgb(29, 53, 87);  // where there is no picture

Object buttonOf(int number) {
    return FINDCONTROL(SplashDlg, "pushbutton" + std::to_string(number));
}

// The window is only hidden, so that the caption can be read after its modal Show.
bool splashDlg(const Object& window, int event, const Object& control, int parameter) {
    switch (event) {
    case COMMAND_EVENT:
        SetCaption(FINDCONTROL(window, "lblselectedbutton"), GetCaption(control));
        Hide(window);
        return true;
    case KEYPRESS_EVENT:
        if (parameter != KEY_ESCAPE || !IsModal(window)) return false;
        Hide(window);  // it has no frame with a box to close it
        return true;
    default: return false;
    }
}

void centre(int width, int height) {
    const Rect page = ScreenSize();
    SetPosition(SplashDlg, WINDOW_UNIT,
                {page.x + (page.w - width) / 2, page.y + (page.h - height) / 2, width, height});
}

void drawGround() {
    const Rect own = GetPosition(SplashDlg, CLIENT_UNIT);
    centre(own.w, own.h);
    StartGraph(SplashDlg);
    SetForeColour(SplashDlg, GroundColour);
    SetBackColour(SplashDlg, GroundColour);
    DrawShape(SplashDlg, RECTANGLE_SHAPE, 0, 0, own.w, own.h);
    EndGraph(SplashDlg);
}

void drawPicture(const std::string& file, const Picture& picture) {
    centre(picture.width, picture.height);
    const std::string sharp = FILECHANGEEXT(file, ".svg");
    const bool isSharp = platform::LoadPicture(sharp).code == platform::Ok;
    StartGraph(SplashDlg);
    DrawPicture(SplashDlg, isSharp ? sharp : file, 0, 0, picture.width, picture.height);
    EndGraph(SplashDlg);
}

void drawLine(const std::string& line, const Rect& band) {
    SetFontSize(SplashDlg, GETBIGGESTFONTSIZE(SplashDlg, line, band.w, band.h));
    for (int shift = 1; shift <= ShadowDepth; shift++)
        SPLASHDLG_DRAWTEXT(line, band.x + shift, band.y + shift, ShadowColour);
    SPLASHDLG_DRAWTEXT(line, band.x, band.y, TextColour);
}

void disableStarred(const std::string& buttons) {
    for (int i = 1; !buttonOf(i).empty(); i++)
        if (STRLINE(buttons, i).starts_with('*')) SetEnabled(buttonOf(i), false);
}

}  // namespace

void SPLASHDLG_LOAD(const std::string& captions) {
    FRAME(SPLASHDLG_LOAD);
    STAMP();
    RegisterWindow(SplashDlg, splashDlg);
    Load(SplashDlg);
    STAMP();
    Clear(SplashDlg);
    SetCaption(FINDCONTROL(SplashDlg, "lblselectedbutton"), "");
    for (int i = 1; !buttonOf(i).empty(); i++) {
        const std::string caption = STRLINE(captions, i);
        SetCaption(buttonOf(i), caption);
        SetEnabled(buttonOf(i), true);
        SetVisible(buttonOf(i), !caption.empty());
    }
    STAMP();
}

void SPLASHDLG_DRAWBMP(const std::string& file) {
    FRAME(SPLASHDLG_DRAWBMP);
    STAMP();
    const platform::Answer<Picture> picture = platform::LoadPicture(file);
    if (picture.code == platform::Ok)
        drawPicture(file, picture.value);
    else
        drawGround();
    STAMP();
    AlignItems(SplashDlg);
}

void SPLASHDLG_DRAWTEXT(const std::string& text, int x, int y, int colour) {
    FRAME(SPLASHDLG_DRAWTEXT);
    STAMP();
    SetForeColour(SplashDlg, colour);
    SetCurrentX(SplashDlg, x);
    SetCurrentY(SplashDlg, y);
    DrawTextstr(SplashDlg, text);
}

void SPLASHDLG_SPLASHTEXT(const std::string& line1, const std::string& line2, const std::string& line3) {
    FRAME(SPLASHDLG_SPLASHTEXT);
    STAMP();
    const Rect own = GetPosition(SplashDlg, CLIENT_UNIT);
    Rect band = {Margin, Margin, own.w - 2 * Margin, (own.h - 2 * Margin) / Bands};
    StartGraph(SplashDlg);
    STAMP();
    SetFontName(SplashDlg, "Arial");
    SetFontBold(SplashDlg, true);
    SetFontItalic(SplashDlg, true);
    for (const std::string* line : {&line1, &line2, &line3}) {
        drawLine(*line, band);
        band.y += band.h;
    }
    EndGraph(SplashDlg);
    STAMP();
}

std::string SPLASHDLG_SHOW(bool modal) {
    FRAME(SPLASHDLG_SHOW);
    STAMP();
    Show(SplashDlg, modal);
    STAMP();
    if (!modal || !IsLoaded(SplashDlg)) return "";
    return GetCaption(FINDCONTROL(SplashDlg, "lblselectedbutton"));
}

std::string SPLASHDLG_SHOWWITHBUTTONS(const std::string& buttons) {
    FRAME(SPLASHDLG_SHOWWITHBUTTONS);
    const std::string product(ProductWord);
    STAMP();
    SPLASHDLG_LOAD(STRREPLACE(buttons, "*", ""));
    STAMP();
    SPLASHDLG_DRAWBMP(os::executableFolder() + "logo.bmp");
    STAMP();
    SPLASHDLG_SPLASHTEXT(product, "Developer Studio", product + " v" + std::string(ProductVersion));
    STAMP();
    disableStarred(buttons);
    STAMP();
    const std::string pressed = SPLASHDLG_SHOW(!buttons.empty());
    STAMP();
    if (buttons.empty()) WaitEvents(Patience, true);
    return pressed;
}

void SPLASHDLG_UNLOAD() {
    FRAME(SPLASHDLG_UNLOAD);
    STAMP();
    if (IsLoaded(SplashDlg)) Unload(SplashDlg);
}

int GETBIGGESTFONTSIZE(const Object& window, const std::string& text, int width, int height) {
    FRAME(GETBIGGESTFONTSIZE);
    STAMP();
    const int before = GetFontSize(window);
    const auto fits = [&](int size) {
        SetFontSize(window, size);
        return TextHeight(window, text) <= height && TextWidth(window, text) <= width;
    };
    // No letter of a size in points is less high in pixels on any screen.
    int low = 1, high = std::clamp(height, 1, LargestFont);
    while (low < high) {
        const int size = (low + high + 1) / 2;
        if (fits(size))
            low = size;
        else
            high = size - 1;
    }
    SetFontSize(window, before);
    return low;
}

}  // namespace tarn
