// SPDX-License-Identifier: Apache-2.0
//
// Tables on disk, by the operation, beside SQLite opened for each operation (as a table here is) and held
// open, and beside LevelDB, which is held open always and does not look whether a key is there. Rows are six
// integers, of which the first ones are keys, all unique.
#include "data_bench.h"

#include "kernel/index/index_file.h"
#include "kernel/index/index_tree.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables_file_check.h"
#include "kernel/tables/tables_file_mend.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <leveldb/db.h>
#include <leveldb/write_batch.h>
#include <map>
#include <memory>
#include <sqlite3.h>
#include <utility>

namespace bench {

using namespace tarn;

namespace {

constexpr std::int32_t rowFields = 6, mostIndexes = 5, mostChecked = 10000;

// Unique in each field, in an order of its own.
std::int32_t keyOf(std::int32_t row, std::int32_t field) {
    constexpr std::uint32_t odd[] = {2654435761U, 2246822519U, 3266489917U, 668265263U, 374761393U};
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(row) * odd[field]);
}
std::int32_t fieldOf(std::int32_t row, std::int32_t field) {
    return field < mostIndexes ? keyOf(row, field) : row;
}

void appendBigEndian(std::string& bytes, std::uint32_t word) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(word >> shift);
}

// A file that belongs to the rows and indexes of one benchmark.
std::string storeName(const char* what, std::int32_t rows, std::int32_t indexes) {
    return what + std::to_string(rows) + "x" + std::to_string(indexes);
}

// ---- here ----

KeyMaps firstFields(std::int32_t indexes) {
    KeyMaps maps{};
    for (std::int32_t n = 0; n < indexes; ++n) maps[static_cast<std::size_t>(n)] = MakeKeyMap(n + 1);
    return maps;
}

class KernelRows {
public:
    // Of files that are there.
    KernelRows(std::string path, std::int32_t indexes) : path_(std::move(path)) {
        RecordInit(
            row_.get(), TagRecord,
            MakeFieldKinds({KindInteger, KindInteger, KindInteger, KindInteger, KindInteger, KindInteger}));
        RecordInit(key_.get(), TagRecord, MakeFieldKinds({KindInteger}));
        TableInit(table_.get(), UNBOUNDED, row_.get(), firstFields(indexes),
                  "Trow : record\n\ta : integer\n\tb : integer\n\tc : integer\n\td : integer\n"
                  "\te : integer\n\tv : integer\nend record\n",
                  true);
    }
    KernelRows(std::int32_t rows, std::int32_t indexes);  // makes them first
    [[nodiscard]] bool good() const { return good_ && ErrorCell() == 0; }
    void open() { FileOpen(table_.get(), KindTable, path_); }
    void close() { FileClose(table_.get(), KindTable); }
    void hold() { TableHold(table_.get()); }
    RebuiltTable rebuild() { return RebuildTableFile(*table_.get(), path_); }
    [[nodiscard]] std::string check() const { return CheckTableFile(*table_.get()); }

    bool add(std::int32_t i) {
        std::int32_t fields[rowFields];
        for (std::int32_t field = 0; field < rowFields; ++field) fields[field] = fieldOf(i, field);
        std::memcpy(At(row_.get()->data), fields, sizeof fields);
        TableAdd(table_.get(), 1, row_.get());
        return ErrorCell() == 0;
    }
    bool find(std::int32_t i) {
        setKey(keyOf(i, 0));
        TableRead(table_.get(), 1, key_.get(), row_.get());
        return valueOfRow(rowFields - 1) == i && ErrorCell() == 0;
    }
    bool next() {
        bool found = false;
        setKey(valueOfRow(0));
        TableFind("NEXT", table_.get(), 1, key_.get(), row_.get(), found);
        if (!found) TableFind("FIRST", table_.get(), 1, key_.get(), row_.get(), found);
        return found;
    }
    bool remove(std::int32_t i) {
        setKey(keyOf(i, 0));
        TableDelete(table_.get(), 1, key_.get());
        return ErrorCell() == 0;
    }

private:
    void setKey(std::int32_t key) { WriteAt(At(key_.get()->data), key); }
    [[nodiscard]] std::int32_t valueOfRow(std::int32_t field) const {
        return ReadAt<std::int32_t>(At(row_.get()->data) + 4 * field);
    }
    TableValue table_;
    RecordValue row_, key_;
    std::string path_;

protected:
    bool good_ = true;
};

std::string rowBytes(std::int32_t rows) {
    std::string bytes;
    for (std::int32_t i = 0; i < rows; ++i)
        for (std::int32_t field = 0; field < rowFields; ++field)
            appendBigEndian(bytes, static_cast<std::uint32_t>(fieldOf(i, field)));
    return bytes;
}

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

