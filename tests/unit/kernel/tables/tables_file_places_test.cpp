// SPDX-License-Identifier: Apache-2.0
//
// Where the index files of tables stand, and what may stand there already.
#include "kernel/index/index_file.h"
#include "kernel/tables/tables_file_mend.h"
#include "kernel/values/adt.h"
#include "support/tempfolder.h"
#include "unit/kernel/filetables_fixture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace tarn {
namespace {

class IndexPlaces : public FileTables {
protected:
    using Names = std::vector<std::string>;

    void put(const std::string& name, std::string_view bytes) { files().put("/d/" + name, bytes); }
    // A table with rows from `first` to `last`, and its indexes.
    void putTable(const std::string& name, int first, int last, const KeyMaps& maps = {byNumber}) {
        TableValue other = closedTable(maps);
        FileOpen(other.get(), KindTable, "/d/" + name);
        for (int i = first; i <= last; ++i)
            TableAdd(other.get(), 1, recordOf(row(i, "n" + std::to_string(i))).get());
        FileClose(other.get(), KindTable);
        ASSERT_EQ(takeError(), 0);
    }
    std::int32_t rebuildFile(const std::string& name) { return RebuildTableFile(*t(), "/d/" + name).error; }
    // All files and what they hold.
    std::vector<std::pair<std::string, std::string>> everything() {
        std::vector<std::pair<std::string, std::string>> all;
        for (const std::string& name : names()) all.emplace_back(name, bytes(name));
        return all;
    }
};

// ---- keys ----

TEST_F(IndexPlaces, AKeyThatIsTooLongForAFileIsRefusedBeforeAnythingIsMade) {
    const Cells like = {text("", 1100000)};
    table = closedTable({0x01010101}, UNBOUNDED, like);
    EXPECT_EQ(open(), 660);
    EXPECT_EQ(names(), Names());
    files().put("/d/a.tab", std::string(1100004, '\0'));
    put("a.i1", std::string(2000, '\0'));
    EXPECT_EQ(open(), 660);
    EXPECT_EQ(bytes("a.i1"), std::string(2000, '\0'));
    put("a.tab", "torn");
    EXPECT_EQ(rebuildFile("a.tab"), 660);
    EXPECT_EQ(bytes("a.tab"), "torn");
}

// ---- the rows among the indexes ----

TEST_F(IndexPlaces, ATableIsNotOpenedUnderTheNameOfItsOwnIndex) {
    for (const char* name : {"a.i1", "b.i3", "c.i5"}) {
        table = closedTable({byNumber});
        EXPECT_EQ(open(std::string("/d/") + name), 657) << name;
        EXPECT_EQ(names(), Names()) << name;
    }
    put("a.i1", std::string(2 * rowBytes, '\0'));
    put("b.i2", "");
    const auto before = everything();
    table = closedTable({byNumber});
    for (const char* name : {"a.i1", "b.i2"}) {
        EXPECT_EQ(open(std::string("/d/") + name), 657) << name;
        EXPECT_EQ(rebuildFile(name), 657) << name;
    }
    EXPECT_EQ(everything(), before);
}

TEST_F(IndexPlaces, ATableWithoutIndexesMayHaveSuchAName) {
    table = closedTable({});
    EXPECT_EQ(open("/d/b.i3"), 0);
    EXPECT_EQ(add(row(1, "a")), 0);
    EXPECT_EQ(names(), Names{"b.i3"});
    close();
    EXPECT_EQ(open("/d/b.i3"), 0);
    EXPECT_EQ(numbers(), std::vector<int>{1});
}

TEST_F(IndexPlaces, AFileThatIsItsOwnIndexByALinkIsRefused) {
    put("rows", std::string(rowBytes, '\0'));
    files().putLink("rows", "/d/a.i1");
    files().putLink("rows", "/d/a.tab");
    files().putLink("rows", "/d/b.tab");
    files().putHardLink("/d/rows", "/d/b.~i2");
    files().putHardLink("/d/rows", "/d/c.tab");
    files().putHardLink("/d/rows", "/d/c.~n1");
    const auto before = everything();
    table = closedTable({byNumber, byName});
    for (const char* name : {"a.tab", "b.tab", "c.tab"}) {
        EXPECT_EQ(open(std::string("/d/") + name), 657) << name;
        EXPECT_EQ(rebuildFile(name), 657) << name;
    }
    EXPECT_EQ(everything(), before);
}

TEST_F(IndexPlaces, ALinkThatLeadsToTheNameOfAnIndexMakesNothing) {
    files().putLink("a.i1", "/d/a.tab");
    table = closedTable({byNumber});
    EXPECT_EQ(open(), 657);
    EXPECT_EQ(names(), Names{"a.tab"});
}

// ---- names that tables share ----

TEST_F(IndexPlaces, TheIndexesOfAScratchFileHaveNamesOfTheirOwn) {
    putTable("a.tab", 1, 3, {byNumber, byName});
    const auto before = everything();
    make({byNumber, byName}, UNBOUNDED, "/d/a.~sv");
    fill(5);
    EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab", "a.~sv", "a.~sv1", "a.~sv2"}));
    expectWhole();
    EXPECT_EQ(rebuild(), 0);
    EXPECT_EQ(clear(), 0);
    fill(2);
    table = TableValue();
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(everything(), before);
}

TEST_F(IndexPlaces, ATableIsNotMadeWhereItsIndexWouldTakeThePlaceOfAnothers) {
    putTable("orders.txt", 11, 13);
    const auto before = everything();
    for (const char* name : {"/d/orders.tab", "/d/orders", "/d/orders.x"}) {
        table = closedTable({byNumber});
        EXPECT_EQ(open(name), 656) << name;
        EXPECT_EQ(everything(), before) << name;
    }
    table = closedTable({});
    EXPECT_EQ(open("/d/orders.tab"), 0);  // which needs none
    EXPECT_EQ(names(), (Names{"orders.i1", "orders.tab", "orders.txt"}));
    expectWhole();
}

TEST_F(IndexPlaces, AnEmptyTableDoesNotTakeTheIndexOfAnother) {
    putTable("orders.txt", 11, 13);
    put("orders.tab", "");
    const auto before = everything();
    table = closedTable({byNumber});
    EXPECT_EQ(open("/d/orders.tab"), 656);
    EXPECT_EQ(rebuildFile("orders.tab"), 656);
    EXPECT_EQ(everything(), before);
}

TEST_F(IndexPlaces, AnIndexThatBecameAnothersIsNotReplaced) {
    make({byNumber});
    fill(3);
    std::string index = bytes("a.i1");
    put("a.txt", "");
    put("a.i1", index.replace(8, 5, "a.txt"));
    const auto before = everything();
    EXPECT_EQ(clear(), 656);
    EXPECT_EQ(rebuild(), 656);
    EXPECT_EQ(everything(), before);
    files().remove("/d/a.txt");
    EXPECT_EQ(rebuild(), 0);
    EXPECT_EQ(bytes("a.i1").substr(8, 6), std::string("a.tab\0", 6));
}

TEST_F(IndexPlaces, OpeningTakesNoIndexThatNamesATableBeside) {
    putTable("a.tab", 1, 2);
    for (const char* extension : {".tab", ".i1"})
        put(std::string("b") + extension, bytes(std::string("a") + extension));
    table = closedTable({byNumber});
    EXPECT_EQ(open("/d/b.tab"), 656);  // may be older rows
    EXPECT_EQ(rebuildFile("b.tab"), 0);
    EXPECT_EQ(open("/d/b.tab"), 0);
    expectWhole();
    EXPECT_EQ(bytes("b.i1").substr(8, 6), std::string("b.tab\0", 6));
}

TEST_F(IndexPlaces, ARenamedTableOpensAndSoDoesOneInAnotherCase) {
    putTable("a.tab", 1, 2);
    files().rename("/d/a.tab", "/d/b.tab");
    files().rename("/d/a.i1", "/d/b.i1");
    table = closedTable({byNumber});
    EXPECT_EQ(open("/d/b.tab"), 0);
    expectWhole();
    close();
    files().rename("/d/b.i1", "/d/A.i1");
    files().rename("/d/b.tab", "/d/A.TAB");
    put("a.tab", "another");
    EXPECT_EQ(open("/d/A.TAB"), 0);
}

TEST_F(IndexPlaces, ALongNameIsComparedAsFarAsItStandsInTheIndex) {
    const std::string name = std::string(60, 'n');
    putTable(name + ".tab", 1, 2);
    put(std::string(40, 'n'), "another");
    table = closedTable({byNumber});
    EXPECT_EQ(open("/d/" + name + ".tab"), 0);
    expectWhole();
}

// ---- what stands where an index belongs ----

TEST_F(IndexPlaces, WhatAnIndexIsALinkToStaysAsItIs) {
    put("precious", "somebody's text");
    put("a.tab", "");
    files().putLink("precious", "/d/a.i1");
    files().putHardLink("/d/precious", "/d/a.i2");
    make();
    fill(2);
    EXPECT_EQ(bytes("precious"), "somebody's text");
    EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab", "precious"}));
    files().putLink("precious", "/d/a.~n1");
    files().putHardLink("/d/precious", "/d/a.~n2");
    TableValue other = TableValue();
    TableInit(other.get(), UNBOUNDED, recordOf(row(0, "")).get(), {byNumber, byName}, {}, false);
    TableAdd(other.get(), 1, recordOf(row(5, "five")).get());
    AdtCopy(other.get(), t(), KindTable);
    EXPECT_EQ(takeError(), 0);
    expectWhole();
    EXPECT_EQ(numbers(), std::vector<int>{5});
    EXPECT_EQ(bytes("precious"), "somebody's text");
}

TEST_F(IndexPlaces, AnOpeningThatFailsPutsBackWhatStoodThere) {
    put("a.tab", "");
    put("a.i1", "of the user");
    files().put("/d/a.i2/x", "in a folder");
    const auto before = everything();
    table = closedTable({byNumber, byName});
    EXPECT_EQ(open(), 652);
    EXPECT_EQ(everything(), before);
    files().remove("/d/a.i2/x");
    files().removeFolder("/d/a.i2");
    put("a.i2", "of the user, too");
    const auto files2 = everything();
    int failures = 0;
    for (;; ++failures) {
        files().failAt(failures + 1, os::FileError::DiskFull);
        if (open() == 0) break;
        EXPECT_EQ(everything(), files2) << failures;
    }
    EXPECT_EQ(failures, 2 + 2 * 3);  // two stepped aside, two were opened, written and closed
    expectWhole();
}

TEST_F(IndexPlaces, AnIndexThatMayNotBeWrittenStaysWhenTheFolderMayNot) {
    put("a.tab", "");
    files().putOwner("/d/a.tab", 1000, 1000);
    files().put("/d/a.i1", "precious", 0444);
    files().putOwner("/d", 0, 0);
    const auto before = everything();
    table = closedTable({byNumber});
    EXPECT_EQ(open(), 652);
    EXPECT_EQ(everything(), before);
}

TEST_F(IndexPlaces, EmptyIndexesThatAreRightNeedNoFolderToWriteIn) {
    make();
    close();
    files().putOwner("/d", 0, 0);
    EXPECT_EQ(open(), 0);
    EXPECT_EQ(add(row(1, "a")), 0);
    expectWhole();
}

TEST_F(IndexPlaces, ATableIsClearedInAFolderThatMayNotBeWrittenAndOnAFullDisk) {
    for (const std::int32_t maxlength : {UNBOUNDED, 12}) {
        newDisk();
        make({byNumber, byName}, maxlength);
        fill(6);
        files().putOwner("/d", 0, 0);
        EXPECT_EQ(clear(), 0);
        expectWhole();
        EXPECT_EQ(numbers(), std::vector<int>());
        EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab"}));
        fill(3);
        files().setFreeBytes(0);
        EXPECT_EQ(clear(), 0);
        files().stopFailing();
        expectWhole();
        close();
        EXPECT_EQ(open(), 0);
        fill(2);
        expectWhole();
        table = TableValue();
    }
}

// As after a death in the clearing.
TEST_F(IndexPlaces, IndexesOfRowsThatAreGoneAreEmptiedWhereTheyStand) {
    putTable("a.tab", 1, 5, {byNumber, byName});
    put("a.tab", "");
    files().putOwner("/d/a.tab", 1000, 1000);
    files().putOwner("/d", 0, 0);
    table = closedTable({byNumber, byName});
    EXPECT_EQ(open(), 0);
    expectWhole();
    EXPECT_EQ(bytes("a.i1").size(), 1104U);
    fill(3);
    expectWhole();
}

TEST_F(IndexPlaces, AnIndexWithASecondNameIsNotEmptiedUnderBoth) {
    make({byNumber});
    fill(3);
    files().putHardLink("/d/a.i1", "/d/copy");
    const std::string index = bytes("copy");
    EXPECT_EQ(clear(), 0);
    expectWhole();
    EXPECT_EQ(bytes("copy"), index);
}

TEST_F(IndexPlaces, NamesBesideALongNameAreShortened) {
    const std::string name(252, 'n'), other = std::string(251, 'n') + "m", last(253, 'n');
    files().setCurrentFolder("/d");
    for (const std::string& file : {name, other}) {
        make({byNumber, byName}, UNBOUNDED, file);
        fill(3);
        EXPECT_EQ(rebuild(), 0);
        expectWhole();
        files().putHardLink("/d/" + file + ".i1", "/d/copy");  // new files are made for this
        EXPECT_EQ(clear(), 0);
        files().remove("/d/copy");
        fill(2);
        close();
        EXPECT_EQ(RebuildTableFile(*t(), file).error, 0);
        EXPECT_EQ(open(file), 0);
        expectWhole();
        close();
        EXPECT_EQ(names().size(), 3U);
        for (const std::string& made : names()) files().remove("/d/" + made);
    }
    std::vector<std::string> marked;
    for (const std::string& file : {name, other})
        for (const char* mark : {"~i", "~n"})
            for (const std::int32_t n : {1, 2})
                marked.push_back(MarkedIndexName(IndexFileName(file, n), mark));
    for (const std::string& path : marked) {
        EXPECT_LE(path.size(), 255U);
        EXPECT_EQ(std::count(marked.begin(), marked.end(), path), 1) << path;
    }
    EXPECT_EQ(MarkedIndexName("/d/" + std::string(251, 'n') + ".i1", "~i"),
              "/d/" + std::string(251, 'n') + ".~i1");
    EXPECT_TRUE(marked[0].ends_with(".~i1"));
    EXPECT_EQ(MarkedIndexName(std::string(250, 'n') + ".~sv1", "~n").size(), 255U);
    table = closedTable({byNumber});
    EXPECT_EQ(open(last), 657);
    EXPECT_EQ(names(), Names());
}

TEST_F(IndexPlaces, AFailedOpeningLeavesTheLinkAndRemovesWhatItMade) {
    files().putFolder("/d/e");
    files().putLink("e/b.tab", "/d/a.tab");
    files().put("/d/a.i1/x", "in a folder");
    for (const std::int32_t maxlength : {UNBOUNDED, 3}) {
        table = closedTable({byNumber}, maxlength);
        EXPECT_EQ(open(), 652);
        EXPECT_EQ(names(), (Names{"a.i1/x", "a.tab"}));
        EXPECT_FALSE(files().has("/d/e/b.tab"));
    }
}

// ---- on a real disk ----

class IndexPlacesOnDisk : public IndexPlaces {
protected:
    void SetUp() override {
        IndexPlaces::SetUp();
        real_ = std::make_unique<os::Steered>(os::realFiles());
    }
    void TearDown() override {
        table = TableValue();
        real_.reset();
        IndexPlaces::TearDown();
    }
    static std::uint32_t modeOf(const std::string& path) { return os::infoOf(path).mode & 0777U; }

