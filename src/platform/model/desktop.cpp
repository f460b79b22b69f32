// SPDX-License-Identifier: Apache-2.0
//
// What belongs to the program or the desktop as a whole.
#include "platform/operations/system.h"

#include "os/files.h"
#include "platform/model/access_internal.h"

#include <algorithm>
#include <sys/utsname.h>
#include <utility>

namespace tarn::platform {

namespace {

int trace = 0;

}  // namespace

void Sound() {
    view().sound();
}
// Silence needs no view where nothing can sound: each program asks for it at its end, also one without windows.
void PlaySound(const std::string& wavFile) {
    static bool sounds = false;
    if (std::exchange(sounds, !wavFile.empty()) || !wavFile.empty()) view().playSound(wavFile);
}

std::string SystemInfo() {
    constexpr std::string_view label = "\nPRETTY_NAME=\"";
    std::string text;
    if (os::readFile("/etc/os-release", text) == os::FileError::None) {
        text.insert(0, "\n");
        const std::size_t at = text.find(label);
        const std::size_t end = at == std::string::npos ? at : text.find('"', at + label.size());
        if (end != std::string::npos) return text.substr(at + label.size(), end - at - label.size());
    }
    utsname names{};
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
void SetTrace(int mode) {
    trace = mode;
}
int GetTrace() {
    return trace;
}

Code RaiseGuiRtx(Code code) {
    return code;
}

}  // namespace tarn::platform
