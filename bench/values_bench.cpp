// SPDX-License-Identifier: Apache-2.0
// The values of the language beside what a C++ program would use for them. Both sides make and free what they use within
// the measured time, and give what they find as a copy of the whole row.
#include "kernel/lists/lists.h"
#include "kernel/tables/tables.h"
#include "kernel/text/dates.h"
#include "kernel/text/fixed.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"

#include <benchmark/benchmark.h>
#include <boost/container/set.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index/ordered_index.hpp>
#include <boost/multi_index_container.hpp>
#include <cstdlib>
#include <ctime>
#include <map>
#include <random>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace {

using namespace tarn;

// ---- memory ----

void allocateKernel(benchmark::State& state) {
    const auto size = static_cast<std::int32_t>(state.range(0));
    for (auto _ : state) {
        Offset block = 0;
        Allocate(block, size);
        benchmark::DoNotOptimize(At(block));
        Free(block, size);
    }
}
BENCHMARK(allocateKernel)->Arg(40)->Arg(1000);

void allocateMalloc(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        void* block = std::malloc(size);
        benchmark::DoNotOptimize(block);
        std::free(block);
    }
}
BENCHMARK(allocateMalloc)->Arg(40)->Arg(1000);

// ---- strings ----

void stringAssignKernel(benchmark::State& state) {
    const String text(std::string(static_cast<std::size_t>(state.range(0)), 'a'));
    for (auto _ : state) {
        String copy;
        StringAssign(copy.get(), text.get());
        benchmark::ClobberMemory();
    }
}
void stringAssignStd(benchmark::State& state) {
    const std::string text(static_cast<std::size_t>(state.range(0)), 'a');
    for (auto _ : state) {
        std::string copy = text;
        benchmark::DoNotOptimize(copy);
    }
}
void stringCompareKernel(benchmark::State& state) {
    const String a(std::string(static_cast<std::size_t>(state.range(0)), 'a'));
    const String b(std::string(static_cast<std::size_t>(state.range(0)), 'a'));
    for (auto _ : state) benchmark::DoNotOptimize(StringCompareOp("EQ", a.get(), b.get()));
}
void stringCompareStd(benchmark::State& state) {
    const std::string a(static_cast<std::size_t>(state.range(0)), 'a'), b = a;
    for (auto _ : state) {
        benchmark::ClobberMemory();
        benchmark::DoNotOptimize(a == b);
    }
}
BENCHMARK(stringAssignKernel)->Arg(16)->Arg(256)->Arg(65536);
BENCHMARK(stringAssignStd)->Arg(16)->Arg(256)->Arg(65536);
BENCHMARK(stringCompareKernel)->Arg(16)->Arg(256)->Arg(65536);
BENCHMARK(stringCompareStd)->Arg(16)->Arg(256)->Arg(65536);

// ---- lists ----

constexpr std::int32_t listLength = 100000;

void listAppendKernel(benchmark::State& state) {
    for (auto _ : state) {
        ListValue list;
        ListInit(list.get(), UNBOUNDED, nullptr, KindInteger, false);
        for (std::int32_t i = 0; i < listLength; ++i) ListAppend(&i, KindInteger, list.get());
    }
}
void listAppendStd(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<std::int32_t> list;
        for (std::int32_t i = 0; i < listLength; ++i) list.push_back(i);
        benchmark::DoNotOptimize(list.data());
    }
}
void listGetKernel(benchmark::State& state) {
    ListValue list;
    ListInit(list.get(), UNBOUNDED, nullptr, KindInteger, false);
    for (std::int32_t i = 0; i < 1000; ++i) ListAppend(&i, KindInteger, list.get());
    std::int32_t position = 1, value = 0;
    for (auto _ : state) {
        ListGet(list.get(), position, &value, KindInteger);
        benchmark::DoNotOptimize(value);
        position = position % 1000 + 1;
    }
}
void listGetStd(benchmark::State& state) {
    const std::vector<std::int32_t> list(1000, 7);
    std::size_t position = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(list.at(position));
        position = (position + 1) % 1000;
    }
}
BENCHMARK(listAppendKernel);
BENCHMARK(listAppendStd);
BENCHMARK(listGetKernel);
BENCHMARK(listGetStd);

// ---- tables ----

// Five keys of a row that are all unique, in an order of their own.
std::int32_t keyOf(std::int32_t row, std::int32_t field) {
    constexpr std::uint32_t odd[] = {2654435761U, 2246822519U, 3266489917U, 668265263U, 374761393U};
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(row) * odd[field]);
}

