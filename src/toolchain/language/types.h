// SPDX-License-Identifier: Apache-2.0
//
// The types of the language as objects. Each type exists once, however often it is written: two types are one
// when their pointers are equal. `type` only names a type, so a name is no part of it; an enum with names is
// the exception, since its names are constants of one class.
//
// The kinds are those of the run-time (kernel/values/values.h), whose numbers stand in generated text; behind
// them stand those that no value has.
//
// Cost: making a type is one look-up by its parts; types live as long as the process.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

enum class Kind : unsigned char {
    None,  // a call without a value
    Boolean,
    Enum,
    Integer,
    Fixed,
    Real,
    String,
    Record,
    Union,
    Set,
    Array,
    List,
    Table,
    Adt,        // a parameter that takes a value of the kinds String to Table
    Unknown,    // a message was given already
    Aggregate,  // `{ ... }` that has not met its type yet
};

inline constexpr std::int32_t Unbounded = -1000000;
inline constexpr std::int32_t MaxStringLength = 4096000;
inline constexpr std::int32_t LowestBound = -32768, HighestBound = 32767;
inline constexpr std::size_t MaxFields = 48, MaxIndexes = 5, MaxKeyFields = 4;

struct Range {
    std::int32_t lower = 1, upper = 1;
    bool operator==(const Range&) const = default;
};

struct Type;

struct Field {
    std::string name;
    const Type* type = nullptr;
    std::int32_t offset = 0;  // bytes from the first field
};

struct Index {
    std::string name;         // may be empty
    std::vector<int> fields;  // numbers of row fields, from 1
};

struct Type {
    Kind kind = Kind::None;
    std::int32_t length = Unbounded;  // the capacity of a string, list or table
    bool isExternal = false;          // a list or table that is held in a file
    bool isOpen = false;              // of a library parameter: any shape of this kind
    std::uint8_t dimensions = 0;      // of an array
    std::vector<Range> bounds;        // of a set or an array; empty: found at run time
    const Type* element = nullptr;    // of an array or list; the row of a table
    std::vector<Field> fields;        // of a record or union
    std::vector<Index> indexes;       // of a table
    std::string enumName;             // Class.NAME of an enum that has names
    std::int32_t enumCount = 256;     // its names
    std::string key;                  // spells all of the above
    std::size_t number = 0;           // types are counted as they are made
};

// An order that does not depend on where a type lies in memory.
struct TypeOrder {
    bool operator()(const Type* a, const Type* b) const { return a->number < b->number; }
};

const Type*
plainType(Kind kind);  // without bounds or parts: a scalar, an unbounded string, None, Unknown ...
const Type* stringType(std::int32_t length);
// The one type with these parts; sets the offsets of fields.
const Type* internType(Type parts);
const Type* openType(Kind kind);

inline bool isScalar(Kind kind) {
    return kind >= Kind::Boolean && kind <= Kind::Real;
}
inline bool isComposite(Kind kind) {
    return kind >= Kind::String && kind <= Kind::Table;
}
inline bool isNumber(Kind kind) {
    return kind == Kind::Integer || kind == Kind::Fixed || kind == Kind::Real;
}
inline bool isRecord(Kind kind) {
    return kind == Kind::Record || kind == Kind::Union;
}
std::int32_t sizeOf(Kind kind);  // bytes in a record, array or list

const char* kindName(Kind kind);           // "integer", "list" ...
std::string typePhrase(const Type* type);  // with its article, for messages: "a list of strings"
int fieldNumber(const Type& type, std::string_view name);   // from 1; 0 for none. Without regard to case
int indexNumber(const Type& table, std::string_view name);  // from 1; 0 for none

// How a value of one type stands where another is needed.
enum class Fit : unsigned char {
    Same,     // as it is
    Open,     // as it is, for a parameter that takes several types
    Convert,  // an integer becomes a fixed or real number, a fixed number a real one
    None,
};
Fit fitOf(const Type* from, const Type* to);

}  // namespace tarn::toolchain
