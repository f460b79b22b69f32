// SPDX-License-Identifier: Apache-2.0
//
// The operations on resource files: the file is read, the work is done on its text (rcedit.h), and a text that
// has changed is saved whole.
#include "platform/resources/resource.h"

#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "platform/resources/rcedit.h"
#include "platform/resources/rcx.h"

namespace tarn::platform {

namespace {

std::string unreadable(const std::string& file, os::FileError error) {
    return "'" + file + "' cannot be read. " + std::string(os::describe(error));
}

// Reads and parses `file`; a file that does not exist is empty. The result is an error text.
std::string open(const std::string& file, RcFile& parsed) {
    std::string bytes;
    const os::FileError error = os::readFile(file, bytes);
    if (error != os::FileError::None && error != os::FileError::NotFound) return unreadable(file, error);
    parsed = parseResourceText(std::move(bytes));
    return parsed.fault.empty() ? "" : faultText(file, parsed.fault);
}

// A file ".tmp" is read at once and deleted: nobody waits until it is safe on the disk.
os::Durability durabilityOf(const std::string& file) {
    return ascii::equal(paths::extension(file), ".tmp") ? os::Durability::Unsynced : os::Durability::Synced;
}

template <class Edit>
std::string edit(const std::string& file, Edit change) {
    RcFile parsed;
    if (std::string error = open(file, parsed); !error.empty()) return error;
    const std::string before = parsed.text;
    if (std::string error = change(parsed); !error.empty()) return error;
    if (parsed.text == before) return "";
    const os::SaveResult saved = os::saveFile(file, parsed.text, durabilityOf(file));
    return saved.ok() ? "" : "'" + file + "' cannot be saved. " + std::string(os::describe(saved.error));
}

}  // namespace

std::string ResourceRead(const std::string& file, const std::string& name, ObjectArray& objects) {
    objects.fill("");
    RcFile parsed;
    std::string error = open(file, parsed);
    return error.empty() ? readObjects(parsed, file, name, objects) : error;
}

std::string ResourceWrite(const ObjectArray& dialog, const ObjectArray& menu, const std::string& file) {
    ResourcePast none;
    return ResourceWrite(dialog, menu, file, none);
}

std::string ResourceWrite(const ObjectArray& dialog, const ObjectArray& menu, const std::string& file,
                          ResourcePast& past) {
    ResourcePast after = past;
    std::string error =
        edit(file, [&](RcFile& parsed) { return writeObjects(parsed, file, dialog, menu, after); });
    if (error.empty()) past = std::move(after);
    return error;
}

std::string ResourceDelete(const std::string& file, const std::string& name) {
    return edit(file, [&](RcFile& parsed) { return deleteStatement(parsed, file, name); });
}

std::string ResourceRename(const std::string& file, const std::string& oldName, const std::string& newName) {
    return edit(file, [&](RcFile& parsed) { return renameStatement(parsed, file, oldName, newName); });
}

std::string ResourceWriteText(const std::string& file, const std::string& line) {
    return edit(file, [&](RcFile& parsed) { return addStatement(parsed, file, line); });
}

ResourceText ResourceInfo(const std::string& file, const std::string& kind, const std::string& name) {
    std::string bytes;
    const os::FileError error = os::readFile(file, bytes);
    if (error == os::FileError::NotFound || error == os::FileError::NotFolder ||
        error == os::FileError::BadName)
        return {};
    if (error != os::FileError::None) return {"", unreadable(file, error)};
    if (isCompiledResource(bytes)) {
        CompiledResources compiled;
        const std::string fault = compiled.open(std::move(bytes));
        if (!fault.empty()) return {"", "'" + file + "': " + fault};
        return {compiled.info(kind, name), ""};
    }
    return listStatements(parseResourceText(std::move(bytes)), file, kind, name);
}

std::string ResourceTypelist(const std::string& type) {
    std::string text;
    for (const PropertyRow& row : propertiesOf(typeFromName(type)))
        text.append(row.name).append(" ").append(row.options).append("\n");
    return text;
}

bool ResourceMemoryOption(const std::string& word) {
    return isMemoryOption(word);
}

bool ResourceCommonId(const std::string& name) {
    return commonId(name) != 0;
}

}  // namespace tarn::platform