// The nodes of an index whose tree is balanced and whose records stand in the order of the rows: near records are
// of far keys, and those of the highest levels stand anywhere, which is the worst for whoever reads them.
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

template <class Maker = IndexMaker>
std::string makeKernel(std::int32_t rows, std::int32_t indexes, const char* what = "kernel") {
    const std::string path = fileOf(storeName(what, rows, indexes) + ".tab", [=] { return rowBytes(rows); });
    for (std::int32_t n = 1; n <= indexes; ++n) {
        const std::string index = IndexFileName(path, n), name(1, static_cast<char>('a' + n - 1));
        if (!CreateIndexFile(index, path, "key : record\n\t" + name + " : integer\nend record\n")) return {};
        Maker(rows, n - 1).write(index);
    }
    return path;
}

// As the rows added one by one leave them.
class KernelGrown : public KernelRows {
public:
    KernelGrown(std::int32_t rows, std::int32_t indexes)
        : KernelRows(makeKernel<IndexGrower>(rows, indexes, "grown"), indexes) {
        open();
        good_ = rows > mostChecked || check().empty();
    }
};
// The same, held open.
class KernelHeld : public KernelRows {
public:
    KernelHeld(std::int32_t rows, std::int32_t indexes)
        : KernelRows(makeKernel<IndexGrower>(rows, indexes, "held"), indexes) {
        open();
        hold();
    }
};

// Indexes as a rebuilding leaves them.
class KernelRebuilt : public KernelRows {
public:
    KernelRebuilt(std::int32_t rows, std::int32_t indexes)
        : KernelRows(makeKernel(rows, indexes, "rebuilt"), indexes) {
        good_ = rebuild().error == 0;
        open();
    }
};

KernelRows::KernelRows(std::int32_t rows, std::int32_t indexes)
    : KernelRows(makeKernel(rows, indexes), indexes) {
    open();
    good_ = rows > mostChecked || check().empty();
}

// ---- peers ----

