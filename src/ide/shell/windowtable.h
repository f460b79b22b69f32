// SPDX-License-Identifier: GPL-3.0-or-later
//
// The windows of the environment: each enters itself beside its window function, and the shell makes them known at start.
// So a new window needs no list but its own source:
//
//     const RegisteredWindow registered("ArgumentsDlg", ARGUMENTSDLG);
//
// Modules that are shared with programs register their windows themselves when they show them.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

class RegisteredWindow {
public:
    RegisteredWindow(const char* name, WindowFunction function);
    RegisteredWindow(const RegisteredWindow&) = delete;
    RegisteredWindow& operator=(const RegisteredWindow&) = delete;

    [[nodiscard]] const char* name() const { return name_; }
    [[nodiscard]] WindowFunction function() const { return function_; }
    [[nodiscard]] const RegisteredWindow* next() const { return next_; }

private:
    const char* name_;
    WindowFunction function_;
    const RegisteredWindow* next_;
};

// All of them, in no order; null behind the last.
const RegisteredWindow* FIRSTREGISTEREDWINDOW();
// Binds them to their window functions.
void REGISTERWINDOWS();

}  // namespace tarn