struct Rows {
    TableValue table;
    RecordValue row, key;
    Rows(std::int32_t count, std::int32_t indexes) {
        RecordInit(
            row.get(), TagRecord,
            MakeFieldKinds({KindInteger, KindInteger, KindInteger, KindInteger, KindInteger, KindInteger}));
        RecordInit(key.get(), TagRecord, MakeFieldKinds({KindInteger}));
        KeyMaps maps{};
        for (std::int32_t n = 0; n < indexes; ++n) maps[static_cast<std::size_t>(n)] = MakeKeyMap(n + 1);
        TableInit(table.get(), UNBOUNDED, row.get(), maps, "", false);
        for (std::int32_t i = 0; i < count; ++i) add(i);
    }
    void add(std::int32_t i) {
        char* at = At(row.get()->data);
        for (std::int32_t field = 0; field < 5; ++field) WriteAt(at + 4 * field, keyOf(i, field));
        WriteAt(at + 20, i);
        TableAdd(table.get(), 1, row.get());
    }
    void setKey(std::int32_t i) { WriteAt(At(key.get()->data), keyOf(i, 0)); }
};

struct PlainRow {
    std::int32_t keys[5];
    std::int32_t value;
    bool operator<(const PlainRow& other) const { return keys[0] < other.keys[0]; }
};
PlainRow plainRow(std::int32_t i) {
    PlainRow row{{}, i};
    for (std::int32_t field = 0; field < 5; ++field) row.keys[field] = keyOf(i, field);
    return row;
}
using AvlSet = boost::container::set<
    PlainRow, std::less<>, void,
    boost::container::tree_assoc_options<boost::container::tree_type<boost::container::avl_tree>>::type>;

template <int N>
struct KeyField {
    using result_type = std::int32_t;
    std::int32_t operator()(const PlainRow& row) const { return row.keys[N]; }
};
using OneIndex = boost::multi_index_container<
    PlainRow, boost::multi_index::indexed_by<boost::multi_index::ordered_unique<KeyField<0>>>>;
using FiveIndexes = boost::multi_index_container<
    PlainRow,
    boost::multi_index::indexed_by<
        boost::multi_index::ordered_unique<KeyField<0>>, boost::multi_index::ordered_unique<KeyField<1>>,
        boost::multi_index::ordered_unique<KeyField<2>>, boost::multi_index::ordered_unique<KeyField<3>>,
        boost::multi_index::ordered_unique<KeyField<4>>>>;

// One statement after another on a database in memory.
class Sqlite {
public:
    explicit Sqlite(std::int32_t indexes) {
        sqlite3_open(":memory:", &db_);
        run("CREATE TABLE t(a INT, b INT, c INT, d INT, e INT, v INT)");
        const char* const columns[] = {"a", "b", "c", "d", "e"};
        for (std::int32_t n = 0; n < indexes; ++n)
            run(std::string("CREATE UNIQUE INDEX i") + columns[n] + " ON t(" + columns[n] + ")");
        sqlite3_prepare_v2(db_, "INSERT INTO t VALUES(?,?,?,?,?,?)", -1, &insert_, nullptr);
        sqlite3_prepare_v2(db_, "SELECT v FROM t WHERE a=?", -1, &find_, nullptr);
    }
    ~Sqlite() {
        sqlite3_finalize(insert_);
        sqlite3_finalize(find_);
        sqlite3_close(db_);
    }
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;
    void add(std::int32_t i) {
        for (int field = 0; field < 5; ++field) sqlite3_bind_int(insert_, field + 1, keyOf(i, field));
        sqlite3_bind_int(insert_, 6, i);
        sqlite3_step(insert_);
        sqlite3_reset(insert_);
    }
    int find(std::int32_t i) {
        sqlite3_bind_int(find_, 1, keyOf(i, 0));
        const int value = sqlite3_step(find_) == SQLITE_ROW ? sqlite3_column_int(find_, 0) : -1;
        sqlite3_reset(find_);
        return value;
    }

private:
    void run(const std::string& statement) {
        sqlite3_exec(db_, statement.c_str(), nullptr, nullptr, nullptr);
    }
    sqlite3* db_ = nullptr;
    sqlite3_stmt *insert_ = nullptr, *find_ = nullptr;
};

