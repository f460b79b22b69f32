// SPDX-License-Identifier: Apache-2.0
//
// The parts of a path: the one place that takes paths apart. No disk access, and no failure.
//
// tarn::paths takes either separator, '/' and '\\', as programs and the files of users write them; its views
// point into the path that was given. tarn::os takes '/' alone: for the native names that the operating
// system knows.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::paths {

inline constexpr std::string_view separators = "/\\";

// Where the file part begins; 0 when the path is nothing else.
constexpr std::size_t filePosition(std::string_view path) {
    return path.find_last_of(separators) + 1;  // npos + 1 is 0
}
// What stands behind the last separator.
constexpr std::string_view fileName(std::string_view path) {
    return path.substr(filePosition(path));
}
// What stands in front of the file part, with its separator; empty when there is none.
constexpr std::string_view folder(std::string_view path) {
    return path.substr(0, filePosition(path));
}
// From the last '.' of the file part on, with it; empty when there is none.
constexpr std::string_view extension(std::string_view path) {
    const std::string_view file = fileName(path);
    const std::size_t dot = file.rfind('.');
    return dot == std::string_view::npos ? std::string_view() : file.substr(dot);
}
// The path without its extension.
constexpr std::string_view withoutExtension(std::string_view path) {
    return path.substr(0, path.size() - extension(path).size());
}
// The file part without its extension.
constexpr std::string_view stem(std::string_view path) {
    return withoutExtension(fileName(path));
}

}  // namespace tarn::paths

namespace tarn::os {

// The folder part without the "/" at its end ("/" for the root itself; "" if there is no "/").
inline std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return {};
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The folder part with its "/"; "" if there is none.
inline std::string folderPart(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);  // npos + 1 is 0
}

inline std::string nameOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Without the extension of the file part. A name that begins with its only '.' has none.
inline std::string withoutExtension(const std::string& path) {
    const std::size_t name = path.rfind('/') + 1, dot = path.rfind('.');  // npos + 1 is 0
    return dot != std::string::npos && dot > name ? path.substr(0, dot) : path;
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
