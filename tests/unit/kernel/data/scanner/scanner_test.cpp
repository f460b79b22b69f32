// SPDX-License-Identifier: Apache-2.0
//
// What the scanner takes for a symbol: numbers, names, delimited symbols, strings, blanks.
#include "unit/kernel/scanning_fixture.h"

#include "kernel/data/scanner/scanner.h"
#include "kernel/run/errors.h"
#include "unit/kernel/scanner_fixture.h"

using namespace tarn;

namespace {

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

}  // namespace
