// SPDX-License-Identifier: Apache-2.0
//
// Records of an index file as bytes: each begins with its number, and is told from its other versions by a letter.
#pragma once

#include "kernel/index/index_filelayout.h"

#include <cstdint>
#include <string>

namespace tarn {

inline constexpr std::int32_t recordSize = 28, nearBytes = 28;

inline std::string recordOf(std::int32_t number, char version = 'a') {
    std::string record(recordSize, version);
    record.replace(0, 8, std::to_string(10000000 + number));
    return record;
}
inline std::int64_t placeOf(std::int32_t number) {
    return IndexRecordAt(number, recordSize);
}

}  // namespace tarn
