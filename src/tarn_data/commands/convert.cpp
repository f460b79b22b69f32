// SPDX-License-Identifier: Apache-2.0
//
// The rows of one file into another. Cells travel as texts, byte for byte; what they are matters only where
// the other form has types. The target is touched when all of it is there.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/index/index_file.h"
#include "tarn_data/base/files.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/commands/looking.h"
#include "tarn_data/targets/celltarget.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

struct Conversion {
    const Arguments& arguments;
    Target target;
    Source source;
    TargetColumns columns;
    std::unique_ptr<CellSource> cells;
    bool looked = false;  // at all rows, ahead of the reading that is written
};

// A declaration is that of the source, unless only the target is a table file.
bool readsTable(const Conversion& c) {
    if (c.arguments.type.empty()) return false;
    const std::string& file = c.arguments.files[0];
    return c.target.format != FormatBinary || DataFormatOf(file) == FormatBinary || isTableByIndex(file);
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

// Lines of text have a name of their own.
bool isNamed(const Source& source) {
    return source.format == FormatText || !RowsAreLines(source.format) || source.options.numheaderrows > 0;
}

// ---- the steps ----

Problem chooseTargetOf(Conversion& c) {
    return chooseTarget(c.arguments.files[1], c.arguments, c.target);
}

Problem identifySource(Conversion& c) {
    Problem problem = identify(c.arguments.files[0], c.arguments, readsTable(c), c.source);
    return !problem.any() && c.source.format == FormatBinary ? checkSimple(c.source) : problem;
}

// Forms that tell the type of a column, or how long it is, need to know all its cells first.
Problem lookAtCells(Conversion& c) {
    const bool typed = c.target.format == FormatXml || c.target.format == FormatXbase;
    const bool needsNames = !RowsAreLines(c.target.format) || c.target.headerRows.value_or(0) > 0;
    // A declaration may tell of cells that no heading names.
    const std::size_t named = namesInSource(c.source).size();
    const bool unnamed = c.target.format == FormatBinary && RowsAreLines(c.source.format) &&
                         named != fieldNames(c.target.type.columns).size();
    const bool asks = !c.arguments.textColumns.empty() || unnamed || (needsNames && named == 0);
    c.cells = cellsOf(c.source);
    Problem problem;
    c.looked = typed || asks || !RowsAreLines(c.source.format);
    if (typed || asks) problem = lookAtSource(c.arguments, c.source, *c.cells, c.columns.facts);
    if (problem.any()) return problem;
    if (typed || asks) {
        if (c.columns.facts.gap.any()) return c.columns.facts.gap;
        for (const ColumnFacts& column : c.columns.facts.columns) c.columns.headings.push_back(column.name);
    } else {
        c.columns.headings = namesInSource(c.source);
    }
    if (typed && c.columns.headings.size() > std::size_t{MaxTabColumns})
        return tooManyColumns(c.source, c.columns.headings.size());
    if (c.target.format == FormatXbase) noteTextColumns(c.source, c.columns.facts);
    return {};
}

// The headings as they stand in the source, where it has some.
std::vector<std::string> standing(const Conversion& c) {
    std::vector<std::string> names = c.columns.headings;
    if (names.empty()) names = namesInSource(c.source);
    for (std::size_t n = 0; n < std::min(names.size(), c.source.headings.size()); ++n)
        names[n] = c.source.headings[n];
    return names;
}

// The names of the declaration are those by which the columns are known from now on.
void noteFieldNames(const Conversion& c) {
    std::vector<std::string> names = standing(c), fields = fieldNames(c.target.type.columns);
    if (names.size() < fields.size()) fields.erase(fields.begin());  // the mark of deletion
    if (c.columns.named && names.size() == fields.size()) noteRenamed(names, fields);
}

std::vector<std::string> declaredNames(const Source& source) {
    return lineNames(withRepairedNames(source.columns));
}

Problem fitNames(Conversion& c) {
    const bool xbase = c.source.format == FormatXbase;
    Problem problem = fitColumns(c.source, xbase ? declaredNames(c.source) : c.columns.names, c.target.type);
    if (!problem.any()) noteFieldNames(c);
    return problem;
}

// Names of the language, for those forms that need them. Delimited text keeps the headings.
Problem nameColumns(Conversion& c) {
    c.columns.names = namesOfLanguage(c.columns.headings);
    c.columns.named = isNamed(c.source);
    if (RowsAreLines(c.target.format) && !c.target.plain) {
        if (!c.source.headings.empty()) c.columns.headings = c.source.headings;
        return {};
    }
    if (c.target.format == FormatBinary) return fitNames(c);
    if (c.columns.named && c.target.format != FormatText) noteRenamed(standing(c), c.columns.names);
    return {};
}

// What was found of the rows need not hold for others. Lines that are read once are what they are.
Problem checkUnchanged(const Conversion& c) {
    if (!c.source.wasChanged()) return {};
    if (c.looked) return changedProblem();
    note(fileWord(c.source.file) + "was changed while it was read: look whether its last rows are whole.");
    return {};
}

Problem writeRows(Conversion& c) {
    const std::unique_ptr<CellTarget> target = cellTargetOf(c.source, c.target, c.columns);
    const Work work("writing " + c.target.file);
    Problem problem = c.cells->open();
    RowsFacts widths;
    CellRow row;
    std::int64_t rows = 0;
    const std::size_t first = c.columns.facts.usualCells;
    widths.usualCells = first != 0 ? first : c.columns.headings.size();
    if (!problem.any()) problem = target->begin();
    while (!problem.any() && c.cells->next(row)) {
        countRagged(row.size(), ++rows, widths);
        problem = target->put(row, rows);
    }
    if (!problem.any()) problem = c.cells->problem().any() ? c.cells->problem() : c.cells->gap();
    if (!problem.any()) problem = checkUnchanged(c);
    if (!problem.any()) problem = target->finish(rows);
    widths.strayQuote = c.cells->strayQuote();
    widths.blankLines = c.cells->blankLines();
    if (!problem.any()) noteOddRows(c.source, widths);
    return problem;
}

// A declaration that begins with the mark of deletion has it as a column, unlike the Xbase file.
void noteMarks(const Conversion& c) {
    const std::vector<std::string> fields = fieldNames(c.target.type.columns);
    const std::size_t columns = c.source.headings.size() - (c.source.deleted ? 1 : 0);
    if (c.source.format == FormatXbase && fields.size() > columns)
        note("The marks of deletion of '" + shown(c.source.file) + "' become the column '" +
             shown(fields[0]) + "'.");
}

// Values of these go as they are: texts could not tell all of them.
Problem copyValues(Conversion& c) {
    std::string columns = c.target.type.columns;
    Problem problem = fitColumns(c.source, declaredNames(c.source), c.target.type);
    Rows rows;
    c.columns.named = true;
    if (!problem.any()) problem = loadRows(c.source, columns, rows);
    if (!problem.any() && c.source.wasChanged()) problem = changedProblem();
    if (!problem.any()) problem = saveTable(c.source, c.target, rows);
    if (problem.any()) return problem;
    noteFieldNames(c);
    noteMarks(c);
    return {};
}

void tellWhatIsLeftOut(const Source& source) {
    const auto rows = [](std::int32_t n) { return counted(n, "row"); };
    if (source.deletedRows > 0 && !source.deleted)
        note(rows(source.deletedRows) + " marked as deleted in '" + source.file +
             "' left out; --deleted takes them, too.");
    if (source.uncountedRows > 0)
        note(rows(source.uncountedRows) + " behind those that the header of '" + source.file +
             "' counts left out; 'tarn-data rebuild' takes them in.");
}

// How a source becomes a target: the first row that fits.
struct Way {
    bool (*fits)(const Conversion& c);
    std::vector<Problem (*)(Conversion&)> steps;
};
bool asksForTexts(const Conversion& c) {
    return c.source.text || !c.arguments.textColumns.empty() || !c.arguments.nulls.empty();
}
const Way ways[] = {
    {[](const Conversion& c) {
         return c.source.format == FormatXbase && c.target.format == FormatXbase && !asksForTexts(c);
     },
     {[](Conversion& c) { return copyXbase(c.source, c.target); }}},
    {[](const Conversion& c) {
         return c.target.format == FormatBinary && FactsOf(c.source.format).rows == RowForm::Records &&
                !asksForTexts(c);
     },
     {copyValues}},
    {[](const Conversion&) { return true; }, {lookAtCells, nameColumns, writeRows}},
};

Problem takeSteps(Conversion& c, const std::vector<Problem (*)(Conversion&)>& steps) {
    Problem problem;
    for (std::size_t n = 0; n < steps.size() && !problem.any(); ++n) problem = steps[n](c);
    return problem;
}

}  // namespace

int convert(const Arguments& arguments) {
    Conversion c{arguments, {}, {}, {}, {}};
    Problem problem = takeSteps(c, {chooseTargetOf, identifySource});
    if (problem.any()) return tell(problem);
    const Way& way = *std::find_if(std::begin(ways), std::end(ways), [&](const Way& w) { return w.fits(c); });
    problem = takeSteps(c, way.steps);
    if (problem.any()) return tell(problem);
    tellWhatIsLeftOut(c.source);
    return Well;
}

}  // namespace tarn::datatool
