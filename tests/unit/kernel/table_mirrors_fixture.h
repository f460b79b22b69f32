// SPDX-License-Identifier: Apache-2.0
//
// A table with mirrors beside its twin, which loses its own before each operation: both must do the same to the
// letter.
#pragma once

#include "kernel/tables/table_mirrors.h"

#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <functional>
#include <random>

namespace tarn {

inline const Cells rowShape = {integer(0), text("", 12),      fixedNumber(0),
                               real(0),    characters("", 3), text("")};

class Mirrors : public Runtime {
protected:
    void TearDown() override {
        FailAllocation(-1);
        table = TableValue();
        twin = TableValue();
        out = RecordValue();
        EXPECT_EQ(takeError(), 0);
        Runtime::TearDown();
    }
    void make(const KeyMaps& keyMaps) {
        maps = keyMaps;
        for (TableValue* value : {&table, &twin}) {
            *value = TableValue();
            TableInit(value->get(), UNBOUNDED, recordOf(rowShape).get(), maps, "", false);
        }
        ASSERT_EQ(takeError(), 0);
    }
    static Cells row(int n) {
        return {integer(n),
                text("n" + std::to_string(n), 12),
                fixedNumber(n * 10007LL),
                real(n * 0.5),
                characters(std::to_string(n % 1000), 3),
                text(std::string(static_cast<std::size_t>(n % 9), 'p') + std::to_string(n))};
    }
    [[nodiscard]] Cells keyOf(int index, const Cells& cells) const {
        Cells key;
        for (auto map = static_cast<std::uint32_t>(maps[static_cast<std::size_t>(index)]); map != 0;
             map <<= 8U)
            key.push_back(cells[(map >> 24U) - 1]);
        return key;
    }
    TableHeader& header() { return HeaderOf(*table.get()); }
    // The same operation on both; the twin has no mirrors.
    std::int32_t both(const std::function<void(TableDescriptor*)>& operation) {
        operation(table.get());
        const std::int32_t error = takeError();
        DropTableMirrors(HeaderOf(*twin.get()));
        operation(twin.get());
        EXPECT_EQ(takeError(), error);
        return error;
    }
    void add(int n) {
        both([&](TableDescriptor* t) { TableAdd(t, 1, recordOf(row(n)).get()); });
    }
    void fill(int count) {
        for (int n = 1; n <= count; ++n) add(n);
    }
    void find(std::string_view op, int index, const Cells& key) {
        const RecordValue record = recordOf(key);
        std::optional<Cells> found[2];
        int n = 0;
        both([&](TableDescriptor* t) {
            bool there = false;
            TableFind(op, t, index + 1, record.get(), out.get(), there);
            if (there) found[n] = cellsOf(out.get(), rowShape);
            ++n;
        });
        ASSERT_EQ(found[0].has_value(), found[1].has_value()) << op;
        if (found[0]) {
            EXPECT_TRUE(sameCells(*found[0], *found[1])) << op;
        }
    }
    void remove(int index, const Cells& key) {
        both([&](TableDescriptor* t) { TableDelete(t, index + 1, recordOf(key).get()); });
    }
    // Rows and balances in the order of a walk.
    static std::string formOf(const RecordDescriptor& root, Offset node) {
        if (node == 0) return ".";
        const MemoryTree tree(const_cast<RecordDescriptor&>(root));
        return "(" + formOf(root, tree.child(node, 0)) + std::to_string(NodeRow(node)) + "/" +
               std::to_string(tree.balance(node)) + formOf(root, tree.child(node, 1)) + ")";
    }
    void expectTwins() {
        EXPECT_EQ(CheckTableMirrors(header()), "");
        EXPECT_EQ(TableCount(table.get()), TableCount(twin.get()));
        for (std::int32_t n = 1; n <= TableIndexCount(table.get()); ++n) {
            const RecordDescriptor &a = *TableRoot(table.get(), n), &b = *TableRoot(twin.get(), n);
            EXPECT_EQ(formOf(a, a.data), formOf(b, b.data));
        }
    }
    // The field of a row, reached past the table.
    static void* fieldOf(TableDescriptor* t, std::int32_t number, std::int32_t field) {
        return RecordFieldAddress(static_cast<RecordDescriptor*>(ListRef(TableRows(t), number)), field);
    }

    KeyMaps maps{};
    TableValue table, twin;
    RecordValue out;
};

}  // namespace tarn
