// SPDX-License-Identifier: Apache-2.0
//
// Version blocks: from fields to text and back, and in resource files.
#include "library/dialogs/versioninfo.h"

#include "kernel/run/runtime.h"
#include "kernel/windows/resources.h"
#include "library/system/system.h"
#include "os/files.h"
#include "platform/model/view.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

const VersionFields full{"None", "Ann & Co.", "(c) Ann", "Boo (TM)", "Shelf", "Keeps books", "4 5 6 7"};

constexpr const char* block = "MyInfo VERSIONINFO\n"
                              "    FILEVERSION 4,5,6,7\n"
                              "    PRODUCTVERSION 4,5,6,7\n"
                              "    FILEFLAGSMASK 0x3f\n"
                              "    FILEFLAGS 0x0\n"
                              "    FILEOS 0x10004\n"
                              "    FILETYPE 0x1\n"
                              "    FILESUBTYPE 0x0\n"
                              "BEGIN\n"
                              "    BLOCK \"StringFileInfo\"\n"
                              "    BEGIN\n"
                              "        BLOCK \"080904b0\"\n"
                              "        BEGIN\n"
                              "            VALUE \"Comments\", \"None\\0\"\n"
                              "            VALUE \"CompanyName\", \"Ann & Co.\\0\"\n"
                              "            VALUE \"FileDescription\", \"Keeps books\\0\"\n"
                              "            VALUE \"FileVersion\", \"4.5.6.7\\0\"\n"
                              "            VALUE \"InternalName\", \"shelf\\0\"\n"
                              "            VALUE \"LegalCopyright\", \"(c) Ann\\0\"\n"
                              "            VALUE \"LegalTrademarks\", \"Boo (TM)\\0\"\n"
                              "            VALUE \"OriginalFilename\", \"shelf\\0\"\n"
                              "            VALUE \"ProductName\", \"Shelf\\0\"\n"
                              "            VALUE \"ProductVersion\", \"4.5.6.7\\0\"\n"
                              "        END\n"
                              "    END\n"
                              "    BLOCK \"VarFileInfo\"\n"
                              "    BEGIN\n"
                              "        VALUE \"Translation\", 0x809, 1200\n"
                              "    END\n"
                              "END\n";

TEST(VersionInfo, FieldsAreWrittenAsABlock) {
    EXPECT_EQ(FIELDSTOVERSIONINFO("MyInfo", full, "shelf"), block);
}

TEST(VersionInfo, ABlockGivesItsFields) {
    EXPECT_EQ(VERSIONINFOTOFIELDS(block), full);
}

TEST(VersionInfo, TheBlockOfANewProgram) {
    const std::string text = GETDEFAULTVERSIONINFO("app1");
    EXPECT_TRUE(text.starts_with("VS_VERSION_INFO VERSIONINFO\n    FILEVERSION 1,3,2207,0\n"
                                 "    PRODUCTVERSION 1,3,2207,0\n"))
        << text;
    EXPECT_NE(text.find("        BEGIN\n"
                        "            VALUE \"CompanyName\", \"\\0\"\n"
                        "            VALUE \"FileDescription\", \"Created by Tarnwick 1.3\\0\"\n"
                        "            VALUE \"FileVersion\", \"1.3.2207.0\\0\"\n"
                        "            VALUE \"InternalName\", \"app1\\0\"\n"
                        "            VALUE \"OriginalFilename\", \"app1\\0\"\n"
                        "            VALUE \"ProductName\", \"app1 Application\\0\"\n"
                        "            VALUE \"ProductVersion\", \"1.3.2207.0\\0\"\n"
                        "        END\n"),
              std::string::npos)
        << text;
    for (const char* const none : {"Comments", "LegalCopyright", "LegalTrademarks"})
        EXPECT_EQ(text.find(none), std::string::npos) << none;
    const VersionFields fields = VERSIONINFOTOFIELDS(text);
    EXPECT_EQ(fields,
              (VersionFields{"", "", "", "", "app1 Application", "Created by Tarnwick 1.3", "1 3 2207 0"}));
}

