// SPDX-License-Identifier: Apache-2.0
//
// What the tests of tables in memory share: a table of rows of five kinds of fields, filled, searched and listed.
#pragma once

#include "kernel/run/errors.h"
#include "kernel/tables/tables.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <string>
#include <vector>

namespace tarn {

class Tables : public Runtime {
protected:
    using Numbers = std::vector<int>;
    static inline const KeyMaps twoIndexes = {MakeKeyMap(1), MakeKeyMap(2)};

    // A row of an integer, a name, a real, three characters and a free text.
    static Cells row(int number, const std::string& name, double weight = 0, const std::string& code = "",
                     const std::string& note = "") {
        return {integer(number), text(name, 8), real(weight), characters(code, 3), text(note)};
    }

    void TearDown() override {
        FailAllocation(-1);
        table = TableValue();
        EXPECT_EQ(takeError(), 0);
        Runtime::TearDown();
    }
    void make(const KeyMaps& maps, std::int32_t maxlength = UNBOUNDED, const Cells& like = row(0, "")) {
        table = TableValue();
        TableInit(t(), maxlength, recordOf(like).get(), maps, "row type", false);
        ASSERT_EQ(takeError(), 0);
    }
    void add(const Cells& cells) { TableAdd(t(), TableIndexCount(t()) == 0 ? 0 : 1, recordOf(cells).get()); }
    void fill(int count) {
        for (int i = 1; i <= count; ++i) add(row(i, "n" + std::to_string(i)));
        ASSERT_EQ(takeError(), 0);
    }
    // The number in the row that was found; -1 for none.
    int find(const char* op, int index, const Cells& key) {
        RecordValue out;
        bool found = false;
        TableFind(op, t(), index, recordOf(key).get(), out.get(), found);
        return found ? static_cast<int>(cellsOf(out.get(), row(0, ""))[0].number) : -1;
    }
    // The first fields of all rows, in row order.
    std::vector<int> numbers() {
        std::vector<int> all;
        for (int n = 1; n <= TableCount(t()); ++n) {
            RecordValue out;
            TableRow(t(), n, out.get());
            all.push_back(static_cast<int>(cellsOf(out.get(), row(0, ""))[0].number));
        }
        return all;
    }
    void expectWhole() { EXPECT_EQ(AdtCheck(t(), KindTable), ""); }

    TableDescriptor* t() { return table.get(); }
    Offset headerData() { return ReadAt<RecordDescriptor>(At(t()->data)).data; }
    TableValue table;
};

}  // namespace tarn
