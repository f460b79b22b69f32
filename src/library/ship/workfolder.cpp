// SPDX-License-Identifier: Apache-2.0
#include "library/ship/workfolder.h"

#include "library/system/system.h"
#include "os/paths.h"
#include "os/text/ascii.h"

#include <vector>

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn::ship {
namespace {

using os::FileError;
using Taken = os::HeldFile::Taken;

constexpr std::string_view Owner = "tarnwick-packager", End = ".work";
constexpr std::size_t LongestStart = 200;  // of a name, so that the whole of it is one
constexpr int MostTries = 20;              // with others that take, or clean up, the same names
constexpr std::uint32_t Private = 0600;

// .NAME-1.work
bool isWorkName(std::string_view name) {
    if (!name.starts_with('.') || !name.ends_with(End)) return false;
    name.remove_suffix(End.size());
    std::size_t digits = 0;
    while (digits < name.size() && ascii::isDigit(name[name.size() - 1 - digits])) ++digits;
    return digits > 0 && digits < name.size() && name[name.size() - 1 - digits] == '-';
}

// Of the folder itself, under its own name: what a link leads to belongs to somebody else.
bool isLink(const std::string& folder, const std::string& name) {
    std::string above, resolved;
    return os::files().resolve(folder, above) != FileError::None ||
           os::files().resolve(os::joined(folder, name), resolved) != FileError::None ||
           resolved != os::joined(above, name);
}

void emptyFolder(const std::string& folder, std::string_view except) {
    std::vector<std::string> names;
    os::files().list(folder, names);
    for (const std::string& name : names) {
        const std::string path = os::joined(folder, name);
        if (name == except || os::files().remove(path) != FileError::IsFolder) continue;
        emptyFolder(path, {});
        os::files().removeFolder(path);
    }
}

// Its owner's file goes last: without it the rest would stay for ever.
void removeWork(const std::string& folder) {
    emptyFolder(folder, Owner);
    std::vector<std::string> left;
    os::files().list(folder, left);
    if (left == std::vector<std::string>{std::string(Owner)}) os::files().remove(os::joined(folder, left[0]));
    os::files().removeFolder(folder);
}

}  // namespace

void REMOVEDEADWORK(const std::string& folder) {
    FRAME(REMOVEDEADWORK);
    const std::string place = folder.empty() ? "." : os::native(folder);
    std::vector<std::string> names;
    os::files().list(place, names);
    for (const std::string& name : names) {
        if (!isWorkName(name) || isLink(place, name)) continue;
        const std::string work = os::joined(place, name);
        os::HeldFile held;
        if (held.take(os::joined(work, std::string(Owner))) == Taken::Yes) removeWork(work);
    }
}

WorkFolder::WorkFolder(const std::string& file) {
    FRAME(WorkFolder::WorkFolder);
    const std::string folder = FILEGETDIR(file);
    REMOVEDEADWORK(folder);
    const std::string start = ("." + FILEBASENAME(file)).substr(0, LongestStart) + "-";
    error_ = FileError::Exists;
    for (int tries = 0; error_ == FileError::Exists && tries < MostTries; ++tries)
        if (make(os::native(FILETEMPNAME(folder, start, End)))) break;
    ClearError();
}

// Exists: somebody else was faster.
bool WorkFolder::make(const std::string& folder) {
    error_ = os::files().makeFolder(folder);
    if (error_ != FileError::None) return false;
    if (hold(os::joined(folder, std::string(Owner)))) return path_ = folder + "/", true;
    os::files().removeFolder(folder);
    return false;
}

bool WorkFolder::hold(const std::string& owner) {
    os::Handle handle = -1;
    error_ = os::files().open(owner, os::OpenMode::CreateNew, Private, handle);
    if (error_ != FileError::None) return false;
    os::files().close(handle);
    if (held_.take(owner) != Taken::No) return true;
    error_ = FileError::Exists;  // another process has taken it for that of a dead one
    return false;
}

WorkFolder::~WorkFolder() {
    if (!path_.empty()) removeWork(path_.substr(0, path_.size() - 1));
}

}  // namespace tarn::ship
