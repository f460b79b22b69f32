// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/dialogshape.h"

#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("dialogshape", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

void showHelp(const DialogShape& shape, const Object& window) {
    if (shape.showHelp != nullptr) shape.showHelp(window);
}

void load(const DialogShape& shape, const Object& window) {
    if (shape.settings != nullptr) LOADINIFILE(shape.settings(), window);
    if (shape.load != nullptr) shape.load(window);
}

void accept(const DialogShape& shape, const Object& window) {
    const std::string problem = shape.problem == nullptr ? std::string() : shape.problem(window);
    if (!problem.empty()) {
        MsgBox(GetCaption(window), problem, "OK", BoxIcon::Error);
        return;
    }
    if (shape.settings != nullptr) SAVEINIFILE(shape.settings(), window);
    if (shape.accept != nullptr) shape.accept(window);
    if (shape.hides)
        Hide(window);
    else
        Unload(window);
}

bool press(const DialogShape& shape, const Object& window, std::string_view button) {
    if (button.empty()) return false;
    for (const DialogButton& own : shape.buttons)
        if (button == own.name) return own.action(window), true;
    if (button == shape.ok)
        accept(shape, window);
    else if (button == shape.cancel)
        Unload(window);
    else if (button == shape.help)
        showHelp(shape, window);
    else
        return false;
    return true;
}

bool pressKey(const DialogShape& shape, const Object& window, int key) {
    if (key == KEY_ESCAPE) Unload(window);
    if (key == KEY_F1) showHelp(shape, window);
    return key == KEY_ESCAPE || key == KEY_F1;
}

}  // namespace

bool DIALOGSHAPEEVENT(const DialogShape& shape, const Object& window, int event, const Object& control,
                      int parameter) {
    FRAME(DIALOGSHAPEEVENT);
    STAMP();
    switch (event) {
    case LOAD_EVENT: return load(shape, window), true;
    case COMMAND_EVENT: return press(shape, window, GetName(control));
    case KEYPRESS_EVENT: return pressKey(shape, window, parameter);
    default: return false;
    }
}

}  // namespace tarn
