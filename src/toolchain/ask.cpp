// SPDX-License-Identifier: Apache-2.0
//
// tarnwick-ask: asks in windows for the installer that carries it, which by itself needs no toolkit.
//
//     tarnwick-ask box TITLE TEXT BUTTON...      the button that was pressed
//     tarnwick-ask folder TITLE START            the folder that was chosen
//
// The answer is the last line that is written, behind the word "answer" and a blank, since the toolkit may write lines of
// its own. It is empty when the user leaves. The exit code is 1 if no window can be shown here.
#include "os/process.h"
#include "platform/model/view.h"
#include "platform/operations/dialogs.h"

#include <cstdio>
#include <dlfcn.h>

namespace {

using namespace tarn;

bool canShowWindows() {
    const bool screen = !os::environment("DISPLAY").empty() || !os::environment("WAYLAND_DISPLAY").empty();
    return screen && ::dlopen((os::executableFolder() + "libtarnwick-qt.so").c_str(), RTLD_NOW) != nullptr;
}

}  // namespace

int main(int argc, char** argv) {
    os::setCommandLine(argc, argv);
    const std::vector<std::string>& words = os::commandLine();
    constexpr std::size_t Title = 1, Text = 2, Buttons = 3;
    if (words.size() <= Text || !canShowWindows()) return 1;
    std::string answer;
    if (words[0] == "folder") {
        answer = platform::OpenFolderDialog(words[Title], words[Text]);
    } else {
        std::string buttons;
        for (std::size_t i = Buttons; i < words.size(); ++i) buttons += words[i] + "\n";
        answer = platform::MsgBox(words[Title], words[Text], buttons);
    }
    std::printf("\nanswer %s\n", answer.c_str());
    return 0;
}
