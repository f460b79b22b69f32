// SPDX-License-Identifier: Apache-2.0
//
// Rows into Xbase files. Fields of text are as long as the longest text in their column, at most 255; numbers
// have 4 decimals, or none.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xbase/xbase.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "os/text/ascii.h"
#include "tarn_data/base/xbase.h"
#include "tarn_data/commands/commands.h"
#include "tarn_data/targets/save_internal.h"

#include <algorithm>
#include <cmath>

namespace tarn::datatool {

namespace {

constexpr std::size_t longestName = std::size_t{MaxXbaseFieldName},
                      longestText = std::size_t{MaxXbaseFieldLength};
constexpr const char* writeOther = "Write xml or csv, which hold it";

std::int32_t linesOf(std::string_view text) {
    return static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n'));
}

bool isDeleteFlag(std::string_view columns) {
    const TypeInfoElement first = TypeInfoParseLine(columns, 1);
    return ascii::equal(first.name, "delete_flag") && ascii::equal(first.typeName, "Tchar");
}

// ---- names ----

std::string withName(std::string_view columns, std::int32_t n, const std::string& name) {
    const std::string whole = TypeInfoLine(columns, n);
    return name + whole.substr(TypeInfoName(columns, n).size());
}

bool isTaken(const std::vector<std::string>& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& other) { return ascii::equal(other, name); });
}

// Names of at most 11 characters, each once. Without `replace` all must be such names as they are.
Problem fitNames(bool replace, std::string& columns) {
    std::vector<std::string> names;
    std::string text;
    const std::int32_t first = isDeleteFlag(columns) ? 2 : 1;
    if (first == 2) text = TypeInfoLine(columns, 1);
    for (std::int32_t n = first; n <= linesOf(columns); ++n) {
        const std::string name = TypeInfoName(columns, n);
        std::string cut = name.substr(0, longestName);
        if (!replace && cut != name)
            return {"The name of column '" + name + "' is longer than " + std::to_string(longestName) +
                        " characters, which a dbf file cannot hold.",
                    "Give it a shorter one in the file that is read, or cut it with --replace."};
        for (int number = 2; isTaken(names, cut); ++number) {
            const std::string mark = "_" + std::to_string(number);
            cut = name.substr(0, longestName - mark.size()) + mark;
        }
        names.push_back(cut);
        text += withName(columns, n, cut);
    }
    columns = text;
    return {};
}

// ---- cells ----

class XbaseFitting {
public:
    XbaseFitting(bool replace, std::string_view columns)
        : replace_(replace), names_(columnNames(columns)), lengths_(names_.size(), 1) {}

    Problem column(std::int32_t n, Kind kind) const {
        if (kind <= KindString || kind == KindArray) return {};
        return {"Column '" + nameOf(n) + "' holds values that a dbf file cannot hold.",
                std::string(writeOther) + "."};
    }
    Problem row(RecordDescriptor* row, std::int32_t number) {
        changed_ = false;
        for (std::int32_t n = 1; n <= FieldCountOf(row->kinds); ++n) {
            void* const field = RecordFieldAddress(row, n);
            Problem problem = cell(field, FieldKindAt(row->kinds, n), number, n);
            if (problem.any()) return problem;
        }
        return {};
    }
    [[nodiscard]] bool changed() const { return changed_; }  // the row that was looked at last
    // The columns with the lengths that their texts need.
    [[nodiscard]] std::string sized(std::string_view columns) const {
        std::string text;
        for (std::int32_t n = 1; n <= linesOf(columns); ++n) {
            const TypeInfoElement element = TypeInfoParseLine(columns, n);
            const bool string = TypeInfoKind(element.typeName) == KindString;
            const std::string length = std::to_string(lengths_[static_cast<std::size_t>(n - 1)]);
            text += string ? element.name + " : string[" + length + "]\n" : TypeInfoLine(columns, n);
        }
        return text;
    }

private:
    [[nodiscard]] std::string nameOf(std::int32_t n) const { return names_[static_cast<std::size_t>(n - 1)]; }
    [[nodiscard]] Problem misfit(std::int32_t number, std::int32_t n, const std::string& why,
                                 const std::string& next) const {
        return {"Row " + std::to_string(number) + ", column '" + nameOf(n) + "' " + why + ".", next};
    }

