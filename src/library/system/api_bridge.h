// SPDX-License-Identifier: Apache-2.0
//
// From a C++ function to the C function that compiled programs call: Bridge<head, call>::function() is its address.
// Numbers, booleans and enums cross as whole words, fixed numbers as their words, real ones as they are, texts and
// records by address; a result that is no number is written to the last argument. The types that cross as records
// are declared in the language's system.cls, field by field in the order of this file.
//
// Only the lists of functions for programs use this.
#pragma once

#include "kernel/api/api_access.h"
#include "kernel/lists/lists.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "kernel/windows/windowing.h"
#include "library/system/api_objects.h"
#include "library/system/numbers.h"

#include <type_traits>

namespace tarn::api::bridge {

// ---- records, field by field ----

class FieldReader {
public:
    explicit FieldReader(const tarn_record* record) : record_(in(record)) {}
    int number() { return next<std::int32_t>(KindInteger); }
    bool truth() { return next<std::uint8_t>(KindBoolean) != 0; }
    std::string text() {
        const auto* const place = static_cast<const StringDescriptor*>(RecordFieldAddress(record_, ++field_));
        return place == nullptr ? std::string() : std::string(NarrowText(place).view());
    }

private:
    template <class Number>
    Number next(Kind kind) {
        Number value{};
        RecordGet(record_, ++field_, &value, kind);
        return value;
    }
    const RecordDescriptor* record_;
    std::int32_t field_ = 0;
};

class FieldWriter {
public:
    explicit FieldWriter(tarn_record* record) : record_(in(record)) {}
    FieldWriter& number(int value) { return put(std::int32_t{value}, KindInteger); }
    FieldWriter& truth(bool value) { return put(static_cast<std::uint8_t>(value), KindBoolean); }
    FieldWriter& real(double value) { return put(value, KindReal); }
    FieldWriter& text(std::string_view value) {
        auto* const place = static_cast<StringDescriptor*>(RecordFieldAddress(record_, ++field_));
        if (place != nullptr) StringAssignView(place, value);
        return *this;
    }

private:
    template <class Number>
    FieldWriter& put(Number value, Kind kind) {
        RecordPut(record_, ++field_, &value, kind);
        return *this;
    }
    RecordDescriptor* record_;
    std::int32_t field_ = 0;
};

// ---- arguments ----

template <class T>
struct Argument {  // numbers, booleans, enums
    using C = std::int32_t;
    static T of(C value) { return static_cast<T>(value); }
};
template <>
struct Argument<bool> {
    using C = std::int32_t;
    static bool of(C value) { return value != 0; }
};
template <>
struct Argument<std::string> {
    using C = const tarn_string*;
    static std::string of(C value) { return std::string(text(value).view()); }
};
template <>
struct Argument<std::string_view> : Argument<std::string> {};
template <>
struct Argument<double> {
    using C = double;
    static double of(C value) { return value; }
};
template <>
struct Argument<FixedValue> {
    using C = std::int64_t;
    static FixedValue of(C value) { return FixedValue(value); }
};
template <>
struct Argument<Object> {
    using C = const tarn_record*;
    static Object of(C value) { return objectOf(value); }
};
template <>
struct Argument<Rect> {
    using C = const tarn_record*;
    static Rect of(C value) {
        FieldReader fields(value);
        Rect rect;
        for (int* part : {&rect.x, &rect.y, &rect.w, &rect.h}) *part = fields.number();
        return rect;
    }
};
template <>
struct Argument<Picture> {
    using C = const tarn_record*;
    static Picture of(C value) {
        FieldReader fields(value);
        Picture picture;
        for (int* part : {&picture.width, &picture.height, &picture.handle}) *part = fields.number();
        return picture;
    }
};
template <>
struct Argument<Font> {
    using C = const tarn_record*;
    static Font of(C value) {
        FieldReader fields(value);
        Font font;
        font.name = fields.text();
        font.size = fields.number();
        font.bold = fields.truth();
        font.italic = fields.truth();
        return font;
    }
};
template <>
struct Argument<TrackLimits> {
    using C = const tarn_record*;
    static TrackLimits of(C value) {
        FieldReader fields(value);
        TrackLimits limits;
        for (int* part : {&limits.handle, &limits.width, &limits.height, &limits.step})
            *part = fields.number();
        return limits;
    }
};
template <>
struct Argument<CommTimeouts> {
    using C = const tarn_record*;
    static CommTimeouts of(C value) {
        FieldReader fields(value);
        CommTimeouts timeouts;
        timeouts.read = fields.number();
        timeouts.write = fields.number();
        return timeouts;
    }
};
template <>
struct Argument<SetDescriptor*> {
    using C = tarn_set*;
    static SetDescriptor* of(C value) { return in(value); }
};
template <>
struct Argument<ListDescriptor*> {
    using C = tarn_list*;
    static ListDescriptor* of(C value) { return in(value); }
};
template <>
struct Argument<std::vector<std::string>> {
    using C = const tarn_list*;
    static std::vector<std::string> of(C value) {
        std::vector<std::string> rows;
        for (std::int32_t i = 1; i <= ListCount(in(value)); ++i)
            rows.emplace_back(NarrowText(static_cast<const StringDescriptor*>(ListRef(in(value), i))).view());
        return rows;
    }
};

// ---- results ----

inline void write(tarn_string* result, std::string_view value) {
    give(value, result);
}
inline void write(tarn_record* result, const Object& value) {
    putObject(value, result);
}
inline void write(tarn_record* result, const Rect& value) {
    FieldWriter(result).number(value.x).number(value.y).number(value.w).number(value.h);
}
inline void write(tarn_record* result, const Selection& value) {
    FieldWriter(result).number(value.start).number(value.length);
}
inline void write(tarn_record* result, const Picture& value) {
    FieldWriter(result).number(value.width).number(value.height).number(value.handle);
}
inline void write(tarn_record* result, const Font& value) {
    FieldWriter(result).text(value.name).number(value.size).truth(value.bold).truth(value.italic);
}
inline void write(tarn_record* result, const PrintChoice& value) {
    auto* const printer = static_cast<tarn_record*>(RecordFieldAddress(in(result), 1));
    if (printer != nullptr) putObject(value.printer, printer);
    static constexpr std::int32_t first = 2;
    const std::int32_t numbers[] = {value.flags, value.from, value.to, value.copies};
    for (std::int32_t i = 0; i < 4; ++i) RecordPut(in(result), first + i, &numbers[i], KindInteger);
}
inline void write(tarn_record* result, const RegInfo& value) {
    FieldWriter(result).truth(value.exists).real(static_cast<double>(value.length)).truth(value.number);
}
inline void write(tarn_record* result, const CommTimeouts& value) {
    FieldWriter(result).number(value.read).number(value.write);
}
inline void write(tarn_record* result, const platform::Process& value) {
    FieldWriter(result).number(value.id).text(value.name);
}
template <class Row>
inline void write(tarn_list* result, const std::vector<Row>& rows) {
    ListClear(in(result));
    for (const Row& row : rows) {
        void* const place = ListAppendEmpty(in(result));
        if (place == nullptr) return;
        if constexpr (std::is_same_v<Row, std::string>)
            write(static_cast<tarn_string*>(place), row);
        else
            write(static_cast<tarn_record*>(place), row);
    }
}

template <class T>
struct Result {
    using C = tarn_record;
};
template <>
struct Result<std::string> {
    using C = tarn_string;
};
template <class Row>
struct Result<std::vector<Row>> {
    using C = tarn_list;
};
template <class T>
constexpr bool isWord = std::is_integral_v<T> || std::is_enum_v<T>;

// ---- functions ----

template <class Head, auto Call>
struct Bridge;

template <class R, class... A, auto Call>
struct Bridge<R(A...), Call> {
    template <class T>
    using Plain = Argument<std::remove_cvref_t<T>>;

