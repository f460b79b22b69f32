// SPDX-License-Identifier: Apache-2.0
//
// Programs that are really run, without a screen.
#include "library/system/piped.h"
#include "library/system/system.h"
#include "os/clock.h"
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/errorcell.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <climits>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn {
namespace {

constexpr int Wait = 1, WaitEnabled = 32 + 1, NoWait = 16 + 1;
using Arguments = std::vector<std::string>;

class Exec : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        before_ = platform::useView(platform::makeHeadlessView());
        tool("tell", "printf '%s\\0' \"$@\"\n");
    }
    void TearDown() override {
        platform::view().setIdle(nullptr);
        platform::useView(std::move(before_));
        EXPECT_EQ(takeError(), 0);
    }
    void tool(const std::string& name, const std::string& body, std::uint32_t mode = 0755) {
        ASSERT_TRUE(os::saveFile(folder / name, "#!/bin/sh\n" + body).ok());
        ASSERT_EQ(os::files().setMode(folder / name, mode), os::FileError::None);
    }
    std::string get(const std::string& name) {
        std::string text;
        os::readFile(folder / name, text);
        return text;
    }
    // What a program that was given these got.
    std::string got(const Arguments& arguments) {
        const ExecResult result = EXEC(folder / "tell", arguments, Wait, "", {"", folder / "out"});
        EXPECT_EQ(result.code, 0);
        return get("out");
    }
    static std::string each(const Arguments& arguments) {
        std::string text;
        for (const std::string& one : arguments) text += one + '\0';
        return text;
    }

    TempFolder folder;

private:
    std::unique_ptr<platform::View> before_;
};

// ---- arguments ----

TEST_F(Exec, EveryArgumentReachesTheProgramAsItIs) {
    const Arguments lists[] = {
        {"a b", "  ", "\t"},
        {"say \"hello\"", "\"", "\"\"", "it's", "''"},
        {"$HOME", "${PATH}", "$(id)", "`id`"},
        {"a;b", "&& ls", "| cat", "&", "#x", "!1", "~", "*", "?", "[a]", "{a,b}"},
        {"line\nend", "\r\n", "\n"},
        {">", "<", "> file", "2>&1", ">>", "a>b"},
        {"\\", "\\\\", "a\\ b", "\\n", "c:\\x\\"},
        {"%PATH%", "^", "-n", "--", "=x"},
        {"\xFF\xFE", "\xC3\xA9", "\x01\x7F"},
    };
    for (const Arguments& list : lists) {
        EXPECT_EQ(got(list), each(list)) << list.front();
        // And by way of a line.
        std::string line;
        for (const std::string& one : list)
            line += (one == ">" || one == "<" ? "\"" + one + "\"" : QUOTEARGUMENT(one)) + " ";
        EXEC(folder / "tell", line + "> " + QUOTEARGUMENT(folder / "out"), Wait);
        EXPECT_EQ(get("out"), each(list)) << line;
    }
}

TEST_F(Exec, EmptyArgumentsAreArguments) {
    EXPECT_EQ(got({"", "", "x", ""}), each({"", "", "x", ""}));
    EXPECT_EQ(got({"x"}), each({"x"}));
}

