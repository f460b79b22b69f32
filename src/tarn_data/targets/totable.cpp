// SPDX-License-Identifier: Apache-2.0
//
// Rows into table files. Rows and indexes are made under a name beside the target first. Then the old indexes
// go, the rows take the place of the old ones, and the new indexes follow: a death in between leaves whole
// rows, of one or of the other table, that lack indexes.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/index/index_file.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/tables/tables_file_index.h"
#include "kernel/tables/tables_file_mend.h"
#include "kernel/tables/tables_file_places.h"
#include "kernel/values/records.h"
#include "os/paths.h"
#include "os/save_parts.h"
#include "os/text/ascii.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/sources/load.h"
#include "tarn_data/targets/save_internal.h"

#include <algorithm>

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

Problem fitColumns(const Source& source, std::string_view columns, const RowType& type) {
    std::vector<std::string> from = columnNames(columns), to = fieldNames(repairedNames(type.columns));
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
        if (!path_.empty()) {
            os::files().remove(path_);
            RemoveIndexFiles(path_);
        }
    }
    NewTable(const NewTable&) = delete;
    NewTable& operator=(const NewTable&) = delete;

    Problem fill(Rows& rows);
    Problem makeIndexes();
    Problem takePlace();

private:
    [[nodiscard]] Problem failed() const {
        const std::int32_t code = ErrorCell() != 0 ? ErrorCell() : std::int32_t{ERR_FILE_WRITE};
        ClearError();
        return unwritable(target_.file, ErrorMessage(code));
    }
    Problem failed(os::FileError error) const {
        return unwritable(target_.file, std::string(os::describe(error)));
    }
    bool makePath();

    const Target& target_;
    os::SaveTarget place_;
    std::string path_;
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

Problem NewTable::fill(Rows& rows) {
    os::FileError error = os::findSaveTarget(os::native(target_.file), place_);
    if (error == os::FileError::None && (place_.info.special || place_.info.links > 1))
        error = os::FileError::Denied;
    if (error != os::FileError::None) return failed(error);
    Rows made;
    if (!makePath() || !makeFileTable(target_.type, {}, made.table)) return failed();
    FileOpen(made.table.get(), KindTable, path_);
    if (ErrorCell() != 0 || !made.beginBatch()) return failed();
    const std::int32_t bytes = rowBytes(target_.type);
    Steps steps(std::int64_t{rows.count()} * bytes);
    rows.beginBatch();
    for (std::int32_t i = 1; i <= rows.count(); ++i) {
        if (!steps.step(bytes)) return stoppedAhead(target_.file);
        const RecordDescriptor* const row = rows.at(i);
        if (row != nullptr && made.add(row)) continue;
        const bool full = ErrorCell() == ERR_FIXED_LIST || ErrorCell() == ERR_FIXED_TABLE;
        if (!full) return failed();
        ClearError();
        return {"There are " + std::to_string(rows.count()) + " rows, and the table is declared for " +
                    std::to_string(target_.type.capacity) + ".",
                "Declare it for more, or without a number."};
    }
    const bool written = made.endBatch();
    FileClose(made.table.get(), KindTable);
    return written && ErrorCell() == 0 ? Problem() : failed();
}

// Those that are asked for, or those of the table that is replaced.
Problem NewTable::makeIndexes() {
    keys_ = target_.keys;
    if (keys_.empty()) {
        for (const IndexBeside& index : indexesBeside(place_.path, target_.type)) {
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

Problem NewTable::takePlace() {
    os::FileError error = os::FileError::None;
    if (stopSignal() != 0) return stoppedAhead(target_.file);
    if (!AcceptIndexPlaces(place_.path, static_cast<std::int32_t>(keys_.size()))) return failed();
    if (place_.info.exists) error = os::takeOver(place_.info, path_);
    if (error != os::FileError::None) return failed(error);
    RemoveIndexFiles(place_.path);
    error = os::files().rename(path_, place_.path);
    if (error != os::FileError::None) return failed(error);
    for (std::size_t n = 1; n <= keys_.size(); ++n) {
        const auto number = static_cast<std::int32_t>(n);
        const std::string from = IndexFileName(path_, number), to = IndexFileName(place_.path, number);
        if (RenameIndexFile(from, to, place_.path)) continue;
        Problem problem = failed();
        problem.next = "The rows are all there; 'tarn-data rebuild' with --keys makes the indexes.";
        return problem;
    }
    os::files().syncFolder(std::string(paths::folder(place_.path)));
    path_.clear();
    return {};
}

}  // namespace

Problem saveTable(const Target& target, Rows& rows) {
    const Work work("writing " + target.file);
    if (stopSignal() != 0) return stoppedAhead(target.file);
    NewTable table(target);
    Problem problem = table.fill(rows);
    if (!problem.any()) problem = table.makeIndexes();
    return problem.any() ? problem : table.takePlace();
}

}  // namespace tarn::datatool
