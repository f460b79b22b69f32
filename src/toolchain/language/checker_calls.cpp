// SPDX-License-Identifier: Apache-2.0
//
// Calls of functions of classes and of the library. One name may have several forms: the one is taken that the
// arguments fit with the fewest conversions; the first of those that are equal.
#include "os/text/ascii.h"
#include "toolchain/language/checker_internal.h"
#include "toolchain/language/constants.h"
#include "toolchain/language/hints.h"
#include "toolchain/language/library.h"

#include <algorithm>
#include <array>

namespace tarn::toolchain {
namespace {

constexpr int Never = 1000;

const std::vector<std::unique_ptr<Declaration>>& parametersOf(const Declaration& form) {
    return form.function->parameters;
}

const std::string& partOf(const Declaration& parameter) {
    static const std::string None;
    return parameter.typeNode ? parameter.typeNode->partOf : None;
}

// The name of an index of a table that is another argument.
bool isIndexName(const Declaration& parameter) {
    return parameter.type->kind == Kind::Integer && !partOf(parameter).empty();
}

bool takesAggregate(const Type& type, std::size_t count) {
    if (type.kind == Kind::Adt || type.isOpen) return true;
    if (isRecord(type.kind)) return type.fields.size() == count;
    return type.kind == Kind::Array || type.kind == Kind::List || type.kind == Kind::Table;
}

int costOfFit(Fit fit, const Type* from, const Type* to) {
    switch (fit) {
    case Fit::Same: return 0;
    case Fit::Open: return to->kind == Kind::Adt ? 2 : 1;
    case Fit::Convert: return static_cast<int>(to->kind) - static_cast<int>(from->kind);
    case Fit::None: break;
    }
    return Never;
}

// A change of its elements, which `for each` over the value cannot bear.
bool changesElements(const Declaration& form) {
    static constexpr auto Names = std::to_array<std::string_view>(
        {"listadd", "listinsert", "listdelete", "listclear", "listsort", "tabadd", "tabdelete", "tabclear",
         "tabrebuild", "redim", "setinclude", "setexclude", "setclear", "setvalue", "strsplit", "open",
         "close", "tabopen", "tabclose"});
    return std::find(Names.begin(), Names.end(), ascii::lowered(form.name)) != Names.end();
}

std::string kindText(const Declaration& parameter) {
    const Kind kind = parameter.type->kind;
    if (kind == Kind::Record && parameter.typeNode && !parameter.typeNode->name.empty())
        return parameter.typeNode->name;
    return kind == Kind::Adt ? "any value" : kindName(kind);
}

// "STRFIND(string, string)"
std::string formText(const std::string& name, const Declaration& form) {
    static constexpr const char* Modes[] = {"", "out ", "inout "};
    std::string text;
    for (const auto& parameter : parametersOf(form))
        text +=
            (text.empty() ? "" : ", ") + (Modes[static_cast<int>(parameter->mode)] + kindText(*parameter));
    return name + "(" + text + ")";
}

// The forms with as many arguments as the call has; all of them if there are none.
std::string formTexts(const std::string& name, const Declaration& first, std::size_t arguments) {
    constexpr int Most = 5;
    std::string same, all;
    int ofSame = 0, ofAll = 0;
    const auto add = [](std::string& list, int& count, const std::string& text) {
        if (++count <= Most + 1) list += (count == 1 ? "" : ", ") + (count <= Most ? text : "...");
    };
    for (const Declaration* form = &first; form != nullptr; form = form->nextForm) {
        if (form->kind != DeclarationKind::Function) continue;
        const std::string text = formText(name, *form);
        if (parametersOf(*form).size() == arguments) add(same, ofSame, text);
        add(all, ofAll, text);
    }
    return same.empty() ? all : same;
}

}  // namespace

// `rows.add(x)`: told with the function that does it here.
bool Checker::isMethod(Expression& item) {
    if (item.qualifier.empty() || isClassName(item.qualifier)) return false;
    const Declaration* object = lookUp({}, item.qualifier, item.line, true);
    const bool variable = object != nullptr && object->kind != DeclarationKind::Function &&
                          object->kind != DeclarationKind::Type && object->kind != DeclarationKind::Window;
    const std::string here =
        variable ? methodHint(item.name, item.qualifier, object->type->kind) : std::string();
    if (here.empty()) return false;
    for (ExpressionPtr& operand : item.operands) check(operand, plainType(Kind::Unknown));
    add(item.line, Problem::Foreign, {"." + item.name, here});
    return true;
}

void Checker::call(ExpressionPtr& item) {
    if (isMethod(*item)) return;
    const Declaration* target = lookUp(item->qualifier, item->name, item->line, true);
    if (target == nullptr) {
        for (ExpressionPtr& operand : item->operands) check(operand, plainType(Kind::Unknown));
        return unknown(item->name, item->line);
    }
    if (target->kind == DeclarationKind::Type) return typeCall(*item, *target);
    if (target->kind != DeclarationKind::Function) {
        for (ExpressionPtr& operand : item->operands) check(operand, plainType(Kind::Unknown));
        return wrongKind(*target, "a function", item->line);
    }
    checkArguments(*item, *target);
    const Declaration* form = formFor(*item, *target);
    if (form == nullptr) return noForm(*item, *target);
    item->target = form;
    const Function& head = *form->function;
    if (head.headHasErrors) return;
    item->type = head.result;
    for (std::size_t i = 0; i < item->operands.size(); ++i) argument(*item, i, *form);
    guardWalked(*item, *form);
    guardKind(*item, *form);
    foldLibraryCall(*item);
}

// `Colour(3)`: an integer as a value of an enum.
void Checker::typeCall(Expression& item, const Declaration& target) {
    for (ExpressionPtr& operand : item.operands) check(operand);
    if (target.type->kind != Kind::Enum)
        return wrongKind(target, "a function or the name of an enum", item.line);
    if (item.operands.size() != 1)
        return add(item.line, Problem::ArgumentCount, {item.name, "1", std::to_string(item.operands.size())});
    if (!requireKind(item.operands[0], Kind::Integer)) return;
    item.target = &target;
    item.type = target.type;
}

// The types of all arguments but those that wait for the form: values in braces, and names of indexes.
void Checker::checkArguments(Expression& item, const Declaration& first) {
    for (std::size_t i = 0; i < item.operands.size(); ++i) {
        ExpressionPtr& operand = item.operands[i];
        if (operand->kind == ExpressionKind::Aggregate) {
            operand->type = plainType(Kind::Aggregate);
            continue;
        }
        bool indexName = false;
        for (const Declaration* form = &first; form != nullptr; form = form->nextForm)
            if (parametersOf(*form).size() == item.operands.size() && isIndexName(*parametersOf(*form)[i]))
                indexName = true;
        const bool bare = operand->kind == ExpressionKind::Name && operand->qualifier.empty();
        if (!indexName || !bare) check(operand);
        if (indexName && bare) operand->type = plainType(Kind::Integer);
    }
}

const Type* Checker::parameterType(const Expression& item, const Declaration& form, std::size_t index) const {
    const auto& parameters = parametersOf(form);
    const std::string& part = partOf(*parameters[index]);
    if (part.empty() || parameters[index]->type->kind != Kind::Adt) return parameters[index]->type;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (!ascii::equal(parameters[i]->name, part)) continue;
        const Type* whole = item.operands[i]->type;
        return whole->element != nullptr ? whole->element : plainType(Kind::Unknown);
    }
    return plainType(Kind::Unknown);
}

