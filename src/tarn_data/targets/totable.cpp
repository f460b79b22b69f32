// SPDX-License-Identifier: Apache-2.0
//
// Rows into table files. Rows and indexes are made under a name beside the target first. Then the new indexes wait under the
// names of those that step aside (orders.~i1), the old ones go, the rows take the place of the old ones, and the new indexes
// theirs. A death in between leaves whole rows, of one or of the other table, and beside them what tells `check` that indexes
// are missing, and `rebuild` their keys.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/index/index_file.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/tables/tables_file_index.h"
#include "kernel/tables/tables_file_mend.h"
#include "kernel/tables/tables_file_places.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"
#include "os/paths.h"
#include "os/save_parts.h"
#include "os/text/ascii.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/sources/digits.h"
#include "tarn_data/sources/load.h"
#include "tarn_data/targets/celltarget.h"

#include <algorithm>
#include <cstring>

namespace tarn::datatool {

// ---- columns ----

namespace {

bool isDeleteFlag(std::string_view columns) {
    const TypeInfoElement first = TypeInfoParseLine(columns, 1);
    return ascii::equal(first.name, "delete_flag") && ascii::equal(first.typeName, "Tchar");
}

// Names that stand in the file, not those that its columns get when it has none.
bool hasNames(const Source& source) {
    if (RowsAreLines(source.format)) return source.options.numheaderrows > 0 && IsDelimited(source.format);
    return !FactsOf(source.format).declared;
}

}  // namespace

Problem fitColumns(const Source& source, std::vector<std::string> from, const RowType& type) {
    std::vector<std::string> to = fieldNames(withRepairedNames(type.columns));
    const bool marked = source.format == FormatXbase && isDeleteFlag(type.columns);
    if (marked) to.erase(to.begin());
    if (marked && source.deleted) from.erase(from.begin());
    if (from.size() != to.size())
        return {fileWord(source.file) + "has " + std::to_string(from.size()) +
                    " columns, and the declaration " + std::to_string(to.size()) + ".",
                "Declare a row of the columns that the file has, in their order."};
    for (std::size_t n = 0; n < from.size() && hasNames(source); ++n) {
        if (!ascii::equal(from[n], to[n]))
            return {"Column " + std::to_string(n + 1) + " is '" + from[n] + "' in '" + source.file +
                        "' and '" + to[n] + "' in the declaration.",
                    "Declare a row of the columns that the file has, in their order."};
    }
    return {};
}

// ---- writing ----

namespace {

// The new files of a table, which go when they did not take the place of others.
class NewTable {
public:
    explicit NewTable(const Target& target) : target_(target) {}
    ~NewTable() {
        if (path_.empty()) return;
        try {
            os::files().remove(path_);
            RemoveIndexFiles(path_);
        } catch (...) {  // the end of the process, in a test
        }
    }
    NewTable(const NewTable&) = delete;
    NewTable& operator=(const NewTable&) = delete;

    // Rows are added between these two.
    Problem begin();
    Problem end();
    Problem add(const RecordDescriptor* row);
    Problem makeIndexes();
    Problem takePlace();

private:
    [[nodiscard]] Problem failed() const {
        const std::int32_t code = ErrorCell() != 0 ? ErrorCell() : std::int32_t{ERR_FILE_WRITE};
        ClearError();
        return unwritable(target_.file, ErrorMessage(code));
    }
    Problem failed(os::FileError error) const { return unwritable(target_.file, os::describe(error)); }
    bool makePath();
    Problem indexesWait();
    Problem indexesFollow();
    [[nodiscard]] std::int32_t indexes() const { return static_cast<std::int32_t>(keys_.size()); }
    [[nodiscard]] std::string waitingName(std::int32_t number) const {
        return asideName(IndexFileName(place_.path, number));
    }

