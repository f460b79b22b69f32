// SPDX-License-Identifier: Apache-2.0
#include "library/system/shortname.h"

#include "kernel/run/runtime.h"
#include "library/system/files.h"
#include "os/text/utf8.h"

#include <algorithm>

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::string_view Dots = "...";

std::string_view firstOf(std::string_view text, std::size_t count) {
    count = std::min(count, text.size());
    while (count > 0 && utf8::isInside(text, count)) --count;
    return text.substr(0, count);
}

std::string_view lastOf(std::string_view text, std::size_t count) {
    std::size_t at = text.size() - std::min(count, text.size());
    while (utf8::isInside(text, at)) ++at;
    return text.substr(at);
}

}  // namespace

std::string FIRSTBYTES(std::string_view text, int width) {
    FRAME(FIRSTBYTES);
    return std::string(firstOf(text, static_cast<std::size_t>(std::max(width, 0))));
}

std::string FILESHORTENNAME(std::string_view name, int width) {
    FRAME(FILESHORTENNAME);
    const auto room = static_cast<std::size_t>(std::max(width, 0));
    if (name.size() <= room) return std::string(name);
    const PathParts parts = SPLITPATH(name);
    const std::size_t kept = parts.drive.size() + Dots.size() + parts.name.size() + parts.extension.size();
    std::string out;
    if (kept <= room) {
        const std::size_t left = room - kept;
        out.append(parts.drive).append(firstOf(parts.directory, left / 2)).append(Dots);
        return out.append(lastOf(parts.directory, left - left / 2))
            .append(parts.name)
            .append(parts.extension);
    }
    if (room <= Dots.size()) return std::string(Dots.substr(0, room));
    return out.append(Dots).append(lastOf(name, room - Dots.size()));
}

}  // namespace tarn
