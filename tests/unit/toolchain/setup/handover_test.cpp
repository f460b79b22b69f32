// SPDX-License-Identifier: Apache-2.0
//
// A program that is built, handed over in each way, and run where it has come to, without anything of the build; and what an
// installer does as a program, with files that are packed in no time.
#include "library/dialogs/versioninfo.h"
#include "library/ship/copyutil.h"
#include "library/ship/ownlibraries.h"
#include "library/system/system.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/resources/resource.h"
#include "support/installer_fixture.h"
#include "toolchain/setup/make.h"
#include "toolchain/setup/package.h"

#include <limits>

namespace tarn::toolchain {
namespace {

class Handover : public AtHome {
protected:
    std::string files;           // the output files, one a line
    std::string told, expected;  // what the program writes where it was built

    void SetUp() override {
        AtHome::SetUp();
        std::filesystem::copy(SOURCE_DIR "/examples/wordcount", dir + "wordcount");
        ASSERT_EQ(ordo({"-fm", dir + "wordcount/wordcount.cls", "-o" + dir + "ordo.err"}), 0)
            << read("ordo.err");
        ASSERT_EQ(ordo({"-ft", dir + "wordcount/wordcount.cls", "-n", "-o" + dir + "ordo.err"}), 0);
        files = WITHSMALLLIBRARIES(read("ordo.err"));
        ASSERT_EQ(runAt(dir + "wordcount"), 0) << output;
        expected = output;
        ASSERT_NE(expected, "");
    }

