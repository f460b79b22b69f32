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
#include "os/text/utf8.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace tarn {

namespace {

constexpr std::size_t maxReference = 500;
constexpr unsigned lastCharacter = 0x10FFFF;

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

// Digits that the base does not have end the number, and its upper bits are lost: then it is not `exact`.
unsigned numberOf(std::string_view digits, bool& exact) {
    unsigned base = 10, value = 0;
    if (digits.substr(0, 1) == "x") {
        base = 16;
        digits.remove_prefix(1);
    }
    exact = !digits.empty();
    for (const char c : digits) {
        const auto digit = static_cast<unsigned>(ascii::hexDigit(c));
        exact = exact && digit < base && value <= lastCharacter;
        if (digit >= base) break;  // or no digit at all
        value = value * base + digit;
    }
    return value;
}

// The bytes of a character; 0 for what XML has none of.
std::size_t putUtf8(unsigned code, std::array<char, 4>& bytes) {
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code == 0 || surrogate || code > lastCharacter) return 0;
    return utf8::put(code, bytes.data());
}

void readCharacter(const XmlPass& pass, std::string_view text, XmlReference& reference) {
    std::size_t end = 2;
    while (end < text.size() && end < 2 + maxReference && isReferenceDigit(text[end])) ++end;
    reference.length = end;
    if (text.substr(end, 1) != ";") {
        reference.message = "Symbol \";\" must occur at end of a character reference";
        return;
    }
    ++reference.length;
    bool exact = false;
    const unsigned number = numberOf(text.substr(2, end - 2), exact);
    std::size_t length = 1;
    if (pass.characters == XmlCharacters::Bytes)
        reference.character[0] = static_cast<char>(number & 255U);
    else
        length = exact ? putUtf8(number, reference.character) : 0;
    reference.replacement = {reference.character.data(), length};
    if (length == 0)
        reference.message =
            std::string("The character reference ").append(text.substr(0, end + 1)) + " is not allowed";
}

void readEntity(const XmlPass& pass, std::string_view text, XmlReference& reference) {
    std::size_t end = 1;
    while (end < text.size() && XmlIsNamePart(text[end])) ++end;
    const std::string name = std::string(text.substr(0, end)) + ";";
    if (!EntityFind(pass.tables.entities, name, reference.replacement))
        reference.message = "The entity reference " + name + " is not allowed";
    const bool closed = text.substr(end, 1) == ";";
    if (!closed && reference.message.empty())
        reference.message = "Symbol \";\" must occur at end of an entity reference";
    reference.length = closed ? end + 1 : end;
}

// An element with a text between its tags, all in one line.
struct Plain {
    std::string_view name, text;
    [[nodiscard]] std::size_t size() const { return 2 * name.size() + text.size() + 4; }  // without the `<`
};

// At the name of an element.
bool findPlain(std::string_view rest, Plain& plain) {
    std::size_t length = 1;
    while (XmlIsNamePart(rest[length])) ++length;
    if (rest[length] != '>') return false;
    plain.name = rest.substr(0, length);
    std::size_t end = length + 1;
    while (!isMark(rest[end])) ++end;
    plain.text = rest.substr(length + 1, end - length - 1);
    if (rest[end] != '<' || rest[end + 1] != '/') return false;
    return rest.substr(end + 2).starts_with(plain.name) && rest[end + 2 + length] == '>';
}

class Content {
public:
    Content(XmlPass& pass, XmlTarget target, XmlGivenFields& given, std::size_t name)
        : pass_(pass), target_(target), given_(given), name_(name), nameEnd_(pass.names.size()),
          text_(pass.text.size()), collects_(pass.events == nullptr), children_(pass, target) {
        if (pass.discover) types_.emplace();
    }
    ~Content() { pass_.text.resize(text_); }
    Content(const Content&) = delete;
    Content& operator=(const Content&) = delete;

    // Of a walk: goes on to behind the end of an element that stands `depth` deep, or of the outermost. False:
    // that, or what follows cannot be read. `open`: where the names of the open elements begin.
    bool walk(std::vector<std::size_t>& open, std::size_t depth) {
        while (!pass_.ended() && !open.empty()) {
            childEnded_ = childOpened_ = false;
            nameEnd_ = pass_.names.size();
            if (step()) {
                if (childOpened_) open.push_back(nameEnd_);
                if (childEnded_ && open.size() + 1 == depth) return true;
            } else if (!pass_.ended()) {
                if (leave(open) && open.size() + 1 == depth) return true;
            }
            // Most tags end their line: a step less for each.
            if (pass_.scan.character() == LineEnd && !open.empty() && !pass_.ended()) passLineEnd();
        }
        return false;
    }

