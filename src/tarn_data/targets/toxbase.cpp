// SPDX-License-Identifier: Apache-2.0
//
// Rows of cells into Xbase files. A column of numbers becomes a field of numbers, which stand in it digit for
// digit, and nothing as blanks; one of True and False a logical field; all others fields of characters, as
// long as their longest text, at most 255.
#include "kernel/data/xbase/xbase.h"
#include "os/text/ascii.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/xbase.h"
#include "tarn_data/targets/celltarget.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

constexpr std::size_t longestName = std::size_t{MaxXbaseFieldName},
                      longestText = std::size_t{MaxXbaseFieldLength};

// As wide as the fields that programs of the system make for such values.
constexpr std::size_t integerWidth = 12, numberWidth = 20;
constexpr std::int32_t numberDecimals = 4;

struct XbaseField {
    std::string name;
    char type = 'C';
    std::size_t length = 1;
    std::int32_t decimals = 0;
};

// ---- fields ----

// Room for the digits in front of the point and for those behind it.
bool numbersFit(const ColumnFacts& column) {
    const CellClass type = column.type();
    const bool number = type == CellClass::Integer || type == CellClass::Fixed || type == CellClass::Real;
    return number && !column.exponents && column.widest <= numberWidth &&
           column.decimals < static_cast<std::int32_t>(numberWidth) - 2;
}

XbaseField fieldOf(const ColumnFacts& column) {
    XbaseField field;
    field.length = std::clamp<std::size_t>(column.longest, 1, longestText);
    if (numbersFit(column)) {
        const bool whole = column.decimals == 0;
        field.type = 'N';
        field.length = whole ? std::max(integerWidth, column.widest) : numberWidth;
        field.decimals = whole ? 0 : std::max(numberDecimals, column.decimals);
    } else if (column.type() == CellClass::Boolean) {
        field.type = 'L';
        field.length = 1;
    }
    return field;
}

bool isTaken(const std::vector<XbaseField>& fields, const std::string& name) {
    return std::any_of(fields.begin(), fields.end(),
                       [&](const XbaseField& other) { return ascii::equal(other.name, name); });
}

// Names of at most 11 characters, each once.
std::string shortName(const std::string& name, const std::vector<XbaseField>& fields) {
    std::string cut = name.substr(0, longestName);
    for (int number = 2; isTaken(fields, cut); ++number) {
        const std::string mark = "_" + std::to_string(number);
        cut = name.substr(0, longestName - mark.size()) + mark;
    }
    return cut;
}

// ---- the header ----

void putNumber(std::string& bytes, std::size_t at, std::size_t size, std::uint64_t number) {
    for (std::size_t i = 0; i < size; ++i, number >>= 8U) bytes[at + i] = static_cast<char>(number & 0xFFU);
}

std::string headerOf(const std::vector<XbaseField>& fields, std::int64_t rows) {
    constexpr std::size_t piece = 32;
    std::string head(piece * (fields.size() + 1), '\0');
    std::size_t rowBytes = 1;
    head.replace(0, 1, 1, '\x03').replace(1, 3, XbaseDateToday());
    for (std::size_t n = 0; n < fields.size(); ++n) {
        const std::size_t at = piece * (n + 1);
        head.replace(at, fields[n].name.size(), fields[n].name);
        head[at + longestName] = fields[n].type;
        putNumber(head, at + 16, 1, fields[n].length);
        putNumber(head, at + 17, 1, static_cast<std::uint64_t>(fields[n].decimals));
        rowBytes += fields[n].length;
    }
    head += '\r';
    putNumber(head, 4, 4, static_cast<std::uint64_t>(rows));
    putNumber(head, 8, 2, head.size());
    putNumber(head, 10, 2, rowBytes);
    return head;
}

// ---- rows ----

class XbaseTarget : public CellTarget {
public:
    XbaseTarget(const Target& target, const TargetColumns& columns)
        : target_(target), columns_(columns), out_(target.file) {}