    static void command(typename Plain<A>::C... arguments) { Call(Plain<A>::of(arguments)...); }
    static std::int32_t word(typename Plain<A>::C... arguments) {
        return static_cast<std::int32_t>(Call(Plain<A>::of(arguments)...));
    }
    static double real(typename Plain<A>::C... arguments) { return Call(Plain<A>::of(arguments)...); }
    static std::int64_t fixed(typename Plain<A>::C... arguments) {
        return Call(Plain<A>::of(arguments)...).word;
    }
    static double large(typename Plain<A>::C... arguments) {
        return static_cast<double>(Call(Plain<A>::of(arguments)...));
    }
    static void value(typename Plain<A>::C... arguments, typename Result<R>::C* result) {
        write(result, Call(Plain<A>::of(arguments)...));
    }
    static constexpr auto function() {
        if constexpr (std::is_void_v<R>)
            return &command;
        else if constexpr (std::is_same_v<R, std::int64_t>)
            return &large;
        else if constexpr (std::is_same_v<R, double>)
            return &real;
        else if constexpr (std::is_same_v<R, FixedValue>)
            return &fixed;
        else if constexpr (isWord<R>)
            return &word;
        else
            return &value;
    }
};

// A function value means nothing to a program of the language.
template <auto Call>
struct Bridge<WindowFunction(const Object&), Call> {
    static constexpr std::nullptr_t function() { return nullptr; }
};

}  // namespace tarn::api::bridge