    Problem cell(void* field, Kind kind, std::int32_t number, std::int32_t n) {
        switch (kind) {
        case KindString: return text(static_cast<StringDescriptor*>(field), number, n);
        case KindFixed: return amount(ReadAt<Fixed>(field), number, n);
        case KindReal: return real(static_cast<char*>(field), number, n);
        default: return {};
        }
    }
    Problem text(StringDescriptor* s, std::int32_t number, std::int32_t n) {
        std::string_view cell = StringView(s);
        const bool zero = xbaseText(cell).find('\0') != std::string_view::npos,
                   tooLong = cell.size() > longestText;
        if (!replace_ && (zero || tooLong))
            return misfit(number, n,
                          zero ? "holds a zero byte"
                               : "is longer than " + std::to_string(longestText) + " characters",
                          zero ? "Write '?' instead with --replace."
                               : std::string(writeOther) + ", or cut it with --replace.");
        if (zero || tooLong) {
            std::string fitted(xbaseText(cell).substr(0, longestText));
            std::replace(fitted.begin(), fitted.end(), '\0', '?');
            StringAssignView(s, fitted);
            changed_ = true;
            cell = StringView(s);
        }
        std::size_t& length = lengths_[static_cast<std::size_t>(n - 1)];
        length = std::max(length, cell.size());
        return {};
    }
    // 20 characters, of which a point and 4 decimals.
    Problem amount(Fixed value, std::int32_t number, std::int32_t n) const {
        constexpr std::size_t width = 20;
        if (FixedToText(value).size() <= width) return {};
        return misfit(number, n, "holds a number of more than 20 characters", "--text writes it as text.");
    }
    Problem real(char* at, std::int32_t number, std::int32_t n) {
        constexpr double most = 1e14, decimals = 1e4;  // 15 digits and 4 decimals
        const auto value = ReadAt<double>(at);
        if (!std::isfinite(value) || std::fabs(value) >= most)
            return misfit(number, n, "holds a number that a dbf file cannot hold",
                          "--text writes it as text.");
        const double rounded = std::round(value * decimals) / decimals;
        if (rounded == value) return {};
        if (!replace_)
            return misfit(number, n, "holds a number of more than 4 decimals",
                          "--text writes it as text, --replace rounds it.");
        WriteAt(at, rounded);
        changed_ = true;
        return {};
    }

    bool replace_, changed_ = false;
    std::vector<std::string> names_;
    std::vector<std::size_t> lengths_;
};

}  // namespace

Problem fitXbase(bool replace, std::string& columns, Rows& rows) {
    Problem problem = fitNames(replace, columns);
    XbaseFitting fitting(replace, columns);
    const RecordDescriptor* const shape = rows.shape();
    for (std::int32_t n = 1; n <= FieldCountOf(shape->kinds) && !problem.any(); ++n)
        problem = fitting.column(n, FieldKindAt(shape->kinds, n));
    problem = fitEachRow(fitting, rows, problem);
    columns = fitting.sized(columns);
    return problem;
}

// ---- writing ----

namespace {

constexpr char endMark = 26;

Problem unrepresentable(const Target& target, const std::string& where) {
    return {"'" + target.file + "' cannot be written: " + where + "cannot stand in a dbf file.",
            "Write xml or csv, or every column as text with --text."};
}

}  // namespace

Problem saveXbase(const Target& target, std::string_view columns, Rows& rows) {
    RecordValue shape;
    std::int32_t code = 0;
    makeRow(columns, shape);
    const std::string head =
        XbaseHeaderBytes(shape.get(), KindRecord, columns, static_cast<std::uint32_t>(rows.count()), code);
    XbaseHeader header;
    ClearError();
    if (code != 0 || !XbaseDecodeHeader(head, header).empty()) return unrepresentable(target, "such a row ");
    // The first column would become the mark, and be none of the file.
    const bool marked = XbaseHoldsMark(shape.get(), KindRecord, columns);
    if (marked && !isDeleteFlag(columns)) return unrepresentable(target, "such a row ");
    const Work work("writing " + target.file);
    OutFile out(target.file);
    Steps steps(std::int64_t{rows.count()} * header.recordSize);
    std::string bytes;
    out.write(head);
    rows.beginBatch();
    for (std::int32_t i = 1; i <= rows.count() && out.good(); ++i) {
        if (!steps.step(header.recordSize)) return out.stopped();
        const RecordDescriptor* const row = rows.at(i);
        const XbaseFault fault =
            row != nullptr ? XbaseWriteRow(row, KindRecord, header, bytes, marked) : XbaseFault{1, 1};
        ClearError();
        if (fault.errorCode != 0)
            return unrepresentable(target, "row " + std::to_string(i) + ", field " +
                                               std::to_string(fault.errorField) + " ");
        out.write(bytes);
    }
    out.write({&endMark, 1});
    return out.finish();
}

// The header as it stands, and the rows that are taken: types, lengths and decimals of fields stay.
Problem copyXbase(const Source& source, const Target& target) {
    XbaseFile file;
    Problem problem = file.open(source.file);
    if (problem.any()) return problem;
    const Work work("writing " + target.file);
    Steps steps(file.rows() * file.header().recordSize);
    OutFile out(target.file);
    std::string head;
    if (!file.readHead(head)) return unreadable(source.file, file.error());
    XbaseSetRecords(head, static_cast<std::uint32_t>(source.rowsSeen));
    out.write(head);
    std::string_view row;
    const std::int64_t most = source.options.maxdatarows;
    file.goToFirst(most < 0 ? file.rows() : std::min(file.rows(), most));
    while (out.good() && file.next(row)) {
        if (!steps.step(file.header().recordSize)) return out.stopped();
        if (row[0] != DeletedRow || source.deleted) out.write(row);
    }
    if (file.error() != os::FileError::None) return unreadable(source.file, file.error());
    out.write({&endMark, 1});
    return out.finish();
}

}  // namespace tarn::datatool