    bool read(std::string& typeText) {
        while (!pass_.ended() && step()) {}
        if (pass_.ended()) return false;
        const bool closed = enterEndTag();
        children_.finish();
        const std::string_view text = std::string_view(pass_.text).substr(text_);
        if (given_.unplaced) given_.unplaced = count_ == 0 && XmlIsBlank(text);
        if (target_.takesText()) {
            XmlBindText(pass_, target_, text);
        } else if (count_ == 0 && !XmlIsBlank(text)) {
            given_.giveWay(pass_);
            if (target_.value != nullptr) XmlNoteLost(pass_, "The text", name());
        }
        if (types_) typeText = types_->finish(name(), text);
        return closed || XmlCheck(pass_, {XmlEndTag});
    }

private:
    [[nodiscard]] std::string_view name() const {
        return std::string_view(pass_.names).substr(name_, nameEnd_ - name_);
    }

    // False at the end of the file.
    bool enterEndTag() {
        if (pass_.scan.remainder().starts_with("</")) {
            pass_.scan.skipBytes(2);
            return true;
        }
        XmlNext(pass_);
        return false;
    }

    // Of a walk: the innermost element has ended. False: it was the outermost.
    bool leave(std::vector<std::size_t>& open) {
        if (enterEndTag() || XmlCheck(pass_, {XmlEndTag})) XmlReadEndTag(pass_, open.back());
        pass_.events->end();
        pass_.names.resize(open.back());
        open.pop_back();
        if (open.empty()) return false;
        --pass_.depth;
        return true;
    }

