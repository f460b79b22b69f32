// SPDX-License-Identifier: Apache-2.0
//
// What 'check' and 'rebuild' make of the files of a table after a death at any call of an operation, on a
// disk in memory: the commands run in this process.
#include "tarn_data/commands/commands.h"
#include "tarn_data/said.h"
#include "unit/kernel/filedeaths_fixture.h"

#include <algorithm>
#include <iterator>

namespace tarn::datatool {

std::string& said() {
    static std::string text;
    return text;
}

// What the commands say, as the program has it (tarn_data.cpp).
int tell(const Problem& problem) {
    said() += problem.what + "\n" + problem.next + "\n";
    return problem.status;
}
void note(const std::string& text) {
    said() += "note: " + text + "\n";
}
int print(const std::string& text) {
    said() += text;
    return Well;
}

namespace {

class ToolAfterDeaths : public TableEnds {
protected:
    static std::string declaration(std::int32_t capacity) {
        const std::string bounds = capacity == UNBOUNDED ? "" : "[" + std::to_string(capacity) + "]";
        return "t : table" + bounds +
               "\n\tr : record\n\t\tnumber : integer\n\t\tname : string[8]\n\t\tweight : real\n"
               "\t\tcode : Tchars[1:3]\n\tend record\nend table\n";
    }
    Arguments arguments() {
        Arguments made;
        made.files = {layout_->file};
        made.type = "/d/t.type";
        files().put(made.type, declaration(layout_->maxlength));
        return made;
    }
    int run(int (*command)(const Arguments&), const Arguments& words) {
        said().clear();
        const int status = command(words);
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(files().openHandles(), 0);
        return status;
    }
    // Without being told the keys, unless an index is lost.
    int rebuildFiles() {
        Arguments words = arguments();
        const int status = run(datatool::rebuild, words);
        if (status == Well || said().find("Give the fields of all indexes with --keys") == std::string::npos)
            return status;
        static const char* const fields[] = {"number", "name", "weight", "code"};
        for (const std::int32_t map : layout_->maps) {
            std::vector<std::string> key;
            for (std::uint32_t rest = static_cast<std::uint32_t>(map); rest != 0; rest <<= 8U)
                key.emplace_back(fields[(rest >> 24U) - 1]);
            if (!key.empty()) words.keys.push_back(key);
        }
        return run(datatool::rebuild, words);
    }
    // A table of six rows, and a file of three others that is to take its place.
    Arguments startConvert(bool otherKeys) {
        start(layouts[1], 6);
        close();
        fresh_ = {newRow(101), newRow(102), newRow(103)};
        std::string text = "number,name,weight,code\n";
        for (const Cells& cells : fresh_) {
            const std::string number = std::to_string(numberOf(cells));
            text += number + ",n" + number + "," + std::to_string(numberOf(cells) / 4.0) + ",c\n";
        }
        files().put("/d/a.csv", text);
        Arguments words = arguments();
        words.files = {"/d/a.csv", layout_->file};
        words.toTable = true;
        if (otherKeys) words.keys = {{"number"}, {"name", "number"}};
        return words;
    }
    // The number of the call that moves the first new index.
    int firstExchange(const Arguments& words) {
        files().clearLog();
        EXPECT_EQ(run(datatool::convert, words), Well) << said();
        const std::vector<std::string> log = files().log();
        const auto at = std::find_if(log.begin(), log.end(), [](const std::string& call) {
            return call.starts_with("rename ") && call.ends_with(" /d/a.~i1");
        });
        EXPECT_NE(at, log.end());
        return static_cast<int>(at - log.begin()) + 1;
    }
    // False when the process has died in it.
    bool convertAndDie(const Arguments& words, int call) {
        files().dieAt(call, false);
        try {
            EXPECT_EQ(datatool::convert(words), Well) << said();
        } catch (const os::ProcessDeath&) {}
        const bool ended = !files().dead();
        end(endings[0]);
        return ended;
    }
    void expectOldOrNew(bool died, int& told) {
        const bool whole = run(datatool::check, arguments()) == Well;
        EXPECT_TRUE(died || whole) << said();
        EXPECT_EQ(said().find("no index"), std::string::npos) << said();
        if (!whole) {
            ++told;
            EXPECT_NE(said().find("the making of a new one did not end"), std::string::npos) << said();
            EXPECT_EQ(run(datatool::rebuild, arguments()), Well) << said();
            EXPECT_EQ(run(datatool::check, arguments()), Well) << said();
        }
        table = closedTable(layout_->maps, layout_->maxlength);
        if (open(layout_->file) != 0) return;  // it has other keys
        EXPECT_TRUE(same(rows(), model_) || same(rows(), fresh_)) << said();
        EXPECT_TRUE(died || same(rows(), fresh_));
        abandon();
    }
    void expectMended(const Rows& after) {
        const bool whole = run(datatool::check, arguments()) == Well;
        const std::string checked = said();
        const bool good = look().empty();
        if (FileExists(t(), KindTable)) abandon();
        EXPECT_TRUE(!whole || good) << checked;
        EXPECT_EQ(rebuildFiles(), Well) << said() << checked;
        EXPECT_EQ(run(datatool::check, arguments()), Well) << said();
        table = closedTable(layout_->maps, layout_->maxlength);
        ASSERT_EQ(open(layout_->file), 0);
        expectWhole();
        EXPECT_TRUE(same(rows(), model_) || same(rows(), after)) << said();
    }

