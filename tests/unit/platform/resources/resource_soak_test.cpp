// SPDX-License-Identifier: Apache-2.0
//
// Random dialogs go into a file, out of it, and in again: equal lists, equal bytes. And every resource file of
// the system itself is written unchanged without changing a byte.
#include "os/files.h"
#include "platform/resources/rctext.h"
#include "support/places.h"
#include "support/rounds.h"
#include "support/steerable.h"
#include "unit/platform/generated_dialog.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace tarn::platform {
namespace {

const std::string file = "/home/user/a.rc";
const std::string first = "// before\nlogo BITMAP \"x.bmp\"\n#define IDX 77\n",
                  last = "V VERSIONINFO\nBEGIN\nEND\nOther DIALOG\n  Label x IDX\nEND\n// after\n";

// Files in memory, so that no round waits for a disk.
class ResourceSoak : public ::testing::Test {
protected:
    void SetUp() override { before_ = os::useFiles(&disk()); }
    void TearDown() override { os::useFiles(before_); }
    void newDisk() {
        disk_ = std::make_unique<os::SteeredFiles>();
        disk_->putFolder("/home/user");
        os::useFiles(disk_.get());
    }
    os::SteeredFiles& disk() { return *disk_; }
    std::string text() { return disk_->contents(file); }
    static ObjectArray objects(const std::string& name) {
        ObjectArray array;
        EXPECT_EQ(ResourceRead(file, name, array), "");
        return array;
    }
    // Stops at what differs, since whole arrays are long.
    static void expectEqual(const ObjectArray& given, const ObjectArray& read) {
        for (std::size_t i = 0; i < given.size(); ++i) ASSERT_EQ(read[i], given[i]) << "element " << i;
    }

private:
    std::unique_ptr<os::SteeredFiles> disk_ = std::make_unique<os::SteeredFiles>();
    os::FileSystem* before_ = nullptr;
};

TEST_F(ResourceSoak, WhatIsWrittenIsReadBackAndWrittenAgainAsItIs) {
    const int count = rounds(200);
    for (int round = 0; round < count && !HasFatalFailure(); ++round) {
        SCOPED_TRACE("seed " + std::to_string(round));
        DialogMaker make(static_cast<unsigned>(round));
        const bool withMenu = make.oneIn(3);
        const ObjectArray dialog = make.dialog("Made", withMenu ? "MadeMenu" : "");
        const ObjectArray menu = withMenu ? make.menu("MadeMenu") : ObjectArray{};
        newDisk();
        if (make.oneIn(2)) disk().put(file, first);
        ASSERT_EQ(ResourceWrite(dialog, menu, file), "");
        const std::string written = text();
        expectEqual(dialog, objects("Made"));
        if (withMenu) expectEqual(menu, objects("MadeMenu"));
        ASSERT_EQ(ResourceWrite(objects("Made"), menu, file), "");
        ASSERT_EQ(text(), written);
        disk().put(file, written + last);
        ASSERT_EQ(ResourceWrite(objects("Made"), menu, file), "");
        ASSERT_EQ(text(), written + last);
    }
}

// ---- changes ----

// Puts a comment above each object that tells its place, and gives the changed text.
std::string commented(const std::string& written) {
    const RcFile parsed = parseResourceText(written);
    std::string result = written;
    const RcStatement* const made = parsed.find(RcKind::Window, "Made");
    for (std::size_t i = made->objects.size(); i-- > 0;)
        result.insert(made->objects[i].head.begin, "// comment " + std::to_string(i + 1) + ".\n");
    return result;
}

struct Kept {
    std::string comment, number;
};

Kept keptBy(const RcFile& parsed, const RcObject& object) {
    const std::string above = parsed.text.substr(object.span.begin, object.head.begin - object.span.begin);
    return {above, object.number};
}

// Changes some objects: their values, their places, and whether they are there.
ObjectArray changed(DialogMaker& make, const ObjectArray& from) {
    std::vector<std::string> lists;
    for (const std::string& list : from)
        if (!list.empty() && (lists.empty() || !make.oneIn(4))) lists.push_back(list);
    for (std::size_t i = 1; i < lists.size(); ++i) {
        const ParsedList old = parsePropertyList(lists[i]);
        if (make.oneIn(8)) lists[i] = make.list(old.name, old.type);
        if (make.oneIn(10))
            std::swap(lists[i],
                      lists[1 + static_cast<std::size_t>(make.below(static_cast<int>(lists.size()) - 1))]);
    }
    for (int more = make.below(4); more > 0 && lists.size() <= MAX_CONTROLS; --more)
        lists.insert(lists.begin() + 1 + make.below(static_cast<int>(lists.size())),
                     make.list("added" + std::to_string(more), make.controlType()));
    ObjectArray result{};
    std::copy(lists.begin(), lists.end(), result.begin());
    return result;
}

TEST_F(ResourceSoak, AChangeIsReadBackAndNamedObjectsKeepTheirCommentsAndNumbers) {
    const int count = rounds(200);
    for (int round = 0; round < count && !HasFatalFailure(); ++round) {
        SCOPED_TRACE("seed " + std::to_string(round));
        DialogMaker make(static_cast<unsigned>(round) + 1'000'000);
        newDisk();
        disk().put(file, first);
        ASSERT_EQ(ResourceWrite(make.dialog("Made", ""), {}, file), "");
        const std::string before = commented(text());
        disk().put(file, before + last);
        const ObjectArray wanted = changed(make, objects("Made"));
        ASSERT_EQ(ResourceWrite(wanted, {}, file), "");
        expectEqual(wanted, objects("Made"));
        ASSERT_TRUE(text().starts_with(first) && text().ends_with(last));
        const RcFile old = parseResourceText(before), now = parseResourceText(text());
        std::map<std::string, Kept> kept;
        for (const RcObject& object : old.find(RcKind::Window, "Made")->objects)
            if (isIdentifier(object.name) && object.name != "twin") kept[object.name] = keptBy(old, object);
        for (const RcObject& object : now.find(RcKind::Window, "Made")->objects) {
            const auto place = kept.find(object.name);
            if (place == kept.end()) continue;
            ASSERT_EQ(keptBy(now, object).comment, place->second.comment) << object.name;
            ASSERT_EQ(keptBy(now, object).number, place->second.number) << object.name;
        }
        std::set<int> numbers;
        for (const RcObject& object : now.find(RcKind::Window, "Made")->objects)
            if (isIdentifier(object.name) && object.name != "twin") {
                ASSERT_TRUE(numbers.insert(now.numberOf(object)).second) << object.name;
            }
    }
}

// ---- the files of the system ----

TEST(ResourceFiles, OfTheSystemAreWrittenUnchangedWithoutChangingAByte) {
    int files = 0, windows = 0;
    for (const char* folder : {"/src", "/examples"})
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(SOURCE_DIR + std::string(folder))) {
            if (entry.path().extension() != ".rc") continue;
            SCOPED_TRACE(entry.path());
            ++files;
            std::ostringstream bytes;
            bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
            const RcFile parsed = parseResourceText(bytes.str());
            os::SteeredFiles disk;
            disk.put(file, bytes.str());
            os::FileSystem* const before = os::useFiles(&disk);
            for (const RcStatement& statement : parsed.statements) {
                EXPECT_TRUE(statement.fault.empty()) << statement.fault.line << ": " << statement.fault.text;
                if (statement.kind != RcKind::Window) continue;
                ++windows;
                ObjectArray dialog, menu{}, again;
                EXPECT_EQ(ResourceRead(file, statement.name, dialog), "");
                const Properties own = statement.self.values();
                const std::string_view named = valueOf(own, statement.self.type, "MENU");
                if (!named.empty() && parsed.find(RcKind::Menu, named) != nullptr) {
                    EXPECT_EQ(ResourceRead(file, std::string(named), menu), "");
                }
                EXPECT_EQ(ResourceWrite(dialog, menu, file), "");
                EXPECT_EQ(disk.contents(file), bytes.str()) << statement.name;
                EXPECT_EQ(ResourceWrite(dialog, menu, "/home/user/fresh.rc"), "");
                EXPECT_EQ(ResourceRead("/home/user/fresh.rc", statement.name, again), "");
                EXPECT_EQ(again, dialog) << statement.name;
            }
            os::useFiles(before);
        }
    EXPECT_GT(files, 0);
    EXPECT_GT(windows, 5);
}

}  // namespace
}  // namespace tarn::platform
