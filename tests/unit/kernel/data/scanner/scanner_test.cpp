// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/scanner/scanner.h"

#include "kernel/run/errors.h"
#include "kernel/values/sets.h"
#include "unit/kernel/scanner_fixture.h"

using namespace tarn;

namespace {

struct Row {
    const char* name;
    std::string input;
    ScannedList expected;
};

// ids of `language`
enum : std::int32_t {
    End = 1,
    Dot,
    Comment,
    Less,
    Id,
    Integer,
    Fixed,
    Real,
    Hex,
    SingleString,
    DoubleString,
    LineComment,
    Plus,
    Increment,
};
constexpr std::int32_t Unknown = SymbolUnknown, Eof = SymbolEndOfFile;

const Entries language = {
    {End, "end"},
    {Dot, "."},
    {Comment, "<!--", "-->"},
    {Less, "<"},
    {Id, "##ID"},
    {Integer, "##UINT"},
    {Fixed, "##UFIXED"},
    {Real, "##UREAL"},
    {Hex, "##HEXCONST"},
    {SingleString, "##SQSTR"},
    {DoubleString, "##MLDQSTR"},
    {LineComment, "//", "##EOL"},
    {Plus, "+"},
    {Increment, "++"},
    {0, "##WHITESPACE"},
    {0, "##EOL"},
};

class Scanning : public ScannerFixture {
protected:
    void SetUp() override {
        ScannerFixture::SetUp();
        table = tableOf(language);
    }
    void expectRows(const std::vector<Row>& rows, bool ignoreCase = false) {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.name);
            EXPECT_EQ(scan(row.input, ignoreCase), row.expected);
        }
    }
};

// ---- numbers ----

TEST_F(Scanning, HexadecimalConstants) {
    expectRows({
        {"digits", "0x1fA", {{Hex, "0x1fA"}}},
        {"a capital X and an L", "0X1fL", {{Hex, "0X1fL"}}},
        {"one L only", "0x1LL", {{Hex, "0x1L"}, {Id, "L"}}},
        {"a small l is no part", "0x1l", {{Hex, "0x1"}, {Id, "l"}}},
        {"no digit behind", "0xG", {{Unknown, "0x"}, {Id, "G"}}},
        {"an L is no digit", "0xL", {{Unknown, "0x"}, {Id, "L"}}},
        {"at the end of the line", "0X\n", {{Unknown, "0X"}}},
        {"not behind another digit", "10x1", {{Integer, "10"}, {Id, "x1"}}},
    });
}

TEST_F(Scanning, DecimalNumbersAreUnsignedAndKeepTheirSpelling) {
    expectRows({
        {"integer", "007", {{Integer, "007"}}},
        {"a point first", ".5", {{Fixed, ".5"}}},
        {"a point last is a symbol", "5.", {{Integer, "5"}, {Dot, "."}}},
        {"a point on both sides", "1.50", {{Fixed, "1.50"}}},
        {"two points", "1.5.5", {{Fixed, "1.5"}, {Fixed, ".5"}}},
        {"exponent",
         "1e5 2E+07 3.5e-1 .5e3",
         {{Real, "1e5"}, {Real, "2E+07"}, {Real, "3.5e-1"}, {Real, ".5e3"}}},
        {"a sign without digits", "1e+", {{Unknown, "1e+"}}},
        {"a sign and a letter", "1.5E-x", {{Unknown, "1.5E-"}, {Id, "x"}}},
        {"an e and a blank", "1e ", {{Integer, "1"}, {Id, "e"}}},
        {"an e at the end of the line", "1.5E", {{Fixed, "1.5"}, {Id, "E"}}},
        {"an e and a letter", "1ex", {{Integer, "1"}, {Id, "ex"}}},
        {"no signs", "+1", {{Plus, "+"}, {Integer, "1"}}},
        {"a point and an e", ".e5", {{Dot, "."}, {Id, "e5"}}},
    });
}

TEST_F(Scanning, NumbersWithoutTheirClassAreUnknown) {
    table = tableOf({{1, "##UINT"}, {0, "##WHITESPACE"}, {0, "##EOL"}});
    expectRows({{"",
                 "1 1.5 1e5 0x1 2",
                 {{1, "1"}, {Unknown, "1.5"}, {Unknown, "1e5"}, {Unknown, "0x1"}, {1, "2"}}}});
}

