// SPDX-License-Identifier: Apache-2.0
//
// Values as XML.
#include "kernel/data/elements.h"
#include "kernel/data/filetext.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/data/xml/xml_words_internal.h"
#include "kernel/index/indexes.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/tables/tables.h"
#include "kernel/text/dates.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <new>
#include <vector>

namespace tarn {

namespace {

constexpr std::string_view lineEnd = "\r\n", rootName = "data", childName = "component";

void appendString(std::string& out, const StringDescriptor* s) {
    XmlAppendEscaped(out, CharacterWidth == 1 ? StringView(s) : NarrowText(s).view());
}

bool isWrittenAsText(Kind kind) {
    return kind <= KindString || kind == KindSet;
}

// What no attribute can hold: control characters end a string in a tag, and of tabs and line feeds other
// readers make blanks.
bool endsStrings(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

// ---- the file ----

class Writer {
public:
    Writer(const std::string& filename, std::int32_t options)
        : fieldAttributes_((options & XmlFieldAttributes) != 0), file_(filename), out_(file_.text) {}

    XmlResult write(const void* value, Kind kind, std::string_view names) {
        char now[DateSize] = "";
        DateNow(now, DateSize);
        line(0, R"(<?xml version="1.0"?>)");
        line(0, "<!-- \"" + std::string(ProductWord) + " XML file\" \"" + now + "\" -->");
        given_ = XmlNamesOfLines(names);
        element({value, kind, rootName, {}, 0, &given_});
        XmlResult result;
        result.stopped = file_.stopped();
        if (code_ == 0 && !result.stopped) fail(file_.finish(result.rescueCopy));
        if (code_ != 0)
            result.error = XmlFailure(code_, message_);
        else if (!result.stopped)
            result.count = count_;
        return result;
    }

private:
    struct Item {
        const void* value;
        Kind kind;
        std::string_view name;
        std::string index;
        std::int32_t depth;
        const XmlNames* names;  // of the fields of a record, or of those in it; null: none
    };

    [[nodiscard]] bool ended() const { return code_ != 0 || !file_.good(); }
    void fail(std::int32_t error, std::string_view what = {}) {
        if (code_ != 0) return;
        code_ = error;
        message_ = what;
    }
    void indent(std::int32_t depth) { out_.append(static_cast<std::size_t>(depth) * 2, ' '); }
    void line(std::int32_t depth, std::string_view text) {
        indent(depth);
        out_.append(text).append(lineEnd);
    }
    void startTag(const Item& item) {
        indent(item.depth);
        out_.append("<")
            .append(item.name)
            .append(" type=\"")
            .append(XmlTypeOf(item.value, item.kind))
            .append("\"");
        if (!item.index.empty()) out_.append(" index=\"").append(item.index).append("\"");
    }
    void endTag(std::string_view name) { out_.append("</").append(name).append(">").append(lineEnd); }

    void element(const Item& item) {
        if (item.depth >= MaxXmlDepth) return fail(ERR_XML_TOO_COMPLEX);
        if (IsAdtKind(item.kind) && KindOf(item.value) != item.kind) return fail(AdtTypeError(item.kind));
        if (XmlIsUnopened(item.value, item.kind)) return fail(ERR_TYPE_NOT_STORABLE);
        const bool record = item.kind == KindRecord || item.kind == KindUnion;
        XmlNames names;
        if (record) names = namesOf(item);
        if (item.kind == KindRecord && fieldAttributes_ && isFlat(item, names) && flatRecord(item, names))
            return;
        if (ended()) return;
        const std::size_t start = out_.size();
        startTag(item);
        out_ += '>';
        if (isWrittenAsText(item.kind)) {
            text(item.value, item.kind);
            checkText(item, start);
            if (item.depth == 0) count_ = 1;
        } else {
            out_.append(lineEnd);
            if (record)
                fields(item, names);
            else
                components(item);
            indent(item.depth);
        }
        endTag(item.name);
    }

    // One of `total` inside another: counts, and tells how far the work is.
    void child(const Item& parent, const Item& item, std::int32_t total) {
        const double before = done_, share = share_;
        share_ = share / total;
        element(item);
        done_ = before + share_;
        share_ = share;
        if (parent.depth == 0) ++count_;
        file_.pass(done_);
    }

    // ---- texts ----

    void text(const void* value, Kind kind) {
        switch (kind) {
        case KindBoolean: out_.append(BooleanToText(ReadAt<std::uint8_t>(value) != 0)); return;
        case KindEnum: out_.append(std::to_string(ReadAt<std::uint8_t>(value))); return;
        case KindInteger: out_.append(std::to_string(ReadAt<std::int32_t>(value))); return;
        case KindFixed: out_.append(FixedToText(ReadAt<Fixed>(value))); return;
        case KindReal: out_.append(RealToText(ReadAt<double>(value), RealTextDecimals)); return;
        case KindString: return appendString(out_, static_cast<const StringDescriptor*>(value));
        default: break;
        }
        String text;
        SetToText(static_cast<const SetDescriptor*>(value), true, text.get());
        fail(TakeError());
        appendString(out_, text.get());
    }

    // Refuses what the reader would not take, or would take for something else. `start`: of the element.
    void checkText(const Item& item, std::size_t start) {
        std::string_view lines = std::string_view(out_).substr(start);
        const std::size_t behind = item.name.size() + 3;  // of the end tag
        const bool small = lines.size() + behind < std::size_t{MaxXmlText};
        if (item.kind == KindString && lines.find('\x1A') != std::string_view::npos)
            return fail(ERR_XML_DATA, place(item) + "has the character 26, which would end the file");
        if (small) return;
        if (item.kind == KindString &&
            StringLength(static_cast<const StringDescriptor*>(item.value)) > MaxXmlText)
            return fail(ERR_XML_OVERFLOW,
                        place(item) + "is too long, max length is " + std::to_string(MaxXmlText));
        for (std::size_t end = 0; end < lines.size(); lines.remove_prefix(std::min(end + 1, lines.size()))) {
            end = std::min(lines.find('\n'), lines.size());
            const std::size_t length = end + (end == lines.size() ? behind : 0);
            if (length >= std::size_t{MaxScannerLine})
                return fail(ERR_XML_OVERFLOW, place(item) + "makes a line too long, max length is " +
                                                  std::to_string(MaxScannerLine));
        }
    }
    [[nodiscard]] std::string place(const Item& item) const {
        const std::string number =
            item.depth == 0 ? std::string() : "Item " + std::to_string(count_ + 1) + ": ";
        return number + "the text of '" + std::string(item.name) + "' ";
    }

    // ---- records ----

    static XmlNames namesOf(const Item& item) {
        const auto* record = static_cast<const RecordDescriptor*>(item.value);
        return XmlFieldNames(item.names != nullptr ? *item.names : XmlNames(), FieldCountOf(record->kinds));
    }
    static bool isFlat(const Item& item, const XmlNames& names) {
        const auto* record = static_cast<const RecordDescriptor*>(item.value);
        for (std::int32_t n = 1; n <= FieldCountOf(record->kinds); ++n)
            if (FieldKindAt(record->kinds, n) > KindString) return false;
        return std::none_of(names.begin(), names.end(), XmlIsReserved);
    }
    // False, with nothing written, for what would not come back from attributes.
    bool flatRecord(const Item& item, const XmlNames& names) {
        const auto* record = static_cast<const RecordDescriptor*>(item.value);
        const std::int32_t fields = FieldCountOf(record->kinds);
        const std::size_t start = out_.size();
        startTag(item);
        for (std::int32_t n = 1; n <= fields && !ended(); ++n) {
            const Kind kind = FieldKindAt(record->kinds, n);
            const void* const field = RecordFieldAddress(record, n);
            if (kind == KindString && KindOf(field) != kind) {
                fail(AdtTypeError(kind));
                break;
            }
            out_.append(" ").append(names[static_cast<std::size_t>(n - 1)]).append("=\"");
            text(field, kind);
            out_ += '"';
        }
        out_ += "/>";
        const std::string_view line = std::string_view(out_).substr(start);
        if (line.size() >= std::size_t{MaxScannerLine} ||
            std::any_of(line.begin(), line.end(), endsStrings)) {
            out_.resize(start);
            return false;
        }
        out_.append(lineEnd);
        if (item.depth == 0) count_ = fields;
        return true;
    }
    void fields(const Item& item, const XmlNames& names) {
        const auto* record = static_cast<const RecordDescriptor*>(item.value);
        const std::int32_t fields = FieldCountOf(record->kinds);
        for (std::int32_t n = 1; n <= fields && !ended(); ++n)
            child(item,
                  {RecordFieldAddress(record, n),
                   FieldKindAt(record->kinds, n),
                   names[static_cast<std::size_t>(n - 1)],
                   {},
                   item.depth + 1,
                   nullptr},
                  fields);
    }

    // ---- values of many ----

    void components(const Item& item) {
        // The names are those of the records in the outermost value.
        const XmlNames* const names = item.depth == 0 ? item.names : nullptr;
        switch (item.kind) {
        case KindList: return list(item, names);
        case KindArray: return array(item, names);
        default: return table(item);
        }
    }
    void list(const Item& item, const XmlNames* names) {
        const auto* l = static_cast<const ListDescriptor*>(item.value);
        ElementSource elements(l, KindList);
        for (std::int32_t i = 0; i < l->count && !ended(); ++i) {
            const void* const element = elements.at(i);
            if (element == nullptr) return fail(TakeError());
            child(item, {element, elements.kind(), childName, {}, item.depth + 1, names}, l->count);
        }
    }
    void array(const Item& item, const XmlNames* names) {
        const auto* a = static_cast<const ArrayDescriptor*>(item.value);
        const std::int32_t elements = ArrayElementCount(a), dimensions = ArrayDimensions(a);
        std::int32_t at[MaxDimensions] = {a->bounds[0].lower, a->bounds[1].lower, a->bounds[2].lower};
        for (std::int32_t i = 0; i < elements && !ended(); ++i) {
            std::string index = std::to_string(at[0]);
            for (std::int32_t d = 1; d < dimensions; ++d) index += "," + std::to_string(at[d]);
            const void* const element = At(a->data) + std::int64_t{i} * KindSize[a->tag];
            child(item, {element, static_cast<Kind>(a->tag), childName, index, item.depth + 1, names},
                  elements);
            for (std::int32_t d = dimensions - 1; d >= 0 && ++at[d] > a->bounds[d].upper && d > 0; --d)
                at[d] = a->bounds[d].lower;
        }
    }
    // In the order of the first index; by number without one.
    void table(const Item& item) {
        const auto* t = static_cast<const TableDescriptor*>(item.value);
        const ListDescriptor* const rows = TableRows(t);
        const XmlNames names = XmlDeclaredNames(NarrowText(TableTypeInfo(t)).view());
        const bool indexed = TableIndexCount(t) > 0;
        if (ListIsInFile(rows)) return indexed ? fileTable(item, *t, names) : fileRows(item, *rows, names);
        RecordValue key;
        IndexHit hit;
        if (indexed && rows->count > 0) {
            TableKeyFromRow(t, 1, static_cast<const RecordDescriptor*>(ListRef(rows, 1)), key.get());
            hit = IndexFind("FIRST", TableRoot(t, 1), {}, nullptr, key.get());
        }
        for (std::int32_t i = 1; i <= rows->count && !ended(); ++i) {
            const void* const row = indexed && !hit.found ? nullptr : ListRef(rows, indexed ? hit.row : i);
            fail(TakeError());
            if (row == nullptr) return fail(ERR_INDEX_TYPE);
            child(item, {row, KindRecord, childName, {}, item.depth + 1, &names}, rows->count);
            if (indexed) hit = IndexFind("GT", TableRoot(t, 1), {}, key.get(), key.get());
        }
        fail(TakeError());
    }

    void fileRows(const Item& item, const ListDescriptor& rows, const XmlNames& names) {
        ElementSource elements(&rows, KindList);
        for (std::int32_t i = 0; i < rows.count && !ended(); ++i) {
            const void* const row = elements.at(i);
            if (row == nullptr) return fail(TakeError());
            child(item, {row, KindRecord, childName, {}, item.depth + 1, &names}, rows.count);
        }
    }
    // Each row tells the key of the next.
    void fileTable(const Item& item, const TableDescriptor& t, const XmlNames& names) {
        RecordValue row, key;
        bool found = false;
        TableFind("FIRST", &t, 1, nullptr, row.get(), found);
        for (std::int32_t i = 0; i < t.count && found && !ended(); ++i) {
            child(item, {row.get(), KindRecord, childName, {}, item.depth + 1, &names}, t.count);
            TableKeyFromRow(&t, 1, row.get(), key.get());
            TableFind("GT", &t, 1, key.get(), row.get(), found);
        }
        fail(TakeError());
    }

    bool fieldAttributes_;
    FileText file_;
    std::string& out_;             // the text of it
    std::int32_t code_ = 0;        // the first failure
    std::string message_;          // of it; "": what the code says
    std::int32_t count_ = 0;       // items inside the outermost element; 1 for a text
    double done_ = 0, share_ = 1;  // of the whole value: what is written, and what is being written
    XmlNames given_;
};

}  // namespace

XmlResult XmlSave(const std::string& filename, std::int32_t options, const void* value, Kind kind,
                  std::string_view names) {
    XmlResult result;
    if (filename.empty() || value == nullptr || !IsValueKind(kind)) {
        result.error = XmlFailure(ERR_UNIDENTIFIABLE);
    } else {
        const ErrorCellAside aside;
        try {
            result = Writer(filename, options).write(value, kind, names);
        } catch (const std::bad_alloc&) {
            result.error = XmlFailure(ERR_OUT_OF_MEMORY);
        }
    }
    const std::int32_t code = result.error.code;
    if (code == ERR_UNIDENTIFIABLE || code == ERR_TYPE_NOT_STORABLE) SetError(code);
    return result;
}

}  // namespace tarn
