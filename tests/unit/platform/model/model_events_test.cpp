// SPDX-License-Identifier: Apache-2.0
//
// Windows that are shown, modal or not, and the events of users, timers and other copies of the program.
#include "unit/platform/model/model_fixture.h"

#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

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

}  // namespace
}  // namespace tarn::platform
