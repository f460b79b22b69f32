// SPDX-License-Identifier: Apache-2.0
//
// Resource files as people write them, at random: odd layout, comments wherever one may stand, both line ends, unknown
// statements and properties. What is not changed keeps its bytes, and a change of one property is one line.
#include "platform/resources/rctext.h"
#include "support/rounds.h"
#include "support/steerable.h"
#include "unit/platform/generated_dialog.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tarn::platform {
namespace {

const std::string file = "/home/user/a.rc";

// Gives a text that was written by the operations the looks of one that a person has worked on.
class Roughener {
public:
    explicit Roughener(DialogMaker& make) : make_(make), eol_(make.oneIn(2) ? "\r\n" : "\n") {}

    std::string operator()(const std::string& written) {
        std::string result = make_.oneIn(4) ? "\xef\xbb\xbf" : "";
        result += strangers();
        for (std::size_t at = 0; at < written.size();) {
            const std::size_t end = written.find('\n', at);
            result += between() + line(written.substr(at, end - at)) + eol_;
            at = end + 1;
        }
        result += strangers();
        if (make_.oneIn(3)) result.resize(result.size() - eol_.size());  // the last line has no end
        return result;
    }

private:
    std::string comment() {
        static const char* const words[] = {"// a word", "//", "// END", "// \"open", "//x=1", "// D DIALOG"};
        return words[make_.below(std::size(words))];
    }
    std::string between() {
        std::string lines;
        while (make_.oneIn(6)) lines += (make_.oneIn(2) ? "" : blanks() + comment()) + eol_;
        return lines;
    }
    std::string strangers() {
        static const char* const lines[] = {"strange words that nobody knows", "#define IDX 77",
                                            "logo%d BITMAP  \"a b\\\\c.bmp\"  // picture",
                                            "STRINGTABLE|BEGIN|  1, \"one // no comment\"|END"};
        std::string result;
        for (const char* one : lines) {
            if (make_.oneIn(2)) continue;
            std::string text = one;
            if (const std::size_t at = text.find("%d"); at != std::string::npos)
                text.replace(at, 2, std::to_string(++strangers_));
            if (text.starts_with("#define") && std::exchange(defined_, true)) continue;
            for (std::size_t at = 0; (at = text.find('|', at)) != std::string::npos;)
                text.replace(at, 1, eol_);
            result += text + eol_ + between();
        }
        return result;
    }
    std::string blanks() {
        return std::string(static_cast<std::size_t>(make_.below(5)), make_.oneIn(4) ? '\t' : ' ');
    }
    // Other blanks in front, around the "=" and behind, and a comment; a value keeps its bytes.
    std::string line(const std::string& text) {
        std::string body = text.substr(std::min(text.find_first_not_of(' '), text.size()));
        const std::size_t equals = body.find('=');
        if (equals != std::string::npos && make_.oneIn(4))
            body = body.substr(0, equals) + blanks() + "=" + blanks() + body.substr(equals + 1);
        return blanks() + body +
               (make_.oneIn(4)   ? " " + blanks() + comment()
                : make_.oneIn(6) ? blanks()
                                 : "");
    }

    DialogMaker& make_;
    std::string eol_;
    int strangers_ = 0;
    bool defined_ = false;
};

class LosslessSoak : public ::testing::Test {
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
    // A file with the dialog Made, and often its menu, in rough text.
    std::string makeFile(DialogMaker& make) {
        newDisk();
        const bool withMenu = make.oneIn(3);
        const ObjectArray menu = withMenu ? make.menu("MadeMenu") : ObjectArray{};
        EXPECT_EQ(ResourceWrite(make.dialog("Made", withMenu ? "MadeMenu" : ""), menu, file), "");
        const std::string rough = Roughener(make)(text());
        newDisk();
        disk().put(file, rough);
        return rough;
    }
    // The dialog and its menu.
    static void read(ObjectArray& dialog, ObjectArray& menu) {
        ASSERT_EQ(ResourceRead(file, "Made", dialog), "");
        menu = {};
        if (dialog[0].find("\nMENU=MadeMenu\n") != std::string::npos) {
            ASSERT_EQ(ResourceRead(file, "MadeMenu", menu), "");
        }
    }

private:
    std::unique_ptr<os::SteeredFiles> disk_ = std::make_unique<os::SteeredFiles>();
    os::FileSystem* before_ = nullptr;
};

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        lines.push_back(text.substr(at, end - at));
        at = end;
    }
    return lines;
}

