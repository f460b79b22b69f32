// SPDX-License-Identifier: Apache-2.0
//
// Data files that are loaded into lists and tables in files, and saved from them, in every format.
#include "kernel/data/datafile.h"
#include "kernel/tables/filevalues.h"
#include "unit/kernel/tab_fixture.h"

#include <functional>

namespace tarn {
namespace {

constexpr char rowFields[] =
    "\tr : record\n\t\tid : integer\n\t\tname : string[8]\n\t\tlive : boolean\n\tend record\n";
constexpr char csv[] = "3,cc,true\n1,a,false\n2,\"b b\",true\n";

class DataRows : public Tab {
protected:
    DataRows() : steadyTime_(clock_) {}

    // A list or a table, in a file (which is opened) or in memory.
    struct Held {
        explicit Held(Kind kind) : kind(kind) {}
        ~Held() { AdtFree(bytes, kind); }
        Held(const Held&) = delete;
        Held& operator=(const Held&) = delete;
        void* get() { return bytes; }
        Kind kind;
        alignas(8) char bytes[sizeof(ArrayDescriptor)] = {};
    };
    static std::string declaration(Kind kind) {
        const std::string word = kind == KindList ? "list" : "table";
        return "x : " + word + "\n" + rowFields + "end " + word + "\n";
    }
    static void makeInFile(Held& held, const std::string& name) {
        const String text(declaration(held.kind));
        TypeInfoToFileVar(text.get(), held.get(), held.kind);
        FileOpen(held.get(), held.kind, name);
        EXPECT_EQ(ErrorCell(), 0);
    }
    static void makeInMemory(Held& held) {
        const String text(declaration(held.kind));
        if (held.kind == KindList)
            TypeInfoToList(text.get(), static_cast<ListDescriptor*>(held.get()));
        else
            TypeInfoToTable(text.get(), static_cast<TableDescriptor*>(held.get()));
    }
    // The rows of a value wherever they stand.
    static std::string shown(Held& held) {
        const ListDescriptor* rows = held.kind == KindList
                                         ? static_cast<ListDescriptor*>(held.get())
                                         : TableRows(static_cast<const TableDescriptor*>(held.get()));
        std::string text;
        for (std::int32_t n = 1; n <= ListCount(rows); ++n) {
            RecordValue row;
            ListGet(rows, n, row.get(), KindRecord);
            text += "{" + Shown(row.get(), KindRecord) + "}";
        }
        EXPECT_EQ(AdtCheck(held.get(), held.kind), "");
        EXPECT_EQ(ErrorCell(), 0);
        return text;
    }
    DataResult load(Held& held, const std::string& file, DataFormat format) {
        std::string message;
        return LoadValue(file, format, CommaRows, held.get(), held.kind, message);
    }
    os::SteeredClock clock_;  // XML files tell when they were written
    os::Steered steadyTime_;

