// SPDX-License-Identifier: Apache-2.0
#include "library/source/symbolfiles.h"

#include "kernel/data/tab/tabular.h"
#include "kernel/debug/symboltext.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <utility>

MODULE("symbols", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

// ---- records ----

namespace {

// The fields in the order of the file: a text with its greatest length, or a number.
struct Field {
    std::string SymbolRecord::*text = nullptr;
    std::size_t most = 0;
    int SymbolRecord::*number = nullptr;
};
constexpr Field textField(std::string SymbolRecord::*text, std::size_t most) {
    return {text, most, nullptr};
}
constexpr Field numberField(int SymbolRecord::*number) {
    return {nullptr, 0, number};
}
const Field fields[] = {textField(&SymbolRecord::name, 40),       numberField(&SymbolRecord::scope),
                        textField(&SymbolRecord::signature, 657), textField(&SymbolRecord::sort, 40),
                        numberField(&SymbolRecord::decline),      numberField(&SymbolRecord::impline),
                        numberField(&SymbolRecord::useline),      textField(&SymbolRecord::classname, 40),
                        numberField(&SymbolRecord::lb1),          numberField(&SymbolRecord::ub1),
                        numberField(&SymbolRecord::lb2),          numberField(&SymbolRecord::ub2),
                        numberField(&SymbolRecord::lb3),          numberField(&SymbolRecord::ub3),
                        textField(&SymbolRecord::disambig, 94),   textField(&SymbolRecord::typeName, 40),
                        numberField(&SymbolRecord::compno),       numberField(&SymbolRecord::constvalue),
                        textField(&SymbolRecord::comment, 1000)};

int number(std::string_view cell) {
    bool ok = false;
    const int value = CVTI(STRTRIM(cell), ok);
    return ok ? value : 0;
}

void setField(SymbolRecord& record, std::int32_t column, std::string_view cell) {
    if (column < 1 || column > static_cast<std::int32_t>(std::size(fields))) return;
    const Field& field = fields[column - 1];
    if (field.text != nullptr)
        record.*field.text = SymbolText(cell, field.most);
    else
        record.*field.number = number(cell);
}

bool isOptions(const SymbolRecord& record) {
    return STREQUAL(record.name, "program") && STREQUAL(record.sort, "program");
}

}  // namespace

std::vector<SymbolRecord> SYMLOAD(const std::string& file) {
    FRAME(SYMLOAD);
    std::vector<SymbolRecord> records;
    std::int32_t last = 0;
    const auto take = [&](std::int32_t row, std::int32_t column, std::string_view cell) {
        if (row != last) records.emplace_back();
        last = row;
        setField(records.back(), column, cell);
    };
    if (TabVisitCells(file, DataOptions(), take).code != 0) return {};
    std::erase_if(records,
                  [](const SymbolRecord& record) { return record.name.empty() && record.sort.empty(); });
    return records;
}

// ---- debug levels ----

std::string SYMGETOPTIONS(const std::string& file) {
    FRAME(SYMGETOPTIONS);
    for (SymbolRecord& record : SYMLOAD(file))
        if (isOptions(record)) return std::move(record.comment);
    return {};
}

int SYMGETDEBUGLEVEL(const std::string& classFile) {
    FRAME(SYMGETDEBUGLEVEL);
    const std::string file = FILECHANGEEXT(classFile, ".sym");
    STAMP();
    if (FileSize(file) <= 0) return -1;
    const std::string options = SYMGETOPTIONS(file);
    for (const int level : {2, 1, 0})
        if (STRFIND("-d" + STR(level), options) != 0) return level;
    return -1;
}

std::string SYMGETDEBUGLEVELS(std::string_view files) {
    FRAME(SYMGETDEBUGLEVELS);
    std::string levels;
    while (!files.empty()) {
        STAMP();
        const std::string file(ascii::withoutLineEnd(ascii::takeLine(files)));
        const std::string extension = FILEGETEXT(file);
        const bool known = STREQUAL(extension, ".cls") || STREQUAL(extension, ".sym");
        levels += STR(known ? SYMGETDEBUGLEVEL(file) : -1) + "\n";
    }
    return levels;
}

DebugFlags SYMGETDEBUGFLAGS(std::string_view levels) {
    FRAME(SYMGETDEBUGFLAGS);
    if (levels.empty()) return {};
    DebugFlags flags{true, true, true, true};
    while (!levels.empty()) {
        const std::string_view level = ascii::withoutLineEnd(ascii::takeLine(levels));
        const bool known = level == "0" || level == "1" || level == "2";
        flags.all0 = flags.all0 && level == "0";
        flags.all1 = flags.all1 && level == "1";
        flags.all2 = flags.all2 && level == "2";
        flags.allKnown = flags.allKnown && known;
    }
    return flags;
}

// ---- lists ----

namespace {

std::string shownName(const SymbolRecord& record) {
    const bool member = STREQUAL(record.sort, "visualobject") && !record.signature.empty();
    return member ? record.name + "." + record.signature : record.name;
}

std::string scopeWord(const SymbolRecord& record) {
    switch (record.scope) {
    case public_scope: return "public_scope";
    case private_scope: return "private_scope";
    case function_scope: return "function_scope";
    default: return {};
    }
}

struct Placeholder {
    std::string_view mark;
    std::string (*value)(const SymbolRecord& record);
};
constexpr Placeholder placeholders[] = {
    {"$NAME$", shownName},
    {"$SCOPE$", scopeWord},
    {"$SIGNATURE$", [](const SymbolRecord& record) { return record.signature; }},
    {"$SORT$", [](const SymbolRecord& record) { return record.sort; }},
    {"$DECLINE$", [](const SymbolRecord& record) { return STR(record.decline); }},
    {"$CLASSNAME$", [](const SymbolRecord& record) { return record.classname; }},
    {"$TYPENAME$", [](const SymbolRecord& record) { return record.typeName; }},
};

// The value of the mark that `rest` begins with, if it is one.
const Placeholder* markAt(std::string_view rest) {
    for (const Placeholder& placeholder : placeholders)
        if (rest.starts_with(placeholder.mark)) return &placeholder;
    return nullptr;
}

std::string withoutControls(std::string text) {
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 32 || c == 127) c = ' ';
    return text;
}

// `file` stands for $FILENAME$, which stays where it is null. A value is not looked at for marks.
std::string formatted(const SymbolRecord& record, std::string_view format, const std::string* file) {
    constexpr std::string_view FileMark = "$FILENAME$";
    std::string line;
    while (!format.empty()) {
        if (const Placeholder* const placeholder = markAt(format)) {
            line += withoutControls(placeholder->value(record));
            format.remove_prefix(placeholder->mark.size());
        } else if (file != nullptr && format.starts_with(FileMark)) {
            line += *file;
            format.remove_prefix(FileMark.size());
        } else {
            line += format[0];
            format.remove_prefix(1);
        }
    }
    return line;
}

bool isWanted(const SymbolRecord& record, std::string_view sortFilter) {
    if (record.scope == private_scope && record.compno != 0) return false;
    if (sortFilter == "*") return true;
    const int words = STRWORDCOUNT(sortFilter);
    for (int n = 1; n <= words; ++n)
        if (STREQUAL(STRWORD(sortFilter, n), record.sort)) return true;
    return false;
}

// The pictures that a program with such a list holds under these names.
std::string_view pictureOf(const SymbolRecord& record) {
    static constexpr std::pair<std::string_view, std::string_view> Pictures[] = {
        {"const", "symconst"}, {"type", "symtype"},   {"function", "symfunction"},
        {"debug", "symdebug"}, {"class", "symclass"},
    };
    if (STREQUAL(record.sort, "visualobject"))
        return STREQUAL(record.typeName, "window") ? "symwindow" : "symobject";
    for (const auto& [sort, picture] : Pictures)
        if (STREQUAL(record.sort, sort)) return picture;
    return "symother";
}

}  // namespace

std::string SYMFORMATSTR(const SymbolRecord& record, std::string_view format) {
    FRAME(SYMFORMATSTR);
    return formatted(record, format, nullptr);
}

void SYMADDSYMBOLS(const std::string& symFile, const std::string& classFile, std::string_view format,
                   std::string_view sortFilter, const Object& list) {
    FRAME(SYMADDSYMBOLS);
    STAMP();
    const std::string type = GetTypeof(list);
    const bool icons = STREQUAL(type, "Iconlist");
    if (!icons && !STREQUAL(type, "Listbox")) return;
    const std::string file = STRADDQUOTES(classFile);
    for (const SymbolRecord& record : SYMLOAD(symFile)) {
        STAMP();
        if (!isWanted(record, sortFilter)) continue;
        AddItem(list, formatted(record, format, &file), icons ? pictureOf(record) : std::string_view());
    }
    STAMP();
}

}  // namespace tarn
