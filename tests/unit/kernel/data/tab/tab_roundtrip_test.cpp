// SPDX-License-Identifier: Apache-2.0
//
// Random records of every kind of cell through files, and back. What delimited text cannot keep is taken from
// the model: separators become '?', blanks at the end go, and so do line ends, NULs and quotes at the
// beginning, which are not made here.
#include "kernel/data/datafile.h"
#include "unit/kernel/tab_fixture.h"

#include <limits>
#include <random>
#include <vector>

namespace tarn {
namespace {

constexpr int records = 20000, seeds = 4;
constexpr const char* declaration =
    "x : list\n\tr : record\n\t\ta : boolean\n\t\tb : enum\n\t\tc : integer\n\t\td : fixed\n\t\te : real\n"
    "\t\tf : string[30]\n\t\tg : set[-9:40]\n\t\th : Tchars[1:6]\n\t\ti : record\n\t\t\tj : integer\n"
    "\t\t\tk : string[5]\n\t\tend record\n\t\tl : string[8]\n\tend record\nend list\n";

class RoundTrip : public Tab {
protected:
    using Random = std::mt19937_64;

    static std::int64_t number(Random& random) {
        switch (random() % 4) {
        case 0: return static_cast<std::int64_t>(random() % 21) - 10;
        case 1: return random() % 2 != 0 ? INT64_MAX : INT64_MIN;
        default: return static_cast<std::int64_t>(random()) >> random() % 64;
        }
    }
    static double real(Random& random) {
        const double values[] = {0.0,
                                 -0.0,
                                 1.5,
                                 -1e-300,
                                 1e300,
                                 std::numeric_limits<double>::denorm_min(),
                                 std::numeric_limits<double>::infinity(),
                                 0.1};
        if (random() % 2 == 0) return values[random() % std::size(values)];
        return static_cast<double>(static_cast<std::int64_t>(random())) /
               static_cast<double>(random() % 999983 + 1);
    }
    static std::string text(Random& random, std::size_t most, bool anyByte) {
        std::string bytes;
        for (std::size_t n = random() % (most + 1); bytes.size() < n;) {
            auto c = static_cast<char>(anyByte ? random() : " ,\t\"'xyz;.\xFF\x80"[random() % 12]);
            if (!anyByte && c == '"' && bytes.empty()) c = 'q';
            bytes += c;
        }
        return bytes;
    }
    // Fills one record, field by field; texts of `anyByte` are for files of packed values.
    static void fill(const RecordDescriptor& record, Random& random, bool anyByte) {
        char* field = At(record.data);
        for (std::int32_t n = 1; n <= FieldCountOf(record.kinds); ++n) {
            const Kind kind = FieldKindAt(record.kinds, n);
            switch (kind) {
            case KindBoolean: WriteAt<std::uint8_t>(field, random() % 2 != 0 ? 1 : 0); break;
            case KindEnum: WriteAt(field, static_cast<std::uint8_t>(random())); break;
            case KindInteger: WriteAt(field, static_cast<std::int32_t>(number(random))); break;
            case KindFixed: WriteAt(field, number(random)); break;
            case KindReal: WriteAt(field, real(random)); break;
            case KindString: {
                auto& s = *reinterpret_cast<StringDescriptor*>(field);
                StringAssignView(&s, text(random, static_cast<std::size_t>(s.maxlength), anyByte));
                break;
            }
            case KindSet:
                for (std::size_t i = random() % 9; i > 0; --i)
                    SetInclude(static_cast<std::int32_t>(random() % 50) - 9,
                               reinterpret_cast<SetDescriptor*>(field));
                break;
            case KindArray: {
                const auto array = ReadAt<ArrayDescriptor>(field);
                std::string characters = text(random, static_cast<std::size_t>(array.size), anyByte);
                characters.resize(static_cast<std::size_t>(array.size), ' ');
                std::memcpy(At(array.data), characters.data(), characters.size());
                break;
            }
            default: fill(ReadAt<RecordDescriptor>(field), random, anyByte);
            }
            field += KindSize[kind];
        }
    }
    static void makeRows(ListDescriptor* list, Random& random, bool anyByte) {
        for (int i = 0; i < records / seeds; ++i) {
            const void* row = ListAppendEmpty(list);
            ASSERT_NE(row, nullptr);
            fill(ReadAt<RecordDescriptor>(row), random, anyByte);
        }
    }

