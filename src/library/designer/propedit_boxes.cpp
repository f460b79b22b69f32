// SPDX-License-Identifier: Apache-2.0
//
// The windows in which a colour, one of a list, or some of a list are chosen.
#include "library/designer/propedit_boxes_internal.h"

#include "library/designer/propedit.h"
#include "library/designer/propedit_options_internal.h"
#include "library/designer/propedit_sheet.h"
#include "library/dialogs/dialogshape.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("propedit", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

using detail::BoxPlace;

namespace {

using Lines = std::vector<std::string_view>;

// ---- what the three windows have in common ----

bool open(const Object& box, WindowFunction function, const BoxPlace& place) {
    RegisterWindow(box, function);
    Load(box);
    if (!IsLoaded(box)) return false;
    SetCaption(box, place.title);
    return true;
}

// The client area becomes w by h, its frame is brought to the place and onto the screen.
void putAt(const Object& box, const BoxPlace& place, int w, int h) {
    const Rect client = GetPosition(box, CLIENT_UNIT), frame = GetPosition(box, WINDOW_UNIT);
    const Rect screen = ScreenSize();
    Rect at = {place.x, place.y, w + frame.w - client.w, h + frame.h - client.h};
    at.x = std::max(std::min(at.x, screen.x + screen.w - at.w), screen.x);
    at.y = std::max(std::min(at.y, screen.y + screen.h - at.h), screen.y);
    SetPosition(box, WINDOW_UNIT, at);
}

// True if the user has taken something; the window is still loaded then.
bool taken(const Object& box) {
    Show(box, true);
    return IsLoaded(box);
}

int widest(const Object& box, const Lines& lines) {
    int width = 0;
    for (const std::string_view line : lines) width = std::max(width, TextWidth(box, line));
    return width;
}

// ---- colours ----

constexpr int coloursInRow = 8, colours = static_cast<int>(BasicColours.size());

Object colourButton(const Object& box, int n) {
    return ControlElement(FINDCONTROL(box, "btncolour1"), n);
}

// Which colour is marked: the one that the label names.
int markedColour(const Object& box) {
    const int colour = detail::numberOf(GetCaption(FINDCONTROL(box, "lblcolour"))).value_or(0);
    const auto* const found =
        std::find(BasicColours.begin(), BasicColours.end(), static_cast<std::uint32_t>(colour));
    return found == BasicColours.end() ? 1 : static_cast<int>(found - BasicColours.begin()) + 1;
}

void markColour(const Object& box, int n) {
    SetCaption(FINDCONTROL(box, "lblcolour"),
               "0x" + HEXSTR(BasicColours[static_cast<std::size_t>(n - 1)], 6));
    constexpr int gap = 2;  // pixels
    const Rect button = GetPosition(colourButton(box, n), CLIENT_UNIT);
    SetPosition(FINDCONTROL(box, "shpmark"), CLIENT_UNIT,
                Rect{button.x - gap, button.y - gap, button.w + 2 * gap, button.h + 2 * gap});
}

bool colourKey(const Object& box, int key) {
    const int before = markedColour(box), row = (before - 1) / coloursInRow;
    int n = before;
    switch (key) {
    case KEY_ESCAPE: Unload(box); return true;
    case KEY_RETURN: Hide(box); return true;
    case KEY_LEFT: n = before - 1; break;
    case KEY_RIGHT: n = before + 1; break;
    case KEY_UP: n = row > 0 ? before - coloursInRow : before; break;
    case KEY_DOWN: n = row == 0 ? before + coloursInRow : before; break;
    default: return false;
    }
    if (n == before || n < 1 || n > colours) {
        Sound();
        return true;
    }
    markColour(box, n);
    return true;
}

}  // namespace

bool COLORBOXDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(COLORBOXDLG);
    STAMP();
    bool result = false;
    if (event == KEYPRESS_EVENT) result = colourKey(window, parameter);
    if (event == COMMAND_EVENT && !control.isWindow()) {
        markColour(window, Controlarraypos(control));
        Hide(window);
        result = true;
    }
    STAMP();
    return result;
}

std::optional<int> detail::chooseBasicColour(const BoxPlace& place, int colour) {
    FRAME(chooseBasicColour);
    STAMP();
    if (!open(ColorBoxDlg, COLORBOXDLG, place)) return std::nullopt;
    STAMP();
    SetCaption(FINDCONTROL(ColorBoxDlg, "lblcolour"), "0x" + HEXSTR(static_cast<std::uint32_t>(colour), 6));
    markColour(ColorBoxDlg, markedColour(ColorBoxDlg));
    const Rect client = GetPosition(ColorBoxDlg, CLIENT_UNIT);
    putAt(ColorBoxDlg, place, client.w, client.h);
    STAMP();
    if (!taken(ColorBoxDlg)) return std::nullopt;
    const std::optional<int> answer = numberOf(GetCaption(FINDCONTROL(ColorBoxDlg, "lblcolour")));
    STAMP();
    Unload(ColorBoxDlg);
    STAMP();
    return answer;
}

// ---- one of a list ----

