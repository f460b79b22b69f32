// SPDX-License-Identifier: Apache-2.0
//
// Long random walks over arrays and records beside plain C++ containers.
#include "kernel/run/errors.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "unit/kernel/values_fixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <vector>

using namespace tarn;

namespace {

class Dice {
public:
    explicit Dice(std::uint32_t seed) : random_(seed) {}
    // From 0 to n - 1.
    std::int32_t below(std::int32_t n) {
        return static_cast<std::int32_t>(random_() % static_cast<unsigned>(n));
    }
    bool oneIn(std::int32_t n) { return below(n) == 0; }
    std::int32_t between(std::int32_t low, std::int32_t high) { return low + below(high - low + 1); }
    std::string text(std::int32_t longest) {
        std::string s(static_cast<std::size_t>(below(longest + 1)), ' ');
        for (char& c : s) c = static_cast<char>("abcxyz\0\xFF"[below(8)]);
        return s;
    }

private:
    std::mt19937 random_;
};

// Other content in the same shape; a dynamic array gets other bounds too.
ValueModel refilled(const ValueModel& shape, Dice& dice) {
    ValueModel m = shape;
    switch (m.kind) {
    case KindBoolean: m.number = dice.below(2); break;
    case KindEnum: m.number = dice.below(256); break;
    case KindInteger:
    case KindFixed: m.number = dice.between(-1000000, 1000000); break;
    case KindReal: m.real = dice.between(-1000, 1000) / 8.0; break;
    case KindString: m.text = dice.text(m.maxlength == UNBOUNDED ? 12 : m.maxlength); break;
    default: break;
    }
    if (m.kind == KindArray && m.maxlength == DYNAMIC_BOUNDS) {
        const std::int32_t lower = dice.between(-3, 3);
        m = model::Array({{lower, lower + dice.below(4)}}, m.element[0], {}, DYNAMIC_BOUNDS);
    }
    for (ValueModel& part : m.parts) part = refilled(part, dice);
    return m;
}

// ---- arrays ----

using Subscripts = std::array<std::int32_t, MaxDimensions>;

struct ModelArray {
    bool dynamic = false;
    std::vector<ArrayBounds> bounds;  // none: no shape yet
    std::map<Subscripts, ValueModel>
        elements{};  // in the order of their subscripts, which is that of storage
};

template <class Visit>
void forEachSubscript(const std::vector<ArrayBounds>& bounds, Visit visit) {
    Subscripts at{};
    const auto walk = [&](auto& self, std::size_t d) -> void {
        if (d == bounds.size()) return visit(at);
        for (at[d] = bounds[d].lower; at[d] <= bounds[d].upper; ++at[d]) self(self, d + 1);
        at[d] = 0;
    };
    if (!bounds.empty()) walk(walk, 0);
}

// Three arrays of one element kind and as many dimensions: one fixed, two dynamic.
class ArrayWorld {
public:
    ArrayWorld(std::uint32_t seed, const ValueModel& element, std::size_t dimensions)
        : dice_(seed), element_(model::Emptied(element)), dimensions_(dimensions) {
        for (std::size_t i = 0; i < 3; ++i) {
            models_[i].dynamic = i > 0;
            if (i < 2) reshape(models_[i], someBounds(), false);
            model::Make(whole(models_[i]), arrays_[i].get());
        }
    }

    void step() {
        const std::size_t i = pick();
        switch (dice_.below(12)) {
        case 0: redim(i); break;
        case 1: assign(i, pick()); break;
        case 2:
            if (dimensions_ == 1)
                literal(i);
            else
                clear(i);
            break;
        case 3:
        case 4:
        case 5:
        case 6: get(i); break;
        default: put(i); break;
        }
        ASSERT_EQ(ErrorCell(), expected_);
        ClearError();
        expected_ = 0;
        ASSERT_EQ(AdtCheck(arrays_[i].get(), KindArray), "");
        if (dice_.oneIn(8)) {
            ASSERT_EQ(model::Differs(whole(models_[i]), arrays_[i].get()), "");
        }
    }

private:
    std::size_t pick() { return static_cast<std::size_t>(dice_.below(3)); }

    [[nodiscard]] ValueModel whole(const ModelArray& m) const {
        std::vector<ValueModel> parts;
        for (const auto& [at, value] : m.elements) parts.push_back(value);
        return model::Array(m.bounds, element_, std::move(parts), m.dynamic ? DYNAMIC_BOUNDS : 0);
    }

