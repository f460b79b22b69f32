// SPDX-License-Identifier: Apache-2.0
//
// The texts of a Debian package, and what the tools say that its dependencies are found by.
#include "library/ship/debtext.h"

#include "library/ship/debdepends.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

const DebFields fields{"a-prog", "1.2", "Ann Bell <ann@example.org>", " says hello ", ""};

TEST(DebText, ANameIsMadeOfThatOfTheProgram) {
    const struct {
        const char *program, *name;
    } cases[] = {{"WordCount", "wordcount"}, {"my prog", "my-prog"}, {"Z\xC3\xA4hler", "z--hler"},
                 {"a", "a-program"},         {"_x1_", "x1"},         {"", "program"},
                 {"...", "program"},         {"c++", "c++"}};
    for (const auto& one : cases) EXPECT_EQ(DEBNAME(one.program), one.name);
}

TEST(DebText, AVersionHasTwoNumbersOrMore) {
    const struct {
        const char *numbers, *version;
    } cases[] = {{"1 0 0 0", "1.0"}, {"1 2 3 0", "1.2.3"}, {"0 0 0 4", "0.0.0.4"},
                 {"", "0.0"},        {"7", "7.0"},         {"x 1 0 0", "0.1"}};
    for (const auto& one : cases) EXPECT_EQ(DEBVERSION(one.numbers), one.version);
}

TEST(DebText, WhatNoPackageMayHaveIsTold) {
    const auto with = [](std::string DebFields::*field, const char* value) {
        DebFields changed = fields;
        changed.*field = value;
        return DEBPROBLEM(changed);
    };
    EXPECT_EQ(DEBPROBLEM(fields), "");
    for (const char* name : {"", "a", "Prog", "-a", "a b", "a_b", "a/b", "\xC3\xA4\xC3\xB6"})
        EXPECT_TRUE(with(&DebFields::name, name).starts_with("The name of the package")) << name;
    for (const char* version : {"", "v1", "1 2", "1-2", "1/2", "1:2"})
        EXPECT_TRUE(with(&DebFields::version, version).starts_with("The version begins")) << version;
    for (const char* person : {"", "Ann", "ann@example.org", "<ann@example.org>", " <a@b>", "Ann <@b>",
                               "Ann <a@>", "Ann <a@b> x", "A <a@b>\nX: y"})
        EXPECT_TRUE(with(&DebFields::maintainer, person).starts_with("The maintainer is")) << person;
    for (const char* summary : {"", "  ", "two\nlines", "a\ttab"})
        EXPECT_TRUE(with(&DebFields::summary, summary).starts_with("The summary is")) << summary;
}

TEST(DebText, TheControlFileHasTheFieldsAndFoldsTheDescription) {
    DebFields changed = fields;
    changed.description = "First.\r\n\n  Depends: nothing\n.\n";
    DebProgram program;
    program.architecture = "amd64";
    program.depends = "libc6 (>= 2.36)";
    program.kilobytes = 12;
    EXPECT_EQ(DEBCONTROL(changed, program),
              "Package: a-prog\nVersion: 1.2\nArchitecture: amd64\nMaintainer: Ann Bell <ann@example.org>\n"
              "Installed-Size: 12\nDepends: libc6 (>= 2.36)\nSection: misc\nPriority: optional\n"
              "Description: says hello\n First.\n .\n Depends: nothing\n .\n");
    program.depends.clear();
    EXPECT_EQ(DEBCONTROL(fields, program).find("Depends:"), std::string::npos);
}

TEST(DebText, TheEntryStartsTheCommandInATerminalWhereItHasNoWindows) {
    DebProgram program;
    program.exe = "A Prog.exe";
    EXPECT_EQ(DEBENTRY(fields, program),
              "[Desktop Entry]\nType=Application\nVersion=1.0\nName=A Prog\nComment=says hello\n"
              "Exec=/usr/bin/a-prog\nTerminal=true\nCategories=Utility;\n");
    program.windows = true;
    program.icon = "a-prog";
    EXPECT_NE(DEBENTRY(fields, program).find("\nIcon=a-prog\nTerminal=false\n"), std::string::npos);
    program.exe = "a \"$b\".exe";
    EXPECT_EQ(DEBCOMMAND(fields, program), "#!/bin/sh\nexec \"/usr/lib/a-prog/a \\\"\\$b\\\".exe\" \"$@\"\n");
}

TEST(DebText, TheCopyrightNamesTheLicencesOfWhatGoesAlong) {
    DebProgram program;
    program.date = "Sun, 22 Nov 2026 19:00:00 +0000";
    EXPECT_NE(DEBCOPYRIGHT(fields, program).find("Copyright: (C) 2026 Ann Bell"), std::string::npos);
    EXPECT_EQ(DEBCOPYRIGHT(fields, program).find("GPL"), std::string::npos);
    program.copyright = "(c) Ann";
    program.editWindow = true;
    EXPECT_TRUE(DEBCOPYRIGHT(fields, program).starts_with("a-prog 1.2\n\nCopyright: (c) Ann\n\n"));
    program.copyright = "Copyright 2026 Ann";
    EXPECT_TRUE(DEBCOPYRIGHT(fields, program).starts_with("a-prog 1.2\n\nCopyright 2026 Ann\n\n"));
    EXPECT_NE(DEBCOPYRIGHT(fields, program).find("common-licenses/GPL-3"), std::string::npos);
}

