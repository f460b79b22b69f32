// SPDX-License-Identifier: Apache-2.0
//
// Reading and changing one resource in the text of a resource file. A change takes the statement apart, keeps
// the bytes of each block that says what it shall say, and puts the new text into the place of the old; all
// other bytes of the file stay.
#include "platform/resources/rctext.h"
#include "platform/resources/resource.h"

#include "os/files.h"
#include "platform/text.h"

#include <algorithm>

namespace tarn::platform {

namespace {

std::string faultText(const std::string& file, const RcFault& fault) {
    return "'" + file + "', line " + std::to_string(fault.line) + ": " + fault.text;
}

// Reads and parses `file`; a file that does not exist is empty. The result is an error text.
std::string open(const std::string& file, RcFile& parsed) {
    std::string bytes;
    const os::FileError error = os::readFile(file, bytes);
    if (error != os::FileError::None && error != os::FileError::NotFound)
        return "'" + file + "' cannot be read. " + std::string(os::describe(error));
    parsed = parseResourceText(std::move(bytes));
    return parsed.fault.empty() ? "" : faultText(file, parsed.fault);
}

std::string save(const std::string& file, const std::string& text) {
    const os::SaveResult result = os::saveFile(file, text);
    return result.ok() ? "" : "'" + file + "' cannot be saved. " + std::string(os::describe(result.error));
}

std::string notThere(const std::string& file, const std::string& name) {
    return "'" + name + "' was not found in '" + file + "'.";
}

// ---- writing ----

struct Writer {
    const RcFile& file;
    std::string eol = std::string(file.lineEnd());
    int nextNumber = 0;