    Rows fresh_;
};

TEST_F(ToolAfterDeaths, AfterADeathAtAnyCallCheckTellsAndRebuildGivesTheRowsBack) {
    eachOperation([this](const tarn::Layout& layout, std::size_t which) {
        for (const Ending& ending : endings) {
            const bool extreme = &ending == std::begin(endings) || &ending == std::end(endings) - 1;
            if (!extreme && &layout != &layouts[1]) continue;  // to be quick
            eachDeath(
                layout, which, ending, [] {},
                [&](bool, const Rows& after) {
                    end(ending);
                    expectMended(after);
                });
        }
    });
}

TEST_F(ToolAfterDeaths, CheckTellsWhichRowWasBeingReplacedAndRebuildFinishesIt) {
    start(layouts[0], 6);
    const Operation operation = operations()[3];
    ASSERT_STREQ(operation.name, "update a key");
    int told = 0;
    bool died = true;
    for (int call = 1; died; ++call) {
        start(layouts[0], 6);
        close();
        ASSERT_EQ(open(layout_->file), 0);
        died = !dieIn(operations()[3], call, false);
        end(endings[0]);
        run(datatool::check, arguments());
        if (said().find("Row 2 was being replaced") == std::string::npos) continue;
        ++told;
        EXPECT_EQ(said().find("behind its"), std::string::npos) << said();
        EXPECT_EQ(rebuildFiles(), Well);
        EXPECT_NE(said().find("row 2 was being replaced: replaced."), std::string::npos) << said();
        EXPECT_EQ(said().find("cut off"), std::string::npos) << said();
        for (const std::string& name : names()) EXPECT_EQ(name.find(".torn"), std::string::npos);
        table = closedTable(layout_->maps, layout_->maxlength);
        ASSERT_EQ(open(layout_->file), 0);
        EXPECT_TRUE(sameCells(rows()[1], newRow(60)));
    }
    EXPECT_GT(told, 0);
}

// While the files take their places; ahead of that nothing of the old table changes. A rebuild knows the keys.
TEST_F(ToolAfterDeaths, AConvertThatDiesLeavesATableThatIsWholeOrThatCheckTellsOf) {
    for (const bool otherKeys : {false, true}) {
        const int first = firstExchange(startConvert(otherKeys));
        int told = 0;
        bool died = true;
        for (int call = first; died && !HasFailure(); ++call) {
            SCOPED_TRACE(std::string(otherKeys ? "other keys" : "the same keys") + ", before call " +
                         std::to_string(call));
            died = !convertAndDie(startConvert(otherKeys), call);
            expectOldOrNew(died, told);
        }
        EXPECT_GT(told, 1);
    }
}

// A row moves to a place that the disk never gets.
TEST_F(ToolAfterDeaths, ARowThatADeletionMovedIsMissedAndBroughtBack) {
    start(layouts[0], 8);
    close();
    ASSERT_EQ(open(layout_->file), 0);
    ASSERT_EQ(deleting(2).run(), 0);
    run(datatool::check, arguments());
    EXPECT_NE(said().find("note: /d/a.~d1: It guards rows that deletions have moved"), std::string::npos)
        << said();
    abandon();
    const std::string torn(rowBytes, '\xFE');
    std::string rows = bytes("a.tab");
    ASSERT_EQ(rows.size(), 7 * torn.size());
    files().put(layout_->file, rows.replace(torn.size(), torn.size(), torn));
    EXPECT_EQ(look(), "error 656");
    EXPECT_EQ(run(datatool::check, arguments()), Failed);
    EXPECT_NE(said().find("A row that a deletion has moved is missing"), std::string::npos) << said();
    EXPECT_EQ(rebuildFiles(), Well) << said();
    EXPECT_NE(said().find("1 row that could not be read dropped; what was there stands in '/d/a.tab.torn'."),
              std::string::npos)
        << said();
    EXPECT_NE(said().find("1 row that deletions had moved, and that were lost, brought back."),
              std::string::npos)
        << said();
    EXPECT_EQ(bytes("a.tab.torn"), torn);
    EXPECT_EQ(run(datatool::check, arguments()), Well) << said();
    table = closedTable(layout_->maps, layout_->maxlength);
    ASSERT_EQ(open(layout_->file), 0);
    EXPECT_EQ(TableCount(t()), 7);
    expectWhole();
}

// By a declaration that is not that of the rows all of them would go.
TEST_F(ToolAfterDeaths, ManyRowsThatCannotBeReadAreNotDropped) {
    start(layouts[0], 8);
    close();
    ASSERT_EQ(open(layout_->file), 0);
    ASSERT_EQ(deleting(2).run(), 0);
    abandon();
    std::string rows = bytes("a.tab");
    for (std::size_t at = 4; at < rows.size() / 2; at += rowBytes) rows.replace(at, 4, 4, '\xFE');
    files().put(layout_->file, rows);
    EXPECT_EQ(rebuildFiles(), Failed);
    EXPECT_NE(said().find("row 1: its bytes are no value of field 'name'"), std::string::npos) << said();
    EXPECT_EQ(bytes("a.tab"), rows);
    EXPECT_EQ(names(), (std::vector<std::string>{"a.i1", "a.tab", "a.~d1", "t.type"}));
}

}  // namespace
}  // namespace tarn::datatool
