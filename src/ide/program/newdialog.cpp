// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/newdialog.h"

#include "ide/designer/dlgedit.h"
#include "ide/editor/lineends.h"
#include "ide/editor/sourcefile.h"
#include "ide/editor/textedit.h"
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

// The report of a failed save. Where the file stayed as it was, the report goes on about the window that holds the text;
// that of a new dialog stands in none.
std::string saveFailure() {
    const std::string report = SAVEFILEREPORT();
    const std::size_t window = report.find("The file on disk is as it was,");
    return window == std::string::npos
               ? report
               : report.substr(0, window) + "Nothing was added to it. Try again when the cause is gone.";
}

void NEWDIALOG_ONERROR(std::int32_t code) {
    if (!ISFILEERROR(code)) return DefaultErrorHandler(code);
    const std::string failedSave = saveFailure();
    TELLERROR(code, !failedSave.empty() ? failedSave
                                        : "Nothing was added to the file. Check that you may read it.");
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
    const std::string files = PROJECTGETLIST(ProjectEditorDlg);
    for (std::string_view rest = files; !rest.empty();) {
        const std::string file(ascii::withoutLineEnd(ascii::takeLine(rest)));
        if (STREQUAL(FILEGETEXT(file), ResourceExtension)) names += ResourceInfo(file, "DIALOG", "*").text;
    }
    return names;
}

// A name that no dialog has, nor any other resource of the target.
std::string newName(const Target& target) {
    std::string names = namesInUse(target);
    STAMP();
    while (true) {
        std::string name = GETNEXTNAME(names, BaseName);
        if (ResourceInfo(target.resourceFile, "*", name).text.empty()) return name;
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

// True if the dialog stands in the file then. What is wrong is told, and the file is as it was.
bool appendDialog(const std::string& file, const std::string& name, const std::string& statement) {
    const bool isNew = !isThere(file);
    std::string old;
    if (!isNew && !LOADFILE(file, old)) return false;
    std::string error = ResourceInfo(file, "DIALOG", "*").error;
    if (error.empty()) {
        if (!SAVEFILE(file, withStatement(old, statement))) return false;
        const ResourceText found = ResourceInfo(file, "DIALOG", name);
        if (!found.text.empty() && found.error.empty()) return true;
        error = found.error.empty() ? "It would be a part of what stands in front of it." : found.error;
        if (isNew)
            FILEDELETE(file);
        else if (!SAVEFILE(file, old))
            return false;
    }
    tell("Could not add '" + name + "' to '" + file + "'.\n" + error);
    return false;
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

std::string addToWindow(const std::string& name, const std::string& function) {
    std::string text = GetText(SDIEdit);
    if (SYMFINDFUNCTION(name, 0, text).bodyStart != 0) return {};
    const auto before = static_cast<std::int64_t>(text.size());
    std::string error = addFunction(name, function, text);
    if (!error.empty()) return error;
    if (!EDITWNDHASROOM(SDIEdit, static_cast<std::int64_t>(text.size()) - before))
        return "The text in the Code window cannot grow any further.";
    EDITWNDCHANGETEXT(SDIEdit, text);
    return {};
}

// A file that cannot be read or written is told by the module's handler.
std::string addToFile(const std::string& name, const std::string& function, const std::string& file) {
    std::string text;
    if (isThere(file) && !LOADFILE(file, text)) return {};
    if (SYMFINDFUNCTION(name, 0, text).bodyStart != 0) return {};
    std::string error = addFunction(name, function, text);
    if (error.empty()) [[maybe_unused]]
        const bool told = SAVEFILE(file, text);
    return error;
}

void addWindowFunction(const std::string& name, const std::string& classFile) {
    const TemplateText body = LOADTEMPLATE(GETIDEINIFILE(), templateOf("FunctionBody"));
    STAMP();
    const TemplateText function = body.message.empty() ? FUNCTIONFROMTEMPLATE(name, body.text) : body;
    STAMP();
    std::string error = function.message;
    if (error.empty()) {
        const bool inWindow = ISINEDITOR(classFile);
        error = inWindow ? addToWindow(name, function.text) : addToFile(name, function.text, classFile);
    }
    STAMP();
    if (!error.empty()) tell("Could not add the window function for '" + name + "'.\n" + error);
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

// Puts the dialog into the resource file. False, and told, if it is not there then.
bool addDialog(const Target& target, const std::string& name, const TemplateText& body) {
    if (!target.untouched.empty()) return true;
    const TemplateText text = body.message.empty() ? dialogText(body, name) : body;
    if (text.message.empty()) return appendDialog(target.resourceFile, name, text.text);
    tell("Cannot create new dialog.\n" + text.message + "\n");
    return false;
}

}  // namespace

void PROJECTNEWDIALOG() {
    FRAME(PROJECTNEWDIALOG);
    STAMP();
    if (!leaveOpenDialog()) return;
    STAMP();
    const TemplateText body = LOADTEMPLATE(GETIDEINIFILE(), templateOf("DialogBody"));
    STAMP();
    const Target target = findTarget(body);
    STAMP();
    const std::string name = target.untouched.empty() ? newName(target) : target.untouched;
    STAMP();
    if (!mayChange(target, name)) return;
    STAMP();
    const bool added = addDialog(target, name, body);
    STAMP();
    if (!added) return;
    if (ISCLASSFILE(PROJECTGETMAINFILE(ProjectEditorDlg))) addWindowFunction(name, target.classFile);
    STAMP();
    if (IsLoaded(ProjectEditorDlg)) PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
    OPENDIALOG(target.resourceFile, name);
    STAMP();
}

}  // namespace tarn
