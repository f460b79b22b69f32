// SPDX-License-Identifier: Apache-2.0
//
// What the modules of the XML reader share: the state of one read, and the steps that they are made of (xml_steps.cpp).
// The grammar is spread over xml_prolog.cpp (up to the first element), xml_element.cpp (tags and attributes),
// xml_content.cpp (what stands between tags) and xml_entities.cpp; xml_bind.cpp puts data into values, and
// xml_types.cpp makes type information text of the structure.
//
// Errors that operations on values leave in the error cell are taken from there into the record at once:
// `XmlReading` puts the cell aside for the whole read.
#pragma once

#include "kernel/data/scanner/scanner.h"
#include "kernel/data/scanner/scanner_bytes.h"
#include "kernel/data/xml/xml.h"
#include "kernel/data/xml/xml_entities.h"
#include "kernel/data/xml/xml_reader.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/progress.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tarn {

// ---- limits ----

// Characters of one element, its children's not counted.
inline constexpr std::int32_t MaxXmlText = 32768;
// Characters of the type information text of one element.
inline constexpr std::int32_t MaxXmlTypeText = 32768;
// Elements inside one another; more would be too many for the text of their types as well.
inline constexpr std::int32_t MaxXmlDepth = 250;

// ---- the state of a read ----

enum XmlSymbol : std::int32_t {
    XmlDeclaration = 1,  // <?xml
    XmlInstructionEnd,   // ?>
    XmlInstruction,      // <?
    XmlPercent,
    XmlVersion,
    XmlEncoding,
    XmlStandalone,
    XmlDoctype,
    XmlSystem,
    XmlPublic,
    XmlNdata,
    XmlElementDeclaration,
    XmlAttlist,
    XmlEntity,
    XmlNotation,
    XmlCdata,
    XmlTag,  // <
    XmlName,
    XmlEmptyEnd,  // />
    XmlTagEnd,    // >
    XmlEndTag,    // </
    XmlEquals,
    XmlOpen,   // [
    XmlClose,  // ]
    XmlSingleQuoted,
    XmlDoubleQuoted,
    XmlComment,
};

// What the children of the outermost element are to a table.
enum class XmlTableForm {
    Rows,
    Values,       // each is the first field of a row
    RowsInFirst,  // the first holds the rows, the others are nothing
};

// Made once for a read.
struct XmlTables {
    SymbolTable symbols;
    EntityTable entities;
};

// One read of one file.
struct XmlPass {
    Scanner& scan;
    XmlTables& tables;
    bool discover;  // the structure is wanted
    XmlTableForm form = XmlTableForm::Rows;
    XmlEvents* events = nullptr;  // of a walk; then there is no value
    XmlCharacters characters = XmlCharacters::Bytes;
    std::int32_t longestText = MaxXmlText;
    ErrorRecord error{};
    ErrorRecord memory{};              // the first failure for want of memory: nothing of this read counts
    bool stopped = false;              // by the user: nothing of this read counts
    bool abandoned = false;            // what follows cannot be read
    ErrorRecord lost{};                // the first data that the value has no place for
    std::int32_t depth = 0;            // open elements
    std::string names{};               // of the open elements, and of a child that was just read
    std::string text{};                // of the open elements, one behind another
    std::int64_t size = 0, shown = 0;  // bytes of the file, and how many were there at the last progress

    [[nodiscard]] bool ended() const { return stopped || abandoned; }
};

// A value that takes what an element holds; null: nothing does.
struct XmlTarget {
    void* value = nullptr;
    Kind kind = KindNone;
    // What is made of one text: kinds 1 to 6, and sets.
    [[nodiscard]] bool takesText() const {
        return value != nullptr && (kind <= KindString || kind == KindSet);
    }
    [[nodiscard]] bool hasFields() const {
        return value != nullptr && (kind == KindRecord || kind == KindUnion);
    }
};

// The fields of a record or union, one after another; behind the last there is none.
class XmlFields {
public:
    explicit XmlFields(XmlTarget target) {
        if (target.hasFields()) record_ = static_cast<RecordDescriptor*>(target.value);
    }
    XmlTarget next() {
        const Kind kind = record_ != nullptr ? FieldKindAt(record_->kinds, number_ + 1) : KindNone;
        if (kind == KindNone) return {};
        ++number_;
        char* const field = At(record_->data) + offset_;
        offset_ += KindSize[kind];
        return {field, kind};
    }

private:
    RecordDescriptor* record_ = nullptr;
    std::int32_t number_ = 0, offset_ = 0;
};

