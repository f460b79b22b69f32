// SPDX-License-Identifier: Apache-2.0
//
// Mending a table file, or an Xbase file, and making its indexes anew. No whole row is lost: rows behind
// those that a header counts are taken in, and bytes that are no whole row are kept in a file beside before
// they are cut off.
#include "kernel/data/xbase/xbase.h"
#include "kernel/index/index_file.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables_file_guard.h"
#include "kernel/tables/tables_file_mend.h"
#include "kernel/tables/tables_file_places.h"
#include "os/paths.h"
#include "os/savestream.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/commands/patient.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

// ---- mending ----

// A name beside a file that a disk takes.
std::string tornName(const std::string& file, int number) {
    constexpr std::size_t longest = 255;
    const std::string suffix = ".torn" + (number > 1 ? std::to_string(number) : "");
    const std::string name(paths::fileName(file));
    return file.substr(0, file.size() - name.size()) +
           name.substr(0, std::min(name.size(), longest - suffix.size())) + suffix;
}

// Where bytes that will be gone are copied to, in the end; nothing is made of no bytes.
class Lost {
public:
    Lost(const Patient& patient, const std::string& file) : patient_(patient), to_(os::native(file)) {}

    // The rows that will be dropped, then what will be cut off, unless that is a row that was noted and will
    // be written.
    bool copy() {
        if (!rows_.open(patient_.file)) return false;
        for (const std::int64_t row : patient_.torn)
            if (!add(patient_.headerBytes + (row - 1) * patient_.rowBytes, patient_.rowBytes)) return false;
        return patient_.behind <= 0 || patient_.replacing != 0 ||
               add(patient_.size - patient_.behind, patient_.behind);
    }
    [[nodiscard]] bool any() const { return any_; }
    [[nodiscard]] os::FileError readError() const { return rows_.error(); }
    os::SaveResult save() { return to_.finish(); }

private:
    bool add(std::int64_t at, std::int64_t count) {
        constexpr std::int64_t step = 1 << 20;
        std::string bytes;
        for (; count > 0; at += step, count -= step) {
            if (!rows_.read(at, static_cast<std::size_t>(std::min(count, step)), bytes)) return false;
            // What fills up a file behind its mark of the end is nobody's.
            const bool fill = patient_.xbase.padding > 0 &&
                              bytes.find_first_not_of(std::string_view("\0\x1A", 2)) == std::string::npos;
            any_ = any_ || !fill;
            to_.write(bytes);
        }
        return true;
    }

    const Patient& patient_;
    FileRows rows_;
    os::SaveStream to_;
    bool any_ = false;
};

Problem keepLost(const Patient& patient, std::string& kept, std::string& shown) {
    int number = 1;
    const auto isThere = [&](const std::string& file) {
        return os::infoOf(os::native(tornName(file, number))).exists;
    };
    while (isThere(patient.file) || isThere(patient.name)) ++number;
    const std::string name = tornName(patient.file, number);
    Lost lost(patient, name);
    if (!lost.copy()) return unreadable(patient.name, lost.readError());
    if (!lost.any()) return {};
    kept = name;
    shown = tornName(patient.name, number);
    const os::SaveResult saved = lost.save();
    if (saved.ok()) return {};
    return {"File '" + kept + "' cannot be written: " + std::string(os::describe(saved.error)),
            "What is not a whole row is to be kept there. Nothing was changed."};
}

std::string keyOf(const Patient& patient, std::int32_t index) {
    return std::to_string(index) + " (" + joined(patient.keys[static_cast<std::size_t>(index) - 1]) + ")";
}

// What was done, a line each.
std::string report(const Patient& patient, const RebuiltTable& result, const std::string& shown) {
    const MendedRows& mended = result.mended;
    std::string text = damageReport(patient);
    const auto line = [&](const std::string& what) { text += patient.name + ": " + what + "\n"; };
    if (mended.rowWritten != 0)
        line("row " + std::to_string(mended.rowWritten) + " was being replaced: replaced.");
    if (mended.bytesCut > 0 && mended.rowWritten == 0) {
        const bool torn = mended.bytesCut == patient.behind && !shown.empty();
        const std::string kept =
            (mended.bytesCut == 1 ? "; it stands in '" : "; they stand in '") + shown + "'.";
        line(counted(mended.bytesCut, "byte") + " behind the " +
             (patient.xbase.padding > 0 ? "mark of the end" : "last whole row") + " cut off" +
             (torn ? kept : "."));
    }
    if (mended.rowsTaken > 0)
        line(counted(mended.rowsTaken, "row") + " behind those that the header counted taken in.");
    if (mended.countSet && patient.size < patient.headerBytes && patient.xbase.rows < 0)
        line("its header was not whole: written, for " + counted(mended.rows, "row") + ".");
    else if (mended.countSet)
        line("the count in the header was " + std::to_string(patient.counted) + ": set to " +
             std::to_string(mended.rows) + ".");
    if (result.rowDropped != 0)
        line("the last row, " + std::to_string(result.rowDropped) + ", was row " +
             std::to_string(result.sameAs) + " again: dropped.");
    if (result.rowsTorn != 0)
        line(counted(result.rowsTorn, "row") + " that could not be read dropped" +
             (shown.empty() ? "." : "; what was there stands in '" + shown + "'."));
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
        if (!OwnerOfIndex(os::native(name), os::native(patient.file)).empty()) continue;
        os::files().remove(os::native(name));
        os::files().remove(os::native(asideName(name)));
    }
}

