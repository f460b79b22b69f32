// SPDX-License-Identifier: Apache-2.0
//
// The resource family of the system library.
#include "library/system/system.h"

#include "os/files.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(Resources, MemoryOptionsAreTheWordsBetweenKindAndPath) {
    for (const char* word : {"PRELOAD", "LOADONCALL", "FIXED", "MOVEABLE", "DISCARDABLE", "PURE", "IMPURE",
                             "SHARED", "NONSHARED", "preload", "Fixed"})
        EXPECT_TRUE(IS_RESOURCE_MEMORY_OPTS(word)) << word;
    for (const char* word : {"", "BITMAP", "\"FIXED\"", "FIXED ", "PRELOADED", "12"})
        EXPECT_FALSE(IS_RESOURCE_MEMORY_OPTS(word)) << word;
}

TEST(Resources, TheFileOfAResourceIsItsPathAsItIsWritten) {
    const TempFolder folder;
    const std::string rc = folder / "a.rc";
    ASSERT_TRUE(os::saveFile(rc, "#define number -7\n"
                                 "plain BITMAP \"a.bmp\"\n"
                                 "blanks BITMAP \"my pictures/a b.bmp\"\n"
                                 "slashes INCFILE \"C:\\\\dir\\\\new.txt\"\n"
                                 "placeholder INCFILE \"<RESOURCEDIR>\\\\r.ico\"\n"
                                 "quote INCFILE \"a \\\"b\\\".txt\"\n"
                                 "options INCFILE PRELOAD fixed \"o.txt\"\n"
                                 "withId 12 INCFILE FIXED \"i.txt\"\n"
                                 "withSymbol IDS INCFILE \"s.txt\"\n"
                                 "number INCFILE \"n.txt\"\n"
                                 "fixed INCFILE \"f.txt\"\n"
                                 "people DBFILE \"p.dbf\"\n"
                                 "towns DBFILE LOADONCALL FIXED \"t x.dbf\"\n"
                                 "broken BITMAP \"b.bmp\n"
                                 "D DIALOG\nEND\n")
                    .ok());
    const struct {
        const char *kind, *name, *path;
    } cases[] = {
        {"BITMAP", "plain", "a.bmp"},
        {"BITMAP", "PLAIN", "a.bmp"},
        {"*", "plain", "a.bmp"},
        {"BITMAP", "blanks", "my pictures/a b.bmp"},
        {"INCFILE", "slashes", "C:\\dir\\new.txt"},
        {"INCFILE", "placeholder", "<RESOURCEDIR>\\r.ico"},
        {"INCFILE", "quote", "a \"b\".txt"},
        {"INCFILE", "options", "o.txt"},
        {"INCFILE", "withId", "i.txt"},
        {"INCFILE", "withSymbol", "s.txt"},
        {"INCFILE", "number", "n.txt"},
        {"INCFILE", "fixed", "f.txt"},
        {"DBFILE", "people", "p.dbf"},
        {"dbfile", "towns", "t x.dbf"},
        {"INCFILE", "plain", ""},
        {"BITMAP", "absent", ""},
        {"BITMAP", "broken", ""},
        {"DIALOG", "D", ""},
    };
    for (const auto& [kind, name, path] : cases) EXPECT_EQ(RESOURCEGETFILENAME(rc, kind, name), path) << name;
    EXPECT_EQ(RESOURCEGETFILENAME(folder / "absent.rc", "BITMAP", "plain"), "");
}

}  // namespace
}  // namespace tarn
