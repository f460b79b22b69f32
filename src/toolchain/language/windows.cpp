// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/windows.h"

#include "kernel/windows/resources.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "toolchain/language/library.h"

namespace tarn::toolchain {
namespace {

// The value of a property in a property list, without its quotes.
std::string property(std::string_view list, std::string_view name) {
    while (!list.empty()) {
        std::string_view line = ascii::takeLine(list);
        while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
        const std::size_t sign = line.find('=');
        if (sign == std::string_view::npos || !ascii::equal(line.substr(0, sign), name)) continue;
        line.remove_prefix(sign + 1);
        if (line.size() > 1 && line.front() == '"' && line.back() == '"') line = line.substr(1, line.size() - 2);
        return std::string(line);
    }
    return {};
}

class WindowReader {
public:
    WindowReader(ClassTree& tree, std::string file) : tree_(tree), file_(std::move(file)) {}

    void run() {
        std::string_view lines = list_ = ResourceInfo(file_, "DIALOG", "*").text;
        while (!lines.empty()) {
            const std::string_view line = ascii::takeLine(lines);
            const std::string name(line.substr(0, line.find_first_of(" \r\n")));
            if (!name.empty()) window(name);
        }
    }

private:
    void window(const std::string& name) {
        platform::ObjectArray objects;
        if (!platform::ResourceRead(file_, name, objects).empty()) return;
        declare(name, {}, "window");
        controls(name, objects);
        const std::string menu = property(objects[0], "MENU");
        platform::ObjectArray items;
        if (!menu.empty() && platform::ResourceRead(file_, menu, items).empty()) controls(name, items);
    }

    void controls(const std::string& window, const platform::ObjectArray& objects) {
        for (std::size_t i = 1; i < objects.size() && !objects[i].empty(); ++i) {
            const std::string name = property(objects[i], "NAME"), array = property(objects[i], "ARRAY");
            const std::string type = property(objects[i], "TYPEOF");
            if (!name.empty()) declare(window, name, type);
            if (!array.empty()) member(declare(window, array, type), name);
        }
    }

    // The array stands for its first member, from which the others are found.
    static void member(Declaration& array, const std::string& name) {
        if (array.upper++ == 0) array.control = name;
    }

    Declaration& declare(const std::string& window, const std::string& control, const std::string& type) {
        const auto [place, isNew] = tree_.names.emplace(windowKey(window, control), nullptr);
        if (!isNew) return *place->second;
        auto item = std::make_unique<Declaration>();
        item->kind = DeclarationKind::Window;
        item->name = control.empty() ? window : control;
        item->window = window;
        item->control = control;
        item->controlType = type;
        item->isPublic = true;
        item->owner = &tree_;
        item->line = tree_.line;
        item->lower = 1;
        item->upper = 0;
        item->resolving = Progress::Done;
        item->type = systemType("Control");
        place->second = item.get();
        tree_.declarations.push_back(std::move(item));
        return *place->second;
    }

    ClassTree& tree_;
    std::string file_, list_;
};

}  // namespace

std::string windowKey(const std::string& window, const std::string& control) {
    return ascii::lowered(window) + "#" + ascii::lowered(control);
}

std::string twinOf(const std::string& file) {
    for (const char* extension : {".rc", ".RC"}) {
        std::string twin = std::string(paths::withoutExtension(file)) + extension;
        if (os::sizeOf(twin) >= 0) return twin;
    }
    return {};
}

void declareWindows(ClassTree& tree) {
    std::string file = twinOf(tree.path);
    if (!file.empty()) WindowReader(tree, std::move(file)).run();
}

}  // namespace tarn::toolchain
