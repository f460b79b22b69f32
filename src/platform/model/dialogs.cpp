// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: common dialogs, and what belongs to the program or the desktop as a whole.
#include "platform/windowing.h"

#include "os/files.h"
#include "platform/model/state.h"

#include <sys/utsname.h>

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
                    const std::string& filter) {
    Question question;
    question.kind = kind;
    question.title = title;
    question.value = start;
    question.filter = filter;
    return view().ask(question);
}

int trace = 0, userBreak = 0;

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

std::string SaveAsDialog(const std::string& title, const std::string& start, const std::string& filter) {
    return askFile(Question::Kind::SaveFile, title, start, filter);
}

std::string OpenFolderDialog(const std::string& title, const std::string& start) {
    return askFile(Question::Kind::Folder, title, start, "");
}

void Sound() {
    view().sound();
}
void PlaySound(const std::string& wavFile) {
    view().playSound(wavFile);
}

std::string SystemInfo() {
    utsname names{};
    std::string text;
    if (os::readFile("/etc/os-release", text) == os::FileError::None)
        for (const std::string& line : linesOf(text))
            if (line.starts_with("PRETTY_NAME=\"") && line.ends_with('"'))
                return line.substr(13, line.size() - 14);
    return ::uname(&names) == 0 ? names.sysname : "Linux";
}

Answer<std::int64_t> DiskSpace(const std::string& folder) {
    const std::string path = os::native(folder);
    std::int64_t bytes = 0;
    if (!os::infoOf(path).folder || os::files().freeSpace(path, bytes) != os::FileError::None)
        return {-1, Ok};
    return {bytes, Ok};
}

void AppIcon(const std::string& file) {
    view().setIcon(file);
}

void SetBusy(bool busy) {
    int& depth = state().busy;
    if (!busy && depth == 0) return;
    depth += busy ? 1 : -1;
    if (depth == (busy ? 1 : 0)) view().setBusy(busy);
}

void SetTimer(const Object& owner, int milliseconds) {
    if (Control* const control = findControl(owner)) view().setTimer(*control, std::max(milliseconds, 0));
}

bool OpenUrl(const std::string& url) {
    return view().openUrl(url);
}
void ShowToolProgress(const std::string& text) {
    view().toolProgress(text);
}
bool ToolStopPressed() {
    return view().toolStopPressed();
}
void ShowSplash(const std::string& pictureFile, const std::vector<std::string>& lines) {
    view().showSplash(pictureFile, lines);
}
void CloseSplash() {
    view().closeSplash();
}
void SetTrace(int mode) {
    trace = mode;
}
int GetTrace() {
    return trace;
}
int GetUserBreak() {
    return userBreak;
}
void SetUserBreak(int value) {
    userBreak = value;
}

}  // namespace tarn::platform
