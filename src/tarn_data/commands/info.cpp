// SPDX-License-Identifier: Apache-2.0
//
// What is in a file.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/tables/tables.h"
#include "os/paths.h"
#include "tarn_data/base/encoding.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/base/xbase.h"
#include "tarn_data/commands/looking.h"
#include "tarn_data/sources/layout.h"
#include "tarn_data/sources/load.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

constexpr const char* seeCheck = "; 'tarn-data check' tells more";

std::string line(const char* name, const std::string& text) {
    return std::string(name) + ": " + shown(text) + "\n";
}

// A heading that is no name stands in quotes.
std::string renamedText(const std::vector<std::string>& from, const std::vector<std::string>& to) {
    std::string text;
    for (std::size_t i = 0; i < std::min(from.size(), to.size()); ++i) {
        const bool plain = quotedName(from[i]) == from[i] || from[i].starts_with('"');
        const std::string name = plain ? shown(from[i]) : '"' + shown(from[i]) + '"';
        if (from[i] != to[i]) text += "renamed: " + name + " to " + to[i] + "\n";
    }
    return text;
}

// The last lines: default keys and the declaration, with names that the language accepts.
std::string declared(const std::string& file, const std::string& columns,
                     const std::vector<std::string>& headings) {
    const std::string repaired = withRepairedNames(columns), whole = declaration(file, repaired);
    const std::string keys = TypeInfoFieldList(whole).keys.names;
    return line("default keys", keys.empty() ? "none" : keys) + renamedText(headings, lineNames(repaired)) +
           "declaration:\n" + whole;
}

// The fields by the names that stand in the file, the mark of deletion ahead of them.
std::string declaredXbase(const std::string& file, const XbaseHeader& header, const std::string& columns) {
    std::vector<std::string> headings = xbaseHeadings(header);
    headings.insert(headings.begin(), fieldNames(columns)[0]);
    return declared(file, columns, headings);
}

// ---- text and XML ----

std::string rowsText(const Source& source, const Arguments& arguments) {
    if (source.rowsSeen < 0) return "not counted";
    const bool first = arguments.from.maxRows && source.rowsSeen == *arguments.from.maxRows;
    return std::to_string(source.rowsSeen) + (first ? " (at most as many as --max-rows)" : "");
}

constexpr std::string_view forms[] = {"", ", a list of values", ", a single record"};  // of XML

std::string formText(const Source& source) {
    const auto rows = [](std::int32_t n, const char* what) {
        return ", " + std::to_string(n) + " " + what + " row" + (n == 1 ? "" : "s");
    };
    const std::string word(FactsOf(source.format).word);
    if (!IsDelimited(source.format))
        return word + std::string(forms[static_cast<std::size_t>(source.xmlRows.form)]);
    return word + ", separator " + separatorName(source.options.separatorchar) +
           rows(source.options.numheaderrows, "header") + rows(source.options.numfooterrows, "footer");
}

// The lines of the columns as they were declared, but for those whose cells a value would change.
std::string columnsText(const Source& source, const RowsFacts& facts) {
    std::string text;
    for (std::size_t n = 0; n < facts.columns.size(); ++n) {
        const ColumnFacts& column = facts.columns[n];
        const bool changed = !column.text && column.type() == CellClass::Text;
        const auto number = static_cast<std::int32_t>(n + 1);
        const std::string own = TypeInfoLine(source.columns, number);
        const bool told = !own.empty() && TypeInfoParseLine(own, 1).typeName != UnknownType;
        text += RowsAreLines(source.format) || source.text || changed || !told ? column.line() : own;
    }
    return text;
}

// Bytes go as they are; only who knows the encoding can say what they mean.
Problem noteEncoding(const Source& source) {
    const Work work("reading " + source.file);
    EncodingFacts facts;
    Problem problem = findEncoding(source.path, facts);
    if (!problem.any() && facts.firstBad >= 0)
        note(fileWord(source.file) + "is no UTF-8: the first byte that is not stands in line " +
             std::to_string(facts.firstBadLine) + ". If it is " + std::string(encodingName(facts.encoding)) +
             ", this converts it: " + iconvCommand(source.file, facts.encoding));
    return problem;
}

int infoText(const std::string& file, const Arguments& arguments) {
    Source source;
    RowsFacts facts;
    Problem problem = identify(file, arguments, false, source);
    if (problem.any()) return tell(problem);
    problem = lookAtSource(arguments, source, *cellsOf(source), facts);
    if (!problem.any() && RowsAreLines(source.format)) problem = noteEncoding(source);
    if (problem.any()) return tell(problem);
    if (facts.columns.size() > std::size_t{MaxTabColumns})
        return tell(tooManyColumns(source, facts.columns.size()));
    if (facts.gap.any()) note(facts.gap.what + " Only rows ahead of it are counted.");
    noteTextColumns(source, facts);
    noteOddRows(source, facts);
    if (RowsAreLines(source.format)) source.rowsSeen = static_cast<std::int32_t>(facts.rows);
    const std::string columns = columnsText(source, facts);
    std::vector<std::string> headings = lineNames(columns);
    for (std::size_t n = 0; RowsAreLines(source.format) && n < headings.size(); ++n)
        headings[n] = facts.columns[n].name;
    return print(line("file", file) + line("type", formText(source)) +
                 line("rows", rowsText(source, arguments)) +
                 line("columns", std::to_string(headings.size())) + declared(file, columns, headings));
}