TEST(VersionInfo, LinesOfAnyFormAreRead) {
    const struct {
        const char* text;
        VersionFields fields;
    } table[] = {
        {"", {}},
        {"value \"companyname\" , \"x\"", {.company = "x"}},
        {"VALUE \"CompanyName\", \"a\\0\\0\"", {.company = "a\\0"}},
        {"VALUE \"CompanyName\", x", {.company = "x"}},
        {"VALUE \"CompanyName\",", {}},
        {"VALUE CompanyName, \"x\\0\"", {}},
        {"VALUES \"CompanyName\", \"x\\0\"", {}},
        {"VALUE \"CompanyName\", \"not ended", {}},
        {"\tVALUE \"Comments\", \"\\0\"\r\n", {}},
        {"VALUE \"FileVersion\", \"9.9.9.9\\0\"", {}},
        {"  fileversion 1, 2 ,3,4", {.version = "1 2 3 4"}},
        {"FILEVERSION 1,2,3\n", {.version = "1 2 3"}},
        {"FILEVERSION", {}},
        {"PRODUCTVERSION 1,2,3,4\nFILEFLAGS 0x0", {}},
        {"FILEVERSION 1,0,0,0 BEGIN", {.version = "1 0 0 0"}},
        {"FILEVERSION 1,0,0,0 PRODUCTVERSION 2,0,0,0", {.version = "1 0 0 0"}},
        {"PRODUCTVERSION 2,0,0,0 FILEVERSION 1,0,0,0", {.version = "1 0 0 0"}},
        {"FILEVERSION 1,2,\n 3,4\nFILEOS 4", {.version = "1 2 3 4"}},
        {"FILEVERSION MAJOR, MINOR // of the head", {.version = "MAJOR MINOR"}},
        {"FILEVERSION VERSIONINFO FILEVERSION 1,2,3,4 { }", {.version = "1 2 3 4"}},
        {"1 VERSIONINFO { VALUE \"Comments\", \"x\\0\" VALUE \"CompanyName\", \"y\" }",
         {.comments = "x", .company = "y"}},
        {"VALUE \"CompanyName\", \"Ann \\\"X\\\" Co\\0\"", {.company = "Ann \"X\" Co"}},
        {"VALUE \"CompanyName\", \"Ann \"\"X\"\" Co\\0\"", {.company = "Ann \"X\" Co"}},
        {"VALUE \"CompanyName\", \"C:\\new\\\\\"", {.company = "C:\\new\\"}},
        {"VALUE \"CompanyName\",\n\t\"x\\0\"\nVALUE \"Comments\", \"y\"", {.comments = "y", .company = "x"}},
        {"VALUE \"CompanyName\", // next\n\"x\"", {.company = "x"}},
        {"VALUE \"CompanyName\",\nEND", {}},
        {"VALUE \"CompanyName\", \"not ended\n\"x\"", {}},
        {"VALUE \"ProductName\", \"one\\0\"\nVALUE \"ProductName\", \"two\\0\"", {.product = "two"}},
    };
    for (const auto& row : table) EXPECT_EQ(VERSIONINFOTOFIELDS(row.text), row.fields) << row.text;
}

TEST(VersionInfo, MissingNumbersAreZero) {
    for (const auto& [version, numbers] : {std::pair{"", "0,0,0,0"},
                                           {"1", "1,0,0,0"},
                                           {"1 2 3", "1,2,3,0"},
                                           {" 1  2 3 4 ", "1,2,3,4"},
                                           {"1 2 3 4 5", "1,2,3,4"}}) {
        const std::string text = FIELDSTOVERSIONINFO("V", {.version = version}, "a");
        EXPECT_NE(text.find("    FILEVERSION " + std::string(numbers) + "\n"), std::string::npos) << version;
    }
}