    std::string newNumber() {
        if (nextNumber == 0) nextNumber = highestNumber();
        return std::to_string(++nextNumber);
    }
    [[nodiscard]] int highestNumber() const;
    [[nodiscard]] std::string bytes(Span span) const {
        return file.text.substr(span.begin, span.end - span.begin);
    }
    [[nodiscard]] std::string indentOf(Span line) const;
    [[nodiscard]] std::string propertyLine(const std::string& indent, Type type, const std::string& name,
                                           std::string_view value) const;
    [[nodiscard]] std::string patched(const RcObject& block, const ParsedList& wanted) const;
    [[nodiscard]] std::string patchedHead(const RcObject& block, const ParsedList& wanted) const;
    std::string fresh(const ParsedList& wanted, bool menu);
    std::string statement(const RcStatement* old, const ObjectArray& objects, bool menu);
};

constexpr int firstNumber = 100;  // the common identifiers stand below it

int Writer::highestNumber() const {
    int highest = firstNumber;
    const auto see = [&](int number) { highest = std::max(highest, std::min(number, INT32_MAX / 2)); };
    for (const auto& [name, number] : file.symbols) see(number);
    for (const RcStatement& statement : file.statements)
        for (const RcObject& object : statement.objects) see(file.numberOf(object));
    return highest;
}

std::string Writer::indentOf(Span line) const {
    const std::size_t end = file.text.find_first_not_of(" \t", line.begin);
    return file.text.substr(line.begin, std::min(end, line.end) - line.begin);
}

std::string Writer::propertyLine(const std::string& indent, Type type, const std::string& name,
                                 std::string_view value) const {
    return indent + name + "=" + valueText(type, name, value) + eol;
}

const std::string* wantedValue(const ParsedList& wanted, const std::string& name) {
    for (const auto& [key, value] : wanted.properties)
        if (key == name) return &value;
    return nullptr;
}

// Whether a value need not be written, because a property that is not mentioned has it.
bool goesWithoutSaying(Type type, const std::string& name, const std::string& value) {
    const PropertyRow* const row = findProperty(type, name);
    return row != nullptr && value == row->missing;
}

bool mentions(const RcObject& block, const std::string& name) {
    return std::any_of(block.properties.begin(), block.properties.end(),
                       [&](const RcProperty& property) { return property.name == name; });
}

std::string windowKind(Type type) {
    return upper(typeName(type));
}

std::string Writer::patchedHead(const RcObject& block, const ParsedList& wanted) const {
    std::string head = bytes({block.span.begin, block.head.end});
    const auto replace = [&](Span span, std::string_view with) {
        head.replace(span.begin - block.span.begin, span.end - span.begin, with);
    };
    const bool typeFirst = block.typeSpan.begin < block.nameSpan.begin;
    const auto name = [&] {
        if (block.nameSpan.end > 0 && wanted.name != block.name) replace(block.nameSpan, wanted.name);
    };
    const auto type = [&] {
        if (wanted.type == block.type) return;
        replace(block.typeSpan,
                isWindowType(wanted.type) ? windowKind(wanted.type) : std::string(typeName(wanted.type)));
    };
    // The later one first, so that the place of the other stays right.
    if (typeFirst) return name(), type(), head;
    return type(), name(), head;
}

// The block with the values that are wanted; its own bytes where they say the same.
std::string Writer::patched(const RcObject& block, const ParsedList& wanted) const {
    std::string result = patchedHead(block, wanted);
    std::string indent = indentOf(block.head) + "  ";
    std::size_t at = block.head.end;
    std::vector<std::string> seen;
    for (const RcProperty& property : block.properties) {
        result += bytes({at, property.line.begin});
        at = property.line.end;
        indent = indentOf(property.line);
        const std::string* const value = wantedValue(wanted, property.name);
        const bool again = std::find(seen.begin(), seen.end(), property.name) != seen.end();
        seen.push_back(property.name);
        if (again || (value != nullptr && *value == normalValue(block.type, property.name, property.value))) {
            result += bytes(property.line);
        } else if (value != nullptr) {
            result += bytes({property.line.begin, property.valueSpan.begin});
            result += valueText(wanted.type, property.name, *value);
            result += bytes({property.valueSpan.end, property.line.end});
        }
    }
    result += bytes({at, block.span.end});
    for (const auto& [name, value] : wanted.properties)
        if (!mentions(block, name) && !goesWithoutSaying(wanted.type, name, value))
            result += propertyLine(indent, wanted.type, name, value);
    return result;
}

std::string Writer::fresh(const ParsedList& wanted, bool menu) {
    std::string result =
        std::string(menu ? "  Menuitem" : "  ") + (menu ? "" : std::string(typeName(wanted.type)));
    if (!wanted.name.empty()) {
        result += " " + wanted.name;
        if (file.symbol(wanted.name) == 0) result += " " + newNumber();
    }
    result += eol;
    for (const auto& [name, value] : wanted.properties)
        if (name == "POSITION" || !goesWithoutSaying(wanted.type, name, value))
            result += propertyLine("    ", wanted.type, name, value);
    return result;
}

// Which old block each new object continues: the next one of its name, else one that is left over, in order
// and of its type (an object that was renamed).
std::vector<const RcObject*> match(const std::vector<RcObject>& old, const std::vector<ParsedList>& wanted) {
    std::vector<const RcObject*> result(wanted.size());
    std::vector<bool> taken(old.size());
    std::multimap<std::string, std::size_t> byName;
    for (std::size_t i = 0; i < old.size(); ++i) byName.emplace(upper(old[i].name), i);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const auto place = byName.find(upper(wanted[i].name));
        if (place == byName.end() || old[place->second].type != wanted[i].type) continue;
        result[i] = &old[place->second];
        taken[place->second] = true;
        byName.erase(place);
    }
    std::size_t next = 0;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (result[i] != nullptr || wanted[i].name.empty()) continue;
        while (next < old.size() && (taken[next] || old[next].name.empty())) ++next;
        if (next == old.size()) break;
        if (old[next].type == wanted[i].type) result[i] = &old[next++];
    }
    return result;
}

std::vector<ParsedList> parseAll(const ObjectArray& objects, Type usual) {
    std::vector<ParsedList> result;
    for (const std::string& list : objects) {
        if (list.empty()) break;
        result.push_back(parsePropertyList(list));
        if (result.back().type == Type::None) result.back().type = usual;
    }
    return result;
}

