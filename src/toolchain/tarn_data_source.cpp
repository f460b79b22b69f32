// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/progress.h"
#include "kernel/data/typeinfo.h"
#include "kernel/data/xml.h"
#include "kernel/errors.h"
#include "kernel/lists.h"
#include "kernel/records.h"
#include "kernel/runtime.h"
#include "kernel/strings.h"
#include "kernel/tables.h"
#include "library/dbutil.h"
#include "os/files.h"
#include "toolchain/tarn_data.h"

#include <algorithm>
#include <cstring>

namespace tarn::data {

namespace {

std::string fileWord(const std::string& file) {
    return "File '" + file + "' ";
}

Problem stoppedProblem() {
    return {"Stopped.", "No file was changed."};
}

// ---- what can be read at all ----

// The beginning of a file, as much as tells text from other things.
std::string beginningOf(const std::string& file) {
    constexpr std::size_t enough = 4096;
    std::string bytes(enough, '\0');
    std::size_t got = 0;
    os::Handle handle = -1;
    if (os::files().open(os::native(file), os::OpenMode::Read, 0, handle) != os::FileError::None) return {};
    const os::FileError error = os::files().read(handle, 0, bytes.data(), enough, got);
    os::files().close(handle);
    bytes.resize(error == os::FileError::None ? got : 0);
    return bytes;
}

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
    return "Known are delimited text (csv, tab), lines (txt) and XML; --separator=C reads it as delimited.";
}

bool isTypeConflict(const std::string& message) {
    return message.starts_with("The type of element ");
}

Problem problemOfInfo(const std::string& file, const std::string& message) {
    const os::FileInfo info = os::infoOf(file);
    if (!info.exists) return {message, "There is no such file: look at its name and folder."};
    if (info.folder) return {message, "It is a folder; give a file in it."};
    if (info.special) return {message, "It is no regular file: write its content to one first."};
    if (info.size == 0) return {message, "It is empty; a data file has at least one line."};
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

bool isDelimitedName(DataFormat format) {
    return format == FormatComma || format == FormatTab;
}

// The layout that is given, and for the rest what the first two lines suggest.
TabOptions layoutOf(const std::string& file, const Layout& given) {
    const PossibleFileDetails likely = GETPOSSIBLEFILEDETAILS(file);
    const std::string separator = GETSEPARATOR(likely.separator);
    TabOptions options;
    options.separatorchar = given.separator.value_or(static_cast<unsigned char>(separator[0]));
    options.numheaderrows = given.headerRows.value_or(likely.headerRows[0] - '0');
    options.numfooterrows = given.footerRows.value_or(0);
    options.maxdatarows = given.maxRows.value_or(-1);
    return options;
}

Problem identifyLines(const Arguments& arguments, Source& source) {
    const os::FileInfo info = os::infoOf(source.file);
    if (!info.exists || info.folder || info.special || info.size == 0)
        return problemOfInfo(source.file, fileWord(source.file) + "is invalid, does not exist or is empty.");
    source.format = FormatText;
    source.options = DefaultTabOptions(FormatText);
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
    return true;
}

Problem identifyDelimited(const DataFileInfo& info, Source& source) {
    source.rowsSeen = info.rowsSeen;
    if (info.columnsSeen <= MaxTabColumns) return {};
    return {fileWord(source.file) + "has " + std::to_string(info.columnsSeen) + " columns; at most " +
                std::to_string(MaxTabColumns) + " can be handled.",
            "Split it into files of fewer columns, or choose another separator with --separator."};
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
    info.message.clear();
    info.xmlRows = {XmlRows::Form::Rows, 2};
    return true;
}

// Counts rows, and looks whether their fields stand in the places of the columns.
Problem identifyXml(const Arguments& arguments, Source& source) {
    if (arguments.from.any())
        return {fileWord(source.file) + "is XML, which has no separator, header, footer or row limit.",
                "Leave the options of delimited text away.", WrongUsage};
    const XmlOrder order = XmlCheckOrder(source.file, columnNames(source.columns), source.xmlRows);
    source.rowsSeen = order.rows;
    return {order.message, order.advice};
}

// The columns of a file whose types do not fit each other, when they are to be text.
Problem identifyTexts(Source& source, const DataFileInfo& info);

}  // namespace

Problem identify(const std::string& file, const Arguments& arguments, Source& source) {
    source.file = file;
    const DataFormat byName = DataFormatOf(file);
    const bool isText = byName == FormatText && !arguments.from.separator;
    const Work work("reading " + file);
    // The opening of a pipe would wait for its writer.
    if (os::infoOf(file).special) return problemOfInfo(file, fileWord(file) + "cannot be read.");
    DataFileInfo info;
    if (isText) {
        const Problem problem = identifyLines(arguments, source);
        if (problem.any()) return problem;
    } else {
        source.options = layoutOf(file, arguments.from);
        info = GetDataFileInfo(file, &source.options);
        const bool delimited = isDelimitedName(byName) || arguments.from.separator;
        const bool unknown = info.message.find("is an unknown file type") != std::string::npos;
        if (unknown && delimited && !discoverAnyway(source, info)) return problemOfInfo(file, info.message);
        if (stopSignal() != 0) return stoppedProblem();
        const bool conflict = arguments.text && isDelimitedName(info.format) && isTypeConflict(info.message);
        if (conflict) return identifyTexts(source, info);
        if (!info.message.empty() && !isOneRow(file, info)) return problemOfInfo(file, info.message);
        source.format = info.format;
        source.columns = info.typeText;
        source.xmlRows = info.xmlRows;
        Problem problem;
        if (isDelimitedName(info.format)) problem = identifyDelimited(info, source);
        if (info.format == FormatXml) problem = identifyXml(arguments, source);
        if (problem.any()) return problem;
    }
    return stopSignal() != 0 ? stoppedProblem() : Problem();
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
std::string withoutLengths(std::string_view columns, bool all) {
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
    return withoutLengths(columns, true);
}

std::string declaration(const Source& source, std::string_view columns) {
    std::string name = source.file.substr(source.file.find_last_of("/\\") + 1);
    name = fileIdentifier(name.substr(0, name.rfind('.')));
    std::string text(columns);
    TypeInfoChangeIndent(2, text, MaxTypeInfo + 2 * MaxFields);
    return name + " : table\n\tT" + name + " : record\n" + text + "\tend record\nend table\n";
}

std::string separatorName(std::int32_t separator) {
    if (separator == '\t') return "\\t";
    if (separator > ' ' && separator <= '~') return "'" + std::string(1, static_cast<char>(separator)) + "'";
    return "with the code " + std::to_string(separator);
}

// ---- rows ----

namespace {

// An empty table without an index, so that every row is taken as it comes.
Problem makeTable(std::string_view columns, TableValue& table) {
    std::string text(withoutLengths(columns, false));
    const std::string fields = text;
    TypeInfoChangeIndent(1, text, MaxTypeInfo);
    text = "T : record\n" + text + "end record\n";
    RecordValue row;
    std::size_t position = 0;
    if (TypeInfoToValue(text, position, row.get()) == KindRecord) {
        table = TableValue();
        TableInit(table.get(), UNBOUNDED, row.get(), {}, fields, false);
    }
    const std::int32_t code = ErrorCell();
    ClearError();
    if (code == 0 && table.get()->tag != 0) return {};
    return {"The columns cannot be made: " + ErrorMessage(code != 0 ? code : std::int32_t{ERR_RECORD_TYPE}) +
                ".",
            "--text takes every column as text."};
}

std::string rowOf(const Source& source, std::int32_t row) {
    return fileWord(source.file) + "row " + std::to_string(row) + " ";
}
std::string placeOf(const Source& source, const TabResult& result) {
    if (result.line > 0) return fileWord(source.file) + "line " + std::to_string(result.line) + " ";
    return result.row > 0 ? rowOf(source, result.row) : fileWord(source.file);
}

Problem loadProblem(const Source& source, const TabResult& result, const std::string& message) {
    const std::string what = placeOf(source, result) +
                             "cannot be read: " + (message.empty() ? ErrorMessage(result.code) : message) +
                             ".";
    switch (result.code) {
    case ERR_BLOCK_TOO_LARGE:
    case ERR_OUT_OF_MEMORY:
        return {what, "The file has more rows than a value in memory holds; split it, or take the first ones "
                      "with --max-rows."};
    case ERR_STRING_CONVERSION:
        return {what, "The row is longer than " + std::to_string(MaxTabLine) + " characters."};
    case ERR_FILE_READ:
    case ERR_FILE_VANISHED: return {what, "Look whether you may read it and whether it is still there."};
    default: return {what, "Correct the file, or take every column as text with --text."};
    }
}

Problem load(const Source& source, const TabOptions& options, TableValue& table, TabResult& result) {
    const Work work("reading " + source.file);
    std::string message;
    // Lines, too, go by the options here.
    const DataFormat format = source.format == FormatText ? FormatTab : source.format;
    result = LoadRows(source.file, format, options, source.xmlRows.form, table.get(), message);
    ClearError();
    if (result.stopped || stopSignal() != 0) return stoppedProblem();
    return result.code == 0 ? Problem() : loadProblem(source, result, message);
}

bool isBlank(const RecordDescriptor* row) {
    for (std::int32_t n = 1; n <= FieldCountOf(row->kinds); ++n) {
        if (StringLength(static_cast<const StringDescriptor*>(RecordFieldAddress(row, n))) > 0) return false;
    }
    return true;
}

// The columns were found in the rows up to the first empty line. Rows with content behind it would be read by
// columns that do not know them.
Problem checkEmptyLine(const Source& source, std::string_view columns) {
    TableValue texts;
    TabResult result;
    Problem problem = makeTable(textColumns(columns), texts);
    if (!problem.any()) problem = load(source, source.options, texts, result);
    if (problem.any()) return problem;
    const ListDescriptor* const rows = TableRows(texts.get());
    for (std::int32_t i = source.rowsSeen + 1; i <= rows->count; ++i) {
        if (isBlank(static_cast<const RecordDescriptor*>(ListRef(rows, i)))) continue;
        return {rowOf(source, source.rowsSeen + 1) + "is empty, and row " + std::to_string(i) + " is not.",
                "Take the empty line out, or leave what follows it with --max-rows=" +
                    std::to_string(source.rowsSeen) + " or --footer-rows."};
    }
    return {};
}

Problem loadDelimited(const Source& source, std::string_view columns, TableValue& table) {
    TabResult result;
    TabOptions options = source.options;
    const bool seen = source.rowsSeen >= 0;
    Problem problem;
    if (!seen) return load(source, options, table, result);
    const auto more =
        options.maxdatarows < 0 ? source.rowsSeen + 1 : std::min(options.maxdatarows, source.rowsSeen + 1);
    options.maxdatarows = more;
    problem = load(source, options, table, result);
    const bool further = result.row > source.rowsSeen || result.rows > source.rowsSeen;
    if (!further) return problem;
    problem = checkEmptyLine(source, columns);
    options.maxdatarows = source.rowsSeen;
    return problem.any() ? problem : load(source, options, table, result);
}

Problem identifyTexts(Source& source, const DataFileInfo& info) {
    TabOptions header = source.options;
    header.maxdatarows = 0;
    std::string names = TabDiscover(source.file, header, MaxTypeInfo).typeText, all;
    TypeInfoStripOuter(names, MaxTypeInfo);
    const std::size_t named = columnNames(names).size();
    for (std::size_t n = 1; n <= std::size_t{MaxTabColumns}; ++n)
        all += n <= named ? TypeInfoLine(names, static_cast<std::int32_t>(n))
                          : "FIELD" + std::to_string(n) + " : string\n";
    source.format = info.format;
    source.columns = textColumns(all);
    TableValue table;
    TabResult result;
    Problem problem = makeTable(source.columns, table);
    if (!problem.any()) problem = load(source, source.options, table, result);
    if (problem.any()) return problem;
    std::size_t used = named;
    const ListDescriptor* const rows = TableRows(table.get());
    for (std::int32_t i = 1; i <= rows->count; ++i) {
        const auto* const row = static_cast<const RecordDescriptor*>(ListRef(rows, i));
        if (isBlank(row)) continue;
        source.rowsSeen = i;
        for (std::size_t n = used + 1; n <= std::size_t{MaxTabColumns}; ++n) {
            const void* const cell = RecordFieldAddress(row, static_cast<std::int32_t>(n));
            if (StringLength(static_cast<const StringDescriptor*>(cell)) > 0) used = n;
        }
    }
    std::size_t end = 0;
    for (std::size_t n = 0; n < used; ++n) end = source.columns.find('\n', end) + 1;
    source.columns.resize(end);
    return {};
}

}  // namespace

Problem loadRows(const Source& source, std::string_view columns, TableValue& table) {
    Problem problem = makeTable(columns, table);
    if (problem.any()) return problem;
    if (isDelimitedName(source.format)) return loadDelimited(source, columns, table);
    TabResult result;
    return load(source, source.options, table, result);
}

}  // namespace tarn::data
