// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/objects/cliptext.h"

#include "kernel/windows/resourcetext.h"
#include "library/system/system.h"

namespace tarn {
namespace {

const std::string Holder = "Copied";  // the dialog that holds the controls
constexpr std::size_t most = std::size_t{16} << 20U;
constexpr std::string_view Foreign = "There are no controls on the clipboard.";
constexpr std::string_view Broken = "The controls on the clipboard cannot be read.";

// Empty if they cannot stand in a resource file.
std::string statementWith(const std::vector<std::string>& lists) {
    std::vector<std::string> objects = {"NAME=" + Holder + "\nTYPEOF=Dialog\n"};
    objects.insert(objects.end(), lists.begin(), lists.end());
    return ResourceStatement(objects);
}

// The first object is the holder.
std::vector<std::string> controlsOf(const std::string& statement) {
    std::vector<std::string> objects = ResourceStatementObjects(statement, Holder);
    if (!objects.empty()) objects.erase(objects.begin());
    return objects;
}

std::string firstLine(const std::string& text) {
    const std::string line = text.substr(0, text.find('\n'));
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

}  // namespace

std::string CONTROLSTEXT(const std::vector<std::string>& lists) {
    const std::string statement = statementWith(lists);
    return statement.empty() ? "" : STRNL2CRNL(std::string(ClipHead) + "\n" + statement);
}

std::vector<std::string> STOREDCONTROLS(const std::vector<std::string>& lists) {
    std::vector<std::string> stored = controlsOf(statementWith(lists));
    return stored.size() == lists.size() ? stored : std::vector<std::string>();
}

ClipControls TEXTCONTROLS(const std::string& text) {
    if (text.size() > most || firstLine(text) != ClipHead) return {{}, std::string(Foreign)};
    ClipControls controls{controlsOf(text), ""};
    if (controls.lists.empty()) controls.fault = Broken;
    return controls;
}

}  // namespace tarn
