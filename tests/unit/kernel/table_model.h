// SPDX-License-Identifier: Apache-2.0
//
// A table without the kernel: rows in row order, and an ordered map for each index.
#pragma once

#include "kernel/tables/tables.h"
#include "unit/kernel/table_rows.h"

#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tarn {

// What a table must do, in the plainest way.
class TableModel {
public:
    TableModel(const KeyMaps& maps, std::int32_t maxlength) : maps_(maps), maxlength_(maxlength) {
        while (indexes_ < MaxIndexes && maps_[static_cast<std::size_t>(indexes_)] != 0) ++indexes_;
    }
    [[nodiscard]] int indexes() const { return indexes_; }
    [[nodiscard]] const std::vector<Cells>& rows() const { return rows_; }
    [[nodiscard]] Cells keyOf(int index, const Cells& row) const {
        Cells key;
        for (auto map = static_cast<std::uint32_t>(maps_[static_cast<std::size_t>(index)]); map != 0;
             map <<= 8U)
            key.push_back(row[(map >> 24U) - 1]);
        return key;
    }
    std::int32_t add(const Cells& row) {
        if (maxlength_ != UNBOUNDED && rows_.size() >= static_cast<std::size_t>(maxlength_)) return 619;
        if (taken(row, -1)) return 635;
        rows_.push_back(row);
        enter(static_cast<int>(rows_.size()) - 1);
        return 0;
    }
    std::int32_t update(int index, const Cells& key, const Cells& row) {
        const auto at = position(index, key);
        if (!at) return 604;
        if (taken(row, *at)) return 635;
        leave(*at);
        rows_[static_cast<std::size_t>(*at)] = row;
        enter(*at);
        return 0;
    }
    std::int32_t remove(int index, const Cells& key) {
        const auto at = position(index, key);
        if (!at) return 604;
        const int last = static_cast<int>(rows_.size()) - 1;
        leave(*at);
        if (*at != last) {
            leave(last);
            rows_[static_cast<std::size_t>(*at)] = rows_.back();
            enter(*at);
        }
        rows_.pop_back();
        return 0;
    }
    void clear() {
        rows_.clear();
        for (auto& order : orders_) order.clear();
    }
    [[nodiscard]] std::optional<Cells> find(const std::string& op, int index, const Cells& key) const {
        const auto& order = orders_[index];
        auto at = order.end();
        if (op == "EQ") at = order.find(key);
        if (op == "FIRST") at = order.begin();
        if (op == "LAST" && !order.empty()) at = std::prev(order.end());
        if (op == "GE") at = order.lower_bound(key);
        if (op == "NEXT") at = order.upper_bound(key);
        if (op == "LE" || op == "PREVIOUS") {
            at = op == "LE" ? order.upper_bound(key) : order.lower_bound(key);
            at = at == order.begin() ? order.end() : std::prev(at);
        }
        if (at == order.end()) return {};
        return rows_[static_cast<std::size_t>(at->second)];
    }

private:
    [[nodiscard]] std::optional<int> position(int index, const Cells& key) const {
        const auto at = orders_[index].find(key);
        return at == orders_[index].end() ? std::optional<int>() : at->second;
    }
    [[nodiscard]] bool taken(const Cells& row, int self) const {
        for (int i = 0; i < indexes_; ++i) {
            const auto at = position(i, keyOf(i, row));
            if (at && *at != self) return true;
        }
        return false;
    }
    void enter(int n) {
        for (int i = 0; i < indexes_; ++i) orders_[i][keyOf(i, rows_[static_cast<std::size_t>(n)])] = n;
    }
    void leave(int n) {
        for (int i = 0; i < indexes_; ++i) orders_[i].erase(keyOf(i, rows_[static_cast<std::size_t>(n)]));
    }

    KeyMaps maps_;
    std::int32_t maxlength_;
    int indexes_ = 0;
    std::vector<Cells> rows_;
    std::map<Cells, int, CellsOrder> orders_[MaxIndexes];
};

}  // namespace tarn
