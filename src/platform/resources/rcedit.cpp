// SPDX-License-Identifier: Apache-2.0
//
// Reading and changing one resource in the text of a resource file. A change takes the statement apart, keeps
// the bytes of each block that says what it shall say, and puts the new text into the place of the old; all
// other bytes of the file stay.
#include "platform/resources/rcmatch.h"
#include "platform/resources/rctext.h"
#include "platform/resources/resource.h"

#include "os/files.h"
#include "platform/text.h"

#include <algorithm>
#include <map>
#include <set>

namespace tarn::platform {

namespace {

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

class Writer {
public:
    explicit Writer(const RcFile& file) : file_(file) {}
    std::string statement(const RcStatement* old, const ObjectArray& objects, bool menu);
    [[nodiscard]] const std::string& eol() const { return eol_; }

private:
    std::string newNumber() {
        if (nextNumber_ == 0) nextNumber_ = highestNumber();
        return std::to_string(++nextNumber_);
    }
    [[nodiscard]] int highestNumber() const;
    [[nodiscard]] std::string bytes(Span span) const {
        return file_.text.substr(span.begin, span.end - span.begin);
    }
    [[nodiscard]] std::string indentOf(Span line) const;
    [[nodiscard]] std::string propertyLine(const std::string& indent, Type type, const std::string& name,
                                           std::string_view value) const;
    [[nodiscard]] std::string properties(const RcObject& block, const ParsedList& wanted) const;
    [[nodiscard]] std::string windowHead(const RcObject& block, const ParsedList& wanted) const;
    std::string numberFor(const RcObject* block, const ParsedList& wanted);
    std::string objectHead(const RcObject& block, const ParsedList& wanted);
    std::string fresh(const ParsedList& wanted);
    std::string freshStatement(const ParsedList& self, bool menu);

