// SPDX-License-Identifier: Apache-2.0
//
// Values built from type information text.
#pragma once

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/run/errors.h"
#include "kernel/values/adt.h"
#include "unit/kernel/checked_fixture.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tarn {

class TypeInfoValues : public Checked {
protected:
    static inline const std::string customers = "cust : table\n"
                                                "\tTcust : record\n"
                                                "\t\tid : integer\n"
                                                "\t\tname : string[40]\n"
                                                "\tend record\n"
                                                "end table\n";

    // Builds the value of the first element and frees it again.
    struct Built {
        std::int32_t kind = 0;
        std::size_t position = 0;
        std::int32_t error = 0;
        std::string shown;  // TypeInfoFromValue of it
    };
    static Built built(std::string_view text, std::size_t position = 0) {
        char value[44];
        std::memset(value, 0x5A, sizeof value);
        Built b{0, position, 0, {}};
        b.kind = TypeInfoToValue(text, b.position, value);
        b.error = takeError();
        if (!IsValueKind(b.kind)) return b;
        const auto kind = static_cast<Kind>(b.kind);
        EXPECT_EQ(AdtCheck(value, kind), "");
        b.shown = TypeInfoFromValue(value, kind);
        AdtFree(value, kind);
        std::size_t advanced = position;
        EXPECT_EQ(TypeInfoToValue(text, advanced, nullptr), b.kind);
        EXPECT_EQ(advanced, b.position);
        return b;
    }
    static std::int32_t toRecord(std::string_view text, RecordValue& record) {
        const String source(text);
        TypeInfoToRecord(source.get(), record.get());
        return takeError();
    }
    static std::int32_t toList(std::string_view text, ListValue& list) {
        const String source(text);
        TypeInfoToList(source.get(), list.get());
        return takeError();
    }
    static std::int32_t toTable(std::string_view text, TableValue& table) {
        const String source(text);
        TypeInfoToTable(source.get(), table.get());
        return takeError();
    }
    static bool isZero(const void* value, std::size_t bytes) {
        const std::vector<char> zero(bytes, '\0');
        return std::memcmp(value, zero.data(), bytes) == 0;
    }
    static std::string fields(std::int32_t count, const std::string& type = "integer") {
        std::string text = "r : record\n";
        for (std::int32_t n = 1; n <= count; ++n) text += "\tf" + std::to_string(n) + " : " + type + "\n";
        return text + "end record\n";
    }
};

}  // namespace tarn