// The lines that are left of both texts when what they have in common at their starts and ends is taken away.
struct Rest {
    std::vector<std::string> before, after;
};
Rest restOf(const std::string& before, const std::string& after) {
    Rest rest{linesOf(before), linesOf(after)};
    std::size_t same = 0;
    while (same < rest.before.size() && same < rest.after.size() && rest.before[same] == rest.after[same])
        ++same;
    rest.before.erase(rest.before.begin(), rest.before.begin() + static_cast<std::ptrdiff_t>(same));
    rest.after.erase(rest.after.begin(), rest.after.begin() + static_cast<std::ptrdiff_t>(same));
    while (!rest.before.empty() && !rest.after.empty() && rest.before.back() == rest.after.back())
        rest.before.pop_back(), rest.after.pop_back();
    return rest;
}

TEST_F(LosslessSoak, WhatIsWrittenUnchangedIsNotWritten) {
    const int count = rounds(200);
    for (int round = 0; round < count && !HasFailure(); ++round) {
        SCOPED_TRACE("seed " + std::to_string(round));
        DialogMaker make(static_cast<unsigned>(round) + 5'000'000);
        const std::string rough = makeFile(make);
        const os::FileInfo info = os::infoOf(file);
        ObjectArray dialog, menu;
        read(dialog, menu);
        ASSERT_EQ(ResourceWrite(dialog, menu, file), "");
        ASSERT_EQ(text(), rough);
        ASSERT_EQ(os::infoOf(file).inode, info.inode);
        ASSERT_EQ(os::infoOf(file).modified, info.modified);
    }
}

// The line of a property in a list, changed to a value that it may have; empty if it cannot be.
std::string otherValue(DialogMaker& make, const PropertyRow& row, const std::string& line) {
    std::string value;
    if (row.kind != ValueKind::Plain)
        value = toListValue(row.kind, make.bytes(30, row.kind == ValueKind::File));
    else if (row.options.starts_with("INTEGER["))
        value = std::to_string(make.below(500)) + " 7 8 9";
    else if (isNumeric(row))
        value = std::to_string(make.below(3));
    const std::string changed = std::string(row.name) + "=" + value;
    return value.empty() || changed == line ? "" : changed;
}

// Changes one property of one object; the name of the property, empty if none was changed.
std::string changeOne(DialogMaker& make, ObjectArray& objects) {
    const auto end = std::find(objects.begin(), objects.end(), "");
    std::string& list =
        objects[static_cast<std::size_t>(make.below(static_cast<int>(end - objects.begin())))];
    const Type type = parsePropertyList(list).type;
    const std::span<const PropertyRow> rows = propertiesOf(type);
    const PropertyRow& row = rows[static_cast<std::size_t>(make.below(static_cast<int>(rows.size())))];
    const std::size_t at = list.find("\n" + std::string(row.name) + "=") + 1;
    if (at == 0 || row.name == "NAME" || row.name == "TYPEOF" || row.name == "MENU") return {};
    const std::size_t length = list.find('\n', at) - at;
    const std::string changed = otherValue(make, row, list.substr(at, length));
    if (changed.empty()) return {};
    list.replace(at, length, changed);
    return std::string(row.name);
}

TEST_F(LosslessSoak, AChangedPropertyIsOneLineAndNothingElse) {
    const int count = rounds(200);
    int changes = 0;
    for (int round = 0; round < count && !HasFailure(); ++round) {
        SCOPED_TRACE("seed " + std::to_string(round));
        DialogMaker make(static_cast<unsigned>(round) + 6'000'000);
        const std::string rough = makeFile(make);
        ObjectArray dialog, menu, dialogNow, menuNow;
        read(dialog, menu);
        const std::string changed = changeOne(make, !menu[0].empty() && make.oneIn(3) ? menu : dialog);
        if (changed.empty()) continue;
        SCOPED_TRACE(changed);
        ++changes;
        ASSERT_EQ(ResourceWrite(dialog, menu, file), "");
        read(dialogNow, menuNow);
        ASSERT_TRUE(dialogNow == dialog && menuNow == menu);
        const Rest rest = restOf(rough, text());
        ASSERT_LE(rest.before.size(), 1U) << rest.before.front() << rest.before.back();
        ASSERT_EQ(rest.after.size(), 1U);
        ASSERT_NE(upper(rest.after[0]).find(changed), std::string::npos) << rest.after[0];
        if (rest.before.empty()) continue;
        const std::size_t comment = rest.before[0].rfind(" //");
        if (comment != std::string::npos && rest.before[0].find('"', comment) == std::string::npos) {
            ASSERT_TRUE(rest.after[0].ends_with(rest.before[0].substr(comment)))
                << rest.before[0] << rest.after[0];
        }
    }
    EXPECT_GT(changes, count / 4);
}