// ---- indexes ----

std::string indexLines(const std::vector<IndexBeside>& indexes, const std::string& file) {
    std::string text;
    for (const IndexBeside& index : indexes) {
        const std::string name(paths::fileName(IndexFileName(file, index.number)));
        std::string key = "key " + joined(index.file.fields);
        if (index.file.path.empty() || index.aside)
            key = std::string(index.begun ? "begun only" : "missing") + seeCheck;
        else if (!index.file.wrong.empty())
            key = "cannot be used: " + index.file.wrong;
        text += line(("index " + std::to_string(index.number)).c_str(), name + ", " + key);
    }
    return text;
}

int infoIndex(const std::string& file) {
    const IndexFile index = readIndexFile(file);
    if (!index.wrong.empty())
        return tell({fileWord(file) + "is no whole index file. " + index.wrong,
                     "'tarn-data rebuild' makes the indexes of a table file anew."});
    const IndexNumbers numbers = countNodes(index);
    const auto number = [](std::int32_t n) {
        return n < 0 ? std::string("damaged") + seeCheck : std::to_string(n);
    };
    const std::string folder(paths::folder(file));
    const bool beside = os::infoOf(os::native(folder + index.tableName)).exists;
    return print(line("file", file) + line("type", "index file") +
                 line("table file", index.tableName + (beside ? "" : " (not there)")) +
                 line("key", joined(index.fields)) + line("nodes", number(numbers.nodes)) +
                 line("free records", number(numbers.freeRecords)) +
                 line("record length", std::to_string(numbers.recordBytes)) + "declaration:\n" +
                 index.keyText);
}

// ---- Xbase ----

// Rows by the header, those that are there, and those that are deleted.
Problem xbaseRows(const std::string& name, XbaseFile& file, std::string& text) {
    const Work work("reading " + name);
    Steps steps(file.rows() * file.header().recordSize);
    std::int64_t deleted = 0;
    std::string_view row;
    file.goToFirst(file.rows());
    while (file.next(row)) {
        if (!steps.step(file.header().recordSize)) return stoppedProblem();
        if (row[0] == DeletedRow) ++deleted;
    }
    text = std::to_string(file.rows());
    if (deleted > 0) text += " (" + std::to_string(deleted) + " marked as deleted)";
    const bool other = file.counted() != file.whole();
    if (other)
        text += "; the header counts " + std::to_string(file.counted()) + ", and the file has " +
                std::to_string(file.whole()) + (file.behind() == 0 ? seeCheck : "");
    if (file.behind() > 0) text += " and " + counted(file.behind(), "byte") + seeCheck;
    if (file.behind() < 0) text += "; the header is not whole" + std::string(seeCheck);
    return file.error() == os::FileError::None ? Problem() : unreadable(name, file.error());
}

int infoXbase(const std::string& name) {
    XbaseFile file;
    RowType type;
    std::string rows;
    Problem problem = file.open(name);
    if (!problem.any()) problem = xbaseRowType(name, type);
    if (!problem.any()) problem = xbaseRows(name, file, rows);
    if (problem.any()) return tell(problem);
    return print(line("file", name) + line("type", "Xbase") + line("rows", rows) +
                 line("columns", std::to_string(file.header().fieldCount)) +
                 indexLines(indexesBeside(name, type), name) +
                 declaredXbase(name, file.header(), type.columns));
}

// ---- table files ----

int infoTable(const std::string& file, const std::string& typeFile) {
    RowType type;
    TableFacts facts;
    Problem problem = readRowType(typeFile, type);
    if (!problem.any()) problem = tableFacts(file, type, facts);
    if (problem.any()) return tell(problem);
    const bool plain = type.capacity == UNBOUNDED;
    std::string rows = std::to_string(facts.rows());
    if (facts.behind != 0) rows += " and " + counted(facts.behind, "byte") + seeCheck;
    if (facts.counted > facts.whole)
        rows += "; the header counts " + std::to_string(facts.counted) + seeCheck;
    return print(line("file", file) +
                 line("type", plain ? "table file"
                                    : "table file of at most " + std::to_string(type.capacity) + " rows") +
                 line("rows", rows) + line("record length", std::to_string(facts.rowBytes)) +
                 line("columns", std::to_string(fieldNames(type.columns).size())) +
                 indexLines(indexesBeside(file, type), file) +
                 declared(file, type.columns, lineNames(type.columns)));
}

}  // namespace

int info(const Arguments& arguments) {
    const std::string& file = arguments.files[0];
    const Problem problem = problemOfName(file);
    if (problem.any()) return tell(problem);
    const FileKind kind = kindOf(file);
    const bool table = !arguments.type.empty();
    if (kind == FileKind::Index && (!table || isIndexName(file))) return infoIndex(file);
    if (kind == FileKind::Xbase && (!table || XbaseFileName(file))) return infoXbase(file);
    return table ? infoTable(file, arguments.type) : infoText(file, arguments);
}

}  // namespace tarn::datatool
