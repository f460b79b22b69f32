// SPDX-License-Identifier: Apache-2.0
//
// What the tests of lists in files share beside a disk: elements by the values that a test tells.
#pragma once

#include "unit/kernel/filelists_fixture.h"

#include <cstdint>
#include <string>

namespace tarn {

class RowFiles : public FileLists {
protected:
    static void put(ListValue& l, std::int32_t position, const ValueModel& value) {
        const OddValue v(value);
        ListPut(v.at(), value.kind, position, l.get());
    }
    static void append(ListValue& l, const ValueModel& value) {
        const OddValue v(value);
        ListAppend(v.at(), value.kind, l.get());
    }
    // "" when the element is this one, else what differs.
    static std::string differs(const ListValue& l, std::int32_t position, const ValueModel& value) {
        OddValue v(model::Emptied(value));
        ListGet(l.get(), position, v.at(), value.kind);
        return model::Differs(value, v.at());
    }
};

}  // namespace tarn
