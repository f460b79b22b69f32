// SPDX-License-Identifier: Apache-2.0
//
// Long lines, moving by bytes, opening and closing, tables that change, and what people see.
#include "unit/kernel/scanning_fixture.h"

#include "kernel/data/scanner/scanner.h"
#include "kernel/values/sets.h"
#include "unit/kernel/scanner_fixture.h"

using namespace tarn;

namespace {

// ---- long lines ----

TEST_F(Scanning, LinesOfMoreThanTheLimitAreCut) {
    for (const char* const lineEnd : {"\n", "\r\n"}) {
        for (const std::size_t length : {32766U, 32767U, 32768U, 32769U, 32770U, 40000U, 65536U, 200000U}) {
            SCOPED_TRACE(length);
            const bool cut = length > 32767;
            const std::string kept(std::min<std::size_t>(length, 32767), 'x');
            const std::string line = std::string(length, 'x') + lineEnd;
            EXPECT_EQ(scan(line + "y\n"), (ScannedList{{Id, kept, cut ? ScanLineTooLong : ScanClean},
                                                       {Id, "y", ScanNewLine, 2}}));
            EXPECT_EQ(scan("y\n" + line + line + "z"),
                      (ScannedList{{Id, "y"},
                                   {Id, kept, cut ? ScanLineTooLong : ScanNewLine, 2},
                                   {Id, kept, cut ? ScanLineTooLong : ScanNewLine, 3},
                                   {Id, "z", ScanNewLine, 4}}));
            EXPECT_EQ(scan("y\n" + line.substr(0, length)),
                      (ScannedList{{Id, "y"}, {Id, kept, cut ? ScanLineTooLong : ScanNewLine, 2}}));
            open(line);
            EXPECT_EQ(ScannerLine(), kept + "\n");
            ScannerClose();
        }
    }
}

TEST_F(Scanning, LongerLinesAreCutWhereTheCallerSays) {
    for (const std::int32_t longest : {40000, 70000, 150000, 196606, 196607, 300000}) {
        SCOPED_TRACE(longest);
        const std::string kept(static_cast<std::size_t>(longest) - 1, 'x');
        disk.put(file, kept + std::string(300000, 'z') + "\ny\n");
        Scanner scanner;
        EXPECT_EQ(scanner.open(file, &table, false, longest), ScanLineTooLong);
        EXPECT_TRUE(scanner.line() == kept + "\n") << scanner.line().size();
        scanner.skipBytes(longest);
        EXPECT_EQ(scanner.next(&table), ScanNewLine);
        EXPECT_EQ(scanner.line(), "y\n");
        EXPECT_EQ(scanner.lineNumber(), 2);
    }
}

TEST_F(Scanning, LinesAreWholeWhereverABlockOfTheFileEnds) {
    const std::string full(32767, 'x');
    for (const std::size_t before : {32764U, 32765U, 32766U, 32767U}) {
        const std::string first(before, 'y');
        const ScannedList expected = {{Id, first}, {Id, full, ScanNewLine, 2}, {Id, "z", ScanNewLine, 3}};
        EXPECT_EQ(scan(first + "\r\n" + full + "\r\nz"), expected) << before;
        EXPECT_EQ(scan(first + "\n" + full + "\r\nz"), expected) << before;
        EXPECT_EQ(scan(first + "\n" + full + "\nz"), expected) << before;
    }
    const std::string shortLines = "a\r\nbc\n\nd\r\n";
    std::string text;
    while (text.size() < 140000) text += shortLines;
    std::size_t lines = 0;
    for (const Scanned& symbol : scan(text)) lines += symbol.text == "d" ? 1 : 0;
    EXPECT_EQ(lines, text.size() / shortLines.size());
}

TEST_F(Scanning, TheFirstLinesLengthIsReportedUnlessTheScanReportsMore) {
    EXPECT_EQ(scan("'a" + std::string(40000, 'x')),
              (ScannedList{{SingleString, "'a" + std::string(32765, 'x') + "'", ScanOpenString}}));
    EXPECT_EQ(scan(std::string(40000, ' ') + "\ny"), (ScannedList{{Id, "y", ScanNewLine, 2}}));
}

TEST_F(Scanning, ALongLineInASymbolIsReportedFirst) {
    const std::string cut(32767, 'x'), longLine = std::string(40000, 'x') + "\n";
    EXPECT_EQ(scan("<!--\n" + longLine), (ScannedList{{Comment, "\\x1A", ScanLineTooLong}}));
    EXPECT_EQ(scan("\"\n" + longLine + "\""),
              (ScannedList{{DoubleString, ("\"\n" + cut).substr(0, 32768), ScanLineTooLong}}));
}

TEST_F(Scanning, WhatOverflowsTheTextIsLostWithoutAStatus) {
    const std::string line(20000, 'x');
    const std::string comment = "<!--" + line + "\n" + line + "\n" + line + "-->";
    EXPECT_EQ(scan(comment + "y"),
              (ScannedList{{Comment, comment.substr(0, 32768), ScanNewLine}, {Id, "y", ScanClean, 3}}));
    const std::string text = "\"" + line + "\n" + std::string(12766, 'x');
    ASSERT_EQ(text.size(), 32768U);
    EXPECT_EQ(scan(text + "\x01.")[0], (Scanned{DoubleString, text, ScanNewLine})) << "no room for the quote";
    EXPECT_EQ(scan(text.substr(0, 32767) + "\x01.")[0].text, text.substr(0, 32767) + "\"");
}

// ---- moving by bytes ----

TEST_F(Scanning, SkipCharMovesOverOneByte) {
    ASSERT_EQ(open("ab\nc"), ScanClean);
    EXPECT_EQ(ScannerPosition(), 2);
    EXPECT_EQ(ScannerChar(), '\n');
    EXPECT_EQ(ScannerSkipChar(), ScanNewLine);
    EXPECT_EQ(ScannerSymbol(), 0);
    EXPECT_EQ(ScannerSymbolStr(), "");
    EXPECT_EQ(ScannerLineNumber(), 2);
    EXPECT_EQ(ScannerSkipChar(), ScanClean);
    EXPECT_EQ(ScannerPosition(), 1);
    EXPECT_EQ(ScannerSkipChar(), ScanClean) << "the end of the file is no line";
    EXPECT_EQ(ScannerLine(), "\x1A");
    EXPECT_EQ(ScannerSkipChar(), ScanClean);
    EXPECT_EQ(ScannerPosition(), 0);
    EXPECT_EQ(next().symbol, Eof);
}

TEST_F(Scanning, SkipCharReportsALineThatWasCut) {
    ASSERT_EQ(open("a\n" + std::string(40000, 'x') + "\nb"), ScanClean);
    EXPECT_EQ(ScannerSkipChar(), ScanLineTooLong);
    for (int i = 0; i < 32767; ++i) EXPECT_EQ(ScannerSkipChar(), ScanClean);
    EXPECT_EQ(ScannerSkipChar(), ScanNewLine);
    EXPECT_EQ(next(), (Scanned{Id, "b", ScanClean, 3}));
}

TEST_F(Scanning, ScanningGoesOnWhereSkippingEnded) {
    ASSERT_EQ(open("<a#b>"), ScanClean);
    EXPECT_EQ(ScannerSymbol(), Less);
    ScannerSkipChar();
    ScannerSkipChar();
    EXPECT_EQ(next(), (Scanned{Id, "b"}));
    EXPECT_EQ(ScannerPreviousSymbolStr(), "");
}

TEST_F(Scanning, PeeksDoNotLookBehindTheLine) {
    table = tableOf({{1, "a"}});
    const struct {
        std::string input;
        unsigned char c, extra, extra2;
    } rows[] = {{"abcd", 'b', 'c', 'd'},
                {"abc", 'b', 'c', '\n'},
                {"ab", 'b', '\n', 0},
                {"a\nb", '\n', 0, 0},
                {"a\x1A"
                 "bc",
                 26, 'b', 0},
                {"ab\x1A"
                 "c",
                 'b', 26, 0},
                {{"a\0bc", 4}, '\0', 'b', 0},
                {{"ab\0c", 4}, 'b', '\0', 0}};
    for (const auto& row : rows) {
        open(row.input);
        EXPECT_EQ(ScannerChar(), row.c) << row.input;
        EXPECT_EQ(ScannerExtraChar(), row.extra) << row.input;
        EXPECT_EQ(ScannerExtraChar2(), row.extra2) << row.input;
        ScannerClose();
    }
}

TEST_F(Scanning, TheLineAndItsRestAreCopiedCut) {
    open("abc <");
    char buffer[6];
    ScannerLineStr(buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "abc <");
    ScannerLineRemainder(buffer, sizeof buffer);
    EXPECT_STREQ(buffer, " <\n");
    ScannerLineStr(buffer, 3);
    EXPECT_STREQ(buffer, "ab");
    ScannerLineRemainder(buffer, 1);
    EXPECT_STREQ(buffer, "");
    buffer[0] = 'x';
    ScannerLineStr(buffer, 0);
    ScannerLineStr(nullptr, 3);
    EXPECT_EQ(buffer[0], 'x');
    EXPECT_EQ(ScannerRemainder(), " <\n");
}

// ---- the previous symbol ----

TEST_F(Scanning, ThePreviousSymbolIsTheLastThatMatters) {
    table = tableOf({{1, "##ID"}, {2, "##WHITESPACE"}, {3, "##EOL"}, {4, "(*", "*)"}, {5, "+"}});
    open("a b@c\n+(* *)d");
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"a", ""},  {" ", "a"},     {"b", "a"},     {"@", "b"},   {"c", "b"},     {"\\n", "c"},
        {"+", "c"}, {"(* *)", "c"}, {"d", "(* *)"}, {"\\n", "d"}, {"\\x1A", "d"}, {"\\x1A", "\\x1A"}};
    for (const auto& [text, previous] : expected) {
        EXPECT_EQ(ScannerSymbolStr(), text);
        EXPECT_EQ(ScannerPreviousSymbolStr(), previous) << text;
        ScannerNext(&table);
    }
}

