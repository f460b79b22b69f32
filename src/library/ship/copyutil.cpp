// SPDX-License-Identifier: Apache-2.0
//
// What the commands share, and those that copy the files as they are.
#include "library/ship/copyutil.h"

#include "library/dialogs/dlgutil.h"
#include "library/ship/copyutil_internal.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/process.h"

#include <algorithm>

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace ship {

WaitLabel::WaitLabel(const Object& owner, const std::string& text)
    : label_(IsLoaded(owner) ? FINDCONTROL(owner, "lblwait") : Object()) {
    if (!label_.empty()) SetCaption(label_, text);
}
WaitLabel::~WaitLabel() {
    if (!label_.empty() && IsLoaded(label_)) SetCaption(label_, "");
}

namespace {

std::string captionOf(const Object& owner) {
    return IsLoaded(owner) ? GetCaption(owner) : std::string();
}

}  // namespace

void tell(const Object& owner, const std::string& text, BoxIcon icon) {
    MsgBox(captionOf(owner), text, "OK", icon);
}

std::string ask(const Object& owner, const std::string& text, const std::string& buttons, BoxIcon icon) {
    return MsgBox(captionOf(owner), text, buttons, icon);
}

std::string indented(const std::string& lines) {
    return INDENTLINES(LIMITLINES(lines, MostListed));
}

bool reported(void* longWork, std::int64_t done, std::int64_t total) {
    return static_cast<LongWork*>(longWork)->go(done, total);
}

os::FileError takePlace(const std::string& made, const std::string& file) {
    os::Handle handle = -1;
    os::FileError error = os::files().open(made, os::OpenMode::ReadWrite, 0, handle);
    if (error != os::FileError::None) return error;
    error = os::files().sync(handle);
    const os::FileError closed = os::files().close(handle);
    if (error == os::FileError::None) error = closed;
    return error == os::FileError::None ? os::files().rename(made, file) : error;
}

bool hasTool(const Object& owner, std::string_view name, const std::string& word,
             const std::string& purpose) {
    if (!outsideTool(name).empty()) return true;
    tell(owner,
         "This command requires the '" + word + "' program to " + purpose + "\nHowever the " + word +
             " program '" + toolPath(name) + "' does not exist.",
         BoxIcon::Error);
    return false;
}

namespace {

// The first file that cannot be copied at all, as a line behind a text; empty if they are only too large together.
std::string firstObstacle(const std::string& files, std::int64_t most) {
    const std::string lines = files + "\n";
    for (int i = 1; i <= STRLINES(lines); ++i) {
        const std::string path = COPYPATH(STRLINE(lines, i));
        if (path.empty()) continue;
        const std::int64_t size = FileSize(path);
        if (size < 0) return "\n'" + path + "' does not exist.";
        if (size > most) return "\n'" + path + "' is too large.";
    }
    return {};
}

}  // namespace

CopyList checked(const Object& owner, const std::string& files, const std::string& reason,
                 const std::string& limit) {
    constexpr std::int64_t Byte = 1;
    CopyList list = GETSEGMENTEDFILELIST(files, MaxPackageSize, Byte);
    if (list.disks() > 1) list = {-1, {}};
    if (!list.canBeCopied())
        tell(owner,
             "Cannot copy files.\n" + reason + "\n(" + limit + " is " + std::to_string(MaxPackageSize) +
                 " bytes)" + firstObstacle(files, MaxPackageSize),
             BoxIcon::Error);
    if (!namesDiffer(owner, list.paths(1))) list = {-1, {}};
    return list;
}

bool namesDiffer(const Object& owner, const std::string& files) {
    const std::string same = SAMENAMEDFILES(files);
    if (!same.empty())
        tell(owner,
             "Cannot copy files.\nSome of the files have the same name, and would take each other's "
             "place:\n\n" +
                 indented(same),
             BoxIcon::Error);
    return same.empty();
}

}  // namespace ship

using namespace ship;

bool ISAPART(const Object& owner, const std::string& files, const std::string& made) {
    FRAME(ISAPART);
    STAMP();
    const os::FileInfo there = os::infoOf(os::native(made));
    bool among = false;
    for (int i = 1; there.exists && !among && i <= STRLINES(files); ++i) {
        const os::FileInfo one = os::infoOf(os::native(COPYPATH(STRLINE(files, i))));
        among = one.exists && one.device == there.device && one.inode == there.inode;
    }
    if (among) tell(owner, "Cannot copy files.\n'" + made + "' is one of them.", BoxIcon::Error);
    return !among;
}

// ---- floppy disks ----

namespace {

constexpr const char* DoNotFit = "Some of the files do not exist, or they are too large to fit on the disk.";

// What the disk in the drive has room for: no more than a disk of its kind, whatever the folder has.
std::int64_t freeOn(const FloppyDrive& drive) {
    std::int64_t used = 0, free = 0;
    const std::string files = GETDISKFILELIST(drive.folder, "*.*");
    for (int i = 1; i <= STRLINES(files); ++i) {
        const std::string file = FILEADDSEPARATOR(drive.folder) + COPYPATH(STRLINE(files, i));
        const CopyList one = GETSEGMENTEDFILELIST(file, drive.capacity, drive.allocationUnit);
        used += one.canBeCopied() ? one.roundedSize(1) : drive.capacity;
    }
    if (os::files().freeSpace(os::native(drive.folder), free) != os::FileError::None) return 0;
    return std::clamp<std::int64_t>(drive.capacity - used, 0, std::max<std::int64_t>(free, 0));
}

class FloppyCopy {
public:
    FloppyCopy(const Object& owner, const CopyList& list, const FloppyDrive& drive)
        : owner_(owner), list_(list), drive_(drive) {}

