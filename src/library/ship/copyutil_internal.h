// SPDX-License-Identifier: Apache-2.0
//
// What the commands of copyutil.h share.
#pragma once

#include "library/ship/copylist.h"
#include "library/ship/outsidetools.h"
#include "library/system/longwork.h"
#include "library/system/system.h"
#include "os/files.h"

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

// Puts a finished file into the place of the one that was there, on the disk.
os::FileError takePlace(const std::string& made, const std::string& file);
// Tells that a command needs a program that is not there: its word ("zip") and what it is for. True if it is there.
bool hasTool(const Object& owner, std::string_view name, const std::string& word, const std::string& purpose);
// The files, if they all exist, fit, and have names of their own; otherwise empty, and the user is told: by the two lines
// behind the first where they do not exist or fit.
CopyList checked(const Object& owner, const std::string& files, const std::string& reason,
                 const std::string& limit);
// False, and told, if files of different paths have one name.
bool namesDiffer(const Object& owner, const std::string& files);

// ---- what was in the way, each with what the user can do ----

// That a file, or something in a folder, could not be written.
std::string unwritten(const std::string& target, os::FileError error);
// Why no new file of so many bytes can stand in the folder; None: one can.
os::FileError whyNoneIn(const std::string& folder, std::int64_t bytes);
// The last lines of a box that lists what did not get to its target.
std::string obstacle(const std::string& failed, const std::string& target, os::FileError error);
// The same of files that were to be copied into a folder, of so many bytes together.
std::string obstacle(const CopyFailure& failure, const std::string& folder, std::int64_t bytes);

}  // namespace tarn::ship
