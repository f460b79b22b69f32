// SPDX-License-Identifier: Apache-2.0
//
// The lines of the debugger's list: texts in one piece, and what is marked at each. Cost: filling is linear in the text,
// all else is constant.
#pragma once

#include "platform/operations/debugger.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

class DebugLines {
public:
    void fill(std::string text);
    [[nodiscard]] int count() const { return static_cast<int>(marks_.size()); }
    [[nodiscard]] bool has(int line) const { return line >= 1 && line <= count(); }
    // Of a line that does not exist: empty, none.
    [[nodiscard]] std::string_view text(int line) const;
    [[nodiscard]] int flags(int line) const { return has(line) ? at(line).flags : 0; }
    [[nodiscard]] DebugMarker marker(int line) const {
        return has(line) ? at(line).marker : DebugMarker::None;
    }
    [[nodiscard]] bool hasMarkers() const { return markers_ > 0; }
    // Whether that changed anything.
    bool setFlags(int line, int flags);
    bool setMarker(int line, DebugMarker marker);

private:
    struct Mark {
        std::uint8_t flags = 0;
        DebugMarker marker = DebugMarker::None;
    };
    [[nodiscard]] const Mark& at(int line) const { return marks_[static_cast<std::size_t>(line - 1)]; }
    [[nodiscard]] Mark& at(int line) { return marks_[static_cast<std::size_t>(line - 1)]; }

    std::string text_;
    std::vector<std::size_t> starts_;  // of each line, and one behind the end of the last
    std::vector<Mark> marks_;
    int markers_ = 0;  // lines that have one
};

}  // namespace tarn::platform
