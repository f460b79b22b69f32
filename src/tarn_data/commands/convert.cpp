// SPDX-License-Identifier: Apache-2.0
//
// The rows of one file into another. All of them are read, and looked at, before the target is touched.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/index/index_file.h"
#include "tarn_data/base/files.h"
#include "tarn_data/commands/commands.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

// A declaration is that of the source, unless only the target is a table file.
bool readsTable(const Arguments& arguments, const Target& target) {
    if (arguments.type.empty()) return false;
    const std::string& file = arguments.files[0];
    return target.format != FormatBinary || DataFormatOf(file) == FormatBinary || isTableByIndex(file);
}

// Texts for the characters of fixed width that table files may hold.
std::string plainColumns(std::string_view columns) {
    std::string text;
    const auto lines = static_cast<std::int32_t>(std::count(columns.begin(), columns.end(), '\n'));
    for (std::int32_t n = 1; n <= lines; ++n) {
        const TypeInfoElement element = TypeInfoParseLine(columns, n);
        const bool character = element.typeName == "Tchar";
        if (TypeInfoKind(element.typeName) != KindArray && !character)
            text += TypeInfoLine(columns, n);
        else
            text += element.name + " : string[" + std::to_string(character ? 1 : element.bounds.ub1) + "]\n";
    }
    return text;
}

Problem checkSimple(const Source& source) {
    const auto lines =
        static_cast<std::int32_t>(std::count(source.columns.begin(), source.columns.end(), '\n'));
    for (std::int32_t n = 1; n <= lines; ++n) {
        const TypeInfoElement element = TypeInfoParseLine(source.columns, n);
        const std::int32_t kind = TypeInfoKind(element.typeName);
        const bool simple = kind <= KindString || kind == KindSet ||
                            (kind == KindArray && element.bounds.lb1 == 1 && element.bounds.ub1 >= 1 &&
                             element.bounds.lb2 == TypeInfoNoValue);
        if (!simple)
            return {fileWord(source.file) + "has the column '" + element.name +
                        "', which holds more than one value.",
                    "Only rows of simple columns can be converted."};
    }
    return {};
}

void tellWhatIsLeftOut(const Source& source) {
    const auto rows = [](std::int32_t n) { return std::to_string(n) + (n == 1 ? " row" : " rows"); };
    if (source.deletedRows > 0 && !source.deleted)
        note(rows(source.deletedRows) + " marked as deleted in '" + source.file +
             "' left out; --deleted takes them, too.");
    if (source.uncountedRows > 0)
        note(rows(source.uncountedRows) + " behind those that the header of '" + source.file +
             "' counts left out; 'tarn-data rebuild' takes them in.");
}

Problem convertRows(const Arguments& arguments, const Target& target, Source& source) {
    const bool table = target.format == FormatBinary, xbase = target.format == FormatXbase;
    Problem problem = checkEmptyLine(source);
    if (!problem.any() && !table) problem = keepDigits(source);
    std::string columns = source.text ? textColumns(source.columns) : source.columns;
    if (source.format == FormatBinary && !table && !xbase) columns = plainColumns(columns);
    columns = repairedNames(columns);
    if (!problem.any() && table) problem = fitColumns(source, columns, target.type);
    if (!problem.any() && table) problem = checkDigits(source, target.type);
    if (table) columns = target.type.columns;
    Rows rows;
    if (!problem.any()) problem = loadRows(source, columns, table, rows);
    if (!problem.any()) problem = fitRows(target, arguments.replace, columns, rows);
    return problem.any() ? problem : saveRows(target, columns, rows);
}

}  // namespace

int convert(const Arguments& arguments) {
    Target target;
    Problem problem = chooseTarget(arguments.files[1], arguments, target);
    if (problem.any()) return tell(problem);
    Source source;
    problem = identify(arguments.files[0], arguments, readsTable(arguments, target), source);
    // The writers of text and XML take values in memory.
    const bool byRows = target.format == FormatBinary || target.format == FormatXbase;
    source.willChange = arguments.replace || !byRows;
    if (!problem.any() && source.format == FormatBinary) problem = checkSimple(source);
    if (problem.any()) return tell(problem);
    const bool xbase = source.format == FormatXbase && target.format == FormatXbase && !source.text;
    problem = xbase ? copyXbase(source, target) : convertRows(arguments, target, source);
    if (problem.any()) return tell(problem);
    tellWhatIsLeftOut(source);
    return Well;
}

}  // namespace tarn::datatool
