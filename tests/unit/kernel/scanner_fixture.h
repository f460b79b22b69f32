// SPDX-License-Identifier: Apache-2.0
//
// Scans texts that stand in a file of the steered file system, and says what came out.
#pragma once

#include "kernel/data/scanner/scanner.h"
#include "support/steerable.h"
#include "unit/kernel/runtime_fixture.h"

#include <ostream>
#include <string>
#include <vector>

namespace tarn {

struct Scanned {
    std::int32_t symbol;
    std::string text;
    std::int32_t status = ScanClean;
    std::int32_t line = 1;  // where the symbol began
    bool operator==(const Scanned&) const = default;
};
using ScannedList = std::vector<Scanned>;
inline void PrintTo(const Scanned& s, std::ostream* out) {
    *out << "{" << s.symbol << ", " << ::testing::PrintToString(s.text.substr(0, 60)) << " (" << s.text.size()
         << "), status " << s.status << ", line " << s.line << "}";
}

struct Entry {
    std::int32_t id;
    const char* key;
    const char* terminator = "";
};
using Entries = std::vector<Entry>;

class ScannerFixture : public Runtime {
protected:
    static constexpr const char* file = "/data/input.txt";

    void SetUp() override {
        Runtime::SetUp();
        disk.putFolder("/data");
    }
    void TearDown() override {
        ScannerClose();
        EXPECT_EQ(disk.openHandles(), 0);
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }
    static SymbolTable tableOf(const Entries& entries) {
        SymbolTable made{};
        for (const Entry& entry : entries)
            EXPECT_TRUE(SymbolAdd(&made, entry.id, entry.key, entry.terminator));
        return made;
    }
    static Scanned current(ScanStatus status) {
        return {ScannerSymbol(), std::string(ScannerSymbolStr()), status, ScannerSymbolLine()};
    }
    ScanStatus open(const std::string& text, bool ignoreCase = false) {
        disk.put(file, text);
        return ScannerOpen(file, &table, ignoreCase);
    }
    Scanned next() { return current(ScannerNext(&table)); }
    // All symbols before the end of the file.
    ScannedList scan(const std::string& text, bool ignoreCase = false) {
        ScannedList all;
        for (Scanned s = current(open(text, ignoreCase)); s.symbol != SymbolEndOfFile; s = next()) {
            all.push_back(s);
            if (all.size() > text.size() + 1) break;
        }
        EXPECT_EQ(ScannerSymbolStr(), "\\x1A");
        ScannerClose();
        return all;
    }

    os::SteeredFiles disk;
    os::Steered inForce{disk};
    SymbolTable table{};
};

}  // namespace tarn
