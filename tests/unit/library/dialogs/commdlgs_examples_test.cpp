// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/commdlgs_examples.h"

#include "library/system/system.h"
#include "os/files.h"
#include "support/places.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarn {
namespace {

TEST(Placeholders, AreReplacedByTheirFolders) {
    const PlaceholderFolders folders{"/res/", "/compiler/"};
    const struct {
        const char *text, *result;
    } cases[] = {
        {"", ""},
        {"a.bmp", "a.bmp"},
        {"<RESOURCEDIR>\\a.bmp", "/res/a.bmp"},
        {"{RESOURCEDIR}\\a.bmp", "/res/a.bmp"},
        {"<COMPILERDIR>\\a.bmp", "/compiler/a.bmp"},
        {"{COMPILERDIR}\\a.bmp", "/compiler/a.bmp"},
        {"<RESOURCEDIR>/a.bmp", "/res/a.bmp"},
        {"<resourcedir>\\a.bmp", "/res/a.bmp"},
        {"see <RESOURCEDIR>\\a and {COMPILERDIR}\\b", "see /res/a and /compiler/b"},
        {"<RESOURCEDIR>a.bmp", "<RESOURCEDIR>a.bmp"},      // without a separator it is none
        {"<RESOURCEDIR}\\a.bmp", "<RESOURCEDIR}\\a.bmp"},  // brackets that do not belong together
        {"<OTHER>\\a.bmp", "<OTHER>\\a.bmp"},
        {"<RESOURCEDIR>", "<RESOURCEDIR>"},
        {"<", "<"},
        {"<<RESOURCEDIR>\\", "</res/"},
    };
    for (const auto& one : cases) EXPECT_EQ(FILERESOLVEPATHS(one.text, folders), one.result) << one.text;
    EXPECT_EQ(FILERESOLVEPATHS("<RESOURCEDIR>\\a", {"", "/c/"}), "<RESOURCEDIR>\\a")
        << "a folder that is not known";
}

TEST(Placeholders, StandForTheLongerFolderFirst) {
    EXPECT_EQ(FILEUNRESOLVEPATHS("/t/res/a.bmp", {"/t/res/", "/t/"}), "<RESOURCEDIR>\\a.bmp");
    EXPECT_EQ(FILEUNRESOLVEPATHS("/t/res/a.bmp", {"/t/", "/t/res/"}), "<COMPILERDIR>\\a.bmp");
    EXPECT_EQ(FILEUNRESOLVEPATHS("/t/other/a.bmp", {"/t/res/", "/t/"}), "<COMPILERDIR>\\other/a.bmp");
    EXPECT_EQ(FILEUNRESOLVEPATHS("/else/a.bmp", {"/t/res/", "/t/"}), "/else/a.bmp");
    EXPECT_EQ(FILEUNRESOLVEPATHS("see /t/a.bmp", {"/t/", ""}), "see /t/a.bmp")
        << "only where the path begins with it";
    EXPECT_EQ(FILEUNRESOLVEPATHS("", {"", ""}), "");
    const PlaceholderFolders folders{"/t/res/", "/t/"};
    EXPECT_EQ(FILERESOLVEPATHS(FILEUNRESOLVEPATHS("/t/res/x y/a.bmp", folders), folders), "/t/res/x y/a.bmp");
}

TEST(MainFile, IsTheMarkedOneOrTheOnlyOne) {
    const struct {
        const char *files, *main;
    } cases[] = {
        {"", ""},
        {"a.cls", "a.cls"},
        {"a.cls\n", "a.cls"},
        {"a.cls\n*b.cls\nc.cls", "b.cls"},
        {"*a.cls", "a.cls"},
        {"a.cls\nb.cls", ""},
        {" * a.cls \r\nb.cls", "a.cls"},
        {"\n\na.cls\n\n", "a.cls"},
        {"*a.cls\n*b.cls", "a.cls"},
    };
    for (const auto& one : cases) EXPECT_EQ(GETMAINFILEFROMLIST(one.files), one.main) << one.files;
}

class ExampleText : public ::testing::Test {
protected:
    ExampleFields fields(std::string_view readme) {
        std::filesystem::create_directory(folder / "one");
        EXPECT_TRUE(os::saveFile(folder / "one/readme.txt", readme, os::Durability::Unsynced).ok());
        ClearError();
        const ExampleFields read = SETEXAMPLEFIELDS(folder / "one/readme.txt", {"/res/", "/compiler/"});
        EXPECT_EQ(ErrorCell(), 0);
        return read;
    }
    TempFolder folder;
};

TEST_F(ExampleText, IsAnXmlDataFileOfFourFields) {
    const ExampleFields read =
        fields("<?xml version=\"1.0\"?>\n<data type=\"record\">\n<title type=\"string\">One &amp; two"
               "</title>\n<description type=\"string\">first\n\nsecond {COMPILERDIR}\\x"
               "</description>\n<picture type=\"string\">&lt;RESOURCEDIR&gt;\\one.svg</picture>\n"
               "<files type=\"string\">*a.cls\nb.cls</files>\n</data>\n");
    EXPECT_EQ(read.title, "One & two");
    EXPECT_EQ(read.description, "first\n\nsecond /compiler/x");
    EXPECT_EQ(read.picture, "/res/one.svg");
    EXPECT_EQ(GETMAINFILEFROMLIST(read.files), "a.cls");
}

TEST_F(ExampleText, MayLackFieldsAndItsPictureLiesBesideIt) {
    const ExampleFields read =
        fields("<?xml version=\"1.0\"?><data type=\"record\"><title type=\"string\">T</title>"
               "<description type=\"string\">D</description><picture type=\"string\">p.svg"
               "</picture></data>");
    EXPECT_EQ(read.title, "T");
    EXPECT_EQ(read.picture, folder / "one/p.svg");
    EXPECT_EQ(read.files, "");
}

TEST_F(ExampleText, OfAnotherFormIsShownAsItIs) {
    for (const std::string text : {"Just words.\n", "<a>half", "", "a < b", "\x01\xFF"}) {
        const ExampleFields read = fields(text);
        EXPECT_EQ(read.title, "one") << text;
        EXPECT_EQ(read.description, text);
        EXPECT_EQ(read.picture, "");
    }
    EXPECT_EQ(fields(std::string(70000, 'x')).description, "") << "too much for a window";
}

TEST_F(ExampleText, OfEveryInstalledExampleNamesFilesThatAreThere) {
    int count = 0;
    for (const auto& one : std::filesystem::directory_iterator(SOURCE_DIR "/examples")) {
        if (!one.is_directory()) continue;
        const std::string at = one.path().string() + "/";
        const ExampleFields read = SETEXAMPLEFIELDS(at + "readme.txt", {});
        EXPECT_NE(read.title, one.path().filename().string()) << "it has a title of its own";
        EXPECT_TRUE(os::infoOf(read.picture).exists) << read.picture;
        EXPECT_TRUE(os::infoOf(at + GETMAINFILEFROMLIST(read.files)).exists) << read.files;
        for (int i = 1; i <= STRLINES(read.files + "\n"); i++)
            EXPECT_TRUE(os::infoOf(at + STRREPLACE(STRLINE(read.files + "\n", i), "*", "")).exists)
                << at << i;
        ++count;
    }
    EXPECT_EQ(count, 6);
}

}  // namespace
}  // namespace tarn
