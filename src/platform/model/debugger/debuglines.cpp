// SPDX-License-Identifier: Apache-2.0
#include "platform/model/debugger/debuglines.h"

#include <utility>

namespace tarn::platform {

void DebugLines::fill(std::string text) {
    text_ = std::move(text);
    if (!text_.empty() && text_.back() != '\n') text_ += '\n';
    starts_.assign(1, 0);
    for (std::size_t end = text_.find('\n'); end != std::string::npos; end = text_.find('\n', end + 1))
        starts_.push_back(end + 1);
    marks_.assign(starts_.size() - 1, Mark{});
    markers_ = 0;
}

std::string_view DebugLines::text(int line) const {
    if (!has(line)) return {};
    const std::size_t from = starts_[static_cast<std::size_t>(line - 1)];
    const std::size_t end = starts_[static_cast<std::size_t>(line)] - 1;
    return std::string_view(text_).substr(from, end - from);
}

bool DebugLines::setFlags(int line, int flags) {
    if (!has(line) || at(line).flags == flags) return false;
    at(line).flags = static_cast<std::uint8_t>(flags);
    return true;
}

bool DebugLines::setMarker(int line, DebugMarker marker) {
    if (!has(line) || at(line).marker == marker) return false;
    markers_ += (marker != DebugMarker::None ? 1 : 0) - (at(line).marker != DebugMarker::None ? 1 : 0);
    at(line).marker = marker;
    return true;
}

}  // namespace tarn::platform