TEST(VersionInfo, AnyTextComesBackFromAFile) {
    const TempFolder folder;
    std::unique_ptr<platform::View> before = platform::useView(platform::makeHeadlessView());
    const std::string main = folder / "a.cls", rc = folder / "a.rc";
    ASSERT_TRUE(os::saveFile(main, "Class a").ok());
    for (const char* const text :
         {"plain", "\"quoted\"", "a \" b", "\\", "C:\\new\\", "END", "// no comment", "BEGIN",
          "\xC3\xA4 \xE4 \x80", "a, b", "", " blanks ", "\"", "\\0", "\"\"", "\\\""}) {
        const VersionFields fields{text, text, text, text, text, text, "1 2 3 4"};
        EXPECT_TRUE(SAVEVERSIONINFO(main, "Info", fields)) << text;
        const LoadedVersion loaded = LOADVERSIONINFO(main, "Info");
        EXPECT_TRUE(loaded.ok && loaded.found) << text;
        EXPECT_EQ(loaded.fields, fields) << text;
        EXPECT_EQ(ResourceInfo(rc, "VERSIONINFO", "*").error, "") << text;
    }
    EXPECT_EQ(VERSIONINFOTOFIELDS(FIELDSTOVERSIONINFO("V", {.comments = "a\tb\nc"}, "a")).comments, "a b c");
    platform::useView(std::move(before));
}

TEST(VersionInfo, ATrailingNullIsTakenOff) {
    for (const auto& [text, result] : {std::pair{"a\\0", "a"},
                                       {"a", "a"},
                                       {"\\0", ""},
                                       {"", ""},
                                       {"0", "0"},
                                       {"a\\0\\0", "a\\0"},
                                       {"\\0a", "\\0a"}})
        EXPECT_EQ(REMOVETRAILINGNULL(text), result) << text;
}

// ---- messages ----

class VersionFile : public testing::Test {
protected:
    TempFolder folder;
    std::vector<std::string> told;
    std::unique_ptr<platform::View> before;
    void SetUp() override {
        before = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            told.push_back(question.title + ": " + question.text);
            return std::string();
        }));
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        platform::useView(std::move(before));
    }
    std::string write(const char* name, std::string_view text) {
        EXPECT_TRUE(os::saveFile(folder / name, text).ok());
        return folder / name;
    }
};

TEST_F(VersionFile, WithoutAMainFileThereAreNone) {
    for (const std::string& file : {std::string(), folder / "none.cls"}) {
        told.clear();
        EXPECT_FALSE(LOADVERSIONINFO(file, "Info").ok);
        EXPECT_FALSE(SAVEVERSIONINFO(file, "Info", full));
        ASSERT_EQ(told.size(), 2U);
        EXPECT_EQ(told[0], "Program Properties: The Program Properties are not available because there is no "
                           "main file.\nOpen a file in the program window then try again.");
        EXPECT_EQ(told[1], "Program Properties: The Program Properties cannot be updated because there is no "
                           "main file.\nOpen a file in the program window then try again.");
    }
}

TEST_F(VersionFile, WithoutABlockThereAreNoFields) {
    const std::string main = write("a.cls", "");
    EXPECT_TRUE(LOADVERSIONINFO(main, "Info").ok);
    write("a.rc", "");
    EXPECT_TRUE(LOADVERSIONINFO(main, "Info").ok);
    write("a.rc", "Main DIALOG\nEND\n");
    const LoadedVersion loaded = LOADVERSIONINFO(main, "Info");
    EXPECT_TRUE(loaded.ok);
    EXPECT_FALSE(loaded.found);
    EXPECT_EQ(loaded.fields, VersionFields{});
    EXPECT_TRUE(LOADVERSIONINFO(write("b.cls", ""), "").ok);
    EXPECT_TRUE(told.empty());
}

TEST_F(VersionFile, ABlockWithAFaultIsTold) {
    const std::string main = write("a.cls", "");
    write("a.rc", "Info VERSIONINFO\n    FILEVERSION 1,2,3,4\nBEGIN\n");
    EXPECT_FALSE(LOADVERSIONINFO(main, "Info").ok);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_TRUE(told[0].starts_with(
        "Program Properties: Cannot load the Program Properties. The following error occurred:\n"))
        << told[0];
}

