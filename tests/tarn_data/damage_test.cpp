// SPDX-License-Identifier: Apache-2.0
//
// 'check' and 'rebuild' agree, whatever became of the files: what is whole for the one can be opened; what the
// other has mended is whole; no row is lost on the way; and mending twice changes nothing more. The files
// stand on a disk in memory and are damaged at random.
#include "support/rounds.h"
#include "tarn_data/commands/commands.h"
#include "tarn_data/said.h"
#include "unit/kernel/filetables_fixture.h"

#include <algorithm>
#include <functional>
#include <map>
#include <random>

namespace tarn::datatool {
namespace {

using Files = std::map<std::string, std::string>;

// A table with rows that were added, changed and deleted, so that its indexes have free records.
struct Subject {
    const char* name;
    const char* file;
    const char* declaration;  // null: the file has it
    std::int32_t capacity;
    KeyMaps maps;
    Cells (*row)(int number);
    std::int64_t headerBytes, rowBytes;
};

Cells plainRow(int n) {
    return {integer(n * 7 % 50), text("n" + std::to_string(n), 6), flag(n % 2 == 0), real(n / 4.0),
            characters("c" + std::to_string(n), 4)};
}
Cells shortRow(int n) {
    return {integer(n), flag(n % 2 == 0)};
}
Cells xbaseRow(int n) {
    return {ordinal(n % 4 == 0 ? '*' : ' '), characters("name " + std::to_string(n), 9),
            characters(std::to_string(1000 + n), 6), characters("20240229", 8)};
}

#define PLAIN_FIELDS                                                                                         \
    "\t\tid : integer\n\t\tname : string[6]\n\t\tok : boolean\n\t\tweight : real\n\t\tcode : Tchars[1:4]\n"
constexpr Subject subjects[] = {
    {"plain",
     "/d/a.tab",
     "t : table\n\tr : record\n" PLAIN_FIELDS "\tend record\nend table\n",
     UNBOUNDED,
     {0x01000000, 0x03010000, 0x02010000, 0x04010000, 0x05020100},
     plainRow,
     0,
     4 + 10 + 1 + 8 + 4},
    {"fixed",
     "/d/a.tab",
     "t : table[20]\n\tr : record\n" PLAIN_FIELDS "\tend record\nend table\n",
     20,
     {0x01000000, 0x02030000},
     plainRow,
     4,
     4 + 10 + 1 + 8 + 4},
    {"no index",
     "/d/a.tab",
     "t : table\n\tr : record\n" PLAIN_FIELDS "\tend record\nend table\n",
     UNBOUNDED,
     {},
     plainRow,
     0,
     4 + 10 + 1 + 8 + 4},
    {"short rows",
     "/d/a.tab",
     "t : table\n\tr : record\n\t\tid : integer\n\t\tok : boolean\n\tend record\nend table\n",
     UNBOUNDED,
     {0x01000000, 0x02010000},
     shortRow,
     0,
     5},
    {"xbase", "/d/a.dbf", nullptr, UNBOUNDED, {0x02000000, 0x01030000, 0x04020000}, xbaseRow, 129, 24},
    {"xbase without index", "/d/a.dbf", nullptr, UNBOUNDED, {}, xbaseRow, 129, 24},
};

class DamageSoak : public FileTables {
protected:
    bool isXbase() const { return subject_->declaration == nullptr; }

    void make(const Subject& subject) {
        subject_ = &subject;
        mended_ = 0;
        newDisk();
        table = closedTable(subject.maps, subject.capacity, subject.row(0));
        ASSERT_EQ(FileTables::open(subject.file), 0);
        for (int n = 1; n <= 14; ++n) ASSERT_EQ(add(subject.row(n)), 0);
        const std::size_t key = isXbase() ? 1 : 0;
        for (const int n : {3, 7, 12, 5}) {
            if (subject.maps[0] == 0) continue;
            ASSERT_EQ(remove(1, {subject.row(n)[key]}), 0);
        }
        close();
        whole_.clear();
        for (const std::string& path : files().allFiles()) whole_[path] = files().contents(path);
    }
    void restore() {
        newDisk();
        for (const auto& [path, bytes] : whole_) files().put(path, bytes);
        if (!isXbase()) files().put("/d/t.type", subject_->declaration);
    }
    Files all() {
        Files now;
        for (const std::string& path : files().allFiles()) now[path] = files().contents(path);
        return now;
    }

    // ---- damage ----

