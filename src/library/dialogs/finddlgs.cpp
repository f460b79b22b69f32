// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/finddlgs.h"

#include "kernel/windows/textedits.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>

MODULE("commdlgs")

namespace tarn {
namespace {

constexpr int HelpOnKey = 257;                     // open the help file on a topic
constexpr std::int64_t LongestText = 100'000'000;  // bytes that replacing may make of a text without a limit

SearchExtras extras;

Object in(const Object& dialog, std::string_view name) {
    return FINDCONTROL(dialog, name);
}

// ---- what the dialogs share ----

void showHelp(const Object& dialog) {
    if (!GetVisible(in(dialog, "pushbutton3"))) return Sound();
    MULTIHELP(0, GetCaption(in(dialog, "lblhelpfile")), HelpOnKey, GetCaption(in(dialog, "lblhelptopic")));
}

void openDialog(const Object& dialog, WindowFunction function, const std::string& title,
                const std::string& helpFile, const std::string& helpTopic) {
    RegisterWindow(dialog, function);
    Load(dialog);
    SetCaption(dialog, title);
    SetCaption(in(dialog, "lblhelpfile"), helpFile);
    SetCaption(in(dialog, "lblhelptopic"), helpTopic);
    SetVisible(in(dialog, "pushbutton3"), !STRTRIM(helpFile).empty());
}

void offer(const Object& edit, const std::string& text) {
    SetText(edit, text);
    SetSelection(edit, 1, static_cast<int>(text.size()));
}

bool isTicked(const Object& dialog, std::string_view box) {
    return GetValue(in(dialog, box)) != 0;
}
void tick(const Object& dialog, std::string_view box, bool on) {
    SetValue(in(dialog, box), on ? 1 : 0);
}

// Hides the dialog if there is something to find; whoever has shown it reads the rest.
void accept(const Object& dialog) {
    if (GetText(in(dialog, "edit1")).empty()) return Sound();
    const std::string problem = extras.problem == nullptr ? std::string() : extras.problem(dialog);
    if (!problem.empty()) return MSGBOX(GetCaption(dialog), problem);
    Hide(dialog);
}

void acceptAll(const Object& dialog) {
    tick(dialog, "replaceall", true);
    accept(dialog);
    if (IsLoaded(dialog) && GetVisible(dialog)) tick(dialog, "replaceall", false);
}

struct Button {
    std::string_view name;
    void (*press)(const Object& dialog);
};
constexpr Button searchButtons[] = {{"pushbutton1", accept},
                                    {"pushbutton2", [](const Object& dialog) { Unload(dialog); }},
                                    {"pushbutton3", showHelp},
                                    {"pushbutton4", acceptAll}};
constexpr Button lineButtons[] = {{"pushbutton1", [](const Object& dialog) { Hide(dialog); }},
                                  {"pushbutton2", [](const Object& dialog) { Unload(dialog); }},
                                  {"pushbutton3", showHelp}};

template <std::size_t Count>
bool press(const Button (&buttons)[Count], const Object& dialog, const Object& control) {
    const std::string name = GetName(control);
    const auto* const button = std::find_if(std::begin(buttons), std::end(buttons),
                                            [&](const Button& one) { return one.name == name; });
    if (button == std::end(buttons)) return false;
    button->press(dialog);
    return true;
}

bool pressKey(const Object& dialog, int key) {
    if (key == KEY_ESCAPE) Unload(dialog);
    if (key == KEY_F1) showHelp(dialog);
    return key == KEY_ESCAPE || key == KEY_F1;
}

bool searchEvent(const Object& dialog, int event, const Object& control, int parameter) {
    if (event == COMMAND_EVENT && press(searchButtons, dialog, control)) return true;
    if (event == KEYPRESS_EVENT && pressKey(dialog, parameter)) return true;
    return extras.event != nullptr && extras.event(dialog, event, control, parameter);
}

std::unique_ptr<TextSearch> searchOf(const Object& dialog) {
    auto search = extras.search == nullptr ? nullptr : extras.search(dialog);
    if (search == nullptr)
        search = std::make_unique<PlainSearch>(GetText(in(dialog, "edit1")), isTicked(dialog, "check1"),
                                               isTicked(dialog, "check2"));
    return search;
}

// ---- finding ----

int firstPlace(const Object& window, bool fromStart) {
    if (fromStart) return 1;
    const Selection selection = GetSelection(window);
    return selection.start + selection.length;
}

void tellMiss(const TextSearch& search, const std::string& shown) {
    const std::string problem = search.problem();
    MSGBOX("Find", problem.empty() ? "Cannot find search string:\n'" + shown + "'" : problem);
}

// ---- replacing ----

void tellCount(int count) {
    MSGBOX("Replace", STR(count) + (count == 1 ? " replacement was made." : " replacements were made."));
}

// Asks at each hit; false when the user has cancelled, or the search gave up.
bool replaceAsking(const Object& window, TextSearch& search, const std::string& shown,
                   const std::string& with, int from, bool all, int& count) {
    for (bool more = true; more; more = all) {
        const std::string text = GetText(window);
        search.anew();
        const TextHit hit = search.next(text, from);
        if (hit.start == 0) break;
        SetSelection(window, hit.start, hit.length);
        const std::string answer = MsgBox("Replace", "Replace this occurrence of '" + shown + "'?",
                                          "&Yes\n&No\n&Cancel", BoxIcon::Question);
        if (answer != "&Yes" && answer != "&No") return false;
        from = hit.start + hit.length;
        if (answer == "&No") continue;
        const std::string comes = search.replacement(text, with);
        SetSelText(window, comes);
        from = hit.start + static_cast<int>(comes.size());
        ++count;
    }
    return true;
}

// False if nothing was tried, which beeps.
bool replaceAtOnce(const Object& window, TextSearch& search, const std::string& with, int from, bool all,
                   int& count) {
    const int most = GetMaxLength(window);
    const auto edits = REPLACEMENTS(GetText(window), search, with, from, all, most > 0 ? most : LongestText);
    if (!edits) return Sound(), false;
    count = static_cast<int>(edits->size());
    if (edits->empty()) return true;
    ReplaceParts(window, *edits);
    if (!GetModify(window)) SetModify(window, true);
    return true;
}

}  // namespace

int STRFINDEX(std::string_view text, std::string_view search, int start, bool matchWord, bool matchCase) {
    return PlainSearch(search, matchWord, matchCase).next(text, start).start;
}

std::string GETWORDATCURSOR(const Object& window) {
    FRAME(GETWORDATCURSOR);
    STAMP();
    const std::string text = GetText(window);
    std::size_t start = std::min(static_cast<std::size_t>(GetSelection(window).start) - 1, text.size());
    std::size_t end = start;
    while (start > 0 && ascii::isSymbol(text[start - 1])) start--;
    while (end < text.size() && ascii::isSymbol(text[end])) end++;
    return text.substr(start, end - start);
}

int GETLINENUMBER(std::string_view text, int position) {
    const auto before = text.substr(0, static_cast<std::size_t>(std::max(position - 1, 0)));
    return static_cast<int>(std::count(before.begin(), before.end(), '\n')) + 1;
}

void USESEARCHEXTRAS(const SearchExtras& more) {
    extras = more;
}

// ---- the commands ----

void FINDNEXT(const Object& window, TextSearch& search, const std::string& shown, bool fromStart) {
    FRAME(FINDNEXT);
    STAMP();
    if (shown.empty()) return Sound();
    const TextHit hit = search.next(GetText(window), firstPlace(window, fromStart));
    STAMP();
    if (hit.start == 0) return tellMiss(search, shown);
    SetSelection(window, hit.start, hit.length);
    STAMP();
}

void FINDNEXT(const Object& window, const std::string& text, bool matchWord, bool matchCase, bool fromStart) {
    FRAME(FINDNEXT);
    PlainSearch search(text, matchWord, matchCase);
    STAMP();
    FINDNEXT(window, search, text, fromStart);
}

void REPLACENEXT(const Object& window, TextSearch& search, const std::string& shown,
                 const std::string& newText, bool confirmEach, bool fromStart, bool replaceAll) {
    FRAME(REPLACENEXT);
    STAMP();
    if (shown.empty() || GetReadonly(window)) return Sound();
    const int from = firstPlace(window, fromStart);
    int count = 0;
    const bool done = confirmEach ? replaceAsking(window, search, shown, newText, from, replaceAll, count)
                                  : replaceAtOnce(window, search, newText, from, replaceAll, count);
    STAMP();
    if (!search.problem().empty()) MSGBOX("Replace", search.problem());
    if (done) tellCount(count);
    STAMP();
}

void REPLACENEXT(const Object& window, const std::string& oldText, const std::string& newText, bool matchWord,
                 bool matchCase, bool confirmEach, bool fromStart, bool replaceAll) {
    FRAME(REPLACENEXT);
    PlainSearch search(oldText, matchWord, matchCase);
    STAMP();
    REPLACENEXT(window, search, oldText, newText, confirmEach, fromStart, replaceAll);
}

// ---- the dialogs ----

bool FINDDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(FINDDLG);
    STAMP();
    const bool result = searchEvent(window, event, control, parameter);
    STAMP();
    return result;
}