// ---- opening and closing ----

TEST_F(Scanning, ASecondOpenDoesNothing) {
    open("a b");
    disk.put("/data/other.txt", "x");
    EXPECT_EQ(ScannerOpen("/data/other.txt", &table, false), ScanClean);
    EXPECT_EQ(ScannerInputFilename(), file);
    EXPECT_EQ(next(), (Scanned{Id, "b"}));
    ScannerClose();
    EXPECT_EQ(current(ScannerOpen("/data/other.txt", &table, false)), (Scanned{Id, "x"}));
}

TEST_F(Scanning, NothingIsOpenedWithoutANameOrATable) {
    const SymbolTable empty{};
    disk.put(file, "a");
    EXPECT_EQ(ScannerOpen("", &table, false), ScanClean);
    EXPECT_EQ(ScannerOpen(file, &empty, false), ScanClean);
    EXPECT_EQ(ScannerOpen(file, nullptr, false), ScanClean);
    EXPECT_EQ(ScannerInputFilename(), "");
    EXPECT_EQ(disk.openHandles(), 0);
}

TEST_F(Scanning, AFileThatCannotBeOpenedIsAtItsEnd) {
    const struct {
        std::string path;
        os::FileError error;
    } rows[] = {{"/data/missing.txt", os::FileError::NotFound},
                {"/data", os::FileError::IsFolder},
                {std::string("/data/a\0b", 9), os::FileError::BadName}};
    for (const auto& row : rows) {
        EXPECT_EQ(ScannerOpen(row.path, &table, false), ScanClean);
        EXPECT_EQ(ScannerFileError(), row.error) << row.path;
        EXPECT_EQ(ScannerInputFilename(), "");
        EXPECT_EQ(ScannerSymbol(), 0);
        EXPECT_EQ(next(), (Scanned{Eof, "\\x1A", ScanClean, 0}));
        EXPECT_EQ(next(), (Scanned{Eof, "\\x1A", ScanClean, 0}));
        ScannerClose();
        EXPECT_EQ(ScannerFileError(), row.error) << "kept";
    }
    EXPECT_EQ(scan("a"), (ScannedList{{Id, "a"}}));
    EXPECT_EQ(ScannerFileError(), os::FileError::None);
}

