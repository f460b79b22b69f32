// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/stoperrors.h"

#include "support/ide_fixture.h"

#include <functional>

namespace tarn {
namespace {

const Object StopErrorsDlg("StopErrorsDlg");

class StopErrors : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        start();
    }
    void TearDown() override {
        platform::view().setIdle({});
        IdeTest::TearDown();
    }
    static Object in(std::string_view control) { return FINDCONTROL(StopErrorsDlg, control); }
    static void press(std::string_view button) { platform::userCommand(*platform::findControl(in(button))); }
    static void type(std::string_view control, std::string_view text) {
        SetText(in(control), text);
        platform::userChange(*platform::findControl(in(control)));
    }
    static void choose(int row) { platform::userRow(*platform::findControl(in("lsterrors")), row); }
    static bool key(int code) {
        return platform::userKey(*platform::findWindow(StopErrorsDlg), platform::findControl(in("lsterrors")),
                                 code);
    }
    static std::string row(int number) { return GetList(in("lsterrors"), number); }
    // The value behind the dialog in which the user does that.
    std::string valueBehind(const std::string& value, const std::function<void()>& user) {
        bool done = false;
        platform::view().setIdle([&] {
            if (!IsLoaded(StopErrorsDlg)) return;
            if (!std::exchange(done, true)) user();
        });
        std::string result = value;
        accepted = STOPERRORSDIALOG(result);
        platform::view().setIdle({});
        return result;
    }
    static constexpr const char *Ok = "pushbutton1", *Cancel = "pushbutton2";
    bool accepted = false;
};

// ---- the value ----

TEST_F(StopErrors, AreTheSystemsOwnAndOthers) {
    struct Case {
        const char *value, *others, *back;
        std::size_t errors;
    };
    for (const Case& c :
         {Case{"", "", "", 0}, Case{"601", "", "601", 1}, Case{"601 901-909", "901-909", "601 901-909", 9},
          Case{"900-2000", "900-2000", "900-2000", 33}, Case{"643-650", "643-650", "643-650", 1},
          Case{"x 643-650 5-3", "643-650", "643-650", 1}, Case{"901-903", "", "901-903", 3},
          Case{"640-645 643-650", "640-650", "640-650", 3},
          Case{"1000,2000-2099", "1000 2000-2099", "1000 2000-2099", 0},
          Case{"604 603 602 601", "", "601-604", 4}, Case{"601 601-602 602", "", "601-602", 2},
          Case{"x", "", "", 0}, Case{"2147483647", "2147483647", "2147483647", 0}}) {
        const StopChoice choice = PARSESTOPCODES(c.value);
        EXPECT_EQ(choice.others, c.others) << c.value;
        EXPECT_EQ(choice.errors.size(), c.errors) << c.value;
        EXPECT_EQ(FORMATSTOPCODES(choice), c.back) << c.value;
    }
}

TEST_F(StopErrors, OthersAreCodesAndRanges) {
    for (const char* text : {"", "1000", "1000 2000-2099", "1000,2000"})
        EXPECT_EQ(OTHERCODESFAULT(text), "") << text;
    for (const char* text : {"x", "1000 -5", "20-10", "0", "1.5", "1000;"})
        EXPECT_NE(OTHERCODESFAULT(text).find("is no code of an error.\nTry, for example, '1000 2000-2099'."),
                  std::string::npos)
            << text;
}

TEST_F(StopErrors, AreFoundByCodeAndText) {
    EXPECT_EQ(FINDERRORS("643"), std::vector<int>{643});
    EXPECT_EQ(FINDERRORS("DIVISION"), std::vector<int>{643});
    EXPECT_EQ(FINDERRORS("not found in resource"), (std::vector<int>{721, 722, 723, 724}));
    EXPECT_TRUE(FINDERRORS("nothing of the kind").empty());
    EXPECT_GT(FINDERRORS("").size(), 100U);
}

TEST_F(StopErrors, AreToldInWords) {
    EXPECT_EQ(STOPCODESTEXT(""), "Every error stops.");
    EXPECT_EQ(STOPCODESTEXT("x"), "Every error stops.");
    EXPECT_EQ(STOPCODESTEXT("601"), "1 error stops.");
    EXPECT_EQ(STOPCODESTEXT("601 602"), "2 errors stop.");
    EXPECT_EQ(STOPCODESTEXT("601 1000"), "1 error stops, and others.");
    EXPECT_EQ(STOPCODESTEXT("1000"), "Other codes stop.");
}

// ---- the dialog ----

TEST_F(StopErrors, AreShownWithTheirTexts) {
    EXPECT_EQ(valueBehind("601 1000",
                          [&] {
                              EXPECT_EQ(GetCaption(StopErrorsDlg), "Tools-Options-Debug Errors");
                              EXPECT_FALSE(GetChecked(in("chkevery")));
                              EXPECT_EQ(row(1), "\t5\tAccess violation");
                              EXPECT_EQ(row(8), "yes\t601\tSet reference out of bounds");
                              EXPECT_EQ(GetText(in("edtothers")), "1000");
                              EXPECT_EQ(GetCaption(in("lblcount")), "1 error stops, and others.");
                              press(Ok);
                          }),
              "601 1000");
    EXPECT_TRUE(accepted);
    EXPECT_FALSE(IsLoaded(StopErrorsDlg));
}