    std::vector<std::string> leftovers() {
        std::vector<std::string> found;
        for (const std::string& file : files_.allFiles()) {
            const bool known = file == "/d/in" || file == "/d/rows.tab" || file == "/d/rows.i1";
            if (!known) found.push_back(file);
        }
        return found;
    }
};

const std::string inOrder = "{3|cc|True}{1|a|False}{2|b b|True}";
constexpr Kind kinds[] = {KindList, KindTable};
constexpr DataFormat formats[] = {FormatComma, FormatBinary, FormatXml};

TEST_F(DataRows, LoadingAndSavingAreTheSameAsInMemory) {
    for (const Kind kind : kinds) {
        for (const DataFormat format : formats) {
            SCOPED_TRACE(std::to_string(kind) + " format " + std::to_string(format));
            Held memory(kind), file(kind);
            makeInMemory(memory);
            makeInFile(file, "/d/rows.tab");
            files_.put("/d/in", csv);
            EXPECT_EQ(load(memory, "/d/in", FormatComma).code, 0);
            EXPECT_EQ(SaveValue("/d/saved", format, CommaRows, 0, memory.get(), kind).code, 0);
            const DataResult loaded = load(file, "/d/saved", format);
            EXPECT_EQ(loaded.code, 0);
            EXPECT_EQ(loaded.rows, 3);
            EXPECT_EQ(FileNameOf(file.get(), kind), "/d/rows.tab");
            EXPECT_EQ(shown(file), kind == KindTable && format == FormatXml
                                       ? "{1|a|False}{2|b b|True}{3|cc|True}"
                                       : inOrder);
            EXPECT_EQ(SaveValue("/d/again", format, CommaRows, 0, file.get(), kind).code, 0);
            EXPECT_EQ(files_.contents("/d/again"), files_.contents("/d/saved"));
            for (const std::string name : {"/d/in", "/d/saved", "/d/again"}) files_.remove(name);
            EXPECT_TRUE(leftovers().empty());
            AdtFree(file.get(), kind);
            for (const std::string& name : files_.allFiles()) files_.remove(name);
        }
    }
}

TEST_F(DataRows, WhatWasLoadedTakesThePlaceOfTheOldRows) {
    for (const Kind kind : kinds) {
        Held file(kind);
        makeInFile(file, "/d/rows.tab");
        for (const char* text : {csv, "7,x,true\n", "\n", csv}) {
            files_.put("/d/in", text);
            EXPECT_EQ(load(file, "/d/in", FormatComma).code, 0);
        }
        EXPECT_EQ(shown(file), inOrder);
        if (kind == KindTable) {
            EXPECT_EQ(files_.contents("/d/rows.i1").substr(8, 9), std::string("rows.tab\0", 9));
        }
        FileClose(file.get(), kind);
        FileOpen(file.get(), kind, "/d/rows.tab");
        EXPECT_EQ(shown(file), inOrder);
        AdtFree(file.get(), kind);
        for (const std::string& name : files_.allFiles()) files_.remove(name);
    }
}

TEST_F(DataRows, AValueThatIsNotOpenIsRefused) {
    for (const Kind kind : kinds) {
        Held file(kind);
        makeInFile(file, "/d/rows.tab");
        FileClose(file.get(), kind);
        files_.put("/d/in", csv);
        const DataResult none = load(file, "/d/in", FormatComma);
        EXPECT_EQ(none.code, 661);
        EXPECT_EQ(load(file, "/d/in", FormatBinary).code, 661);
        EXPECT_EQ(load(file, "/d/in", FormatXml).code, 661);
        EXPECT_EQ(SaveValue("/d/out", FormatComma, CommaRows, 0, file.get(), kind).code, 661);
        EXPECT_EQ(SaveValue("/d/out", FormatBinary, CommaRows, 0, file.get(), kind).code, 661);
        EXPECT_EQ(SaveValue("/d/out", FormatXml, CommaRows, 0, file.get(), kind).code, 660);
        EXPECT_FALSE(files_.has("/d/out"));
        ClearError();
        for (const std::string& name : files_.allFiles()) files_.remove(name);
    }
}

TEST_F(DataRows, BadCellsAreToldAndTheirRowsCount) {
    Held memory(KindList), file(KindList);
    makeInMemory(memory);
    makeInFile(file, "/d/rows.tab");
    files_.put("/d/in", "1,a,true\nx,b,maybe\n3,toolongname,true\n");
    const DataResult expected = load(memory, "/d/in", FormatComma), result = load(file, "/d/in", FormatComma);
    EXPECT_EQ(result.code, expected.code);
    EXPECT_EQ(result.row, expected.row);
    EXPECT_EQ(result.rows, expected.rows);
    EXPECT_EQ(shown(file), shown(memory));
}

TEST_F(DataRows, AFixedListTakesWhatFits) {
    Held file(KindList), like(KindList);
    makeInMemory(like);
    ListInit(static_cast<ListDescriptor*>(file.get()), 2,
             At(static_cast<ListDescriptor*>(like.get())->prototype), KindRecord, true);
    FileOpen(file.get(), KindList, "/d/rows.tab");
    files_.put("/d/in", csv);
    const DataResult result = load(file, "/d/in", FormatComma);
    EXPECT_EQ(result.code, 618);
    EXPECT_EQ(result.row, 3);
    EXPECT_EQ(result.rows, 2);
    EXPECT_EQ(shown(file), "{3|cc|True}{1|a|False}");
}

TEST_F(DataRows, ATableLeavesOutWhatHasTheKeyOfAnother) {
    Held memory(KindTable), file(KindTable);
    makeInMemory(memory);
    makeInFile(file, "/d/rows.tab");
    files_.put("/d/in", "1,a,true\n1,a,true\n2,b,true\n");
    const DataResult expected = load(memory, "/d/in", FormatComma), result = load(file, "/d/in", FormatComma);
    EXPECT_EQ(result.code, 635);
    EXPECT_EQ(expected.code, 635);
    EXPECT_EQ(result.row, expected.row);
    EXPECT_EQ(shown(file), shown(memory));
}

// The old rows stay, and nothing is left over.
TEST_F(DataRows, ALoadThatIsStoppedChangesNothing) {
    std::string large;
    for (int i = 0; i < 2000; ++i) large += std::to_string(i) + "," + std::string(1000, 'x') + ",true\n";
    files_.put("/d/in", large);
    for (const Kind kind : kinds) {
        Held file(kind);
        makeInFile(file, "/d/rows.tab");
        files_.put("/d/few", "7,x,true\n");
        EXPECT_EQ(load(file, "/d/few", FormatComma).code, 0);
        UseProgress([](std::int64_t, std::int64_t) { return false; });
        EXPECT_TRUE(load(file, "/d/in", FormatComma).stopped);
        UseProgress(nullptr);
        EXPECT_EQ(shown(file), "{7|x|True}");
        files_.remove("/d/few");
        EXPECT_TRUE(leftovers().empty());
        AdtFree(file.get(), kind);
        files_.remove("/d/rows.tab");
        if (kind == KindTable) files_.remove("/d/rows.i1");
    }
}

TEST_F(DataRows, EachCallThatFailsLeavesTheOldRowsOrTheNew) {
    for (const Kind kind : kinds) {
        Held saved(kind), file(kind);
        makeInMemory(saved);
        files_.put("/d/in", csv);
        load(saved, "/d/in", FormatComma);
        for (const DataFormat format : formats) {
            SaveValue("/d/in", format, CommaRows, 0, saved.get(), kind);
            for (int call = 1;; ++call) {
                SCOPED_TRACE(std::to_string(kind) + " format " + std::to_string(format) + " call " +
                             std::to_string(call));
                makeInFile(file, "/d/rows.tab");
                files_.put("/d/few", "7,x,true\n");
                EXPECT_EQ(load(file, "/d/few", FormatComma).code, 0);
                files_.remove("/d/few");
                files_.failAt(call, os::FileError::WriteFailed);
                const DataResult result = load(file, "/d/in", format);
                const bool reached = files_.calls() >= call;
                files_.stopFailing();
                const std::string rows = shown(file);
                if (result.code != 0) {
                    EXPECT_EQ(result.code, 652);
                    EXPECT_EQ(rows, "{7|x|True}");
                } else {
                    EXPECT_EQ(rows.size(), inOrder.size());
                }
                // An old index that cannot be removed stays under its other name.
                const bool stays = reached && result.code == 0 && kind == KindTable;
                EXPECT_TRUE(leftovers().empty() || stays) << leftovers().front();
                for (const std::string& name : leftovers()) files_.remove(name);
                AdtFree(file.get(), kind);
                files_.remove("/d/rows.tab");
                if (kind == KindTable) files_.remove("/d/rows.i1");
                ASSERT_EQ(ErrorCell(), 0);
                if (!reached) break;
            }
        }
    }
}

TEST_F(DataRows, AFullDiskLeavesTheOldRows) {
    for (const Kind kind : kinds) {
        for (std::int64_t room = 0;; room += 3) {
            SCOPED_TRACE(std::to_string(kind) + " room " + std::to_string(room));
            Held file(kind);
            makeInFile(file, "/d/rows.tab");
            files_.put("/d/in", "7,x,true\n");
            EXPECT_EQ(load(file, "/d/in", FormatComma).code, 0);
            files_.put("/d/in", csv);
            files_.setFreeBytes(room);
            const DataResult result = load(file, "/d/in", FormatComma);
            files_.stopFailing();
            EXPECT_EQ(shown(file), result.code == 0 ? inOrder : "{7|x|True}");
            EXPECT_TRUE(leftovers().empty());
            AdtFree(file.get(), kind);
            for (const std::string& name : files_.allFiles()) files_.remove(name);
            if (result.code == 0) break;
            EXPECT_EQ(result.code, 654);
            ASSERT_LT(room, 10000);
        }
    }
}

TEST_F(DataRows, ALackOfMemoryLeavesTheOldRows) {
    for (const Kind kind : kinds) {
        for (const DataFormat format : {FormatComma, FormatXml}) {
            Held saved(kind), file(kind);
            makeInMemory(saved);
            files_.put("/d/in", csv);
            load(saved, "/d/in", FormatComma);
            SaveValue("/d/in", format, CommaRows, 0, saved.get(), kind);
            makeInFile(file, "/d/rows.tab");
            for (std::int64_t n = 0;; ++n) {
                SCOPED_TRACE(std::to_string(kind) + " request " + std::to_string(n));
                FailAllocation(n);
                const DataResult result = load(file, "/d/in", format);
                FailAllocation(-1);
                EXPECT_TRUE(leftovers().empty());
                if (result.code == 0) break;
                EXPECT_EQ(result.code, 802);
                if (format == FormatComma) {
                    EXPECT_EQ(shown(file), "");
                }
                ASSERT_LT(n, 500);
            }
            EXPECT_EQ(shown(file).size(), inOrder.size());
            AdtFree(file.get(), kind);
            for (const std::string& name : files_.allFiles()) files_.remove(name);
        }
    }
}

TEST_F(DataRows, TheDeathOfTheProcessLeavesTheOldRowsOrTheNew) {
    for (const Kind kind : kinds) {
        for (int call = 1;; ++call) {
            SCOPED_TRACE(std::to_string(kind) + " call " + std::to_string(call));
            Held file(kind);
            makeInFile(file, "/d/rows.tab");
            files_.put("/d/in", "7,x,true\n");
            EXPECT_EQ(load(file, "/d/in", FormatComma).code, 0);
            files_.put("/d/in", csv);
            files_.dieAt(call);
            bool died = false;
            try {
                load(file, "/d/in", FormatComma);
            } catch (const os::ProcessDeath&) {
                died = true;
            }
            files_.revive();
            files_.stopFailing();
            ClearError();
            AdtFree(file.get(), kind);
            ClearError();
            Held found(kind);
            const String text(declaration(kind));
            TypeInfoToFileVar(text.get(), found.get(), kind);
            FileOpen(found.get(), kind, "/d/rows.tab");
            const std::int32_t error = ErrorCell();
            ClearError();
            if (kind == KindTable && error != 0) {
                EXPECT_EQ(error, 656);  // rows that wait for their indexes
            } else {
                const std::string rows = shown(found);
                EXPECT_TRUE(rows == "{7|x|True}" || rows == inOrder) << rows;
            }
            AdtFree(found.get(), kind);
            for (const std::string& name : files_.allFiles()) files_.remove(name);
            if (!died) break;
        }
    }
}

TEST_F(DataRows, AScratchFileOfATableIsLoadedLikeAnyOther) {
    Held file(KindTable);
    makeInFile(file, "/d/rows.~ab");
    files_.put("/d/in", csv);
    EXPECT_EQ(load(file, "/d/in", FormatComma).code, 0);
    EXPECT_EQ(shown(file), inOrder);
    EXPECT_EQ(files_.allFiles(), (std::vector<std::string>{"/d/in", "/d/rows.~ab", "/d/rows.~ab1"}));
    AdtFree(file.get(), KindTable);
    EXPECT_EQ(files_.allFiles(), (std::vector<std::string>{"/d/in"}));
}

}  // namespace
}  // namespace tarn
