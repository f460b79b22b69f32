// SPDX-License-Identifier: Apache-2.0
//
// The script of an installer: what is read, and each thing that is wrong with its line.
#include "library/ship/issscript.h"
#include "toolchain/setup/places.h"
#include "toolchain/setup/script.h"

#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn::setup {
namespace {

std::string errorsOf(const std::string& text) {
    Script script;
    std::string lines;
    for (const ScriptError& error : readScript(text, script))
        lines += std::to_string(error.line) + " " + error.text + "\n";
    return lines;
}

std::string written(const std::string& icon, const std::string& files) {
    return CREATEISSSCRIPT("Ann & Co.", "(c) Ann", "Product", "Counts words", "1.2", "1 2 0 0", files,
                           "/home/u/word count.exe", icon);
}

TEST(InstallerScript, ReadsWhatThePackagerWrites) {
    Script script;
    const auto errors =
        readScript(written("/i/x.ico", "/home/u/word count.exe\tmore\n/a \"b\"/c'd.txt\n"), script);
    ASSERT_TRUE(errors.empty()) << errors[0].line << errors[0].text;
    const Package& package = script.package;
    EXPECT_EQ(package.name, "word count");
    EXPECT_EQ(package.title, "Counts words");
    EXPECT_EQ(package.publisher, "Ann & Co.");
    EXPECT_EQ(package.copyright, "(c) Ann");
    EXPECT_EQ(package.version, "1.2");
    EXPECT_EQ(package.program, "word count.exe");
    ASSERT_EQ(package.shortcuts.size(), 3U);
    EXPECT_EQ(package.shortcuts[0].kind, Shortcut::Kind::Icon);
    EXPECT_EQ(package.shortcuts[1].kind, Shortcut::Kind::Uninstall);
    EXPECT_EQ(package.shortcuts[2].place, Shortcut::Place::Desktop);
    EXPECT_EQ(script.sources,
              (std::vector<std::string>{"/i/x.ico", "/home/u/word count.exe", "/a \"b\"/c'd.txt"}));
    EXPECT_EQ(package.files[0].name, "mainicon.ico");
    EXPECT_EQ(package.files[2].name, "c'd.txt");
}

TEST(InstallerScript, ReadsItWithoutAnIconAndWithOtherLineEnds) {
    std::string text = written("", "/home/u/word count.exe\n");
    EXPECT_EQ(errorsOf(text), "");
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) text.insert(at, "\r");
    EXPECT_EQ(errorsOf(text), "");
}

// A script in which one line is another one.
std::string with(const std::string& old, const std::string& line) {
    std::string text = written("/i/x.ico", "/home/u/word count.exe\n");
    const std::size_t at = text.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    return text.replace(at, text.find('\n', at) - at, line);
}