// The sum of what the arguments cost; Never or more when they do not fit. An unknown one fits everything.
int Checker::costOf(const Expression& item, const Declaration& form) const {
    const auto& parameters = parametersOf(form);
    if (parameters.size() != item.operands.size()) return Never;
    int cost = 0;
    for (std::size_t i = 0; i < parameters.size() && cost < Never; ++i) {
        const Expression& operand = *item.operands[i];
        const Type* type = parameterType(item, form, i);
        if (operand.type->kind == Kind::Unknown || type->kind == Kind::Unknown) continue;
        if (operand.type->kind == Kind::Aggregate) {
            cost += takesAggregate(*type, operand.operands.size()) ? 0 : Never;
            continue;
        }
        const Fit fit = fitOf(operand.type, type);
        const bool returned = parameters[i]->mode != Mode::In && fit == Fit::Convert;
        cost += returned ? Never : costOfFit(fit, operand.type, type);
    }
    return cost;
}

const Declaration* Checker::formFor(const Expression& item, const Declaration& first) {
    if (first.nextForm == nullptr && parametersOf(first).size() == item.operands.size()) return &first;
    const Declaration* best = nullptr;
    int least = Never;
    for (const Declaration* form = &first; form != nullptr; form = form->nextForm) {
        if (form->kind != DeclarationKind::Function) continue;
        const int cost = form->function->headHasErrors ? 0 : costOf(item, *form);
        if (cost >= least) continue;
        least = cost;
        best = form;
    }
    return best;
}

void Checker::noForm(Expression& item, const Declaration& first) {
    const bool known =
        std::none_of(item.operands.begin(), item.operands.end(),
                     [](const ExpressionPtr& value) { return value->type->kind == Kind::Unknown; });
    if (first.nextForm == nullptr)
        add(item.line, Problem::ArgumentCount,
            {item.name, std::to_string(parametersOf(first).size()), std::to_string(item.operands.size())});
    else if (known)
        add(item.line, Problem::NoForm, {item.name, formTexts(item.name, first, item.operands.size())});
}

