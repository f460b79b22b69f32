// SPDX-License-Identifier: Apache-2.0
//
// What stands between the tags of an element. It is read from the bytes of the lines, not by symbols: whole
// runs up to the next mark. Text is collected only as long as somebody may take it: in an element whose
// target is made of other elements it ends with the first of them, so that the blanks between thousands of
// rows do not count.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/value_line.h"
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/run/errors.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <array>
#include <optional>

namespace tarn {

namespace {

constexpr std::size_t maxReference = 500;

// What a run of text ends at. A line ends in one of these always.
bool isMark(char c) {
    static constexpr std::array<bool, 256> marks = [] {
        std::array<bool, 256> table{};
        for (const unsigned char mark :
             {static_cast<unsigned char>('<'), static_cast<unsigned char>('&'), LineEnd, EndOfFileMark})
            table[mark] = true;
        return table;
    }();
    return marks[static_cast<unsigned char>(c)];
}

bool isReferenceDigit(char c) {
    return isByte(static_cast<unsigned char>(c), ByteHexDigit) || c == 'x';
}

// The low byte of the number; digits that the base does not have end it.
char byteOf(std::string_view digits) {
    unsigned base = 10, value = 0;
    if (digits.substr(0, 1) == "x") {
        base = 16;
        digits.remove_prefix(1);
    }
    for (const char c : digits) {
        const auto digit = static_cast<unsigned>(ascii::hexDigit(c));
        if (digit >= base) break;  // or no digit at all
        value = value * base + digit;
    }
    return static_cast<char>(value & 255U);
}

void readCharacter(std::string_view text, XmlReference& reference) {
    std::size_t end = 2;
    while (end < text.size() && end < 2 + maxReference && isReferenceDigit(text[end])) ++end;
    reference.length = end;
    if (text.substr(end, 1) != ";") {
        reference.message = "Symbol \";\" must occur at end of a character reference";
        return;
    }
    reference.byte = byteOf(text.substr(2, end - 2));
    reference.replacement = {&reference.byte, 1};
    ++reference.length;
}

void readEntity(const XmlReader& reader, std::string_view text, XmlReference& reference) {
    std::size_t end = 1;
    while (end < text.size() && XmlIsNamePart(text[end])) ++end;
    const std::string name = std::string(text.substr(0, end)) + ";";
    if (!EntityFind(reader.tables.entities, name, reference.replacement))
        reference.message = "The entity reference " + name + " is not allowed";
    const bool closed = text.substr(end, 1) == ";";
    if (!closed && reference.message.empty())
        reference.message = "Symbol \";\" must occur at end of an entity reference";
    reference.length = closed ? end + 1 : end;
}

class Content {
public:
    Content(XmlReader& reader, XmlTarget target, XmlGivenFields& given, std::size_t name)
        : reader_(reader), target_(target), given_(given), name_(name), nameEnd_(reader.names.size()),
          text_(reader.text.size()), children_(reader, target) {
        if (reader.discover) types_.emplace();
    }
    ~Content() { reader_.text.resize(text_); }
    Content(const Content&) = delete;
    Content& operator=(const Content&) = delete;

    bool read(std::string& typeText) {
        while (!reader_.ended() && step()) {}
        if (reader_.ended()) return false;
        const bool closed = enterEndTag();
        children_.finish();
        const std::string_view text = std::string_view(reader_.text).substr(text_);
        if (given_.unplaced) given_.unplaced = count_ == 0 && XmlIsBlank(text);
        if (target_.takesText()) {
            XmlBindText(reader_, target_, text);
        } else if (count_ == 0 && !XmlIsBlank(text)) {
            given_.giveWay(reader_);
            if (target_.value != nullptr) XmlNoteLost(reader_, "The text", name());
        }
        if (types_) typeText = types_->finish(name(), text);
        return closed || XmlCheck(reader_, {XmlEndTag});
    }

private:
    [[nodiscard]] std::string_view name() const {
        return std::string_view(reader_.names).substr(name_, nameEnd_ - name_);
    }

    // False at the end of the file.
    bool enterEndTag() {
        if (ScannerRemainder().starts_with("</")) {
            ScannerSkipBytes(2);
            return true;
        }
        XmlNext(reader_);
        return false;
    }

    // A run of text and what stands behind it. False at the end of the content.
    bool step() {
        const std::string_view rest = ScannerRemainder();
        std::size_t length = 0;
        while (!isMark(rest[length])) ++length;
        const auto mark = static_cast<unsigned char>(rest[length]);
        if (mark == LineEnd) {
            append(rest);
            ScannerSkipBytes(static_cast<std::int32_t>(length));
            nextLine();
            return true;
        }
        if (length > 0) takeBytes(length);
        if (mark == EndOfFileMark) return false;
        return mark == '<' ? tag(rest[length + 1]) : ampersand();
    }
    bool tag(char after) {
        if (after == '/') return false;
        if (XmlIsNameStart(after))
            child();
        else if (after == '!')
            markup();
        else if (after == '?')
            instruction();
        else
            takeBytes(1);
        return true;
    }
    bool ampersand() {
        if (XmlIsReference(ScannerRemainder()))
            reference();
        else
            takeBytes(1);
        return true;
    }

