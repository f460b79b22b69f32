// SPDX-License-Identifier: Apache-2.0
//
// Programs of others that handing over needs, and the files that stand only while it works. A tool lies beside this program,
// else on PATH, as `zip.exe` or `zip`. Nothing here leaves an error in the cell: what was wrong is in the results.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::ship {

// The file to start for a tool; empty if there is none.
std::string outsideTool(std::string_view name);
std::string toolPath(std::string_view name);  // where it is expected

struct ToolRun {
    bool started = false, stopped = false;  // stopped: by the user
    int code = 0;
    std::string output;  // what it wrote, if a file was named for that
    [[nodiscard]] bool ok() const { return started && !stopped && code == 0; }
};
// Runs a tool in `folder` (empty: the current one) with the arguments as they are, and waits for its end; the user can stop it.
// What it writes goes to the file `output`, which stays; without one, to where this program writes.
ToolRun runTool(std::string_view name, const std::vector<std::string>& arguments,
                const std::string& output = {}, const std::string& folder = {});

// The name of a new file in a folder, START1END or higher; what stands under it goes when this is gone.
class ScratchFile {
public:
    ScratchFile(const std::string& folder, std::string_view start, std::string_view end);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    [[nodiscard]] const std::string& path() const { return path_; }

private:
    std::string path_;
};

}  // namespace tarn::ship
