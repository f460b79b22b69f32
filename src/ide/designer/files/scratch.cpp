// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/files/scratch.h"

#include "ide/designer/files/dlgtest.h"
#include "library/designer/proputil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/clock.h"
#include "os/files.h"

#include <utility>
#include <vector>

MODULE("dlgedit")

namespace tarn {
namespace {

constexpr std::string_view Stem = "~dlgtest", Extension = ".tmp";
constexpr std::int64_t Hour = 3'600'000'000'000;  // nanoseconds
constexpr int MostTries = 100;

bool isScratchName(std::string_view name) {
    return name.size() > Stem.size() + Extension.size() && name.starts_with(Stem) &&
           name.ends_with(Extension);
}

void deleteLeftOvers(const std::string& folder) {
    std::vector<std::string> names;
    os::files().list(os::native(folder.empty() ? "." : folder), names);
    for (const std::string& name : names) {
        if (!isScratchName(name)) continue;
        const os::FileInfo info = os::infoOf(folder + name);
        if (info.exists && !info.folder && info.modified + Hour < os::clock().now())
            os::files().remove(folder + name);
    }
}

// What was written goes again when that fails.
os::FileError fill(const std::string& path, const std::string& text, os::Handle handle) {
    os::FileSystem& disk = os::files();
    os::FileError error = text.empty() ? os::FileError::None : disk.write(handle, 0, text);
    const os::FileError closed = disk.close(handle);
    if (error == os::FileError::None) error = closed;
    if (error != os::FileError::None) disk.remove(path);
    return error;
}

// A file that was not there: two tests at once never get one. Nobody waits for the disk, as nobody misses it.
os::FileError makeNew(const std::string& folder, const std::string& text, std::string& path) {
    os::FileError error = os::FileError::Exists;
    for (int tries = 0; error == os::FileError::Exists && tries < MostTries; ++tries) {
        path = FILETEMPNAME(folder, Stem, Extension);
        os::Handle handle = -1;
        error = os::files().open(os::native(path), os::OpenMode::CreateNew, 0600, handle);
        if (error == os::FileError::None) return fill(os::native(path), text, handle);
    }
    return error;
}

}  // namespace

std::string READOBJECTS(const std::string& file, const std::string& dialog, DialogObjects& objects) {
    FRAME(READOBJECTS);
    for (std::string& object : objects.menu) object.clear();
    STAMP();
    std::string error = ResourceRead(file, dialog, objects.dialog);
    const std::string menu = GETPROPVALUE(objects.dialog[0], "MENU");
    if (error.empty() && !menu.empty()) error = ResourceRead(file, menu, objects.menu);
    return error;
}

std::string CHANGEOBJECTS(const std::string& file, const std::string& dialog,
                          const std::function<bool(DialogObjects& objects)>& change) {
    FRAME(CHANGEOBJECTS);
    DialogObjects objects;
    STAMP();
    const std::string error = READOBJECTS(file, dialog, objects);
    if (!error.empty() || !change(objects)) return error;
    STAMP();
    return ResourceWrite(objects.dialog, objects.menu, file);
}

ResourceText RESOURCENAMES(const std::string& file, const std::string& kind) {
    FRAME(RESOURCENAMES);
    STAMP();
    const ResourceText lines = ResourceInfo(file, kind, "*");
    ResourceText names{"", lines.error};
    for (int n = 1; n <= STRLINES(lines.text); ++n) names.text += STRTOKEN(STRLINE(lines.text, n), 1) + "\n";
    return names;
}

std::string ScratchFile::makeOf(const std::string& beside, const std::string& text) {
    FRAME(ScratchFile::makeOf);
    drop();
    STAMP();
    const std::string folder = FILEGETDIR(beside);
    deleteLeftOvers(folder);
    std::string path;
    const os::FileError error = makeNew(folder, text, path);
    if (error == os::FileError::None) path_ = path;
    return error == os::FileError::None ? "" : std::string(os::describe(error));
}

std::string ScratchFile::make(const std::string& beside, const DialogObjects& objects) {
    FRAME(ScratchFile::make);
    STAMP();
    const std::string error = makeOf(beside, "");
    if (!error.empty())
        return "No file can be made in the folder '" + FILEGETDIR(beside) + "'. " + error +
               "\nA test writes the dialog into a file of its own there, and deletes it afterwards.";
    STAMP();
    return ResourceWrite(objects.dialog, objects.menu, path_);
}

// A menu that bears the name of tests itself makes room first.
std::string ScratchFile::rename(const std::string& dialog) {
    FRAME(ScratchFile::rename);
    if (STREQUAL(dialog, NameOfTests)) return {};
    STAMP();
    const std::string error = FIXPROPERTY_MENU(path_, dialog, NameOfTests + "\n");
    STAMP();
    return error.empty() ? ResourceRename(path_, dialog, NameOfTests) : error;
}

void ScratchFile::drop() {
    if (!path_.empty()) os::files().remove(path_);
    path_.clear();
}

std::string ScratchFile::keep() {
    return std::exchange(path_, {});
}

}  // namespace tarn
