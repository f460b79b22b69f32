// SPDX-License-Identifier: Apache-2.0
//
// Values into delimited text.
#include "kernel/data/datafile.h"
#include "kernel/data/elements.h"
#include "kernel/data/filetext.h"
#include "kernel/data/tab/tab_fields.h"
#include "kernel/data/tab/tab_rows.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/table_access.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/sets.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <vector>

namespace tarn {

namespace {

constexpr std::size_t longestName = 40;

// ---- names of columns ----

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

// The first line of each element of a declaration that is a value.
std::vector<std::string> namesOf(std::string_view description) {
    std::vector<std::string> names;
    for (std::size_t position = 0; position < description.size();) {
        const std::size_t start = position;
        const std::int32_t kind = TypeInfoToValue(description, position, nullptr);
        if (IsValueKind(kind)) names.push_back(TypeInfoName(description.substr(start), 1));
        if (position == start) break;
    }
    return names;
}

// The names that a table's own description gives its fields, one per line. The description is the fields
// alone, or the whole declaration.
std::string namesOfTable(const TableDescriptor* table, std::size_t fields) {
    std::string description(NarrowText(TableTypeInfo(table)).view());
    std::vector<std::string> names = namesOf(description);
    if (names.size() != fields) {
        TypeInfoStripOuter(description, MaxTypeInfo);
        names = namesOf(description);
    }
    std::string lines;
    for (const std::string& name : names) lines += name + '\n';
    return lines;
}

std::string nameOf(std::string_view& names, std::int32_t number) {
    std::string name(takeLine(names));
    name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return c == '"' || c == '\r'; }),
               name.end());
    if (name.empty()) name = "FIELD" + std::to_string(number);
    return name.substr(0, longestName);
}

// ---- rows ----

class RowWriter {
public:
    RowWriter(std::string& text, std::int32_t separator)
        : text_(text), separator_(separator), raw_(separator == NoTabSeparator) {}

    void row(const TabField& field, const char* at) {
        first_ = true;
        put(field, at);
        text_ += '\n';
    }
    // A text whose separators would end the cell.
    void cell(std::string_view characters) {
        if (!first_) text_ += static_cast<char>(separator_);
        first_ = false;
        const std::size_t start = text_.size();
        text_.append(characters);
        if (!raw_)
            std::replace(text_.begin() + static_cast<std::ptrdiff_t>(start), text_.end(),
                         static_cast<char>(separator_), '?');
    }
    [[nodiscard]] std::int32_t code() const { return code_; }

private:
    void plain(std::string_view characters) {
        if (!first_) text_ += static_cast<char>(separator_);
        first_ = false;
        text_.append(characters);
    }

    void put(const TabField& field, const char* at) {
        switch (field.kind) {
        case KindRecord:
        case KindUnion: {
            const char* const data = At(ReadAt<RecordDescriptor>(at).data);
            for (const TabField& inner : field.fields) put(inner, data + inner.offset);
            return;
        }
        case KindBoolean: return plain(ReadAt<std::uint8_t>(at) != 0 ? "True" : "False");
        case KindEnum: return putInteger(ReadAt<std::uint8_t>(at));
        case KindInteger: return putInteger(ReadAt<std::int32_t>(at));
        case KindFixed: return plain(FixedToText(ReadAt<Fixed>(at)));
        case KindReal: return plain(RealToText(ReadAt<double>(at), RealTextDecimals));
        case KindString: return putString(*reinterpret_cast<const StringDescriptor*>(at));
        case KindSet: return putSet(reinterpret_cast<const SetDescriptor*>(at));
        default: return putCharacters(ReadAt<ArrayDescriptor>(at));
        }
    }
    void putInteger(std::int32_t value) {
        char digits[12];
        plain({digits,
               static_cast<std::size_t>(std::to_chars(digits, digits + sizeof digits, value).ptr - digits)});
    }
    void putString(const StringDescriptor& s) {
        if (CharacterWidth == 1) return cell(StringView(&s));
        cell(NarrowTabText(&s));
    }
    void putSet(const SetDescriptor* set) {
        String literal;
        SetToText(set, true, literal.get());
        if (tarn_error_cell != 0) code_ = tarn_error_cell;
        plain(literal.view());
    }
    // Up to the first NUL and without the blanks that fill it up.
    void putCharacters(const ArrayDescriptor& array) {
        std::string_view characters(At(array.data), static_cast<std::size_t>(array.size));
        characters = characters.substr(0, characters.find('\0'));
        cell(characters.substr(0, characters.find_last_not_of(' ') + 1));
    }