// What an element tells the one around it.
struct XmlElementResult {
    std::string typeText;       // with `discover`
    std::string typeAttribute;  // with `discover`
    std::string index;
};

// ---- steps (xml_steps.cpp) ----

// At the place of the scanner.
void XmlReport(XmlPass& pass, std::int32_t code, std::string_view message);
// Without a place; the message is the text of the code when it is empty.
ErrorRecord XmlFailure(std::int32_t code, std::string_view message = {});
// What an element holds has no place in the value. That is no error of the read, but a table may be read in
// another form.
void XmlNoteLost(XmlPass& pass, std::string_view what, std::string_view element);
// What a move of the scanner found; in a new line it also tells how far the read is, from time to time.
void XmlNoteFinding(XmlPass& pass, ScanStatus status);
inline void XmlNoteStatus(XmlPass& pass, ScanStatus status) {
    const bool far = pass.scan.bytesRead() - pass.shown >= ProgressStep;
    if ((status != ScanClean && status != ScanNewLine) || far) XmlNoteFinding(pass, status);
}
inline void XmlNext(XmlPass& pass) {
    const ScanStatus status = pass.scan.next(&pass.tables.symbols);
    if (status != ScanClean) XmlNoteStatus(pass, status);
}
void XmlReportSymbol(XmlPass& pass);
// False, and reported, when the symbol is none of these.
inline bool XmlCheck(XmlPass& pass, std::initializer_list<std::int32_t> allowed) {
    const std::int32_t found = pass.scan.symbol();
    for (const std::int32_t symbol : allowed)
        if (found == symbol) return true;
    XmlReportSymbol(pass);
    return false;
}
// Checks the symbol and scans on if it is the one.
bool XmlExpect(XmlPass& pass, std::int32_t symbol);
// Before a name is scanned: false when a blank stands there.
bool XmlNameFollows(const XmlPass& pass);
// Passes over everything up to and including `mark`; false at the end of the file.
bool XmlSkipPast(XmlPass& pass, std::string_view mark);
// A list or a table that is held in a file and not open.
bool XmlIsUnopened(const void* value, Kind kind);
inline bool XmlIsNameStart(char c) {
    return isByte(static_cast<unsigned char>(c), ByteXmlStart);
}
inline bool XmlIsNamePart(char c) {
    return isByte(static_cast<unsigned char>(c), ByteXmlPart);
}
// Without the blanks and line ends around it.
inline std::string_view XmlTrimmed(std::string_view text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}
inline bool XmlIsBlank(std::string_view text) {
    return XmlTrimmed(text).empty();
}

// ---- the grammar ----

void XmlProlog(XmlPass& pass);
// Processing instructions and comments. The symbol `<?xml` counts as one where its name goes on.
void XmlMisc(XmlPass& pass);
struct XmlGivenFields;
// From behind the `<` to behind the element. The name stays in `pass.names`.
void XmlElement(XmlPass& pass, XmlTarget target, XmlElementResult& result);
// Its parts: the start tag, true when content follows; and the end tag, from behind the `</` to the `>`, of
// the element whose name begins there in `pass.names`.
bool XmlStartElement(XmlPass& pass, XmlTarget target, XmlElementResult& result, XmlGivenFields& given);
void XmlReadEndTag(XmlPass& pass, std::size_t name);

// What the attributes of an element gave to its target: they give way to content.
struct XmlGivenFields {
    XmlTarget target;
    std::int32_t count = 0;
    bool failed = false;    // one of them left the error in the record
    bool unplaced = false;  // there are some, and no record to take them
    void giveWay(XmlPass& pass);
};
// From behind the start tag to behind the `</`; false, and reported, when there is none. `name` begins there
// in `pass.names`. `typeText` is what the content alone says.
bool XmlContent(XmlPass& pass, XmlTarget target, XmlGivenFields& given, std::size_t name,
                std::string& typeText);

// Goes on with a walk to behind the end of an element that stands `depth` deep. False at the end of the
// outermost, and where what follows cannot be read. `open`: where the names of the open elements begin.
bool XmlWalk(XmlPass& pass, std::vector<std::size_t>& open, std::size_t depth);

// A reference at the head of a text: '&' and then a name or '#'.
struct XmlReference {
    std::size_t length = 0;        // of what was read
    std::string_view replacement;  // points into the table of entities, or to `character`
    std::string message;           // "" or what is wrong
    std::array<char, 4> character{};
};
bool XmlIsReference(std::string_view text);
void XmlReadReference(const XmlPass& pass, std::string_view text, XmlReference& reference);