TEST_F(StopErrors, AreChosenByKeysAndTheMouse) {
    EXPECT_EQ(valueBehind("",
                          [&] {
                              EXPECT_TRUE(GetChecked(in("chkevery")));
                              choose(8);
                              press("btntoggle");
                              EXPECT_FALSE(GetChecked(in("chkevery"))) << "who chooses wants these";
                              EXPECT_EQ(GetListIndex(in("lsterrors")), 8);
                              choose(9);
                              EXPECT_TRUE(key(KEY_RETURN));
                              choose(10);
                              platform::userDoubleClick(*platform::findControl(in("lsterrors")), 1, 1);
                              choose(8);
                              press("btntoggle");
                              press(Ok);
                          }),
              "602-603");
}

TEST_F(StopErrors, ThoseThatAreFoundAreChosenTogether) {
    EXPECT_EQ(valueBehind("643",
                          [&] {
                              type("edtsearch", "not found in resource");
                              EXPECT_EQ(GetListCount(in("lsterrors")), 4);
                              press("btnall");
                              choose(2);
                              press("btntoggle");
                              type("edtsearch", "xx");
                              EXPECT_FALSE(GetEnabled(in("btntoggle")));
                              EXPECT_FALSE(GetEnabled(in("btnall")));
                              type("edtsearch", "division");
                              press("btnnone");
                              press(Ok);
                          }),
              "721 723-724");
}

TEST_F(StopErrors, ARangeStaysOneUntilAnErrorIsTakenOutOfIt) {
    EXPECT_EQ(valueBehind("643-650",
                          [&] {
                              EXPECT_EQ(GetText(in("edtothers")), "643-650");
                              type("edtsearch", "643");
                              EXPECT_EQ(row(1), "yes\t643\tDivision by zero");
                              press(Ok);
                          }),
              "643-650");
    EXPECT_EQ(valueBehind("643-650",
                          [&] {
                              type("edtsearch", "643");
                              choose(1);
                              press("btntoggle");
                              EXPECT_EQ(row(1), "\t643\tDivision by zero");
                              EXPECT_EQ(GetText(in("edtothers")), "644-650");
                              press(Ok);
                          }),
              "644-650");
}

TEST_F(StopErrors, OfARangeAreInTheListAsLongAsItIsWritten) {
    EXPECT_EQ(valueBehind("601 643-650",
                          [&] {
                              type("edtsearch", "643");
                              type("edtothers", "1000");
                              EXPECT_EQ(row(1), "\t643\tDivision by zero");
                              type("edtothers", "642-2000");
                              EXPECT_EQ(row(1), "yes\t643\tDivision by zero");
                              press("btnall");
                              type("edtothers", "");
                              EXPECT_EQ(row(1), "\t643\tDivision by zero") << "the range had it already";
                              press(Ok);
                          }),
              "601");
}

TEST_F(StopErrors, WhatIsStoredAndNoCodeStandsInTheDialogToBeMended) {
    EXPECT_EQ(valueBehind("650-643, 601 x 643-650",
                          [&] {
                              EXPECT_FALSE(GetChecked(in("chkevery")));
                              EXPECT_EQ(GetText(in("edtothers")), "643-650 650-643 x");
                              press(Ok);
                              EXPECT_NE(lastText().find("'650-643' is no code of an error."),
                                        std::string::npos);
                              type("edtsearch", "643");
                              choose(1);
                              press("btntoggle");
                              EXPECT_EQ(GetText(in("edtothers")), "644-650 650-643 x");
                              type("edtothers", "644-650");
                              press(Ok);
                          }),
              "601 644-650");
}

TEST_F(StopErrors, EveryErrorIsNoValue) {
    EXPECT_EQ(valueBehind("601 1000", [&] { SetChecked(in("chkevery"), true), press(Ok); }), "");
    EXPECT_TRUE(accepted);
}

TEST_F(StopErrors, CancelAndEscapeChangeNothing) {
    EXPECT_EQ(valueBehind("601", [&] { press("btnall"), press(Cancel); }), "601");
    EXPECT_FALSE(accepted);
    EXPECT_EQ(valueBehind("601", [&] { press("btnall"), key(KEY_ESCAPE); }), "601");
    EXPECT_FALSE(accepted);
}

TEST_F(StopErrors, NoneAndWhatIsNoCodeAreRefused) {
    EXPECT_EQ(valueBehind("601",
                          [&] {
                              press("btnnone");
                              EXPECT_EQ(GetCaption(in("lblcount")), "No error is chosen.");
                              press(Ok);
                              EXPECT_EQ(lastText(),
                                        "Choose the errors at which the debugger stops, or let it stop at "
                                        "every error.");
                              type("edtothers", "1000 x");
                              press(Ok);
                              EXPECT_NE(lastText().find("'x' is no code of an error."), std::string::npos);
                              type("edtothers", "1000");
                              press(Ok);
                          }),
              "1000");
}

}  // namespace
}  // namespace tarn
