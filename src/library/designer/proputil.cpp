// SPDX-License-Identifier: Apache-2.0
//
// Property lists and positions. The functions on texts compute on their arguments alone, can neither fail nor
// set the error cell, and so have no frames.
#include "library/designer/proputil.h"

#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

MODULE("proputil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view lineEnds("\n\0", 2);
constexpr std::string_view positionName = "POSITION";

// Where a value stands in its list, 0-based. The line begins with the name in front of it.
struct ValuePlace {
    bool found = false;
    std::size_t line = 0, begin = 0, end = 0;
};

std::size_t endOfValue(std::string_view list, std::size_t begin) {
    return std::min(list.find_first_of(lineEnds, begin), list.size());
}

ValuePlace findValue(std::string_view list, std::string_view name) {
    for (std::size_t line = 0; line < list.size();) {
        const std::size_t equals = line + name.size();
        if (equals < list.size() && list[equals] == '=' && ascii::equal(list.substr(line, name.size()), name))
            return {true, line, equals + 1, endOfValue(list, equals + 1)};
        const std::size_t end = list.find('\n', line);
        if (end == npos) break;
        line = end + 1;
    }
    return {};
}

std::string_view valueAt(std::string_view list, const ValuePlace& place) {
    return list.substr(place.begin, place.end - place.begin);
}

std::string_view withoutQuotes(std::string_view value) {
    const bool quoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
    return quoted ? value.substr(1, value.size() - 2) : value;
}

std::string_view rawValue(std::string_view list, std::string_view name) {
    return valueAt(list, findValue(list, name));
}

// Calls `see(name, value)` for each "=" and goes on behind the end of its line.
template <class See>
void walkProperties(std::string_view list, See see) {
    for (std::size_t at = 0; at < list.size();) {
        const std::size_t equals = list.find('=', at);
        if (equals == npos) return;
        const std::size_t end = endOfValue(list, equals + 1);
        see(list.substr(at, equals - at), list.substr(equals + 1, end - equals - 1));
        at = end + 1;
    }
}

void replaceLine(std::string& list, const ValuePlace& place, std::string_view name, std::string_view value) {
    std::string line = STRUPPER(name);
    line.append("=").append(value).append("\n");
    list.replace(place.line, std::min(place.end + 1, list.size()) - place.line, line);
}

// The number of the line that equals `name`, from 1; 0 if there is none. A name may hold line ends.
int lineNumber(std::string_view name, std::string_view names) {
    int number = 1;
    for (std::size_t line = 0; line < names.size(); ++number) {
        const std::size_t behind = line + name.size();
        if (behind < names.size() && names[behind] == '\n' &&
            ascii::equal(names.substr(line, name.size()), name))
            return number;
        const std::size_t end = names.find('\n', line);
        if (end == npos) break;
        line = end + 1;
    }
    return 0;
}

// Line n without its LF; not found for a line that has none.
ValuePlace findLine(std::string_view text, int n) {
    if (n < 1) return {};
    for (std::size_t line = 0;; --n) {
        const std::size_t end = text.find('\n', line);
        if (end == npos) return {};
        if (n == 1) return {true, line, line, end};
        line = end + 1;
    }
}

}  // namespace

// ---- names and values ----

std::string GETPROPNAMES(std::string_view list) {
    std::string names;
    walkProperties(list, [&](std::string_view name, std::string_view) { names.append(name).append("\n"); });
    return names;
}

std::string GETPROPVALUE(std::string_view list, std::string_view name) {
    if (!name.empty()) return std::string(withoutQuotes(rawValue(list, name)));
    std::string values;
    walkProperties(list, [&](std::string_view, std::string_view value) {
        values.append(withoutQuotes(value)).append("\n");
    });
    return values;
}

void SETPROPVALUE(std::string_view name, std::string_view value, std::string& list) {
    const ValuePlace place = findValue(list, name);
    if (place.found) replaceLine(list, place, name, value);
}

std::string GETPROPVALUE(std::string_view name, std::string_view names, std::string_view values) {
    return std::string(valueAt(values, findLine(values, lineNumber(name, names))));
}

void SETPROPVALUE(std::string_view name, std::string_view value, std::string_view names,
                  std::string& values) {
    const ValuePlace place = findLine(values, lineNumber(name, names));
    if (place.found) values.replace(place.begin, place.end - place.begin, value);
}

