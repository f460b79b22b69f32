// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/windowtable.h"

#include "ide/shell/ide.h"

#include <utility>

MODULE("ide", tarn::IDE_ONERROR)

namespace tarn {
namespace {

constinit const RegisteredWindow* first = nullptr;  // filled before the program begins

}  // namespace

RegisteredWindow::RegisteredWindow(const char* name, WindowFunction function)
    : name_(name), function_(function), next_(std::exchange(first, this)) {}

const RegisteredWindow* FIRSTREGISTEREDWINDOW() {
    return first;
}

void REGISTERWINDOWS() {
    FRAME(REGISTERWINDOWS);
    STAMP();
    for (const RegisteredWindow* window = first; window != nullptr; window = window->next())
        RegisterWindow(Object(window->name()), window->function());
    STAMP();
}

}  // namespace tarn
