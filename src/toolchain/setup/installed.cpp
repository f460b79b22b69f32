// SPDX-License-Identifier: Apache-2.0
#include "toolchain/setup/installed.h"

#include "os/files.h"
#include "toolchain/setup/package.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace tarn::setup {
namespace {

constexpr std::string_view FirstLine = "tarnwick installed 1";

std::string hexadecimal(std::uint64_t number) {
    char text[17];
    std::snprintf(text, sizeof text, "%016llX", static_cast<unsigned long long>(number));
    return text;
}

bool readFile(const std::string& text, Installed& installed) {
    char* end = nullptr;
    InstalledFile file;
    file.size = std::strtoll(text.c_str(), &end, 10);
    if (*end != ' ') return false;
    file.sum = std::strtoull(end, &end, 16);
    if (*end != ' ' || !isPlainName(end + 1)) return false;
    file.name = end + 1;
    installed.files.push_back(std::move(file));
    return true;
}

bool readLine(const std::string& line, Installed& installed) {
    const std::size_t blank = std::min(line.find(' '), line.size());
    const std::string word = line.substr(0, blank);
    const std::string text = line.substr(std::min(blank + 1, line.size()));
    if (word == "name") installed.name = text;
    if (word == "file") return readFile(text, installed);
    const bool isEntry = word == "entry" && text.starts_with('/') && text.ends_with(".desktop");
    const bool isFolder = word == "folder" && text.starts_with('/');
    if (isEntry) installed.entries.push_back(text);
    if (isFolder) installed.folders.push_back(text);
    return word == "name" || isEntry || isFolder;
}

}  // namespace

const InstalledFile* Installed::find(std::string_view file) const {
    const auto place =
        std::find_if(files.begin(), files.end(), [&](const InstalledFile& one) { return one.name == file; });
    return place == files.end() ? nullptr : &*place;
}

bool Installed::owns(std::string_view file) const {
    return file == UninstallName || file == ListName || find(file) != nullptr;
}

std::string textOf(const Installed& installed) {
    std::string text = std::string(FirstLine) + "\nname " + installed.name + "\n";
    for (const InstalledFile& file : installed.files)
        text += "file " + std::to_string(file.size) + " " + hexadecimal(file.sum) + " " + file.name + "\n";
    for (const std::string& entry : installed.entries) text += "entry " + entry + "\n";
    for (const std::string& folder : installed.folders) text += "folder " + folder + "\n";
    return text;
}

bool readInstalled(const std::string& app, Installed& installed) {
    std::string text;
    if (os::readFile(app + "/" + std::string(ListName), text) != os::FileError::None) return false;
    bool first = true;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        if (first ? line != FirstLine : !readLine(line, installed)) return false;
        first = false;
        at = end + 1;
    }
    return isPlainName(installed.name);
}

}  // namespace tarn::setup
