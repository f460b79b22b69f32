// SPDX-License-Identifier: Apache-2.0
//
// The lines that need a look: each class that has one has a map of its lines, and each frame remembers the number of its
// class here, so that a stamp tests one bit. Breakpoints and rules change seldom; then all of it is made anew, and no
// frame remembers anything.
#include "kernel/debug/engine_internal.h"
#include "kernel/debug/pointrule_internal.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <array>
#include <memory>

namespace tarn::debug {

namespace {

struct Point {
    std::int32_t line = 0;
    bool runTo = false;  // it stops once, whatever the rule says
    bool breakpoint = false;
    PointRule* rule = nullptr;  // null: each time
};

// Bit 0 stands for all lines beyond the others.
class LineMap {
public:
    void add(std::int32_t line) {
        const std::size_t bit = bitOf(line);
        words_[bit / 64] |= std::uint64_t{1} << (bit % 64);
    }
    [[nodiscard]] bool has(std::int32_t line) const {
        const std::size_t bit = bitOf(line);
        return ((words_[bit / 64] >> (bit % 64)) & 1) != 0;
    }

private:
    static std::size_t bitOf(std::int32_t line) {
        return line >= 1 && line <= MaxCodeLine ? static_cast<std::size_t>(line) : 0;
    }
    std::array<std::uint64_t, MaxCodeLine / 64 + 1> words_{};
};

struct ArmedClass {
    std::string name;
    LineMap map;
    std::vector<Point> points;  // by line
};

constexpr std::int16_t NoClass = -1;

// Finds the numbers of classes by their names, in any case. Twice as many places as there can be classes.
class NameTable {
public:
    void clear() { places_.fill(0); }
    // The place of the name, or the free one where it belongs.
    [[nodiscard]] std::int16_t& place(std::string_view name, const std::vector<ArmedClass>& classes) {
        std::uint32_t hash = 2166136261U;
        for (const char c : name) hash = (hash ^ static_cast<unsigned char>(ascii::upper(c))) * 16777619U;
        std::size_t at = hash % Places;
        while (places_[at] != 0 &&
               !ascii::equal(classes[static_cast<std::size_t>(places_[at] - 1)].name, name))
            at = (at + 1) % Places;
        return places_[at];
    }

private:
    static constexpr std::size_t Places = 512;
    static_assert(Places > 2 * (MaxBreakpoints + 1));
    std::array<std::int16_t, Places> places_{};
};

std::vector<ArmedClass> armed;
NameTable names;
std::vector<std::unique_ptr<PointRule>> rules;
std::string runToClass;
std::int32_t runToLine = 0;

FrameRecord* topFrame() {
    return const_cast<FrameRecord*>(TopFrame());  // the stack is the run-time's own, and may be written
}

Point& pointAt(std::string_view className, std::int32_t line) {
    std::int16_t& number = names.place(className, armed);
    if (number == 0) {
        armed.push_back({std::string(className), {}, {}});
        number = static_cast<std::int16_t>(armed.size());
    }
    ArmedClass& one = armed[static_cast<std::size_t>(number - 1)];
    one.map.add(line);
    const auto at =
        std::lower_bound(one.points.begin(), one.points.end(), line,
                         [](const Point& point, std::int32_t wanted) { return point.line < wanted; });
    if (at != one.points.end() && at->line == line) return *at;
    return *one.points.insert(at, Point{line, false, false, nullptr});
}

// A rule that is as it was goes on counting.
std::unique_ptr<PointRule> ruleFor(const DebugRule& rule) {
    for (std::unique_ptr<PointRule>& one : rules)
        if (one != nullptr && one->rule() == rule) return std::move(one);
    return std::make_unique<PointRule>(rule);
}

void armBreakpoints() {
    std::vector<std::unique_ptr<PointRule>> kept;
    const std::int32_t count = engine.breakpoints != nullptr ? engine.breakpoints->count : 0;
    for (std::int32_t i = 0; i < count; ++i) {
        const BreakpointEntry& entry = engine.breakpoints->entries[i];
        if (IsLeftOut(entry.className)) continue;
        Point& point = pointAt(entry.className, entry.line);
        point.breakpoint = true;
        const DebugRule* const rule = FindDebugRule(engine.rules, entry.className, entry.line);
        if (rule == nullptr) continue;
        kept.push_back(ruleFor(*rule));
        point.rule = kept.back().get();
    }
    rules = std::move(kept);
}

void forgetClasses() {
    if (frameStack == nullptr) return;
    for (FrameRecord& frame : frameStack->frames)
        if (!frame.ofRuntime()) frame.debugClass = 0;
}

const ArmedClass* armedClassHere() {
    FrameRecord* const top = topFrame();
    if (top == nullptr) return nullptr;
    if (top->debugClass == 0) {
        const std::int16_t number = armed.empty() ? std::int16_t{0} : names.place(top->className(), armed);
        top->debugClass = number != 0 ? number : NoClass;
    }
    return top->debugClass > 0 ? &armed[static_cast<std::size_t>(top->debugClass - 1)] : nullptr;
}

}  // namespace

bool IsLeftOut(std::string_view className) {
    return std::any_of(engine.leftOut.begin(), engine.leftOut.end(),
                       [className](const std::string& name) { return ascii::equal(name, className); });
}

void ArmPoints() {
    armed.clear();
    names.clear();
    forgetClasses();
    armBreakpoints();
    if (!runToClass.empty()) pointAt(runToClass, runToLine).runTo = true;
}

void DropPoints() {
    armed.clear();
    names.clear();
    rules.clear();
    runToClass.clear();
    forgetClasses();
}

void RunTo(std::string_view className, std::int32_t line) {
    if (className.empty() && runToClass.empty()) return;
    runToClass = std::string(className);
    runToLine = line;
    ArmPoints();
}

void SettleRunTo(std::string_view className) {
    if (runToClass.empty() || !ascii::equal(runToClass, className) || LineHasCode(className, runToLine))
        return;
    const std::int32_t next = NextCodeLine(className, runToLine);
    if (next != 0) RunTo(runToClass, next);
}

bool IsArmedHere() {
    const ArmedClass* const one = armedClassHere();
    return one != nullptr && one->map.has(tarn_current_line);
}

bool StopsHere(std::string& fault) {
    const ArmedClass* const one = armedClassHere();
    if (one == nullptr) return false;
    const auto at =
        std::lower_bound(one->points.begin(), one->points.end(), tarn_current_line,
                         [](const Point& point, std::int32_t wanted) { return point.line < wanted; });
    if (at == one->points.end() || at->line != tarn_current_line) return false;
    const bool stops = at->breakpoint && (at->rule == nullptr || at->rule->stops(FrameCount(), fault));
    return stops || at->runTo;
}

}  // namespace tarn::debug
