// SPDX-License-Identifier: Apache-2.0
//
// What an XML file is as a source: which elements are its rows, and its columns.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/run/errors.h"
#include "os/text/ascii.h"
#include "tarn_data/base/files.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/sources/layout.h"
#include "tarn_data/sources/load.h"
#include "tarn_data/sources/xmlcolumns.h"
#include "tarn_data/sources/xmlencoding.h"

#include <algorithm>
#include <map>

namespace tarn::datatool {

namespace {

// The structure, as far as it could be told. Rows that do not fit each other are no problem here: `fits` is
// false then, and their cells decide.
Problem findStructure(const Source& source, std::string& structure, bool& fits) {
    XmlReader reader;
    const XmlReadResult read = reader.discover(source.path, structure, MaxTypeInfo, XmlLengths::Long);
    if (read.stopped || stopSignal() != 0) return stoppedProblem();
    if (read.fileError != os::FileError::None) return unreadable(source.file, read.fileError);
    const ErrorRecord& error = read.error;
    fits = error.code == 0;
    if (error.code != 0 && error.code != ERR_XML_DATA) return xmlProblem(source.path, source.file, error);
    if (!structure.empty()) return {};
    return {fileWord(source.file) + "contains no XML data apart from the outermost element.",
            "Look whether it is the file that was meant."};
}

// Which element of the outermost is the first one; where there are others, they are no rows.
bool isEndOfRows(const TypeInfoElement& element, const XmlRows& rows) {
    return rows.depth == 3 && element.isEnd() && element.indent == 1;
}

// Lines of type information text by the names of the columns.
using Types = std::map<std::string, std::string>;

Types typesOf(const std::string& structure, const XmlRows& rows) {
    Types types;
    bool leaf = true;  // rows that are texts
    std::size_t at = 0;
    for (std::string_view rest = structure; !rest.empty(); rest = std::string_view(structure).substr(at)) {
        const std::string line(rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1));
        at += line.size();
        const TypeInfoElement element = TypeInfoParseLine(line, 1);
        if (isEndOfRows(element, rows)) break;
        if (element.isEnd()) continue;
        const std::string type = line.substr(static_cast<std::size_t>(element.indent));
        if (element.indent == rows.depth) leaf = false;
        if (element.indent == rows.depth || (leaf && element.indent == rows.depth - 1))
            types[element.name] = type;
    }
    return types;
}

// What is found of the file as a whole where its rows fit each other, else what is declared in it. The cells of
// other columns tell what they are.
std::string columnLines(const XmlColumns& columns, const Types& types) {
    std::string lines;
    for (std::size_t n = 0; n < columns.names.size(); ++n) {
        const auto type = types.find(columns.names[n]);
        if (type != types.end())
            lines += type->second;
        else
            lines += columns.names[n] + " : " + std::string(columns.texts[n] ? "string" : UnknownType) + "\n";
    }
    return lines;
}

// The columns of a single row are the attributes of its only element: that is a row of a list, then.
bool areAttributesOfOne(const XmlColumns& single, const XmlColumns& ofList) {
    if (single.names.empty() || single.names.size() != ofList.names.size()) return false;
    const std::size_t longer = single.names[0].size(), shorter = ofList.names[0].size();
    const std::string prefix = single.names[0].substr(0, longer - std::min(longer, shorter));
    bool are = prefix.size() > 1 && prefix.ends_with('_');
    for (std::size_t n = 0; n < single.names.size() && are; ++n)
        are = single.names[n] == prefix + ofList.names[n];
    return are;
}

// A list of one row looks like a row whose fields hold others.
Problem findColumns(Source& source, XmlColumns& columns) {
    Problem problem = findXmlColumns(source, columns);
    if (source.xmlRows.form != XmlRows::Form::Single || stopSignal() != 0) return problem;
    const XmlRows single = source.xmlRows;
    XmlColumns ofList;
    source.xmlRows = {XmlRows::Form::Rows, 2};
    const bool list = !findXmlColumns(source, ofList).any() && ofList.rows == 1;
    if (list && (problem.any() || areAttributesOfOne(columns, ofList))) {
        columns = std::move(ofList);
        return {};
    }
    source.xmlRows = single;
    return problem;
}

void noteLeftOut(const Source& source, const XmlColumns& columns) {
    for (const std::string& what : columns.leftOut)
        note("Left out of '" + shown(source.file) + "': " + what + ".");
}

// To a reader of XML a byte 26 is the end of the file.
Problem noteBehindEnd(const Source& source) {
    constexpr std::size_t blockBytes = std::size_t{256} * 1024;
    constexpr std::string_view endMark = "\x1A";
    FileRows file;
    std::string block;
    std::int64_t at = 0, mark = -1;
    bool more = false;
    if (!file.open(source.path)) return unreadable(source.file, file.error());
    for (; at < file.size() && !more; at += static_cast<std::int64_t>(block.size())) {
        if (!file.read(at, blockBytes, block) || block.empty()) return unreadable(source.file, file.error());
        std::size_t from = 0;
        if (mark < 0 && (from = block.find(endMark)) != std::string::npos)
            mark = at + static_cast<std::int64_t>(from);
        more = mark >= 0 &&
               block.find_first_not_of(std::string_view("\x1A\0 \t\r\n", 6), from) != std::string::npos;
    }
    if (more)
        note("Left out of '" + shown(source.file) + "': " + std::to_string(file.size() - mark - 1) +
             " bytes behind the mark of its end (the byte 1A at " + std::to_string(mark) + ").");
    return {};
}

}  // namespace

