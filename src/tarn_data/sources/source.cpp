// SPDX-License-Identifier: Apache-2.0
//
// What the file that is read is: its format, its columns, its layout.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml.h"
#include "kernel/run/errors.h"
#include "kernel/run/progress.h"
#include "library/data/dbutil.h"
#include "os/files.h"
#include "os/paths.h"
#include "tarn_data/base/files.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/sources/load.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

// What to do about a file that is none of the known forms.
std::string adviceFor(const std::string& beginning) {
    constexpr struct {
        std::string_view bytes, advice;
    } marks[] = {
        {"\xEF\xBB\xBF", "It begins with a byte order mark: take its first three bytes off."},
        {"\xFF\xFE", "It is UTF-16 text: convert it to UTF-8 without a byte order mark first."},
        {"\xFE\xFF", "It is UTF-16 text: convert it to UTF-8 without a byte order mark first."},
        {"\x1F\x8B", "It is compressed: unpack it first (gunzip)."},
        {"PK\3\4", "It is a zip archive or an office document: unpack it, or save it as csv, first."},
    };
    for (const auto& mark : marks) {
        if (beginning.starts_with(mark.bytes)) return std::string(mark.advice);
    }
    return "Known are files of the forms " + DataFormatNames("and") +
           "; --separator=C reads it as delimited text, --type=FILE as a table file.";
}

bool isTypeConflict(const std::string& message) {
    return message.starts_with("The type of element ");
}

Problem problemOfInfo(const std::string& file, const std::string& message) {
    const Problem problem = problemOfName(file);
    if (problem.any()) return {message, problem.next};
    if (os::sizeOf(os::native(file)) == 0)
        return {message, "It is empty; a data file has at least one line."};
    if (message.find("unknown file type") != std::string::npos)
        return {message, adviceFor(beginningOf(file))};
    if (message.find("locked") != std::string::npos)
        return {message, "Look whether you may read it, and whether another program has it open."};
    if (message.find("nested") != std::string::npos)
        return {message, "Only files of rows with simple columns can be handled."};
    if (message.find("(Line ") != std::string::npos)
        return {fileWord(file) + "cannot be read: " + message, "Correct the file at that place."};
    if (isTypeConflict(message))
        return {fileWord(file) + "has rows that do not fit each other: " + message,
                "--text takes every column as text."};
    return {message.find(file) == std::string::npos ? fileWord(file) + "cannot be read: " + message : message,
            "Look whether its rows are what the options say, and whether it holds any."};
}

// ---- layouts ----

// The layout that is given, and for the rest what the first two lines suggest.
DataOptions layoutOf(const std::string& file, const Layout& given) {
    const PossibleFileDetails likely = GETPOSSIBLEFILEDETAILS(file);
    const std::string separator = GETSEPARATOR(likely.separator);
    DataOptions options;
    options.separatorchar = given.separator.value_or(static_cast<unsigned char>(separator[0]));
    options.numheaderrows = given.headerRows.value_or(likely.headerRows[0] - '0');
    options.numfooterrows = given.footerRows.value_or(0);
    options.maxdatarows = given.maxRows.value_or(-1);
    return options;
}

Problem identifyLines(const Arguments& arguments, Source& source) {
    if (problemOfName(source.file).any() || os::sizeOf(os::native(source.file)) == 0)
        return problemOfInfo(source.file, fileWord(source.file) + "is invalid, does not exist or is empty.");
    source.format = FormatText;
    source.options = DefaultDataOptions(FormatText);
    source.options.numheaderrows = arguments.from.headerRows.value_or(0);
    source.options.numfooterrows = arguments.from.footerRows.value_or(0);
    source.options.maxdatarows = arguments.from.maxRows.value_or(-1);
    source.columns = "line : string\n";
    return {};
}

// The rows of text that does not begin like text of the known forms, but is said to be.
bool discoverAnyway(Source& source, DataFileInfo& info) {
    const std::string beginning = beginningOf(source.file);
    const bool otherForm = adviceFor(beginning)[0] == 'I';
    if (otherForm || beginning.find('\0') != std::string::npos) return false;
    TabStructure found = TabDiscover(source.file, source.options, MaxTypeInfo);
    TypeInfoStripOuter(found.typeText, MaxTypeInfo);
    info = {FormatTab, found.typeText, found.message, {}, source.options, found.rowsSeen, found.columnsSeen};
    info.rowBehind = found.rowBehind;
    return true;
}

Problem checkColumns(const Source& source, const DataFileInfo& info) {
    if (info.columnsSeen <= MaxTabColumns) return {};
    return {fileWord(source.file) + "has " + std::to_string(info.columnsSeen) + " columns; at most " +
                std::to_string(MaxTabColumns) + " can be handled.",
            IsDelimited(info.format)
                ? "Split it into files of fewer columns, or choose another separator with --separator."
                : "Split it into files of fewer columns."};
}

// A list of one record looks like a record of one field that is a record. Its columns are those of the row.
bool isOneRow(const std::string& file, DataFileInfo& info) {
    std::string text;
    if (info.format != FormatXml || !XmlRead(file, 0, nullptr, KindNone, &text, MaxTypeInfo).message.empty())
        return false;
    if (!TypeInfoIsPath(text, "/record/record") || TypeInfoCountElements(text, 1) != 1) return false;
    TypeInfoStripOuter(text, MaxTypeInfo);
    TypeInfoStripOuter(text, MaxTypeInfo);
    for (std::int32_t n = 1; n <= static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n'));
         ++n) {
        if (TypeInfoIndent(text, n) != 0) return false;
    }
    info.typeText = TypeInfoFixAny(text);
    info.columnsSeen = TypeInfoCountElements(info.typeText, 0);
    info.message.clear();
    info.xmlRows = {XmlRows::Form::Rows, 2};
    return true;
}

