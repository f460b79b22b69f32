// SPDX-License-Identifier: Apache-2.0
// Expressions of the debugger: any text compiles, or is refused with a reason; what compiled can be evaluated in any
// frame, leaves the pending error and leaks nothing.
#include "kernel/debug/expression.h"
#include "kernel/lists/lists.h"
#include "kernel/run/state.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace tarn;

void require(bool holds) {
    if (!holds) std::abort();
}

// A frame with a variable of nearly every kind.
struct Program {
    Program() {
        static FrameStack frames{};
        static VariableTable table{};
        frameStack = &frames;
        variableTable = &table;
        FunctionEnter("Main", "work", 1);
        StringAssignView(text.get(), "abc");
        SetInit(set.get(), 1, 20);
        SetInclude(3, set.get());
        ArrayInit(array.get(), KindInteger, -1, 1, 0, 1, NO_DIMENSION, NO_DIMENSION, nullptr);
        ListInit(list.get(), UNBOUNDED, text.get(), KindString, false);
        ListAppend(text.get(), KindString, list.get());
        RegisterVariable("b", 'V', KindBoolean, &truth);
        RegisterVariable("i", 'V', KindInteger, &number);
        RegisterVariable("f", 'V', KindFixed, &fixed);
        RegisterVariable("r", 'V', KindReal, &real);
        RegisterVariable("s", 'V', KindString, text.get());
        RegisterVariable("set", 'V', KindSet, set.get());
        RegisterVariable("a", 'V', KindArray, array.get());
        RegisterVariable("l", 'V', KindList, list.get());
    }
    std::uint8_t truth = 1;
    std::int32_t number = 7;
    std::int64_t fixed = 12500;
    double real = 0.5;
    String text;
    OwnedSet set;
    ArrayValue array;
    ListValue list;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Program program;
    const auto blocks = LiveBlocks();
    {
        std::string error;
        const auto expression = DebugExpression::compile({reinterpret_cast<const char*>(data), size}, error);
        require((expression == nullptr) == !error.empty());
        constexpr std::int32_t pending = 603;
        SetError(pending);
        for (std::int32_t frame = 0; frame <= 2 && expression != nullptr; ++frame) {
            const std::string value = expression->text(frame, false);
            require(!value.empty());
            const bool holds = expression->holds(frame);
            require(holds == (value != "False"));
        }
        require(ErrorCell() == pending);
        ClearError();
    }
    require(LiveBlocks() == blocks);
    return 0;
}
