// SPDX-License-Identifier: Apache-2.0
//
// What a scanner knows of its place, of the symbol that was scanned last and of the scan that goes on. The
// modules of the scanner share it; all others ask the Scanner (scanner.h).
#pragma once

#include "kernel/data/scanner/scanner_text.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

struct SymbolTable;
struct ScannerWork;

enum ScanStatus : std::int32_t {
    ScanClean,
    ScanNewLine,        // the scan passed into another line
    ScanLineTooLong,    // a line was cut
    ScanOpenString,     // a string was not terminated
    ScanOpenDelimited,  // the file ended in a delimited symbol
};

struct ScanState {
    std::string filename;  // empty: closed
    bool ignoreCase = false;

    const unsigned char *line = nullptr, *end = nullptr;  // the line, with its end
    const unsigned char* at = nullptr;                    // the next unread byte
    std::int32_t lineNumber = 0;
    std::int32_t symbol = 0, symbolLine = 0;
    std::int32_t openLine = 0;  // where the last delimited symbol began that the file ended in
    ScannerText *symbolText = nullptr, *previousText = nullptr;  // null before the first opening

    // Of the scan that goes on. Its text is what stands in `text`, and then the line between `from` and `at`.
    const SymbolTable* table = nullptr;
    ScanStatus status = ScanClean;
    std::int32_t found = 0;
    ScannerText* text = nullptr;
    const unsigned char* from = nullptr;
    std::string_view terminator;  // of a delimited symbol, else empty

    static std::string_view viewOf(const unsigned char* begin, const unsigned char* behind) {
        return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(behind - begin)};
    }
    static std::string_view viewOf(const ScannerText* text) {
        return text != nullptr ? text->view() : std::string_view();
    }
    // The byte of the line that many bytes on; 0 behind the line.
    [[nodiscard]] unsigned char byteAhead(std::ptrdiff_t count) const {
        return end - at > count ? at[count] : '\0';
    }
    // The first finding of a scan stays.
    void note(ScanStatus finding) {
        if (status == ScanClean) status = finding;
    }
    void collect() {
        text->appendRun(from, at);
        from = at;
    }
};

}  // namespace tarn