TEST(InstallerScript, TellsEachThingThatIsWrongWithItsLine) {
    struct Row {
        const char *old, *line, *error;
    };
    const Row rows[] = {
        {"[Setup]", "AppName=x", "1 a line in front of the first section\n"},
        {"AppId", "UninstallDisplayName=x", "4 the key 'UninstallDisplayName' is not known in [Setup]\n"},
        {"AppId", "no key", "4 the key 'no key' is not known in [Setup]\n"},
        {"AppId", "AppVersion=1", "9 the key 'AppVersion' stands twice\n"},
        {"AppName", "AppName=../x", "2 '../x' is no name for AppName\n"},
        {"DefaultDir", "DefaultDirName={pf}\\..", "5 the folder must be {pf}\\ and a name\n"},
        {"DefaultDir", "DefaultDirName=/etc", "5 the folder must be {pf}\\ and a name\n"},
        {"Compression", "Compression=zip", "12 the compression must be lzma/normal\n"},
        {"[Dirs]", "[Registry]", "14 the section [Registry] is not known\n"},
        {"[Languages]", "[Dirs]", "17 the section [Dirs] stands twice\n"},
        {"Name:\"{app}\"", "Name:\"{tmp}\"; Permissions:authusers-modify;", "15 the only folder is {app}\n"},
        {"Name:\"{app}\"", "Name:\"{app}\"; Permissions:everyone-full;",
         "15 the permissions must be authusers-modify\n"},
        {"Name:\"{app}\"", "Name:\"{app}\";", "15 the key 'Permissions' is missing\n"},
        {"Name:\"english\"", "Name:\"german\"; MessagesFile:\"x\"", "18 the only language is english\n"},
        {"Name:\"{group}\\Un", "Name:\"{group}\\a/b\"; Filename:\"{uninstallexe}\";",
         "22 the name must be {group}\\ or {commondesktop}\\ and a name\n"},
        {"Name:\"{group}\\Un", "Name:\"{group}\\U\"; Filename:\"/bin/sh\";",
         "22 the program must be {app}\\ and a name, or {uninstallexe}\n"},
        {"Name:\"{group}\\Un", "Name:\"{group}\\U\"; Filename:\"{app}\\..\\sh\";",
         "22 the program must be {app}\\ and a name, or {uninstallexe}\n"},
        {"Name:\"{group}\\Un", "Name:\"{group}\\U\"; Filename:\"{app}\\other.exe\";",
         "22 there is one program, 'word count.exe'\n"},
        {"Name:\"{group}\\Un", "Name:\"{group}\\U\"; Filename:\"{uninstallexe}\"; Parameters:\"x\";",
         "22 the key 'Parameters' is not known here\n"},
        {"Name:\"{group}\\Un", "Name:\"{group}\\U; Filename:\"{uninstallexe}\";",
         "22 a semicolon is missing behind the value of 'Name'\n"},
        {"Name:\"{group}\\Un", "Name:\"{group}\\U\"; Filename:\"{uninstallexe}",
         "22 the quotes are not closed\n"},
        {"Name:\"{group}\\Un", "Name:\"{group}\\U\"; Name:\"x\"", "22 the key 'Name' stands twice\n"},
        {"Name:\"{group}\\Un", "Name", "22 a key without a value\n"},
        {"Name:\"{group}\\Un", "Name:\"{group}\\U\"; Filename:\"{uninstallexe}\"; WorkingDir:\"/\";",
         "22 the folder to start in must be {app}\n"},
        {"Name:\"{group}\\Un", "Name:\"{group}\\U\"; Filename:\"{uninstallexe}\"; IconFilename:\"/x.ico\";",
         "22 the icon must be {app}\\mainicon.ico\n"},
        {"Source:\"/home", "Source:\"/home/u/../x/word count.exe\"; DestDir:\"{app}\\\";",
         "27 '/home/u/../x/word count.exe' leads out of its folder\n0 'word count.exe' is not among the "
         "files\n"},
        {"Source:\"/i", "Source:\"/i/x.ico\"; DestDir:\"{app}\\..\\\"; DestName:\"mainicon.ico\";",
         "26 the folder must be {app}\\\n0 'mainicon.ico' is not among the files\n"},
        {"Source:\"/i", "Source:\"/i/x.ico\"; DestDir:\"{app}\\\"; DestName:\"../mainicon.ico\";",
         "26 '../mainicon.ico' is no name of a file\n0 'mainicon.ico' is not among the files\n"},
        {"Source:\"/i", "Source:\"/i/uninstall\"; DestDir:\"{app}\\\";",
         "26 'uninstall' is a name of the installer's own; rename the file\n0 'mainicon.ico' is not among "
         "the files\n"},
        {"Source:\"/i", "Source:\"/x/word count.exe\"; DestDir:\"{app}\\\";",
         "27 'word count.exe' is installed twice; take one of its lines out, or rename the file\n0 "
         "'mainicon.ico' is not among the files\n"},
        {"Source:\"/i", "Source:\"/i/\"; DestDir:\"{app}\\\";",
         "26 '' is no name of a file\n0 'mainicon.ico' is not among the files\n"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(errorsOf(with(row.old, row.line)).substr(0, std::string(row.error).size()), row.error)
            << row.line;
    EXPECT_EQ(errorsOf(""),
              "0 [Setup] has no AppName\n0 [Setup] has no DefaultDirName\n0 [Icons] names no program\n");
    EXPECT_EQ(errorsOf(std::string("[Setup]\nApp\0Name=x", 18)).substr(0, 16), "2 a character 0\n");
}

TEST(InstallerScript, AByteOrderMarkMeansNothingInFrontAndIsAFaultElsewhere) {
    const std::string mark = "\xEF\xBB\xBF", text = written("", "/home/u/word count.exe\n");
    EXPECT_EQ(errorsOf(mark + text), "");
    Script script;
    EXPECT_TRUE(readScript(mark + text, script).empty());
    EXPECT_EQ(script.package.name, "word count");
    EXPECT_EQ(errorsOf(mark + mark + text).substr(0, 12), "1 a line in ");
    EXPECT_EQ(errorsOf(mark), errorsOf(""));
    EXPECT_EQ(errorsOf(mark.substr(0, 2) + text).substr(0, 12), "1 a line in ") << "half a mark";
    for (const std::string other : {"\xFF\xFE", "\xFE\xFF"})
        EXPECT_EQ(errorsOf(other + "[\n"), "1 the script is UTF-16; save it as UTF-8\n");
}

TEST(InstallerScript, TwoFaultsAreBothTold) {
    EXPECT_EQ(errorsOf(with("Compression", "Compression=zip\nOther=1")).substr(0, 93),
              "12 the compression must be lzma/normal\n13 the key 'Other' is not known in [Setup]\n");
}

TEST(InstallerScript, NoTextOfTheUserBecomesALine) {
    const std::string evil = "a\n[Files]\nSource:\"/etc/passwd\"; DestDir:\"{app}\\\";";
    const std::string text =
        CREATEISSSCRIPT(evil, evil, evil, evil, evil, "1 2", "/p/x.exe\n", "/p/x.exe", "");
    Script script;
    EXPECT_EQ(errorsOf(text), "");
    static_cast<void>(readScript(text, script));
    EXPECT_EQ(script.sources, std::vector<std::string>{"/p/x.exe"});
}

// ---- places ----

TEST(InstallerPlaces, AreThoseOfTheHomeTheSystemOrAFolder) {
    const TempFolder home;
    const Variable h("HOME", home.path()), data("XDG_DATA_HOME", nullptr), config("XDG_CONFIG_HOME", nullptr);
    Package package;
    package.name = "prog";
    EXPECT_EQ(placesInHome(package).app, home / ".local/opt/prog");
    EXPECT_EQ(placesInHome(package).menu, home / ".local/share/applications");
    EXPECT_EQ(placesInHome(package).desktop, "") << "there is no such folder";
    std::filesystem::create_directories(home / "Desktop");
    std::filesystem::create_directories(home / "Tisch");
    EXPECT_EQ(placesInHome(package).desktop, home / "Desktop");
    std::filesystem::create_directories(home / ".config");
    ASSERT_TRUE(os::saveFile(home / ".config/user-dirs.dirs", "# x\nXDG_DESKTOP_DIR=\"$HOME/Tisch\"\n").ok());
    EXPECT_EQ(placesInHome(package).desktop, home / "Tisch");
    EXPECT_EQ(placesInSystem(package).app, "/opt/prog");
    EXPECT_EQ(placesInSystem(package).menu, "/usr/local/share/applications");
    EXPECT_EQ(placesInFolder(package, "/x/y/").app, "/x/y");
    const Variable none("HOME", nullptr);
    EXPECT_EQ(placesInHome(package).app, "");
}

TEST(InstallerPlaces, EntriesStartWhateverTheFolderIsCalled) {
    Package package;
    package.name = "a b";
    package.title = "Back\\slash";
    package.program = "a b.exe";
    package.files = {{"a b.exe", 1, true}, {"a b.rcx", 1, false}};
    const Places places{"/o/q\"$`\\%p", "/m", ""};
    const Shortcut menu{Shortcut::Place::Menu, Shortcut::Kind::Icon};
    EXPECT_EQ(entryFile(package, menu, places), "/m/a b.desktop");
    EXPECT_EQ(entryText(package, menu, places),
              "[Desktop Entry]\nType=Application\nVersion=1.0\nName=a b\n"
              "Exec=\"/o/q\\\\\"\\\\$\\\\`\\\\\\\\%%p/a b.exe\"\nPath=/o/q\"$`\\\\%p\nTerminal=false\n"
              "Comment=Back\\\\slash\nIcon=/o/q\"$`\\\\%p/mainicon.ico\n");
    EXPECT_EQ(entryFile(package, {Shortcut::Place::Desktop, Shortcut::Kind::Icon}, places), "");
    package.files.pop_back();
    EXPECT_NE(entryText(package, menu, places).find("Terminal=true\n"), std::string::npos)
        << "a program without windows writes to a terminal";
}

}  // namespace
}  // namespace tarn::setup
