// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/declaredconstants.h"

#include "kernel/data/tab/tabular.h"
#include "kernel/debug/codelines.h"
#include "kernel/debug/symboltext.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/state.h"
#include "kernel/text/numbers.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <map>
#include <string>

namespace tarn {

namespace {

using Constants = std::map<std::string, std::int32_t>;  // by upper-cased names
std::map<std::string, Constants> constantsOfClasses;    // likewise

// Takes the constants that are whole numbers out of the cells of a symbol file.
class ConstantReader {
public:
    void take(std::int32_t row, std::int32_t column, std::string_view cell) {
        if (row != row_) isConstant_ = false;
        row_ = row;
        if (column == SymbolName) name_ = ascii::uppered(cell);
        if (column == SymbolSort) isConstant_ = cell == "const";
        if (column == SymbolTypeName) isConstant_ = isConstant_ && isWhole(cell);
        if (column != SymbolValue || !isConstant_) return;
        std::int32_t value = 0;
        bool ok = false;
        IntegerFromWholeText(cell, value, ok);
        if (ok) constants_.emplace(name_, value);
    }
    Constants& constants() { return constants_; }

private:
    // Enums have names of their own as their types.
    static bool isWhole(std::string_view typeName) {
        constexpr std::string_view others[] = {"boolean", "fixed", "real",  "string", "record",
                                               "union",   "set",   "array", "list",   "table"};
        return std::none_of(std::begin(others), std::end(others),
                            [=](std::string_view other) { return ascii::equal(typeName, other); });
    }
    std::int32_t row_ = 0;
    std::string name_;
    bool isConstant_ = false;
    Constants constants_;
};

std::string_view sourceOf(std::string_view className) {
    for (std::int32_t i = 0; classTable != nullptr && i < classTable->count; ++i)
        if (ascii::equal(classTable->entries[i].className, className))
            return classTable->entries[i].sourcePath;
    return {};
}

const Constants& constantsOf(std::string_view className) {
    const auto [place, isNew] = constantsOfClasses.try_emplace(ascii::uppered(className));
    const std::string file = isNew ? SymbolFileOf(className, sourceOf(className)) : std::string();
    if (file.empty()) return place->second;
    const ErrorCellAside aside;
    ConstantReader reader;
    static_cast<void>(
        TabVisitCells(file, DataOptions(), [&](std::int32_t row, std::int32_t column, std::string_view cell) {
            reader.take(row, column, cell);
        }));
    place->second = std::move(reader.constants());
    return place->second;
}

}  // namespace

std::optional<std::int32_t> FindDeclaredConstant(std::string_view className, std::string_view name) {
    const std::string wanted = ascii::uppered(name);
    const auto in = [&](std::string_view owner) -> std::optional<std::int32_t> {
        const Constants& constants = constantsOf(owner);
        const auto found = constants.find(wanted);
        if (found == constants.end()) return std::nullopt;
        return found->second;
    };
    std::optional<std::int32_t> value = in(className);
    for (std::int32_t i = 0; !value && classTable != nullptr && i < classTable->count; ++i)
        value = in(classTable->entries[i].className);
    return value;
}

void ForgetDeclaredConstants() {
    constantsOfClasses.clear();
}

}  // namespace tarn
