// SPDX-License-Identifier: Apache-2.0
//
// A small language, its symbols, and texts that are scanned by it.
#pragma once

#include "kernel/data/scanner/scanner.h"
#include "kernel/run/errors.h"
#include "unit/kernel/scanner_fixture.h"

namespace tarn {

class Scanning : public ScannerFixture {
protected:
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
    static constexpr std::int32_t Unknown = SymbolUnknown, Eof = SymbolEndOfFile;

    static inline const Entries language = {
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

}  // namespace tarn
