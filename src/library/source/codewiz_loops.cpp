// SPDX-License-Identifier: Apache-2.0
//
// The loops of templates. One pass writes out the outermost ones; those inside come as lines into the next pass, with the
// outer variables replaced, so that bounds can be made of them.
#include "library/source/codewiz_internal.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <cstdint>

MODULE("codewiz", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

// Reads a loop line from left to right; what has failed once stays so.
struct LineReader {
    std::string_view rest;
    bool ok = true;

    std::size_t blanks() {
        const std::string_view before = rest;
        while (!rest.empty() && ascii::isSpace(rest.front())) rest.remove_prefix(1);
        return before.size() - rest.size();
    }
    void word(std::string_view wanted) {
        ok = ok && detail::startsWith(rest, wanted);
        if (ok) rest.remove_prefix(wanted.size());
    }
    int number() {
        std::size_t length = 0;
        while (length < rest.size() && ascii::isDigit(rest[length])) ++length;
        bool isNumber = false;
        const int value = length == 0 ? 0 : CVTI(rest.substr(0, length), isNumber);
        ok = ok && isNumber;
        rest.remove_prefix(length);
        return value;
    }
    std::string variable() {
        std::size_t length = 0;
        while (length < rest.size() && ascii::isSymbol(rest[length])) ++length;
        const bool closed = ok && length > 0 && length < rest.size() && rest[length] == '%';
        ok = closed;
        if (!closed) return {};
        const std::string name(rest.substr(0, length));
        rest.remove_prefix(length + 1);
        return "%" + name + "%";
    }
};

bool isLoop(std::string_view line) {
    return detail::startsWith(detail::trimmed(line), "#FOR");
}

bool endsLoop(std::string_view line, std::string_view variable) {
    LineReader reader{detail::trimmed(line)};
    reader.word("#NEXT");
    reader.blanks();
    reader.word(variable);
    return reader.ok;
}

class Pass {
public:
    explicit Pass(std::string_view text) : rest_(text) {}
    // False if the result got too long.
    bool run() {
        while (!rest_.empty() && !isFull()) {
            const std::string_view line = ascii::takeLine(rest_);
            if (isLoop(line))
                writeLoop(PARSEFORLOOP(line));
            else
                result_ += line;
        }
        return !isFull();
    }
    [[nodiscard]] bool metLoop() const { return metLoop_; }
    std::string& result() { return result_; }

private:
    [[nodiscard]] bool isFull() const { return result_.size() >= MaxTemplateText; }

    std::string_view takeBody(std::string_view variable) {
        const std::string_view from = rest_;
        while (!rest_.empty()) {
            const std::size_t length = from.size() - rest_.size();
            if (endsLoop(ascii::takeLine(rest_), variable)) return from.substr(0, length);
        }
        return from;
    }

    void writeLoop(const ForLoop& loop) {
        metLoop_ = true;
        const std::string_view body = takeBody(loop.variable);
        if (loop.from == -1 || body.empty()) return;
        for (std::int64_t number = loop.from; number <= loop.to && !isFull(); ++number)
            result_ += STRREPLACE(body, loop.variable, std::to_string(number));
    }

    std::string_view rest_;
    std::string result_;
    bool metLoop_ = false;
};

}  // namespace

ForLoop PARSEFORLOOP(std::string_view line) {
    FRAME(PARSEFORLOOP);
    LineReader reader{line};
    reader.blanks();
    reader.word("#FOR");
    reader.blanks();
    reader.word("%");
    ForLoop loop{.variable = reader.variable()};
    reader.blanks();
    reader.word("=");
    reader.blanks();
    const int from = reader.number();
    const bool parted = reader.blanks() > 0;
    reader.word("TO");
    const bool partedBehind = reader.blanks() > 0;
    const int to = reader.number();
    reader.blanks();
    if (reader.ok && parted && partedBehind && reader.rest.empty()) {
        loop.from = from;
        loop.to = to;
    }
    return loop;
}

std::optional<std::string> detail::unrollLoops(std::string text) {
    for (int pass = 0; pass <= MaxTemplateLoops; ++pass) {
        Pass next(text);
        if (!next.run()) return std::nullopt;
        const bool again = next.metLoop();
        text = std::move(next.result());
        if (!again) return text;
    }
    return std::nullopt;
}

}  // namespace tarn
