// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/names.h"

#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/settings/profstr.h"
#include "library/source/symbolfiles.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <map>
#include <memory>
#include <vector>

MODULE("textedit")

namespace tarn {
namespace {

using Names = std::vector<DeclaredName>;

struct KeptFile {
    std::int64_t modified = 0, size = 0;
    std::shared_ptr<const Names> names;
};

NameKind kindOf(const std::string& sort) {
    static constexpr std::pair<std::string_view, NameKind> kinds[] = {
        {"const", NameKind::Constant}, {"type", NameKind::Type},           {"variable", NameKind::Variable},
        {"class", NameKind::Class},    {"visualobject", NameKind::Window},
    };
    for (const auto& [word, kind] : kinds)
        if (sort == word) return kind;
    return NameKind::Function;
}

// The items of a class, and its windows; what is local to a function is left out.
Names namesOfSymbols(const std::string& file) {
    Names names;
    for (const SymbolRecord& record : SYMLOAD(file)) {
        const NameKind kind = kindOf(record.sort);
        const bool special = record.sort == "program" || record.sort == "debug" || record.sort == "digest";
        if (special || record.scope == function_scope || kind == NameKind::Class) continue;
        DeclaredName name{record.name, kind, record.scope == public_scope, record.signature, record.decline,
                          0,           0};
        if (kind == NameKind::Window && !record.signature.empty()) {
            name.name = record.signature;  // a control
            name.head = record.name + "." + record.signature + " : " + record.typeName;
        }
        names.push_back(std::move(name));
    }
    return names;
}

std::shared_ptr<const Names> namesOf(const std::string& file) {
    static std::map<std::string, KeptFile> kept;
    const os::FileInfo info = os::infoOf(file);
    if (!info.exists || info.folder) return std::make_shared<const Names>();
    KeptFile& one = kept[file];
    if (one.names != nullptr && one.modified == info.modified && one.size == info.size) return one.names;
    Names names;
    std::string text;
    if (STREQUAL(FILEGETEXT(file), ".sym"))
        names = namesOfSymbols(file);
    else if (os::readFile(file, text) == os::FileError::None)
        names = SYMGETNAMES(text);
    one = {info.modified, info.size, std::make_shared<const Names>(std::move(names))};
    return one.names;
}

// Whether a name of another class is seen: the public ones, and windows.
bool isShared(const DeclaredName& name) {
    return name.first == 0 && (name.isPublic || name.kind == NameKind::Window);
}

struct UsedClass {
    std::string name, file;
};

std::vector<UsedClass> usedClasses(const NamePlace& place) {
    std::vector<UsedClass> used;
    const std::string names = SYMGETUSES(0, std::string(place.text.substr(0, 65536)));
    for (int n = 1; n <= STRWORDCOUNT(names); ++n) {
        const std::string name = STRWORD(names, n);
        used.push_back({name, FINDCLASS(name, place.file)});
    }
    return used;
}

// The windows and controls of a class stand in its symbol file alone.
bool eachWindow(const std::string& file, const NamePlace& place, const NameFound& found) {
    const std::shared_ptr<const Names> names = namesOf(FILECHANGEEXT(file, ".sym"));
    for (const DeclaredName& name : *names) {
        const std::size_t dot = name.head.find('.');
        const bool fits = place.qualifier.empty() ||
                          (dot != std::string::npos && STREQUAL(name.head.substr(0, dot), place.qualifier));
        if (name.kind == NameKind::Window && fits && !found(name, file)) return false;
    }
    return true;
}

bool eachShared(const std::string& file, const NameFound& found) {
    const std::shared_ptr<const Names> names = namesOf(file);
    for (const DeclaredName& name : *names)
        if (isShared(name) && !found(name, file)) return false;
    return true;
}

void eachQualified(const NamePlace& place, const NameFound& found) {
    for (const UsedClass& used : usedClasses(place))
        if (STREQUAL(used.name, place.qualifier)) return static_cast<void>(eachShared(used.file, found));
    if (!eachWindow(place.file, place, found)) return;
    for (const UsedClass& used : usedClasses(place))
        if (!eachWindow(used.file, place, found)) return;
}

}  // namespace

std::string GETLIBRARYCLASS() {
    FRAME(GETLIBRARYCLASS);
    return GETAPPDIR() + "system.cls";
}

std::string FINDCLASS(const std::string& name, const std::string& fromFile) {
    FRAME(FINDCLASS);
    std::vector<std::string> folders{FILEGETDIR(fromFile)};
    if (IsLoaded(Main)) folders.push_back(FILEGETDIR(GetCaption(MAINCONTROL("programlabel"))));
    const std::string paths = GETINHERITEDPATHSML();
    for (int n = 1; n <= STRLINES(paths); ++n) folders.push_back(STRLINE(paths, n));
    for (const std::string_view extension : {".cls", ".sym"}) {
        for (const std::string& folder : folders) {
            if (folder.empty()) continue;
            for (const std::string& stem : {name, ascii::lowered(name)}) {
                const std::string file = FILEADDSEPARATOR(folder) + stem + std::string(extension);
                if (os::infoOf(file).exists) return file;
            }
        }
    }
    return {};
}

void EACHNAME(const NamePlace& place, const NameFound& found) {
    FRAME(EACHNAME);
    STAMP();
    if (!place.qualifier.empty()) return eachQualified(place, found);
    const Names own = SYMGETNAMES(place.text);
    STAMP();
    for (const DeclaredName& name : own)
        if (name.first != 0 && place.line >= name.first && place.line <= name.last &&
            !found(name, place.file))
            return;
    for (const DeclaredName& name : own)
        if (name.first == 0 && !found(name, place.file)) return;
    if (!eachWindow(place.file, place, found)) return;
    STAMP();
    for (const UsedClass& used : usedClasses(place)) {
        const DeclaredName name{used.name, NameKind::Class, true, "Class " + used.name, 1, 0, 0};
        if (!used.file.empty() && (!found(name, used.file) || !eachShared(used.file, found))) return;
    }
    STAMP();
    const std::shared_ptr<const Names> library = namesOf(GETLIBRARYCLASS());
    for (const DeclaredName& name : *library)
        if (isShared(name) && !found(name, "")) return;
}

}  // namespace tarn
