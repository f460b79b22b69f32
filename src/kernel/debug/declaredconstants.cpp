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
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace tarn {

namespace {

struct Declared {
    std::map<std::string, DeclaredConstant> constants;  // by upper-cased names
    std::set<std::int32_t> functions;                   // the lines where their bodies begin
};
std::map<std::string, Declared> declaredByClasses;  // by upper-cased names

// Takes the constants that are whole numbers, and the functions, out of the cells of a symbol file.
class SymbolReader {
public:
    void take(std::int32_t row, std::int32_t column, std::string_view cell) {
        if (row != row_) sort_ = Sort::Other;
        row_ = row;
        switch (column) {
        case SymbolName: name_ = ascii::uppered(cell); break;
        case SymbolSort:
            sort_ = cell == "const" ? Sort::Constant : cell == "function" ? Sort::Function : Sort::Other;
            break;
        case SymbolBodyLine:
            if (sort_ == Sort::Function) addFunction(cell);
            break;
        case SymbolTypeName: typeName_ = cell; break;
        case SymbolValue:
            if (sort_ == Sort::Constant && isWhole(typeName_)) addConstant(cell);
            break;
        default: break;
        }
    }
    Declared& declared() { return declared_; }

private:
    enum class Sort { Constant, Function, Other };

    void addFunction(std::string_view cell) {
        std::int32_t line = 0;
        bool ok = false;
        IntegerFromWholeText(cell, line, ok);
        if (ok) declared_.functions.insert(line);
    }
    void addConstant(std::string_view cell) {
        std::int32_t value = 0;
        bool ok = false;
        IntegerFromWholeText(cell, value, ok);
        if (ok) declared_.constants.emplace(name_, DeclaredConstant{value, typeName_});
    }
    // Enums have names of their own as their types.
    static bool isWhole(std::string_view typeName) {
        constexpr std::string_view others[] = {"boolean", "fixed", "real",  "string", "record",
                                               "union",   "set",   "array", "list",   "table"};
        return std::none_of(std::begin(others), std::end(others),
                            [=](std::string_view other) { return ascii::equal(typeName, other); });
    }
    std::int32_t row_ = 0;
    Sort sort_ = Sort::Other;
    std::string name_, typeName_;
    Declared declared_;
};

std::string_view sourceOf(std::string_view className) {
    for (std::int32_t i = 0; classTable != nullptr && i < classTable->count; ++i)
        if (ascii::equal(classTable->entries[i].className, className))
            return classTable->entries[i].sourcePath;
    return {};
}

const Declared& declaredBy(std::string_view className) {
    const auto [place, isNew] = declaredByClasses.try_emplace(ascii::uppered(className));
    const std::string file = isNew ? SymbolFileOf(className, sourceOf(className)) : std::string();
    if (file.empty()) return place->second;
    const ErrorCellAside aside;
    SymbolReader reader;
    static_cast<void>(
        TabVisitCells(file, DataOptions(), [&](std::int32_t row, std::int32_t column, std::string_view cell) {
            reader.take(row, column, cell);
        }));
    place->second = std::move(reader.declared());
    return place->second;
}

}  // namespace

const DeclaredConstant* FindDeclaredConstant(std::string_view className, std::string_view name) {
    const std::string wanted = ascii::uppered(name);
    const auto in = [&](std::string_view owner) -> const DeclaredConstant* {
        const auto& constants = declaredBy(owner).constants;
        const auto found = constants.find(wanted);
        return found != constants.end() ? &found->second : nullptr;
    };
    const DeclaredConstant* found = in(className);
    for (std::int32_t i = 0; found == nullptr && classTable != nullptr && i < classTable->count; ++i)
        found = in(classTable->entries[i].className);
    return found;
}

std::int32_t FunctionStart(std::string_view className, std::int32_t line) {
    const std::set<std::int32_t>& functions = declaredBy(className).functions;
    const auto behind = functions.upper_bound(line);
    return behind != functions.begin() ? *std::prev(behind) : 0;
}

void ForgetDeclaredConstants() {
    declaredByClasses.clear();
}

}  // namespace tarn