    const Target& target_;
    os::SaveTarget place_;
    std::string path_;
    Rows made_;
    std::vector<std::vector<std::string>> keys_;
    std::vector<std::int32_t> maps_;
};

// A name in the target's folder that nobody has, with its extension.
bool NewTable::makePath() {
    std::string extension(paths::extension(place_.path));
    if (extension.empty()) extension = ".bin";
    os::NewFile made;
    if (os::makeUniqueFile(os::temporaryStart(place_), extension, os::UsualFileMode, made) !=
        os::FileError::None)
        return false;
    os::files().close(made.handle);
    path_ = made.path;
    return os::files().remove(path_) == os::FileError::None;
}

Problem NewTable::begin() {
    os::FileError error = os::findSaveTarget(os::native(target_.file), place_);
    if (error == os::FileError::None && (place_.info.special || place_.info.links > 1))
        error = os::FileError::Denied;
    if (error != os::FileError::None) return failed(error);
    if (!makePath() || !makeFileTable(target_.type, {}, made_.table)) return failed();
    FileOpen(made_.table.get(), KindTable, path_);
    return ErrorCell() != 0 || !made_.beginBatch() ? failed() : Problem();
}

Problem NewTable::add(const RecordDescriptor* row) {
    if (made_.add(row)) return {};
    const bool full = ErrorCell() == ERR_FIXED_LIST || ErrorCell() == ERR_FIXED_TABLE;
    if (!full) return failed();
    ClearError();
    return {"There are more rows than the " + std::to_string(target_.type.capacity) +
                " that the table is declared for.",
            "Declare it for more, or without a number."};
}

Problem NewTable::end() {
    const bool written = made_.endBatch();
    FileClose(made_.table.get(), KindTable);
    return written && ErrorCell() == 0 ? Problem() : failed();
}

// Those that are asked for, or those of the table that is replaced.
Problem NewTable::makeIndexes() {
    keys_ = target_.keys;
    const std::vector<IndexBeside> beside = indexesBeside(place_.path, target_.type);
    for (std::size_t n = 0; n < std::min(keys_.size(), beside.size()); ++n) {
        if (beside[n].owner.empty()) continue;
        return {"'" + shown(target_.file) + "' cannot have the index file '" +
                    shown(IndexFileName(target_.file, beside[n].number)) + "'. " + beside[n].file.wrong,
                "Choose another name or folder, or leave --keys away."};
    }
    if (keys_.empty()) {
        for (const IndexBeside& index : beside) {
            if (!index.owner.empty()) continue;
            if (index.keyMap == 0)
                return {"The key of index file '" + IndexFileName(target_.file, index.number) +
                            "' does not fit the new rows. " + index.file.wrong,
                        "Say with --keys which indexes there shall be."};
            keys_.push_back(index.file.fields);
        }
    }
    Problem problem = keyMapsOf(keys_, target_.type, maps_);
    if (problem.any() || keys_.empty()) return problem;
    TableValue table;
    if (!makeFileTable(target_.type, maps_, table)) return failed();
    const RebuiltTable result = RebuildTableFile(*table.get(), path_);
    if (result.stopped) return stoppedAhead(target_.file);
    if (result.rowDropped != 0)
        return {"Rows " + std::to_string(result.sameAs) + " and " + std::to_string(result.rowDropped) +
                    " are the same.",
                "Rows of a table with indexes must have different keys."};
    if (!result.duplicates.empty()) {
        const DuplicateKey& first = result.duplicates[0];
        return {"Rows " + std::to_string(first.first) + " and " + std::to_string(first.row) +
                    " have the same key (" + joined(keys_[static_cast<std::size_t>(first.index) - 1]) + ").",
                "Rows of a table must have different keys; choose other fields with --keys."};
    }
    return result.error == 0 ? Problem() : unwritable(target_.file, ErrorMessage(result.error));
}

// Nothing of the old table is gone yet.
Problem NewTable::indexesWait() {
    for (std::int32_t n = 1; n <= indexes(); ++n) {
        if (RenameIndexFile(IndexFileName(path_, n), waitingName(n), place_.path)) continue;
        Problem problem = failed();
        for (; n > 1; --n) os::files().remove(waitingName(n - 1));
        return problem;
    }
    return {};
}

Problem NewTable::indexesFollow() {
    for (std::int32_t n = 1; n <= indexes(); ++n) {
        const os::FileError error = os::files().rename(waitingName(n), IndexFileName(place_.path, n));
        if (error == os::FileError::None) continue;
        Problem problem = failed(error);
        problem.next = "The rows are all there; 'tarn-data rebuild' makes the indexes.";
        return problem;
    }
    return {};
}

Problem NewTable::takePlace() {
    os::FileError error = os::FileError::None;
    if (stopSignal() != 0) return stoppedAhead(target_.file);
    if (!AcceptIndexPlaces(place_.path, indexes())) return failed();
    if (place_.info.exists) error = os::takeOver(place_.info, path_);
    if (error != os::FileError::None) return failed(error);
    Problem problem = indexesWait();
    if (problem.any()) return problem;
    RemoveIndexFiles(place_.path, indexes());
    error = os::files().rename(path_, place_.path);
    if (error != os::FileError::None) return failed(error);
    problem = indexesFollow();
    if (problem.any()) return problem;
    os::files().syncFolder(std::string(paths::folder(place_.path)));
    path_.clear();
    return {};
}

Problem finishTable(NewTable& table, Problem problem) {
    if (!problem.any()) problem = table.end();
    if (!problem.any()) problem = table.makeIndexes();
    return problem.any() ? problem : table.takePlace();
}

// ---- from cells ----

using Fill = bool (*)(std::string_view cell, void* field);

bool fillBoolean(std::string_view cell, void* field) {
    bool value = false, ok = false;
    BooleanFromText(cell, value, ok);
    WriteAt<std::uint8_t>(field, value ? 1 : 0);
    return ok;
}

bool fillInteger(std::string_view cell, void* field) {
    std::int32_t value = 0;
    std::size_t end = 0;
    IntegerFromText(cell, value, end);
    WriteAt(field, value);
    return end == cell.size() && numberHolds(KindInteger, cell);
}

bool fillEnum(std::string_view cell, void* field) {
    std::int32_t value = 0;
    if (!fillInteger(cell, &value) || value < 0 || value > UINT8_MAX) return false;
    WriteAt(field, static_cast<std::uint8_t>(value));
    return true;
}

bool fillFixed(std::string_view cell, void* field) {
    Fixed value = 0;
    bool ok = false;
    FixedFromText(cell, value, ok);
    WriteAt(field, value);
    return ok && numberHolds(KindFixed, cell);
}

bool fillReal(std::string_view cell, void* field) {
    double value = 0;
    bool ok = false;
    RealFromText(cell, value, ok);
    WriteAt(field, value);
    return ok && numberHolds(KindReal, cell);
}

bool fillString(std::string_view cell, void* field) {
    StringAssignView(static_cast<StringDescriptor*>(field), cell);
    return ErrorCell() == 0;
}

bool fillSet(std::string_view cell, void* field) {
    std::int32_t position = 1, error = 0;
    SetFromText(cell, position, static_cast<SetDescriptor*>(field), error);
    return error == 0 && ErrorCell() == 0 && static_cast<std::size_t>(position) == cell.size() + 1;
}

bool fillCharacters(std::string_view cell, void* field) {
    const auto* const array = static_cast<const ArrayDescriptor*>(field);
    const auto room = static_cast<std::size_t>(array->size);
    std::memset(At(array->data), ' ', room);
    std::memcpy(At(array->data), cell.data(), std::min(room, cell.size()));
    return cell.size() <= room;
}

constexpr Fill fills[] = {nullptr,    fillBoolean, fillEnum, fillInteger, fillFixed,     fillReal,
                          fillString, nullptr,     nullptr,  fillSet,     fillCharacters};

class TableTarget : public CellTarget {
public:
    TableTarget(const Target& target, const TargetColumns& columns)
        : target_(target), columns_(columns), table_(target) {}

