// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/programchanges.h"

#include "ide/editor/sourcefile.h"
#include "ide/editor/textedit.h"
#include "ide/program/projwindow.h"
#include "ide/program/usesclause.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

std::string readError(const std::string& file, os::FileError error) {
    return error == os::FileError::None
               ? ""
               : "'" + file + "' cannot be read. " + std::string(os::describe(error));
}

}  // namespace

const os::FileChange* ProgramChanges::find(const std::string& file) const {
    const auto found = std::find_if(files_.begin(), files_.end(),
                                    [&](const os::FileChange& change) { return change.path == file; });
    return found == files_.end() ? nullptr : &*found;
}

void ProgramChanges::put(os::FileChange change) {
    const os::FileChange* const known = find(change.path);
    if (known == nullptr)
        files_.push_back(std::move(change));
    else
        files_[static_cast<std::size_t>(known - files_.data())].bytes = std::move(change.bytes);
}

std::string ProgramChanges::load(const std::string& file, std::string& text) const {
    FRAME(ProgramChanges::load);
    STAMP();
    text.clear();
    if (const os::FileChange* const known = find(file); known != nullptr) return text = known->bytes, "";
    if (ISINEDITOR(file)) return text = windowFile_.empty() ? GetText(SDIEdit) : windowText_, "";
    const os::FileError error = os::readFile(file, text);
    return error == os::FileError::NotFound ? "" : readError(file, error);
}

void ProgramChanges::save(const std::string& file, const std::string& text) {
    FRAME(ProgramChanges::save);
    STAMP();
    if (ISINEDITOR(file)) {
        windowFile_ = file;
        windowText_ = text;
        windowSaved_ = true;
    }
    put({file, text, os::FileChange::Kind::Write});
}

void ProgramChanges::edit(const std::string& file, const std::string& text) {
    FRAME(ProgramChanges::edit);
    STAMP();
    if (!ISINEDITOR(file)) return put({file, text, os::FileChange::Kind::Write});
    windowFile_ = file;
    windowText_ = text;
}

void ProgramChanges::create(const std::string& file, const std::string& text) {
    put({file, text, os::FileChange::Kind::Create});
}

void ProgramChanges::remove(const std::string& file) {
    put({file, "", os::FileChange::Kind::Remove});
}

std::string ProgramChanges::copy(const std::string& source, const std::string& file, bool replaces) {
    FRAME(ProgramChanges::copy);
    std::string bytes;
    const os::FileError error = os::readFile(source, bytes);
    const bool isNew = !replaces || FileSize(file) < 0;
    if (error == os::FileError::None)
        put({file, bytes, isNew ? os::FileChange::Kind::Create : os::FileChange::Kind::Write});
    return readError(source, error);
}

std::string ProgramChanges::commit() {
    FRAME(ProgramChanges::commit);
    STAMP();
    if (!windowFile_.empty() &&
        !EDITWNDHASROOM(SDIEdit, std::ssize(windowText_) - std::int64_t{GetTextLength(SDIEdit)}))
        return "The text in the Code window cannot grow any further.";
    STAMP();
    std::string error = files_.empty() ? std::string() : CHANGEFILES(files_);
    STAMP();
    if (!error.empty() || windowFile_.empty()) return error;
    EDITWNDCHANGETEXT(SDIEdit, windowText_);
    STAMP();
    if (windowSaved_) EDITWNDNOTELOADED(SDIEdit, EDITWNDGETFILENAME(SDIEdit));
    STAMP();
    return {};
}

std::string CHANGEUSES(ProgramChanges& changes, const std::string& classFile, const std::string& operation,
                       const std::string& name, bool* changed) {
    FRAME(CHANGEUSES);
    std::string text;
    STAMP();
    if (FileSize(classFile) < 0 && !ISINEDITOR(classFile))
        return "The file '" + classFile + "' was not found.";
    STAMP();
    if (std::string error = changes.load(classFile, text); !error.empty()) return error;
    const UsesChange change = CHANGEUSESCLAUSE(text, operation, name);
    STAMP();
    if (changed != nullptr) *changed = change.changed && change.error.empty();
    if (change.error.empty() && change.changed) changes.save(classFile, change.text);
    return change.error;
}

}  // namespace tarn