    std::size_t upTo(std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random_);
    }
    std::string someBytes(std::size_t count) {
        constexpr std::string_view likely = {"\0\x1A *\r\x01\xFF", 7};
        const std::size_t way = upTo(3);
        std::string bytes(count, way == 0 ? '\0' : way == 1 ? '\x1A' : ' ');
        for (char& c : bytes) {
            if (way == 2) c = static_cast<char>(upTo(255));
            if (way == 3) c = likely[upTo(likely.size() - 1)];
        }
        return bytes;
    }
    std::string damaged(std::string bytes) {
        const std::size_t at = bytes.empty() ? 0 : upTo(bytes.size() - 1);
        const auto row = static_cast<std::size_t>(subject_->rowBytes);
        switch (upTo(8)) {
        case 0:
        case 1:
            if (!bytes.empty()) bytes[at] = someBytes(1)[0];
            break;
        case 2: bytes.resize(at); break;
        case 3: bytes.resize(bytes.size() - std::min(bytes.size(), upTo(3))); break;
        case 4: bytes += someBytes(upTo(3 * row)); break;
        case 5: bytes += "\x1A" + someBytes(upTo(3 * row)); break;
        case 6: {  // two pages change places
            const std::size_t page = 1 + upTo(63),
                              other = bytes.size() < page ? 0 : upTo(bytes.size() - page);
            for (std::size_t i = 0; i < page && at + i < bytes.size() && other + i < bytes.size(); ++i)
                std::swap(bytes[at + i], bytes[other + i]);
            break;
        }
        case 7: {  // another count
            const std::size_t count = isXbase() ? 4 : 0;
            if (bytes.size() > count + 4) bytes[count + (isXbase() ? 0 : 3)] = static_cast<char>(upTo(30));
            break;
        }
        default: bytes += bytes.substr(at, upTo(2 * row)); break;  // a part twice
        }
        return bytes;
    }
    void damage() {
        std::vector<std::string> paths;
        for (const auto& [path, bytes] : whole_) paths.push_back(path);
        const std::string path = upTo(1) == 0 ? subject_->file : paths[upTo(paths.size() - 1)];
        if (path != subject_->file && upTo(15) == 0) {
            files().remove(path);
            return;
        }
        files().put(path, damaged(files().contents(path)));
    }

    // ---- the commands ----

    int run(int (*command)(const Arguments&), bool withKeys) {
        static const char* const plain[] = {"id", "name", "ok", "weight", "code"};
        static const char* const xbase[] = {"delete_flag", "FIELD1", "FIELD2", "FIELD3"};
        Arguments arguments;
        arguments.files = {subject_->file};
        if (!isXbase()) arguments.type = "/d/t.type";
        for (const std::int32_t map : subject_->maps) {
            std::vector<std::string> key;
            for (auto rest = static_cast<std::uint32_t>(map); rest != 0 && withKeys; rest <<= 8U) {
                const std::size_t field = (rest >> 24U) - 1;
                const bool isShort = subject_->rowBytes == 5;
                key.emplace_back(isXbase() ? xbase[field] : isShort && field == 1 ? "ok" : plain[field]);
            }
            if (!key.empty()) arguments.keys.push_back(key);
        }
        said().clear();
        const int status = command(arguments);
        EXPECT_EQ(takeError(), 0) << said();
        EXPECT_EQ(files().openHandles(), 0);
        return status;
    }

