// SPDX-License-Identifier: Apache-2.0
//
// A table with mirrors beside its twin, which loses its own before each operation: both must do the same to the
// letter.
#pragma once

#include "kernel/tables/table_mirrors.h"

#include "kernel/index/index_heads.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <functional>
#include <random>
#include <vector>

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
        if (n == INT32_MIN)  // its keys are zeros
            return {integer(n),
                    text("", 12),
                    fixedNumber(INT64_MIN),
                    real(n),
                    characters(std::string(3, '\0'), 3),
                    text("")};
        return {integer(n),
                text("n" + std::to_string(n), 12),
                fixedNumber(n * 10007LL),
                real(n * 0.5),
                characters(std::to_string(n % 1000), 3),
                text(std::string(static_cast<std::size_t>(n % 9), 'p') + std::to_string(n))};
    }
    // A number below `count`, and now and then one whose shortcut stands in the first line, as that of INT32_MIN does,
    // and has a tag close to its.
    static int drawn(std::mt19937& random, int count) {
        static const std::vector<int> odd = [] {
            std::vector<int> found = {INT32_MIN};
            for (int n = 1000; found.size() < 8; ++n) {
                const std::uint32_t hash = HashOfWhole(HeadOfInteger(n));
                if (hash < 1U << 24U && (hash & 0xFFFFU) <= 3) found.push_back(n);
            }
            return found;
        }();
        const auto choice = static_cast<std::size_t>(random());
        if (choice % 8 != 0) return static_cast<int>(choice / 8 % static_cast<unsigned>(count));
        return odd[choice / 8 % 2 *
                   (choice / 16 % odd.size())];  // that of INT32_MIN more often than the others
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
    // A random operation on both with numbers below `count` and others.
    void step(std::mt19937& random, bool growing, int count) {
        static const char* const operators[] = {"EQ", "EQ", "EQ",   "FIRST",   "LAST",
                                                "GE", "LE", "NEXT", "PREVIOUS"};
        const int n = drawn(random, count),
                  index = static_cast<int>(random() % static_cast<unsigned>(TableIndexCount(table.get())));
        const auto choice = static_cast<unsigned>(random() % 100);
        const Cells key = keyOf(index, row(n));
        if (choice < 40) return find(operators[random() % 9], index, key);
        if (choice < (growing ? 75U : 50U)) return add(n);
        if (choice < 85) return remove(index, key);
        const Cells other = row(drawn(random, count));
        both([&](TableDescriptor* t) {
            TableUpdate(recordOf(other).get(), index + 1, recordOf(key).get(), t);
        });
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
