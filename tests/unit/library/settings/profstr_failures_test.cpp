// SPDX-License-Identifier: Apache-2.0
//
// Profile strings on disks that fail: the old file stays whole, and the user is told once.
#include "os/text/ascii.h"
#include "platform/model/useracts.h"
#include "unit/library/settings/profstr_fixture.h"

namespace tarn {
namespace {

// ---- failures ----

TEST_F(Profile, AFailureAtAnyCallOfAWriteIsToldAndLeavesTheOldFileWhole) {
    const std::string before = "[A]\r\nk=old\r\n", after = "[A]\r\nk=new\r\n";
    start(before);
    files.clearLog();
    PROFILESTRPUT(File, "A", "k", "new");
    ASSERT_EQ(text(), after);
    const int calls = files.calls();
    ASSERT_GT(calls, 0);
    int failures = 0;
    for (int call = 1; call <= calls; ++call) {
        start(before);
        files.failAt(call, os::FileError::DiskFull);
        PROFILESTRPUT(File, "A", "k", "new");
        const std::string now = text();
        EXPECT_TRUE(now == before || now == after) << call << ": " << now;
        if (const int code = takeTold(); code != 0) {
            EXPECT_EQ(code, 654) << call;
            EXPECT_EQ(now, before) << call;
            ++failures;
        } else {
            EXPECT_EQ(now, after) << call;
        }
        files.stopFailing();
        PROFILESTRPUT(File, "A", "k", "written");  // so that the next failure is told again
    }
    EXPECT_GT(failures, 0);
    EXPECT_EQ(files.openHandles(), 0);
}

TEST_F(Profile, AFullDiskAndAReadOnlyPlaceKeepTheOldFile) {
    start("[A]\r\nk=old\r\n");
    files.setFreeBytes(3);
    PROFILESTRPUT(File, "A", "k", "a longer value");
    EXPECT_EQ(takeTold(), 654);
    EXPECT_EQ(text(), "[A]\r\nk=old\r\n");
    files.stopFailing();
    files.setFreeBytes(1 << 20);
    files.putFolder("/home/user", 0555);
    files.put(File, "[A]\r\nk=old\r\n", 0444);
    PROFILESTRPUT(File, "A", "k", "new");
    EXPECT_EQ(takeTold(), 652);
    EXPECT_EQ(text(), "[A]\r\nk=old\r\n");
}

TEST_F(Profile, AReadOnlyFileIsToldOnceForAllTheSettingsOfAStart) {
    files.putFolder("/home/user", 0555);
    files.put(File, "[A]\r\nk=old\r\n", 0444);
    for (const char* key : {"a", "b", "k", "c"}) {
        PROFILESTRPUT(File, "A", key, "new");
        EXPECT_EQ(get("A", "k"), "old");
        EXPECT_EQ(ErrorCell(), 0);
    }
    EXPECT_EQ(takeTold(), 652);
    PROFILESTRDEL(File, "A", "k");
    EXPECT_TRUE(asked.empty());
    files.putFolder("/home/user", 0755);
    files.put(File, "[A]\r\nk=old\r\n", 0644);
    ClearError();
    PROFILESTRPUT(File, "A", "k", "new");
    EXPECT_EQ(text(), "[A]\r\nk=new\r\n");
    EXPECT_EQ(takeTold(), 0);
    files.failAlways(os::FileCall::Write, os::FileError::DiskFull);  // another cause, after a success
    PROFILESTRPUT(File, "A", "k", "newer");
    EXPECT_EQ(takeTold(), 654);
    files.failAlways(os::FileCall::Write, os::FileError::WriteFailed);  // another code
    PROFILESTRPUT(File, "A", "k", "newer");
    EXPECT_EQ(takeTold(), 652);
}

TEST_F(Profile, AChangeThatIsLostIsToldOnceForEachThingThatTheUserDoes) {
    for (const bool readable : {true, false}) {
        files.putFolder("/home/user", 0555);
        files.put(File, "[A]\r\nk=old\r\n", readable ? 0444 : 0000);
        for (int act = 0; act < 3; ++act) {
            platform::noteUserAct();
            for (const char* key : {"a", "b", "c"}) PROFILESTRPUT(File, "A", key, "new");
            PROFILESTRDEL(File, "A", "k");
            PROFILESTRPUT(File, "L", "", "1\n2\n");
            ASSERT_EQ(asked.size(), 1U) << act;
            EXPECT_EQ(ErrorCell(), 0);
            asked.clear();
            get("A", "k");
            EXPECT_TRUE(asked.empty()) << "what is only read loses nothing";
        }
        platform::noteUserAct();
        get("A", "k");
        EXPECT_TRUE(asked.empty());
        files.putFolder("/home/user", 0755);
        files.put(File, "[A]\r\nk=old\r\n", 0644);
        PROFILESTRPUT(File, "A", "k", "new");
    }
}

TEST_F(Profile, WhatThePressedButtonOfTheBoxDidIsNoActOfItsOwn) {
    files.putFolder("/home/user", 0555);
    files.put(File, "[A]\r\n", 0444);
    int boxes = 0;
    const auto own = platform::useView(platform::makeHeadlessView([&boxes](const platform::Question&) {
        platform::noteUserAct();
        ++boxes;
        return "OK";
    }));
    platform::noteUserAct();
    for (const char* key : {"a", "b", "c"}) PROFILESTRPUT(File, "A", key, "new");
    EXPECT_EQ(boxes, 1);
}

TEST_F(Profile, AWriteThatChangesNothingIsNone) {
    start("[A]\r\nk=v\r\n");
    files.failAlways(os::FileCall::Write, os::FileError::DiskFull);
    PROFILESTRPUT(File, "A", "k", "v");
    EXPECT_EQ(takeTold(), 0);
    files.stopFailing();
}

TEST_F(Profile, EachFileIsToldForItself) {
    const std::string other = "/home/user/other.ini";
    files.put(other, "[A]\r\nk=1\r\n", 0000);
    files.put(File, "[A]\r\nk=1\r\n", 0000);
    for (int i = 0; i < 3; ++i) {
        PROFILESTRGET(File, "A", "k");
        PROFILESTRGET(other, "A", "k");
    }
    EXPECT_EQ(asked.size(), 2U);
    os::files().remove(other);
    PROFILESTRGET(other, "A", "k");
}

TEST_F(Profile, AFailureWhileAnotherReportGoesOnNeitherEndsTheProgramNorCountsAsTold) {
    start("[A]\r\nk=old\r\n");
    files.failAlways(os::FileCall::Write, os::FileError::DiskFull);
    {
        const Reporting outer;
        ASSERT_TRUE(outer.entered());
        PROFILESTRPUT(File, "A", "k", "new");
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_TRUE(asked.empty());
    }
    ClearError();
    PROFILESTRPUT(File, "A", "k", "new");
    EXPECT_EQ(takeTold(), 654);
}

TEST_F(Profile, AKeyThatCouldNotBeFoundAgainIsNotWritten) {
    start("[A]\r\nx=1\r\n");
    files.clearLog();
    for (const char* key :
         {"a b", "a ", "a\tb", "k=", "=", " k", ";k", "[k", "-k", "k\xC3\xA4", "a\nb", "a\x7F"}) {
        PROFILESTRPUT(File, "A", key, "v");
        PROFILESTRPUT(File, "B", key, "v");
    }
    EXPECT_EQ(files.calls(), 0);
    EXPECT_EQ(text(), "[A]\r\nx=1\r\n");
    EXPECT_EQ(takeTold(), 0);
}

TEST_F(Profile, AKeyWithOtherCharactersThanLettersIsWrittenAndFoundAgain) {
    const std::string old = "[A]\r\nx=1\r\nkey =2\r\n;c-x=3\r\n";
    for (const std::string key : {"c-x", "k.1", "k(1)", "k:2", "1-", "_;["}) {
        start(old);
        PROFILESTRPUT(File, "A", key, "v");
        PROFILESTRPUT(File, "A", "last", "w");
        EXPECT_EQ(PROFILESTRGET(File, "A", key), "v") << key;
        std::string other = key;
        for (char& c : other) c = ascii::upper(c);
        EXPECT_EQ(PROFILESTRGET(File, "a", other), "v") << key;
        EXPECT_EQ(PROFILESTRKEYS(File, "A"), "x\nkey\n" + key + "\nlast\n") << key;
        EXPECT_EQ(PROFILESTRGET(File, "A", "key"), "") << "a blank ahead of the = makes it no entry";
        PROFILESTRPUT(File, "A", key, "again");
        EXPECT_EQ(text(), old + key + "=again\r\nlast=w\r\n");
        PROFILESTRDEL(File, "A", key);
        EXPECT_EQ(text(), old + "last=w\r\n");
    }
    EXPECT_EQ(takeTold(), 0);
}

TEST_F(Profile, ALongerKeyIsNotTakenForItsBeginning) {
    start("[A]\r\na-b=1\r\na=2\r\n");
    EXPECT_EQ(PROFILESTRGET(File, "A", "a"), "2");
    EXPECT_EQ(PROFILESTRGET(File, "A", "a-b"), "1");
    EXPECT_EQ(PROFILESTRGET(File, "A", "a-"), "");
}

TEST_F(Profile, AListReplacesEntriesWithSuchKeysToo) {
    start("[A]\r\n1=x\r\nc-x=2\r\n2=y\r\n\r\n[B]\r\n");
    PROFILESTRPUT(File, "A", "", "new\n");
    EXPECT_EQ(text(), "[A]\r\n1=new\r\n\r\n[B]\r\n");
}

std::string installed() {
    return "[A]\r\nk=installed\r\n[B]\r\nm=2\r\n";
}

TEST_F(Profile, AFileThatWasDeletedOrEmptiedBeginsAgainWithItsOrigin) {
    PROFILESTRORIGIN(File, installed);
    for (const bool deleted : {true, false}) {
        start("");
        if (deleted) os::files().remove(File);
        EXPECT_EQ(PROFILESTRGET(File, "A", "k"), "") << "a read gives what is there";
        PROFILESTRPUT(File, "A", "n", "1");
        EXPECT_EQ(text(), "[A]\r\nk=installed\r\nn=1\r\n[B]\r\nm=2\r\n");
    }
    start("[A]\r\nx=1\r\n");
    PROFILESTRPUT(File, "A", "n", "1");
    EXPECT_EQ(text(), "[A]\r\nx=1\r\nn=1\r\n") << "what stands in the file stays";
    PROFILESTRORIGIN(File, nullptr);
    start("");
    PROFILESTRPUT(File, "A", "n", "1");
    EXPECT_EQ(text(), "\r\n[A]\r\nn=1\r\n");
}

TEST_F(Profile, AFileThatCannotBeReadIsNeverWritten) {
    files.put(File, "[A]\r\nk=old\r\n", 0000);
    EXPECT_EQ(get("A", "k"), "");
    EXPECT_EQ(takeTold(), 651);
    PROFILESTRPUT(File, "B", "k", "new");
    EXPECT_EQ(text(), "[A]\r\nk=old\r\n");
    PROFILESTRDEL(File, "A", "");
    EXPECT_EQ(text(), "[A]\r\nk=old\r\n");
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_TRUE(asked.empty());  // told once
}

TEST_F(Profile, AnEarlierErrorStaysInTheCell) {
    start("[A]\r\n");
    SetError(602);
    files.failAlways(os::FileCall::Open, os::FileError::Denied);
    PROFILESTRPUT(File, "A", "k", "v");
    EXPECT_EQ(ErrorCell(), 602);
    EXPECT_TRUE(asked.empty());
}

}  // namespace
}  // namespace tarn