TEST_F(Scanning, AClassWithTheIdZeroIsSkipped) {
    table = tableOf({{0, "##UINT"}, {0, "##ID"}, {0, "##SQSTR"}, {1, "+"}, {0, "##EOL"}});
    expectRows({{"", "12+a'x'+\n+", {{1, "+"}, {1, "+"}, {1, "+", ScanNewLine, 2}}}});
}

// ---- keywords and names ----

TEST_F(Scanning, KeywordsEndWhereNamesDo) {
    expectRows({
        {"keyword", "end", {{End, "end"}}},
        {"a name that begins with it", "endless", {{Id, "endless"}}},
        {"an underscore and a digit", "end_ end1", {{Id, "end_"}, {Id, "end1"}}},
        {"a part of it", "en enx", {{Id, "en"}, {Id, "enx"}}},
        {"another case", "End", {{Id, "End"}}},
        {"another byte behind", "end.end<", {{End, "end"}, {Dot, "."}, {End, "end"}, {Less, "<"}}},
        {"a byte from 128", "end\x80", {{End, "end"}, {Unknown, "\x80"}}},
    });
}

TEST_F(Scanning, TheLongestSymbolWins) {
    expectRows({
        {"", "+ ++ +++", {{Plus, "+"}, {Increment, "++"}, {Increment, "++"}, {Plus, "+"}}},
        {"back to the last that was whole", "<!-x", {{Less, "<"}, {Unknown, "!"}, {Unknown, "-"}, {Id, "x"}}},
        {"at the end of the line", "<!-", {{Less, "<"}, {Unknown, "!"}, {Unknown, "-"}}},
    });
}

TEST_F(Scanning, XmlNames) {
    table = tableOf({{1, "##XMLID"}, {2, "version"}, {3, "<"}, {0, "##WHITESPACE"}, {0, "##EOL"}});
    expectRows({
        {"all parts", ":a-b.c:1_", {{1, ":a-b.c:1_"}}},
        {"a keyword that goes on",
         "version version-1 version.",
         {{2, "version"}, {1, "version-1"}, {1, "version."}}},
        {"a part of a keyword", "ver ver-", {{1, "ver"}, {1, "ver-"}}},
        {"no start", "-a", {{Unknown, "-"}, {1, "a"}}},
    });
}

TEST_F(Scanning, IdentifiersComeBeforeXmlNames) {
    table = tableOf({{1, "##XMLID"}, {2, "##ID"}, {3, "a:c"}, {0, "##WHITESPACE"}, {0, "##EOL"}});
    expectRows({
        {"", "a-b :c", {{2, "a"}, {Unknown, "-"}, {2, "b"}, {1, ":c"}}},
        {"what was tried decides", "a:bc", {{1, "a:bc"}}},
        {"a keyword that is no identifier", "a:cd a:c", {{1, "a:cd"}, {3, "a:c"}}},
    });
}

TEST_F(Scanning, NamesWithoutTheirClassAreUnknownByteByByte) {
    table = tableOf({{1, "end"}, {0, "##WHITESPACE"}, {0, "##EOL"}});
    expectRows({
        {"", "ab", {{Unknown, "a"}, {Unknown, "b"}}},
        {"but what began as a key is one", "enx", {{Unknown, "en"}, {Unknown, "x"}}},
        {"a keyword ends anywhere", "endx", {{1, "end"}, {Unknown, "x"}}},
    });
    table = tableOf({{1, "a:c"}, {2, "##ID"}});
    expectRows(
        {{"an XML name where only identifiers are", "a:b", {{Unknown, "a:"}, {2, "b"}, {Unknown, "\\n"}}}});
}

TEST_F(Scanning, WhatAKeyBeganWithInVainIsDropped) {
    table = tableOf(
        {{1, "<!--", "-->"}, {2, "##ID"}, {3, "\"\"\""}, {4, "##DQSTR"}, {0, "##WHITESPACE"}, {0, "##EOL"}});
    expectRows({
        {"the next byte alone is the text", "<!xy", {{Unknown, "x"}, {2, "y"}}},
        {"blanks", "<!- x", {{2, "x"}}},
        {"a line end", "<!\nx", {{2, "x", ScanNewLine, 2}}},
        {"a control byte", "<\x01x", {{Unknown, "\\x01"}, {2, "x"}}},
        {"the end of the file", "<!\x1A", {}},
        {"a quote", "\"a\"", {{Unknown, "a"}}},
        {"the mark of the classes", "# x", {{2, "x"}}},
    });
}

