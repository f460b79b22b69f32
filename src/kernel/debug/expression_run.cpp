// SPDX-License-Identifier: Apache-2.0
//
// The operands stand on a stack that has its full size from the start. A variable stays a place until its value is
// needed, so that an array is not copied for one element.
#include "kernel/debug/declaredconstants.h"
#include "kernel/debug/expression_internal.h"
#include "kernel/debug/fieldnames.h"
#include "kernel/debug/framevariables.h"
#include "kernel/debug/valueelements_internal.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/text/numbers.h"
#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

using Operand = ExpressionOperand;
using Type = Operand::Type;

constexpr std::string_view operatorTexts[] = {
    "",    "",  "",   "",  "-",  "not", "+",  "-",  "*",   "/",  "div",
    "mod", "=", "<>", "<", "<=", ">",   ">=", "in", "and", "or", ""};
static_assert(std::size(operatorTexts) == static_cast<std::size_t>(Op::Truth) + 1);

void setWhole(Operand& operand, Type type, std::int64_t whole) {
    operand.type = type;
    operand.whole = whole;
}

bool isNumber(const Operand& operand) {
    return operand.type == Type::Integer || operand.type == Type::Fixed || operand.type == Type::Real;
}

bool isSet(const Operand& operand) {
    return operand.type == Type::Place && operand.kind == KindSet;
}

// Of two numbers to the wider type of the two.
void widen(Operand& operand, Type type) {
    if (operand.type == type) return;
    if (type == Type::Fixed) {
        operand.whole *= FixedOne;
    } else {
        operand.real =
            operand.type == Type::Integer ? static_cast<double>(operand.whole) : FixedToReal(operand.whole);
    }
    operand.type = type;
}

template <class Number>
int orderOf(Number a, Number b) {
    return a < b ? -1 : a > b ? 1 : 0;
}

bool relationHolds(Op op, int order) {
    switch (op) {
    case Op::Equal: return order == 0;
    case Op::Different: return order != 0;
    case Op::Less: return order < 0;
    case Op::LessOrEqual: return order <= 0;
    case Op::Greater: return order > 0;
    default: return order >= 0;
    }
}

bool relationHolds(Op op, double a, double b) {
    switch (op) {
    case Op::Equal: return a == b;
    case Op::Different: return a != b;
    case Op::Less: return a < b;
    case Op::LessOrEqual: return a <= b;
    case Op::Greater: return a > b;
    default: return a >= b;
    }
}

