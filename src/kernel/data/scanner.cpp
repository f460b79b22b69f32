// SPDX-License-Identifier: Apache-2.0
//
// A scan is a number of passes: each takes one symbol, and those with the id 0 are passed over. What a pass
// takes is decided by the next byte, in this order: numbers, the symbols of the table, names, strings, and
// the rest (blanks, line ends, the end, unknown bytes).
//
// Two facts keep the loops free of tests for the end of the line: every line ends in byte 10 or 26, and
// neither is in a class that runs are made of, nor in any key. Taking a byte only moves `at`; the text is
// copied once, when the symbol is known or the line ends.
#include "kernel/data/scanner.h"

#include "kernel/data/scanner_bytes.h"
#include "kernel/data/scanner_lines.h"
#include "kernel/data/scanner_match.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace tarn {

namespace {

constexpr std::string_view endText = "\\x1A", lineEndText = "\\n", untilLineEnd = "##EOL", classMark = "##";
constexpr std::size_t maxFilename = 255;

std::string_view viewOf(const unsigned char* from, const unsigned char* end) {
    return {reinterpret_cast<const char*>(from), static_cast<std::size_t>(end - from)};
}

// The text of a symbol; what does not fit is lost.
class Text {
public:
    [[nodiscard]] std::string_view view() const { return {bytes_, length_}; }
    void clear() { length_ = 0; }
    void append(std::string_view text) {
        text = text.substr(0, limit - length_);
        std::memcpy(bytes_ + length_, text.data(), text.size());
        length_ += text.size();
    }
    // Of a line, behind which there is slack: short runs, which are nearly all, are copied in one step.
    void appendRun(const unsigned char* from, const unsigned char* end) {
        const auto count = static_cast<std::size_t>(end - from);
        if (count > ScannerSlack || length_ + count > limit) return append(viewOf(from, end));
        std::memcpy(bytes_ + length_, from, ScannerSlack);
        length_ += count;
    }

private:
    static constexpr std::size_t limit = MaxScannerLine;
    std::size_t length_ = 0;
    char bytes_[limit + ScannerSlack];  // not cleared, for texts are static
};

constexpr std::array<std::int32_t, SymbolClassCount> noClasses = [] {
    std::array<std::int32_t, SymbolClassCount> ids{};
    ids.fill(SymbolUnknown);
    return ids;
}();

struct Scanner {
    std::string filename;  // empty: closed
    LineReader lines;
    const unsigned char* at = lines.begin();  // the next unread byte
    bool ignoreCase = false;
    std::array<std::int32_t, SymbolClassCount> classIds = noClasses;  // as they were when the file was opened
    SymbolMatcher matcher;

    std::int32_t symbol = 0, symbolLine = 0;
    Text texts[3];
    Text* symbolText = &texts[0];
    Text* previousText = &texts[1];