    std::vector<ArrayBounds> someBounds() {
        constexpr std::int32_t longest[] = {0, 40, 7, 4};
        std::vector<ArrayBounds> bounds(dimensions_);
        for (ArrayBounds& b : bounds) {
            b.lower = dice_.between(-3, 3);
            b.upper = b.lower + dice_.below(longest[dimensions_]);
        }
        return bounds;
    }

    Subscripts someSubscripts(const ModelArray& m) {
        Subscripts at{};
        for (std::size_t d = 0; d < dimensions_; ++d) {
            const ArrayBounds b = m.bounds.empty() ? ArrayBounds{1, 1} : m.bounds[d];
            const std::int32_t over = dice_.oneIn(20) ? 1 : 0;
            at[d] = dice_.between(b.lower - over, b.upper + over);
        }
        return at;
    }

    // 613 without a shape, 602 outside; 0 for an element that is there.
    static std::int32_t accessError(const ModelArray& m, const Subscripts& at) {
        if (m.bounds.empty()) return ERR_ARRAY_DIMENSION;
        return m.elements.count(at) == 0 ? ERR_ARRAY_BOUNDS : 0;
    }

    void reshape(ModelArray& m, std::vector<ArrayBounds> bounds, bool preserve) {
        std::map<Subscripts, ValueModel> elements;
        forEachSubscript(bounds, [&](const Subscripts& at) {
            const auto old = m.elements.find(at);
            elements[at] = preserve && old != m.elements.end() ? old->second : element_;
        });
        m.elements = std::move(elements);
        m.bounds = std::move(bounds);
    }

    // What an element becomes by this value: texts may be longer than there is room.
    ValueModel someValue(ValueModel& stored) {
        ValueModel given = refilled(element_, dice_);
        stored = given;
        if (given.kind != KindString || given.maxlength == UNBOUNDED || !dice_.oneIn(4)) return given;
        given = model::Text(dice_.text(20));
        const auto room = static_cast<std::size_t>(stored.maxlength);
        stored.text = given.text.substr(0, room);
        tooLong_ = given.text.size() > room;
        return given;
    }

    void put(std::size_t i) {
        ModelArray& m = models_[i];
        const Subscripts at = someSubscripts(m);
        tooLong_ = false;
        ValueModel stored;
        OddValue v(someValue(stored));
        ArrayDescriptor* a = arrays_[i].get();
        if (dimensions_ == 1) ArrayPut(a, at[0], v.at(), v.kind());
        if (dimensions_ == 2) ArrayPut2(a, at[0], at[1], v.at(), v.kind());
        if (dimensions_ == 3) ArrayPut3(a, at[0], at[1], at[2], v.at(), v.kind());
        expected_ = accessError(m, at);
        if (expected_ != 0) return;
        m.elements[at] = stored;
        expected_ = tooLong_ ? ERR_FIXED_STRING : 0;
    }

    void get(std::size_t i) {
        const ModelArray& m = models_[i];
        const Subscripts at = someSubscripts(m);
        OddValue out(refilled(element_, dice_));
        const ArrayDescriptor* a = arrays_[i].get();
        if (dimensions_ == 1) ArrayGet(a, at[0], out.at(), out.kind());
        if (dimensions_ == 2) ArrayGet2(a, at[0], at[1], out.at(), out.kind());
        if (dimensions_ == 3) ArrayGet3(a, at[0], at[1], at[2], out.at(), out.kind());
        expected_ = accessError(m, at);
        ASSERT_EQ(model::Differs(expected_ == 0 ? m.elements.at(at) : element_, out.at()), "");
    }

    void redim(std::size_t i) {
        std::vector<ArrayBounds> bounds = someBounds();
        const bool preserve = dice_.oneIn(2), bad = dice_.oneIn(10);
        if (bad) bounds.back().upper = bounds.back().lower - 1;
        const std::vector<ArrayBounds> given = bounds;
        bounds.resize(MaxDimensions, {NO_DIMENSION, NO_DIMENSION});
        ArrayRedim(arrays_[i].get(), bounds[0].lower, bounds[0].upper, bounds[1].lower, bounds[1].upper,
                   bounds[2].lower, bounds[2].upper, preserve);
        if (!models_[i].dynamic)
            expected_ = ERR_ARRAY_REDIM;
        else if (bad)
            expected_ = ERR_ARRAY_TYPE;
        else
            reshape(models_[i], given, preserve);
    }

