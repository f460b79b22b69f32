// SPDX-License-Identifier: Apache-2.0
//
// Expressions are read by descent, one function for each level of the grammar, and written as instructions in the order
// in which they are done. Nothing is looked up: there may be no program yet.
#include "kernel/debug/expression_internal.h"
#include "kernel/debug/setfaults.h"
#include "kernel/run/errorcell.h"
#include "kernel/text/numbers.h"
#include "kernel/values/sets.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>

namespace tarn {

class ExpressionCompiler {
public:
    explicit ExpressionCompiler(std::string_view text)
        : text_(text), parts_(std::make_unique<ExpressionParts>()) {}

    std::unique_ptr<DebugExpression> run(std::string& error) {
        skipBlanks();
        disjunction();
        if (good() && !atEnd()) fail("What follows does not belong to the expression");
        error = error_;
        if (!good()) return nullptr;
        parts_->stack.resize(static_cast<std::size_t>(deepest_));
        return std::unique_ptr<DebugExpression>(new DebugExpression(std::move(parts_)));
    }

private:
    using Operand = ExpressionOperand;
    static constexpr int deepestNesting = 100;

    struct Operator {
        std::string_view text;  // a word in lower case
        Op op;
    };

    // ---- the text ----

    [[nodiscard]] bool good() const { return error_.empty(); }
    [[nodiscard]] bool atEnd() const { return at_ == text_.size(); }
    [[nodiscard]] char next() const { return atEnd() ? '\0' : text_[at_]; }
    void skipBlanks() {
        while (!atEnd() && ascii::isSpace(text_[at_])) ++at_;
    }
    void fail(std::string_view what) {
        if (good()) error_ = std::string(what) + " (at character " + std::to_string(at_ + 1) + ").";
    }
    [[nodiscard]] std::string_view word() const {
        if (!ascii::isLetter(next()) && next() != '_') return {};
        const auto begin = text_.begin() + static_cast<std::ptrdiff_t>(at_);
        const auto end = std::find_if_not(begin, text_.end(), ascii::isSymbol);
        return text_.substr(at_, static_cast<std::size_t>(end - begin));
    }
    void advance(std::size_t count) {
        at_ += count;
        skipBlanks();
    }
    bool takeSign(std::string_view sign) {
        if (!text_.substr(at_).starts_with(sign)) return false;
        advance(sign.size());
        return true;
    }
    bool takeWord(std::string_view expected) {
        if (!ascii::equal(word(), expected)) return false;
        advance(expected.size());
        return true;
    }
    bool takeOperator(const Operator& entry) {
        return ascii::isLetter(entry.text[0]) ? takeWord(entry.text) : takeSign(entry.text);
    }
    void expect(char sign) {
        if (good() && !takeSign({&sign, 1})) fail(std::string("\"") + sign + "\" is missing");
    }

    // ---- the instructions ----

    // `growth`: by how many operands the stack is higher afterwards.
    std::size_t emit(Op op, std::int32_t number, int growth) {
        parts_->code.push_back({op, number});
        depth_ += growth;
        deepest_ = std::max(deepest_, depth_);
        return parts_->code.size() - 1;
    }
    void constant(const Operand& operand) {
        parts_->constants.push_back(operand);
        emit(Op::Constant, static_cast<std::int32_t>(parts_->constants.size()) - 1, 1);
    }
    void jumpHere(std::size_t instruction) {
        parts_->code[instruction].number = static_cast<std::int32_t>(parts_->code.size());
    }

    // ---- the grammar ----