TEST_F(Scanning, CaseCanBeIgnored) {
    table = tableOf({{1, "END"},
                     {2, "REM", "Done"},
                     {3, "##ID"},
                     {4, "##UINT"},
                     {5, "low"},
                     {0, "##WHITESPACE"},
                     {0, "##EOL"}});
    expectRows(
        {
            {"keys in upper case", "End eND", {{1, "End"}, {1, "eND"}}},
            {"a key in lower case is never met", "low LOW", {{3, "low"}, {3, "LOW"}}},
            {"names keep their case", "Endx", {{3, "Endx"}}},
            {"terminators do not ignore it", "rem done DONE Done 1", {{2, "rem done DONE Done"}, {4, "1"}}},
            {"the name of a class", "##uint", {{Unknown, "##uint"}}},
        },
        true);
    EXPECT_EQ(scan("End"), (ScannedList{{3, "End"}}));
}

TEST_F(Scanning, ANameOfAClassIsNotTheClass) {
    table = tableOf({{1, "##ID"}, {2, "##OTHER"}, {3, "##UINT"}, {0, "##EOL"}});
    expectRows({
        {"", "##ID", {{Unknown, "##ID"}}},
        {"it ends anywhere", "##UINTx", {{Unknown, "##UINT"}, {1, "x"}}},
        {"another one is a literal", "##OTHER", {{2, "##OTHER"}}},
    });
}

// ---- delimited symbols ----

TEST_F(Scanning, DelimitedSymbols) {
    expectRows({
        {"on a line", "<!-- a -->x", {{Comment, "<!-- a -->"}, {Id, "x"}}},
        {"the key is no part of the terminator", "<!-->x-->", {{Comment, "<!-->x-->"}}},
        {"empty", "<!---->", {{Comment, "<!---->"}}},
        {"a part of the terminator", "<!----- --->", {{Comment, "<!----- --->"}}},
        {"over lines",
         "<!-- a\n\n b --> c",
         {{Comment, "<!-- a\n\n b -->", ScanNewLine, 1}, {Id, "c", ScanClean, 3}}},
        {"no terminator over a line end",
         "<!-- -\n-> --\n> -->",
         {{Comment, "<!-- -\n-> --\n> -->", ScanNewLine}}},
        {"tabs and high bytes", "<!--\t\x80\xFF-->", {{Comment, "<!--\t\x80\xFF-->"}}},
        {"not closed", "<!-- a\nb", {{Comment, "\\x1A", ScanOpenDelimited}}},
        {"byte 26 in it", "<!-- a\x1A-->", {{Comment, "\\x1A", ScanOpenDelimited}}},
        {"a control byte ends it",
         "<!-- a\x02"
         "b",
         {{Comment, "<!-- a-->"}, {Unknown, "\\x02"}, {Id, "b"}}},
        {"a NUL byte too", std::string("<!--\0", 5), {{Comment, "<!---->"}, {Unknown, "\\x00"}}},
        {"and a lone CR", "<!--\r.", {{Comment, "<!---->"}, {Unknown, "\\x0D"}, {Dot, "."}}},
    });
}

TEST_F(Scanning, DelimitedByTheEndOfTheLine) {
    expectRows({
        {"", "// a // b\nx", {{LineComment, "// a // b"}, {Id, "x", ScanNewLine, 2}}},
        {"at once", "//\n", {{LineComment, "//"}}},
        {"a last line without its end", "//a", {{LineComment, "//a"}}},
        {"the word in the file is no terminator", "// ##EOL b", {{LineComment, "// ##EOL b"}}},
        {"a control byte ends it, and nothing is added",
         "// a\x02"
         "b",
         {{LineComment, "// a"}, {Unknown, "\\x02"}, {Id, "b"}}},
        {"byte 26", "// a\x1A", {{LineComment, "\\x1A", ScanOpenDelimited}}},
    });
}

TEST_F(Scanning, ATerminatorThatBeginsWithABlankOrAControlByteIsNeverMet) {
    for (const char* const terminator : {" x", "\tx", "\nx"}) {
        table = tableOf({{1, "(", terminator}, {2, "##ID"}});
        EXPECT_EQ(
            scan("( x\t\x03y"),
            (ScannedList{
                {1, "( x\t" + std::string(terminator)}, {Unknown, "\\x03"}, {2, "y"}, {Unknown, "\\n"}}));
    }
    table = tableOf({{1, "(", ")\n"}});
    EXPECT_EQ(scan("()\n)"), (ScannedList{{1, "\\x1A", ScanOpenDelimited}}))
        << "the line end is not in the line";
}