    void assign(std::size_t to, std::size_t from) {
        ArrayAssign(arrays_[to].get(), arrays_[from].get());
        ModelArray& dest = models_[to];
        const ModelArray src = models_[from];
        if (src.bounds.empty()) {
            expected_ = dest.bounds.empty() ? 0 : ERR_ARRAY_TYPE;
        } else if (dest.dynamic) {
            dest.bounds = src.bounds;
            dest.elements = src.elements;
        } else if (dest.elements.size() != src.elements.size()) {
            expected_ = ERR_FIXED_ARRAY;
        } else {
            auto next = src.elements.begin();
            for (auto& [at, value] : dest.elements) value = (next++)->second;
        }
        if (to != from) {
            ASSERT_EQ(model::Differs(whole(src), arrays_[from].get()), "");
        }
    }

    void literal(std::size_t i) {
        ModelArray& m = models_[i];
        const bool append = dice_.oneIn(2);
        const std::int32_t last = m.bounds.empty() ? 0 : m.bounds[0].upper;
        const std::int32_t at = dice_.between(last - 45, std::min(last + 2, 45));
        const ValueModel value = refilled(element_, dice_);
        OddValue v(value);
        ArrayAutoAssign(arrays_[i].get(), append, at, v.at(), v.kind());
        const bool inside = m.elements.count({at, 0, 0}) != 0;
        if (!inside && !m.dynamic) {
            expected_ = ERR_ARRAY_BOUNDS;
            return;
        }
        if (m.bounds.empty())
            reshape(m, {{at, at}}, false);
        else if (!inside)
            reshape(m, {{std::min(at, m.bounds[0].lower), std::max(at, m.bounds[0].upper)}}, append);
        m.elements[{at, 0, 0}] = value;
    }

    void clear(std::size_t i) {
        ModelArray& m = models_[i];
        AdtClear(arrays_[i].get(), KindArray);
        reshape(m, m.dynamic ? std::vector<ArrayBounds>{} : m.bounds, false);
    }

    Dice dice_;
    ValueModel element_;
    std::size_t dimensions_;
    std::array<ArrayValue, 3> arrays_;
    std::array<ModelArray, 3> models_;
    std::int32_t expected_ = 0;
    bool tooLong_ = false;
};

struct Element {
    std::string name;
    ValueModel model;
};

void PrintTo(const Element& element, std::ostream* out) {
    *out << element.name;
}

std::vector<Element> elements() {
    return {{"Integers", model::Number(KindInteger, 0)},
            {"Reals", model::Real(0)},
            {"Strings", model::Text("")},
            {"FixedStrings", model::Text("", 6)},
            {"Records", model::Record({model::Number(KindBoolean, 0), model::Text(""),
                                       model::Number(KindInteger, 0), model::Text("", 4)})}};
}

class RandomArrays : public Values, public ::testing::WithParamInterface<std::tuple<Element, bool>> {};
INSTANTIATE_TEST_SUITE_P(Of, RandomArrays,
                         ::testing::Combine(::testing::ValuesIn(elements()), ::testing::Bool()),
                         [](const auto& info) {
                             return std::get<0>(info.param).name + (std::get<1>(info.param) ? "Checked" : "");
                         });

TEST_P(RandomArrays, AgreeWithAMap) {
    const auto& [element, checking] = GetParam();
    SetMemoryChecking(checking);
    const int steps = checking ? 4000 : 14000;
    for (std::uint32_t dimensions = 1; dimensions <= 3; ++dimensions) {
        const std::uint32_t seed = 20080229 + dimensions;
        ArrayWorld world(seed, element.model, dimensions);
        for (int i = 0; i < steps; ++i) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(i));
            world.step();
            if (HasFatalFailure()) return;
        }
    }
}

// ---- records ----

bool sameFields(const ValueModel& a, const ValueModel& b) {
    return std::equal(a.parts.begin(), a.parts.end(), b.parts.begin(), b.parts.end(),
                      [](const ValueModel& x, const ValueModel& y) { return x.kind == y.kind; });
}

