// SPDX-License-Identifier: Apache-2.0
//
// Empty values that show the shapes of a class's composite types: each type once, made when the class is set
// up. Variables and temporaries of a type are made like them.
#pragma once

#include "toolchain/language/types.h"

#include <map>
#include <string>
#include <vector>

namespace tarn::toolchain {

class Shapes {
public:
    std::string pointerTo(const Type* type);  // a C expression
    // A statement that makes the value at a C address an empty one of the type: a string, set ... table.
    std::string initialise(const std::string& address, const Type* type);
    // All of these once every type is known.
    [[nodiscard]] std::string definitions() const { return definitions_; }
    [[nodiscard]] std::string initialisation() const { return setup_; }
    [[nodiscard]] std::string release() const;

private:
    void make(const std::string& name, const Type* type);
    std::string construct(const std::string& name, const Type* type);
    std::string constructRecord(const std::string& name, const Type* type);
    std::string constructTable(const std::string& name, const Type* type);
    std::string elementShape(const Type* element);

    std::map<const Type*, std::string> names_;
    std::vector<const Type*> order_;
    std::string definitions_, setup_;
};

// The declaration of a row or record as the run-time keeps it with a table: a line for each field.
std::string typeInformation(const Type& record);

}  // namespace tarn::toolchain
