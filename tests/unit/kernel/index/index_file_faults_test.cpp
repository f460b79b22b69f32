// SPDX-License-Identifier: Apache-2.0
//
// Index files on a disk that fails, fills up or loses the process at any call, and files with damage at any
// byte.
#include "kernel/index/index_filecheck.h"
#include "kernel/index/index_tree.h"
#include "unit/kernel/index_file_fixture.h"

#include <map>
#include <random>
#include <set>

using namespace tarn;

namespace {

using os::FileCall;
using os::FileError;

using Rows = std::map<int, int>;  // the row of each key

class IndexFaults : public IndexFiles {
protected:
    int rounds = 60;
    // A change of an index, and what is in it before and after.
    struct Change {
        std::string before;
        Rows rowsBefore, rowsAfter;
        std::function<void()> run;
        bool lasting = false;  // it is not taken back when the closing fails
    };

    static Cells keyOf(int number) { return {integer(number), text(std::to_string(number % 7), 5)}; }

    // A new tree with free records here and there.
    Rows buildTree(std::mt19937& random) {
        Rows rows;
        make(keyOf(0));
        const int steps = static_cast<int>(random() % 50);
        for (int i = 0; i < steps; ++i) {
            const int number = static_cast<int>(random() % 40);
            if (rows.count(number) == 0) {
                EXPECT_EQ(insert(keyOf(number), i), 0);
                rows[number] = i;
            } else {
                remove(keyOf(number));
                rows.erase(number);
            }
        }
        return rows;
    }

    // One change of each kind for many trees.
    void eachChange(const std::function<void(const Change&)>& body) {
        std::mt19937 random(5);
        for (int round = 0; round < rounds && !HasFailure(); ++round) {
            SCOPED_TRACE(round);
            const Rows rows = buildTree(random);
            const int fresh = 100 - static_cast<int>(random() % 3) * 60 + static_cast<int>(random() % 30);
            if (rows.count(fresh) == 0) body(insertion(rows, fresh));
            if (rows.empty()) continue;
            const auto chosen = std::next(rows.begin(), static_cast<int>(random() % rows.size()));
            body(removal(rows, chosen->first));
            body(update(rows, chosen->first));
            if (round % 8 == 0) body({bytes(), rows, {}, [&] { IndexClear(&root, block); }, true});
        }
    }
    Change insertion(const Rows& rows, int number) {
        Change change{bytes(), rows, rows, [=, this] { EXPECT_EQ(insert(keyOf(number), 77), 0); }};
        change.rowsAfter[number] = 77;
        return change;
    }
    Change removal(const Rows& rows, int number) {
        Change change{bytes(), rows, rows, [=, this] { remove(keyOf(number)); }};
        change.rowsAfter.erase(number);
        return change;
    }
    Change update(const Rows& rows, int number) {
        Change change{bytes(), rows, rows, [=, this] {
                          const RecordValue record = recordOf(keyOf(number));
                          IndexUpdateRow(&root, block, record.get(), 88);
                      }};
        change.rowsAfter[number] = 88;
        return change;
    }

