// SPDX-License-Identifier: Apache-2.0
//
// What people get to see of a scan: the dump of the state, and the texts of failures.
#include "kernel/data/scanner/scanner.h"
#include "kernel/data/scanner/scanner_work_internal.h"
#include "kernel/run/errors.h"
#include "kernel/values/sets.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tarn {

namespace {

constexpr std::size_t maxMessage = 1024;

// ---- the dump ----

enum class Escapes {
    Controls,  // what would break the line
    All,       // also quotes, backslashes and bytes from 128 on
};

// Writes what fits and keeps room for the end.
class Output {
public:
    Output(char* buffer, std::int32_t size) : at_(buffer), last_(buffer + size - 1) {}
    ~Output() { *at_ = '\0'; }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void put(std::string_view text) {
        const std::size_t count = std::min(text.size(), static_cast<std::size_t>(last_ - at_));
        std::memcpy(at_, text.data(), count);
        at_ += count;
    }
    void put(std::string_view text, Escapes escapes) {
        for (std::size_t i = 0; i < text.size() && at_ != last_; ++i)
            putByte(static_cast<unsigned char>(text[i]), escapes);
    }

private:
    void putByte(unsigned char c, Escapes escapes) {
        const char asIs[] = {static_cast<char>(c)};
        const bool bare =
            escapes == Escapes::All ? c >= 32 && c <= 126 && c != '"' && c != '\\' : c >= 32 && c != 127;
        put(bare ? std::string_view(asIs, 1) : escape(c));
    }
    std::string_view escape(unsigned char c) {
        constexpr char digits[] = "0123456789ABCDEF";
        switch (c) {
        case '\t': return "\\t";
        case '\n': return "\\n";
        case '\r': return "\\r";
        case '"': return "\\\"";
        case '\\': return "\\\\";
        default: break;
        }
        escape_ = {'\\', 'x', digits[c >> 4], digits[c & 15]};
        return {escape_.data(), escape_.size()};
    }

    char* at_;
    char* last_;
    std::array<char, 4> escape_{};
};

}  // namespace

void Scanner::dump(char* buffer, std::int32_t size) const {
    if (buffer == nullptr || size < 1) return;
    const char next = static_cast<char>(character()), afterNext = static_cast<char>(extraChar());
    const std::string number = std::to_string(s_.lineNumber);
    const struct {
        std::string_view label, value;
        Escapes escapes;
    } lines[] = {
        {"Char = ", {&next, 1}, Escapes::Controls},
        {"ExtraChar = ", {&afterNext, 1}, Escapes::Controls},
        {"InputFilename = ", s_.filename, Escapes::Controls},
        {"LineNumber = ", number, Escapes::Controls},
        {"LineStr = ", line(), Escapes::All},
        {"LineRemainder = ", remainder(), Escapes::All},
        {"PreviousSymbolStr = ", previousSymbolStr(), Escapes::Controls},
        {"SymbolStr = ", symbolStr(), Escapes::Controls},
    };
    Output output(buffer, size);
    for (const auto& line : lines) {
        output.put(line.label);
        output.put(line.value, line.escapes);
        output.put("\n");
    }
}

// ---- failures ----

void ReportError(ErrorRecord& record, std::int32_t code, std::int32_t line, std::int32_t position,
                 std::string_view message) {
    if (record.code != 0 || code == 0 || message.empty()) return;
    record = {code, line, position, std::string(message.substr(0, maxMessage))};
}

void Scanner::reportHere(ErrorRecord& record, std::int32_t code, std::string_view message) const {
    ReportError(record, code, s_.lineNumber, position(), message);
}

void Scanner::reportStatus(ScanStatus status, ErrorRecord& record) const {
    switch (status) {
    case ScanClean:
    case ScanNewLine: return;
    case ScanLineTooLong:
        return reportHere(record, ERR_XML_OVERFLOW,
                          "Line too long, max length is " +
                              std::to_string(work_ != nullptr ? work_->lines.longest() : MaxScannerLine));
    case ScanOpenString: return reportHere(record, ERR_XML_NOT_WELL_FORMED, "String was not terminated");
    case ScanOpenDelimited:
        return reportHere(record, ERR_XML_NOT_WELL_FORMED,
                          "Comment which started on line " + std::to_string(s_.openLine) +
                              " was not terminated");
    }
}

void Scanner::checkSymbol(const SymbolTable* table, std::int32_t symbol, const SetDescriptor* allowed,
                          ErrorRecord& record) const {
    if (KindOf(allowed) == KindSet && SetContains(symbol, allowed)) return;
    char name[MaxSymbolKey + 1];
    std::string_view shown = symbolStr().substr(0, MaxSymbolKey);
    if (symbol > 0)
        shown = {name, static_cast<std::size_t>(SymbolDisplayName(table, symbol, name, sizeof name))};
    reportHere(record, ERR_XML_NOT_WELL_FORMED, "Symbol \"" + std::string(shown) + "\" is not allowed here");
}

}  // namespace tarn
