// SPDX-License-Identifier: GPL-3.0-or-later
//
// Searching: replacing 8,000 hits in 4,000,000 bytes of the Code window, beside vim's own time for the same; one text
// looked for in them without regard to case, beside strcasestr; and 2,000 files of 20 kB searched, beside grep -rn.
#include "paint_watch.h"

#include "ide/search/findfiles.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/windows/textedits.h"
#include "library/dialogs/finddlgs.h"
#include "os/files.h"
#include "os/process.h"

#include <QApplication>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

using namespace bench;
namespace fs = std::filesystem;

constexpr int runs = 9, hits = 8000;
constexpr std::size_t size = 4'000'000;

// Lines of sources; every seventh or so has the word.
std::string sourceText() {
    const std::string_view with = "    needle := result + STR(total)       // the sum of all totals\n",
                           without = "    result := result + STR(total) + 1   // the sum of all totals\n";
    std::string text;
    for (std::size_t n = 0, lines = size / with.size(); n < lines; ++n)
        text += n * hits / lines != (n + 1) * hits / lines ? with : without;
    return text;
}

template <class Work>
double timeOf(Work work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) times.push_back(work());
    return median(times);
}

double replaceAll(const std::string& text, int& count) {
    return timeOf([&] {
        tarn::SetText(tarn::SDIEdit, text);
        QApplication::processEvents();
        QElapsedTimer timer;
        timer.start();
        tarn::PlainSearch search("needle", false, true);
        const std::string before = tarn::GetText(tarn::SDIEdit);
        const auto edits = tarn::REPLACEMENTS(before, search, "thread2", 1, true, 100'000'000);
        tarn::ReplaceParts(tarn::SDIEdit, *edits);
        count = static_cast<int>(edits->size());
        return milliseconds(timer);
    });
}

// What vim itself measures, without its start and the reading of the file.
double vimReplaceAll(const std::string& folder, const std::string& text) {
    std::ofstream(folder + "text.txt") << text;
    const std::string command =
        "vim -u NONE -N -i NONE -n -es -c 'let t = reltime()' -c '%s/needle/thread2/g' "
        "-c 'call writefile([reltimestr(reltime(t))], \"" +
        folder + "time\")' -c 'qa!' " + folder + "text.txt >/dev/null 2>&1 </dev/null";
    return timeOf([&] {
        double seconds = 0;
        if (std::system(command.c_str()) == 0) std::ifstream(folder + "time") >> seconds;
        return seconds * 1000;
    });
}

double findIgnoringCase(const std::string& text) {
    return timeOf([&] {
        QElapsedTimer timer;
        timer.start();
        if (tarn::STRFINDEX(text, "Nowhere at all", 1, false, false) != 0) std::abort();
        return milliseconds(timer);
    });
}

double findByLibc(const std::string& text) {
    return timeOf([&] {
        QElapsedTimer timer;
        timer.start();
        if (strcasestr(text.c_str(), "Nowhere at all") != nullptr) std::abort();
        return milliseconds(timer);
    });
}

void makeFiles(const std::string& folder, const std::string& text) {
    for (int n = 0; n < 2000; ++n) {
        const std::string below = folder + "files/" + std::to_string(n / 100) + "/";
        if (n % 100 == 0) fs::create_directories(below);
        std::ofstream(below + std::to_string(n) + ".cls")
            << text.substr(static_cast<std::size_t>(n) * 1000, 20'000);
    }
}

double findInFiles(const std::string& folder) {
    tarn::FileChoices choices;
    choices.text = "needle := result";
    choices.matchCase = true;
    choices.patterns = "*.cls";
    choices.folders = {folder + "files"};
    choices.subfolders = true;
    return timeOf([&] {
        QElapsedTimer timer;
        timer.start();
        if (tarn::FINDINFILES(choices).size() < 10'000) std::abort();
        return milliseconds(timer);
    });
}

double grepFiles(const std::string& folder) {
    const std::string command =
        "LC_ALL=C grep -rnF --include='*.cls' 'needle := result' " + folder + "files >" + folder + "found";
    return timeOf([&] {
        QElapsedTimer timer;
        timer.start();
        if (std::system(command.c_str()) != 0) std::abort();
        return milliseconds(timer);
    });
}

}  // namespace

int main(int argc, char** argv) {
    tarn::os::setCommandLine(argc, argv);
    const std::string folder = (fs::temp_directory_path() / "tarnwick-search-bench/").string();
    fs::remove_all(folder);
    fs::create_directories(folder);
    tarn::SetApplicationResources(tarn::os::executableFolder() + "ide.rcx");
    tarn::DebugStart(1, "bench", "", "", "");
    tarn::REGISTERWINDOWS();
    tarn::Load(tarn::SDIEdit);
    if (!tarn::IsLoaded(tarn::SDIEdit)) return std::fprintf(stderr, "the Code window was not loaded\n"), 1;
    tarn::Show(tarn::SDIEdit, false);
    const std::string text = sourceText();
    makeFiles(folder, text);
    int count = 0;
    std::vector<Figure> figures;
    figures.push_back({"replaceAll", replaceAll(text, count)});
    if (count != hits) return std::fprintf(stderr, "%d hits\n", count), 1;
    if (const double vim = vimReplaceAll(folder, text); vim > 0) figures.push_back({"replaceAllVim", vim});
    figures.push_back({"findIgnoringCase", findIgnoringCase(text)});
    figures.push_back({"findByLibc", findByLibc(text)});
    figures.push_back({"findInFiles", findInFiles(folder)});
    figures.push_back({"grepFiles", grepFiles(folder)});
    print(figures);
    fs::remove_all(folder);
    std::fflush(nullptr);
    std::_Exit(0);
}
