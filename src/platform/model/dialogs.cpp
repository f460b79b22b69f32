// SPDX-License-Identifier: Apache-2.0
//
// Common dialogs.
#include "platform/operations/dialogs.h"

#include "os/files.h"
#include "platform/model/access_internal.h"
#include "platform/operations/manyfiles.h"
#include "platform/operations/printjob.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdio>

namespace tarn::platform {

namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string line = text.substr(at, end - at);
        if (line.ends_with('\r')) line.pop_back();
        lines.push_back(std::move(line));
        at = end + 1;
    }
    return lines;
}

struct NumericButton {
    const char* caption;
    int answer;
};

std::vector<NumericButton> buttonsOf(int flags) {
    switch (flags & 15) {
    case 1: return {{"OK", 1}, {"Cancel", 2}};
    case 3: return {{"&Yes", 6}, {"&No", 7}, {"Cancel", 2}};
    case 4: return {{"&Yes", 6}, {"&No", 7}};
    case 5: return {{"&Retry", 4}, {"Cancel", 2}};
    default: return {{"OK", 1}};
    }
}

BoxIcon iconOf(int flags) {
    switch (flags & 0xf0) {
    case 16: return BoxIcon::Error;
    case 32: return BoxIcon::Question;
    case 48: return BoxIcon::Warning;
    case 64: return BoxIcon::Information;
    default: return BoxIcon::None;
    }
}

std::string askFile(Question::Kind kind, const std::string& title, const std::string& start,
                    const std::string& filter, bool several = false) {
    Question question;
    question.kind = kind;
    question.several = several;
    question.title = title;
    question.value = start;
    question.filter = filter;
    return view().ask(question);
}

}  // namespace

std::string MsgBox(const std::string& title, const std::string& text, const std::string& buttons,
                   BoxIcon icon, int defaultButton) {
    Question question;
    question.title = title;
    question.text = text;
    question.buttons = linesOf(buttons);
    if (question.buttons.empty()) question.buttons = {"OK"};
    question.icon = icon;
    const bool exists = defaultButton >= 1 && defaultButton <= static_cast<int>(question.buttons.size());
    question.defaultButton = exists ? defaultButton : 1;
    return view().ask(question);
}

int MsgBoxEx(const std::string& title, const std::string& text, int flags) {
    const std::vector<NumericButton> buttons = buttonsOf(flags);
    std::string captions;
    for (const NumericButton& button : buttons) captions.append(button.caption).append("\n");
    const int defaultButton = (flags & 512) != 0 ? 3 : (flags & 256) != 0 ? 2 : 1;
    const std::string answer = MsgBox(title, text, captions, iconOf(flags), defaultButton);
    for (const NumericButton& button : buttons)
        if (answer == button.caption) return button.answer;
    // The box was closed: that is Cancel, or the only button there is; Yes and No leave no doubt but No.
    return buttons.size() == 1 ? 1 : (flags & 15) == 4 ? 7 : 2;
}

std::string InputBox(const std::string& title, const std::string& prompt, const std::string& value) {
    Question question;
    question.kind = Question::Kind::Input;
    question.title = title;
    question.text = prompt;
    question.value = value;
    return view().ask(question);
}

std::string ListBox(const std::string& title, const std::string& prompt, const std::string& rows) {
    Question question;
    question.kind = Question::Kind::List;
    question.title = title;
    question.text = prompt;
    question.rows = linesOf(rows);
    return view().ask(question);
}

std::string OpenFileDialog(const std::string& title, const std::string& start, const std::string& filter) {
    return askFile(Question::Kind::OpenFile, title, start, filter);
}

std::vector<std::string> OpenFilesDialog(const std::string& title, const std::string& start,
                                         const std::string& filter) {
    return linesOf(askFile(Question::Kind::OpenFile, title, start, filter, true));
}

std::string SaveAsDialog(const std::string& title, const std::string& start, const std::string& filter) {
    return askFile(Question::Kind::SaveFile, title, start, filter);
}

std::string OpenFolderDialog(const std::string& title, const std::string& start) {
    return askFile(Question::Kind::Folder, title, start, "");
}

// ---- fonts, colours, printers ----
//
// What is chosen comes from the view as a text: "name TAB points TAB b i" of a font, "0xBBGGRR" of a colour,
// "printer TAB selection TAB from TAB to TAB copies" of a printer, where a part that is left out is as offered.