// ---- binding (xml_bind.cpp) ----

void XmlBindText(XmlPass& pass, XmlTarget target, std::string_view text);

// Finds a place for each child of an element, and adds it.
class XmlChildren {
public:
    XmlChildren(XmlPass& pass, XmlTarget target)
        : pass_(pass), target_(target), fields_(target),
          form_(pass.depth == 0 ? pass.form : XmlTableForm::Rows) {}
    ~XmlChildren();
    XmlChildren(const XmlChildren&) = delete;
    XmlChildren& operator=(const XmlChildren&) = delete;

    // Of the next child.
    XmlTarget destination();
    // The child was read into its destination.
    void add(std::int32_t n, std::string_view parent, std::string_view child, std::string_view index);
    // There are no more.
    void finish();

private:
    using Subscripts = std::array<std::int32_t, MaxDimensions>;

    bool makeScratch(const void* like, Kind kind);
    void clearScratch();
    XmlTarget scratch() { return {bytes_, scratchKind_}; }
    XmlTarget listSlot();
    [[nodiscard]] bool isListInFile() const;
    XmlTarget arrayElement();
    XmlTarget tableRow();
    XmlTarget placeInTable();
    bool readIndex(std::string_view text, Subscripts& at, std::int32_t& dimensions) const;
    void nthElement(std::int32_t n, Subscripts& at, std::int32_t& dimensions) const;
    bool extend(const Subscripts& at, std::int32_t dimensions);
    bool redim(const ArrayBounds (&bounds)[MaxDimensions]);
    std::int32_t addToArray(std::int32_t n, std::string_view index);
    void report(std::int32_t code, std::int32_t n, std::string_view parent, std::string_view child);

    XmlPass& pass_;
    XmlTarget target_;
    XmlFields fields_;
    XmlTableForm form_;
    bool given_ = false;           // the table has gone to the first child
    Kind scratchKind_ = KindNone;  // once there is one
    bool holdsTexts_ = false;      // the scratch is a record of numbers and strings
    char bytes_[sizeof(ArrayDescriptor)] = {};
    std::int32_t failed_ = 0;  // to make a place for the child that is being read
    // The bounds that the children of a growable array need; it may have some to spare until the end.
    ArrayBounds used_[MaxDimensions] = {};
};

// ---- types (xml_types.cpp) ----

// The type text of an element, child by child. Texts stop growing behind MaxXmlTypeText; the element tells.
class XmlTypes {
public:
    void add(XmlPass& pass, std::string_view parent, std::string_view child, std::int32_t firstLine,
             XmlElementResult& result);
    // `text`: the character data, which counts where there are no children.
    std::string finish(std::string_view name, std::string_view text) const;

private:
    void addField(XmlPass& pass, std::string_view parent, std::string_view child, std::string_view text);
    void addElement(XmlPass& pass, std::string_view child, std::int32_t firstLine, const std::string& text);

    std::int32_t children_ = 0;
    bool list_ = false, broken_ = false;     // broken: elements of the list differ
    std::string first_;                      // the name of the first child
    std::string text_;                       // of the fields, or of the element of the list; no indent
    std::unordered_set<std::string> seen_;   // some of the elements that the text fits already
    std::unordered_set<std::string> names_;  // of the fields, in lower case
};

void XmlAppendDeeper(std::string& to, std::string_view text);

// ---- whole reads (xml_read.cpp) ----

struct XmlReading {
    XmlReader& reader;
    const std::string& filename;
    std::string* typeText = nullptr;
    std::int32_t typeTextSize = 0;
    XmlTableForm form = XmlTableForm::Rows;
    XmlEvents* events = nullptr;
    XmlCharacters characters = XmlCharacters::Bytes;
    XmlLengths lengths = XmlLengths::Told;

    [[nodiscard]] XmlReadResult read(void* value, Kind kind) const;

    // The parts of a read: the file is opened, unless there is an error; and what the reader has read, closed.
    [[nodiscard]] XmlReadResult begin() const;
    static XmlReadResult end(XmlReader& reader);

private:
    [[nodiscard]] XmlReadResult readFile(XmlTarget target) const;
    [[nodiscard]] XmlReadResult readFresh(void* value, Kind kind) const;
};
// That of the operations in xml.h.
XmlReader& XmlReaderOfOperations();

}  // namespace tarn