// Counts rows, and tells lists of values from lists of records.
Problem identifyXml(Source& source) {
    XmlOrder order = XmlCheckOrder(source.file, columnNames(source.columns), source.xmlRows);
    source.rowsSeen = order.rows;
    source.longest = std::move(order.longest);
    return {order.missing.empty() ? order.message : order.missing, order.advice};
}

// A cell without quotes ends at such a byte, and what stands behind it is not read.
void noteZeroBytes(const std::string& file) {
    constexpr std::size_t blockBytes = std::size_t{1} << 20;
    FileRows bytes;
    std::string block;
    if (!bytes.open(file)) return;
    Steps steps(bytes.size());
    for (std::int64_t at = 0; bytes.read(at, blockBytes, block) && !block.empty();) {
        if (block.find('\0') != std::string::npos)
            return note(fileWord(file) + "holds zero bytes. A cell without quotes ends at one.");
        at += static_cast<std::int64_t>(block.size());
        if (!steps.step(static_cast<std::int64_t>(block.size()))) return;
    }
}

Problem identifyOther(const Arguments& arguments, Source& source) {
    const DataFormat byName = DataFormatOf(source.file);
    source.options = layoutOf(source.file, arguments.from);
    DataFileInfo info = GetDataFileInfo(source.file, &source.options);
    const bool delimited = IsDelimited(byName) || arguments.from.separator;
    const bool unknown = info.message.find("is an unknown file type") != std::string::npos;
    if (unknown && !delimited && !arguments.type.empty()) return identifyTable(arguments, source);
    if (unknown && delimited && !discoverAnyway(source, info))
        return problemOfInfo(source.file, info.message);
    if (stopSignal() != 0) return stoppedProblem();
    const bool conflict = arguments.text && IsDelimited(info.format) && isTypeConflict(info.message);
    if (!conflict && !info.message.empty() && !isOneRow(source.file, info))
        return problemOfInfo(source.file, info.message);
    const Problem tooMany = checkColumns(source, info);
    if (tooMany.any()) return tooMany;
    if (IsDelimited(info.format)) noteZeroBytes(source.file);
    if (conflict) return identifyTexts(source, info);
    source.format = info.format;
    source.columns = info.typeText;
    source.xmlRows = info.xmlRows;
    if (IsDelimited(info.format)) {
        source.rowsSeen = info.rowsSeen;
        source.rowBehind = info.rowBehind;
        return {};
    }
    if (arguments.from.any())
        return {fileWord(source.file) + "is " + std::string(FactsOf(info.format).word) +
                    ", which has no separator, header, footer or row limit.",
                "Leave the options of delimited text away.", WrongUsage};
    return info.format == FormatXml ? identifyXml(source) : Problem();
}

}  // namespace

Problem identify(const std::string& file, const Arguments& arguments, bool isTable, Source& source) {
    source.file = file;
    source.text = arguments.text;
    source.deleted = arguments.deleted;
    const Work work("reading " + file);
    Problem problem = problemOfName(file);
    if (problem.any()) return problem;
    const FileKind kind = isTable ? FileKind::Other : kindOf(file);
    const bool table = DataFormatOf(file) == FormatBinary || isTableByIndex(file);
    if (isTable)
        problem = identifyTable(arguments, source);
    else if (kind == FileKind::Index)
        problem = {fileWord(file) + "is an index file, which holds no rows.",
                   "Give the table file that it belongs to; 'tarn-data info' tells which that is."};
    else if (kind == FileKind::Xbase)
        problem = identifyXbase(arguments, source);
    else if (table)
        problem = typeIsMissing(file);
    else if (DataFormatOf(file) == FormatText && !arguments.from.separator)
        problem = identifyLines(arguments, source);
    else
        problem = identifyOther(arguments, source);
    return !problem.any() && stopSignal() != 0 ? stoppedProblem() : problem;
}

// ---- columns ----

std::vector<std::string> columnNames(std::string_view columns) {
    std::vector<std::string> names;
    const auto lines = static_cast<std::int32_t>(std::count(columns.begin(), columns.end(), '\n'));
    for (std::int32_t n = 1; n <= lines; ++n) names.push_back(TypeInfoName(columns, n));
    return names;
}

namespace {

// A column of text of any length, for every line or for those of strings only.
std::string asTexts(std::string_view columns, bool all) {
    std::string text;
    const auto lines = static_cast<std::int32_t>(std::count(columns.begin(), columns.end(), '\n'));
    for (std::int32_t n = 1; n <= lines; ++n) {
        const TypeInfoElement element = TypeInfoParseLine(columns, n);
        const bool string = all || TypeInfoKind(element.typeName) == KindString;
        text += string ? element.name + " : string\n" : TypeInfoLine(columns, n);
    }
    return text;
}

}  // namespace

std::string textColumns(std::string_view columns) {
    return asTexts(columns, true);
}

std::string withoutLengths(std::string_view columns) {
    return asTexts(columns, false);
}

std::string declaration(const std::string& file, std::string_view columns) {
    const std::string name = fileIdentifier(paths::stem(file));
    std::string text(columns);
    TypeInfoChangeIndent(2, text, MaxTypeInfo + 2 * MaxFields);
    return name + " : table\n\tT" + name + " : record\n" + text + "\tend record\nend table\n";
}

std::string separatorName(std::int32_t separator) {
    if (separator == '\t') return "\\t";
    if (separator > ' ' && separator <= '~') return "'" + std::string(1, static_cast<char>(separator)) + "'";
    return "with the code " + std::to_string(separator);
}

}  // namespace tarn::datatool
