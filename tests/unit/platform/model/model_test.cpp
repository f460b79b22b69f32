// SPDX-License-Identifier: Apache-2.0
//
// Objects by their names, and the life of windows.
#include "unit/platform/model/model_fixture.h"

#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

#include <set>
#include <unistd.h>

namespace tarn::platform {
namespace {

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
    EXPECT_EQ(Load(main, folder / "a.rc", "None"), "'None' was not found in '" + (folder / "a.rc") + "'.");
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

// What the operations give on an object, by their subjects. The object may be anything.
using Codes = std::vector<Code>;

Codes onTexts(const Object& o) {
    return {GetCaption(o).code,      SetCaption(o, ""),     GetText(o).code,       SetText(o, ""),
            GetTextLength(o).code,   GetTokens(o).code,     SetTokens(o, ""),      GetSelText(o).code,
            SetSelText(o, ""),       GetSelection(o).code,  SetSelection(o, 1, 1), GetModify(o).code,
            SetModify(o, true),      GetReadonly(o).code,   GetMaxLength(o).code,  SetMaxLength(o, 1),
            GetPasswordChar(o).code, SetPasswordChar(o, 1), GetCombotext(o).code,  SetCombotext(o, ""),
            GetShortcut(o).code,     SetShortcut(o, "F3"),  GetHint(o).code,       SetHint(o, ""),
            GetName(o).code};
}

Codes onValues(const Object& o) {
    return {GetValue(o).code,    SetValue(o, 1),           GetChecked(o).code,
            SetChecked(o, true), GetCombostyle(o).code,    GetMin(o).code,
            SetMin(o, 0),        GetMax(o).code,           SetMax(o, 1),
            GetEnabled(o).code,  SetEnabled(o, true),      GetFlags(o).code,
            SetFlags(o, 0),      GetBorderStyle(o).code,   GetPicture(o).code,
            SetPicture(o, ""),   SetPicture(o, Picture()), GetVisible(o).code,
            GetHandle(o).code};
}

Codes onLists(const Object& o) {
    return {GetListCount(o).code, GetListIndex(o).code, SetListIndex(o, 0),
            GetList(o, 1).code,   SetList(o, 1, ""),    AddItem(o, ""),
            AddItem(o, 1, ""),    RemoveItem(o, 1),     Clear(o),
            SetList(o, 1, "", "")};
}

Codes onPlaces(const Object& o) {
    return {GetPosition(o, WINDOW_UNIT).code,
            SetPosition(o, CLIENT_UNIT, {}),
            TextWidth(o, "").code,
            TextHeight(o, "").code,
            WindowWidth(o).code,
            WindowHeight(o).code};
}

Codes onArraysAndMenus(const Object& o) {
    return {GetMenulevel(o).code,        ControlLbound(o).code,   ControlUbound(o).code,
            Controlarray(o).code,        Controlarraypos(o).code, Controlselection(o).code,
            Controlselectionpos(o).code, AddMenuitem(o, ""),      AddMenuitems(o, "a"),
            RemoveMenuitem(o),           RemoveMenuitems(o, o)};
}

Codes onFontsAndColours(const Object& o) {
    return {GetFontName(o).code,   SetFontName(o, ""),   GetFontSize(o).code,   SetFontSize(o, 1),
            GetFontBold(o).code,   SetFontBold(o, true), GetFontItalic(o).code, SetFontItalic(o, true),
            GetForeColour(o).code, SetForeColour(o, 1),  GetBackColour(o).code, SetBackColour(o, 1)};
}

Codes onDrawing(const Object& o) {
    return {StartGraph(o),
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
            SetCurrentY(o, 1)};
}

Codes onPrinting(const Object& o) {
    return {GetPageWidth(o).code,
            GetPageHeight(o).code,
            GetDpiX(o).code,
            GetDpiY(o).code,
            StartPrint(o),
            EndPrint(o),
            NewPage(o),
            GetPage(o).code,
            GetPrinterStatus(o).code,
            GetPhysicalWidth(o).code,
            GetPhysicalHeight(o).code,
            GetPhysicalOffsetX(o).code,
            GetPhysicalOffsetY(o).code};
}

Codes onWhatever(const Object& o) {
    Codes all;
    for (const auto subject :
         {onTexts, onValues, onLists, onPlaces, onArraysAndMenus, onFontsAndColours, onDrawing, onPrinting}) {
        const Codes codes = subject(o);
        all.insert(all.end(), codes.begin(), codes.end());
    }
    return all;
}

// Those that only windows have.
Codes onWindows(const Object& o) {
    return {Show(o, true).code,
            Hide(o),
            GetWindowState(o).code,
            SetWindowState(o, 1),
            SetVisible(o, true),
            ControlList(o).code,
            GetArrayValue(o, "a").code,
            SetArrayValue(o, "a", ""),
            GetArrayValues(o, "*").code,
            SetArrayValues(o, {}),
            GetFuncptr(o).code,
            AlignItems(o),
            TrackRect(o, TRACK_MOVE, {}, {}, {}).code,
            FontDialog(o, {}).code,
            ColourDialog(o, 1).code,
            PrintDialog(o, 0).code,
            GetMinPosition(o).code,
            SetMinPosition(o, {}),
            GetMaxPosition(o).code,
            SetMaxPosition(o, {}),
            Command(1, 1, "")};
}

TEST_F(ModelTest, EveryOperationOnWhatIsNotLoadedGives702AndOnANumberThatIsNot727) {
    for (const Code code : onWhatever(Object("Main", 101))) EXPECT_EQ(code, WindowNotLoaded);
    for (const Code code : onWhatever(main)) EXPECT_EQ(code, WindowNotLoaded);
    for (const Code code : onWhatever(Object())) EXPECT_EQ(code, ControlInvalid);
    for (const Code code : onWindows(main)) EXPECT_EQ(code, WindowNotLoaded);
    loadMain();
    for (const Code code : onWhatever(Object("Main", 4711))) EXPECT_EQ(code, ControlInvalid);
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

}  // namespace
}  // namespace tarn::platform
