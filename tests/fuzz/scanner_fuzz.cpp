// SPDX-License-Identifier: Apache-2.0
// Any table and any bytes: every scan gives a symbol with a text, stays in its line and goes on. A second
// scanner of the same file, moved in between, finds the same; a third one that scans all of it in the middle
// changes nothing; and one that is used again finds it once more.
//
// An input is the lines of a table ("key", or "key", a tab and a terminator; the ids are 0 to 5 in turn), a
// form feed, and the file. A first line "i" ignores case.
#include "kernel/data/scanner/scanner.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <unistd.h>

namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

tarn::SymbolTable readTable(const std::string& text) {
    tarn::SymbolTable table{};
    std::int32_t id = 0;
    for (std::size_t from = 0; from < text.size(); ++id) {
        const std::size_t end = std::min(text.find('\n', from), text.size());
        const std::string line = text.substr(from, end - from);
        const std::size_t tab = std::min(line.find('\t'), line.size());
        tarn::SymbolAdd(&table, id % 6, line.substr(0, tab).c_str(),
                        line.substr(std::min(tab + 1, line.size())).c_str());
        from = end + 1;
    }
    return table;
}

bool write(const std::string& path, const std::string& text) {
    std::FILE* const out = std::fopen(path.c_str(), "wb");
    if (out == nullptr) return false;
    std::fwrite(text.data(), 1, text.size(), out);
    return std::fclose(out) == 0;
}

void check(const tarn::Scanner& beside) {
    const std::string_view line = tarn::ScannerLine();
    require(beside.symbol() == tarn::ScannerSymbol() && beside.symbolStr() == tarn::ScannerSymbolStr());
    require(beside.line() == line && beside.position() == tarn::ScannerPosition());
    require(beside.previousSymbolStr() == tarn::ScannerPreviousSymbolStr());
    require(tarn::ScannerSymbol() != 0 && !tarn::ScannerSymbolStr().empty());
    require(tarn::ScannerSymbolStr().size() <= tarn::MaxScannerLine);
    require(!line.empty() && line.size() <= tarn::MaxScannerLine);
    require(line.back() == '\n' || line == "\x1A");
    require(static_cast<std::size_t>(tarn::ScannerPosition()) < line.size());
    char dump[300];
    tarn::ScannerDump(dump, sizeof dump);
    tarn::ErrorRecord record;
    tarn::ScannerReportStatus(tarn::ScanOpenDelimited, record);
}

// From its first symbol to its last: a sum of what it found.
std::size_t scanAll(tarn::Scanner& scanner, const std::string& file, const tarn::SymbolTable& table,
                    bool ignoreCase) {
    std::size_t sum = 0;
    scanner.open(file, &table, ignoreCase);
    require(scanner.isOpen());
    for (; scanner.symbol() != tarn::SymbolEndOfFile; scanner.next(&table))
        sum = sum * 31 + std::hash<std::string_view>()(scanner.symbolStr()) +
              static_cast<std::size_t>(scanner.symbol() + scanner.symbolLine());
    scanner.close();
    require(!scanner.isOpen() && scanner.fileError() == tarn::os::FileError::None);
    return sum;
}

// Past some bytes of the line, never past its end.
void skip(tarn::Scanner& beside, std::int32_t count) {
    const std::int32_t before = beside.position();
    tarn::ScannerSkipBytes(count);
    beside.skipBytes(count);
    require(beside.position() >= before && beside.position() - before <= count);
    require(beside.position() == tarn::ScannerPosition() && !beside.remainder().empty());
    require(beside.symbol() == 0 && beside.symbolStr().empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string file = "/tmp/tarnwick-fuzz-scanner-" + std::to_string(getpid());
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t split = std::min(input.find('\f'), input.size());
    const tarn::SymbolTable table = readTable(input.substr(0, split));
    const std::string text = input.substr(std::min(split + 1, input.size()));
    if (table.count == 0 || !write(file, text)) return 0;
    const bool ignoreCase = input.starts_with("i\n");
    tarn::Scanner beside, again;
    const std::size_t sum = scanAll(again, file, table, ignoreCase);
    tarn::ScannerOpen(file, &table, ignoreCase);
    beside.open(file, &table, ignoreCase);
    for (std::size_t scans = 0; tarn::ScannerSymbol() != tarn::SymbolEndOfFile; ++scans) {
        require(scans <= text.size() + 1);
        check(beside);
        if (scans == 2) require(scanAll(again, file, table, ignoreCase) == sum);
        if (scans % 7 == 6) require(tarn::ScannerSkipChar() == beside.skipChar());
        if (scans % 11 == 10) skip(beside, static_cast<std::int32_t>(scans % 5));
        require(tarn::ScannerNext(&table) == beside.next(&table));
    }
    check(beside);
    tarn::ScannerClose();
    std::remove(file.c_str());
    return 0;
}
