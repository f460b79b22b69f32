// SPDX-License-Identifier: Apache-2.0
//
// The parser of compiler messages. Nothing here sets the error cell: what is no message is told by empty
// fields. Cost: one pass over the line, or over the text.
#include "library/data/dbutil.h"

#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>

MODULE("dbutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::string_view NoMessage = "- 0 0";

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

// A character of a file's path, "(" excepted since the line number begins with it.
bool isPathChar(char c) {
    if (ascii::isLetter(c) || ascii::isDigit(c) || isSeparator(c) || static_cast<unsigned char>(c) >= 128)
        return true;
    return c != '\0' && std::string_view(" !#$%&')+,-.;=@[]^_`{}~").find(c) != std::string_view::npos;
}

// Reads the parts of one message line.
class LineParser {
public:
    explicit LineParser(std::string_view line) : rest_(line) {}

    std::string file() {
        blanks();
        std::size_t size = 0;
        // The ":" of a drive belongs to the file; any other one ends it.
        if (rest_.size() > 2 && ascii::isLetter(rest_[0]) && rest_[1] == ':' && isSeparator(rest_[2]))
            size = 2;
        while (size < rest_.size() && isPathChar(rest_[size])) ++size;
        const std::string name = STRTRIM(rest_.substr(0, size));
        rest_.remove_prefix(size);
        return name;
    }

    // The number in parentheses; 0 without reading anything if there is none.
    int lineNumber() {
        const std::string_view before = rest_;
        int value = 0;
        if (parenthesised(value)) return value;
        rest_ = before;
        return 0;
    }

    int errorNumber() {
        blanks();
        accept(':');
        blanks();
        const std::string_view word = rest_.substr(0, 5);
        if (STREQUAL(word, "error") || STREQUAL(word, "fatal")) rest_.remove_prefix(word.size());
        blanks();
        return number();
    }

private:
    bool parenthesised(int& value) {
        blanks();
        if (!accept('(')) return false;
        blanks();
        value = number();
        blanks();
        return accept(')');
    }
    void blanks() {
        while (!rest_.empty() && ascii::isBlank(rest_[0])) rest_.remove_prefix(1);
    }
    bool accept(char c) {
        if (rest_.empty() || rest_[0] != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    // 0 if there are no digits, or too many for a number.
    int number() {
        std::size_t size = 0;
        while (size < rest_.size() && ascii::isDigit(rest_[size])) ++size;
        bool ok = false;
        const int value = CVTI(rest_.substr(0, size), ok);
        rest_.remove_prefix(size);
        return ok ? value : 0;
    }

    std::string_view rest_;
};

std::string found(const std::string& file, std::string_view searchPaths) {
    if (searchPaths.empty() || !FILEGETDIR(file).empty()) return file;
    const std::string path = FILEFINDPATHNAME(searchPaths, file);
    return path.empty() ? file : path;
}

std::string resultLine(const ErrorLine& error, std::string_view searchPaths) {
    return STRADDQUOTES(found(error.file, searchPaths)) + " " + STR(error.line) + " " + STR(error.number) +
           "\n";
}

// The offset of the line that begins the message at `offset`: lines that start with ">" belong to the one
// above.
std::size_t messageStart(std::string_view text, std::size_t offset) {
    for (;;) {
        const std::size_t newline = offset == 0 ? std::string_view::npos : text.rfind('\n', offset - 1);
        const std::size_t start = newline == std::string_view::npos ? 0 : newline + 1;
        std::size_t first = start;
        while (first < text.size() && ascii::isBlank(text[first])) ++first;
        if (start == 0 || first >= text.size() || text[first] != '>') return start;
        offset = start - 1;
    }
}

}  // namespace

ErrorLine FILEGETERRORLINE(std::string_view text, std::size_t& position) {
    FRAME(FILEGETERRORLINE);
    std::string_view rest = text.substr(std::min(position == 0 ? 0 : position - 1, text.size()));
    LineParser parser(ascii::withoutLineEnd(ascii::takeLine(rest)));
    position = text.size() - rest.size() + 1;
    ErrorLine error;
    error.file = parser.file();
    error.line = parser.lineNumber();
    error.number = parser.errorNumber();
    return error.number == 0 ? ErrorLine{} : error;
}

std::string FILEGETERROR(std::string_view text, int position, std::string_view searchPaths) {
    FRAME(FILEGETERROR);
    std::string result;
    if (position >= 1) {
        std::size_t at =
            messageStart(text, std::min(static_cast<std::size_t>(position) - 1, text.size())) + 1;
        const ErrorLine error = FILEGETERRORLINE(text, at);
        if (!error.file.empty()) result = resultLine(error, searchPaths);
    } else {
        for (std::size_t at = 1; at <= text.size();) {
            const ErrorLine error = FILEGETERRORLINE(text, at);
            if (!error.file.empty()) result += resultLine(error, searchPaths);
        }
    }
    return result.empty() ? std::string(NoMessage) : result;
}

}  // namespace tarn