TEST_F(Exec, AnArgumentListMayBeLongButNotWithoutEnd) {
    Arguments many(20'000, "argument");
    EXPECT_EQ(got(many), each(many));
    Arguments large(1, std::string(100'000, 'x'));
    EXPECT_EQ(got(large), each(large));
    many.assign(2'000'000, "argument");
    EXPECT_FALSE(EXEC(folder / "tell", many, Wait).started);
    EXPECT_EQ(takeError(), 906);
    large.assign(1, std::string(8'000'000, 'x'));
    EXPECT_FALSE(EXEC(folder / "tell", large, Wait).started);
    EXPECT_EQ(takeError(), 906);
}

TEST_F(Exec, WhatNoArgumentCanHoldIs906) {
    EXPECT_FALSE(EXEC(folder / "tell", Arguments{std::string("a\0b", 3)}, Wait).started);
    EXPECT_EQ(takeError(), 906);
    EXPECT_FALSE(EXEC(std::string("a\0b", 3), Arguments{}, Wait).started);
    EXPECT_EQ(takeError(), 906);
}

// The file behind it would be an argument.
TEST_F(Exec, AQuoteWithoutItsPartnerIs906AndNothingRuns) {
    const std::string out = folder / "out";
    const std::string lines[] = {"\"open > " + out, "a\" b", "\"", "> \"" + out, "\"a\" \"b\"\" > " + out};
    for (const std::string& line : lines) {
        EXPECT_FALSE(EXEC(folder / "tell", line, Wait).started) << line;
        EXPECT_EQ(takeError(), 906) << line;
        EXPECT_EQ(EXECPIPED(folder / "tell", line, ""), nullptr) << line;
        EXPECT_EQ(takeError(), 906) << line;
    }
    EXPECT_EQ(FileSize(out), -1);
    EXPECT_TRUE(EXEC(folder / "tell", Arguments{"\""}, Wait).started) << "it is no line";
}

// ---- what cannot be started ----

TEST_F(Exec, WhatCannotBeStartedHasItsCode) {
    tool("no permission", "exit 0\n", 0644);
    ASSERT_TRUE(os::saveFile(folder / "text", "just text\n").ok());
    ASSERT_EQ(os::files().setMode(folder / "text", 0755), os::FileError::None);
    ASSERT_TRUE(os::saveFile(folder / "empty", "").ok());
    ASSERT_EQ(os::files().setMode(folder / "empty", 0755), os::FileError::None);
    ASSERT_TRUE(os::saveFile(folder / "empty tool", "").ok());
    ASSERT_TRUE(os::saveFile(folder / "damaged", "\x7F"
                                                 "ELF and no more")
                    .ok());
    ASSERT_EQ(os::files().setMode(folder / "damaged", 0755), os::FileError::None);
    ASSERT_TRUE(os::saveFile(folder / "lost", "#!/no/such/interpreter\n").ok());
    ASSERT_EQ(os::files().setMode(folder / "lost", 0755), os::FileError::None);
    ASSERT_EQ(os::files().makeFolder(folder / "folder"), os::FileError::None);
    std::filesystem::copy_file("/bin/true", folder / "written");
    const int writing = ::open((folder / "written").c_str(), O_WRONLY | O_CLOEXEC);
    struct Case {
        std::string program;
        int code;
    };
    const Case cases[] = {
        {folder / "none", 901},           {folder / "none/tool", 901},     {folder / "empty", 902},
        {folder / "empty tool.exe", 902}, {folder / "folder", 901},        {"no-program-of-this-name", 901},
        {folder / "text", 902},           {folder / "no permission", 908}, {folder / "damaged", 902},
        {folder / "lost", 905},           {folder / "written", 905},       {"", 906},
        {std::string(PATH_MAX, 'x'), 906}};
    for (const int mode : {Wait, WaitEnabled, NoWait}) {
        for (const Case& c : cases) {
            const ExecResult result = EXEC(c.program, "", mode);
            EXPECT_EQ(takeError(), c.code) << c.program;
            EXPECT_FALSE(result.started) << c.program;
            EXPECT_EQ(result.process, 0) << c.program;
        }
    }
    ::close(writing);
}

TEST_F(Exec, AFailureLeavesTheErrorThatWasThereFirst) {
    SetError(651);
    EXEC(folder / "none", "", Wait);
    EXPECT_EQ(takeError(), 651);
}

TEST_F(Exec, ItStartsInTheFolderThatIsNamed) {
    tool("where", "pwd > here\n");
    ASSERT_EQ(os::files().makeFolder(folder / "in side"), os::FileError::None);
    EXPECT_EQ(EXEC(folder / "where", "", Wait, folder / "in side").code, 0);
    EXPECT_TRUE(STRTRIM(get("in side/here")).ends_with("/in side"));
    const std::string before = GETCURDIR();
    for (const std::string& none : {folder / "none", folder / "where"}) {
        EXPECT_FALSE(EXEC(folder / "where", "", Wait, none).started) << none;
        EXPECT_EQ(takeError(), 901) << none;
    }
    EXPECT_FALSE(EXEC(folder / "where", "", Wait, "/" + std::string(PATH_MAX, 'x')).started);
    EXPECT_EQ(takeError(), 907);
    EXPECT_EQ(GETCURDIR(), before);
}

// ---- redirection ----

TEST_F(Exec, InputAndOutputGoWhereTheLineSays) {
    tool("count", "wc -c | tr -d ' '; echo problem >&2\n");
    ASSERT_TRUE(os::saveFile(folder / "in put", "12345").ok());
    const std::string in = "\"" + (folder / "in put") + "\"", out = "\"" + (folder / "o 1") + "\"";
    for (const std::string& line :
         {"< " + in + " > " + out, "> " + out + " < " + in, "a < " + in + "\t>\n" + out}) {
        FILEDELETE(folder / "o 1");
        EXPECT_EQ(EXEC(folder / "count", line, Wait).code, 0) << line;
        EXPECT_EQ(get("o 1"), "5\nproblem\n") << line;
    }
    EXPECT_EQ(EXEC(folder / "count", "> " + out, Wait).code, 0);
    EXPECT_EQ(get("o 1"), "0\nproblem\n") << "without a file nothing is read";
}

TEST_F(Exec, ABadRedirectionIs907AndNothingRuns) {
    tool("mark", "echo ran >> \"" + (folder / "ran") + "\"\n");
    ASSERT_TRUE(os::saveFile(folder / "in", "x").ok());
    ASSERT_TRUE(os::saveFile(folder / "closed", "old").ok());
    ASSERT_EQ(os::files().makeFolder(folder / "folder"), os::FileError::None);
    const std::string in = folder / "in", out = folder / "out";
    const std::vector<std::string> lines = {">",
                                            "<",
                                            "> " + out + " > " + out,
                                            "< " + in + " < " + in,
                                            "> " + out + " x",
                                            "> \"\"",
                                            "> " + (folder / "none/out"),
                                            "> " + (folder / "folder"),
                                            "< " + (folder / "none"),
                                            "< " + (folder / "folder"),
                                            "> < " + in,
                                            "> /" + std::string(PATH_MAX, 'x')};
    for (const std::string& line : lines) {
        EXPECT_FALSE(EXEC(folder / "mark", line, Wait).started) << line.substr(0, 60);
        EXPECT_EQ(takeError(), 907) << line.substr(0, 60);
    }
    EXPECT_EQ(get("ran"), "");
    EXPECT_EQ(FileSize(out), -1);
    ASSERT_EQ(::symlink(in.c_str(), (folder / "again").c_str()), 0);
    for (const std::string& same : {in, folder / "again"}) {
        EXPECT_FALSE(EXEC(folder / "mark", "< " + in + " > " + same, Wait).started)
            << "it would be emptied first";
        EXPECT_EQ(takeError(), 907) << same;
    }
    EXPECT_EQ(get("in"), "x");
    EXPECT_TRUE(EXEC(folder / "tell", "< /dev/null > /dev/null", Wait).started);
}

TEST_F(Exec, MuchOutputComesWholeAndHoldsNothingUp) {
    tool("talk", "head -c 1048576 /dev/zero | tr '\\0' x; head -c 1048576 /dev/zero | tr '\\0' y >&2\n");
    for (const int mode : {Wait, WaitEnabled}) {
        EXPECT_EQ(EXEC(folder / "talk", "> " + (folder / "out"), mode).code, 0);
        EXPECT_EQ(get("out"), std::string(1 << 20, 'x') + std::string(1 << 20, 'y'));
    }
}

// ---- ends ----

TEST_F(Exec, CodesAndSignalsTellHowItEnded) {
    struct Case {
        const char* body;
        int code, signal;
    };
    const Case cases[] = {{"exit 0", 0, 0},           {"exit 1", 1, 0},         {"exit 255", 255, 0},
                          {"kill -9 $$", 128 + 9, 9}, {"kill -11 $$", 139, 11}, {"kill -15 $$", 143, 15},
                          {"kill -6 $$", 134, 6},     {"exit 137", 137, 0}};
    for (const Case& c : cases) {
        tool("end", std::string(c.body) + "\n");
        for (const int mode : {Wait, WaitEnabled}) {
            const ExecResult result = EXEC(folder / "end", "", mode);
            EXPECT_TRUE(result.started) << c.body;
            EXPECT_FALSE(result.stopped) << c.body;
            EXPECT_EQ(result.code, c.code) << c.body;
            EXPECT_EQ(result.signal, c.signal) << c.body;
            EXPECT_GT(result.process, 0) << c.body;
        }
    }
}

TEST_F(Exec, AToolThatNeverEndsIsStoppedWithAllThatItStarted) {
    tool("hang", "echo $$ > \"" + (folder / "pid") + "\"\nsleep 1000 &\necho $! > \"" + (folder / "child") +
                     "\"\nwait\n");
    platform::view().setIdle([] { platform::pressToolStop(); });  // as soon as there is a Stop button
    for (const int mode : {Wait, WaitEnabled}) {
        const std::int64_t before = os::clock().steady();
        const ExecResult result = EXEC(folder / "hang", "", mode);
        const std::int64_t seconds = (os::clock().steady() - before) / 1'000'000'000;
        EXPECT_TRUE(result.started);
        EXPECT_TRUE(result.stopped);
        EXPECT_EQ(result.signal, SIGTERM);
        EXPECT_EQ(result.code, 128 + SIGTERM);
        EXPECT_LT(seconds, 5);
        EXPECT_FALSE(platform::busy());
        for (const char* name : {"pid", "child"})
            EXPECT_TRUE(WAITFORSINGLEOBJECT_MSG(CVTI(STRTRIM(get(name))), 2000)) << name;
    }
}

TEST_F(Exec, AToolThatHearsNoStopIsForced) {
    tool("deaf", "trap '' TERM HUP INT\nwhile :; do sleep 1; done\n");
    platform::view().setIdle([] { platform::pressToolStop(); });
    const ExecResult result = EXEC(folder / "deaf", "", Wait);
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(result.signal, SIGKILL);
}

// ---- waiting for a process ----

TEST_F(Exec, AProcessIsWaitedForByItsNumber) {
    tool("short", "sleep 0.3\n");
    const ExecResult result = EXEC(folder / "short", "", NoWait);
    ASSERT_TRUE(result.started);
    ASSERT_GT(result.process, 0);
    EXPECT_FALSE(WAITFORSINGLEOBJECT_MSG(result.process, 0));
    EXPECT_FALSE(WAITFORSINGLEOBJECT_MSG(result.process, 10));
    EXPECT_TRUE(WAITFORSINGLEOBJECT_MSG(result.process, -1)) << "without an end";
    EXPECT_TRUE(WAITFORSINGLEOBJECT_MSG(result.process, 0));
    for (const int none : {0, -1, INT_MAX}) EXPECT_TRUE(WAITFORSINGLEOBJECT_MSG(none, 0)) << none;
    EXPECT_FALSE(WAITFORSINGLEOBJECT_MSG(::getpid(), 20)) << "this program runs";
}

TEST_F(Exec, EventsAreHandledWhileAProcessIsWaitedFor) {
    tool("short", "sleep 0.2\n");
    const ExecResult result = EXEC(folder / "short", "", NoWait);
    int rounds = 0;
    platform::view().setIdle([&] { ++rounds; });
    EXPECT_TRUE(WAITFORSINGLEOBJECT_MSG(result.process, 5000));
    EXPECT_GT(rounds, 0);
}

}  // namespace
}  // namespace tarn
