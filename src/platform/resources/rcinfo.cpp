// SPDX-License-Identifier: Apache-2.0
//
// What a resource file holds, as lists of lines.
#include "platform/resources/rcedit.h"
#include "platform/resources/rctext.h"
#include "platform/resources/rcx.h"

#include "platform/text.h"

namespace tarn::platform {

namespace {

// name, id, kind, options, path. The path of a DBFILE is always the fifth word.
std::string fileLine(const RcFile& file, const RcStatement& statement) {
    std::string id = statement.id;
    if (id.empty()) {
        const int number = file.symbol(statement.name);
        id = number != 0 ? std::to_string(number) : statement.name;
    }
    std::string line = statement.name + " " + id + " " + statement.kindWord;
    const bool data = statement.kindWord == "DBFILE";
    if (data) line += " " + (statement.options.empty() ? std::string("PRELOAD") : statement.options.front());
    if (!data)
        for (const std::string& option : statement.options) line += " " + option;
    return line + " " + quotedPath(statement.path);
}

std::string versionText(const RcFile& file, const RcStatement& statement) {
    std::string text = file.text.substr(statement.span.begin, statement.span.end - statement.span.begin);
    std::erase(text, '\r');
    if (text.ends_with('\n')) text.pop_back();
    return text;
}

std::string controlLines(const RcFile& file, const RcStatement& dialog) {
    std::string text;
    const auto add = [&](const RcObject& object) {
        const std::string& name = object.givenName();
        if (!name.empty()) text += name + " " + std::to_string(file.numberOf(object)) + "\n";
    };
    for (const RcObject& control : dialog.objects) add(control);
    const RcStatement* const menu =
        file.find(RcKind::Menu, valueOf(dialog.self.values(), dialog.self.type, "MENU"));
    if (menu != nullptr)
        for (const RcObject& item : menu->objects) add(item);
    return text;
}

// A DIALOG is any kind of window.
bool hasKind(const RcStatement& statement, std::string_view kind) {
    if (sameText(kind, "DIALOG")) return statement.kind == RcKind::Window;
    return sameText(statement.kindWord, kind);
}

// Whether a list shows it: a file of which the path is not known has no line.
bool isListed(const RcStatement& statement, bool names) {
    if (statement.kind == RcKind::Define || statement.kind == RcKind::Unknown) return false;
    return names || statement.kind != RcKind::File || statement.fault.empty();
}

ResourceText listOf(const RcFile& file, const std::string& kind) {
    ResourceText result;
    const bool names = kind == "*";
    for (const RcStatement& statement : file.statements)
        if (isListed(statement, names) && (names || hasKind(statement, kind)))
            result.text += (names ? statement.name : resourceLine(file, statement, false)) + "\n";
    return result;
}

}  // namespace

std::string resourceLine(const RcFile& file, const RcStatement& statement, bool whole) {
    if (statement.kind == RcKind::File) return fileLine(file, statement);
    if (statement.kind == RcKind::Version && whole) return versionText(file, statement);
    return statement.name + " " + statement.kindWord;
}

ResourceText listStatements(const RcFile& parsed, const std::string& file, const std::string& kind,
                            const std::string& name) {
    if (!parsed.fault.empty()) return {"", faultText(file, parsed.fault)};
    const bool controls = sameText(kind, "CONTROLS");
    if (!controls && name == "*") return listOf(parsed, kind);
    for (const RcStatement& statement : parsed.statements) {
        if (!isListed(statement, true) || !sameText(statement.name, name)) continue;
        if (controls ? statement.kind != RcKind::Window : kind != "*" && !hasKind(statement, kind)) continue;
        if (!statement.fault.empty()) return {"", faultText(file, statement.fault)};
        if (controls) return {controlLines(parsed, statement), ""};
        return {resourceLine(parsed, statement, true) + "\n", ""};
    }
    return {};
}

}  // namespace tarn::platform
