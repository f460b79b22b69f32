// SPDX-License-Identifier: Apache-2.0
//
// What the tests of rows of Xbase files share: one field read into a value of a kind, and one written from it.
#pragma once

#include "kernel/text/fixed.h"
#include "kernel/values/heap.h"
#include "unit/kernel/table_rows.h"
#include "unit/kernel/values_fixture.h"
#include "unit/kernel/xbase_fixture.h"

#include <cstdint>
#include <string>

namespace tarn {

class XbaseRows : public Xbase {
protected:
    // The text in a field of the type, read into a value of the declared kind: what is shown, "658 " ahead of
    // it when that failed. The value holds something else before.
    static std::string read(const std::string& text, char type, const std::string& typeText) {
        const XbaseHeader header = headerOf({{"A", type, static_cast<int>(text.size())}});
        Typed value("a : " + typeText + "\n");
        fill(value);
        XbaseFault fault;
        std::size_t position = 0;
        std::int32_t field = 1;
        XbaseFromRow(" " + text, position, header, field, value.get(), value.kind(), fault);
        EXPECT_EQ(position, text.size() + 1);
        EXPECT_EQ(field, 2);
        EXPECT_EQ(fault.errorField, fault.errorCode == 0 ? 0 : 1);
        EXPECT_EQ(AdtCheck(value.get(), value.kind()), "");
        const std::string code = fault.errorCode == 0 ? "" : std::to_string(fault.errorCode) + " ";
        return code + Shown(value.get(), value.kind());
    }
    // The row of one field that a value gives, without its mark; the code when it does not fit.
    static std::string written(const void* value, Kind kind, const XField& field) {
        const XbaseHeader header = headerOf({field});
        XbaseFault fault;
        std::size_t position = 0;
        std::int32_t number = 1;
        std::string row;
        XbaseToRow(value, kind, header, number, row, position, fault);
        EXPECT_EQ(row[0], ' ');
        EXPECT_EQ(position, row.size());
        EXPECT_EQ(row.size(), static_cast<std::size_t>(field.length) + 1);
        if (fault.errorCode == 0) return row.substr(1);
        EXPECT_EQ(row, std::string(row.size(), ' '));
        EXPECT_EQ(fault.errorField, 1);
        return std::to_string(fault.errorCode);
    }
    static std::string integer(std::int32_t value, const XField& field) {
        return written(&value, KindInteger, field);
    }
    static std::string fixedNumber(Fixed value, const XField& field) {
        return written(&value, KindFixed, field);
    }
    static std::string real(double value, const XField& field) { return written(&value, KindReal, field); }

private:
    static void fill(Typed& value) {
        if (value.kind() == KindString)
            StringAssignView(value.get<StringDescriptor>(), "??");
        else if (value.kind() == KindArray)
            std::memset(At(value.get<ArrayDescriptor>()->data), '?',
                        static_cast<std::size_t>(value.get<ArrayDescriptor>()->size));
        else if (!IsAdtKind(value.kind()))
            std::memset(value.get(), 1, static_cast<std::size_t>(KindSize[value.kind()]));
    }
};

}  // namespace tarn