TEST_F(VersionFile, ABlockIsReplacedInItsPlace) {
    const std::string main = write("a.cls", "");
    write("a.rc", "Main DIALOG\nEND\n" + FIELDSTOVERSIONINFO("Info", {}, "a") + "Other DIALOG\nEND\n");
    ASSERT_TRUE(SAVEVERSIONINFO(main, "info", full));
    std::string text;
    os::readFile(folder / "a.rc", text);
    EXPECT_EQ(text, "Main DIALOG\nEND\n" + FIELDSTOVERSIONINFO("info", full, "a") + "Other DIALOG\nEND\n");
}

// A block as other tools write it.
constexpr const char* foreign = "1 VERSIONINFO // made by a tool\n"
                                " FILEVERSION 1, 2, 3, 4\n"
                                " PRODUCTVERSION 1,2,0,0 // of the suite\n"
                                " FILEFLAGSMASK VS_FFI_FILEFLAGSMASK\n"
                                " FILEFLAGS 0x1L\n"
                                "\n"
                                "begin\n"
                                "\tBLOCK \"StringFileInfo\"\n"
                                "\tBEGIN\n"
                                "\t\tBLOCK \"040904E4\"\n"
                                "\t\tBEGIN\n"
                                "\t\t\tVALUE \"CompanyName\", \"Ann\"\n"
                                "\t\t\tVALUE \"FileDescription\", \"Reads \" \"mail\\0\"  // joined\n"
                                "\t\t\tVALUE \"FileVersion\", \"1.2 beta\\0\"\n"
                                "\t\t\tVALUE \"InternalName\", \"MAILER\\0\"\n"
                                "\t\t\tVALUE \"PrivateBuild\", \"night\\0\"\n"
                                "\t\tEND\n"
                                "\t\tBLOCK \"040704E4\"\n"
                                "\t\tBEGIN\n"
                                "\t\t\tVALUE \"CompanyName\", \"Ann\"\n"
                                "\t\t\tVALUE \"FileDescription\", \"Liest Post\\0\"\n"
                                "\t\tEND\n"
                                "\tEND\n"
                                "end\n";

TEST_F(VersionFile, ABlockOfAnotherToolChangesWhereTheFieldsDo) {
    const struct {
        const char* what;
        std::string VersionFields::*field;
        const char *value, *from, *to;
    } cases[] = {
        {"in all languages that say it", &VersionFields::company, "Bob \"B\"", "\"CompanyName\", \"Ann\"",
         "\"CompanyName\", \"Bob \"\"B\"\"\""},
        {"in the language that was read", &VersionFields::description, "Schreibt", "Liest Post", "Schreibt"},
        {"behind the texts that are there", &VersionFields::comments, "new",
         "\t\t\tVALUE \"PrivateBuild\", \"night\\0\"\n",
         "\t\t\tVALUE \"PrivateBuild\", \"night\\0\"\n\t\t\tVALUE \"Comments\", \"new\\0\"\n"},
    };
    const std::string main = write("a.cls", ""), before = "Main DIALOG\nEND\n", after = "// behind\n";
    for (const auto& c : cases) {
        write("a.rc", before + foreign + after);
        VersionFields fields = LOADVERSIONINFO(main, "1").fields;
        fields.*c.field = c.value;
        ASSERT_TRUE(SAVEVERSIONINFO(main, "1", fields)) << c.what;
        std::string text;
        os::readFile(folder / "a.rc", text);
        EXPECT_EQ(text, before + STRREPLACE(foreign, c.from, c.to) + after) << c.what;
        EXPECT_EQ(LOADVERSIONINFO(main, "1").fields, fields) << c.what;
    }
}

