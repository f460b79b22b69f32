// SPDX-License-Identifier: Apache-2.0
//
// The wrappers of the windowing operations: a failure goes into the error cell, where the first one stays, and
// the value that comes back is empty.
#include "kernel/windows/windowing.h"

#include "platform/model/view.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>

namespace tarn {
namespace {

class WrapperTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::View> before;
    void SetUp() override {
        before = platform::useView(platform::makeHeadlessView());
        ClearError();
    }
    void TearDown() override {
        ClearError();
        platform::useView(std::move(before));
    }
};

TEST_F(WrapperTest, AFailureIsInTheErrorCellAndTheValueEmpty) {
    const Object none, absent("Absent"), control("Absent", 1);
    struct Case {
        const char* name;
        std::int32_t code;
        std::function<std::string()> call;
    };
    const auto text = [](auto value) {
        if constexpr (std::is_same_v<decltype(value), std::string>)
            return value;
        else
            return value == decltype(value)() ? std::string() : std::string("something");
    };
    const Case cases[] = {
        {"Show", 702, [&] { return text(Show(absent, true)); }},
        {"Hide", 702, [&] { return Hide(absent), std::string(); }},
        {"GetCaption", 702, [&] { return GetCaption(control); }},
        {"GetCaption of nothing", 727, [&] { return GetCaption(none); }},
        {"SetText", 702, [&] { return SetText(control, "x"), std::string(); }},
        {"GetList", 702, [&] { return GetList(control, 1); }},
        {"GetArrayValues", 702, [&] { return text(GetArrayValues(absent, "*").size()); }},
        {"GetPosition", 702, [&] { return text(GetPosition(control, WINDOW_UNIT)); }},
        {"TrackRect", 702, [&] { return text(TrackRect(absent, TRACK_MOVE, {}, {}, {})); }},
        {"ControlUbound", 702, [&] { return text(ControlUbound(control)); }},
        {"ControlLbound of the screen", 707, [&] { return text(ControlLbound(Sysscreen)); }},
        {"GetFontName", 702, [&] { return GetFontName(control); }},
        {"SetForeColour", 702, [&] { return SetForeColour(control, 1), std::string(); }},
        {"StartGraph of the screen", 709, [&] { return StartGraph(Sysscreen), std::string(); }},
        {"LoadPicture", 710, [&] { return text(LoadPicture("none.bmp")); }},
        {"PictureWidth", 710, [&] { return text(PictureWidth({})); }},
        {"EndPrint", 924, [&] { return EndPrint(Sysprinter), std::string(); }},
        {"ColourDialog", 702, [&] { return text(ColourDialog(absent, 0)); }},
        {"RaiseGuiRtx", 711, [&] { return RaiseGuiRtx(711), std::string(); }},
        {"CommOpen", 960, [&] { return text(CommOpen("", "")); }},
        {"CommReadString", 951, [&] { return CommReadString(7, 3); }},
        {"Command", 702, [&] { return Command(0, 1, ""), std::string(); }},
        {"GetFuncptr", 702, [&] { return text(GetFuncptr(absent)); }},
    };
    for (const Case& one : cases) {
        ClearError();
        EXPECT_EQ(one.call(), "") << one.name;
        EXPECT_EQ(ErrorCell(), one.code) << one.name;
    }
    ClearError();
    static_cast<void>(GetCaption(none));
    static_cast<void>(GetCaption(control));
    EXPECT_EQ(ErrorCell(), 727) << "the first one stays";
}

TEST_F(WrapperTest, WhatCannotFailLeavesTheCellAlone) {
    EXPECT_FALSE(IsLoaded(Object("Absent")));
    EXPECT_EQ(GetTypeof(Object("Absent")), "");
    EXPECT_EQ(FindWindowHandle("a", "b"), 0);
    EXPECT_TRUE(WindowList().empty());
    EXPECT_FALSE(ProcessList().empty());
    EXPECT_EQ(PrinterList().size(), 1U);
    EXPECT_EQ(GetPageWidth(Sysscreen), 1920);
    EXPECT_EQ(RegGetSettingInfo("no such key", "x").exists, false);
    SetUserBreak(3);
    EXPECT_EQ(GetUserBreak(), 3);
    SetUserBreak(0);
    EXPECT_EQ(ErrorCell(), 0);
}

// Each line of the list has its wrapper, or this would not compile; a line that is there twice is a second form.
TEST_F(WrapperTest, TheListNamesEachOperation) {
    std::multiset<std::string> names;
#define TARN_NAME(result, name, symbol, parameters, arguments) names.insert(#name);
    TARN_WINDOW_OPERATIONS(TARN_NAME)
#undef TARN_NAME
    for (const char* twice : {"AddItem", "SetList", "SetPicture", "DrawPicture"})
        EXPECT_EQ(names.count(twice), 2U);
    EXPECT_EQ(names.count("Load"), 3U);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size() - 6);
}

}  // namespace
}  // namespace tarn
