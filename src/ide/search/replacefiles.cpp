// SPDX-License-Identifier: GPL-3.0-or-later
//
//   plan       what would change, by files and lines
//   write      the backup, then the file
//   dialogs    the choices, the list, the report
#include "ide/search/replacefiles.h"

#include "ide/editor/backup.h"
#include "ide/editor/sourcefile.h"
#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>

MODULE("editmenu")

namespace tarn {

// ---- plan ----

namespace {

constexpr std::size_t MostLines = 200;  // listed of one file
constexpr int MostSlow = 3;             // files in which a pattern may need too much time

std::uint64_t digestOf(std::string_view bytes) {
    std::uint64_t digest = 14695981039346656037ULL;
    for (const char c : bytes) digest = (digest ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    return digest ^ bytes.size();
}

std::optional<std::vector<TextEdit>> changesOf(std::string_view text, TextSearch& search,
                                               const FileChoices& choices) {
    search.anew();
    return REPLACEMENTS(text, search, choices.with, 1, true, EDITWNDGETMAXLENGTH(SDIEdit));
}

std::size_t startOfLine(std::string_view text, std::size_t at) {
    const std::size_t end = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
    return end == std::string_view::npos ? 0 : end + 1;
}

// The lines that change, those of edits that touch the same lines together.
std::vector<LineChange> linesOf(std::string_view text, const std::vector<TextEdit>& edits) {
    std::vector<LineChange> lines;
    int line = 1;
    std::size_t counted = 0;  // line ends in front of this place are in `line`
    for (std::size_t n = 0; n < edits.size() && lines.size() < MostLines;) {
        const std::size_t from = startOfLine(text, static_cast<std::size_t>(edits[n].start) - 1);
        std::size_t end = from;
        std::vector<TextEdit> own;
        for (; n < edits.size() && (own.empty() || static_cast<std::size_t>(edits[n].start) - 1 <= end);
             ++n) {
            own.push_back(edits[n]);
            own.back().start -= static_cast<int>(from);
            const auto behind = static_cast<std::size_t>(edits[n].start - 1 + edits[n].length);
            end = std::min(text.find('\n', behind), text.size());
        }
        line += static_cast<int>(std::count(text.begin() + static_cast<std::ptrdiff_t>(counted),
                                            text.begin() + static_cast<std::ptrdiff_t>(from), '\n'));
        counted = from;
        const std::string_view before = text.substr(from, end - from);
        const auto at = static_cast<std::size_t>(own.front().start) - 1;
        lines.push_back({line, SHOWNLINE(before, at), SHOWNLINE(APPLIED(before, own), at)});
    }
    return lines;
}

struct Planner {
    const FileChoices& choices;
    TextSearch& search;
    ReplacePlan plan;
    SkippedFiles skipped;
    std::string notes;
    int slow = 0;

    void file(const std::string& file) {
        std::string text;
        if (!TEXTOFFILE(file, text, skipped)) return;
        const auto edits = changesOf(text, search, choices);
        if (!search.problem().empty()) {
            notes += "'" + file + "': " + search.problem() + "\n";
            if (++slow == MostSlow) notes += "The search was given up there.\n";
        } else if (!edits) {
            notes += "'" + file + "' would be too large for the Code window.\n";
        } else if (!edits->empty() && ISCHANGEDINEDITOR(file)) {
            notes += "'" + file + "' is changed in the Code window. Save it first.\n";
        } else if (!edits->empty()) {
            plan.files.push_back(
                {file, digestOf(text), static_cast<int>(edits->size()), linesOf(text, *edits)});
        }
    }
};

}  // namespace

ReplacePlan PLANREPLACEMENTS(const FileChoices& choices) {
    FRAME(PLANREPLACEMENTS);
    STAMP();
    LongWork work("Searching for '" + choices.text + "'");
    const FoundFiles found = FILESIN(choices.folders, choices.patterns, choices.subfolders, work);
    const auto search = SEARCHOF(choices);
    Planner planner{choices, *search, {}, {.unreadable = found.unreadableFolders}, {}, 0};
    std::int64_t done = 0;
    for (const std::string& file : found.files) {
        STAMP();
        const bool goesOn = work.go(done++, static_cast<std::int64_t>(found.files.size()));
        if (!goesOn || planner.slow >= MostSlow) break;
        planner.file(file);
    }
    STAMP();
    planner.plan.notes = planner.notes + planner.skipped.lines();
    planner.plan.stopped = work.stopped();
    return std::move(planner.plan);
}

// ---- write ----

namespace {

std::string told(const os::SaveResult& saved) {
    std::string text(os::describe(saved.error));
    if (!saved.rescueCopy.empty()) text += " The new text stands in '" + saved.rescueCopy + "'.";
    return text;
}

// The old bytes beside the file, from the first moment for nobody whom the file is not for.
os::FileError writeBackup(const std::string& file, const std::string& backup, const std::string& text) {
    constexpr std::uint32_t permissions = 0777;
    return os::saveNewFile(backup, text, os::infoOf(file).mode & permissions);
}

// Why the file was not written; empty if it was.
std::string writeFile(const FileChange& change, const FileChoices& choices, TextSearch& search) {
    std::string text;
    if (ISCHANGEDINEDITOR(change.file)) return "It is changed in the Code window.";
    if (const os::FileError error = os::readFile(change.file, text); error != os::FileError::None)
        return std::string(os::describe(error));
    if (digestOf(text) != change.digest) return "It has changed since the list was made.";
    const auto edits = changesOf(text, search, choices);
    if (!search.problem().empty()) return search.problem();
    if (!edits || static_cast<int>(edits->size()) != change.count)
        return "It has changed since the list was made.";
    if (!os::infoOf(change.file).writable) return "You may not write to it.";
    const std::string backup = FREEBACKUPNAME(change.file);
    if (const os::FileError error = writeBackup(change.file, backup, text); error != os::FileError::None)
        return "No backup could be made of it. " + std::string(os::describe(error));
    const os::SaveResult saved = os::saveFile(change.file, APPLIED(text, *edits));
    if (saved.ok()) return {};
    // A failure may come behind the replacing, or half-way in place; a backup that the file equals is of no use.
    if (std::string now; os::readFile(change.file, now) == os::FileError::None && now == text)
        os::files().remove(backup);
    return told(saved);
}

// Shows the new text where the old one stands in the Code window.
void readAgain(const std::string& file) {
    if (!ISINEDITOR(file)) return;
    const std::string shown = EDITWNDGETFILENAME(SDIEdit);
    const Selection selection = GetSelection(SDIEdit);
    EDITWNDCLOSE(SDIEdit, false);
    EDITWNDOPEN(SDIEdit, shown, false, 0);
    SetSelection(SDIEdit, std::min(selection.start, GetTextLength(SDIEdit) + 1), 0);
}

}  // namespace

ReplaceReport WRITEREPLACEMENTS(const FileChoices& choices, const ReplacePlan& plan) {
    FRAME(WRITEREPLACEMENTS);
    STAMP();
    LongWork work("Replacing '" + choices.text + "'");
    const auto search = SEARCHOF(choices);
    ReplaceReport report;
    std::int64_t done = 0;
    for (const FileChange& change : plan.files) {
        STAMP();
        if (!work.go(done++, static_cast<std::int64_t>(plan.files.size()))) {
            report.problems += "It was stopped; the files from '" + change.file + "' on are as they were.\n";
            break;
        }
        if (!change.wanted) continue;
        const std::string problem = writeFile(change, choices, *search);
        if (!problem.empty()) {
            report.problems += "'" + change.file + "' was not changed: " + problem + "\n";
            continue;
        }
        report.replacements += change.count;
        ++report.files;
        readAgain(change.file);
    }
    STAMP();
    return report;
}

// ---- dialogs ----

namespace {

ReplacePlan* shownPlan = nullptr;    // of the list that is shown
std::vector<std::size_t> fileOfRow;  // for each row the place of its file in the plan
constexpr std::size_t MostRows = 20'000;
constexpr const char* Title = "Replace in Files";

constexpr DialogShape choicesShape{.settings = GETIDEINIFILE,
                                   .showHelp = SHOWWINDOWHELP,
                                   .load = OFFERFILECHOICES,
                                   .problem = FILECHOICEPROBLEM,
                                   .hides = true};
constexpr DialogShape listShape{.showHelp = SHOWWINDOWHELP, .hides = true};
const RegisteredWindow registered("ReplaceFilesDlg", REPLACEFILESDLG);
const RegisteredWindow registeredList("ReplaceListDlg", REPLACELISTDLG);

Object listIn(const Object& dialog) {
    return FINDCONTROL(dialog, "listbox1");
}

std::string replacementsOf(int count) {
    return STR(count) + (count == 1 ? " replacement" : " replacements");
}

std::string headOf(const FileChange& change) {
    return std::string(change.wanted ? "[x] " : "[  ] ") + change.file + ": " + replacementsOf(change.count);
}

void addRow(const Object& list, const std::string& row, std::size_t file) {
    AddItem(list, row);
    fileOfRow.push_back(file);
}

void fillList(const Object& dialog) {
    const Object list = listIn(dialog);
    int count = 0;
    fileOfRow.clear();
    for (std::size_t n = 0; n < shownPlan->files.size(); ++n) {
        const FileChange& change = shownPlan->files[n];
        addRow(list, headOf(change), n);
        count += change.count;
        if (fileOfRow.size() > MostRows) continue;
        for (const LineChange& line : change.lines) {
            addRow(list, "      " + STR(line.line) + " - " + line.before, n);
            addRow(list, "      " + STR(line.line) + " + " + line.after, n);
        }
        if (change.lines.size() >= MostLines) addRow(list, "      ...", n);
    }
    SetListIndex(list, 1);
    SetCaption(FINDCONTROL(dialog, "label1"), "&Changes: " + replacementsOf(count) + " in " +
                                                  STR(static_cast<int>(shownPlan->files.size())) +
                                                  (shownPlan->files.size() == 1 ? " file" : " files"));
}

// Ticks the file of the chosen row, or unticks it; beeps without one.
void toggleFile(const Object& dialog) {
    const Object list = listIn(dialog);
    const int row = GetListIndex(list);
    if (row < 1 || static_cast<std::size_t>(row) > fileOfRow.size()) return Sound();
    const std::size_t file = fileOfRow[static_cast<std::size_t>(row) - 1];
    FileChange& change = shownPlan->files[file];
    change.wanted = !change.wanted;
    const auto head = std::find(fileOfRow.begin(), fileOfRow.end(), file) - fileOfRow.begin();
    SetList(list, static_cast<int>(head) + 1, headOf(change));
    SetListIndex(list, row);
}

bool isToggle(int event, const Object& control, int parameter) {
    const std::string name = GetName(control);
    return (event == COMMAND_EVENT && name == "pushbutton4") ||
           (event == DBLCLICK_EVENT && name == "listbox1") ||
           (event == KEYPRESS_EVENT && name == "listbox1" && parameter == ' ');
}

// The user's choice of files; false if they leave it.
bool letChoose(ReplacePlan& plan) {
    shownPlan = &plan;
    Load(ReplaceListDlg);
    fillList(ReplaceListDlg);
    Show(ReplaceListDlg, true);
    const bool go = IsLoaded(ReplaceListDlg);
    if (go) Unload(ReplaceListDlg);
    shownPlan = nullptr;
    return go;
}

void tell(const ReplaceReport& report, const std::string& notes) {
    const std::string more = report.problems + notes;
    MSGBOX(Title, replacementsOf(report.replacements) + (report.replacements == 1 ? " was" : " were") +
                      " made in " + STR(report.files) + (report.files == 1 ? " file." : " files.") +
                      (more.empty() ? std::string() : "\n\n" + LIMITLINES(more)));
}

}  // namespace

bool REPLACEFILESDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(REPLACEFILESDLG);
    STAMP();
    const bool result = CHOOSEFOLDER(window, event, control) ||
                        DIALOGSHAPEEVENT(choicesShape, window, event, control, parameter);
    STAMP();
    return result;
}

bool REPLACELISTDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(REPLACELISTDLG);
    STAMP();
    const bool toggles = isToggle(event, control, parameter);
    if (toggles) toggleFile(window);
    const bool result = toggles || DIALOGSHAPEEVENT(listShape, window, event, control, parameter);
    STAMP();
    return result;
}

void REPLACEFILESDIALOG() {
    FRAME(REPLACEFILESDIALOG);
    STAMP();
    Load(ReplaceFilesDlg);
    STAMP();
    Show(ReplaceFilesDlg, true);
    STAMP();
    if (!IsLoaded(ReplaceFilesDlg)) return;
    const FileChoices choices = FILECHOICES(ReplaceFilesDlg);
    STAMP();
    Unload(ReplaceFilesDlg);
    STAMP();
    ReplacePlan plan = PLANREPLACEMENTS(choices);
    STAMP();
    if (plan.stopped) return MSGBOX(Title, "The search was stopped. Nothing was changed.");
    if (plan.files.empty())
        return MSGBOX(Title, "Cannot find search string:\n'" + choices.text + "'" +
                                 (plan.notes.empty() ? std::string() : "\n\n" + LIMITLINES(plan.notes)));
    if (letChoose(plan)) tell(WRITEREPLACEMENTS(choices, plan), plan.notes);
    STAMP();
}

}  // namespace tarn
