// SPDX-License-Identifier: Apache-2.0
//
// The file and program families of the system library, on files and programs that are played.
#include "library/system/system.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

#include <climits>

namespace tarn {
namespace {

class Files : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override { ClearError(); }
    int takeError() {
        const int code = ErrorCell();
        ClearError();
        return code;
    }
    os::SteeredFiles files;
    os::SteeredClock clock;
    os::Steered steeredFiles{files};
    os::Steered steeredClock{clock};
};

TEST_F(Files, SizeIsMinusOneForWhatIsNoFile) {
    files.put("/a/empty", "");
    files.put("/a/x", "12345");
    EXPECT_EQ(FileSize("/a/empty"), 0);
    EXPECT_EQ(FileSize("/a/x"), 5);
    EXPECT_EQ(FileSize("\\a\\x"), 5);
    EXPECT_EQ(FileSize("/a/absent"), -1);
    EXPECT_EQ(FileSize("/a"), -1);
    EXPECT_EQ(FileSize(""), -1);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Files, TheTimeIsLocalAndPadded) {
    files.put("/a/x", "1");
    os::files().setModified("/a/x", 981'173'106'000'000'000);
    EXPECT_EQ(FILETIME("/a/x"), "2001-02-03 04:05:06");
    clock.setOffset(3600);
    EXPECT_EQ(FILETIME("/a/x"), "2001-02-03 05:05:06");
    EXPECT_EQ(FILETIME("/a/absent"), "");
}

TEST_F(Files, TextIsLoadedAndSavedByteForByte) {
    const std::string bytes("a\r\n\0\xFF", 5);
    files.putFolder("/a");
    EXPECT_TRUE(SAVEFILE("/a/x", bytes));
    std::string text = "old";
    EXPECT_TRUE(LOADFILE("/a/x", text));
    EXPECT_EQ(text, bytes);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Files, LoadingFailsWithTheCodeOfItsCause) {
    files.put("/a/secret", "x", 0000);
    struct Case {
        const char* path;
        int code;
    };
    for (const Case& c :
         {Case{"/a/absent", 651}, Case{"/a/secret", 651}, Case{"/a", 651}, Case{"/a/secret/x", 651}}) {
        std::string text = "old";
        EXPECT_FALSE(LOADFILE(c.path, text)) << c.path;
        EXPECT_EQ(text, "") << c.path;
        EXPECT_EQ(takeError(), c.code) << c.path;
    }
}

TEST_F(Files, AFailedSaveKeepsTheOldTextAndTellsWhatToDo) {
    files.put("/a/x", "old");
    struct Case {
        os::FileError error;
        int code;
    };
    for (const Case& c : {Case{os::FileError::DiskFull, 654}, Case{os::FileError::Vanished, 653},
                          Case{os::FileError::BadName, 657}, Case{os::FileError::WriteFailed, 652}}) {
        files.failAlways(os::FileCall::Write, c.error);
        EXPECT_FALSE(SAVEFILE("/a/x", "new"));
        EXPECT_EQ(takeError(), c.code);
        EXPECT_EQ(files.contents("/a/x"), "old");
        const std::string report = SAVEFILEREPORT();
        EXPECT_NE(report.find("'/a/x'"), std::string::npos) << report;
        EXPECT_NE(report.find(os::describe(c.error)), std::string::npos) << report;
        EXPECT_NE(report.find("File-Save As"), std::string::npos) << report;
        files.failAlways(os::FileCall::Write, os::FileError::None);
    }
    EXPECT_TRUE(SAVEFILE("/a/x", "new"));
    EXPECT_EQ(files.contents("/a/x"), "new");
}

TEST_F(Files, TheReportSaysOnlyWhatIsTrueOfDiskAndWindow) {
    files.put("/a/x", "old");
    files.failAlways(os::FileCall::Write, os::FileError::DiskFull);
    const auto ends = [](const std::string& text) { return SAVEFILEREPORT().ends_with(text); };
    EXPECT_FALSE(SAVEFILE("/a/x", "new"));
    EXPECT_TRUE(ends("The file on disk is as it was, and the text is still in its window.\n"
                     "Save it again when the cause is gone, or under another name with File-Save As."));
    EXPECT_FALSE(SAVEFILE("/a/absent", "new"));
    EXPECT_TRUE(ends("\nNothing was written, and the text is still in its window.\n"
                     "Save it again when the cause is gone, or under another name with File-Save As."));
    EXPECT_FALSE(SAVEFILE("/a/absent", std::vector<std::string>{"new"}));
    EXPECT_TRUE(ends("\nNothing was written. Save again when the cause is gone, or to another file."))
        << "lines are in no window";
    takeError();
}

TEST_F(Files, EveryFailureOfASaveLeavesTheOldOrTheNewText) {
    files.put("/a/x", "old");
    ASSERT_TRUE(SAVEFILE("/a/x", "new"));
    files.clearLog();
    ASSERT_TRUE(SAVEFILE("/a/x", "new"));
    const int calls = files.calls();
    // The sync of the folder comes last, when the new text has its name; it alone fails behind the replacing.
    const int folderSync = calls;
    ASSERT_TRUE(files.log().back().starts_with("syncfolder")) << files.log().back();
    int failures = 0;
    for (int call = 1; call <= calls; ++call) {
        files.put("/a/x", "old");
        files.failAt(call, os::FileError::WriteFailed);
        const bool saved = SAVEFILE("/a/x", "new");
        EXPECT_EQ(saved, takeError() == 0) << call;
        const bool replaced = saved || call == folderSync;
        EXPECT_EQ(files.contents("/a/x"), replaced ? "new" : "old") << call;
        failures += saved ? 0 : 1;
        files.stopFailing();
    }
    EXPECT_GT(failures, 0);
}

TEST_F(Files, TheReportOfASaveIsAboutTheLastFileAlone) {
    files.put("/a/x", "old");
    files.failAlways(os::FileCall::Write, os::FileError::DiskFull);
    EXPECT_FALSE(SAVEFILE("/a/x", "new"));
    EXPECT_NE(SAVEFILEREPORT(), "");
    std::string text;
    EXPECT_FALSE(LOADFILE("/a/none", text));
    EXPECT_EQ(SAVEFILEREPORT(), "");
    EXPECT_FALSE(SAVEFILE("/a/x", "new"));
    files.stopFailing();
    files.failAlways(os::FileCall::Write, os::FileError::None);
    EXPECT_TRUE(SAVEFILE("/a/x", "new"));
    EXPECT_EQ(SAVEFILEREPORT(), "");
    EXPECT_FALSE(LOADFILE("/a/none", text));
    EXPECT_EQ(SAVEFILEREPORT(), "");
}

TEST_F(Files, TheReportOfADeviceDoesNotCallItAsItWas) {
    os::FileSystem* const before = os::useFiles(&os::realFiles());
    EXPECT_FALSE(SAVEFILE("/dev/full", "text"));
    EXPECT_NE(takeError(), 0);
    EXPECT_EQ(SAVEFILEREPORT(), "The file could not be saved:\n\n\t'/dev/full'\n\nThe disk is full.\n"
                                "It is a device or a pipe, which may have got a part. Look whether a program "
                                "reads from it.");
    os::useFiles(before);
}

TEST_F(Files, DeletingWhatIsNotThereIsNoError) {
    files.put("/a/x", "1");
    FILEDELETE("/a/x");
    EXPECT_FALSE(files.has("/a/x"));
    FILEDELETE("/a/x");
    FILEDELETE("/none/x");
    EXPECT_EQ(takeError(), 0);
    files.put("/a/x", "1");
    files.failAlways(os::FileCall::Remove, os::FileError::Denied);
    FILEDELETE("/a/x");
    EXPECT_EQ(takeError(), 652);
}

TEST_F(Files, FreeNamesCountOnFromTheHighest) {
    files.putFolder("/a");
    EXPECT_EQ(FILETEMPNAME("/a", "New", ".cls"), "/a/New1.cls");
    EXPECT_EQ(FILETEMPNAMES("/a", "New", ".cls").last, "/a/New.cls");
    for (const char* name :
         {"/a/New1.cls", "/a/new7.CLS", "/a/New9.rc", "/a/NewX8.cls", "/a/New.cls", "/a/Other20.cls"})
        files.put(name, "");
    EXPECT_EQ(FILETEMPNAME("/a/", "New", "cls"), "/a/New8.cls");
    EXPECT_EQ(FILETEMPNAMES("/a", "New", ".cls").last, "/a/New7.cls");
    EXPECT_EQ(FILETEMPNAME("/a", "New3", ".cls"), "/a/New8.cls");
    EXPECT_EQ(FILETEMPNAME("/a", "New", ".txt"), "/a/New1.txt");
    files.put("/a/New99999999999.cls", "");
    EXPECT_EQ(FILETEMPNAME("/a", "New", ".cls"), "/a/New8.cls");
    EXPECT_EQ(FILETEMPNAME("/none", "New", ".cls"), "/none/New1.cls");
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Files, SearchPathsAreTriedInOrder) {
    files.put("/b/x.cls", "");
    files.put("/c/x.cls", "1");
    EXPECT_EQ(FILEFINDPATHNAME("/a;/b ;/c", "x.cls"), "/b/x.cls");
    EXPECT_EQ(FILEFINDPATHNAME(";;/c/;/b", "x.cls"), "/c/x.cls");
    EXPECT_EQ(FILEFINDPATHNAME("/a", "x.cls"), "");
    EXPECT_EQ(FILEFINDPATHNAME("", "x.cls"), "");
    EXPECT_EQ(FILEFINDPATHNAME("/", "c/x.cls"), "");
    EXPECT_EQ(FILEFINDPATHNAME("/b", ""), "");
}

TEST_F(Files, TheCurrentFolderIsSetAndAsked) {
    files.putFolder("/a/b");
    SETCURDIR("/a/b");
    EXPECT_EQ(GETCURDIR(), "/a/b");
    EXPECT_EQ(takeError(), 0);
    SETCURDIR("/none");
    EXPECT_EQ(takeError(), 651);
    EXPECT_EQ(GETCURDIR(), "/a/b");
}

TEST_F(Files, ACopyHasTheBytesTheModeAndTheTimeOfItsSource) {
    files.put("/a/x.exe", "bytes", 0755);
    os::files().setModified("/a/x.exe", 5'000'000'000);
    files.putFolder("/b");
    EXPECT_TRUE(FILECOPY("/a/x.exe", "/b/", false));
    EXPECT_TRUE(FILECOPY("/a/x.exe", "y.exe", false));
    for (const char* copy : {"/b/x.exe", "/a/y.exe"}) {
        EXPECT_EQ(files.contents(copy), "bytes") << copy;
        EXPECT_EQ(os::infoOf(copy).mode & 0777, 0755u) << copy;
        EXPECT_EQ(os::infoOf(copy).modified, 5'000'000'000) << copy;
    }
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Files, ACopyIsGoodWhereThereAreNoPermissionsToSet) {
    files.put("/a/x", "bytes", 0755);
    files.failAlways(os::FileCall::SetMode, os::FileError::Denied);
    EXPECT_TRUE(FILECOPY("/a/x", "/a/y", false));
    EXPECT_EQ(files.contents("/a/y"), "bytes");
    EXPECT_EQ(takeError(), 0);
    files.failAlways(os::FileCall::SetModified, os::FileError::Denied);
    EXPECT_FALSE(FILECOPY("/a/x", "/a/y", false));
    EXPECT_EQ(takeError(), 652);
}

TEST_F(Files, ACopyWithoutAFolderLiesBesideItsSourceWhateverItsDrive) {
    files.put("/a/x", "bytes");
    EXPECT_TRUE(FILECOPY("/a/x", "c:y.z", false));
    EXPECT_EQ(files.contents("/a/y.z"), "bytes");
    EXPECT_TRUE(FILECOPY("/a/x", "c:", false));  // its own name: itself
    EXPECT_EQ(files.allFiles(), (std::vector<std::string>{"/a/x", "/a/y.z"}));
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Files, ACopyOntoItselfDestroysNothing) {
    files.put("/a/x", "bytes");
    files.putLink("/a/x", "/a/link");
    files.putHardLink("/a/x", "/a/hard");
    for (const char* dest : {"/a/x", "x", "/a/link", "/a/hard"})
        EXPECT_TRUE(FILECOPY("/a/x", dest, false)) << dest;
    files.put("/a/X", "other");
    EXPECT_FALSE(FILECOPY("/a/x", "/a/X", false));  // the same name but for case: left alone
    EXPECT_EQ(files.contents("/a/x"), "bytes");
    EXPECT_EQ(files.contents("/a/X"), "other");
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Files, ACopyThatCannotBeMadeSaysSo) {
    files.put("/a/x", "bytes");
    files.put("/a/y", "old");
    EXPECT_FALSE(FILECOPY("x", "/a/z", false));       // no full path
    EXPECT_FALSE(FILECOPY("/a/x", "/a/b*c", false));  // no file name
    EXPECT_EQ(takeError(), 0);
    EXPECT_FALSE(FILECOPY("/a/none", "/a/z", false));
    EXPECT_EQ(takeError(), 651);
    files.failAlways(os::FileCall::Write, os::FileError::DiskFull);
    EXPECT_FALSE(FILECOPY("/a/x", "/a/y", false));
    EXPECT_EQ(takeError(), 654);
    EXPECT_EQ(files.contents("/a/y"), "old");
}

TEST_F(Files, AToolIsFoundWithAndWithoutItsExtension) {
    files.put("/t/both.exe", "1");
    files.put("/t/both", "1");
    files.put("/t/bare", "1");
    files.put("/t/empty.exe", "");
    files.put("/t/empty", "1");
    EXPECT_EQ(FINDTOOL("/t/both.exe"), "/t/both.exe");
    EXPECT_EQ(FINDTOOL("/t/bare.exe"), "/t/bare");
    EXPECT_EQ(FINDTOOL("/t/bare.EXE"), "/t/bare");
    EXPECT_EQ(FINDTOOL("\\t\\bare"), "/t/bare");
    EXPECT_EQ(FINDTOOL("/t/empty.exe"), "/t/empty");
    EXPECT_EQ(FINDTOOL("/t/none.exe"), "");
    EXPECT_EQ(FINDTOOL("/t/.exe"), "");
    EXPECT_EQ(FINDTOOL("/t/bare.com"), "");
    EXPECT_EQ(FINDTOOL(""), "");
}

// ---- programs ----

class Programs : public Files {
protected:
    os::SteeredProcesses processes;
    os::Steered steeredProcesses{processes};
    static constexpr int Wait = 0 + 1, WaitEnabled = 32 + 1, NoWait = 16 + 1;
    void SetUp() override {
        Files::SetUp();
        files.put("/t/tool.exe", "#!x", 0755);
        files.putFolder("/o");
    }
    void play(os::Played played) {
        processes.play([played](const os::StartRequest&) { return played; });
    }
    const os::StartRequest& request() { return processes.started().back(); }
};

TEST_F(Programs, GetTheirArgumentsAsAList) {
    play({});
    const ExecResult result = EXEC("/t/tool.exe", "/fs \"a b.cls\" -i\"p q\"", Wait);
    EXPECT_TRUE(result.started);
    EXPECT_FALSE(result.stopped);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(request().program, "/t/tool.exe");
    EXPECT_EQ(request().arguments, (std::vector<std::string>{"/fs", "a b.cls", "-ip q"}));
    EXPECT_EQ(request().outputFile, "");
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Programs, AreStartedUnderTheirBareNameToo) {
    files.put("/t/bare", "#!x", 0755);
    EXEC("/t/bare.exe", "", Wait);
    EXPECT_EQ(request().program, "/t/bare");
}

TEST_F(Programs, OutputGoesWhereTheArgumentsSay) {
    struct Case {
        const char *line, *output;
        std::vector<std::string> arguments;
        int code;
    };
    const Case cases[] = {
        {"-x > \"/o/a b.txt\"", "/o/a b.txt", {"-x"}, 0},
        {"> /o/x", "/o/x", {}, 0},
        {"\"a > b\"", "", {"a > b"}, 0},
        {"a>b", "", {"a>b"}, 0},
        {"a >", "", {}, 907},
        {"a > b c", "", {}, 907},
        {"\">\" x", "", {">", "x"}, 0},
    };
    for (const Case& c : cases) {
        const std::size_t before = processes.started().size();
        const ExecResult result = EXEC("/t/tool.exe", c.line, Wait);
        EXPECT_EQ(takeError(), c.code) << c.line;
        EXPECT_EQ(result.started, c.code == 0) << c.line;
        EXPECT_EQ(processes.started().size(), before + (c.code == 0 ? 1 : 0)) << c.line;
        if (c.code != 0) continue;
        EXPECT_EQ(request().outputFile, c.output) << c.line;
        EXPECT_EQ(request().arguments, c.arguments) << c.line;
    }
}

TEST_F(Programs, FailuresToStartHaveTheirCodes) {
    files.put("/t/elf.exe",
              "\x7F"
              "ELF...",
              0755);
    files.put("/t/text.exe", "hello", 0755);
    struct Case {
        const char* program;
        os::StartError error;
        int code;
    };
    const Case cases[] = {
        {"/t/none.exe", os::StartError::None, 901},
        {"/t/tool.exe", os::StartError::NotFound, 901},
        {"/t/text.exe", os::StartError::NotExecutable, 902},
        {"/t/tool.exe", os::StartError::NoMemory, 903},
        {"/t/tool.exe", os::StartError::BadArguments, 906},
        {"/t/tool.exe", os::StartError::BadOutput, 907},
        {"/t/elf.exe", os::StartError::NotExecutable, 908},
        {"/t/elf.exe", os::StartError::BadFormat, 902},
        {"/t/tool.exe", os::StartError::WontRun, 905},
        {"/t/tool.exe", os::StartError::BadInput, 907},
        {"/t/tool.exe", os::StartError::Other, 909},
        {"", os::StartError::None, 906},
        {"tool-that-is-on-no-path.exe", os::StartError::None, 901},
    };
    for (const Case& c : cases) {
        play({.error = c.error});
        const ExecResult result = EXEC(c.program, "", Wait);
        EXPECT_EQ(takeError(), c.code) << c.program;
        EXPECT_FALSE(result.started) << c.program;
    }
    EXEC("/t/tool.exe", std::string("a\0b", 3), Wait);
    EXPECT_EQ(takeError(), 906);
}

TEST_F(Programs, ANameThatNoPathCanHaveIsABadCommandLine) {
    const std::string longest = "/t/" + std::string(PATH_MAX - 4, 'x');
    EXEC(longest, "", Wait);
    EXPECT_EQ(takeError(), 901);
    for (const std::string& name : {longest + "x", std::string(100'000, 'x')}) {
        EXPECT_FALSE(EXEC(name, "", Wait).started);
        EXPECT_EQ(takeError(), 906);
    }
}

TEST_F(Programs, ExitCodesAndSignalsComeBack) {
    play({.code = 3, .lasts = 120'000'000});
    EXPECT_EQ(EXEC("/t/tool.exe", "", Wait).code, 3);
    EXPECT_EQ(EXEC("/t/tool.exe", "", WaitEnabled).code, 3);
    play({.signal = 11});
    const ExecResult died = EXEC("/t/tool.exe", "", Wait);
    EXPECT_TRUE(died.started);
    EXPECT_EQ(died.signal, 11);
    EXPECT_NE(died.code, 0);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Programs, AProgramIsNotWaitedForInMode16) {
    // Busy to the bound; asleep for two looks; a process of which nothing can be learned. Mode 48 is no other
    // wait.
    struct Case {
        const char* state;
        std::int64_t least, most;  // milliseconds
    };
    const Case cases[] = {{"7 (a tool) R 1 2", 4900, 5600},
                          {"7 (S) R) R 1", 4900, 5600},
                          {"7 (tool) S 1", 50, 200},
                          {"", 50, 200}};
    for (const int mode : {NoWait, 48 + 1}) {
        for (const Case& c : cases) {
            play({.hangs = true});
            const std::string id = std::to_string(1001 + processes.started().size());
            files.put("/proc/" + id + "/stat", c.state);
            const std::int64_t before = clock.steady();
            const ExecResult result = EXEC("/t/tool.exe", "", mode);
            const std::int64_t waited = (clock.steady() - before) / 1'000'000;
            EXPECT_TRUE(result.started) << c.state;
            EXPECT_FALSE(result.stopped) << c.state;
            EXPECT_EQ(result.code, 0) << c.state;
            EXPECT_GE(waited, c.least) << c.state;
            EXPECT_LE(waited, c.most) << c.state;
            EXPECT_EQ(takeError(), 0) << c.state;
        }
    }
}

TEST_F(Programs, AnEndedProgramIsNotWaitedForInMode16) {
    play({.code = 4, .lasts = 10'000'000});
    files.put("/proc/1001/stat", "1 (x) R");
    EXPECT_EQ(EXEC("/t/tool.exe", "", NoWait).code, 4);
}

}  // namespace
}  // namespace tarn
