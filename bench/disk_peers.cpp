// SPDX-License-Identifier: Apache-2.0
#include "disk_peers.h"

#include "data_bench.h"

namespace bench {

// ---- SQLite ----

namespace {

constexpr const char *insertRow = "INSERT INTO t VALUES(?,?,?,?,?,?)", *findRow = "SELECT * FROM t WHERE a=?",
                     *nextRow = "SELECT * FROM t WHERE a>? ORDER BY a LIMIT 1",
                     *removeRow = "DELETE FROM t WHERE a=?";

}  // namespace

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
            for (std::int32_t field = 0; field < RowFields; ++field)
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

SqliteRows::SqliteRows(std::int32_t rows, std::int32_t indexes, bool held, const char* synchronous)
    : db_(makeSqlite(rows, indexes), held, synchronous) {}

bool SqliteRows::add(std::int32_t i) {
    return db_.with(insertRow, [&](Statement& s) {
        for (std::int32_t field = 0; field < RowFields; ++field) s.bind(field + 1, fieldOf(i, field));
        return s.run();
    });
}

bool SqliteRows::find(std::int32_t i) {
    return db_.with(findRow, [&](Statement& s) {
        s.bind(1, keyOf(i, 0)).run();
        return take(s) && last_[RowFields - 1] == i;
    });
}

bool SqliteRows::next() {
    bool found = false;
    const bool good = db_.with(nextRow, [&](Statement& s) {
        const bool ran = s.bind(1, last_[0]).run();
        found = take(s);
        return ran;
    });
    if (!found) last_[0] = INT32_MIN;
    return good;
}

bool SqliteRows::remove(std::int32_t i) {
    return db_.with(removeRow, [&](Statement& s) { return s.bind(1, keyOf(i, 0)).run(); });
}

bool SqliteRows::take(const Statement& s) {
    if (!s.hasRow()) return false;
    for (int field = 0; field < RowFields; ++field) last_[field] = s.column(field);
    return true;
}

// ---- LevelDB ----

namespace {

std::string keyBytes(std::int32_t i, std::int32_t index) {
    std::string bytes(1, static_cast<char>(index));
    appendBigEndian(bytes, static_cast<std::uint32_t>(keyOf(i, index)) ^ 0x80000000U);
    return bytes;
}

}  // namespace

LevelRows::LevelRows(std::int32_t rows, std::int32_t indexes) : indexes_(indexes) {
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

bool LevelRows::add(std::int32_t i) {
    leveldb::WriteBatch batch;
    put(batch, i);
    return write(batch);
}

bool LevelRows::find(std::int32_t i) {
    const bool good = db_->Get({}, keyBytes(i, 0), &last_).ok();
    return good && last_ == bytesOfRow(i);
}

bool LevelRows::next() {
    const std::unique_ptr<leveldb::Iterator> at(db_->NewIterator({}));
    at->Seek(lastKey_);
    if (at->Valid()) at->Next();
    if (!at->Valid() || at->key()[0] != 0) at->SeekToFirst();
    if (!at->Valid()) return false;
    lastKey_ = at->key().ToString();
    last_ = at->value().ToString();
    return true;
}

bool LevelRows::remove(std::int32_t i) {
    leveldb::WriteBatch batch;
    for (std::int32_t n = 0; n < indexes_; ++n) batch.Delete(keyBytes(i, n));
    return write(batch);
}

void LevelRows::put(leveldb::WriteBatch& batch, std::int32_t i) const {
    batch.Put(keyBytes(i, 0), bytesOfRow(i));
    for (std::int32_t n = 1; n < indexes_; ++n) batch.Put(keyBytes(i, n), keyBytes(i, 0));
}

}  // namespace bench
