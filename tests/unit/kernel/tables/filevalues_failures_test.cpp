// SPDX-License-Identifier: Apache-2.0
//
// Making the files of lists where the disk fails, is full, or the process dies.
#include "unit/kernel/filevalues_fixture.h"

namespace tarn {
namespace {

// ---- failures ----

struct Making {
    const char* name;
    std::int32_t capacity;
};
constexpr Making makings[] = {
    {"/d/a.tab", UNBOUNDED}, {"/d/b.tab", 3}, {"/d/c.dbf", UNBOUNDED}, {"/d/d.dbf", 3}};

ValueModel rowFor(const Making& making, const ValueModel& xbase) {
    return std::string_view(making.name).ends_with(".dbf") ? xbase : model::Number(KindInteger, 0);
}

TEST_F(FileValues, AFileThatCannotBeMadeIsGone) {
    for (const Making& making : makings) {
        ListValue l = listOf(rowFor(making, xbaseRow()), making.capacity);
        for (int call = 1;; ++call) {
            SCOPED_TRACE(std::string(making.name) + " call " + std::to_string(call));
            files_.failAt(call, os::FileError::WriteFailed);
            FileOpen(l.get(), KindList, making.name);
            const bool reached = files_.calls() >= call;
            files_.stopFailing();
            if (!reached) break;
            EXPECT_EQ(takeError(), 652);
            EXPECT_FALSE(FileExists(l.get(), KindList));
            EXPECT_EQ(l.get()->count, 0);
            EXPECT_TRUE(files_.allFiles().empty());
            EXPECT_EQ(files_.openHandles(), 0);
        }
        EXPECT_TRUE(FileExists(l.get(), KindList));
        EXPECT_EQ(takeError(), 0);
        FileClose(l.get(), KindList);
        files_.remove(making.name);
    }
}

TEST_F(FileValues, AFileThatDoesNotFitOnTheDiskIsGone) {
    for (const Making& making : makings) {
        ListValue l = listOf(rowFor(making, xbaseRow()), making.capacity);
        for (std::int64_t bytes = 0;; ++bytes) {
            SCOPED_TRACE(std::string(making.name) + " bytes " + std::to_string(bytes));
            files_.setFreeBytes(bytes);
            FileOpen(l.get(), KindList, making.name);
            files_.stopFailing();
            if (FileExists(l.get(), KindList)) break;
            EXPECT_EQ(takeError(), 654);
            EXPECT_TRUE(files_.allFiles().empty());
        }
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(check(l), "");
        FileClose(l.get(), KindList);
        files_.remove(making.name);
    }
}

TEST_F(FileValues, AFileIsNeverSeenHalfMade) {
    for (const Making& making : makings) {
        for (const bool midway : {false, true}) {
            for (int call = 1;; ++call) {
                SCOPED_TRACE(std::string(making.name) + " call " + std::to_string(call));
                ListValue l = listOf(rowFor(making, xbaseRow()), making.capacity);
                files_.dieAt(call, midway);
                bool died = false;
                try {
                    FileOpen(l.get(), KindList, making.name);
                } catch (const os::ProcessDeath&) {
                    died = true;
                }
                files_.revive();
                files_.stopFailing();
                if (died) {
                    ListValue other = listOf(rowFor(making, xbaseRow()), making.capacity);
                    FileOpen(other.get(), KindList, making.name);
                    EXPECT_EQ(takeError(), 0);
                    EXPECT_EQ(check(other), "");
                }
                AdtFree(l.get(), KindList);
                for (const std::string& file : files_.allFiles()) files_.remove(file);
                if (!died) break;
            }
        }
    }
}

}  // namespace
}  // namespace tarn
