// SPDX-License-Identifier: Apache-2.0
#include "library/source/bmptotxt.h"

#include "library/system/system.h"
#include "os/text/ascii.h"

MODULE("bmptotxt", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr const char* Title = "Tools-Convert Bitmap";
constexpr std::size_t LineLength = 80;  // a line ends behind the byte that exceeds it

bool isPlain(char c) {
    return c >= ' ' && c <= '~' && c != '"';
}

// The text as it grows, and what may follow.
class LiteralWriter {
public:
    void put(char c, bool last) {
        if (isPlain(c))
            plain(c);
        else
            code(c);
        if (text_.size() - lineStart_ > LineLength) endLine(last);
    }
    std::string take() {
        if (state_ == State::Open) text_ += '"';
        return std::move(text_);
    }

private:
    enum class State { First, Open, Closed };  // nothing on the line yet; within quotes; behind a Chr

    void plain(char c) {
        if (state_ != State::Open) text_ += state_ == State::Closed ? "+\"" : "\"";
        text_ += c;
        state_ = State::Open;
    }
    void code(char c) {
        if (state_ == State::Open) text_ += '"';
        if (state_ != State::First) text_ += '+';
        text_ += "Chr(" + STR(static_cast<int>(static_cast<unsigned char>(c))) + ")";
        state_ = State::Closed;
    }
    void endLine(bool last) {
        if (state_ == State::Open) text_ += '"';
        if (!last) text_ += "+\n";
        lineStart_ = text_.size();
        state_ = State::First;
    }

    std::string text_;
    std::size_t lineStart_ = 0;
    State state_ = State::First;
};

bool isNumber(std::string_view token) {
    return ascii::isDigit(token[0]) || token[0] == '+' || token[0] == '-';
}

// The lowest byte of a whole number; what stands behind a point does not count.
char byteOf(std::string_view number) {
    const bool negative = number[0] == '-';
    if (!ascii::isDigit(number[0])) number.remove_prefix(1);
    const bool hex = number.size() > 1 && ascii::upper(number[1]) == 'X';
    unsigned value = 0;
    if (hex) number.remove_prefix(2);
    for (const char c : number) {
        const int digit = ascii::hexDigit(c);
        if (digit < 0 || (!hex && digit > 9)) break;
        value = (value * (hex ? 16 : 10) + static_cast<unsigned>(digit)) & 0xFF;
    }
    return static_cast<char>(negative ? 256 - value : value);
}

void tell(const std::string& text) {
    MsgBox(Title, text, "OK", BoxIcon::Error);
}

}  // namespace

std::string BYTESTRINGTOLITERAL(std::string_view bytes) {
    FRAME(BYTESTRINGTOLITERAL);
    LiteralWriter writer;
    for (std::size_t i = 0; i < bytes.size(); i++) writer.put(bytes[i], i + 1 == bytes.size());
    return writer.take();
}

std::string LITERALTOBYTESTRING(std::string_view text) {
    FRAME(LITERALTOBYTESTRING);
    std::string bytes;
    std::size_t position = 1;
    while (position <= text.size()) {
        const std::string token = NextWord(text, position);
        if (token.empty())
            position++;  // a "+", or anything else that is no token
        else if (token[0] == '"')
            bytes += STRREPLACE(std::string_view(token).substr(1, token.size() - 2), "\"\"", "\"");
        else if (isNumber(token))
            bytes += byteOf(token);
    }
    return bytes;
}

bool BMPFILETOTEXT(const std::string& file, const Object& control) {
    FRAME(BMPFILETOTEXT);
    STAMP();
    const std::int64_t size = FileSize(file);
    if (size > MAX_BITMAP_FILE) return tell("Bitmap file is too large to be converted."), false;
    if (size <= 0)
        return tell("The following bitmap file:\t" + file + "\n\nis empty or does not exist."), false;
    STAMP();
    std::string bytes;
    if (!LOADFILE(file, bytes)) return false;
    if (bytes.size() > MAX_BITMAP_FILE)  // it has grown
        return tell("Bitmap file is too large to be converted."), false;
    const std::string text = BYTESTRINGTOLITERAL(bytes);
    if (LITERALTOBYTESTRING(text) != bytes)
        return tell("The bitmap file could not be properly converted."), false;
    STAMP();
    const int room = GetMaxLength(control);
    if (room > 0 && text.size() > static_cast<std::size_t>(room))
        return tell("The bitmap file is too large to be converted."), false;
    SetText(control, text);
    return true;
}

// ---- colours ----

void CLRNUMTORGB(int number, int& value) {
    FRAME(CLRNUMTORGB);
    if (number >= 0 && number < static_cast<int>(STANDARDCOLOURS.size()))
        value = STANDARDCOLOURS[static_cast<std::size_t>(number)].value;
}

void RGBTOCLRNUM(int value, int& number) {
    FRAME(RGBTOCLRNUM);
    for (std::size_t i = 0; i < STANDARDCOLOURS.size(); i++)
        if (STANDARDCOLOURS[i].value == value) number = static_cast<int>(i);
}

std::string RGBTOSTR(int value) {
    FRAME(RGBTOSTR);
    int number = -1;
    RGBTOCLRNUM(value, number);
    return number < 0 ? std::string() : std::string(STANDARDCOLOURS[static_cast<std::size_t>(number)].name);
}

std::string RGBTOHEXSTR(int value) {
    FRAME(RGBTOHEXSTR);
    return HEXSTR(GETRVALUE(value), 2) + HEXSTR(GETGVALUE(value), 2) + HEXSTR(GETBVALUE(value), 2);
}

}  // namespace tarn