    // What a text is after a trip through delimited text.
    static std::string kept(std::string characters, char separator) {
        for (char& c : characters)
            if (c == separator) c = '?';
        return characters.substr(0, characters.find_last_not_of(' ') + 1);
    }
    static void expectKept(const RecordDescriptor& before, const RecordDescriptor& after, char separator) {
        const char *a = At(before.data), *b = At(after.data);
        for (std::int32_t n = 1; n <= FieldCountOf(before.kinds); ++n) {
            const Kind kind = FieldKindAt(before.kinds, n);
            if (kind == KindRecord) {
                expectKept(ReadAt<RecordDescriptor>(a), ReadAt<RecordDescriptor>(b), separator);
            } else if (kind == KindString) {
                ASSERT_EQ(Shown(b, kind), kept(Shown(a, kind), separator));
            } else if (kind == KindArray) {
                std::string characters = Shown(a, kind).substr(1, 6);
                characters = kept(characters, separator);
                characters.resize(6, characters.empty() ? '\0' : ' ');
                ASSERT_EQ(Shown(b, kind), "'" + characters + "'");
            } else {
                ASSERT_EQ(Shown(b, kind), Shown(a, kind));
            }
            a += KindSize[kind];
            b += KindSize[kind];
        }
    }
    void throughText(DataFormat format, std::uint64_t seed) {
        SCOPED_TRACE(testing::Message() << "format " << format << " seed " << seed);
        Random random(seed);
        Typed before(declaration), after(declaration);
        makeRows(before.get<ListDescriptor>(), random, false);
        const DataOptions options = DefaultDataOptions(format);
        std::string message;
        ASSERT_EQ(SaveValue("/d/f", format, options, 0, before.get(), KindList).code, 0);
        const DataResult result = LoadValue("/d/f", format, options, after.get(), KindList, message);
        ASSERT_EQ(result.code, 0) << result.row;
        ASSERT_EQ(result.rows, records / seeds);
        for (std::int32_t i = 1; i <= result.rows; ++i) {
            SCOPED_TRACE(testing::Message() << "row " << i);
            expectKept(ReadAt<RecordDescriptor>(ListRef(before.get<ListDescriptor>(), i)),
                       ReadAt<RecordDescriptor>(ListRef(after.get<ListDescriptor>(), i)),
                       static_cast<char>(options.separatorchar));
            if (HasFatalFailure()) return;
        }
    }
};

TEST_F(RoundTrip, CommaSeparatedTextKeepsAllButTheEndsOfTexts) {
    for (std::uint64_t seed = 1; seed <= seeds && !HasFailure(); ++seed) throughText(FormatComma, seed);
}

TEST_F(RoundTrip, TabSeparatedTextKeepsAllButTheEndsOfTexts) {
    for (std::uint64_t seed = 1; seed <= seeds && !HasFailure(); ++seed) throughText(FormatTab, seed);
}

TEST_F(RoundTrip, PackedValuesKeepEveryByte) {
    for (std::uint64_t seed = 1; seed <= seeds && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        Typed before(declaration), after(declaration);
        makeRows(before.get<ListDescriptor>(), random, true);
        std::string message;
        ASSERT_EQ(SaveValue("/d/f", FormatBinary, {}, 0, before.get(), KindList).code, 0);
        const DataResult result = LoadValue("/d/f", FormatBinary, {}, after.get(), KindList, message);
        ASSERT_EQ(result.code, 0);
        ASSERT_EQ(result.rows, records / seeds);
        ASSERT_TRUE(AdtCompare("EQ", before.get(), after.get(), KindList));
        ASSERT_EQ(AdtCheck(after.get(), KindList), "");
    }
}

TEST_F(RoundTrip, CellsThatOtherProgramsQuoteKeepEveryByte) {
    std::mt19937_64 random(99);
    for (int round = 0; round < 50; ++round) {
        std::string file, expected;
        for (int i = 0; i < 100; ++i) {
            const std::string cell = text(random, 30, true);
            std::string quoted;
            for (const char c : cell) quoted.append(c == '"' ? 2 : 1, c);
            file += "\"" + quoted + "\"," + std::to_string(i) + (i % 2 != 0 ? "\n" : "\r\n");
            expected += "{" + cell + "|" + std::to_string(i) + "}";
        }
        ASSERT_EQ(loaded(file, "a : string[30]\nb : integer\n"), expected) << round;
    }
}

TEST_F(RoundTrip, EveryBeginningOfAFileCanBeRead) {
    const std::string file = "a,b\n-,-\n1,\"x\n\"\"y\"\r\n2,[1,2]\n\n(2 rows affected)\n";
    for (std::size_t size = 0; size <= file.size(); ++size) {
        for (const DataOptions& options : {CommaRows, DataOptions{2, 2, ',', -1}, DataOptions{1, 0, 1, 1}}) {
            loaded(std::string_view(file).substr(0, size), "a : integer\nb : string[9]\nc : set[1:3]\n",
                   options);
            TabDiscover("/d/a.csv", options, MaxTypeInfo);
            GetDataFileInfo("/d/a.csv", &options);
        }
    }
}

}  // namespace
}  // namespace tarn
