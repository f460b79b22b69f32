// SPDX-License-Identifier: Apache-2.0
#include "library/ship/debdepends.h"

#include "library/settings/profstr.h"
#include "library/ship/copylist.h"
#include "library/ship/outsidetools.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/programfile.h"

#include <algorithm>

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

using namespace ship;

namespace {

void putInOrder(NameList& names) {
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
}

// Calls `take` with each line of a text, its last one too.
template <class Take>
void eachLine(const std::string& text, const Take& take) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        take(text.substr(at, end - at));
        at = end + 1;
    }
}

struct LibraryParts {
    std::string name, version;
};

// "libQt6Core.so.6" is "libQt6Core" and "6", "libx-1.2.so" is "libx" and "1.2", as the files `shlibs` have it.
LibraryParts partsOf(std::string_view library) {
    const std::size_t so = library.find(".so");
    if (so == std::string_view::npos) return {};
    if (const std::string_view behind = library.substr(so + 3); behind.starts_with('.'))
        return {std::string(library.substr(0, so)), std::string(behind.substr(1))};
    const std::string_view stem = library.substr(0, so);
    const std::size_t dash = stem.rfind('-');
    if (dash == std::string_view::npos) return {};
    return {std::string(stem.substr(0, dash)), std::string(stem.substr(dash + 1))};
}

}  // namespace

// ---- texts ----

NameList NEEDEDLIBRARIES(const std::string& objdump) {
    FRAME(NEEDEDLIBRARIES);
    NameList names;
    eachLine(objdump, [&](const std::string& line) {
        if (STRWORD(line, 1) == "NEEDED") names.push_back(STRWORD(line, 2));
    });
    putInOrder(names);
    return names;
}

std::map<std::string, std::string> LIBRARYPATHS(const std::string& ldd) {
    FRAME(LIBRARYPATHS);
    //         libc.so.6 => /lib/x86_64-linux-gnu/libc.so.6 (0x00007f0000000000)
    //         libx.so => not found
    //         /lib64/ld-linux-x86-64.so.2 (0x00007f0000000000)
    std::map<std::string, std::string> paths;
    eachLine(ldd, [&](const std::string& line) {
        const std::size_t arrow = line.find(" => ");
        const std::string name = STRWORD(line, 1);
        if (arrow == std::string::npos) {
            if (name.starts_with('/') && line.ends_with(')')) paths[FILEGETFNAME(name)] = name;
            return;
        }
        const std::size_t begin = arrow + 4, end = line.rfind(" (");
        const bool found =
            line[std::min(begin, line.size() - 1)] == '/' && end != std::string::npos && end > begin;
        paths[name] = found ? line.substr(begin, end - begin) : std::string();
    });
    return paths;
}

std::map<std::string, std::string> PACKAGESOFFILES(const std::string& search) {
    FRAME(PACKAGESOFFILES);
    std::map<std::string, std::string> packages;  // libc6:amd64, libc6:i386: /lib/x
    eachLine(search, [&](const std::string& line) {
        const std::size_t end = line.find(": /");
        if (end == std::string::npos || line.find(' ') < line.find(':'))
            return;  // a diversion, or a complaint
        packages[line.substr(end + 2)] = line.substr(0, std::min(line.find_first_of(",:"), end));
    });
    return packages;
}

std::string SHLIBSDEPENDENCY(const std::string& shlibs, std::string_view library) {
    FRAME(SHLIBSDEPENDENCY);
    const LibraryParts parts = partsOf(library);
    std::string found;
    eachLine(shlibs, [&](const std::string& line) {
        // [type:] name version dependencies
        const bool typed = STRWORD(line, 1).ends_with(':');
        const int name = typed ? 2 : 1;
        if (typed || !found.empty() || parts.name.empty() || STRWORD(line, name) != parts.name ||
            STRWORD(line, name + 1) != parts.version)
            return;
        const int place = STRWORDPOS(line, name + 2);
        if (place > 0) found = STRTRIM(line.substr(static_cast<std::size_t>(place) - 1));
    });
    return found;
}

// ---- files ----

namespace {

class Finder {
public:
    Finder(const std::string& files, const std::string& folder) : output_(folder + "tool.txt") {
        for (int i = 1; i <= STRLINES(files + "\n"); ++i) {
            const std::string path = COPYPATH(STRLINE(files + "\n", i));
            if (path.empty()) continue;
            own_.push_back(FILEGETFNAME(path));
            const std::string file = os::native(path);
            if (os::programFileAt(file) == os::ProgramFile::Elf) linked_.push_back(file);
        }
    }

    DebDepends run() {
        if (linked_.empty()) return {};
        for (const auto step :
             {&Finder::findNeeded, &Finder::findPaths, &Finder::findPackages, &Finder::findDepends}) {
            (this->*step)();
            if (!found_.problem.empty() || found_.stopped) return found_;
        }
        return found_;
    }

private:
    // What a tool writes; that it fails counts by what is missing in it.
    std::string outputOf(const char* tool, NameList arguments) {
        const ToolRun run = runTool(tool, arguments, output_);
        found_.stopped = found_.stopped || run.stopped;
        return run.output;
    }

    void findNeeded() {
        NameList arguments = {"-p"};
        arguments.insert(arguments.end(), linked_.begin(), linked_.end());
        for (const std::string& name : NEEDEDLIBRARIES(outputOf("objdump", arguments)))
            if (std::find(own_.begin(), own_.end(), name) == own_.end()) needed_.push_back(name);
    }

    void findPaths() {
        if (needed_.empty()) return;
        paths_ = LIBRARYPATHS(outputOf("ldd", linked_));
        for (const std::string& name : needed_)
            if (paths_[name].empty())
                found_.problem = "The library '" + name + "' was not found on this machine.";
    }

    // Where a library is found may be another name of the folder that its package has named.
    static NameList namesOf(const std::string& path) {
        if (path.starts_with("/usr/")) return {path, path.substr(4)};
        return {path, "/usr" + path};
    }

    void findPackages() {
        NameList arguments = {"-S"};
        for (const std::string& name : needed_)
            for (const std::string& path : namesOf(paths_[name])) arguments.push_back(path);
        if (needed_.empty()) return;
        const std::map<std::string, std::string> packages =
            PACKAGESOFFILES(outputOf("dpkg-query", arguments));
        for (const std::string& name : needed_) {
            for (const std::string& path : namesOf(paths_[name]))
                if (const auto place = packages.find(path); place != packages.end())
                    packages_[name] = place->second;
            if (packages_[name].empty())
                found_.problem = "The library '" + paths_[name] +
                                 "' is of no package, so that none can be named that has it.";
        }
    }

    void findDepends() {
        NameList depends;
        for (const std::string& name : needed_) {
            const std::string& package = packages_[name];
            const std::string told =
                SHLIBSDEPENDENCY(outputOf("dpkg-query", {"--control-show", package, "shlibs"}), name);
            depends.push_back(told.empty() ? package : told);
            // The toolkit loads what speaks with the screen by itself.
            if (name.starts_with("libQt6Gui.")) depends.emplace_back("qt6-qpa-plugins");
        }
        putInOrder(depends);
        for (const std::string& one : depends) found_.packages += (found_.packages.empty() ? "" : ", ") + one;
    }

    std::string output_;
    NameList own_, linked_, needed_;
    std::map<std::string, std::string> paths_, packages_;  // by the library
    DebDepends found_;
};

}  // namespace

DebDepends FINDDEPENDS(const std::string& files, const std::string& folder) {
    FRAME(FINDDEPENDS);
    STAMP();
    return Finder(files, folder).run();
}

}  // namespace tarn
