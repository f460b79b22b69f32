// SPDX-License-Identifier: GPL-3.0-or-later
//
// The room in a dialog: controls that cover each other or reach out of it, and captions that are cut off.
#include "ide/designer/check/dlgcheck_internal.h"
#include "ide/designer/drawing/geometry.h"
#include "library/system/system.h"

#include <algorithm>
#include <cstdint>

MODULE("dlgcheck")

namespace tarn::detail {

// ---- places ----

namespace {

std::int64_t right(const UnitRect& at) {
    return std::int64_t{at.x} + at.w;
}
std::int64_t bottom(const UnitRect& at) {
    return std::int64_t{at.y} + at.h;
}

bool isEmpty(const UnitRect& at) {
    return at.w <= 0 || at.h <= 0;
}

// Boxes stand around controls, and pictures may lie behind them.
bool isGround(const CheckedObject& control) {
    return control.isA("Groupbox") || control.isA("Image");
}

// One covers a part of the other that its user would see. Shapes are there to be drawn upon.
bool collide(const CheckedObject& a, const UnitRect& at, const CheckedObject& b) {
    if (a.isA("Shape") || b.isA("Shape") || !overlaps(at, b.at)) return false;
    return !(isGround(a) && contains(at, b.at)) && !(isGround(b) && contains(b.at, at));
}

}  // namespace

bool overlaps(const UnitRect& a, const UnitRect& b) {
    return !isEmpty(a) && !isEmpty(b) && a.x < right(b) && b.x < right(a) && a.y < bottom(b) &&
           b.y < bottom(a);
}

bool contains(const UnitRect& outer, const UnitRect& inner) {
    return inner.x >= outer.x && inner.y >= outer.y && right(inner) <= right(outer) &&
           bottom(inner) <= bottom(outer);
}

bool isFree(const CheckedDialog& dialog, const CheckedObject& control, const UnitRect& place) {
    const UnitRect& client = dialog.dialog.at;
    if (!contains({0, 0, client.w, client.h}, place)) return false;
    return std::none_of(dialog.controls.begin(), dialog.controls.end(), [&](const CheckedObject& other) {
        return other.index != control.index && collide(control, place, other) &&
               !collide(control, control.at, other);
    });
}

namespace {

void checkInside(const CheckedDialog& dialog, const CheckedObject& control, Findings& findings) {
    const UnitRect& client = dialog.dialog.at;
    if (isEmpty(client) || isEmpty(control.at) || contains({0, 0, client.w, client.h}, control.at)) return;
    UnitRect place = control.at;
    place.x = std::max(std::min(place.x, client.w - place.w), 0);
    place.y = std::max(std::min(place.y, client.h - place.h), 0);
    findings.push_back(
        {false, control.index,
         control.told() + " reaches out of the window. Move it inside, or make the window larger.",
         isFree(dialog, control, place) ? control.movedTo(place) : std::string()});
}

}  // namespace

void checkPlaces(const CheckedDialog& dialog, Findings& findings) {
    for (std::size_t n = 0; n < dialog.controls.size(); ++n) {
        const CheckedObject& control = dialog.controls[n];
        checkInside(dialog, control, findings);
        const auto below =
            std::find_if(dialog.controls.begin(), dialog.controls.begin() + static_cast<std::ptrdiff_t>(n),
                         [&](const CheckedObject& other) { return collide(control, control.at, other); });
        if (below == dialog.controls.begin() + static_cast<std::ptrdiff_t>(n)) continue;
        findings.push_back({false, control.index,
                            control.told() + " covers a part of " + below->told() + ". Move one of them.",
                            ""});
    }
}

// ---- captions ----

namespace {

// The letters in which the dialog is shown, a number of times as large. The window's own come back at the end.
class Letters {
public:
    Letters(const Object& window, const CheckedObject& dialog) : window_(window) {
        const std::string name = GETPROPVALUE(dialog.list, "FONTNAME");
        StartGraph(window);
        if (!name.empty()) SetFontName(window, name);
        SetFontBold(window, GETPROPINT(dialog.list, "FONTBOLD") != 0);
        SetFontItalic(window, GETPROPINT(dialog.list, "FONTITALIC") != 0);
        SetFontSize(window, GETPROPINT(dialog.list, "FONTSIZE"));
        points_ = FONTPOINTS(window);
    }
    ~Letters() { EndGraph(window_); }
    Letters(const Letters&) = delete;
    Letters& operator=(const Letters&) = delete;

