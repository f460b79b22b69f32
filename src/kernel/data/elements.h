// SPDX-License-Identifier: Apache-2.0
//
// The elements of values that data files hold row by row, wherever those stand. Only the modules of data
// files and of the debugger include this.
#pragma once

#include "kernel/lists/list_access.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <optional>

namespace tarn {

// A list or table that is held in a file and not open: nothing can be read from it or into it.
bool IsUnopenedFile(const void* value, Kind kind);
// The list of a list, or of a table's rows; null for every other value.
const ListDescriptor* ElementList(const void* value, Kind kind);

// For writing: the elements of a list, an array or a table in the order of its rows; every other value is an
// element itself.
class ElementSource {
public:
    ElementSource(const void* value, Kind kind);
    [[nodiscard]] std::int32_t count() const { return count_; }
    [[nodiscard]] Kind kind() const { return kind_; }
    // From 0. Null, with the error set, for one that cannot be read; valid until the next.
    const void* at(std::int32_t index);

private:
    const char* first_ = nullptr;
    std::int32_t count_ = 1;
    Kind kind_;
    std::optional<ListReader> reader_;  // of a list in a file
};

// For reading: elements that are appended to a list. In memory they are filled where they stand.
class ElementSink {
public:
    explicit ElementSink(ListDescriptor& list);
    // An empty element to be filled. Null, with the error set, when there is no room (618) or memory.
    void* next();
    // The element was filled: it belongs to the list. False, with the error set, when it could not be
    // written.
    bool add();

private:
    ListDescriptor& list_;
    std::optional<ElementBeside> element_;  // of a list in a file
};

}  // namespace tarn
