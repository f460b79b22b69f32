// SPDX-License-Identifier: Apache-2.0
//
// Mail that is handed to the desktop: the URL, the helper's command line, providers, and every refusal.
#include "library/net/netutil.h"

#include "library/net/postrun.h"
#include "library/system/system.h"
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/errorcell.h"
#include "support/places.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn {
namespace {

constexpr const char* Subsystem = "SOFTWARE\\Microsoft\\Windows Messaging Subsystem";

class Net : public ::testing::Test, public os::Processes {
protected:
    void SetUp() override {
        ClearError();
        before_ = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question);
            return answer;
        }));
        processesBefore_ = os::useProcesses(this);
        std::filesystem::current_path(folder.path());
        std::string program = folder / "program";  // a name of this one, so that the folder counts as its own
        std::filesystem::create_symlink(std::filesystem::read_symlink("/proc/self/exe"), program);
        char* arguments[] = {program.data(), nullptr};
        os::setCommandLine(1, arguments);
    }
    void TearDown() override {
        std::filesystem::current_path("/");
        os::useProcesses(processesBefore_);
        platform::useView(std::move(before_));
        EXPECT_EQ(takeError(), 0);
    }
    // Nothing is started: what would be is noted.
    std::unique_ptr<os::Child> start(const os::StartRequest& request, os::StartError& error) override {
        started.push_back(request);
        if (!startable) error = os::StartError::WontRun;
        if (!startable) return nullptr;
        class Ended : public os::Child {
            os::ExitState poll() override { return {true, 0, 0}; }
            os::ExitState wait(int) override { return {true, 0, 0}; }
            void stop(int) override {}
            [[nodiscard]] int id() const override { return 1; }
        };
        return std::make_unique<Ended>();
    }
    void install(const std::string& where = "postrun.exe") {
        EXPECT_TRUE(os::saveFile(folder / where, "x").ok());
        EXPECT_EQ(RegSaveSetting(Subsystem, "MAPI", "1"), "");
    }
    std::string lastText() { return asked.empty() ? "" : asked.back().text; }
    std::string lastLine() {
        return started.empty() || started.back().arguments.size() != 1 ? "" : started.back().arguments[0];
    }

    TempFolder folder;
    const Variable settings{"XDG_CONFIG_HOME", folder.path()};
    std::vector<platform::Question> asked;
    std::vector<os::StartRequest> started;
    std::string answer;
    bool startable = true;

private:
    std::unique_ptr<platform::View> before_;
    os::Processes* processesBefore_ = nullptr;
};

// ---- texts ----

TEST(UrlEscape, PercentAndLineEndsAlone) {
    EXPECT_EQ(URLESCAPE("50% off\r\nnow"), "50%25 off%0D%0Anow");
    EXPECT_EQ(URLESCAPE("%0A"), "%250A");
    EXPECT_EQ(URLESCAPE("a&b?c d=\"e\"#\xC3\xA9"), "a&b?c d=\"e\"#\xC3\xA9");
    EXPECT_EQ(URLESCAPE(""), "");
}

TEST(ShellErrors, HaveATextForEachCode) {
    const std::pair<int, const char*> texts[] = {
        {0, "The operating system ran out of memory or resources"},
        {2, "The file was not found"},
        {3, "The path was not found"},
        {5, "The operating system denied access to the file"},
        {8, "There was not enough memory to complete the operation"},
        {11, "The .exe file is invalid"},
        {26, "A file sharing violation occurred"},
        {27, "The file name association is incomplete or invalid"},
        {28, "DDE transaction could not be completed because the request timed out"},
        {29, "DDE transaction failed"},
        {30, "DDE transaction was not completed because other DDE transactions are underway"},
        {31, "No application is associated with the extension, or the file cannot be printed"},
        {32, "The DLL was not found"},
        {1, "Other ShellExecute error: 1"},
        {33, "Other ShellExecute error: 33"},
        {-5, "Other ShellExecute error: -5"}};
    for (const auto& [code, text] : texts) EXPECT_EQ(ERRORMESSAGE_SHELLEXECUTE(code), text);
}

// ---- by URL ----

