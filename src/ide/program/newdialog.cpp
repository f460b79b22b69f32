// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/newdialog.h"

#include "ide/designer/dlgedit.h"
#include "ide/editor/lineends.h"
#include "ide/editor/ownwrites.h"
#include "ide/editor/sourcefile.h"
#include "ide/editor/textedit.h"
#include "ide/program/changes.h"
#include "ide/program/members/programnames.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/designer/propedit.h"
#include "library/designer/proputil.h"
#include "library/settings/profstr.h"
#include "library/source/codewiz.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

namespace tarn {
namespace {

void NEWDIALOG_ONERROR(std::int32_t code) {
    if (!ISFILEERROR(code)) return DefaultErrorHandler(code);
    TELLERROR(code, "Nothing was added to the file. Check that you may read it.");
}

}  // namespace
}  // namespace tarn

MODULE("projedit", tarn::NEWDIALOG_ONERROR)

namespace tarn {
namespace {

constexpr const char* Title = "New Dialog";
constexpr const char* FreeStem = "New";
constexpr const char* BaseName = "Dialog";

void tell(const std::string& message) {
    MsgBox(Title, message, "OK", BoxIcon::Error);
}

std::string templateOf(std::string_view name) {
    return "Template." + std::string(name) + std::string(ClassExtension);
}

bool isThere(const std::string& file) {
    return !file.empty() && FileSize(file) >= 0;
}

// ---- where the dialog goes ----

TemplateText dialogText(const TemplateText& body, const std::string& name) {
    TemplateParameters list = TEMPLATETOPROPLIST(body.text);
    SETPROPVALUE("Name", name, list.names, list.values);
    SETPROPVALUE("Caption", name, list.names, list.values);
    return UPDATETEMPLATE(list, body.text, false);
}

struct Target {
    std::string classFile, resourceFile;
    std::string untouched;  // the dialog of a file that is as this command has made it, and serves once more
};

Target twinsOf(const std::string& file) {
    return {TWINFILE(file, ClassExtension), TWINFILE(file, ResourceExtension), {}};
}

// The file of the selected row; of a row that is neither a class nor a resource file, the class that it belongs to.
std::string selectedFile() {
    const ProjectRow selected = PROJECTITEMINFO(ProjectEditorDlg);
    const std::string extension = FILEGETEXT(selected.item.file);
    if (STREQUAL(extension, ClassExtension) || STREQUAL(extension, ResourceExtension))
        return selected.item.file;
    return selected.row == 0 ? "" : PROJECTITEMGETPARENT(ProjectEditorDlg, selected.row);
}

// The only resource of the file, if it is a dialog that is as the template makes it; else empty.
std::string untouchedDialog(const std::string& resourceFile, const TemplateText& body) {
    const std::string all = ResourceInfo(resourceFile, "*", "*").text,
                      dialogs = ResourceInfo(resourceFile, "DIALOG", "*").text;
    const std::string name = STRLINES(all) == 1 && STRLINES(dialogs) == 1 ? STRWORD(dialogs, 1) : "";
    std::string text;
    if (name.empty() || !LOADFILE(resourceFile, text)) return {};
    return text == dialogText(body, name).text ? name : "";
}

// A resource file of the current folder: the last that was made so if it is untouched, else a new one.
Target freeTarget(const TemplateText& body) {
    const TempNames names = FILETEMPNAMES(FILEADDSEPARATOR(GETCURDIR()), FreeStem, ResourceExtension);
    STAMP();
    Target last = twinsOf(names.last);
    if (isThere(last.resourceFile)) last.untouched = untouchedDialog(last.resourceFile, body);
    return last.untouched.empty() ? twinsOf(names.next) : last;
}

Target findTarget(const TemplateText& body) {
    const std::string selected = selectedFile();
    STAMP();
    if (isThere(selected)) return twinsOf(selected);
    const std::string code = EDITWNDGETFILENAME(SDIEdit);
    STAMP();
    if (ISCLASSFILE(code) && isThere(code)) return twinsOf(code);
    return freeTarget(body);
}

// ---- what it is called ----

// The dialogs of the target, and of the whole program if one is open, one a line.
std::string namesInUse(const Target& target) {
    std::string names = ResourceInfo(target.resourceFile, "DIALOG", "*").text;
    if (!ISCLASSFILE(PROJECTGETMAINFILE(ProjectEditorDlg))) return names;
    STAMP();
    const std::string files = PROJECTGETFILES(ProjectEditorDlg);
    for (std::string_view rest = files; !rest.empty();) {
        const std::string file(ascii::withoutLineEnd(ascii::takeLine(rest)));
        if (STREQUAL(FILEGETEXT(file), ResourceExtension)) names += ResourceInfo(file, "DIALOG", "*").text;
    }
    return names;
}

// A name that no dialog has, nor any other resource of the target or of its program.
std::string newName(const Target& target) {
    std::string names = namesInUse(target);
    STAMP();
    const ProgramNames others = ProgramNames::beside(target.resourceFile);
    STAMP();
    while (true) {
        std::string name = GETNEXTNAME(names, BaseName);
        const bool free =
            ResourceInfo(target.resourceFile, "*", name).text.empty() && others.holderOf(name).empty();
        if (free) return name;
        names += name + "\n";
    }
}

// ---- the texts ----

// The text of a resource file with another statement, an empty line between.
std::string withStatement(const std::string& old, const std::string& statement) {
    std::string text = old;
    if (!text.empty() && !text.ends_with('\n')) text += '\n';
    if (!text.empty() && !text.ends_with("\n\n") && !text.ends_with("\n\r\n")) text += '\n';
    return ADOPTLINEENDS(text + statement, old);
}

// ---- the window function ----

// The text of a class with the function; an error text, and nothing changed, if it cannot be put in.
std::string addFunction(const std::string& name, const std::string& function, std::string& text) {
    const std::string old = text;
    std::string changed = text, error = SYMADDFUNCTION(function, 0, changed);
    if (error.empty()) error = SYMINDENTFUNCHEADER(name, 0, changed);
    if (error.empty()) text = ADOPTLINEENDS(changed, old);
    return error;
}

// What becomes of the class beside the dialog.
struct ClassChange {
    bool wanted = false;    // the program is that of a class
    bool inWindow = false;  // it is changed in the Code window, and not on the disk
    std::string before, after;
    std::string error;  // why the function cannot be put in
    [[nodiscard]] bool any() const { return wanted && error.empty() && after != before; }
};

TemplateText functionText(const std::string& name) {
    const TemplateText body = LOADTEMPLATE(GETIDEINIFILE(), templateOf("FunctionBody"));
    return body.message.empty() ? FUNCTIONFROMTEMPLATE(name, body.text) : body;
}

// A function of that name that is there already stays as it is.
ClassChange planFunction(const std::string& name, const std::string& classFile) {
    ClassChange change;
    change.wanted = ISCLASSFILE(PROJECTGETMAINFILE(ProjectEditorDlg));
    if (!change.wanted) return change;
    change.inWindow = ISINEDITOR(classFile);
    STAMP();
    if (change.inWindow)
        change.before = GetText(SDIEdit);
    else if (isThere(classFile) && !LOADFILE(classFile, change.before))
        return change;
    change.after = change.before;
    STAMP();
    if (SYMFINDFUNCTION(name, 0, change.before).bodyStart != 0) return change;
    const TemplateText function = functionText(name);
    STAMP();
    change.error = function.message;
    if (change.error.empty()) change.error = addFunction(name, function.text, change.after);
    return change;
}

std::string changeWindow(const ClassChange& change) {
    const auto growth =
        static_cast<std::int64_t>(change.after.size()) - static_cast<std::int64_t>(change.before.size());
    if (!EDITWNDHASROOM(SDIEdit, growth)) return "The text in the Code window cannot grow any further.";
    EDITWNDCHANGETEXT(SDIEdit, change.after);
    return {};
}

void finishFunction(const std::string& name, const ClassChange& change) {
    std::string error = change.error;
    if (error.empty() && change.any() && change.inWindow) error = changeWindow(change);
    STAMP();
    if (!error.empty()) tell("Could not add the window function for '" + name + "'.\n" + error);
}

// ---- the files ----

struct Plan {
    std::string name;
    Target target;
    bool appends = false;  // otherwise the dialog is in the file already
    std::string before, after;
    ClassChange code;
};

// Both files, from the one text to the other or back. An empty file that was not there goes again.
std::vector<os::FileChange> changesOf(const Plan& plan, bool back) {
    std::vector<os::FileChange> changes;
    const auto add = [&](const std::string& file, const std::string& before, const std::string& after) {
        const std::string& text = back ? before : after;
        changes.push_back(
            {file, text, text.empty() ? os::FileChange::Kind::Remove : os::FileChange::Kind::Write});
    };
    if (plan.appends) add(plan.target.resourceFile, plan.before, plan.after);
    if (plan.code.any() && !plan.code.inWindow) add(plan.target.classFile, plan.code.before, plan.code.after);
    return changes;
}

// Why the dialog does not stand in the file; empty if it does.
std::string whyMissing(const Plan& plan) {
    const ResourceText found = ResourceInfo(plan.target.resourceFile, "DIALOG", plan.name);
    if (!found.error.empty()) return found.error;
    return found.text.empty() ? "It would be a part of what stands in front of it." : "";
}

// True if the dialog stands in the file then. What is wrong is told, and the files are as they were.
bool writePlan(const Plan& plan) {
    std::string error = plan.appends ? ResourceInfo(plan.target.resourceFile, "DIALOG", "*").error : "";
    if (error.empty()) error = CHANGEFILES(changesOf(plan, false));
    if (error.empty() && plan.appends) {
        error = whyMissing(plan);
        if (error.empty()) return true;
        const std::string failed = CHANGEFILES(changesOf(plan, true));
        if (!failed.empty()) error += "\n" + failed;
    }
    if (!error.empty())
        tell("Could not add '" + plan.name + "' to '" + plan.target.resourceFile + "'.\n" + error);
    return error.empty();
}

// ---- the command ----

// False if the user has chosen to stay with the changes of the open dialog.
bool leaveOpenDialog() {
    DIALOGSAVEIFMODIFIED();
    STAMP();
    if (!DIALOGGETMODIFY()) return true;
    if (!DIALOGGETFILENAME().empty() && ISSHOWN(DialogDlg)) Show(DialogDlg, false);
    return false;
}

bool mayChange(const Target& target, const std::string& name) {
    if (!ISLIBRARYFILE(target.classFile)) return true;
    STAMP();
    return MSGBOX(Title,
                  "This will add '" + name + "' to '" + target.resourceFile +
                      "'\nYou are adding a new dialog to one of the system files. Are you sure?",
                  "&Yes\n&No", "&Yes");
}

// The text of the resource file with the dialog. False: told.
bool planDialog(Plan& plan, const TemplateText& body) {
    plan.appends = plan.target.untouched.empty();
    if (!plan.appends) return true;
    const TemplateText text = body.message.empty() ? dialogText(body, plan.name) : body;
    if (!text.message.empty()) return tell("Cannot create new dialog.\n" + text.message + "\n"), false;
    if (isThere(plan.target.resourceFile) && !LOADFILE(plan.target.resourceFile, plan.before)) return false;
    plan.after = withStatement(plan.before, text.text);
    return true;
}

}  // namespace

void PROJECTNEWDIALOG() {
    FRAME(PROJECTNEWDIALOG);
    STAMP();
    if (!leaveOpenDialog()) return;
    STAMP();
    const TemplateText body = LOADTEMPLATE(GETIDEINIFILE(), templateOf("DialogBody"));
    STAMP();
    Plan plan;
    plan.target = findTarget(body);
    STAMP();
    plan.name = plan.target.untouched.empty() ? newName(plan.target) : plan.target.untouched;
    STAMP();
    const bool wanted = mayChange(plan.target, plan.name) && ASKCODEWINDOW(plan.target.resourceFile) &&
                        planDialog(plan, body);
    STAMP();
    if (!wanted) return;
    plan.code = planFunction(plan.name, plan.target.classFile);
    STAMP();
    const bool written = writePlan(plan);
    STAMP();
    if (!written) return;
    SHOWOWNWRITE(plan.target.resourceFile);
    STAMP();
    finishFunction(plan.name, plan.code);
    STAMP();
    if (IsLoaded(ProjectEditorDlg)) PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
    OPENDIALOG(plan.target.resourceFile, plan.name);
    STAMP();
}

}  // namespace tarn