TEST_F(Scanning, AFailedReadIsTheEndOfTheFileAndCanBeTold) {
    disk.put(file, "a b\nc d" + std::string(100000, '\n') + "e");
    disk.failAt(os::FileCall::Read, 2, os::FileError::ReadFailed);
    EXPECT_EQ(current(ScannerOpen(file, &table, false)), (Scanned{Id, "a"}));
    std::string all = "a";
    while (next().symbol != Eof) all += ScannerSymbolStr();
    EXPECT_EQ(all.substr(0, 2), "ab") << "what was read counts";
    EXPECT_EQ(all.find('e'), std::string::npos);
    EXPECT_EQ(ScannerFileError(), os::FileError::ReadFailed);
    EXPECT_EQ(next().symbol, Eof) << "the file is not tried again";
    ScannerClose();
    EXPECT_EQ(ScannerFileError(), os::FileError::ReadFailed);
    disk.failAt(os::FileCall::Read, 1, os::FileError::Vanished);
    EXPECT_EQ(current(open("a")), (Scanned{Eof, "\\x1A", ScanClean, 0}));
    EXPECT_EQ(ScannerFileError(), os::FileError::Vanished);
}

TEST_F(Scanning, ARealFolderIsNoFile) {
    const os::Steered real(os::realFiles());
    EXPECT_EQ(ScannerOpen("/", &table, false), ScanClean);
    EXPECT_EQ(ScannerFileError(), os::FileError::IsFolder);
    EXPECT_EQ(ScannerInputFilename(), "");
}

