// SPDX-License-Identifier: Apache-2.0
//
// Rows of Xbase files and of table files, one after another.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "os/text/ascii.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/base/xbase.h"
#include "tarn_data/sources/digits.h"
#include "tarn_data/sources/load.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

Problem rowProblem(const Source& source, std::int32_t row, std::int32_t code) {
    DataResult result;
    result.code = code;
    result.row = row;
    return loadProblem(source, result, {});
}

std::int32_t mostRows(const Source& source) {
    const std::int32_t most = source.options.maxdatarows;
    return most < 0 ? INT32_MAX : most;
}

// ---- Xbase ----

// One row into a record, whose first field may be for the mark of deletion.
class XbaseRow {
public:
    XbaseRow(const XbaseFile& file, RecordDescriptor* record)
        : file_(file), record_(record), marked_(FieldCountOf(record->kinds) > file.header().fieldCount) {}

    // 0, or the field of the file, from 1, that its column cannot hold; the error is then set.
    std::int32_t fill(std::string_view row, std::int32_t number) {
        number_ = number;
        if (marked_) putMark(row[0]);
        for (std::int32_t n = 0; n < file_.header().fieldCount; ++n) {
            const std::int32_t column = n + (marked_ ? 2 : 1);
            if (!put(row, n, RecordFieldAddress(record_, column), FieldKindAt(record_->kinds, column)))
                return n + 1;
        }
        return 0;
    }

    // Fields that hold nothing, and became 0 or False.
    [[nodiscard]] std::int64_t blanks() const { return blanks_; }
    [[nodiscard]] std::int32_t firstBlank() const { return firstBlank_; }

private:
    void putMark(char mark) {
        void* const field = RecordFieldAddress(record_, 1);
        const bool deleted = mark == DeletedRow;
        if (FieldKindAt(record_->kinds, 1) == KindString)
            StringAssignView(static_cast<StringDescriptor*>(field), deleted ? "*" : "");
        else
            *static_cast<char*>(field) = FieldKindAt(record_->kinds, 1) == KindEnum ? mark : char{deleted};
    }
    bool put(std::string_view row, std::int32_t n, void* at, Kind kind) {
        const XbaseHeader& header = file_.header();
        const std::string_view field = file_.field(row, n);
        if (kind == KindString) {
            StringAssignView(static_cast<StringDescriptor*>(at),
                             header.type[n] == 'C' ? xbaseText(field) : trimmedText(field));
            return ErrorCell() == 0;
        }
        const std::string_view cell = xbaseCell(field, header.type[n]);
        if (kind < KindString && cell.empty() && blanks_++ == 0) firstBlank_ = number_;
        if (!isHeld(kind, cell)) return SetError(ERR_COMPONENT_UNREPRESENTABLE), false;
        auto position = static_cast<std::size_t>(field.data() - row.data());
        std::int32_t number = n + 1;
        XbaseFault fault;
        XbaseFromRow(row, position, header, number, at, kind, fault);
        SetError(fault.errorCode);
        return ErrorCell() == 0;
    }

    // What is neither a truth value nor nothing would become False, and decimals behind the fourth nothing.
    static bool isHeld(Kind kind, std::string_view cell) {
        if (kind == KindBoolean) return cell.empty() || cell == "True" || cell == "False";
        return kind >= KindString || numberHolds(kind, cell);
    }

    const XbaseFile& file_;
    RecordDescriptor* record_;
    bool marked_;
    std::int32_t number_ = 0, firstBlank_ = 0;
    std::int64_t blanks_ = 0;
};

}  // namespace

Problem loadXbase(const Source& source, Rows& rows) {
    const Work work("reading " + source.file);
    XbaseFile file;
    Problem problem = file.open(source.file);
    if (problem.any()) return problem;
    RecordValue record;
    AdtInit(record.get(), rows.shape(), KindRecord);
    XbaseRow filling(file, record.get());
    if (!rows.beginBatch()) return rowProblem(source, 0, TakeError());
    Steps steps(file.rows() * file.header().recordSize);
    std::string_view row;
    file.goToFirst(std::min<std::int64_t>(file.rows(), mostRows(source)));
    for (std::int32_t number = 1; file.next(row) && !problem.any(); ++number) {
        if (!steps.step(file.header().recordSize)) return stoppedProblem();
        if (row[0] == DeletedRow && !source.deleted) continue;
        const std::int32_t field = filling.fill(row, number);
        if (field != 0)
            problem = {fileWord(source.file) + "row " + std::to_string(number) + ", field " +
                           std::to_string(field) + " cannot be read: " + ErrorMessage(TakeError()) + ".",
                       "The declaration must fit the fields; --text takes every column as text."};
        else if (!rows.add(record.get()))
            problem = rowProblem(source, number, TakeError());
    }
    if (!problem.any() && file.error() != os::FileError::None)
        problem = unreadable(source.file, file.error());
    if (!problem.any() && filling.blanks() > 0)
        note(std::to_string(filling.blanks()) + " blank fields of '" + shown(source.file) +
             "' become 0 or False (the first in row " + std::to_string(filling.firstBlank()) +
             "): a table file has no other number for nothing.");
    return problem.any() || rows.endBatch() ? problem : rowProblem(source, 0, TakeError());
}

// ---- table files ----

