// SPDX-License-Identifier: Apache-2.0
//
// Rows and keys for the tests of indexes and tables: records made of plain values, and the order that keys
// must have, written down once more without the kernel.
#pragma once

#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tarn {

// A value of a key kind. `capacity` is that of a string, or the number of characters of an array.
struct Cell {
    Kind kind = KindInteger;
    std::int64_t number = 0;
    double real = 0;
    std::string text;
    std::int32_t capacity = UNBOUNDED;
};
using Cells = std::vector<Cell>;

inline Cell flag(bool value) {
    return {KindBoolean, value, 0, {}, 0};
}
inline Cell ordinal(std::int64_t value) {
    return {KindEnum, value, 0, {}, 0};
}
inline Cell integer(std::int64_t value) {
    return {KindInteger, value, 0, {}, 0};
}
inline Cell fixedNumber(std::int64_t value) {
    return {KindFixed, value, 0, {}, 0};
}
inline Cell real(double value) {
    return {KindReal, 0, value, {}, 0};
}
inline Cell text(std::string value, std::int32_t capacity = UNBOUNDED) {
    return {KindString, 0, 0, std::move(value), capacity};
}
// Filled up with blanks.
inline Cell characters(std::string value, std::int32_t count) {
    value.resize(static_cast<std::size_t>(count), ' ');
    return {KindArray, 0, 0, std::move(value), count};
}

inline void putCell(const Cell& cell, void* field) {
    switch (cell.kind) {
    case KindInteger: WriteAt(field, static_cast<std::int32_t>(cell.number)); break;
    case KindFixed: WriteAt(field, cell.number); break;
    case KindReal: WriteAt(field, cell.real); break;
    case KindString: {
        auto* s = static_cast<StringDescriptor*>(field);
        if (s->tag == 0) StringInit(s, cell.capacity);
        StringAssignView(s, cell.text);
        break;
    }
    case KindArray: {
        auto* a = static_cast<ArrayDescriptor*>(field);
        if (a->tag == 0) ArrayInit(a, KindEnum, 1, cell.capacity);
        std::memcpy(At(a->data), cell.text.data(), cell.text.size());
        break;
    }
    default: WriteAt(field, static_cast<std::uint8_t>(cell.number));
    }
}

inline void putCells(const Cells& cells, RecordDescriptor* record) {
    for (std::size_t i = 0; i < cells.size(); ++i)
        putCell(cells[i], RecordFieldAddress(record, static_cast<std::int32_t>(i) + 1));
}

inline RecordValue recordOf(const Cells& cells) {
    FieldKinds kinds{};
    for (std::size_t i = 0; i < cells.size(); ++i)
        SetFieldKindAt(kinds, static_cast<std::int32_t>(i) + 1, cells[i].kind);
    RecordValue record;
    RecordInit(record.get(), TagRecord, kinds);
    putCells(cells, record.get());
    return record;
}

// What a record holds, for cells of the kinds of `like`.
inline Cells cellsOf(const RecordDescriptor* record, const Cells& like) {
    Cells cells = like;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        Cell& cell = cells[i];
        const void* field = RecordFieldAddress(record, static_cast<std::int32_t>(i) + 1);
        const auto head = [&] { return ReadAt<DescriptorHead>(field); };
        switch (cell.kind) {
        case KindInteger: cell.number = ReadAt<std::int32_t>(field); break;
        case KindFixed: cell.number = ReadAt<std::int64_t>(field); break;
        case KindReal: cell.real = ReadAt<double>(field); break;
        case KindString: cell.text = StringView(static_cast<const StringDescriptor*>(field)); break;
        case KindArray: cell.text.assign(At(head().data), static_cast<std::size_t>(head().size)); break;
        default: cell.number = ReadAt<std::uint8_t>(field);
        }
    }
    return cells;
}

inline int orderOf(const Cell& a, const Cell& b) {
    if (a.kind == KindReal) {
        if (std::isnan(a.real) || std::isnan(b.real))
            return int{std::isnan(a.real)} - int{std::isnan(b.real)};
        return (a.real > b.real) - (a.real < b.real);
    }
    if (a.kind == KindString || a.kind == KindArray) {
        const int order = a.text.compare(b.text);  // by unsigned bytes, then the shorter first
        return (order > 0) - (order < 0);
    }
    return (a.number > b.number) - (a.number < b.number);
}

struct CellsOrder {
    bool operator()(const Cells& a, const Cells& b) const {
        for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
            const int order = orderOf(a[i], b[i]);
            if (order != 0) return order < 0;
        }
        return a.size() < b.size();
    }
};
inline bool sameCells(const Cells& a, const Cells& b) {
    return !CellsOrder()(a, b) && !CellsOrder()(b, a);
}

}  // namespace tarn
