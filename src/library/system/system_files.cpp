// SPDX-License-Identifier: Apache-2.0
//
// The file family: facts about files, free names, search paths, whole files. A failed write leaves the old
// contents and sets the error cell; see SAVEFILEREPORT for what the user is told.
#include "library/system/files.h"

#include "kernel/run/fileerrors.h"
#include "library/system/conversion.h"
#include "library/system/savereport_internal.h"
#include "library/system/strings.h"
#include "os/clock.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <algorithm>

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

void appendPadded(std::string& out, int value, std::size_t width) {
    const std::string digits = STR(value);
    if (digits.size() < width) out.append(width - digits.size(), '0');
    out += digits;
}

// The number in a file name of the form stem, digits, extension; -1 for another name or a number too large to
// raise.
int numberInName(std::string_view name, std::string_view stem, std::string_view extension) {
    if (name.size() <= stem.size() + extension.size()) return -1;
    if (!ascii::equal(name.substr(0, stem.size()), stem)) return -1;
    if (!ascii::equal(name.substr(name.size() - extension.size()), extension)) return -1;
    const std::string_view digits = name.substr(stem.size(), name.size() - stem.size() - extension.size());
    constexpr std::size_t MostDigits = 8;
    bool ok = false;
    const int number = ISDIGITS(digits) && digits.size() <= MostDigits ? CVTI(digits, ok) : 0;
    return ok ? number : -1;
}

}  // namespace

std::int64_t FileSize(const std::string& path) {
    FRAME(FileSize);
    return os::sizeOf(path);
}

std::string FILETIME(const std::string& path) {
    FRAME(FILETIME);
    const os::FileInfo info = os::infoOf(path);
    if (!info.exists) return {};
    const os::CivilTime t = os::clock().local(info.modified);
    struct Part {
        int value;
        std::size_t width;
        const char* behind;
    };
    std::string out;
    for (const Part& part : {Part{t.year, 4, "-"}, Part{t.month, 2, "-"}, Part{t.day, 2, " "},
                             Part{t.hour, 2, ":"}, Part{t.minute, 2, ":"}, Part{t.second, 2, ""}}) {
        appendPadded(out, part.value, part.width);
        out += part.behind;
    }
    return out;
}

TempNames FILETEMPNAMES(std::string_view directory, std::string_view stem, std::string_view extension) {
    FRAME(FILETEMPNAMES);
    std::string_view base = stem;
    while (!base.empty() && ascii::isDigit(base.back())) base.remove_suffix(1);
    std::string ext(extension.empty() || extension[0] == '.' ? "" : ".");
    ext.append(extension);
    const std::string folder = FILEADDSEPARATOR(directory);
    std::vector<std::string> names;
    STAMP();
    os::files().list(os::native(folder.empty() ? "." : folder), names);
    int highest = 0;
    for (const std::string& name : names) highest = std::max(highest, numberInName(name, base, ext));
    const std::string start = folder + std::string(base);
    return {start + (highest == 0 ? "" : STR(highest)) + ext, start + STR(highest + 1) + ext};
}

TempNames FILETEMPNAMES(std::string_view stem, std::string_view extension) {
    FRAME(FILETEMPNAMES);
    STAMP();
    return FILETEMPNAMES({}, stem, extension);
}

TempNames FILETEMPNAMES(std::string_view stem) {
    FRAME(FILETEMPNAMES);
    STAMP();
    return FILETEMPNAMES({}, stem, ".tmp");
}

std::string FILETEMPNAME(std::string_view directory, std::string_view stem, std::string_view extension) {
    FRAME(FILETEMPNAME);
    STAMP();
    return FILETEMPNAMES(directory, stem, extension).next;
}

std::string GETCURDIR() {
    FRAME(GETCURDIR);
    return os::files().currentFolder();
}

void SETCURDIR(const std::string& directory) {
    FRAME(SETCURDIR);
    STAMP();
    SetError(FileReadCode(os::files().setCurrentFolder(os::native(directory))));
}

detail::FailedSave& detail::LastFailedSave() {
    static FailedSave failed;
    return failed;
}

std::string FILEFINDPATHNAME(std::string_view paths, std::string_view file) {
    FRAME(FILEFINDPATHNAME);
    if (file.empty() || !FILEGETDIR(file).empty()) return {};
    while (!paths.empty()) {
        STAMP();
        const std::size_t end = std::min(paths.find(';'), paths.size());
        const std::string folder = STRTRIM(paths.substr(0, end));
        paths.remove_prefix(std::min(end + 1, paths.size()));
        const std::string name = FILEADDSEPARATOR(folder) + std::string(file);
        if (!folder.empty() && FileSize(name) >= 0) return name;
    }
    return {};
}

bool LOADFILE(const std::string& file, std::string& text) {
    FRAME(LOADFILE);
    detail::LastFailedSave() = {};
    STAMP();
    const os::FileError error = os::readFile(file, text);
    if (error != os::FileError::None) text.clear();
    SetError(FileReadCode(error));
    return error == os::FileError::None;
}

bool SAVEFILE(const std::string& file, std::string_view text) {
    FRAME(SAVEFILE);
    STAMP();
    detail::LastFailedSave() = {};
    const os::SaveResult result = os::saveFile(file, text);
    if (result.ok()) return true;
    detail::LastFailedSave() = {file, std::string(os::describe(result.error)), result.rescueCopy, true};
    SetError(FileWriteCode(result.error));
    return false;
}

bool SAVEFILE(const std::string& file, const std::vector<std::string>& lines) {
    FRAME(SAVEFILE);
    std::string text;
    for (const std::string& line : lines) text.append(line) += '\n';
    STAMP();
    const bool saved = SAVEFILE(file, text);
    detail::LastFailedSave().ofText = false;  // no edit window holds lines
    return saved;
}

std::string SAVEFILEREPORT() {
    FRAME(SAVEFILEREPORT);
    const detail::FailedSave& failed = detail::LastFailedSave();
    if (failed.why.empty()) return {};
    const std::string text =
        "The file could not be saved:\n\n\t'" + failed.file + "'\n\n" + failed.why + "\n";
    if (!failed.rescueCopy.empty())
        return text + "The file on disk may be damaged. The whole new " + (failed.ofText ? "text" : "data") +
               " is safe in this file:\n\n\t'" + failed.rescueCopy +
               "'\n\nSave again when the cause is gone, or copy that file over the damaged one.";
    if (os::infoOf(os::native(failed.file)).special)
        return text +
               "It is a device or a pipe, which may have got a part. Look whether a program reads from it.";
    const bool isThere = os::infoOf(os::native(failed.file)).exists;
    const std::string disk = isThere ? "The file on disk is as it was" : "Nothing was written";
    if (!failed.ofText) return text + disk + ". Save again when the cause is gone, or to another file.";
    return text + disk +
           ", and the text is still in its window.\n"
           "Save it again when the cause is gone, or under another name with File-Save As.";
}

void FILEDELETE(const std::string& file) {
    FRAME(FILEDELETE);
    STAMP();
    const os::FileError error = os::files().remove(os::native(file));
    if (!IsMissing(error)) SetError(FileWriteCode(error));
}

}  // namespace tarn