    TempFolder folder;

private:
    std::unique_ptr<os::Steered> real_;
};

TEST_F(IndexPlacesOnDisk, APipeAtAnIndexsPlaceIsRefusedAtOpening) {
    table = closedTable({byNumber});
    for (const int rows : {0, 1}) {
        const std::string name = folder / "a" + std::to_string(rows);
        std::ofstream(name + ".tab") << std::string(static_cast<std::size_t>(rows * rowBytes), '\0');
        ASSERT_EQ(::mkfifo((name + ".i1").c_str(), 0600), 0);
        EXPECT_EQ(open(name + ".tab"), 657);
        EXPECT_TRUE(os::infoOf(name + ".i1").special);
    }
    const std::string fresh = folder / "b.tab";
    std::filesystem::create_symlink("/dev/null", folder / "b.i1");
    EXPECT_EQ(open(fresh), 657);
    EXPECT_FALSE(os::infoOf(fresh).exists);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "b.i1"));
}

TEST_F(IndexPlacesOnDisk, AnIndexHasThePermissionsOfItsRows) {
    const std::string name = folder / "a.tab", index = folder / "a.i1";
    make({byNumber}, UNBOUNDED, name);
    fill(3);
    for (const std::uint32_t mode : {0600U, 0664U, 0640U}) {
        ASSERT_EQ(os::files().setMode(name, mode), os::FileError::None);
        EXPECT_EQ(rebuild(), 0);
        EXPECT_EQ(modeOf(index), mode);
    }
    EXPECT_EQ(clear(), 0);
    EXPECT_EQ(modeOf(index), 0640U);
}

}  // namespace
}  // namespace tarn
