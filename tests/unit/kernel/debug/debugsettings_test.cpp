// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/debugsettings.h"

#include "os/files.h"
#include "platform/registry.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace tarn {
namespace {

// ---- rules ----

TEST(DebugRules, AreReadWithAllTheirParts) {
    const std::vector<DebugRule> rules =
        ParseDebugRules("IDE 10 if \"x > 3\" hits 5 ; TEXTEDIT 7 log \"x is {x}\" ;");
    ASSERT_EQ(rules.size(), 2U);
    EXPECT_EQ(rules[0], (DebugRule{"IDE", 10, "x > 3", 5, ""}));
    EXPECT_EQ(rules[1], (DebugRule{"TEXTEDIT", 7, "", 0, "x is {x}"}));
}

TEST(DebugRules, AreTheSameBehindARoundTrip) {
    const std::vector<DebugRule> rules = {{"A", 1, "s = \"a;b\"", 0, ""},
                                          {"B", 8000, "if", 2, "hits 3 ; \"quoted\" {x}"},
                                          {"C", 2, "", 0, " blanks around "},
                                          {"D", 3, "a = \"log\"", 7, "log"},
                                          {"E", 4, "\"a\" = b", 0, "\""}};
    EXPECT_EQ(ParseDebugRules(FormatDebugRules(rules)), rules);
}

TEST(DebugRules, WhatDoesNotFitIsLeftOut) {
    const std::vector<std::string> broken = {"",
                                             ";;;",
                                             "IDE",
                                             "IDE if \"x\"",
                                             "10 if x",
                                             "IDE x if y",
                                             "IDE 10",
                                             "IDE 10 sometimes",
                                             "IDE -1 if x",
                                             "a-b 10 if x",
                                             "IDE 10 hits 0",
                                             "IDE 10 if",
                                             "IDE 10 hits 99999999999",
                                             "IDE 10 if x if y"};
    for (const std::string& value : broken) EXPECT_TRUE(ParseDebugRules(value).empty()) << value;
    const std::vector<DebugRule> rules = ParseDebugRules("IDE ; B 3 hits 2 ; 5 ; c 4 log x");
    ASSERT_EQ(rules.size(), 2U);
    EXPECT_EQ(rules[1], (DebugRule{"c", 4, "", 0, "x"}));
}

TEST(DebugRules, AQuoteThatIsNotClosedTakesTheRest) {
    const std::vector<DebugRule> rules = ParseDebugRules("A 1 if \"x ; B 2 hits 3 ;");
    ASSERT_EQ(rules.size(), 1U);
    EXPECT_EQ(rules[0].className, "A");
}

TEST(DebugRules, OfTwoOfALineTheLaterOneCounts) {
    const std::vector<DebugRule> rules = ParseDebugRules("A 1 if x ; a 1 hits 3 ;");
    ASSERT_EQ(rules.size(), 1U);
    EXPECT_EQ(rules[0], (DebugRule{"a", 1, "", 3, ""}));
}

TEST(DebugRules, TenThousandAreReadAtOnce) {
    std::vector<DebugRule> rules;
    for (int i = 1; i <= 10000; ++i)
        rules.push_back(
            {"Class" + std::to_string(i % 50), i, "x > " + std::to_string(i), 3, "line {x} of it"});
    const std::string value = FormatDebugRules(rules);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(ParseDebugRules(value), rules);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500))
        << "some 20 on a quiet machine";
}

TEST(DebugRules, AHugeTextWithoutBlanksIsReadAtOnce) {
    const std::string text(1000000, 'x');
    DebugRule rule;
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(ParseRuleParts("if " + text + " hits 3", rule), "");
    EXPECT_EQ(rule.condition, text);
    EXPECT_EQ(rule.hits, 3);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500));
}

TEST(DebugRules, AreFoundWithoutRegardToCase) {
    std::vector<DebugRule> rules;
    PutDebugRule(rules, {"Abc", 3, "x", 0, ""});
    EXPECT_NE(FindDebugRule(rules, "aBC", 3), nullptr);
    EXPECT_EQ(FindDebugRule(rules, "abc", 4), nullptr);
    EXPECT_EQ(FindDebugRule(rules, "abcd", 3), nullptr);
    PutDebugRule(rules, {"ABC", 3, "", 0, ""});
    EXPECT_TRUE(rules.empty());
    PutDebugRule(rules, {"ABC", 3, "", 1, ""});
    EXPECT_TRUE(rules.empty()) << "one hit is every hit";
}