class Statement {
public:
    Statement(sqlite3* db, const char* text) { sqlite3_prepare_v2(db, text, -1, &statement_, nullptr); }
    ~Statement() { sqlite3_finalize(statement_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& bind(int place, std::int32_t value) {
        sqlite3_bind_int(statement_, place, value);
        return *this;
    }
    bool run() {  // to the end, or to the first row
        sqlite3_reset(statement_);
        result_ = sqlite3_step(statement_);
        return result_ == SQLITE_ROW || result_ == SQLITE_DONE;
    }
    [[nodiscard]] bool hasRow() const { return result_ == SQLITE_ROW; }
    [[nodiscard]] std::int32_t column(int n) const { return sqlite3_column_int(statement_, n); }
    void done() { sqlite3_reset(statement_); }

private:
    sqlite3_stmt* statement_ = nullptr;
    int result_ = 0;
};

constexpr const char *insertRow = "INSERT INTO t VALUES(?,?,?,?,?,?)", *findRow = "SELECT * FROM t WHERE a=?",
                     *nextRow = "SELECT * FROM t WHERE a>? ORDER BY a LIMIT 1",
                     *removeRow = "DELETE FROM t WHERE a=?";

class Sqlite {
public:
    // `held`: open all the time, with its statements made.
    Sqlite(const std::string& path, bool held, const char* synchronous)
        : path_(path), held_(held), synchronous_(std::string("PRAGMA synchronous=") + synchronous) {
        if (held_) open();
    }
    ~Sqlite() { close(); }
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;

    template <class Use>
    bool with(const char* text, Use use) {
        if (!held_) open();
        auto& statement = statements_[text];
        if (statement == nullptr) statement = std::make_unique<Statement>(db_, text);
        const bool good = use(*statement);
        statement->done();
        if (!held_) close();
        return good;
    }

private:
    void open() {
        sqlite3_open(path_.c_str(), &db_);
        sqlite3_exec(db_, synchronous_.c_str(), nullptr, nullptr, nullptr);
    }
    void close() {
        statements_.clear();
        sqlite3_close(db_);
        db_ = nullptr;
    }
    std::string path_;
    bool held_;
    std::string synchronous_;
    sqlite3* db_ = nullptr;
    std::map<const char*, std::unique_ptr<Statement>> statements_;
};

std::string makeSqlite(std::int32_t rows, std::int32_t indexes) {
    const std::string name = storeName("sqlite", rows, indexes) + ".db";
    const std::string path = fileOf(name, [] { return std::string(); });
    if (sizeOf(path) > 0) return path;
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    const auto run = [&](const std::string& text) {
        sqlite3_exec(db, text.c_str(), nullptr, nullptr, nullptr);
    };
    run("PRAGMA synchronous=off; CREATE TABLE t(a INT, b INT, c INT, d INT, e INT, v INT); BEGIN");
    {
        Statement insert(db, insertRow);
        for (std::int32_t i = 0; i < rows; ++i) {
            insert.done();
            for (std::int32_t field = 0; field < rowFields; ++field)
                insert.bind(field + 1, fieldOf(i, field));
            insert.run();
        }
    }
    for (char column = 'a'; column < 'a' + indexes; ++column)
        run(std::string("CREATE UNIQUE INDEX i") + column + " ON t(" + column + ")");
    run("COMMIT");
    sqlite3_close(db);
    return path;
}

class SqliteRows {
public:
    SqliteRows(std::int32_t rows, std::int32_t indexes, bool held, const char* synchronous)
        : db_(makeSqlite(rows, indexes), held, synchronous) {}
    [[nodiscard]] static bool good() { return true; }

    bool add(std::int32_t i) {
        return db_.with(insertRow, [&](Statement& s) {
            for (std::int32_t field = 0; field < rowFields; ++field) s.bind(field + 1, fieldOf(i, field));
            return s.run();
        });
    }
    bool find(std::int32_t i) {
        return db_.with(findRow, [&](Statement& s) {
            s.bind(1, keyOf(i, 0)).run();
            return take(s) && last_[rowFields - 1] == i;
        });
    }
    bool next() {
        bool found = false;
        const bool good = db_.with(nextRow, [&](Statement& s) {
            const bool ran = s.bind(1, last_[0]).run();
            found = take(s);
            return ran;
        });
        if (!found) last_[0] = INT32_MIN;
        return good;
    }
    bool remove(std::int32_t i) {
        return db_.with(removeRow, [&](Statement& s) { return s.bind(1, keyOf(i, 0)).run(); });
    }

private:
    bool take(const Statement& s) {
        if (!s.hasRow()) return false;
        for (int field = 0; field < rowFields; ++field) last_[field] = s.column(field);
        return true;
    }
    Sqlite db_;
    std::int32_t last_[rowFields] = {};
};
struct SqliteOpened : SqliteRows {
    SqliteOpened(std::int32_t rows, std::int32_t indexes) : SqliteRows(rows, indexes, false, "off") {}
};
struct SqliteHeld : SqliteRows {
    SqliteHeld(std::int32_t rows, std::int32_t indexes) : SqliteRows(rows, indexes, true, "off") {}
};
struct SqliteFull : SqliteRows {
    SqliteFull(std::int32_t rows, std::int32_t indexes) : SqliteRows(rows, indexes, false, "full") {}
};

// The rows under their first key; further indexes lead to that.
class LevelRows {
public:
    LevelRows(std::int32_t rows, std::int32_t indexes) : indexes_(indexes) {
        leveldb::Options options;
        options.create_if_missing = true;
        leveldb::DB* db = nullptr;
        leveldb::DB::Open(options, pathOf(storeName("level", rows, indexes)), &db);
        db_.reset(db);
        constexpr std::int32_t batchRows = 1000;
        leveldb::WriteBatch batch;
        for (std::int32_t i = 0; i < rows; ++i) {
            put(batch, i);
            if ((i + 1) % batchRows == 0 || i + 1 == rows) write(batch), batch.Clear();
        }
    }
    [[nodiscard]] bool good() const { return db_ != nullptr; }

    bool add(std::int32_t i) {
        leveldb::WriteBatch batch;
        put(batch, i);
        return write(batch);
    }
    bool find(std::int32_t i) {
        const bool good = db_->Get({}, keyBytes(i, 0), &last_).ok();
        return good && last_ == rowBytes(i);
    }
    bool next() {
        const std::unique_ptr<leveldb::Iterator> at(db_->NewIterator({}));
        at->Seek(lastKey_);
        if (at->Valid()) at->Next();
        if (!at->Valid() || at->key()[0] != 0) at->SeekToFirst();
        if (!at->Valid()) return false;
        lastKey_ = at->key().ToString();
        last_ = at->value().ToString();
        return true;
    }
    bool remove(std::int32_t i) {
        leveldb::WriteBatch batch;
        for (std::int32_t n = 0; n < indexes_; ++n) batch.Delete(keyBytes(i, n));
        return write(batch);
    }

private:
    static std::string keyBytes(std::int32_t i, std::int32_t index) {
        std::string bytes(1, static_cast<char>(index));
        appendBigEndian(bytes, static_cast<std::uint32_t>(keyOf(i, index)) ^ 0x80000000U);
        return bytes;
    }
    static std::string rowBytes(std::int32_t i) {
        std::string bytes;
        for (std::int32_t field = 0; field < rowFields; ++field)
            appendBigEndian(bytes, static_cast<std::uint32_t>(fieldOf(i, field)));
        return bytes;
    }
    void put(leveldb::WriteBatch& batch, std::int32_t i) const {
        batch.Put(keyBytes(i, 0), rowBytes(i));
        for (std::int32_t n = 1; n < indexes_; ++n) batch.Put(keyBytes(i, n), keyBytes(i, 0));
    }
    bool write(leveldb::WriteBatch& batch) { return db_->Write({}, &batch).ok(); }

    std::int32_t indexes_;
    std::unique_ptr<leveldb::DB> db_;
    std::string last_, lastKey_;
};

// ---- operations ----

// Every benchmark of one store uses the same, which is made once and left as it was.
template <class Store>
Store& storeOf(benchmark::State& state) {
    static std::map<std::pair<std::int64_t, std::int64_t>, std::unique_ptr<Store>> stores;
    auto& store = stores[{state.range(0), state.range(1)}];
    if (store == nullptr)
        store = std::make_unique<Store>(static_cast<std::int32_t>(state.range(0)),
                                        static_cast<std::int32_t>(state.range(1)));
    return *store;
}

// Every row once before any comes again, in an order that is none of the keys'.
std::int32_t nextProbe(std::int32_t probe, std::int32_t count) {
    constexpr std::int32_t step = 61803;  // prime to all the counts
    return (probe + step) % count;
}

template <class Work>
void eachTime(benchmark::State& state, bool good, Work work) {
    for (auto _ : state)
        if (!good || !work()) return state.SkipWithError("the work was not done");
}

template <class Store>
void diskFind(benchmark::State& state) {
    Store& store = storeOf<Store>(state);
    std::int32_t probe = 0;
    eachTime(state, store.good(), [&] {
        probe = nextProbe(probe, static_cast<std::int32_t>(state.range(0)));
        return store.find(probe);
    });
}
template <class Store>
void diskNext(benchmark::State& state) {
    Store& store = storeOf<Store>(state);
    eachTime(state, store.good() && store.find(0), [&] { return store.next(); });
}
template <class Store>
void diskAdd(benchmark::State& state) {
    Store& store = storeOf<Store>(state);
    const auto rows = static_cast<std::int32_t>(state.range(0));
    std::int32_t added = rows;
    eachTime(state, store.good(), [&] { return store.add(added++); });
    while (added > rows) store.remove(--added);
}
template <class Store>
void diskDelete(benchmark::State& state) {
    Store& store = storeOf<Store>(state);
    auto row = static_cast<std::int32_t>(state.range(0));
    for (std::int64_t i = 0; i < static_cast<std::int64_t>(state.max_iterations); ++i)
        store.add(row + static_cast<std::int32_t>(i));
    eachTime(state, store.good(), [&] { return store.remove(row++); });
}

constexpr std::int64_t readings = 1000, changes = 200;

void readingSizes(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{1000, 10000, 100000, 1000000}, {1}})->Iterations(readings);
}
void changingSizes(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{1000, 10000, 100000, 1000000}, {1, 5}})->Iterations(changes);
}
// A million rows with five indexes take LevelDB long to be made.
void levelSizes(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{1000, 10000, 100000, 1000000}, {1}})->Args({100000, 5})->Iterations(changes);
}