void FINDDIALOG(const std::string& title, const Object& window, const std::string& helpFile,
                const std::string& helpTopic, FindChoice& choice) {
    FRAME(FINDDIALOG);
    STAMP();
    openDialog(FindDlg, FINDDLG, title, helpFile, helpTopic);
    STAMP();
    const std::string word = GETWORDATCURSOR(window);
    if (!word.empty())
        choice.text = word;
    else if (choice.text.empty())
        choice = {};
    offer(in(FindDlg, "edit1"), choice.text);
    tick(FindDlg, "check1", choice.matchWord);
    tick(FindDlg, "check2", choice.matchCase);
    tick(FindDlg, choice.fromStart ? "radio1" : "radio2", true);
    if (extras.shown != nullptr) extras.shown(FindDlg, window);
    STAMP();
    Show(FindDlg, true);
    STAMP();
    if (!IsLoaded(FindDlg)) return;
    choice = {GetText(in(FindDlg, "edit1")), isTicked(FindDlg, "check1"), isTicked(FindDlg, "check2"),
              isTicked(FindDlg, "radio1")};
    const auto search = searchOf(FindDlg);
    STAMP();
    FINDNEXT(window, *search, choice.text, choice.fromStart);
    STAMP();
    Unload(FindDlg);
}

bool REPLACEDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(REPLACEDLG);
    STAMP();
    const bool result = searchEvent(window, event, control, parameter);
    STAMP();
    return result;
}

