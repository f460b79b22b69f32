// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/commdlgs_print.h"

#include "kernel/windows/printjob.h"
#include "library/system/longwork.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("commdlgs")

namespace tarn {
namespace {

constexpr std::string_view Title = "Print";
constexpr std::string_view PlainFont = "Courier New";
constexpr int PlainSize = 10;  // points
constexpr std::string_view Extension = ".pdf";

void tell(const std::string& text) {
    MsgBox(std::string(Title), text, "OK", BoxIcon::Error);
}

// The caption without the mark of a change.
std::string documentName(const Object& window) {
    std::string name = GetCaption(window);
    if (name.ends_with(" *")) name.resize(name.size() - 2);
    return name;
}

// The printers of the system stand ahead of the one to a file.
bool isToFile(const Object& printer) {
    const std::vector<Object> all = PrinterList();
    return !all.empty() && printer == all.back();
}

// The file that the pages of a text go to. A text that has no file yet stands under a name in angle brackets.
std::string askForFile(const std::string& document) {
    const std::string name = STRREPLACE(STRREPLACE(FILEBASENAME(document), "<", ""), ">", "");
    return PRINTFILEDIALOG(FILEGETDIR(document) + name + std::string(Extension));
}

void takeFont(const Object& printer, const Object& window) {
    const std::string name = GetFontName(window);
    SetFontName(printer, name.empty() ? PlainFont : name);
    SetFontSize(printer, name.empty() ? PlainSize : GetFontSize(window));
}

// What to do about a printer that did not print.
std::string advice(const Object& printer, const std::string& file) {
    if (!file.empty())
        return "The file '" + file +
               ".pdf' could not be written.\nChoose another folder, or make room on the disk, and try again.";
    return "The printer '" + GetName(printer) +
           "' could not print.\nMake sure that it is switched on and connected, or choose another printer "
           "with "
           "File-Printer Setup.";
}

enum class Outcome { Printed, Stopped, Failed };

// A failure of the printer is told, and has been dealt with then.
bool hasFailed() {
    const bool failed = ErrorCell() != 0;
    ClearError();
    return failed;
}

// The lines between StartPrint and EndPrint.
Outcome printLines(const Object& printer, const PrintJob& job, const std::string& text) {
    StartPrint(printer, job);
    if (hasFailed()) return Outcome::Failed;
    LongWork work("Printing '" + job.heading + "'");
    const auto total = static_cast<std::int64_t>(text.size());
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        DrawTextstr(printer, rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (work.go(total - static_cast<std::int64_t>(rest.size()), total)) continue;
        CancelPrint(printer);
        return Outcome::Stopped;
    }
    const int pages = GetPage(printer);
    if (job.from > pages) {
        CancelPrint(printer);
        tell("There is no page " + STR(job.from) + ": the text has " + STR(pages) + " page(s).");
        return Outcome::Stopped;
    }
    EndPrint(printer);
    return hasFailed() ? Outcome::Failed : Outcome::Printed;
}

}  // namespace

bool PRINT(const Object& window, const std::string& printer) {
    FRAME(PRINT);
    STAMP();
    std::string text = GetText(window);
    const std::string document = documentName(window), marked = GetSelText(window);
    STAMP();
    if (text.empty() || document.empty()) return MSGBOX(std::string(Title), "Nothing to print"), false;
    const PrintChoice choice = PrintDialog(window, marked.empty() ? 0 : PRINT_SELECTION, printer);
    const Object chosen = choice.printer;
    if (chosen.empty()) return false;
    if ((choice.flags & PRINT_SELECTION) != 0) text = marked;
    STAMP();
    const std::string file = isToFile(chosen) ? askForFile(document) : "";
    if (isToFile(chosen) && file.empty()) return false;
    STAMP();
    SetCaption(chosen, file.empty() ? document : file);
    takeFont(chosen, window);
    STAMP();
    const int from = choice.from, to = choice.to;
    const Outcome outcome = printLines(chosen, {document, from, to, choice.copies}, text);
    if (outcome == Outcome::Failed) tell(advice(chosen, file));
    STAMP();
    return outcome == Outcome::Printed;
}

std::string PRINTFILEDIALOG(const std::string& proposed) {
    FRAME(PRINTFILEDIALOG);
    STAMP();
    const std::string chosen = SaveAsDialog("Print to File", proposed, "PDF document (*.pdf)|*.pdf|");
    STAMP();
    if (chosen.empty() || STREQUAL(FILEGETEXT(chosen), Extension)) return FILECHANGEEXT(chosen, "");
    const std::string file = chosen + std::string(Extension);
    if (FileSize(file) < 0) return chosen;
    STAMP();
    const std::string answer =
        MsgBox(std::string(Title), "The file '" + file + "' exists. Do you want to replace it?", "&Yes\n&No",
               BoxIcon::Question);
    return answer == "&Yes" ? chosen : "";
}

std::string PRINTERSETUPDIALOG() {
    FRAME(PRINTERSETUPDIALOG);
    std::string names;
    STAMP();
    for (const Object& one : PrinterList()) names += GetName(one) + "\n";
    STAMP();
    return ListBox("Printer Setup", "Choose printer from list below:", names);
}

}  // namespace tarn