TEST_F(Scanning, ATerminatorIsDeliveredOnlyWithAKeyThatIsNoPrefix) {
    table = tableOf({{1, "(*", "*)"}, {2, "(*x"}, {3, "##ID"}, {0, "##WHITESPACE"}, {0, "##EOL"}});
    expectRows({{"", "(* a", {{1, "(*"}, {3, "a"}}}, {"", "(*xa", {{2, "(*x"}, {3, "a"}}}});
}

TEST_F(Scanning, AWordThatDelimitsIsANameWhenItGoesOnAsOne) {
    table = tableOf({{1, "rem", "##EOL"}, {2, "##ID"}, {0, "##WHITESPACE"}, {0, "##EOL"}});
    expectRows({
        {"", "remark x", {{2, "remark"}, {2, "x"}}},
        {"", "rem ark", {{1, "rem ark"}}},
    });
    table = tableOf({{1, "rem", "##EOL"}, {2, "##XMLID"}, {0, "##EOL"}});
    expectRows({{"XML names do not count", "remark-x", {{1, "remark-x"}}}});
}

TEST_F(Scanning, ADelimitedSymbolWithTheIdZeroIsSkipped) {
    table = tableOf({{0, "(*", "*)"}, {1, "##ID"}, {0, "##EOL"}});
    expectRows({{"", "a(* \n *)b", {{1, "a"}, {1, "b", ScanNewLine, 2}}}});
    ASSERT_EQ(open("a(* b"), ScanClean);
    EXPECT_EQ(next(), (Scanned{Eof, "\\x1A", ScanOpenDelimited, 1}));
    EXPECT_EQ(next(), (Scanned{Eof, "\\x1A", ScanClean, 1}));
}

// ---- strings ----

TEST_F(Scanning, Strings) {
    expectRows({
        {"single", "'a b'c", {{SingleString, "'a b'"}, {Id, "c"}}},
        {"empty", "''", {{SingleString, "''"}}},
        {"doubled quotes stay",
         "'a''b' '''' \"a\"\"b\"",
         {{SingleString, "'a''b'"}, {SingleString, "''''"}, {DoubleString, "\"a\"\"b\""}}},
        {"the other quote", "'\"'", {{SingleString, "'\"'"}}},
        {"tabs and high bytes", "'\t\xFF'", {{SingleString, "'\t\xFF'"}}},
        {"open at the end of the line",
         "'ab\nc",
         {{SingleString, "'ab'", ScanOpenString}, {Id, "c", ScanNewLine, 2}}},
        {"a quote doubled by the end", "'ab''\n", {{SingleString, "'ab'''", ScanOpenString}}},
        {"byte 26", "'ab\x1A'", {{SingleString, "'ab'", ScanOpenString}}},
        {"a control byte ends it", "'a\x01.", {{SingleString, "'a'"}, {Unknown, "\\x01"}, {Dot, "."}}},
        {"over lines", "\"a\n\nb\" c", {{DoubleString, "\"a\n\nb\"", ScanNewLine}, {Id, "c", ScanClean, 3}}},
        {"over lines, open", "\"a\n", {{DoubleString, "\"a\n\"", ScanOpenString}}},
        {"over lines, a control byte",
         "\"a\n\x01",
         {{DoubleString, "\"a\n\"", ScanNewLine}, {Unknown, "\\x01", ScanClean, 2}}},
    });
}

TEST_F(Scanning, StringsOverLinesWinAndStringsWithoutTheirClassAreUnknown) {
    table = tableOf({{1, "##DQSTR"}, {2, "##MLDQSTR"}, {0, "##EOL"}});
    expectRows({{"both", "\"a\nb\"", {{2, "\"a\nb\"", ScanNewLine}}},
                {"neither", "'a''b'", {{Unknown, "'a''b'"}}},
                {"neither, open", "'a\n", {{Unknown, "'a'", ScanOpenString}}}});
    table = tableOf({{1, "##MLSQSTR"}, {2, "##DQSTR"}, {0, "##EOL"}});
    expectRows({{"", "'a\nb'\"c\"", {{1, "'a\nb'", ScanNewLine}, {2, "\"c\"", ScanClean, 2}}}});
}

TEST_F(Scanning, AQuoteThatIsAKeyBeginsNoString) {
    table = tableOf({{1, "'"}, {2, "##SQSTR"}, {3, "##ID"}, {0, "##EOL"}});
    expectRows({{"", "'a'", {{1, "'"}, {3, "a"}, {1, "'"}}}});
}

