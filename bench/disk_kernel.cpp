// SPDX-License-Identifier: Apache-2.0
#include "disk_kernel.h"

#include "data_bench.h"
#include "disk_rows.h"
#include "kernel/index/index_file.h"
#include "kernel/index/index_tree.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables_file_check.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace bench {

using namespace tarn;

// ---- files ----

namespace {

struct IndexNode {
    std::int32_t row = 0, balance = 0, left = 0, right = 0, key = 0;
};

void writeIndex(const std::string& path, const std::vector<IndexNode>& nodes, std::int32_t rootNumber) {
    std::string bytes, root;
    for (const IndexNode& node : nodes)
        for (const std::int32_t word : {node.row, node.balance, 0, 0, node.left, node.right, node.key})
            appendBigEndian(bytes, static_cast<std::uint32_t>(word));
    writeAt(path, IndexHeaderBytes, bytes);
    appendBigEndian(root, static_cast<std::uint32_t>(rootNumber));
    writeAt(path, IndexHeaderBytes - 16, root);
}

// The nodes of an index whose tree is balanced and whose records stand in the order of the rows.
class IndexMaker {
public:
    IndexMaker(std::int32_t rows, std::int32_t field) : nodes_(static_cast<std::size_t>(rows)) {
        for (std::int32_t i = 0; i < rows; ++i) order_.push_back({keyOf(i, field), i + 1});
        std::sort(order_.begin(), order_.end());
        root_ = link(0, order_.size()).node;
    }
    void write(const std::string& path) const { writeIndex(path, nodes_, root_); }

private:
    struct Tree {
        std::int32_t node = 0, height = 0;
    };
    Tree link(std::size_t from, std::size_t to) {
        if (from == to) return {};
        const std::size_t middle = (from + to) / 2;
        const auto [key, row] = order_[middle];
        const Tree left = link(from, middle), right = link(middle + 1, to);
        nodes_[static_cast<std::size_t>(row) - 1] = {row, right.height - left.height, left.node, right.node,
                                                     key};
        return {row, 1 + std::max(left.height, right.height)};
    }
    std::vector<std::pair<std::int32_t, std::int32_t>> order_;
    std::vector<IndexNode> nodes_;
    std::int32_t root_ = 0;
};

// The nodes of an index to which rows were added one by one.
class IndexGrower {
public:
    IndexGrower(std::int32_t rows, std::int32_t field) {
        nodes_.reserve(static_cast<std::size_t>(rows));
        for (std::int32_t i = 0; i < rows; ++i) {
            TreePath<std::int32_t> path;
            FindPath(*this, keyOf(i, field), path);
            nodes_.push_back({i + 1, 0, 0, 0, keyOf(i, field)});
            LinkAt(*this, path, i + 1);
        }
    }
    void write(const std::string& path) const { writeIndex(path, nodes_, root_); }

    // As index_tree.h wants a tree.
    [[nodiscard]] std::int32_t root() const { return root_; }
    void setRoot(std::int32_t node) { root_ = node; }
    [[nodiscard]] std::int32_t child(std::int32_t node, int side) const {
        return side != 0 ? at(node).right : at(node).left;
    }
    void setChild(std::int32_t node, int side, std::int32_t child) {
        (side != 0 ? at(node).right : at(node).left) = child;
    }
    [[nodiscard]] int balance(std::int32_t node) const { return at(node).balance; }
    void setBalance(std::int32_t node, int balance) { at(node).balance = balance; }
    [[nodiscard]] int order(std::int32_t key, std::int32_t node) const {
        return (key > at(node).key) - (key < at(node).key);
    }
    [[nodiscard]] static bool checking() { return false; }
    [[nodiscard]] static bool sound(std::int32_t) { return true; }

private:
    [[nodiscard]] const IndexNode& at(std::int32_t node) const {
        return nodes_[static_cast<std::size_t>(node) - 1];
    }
    IndexNode& at(std::int32_t node) { return nodes_[static_cast<std::size_t>(node) - 1]; }
    std::vector<IndexNode> nodes_;
    std::int32_t root_ = 0;
};

template <class Maker>
bool makeIndexes(const std::string& path, std::int32_t rows, std::int32_t indexes) {
    for (std::int32_t n = 1; n <= indexes; ++n) {
        const std::string index = IndexFileName(path, n), name(1, static_cast<char>('a' + n - 1));
        if (!CreateIndexFile(index, path, "key : record\n\t" + name + " : integer\nend record\n"))
            return false;
        Maker(rows, n - 1).write(index);
    }
    return true;
}

}  // namespace

