// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/removechecks.h"

#include "ide/designer/dlgedit.h"
#include "ide/editor/sourcefile.h"
#include "ide/program/members/messages.h"
#include "ide/program/members/programfolders.h"
#include "ide/program/projlist.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "kernel/windows/resources.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>
#include <array>

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

bool isOneOf(const std::string& text, std::initializer_list<std::string_view> words) {
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word) { return STREQUAL(word, text); });
}

bool isResourceFile(const std::string& file) {
    return STREQUAL(FILEGETEXT(file), ResourceExtension);
}

bool isGroupOfFiles(const ProjectItem& item) {
    return isOneOf(item.type, {"INCFILE", "BITMAP"});
}

// ---- the checks, in their order ----

struct Candidate {
    ProjectItem item;
    Member member;
    std::string mainFile;
    std::string changed;  // the file that the removal is to change
};

// A member whose file has gone can leave its group.
bool isNowhere(const Candidate& one) {
    const bool group = isGroupOfFiles(one.item) && one.item.level == 1;
    return !FILECHK(one.item.file) || (group && FileSize(one.item.file) < 0);
}

// A class of the library leaves the program, and is not modified itself.
bool isReadOnly(const Candidate& one) {
    const os::FileInfo info = os::infoOf(os::native(one.changed));
    return info.exists && !info.writable && !ISLIBRARYCLASS(one.item);
}

bool isMainFile(const Candidate& one) {
    return one.item.level == 1 && one.member != Member::VersionInfo &&
           ISSAMEFILE(one.item.file, one.mainFile);
}

bool isCore(const Candidate& one) {
    return ISCOREFILE(one.item.file);
}

bool isOpenResource(const Candidate& one) {
    return one.item.level == 1 && isResourceFile(one.item.file) && ISOPENINEDITOR(one.item.file);
}

bool isOpenClass(const Candidate& one) {
    return one.member == Member::Class && ISINEDITOR(one.item.file);
}

bool holdsDialogs(const Candidate& one) {
    return one.member == Member::ResourceFile && !ResourceInfo(one.item.file, "DIALOG", "*").text.empty();
}

bool isUnknown(const Candidate& one) {
    return one.member == Member::Unknown;
}

struct Check {
    bool (*fails)(const Candidate& one);
    const char* reason;
};
constexpr std::array<Check, 8> checks = {{
    {isNowhere, "The file is not a full path, or it does not exist, or it cannot be found."},
    {isReadOnly, "The file or disk is read-only and it cannot be modified.\n"},
    {isMainFile, "This is the main file in the Program Windows and cannot be deleted."},
    {isCore, "This is the core run time library file which is required by all programs.\n"},
    {isOpenResource, OpenInEditor},
    {isOpenClass, OpenInEditor},
    {holdsDialogs, "It contains one or more dialog objects, which must be removed first.\n"},
    {isUnknown, "The file is of an unknown type."},
}};

}  // namespace

Member MEMBEROF(const ProjectItem& item) {
    FRAME(MEMBEROF);
    if (isResourceFile(item.file)) {
        if (STREQUAL(item.type, "VERSIONINFO")) return Member::VersionInfo;
        if (item.level == 1) return Member::ResourceFile;
        if (STREQUAL(item.type, "DIALOG")) return Member::Dialog;
    }
    if (STREQUAL(item.type, "DBFILE") || isOneOf(FILEGETEXT(item.file), {".dbf", ".xbf", ".xml"}))
        return Member::DataSource;
    if (STREQUAL(item.type, "Class")) return Member::Class;
    return isGroupOfFiles(item) && item.level == 2 ? Member::IncludedFile : Member::Unknown;
}

bool ISLIBRARYCLASS(const ProjectItem& item) {
    FRAME(ISLIBRARYCLASS);
    STAMP();
    const std::string library = FILEADDSEPARATOR(GETINHERITEDLIBPATH());
    return MEMBEROF(item) == Member::Class && !library.empty() && ISSAMEFILE(FILEGETDIR(item.file), library);
}

bool ISOPENINEDITOR(const std::string& file) {
    FRAME(ISOPENINEDITOR);
    STAMP();
    return ISINEDITOR(file) || ISSAMEFILE(DIALOGGETFILENAME(), file);
}

std::string GROUPFILE(const Object& window, const ProjectRow& row) {
    FRAME(GROUPFILE);
    STAMP();
    for (int above = row.row; above > 0; --above) {
        const ProjectItem item = PROJECTITEMAT(window, above).item;
        if (item.level == 1) return item.file;
    }
    return {};
}

std::string REMOVALMESSAGE(const std::string& file, const std::string& reason) {
    FRAME(REMOVALMESSAGE);
    STAMP();
    return FILEMESSAGE(file, reason,
                       isResourceFile(file) ? "Cannot delete from the following file:"
                                            : "Cannot remove the following file:");
}

std::string REMOVALOBSTACLE(const Object& window, const ProjectRow& row) {
    FRAME(REMOVALOBSTACLE);
    STAMP();
    const Member member = MEMBEROF(row.item);
    const Candidate one{row.item, member, PROJECTGETMAINFILE(window),
                        member == Member::IncludedFile ? GROUPFILE(window, row) : row.item.file};
    for (const Check& check : checks) {
        STAMP();
        if (check.fails(one))
            return REMOVALMESSAGE(check.fails == isNowhere ? one.item.file : one.changed, check.reason);
    }
    STAMP();
    if (one.member != Member::DataSource) return {};
    return "This is a Data Source which cannot be removed:\n\n\t'" + one.item.file +
           "'\n\nTo remove the Data Source from the project, remove the parent\nclass instead. The parent "
           "class is '" +
           PROJECTITEMGETPARENT(window, row.row) + "'.";
}

}  // namespace tarn
