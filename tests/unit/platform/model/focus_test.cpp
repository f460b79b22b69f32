// SPDX-License-Identifier: Apache-2.0
//
// Where the keys of a window go, and what a window that asked hears when the user leaves a control, without a screen.
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/operations/focus.h"
#include "platform/windowing.h"
#include "support/resources.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace tarn::platform {
namespace {

const Object First("First"), Second("Second");
std::vector<std::string> left;

bool hear(const Object&, int event, const Object& control, int) {
    if (event == LEAVE_EVENT) left.push_back(GetName(control).value);
    return false;
}

class Focus : public ::testing::Test {
protected:
    TempFolder folder;
    std::unique_ptr<View> before;

    void SetUp() override {
        const std::string text =
            "First DIALOG\n  EDIT one 101\n  EDIT two 102\nEND\nSecond DIALOG\n  EDIT other 101\nEND\n";
        ASSERT_EQ(useResources(folder, text), "");
        before = useView(makeHeadlessView());
        for (const Object& window : {First, Second}) {
            RegisterWindow(window, hear);
            ASSERT_EQ(Load(window), Ok);
            Show(window, false);
        }
        left.clear();
    }
    void TearDown() override {
        DestroyAllWindows();
        useView(std::move(before));
        SetApplicationResources("");
    }
    static Object control(const Object& window, const std::string& name) { return FindControl(window, name); }
    static std::vector<std::string> heard() {
        for (int i = 0; i < 8; ++i) DoEvents();  // each sends one posted event
        return std::exchange(left, {});
    }
    using Names = std::vector<std::string>;
};

TEST_F(Focus, AWindowThatAskedHearsOfTheControlThatWasLeft) {
    EXPECT_EQ(WatchFocus(First), Ok);
    EXPECT_TRUE(GetFocus(First).empty());
    EXPECT_EQ(SetFocus(control(First, "one")), Ok);
    EXPECT_EQ(GetFocus(First), control(First, "one"));
    EXPECT_EQ(heard(), Names{});
    EXPECT_EQ(SetFocus(control(First, "two")), Ok);
    EXPECT_EQ(GetFocus(First), control(First, "two"));
    EXPECT_EQ(heard(), Names{"one"});
    SetFocus(control(First, "two"));
    EXPECT_EQ(heard(), Names{});
}

TEST_F(Focus, AnEventLoopTellsIt) {
    WatchFocus(First);
    SetFocus(control(First, "one"));
    SetFocus(control(First, "two"));
    EXPECT_EQ(left, Names{});
    EXPECT_EQ(heard(), Names{"one"});
}

TEST_F(Focus, AWindowThatDidNotAskHearsNothing) {
    SetFocus(control(First, "one"));
    SetFocus(control(First, "two"));
    EXPECT_EQ(heard(), Names{});
    EXPECT_TRUE(GetFocus(First).empty());
}

TEST_F(Focus, AKeyAndATypedTextGoWhereTheUserIs) {
    WatchFocus(First);
    userKey(*findWindow(First), findControl(control(First, "one")), KEY_UP);
    EXPECT_EQ(GetFocus(First), control(First, "one"));
    userChange(*findControl(control(First, "two")));
    EXPECT_EQ(GetFocus(First), control(First, "two"));
    EXPECT_EQ(heard(), Names{"one"});
}

TEST_F(Focus, AnotherWindowLeavesTheControlWhichKeepsTheFocusOfItsWindow) {
    WatchFocus(First);
    userActivate(*findWindow(First));
    SetFocus(control(First, "one"));
    userActivate(*findWindow(Second));
    EXPECT_EQ(heard(), Names{"one"});
    EXPECT_EQ(GetFocus(First), control(First, "one"));
    userActivate(*findWindow(First));
    EXPECT_EQ(heard(), Names{});
}

TEST_F(Focus, AWindowThatHasGoneIsForgotten) {
    WatchFocus(First);
    SetFocus(control(First, "one"));
    SetFocus(control(First, "two"));
    EXPECT_EQ(Unload(First), Ok);
    EXPECT_EQ(heard(), Names{});
    EXPECT_TRUE(GetFocus(First).empty());
    EXPECT_EQ(WatchFocus(First), WindowNotLoaded);
    EXPECT_EQ(SetFocus(Object("First", 101)), WindowNotLoaded);
    ASSERT_EQ(Load(First), Ok);
    EXPECT_TRUE(GetFocus(First).empty());
    EXPECT_EQ(SetFocus(First), ControlInvalid);
}

}  // namespace
}  // namespace tarn::platform