TEST_F(VersionFile, AVersionChangesWhereTheBlockSaysTheOldOne) {
    const struct {
        const char *says, *becomes;
    } cases[] = {
        {" FILEVERSION 1, 2, 3, 4\n", " FILEVERSION 5,6,7,8\n"},
        {" FILEVERSION 1,2,\n  3,4\n", " FILEVERSION 5,6,7,8\n"},
        {" PRODUCTVERSION 1,2,3,4 // all\n", " PRODUCTVERSION 5,6,7,8 // all\n"},
        {" PRODUCTVERSION 1,2,0,0 // of the suite\n", nullptr},
        {" FILEVERSION 1,2,3,4 PRODUCTVERSION 1,2,3,4\n", " FILEVERSION 5,6,7,8 PRODUCTVERSION 5,6,7,8\n"},
        {" FILEVERSION 1, 2, // a\n 3, // b\n 4\n", " FILEVERSION 5,6,7,8 // a\n // b\n\n"},
        {" FILEVERSION 1,2,3,4 FILEOS 4\n", " FILEVERSION 5,6,7,8 FILEOS 4\n"}};
    const struct {
        const char *says, *becomes;
    } texts[] = {{"\"1.2.3.4\\0\"", "\"5.6.7.8\\0\""},
                 {"\"1, 2, 3, 4\"", "\"5.6.7.8\""},
                 {"\"1.2 beta\\0\"", nullptr},
                 {"\"1.2.3.4 beta\\0\"", nullptr},
                 {"\"1.2\\0\"", nullptr},
                 {"\"1.2.3.4 \xc3\xa4\\0\"", nullptr},
                 {"\"1.2.3.4\" \"a\\0\"", nullptr}};
    const std::string main = write("a.cls", "");
    for (const char* const key : {"FileVersion", "ProductVersion"})
        for (const auto& numbers : cases)
            for (const auto& text : texts) {
                const auto block = [&](const char* says, const char* value) {
                    return "1 VERSIONINFO\n" + std::string(says) +
                           (std::string(says).find(" FILEV") == std::string::npos ? " FILEVERSION 1,2,3,4\n"
                                                                                  : "") +
                           "BEGIN\n VALUE \"" + key + "\", " + value + "\nEND\n";
                };
                const std::string before = block(numbers.says, text.says);
                write("a.rc", before);
                VersionFields fields = LOADVERSIONINFO(main, "1").fields;
                EXPECT_EQ(fields.version, "1 2 3 4") << before;
                fields.version = "5 6 7 8";
                ASSERT_TRUE(SAVEVERSIONINFO(main, "1", fields)) << before;
                std::string now, wanted = block(numbers.becomes ? numbers.becomes : numbers.says,
                                                text.becomes ? text.becomes : text.says);
                wanted = STRREPLACE(wanted, " FILEVERSION 1,2,3,4", " FILEVERSION 5,6,7,8");
                os::readFile(folder / "a.rc", now);
                EXPECT_EQ(now, wanted);
                EXPECT_EQ(LOADVERSIONINFO(main, "1").fields, fields);
            }
}

// A block that this program wrote, with a value of somebody's.
TEST_F(VersionFile, AValueThatIsNoFieldStaysAsSomebodyWroteIt) {
    const std::string main = write("shelf.cls", "");
    VersionFields changed = full;
    changed.company = "Bob";
    changed.version = "5 0 0 0";
    const std::string wanted = FIELDSTOVERSIONINFO("MyInfo", changed, "shelf");
    const struct {
        const char *ours, *now, *theirs;
    } cases[] = {
        {"PRODUCTVERSION 4,5,6,7", "PRODUCTVERSION 5,0,0,0", "PRODUCTVERSION 4,0,0,0"},
        {"\"OriginalFilename\", \"shelf", "\"OriginalFilename\", \"shelf",
         "\"OriginalFilename\", \"shelf.exe"},
        {"\"InternalName\", \"shelf", "\"InternalName\", \"shelf", "\"InternalName\", \"SHELF-1"},
        {"\"FileVersion\", \"4.5.6.7", "\"FileVersion\", \"5.0.0.0", "\"FileVersion\", \"4.5 beta"},
        {"\"ProductVersion\", \"4.5.6.7", "\"ProductVersion\", \"5.0.0.0", "\"ProductVersion\", \"2026"},
        {"0x809, 1200", "0x809, 1200", "0x409, 1252"},
        {"FILEFLAGS 0x0", "FILEFLAGS 0x0", "FILEFLAGS 0x2"}};
    for (const auto& c : cases) {
        write("shelf.rc", STRREPLACE(block, c.ours, c.theirs));
        ASSERT_TRUE(SAVEVERSIONINFO(main, "MyInfo", changed));
        std::string text;
        os::readFile(folder / "shelf.rc", text);
        EXPECT_EQ(text, STRREPLACE(wanted, c.now, c.theirs));
    }
}

