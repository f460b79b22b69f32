// SPDX-License-Identifier: Apache-2.0
//
// The text of a symbol: as many bytes as a line has; what does not fit is lost.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t MaxScannerLine = 32768;  // bytes of a line, with its end
// Bytes that may be read and written behind every line and text, so that short runs are copied in one step.
inline constexpr std::size_t ScannerSlack = 16;

class ScannerText {
public:
    [[nodiscard]] std::string_view view() const { return {bytes_, length_}; }
    void clear() { length_ = 0; }
    void append(std::string_view text) {
        text = text.substr(0, limit - length_);
        std::memcpy(bytes_ + length_, text.data(), text.size());
        length_ += text.size();
    }
    // Of a line, behind which there is slack: nearly all runs are short.
    void appendRun(const unsigned char* from, const unsigned char* end) {
        const auto count = static_cast<std::size_t>(end - from);
        if (count > ScannerSlack || length_ + count > limit)
            return append({reinterpret_cast<const char*>(from), count});
        std::memcpy(bytes_ + length_, from, ScannerSlack);
        length_ += count;
    }

private:
    static constexpr std::size_t limit = MaxScannerLine;
    std::size_t length_ = 0;
    char bytes_[limit + ScannerSlack];  // not cleared
};

}  // namespace tarn
