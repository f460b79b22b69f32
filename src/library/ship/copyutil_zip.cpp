// SPDX-License-Identifier: Apache-2.0
//
// Files into a zip file. It is made under a name beside the one that was chosen, looked at, and takes its place when it
// holds every file; so a run that fails leaves the old one.
#include "library/ship/copyutil.h"
#include "library/ship/copyutil_internal.h"
#include "os/files.h"

#include <set>
#include <string>

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

using namespace ship;

namespace {

constexpr std::string_view ZipProgram = "zip.exe", UnzipProgram = "unzip.exe";
constexpr const char* Listing = "unzip.err";  // in the current folder
constexpr const char* WaitText = "Please wait, zipping files...";
constexpr int Waiting = 0;  // the mode that waits, without a window

bool hasTools(const Object& owner) {
    return hasTool(owner, ZipProgram, "zip", "compress the files.") &&
           hasTool(owner, UnzipProgram, "unzip", "test the zipped files.");
}

std::string chosenFile(const Object& owner, const std::string& proposed) {
    const std::string start = proposed.empty() ? FILEADDSEPARATOR(GETCURDIR()) + "out.zip" : proposed;
    const std::string file = SaveAsDialog(IsLoaded(owner) ? GetCaption(owner) : "", start,
                                          "Zip files (*.zip)|*.zip|All files (*.*)|*.*|");
    return file.empty() || !FILEGETEXT(file).empty() ? file : file + std::string(EXT_ZIP);
}

// A call for each file; false if the user has stopped it. A call that fails is seen by the listing.
bool zip(const CopyList& list, const std::string& zipFile) {
    LongWork work(WaitText);
    const std::string program = outsideTool(ZipProgram);
    std::int64_t done = 0;
    for (const CopyFile& file : list.files) {
        if (!work.go(done++, static_cast<std::int64_t>(list.files.size()))) return false;
        const ExecResult run =
            EXEC(program, QUOTEARGUMENT(zipFile) + " -j -9 " + QUOTEARGUMENT(file.Name), Waiting);
        ClearError();
        if (run.stopped) return false;
    }
    return true;
}

// A short listing of what the zip file holds.
std::string listed(const std::string& zipFile) {
    std::string text;
    FILEDELETE(Listing);
    ClearError();
    EXEC(outsideTool(UnzipProgram), "-Z -s --t --h " + QUOTEARGUMENT(zipFile) + " > " + Listing, Waiting);
    if (FileSize(Listing) > 0) LOADFILE(Listing, text);
    ClearError();
    return text;
}

std::string notIn(const std::string& listing, const CopyList& list) {
    std::string missing;
    std::set<std::string> names;  // a zip file has no folders, and so no second file of a name
    for (const CopyFile& file : list.files) {
        const std::string name = FILEGETFNAME(file.Name);
        if (!names.insert(name).second || !ISNAMEINLIST(listing, name, file.Size)) missing += file.Name + "\n";
    }
    return missing;
}

void tellMissing(const Object& owner, const std::string& missing, const std::string& zipFile) {
    tell(owner,
         "The following file(s) could not be zipped:\n\n" + indented(missing) +
             "\nThe file(s) could not be found, or the destination...\n'" + zipFile +
             "' could not be written.",
         BoxIcon::Error);
}

// The name under which the zip file is made; nothing is left there when this is gone.
class Scratch {
public:
    explicit Scratch(const std::string& zipFile)
        : file_(os::native(FILETEMPNAME(FILEGETDIR(zipFile), "." + FILEBASENAME(zipFile) + "-", EXT_ZIP))) {}
    ~Scratch() { static_cast<void>(FILEDELETELIST(file_)); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    [[nodiscard]] const std::string& file() const { return file_; }

private:
    std::string file_;
};

bool makeZip(const Object& owner, const CopyList& list, const std::string& zipFile) {
    const Scratch scratch(zipFile);
    if (!zip(list, scratch.file())) return false;
    std::string missing = notIn(listed(scratch.file()), list);
    if (missing.empty() && !takePlace(scratch.file(), os::native(zipFile))) missing = list.paths(1);
    if (!missing.empty()) {
        tellMissing(owner, missing, zipFile);
        return false;
    }
    tell(owner,
         "Successfully zipped " + std::to_string(list.files.size()) + " file(s) to '" + zipFile + "'.");
    return true;
}

}  // namespace

bool COPYTOZIP(const Object& owner, const std::string& files, const std::string& zipFile) {
    FRAME(COPYTOZIP);
    STAMP();
    if (!hasTools(owner)) return false;
    STAMP();
    const CopyList list =
        checked(owner, files, "Some of the files do not exist, or they are too large to fit in the zip file.",
                "the maximum zip file size");
    STAMP();
    if (!list.canBeCopied()) return false;
    const std::string file = chosenFile(owner, zipFile);
    STAMP();
    if (file.empty()) return false;
    const WaitLabel wait(owner, WaitText);
    return makeZip(owner, list, file);
}

}  // namespace tarn
