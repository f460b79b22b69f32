// SPDX-License-Identifier: Apache-2.0
//
// The one place that writes values as text (valuetext.h tells the form), for all who put several into one text.
#pragma once

#include "kernel/values/values.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

class ValueWriter {
public:
    ValueWriter(std::string& out, std::uint32_t flags) : out_(out), flags_(flags) {}

    enum class Result {
        Whole,
        Cut,         // the text is longer than the limit: so many characters of it were appended
        Unreadable,  // an element could not be read, and the error is set: what stands before it was appended
    };
    // Appends the text of a value of this kind, of at most `limit` characters.
    Result append(const void* value, Kind kind, std::size_t limit);

private:
    void write(const void* value, Kind kind, std::int32_t level);
    void integer(std::int32_t value);
    void decimal(std::int32_t value);
    void string(const void* value);
    void quoted(std::string_view bytes);
    void characters(std::string_view bytes);
    void set(const void* value);
    void composite(const void* value, Kind kind, std::int32_t level);
    void elements(const void* value, Kind kind, std::int32_t level);
    void element(const void* value, Kind kind, std::int32_t level, bool first);
    [[nodiscard]] bool has(std::uint32_t flag) const { return (flags_ & flag) != 0; }
    [[nodiscard]] bool isBraced(Kind kind, std::int32_t level) const;
    [[nodiscard]] bool isText(const void* value, Kind kind) const;
    [[nodiscard]] bool full() const { return unreadable_ || out_.size() > end_; }

    std::string& out_;
    std::uint32_t flags_;
    std::size_t end_ = 0;
    bool unreadable_ = false;
};

}  // namespace tarn