    Problem begin() override {
        AdtInit(record_.get(), target_.type.row.get(), KindRecord);
        const std::size_t fields = static_cast<std::size_t>(FieldCountOf(record_.get()->kinds));
        nothings_.resize(fields);
        others_.resize(fields);
        characters_ = characterColumns(target_.type.columns);
        return table_.begin();
    }
    Problem put(const CellRow& row, std::int64_t number) override {
        if (row.size() > nothings_.size())
            return {"Row " + std::to_string(number) + " has " + std::to_string(row.size()) +
                        " cells, and the declaration " + std::to_string(nothings_.size()) + " columns.",
                    "Look whether a cell holds the separator without quotes."};
        for (std::size_t n = 0; n < nothings_.size(); ++n) {
            const std::string_view cell = n < row.size() ? row[n].text : std::string_view();
            Problem problem = fill(cell, number, n);
            if (problem.any()) return problem;
            compare(cell, number, n);
        }
        return table_.add(record_.get());
    }
    Problem finish(std::int64_t) override {
        Problem problem = finishTable(table_, {});
        for (std::size_t n = 0; n < nothings_.size() && !problem.any(); ++n) {
            noteOthers(n);
            if (nothings_[n].count == 0) continue;
            note("Column '" + shown(columns_.headings[n]) + "': " + std::to_string(nothings_[n].count) +
                 (nothings_[n].count == 1 ? " cell that holds nothing becomes"
                                          : " cells that hold nothing become") +
                 (isSet(n) ? " []" : " 0 or False") + " (the first in row " +
                 std::to_string(nothings_[n].row) + "): a table file has no other " +
                 (isSet(n) ? "set" : "number") + " for nothing.");
        }
        return problem;
    }

private:
    struct Nothing {
        std::int64_t count = 0, row = 0, last = 0;  // the first row, and the last one
    };
    // Cells that the values give back as other texts.
    struct Other {
        std::int64_t count = 0, row = 0;
        std::string cell, value;
    };

