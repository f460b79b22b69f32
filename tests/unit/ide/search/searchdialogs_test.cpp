// SPDX-License-Identifier: GPL-3.0-or-later
//
// Marks at all hits, patterns that are kept, and searches in files that the user stops.
#include "ide/search/searchdialogs.h"

#include "ide/menus/editsearch.h"
#include "ide/search/findfiles.h"
#include "ide/search/replacefiles.h"
#include "kernel/windows/textedits.h"
#include "os/clock.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

class Searches : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
    }
    void keep(const char* key, const char* value) { PROFILESTRPUT(ini(), "Edit_Find", key, value); }
};

TEST_F(Searches, MarkAllHitsOrTakeTheMarksAway) {
    SetText(SDIEdit, "One two one");
    keep("FindString", "one");
    DO_FIND_MARKS();
    const std::vector<Selection> marks = GetMarks(SDIEdit);
    ASSERT_EQ(marks.size(), 2U);
    EXPECT_EQ(marks[0].start, 1);
    EXPECT_EQ(marks[1].start, 9);
    EXPECT_EQ(marks[1].length, 3);
    DO_FIND_MARKS();
    EXPECT_TRUE(GetMarks(SDIEdit).empty());
    keep("MatchCase", "1");
    DO_FIND_MARKS();
    EXPECT_EQ(GetMarks(SDIEdit).size(), 1U);
    EXPECT_TRUE(asked.empty());
    EXPECT_FALSE(GetModify(SDIEdit));
}

TEST_F(Searches, WithNothingToMarkTellIt) {
    SetText(SDIEdit, "text");
    DO_FIND_MARKS();  // an empty text only beeps
    EXPECT_TRUE(asked.empty());
    keep("FindString", "none");
    DO_FIND_MARKS();
    EXPECT_EQ(lastText(), "Cannot find search string:\n'none'");
    keep("FindString", "(");
    keep("Regex", "1");
    DO_FIND_MARKS();
    EXPECT_TRUE(lastText().starts_with("The pattern is not valid at character 1:\n")) << lastText();
    DO_FIND_NEXT();
    EXPECT_TRUE(lastText().starts_with("The pattern is not valid at character 1:\n")) << lastText();
}

TEST_F(Searches, MarkNoMoreThanCanBeShown) {
    SetText(SDIEdit, std::string(150'000, 'x'));
    keep("FindString", "x");
    DO_FIND_MARKS();
    EXPECT_EQ(GetMarks(SDIEdit).size(), 100'000U);
}

TEST_F(Searches, GoOnByThePatternThatWasKept) {
    SetText(SDIEdit, "a1 b22");
    keep("FindString", "[0-9]+");
    DO_FIND_NEXT();
    EXPECT_EQ(lastText(), "Cannot find search string:\n'[0-9]+'");
    keep("Regex", "1");
    DO_FIND_NEXT();
    EXPECT_EQ(GetSelText(SDIEdit), "1");
    DO_FIND_NEXT();
    EXPECT_EQ(GetSelText(SDIEdit), "22");
}

// Each look at the clock takes a while.
class TickingClock : public os::Clock {
public:
    std::int64_t now() override { return 981'173'106'000'000'000; }
    std::int64_t steady() override { return steady_ += 30'000'000; }
    os::CivilTime local(std::int64_t) override { return {2001, 2, 3, 4, 5, 6, 0}; }
    void sleep(std::int64_t) override {}

private:
    std::int64_t steady_ = 0;
};

class StoppedSearches : public Searches {
protected:
    void SetUp() override {
        Searches::SetUp();
        for (int n = 0; n < 200; ++n) write("f" + std::to_string(n) + ".cls", "old\n");
        choices.text = "old";
        choices.with = "new";
        choices.patterns = "f*.cls";  // not system.cls
        choices.folders = {dir};
        os::useClock(&clock);
    }
    void TearDown() override {
        os::useClock(nullptr);
        Searches::TearDown();
    }
    static void stopSoon() {
        platform::view().setIdle([] { platform::pressToolStop(); });
    }
    int countOfNew() {
        int count = 0;
        for (int n = 0; n < 200; ++n) {
            const std::string text = read(dir + "f" + std::to_string(n) + ".cls");
            EXPECT_TRUE(text == "old\n" || text == "new\n") << text;
            count += text == "new\n" ? 1 : 0;
        }
        return count;
    }
    TickingClock clock;
    FileChoices choices;
};

TEST_F(StoppedSearches, TellThatTheyWereStopped) {
    stopSoon();
    const std::string lines = FINDINFILES(choices);
    EXPECT_NE(lines.find("The search was stopped.\n"), std::string::npos) << lines;
    EXPECT_LT(STRLINES(lines), 200);
}

TEST_F(StoppedSearches, ChangeNothingBeforeTheList) {
    stopSoon();
    EXPECT_TRUE(PLANREPLACEMENTS(choices).stopped);
    EXPECT_EQ(countOfNew(), 0);
}

TEST_F(StoppedSearches, LeaveTheRestOfTheFilesAsTheyWere) {
    const ReplacePlan plan = PLANREPLACEMENTS(choices);
    ASSERT_EQ(plan.files.size(), 200U);
    stopSoon();
    const ReplaceReport report = WRITEREPLACEMENTS(choices, plan);
    EXPECT_LT(report.files, 200);
    EXPECT_EQ(countOfNew(), report.files);
    EXPECT_TRUE(report.problems.starts_with("It was stopped; the files from '")) << report.problems;
}

}  // namespace
}  // namespace tarn
