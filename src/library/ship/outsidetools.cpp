// SPDX-License-Identifier: Apache-2.0
#include "library/ship/outsidetools.h"

#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"

namespace tarn::ship {

std::string toolPath(std::string_view name) {
    return os::executableFolder() + std::string(name);
}

std::string outsideTool(std::string_view name) {
    const std::string beside = FINDTOOL(toolPath(name));
    if (!beside.empty()) return beside;
    const std::string path = STRREPLACE(os::environment("PATH"), ":", ";");
    const std::string found = FILEFINDPATHNAME(path, name);
    return found.empty() ? FILEFINDPATHNAME(path, FILEBASENAME(name)) : found;
}

ToolRun runTool(std::string_view name, const std::vector<std::string>& arguments, const std::string& output,
                const std::string& folder) {
    constexpr int Waiting = 0;  // the mode that waits, without a window
    const ExecResult result = EXEC(outsideTool(name), arguments, Waiting, folder, {{}, output});
    ToolRun run{result.started, result.stopped, result.code, {}};
    // What an earlier run has written is not this one's.
    if (run.started && !output.empty() && FileSize(output) > 0) LOADFILE(output, run.output);
    ClearError();
    return run;
}

// ---- what stands while the work goes on ----

ScratchFile::ScratchFile(const std::string& folder, std::string_view start, std::string_view end)
    : path_(os::native(FILETEMPNAME(folder, start, end))) {}
ScratchFile::~ScratchFile() {
    os::files().remove(path_);
}

}  // namespace tarn::ship
