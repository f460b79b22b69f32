// SPDX-License-Identifier: Apache-2.0
//
// The product's fixed data: what is told of it in windows, in files and to templates (library/source/codewiz.h), and the
// limits of what it makes. Its name, version and build stand in kernel/run/runtime.h, where every program has them.
#pragma once

#include "kernel/run/runtime.h"

#include <cstddef>
#include <string_view>

namespace tarn {

inline constexpr std::string_view ProductId = "tarnwick";
inline constexpr std::string_view ProductDescription = "Development environment of Tarnwick";
inline constexpr std::string_view ProductMaker = "the developers of Tarnwick";
inline constexpr std::string_view ProductIcon = "mainicon.ico";  // beside the executable
// There is no address to write to, and no page of its own: both are empty. A copy that has a page names it in its
// settings (Product, Website).
inline constexpr std::string_view ProductEmail;
inline constexpr std::string_view ProductWebAddress;

inline constexpr std::string_view SourceExtension = ".cls";

inline constexpr std::size_t MaxIdentifier = 40;                   // characters of a name in a class
inline constexpr int MaxCompilerSymbols = 9999;                    // that the compiler can be told to allow
inline constexpr int MaxCommPort = 256;                            // that programs offer: COM1 to COM256
inline constexpr int MaxKeySegments = 4, MaxConnectorFields = 48;  // of a connector class

}  // namespace tarn
