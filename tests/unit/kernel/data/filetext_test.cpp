// SPDX-License-Identifier: Apache-2.0
//
// Saving values that are larger than what is gathered before it is written, in every form that goes piece by
// piece.
#include "kernel/data/filetext.h"

#include "kernel/data/datafile.h"
#include "unit/kernel/tab_fixture.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace tarn {
namespace {

class LongSaves : public Tab {
protected:
    void SetUp() override {
        Tab::SetUp();
        list_.emplace(declaration);
        constexpr std::size_t length = 200;
        const std::size_t rows = 3 * os::SaveStreamBytes / length + 3;
        for (std::size_t i = 0; i < rows; ++i) {
            const std::string number = std::to_string(i);
            const String text(std::string(length - number.size(), 'x') + number);
            ListAppend(text.get(), KindString, list_->get<ListDescriptor>());
        }
    }
    void TearDown() override {
        list_.reset();
        Tab::TearDown();
    }
    DataResult save(DataFormat format) {
        return SaveValue("/d/out", format, DefaultDataOptions(format), 0, list_->get(), KindList,
                         "s : string\n");
    }
    // The old file, or all of the new one, and nothing beside.
    void expectOneOfTwo(DataFormat format) {
        EXPECT_EQ(files_.allFiles(), std::vector<std::string>{"/d/out"});
        if (files_.contents("/d/out") != "old") expectWhole(format);
    }
    void expectWhole(DataFormat format) {
        Typed back(declaration);
        std::string message;
        const DataResult result =
            LoadValue("/d/out", format, DefaultDataOptions(format), back.get(), KindList, message);
        EXPECT_EQ(result.code, 0) << message;
        EXPECT_TRUE(Shown(back.get(), KindList) == Shown(list_->get(), KindList));
    }
    static constexpr const char* declaration = "x : list\n\ts : string[200]\nend list\n";
    static constexpr DataFormat forms[] = {FormatText, FormatComma, FormatXbase, FormatXml, FormatTab};
    std::optional<Typed> list_;
};

TEST_F(LongSaves, AllOfAValueIsInTheFile) {
    for (const DataFormat format : forms) {
        SCOPED_TRACE(format);
        EXPECT_EQ(save(format).code, 0);
        expectWhole(format);
        EXPECT_EQ(files_.allFiles(), std::vector<std::string>{"/d/out"});
    }
}

TEST_F(LongSaves, AFailureAtAnyCallLeavesTheOldOrTheNewFile) {
    for (const DataFormat format : forms) {
        int failures = 0;
        for (int call = 1; call < 500; ++call) {
            SCOPED_TRACE(std::to_string(format) + " " + std::to_string(call));
            files_.put("/d/out", "old");
            files_.failAt(call, os::FileError::DiskFull);
            const DataResult result = save(format);
            const bool beyond = files_.calls() < call;
            files_.stopFailing();
            if (result.code != 0) {
                ++failures;
                EXPECT_EQ(result.code, 654);
                EXPECT_EQ(result.rows, 0);
            }
            const std::string now = files_.contents("/d/out");
            EXPECT_TRUE(now == "old" || now.size() > 3 * os::SaveStreamBytes);
            EXPECT_TRUE(result.code != 0 || now != "old");
            if (beyond) break;
        }
        EXPECT_GT(failures, 5);
        expectOneOfTwo(format);
    }
}

TEST_F(LongSaves, ADeathAtAnyCallLeavesTheOldOrTheNewFile) {
    for (const DataFormat format : forms) {
        for (int call = 1; call < 500; ++call) {
            SCOPED_TRACE(std::to_string(format) + " " + std::to_string(call));
            files_.put("/d/out", "old");
            files_.dieAt(call);
            bool died = false;
            try {
                save(format);
            } catch (const os::ProcessDeath&) {
                died = true;
            }
            files_.afterMachineDeath(os::SteeredFiles::Names::Lost);
            files_.stopFailing();
            const std::string now = files_.contents("/d/out");
            EXPECT_TRUE(now == "old" || now.size() > 3 * os::SaveStreamBytes);
            if (!died) {
                expectWhole(format);
                break;
            }
        }
    }
}

TEST_F(LongSaves, AFullDiskIsToldAndTheOldFileStays) {
    for (const DataFormat format : forms) {
        SCOPED_TRACE(format);
        files_.put("/d/out", "old");
        files_.setFreeBytes(static_cast<std::int64_t>(2 * os::SaveStreamBytes));
        const DataResult result = save(format);
        files_.stopFailing();
        EXPECT_EQ(result.code, 654);
        EXPECT_EQ(result.rows, 0);
        EXPECT_EQ(files_.contents("/d/out"), "old");
        EXPECT_EQ(files_.allFiles(), std::vector<std::string>{"/d/out"});
    }
}

TEST_F(LongSaves, AFileOfTwoNamesIsWrittenInPlaceBehindACopy) {
    for (const DataFormat format : forms) {
        SCOPED_TRACE(format);
        files_.put("/d/out", "old");
        files_.putHardLink("/d/out", "/d/other");
        EXPECT_EQ(save(format).code, 0);
        expectWhole(format);
        EXPECT_EQ(files_.contents("/d/other"), files_.contents("/d/out"));
        files_.remove("/d/other");
    }
}

TEST_F(LongSaves, WhatIsMadeStandsOnTheDiskWhileTheRestIsMade) {
    FileText file("/d/out");
    files_.put("/d/out", "old");
    std::size_t most = 0;
    constexpr int parts = 2000;
    for (int i = 1; i <= parts; ++i) {
        file.text.append(os::SaveStreamBytes / 500 + 1, 'x');
        most = std::max(most, file.text.size());
        ASSERT_TRUE(file.pass(i, parts));
    }
    EXPECT_LT(most, os::SaveStreamBytes);
    EXPECT_EQ(files_.allFiles().size(), 2U);
    EXPECT_EQ(files_.contents("/d/out"), "old");
    std::string rescueCopy;
    EXPECT_EQ(file.finish(rescueCopy), 0);
    EXPECT_EQ(files_.contents("/d/out"), std::string(parts * (os::SaveStreamBytes / 500 + 1), 'x'));
    EXPECT_EQ(files_.allFiles(), std::vector<std::string>{"/d/out"});
}

TEST_F(LongSaves, AStopLeavesTheOldFileAndNothingElse) {
    std::optional<FileText> made("/d/out");
    FileText& file = *made;
    files_.put("/d/out", "old");
    static std::int64_t last = 0;
    UseProgress([](std::int64_t done, std::int64_t total) {
        EXPECT_NEAR(static_cast<double>(total), 8.0 * ProgressStep, 0.2 * ProgressStep);
        last = done;
        return done < total / 2;
    });
    int passed = 0;
    do {
        file.text.append(std::size_t{ProgressStep} / 16, 'x');
        ++passed;
    } while (file.pass(passed, 128));
    EXPECT_TRUE(file.stopped());
    EXPECT_FALSE(file.good());
    EXPECT_NEAR(static_cast<double>(last), 4.0 * ProgressStep, 0.2 * ProgressStep);
    made.reset();
    EXPECT_EQ(files_.contents("/d/out"), "old");
    EXPECT_EQ(files_.allFiles(), std::vector<std::string>{"/d/out"});
}

}  // namespace
}  // namespace tarn
