// SPDX-License-Identifier: Apache-2.0
//
// Tables with one to five indexes against ordered maps. The model keeps the rows in row order and finds
// everything by looking at all of them or in one map for each index.
#include "kernel/errors.h"
#include "kernel/tables.h"
#include "runtime_fixture.h"
#include "table_rows.h"

#include <map>
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

// What a table must do, in the plainest way.
class TableModel {
public:
    TableModel(const KeyMaps& maps, std::int32_t maxlength) : maps_(maps), maxlength_(maxlength) {
        while (indexes_ < MaxIndexes && maps_[static_cast<std::size_t>(indexes_)] != 0) ++indexes_;
    }
    [[nodiscard]] int indexes() const { return indexes_; }
    [[nodiscard]] const std::vector<Cells>& rows() const { return rows_; }
    [[nodiscard]] Cells keyOf(int index, const Cells& row) const {
        Cells key;
        for (auto map = static_cast<std::uint32_t>(maps_[static_cast<std::size_t>(index)]); map != 0;
             map <<= 8U)
            key.push_back(row[(map >> 24U) - 1]);
        return key;
    }
    std::int32_t add(const Cells& row) {
        if (maxlength_ != UNBOUNDED && rows_.size() >= static_cast<std::size_t>(maxlength_)) return 619;
        if (taken(row, -1)) return 635;
        rows_.push_back(row);
        enter(static_cast<int>(rows_.size()) - 1);
        return 0;
    }
    std::int32_t update(int index, const Cells& key, const Cells& row) {
        const auto at = position(index, key);
        if (!at) return 604;
        if (taken(row, *at)) return 635;
        leave(*at);
        rows_[static_cast<std::size_t>(*at)] = row;
        enter(*at);
        return 0;
    }
    std::int32_t remove(int index, const Cells& key) {
        const auto at = position(index, key);
        if (!at) return 604;
        const int last = static_cast<int>(rows_.size()) - 1;
        leave(*at);
        if (*at != last) {
            leave(last);
            rows_[static_cast<std::size_t>(*at)] = rows_.back();
            enter(*at);
        }
        rows_.pop_back();
        return 0;
    }
    void clear() {
        rows_.clear();
        for (auto& order : orders_) order.clear();
    }
    [[nodiscard]] std::optional<Cells> find(const std::string& op, int index, const Cells& key) const {
        const auto& order = orders_[index];
        auto at = order.end();
        if (op == "EQ") at = order.find(key);
        if (op == "FIRST") at = order.begin();
        if (op == "LAST" && !order.empty()) at = std::prev(order.end());
        if (op == "GE") at = order.lower_bound(key);
        if (op == "NEXT") at = order.upper_bound(key);
        if (op == "LE" || op == "PREVIOUS") {
            at = op == "LE" ? order.upper_bound(key) : order.lower_bound(key);
            at = at == order.begin() ? order.end() : std::prev(at);
        }
        if (at == order.end()) return {};
        return rows_[static_cast<std::size_t>(at->second)];
    }

private:
    [[nodiscard]] std::optional<int> position(int index, const Cells& key) const {
        const auto at = orders_[index].find(key);
        return at == orders_[index].end() ? std::optional<int>() : at->second;
    }
    [[nodiscard]] bool taken(const Cells& row, int self) const {
        for (int i = 0; i < indexes_; ++i) {
            const auto at = position(i, keyOf(i, row));
            if (at && *at != self) return true;
        }
        return false;
    }
    void enter(int n) {
        for (int i = 0; i < indexes_; ++i) orders_[i][keyOf(i, rows_[static_cast<std::size_t>(n)])] = n;
    }
    void leave(int n) {
        for (int i = 0; i < indexes_; ++i) orders_[i].erase(keyOf(i, rows_[static_cast<std::size_t>(n)]));
    }

    KeyMaps maps_;
    std::int32_t maxlength_;
    int indexes_ = 0;
    std::vector<Cells> rows_;
    std::map<Cells, int, CellsOrder> orders_[MaxIndexes];
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
    static std::int32_t takeError() {
        const std::int32_t error = ErrorCell();
        ClearError();
        return error;
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
