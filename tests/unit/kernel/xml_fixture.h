// SPDX-License-Identifier: Apache-2.0
//
// Reads XML texts from a file of the steered file system, into values that are declared by type information
// text, and shows what came out.
#pragma once

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/progress.h"
#include "kernel/tables/tables.h"
#include "kernel/text/fixed.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"
#include "support/errorcell.h"
#include "support/steerable.h"
#include "unit/kernel/runtime_fixture.h"

#include <cstring>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// A value of any kind, freed when it leaves its scope.
class AnyValue {
public:
    AnyValue() = default;
    explicit AnyValue(std::string_view declaration) {
        std::size_t position = 0;
        kind_ = static_cast<Kind>(TypeInfoToValue(declaration, position, bytes_));
        EXPECT_TRUE(IsValueKind(kind_)) << declaration;
    }
    AnyValue(const void* like, Kind kind) : kind_(kind) { AdtInit(bytes_, like, kind); }
    // Takes over what `descriptor` owns.
    static AnyValue adopt(void* descriptor, Kind kind) {
        AnyValue value;
        value.kind_ = kind;
        std::memcpy(value.bytes_, descriptor, static_cast<std::size_t>(KindSize[kind]));
        std::memset(descriptor, 0, static_cast<std::size_t>(KindSize[kind]));
        return value;
    }
    static AnyValue array(Kind kind, const std::vector<ArrayBounds>& b, const void* prototype = nullptr) {
        ArrayDescriptor a{};
        if (b.empty()) {
            ArrayInitDynamic(&a, kind, prototype);
        } else {
            ArrayBounds all[3] = {b[0], {NO_DIMENSION, NO_DIMENSION}, {NO_DIMENSION, NO_DIMENSION}};
            std::copy(b.begin(), b.end(), all);
            ArrayInit(&a, kind, all[0].lower, all[0].upper, all[1].lower, all[1].upper, all[2].lower,
                      all[2].upper, prototype);
        }
        return adopt(&a, KindArray);
    }
    static AnyValue list(std::string_view element, std::int32_t maxlength) {
        const AnyValue like(element);
        ListDescriptor l{};
        ListInit(&l, maxlength, IsAdtKind(like.kind()) ? like.get() : nullptr, like.kind(), false);
        return adopt(&l, KindList);
    }
    static AnyValue table(std::string_view row, const KeyMaps& keys, std::int32_t maxlength = UNBOUNDED,
                          std::string_view description = {}) {
        const AnyValue like(row);
        TableDescriptor t{};
        TableInit(&t, maxlength, like.as<RecordDescriptor>(), keys, description, false);
        return adopt(&t, KindTable);
    }
    ~AnyValue() {
        if (IsAdtKind(kind_)) AdtFree(bytes_, kind_);
    }
    AnyValue(AnyValue&& other) noexcept : kind_(other.kind_) {
        std::memcpy(bytes_, other.bytes_, sizeof bytes_);
        other.kind_ = KindNone;
    }
    AnyValue& operator=(AnyValue&&) = delete;
    AnyValue(const AnyValue&) = delete;
    AnyValue& operator=(const AnyValue&) = delete;

    [[nodiscard]] Kind kind() const { return kind_; }
    [[nodiscard]] void* get() { return bytes_; }
    [[nodiscard]] const void* get() const { return bytes_; }
    template <class Descriptor>
    [[nodiscard]] Descriptor* as() {
        return reinterpret_cast<Descriptor*>(bytes_);
    }
    template <class Descriptor>
    [[nodiscard]] const Descriptor* as() const {
        return reinterpret_cast<const Descriptor*>(bytes_);
    }

private:
    Kind kind_ = KindNone;
    char bytes_[sizeof(ArrayDescriptor)] = {};
};

// 1, 'text', {fields}, [1..3], (elements of lists), <1:2>(elements of arrays), |rows|.
inline std::string shown(const void* value, Kind kind);

inline std::string shownAll(const char* at, std::int32_t count, Kind kind) {
    std::string text;
    for (std::int32_t i = 0; i < count; ++i) {
        if (i > 0) text += ",";
        text += shown(at + std::ptrdiff_t{i} * KindSize[kind], kind);
    }
    return text;
}

