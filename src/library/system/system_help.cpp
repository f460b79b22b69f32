// SPDX-License-Identifier: Apache-2.0
//
// Help files of several types, and pages of the web.
#include "library/system/programs.h"

#include "kernel/run/errors.h"
#include "library/system/constants.h"
#include "library/system/conversion.h"
#include "library/system/files.h"
#include "library/system/programs_internal.h"
#include "library/system/strings.h"
#include "library/system/windows.h"
#include "os/process.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <iterator>

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::string_view HelpTitle = "MultiHelp";
constexpr std::string_view WebTypes[] = {".htm", ".html", ".xhtml"};  // opened by the browser
constexpr std::string_view OtherWebTypes[] = {".asp", ".mht", ".mhtml", ".php", ".shtm", ".shtml", ".xht"};

template <std::size_t N>
bool holds(const std::string_view (&types)[N], std::string_view type) {
    return std::find(std::begin(types), std::end(types), type) != std::end(types);
}

bool isPlainInUrl(char c) {
    return ascii::isLetter(c) || ascii::isDigit(c) ||
           std::string_view("-._~/").find(c) != std::string_view::npos;
}

std::string escapedForUrl(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (isPlainInUrl(c))
            out += c;
        else
            out.append("%").append(HEXSTR(static_cast<unsigned char>(c), 2));
    }
    return out;
}

// The page with the anchor of the topic, which has "_" for each blank.
std::string pageUrl(const std::string& file, const std::string& topic) {
    return detail::FileUrl(file) +
           (topic.empty() ? std::string() : "#" + escapedForUrl(STRREPLACE(topic, " ", "_")));
}

// Compiled help, for which a program may have a window of its own.
constexpr std::string_view CompiledTypes[] = {EXT_CHM, ".qch"};

// What stands in for help that has no viewer (the classic one is no part of this system) and tells the user so:
// a file beside the help file, and one that the system folder of others may hold.
bool openInPlaceOf(const std::string& helpFile) {
    const std::string beside = FILEGETDIR(helpFile) + "viewhlp.chm";
    const std::string system = os::environment("WINDIR");
    const std::string fallBack = FILEADDSEPARATOR(system) + "help\\nthelp.chm";
    if (FileSize(beside) > 0 && HtmlHelpApi(beside, "")) return true;
    return !system.empty() && FileSize(fallBack) > 0 && HtmlHelpApi(fallBack, "");
}

std::string webRefusal(const std::string& type) {
    return "Web file type '" + type + "' is not supported.";
}
std::string helpRefusal(const std::string& type) {
    return "Help file type '" + type + "' is not supported.";
}

// Shows the help file, or tells why it is not shown.
std::string openHelp(const std::string& helpFile, const std::string& topic) {
    const std::string type = STRLOWER(FILEGETEXT(helpFile));
    if (helpFile.empty()) return "Help file name was not provided.";
    if (FileSize(helpFile) <= 0) return "Help file '" + helpFile + "' was empty or not found.";
    if (holds(OtherWebTypes, type)) return webRefusal(type);
    if (holds(WebTypes, type)) {
        OPENBROWSER(0, pageUrl(helpFile, topic));
        return {};
    }
    const bool compiled = holds(CompiledTypes, type);
    if (compiled && HtmlHelpApi(helpFile, topic)) return {};
    if ((compiled || type == EXT_HLP) && openInPlaceOf(helpFile)) return {};
    return helpRefusal(type);
}

// The browser that somebody has named in the registry: the program of its command, then the page.
bool openNamedBrowser(const std::string& url) {
    std::vector<std::string> command = SPLITARGUMENTS(RegGetSetting(detail::BrowserKey, ""));
    if (command.empty()) return false;
    const std::string program = command.front();
    command.erase(command.begin());
    bool placed = false;
    for (std::string& argument : command) {
        placed = placed || argument.find("%1") != std::string::npos;
        argument = STRREPLACE(argument, "%1", url);
    }
    if (!placed) command.push_back(url);
    return detail::StartProgram(program, command);
}

}  // namespace

std::string detail::FileUrl(const std::string& path) {
    const std::string full =
        STRREPLACE(ISROOTED(path) ? path : FILEADDSEPARATOR(GETCURDIR()) + path, "\\", "/");
    return "file://" + escapedForUrl(full);
}

void OPENBROWSER(int, const std::string& url) {
    FRAME(OPENBROWSER);
    STAMP();
    if (openNamedBrowser(url) || OpenUrl(url)) return;
    STAMP();
    MSGBOX("Open Browser", "It is not possible to visit the following website: " + url +
                               "\nThe default browser cannot be found.");
}

void MULTIHELP(int, const std::string& helpFile, int, const std::string& topic) {
    FRAME(MULTIHELP);
    STAMP();
    const std::string refusal = openHelp(helpFile, topic);
    STAMP();
    if (!refusal.empty()) MSGBOX(std::string(HelpTitle), refusal);
}

}  // namespace tarn