std::string makeKernel(std::int32_t rows, std::int32_t indexes, Nodes nodes, const char* what) {
    const std::string path =
        fileOf(storeName(what, rows, indexes) + ".tab", [=] { return bytesOfRows(rows); });
    const bool made = nodes == Nodes::Grown ? makeIndexes<IndexGrower>(path, rows, indexes)
                                            : makeIndexes<IndexMaker>(path, rows, indexes);
    return made ? path : std::string();
}

// ---- tables ----

namespace {

constexpr std::int32_t mostChecked = 10000;

KeyMaps firstFields(std::int32_t indexes) {
    KeyMaps maps{};
    for (std::int32_t n = 0; n < indexes; ++n) maps[static_cast<std::size_t>(n)] = MakeKeyMap(n + 1);
    return maps;
}

}  // namespace

KernelRows::KernelRows(std::string path, std::int32_t indexes) : path_(std::move(path)) {
    RecordInit(
        row_.get(), TagRecord,
        MakeFieldKinds({KindInteger, KindInteger, KindInteger, KindInteger, KindInteger, KindInteger}));
    RecordInit(key_.get(), TagRecord, MakeFieldKinds({KindInteger}));
    TableInit(table_.get(), UNBOUNDED, row_.get(), firstFields(indexes),
              "Trow : record\n\ta : integer\n\tb : integer\n\tc : integer\n\td : integer\n"
              "\te : integer\n\tv : integer\nend record\n",
              true);
}

KernelRows::KernelRows(std::int32_t rows, std::int32_t indexes)
    : KernelRows(makeKernel(rows, indexes), indexes) {
    open();
    check(rows);
}

bool KernelRows::good() const {
    return good_ && ErrorCell() == 0;
}
void KernelRows::open() {
    FileOpen(table_.get(), KindTable, path_);
}
void KernelRows::close() {
    FileClose(table_.get(), KindTable);
}
void KernelRows::hold() {
    TableHold(table_.get());
}
RebuiltTable KernelRows::rebuild() {
    return RebuildTableFile(*table_.get(), path_);
}
void KernelRows::check(std::int32_t rows) {
    good_ = rows > mostChecked || CheckTableFile(*table_.get()).empty();
}

bool KernelRows::add(std::int32_t i) {
    std::int32_t fields[RowFields];
    for (std::int32_t field = 0; field < RowFields; ++field) fields[field] = fieldOf(i, field);
    std::memcpy(At(row_.get()->data), fields, sizeof fields);
    TableAdd(table_.get(), 1, row_.get());
    return ErrorCell() == 0;
}

bool KernelRows::find(std::int32_t i) {
    setKey(keyOf(i, 0));
    TableRead(table_.get(), 1, key_.get(), row_.get());
    return valueOfRow(RowFields - 1) == i && ErrorCell() == 0;
}

bool KernelRows::next() {
    bool found = false;
    setKey(valueOfRow(0));
    TableFind("NEXT", table_.get(), 1, key_.get(), row_.get(), found);
    if (!found) TableFind("FIRST", table_.get(), 1, key_.get(), row_.get(), found);
    return found;
}

bool KernelRows::remove(std::int32_t i) {
    setKey(keyOf(i, 0));
    TableDelete(table_.get(), 1, key_.get());
    return ErrorCell() == 0;
}

void KernelRows::setKey(std::int32_t key) {
    WriteAt(At(key_.get()->data), key);
}
std::int32_t KernelRows::valueOfRow(std::int32_t field) const {
    return ReadAt<std::int32_t>(At(row_.get()->data) + 4 * field);
}

// ---- kinds of them ----

KernelGrown::KernelGrown(std::int32_t rows, std::int32_t indexes)
    : KernelRows(makeKernel(rows, indexes, Nodes::Grown, "grown"), indexes) {
    open();
    check(rows);
}

KernelHeld::KernelHeld(std::int32_t rows, std::int32_t indexes)
    : KernelRows(makeKernel(rows, indexes, Nodes::Grown, "held"), indexes) {
    open();
    hold();
}

KernelRebuilt::KernelRebuilt(std::int32_t rows, std::int32_t indexes)
    : KernelRows(makeKernel(rows, indexes, Nodes::Balanced, "rebuilt"), indexes) {
    good_ = rebuild().error == 0;
    open();
}

KernelDurable::KernelDurable(std::int32_t rows, std::int32_t indexes)
    : KernelRows(makeKernel(rows, indexes, Nodes::Balanced, "durable"), indexes) {
    open();
    check(rows);
}

bool KernelDurable::add(std::int32_t i) {
    const bool good = KernelRows::add(i);
    close();
    open();
    return good && ErrorCell() == 0;
}

}  // namespace bench
