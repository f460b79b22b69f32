// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/newclass.h"

#include "ide/editor/textedit.h"
#include "ide/program/projlist.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/designer/propedit_sheet.h"
#include "library/designer/proputil.h"
#include "library/settings/placeholders.h"
#include "library/source/codewiz.h"
#include "library/system/system.h"
#include "os/files.h"

MODULE("projedit", tarn::IDE_ONERROR)

namespace tarn {
namespace {

constexpr const char* HelpKey = "File_New";

// ---- the Code window ----

void setModified(bool modified) {
    SetModify(SDIEdit, modified);
    DRAWMODIFYINDICATOR(SDIEdit);
}

// Asks what shall become of the changes. `discarded`: the user gave them up. False: they stay.
bool leaveCodeWindow(bool& discarded) {
    if (!IsLoaded(SDIEdit) || !GetModify(SDIEdit)) return true;
    const std::string answer =
        MsgBox("Save Changes?",
               EDITWNDGETFILENAME(SDIEdit) + "\nThis file has been changed. Do you want to save the changes?",
               "&Yes\n&No\n&Cancel", BoxIcon::Question);
    STAMP();
    if (answer == "&Yes") EDITWNDSAVE(SDIEdit, false);
    discarded = answer == "&No";
    if (discarded) setModified(false);
    return !GetModify(SDIEdit);
}

void showFileName(const Object& label) {
    if (STREQUAL(GetTypeof(label), "Label")) SetCaption(label, EDITWNDGETFILENAME(SDIEdit));
}

// ---- the templates ----

TemplateText templateOf(std::string_view name) {
    return LOADTEMPLATE(GETIDEINIFILE(), "Template." + std::string(name) + std::string(ClassExtension));
}

// What the user is asked for.
struct Wish {
    std::string name, directory, icon, type;
    [[nodiscard]] std::string file(std::string_view extension) const {
        return directory + name + std::string(extension);
    }
    [[nodiscard]] bool wantsWindow() const { return type == STR(WithWindow); }
};

// The templates of a new class, and the values of its fields.
struct Draft {
    TemplateText classBody, dialogBody;
    TemplateParameters fields;

