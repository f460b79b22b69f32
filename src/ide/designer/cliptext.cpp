// SPDX-License-Identifier: GPL-3.0-or-later
//
// The grammar is that of resource files; its reader and writer work on texts in memory here.
#include "ide/designer/cliptext.h"

#include "library/designer/proputil.h"
#include "library/system/system.h"
#include "platform/resources/properties.h"
#include "platform/resources/rcedit.h"
#include "platform/resources/rctext.h"

#include <algorithm>

namespace tarn {
namespace {

using platform::RcFile;

const std::string Holder = "Copied";  // the dialog that holds the controls
constexpr std::size_t most = std::size_t{16} << 20U;
constexpr std::string_view Foreign = "There are no controls on the clipboard.";
constexpr std::string_view Broken = "The controls on the clipboard cannot be read.";

// A resource text with the controls; its text is empty if they cannot stand in one.
RcFile fileWith(const std::vector<std::string>& lists) {
    ObjectArray dialog, none;
    RcFile file = platform::parseResourceText("");
    if (lists.size() > MAX_CONTROLS) return file;
    dialog[0] = platform::makePropertyList(Holder, platform::Type::Dialog, {});
    std::copy(lists.begin(), lists.end(), dialog.begin() + 1);
    if (!platform::writeObjects(file, "", dialog, none).empty()) file = platform::parseResourceText("");
    return file;
}

std::string firstLine(const std::string& text) {
    const std::string line = text.substr(0, text.find('\n'));
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

}  // namespace

std::string CONTROLSTEXT(const std::vector<std::string>& lists) {
    const RcFile file = fileWith(lists);
    return file.text.empty() ? "" : STRNL2CRNL(std::string(ClipHead) + "\n" + file.text);
}

std::vector<std::string> STOREDCONTROLS(const std::vector<std::string>& lists) {
    ObjectArray objects;
    std::vector<std::string> stored;
    if (!platform::readObjects(fileWith(lists), "", Holder, objects).empty()) return stored;
    for (std::size_t i = 1; i < objects.size() && !objects[i].empty(); ++i) stored.push_back(objects[i]);
    return stored.size() == lists.size() ? stored : std::vector<std::string>();
}

ClipControls TEXTCONTROLS(const std::string& text) {
    if (text.size() > most || firstLine(text) != ClipHead) return {{}, std::string(Foreign)};
    const RcFile file = platform::parseResourceText(text);
    const platform::RcStatement* const holder = file.find(platform::RcKind::Window, Holder);
    if (!file.fault.empty() || file.statements.size() != 1 || holder == nullptr || !holder->fault.empty() ||
        holder->objects.empty())
        return {{}, std::string(Broken)};
    ClipControls controls;
    for (const platform::RcObject& one : holder->objects)
        controls.lists.push_back(platform::makePropertyList(one.givenName(), one.type, one.values()));
    return controls;
}

}  // namespace tarn