TEST(DebText, NoLineOfTheManualIsTakenForAnOrder) {
    DebFields changed = fields;
    changed.description = ".so /etc/passwd\n'x\n\na-b \\ c";
    const std::string manual = DEBMANUAL(changed, {});
    EXPECT_NE(manual.find("\n\\&.so /etc/passwd\n\\&'x\n.PP\na\\-b \\e c\n"), std::string::npos) << manual;
}

TEST(DebText, TheFolderOfTheBuildMachineIsTakenFromTheSearchPathAndNothingMoves) {
    const auto with = [](const std::string& path) {
        return std::string("\0a\0", 3) + path + std::string("\0b\0", 3);
    };
    const std::string cleaned =
        std::string("\0a\0$ORIGIN", 10) + std::string(7, '\0') + std::string("\0b\0", 3);
    EXPECT_EQ(WITHOUTBUILDPATH(with("$ORIGIN:/b/bin"), "$ORIGIN:/b/bin"), cleaned);
    for (const char* path : {"$ORIGIN", "/b/bin:$ORIGIN", "", "$ORIGIN:/other"})
        EXPECT_EQ(WITHOUTBUILDPATH(with("$ORIGIN:/b/bin"), path), with("$ORIGIN:/b/bin")) << path;
    const std::string twice = with("$ORIGIN:/b") + with("$ORIGIN:/b");
    EXPECT_EQ(WITHOUTBUILDPATH(twice, "$ORIGIN:/b"), twice);
}

// ---- what it depends on ----

TEST(DebDepends, LibrariesAreReadFromWhatObjdumpWrites) {
    EXPECT_EQ(
        NEEDEDLIBRARIES("a: file format\n\nDynamic Section:\n  NEEDED   libc.so.6\n  NEEDED   liba b.so\n"
                        "  SONAME   libx.so\n\nb:\n  NEEDED   libc.so.6\n  NEEDED   libQt6Core.so.6"),
        (NameList{"libQt6Core.so.6", "liba", "libc.so.6"}));
    EXPECT_EQ(NEEDEDLIBRARIES(""), NameList());
}

TEST(DebDepends, PathsAreReadFromWhatLddWrites) {
    const auto paths = LIBRARYPATHS(
        "/a/prog.exe:\n\tlinux-vdso.so.1 (0x00007f)\n\tlibc.so.6 => /lib/x y/libc.so.6 (0x00007f)\n"
        "\tlibz.so => not found\n\t/lib64/ld-linux-x86-64.so.2 (0x00007f)\n");
    EXPECT_EQ(paths.at("libc.so.6"), "/lib/x y/libc.so.6");
    EXPECT_EQ(paths.at("libz.so"), "");
    EXPECT_EQ(paths.at("ld-linux-x86-64.so.2"), "/lib64/ld-linux-x86-64.so.2");
    EXPECT_EQ(paths.size(), 3U);
    EXPECT_TRUE(LIBRARYPATHS("x => ").at("x").empty());
}

TEST(DebDepends, PackagesAreReadFromWhatTheSearchWrites) {
    const auto packages = PACKAGESOFFILES(
        "libc6:amd64: /lib/libc.so.6\nlibz1: /lib/z\na:i386, b:amd64: /lib/both\n"
        "diversion by dash from: /bin/sh\ndpkg-query: no path found matching pattern /lib/n\n");
    EXPECT_EQ(packages.at("/lib/libc.so.6"), "libc6");
    EXPECT_EQ(packages.at("/lib/z"), "libz1");
    EXPECT_EQ(packages.at("/lib/both"), "a");
    EXPECT_EQ(packages.size(), 3U);
}

TEST(DebDepends, ALibrarysDependencyIsWhatItsPackageSaysOfIt) {
    const std::string shlibs =
        "udeb: libc 6 libc6-udeb (>= 1)\nlibc 6 libc6 (>= 2.36)\nlibm 6 libc6 (>= 2.30)\n"
        "libx-y 1.2 x (>= 3) | y\nlibz 1\n";
    const struct {
        const char *library, *dependency;
    } cases[] = {{"libc.so.6", "libc6 (>= 2.36)"},
                 {"libm.so.6", "libc6 (>= 2.30)"},
                 {"libc.so.7", ""},
                 {"libx-y-1.2.so", "x (>= 3) | y"},
                 {"libz.so.1", ""},
                 {"libc", ""}};
    for (const auto& one : cases)
        EXPECT_EQ(SHLIBSDEPENDENCY(shlibs, one.library), one.dependency) << one.library;
}

}  // namespace
}  // namespace tarn
