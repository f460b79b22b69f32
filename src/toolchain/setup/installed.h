// SPDX-License-Identifier: Apache-2.0
//
// The list of what is installed, `uninstall.list`: a line for each fact.
//
//     tarnwick installed 1
//     name wordcount
//     file 120320 1A2B3C4D5E6F7081 wordcount.exe      bytes, CRC-64, name
//     entry /home/ann/.local/share/applications/wordcount.desktop
//     folder /home/ann/.local/opt
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::setup {

struct InstalledFile {
    std::string name;
    std::int64_t size = 0;
    std::uint64_t sum = 0;
};
struct Installed {
    std::string name;
    std::vector<InstalledFile> files;
    std::vector<std::string> entries, folders;  // the folders in the order in which they were made

    [[nodiscard]] const InstalledFile* find(std::string_view file) const;  // null: not among them
    // Whether it belongs there: a file, the list itself, or the program that removes it.
    [[nodiscard]] bool owns(std::string_view file) const;
};

std::string textOf(const Installed& installed);
// Reads the list in a folder; false if there is none, or one with a line that nobody has written so.
bool readInstalled(const std::string& app, Installed& installed);

}  // namespace tarn::setup