template <class Fill>
void fillRows(benchmark::State& state, Fill fill) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    for (auto _ : state) fill(count, static_cast<std::int32_t>(state.range(1)));
    state.counters["per row"] = benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate |
                                                              benchmark::Counter::kInvert);
}
void tableAddKernel(benchmark::State& state) {
    fillRows(state, [](std::int32_t count, std::int32_t indexes) { const Rows rows(count, indexes); });
}
void tableAddBoost(benchmark::State& state) {
    fillRows(state, [](std::int32_t count, std::int32_t indexes) {
        OneIndex one;
        FiveIndexes five;
        for (std::int32_t i = 0; i < count; ++i) {
            if (indexes == 1)
                one.insert(plainRow(i));
            else
                five.insert(plainRow(i));
        }
    });
}
void tableAddSqlite(benchmark::State& state) {
    fillRows(state, [](std::int32_t count, std::int32_t indexes) {
        Sqlite db(indexes);
        for (std::int32_t i = 0; i < count; ++i) db.add(i);
    });
}
BENCHMARK(tableAddKernel)->ArgsProduct({{1000, 10000, 100000}, {1, 5}});
BENCHMARK(tableAddBoost)->ArgsProduct({{1000, 10000, 100000}, {1, 5}});
BENCHMARK(tableAddSqlite)->ArgsProduct({{1000, 10000, 100000}, {1, 5}});

// Every row once before any comes again, in an order that is none of the keys'.
std::int32_t nextProbe(std::int32_t probe, std::int32_t count) {
    constexpr std::int32_t step = 61803;  // prime to all the counts
    return (probe + step) % count;
}

void tableFindKernel(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    Rows rows(count, 1);
    std::int32_t probe = 0;
    for (auto _ : state) {
        rows.setKey(probe);
        TableRead(rows.table.get(), 1, rows.key.get(), rows.row.get());
        benchmark::DoNotOptimize(ReadAt<std::int32_t>(At(rows.row.get()->data) + 20));
        probe = nextProbe(probe, count);
    }
}
void tableFindBoost(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    AvlSet set;
    for (std::int32_t i = 0; i < count; ++i) set.insert(plainRow(i));
    std::int32_t probe = 0;
    PlainRow row{};
    for (auto _ : state) {
        row.keys[0] = keyOf(probe, 0);
        PlainRow found = *set.find(row);
        benchmark::DoNotOptimize(found);
        probe = nextProbe(probe, count);
    }
}
void tableFindMap(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    std::map<std::int32_t, PlainRow> map;
    for (std::int32_t i = 0; i < count; ++i) map.emplace(keyOf(i, 0), plainRow(i));
    std::int32_t probe = 0;
    for (auto _ : state) {
        PlainRow found = map.find(keyOf(probe, 0))->second;
        benchmark::DoNotOptimize(found);
        probe = nextProbe(probe, count);
    }
}
void tableFindSqlite(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    Sqlite db(1);
    for (std::int32_t i = 0; i < count; ++i) db.add(i);
    std::int32_t probe = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(db.find(probe));
        probe = nextProbe(probe, count);
    }
}
BENCHMARK(tableFindKernel)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(tableFindBoost)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(tableFindMap)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(tableFindSqlite)->Arg(1000)->Arg(10000)->Arg(100000);

