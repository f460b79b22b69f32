// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/debug/ruledlg.h"

#include "support/ide_fixture.h"

namespace tarn {
namespace {

const Object RuleDlg("BreakpointRuleDlg");

class RuleDialog : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        start();
    }
    // What the user types, and the button; several tries, of which all but the last are refused.
    struct Try {
        std::string condition, hits, log, button;
    };
    bool run(DebugRule& rule, const std::vector<Try>& tries) {
        std::size_t at = 0;
        platform::view().setIdle([&] {
            if (at >= tries.size() || !IsLoaded(RuleDlg)) return;
            const Try one = tries[at++];
            SetText(FINDCONTROL(RuleDlg, "edtcondition"), one.condition);
            SetText(FINDCONTROL(RuleDlg, "edthits"), one.hits);
            SetText(FINDCONTROL(RuleDlg, "edtlog"), one.log);
            platform::userCommand(*platform::findControl(FINDCONTROL(RuleDlg, one.button)));
        });
        const bool accepted = RULEDIALOG(rule);
        platform::view().setIdle({});
        return accepted;
    }
    static constexpr const char *Ok = "pushbutton1", *Cancel = "pushbutton2";
};

TEST_F(RuleDialog, TakesWhatWasTyped) {
    DebugRule rule{"Sums", 12, "", 0, ""};
    EXPECT_TRUE(run(rule, {{" n > 3 ", "5", "n is {n}", Ok}}));
    EXPECT_EQ(rule, (DebugRule{"Sums", 12, "n > 3", 5, "n is {n}"}));
    EXPECT_FALSE(IsLoaded(RuleDlg));
}

TEST_F(RuleDialog, EmptyFieldsMakeAPlainBreakpoint) {
    DebugRule rule{"Sums", 12, "n > 3", 5, "x"};
    EXPECT_TRUE(run(rule, {{"", "", "", Ok}}));
    EXPECT_TRUE(rule.plain());
}

TEST_F(RuleDialog, CancelLeavesTheRule) {
    const DebugRule before{"Sums", 12, "n > 3", 5, "x"};
    DebugRule rule = before;
    EXPECT_FALSE(run(rule, {{"a", "1", "b", Cancel}}));
    EXPECT_EQ(rule, before);
}

TEST_F(RuleDialog, RefusesWhatCannotBeRead) {
    DebugRule rule{"Sums", 12, "", 0, ""};
    EXPECT_TRUE(run(rule, {{"", "x", "", Ok},
                           {"", "-1", "", Ok},
                           {"n >", "", "", Ok},
                           {"(n", "", "", Ok},
                           {"n = 1", "", "", Ok}}));
    ASSERT_EQ(asked.size(), 4U);
    EXPECT_EQ(asked[0].title, "Run-Breakpoint Rule");
    EXPECT_EQ(asked[0].text, "The number of the hit must be a whole number from 1 on.");
    EXPECT_EQ(asked[1].text, asked[0].text);
    EXPECT_TRUE(asked[2].text.starts_with("The condition cannot be read.\n")) << asked[2].text;
    EXPECT_TRUE(asked[3].text.starts_with("The condition cannot be read.\n")) << asked[3].text;
    EXPECT_EQ(rule.condition, "n = 1");
}

}  // namespace
}  // namespace tarn