// What can be done about a rebuilding that failed.
struct Advice {
    std::int32_t code;
    const char* next;
};
constexpr Advice advices[] = {
    {ERR_FILE_READ, "Its disk may be failing: copy it elsewhere, and rebuild the copy."},
    {ERR_FILE_WRITE, "Look whether you may write it, and its folder, where the new indexes are made."},
    {ERR_FILE_VANISHED, "Look whether another program renames or deletes it, then rebuild again."},
    {ERR_DISK_FULL, "Make room on its disk for the new indexes, then rebuild again."},
    {ERR_FILE_SIZE, "It has more rows than a table can count: convert it in parts."},
    {ERR_INDEX_FILE_SIZE,
     "A file with the name of one of its indexes belongs to another table beside it: rename one of the two."},
    {ERR_FILE_NAME,
     "The name of an index would be too long, that of the file itself, or is that of a pipe, a "
     "device or a folder: rename what is in the way, or the file."},
    {ERR_COMPONENT_UNREPRESENTABLE, "Its fields have changed since it was looked at: rebuild again."},
    {ERR_TYPE_NOT_STORABLE, "A field of a key must have a length: choose other fields with --keys."},
    {ERR_FIXED_TABLE, "It has more rows than are declared: give the capacity of the table with --type."},
    {ERR_OUT_OF_MEMORY, "End other programs, then rebuild again."},
};

std::string adviceOf(std::int32_t code) {
    constexpr const char* others = "'tarn-data check' tells more of it.";
    const auto* const advice =
        std::find_if(std::begin(advices), std::end(advices), [&](const Advice& a) { return a.code == code; });
    return std::string(advice != std::end(advices) ? advice->next : others) +
           " Its rows are whole, its indexes are as they were.";
}

Problem mend(const Patient& patient, RebuiltTable& result) {
    const std::string file = os::native(patient.file);
    TableValue table;
    const bool made = makeFileTable(patient.type, patient.maps, table);
    if (made) result = RebuildTableFile(*table.get(), file, patient.xbase.rows);
    const std::int32_t code = made ? result.error : ErrorCell();
    ClearError();
    if (result.stopped)
        return {"Stopped.", "The rows of '" + patient.name + "' are whole; its indexes are as they were."};
    if (code == 0 || code == ERR_UNIQUE_INDEX) return {};
    return {fileWord(patient.name) + "cannot be rebuilt: " + ErrorMessage(code) + ".", adviceOf(code)};
}

int rebuildFile(const Patient& patient) {
    RebuiltTable result;
    std::string kept, shown;
    Problem problem = keepLost(patient, kept, shown);
    if (problem.any()) return tell(problem);
    problem = mendDamage(patient);
    if (problem.any()) return tell(problem);
    problem = mend(patient, result);
    if (result.mended.bytesCut == 0 && result.rowsTorn == 0 &&
        !kept.empty()) {  // they still stand where they were
        os::files().remove(os::native(kept));
        shown.clear();
    }
    std::string text = report(patient, result, shown);
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

// The same work on copies.
int rehearse(const Arguments& arguments, bool xbase) {
    Patient patient;
    patient.name = arguments.files[0];
    WorkFolder folder;
    folder.take(patient.name);
    folder.take(GuardFileName(patient.name));
    for (std::int32_t n = 1; n <= MaxIndexes; ++n) {
        const std::string index = IndexFileName(patient.name, n);
        if (OwnerOfIndex(os::native(index), os::native(patient.name)).empty()) folder.take(index);
        folder.take(asideName(index));
    }
    if (folder.error() != os::FileError::None)
        return tell({"The files cannot be copied to '" + folder.path() +
                         "' for a dry run: " + std::string(os::describe(folder.error())),
                     "Choose a folder with more room with TMPDIR."});
    patient.file = folder.path() + "/" + std::string(paths::fileName(patient.name));
    const Problem problem = examine(arguments, xbase, patient);
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
        if (kind == FileKind::Xbase)
            return tell({fileWord(patient.name) + "has the form of a dbf file, but not its name.",
                         "Rename it to one that ends in .dbf, so that tables take it for what it is.",
                         WrongUsage});
        return tell({fileWord(patient.name) + "is no dbf file or table file.",
                     "--type=FILE says that it is a table file, and what its rows are.", WrongUsage});
    }
    const Work work("rebuilding " + patient.name);
    if (arguments.dryRun) return rehearse(arguments, xbase);
    problem = examine(arguments, xbase, patient);
    return problem.any() ? tell(problem) : rebuildFile(patient);
}

}  // namespace tarn::datatool
