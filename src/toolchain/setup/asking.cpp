// SPDX-License-Identifier: Apache-2.0
#include "toolchain/setup/asking.h"

#include "os/paths.h"
#include "os/process.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <unistd.h>

namespace tarn::setup {
namespace {

constexpr std::string_view Answer = "\nanswer ";  // in front of what the user has chosen

bool hasScreen() {
    return !os::environment("DISPLAY").empty() || !os::environment("WAYLAND_DISPLAY").empty();
}

bool hasTerminal() {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 1;
}

// A choice without its mark, and the letter behind it.
std::string wordOf(const std::string& choice) {
    const std::size_t mark = choice.find('&');
    return mark == std::string::npos ? choice : choice.substr(0, mark) + choice.substr(mark + 1);
}
char letterOf(const std::string& choice) {
    const std::size_t mark = choice.find('&');
    const char c = mark + 1 < choice.size() ? choice[mark + 1] : choice[0];
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

User::~User() {
    for (const std::string& file : unpacked_) os::files().remove(file);
    if (!scratch_.empty()) os::files().removeFolder(scratch_);
}

void User::useWindowsOf(const Installer& installer) {
    if (quiet_ || !hasScreen() || !installer.package.holds(AskName)) return;
    std::string pattern = os::environment("TMPDIR");
    if (!pattern.starts_with('/')) pattern = "/tmp";
    pattern += "/tarnwick-setup-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) return;
    scratch_ = pattern;
    Unpacker unpacker(installer.file, installer.layout);
    Package package;
    if (!unpacker.readHead(package).empty()) return;
    constexpr std::size_t Needed = 3;  // what asks, and its two libraries, stand first
    for (std::size_t i = 0; i < Needed && i < package.files.size(); ++i) {
        const PackedFile& file = package.files[i];
        unpacked_.push_back(scratch_ + "/" + file.name);
        os::Handle handle = -1;
        if (os::files().open(unpacked_.back(), os::OpenMode::CreateNew, 0755, handle) != os::FileError::None)
            return;
        std::int64_t at = 0;
        const std::string failure = unpacker.readFile(file, [&](std::string_view bytes) {
            const bool ok = os::files().write(handle, at, bytes) == os::FileError::None;
            at += static_cast<std::int64_t>(bytes.size());
            return ok;
        });
        os::files().close(handle);
        if (!failure.empty()) return;
    }
    folder_ = scratch_;
}

void User::useWindowsIn(const std::string& folder) {
    if (!quiet_ && hasScreen() && os::sizeOf(folder + "/" + std::string(AskName)) > 0) folder_ = folder;
}

bool User::canAsk() const {
    return !quiet_ && (!folder_.empty() || hasTerminal());
}

// Shows a window and waits for its answer; false, from then on too, if no window can be shown.
bool User::run(const std::vector<std::string>& arguments, std::string& answer) {
    if (folder_.empty()) return false;
    os::StartError error = os::StartError::None;
    const auto child = os::processes().start({.program = folder_ + "/" + std::string(AskName),
                                              .arguments = arguments,
                                              .folder = {},
                                              .outputFile = {},
                                              .piped = true},
                                             error);
    os::ExitState state;
    if (child != nullptr) {
        constexpr std::size_t Most = 64 * 1024;
        while (!state.ended) {
            state = child->wait(100);
            while (child->readOutput(answer, Most) > 0) {}
        }
    }
    if (child == nullptr || state.code != 0 || state.signal != 0) {
        folder_.clear();
        return false;
    }
    const std::size_t at = answer.rfind(Answer);
    if (at == std::string::npos) return false;
    answer.erase(0, at + Answer.size());
    if (!answer.empty() && answer.back() == '\n') answer.pop_back();
    return true;
}

std::size_t User::ask(const std::string& title, const std::string& text,
                      const std::vector<std::string>& choices) {
    std::vector<std::string> arguments = {"box", title, text};
    arguments.insert(arguments.end(), choices.begin(), choices.end());
    std::string answer;
    if (run(arguments, answer)) {
        for (std::size_t i = 0; i < choices.size(); ++i)
            if (answer == choices[i]) return i;
        return choices.size() - 1;
    }
    if (!hasTerminal()) return choices.size() - 1;
    std::cout << text << "\n";
    for (const std::string& choice : choices)
        std::cout << "  " << letterOf(choice) << "  " << wordOf(choice) << "\n";
    while (std::cout << "> " << std::flush && std::getline(std::cin, answer))
        for (std::size_t i = 0; i < choices.size(); ++i)
            if (answer.size() == 1 && answer[0] == letterOf(choices[i])) return i;
    return choices.size() - 1;
}

std::string User::askFolder(const std::string& title, const std::string& proposed) {
    std::string answer;
    if (run({"folder", title, proposed}, answer)) return answer;
    if (!hasTerminal()) return {};
    std::cout << "The folder, with its full path, or an empty line:\n> " << std::flush;
    return std::getline(std::cin, answer) ? answer : std::string();
}

void User::tell(const std::string& title, const std::string& text) {
    std::string ignored;
    if (percent_ >= 0) std::fputs("\n", stdout);
    percent_ = -1;
    if (!run({"box", title, text, "OK"}, ignored)) std::fprintf(stderr, "%s\n", text.c_str());
}

void User::progress(std::int64_t done, std::int64_t total) {
    const int percent = total > 0 ? static_cast<int>(done * 100 / total) : 100;
    if (quiet_ || !hasTerminal() || percent == percent_) return;
    percent_ = percent;
    std::printf("\r%d %%", percent);
    std::fflush(stdout);
}

}  // namespace tarn::setup
