// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/commands/patient.h"

#include "kernel/index/index_filecheck.h"
#include "kernel/tables/tables.h"
#include "kernel/tables/tables_file_guard.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/commands/check_internal.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

// ---- rows ----

// A row with bytes that its fields cannot be, and the first such field from 1.
struct BadRow {
    std::int64_t row = 0;
    std::int32_t field = 0;
};
// The first `most` of these rows.
Problem findBadRows(const Patient& patient, std::int64_t first, std::int64_t count, std::size_t most,
                    std::vector<BadRow>& bad) {
    FileRows rows;
    RowBytes bytes(patient.type);
    Steps steps(count * patient.rowBytes);
    std::string_view row;
    bad.clear();
    if (!rows.open(patient.file)) return unreadable(patient.name, rows.error());
    rows.goTo(first, static_cast<std::size_t>(patient.rowBytes), count);
    for (std::int64_t number = 1; bad.size() < most && rows.next(row); ++number) {
        if (!steps.step(patient.rowBytes)) return stoppedProblem();
        const bool noted = first == patient.headerBytes && number == patient.replacing;
        const std::int32_t field = bytes.badField(noted ? std::string_view(patient.note.row) : row);
        if (field != 0) bad.push_back({number, field});
    }
    return rows.error() == os::FileError::None ? Problem() : unreadable(patient.name, rows.error());
}

// Where rows were guarded while deletions moved them, a death of the machine may have left a few that never
// came to the disk.
Problem checkRows(Patient& patient) {
    constexpr std::size_t mostTorn = 8;
    constexpr std::int64_t share = 4;
    std::vector<BadRow> bad;
    const std::int64_t last = patient.counted < 0 ? patient.whole : std::min(patient.whole, patient.counted);
    const bool guarded = os::infoOf(os::native(GuardFileName(patient.file))).exists;
    Problem problem = findBadRows(patient, patient.headerBytes, last, guarded ? mostTorn + 1 : 1, bad);
    if (problem.any() || bad.empty()) return problem;
    if (guarded && bad.size() <= mostTorn && static_cast<std::int64_t>(bad.size()) * share <= last) {
        for (const BadRow& row : bad) patient.torn.push_back(row.row);
        return {};
    }
    return {
        fileWord(patient.name) + "row " + std::to_string(bad[0].row) + ": its bytes are no value of field '" +
            fieldNames(patient.type.columns)[static_cast<std::size_t>(bad[0].field) - 1] + "'.",
        "Nothing was changed. Look whether the declaration is that of the rows; a row that is damaged must "
        "be set right by the program that writes it."};
}

// ---- what the indexes say of the declaration ----

enum class Witness { None, For, Against };

// Of so many nodes of a sound index, few have other keys than their rows after a death; by a declaration that
// is not that of the rows nearly all have.
Witness askIndex(const Patient& patient, const IndexBeside& index, FileRows& rows) {
    constexpr std::int32_t mostAsked = 1000, leastAgainst = 4, share = 4;
    if (index.keyMap == 0 || index.aside) return Witness::None;
    RowBytes bytes(patient.type);
    const std::int64_t last = patient.counted < 0 ? patient.whole : std::min(patient.whole, patient.counted);
    const RowsOfFile all{rows, patient.headerBytes, patient.rowBytes, last,
                         [&](std::string_view row) { return bytes.record(row); }};
    RowKeys keys(all, index.keyMap);
    std::int32_t asked = 0, same = 0;
    const std::string wrong = CheckIndexFile(os::native(index.file.path), index.file.shape(), -1,
                                             [&](std::int32_t row, std::string_view key) -> std::string {
                                                 if (row < 1 || row > last) return {};
                                                 ++asked;
                                                 if (keys.compare(row, key).empty()) ++same;
                                                 return asked < mostAsked ? "" : "Enough.";
                                             });
    if (asked == 0 || (!wrong.empty() && asked < mostAsked)) return Witness::None;
    if (same * share >= asked) return Witness::For;
    return asked >= leastAgainst ? Witness::Against : Witness::None;
}

// The index that is against it is `number`.
Witness askIndexes(const Patient& patient, std::int32_t& number) {
    FileRows rows;
    Witness witness = Witness::None;
    if (!rows.open(patient.file)) return witness;
    for (const IndexBeside& index : indexesBeside(patient.file, patient.type)) {
        const Witness one = askIndex(patient, index, rows);
        number = index.number;
        if (one == Witness::Against) return one;
        if (one == Witness::For) witness = one;
    }
    return witness;
}

// ---- capacities ----