TEST_F(Net, AMailNeedsAnAddress) {
    EMAIL_MAILTO(0, 0, "", "s", "", "b");
    EXPECT_EQ(lastText(), "Cannot send email, no Mailto address was provided.");
    install();
    asked.clear();
    EMAIL_POSTRUN("Desktop", 0, "", "s", "", "b");
    EXPECT_EQ(lastText(), "Cannot send email, no Mailto address was provided.");
    EXPECT_TRUE(started.empty());
}

struct Url {
    const char *subject, *attachment, *body, *url;
};

TEST_F(Net, TheUrlHoldsSubjectAndBody) {
    const Url urls[] = {
        {"", "", "", "mailto:a@b.org"},
        {"s", "", "", "mailto:a@b.org?subject=s"},
        {"", "", "b", "mailto:a@b.org?body=b"},
        {"s", "", "b", "mailto:a@b.org?subject=s&body=b"},
        {"5%\r\n", "", "x & y? z", "mailto:a@b.org?subject=5%25%0D%0A&body=x & y? z"},
        {"", "a b.txt", "", "mailto:a@b.org?body=Please attach a b.txt to this email!"},
        {"s", "a.txt", "b", "mailto:a@b.org?subject=s&body=b"},
        {"$(x);`y`\"", "", "", "mailto:a@b.org?subject=$(x);`y`\""},
    };
    for (const Url& url : urls) {
        EMAIL_MAILTO(0, 0, "a@b.org", url.subject, url.attachment, url.body);
        EXPECT_EQ(platform::lastHeadlessUrl(), url.url);
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(Net, ADesktopWithoutAMailProgramIsTold) {
    const bool had = platform::setHeadlessBrowser(false);
    EMAIL_MAILTO(0, 0, "a@b.org", "s", "", "b");
    platform::setHeadlessBrowser(had);
    EXPECT_EQ(lastText(), "No application is associated with the extension, or the file cannot be printed");
}

// ---- by the helper ----

TEST_F(Net, TheHelperNeedsTheRegistrysWordAndToBeThere) {
    EMAIL_POSTRUN("Desktop", 0, "a@b.org", "", "", "");
    EXPECT_EQ(lastText(), "Cannot send email, MAPI is not installed on this computer.");
    EXPECT_EQ(RegSaveSetting(Subsystem, "MAPIX", "1"), "");
    EMAIL_POSTRUN("Desktop", 0, "a@b.org", "", "", "");
    EXPECT_EQ(lastText(), "Cannot send email, postrun.exe is not installed on this computer.");
    EXPECT_TRUE(started.empty());
}

TEST_F(Net, EitherValueOfTheRegistryCounts) {
    EXPECT_FALSE(ISMAPIINSTALLED());
    for (const char* value : {"0", "", "2", "yes", "01"}) {
        EXPECT_EQ(RegSaveSetting(Subsystem, "MAPI", value), "");
        EXPECT_FALSE(ISMAPIINSTALLED()) << value;
    }
    EXPECT_EQ(RegSaveSetting(Subsystem, "MAPIX", "1"), "");
    EXPECT_TRUE(ISMAPIINSTALLED());
    EXPECT_EQ(RegSaveSetting(Subsystem, "MAPIX", "0"), "");
    EXPECT_EQ(RegSaveSetting(Subsystem, "MAPI", "1"), "");
    EXPECT_TRUE(ISMAPIINSTALLED());
}

struct Line {
    const char *provider, *subject, *attachment, *body, *line;
};

TEST_F(Net, TheCommandLineHasItsPartsInOrder) {
    install();
    const Line lines[] = {
        {"Desktop", "", "", "", "-provider \"Desktop\" -flags 7 -mailto a@b.org "},
        {"Desktop", "s", "f.txt", "b",
         "-provider \"Desktop\" -flags 7 -mailto a@b.org -body \"b\" -subject \"s\" -attach \"f.txt\" "},
        {"Desktop", "", "f.txt", "",
         "-provider \"Desktop\" -flags 7 -mailto a@b.org -body \"Please attach f.txt to this email!\" "
         "-attach \"f.txt\" "},
        {"Desktop", "", "", "a\tb\r\n\"c\" \\ \x01\xC3\xA9",
         "-provider \"Desktop\" -flags 7 -mailto a@b.org -body \"a\\tb\\r\\n\\\"c\\\" \\\\ "
         "\\x01\\xC3\\xA9\" "},
        {"Hotmail", "s", "f.txt", "b",
         "-provider \"Hotmail\" -flags 7 -mailto a@b.org -body \"Please attach f.txt to this email!\" "
         "-subject \"s\" "},
        {"hotmail", "", "", "b", "-provider \"hotmail\" -flags 7 -mailto a@b.org "},
        {"A \"B\"", "say \"x\"", "", "",
         "-provider \"A \"\"B\"\"\" -flags 7 -mailto a@b.org -subject \"say \"\"x\"\"\" "},
    };
    for (const Line& line : lines) {
        EMAIL_POSTRUN(line.provider, 7, "a@b.org", line.subject, line.attachment, line.body);
        EXPECT_EQ(lastLine(), line.line);
        ASSERT_FALSE(started.empty());
        EXPECT_EQ(started.back().program, folder / "postrun.exe");
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(Net, WithoutAProviderTheUserChoosesOne) {
    install();
    for (const char* name : {"First", "Second", "None"})
        EXPECT_EQ(RegSaveSetting("Software\\Clients\\Mail\\" + std::string(name), "", name), "");
    EXPECT_EQ(RegSaveSetting("Software\\Clients\\Mail\\First", "DLLPath", "a"), "");
    EXPECT_EQ(RegSaveSetting("Software\\Clients\\Mail\\Second", "DLLPathEx", "b"), "");
    EXPECT_EQ(MAPIPROVIDERS(), "First\nSecond");
    EMAIL_POSTRUN("", 0, "a@b.org", "", "", "");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Choose Email program");
    EXPECT_EQ(asked[0].rows, (std::vector<std::string>{"First", "Second"}));
    EXPECT_TRUE(started.empty()) << "the user has left the question";
    answer = "Second";
    EMAIL_POSTRUN("", 0, "a@b.org", "", "", "");
    EXPECT_EQ(lastLine(), "-provider \"Second\" -flags 0 -mailto a@b.org ");
}

TEST_F(Net, TheHelperMayLieBesideTheProgram) {
    install();
    std::filesystem::create_directory(folder / "elsewhere");
    std::filesystem::current_path(folder / "elsewhere");
    EMAIL_POSTRUN("Desktop", 0, "a@b.org", "", "", "");
    ASSERT_EQ(started.size(), 1U);
    EXPECT_EQ(started[0].program, folder / "postrun.exe");
    install("elsewhere/postrun.exe");
    EMAIL_POSTRUN("Desktop", 0, "a@b.org", "", "", "");
    EXPECT_EQ(started.back().program, folder / "elsewhere/postrun.exe");
}

TEST_F(Net, AHelperThatCannotBeStartedIsTold) {
    install();
    startable = false;
    EMAIL_POSTRUN("Desktop", 0, "a@b.org", "", "", "");
    EXPECT_EQ(lastText(), "Cannot send email, postrun.exe is not installed on this computer.");
}

TEST_F(Net, NoTextBecomesAnOption) {
    install();
    const std::string hostile[] = {"\" -attach \"/etc/passwd",
                                   "\\\" -attach \\\"/etc/passwd",
                                   "x\n-attach y",
                                   "$(touch x); `touch y` | z",
                                   "-attach",
                                   "a b c",
                                   "\\",
                                   "\"",
                                   "\"\"",
                                   "\\\"",
                                   "\\x22 -attach",
                                   "\r\n",
                                   "' -attach '",
                                   "\xFF\xC3"};
    for (const std::string& text : hostile) {
        EMAIL_POSTRUN(text, 1, text, text, text, text);
        PostrunMail mail;
        ASSERT_EQ(PARSEPOSTRUNLINE(lastLine(), mail), "") << text;
        EXPECT_EQ(mail, (PostrunMail{text, 1, text, text, text, text}));
    }
}

// ---- the desktop as a provider ----

TEST_F(Net, TheDesktopIsEnteredWhereItTakesMail) {
    const Variable path("PATH", folder.path());
    PREPAREMAIL();
    EXPECT_FALSE(ISMAPIINSTALLED());
    EXPECT_TRUE(os::saveFile(folder / "xdg-email", "#!/bin/sh\n").ok());
    PREPAREMAIL();
    EXPECT_TRUE(ISMAPIINSTALLED());
    EXPECT_EQ(MAPIPROVIDERS(), "Desktop");
}

TEST_F(Net, WhatTheUserHasSaidOfMailStays) {
    const Variable path("PATH", folder.path());
    EXPECT_TRUE(os::saveFile(folder / "xdg-email", "#!/bin/sh\n").ok());
    EXPECT_EQ(RegSaveSetting(Subsystem, "MAPI", "0"), "");
    PREPAREMAIL();
    EXPECT_FALSE(ISMAPIINSTALLED());
    EXPECT_EQ(MAPIPROVIDERS(), "");
}

// ---- the helper's own reading ----

TEST(PostrunLine, IsReadAsItIsWritten) {
    std::mt19937 random(5);
    const auto text = [&](bool noNul) {
        static constexpr std::string_view odd = "\"\\ -nrtx\n\r\tmailto1234";
        std::string out;
        for (auto n = random() % 12; n > 0; n--) {
            const auto any = static_cast<char>(random() % 255 + 1);
            out += random() % 3 == 0 ? any : odd[random() % odd.size()];
        }
        if (!noNul && random() % 4 == 0) out += '\0';
        return out;
    };
    for (int round = 0; round < 5000; round++) {
        const PostrunMail mail{
            text(true), static_cast<int>(random()), "a" + text(true), text(false), text(true), text(true)};
        PostrunMail again;
        ASSERT_EQ(PARSEPOSTRUNLINE(POSTRUNLINE(mail), again), "") << POSTRUNLINE(mail);
        EXPECT_EQ(again, mail) << POSTRUNLINE(mail);
    }
}

TEST(PostrunLine, HasItsOptionsInAnyOrder) {
    PostrunMail mail;
    EXPECT_EQ(PARSEPOSTRUNLINE(" -subject s\t-mailto \"a b@c\" -flags -3", mail), "");
    EXPECT_EQ(mail, (PostrunMail{"", -3, "a b@c", "", "s", ""}));
}

TEST(PostrunLine, WhatIsWrongIsSaid) {
    const std::pair<const char*, const char*> lines[] = {
        {"", "An address is needed: -mailto and the address."},
        {"-provider \"x\" -flags 0 ", "An address is needed: -mailto and the address."},
        {"-mailto a -cc b", "'-cc' is no option."},
        {"-mailto a b", "'b' is no option."},
        {"a@b.org", "'a@b.org' is no option."},
        {"-MAILTO a", "'-MAILTO' is no option."},
        {"-mailto a -mailto b", "The option '-mailto' stands there twice."},
        {"-mailto", "What stands behind '-mailto' cannot be read."},
        {"-mailto \"a", "What stands behind '-mailto' cannot be read."},
        {"-mailto a\"b", "What stands behind '-mailto' cannot be read."},
        {"-mailto \"a\"b", "What stands behind '-mailto' cannot be read."},
        {"-flags x -mailto a", "What stands behind '-flags' cannot be read."},
        {"-flags 99999999999 -mailto a", "What stands behind '-flags' cannot be read."},
        {"-mailto a -body b", "What stands behind '-body' cannot be read."},
        {"-mailto a -body \"b", "What stands behind '-body' cannot be read."},
        {"-mailto a -body \"b\\\"", "What stands behind '-body' cannot be read."},
        {"-mailto a -body \"b\\q\"", "What stands behind '-body' cannot be read."},
        {"-mailto a -body \"b\\x1\"", "What stands behind '-body' cannot be read."},
        {"-mailto a -body \"b\"c", "What stands behind '-body' cannot be read."},
        {"-mailto a -attach", "What stands behind '-attach' cannot be read."},
    };
    for (const auto& [line, problem] : lines) {
        PostrunMail mail;
        EXPECT_EQ(PARSEPOSTRUNLINE(line, mail), problem) << line;
    }
}

TEST(PostrunLine, BecomesArgumentsThatNoTextCanEscape) {
    const PostrunMail mail{"Desktop",       0,          "--attach=/x?cc=y&a b@c.org",
                           "--body\n\"x\"", "-s\r\n-t", "-a b;$c"};
    EXPECT_EQ(
        XDGEMAILARGUMENTS(mail),
        (std::vector<std::string>{"--utf8", "--subject", "-s  -t", "--body", "--body\n\"x\"", "--attach",
                                  "-a b;$c", "mailto:--attach%3D%2Fx%3Fcc%3Dy%26a%20b@c.org"}));
    EXPECT_EQ(XDGEMAILARGUMENTS({"", 0, "a@b.org", "", "", ""}),
              (std::vector<std::string>{"--utf8", "mailto:a@b.org"}));
}

// ---- the helper itself, with an xdg-email that notes its arguments ----

class Postrun : public ::testing::Test {
protected:
    void SetUp() override {
        put("xdg-email", "#!/bin/sh\nfor a; do printf '%s\\0' \"$a\"; done > '" + (folder / "noted.tmp") +
                             "'\nmv '" + (folder / "noted.tmp") + "' '" + (folder / "noted") + "'\n");
        chmod((folder / "xdg-email").c_str(), 0755);
    }
    std::string put(const std::string& name, const std::string& bytes) {
        EXPECT_TRUE(os::saveFile(folder / name, bytes).ok());
        return folder / name;
    }
    std::string read(const std::string& name) {
        std::string bytes;
        os::readFile(folder / name, bytes);
        return bytes;
    }
    int run(const std::vector<std::string>& arguments) {
        os::StartError error{};
        const auto child = os::processes().start(
            {BINARY_DIR "/postrun.exe", arguments, folder.path(), folder / "said"}, error);
        if (child == nullptr) return -1;
        const os::ExitState state = child->wait(20000);
        return state.signal != 0 ? 128 + state.signal : state.code;
    }
    // What xdg-email was called with, once it has noted it.
    std::string noted() {
        for (int i = 0; i < 200 && os::sizeOf(folder / "noted") < 0; i++) usleep(20000);
        return STRREPLACE(read("noted"), std::string(1, '\0'), "|");
    }

    TempFolder folder;
    const Variable path{"PATH", folder.path() + ":/usr/bin:/bin"};
    const Variable display{"DISPLAY", nullptr};
    const Variable wayland{"WAYLAND_DISPLAY", nullptr};
};

TEST_F(Postrun, HandsTheMailToTheDesktop) {
    const std::string file = put("a b.txt", "x");
    EXPECT_EQ(run({POSTRUNLINE({"Desktop", 0, "a@b.org", "one\ntwo \"three\"", "$(x); `y`", file})}), 0)
        << read("said");
    EXPECT_EQ(noted(),
              "--utf8|--subject|$(x); `y`|--body|one\ntwo \"three\"|--attach|" + file + "|mailto:a@b.org|");
    EXPECT_EQ(read("said"), "");
}

TEST_F(Postrun, SaysWhatIsWrong) {
    EXPECT_EQ(run({}), 2);
    EXPECT_EQ(read("said"), "postrun: One argument is needed: the line with the options of the mail.\n");
    EXPECT_EQ(run({"-mailto", "a@b.org"}), 2);
    EXPECT_EQ(run({"-mailto a@b.org -x y"}), 2);
    EXPECT_EQ(read("said"), "postrun: '-x' is no option.\n");
    EXPECT_EQ(run({"-mailto a@b.org -attach \"none.txt\" "}), 1);
    EXPECT_EQ(read("said"), "postrun: The file to attach was not found: none.txt\n");
    std::filesystem::remove(folder / "xdg-email");
    EXPECT_EQ(run({"-mailto a@b.org"}), 1);
    EXPECT_EQ(read("said"), "postrun: The mail program of the desktop could not be started (xdg-email).\n");
    EXPECT_LT(os::sizeOf(folder / "noted"), 0);
}

}  // namespace
}  // namespace tarn
