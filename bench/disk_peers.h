// SPDX-License-Identifier: Apache-2.0
//
// The peers of tables on disk, with the same rows: SQLite, and LevelDB, which does not look whether a key is there.
#pragma once

#include "disk_rows.h"

#include <cstdint>
#include <functional>
#include <leveldb/db.h>
#include <leveldb/write_batch.h>
#include <map>
#include <memory>
#include <sqlite3.h>
#include <string>

namespace bench {

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

// A database with the rows and that many indexes; its path.
std::string makeSqlite(std::int32_t rows, std::int32_t indexes);

class SqliteRows {
public:
    SqliteRows(std::int32_t rows, std::int32_t indexes, bool held, const char* synchronous);
    [[nodiscard]] static bool good() { return true; }
    bool add(std::int32_t i);
    bool find(std::int32_t i);
    bool next();
    bool remove(std::int32_t i);

private:
    bool take(const Statement& s);
    Sqlite db_;
    std::int32_t last_[RowFields] = {};
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
    LevelRows(std::int32_t rows, std::int32_t indexes);
    [[nodiscard]] bool good() const { return db_ != nullptr; }
    bool add(std::int32_t i);
    bool find(std::int32_t i);
    bool next();
    bool remove(std::int32_t i);

private:
    void put(leveldb::WriteBatch& batch, std::int32_t i) const;
    bool write(leveldb::WriteBatch& batch) { return db_->Write({}, &batch).ok(); }
    std::int32_t indexes_;
    std::unique_ptr<leveldb::DB> db_;
    std::string last_, lastKey_;
};

}  // namespace bench