    // `a or b or c`: as soon as one decides, the rest is left out.
    template <class Operand_>
    void chain(std::string_view connective, Op op, Operand_ operand) {
        operand();
        std::vector<std::size_t> ways;
        while (good() && takeWord(connective)) {
            ways.push_back(emit(op, 0, -1));
            operand();
            emit(Op::Truth, 0, 0);
        }
        for (const std::size_t way : ways) jumpHere(way);
    }
    void disjunction() {
        chain("or", Op::Or, [this] { conjunction(); });
    }
    void conjunction() {
        chain("and", Op::And, [this] { negation(); });
    }
    void negation() {
        int count = 0;
        while (takeWord("not")) ++count;
        comparison();
        for (; good() && count > 0; --count) emit(Op::Not, 0, 0);
    }
    void comparison() {
        // Longest first.
        static constexpr Operator operators[] = {
            {"<>", Op::Different}, {"<=", Op::LessOrEqual}, {">=", Op::GreaterOrEqual},
            {"=", Op::Equal},      {"<", Op::Less},         {">", Op::Greater},
            {"in", Op::In}};
        sum();
        if (text_.substr(at_).starts_with("==")) return fail("Two values are compared by one \"=\"");
        for (const Operator& entry : operators) {
            if (!good() || !takeOperator(entry)) continue;
            sum();
            emit(entry.op, 0, -1);
            return;
        }
    }
    template <std::size_t Count, class Operand_>
    void binary(const Operator (&operators)[Count], Operand_ operand) {
        operand();
        for (bool more = true; more && good();) {
            const auto found = std::find_if(std::begin(operators), std::end(operators),
                                            [this](const Operator& entry) { return takeOperator(entry); });
            more = found != std::end(operators);
            if (!more) return;
            operand();
            emit(found->op, 0, -1);
        }
    }
    void sum() {
        static constexpr Operator operators[] = {{"+", Op::Add}, {"-", Op::Subtract}};
        binary(operators, [this] { product(); });
    }
    void product() {
        static constexpr Operator operators[] = {
            {"*", Op::Multiply}, {"/", Op::Divide}, {"div", Op::Div}, {"mod", Op::Mod}};
        binary(operators, [this] { factor(); });
    }
    void factor() {
        bool negative = false, any = false;
        for (; next() == '+' || next() == '-'; advance(1)) {
            negative = negative != (next() == '-');
            any = true;
        }
        const bool isNumber = ascii::isDigit(next()) || next() == '.';
        if (isNumber) return number(negative);
        primary();
        if (negative || any) emit(Op::Negate, negative ? 1 : 0, 0);
    }
    void primary() {
        if (!good()) return;
        if (atEnd()) return fail("A value is missing");
        if (next() == '"') return text();
        if (next() == '[') return set();
        if (next() == '(') return bracket();
        const std::string_view name = word();
        if (name.empty()) return fail("A name or a value is expected here");
        if (ascii::equal(name, "true") || ascii::equal(name, "false")) return truth(name);
        for (const std::string_view reserved : {"and", "or", "not", "in", "div", "mod"})
            if (ascii::equal(name, reserved)) return fail("A value is missing");
        variable(name);
    }
    void bracket() {
        if (++nesting_ > deepestNesting) return fail("The brackets are nested too deep");
        advance(1);
        disjunction();
        expect(')');
        --nesting_;
    }
    void truth(std::string_view name) {
        Operand operand;
        operand.type = Operand::Type::Boolean;
        operand.whole = ascii::equal(name, "true") ? 1 : 0;
        advance(name.size());
        constant(operand);
    }

    // A variable, and the fields and elements that are taken of it.
    void variable(std::string_view name) {
        const std::size_t number = parts_->names.size();
        parts_->names.push_back({std::string(name), {}, -1, {}, {}});
        emit(Op::Variable, static_cast<std::int32_t>(number), 1);
        advance(name.size());
        while (good()) {
            if (next() == '(') return fail("Functions are not called in an expression");
            if (takeSign("["))
                subscripts();
            else if (next() == '.' && !text_.substr(at_).starts_with("..") && takeSign("."))
                field();
            else
                return;
        }
    }
    void subscripts() {
        if (++nesting_ > deepestNesting) return fail("The brackets are nested too deep");
        std::int32_t count = 0;
        do {
            sum();
            ++count;
        } while (good() && takeSign(","));
        expect(']');
        emit(Op::Index, count, -count);
        --nesting_;
    }
    void field() {
        const std::string_view name = word();
        if (name.empty()) return fail("The name of a field is expected here");
        parts_->fields.emplace_back(name);
        emit(Op::Field, static_cast<std::int32_t>(parts_->fields.size()) - 1, 0);
        advance(name.size());
    }

    // ---- literals ----

