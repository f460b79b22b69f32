// SPDX-License-Identifier: GPL-3.0-or-later
//
// The blocks of an edit window. Each line keeps the depth at its end as the control's state of the line, so that a
// change is followed from its line until the depths are what they were; what is far from the change is followed in
// the time that is left. Cost: of a key its line; of a whole text a few thousand lines at a time.
#include "platform/qt/edit/textarea.h"

#include <QTimer>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

constexpr int AtOnce = 200, InPieces = 4000;  // lines

}  // namespace

void TextArea::setBlocks(std::string_view rules) {
    blocks_ = BlockRules(rules);
    applyLooks();
    scanned_ = false;
    scanLater(0, lineOf(size()));
}

void TextArea::foldAll(bool folded) {
    while (scanFrom_ >= 0) scanBlocks(InPieces);
    send(SCI_FOLDALL, folded ? SC_FOLDACTION_CONTRACT : SC_FOLDACTION_EXPAND);
    if (!folded) return;
    // The caret goes to the line that is left of its block.
    long line = lineOf(static_cast<int>(send(SCI_GETCURRENTPOS)));
    while (line > 0 && send(SCI_GETLINEVISIBLE, line) == 0) line = send(SCI_GETFOLDPARENT, line);
    if (line >= 0 && line != lineOf(static_cast<int>(send(SCI_GETCURRENTPOS))))
        send(SCI_GOTOPOS, startOfLine(static_cast<int>(line)));
    send(SCI_SCROLLCARET);
    emit moved();  // the control itself tells only when it paints
}

void TextArea::setFolds(const std::vector<int>& lines) {
    while (scanFrom_ >= 0) scanBlocks(InPieces);
    send(SCI_FOLDALL, SC_FOLDACTION_EXPAND);
    for (const int line : lines)
        if (line > 0 && (send(SCI_GETFOLDLEVEL, line - 1) & SC_FOLDLEVELHEADERFLAG) != 0)
            send(SCI_FOLDLINE, line - 1, SC_FOLDACTION_CONTRACT);
    emit moved();  // the control itself tells only when it paints
}

std::vector<int> TextArea::folds() const {
    std::vector<int> lines;
    for (long line = send(SCI_CONTRACTEDFOLDNEXT, 0); line >= 0; line = send(SCI_CONTRACTEDFOLDNEXT, line + 1))
        lines.push_back(static_cast<int>(line) + 1);
    return lines;
}

void TextArea::showLine(int line) {
    if (send(SCI_GETALLLINESVISIBLE) == 0 && send(SCI_GETLINEVISIBLE, line) == 0)
        send(SCI_ENSUREVISIBLE, line);
}

// The line in front is looked at too: whether a comment goes on.
void TextArea::scanLater(int first, int last) {
    if (blocks_.empty() || (looks_ & LOOK_FOLDS) == 0 || parts_.on()) return;
    first = std::max(first - 1, 0);
    scanFrom_ = scanFrom_ < 0 ? first : std::min(scanFrom_, first);
    scanTo_ = std::max(scanTo_, last + 1);
    if (scanning_) return;
    scanning_ = true;
    QTimer::singleShot(0, this, [this] {
        scanning_ = false;
        scanBlocks(scanTo_ - scanFrom_ > AtOnce ? InPieces : AtOnce);
    });
}

void TextArea::scanBlocks(int most) {
    if (scanFrom_ < 0) return;
    const int lines = static_cast<int>(send(SCI_GETLINECOUNT));
    int line = scanFrom_;
    bool goesOn = true;
    for (; line < lines && goesOn && most > 0; ++line, --most) {
        const bool same = scanLine(line);
        goesOn = line < scanTo_ || !same;
    }
    const int last = scanTo_;
    scanFrom_ = scanTo_ = -1;
    if (goesOn && line < lines) scanLater(line, std::max(line, last));
}

// Finds the depth of a line anew; true if it ends as it did.
bool TextArea::scanLine(int line) {
    const auto comment = [this](int other) {
        if (other < 0 || other >= send(SCI_GETLINECOUNT)) return false;
        const int from = startOfLine(other);
        return blocks_.scan(view(from, std::min(startOfLine(other + 1), from + 256)), 0).comment;
    };
    const int depth = line == 0 ? 0 : static_cast<int>(send(SCI_GETLINESTATE, line - 1));
    const BlockRules::Line found = blocks_.scan(view(startOfLine(line), startOfLine(line + 1)), depth);
    int level = found.start;
    bool head = found.end > found.start;
    if (found.comment) {
        const bool before = comment(line - 1);
        level += before ? 1 : 0;
        head = !before && comment(line + 1);
    }
    const long wanted = (long(SC_FOLDLEVELBASE) + level) | (head ? long(SC_FOLDLEVELHEADERFLAG) : 0);
    if (send(SCI_GETFOLDLEVEL, line) != wanted) send(SCI_SETFOLDLEVEL, line, wanted);
    const bool same = scanned_ && send(SCI_GETLINESTATE, line) == found.end;
    if (!same) send(SCI_SETLINESTATE, line, found.end);
    if (line + 1 == send(SCI_GETLINECOUNT)) scanned_ = true;
    return same;
}

}  // namespace tarn::platform::qt
