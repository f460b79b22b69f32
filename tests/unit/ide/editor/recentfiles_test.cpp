// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/recentfiles.h"

#include "support/ide_fixture.h"

namespace tarn {
namespace {

class RecentFiles : public IdeTest {
protected:
    std::string list() { return PROFILESTRGET(ini(), "MRU", ""); }
    void put(const std::string& name, int limit = 5) { SAVEMRUITEM(ini(), "MRU", limit, name); }
};

TEST_F(RecentFiles, AreNewestFirstWithoutDoublesAndLimited) {
    for (const char* name : {"/a", "/b", "/c", "/A", "/d", "/e", "/f"}) put(name);
    EXPECT_EQ(list(), "/f\n/e\n/d\n/A\n/c\n");
}

TEST_F(RecentFiles, IgnoreWhatHasNoNameOrLimit) {
    put("/a");
    put("<untitled>");
    put("");
    put("/b", 0);
    EXPECT_EQ(list(), "/a\n");
}

TEST_F(RecentFiles, APathWithALineEndIsNotKeptSinceItWouldMakeTwoEntries) {
    put("/a");
    put("/b\nc");
    put("/d\re");
    EXPECT_EQ(list(), "/a\n");
}

TEST_F(RecentFiles, LoseOneEntryAndRenumber) {
    for (const char* name : {"/a", "/b", "/c"}) put(name);
    REMOVEMRUITEM(ini(), "MRU", "/B");
    EXPECT_EQ(list(), "/c\n/a\n");
    EXPECT_EQ(PROFILESTRGET(ini(), "MRU", "2"), "/a");
}

}  // namespace
}  // namespace tarn
