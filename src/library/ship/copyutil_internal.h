// SPDX-License-Identifier: Apache-2.0
//
// What the commands of copyutil.h share.
#pragma once

#include "library/ship/copylist.h"
#include "library/system/longwork.h"
#include "library/system/system.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn::ship {

inline constexpr int MostListed = 20;  // lines of files in a box

// Shows a text in the label "lblwait" of the window as long as it lives.
class WaitLabel {
public:
    WaitLabel(const Object& owner, const std::string& text);
    ~WaitLabel();
    WaitLabel(const WaitLabel&) = delete;
    WaitLabel& operator=(const WaitLabel&) = delete;

private:
    Object label_;
};

void tell(const Object& owner, const std::string& text, BoxIcon icon = BoxIcon::Information);
std::string ask(const Object& owner, const std::string& text, const std::string& buttons, BoxIcon icon);
std::string indented(const std::string& lines);  // at most MostListed lines, a tab before each
bool reported(void* longWork, std::int64_t done, std::int64_t total);  // a CopyProgress

// The file to start for a tool that lies beside this program or on PATH; empty if there is none.
std::string outsideTool(std::string_view name);
std::string toolPath(std::string_view name);  // where it is expected
// Runs one and waits; what it writes goes to that file. A stop of the user and a failure are in the result, no error in the
// cell.
ExecResult runTool(std::string_view name, const std::vector<std::string>& arguments,
                   const std::string& output, const std::string& folder = {});
// Puts a finished file into the place of the one that was there, on the disk.
bool takePlace(const std::string& made, const std::string& file);
// Tells that a command needs a program that is not there: its word ("zip") and what it is for. True if it is there.
bool hasTool(const Object& owner, std::string_view name, const std::string& word, const std::string& purpose);
// The files, if they all exist and fit; otherwise empty, and the user is told by the two lines behind the first.
CopyList checked(const Object& owner, const std::string& files, const std::string& reason,
                 const std::string& limit);

// A new folder beside a file that is being made, which goes with all that is in it when this is gone.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::string& file);
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    [[nodiscard]] const std::string& path() const {
        return path_;
    }  // with "/" at its end; empty: it could not be made

private:
    std::string path_;
};

}  // namespace tarn::ship
