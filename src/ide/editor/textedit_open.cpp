// SPDX-License-Identifier: GPL-3.0-or-later
//
// How a file comes into the Code window, and how its lines are found and selected.
#include "ide/editor/textedit.h"

#include "ide/debug/codemarks.h"
#include "ide/editor/backup.h"
#include "ide/editor/seenfile.h"
#include "ide/editor/sourcefile.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"

MODULE("textedit", tarn::TEXTEDIT_ONERROR)

namespace tarn {

namespace {

struct LineSpan {
    int start = 0, length = 0;  // 0: there is no such line
    int count = 0;              // lines of the text
};

LineSpan findLine(std::string text, int line) {
    if (text.empty() || text.back() != '\n') text += '\n';
    LineSpan span;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = text.find('\n', at);
        if (++span.count == line) {
            span.start = static_cast<int>(at) + 1;
            span.length = static_cast<int>(end - at);
            if (span.length > 0 && text[end - 1] == '\r') span.length--;
        }
        at = end + 1;
    }
    return span;
}

// The first call scrolls to the line, the second marks it.
void markLine(const Object& window, const LineSpan& span) {
    SetSelection(window, span.start, 0);
    SetSelection(window, span.start, span.length);
}

void showLine(const Object& window, const std::string& file, int line) {
    const LineSpan span = findLine(GetText(window), line);
    if (span.start != 0) return markLine(window, span);
    MSGBOX("File-Open", "File: " + file + "\nCannot hilight line " + STR(line) + ".\nThere are " +
                            STR(span.count) + " line(s) in the file.");
}

// Puts the file into the empty window; false if it cannot be read, which leaves the window empty.
bool loadIntoWindow(const Object& window, const std::string& file, bool raises = true) {
    std::string text;
    if (!LOADFILE(file, text)) {
        Hide(window);
        return false;
    }
    EDITWNDSETFILENAME(window, file);
    if (raises || !GetVisible(window)) Show(window, false);
    EDITWNDSETTOKENS(window, GETTOKENLEVEL());
    SetText(window, text);
    EDITWNDNOTELOADED(window, file);
    SHOWBREAKPOINTS(window);
    EDITWNDCHECKBACKUPOK(file);
    return true;
}

// Shows or loads as the state of the window asks; false if nothing was shown.
bool showOrLoad(const Object& window, const std::string& file, bool reload) {
    const bool same = HASNAMEINEDITOR(file);
    if (same && (!GetModify(window) || !reload)) {
        Show(window, false);
        return true;
    }
    if (!same && FileSize(file) < 0) return false;
    EDITWNDCLOSE(window, false);
    if (!EDITWNDGETFILENAME(window).empty()) return false;
    return loadIntoWindow(window, file);
}

}  // namespace

void EDITWNDOPEN(const Object& window, const std::string& file, bool reload, int line) {
    FRAME(EDITWNDOPEN);
    const FileWork work;
    STAMP();
    const int most = EDITWNDGETMAXLENGTH(window);
    if (FileSize(file) > most) {
        MSGBOX("File-Open", "The following file is too big to be loaded:\n\n\t" + file +
                                "\n\nThe maximum size is " + STR(most) + " bytes.");
        return;
    }
    STAMP();
    const bool shown = showOrLoad(window, file, reload);
    STAMP();
    if (!shown) return;
    if (line != 0) showLine(window, file, line);
    STAMP();
    SETMODIFYPRIVATE(window, GetModify(window));
    STAMP();
    DRAWMODIFYINDICATOR(window);
}

bool EDITWNDFOLLOW(const Object& window, const std::string& file, int line) {
    FRAME(EDITWNDFOLLOW);
    if (!IsLoaded(window) || FileWork::goesOn()) return false;
    const FileWork work;
    STAMP();
    if (!HASNAMEINEDITOR(file)) {
        const std::int64_t size = FileSize(file);
        if (GetModify(window) || size < 0 || size > EDITWNDGETMAXLENGTH(window)) return false;
        EDITWNDCLOSE(window, false);
        if (!loadIntoWindow(window, file, false)) return false;
    }
    STAMP();
    const LineSpan span = findLine(GetText(window), line);
    if (span.start != 0) SetSelection(window, span.start, 0);
    STAMP();
    return span.start != 0;
}

void EDITWNDNEW(const Object& window, const std::string& text) {
    FRAME(EDITWNDNEW);
    const FileWork work;
    STAMP();
    EDITWNDCLOSE(window, false);
    STAMP();
    if (!EDITWNDGETFILENAME(window).empty()) return;
    EDITWNDSETFILENAME(window, std::string(Untitled));
    SetText(window, text);
    STAMP();
    SetModify(window, !text.empty());
    SETMODIFYPRIVATE(window, !text.empty());
    STAMP();
    DRAWMODIFYINDICATOR(window);
}

// ---- selection ----

void EDITWNDSELECTLINES(const Object& window) {
    FRAME(EDITWNDSELECTLINES);
    STAMP();
    const Selection selection = GetSelection(window);
    if (selection.length < 1) return;
    const std::string text = GetText(window);
    std::size_t start = static_cast<std::size_t>(selection.start) - 1;
    std::size_t end = start + static_cast<std::size_t>(selection.length);
    while (start > 0 && text[start - 1] != '\n') start--;
    while (end < text.size() && text[end - 1] != '\n') end++;
    STAMP();
    SetSelection(window, static_cast<int>(start) + 1, static_cast<int>(end - start));
}

void EDITWNDSELECTLINE(const Object& window, int line) {
    FRAME(EDITWNDSELECTLINE);
    STAMP();
    const LineSpan span = findLine(GetText(window), line);
    if (span.start == 0) return Sound();
    STAMP();
    markLine(window, span);
}

}  // namespace tarn
