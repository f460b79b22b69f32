// SPDX-License-Identifier: Apache-2.0
//
// What the tests of delimited text and data files share: a disk in memory, and values that are built from
// declarations and shown as text.
#pragma once

#include "kernel/data/tab/tabular.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/progress.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"
#include "support/steerable.h"
#include "unit/kernel/runtime_fixture.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr DataOptions CommaRows{};
inline constexpr DataOptions TabRows{2, 0, '\t', -1};

// An empty value that its declaration describes: "list" and a record's lines, or the lines of one element.
class Typed {
public:
    explicit Typed(std::string_view declaration) {
        std::size_t position = 0;
        kind_ = static_cast<Kind>(TypeInfoToValue(declaration, position, bytes_));
    }
    ~Typed() { AdtFree(bytes_, kind_); }
    Typed(const Typed&) = delete;
    Typed& operator=(const Typed&) = delete;

    template <class Descriptor = void>
    Descriptor* get() {
        return reinterpret_cast<Descriptor*>(bytes_);
    }
    [[nodiscard]] Kind kind() const { return kind_; }

private:
    Kind kind_ = KindNone;
    alignas(8) char bytes_[sizeof(ArrayDescriptor)] = {};
};

// A value in one line: fields separated by "|", rows in "{}", sets as literals.
std::string Shown(const void* value, Kind kind);

inline std::string ShownRecord(const RecordDescriptor& record) {
    std::string text;
    const char* field = At(record.data);
    for (std::int32_t n = 1; n <= FieldCountOf(record.kinds); ++n) {
        const Kind kind = FieldKindAt(record.kinds, n);
        text += (n > 1 ? "|" : "") + Shown(field, kind);
        field += KindSize[kind];
    }
    return text;
}

inline std::string Shown(const void* value, Kind kind) {
    switch (kind) {
    case KindBoolean: return ReadAt<std::uint8_t>(value) != 0 ? "True" : "False";
    case KindEnum: return std::to_string(ReadAt<std::uint8_t>(value));
    case KindInteger: return std::to_string(ReadAt<std::int32_t>(value));
    case KindFixed: return std::to_string(ReadAt<std::int64_t>(value)) + "f";
    case KindReal: {
        char digits[40];
        std::snprintf(digits, sizeof digits, "%.17gr", ReadAt<double>(value));
        return digits;
    }
    case KindString: return std::string(StringView(static_cast<const StringDescriptor*>(value)));
    case KindRecord:
    case KindUnion: return ShownRecord(ReadAt<RecordDescriptor>(value));
    case KindSet: {
        String literal;
        SetToText(static_cast<const SetDescriptor*>(value), true, literal.get());
        return std::string(literal.view());
    }
    case KindArray: {
        const auto array = ReadAt<ArrayDescriptor>(value);
        return "'" + std::string(At(array.data), static_cast<std::size_t>(array.size)) + "'";
    }
    case KindList: {
        const auto list = ReadAt<ListDescriptor>(value);
        std::string text;
        for (std::int32_t i = 0; i < list.count; ++i)
            text += "{" +
                    Shown(At(list.data) + std::int64_t{i} * KindSize[list.tag], static_cast<Kind>(list.tag)) +
                    "}";
        return text;
    }
    default: return Shown(TableRows(static_cast<const TableDescriptor*>(value)), KindList);
    }
}

class Tab : public Runtime {
protected:
    Tab() : steered_(files_) {}
    void SetUp() override {
        Runtime::SetUp();
        files_.putFolder("/d");
    }
    void TearDown() override {
        UseProgress(nullptr);
        FailAllocation(-1);
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(files_.openHandles(), 0);
        Runtime::TearDown();
    }

    // Loads the text as a file into a list of records with these fields, and shows it; "code@row" in front
    // when there was a failure.
    std::string loaded(std::string_view text, std::string_view fields,
                       const DataOptions& options = CommaRows) {
        return loadedAs(text, "x : list\n\tr : record\n" + indented(fields) + "\tend record\nend list\n",
                        options);
    }
    std::string loadedAs(std::string_view text, std::string_view declaration,
                         const DataOptions& options = CommaRows) {
        files_.put("/d/a.csv", std::string(text));
        Typed value(declaration);
        const DataResult result = TabLoad("/d/a.csv", options, value.get(), value.kind());
        EXPECT_EQ(AdtCheck(value.get(), value.kind()), "");
        std::string shown;
        if (result.code != 0) shown = std::to_string(result.code) + "@" + std::to_string(result.row) + " ";
        return shown + Shown(value.get(), value.kind());
    }
    static std::string indented(std::string_view fields) {
        std::string text(fields);
        TypeInfoChangeIndent(2, text, MaxTypeInfo);
        return text;
    }

    os::SteeredFiles files_;
    os::Steered steered_;
};

}  // namespace tarn
