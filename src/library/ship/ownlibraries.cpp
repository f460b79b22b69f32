// SPDX-License-Identifier: Apache-2.0
#include "library/ship/ownlibraries.h"

#include "library/ship/copylist.h"
#include "library/ship/outsidetools.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

using namespace ship;

namespace {

constexpr const char* StripProgram = "strip";

// Made of that file as it is now: it has its time.
bool isOf(const std::string& copy, const os::FileInfo& source) {
    const os::FileInfo info = os::infoOf(copy);
    return info.exists && info.size > 0 && info.modified == source.modified;
}

// The smaller copy; the file itself where there is none.
std::string smallCopy(const std::string& file) {
    const os::FileInfo source = os::infoOf(os::native(file));
    const std::string folder = os::stateFolder() + "libraries/", copy = folder + FILEGETFNAME(file);
    if (!source.exists || source.folder || source.size == 0) return file;
    if (isOf(copy, source)) return copy;
    if (os::makeFolders(folder) != os::FileError::None) return file;
    const ScratchFile made(folder, ".strip-", ".tmp");
    const ToolRun run =
        runTool(StripProgram, {"--strip-unneeded", "-o", made.path(), os::native(file)}, "/dev/null");
    const std::int64_t size = FileSize(made.path());
    const bool good = run.ok() && size > 0 && size < source.size &&
                      os::files().setModified(made.path(), source.modified) == os::FileError::None &&
                      os::files().rename(made.path(), copy) == os::FileError::None;
    return good ? copy : file;
}

}  // namespace

bool ISOWNLIBRARY(const std::string& file) {
    FRAME(ISOWNLIBRARY);
    const std::string name = FILEGETFNAME(file);
    return (name.starts_with("libtarnwick") && name.ends_with(".so")) || name == "tarnwick-fatal";
}

std::string WITHSMALLLIBRARIES(const std::string& files) {
    FRAME(WITHSMALLLIBRARIES);
    const std::string lines = files + "\n";
    if (outsideTool(StripProgram).empty()) return files;
    std::string result;
    for (int i = 1; i <= STRLINES(lines); ++i) {
        STAMP();
        const std::string line = STRLINE(lines, i), path = COPYPATH(line);
        if (path.empty()) continue;
        result += (ISOWNLIBRARY(path) ? smallCopy(path) + line.substr(path.size()) : line) + "\n";
    }
    return result;
}

}  // namespace tarn
