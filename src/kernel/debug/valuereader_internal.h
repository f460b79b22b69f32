// SPDX-License-Identifier: Apache-2.0
//
// Reads the text form of values (valuetext.h) into empty values that have their shapes. Nothing here looks ahead but for
// the number of elements of a dynamic array, and nothing calls itself deeper than the value is.
#pragma once

#include "kernel/values/values.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

class ValueReader {
public:
    ValueReader(std::string_view text, std::size_t at) : text_(text), at_(at) {}

    // The outermost value into `into`, which is empty; `old` is the value whose place it will take. False if the text
    // does not fit: it is then at position().
    bool outermost(void* into, const void* old, Kind kind);
    // Whether nothing but blanks follows; the text is behind them then.
    bool ends();
    [[nodiscard]] std::size_t position() const { return at_; }
    // What was wanted there; capacity 0 for what is no string that is too short.
    [[nodiscard]] Kind wanted() const { return wanted_; }
    [[nodiscard]] std::int32_t capacity() const { return capacity_; }

private:
    // `old` may be null here.
    bool value(void* into, const void* old, Kind kind);
    bool valueOf(void* into, const void* old, Kind kind);
    bool boolean(void* into);
    bool ordinal(void* into);
    bool integer(std::int32_t& number);
    bool fixed(void* into);
    bool real(void* into);
    bool string(StringDescriptor* into);
    bool set(SetDescriptor* into);

    bool composite(void* into, const void* old, Kind kind, bool braced);
    bool record(RecordDescriptor* into, const void* old, bool braced);
    bool array(ArrayDescriptor* into, const void* old, bool braced);
    bool giveBounds(ArrayDescriptor& array, const void* old, std::int64_t count);
    bool characters(ArrayDescriptor* into, const void* old);
    bool list(ListDescriptor* into, const void* old, bool braced);
    bool table(TableDescriptor* into, bool braced);
    // Calls `read` with the number of each element, from 0, with the text at it.
    template <class Read>
    bool elements(bool braced, Read read);
    // An element, or its default where there is none.
    bool element(void* into, const void* old, Kind kind);
    [[nodiscard]] std::int64_t countElements(bool braced) const;
    bool quoted(std::string& bytes);
    bool escaped(std::string& bytes);

    void skipBlanks();
    bool take(char expected);
    [[nodiscard]] char next() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    [[nodiscard]] bool atEnd() const { return at_ == text_.size(); }
    template <class Belongs>
    [[nodiscard]] std::string_view run(Belongs belongs) const;

    std::string_view text_;
    std::size_t at_;
    Kind wanted_ = KindNone;
    std::int32_t capacity_ = 0;
};

}  // namespace tarn
