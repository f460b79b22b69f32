// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/runto.h"

#include "kernel/debug/debugsettings.h"

#include <charconv>
#include <system_error>

namespace tarn {

RunToPlace TakeRunTo(std::string_view settingsFile) {
    const std::string value = DebugSetting(settingsFile, DebugSection, RunToKey);
    if (value.empty()) return {};
    static_cast<void>(SaveDebugSettings(settingsFile, {{RunToKey, ""}}));
    const std::size_t blank = value.find(' ');
    if (blank == 0 || blank == std::string::npos) return {};
    RunToPlace place;
    const char* const end = value.data() + value.size();
    const auto [stop, error] = std::from_chars(value.data() + blank + 1, end, place.line);
    if (error != std::errc() || stop != end || place.line < 1) return {};
    place.className = value.substr(0, blank);
    return place;
}

}  // namespace tarn
