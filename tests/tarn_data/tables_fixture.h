// SPDX-License-Identifier: Apache-2.0
//
// What the tests of Xbase, table and index files share: a folder with a declaration of rows, and files.
#pragma once

#include "tarn_data/fixture.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn::datatool {

struct Row {
    const char *words, *said;
};

inline std::string bytesOf(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size();) {
        if (hex[i] == ' ' || hex[i] == '\n') {
            ++i;
            continue;
        }
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
        i += 2;
    }
    return bytes;
}

// A file of two fields, NAME C(5) and N N(4,1), with these rows and a count.
inline std::string dbf(const std::vector<std::string>& rows, char count = -1) {
    using namespace std::string_literals;
    const auto field = [](std::string name, char type, char length, char decimals) {
        name.resize(11);
        return name + type + std::string(4, '\0') + length + decimals + std::string(14, '\0');
    };
    std::string bytes = "\x03\x65\x02\x03"s;
    bytes += count >= 0 ? count : static_cast<char>(rows.size());
    bytes += "\0\0\0\x61\0\x0A\0"s + std::string(20, '\0') + field("NAME", 'C', 5, 0) +
             field("N", 'N', 4, 1) + "\r";
    for (const std::string& row : rows) bytes += row;
    return bytes + "\x1A";
}

class Tables : public TarnData {
protected:
    static constexpr int Well = 0, Failed = 1, WrongUsage = 2;

    void SetUp() override {
        write("t.type", "record\n\tid : integer\n\tname : string[4]\nend record\n");
        write("a.csv", "id,name\n1,Ann\n2,Bob\n3,Cy\n");
    }
    void makeTable() {
        ASSERT_EQ(tarnData("convert a.csv t.bin --type=t.type --keys=id --keys=name,id"), Well) << errors;
    }
    void expectWhole(const std::string& words) {
        EXPECT_EQ(tarnData("check " + words), Well) << output << errors;
        EXPECT_NE(output.find("whole"), std::string::npos);
    }
    void expectFault(const std::string& words, const std::string& said) {
        EXPECT_EQ(tarnData("check " + words), Failed) << words;
        EXPECT_NE(output.find(said), std::string::npos) << words << "\n" << output << errors;
    }
};

}  // namespace tarn::datatool
