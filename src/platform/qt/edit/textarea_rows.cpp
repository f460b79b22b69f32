// SPDX-License-Identifier: GPL-3.0-or-later
//
// Endless lines (rows.h): when the text gets rows, how its positions become those of the control, and the keys that
// erase across the end of a row.
#include "platform/operations/textedits.h"
#include "platform/qt/edit/textarea.h"

#include <algorithm>
#include <utility>

namespace tarn::platform::qt {

const Rows& TextArea::rows() const {
    if (const Selection now = std::exchange(arrived_, Selection{0, 0}); now.length > 0) {
        const int end = now.start + now.length;
        parts_.inserted(now.start, view(now.start, end), static_cast<char>(send(SCI_GETCHARAT, end)));
    }
    return parts_;
}

Selection TextArea::inControl(int start, int length) const {
    const int size = this->length();
    const int begin = std::clamp(start - 1, 0, size), end = begin + std::clamp(length, 0, size - begin);
    const int from = rows().toControl(begin, true), to = end > begin ? rows().toControl(end, false) : from;
    return {from, to - from};
}

std::string_view TextArea::inRows(int at, std::string_view text, std::string& store) {
    if (!rows().on()) {
        const int line = lineOf(at);
        const bool grows = text.find_first_of("\r\n") == std::string_view::npos &&
                           send(SCI_LINELENGTH, line) + static_cast<long>(text.size()) > Rows::LongLine;
        const bool whole =
            lineOf(size()) == 0;  // there is no line end that those in it would have to be like
        if (!grows && !Rows::needed(text)) return text;
        if (!Rows::possible(view(0, size())) || !Rows::possible(text)) return text;
        parts_.start(whole ? text : view(0, size()));
        if (!parts_.fits(text)) return parts_.stop(), text;
        forgetOddSteps();
        digits_ = 0;
        applyNumberBar();
        applyLooks();
    }
    store = parts_.parted(text);
    return store;
}

// Undoing what had line ends of another kind would bring back returns that rows take for their own.
void TextArea::forgetOddSteps() {
    applyMarks();
    const int own = parts_.pairs() ? ENDS_CRLF : ENDS_LF;
    if ((kinds_ & ~(1 << own | 1 << ENDS_NONE)) == 0) return;
    marked_ = modified();
    send(SCI_EMPTYUNDOBUFFER);
    kinds_ = 0;
}

bool TextArea::reloads(int start, int length, std::string_view text) {
    if (!rows().on() || rows().fits(text)) return false;
    std::string all = bytes();
    all.replace(static_cast<std::size_t>(start - 1), static_cast<std::size_t>(length), text);
    setBytes(all);
    setModified(true);
    return true;
}

// Whether a line could become endless, or a row too long, and need to be parted.
bool TextArea::makesEndless(const std::vector<TextEdit>& edits) const {
    int line = -1;
    long length = 0;
    for (const TextEdit& edit : edits) {
        const int at = lineOf(rows().toControl(edit.start - 1, true));
        if (at != line) length = send(SCI_LINELENGTH, line = at);
        length += static_cast<long>(edit.text.size());
        if (!edit.text.empty() && length > Rows::LongLine)
            return rows().on() || Rows::possible(view(0, size()));
    }
    return false;
}

// What stands between two rows is not there for the user: erasing it erases the character behind it too.
bool TextArea::eraseInRows(int key) {
    const bool back = key == Qt::Key_Backspace;
    if ((!back && key != Qt::Key_Delete) || selection().length > 0 || send(SCI_GETSELECTIONS) > 1)
        return false;
    const int caret = static_cast<int>(send(SCI_GETCURRENTPOS));
    send(SCI_BEGINUNDOACTION);
    if (rows().isAdded(back ? caret - 1 : caret)) send(back ? SCI_DELETEBACK : SCI_CLEAR);
    send(back ? SCI_DELETEBACK : SCI_CLEAR);
    send(SCI_ENDUNDOACTION);
    return true;
}

}  // namespace tarn::platform::qt