struct Parts {
    const char *text, *condition;
    int hits;
    const char *log, *refusal;
};
const Parts partRows[] = {
    {"", "", 0, "", ""},
    {"  ", "", 0, "", ""},
    {"if x > 3", "x > 3", 0, "", ""},
    {"IF x > 3", "x > 3", 0, "", ""},
    {"if \"x > 3\"", "x > 3", 0, "", ""},
    {"hits 7", "", 7, "", ""},
    {"hits 1", "", 1, "", ""},
    {"log x is {x}", "", 0, "x is {x}", ""},
    {"if x = 1 hits 5 log at {x}", "x = 1", 5, "at {x}", ""},
    {"hits 5 if x = 1", "x = 1", 5, "", ""},
    {"log if x hits 3", "", 0, "if x hits 3", ""},
    {"if name = \"log in\"", "name = \"log in\"", 0, "", ""},
    {"if \"name = \"\"a\"\"\"", "name = \"a\"", 0, "", ""},
    {"if \"a\" = b log c", "\"a\" = b", 0, "c", ""},
    {"if \"log > 3\"", "log > 3", 0, "", ""},
    {"when x", "", 0, "", "'when' is none of the words if, hits and log."},
    {"if", "", 0, "", "There is nothing behind 'if'."},
    {"if hits 3", "", 0, "", "There is nothing behind 'if'."},
    {"log", "", 0, "", "There is nothing behind 'log'."},
    {"hits", "", 0, "", "There is nothing behind 'hits'."},
    {"hits x", "", 0, "", "'x' is no number of hits: it must be a whole number from 1 up."},
    {"hits 0", "", 0, "", "'0' is no number of hits: it must be a whole number from 1 up."},
    {"hits -2", "", 0, "", "'-2' is no number of hits: it must be a whole number from 1 up."},
    {"hits 2147483648", "", 0, "", "'2147483648' is no number of hits: it must be a whole number from 1 up."},
    {"hits 2 hits 3", "", 0, "", "'hits' stands there twice."},
    {"if x IF y", "", 0, "", "'if' stands there twice."},
};

TEST(DebugRules, PartsAreReadAsTheyAreTyped) {
    for (const Parts& row : partRows) {
        DebugRule rule{"A", 5, "old", 9, "old"};
        EXPECT_EQ(ParseRuleParts(row.text, rule), row.refusal) << row.text;
        if (row.refusal[0] != 0)
            EXPECT_EQ(rule, (DebugRule{"A", 5, "old", 9, "old"})) << row.text;
        else
            EXPECT_EQ(rule, (DebugRule{"A", 5, row.condition, row.hits, row.log})) << row.text;
    }
}

TEST(DebugRules, PartsAreWrittenInTheirOrder) {
    EXPECT_EQ(FormatRuleParts({"A", 1, "x", 5, "y"}), "if \"x\" hits 5 log \"y\"");
    EXPECT_EQ(FormatRuleParts({"A", 1, "", 1, ""}), "");
}

// ---- errors that stop, watches ----

TEST(StopCodes, AreNumbersAndRanges) {
    const std::vector<CodeRange> codes = ParseStopCodes("601, 901-909 x 5-3 7- -8 0 0-4 643");
    EXPECT_EQ(codes, (std::vector<CodeRange>{{601, 601}, {901, 909}, {643, 643}}));
    EXPECT_EQ(FormatStopCodes(codes), "601 901-909 643");
    for (const int code : {601, 643, 901, 905, 909}) EXPECT_TRUE(IsStopCode(codes, code)) << code;
    for (const int code : {0, 600, 602, 900, 910}) EXPECT_FALSE(IsStopCode(codes, code)) << code;
}