namespace {

Code checkOwner(const Object& owner) {
    return owner.empty() || findWindow(owner) != nullptr ? Ok : WindowNotLoaded;
}

std::vector<std::string_view> partsOf(std::string_view text) {
    std::vector<std::string_view> parts;
    for (bool more = true; more;) {
        const std::size_t tab = text.find('\t');
        parts.push_back(text.substr(0, tab));
        more = tab != std::string_view::npos;
        text.remove_prefix(more ? tab + 1 : text.size());
    }
    return parts;
}

std::string fontText(const Font& font) {
    return font.name + "\t" + std::to_string(font.size) + "\t" + (font.bold ? "b" : "") +
           (font.italic ? "i" : "");
}

Font fontOf(std::string_view text, Font font) {
    const std::vector<std::string_view> parts = partsOf(text);
    font.name = parts[0];
    if (parts.size() > 1) font.size = std::max(leadingNumber(parts[1]), 0);
    if (parts.size() > 2) {
        font.bold = parts[2].find('b') != std::string_view::npos;
        font.italic = parts[2].find('i') != std::string_view::npos;
    }
    return font;
}

PrintChoice choiceOf(std::string_view text, int offered) {
    const std::vector<std::string_view> parts = partsOf(text);
    const auto number = [&](std::size_t part, int otherwise) {
        return part < parts.size() && !parts[part].empty() ? std::max(leadingNumber(parts[part]), 0)
                                                           : otherwise;
    };
    PrintChoice choice;
    choice.printer = printerObject(std::string(parts[0]));
    const bool selection = parts.size() > 1 && parts[1] == "selection";
    choice.flags = selection ? offered & PRINT_SELECTION : 0;
    choice.from = number(2, 0);
    choice.to = number(3, 0);
    choice.copies = std::max(number(4, 1), 1);
    return choice;
}

}  // namespace

Answer<Font> FontDialog(const Object& owner, const Font& font) {
    if (const Code code = checkOwner(owner); code != Ok) return {font, code};
    Question question;
    question.kind = Question::Kind::Font;
    question.title = "Font";
    question.value = fontText(font);
    const Control* const control = findControl(owner);
    question.fixedWidth = control != nullptr && isEditWindowType(control->type);
    const std::string answer = view().ask(question);
    return {answer.empty() ? font : fontOf(answer, font), Ok};
}

Answer<int> ColourDialog(const Object& owner, int colour) {
    if (const Code code = checkOwner(owner); code != Ok) return {colour, code};
    Question question;
    question.kind = Question::Kind::Colour;
    question.title = "Colour";
    char text[16];
    std::snprintf(text, sizeof text, "0x%06X", static_cast<unsigned>(colour) & 0xFFFFFFU);
    question.value = text;
    const auto chosen = wholeNumber(view().ask(question));
    return {chosen ? *chosen & 0xFFFFFF : colour, Ok};
}

Answer<PrintChoice> PrintDialog(const Object& owner, int flags) {
    return PrintDialog(owner, flags, {});
}

Answer<PrintChoice> PrintDialog(const Object& owner, int flags, const std::string& printer) {
    if (const Code code = checkOwner(owner); code != Ok) return {{}, code};
    Question question;
    question.kind = Question::Kind::Print;
    question.title = "Print";
    question.rows = view().printers();
    question.value = printer + ((flags & PRINT_SELECTION) != 0 ? "\tselection" : "");
    const std::string answer = view().ask(question);
    return {answer.empty() ? PrintChoice() : choiceOf(answer, flags), Ok};
}

// ---- help ----

void SetHelpViewer(HelpViewer viewer) {
    state().helpViewer = viewer;
}

void SetBoxHelp(BoxHelp help) {
    state().boxHelp = help;
}

bool helpOn(const std::string& title, const std::string& text) {
    if (state().boxHelp == nullptr) return false;
    state().boxHelp(title, text);
    return true;
}

void userBoxHelp(const Question& question) {
    static_cast<void>(helpOn(question.title, question.text));
}

bool HtmlHelpApi(const std::string& file, const std::string& key) {
    if (state().helpViewer != nullptr && state().helpViewer(file, key)) return true;
    const std::string path = os::native(file);
    const std::string name = upper(path);
    if (!name.ends_with(".HTM") && !name.ends_with(".HTML") && !name.ends_with(".XHTML")) return false;
    if (os::sizeOf(path) < 0) return false;
    return view().openUrl("file://" + path + (key.empty() ? "" : "#" + key));
}

}  // namespace tarn::platform
