// SPDX-License-Identifier: Apache-2.0
#include "kernel/windows/resourcetext.h"

#include "platform/resources/properties.h"
#include "platform/resources/rcedit.h"
#include "platform/resources/rctext.h"

#include <algorithm>

namespace tarn {

std::string ResourceStatement(const std::vector<std::string>& objects) {
    ObjectArray window, none;
    if (objects.size() > window.size()) return {};
    std::copy(objects.begin(), objects.end(), window.begin());
    platform::RcFile file = platform::parseResourceText("");
    return platform::writeObjects(file, "", window, none).empty() ? file.text : std::string();
}

std::vector<std::string> ResourceStatementObjects(const std::string& text, const std::string& name) {
    const platform::RcFile file = platform::parseResourceText(text);
    const platform::RcStatement* const window = file.find(platform::RcKind::Window, name);
    if (!file.fault.empty() || file.statements.size() != 1 || window == nullptr || !window->fault.empty())
        return {};
    std::vector<std::string> objects = {
        platform::makePropertyList(window->name, window->self.type, window->self.values())};
    for (const platform::RcObject& one : window->objects)
        objects.push_back(platform::makePropertyList(one.givenName(), one.type, one.values()));
    return objects;
}

std::string ResourceTextDelete(std::string& text, const std::string& file, const std::string& kind,
                               const std::string& name) {
    platform::RcFile parsed = platform::parseResourceText(text);
    const std::string error = platform::deleteStatement(parsed, file, kind, name);
    if (error.empty()) text = parsed.text;
    return CutResourceError(error);
}

ResourceText ResourceTextInfo(const std::string& text, const std::string& file, const std::string& kind,
                              const std::string& name) {
    return CutResourceText(platform::listStatements(platform::parseResourceText(text), file, kind, name),
                           file);
}

std::string ResourceTextLines(const std::string& text, const std::string& file, const std::string& kind) {
    return platform::listStatements(platform::parseResourceText(text), file, kind, "*").text;
}

}  // namespace tarn
