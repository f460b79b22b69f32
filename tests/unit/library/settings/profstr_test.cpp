// SPDX-License-Identifier: Apache-2.0
//
// Profile strings on a file system in memory: reading, the places where entries go, hostile files, failing
// disks, and a random comparison with a simple model.
#include "library/settings/profstr.h"
#include "os/files.h"
#include "os/text/ascii.h"
#include "platform/model/useracts.h"
#include "platform/model/view.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace tarn {
namespace {

const std::string File = "/home/user/ide.ini";

class Profile : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        before = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question);
            return "OK";
        }));
        // What an earlier test was told is forgotten once the file could be read and written.
        start("[A]\r\n");
        PROFILESTRPUT(File, "A", "k", "v");
        files.putFolder("/home/user");
        os::files().remove(File);
        files.clearLog();
    }
    void TearDown() override {
        platform::useView(std::move(before));
        ClearError();
    }
    // The code that was told in a box since the last call; 0 if none was. None is ever left for the caller.
    int takeTold() {
        EXPECT_EQ(ErrorCell(), 0);
        const int code = LastError();
        EXPECT_EQ(asked.size(), code == 0 ? 0U : 1U);
        if (!asked.empty()) {
            EXPECT_EQ(asked[0].title, "Error");
            EXPECT_EQ(asked[0].buttons, std::vector<std::string>{"OK"});
            EXPECT_TRUE(
                asked[0].text.starts_with(ErrorMessage(code) + " (error " + std::to_string(code) + ").\n"))
                << asked[0].text;
            EXPECT_NE(asked[0].text.find("'" + File + "'"), std::string::npos) << asked[0].text;
        }
        asked.clear();
        ClearError();
        return code;
    }
    void start(std::string_view text) { files.put(File, text); }
    std::string text() { return files.contents(File); }
    std::string get(std::string_view section, std::string_view key) {
        return PROFILESTRGET(File, section, key);
    }

    os::SteeredFiles files;
    os::Steered steered{files};
    std::vector<platform::Question> asked;
    std::unique_ptr<platform::View> before;
};

// ---- reading ----

