// SPDX-License-Identifier: Apache-2.0
//
// The wizard: its way through the pages, what the buttons are called, which values go along, and what is no page.
#include "library/dialogs/wizard.h"

#include "kernel/run/runtime.h"
#include "kernel/windows/resources.h"
#include "library/system/system.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/resources.h"
#include "support/tempfolder.h"

#include <deque>
#include <functional>
#include <gtest/gtest.h>

namespace tarn {
namespace {

const Object One("One"), Two("Two"), Three("Three"), Bare("Bare"), Forward("Forward");

constexpr const char* buttons = "  Pushbutton IDRETRY\n  Pushbutton IDOK\n    ENABLED=0\n"
                                "  Pushbutton IDCANCEL\n    VISIBLE=0\n";

bool hides(const Object& window, int event, const Object& control, int) {
    if (event == LOAD_EVENT && window == Forward) Show(window, false);
    if (event == LOAD_EVENT) SetArrayValue(window, "Seen" + GetName(window), "1");
    if (event != COMMAND_EVENT) return false;
    if (GetName(control).starts_with("ID")) Hide(window);
    return true;
}

class Wizard : public testing::Test {
protected:
    TempFolder folder;
    std::vector<std::string> told;
    std::deque<std::function<void()>> doings;
    std::vector<std::string> values;
    std::unique_ptr<platform::View> before;

    void SetUp() override {
        std::string rc;
        for (const char* const name : {"One", "Two", "Three", "Forward"})
            rc += std::string(name) + " DIALOG\n  CAPTION=\"old\"\n" + buttons + "END\n";
        rc += "Bare DIALOG\n  Pushbutton IDOK\nEND\n";
        ASSERT_EQ(useResources(folder, rc), "");
        before = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            told.push_back(question.text);
            return std::string();
        }));
        for (const Object& page : {One, Two, Three, Bare, Forward}) RegisterWindow(page, hides);
        platform::view().setIdle([this] {
            if (doings.empty()) return platform::QuitMainLoop();
            const auto next = doings.front();
            doings.pop_front();
            next();
        });
    }
    void TearDown() override {
        EXPECT_TRUE(doings.empty());
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        for (const Object& page : {One, Two, Three, Bare, Forward}) EXPECT_FALSE(IsLoaded(page));
        platform::view().setIdle({});
        platform::DestroyAllWindows();
        platform::SetApplicationResources("");
        platform::useView(std::move(before));
    }
    // On this page, of this caption, the button of this caption is there or not, and is pressed.
    void press(const Object& page, const std::string& caption, const std::string& control) {
        doings.emplace_back([page, caption, control] {
            ASSERT_TRUE(IsLoaded(page)) << page.window();
            EXPECT_EQ(GetCaption(page), caption);
            EXPECT_TRUE(IsModal(page));
            const Object button = FINDCONTROL(page, control);
            EXPECT_TRUE(GetEnabled(button) && GetVisible(button)) << control;
            platform::userCommand(*platform::findControl(button));
        });
    }
    void look(std::function<void()> fact) {
        // Goes on at once: what follows is done at the same wait.
        const auto then = doings.empty() ? std::function<void()>() : doings.back();
        if (!doings.empty()) doings.pop_back();
        doings.emplace_back([fact = std::move(fact), then] {
            fact();
            if (then) then();
        });
    }
    static std::string captions(const Object& page) {
        std::string text;
        for (const char* const name : {"IDRETRY", "IDOK", "IDCANCEL"}) {
            const Object control = FINDCONTROL(page, name);
            text += GetCaption(control) + (GetEnabled(control) ? "" : " (off)") + ";";
        }
        return text;
    }
    bool run(const std::vector<Object>& pages) { return WIZARDDIALOG("Title", pages, values); }
};

TEST_F(Wizard, NextLeadsToTheLastPageAndDoneEndsIt) {
    press(One, "Title (1 of 3)", "idok");
    look([] { EXPECT_EQ(captions(One), "&Back << (off);&Next >>;Cancel;"); });
    press(Two, "Title (2 of 3)", "idok");
    look([] { EXPECT_EQ(captions(Two), "&Back <<;&Next >>;Cancel;"); });
    press(Three, "Title (3 of 3)", "idok");
    look([] { EXPECT_EQ(captions(Three), "&Back <<;Done;Cancel;"); });
    EXPECT_TRUE(run({One, Two, Three}));
    EXPECT_EQ(values, (std::vector<std::string>{"SeenOne=1", "SeenTwo=1", "SeenThree=1"}));
}

TEST_F(Wizard, ASinglePageHasTheTitleAlone) {
    press(One, "Title", "idok");
    look([] { EXPECT_EQ(captions(One), "&Back << (off);Done;Cancel;"); });
    EXPECT_TRUE(run({One}));
}

TEST_F(Wizard, BackReturnsWithTheValuesThatThePageAdded) {
    press(One, "Title (1 of 2)", "idok");
    press(Two, "Title (2 of 2)", "idretry");
    look([] { SetArrayValue(Two, "Added", "by two"); });
    press(One, "Title (1 of 2)", "idok");
    look([] {
        EXPECT_EQ(GetArrayValue(One, "Added"), "by two");
        EXPECT_EQ(GetArrayValue(One, "Given"), "at start");
    });
    press(Two, "Title (2 of 2)", "idok");
    values = {"Given=at start"};
    EXPECT_TRUE(run({One, Two}));
}

TEST_F(Wizard, CancelEndsItOnAnyPage) {
    press(One, "Title (1 of 2)", "idok");
    press(Two, "Title (2 of 2)", "idcancel");
    look([] { SetArrayValue(Two, "Added", "by two"); });
    EXPECT_FALSE(run({One, Two}));
    EXPECT_EQ(values, (std::vector<std::string>{"SeenOne=1", "SeenTwo=1", "Added=by two"}));
}

TEST_F(Wizard, TheCrossOfAPageEndsIt) {
    press(One, "Title (1 of 2)", "idok");
    doings.emplace_back([] { Unload(Two); });
    EXPECT_FALSE(run({One, Two}));
    EXPECT_EQ(values, std::vector<std::string>{"SeenOne=1"});
}

TEST_F(Wizard, WithoutPagesNothingHappens) {
    EXPECT_FALSE(run({}));
}

TEST_F(Wizard, APageThatLacksButtonsIsTold) {
    EXPECT_FALSE(run({Bare, One}));
    EXPECT_EQ(told, std::vector<std::string>{"Bare does not have a 'Back' button (IDRETRY)\n"
                                             "Bare does not have a 'Cancel' button (IDCANCEL)"});
}

TEST_F(Wizard, APageThatShowsItselfIsTold) {
    EXPECT_FALSE(run({Forward}));
    EXPECT_EQ(told, std::vector<std::string>{"Forward is not allowed to Show itself while loading"});
}

}  // namespace
}  // namespace tarn
