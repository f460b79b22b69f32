// SPDX-License-Identifier: Apache-2.0
//
// Delimited text is written without quotes, and XML without an encoding, so not every text fits. What does
// not fit is told ahead of the writing: nothing is changed in silence.
#include "kernel/data/xbase/xbase.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "tarn_data/base/files.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/targets/save_internal.h"

namespace tarn::datatool {

namespace {

// ---- what fits: a place that does not, or npos, and why ----

enum class Fault { Quote, Separator, LineEnd, ZeroByte, Control, Bytes };
constexpr const char* faultTexts[] = {"begins with a quote",
                                      "holds the separator",
                                      "holds a line end",
                                      "holds a zero byte",
                                      "holds a control character, which XML cannot hold",
                                      "holds a byte that XML cannot hold (it is no UTF-8)"};

struct Misfit {
    std::size_t at = std::string::npos;
    Fault fault = Fault::Bytes;
    [[nodiscard]] bool any() const { return at != std::string::npos; }
    [[nodiscard]] const char* why() const { return faultTexts[static_cast<std::size_t>(fault)]; }
};

Fault faultOf(char c) {
    return c == '\0' ? Fault::ZeroByte : Fault::LineEnd;
}

Misfit misfitOfDelimited(std::string_view text, std::size_t from, char separator) {
    if (from == 0 && text.starts_with('"')) return {0, Fault::Quote};
    for (std::size_t i = from; i < text.size(); ++i) {
        if (text[i] == separator) return {i, Fault::Separator};
        if (text[i] == '\n' || text[i] == '\r' || text[i] == '\0') return {i, faultOf(text[i])};
    }
    return {};
}

Misfit misfitOfLine(std::string_view text, std::size_t from) {
    const std::size_t at = text.find_first_of(std::string_view("\n\r\0", 3), from);
    return {at, at < text.size() ? faultOf(text[at]) : Fault::LineEnd};
}

// The bytes of the UTF-8 character at `i` that XML may hold; 0 for what is none.
std::size_t xmlCharacter(std::string_view text, std::size_t i) {
    const auto byte = [&](std::size_t n) {
        return n < text.size() ? static_cast<unsigned char>(text[n]) : 0U;
    };
    const unsigned first = byte(i);
    if (first < 0x80) return first >= 0x20 || first == '\t' || first == '\n' ? 1 : 0;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4) return 0;
    unsigned code = first & (0xFFU >> (length + 1));
    for (std::size_t n = 1; n < length; ++n) {
        if ((byte(i + n) & 0xC0U) != 0x80) return 0;
        code = code << 6U | (byte(i + n) & 0x3FU);
    }
    constexpr unsigned least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < least[length] || code > 0x10FFFF || surrogate || code == 0xFFFE || code == 0xFFFF ? 0
                                                                                                    : length;
}

Misfit misfitOfXml(std::string_view text, std::size_t from) {
    for (std::size_t i = from; i < text.size();) {
        const std::size_t length = xmlCharacter(text, i);
        const bool control = static_cast<unsigned char>(text[i]) < ' ';
        if (length == 0) return {i, control ? Fault::Control : Fault::Bytes};
        i += length;
    }
    return {};
}

Misfit misfitOf(const Target& target, std::string_view text, std::size_t from) {
    switch (target.format) {
    case FormatXml: return misfitOfXml(text, from);
    case FormatText: return misfitOfLine(text, from);
    default: return misfitOfDelimited(text, from, static_cast<char>(target.options.separatorchar));
    }
}

// What to do about a text. Other forms are named only where they hold all of it.
std::string adviceFor(Fault fault, std::string_view text) {
    const bool xml = !misfitOfXml(text, 0).any();
    const bool xbase =
        text.size() <= std::size_t{MaxXbaseFieldLength} && text.find('\0') == std::string::npos;
    const char* const other = xml     ? "Write XML, which holds it, or "
                              : xbase ? "Write dbf, which holds it, or "
                                      : "Write ";
    const std::string replaced = "'?' instead with --replace.";
    switch (fault) {
    case Fault::Separator:
        return std::string("Choose another separator with --to-separator, or ") +
               (xml ? "XML, or write " : "write ") + replaced;
    case Fault::Bytes: return "Convert the file that is read to UTF-8 first, or write " + replaced;
    default: return other + replaced;
    }
}

// ---- rows ----

class Fitting {
public:
    Fitting(const Target& target, bool replace, std::string_view columns)
        : target_(target), replace_(replace), names_(columnNames(columns)) {}

