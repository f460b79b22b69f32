// SPDX-License-Identifier: Apache-2.0
//
// What is written as text is read back as the same value.
#include "kernel/debug/valuetext.h"
#include "kernel/tables/tables.h"
#include "kernel/values/strings.h"
#include "unit/kernel/debug/debuggedvalues.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using namespace tarn;
using namespace tarn::debugged;

namespace {

constexpr std::uint32_t compact = VALUE_BRACES | VALUE_BLANKS;

class ValueRoundTrip : public Values {};

class RandomValues {
public:
    explicit RandomValues(std::uint32_t seed) : random_(seed) {}

    std::int32_t below(std::int32_t n) {
        return static_cast<std::int32_t>(random_() % static_cast<unsigned>(n));
    }
    ValueModel value(int depth) {
        static constexpr Kind simple[] = {KindBoolean, KindEnum,   KindInteger, KindFixed,
                                          KindReal,    KindString, KindSet};
        const std::int32_t pick = below(depth > 0 ? 11 : 7);
        switch (pick) {
        case 7: return fields(KindRecord, depth);
        case 8: return fields(KindUnion, depth);
        case 9: return arrayOf(depth);
        case 10: return listOf(depth);
        default: return leaf(simple[pick]);
        }
    }
    // Other content in the same shape.
    ValueModel refilled(const ValueModel& shape) {
        ValueModel m = shape;
        if (!IsAdtKind(m.kind) || m.kind == KindString || m.kind == KindSet) return leafLike(m);
        for (ValueModel& part : m.parts) part = refilled(part);
        return m;
    }

private:
    ValueModel leaf(Kind kind) {
        if (kind == KindString) return leafLike(Text("", below(2) == 0 ? UNBOUNDED : 1 + below(12)));
        if (kind == KindReal) return leafLike(Real(0));
        if (kind == KindSet) {
            const std::int32_t lower = below(40) - 20;
            return leafLike(Set(lower, lower + below(40), {}));
        }
        return leafLike(Number(kind, 0));
    }
    ValueModel leafLike(ValueModel m) {
        switch (m.kind) {
        case KindBoolean: m.number = below(2); break;
        case KindEnum: m.number = below(256); break;
        case KindInteger: m.number = static_cast<std::int32_t>(random_()); break;
        case KindFixed: m.number = static_cast<std::int64_t>(random_()) << 32 | random_(); break;
        case KindReal: m.real = real(); break;
        case KindString: m.text = text(m.maxlength == UNBOUNDED ? 20 : m.maxlength); break;
        default: {
            m.members.clear();
            for (std::int32_t i = m.bounds[0].lower; i <= m.bounds[0].upper; ++i)
                if (below(3) == 0) m.members.insert(i);
        }
        }
        return m;
    }
    double real() {
        if (below(20) == 0) return below(2) == 0 ? INFINITY : -INFINITY;
        const std::uint64_t bits = static_cast<std::uint64_t>(random_()) << 32 | random_();
        const auto number = ReadAt<double>(&bits);
        return std::isfinite(number) ? number : 0.5;
    }
    std::string text(std::int32_t longest) {
        std::string s(static_cast<std::size_t>(below(longest + 1)), ' ');
        for (char& c : s) c = static_cast<char>(below(256));
        return s;
    }
    ValueModel fields(Kind kind, int depth) {
        std::vector<ValueModel> parts;
        for (std::int32_t n = below(5); n > 0; --n) parts.push_back(value(depth - 1));
        return Record(parts, kind);
    }
    std::vector<ValueModel> alike(const ValueModel& element, std::int32_t count) {
        std::vector<ValueModel> parts;
        for (; count > 0; --count) parts.push_back(refilled(element));
        return parts;
    }
    ValueModel arrayOf(int depth) {
        const ValueModel element = value(depth - 1);
        const bool dynamic = below(2) == 0;
        const std::int32_t lower = dynamic ? 1 : below(9) - 4, count = 1 + below(4);
        if (below(3) == 0 && !dynamic)
            return Array({{lower, lower + count - 1}, {1, 2}}, element, alike(element, 2 * count));
        return Array({{lower, lower + count - 1}}, element, alike(element, count),
                     dynamic ? DYNAMIC_BOUNDS : 0);
    }
    ValueModel listOf(int depth) {
        const ValueModel element = value(depth - 1);
        const std::int32_t count = below(4);
        return List(element, alike(element, count), below(2) == 0 ? UNBOUNDED : 4);
    }
    std::mt19937 random_;
};

TEST_F(ValueRoundTrip, GivesBackWhatWasWritten) {
    SetMemoryChecking(false);  // the free of each block would search all
    static constexpr std::uint32_t forms[] = {VALUE_BRACES,
                                              compact,
                                              compact | VALUE_CHARACTERS,
                                              VALUE_BRACES | VALUE_NEWLINES,
                                              compact | VALUE_NEWLINES | VALUE_INDENT | VALUE_HEX,
                                              compact | VALUE_HEX | VALUE_CHARACTERS};
    RandomValues random(20260725);
    int byKind[KindCount] = {};
    for (int n = 0; n < 100000; ++n) {
        const ValueModel written = random.value(3), before = random.refilled(written);
        ++byKind[written.kind];
        OddValue value(written), target(before);
        const std::uint32_t flags = forms[n % 6];
        const std::string text = ValueText(value.at(), written.kind, flags);
        if (text.size() == MaxValueText) continue;
        std::int32_t position = 1;
        ASSERT_TRUE(ValueFromText(text, position, target.at(), written.kind)) << text << " at " << position;
        ASSERT_EQ(position, static_cast<std::int32_t>(text.size()) + 1) << text;
        ASSERT_EQ(model::Differs(written, target.at()), "") << text;
        ASSERT_EQ(ValueText(target.at(), written.kind, flags), text);
    }
    for (std::int32_t kind = KindBoolean; kind <= KindList; ++kind) EXPECT_GT(byKind[kind], 5000) << kind;
}

TEST_F(ValueRoundTrip, GivesBackTables) {
    SetMemoryChecking(false);
    RandomValues random(7);
    for (int n = 0; n < 2000; ++n) {
        const OddValue like(Record({integer(0), Text("", 6), Real(0)}));
        TableValue from, to;
        for (TableValue* table : {&from, &to})
            TableInit(table->get(), UNBOUNDED, static_cast<const RecordDescriptor*>(like.at()),
                      {MakeKeyMap(1), MakeKeyMap(2, 1)}, "", false);
        for (std::int32_t i = random.below(8); i > 0; --i) {
            const OddValue row(random.refilled(Record({integer(0), Text("", 6), Real(0)})));
            TableAdd(from.get(), 1, static_cast<const RecordDescriptor*>(row.at()));
            ClearError();
        }
        const std::string text = ValueText(from.get(), KindTable, compact);
        std::int32_t position = 1;
        ASSERT_TRUE(ValueFromText(text, position, to.get(), KindTable)) << text;
        ASSERT_TRUE(AdtCompare("EQ", from.get(), to.get(), KindTable)) << text;
        ASSERT_EQ(AdtCheck(to.get(), KindTable), "");
    }
}

}  // namespace
