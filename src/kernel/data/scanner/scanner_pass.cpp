// SPDX-License-Identifier: Apache-2.0
//
// A scan is a number of passes: each takes one symbol, and those with the id 0 are passed over. What a pass
// takes is decided by the next byte, in this order: numbers, the symbols of the table, names, strings, and
// the rest (blanks, line ends, the end, unknown bytes).
//
// Two facts keep the loops free of tests for the end of the line: every line ends in byte 10 or 26, and
// neither is in a class that runs are made of, nor in any key. Taking a byte only moves `at`; the text is
// copied once, when the symbol is known or the line ends.
#include "kernel/data/scanner/scanner_bytes.h"
#include "kernel/data/scanner/scanner_work_internal.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarn {

namespace {

constexpr std::string_view endText = "\\x1A", lineEndText = "\\n", untilLineEnd = "##EOL", classMark = "##";

class Pass {
public:
    Pass(ScanState& state, ScannerWork& its) : s(state), work(its) {}
    void run();

private:
    [[nodiscard]] bool isEnabled(SymbolClass symbolClass) const;
    void add(std::string_view text);
    void replace(std::string_view text);
    [[nodiscard]] std::string_view taken() const;
    [[nodiscard]] bool nothingTaken() const;
    [[nodiscard]] bool isTaken(ByteClass start, ByteClass part) const;
    [[nodiscard]] bool isIdentifier() const;
    [[nodiscard]] bool isXmlName() const;

    void takeWhile(ByteClass wanted);
    void takeUntil(unsigned char stop);
    void takeLineEnd();
    SymbolClass takeHexadecimal();
    SymbolClass takeNumber();
    bool number();
    [[nodiscard]] bool isClassName(std::string_view text) const;
    void ordinarySymbol(std::int32_t id);
    [[nodiscard]] bool standsHere(std::string_view text) const;
    void takeDelimited();
    bool tableSymbol();
    bool name();
    void takeString(char quote, bool multiLine);
    bool string();
    void controlByte(unsigned char c);
    void anyByte();