    Problem column(const RecordDescriptor* row, std::int32_t n) const {
        const bool members = RecordFieldKind(row, n) == KindSet && target_.options.separatorchar == ',';
        if (!members || target_.format == FormatXml || target_.format == FormatText) return {};
        return {"Column '" + nameOf(n) + "' holds sets, whose members are separated by commas.",
                "Choose another separator with --to-separator, or XML."};
    }

    Problem row(RecordDescriptor* row, std::int32_t number) {
        std::size_t length = 0;
        changed_ = false;
        const std::int32_t fields = FieldCountOf(row->kinds);
        for (std::int32_t n = 1; n <= fields; ++n) {
            if (RecordFieldKind(row, n) != KindString) continue;
            auto* const s = static_cast<StringDescriptor*>(RecordFieldAddress(row, n));
            Problem problem = cell(s, number, n);
            if (problem.any()) return problem;
            length += static_cast<std::size_t>(StringLength(s)) + 1;
        }
        return target_.format == FormatXml ? Problem() : line(row, fields, length, number);
    }
    [[nodiscard]] bool changed() const { return changed_; }  // the row that was looked at last

private:
    [[nodiscard]] std::string nameOf(std::int32_t n) const { return names_[static_cast<std::size_t>(n - 1)]; }

    Problem cell(StringDescriptor* s, std::int32_t number, std::int32_t n) {
        Misfit misfit = misfitOf(target_, StringView(s), 0);
        if (!misfit.any()) return {};
        if (!replace_)
            return {"Row " + std::to_string(number) + ", column '" + nameOf(n) + "' " + misfit.why() + ".",
                    adviceFor(misfit.fault, StringView(s))};
        std::string text(StringView(s));
        for (; misfit.any(); misfit = misfitOf(target_, text, misfit.at + 1)) text[misfit.at] = '?';
        StringAssignView(s, text);
        changed_ = true;
        return {};
    }

    // What no reader of delimited text would take as a row.
    Problem line(const RecordDescriptor* row, std::int32_t fields, std::size_t length,
                 std::int32_t number) const {
        if (length > std::size_t{MaxTabLine} + 1)
            return {"Row " + std::to_string(number) + " would be a line of more than " +
                        std::to_string(MaxTabLine) + " characters.",
                    "Write XML, which holds it."};
        const bool empty = fields == 1 && length == 1 && target_.format != FormatText;
        if (!empty || replace_ || RecordFieldKind(row, 1) != KindString) return {};
        return {"Row " + std::to_string(number) + " is empty, and would be an empty line.",
                "Write XML or txt, which hold it, or accept it with --replace."};
    }

    const Target& target_;
    bool replace_, changed_ = false;
    std::vector<std::string> names_;
};

}  // namespace

namespace {

Problem chooseTable(const Arguments& arguments, Target& target) {
    target.format = FormatBinary;
    if (arguments.to.any())
        return {"'" + target.file + "' is a table file, which has no separator, header or footer.",
                "Leave the --to-... options away.", WrongUsage};
    if (XbaseFileName(target.file) || isIndexName(target.file))
        return {"'" + target.file +
                    "' cannot be the name of a table file: its extension is that of another form.",
                "Choose another one; bin needs no --to-table.", WrongUsage};
    if (arguments.type.empty())
        return {
            "'" + target.file + "' is a table file, whose rows must be declared.",
            "Give --type=FILE, a text file with type information text; what 'tarn-data info' prints of the "
            "file that is read will do.",
            WrongUsage};
    Problem problem = readRowType(arguments.type, target.type);
    std::vector<std::int32_t> maps;
    if (!problem.any()) problem = keyMapsOf(arguments.keys, target.type, maps);
    target.keys = arguments.keys;
    return problem;
}

Problem chooseLayout(const Layout& layout, Target& target) {
    if (target.format == FormatText && layout.separator) target.format = FormatTab;
    target.options = DefaultDataOptions(target.format);
    if (target.format == FormatText && layout.any())
        return {"'" + target.file + "' is lines of text, which have no header or footer.",
                "--to-separator=C makes it delimited text.", WrongUsage};
    if (layout.separator) target.options.separatorchar = *layout.separator;
    target.options.numheaderrows = layout.headerRows.value_or(1);
    target.options.numfooterrows = layout.footerRows.value_or(0);
    return {};
}

}  // namespace