// Whether what does not fit the rows of the declaration fits those of one with a capacity, or without.
Problem fitsOtherCapacity(const Patient& patient, bool& fits) {
    constexpr std::int64_t countBytes = 4;
    const bool plain = patient.type.capacity == UNBOUNDED;
    const std::int64_t first = plain ? countBytes : 0, room = patient.size - first;
    fits = patient.behind > 0 && patient.note.offset < 0 && room >= 0 && room % patient.rowBytes == 0;
    if (!fits) return {};
    std::int64_t rows = room / patient.rowBytes;
    if (plain) {
        FileRows file;
        std::string head;
        if (!file.open(patient.file) || !file.read(0, std::size_t{countBytes}, head))
            return unreadable(patient.name, file.error());
        std::int64_t count = 0;
        for (const char c : head) count = count * 256 + static_cast<unsigned char>(c);
        fits = count <= rows;
        rows = count;
    }
    std::vector<BadRow> bad;
    Problem problem = fits ? findBadRows(patient, first, rows, 1, bad) : Problem();
    fits = fits && bad.empty();
    return problem;
}

Problem otherCapacity(const Patient& patient) {
    const std::string behind = counted(patient.behind, "byte");
    if (patient.type.capacity == UNBOUNDED)
        return {fileWord(patient.name) + "has " + behind +
                    " behind its whole rows, and looks like a table with a capacity, whose rows begin behind "
                    "a count.",
                "Nothing was changed. Declare the capacity with --type, as in table[" +
                    std::to_string((patient.size - 4) / patient.rowBytes) +
                    "]; if it has none, cut these bytes off first: truncate -s -" +
                    std::to_string(patient.behind) + "."};
    return {fileWord(patient.name) + "has " + behind +
                " behind its whole rows, and looks like a table without a capacity.",
            "Nothing was changed. Declare it without the number in brackets; if it has a capacity, cut these "
            "bytes off first: truncate -s -" +
                std::to_string(patient.behind) + "."};
}

Problem checkDeclaration(const Arguments& arguments, const Patient& patient) {
    bool other = false;
    std::int32_t index = 0;
    Problem problem = fitsOtherCapacity(patient, other);
    if (problem.any()) return problem;
    const Witness witness = askIndexes(patient, index);
    if (other && witness != Witness::For) return otherCapacity(patient);
    if (witness != Witness::Against || !arguments.keys.empty()) return {};
    return {"The keys in '" + IndexFileName(patient.name, index) + "' are not those of the rows of '" +
                patient.name + "', as they are declared.",
            "Nothing was changed. Look whether the declaration is that of the rows, with its capacity; if it "
            "is, --keys makes the indexes anew whatever they hold."};
}

// ---- looking ----

Problem lookAtTable(const Arguments& arguments, Patient& patient) {
    TableFacts facts;
    Problem problem = readRowType(arguments.type, patient.type);
    if (!problem.any()) problem = tableFacts(patient.file, patient.type, facts);
    if (problem.any()) return problem;
    patient.rowBytes = facts.rowBytes;
    patient.headerBytes = facts.headerBytes;
    patient.counted = facts.counted;
    patient.whole = facts.whole;
    patient.behind = facts.behind;
    patient.size = facts.size;
    patient.replacing = facts.replacing();
    patient.note = std::move(facts.note);
    problem = checkDeclaration(arguments, patient);
    return problem.any() ? problem : checkRows(patient);
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
    patient.behind = file.size() - file.end();
    patient.size = file.size();
    patient.note = file.note();
    patient.replacing = file.replacing();
    return findDamage(file, patient.name, patient.xbase);
}

// The keys that are asked for, or those of the index files.
Problem chooseKeys(const Arguments& arguments, Patient& patient) {
    const std::vector<IndexBeside> beside = indexesBeside(patient.file, patient.type);
    patient.indexesBefore = beside.size();
    patient.keys = arguments.keys;
    for (const IndexBeside& index : beside) {
        if (!arguments.keys.empty()) break;
        if (!index.owner.empty()) continue;
        if (index.keyMap == 0)
            return {"The key of '" + IndexFileName(patient.name, index.number) + "' is not known. " +
                        (index.file.path.empty() ? "It is missing." : index.file.wrong),
                    "Give the fields of all indexes with --keys, once for each, in their order."};
        patient.keys.push_back(index.file.fields);
    }
    return keyMapsOf(patient.keys, patient.type, patient.maps);
}

}  // namespace

Problem examine(const Arguments& arguments, bool xbase, Patient& patient) {
    Problem problem = xbase ? lookAtXbase(patient) : lookAtTable(arguments, patient);
    return problem.any() ? problem : chooseKeys(arguments, patient);
}

}  // namespace tarn::datatool