    ScanState& s;
    ScannerWork& work;
};

bool Pass::isEnabled(SymbolClass symbolClass) const {
    return work.classIds[symbolClass] != SymbolUnknown;
}

// ---- the text ----

// Behind what the text has so far.
void Pass::add(std::string_view text) {
    s.collect();
    s.text->append(text);
}

// In place of what the text has so far.
void Pass::replace(std::string_view text) {
    s.text->clear();
    s.text->append(text);
    s.from = s.at;
}

// What was taken of this line.
std::string_view Pass::taken() const {
    return ScanState::viewOf(s.from, s.at);
}
bool Pass::nothingTaken() const {
    return s.from == s.at;
}
bool Pass::isTaken(ByteClass start, ByteClass part) const {
    return !nothingTaken() && isByte(*s.from, start) &&
           std::all_of(s.from + 1, s.at, [=](unsigned char c) { return isByte(c, part); });
}
bool Pass::isIdentifier() const {
    return isTaken(ByteIdStart, ByteIdPart);
}
bool Pass::isXmlName() const {
    return isTaken(ByteXmlStart, ByteXmlPart);
}

// ---- taking ----

void Pass::takeWhile(ByteClass wanted) {
    const unsigned char* at = s.at;
    while (isByte(*at, wanted)) ++at;
    s.at = at;
}

// Takes what is neither `stop` nor a control byte.
void Pass::takeUntil(unsigned char stop) {
    const unsigned char* at = s.at;
    while (*at != stop && !isByte(*at, ByteControl)) ++at;
    s.at = at;
}

// Takes the line end and goes on with the next line.
void Pass::takeLineEnd() {
    ++s.at;
    s.collect();
    NextLine(s, work);
    if (work.lines.cut()) s.note(ScanLineTooLong);
}

// ---- numbers ----

SymbolClass Pass::takeHexadecimal() {
    s.at += 2;
    if (!isByte(*s.at, ByteHexDigit)) return ClassNone;
    takeWhile(ByteHexDigit);
    if (*s.at == 'L') ++s.at;
    return ClassHex;
}

SymbolClass Pass::takeNumber() {
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

bool Pass::number() {
    const unsigned char c = *s.at, after = s.at[1];
    if (c == '0' && (after == 'x' || after == 'X')) {
        s.found = work.matcher.classId(takeHexadecimal());
    } else if (isByte(c, ByteDigit) || (c == '.' && isByte(after, ByteDigit))) {
        s.found = work.matcher.classId(takeNumber());
    } else {
        return false;
    }
    return true;
}

// ---- symbols of the table, and names ----

bool Pass::isClassName(std::string_view text) const {
    return text.starts_with(classMark) && SymbolIsClassName(text, s.ignoreCase);
}

// A keyword that goes on as a name is a name, and the name of a class is not the class.
void Pass::ordinarySymbol(std::int32_t id) {
    if (isByte(*s.at, ByteIdPart) && isEnabled(ClassId) && isIdentifier()) {
        takeWhile(ByteIdPart);
        s.found = work.classIds[ClassId];
    } else if (isByte(*s.at, ByteXmlPart) && isEnabled(ClassXmlId) && isXmlName()) {
        takeWhile(ByteXmlPart);
        s.found = work.classIds[ClassXmlId];
    } else {
        s.found = isClassName(taken()) ? SymbolUnknown : id;
    }
}

bool Pass::standsHere(std::string_view text) const {
    return static_cast<std::size_t>(s.end - s.at) > text.size() &&
           std::memcmp(s.at, text.data(), text.size()) == 0;
}

// From behind the key up to the terminator. Blanks and control bytes count before the terminator does, so one
// that begins with them is never met.
void Pass::takeDelimited() {
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
            s.openLine = s.symbolLine;
            return s.note(ScanOpenDelimited);
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

bool Pass::tableSymbol() {
    const SymbolMatch match = work.matcher.longest(s.at);
    s.at += match.length;
    if (!match.found) return false;
    if (match.terminator[0] == '\0') {
        ordinarySymbol(match.id);
        return true;
    }
    if (isByte(*s.at, ByteIdPart) && isEnabled(ClassId) && isIdentifier()) return false;
    s.terminator = match.terminator;
    s.found = SymbolLookup(s.table, s.ignoreCase, taken());
    // Without regard to case, keys of both cases are not sorted: then the key that was matched counts.
    if (s.found < 0) s.found = match.id;
    takeDelimited();
    return true;
}

// A name, which may have begun as a key.
bool Pass::name() {
    const bool begun = !nothingTaken();
    const bool identifier = begun ? isIdentifier() : isByte(*s.at, ByteIdStart);
    const bool xmlName = begun ? isXmlName() : isByte(*s.at, ByteXmlStart);
    if (!identifier && !xmlName) return false;
    if (identifier && isEnabled(ClassId)) {
        takeWhile(ByteIdPart);
        s.found = work.classIds[ClassId];
    } else if (xmlName && isEnabled(ClassXmlId)) {
        takeWhile(ByteXmlPart);
        s.found = work.classIds[ClassXmlId];
    } else {
        if (!begun) ++s.at;
        s.found = SymbolUnknown;
    }
    return true;
}

// ---- strings ----

// From behind the opening quote. What ends a string before its quote is left unread, and the quote added.
void Pass::takeString(char quote, bool multiLine) {
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
            if (*s.at == LineEnd || *s.at == EndOfFileMark) s.note(ScanOpenString);
            return add({&quote, 1});
        }
    }
}

bool Pass::string() {
    const auto quote = static_cast<char>(*s.at);
    if (!nothingTaken() || (quote != '\'' && quote != '"')) return false;
    const SymbolClass multiLine = quote == '\'' ? ClassMlSqStr : ClassMlDqStr;
    const SymbolClass oneLine = quote == '\'' ? ClassSqStr : ClassDqStr;
    ++s.at;
    takeString(quote, isEnabled(multiLine));
    s.found = work.matcher.classId(isEnabled(multiLine) ? multiLine : oneLine);
    return true;
}

// ---- the rest ----

void Pass::controlByte(unsigned char c) {
    constexpr char digits[] = "0123456789ABCDEF";
    const char text[] = {'\\', 'x', digits[c >> 4], digits[c & 15]};
    ++s.at;
    replace({text, sizeof text});
    s.found = SymbolUnknown;
}

// What a key began with in vain is dropped: the text is what follows.
void Pass::anyByte() {
    s.from = s.at;
    const unsigned char c = *s.at;
    if (isByte(c, ByteBlank)) {
        takeWhile(ByteBlank);
        s.found = work.classIds[ClassWhitespace];
    } else if (c == LineEnd) {
        takeLineEnd();
        replace(lineEndText);
        s.found = work.classIds[ClassEol];
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

void Pass::run() {
    s.symbolLine = s.lineNumber;
    s.text->clear();
    s.terminator = {};
    // Blanks that no one gets to see need no pass of their own.
    if (work.classIds[ClassWhitespace] == 0) takeWhile(ByteBlank);
    s.from = s.at;
    if (s.filename.empty()) {
        replace(endText);
        s.found = SymbolEndOfFile;
    } else if (standsAlone(*s.at) || !(number() || tableSymbol() || name() || string())) {
        anyByte();
    }
}

}  // namespace

void NextLine(ScanState& s, ScannerWork& work) {
    work.lines.next();
    s.line = s.at = s.from = work.lines.begin();
    s.end = work.lines.end();
    s.lineNumber = work.lines.number();
}

namespace {

// Unknown symbols, blanks and line ends never become the previous symbol, and a delimited symbol pushes none
// there.
void store(ScanState& s, const ScannerWork& work) {
    const bool significant = s.symbol != SymbolUnknown && s.symbol != work.classIds[ClassWhitespace] &&
                             s.symbol != work.classIds[ClassEol];
    if (significant && s.terminator.empty()) std::swap(s.previousText, s.symbolText);
    std::swap(s.symbolText, s.text);
    s.symbol = s.found;
}

}  // namespace

// Stands here so that a pass is no call.
ScanStatus Scanner::next(const SymbolTable* table) {
    if (work_ == nullptr && !prepare()) [[unlikely]] {
        s_.symbol = SymbolEndOfFile;
        return ScanClean;
    }
    ScannerWork& work = *work_;
    const std::int32_t line = s_.lineNumber;
    s_.table = table;
    s_.status = ScanClean;
    work.matcher.use(table, s_.ignoreCase);
    do Pass(s_, work).run();
    while (s_.found == 0);
    s_.collect();
    if (s_.lineNumber != line) s_.note(ScanNewLine);
    store(s_, work);
    return s_.status;
}

}  // namespace tarn
