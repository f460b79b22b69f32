// SPDX-License-Identifier: Apache-2.0
//
// Expressions to C. One protocol for all kinds of value:
//
//   scalar   a boolean, enum or number: a C expression of that value
//   address  a string, record ... table: a C expression of the address of such a value, where it stands or in a
//            temporary
//   into     a string, record ... table computed into a place of its shape
//
// A C expression has no side effect on the program's variables; the C statements that make its calls come ahead
// of it, in order from left to right. What waits for a later operand that could change it is kept in a copy.
// exprgen.cpp holds scalars and chains, placegen.cpp variables with what stands behind them, valuegen.cpp
// values that are computed into places, callgen.cpp calls.
#pragma once

#include "toolchain/output/functiongen.h"

#include <map>
#include <string>
#include <vector>

namespace tarn::toolchain {

// What a call may change while an earlier operand waits.
enum Effects : unsigned {
    NoEffects = 0,
    ChangesShared = 1,  // class variables, and what parameters of mode out and inout stand for
    ChangesLocals = 2,  // a variable is passed for it to be changed
};

class ExpressionGenerator {
public:
    explicit ExpressionGenerator(Shared& shared) : shared_(shared) {}

    // The C statements made so far; taking them leaves none.
    std::string takeLines();
    void line(const std::string& text);  // adds one, indented
    void indent(int by) { indent_ += by; }
    std::string newName();  // of a C variable of this function

    // ---- temporaries: of the function, made at first use, used again by later statements ----

    void freeTemporaries();
    // Those in use stay so until the reservation ends: for what a loop needs in all its rounds.
    class Reservation {
    public:
        explicit Reservation(ExpressionGenerator& out) : out_(out), saved_(out.reserved_) {
            out_.reserved_ = out_.used_;
        }
        ~Reservation() { out_.reserved_ = saved_; }
        Reservation(const Reservation&) = delete;
        Reservation& operator=(const Reservation&) = delete;

    private:
        ExpressionGenerator& out_;
        std::map<const Type*, int, TypeOrder> saved_;
    };
    std::string
    temporary(const Type* type);  // its address; strings are unbounded, others empty in their shape
    [[nodiscard]] std::string temporaryDefinitions() const;
    [[nodiscard]] std::string temporaryRelease() const;

    // ---- values ----

    std::string scalar(const Expression& item);
    std::string address(const Expression& item);
    void into(const Expression& item, const std::string& destination);
    void call(const Expression& item);  // a call without a result
    // target := value
    void assign(const Expression& target, const Expression& value);
    // Copies a value of a type from one address to another.
    void copy(const std::string& source, const std::string& destination, const Type* type);
    std::string copyText(const std::string& source, const std::string& destination, const Type* type);
    // The address of what a loop walks, good for all its rounds.
    std::string walkedAddress(const Expression& item);
    std::string rawTemporary(Kind kind);  // one without a shape
    // A scalar, or the address of a variable's element, kept while `later` is computed.
    std::string keptScalar(const Expression& item, unsigned later);
    std::string keptAddress(const Expression& item, unsigned later);
    [[nodiscard]] unsigned effects(const Expression& item) const;
    // The place of a variable: of a scalar a C lvalue, of others an address.
    std::string place(const Declaration& item);

private:
    struct PendingPut {
        std::string list, position, value;
        const Type* element;
    };

    // exprgen.cpp
    std::string newTemporary(const Type* kept);
    std::string chain(const Expression& item);
    std::string comparison(const Expression& item);
    std::string membership(const Expression& item);
    std::string truthChain(const Expression& item);
    std::string decidedTruth(const std::string& before, bool isAnd);
    void addTruth(std::string& value, const Expression& operand, bool isAnd, bool apart);
    std::string numberChain(const Expression& item);
    std::string conversion(const Expression& item);
    // placegen.cpp
    bool isPlace(const Expression& item) const;
    bool isStable(const Expression& item) const;
    bool changes(const Expression& item, unsigned effects) const;
    std::string addressOfPlace(const Expression& item, unsigned later);
    std::string addressOfElement(const Expression& item, unsigned later);
    std::string externalElement(const Expression& item, unsigned later);
    std::string lvalue(const Expression& item, unsigned later);
    std::string dereference(const std::string& address, Kind kind);
    void flushPuts(std::size_t from);
    void assignPlace(const Expression& target, const Expression& value);
    // valuegen.cpp
    void textChain(const Expression& item, const std::string& destination);
    void setChain(const Expression& item, const std::string& destination);
    void setLiteral(const Expression& item, const std::string& destination);
    void aggregate(const Expression& item, const std::string& destination);
    void part(const Expression& value, const std::string& destination, const Type* type);
    std::string valueAddress(const Expression& item);
    bool appendsInPlace(const Expression& target, const Expression& value);
    // callgen.cpp
    struct Argument {
        std::string text;
        std::string copyBack;  // the statement behind the call that brings a returned copy home
    };
    std::string callText(const Expression& item, const std::string& result);
    Argument argument(const Expression& item, std::size_t index, unsigned later);
    Argument returned(const Expression& value, const Declaration& parameter, bool isLibrary);
    std::string enumCall(const Expression& item);

    Shared& shared_;
    std::string lines_;
    int indent_ = 1;
    int names_ = 0;
    std::map<const Type*, int, TypeOrder> used_, reserved_, most_;
    std::map<const Type*, std::string, TypeOrder> temporaryNames_;
    std::vector<PendingPut> puts_;
    bool writes_ = false;  // the address that is being made will be written to
};

}  // namespace tarn::toolchain
