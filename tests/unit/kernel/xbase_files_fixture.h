// SPDX-License-Identifier: Apache-2.0
//
// What the tests of whole Xbase files share: a file of people, and loads and saves whose outcome is one text.
#pragma once

#include "kernel/data/datafile.h"
#include "unit/kernel/table_rows.h"
#include "unit/kernel/xbase_fixture.h"

#include <string>
#include <string_view>

namespace tarn {

class XbaseFiles : public Xbase {
protected:
    static constexpr const char* people =
        "x : list\n\tr : record\n\t\tid : integer\n\t\tname : string[8]\n\t\tok : boolean\n"
        "\tend record\nend list\n";
    static inline const XFields peopleFile = {{"ID", 'N', 4}, {"NAME", 'C', 8}, {"OK", 'L', 1}};

    static std::string person(const std::string& id, std::string name, char ok, char mark = ' ') {
        name.resize(8, ' ');
        return mark + std::string(4 - id.size(), ' ') + id + name + ok;
    }
    // What a load into a value gave: "code@row " after a failure, the value, and "#" with the count.
    std::string load(Typed& value, const std::string& name = "/d/a.dbf") {
        const DataResult result = XbaseLoad(name, value.get(), value.kind(), message);
        FailAllocation(-1);
        EXPECT_EQ(AdtCheck(value.get(), value.kind()), "");
        EXPECT_EQ(ErrorCell(), 0);
        std::string shown;
        if (result.code != 0) shown = std::to_string(result.code) + "@" + std::to_string(result.row) + " ";
        if (result.stopped) shown += "stopped ";
        return shown + Shown(value.get(), value.kind()) + "#" + std::to_string(result.rows);
    }
    std::string loaded(const std::string& bytes, std::string_view declaration) {
        files_.put("/d/a.dbf", bytes);
        Typed value(declaration);
        return load(value);
    }
    std::string saved(Typed& value, std::string_view typeText, const std::string& name = "/d/out.dbf") {
        const DataResult result = XbaseSave(name, value.get(), value.kind(), typeText);
        EXPECT_EQ(ErrorCell(), 0);
        if (result.code == 0) return files_.contents(name);
        EXPECT_EQ(result.rows, 0);
        return std::to_string(result.code) + "@" + std::to_string(result.row);
    }
    static void addNumbers(Typed& list, std::int32_t count) {
        for (std::int32_t i = 0; i < count; ++i) ListAppend(&i, KindInteger, list.get<ListDescriptor>());
    }

    std::string message;
    os::SteeredClock clock_;  // 2001-02-03, as in HeadBytes
    os::Steered steeredClock_{clock_};
};

}  // namespace tarn
