// SPDX-License-Identifier: Apache-2.0
//
// A table in a file, one in memory and a model do the same: errors, rows, their order, what is found.
#include "kernel/tables/tables_file_mend.h"
#include "unit/kernel/filetables_fixture.h"
#include "unit/kernel/table_model.h"

#include <random>

namespace tarn {
namespace {

constexpr std::size_t mostRows = 150;
constexpr int stepsOfRun = 15000, checkedSteps = 1000;

// boolean, enum, integer, fixed, real, text, characters, longer text
const Cells rowShape = {flag(false), ordinal(0),   integer(0),        fixedNumber(0),
                        real(0),     text("", 10), characters("", 5), text("", 40)};

struct Layout {
    const char* name;
    KeyMaps maps;
    std::int32_t maxlength;
};
const Layout layouts[] = {
    {"one integer", {MakeKeyMap(3)}, UNBOUNDED},
    {"one text, fixed", {MakeKeyMap(6)}, 100},
    {"fixed number and real", {MakeKeyMap(4), MakeKeyMap(5)}, UNBOUNDED},
    {"characters, long text, several", {MakeKeyMap(7), MakeKeyMap(8), MakeKeyMap(2, 1, 7)}, UNBOUNDED},
    {"four", {MakeKeyMap(3), MakeKeyMap(1, 2, 3, 4), MakeKeyMap(6, 5), MakeKeyMap(8, 7)}, UNBOUNDED},
    {"five",
     {MakeKeyMap(3), MakeKeyMap(6), MakeKeyMap(4), MakeKeyMap(8, 3), MakeKeyMap(5, 7, 6, 1)},
     UNBOUNDED},
    {"five, fixed", {MakeKeyMap(7, 6), MakeKeyMap(5, 4), MakeKeyMap(3), MakeKeyMap(2, 3), MakeKeyMap(8)}, 80},
};

Cells randomRow(std::mt19937& random) {
    const auto number = [&](int spread) {
        return static_cast<int>(random() % static_cast<unsigned>(spread)) - spread / 2;
    };
    const int n = number(700);
    return {flag(random() % 2 != 0),
            ordinal(number(256) & 255),
            integer(number(700)),
            fixedNumber(number(700) * 12345678901LL),
            real(n == 0 ? NAN : n * 0.25),
            text(std::string(random() % 3, '\xe4') + std::to_string(number(700)), 10),
            characters(std::to_string(number(700)), 5),
            text(std::string(random() % 30, 'z') + std::to_string(number(100)), 40)};
}

class FileTableModels : public FileTables, public ::testing::WithParamInterface<std::size_t> {
protected:
    void TearDown() override {
        memory_ = TableValue();
        out_ = RecordValue();
        FileTables::TearDown();
    }
    const Layout& layout() const { return layouts[GetParam()]; }
    Cells pickKey(int index) {
        const bool present = !model_->rows().empty() && random_() % 3 != 0;
        return model_->keyOf(index, present ? model_->rows()[random_() % model_->rows().size()]
                                            : randomRow(random_));
    }
    template <class Use>
    void expectBoth(std::int32_t error, const char* what, const Use& use) {
        for (TableDescriptor* table : {t(), memory_.get()}) {
            use(table);
            EXPECT_EQ(takeError(), error) << what << (table == t() ? " in the file" : " in memory");
        }
    }
    void change(bool growing) {
        const Cells cells = randomRow(random_);
        const auto choice = static_cast<unsigned>(random_() % 8);
        const int index = static_cast<int>(random_() % 5) % model_->indexes();
        const RecordValue row = recordOf(cells), key = recordOf(pickKey(index));
        const Cells keyCells = cellsOf(key.get(), model_->keyOf(index, rowShape));
        if (choice < (growing ? 6U : 2U)) {
            if (model_->rows().size() >= mostRows) return;
            expectBoth(model_->add(cells), "add", [&](auto* t) { TableAdd(t, index + 1, row.get()); });
        } else if (choice == 6) {
            expectBoth(model_->update(index, keyCells, cells), "update",
                       [&](auto* t) { TableUpdate(row.get(), index + 1, key.get(), t); });
        } else {
            expectBoth(model_->remove(index, keyCells), "delete",
                       [&](auto* t) { TableDelete(t, index + 1, key.get()); });
        }
    }
    void look() {
        static const char* const operators[] = {"EQ", "FIRST", "LAST", "GE", "LE", "NEXT", "PREVIOUS"};
        const int index = static_cast<int>(random_() % 5) % model_->indexes();
        const RecordValue key = recordOf(pickKey(index));
        const char* op = operators[random_() % 7];
        const auto expected = model_->find(op, index, cellsOf(key.get(), model_->keyOf(index, rowShape)));
        expectBoth(0, op, [&](auto* t) {
            bool found = false;
            TableFind(op, t, index + 1, key.get(), out_.get(), found);
            EXPECT_EQ(found, expected.has_value()) << op;
            if (found && expected) {
                EXPECT_TRUE(sameCells(cellsOf(out_.get(), rowShape), *expected)) << op;
            }
        });
    }
    void expectSame() {
        expectWhole();
        EXPECT_TRUE(AdtCompare("EQ", t(), memory_.get(), KindTable));
        const Rows all = rows(rowShape);
        ASSERT_EQ(all.size(), model_->rows().size());
        for (std::size_t i = 0; i < all.size(); ++i) EXPECT_TRUE(sameCells(all[i], model_->rows()[i])) << i;
    }
    // Now and then: what concerns the whole table.
    void turnOver() {
        switch (random_() % 6) {
        case 0:
            expectBoth(0, "clear", [](auto* t) { TableClear(t); });
            model_->clear();
            break;
        case 1: expectBoth(0, "rebuild", [](auto* t) { TableRebuild(t); }); break;
        case 2: AdtCopy(memory_.get(), t(), KindTable); break;
        case 3: AdtCopy(t(), memory_.get(), KindTable); break;
        case 4: {
            close();
            EXPECT_EQ(RebuildTableFile(*t(), "/d/a.tab").error, 0);
            EXPECT_EQ(open(), 0);
            break;
        }
        default: close(); EXPECT_EQ(open(), 0);
        }
        EXPECT_EQ(takeError(), 0);
        expectSame();
    }

    std::mt19937 random_;
    std::unique_ptr<TableModel> model_;
    TableValue memory_;
    RecordValue out_;
};

TEST_P(FileTableModels, TheTableDoesAsItsModelAndAsATableInMemory) {
    const unsigned seed = 900 + static_cast<unsigned>(GetParam());
    SCOPED_TRACE(layout().name + std::string(", seed ") + std::to_string(seed));
    random_.seed(seed);
    model_ = std::make_unique<TableModel>(layout().maps, layout().maxlength);
    TableInit(memory_.get(), layout().maxlength, recordOf(rowShape).get(), layout().maps, "", false);
    table = closedTable(layout().maps, layout().maxlength, rowShape);
    ASSERT_EQ(open(), 0);
    for (int step = 1; step <= stepsOfRun && !HasFailure(); ++step) {
        const bool growing = step / 700 % 2 == 0;
        if (random_() % 3 != 0)
            change(growing);
        else
            look();
        if (step <= checkedSteps) expectWhole();  // the indexes, too
        if (step % 150 == 0) expectSame();
        if (step % 500 == 0) turnOver();
        if (HasFailure()) ADD_FAILURE() << "step " << step;
        files().clearLog();
    }
    expectSame();
}

INSTANTIATE_TEST_SUITE_P(Layouts, FileTableModels, ::testing::Range<std::size_t>(0, std::size(layouts)));

}  // namespace
}  // namespace tarn