TEST_F(Scanning, ClosingClearsTheState) {
    open("a b");
    next();
    ScannerClose();
    ScannerClose();
    EXPECT_EQ(ScannerInputFilename(), "");
    EXPECT_EQ(ScannerSymbol(), 0);
    EXPECT_EQ(ScannerSymbolLine(), 0);
    EXPECT_EQ(ScannerLineNumber(), 0);
    EXPECT_EQ(ScannerPosition(), 0);
    for (const std::string_view text :
         {ScannerSymbolStr(), ScannerPreviousSymbolStr(), ScannerLine(), ScannerRemainder()})
        EXPECT_EQ(text, "");
    EXPECT_EQ(ScannerChar() + ScannerExtraChar() + ScannerExtraChar2(), 0);
    EXPECT_EQ(ScannerSkipChar(), ScanClean);
    EXPECT_EQ(ScannerPosition(), 0);
}

TEST_F(Scanning, TheNameOfTheFileIsKeptTo255Characters) {
    std::string path = "/data";
    for (int i = 0; i < 30; ++i) path += "/folder/" + std::to_string(i);
    path += "/a.txt";
    disk.put(path, "a");
    EXPECT_EQ(current(ScannerOpen(path, &table, false)), (Scanned{Id, "a"}));
    EXPECT_EQ(ScannerInputFilename(), path.substr(0, 255));
}

// ---- a table that changes while a file is scanned ----

TEST_F(Scanning, AKeywordThatWasRemovedIsAName) {
    open("end end end");
    EXPECT_EQ(ScannerSymbol(), End);
    SymbolRemove(&table, "end");
    EXPECT_EQ(next(), (Scanned{Id, "end"}));
    SymbolAdd(&table, 99, "end", "");
    EXPECT_EQ(next(), (Scanned{99, "end"}));
}

TEST_F(Scanning, TheIdsOfSixClassesAreThoseOfTheOpening) {
    open("a 1 b 2");
    SymbolRemove(&table, "##ID");
    SymbolRemove(&table, "##UINT");
    EXPECT_EQ(next(), (Scanned{Unknown, "1"}));
    EXPECT_EQ(next(), (Scanned{Id, "b"}));
    EXPECT_EQ(current(ScannerNext(nullptr)), (Scanned{Unknown, "2"}));
}

TEST_F(Scanning, AnotherTableCanTakeOver) {
    SymbolTable other = tableOf({{70, "end"}, {71, "##UINT"}});
    open("end end 1");
    EXPECT_EQ(current(ScannerNext(&other)), (Scanned{70, "end"}));
    EXPECT_EQ(current(ScannerNext(&other)), (Scanned{71, "1"}));
}

// ---- what people see ----