std::string Writer::statement(const RcStatement* old, const ObjectArray& objects, bool menu) {
    std::vector<ParsedList> wanted = parseAll(objects, menu ? Type::Menuitem : Type::None);
    const ParsedList self = std::move(wanted.front());
    wanted.erase(wanted.begin());
    if (old == nullptr) {
        std::string result = self.name + " " + (menu ? "MENU" : windowKind(self.type)) + eol;
        for (const auto& [name, value] : self.properties)
            if (!goesWithoutSaying(self.type, name, value))
                result += propertyLine("  ", self.type, name, value);
        for (const ParsedList& one : wanted) result += fresh(one, menu);
        return result + "END" + eol;
    }
    std::string result = patched(old->self, self);
    const std::vector<const RcObject*> blocks = match(old->objects, wanted);
    for (std::size_t i = 0; i < wanted.size(); ++i)
        result += blocks[i] != nullptr ? patched(*blocks[i], wanted[i]) : fresh(wanted[i], menu);
    const std::size_t bodyEnd = old->objects.empty() ? old->self.span.end : old->objects.back().span.end;
    return result + bytes({bodyEnd, old->span.end});
}

// Why the objects cannot be written; empty if they can.
std::string refusal(const ObjectArray& objects, bool menu) {
    const std::vector<ParsedList> wanted = parseAll(objects, menu ? Type::Menuitem : Type::None);
    const std::string what = menu ? "menu" : "dialog";
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const ParsedList& one = wanted[i];
        if (i == 0 && !isIdentifier(one.name))
            return "The name of the " + what + " is not valid: '" + one.name + "'.";
        if (i == 0 && !menu && !isWindowType(one.type))
            return "The type of '" + one.name + "' is no type of a window.";
        if (i == 0) continue;
        if (!one.name.empty() && !isIdentifier(one.name))
            return "The name of an object is not valid: '" + one.name + "'.";
        const bool fits = !propertiesOf(one.type).empty() && !isWindowType(one.type) &&
                          (one.type == Type::Menuitem) == menu;
        if (!fits) return "An object of the type of '" + one.name + "' cannot stand in a " + what + ".";
        for (const auto& [name, value] : one.properties)
            if (!isIdentifier(name)) return "'" + name + "' is no name of a property.";
    }
    return "";
}

// Appends a statement behind a blank line.
void append(std::string& text, const std::string& statement, const std::string& eol) {
    if (!text.empty() && !text.ends_with('\n')) text += eol;
    if (!text.empty() && !text.ends_with("\n\n") && !text.ends_with("\n\r\n")) text += eol;
    text += statement;
}

std::string writeOne(RcFile& parsed, const ObjectArray& objects, bool menu) {
    const std::string name = parsePropertyList(objects[0]).name;
    const RcStatement* const old = parsed.find(menu ? RcKind::Menu : RcKind::Window, name);
    if (old == nullptr && parsed.find(name) != nullptr)
        return "'" + name + "' is the name of another resource.";
    Writer writer{parsed};
    const std::string statement = writer.statement(old, objects, menu);
    std::string text = parsed.text;
    if (old == nullptr)
        append(text, statement, writer.eol);
    else
        text.replace(old->span.begin, old->span.end - old->span.begin, statement);
    parsed = parseResourceText(std::move(text));
    return parsed.fault.empty() ? "" : parsed.fault.text;
}

}  // namespace

std::string ResourceRead(const std::string& file, const std::string& name, ObjectArray& objects) {
    for (std::string& object : objects) object.clear();
    RcFile parsed;
    if (std::string error = open(file, parsed); !error.empty()) return error;
    const RcStatement* statement = parsed.find(RcKind::Window, name);
    if (statement == nullptr) statement = parsed.find(RcKind::Menu, name);
    if (statement == nullptr) return notThere(file, name);
    if (statement->objects.size() > MAX_CONTROLS)
        return "'" + name + "' has more than " + std::to_string(MAX_CONTROLS) + " objects.";
    objects[0] = makePropertyList(statement->name, statement->self.type, statement->self.values());
    for (std::size_t i = 0; i < statement->objects.size(); ++i) {
        const RcObject& object = statement->objects[i];
        objects[i + 1] = makePropertyList(object.name, object.type, object.values());
    }
    return "";
}

