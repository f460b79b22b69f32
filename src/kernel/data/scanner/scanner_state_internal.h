// SPDX-License-Identifier: Apache-2.0
//
// The state of the one scanner, and what moves it. The passes of a scan (scanner_pass.cpp) fill what is "of
// the scan that goes on"; the operations (scanner.cpp) make of it what callers see.
#pragma once

#include "kernel/data/scanner/scanner.h"
#include "kernel/data/scanner/scanner_lines.h"
#include "kernel/data/scanner/scanner_match_internal.h"

#include <array>
#include <cstring>
#include <string>

namespace tarn::scanning {

inline std::string_view viewOf(const unsigned char* from, const unsigned char* end) {
    return {reinterpret_cast<const char*>(from), static_cast<std::size_t>(end - from)};
}

// The text of a symbol; what does not fit is lost.
class Text {
public:
    [[nodiscard]] std::string_view view() const { return {bytes_, length_}; }
    void clear() { length_ = 0; }
    void append(std::string_view text) {
        text = text.substr(0, limit - length_);
        std::memcpy(bytes_ + length_, text.data(), text.size());
        length_ += text.size();
    }
    // Of a line, behind which there is slack: short runs, which are nearly all, are copied in one step.
    void appendRun(const unsigned char* from, const unsigned char* end) {
        const auto count = static_cast<std::size_t>(end - from);
        if (count > ScannerSlack || length_ + count > limit) return append(viewOf(from, end));
        std::memcpy(bytes_ + length_, from, ScannerSlack);
        length_ += count;
    }

private:
    static constexpr std::size_t limit = MaxScannerLine;
    std::size_t length_ = 0;
    char bytes_[limit + ScannerSlack];  // not cleared, for texts are static
};

inline constexpr std::array<std::int32_t, SymbolClassCount> noClasses = [] {
    std::array<std::int32_t, SymbolClassCount> ids{};
    ids.fill(SymbolUnknown);
    return ids;
}();

struct Scanner {
    std::string filename;  // empty: closed
    LineReader lines;
    const unsigned char* at = lines.begin();  // the next unread byte
    bool ignoreCase = false;
    std::array<std::int32_t, SymbolClassCount> classIds = noClasses;  // as they were when the file was opened
    SymbolMatcher matcher;

    std::int32_t symbol = 0, symbolLine = 0;
    std::int32_t openLine = 0;  // where the last delimited symbol began that the file ended in
    Text texts[3];
    Text* symbolText = &texts[0];
    Text* previousText = &texts[1];

    // Of the scan that goes on. Its text is what stands in `text`, and then the line between `from` and `at`.
    const SymbolTable* table = nullptr;
    ScanStatus status = ScanClean;
    std::int32_t found = 0;
    Text* text = &texts[2];
    const unsigned char* from = at;
    std::string_view terminator;  // of a delimited symbol, else empty
};

// Not seen outside of the library, so that it is reached directly.
[[gnu::visibility("hidden")]] extern Scanner s;

// The first finding of a scan stays.
inline void note(ScanStatus status) {
    if (s.status == ScanClean) s.status = status;
}

inline void collect() {
    s.text->appendRun(s.from, s.at);
    s.from = s.at;
}

inline void nextLine() {
    s.lines.next();
    s.at = s.from = s.lines.begin();
}

// Takes one symbol, which is to be passed over if `found` is 0.
void pass();

}  // namespace tarn::scanning
