// SPDX-License-Identifier: Apache-2.0
//
// Whole values of the language to and from files, by the system library.
#include "library/system/system.h"

#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/values/owned.h"
#include "kernel/values/values.h"
#include "platform/model/view.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

class Values : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        files.putFolder("/a");
        ListInit(list.get(), UNBOUNDED, nullptr, KindInteger, false);
        const std::int32_t number = 7;
        ListAppend(&number, KindInteger, list.get());
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    static int takeError() {
        const int code = ErrorCell();
        ClearError();
        return code;
    }
    DataResult save(const std::string& file, std::int32_t format) {
        return SAVEFILE(file, format, nullptr, list.get(), KindList);
    }
    Variable state{"XDG_STATE_HOME", "/home/u/state"};
    os::SteeredFiles files;
    os::SteeredClock clock;
    os::Steered steeredFiles{files}, steeredClock{clock};
    ListValue list;
    static constexpr std::int32_t formats[] = {FormatText,  FormatComma, FormatBinary,
                                               FormatXbase, FormatXml,   FormatTab};
};

TEST_F(Values, AFailedSaveTellsWhatBecameOfItUntilTheNextOne) {
    for (const std::int32_t format : formats) {
        SCOPED_TRACE(format);
        files.put("/a/x", "old");
        files.failAlways(os::FileCall::Write, os::FileError::DiskFull);
        EXPECT_EQ(save("/a/x", format).code, 654);
        EXPECT_EQ(takeError(), 654);
        EXPECT_EQ(files.contents("/a/x"), "old");
        EXPECT_EQ(SAVEFILEREPORT(), "The file could not be saved:\n\n\t'/a/x'\n\nDisk drive full up\n"
                                    "The file on disk is as it was. Save again when the cause is gone, or to "
                                    "another file.");
        files.failAlways(os::FileCall::Write, os::FileError::None);
        EXPECT_EQ(save("/a/x", format).code, 0);
        EXPECT_EQ(SAVEFILEREPORT(), "");
    }
    EXPECT_FALSE(SAVEFILE("/none/x", std::string_view("text")));
    EXPECT_NE(SAVEFILEREPORT(), "");
    EXPECT_EQ(takeError(), 652);
    EXPECT_EQ(LOADFILE("/a/x", FormatTab, list.get(), KindList).code, 0);
    EXPECT_EQ(SAVEFILEREPORT(), "");
}

// A file of two names is written in place, behind a copy of the new bytes.
TEST_F(Values, WhereTheNewBytesAreSafeIsTold) {
    for (const std::int32_t format : formats) {
        SCOPED_TRACE(format);
        EXPECT_EQ(save("/a/z", format).code, 0);
        const std::string whole = files.contents("/a/z");
        int rescues = 0;
        for (int call = 1; call <= 30; ++call) {
            files.put("/a/x", "old contents that are longer than the new ones, whatever these are");
            files.putHardLink("/a/x", "/a/y");
            files.failAt(call, os::FileError::WriteFailed);
            const DataResult result = save("/a/x", format);
            files.stopFailing();
            EXPECT_EQ(takeError(), result.code);
            if (result.rescueCopy.empty()) continue;
            ++rescues;
            EXPECT_NE(result.code, 0);
            EXPECT_EQ(files.contents(result.rescueCopy), whole);
            const std::string report = SAVEFILEREPORT();
            EXPECT_NE(
                report.find("The whole new data is safe in this file:\n\n\t'" + result.rescueCopy + "'"),
                std::string::npos)
                << report;
        }
        EXPECT_GT(rescues, 0);
    }
}

// ---- long work ----

// A clock on which each look takes a while.
class SlowClock : public os::SteeredClock {
public:
    std::int64_t steady() override {
        advance(600'000'000);
        return SteeredClock::steady();
    }
};

class LongValues : public Values {
protected:
    void SetUp() override {
        Values::SetUp();
        for (std::int32_t number = 0; number < 900'000; ++number)
            ListAppend(&number, KindInteger, list.get());
        view = platform::useView(platform::makeHeadlessView());
        clockBefore = os::useClock(&slow);
    }
    void TearDown() override {
        os::useClock(clockBefore);
        platform::useView(std::move(view));
        Values::TearDown();
    }
    void stopWhenPossible() {
        platform::view().setIdle([this] { stops += platform::pressToolStop() ? 1 : 0; });
    }
    int stops = 0;
    SlowClock slow;
    os::Clock* clockBefore = nullptr;
    std::unique_ptr<platform::View> view;
};

TEST_F(LongValues, AreStoppedByTheUserAndThatIsAFailure) {
    for (const std::int32_t format : formats) {
        SCOPED_TRACE(format);
        files.put("/a/x", "old");
        platform::view().setIdle({});
        EXPECT_EQ(save("/a/y", format).code, 0);
        stopWhenPossible();
        DataResult result = save("/a/x", format);
        EXPECT_TRUE(result.stopped);
        EXPECT_EQ(result.code, 652);
        EXPECT_EQ(takeError(), 652);
        EXPECT_EQ(files.contents("/a/x"), "old");
        EXPECT_NE(SAVEFILEREPORT().find("The writing was stopped."), std::string::npos);
        result = LOADFILE("/a/y", format, list.get(), KindList);
        EXPECT_TRUE(result.stopped);
        EXPECT_EQ(result.code, 651);
        EXPECT_EQ(takeError(), 651);
        EXPECT_EQ(ListCount(list.get()), 900'001);
    }
    EXPECT_GE(stops, 2);
    EXPECT_FALSE(platform::pressToolStop()) << "the progress is gone";
}

}  // namespace
}  // namespace tarn
