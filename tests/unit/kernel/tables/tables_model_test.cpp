// SPDX-License-Identifier: Apache-2.0
//
// Tables with one to five indexes against ordered maps. The model keeps the rows in row order and finds
// everything by looking at all of them or in one map for each index.
#include "kernel/run/errors.h"
#include "kernel/tables/tables.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_model.h"

#include <optional>
#include <random>

using namespace tarn;

namespace {

constexpr std::int32_t mostRows = 300;
constexpr int stepsOfRun = 25000;

// boolean, enum, integer, fixed, real, bounded text, characters, free text
const Cells rowShape = {flag(false), ordinal(0),   integer(0),        fixedNumber(0),
                        real(0),     text("", 10), characters("", 5), text("")};

struct Layout {
    const char* name;
    KeyMaps maps;
    std::int32_t maxlength;
};
const Layout layouts[] = {
    {"one integer", {MakeKeyMap(3)}, UNBOUNDED},
    {"one fixed text", {MakeKeyMap(6)}, 200},
    {"fixed number and real", {MakeKeyMap(4), MakeKeyMap(5)}, UNBOUNDED},
    {"characters, free text, several", {MakeKeyMap(7), MakeKeyMap(8), MakeKeyMap(2, 1, 7)}, UNBOUNDED},
    {"four", {MakeKeyMap(3), MakeKeyMap(1, 2, 3, 4), MakeKeyMap(6, 5), MakeKeyMap(8, 7)}, UNBOUNDED},
    {"five",
     {MakeKeyMap(3), MakeKeyMap(6), MakeKeyMap(4), MakeKeyMap(8, 3), MakeKeyMap(5, 7, 6, 1)},
     UNBOUNDED},
    {"five, fixed",
     {MakeKeyMap(7, 6), MakeKeyMap(5, 4), MakeKeyMap(3), MakeKeyMap(2, 3), MakeKeyMap(8)},
     150},
    {"no index", {}, 200},
};

Cells randomRow(std::mt19937& random) {
    const auto number = [&](int spread) {
        return static_cast<int>(random() % static_cast<unsigned>(spread)) - spread / 2;
    };
    const int n = number(1000);
    return {flag(random() % 2 != 0),
            ordinal(number(256) & 255),
            integer(number(1500)),
            fixedNumber(number(1500) * 12345678901LL),
            real(n == 0 ? NAN : n * 0.25),
            text(std::string(random() % 3, '\xe4') + std::to_string(number(1000)), 10),
            characters(std::to_string(number(1500)), 5),
            text(std::string(random() % 40, 'z') + std::to_string(number(100)))};
}

class TableModels : public Runtime, public ::testing::WithParamInterface<std::size_t> {
protected:
    void TearDown() override {
        table = TableValue();
        Runtime::TearDown();
    }
    // A key that is there, or one that most likely is not.
    static Cells pickKey(const TableModel& model, int index, std::mt19937& random) {
        const bool present = !model.rows().empty() && random() % 3 != 0;
        return model.keyOf(index, present ? model.rows()[random() % model.rows().size()] : randomRow(random));
    }
    void expectRow(const std::optional<Cells>& row, std::string_view op, int index, const Cells& key) {
        bool found = false;
        TableFind(op, t(), index + 1, recordOf(key).get(), out.get(), found);
        EXPECT_EQ(found, row.has_value()) << op;
        if (found && row) {
            EXPECT_TRUE(sameCells(cellsOf(out.get(), rowShape), *row)) << op;
        }
    }
    void change(TableModel& model, bool growing, std::mt19937& random) {
        const Cells row = randomRow(random);
        const auto choice = static_cast<unsigned>(random() % 8);
        const int index = model.indexes() == 0 ? -1 : static_cast<int>(random() % 5) % model.indexes();
        if (index < 0 || choice < (growing ? 6U : 2U)) {
            if (model.rows().size() >= std::size_t{mostRows}) return;
            TableAdd(t(), index + 1, recordOf(row).get());
            EXPECT_EQ(takeError(), model.add(row));
            return;
        }
        const Cells key = pickKey(model, index, random);
        if (choice == 6) {
            TableUpdate(recordOf(row).get(), index + 1, recordOf(key).get(), t());
            EXPECT_EQ(takeError(), model.update(index, key, row));
        } else {
            TableDelete(t(), index + 1, recordOf(key).get());
            EXPECT_EQ(takeError(), model.remove(index, key));
        }
    }
    void look(const TableModel& model, std::mt19937& random) {
        static const char* const operators[] = {"EQ", "FIRST", "LAST", "GE", "LE", "NEXT", "PREVIOUS"};
        if (model.indexes() == 0) return;
        const int index = static_cast<int>(random() % 5) % model.indexes();
        const Cells key = pickKey(model, index, random);
        const char* op = operators[random() % 7];
        expectRow(model.find(op, index, key), op, index, key);
    }
    void expectSame(const TableModel& model) {
        EXPECT_EQ(AdtCheck(t(), KindTable), "");
        ASSERT_EQ(TableCount(t()), static_cast<std::int32_t>(model.rows().size()));
        for (std::int32_t n = 1; n <= TableCount(t()); ++n) {
            TableRow(t(), n, out.get());
            EXPECT_TRUE(
                sameCells(cellsOf(out.get(), rowShape), model.rows()[static_cast<std::size_t>(n) - 1]));
        }
    }
    // Now and then: what concerns the whole table.
    void turnOver(TableModel& model, std::mt19937& random) {
        const auto choice = static_cast<unsigned>(random() % 8);
        if (choice == 0) {
            TableClear(t());
            model.clear();
        } else if (choice < 4) {
            TableRebuild(t());
        } else {
            TableValue copy;
            AdtCopy(t(), copy.get(), KindTable);
            table = std::move(copy);
        }
        EXPECT_EQ(takeError(), 0);
        expectSame(model);
    }

    TableDescriptor* t() { return table.get(); }
    TableValue table;
    RecordValue out;
};

TEST_P(TableModels, TheTableDoesAsItsModel) {
    const Layout& layout = layouts[GetParam()];
    const unsigned seed = 500 + static_cast<unsigned>(GetParam());
    SCOPED_TRACE(layout.name + std::string(", seed ") + std::to_string(seed));
    std::mt19937 random(seed);
    TableModel model(layout.maps, layout.maxlength);
    TableInit(t(), layout.maxlength, recordOf(rowShape).get(), layout.maps, "", false);
    ASSERT_EQ(takeError(), 0);
    for (int step = 1; step <= stepsOfRun && !HasFailure(); ++step) {
        const bool growing = step / 1000 % 2 == 0;
        if (random() % 3 != 0)
            change(model, growing, random);
        else
            look(model, random);
        if (step % 100 == 0) expectSame(model);
        if (step % 1700 == 0) turnOver(model, random);
        if (HasFailure()) ADD_FAILURE() << "step " << step;
    }
    expectSame(model);
    AdtFree(out.get(), KindRecord);
}

INSTANTIATE_TEST_SUITE_P(Layouts, TableModels, ::testing::Range<std::size_t>(0, std::size(layouts)));

}  // namespace