    const RcFile& file_;
    std::string eol_{file_.lineEnd()};
    std::set<std::string, LessText> names_;  // that the objects shall have
    int nextNumber_ = 0;
};

constexpr int firstNumber = 100;  // the common identifiers stand below it

int Writer::highestNumber() const {
    int highest = firstNumber;
    const auto see = [&](int number) { highest = std::max(highest, std::min(number, INT32_MAX / 2)); };
    for (const auto& [name, number] : file_.symbols) see(number);
    for (const RcStatement& statement : file_.statements)
        for (const RcObject& object : statement.objects) see(file_.numberOf(object));
    return highest;
}

std::string Writer::indentOf(Span line) const {
    const std::size_t end = file_.text.find_first_not_of(" \t", line.begin);
    return file_.text.substr(line.begin, std::min(end, line.end) - line.begin);
}

std::string Writer::propertyLine(const std::string& indent, Type type, const std::string& name,
                                 std::string_view value) const {
    return indent + name + "=" + valueText(type, name, value) + eol_;
}

// Whether a value need not be written, because a property that is not mentioned has it.
bool goesWithoutSaying(Type type, const std::string& name, const std::string& value) {
    const PropertyRow* const row = findProperty(type, name);
    return row != nullptr && value == row->missing;
}

std::string windowKind(Type type) {
    return upper(typeName(type));
}

// ---- heads ----

std::string Writer::windowHead(const RcObject& block, const ParsedList& wanted) const {
    std::string head = bytes({block.span.begin, block.head.end});
    const auto replace = [&](Span span, std::string_view with) {
        head.replace(span.begin - block.span.begin, span.end - span.begin, with);
    };
    // The type stands behind the name: first, so that the place of the name stays right.
    if (wanted.type != block.type) replace(block.typeSpan, windowKind(wanted.type));
    if (wanted.name != block.name) replace(block.nameSpan, wanted.name);
    return head;
}

// The number that the head of an object tells; empty if it needs none. A control that is renamed keeps its
// number, but a name that has one of its own brings that.
std::string Writer::numberFor(const RcObject* block, const ParsedList& wanted) {
    if (wanted.name.empty()) return block != nullptr && wanted.type == Type::Menuitem ? block->number : "";
    if (wholeNumber(wanted.name)) return "";
    if (block != nullptr && sameText(block->name, wanted.name)) return block->number;
    if (file_.symbol(wanted.name) != 0) return "";
    if (block == nullptr) return newNumber();
    if (!block->number.empty() && block->number != "-1") return block->number;
    const auto defined = file_.symbols.find(block->name);
    const bool kept = defined != file_.symbols.end() && !names_.contains(block->name);
    return kept ? std::to_string(defined->second) : newNumber();
}

std::string words(const std::string& name, const std::string& number) {
    return (name.empty() ? "" : " " + name) + (number.empty() ? "" : " " + number);
}

std::string Writer::objectHead(const RcObject& block, const ParsedList& wanted) {
    std::string head = bytes({block.span.begin, block.head.end});
    const auto replace = [&](std::size_t begin, std::size_t end, std::string_view with) {
        head.replace(begin - block.span.begin, end - begin, with);
    };
    if (wanted.name != block.givenName()) {
        const std::string number = numberFor(&block, wanted);
        const std::size_t end = std::max({block.typeSpan.end, block.nameSpan.end, block.numberSpan.end});
        if (number == block.number && !block.name.empty() && !wanted.name.empty())
            replace(block.nameSpan.begin, block.nameSpan.end, wanted.name);
        else
            replace(block.typeSpan.end, end, words(wanted.name, number));
    }
    if (wanted.type != block.type) replace(block.typeSpan.begin, block.typeSpan.end, typeName(wanted.type));
    return head;
}

// ---- properties ----

// Whether the line of a block says the value that is wanted, also under the type that is wanted.
bool says(const RcObject& block, const RcProperty& property, Type type, const std::string& value) {
    const auto isPath = [&](Type one) { return kindOf(one, property.name) == ValueKind::File; };
    return isPath(block.type) == isPath(type) && value == normalValue(type, property.name, property.value);
}

// The property lines of the block with the values that are wanted; its own bytes where they say the same.
std::string Writer::properties(const RcObject& block, const ParsedList& wanted) const {
    const std::map<std::string_view, std::string_view> values(wanted.properties.begin(),
                                                              wanted.properties.end());
    std::string result, indent = indentOf(block.head) + "  ";
    std::size_t at = block.head.end;
    std::set<std::string_view> seen;
    for (const RcProperty& property : block.properties) {
        result += bytes({at, property.line.begin});
        at = property.line.end;
        indent = indentOf(property.line);
        const auto value = values.find(property.name);
        if (!seen.insert(property.name).second ||
            (value != values.end() && says(block, property, wanted.type, std::string(value->second)))) {
            result += bytes(property.line);
        } else if (value != values.end()) {
            result += bytes({property.line.begin, property.valueSpan.begin});
            result += valueText(wanted.type, property.name, value->second);
            result += bytes({property.valueSpan.end, property.line.end});
        }
    }
    result += bytes({at, block.span.end});
    for (const auto& [name, value] : wanted.properties)
        if (!seen.contains(name) && !goesWithoutSaying(wanted.type, name, value))
            result += propertyLine(indent, wanted.type, name, value);
    return result;
}

std::string Writer::fresh(const ParsedList& wanted) {
    std::string result =
        "  " + std::string(typeName(wanted.type)) + words(wanted.name, numberFor(nullptr, wanted)) + eol_;
    for (const auto& [name, value] : wanted.properties)
        if (name == "POSITION" || !goesWithoutSaying(wanted.type, name, value))
            result += propertyLine("    ", wanted.type, name, value);
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

std::string Writer::freshStatement(const ParsedList& self, bool menu) {
    std::string result = self.name + " " + (menu ? "MENU" : windowKind(self.type)) + eol_;
    for (const auto& [name, value] : self.properties)
        if (!goesWithoutSaying(self.type, name, value)) result += propertyLine("  ", self.type, name, value);
    return result;
}

std::string Writer::statement(const RcStatement* old, const ObjectArray& objects, bool menu) {
    std::vector<ParsedList> wanted = parseAll(objects, menu ? Type::Menuitem : Type::None);
    const ParsedList self = std::move(wanted.front());
    wanted.erase(wanted.begin());
    for (const ParsedList& one : wanted) names_.insert(one.name);
    std::string result;
    if (old == nullptr) {
        result = freshStatement(self, menu);
        for (const ParsedList& one : wanted) result += fresh(one);
        return result + "END" + eol_;
    }
    result = windowHead(old->self, self) + properties(old->self, self);
    const std::vector<const RcObject*> blocks = matchObjects(old->objects, wanted);
    for (std::size_t i = 0; i < wanted.size(); ++i)
        result += blocks[i] != nullptr ? objectHead(*blocks[i], wanted[i]) + properties(*blocks[i], wanted[i])
                                       : fresh(wanted[i]);
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
        const bool number = !menu && wholeNumber(one.name);
        if (!one.name.empty() && !number && !isIdentifier(one.name))
            return "The name of an object is not valid: '" + one.name + "'.";
        const bool fits = !propertiesOf(one.type).empty() && !isWindowType(one.type) &&
                          (one.type == Type::Menuitem) == menu;
        if (!fits) return "An object of the type of '" + one.name + "' cannot stand in a " + what + ".";
        for (const auto& [name, value] : one.properties)
            if (!isIdentifier(name)) return "'" + name + "' is no name of a property.";
    }
    return "";
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

// Parses `text`, in which the statement shall be found, and puts it into the place of `parsed`. The result is
// an error text: a block without its END may have swallowed what stands behind it.
std::string change(const std::string& file, RcFile& parsed, std::string text, RcKind kind,
                   const std::string& name) {
    RcFile changed = parseResourceText(std::move(text));
    const RcStatement* const now = changed.find(kind, name);
    RcFault fault = changed.fault;
    if (fault.empty() && now != nullptr) fault = now->fault;
    if (fault.empty() && now == nullptr)
        for (const RcStatement& statement : parsed.statements)
            if (!statement.fault.empty()) fault = statement.fault;
    if (!fault.empty()) return faultText(file, fault);
    if (now == nullptr) return notThere(file, name);
    parsed = std::move(changed);
    return "";
}

std::string writeOne(const std::string& file, RcFile& parsed, const ObjectArray& objects, bool menu) {
    const std::string name = parsePropertyList(objects[0]).name;
    const RcKind kind = menu ? RcKind::Menu : RcKind::Window;
    const RcStatement* const old = parsed.find(kind, name);
    if (old == nullptr && parsed.find(name) != nullptr)
        return "'" + name + "' is the name of another resource.";
    if (old != nullptr && !old->fault.empty()) return faultText(file, old->fault);
    Writer writer{parsed};
    const std::string statement = writer.statement(old, objects, menu);
    std::string text = parsed.text;
    if (old == nullptr)
        append(text, statement, writer.eol());
    else
        text.replace(old->span.begin, old->span.end - old->span.begin, statement);
    return change(file, parsed, std::move(text), kind, name);
}

}  // namespace

std::string ResourceRead(const std::string& file, const std::string& name, ObjectArray& objects) {
    for (std::string& object : objects) object.clear();
    RcFile parsed;
    if (std::string error = open(file, parsed); !error.empty()) return error;
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

std::string ResourceWrite(const ObjectArray& dialog, const ObjectArray& menu, const std::string& file) {
    if (dialog[0].empty()) return "There is no dialog to write.";
    if (std::string error = refusal(dialog, false); !error.empty()) return error;
    if (std::string error = menu[0].empty() ? "" : refusal(menu, true); !error.empty()) return error;
    RcFile parsed;
    if (std::string error = open(file, parsed); !error.empty()) return error;
    const std::string before = parsed.text;
    if (std::string error = writeOne(file, parsed, dialog, false); !error.empty()) return error;
    if (!menu[0].empty())
        if (std::string error = writeOne(file, parsed, menu, true); !error.empty()) return error;
    return parsed.text == before ? "" : save(file, parsed.text);
}

namespace {

// Reads `file`, where the resource `name` shall be and be well. The result is an error text.
std::string openFor(const std::string& file, const std::string& name, RcFile& parsed) {
    if (std::string error = open(file, parsed); !error.empty()) return error;
    const RcStatement* const statement = parsed.find(name);
    if (statement == nullptr) return notThere(file, name);
    return statement->fault.empty() ? "" : faultText(file, statement->fault);
}

}  // namespace

std::string ResourceDelete(const std::string& file, const std::string& name) {
    RcFile parsed;
    if (std::string error = openFor(file, name, parsed); !error.empty()) return error;
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
              (sameText(oldName, newName) || !file.symbols.contains(newName))) {}

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

std::string ResourceRename(const std::string& file, const std::string& oldName, const std::string& newName) {
    RcFile parsed;
    if (std::string error = openFor(file, oldName, parsed); !error.empty()) return error;
    if (!isIdentifier(newName)) return "'" + newName + "' is not a valid name.";
    if (!sameText(oldName, newName) && parsed.find(newName) != nullptr)
        return "'" + newName + "' is already a name in '" + file + "'.";
    std::vector<Change> changes = Renamer(parsed, oldName, newName).changes();
    std::sort(changes.begin(), changes.end(),
              [](const Change& a, const Change& b) { return a.span.begin > b.span.begin; });
    std::string text = parsed.text;
    for (const Change& change : changes)
        text.replace(change.span.begin, change.span.end - change.span.begin, change.text);
    return save(file, text);
}

std::string ResourceWriteText(const std::string& file, const std::string& line) {
    const RcFile added = parseResourceText(line);
    RcFault fault = added.fault;
    for (const RcStatement& statement : added.statements)
        if (fault.empty()) fault = statement.fault;
    if (!fault.empty()) return "line " + std::to_string(fault.line) + ": " + fault.text;
    if (added.statements.size() != 1 || added.statements[0].kind == RcKind::Unknown)
        return "This is not one resource statement.";
    RcFile parsed;
    if (std::string error = open(file, parsed); !error.empty()) return error;
    const RcStatement& statement = added.statements[0];
    const RcStatement* const old = parsed.find(statement.kind, statement.name);
    if (old != nullptr && !old->fault.empty()) return faultText(file, old->fault);
    if (old == nullptr && statement.kind != RcKind::Define && parsed.find(statement.name) != nullptr)
        return "'" + statement.name + "' is already a name in '" + file + "'.";
    std::string addition(withoutMark(line));
    if (!addition.ends_with('\n')) addition += parsed.lineEnd();
    std::string text = parsed.text;
    if (old != nullptr) {
        text.replace(old->span.begin, old->span.end - old->span.begin, addition);
    } else {
        endLastLine(text, parsed.lineEnd());
        text += addition;
    }
    std::string error = change(file, parsed, std::move(text), statement.kind, statement.name);
    return error.empty() ? save(file, parsed.text) : error;
}

}  // namespace tarn::platform
