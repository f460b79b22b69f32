// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/programnames.h"

#include "ide/designer/files/scratch.h"
#include "ide/program/members/programfolders.h"
#include "ide/program/projwindow.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <set>

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

// A resource file stands in the window once for each of its groups.
std::set<std::string> resourceFiles() {
    std::set<std::string> files;
    const std::string all = PROJECTGETFILES(ProjectEditorDlg);
    for (std::string_view rest = all; !rest.empty();) {
        const std::string file(ascii::withoutLineEnd(ascii::takeLine(rest)));
        if (STREQUAL(FILEGETEXT(file), ResourceExtension)) files.insert(file);
    }
    return files;
}

}  // namespace

void ProgramNames::read(const std::string& file) {
    const std::string names = RESOURCENAMES(file, "*").text;
    for (std::string_view rest = names; !rest.empty();)
        holders_.emplace(STRUPPER(ascii::withoutLineEnd(ascii::takeLine(rest))), file);
}

ProgramNames ProgramNames::ofAll() {
    FRAME(ProgramNames::ofAll);
    ProgramNames names;
    STAMP();
    for (const std::string& file : resourceFiles()) {
        STAMP();
        names.read(file);
    }
    return names;
}

ProgramNames ProgramNames::beside(const std::string& resourceFile) {
    FRAME(ProgramNames::beside);
    ProgramNames names;
    bool belongs = false;
    STAMP();
    for (const std::string& file : resourceFiles()) {
        STAMP();
        if (ISSAMEFILE(file, resourceFile))
            belongs = true;
        else
            names.read(file);
    }
    return belongs ? names : ProgramNames();
}

std::string ProgramNames::holderOf(const std::string& name) const {
    const auto found = holders_.find(STRUPPER(name));
    return found == holders_.end() ? "" : found->second;
}

std::string ProgramNames::all() const {
    std::string lines;
    for (const auto& [name, file] : holders_) lines += name + "\n";
    return lines;
}

}  // namespace tarn