int GETPROPINT(std::string_view list, std::string_view name) {
    if (name.empty()) return 0;
    const std::string_view value = rawValue(list, name);
    if (ascii::equal(value.substr(0, 2), "0X")) {
        const std::string_view digits = value.substr(2);
        const auto isHex = [](char c) { return ascii::hexDigit(c) >= 0; };
        constexpr std::size_t most = 8;
        if (digits.size() > most || !std::all_of(digits.begin(), digits.end(), isHex)) return 0;
        return static_cast<int>(HEXVAL(digits));
    }
    bool ok = false;
    const int number = CVTI(value, ok);
    return ok ? number : 0;
}

void SETPROPINT(std::string_view name, int value, std::string& list) {
    SETPROPVALUE(name, STR(value), list);
}

// ---- positions ----

int GETINT(std::string_view text, std::size_t& position) {
    std::size_t at = position == 0 ? 0 : position - 1;
    while (at < text.size() && text[at] == ' ') ++at;
    const bool negative = at < text.size() && text[at] == '-';
    if (negative || (at < text.size() && text[at] == '+')) ++at;
    using Limits = std::numeric_limits<int>;
    const std::int64_t most = negative ? -std::int64_t{Limits::min()} : Limits::max();
    std::int64_t value = 0;
    for (; at < text.size() && ascii::isDigit(text[at]); ++at)
        value = std::min(value * 10 + (text[at] - '0'), most);
    position = at + 1;
    return static_cast<int>(negative ? -value : value);
}

UnitRect GETPROPPOSITION(std::string_view list) {
    const ValuePlace place = findValue(list, positionName);
    const bool bare = !list.empty() && (list[0] == '+' || list[0] == '-' || ascii::isDigit(list[0]));
    if (!place.found && !bare) return {};
    std::size_t position = place.found ? place.begin + 1 : 1;
    UnitRect rect;
    for (int* number : {&rect.x, &rect.y, &rect.w, &rect.h}) *number = GETINT(list, position);
    return rect;
}

void SETPROPPOSITION(std::string& list, const UnitRect& position) {
    SETPROPVALUE(positionName, POSITIONTEXT(position), list);
}

std::string POSITIONTEXT(const UnitRect& position) {
    return STR(position.x) + " " + STR(position.y) + " " + STR(position.w) + " " + STR(position.h);
}

std::string POSITIONTEXT(const Rect& position) {
    return POSITIONTEXT(UnitRect{position.x, position.y, position.w, position.h});
}

// ---- whole dialogs ----

namespace {

bool isListbox(const Object& control) {
    return GetTypeof(control) == "Listbox";
}

// The entries from the given item on; none of a control that is no Listbox.
std::vector<std::string> entriesOf(const Object& list, int from) {
    std::vector<std::string> entries;
    if (!isListbox(list)) return entries;
    const int count = GetListCount(list);
    for (int item = from; item <= count; ++item) entries.push_back(GetList(list, item) + "\n");
    return entries;
}

void addObjectText(std::string_view entry, std::string& text) {
    text.append(rawValue(entry, "NAME")).append(":").append(rawValue(entry, "TYPEOF")).append("\n");
    while (!entry.empty()) text.append("      ").append(ascii::takeLine(entry));
    text += "END\n\n";
}

// The entries of two controls as one list. Those in front of item `from` of each control are left out.
struct Objects {
    std::vector<std::string> lists;
    int firsts = 0;  // how many are of the first control
    int from = 1;

