// SPDX-License-Identifier: Apache-2.0
//
// The two halves of a path, for this layer's own use. No disk access.
#pragma once

#include <string>

namespace tarn::os {

// The folder part without the "/" at its end ("/" for the root itself; "" if there is no "/").
inline std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return {};
    return slash == 0 ? "/" : path.substr(0, slash);
}

inline std::string nameOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// `folder` and `name` with one "/" between them.
inline std::string joined(const std::string& folder, const std::string& name) {
    if (folder.empty() || folder.back() == '/') return folder + name;
    return folder + "/" + name;
}

inline void stripTrailingSlashes(std::string& path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
}

}  // namespace tarn::os
