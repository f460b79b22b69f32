// SPDX-License-Identifier: Apache-2.0
//
// Values of the language as plain C++ values, and the way between the two that trusts none of the operations
// under test: a model is laid out in kernel memory word by word, and what stands in memory is compared with a
// model the same way.
#pragma once

#include "kernel/values/values.h"

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct ValueModel {
    Kind kind = KindNone;
    std::int64_t number = 0;  // kinds 1 to 4
    double real = 0;
    std::string text;
    std::int32_t maxlength = UNBOUNDED;               // as in the descriptor; not for records
    std::array<ArrayBounds, MaxDimensions> bounds{};  // of an array; the first, of a set
    std::set<std::int32_t> members;
    std::vector<ValueModel> element;  // of an array or list: one, empty, that shows the shape
    std::vector<ValueModel> parts;    // fields, elements in storage order, or rows
};

namespace model {

ValueModel Number(Kind kind, std::int64_t number);  // kinds 1 to 4
ValueModel Real(double real);
ValueModel Text(std::string_view text, std::int32_t maxlength = UNBOUNDED);
ValueModel Record(std::vector<ValueModel> fields, Kind kind = KindRecord);
// Missing parts are empty. `maxlength` DYNAMIC_BOUNDS without bounds: no shape yet.
ValueModel Array(std::vector<ArrayBounds> bounds, const ValueModel& element,
                 std::vector<ValueModel> parts = {}, std::int32_t maxlength = 0);
ValueModel Set(std::int32_t lower, std::int32_t upper, std::set<std::int32_t> members,
               std::int32_t maxlength = 0);
ValueModel List(const ValueModel& element, std::vector<ValueModel> rows, std::int32_t maxlength = UNBOUNDED);

// The empty value of the same shape.
ValueModel Emptied(const ValueModel& model);
// Every single thing in it that Change can make another: numbers, texts, sets.
std::vector<ValueModel*> Leaves(ValueModel& model);
void Change(ValueModel& leaf);

// Lays the value out at `at`, whose bytes mean nothing.
void Make(const ValueModel& model, void* at);
// "" when the value at `at` is this one, shape, sizes and content; otherwise what differs.
std::string Differs(const ValueModel& model, const void* at);

struct HeapUse {
    std::int32_t bytes = 0, blocks = 0;
};
HeapUse UseOf(const ValueModel& model);

}  // namespace model
}  // namespace tarn