bool sameShape(const ValueModel& a, const ValueModel& b) {
    const auto all = [](const std::vector<ValueModel>& x, const std::vector<ValueModel>& y) {
        return std::equal(x.begin(), x.end(), y.begin(), y.end(), sameShape);
    };
    if (a.kind != b.kind || a.maxlength != b.maxlength || !all(a.element, b.element)) return false;
    if (a.kind == KindArray && a.maxlength == DYNAMIC_BOUNDS) return true;
    return std::memcmp(&a.bounds, &b.bounds, sizeof a.bounds) == 0 && all(a.parts, b.parts);
}

// What has no bounds goes only to what has none: a dynamic array somewhere in it.
bool lacksBounds(const ValueModel& m) {
    if (m.kind == KindArray && m.maxlength == DYNAMIC_BOUNDS && m.parts.empty()) return true;
    return std::any_of(m.parts.begin(), m.parts.end(), lacksBounds);
}

class RecordWorld {
public:
    explicit RecordWorld(std::uint32_t seed) : dice_(seed) {
        for (std::size_t i = 0; i < count; ++i) {
            models_[i] = model::Record({});
            model::Make(models_[i], records_[i].get());
        }
    }

    void step() {
        const std::size_t i = pick();
        // Now and then one that is full.
        const bool full = models_[i].parts.size() >= (i == 0 ? 48U : 9U);
        switch (dice_.below(full ? 13 : 12)) {
        case 0:
        case 1: append(i); break;
        case 2:
        case 3:
        case 4:
        case 5: put(i); break;
        case 6:
        case 7:
        case 8: get(i); break;
        case 9: copy(i, pick()); break;
        case 10: compare(i, pick()); break;
        case 11: putWrongly(i); break;
        default: start(i); break;
        }
        ASSERT_EQ(ErrorCell(), expected_);
        ClearError();
        expected_ = 0;
        if (i != 0 || dice_.oneIn(8)) {
            ASSERT_EQ(AdtCheck(records_[i].get(), KindRecord), "");
            ASSERT_EQ(model::Differs(models_[i], records_[i].get()), "");
        }
    }

private:
    static constexpr std::size_t count = 5;

    std::size_t pick() { return static_cast<std::size_t>(dice_.below(count)); }

    ValueModel someShape(std::int32_t depth) {
        switch (dice_.below(depth > 0 ? 11 : 7)) {
        case 0: return model::Number(KindBoolean, 0);
        case 1: return model::Number(KindEnum, 0);
        case 2: return model::Number(KindInteger, 0);
        case 3: return model::Number(KindFixed, 0);
        case 4: return model::Real(0);
        case 5: return model::Text("");
        case 6: return model::Text("", dice_.between(1, 9));
        case 7:
        case 8: {
            std::vector<ValueModel> fields;
            for (std::int32_t n = dice_.below(4); n >= 0; --n) fields.push_back(someShape(depth - 1));
            return model::Record(std::move(fields), dice_.oneIn(2) ? KindRecord : KindUnion);
        }
        case 9: {
            const std::int32_t lower = dice_.between(-2, 2);
            return model::Array({{lower, lower + dice_.below(3)}}, someShape(depth - 1));
        }
        default: return model::Array({}, someShape(depth - 1), {}, DYNAMIC_BOUNDS);
        }
    }

    // From 1 to one more than there are.
    std::int32_t someField(std::size_t i) {
        return dice_.between(1,
                             static_cast<std::int32_t>(models_[i].parts.size()) + (dice_.oneIn(10) ? 1 : 0));
    }
    [[nodiscard]] bool has(std::size_t i, std::int32_t n) const {
        return n <= static_cast<std::int32_t>(models_[i].parts.size());
    }
    ValueModel& field(std::size_t i, std::int32_t n) {
        return models_[i].parts[static_cast<std::size_t>(n - 1)];
    }

    void append(std::size_t i) {
        const ValueModel value = refilled(someShape(2), dice_);
        OddValue v(value);
        RecordAppend(records_[i].get(), v.at(), v.kind());
        if (models_[i].parts.size() == 48)
            expected_ = ERR_RECORD_TYPE;
        else
            models_[i].parts.push_back(value);
    }

    void put(std::size_t i) {
        if (models_[i].parts.empty()) return;
        const std::int32_t n = someField(i);
        const ValueModel value = refilled(has(i, n) ? field(i, n) : model::Text(""), dice_);
        OddValue v(value);
        RecordPut(records_[i].get(), n, v.at(), v.kind());
        if (has(i, n))
            field(i, n) = value;
        else
            expected_ = ERR_RECORD_TYPE;
    }

