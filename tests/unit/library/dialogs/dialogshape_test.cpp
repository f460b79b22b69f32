// SPDX-License-Identifier: Apache-2.0
//
// What all dialogs share: what leaves them, what is checked and kept, and that each part may be left out.
#include "library/dialogs/dialogshape.h"

#include "kernel/run/runtime.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

const Object ShapeDlg("ShapeDlg");
constexpr const char* resource = R"(ShapeDlg DIALOG
  CAPTION="Run-Shape"
  POSITION=0 0 100 100
  Edit edit1 101
    POSITION=1 1 50 12
    TEXT="first"
  Pushbutton pushbutton1 201
    POSITION=1 20 20 12
    CAPTION="OK"
  Pushbutton pushbutton2 202
    POSITION=30 20 20 12
    CAPTION="Cancel"
  Pushbutton pushbutton3 203
    POSITION=60 20 20 12
    CAPTION="&Help"
  Pushbutton other 204
    POSITION=60 40 20 12
    CAPTION="&Other"
END
)";

std::string settings;               // the file
std::string trouble;                // what is wrong with the entries
std::vector<std::string> happened;  // what the dialog's own parts did

std::string settingsFile() {
    return settings;
}
std::string entered(const Object& window) {
    return GetText(FINDCONTROL(window, "edit1"));
}

constexpr DialogShape whole{
    .settings = settingsFile,
    .showHelp = [](const Object& window) { happened.push_back("help " + GetCaption(window)); },
    .load = [](const Object& window) { happened.push_back("load " + entered(window)); },
    .problem = [](const Object&) { return trouble; },
    .accept = [](const Object& window) { happened.push_back("accept " + entered(window)); },
};
constexpr DialogButton ownButtons[] = {
    {"other", [](const Object& window) { happened.push_back("other " + entered(window)); }}};
constexpr DialogShape withButtons{.buttons = ownButtons};
constexpr DialogShape bare{};
constexpr DialogShape hiding{.hides = true};
const DialogShape* shape = &whole;

bool shapeDlg(const Object& window, int event, const Object& control, int parameter) {
    return DIALOGSHAPEEVENT(*shape, window, event, control, parameter);
}

class DialogShapes : public ::testing::Test {
protected:
    void SetUp() override {
        settings = folder_ / "a.ini";
        trouble.clear();
        happened.clear();
        asked_.clear();
        shape = &whole;
        ASSERT_TRUE(os::saveFile(folder_ / "a.rc", resource, os::Durability::Unsynced).ok());
        before_ = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked_.push_back(question.title + ": " + question.text);
            return std::string("OK");
        }));
        ClearError();
        RegisterWindow(ShapeDlg, shapeDlg);
    }
    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(before_));
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    void load() { ASSERT_EQ(Load(ShapeDlg, folder_ / "a.rc", "ShapeDlg"), ""); }
    static void press(const char* button) {
        Command(GetHandle(ShapeDlg), FINDCONTROL(ShapeDlg, button).number(), "");
    }
    static bool key(int code) { return shapeDlg(ShapeDlg, KEYPRESS_EVENT, ShapeDlg, code); }
    static void enter(const char* text) { SetText(FINDCONTROL(ShapeDlg, "edit1"), text); }
    [[nodiscard]] std::string kept() const { return PROFILESTRGET(settings, "Shapedlg", "Edit1"); }

    TempFolder folder_;
    std::vector<std::string> asked_;
    std::unique_ptr<platform::View> before_;
};

TEST_F(DialogShapes, RestoreTheControlsBeforeTheDialogsOwnLoad) {
    PROFILESTRPUT(settings, "Shapedlg", "Edit1", "kept");
    load();
    EXPECT_EQ(happened, std::vector<std::string>{"load kept"});
}

TEST_F(DialogShapes, OkStoresAcceptsAndLeaves) {
    load();
    enter("second");
    press("pushbutton1");
    EXPECT_EQ(kept(), "second");
    EXPECT_EQ(happened.back(), "accept second");
    EXPECT_FALSE(IsLoaded(ShapeDlg));
}

TEST_F(DialogShapes, AProblemIsToldAndTheDialogStaysWithNothingStored) {
    load();
    trouble = "A number should be used.";
    enter("second");
    press("pushbutton1");
    EXPECT_EQ(asked_, std::vector<std::string>{"Run-Shape: A number should be used."});
    EXPECT_EQ(kept(), "");
    EXPECT_TRUE(IsLoaded(ShapeDlg));
    EXPECT_EQ(entered(ShapeDlg), "second");
    trouble.clear();
    press("pushbutton1");
    EXPECT_FALSE(IsLoaded(ShapeDlg));
}

TEST_F(DialogShapes, CancelAndEscLeaveWithNothingStored) {
    load();
    enter("second");
    press("pushbutton2");
    EXPECT_FALSE(IsLoaded(ShapeDlg));
    load();
    enter("third");
    EXPECT_TRUE(key(KEY_ESCAPE));
    EXPECT_FALSE(IsLoaded(ShapeDlg));
    EXPECT_EQ(kept(), "");
}

TEST_F(DialogShapes, HelpAndF1ShowHelpAndStay) {
    load();
    happened.clear();
    press("pushbutton3");
    EXPECT_TRUE(key(KEY_F1));
    EXPECT_EQ(happened, (std::vector<std::string>{"help Run-Shape", "help Run-Shape"}));
    EXPECT_TRUE(IsLoaded(ShapeDlg));
}

TEST_F(DialogShapes, LeaveOtherButtonsKeysAndEventsToTheDialog) {
    load();
    EXPECT_FALSE(shapeDlg(ShapeDlg, COMMAND_EVENT, FINDCONTROL(ShapeDlg, "other"), 0));
    EXPECT_FALSE(key(KEY_UP));
    EXPECT_FALSE(shapeDlg(ShapeDlg, ACTIVATE_EVENT, ShapeDlg, 0));
    EXPECT_FALSE(shapeDlg(ShapeDlg, CLOSE_EVENT, ShapeDlg, 0));
}

TEST_F(DialogShapes, PressTheDialogsOwnButtonsAndStay) {
    shape = &withButtons;
    load();
    press("other");
    EXPECT_EQ(happened, std::vector<std::string>{"other first"});
    EXPECT_TRUE(IsLoaded(ShapeDlg));
    press("pushbutton2");
    EXPECT_FALSE(IsLoaded(ShapeDlg));
}

TEST_F(DialogShapes, NeedNoneOfTheirParts) {
    shape = &bare;
    load();
    press("pushbutton3");
    EXPECT_TRUE(key(KEY_F1));
    EXPECT_TRUE(IsLoaded(ShapeDlg));
    press("pushbutton1");
    EXPECT_FALSE(IsLoaded(ShapeDlg));
    EXPECT_FALSE(os::infoOf(settings).exists);
}

TEST_F(DialogShapes, ThatHideCanBeReadAfterOk) {
    shape = &hiding;
    load();
    enter("second");
    press("pushbutton1");
    EXPECT_TRUE(IsLoaded(ShapeDlg));
    EXPECT_FALSE(GetVisible(ShapeDlg));
    EXPECT_EQ(entered(ShapeDlg), "second");
}

}  // namespace
}  // namespace tarn
