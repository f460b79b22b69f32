// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/projlist.h"

#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "kernel/windows/resourcetext.h"
#include "library/settings/placeholders.h"
#include "library/settings/profstr.h"
#include "library/system/resourceline.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>

MODULE("projedit", tarn::IDE_ONERROR)

namespace tarn {

// ---- items as text ----

namespace {

std::string inQuotes(std::string_view text) {
    return "\"" + STRREPLACE(text, "\"", "\"\"") + "\"";
}

std::string nextField(std::string_view line, std::size_t& position) {
    const std::string token = NextWord(line, position);
    if (token.size() < 2 || token.front() != '"' || token.back() != '"') return token;
    const std::string_view inside = std::string_view(token).substr(1, token.size() - 2);
    return inside.find('"') == std::string_view::npos ? std::string(inside)
                                                      : STRREPLACE(inside, "\"\"", "\"");
}

}  // namespace

ProjectItem PARSEPROJECTITEM(std::string_view line) {
    FRAME(PARSEPROJECTITEM);
    ProjectItem item;
    std::size_t position = 1;
    bool ok = false;
    const int level = CVTI(nextField(line, position), ok);
    item.level = ok ? level : 0;
    for (std::string* field :
         {&item.title, &item.type, &item.name, &item.file, &item.date, &item.picture, &item.openPicture})
        *field = nextField(line, position);
    if (item.title.find('<') == std::string::npos) return item;
    const std::string mark(1, BOLD_MARK);
    item.title = STRREPLACE(STRREPLACE(item.title, "<B>", mark), "</B>", mark);
    return item;
}

void ADDPROJECTITEM(const ProjectItem& item, std::vector<std::string>& items) {
    FRAME(ADDPROJECTITEM);
    std::string line = STR(item.level);
    for (const std::string* field :
         {&item.title, &item.type, &item.name, &item.file, &item.date, &item.picture})
        line += " " + inQuotes(*field);
    if (!item.openPicture.empty()) line += " " + inQuotes(item.openPicture);
    items.push_back(std::move(line));
}

// ---- what is shown ----

ProjectView GETPROJECTVIEW() {
    FRAME(GETPROJECTVIEW);
    const auto on = [](std::string_view key) {
        return PROFILESTRGET(GETIDEINIFILE(), "GenOptionsDlg", key) == "1";
    };
    return {on("ShowClasses"), on("ShowFiles"), on("ShowPaths")};
}

namespace {

std::string withoutExtension(std::string_view file) {
    return FILECHANGEEXT(file, "");
}

std::string bold(std::string_view text) {
    return "<B>" + std::string(text) + "</B>";
}

// A kind of resources: its group, which is no row of its own without a title, and its members.
struct Kind {
    std::string_view word, group, picture, openPicture, memberWord, memberPicture, lastPicture;
};
constexpr Kind kinds[] = {
    {"DIALOG", "Dialogs", "resource1.bmp", "resource2.bmp", "DIALOG", "resource3.bmp", "resource4.bmp"},
    {"VERSIONINFO", "", "", "", "VERSIONINFO", "versioninfo0.bmp", "versioninfo0.bmp"},
    {"INCFILE", "Included files", "file1.bmp", "file2.bmp", "", "file3.bmp", "file4.bmp"},
    {"BITMAP", "Included bitmaps", "file1.bmp", "file2.bmp", "", "file3.bmp", "file4.bmp"},
    {"DBFILE", "Database", "database1.bmp", "database2.bmp", "Table", "database3.bmp", "database4.bmp"},
};
constexpr const Kind& dialogs = kinds[0];

bool standsForFile(const Kind& kind) {
    return kind.word != "DIALOG" && kind.word != "VERSIONINFO";
}

class ListMaker {
public:
    ListMaker(const ProjectView& view, const std::string& mainFile)
        : view_(view), main_(withoutExtension(mainFile)),
          library_(FILEADDSEPARATOR(GETINHERITEDLIBPATH())), folders_{GETRESOURCEDIR(), GETCOMPILERDIR()} {}

    void add(const std::string& dependency) {
        const std::string file = os::native(FILERESOLVEPATHS(dependency, folders_));
        const bool found = ISROOTED(file) && FileSize(file) >= 0;
        if (!found)
            return Assert(false, "'" + file +
                                     "' should be a fully qualified name.\nCheck the paths in the "
                                     "resource file are correct.");
        if (isHidden(file)) return;
        if (ISCLASSFILE(file)) addClass(file);
        if (!STREQUAL(FILEGETEXT(file), ResourceExtension)) return;
        std::string text;
        os::readFile(file, text);
        const std::string upper = STRUPPER(text);
        for (const Kind& kind : kinds)
            if (&kind == &dialogs || upper.find(kind.word) != std::string::npos) addKind(file, text, kind);
    }
    std::vector<std::string> items;

private:
    [[nodiscard]] bool isMain(const std::string& file) const {
        return STREQUAL(withoutExtension(file), main_);
    }
    // The library's classes, which lie in its folder or in one of the folders in that.
    [[nodiscard]] bool isHidden(const std::string& file) const {
        if (isMain(file) || view_.classes || library_.empty()) return false;
        const std::string folder = FILEGETDIR(file);
        const std::string parent = FILEGETDIR(folder.substr(0, folder.size() - 1));
        const std::string library = os::native(library_);
        return folder == library || parent == library;
    }
    [[nodiscard]] std::string suffix(const std::string& file) const {
        if (view_.paths) return " (" + file + ")";
        return view_.files ? " (" + FILEGETFNAME(file) + ")" : "";
    }
    static std::string nameOf(const std::string& file) { return STRNAMECASE(FILEBASENAME(file)); }