#define EACH_STORE(operation, sizing, levelSizing)                                                           \
    BENCHMARK(operation<KernelRows>)->Name(#operation "Kernel")->Apply(sizing);                              \
    BENCHMARK(operation<SqliteOpened>)->Name(#operation "SqliteOpened")->Apply(sizing);                      \
    BENCHMARK(operation<SqliteHeld>)->Name(#operation "SqliteHeld")->Apply(sizing);                          \
    BENCHMARK(operation<LevelRows>)->Name(#operation "Level")->Apply(levelSizing)
EACH_STORE(diskFind, readingSizes, readingSizes);
EACH_STORE(diskNext, readingSizes, readingSizes);
EACH_STORE(diskAdd, changingSizes, levelSizes);
BENCHMARK(diskFind<KernelRebuilt>)->Name("diskFindRebuilt")->Apply(readingSizes);
BENCHMARK(diskNext<KernelRebuilt>)->Name("diskNextRebuilt")->Apply(readingSizes);
BENCHMARK(diskAdd<KernelRebuilt>)->Name("diskAddRebuilt")->Apply(changingSizes);
EACH_STORE(diskDelete, changingSizes, levelSizes);

void largeOnes(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{100000, 1000000}, {1}})->Iterations(readings);
}
void largeChanges(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{100000, 1000000}, {1, 5}})->Iterations(changes);
}
BENCHMARK(diskFind<KernelGrown>)->Name("diskFindGrown")->Apply(largeOnes);
BENCHMARK(diskFind<KernelHeld>)->Name("diskFindHeld")->Apply(largeOnes);
BENCHMARK(diskNext<KernelGrown>)->Name("diskNextGrown")->Apply(largeOnes);
BENCHMARK(diskNext<KernelHeld>)->Name("diskNextHeld")->Apply(largeOnes);
BENCHMARK(diskAdd<KernelGrown>)->Name("diskAddGrown")->Apply(largeChanges);
BENCHMARK(diskAdd<KernelHeld>)->Name("diskAddHeld")->Apply(largeChanges);
BENCHMARK(diskDelete<KernelGrown>)->Name("diskDeleteGrown")->Apply(largeChanges);
BENCHMARK(diskDelete<KernelHeld>)->Name("diskDeleteHeld")->Apply(largeChanges);