    bool run() {
        const int disks = list_.disks();
        tell(owner_, "You need " + STR(disks) + " blank floppy disk" + STRPLURAL(disks));
        for (int disk = 1; disk <= disks; ++disk)
            if (!insert(disk) || !hasRoom(disk) || !copy(disk) || !matches(disk)) return false;
        tell(owner_, "Successfully copied " + std::to_string(list_.files.size()) + " file(s) to " +
                         STR(disks) + " floppy disk(s).");
        return true;
    }

private:
    bool insert(int disk) {
        return ask(owner_,
                   "Insert floppy disk " + STR(disk) + " and click OK, or press Cancel to stop copying.",
                   "OK\nCancel", BoxIcon::Information) == "OK";
    }
    bool hasRoom(int disk) {
        const std::int64_t free = freeOn(drive_), needed = list_.roundedSize(disk);
        if (free >= needed) return true;
        tell(owner_,
             "Disk " + STR(disk) + " has " + std::to_string(free) + " byte(s) free, but " +
                 std::to_string(needed) + " are needed.\nTry again with another floppy disk.",
             BoxIcon::Error);
        return false;
    }
    bool copy(int disk) {
        LongWork work("Please wait, copying files to floppy disk...");
        static_cast<void>(COPYFILES(list_.paths(disk), drive_.folder, reported, &work));
        return !work.stopped();
    }
    bool matches(int disk) {
        if (STRSORT(GETDISKFILELIST(drive_.folder, "*.*")) == STRSORT(FILELISTLINES(list_.paths(disk))))
            return true;
        tell(owner_,
             "After copying files to Disk " + STR(disk) +
                 " the files on the disk do not match the file list.\nEither some of the files could not be "
                 "copied, or the disk was not a blank disk.\nTry again with another blank floppy disk.",
             BoxIcon::Error);
        return false;
    }

    const Object& owner_;
    const CopyList& list_;
    const FloppyDrive& drive_;
};

}  // namespace

bool COPYTOFLOPPY(const Object& owner, const std::string& files, const FloppyDrive& drive) {
    FRAME(COPYTOFLOPPY);
    STAMP();
    const WaitLabel wait(owner, "Please wait, copying files to floppy disk...");
    const CopyList list = GETSEGMENTEDFILELIST(files, drive.capacity, drive.allocationUnit);
    STAMP();
    if (!list.canBeCopied()) {
        tell(owner,
             "Cannot copy files.\n" + std::string(DoNotFit) + "\n(the disk size is " +
                 std::to_string(drive.capacity) + " bytes)\nTry copying to a Zip file instead." +
                 firstObstacle(files, drive.capacity),
             BoxIcon::Error);
        return false;
    }
    for (int disk = 1; disk <= list.disks(); ++disk)
        if (!namesDiffer(owner, list.paths(disk))) return false;
    return FloppyCopy(owner, list, drive).run();
}

// ---- a folder ----

namespace {

// The names that stand in the list and in the folder.
std::string namesInBoth(const CopyList& list, const std::string& folder) {
    std::string names;
    for (const CopyFile& file : list.files) {
        const std::string name = FILEGETFNAME(file.Name);
        if (FileSize(FILEADDSEPARATOR(folder) + name) >= 0) names += name + "\n";
    }
    return STRSORT(names);
}

// Whether nothing is written elsewhere by a link in the folder that has the name of a file. One that leads to a file of the
// folder itself is written through.
bool staysInside(const Object& owner, const CopyList& list, const std::string& folder) {
    std::string inside, names, there;
    if (os::files().resolve(os::native(folder), inside) != os::FileError::None) return true;
    for (const CopyFile& file : list.files) {
        const std::string name = FILEGETFNAME(file.Name);
        const os::FileError error = os::files().resolve(os::joined(inside, name), there);
        if (error == os::FileError::None && os::folderOf(there) != inside) names += name + "\n";
    }
    if (!names.empty())
        tell(owner,
             "Cannot copy files.\nThe folder '" + folder +
                 "' has links of these names, which lead out of it:\n\n" + indented(names),
             BoxIcon::Error);
    return names.empty();
}

bool mayOverwrite(const Object& owner, const std::string& names, const std::string& folder) {
    return names.empty() ||
           ask(owner,
               "The folder '" + folder + "' already contains the following file(s):\n\n" + indented(names) +
                   "\nIf you copy to this folder, the file(s) may be overwritten.\nDo you want to continue?",
               "Quit\nContinue", BoxIcon::Warning) == "Continue";
}

}  // namespace

bool COPYTOFOLDER(const Object& owner, const std::string& files, const std::string& folder) {
    FRAME(COPYTOFOLDER);
    STAMP();
    const WaitLabel wait(owner, "Please wait, copying files to a folder...");
    const CopyList list = checked(owner, files, DoNotFit, "the disk size");
    STAMP();
    if (!list.canBeCopied() || !staysInside(owner, list, folder) ||
        !mayOverwrite(owner, namesInBoth(list, folder), folder))
        return false;
    CopyFailure failed;
    {
        LongWork work("Please wait, copying files to a folder...");
        failed = COPYFILES(list.paths(1), folder, reported, &work);
        if (work.stopped()) return false;
    }
    STAMP();
    if (failed.files.empty())
        tell(owner,
             "Successfully copied " + std::to_string(list.files.size()) + " file(s) to '" + folder + "'.");
    else
        tell(owner,
             "The following file(s) could not be copied:\n\n" + indented(failed.files) +
                 obstacle(failed, folder, list.roundedSize(1)),
             BoxIcon::Error);
    return failed.files.empty();
}

}  // namespace tarn
