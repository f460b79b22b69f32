// SPDX-License-Identifier: Apache-2.0
//
// The edit window by itself: its library, without a model behind it.
#pragma once

#include "platform/qt/controls/editarea.h"
#include "support/places.h"
#include "ui/typing.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QWidget>

#include <dlfcn.h>

#include <memory>
#include <string>
#include <vector>

namespace tarn::platform::qt {

// The area in a window of its own that is shown and has the keys. What the area tells, nobody hears.
class EditAreaTest : public ::testing::Test, public EditEvents {
protected:
    void SetUp() override {
        static void* library = dlopen(BINARY_DIR "/libtarnwick-edit.so", RTLD_NOW | RTLD_GLOBAL);
        ASSERT_NE(library, nullptr) << dlerror();
        const auto make = reinterpret_cast<MakeEditArea>(dlsym(library, "tarn_make_edit_area"));
        ASSERT_NE(make, nullptr);
        window.resize(600, 400);
        area = make(&window, *this);
        area->widget()->setGeometry(window.rect());
        store = area->store();
        prepare();
        window.show();
        window.activateWindow();
        area->textWidget()->setFocus();
        QApplication::processEvents();
    }
    virtual void prepare() { area->setFlags(0); }  // ahead of its being shown
    void changed() override {}
    void doubleClicked(QPoint) override {}
    void infoAsked(QPoint) override {}

    QWidget window;
    EditArea* area = nullptr;
    std::unique_ptr<TextStore> store;
};

// What it tells is counted.
class EditTest : public EditAreaTest {
protected:
    static constexpr int AllLooks = LOOK_LINE | LOOK_BRACKETS | LOOK_FOLDS | LOOK_CHANGES;

    void changed() override { ++changes; }
    void doubleClicked(QPoint) override { ++doubles; }
    void infoAsked(QPoint) override { ++infos; }
    void zoomed(int points) override { zoom = points; }
    bool nameClicked(int position) override {
        clicked = position;
        return follows;
    }

    // A key with the text that it makes.
    void press(int code, const QString& text = {}, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        sendKey(area->textWidget(), code, modifiers, text);
    }
    void type(const QString& text) { sendText(area->textWidget(), text); }
    void caret(int position) { store->select(position, 0); }

    // A message of the control itself, for looking at what has no other way out.
    long ask(unsigned message, unsigned long w = 0, long l = 0) {
        long result = 0;
        static const auto send = reinterpret_cast<long (*)(const void*, unsigned, unsigned long, long)>(
            dlsym(RTLD_DEFAULT, "_ZNK17QsciScintillaBase13SendScintillaEjml"));
        if (send != nullptr) result = send(area->textWidget(), message, w, l);
        return result;
    }
    int styleAt(int position) {
        ask(4003, 0, -1);  // colourise all
        return static_cast<int>(ask(2010, static_cast<unsigned long>(position - 1)));
    }
    int foreOf(int style) { return static_cast<int>(ask(2481, static_cast<unsigned long>(style))); }

    static std::string placesOf(const std::vector<Selection>& marks) {
        std::string places;
        for (const Selection& mark : marks)
            places += std::to_string(mark.start) + "+" + std::to_string(mark.length) + " ";
        return places;
    }

    int changes = 0, doubles = 0, infos = 0, zoom = 0, clicked = 0;
    bool follows = false;
};

}  // namespace tarn::platform::qt
