// SPDX-License-Identifier: Apache-2.0
//
// The scanner against a plain one that copies every byte, searches the whole table for each and has no index.
#include "kernel/data/scanner/scanner.h"
#include "unit/kernel/scanner_fixture.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <random>

using namespace tarn;

namespace {

bool inClass(int c, const char* more, bool digits) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || (digits && c >= '0' && c <= '9') ||
           (c != 0 && std::string_view(more).find(static_cast<char>(c)) != std::string_view::npos);
}
bool idStart(int c) {
    return inClass(c, "", false);
}
bool idPart(int c) {
    return inClass(c, "", true);
}
bool xmlStart(int c) {
    return inClass(c, ":", false);
}
bool xmlPart(int c) {
    return inClass(c, ":-.", true);
}
bool digit(int c) {
    return c >= '0' && c <= '9';
}
bool hexDigit(int c) {
    return digit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}
bool blank(int c) {
    return c == ' ' || c == '\t';
}
bool control(int c) {
    return c < 32 || c == 127;
}
bool isName(const std::string& text, bool (*start)(int), bool (*part)(int)) {
    return !text.empty() && start(static_cast<unsigned char>(text[0])) &&
           std::all_of(text.begin(), text.end(), [=](char c) { return part(static_cast<unsigned char>(c)); });
}

class PlainScanner {
public:
    PlainScanner(std::string bytes, const SymbolTable& table, bool ignoreCase)
        : bytes_(std::move(bytes)), ignoreCase_(ignoreCase) {
        for (std::size_t i = 0; i < 6; ++i) cached_[i] = idOf(table, names[i]);
    }

    std::int32_t open(const SymbolTable& table) {
        const bool tooLong = readLine();
        const std::int32_t status = next(table);
        return status == 0 && tooLong ? 2 : status;
    }

    std::int32_t next(const SymbolTable& table) {
        table_ = &table;
        status_ = 0;
        const std::int32_t before = lineNumber;
        do pass();
        while (found_ == 0);
        if (lineNumber != before && status_ == 0) status_ = 1;
        if (symbol != -2 && symbol != cached_[WhiteSpace] && symbol != cached_[Eol] && terminator_.empty())
            previous = text;
        symbol = found_;
        text = text_.substr(0, 32768);
        return status_;
    }

    std::int32_t skip() {
        const std::int32_t before = lineNumber;
        status_ = 0;
        if (at(0) == 10) {
            nextLine();
        } else if (at(0) != 26) {
            ++position;
        }
        if (lineNumber != before && status_ == 0) status_ = 1;
        symbol = 0;
        text.clear();
        return status_;
    }

    std::string line, text, previous;
    std::size_t position = 0;
    std::int32_t lineNumber = 0, symbol = 0, symbolLine = 0;

private:
    enum { IdClass, XmlIdClass, MlSingle, MlDouble, WhiteSpace, Eol };
    static constexpr const char* names[] = {"##ID",      "##XMLID",      "##MLSQSTR",
                                            "##MLDQSTR", "##WHITESPACE", "##EOL"};

    static std::int32_t idOf(const SymbolTable& table, const std::string& key) {
        for (std::int32_t i = 0; i < table.count; ++i)
            if (key == table.entries[static_cast<std::size_t>(i)].key)
                return table.entries[static_cast<std::size_t>(i)].id;
        return -2;
    }
    [[nodiscard]] int at(std::size_t ahead) const {
        return position + ahead < line.size() ? static_cast<unsigned char>(line[position + ahead]) : 0;
    }
    void take() { text_ += line[position++]; }
    void takeAll(bool (*part)(int)) {
        while (part(at(0))) take();
    }
    void note(std::int32_t status) {
        if (status_ == 0) status_ = status;
    }

    bool readLine() {
        position = 0;
        if (read_ >= bytes_.size()) {
            line = "\x1A";
            return false;
        }
        ++lineNumber;
        const std::size_t end = std::min(bytes_.find('\n', read_), bytes_.size());
        line = bytes_.substr(read_, end - read_);
        read_ = end + 1;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const bool tooLong = line.size() >= 32768;
        if (tooLong) line.resize(32767);
        line += '\n';
        return tooLong;
    }
    void nextLine() {
        if (readLine()) note(2);
    }

    void pass() {
        symbolLine = lineNumber;
        found_ = 0;
        text_.clear();
        terminator_.clear();
        if (at(0) == '0' && (at(1) == 'x' || at(1) == 'X')) return hexadecimal();
        if (digit(at(0)) || (at(0) == '.' && digit(at(1)))) return number();
        if (match()) {
            if (terminator_.empty()) return ordinary();
            if (!(cached_[IdClass] != -2 && isName(text_, idStart, idPart) && idPart(at(0))))
                return delimited();
        }
        if (name()) return;
        if (text_.empty() && (at(0) == '\'' || at(0) == '"')) return string();
        rest();
    }

