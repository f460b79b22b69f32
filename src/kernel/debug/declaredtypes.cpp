// SPDX-License-Identifier: Apache-2.0
//
// A type's text is read by descent, as far as it goes: a text that was cut tells its first fields. A type that is named is
// put among the known ones before it is read, so that one that names itself ends.
#include "kernel/debug/declaredtypes.h"

#include "kernel/data/tab/tabular.h"
#include "kernel/debug/fieldnames.h"
#include "kernel/run/errorcell.h"
#include "kernel/text/numbers.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/process.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <deque>
#include <map>

namespace tarn {

namespace {

struct Symbol {
    std::string name, signature, sort, typeName, function;
    std::int32_t value = 0;
};
using Symbols = std::vector<Symbol>;

std::map<std::string, Symbols> symbolsOfClasses;        // by upper-cased names
std::map<std::string, const DeclaredType*> namedTypes;  // by class, point and name, upper-cased
std::deque<DeclaredType> types;

// ---- symbol files ----

std::string symbolFile(std::string_view className, std::string_view sourcePath) {
    const std::string beside = os::native(std::string(paths::withoutExtension(sourcePath)) + ".sym");
    if (os::sizeOf(beside) >= 0) return beside;
    return os::executableFolder() + std::string(className) + ".sym";
}

void takeCell(Symbol& symbol, std::int32_t column, std::string_view cell) {
    switch (column) {
    case 1: symbol.name = cell; break;
    case 3: symbol.signature = cell; break;
    case 4: symbol.sort = cell; break;
    case 16: symbol.typeName = cell; break;
    case 18: {
        bool ok = false;
        IntegerFromWholeText(cell, symbol.value, ok);
        break;
    }
    case 19: symbol.function = cell; break;
    default: break;
    }
}

Symbols readSymbols(const std::string& file) {
    const ErrorCellAside aside;
    Symbols symbols;
    std::int32_t last = 0;
    static_cast<void>(
        TabVisitCells(file, DataOptions(), [&](std::int32_t row, std::int32_t column, std::string_view cell) {
            if (row != last) symbols.emplace_back();
            last = row;
            takeCell(symbols.back(), column, cell);
        }));
    return symbols;
}

const ClassEntry* classNamed(std::string_view className) {
    for (std::int32_t i = 0; classTable != nullptr && i < classTable->count; ++i)
        if (ascii::equal(classTable->entries[i].className, className)) return &classTable->entries[i];
    return nullptr;
}

const Symbols& symbolsOf(std::string_view className) {
    const auto [place, isNew] = symbolsOfClasses.try_emplace(ascii::uppered(className));
    if (!isNew) return place->second;
    const ClassEntry* const entry = classNamed(className);
    place->second = readSymbols(symbolFile(className, entry != nullptr ? entry->sourcePath : ""));
    return place->second;
}

const Symbol* symbolNamed(const Symbols& symbols, std::string_view sort, std::string_view name) {
    const auto found = std::find_if(symbols.begin(), symbols.end(), [=](const Symbol& symbol) {
        return symbol.sort == sort && ascii::equal(symbol.name, name);
    });
    return found != symbols.end() ? &*found : nullptr;
}

// In the class itself, then in the others; `className` becomes the one that has it.
const Symbol* symbolAnywhere(std::string& className, std::string_view sort, std::string_view name) {
    if (const Symbol* const own = symbolNamed(symbolsOf(className), sort, name)) return own;
    for (std::int32_t i = 0; classTable != nullptr && i < classTable->count; ++i) {
        const std::string other = classTable->entries[i].className;
        const Symbol* const found = symbolNamed(symbolsOf(other), sort, name);
        if (found == nullptr) continue;
        className = other;
        return found;
    }
    return nullptr;
}

// ---- texts of types ----

const DeclaredType* typeNamed(std::string className, std::string_view name);

class TypeReader {
public:
    TypeReader(std::string_view text, std::string_view className) : rest_(text), className_(className) {}

    const DeclaredType* type() {
        const std::string name = ascii::lowered(word());
        if (name == "external") return type();
        if (name == "record" || name == "union") return record();
        if (name == "array" || name == "list" || name == "table") return elements();
        skipBrackets('[', ']');
        if (name == "enum") skipBrackets('(', ')');
        return name.empty() || isPlain(name) ? nullptr : named(name);
    }

private:
    static bool isPlain(std::string_view name) {
        constexpr std::string_view plain[] = {"boolean", "integer", "fixed", "real", "string", "enum", "set"};
        return std::find(std::begin(plain), std::end(plain), name) != std::end(plain);
    }
    const DeclaredType* named(const std::string& name) {
        if (!take('.')) return typeNamed(className_, name);
        const std::string inClass(word());
        skipBrackets('[', ']');
        return typeNamed(name, inClass);
    }
    const DeclaredType* elements() {
        skipBrackets('[', ']');
        if (!ascii::equal(word(), "of")) return nullptr;
        const DeclaredType* const element = type();
        while (ascii::equal(peek(), "index")) skipIndex();
        if (element == nullptr) return nullptr;
        types.push_back({{}, {}, element});
        return &types.back();
    }
    void skipIndex() {
        word();
        if (!peek().empty()) word();
        skipBrackets('(', ')');
    }
    const DeclaredType* record() {
        DeclaredType made;
        while (!peek().empty() && !ascii::equal(peek(), "end")) {
            std::vector<std::string> names;
            do names.emplace_back(word());
            while (take(','));
            if (!take(':')) break;
            const DeclaredType* const one = type();
            for (std::string& name : names) {
                made.fields.push_back(std::move(name));
                made.fieldTypes.push_back(one);
            }
        }
        word();
        word();
        types.push_back(std::move(made));
        return &types.back();
    }

