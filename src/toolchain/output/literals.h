// SPDX-License-Identifier: Apache-2.0
//
// The string literals of a class: each text once, made when the class is set up and never changed.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

class Literals {
public:
    std::string pointerTo(const std::string& text);  // a C expression
    [[nodiscard]] std::string definition() const;
    [[nodiscard]] std::string initialisation() const;
    [[nodiscard]] std::string release() const;

private:
    std::map<std::string, std::size_t> numbers_;
    std::vector<const std::string*> texts_;
};

}  // namespace tarn::toolchain
