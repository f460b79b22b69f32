// SPDX-License-Identifier: Apache-2.0
//
// The window family of the system library: controls by name, boxes, and help files of several types.
#include "library/system/system.h"

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
    const std::string path =
        STRREPLACE(ISROOTED(file) ? file : FILEADDSEPARATOR(GETCURDIR()) + file, "\\", "/");
    return "file://" + escapedForUrl(path) +
           (topic.empty() ? std::string() : "#" + escapedForUrl(STRREPLACE(topic, " ", "_")));
}

}  // namespace

Object FINDCONTROL(const Object& window, std::string_view name) {
    FRAME(FINDCONTROL);
    return FindControl(window, name);
}

void MSGBOX(const std::string& title, const std::string& text) {
    FRAME(MSGBOX);
    STAMP();
    MsgBox(title, text, "");
}

void MULTIHELP(int, const std::string& helpFile, int, const std::string& topic) {
    FRAME(MULTIHELP);
    const std::string type = STRLOWER(FILEGETEXT(helpFile));
    std::string refusal;
    STAMP();
    if (helpFile.empty())
        refusal = "Help file name was not provided.";
    else if (FileSize(helpFile) <= 0)
        refusal = "Help file '" + helpFile + "' was empty or not found.";
    else if (holds(OtherWebTypes, type))
        refusal = "Web file type '" + type + "' is not supported.";
    else if (!holds(WebTypes, type))
        refusal = "Help file type '" + type + "' is not supported.";
    STAMP();
    if (refusal.empty() && !OpenUrl(pageUrl(helpFile, topic)))
        refusal = "No program was found that opens the following file:\n\n\t'" + helpFile +
                  "'\n\nInstall a web browser, or make one the desktop's default.";
    STAMP();
    if (!refusal.empty()) MSGBOX(std::string(HelpTitle), refusal);
}

}  // namespace tarn