Problem chooseTarget(const std::string& file, const Arguments& arguments, Target& target) {
    target.file = file;
    target.format = DataFormatOf(file);
    if (os::infoOf(os::native(file)).special)
        return {fileWord(file) + "cannot be written.", "It is no regular file: give the name of one."};
    if (arguments.toTable || target.format == FormatBinary) return chooseTable(arguments, target);
    if (target.format == FormatUnknown)
        return {"'" + file + "' cannot be written: its extension is none of csv, tab, txt, xml, dbf and bin.",
                "The extension of the second file decides what is written; --to-table writes a table file "
                "under any name.",
                WrongUsage};
    if (!arguments.keys.empty())
        return {"'" + file + "' is no table file, so that --keys means nothing for it.",
                "--to-table writes a table file.", WrongUsage};
    if (IsDelimited(target.format) || target.format == FormatText) return chooseLayout(arguments.to, target);
    if (arguments.to.any())
        return {"'" + file + "' is " + std::string(FactsOf(target.format).word) +
                    ", which has no separator, header or footer.",
                "Leave the --to-... options away.", WrongUsage};
    target.options = DefaultDataOptions(target.format);
    return {};
}

Problem fitRows(const Target& target, bool replace, std::string& columns, Rows& rows) {
    if (target.format == FormatXbase) return fitXbase(replace, columns, rows);
    if (target.format == FormatBinary) return {};
    const RecordDescriptor* const shape = rows.shape();
    const std::int32_t fields = FieldCountOf(shape->kinds);
    if (target.format == FormatText && fields != 1)
        return {"There are " + std::to_string(fields) + " columns, and lines of text hold one.",
                "--to-separator=C writes '" + target.file + "' as delimited text."};
    Fitting fitting(target, replace, columns);
    Problem problem;
    for (std::int32_t n = 1; n <= fields && !problem.any(); ++n) problem = fitting.column(shape, n);
    problem = fitEachRow(fitting, rows, problem);
    return problem;
}

Problem unwritable(const std::string& file, const std::string& why) {
    return {"File '" + file + "' cannot be written: " + why + ".",
            "Look whether its folder is there and may be written, and whether the disk has room. The file is "
            "as it was."};
}

Problem stoppedAhead(const std::string& file) {
    return {"Stopped.", "'" + file + "' is as it was."};
}

Problem OutFile::finish() {
    if (stopSignal() != 0) return stopped();
    const os::SaveResult saved = stream_.finish();
    return saved.ok() ? Problem() : unwritable(file_, ErrorMessage(FileWriteCode(saved.error)));
}

Problem saveRows(const Target& target, std::string_view columns, Rows& rows) {
    if (target.format == FormatXbase) return saveXbase(target, columns, rows);
    if (target.format == FormatBinary) return saveTable(target, rows);
    const Work work("writing " + target.file);
    if (stopSignal() != 0) return stoppedAhead(target.file);
    DataResult result;
    if (!rows.endBatch()) result.code = ErrorCell();
    if (result.code == 0)
        result = SaveValue(target.file, target.format, target.options, 0, rows.table.get(), KindTable);
    ClearError();
    if (result.stopped) return stoppedAhead(target.file);
    return result.code == 0 ? Problem() : unwritable(target.file, ErrorMessage(result.code));
}

}  // namespace tarn::datatool