    // Of the scan that goes on. Its text is what stands in `text`, and then the line between `from` and `at`.
    const SymbolTable* table = nullptr;
    ScanStatus status = ScanClean;
    std::int32_t found = 0;
    Text* text = &texts[2];
    const unsigned char* from = at;
    std::string_view terminator;  // of a delimited symbol, else empty
};

Scanner s;

bool isEnabled(SymbolClass symbolClass) {
    return s.classIds[symbolClass] != SymbolUnknown;
}

// The first finding of a scan stays.
void note(ScanStatus status) {
    if (s.status == ScanClean) s.status = status;
}

// ---- the text ----

void collect() {
    s.text->appendRun(s.from, s.at);
    s.from = s.at;
}

// Behind what the text has so far.
void add(std::string_view text) {
    collect();
    s.text->append(text);
}

// In place of what the text has so far.
void replace(std::string_view text) {
    s.text->clear();
    s.text->append(text);
    s.from = s.at;
}

// What was taken of this line.
std::string_view taken() {
    return viewOf(s.from, s.at);
}
bool nothingTaken() {
    return s.from == s.at;
}
bool isTaken(ByteClass start, ByteClass part) {
    return !nothingTaken() && isByte(*s.from, start) &&
           std::all_of(s.from + 1, s.at, [=](unsigned char c) { return isByte(c, part); });
}
bool isIdentifier() {
    return isTaken(ByteIdStart, ByteIdPart);
}
bool isXmlName() {
    return isTaken(ByteXmlStart, ByteXmlPart);
}

// ---- taking ----

void takeWhile(ByteClass wanted) {
    const unsigned char* at = s.at;
    while (isByte(*at, wanted)) ++at;
    s.at = at;
}

// Takes what is neither `stop` nor a control byte.
void takeUntil(unsigned char stop) {
    const unsigned char* at = s.at;
    while (*at != stop && !isByte(*at, ByteControl)) ++at;
    s.at = at;
}

void nextLine() {
    s.lines.next();
    s.at = s.from = s.lines.begin();
}

// Takes the line end and goes on with the next line.
void takeLineEnd() {
    ++s.at;
    collect();
    nextLine();
    if (s.lines.cut()) note(ScanLineTooLong);
}

// ---- numbers ----

SymbolClass takeHexadecimal() {
    s.at += 2;
    if (!isByte(*s.at, ByteHexDigit)) return ClassNone;
    takeWhile(ByteHexDigit);
    if (*s.at == 'L') ++s.at;
    return ClassHex;
}

SymbolClass takeNumber() {
    SymbolClass found = ClassInteger;
    takeWhile(ByteDigit);
    if (*s.at == '.' && isByte(s.at[1], ByteDigit)) {
        ++s.at;
        takeWhile(ByteDigit);
        found = ClassFixed;
    }
    if (*s.at != 'E' && *s.at != 'e') return found;
    const bool sign = s.at[1] == '+' || s.at[1] == '-';
    if (!sign && !isByte(s.at[1], ByteDigit)) return found;
    s.at += sign ? 2 : 1;
    if (!isByte(*s.at, ByteDigit)) return ClassNone;
    takeWhile(ByteDigit);
    return ClassReal;
}

bool number() {
    const unsigned char c = *s.at, after = s.at[1];
    if (c == '0' && (after == 'x' || after == 'X')) {
        s.found = s.matcher.classId(takeHexadecimal());
    } else if (isByte(c, ByteDigit) || (c == '.' && isByte(after, ByteDigit))) {
        s.found = s.matcher.classId(takeNumber());
    } else {
        return false;
    }
    return true;
}

// ---- symbols of the table, and names ----

bool isClassName(std::string_view text) {
    return text.starts_with(classMark) && SymbolIsClassName(text, s.ignoreCase);
}

// A keyword that goes on as a name is a name, and the name of a class is not the class.
void ordinarySymbol(std::int32_t id) {
    if (isByte(*s.at, ByteIdPart) && isEnabled(ClassId) && isIdentifier()) {
        takeWhile(ByteIdPart);
        s.found = s.classIds[ClassId];
    } else if (isByte(*s.at, ByteXmlPart) && isEnabled(ClassXmlId) && isXmlName()) {
        takeWhile(ByteXmlPart);
        s.found = s.classIds[ClassXmlId];
    } else {
        s.found = isClassName(taken()) ? SymbolUnknown : id;
    }
}

bool standsHere(std::string_view text) {
    return static_cast<std::size_t>(s.lines.end() - s.at) > text.size() &&
           std::memcmp(s.at, text.data(), text.size()) == 0;
}

// From behind the key up to the terminator. Blanks and control bytes count before the terminator does, so one
// that begins with them is never met.
void takeDelimited() {
    const bool lineOnly = s.terminator == untilLineEnd;
    const auto first = static_cast<unsigned char>(s.terminator[0]);
    const unsigned char stop = lineOnly || isByte(first, ByteBlank) ? LineEnd : first;
    for (;;) {
        takeUntil(stop);
        if (*s.at == LineEnd) {
            if (lineOnly) return;
            takeLineEnd();
        } else if (*s.at == EndOfFileMark) {
            replace(endText);
            return note(ScanOpenDelimited);
        } else if (isByte(*s.at, ByteControl)) {
            if (!lineOnly) add(s.terminator);
            return;
        } else if (standsHere(s.terminator)) {
            s.at += s.terminator.size();
            return;
        } else {
            ++s.at;
        }
    }
}

bool tableSymbol() {
    const SymbolMatch match = s.matcher.longest(s.at);
    s.at += match.length;
    if (!match.found) return false;
    if (match.terminator[0] == '\0') {
        ordinarySymbol(match.id);
        return true;
    }
    if (isByte(*s.at, ByteIdPart) && isEnabled(ClassId) && isIdentifier()) return false;
    s.terminator = match.terminator;
    s.found = SymbolLookup(s.table, s.ignoreCase, taken());
    takeDelimited();
    return true;
}

// A name, which may have begun as a key.
bool name() {
    const bool begun = !nothingTaken();
    const bool identifier = begun ? isIdentifier() : isByte(*s.at, ByteIdStart);
    const bool xmlName = begun ? isXmlName() : isByte(*s.at, ByteXmlStart);
    if (!identifier && !xmlName) return false;
    if (identifier && isEnabled(ClassId)) {
        takeWhile(ByteIdPart);
        s.found = s.classIds[ClassId];
    } else if (xmlName && isEnabled(ClassXmlId)) {
        takeWhile(ByteXmlPart);
        s.found = s.classIds[ClassXmlId];
    } else {
        if (!begun) ++s.at;
        s.found = SymbolUnknown;
    }
    return true;
}

// ---- strings ----

// From behind the opening quote. What ends a string before its quote is left unread, and the quote added.
void takeString(char quote, bool multiLine) {
    const auto closing = static_cast<unsigned char>(quote);
    for (;;) {
        takeUntil(closing);
        if (*s.at == closing) {
            const bool doubled = s.at[1] == closing;
            s.at += doubled ? 2 : 1;
            if (!doubled) return;
        } else if (*s.at == LineEnd && multiLine) {
            takeLineEnd();
        } else {
            if (*s.at == LineEnd || *s.at == EndOfFileMark) note(ScanOpenString);
            return add({&quote, 1});
        }
    }
}

bool string() {
    const auto quote = static_cast<char>(*s.at);
    if (!nothingTaken() || (quote != '\'' && quote != '"')) return false;
    const SymbolClass multiLine = quote == '\'' ? ClassMlSqStr : ClassMlDqStr;
    const SymbolClass oneLine = quote == '\'' ? ClassSqStr : ClassDqStr;
    ++s.at;
    takeString(quote, isEnabled(multiLine));
    s.found = s.matcher.classId(isEnabled(multiLine) ? multiLine : oneLine);
    return true;
}

// ---- the rest ----

void controlByte(unsigned char c) {
    constexpr char digits[] = "0123456789ABCDEF";
    const char text[] = {'\\', 'x', digits[c >> 4], digits[c & 15]};
    ++s.at;
    replace({text, sizeof text});
    s.found = SymbolUnknown;
}

// What a key began with in vain is dropped: the text is what follows.
void anyByte() {
    s.from = s.at;
    const unsigned char c = *s.at;
    if (isByte(c, ByteBlank)) {
        takeWhile(ByteBlank);
        s.found = s.classIds[ClassWhitespace];
    } else if (c == LineEnd) {
        takeLineEnd();
        replace(lineEndText);
        s.found = s.classIds[ClassEol];
    } else if (c == EndOfFileMark) {
        replace(endText);
        s.found = SymbolEndOfFile;
    } else if (isByte(c, ByteControl)) {
        controlByte(c);
    } else {
        ++s.at;
        s.found = SymbolUnknown;
    }
}

// No number, key, name or string begins with such a byte.
bool standsAlone(unsigned char c) {
    return c <= ' ' || c >= 127;
}

void pass() {
    s.symbolLine = s.lines.number();
    s.text->clear();
    s.from = s.at;
    s.terminator = {};
    if (s.filename.empty()) {
        replace(endText);
        s.found = SymbolEndOfFile;
    } else if (standsAlone(*s.at) || !(number() || tableSymbol() || name() || string())) {
        anyByte();
    }
}

// ---- between scans ----

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
    s.symbol = s.symbolLine = 0;
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