TEST(StopCodes, WhatIsNoneIsToldWordByWord) {
    struct Case {
        const char *value, *refused;
        std::size_t taken;
    };
    for (const Case& c : {Case{"", "", 0}, Case{"601 643-650", "", 2}, Case{"643-650", "", 1},
                          Case{"650-643 601", "650-643", 1}, Case{"643 - 650", "-", 2},
                          Case{"x,5-3 601,0", "x 5-3 0", 1}, Case{"643-650-660", "643-650-660", 0},
                          Case{"643-2147483647", "", 1}, Case{"643-2147483648", "643-2147483648", 0}}) {
        std::string refused = "old";
        EXPECT_EQ(ParseStopCodes(c.value, refused).size(), c.taken) << c.value;
        EXPECT_EQ(refused, c.refused) << c.value;
    }
}

TEST(StopCodes, NoneMeansAll) {
    EXPECT_TRUE(ParseStopCodes("").empty());
    EXPECT_TRUE(IsStopCode({}, 601));
}

TEST(Watches, AreTheSameBehindARoundTrip) {
    const std::vector<std::string> watches = {"\"a;b\"", "x + 1", "list[3].name"};
    EXPECT_EQ(FormatWatches(watches), "\"a;b\" ; x + 1 ; list[3].name ;");
    EXPECT_EQ(ParseWatches(FormatWatches(watches)), watches);
    EXPECT_TRUE(ParseWatches(" ; ;").empty());
    EXPECT_EQ(ParseWatches("a ; \"b ; c").size(), 1U)
        << "what has an open quote would take in those behind it";
}

// ---- the file ----

class SettingsFile : public ::testing::Test {
protected:
    static constexpr const char* Paths = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
    TempFolder folder;
    Variable config_{"XDG_CONFIG_HOME", folder.path()};

    static void reg(const std::string& name, const std::string& path) {
        ASSERT_EQ(platform::RegSaveSetting(Paths + name, "", path), "");
    }
    std::string file() { return folder / "ide.ini"; }
    void write(std::string_view text) {
        ASSERT_TRUE(os::saveFile(file(), text, os::Durability::Unsynced).ok());
    }
    std::string read() {
        std::string text;
        os::readFile(file(), text);
        return text;
    }
};

TEST_F(SettingsFile, IsBesideTheProductsOwnPath) {
    reg("ide.exe", "/other/ide");
    reg("Word v1.22207.exe", "/opt/word/ide.exe");
    EXPECT_EQ(FindSettingsFile("Word", "1.2", "2207"), "/opt/word/ide.ini");
}

TEST_F(SettingsFile, IsElseBesideTheEnvironment) {
    reg("ide.exe", "C:\\dev\\ide.exe");
    EXPECT_EQ(FindSettingsFile("Word", "1.2", "2207"), "C:\\dev\\ide.ini");
}

TEST_F(SettingsFile, IsNotKnownWithoutEither) {
    EXPECT_EQ(FindSettingsFile("Word", "1.2", "2207"), "");
    EXPECT_EQ(DebugSetting("", "debug", "breakpoints"), "");
    EXPECT_EQ(DebugSetting(file(), "debug", "breakpoints"), "");
}

TEST_F(SettingsFile, IsSavedWholeAndOnce) {
    write("[Main]\r\nx=1\r\n\r\n[DEBUG]\r\nbreakpoints=a 1\r\n");
    EXPECT_EQ(SaveDebugSettings(file(), {{"breakpoints", "b 2 "}, {"Rules", "r"}}), "");
    EXPECT_EQ(read(), "[Main]\r\nx=1\r\n\r\n[DEBUG]\r\nbreakpoints=b 2 \r\nRules=r\r\n");
    const std::int64_t changed = os::infoOf(file()).modified;
    EXPECT_EQ(SaveDebugSettings(file(), {{"Rules", "r"}}), "");
    EXPECT_EQ(os::infoOf(file()).modified, changed) << "nothing is written that is there";
}

TEST_F(SettingsFile, IsNotMade) {
    EXPECT_EQ(SaveDebugSettings(file(), {{"Rules", "r"}}), os::describe(os::FileError::NotFound));
    EXPECT_LT(os::sizeOf(file()), 0);
}

TEST_F(SettingsFile, ThatMayNotBeWrittenStays) {
    write("[debug]\r\n");
    ASSERT_EQ(::chmod(file().c_str(), 0444), 0);
    EXPECT_EQ(SaveDebugSettings(file(), {{"Rules", "r"}}), os::describe(os::FileError::Denied));
    EXPECT_EQ(read(), "[debug]\r\n");
}

}  // namespace
}  // namespace tarn
