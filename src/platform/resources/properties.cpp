// SPDX-License-Identifier: Apache-2.0
#include "platform/resources/properties.h"

#include "platform/text.h"

#include <algorithm>
#include <set>

namespace tarn::platform {

namespace {

constexpr std::string_view yes = "INTEGER(1-\"Yes\",0-\"No\")", no = "ENUM(No,Yes)";
constexpr std::string_view pictures = "FILENAME(bmp,png,svg,ico)";
constexpr std::string_view box = "ENUM(None,Line,Sunken)";
constexpr std::string_view bars = "ENUM(None,Horizontal,Vertical,Both)";
constexpr std::string_view listBars = "INTEGER(2-\"Vertical\",3-\"Both\",1-\"Horizontal\",0-\"None\")";
constexpr std::string_view otherName = "STRING(40)";  // NAME would give a new object the name "Name"
constexpr std::string_view side = "INTEGER(1-\"Mark on the left\",0-\"Mark on the right\")";
constexpr std::string_view direction = "ENUM(Automatic,Left,Right,Centre,Horizontal,Vertical)";
constexpr std::string_view flags =
    "INTEGER{16-\"Overwrite\",32-\"Auto indent\",64-\"Highlight\",128-\"Read only\",256-\"Select all\","
    "512-\"Status bar\",1024-\"Tab shifts\",4096-\"Number bar\"}";

constexpr PropertyRow nameRow = {"NAME", "NAME(1:40)", ""};
constexpr PropertyRow typeRow = {"TYPEOF", "CONST", ""};
constexpr PropertyRow positionRow = {"POSITION", "INTEGER[1:4]", "0 0 0 0"};
constexpr PropertyRow captionRow = {"CAPTION", "STRING", "", ValueKind::Text};
constexpr PropertyRow textRow = {"TEXT", "STRING", "", ValueKind::Text};
constexpr PropertyRow hintRow = {"HINT", "STRING", "", ValueKind::Text};
constexpr PropertyRow rowsRow = {"ROWS", "STRING", "", ValueKind::Text};
constexpr PropertyRow pictureRow = {"PICTURE", pictures, "", ValueKind::File};
constexpr PropertyRow enabledRow = {"ENABLED", yes, "1"};
constexpr PropertyRow visibleRow = {"VISIBLE", yes, "1"};
constexpr PropertyRow tabStopRow = {"TABSTOP", yes, "1"};
constexpr PropertyRow arrayRow = {"ARRAY", otherName, ""};
constexpr PropertyRow alignmentRow = {"ALIGNMENT", "ENUM(Left,Right,Centre)", "0"};
constexpr PropertyRow sideRow = {"ALIGNMENT", side, "1"};
constexpr PropertyRow directionRow = {"ALIGNMENT", direction, "0"};
constexpr PropertyRow boxRow = {"BORDERSTYLE", box, "0"};
constexpr PropertyRow sunkenRow = {"BORDERSTYLE", yes, "1"};
constexpr PropertyRow barsRow = {"SCROLLBARS", bars, "0"};
constexpr PropertyRow verticalRow = {"SCROLLBARS", listBars, "2"};
constexpr PropertyRow maxLengthRow = {"MAXLENGTH", "INTEGER(0:)", "0"};
constexpr PropertyRow minimumRow = {"MINIMUM", "INTEGER", "0"};
constexpr PropertyRow maximumRow = {"MAXIMUM", "INTEGER", "100"};
constexpr PropertyRow numberRow = {"VALUE", "INTEGER", "0"};
constexpr PropertyRow markRow = {"VALUE", no, "0"};
constexpr PropertyRow foreRow = {"FORECOLOUR", "COLOUR", "-1"};
constexpr PropertyRow backRow = {"BACKCOLOUR", "COLOUR", "-1"};
constexpr PropertyRow menuRow = {"MENU", otherName, ""};
constexpr PropertyRow ownerRow = {"OWNER", "ENUM(None,Main,All)", "0"};
constexpr PropertyRow fontNameRow = {"FONTNAME", "STRING", "", ValueKind::Text};
constexpr PropertyRow fontSizeRow = {"FONTSIZE", "INTEGER(0:144)", "0"};
constexpr PropertyRow fontBoldRow = {"FONTBOLD", no, "0"};
constexpr PropertyRow fontItalicRow = {"FONTITALIC", no, "0"};
constexpr std::string_view frame = "INTEGER(2-\"Sizable\",1-\"Fixed\",0-\"None\")";

constexpr PropertyRow dialog[] = {nameRow,
                                  typeRow,
                                  positionRow,
                                  captionRow,
                                  menuRow,
                                  {"BORDERSTYLE", frame, "1"},
                                  {"CLOSEBOX", yes, "1"},
                                  {"MAXBUTTON", no, "0"},
                                  {"MINBUTTON", no, "0"},
                                  fontNameRow,
                                  fontSizeRow,
                                  fontBoldRow,
                                  fontItalicRow,
                                  ownerRow};
constexpr PropertyRow editWindow[] = {nameRow,
                                      typeRow,
                                      positionRow,
                                      captionRow,
                                      menuRow,
                                      {"BORDERSTYLE", frame, "2"},
                                      {"CLOSEBOX", yes, "1"},
                                      {"MAXBUTTON", yes, "1"},
                                      {"MINBUTTON", yes, "1"},
                                      fontNameRow,
                                      fontSizeRow,
                                      fontBoldRow,
                                      fontItalicRow,
                                      ownerRow,
                                      {"FLAGS", flags, "0"},
                                      maxLengthRow};
constexpr PropertyRow label[] = {nameRow, typeRow,    positionRow, captionRow, alignmentRow,
                                 boxRow,  enabledRow, visibleRow,  arrayRow,   hintRow};
constexpr PropertyRow edit[] = {nameRow,
                                typeRow,
                                positionRow,
                                textRow,
                                alignmentRow,
                                sunkenRow,
                                {"READONLY", no, "0"},
                                {"MULTILINE", no, "0"},
                                barsRow,
                                maxLengthRow,
                                {"PASSWORDCHAR", "INTEGER(0:255)", "0"},
                                enabledRow,
                                visibleRow,
                                tabStopRow,
                                arrayRow,
                                hintRow};
constexpr PropertyRow combobox[] = {
    nameRow,
    typeRow,
    positionRow,
    textRow,
    {"COMBOSTYLE", "INTEGER(1-\"Drop-down\",2-\"Drop-down list\",0-\"Simple\")", "1"},
    rowsRow,
    maxLengthRow,
    enabledRow,
    visibleRow,
    tabStopRow,
    arrayRow,
    hintRow};
constexpr PropertyRow listbox[] = {nameRow,    typeRow,    positionRow, sunkenRow, verticalRow, rowsRow,
                                   enabledRow, visibleRow, tabStopRow,  arrayRow,  hintRow};
constexpr PropertyRow iconlist[] = {
    nameRow, typeRow,    positionRow, sunkenRow,  verticalRow, {"USETABSTOPS", no, "0"},
    rowsRow, enabledRow, visibleRow,  tabStopRow, arrayRow,    hintRow};
constexpr PropertyRow pushbutton[] = {
    nameRow,    typeRow,    positionRow, captionRow, {"DEFAULT", no, "0"}, {"CANCEL", no, "0"}, enabledRow,
    visibleRow, tabStopRow, arrayRow,    hintRow};
constexpr PropertyRow bitmapbutton[] = {nameRow,    typeRow,    positionRow,          captionRow, pictureRow,
                                        enabledRow, visibleRow, {"TABSTOP", no, "0"}, arrayRow,   hintRow};
constexpr PropertyRow mark[] = {nameRow,    typeRow,    positionRow, captionRow, sideRow, markRow,
                                enabledRow, visibleRow, tabStopRow,  arrayRow,   hintRow};
constexpr PropertyRow groupbox[] = {nameRow,    typeRow,    positionRow, captionRow,
                                    enabledRow, visibleRow, arrayRow,    hintRow};
constexpr PropertyRow scrollbar[] = {nameRow,   typeRow,    positionRow, directionRow, minimumRow, maximumRow,
                                     numberRow, enabledRow, visibleRow,  tabStopRow,   arrayRow,   hintRow};
constexpr PropertyRow progressbar[] = {nameRow,    typeRow,  positionRow, directionRow, boxRow,
                                       backRow,    foreRow,  minimumRow,  maximumRow,   numberRow,
                                       visibleRow, arrayRow, hintRow};
constexpr PropertyRow shape[] = {
    nameRow,
    typeRow,
    positionRow,
    boxRow,
    backRow,
    foreRow,
    {"SHAPE", "ENUM(Rectangle,RoundRectangle,Ellipse,HorizontalLine,VerticalLine)", "0"},
    visibleRow,
    arrayRow};
constexpr PropertyRow icon[] = {nameRow, typeRow, positionRow, pictureRow, visibleRow, arrayRow, hintRow};
constexpr PropertyRow image[] = {nameRow,    typeRow,    positionRow, boxRow,
                                 pictureRow, visibleRow, arrayRow,    hintRow};
constexpr PropertyRow menuitem[] = {{"NAME", "NAME(0:40)", ""},
                                    typeRow,
                                    {"POSITION", "INTEGER(0:11)", "0"},
                                    captionRow,
                                    {"CHECKED", no, "0"},
                                    enabledRow,
                                    visibleRow,
                                    {"SHORTCUT", "STRING", "", ValueKind::Text},
                                    pictureRow,
                                    arrayRow,
                                    hintRow};

}  // namespace

std::span<const PropertyRow> propertiesOf(Type type) {
    switch (type) {
    case Type::Dialog: return dialog;
    case Type::Editwindow:
    case Type::Richeditwindow: return editWindow;
    case Type::Label: return label;
    case Type::Edit: return edit;
    case Type::Combobox: return combobox;
    case Type::Listbox: return listbox;
    case Type::Iconlist: return iconlist;
    case Type::Pushbutton: return pushbutton;
    case Type::Bitmapbutton: return bitmapbutton;
    case Type::Checkbox:
    case Type::Radiobutton: return mark;
    case Type::Groupbox: return groupbox;
    case Type::Scrollbar: return scrollbar;
    case Type::Progressbar: return progressbar;
    case Type::Shape: return shape;
    case Type::Icon: return icon;
    case Type::Image: return image;
    case Type::Menuitem: return menuitem;
    default: return {};
    }
}

const PropertyRow* findProperty(Type type, std::string_view name) {
    for (const PropertyRow& row : propertiesOf(type))
        if (sameText(row.name, name)) return &row;
    return nullptr;
}

ValueKind kindOf(Type type, std::string_view name) {
    const PropertyRow* const row = findProperty(type, name);
    return row == nullptr ? ValueKind::Plain : row->kind;
}

std::string_view valueOf(const Properties& properties, Type type, std::string_view name) {
    for (const auto& [key, value] : properties)
        if (sameText(key, name)) return value;
    const PropertyRow* const row = findProperty(type, name);
    return row == nullptr ? std::string_view() : row->missing;
}

namespace {

// The letter that stands for a byte that a line cannot hold, 0 if the byte stands for itself.
char letterFor(char c) {
    return c == '\n' ? 'n' : c == '\0' ? '0' : '\0';
}
char controlFor(char letter) {
    return letter == 'n' ? '\n' : '\0';
}
bool isLetterOfControl(char c) {
    return c == 'n' || c == '0';
}

std::string escaped(std::string_view value) {
    std::string result;
    std::size_t run = 0;  // backslashes just before
    for (const char c : value) {
        const char letter = letterFor(c);
        if (letter != '\0' || isLetterOfControl(c)) result.append(run, '\\');
        if (letter != '\0') result += '\\';
        result += letter != '\0' ? letter : c;
        run = c == '\\' ? run + 1 : 0;
    }
    return result;
}

std::string unescaped(std::string_view text) {
    std::string result;
    std::size_t run = 0;
    for (const char c : text) {
        if (!isLetterOfControl(c) || run == 0) {
            result += c;
        } else {
            result.resize(result.size() - (run + 1) / 2);
            result += run % 2 == 1 ? controlFor(c) : c;
        }
        run = c == '\\' ? run + 1 : 0;
    }
    return result;
}

bool isQuoted(std::string_view text) {
    return text.size() >= 2 && text.front() == '"' && text.back() == '"';
}

// A path has no escapes, so no file can hold a line end in one.
std::string oneLine(std::string_view value) {
    std::string result(value);
    std::replace_if(
        result.begin(), result.end(), [](char c) { return letterFor(c) != '\0'; }, ' ');
    return result;
}

}  // namespace

namespace {

// Whether a plain value would not come back as it was from a line.
bool needsQuotesInList(std::string_view value) {
    const bool control = std::any_of(value.begin(), value.end(), [](char c) { return letterFor(c) != '\0'; });
    return control || isQuoted(value);
}

}  // namespace

std::string toListValue(ValueKind kind, std::string_view value) {
    if (kind == ValueKind::Plain && !needsQuotesInList(value)) return std::string(value);
    return "\"" + (kind == ValueKind::File ? oneLine(value) : escaped(value)) + "\"";
}

std::string fromListValue(ValueKind kind, std::string_view listValue) {
    const bool inQuotes = isQuoted(listValue);
    if (inQuotes) listValue = listValue.substr(1, listValue.size() - 2);
    const bool plain = kind == ValueKind::File || (kind == ValueKind::Plain && !inQuotes);
    return plain ? std::string(listValue) : unescaped(listValue);
}

std::string makePropertyList(std::string_view name, Type type, const Properties& properties) {
    std::string list;
    const auto add = [&](std::string_view key, ValueKind kind, std::string_view value) {
        list.append(key).append("=").append(toListValue(kind, value)).append("\n");
    };
    for (const PropertyRow& row : propertiesOf(type)) {
        if (row.name == nameRow.name)
            add(row.name, row.kind, name);
        else if (row.name == typeRow.name)
            add(row.name, row.kind, typeName(type));
        else
            add(row.name, row.kind, valueOf(properties, type, row.name));
    }
    for (const auto& [key, value] : properties)
        if (findProperty(type, key) == nullptr) add(key, ValueKind::Plain, value);
    return list;
}

bool isNumeric(const PropertyRow& row) {
    return row.options.starts_with("INTEGER") || row.options.starts_with("ENUM") ||
           row.options.starts_with("COLOUR");
}

namespace {

// The number that a choice means by its word, "Centre" in ENUM(Left,Right,Centre); -1 if it is no such word.
int choice(std::string_view options, std::string_view word) {
    if (!options.starts_with("ENUM(")) return -1;
    options.remove_prefix(5);
    for (int number = 0;; ++number) {
        const std::size_t end = options.find_first_of(",)");
        if (sameText(options.substr(0, end), word)) return number;
        if (end == std::string_view::npos || options[end] == ')') return -1;
        options.remove_prefix(end + 1);
    }
}

// A choice may come with its label ("1-Yes"), as the defaults of a new object do, or as its word alone; its
// number is the value.
std::string plainValue(Type type, std::string_view name, std::string_view listValue) {
    const PropertyRow* const row = findProperty(type, name);
    std::string value = fromListValue(row == nullptr ? ValueKind::Plain : row->kind, listValue);
    if (row == nullptr || (!row->options.starts_with("ENUM") && !row->options.starts_with("INTEGER(")))
        return value;
    if (const int number = choice(row->options, value); number >= 0) return std::to_string(number);
    const std::size_t dash = value.find('-', 1);
    if (dash != std::string::npos && wholeNumber(std::string_view(value).substr(0, dash))) value.resize(dash);
    return value;
}

}  // namespace

std::string normalValue(Type type, std::string_view name, std::string_view value) {
    return plainValue(type, name, toListValue(kindOf(type, name), value));
}

ParsedList parsePropertyList(std::string_view list) {
    ParsedList parsed;
    std::vector<std::pair<std::string, std::string_view>> lines;
    std::set<std::string> seen;
    list = list.substr(0, list.find('\0'));
    while (!list.empty()) {
        const std::size_t end = std::min(list.find('\n'), list.size());
        const std::string_view line = list.substr(0, end);
        list.remove_prefix(std::min(end + 1, list.size()));
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) continue;
        const std::string name = upper(trim(line.substr(0, equals)));
        if (name.empty() || !seen.insert(name).second) continue;  // the first one counts
        lines.emplace_back(name, line.substr(equals + 1));
    }
    const auto word = [](std::string_view value) { return fromListValue(ValueKind::Plain, trim(value)); };
    for (const auto& [name, value] : lines) {
        if (name == nameRow.name) parsed.name = word(value);
        if (name == typeRow.name) parsed.type = typeFromName(word(value));
    }
    for (const auto& [name, value] : lines)
        if (name != nameRow.name && name != typeRow.name)
            parsed.properties.emplace_back(name, plainValue(parsed.type, name, value));
    return parsed;
}

}  // namespace tarn::platform
