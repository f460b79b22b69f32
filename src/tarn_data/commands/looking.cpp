// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/commands/looking.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "os/text/ascii.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/sources/layout.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

std::string withoutQuotes(const std::string& name) {
    const bool quoted = name.size() >= 2 && name.front() == '"' && name.back() == '"';
    return quoted ? name.substr(1, name.size() - 2) : name;
}

std::vector<std::string> shownNames(const RowsFacts& facts) {
    std::vector<std::string> names;
    for (const ColumnFacts& column : facts.columns) names.push_back(shown(column.name));
    return names;
}

// By the heading, or by the name that the language has for it.
Problem takeAsText(const Arguments& arguments, const Source& source, RowsFacts& facts) {
    std::vector<std::string> headings;
    for (const ColumnFacts& column : facts.columns) headings.push_back(column.name);
    const std::vector<std::string> names = namesOfLanguage(headings);
    for (const std::string& wanted : arguments.textColumns) {
        bool found = false;
        for (std::size_t n = 0; n < names.size(); ++n) {
            if (!ascii::equal(headings[n], wanted) && !ascii::equal(names[n], wanted)) continue;
            facts.columns[n].text = found = true;
        }
        if (!found)
            return {"There is no column '" + shown(wanted) + "' in '" + shown(source.file) + "'.",
                    "Its columns are " + joined(shownNames(facts)) + ".", WrongUsage};
    }
    return {};
}

// Texts by their declaration: of XML those whose type was found, or is told, to be text.
bool isDeclaredText(const Source& source, std::size_t column) {
    if (source.text) return true;
    if (source.columns.empty() || RowsAreLines(source.format)) return false;
    const std::string type =
        TypeInfoParseLine(source.columns, static_cast<std::int32_t>(column + 1)).typeName;
    const auto is = [&](std::string_view word) { return ascii::equal(type, word); };
    return (TypeInfoKind(type) == KindString && !is("Tdatetime")) || is("Tchars") || is("Tchar") ||
           is("Tdate");
}

}  // namespace

std::vector<std::string> namesInSource(const Source& source) {
    if (RowsAreLines(source.format)) return headingNames(source);
    if (source.format == FormatXbase) return source.headings;
    std::vector<std::string> names;
    for (const std::string& name : lineNames(source.columns)) names.push_back(withoutQuotes(name));
    return names;
}

Problem lookAtSource(const Arguments& arguments, const Source& source, CellSource& cells, RowsFacts& facts) {
    const Work work("reading " + source.file);
    const std::vector<std::string> names = namesInSource(source);
    for (const std::string& name : names) {
        ColumnFacts& column = facts.columns.emplace_back();
        column.name = name;
        column.text = isDeclaredText(source, facts.columns.size() - 1);
    }
    Problem problem = lookAtRows(cells, names, facts);
    for (std::size_t n = 0; n < facts.columns.size(); ++n) {
        ColumnFacts& column = facts.columns[n];
        column.text = column.text || source.text;
        if (n < source.widths.size() && column.type() == CellClass::Text)
            column.longest = std::max(column.longest, source.widths[n]);
    }
    return problem.any() ? problem : takeAsText(arguments, source, facts);
}

std::vector<std::string> namesOfLanguage(const std::vector<std::string>& headings) {
    std::string lines;
    for (const std::string& heading : headings) lines += quotedName(heading) + " : string\n";
    return lineNames(withRepairedNames(lines));
}

Problem tooManyColumns(const Source& source, std::size_t columns) {
    return {fileWord(source.file) + "has " + std::to_string(columns) + " columns; at most " +
                std::to_string(MaxTabColumns) + " can be handled.",
            IsDelimited(source.format)
                ? "Split it into files of fewer columns, or choose another separator with --separator."
                : "Split it into files of fewer columns."};
}

// ---- notes ----

void noteTextColumns(const Source& source, const RowsFacts& facts) {
    for (const ColumnFacts& column : facts.columns) {
        const std::string why = whyText(column);
        if (!why.empty())
            note("Column '" + shown(column.name) + "' of '" + shown(source.file) +
                 "' is taken as text: " + why);
    }
}

void noteRenamed(const std::vector<std::string>& from, const std::vector<std::string>& to) {
    std::string renamed;
    for (std::size_t n = 0; n < std::min(from.size(), to.size()); ++n) {
        if (from[n] != to[n])
            renamed += (renamed.empty() ? "" : ", ") + ("'" + shown(from[n]) + "' to " + to[n]);
    }
    if (!renamed.empty()) note("Columns renamed: " + renamed + ".");
}

void noteOddRows(const Source& source, const RowsFacts& facts) {
    if (facts.strayQuote != 0)
        note("Row " + std::to_string(facts.strayQuote) + " of '" + shown(source.file) +
             "' has a cell that begins with a quote and does not end with one, or has single ones in it: "
             "such cells "
             "are taken as they stand, quotes and all.");
    if (facts.blankLines != 0)
        note(counted(facts.blankLines, "line") + " of '" + shown(source.file) +
             "' behind an empty one with separators and blanks alone left out.");
    if (facts.ragged == 0) return;
    const auto cells = [](std::size_t n) { return counted(static_cast<std::int64_t>(n), "cell"); };
    note("Row " + std::to_string(facts.firstRagged) + " of '" + shown(source.file) + "' has " +
         cells(facts.raggedCells) + ", and the first line has " + std::to_string(facts.usualCells) +
         (facts.ragged == 1 ? "." : "; there are " + std::to_string(facts.ragged) + " such rows.") +
         " Look whether a cell holds the separator without quotes.");
}

}  // namespace tarn::datatool
