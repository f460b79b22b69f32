// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/targets.h"

#include "library/system/resourceline.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "platform/resources/rcpath.h"
#include "toolchain/build/tools.h"

#include <algorithm>

namespace tarn::toolchain {
namespace {

// What stands beside a program: the run-time library, its windows, and the last-ditch box of a fault.
constexpr std::string_view EditLibrary = "libtarnwick-edit.so";
constexpr std::string_view RunTimeFiles[] = {"libtarnwick.so", "libtarnwick-qt.so", EditLibrary,
                                             "tarnwick-fatal"};

// An edit window needs a library of its own, which no other program carries.
bool hasEditWindow(const Sources& sources) {
    return std::any_of(sources.classes.begin(), sources.classes.end(), [](const SourceClass& item) {
        std::string text;
        if (!item.resource.empty()) static_cast<void>(os::readFile(item.resource, text));
        return ascii::uppered(text).find(" EDITWINDOW") != std::string::npos;
    });
}

class Targets {
public:
    void add(const std::string& file) {
        if (std::find(files_.begin(), files_.end(), file) == files_.end()) files_.push_back(file);
    }
    void addRunTime(const Sources& sources) {
        const std::string folder = libraryFolder() + "/";
        for (const std::string_view library : RunTimeFiles) {
            const std::string file = folder + std::string(library);
            if (os::sizeOf(file) > 0 && (library != EditLibrary || hasEditWindow(sources))) add(file);
        }
    }
    void addNamed(const std::string& resource, const std::vector<platform::ResourceFolder>& folders) {
        for (const std::string_view kind : {"ICON", "INCFILE", "DBFILE"}) {
            const std::string lines = platform::ResourceInfo(resource, std::string(kind), "*").text;
            for (std::string_view rest = lines; !rest.empty();) {
                const std::string line(ascii::withoutLineEnd(ascii::takeLine(rest)));
                const std::string written = RESOURCELINEFILENAME(line);
                if (written.empty()) continue;
                const std::string file = platform::ResourceFilePath(resource, written, folders);
                if (kind != "DBFILE" || os::sizeOf(file) >= 0) add(file);
            }
        }
    }
    [[nodiscard]] std::string text() const {
        std::string lines;
        for (const std::string& file : files_) lines += file + "\n";
        return lines;
    }

private:
    std::vector<std::string> files_;
};

}  // namespace

std::string targetsOf(const Sources& sources, const std::vector<platform::ResourceFolder>& folders) {
    Targets targets;
    targets.add(sources.exe);
    if (!sources.companion.empty()) targets.add(sources.companion);
    targets.addRunTime(sources);
    for (const SourceClass& item : sources.classes)
        if (!item.resource.empty()) targets.addNamed(item.resource, folders);
    return targets.text();
}

}  // namespace tarn::toolchain
