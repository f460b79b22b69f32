// SPDX-License-Identifier: Apache-2.0
//
// The only place where the run-time itself reaches the platform.
#include "kernel/run/desktop.h"

#include "platform/windowing.h"

#include <utility>

namespace tarn {

namespace {

std::string box(const std::string& title, const std::string& text, const std::string& buttons) {
    return platform::MsgBox(title, text, buttons, platform::BoxIcon::Error);
}

void close() {
    platform::PlaySound({});  // no file: silence
    platform::DestroyAllWindows();
}

Desktop desktop{[] { platform::Sound(); }, box, [](int mode) { platform::SetTrace(mode); }, close};

}  // namespace

Desktop UseDesktop(const Desktop& other) {
    return std::exchange(desktop, other);
}

const Desktop& TheDesktop() {
    return desktop;
}

}  // namespace tarn
