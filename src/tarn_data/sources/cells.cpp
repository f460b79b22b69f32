// SPDX-License-Identifier: Apache-2.0
//
// Rows of cells out of each form of file.
#include "tarn_data/sources/cells.h"

#include "kernel/run/errorcell.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/owned.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"
#include "os/text/ascii.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/xbase.h"
#include "tarn_data/sources/layout.h"
#include "tarn_data/sources/load.h"
#include "tarn_data/sources/xmlcolumns.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <deque>

namespace tarn::datatool {

// ---- cells ----

std::string_view withoutBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

bool isNullWord(std::string_view cell) {
    return ascii::equal(withoutBlanks(cell), "NULL");
}

bool isNothing(std::string_view cell) {
    const std::string_view text = withoutBlanks(cell);
    return text.empty() || ascii::equal(text, "NULL");
}

std::string cellPlace(std::int64_t row, const std::string& column) {
    return "Row " + std::to_string(row) + ", column '" + shown(column) + "' ";
}

namespace {

std::int64_t mostRows(const Source& source) {
    const std::int64_t most = source.options.maxdatarows;
    return most < 0 ? INT64_MAX : most;
}

// ---- values as texts ----

std::string shortestFixed(Fixed value) {
    std::string text = FixedToText(value);
    text.resize(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
    return text;
}

std::string shortestReal(double value) {
    char text[40];
    if (!std::isfinite(value)) return RealToText(value, 0);
    const auto end = std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

std::string setText(const void* field) {
    String text;
    SetToText(static_cast<const SetDescriptor*>(field), true, text.get());
    return std::string(StringView(text.get()));
}

}  // namespace

std::string_view valueText(const void* field, Kind kind, Characters characters, std::string& scratch) {
    const auto kept = [&](std::string text) { return std::string_view(scratch = std::move(text)); };
    switch (kind) {
    case KindString: return StringView(static_cast<const StringDescriptor*>(field));
    case KindBoolean: return kept(BooleanToText(ReadAt<std::uint8_t>(field) != 0));
    case KindEnum:
        if (characters == Characters::One) return trimmedText({static_cast<const char*>(field), 1});
        return kept(std::to_string(ReadAt<std::uint8_t>(field)));
    case KindInteger: return kept(std::to_string(ReadAt<std::int32_t>(field)));
    case KindFixed: return kept(shortestFixed(ReadAt<Fixed>(field)));
    case KindReal: return kept(shortestReal(ReadAt<double>(field)));
    case KindSet: return kept(setText(field));
    default: break;
    }
    const auto* const array = static_cast<const ArrayDescriptor*>(field);
    const std::string_view text(At(array->data), static_cast<std::size_t>(array->size));
    const bool typed = characters == Characters::Number || characters == Characters::Date;
    return xbaseCell(text, characters == Characters::Logical ? 'L' : typed ? 'N' : 'C');
}

namespace {

// ---- rows of values: table files ----

class ValueRows : public CellSource {
public:
    explicit ValueRows(const Source& source) : source_(source) {}

    Problem open() override {
        problem_ = {};
        number_ = 0;
        if (loaded_) return {};
        loaded_ = true;
        return openTableRows(source_, rows_);
    }
    bool next(CellRow& row) override {
        if (number_ == 0) {
            rows_.beginBatch();
            steps_ = std::make_unique<Steps>(std::int64_t{rows_.count()} * bytesOfStep);
        }
        if (number_ >= std::min<std::int64_t>(rows_.count(), mostRows(source_))) return false;
        if (!steps_->step(bytesOfStep)) return fail(stoppedProblem());
        const RecordDescriptor* const record = rows_.at(static_cast<std::int32_t>(++number_));
        if (record == nullptr) return fail(badRow(source_, static_cast<std::int32_t>(number_), TakeError()));
        give(*record, row);
        return true;
    }

private:
    static constexpr std::int64_t bytesOfStep = 64;

    void give(const RecordDescriptor& record, CellRow& row) {
        const std::int32_t fields = FieldCountOf(record.kinds);
        scratch_.resize(static_cast<std::size_t>(fields));
        row.clear();
        for (std::int32_t n = 1; n <= fields; ++n) {
            const auto at = static_cast<std::size_t>(n - 1);
            row.push_back({valueText(RecordFieldAddress(&record, n), FieldKindAt(record.kinds, n),
                                     charactersOf(at), scratch_[at]),
                           false});
        }
    }
    Characters charactersOf(std::size_t column) {
        if (characters_.empty()) characters_ = characterColumns(source_.columns);
        return column < characters_.size() ? characters_[column] : Characters::None;
    }

    const Source& source_;
    Rows rows_;
    bool loaded_ = false;
    std::int64_t number_ = 0;
    std::unique_ptr<Steps> steps_;
    std::deque<std::string> scratch_;
    std::vector<Characters> characters_;
};

// ---- Xbase ----

class XbaseRows : public CellSource {
public:
    explicit XbaseRows(const Source& source) : source_(source) {}

    Problem open() override {
        problem_ = {};
        file_ = std::make_unique<XbaseFile>();
        Problem problem = file_->open(source_.file);
        if (problem.any()) return problem;
        steps_ = std::make_unique<Steps>(file_->rows() * file_->header().recordSize);
        file_->goToFirst(std::min(file_->rows(), mostRows(source_)));
        return {};
    }
    bool next(CellRow& row) override {
        std::string_view bytes;
        do {
            if (!file_->next(bytes))
                return file_->error() != os::FileError::None &&
                       fail(unreadable(source_.file, file_->error()));
            if (!steps_->step(file_->header().recordSize)) return fail(stoppedProblem());
        } while (bytes[0] == DeletedRow && !source_.deleted);
        row.clear();
        if (source_.deleted) row.push_back({bytes[0] == DeletedRow ? "True" : "False", false});
        for (std::int32_t n = 0; n < file_->header().fieldCount; ++n)
            row.push_back({xbaseCell(file_->field(bytes, n), file_->header().type[n]), false});
        return true;
    }

private:
    const Source& source_;
    std::unique_ptr<XbaseFile> file_;
    std::unique_ptr<Steps> steps_;
};

// ---- the cells that --null names ----

class WithoutNulls : public CellSource {
public:
    WithoutNulls(std::unique_ptr<CellSource> cells, const std::vector<std::string>& words)
        : cells_(std::move(cells)), words_(words) {}

    Problem open() override {
        problem_ = gap_ = {};
        return cells_->open();
    }
    bool next(CellRow& row) override {
        if (!cells_->next(row)) {
            problem_ = cells_->problem();
            gap_ = cells_->gap();
            strayQuote_ = cells_->strayQuote();
            blankLines_ = cells_->blankLines();
            return false;
        }
        for (Cell& cell : row) {
            if (std::find(words_.begin(), words_.end(), cell.text) != words_.end()) cell = {};
        }
        return true;
    }

private:
    std::unique_ptr<CellSource> cells_;
    const std::vector<std::string>& words_;
};

std::unique_ptr<CellSource> plainCells(const Source& source) {
    if (source.format == FormatXbase) return std::make_unique<XbaseRows>(source);
    if (source.format == FormatXml) return xmlCells(source);
    if (RowsAreLines(source.format)) return std::make_unique<DelimitedReader>(formOf(source));
    return std::make_unique<ValueRows>(source);
}

}  // namespace

std::unique_ptr<CellSource> cellsOf(const Source& source) {
    std::unique_ptr<CellSource> cells = plainCells(source);
    if (source.nulls.empty()) return cells;
    return std::make_unique<WithoutNulls>(std::move(cells), source.nulls);
}

}  // namespace tarn::datatool