TEST_F(Scanning, TheDumpIsEightLines) {
    open("a <\t\"\\\x80\x01\n");
    next();
    char buffer[500];
    ScannerDump(buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "Char = \\t\nExtraChar = \"\nInputFilename = /data/input.txt\nLineNumber = 1\n"
                         "LineStr = a <\\t\\\"\\\\\\x80\\x01\\n\nLineRemainder = \\t\\\"\\\\\\x80\\x01\\n\n"
                         "PreviousSymbolStr = a\nSymbolStr = <\n");
    ScannerDump(buffer, 10);
    EXPECT_STREQ(buffer, "Char = \\t");
    ScannerDump(buffer, 1);
    EXPECT_STREQ(buffer, "");
    ScannerDump(buffer, 0);
    ScannerDump(nullptr, 5);
    ScannerClose();
    open("<!-- \r\n\x80 -->");
    ScannerDump(buffer, sizeof buffer);
    EXPECT_STREQ(
        buffer,
        "Char = \\n\nExtraChar = \\x00\nInputFilename = /data/input.txt\nLineNumber = 2\n"
        "LineStr = \\x80 -->\\n\nLineRemainder = \\n\nPreviousSymbolStr = \nSymbolStr = <!-- \\n\x80 -->\n");
}

TEST_F(Scanning, AStatusBecomesAReport) {
    const struct {
        std::int32_t status, code;
        const char* message;
    } rows[] = {{ScanClean, 0, ""},
                {ScanNewLine, 0, ""},
                {ScanLineTooLong, 671, "Line too long, max length is 32768"},
                {ScanOpenString, 672, "String was not terminated"},
                {ScanOpenDelimited, 672, "Comment which started on line 2 was not terminated"}};
    open("a\n <!-- b\nccc\n");
    EXPECT_EQ(next(), (Scanned{Comment, "\\x1A", ScanOpenDelimited, 2}));
    for (const auto& row : rows) {
        ErrorRecord record;
        ScannerReportStatus(static_cast<ScanStatus>(row.status), record);
        EXPECT_EQ(record.code, row.code);
        EXPECT_EQ(record.message, row.message);
        EXPECT_EQ(record.line, row.code != 0 ? 3 : 0);
    }
    ScannerClose();
    open("ab 'c");
    ErrorRecord record;
    ScannerReportStatus(ScannerNext(&table), record);
    EXPECT_EQ(record.line, 1);
    EXPECT_EQ(record.position, 5);
}

TEST_F(Scanning, OnlyTheFirstErrorIsKept) {
    ErrorRecord record;
    ReportError(record, 0, 1, 2, "text");
    ReportError(record, 672, 1, 2, "");
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.message, "");
    ReportError(record, 672, 3, 4, std::string(2000, 'x'));
    ReportError(record, 671, 5, 6, "later");
    EXPECT_EQ(record.code, 672);
    EXPECT_EQ(record.line, 3);
    EXPECT_EQ(record.position, 4);
    EXPECT_EQ(record.message, std::string(1024, 'x'));
}

TEST_F(Scanning, ASymbolOutsideTheSetIsAnError) {
    SetDescriptor allowed;
    SetInit(&allowed, 0, 255);
    SetInclude(Less, &allowed);
    SetInclude(0, &allowed);
    const std::string longName(50, 'x');
    const struct {
        std::string input;
        std::int32_t symbol;
        std::string shown;  // "": allowed
    } rows[] = {{"<", Less, ""},
                {"a", 0, ""},
                {"abc", Id, "<Identifier>"},
                {"end", End, "end"},
                {"@", Unknown, "@"},
                {"", Eof, "\\x1A"},
                {longName, Unknown, longName.substr(0, 40)},
                {"a", 300, "<Unknown>"}};
    for (const auto& row : rows) {
        open(row.input);
        ErrorRecord record;
        ScannerCheckSymbol(&table, row.symbol, &allowed, record);
        EXPECT_EQ(record.code, row.shown.empty() ? 0 : 672) << row.input;
        EXPECT_EQ(record.message,
                  row.shown.empty() ? "" : "Symbol \"" + row.shown + "\" is not allowed here");
        EXPECT_EQ(record.position, row.shown.empty() ? 0 : static_cast<int>(row.input.size()));
        ScannerClose();
    }
    SetFree(&allowed);
}

}  // namespace
