// SPDX-License-Identifier: Apache-2.0
//
// Files into a Debian package. Its tree stands in a folder beside the place of the package, which goes again whatever happens;
// the package is made there too, and renamed.
#include "library/settings/profstr.h"
#include "library/ship/copyutil.h"
#include "library/ship/copyutil_internal.h"
#include "library/ship/debdepends.h"
#include "library/ship/workfolder.h"
#include "os/clock.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/programfile.h"

#include <algorithm>
#include <array>
#include <ctime>

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

using namespace ship;

namespace {

constexpr const char* WaitText = "Please wait, making the Debian package...";
constexpr std::uint32_t Program = 0755, Plain = 0644;
constexpr std::int64_t Kilobyte = 1024;

struct Tool {
    const char *name, *purpose;
};
constexpr Tool tools[] = {
    {"dpkg-deb", "make the package."},
    {"dpkg-query", "find the packages that the program needs."},
    {"dpkg", "tell for which machines the package is."},
    {"objdump", "find the libraries that the program needs."},
    {"ldd", "find the libraries that the program needs."},
    {"md5sum", "write the sums of the files."},
    {"gzip", "compress the manual."},
};

bool hasTools(const Object& owner) {
    return std::all_of(std::begin(tools), std::end(tools),
                       [&](const Tool& tool) { return hasTool(owner, tool.name, tool.name, tool.purpose); });
}

// As mail has it, in English whatever the user's language is.
std::string dateOf(std::int64_t nanoseconds) {
    constexpr const char* days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t seconds = nanoseconds / 1'000'000'000;
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%s, %02d %s %d %02d:%02d:%02d +0000", days[parts.tm_wday],
                  parts.tm_mday, months[parts.tm_mon], parts.tm_year + 1900, parts.tm_hour, parts.tm_min,
                  parts.tm_sec);
    return text.data();
}

struct IconPlace {
    std::string_view extension;
    const char *folder, *entry;  // an entry names a picture of the desktop's without its folder; else with it
};
constexpr IconPlace iconPlaces[] = {{".svg", "usr/share/icons/hicolor/scalable/apps/", ""},
                                    {".png", "usr/share/pixmaps/", ""},
                                    {".ico", "usr/share/pixmaps/", "/usr/share/pixmaps/"}};

class DebMaker {
public:
    DebMaker(const DebFields& fields, const std::string& copyright, const std::string& icon,
             const CopyList& list, const std::string& mainExe, const std::string& file)
        : fields_(fields), icon_(icon), list_(list), file_(file), scratch_(file),
          tree_(scratch_.path() + "tree/"), work_(WaitText) {
        program_.exe = FILEGETFNAME(mainExe);
        program_.copyright = copyright;
        program_.date = dateOf(os::clock().now());
    }

    // False with a text: it could not be made; without one: the user has stopped it.
    bool run(std::string& problem) {
        using Step = bool (DebMaker::*)();
        constexpr Step steps[] = {&DebMaker::copyFiles,   &DebMaker::cleanProgram, &DebMaker::copyIcon,
                                  &DebMaker::findDepends, &DebMaker::writeTexts,   &DebMaker::compress,
                                  &DebMaker::writeSums,   &DebMaker::writeControl, &DebMaker::pack};
        std::int64_t done = 0;
        bool ok = !scratch_.path().empty() || fails(unwritten(file_, scratch_.error()));
        for (const Step step : steps) {
            ok = ok && work_.go(done++, static_cast<std::int64_t>(std::size(steps))) && !stopped_ &&
                 (this->*step)();
            ClearError();
        }
        ok = ok && !stopped_ && !work_.stopped();
        if (ok) ok = wrote(takePlace(scratch_.path() + "made.deb", os::native(file_)));
        problem = stopped_ || work_.stopped() ? std::string() : problem_;
        return ok;
    }
    [[nodiscard]] const std::string& depends() const { return program_.depends; }

private:
    bool fails(const std::string& text) {
        if (problem_.empty()) problem_ = text;
        return false;
    }
    // What stands in the tree is nobody's business: the user has named the package.
    bool wrote(os::FileError error) { return error == os::FileError::None || fails(unwritten(file_, error)); }
    bool runs(std::string_view name, const std::vector<std::string>& arguments) {
        ToolRun run = runTool(name, arguments, scratch_.path() + "tool.txt", tree_);
        stopped_ = stopped_ || run.stopped;
        output_ = std::move(run.output);
        return (run.started && run.code == 0) || toolFailed(name);
    }
    // A tool that has no room says so in its own way, or not at all.
    bool toolFailed(std::string_view name) {
        const std::string text = "The program '" + std::string(name) + "' failed.\n" +
                                 STRRTRIMCRLF(LIMITLINES(output_, MostListed));
        const os::FileError error = whyNoneIn(FILEGETDIR(file_), list_.roundedSize(1));
        return fails(error == os::FileError::None ? text : text + "\n" + unwritten(file_, error));
    }
    [[nodiscard]] std::string own() const { return "usr/lib/" + fields_.name + "/"; }
    [[nodiscard]] std::string document() const { return "usr/share/doc/" + fields_.name + "/"; }