    explicit Draft(bool nonMain)
        : classBody(templateOf(nonMain ? "NewNonMainClass" : "NewMainClass")),
          dialogBody(templateOf("NewDialog")), fields(TEMPLATETOPROPLIST(classBody.text)) {}
    [[nodiscard]] bool loaded() const { return classBody.message.empty() && dialogBody.message.empty(); }
    void set(std::string_view field, const std::string& value) {
        SETPROPVALUE(field, value, fields.names, fields.values);
    }
    [[nodiscard]] std::string get(std::string_view field) const {
        return GETPROPVALUE(field, fields.names, fields.values);
    }
    void propose(const std::string& path, ProgramType type) {
        set("Name", FILEBASENAME(path));
        set("Directory", FILEGETDIR(path));
        set("Program Type", STR(type));
    }
    [[nodiscard]] Wish wish() const {
        return {get("Name"), get("Directory"), get("Program Icon"), get("Program Type")};
    }
};

// A path as it stands between the quotes of a resource statement. A form of the template would end at its first ")".
std::string pathText(const std::string& path) {
    return STRREPLACE(STRREPLACE(path, "\\", "\\\\"), "\"", "\\\"");
}

TemplateText dialogText(const Draft& draft, const Wish& wish) {
    TemplateParameters list = TEMPLATETOPROPLIST(draft.dialogBody.text);
    const PlaceholderFolders folders{GETRESOURCEDIR(), GETCOMPILERDIR()};
    const std::string icon = FILEUNRESOLVEPATHS(wish.icon, folders);
    SETPROPVALUE("Name", "Main", list.names, list.values);
    SETPROPVALUE("Caption", "Main", list.names, list.values);
    SETPROPVALUE("Program Icon", icon, list.names, list.values);
    SETPROPVALUE("Program Icon Text", pathText(icon), list.names, list.values);
    return UPDATETEMPLATE(list, draft.dialogBody.text, false);
}

// ---- the checks ----

struct Refusal {
    std::string_view extension;  // of the file that is named in front
    std::string message;         // empty: nothing is wrong
};

std::string loadError(std::string_view what, const TemplateText& body) {
    return body.message.empty() ? "" : "Cannot create new " + std::string(what) + ".\n" + body.message + "\n";
}

std::string libraryConflict(const Wish& wish) {
    if (!ISLIBRARYFILE(wish.name + std::string(ClassExtension))) return {};
    return "The new class cannot be created, it conflicts with a library file of the same name.\n"
           "The existing library file is: " +
           FILEADDSEPARATOR(GETINHERITEDLIBPATH()) + wish.name + std::string(ClassExtension) +
           "\nChoose a different name for the new class.\n";
}

Refusal refusedAlways(const Draft& draft, const Wish& wish) {
    for (std::string message :
         {loadError("class", draft.classBody), loadError("dialog", draft.dialogBody), libraryConflict(wish)})
        if (!message.empty()) return {ClassExtension, std::move(message)};
    return {};
}

bool isFolder(const std::string& directory) {
    const bool there = DiskSpace(directory) >= 0 && os::infoOf(os::native(directory)).folder;
    ClearError();
    return there;
}

Refusal refusedByDisk(const Wish& wish) {
    constexpr const char* otherName = "Choose a different name, or rename the existing file.\n";
    if (!isFolder(wish.directory))
        return {ClassExtension,
                "The new class cannot be created, this directory does not exist.\nChoose a directory that "
                "exists.\n"};
    const auto taken = [&wish](std::string_view extension) {
        return !NAMEINFOLDER(wish.directory, FILEGETFNAME(wish.file(extension))).empty();
    };
    if (taken(ClassExtension))
        return {ClassExtension,
                std::string("The new class cannot be created, this class file already exists.\n") +
                    otherName};
    if (wish.wantsWindow() && taken(ResourceExtension))
        return {ResourceExtension,
                std::string("The new class cannot be created, this dialog file already exists.\n") +
                    otherName};
    if (ISCOREFILE(wish.file(ClassExtension)))
        return {ClassExtension,
                "The new class cannot be created, its name is that of a core run time library class.\n"
                "Choose a different name for the new class.\n"};
    if (ISRESERVEDWORD(wish.name))
        return {ClassExtension, "The new class cannot be created, its name is a word of the language.\n"
                                "Choose a different name for the new class.\n"};
    return {};
}

// An icon that is not there would be missing without a word from all that is made of the program.
Refusal refusedByIcon(const Wish& wish) {
    if (wish.icon.empty() || !wish.wantsWindow()) return {};
    const PlaceholderFolders folders{GETRESOURCEDIR(), GETCOMPILERDIR()};
    const std::string path = os::native(FILERESOLVEPATHS(wish.icon, folders));
    const std::string begin = "The new class cannot be created, its program icon '" + wish.icon + "' ",
                      end = "Choose another icon, or none.\n";
    if (path.find_first_of("\"\r\n") != std::string::npos)
        return {ClassExtension, begin + "has a quote or a line end in its path.\n" + end};
    if (FileSize(ISROOTED(path) ? path : wish.directory + path) < 1)
        return {ClassExtension, begin + "does not exist or is empty.\n" + end};
    return {};
}

// True, and told, if something is wrong.
bool refuse(const std::string& title, const Wish& wish, const Refusal& refusal) {
    if (refusal.message.empty()) return false;
    MSGBOX(title, "'" + wish.file(refusal.extension) + "'\n" + refusal.message);
    return true;
}

// ---- the texts ----

// A template that cannot be filled is told, and nothing is made.
NewClass textsOf(const std::string& title, const Draft& draft, const Wish& wish) {
    const TemplateText classText = UPDATETEMPLATE(draft.fields, draft.classBody.text, false);
    STAMP();
    const TemplateText resources = wish.wantsWindow() ? dialogText(draft, wish) : TemplateText();
    STAMP();
    const std::string error = loadError("class", classText) + loadError("dialog", resources);
    if (refuse(title, wish, {ClassExtension, error})) return {};
    NewClass made{classText.text, wish.file(ClassExtension), {}, {}, false};
    if (!wish.wantsWindow()) return made;
    made.resourceText = resources.text;
    made.resourceFile = wish.file(ResourceExtension);
    return made;
}

NewClass askForClass(const std::string& title, const std::string& path, bool nonMain, ProgramType type) {
    Draft draft(nonMain);
    STAMP();
    draft.propose(path, type);
    if (draft.loaded() && !PROPERTIESDIALOG(title, GETHELPFILE(), HelpKey, draft.fields.names,
                                            draft.fields.types, draft.fields.values))
        return {};
    STAMP();
    Wish wish = draft.wish();
    if (wish.directory.empty()) wish.directory = draft.loaded() ? "" : FILEGETDIR(path);
    if (wish.directory.empty()) return {};
    if (!ISROOTED(wish.directory)) wish.directory = FILEADDSEPARATOR(GETCURDIR()) + wish.directory;
    if (wish.name.empty()) wish.name = FILEBASENAME(path);
    STAMP();
    if (refuse(title, wish, refusedAlways(draft, wish)) || refuse(title, wish, refusedByDisk(wish)) ||
        refuse(title, wish, refusedByIcon(wish)))
        return {};
    STAMP();
    return textsOf(title, draft, wish);
}

}  // namespace

NewClass NEWCLASSDIALOG(const Object& label, const std::string& title, const std::string& path, bool nonMain,
                        ProgramType type) {
    FRAME(NEWCLASSDIALOG);
    STAMP();
    bool discarded = false;
    const bool left = leaveCodeWindow(discarded);
    STAMP();
    showFileName(label);
    NewClass made;
    if (left) made = askForClass(title, path, nonMain, type);
    STAMP();
    made.discarded = discarded;
    if (made.empty()) RESTORECHANGES(made);
    showFileName(label);
    return made;
}

NewClass NEWCLASSGETTEXT(const std::string& title, const std::string& path) {
    FRAME(NEWCLASSGETTEXT);
    STAMP();
    Draft draft(false);
    draft.propose(path, WithWindow);
    const Wish wish{FILEBASENAME(path), FILEGETDIR(path), "", STR(WithWindow)};
    STAMP();
    if (refuse(title, wish, refusedAlways(draft, wish))) return {};
    STAMP();
    return textsOf(title, draft, wish);
}

void RESTORECHANGES(const NewClass& made) {
    FRAME(RESTORECHANGES);
    STAMP();
    if (made.discarded && IsLoaded(SDIEdit)) setModified(true);
}

}  // namespace tarn
