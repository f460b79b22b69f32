// SPDX-License-Identifier: Apache-2.0
//
// Data files of any form that are opened as tables.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/values/owned.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "library/data/dbutil.h"
#include "library/system/system.h"
#include "support/errorcell.h"
#include "support/steerable.h"

#include <gtest/gtest.h>
#include <new>
#include <string>

namespace tarn {
namespace {

// Counts what is read, and is short of memory when told.
class WatchedFiles : public os::SteeredFiles {
public:
    os::FileError read(os::Handle handle, std::int64_t offset, char* into, std::size_t count,
                       std::size_t& got) override {
        const os::FileError error = SteeredFiles::read(handle, offset, into, count, got);
        bytesRead += static_cast<std::int64_t>(got);
        return error;
    }
    os::FileError sync(os::Handle handle) override {
        if (--syncsUntilShort == 0) {
            close(handle);
            throw std::bad_alloc();
        }
        return SteeredFiles::sync(handle);
    }
    std::int64_t bytesRead = 0;
    int syncsUntilShort = 0;
};

class TableFiles : public ::testing::Test {
protected:
    TableFiles() : steered_(files_) { files_.putFolder("/d"); }
    void TearDown() override {
        table_ = TableValue();
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(files_.openHandles(), 0);
    }
    // A table in a file, of rows of these columns, with an index on the first unless `keyMap` is 0.
    TableDescriptor* make(const std::string& columns, std::int32_t keyMap = MakeKeyMap(1),
                          bool inFile = true) {
        row_ = RecordValue();
        std::string fields = columns;
        TypeInfoChangeIndent(1, fields, MaxTypeInfo);
        std::size_t position = 0;
        TypeInfoToValue("T : record\n" + fields + "end record\n", position, row_.get());
        table_ = TableValue();
        TableInit(table_.get(), UNBOUNDED, row_.get(), KeyMaps{keyMap}, columns, inFile);
        EXPECT_EQ(takeError(), 0);
        return table_.get();
    }
    std::string nameOf(std::int32_t number) {
        RecordValue row;
        TableRow(table_.get(), number, row.get());
        return std::string(
            StringView(static_cast<const StringDescriptor*>(RecordFieldAddress(row.get(), 2))));
    }
    void add(std::int32_t number, const std::string& name) {
        RecordDescriptor* const r = row_.get();
        WriteAt(RecordFieldAddress(r, 1), number);
        StringAssignView(static_cast<StringDescriptor*>(RecordFieldAddress(r, 2)), name);
        TableAdd(table_.get(), 1, r);
    }
    bool opened() { return FileExists(table_.get(), KindTable); }
    std::vector<std::string> allFiles() {
        std::vector<std::string> names;
        files_.list("/d", names);
        return names;
    }
    using Names = std::vector<std::string>;

