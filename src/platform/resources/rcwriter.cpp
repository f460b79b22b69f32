// SPDX-License-Identifier: Apache-2.0
#include "platform/resources/rcwriter.h"

#include "platform/resources/rcmatch.h"
#include "platform/text.h"

#include <algorithm>
#include <map>
#include <set>

namespace tarn::platform {

namespace {

class Writer {
public:
    explicit Writer(const RcFile& file) : file_(file) {}
    StatementText statement(const RcStatement* old, const ObjectArray& objects, bool menu,
                            const std::vector<std::string>& past);
    std::string continued(const RcObject& block, const ParsedList& wanted) {
        return objectHead(block, wanted) + properties(block, wanted);
    }

private:
    std::string newNumber() {
        if (nextNumber_ == 0) nextNumber_ = highestNumber();
        while (isNamed(++nextNumber_)) {}
        return std::to_string(nextNumber_);
    }
    // Whether an object shall have the number for its name.
    [[nodiscard]] bool isNamed(int number) const { return numbers_.contains(number); }
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
    [[nodiscard]] std::vector<std::string> returned(const std::vector<const RcObject*>& blocks,
                                                    const std::vector<ParsedList>& wanted,
                                                    const std::vector<std::string>& past) const;

    const RcFile& file_;
    std::string eol_{file_.lineEnd()};
    std::set<std::string, LessText> names_;  // that the objects shall have
    std::set<int> numbers_;                  // and those among them that are numbers
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

// Whether a line would end behind its "=", and say what goes without saying.
bool isLeftOut(Type type, const std::string& name, const std::string& value) {
    return goesWithoutSaying(type, name, value) && valueText(type, name, value).empty();
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
    const bool free = !block->name.empty() || !isNamed(wholeNumber(block->number).value_or(0));
    if (!block->number.empty() && block->number != "-1" && free) return block->number;
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

// Whether the properties that the type does not know come in the order that is wanted, those that the block does
// not mention yet behind the others. All others are read in the order of the type.
bool inOrder(const RcObject& block, const ParsedList& wanted) {
    std::vector<std::string_view> order;
    for (const auto& [name, value] : wanted.properties)
        if (findProperty(wanted.type, name) == nullptr) order.push_back(name);
    std::size_t next = 0;
    std::set<std::string_view> seen;
    const std::set<std::string_view> all(order.begin(), order.end());
    for (const RcProperty& property : block.properties)
        if (all.contains(property.name) && seen.insert(property.name).second &&
            order[next++] != property.name)
            return false;
    return true;
}

// The property lines of the block with the values that are wanted; its own bytes where they say the same.
std::string Writer::properties(const RcObject& block, const ParsedList& wanted) const {
    const std::map<std::string_view, std::string_view> values(wanted.properties.begin(),
                                                              wanted.properties.end());
    std::string result, indent = indentOf(block.head) + "  ";
    std::size_t at = block.head.end;
    std::set<std::string_view> seen;
    const bool ordered = inOrder(block, wanted);
    for (const RcProperty& property : block.properties) {
        result += bytes({at, property.line.begin});
        at = property.line.end;
        if (!ordered && findProperty(wanted.type, property.name) == nullptr)
            continue;  // it comes again below
        indent = indentOf(property.line);
        const auto value = values.find(property.name);
        if (value == values.end()) continue;
        const bool again = !seen.insert(property.name).second;
        if (again || says(block, property, wanted.type, std::string(value->second))) {
            result += bytes(property.line);
        } else if (!isLeftOut(wanted.type, property.name, std::string(value->second))) {
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

std::string Writer::freshStatement(const ParsedList& self, bool menu) {
    std::string result = self.name + " " + (menu ? "MENU" : windowKind(self.type)) + eol_;
    for (const auto& [name, value] : self.properties)
        if (!goesWithoutSaying(self.type, name, value)) result += propertyLine("  ", self.type, name, value);
    return result;
}

// The blocks of objects that have been in the file and are not any more.
class Past {
public:
    explicit Past(const std::vector<std::string>& texts) {
        for (auto text = texts.rbegin(); text != texts.rend(); ++text)
            files_.push_back(parseResourceText(*text));
    }
    // The text of the newest block for the object, which no other one gets; empty if there is none, or if it would not say
    // the number that it said then.
    std::string textFor(const ParsedList& wanted, const RcFile& now, std::set<int>& numbers) {
        for (const RcFile& file : files_)
            for (const RcStatement& statement : file.statements)
                for (const RcObject& block : statement.objects) {
                    if (!isOf(block, wanted) || used_.contains(&block)) continue;
                    const int number = block.number.empty() ? now.symbol(block.name) : file.numberOf(block);
                    if (number == 0 && !wanted.name.empty()) return {};
                    if (number > 0 && !numbers.insert(number).second) return {};
                    used_.insert(&block);
                    return Writer(file).continued(block, wanted);
                }
        return {};
    }

private:
    static bool isOf(const RcObject& block, const ParsedList& wanted) {
        if (block.type != wanted.type || !sameText(block.givenName(), wanted.name)) return false;
        return !wanted.name.empty() || makePropertyList("", block.type, block.values()) ==
                                           makePropertyList("", wanted.type, wanted.properties);
    }
    std::vector<RcFile> files_;
    std::set<const RcObject*> used_;
};

StatementText Writer::statement(const RcStatement* old, const ObjectArray& objects, bool menu,
                                const std::vector<std::string>& past) {
    std::vector<ParsedList> wanted = parseAll(objects, menu ? Type::Menuitem : Type::None);
    const ParsedList self = std::move(wanted.front());
    wanted.erase(wanted.begin());
    for (const ParsedList& one : wanted) {
        names_.insert(one.name);
        if (const auto number = wholeNumber(one.name)) numbers_.insert(*number);
    }
    std::string result;
    if (old == nullptr) {
        result = freshStatement(self, menu);
        for (const ParsedList& one : wanted) result += fresh(one);
        return {result + "END" + eol_};
    }
    result = windowHead(old->self, self) + properties(old->self, self);
    const std::vector<const RcObject*> blocks = matchObjects(old->objects, wanted);
    const std::vector<std::string> returning = returned(blocks, wanted, past);
    for (std::size_t i = 0; i < wanted.size(); ++i)
        result += blocks[i] != nullptr    ? continued(*blocks[i], wanted[i])
                  : !returning[i].empty() ? returning[i]
                                          : fresh(wanted[i]);
    const std::size_t bodyEnd = old->objects.empty() ? old->self.span.end : old->objects.back().span.end;
    const auto kept =
        std::count_if(blocks.begin(), blocks.end(), [](const RcObject* b) { return b != nullptr; });
    return {result + bytes({bodyEnd, old->span.end}), kept < std::ssize(old->objects)};
}

// For each object that the file does not have the block that it had, empty where there is none.
std::vector<std::string> Writer::returned(const std::vector<const RcObject*>& blocks,
                                          const std::vector<ParsedList>& wanted,
                                          const std::vector<std::string>& past) const {
    std::vector<std::string> texts(wanted.size());
    if (past.empty() || std::find(blocks.begin(), blocks.end(), nullptr) == blocks.end()) return texts;
    Past before(past);
    std::set<int> numbers;
    for (const RcObject* const block : blocks)
        if (block != nullptr) numbers.insert(file_.numberOf(*block));
    for (std::size_t i = 0; i < wanted.size(); ++i)
        if (blocks[i] == nullptr) texts[i] = before.textFor(wanted[i], file_, numbers);
    return texts;
}

}  // namespace

std::vector<ParsedList> parseAll(const ObjectArray& objects, Type usual) {
    std::vector<ParsedList> result;
    for (const std::string& list : objects) {
        if (list.empty()) break;
        result.push_back(parsePropertyList(list));
        if (result.back().type == Type::None) result.back().type = usual;
    }
    return result;
}

StatementText statementText(const RcFile& file, const RcStatement* old, const ObjectArray& objects, bool menu,
                            const std::vector<std::string>& past) {
    return Writer(file).statement(old, objects, menu, past);
}

}  // namespace tarn::platform