namespace {

// Whether the place stands in a tag, at a byte beyond ASCII.
bool isAtOtherLetter(const std::string& path, const ErrorRecord& error) {
    constexpr std::size_t blockBytes = std::size_t{256} * 1024;
    FileRows file;
    std::string line, block;
    std::int32_t number = 1;
    if (error.position < 1 || !file.open(path)) return false;
    for (std::int64_t at = 0; at < file.size() && number <= error.line;
         at += static_cast<std::int64_t>(block.size())) {
        if (!file.read(at, blockBytes, block) || block.empty()) return false;
        for (std::size_t from = 0; from < block.size() && number <= error.line;) {
            const std::size_t end = std::min(block.find('\n', from), block.size());
            if (number == error.line) line += block.substr(from, end - from);
            if (end < block.size()) ++number;
            from = end + 1;
        }
    }
    const auto place = static_cast<std::size_t>(error.position) - 1;
    if (place >= line.size() || static_cast<unsigned char>(line[place]) < 0x80) return false;
    const std::size_t open = line.rfind('<', place), close = line.rfind('>', place);
    return open != std::string::npos && (close == std::string::npos || close < open);
}

}  // namespace

Problem xmlProblem(const std::string& path, const std::string& shownFile, const ErrorRecord& error) {
    const std::string place = error.line == 0 ? std::string()
                                              : " (Line " + std::to_string(error.line) + ", Position " +
                                                    std::to_string(error.position) + ")";
    const bool letter = error.code == ERR_XML_NOT_WELL_FORMED && isAtOtherLetter(path, error);
    return {fileWord(shownFile) + "cannot be read: " + error.message + place,
            letter ? AdviceForXmlNames : "Correct the file at that place."};
}

Problem identifyXml(const Arguments& arguments, Source& source) {
    source.format = FormatXml;
    if (arguments.from.any())
        return {fileWord(source.file) + "is " + std::string(FactsOf(FormatXml).word) +
                    ", which has no separator, header, footer or row limit.",
                "Leave the options of delimited text away.", WrongUsage};
    std::string structure;
    bool fits = false;
    XmlColumns columns;
    Problem problem = takeXmlEncoding(source);
    if (!problem.any()) problem = findStructure(source, structure, fits);
    if (problem.any()) return problem;
    source.xmlRows = XmlRowsOf(structure);
    problem = findColumns(source, columns);
    if (problem.any()) return problem;
    source.columns = columnLines(columns, fits ? typesOf(structure, source.xmlRows) : Types());
    source.headings = columns.names;
    source.rowsSeen = static_cast<std::int32_t>(std::min<std::int64_t>(columns.rows, INT32_MAX));
    noteLeftOut(source, columns);
    return noteBehindEnd(source);
}

}  // namespace tarn::datatool