    void compare(std::string_view cell, std::int64_t number, std::size_t n) {
        const auto column = static_cast<std::int32_t>(n + 1);
        const void* const field = RecordFieldAddress(record_.get(), column);
        const std::string_view value =
            valueText(field, FieldKindAt(record_.get()->kinds, column), characters_[n], scratch_);
        if (value == cell || nothings_[n].last == number) return;
        Other& other = others_[n];
        if (other.count++ == 0) other = {1, number, std::string(cell), std::string(value)};
    }
    void noteOthers(std::size_t n) const {
        const Other& other = others_[n];
        if (other.count == 0) return;
        note("Column '" + shown(columns_.headings[n]) + "': " + std::to_string(other.count) +
             (other.count == 1 ? " cell comes" : " cells come") + " back in another form (the first in row " +
             std::to_string(other.row) + ": '" + shownCell(other.cell) + "' as '" + shownCell(other.value) +
             "').");
    }

    [[nodiscard]] bool isSet(std::size_t n) const {
        return FieldKindAt(record_.get()->kinds, static_cast<std::int32_t>(n + 1)) == KindSet;
    }
    void countNothing(std::size_t n, std::int64_t number) {
        if (nothings_[n].count++ == 0) nothings_[n].row = number;
        nothings_[n].last = number;
    }
    Problem fill(std::string_view cell, std::int64_t number, std::size_t n) {
        const auto column = static_cast<std::int32_t>(n + 1);
        const Kind kind = FieldKindAt(record_.get()->kinds, column);
        void* const field = RecordFieldAddress(record_.get(), column);
        const bool character = kind == KindEnum && characters_[n] == Characters::One;
        const bool value = kind < KindString && !character;
        if (character) {
            *static_cast<char*>(field) = cell.empty() ? ' ' : cell[0];
            return cell.size() <= 1 ? Problem() : misfit(cell, number, n, kind);
        }
        if (value || kind == KindSet) cell = withoutBlanks(cell);
        if (value && isNothing(cell)) {
            std::memset(field, 0, static_cast<std::size_t>(KindSize[kind]));
            countNothing(n, number);
            return {};
        }
        if (kind == KindSet && cell.empty()) {
            SetClear(static_cast<SetDescriptor*>(field));
            countNothing(n, number);
            return {};
        }
        char truth = 0;
        if (characters_[n] == Characters::Logical) cell = logicalText(cell, truth);
        const bool known = static_cast<std::size_t>(kind) < std::size(fills) && fills[kind] != nullptr;
        const bool held = known && fills[kind](cell, field);
        ClearError();
        return held ? Problem() : misfit(cell, number, n, kind);
    }
    // What a field of the type L holds for a truth value; other texts as they are.
    static std::string_view logicalText(std::string_view cell, char& letter) {
        bool value = false, ok = false;
        BooleanFromText(cell, value, ok);
        letter = value ? 'T' : 'F';
        return ok ? std::string_view(&letter, 1) : cell;
    }
    [[nodiscard]] Problem misfit(std::string_view cell, std::int64_t number, std::size_t n, Kind kind) const {
        const bool text = kind == KindString || kind == KindArray;
        const std::string next =
            text ? "Declare the field longer."
                 : "Declare the field as string, or as a kind that holds every digit; --null='" +
                       shownCell(cell) + "' takes such cells as empty.";
        return {cellPlace(number, columns_.headings[n]) + "holds " + shownCell(cell) +
                    ", which its field in the declaration cannot hold.",
                next};
    }

    const Target& target_;
    const TargetColumns& columns_;
    NewTable table_;
    RecordValue record_;
    std::vector<Nothing> nothings_;
    std::vector<Other> others_;
    std::vector<Characters> characters_;
    std::string scratch_;
};

}  // namespace

std::unique_ptr<CellTarget> tableTarget(const Target& target, const TargetColumns& columns) {
    return std::make_unique<TableTarget>(target, columns);
}

Problem saveTable(const Source& source, const Target& target, Rows& rows) {
    const Work work("writing " + target.file);
    if (stopSignal() != 0) return stoppedAhead(target.file);
    NewTable table(target);
    Problem problem = table.begin();
    const std::int32_t bytes = rowBytes(target.type);
    Steps steps(std::int64_t{rows.count()} * bytes);
    rows.beginBatch();
    for (std::int32_t i = 1; i <= rows.count() && !problem.any(); ++i) {
        const RecordDescriptor* const row = rows.at(i);
        if (row == nullptr)
            problem = badRow(source, i, TakeError());
        else
            problem = steps.step(bytes) ? table.add(row) : stoppedAhead(target.file);
    }
    return finishTable(table, problem);
}

}  // namespace tarn::datatool