namespace {

// A row is taken by Return and by a double click.
void takeRow(const Object& box) {
    if (GetListIndex(FINDCONTROL(box, "lstoptions")) > 0)
        Hide(box);
    else
        Sound();
}

bool rowKey(const Object& box, int key) {
    if (key == KEY_ESCAPE)
        Unload(box);
    else if (key == KEY_RETURN)
        takeRow(box);
    else
        return false;
    return true;
}

// As large as the lines need, and no larger than half the screen.
void fitList(const Object& box, const BoxPlace& place, const Lines& lines) {
    const Object list = FINDCONTROL(box, "lstoptions");
    const Rect screen = ScreenSize();
    const int letter = TextHeight(box, "X"), rowHeight = letter + letter / 8, edges = letter / 2;
    const int count = static_cast<int>(lines.size());
    // Room for a scroll bar beside the lines, and for the buttons beside the title.
    const int width = std::max(widest(box, lines) + 3 * letter, TextWidth(box, place.title) + 10 * letter);
    const int most = std::max(screen.h / 2 / rowHeight, 1);
    const Rect at = {0, 0, std::min(width, screen.w / 2), std::min(count, most) * rowHeight + edges};
    SetPosition(list, CLIENT_UNIT, at);
    putAt(box, place, at.w, at.h);
}

}  // namespace

bool EXCLUSIVEBOXDLG(const Object& window, int event, const Object&, int parameter) {
    FRAME(EXCLUSIVEBOXDLG);
    STAMP();
    bool result = true;
    switch (event) {
    case KEYPRESS_EVENT: result = rowKey(window, parameter); break;
    case DBLCLICK_EVENT: takeRow(window); break;
    default: result = false;
    }
    STAMP();
    return result;
}

std::optional<int> detail::chooseLine(const BoxPlace& place, const Lines& lines, int selected) {
    FRAME(chooseLine);
    STAMP();
    if (!open(ExclusiveBoxDlg, EXCLUSIVEBOXDLG, place)) return std::nullopt;
    STAMP();
    const Object list = FINDCONTROL(ExclusiveBoxDlg, "lstoptions");
    for (const std::string_view line : lines) AddItem(list, line);
    fitList(ExclusiveBoxDlg, place, lines);
    SetListIndex(list, selected);
    STAMP();
    if (!taken(ExclusiveBoxDlg)) return std::nullopt;
    const int row = GetListIndex(list);
    STAMP();
    Unload(ExclusiveBoxDlg);
    STAMP();
    return row;
}

// ---- some of a list ----

namespace {

Object optionBox(const Object& box, int n) {
    return ControlElement(FINDCONTROL(box, "chkoption1"), n);
}

constexpr DialogShape bitsShape = {.ok = "idok", .cancel = "idcancel", .help = "", .hides = true};

int bitsOf(std::string_view line) {
    return detail::leadingNumberOf(line).value_or(0);
}

// The check boxes of the lines in a column, the buttons below it.
void fitBits(const Object& box, const BoxPlace& place, const Lines& lines, int count) {
    const Object ok = FINDCONTROL(box, "idok"), cancel = FINDCONTROL(box, "idcancel");
    const Rect first = GetPosition(optionBox(box, 1), CLIENT_UNIT);
    const Rect last = GetPosition(optionBox(box, std::max(count, 1)), CLIENT_UNIT);
    Rect left = GetPosition(ok, CLIENT_UNIT), right = GetPosition(cancel, CLIENT_UNIT);
    const int gap = right.x - left.x - left.w, mark = 3 * first.h / 2;
    const int column = std::max(widest(box, lines) + mark, 2 * left.w + gap);
    const int width = column + 2 * first.x;
    right.x = width - first.x - right.w;
    left.x = right.x - gap - left.w;
    left.y = right.y = last.y + last.h + first.y;
    SetPosition(ok, CLIENT_UNIT, left);
    SetPosition(cancel, CLIENT_UNIT, right);
    for (int n = 1; n <= count; ++n) {
        Rect at = GetPosition(optionBox(box, n), CLIENT_UNIT);
        at.w = column;
        SetPosition(optionBox(box, n), CLIENT_UNIT, at);
    }
    putAt(box, place, width, left.y + left.h + first.y);
}

void showBits(const Object& box, const Lines& lines, int count, int bits) {
    for (int n = 1; n <= count; ++n) {
        const std::string_view line = lines[static_cast<std::size_t>(n - 1)];
        SetCaption(optionBox(box, n), STRREPLACE(line, "&", "&&"));
        SetChecked(optionBox(box, n), (bits & bitsOf(line)) == bitsOf(line));
        SetVisible(optionBox(box, n), true);
    }
}

}  // namespace

bool INCLUSIVEBOXDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(INCLUSIVEBOXDLG);
    STAMP();
    return DIALOGSHAPEEVENT(bitsShape, window, event, control, parameter);
}

std::optional<int> detail::chooseBits(const BoxPlace& place, const Lines& lines, int bits) {
    FRAME(chooseBits);
    STAMP();
    if (!open(InclusiveBoxDlg, INCLUSIVEBOXDLG, place)) return std::nullopt;
    STAMP();
    const int boxes = ControlUbound(FINDCONTROL(InclusiveBoxDlg, "chkoption1"));
    const int count = std::min(static_cast<int>(lines.size()), boxes);
    showBits(InclusiveBoxDlg, lines, count, bits);
    fitBits(InclusiveBoxDlg, place, lines, count);
    STAMP();
    if (!taken(InclusiveBoxDlg)) return std::nullopt;
    int chosen = 0;
    for (int n = 1; n <= count; ++n)
        if (GetChecked(optionBox(InclusiveBoxDlg, n)))
            chosen |= bitsOf(lines[static_cast<std::size_t>(n - 1)]);
    STAMP();
    Unload(InclusiveBoxDlg);
    STAMP();
    return chosen;
}

}  // namespace tarn