// ---- blanks, line ends and other bytes ----

TEST_F(Scanning, BlanksAndLineEndsAreSymbolsWhereTheTableSaysSo) {
    table = tableOf({{1, "##WHITESPACE"}, {2, "##EOL"}});
    expectRows({{"",
                 " \t\n\n ",
                 {{1, " \t"},
                  {2, "\\n", ScanNewLine, 1},
                  {2, "\\n", ScanNewLine, 2},
                  {1, " ", ScanClean, 3},
                  {2, "\\n", ScanClean, 3}}}});
    table = tableOf({{1, "##ID"}});
    expectRows({{"", "a b\n", {{1, "a"}, {Unknown, " "}, {1, "b"}, {Unknown, "\\n"}}}});
}

TEST_F(Scanning, BothLineEndsReadAlike) {
    const ScannedList two = {{Id, "a"}, {Id, "b", ScanNewLine, 2}};
    expectRows({
        {"LF", "a\nb\n", two},
        {"CR LF", "a\r\nb\r\n", two},
        {"mixed, the last without", "a\r\nb", two},
        {"a CR at the end of the file", "a\nb\r", two},
        {"one CR only", "a\r\r\nb", {{Id, "a"}, {Unknown, "\\x0D"}, {Id, "b", ScanNewLine, 2}}},
        {"a CR inside", "a\rb", {{Id, "a"}, {Unknown, "\\x0D"}, {Id, "b"}}},
        {"only line ends", "\n\r\n\n", {}},
        {"LF CR", "a\n\rb", {{Id, "a"}, {Unknown, "\\x0D", ScanNewLine, 2}, {Id, "b", ScanClean, 2}}},
    });
}

TEST_F(Scanning, ControlBytesAreShownAndHighBytesTakenOneByOne) {
    expectRows({
        {"", std::string("\0\x1F\x7F", 3), {{Unknown, "\\x00"}, {Unknown, "\\x1F"}, {Unknown, "\\x7F"}}},
        {"",
         "\x80\xC3\xFF"
         "a",
         {{Unknown, "\x80"}, {Unknown, "\xC3"}, {Unknown, "\xFF"}, {Id, "a"}}},
        {"", "~@", {{Unknown, "~"}, {Unknown, "@"}}},
    });
    for (int c = 128; c < 256; ++c) {
        const std::string byte(1, static_cast<char>(c));
        EXPECT_EQ(scan("a" + byte), (ScannedList{{Id, "a"}, {Unknown, byte}})) << c;
    }
}

TEST_F(Scanning, Byte26EndsTheFileWhereverItStands) {
    ASSERT_EQ(open("a\x1A"
                   "b\nc"),
              ScanClean);
    EXPECT_EQ(ScannerSymbol(), Id);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(next(), (Scanned{Eof, "\\x1A"}));
    EXPECT_EQ(ScannerSkipChar(), ScanClean);
    EXPECT_EQ(ScannerPosition(), 1);
    EXPECT_EQ(ScannerChar(), 26);
    EXPECT_EQ(ScannerExtraChar(), 'b');
    EXPECT_EQ(ScannerExtraChar2(), 0);
}

TEST_F(Scanning, AnEmptyFileIsAtItsEndAtOnce) {
    EXPECT_EQ(current(open("")), (Scanned{Eof, "\\x1A", ScanClean, 0}));
    EXPECT_EQ(ScannerLine(), "\x1A");
    EXPECT_EQ(ScannerLineNumber(), 0);
    EXPECT_EQ(ScannerInputFilename(), file);
    EXPECT_EQ(next(), (Scanned{Eof, "\\x1A", ScanClean, 0}));
}

TEST_F(Scanning, AtTheEndOfTheFileTheLineIsTheMarkAlone) {
    ASSERT_EQ(open("a\nb"), ScanClean);
    EXPECT_EQ(ScannerLine(), "a\n");
    next();
    EXPECT_EQ(ScannerLine(), "b\n");
    EXPECT_EQ(ScannerPosition(), 1);
    EXPECT_EQ(next(), (Scanned{Eof, "\\x1A", ScanClean, 2}));
    EXPECT_EQ(ScannerLine(), "\x1A");
    EXPECT_EQ(ScannerPosition(), 0);
    EXPECT_EQ(ScannerLineNumber(), 2);
}

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
