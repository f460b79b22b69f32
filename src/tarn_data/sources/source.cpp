// SPDX-License-Identifier: Apache-2.0
//
// What the file that is read is: its format, its columns, its layout.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/run/errors.h"
#include "kernel/run/progress.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "tarn_data/base/encoding.h"
#include "tarn_data/base/files.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/sources/layout.h"
#include "tarn_data/sources/load.h"

#include <algorithm>

namespace tarn::datatool {

Source::Source() = default;
Source::~Source() = default;

bool Source::wasChanged() const {
    const os::FileInfo now = os::infoOf(os::native(file));
    return now.size != seen.size || now.modified != seen.modified || now.inode != seen.inode ||
           now.device != seen.device;
}

namespace {

// What a file is that is none of the known forms, and what to do about it; nothing for what is not known at all.
std::string adviceForOther(const std::string& file, const std::string& beginning) {
    const EncodingFacts facts = encodingOfBeginning(beginning);
    if (facts.isWide())
        return "It is " + facts.wideName() +
               " text. Convert it first: " + iconvCommand(shown(file), facts.encoding);
    constexpr struct {
        std::string_view bytes, advice;
    } marks[] = {
        {"\x1F\x8B", "It is compressed: unpack it first (gunzip)."},
        {"PK\3\4", "It is a zip archive or an office document: unpack it, or save it as csv, first."},
    };
    for (const auto& mark : marks) {
        if (beginning.starts_with(mark.bytes)) return std::string(mark.advice);
    }
    return {};
}

std::string adviceForUnknown(const std::string& file) {
    const std::string beginning = beginningOf(file), advice = adviceForOther(file, beginning);
    if (!advice.empty()) return advice;
    const bool markup = beginning.size() > 1 && beginning[0] == '<';
    if (markup && static_cast<unsigned char>(beginning[1]) >= 0x80) return AdviceForXmlNames;
    return "Known are files of the forms " + DataFormatNames("and") +
           "; --separator=C reads it as delimited text, --type=FILE as a table file.";
}

Problem problemOfInfo(const std::string& file, DataFileFault fault, const std::string& message) {
    const Problem problem = problemOfName(file);
    if (problem.any()) return {message, problem.next};
    if (os::sizeOf(os::native(file)) == 0)
        return {message, "It is empty; a data file has at least one line."};
    switch (fault) {
    case DataFileFault::Unknown: return {message, adviceForUnknown(file)};
    case DataFileFault::Locked:
        return {message, "Look whether you may read it, and whether another program has it open."};
    case DataFileFault::Nothing:
        return {message, "Look whether its rows are what the options say, and whether it holds any."};
    default:
        return {fileWord(file) + "cannot be read: " + message,
                "Look whether its rows are what the options say, and whether it holds any."};
    }
}

// ---- delimited text ----

bool beginsAsXml(std::string_view bytes) {
    constexpr std::string_view marks = "_:!?";
    return bytes.size() >= 2 && bytes[0] == '<' &&
           (ascii::isLetter(bytes[1]) || marks.find(bytes[1]) != std::string_view::npos);
}

// Four bytes that text begins with, or fewer: letters, digits, and what stands between them.
bool beginsAsText(std::string_view bytes) {
    constexpr std::string_view marks = "\1\t \",-._\r\n";
    const std::string_view head = bytes.substr(0, 4);
    return !head.empty() && std::all_of(head.begin(), head.end(), [&](char c) {
        return ascii::isLetter(c) || ascii::isDigit(c) || marks.find(c) != std::string_view::npos;
    });
}

// What begins like text, is read by a separator that was told, or is called text and has no zero byte. Other forms
// are told by their beginning.
bool isDelimitedText(const Arguments& arguments, const Source& source, const std::string& beginning) {
    if (encodingOfBeginning(beginning).isWide()) return true;
    const std::string_view text = std::string_view(beginning).substr(static_cast<std::size_t>(source.begin));
    if (beginsAsText(text)) return true;
    if (text.empty() || !adviceForOther(source.file, beginning).empty()) return false;
    if (arguments.from.separator) return true;
    return IsDelimited(DataFormatOf(source.file)) && text.find('\0') == std::string_view::npos;
}

// Some programs end a text with the byte 1A, and fill the file up with it or with zeros. Looks for the first 1A behind
// the text, from the end: `mark` becomes its place, or the size of the file.
bool findEndMark(FileRows& file, std::int64_t begin, std::int64_t& mark) {
    constexpr std::int64_t blockBytes = 65536;
    constexpr std::string_view fill("\x1A\0", 2);
    std::string block;
    std::size_t text = 0;
    mark = file.size();
    for (std::int64_t at = file.size(); text == 0 && at > begin;) {
        const std::int64_t end = at;
        at = std::max(begin, end - blockBytes);
        if (!file.read(at, static_cast<std::size_t>(end - at), block)) return false;
        text = block.find_last_not_of(fill) + 1;
        const std::size_t found = block.find(fill[0], text);
        if (found != std::string::npos) mark = at + static_cast<std::int64_t>(found);
    }
    return true;
}

Problem leaveEndMark(Source& source) {
    FileRows file;
    std::int64_t mark = 0;
    if (!file.open(source.path) || !findEndMark(file, source.begin, mark))
        return unreadable(source.file, file.error());
    if (mark == file.size() || mark == source.begin) return {};
    source.endBytes = file.size() - mark;
    note(fileWord(source.file) + "ends with " + std::to_string(source.endBytes) +
         (source.endBytes == 1 ? " byte" : " bytes") + " that mark its end (1A) and are no text: left out.");
    return {};
}

// Text of UTF-16 and UTF-32 is read from a copy of UTF-8.
Problem takeEncoding(Source& source, const std::string& beginning) {
    const EncodingFacts facts = encodingOfBeginning(beginning);
    source.begin = static_cast<std::int64_t>(facts.markBytes);
    if (!facts.isWide()) return leaveEndMark(source);
    source.folder = std::make_unique<WorkFolder>();
    source.path = source.folder->path() + "/text";
    source.begin = 0;
    Problem problem;
    if (source.folder->error() != os::FileError::None)
        problem = {fileWord(source.file) + "is " + facts.wideName() +
                       " text, and there is no folder for a copy of it: " +
                       std::string(os::describe(source.folder->error())),
                   "Choose one with TMPDIR, or convert it first: " +
                       iconvCommand(shown(source.file), facts.encoding)};
    else
        problem = writeAsUtf8(source.file, facts, source.path);
    if (!problem.any())
        note(fileWord(source.file) + "is " + facts.wideName() +
             " text. It is read as UTF-8, and what is written is UTF-8.");
    return problem;
}

Problem identifyLines(const Arguments& arguments, Source& source) {
    if (problemOfName(source.file).any() || os::sizeOf(os::native(source.file)) == 0)
        return problemOfInfo(source.file, DataFileFault::Nothing,
                             fileWord(source.file) + "is invalid, does not exist or is empty.");
    source.format = FormatText;
    source.options = DefaultDataOptions(FormatText);
    source.options.numheaderrows = arguments.from.headerRows.value_or(0);
    source.options.numfooterrows = arguments.from.footerRows.value_or(0);
    source.options.maxdatarows = arguments.from.maxRows.value_or(-1);
    source.columns = "line : string\n";
    source.headings = {"line"};
    return takeEncoding(source, beginningOf(source.file));
}

Problem identifyDelimited(const Arguments& arguments, Source& source, const std::string& beginning) {
    source.format = FormatTab;
    Problem problem = takeEncoding(source, beginning);
    if (!problem.any()) problem = findLayout(arguments, source);
    source.format = source.options.separatorchar == ',' ? FormatComma : FormatTab;
    return problem;
}

// ---- other forms ----

// What is no file of rows.
Problem identifyOther(const Arguments& arguments, Source& source) {
    DataOptions options;
    options.maxdatarows = 0;
    const DataFileInfo info = GetDataFileInfo(source.file, &options);
    const bool unknown = info.fault == DataFileFault::Unknown;
    const bool delimited = IsDelimited(DataFormatOf(source.file)) || arguments.from.separator;
    if (unknown && !delimited && !arguments.type.empty()) return identifyTable(arguments, source);
    if (stopSignal() != 0) return stoppedProblem();
    if (info.message.empty())
        return problemOfInfo(source.file, DataFileFault::Unknown,
                             fileWord(source.file) + "is an unknown file type.");
    return problemOfInfo(source.file, info.fault, info.message);
}

Problem identifyText(const Arguments& arguments, Source& source) {
    const std::string beginning = beginningOf(source.file);
    source.begin = static_cast<std::int64_t>(encodingOfBeginning(beginning).markBytes);
    std::string start = beginning.substr(static_cast<std::size_t>(source.begin), 16);
    start.erase(std::remove(start.begin(), start.end(), '\0'), start.end());  // of wide characters, too
    if (beginsAsXml(start)) return identifyXml(arguments, source);
    if (!isDelimitedText(arguments, source, beginning)) return identifyOther(arguments, source);
    return identifyDelimited(arguments, source, beginning);
}

}  // namespace

Problem identify(const std::string& file, const Arguments& arguments, bool isTable, Source& source) {
    source.file = file;
    source.path = os::native(file);
    source.seen = os::infoOf(source.path);
    source.text = arguments.text;
    source.nulls = arguments.nulls;
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
        problem = identifyText(arguments, source);
    return !problem.any() && stopSignal() != 0 ? stoppedProblem() : problem;
}

// ---- columns ----

std::vector<std::string> lineNames(std::string_view columns) {
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
