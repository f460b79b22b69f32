// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/symfile.h"

#include <array>

namespace tarn::toolchain {
namespace {

constexpr std::size_t MostSignature = 657, MostDisambig = 94;

Symbol symbolOf(const Declaration& item, const char* sort, int scope) {
    Symbol symbol;
    symbol.name = item.name;
    symbol.scope = scope;
    symbol.sort = sort;
    symbol.signature = item.signature.substr(0, MostSignature);
    symbol.decline = item.line;
    symbol.impline = item.function ? item.function->bodyLine : item.line;
    symbol.useline = item.useLine;
    symbol.classname = item.owner->name;
    if (item.kind == DeclarationKind::Window) {
        symbol.name = item.window;
        symbol.signature = item.control;
        symbol.typeName = item.controlType;
        if (item.upper >= item.lower) symbol.bounds = {item.lower, item.upper};
        return symbol;
    }
    const Type& type = *(item.function ? item.function->result : item.type);
    const TypeNode* node = item.function ? item.function->resultNode.get() : item.typeNode.get();
    const bool isNamed = node != nullptr && node->kind == Kind::None && item.kind != DeclarationKind::Type;
    if (type.kind != Kind::None) symbol.typeName = isNamed ? node->name : kindName(type.kind);
    if (type.length != Unbounded) symbol.bounds[0] = type.length;
    for (std::size_t i = 0; i < type.bounds.size(); ++i) {
        symbol.bounds[2 * i] = type.bounds[i].lower;
        symbol.bounds[2 * i + 1] = type.bounds[i].upper;
    }
    if (item.function)
        for (const auto& parameter : item.function->parameters)
            symbol.disambig +=
                (symbol.disambig.empty() ? "" : ",") + std::string(kindName(parameter->type->kind));
    symbol.disambig = symbol.disambig.substr(0, MostDisambig);
    if (item.value && item.value->kind != Kind::String)
        symbol.constvalue = static_cast<std::int32_t>(item.value->number);
    return symbol;
}

void addLocals(const Declaration& item, std::vector<Symbol>& symbols) {
    for (const auto* list : {&item.function->parameters, &item.function->variables})
        for (const auto& local : *list) {
            symbols.push_back(symbolOf(*local, "variable", 3));
            symbols.back().signature = local->name + " : " + symbols.back().typeName;
            symbols.back().comment = item.name;
        }
}

std::string record(const Symbol& symbol) {
    std::string line;
    const auto text = [&line](const std::string& cell) {
        line += (line.empty() ? "" : ",") + quotedCell(cell);
    };
    const auto number = [&line](int cell) { line += "," + std::to_string(cell); };
    text(symbol.name);
    number(symbol.scope);
    text(symbol.signature);
    text(symbol.sort);
    for (const int cell : {symbol.decline, symbol.impline, symbol.useline}) number(cell);
    text(symbol.classname);
    for (const int cell : symbol.bounds) number(cell);
    text(symbol.disambig);
    text(symbol.typeName);
    number(symbol.compno);
    number(symbol.constvalue);
    text(symbol.comment);
    return line + "\n";
}

Symbol special(const ClassTree& tree, const char* name, std::string comment) {
    Symbol symbol;
    symbol.name = symbol.sort = name;
    symbol.scope = 2;
    symbol.classname = tree.name;
    symbol.comment = std::move(comment);
    return symbol;
}

}  // namespace

std::string quotedCell(std::string_view text) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string result = "\"";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"')
            result += "\"\"";
        else if (c == '\\')
            result += "\\\\";
        else if (c == '\t')
            result += "\\t";
        else if (c == '\n')
            result += "\\n";
        else if (c == '\r')
            result += "\\r";
        else if (code >= 32 && code < 127)
            result += c;
        else
            result.append("\\x").append(1, Digits[code >> 4]).append(1, Digits[code & 15]);
    }
    return result + "\"";
}

std::vector<Symbol> symbolsOf(const ClassTree& tree) {
    std::vector<Symbol> symbols;
    Symbol self;
    self.name = self.classname = tree.name;
    self.sort = "class";
    self.decline = self.impline = tree.line;
    symbols.push_back(self);
    for (const auto& item : tree.declarations) {
        static constexpr std::array<const char*, 7> Sorts = {
            "const", "type", "variable", "variable", "variable", "function", "visualobject"};
        symbols.push_back(
            symbolOf(*item, Sorts[static_cast<std::size_t>(item->kind)], item->isPublic ? 1 : 2));
        if (item->function) addLocals(*item, symbols);
    }
    return symbols;
}

std::string codeLineBitmap(const std::vector<bool>& codeLines) {
    std::string bitmap(CodeLineBytes, '\0');
    for (std::size_t line = 1; line < codeLines.size() && line <= CodeLineBytes * 8; ++line)
        if (codeLines[line])
            bitmap[(line - 1) / 8] = static_cast<char>(bitmap[(line - 1) / 8] | (1 << ((line - 1) % 8)));
    return bitmap;
}

std::string symbolFile(const ClassTree& tree, std::string_view options, const std::vector<bool>& codeLines) {
    std::string text;
    for (const Symbol& symbol : symbolsOf(tree)) text += record(symbol);
    text += record(special(tree, "program", std::string(options.substr(0, 1000))));
    return text + record(special(tree, "debug", codeLineBitmap(codeLines)));
}

}  // namespace tarn::toolchain
