// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/search/findfiles.h"

#include "ide/build/textview.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("editmenu")

namespace tarn {
namespace {

constexpr int MostLines = 10'000;  // of hits that are listed
constexpr int MostSlow = 3;        // files in which a pattern may need too much time

constexpr DialogShape shape{.settings = GETIDEINIFILE,
                            .showHelp = SHOWWINDOWHELP,
                            .load = OFFERFILECHOICES,
                            .problem = FILECHOICEPROBLEM,
                            .hides = true};
const RegisteredWindow registered("FindFilesDlg", FINDFILESDLG);

struct Findings {
    std::string lines;
    int hits = 0, listed = 0, files = 0, searched = 0, slow = 0;
    std::string problems;
    [[nodiscard]] bool full() const { return listed >= MostLines; }
    [[nodiscard]] bool over() const { return full() || slow >= MostSlow; }
};

// Walks through the hits of one text; a line with several is listed once.
class FileLister {
public:
    FileLister(const std::string& file, std::string_view text, Findings& findings)
        : file_(file), text_(text), findings_(findings) {}

    void hit(const TextHit& hit) {
        const auto at = static_cast<std::size_t>(hit.start) - 1;
        ++findings_.hits;
        if (listed_ && at < lineEnd_) return;
        for (std::size_t end = text_.find('\n', lineStart_); end < at; end = text_.find('\n', lineStart_)) {
            lineStart_ = end + 1;
            ++line_;
        }
        lineEnd_ = std::min(text_.find('\n', lineStart_), text_.size());
        listed_ = true;
        const std::string_view shown = text_.substr(lineStart_, lineEnd_ - lineStart_);
        findings_.lines += file_ + "(" + std::to_string(line_) + "): " + std::to_string(at - lineStart_ + 1) +
                           ": " + SHOWNLINE(shown, at - lineStart_) + "\n";
        ++findings_.listed;
    }

private:
    const std::string& file_;
    std::string_view text_;
    Findings& findings_;
    std::size_t lineStart_ = 0, lineEnd_ = 0;
    int line_ = 1;
    bool listed_ = false;
};

void searchText(const std::string& file, std::string_view text, TextSearch& search, Findings& findings) {
    FileLister lister(file, text, findings);
    const int before = findings.hits;
    search.anew();
    for (TextHit hit = search.next(text, 1); hit.start != 0 && !findings.full();
         hit = search.next(text, hit.start + hit.length))
        lister.hit(hit);
    ++findings.searched;
    if (findings.hits > before) ++findings.files;
    if (search.problem().empty()) return;
    findings.problems += "'" + file + "': " + search.problem() + "\n";
    ++findings.slow;
}

std::string counted(int count, const char* one, const char* many) {
    return STR(count) + " " + (count == 1 ? one : many);
}

std::string summary(const Findings& findings, const SkippedFiles& skipped, bool stopped) {
    std::string lines = counted(findings.hits, "hit", "hits") + " in " +
                        counted(findings.files, "file", "files") + "; " +
                        counted(findings.searched, "file was", "files were") + " searched.\n";
    if (findings.full()) lines += "There may be more: the list ends here.\n";
    if (stopped) lines += "The search was stopped.\n";
    lines += findings.problems;
    if (findings.slow >= MostSlow) lines += "The search was given up there.\n";
    return lines + skipped.lines();
}

}  // namespace

std::string FINDINFILES(const FileChoices& choices) {
    FRAME(FINDINFILES);
    STAMP();
    LongWork work("Searching for '" + choices.text + "'");
    const FoundFiles found = FILESIN(choices.folders, choices.patterns, choices.subfolders, work);
    const auto search = SEARCHOF(choices);
    SkippedFiles skipped{.unreadable = found.unreadableFolders};
    Findings findings;
    std::string text;
    std::int64_t done = 0;
    for (const std::string& file : found.files) {
        STAMP();
        if (findings.over() || !work.go(done++, static_cast<std::int64_t>(found.files.size()))) break;
        if (TEXTOFFILE(file, text, skipped)) searchText(file, text, *search, findings);
    }
    STAMP();
    return findings.lines + summary(findings, skipped, work.stopped());
}

bool FINDFILESDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(FINDFILESDLG);
    STAMP();
    const bool result =
        CHOOSEFOLDER(window, event, control) || DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

void FINDFILESDIALOG() {
    FRAME(FINDFILESDIALOG);
    STAMP();
    Load(FindFilesDlg);
    STAMP();
    Show(FindFilesDlg, true);
    STAMP();
    if (!IsLoaded(FindFilesDlg)) return;
    const FileChoices choices = FILECHOICES(FindFilesDlg);
    STAMP();
    Unload(FindFilesDlg);
    STAMP();
    VIEWTEXT(std::string(FoundTitle), FINDINFILES(choices));
}

}  // namespace tarn
