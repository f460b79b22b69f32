// SPDX-License-Identifier: Apache-2.0
//
// Makes one compiled resource file out of several resource files.
#include "platform/resources/rcpath.h"
#include "platform/resources/rctext.h"
#include "platform/resources/rcx.h"
#include "platform/resources/resource.h"

#include "os/files.h"
#include "os/paths.h"
#include "platform/text.h"

#include <deque>

namespace tarn::platform {

namespace {

constexpr int fileMissing = 704, bitmapInvalid = 710, wrongSyntax = 725;

struct Source {
    std::string name;
    RcFile file;
};

struct Found {
    const Source* source = nullptr;
    const RcStatement* statement = nullptr;
};

class Compiler {
public:
    explicit Compiler(const std::vector<ResourceFolder>& folders) : folders_(folders) {}
    void read(const std::string& name);
    void collect();
    void compile();
    [[nodiscard]] const std::string& errors() const { return errors_; }
    [[nodiscard]] std::string result() const { return encodeResources(entries_, symbols_); }

private:
    void fail(const Source& source, const RcFault& fault);
    void window(const Source& source, const RcStatement& statement);
    void picture(const Source& source, const RcStatement& statement);

    const std::vector<ResourceFolder>& folders_;
    std::deque<Source> sources_;
    std::map<std::string, Found, LessText> names_, menus_;
    std::map<std::string, int, LessText> symbols_;
    std::vector<CompiledEntry> entries_;
    std::string errors_;
};

void Compiler::fail(const Source& source, const RcFault& fault) {
    errors_ += source.name + "(" + std::to_string(fault.line) + ") : error " + std::to_string(fault.number) +
               " " + fault.text + "\n";
}

void Compiler::read(const std::string& name) {
    Source& source = sources_.emplace_back();
    source.name = name;
    std::string bytes;
    const os::FileError error = os::readFile(name, bytes);
    if (error != os::FileError::None) return fail(source, {1, fileMissing, std::string(os::describe(error))});
    source.file = parseResourceText(std::move(bytes));
    if (!source.file.fault.empty()) fail(source, source.file.fault);
}

// Names of all files, so that a window of one may have the menu of another.
void Compiler::collect() {
    for (const Source& source : sources_)
        for (const RcStatement& statement : source.file.statements) {
            if (!statement.fault.empty()) {
                fail(source, statement.fault);
                if (statement.kind == RcKind::Menu)
                    menus_.emplace(statement.name, Found{&source, &statement});
            } else if (statement.kind == RcKind::Unknown) {
                fail(source, {statement.lineNumber, wrongSyntax, "This is not a resource statement."});
            } else if (statement.kind == RcKind::Define) {
                const auto [place, isNew] =
                    symbols_.emplace(statement.name, source.file.symbol(statement.name));
                if (!isNew && place->second != wholeNumber(statement.id))
                    fail(source,
                         {statement.lineNumber, wrongSyntax, "'" + statement.name + "' is already defined."});
            } else if (!names_.emplace(statement.name, Found{&source, &statement}).second) {
                fail(source,
                     {statement.lineNumber, wrongSyntax, "'" + statement.name + "' is already a name."});
            } else if (statement.kind == RcKind::Menu) {
                menus_.emplace(statement.name, Found{&source, &statement});
            }
        }
}

void Compiler::window(const Source& source, const RcStatement& statement) {
    const auto menu = menus_.find(valueOf(statement.self.values(), statement.self.type, "MENU"));
    const Found found = menu == menus_.end() ? Found() : menu->second;
    if (found.statement != nullptr && !found.statement->fault.empty()) return;  // that is told already
    WindowTemplate made;
    const RcFile* const menuFile = found.source == nullptr ? nullptr : &found.source->file;
    const RcFault fault = makeTemplate(source.file, statement, menuFile, found.statement, made);
    if (!fault.empty())
        return fail(fault.number == 726 && found.source != nullptr ? *found.source : source, fault);
    for (const auto* objects : {&made.controls, &made.menu})
        for (const ObjectTemplate& object : *objects)
            if (isIdentifier(object.name)) symbols_.emplace(object.name, object.number);
    entries_.push_back({statement.kindWord, statement.name, resourceLine(source.file, statement, false),
                        encodeWindow(made)});
}

void Compiler::picture(const Source& source, const RcStatement& statement) {
    std::string bytes;
    const os::FileError error = os::readFile(ResourceFilePath(source.name, statement.path, folders_), bytes);
    if (error != os::FileError::None || bytes.empty())
        return fail(source,
                    {statement.lineNumber, bitmapInvalid,
                     "The picture '" + statement.path + "' cannot be read. " +
                         std::string(error == os::FileError::None ? "It is empty." : os::describe(error))});
    entries_.push_back(
        {"BITMAP", statement.name, resourceLine(source.file, statement, false), std::move(bytes)});
}

void Compiler::compile() {
    for (const Source& source : sources_)
        for (const RcStatement& statement : source.file.statements) {
            const bool version = statement.kind == RcKind::Version;
            if (!statement.fault.empty()) continue;
            if (statement.kind == RcKind::Window) {
                window(source, statement);
            } else if (statement.kind == RcKind::File && statement.kindWord == "BITMAP") {
                picture(source, statement);
            } else if (version || statement.kind == RcKind::Menu || statement.kind == RcKind::File) {
                entries_.push_back({statement.kindWord, statement.name,
                                    resourceLine(source.file, statement, false),
                                    version ? resourceLine(source.file, statement, true) : ""});
            }
        }
}

}  // namespace

std::string ResourceFilePath(const std::string& rcFile, const std::string& written,
                             const std::vector<ResourceFolder>& folders) {
    const std::string path = os::native(written);
    for (const ResourceFolder& folder : folders) {
        if (!sameText(path.substr(0, folder.placeholder.size()), folder.placeholder)) continue;
        std::string rest = path.substr(folder.placeholder.size());
        while (rest.starts_with('/')) rest.erase(0, 1);
        return folder.folder + (folder.folder.ends_with('/') ? "" : "/") + rest;
    }
    return path.starts_with('/') ? path : os::folderPart(rcFile) + path;
}

std::string CompileResources(const std::vector<std::string>& rcFiles, const std::string& rcxFile,
                             const std::vector<ResourceFolder>& folders) {
    Compiler compiler(folders);
    for (const std::string& file : rcFiles) compiler.read(file);
    compiler.collect();
    compiler.compile();
    if (!compiler.errors().empty()) return compiler.errors();
    const std::string bytes = compiler.result();
    if (bytes.size() > INT32_MAX) return rcxFile + "(1) : error 710 The resources are too large together.\n";
    const os::SaveResult saved = os::saveFile(rcxFile, bytes, os::Durability::Unsynced);
    return saved.ok() ? "" : rcxFile + "(1) : error 704 " + std::string(os::describe(saved.error)) + "\n";
}

}  // namespace tarn::platform