    void hexadecimal() {
        take();
        take();
        found_ = -2;
        if (!hexDigit(at(0))) return;
        takeAll(hexDigit);
        if (at(0) == 'L') take();
        found_ = idOf(*table_, "##HEXCONST");
    }
    void number() {
        std::string key = "##UINT";
        takeAll(digit);
        if (at(0) == '.' && digit(at(1))) {
            take();
            takeAll(digit);
            key = "##UFIXED";
        }
        if ((at(0) == 'e' || at(0) == 'E') && (at(1) == '+' || at(1) == '-' || digit(at(1)))) {
            take();
            if (!digit(at(0))) take();
            key = digit(at(0)) ? "##UREAL" : "";
            takeAll(digit);
        }
        found_ = idOf(*table_, key);
    }

    // The range of the entries that go on with the last byte of the text, by looking at all of them.
    void narrow(std::int32_t& low, std::int32_t& high) const {
        const std::size_t index = text_.size() - 1;
        const int byte = static_cast<unsigned char>(text_.back());
        const int c = ignoreCase_ && byte < 128 ? std::toupper(byte) : byte;
        std::int32_t first = -1, last = -1;
        for (std::int32_t i = low; i <= high; ++i) {
            const std::string key = table_->entries[static_cast<std::size_t>(i)].key;
            if (key.size() <= index || static_cast<unsigned char>(key[index]) != c) continue;
            if (first < 0) first = i;
            last = i;
        }
        low = first;
        high = last;
    }
    bool match() {
        std::int32_t low = 0, high = table_->count - 1;
        bool any = false;
        std::size_t best = 0, read = 0;
        text_ = static_cast<char>(at(read));
        for (;;) {
            if (low >= 0) narrow(low, high);
            if (low < 0 && !any) {
                text_.pop_back();
                break;
            }
            if (low < 0) {
                text_.resize(best);
                break;
            }
            const SymbolEntry& entry = table_->entries[static_cast<std::size_t>(low)];
            if (std::string(entry.key).size() == text_.size()) {
                any = true;
                found_ = entry.id;
                best = text_.size();
                if (low == high) {
                    terminator_ = entry.terminator;
                    break;
                }
            }
            text_ += static_cast<char>(at(++read));
        }
        position += text_.size();
        return any;
    }
    void ordinary() {
        if (cached_[IdClass] != -2 && isName(text_, idStart, idPart) && idPart(at(0))) {
            takeAll(idPart);
            found_ = cached_[IdClass];
        } else if (cached_[XmlIdClass] != -2 && isName(text_, xmlStart, xmlPart) && xmlPart(at(0))) {
            takeAll(xmlPart);
            found_ = cached_[XmlIdClass];
        } else if (SymbolIsClassName(text_, ignoreCase_)) {
            found_ = -2;
        }
    }
    void delimited() {
        for (;;) {
            const int c = at(0);
            if (blank(c)) {
                take();
            } else if (c == 10) {
                if (terminator_ == "##EOL") return;
                take();
                nextLine();
            } else if (c == 26) {
                text_ = "\\x1A";
                return note(4);
            } else if (control(c)) {
                if (terminator_ != "##EOL") text_ += terminator_;
                return;
            } else if (terminator_ != "##EOL" &&
                       line.compare(position, terminator_.size(), terminator_) == 0) {
                text_ += terminator_;
                position += terminator_.size();
                return;
            } else {
                take();
            }
        }
    }

    bool name() {
        const bool id = text_.empty() ? idStart(at(0)) : isName(text_, idStart, idPart);
        const bool xml = text_.empty() ? xmlStart(at(0)) : isName(text_, xmlStart, xmlPart);
        if (!id && !xml) return false;
        terminator_.clear();
        if (cached_[IdClass] != -2 && id) {
            takeAll(idPart);
            found_ = cached_[IdClass];
        } else if (cached_[XmlIdClass] != -2 && xml) {
            takeAll(xmlPart);
            found_ = cached_[XmlIdClass];
        } else {
            if (text_.empty()) take();
            found_ = -2;
        }
        return true;
    }
    void string() {
        const int quote = at(0);
        const bool multi = cached_[quote == '"' ? MlDouble : MlSingle] != -2;
        take();
        found_ = idOf(*table_, std::string(multi ? "##ML" : "##") + (quote == '"' ? "DQSTR" : "SQSTR"));
        for (;;) {
            const int c = at(0);
            if (c == 10 && multi) {
                take();
                nextLine();
            } else if (control(c) && !blank(c)) {
                if (c == 10 || c == 26) note(3);
                text_ += static_cast<char>(quote);
                return;
            } else {
                take();
                if (c != quote) continue;
                if (at(0) != quote) return;
                take();
            }
        }
    }
    void rest() {
        const int c = at(0);
        text_.clear();
        found_ = -2;
        if (blank(c)) {
            takeAll(blank);
            found_ = cached_[WhiteSpace];
        } else if (c == 10) {
            nextLine();
            text_ = "\\n";
            found_ = cached_[Eol];
        } else if (c == 26) {
            text_ = "\\x1A";
            found_ = -1;
        } else if (control(c)) {
            char shown[8];
            std::snprintf(shown, sizeof shown, "\\x%02X", static_cast<unsigned>(c));
            text_ = shown;
            ++position;
        } else {
            take();
        }
    }