    Objects(const Object& first, const Object& last, int fromItem)
        : lists(entriesOf(first, fromItem)), firsts(static_cast<int>(lists.size())), from(fromItem) {
        for (std::string& entry : entriesOf(last, fromItem)) lists.push_back(std::move(entry));
    }
    [[nodiscard]] int count() const { return static_cast<int>(lists.size()); }
    // Where the item of a control stands here, from 0; -1 if it does not.
    [[nodiscard]] int place(int index, bool second) const {
        const int at = index - from + (second ? firsts : 0);
        return at >= (second ? firsts : 0) && at < (second ? count() : firsts) ? at : -1;
    }
    [[nodiscard]] std::string value(int at, std::string_view name) const {
        return GETPROPVALUE(lists[static_cast<std::size_t>(at)], name);
    }
    [[nodiscard]] NameFault fault(int at, std::string message) const {
        const bool second = at >= firsts;
        return {std::move(message), at - (second ? firsts : 0) + from, second};
    }
    // Calls `check` for each object in turn, or for the one that is meant, until it finds a fault.
    template <class Check>
    NameFault check(int index, bool second, Check check) const {
        const int one = index == -1 ? -1 : place(index, second);
        if (index != -1) return one < 0 ? NameFault{} : check(one);
        for (int i = 0; i < count(); ++i) {
            NameFault found = check(i);
            if (!found.message.empty()) return found;
        }
        return {};
    }
};

std::string duplicateMessage(const Objects& objects, int i, int j) {
    return "All control objects in a dialog must be unique (ie have different names).\n"
           "However the following control object:\n\n\t'" +
           objects.value(i, "NAME") + ":" + objects.value(i, "TYPEOF") +
           "'\n\nhas a duplicate of type:\n\n\t'" + objects.value(j, "TYPEOF") +
           "'\n\nThe duplicate should be renamed to something else.\n";
}

std::string badNameMessage(const Objects& objects, int i) {
    const std::string name = objects.value(i, "NAME");
    return "The following control object:\n\n\t" + name + ":" + objects.value(i, "TYPEOF") +
           "\n\nshould be given a different name. Its current name (" + STRLOWER(name) +
           ") conflicts with existing library objects.\n";
}

}  // namespace

std::string GETPROPVALUE(const Object& list, std::string_view name) {
    FRAME(GETPROPVALUE);
    STAMP();
    std::string values;
    for (const std::string& entry : entriesOf(list, 1)) values += GETPROPVALUE(entry, name) + "\n";
    return values;
}

ObjectArray TSTRINGARRAY(const Object& list) {
    FRAME(TSTRINGARRAY);
    STAMP();
    ObjectArray array;
    std::vector<std::string> entries = entriesOf(list, 1);
    const std::size_t count = std::min(entries.size(), array.size());
    for (std::size_t n = 0; n < count; ++n) array[n] = std::move(entries[n]);
    return array;
}

std::string GETPROPERTYLISTS(const Object& datalist, const Object& menulist) {
    FRAME(GETPROPERTYLISTS);
    STAMP();
    std::string text;
    if (!isListbox(datalist) || !isListbox(menulist)) return text;
    for (const Object& list : {menulist, datalist})
        for (const std::string& entry : entriesOf(list, 1)) addObjectText(entry, text);
    return text;
}

int SEARCHPROPLIST(const Object& list, std::string_view name, std::string_view value) {
    FRAME(SEARCHPROPLIST);
    STAMP();
    if (name.empty() || value.empty() || !isListbox(list)) return -1;
    const int count = GetListCount(list);
    for (int item = 1; item <= count; ++item)
        if (STREQUAL(GETPROPVALUE(GetList(list, item), name), value)) return item;
    return -1;
}

NameFault CHECKDUPLICATES(const Object& first, const Object& last, int index, bool second) {
    FRAME(CHECKDUPLICATES);
    STAMP();
    if (!isListbox(first) || !isListbox(last) || (index != -1 && index <= 1)) return {};
    const Objects objects(first, last, 2);
    std::vector<std::string> names;
    for (int i = 0; i < objects.count(); ++i) names.push_back(STRUPPER(objects.value(i, "NAME")));
    return objects.check(index, second, [&](int i) -> NameFault {
        const std::string& name = names[static_cast<std::size_t>(i)];
        for (int j = 0; !name.empty() && j < objects.count(); ++j)
            if (j != i && names[static_cast<std::size_t>(j)] == name)
                return objects.fault(j, duplicateMessage(objects, i, j));
        return {};
    });
}

NameFault CHECKBADNAMES(const Object& first, const Object& last, int index, bool second,
                        std::string_view badNames) {
    FRAME(CHECKBADNAMES);
    STAMP();
    const bool meant = index == -1 || index >= 1;
    if (!isListbox(first) || !isListbox(last) || !meant || badNames.empty()) return {};
    const Objects objects(first, last, 1);
    const std::string bad = " " + std::string(badNames) + " ";
    return objects.check(index, second, [&](int i) -> NameFault {
        if (STRFIND(" " + objects.value(i, "NAME") + " ", bad) == 0) return {};
        return objects.fault(i, badNameMessage(objects, i));
    });
}

std::string GETOBJECTTYPELIST(const std::string& type) {
    FRAME(GETOBJECTTYPELIST);
    STAMP();
    return ResourceTypelist(type);
}

}  // namespace tarn
