// SPDX-License-Identifier: Apache-2.0
#include "disk_rows.h"

namespace bench {

std::int32_t keyOf(std::int32_t row, std::int32_t field) {
    constexpr std::uint32_t odd[] = {2654435761U, 2246822519U, 3266489917U, 668265263U, 374761393U};
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(row) * odd[field]);
}
std::int32_t fieldOf(std::int32_t row, std::int32_t field) {
    return field < MostIndexes ? keyOf(row, field) : row;
}

void appendBigEndian(std::string& bytes, std::uint32_t word) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(word >> shift);
}

std::string bytesOfRow(std::int32_t row) {
    std::string bytes;
    for (std::int32_t field = 0; field < RowFields; ++field)
        appendBigEndian(bytes, static_cast<std::uint32_t>(fieldOf(row, field)));
    return bytes;
}
std::string bytesOfRows(std::int32_t rows) {
    std::string bytes;
    for (std::int32_t i = 0; i < rows; ++i) bytes += bytesOfRow(i);
    return bytes;
}

std::string storeName(const char* what, std::int32_t rows, std::int32_t indexes) {
    return what + std::to_string(rows) + "x" + std::to_string(indexes);
}

}  // namespace bench
