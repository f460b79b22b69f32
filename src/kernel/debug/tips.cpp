// SPDX-License-Identifier: Apache-2.0
//
// The tip over a name in the source that the debugger's list shows.
#include "kernel/debug/declaredconstants.h"
#include "kernel/debug/engine_internal.h"
#include "kernel/debug/expression.h"
#include "kernel/debug/framevariables.h"
#include "kernel/debug/sourcename.h"
#include "kernel/debug/valuedump_internal.h"
#include "kernel/run/errorcell.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <optional>

namespace tarn::debug {

namespace {

// "blue : Enum = 2": what a constant is cannot be seen by its value.
std::string constantTip(const std::string& name) {
    const DeclaredConstant* const constant = FindDeclaredConstant(engine.shownClass, name);
    if (constant == nullptr) return {};
    std::string type = constant->typeName;
    const bool hex = ascii::equal(type, "integer") && ShowsIntegersInHex();
    if (!type.empty()) type[0] = ascii::upper(type[0]);
    return name + (type.empty() ? "" : " : ") + type + " = " +
           OneLineValue(&constant->value, KindInteger, hex);
}

// The variable that a name begins with, if it is one of the chosen frame: in another function, or another class, the same
// name is another variable.
bool isOfFrame(std::string_view name, std::int32_t line) {
    if (!ascii::equal(engine.shownClass, ClassOf(engine.frame))) return false;
    const auto end = std::find_if_not(name.begin(), name.end(), ascii::isSymbol);
    const auto length = static_cast<std::size_t>(end - name.begin());
    const VariableEntry* const entry = FindVariable(VariablesOf(engine.frame), name.substr(0, length));
    constexpr char ofClass = 'C';
    return entry != nullptr &&
           (entry->role == ofClass ||
            FunctionStart(engine.shownClass, line) == FunctionStart(engine.shownClass, LineOf(engine.frame)));
}

}  // namespace

std::string TipFor(std::string_view source, std::int32_t line) {
    const std::string name(SourceNameAtEnd(source));
    if (engine.mode != ListMode::Code || name.empty()) return {};
    const ErrorCellAside aside;
    if (!isOfFrame(name, line)) return constantTip(name);
    std::string error;
    const auto expression = DebugExpression::compile(name, error);
    const auto value =
        expression != nullptr ? expression->value(engine.frame, ShowsIntegersInHex()) : std::nullopt;
    return value ? name + " = " + *value : "";
}

}  // namespace tarn::debug