    void skipBlanks() {
        while (!rest_.empty() && ascii::isSpace(rest_.front())) rest_.remove_prefix(1);
    }
    bool take(char sign) {
        skipBlanks();
        if (!rest_.starts_with(sign)) return false;
        rest_.remove_prefix(1);
        return true;
    }
    void skipBrackets(char open, char close) {
        if (!take(open)) return;
        const std::size_t end = rest_.find(close);
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    }
    std::string_view peek() {
        skipBlanks();
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), ascii::isSymbol);
        return rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
    }
    std::string_view word() {
        const std::string_view found = peek();
        rest_.remove_prefix(found.size());
        return found;
    }

    std::string_view rest_;
    std::string className_;
};

const DeclaredType* typeIn(std::string_view signature, std::string_view className) {
    const std::size_t colon = signature.find(':');
    return colon == std::string_view::npos ? nullptr
                                           : TypeReader(signature.substr(colon + 1), className).type();
}

const DeclaredType* typeNamed(std::string className, std::string_view name) {
    const Symbol* const symbol = symbolAnywhere(className, "type", name);
    if (symbol == nullptr) return nullptr;
    const auto [place, isNew] = namedTypes.try_emplace(ascii::uppered(className + "." + symbol->name));
    if (isNew) place->second = typeIn(symbol->signature, className);
    return place->second;
}

const Symbol* variableSymbol(const Symbols& symbols, std::string_view function, std::string_view name) {
    const auto isOf = [name](const Symbol& symbol, std::string_view owner) {
        return symbol.sort == "variable" && ascii::equal(symbol.function, owner) &&
               ascii::equal(symbol.name, name);
    };
    for (const std::string_view owner : {function, std::string_view()}) {
        const auto found = std::find_if(symbols.begin(), symbols.end(),
                                        [&](const Symbol& symbol) { return isOf(symbol, owner); });
        if (found != symbols.end()) return &*found;
    }
    return nullptr;
}

bool isWholeNumber(const Symbol& symbol) {
    constexpr std::string_view others[] = {"boolean", "fixed", "real",  "string", "record",
                                           "union",   "set",   "array", "list",   "table"};
    return std::none_of(std::begin(others), std::end(others),
                        [&](std::string_view other) { return ascii::equal(symbol.typeName, other); });
}

}  // namespace

std::int32_t FieldNumber(const DeclaredType& type, std::string_view name) {
    for (std::size_t i = 0; i < type.fields.size(); ++i)
        if (ascii::equal(type.fields[i], name)) return static_cast<std::int32_t>(i) + 1;
    return 0;
}

const DeclaredType* FindDeclaredType(const FrameRecord& frame, std::string_view variable,
                                     DeclaredTypeOfVariable& kept) {
    if (kept.className == frame.className() && kept.functionName == frame.functionName()) return kept.type;
    kept = {frame.className(), frame.functionName(), nullptr};
    const Symbol* const symbol = variableSymbol(symbolsOf(kept.className), kept.functionName, variable);
    if (symbol != nullptr) kept.type = typeIn(symbol->signature, kept.className);
    return kept.type;
}

namespace {

// Told names are program text, so that their place tells them apart.
std::map<const char*, const DeclaredType*> toldTypes;

const DeclaredType* typeOfNames(std::string_view names) {
    if (names.empty()) return nullptr;
    DeclaredType& type = types.emplace_back();
    type.element = typeOfNames(ElementNames(names));
    for (std::int32_t number = 1; !FieldName(names, number).empty(); ++number) {
        type.fields.emplace_back(FieldName(names, number));
        type.fieldTypes.push_back(typeOfNames(FindField(names, type.fields.back()).names));
    }
    return &type;
}

}  // namespace

const DeclaredType* FindTypeOfVariable(const FrameRecord& frame, const VariableEntry& entry,
                                       DeclaredTypeOfVariable& kept) {
    const std::string_view names = FieldNames(entry);
    if (names.empty()) return FindDeclaredType(frame, entry.name, kept);
    const auto [place, isNew] = toldTypes.try_emplace(names.data());
    if (isNew) place->second = typeOfNames(names);
    return place->second;
}

bool FindDeclaredConstant(const FrameRecord& frame, std::string_view name, std::int32_t& value) {
    std::string className = frame.className();
    const Symbol* const symbol = symbolAnywhere(className, "const", name);
    if (symbol == nullptr || !isWholeNumber(*symbol)) return false;
    value = symbol->value;
    return true;
}

void ForgetDeclaredTypes() {
    symbolsOfClasses.clear();
    namedTypes.clear();
    toldTypes.clear();
    types.clear();
}

}  // namespace tarn
