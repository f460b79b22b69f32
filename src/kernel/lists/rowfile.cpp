// SPDX-License-Identifier: Apache-2.0
//
// Each operation opens the file, checks, acts and closes it again, unless a batch has it open.
#include "kernel/lists/rowfile.h"

#include "kernel/lists/rowfile_access.h"

#include <algorithm>
#include <limits>

namespace tarn {

namespace {

constexpr os::FileError noError = os::FileError::None;

// A count that a list can have.
bool hasRoomFor(const ListDescriptor& l, std::int64_t count) {
    const std::int32_t most = IsFixedList(l) ? l.maxlength : std::numeric_limits<std::int32_t>::max();
    return count <= most || Refuse(ERR_FIXED_LIST);
}

bool shrink(ListDescriptor& l, std::int32_t count) {
    RowChange change(l);
    if (!change.begin(RowChange::Know::Rows)) return false;
    os::FileError error = change.file().writeCount(count);
    if (error == noError) {
        error = change.file().cutTo(change.file().offsetOf(count + 1));
        if (error == noError) change.cut();
    }
    return change.end(error, count);
}

bool grow(ListDescriptor& l, std::int32_t count, const void* fill) {
    RowChange change(l);
    std::string& rows = RowBytes();
    if (!change.begin(RowChange::Know::Rows) || !change.file().pack(fill, rows)) return false;
    const auto perBlock = static_cast<std::int32_t>(std::max<std::size_t>(RowBlockBytes / rows.size(), 1));
    const std::string row = rows;
    for (std::int32_t n = 1; n < std::min(perBlock, count - l.count); ++n) rows += row;
    change.adding(l.count + 1, count);
    os::FileError error = noError;
    for (std::int32_t n = l.count; n < count && error == noError;) {
        const std::int32_t step = std::min(perBlock, count - n);
        const std::size_t bytes = static_cast<std::size_t>(step) * row.size();
        error = change.file().write(n + 1, std::string_view(rows).substr(0, bytes));
        n += step;
    }
    if (error == noError) error = change.file().writeCount(count);
    return change.end(error, count);
}

}  // namespace

bool ReadRow(const ListDescriptor& l, std::int32_t position, void* element) {
    return WithMemory([&] {
        if (BatchOfRows* const batch = BatchOfRows::of(l)) return batch->read(l, position, element);
        RowFile file;
        std::string& row = RowBytes();
        return file.open(l, os::OpenMode::Read) && file.read(position, 1, row) && file.unpack(row, element);
    });
}

bool WriteRow(ListDescriptor& l, std::int32_t position, const void* element) {
    return WithMemory([&] {
        RowChange change(l);
        std::string& row = RowBytes();
        if (!change.begin(RowChange::Know::Nothing) || !change.copyBefore(position) ||
            !change.file().pack(element, row))
            return false;
        return change.end(change.file().write(position, row), l.count);
    });
}

bool AppendRow(ListDescriptor& l, const void* element) {
    if (!hasRoomFor(l, std::int64_t{l.count} + 1)) return false;
    return WithMemory([&] {
        BatchOfRows* const batch = BatchOfRows::of(l);
        if (batch != nullptr && batch->gathers()) return batch->append(l, element);
        RowChange change(l);
        std::string& row = RowBytes();
        if (!change.begin(RowChange::Know::Rows) || !change.file().pack(element, row)) return false;
        const std::int32_t count = l.count + 1;
        change.adding(count, count);
        os::FileError error = change.file().write(count, row);
        if (error == noError) error = change.file().writeCount(count);
        return change.end(error, count);
    });
}

bool RemoveLastRow(ListDescriptor& l) {
    return WithMemory([&] {
        RowChange change(l);
        const std::int32_t last = l.count;
        if (!change.begin(RowChange::Know::Rows) || !change.copyBefore(last)) return false;
        os::FileError error = change.file().writeCount(last - 1);
        if (error == noError && IsFixedList(l)) {
            std::string& empty = RowBytes();
            AddEmptyRows(RowFileName(l), static_cast<std::size_t>(change.file().rowBytes()), 1, empty);
            error = change.file().write(last, empty);
        } else if (error == noError) {
            error = change.file().cutTo(change.file().offsetOf(last));
        }
        return change.end(error, last - 1);
    });
}

bool ClearRows(ListDescriptor& l) {
    return WithMemory([&] {
        RowChange change(l);
        if (!change.begin(RowChange::Know::Size)) return false;
        os::FileError error = change.file().writeCount(0);
        if (error == noError) {
            error = change.file().cutTo(change.file().offsetOf(1));
            if (error == noError) change.cut();
        }
        return change.end(error, 0);
    });
}

bool ResizeRows(ListDescriptor& l, std::int32_t count, const void* fill) {
    if (count < 0) return Refuse(ERR_LIST_BOUNDS);
    if (!hasRoomFor(l, count)) return false;
    if (count == l.count) return true;
    return WithMemory([&] { return count < l.count ? shrink(l, count) : grow(l, count, fill); });
}

}  // namespace tarn
