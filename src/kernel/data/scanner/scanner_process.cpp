// SPDX-License-Identifier: Apache-2.0
//
// The operations on the one scanner of the process.
#include "kernel/data/scanner/scanner.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

// Stands ready from the start, and never ends: a program may end with a file open.
union Process {
    constexpr Process() : scanner() {}
    ~Process() {}
    Scanner scanner;
};
Process process;

Scanner& scanner() {
    return process.scanner;
}

void copyCut(std::string_view text, char* buffer, std::int32_t size) {
    if (buffer == nullptr || size < 1) return;
    const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size - 1));
    if (count != 0) std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
}

}  // namespace

ScanStatus ScannerOpen(const std::string& filename, const SymbolTable* table, bool ignoreCase) {
    return scanner().open(filename, table, ignoreCase);
}
void ScannerClose() {
    scanner().close();
}
ScanStatus ScannerNext(const SymbolTable* table) {
    return scanner().next(table);
}
ScanStatus ScannerSkipChar() {
    return scanner().skipChar();
}
void ScannerSkipBytes(std::int32_t count) {
    scanner().skipBytes(count);
}

std::int32_t ScannerPosition() {
    return scanner().position();
}
std::int32_t ScannerLineNumber() {
    return scanner().lineNumber();
}
std::int32_t ScannerSymbol() {
    return scanner().symbol();
}
std::int32_t ScannerSymbolLine() {
    return scanner().symbolLine();
}
std::string_view ScannerInputFilename() {
    return scanner().inputFilename();
}
std::int64_t ScannerBytesRead() {
    return scanner().bytesRead();
}
os::FileError ScannerFileError() {
    return scanner().fileError();
}
std::string_view ScannerSymbolStr() {
    return scanner().symbolStr();
}
std::string_view ScannerPreviousSymbolStr() {
    return scanner().previousSymbolStr();
}
std::string_view ScannerLine() {
    return scanner().line();
}
std::string_view ScannerRemainder() {
    return scanner().remainder();
}
void ScannerLineStr(char* buffer, std::int32_t size) {
    copyCut(scanner().line(), buffer, size);
}
void ScannerLineRemainder(char* buffer, std::int32_t size) {
    copyCut(scanner().remainder(), buffer, size);
}
unsigned char ScannerChar() {
    return scanner().character();
}
unsigned char ScannerExtraChar() {
    return scanner().extraChar();
}
unsigned char ScannerExtraChar2() {
    return scanner().extraChar2();
}
void ScannerDump(char* buffer, std::int32_t size) {
    scanner().dump(buffer, size);
}

void ScannerReportStatus(ScanStatus status, ErrorRecord& record) {
    scanner().reportStatus(status, record);
}
void ScannerCheckSymbol(const SymbolTable* table, std::int32_t symbol, const SetDescriptor* allowed,
                        ErrorRecord& record) {
    scanner().checkSymbol(table, symbol, allowed, record);
}

}  // namespace tarn
