// SPDX-License-Identifier: Apache-2.0
//
// Random rows of Xbase files, which come back, and random bytes in them.
#include "unit/kernel/xbase_rows_fixture.h"

#include <random>

namespace tarn {
namespace {

using namespace std::string_literals;

// ---- much ----

// A kind, a field that it fits and a random value that the field can hold.
struct Random {
    Cell cell;
    XField field;
};

class RandomRows {
public:
    explicit RandomRows(unsigned seed) : random_(seed) {}

    std::vector<Random> row() {
        std::vector<Random> fields(1 + random_() % 8);
        for (std::size_t i = 0; i < fields.size(); ++i) {
            fields[i] = field();
            fields[i].field.name = "F" + std::to_string(i);
        }
        return fields;
    }

private:
    int upTo(int most) { return static_cast<int>(random_() % static_cast<unsigned>(most + 1)); }
    std::int64_t number(int digits) {
        const auto any = static_cast<std::int64_t>(random_());
        std::int64_t limit = 1;
        for (int i = 0; i < digits; ++i) limit *= 10;
        return any % limit;
    }
    std::string characters(int most) {
        std::string text(static_cast<std::size_t>(upTo(most)), ' ');
        for (char& c : text) c = static_cast<char>(upTo(20) == 0 ? upTo(255) : ' ' + upTo(94));
        return text;
    }
    Random field() {
        const int length = 1 + upTo(upTo(9) == 0 ? 254 : 19);
        switch (upTo(7)) {
        case 0: return {flag(upTo(1) != 0), {"", 'L', 1}};
        case 1: return {ordinal(upTo(255)), {"", 'N', 3 + upTo(9)}};
        case 2: return {integer(static_cast<std::int32_t>(number(10)) >> upTo(30)), {"", 'N', 11 + upTo(9)}};
        case 3: return {fixedNumber(number(16)), {"", 'N', 20, 4}};
        case 4: return {real(static_cast<double>(number(12)) / 1024), {"", 'N', 30, 10}};
        case 5: {
            std::string text = characters(length);
            text.erase(text.find_last_not_of(" \0"s) + 1);
            return {tarn::text(text, upTo(1) != 0 ? length : UNBOUNDED), {"", 'C', length}};
        }
        case 6: return {tarn::characters(characters(length), length), {"", "CDN"[upTo(2)], length}};
        default: return {tarn::text("20240229", 8), {"", 'D', 8}};
        }
    }

    std::mt19937_64 random_;
};

TEST_F(XbaseRows, RandomRowsComeBack) {
    RandomRows random(17);
    std::string bytes;
    int kinds[KindCount] = {};
    for (int step = 0; step < 20000; ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        const std::vector<Random> fields = random.row();
        XFields file;
        Cells cells, empty;
        const bool marked = step % 3 == 0;
        if (marked) cells.push_back(ordinal(step % 2 == 0 ? '*' : ' '));
        for (const Random& field : fields) {
            cells.push_back(field.cell);
            file.push_back(field.field);
            ++kinds[field.cell.kind];
        }
        for (const Cell& cell : cells) {
            empty.push_back(cell);
            empty.back().number = 0;
            empty.back().real = 0;
            if (cell.kind == KindArray)
                empty.back().text.assign(cell.text.size(), '?');
            else
                empty.back().text.clear();
        }
        const XbaseHeader header = headerOf(file);
        const RecordValue row = recordOf(cells);
        RecordValue back = recordOf(empty);
        ASSERT_EQ(XbaseWriteRow(row.get(), KindRecord, header, bytes, marked).errorCode, 0);
        ASSERT_EQ(XbaseReadRow(bytes, header, back.get(), KindRecord, marked).errorCode, 0);
        ASSERT_TRUE(sameCells(cellsOf(back.get(), cells), cells)) << bytes;
        ASSERT_EQ(AdtCheck(back.get(), KindRecord), "");
    }
    for (const Kind kind : {KindBoolean, KindEnum, KindInteger, KindFixed, KindReal, KindString, KindArray})
        EXPECT_GT(kinds[kind], 5000) << kind;
}

// Any bytes at all are values of legal shape.
TEST_F(XbaseRows, RandomBytesGiveWholeValues) {
    std::mt19937 random(5);
    const XbaseHeader header = headerOf(
        {{"A", 'N', 5, 2}, {"B", 'N', 9}, {"C", 'N', 20, 4}, {"D", 'C', 9}, {"E", 'L', 1}, {"F", 'C', 4}});
    Typed row("T : record\n\ta : enum\n\tb : integer\n\tc : real\n\td : string[8]\n\te : boolean\n"
              "\tf : Tchars[1:4]\nend record\n");
    for (int step = 0; step < 20000; ++step) {
        std::string bytes(random() % 55, ' ');
        for (char& c : bytes)
            c = random() % 4 == 0 ? static_cast<char>(random() % 256) : "0123. -*E"[random() % 9];
        XbaseReadRow(bytes, header, row.get(), KindRecord);
        ASSERT_EQ(AdtCheck(row.get(), KindRecord), "") << step;
        ASSERT_LE(ReadAt<std::uint8_t>(RecordFieldAddress(row.get<RecordDescriptor>(), 5)), 1);
    }
    EXPECT_EQ(ErrorCell(), 0);
}

}  // namespace
}  // namespace tarn