    void addClass(const std::string& file) {
        const std::string name = nameOf(file);
        ADDPROJECTITEM({1, (isMain(file) ? "Main Class " : "Class ") + bold(name) + suffix(file), "Class",
                        name, file, FILETIME(file), "class0.bmp", ""},
                       items);
    }
    // However many there are: a list that ends where a buffer does would hide files of the program.
    void addKind(const std::string& file, const std::string& text, const Kind& kind) {
        const std::string lines = ResourceTextLines(text, file, std::string(kind.word));
        const int count = STRLINES(lines);
        if (count > 0 || &kind == &dialogs) addGroup(file, kind, count);
        std::size_t at = 0;
        for (int n = 1; n <= count; ++n) {
            const std::size_t end = lines.find('\n', at);
            addMember(file, kind, lines.substr(at, end - at), n == count);
            at = end + 1;
        }
    }
    void addGroup(const std::string& file, const Kind& kind, int members) {
        if (kind.group.empty()) return;
        const bool closedOnly = members == 0;
        ADDPROJECTITEM({1, std::string(kind.group) + suffix(file), std::string(kind.word), nameOf(file), file,
                        FILETIME(file), closedOnly ? "resource0.bmp" : std::string(kind.picture),
                        closedOnly ? "" : std::string(kind.openPicture)},
                       items);
    }
    void addMember(const std::string& file, const Kind& kind, const std::string& line, bool last) {
        ProjectItem item;
        item.level = kind.group.empty() ? 1 : 2;
        item.name = STRWORD(line, 1);
        item.type = standsForFile(kind) ? STRWORD(line, 3) : std::string(kind.word);
        item.file = standsForFile(kind) ? FILEOFRESOURCE(file, line, folders_) : file;
        item.date = FILETIME(item.file);
        item.title =
            (kind.memberWord.empty() ? item.type : std::string(kind.memberWord)) + " " + bold(item.name);
        if (standsForFile(kind)) item.title += suffix(item.file);
        item.picture = last ? kind.lastPicture : kind.memberPicture;
        ADDPROJECTITEM(item, items);
    }

    ProjectView view_;
    std::string main_, library_;
    PlaceholderFolders folders_;
};

}  // namespace

std::vector<std::string> MAKEPROJECTLIST(const ProjectView& view, const std::string& mainFile,
                                         const std::string& dependencies) {
    FRAME(MAKEPROJECTLIST);
    ListMaker maker(view, mainFile);
    for (int n = 1; n <= STRLINES(dependencies); ++n) {
        STAMP();
        const std::string file = STRLINE(dependencies, n);
        if (!file.empty()) maker.add(file);
    }
    STAMP();
    return std::move(maker.items);
}

ProjectPlace FINDMAINFILE(const std::vector<std::string>& items, std::string_view mainFile) {
    FRAME(FINDMAINFILE);
    int count = 0;
    for (const std::string& line : items) {
        const ProjectItem item = PARSEPROJECTITEM(line);
        if (item.level != 1) continue;
        ++count;
        if (STREQUAL(item.file, mainFile)) return {count, 0};
    }
    return {};
}

std::string FILEOFRESOURCE(const std::string& file, const std::string& line,
                           const PlaceholderFolders& folders) {
    FRAME(FILEOFRESOURCE);
    const std::string path = os::native(FILERESOLVEPATHS(RESOURCELINEFILENAME(line), folders));
    return path.empty() || ISROOTED(path) ? path : FILEGETDIR(file) + path;
}

// ---- folders of a program ----

std::string NAMEINFOLDER(std::string_view folder, std::string_view name) {
    FRAME(NAMEINFOLDER);
    if (folder.empty() || name.empty()) return {};
    const std::string exact = FILEADDSEPARATOR(folder) + std::string(name);
    if (FileSize(exact) >= 0) return std::string(name);
    std::vector<std::string> names;
    if (os::files().list(os::native(FILEADDSEPARATOR(folder)), names) != os::FileError::None) return {};
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](const std::string& each) { return STREQUAL(each, name); });
    return found != names.end() ? *found : std::string();
}

std::string FOLDERLISTFINDFILE(const std::string& folders, std::string_view file) {
    FRAME(FOLDERLISTFINDFILE);
    const std::string name = FILEGETFNAME(file), lines = folders + "\n";
    std::string found;
    for (int n = 1; n <= STRLINES(lines); ++n) {
        const std::string folder = STRTRIM(STRLINE(lines, n));
        const std::string there = NAMEINFOLDER(folder, name);
        if (!there.empty()) found += FILEADDSEPARATOR(folder) + there + "\n";
    }
    return found;
}

bool ISCOREFILE(std::string_view file) {
    FRAME(ISCOREFILE);
    const std::string name = FILEGETFNAME(file);
    return STREQUAL(name, "lib.cls") || STREQUAL(name, "system.cls");
}

bool ISLIBRARYFILE(std::string_view file) {
    FRAME(ISLIBRARYFILE);
    STAMP();
    return !NAMEINFOLDER(GETINHERITEDLIBPATH(), FILEGETFNAME(FILECHANGEEXT(file, ClassExtension))).empty();
}

}  // namespace tarn