std::string ResourceWrite(const ObjectArray& dialog, const ObjectArray& menu, const std::string& file) {
    if (dialog[0].empty()) return "There is no dialog to write.";
    if (std::string error = refusal(dialog, false); !error.empty()) return error;
    if (std::string error = menu[0].empty() ? "" : refusal(menu, true); !error.empty()) return error;
    RcFile parsed;
    if (std::string error = open(file, parsed); !error.empty()) return error;
    const std::string before = parsed.text;
    if (std::string error = writeOne(parsed, dialog, false); !error.empty()) return error;
    if (!menu[0].empty())
        if (std::string error = writeOne(parsed, menu, true); !error.empty()) return error;
    return parsed.text == before ? "" : save(file, parsed.text);
}

std::string ResourceDelete(const std::string& file, const std::string& name) {
    RcFile parsed;
    if (std::string error = open(file, parsed); !error.empty()) return error;
    if (parsed.find(name) == nullptr) return notThere(file, name);
    std::string text = parsed.text;
    for (auto statement = parsed.statements.rbegin(); statement != parsed.statements.rend(); ++statement)
        if (statement->kind != RcKind::Define && statement->kind != RcKind::Unknown &&
            sameText(statement->name, name))
            text.erase(statement->span.begin, statement->span.end - statement->span.begin);
    return save(file, text);
}

namespace {

struct Change {
    Span span;
    std::string text;
};

// The places that name the resource: its head, the menu of a dialog, the picture of a control, its symbol.
std::vector<Change> renameChanges(const RcFile& parsed, const std::string& oldName,
                                  const std::string& newName) {
    std::vector<Change> changes;
    const auto see = [&](const RcObject& object, bool menu, bool picture) {
        for (const RcProperty& property : object.properties)
            if (((menu && property.name == "MENU") || (picture && property.name == "PICTURE")) &&
                sameText(property.value, oldName))
                changes.push_back({property.valueSpan, valueText(object.type, property.name, newName)});
    };
    const bool menu = parsed.find(RcKind::Menu, oldName) != nullptr;
    const bool picture = parsed.find(RcKind::File, oldName) != nullptr;
    for (const RcStatement& statement : parsed.statements) {
        if (statement.kind == RcKind::Unknown) continue;
        if (sameText(statement.name, oldName)) changes.push_back({statement.nameSpan, newName});
        see(statement.self, menu, picture);
        for (const RcObject& object : statement.objects) see(object, menu, picture);
    }
    return changes;
}

}  // namespace

std::string ResourceRename(const std::string& file, const std::string& oldName, const std::string& newName) {
    RcFile parsed;
    if (std::string error = open(file, parsed); !error.empty()) return error;
    if (parsed.find(oldName) == nullptr) return notThere(file, oldName);
    if (!isIdentifier(newName)) return "'" + newName + "' is not a valid name.";
    if (!sameText(oldName, newName) && parsed.find(newName) != nullptr)
        return "'" + newName + "' is already a name in '" + file + "'.";
    std::vector<Change> changes = renameChanges(parsed, oldName, newName);
    std::sort(changes.begin(), changes.end(),
              [](const Change& a, const Change& b) { return a.span.begin > b.span.begin; });
    std::string text = parsed.text;
    for (const Change& change : changes)
        text.replace(change.span.begin, change.span.end - change.span.begin, change.text);
    return save(file, text);
}

std::string ResourceWriteText(const std::string& file, const std::string& line) {
    const RcFile added = parseResourceText(line);
    if (!added.fault.empty()) return "line " + std::to_string(added.fault.line) + ": " + added.fault.text;
    if (added.statements.size() != 1 || added.statements[0].kind == RcKind::Unknown)
        return "This is not one resource statement.";
    RcFile parsed;
    if (std::string error = open(file, parsed); !error.empty()) return error;
    const RcStatement& statement = added.statements[0];
    const RcStatement* const old = parsed.find(statement.kind, statement.name);
    if (old == nullptr && statement.kind != RcKind::Define && parsed.find(statement.name) != nullptr)
        return "'" + statement.name + "' is already a name in '" + file + "'.";
    std::string addition = line;
    if (!addition.ends_with('\n')) addition += parsed.lineEnd();
    std::string text = parsed.text;
    if (old != nullptr) {
        text.replace(old->span.begin, old->span.end - old->span.begin, addition);
    } else {
        if (!text.empty() && !text.ends_with('\n')) text += parsed.lineEnd();
        text += addition;
    }
    return save(file, text);
}

}  // namespace tarn::platform
