// SPDX-License-Identifier: Apache-2.0
//
// What the file system in memory is made of, for the sources steeredfiles*.cpp.
#pragma once

#include "support/steerable.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tarn::os {

enum NodeKind { AFile, AFolder, ALink };
inline constexpr std::size_t longestName = 255, longestPath = 4095;
inline constexpr int mostLinks = 40;
inline constexpr std::uint32_t readBit = 4, writeBit = 2;

struct State {          // what a sync makes lasting
    std::string bytes;  // of a file; of a link its target
    std::uint32_t mode = 0, owner = SteeredFiles::user, group = SteeredFiles::user;
    std::int64_t modified = 0;
};

struct Change {
    bool cuts = false;
    std::size_t at = 0;  // of a cut: the size
    std::string bytes;
};

void apply(const Change& change, std::string& bytes);
std::vector<std::string> partsOf(const std::string& path);

struct SteeredFiles::Node {
    int kind = AFile;
    std::uint64_t inode = 0;
    std::uint32_t links = 1;
    std::int64_t changed = 0;
    State state, lasting;
    bool everSynced = false;
    std::vector<Change> unsynced;
    std::map<std::string, NodePointer> names, lastingNames;  // of a folder
};

// Where a path leads: the folder, the last part, and the node if it exists.
struct SteeredFiles::Place {
    NodePointer folder, node;
    std::string name, path;  // the full path without links
};

}  // namespace tarn::os