TEST_F(Profile, ValuesAreFoundAsTheFileRulesSay) {
    start("; head\r\n"
          "[Main]\r\n"
          "key =blank\r\n"
          ";Hidden=comment\r\n"
          "Hidden=real\r\n"
          "Plain=a = b ;c \r\n"
          "Quoted=\" x \"\r\n"
          "EmptyQuoted=\"\"\r\n"
          "OneQuote=\"\r\n"
          "Half=\"x\r\n"
          "Nested=\"\"x\"\"\r\n"
          "\r\n"
          "BehindBlank=found\r\n"
          " Indented=no\r\n"
          "Twice=1\r\nTwice=2\r\n"
          "CrEnds=v\r\r\n"
          "[bad-name]\r\nInBad=1\r\n"
          "[Next.one_2 x]\nLf=unix\nLast=end");
    struct Case {
        const char *section, *key, *value;
    };
    const Case cases[] = {
        {"Main", "key", ""},
        {"Main", "Hidden", "real"},
        {"Main", ";Hidden", ""},
        {"Main", "Plain", "a = b ;c "},
        {"Main", "Quoted", " x "},
        {"Main", "EmptyQuoted", ""},
        {"Main", "OneQuote", "\""},
        {"Main", "Half", "\"x"},
        {"Main", "Nested", "\"x\""},
        {"Main", "BehindBlank", "found"},
        {"Main", "Indented", ""},
        {"Main", " Indented", ""},
        {"Main", "Twice", "1"},
        {"Main", "CrEnds", "v"},
        {"MAIN", "pLAIN", "a = b ;c "},
        {"Main", "Plai", ""},
        {"Main", "Plainx", ""},
        {"Main", "InBad", ""},
        {"Main", "Lf", ""},
        {"bad-name", "InBad", ""},
        {"next.ONE_2 X", "lf", "unix"},
        {"Next.one_2 x", "Last", "end"},
        {"Absent", "key", ""},
        {"", "Plain", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(get(c.section, c.key), c.value) << c.section << "/" << c.key;
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Profile, OnlyWholeHeaderLinesInColumnOneAreSections) {
    start("[One]\r\n [Two]\r\n[]\r\n[Three\r\n[Four]x\r\n[Fi-ve]\r\n[Six\xC3]\r\nx[Seven]\n[Eight]\n[ONE]");
    EXPECT_EQ(PROFILESTRSECTIONS(File), "One\nEight\nONE\n");
}

TEST_F(Profile, UmlautsAreComparedByteByByteAndOnlyAsciiLettersFold) {
    start("[Main]\r\nk\xE4=1\r\n_A9=2\r\n");
    EXPECT_EQ(get("Main", "k\xE4"), "");
    EXPECT_EQ(get("Main", "_a9"), "2");
}

TEST_F(Profile, KeysAreThoseOfTheValuesLineByLineWithoutBlanks) {
    start("[A]\r\nkey =no\r\n\tb\t= x\r\n;c=1\r\nk=v\r\n");
    EXPECT_EQ(get("A", ""), "no\n x\nv\n");
    EXPECT_EQ(PROFILESTRKEYS(File, "A"), "key\nb\nk\n");
    EXPECT_EQ(get("A", "key"), "") << "which makes it no entry";
}

TEST_F(Profile, AWholeSectionReadEndsAtABlankLineWhileKeysGoOn) {
    start(
        "[L]\r\n1=\"first\"\r\n;2=no\r\nno equals\r\n =odd\r\n3=a=b\r\n4=\r\n\r\n5=behind\r\n[M]\r\n6=x\r\n");
    EXPECT_EQ(get("L", ""), "first\nodd\na=b\n\n");
    EXPECT_EQ(PROFILESTRKEYS(File, "L"), "1\n\n3\n4\n5\n");
    EXPECT_EQ(get("L", "5"), "behind");
    EXPECT_EQ(PROFILESTRKEYS(File, "Absent"), "");
    EXPECT_EQ(get("Absent", ""), "");
}

TEST_F(Profile, NumbersThatDoNotConvertReadAsZero) {
    start("[N]\na=12\nb=-7\nc=+3\nd=12x\ne=\nf=99999999999\ng= "
          "5\nh=\"8\"\ni=2147483647\nj=-2147483648\nk=2147483648\n");
    const std::pair<const char*, int> cases[] = {
        {"a", 12}, {"b", -7}, {"c", 3}, {"d", 0},          {"e", 0},
        {"f", 0},  {"g", 0},  {"h", 8}, {"i", 2147483647}, {"j", -2147483647 - 1},
        {"k", 0},  {"z", 0}};
    for (const auto& [key, value] : cases) EXPECT_EQ(PROFILESTRGETINT(File, "N", key), value) << key;
}

TEST_F(Profile, AMissingFileAnEmptyNameAndAFileInTheWayReadAsEmpty) {
    EXPECT_EQ(get("Main", "x"), "");
    EXPECT_EQ(PROFILESTRGET("", "Main", "x"), "");
    EXPECT_EQ(PROFILESTRSECTIONS(File), "");
    start("[Main]\nx=1\n");
    EXPECT_EQ(PROFILESTRGET(File + "/deeper", "Main", "x"), "");
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- writing ----

struct Put {
    const char *what, *before, *section, *key, *value, *after;
};
const Put puts[] = {
    {"empty file", "", "S", "k", "v", "\r\n[S]\r\nk=v\r\n"},
    {"absent section", "[A]\r\nx=1\r\n", "B", "k", "v", "[A]\r\nx=1\r\n\r\n[B]\r\nk=v\r\n"},
    {"absent section, no final newline", "[A]\r\nx=1", "B", "k", "v", "[A]\r\nx=1\r\n[B]\r\nk=v\r\n"},
    {"new key behind the last entry", "[A]\r\nx=1\r\n;c\r\ny=2\r\n\r\n[B]\r\n", "a", "K", "v",
     "[A]\r\nx=1\r\n;c\r\ny=2\r\nK=v\r\n\r\n[B]\r\n"},
    {"new key before text that is no entry", "[A]\r\nx=1\r\n text\r\ny=2\r\n", "A", "k", "v",
     "[A]\r\nx=1\r\nk=v\r\n text\r\ny=2\r\n"},
    {"new key in an empty section", "[A]\r\n[B]\r\n", "A", "k", "v", "[A]\r\nk=v\r\n[B]\r\n"},
    {"new key behind a header without newline", "[A]", "A", "k", "v", "[A]\r\nk=v\r\n"},
    {"new key behind a last line without newline", "[A]\nx=1", "A", "k", "v", "[A]\nx=1\r\nk=v\r\n"},
    {"present key keeps its place and takes the new spelling", "[A]\r\nkey=1\r\ny=2\r\n", "A", "KEY", "3",
     "[A]\r\nKEY=3\r\ny=2\r\n"},
    {"present key behind a blank line", "[A]\r\n\r\nk=1\r\n", "A", "k", "2", "[A]\r\n\r\nk=2\r\n"},
    {"present key in the last line", "[A]\nx=1\nk=1", "A", "k", "2", "[A]\nx=1\nk=2\r\n"},
    {"commented entry stays, the new one follows", "[A]\r\n;k=1\r\n", "A", "k", "2",
     "[A]\r\n;k=1\r\nk=2\r\n"},
    {"first of two equal sections", "[A]\r\nx=1\r\n[A]\r\nk=1\r\n", "A", "k", "2",
     "[A]\r\nx=1\r\nk=2\r\n[A]\r\nk=1\r\n"},
    {"header with a hyphen ends the section", "[A]\r\n[b-c]\r\nk=1\r\n", "A", "k", "2",
     "[A]\r\nk=2\r\n[b-c]\r\nk=1\r\n"},
    {"section with a hyphen is never found again", "[b-c]\r\nk=1\r\n", "b-c", "k", "2",
     "[b-c]\r\nk=1\r\n\r\n[b-c]\r\nk=2\r\n"},
    {"line ends in a value become blanks", "[A]\r\n", "A", "k", "a\n[B]\r\nc\n", "[A]\r\nk=a [B]  c\r\n"},
    {"list in an absent section", "x", "L", "", "a\nb\n", "x\r\n[L]\r\n1=a\r\n2=b\r\n"},
    {"shorter list over a longer one", "[L]\r\n1=a\r\n2=b\r\n3=c\r\n4=d\r\n5=e\r\n\r\n[M]\r\n", "L", "",
     "x\r\ny\nz", "[L]\r\n1=x\r\n2=y\r\n3=z\r\n\r\n[M]\r\n"},
    {"list drops comments and keeps what follows", "[L]\r\n;c\r\nk=1\r\n rest\r\n2=b\r\n", "L", "", "x\n",
     "[L]\r\n1=x\r\n rest\r\n2=b\r\n"},
    {"empty list", "[L]\r\n1=a\r\n[M]\r\n", "L", "", "", "[L]\r\n[M]\r\n"},
    {"list with empty lines", "[L]\r\n", "L", "", "\n\nx\n", "[L]\r\n1=\r\n2=\r\n3=x\r\n"},
    {"list behind a header without newline", "[L]", "L", "", "a", "[L]\r\n1=a\r\n"},
};

TEST_F(Profile, EntriesAndListsAreWrittenWhereTheyBelong) {
    for (const Put& c : puts) {
        start(c.before);
        PROFILESTRPUT(File, c.section, c.key, c.value);
        EXPECT_EQ(text(), c.after) << c.what;
    }
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Profile, AMissingFileIsMade) {
    files.putFolder("/home/user");
    PROFILESTRPUT(File, "Main", "LastPath", "\"/tmp\"");
    EXPECT_EQ(text(), "\r\n[Main]\r\nLastPath=\"/tmp\"\r\n");
    EXPECT_EQ(get("main", "lastpath"), "/tmp");
}

TEST_F(Profile, AnEmptyNameOrSectionWritesNothing) {
    start("[A]\r\nk=1\r\n");
    files.clearLog();
    PROFILESTRPUT("", "A", "k", "2");
    PROFILESTRPUT(File, "", "k", "2");
    PROFILESTRDEL("", "A", "k");
    PROFILESTRDEL(File, "", "k");
    EXPECT_EQ(files.calls(), 0);
    EXPECT_EQ(text(), "[A]\r\nk=1\r\n");
    EXPECT_EQ(ErrorCell(), 0);
}

struct Del {
    const char *what, *before, *section, *key, *after;
};
const Del dels[] = {
    {"entry", "[A]\r\nx=1\r\nk=2\r\ny=3\r\n", "a", "K", "[A]\r\nx=1\r\ny=3\r\n"},
    {"entry in the last line", "[A]\nx=1\nk=2", "A", "k", "[A]\nx=1\n"},
    {"only the first of two", "[A]\nk=1\nk=2\n", "A", "k", "[A]\nk=2\n"},
    {"absent entry", "[A]\nx=1\n[B]\nk=1\n", "A", "k", "[A]\nx=1\n[B]\nk=1\n"},
    {"last section", "[A]\r\nx=1\r\n\r\n[B]\r\nk=1\r\n", "B", "", "[A]\r\nx=1\r\n\r\n"},
    {"middle section with its blank lines", "[A]\nx=1\n[B]\nk=1\n\nl=2\n\n[C]\n", "b", "", "[A]\nx=1\n[C]\n"},
    {"only section", "[A]\nx=1\n", "A", "", ""},
    {"absent section", "[A]\nx=1\n", "B", "", "[A]\nx=1\n"},
    {"section up to an unreadable header", "[A]\nx=1\n[b-c]\ny=1\n", "A", "", "[b-c]\ny=1\n"},
};

TEST_F(Profile, EntriesAndSectionsAreDeleted) {
    for (const Del& c : dels) {
        start(c.before);
        PROFILESTRDEL(File, c.section, c.key);
        EXPECT_EQ(text(), c.after) << c.what;
    }
}

TEST_F(Profile, DeletingFromAMissingFileDoesNotMakeIt) {
    files.putFolder("/home/user");
    PROFILESTRDEL(File, "A", "k");
    PROFILESTRDEL(File, "A", "");
    EXPECT_FALSE(files.has(File));
    EXPECT_EQ(ErrorCell(), 0);
}

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

// ---- hostile files ----

TEST_F(Profile, HostileFilesAreReadAndKeptByteForByte) {
    const std::string nul("[A]\r\nx=\0a\0\r\n\0=1\r\n", 18);
    start(nul);
    EXPECT_EQ(get("A", "x"), std::string("\0a\0", 3));
    PROFILESTRPUT(File, "A", "k", "v");
    EXPECT_EQ(text(), nul.substr(0, 12) + "k=v\r\n" + nul.substr(12));

    start("[A]\rk=1\r[B]\rk=2\r");  // CR alone ends no line
    EXPECT_EQ(PROFILESTRSECTIONS(File), "");
    PROFILESTRPUT(File, "A", "k", "v");
    EXPECT_EQ(text(), "[A]\rk=1\r[B]\rk=2\r\r\n[A]\r\nk=v\r\n");

    for (const char* shape :
         {"", "\n", "\r\n", "[", "]", "[]", "=", ";", "[A", "[A]", "[A]\n=", "[A]\n[", "\n\n\n"}) {
        start(shape);
        EXPECT_EQ(get("A", "k"), "") << shape;
        PROFILESTRPUT(File, "A", "k", "v");
        EXPECT_EQ(get("A", "k"), "v") << shape;
        PROFILESTRDEL(File, "A", "k");
        EXPECT_EQ(get("A", "k"), "") << shape;
    }
}

TEST_F(Profile, HugeLinesAndManyBracketsStayLinear) {
    const std::string line(10'000'000, '[');
    start("[A]\nx=" + line + "\nk=1\n" + line + "\n[B]\nk=2\n");
    EXPECT_EQ(get("A", "k"), "1");
    EXPECT_EQ(get("B", "k"), "2");
    EXPECT_EQ(get("A", "x").size(), line.size());
    std::string many;
    for (int i = 0; i < 300'000; ++i) many += "[\n";
    start(many + "[A]\nk=1\n");
    EXPECT_EQ(get("A", "k"), "1");
}

// ---- a model ----

struct Entry {
    std::string key, value;
};
struct ModelSection {
    std::string name;
    std::vector<Entry> entries;
};

class Model {
public:
    void put(const std::string& section, const std::string& key, const std::string& value) {
        std::vector<Entry>& entries = make(section).entries;
        for (Entry& e : entries) {
            if (!ascii::equal(e.key, key)) continue;
            e = {key, value};
            return;
        }
        entries.push_back({key, value});
    }
    void putList(const std::string& section, const std::vector<std::string>& lines) {
        std::vector<Entry>& entries = make(section).entries;
        entries.clear();
        for (const std::string& line : lines) entries.push_back({std::to_string(entries.size() + 1), line});
    }
    void remove(const std::string& section, const std::string& key) {
        for (std::size_t i = 0; i < sections.size(); ++i) {
            if (!ascii::equal(sections[i].name, section)) continue;
            if (key.empty()) {
                sections.erase(sections.begin() + static_cast<std::ptrdiff_t>(i));
                return;
            }
            std::erase_if(sections[i].entries, [&](const Entry& e) { return ascii::equal(e.key, key); });
            return;
        }
    }
    std::vector<ModelSection> sections;

private:
    ModelSection& make(const std::string& name) {
        for (ModelSection& s : sections)
            if (ascii::equal(s.name, name)) return s;
        sections.push_back({name, {}});
        return sections.back();
    }
};

std::string unquoted(const std::string& value) {
    return value.size() >= 2 && value.front() == '"' && value.back() == '"'
               ? value.substr(1, value.size() - 2)
               : value;
}

TEST_F(Profile, RandomChangesAgreeWithASimpleModel) {
    const char* sections[] = {"Main", "MAIN", "MRU", "Hilite.cls", "two words", "x_1"};
    const char* keys[] = {"a", "A", "key", "Key_2", "1", "2"};
    const char* values[] = {"",   "v",   "\"quoted\"", "\"",       "a=b",
                            ";c", "[x]", " blank ",    "\xC3\xA4", "long long text"};
    files.putFolder("/home/user");
    std::mt19937 random(7);
    const auto pick = [&](auto& from) { return std::string(from[random() % std::size(from)]); };
    Model model;
    for (int step = 0; step < 3000; ++step) {
        const std::string section = pick(sections), key = pick(keys);
        switch (random() % 8) {
        case 0: model.remove(section, ""), PROFILESTRDEL(File, section, ""); break;
        case 1: model.remove(section, key), PROFILESTRDEL(File, section, key); break;
        case 2: {
            std::vector<std::string> lines;
            std::string text;
            for (auto n = random() % 4; n > 0; --n)
                text += (lines.emplace_back(pick(values)), lines.back()) + "\n";
            model.putList(section, lines);
            PROFILESTRPUT(File, section, "", text);
            break;
        }
        default: {
            const std::string value = pick(values);
            model.put(section, key, value);
            PROFILESTRPUT(File, section, key, value);
        }
        }
        std::string names;
        for (const ModelSection& s : model.sections) {
            names += s.name + "\n";
            std::string allKeys, all;
            for (const Entry& e : s.entries) {
                allKeys += e.key + "\n";
                all += unquoted(e.value) + "\n";
                ASSERT_EQ(get(s.name, e.key), unquoted(e.value)) << step << " " << text();
            }
            ASSERT_EQ(PROFILESTRKEYS(File, s.name), allKeys) << step << " " << text();
            ASSERT_EQ(get(s.name, ""), all) << step << " " << text();
        }
        ASSERT_EQ(PROFILESTRSECTIONS(File), names) << step << " " << text();
    }
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- words and sample text ----

TEST(Words, AreRunsOfTheCharacters33To126) {
    const std::string text = " one\ttwo\xC3\xA4three \r\n ~!\x7F\"four five\" ";
    EXPECT_EQ(STRWORDCOUNT(text), 6);
    const char* words[] = {"", "one", "two", "three", "~!", "\"four", "five\"", ""};
    const int positions[] = {0, 2, 6, 11, 20, 23, 29, 0};
    for (int n = 0; n <= 7; ++n) {
        EXPECT_EQ(STRWORD(text, n), words[n]) << n;
        EXPECT_EQ(STRWORDPOS(text, n), positions[n]) << n;
    }
    EXPECT_EQ(STRWORDCOUNT(""), 0);
    EXPECT_EQ(STRWORD("", 1), "");
    EXPECT_EQ(STRWORDPOS("x", -1), 0);
}

TEST(Words, TokensMayHoldBlanksBetweenQuotes) {
    const std::string text = "  \"a b\" 12 x\"y z\" \"open end ";
    EXPECT_EQ(STRTOKENCOUNT(text), 5);
    const char* tokens[] = {"\"a b\"", "12", "x\"y", "z\"", "\"open end "};
    for (int n = 1; n <= 5; ++n) EXPECT_EQ(STRTOKEN(text, n), tokens[n - 1]) << n;
    EXPECT_EQ(STRTOKENPOS(text, 1), 3);
    EXPECT_EQ(STRTOKENPOS(text, 2), 9);
    EXPECT_EQ(STRTOKENPOS(text, 6), 0);
    EXPECT_EQ(STRTOKEN("\"a\"b", 1), "\"a\"");
    EXPECT_EQ(STRTOKEN("\"a\"b", 2), "b");
    EXPECT_EQ(STRTOKEN("\"", 1), "\"");
}

TEST(Words, AddwordSeparatesUnlessALineHasEnded) {
    std::string text;
    ADDWORD("a", ", ", text);
    ADDWORD("b", ", ", text);
    text += "\n";
    ADDWORD("c", ", ", text);
    EXPECT_EQ(text, "a, b\nc");
}

TEST(Words, CaseOfOneCharacterChangesForAsciiLettersOnly) {
    for (int c = -1; c < 300; ++c) {
        EXPECT_EQ(TOUPPER(c), c >= 'a' && c <= 'z' ? c - 32 : c);
        EXPECT_EQ(TOLOWER(c), c >= 'A' && c <= 'Z' ? c + 32 : c);
    }
}

class SampleText : public ::testing::Test {
protected:
    void TearDown() override { useRandomSource(nullptr); }
};

TEST_F(SampleText, ASentenceIsDrawnFromTheListsInOrder) {
    useRandomSource([](unsigned) { return 0u; });
    EXPECT_EQ(CREATEAUTOSENTENCE(), "The aardvark ate the alien artifact.");  // 0 leaves the adjective out
    useRandomSource([](unsigned bound) { return bound - 1; });
    EXPECT_EQ(CREATEAUTOSENTENCE(), "A zealous zebra zealously searched a zoological specimen.");
    useRandomSource([](unsigned bound) { return bound == 2 || bound == 3 ? 1u : 0u; });
    EXPECT_EQ(CREATEAUTOSENTENCE(), "An avaricious aardvark ate an alien artifact.");
}

TEST_F(SampleText, TheListsHaveAllTheirWords) {
    static std::vector<unsigned> bounds;
    bounds.clear();
    useRandomSource([](unsigned bound) {
        bounds.push_back(bound);
        return 1u;
    });
    EXPECT_EQ(CREATEAUTOSENTENCE(), "A bedraggled bandicoot broke a banana.");
    EXPECT_EQ(bounds, (std::vector<unsigned>{2, 3, 29, 26, 29, 2, 30}));
}

TEST_F(SampleText, TheArticleFollowsTheNextWord) {
    EXPECT_EQ(FIXINDEFINITEPART("a emu saw an zebra and a  apple"), "an emu saw a zebra and an  apple");
    EXPECT_EQ(FIXINDEFINITEPART("A eel, AN yak, a"), "An eel, A yak, a");
    EXPECT_EQ(FIXINDEFINITEPART(""), "");
    EXPECT_EQ(FIXINDEFINITEPART(" a Orange\n"), " an Orange\n");
}

TEST_F(SampleText, ATextEndsWithAWholeSentenceOnceItIsLongEnough) {
    useRandomSource([](unsigned) { return 0u; });
    const std::string sentence = "The-aardvark-ate-the-alien-artifact.";
    EXPECT_EQ(CREATEAUTOTEXT(0, "-"), "");
    EXPECT_EQ(CREATEAUTOTEXT(-5, "-"), "");
    EXPECT_EQ(CREATEAUTOTEXT(1, "-"), sentence);
    EXPECT_EQ(CREATEAUTOTEXT(static_cast<int>(sentence.size()), "-"), sentence);
    EXPECT_EQ(CREATEAUTOTEXT(static_cast<int>(sentence.size()) + 1, "-"), sentence + "-" + sentence);
}

TEST_F(SampleText, TheSystemsSourceGivesSentences) {
    for (int i = 0; i < 50; ++i) {
        const std::string sentence = CREATEAUTOSENTENCE();
        EXPECT_TRUE(ascii::isUpper(sentence.front()) && sentence.back() == '.') << sentence;
    }
}

}  // namespace
}  // namespace tarn