namespace {

// Opens the rows where they stand. Nothing is written to them.
Problem openTable(const Source& source, std::string_view columns, Rows& rows) {
    RowType shown;
    AdtInit(shown.row.get(), source.type.row.get(), KindRecord);
    shown.columns = columns;
    shown.capacity = source.type.capacity;
    bool created = false;
    const std::string name = os::native(source.file);
    const bool opened =
        makeFileTable(shown, {}, rows.table) && OpenRows(*TableRows(rows.table.get()), name, {}, created);
    rows.table.get()->count = rows.count();
    return opened ? Problem() : rowProblem(source, 0, TakeError());
}

// Characters become a text; other fields stay what they are.
void copyField(const void* from, Kind kind, Characters characters, void* to, Kind target) {
    std::string scratch;
    if (kind == target)
        AdtCopy(from, to, kind);
    else
        StringAssignView(static_cast<StringDescriptor*>(to), valueText(from, kind, characters, scratch));
}

Problem copyRows(const Source& source, Rows& from, Rows& rows) {
    const Work work("reading " + source.file);
    RecordValue record;
    AdtInit(record.get(), rows.shape(), KindRecord);
    const std::int32_t fields = FieldCountOf(record.get()->kinds), bytes = rowBytes(source.type);
    const std::int32_t last = std::min(from.count(), mostRows(source));
    const std::vector<Characters> characters = characterColumns(source.type.columns);
    Steps steps(std::int64_t{last} * bytes);
    for (std::int32_t i = 1; i <= last; ++i) {
        if (!steps.step(bytes)) return stoppedProblem();
        const RecordDescriptor* const row = from.at(i);
        if (row == nullptr) return badRow(source, i, TakeError());
        for (std::int32_t n = 1; n <= fields; ++n)
            copyField(RecordFieldAddress(row, n), FieldKindAt(row->kinds, n),
                      characters[static_cast<std::size_t>(n) - 1], RecordFieldAddress(record.get(), n),
                      FieldKindAt(record.get()->kinds, n));
        const bool copied = ErrorCell() == 0 && rows.add(record.get());
        if (!copied) return rowProblem(source, i, TakeError());
    }
    return {};
}

bool sameKinds(const RecordDescriptor* a, const RecordDescriptor* b) {
    for (std::int32_t n = 1; n <= MaxFields; ++n)
        if (FieldKindAt(a->kinds, n) != FieldKindAt(b->kinds, n)) return false;
    return true;
}

}  // namespace

Problem openTableRows(const Source& source, Rows& rows) {
    return openTable(source, source.type.columns, rows);
}

std::vector<Characters> characterColumns(std::string_view columns) {
    constexpr struct {
        std::string_view word;
        Characters characters;
    } words[] = {{"Tchar", Characters::One},
                 {"Tchars", Characters::Text},
                 {"Tnumeric", Characters::Number},
                 {"Tlogical", Characters::Logical},
                 {"Tdate", Characters::Date}};
    std::vector<Characters> found;
    const auto lines = static_cast<std::int32_t>(std::count(columns.begin(), columns.end(), '\n'));
    for (std::int32_t n = 1; n <= lines; ++n) {
        const std::string type = TypeInfoParseLine(columns, n).typeName;
        const auto* const row = std::find_if(std::begin(words), std::end(words),
                                             [&](const auto& w) { return ascii::equal(w.word, type); });
        found.push_back(row != std::end(words) ? row->characters : Characters::None);
    }
    return found;
}

Problem badRow(const Source& source, std::int32_t number, std::int32_t code) {
    TableFacts facts;
    FileRows file;
    std::string bytes;
    const bool known = code == ERR_FILE_READ && number > 0 &&
                       !tableFacts(source.file, source.type, facts).any() && file.open(source.file);
    const std::int64_t at = facts.headerBytes + (std::int64_t{number} - 1) * facts.rowBytes;
    const auto size = static_cast<std::size_t>(facts.rowBytes);
    const bool read = known && file.read(at, size, bytes) && bytes.size() == size;
    const std::int32_t field = read ? RowBytes(source.type).badField(bytes) : 0;
    if (field == 0) return rowProblem(source, number, code);
    return {fileWord(source.file) + "row " + std::to_string(number) +
                " cannot be read: its bytes are no value of field '" +
                shown(fieldNames(source.type.columns)[static_cast<std::size_t>(field) - 1]) + "'.",
            "Look whether the declaration is that of its rows; 'tarn-data check' names every such row."};
}

Problem loadTable(const Source& source, std::string_view columns, Rows& rows) {
    RecordValue wanted;
    Rows inPlace;
    const bool same = makeRow(columns, wanted) && sameKinds(wanted.get(), source.type.row.get());
    const bool whole = same && source.options.maxdatarows < 0;
    Problem problem = openTable(source, same ? columns : source.type.columns, whole ? rows : inPlace);
    if (problem.any()) return problem;
    if (whole) return rows.beginBatch() ? Problem() : rowProblem(source, 0, TakeError());
    problem = fitsMemory(source, columns) ? makeRows(columns, false, rows) : makeFileRows(columns, rows);
    if (!problem.any() && !rows.beginBatch()) problem = rowProblem(source, 0, TakeError());
    if (!problem.any() && !inPlace.beginBatch()) problem = rowProblem(source, 0, TakeError());
    if (!problem.any()) problem = copyRows(source, inPlace, rows);
    return problem.any() || rows.endBatch() ? problem : rowProblem(source, 0, TakeError());
}

}  // namespace tarn::datatool
