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

// What is known of the value whose place the one that is read will take.
struct FormerValue {
    const void* value = nullptr;  // null: nothing
    std::string_view names;       // of its fields and of its enums (fieldnames.h); empty: nothing
};

class ValueReader {
public:
    // An `exact` one takes what ValueFromWholeText takes.
    ValueReader(std::string_view text, std::size_t at, bool exact) : text_(text), at_(at), exact_(exact) {}

    // The outermost value into `into`, which is empty. False if the text does not fit: it is then at position().
    bool outermost(void* into, const FormerValue& old, Kind kind);
    // Whether nothing but blanks follows; the text is behind them then.
    bool ends();
    [[nodiscard]] std::size_t position() const { return at_; }
    // What was wanted there; capacity 0 for what is no string that is too short.
    [[nodiscard]] Kind wanted() const { return wanted_; }
    [[nodiscard]] std::int32_t capacity() const { return capacity_; }
    [[nodiscard]] std::int32_t highest() const { return highest_; }
    [[nodiscard]] const std::string& kept() const { return kept_; }
    [[nodiscard]] const std::string& why() const { return why_; }

private:
    bool value(void* into, const FormerValue& old, Kind kind);
    bool valueOf(void* into, const FormerValue& old, Kind kind);
    bool boolean(void* into);
    bool ordinal(void* into, std::string_view names);
    bool integer(std::int32_t& number);
    bool fixed(void* into);
    bool real(void* into);
    bool string(StringDescriptor* into);
    bool set(SetDescriptor* into);
    bool isFaultless(const SetDescriptor& set);

    bool composite(void* into, const FormerValue& old, Kind kind, bool braced);
    bool record(RecordDescriptor* into, const FormerValue& old, bool braced);
    bool array(ArrayDescriptor* into, const FormerValue& old, bool braced);
    bool giveBounds(ArrayDescriptor& array, const void* old, std::int64_t count);
    bool characters(ArrayDescriptor* into, const void* old);
    bool list(ListDescriptor* into, const FormerValue& old, bool braced);
    bool table(TableDescriptor* into, const FormerValue& old, bool braced);
    // Calls `read` with the number of each element, from 0, with the text at it.
    template <class Read>
    bool elements(bool braced, Read read);
    // An element, or its default where there is none.
    bool element(void* into, const FormerValue& old, Kind kind);
    [[nodiscard]] std::int64_t countElements(bool braced) const;
    // Behind the brace that closes, after so many of the elements.
    bool isComplete(std::int32_t read, std::int32_t count, std::string_view elements);
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
    bool exact_;
    std::int32_t capacity_ = 0, highest_ = 255;
    std::string kept_, why_;
};

}  // namespace tarn