// ---- to the disk ----

struct KernelDurable : KernelRows {
    using KernelRows::KernelRows;
    bool add(std::int32_t i) {
        const bool good = KernelRows::add(i);
        close();
        open();
        return good && ErrorCell() == 0;
    }
};
void durable(benchmark::internal::Benchmark* b) {
    b->Args({100000, 1})->Args({100000, 5})->Iterations(20)->UseRealTime();
}
BENCHMARK(diskAdd<KernelDurable>)->Name("diskAddDurable")->Apply(durable);
BENCHMARK(diskAdd<SqliteFull>)->Name("diskAddSqliteFull")->Apply(durable);

// ---- whole indexes ----

void diskRebuildKernel(benchmark::State& state) {
    KernelRows& store = storeOf<KernelRows>(state);
    store.close();
    repeat(state, [&] { return store.rebuild().error == 0; });
    store.open();
    setRows(state, state.range(0));
}
void diskRebuildSqlite(benchmark::State& state) {
    Sqlite db(
        makeSqlite(static_cast<std::int32_t>(state.range(0)), static_cast<std::int32_t>(state.range(1))),
        true, "off");
    const auto rebuild = [&] { return db.with("REINDEX", [](Statement& s) { return s.run(); }); };
    repeat(state, rebuild);
    setRows(state, state.range(0));
}
void rebuiltSizes(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{100000, 1000000}, {1, 5}});
}
BENCHMARK(diskRebuildKernel)->Apply(rebuiltSizes);
BENCHMARK(diskRebuildSqlite)->Apply(rebuiltSizes);

// ---- memory ----

// A line of /proc/self/status, in kB.
std::int64_t statusOf(const std::string& name) {
    std::ifstream in("/proc/self/status");
    for (std::string word; in >> word;)
        if (std::int64_t value = 0; word == name + ":" && in >> value) return value;
    return -1;
}

// How far the memory of a program that uses one table rises above what it is when that is open; "kB" of the
// counters.
void diskMemory(benchmark::State& state) {
    const auto rows = static_cast<std::int32_t>(state.range(0)),
               indexes = static_cast<std::int32_t>(state.range(1));
    const std::string path = makeKernel(rows, indexes), output = pathOf("memory.txt");
    for (auto _ : state) {
        const double used = runProgram(
            {"/proc/self/exe", diskMemoryOption, path, std::to_string(rows), std::to_string(indexes)}, "",
            output);
        if (used < 0) return state.SkipWithError("the program failed");
        state.counters["kB"] = std::stod(contentOf(output));
    }
}
BENCHMARK(diskMemory)->Args({1000, 5})->Args({1000000, 5})->Iterations(1)->Repetitions(1);

}  // namespace

int printDiskMemory(const char* path, const char* rows, const char* indexes) {
    constexpr std::int32_t operations = 2000;
    KernelRows store(path, std::atoi(indexes));
    store.open();
    const std::int32_t count = std::atoi(rows);
    const std::int64_t before = statusOf("VmRSS");
    bool good = store.good();
    for (std::int32_t i = 0, probe = 0; i < operations && good; ++i) {
        probe = nextProbe(probe, count);
        good = store.find(probe) && store.next() && store.add(count) && store.remove(count);
    }
    std::printf("%lld\n", static_cast<long long>(statusOf("VmHWM") - before));
    return good ? 0 : 1;
}

}  // namespace bench
