// SPDX-License-Identifier: Apache-2.0
//
// The rows of the benchmarks of tables on disk: six integers, of which the first ones are keys, all unique.
#pragma once

#include <cstdint>
#include <string>

namespace bench {

inline constexpr std::int32_t RowFields = 6, MostIndexes = 5;

// Unique in each field, in an order of its own.
std::int32_t keyOf(std::int32_t row, std::int32_t field);
std::int32_t fieldOf(std::int32_t row, std::int32_t field);

void appendBigEndian(std::string& bytes, std::uint32_t word);
std::string bytesOfRow(std::int32_t row);
std::string bytesOfRows(std::int32_t rows);

// A file that belongs to the rows and indexes of one benchmark.
std::string storeName(const char* what, std::int32_t rows, std::int32_t indexes);

}  // namespace bench