TEST_F(VersionFile, BlocksWhoseWordsShareALineKeepWhatIsThere) {
    const struct {
        const char *before, *after;
    } cases[] = {
        {"1 VERSIONINFO FILEVERSION 1,0,0,0 BEGIN\n VALUE \"CompanyName\", \"Ann\"\nEND\n",
         "1 VERSIONINFO FILEVERSION 2,0,0,0 BEGIN\n VALUE \"CompanyName\", \"Bob\"\n VALUE \"Comments\", "
         "\"new\\0\"\nEND\n"},
        {"1 VERSIONINFO BEGIN // a\n VALUE \"CompanyName\", \"Ann\" END\n",
         "1 VERSIONINFO FILEVERSION 2,0,0,0 BEGIN // a\n VALUE \"CompanyName\", \"Bob\" VALUE \"Comments\", "
         "\"new\\0\" END\n"},
        {"1 VERSIONINFO FIXED { VALUE \"CompanyName\", \"Ann\" } // b\n",
         "1 VERSIONINFO FIXED FILEVERSION 2,0,0,0 { VALUE \"CompanyName\", \"Bob\" VALUE \"Comments\", "
         "\"new\\0\" } // b\n"},
        {"1 VERSIONINFO // c\n{\n BLOCK \"x\" {\n  VALUE \"CompanyName\", \"Ann\"\n } }\n",
         "1 VERSIONINFO // c\n    FILEVERSION 2,0,0,0\n{\n BLOCK \"x\" {\n  VALUE \"CompanyName\", \"Bob\"\n"
         "  VALUE \"Comments\", \"new\\0\"\n } }\n"},
        {"1 VERSIONINFO\n{ VALUE \"CompanyName\",\n\"An\" // d\n\"n\" // e\n}\n",
         "1 VERSIONINFO\n    FILEVERSION 2,0,0,0\n{ VALUE \"CompanyName\",\n\"Bob\" // d\n // e\n"
         "VALUE \"Comments\", \"new\\0\"\n}\n"},
        {"1 VERSIONINFO\n{ VALUE \"CompanyName\", \"An\" \"n\", 1 }\n",
         "1 VERSIONINFO\n    FILEVERSION 2,0,0,0\n{ VALUE \"CompanyName\", \"Bob\", 1 VALUE \"Comments\", "
         "\"new\\0\" }\n"},
    };
    const std::string main = write("a.cls", "");
    for (const auto& c : cases) {
        write("a.rc", c.before);
        VersionFields fields = LOADVERSIONINFO(main, "1").fields;
        fields.company = "Bob";
        fields.comments = "new";
        fields.version = "2 0 0 0";
        ASSERT_TRUE(SAVEVERSIONINFO(main, "1", fields)) << c.before;
        std::string text;
        os::readFile(folder / "a.rc", text);
        EXPECT_EQ(text, c.after);
        EXPECT_EQ(LOADVERSIONINFO(main, "1").fields, fields) << text;
    }
    EXPECT_TRUE(told.empty());
}

