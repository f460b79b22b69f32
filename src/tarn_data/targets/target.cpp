// SPDX-License-Identifier: Apache-2.0
//
// Not every text fits into every target. What does not fit is told ahead of the writing: nothing is changed
// in silence.
#include "kernel/data/datafile.h"
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

// The first format that takes texts as they are and holds all of this one; empty if none does.
std::string holderOf(std::string_view text) {
    for (const DataFormat format : DataFormats()) {
        const FormatFacts& facts = FactsOf(format);
        if (RowsAreLines(format) || facts.declared) continue;
        if (!FindMisfit(format, facts.defaults, text, 0).any())
            return std::string(facts.extensions[0].substr(1));
    }
    return {};
}

// What to do about a text. Other forms are named only where they hold all of it.
std::string adviceFor(TextMisfit::Way way, std::string_view text) {
    const std::string holder = holderOf(text), replaced = "'?' instead with --replace.";
    switch (way) {
    case TextMisfit::Way::OtherSeparator:
        return "Choose another separator with --to-separator, or " +
               (holder.empty() ? "write " : holder + ", or write ") + replaced;
    case TextMisfit::Way::OtherEncoding:
        return "Convert the file that is read to UTF-8 first, or write " + replaced;
    default: return "Write " + (holder.empty() ? "" : holder + ", which holds it, or ") + replaced;
    }
}

// ---- rows ----

class Fitting {
public:
    Fitting(const Target& target, bool replace, std::string_view columns)
        : target_(target), replace_(replace), names_(columnNames(columns)) {}

    Problem column(const RecordDescriptor* row, std::int32_t n) const {
        const bool members = RecordFieldKind(row, n) == KindSet && target_.options.separatorchar == ',';
        if (!members || !IsDelimited(target_.format)) return {};
        return {"Column '" + nameOf(n) + "' holds sets, whose members are separated by commas.",
                "Choose another separator with --to-separator, or xml."};
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
        return RowsAreLines(target_.format) ? line(row, fields, length, number) : Problem();
    }
    [[nodiscard]] bool changed() const { return changed_; }  // the row that was looked at last

private:
    [[nodiscard]] std::string nameOf(std::int32_t n) const { return names_[static_cast<std::size_t>(n - 1)]; }

    [[nodiscard]] TextMisfit misfitOf(std::string_view text, std::size_t from) const {
        return FindMisfit(target_.format, target_.options, text, from);
    }

    Problem cell(StringDescriptor* s, std::int32_t number, std::int32_t n) {
        TextMisfit misfit = misfitOf(StringView(s), 0);
        if (!misfit.any()) return {};
        if (!replace_)
            return {"Row " + std::to_string(number) + ", column '" + nameOf(n) + "' " +
                        std::string(misfit.why) + ".",
                    adviceFor(misfit.way, StringView(s))};
        std::string text(StringView(s));
        for (; misfit.any(); misfit = misfitOf(text, misfit.at + 1)) text[misfit.at] = '?';
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
                    "Write xml, which holds it."};
        const bool empty = fields == 1 && length == 1 && IsDelimited(target_.format);
        if (!empty || replace_ || RecordFieldKind(row, 1) != KindString) return {};
        return {"Row " + std::to_string(number) + " is empty, and would be an empty line.",
                "Write xml or txt, which hold it, or accept it with --replace."};
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
    const Problem problem = problemOfTarget(file);
    if (problem.any()) return problem;
    if (arguments.toTable || target.format == FormatBinary) return chooseTable(arguments, target);
    if (target.format == FormatUnknown)
        return {"'" + file + "' cannot be written: its extension is none of " + DataFormatNames("and") + ".",
                "The extension of the second file decides what is written; --to-table writes a table file "
                "under any name.",
                WrongUsage};
    if (!arguments.keys.empty())
        return {"'" + file + "' is no table file, so that --keys means nothing for it.",
                "--to-table writes a table file.", WrongUsage};
    if (RowsAreLines(target.format)) return chooseLayout(arguments.to, target);
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
