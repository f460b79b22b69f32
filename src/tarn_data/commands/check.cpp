// SPDX-License-Identifier: Apache-2.0
//
// What is wrong with a file: a line for each fault. Nothing is opened as a table here, as that may write.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/index/index_file.h"
#include "kernel/index/index_filecheck.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/tables/tables_file_check.h"
#include "kernel/tables/tables_file_guard.h"
#include "os/paths.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/commands/check_internal.h"
#include "tarn_data/commands/commands.h"

#include <algorithm>

namespace tarn::datatool {

// ---- findings ----

void Findings::fault(const std::string& file, const std::string& what) {
    ++faults_;
    put(file + ": " + what, faults_);
}

void Findings::note(const std::string& file, const std::string& what) {
    ++notes_;
    put("note: " + file + ": " + what, notes_);
}

void Findings::put(const std::string& text, std::int64_t number) {
    if (number <= most_) lines_ += text + "\n";
}

std::string Findings::text(const std::string& file, const std::string& contents) const {
    std::string text = lines_;
    const auto more = [&](std::int64_t found, const char* what) {
        if (found > most_) text += "and " + std::to_string(found - most_) + " more " + what + "\n";
    };
    more(faults_, "faults");
    more(notes_, "notes");
    return faults_ > 0 ? text : text + file + ": whole, " + contents + "\n";
}

namespace {

// ---- indexes ----

std::string nameOf(const std::string& file, std::int32_t number) {
    return IndexFileName(file, number);
}

}  // namespace

void checkNote(const std::string& file, const RowNote& note, std::int32_t replacing, Findings& findings) {
    if (note.offset < 0) return;
    findings.fault(file, replacing != 0 ? "Row " + std::to_string(replacing) +
                                              " was being replaced when a process died; 'tarn-data rebuild' "
                                              "finishes it."
                                        : "The replacing of a row was begun when a process died, and is "
                                          "noted in part; 'tarn-data rebuild' cuts the note off.");
}

std::string RowKeys::compare(std::int32_t row, std::string_view key) {
    const auto bytes = static_cast<std::size_t>(rows_.bytes);
    if (!steps_.step(rows_.bytes)) return "Stopped.";
    const bool read = rows_.file.read(rows_.first + (std::int64_t{row} - 1) * rows_.bytes, bytes, row_);
    const RecordDescriptor* const record = read && row_.size() == bytes ? rows_.record(row_) : nullptr;
    KeyView own;
    if (record == nullptr || !KeyOfRow(*record, keyMap_, own))
        return "Row " + std::to_string(row) + " cannot be read.";
    if (IsPackedKey(own, key)) return {};
    return "The key of row " + std::to_string(row) + " is not the one that the row has.";
}

void checkIndexes(const std::string& file, const std::vector<IndexBeside>& indexes, const RowsOfFile& rows,
                  Findings& findings) {
    for (const IndexBeside& index : indexes) {
        const std::string name = nameOf(file, index.number);
        if (index.file.path.empty() || index.aside) {
            const std::string state = index.begun ? "It has only begun" : "It is missing";
            findings.fault(name, state + (index.aside ? ": the making of a new one did not end." : "."));
            continue;
        }
        if (!index.owner.empty()) {
            findings.note(name, index.file.wrong);
            continue;
        }
        if (index.keyMap == 0) {
            findings.fault(name, index.file.wrong);
            continue;
        }
        RowKeys keys(rows, index.keyMap);
        const std::string wrong =
            CheckIndexFile(os::native(name), index.file.shape(), static_cast<std::int32_t>(rows.count),
                           [&](std::int32_t row, std::string_view key) { return keys.compare(row, key); });
        if (!wrong.empty()) findings.fault(name, wrong);
        if (!index.file.odd.empty()) findings.note(name, index.file.odd);
        const std::string_view base = paths::fileName(file).substr(0, MaxIndexTableName);
        if (index.file.tableName != base)
            findings.note(name, "It names the table file '" + index.file.tableName + "'.");
    }
}

std::string indexCount(const std::vector<IndexBeside>& indexes) {
    const auto count = std::count_if(indexes.begin(), indexes.end(),
                                     [](const IndexBeside& index) { return index.owner.empty(); });
    return count == 0 ? std::string() : ", " + counted(count, "index", "indexes");
}

// Those that a user misses: behind the last that is there, nothing tells of them.
Problem checkWanted(const Arguments& arguments, const RowType& type, const std::vector<IndexBeside>& indexes,
                    Findings& findings) {
    std::vector<std::int32_t> maps;
    Problem problem = keyMapsOf(arguments.keys, type, maps);
    for (std::size_t n = 0; n < maps.size() && !problem.any(); ++n) {
        const std::string name = nameOf(arguments.files[0], static_cast<std::int32_t>(n) + 1);
        if (n >= indexes.size())
            findings.fault(name, "It is missing.");
        else if (!indexes[n].owner.empty())
            findings.fault(name, indexes[n].file.wrong);
        else if (indexes[n].keyMap != 0 && indexes[n].keyMap != maps[n])
            findings.fault(name, "Its key is " + joined(indexes[n].file.fields) + ", and not " +
                                     joined(arguments.keys[n]) + ".");
    }
    return problem;
}

namespace {

int checkIndex(const std::string& file) {
    Findings findings;
    const Work work("checking " + file);
    const IndexFile index = readIndexFile(file);
    std::string contents;
    if (!index.wrong.empty()) {
        findings.fault(file, index.wrong);
    } else {
        Steps steps(os::sizeOf(os::native(file)));
        const std::string wrong =
            CheckIndexFile(os::native(file), index.shape(), -1, [&](std::int32_t, std::string_view key) {
                const auto bytes = static_cast<std::int64_t>(key.size()) + IndexNodeHeadBytes;
                return steps.step(bytes) ? std::string() : "Stopped.";
            });
        if (stopSignal() != 0) return tell(stoppedProblem());
        if (!index.odd.empty()) findings.note(file, index.odd);
        if (!wrong.empty()) findings.fault(file, wrong);
        contents =
            counted(wrong.empty() ? countNodes(index).nodes : 0, "node") + ", key " + joined(index.fields);
    }
    return findings.print(file, contents);
}

// ---- table files ----

void checkFacts(const std::string& file, const RowType& type, const TableFacts& facts, Findings& findings) {
    if (facts.behind < 0)
        return findings.fault(file, "It has " + counted(facts.size, "byte") + ", and its header alone has " +
                                        std::to_string(facts.headerBytes) + ".");
    checkNote(file, facts.note, facts.replacing(), findings);
    if (facts.behind > 0 && facts.note.offset < 0)
        findings.fault(file, "It has " + counted(facts.behind, "byte") + " behind its " +
                                 counted(facts.whole, "whole row") + " of " + std::to_string(facts.rowBytes) +
                                 ".");
    if (facts.counted > facts.whole)
        findings.fault(file, "Its header counts " + counted(facts.counted, "row") + ", and it has " +
                                 std::to_string(facts.whole) + ".");
    // One that was cleared is no longer than its rows, and a longer one does no harm.
    if (type.capacity == UNBOUNDED || facts.whole <= type.capacity) return;
    const std::string declared = ", and is declared for " + std::to_string(type.capacity) + ".";
    if (facts.rows() > type.capacity)
        findings.fault(file, "It has " + counted(facts.rows(), "row") + declared);
    else
        findings.note(file, "It has room for " + counted(facts.whole, "row") + declared);
}

// False: it was stopped, or a row cannot be read.
bool checkRows(const std::string& file, const RowType& type, const TableFacts& facts, Findings& findings) {
    FileRows rows;
    RowBytes bytes(type);
    Steps steps(facts.rows() * facts.rowBytes);
    const std::vector<std::string> names = fieldNames(type.columns);
    std::string_view row;
    bool good = rows.open(file);
    rows.goTo(facts.headerBytes, static_cast<std::size_t>(facts.rowBytes), facts.rows());
    for (std::int64_t number = 1; rows.next(row); ++number) {
        if (!steps.step(facts.rowBytes)) return false;
        const bool noted = number == facts.replacing();
        const std::int32_t bad = bytes.badField(noted ? std::string_view(facts.note.row) : row);
        const std::int32_t odd = bad == 0 ? bytes.oddText(row) : 0;
        if (odd != 0)
            findings.note(file, "Row " + std::to_string(number) +
                                    ": there are bytes behind the text of field '" +
                                    names[static_cast<std::size_t>(odd) - 1] + "'.");
        if (bad == 0) continue;
        good = false;
        findings.fault(file, "Row " + std::to_string(number) + ": its bytes are no value of field '" +
                                 names[static_cast<std::size_t>(bad) - 1] + "'.");
    }
    if (rows.error() != os::FileError::None) findings.fault(file, std::string(os::describe(rows.error())));
    return good && rows.error() == os::FileError::None;
}

// Rows that deletions move are guarded until the table is closed.
void checkGuarded(const std::string& file, const RowType& type, const std::vector<IndexBeside>& indexes,
                  Findings& findings) {
    const std::string guard = GuardFileName(file);
    std::vector<std::int32_t> maps;
    for (const IndexBeside& index : indexes) maps.push_back(index.keyMap);
    if (!os::infoOf(os::native(guard)).exists || std::count(maps.begin(), maps.end(), 0) > 0) return;
    TableValue table;
    if (makeFileTable(type, maps, table) && MissesGuardedRows(*table.get(), os::native(file)))
        findings.fault(file, "A row that a deletion has moved is missing; a rebuild brings it back.");
    else
        findings.note(guard, "It guards rows that deletions have moved, until the table is closed.");
    ClearError();
}

int checkTable(const std::string& file, const Arguments& arguments) {
    RowType type;
    TableFacts facts;
    Findings findings;
    const Work work("checking " + file);
    Problem problem = readRowType(arguments.type, type);
    if (!problem.any()) problem = tableFacts(file, type, facts);
    if (problem.any()) return tell(problem);
    const std::vector<IndexBeside> indexes = indexesBeside(file, type);
    checkFacts(file, type, facts, findings);
    problem = checkWanted(arguments, type, indexes, findings);
    if (problem.any()) return tell(problem);
    checkRows(file, type, facts, findings);
    FileRows rows;
    RowBytes bytes(type);
    if (!rows.open(file)) return tell(unreadable(file, rows.error()));
    checkIndexes(file, indexes,
                 {rows, facts.headerBytes, facts.rowBytes, facts.rows(),
                  [&](std::string_view row) { return bytes.record(row); }},
                 findings);
    if (stopSignal() != 0) return tell(stoppedProblem());
    checkGuarded(file, type, indexes, findings);
    const std::string beside = indexCount(indexes);
    return findings.print(file, counted(facts.rows(), "row") + (beside.empty() ? ", no index" : beside));
}

}  // namespace

int Findings::print(const std::string& file, const std::string& contents) const {
    const int printed = datatool::print(text(file, contents));
    return faults_ > 0 ? int{Failed} : printed;
}

int check(const Arguments& arguments) {
    const std::string& file = arguments.files[0];
    const Problem problem = problemOfName(file);
    if (problem.any()) return tell(problem);
    const FileKind kind = kindOf(file);
    const bool table = !arguments.type.empty();
    if (isIndexName(file) || (kind == FileKind::Index && !table)) {
        if (arguments.keys.empty()) return checkIndex(file);
        return tell({fileWord(file) + "is an index file, so that --keys means nothing for it.",
                     "Give the table file; 'tarn-data info' tells which it is.", WrongUsage});
    }
    if (XbaseFileName(file) || (kind == FileKind::Xbase && !table)) return checkXbase(arguments);
    if (table) return checkTable(file, arguments);
    if (DataFormatOf(file) == FormatBinary || isTableByIndex(file)) return tell(typeIsMissing(file));
    return tell(
        {fileWord(file) + "is no dbf file, table file or index file, so that there is nothing to check.",
         "'tarn-data info' reads other files; --type=FILE says that it is a table file.", WrongUsage});
}

}  // namespace tarn::datatool
