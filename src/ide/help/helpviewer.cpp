// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/help/helpviewer.h"

#include "ide/help/helplibrary.h"
#include "ide/shell/idecore.h"
#include "kernel/run/runtime.h"
#include "kernel/windows/boxhelp.h"
#include "library/dialogs/commdlgs_print.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/process.h"
#include "os/text/ascii.h"

#include <dlfcn.h>
#include <utility>

MODULE("helpviewer")

namespace tarn {
namespace {

constexpr std::string_view Section = "HelpWindow", PlaceKey = "_Position";

// What the numbers of run-time errors and of messages stand behind in texts.
constexpr std::string_view NumberMarks[] = {"error ", "Error ", "fatal "};

// The topics of titles that are also names of functions.
constexpr std::pair<std::string_view, std::string_view> TitleTopics[] = {{"Print", "File_Print"}};

std::string whyNotLoaded;

help::Show loadLibrary() {
    static const help::Show show = [] {
        const std::string path = os::executableFolder() + "libtarnwick-help.so";
        void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            whyNotLoaded = dlerror();
            return help::Show(nullptr);
        }
        return reinterpret_cast<help::Show>(dlsym(library, help::ShowName));
    }();
    return show;
}

void keepPlace(const char* place) {
    FRAME(KEEPPLACE);
    STAMP();
    PROFILESTRPUT(GETIDEINIFILE(), Section, PlaceKey, place);
}

// The last printer of the list writes a file.
bool choosePrinter(const char* title, help::PrintTarget& target) {
    FRAME(CHOOSEPRINTER);
    STAMP();
    const PrintChoice choice = PrintDialog(Object(), 0);
    STAMP();
    if (choice.printer.empty()) return false;
    const std::vector<Object> printers = PrinterList();
    target.copies = choice.copies;
    target.from = choice.from;
    target.to = choice.to;
    if (choice.printer != printers.back()) {
        target.printer = GetName(choice.printer);
        return true;
    }
    const std::string file = PRINTFILEDIALOG(STRREPLACE(title, "/", "-") + ".pdf");
    if (!file.empty()) target.file = file + ".pdf";
    return !file.empty();
}

// The same pages for a browser, which a help folder has beside the compiled help.
std::string pageBeside(const std::string& file) {
    const std::string page = FILECHANGEEXT(file, ".htm");
    return FileSize(page) > 0 ? page : "";
}

void tellProblem(const std::string& file, const std::string& topic, const std::string& problem) {
    const std::string page = pageBeside(file);
    const std::string text = "The help file '" + file + "' cannot be shown:\n" + problem + "\n\n" +
                             (page.empty() ? "Install the program again, or name another help folder in "
                                             "Tools-Options-Paths."
                                           : "The same pages can be read in the browser.");
    STAMP();
    const std::string answer =
        MsgBox("MultiHelp", text, page.empty() ? "OK" : "&Browser\nCancel", BoxIcon::Warning);
    STAMP();
    if (answer == "&Browser") MULTIHELP(0, page, 257, topic);
}

bool showHelp(const std::string& file, const std::string& topic) {
    FRAME(SHOWHELPWINDOW);
    if (STRLOWER(FILEGETEXT(file)) != ".qch") return false;
    const help::Show show = loadLibrary();
    STAMP();
    const std::string place = PROFILESTRGET(GETIDEINIFILE(), Section, PlaceKey);
    std::string problem = "The help window is not there (" + whyNotLoaded + ").";
    if (show != nullptr) {
        const char* const said = show({file.c_str(), topic.c_str(), place.c_str(), keepPlace, choosePrinter});
        problem = said == nullptr ? "" : said;
    }
    if (!problem.empty()) tellProblem(file, topic, problem);
    return true;
}

// The number that stands behind one of the marks; empty if none does.
std::string numberIn(std::string_view text) {
    for (const std::string_view mark : NumberMarks) {
        for (std::size_t at = 0; (at = text.find(mark, at)) != std::string_view::npos;) {
            at += mark.size();
            std::size_t end = at;
            while (end < text.size() && ascii::isDigit(text[end])) ++end;
            if (end - at >= 3) return std::string(text.substr(at, end - at));
        }
    }
    return {};
}

void helpOnBox(const std::string& title, const std::string& text) {
    FRAME(HELPONBOX);
    STAMP();
    SHOWHELP(BOXTOPIC(title, text));
}

}  // namespace

void USEHELPWINDOW() {
    SetHelpViewer(showHelp);
}

void USEBOXHELP() {
    SetBoxHelp(helpOnBox);
}

std::string BOXTOPIC(std::string_view title, std::string_view text) {
    std::string number = numberIn(text);
    if (number.empty()) number = numberIn(title);
    if (!number.empty()) return number;
    for (const auto& [known, topic] : TitleTopics)
        if (title == known) return std::string(topic);
    return HELPTOPIC(title);
}

}  // namespace tarn
