// SPDX-License-Identifier: Apache-2.0
//
// debuggee NAME FILE [LEFT TOP WIDTH HEIGHT]: a program under the debugger, in a process of its own, for tests with
// real keys. It shows a window with its name, and stops at line after line of a text; after a run it works without an
// event loop until the user breaks in. What its handler hears is written to the file, a line each. It ends by the
// command to stop; if it was given a place for its debugger's window, it tells then where that stood.
#include "os/files.h"
#include "platform/model/debugger/debugwindow.h"
#include "platform/resources/resource.h"
#include "platform/windowing.h"

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace tarn;
using namespace tarn::platform;

namespace {

std::FILE* output = nullptr;
bool runs = false, placed = false;

void note(const std::string& text) {
    std::fprintf(output, "%s\n", text.c_str());
    std::fflush(output);
}

void hear(DebugWindow& window, const DebugEvent& event) {
    constexpr const char* names[] = {"command", "opened", "help", "edit", "hover", "close"};
    note(names[static_cast<int>(event.message)] + (" " + std::to_string(event.number)));
    if (event.message != DebugMessage::Command) return;
    if (event.number == DEBUG_STOP) {
        const DebugPlace place = GetDebugPlace(window);
        if (placed)
            note("stood " + std::to_string(place.left) + " " + std::to_string(place.top) + " " +
                 std::to_string(place.width) + " " + std::to_string(place.height));
        EndDebug(&window);
        std::_Exit(0);
    }
    if (event.number == 114) note("asked " + InputBox("Integrated Debugger", "Expression:", ""));
    runs = event.number == 102;
    if (event.number >= 102 && event.number <= 104) LeaveDebug(window);
}

bool hearForm(const Object&, int event, const Object&, int) {
    if (event == COMMAND_EVENT) note("pressed");
    return false;
}

void work() {
    while (GetUserBreak() == 0) {}
    SetUserBreak(0);
    note("broken");
    runs = false;
}

void showForm(const std::string& name, const std::string& folder) {
    const std::string text = "Form DIALOG\n  CAPTION=\"" + name +
                             "\"\n  POSITION=0 0 100 60\n  Pushbutton press 101\n    POSITION=4 4 60 14\n"
                             "    CAPTION=\"&Press\"\nEND\n";
    static_cast<void>(os::saveFile(folder + ".rc", text, os::Durability::Unsynced));
    static_cast<void>(CompileResources({folder + ".rc"}, folder + ".rcx"));
    SetApplicationResources(folder + ".rcx");
    const Object form("Form");
    RegisterWindow(form, hearForm);
    static_cast<void>(Load(form));
    static_cast<void>(Show(form, false));
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3 && count != 7) return 2;
    placed = count == 7;
    const auto number = [&](int i) { return std::atoi(arguments[i]); };
    const DebugPlace place =
        placed ? DebugPlace{number(3), number(4), number(5), number(6)} : DebugPlace{300, 200, 500, 300};
    output = std::fopen(arguments[2], "w");
    if (output == nullptr) return 2;
    showForm(arguments[1], arguments[2]);
    DebugWindow* const window = StartDebug(Object("Form"), "Integrated Debugger [inactive]",
                                           "stop\nrun\nfeet1\nfeet2\nstop2\n\ncode3", "BUG", hear, place);
    if (window == nullptr) return 2;
    DebugAddstrings(*window, "first\nsecond\nthird\nfourth\nfifth\nsixth\nseventh\neighth\nninth\n");
    SetDebugNumbers(*window, true);
    for (int line = 1;; line = line % DebugCount(*window) + 1) {
        SetDebugFlags(*window, line, DEBUG_CURRENT);
        SetDebugStatus(*window, std::string(arguments[1]) + ", line " + std::to_string(line));
        SetDebugCaption(*window, "Integrated Debugger");
        DebugSelect(*window, line, true);
        note("line " + std::to_string(line));
        ActivateDebug(*window);
        SetDebugFlags(*window, line, 0);
        SetDebugCaption(*window, "Integrated Debugger [inactive]");
        const DebugPlace now = GetDebugPlace(*window);
        note("place " + std::to_string(now.width) + " " + std::to_string(now.height));
        if (runs) work();
    }
}
