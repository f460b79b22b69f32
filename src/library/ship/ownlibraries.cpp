// SPDX-License-Identifier: Apache-2.0
#include "library/ship/ownlibraries.h"

#include "library/ship/copylist.h"
#include "library/ship/copyutil_internal.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

using namespace ship;

namespace {

constexpr const char* StripProgram = "strip";
constexpr int Waiting = 0;  // the mode that waits, without a window

// Made of that file as it is now: it has its time.
bool isOf(const std::string& copy, const os::FileInfo& source) {
    const os::FileInfo info = os::infoOf(copy);
    return info.exists && info.size > 0 && info.modified == source.modified;
}

// The smaller copy; the file itself where there is none.
std::string smallCopy(const std::string& file, const std::string& strip) {
    const os::FileInfo source = os::infoOf(os::native(file));
    const std::string folder = os::stateFolder() + "libraries/", copy = folder + FILEGETFNAME(file);
    if (!source.exists || source.folder || source.size == 0) return file;
    if (isOf(copy, source)) return copy;
    if (os::makeFolders(folder) != os::FileError::None) return file;
    const std::string made = os::native(FILETEMPNAME(folder, ".strip-", ".tmp"));
    const ExecResult run =
        EXEC(strip, std::vector<std::string>{"--strip-unneeded", "-o", made, os::native(file)}, Waiting, {},
             {{}, "/dev/null"});
    ClearError();
    const std::int64_t size = FileSize(made);
    const bool good = run.started && !run.stopped && run.code == 0 && size > 0 && size < source.size &&
                      os::files().setModified(made, source.modified) == os::FileError::None &&
                      os::files().rename(made, copy) == os::FileError::None;
    if (!good) static_cast<void>(FILEDELETELIST(made));
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
    const std::string strip = outsideTool(StripProgram), lines = files + "\n";
    if (strip.empty()) return files;
    std::string result;
    for (int i = 1; i <= STRLINES(lines); ++i) {
        STAMP();
        const std::string line = STRLINE(lines, i), path = COPYPATH(line);
        if (path.empty()) continue;
        result += (ISOWNLIBRARY(path) ? smallCopy(path, strip) + line.substr(path.size()) : line) + "\n";
    }
    return result;
}

}  // namespace tarn
