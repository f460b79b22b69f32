// SPDX-License-Identifier: Apache-2.0
//
// Windows of the object model without a screen: each kind of control, a menu, a window function that notes its events,
// and a user who answers questions.
#pragma once

#include "os/process.h"
#include "platform/model/model.h"
#include "platform/windowing.h"
#include "support/resources.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>

namespace tarn::platform {

inline constexpr char ModelResources[] = R"(
Main DIALOG
  CAPTION="Main"
  POSITION=4 8 40 80
  MENU=MainMenu
  Label label1 101
    POSITION=4 8 4 8
    CAPTION="A label"
  Edit edit1 102
    TEXT="first"
    MAXLENGTH=10
  Combobox combo0 103
    COMBOSTYLE=0
    ROWS="One\nTwo\nthree"
    TEXT="typed"
  Combobox combo2 104
    COMBOSTYLE=2
    ROWS="One\nTwo\nthree"
  Listbox list1 105
  Iconlist icons1 106
  Pushbutton ok 107
    DEFAULT=1
  Pushbutton cancel 108
    CANCEL=1
  Checkbox check1 109
  Scrollbar bar1 110
    MINIMUM=-5
    MAXIMUM=5
    VALUE=2
  Radiobutton radio1 111
    ARRAY=group
    VALUE=1
  Radiobutton radio2 112
    ARRAY=group
  Radiobutton radio3 113
    ARRAY=GROUP
  Radiobutton free1 114
  Radiobutton free2 115
  Label between 116
  Radiobutton other1 117
    VALUE=1
  Edit memo 118
    MULTILINE=1
  Pushbutton disabled 119
    ENABLED=0
  Bitmapbutton tool 120
    PICTURE="open"
END

MainMenu MENU
  Menuitem file 201
    POSITION=1
    CAPTION="&File"
  Menuitem item_01 202
    POSITION=2
    CAPTION="one"
    ARRAY=item_01
  Menuitem item_02 203
    POSITION=2
    ARRAY=item_01
  Menuitem item_03 204
    POSITION=2
    ARRAY=item_01
  Menuitem below 205
    POSITION=3
  Menuitem file_exit 206
    POSITION=2
    SHORTCUT="Ctrl+Shift+F4"
    CHECKED=1
END

Editor EDITWINDOW
  FLAGS=128
  MAXLENGTH=500
END

Second DIALOG
  BORDERSTYLE=2
  Pushbutton ok 1
END
Third DIALOG
  Pushbutton ok 1
END
)";

class ModelTest : public ::testing::Test {
protected:
    struct Sent {
        std::string window;
        int event;
        std::string sender;
        int parameter;
        friend bool operator==(const Sent&, const Sent&) = default;
        friend std::ostream& operator<<(std::ostream& out, const Sent& sent) {
            return out << sent.window << " " << sent.event << " " << sent.sender << " " << sent.parameter;
        }
    };

    static inline std::vector<Sent> events;
    static inline std::function<bool(const Object&, int, const Object&, int)> handler;

    static bool windowFunction(const Object& window, int event, const Object& sender, int parameter) {
        const std::string name = sender.isWindow() ? sender.window() : GetName(sender).value;
        events.push_back({window.window(), event, name, parameter});
        return handler && handler(window, event, sender, parameter);
    }

    const Object main{"Main"}, editor{"Editor"}, second{"Second"}, third{"Third"};
    TempFolder folder;
    os::SteeredClock clock;
    os::Clock* clockBefore = nullptr;
    std::unique_ptr<View> viewBefore;
    std::deque<std::string> answers;
    std::vector<Question> asked;

    void SetUp() override {
        ASSERT_EQ(useResources(folder, ModelResources), "");
        clockBefore = os::useClock(&clock);
        viewBefore = useView(makeHeadlessView([this](const Question& question) {
            asked.push_back(question);
            if (answers.empty()) return std::string();
            const std::string answer = answers.front();
            answers.pop_front();
            return answer;
        }));
        for (const Object& window : {main, editor, second, third}) RegisterWindow(window, windowFunction);
    }
    void TearDown() override {
        handler = nullptr;
        DestroyAllWindows();
        useView(std::move(viewBefore));
        os::useClock(clockBefore);
        SetApplicationResources("");
        events.clear();
    }
    void loadMain() {
        ASSERT_EQ(Load(main), Ok);
        ASSERT_EQ(Show(main, false).code, Ok);
        events.clear();
    }
    // What the user does while loops run; each step is one call.
    void play(std::vector<std::function<void()>> steps) {
        auto left = std::make_shared<std::deque<std::function<void()>>>(steps.begin(), steps.end());
        view().setIdle([left] {
            ASSERT_FALSE(left->empty()) << "a loop goes on and nobody is there to end it";
            const auto step = left->front();
            left->pop_front();
            step();
        });
    }
    Object in(const Object& window, const char* name) { return FindControl(window, name); }
    Object mine(const char* name) { return FindControl(main, name); }
    Control& control(const char* name) { return *findControl(mine(name)); }
};

}  // namespace tarn::platform