TEST_F(VersionFile, ABlockOnOneLineWithoutTextsGetsItsTableInside) {
    const std::string main = write("a.cls", "");
    const VersionFields fields{.comments = "c", .company = "Ann", .version = "1 2 3 4"};
    for (const char* const empty :
         {"1 VERSIONINFO BEGIN END\n", "1 VERSIONINFO { }\n", "1 VERSIONINFO\nBEGIN END // all\n",
          "1 VERSIONINFO BEGIN\nBLOCK \"VarFileInfo\" BEGIN VALUE \"Translation\", 0x809, 1200 END END\n"}) {
        const std::string dialog = "Main DIALOG\nEND\n";
        write("a.rc", empty + dialog);
        ASSERT_TRUE(SAVEVERSIONINFO(main, "1", fields)) << empty;
        EXPECT_EQ(LOADVERSIONINFO(main, "1").fields, fields) << empty;
        std::string text;
        os::readFile(folder / "a.rc", text);
        EXPECT_TRUE(text.ends_with("END\n" + dialog) || text.find("}\n" + dialog) != std::string::npos ||
                    text.find("END // all\n" + dialog) != std::string::npos)
            << text;
        EXPECT_EQ(ResourceInfo(folder / "a.rc", "*", "*").text, "1\nMain\n") << text;
        EXPECT_TRUE(text.starts_with("1 VERSIONINFO FILEVERSION 1,2,3,4 ") ||
                    text.starts_with("1 VERSIONINFO\n    FILEVERSION 1,2,3,4\n"))
            << text;
    }
}

TEST_F(VersionFile, AQuoteBehindABackslashIsPartOfTheText) {
    const std::string main = write("a.cls", "");
    write("a.rc", "1 VERSIONINFO\n FILEOS 4\nBEGIN\n VALUE \"CompanyName\", \"Ann \\\"X\\\" Co\\0\" // c\n"
                  " VALUE \"Comments\", \"a\"\nEND\n");
    VersionFields fields = LOADVERSIONINFO(main, "1").fields;
    EXPECT_EQ(fields.company, "Ann \"X\" Co");
    for (const char* const text : {"Bob", "\\", "a\\\"b", "\\\\\"", "C:\\", "a\\0", "\"\""}) {
        fields.company = fields.comments = text;
        ASSERT_TRUE(SAVEVERSIONINFO(main, "1", fields)) << text;
        EXPECT_EQ(LOADVERSIONINFO(main, "1").fields, fields) << text;
    }
}

TEST_F(VersionFile, ABlockOfAnotherToolWithoutTextsOrNumbersGetsThem) {
    const std::string main = write("a.cls", "");
    write("a.rc", "1 VERSIONINFO\n  FILEOS 0x4\nBEGIN\nEND\n");
    VersionFields fields;
    fields.company = "Ann";
    fields.version = "1 2 3 4";
    ASSERT_TRUE(SAVEVERSIONINFO(main, "1", fields));
    EXPECT_EQ(LOADVERSIONINFO(main, "1").fields, fields);
    std::string text;
    os::readFile(folder / "a.rc", text);
    EXPECT_TRUE(text.starts_with(
        "1 VERSIONINFO\n    FILEVERSION 1,2,3,4\n  FILEOS 0x4\nBEGIN\n    BLOCK \"StringFileInfo\"\n"))
        << text;
    EXPECT_TRUE(text.ends_with("        END\n    END\nEND\n")) << text;
}

TEST_F(VersionFile, AVersionInTheHeadIsReadAndChangedThere) {
    const std::string main = write("a.cls", "");
    write("a.rc", "1 VERSIONINFO FILEVERSION 1,2,3,4 // head\nBEGIN\nEND\n");
    VersionFields fields = LOADVERSIONINFO(main, "1").fields;
    EXPECT_EQ(fields.version, "1 2 3 4");
    fields.version = "5 6 7 8";
    ASSERT_TRUE(SAVEVERSIONINFO(main, "1", fields));
    std::string text;
    os::readFile(folder / "a.rc", text);
    EXPECT_EQ(text, "1 VERSIONINFO FILEVERSION 5,6,7,8 // head\nBEGIN\nEND\n");
}

TEST_F(VersionFile, ANumberedBlockOfTheUsualTextsIsWrittenAsOurs) {
    const std::string main = write("a.cls", "");
    write("a.rc", FIELDSTOVERSIONINFO("1", {}, "other"));
    ASSERT_TRUE(SAVEVERSIONINFO(main, "1", full));
    std::string text;
    os::readFile(folder / "a.rc", text);
    EXPECT_EQ(text, FIELDSTOVERSIONINFO("1", full, "a"));
    EXPECT_EQ(CHANGEVERSIONINFO(GETDEFAULTVERSIONINFO("b"), "V", full, "a"),
              FIELDSTOVERSIONINFO("V", full, "a"));
}