void tableNextKernel(benchmark::State& state) {
    Rows rows(static_cast<std::int32_t>(state.range(0)), 1);
    bool found = false;
    for (auto _ : state) {
        TableFind(found ? "NEXT" : "FIRST", rows.table.get(), 1, rows.key.get(), rows.row.get(), found);
        if (found) WriteAt(At(rows.key.get()->data), ReadAt<std::int32_t>(At(rows.row.get()->data)));
    }
}
void tableNextMap(benchmark::State& state) {
    std::map<std::int32_t, PlainRow> map;
    for (std::int32_t i = 0; i < state.range(0); ++i) map.emplace(keyOf(i, 0), plainRow(i));
    std::int32_t key = 0;
    for (auto _ : state) {
        auto next = map.upper_bound(key);
        if (next == map.end()) next = map.begin();
        key = next->first;
        PlainRow found = next->second;
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(tableNextKernel)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(tableNextMap)->Arg(1000)->Arg(10000)->Arg(100000);

// A row goes and comes back.
void tableDeleteKernel(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    Rows rows(count, static_cast<std::int32_t>(state.range(1)));
    std::int32_t probe = 0;
    for (auto _ : state) {
        rows.setKey(probe);
        TableDelete(rows.table.get(), 1, rows.key.get());
        rows.add(probe);
        probe = nextProbe(probe, count);
    }
}
void tableDeleteBoost(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    OneIndex one;
    FiveIndexes five;
    for (std::int32_t i = 0; i < count; ++i) {
        if (state.range(1) == 1)
            one.insert(plainRow(i));
        else
            five.insert(plainRow(i));
    }
    std::int32_t probe = 0;
    for (auto _ : state) {
        const PlainRow row = plainRow(probe);
        if (state.range(1) == 1) {
            one.erase(row.keys[0]);
            one.insert(row);
        } else {
            five.erase(row.keys[0]);
            five.insert(row);
        }
        probe = nextProbe(probe, count);
    }
}
BENCHMARK(tableDeleteKernel)->ArgsProduct({{1000, 100000}, {1, 5}});
BENCHMARK(tableDeleteBoost)->ArgsProduct({{1000, 100000}, {1, 5}});

// ---- sets ----

void setUnionKernel(benchmark::State& state) {
    const auto members = static_cast<std::int32_t>(state.range(0));
    OwnedSet a, b, sum;
    for (OwnedSet* set : {&a, &b, &sum}) SetInit(set->get(), 1, members);
    for (std::int32_t i = 1; i <= members; i += 3) SetInclude(i, a.get());
    for (std::int32_t i = 1; i <= members; i += 5) SetInclude(i, b.get());
    for (auto _ : state) {
        SetUnion(a.get(), b.get(), sum.get());
        benchmark::ClobberMemory();
    }
}
void setUnionStd(benchmark::State& state) {
    const auto members = static_cast<std::size_t>(state.range(0));
    std::vector<bool> a(members), b(members), sum(members);
    for (std::size_t i = 0; i < members; i += 3) a[i] = true;
    for (std::size_t i = 0; i < members; i += 5) b[i] = true;
    for (auto _ : state) {
        for (std::size_t i = 0; i < members; ++i) sum[i] = a[i] || b[i];
        benchmark::ClobberMemory();
    }
}
BENCHMARK(setUnionKernel)->Arg(256)->Arg(32000);
BENCHMARK(setUnionStd)->Arg(256)->Arg(32000);

// ---- numbers ----

std::vector<Fixed> someNumbers() {
    std::mt19937_64 random(1);
    std::vector<Fixed> numbers(1024);
    for (Fixed& n : numbers) n = static_cast<Fixed>(random() % 2000000000000ULL) - 1000000000000LL;
    return numbers;
}
template <class Operation>
void eachPair(benchmark::State& state, Operation operation) {
    const std::vector<Fixed> numbers = someNumbers();
    std::size_t i = 0;
    for (auto _ : state) {
        Fixed r = 0;
        operation(numbers[i], numbers[i + 1] | 1, r);
        benchmark::DoNotOptimize(r);
        i = (i + 1) & 1022;
    }
}
void fixedMulKernel(benchmark::State& state) {
    eachPair(state, [](Fixed a, Fixed b, Fixed& r) { FixedMul(a, b, r); });
}
void fixedMulPlain(benchmark::State& state) {
    eachPair(state, [](Fixed a, Fixed b, Fixed& r) {
        r = static_cast<Fixed>(static_cast<__int128>(a) * b / 10000);
    });
}
void fixedDivKernel(benchmark::State& state) {
    eachPair(state, [](Fixed a, Fixed b, Fixed& r) { FixedDiv(a, b, r); });
}
void fixedDivPlain(benchmark::State& state) {
    eachPair(state, [](Fixed a, Fixed b, Fixed& r) {
        r = static_cast<Fixed>(static_cast<__int128>(a) * 10000 / b);
    });
}
BENCHMARK(fixedMulKernel);
BENCHMARK(fixedMulPlain);
BENCHMARK(fixedDivKernel);
BENCHMARK(fixedDivPlain);

// ---- dates ----

void dateParseKernel(benchmark::State& state) {
    std::string result;
    bool ok = false;
    for (auto _ : state) {
        DateParse("31-Jan-2000 11:30:33", result, ok);
        benchmark::DoNotOptimize(ok);
    }
}
void dateParseLibc(benchmark::State& state) {
    for (auto _ : state) {
        std::tm parts{};
        benchmark::DoNotOptimize(strptime("31-Jan-2000 11:30:33", "%d-%b-%Y %H:%M:%S", &parts));
        benchmark::DoNotOptimize(parts);
    }
}
void dateAddKernel(benchmark::State& state) {
    char result[DateSize];
    for (auto _ : state) {
        DateAdd("D", 40, "2000-01-31 01:01:01.4321", result, DateSize);
        benchmark::DoNotOptimize(result[0]);
    }
}
BENCHMARK(dateParseKernel);
BENCHMARK(dateParseLibc);
BENCHMARK(dateAddKernel);

}  // namespace

BENCHMARK_MAIN();
