// SPDX-License-Identifier: Apache-2.0
//
// Finding, replacing, and going to a line in any window or control that has a text to edit. The dialogs stand in the
// program's own resources, so that a program gives them its own looks:
//
//   FindDlg      edit1 (the text), check1 (whole words), check2 (case), radio1 (from the start), radio2 (from the
//                cursor), pushbutton1 (OK), pushbutton2 (Cancel), pushbutton3 (Help), and the hidden labels lblhelpfile
//                and lblhelptopic
//   ReplaceDlg   the same, edit2 (the new text), check3 (ask each time), pushbutton4 (Replace All), and the hidden check
//                box replaceall
//   GotoLineDlg  edit1, the three push buttons, the two labels
//
// OK stays, with a beep, as long as there is nothing to find; Cancel and Esc leave. F1 and Help open the help file on
// the topic; without a help file the button is not there, and F1 beeps. All is found in a copy of the text, as bytes,
// and case is that of ASCII. A control that only shows its text is searched, but not changed: replacing beeps.
#pragma once

#include "kernel/windows/windowing.h"
#include "library/dialogs/textsearch.h"

#include <memory>
#include <string>
#include <string_view>

namespace tarn {

inline const Object FindDlg("FindDlg"), ReplaceDlg("ReplaceDlg"), GotoLineDlg("GotoLineDlg");

struct FindChoice {
    std::string text;
    bool matchWord = false, matchCase = false, fromStart = false;
};
struct ReplaceChoice {
    std::string oldText, newText;
    bool matchWord = false, matchCase = false, confirmEach = false, fromStart = false;
};

bool FINDDLG(const Object& window, int event, const Object& control, int parameter);
bool REPLACEDLG(const Object& window, int event, const Object& control, int parameter);
bool GOTOLINEDLG(const Object& window, int event, const Object& control, int parameter);

// Asks what to find and finds it. The word at the cursor is offered first, else the text of `choice`; without either the
// boxes are as they are at the very first time. `choice` is what was offered when the user leaves, else what was chosen.
void FINDDIALOG(const std::string& title, const Object& window, const std::string& helpFile,
                const std::string& helpTopic, FindChoice& choice);
// Selects the next hit: the first one, or that behind the selection; there is no way round. Tells when there is none; an
// empty text beeps.
void FINDNEXT(const Object& window, const std::string& text, bool matchWord, bool matchCase, bool fromStart);

void REPLACEDIALOG(const std::string& title, const Object& window, const std::string& helpFile,
                   const std::string& helpTopic, ReplaceChoice& choice);
// Replaces the next hit, or with `replaceAll` all from there on, and tells how many. `confirmEach` shows each hit and
// asks; Cancel keeps what was replaced, and tells nothing. Each answer is a step of undo, and all that was replaced
// without asking is one. A text that would get too long for the control, or for any, beeps and stays.
void REPLACENEXT(const Object& window, const std::string& oldText, const std::string& newText, bool matchWord,
                 bool matchCase, bool confirmEach, bool fromStart, bool replaceAll);

// The place of `search` in `text` at `start` or behind, 0 if there is none. With `matchWord` no word character may stand
// in front of the hit or behind it. Cost: linear, without a copy of the text.
int STRFINDEX(std::string_view text, std::string_view search, int start, bool matchWord, bool matchCase);
// The word in which the selection begins, or behind which it does; empty if there is none.
std::string GETWORDATCURSOR(const Object& window);

// Asks for a line and goes to its start; offers the one that the selection begins in. What is no number beeps; a line
// that the text does not have is passed over.
void GOTOLINEDIALOG(const std::string& title, const Object& window, const std::string& helpFile,
                    const std::string& helpTopic);
int GETLINENUMBER(std::string_view text, int position);  // 1 and the line ends in front of the position

// ---- other ways of finding ----

// The same with any search; `shown` is what the user knows it by.
void FINDNEXT(const Object& window, TextSearch& search, const std::string& shown, bool fromStart);
void REPLACENEXT(const Object& window, TextSearch& search, const std::string& shown,
                 const std::string& newText, bool confirmEach, bool fromStart, bool replaceAll);

// What a program adds to the find and the replace dialog. Each part may be null.
struct SearchExtras {
    void (*shown)(const Object& dialog, const Object& window) = nullptr;  // all is filled in
    // Events that the dialog has no use for; true: handled.
    bool (*event)(const Object& dialog, int event, const Object& control, int parameter) = nullptr;
    // Why the choices cannot be searched for, empty if they can: it is told, and the dialog stays.
    std::string (*problem)(const Object& dialog) = nullptr;
    // The search that the dialog's choices mean; null: that of its text.
    std::unique_ptr<TextSearch> (*search)(const Object& dialog) = nullptr;
};
void USESEARCHEXTRAS(const SearchExtras& extras);

}  // namespace tarn
