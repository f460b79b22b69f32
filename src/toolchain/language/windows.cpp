// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/windows.h"

#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "platform/resources/rctext.h"
#include "toolchain/language/library.h"

namespace tarn::toolchain {
namespace {

using platform::RcKind;

std::string valueOf(const platform::RcObject& object, std::string_view name) {
    for (const platform::RcProperty& property : object.properties)
        if (property.name == name) return property.value;
    return {};
}

void addObjects(const std::string& window, const std::vector<platform::RcObject>& objects,
                std::vector<NamedObject>& list) {
    for (const platform::RcObject& object : objects)
        list.push_back({window, object.givenName(), std::string(platform::typeName(object.type)),
                        valueOf(object, "ARRAY")});
}

Declaration& declare(ClassTree& tree, const std::string& control, const NamedObject& object) {
    const auto [place, isNew] = tree.names.emplace(windowKey(object.window, control), nullptr);
    if (!isNew) return *place->second;
    auto item = std::make_unique<Declaration>();
    item->kind = DeclarationKind::Window;
    item->name = control.empty() ? object.window : control;
    item->window = object.window;
    item->control = control;
    item->controlType = object.type;
    item->isPublic = true;
    item->owner = &tree;
    item->line = tree.line;
    item->lower = 1;
    item->upper = 0;
    item->resolving = Progress::Done;
    item->type = systemType("Control");
    place->second = item.get();
    tree.declarations.push_back(std::move(item));
    return *place->second;
}

// The array stands for its first member, from which the others are found.
void countMember(Declaration& array, const std::string& name) {
    if (array.upper++ == 0) array.control = name;
}

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

namespace {

std::vector<NamedObject> objectsOf(const platform::RcFile& file) {
    std::vector<NamedObject> list;
    for (const platform::RcStatement& statement : file.statements) {
        if (statement.kind != RcKind::Window || !statement.fault.empty()) continue;
        list.push_back({statement.name, {}, "window", {}});
        addObjects(statement.name, statement.objects, list);
        const platform::RcStatement* menu = file.find(RcKind::Menu, valueOf(statement.self, "MENU"));
        if (menu != nullptr && menu->fault.empty()) addObjects(statement.name, menu->objects, list);
    }
    return list;
}

std::vector<WindowFault> faultsOf(const std::string& path, const platform::RcFile& file) {
    std::vector<WindowFault> faults;
    if (!file.fault.empty()) faults.push_back({path, file.fault.text, file.fault.line});
    for (const platform::RcStatement& statement : file.statements)
        if ((statement.kind == RcKind::Window || statement.kind == RcKind::Menu) && !statement.fault.empty())
            faults.push_back({path, statement.fault.text, statement.fault.line});
    return faults;
}

}  // namespace

std::vector<NamedObject> namedObjects(std::string resources) {
    return objectsOf(platform::parseResourceText(std::move(resources)));
}

std::string windowNames(const std::string& resources) {
    std::string text;
    if (resources.empty()) return text;
    for (const NamedObject& object : namedObjects(resources))
        text += object.window + '#' + object.control + ':' + object.type + ' ' + object.array + '\n';
    return text;
}

void declareWindows(ClassTree& tree) {
    const std::string file = twinOf(tree.path);
    std::string text;
    if (file.empty() || os::readFile(file, text) != os::FileError::None) return;
    const platform::RcFile resources = platform::parseResourceText(std::move(text));
    tree.windowFaults = faultsOf(file, resources);
    for (const NamedObject& object : objectsOf(resources)) {
        if (object.control.empty() && object.type != "window") continue;  // nameless
        declare(tree, object.control, object);
        if (!object.array.empty()) countMember(declare(tree, object.array, object), object.control);
    }
}

}  // namespace tarn::toolchain
