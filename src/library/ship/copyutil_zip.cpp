// SPDX-License-Identifier: Apache-2.0
//
// Files into a zip file. It is made in a folder beside the one that was chosen, looked at, and takes its place when it
// holds every file; so a run that fails leaves the old one.
#include "library/ship/copyutil.h"
#include "library/ship/copyutil_internal.h"
#include "library/ship/workfolder.h"
#include "os/files.h"

#include <string>
#include <vector>

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

using namespace ship;

namespace {

constexpr std::string_view ZipProgram = "zip.exe", UnzipProgram = "unzip.exe";
constexpr const char* Listing = "unzip.err";  // in the current folder
constexpr const char* WaitText = "Please wait, zipping files...";

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
    std::int64_t done = 0;
    for (const CopyFile& file : list.files) {
        if (!work.go(done++, static_cast<std::int64_t>(list.files.size()))) return false;
        if (runTool(ZipProgram, {zipFile, "-j", "-9", file.Name}).stopped) return false;
    }
    return true;
}

// The files of which the zip file has no line in its short listing, which is written to a file.
std::string missingIn(const std::string& zipFile, const CopyList& list, const std::string& listing) {
    const ToolRun run = runTool(UnzipProgram, {"-Z", "-s", "--t", "--h", zipFile}, listing);
    std::string missing;
    for (const CopyFile& file : list.files)
        if (!ISNAMEINLIST(run.output, FILEGETFNAME(file.Name), file.Size)) missing += file.Name + "\n";
    return missing;
}

// Where the current folder cannot take the whole listing, which the unzip program does not tell, another place does.
std::string missingIn(const std::string& zipFile, const CopyList& list, const WorkFolder& work) {
    const std::string missing = missingIn(zipFile, list, std::string(Listing));
    return missing.empty() ? missing : missingIn(zipFile, list, work.path() + Listing);
}

bool makeZip(const Object& owner, const CopyList& list, const std::string& zipFile) {
    const WorkFolder work(zipFile);
    std::string missing = list.paths(1);
    os::FileError error = work.error();
    if (!work.path().empty()) {
        const std::string made = work.path() + "made.zip";
        if (!zip(list, made)) return false;
        missing = missingIn(made, list, work);
        error = missing.empty() ? takePlace(made, os::native(zipFile))
                                : whyNoneIn(FILEGETDIR(zipFile), list.roundedSize(1));
        if (missing.empty() && error != os::FileError::None) missing = list.paths(1);
    }
    if (missing.empty())
        tell(owner,
             "Successfully zipped " + std::to_string(list.files.size()) + " file(s) to '" + zipFile + "'.");
    else
        tell(owner,
             "The following file(s) could not be zipped:\n\n" + indented(missing) +
                 obstacle(missing, zipFile, error),
             BoxIcon::Error);
    return missing.empty();
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
    if (file.empty() || !ISAPART(owner, list.paths(1), file)) return false;
    const WaitLabel wait(owner, WaitText);
    return makeZip(owner, list, file);
}

}  // namespace tarn
