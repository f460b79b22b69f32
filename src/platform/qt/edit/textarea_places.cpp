// SPDX-License-Identifier: GPL-3.0-or-later
//
// Many places of the text at once (platform/operations/textedits.h): replacing them, and marking them.
#include "platform/operations/textedits.h"

#include "platform/qt/edit/textarea.h"

#include <QAccessible>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

constexpr int NearPlaces = 64;  // bytes between changes that are made as one

}  // namespace

// Each place is changed by itself, so that what stands between them is not moved and undo keeps the changes alone; those
// that nearly touch are one, since a change costs more than the few bytes between them. `told`: the control tells of the
// changes. Where the last of them ends, in the text from 0.
int TextArea::changePlaces(const std::vector<TextEdit>& edits, bool told) {
    int shift = 0;  // from a place of the text before to where that stands now
    for (auto edit = edits.begin(); edit != edits.end();) {
        const int first = edit->start;
        int end = first;
        std::string comes;
        do {
            if (edit->start > end) comes += range(end + shift, edit->start - end);
            comes += edit->text;
            end = edit->start + edit->length;
        } while (++edit != edits.end() && edit->start - end <= NearPlaces);
        const Selection place = inControl(first + shift, end - first);
        if (!told && place.length > 0) onRemoval(place.start, place.length);
        if (!told && !comes.empty()) onInsertion(place.start, static_cast<int>(comes.size()));
        put(place.start, place.start + place.length, comes);
        shift += static_cast<int>(comes.size()) - (end - first);
    }
    return edits.back().start - 1 + edits.back().length + shift;
}

// The control's notes of the changes are of use to a screen reader only, and cost more than the changes.
bool TextArea::replaceParts(const std::vector<TextEdit>& edits) {
    flush();
    const bool fits = !rows().on() || std::all_of(edits.begin(), edits.end(), [this](const TextEdit& edit) {
        return rows().fits(edit.text);
    });
    if (!fits || makesEndless(edits)) return false;
    free_ = true;
    const long mask = send(SCI_GETMODEVENTMASK);
    const bool heard = QAccessible::isActive(), before = blockSignals(!heard);
    if (!heard) send(SCI_SETMODEVENTMASK, 0);
    send(SCI_SETREADONLY, 0);
    send(SCI_SETLAYOUTCACHE, SC_CACHE_NONE);  // which each change would go through
    send(SCI_BEGINUNDOACTION);
    const int end = changePlaces(edits, heard);
    send(SCI_ENDUNDOACTION);
    send(SCI_SETLAYOUTCACHE, SC_CACHE_PAGE);
    send(SCI_SETMODEVENTMASK, mask);
    blockSignals(before);
    send(SCI_SETEMPTYSELECTION, rows().toControl(end, false));
    send(SCI_SETREADONLY, (flags_ & READONLY) != 0);
    send(SCI_SCROLLCARET);
    free_ = false;
    settle();
    applyNumberBar();
    emit moved();
    return true;
}

void TextArea::setMarks(const std::vector<Selection>& places) {
    send(SCI_SETINDICATORCURRENT, MarkIndicator);
    send(SCI_INDICATORCLEARRANGE, 0, size());
    for (const Selection& mark : places) {
        const Selection place = inControl(mark.start, mark.length);
        send(SCI_INDICATORFILLRANGE, place.start, place.length);
    }
}

// Places that touch each other are one.
std::vector<Selection> TextArea::marks() const {
    std::vector<Selection> places;
    const int last = size();
    for (int at = 0; at < last;) {
        const int end = static_cast<int>(send(SCI_INDICATOREND, MarkIndicator, at));
        if (end <= at) break;  // there are no marks at all
        if (send(SCI_INDICATORVALUEAT, MarkIndicator, at) != 0) {
            const int from = rows().toText(at) + 1, length = rows().toText(end) + 1 - from;
            if (!places.empty() && places.back().start + places.back().length == from)
                places.back().length += length;
            else if (length > 0)
                places.push_back({from, length});
        }
        at = end;
    }
    return places;
}

}  // namespace tarn::platform::qt
