// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/scanner/scanner.h"

#include "kernel/data/scanner/scanner_bytes.h"
#include "kernel/data/scanner/scanner_state_internal.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarn {

scanning::Scanner scanning::s;

namespace {

using namespace scanning;

constexpr std::size_t maxFilename = 255;

// Unknown symbols, blanks and line ends never become the previous symbol, and a delimited symbol pushes none
// there.
void store() {
    const bool significant = s.symbol != SymbolUnknown && s.symbol != s.classIds[ClassWhitespace] &&
                             s.symbol != s.classIds[ClassEol];
    if (significant && s.terminator.empty()) std::swap(s.previousText, s.symbolText);
    std::swap(s.symbolText, s.text);
    s.symbol = s.found;
}

void clear() {
    s.lines.close();
    s.at = s.lines.begin();
    s.filename.clear();
    s.ignoreCase = false;
    s.classIds = noClasses;
    s.matcher.forget();
    s.symbol = s.symbolLine = s.openLine = 0;
    for (Text& text : s.texts) text.clear();
}

void cacheClasses(const SymbolTable* table) {
    for (const SymbolClass c : {ClassId, ClassXmlId, ClassMlSqStr, ClassMlDqStr, ClassWhitespace, ClassEol})
        s.classIds[c] = symbolClassId(table, c);
}

void copyCut(std::string_view text, char* buffer, std::int32_t size) {
    if (buffer == nullptr || size < 1) return;
    const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size - 1));
    std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
}

// The byte of the line that many bytes on; 0 behind the line.
unsigned char byteAhead(std::ptrdiff_t count) {
    return s.lines.end() - s.at > count ? s.at[count] : '\0';
}

}  // namespace

ScanStatus ScannerOpen(const std::string& filename, const SymbolTable* table, bool ignoreCase) {
    if (!s.filename.empty() || filename.empty() || table == nullptr || table->count < 1) return ScanClean;
    clear();
    if (s.lines.open(filename) != os::FileError::None) return ScanClean;
    cacheClasses(table);
    s.filename = filename.substr(0, maxFilename);
    s.ignoreCase = ignoreCase;
    nextLine();
    const bool cut = s.lines.cut();
    const ScanStatus status = ScannerNext(table);
    return status == ScanClean && cut ? ScanLineTooLong : status;
}

void ScannerClose() {
    clear();
}

ScanStatus ScannerNext(const SymbolTable* table) {
    const std::int32_t line = s.lines.number();
    s.table = table;
    s.status = ScanClean;
    s.matcher.use(table, s.ignoreCase);
    do pass();
    while (s.found == 0);
    collect();
    if (s.lines.number() != line) note(ScanNewLine);
    store();
    return s.status;
}

ScanStatus ScannerSkipChar() {
    const std::int32_t line = s.lines.number();
    const unsigned char c = ScannerChar();
    s.status = ScanClean;
    if (c == LineEnd) {
        nextLine();
        if (s.lines.cut()) note(ScanLineTooLong);
    } else if (c != EndOfFileMark && !s.filename.empty()) {
        ++s.at;
    }
    if (s.lines.number() != line) note(ScanNewLine);
    s.symbol = 0;
    s.symbolText->clear();
    return s.status;
}

void ScannerSkipBytes(std::int32_t count) {
    const std::ptrdiff_t left = s.lines.end() - s.at - 1;  // the end stays
    if (left > 0 && count > 0) s.at += std::min<std::ptrdiff_t>(left, count);
    s.symbol = 0;
    s.symbolText->clear();
}

std::int32_t ScannerPosition() {
    return static_cast<std::int32_t>(s.at - s.lines.begin());
}
std::int32_t ScannerLineNumber() {
    return s.lines.number();
}
std::int32_t ScannerSymbol() {
    return s.symbol;
}
std::int32_t ScannerSymbolLine() {
    return s.symbolLine;
}
std::string_view ScannerInputFilename() {
    return s.filename;
}
std::int64_t ScannerBytesRead() {
    return s.lines.bytesRead();
}
os::FileError ScannerFileError() {
    return s.lines.error();
}
std::string_view ScannerSymbolStr() {
    return s.symbolText->view();
}
std::string_view ScannerPreviousSymbolStr() {
    return s.previousText->view();
}
std::string_view ScannerLine() {
    return viewOf(s.lines.begin(), s.lines.end());
}
std::string_view ScannerRemainder() {
    return viewOf(s.at, s.lines.end());
}
void ScannerLineStr(char* buffer, std::int32_t size) {
    copyCut(ScannerLine(), buffer, size);
}
void ScannerLineRemainder(char* buffer, std::int32_t size) {
    copyCut(ScannerRemainder(), buffer, size);
}
unsigned char ScannerChar() {
    return byteAhead(0);
}
unsigned char ScannerExtraChar() {
    return byteAhead(1);
}
unsigned char ScannerExtraChar2() {
    for (const unsigned char c : {ScannerChar(), ScannerExtraChar()})
        if (c == '\0' || c == LineEnd || c == EndOfFileMark) return '\0';
    return byteAhead(2);
}

}  // namespace tarn
