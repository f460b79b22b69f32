// SPDX-License-Identifier: Apache-2.0
//
// Indexes that are written at once: the shape of their trees, the order of their keys, the sorting in memory
// and through a scratch file, failures and deaths.
#include "kernel/index/index_filebuild.h"
#include "kernel/index/index_filesort.h"
#include "unit/kernel/index_file_fixture.h"

#include <algorithm>
#include <limits>
#include <random>

namespace tarn {
namespace {

using os::FileCall;
using os::FileError;

class BuiltIndexes : public IndexFiles {
protected:
    // Keys for several writings of each layer.
    static constexpr std::int32_t enough = IndexDisk::mostPeek < 1000 ? 60 : 2000;
    [[nodiscard]] KeyLayout layout() const {
        const RecordValue key = recordOf(shape);
        KeyView view;
        KeyLayout made;
        EXPECT_TRUE(KeyOfRecord(key.get(), view) && LayoutOfKey(view, made));
        return made;
    }
    [[nodiscard]] std::string packed(const Cells& cells) const {
        const RecordValue key = recordOf(cells);
        KeyView view;
        std::string bytes;
        EXPECT_TRUE(KeyOfRecord(key.get(), view) && PackKey(layout(), view, bytes));
        return bytes;
    }
    // Keys 2, 4, 6 ... in rows 1, 2, 3 ...
    std::int32_t buildEven(std::int32_t count) {
        IndexBuild build;
        std::int32_t code = build.open(path, layout(), count);
        for (std::int32_t i = 1; i <= count && code == 0; ++i) code = build.add(packed(keyOf(2 * i)), i);
        if (code == 0) return build.finish();
        build.drop();
        return code;
    }
    [[nodiscard]] Cells keyOf(std::int32_t number) const {
        Cells key = shape;
        key[0].number = number;
        if (key[0].kind != KindInteger) {
            key[0].text = std::to_string(1000000 + number);
            if (key[0].kind == KindArray) key[0].text.resize(static_cast<std::size_t>(key[0].capacity), '.');
        }
        return key;
    }
};

// ---- trees ----

TEST_F(BuiltIndexes, ATreeOfAnyNumberOfKeysIsSoundAndAsLowAsCanBe) {
    for (std::int32_t count = 1; count <= 600; count += count < 140 ? 1 : 23) {
        SCOPED_TRACE(count);
        make({integer(0)});
        ASSERT_EQ(buildEven(count), 0);
        ASSERT_EQ(check(count), "");
        const IndexShape measured = IndexHeight(&root, block);
        EXPECT_EQ(measured.bad, 0);
        std::int32_t lowest = 0;
        while (count >> lowest != 0) ++lowest;
        EXPECT_EQ(measured.height, lowest);
        EXPECT_EQ(firstFree(), 0);
        EXPECT_EQ(records(), count);
    }
}

TEST_F(BuiltIndexes, RecordsOfAnySizeServe) {
    for (const std::int32_t capacity : {1, 8, 30, 31, 100, 300, 451, 900, 2000, 4000}) {
        for (const std::int32_t count : {1, 2, 3, 6, 7, 8, 40, 200}) {
            SCOPED_TRACE(std::to_string(capacity) + " " + std::to_string(count));
            make({characters("", std::max(capacity, 8))});
            ASSERT_EQ(buildEven(count), 0);
            ASSERT_EQ(check(count), "");
        }
    }
}

TEST_F(BuiltIndexes, EveryOperatorFindsWhatItMust) {
    make({integer(0)});
    constexpr std::int32_t count = 500;
    ASSERT_EQ(buildEven(count), 0);
    EXPECT_EQ(find("FIRST", {integer(0)}), 1);
    EXPECT_EQ(find("LAST", {integer(0)}), count);
    for (std::int32_t i = 1; i <= count; ++i) {
        EXPECT_EQ(find("EQ", {integer(2 * i)}), i);
        EXPECT_EQ(find("EQ", {integer(2 * i + 1)}), -1);
        EXPECT_EQ(find("GE", {integer(2 * i - 1)}), i);
        EXPECT_EQ(find("LE", {integer(2 * i + 1)}), i);
        EXPECT_EQ(find("NEXT", {integer(2 * i)}), i < count ? i + 1 : -1);
        EXPECT_EQ(find("PREVIOUS", {integer(2 * i)}), i > 1 ? i - 1 : -1);
    }
}

TEST_F(BuiltIndexes, KeysComeAndGoAsInAnyIndex) {
    make({integer(0)});
    ASSERT_EQ(buildEven(300), 0);
    std::mt19937 random(3);
    std::vector<std::int32_t> keys;
    for (std::int32_t i = 1; i <= 300; ++i) keys.push_back(2 * i);
    for (std::int32_t n = 0; n < 600; ++n) {
        const auto key = static_cast<std::int32_t>(random() % 610);
        const auto at = std::find(keys.begin(), keys.end(), key);
        if (at != keys.end()) {
            remove({integer(key)});
            keys.erase(at);
        } else {
            ASSERT_EQ(insert({integer(key)}, 1000 + n), 0);
            keys.push_back(key);
        }
        ASSERT_EQ(takeError(), 0);
        if (n % 10 == 0) {
            ASSERT_EQ(check(), "");
        }
    }
    EXPECT_EQ(IndexCount(&root, block), static_cast<std::int32_t>(keys.size()));
}

TEST_F(BuiltIndexes, OnlyAnEmptyFileIsFilled) {
    makeIntegers({5});
    IndexBuild build;
    EXPECT_EQ(build.open(path, layout(), 3), 656);
    build.drop();
    EXPECT_EQ(check(), "");
    disk.remove(path);
    EXPECT_EQ(build.open(path, layout(), 3), 653);
    build.drop();
}

// ---- failures and deaths ----

TEST_F(BuiltIndexes, AfterAFailureAtAnyCallTheFileIsEmptyAgain) {
    for (const FileError failure : {FileError::WriteFailed, FileError::DiskFull}) {
        std::int32_t code = 652;
        int calls = 0;
        for (int call = 1; code != 0; ++call) {
            make({text("", 40)});
            const std::string empty = bytes();
            disk.failAt(call, failure);
            code = buildEven(enough);
            calls = disk.calls();
            disk.stopFailing();
            EXPECT_TRUE(code == 0 || code == 652 || code == 654) << code;
            EXPECT_TRUE(code == 0 || bytes() == empty) << call;
        }
        EXPECT_EQ(check(enough), "");
        EXPECT_GE(calls, 6);
    }
}

TEST_F(BuiltIndexes, AfterADeathAtAnyCallTheFileIsWholeOrTooShort) {
    for (const std::int32_t count : {1, 20, enough}) {
        for (const bool midway : {false, true}) {
            bool died = true;
            for (int call = 1; died; ++call) {
                make({text("", 40)});
                disk.dieAt(call, midway);
                try {
                    EXPECT_EQ(buildEven(count), 0);
                } catch (const os::ProcessDeath&) {}
                died = disk.dead();
                disk.revive();
                const std::int32_t there =
                    (static_cast<std::int32_t>(bytes().size()) - IndexHeaderBytes) / block.recordSize;
                EXPECT_LE(there, count);
                if (there == count) {
                    EXPECT_EQ(check(count), "") << call;
                }
                EXPECT_TRUE(died || there == count);
            }
        }
    }
}

// ---- sorting ----

class SortedKeys : public BuiltIndexes {
protected:
    static Cell anyCell(const Cell& like, std::mt19937& random) {
        constexpr double reals[] = {0.0,
                                    -0.0,
                                    1,
                                    -1,
                                    1e300,
                                    -1e300,
                                    0.1,
                                    std::numeric_limits<double>::infinity(),
                                    -std::numeric_limits<double>::infinity(),
                                    std::numeric_limits<double>::quiet_NaN()};
        Cell cell = like;
        const std::uint64_t number = std::uint64_t{random()} << 32U | random();
        switch (like.kind) {
        case KindBoolean: cell.number = number % 2; break;
        case KindEnum: cell.number = number % 256; break;
        case KindInteger: cell.number = static_cast<std::int32_t>(number % 400) - 200; break;
        case KindFixed: cell.number = static_cast<std::int64_t>(number) >> (number % 60); break;
        case KindReal:
            cell.real = number % 3 == 0 ? reals[number / 3 % std::size(reals)]
                                        : static_cast<double>(static_cast<std::int32_t>(number));
            break;
        default:
            cell.text.assign(number % 3 == 0 ? 8 : 0, 'p');
            for (std::uint64_t i = number / 3 % 4; i-- != 0;)
                cell.text += std::string("\0a\xFF", 3)[random() % 3];
            cell.text.resize(std::min(cell.text.size(), static_cast<std::size_t>(like.capacity)));
            if (like.kind == KindArray) cell.text.resize(static_cast<std::size_t>(like.capacity), 'z');
        }
        return cell;
    }
    // Sorts random keys and compares with the model.
    void sortRandom(std::int32_t count, std::size_t mostBytes, unsigned seed) {
        std::mt19937 random(seed);
        KeySort sort(layout(), path, count, mostBytes);
        std::vector<std::pair<Cells, std::int32_t>> model;
        for (std::int32_t row = 1; row <= count; ++row) {
            Cells cells;
            for (const Cell& like : shape) cells.push_back(anyCell(like, random));
            const RecordValue key = recordOf(cells);
            KeyView view;
            bool fits = false;
            ASSERT_TRUE(KeyOfRecord(key.get(), view) && sort.add(view, fits) && fits);
            model.emplace_back(std::move(cells), row);
        }
        const auto orderOfKeys = [](const Cells& a, const Cells& b) {
            for (std::size_t i = 0; i < a.size(); ++i)
                if (const int order = orderOf(a[i], b[i]); order != 0) return order;
            return 0;
        };
        std::stable_sort(model.begin(), model.end(),
                         [&](const auto& a, const auto& b) { return orderOfKeys(a.first, b.first) < 0; });
        for (int pass = 0; pass < 2; ++pass) {
            ASSERT_TRUE(sort.start());
            for (std::size_t i = 0; i < model.size(); ++i) {
                KeySort::Entry entry;
                ASSERT_TRUE(sort.next(entry));
                ASSERT_EQ(entry.row, model[i].second) << i;
                ASSERT_EQ(entry.key, packed(model[i].first)) << i;
                ASSERT_EQ(entry.again, i > 0 && orderOfKeys(model[i - 1].first, model[i].first) == 0) << i;
            }
        }
    }
};

TEST_F(SortedKeys, KeysOfEachKindComeInTheirOrderWithEqualOnesInThatOfTheirRows) {
    const Cells shapes[] = {
        {integer(0)},
        {fixedNumber(0)},
        {real(0)},
        {flag(false), integer(0)},
        {ordinal(0), real(0), flag(false)},
        {text("", 3)},
        {text("", 12)},
        {text("", 12), integer(0)},
        {characters("", 3)},
        {characters("", 10), ordinal(0)},
        {ordinal(0), fixedNumber(0)},
        {integer(0), integer(0), integer(0), text("", 2)},
    };
    unsigned seed = 0;
    for (const Cells& like : shapes) {
        make(like);
        for (const std::size_t bytes : {std::size_t{1} << 20, std::size_t{700}, std::size_t{1}}) {
            for (const std::int32_t count : {1, 2, 3, 150}) {
                SCOPED_TRACE("shape " + std::to_string(&like - shapes) + ", bytes " + std::to_string(bytes) +
                             ", keys " + std::to_string(count));
                sortRandom(count, bytes, ++seed);
            }
        }
    }
    EXPECT_EQ(disk.allFiles(), (std::vector<std::string>{path}));
}

TEST_F(SortedKeys, WideCharactersOrderAsNumbers) {
    CharacterWidth = 2;
    make({text("", 6)});
    KeySort sort(layout(), path, 3, 1);
    // 0x0201, 0x0102, and nothing.
    for (const std::string_view bytes :
         {std::string_view("\x01\x02", 2), std::string_view("\x02\x01", 2), std::string_view()}) {
        KeyView view;
        view.count = 1;
        view.parts[0] = {KindString, static_cast<std::int32_t>(bytes.size()), bytes.data(), nullptr};
        bool fits = false;
        EXPECT_TRUE(sort.add(view, fits) && fits);
    }
    EXPECT_TRUE(sort.start());
    for (const std::int32_t row : {3, 2, 1}) {
        KeySort::Entry entry;
        EXPECT_TRUE(sort.next(entry));
        EXPECT_EQ(entry.row, row);
    }
    CharacterWidth = 1;
}

TEST_F(SortedKeys, AKeyOfAnotherShapeDoesNotFit) {
    make({integer(0)});
    KeySort sort(layout(), path, 3, 100);
    const RecordValue other = recordOf({real(1)});
    KeyView view;
    bool fits = true;
    EXPECT_TRUE(KeyOfRecord(other.get(), view) && sort.add(view, fits));
    EXPECT_FALSE(fits);
}

TEST_F(SortedKeys, AScratchFileThatFailsIsToldOfAndGone) {
    make({integer(0)});
    const auto run = [&] {
        KeySort sort(layout(), path, 200, 400);
        bool good = true, fits = false;
        for (std::int32_t i = 0; i < 200 && good; ++i) {
            const RecordValue key = recordOf({integer(i * 37 % 200)});
            KeyView view;
            good = KeyOfRecord(key.get(), view) && sort.add(view, fits) && fits;
        }
        good = good && sort.start();
        KeySort::Entry entry;
        for (std::int32_t i = 0; i < 200 && good; ++i) good = sort.next(entry);
        return good;
    };
    for (const FileCall kind : {FileCall::Open, FileCall::Write, FileCall::Read}) {
        bool good = false;
        int call = 1;
        for (; !good && call < 100; ++call) {
            disk.failAt(kind, call, kind == FileCall::Read ? FileError::ReadFailed : FileError::DiskFull);
            good = run();
            disk.stopFailing();
            EXPECT_EQ(disk.allFiles(), (std::vector<std::string>{path}));
            EXPECT_EQ(disk.openHandles(), 0);
        }
        EXPECT_TRUE(good);
        EXPECT_GE(call, 3);
    }
}

}  // namespace
}  // namespace tarn