    // A folder of the tree, with those above it, whatever the user's mask is.
    bool makeFolder(const std::string& folder) {
        for (std::size_t at = 0; at != std::string::npos; at = folder.find('/', at + 1)) {
            const std::string path = tree_ + folder.substr(0, at == 0 ? 0 : at);
            const os::FileError made = os::files().makeFolder(path);
            if (made != os::FileError::None && made != os::FileError::Exists) return wrote(made);
            if (!wrote(os::files().setMode(path, Program))) return false;
        }
        return true;
    }
    bool put(const std::string& name, const std::string& text, std::uint32_t mode = Plain) {
        const std::string path = tree_ + name;
        if (!makeFolder(os::folderPart(name))) return false;
        if (!wrote(os::saveFile(path, text, os::Durability::Unsynced).error) ||
            !wrote(os::files().setMode(path, mode)))
            return false;
        made_.push_back(name);
        return true;
    }
    bool copies(const std::string& files, const std::string& folder) {
        const CopyFailure failed = COPYFILES(files, tree_ + folder, reported, &work_);
        return failed.files.empty() ||
               fails("The following file(s) could not be copied:\n\n" + indented(failed.files) +
                     obstacle(failed, FILEGETDIR(file_), list_.roundedSize(1)));
    }
    bool putFile(const std::string& source, const std::string& folder, const std::string& name) {
        const std::string copied = tree_ + folder + name;
        if (!makeFolder(folder)) return false;
        if (!copies(source + "\n", folder) ||
            !wrote(os::files().rename(tree_ + folder + FILEGETFNAME(source), copied)))
            return false;
        os::files().setMode(copied, Plain);
        made_.push_back(folder + name);
        return true;
    }

    // ---- the steps ----