// Whether it names something that keeps its value, so that there is more to say than that a variable is needed.
static bool isKept(const Expression& value) {
    const Declaration* root = rootOf(value);
    return root != nullptr && (root->kind == DeclarationKind::Constant ||
                               (root->kind == DeclarationKind::Parameter && root->mode == Mode::In));
}

// What takes any list by its head, and could only fail with this one.
void Checker::guardKind(const Expression& item, const Declaration& form) {
    static constexpr auto OfStrings = std::to_array<std::string_view>({"listinsert", "listsort", "listfind"});
    if (form.owner == nullptr || !isSystem(*form.owner) || item.operands.empty()) return;
    const std::string name = ascii::lowered(form.name);
    const Type& type = *item.operands[0]->type;
    const bool ofStrings = std::find(OfStrings.begin(), OfStrings.end(), name) != OfStrings.end();
    if (ofStrings && type.kind == Kind::List && type.element->kind != Kind::String &&
        type.element->kind != Kind::Unknown)
        add(item.operands[0]->line, Problem::TypeMismatch, {"a list of strings", typePhrase(&type)});
    if ((name == "open" || name == "close") && !type.isExternal &&
        (type.kind == Kind::List || type.kind == Kind::Table))
        add(item.operands[0]->line, Problem::TypeMismatch,
            {std::string("an external ") + kindName(type.kind), typePhrase(&type)});
}

void Checker::argument(Expression& item, std::size_t index, const Declaration& form) {
    const Declaration& parameter = *parametersOf(form)[index];
    ExpressionPtr& value = item.operands[index];
    if (isIndexName(parameter)) return indexArgument(item, index, form);
    const Type* type = parameterType(item, form, index);
    if (value->kind == ExpressionKind::Aggregate) check(value, type);
    if (parameter.mode == Mode::In) {
        fits(value, type);
        return;
    }
    if (value->type->kind == Kind::Unknown || type->kind == Kind::Unknown) return;
    const Fit fit = fitOf(value->type, type);
    if (fit != Fit::Same && fit != Fit::Open)
        add(value->line, Problem::TypeMismatch, {typePhrase(type), typePhrase(value->type)});
    else if (isKept(*value))
        isVariable(*value, true);
    else if (!isVariable(*value, false) ||
             (value->kind == ExpressionKind::Index && value->operands[0]->type->kind == Kind::String))
        add(value->line, Problem::VariableNeeded, {std::to_string(index + 1), item.name});
}

void Checker::indexArgument(Expression& item, std::size_t index, const Declaration& form) {
    const auto& parameters = parametersOf(form);
    Expression& value = *item.operands[index];
    const std::string& part = partOf(*parameters[index]);
    const Type* table = plainType(Kind::Unknown);
    for (std::size_t i = 0; i < parameters.size(); ++i)
        if (ascii::equal(parameters[i]->name, part)) table = item.operands[i]->type;
    if (table->kind != Kind::Table) return;
    const bool bare = value.kind == ExpressionKind::Name && value.qualifier.empty();
    value.number = bare ? indexNumber(*table, value.name) : 0;
    if (value.number == 0) return add(value.line, Problem::NoSuchIndex, {bare ? value.name : "this"});
    value.constant = integerValue(value.number);
}

void Checker::guardWalked(const Expression& item, const Declaration& form) {
    if (walked_.empty() || !isSystem(*form.owner) || !changesElements(form)) return;
    for (std::size_t i = 0; i < item.operands.size(); ++i) {
        if (parametersOf(form)[i]->mode == Mode::In) continue;
        const Declaration* root = rootOf(*item.operands[i]);
        const bool whole = item.operands[i]->kind == ExpressionKind::Name;
        if (whole && root != nullptr && std::find(walked_.begin(), walked_.end(), root) != walked_.end())
            add(item.line, Problem::WalkChanged, {root->name});
    }
}

// What is known while compiling: how bytes that cannot stand in quotes are written, and what they count.
void Checker::foldLibraryCall(Expression& item) {
    if (item.operands.size() != 1 || !item.operands[0]->constant || !isSystem(*item.target->owner)) return;
    const Value& value = *item.operands[0]->constant;
    const std::string name = ascii::lowered(item.target->name);
    if (name == "chr" && value.kind == Kind::Integer && value.number >= 0 && value.number <= 255)
        item.constant = textValue(std::string(1, static_cast<char>(value.number)));
    if (name == "ord" && value.kind == Kind::String && !value.text.empty())
        item.constant = integerValue(static_cast<unsigned char>(value.text[0]));
    if (name == "ord" && value.kind == Kind::Enum) item.constant = integerValue(value.number);
    if (name == "length" && value.kind == Kind::String)
        item.constant = integerValue(static_cast<std::int64_t>(value.text.size()));
}

}  // namespace tarn::toolchain
