// SPDX-License-Identifier: Apache-2.0
//
// The library through the C interface of compiled programs.
#include "kernel/api/api.h"
#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"
#include "os/process.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

#include <string>

namespace tarn {
namespace {

class Text {
public:
    explicit Text(std::string_view value = {}, std::int32_t maxlength = UNBOUNDED) {
        StringInit(&descriptor(), maxlength);
        StringAssignView(&descriptor(), value);
    }
    ~Text() { StringFree(&descriptor()); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    operator tarn_string*() { return &value_; }
    std::string str() { return std::string(StringView(&descriptor())); }

private:
    StringDescriptor& descriptor() { return reinterpret_cast<StringDescriptor&>(value_); }
    tarn_string value_;
};

class Api : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override { ClearError(); }
    int takeError() {
        const int code = ErrorCell();
        ClearError();
        return code;
    }
};

TEST_F(Api, NumbersAndCharactersConvert) {
    Text result;
    tarn_sys_str_integer(-12, result);
    EXPECT_EQ(result.str(), "-12");
    tarn_sys_str_boolean(7, result);
    EXPECT_EQ(result.str(), "True");
    tarn_sys_str_boolean(0, result);
    EXPECT_EQ(result.str(), "False");
    tarn_sys_chr(65, result);
    EXPECT_EQ(result.str(), "A");
    EXPECT_EQ(tarn_sys_ord(result), 65);
    tarn_sys_chr(0xE4, result);
    EXPECT_EQ(tarn_sys_ord(result), 0xE4);
    Text empty;
    EXPECT_EQ(tarn_sys_ord(empty), 0);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Api, ATextThatIsNoNumberSets983) {
    for (const char* good : {"12", "-12", "+0", "NULL", "2147483647", " 12 "}) {
        Text text(good);
        tarn_sys_cvti(text);
        EXPECT_EQ(takeError(), 0) << good;
    }
    for (const char* bad : {"", "x", "1 2", "1.5", "null", "2147483648"}) {
        Text text(bad);
        EXPECT_EQ(tarn_sys_cvti(text), 0) << bad;
        EXPECT_EQ(takeError(), 983) << bad;
    }
    Text number("-12");
    EXPECT_EQ(tarn_sys_cvti(number), -12);
    EXPECT_EQ(tarn_sys_cvti(nullptr), 0);
    EXPECT_EQ(takeError(), 756);
}

TEST_F(Api, StringsAreCutAndChangedAlsoInPlace) {
    Text text("  Abc  "), result, what("B"), with("xx");
    tarn_sys_strtrim(text, text);
    EXPECT_EQ(text.str(), "Abc");
    EXPECT_EQ(tarn_sys_strfind(text, what, 1, 1), 2);
    EXPECT_EQ(tarn_sys_strfind(text, what, 1, 0), 0);
    tarn_sys_strreplace(what, with, 1, text);
    EXPECT_EQ(text.str(), "Axxc");
    tarn_sys_strupper(text, result);
    EXPECT_EQ(result.str(), "AXXC");
    tarn_sys_strlower(result, result);
    EXPECT_EQ(result.str(), "axxc");
    tarn_sys_strleft(text, 1, result);
    EXPECT_EQ(result.str(), "A");
    tarn_sys_strright(text, 2, result);
    EXPECT_EQ(result.str(), "xc");
    Text left(" a "), right(" a ");
    tarn_sys_strltrim(left, left);
    tarn_sys_strrtrim(right, right);
    EXPECT_EQ(left.str(), "a ");
    EXPECT_EQ(right.str(), " a");
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Api, TheMiddleOfAStringIsClipped) {
    struct Case {
        int position, count;
        const char* result;
    };
    for (const Case& c : {Case{1, 2, "ab"}, Case{2, 9, "bc"}, Case{3, 1, "c"}, Case{4, 1, ""}, Case{0, 2, ""},
                          Case{-1, 2, ""}, Case{1, 0, ""}, Case{1, -1, ""}, Case{1, 2147483647, "abc"}}) {
        Text text("abc"), result("old");
        tarn_sys_strmid(text, c.position, c.count, result);
        EXPECT_EQ(result.str(), c.result) << c.position << " " << c.count;
    }
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Api, LinesAndRunsOfCharacters) {
    Text text("a\r\nb\n"), result;
    EXPECT_EQ(tarn_sys_strlines(text), 2);
    tarn_sys_strline(text, 1, result);
    EXPECT_EQ(result.str(), "a");
    tarn_sys_strline(text, 3, result);
    EXPECT_EQ(result.str(), "");
    tarn_sys_strmake(3, '-', result);
    EXPECT_EQ(result.str(), "---");
    EXPECT_EQ(takeError(), 0);
    tarn_sys_strmake(2147483647, '-', result);
    EXPECT_EQ(takeError(), 804);
}

TEST_F(Api, FilesAreLoadedSavedAndMeasured) {
    os::SteeredFiles files;
    os::Steered steered(files);
    files.putFolder("/a");
    Text file("/a/x"), value("bytes\r\n"), result;
    EXPECT_EQ(tarn_sys_filesize(file), -1);
    tarn_sys_savefile(file, value);
    EXPECT_EQ(files.contents("/a/x"), "bytes\r\n");
    EXPECT_EQ(tarn_sys_filesize(file), 7);
    tarn_sys_loadfile(file, result);
    EXPECT_EQ(result.str(), "bytes\r\n");
    EXPECT_EQ(takeError(), 0);
    Text none("/a/none");
    tarn_sys_loadfile(none, result);
    EXPECT_EQ(result.str(), "");
    EXPECT_EQ(takeError(), 651);
    files.failAlways(os::FileCall::Write, os::FileError::DiskFull);
    tarn_sys_savefile(file, result);
    EXPECT_EQ(takeError(), 654);
    EXPECT_EQ(files.contents("/a/x"), "bytes\r\n");
}

TEST_F(Api, ArgumentsWithBlanksAreQuoted) {
    const std::vector<std::string> before = os::commandLine();
    std::string words[] = {"program", "a b", "c", ""};
    char* pointers[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data(), nullptr};
    os::setCommandLine(4, pointers);
    Text result;
    tarn_sys_arguments(result);
    EXPECT_EQ(result.str(), "\"a b\" c \"\"");
    std::vector<std::string> restored{"library_test"};
    restored.insert(restored.end(), before.begin(), before.end());
    std::vector<char*> arguments;
    for (std::string& argument : restored) arguments.push_back(argument.data());
    os::setCommandLine(static_cast<int>(arguments.size()), arguments.data());
    EXPECT_EQ(os::commandLine(), before);
}

TEST_F(Api, DetailsAreThoseOfTheErrorThatIsPendingOrWasTheLast) {
    Text result;
    SetError(654);
    tarn_sys_errordetails(result);
    EXPECT_TRUE(result.str().starts_with("Disk drive full up\n")) << result.str();
    ContinueAfterError();
    tarn_sys_errordetails(result);
    EXPECT_EQ(result.str(), "Disk drive full up");
    tarn_clear_error();
    tarn_sys_errordetails(result);
    EXPECT_EQ(result.str(), "");
}

TEST_F(Api, MessagesAndLinesComeOut) {
    Text result, line("hello");
    tarn_sys_errormessage(654, result);
    EXPECT_EQ(result.str(), "Disk drive full up");
    ::testing::internal::CaptureStdout();
    tarn_sys_print(line);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "hello\n");
}

TEST_F(Api, AMissingDescriptorIsAnErrorAndNoCrash) {
    EXPECT_EQ(tarn_sys_ord(nullptr), 0);
    EXPECT_EQ(takeError(), 756);
    Text text("x");
    tarn_sys_strtrim(text, nullptr);
    EXPECT_EQ(takeError(), 756);
}

}  // namespace
}  // namespace tarn