    std::string bytes_;
    std::size_t read_ = 0;
    bool ignoreCase_;
    std::int32_t cached_[6]{};
    const SymbolTable* table_ = nullptr;
    std::int32_t status_ = 0, found_ = 0;
    std::string text_, terminator_;
};

class ScannerModel : public ScannerFixture {
protected:
    std::size_t below(std::size_t n) { return random() % n; }
    template <std::size_t N>
    std::string anyOf(const char* const (&words)[N]) {
        return words[below(N)];
    }

    void addAny(bool ignoreCase) {
        static constexpr const char* keys[] = {
            "end",        "ending",  "en",      "a:c",       "a-b",       "a",
            "rem",        "remark",  "<",       "<!--",      "<!",        "<!-",
            "</",         "/>",      "+",       "++",        "+++",       "->",
            "'",          "\"\"",    ".",       "..",        "#",         "##",
            "##ID",       "##ID",    "##XMLID", "##UINT",    "##UFIXED",  "##UREAL",
            "##HEXCONST", "##SQSTR", "##DQSTR", "##MLSQSTR", "##MLDQSTR", "##WHITESPACE",
            "##EOL",      "##OTHER", "x y",     "_",         ":"};
        static constexpr const char* terminators[] = {"",      "",  "",    "",   "", "-->",
                                                      "##EOL", "x", "end", "--", "'"};
        std::string key = anyOf(keys);
        if (ignoreCase)
            for (char& c : key) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        SymbolAdd(&table, static_cast<std::int32_t>(below(12)), key.c_str(), anyOf(terminators).c_str());
    }
    std::string anyText() {
        static constexpr const char* words[] = {
            "end",  "End", "ending", "en",   "a:c",  "a-b",  "a",   "rem", "<!--", "-->",
            "--",   "<!",  "</",     ">",    "+",    "++",   "'",   "'",   "''",   "\"",
            "\"\"", ".",   "..",     "1",    "0x",   "0xfL", "1.5", ".5",  "1e",   "1e+",
            "e5",   "#",   "##ID",   "##id", "##",   " ",    " ",   "\t",  "\n",   "\n",
            "\r\n", "\r",  "\x01",   "\x7F", "\x80", "_",    ":",   "-",   "x y",  "\\"};
        std::string text;
        for (std::size_t i = below(60); i > 0; --i) text += anyOf(words);
        if (below(20) == 0) text.insert(below(text.size() + 1), 1, '\0');
        if (below(20) == 0) text.insert(below(text.size() + 1), 1, '\x1A');
        if (below(60) == 0) text.insert(below(text.size() + 1), 32760 + below(16), "x '"[below(3)]);
        return text;
    }
    void expectSame(const PlainScanner& plain) {
        ASSERT_EQ(ScannerSymbol(), plain.symbol);
        ASSERT_EQ(ScannerSymbolStr(), plain.text);
        ASSERT_EQ(ScannerPreviousSymbolStr(), plain.previous);
        ASSERT_EQ(ScannerSymbolLine(), plain.symbolLine);
        ASSERT_EQ(ScannerLineNumber(), plain.lineNumber);
        ASSERT_EQ(ScannerPosition(), static_cast<std::int32_t>(plain.position));
        ASSERT_EQ(ScannerLine(), plain.line);
    }
    // Until some steps after the end of the file.
    void run(std::int32_t& steps) {
        table = SymbolTable{};
        const bool ignoreCase = below(3) == 0;
        for (std::size_t i = 1 + below(30); i > 0; --i) addAny(ignoreCase);
        const std::string text = anyText();
        SCOPED_TRACE(::testing::PrintToString(text.substr(0, 300)));
        PlainScanner plain(text, table, ignoreCase);
        ASSERT_EQ(open(text, ignoreCase), plain.open(table));
        for (int atEnd = 0; atEnd < 3; ++steps) {
            ASSERT_NO_FATAL_FAILURE(expectSame(plain));
            if (below(20) == 0) addAny(ignoreCase);
            if (below(20) == 0) SymbolRemove(&table, table.entries[below(MaxSymbols)].key);
            if (below(6) == 0) {
                ASSERT_EQ(ScannerSkipChar(), plain.skip());
            } else {
                ASSERT_EQ(ScannerNext(&table), plain.next(table));
            }
            if (ScannerChar() == 26) ++atEnd;
        }
        ScannerClose();
    }

    std::mt19937 random;
};

TEST_F(ScannerModel, DoesWhatAPlainScannerDoes) {
    constexpr unsigned seed = 20262;
    SCOPED_TRACE(seed);
    random.seed(seed);
    for (std::int32_t steps = 0; steps < 200000;) ASSERT_NO_FATAL_FAILURE(run(steps));
}

}  // namespace