TEST_F(LosslessSoak, ARenamedDialogChangesItsHeadAlone) {
    const int count = rounds(100);
    for (int round = 0; round < count && !HasFailure(); ++round) {
        SCOPED_TRACE("seed " + std::to_string(round));
        DialogMaker make(static_cast<unsigned>(round) + 7'000'000);
        const std::string rough = makeFile(make);
        ASSERT_EQ(ResourceRename(file, "Made", "Another"), "");
        const Rest rest = restOf(rough, text());
        ASSERT_EQ(rest.before.size(), 1U);
        ASSERT_EQ(rest.after.size(), 1U);
        ASSERT_EQ(ResourceRename(file, "Another", "Made"), "");
        ASSERT_EQ(text(), rough);
    }
}

TEST_F(LosslessSoak, ADeletedDialogTakesItsLinesAlone) {
    const int count = rounds(100);
    for (int round = 0; round < count && !HasFailure(); ++round) {
        SCOPED_TRACE("seed " + std::to_string(round));
        DialogMaker make(static_cast<unsigned>(round) + 8'000'000);
        const std::string rough = makeFile(make);
        const RcFile parsed = parseResourceText(rough);
        const Span span = parsed.find(RcKind::Window, "Made")->span;
        ASSERT_EQ(ResourceDelete(file, "Made"), "");
        ASSERT_EQ(text(), rough.substr(0, span.begin) + rough.substr(span.end));
        ASSERT_EQ(ResourceInfo(file, "DIALOG", "Made").text, "");
    }
}

// ---- deaths and failures ----

TEST_F(LosslessSoak, ADeathAtAnyCallOfASaveLeavesTheOldOrTheNewFile) {
    const int count = rounds(4);
    for (int round = 0; round < count && !HasFailure(); ++round) {
        DialogMaker make(static_cast<unsigned>(round) + 9'000'000);
        const std::string rough = makeFile(make);
        ObjectArray dialog, menu;
        read(dialog, menu);
        dialog[0] = makePropertyList("Made", Type::Dialog, {{"CAPTION", "another " + std::to_string(round)}});
        ASSERT_EQ(ResourceWrite(dialog, menu, file), "");
        const std::string after = text();
        int calls = 0;
        for (int ended = 0; ended == 0; ++calls)
            for (const bool midway : {false, true}) {
                SCOPED_TRACE("seed " + std::to_string(round) + ", call " + std::to_string(calls + 1));
                newDisk();
                disk().put(file, rough);
                disk().dieAt(calls + 1, midway);
                try {
                    ended = ResourceWrite(dialog, menu, file).empty() ? 1 : 0;
                } catch (const os::ProcessDeath&) {
                    ended = 0;
                }
                disk().revive();
                const std::string now = text();
                ASSERT_TRUE(now == rough || now == after);
                ASSERT_TRUE(ended == 0 || now == after);
            }
        EXPECT_GT(calls, 3);
    }
}

TEST_F(LosslessSoak, AFullDiskAtAnyCallOfASaveLeavesTheOldFileAndSaysSo) {
    const int count = rounds(4);
    for (int round = 0; round < count && !HasFailure(); ++round) {
        DialogMaker make(static_cast<unsigned>(round) + 10'000'000);
        const std::string rough = makeFile(make);
        ObjectArray dialog, menu;
        read(dialog, menu);
        dialog[0] = makePropertyList("Made", Type::Dialog, {{"CAPTION", "another " + std::to_string(round)}});
        bool ended = false;
        for (int call = 1; !ended; ++call) {
            SCOPED_TRACE("seed " + std::to_string(round) + ", write " + std::to_string(call));
            newDisk();
            disk().put(file, rough);
            disk().failAt(os::FileCall::Write, call, os::FileError::DiskFull);
            const std::string error = ResourceWrite(dialog, menu, file);
            ended = error.empty();
            ASSERT_TRUE(ended || error.starts_with("'" + file + "' cannot be saved. ")) << error;
            ASSERT_EQ(text() == rough, !ended);
            std::vector<std::string> names;
            disk().list("/home/user", names);
            ASSERT_EQ(names, std::vector<std::string>{"a.rc"});
        }
    }
}

}  // namespace
}  // namespace tarn::platform