std::int32_t wrapped(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

class Evaluation {
public:
    Evaluation(ExpressionParts& parts, std::int32_t frame)
        : parts_(parts), frame_(frame), variables_(VariablesOf(frame)), top_(parts.stack.data()) {}

    ExpressionResult run() {
        const auto count = static_cast<std::int32_t>(parts_.code.size());
        for (at_ = 0; at_ < count && result_.trouble == Trouble::None; ++at_)
            act(parts_.code[static_cast<std::size_t>(at_)]);
        if (result_.trouble == Trouble::None) result_.value = top_[-1];
        return result_;
    }

private:
    void act(const Instruction& instruction) {
        switch (instruction.op) {
        case Op::Constant: *top_++ = parts_.constants[static_cast<std::size_t>(instruction.number)]; break;
        case Op::Variable: variable(parts_.names[static_cast<std::size_t>(instruction.number)]); break;
        case Op::Index: index(instruction.number); break;
        case Op::Field: field(parts_.fields[static_cast<std::size_t>(instruction.number)]); break;
        case Op::Negate: negate(instruction.number != 0); break;
        case Op::Not: negateTruth(); break;
        case Op::And:
        case Op::Or: decide(instruction); break;
        case Op::Truth: truth(top_[-1]); break;
        default: binary(instruction.op); break;
        }
    }

    bool fail(Trouble trouble, std::string_view detail = {}, std::int32_t index = 0) {
        result_ = {trouble, detail, index, {}};
        return false;
    }
    bool misfit(Op op) { return fail(Trouble::Operands, operatorTexts[static_cast<std::size_t>(op)]); }

    // ---- places ----

    void variable(ExpressionName& name) {
        const bool isThere = name.offset >= 0 && name.offset < variables_.count &&
                             std::strcmp(variables_.first[name.offset].name, name.registered.c_str()) == 0;
        if (!isThere) {
            const VariableEntry* const entry = FindVariable(variables_, name.text);
            if (entry == nullptr) return constant(name);
            name.offset = static_cast<std::int32_t>(entry - variables_.first);
            name.registered = entry->name;
        }
        const VariableEntry& entry = variables_.first[name.offset];
        Operand& operand = *top_++;
        setPlace(operand, entry.address, static_cast<Kind>(entry.kind));
        operand.names = FieldNames(entry);
    }
    void constant(ExpressionName& name) {
        const bool hasFrame =
            frameStack != nullptr && frame_ >= 1 && frame_ <= std::min(frameStack->count, MaxFrames);
        const std::string_view className = hasFrame ? frameStack->frames[frame_ - 1].className() : "";
        if (hasFrame && name.constantOf != className) {
            name.constantOf = className;
            const DeclaredConstant* const found = FindDeclaredConstant(className, name.text);
            name.constant = found != nullptr ? std::optional(found->value) : std::nullopt;
        }
        if (!hasFrame || !name.constant) return static_cast<void>(fail(Trouble::NoName, name.text));
        *top_ = {};
        setWhole(*top_++, Type::Integer, *name.constant);
    }
    static void setPlace(Operand& operand, const void* place, Kind kind) {
        operand.type = Type::Place;
        operand.kind = kind;
        operand.place = place;
        operand.names = {};
    }

    void field(const std::string& name) {
        Operand& operand = top_[-1];
        const bool isRecord =
            operand.type == Type::Place && (operand.kind == KindRecord || operand.kind == KindUnion);
        const FieldPlace found = isRecord ? FindField(operand.names, name) : FieldPlace();
        const auto* const record = static_cast<const RecordDescriptor*>(operand.place);
        if (found.number == 0 || !IsOfKind(record, operand.kind) ||
            found.number > FieldCountOf(record->kinds))
            return static_cast<void>(fail(Trouble::NoFields, name));
        const Kind kind = FieldKindAt(record->kinds, found.number);
        setPlace(operand, RecordFieldAddress(record, found.number), kind);
        operand.names = found.names;
    }

    void index(std::int32_t count) {
        top_ -= count;
        Operand& base = top_[-1];
        std::int32_t subscripts[MaxDimensions] = {};
        if (count > MaxDimensions) return static_cast<void>(fail(Trouble::NotIndexed));
        for (std::int32_t i = 0; i < count; ++i) {
            if (!load(top_[i])) return;
            if (top_[i].type != Type::Integer) return static_cast<void>(misfit(Op::Index));
            subscripts[i] = static_cast<std::int32_t>(top_[i].whole);
        }
        const bool isWhole =
            base.type == Type::Place && IsAdtKind(base.kind) && IsOfKind(base.place, base.kind);
        const std::string_view names =
            base.type == Type::Place ? ElementNames(base.names) : std::string_view();
        if (!isWhole || (base.kind != KindArray && count != 1))
            static_cast<void>(fail(Trouble::NotIndexed));
        else if (base.kind == KindArray)
            ofArray(base, subscripts, count);
        else if (base.kind == KindString)
            ofText(base, subscripts[0]);
        else
            ofRows(base, subscripts[0]);
        base.names = names;
    }
    void ofArray(Operand& base, const std::int32_t* subscripts, std::int32_t count) {
        const auto array = ReadAt<ArrayDescriptor>(base.place);
        if (DimensionCount(array) != count) return static_cast<void>(fail(Trouble::NotIndexed));
        std::int64_t place = 0;
        for (std::int32_t i = 0; i < count; ++i) {
            const ArrayBounds bounds = array.bounds[i];
            if (subscripts[i] < bounds.lower || subscripts[i] > bounds.upper)
                return static_cast<void>(fail(Trouble::NoElement, {}, subscripts[i]));
            place = place * (bounds.upper - bounds.lower + 1) + (subscripts[i] - bounds.lower);
        }
        setPlace(base, At(array.data) + place * KindSize[array.tag], static_cast<Kind>(array.tag));
    }
    // The code of a character; outside of the text it is 0, as in the language.
    static void ofText(Operand& base, std::int32_t position) {
        setWhole(base, Type::Integer,
                 StringGetChar(static_cast<const StringDescriptor*>(base.place), position));
    }
    void ofRows(Operand& base, std::int32_t position) {
        const ListDescriptor* const list = ElementList(base.place, base.kind);
        if (list == nullptr || !IsList(list)) return static_cast<void>(fail(Trouble::NotIndexed));
        const bool isThere =
            position >= 1 && position <= list->count && !IsUnopenedFile(base.place, base.kind);
        if (!isThere) return static_cast<void>(fail(Trouble::NoElement, {}, position));
        const Kind kind = ElementKindOf(*list);
        if (!IsHeldInFile(*list)) return setPlace(base, SlotAt(*list, position - 1), kind);
        ElementBeside& element = parts_.elements.emplace_back(At(list->prototype), kind);
        if (element.good()) ListGet(list, position, element.at(), kind);
        if (ErrorCell() != 0) return static_cast<void>(fail(Trouble::Unreadable));
        setPlace(base, element.at(), kind);
    }

    // ---- values ----

    // Of a place what stands there, as far as that is one value: composites and sets stay places.
    bool load(Operand& operand) {
        if (operand.type != Type::Place) return true;
        const void* const at = operand.place;
        switch (operand.kind) {
        case KindBoolean:
            setWhole(operand, Type::Boolean, ReadAt<std::uint8_t>(at) != 0 ? 1 : 0);
            return true;
        case KindEnum: setWhole(operand, Type::Integer, ReadAt<std::uint8_t>(at)); return true;
        case KindInteger: setWhole(operand, Type::Integer, ReadAt<std::int32_t>(at)); return true;
        case KindFixed: setWhole(operand, Type::Fixed, ReadAt<Fixed>(at)); return true;
        case KindReal:
            operand.type = Type::Real;
            operand.real = ReadAt<double>(at);
            return true;
        case KindString: return loadText(operand);
        default: break;
        }
        if (!IsOfKind(at, operand.kind)) return fail(Trouble::Unreadable);
        if (IsCharacterArray(at, operand.kind)) {
            const auto array = ReadAt<ArrayDescriptor>(at);
            const std::string_view bytes(At(array.data), static_cast<std::size_t>(array.size));
            operand.type = Type::Text;
            operand.text = bytes.substr(0, bytes.find('\0'));
        }
        return true;
    }
    bool loadText(Operand& operand) {
        const auto* const s = static_cast<const StringDescriptor*>(operand.place);
        if (!IsZeroValue(s, KindString) && !IsOfKind(s, KindString)) return fail(Trouble::Unreadable);
        operand.type = Type::Text;
        operand.text = IsZeroValue(s, KindString) ? std::string_view() : StringView(s);
        if (CharacterWidth == 1 || operand.text.empty()) return true;
        std::string& wide = parts_.wide.emplace_back();
        for (std::int32_t i = 1; i <= StringLength(s); ++i) {
            const std::int32_t c = StringGetChar(s, i);
            wide += static_cast<char>(c <= UINT8_MAX ? c : '?');
        }
        operand.text = wide;
        return true;
    }

    bool truth(Operand& operand) {
        return load(operand) && (operand.type == Type::Boolean || fail(Trouble::NoBoolean));
    }
    void decide(const Instruction& instruction) {
        if (!truth(top_[-1])) return;
        const bool decides = (top_[-1].whole != 0) == (instruction.op == Op::Or);
        if (decides)
            at_ = instruction.number - 1;
        else
            --top_;
    }
    void negateTruth() {
        if (truth(top_[-1])) top_[-1].whole ^= 1;
    }
    void negate(bool negative) {
        Operand& operand = top_[-1];
        if (!load(operand)) return;
        if (!isNumber(operand)) return static_cast<void>(misfit(Op::Negate));
        if (!negative) return;
        if (operand.type == Type::Real)
            operand.real = -operand.real;
        else
            operand.whole = operand.type == Type::Fixed ? FixedNeg(operand.whole) : wrapped(-operand.whole);
    }

    void binary(Op op) {
        --top_;
        Operand &a = top_[-1], &b = top_[0];
        if (!load(a) || !load(b)) return;
        if (op == Op::In)
            contains(a, b);
        else if (op >= Op::Equal)
            compare(op, a, b);
        else
            calculate(op, a, b);
    }
    void contains(Operand& a, const Operand& b) {
        if (a.type != Type::Integer || !isSet(b)) return static_cast<void>(misfit(Op::In));
        const bool isMember =
            SetContains(static_cast<std::int32_t>(a.whole), static_cast<const SetDescriptor*>(b.place));
        setWhole(a, Type::Boolean, isMember ? 1 : 0);
    }

    void compare(Op op, Operand& a, Operand& b) {
        bool holds = false;
        if (isNumber(a) && isNumber(b)) {
            const Type type = std::max(a.type, b.type);
            widen(a, type);
            widen(b, type);
            holds = type == Type::Real ? relationHolds(op, a.real, b.real)
                                       : relationHolds(op, orderOf(a.whole, b.whole));
        } else if (a.type == Type::Text && b.type == Type::Text) {
            holds = relationHolds(op, a.text.compare(b.text));
        } else if (a.type == Type::Boolean && b.type == Type::Boolean) {
            holds = relationHolds(op, orderOf(a.whole, b.whole));
        } else if (a.type != Type::Place || b.type != Type::Place || a.kind != b.kind ||
                   !comparePlaces(op, a, b, holds)) {
            return static_cast<void>(misfit(op));
        }
        if (ErrorCell() != 0) return static_cast<void>(fail(Trouble::Unreadable));
        setWhole(a, Type::Boolean, holds ? 1 : 0);
    }
    static bool comparePlaces(Op op, const Operand& a, const Operand& b, bool& holds) {
        static constexpr std::string_view relations[] = {"EQ", "NE", "LT", "LE", "GT", "GE"};
        const std::string_view relation =
            relations[static_cast<std::size_t>(op) - static_cast<std::size_t>(Op::Equal)];
        if (a.kind == KindSet)
            holds = SetCompare(relation, static_cast<const SetDescriptor*>(a.place),
                               static_cast<const SetDescriptor*>(b.place));
        else
            holds = AdtCompare(relation, a.place, b.place, a.kind);
        return a.kind == KindSet || op <= Op::Different;
    }

    // Of two sets.
    void combine(Op op, Operand& a, const Operand& b) {
        static constexpr void (*operations[])(const SetDescriptor*, const SetDescriptor*,
                                              SetDescriptor*) = {SetUnion, SetDifference, SetIntersect};
        // What a chain has come to is combined in its place, so that a long one needs no more room.
        const bool goesOn = !parts_.made.empty() && parts_.made.back().get() == a.place;
        if (!goesOn) SetInit(parts_.made.emplace_back().get(), UNBOUNDED, UNBOUNDED);
        SetDescriptor* const result = parts_.made.back().get();
        operations[static_cast<std::size_t>(op) - static_cast<std::size_t>(Op::Add)](
            static_cast<const SetDescriptor*>(a.place), static_cast<const SetDescriptor*>(b.place), result);
        if (ErrorCell() != 0) return static_cast<void>(fail(Trouble::Unreadable));
        setPlace(a, result, KindSet);
    }
    void calculate(Op op, Operand& a, Operand& b) {
        if (isSet(a) && isSet(b) && op <= Op::Multiply) return combine(op, a, b);
        if (!isNumber(a) || !isNumber(b)) return static_cast<void>(misfit(op));
        Type type = std::max(a.type, b.type);
        if (op == Op::Div || op == Op::Mod) {
            if (type != Type::Integer) return static_cast<void>(misfit(op));
        } else if (op == Op::Divide && type == Type::Integer) {
            type = Type::Fixed;
        }
        widen(a, type);
        widen(b, type);
        const bool divides = op >= Op::Divide && op <= Op::Mod;
        if (divides && (type == Type::Real ? b.real == 0 : b.whole == 0))
            return static_cast<void>(fail(Trouble::Zero));
        if (type == Type::Real)
            a.real = realResult(op, a.real, b.real);
        else
            a.whole =
                type == Type::Fixed ? fixedResult(op, a.whole, b.whole) : integerResult(op, a.whole, b.whole);
    }
    static double realResult(Op op, double a, double b) {
        switch (op) {
        case Op::Add: return a + b;
        case Op::Subtract: return a - b;
        case Op::Multiply: return a * b;
        default: return a / b;
        }
    }
    static Fixed fixedResult(Op op, Fixed a, Fixed b) {
        Fixed result = 0;
        switch (op) {
        case Op::Add: FixedAdd(a, b, result); break;
        case Op::Subtract: FixedSub(a, b, result); break;
        case Op::Multiply: FixedMul(a, b, result); break;
        default: FixedDiv(a, b, result); break;
        }
        return result;
    }
    static std::int32_t integerResult(Op op, std::int64_t a, std::int64_t b) {
        switch (op) {
        case Op::Add: return wrapped(a + b);
        case Op::Subtract: return wrapped(a - b);
        case Op::Multiply: return wrapped(a * b);
        case Op::Div: return IntegerDiv(wrapped(a), wrapped(b));
        default: return IntegerMod(wrapped(a), wrapped(b));
        }
    }

    ExpressionParts& parts_;
    std::int32_t frame_;
    FrameVariables variables_;
    Operand* top_;  // one behind the last operand
    std::int32_t at_ = 0;
    ExpressionResult result_;
};

}  // namespace

ExpressionResult Evaluate(ExpressionParts& parts, std::int32_t frame) {
    return Evaluation(parts, frame).run();
}

}  // namespace tarn