namespace {

void fillReplaceDialog(const Object& window, ReplaceChoice& choice) {
    const std::string word = GETWORDATCURSOR(window);
    if (!word.empty()) {
        choice.oldText = word;
    } else if (choice.oldText.empty()) {
        choice.matchWord = choice.matchCase = choice.fromStart = false;
        choice.confirmEach = true;
    }
    offer(in(ReplaceDlg, "edit1"), choice.oldText);
    SetText(in(ReplaceDlg, "edit2"), choice.newText);
    tick(ReplaceDlg, "check1", choice.matchWord);
    tick(ReplaceDlg, "check2", choice.matchCase);
    tick(ReplaceDlg, "check3", choice.confirmEach);
    tick(ReplaceDlg, choice.fromStart ? "radio1" : "radio2", true);
    tick(ReplaceDlg, "replaceall", false);
    if (extras.shown != nullptr) extras.shown(ReplaceDlg, window);
}

ReplaceChoice readReplaceDialog() {
    return {GetText(in(ReplaceDlg, "edit1")), GetText(in(ReplaceDlg, "edit2")),
            isTicked(ReplaceDlg, "check1"),   isTicked(ReplaceDlg, "check2"),
            isTicked(ReplaceDlg, "check3"),   isTicked(ReplaceDlg, "radio1")};
}

}  // namespace

void REPLACEDIALOG(const std::string& title, const Object& window, const std::string& helpFile,
                   const std::string& helpTopic, ReplaceChoice& choice) {
    FRAME(REPLACEDIALOG);
    STAMP();
    openDialog(ReplaceDlg, REPLACEDLG, title, helpFile, helpTopic);
    STAMP();
    fillReplaceDialog(window, choice);
    STAMP();
    Show(ReplaceDlg, true);
    STAMP();
    if (!IsLoaded(ReplaceDlg)) return;
    choice = readReplaceDialog();
    const auto search = searchOf(ReplaceDlg);
    STAMP();
    REPLACENEXT(window, *search, choice.oldText, choice.newText, choice.confirmEach, choice.fromStart,
                isTicked(ReplaceDlg, "replaceall"));
    STAMP();
    Unload(ReplaceDlg);
}

bool GOTOLINEDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(GOTOLINEDLG);
    STAMP();
    const bool result = (event == COMMAND_EVENT && press(lineButtons, window, control)) ||
                        (event == KEYPRESS_EVENT && pressKey(window, parameter));
    STAMP();
    return result;
}

namespace {

// The place of the line's first character, 0 if there is no such line. The line behind the last line end counts.
int startOfLine(std::string_view text, int line) {
    if (line < 1) return 0;
    std::size_t at = 0;
    for (int n = 1; n < line; ++n) {
        at = text.find('\n', at);
        if (at == std::string_view::npos) return 0;
        ++at;
    }
    return static_cast<int>(at) + 1;
}

void goToLine(const Object& window, const std::string& entered) {
    bool ok = false;
    const int line = CVTI(STRTRIM(entered), ok);
    if (!ok) return Sound();
    const int start = startOfLine(GetText(window), line);
    if (start == 0) return;
    SetSelection(window, start, 0);
    Show(window.owner(), false);
}

}  // namespace

void GOTOLINEDIALOG(const std::string& title, const Object& window, const std::string& helpFile,
                    const std::string& helpTopic) {
    FRAME(GOTOLINEDIALOG);
    STAMP();
    openDialog(GotoLineDlg, GOTOLINEDLG, title, helpFile, helpTopic);
    STAMP();
    const Object edit = in(GotoLineDlg, "edit1");
    if (IsLoaded(window) && GetVisible(window))
        offer(edit, STR(GETLINENUMBER(GetText(window), GetSelection(window).start)));
    STAMP();
    Show(GotoLineDlg, true);
    STAMP();
    if (!IsLoaded(GotoLineDlg)) return;
    const std::string entered = GetText(edit);
    if (!entered.empty()) goToLine(window, entered);
    STAMP();
    Unload(GotoLineDlg);
}

}  // namespace tarn