    bool copyFiles() {
        if (!makeFolder(own())) return false;
        if (!copies(list_.paths(1), own())) return false;
        const std::string companion = FILECHANGEEXT(program_.exe, ".rcx");
        for (const CopyFile& file : list_.files) {
            const std::string name = FILEGETFNAME(file.Name), extension = FILEGETEXT(name);
            constexpr std::uint32_t MayBeRun = 0111;
            const bool runs = extension == ".exe" || (os::infoOf(os::native(file.Name)).mode & MayBeRun) != 0;
            os::files().setMode(tree_ + own() + name, runs && extension != ".so" ? Program : Plain);
            made_.push_back(own() + name);
            program_.windows = program_.windows || name == companion;
            program_.editWindow = program_.editWindow || name == "libtarnwick-edit.so";
            program_.kilobytes += static_cast<long>((file.Size + Kilobyte - 1) / Kilobyte);
        }
        return true;
    }
    // Where the libraries stood on this machine is nothing for another one.
    bool cleanProgram() {
        const std::string path = tree_ + own() + program_.exe;
        std::string bytes;
        if (!LOADFILE(path, bytes) || os::programFileOf(bytes) != os::ProgramFile::Elf) return true;
        if (!runs("objdump", {"-p", own() + program_.exe})) return false;
        std::string runpath;
        for (int i = 1; i <= STRLINES(output_) && runpath.empty(); ++i) {
            const std::string line = STRLINE(output_, i);
            if (STRWORD(line, 1) == "RUNPATH")
                runpath = STRTRIM(line.substr(line.find("RUNPATH") + std::string_view("RUNPATH").size()));
        }
        const std::string clean = WITHOUTBUILDPATH(bytes, runpath);
        if (clean == bytes) return true;
        return wrote(os::saveFile(path, clean, os::Durability::Unsynced).error) &&
               wrote(os::files().setMode(path, Program));
    }
    bool copyIcon() {
        for (const IconPlace& place : iconPlaces) {
            if (!STREQUAL(FILEGETEXT(icon_), place.extension)) continue;
            const std::string name = fields_.name + std::string(place.extension);
            const std::string entry = place.entry;
            program_.icon = entry.empty() ? fields_.name : entry + name;
            return putFile(icon_, place.folder, name);
        }
        return true;
    }
    bool findDepends() {
        const DebDepends found = FINDDEPENDS(list_.paths(1), scratch_.path());
        stopped_ = stopped_ || found.stopped;
        program_.depends = found.packages;
        return found.problem.empty() || fails(found.problem);
    }
    bool writeTexts() {
        return put("usr/bin/" + fields_.name, DEBCOMMAND(fields_, program_), Program) &&
               put("usr/share/applications/" + fields_.name + ".desktop", DEBENTRY(fields_, program_)) &&
               put(document() + "copyright", DEBCOPYRIGHT(fields_, program_)) &&
               put(document() + "changelog", DEBCHANGES(fields_, program_)) &&
               put("usr/share/lintian/overrides/" + fields_.name, DEBOVERRIDES(fields_)) &&
               put("usr/share/man/man1/" + fields_.name + ".1", DEBMANUAL(fields_, program_));
    }
    bool compress() {
        for (std::string& name : made_) {
            if (!name.starts_with("usr/share/man/") && name != document() + "changelog") continue;
            if (!runs("gzip", {"-9n", name})) return false;
            name += ".gz";
        }
        return true;
    }
    bool writeSums() {
        std::vector<std::string> arguments = {"--"};
        std::sort(made_.begin(), made_.end());
        arguments.insert(arguments.end(), made_.begin(), made_.end());
        return runs("md5sum", arguments) && put("DEBIAN/md5sums", output_);
    }
    bool writeControl() {
        if (!runs("dpkg", {"--print-architecture"})) return false;
        program_.architecture = STRTRIM(STRRTRIMCRLF(output_));
        return put("DEBIAN/control", DEBCONTROL(fields_, program_));
    }
    bool pack() {
        return runs("dpkg-deb", {"--root-owner-group", "--build", tree_, scratch_.path() + "made.deb"});
    }

    const DebFields& fields_;
    DebProgram program_;
    const std::string& icon_;
    const CopyList& list_;
    const std::string& file_;
    const WorkFolder scratch_;
    const std::string tree_;
    LongWork work_;
    bool stopped_ = false;
    std::vector<std::string> made_;  // names within the tree
    std::string output_, problem_;
};

std::string chosenFile(const Object& owner, const std::string& proposed) {
    const std::string file = SaveAsDialog(IsLoaded(owner) ? GetCaption(owner) : "", proposed,
                                          "Debian packages (*.deb)|*.deb|All files (*.*)|*.*|");
    return file.empty() || STREQUAL(FILEGETEXT(file), ".deb") ? file : file + ".deb";
}

}  // namespace

bool COPYTODEB(const Object& owner, const DebFields& fields, const std::string& copyright,
               const std::string& icon, const std::string& files, const std::string& mainExe,
               const std::string& file) {
    FRAME(COPYTODEB);
    STAMP();
    if (!hasTools(owner)) return false;
    STAMP();
    const CopyList list =
        checked(owner, files, "Some of the files do not exist, or they are too large to fit in the package.",
                "the maximum size of the files to be packed");
    STAMP();
    if (!list.canBeCopied()) return false;
    const std::string chosen = chosenFile(owner, file);
    STAMP();
    if (chosen.empty() || !ISAPART(owner, list.paths(1), chosen)) return false;
    const WaitLabel wait(owner, WaitText);
    std::string problem, depends;
    bool ok = false;
    {
        DebMaker maker(fields, copyright, icon, list, mainExe, chosen);
        ok = maker.run(problem);
        depends = maker.depends();
    }
    STAMP();
    if (ok)
        tell(owner,
             "Created '" + chosen + "'" +
                 (depends.empty() ? "" : "\n\nIt needs these packages:\n" + STRREPLACE(depends, ", ", "\n")));
    else if (!problem.empty())
        tell(owner, "Could not create '" + chosen + "'\n\n" + problem, BoxIcon::Error);
    return ok;
}

}  // namespace tarn