TEST_F(VersionFile, OfTwoBlocksOneIsChanged) {
    const std::string main = write("a.cls", ""), other = FIELDSTOVERSIONINFO("1", {}, "a");
    write("a.rc", other + foreign + FIELDSTOVERSIONINFO("V", {}, "a"));
    ASSERT_TRUE(SAVEVERSIONINFO(main, "V", full));
    std::string text;
    os::readFile(folder / "a.rc", text);
    EXPECT_EQ(text, other + foreign + FIELDSTOVERSIONINFO("V", full, "a"));
}

TEST_F(VersionFile, ABlockOfAnotherToolThatIsSavedUnchangedKeepsItsBytes) {
    const std::string main = write("a.cls", "");
    std::string crlf;
    for (const char c : std::string(foreign)) crlf += c == '\n' ? "\r\n" : std::string(1, c);
    for (const std::string& text : {std::string(foreign), crlf}) {
        write("a.rc", text);
        ASSERT_TRUE(SAVEVERSIONINFO(main, "1", LOADVERSIONINFO(main, "1").fields));
        std::string now;
        os::readFile(folder / "a.rc", now);
        EXPECT_EQ(now, text);
    }
}

TEST_F(VersionFile, TheFileKeepsItsLineEnds) {
    const std::string main = write("a.cls", "");
    const auto pairs = [](std::string text) {
        for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
            text.insert(at, "\r");
        return text;
    };
    const std::string dialog = "Main DIALOG\r\nEND\r\n";
    for (const std::string& before : {dialog, dialog + pairs(FIELDSTOVERSIONINFO("Info", {}, "a"))}) {
        write("a.rc", before);
        ASSERT_TRUE(SAVEVERSIONINFO(main, "Info", full));
        std::string text;
        os::readFile(folder / "a.rc", text);
        EXPECT_EQ(text, dialog + pairs(FIELDSTOVERSIONINFO("Info", full, "a")));
        EXPECT_EQ(LOADVERSIONINFO(main, "Info").fields, full);
    }
}

TEST_F(VersionFile, MessagesHaveTheTitleOfTheirDialog) {
    EXPECT_FALSE(LOADVERSIONINFO("", "Info", "Program-Edit Program Properties").ok);
    EXPECT_FALSE(SAVEVERSIONINFO("", "Info", full, "Program-Edit Program Properties"));
    const std::string main = write("a.cls", "");
    std::filesystem::create_directory(folder / "a.rc");
    EXPECT_FALSE(SAVEVERSIONINFO(main, "Info", full, "Program-Edit Program Properties"));
    ASSERT_EQ(told.size(), 3U);
    for (const std::string& message : told)
        EXPECT_TRUE(message.starts_with("Program-Edit Program Properties: ")) << message;
}

TEST_F(VersionFile, AFileThatCannotBeWrittenIsTold) {
    const std::string main = write("a.cls", "");
    std::filesystem::create_directory(folder / "a.rc");
    EXPECT_FALSE(SAVEVERSIONINFO(main, "Info", full));
    ASSERT_EQ(told.size(), 1U);
    EXPECT_TRUE(told[0].starts_with(
        "Program Properties: Cannot save the Program Properties. The following error occurred:\n"))
        << told[0];
}

TEST_F(VersionFile, AResourceFileInUpperCaseIsTheTwin) {
    const std::string main = write("a.CLS", "");
    write("a.RC", FIELDSTOVERSIONINFO("Info", full, "a"));
    EXPECT_EQ(LOADVERSIONINFO(main, "Info").fields, full);
    ASSERT_TRUE(SAVEVERSIONINFO(main, "Info", full));
    EXPECT_FALSE(os::infoOf(folder / "a.rc").exists);
}

}  // namespace
}  // namespace tarn
