// SPDX-License-Identifier: Apache-2.0
//
// The table-driven scanner: turns a text file into symbols. The caller describes its language in a
// SymbolTable: literal symbols (the longest match wins), classes (keys that begin with "##": identifiers,
// strings, numbers, white space, line ends) and delimited symbols (from a key to its terminator, such as
// comments).
//
// The state is one for the process, so only one file is scanned at a time; a second ScannerOpen does nothing
// until ScannerClose. Scanning sets no error: it reports through the status and the symbols -1 and -2.
//
// Classes of bytes: everything from 128 on is in none of the named ones and is not a control character (those
// are below 32, and 127). 10 ends a line, 26 marks the end of the file.
//
// Cost: linear in the file, which is read in blocks; nothing is allocated for a symbol.
#pragma once

#include "kernel/values/values.h"
#include "os/files.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// ---- the table ----

inline constexpr std::int32_t MaxSymbols = 255, MaxSymbolKey = 40;

struct SymbolEntry {
    char key[MaxSymbolKey + 1];         // as it stands in the input, or the name of a class
    char terminator[MaxSymbolKey + 1];  // not empty: a delimited symbol; "##EOL": up to the end of the line
    std::int32_t id;                    // what the scanner reports; 0: the symbol is skipped
};

// Sorted by key, in the order of bytes. All zero is the empty table. With IgnoreCase the keys must stand in
// upper case. The scanner keeps an index of the table in use, so between two scans a table changes only
// through SymbolAdd and SymbolRemove, which see to that.
struct SymbolTable {
    std::int32_t count;
    std::array<SymbolEntry, MaxSymbols> entries;
};

// False, with nothing changed, for a negative id, a key that is empty, begins or ends with a blank or holds
// anything outside 32 to 126, a null table, key or terminator, and a full table. Key and terminator are cut
// to 40 characters; what begins with "##" is upper-cased. An equal key is replaced.
bool SymbolAdd(SymbolTable* table, std::int32_t id, const char* key, const char* terminator);
void SymbolRemove(SymbolTable* table, std::string_view key);
// The id, or -1.
std::int32_t SymbolLookup(const SymbolTable* table, bool ignoreCase, std::string_view key);
// The number of the entry, from 1, or -1.
std::int32_t SymbolIndex(const SymbolTable* table, std::string_view key, bool ignoreCase);
bool SymbolHasTerminator(const SymbolTable* table, std::string_view key, bool ignoreCase);
bool SymbolIdHasTerminator(const SymbolTable* table, std::int32_t id);
bool SymbolIdIsClass(const SymbolTable* table, std::int32_t id);
bool SymbolIsClassName(std::string_view key, bool ignoreCase);
std::string_view SymbolClassLabel(std::string_view key);  // "identifier", "string", ...; "" for no class
// What messages call a symbol; cut to `size` - 1 characters. The length that was written.
std::int32_t SymbolDisplayName(const SymbolTable* table, std::int32_t id, char* buffer, std::int32_t size);

// ---- the scanner ----

inline constexpr std::int32_t MaxScannerLine = 32768;  // bytes of a line, with its end

enum ScanStatus : std::int32_t {
    ScanClean,
    ScanNewLine,        // the scan passed into another line
    ScanLineTooLong,    // a line was cut
    ScanOpenString,     // a string was not terminated
    ScanOpenDelimited,  // the file ended in a delimited symbol
};
inline constexpr std::int32_t SymbolEndOfFile = -1, SymbolUnknown = -2;

// Nothing, with ScanClean, when a file is open, `filename` is empty or the table has no entry. Otherwise
// reads the first line and scans the first symbol. A file that cannot be opened, or is no regular one (a
// device need never end a line), leaves the scanner closed: the next scan gives the end of the file.
ScanStatus ScannerOpen(const std::string& filename, const SymbolTable* table, bool ignoreCase);
void ScannerClose();
ScanStatus ScannerNext(const SymbolTable* table);
// Moves over one byte without scanning; the symbol becomes 0 and its text empty.
ScanStatus ScannerSkipChar();
// The same for `count` bytes of the line at once, none of them its end; fewer where the line has fewer.
void ScannerSkipBytes(std::int32_t count);

std::int32_t ScannerPosition();  // index of the next unread byte of the line, from 0
std::int32_t ScannerLineNumber();
std::int32_t ScannerSymbol();
std::int32_t ScannerSymbolLine();  // where the symbol began
std::string_view ScannerInputFilename();
// Bytes of the file that were read so far: how far the reading is.
std::int64_t ScannerBytesRead();
// What kept the file from being opened or read to its end, which looks like the end of the file; None while
// all is well. Kept after ScannerClose, until the next ScannerOpen that clears the state.
os::FileError ScannerFileError();
// Valid until the scanner moves.
std::string_view ScannerSymbolStr();
std::string_view ScannerPreviousSymbolStr();
std::string_view ScannerLine();       // with its end; byte 26 alone at the end of the file
std::string_view ScannerRemainder();  // the line from the position on
// Copies of the last two, cut to `size` - 1.
void ScannerLineStr(char* buffer, std::int32_t size);
void ScannerLineRemainder(char* buffer, std::int32_t size);
unsigned char ScannerChar();
unsigned char ScannerExtraChar();
unsigned char ScannerExtraChar2();
// The state as eight lines.
void ScannerDump(char* buffer, std::int32_t size);

// ---- what a read found ----

// The first failure of a read; code 0 while all is well.
struct ErrorRecord {
    std::int32_t code = 0, line = 0, position = 0;
    std::string message;  // at most 1024 characters
};
// Keeps what is there; a code of 0 or an empty message changes nothing.
void ReportError(ErrorRecord& record, std::int32_t code, std::int32_t line, std::int32_t position,
                 std::string_view message);
void ScannerReportStatus(ScanStatus status, ErrorRecord& record);
// 672 for a symbol whose id is not in the set, and for every symbol when it is no set.
void ScannerCheckSymbol(const SymbolTable* table, std::int32_t symbol, const SetDescriptor* allowed,
                        ErrorRecord& record);

}  // namespace tarn