    std::string& text_;
    std::int32_t separator_, code_ = 0;
    bool raw_, first_ = true;
};

class Saving {
public:
    Saving(const std::string& filename, const DataOptions& options, const TabField& row)
        : options_(options), row_(row), file_(filename), writer_(file_.text, options.separatorchar) {}

    DataResult run(const void* value, Kind kind, std::string_view names) {
        if (options_.separatorchar != NoTabSeparator) putHeaders(names);
        if (kind == KindString)
            putText(static_cast<const StringDescriptor*>(value));
        else
            putRows(value, kind);
        if (options_.separatorchar != NoTabSeparator) putFooters();
        const bool whole = result_.code == 0 && !file_.stopped();
        if (whole) result_.code = file_.finish(result_.rescueCopy);
        if (!whole || result_.code != 0) result_.rows = 0;
        result_.stopped = file_.stopped();
        return result_;
    }

private:
    // Ahead of all else in the file.
    void putHeaders(std::string_view names) {
        if (options_.numheaderrows < 1) return;
        const std::int32_t columns = row_.fields.empty() ? 1 : static_cast<std::int32_t>(row_.fields.size());
        for (std::int32_t n = 1; n <= columns; ++n) writer_.cell(nameOf(names, n));
        file_.text += '\n';
        if (options_.numheaderrows < 2) return;
        std::string dashes = file_.text;
        for (char& c : dashes) {
            if (c != '\n' && static_cast<unsigned char>(c) != options_.separatorchar) c = '-';
        }
        file_.text += dashes;
    }
    void putFooters() {
        if (options_.numfooterrows >= 2) file_.text += '\n';
        if (options_.numfooterrows < 1) return;
        file_.text +=
            "(" + std::to_string(result_.rows) + " row" + (result_.rows == 1 ? "" : "s") + " affected)\n";
    }

    void putText(const StringDescriptor* s) {
        std::string text = CharacterWidth == 1 ? std::string(StringView(s)) : NarrowTabText(s);
        if (!text.empty() && text.back() != '\n') text += '\n';
        result_.rows = static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n'));
        file_.text += text;
    }
    void putRows(const void* value, Kind kind) {
        ElementSource elements(value, kind);
        for (std::int32_t i = 0; i < elements.count(); ++i) {
            const auto* const element = static_cast<const char*>(elements.at(i));
            if (element != nullptr) writer_.row(row_, element);
            result_.code = element != nullptr ? writer_.code() : tarn_error_cell;
            ++result_.rows;
            if (result_.code != 0 || !file_.pass(result_.rows, elements.count())) return;
        }
    }

    const DataOptions& options_;
    const TabField& row_;
    FileText file_;
    RowWriter writer_;
    DataResult result_;
};

DataResult save(const std::string& filename, const DataOptions& options, const void* value, Kind kind,
                std::string_view names) {
    const TabTarget target = MakeTabTarget(value, kind, options.separatorchar);
    if (target.code != 0) return {target.code};
    std::string own;
    if (kind == KindTable) {
        own = namesOfTable(static_cast<const TableDescriptor*>(value), target.row.fields.size());
        if (!own.empty()) names = own;
    }
    return Saving(filename, options, target.row).run(value, kind, names);
}

}  // namespace

std::string NarrowTabText(const StringDescriptor* s) {
    std::string text;
    const std::int32_t length = StringLength(s);
    text.reserve(static_cast<std::size_t>(length));
    for (std::int32_t i = 1; i <= length; ++i) {
        const std::int32_t c = StringGetChar(s, i);
        text += static_cast<char>(c <= 255 ? c : '?');
    }
    return text;
}

DataResult TabSave(const std::string& filename, const DataOptions& options, const void* value, Kind kind,
                   std::string_view names) {
    const ErrorCellAside aside;
    try {
        return save(filename, options, value, kind, names);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