    // ---- text ----

    void append(std::string_view text) {
        if (!collects_) return;
        const std::size_t room = std::size_t{MaxXmlText} - (reader_.text.size() - text_);
        if (text.size() > room)
            XmlReport(reader_, ERR_XML_OVERFLOW,
                      "Character data at this nesting level is too long, max length is " +
                          std::to_string(MaxXmlText));
        reader_.text.append(text.substr(0, room));
    }
    void takeBytes(std::size_t count) {
        append(ScannerRemainder().substr(0, count));
        ScannerSkipBytes(static_cast<std::int32_t>(count));
    }
    void nextLine() { XmlNoteStatus(reader_, ScannerSkipChar()); }

    void reference() {
        XmlReference reference;
        XmlReadReference(reader_, ScannerRemainder(), reference);
        ScannerSkipBytes(static_cast<std::int32_t>(reference.length));
        if (!reference.message.empty()) XmlReport(reader_, ERR_XML_NOT_WELL_FORMED, reference.message);
        append(reference.replacement);
    }

    // ---- marks ----

    void markup() {
        XmlNext(reader_);
        if (XmlCheck(reader_, {XmlCdata, XmlComment}) && ScannerSymbol() == XmlCdata) takeVerbatim();
    }
    void takeVerbatim() {
        constexpr std::string_view mark = "]]>";
        for (;;) {
            std::string_view rest = ScannerRemainder();
            rest = rest.substr(0, rest.find(static_cast<char>(EndOfFileMark)));
            const std::size_t found = rest.find(mark);
            takeBytes(std::min(found, rest.size()));
            if (found != std::string_view::npos)
                return ScannerSkipBytes(static_cast<std::int32_t>(mark.size()));
            if (ScannerChar() != LineEnd || reader_.ended()) return;
            nextLine();
        }
    }
    void instruction() {
        ScannerSkipBytes(2);
        XmlSkipPast(reader_, "?>");
    }

    // ---- children ----

    void child() {
        if (reader_.depth == MaxXmlDepth) {
            XmlReport(reader_, ERR_XML_TOO_COMPLEX, "XML file structure is too large or too deeply nested");
            reader_.abandoned = true;
            return;
        }
        const std::int32_t line = ScannerLineNumber();
        ScannerSkipBytes(1);
        if (++count_ == 1) firstChild();
        const XmlTarget destination = children_.destination();
        if (plainChild(destination, line)) return;
        XmlElementResult result;
        ++reader_.depth;
        XmlElement(reader_, destination, result);
        --reader_.depth;
        const std::string_view child = std::string_view(reader_.names).substr(nameEnd_);
        if (types_) types_->add(reader_, name(), child, line, result);
        children_.add(count_, name(), child, result.index);
        reader_.names.resize(nameEnd_);
    }
    // A text between its tags in one line, as most children are, goes from the line to its destination.
    bool plainChild(XmlTarget destination, std::int32_t line) {
        if (destination.value != nullptr && !destination.takesText()) return false;
        const std::string_view rest = ScannerRemainder();
        std::size_t length = 1;
        while (XmlIsNamePart(rest[length])) ++length;
        if (rest[length] != '>') return false;
        const std::string_view child = rest.substr(0, length);
        std::size_t end = length + 1;
        while (!isMark(rest[end])) ++end;
        if (!rest.substr(end).starts_with("</") || !rest.substr(end + 2).starts_with(child)) return false;
        if (rest[end + 2 + length] != '>') return false;
        ScannerSkipBytes(static_cast<std::int32_t>(end + 2));
        const std::string_view text = rest.substr(length + 1, end - length - 1);
        if (destination.value != nullptr) XmlBindText(reader_, destination, text);
        ScannerSkipBytes(static_cast<std::int32_t>(length + 1));
        if (types_) {
            XmlElementResult result;
            result.typeText = DataValueLine(text, child, {}, {});
            types_->add(reader_, name(), child, line, result);
        }
        children_.add(count_, name(), child, {});
        return true;
    }
    void firstChild() {
        given_.giveWay(reader_);
        collects_ = target_.takesText();
        if (!collects_) reader_.text.resize(text_);
    }

    XmlReader& reader_;
    XmlTarget target_;
    XmlGivenFields& given_;
    std::size_t name_, nameEnd_, text_;  // in the buffers of the reader
    std::int32_t count_ = 0;
    bool collects_ = true;
    XmlChildren children_;
    std::optional<XmlTypes> types_;  // with `discover`
};

}  // namespace

bool XmlIsReference(std::string_view text) {
    return text.size() > 1 && (text[1] == '#' || XmlIsNameStart(text[1]));
}

void XmlReadReference(const XmlReader& reader, std::string_view text, XmlReference& reference) {
    if (text[1] == '#')
        readCharacter(text, reference);
    else
        readEntity(reader, text, reference);
}

bool XmlContent(XmlReader& reader, XmlTarget target, XmlGivenFields& given, std::size_t name,
                std::string& typeText) {
    return Content(reader, target, given, name).read(typeText);
}

}  // namespace tarn