    void scale(int percent, int more) {
        SetFontSize(window_, (points_ * percent + 50) / 100 + more);
        size_ = LETTERSIZE(window_);
        line_ = TextHeight(window_, "X");
    }
    [[nodiscard]] const LetterSize& size() const { return size_; }
    [[nodiscard]] int line() const { return line_; }
    [[nodiscard]] int width(std::string_view text) const { return TextWidth(window_, text); }

private:
    const Object& window_;
    int points_ = 0, line_ = 0;
    LetterSize size_;
};

// What is seen of the caption.
std::string shownCaption(std::string_view caption) {
    std::string shown;
    for (std::size_t at = 0; at < caption.size(); ++at) {
        if (caption[at] == '&' && at + 1 < caption.size()) ++at;
        shown += caption[at];
    }
    return shown;
}

// How many lines the text takes, and how wide the widest is that cannot be broken.
struct TextSize {
    int lines = 0, widest = 0;
};

void addLine(const Letters& letters, std::string_view line, int room, TextSize& size) {
    const int blank = letters.width(" ");
    int used = 0;
    ++size.lines;
    while (!line.empty()) {
        const std::size_t end = std::min(line.find(' '), line.size());
        const int word = letters.width(line.substr(0, end));
        size.widest = std::max(size.widest, word);
        if (used > 0 && used + blank + word > room) {
            ++size.lines;
            used = 0;
        }
        used += (used > 0 ? blank : 0) + word;
        line.remove_prefix(std::min(end + 1, line.size()));
    }
}

TextSize broken(const Letters& letters, std::string_view text, int room) {
    TextSize size;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        addLine(letters, text.substr(at, end - at), room, size);
        at = end + 1;
    }
    return size;
}

int widestLine(const Letters& letters, std::string_view text) {
    int widest = 0;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        widest = std::max(widest, letters.width(text.substr(at, end - at)));
        at = end + 1;
    }
    return widest;
}

// By how many pixels the caption is too wide; a label of more than a line is broken between words.
int excess(const Letters& letters, const CheckedObject& control, std::string_view text) {
    const Rect pixels = RCUNITSTOPIXELS(letters.size(), control.at);
    const int room = pixels.w - control.is.lettersBeside * letters.size().width;
    const bool breaks = control.isA("Label") && pixels.h > letters.line() * 3 / 2;
    if (!breaks) return widestLine(letters, text) - room;
    const TextSize size = broken(letters, text, room);
    if (size.lines * letters.line() <= pixels.h) return size.widest - room;
    return std::max(letters.width(text) - room, 1);
}

constexpr struct {
    int percent, more;
    const char* text;
} scales[] = {
    {100, 0, "at 100 %"}, {150, 0, "at 150 %"}, {200, 0, "at 200 %"}, {100, 1, "in a font a step larger"}};

struct Cut {
    const char* where = nullptr;  // the first scale at which it is
    int wider = 0;                // resource units that it lacks, at any
};

void addCut(const CheckedDialog& dialog, const CheckedObject& control, const Cut& cut, Findings& findings) {
    UnitRect place = control.at;
    place.w += cut.wider;
    findings.push_back({false, control.index,
                        "The caption of " + control.told() + " is cut off " + cut.where + ". Make it " +
                            STR(cut.wider) + " units wider, or its caption shorter.",
                        isFree(dialog, control, place) ? control.movedTo(place) : std::string()});
}

}  // namespace

void checkRoom(const Object& window, const CheckedDialog& dialog, Findings& findings) {
    FRAME(checkRoom);
    STAMP();
    if (!IsLoaded(window) || GetTypeof(window) != "Dialog") return;
    std::vector<Cut> cuts(dialog.controls.size());
    Letters letters(window, dialog.dialog);
    for (const auto& scale : scales) {
        STAMP();
        letters.scale(scale.percent, scale.more);
        if (letters.size().width <= 0 || letters.line() <= 0) return;
        for (std::size_t n = 0; n < cuts.size(); ++n) {
            const CheckedObject& control = dialog.controls[n];
            if (!control.is.hasCaption || control.caption.empty() || isEmpty(control.at)) continue;
            const int pixels = excess(letters, control, shownCaption(control.caption));
            if (pixels <= 0) continue;
            if (cuts[n].where == nullptr) cuts[n].where = scale.text;
            cuts[n].wider =
                std::max(cuts[n].wider, (pixels * 4 + letters.size().width - 1) / letters.size().width);
        }
    }
    STAMP();
    for (std::size_t n = 0; n < cuts.size(); ++n)
        if (cuts[n].where != nullptr) addCut(dialog, dialog.controls[n], cuts[n], findings);
}

}  // namespace tarn::detail