    Rows rowsInFile() {
        Rows rows;
        const RecordValue like = recordOf(shape);
        KeyView view;
        KeyOfRecord(like.get(), view);
        EXPECT_EQ(CheckIndexFile(path, view, -1,
                                 [&](std::int32_t row, std::string_view key) {
                                     rows[WordAt(key.data())] = row;
                                     return std::string();
                                 }),
                  "");
        return rows;
    }
    // Begins anew with the file as it was.
    void restore(const Change& change) {
        disk.stopFailing();
        if (bytes() != change.before) put(change.before);
    }
};

// ---- calls that fail ----

TEST_F(IndexFaults, AChangeThatCannotBeWrittenChangesNothing) {
    eachChange([&](const Change& change) {
        for (const FileError error : {FileError::WriteFailed, FileError::DiskFull}) {
            for (int call = 1; call < 100; ++call) {
                restore(change);
                disk.failAt(call, error);
                change.run();
                EXPECT_EQ(disk.openHandles(), 0);
                const std::int32_t code = takeError();
                if (code == 0) break;
                EXPECT_EQ(code, error == FileError::DiskFull ? 654 : 652);
                const bool closing = disk.log().back() == "close" && disk.calls() == call;
                EXPECT_TRUE(bytes() == change.before || (change.lasting && closing)) << "call " << call;
            }
            disk.stopFailing();
            EXPECT_EQ(rowsInFile(), change.rowsAfter);
            restore(change);
        }
    });
}

TEST_F(IndexFaults, AChangeThatCannotReadChangesNothing) {
    eachChange([&](const Change& change) {
        for (int call = 1; call < 100; ++call) {
            restore(change);
            disk.failAt(FileCall::Read, call, FileError::ReadFailed);
            change.run();
            EXPECT_EQ(disk.openHandles(), 0);
            const std::int32_t code = takeError();
            if (code == 0) break;
            EXPECT_EQ(code, 651);
            EXPECT_TRUE(bytes() == change.before) << "call " << call;
        }
        disk.stopFailing();
        EXPECT_EQ(rowsInFile(), change.rowsAfter);
        restore(change);
    });
}

TEST_F(IndexFaults, ADiskThatFillsUpAtAnyByteChangesNothing) {
    eachChange([&](const Change& change) {
        for (int room = 0; room < 100; ++room) {
            restore(change);
            disk.setFreeBytes(room);
            change.run();
            const std::int32_t code = takeError();
            if (code == 0) break;
            EXPECT_EQ(code, 654);
            EXPECT_TRUE(bytes() == change.before) << "room " << room;
        }
        disk.stopFailing();
        EXPECT_EQ(rowsInFile(), change.rowsAfter);
        restore(change);
    });
}

// What was written cannot be taken back either: an error, and a file that is looked at without a fault of the
// program.
TEST_F(IndexFaults, ADiskThatFailsForGoodIsAnError) {
    eachChange([&](const Change& change) {
        for (int call = 2; call < 100; ++call) {
            restore(change);
            disk.failAt(FileCall::Write, call, FileError::WriteFailed);
            change.run();
            if (takeError() == 0) break;
            restore(change);
            disk.failAlways(FileCall::Truncate, FileError::WriteFailed);
            disk.failAt(FileCall::Write, call, FileError::WriteFailed);
            change.run();
            EXPECT_EQ(takeError(), 652);
            check();
        }
        restore(change);
    });
}

// ---- the death of the process ----

TEST_F(IndexFaults, ASearchAfterADeathFindsItsKeyOrAnError) {
    int deaths = 0, errors = 0;
    rounds = 200;
    eachChange([&](const Change& change) {
        for (int call = 1; call < 100; ++call) {
            restore(change);
            disk.dieAt(call);
            bool died = false;
            try {
                change.run();
            } catch (const os::ProcessDeath&) {
                died = true;
            }
            disk.revive();
            if (!died) break;
            ++deaths;
            takeError();
            for (const auto& [number, row] : change.rowsBefore) {
                const auto after = change.rowsAfter.find(number);
                if (after == change.rowsAfter.end()) continue;
                const int found = find("EQ", keyOf(number));
                const std::int32_t error = takeError();
                if (error != 0) {
                    EXPECT_EQ(error, 763);
                    ++errors;
                } else {
                    EXPECT_TRUE(found == row || found == after->second) << number << " at call " << call;
                }
            }
        }
        restore(change);
    });
    EXPECT_GT(deaths, 1000);
    EXPECT_LT(errors, deaths * 2);  // those that stand below a turn
}

// Runs every operation on a file as it is: an error or a result of legal shape, never more.
class AnyFile : public IndexFaults {
protected:
    void useAll(int number) {
        static const std::set<std::int32_t> known = {0, 604, 635, 651, 656, 763};
        const RecordValue key = recordOf(keyOf(number));
        RecordValue found = recordOf(shape);
        const auto expectKnown = [&](const char* what) {
            const std::int32_t error = takeError();
            EXPECT_TRUE(known.count(error) != 0) << what << " " << error;
            EXPECT_EQ(disk.openHandles(), 0);
            return error;
        };
        for (const char* op : {"EQ", "FIRST", "LAST", "GE", "LT"}) {
            IndexFind(op, &root, block, key.get(), found.get());
            expectKnown(op);
            EXPECT_EQ(AdtCheck(found.get(), KindRecord), "");
        }
        const std::int32_t count = IndexCount(&root, block);
        EXPECT_TRUE(expectKnown("count") != 0 || count <= records());
        const IndexShape measured = IndexHeight(&root, block);
        EXPECT_TRUE(expectKnown("height") != 0 || measured.height <= MaxTreeDepth);
        EXPECT_LE(picture().size(), 10000U);
        expectKnown("print");
        check();
        expectKnown("check");
        const std::string before = bytes();
        const std::function<void()> changes[] = {
            [&] { IndexInsert(&root, block, key.get(), 99); },
            [&] { IndexDelete(&root, block, key.get()); },
            [&] { IndexUpdateRow(&root, block, key.get(), 99); },
            [&] { IndexClear(&root, block); },
        };
        for (const auto& change : changes) {
            change();
            EXPECT_TRUE(expectKnown("change") == 0 || bytes() == before);
            check();
            if (bytes() != before) put(before);
        }
    }
};

TEST_F(AnyFile, MayBeWhatADeathLeavesInTheMiddleOfAWrite) {
    eachChange([&](const Change& change) {
        for (const bool midway : {false, true}) {
            for (int call = 1; call < 100; ++call) {
                restore(change);
                disk.dieAt(call, midway);
                bool died = false;
                try {
                    change.run();
                } catch (const os::ProcessDeath&) {
                    died = true;
                }
                disk.revive();
                takeError();
                if (!died) break;
                useAll(20);
                useAll(110);
            }
        }
        restore(change);
    });
}

class DamagedFile : public AnyFile {
protected:
    void SetUp() override {
        AnyFile::SetUp();
        make(keyOf(0));
        for (const int number : {8, 4, 12, 2, 6, 10, 14, 1, 3, 5, 7, 13, 20, 21})
            EXPECT_EQ(insert(keyOf(number), number), 0);
        remove(keyOf(3));
        remove(keyOf(20));
        whole = bytes();
        EXPECT_EQ(check(), "");
        EXPECT_EQ(records(), 14);
    }
    std::string whole;
};

TEST_F(DamagedFile, OfAnyLengthIsAnErrorOrATree) {
    for (std::size_t length = 0; length < whole.size(); ++length) {
        put(whole.substr(0, length));
        EXPECT_NE(check(), "") << length;
        // Most lengths are those of no index: a few of these are enough.
        const bool isIndex =
            length >= 1104 && (length - 1104) % static_cast<std::size_t>(block.recordSize) == 0;
        if (isIndex || length % 50 == 0 || length > 1100) useAll(7);
    }
}

TEST_F(DamagedFile, WithAnyBitTurnedIsAnErrorOrATree) {
    const auto first = static_cast<std::size_t>(IndexControlAt);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        if (at >= 8 && at < first) continue;
        for (unsigned bit = 0; bit < 8; ++bit) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(static_cast<unsigned char>(damaged[at]) ^ 1U << bit);
            put(damaged);
            useAll(at % 2 == 0 ? 7 : 13);
        }
    }
}

