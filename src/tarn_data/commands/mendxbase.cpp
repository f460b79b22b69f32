// SPDX-License-Identifier: Apache-2.0
//
// What is wrong with an Xbase file that tables do not look at, and what can be done about it: headers that end
// too soon, lists of fields without an end, marks of deletion that are none.
#include "tarn_data/base/shown.h"
#include "tarn_data/commands/patient.h"

#include <algorithm>
#include <limits>

namespace tarn::datatool {

namespace {

constexpr char fieldsEnd = 13;
constexpr std::int64_t descriptorBytes = 32;

// Where marks are odd in rows that do not begin where the header says, data would be overwritten.
bool mayBeMarks(std::int64_t rows, std::int64_t odd) {
    constexpr std::int64_t share = 4;
    return odd * share <= rows;
}

Problem findMarks(XbaseFile& file, const std::string& name, XbaseDamage& damage) {
    std::string_view row;
    std::int64_t odd = 0;
    const std::int64_t rows = std::min(file.whole(), file.counted());
    Steps steps(rows * file.header().recordSize);
    file.goToFirst(rows);
    for (std::int64_t number = 1; file.next(row); ++number) {
        if (!steps.step(file.header().recordSize)) return stoppedProblem();
        if (isXbaseMark(row[0]) || number == file.replacing()) continue;
        damage.marks.push_back({number, row[0]});
        if (row[0] != 0) ++odd;
    }
    if (file.error() != os::FileError::None) return unreadable(name, file.error());
    if (mayBeMarks(rows, odd)) return {};
    return {
        fileWord(name) + std::to_string(odd) + " of its " + std::to_string(rows) +
            " rows have no mark of deletion, so that they may not begin where the header says.",
        "Nothing was changed. Take the file from a copy, or let the program that writes it set it right."};
}

}  // namespace

Problem findDamage(XbaseFile& file, const std::string& name, XbaseDamage& damage) {
    std::string head;
    damage.rows = static_cast<std::int32_t>(
        std::min<std::int64_t>(file.whole(), std::numeric_limits<std::int32_t>::max()));
    damage.padding = file.padding();
    damage.headerShort = std::max<std::int64_t>(-file.behind(), 0);
    if (!file.readHead(head)) return unreadable(name, file.error());
    const std::int64_t endAt = (std::int64_t{file.header().fieldCount} + 1) * descriptorBytes;
    const auto at = static_cast<std::size_t>(endAt);
    if (endAt < file.header().headerSize && (at >= head.size() || head[at] != fieldsEnd))
        damage.endAt = endAt;
    return findMarks(file, name, damage);
}

Problem mendDamage(const Patient& patient) {
    const XbaseDamage& damage = patient.xbase;
    if (!damage.any()) return {};
    os::Handle handle = -1;
    os::FileError error = os::files().open(os::native(patient.file), os::OpenMode::ReadWrite, 0, handle);
    const auto write = [&](std::int64_t at, std::string_view bytes) {
        if (error == os::FileError::None) error = os::files().write(handle, at, bytes);
    };
    if (damage.headerShort > 0)
        write(patient.size, std::string(static_cast<std::size_t>(damage.headerShort), '\0'));
    if (damage.endAt > 0) write(damage.endAt, {&fieldsEnd, 1});
    for (const XbaseDamage::Mark& mark : damage.marks)
        write(patient.headerBytes + (mark.row - 1) * patient.rowBytes, {&LiveRow, 1});
    if (error == os::FileError::None) error = os::files().sync(handle);
    if (handle >= 0) os::files().close(handle);
    if (error == os::FileError::None) return {};
    return {fileWord(patient.name) + "cannot be written: " + std::string(os::describe(error)),
            "Look whether you may write it, then rebuild again."};
}

std::string damageReport(const Patient& patient) {
    const XbaseDamage& damage = patient.xbase;
    std::string text;
    const auto line = [&](const std::string& what) { text += patient.name + ": " + what + "\n"; };
    if (damage.headerShort > 0)
        line(counted(damage.headerShort, "byte") + " at the end of its header missing: written.");
    else if (damage.endAt > 0)
        line("its list of fields had no end (a byte 13): written.");
    std::int64_t zeros = 0;
    for (const XbaseDamage::Mark& mark : damage.marks) {
        if (mark.byte == 0)
            ++zeros;
        else
            line("row " + std::to_string(mark.row) + " had '" + shown({&mark.byte, 1}) +
                 "' where its mark of deletion stands: set to a blank, so that the row counts.");
    }
    if (zeros > 0)
        line(counted(zeros, "row") + " had a zero byte where a mark of deletion stands: set to a blank.");
    return text;
}

}  // namespace tarn::datatool