    Problem begin() override {
        std::string renamed;
        for (std::size_t n = 0; n < columns_.facts.columns.size(); ++n) {
            XbaseField field = fieldOf(columns_.facts.columns[n]);
            field.name = shortName(columns_.names[n], fields_);
            if (field.name != columns_.names[n])
                renamed += (renamed.empty() ? "" : ", ") + columns_.names[n] + " to " + field.name;
            fields_.push_back(field);
            tellOf(columns_.facts.columns[n], field);
        }
        if (!renamed.empty())
            note("Names of fields have at most " + std::to_string(longestName) + " characters: " + renamed +
                 ".");
        const std::string head = headerOf(fields_, columns_.facts.rows);
        XbaseHeader header;
        const std::string wrong = XbaseDecodeHeader(head, header);
        if (!wrong.empty())
            return {"'" + shown(target_.file) +
                        "' cannot be written: such a row cannot stand in a dbf file (" + wrong + ").",
                    "Write xml or csv."};
        out_.write(head);
        return {};
    }
    Problem put(const CellRow& row, std::int64_t number) override {
        bytes_.assign(1, LiveRow);
        for (std::size_t n = 0; n < fields_.size(); ++n) {
            Problem problem = append(n < row.size() ? row[n] : Cell(), fields_[n], number, n);
            if (problem.any()) return problem;
        }
        out_.write(bytes_);
        return {};
    }
    Problem finish(std::int64_t rows) override {
        if (rows != columns_.facts.rows) return changedProblem();
        out_.write({&XbaseFileEnd, 1});
        return out_.finish();
    }

private:
    // What a field holds in another shape than the cells have.
    static void tellOf(const ColumnFacts& column, const XbaseField& field) {
        const std::string start = "Column '" + shown(column.name) + "' ";
        const auto first = [](const CellExample& e) {
            return " (the first in row " + std::to_string(e.row) + ").";
        };
        const CellClass type = column.type();
        const bool number = type == CellClass::Integer || type == CellClass::Fixed || type == CellClass::Real;
        if (number && field.type == 'C')
            note(start + "is written as text: a dbf file holds no exponents and signs of plus, and at most " +
                 std::to_string(numberWidth) + " digits.");
        if (field.type != 'C' && column.nullWords > 0)
            note(start + "has " + counted(column.nullWords, "cell") + " of NULL, left blank" +
                 first(column.nullWord));
        if (field.type == 'C' && column.blankEnds > 0)
            note(start + "has " + counted(column.blankEnds, "text") +
                 " with blanks at the end, which a dbf file does not keep" + first(column.blankEnd));
        if (field.type != 'C' && column.blanksAround > 0)
            note(start + "has " + counted(column.blanksAround, "cell") +
                 " with blanks around the value, which a dbf file does not keep" + first(column.blankAround));
        const CellExample& truth = column.oddTruth;
        if (field.type == 'L' && truth.row != 0)
            note(start + "is written as T and F, for True and False, like '" + shownCell(truth.text) +
                 "' in row " + std::to_string(truth.row) + ".");
    }
    Problem append(const Cell& cell, const XbaseField& field, std::int64_t number, std::size_t n) {
        if (field.type == 'C') return appendText(cell.text, field, number, n);
        const std::string_view text = isNothing(cell.text) ? "" : withoutBlanks(cell.text);
        if (field.type == 'L') {
            const bool yes = !text.empty() && (ascii::lower(text[0]) == 't' || ascii::lower(text[0]) == 'y');
            bytes_ += text.empty() ? ' ' : yes ? 'T' : 'F';
        } else {
            if (text.size() > field.length) return changedProblem();
            bytes_.append(field.length - text.size(), ' ').append(text);
        }
        return {};
    }
    Problem appendText(std::string_view text, const XbaseField& field, std::int64_t number, std::size_t n) {
        const bool zero = text.find('\0') != std::string_view::npos, tooLong = text.size() > longestText;
        if (!target_.replace && (zero || tooLong))
            return {cellPlace(number, columns_.headings[n]) +
                        (zero ? "holds a zero byte"
                              : "is longer than " + std::to_string(longestText) + " characters") +
                        ".",
                    zero ? "Write csv, which holds it, or '?' instead with --replace."
                         : "Write xml or csv, which hold it, or cut it with --replace."};
        std::string_view fitted = text.substr(0, longestText);
        if (fitted.size() > field.length) return changedProblem();
        const std::size_t start = bytes_.size();
        bytes_.append(fitted);
        if (zero) std::replace(bytes_.begin() + static_cast<std::ptrdiff_t>(start), bytes_.end(), '\0', '?');
        bytes_.append(field.length - fitted.size(), ' ');
        return {};
    }
    const Target& target_;
    const TargetColumns& columns_;
    OutFile out_;
    std::vector<XbaseField> fields_;
    std::string bytes_;
};

}  // namespace

std::unique_ptr<CellTarget> xbaseTarget(const Target& target, const TargetColumns& columns) {
    return std::make_unique<XbaseTarget>(target, columns);
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
    if (source.wasChanged()) return changedProblem();
    out.write({&XbaseFileEnd, 1});
    return out.finish();
}

}  // namespace tarn::datatool