    // The program in a folder, with an empty environment.
    int runAt(const std::string& folder) {
        return run("/usr/bin/env", {"-i", folder + "/wordcount.exe", dir + "wordcount/sample.txt"});
    }
    // It runs there, with the libraries that lie beside it.
    void expectRunsAt(const std::string& folder) {
        EXPECT_EQ(runAt(folder), 0) << output;
        EXPECT_EQ(output, expected);
        EXPECT_EQ(run("/usr/bin/env", {"-i", "LD_TRACE_LOADED_OBJECTS=1", folder + "/wordcount.exe"}), 0);
        EXPECT_NE(output.find("libtarnwick.so => " + folder + "/libtarnwick.so"), std::string::npos)
            << output;
        EXPECT_EQ(output.find(BINARY_DIR), std::string::npos) << output;
        EXPECT_EQ(output.find("not found"), std::string::npos) << output;
    }
    // Gives the same answer to each box.
    template <class Command>
    bool answering(const std::string& answer, const Command& command) {
        auto before = platform::useView(platform::makeHeadlessView([&](const platform::Question& question) {
            told = question.text;
            return answer;
        }));
        ClearError();
        const bool ok = command();
        platform::useView(std::move(before));
        return ok;
    }
};

TEST_F(Handover, AFolderOfTheOutputFilesRuns) {
    std::filesystem::create_directories(dir + "to");
    EXPECT_TRUE(answering("OK", [&] { return COPYTOFOLDER(Object(), files, dir + "to"); })) << told;
    expectRunsAt(dir + "to");
}

TEST_F(Handover, TheRunTimeLibraryGoesWithoutWhatADebuggerReads) {
    for (int i = 1; i <= STRLINES(files); ++i) {
        const std::string file = STRLINE(files, i), built = BINARY_DIR "/" + FILEGETFNAME(file);
        if (!ISOWNLIBRARY(file)) continue;
        EXPECT_TRUE(file.starts_with(dir + "state/")) << file;
        EXPECT_LT(os::sizeOf(file), os::sizeOf(built));
    }
    EXPECT_EQ(WITHSMALLLIBRARIES(read("ordo.err")), files) << "they are made once";
}

TEST_F(Handover, AZipFileOfTheOutputFilesRuns) {
    const std::string zip = dir + "words.zip";
    EXPECT_TRUE(answering(zip, [&] { return COPYTOZIP(Object(), files, ""); })) << told;
    std::filesystem::create_directories(dir + "to");
    ASSERT_EQ(run("/usr/bin/unzip", {"-q", zip, "-d", dir + "to"}), 0) << output;
    expectRunsAt(dir + "to");
}

// Its files have the rights that the system wants, whatever those of the sources are, and belong to its administrator.
TEST_F(Handover, ADebianPackageOfTheOutputFilesRuns) {
    const std::string deb = dir + "words.deb", exe = dir + "wordcount/wordcount.exe",
                      icon = write("i.svg", "<svg/>");
    const DebFields fields{"wordcount", "1.2", "Ann Bell <ann@example.org>", "counts words", ""};
    EXPECT_TRUE(answering(deb, [&] {
        return COPYTODEB(Object(), fields, "(c) 2026 Ann", icon, files, exe, "");
    })) << told;
    EXPECT_EQ(told.substr(0, told.find('\n')), "Created '" + deb + "'");
    ASSERT_EQ(run("/usr/bin/dpkg-deb", {"-I", deb, "control"}), 0) << output;
    EXPECT_NE(output.find("\nDepends: libc6 (>= "), std::string::npos) << output;
    EXPECT_NE(output.find(", libstdc++6"), std::string::npos) << output;
    if (os::sizeOf("/usr/bin/lintian") > 0) {
        EXPECT_EQ(run("/usr/bin/lintian", {"--no-cfg", "--allow-root", "--tag-display-limit", "0", deb}), 0)
            << output;
        EXPECT_EQ(output, "");
    }
    ASSERT_EQ(run("/usr/bin/dpkg-deb", {"-c", deb}), 0) << output;
    for (const char* line : {"-rwxr-xr-x root/root ", "-rw-r--r-- root/root ", "drwxr-xr-x root/root "})
        EXPECT_NE(output.find(line), std::string::npos) << line << output;
    EXPECT_EQ(output.find("rwxrwx"), std::string::npos) << output;
    ASSERT_EQ(run("/usr/bin/dpkg-deb", {"-x", deb, dir + "to"}), 0) << output;
    ASSERT_EQ(run("/usr/bin/dpkg-deb", {"-e", deb, dir + "to/DEBIAN"}), 0) << output;
    ASSERT_EQ(
        run("/bin/sh",
            {"-c", "cd to && md5sum --quiet -c DEBIAN/md5sums && rm -r DEBIAN && find . -type f | wc -l"}),
        0)
        << output;
    expectRunsAt(dir + "to/usr/lib/wordcount");
    for (const char* name :
         {"applications/wordcount.desktop", "doc/wordcount/copyright", "doc/wordcount/changelog.gz",
          "man/man1/wordcount.1.gz", "icons/hicolor/scalable/apps/wordcount.svg"})
        EXPECT_TRUE(exists(std::string("to/usr/share/") + name)) << name;
    EXPECT_EQ(read("to/usr/bin/wordcount"), "#!/bin/sh\nexec \"/usr/lib/wordcount/wordcount.exe\" \"$@\"\n");
    EXPECT_EQ(allIn(dir).find(".work"), std::string::npos) << "nothing stays of the making";
}

TEST_F(Handover, AnInstallerInstallsQuietlyAndItsUninstallerLeavesNothing) {
    makeInstaller(files, dir + "wordcount/wordcount.exe");
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    EXPECT_EQ(output, "");
    const std::string app = home + "/.local/opt/wordcount";
    expectRunsAt(app);
    EXPECT_TRUE(os::sizeOf(home + "/.local/share/applications/wordcount.desktop") > 0);
    ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(SmallInstaller, TakesAFolderOfTheUsersChoice) {
    const std::string place = dir + "my \"own\" place";
    ASSERT_EQ(withHome(installer, {"--quiet", "--folder", place}), 0) << output;
    expectRunsAt(place);
    ASSERT_EQ(withHome(installer, {"--quiet", "--folder", place}), 0) << "again, over itself: " << output;
    ASSERT_EQ(withHome(place + "/uninstall", {"--quiet"}), 0) << output;
    EXPECT_FALSE(std::filesystem::exists(place));
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(SmallInstaller, InstallsAgainWhereAnUninstallLeftAFileOfTheUser) {
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    ASSERT_TRUE(os::saveFile(app + "/notes.txt", "the user's", os::Durability::Unsynced).ok());
    ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
    EXPECT_EQ(output, "Files in '" + app + "' that were not installed have stayed.\n");
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    expectRunsAt(app);
    EXPECT_EQ(os::sizeOf(app + "/notes.txt"), 10);
    std::filesystem::remove(app + "/notes.txt");
    ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n") << "the folders that the first installation has made";
}

TEST_F(SmallInstaller, IsStartedByAProgramThatFitsIntoOnePage) {
    setup::Layout layout;
    ASSERT_EQ(setup::checkInstaller(installer, layout), setup::Whole::Yes);
    EXPECT_GT(layout.first, 0);
    EXPECT_LT(layout.first, 4096);
    EXPECT_EQ(read("made-install.exe").substr(0, static_cast<std::size_t>(layout.first)),
              setup::firstProgram());
}

TEST_F(SmallInstaller, AChangedByteIsToldWhereverItStands) {
    EXPECT_EQ(withHome(installer, {"--check"}), 0) << output;
    const std::string whole = read("made-install.exe");
    const std::size_t first = setup::firstProgram().size();
    std::vector<std::size_t> places = {9, 15, whole.size() - 1, whole.size() - 20, whole.size() - 40};
    for (std::size_t i = 0; i < 24; ++i) places.push_back(first + i);  // the head of the program
    for (std::size_t i = 1; i < 24; ++i) places.push_back(first + i * (whole.size() - first) / 24);
    for (const std::size_t place : places) {
        std::string bytes = whole;
        bytes[place] = static_cast<char>(bytes[place] ^ 1);
        expectRefuses("changed at " + std::to_string(place), bytes);
    }
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(SmallInstaller, AShortenedOrLengthenedFileIsToldAsSuch) {
    const std::string whole = read("made-install.exe");
    const std::size_t size = whole.size(), first = setup::firstProgram().size();
    for (const std::size_t left :
         {first, first + 1, std::size_t{4096}, std::size_t{4097}, std::size_t{100'000}, size / 2,
          size - size / 4, size - 41, size - 40, size - 1})
        expectRefuses("cut to " + std::to_string(left), whole.substr(0, left));
    expectRefuses("with a byte more", whole + "x");
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

// The sizes that a file tells of itself are checked before they are used, whatever its sum is.
TEST_F(SmallInstaller, SizesThatDoNotFitAreRefused) {
    const std::string whole = read("made-install.exe");
    const auto size = static_cast<std::int64_t>(whole.size());
    const std::int64_t most = std::numeric_limits<std::int64_t>::max();
    for (const setup::Layout& layout :
         {setup::Layout{0, 0, 0}, setup::Layout{most, 1, size}, setup::Layout{-1, 1, size},
          setup::Layout{size, size, size}, setup::Layout{1, most, most}, setup::Layout{0, size - 40, -1}}) {
        const std::string body = whole.substr(0, whole.size() - setup::TrailerSize);
        expectRefuses(std::to_string(layout.first) + " " + std::to_string(layout.program),
                      body + setup::trailerOf(layout, setup::addToSum(0, body)));
    }
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(SmallInstaller, ArgumentsReachTheProgramThatInstalls) {
    EXPECT_EQ(withHome(installer, {"--quite"}), 2);
    EXPECT_EQ(withHome(installer, {"--folder"}), 2);
    EXPECT_EQ(withHome(installer, {"--of"}), 2);
    EXPECT_EQ(withHome(installer, {"--quiet", "--folder", dir + "a b"}), 0) << output;
    expectRunsAt(dir + "a b");
}

TEST_F(SmallInstaller, QuestionsWithoutAnybodyToAskAreTold) {
    EXPECT_EQ(withHome(installer, {}), 2);
    EXPECT_EQ(output,
              "There is no screen and no terminal to ask on. Use --home, --system, or --folder FOLDER.\n");
    EXPECT_EQ(run("/usr/bin/env", {"-i", installer, "--quiet"}), 1);
    EXPECT_NE(output.find("There is no home folder"), std::string::npos) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(SmallInstaller, AnInstallationThatIsKilledAnywhereIsMadeGoodByTheNext) {
    for (int milliseconds = 1; milliseconds < 60; milliseconds += 6) {
        const auto child = startInstaller();
        ASSERT_NE(child, nullptr);
        child->wait(milliseconds);
        child->stop(0);
        ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
        EXPECT_EQ(allIn(home).find(".setup"), std::string::npos) << allIn(home);
        ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
        EXPECT_EQ(allIn(home), "/Desktop\n");
    }
}

TEST_F(SmallInstaller, TwoInstallationsAtOnceGoOneAfterTheOther) {
    std::vector<std::unique_ptr<os::Child>> children;
    for (int i = 0; i < 2; ++i) children.push_back(startInstaller());
    for (const auto& child : children) {
        ASSERT_NE(child, nullptr);
        const os::ExitState state = child->wait(60000);
        EXPECT_TRUE(state.ended && state.code == 0) << state.code;
    }
    expectRunsAt(app);
}

TEST_F(SmallInstaller, OnATerminalItAsksThere) {
    typing("c", installer);
    EXPECT_NE(output.find("Where shall 'Counts words' be installed?"), std::string::npos) << output;
    EXPECT_NE(output.find("code 3"), std::string::npos) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
    typing("x m", installer);
    EXPECT_NE(output.find("small was installed in '" + home + "/.local/opt/small'."), std::string::npos)
        << output;
    typing("r", home + "/.local/opt/small/uninstall");
    EXPECT_NE(output.find("code 0"), std::string::npos) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

// What the question calls the program, by its version block and the description that stands in the script.
TEST_F(AtHome, TheProductIsNamedByTheVersionBlockElseByTheDescriptionOfTheUser) {
    const VersionFields plain = VERSIONINFOTOFIELDS(GETDEFAULTVERSIONINFO("small"));
    const struct {
        const char *product, *description, *named;
    } rows[] = {{"Word Counter", plain.description.c_str(), "Word Counter"},
                {"Word Counter", "Counts words", "Word Counter"},
                {"", "Counts words", "Counts words"},
                {"", plain.description.c_str(), "small"},
                {"", "Created by Tarnwick 1.0", "small"},
                {nullptr, "Counts words", "Counts words"},
                {nullptr, plain.description.c_str(), "small"},
                {nullptr, "", "small"}};
    const std::string program = write("small/small.exe", "#!/bin/sh\necho greets\n");
    for (const auto& row : rows) {
        VersionFields fields = plain;
        fields.product = row.product != nullptr ? row.product : "";
        write("small.rc", row.product != nullptr
                              ? FIELDSTOVERSIONINFO(std::string(DefaultVersionName), fields, "small")
                              : "");
        ASSERT_EQ(platform::CompileResources({dir + "small.rc"}, dir + "small/small.rcx"), "");
        makeInstaller(program + "\n" + dir + "small/small.rcx\n", program, row.description);
        typing("c", installer);
        EXPECT_NE(output.find("Where shall '" + std::string(row.named) + "' be installed?"),
                  std::string::npos)
            << output;
    }
}

TEST_F(AtHome, AWrongScriptIsToldWithItsLineAndNothingIsMade) {
    write("bad.iss", "[Setup]\nAppName=x\nOther=1\n");
    EXPECT_EQ(run(BINARY_DIR "/iscc.exe", {dir + "bad.iss"}), 1);
    EXPECT_EQ(output.substr(0, output.find('\n')),
              dir + "bad.iss(3) : error : the key 'Other' is not known in [Setup]");
    EXPECT_FALSE(exists("bad.exe"));
    EXPECT_EQ(run(BINARY_DIR "/iscc.exe", {}), 2);
    EXPECT_EQ(run(BINARY_DIR "/iscc.exe", {dir + "bad.iss", "/X"}), 2);
    EXPECT_EQ(run(BINARY_DIR "/iscc.exe", {dir + "bad.iss", "/F../x"}), 2);
    EXPECT_EQ(run(BINARY_DIR "/iscc.exe", {dir + "none.iss"}), 1);
}

}  // namespace
}  // namespace tarn::toolchain
