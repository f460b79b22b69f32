// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/classes.h"

#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "toolchain/language/parser.h"
#include "toolchain/language/windows.h"
#include "toolchain/language/words.h"

#include <algorithm>

namespace tarn::toolchain {
namespace {

// Removes "." and ".." from a rooted path, by its text alone.
std::string withoutDots(const std::string& path) {
    std::vector<std::string_view> parts;
    const std::string_view view = path;
    for (std::size_t begin = 0; begin < view.size();) {
        std::size_t end = view.find('/', begin);
        if (end == std::string_view::npos) end = view.size();
        const std::string_view part = view.substr(begin, end - begin);
        if (part == "..") {
            if (!parts.empty()) parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        begin = end + 1;
    }
    std::string result;
    for (const std::string_view part : parts) result.append("/").append(part);
    if (result.empty() || (!path.empty() && path.back() == '/')) result += '/';
    return result;
}

std::string findInFolder(const std::string& file, const std::string& folder) {
    if (os::sizeOf(folder + file) >= 0) return folder + file;
    std::vector<std::string> names;
    if (os::files().list(folder, names) != os::FileError::None) return {};
    for (const std::string& name : names)
        if (ascii::equal(name, file) && os::sizeOf(folder + name) >= 0) return folder + name;
    return {};
}

}  // namespace

std::vector<std::string> splitPathList(std::string_view list) {
    std::vector<std::string> result;
    while (!list.empty()) {
        const std::size_t end = list.find(';');
        std::string_view item = list.substr(0, end);
        list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
        while (!item.empty() && item.front() == ' ') item.remove_prefix(1);
        while (!item.empty() && item.back() == ' ') item.remove_suffix(1);
        if (!item.empty()) result.emplace_back(item);
    }
    return result;
}

std::string fullPath(const std::string& path) {
    const std::string name = os::native(path);
    if (!name.empty() && name.front() == '/') return withoutDots(name);
    return withoutDots(os::files().currentFolder() + "/" + name);
}

std::string changeExtension(const std::string& path, std::string_view extension) {
    return std::string(paths::withoutExtension(path)).append(extension);
}

bool isClassFile(const std::string& path) {
    return ascii::equal(paths::extension(path), ".cls");
}

std::string findClassFile(const std::string& name, const std::string& folder,
                          const std::vector<std::string>& path) {
    std::string found = findInFolder(name + ".cls", folder);
    for (auto next = path.begin(); found.empty() && next != path.end(); ++next) {
        std::string place = fullPath(*next);
        if (place.back() != '/') place += '/';
        found = findInFolder(name + ".cls", place);
    }
    return found;
}

bool isBuiltInClass(std::string_view name) {
    return ascii::equal(name, "system");
}

ClassTree* ClassLoader::read(const std::string& file, Messages& messages) {
    const auto known = trees_.find(file);
    if (known != trees_.end()) return known->second.get();
    std::string text;
    newest_ = std::max(newest_, os::infoOf(file).modified);
    const os::FileError error = os::readFile(file, text);
    if (error != os::FileError::None) {
        messages.add(file, 0, Problem::CannotRead, {os::describe(error)});
        return nullptr;
    }
    ClassTree* tree = trees_.emplace(file, parseClass(text, file, messages)).first->second.get();
    if (!tree->name.empty()) declareWindows(*tree);
    waiting_.push_back(tree);
    return tree;
}

void ClassLoader::link(ClassTree& tree, Messages* messages) {
    for (UsedClass& used : tree.uses) {
        if (isBuiltInClass(used.name)) continue;
        Messages silent;
        Messages& heard = messages != nullptr ? *messages : silent;
        const std::string file = findClassFile(used.name, std::string(paths::folder(tree.path)), path_);
        used.tree = file.empty() ? nullptr : read(file, silent);
        if (used.tree == nullptr)
            heard.add(tree.path, used.line, Problem::ClassNotFound, {used.name});
        else if (used.tree == &tree)
            heard.add(tree.path, used.line, Problem::UsesItself);
        else if (!used.tree->name.empty() && !ascii::equal(used.tree->name, used.name))
            heard.add(tree.path, used.line, Problem::OtherClassName, {used.name, used.tree->name});
        else if (!used.tree->complete)
            heard.add(tree.path, used.line, Problem::UsedClassHasErrors, {used.name});
    }
}

ClassTree* ClassLoader::load(const std::string& file, Messages& messages) {
    ClassTree* first = read(file, messages);
    while (!waiting_.empty()) {
        ClassTree* tree = waiting_.back();
        waiting_.pop_back();
        link(*tree, tree == first ? &messages : nullptr);
    }
    return first;
}

}  // namespace tarn::toolchain