inline std::string shown(const void* value, Kind kind) {
    switch (kind) {
    case KindBoolean: return ReadAt<std::uint8_t>(value) != 0 ? "True" : "False";
    case KindEnum: return "#" + std::to_string(ReadAt<std::uint8_t>(value));
    case KindInteger: return std::to_string(ReadAt<std::int32_t>(value));
    case KindFixed: return FixedToText(ReadAt<Fixed>(value));
    case KindReal: return RealToText(ReadAt<double>(value), 2);
    case KindString: return "'" + std::string(StringView(static_cast<const StringDescriptor*>(value))) + "'";
    case KindSet: {
        String text;
        SetToText(static_cast<const SetDescriptor*>(value), true, text.get());
        return std::string(text.view());
    }
    case KindRecord:
    case KindUnion: {
        const auto* r = static_cast<const RecordDescriptor*>(value);
        std::string text = "{";
        for (std::int32_t n = 1; n <= FieldCountOf(r->kinds); ++n)
            text += (n > 1 ? "," : "") + shown(RecordFieldAddress(r, n), FieldKindAt(r->kinds, n));
        return text + "}";
    }
    case KindArray: {
        const auto* a = static_cast<const ArrayDescriptor*>(value);
        std::string text = "<";
        for (std::int32_t d = 1; d <= ArrayDimensions(a); ++d)
            text += (d > 1 ? "," : "") + std::to_string(ArrayLowerBound(a, d)) + ":" +
                    std::to_string(ArrayUpperBound(a, d));
        return text + ">(" + shownAll(At(a->data), ArrayElementCount(a), static_cast<Kind>(a->tag)) + ")";
    }
    case KindList: {
        const auto* l = static_cast<const ListDescriptor*>(value);
        return "(" + shownAll(At(l->data), l->count, static_cast<Kind>(l->tag)) + ")";
    }
    case KindTable: {
        const ListDescriptor* rows = TableRows(static_cast<const TableDescriptor*>(value));
        return "|" + shownAll(At(rows->data), rows->count, KindRecord) + "|";
    }
    default: return "?";
    }
}
inline std::string shown(const AnyValue& value) {
    return shown(value.get(), value.kind());
}

// "" or "code line:position message".
inline std::string shown(const ErrorRecord& error) {
    if (error.code == 0) return error.message.empty() && error.line == 0 ? "" : "no code, but a message";
    return std::to_string(error.code) + " " + std::to_string(error.line) + ":" +
           std::to_string(error.position) + " " + error.message;
}
inline std::string problem(const ErrorRecord& error) {
    return error.code == 0 ? "" : std::to_string(error.code) + " " + error.message;
}

class Xml : public Runtime {
protected:
    static constexpr const char* file = "/data/file.xml";

    static std::string repeated(std::string_view text, int count) {
        std::string all;
        for (int i = 0; i < count; ++i) all += text;
        return all;
    }

    void SetUp() override {
        Runtime::SetUp();
        disk.putFolder("/data");
    }
    void TearDown() override {
        FailAllocation(-1);
        UseProgress(nullptr);
        EXPECT_TRUE(ScannerInputFilename().empty());
        EXPECT_EQ(disk.openHandles(), 0);
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }

    ErrorRecord readStructure(const std::string& text, std::string& typeText) {
        disk.put(file, text);
        return XmlRead(file, 0, nullptr, KindNone, &typeText, MaxTypeInfo);
    }
    // The structure, or what went wrong.
    std::string structure(const std::string& text) {
        std::string typeText;
        const ErrorRecord error = readStructure(text, typeText);
        return error.code == 0 ? typeText : problem(error);
    }
    // What goes wrong when the structure is read, with the place.
    std::string complaint(const std::string& text) {
        std::string typeText;
        return shown(readStructure(text, typeText));
    }
    ErrorRecord readInto(AnyValue& value, const std::string& text) {
        disk.put(file, text);
        const ErrorRecord error = XmlRead(file, 0, value.get(), value.kind(), nullptr, 0);
        EXPECT_EQ(AdtCheck(value.get(), value.kind()), "");
        EXPECT_EQ(ErrorCell(), 0);
        return error;
    }
    // The value after reading, and what went wrong behind a blank.
    std::string bound(AnyValue& value, const std::string& text) {
        const std::string error = problem(readInto(value, text));
        return shown(value) + (error.empty() ? "" : " " + error);
    }
    std::string bound(std::string_view declaration, const std::string& text) {
        AnyValue value(declaration);
        return bound(value, text);
    }

    os::SteeredFiles disk;
    os::Steered inForce{disk};
};

}  // namespace tarn
