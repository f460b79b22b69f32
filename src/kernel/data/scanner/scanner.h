// SPDX-License-Identifier: Apache-2.0
//
// The table-driven scanner: turns a text file into symbols. The caller describes its language in a
// SymbolTable: literal symbols (the longest match wins), classes (keys that begin with "##": identifiers,
// strings, numbers, white space, line ends) and delimited symbols (from a key to its terminator, such as
// comments).
//
// A Scanner scans one file; any number of them may be at work, one inside another, and they know nothing of
// each other. The process has one more, which the operations named Scanner... move. Scanning sets no error: it
// reports through the status and the symbols -1 and -2.
//
// Classes of bytes: everything from 128 on is in none of the named ones and is not a control character (those
// are below 32, and 127). 10 ends a line, 26 marks the end of the file.
//
// Cost: linear in the file, which is read in blocks; nothing is allocated for a symbol. A scanner takes some
// 200 KiB when it is opened, and keeps them until its end.
#pragma once

#include "kernel/data/scanner/scanner_state.h"
#include "kernel/values/values.h"
#include "os/files.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
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

inline constexpr std::int32_t SymbolEndOfFile = -1, SymbolUnknown = -2;

// The first failure of a read; code 0 while all is well.
struct ErrorRecord {
    std::int32_t code = 0, line = 0, position = 0;
    std::string message;  // at most 1024 characters
};
// Keeps what is there; a code of 0 or an empty message changes nothing.
void ReportError(ErrorRecord& record, std::int32_t code, std::int32_t line, std::int32_t position,
                 std::string_view message);

class Scanner {
public:
    constexpr Scanner() noexcept = default;
    ~Scanner() = default;
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    // Nothing, with ScanClean, when a file is open, `filename` is empty or the table has no entry. Otherwise
    // reads the first line and scans the first symbol. A file that cannot be opened, or is no regular one (a
    // device need never end a line), and a lack of memory leave the scanner closed: the next scan gives the
    // end of the file. The table must be there whenever the scanner moves. `longestLine`: bytes of a line with its
    // end; texts of symbols stay as they are limited.
    ScanStatus open(const std::string& filename, const SymbolTable* table, bool ignoreCase,
                    std::int32_t longestLine = MaxScannerLine);
    void close();
    [[nodiscard]] bool isOpen() const { return !s_.filename.empty(); }

    ScanStatus next(const SymbolTable* table);
    // Moves over one byte without scanning; the symbol becomes 0 and its text empty.
    ScanStatus skipChar();
    // The same for `count` bytes of the line at once, none of them its end; fewer where the line has fewer. In line: who
    // reads text past the symbols calls it for every piece.
    void skipBytes(std::int32_t count) {
        const std::ptrdiff_t left = s_.end - s_.at - 1;  // the end stays
        if (left > 0 && count > 0) s_.at += left < count ? left : count;
        s_.symbol = 0;
        if (s_.symbolText != nullptr) s_.symbolText->clear();
    }

    // Index of the next unread byte of the line, from 0.
    [[nodiscard]] std::int32_t position() const { return static_cast<std::int32_t>(s_.at - s_.line); }
    [[nodiscard]] std::int32_t lineNumber() const { return s_.lineNumber; }
    [[nodiscard]] std::int32_t symbol() const { return s_.symbol; }
    [[nodiscard]] std::int32_t symbolLine() const { return s_.symbolLine; }  // where the symbol began
    [[nodiscard]] std::string_view inputFilename() const { return s_.filename; }
    // Bytes of the file that were read so far: how far the reading is.
    [[nodiscard]] std::int64_t bytesRead() const;
    // What kept the file from being opened or read to its end, which looks like the end of the file; None
    // while all is well. Kept after `close`, until the next `open` that clears the state.
    [[nodiscard]] os::FileError fileError() const;

    // Valid until the scanner moves.
    [[nodiscard]] std::string_view symbolStr() const { return ScanState::viewOf(s_.symbolText); }
    [[nodiscard]] std::string_view previousSymbolStr() const { return ScanState::viewOf(s_.previousText); }
    // With its end; byte 26 alone at the end of the file.
    [[nodiscard]] std::string_view line() const { return ScanState::viewOf(s_.line, s_.end); }
    // The line from the position on.
    [[nodiscard]] std::string_view remainder() const { return ScanState::viewOf(s_.at, s_.end); }

    [[nodiscard]] unsigned char character() const { return s_.byteAhead(0); }  // at the position
    [[nodiscard]] unsigned char extraChar() const { return s_.byteAhead(1); }
    [[nodiscard]] unsigned char extraChar2() const;
    // The state as eight lines.
    void dump(char* buffer, std::int32_t size) const;

    // With the place of the scanner.
    void reportStatus(ScanStatus status, ErrorRecord& record) const;
    // 672 for a symbol whose id is not in the set, and for every symbol when it is no set.
    void checkSymbol(const SymbolTable* table, std::int32_t symbol, const SetDescriptor* allowed,
                     ErrorRecord& record) const;

private:
    bool prepare();
    void clear();
    void reportHere(ErrorRecord& record, std::int32_t code, std::string_view message) const;

    struct EndWork {
        void operator()(ScannerWork* work) const;
    };

    ScanState s_;
    std::unique_ptr<ScannerWork, EndWork> work_;  // from the first opening on
    bool lacksMemory_ = false;
};

// ---- the scanner of the process ----

// As the members above.
ScanStatus ScannerOpen(const std::string& filename, const SymbolTable* table, bool ignoreCase);
void ScannerClose();
ScanStatus ScannerNext(const SymbolTable* table);
ScanStatus ScannerSkipChar();
void ScannerSkipBytes(std::int32_t count);

std::int32_t ScannerPosition();
std::int32_t ScannerLineNumber();
std::int32_t ScannerSymbol();
std::int32_t ScannerSymbolLine();
std::string_view ScannerInputFilename();
std::int64_t ScannerBytesRead();
os::FileError ScannerFileError();
std::string_view ScannerSymbolStr();
std::string_view ScannerPreviousSymbolStr();
std::string_view ScannerLine();
std::string_view ScannerRemainder();
// Copies of the last two, cut to `size` - 1.
void ScannerLineStr(char* buffer, std::int32_t size);
void ScannerLineRemainder(char* buffer, std::int32_t size);
unsigned char ScannerChar();
unsigned char ScannerExtraChar();
unsigned char ScannerExtraChar2();
void ScannerDump(char* buffer, std::int32_t size);

void ScannerReportStatus(ScanStatus status, ErrorRecord& record);
void ScannerCheckSymbol(const SymbolTable* table, std::int32_t symbol, const SetDescriptor* allowed,
                        ErrorRecord& record);

}  // namespace tarn