    void get(std::size_t i) {
        if (models_[i].parts.empty()) return;
        const std::int32_t n = someField(i);
        ValueModel before = refilled(has(i, n) ? field(i, n) : model::Text("", 5), dice_);
        if (has(i, n) && lacksBounds(field(i, n))) before = model::Emptied(before);
        OddValue out(before);
        RecordGet(records_[i].get(), n, out.at(), out.kind());
        expected_ = has(i, n) ? 0 : ERR_RECORD_TYPE;
        ASSERT_EQ(model::Differs(has(i, n) ? field(i, n) : model::Emptied(before), out.at()), "");
    }

    void putWrongly(std::size_t i) {
        if (models_[i].parts.empty()) return;
        const std::int32_t n = someField(i);
        OddValue v(refilled(someShape(1), dice_));
        if (!has(i, n))
            expected_ = ERR_RECORD_TYPE;
        else if (field(i, n).kind != v.kind())
            expected_ = ERR_COMPONENT_TYPE;
        else
            return;
        RecordPut(records_[i].get(), n, v.at(), v.kind());
    }

    // Over a record of other fields only after it was freed, which the copy alone refuses.
    void copy(std::size_t to, std::size_t from) {
        // That a value does not fit one of the same fields has errors of its own.
        if (sameFields(models_[to], models_[from]) && !sameShape(models_[to], models_[from])) return;
        if (to != from && lacksBounds(models_[from])) {
            AdtClear(records_[to].get(), KindRecord);
            models_[to] = model::Emptied(models_[to]);
        }
        const bool fresh = to != from && dice_.oneIn(2);
        if (fresh) RecordFree(records_[to].get());
        RecordCopy(records_[from].get(), records_[to].get());
        if (fresh || to == from) {
            models_[to] = models_[from];
            return;
        }
        if (sameShape(models_[to], models_[from]))
            models_[to] = models_[from];
        else
            expected_ = ERR_COMPONENT_TYPE;
    }

    // Beside a copy, with nothing or one thing changed.
    void compare(std::size_t i, std::size_t j) {
        ValueModel other = models_[i];
        const std::vector<ValueModel*> leaves = model::Leaves(other);
        const bool same = leaves.empty() || dice_.oneIn(2);
        if (!same)
            model::Change(
                *leaves[static_cast<std::size_t>(dice_.below(static_cast<std::int32_t>(leaves.size())))]);
        OddValue v(other);
        ASSERT_EQ(AdtCompare("EQ", records_[i].get(), v.at(), KindRecord), same);
        ASSERT_EQ(AdtCompare("NE", v.at(), records_[i].get(), KindRecord), !same);
        ASSERT_FALSE(AdtCompare("GE", v.at(), records_[i].get(), KindRecord));
        // Another shape may hold the same content.
        const bool equal = AdtCompare("EQ", records_[i].get(), records_[j].get(), KindRecord);
        ASSERT_NE(AdtCompare("NE", records_[i].get(), records_[j].get(), KindRecord), equal);
        if (sameShape(models_[i], models_[j])) {
            ASSERT_EQ(model::Differs(models_[i], records_[j].get()).empty(), equal);
        }
    }

    // Anew without fields, or empty in the same shape.
    void start(std::size_t i) {
        if (dice_.oneIn(3)) {
            AdtClear(records_[i].get(), KindRecord);
            models_[i] = model::Emptied(models_[i]);
            return;
        }
        RecordFree(records_[i].get());
        RecordInit(records_[i].get(), TagRecord, FieldKinds{});
        models_[i] = model::Record({});
    }

    Dice dice_;
    std::array<RecordValue, count> records_;
    std::array<ValueModel, count> models_;
    std::int32_t expected_ = 0;
};

class RandomRecords : public Values, public ::testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(Checking, RandomRecords, ::testing::Bool());

TEST_P(RandomRecords, AgreeWithTheirModels) {
    SetMemoryChecking(GetParam());
    const int steps = GetParam() ? 5000 : 20000;
    for (std::uint32_t seed = 1; seed <= 10; ++seed) {
        RecordWorld world(seed);
        for (int i = 0; i < steps; ++i) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(i));
            world.step();
            if (HasFatalFailure()) return;
        }
    }
}

}  // namespace