    // A run of text and what stands behind it. False at the end of the content.
    bool step() {
        const std::string_view rest = pass_.scan.remainder();
        std::size_t length = 0;
        while (!isMark(rest[length])) ++length;
        const auto mark = static_cast<unsigned char>(rest[length]);
        if (mark == LineEnd) {
            append(rest);
            pass_.scan.skipBytes(static_cast<std::int32_t>(length));
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
        if (XmlIsReference(pass_.scan.remainder()))
            reference();
        else
            takeBytes(1);
        return true;
    }

    // ---- text ----

    void append(std::string_view text) {
        if (pass_.events != nullptr && !text.empty()) tellText(text);
        if (!collects_) return;
        const std::size_t room = static_cast<std::size_t>(pass_.longestText) - (pass_.text.size() - text_);
        if (text.size() > room)
            XmlReport(pass_, ERR_XML_OVERFLOW,
                      "Character data at this nesting level is too long, max length is " +
                          std::to_string(pass_.longestText));
        pass_.text.append(text.substr(0, room));
    }
    void tellText(std::string_view text) {
        if (isGiven_)
            pass_.events->givenText(text);
        else
            pass_.events->text(text);
    }
    void takeBytes(std::size_t count) {
        append(pass_.scan.remainder().substr(0, count));
        pass_.scan.skipBytes(static_cast<std::int32_t>(count));
    }
    void passLineEnd() {
        append(pass_.scan.remainder());
        nextLine();
    }
    void nextLine() { XmlNoteStatus(pass_, pass_.scan.skipChar()); }

    void reference() {
        XmlReference reference;
        XmlReadReference(pass_, pass_.scan.remainder(), reference);
        pass_.scan.skipBytes(static_cast<std::int32_t>(reference.length));
        if (!reference.message.empty()) XmlReport(pass_, ERR_XML_NOT_WELL_FORMED, reference.message);
        isGiven_ = true;
        append(reference.replacement);
        isGiven_ = false;
    }

    // ---- marks ----

    void markup() {
        XmlNext(pass_);
        isGiven_ = XmlCheck(pass_, {XmlCdata, XmlComment}) && pass_.scan.symbol() == XmlCdata;
        if (isGiven_) takeVerbatim();
        isGiven_ = false;
    }
    void takeVerbatim() {
        constexpr std::string_view mark = "]]>";
        for (;;) {
            std::string_view rest = pass_.scan.remainder();
            rest = rest.substr(0, rest.find(static_cast<char>(EndOfFileMark)));
            const std::size_t found = rest.find(mark);
            takeBytes(std::min(found, rest.size()));
            if (found != std::string_view::npos)
                return pass_.scan.skipBytes(static_cast<std::int32_t>(mark.size()));
            if (pass_.scan.character() != LineEnd || pass_.ended()) return;
            nextLine();
        }
    }
    void instruction() {
        pass_.scan.skipBytes(2);
        XmlSkipPast(pass_, "?>");
    }

    // ---- children ----

    void child() {
        if (pass_.depth == MaxXmlDepth) {
            XmlReport(pass_, ERR_XML_TOO_COMPLEX, "XML file structure is too large or too deeply nested");
            pass_.abandoned = true;
            return;
        }
        const std::int32_t line = pass_.scan.lineNumber();
        if (++count_ == 1) firstChild();
        const bool bare = target_.value == nullptr;
        if (bare && passPlainChild(line)) return;
        pass_.scan.skipBytes(1);
        const XmlTarget destination = bare ? XmlTarget{} : children_.destination();
        if (plainChild(destination, line)) return;
        if (pass_.events != nullptr) return walkedChild();
        XmlElementResult result;
        ++pass_.depth;
        XmlElement(pass_, destination, result);
        --pass_.depth;
        const std::string_view child = std::string_view(pass_.names).substr(nameEnd_);
        if (types_) types_->add(pass_, name(), child, line, result);
        children_.add(count_, name(), child, result.index);
        pass_.names.resize(nameEnd_);
    }
    // The walk goes on in it.
    void walkedChild() {
        XmlElementResult none;
        XmlGivenFields given;
        childOpened_ = XmlStartElement(pass_, {}, none, given);
        childEnded_ = !childOpened_;
        if (childOpened_) {
            ++pass_.depth;
        } else {
            pass_.events->end();
            pass_.names.resize(nameEnd_);
        }
    }
    // Most children are plain: they go from the line to their destination.
    bool plainChild(XmlTarget destination, std::int32_t line) {
        if (destination.value != nullptr && !destination.takesText()) return false;
        Plain plain;
        if (!findPlain(pass_.scan.remainder(), plain)) return false;
        const std::size_t rest = plain.name.size() + 1;  // of the end tag
        pass_.scan.skipBytes(static_cast<std::int32_t>(plain.size() - rest));
        if (destination.value != nullptr) XmlBindText(pass_, destination, plain.text);
        pass_.scan.skipBytes(static_cast<std::int32_t>(rest));
        addType(plain, line);
        children_.add(count_, name(), plain.name, {});
        return true;
    }
    // The same where there is no value at all, from the `<` on.
    bool passPlainChild(std::int32_t line) {
        Plain plain;
        if (!findPlain(pass_.scan.remainder().substr(1), plain)) return false;
        if (pass_.events != nullptr) tell(plain.name, line, plain.text);
        pass_.scan.skipBytes(static_cast<std::int32_t>(plain.size() + 1));
        addType(plain, line);
        return true;
    }
    void addType(const Plain& plain, std::int32_t line) {
        if (!types_) return;
        XmlElementResult result;
        result.typeText = DataValueLine(plain.text, plain.name, {}, {});
        types_->add(pass_, name(), plain.name, line, result);
    }
    void tell(std::string_view child, std::int32_t line, std::string_view text) {
        pass_.events->start(child, line);
        if (!text.empty()) pass_.events->text(text);
        pass_.events->end();
        childEnded_ = true;
    }
    void firstChild() {
        given_.giveWay(pass_);
        collects_ = target_.takesText();
        if (!collects_) pass_.text.resize(text_);
    }

    XmlPass& pass_;
    XmlTarget target_;
    XmlGivenFields& given_;
    std::size_t name_, nameEnd_, text_;  // in the buffers of the pass
    std::int32_t count_ = 0;
    bool collects_;                                  // text may be wanted at the end
    bool isGiven_ = false;                           // the text at hand, by a reference or a section
    bool childOpened_ = false, childEnded_ = false;  // in the last step of a walk
    XmlChildren children_;
    std::optional<XmlTypes> types_;  // with `discover`
};

}  // namespace

bool XmlIsReference(std::string_view text) {
    return text.size() > 1 && (text[1] == '#' || XmlIsNameStart(text[1]));
}

void XmlReadReference(const XmlPass& pass, std::string_view text, XmlReference& reference) {
    if (text[1] == '#')
        readCharacter(pass, text, reference);
    else
        readEntity(pass, text, reference);
}

bool XmlWalk(XmlPass& pass, std::vector<std::size_t>& open, std::size_t depth) {
    XmlGivenFields none;
    return Content(pass, {}, none, 0).walk(open, depth);
}

bool XmlContent(XmlPass& pass, XmlTarget target, XmlGivenFields& given, std::size_t name,
                std::string& typeText) {
    return Content(pass, target, given, name).read(typeText);
}

}  // namespace tarn