    void text() {
        std::string bytes;
        std::size_t at = at_ + 1;
        for (bool open = true; open;) {
            const std::size_t quote = text_.find('"', at);
            if (quote == std::string_view::npos) return fail("The text has no end");
            bytes.append(text_.substr(at, quote - at));
            open = text_.substr(quote + 1).starts_with('"');
            if (open) bytes += '"';
            at = quote + (open ? 2 : 1);
        }
        parts_->texts.push_back(std::move(bytes));
        Operand operand;
        operand.type = Operand::Type::Text;
        operand.text = parts_->texts.back();
        advance(at - at_);
        constant(operand);
    }
    void set() {
        const ErrorCellAside aside;
        OwnedSet set;
        SetInit(set.get(), UNBOUNDED, UNBOUNDED);
        std::int32_t error = 0;
        auto position = static_cast<std::int32_t>(at_) + 1;
        SetFromText(text_, position, set.get(), error);
        if (error == 1) at_ = static_cast<std::size_t>(position) - 1;
        if (error != 0) return fail("A set is made of numbers from -32768 to 32767, such as [1, 5..9]");
        if (const auto fault = FaultOfSet(text_, at_, LowestBound, HighestBound)) {
            at_ = fault->at;
            return fail("A set is made of numbers with one comma between two, such as [1, 5..9]");
        }
        parts_->sets.push_back(std::move(set));
        Operand operand;
        operand.type = Operand::Type::Place;
        operand.kind = KindSet;
        operand.place = parts_->sets.back().get();
        advance(static_cast<std::size_t>(position) - 1 - at_);
        constant(operand);
    }
    void number(bool negative) {
        const std::string_view rest = text_.substr(at_);
        Operand operand;
        const std::size_t length = rest.starts_with("0x") || rest.starts_with("0X")
                                       ? hexadecimal(rest, negative, operand)
                                       : decimal(rest, negative, operand);
        if (length == 0) return fail("This number cannot be read, or is too large");
        advance(length);
        constant(operand);
    }
    static std::size_t hexadecimal(std::string_view rest, bool negative, Operand& operand) {
        std::uint32_t bits = 0;
        const auto end = std::from_chars(rest.data() + 2, rest.data() + rest.size(), bits, 16);
        if (end.ec != std::errc()) return 0;
        operand.type = Operand::Type::Integer;
        operand.whole = static_cast<std::int32_t>(negative ? 0 - bits : bits);
        auto length = static_cast<std::size_t>(end.ptr - rest.data());
        if (length < rest.size() && ascii::upper(rest[length]) == 'L') ++length;
        return length;
    }
    // An integer, with a point a fixed number, with an exponent or more decimals a real one.
    static std::size_t decimal(std::string_view rest, bool negative, Operand& operand) {
        const auto digits = [rest](std::size_t at) {
            return std::min(rest.find_first_not_of("0123456789", at), rest.size());
        };
        std::size_t end = digits(0), decimals = 0;
        bool isReal = false;
        if (end < rest.size() && rest[end] == '.' && rest.substr(end, 2) != "..") {
            const std::size_t behind = digits(end + 1);
            decimals = behind - end - 1;
            end = behind;
            if (decimals == 0) return 0;
        }
        if (end < rest.size() && ascii::upper(rest[end]) == 'E') {
            std::size_t exponent = end + 1;
            if (exponent < rest.size() && (rest[exponent] == '+' || rest[exponent] == '-')) ++exponent;
            isReal = digits(exponent) > exponent;
            if (!isReal) return 0;
            end = digits(exponent);
        }
        constexpr std::size_t fixedDecimals = 4;
        const std::string signedText = (negative ? "-" : "") + std::string(rest.substr(0, end));
        return convert(signedText, isReal || decimals > fixedDecimals, decimals > 0, operand) ? end : 0;
    }
    static bool convert(const std::string& text, bool isReal, bool isFixed, Operand& operand) {
        bool ok = false;
        if (isReal) {
            operand.type = Operand::Type::Real;
            operand.real = 0;
            RealFromText(text, operand.real, ok);
        } else if (isFixed) {
            operand.type = Operand::Type::Fixed;
            FixedFromText(text, operand.whole, ok);
        } else {
            operand.type = Operand::Type::Integer;
            std::int32_t value = 0;
            IntegerFromWholeText(text, value, ok);
            operand.whole = value;
        }
        return ok;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::string error_;
    int nesting_ = 0, depth_ = 0, deepest_ = 0;
    std::unique_ptr<ExpressionParts> parts_;
};

std::unique_ptr<DebugExpression> DebugExpression::compile(std::string_view text, std::string& error) {
    return ExpressionCompiler(text).run(error);
}

}  // namespace tarn