    WatchedFiles files_;
    os::Steered steered_;
    TableValue table_;
    RecordValue row_;
};

const std::string columns = "number : integer\nname : string[10]\n";

TEST_F(TableFiles, AFileThatIsNotThereIsMade) {
    make(columns);
    TABOPEN("/d/new.bin", nullptr, table_.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(opened());
    add(1, "Ada");
    TABCLOSE("/d/NEW.BIN", nullptr, false, table_.get());  // its own file, in any case
    EXPECT_EQ(allFiles(), (Names{"new.bin", "new.i1"}));
    TABOPEN("/d/new.bin", nullptr, table_.get());
    EXPECT_EQ(TableCount(table_.get()), 1);
    EXPECT_EQ(nameOf(1), "Ada");
}

struct Form {
    const char *file, *scratch, *index, *text, *saved;
};
constexpr Form forms[] = {
    {"f.csv", "f.~sv", "f.~sv1", "1,Ada\n2,Bob\n", "1,Ada\n2,Bob\n3,Cy\n"},
    {"f.TAB", "f.~AB", "f.~AB1", "number\tname\n------\t----\n1\tAda\n2\tBob\n",
     "number\tname\n------\t----\n1\tAda\n2\tBob\n3\tCy\n"},
    {"f.xml", "f.~ml", "f.~ml1",
     "<T><r><number>1</number><name>Ada</name></r><r><number>2</number><name>Bob</name></r></T>", nullptr},
};

TEST_F(TableFiles, OtherFormsAreWorkedOnInAScratchFile) {
    for (const Form& form : forms) {
        SCOPED_TRACE(form.file);
        const std::string file = std::string("/d/") + form.file;
        files_.put(file, form.text);
        TABOPEN(file, nullptr, make(columns));
        ASSERT_EQ(takeError(), 0);
        EXPECT_EQ(FileNameOf(table_.get(), KindTable), std::string("/d/") + form.scratch);
        EXPECT_EQ(TableCount(table_.get()), 2);
        EXPECT_EQ(nameOf(2), "Bob");
        add(3, "Cy");
        TABCLOSE(file, nullptr, false, table_.get());
        EXPECT_EQ(files_.contents(file), form.text);  // not saved
        EXPECT_EQ(allFiles(), (Names{form.file}));
        EXPECT_FALSE(opened());

        TABOPEN(file, nullptr, make(columns));
        add(3, "Cy");
        EXPECT_EQ(takeError(), 0);
        TABCLOSE(file, nullptr, true, table_.get());
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(allFiles(), (Names{form.file}));
        if (form.saved != nullptr) {
            EXPECT_EQ(files_.contents(file), form.saved);
        }
        TABOPEN(file, nullptr, make(columns));
        EXPECT_EQ(TableCount(table_.get()), 3);
        EXPECT_EQ(nameOf(3), "Cy");
        TABCLOSE(file, nullptr, false, table_.get());
        files_.remove(file);
    }
}

TEST_F(TableFiles, LinesOfTextKeepTheirContentWhenTheyAreNotSaved) {
    files_.put("/d/f.txt", "one\ntwo\n");
    TABOPEN("/d/f.txt", nullptr, make("line : string[20]\n", 0));
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(FileNameOf(table_.get(), KindTable), "/d/f.~xt");
    EXPECT_EQ(TableCount(table_.get()), 2);
    TableClear(table_.get());
    TABCLOSE("/d/f.txt", nullptr, false, table_.get());
    EXPECT_EQ(files_.contents("/d/f.txt"), "one\ntwo\n");
    EXPECT_EQ(allFiles(), (Names{"f.txt"}));
}

TEST_F(TableFiles, TheSeparatorOfTheOptionsCounts) {
    files_.put("/d/f.csv", "a;b\n1;Ada\n");
    RecordValue options;
    GETOPTIONSRECORD("1", "0", ";", "-1", options.get());
    TABOPEN("/d/f.csv", options.get(), make(columns));
    EXPECT_EQ(nameOf(1), "Ada");
    add(2, "Bob");
    TABCLOSE("/d/f.csv", options.get(), true, table_.get());
    EXPECT_EQ(files_.contents("/d/f.csv"), "number;name\n1;Ada\n2;Bob\n");
}

TEST_F(TableFiles, AnOlderScratchFileIsDeletedFirst) {
    files_.put("/d/f.csv", "1,Ada\n");
    files_.put("/d/f.~sv", "left behind");
    files_.put("/d/f.~sv1", "left behind");
    TABOPEN("/d/f.csv", nullptr, make(columns));
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(TableCount(table_.get()), 1);
    TABCLOSE("/d/f.csv", nullptr, false, table_.get());
    EXPECT_EQ(allFiles(), (Names{"f.csv"}));
}

TEST_F(TableFiles, AFileWithARowThatCannotBeReadIsNotOpened) {
    const char* const texts[] = {"1,Ada\nx,Bob\n", "1,Ada\n1,Bob\n"};
    constexpr std::int32_t codes[] = {ERR_INTEGER_CONVERSION, ERR_DUPLICATE_FIELDS};
    for (std::size_t i = 0; i < 2; ++i) {
        files_.put("/d/f.csv", texts[i]);
        TABOPEN("/d/f.csv", nullptr, make(columns));
        EXPECT_EQ(takeError(), codes[i]);
        EXPECT_FALSE(opened());
        EXPECT_EQ(allFiles(), (Names{"f.csv"}));
        EXPECT_EQ(files_.contents("/d/f.csv"), texts[i]);
    }
}

TEST_F(TableFiles, ATableInMemoryCannotBeOpened) {
    files_.put("/d/f.csv", "1,Ada\n");
    TABOPEN("/d/f.csv", nullptr, make(columns, MakeKeyMap(1), false));
    EXPECT_EQ(takeError(), ERR_TYPE_NOT_STORABLE);
    EXPECT_EQ(allFiles(), (Names{"f.csv"}));
}

TEST_F(TableFiles, WhatCannotBeSavedStaysOpen) {
    files_.put("/d/f.csv", "1,Ada\n");
    TABOPEN("/d/f.csv", nullptr, make(columns));
    add(2, "Bob");
    files_.setFreeBytes(0);
    TABCLOSE("/d/f.csv", nullptr, true, table_.get());
    EXPECT_EQ(takeError(), ERR_DISK_FULL);
    EXPECT_EQ(files_.contents("/d/f.csv"), "1,Ada\n");
    EXPECT_TRUE(opened());
    EXPECT_EQ(nameOf(2), "Bob");
    files_.setFreeBytes(1 << 20);
    TABCLOSE("/d/f.csv", nullptr, true, table_.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(files_.contents("/d/f.csv"), "1,Ada\n2,Bob\n");
    EXPECT_EQ(allFiles(), (Names{"f.csv"}));
}

TEST_F(TableFiles, OnlyScratchFilesAreDeleted) {
    TABOPEN("/d/own.bin", nullptr, make(columns));
    add(1, "Ada");
    TABCLOSE("/d/other.csv", nullptr, true, table_.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(allFiles(), (Names{"other.csv", "own.bin", "own.i1"}));
    EXPECT_EQ(files_.contents("/d/other.csv"), "1,Ada\n");
}

const std::string marked = "delete_flag : Tchar\nNAME : Tchars[1:3]\n";

TEST_F(TableFiles, ATableIsSavedByTheExtensionWhereverItsRowsStand) {
    make(marked, 0);
    TABOPEN("/d/s.~ab", nullptr, table_.get());
    const std::string row = "*Ann";
    RecordDescriptor* const r = row_.get();
    WriteAt(RecordFieldAddress(r, 1), row[0]);
    row.copy(At(ReadAt<ArrayDescriptor>(RecordFieldAddress(r, 2)).data), 3, 1);
    TableAdd(table_.get(), 0, r);
    TABCLOSE("/d/out.dbf", nullptr, true, table_.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(allFiles(), (Names{"out.dbf"}));
    EXPECT_EQ(files_.contents("/d/out.dbf").substr(65), row + "\x1A");
    TABOPEN("/d/own.bin", nullptr, make(columns));
    add(1, "Ada");
    TABCLOSE("/d/out.bin", nullptr, true, table_.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_GT(files_.contents("/d/out.bin").size(), 0U);
    TABOPEN("/d/own.bin", nullptr, table_.get());
    TABCLOSE("/d/out.xyz", nullptr, true, table_.get());  // no form
    EXPECT_EQ(takeError(), ERR_COMPONENT_UNREPRESENTABLE);
    EXPECT_TRUE(opened());
}

TEST_F(TableFiles, AFileOfItsOwnIsKnownByAnyName) {
    TABOPEN("/d/own.bin", nullptr, make(columns));
    add(1, "Ada");
    const std::string bytes = files_.contents("/d/own.bin");
    TABCLOSE("/d/./own.bin", nullptr, true, table_.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_FALSE(opened());
    EXPECT_EQ(files_.contents("/d/own.bin"), bytes);
}

TEST_F(TableFiles, AllRowsAreOpenedHoweverManyTheOptionsAskFor) {
    files_.put("/d/f.csv", "1,a\n2,b\n3,c\n4,d\n");
    RecordValue options;
    GETOPTIONSRECORD("0", "0", ",", "2", options.get());
    TABOPEN("/d/f.csv", options.get(), make(columns));
    EXPECT_EQ(TableCount(table_.get()), 4);
    TABCLOSE("/d/f.csv", options.get(), true, table_.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(files_.contents("/d/f.csv"), "1,a\n2,b\n3,c\n4,d\n");
}

TEST_F(TableFiles, FooterLinesThatSayMoreThanTheNumberOfRowsStay) {
    constexpr struct {
        const char *count, *before, *after;
    } cases[] = {
        {"1", "1,a\n(1 row affected)\n", "1,a\n2,b\n(2 rows affected)\n"},
        {"2", "1,a\n\n(1 row affected)\n", "1,a\n2,b\n\n(2 rows affected)\n"},
        {"1", "1,a\nTotal,1\n", "1,a\n2,b\nTotal,1\n"},
        {"1", "1,a\nTotal,1", "1,a\n2,b\nTotal,1"},
        {"2", "1,a\nTotal,1\n(1 row affected)\n", "1,a\n2,b\nTotal,1\n(1 row affected)\n"},
        {"3", "1,a\n\nx\n(1 row affected)\n", "1,a\n2,b\n\nx\n(1 row affected)\n"},
        {"1", "1,a\n(1 row) affected)\n", "1,a\n2,b\n(1 row) affected)\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.before);
        files_.put("/d/f.csv", c.before);
        RecordValue options;
        GETOPTIONSRECORD("0", c.count, ",", "-1", options.get());
        TABOPEN("/d/f.csv", options.get(), make(columns));
        add(2, "b");
        TABCLOSE("/d/f.csv", options.get(), true, table_.get());
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(files_.contents("/d/f.csv"), c.after);
        EXPECT_EQ(allFiles(), (Names{"f.csv"}));
    }
}

TEST_F(TableFiles, FooterLinesAreNotLostWhenSavingFails) {
    const std::string text = "1,a\nTotal,1\n";
    RecordValue options;
    GETOPTIONSRECORD("0", "1", ",", "-1", options.get());
    bool failed = true;
    for (int call = 1; failed; ++call) {
        ASSERT_LT(call, 200);
        files_.put("/d/f.csv", text);
        TABOPEN("/d/f.csv", options.get(), make(columns));
        files_.failAt(call, os::FileError::WriteFailed);
        TABCLOSE("/d/f.csv", options.get(), true, table_.get());
        files_.stopFailing();
        failed = takeError() != 0;
        EXPECT_EQ(files_.contents("/d/f.csv"), text) << call;
        EXPECT_EQ(opened(), failed) << call;
        table_ = TableValue();
        takeError();
    }
}

TEST_F(TableFiles, AScratchFileOfAnotherOpenTableIsNotTaken) {
    files_.put("/d/f.csv", "1,Ada\n");
    TABOPEN("/d/f.csv", nullptr, make(columns));
    add(2, "Bob");
    {
        TableValue other;
        TableInit(other.get(), UNBOUNDED, row_.get(), KeyMaps{MakeKeyMap(1)}, columns, true);
        TABOPEN("/d/./f.csv", nullptr, other.get());
        EXPECT_EQ(takeError(), ERR_FILE_WRITE);
        EXPECT_FALSE(FileExists(other.get(), KindTable));
    }
    EXPECT_EQ(nameOf(2), "Bob");
    TABOPEN("/d/f.csv", nullptr, table_.get());  // itself, anew
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(TableCount(table_.get()), 1);
    table_ = TableValue();  // ends with its scratch file
    TABOPEN("/d/f.csv", nullptr, make(columns));
    EXPECT_EQ(takeError(), 0);
    TABCLOSE("/d/f.csv", nullptr, false, table_.get());
    TableValue after;
    TableInit(after.get(), UNBOUNDED, row_.get(), KeyMaps{MakeKeyMap(1)}, columns, true);
    TABOPEN("/d/f.csv", nullptr, after.get());
    EXPECT_EQ(takeError(), 0);
    TABCLOSE("/d/f.csv", nullptr, false, after.get());
}

TEST_F(TableFiles, ATableFileThatWasMadeUnderAnotherFormsNameOpensAgain) {
    for (const std::int32_t keyMap : {MakeKeyMap(1), 0}) {
        for (const std::string file : {"/d/new.csv", "/d/new.tab", "/d/new.txt", "/d/new.xml"}) {
            SCOPED_TRACE(file);
            TABOPEN(file, nullptr, make(columns, keyMap));
            RecordDescriptor* const r = row_.get();
            WriteAt(RecordFieldAddress(r, 1), 7);
            StringAssignView(static_cast<StringDescriptor*>(RecordFieldAddress(r, 2)), "Ada");
            TableAdd(table_.get(), keyMap != 0 ? 1 : 0, r);
            TABCLOSE(file, nullptr, true, table_.get());
            const std::string bytes = files_.contents(file);
            TABOPEN(file, nullptr, table_.get());
            EXPECT_EQ(takeError(), 0);
            EXPECT_EQ(FileNameOf(table_.get(), KindTable), file);
            EXPECT_EQ(nameOf(1), "Ada");
            TABCLOSE(file, nullptr, true, table_.get());
            EXPECT_EQ(files_.contents(file), bytes);
            table_ = TableValue();
            files_.remove(file);
            files_.remove("/d/new.i1");
        }
    }
}

TEST_F(TableFiles, TextOfWholeRowsIsText) {
    const std::string text = "12345,67890123456\n";  // as long as a row
    files_.put("/d/f.csv", text);
    TABOPEN("/d/f.csv", nullptr, make("number : integer\nname : string[11]\n", 0));
    ASSERT_EQ(FileRecordLength(table_.get(), KindTable), 19);
    TABCLOSE("/d/f.csv", nullptr, false, table_.get());
    files_.put("/d/f.csv", text + "\n");
    TABOPEN("/d/f.csv", nullptr, table_.get());
    EXPECT_EQ(FileNameOf(table_.get(), KindTable), "/d/f.~sv");
    TABCLOSE("/d/f.csv", nullptr, false, table_.get());
    EXPECT_EQ(takeError(), 0);
    // Nor is it rows by the index of a scratch file that was left behind.
    TABOPEN("/d/f.~sv", nullptr, make("number : integer\nname : string[11]\n"));
    FileClose(table_.get(), KindTable);
    TABOPEN("/d/f.csv", nullptr, table_.get());
    EXPECT_EQ(FileNameOf(table_.get(), KindTable), "/d/f.~sv");
    TABCLOSE("/d/f.csv", nullptr, false, table_.get());
    EXPECT_EQ(takeError(), 0);
}

// ---- table files that are damaged, or not where they were ----

const char* const foreignNames[] = {"/d/x.csv", "/d/x.tab", "/d/x.txt", "/d/x.xml"};

// Rows of texts, which could be taken for text but for the zeros behind each.
class DamagedTableFiles : public TableFiles {
protected:
    void makeRows(const std::string& file, std::int32_t keyMap = MakeKeyMap(2)) {
        files_.remove("/d/x.i1");
        files_.remove(file);
        TABOPEN(file, nullptr, make("first : string[8]\nname : string[8]\n", keyMap));
        for (const char* const text : {"k1", "k2", "k3"}) {
            StringAssignView(static_cast<StringDescriptor*>(RecordFieldAddress(row_.get(), 1)), text);
            StringAssignView(static_cast<StringDescriptor*>(RecordFieldAddress(row_.get(), 2)), text);
            TableAdd(table_.get(), keyMap != 0 ? 1 : 0, row_.get());
        }
        TABCLOSE(file, nullptr, true, table_.get());
        ASSERT_EQ(takeError(), 0);
    }
    // The table does not open, with this code, and closing it changes nothing.
    void expectRefused(const std::string& file, std::int32_t code) {
        const std::string bytes = files_.contents(file);
        const Names before = allFiles();
        TABOPEN(file, nullptr, table_.get());
        EXPECT_EQ(takeError(), code);
        EXPECT_FALSE(opened());
        TABCLOSE(file, nullptr, true, table_.get());
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(files_.contents(file), bytes);
        EXPECT_EQ(allFiles(), before);
    }
    void expectOpens(const std::string& file, std::int32_t rows) {
        const std::string bytes = files_.contents(file);
        TABOPEN(file, nullptr, table_.get());
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(FileNameOf(table_.get(), KindTable), file);
        EXPECT_EQ(TableCount(table_.get()), rows);
        TABCLOSE(file, nullptr, true, table_.get());
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(files_.contents(file), bytes);
    }
};

TEST_F(DamagedTableFiles, ATornTailIsToldAndNotTakenForText) {
    for (const std::int32_t keyMap : {MakeKeyMap(2), 0}) {
        for (const std::string file : foreignNames) {
            for (const std::string tail : {"z", "torn", "1,2\n"}) {
                SCOPED_TRACE(file + " " + tail);
                makeRows(file, keyMap);
                files_.put(file, files_.contents(file) + tail);
                expectRefused(file, ERR_FILE_SIZE);
                files_.put(file, files_.contents(file).substr(0, 13));
                expectRefused(file, ERR_FILE_SIZE);
            }
        }
    }
}

TEST_F(DamagedTableFiles, AnIndexThatIsMissingOrDamagedIsToldAndTheRowsAreNotTakenForText) {
    for (const std::string file : foreignNames) {
        SCOPED_TRACE(file);
        makeRows(file);
        files_.remove("/d/x.i1");
        expectRefused(file, ERR_INDEX_FILE_SIZE);
        files_.put("/d/x.i1", "junk");
        expectRefused(file, ERR_INDEX_FILE_SIZE);
        files_.remove("/d/x.i1");
    }
}

TEST_F(DamagedTableFiles, ATableThatWasRenamedWithItsIndexOpens) {
    for (const std::string file : foreignNames) {
        SCOPED_TRACE(file);
        makeRows(file);
        const std::string renamed = "/d/y" + file.substr(file.find('.'));
        files_.rename(file, renamed);
        files_.rename("/d/x.i1", "/d/y.i1");
        expectOpens(renamed, 3);
        files_.remove(renamed);
        files_.remove("/d/y.i1");
    }
}

TEST_F(DamagedTableFiles, RowsWithoutAByteOfZeroAreToldByTheirIndex) {
    const std::string line = "abcdefghijklmno\n", file = "/d/x.csv", other = "/d/y.csv";
    const auto makeLines = [&](const std::string& name) {
        TABOPEN(name, nullptr, make("first : Tchars[1:8]\nname : Tchars[1:8]\n"));
        for (const std::int32_t field : {1, 2})
            line.copy(At(ReadAt<ArrayDescriptor>(RecordFieldAddress(row_.get(), field)).data), 8,
                      static_cast<std::size_t>(field) * 8 - 8);
        TableAdd(table_.get(), 1, row_.get());
        TABCLOSE(name, nullptr, true, table_.get());
        ASSERT_EQ(takeError(), 0);
        ASSERT_EQ(files_.contents(name), line);
    };
    const auto expectText = [&](const std::string& name) {
        TABOPEN(name, nullptr, table_.get());
        EXPECT_NE(FileNameOf(table_.get(), KindTable), name);
        TABCLOSE(name, nullptr, false, table_.get());
        takeError();
    };
    makeLines(file);
    expectOpens(file, 1);
    files_.put(file, line + "zz");
    expectRefused(file, ERR_FILE_SIZE);
    files_.put(file, line);
    files_.rename(file, other);
    files_.rename("/d/x.i1", "/d/y.i1");
    expectOpens(other, 1);
    files_.put(other, "text\n");  // the index was left behind by a file that is gone
    expectText(other);
    files_.put(other, line);
    files_.put(file, line);  // it belongs to that now
    expectText(other);
}

TEST_F(DamagedTableFiles, AnEmptyTableFileStaysOne) {
    for (const std::string file : foreignNames) {
        SCOPED_TRACE(file);
        makeRows(file);
        TABOPEN(file, nullptr, table_.get());
        TableClear(table_.get());
        TABCLOSE(file, nullptr, true, table_.get());
        EXPECT_EQ(files_.contents(file), "");
        expectOpens(file, 0);
    }
}

TEST_F(DamagedTableFiles, WideTextHoldsZerosAndIsText) {
    std::string wide = "\xFF\xFE";
    for (const char c : std::string("a,b\n")) wide += std::string(1, c) + '\0';
    files_.put("/d/f.csv", wide);
    TABOPEN("/d/f.csv", nullptr, make("first : string[8]\nname : string[8]\n"));
    EXPECT_NE(FileNameOf(table_.get(), KindTable), "/d/f.csv");
    takeError();
    TABCLOSE("/d/f.csv", nullptr, false, table_.get());
    EXPECT_EQ(files_.contents("/d/f.csv"), wide);
}

TEST_F(DamagedTableFiles, ToTellThemNoWholeFileIsRead) {
    constexpr std::int64_t most = 200'000;
    makeRows("/d/x.csv");
    files_.put("/d/x.csv", files_.contents("/d/x.csv") + std::string(4'000'000, 'z') + "z");
    files_.put("/d/x.i1", files_.contents("/d/x.i1") + std::string(4'000'000, 'z'));
    files_.bytesRead = 0;
    expectRefused("/d/x.csv", ERR_FILE_SIZE);
    EXPECT_LT(files_.bytesRead, most);
}

TEST_F(DamagedTableFiles, ATableThatCouldNotBeReadAndThenNotBeClosedIsNotSaved) {
    bool wasShort = true;
    int stayed = 0;
    for (int call = 1; wasShort; ++call) {
        ASSERT_LT(call, 200);
        for (const std::string text : {"x,Ada\n1,Bob\n", "1,Ada\nx,Bob\n"}) {
            SCOPED_TRACE(call);
            files_.put("/d/f.csv", text);
            make(columns);
            files_.syncsUntilShort = call;
            try {
                TABOPEN("/d/f.csv", nullptr, table_.get());
            } catch (const std::bad_alloc&) {}
            wasShort = files_.syncsUntilShort <= 0;
            files_.syncsUntilShort = 0;
            takeError();
            stayed += opened() ? 1 : 0;
            TABCLOSE("/d/f.csv", nullptr, true, table_.get());
            EXPECT_EQ(takeError(), opened() ? std::int32_t{ERR_FILE_WRITE} : 0);
            EXPECT_EQ(files_.contents("/d/f.csv"), text);
            TABCLOSE("/d/f.csv", nullptr, false, table_.get());
            EXPECT_FALSE(opened());
            table_ = TableValue();
        }
    }
    EXPECT_GT(stayed, 0);
}

TEST_F(TableFiles, ClosingWhatIsNotOpenDoesNothing) {
    TABCLOSE("/d/f.csv", nullptr, true, make(columns));
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(allFiles().empty());
}

}  // namespace
}  // namespace tarn
