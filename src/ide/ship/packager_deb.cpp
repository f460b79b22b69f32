// SPDX-License-Identifier: GPL-3.0-or-later
//
// The button that makes a Debian package. What it asks is kept beside the program, in NAME-deb.ini, as the script of an
// installer is; the maintainer also in the settings, for the next program.
#include "ide/build/compiler.h"
#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "ide/ship/packager.h"
#include "ide/ship/packager_internal.h"
#include "kernel/run/fileerrors.h"
#include "library/dialogs/dialogshape.h"
#include "library/settings/profstr.h"
#include "library/ship/copyutil.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/text/initext.h"

MODULE("progmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

const Object DebDlg("DebDlg");
constexpr std::string_view Section = "Package", MaintainerSection = "DebDlg", MaintainerKey = "Maintainer";

struct Field {
    std::string_view key, control;
    std::string DebFields::*value;
};
constexpr Field fieldTable[] = {{"Name", "edit1", &DebFields::name},
                                {"Version", "edit2", &DebFields::version},
                                {"Maintainer", "edit3", &DebFields::maintainer},
                                {"Summary", "edit4", &DebFields::summary},
                                {"Description", "edit5", &DebFields::description}};

std::string keptIn(const std::string& mainClass) {
    return FILEGETDIR(mainClass) + FILEBASENAME(mainClass) + "-deb.ini";
}

// Lines as one line, and back. Reading takes a pair of quotes off, so that a text that has one of its own gets another.
std::string oneLine(const std::string& text) {
    const std::string line = STRREPLACE(STRREPLACE(STRREPLACE(text, "\r", ""), "\\", "\\\\"), "\n", "\\n");
    const bool quoted = line.size() > 1 && line.starts_with('"') && line.ends_with('"');
    return quoted ? STRADDQUOTES(line) : line;
}
std::string manyLines(const std::string& text) {
    std::string lines;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool marked = text[i] == '\\' && i + 1 < text.size();
        if (marked) ++i;
        lines += marked && text[i] == 'n' ? '\n' : text[i];
    }
    return lines;
}

void tell(const std::string& text) {
    MsgBox(GetCaption(PackagerDlg), text, "OK", BoxIcon::Error);
}

// What was kept. A file that is not there yet is empty; one that cannot be read is told.
std::string keptText(const std::string& file) {
    std::string text;
    const os::FileError error = os::readFile(file, text);
    if (error != os::FileError::None && !IsMissing(error))
        tell("What was entered for an earlier package could not be read from '" + file +
             "': " + std::string(os::describe(error)) +
             "\nThe properties of the program are proposed. Check that you may read the file.");
    return text;
}

// What was kept, else what the properties of the program say.
DebFields proposed(const std::string& mainClass) {
    const VersionFields version = packager::versionOf(mainClass);
    DebFields fields{DEBNAME(FILEBASENAME(mainClass)), DEBVERSION(version.version),
                     PROFILESTRGET(GETIDEINIFILE(), MaintainerSection, MaintainerKey), version.description,
                     version.comments};
    const std::string text = keptText(keptIn(mainClass));
    for (const Field& field : fieldTable)
        if (const std::string kept(ini::get(text, Section, field.key)); !kept.empty())
            fields.*field.value = manyLines(kept);
    return fields;
}

// Nothing is written over what cannot be read.
os::FileError keepIn(const std::string& file, const DebFields& fields) {
    std::string text;
    const os::FileError error = os::readFile(file, text);
    if (error != os::FileError::None && !IsMissing(error)) return error;
    const std::string before = text;
    for (const Field& field : fieldTable) ini::put(text, Section, field.key, oneLine(fields.*field.value));
    return text == before ? os::FileError::None : os::saveFile(file, text).error;
}

void keep(const std::string& mainClass, const DebFields& fields) {
    const std::string file = keptIn(mainClass);
    if (const os::FileError error = keepIn(file, fields); error != os::FileError::None)
        tell("What was entered could not be kept in '" + file + "': " + std::string(os::describe(error)) +
             "\nThe package is made all the same, but the next time it must be entered again. To have it "
             "kept, copy the program to a folder that you may write, or make room on its disk.");
    PROFILESTRPUT(GETIDEINIFILE(), MaintainerSection, MaintainerKey, fields.maintainer);
}

DebFields entered(const Object& window) {
    DebFields fields;
    for (const Field& field : fieldTable) {
        const std::string text = GetText(FINDCONTROL(window, field.control));
        fields.*field.value = field.value == &DebFields::description ? text : STRTRIM(text);
    }
    return fields;
}

void load(const Object& window) {
    const DebFields fields = proposed(packager::mainClassOf(PackagerDlg));
    for (const Field& field : fieldTable) SetText(FINDCONTROL(window, field.control), fields.*field.value);
}

std::string problem(const Object& window) {
    return DEBPROBLEM(entered(window));
}

constexpr DialogShape shape{.showHelp = SHOWWINDOWHELP, .load = load, .problem = problem, .hides = true};

bool debDlg(const Object& window, int event, const Object& control, int parameter) {
    FRAME(DEBDLG);
    STAMP();
    const bool result = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}
const RegisteredWindow registered("DebDlg", debDlg);

// False if the user leaves.
bool askFields(DebFields& fields) {
    Load(DebDlg);
    STAMP();
    Show(DebDlg, true);
    const bool ok = IsLoaded(DebDlg);
    if (ok) {
        fields = entered(DebDlg);
        Unload(DebDlg);
    }
    STAMP();
    return ok;
}

}  // namespace

void packager::copyToDeb(const Object& window) {
    FRAME(PACKAGER_DEB);
    STAMP();
    const std::string mainClass = mainClassOf(window);
    DebFields fields;
    if (!ISAPART(window, filesOf(window), keptIn(mainClass)) || !askFields(fields)) return;
    keep(mainClass, fields);
    STAMP();
    constexpr std::string_view extensions[] = {".svg", ".png", EXT_ICO};
    const std::string file = FILEGETDIR(mainClass) + fields.name + "_" + fields.version + ".deb";
    static_cast<void>(COPYTODEB(window, fields, versionOf(mainClass).copyright, iconOf(mainClass, extensions),
                                filesOf(window), FILECHANGEEXT(mainClass, EXT_EXE), file));
    STAMP();
}

}  // namespace tarn
