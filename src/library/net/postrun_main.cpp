// SPDX-License-Identifier: Apache-2.0
//
// postrun.exe LINE: hands a mail with its attachment to the desktop's mail program. LINE is the command line of postrun.h
// as one argument. xdg-email is started with a list of arguments, without a shell, and not waited for.
//
// Exit status: 0 the mail was handed over, 1 it could not be, 2 the command line is wrong. What went wrong is said on
// standard error, and in a box where there is a screen.
#include "library/net/postrun.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"

#include <cstdio>

namespace {

// By a process of its own, so that this one needs no window.
void showBox(const std::string& text) {
    if (tarn::os::environment("DISPLAY").empty() && tarn::os::environment("WAYLAND_DISPLAY").empty()) return;
    tarn::os::StartError ignored{};
    tarn::os::processes().start(
        {tarn::os::executableFolder() + "tarnwick-fatal", {"Send Email", text}, "", ""}, ignored);
}

int fail(int status, const std::string& text) {
    std::fprintf(stderr, "postrun: %s\n", text.c_str());
    showBox(text);
    return status;
}

// Empty if no folder has it.
std::string onPath(const std::string& program) {
    return tarn::FILEFINDPATHNAME(tarn::STRREPLACE(tarn::os::environment("PATH"), ":", ";"), program);
}

int handOver(const tarn::PostrunMail& mail) {
    if (!mail.attachment.empty() && tarn::os::sizeOf(mail.attachment) < 0)
        return fail(1, "The file to attach was not found: " + mail.attachment);
    const std::string program = onPath("xdg-email");
    tarn::os::StartError error{};
    const auto child =
        program.empty()
            ? nullptr
            : tarn::os::processes().start({program, tarn::XDGEMAILARGUMENTS(mail), "", "", true}, error);
    return child != nullptr ? 0
                            : fail(1, "The mail program of the desktop could not be started (xdg-email).");
}

}  // namespace

int main(int argc, char** argv) {
    tarn::os::setCommandLine(argc, argv);
    if (argc != 2) return fail(2, "One argument is needed: the line with the options of the mail.");
    tarn::PostrunMail mail;
    const std::string problem = tarn::PARSEPOSTRUNLINE(argv[1], mail);
    return problem.empty() ? handOver(mail) : fail(2, problem);
}
