// SPDX-License-Identifier: Apache-2.0
#include "platform/model/model.h"

#include "os/files.h"
#include "os/process.h"
#include "platform/resources/resource.h"
#include "platform/windowing.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

const std::string resources = R"(
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

std::vector<Sent> events;
std::function<bool(const Object&, int, const Object&, int)> handler;

bool windowFunction(const Object& window, int event, const Object& sender, int parameter) {
    const std::string name = sender.isWindow() ? sender.window() : GetName(sender).value;
    events.push_back({window.window(), event, name, parameter});
    return handler && handler(window, event, sender, parameter);
}

class ModelTest : public ::testing::Test {
protected:
    const Object main{"Main"}, editor{"Editor"}, second{"Second"}, third{"Third"};
    TempFolder folder;
    os::SteeredClock clock;
    os::Clock* clockBefore = nullptr;
    std::unique_ptr<View> viewBefore;
    std::deque<std::string> answers;
    std::vector<Question> asked;

    void SetUp() override {
        const std::string rc = folder / "a.rc";
        ASSERT_TRUE(os::saveFile(rc, resources, os::Durability::Unsynced).ok());
        ASSERT_EQ(CompileResources({rc}, folder / "a.rcx"), "");
        SetApplicationResources(folder / "a.rcx");
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

// ---- names ----

TEST_F(ModelTest, ObjectsCompareWithoutRegardToCase) {
    EXPECT_EQ(Object("main"), main);
    EXPECT_EQ(Object("MAIN", 5), Object("Main", 5));
    EXPECT_FALSE(Object("Main", 5) == main);
    EXPECT_EQ(Object("MAIN", 5).owner(), main);
    EXPECT_TRUE(Object().empty());
    EXPECT_FALSE(main.empty());
}

TEST_F(ModelTest, TypeWordsAreReadInAnyCase) {
    for (int i = static_cast<int>(Type::Dialog); i <= static_cast<int>(Type::Clipboard); ++i)
        EXPECT_EQ(static_cast<int>(typeFromName(typeName(static_cast<Type>(i)))), i);
    EXPECT_EQ(typeFromName("BITMAPBUTTON"), Type::Bitmapbutton);
    EXPECT_EQ(typeFromName(""), Type::None);
    EXPECT_EQ(typeFromName("Widget"), Type::None);
}

TEST_F(ModelTest, ControlsAreFoundByNameArrayNumberAndHandle) {
    loadMain();
    EXPECT_EQ(mine("LABEL1"), Object("Main", 101));
    EXPECT_EQ(mine("group"), Object("Main", 111)) << "an array stands for its first member";
    EXPECT_EQ(mine("file_exit"), Object("Main", 206));
    EXPECT_TRUE(mine("none").empty());
    EXPECT_TRUE(mine("").empty());
    EXPECT_TRUE(FindControl(second, "ok").empty());
    EXPECT_EQ(FindWindow("MAIN"), main);
    EXPECT_TRUE(FindWindow("Second").empty());
    EXPECT_EQ(FindHandle(GetHandle(mine("ok")).value), mine("ok"));
    EXPECT_EQ(FindHandle(GetHandle(main).value), main);
    EXPECT_TRUE(FindHandle(0).empty());
    EXPECT_TRUE(FindHandle(99999).empty());
    EXPECT_EQ(GetName(mine("LABEL1")).value, "label1");
    EXPECT_EQ(GetName(Object("MAIN")).value, "Main");
}

TEST_F(ModelTest, HandlesAreNeverUsedAgain) {
    std::set<int> seen;
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(Load(main), Ok);
        const auto list = ControlList(main).value;
        EXPECT_EQ(list.size(), 26u);
        for (const Object& object : list) EXPECT_TRUE(seen.insert(GetHandle(object).value).second);
        EXPECT_TRUE(seen.insert(GetHandle(main).value).second);
        EXPECT_EQ(Unload(main), Ok);
    }
}

TEST_F(ModelTest, TypesAreTold) {
    EXPECT_EQ(GetTypeof(main), "");
    loadMain();
    EXPECT_EQ(GetTypeof(main), "Dialog");
    EXPECT_EQ(GetTypeof(mine("tool")), "Bitmapbutton");
    EXPECT_EQ(GetTypeof(mine("file_exit")), "Menuitem");
    EXPECT_EQ(GetTypeof(Object("Main", 9999)), "");
    EXPECT_EQ(GetTypeof(Object()), "");
    ASSERT_EQ(Load(editor), Ok);
    EXPECT_EQ(GetTypeof(editor), "Editwindow");
}

// ---- life ----

TEST_F(ModelTest, LoadSendsLoadEventOnceBeforeTheWindowIsShown) {
    handler = [](const Object& window, int event, const Object&, int) {
        if (event == LOAD_EVENT) {
            EXPECT_TRUE(IsLoaded(window));
            EXPECT_FALSE(GetVisible(window).value);
        }
        return false;
    };
    EXPECT_FALSE(IsLoaded(main));
    EXPECT_EQ(Load(main), Ok);
    EXPECT_EQ(Load(Object("MAIN")), Ok) << "loading a loaded window does nothing";
    EXPECT_EQ(events, (std::vector<Sent>{{"Main", LOAD_EVENT, "Main", 0}}));
    EXPECT_TRUE(IsLoaded(main));
    EXPECT_TRUE(IsLoaded(mine("ok")));
    EXPECT_FALSE(IsLoaded(Object("Main", 4711)));
}

TEST_F(ModelTest, LoadOfWhatIsNotThereTellsWhy) {
    EXPECT_EQ(Load(Object("Absent")), WindowNotInResources);
    EXPECT_EQ(Load(Object()), WindowNotInResources);
    SetApplicationResources(folder / "absent.rcx");
    EXPECT_EQ(Load(main), 704);
    EXPECT_EQ(Load(main, folder / "absent.rc", "Main"),
              "'" + (folder / "absent.rc") + "' cannot be read. " +
                  std::string(os::describe(os::FileError::NotFound)));
    EXPECT_EQ(Load(main, folder / "a.rc", "None"),
              "'" + (folder / "a.rc") + "', line 1: 'None' was not found.");
    EXPECT_FALSE(IsLoaded(main));
}

TEST_F(ModelTest, LoadFromAFileUnderAnotherName) {
    const Object test("TestDlg");
    RegisterWindow(test, windowFunction);
    for (const char* file : {"a.rc", "a.rcx"}) {
        EXPECT_EQ(Load(test, folder / file, "main"), "");
        EXPECT_EQ(GetCaption(test).value, "Main");
        EXPECT_EQ(FindControl(test, "ok"), Object("TestDlg", 107));
        EXPECT_NE(Load(test, folder / file, "main"), "") << "it is loaded already";
        EXPECT_EQ(Unload(test), Ok);
    }
    ASSERT_TRUE(os::saveFile(folder / "bad.rc", "Main DIALOG\nLabel a 1\nLabel b 1\nEND\n").ok());
    EXPECT_EQ(Load(test, folder / "bad.rc", "Main"),
              "'" + (folder / "bad.rc") + "', line 3: The number 1 is already used in this window.");
    EXPECT_FALSE(IsLoaded(test));
}

TEST_F(ModelTest, WhatAResourceFileDoesNotMentionHasTheValueOfTheTable) {
    loadMain();
    ASSERT_EQ(Load(second), Ok);
    ASSERT_EQ(Load(editor), Ok);
    const Window &dialog = *findWindow(second), &edit = *findWindow(editor);
    EXPECT_FALSE(dialog.maxButton);
    EXPECT_FALSE(dialog.minButton);
    EXPECT_TRUE(dialog.closeBox);
    EXPECT_TRUE(edit.maxButton);
    EXPECT_TRUE(edit.minButton);
    EXPECT_EQ(edit.borderStyle, 2);
    EXPECT_FALSE(control("tool").tabStop);
    EXPECT_TRUE(control("ok").tabStop);
    EXPECT_EQ(control("list1").scrollBars, 2);
    EXPECT_EQ(control("memo").scrollBars, 0);
    EXPECT_EQ(control("list1").border, 1);
    EXPECT_EQ(control("label1").border, 0);
    EXPECT_EQ(control("check1").alignment, 1);
    EXPECT_EQ(control("label1").alignment, 0);
    EXPECT_EQ(control("check1").value, 0);
    EXPECT_EQ(control("combo2").comboStyle, 2) << "mentioned";
    EXPECT_EQ(control("bar1").minimum, -5) << "mentioned";
}

TEST_F(ModelTest, UnloadSendsCloseAndObeysAVeto) {
    loadMain();
    bool veto = true;
    handler = [&](const Object&, int event, const Object&, int) { return event == CLOSE_EVENT && veto; };
    EXPECT_EQ(Unload(main), Ok);
    EXPECT_TRUE(IsLoaded(main));
    EXPECT_TRUE(GetVisible(main).value);
    veto = false;
    EXPECT_EQ(Unload(main), Ok);
    EXPECT_FALSE(IsLoaded(main));
    EXPECT_EQ(events, (std::vector<Sent>(2, {"Main", CLOSE_EVENT, "Main", 0})));
    EXPECT_EQ(Unload(main), WindowNotLoaded);
}

TEST_F(ModelTest, EveryOperationOnWhatIsNotLoadedGives702AndOnANumberThatIsNot727) {
    const auto codes = [](const Object& o) {
        return std::vector<Code>{GetCaption(o).code,
                                 SetCaption(o, ""),
                                 GetText(o).code,
                                 SetText(o, ""),
                                 GetTextLength(o).code,
                                 GetTokens(o).code,
                                 SetTokens(o, ""),
                                 GetSelText(o).code,
                                 SetSelText(o, ""),
                                 GetSelection(o).code,
                                 SetSelection(o, 1, 1),
                                 GetValue(o).code,
                                 SetValue(o, 1),
                                 GetChecked(o).code,
                                 SetChecked(o, true),
                                 GetModify(o).code,
                                 SetModify(o, true),
                                 GetReadonly(o).code,
                                 GetMaxLength(o).code,
                                 SetMaxLength(o, 1),
                                 GetPasswordChar(o).code,
                                 SetPasswordChar(o, 1),
                                 GetCombotext(o).code,
                                 SetCombotext(o, ""),
                                 GetCombostyle(o).code,
                                 GetMin(o).code,
                                 SetMin(o, 0),
                                 GetMax(o).code,
                                 SetMax(o, 1),
                                 GetEnabled(o).code,
                                 SetEnabled(o, true),
                                 GetFlags(o).code,
                                 SetFlags(o, 0),
                                 GetShortcut(o).code,
                                 SetShortcut(o, "F3"),
                                 GetMenulevel(o).code,
                                 GetHint(o).code,
                                 SetHint(o, ""),
                                 GetBorderStyle(o).code,
                                 GetPicture(o).code,
                                 SetPicture(o, ""),
                                 GetListCount(o).code,
                                 GetListIndex(o).code,
                                 SetListIndex(o, 0),
                                 GetList(o, 1).code,
                                 SetList(o, 1, ""),
                                 AddItem(o, ""),
                                 AddItem(o, 1, ""),
                                 RemoveItem(o, 1),
                                 Clear(o),
                                 GetPosition(o, WINDOW_UNIT).code,
                                 SetPosition(o, CLIENT_UNIT, {}),
                                 TextWidth(o, "").code,
                                 TextHeight(o, "").code,
                                 ControlLbound(o).code,
                                 ControlUbound(o).code,
                                 Controlarray(o).code,
                                 Controlarraypos(o).code,
                                 Controlselection(o).code,
                                 Controlselectionpos(o).code,
                                 AddMenuitem(o, ""),
                                 AddMenuitems(o, "a"),
                                 RemoveMenuitem(o),
                                 RemoveMenuitems(o, o),
                                 GetFontName(o).code,
                                 SetFontName(o, ""),
                                 GetFontSize(o).code,
                                 SetFontSize(o, 1),
                                 GetFontBold(o).code,
                                 SetFontBold(o, true),
                                 GetFontItalic(o).code,
                                 SetFontItalic(o, true),
                                 GetForeColour(o).code,
                                 SetForeColour(o, 1),
                                 GetBackColour(o).code,
                                 SetBackColour(o, 1),
                                 SetList(o, 1, "", ""),
                                 SetPicture(o, Picture()),
                                 WindowWidth(o).code,
                                 WindowHeight(o).code,
                                 GetPageWidth(o).code,
                                 GetPageHeight(o).code,
                                 GetDpiX(o).code,
                                 GetDpiY(o).code,
                                 StartGraph(o),
                                 EndGraph(o),
                                 DrawLine(o, 0, 0, 1, 1),
                                 DrawPoint(o, 0, 0),
                                 DrawShape(o, RECTANGLE_SHAPE, 0, 0, 1, 1),
                                 DrawTextstr(o, "a"),
                                 DrawPicture(o, "a", 0, 0),
                                 DrawWindow(o, o),
                                 GetCurrentX(o).code,
                                 SetCurrentX(o, 1),
                                 GetCurrentY(o).code,
                                 SetCurrentY(o, 1),
                                 StartPrint(o),
                                 EndPrint(o),
                                 NewPage(o),
                                 GetPage(o).code,
                                 GetPrinterStatus(o).code,
                                 GetPhysicalWidth(o).code,
                                 GetPhysicalHeight(o).code,
                                 GetPhysicalOffsetX(o).code,
                                 GetPhysicalOffsetY(o).code,
                                 GetVisible(o).code,
                                 GetHandle(o).code,
                                 GetName(o).code};
    };
    for (const Code code : codes(Object("Main", 101))) EXPECT_EQ(code, WindowNotLoaded);
    for (const Code code : codes(main)) EXPECT_EQ(code, WindowNotLoaded);
    for (const Code code : codes(Object())) EXPECT_EQ(code, ControlInvalid);
    const std::vector<Code> window = {Show(main, true).code,
                                      Hide(main),
                                      GetWindowState(main).code,
                                      SetWindowState(main, 1),
                                      SetVisible(main, true),
                                      ControlList(main).code,
                                      GetArrayValue(main, "a").code,
                                      SetArrayValue(main, "a", ""),
                                      GetArrayValues(main, "*").code,
                                      SetArrayValues(main, {}),
                                      GetFuncptr(main).code,
                                      AlignItems(main),
                                      TrackRect(main, TRACK_MOVE, {}, {}, {}).code,
                                      FontDialog(main, {}).code,
                                      ColourDialog(main, 1).code,
                                      PrintDialog(main, 0).code,
                                      GetMinPosition(main).code,
                                      SetMinPosition(main, {}),
                                      GetMaxPosition(main).code,
                                      SetMaxPosition(main, {}),
                                      Command(1, 1, "")};
    for (const Code code : window) EXPECT_EQ(code, WindowNotLoaded);
    loadMain();
    for (const Code code : codes(Object("Main", 4711))) EXPECT_EQ(code, ControlInvalid);
}

TEST_F(ModelTest, AControlWithoutThePropertyAnswersEmptyWithoutAnError) {
    loadMain();
    const Object label = mine("label1");
    EXPECT_EQ(SetText(label, "x"), Ok);
    EXPECT_EQ(GetText(label).value, "");
    EXPECT_EQ(GetText(label).code, Ok);
    EXPECT_EQ(SetValue(label, 3), Ok);
    EXPECT_EQ(GetValue(label).value, 0);
    EXPECT_EQ(AddItem(label, "x"), Ok);
    EXPECT_EQ(GetListCount(label).value, 0);
    EXPECT_EQ(GetSelection(label).value.start, 1);
    EXPECT_EQ(SetSelText(label, "x"), Ok);
    EXPECT_EQ(SetFlags(label, 32), Ok);
    EXPECT_EQ(GetFlags(label).value, 0);
    EXPECT_EQ(GetCombotext(label).value, "");
    EXPECT_EQ(GetMax(label).value, 0);
}

TEST_F(ModelTest, AWindowMayUnloadItselfInAnyOfItsEvents) {
    for (const int event : {LOAD_EVENT, ACTIVATE_EVENT, COMMAND_EVENT, CHANGE_EVENT, KEYPRESS_EVENT,
                            DBLCLICK_EVENT, INFO_EVENT, RESIZE_EVENT, TIMER_EVENT, CLOSE_EVENT}) {
        SCOPED_TRACE(event);
        handler = [&](const Object& window, int now, const Object& sender, int) {
            if (now != event) return false;
            Unload(window);
            EXPECT_EQ(GetCaption(sender).code, event == CLOSE_EVENT ? Ok : WindowNotLoaded);
            DoEvents();
            return false;
        };
        Load(main);
        if (IsLoaded(main)) Show(main, false);
        if (IsLoaded(main)) userCommand(control("ok"));
        if (IsLoaded(main)) userChange(control("edit1"));
        if (IsLoaded(main)) userKey(*findWindow(main), &control("edit1"), 65);
        if (IsLoaded(main)) userDoubleClick(control("list1"), 1, 1);
        if (IsLoaded(main)) userInfo(control("list1"), 1, 1);
        if (IsLoaded(main)) userMoved(*findWindow(main), {1, 2, 3, 4}, 0);
        if (IsLoaded(main)) timerFired(*findWindow(main));
        if (IsLoaded(main)) userClose(*findWindow(main));
        EXPECT_FALSE(IsLoaded(main));
        handler = nullptr;
    }
}

TEST_F(ModelTest, WindowsMayBeUnloadedFromNestedEvents) {
    loadMain();
    ASSERT_EQ(Load(second), Ok);
    handler = [&](const Object& window, int event, const Object&, int) {
        if (window == main && event == COMMAND_EVENT) {
            Show(second, false);
            userCommand(*findControl(in(second, "ok")));
            EXPECT_FALSE(IsLoaded(main));
            EXPECT_FALSE(IsLoaded(second));
        } else if (window == second && event == COMMAND_EVENT) {
            Unload(main);
            Unload(second);
        }
        return false;
    };
    userCommand(control("ok"));
    EXPECT_TRUE(WindowList().empty());
}

TEST_F(ModelTest, WindowsAreListedInTheOrderOfLoading) {
    for (const Object& window : {third, main, second}) Load(window);
    EXPECT_EQ(WindowList(), (std::vector<Object>{third, main, second}));
    DestroyAllWindows();
    EXPECT_TRUE(WindowList().empty());
    for (const Sent& sent : events) EXPECT_EQ(sent.event, LOAD_EVENT) << "the halt sends nothing";
}

// ---- showing ----

TEST_F(ModelTest, ShowActivatesAndTellsTheMainWindow) {
    ASSERT_EQ(Load(main), Ok);
    ASSERT_EQ(Load(second), Ok);
    EXPECT_TRUE(ActiveWindow().empty());
    events.clear();
    Show(main, false);
    Show(second, false);
    Show(second, false);
    const int handle = GetHandle(second).value;
    EXPECT_EQ(events, (std::vector<Sent>{{"Main", ACTIVATE_EVENT, "Main", GetHandle(main).value},
                                         {"Second", ACTIVATE_EVENT, "Second", handle},
                                         {"Main", ACTIVATE_EVENT, "Second", handle}}));
    EXPECT_EQ(ActiveWindow(), second);
    Hide(second);
    EXPECT_EQ(ActiveWindow(), main);
    EXPECT_FALSE(GetVisible(second).value);
    EXPECT_TRUE(IsLoaded(second));
    SetVisible(second, true);
    EXPECT_TRUE(GetVisible(second).value);
    Unload(second);
    EXPECT_EQ(ActiveWindow(), main);
    Hide(main);
    EXPECT_TRUE(ActiveWindow().empty());
}

TEST_F(ModelTest, AModalWaitEndsWhenTheWindowIsHiddenOrUnloaded) {
    loadMain();
    for (const bool unload : {false, true}) {
        ASSERT_EQ(Load(second), Ok);
        play({[&] {
            EXPECT_TRUE(IsModal(second));
            EXPECT_EQ(topModal(), findWindow(second));
            EXPECT_FALSE(takesInput(*findWindow(main)));
            unload ? Unload(second) : Hide(second);
        }});
        EXPECT_EQ(Show(second, true).code, Ok);
        EXPECT_EQ(IsLoaded(second), !unload);
        EXPECT_FALSE(IsModal(second));
        EXPECT_EQ(topModal(), nullptr);
        EXPECT_EQ(ActiveWindow(), main);
    }
}

TEST_F(ModelTest, ModalWaitsNest) {
    loadMain();
    Load(second);
    Load(third);
    std::vector<std::string> order;
    handler = [&](const Object& window, int event, const Object&, int) {
        if (event != COMMAND_EVENT) return false;
        if (window == main) {
            Show(second, true);
            order.push_back("second is over");
        } else if (window == second) {
            Show(third, true);
            order.push_back("third is over");
        } else {
            Hide(second);  // the outer one goes first
            order.push_back("second is hidden");
        }
        return true;
    };
    play({[&] { userCommand(*findControl(in(second, "ok"))); },
          [&] { userCommand(*findControl(in(third, "ok"))); }, [&] { userClose(*findWindow(third)); }});
    userCommand(control("ok"));
    EXPECT_EQ(order, (std::vector<std::string>{"second is hidden", "third is over", "second is over"}));
    EXPECT_EQ(eventDepth(), 0);
}

TEST_F(ModelTest, BlockedWindowsHearNothing) {
    loadMain();
    Load(second);
    play({[&] {
        events.clear();
        userCommand(control("ok"));
        userKey(*findWindow(main), nullptr, 65);
        userClose(*findWindow(main));
        userRow(control("list1"), 1);
        EXPECT_TRUE(events.empty());
        Hide(second);
    }});
    Show(second, true);
    SetBusy(true);
    SetBusy(true);
    events.clear();
    userCommand(control("ok"));
    SetBusy(false);
    userCommand(control("ok"));
    EXPECT_TRUE(events.empty());
    SetBusy(false);
    SetBusy(false);
    EXPECT_FALSE(busy());
    userCommand(control("disabled"));
    EXPECT_TRUE(events.empty());
    userCommand(control("ok"));
    EXPECT_EQ(events.size(), 1u);
}

TEST_F(ModelTest, AModalWaitThatNobodyCanEndClosesItsWindow) {
    Load(second);
    EXPECT_EQ(Show(second, true).code, Ok);
    EXPECT_FALSE(IsLoaded(second));
    handler = [](const Object&, int event, const Object&, int) { return event == CLOSE_EVENT; };
    Load(second);
    EXPECT_EQ(Show(second, true).code, Ok);
    EXPECT_TRUE(IsLoaded(second)) << "it refused to close";
    EXPECT_FALSE(GetVisible(second).value) << "so it was hidden";
}

TEST_F(ModelTest, TheMainLoopEndsWithItsWindowOrWhenItIsQuit) {
    MainLoop(main);  // not loaded: nothing
    loadMain();
    int rounds = 0;
    play({[&] { ++rounds; }, [&] { userClose(*findWindow(main)); }});
    MainLoop(main);
    EXPECT_EQ(rounds, 1);
    EXPECT_FALSE(IsLoaded(main));
    loadMain();
    Load(second);
    play({[&] {
              Show(second, true);
              ++rounds;
          },
          [&] { QuitMainLoop(); }});
    MainLoop(main);
    EXPECT_EQ(rounds, 2) << "modal waits end too";
    EXPECT_TRUE(IsLoaded(main));
    play({[&] {
        ++rounds;
        Unload(main);
    }});
    MainLoop(main);
    EXPECT_EQ(rounds, 3) << "the next loop runs again";
}

TEST_F(ModelTest, TimersFireAgainAndAgainUntilTheyAreStopped) {
    loadMain();
    const auto fired = [] {
        return std::count_if(events.begin(), events.end(),
                             [](const Sent& s) { return s.event == TIMER_EVENT; });
    };
    SetTimer(mine("label1"), 1000);
    DoEvents();
    EXPECT_EQ(fired(), 0);
    for (int i = 1; i <= 3; ++i) {
        clock.advance(1'000'000'000);
        DoEvents();
        DoEvents();
        EXPECT_EQ(fired(), i);
    }
    EXPECT_EQ(events.back(), (Sent{"Main", TIMER_EVENT, "label1", 0}));
    SetTimer(mine("label1"), 0);
    clock.advance(5'000'000'000);
    DoEvents();
    EXPECT_EQ(fired(), 3);
    SetTimer(main, 10);
    Unload(main);
    clock.advance(5'000'000'000);
    DoEvents();
    EXPECT_EQ(fired(), 3);
}

TEST_F(ModelTest, ATimerMayEndAModalWaitWithoutAUser) {
    Load(second);
    handler = [&](const Object& window, int event, const Object&, int) {
        if (event == TIMER_EVENT) Unload(window);
        return false;
    };
    SetTimer(second, 60'000);
    Show(second, true);
    EXPECT_EQ(events.back().event, CLOSE_EVENT);
    handler = nullptr;
    Load(second);
    SetTimer(second, 60'000);
    Show(second, true);  // the timer fires in vain, and the wait is given up
    EXPECT_FALSE(IsLoaded(second));
}

// ---- events ----

TEST_F(ModelTest, TheUsersDoingsChangeTheModelFirstAndThenSendTheirEvent) {
    loadMain();
    AddItem(mine("list1"), "row");
    const auto one = [&](const std::function<void()>& doing, const Sent& wanted) {
        events.clear();
        doing();
        EXPECT_EQ(events, std::vector<Sent>{wanted});
    };
    one([&] { userCommand(control("tool")); }, {"Main", COMMAND_EVENT, "tool", 0});
    one([&] { userCommand(control("file_exit")); }, {"Main", COMMAND_EVENT, "file_exit", 0});
    one([&] { userChange(control("edit1")); }, {"Main", CHANGE_EVENT, "edit1", 0});
    one([&] { userValue(control("check1"), 1); }, {"Main", COMMAND_EVENT, "check1", 0});
    EXPECT_EQ(GetValue(mine("check1")).value, 1);
    EXPECT_TRUE(GetChecked(mine("check1")).value);
    one([&] { userValue(control("bar1"), 99); }, {"Main", CHANGE_EVENT, "bar1", 0});
    EXPECT_EQ(GetValue(mine("bar1")).value, 5);
    one([&] { userValue(control("radio2"), 1); }, {"Main", COMMAND_EVENT, "radio2", 0});
    EXPECT_EQ(GetValue(mine("radio1")).value, 0);
    one([&] { userRow(control("list1"), 1); }, {"Main", CHANGE_EVENT, "list1", 0});
    EXPECT_EQ(GetListIndex(mine("list1")).value, 1);
    one([&] { userRow(control("combo2"), 2); }, {"Main", CHANGE_EVENT, "combo2", 0});
    EXPECT_EQ(GetCombotext(mine("combo2")).value, "Two");
    one([&] { userDoubleClick(control("list1"), 3, 4); }, {"Main", DBLCLICK_EVENT, "list1", 4 << 16 | 3});
    one([&] { userInfo(control("icons1"), 1, 2); }, {"Main", INFO_EVENT, "icons1", 2 << 16 | 1});
    one([&] { userMoved(*findWindow(main), {5, 6, 70, 80}, 0); }, {"Main", RESIZE_EVENT, "Main", 0});
    EXPECT_EQ(GetPosition(main, WINDOW_UNIT).value, (Rect{5, 6, 70, 80}));
    events.clear();
    userMoved(*findWindow(main), {7, 8, 70, 80}, 0);
    EXPECT_TRUE(events.empty()) << "a move alone is no resize";
}

TEST_F(ModelTest, OperationsOfTheProgramSendNoEvents) {
    loadMain();
    SetText(mine("edit1"), "x");
    SetCombotext(mine("combo0"), "x");
    SetListIndex(mine("combo2"), 1);
    SetValue(mine("check1"), 1);
    SetValue(mine("radio3"), 1);
    SetPosition(main, WINDOW_UNIT, {1, 1, 1, 1});
    EXPECT_TRUE(events.empty());
    SetSelection(mine("edit1"), 1, 1);
    EXPECT_TRUE(events.empty());
    SetSelText(mine("edit1"), "new");
    EXPECT_EQ(events, (std::vector<Sent>{{"Main", CHANGE_EVENT, "edit1", 0}})) << "as a user's edit does";
}

TEST_F(ModelTest, ReturnAndEscapePressTheirButtonsUnlessTheKeyWasHandled) {
    loadMain();
    Window& window = *findWindow(main);
    EXPECT_TRUE(userKey(window, &control("edit1"), KEY_RETURN));
    EXPECT_EQ(events, (std::vector<Sent>{{"Main", KEYPRESS_EVENT, "edit1", KEY_RETURN},
                                         {"Main", COMMAND_EVENT, "ok", 0}}));
    events.clear();
    EXPECT_TRUE(userKey(window, nullptr, KEY_ESCAPE));
    EXPECT_EQ(events.back(), (Sent{"Main", COMMAND_EVENT, "cancel", 0}));
    events.clear();
    EXPECT_TRUE(userKey(window, &control("cancel"), KEY_RETURN));
    EXPECT_EQ(events.back(), (Sent{"Main", COMMAND_EVENT, "cancel", 0})) << "the button with the keyboard";
    events.clear();
    EXPECT_FALSE(userKey(window, &control("memo"), KEY_RETURN)) << "a line end in a text";
    EXPECT_FALSE(userKey(window, nullptr, KEY_F1));
    EXPECT_EQ(events.size(), 2u);
    handler = [](const Object&, int event, const Object&, int) { return event == KEYPRESS_EVENT; };
    events.clear();
    EXPECT_TRUE(userKey(window, nullptr, KEY_RETURN));
    EXPECT_EQ(events.size(), 1u);
}

TEST_F(ModelTest, ACommandCarriesItsText) {
    loadMain();
    std::vector<std::string> texts;
    handler = [&](const Object&, int event, const Object& sender, int parameter) {
        if (event != COMMAND_EVENT) return false;
        texts.push_back(commandText() + " " + std::to_string(parameter));
        if (sender == mine("tool")) userCommand(control("ok"));
        if (sender == mine("tool")) Command(GetHandle(main).value, 206, "inner");
        texts.push_back(commandText());
        return true;
    };
    EXPECT_EQ(Command(GetHandle(main).value, 120, "outer"), Ok);
    EXPECT_EQ(texts, (std::vector<std::string>{"outer 1", "outer 0", "outer", "inner 1", "inner", "outer"}));
    EXPECT_EQ(commandText(), "");
    EXPECT_EQ(Command(GetHandle(main).value, 4711, ""), ControlInvalid);
    EXPECT_EQ(Command(4711, 120, ""), WindowNotLoaded);
}

TEST_F(ModelTest, AWindowOfThisCopyIsFoundByClassAndCaption) {
    const Variable folderOfUser("XDG_RUNTIME_DIR", folder.path());
    loadMain();
    const std::string dialog = WindowClassName("Dialog");
    EXPECT_EQ(dialog, "Dialog.1.3.2207");
    const int handle = FindWindowHandle(dialog, "Main");
    EXPECT_EQ(handle, GetHandle(main).value);
    EXPECT_EQ(FindWindowHandle(dialog, "main"), 0) << "captions are exact";
    EXPECT_EQ(FindWindowHandle(WindowClassName("Editwindow"), "Main"), 0);
    EXPECT_EQ(Command(handle, 107, "text"), Ok);
    EXPECT_EQ(events.back(), (Sent{"Main", COMMAND_EVENT, "ok", 1}));
    EXPECT_EQ(Command(handle, 4711, ""), ControlInvalid);
    EXPECT_EQ(Command(0, 107, ""), WindowNotLoaded);
}

// Runs `client` as another process does, while this one waits in its main loop.
pid_t another(const std::function<bool()>& client) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(client() ? 0 : 1);
    return child;
}

int exitCode(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(ModelTest, ALaterCopyFindsTheWindowAndItsCommandWaitsForTheModalOneToEnd) {
    const Variable folderOfUser("XDG_RUNTIME_DIR", folder.path());
    loadMain();
    Load(second);
    pid_t child = 0;
    std::vector<std::string> order;
    handler = [&](const Object& window, int event, const Object& sender, int parameter) {
        if (event != COMMAND_EVENT) return false;
        if (parameter == 1) {
            order.push_back(window.window() + " " + GetName(sender).value + " " + commandText());
            EXPECT_EQ(eventDepth(), 1);
        } else {
            Show(second, true);
            order.push_back("the modal window is closed");
        }
        return true;
    };
    int rounds = 0, code = -1;
    view().setIdle([&] {
        if (++rounds == 1)
            userCommand(control("ok"));
        else if (child == 0)
            child = another([] {
                const std::string dialog = WindowClassName("Dialog");
                DestroyAllWindows();  // those of the copy are its own
                const int found = FindWindowHandle(dialog, "Main");
                return found != 0 && found == FindWindowHandle(dialog, "Main") &&
                       FindWindowHandle(dialog, "None") == 0 && Command(found, 120, "/a b.cls") == Ok;
            });
        else if (code < 0 && topModal() != nullptr) {
            int status = 0;
            if (::waitpid(child, &status, WNOHANG) != child) return;
            code = WIFEXITED(status) ? WEXITSTATUS(status) : 99;
            EXPECT_TRUE(order.empty()) << "it waits";
            Hide(second);
        } else {
            userClose(*findWindow(main));
        }
    });
    MainLoop(main);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(order, (std::vector<std::string>{"the modal window is closed", "Main tool /a b.cls"}));
    const pid_t late = another([] {
        DestroyAllWindows();
        return FindWindowHandle(WindowClassName("Dialog"), "Main") == 0;
    });
    EXPECT_EQ(exitCode(late), 0) << "nobody answers when the loop is over";
}

// ---- values ----

TEST_F(ModelTest, LoadSetsWhatTheResourcesSay) {
    loadMain();
    EXPECT_EQ(GetCaption(mine("label1")).value, "A label");
    EXPECT_EQ(GetText(mine("edit1")).value, "first");
    EXPECT_EQ(GetMaxLength(mine("edit1")).value, 10);
    EXPECT_EQ(GetCombotext(mine("combo0")).value, "typed");
    EXPECT_EQ(GetCombostyle(mine("combo2")).value, 2);
    EXPECT_EQ(GetListCount(mine("combo2")).value, 3);
    EXPECT_EQ(GetMin(mine("bar1")).value, -5);
    EXPECT_EQ(GetValue(mine("bar1")).value, 2);
    EXPECT_EQ(GetMax(findControl(mine("bar1"))->object).value, 5);
    EXPECT_FALSE(GetEnabled(mine("disabled")).value);
    EXPECT_EQ(GetPicture(mine("tool")).value, "open");
    EXPECT_TRUE(GetChecked(mine("file_exit")).value);
    EXPECT_EQ(control("file_exit").shortcut, 115 + 0x3000);
    EXPECT_EQ(control("below").level, 3);
    EXPECT_TRUE(control("ok").isDefault);
    EXPECT_TRUE(control("cancel").isCancel);
    EXPECT_EQ(GetBorderStyle(main).value, 1);
    Load(second);
    EXPECT_EQ(GetBorderStyle(second).value, 2);
    Load(editor);
    EXPECT_EQ(GetBorderStyle(editor).value, 2);
    EXPECT_EQ(GetFlags(editor).value, READONLY);
    EXPECT_TRUE(GetReadonly(editor).value);
    EXPECT_EQ(GetMaxLength(editor).value, 500);
}

TEST_F(ModelTest, ResourceUnitsBecomePixelsByTheFontsMeasures) {
    loadMain();
    EXPECT_EQ(GetPosition(mine("label1"), WINDOW_UNIT).value, (Rect{6, 13, 6, 13}))
        << "6 by 13 pixels for 4 by 8 units";
    EXPECT_EQ(GetPosition(main, CLIENT_UNIT).value, (Rect{6, 13, 60, 130}));
}

TEST_F(ModelTest, TextsOfAnyBytesAreKept) {
    Load(editor);
    std::string all;
    for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
    EXPECT_EQ(SetText(editor, all), Ok);
    EXPECT_EQ(GetText(editor).value, all);
    EXPECT_EQ(GetTextLength(editor).value, 256);
    EXPECT_FALSE(GetModify(editor).value);
    SetSelection(editor, 11, 1);
    EXPECT_EQ(GetSelText(editor).value, "\n");
    SetSelText(editor, "abc");
    EXPECT_TRUE(GetModify(editor).value);
    EXPECT_EQ(GetTextLength(editor).value, 258);
    SetModify(editor, false);
    EXPECT_FALSE(GetModify(editor).value);
    SetModify(editor, true);
    SetText(editor, "");
    EXPECT_FALSE(GetModify(editor).value) << "a new text is not modified";
    EXPECT_EQ(GetSelection(editor).value.start, 1);
}

TEST_F(ModelTest, SelectionsStayInTheText) {
    Load(editor);
    SetText(editor, "12345");
    const int cases[][4] = {{2, 3, 2, 3},  {0, 1, 1, 1},  {-9, 2, 1, 2}, {6, 5, 6, 0},
                            {99, 1, 6, 0}, {4, 99, 4, 2}, {3, -1, 3, 0}, {1, INT32_MAX, 1, 5}};
    for (const auto& [start, length, wantedStart, wantedLength] : cases) {
        SetSelection(editor, start, length);
        EXPECT_EQ(GetSelection(editor).value.start, wantedStart);
        EXPECT_EQ(GetSelection(editor).value.length, wantedLength);
    }
}

TEST_F(ModelTest, ComboBoxesOfEachStyle) {
    loadMain();
    const Object typed = mine("combo0"), list = mine("combo2");
    SetCombotext(typed, "anything");
    EXPECT_EQ(GetCombotext(typed).value, "anything");
    EXPECT_EQ(GetListIndex(typed).value, 0);
    SetListIndex(typed, 2);
    EXPECT_EQ(GetText(typed).value, "Two");
    EXPECT_EQ(GetListIndex(typed).value, 2);
    SetCombotext(list, "THREE");
    EXPECT_EQ(GetListIndex(list).value, 3) << "the case does not matter";
    EXPECT_EQ(GetCombotext(list).value, "three");
    SetCombotext(list, "none");
    EXPECT_EQ(GetListIndex(list).value, 3) << "no match leaves the selection alone";
    SetListIndex(list, 0);
    EXPECT_EQ(GetCombotext(list).value, "");
    EXPECT_EQ(GetTextLength(list).value, 0);
}

TEST_F(ModelTest, ValuesStayInTheirRange) {
    loadMain();
    SetValue(mine("bar1"), 99);
    EXPECT_EQ(GetValue(mine("bar1")).value, 5);
    SetValue(mine("bar1"), -99);
    EXPECT_EQ(GetValue(mine("bar1")).value, -5);
    SetMin(mine("bar1"), 10);
    SetMax(mine("bar1"), 0);
    SetValue(mine("bar1"), 3);
    EXPECT_EQ(GetValue(mine("bar1")).value, 10) << "a range upside down harms nobody";
    SetValue(mine("check1"), 77);
    EXPECT_EQ(GetValue(mine("check1")).value, 1);
}

TEST_F(ModelTest, RadioButtonsExcludeEachOtherInTheirGroup) {
    loadMain();
    const auto set = [&] {
        std::string names;
        for (const char* name : {"radio1", "radio2", "radio3", "free1", "free2", "other1"})
            if (GetValue(mine(name)).value != 0) names.append(name).append(" ");
        return names;
    };
    EXPECT_EQ(set(), "radio1 other1 ");
    SetValue(mine("radio3"), 1);
    EXPECT_EQ(set(), "radio3 other1 ");
    SetValue(mine("free1"), 1);
    SetValue(mine("free2"), 5);
    EXPECT_EQ(set(), "radio3 free2 other1 ") << "those that stand together";
    EXPECT_EQ(Controlselectionpos(mine("radio1")).value, 3);
    SetValue(mine("radio3"), 0);
    EXPECT_EQ(set(), "free2 other1 ");
    EXPECT_EQ(Controlselectionpos(mine("radio1")).value, 0);
    EXPECT_EQ(Controlselectionpos(mine("free1")).code, NotAControlArray);
}

// ---- lists ----

TEST_F(ModelTest, RowsAreNumberedFromOneAndHaveNoLineEnd) {
    loadMain();
    const Object list = mine("list1");
    AddItem(list, "b\n");
    AddItem(list, 1, "a\r\n", "a.bmp");
    AddItem(list, 99, "c\nd\n\n");
    AddItem(list, -5, "");
    EXPECT_EQ(GetListCount(list).value, 4);
    EXPECT_EQ(GetList(list, 1).value, "");
    EXPECT_EQ(GetList(list, 2).value, "a");
    EXPECT_EQ(GetList(list, 3).value, "b");
    EXPECT_EQ(GetList(list, 4).value, "c\nd\n") << "one line end is taken off";
    SetList(list, 3, "b\r");
    EXPECT_EQ(GetList(list, 3).value, "b\r") << "a carriage return by itself is none";
    const std::string big(100'000, 'x');
    SetList(list, 1, big);
    EXPECT_EQ(GetList(list, 1).value, big);
    EXPECT_EQ(control("list1").rows[1].picture, "a.bmp");
}

TEST_F(ModelTest, RowsOutOfRangeAreEmptyAndHarmless) {
    loadMain();
    const Object list = mine("icons1");
    AddItem(list, "only");
    for (const int row : {0, -1, 2, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(GetList(list, row).value, "");
        EXPECT_EQ(GetList(list, row).code, Ok);
        EXPECT_EQ(SetList(list, row, "x"), Ok);
        EXPECT_EQ(RemoveItem(list, row), Ok);
        SetListIndex(list, 1);
        EXPECT_EQ(SetListIndex(list, row), Ok);
        EXPECT_EQ(GetListIndex(list).value, 0);
    }
    EXPECT_EQ(GetListCount(list).value, 1);
    EXPECT_EQ(GetList(list, 1).value, "only");
}

TEST_F(ModelTest, TheSelectedRowMovesWithItsText) {
    loadMain();
    const Object list = mine("list1");
    for (const char* row : {"a", "b", "c"}) AddItem(list, row);
    SetListIndex(list, 2);
    AddItem(list, 1, "new");
    EXPECT_EQ(GetListIndex(list).value, 3);
    RemoveItem(list, 1);
    EXPECT_EQ(GetListIndex(list).value, 2);
    RemoveItem(list, 3);
    EXPECT_EQ(GetListIndex(list).value, 2);
    RemoveItem(list, 2);
    EXPECT_EQ(GetListIndex(list).value, 0);
    SetListIndex(list, 1);
    Clear(list);
    EXPECT_EQ(GetListIndex(list).value, 0);
    EXPECT_EQ(GetListCount(list).value, 0);
}

TEST_F(ModelTest, NamedValuesOfAWindow) {
    loadMain();
    EXPECT_EQ(GetArrayValue(main, "Name").value, "");
    SetArrayValue(main, "Name", "a");
    SetArrayValue(main, "NAME", "b\nc");
    EXPECT_EQ(GetArrayValue(main, "name").value, "b\nc");
    Unload(main);
    loadMain();
    EXPECT_EQ(GetArrayValue(main, "Name").value, "");
}

// ---- positions ----

TEST_F(ModelTest, PositionsAreKeptInTheLimitsOfTheWindow) {
    loadMain();
    SetPosition(main, WINDOW_UNIT, {-20, -20, 100, 100});
    EXPECT_EQ(GetPosition(main, WINDOW_UNIT).value, (Rect{-20, -20, 100, 100}));
    SetMinPosition(main, {0, 0, 632, 25});
    SetMaxPosition(main, {0, 0, 1912, 25});
    SetPosition(main, WINDOW_UNIT, {0, 0, 1920, 1});
    EXPECT_EQ(GetPosition(main, WINDOW_UNIT).value, (Rect{0, 0, 1912, 25}));
    SetPosition(main, CLIENT_UNIT, {0, 0, 10, 400});
    EXPECT_EQ(GetPosition(main, CLIENT_UNIT).value, (Rect{0, 0, 632, 25}));
    SetMaxPosition(main, {});
    SetPosition(main, WINDOW_UNIT, {0, 0, 5000, 5000});
    EXPECT_EQ(GetPosition(main, WINDOW_UNIT).value, (Rect{0, 0, 5000, 5000}));
    EXPECT_EQ(GetMinPosition(main).value, (Rect{0, 0, 632, 25}));
    SetPosition(mine("label1"), WINDOW_UNIT, {1, 2, 3, 4});
    EXPECT_EQ(GetPosition(mine("label1"), CLIENT_UNIT).value, (Rect{1, 2, 3, 4}));
}

TEST_F(ModelTest, WindowStates) {
    loadMain();
    EXPECT_EQ(GetWindowState(main).value, 0);
    for (const int state : {2, 1, 0}) {
        SetWindowState(main, state);
        EXPECT_EQ(GetWindowState(main).value, state);
    }
    SetWindowState(main, 7);
    EXPECT_EQ(GetWindowState(main).value, 0);
}

TEST_F(ModelTest, MeasuresWithoutAScreenAreFixed) {
    loadMain();
    EXPECT_EQ(ScreenSize(), (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(TextWidth(main, "ABC").value, 18);
    EXPECT_EQ(TextWidth(main, "\xc3\xa4").value, 6) << "one letter of two bytes";
    EXPECT_EQ(TextWidth(main, "a\nlong").value, 24);
    EXPECT_EQ(TextHeight(main, "a").value, 13);
    EXPECT_EQ(GetDpiX(Sysscreen).value, 96);
}

TEST_F(ModelTest, FontsAreKept) {
    loadMain();
    const Font font{"Mono", 12, true, false};
    SetFontName(main, font.name);
    SetFontSize(main, font.size);
    SetFontBold(main, font.bold);
    SetFontItalic(main, font.italic);
    const Object button = mine("ok");
    EXPECT_EQ(GetFontName(main).value, font.name);
    EXPECT_EQ(GetFontSize(main).value, font.size);
    EXPECT_EQ(GetFontBold(main).value, font.bold);
    EXPECT_EQ(GetFontItalic(main).value, font.italic);
    EXPECT_EQ(GetFontName(button).value, "") << "its own";
    EXPECT_EQ(GetFontSize(button).value, 0);
    SetFontSize(main, -3);
    EXPECT_EQ(GetFontSize(main).value, 0);
}

// ---- arrays ----

TEST_F(ModelTest, ArraysHaveBoundsFromOne) {
    loadMain();
    const Object first = mine("radio1");
    EXPECT_EQ(ControlLbound(first).value, 1);
    EXPECT_EQ(ControlUbound(first).value, 3) << "the array's name in any case";
    EXPECT_EQ(ControlElement(mine("radio3"), 1), first);
    EXPECT_TRUE(ControlElement(first, 0).empty());
    EXPECT_TRUE(ControlElement(first, 4).empty());
    EXPECT_EQ(Controlarraypos(mine("radio2")).value, 2);
    EXPECT_EQ(ControlUbound(mine("ok")).code, NotAControlArray);
    EXPECT_EQ(Controlarraypos(mine("ok")).code, NotAControlArray);
    EXPECT_TRUE(ControlElement(mine("ok"), 1).empty());
    EXPECT_TRUE(ControlElement(Object(), 1).empty());
}

TEST_F(ModelTest, MenuArraysShrinkAndGrowAgainWithConsecutiveNumbers) {
    loadMain();
    const Object first = mine("item_01");
    const std::set<int> before = {GetHandle(mine("item_02")).value, GetHandle(mine("item_03")).value};
    while (ControlUbound(first).value > 1) ASSERT_EQ(RemoveMenuitem(ControlElement(first, 2)), Ok);
    EXPECT_EQ(ControlUbound(first).value, 1);
    EXPECT_EQ(GetTypeof(first), "Menuitem");
    for (const int handle : before) EXPECT_TRUE(FindHandle(handle).empty());
    for (int i = 2; i <= 3; ++i)
        ASSERT_EQ(AddMenuitem(ControlElement(first, i - 1), "c" + std::to_string(i)), Ok);
    EXPECT_EQ(ControlUbound(first).value, 3);
    for (int i = 1; i <= 3; ++i) {
        const Object item = ControlElement(first, i);
        EXPECT_EQ(item.number(), 201 + i);
        EXPECT_EQ(Controlarraypos(item).value, i);
        EXPECT_FALSE(before.contains(GetHandle(item).value));
    }
    EXPECT_EQ(GetCaption(ControlElement(first, 3)).value, "c3");
    EXPECT_TRUE(GetEnabled(ControlElement(first, 3)).value);
    ASSERT_EQ(AddMenuitem(ControlElement(first, 3), "more"), Ok);
    EXPECT_EQ(ControlElement(first, 4).number(), 207) << "the next number that nothing has";
    const Window& window = *findWindow(main);
    EXPECT_EQ(window.menuItems[2]->name, "below") << "it hangs below the first one now";
    EXPECT_EQ(window.menuItems[4]->caption, "c3");
    EXPECT_EQ(window.menuItems[5]->caption, "more");
    EXPECT_EQ(window.menuItems[5]->level, 2);
}

TEST_F(ModelTest, AnItemIsAddedBehindWhatHangsBelowTheOneBefore) {
    loadMain();
    ASSERT_EQ(AddMenuitem(mine("item_03"), "new"), Ok);
    const Window& window = *findWindow(main);
    EXPECT_EQ(window.menuItems[4]->name, "below");
    EXPECT_EQ(window.menuItems[5]->caption, "new");
}

TEST_F(ModelTest, OnlyMenuArraysGrowAndShrink) {
    loadMain();
    for (const char* name : {"radio1", "file_exit", "ok"}) {
        EXPECT_EQ(AddMenuitem(mine(name), ""), NotAControlArray) << name;
        EXPECT_EQ(RemoveMenuitem(mine(name)), NotAControlArray) << name;
    }
}

TEST_F(ModelTest, AnItemMayBeRemovedInItsOwnEvent) {
    loadMain();
    handler = [&](const Object&, int event, const Object& sender, int) {
        if (event != COMMAND_EVENT) return false;
        EXPECT_EQ(RemoveMenuitem(sender), Ok);
        return true;
    };
    userCommand(control("item_02"));
    EXPECT_EQ(ControlUbound(mine("item_01")).value, 2);
}

// ---- dialogs ----

TEST_F(ModelTest, MessageBoxesAskWithTheirButtons) {
    answers = {"&No", "", "OK"};
    EXPECT_EQ(MsgBox("Title", "Text", "&Yes\r\n&No\n&Cancel", BoxIcon::Question, 2), "&No");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Yes", "&No", "&Cancel"}));
    EXPECT_EQ(asked[0].defaultButton, 2);
    EXPECT_EQ(asked[0].icon, BoxIcon::Question);
    EXPECT_EQ(MsgBox("Title", "Text", "&Yes\n&No"), "") << "closed";
    EXPECT_EQ(MsgBox("Title", "Text", "", BoxIcon::None, 9), "OK");
    EXPECT_EQ(asked[2].buttons, std::vector<std::string>{"OK"});
    EXPECT_EQ(asked[2].defaultButton, 1);
}

struct Numeric {
    int flags;
    const char* answer;
    int result, defaultButton;
    BoxIcon icon;
};

TEST_F(ModelTest, NumericMessageBoxes) {
    const Numeric cases[] = {
        {0, "OK", 1, 1, BoxIcon::None},
        {0, "", 1, 1, BoxIcon::None},
        {1 + 16, "Cancel", 2, 1, BoxIcon::Error},
        {1, "", 2, 1, BoxIcon::None},
        {3 + 32 + 512, "&Yes", 6, 3, BoxIcon::Question},
        {3, "", 2, 1, BoxIcon::None},
        {4 + 48 + 256, "&No", 7, 2, BoxIcon::Warning},
        {4, "", 7, 1, BoxIcon::None},
        {5 + 64, "&Retry", 4, 1, BoxIcon::Information},
        {5, "", 2, 1, BoxIcon::None},
    };
    for (const Numeric& one : cases) {
        answers = {one.answer};
        EXPECT_EQ(MsgBoxEx("t", "x", one.flags), one.result) << one.flags << one.answer;
        EXPECT_EQ(asked.back().defaultButton, one.defaultButton);
        EXPECT_EQ(asked.back().icon, one.icon);
    }
}

TEST_F(ModelTest, OtherDialogsAskInTheirKind) {
    answers = {"typed", "two", "/f", "/s", "/d/"};
    EXPECT_EQ(InputBox("t", "p", "v"), "typed");
    EXPECT_EQ(ListBox("t", "p", "one\ntwo\n"), "two");
    EXPECT_EQ(OpenFileDialog("t", "start", "All(*.*)|*.*|"), "/f");
    EXPECT_EQ(SaveAsDialog("t", "start", ""), "/s");
    EXPECT_EQ(OpenFolderDialog("t", "start"), "/d/");
    using Kind = Question::Kind;
    const Kind kinds[] = {Kind::Input, Kind::List, Kind::OpenFile, Kind::SaveFile, Kind::Folder};
    for (std::size_t i = 0; i < asked.size(); ++i) EXPECT_EQ(asked[i].kind, kinds[i]);
    EXPECT_EQ(asked[0].value, "v");
    EXPECT_EQ(asked[1].rows, (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(asked[2].filter, "All(*.*)|*.*|");
    EXPECT_EQ(InputBox("t", "p", "v"), "") << "a closed box is empty";
}

TEST_F(ModelTest, WhoeverPlaysTheUserAnswersTheOpenQuestion) {
    useView(makeHeadlessView());
    EXPECT_EQ(MsgBox("t", "x", "&Yes\n&No"), "") << "nobody is there";
    play({[] {
        ASSERT_NE(view().asking(), nullptr);
        EXPECT_EQ(view().asking()->text, "x");
        EXPECT_FALSE(view().answer("Maybe"));
        EXPECT_TRUE(view().answer("No"));
    }});
    EXPECT_EQ(MsgBox("t", "x", "&Yes\n&No"), "&No");
    EXPECT_EQ(view().asking(), nullptr);
    EXPECT_FALSE(view().answer("No"));
    play({[] { EXPECT_TRUE(view().answer("b")); }});
    EXPECT_EQ(ListBox("t", "p", "a\nb"), "b");
    play({[] { EXPECT_TRUE(view().answer("")); }});
    EXPECT_EQ(ListBox("t", "p", "a\nb"), "");
}

// ---- system ----

TEST_F(ModelTest, DiskSpaceOfAFolderThatDoesNotExistIsMinusOne) {
    EXPECT_GT(DiskSpace(folder.path()).value, 0);
    EXPECT_EQ(DiskSpace(folder / "none").value, -1);
    EXPECT_EQ(DiskSpace(folder / "a.rc").value, -1) << "a file";
    EXPECT_EQ(DiskSpace("").value, -1);
}

TEST_F(ModelTest, AToolIsStoppedWhileItsProgressIsShown) {
    EXPECT_FALSE(pressToolStop());
    ShowToolProgress("Compiling");
    EXPECT_FALSE(ToolStopPressed());
    EXPECT_TRUE(pressToolStop());
    EXPECT_TRUE(ToolStopPressed());
    ShowToolProgress("");
    EXPECT_FALSE(ToolStopPressed());
    EXPECT_FALSE(pressToolStop());
}

TEST_F(ModelTest, WaitingLetsTimeAndTimersGoBy) {
    loadMain();
    SetTimer(main, 500);
    const std::int64_t start = clock.steady();
    WaitEvents(3000, true);
    EXPECT_EQ(clock.steady(), start) << "nobody looks at a splash without a screen";
    WaitEvents(3000, false);
    EXPECT_EQ(clock.steady() - start, 3'000'000'000);
    EXPECT_EQ(events.back().event, TIMER_EVENT);
    EXPECT_FALSE(waiting());
}

TEST_F(ModelTest, TheTraceLevelAndTheUsersBreakAreKept) {
    SetTrace(3);
    SetUserBreak(1);
    EXPECT_EQ(GetTrace(), 3);
    EXPECT_EQ(GetUserBreak(), 1);
    SetTrace(0);
    SetUserBreak(0);
    EXPECT_NE(SystemInfo(), "");
}

}  // namespace
}  // namespace tarn::platform
