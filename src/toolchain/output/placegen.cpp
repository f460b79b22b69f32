// SPDX-License-Identifier: Apache-2.0
//
// Variables and what stands behind them: fields, elements, characters. The text of an address is computed where
// it is used, so it holds only what does not change until then: indexes are kept where something comes between.
//
// An element of a list that is held in a file has no address: it is read into a temporary, and put back behind
// the statement that changes it.
#include "toolchain/output/exprgen.h"
#include "toolchain/output/names.h"

#include <algorithm>

namespace tarn::toolchain {
namespace {

bool isReference(const Declaration& item) {
    return item.kind == DeclarationKind::Parameter && item.mode != Mode::In;
}

bool isShared(const Declaration& item) {
    return item.kind == DeclarationKind::ClassVariable || isReference(item);
}

// A parameter of mode in with a length is a variable of its own, so that its length holds.
bool isCopied(const Declaration& item) {
    return item.kind == DeclarationKind::Parameter && item.mode == Mode::In &&
           item.type->kind == Kind::String && item.type->length != Unbounded;
}

std::string typed(const std::string& address, Kind kind) {
    return "(" + cPlace(kind) + " *)" + address;
}

}  // namespace

std::string ExpressionGenerator::place(const Declaration& item) {
    if (item.kind == DeclarationKind::Window) {
        const auto [place, isNew] =
            shared_.windows.emplace(&item, "o" + std::to_string(shared_.windows.size() + 1));
        return "&" + place->second;
    }
    const bool scalarValue = isScalar(item.type->kind);
    if (item.kind == DeclarationKind::ClassVariable || isStoredConstant(item)) {
        shared_.foreign.insert(&item);
        return (scalarValue ? "" : "&") + itemSymbol(item);
    }
    const std::string name = localSymbol(item);
    if (scalarValue) return isReference(item) ? "(*" + name + ")" : name;
    const bool passed = item.kind == DeclarationKind::Parameter && !isCopied(item);
    return passed ? name : "&" + name;
}

bool ExpressionGenerator::isPlace(const Expression& item) const {
    switch (item.kind) {
    case ExpressionKind::Name: return !item.constant;
    case ExpressionKind::Field: return true;
    case ExpressionKind::Index:
        return item.operands[0]->type->kind != Kind::String && !item.operands[0]->isWindow;
    default: return false;
    }
}

// Whether the place of the item stays where it is whatever the program does.
bool ExpressionGenerator::isStable(const Expression& item) const {
    if (item.kind == ExpressionKind::Name) return true;
    const Type& base = *item.operands[0]->type;
    const bool moves = item.kind == ExpressionKind::Index && (base.kind == Kind::List || base.bounds.empty());
    return !moves && isStable(*item.operands[0]);
}

// Whether what `item` names, or an index in it, may be changed by such effects.
bool ExpressionGenerator::changes(const Expression& item, unsigned effects) const {
    if (item.constant || item.isResult) return false;
    if (item.kind == ExpressionKind::Name) {
        if (isShared(*item.target)) return effects != NoEffects;
        return item.target->kind == DeclarationKind::Variable && (effects & ChangesLocals) != 0;
    }
    return std::any_of(item.operands.begin(), item.operands.end(), [&](const ExpressionPtr& operand) {
        return operand != nullptr && changes(*operand, effects);
    });
}

// ---- addresses ----

std::string ExpressionGenerator::address(const Expression& item) {
    if (item.constant) return shared_.literals.pointerTo(item.constant->text);
    if (item.isResult) return "result";
    if (item.kind == ExpressionKind::Me) return "v_me";
    if (isPlace(item)) return addressOfPlace(item, NoEffects);
    const std::string destination = temporary(item.type);
    into(item, destination);
    return destination;
}

std::string ExpressionGenerator::keptAddress(const Expression& item, unsigned later) {
    std::string value = address(item);
    if (!isPlace(item) || !changes(item, later)) return value;
    const std::string copied = temporary(item.type);
    copy(value, copied, item.type);
    return copied;
}

std::string ExpressionGenerator::walkedAddress(const Expression& item) {
    if (!isPlace(item) || item.kind == ExpressionKind::Name) return address(item);
    if (isStable(item) && !item.type->isExternal) {
        const std::string name = newName();
        line(cType(item.type->kind) + " *const " + name + " = " + address(item) + ";");
        return name;
    }
    const std::string copied = temporary(item.type);
    copy(address(item), copied, item.type);
    return copied;
}

// `later`: what happens between here and the use of the address.
std::string ExpressionGenerator::addressOfPlace(const Expression& item, unsigned later) {
    if (item.kind == ExpressionKind::Name) {
        if (item.isResult) return isScalar(item.type->kind) ? "&r" : "result";
        const std::string name = place(*item.target);
        return isScalar(item.type->kind) ? "&" + name : name;
    }
    const Expression& base = *item.operands[0];
    std::string text;
    if (item.kind == ExpressionKind::Field) {
        const Field& field = base.type->fields[static_cast<std::size_t>(item.number) - 1];
        const std::string record = isPlace(base) ? addressOfPlace(base, later) : address(base);
        text = "quarn_field(" + record + ", " + std::to_string(field.offset) + ")";
    } else if (base.type->isExternal) {
        return externalElement(item, later);
    } else {
        text = addressOfElement(item, later);
    }
    return typed(text, item.type->kind);
}

std::string ExpressionGenerator::addressOfElement(const Expression& item, unsigned later) {
    const Expression& base = *item.operands[0];
    const std::size_t count = item.operands.size() - 1;
    unsigned own = NoEffects;
    for (std::size_t i = 1; i <= count; ++i) own |= effects(*item.operands[i]);
    std::string text = isPlace(base) ? addressOfPlace(base, later | own) : address(base);
    text = "(void *)" + text;
    for (std::size_t i = 1; i <= count; ++i)
        text += ", " + keptScalar(*item.operands[i], later | (i < count ? own : NoEffects));
    const std::string size = ", " + std::to_string(sizeOf(item.type->kind)) + ")";
    if (base.type->kind == Kind::List) return "quarn_list_at(" + text + size;
    return "quarn_at" + (count == 1 ? "" : std::to_string(count)) + "(" + text + size;
}

std::string ExpressionGenerator::externalElement(const Expression& item, unsigned later) {
    const bool writes = writes_;
    writes_ = false;
    const std::string list = addressOfPlace(*item.operands[0], later);
    const std::string position = newName(), kind = cKind(item.type->kind);
    line("const int32_t " + position + " = " + scalar(*item.operands[1]) + ";");
    std::string value;
    if (isScalar(item.type->kind)) {
        const std::string name = newName();
        line(cType(item.type->kind) + " " + name + " = 0;");
        value = "&" + name;
    } else {
        value = temporary(item.type);
    }
    line("tarn_list_get(" + list + ", " + position + ", " + value + ", " + kind + ");");
    if (writes) puts_.push_back({list, position, value, item.type});
    return value;
}

void ExpressionGenerator::flushPuts(std::size_t from) {
    while (puts_.size() > from) {
        const PendingPut put = puts_.back();
        puts_.pop_back();
        line("tarn_list_put(" + put.value + ", " + cKind(put.element->kind) + ", " + put.position + ", " +
             put.list + ");");
    }
}

std::string ExpressionGenerator::dereference(const std::string& address, Kind kind) {
    return "(*" + typed(address, kind) + ")";
}

// A scalar where it stands.
std::string ExpressionGenerator::lvalue(const Expression& item, unsigned later) {
    if (item.isResult) return "r";
    if (item.kind == ExpressionKind::Name) return place(*item.target);
    return "(*" + addressOfPlace(item, later) + ")";
}

// ---- assignment ----

std::string ExpressionGenerator::copyText(const std::string& source, const std::string& destination,
                                          const Type* type) {
    switch (type->kind) {
    case Kind::String: return "tarn_string_assign(" + destination + ", " + source + ");";
    case Kind::Set: return "tarn_set_assign(" + destination + ", " + source + ");";
    case Kind::Array: return "tarn_array_assign(" + destination + ", " + source + ");";
    case Kind::Record:
        if (type->fields.empty()) return "tarn_sys_record_assign(" + destination + ", " + source + ");";
        break;
    default: break;
    }
    if (isScalar(type->kind))
        return dereference(destination, type->kind) + " = " + dereference(source, type->kind) + ";";
    return "tarn_adt_copy(" + source + ", " + destination + ", " + cKind(type->kind) + ");";
}

void ExpressionGenerator::copy(const std::string& source, const std::string& destination, const Type* type) {
    line(copyText(source, destination, type));
}

void ExpressionGenerator::assign(const Expression& target, const Expression& value) {
    if (target.kind == ExpressionKind::Index && target.operands[0]->type->kind == Kind::String) {
        const std::string index = keptScalar(*target.operands[1], effects(value));
        const std::string character = scalar(value);
        writes_ = true;
        const std::string text = addressOfPlace(*target.operands[0], NoEffects);
        writes_ = false;
        line("tarn_string_put(" + text + ", " + index + ", " + character + ");");
    } else {
        assignPlace(target, value);
    }
    flushPuts(0);
}

// The indexes of the target are computed first, then the value, then the place.
void ExpressionGenerator::assignPlace(const Expression& target, const Expression& value) {
    const unsigned later = target.kind == ExpressionKind::Name ? NoEffects : ChangesShared | ChangesLocals;
    const bool settled = value.constant || (value.kind == ExpressionKind::Name && !value.isResult);
    if (isScalar(target.type->kind)) {
        writes_ = true;
        const std::string where = lvalue(target, settled ? NoEffects : later);
        writes_ = false;
        const std::string cast = sizeOf(target.type->kind) == 1 ? "(uint8_t)" : "";
        line(where + " = " + cast + scalar(value) + ";");
        return;
    }
    if (appendsInPlace(target, value)) return;
    writes_ = true;
    const std::string where = addressOfPlace(target, settled ? NoEffects : later);
    writes_ = false;
    const bool direct = target.kind == ExpressionKind::Name && value.kind == ExpressionKind::Chain;
    if (direct)
        into(value, where);
    else
        copy(address(value), where, target.type);
}

}  // namespace tarn::toolchain
