// SPDX-License-Identifier: Apache-2.0
//
// Where classes are found, and the classes that one compile needs. A class that another one names in `Uses`
// is looked for in the folder of that class, then in the folders of the path, in order. The file has the
// class's name as given; if there is none, a file whose name differs in case only is taken.
#pragma once

#include "toolchain/language/tree.h"
#include "toolchain/output/messages.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

// ---- paths ----

std::vector<std::string> splitPathList(std::string_view list);  // by ";", blanks trimmed, empty ones left out
std::string fullPath(const std::string& path);  // against the current folder; "." and ".." resolved
std::string changeExtension(const std::string& path, std::string_view extension);
bool isClassFile(const std::string& path);  // the extension is .cls
// Full path of the file that holds `name`; empty if there is none.
std::string findClassFile(const std::string& name, const std::string& folder,
                          const std::vector<std::string>& path);
// The library that every class sees; naming it in `Uses` changes nothing.
bool isBuiltInClass(std::string_view name);

// ---- classes ----

// Reads classes, each file once.
class ClassLoader {
public:
    explicit ClassLoader(std::vector<std::string> path) : path_(std::move(path)) {}

    // Reads a class and all that it uses, directly and indirectly. Null if `file` cannot be read. Messages
    // are given for `file` alone: those of the others come when they are compiled.
    ClassTree* load(const std::string& file, Messages& messages);
    // The time of the newest file that was read, taken before it was read; nanoseconds since 1970-01-01 UTC.
    std::int64_t newest() const { return newest_; }

private:
    ClassTree* read(const std::string& file, Messages& messages);
    void link(ClassTree& tree, Messages* messages);

    std::vector<std::string> path_;
    std::map<std::string, std::unique_ptr<ClassTree>> trees_;  // by full path
    std::vector<ClassTree*> waiting_;
    std::int64_t newest_ = 0;
};

}  // namespace tarn::toolchain
