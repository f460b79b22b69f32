// SPDX-License-Identifier: Apache-2.0
//
// The trace: a line for each call of a function, to the debug output or to the end of a file.
#include "kernel/run/trace.h"

#include "kernel/run/desktop.h"
#include "kernel/run/runtime.h"
#include "kernel/run/state.h"
#include "os/clock.h"
#include "os/files.h"
#include "os/process.h"

#include <cstdio>

namespace tarn {

namespace {

std::int32_t traceMode = 0;

// What goes wrong here stays here: a program under trace runs as it does without.
void appendToFile(const std::string& line) {
    const std::string path = TraceFile();
    os::Handle file = -1;
    if (os::files().open(path, os::OpenMode::Append, 0644, file) != os::FileError::None) {
        os::makeFolders(os::stateFolder());
        if (os::files().open(path, os::OpenMode::Append, 0644, file) != os::FileError::None) return;
    }
    os::files().write(file, 0, line);
    os::files().close(file);
}

std::string now() {
    const os::CivilTime time = os::clock().local(os::clock().now());
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", time.year, time.month, time.day,
                  time.hour, time.minute, time.second);
    return text;
}

}  // namespace

std::string TraceFile() {
    return os::stateFolder() + "trace.txt";
}

void Trace(std::string_view text) {
    if (traceMode == 0) return;
    const std::string line = std::string(text) + "\n";
    if (traceMode == 1)
        os::debugOutput(line);
    else
        appendToFile(line);
}

void SetTraceMode(std::int32_t mode) {
    if (mode < 0 || mode > 2) return;
    traceMode = mode;
    ChooseFrames();
    TheDesktop().setTrace(mode);
    const std::string dashes(40, '-');
    Trace(dashes);
    Trace(os::executablePath() + " " + now() + " trace=" + std::to_string(mode));
    Trace(dashes);
}

std::int32_t GetTraceMode() {
    return traceMode;
}

}  // namespace tarn
