// SPDX-License-Identifier: Apache-2.0
//
// A text of more digits than a real is sure to hold is one all the same when it tells exactly what the real is.
#include "tarn_data/fixture.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

namespace tarn::datatool {
namespace {

constexpr int Well = 0, Failed = 1;

class Reals : public TarnData {
protected:
    void SetUp() override { write("r.type", "record\n\tn : real\nend record\n"); }
    // The rows of a table file of these.
    static std::string bytesOf(const std::vector<double>& numbers) {
        return {reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(double)};
    }
    // All digits of each.
    static std::string textOf(const std::vector<double>& numbers) {
        std::string text = "n\n";
        for (const double number : numbers) {
            constexpr int decimalsOfSmall = 600;
            std::array<char, 1024> digits{};
            std::snprintf(digits.data(), digits.size(), "%.*f", std::abs(number) < 1 ? decimalsOfSmall : 0,
                          number);
            text += std::string(digits.data()) + "\n";
        }
        return text;
    }
};

std::vector<double> largeNumbers() {
    std::vector<double> numbers;
    for (const double number : {1152921504606846976.0, 1180591620717411303424.0, 123456789012345683968.0,
                                999999999999999868928.0, 99999999999999991611392.0, 1e21, 1e23})
        numbers.insert(numbers.end(), {number, -number});
    return numbers;
}

TEST_F(Reals, WhatATableFileGivesIsTakenBack) {
    std::vector<double> numbers = largeNumbers();
    for (int power = 40; power < 1024; power += 7) {
        const double two = std::ldexp(1, power);
        numbers.insert(numbers.end(), {two, -two, std::nextafter(two, 0), 1 / two});
    }
    write("p.bin", bytesOf(numbers));
    ASSERT_EQ(tarnData("convert p.bin p.csv --type=r.type"), Well) << errors;
    EXPECT_NE(read("p.csv").find("\n-123456789012345683968\n"), std::string::npos);
    ASSERT_EQ(tarnData("convert p.csv q.bin --type=r.type"), Well) << errors;
    EXPECT_EQ(read("q.bin"), bytesOf(numbers));
}

TEST_F(Reals, TextsOfAllDigitsAreTaken) {
    std::vector<double> numbers = largeNumbers();
    for (int power = 1; power < 500; power += 9)
        numbers.insert(numbers.end(), {std::ldexp(1, -power), std::ldexp(-3, 2 * power)});
    write("a.csv", textOf(numbers));
    ASSERT_EQ(tarnData("convert a.csv p.bin --type=r.type"), Well) << errors;
    EXPECT_EQ(read("p.bin"), bytesOf(numbers));
}

// Written with as many digits as the last ones have, the nearest real gives their texts; it is another number.
TEST_F(Reals, TextsOfOtherNumbersAreRefused) {
    for (const std::string number :
         {"1152921504606846977", "-1152921504606846975", "123456789012345683967", "99999999999999991611393",
          "12345678901234567890", "0.1000000000000000055511",
          "0.100000000000000005551115123125782702118158340"}) {
        write("a.csv", "n\n" + number + "\n");
        EXPECT_EQ(tarnData("convert a.csv p.bin --type=r.type"), Failed) << number;
        EXPECT_NE(errors.find("Row 1, column 'n' holds " + number + ", which"), std::string::npos) << errors;
    }
}

TEST_F(Reals, ColumnsOfThemAreRealsAndStayAsTheyStand) {
    for (const std::string number :
         {"1152921504606846976", "-1180591620717411303424", "99999999999999991611392"}) {
        const std::string text = "id,n\n1,1e5\n2," + number + "\n";
        write("a.csv", text);
        EXPECT_EQ(tarnData("info a.csv"), Well) << errors;
        EXPECT_NE(output.find("\t\tn : real\n"), std::string::npos) << number << output;
        for (const std::string target : {"b.tab", "b.xml", "b.dbf"}) {
            EXPECT_EQ(tarnData("convert a.csv " + target), Well) << number << errors;
            EXPECT_EQ(tarnData("convert " + target + " b.csv"), Well) << number << errors;
            EXPECT_EQ(read("b.csv"), text) << target;
        }
    }
}

}  // namespace
}  // namespace tarn::datatool
