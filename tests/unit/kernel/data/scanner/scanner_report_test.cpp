// SPDX-License-Identifier: Apache-2.0
//
// What the scanner refuses to read, what it says of a read that failed, and tables whose keys are not in one
// case.
#include "kernel/data/scanner/scanner.h"

#include "kernel/data/scanner/scanner_lines.h"
#include "kernel/run/errors.h"
#include "kernel/values/sets.h"
#include "support/tempfolder.h"
#include "unit/kernel/scanner_fixture.h"

#include <sys/stat.h>

namespace tarn {
namespace {

constexpr std::int32_t Unknown = SymbolUnknown, Eof = SymbolEndOfFile;

class ScannerReport : public ScannerFixture {
protected:
    static ErrorRecord reported(ScanStatus status) {
        ErrorRecord record;
        ScannerReportStatus(status, record);
        return record;
    }
    ErrorRecord checked(std::int32_t symbol, const void* allowed) {
        ErrorRecord record;
        ScannerCheckSymbol(&table, symbol, static_cast<const SetDescriptor*>(allowed), record);
        return record;
    }
};

// ---- comments that are not closed ----

TEST_F(ScannerReport, ASkippedCommentThatIsNotClosedIsToldWithTheLineWhereItBegan) {
    table = tableOf({{0, "(*", "*)"}, {1, "##ID"}, {0, "##EOL"}, {0, "##WHITESPACE"}});
    ASSERT_EQ(open("a\n (* b\nccc\nddd\n"), ScanClean);
    const ScanStatus status = ScannerNext(&table);
    EXPECT_EQ(current(status), (Scanned{Eof, "\\x1A", ScanOpenDelimited, 4}));
    const ErrorRecord record = reported(status);
    EXPECT_EQ(record.code, ERR_XML_NOT_WELL_FORMED);
    EXPECT_EQ(record.message, "Comment which started on line 2 was not terminated");
    EXPECT_EQ(record.line, 4);
}

TEST_F(ScannerReport, OnlyTheCommentThatIsNotClosedCounts) {
    table = tableOf({{0, "(*", "*)"}, {2, "{", "}"}, {1, "##ID"}, {0, "##EOL"}, {0, "##WHITESPACE"}});
    open("(* \n *)\n{ }\n(* *) (*\n\n\nx");
    ScanStatus status = ScannerNext(&table);
    EXPECT_EQ(reported(status).message, "Comment which started on line 4 was not terminated");
    ScannerClose();
    status = open("\n{ *)");
    EXPECT_EQ(reported(status).message, "Comment which started on line 2 was not terminated");
}

// ---- symbols that are not allowed ----

TEST_F(ScannerReport, NoSymbolIsInWhatIsNoSet) {
    table = tableOf({{1, "##ID"}});
    open("abc");
    String text(std::string_view("no set"));
    for (const void* allowed : {static_cast<const void*>(nullptr), static_cast<const void*>(text.get())}) {
        const ErrorRecord record = checked(1, allowed);
        EXPECT_EQ(record.code, ERR_XML_NOT_WELL_FORMED);
        EXPECT_EQ(record.message, "Symbol \"<Identifier>\" is not allowed here");
        EXPECT_EQ(ErrorCell(), 0);
    }
}

TEST_F(ScannerReport, ASetMayHoldIdsAbove255) {
    table = tableOf({{1, "##ID"}, {300, "+"}, {400, "-"}});
    SetDescriptor allowed;
    SetInit(&allowed, -10, 1000);
    SetInclude(300, &allowed);
    SetInclude(Eof, &allowed);
    open("abc");
    EXPECT_EQ(checked(300, &allowed).code, 0);
    EXPECT_EQ(checked(Eof, &allowed).code, 0);
    EXPECT_EQ(checked(400, &allowed).message, "Symbol \"-\" is not allowed here");
    EXPECT_EQ(checked(100000, &allowed).message, "Symbol \"<Unknown>\" is not allowed here");
    EXPECT_EQ(checked(Unknown, &allowed).message, "Symbol \"abc\" is not allowed here");
    SetFree(&allowed);
}

// ---- keys of both cases ----

TEST_F(ScannerReport, ADelimitedKeyAmongKeysOfBothCasesIsNeverTheEndOfTheFile) {
    table = tableOf({{7, "[*", "*]"}, {2, "a"}, {3, "b"}, {0, "##EOL"}});
    EXPECT_EQ(scan("[* q *][* r *]", true), (ScannedList{{7, "[* q *]"}, {7, "[* r *]"}}));
    table = tableOf({{1, "REM", "##EOL"}, {1, "rem", "##EOL"}, {2, "{", "}"}, {3, "x"}, {0, "##EOL"}});
    EXPECT_EQ(scan("rem x\n{ }Rem", true),
              (ScannedList{{1, "rem x"}, {2, "{ }", ScanNewLine, 2}, {1, "Rem", ScanClean, 2}}));
    // Wherever the key stands among the others.
    for (char first = 'A'; first <= 'Z'; ++first) {
        table = tableOf({{9, "Q[", "]"}, {8, "[", "]"}});
        for (char c = first; c <= 'Z'; ++c) {
            SymbolAdd(&table, 1, std::string(1, c).c_str(), "");
            SymbolAdd(&table, 1, std::string(2, static_cast<char>(c + 32)).c_str(), "");
        }
        EXPECT_EQ(current(open("q[ 1 ][ 2 ]", true)), (Scanned{9, "q[ 1 ]"})) << first;
        EXPECT_EQ(next(), (Scanned{8, "[ 2 ]"})) << first;
        ScannerClose();
    }
}

// ---- the previous symbol, blanks ----

TEST_F(ScannerReport, WhatWasSkippedByBytesIsThePreviousSymbolWithoutAText) {
    table = tableOf({{1, "##ID"}, {5, "##WHITESPACE"}});
    open("abc d e f");
    EXPECT_EQ(next(), (Scanned{5, " "}));
    EXPECT_EQ(next(), (Scanned{1, "d"}));
    EXPECT_EQ(ScannerPreviousSymbolStr(), "abc");
    ScannerSkipChar();
    EXPECT_EQ(ScannerPreviousSymbolStr(), "abc");
    EXPECT_EQ(next(), (Scanned{1, "e"}));
    EXPECT_EQ(ScannerPreviousSymbolStr(), "");
    EXPECT_EQ(next(), (Scanned{5, " "}));
    EXPECT_EQ(next(), (Scanned{1, "f"}));
    EXPECT_EQ(ScannerPreviousSymbolStr(), "e");
}

TEST_F(ScannerReport, ARunOfBlanksIsCutWithItsLine) {
    table = tableOf({{5, "##WHITESPACE"}, {3, "##EOL"}});
    const std::string blanks(32767, ' ');
    EXPECT_EQ(scan(blanks + "\n"), (ScannedList{{5, blanks}, {3, "\\n"}}));
    for (const std::size_t length : {32768U, 32769U, 40000U})
        EXPECT_EQ(scan(std::string(length, ' ') + "\n\t"), (ScannedList{{5, blanks, ScanLineTooLong},
                                                                        {3, "\\n", ScanNewLine},
                                                                        {5, "\t", ScanClean, 2},
                                                                        {3, "\\n", ScanClean, 2}}))
            << length;
}

// ---- what is not read ----

TEST_F(ScannerReport, OnlyRegularFilesAreOpened) {
    const TempFolder folder;
    const std::string pipe = folder / "pipe", plain = folder / "plain.txt";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const os::Steered real(os::realFiles());
    ASSERT_TRUE(os::saveFile(plain, "a").ok());
    table = tableOf({{1, "##ID"}});
    for (const std::string& path : {std::string("/dev/zero"), std::string("/dev/null"), pipe}) {
        EXPECT_EQ(ScannerOpen(path, &table, false), ScanClean);
        EXPECT_EQ(ScannerFileError(), os::FileError::ReadFailed) << path;
        EXPECT_EQ(ScannerInputFilename(), "");
        EXPECT_EQ(next(), (Scanned{Eof, "\\x1A", ScanClean, 0}));
        ScannerClose();
    }
    EXPECT_EQ(current(ScannerOpen(plain, &table, false)), (Scanned{1, "a"}));
    EXPECT_EQ(ScannerFileError(), os::FileError::None);
    ScannerClose();
}

TEST_F(ScannerReport, LinesAreCountedAsFarAsTheirNumberGoes) {
    EXPECT_EQ(lineNumberAfter(0), 1);
    EXPECT_EQ(lineNumberAfter(INT32_MAX - 1), INT32_MAX);
    EXPECT_EQ(lineNumberAfter(INT32_MAX), INT32_MAX);
}

TEST_F(ScannerReport, TheDumpOfAClosedScannerIsEmpty) {
    char buffer[300];
    ScannerDump(buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "Char = \\x00\nExtraChar = \\x00\nInputFilename = \nLineNumber = 0\nLineStr = \n"
                         "LineRemainder = \nPreviousSymbolStr = \nSymbolStr = \n");
}

}  // namespace
}  // namespace tarn