    // The rows that count and are there, by the bytes of the file alone.
    std::vector<std::string> rowsOf(const std::string& bytes) const {
        const auto size = static_cast<std::int64_t>(bytes.size());
        std::int64_t header = subject_->headerBytes,
                     count = std::max<std::int64_t>(size - header, 0) / subject_->rowBytes;
        const auto byte = [&](std::size_t at) { return std::int64_t{static_cast<unsigned char>(bytes[at])}; };
        if (isXbase() && size > 12) {
            header = byte(8) + byte(9) * 256;
            count = std::min(std::max<std::int64_t>(size - header, 0) / subject_->rowBytes,
                             byte(4) + byte(5) * 256 + byte(6) * 65536 + byte(7) * 16777216);
        } else if (header == 4 && size >= 4) {
            count = std::min(count, byte(3) + byte(2) * 256 + byte(1) * 65536 + byte(0) * 16777216);
        }
        std::vector<std::string> rows;
        for (std::int64_t n = 0; n < count; ++n)
            rows.push_back(asValue(bytes.substr(static_cast<std::size_t>(header + n * subject_->rowBytes),
                                                static_cast<std::size_t>(subject_->rowBytes))));
        return rows;
    }
    // Without the bytes behind the text, and with one of the bytes that are true.
    std::string asValue(std::string row) const {
        constexpr std::size_t lengthAt = 7, textAt = 8, flagAt = 14, shortFlagAt = 4;
        if (isXbase()) return row;
        if (row.size() == shortFlagAt + 1) {
            if (row[shortFlagAt] != 0) row[shortFlagAt] = 1;
            return row;
        }
        const auto length = std::min<std::size_t>(static_cast<unsigned char>(row[lengthAt]), flagAt - textAt);
        std::fill(row.begin() + textAt + static_cast<std::ptrdiff_t>(length), row.begin() + flagAt, '\0');
        if (row[flagAt] != 0) row[flagAt] = 1;
        return row;
    }
    // Every row stands in the table, or in what was put aside. Marks of deletion may have been set right.
    void expectNoRowLost(const Files& before) {
        std::string aside;
        std::vector<std::string> after = rowsOf(files().contents(subject_->file));
        for (const auto& [path, bytes] : all())
            if (path.find(".torn") != std::string::npos && before.count(path) == 0) aside += bytes;
        for (std::string row : rowsOf(before.at(subject_->file))) {
            // Rows of a capacity that were never written look so, and what fills up an Xbase file.
            const bool isFill = row.find_first_not_of(std::string_view("\0\x1A", 2)) == std::string::npos;
            if (isFill && (isXbase() || subject_->headerBytes == 4)) continue;
            if (isXbase() && row[0] != '*') row[0] = ' ';
            EXPECT_TRUE(std::find(after.begin(), after.end(), row) != after.end() ||
                        aside.find(row.substr(1)) != std::string::npos)
                << "lost: " << ::testing::PrintToString(row);
        }
    }
    // Where the fields of an Xbase file are others now, the table is no longer that of the file.
    [[nodiscard]] bool hasOwnFields() {
        constexpr std::size_t from = 8;
        const auto count = static_cast<std::size_t>(subject_->headerBytes) - from - 1;
        return !isXbase() || files().contents(subject_->file).substr(from, count) ==
                                 whole_.at(subject_->file).substr(from, count);
    }
    void expectOpens() {
        if (!hasOwnFields()) return;
        table = closedTable(subject_->maps, subject_->capacity, subject_->row(0));
        EXPECT_EQ(FileTables::open(subject_->file), 0) << said();
        if (!FileExists(t(), KindTable)) return;
        expectWhole();
        close();
    }
    // The note tells that it would have to be rebuilt first.
    static bool toldOfPadding() { return said().find("behind its mark of the end") != std::string::npos; }
    static bool onlyKnownNotes() {
        std::string_view text = said();
        while (!text.empty()) {
            const std::string_view line = text.substr(0, text.find('\n'));
            text.remove_prefix(std::min(text.size(), line.size() + 1));
            const bool known = !line.starts_with("note: ") ||
                               line.find("bytes behind the text of field") != std::string::npos ||
                               line.find("Reserved bytes of") != std::string::npos ||
                               line.find("Its texts are in") != std::string::npos ||
                               line.find("The date of its last change is none") != std::string::npos ||
                               line.find(", field ") != std::string::npos ||
                               line.find("It has room for") != std::string::npos;
            if (!known) return false;
        }
        return true;
    }

    void expectAgreement() {
        const Files before = all();
        const int checked = run(datatool::check, false);
        if (checked == Well && all() == before && run(datatool::check, true) == Well && !toldOfPadding())
            expectOpens();
        restoreTo(before);
        const bool withKeys = upTo(1) == 0;
        run(datatool::check, withKeys);
        const std::string found = said();
        EXPECT_EQ(all(), before) << "check writes";
        const int rebuilt = run(datatool::rebuild, withKeys);
        SCOPED_TRACE("check: " + found + "rebuild: " + said());
        if (rebuilt != Well) {
            const bool unchanged = said().find("Nothing was changed") != std::string::npos;
            EXPECT_TRUE(!unchanged || all() == before);
            return;
        }
        ++mended_;
        expectNoRowLost(before);
        const Files mended = all();
        EXPECT_EQ(run(datatool::check, withKeys), Well) << said();
        EXPECT_TRUE(onlyKnownNotes()) << said();
        EXPECT_EQ(run(datatool::rebuild, withKeys), Well) << said();
        EXPECT_EQ(all(), mended);
        if (!HasFailure() && (withKeys || run(datatool::check, true) == Well)) expectOpens();
    }
    void restoreTo(const Files& before) {
        for (const std::string& path : files().allFiles())
            if (before.count(path) == 0) files().remove(path);
        for (const auto& [path, bytes] : before)
            if (files().contents(path) != bytes) files().put(path, bytes);
    }

    void soak(const Subject& subject, int rounds) {
        make(subject);
        for (int round = 0; round < rounds && !HasFailure(); ++round) {
            const auto seed = static_cast<unsigned>(round);
            random_.seed(seed);
            restore();
            for (std::size_t n = upTo(2) + 1; n > 0; --n) damage();
            SCOPED_TRACE(std::string(subject.name) + ", seed " + std::to_string(seed));
            expectAgreement();
        }
        EXPECT_GT(mended_, rounds / 10);
    }

    const Subject* subject_ = nullptr;
    Files whole_;
    std::mt19937 random_;
    int mended_ = 0;
};

TEST_F(DamageSoak, CheckAndRebuildAgreeOnTables) {
    for (const Subject& subject : subjects)
        if (subject.declaration != nullptr) soak(subject, rounds(500));
}

TEST_F(DamageSoak, CheckAndRebuildAgreeOnXbaseFiles) {
    for (const Subject& subject : subjects)
        if (subject.declaration == nullptr) soak(subject, rounds(500));
}

}  // namespace
}  // namespace tarn::datatool
