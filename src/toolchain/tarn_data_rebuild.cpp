// SPDX-License-Identifier: Apache-2.0
//
// Mending a table file, or an Xbase file, and making its indexes anew. No whole row is lost: rows behind
// those that a header counts are taken in, and bytes that are no whole row are kept in a file beside before
// they are cut off.
#include "kernel/errors.h"
#include "kernel/filevalues.h"
#include "kernel/runtime.h"
#include "kernel/tables.h"
#include "kernel/tables_file.h"
#include "toolchain/tarn_data.h"
#include "toolchain/tarn_data_tables.h"
#include "toolchain/tarn_data_xbase.h"

#include <algorithm>

namespace tarn::data {

namespace {

std::string counted(std::int64_t n, const char* what) {
    return std::to_string(n) + " " + what + (n == 1 ? "" : "s");
}

// What is known of a file before it is mended.
struct Patient {
    std::string name;  // as it was given
    std::string file;  // that is worked on: a copy for a dry run
    RowType type;
    std::int64_t rowBytes = 0, headerBytes = 0, size = 0, counted = -1, whole = 0, behind = 0;
    std::int64_t takenIn = 0;  // whole rows of an Xbase file behind those that its header counts
    std::vector<std::vector<std::string>> keys;
    std::vector<std::int32_t> maps;
    std::size_t indexesBefore = 0;
};

// ---- looking ----

// A declaration that is not that of the rows would cut them up.
Problem checkRows(const Patient& patient) {
    FileRows rows;
    RowBytes bytes(patient.type);
    Steps steps(patient.whole * patient.rowBytes);
    const std::vector<std::string> names = fieldNames(patient.type.columns);
    std::string_view row;
    if (!rows.open(patient.file)) return unreadable(patient.name, rows.error());
    const std::int64_t last = patient.counted < 0 ? patient.whole : std::min(patient.whole, patient.counted);
    rows.goTo(patient.headerBytes, static_cast<std::size_t>(patient.rowBytes), last);
    for (std::int64_t number = 1; rows.next(row); ++number) {
        if (!steps.step(patient.rowBytes)) return stoppedProblem();
        const std::int32_t bad = bytes.badField(row);
        if (bad != 0)
            return {fileWord(patient.name) + "row " + std::to_string(number) +
                        ": its bytes are no value of field '" + names[static_cast<std::size_t>(bad) - 1] +
                        "'.",
                    "Nothing was changed. Look whether the declaration is that of the rows; a row that is "
                    "damaged must "
                    "be set right by the program that writes it."};
    }
    return rows.error() == os::FileError::None ? Problem() : unreadable(patient.name, rows.error());
}

Problem lookAtTable(const std::string& typeFile, Patient& patient) {
    TableFacts facts;
    Problem problem = readRowType(typeFile, patient.type);
    if (!problem.any()) problem = tableFacts(patient.file, patient.type, facts);
    patient.rowBytes = facts.rowBytes;
    patient.headerBytes = facts.headerBytes;
    patient.counted = facts.counted;
    patient.whole = facts.whole;
    patient.behind = facts.behind;
    patient.size = facts.size;
    return problem.any() ? problem : checkRows(patient);
}

// Rows that have a mark of deletion, behind those that the header counts.
std::int64_t rowsBehind(XbaseFile& file) {
    std::int64_t rows = 0;
    std::string_view row;
    file.goToFirst(file.whole());
    for (std::int64_t number = 1; file.next(row); ++number) {
        if (number <= file.counted()) continue;
        if (row[0] != LiveRow && row[0] != DeletedRow) break;
        ++rows;
    }
    return rows;
}

Problem lookAtXbase(Patient& patient) {
    XbaseFile file;
    Problem problem = file.open(patient.file);
    if (!problem.any()) problem = xbaseRowType(patient.file, patient.type);
    if (problem.any()) return problem;
    patient.rowBytes = file.header().recordSize;
    patient.headerBytes = file.header().headerSize;
    patient.counted = file.counted();
    patient.whole = file.whole();
    patient.behind = file.behind();
    patient.size = os::sizeOf(os::native(patient.file));
    if (file.counted() < file.whole()) patient.takenIn = rowsBehind(file);
    return {};
}

// The keys that are asked for, or those of the index files.
Problem chooseKeys(const Arguments& arguments, Patient& patient) {
    const std::vector<IndexBeside> beside = indexesBeside(patient.file, patient.type);
    patient.indexesBefore = beside.size();
    patient.keys = arguments.keys;
    for (const IndexBeside& index : beside) {
        if (!arguments.keys.empty()) break;
        if (index.keyMap == 0)
            return {"The key of '" + IndexFileName(patient.name, index.number) + "' is not known. " +
                        (index.file.path.empty() ? "It is missing." : index.file.wrong),
                    "Give the fields of all indexes with --keys, once for each, in their order."};
        patient.keys.push_back(index.file.fields);
    }
    return keyMapsOf(patient.keys, patient.type, patient.maps);
}

// ---- mending ----

// What is about to be cut off. A row whose writing was noted is no loss, but hard to tell from others here.
Problem keepTail(const Patient& patient, std::string& kept) {
    FileRows rows;
    std::string bytes;
    if (patient.behind <= 0) return {};
    kept = patient.file + ".torn";
    for (int n = 2; os::infoOf(os::native(kept)).exists; ++n)
        kept = patient.file + ".torn" + std::to_string(n);
    const auto count = static_cast<std::size_t>(patient.behind);
    if (!rows.open(patient.file) || !rows.read(patient.size - patient.behind, count, bytes))
        return unreadable(patient.name, rows.error());
    const os::SaveResult saved = os::saveFile(os::native(kept), bytes);
    if (saved.ok()) return {};
    return {"File '" + kept + "' cannot be written: " + std::string(os::describe(saved.error)),
            "The bytes behind the last whole row are to be kept there. Nothing was changed."};
}

std::string keyOf(const Patient& patient, std::int32_t index) {
    return std::to_string(index) + " (" + joined(patient.keys[static_cast<std::size_t>(index) - 1]) + ")";
}

// What was done, a line each.
std::string report(const Patient& patient, const RebuiltTable& result, const std::string& kept) {
    const MendedRows& mended = result.mended;
    std::string text;
    const auto line = [&](const std::string& what) { text += patient.name + ": " + what + "\n"; };
    if (mended.rowWritten != 0)
        line("row " + std::to_string(mended.rowWritten) + " was being replaced: replaced.");
    if (mended.bytesCut > 0) {
        const bool torn = mended.bytesCut == patient.behind && !kept.empty();
        line(counted(mended.bytesCut, "byte") + " behind the last whole row cut off" +
             (torn ? "; they stand in '" + patient.name + kept.substr(patient.file.size()) + "'." : "."));
    }
    if (patient.takenIn > 0)
        line(counted(patient.takenIn, "row") + " behind those that the header counted taken in.");
    if (mended.countSet)
        line("the count in the header was " + std::to_string(patient.counted) + ": set to " +
             std::to_string(mended.rows) + ".");
    if (result.rowDropped != 0)
        line("the last row, " + std::to_string(result.rowDropped) + ", was row " +
             std::to_string(result.sameAs) + " again: dropped.");
    if (result.rowsTorn != 0) line(counted(result.rowsTorn, "row") + " that could not be read dropped.");
    if (result.rowsRestored != 0)
        line(counted(result.rowsRestored, "row") +
             " that deletions had moved, and that were lost, brought back.");
    if (result.badRow != 0) line("row " + std::to_string(result.badRow) + " cannot be read.");
    for (const DuplicateKey& duplicate : result.duplicates)
        line("rows " + std::to_string(duplicate.first) + " and " + std::to_string(duplicate.row) +
             " have the same key in index " + keyOf(patient, duplicate.index) + ", which lacks the second.");
    return text;
}

std::string indexReport(const Patient& patient, std::int32_t rows) {
    std::string text;
    for (std::size_t n = 1; n <= patient.keys.size(); ++n)
        text += patient.name + ": index " + keyOf(patient, static_cast<std::int32_t>(n)) + " made anew.\n";
    if (text.empty()) text = patient.name + ": it has no indexes.\n";
    return text + patient.name + ": " + counted(rows, "row") + ".\n";
}

// An index that was there and is wanted no more would belong to other rows soon.
void removeOtherIndexes(const Patient& patient) {
    for (std::size_t n = patient.keys.size() + 1; n <= patient.indexesBefore; ++n) {
        const std::string name = IndexFileName(patient.file, static_cast<std::int32_t>(n));
        os::files().remove(os::native(name));
        os::files().remove(os::native(asideName(name)));
    }
}

Problem mend(const Patient& patient, RebuiltTable& result) {
    const std::string file = os::native(patient.file);
    if (patient.takenIn > 0)
        FileKeepCount(file, RowsXbase, static_cast<std::int32_t>(patient.counted + patient.takenIn));
    TableValue table;
    const bool made = ErrorCell() == 0 && makeFileTable(patient.type, patient.maps, table);
    if (made) result = RebuildTableFile(*table.get(), file);
    const std::int32_t code = made ? result.error : ErrorCell();
    ClearError();
    if (result.stopped)
        return {"Stopped.", "The rows of '" + patient.name + "' are whole; its indexes are as they were."};
    if (code == 0 || code == ERR_UNIQUE_INDEX) return {};
    return {fileWord(patient.name) + "cannot be rebuilt: " + ErrorMessage(code) + ".",
            "Look whether its folder may be written, and whether the disk has room. Its rows are whole, its "
            "indexes are as they were."};
}

int rebuildFile(const Patient& patient) {
    RebuiltTable result;
    std::string kept;
    Problem problem = keepTail(patient, kept);
    if (problem.any()) return tell(problem);
    problem = mend(patient, result);
    if (result.mended.rowWritten != 0 && !kept.empty()) {  // the bytes were those of the note
        os::files().remove(os::native(kept));
        kept.clear();
    }
    std::string text = report(patient, result, kept);
    if (!problem.any()) {
        removeOtherIndexes(patient);
        text += indexReport(patient, result.rows);
    }
    const int printed = print(text);
    if (problem.any()) return tell(problem);
    if (result.duplicates.empty()) return printed;
    return tell(
        {fileWord(patient.name) + "has rows with the same key, which its indexes lack.",
         "Change or delete one of each by number, then rebuild again; 'tarn-data convert' shows them."});
}

// ---- dry runs ----

Problem look(const Arguments& arguments, bool xbase, Patient& patient) {
    Problem problem = xbase ? lookAtXbase(patient) : lookAtTable(arguments.type, patient);
    return problem.any() ? problem : chooseKeys(arguments, patient);
}

// The same work on copies.
int rehearse(const Arguments& arguments, bool xbase) {
    Patient patient;
    patient.name = arguments.files[0];
    WorkFolder folder;
    folder.take(patient.name);
    for (std::int32_t n = 1; n <= MaxIndexes; ++n) {
        folder.take(IndexFileName(patient.name, n));
        folder.take(asideName(IndexFileName(patient.name, n)));
    }
    if (folder.error() != os::FileError::None)
        return tell({"The files cannot be copied to '" + folder.path() +
                         "' for a dry run: " + std::string(os::describe(folder.error())),
                     "Choose a folder with more room with TMPDIR."});
    patient.file = folder.path() + "/" + std::string(baseName(patient.name));
    const Problem problem = look(arguments, xbase, patient);
    if (problem.any()) return tell(problem);
    print("A dry run: nothing is changed. A rebuild would tell:\n");
    return rebuildFile(patient);
}

}  // namespace

int rebuild(const Arguments& arguments) {
    Patient patient;
    patient.name = patient.file = arguments.files[0];
    Problem problem = problemOfName(patient.name);
    if (problem.any()) return tell(problem);
    const FileKind kind = kindOf(patient.name);
    const bool table = !arguments.type.empty();
    const bool xbase = XbaseFileName(patient.name);
    if (isIndexName(patient.name) || (kind == FileKind::Index && !table))
        return tell({fileWord(patient.name) + "is an index file, which is made anew with its table file.",
                     "Give that; 'tarn-data info' tells which it is.", WrongUsage});
    if (!xbase && !table) {
        const bool known = DataFormatOf(patient.name) == FormatBinary || isTableByIndex(patient.name);
        if (known) return tell(typeIsMissing(patient.name));
        return tell({fileWord(patient.name) + "is no dbf file or table file.",
                     "--type=FILE says that it is a table file, and what its rows are.", WrongUsage});
    }
    const Work work("rebuilding " + patient.name);
    if (arguments.dryRun) return rehearse(arguments, xbase);
    problem = look(arguments, xbase, patient);
    return problem.any() ? tell(problem) : rebuildFile(patient);
}

}  // namespace tarn::data
