// SPDX-License-Identifier: Apache-2.0
//
// Windows made from resource text on real widgets, whose function notes what it hears.
#pragma once

#include "platform/model/view.h"
#include "ui/typing.h"
#include "ui/window_fixture.h"

#include <QApplication>

#include <algorithm>
#include <string>
#include <vector>

namespace tarn::platform {

inline constexpr char ViewResources[] = R"(
Main DIALOG
  CAPTION="Tarnwick"
  POSITION=0 0 320 14
  BORDERSTYLE=2
  MENU=MainMenu
  Bitmapbutton btnopen 201
    POSITION=2 1 16 12
    CAPTION="Open"
    HINT="Open a file"
END
MainMenu MENU
  Menuitem
    POSITION=1
    CAPTION="&File"
  Menuitem file_open 101
    POSITION=2
    CAPTION="&Open..."
    SHORTCUT="Ctrl+O"
  Menuitem file_copy 102
    POSITION=2
    CAPTION="&Copy"
    SHORTCUT="Ctrl+C"
  Menuitem
    POSITION=2
    CAPTION="-----"
  Menuitem file_more 103
    POSITION=2
    CAPTION="&More"
  Menuitem file_deep 104
    POSITION=3
    CAPTION="&Deep"
    ARRAY=deep
  Menuitem
    POSITION=1
    CAPTION="&Run"
  Menuitem run_start 105
    POSITION=2
    CAPTION="&Start"
    SHORTCUT="F5"
    CHECKED=1
END
Code EDITWINDOW
  CAPTION="Code"
  POSITION=10 20 200 100
END
Form DIALOG
  CAPTION="Form"
  POSITION=0 0 220 160
  Label lblname 300
    POSITION=4 4 60 10
    CAPTION="&Name:"
  Edit edtname 301
    POSITION=70 4 100 12
    TEXT="first"
  Edit edtlines 302
    POSITION=70 20 100 30
    MULTILINE=1
  Combobox cmbdrop 303
    POSITION=70 54 100 40
    COMBOSTYLE=2
    ROWS="one\ntwo\nthree"
  Combobox cmbedit 304
    POSITION=70 70 100 40
    ROWS="red\ngreen"
  Listbox lstrows 305
    POSITION=4 20 60 40
    ROWS="a\nb\nc"
  Checkbox chkon 306
    POSITION=4 64 60 10
    CAPTION="&On"
  Groupbox grp 310
    POSITION=2 76 64 30
    CAPTION="Choice"
  Radiobutton rbfirst 307
    POSITION=4 84 60 10
    CAPTION="F&irst"
    ARRAY=choice
    VALUE=1
  Radiobutton rbsecond 308
    POSITION=4 94 60 10
    CAPTION="&Second"
    ARRAY=choice
  Radiobutton rbother 309
    POSITION=70 94 60 10
    CAPTION="O&ther"
    ARRAY=elsewhere
    VALUE=1
  Scrollbar scroll 311
    POSITION=4 110 100 8
  Pushbutton btnok 312
    POSITION=4 130 40 14
    CAPTION="OK"
    DEFAULT=1
  Pushbutton btncancel 313
    POSITION=50 130 40 14
    CAPTION="Cancel"
    CANCEL=1
END
)";

class ViewTest : public WindowTest {
protected:
    struct Heard {
        std::string window;
        int event, control, parameter;
    };
    static std::vector<Heard>& heard() {
        static std::vector<Heard> all;
        return all;
    }
    static int& handledKey() {
        static int key = 0;
        return key;
    }

    static bool listen(const Object& window, int event, const Object& control, int parameter) {
        heard().push_back({window.window(), event, control.number(), parameter});
        if (event == KEYPRESS_EVENT) return parameter == handledKey();
        return event == CLOSE_EVENT;
    }

    static int count(int event, int control = -1) {
        return static_cast<int>(std::count_if(heard().begin(), heard().end(), [&](const Heard& one) {
            return one.event == event && (control < 0 || one.control == control);
        }));
    }

    static inline const Object Main{"Main"}, Code{"Code"}, Form{"Form"};
    static Object in(const Object& window, int number) { return Object(window.window(), number); }

    void SetUp() override {
        ASSERT_EQ(useResources(folder, ViewResources), "");
        ASSERT_TRUE(load({Main, Code, Form}, listen));
        handledKey() = 0;
        settle();
    }

    static void settle() {
        WindowTest::settle();
        heard().clear();
    }
    static QWidget* top(const Object& window) { return shownWindow(window.window()); }
    template <class Widget>
    static Widget* find(const Object& window, const char* name) {
        return shownWidget<Widget>(window.window(), name);
    }
    static void show(const Object& window) {
        Show(window, false);
        settle();
    }
    static void press(QWidget* to, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                      const QString& text = {}) {
        sendKey(to, key, modifiers, text);
        DoEvents();
    }
    static QWidget* editor() { return shownEditor(Code.window()); }
};

}  // namespace tarn::platform