TEST_F(DamagedFile, WithABitTurnedInHeaderLinkOrBalanceIsFoundByTheCheck) {
    const auto size = static_cast<std::size_t>(block.recordSize);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        const bool inText = at >= 8 && at < 1074;
        const std::size_t inRecord = at < 1104 ? 0 : (at - 1104) % size;
        const bool isRow = at >= 1104 && inRecord < 4, isKey = inRecord >= 24;
        const bool isFree = at >= 1104 && WordAt(whole.data() + at - inRecord + 4) == -999;
        if (inText || isRow || isKey || (isFree && inRecord >= 8 && inRecord < 16)) continue;
        for (unsigned bit = 0; bit < 8; ++bit) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(static_cast<unsigned char>(damaged[at]) ^ 1U << bit);
            put(damaged);
            EXPECT_NE(check(), "") << at;
        }
    }
}

TEST_F(DamagedFile, WithAnyLinksIsAnErrorOrATree) {
    std::mt19937 random(9);
    for (int round = 0; round < 500 && !HasFailure(); ++round) {
        put(whole);
        for (int i = 0; i < 6; ++i) {
            const auto record = static_cast<std::int32_t>(1 + random() % 14);
            const auto wordNumber = static_cast<std::int32_t>(random() % 3);
            constexpr std::int32_t words[] = {WordBalance, WordLeft, WordRight};
            const bool isLink = wordNumber != 0;
            const auto value =
                static_cast<std::int32_t>(isLink ? random() % 16 : random() % 3) - (isLink ? 0 : 1);
            putWord(at(record, words[wordNumber]), value);
        }
        if (round % 4 == 0) putWord(1092, static_cast<std::int32_t>(random() % 15));
        useAll(static_cast<int>(random() % 24));
    }
}

}  // namespace
