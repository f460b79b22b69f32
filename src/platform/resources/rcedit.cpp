// SPDX-License-Identifier: Apache-2.0
//
// Reading and changing one resource in the text of a resource file. A change puts the new text of a statement
// into the place of the old; all other bytes of the file stay.
#include "platform/resources/rcedit.h"

#include "platform/resources/rcwriter.h"
#include "platform/text.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

namespace tarn::platform {

namespace {

std::string notThere(const std::string& file, const std::string& name) {
    return "'" + name + "' was not found in '" + file + "'.";
}

// Why an object cannot be written; empty if it can.
std::string refusal(const ParsedList& one, bool menu, bool first) {
    const std::string what = menu ? "menu" : "dialog";
    const bool number = !menu && !first && wholeNumber(one.name);
    if (first && !isIdentifier(one.name))
        return "The name of the " + what + " is not valid: '" + one.name + "'.";
    if (first && !menu && !isWindowType(one.type))
        return "The type of '" + one.name + "' is no type of a window.";
    if (!one.name.empty() && !number && !isIdentifier(one.name))
        return "The name of an object is not valid: '" + one.name + "'.";
    const bool fits = !propertiesOf(one.type).empty() && isWindowType(one.type) == (first && !menu) &&
                      (one.type == Type::Menuitem) == menu;
    if (!fits) return "An object of the type of '" + one.name + "' cannot stand in a " + what + ".";
    for (const auto& [name, value] : one.properties)
        if (!isIdentifier(name)) return "'" + name + "' is no name of a property.";
    return "";
}

std::string refusal(const ObjectArray& objects, bool menu) {
    std::string reason;
    bool first = true;
    for (const ParsedList& one : parseAll(objects, menu ? Type::Menuitem : Type::None)) {
        if (reason.empty()) reason = refusal(one, menu, first);
        first = false;
    }
    return reason;
}

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

std::string_view withoutMark(std::string_view text) {
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    return text;
}

// Ends the last line of a text that has one.
void endLastLine(std::string& text, std::string_view eol) {
    if (!withoutMark(text).empty() && !text.ends_with('\n')) text += eol;
}

// Appends a statement behind a blank line.
void append(std::string& text, const std::string& statement, const std::string& eol) {
    endLastLine(text, eol);
    if (!withoutMark(text).empty() && !text.ends_with("\n\n") && !text.ends_with("\n\r\n")) text += eol;
    text += statement;
}

RcFault lastFault(const RcFile& parsed) {
    RcFault fault;
    for (const RcStatement& statement : parsed.statements)
        if (!statement.fault.empty()) fault = statement.fault;
    return fault;
}

// Parses `text`, in which the statement shall be found now, into `changed`. The result is an error text: a block
// without its END may have swallowed what stands behind it.
std::string change(const std::string& file, const RcFile& parsed, std::string text, RcKind kind,
                   const std::string& name, RcFile& changed) {
    changed = parseResourceText(std::move(text));
    const RcStatement* const now = changed.find(kind, name);
    RcFault fault = changed.fault;
    if (fault.empty()) fault = now != nullptr ? now->fault : lastFault(parsed);
    if (!fault.empty()) return faultText(file, fault);
    return now == nullptr ? notThere(file, name) : "";
}

// What a statement loses is added to `lost`.
std::string writeOne(const std::string& file, const RcFile& parsed, const ObjectArray& objects, bool menu,
                     RcFile& changed, const ResourcePast& past, ResourcePast& lost) {
    const std::string name = parsePropertyList(objects[0]).name;
    const RcKind kind = menu ? RcKind::Menu : RcKind::Window;
    const RcStatement* const old = parsed.find(kind, name);
    if (old == nullptr && parsed.find(name) != nullptr)
        return "'" + name + "' is the name of another resource.";
    if (old != nullptr && !old->fault.empty()) return faultText(file, old->fault);
    const StatementText statement = statementText(parsed, old, objects, menu, past);
    std::string text = parsed.text;
    if (old == nullptr)
        append(text, statement.text, std::string(parsed.lineEnd()));
    else
        text.replace(old->span.begin, old->span.end - old->span.begin, statement.text);
    if (statement.loses) lost.push_back(parsed.text.substr(old->span.begin, old->span.end - old->span.begin));
    return change(file, parsed, std::move(text), kind, name, changed);
}

}  // namespace

std::string readObjects(const RcFile& parsed, const std::string& file, const std::string& name,
                        ObjectArray& objects) {
    for (std::string& object : objects) object.clear();
    const RcStatement* statement = parsed.find(RcKind::Window, name);
    if (statement == nullptr) statement = parsed.find(RcKind::Menu, name);
    if (statement == nullptr) return notThere(file, name);
    if (!statement->fault.empty()) return faultText(file, statement->fault);
    if (statement->objects.size() > MAX_CONTROLS)
        return "'" + name + "' has more than " + std::to_string(MAX_CONTROLS) + " objects.";
    objects[0] = makePropertyList(statement->name, statement->self.type, statement->self.values());
    for (std::size_t i = 0; i < statement->objects.size(); ++i) {
        const RcObject& object = statement->objects[i];
        objects[i + 1] = makePropertyList(object.givenName(), object.type, object.values());
    }
    return "";
}

namespace {

// The oldest texts go.
void keepPast(ResourcePast& past, ResourcePast lost) {
    constexpr std::size_t most = std::size_t{8} << 20U;  // bytes
    std::size_t size = 0;
    for (std::string& text : lost) past.push_back(std::move(text));
    auto first = past.end();
    while (first != past.begin() && (size += std::prev(first)->size()) <= most) --first;
    past.erase(past.begin(), first);
}

}  // namespace

std::string writeObjects(RcFile& parsed, const std::string& file, const ObjectArray& dialog,
                         const ObjectArray& menu, ResourcePast& past) {
    if (dialog[0].empty()) return "There is no dialog to write.";
    if (std::string error = refusal(dialog, false); !error.empty()) return error;
    if (std::string error = menu[0].empty() ? "" : refusal(menu, true); !error.empty()) return error;
    RcFile changed, both;
    ResourcePast lost;
    std::string error = writeOne(file, parsed, dialog, false, changed, past, lost);
    if (!error.empty()) return error;
    if (!menu[0].empty()) {
        error = writeOne(file, changed, menu, true, both, past, lost);
        if (!error.empty()) return error;
        changed = std::move(both);
    }
    parsed = std::move(changed);
    keepPast(past, std::move(lost));
    return "";
}

namespace {

// Why the resource `name` cannot be changed: it is not there, or not well. Empty if it can.
std::string obstacle(const RcFile& parsed, const std::string& file, const std::string& name) {
    if (parsed.find(name) == nullptr) return notThere(file, name);
    for (const RcStatement& statement : parsed.statements)
        if (!statement.fault.empty() && sameText(statement.name, name))
            return faultText(file, statement.fault);
    return "";
}

}  // namespace

namespace {

bool hasName(const RcStatement& statement) {
    return statement.kind != RcKind::Unknown && statement.kind != RcKind::Define;
}

// Which statements an operation means.
using Meant = std::function<bool(const RcStatement& statement)>;

// Whether the statements of `after` are those of `before` but for the ones that were taken out: without them, a
// block that has no END could reach further.
bool othersStay(const RcFile& before, const RcFile& after, const Meant& isMeant) {
    std::size_t i = 0;
    for (const RcStatement& statement : before.statements) {
        if (!hasName(statement) || isMeant(statement)) continue;
        while (i < after.statements.size() && !hasName(after.statements[i])) ++i;
        if (i == after.statements.size() || after.statements[i++].name != statement.name) return false;
    }
    return true;
}

std::string deleteMeant(RcFile& parsed, const std::string& file, const Meant& isMeant) {
    std::string text = parsed.text;
    for (auto statement = parsed.statements.rbegin(); statement != parsed.statements.rend(); ++statement)
        if (hasName(*statement) && isMeant(*statement))
            text.erase(statement->span.begin, statement->span.end - statement->span.begin);
    RcFile changed = parseResourceText(std::move(text));
    if (!othersStay(parsed, changed, isMeant)) return faultText(file, lastFault(parsed));
    parsed = std::move(changed);
    return "";
}

}  // namespace

std::string deleteStatement(RcFile& parsed, const std::string& file, const std::string& name) {
    if (std::string error = obstacle(parsed, file, name); !error.empty()) return error;
    return deleteMeant(parsed, file,
                       [&](const RcStatement& statement) { return sameText(statement.name, name); });
}

std::string deleteStatement(RcFile& parsed, const std::string& file, const std::string& kind,
                            const std::string& name) {
    const ResourceText found = listStatements(parsed, file, kind, name);
    if (!found.error.empty()) return found.error;
    if (found.text.empty()) return notThere(file, name);
    return deleteMeant(parsed, file, [&](const RcStatement& statement) {
        const bool window = sameText(kind, "DIALOG") && statement.kind == RcKind::Window;
        return sameText(statement.name, name) && (window || sameText(statement.kindWord, kind));
    });
}

namespace {

struct Change {
    Span span;
    std::string text;
};

// Whether a control has its number from the symbol because it has the same name.
bool numbersAControl(const RcFile& file, const std::string& symbol) {
    for (const RcStatement& statement : file.statements)
        for (const RcObject& object : statement.objects)
            if (object.number.empty() && sameText(object.name, symbol)) return true;
    return false;
}

// The places that name the resource: its head, the menu of a dialog, the picture of a control; and its
// symbol, where the new name is no symbol yet.
class Renamer {
public:
    Renamer(const RcFile& file, const std::string& oldName, const std::string& newName);
    [[nodiscard]] std::vector<Change> changes();

private:
    void see(const RcObject& object);
    void seeWord(std::string_view word, Span span) {
        if (symbol_ && sameText(word, old_)) changes_.push_back({span, new_});
    }
    const RcFile& file_;
    const std::string &old_, &new_;
    bool menu_, picture_, symbol_;
    std::vector<Change> changes_;
};

Renamer::Renamer(const RcFile& file, const std::string& oldName, const std::string& newName)
    : file_(file), old_(oldName), new_(newName), menu_(file.find(RcKind::Menu, oldName) != nullptr),
      picture_(file.find(RcKind::File, oldName) != nullptr),
      symbol_(file.symbols.contains(oldName) &&
              (sameText(oldName, newName) || !file.symbols.contains(newName)) &&
              !numbersAControl(file, oldName)) {}

void Renamer::see(const RcObject& object) {
    seeWord(object.number, object.numberSpan);
    for (const RcProperty& property : object.properties)
        if (((menu_ && property.name == "MENU") || (picture_ && property.name == "PICTURE")) &&
            sameText(property.value, old_))
            changes_.push_back({property.valueSpan, valueText(object.type, property.name, new_)});
}

std::vector<Change> Renamer::changes() {
    for (const RcStatement& statement : file_.statements) {
        if (statement.kind == RcKind::Unknown || !statement.fault.empty()) continue;
        const bool named = sameText(statement.name, old_) && (statement.kind != RcKind::Define || symbol_);
        if (named) changes_.push_back({statement.nameSpan, new_});
        seeWord(statement.kind == RcKind::File ? statement.id : "", statement.idSpan);
        see(statement.self);
        for (const RcObject& object : statement.objects) see(object);
    }
    return std::move(changes_);
}

}  // namespace

std::string renameStatement(RcFile& parsed, const std::string& file, const std::string& oldName,
                            const std::string& newName) {
    if (std::string error = obstacle(parsed, file, oldName); !error.empty()) return error;
    if (!isIdentifier(newName)) return "'" + newName + "' is not a valid name.";
    if (!sameText(oldName, newName) && parsed.find(newName) != nullptr)
        return "'" + newName + "' is already a name in '" + file + "'.";
    std::vector<Change> changes = Renamer(parsed, oldName, newName).changes();
    std::sort(changes.begin(), changes.end(),
              [](const Change& a, const Change& b) { return a.span.begin > b.span.begin; });
    std::string text = parsed.text;
    for (const Change& change : changes)
        text.replace(change.span.begin, change.span.end - change.span.begin, change.text);
    parsed = parseResourceText(std::move(text));
    return "";
}

namespace {

// Files of two kinds may have one name where people write them; each keeps its own.
const RcStatement* replacedBy(const RcStatement& added, const RcFile& parsed) {
    if (added.kind != RcKind::File) return parsed.find(added.kind, added.name);
    const auto same = [&](const RcStatement& statement) {
        return statement.kind == RcKind::File && statement.kindWord == added.kindWord &&
               sameText(statement.name, added.name);
    };
    const auto found = std::find_if(parsed.statements.begin(), parsed.statements.end(), same);
    return found == parsed.statements.end() ? nullptr : &*found;
}

}  // namespace

namespace {

// A file that has no line end yet takes those that come.
std::string withLineEndsOf(const RcFile& file, std::string_view lines) {
    if (file.text.find('\n') == std::string::npos) return std::string(lines);
    std::string text;
    for (std::size_t at = 0; at < lines.size();) {
        const std::size_t end = std::min(lines.find('\n', at), lines.size());
        std::string_view line = lines.substr(at, end - at);
        if (end < lines.size() && line.ends_with('\r')) line.remove_suffix(1);
        text += line;
        if (end < lines.size()) text += file.lineEnd();
        at = end + 1;
    }
    return text;
}

}  // namespace

std::string addStatement(RcFile& parsed, const std::string& file, const std::string& line) {
    const RcFile added = parseResourceText(line);
    RcFault fault = added.fault;
    for (const RcStatement& statement : added.statements)
        if (fault.empty()) fault = statement.fault;
    if (!fault.empty()) return "line " + std::to_string(fault.line) + ": " + fault.text;
    if (added.statements.size() != 1 || added.statements[0].kind == RcKind::Unknown)
        return "This is not one resource statement.";
    const RcStatement& statement = added.statements[0];
    const RcStatement* const old = replacedBy(statement, parsed);
    if (old != nullptr && !old->fault.empty()) return faultText(file, old->fault);
    if (old == nullptr && statement.kind != RcKind::Define && parsed.find(statement.name) != nullptr)
        return "'" + statement.name + "' is already a name in '" + file + "'.";
    std::string addition = withLineEndsOf(parsed, withoutMark(line));
    if (!addition.ends_with('\n')) addition += parsed.lineEnd();
    std::string text = parsed.text;
    if (old != nullptr) {
        text.replace(old->span.begin, old->span.end - old->span.begin, addition);
    } else {
        endLastLine(text, parsed.lineEnd());
        text += addition;
    }
    RcFile changed;
    std::string error = change(file, parsed, std::move(text), statement.kind, statement.name, changed);
    if (error.empty()) parsed = std::move(changed);
    return error;
}

}  // namespace tarn::platform
