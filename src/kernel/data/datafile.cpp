// SPDX-License-Identifier: Apache-2.0
//
// What a file is, is told by its first four bytes, and then by its content. The messages say what the user
// can do about it.
#include "kernel/data/datafile.h"

#include "kernel/data/datafile_binary.h"
#include "kernel/data/tab/tab_rows.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xbase/xbase.h"
#include "kernel/data/xml/xml.h"
#include "kernel/index/index_file.h"
#include "kernel/lists/rowformat.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/tables/table_access.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <new>

namespace tarn {

namespace {

constexpr std::size_t headBytes = 4;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";  // of UTF-8
constexpr std::int32_t rowsWithoutOptions = 100;
constexpr std::int32_t longestName = 40;
constexpr const char* noInformation = "Data File information cannot be obtained";

std::string fileWord(const std::string& filename) {
    return "File '" + filename + "' ";
}

// ---- the first bytes ----

// The bytes that are there, at most four behind a byte order mark; the failure of the reading.
os::FileError readStart(const std::string& filename, std::string& start) {
    const std::string path = os::native(filename);
    os::FileInfo info;
    os::FileError error = os::files().info(path, info);
    if (error == os::FileError::None && !info.exists) error = os::FileError::NotFound;
    if (error == os::FileError::None && (info.folder || info.special)) error = os::FileError::IsFolder;
    os::Handle handle = -1;
    if (error == os::FileError::None) error = os::files().open(path, os::OpenMode::Read, 0, handle);
    if (error != os::FileError::None) return error;
    start.resize(byteOrderMark.size() + headBytes);
    std::size_t got = 0;
    error = os::files().read(handle, 0, start.data(), start.size(), got);
    os::files().close(handle);
    start.resize(got);
    return error;
}

// The file is there, and this program may not read it.
bool isLocked(os::FileError error) {
    return error == os::FileError::Denied || error == os::FileError::ReadFailed;
}

bool looksLikeXml(std::string_view start) {
    constexpr std::string_view marks = "_:!?";
    if (start.starts_with(byteOrderMark)) start.remove_prefix(byteOrderMark.size());
    return start.size() >= 2 && start[0] == '<' &&
           (ascii::isLetter(start[1]) || marks.find(start[1]) != std::string_view::npos);
}

bool looksLikeXbase(std::string_view head) {
    if (head.size() < headBytes) return false;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(head[i]); };
    constexpr unsigned char versions[] = {3, 4, 5, 48, 131, 139};
    return std::find(std::begin(versions), std::end(versions), byte(0)) != std::end(versions) &&
           byte(2) >= 1 && byte(2) <= 12 && byte(3) >= 1 && byte(3) <= 31;
}

// A first line of fewer than four characters ends within them.
bool looksLikeText(std::string_view head) {
    constexpr std::string_view marks = "\1\t \",-._";
    const auto isText = [&](char c) {
        return ascii::isLetter(c) || ascii::isDigit(c) || marks.find(c) != std::string_view::npos;
    };
    const auto isTextOrLineEnd = [&](char c) { return isText(c) || c == '\n' || c == '\r'; };
    return !head.empty() && isText(head[0]) && std::all_of(head.begin(), head.end(), isTextOrLineEnd);
}

std::string hexPairs(std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < headBytes; ++i) {
        const unsigned byte = i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
        if (i > 0) text += ' ';
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

// ---- the kinds of file ----

std::string placeOf(const ErrorRecord& error) {
    if (error.line == 0) return {};
    return " (Line " + std::to_string(error.line) + ", Position " + std::to_string(error.position) + ")";
}

void readXml(const std::string& filename, DataFileInfo& info) {
    const XmlStructure found = XmlDiscover(filename, MaxTypeInfo);
    const ErrorRecord& error = found.error;
    info.stopped = found.stopped;
    info.typeText = TypeInfoFixAny(found.typeText);
    info.xmlRows = XmlRowsOf(found.typeText);
    if (!error.message.empty())
        info.message = error.message + placeOf(error);
    else if (info.typeText.empty())
        info.message = fileWord(filename) + "contains no XML data apart from the outermost element.";
    if (!TypeInfoIsPath(info.typeText, "/record/list/record") &&
        !TypeInfoIsPath(info.typeText, "/record/table/record"))
        return;
    TypeInfoDeleteLine(info.typeText, 1);
    const std::size_t lastLine = info.typeText.find_last_of('\n', info.typeText.size() - 2);
    info.typeText.resize(lastLine == std::string::npos ? 0 : lastLine + 1);
    TypeInfoChangeIndent(-1, info.typeText, MaxTypeInfo);
}

void readText(const std::string& filename, const DataOptions* options, DataFileInfo& info) {
    DataOptions firstLine;
    firstLine.numheaderrows = 0;
    firstLine.separatorchar = NoTabSeparator;
    TabReader reader;
    std::string_view line;
    const bool comma = reader.open(filename, firstLine) == 0 && reader.next(line) &&
                       line.find(',') != std::string_view::npos;
    info.format = comma ? FormatComma : FormatTab;
    info.options = options != nullptr ? *options : DefaultDataOptions(info.format);
    if (options == nullptr) info.options.maxdatarows = rowsWithoutOptions;
    TabStructure found = TabDiscover(filename, info.options, MaxTypeInfo);
    info.typeText = std::move(found.typeText);
    info.message = std::move(found.message);
    info.stopped = found.stopped;
    info.rowsSeen = found.rowsSeen;
    info.columnsSeen = found.columnsSeen;
    info.rowBehind = found.rowBehind;
}

void readXbase(const std::string& filename, DataFileInfo& info) {
    info.format = FormatXbase;
    info.typeText = XbaseTypeInfo(filename, info.message);
}

// The size of its header, which an index file begins with.
bool looksLikeIndex(std::string_view head) {
    static_assert(IndexHeaderBytes == 0x450);
    return head == std::string_view("\0\0\x04\x50", headBytes);
}

// The description that a file of the system's own tables holds; only index files have one.
void readTableFile(const std::string& filename, DataFileInfo& info) {
    constexpr std::int64_t textOffset = 49;
    info.format = FormatBinary;
    TabFile file;
    if (file.open(filename) != 0 || file.size() < IndexHeaderBytes) return;
    std::string text(MaxIndexText + 1, '\0');
    if (file.read(textOffset, text.data(), text.size()) != 0) return;
    const std::size_t end = text.find('\0');
    if (end == std::string::npos) return;
    text.resize(end);
    const auto isText = [](char c) { return c == '\n' || c == '\t' || (c >= ' ' && c <= '~'); };
    if (!std::all_of(text.begin(), text.end(), isText)) return;
    info.typeText = std::move(text);
    if (!info.typeText.empty() && info.typeText.back() != '\n') info.typeText += '\n';
}

void readFile(const std::string& filename, const DataOptions* options, DataFileInfo& info) {
    std::string start;
    const os::FileError error = readStart(filename, start);
    const std::string_view head = std::string_view(start).substr(0, headBytes);
    const bool nothing = std::all_of(head.begin(), head.end(), [](char c) { return c == '\0'; });
    if (isLocked(error)) {
        info.message =
            fileWord(filename) + "cannot be opened, it is currently locked by another application.";
    } else if (error != os::FileError::None || nothing) {
        info.message = fileWord(filename) + "is invalid, does not exist or is empty.";
    } else if (looksLikeXml(start)) {
        info.format = FormatXml;
        readXml(filename, info);
    } else if (looksLikeXbase(head)) {
        readXbase(filename, info);
    } else if (looksLikeText(head)) {
        readText(filename, options, info);
    } else if (looksLikeIndex(head)) {
        readTableFile(filename, info);
    } else {
        info.message =
            fileWord(filename) + "is an unknown file type (first four bytes = " + hexPairs(head) + ").";
    }
}

// ---- the columns ----

std::string nestedColumn(std::string_view text) {
    const auto lines = static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n'));
    for (std::int32_t n = 1, column = 0; n <= lines; ++n) {
        const TypeInfoElement element = TypeInfoParseLine(text, n);
        if (element.indent != 0 || TypeInfoIsClosing(text, n)) continue;
        ++column;
        if (!TypeInfoIsNested(element)) continue;
        return "Column number " + std::to_string(column) + " \"" + element.name +
               "\" contains a nested record - columns cannot contain nested data";
    }
    return {};
}

std::string asTable(std::string_view columns) {
    std::string text(columns);
    TypeInfoChangeIndent(2, text, MaxTypeInfo);
    return "T : table\n\tT : record\n" + text + "\tend record\nend table\n";
}

DataFileInfo identify(const std::string& filename, const DataOptions* options) {
    DataFileInfo info;
    readFile(filename, options, info);
    if (info.stopped) {
        info.typeText.clear();
        info.message.clear();
        return info;
    }
    if (info.message.empty()) {
        TypeInfoStripOuter(info.typeText, MaxTypeInfo);
        info.message = nestedColumn(info.typeText);
        if (info.typeText.empty()) info.message = noInformation;
        if (info.columnsSeen == 0) info.columnsSeen = TypeInfoCountElements(info.typeText, 0);
    }
    if (info.message.empty())
        info.keys = TypeInfoFieldList(asTable(TypeInfoFixNames(info.typeText, longestName))).keys.names;
    else
        info.typeText.clear();
    return info;
}

}  // namespace

DataFileInfo GetDataFileInfo(const std::string& filename, const DataOptions* options) {
    const ErrorCellAside aside;
    try {
        return identify(filename, options);
    } catch (const std::bad_alloc&) {
        DataFileInfo info;
        info.message = noInformation;
        return info;
    }
}

void GetDataFileInfo(const StringDescriptor* filename, const RecordDescriptor* options,
                     StringDescriptor* optionsOut, StringDescriptor* typeText, StringDescriptor* message) {
    for (const StringDescriptor* s :
         {filename, const_cast<const StringDescriptor*>(optionsOut),
          const_cast<const StringDescriptor*>(typeText), const_cast<const StringDescriptor*>(message)}) {
        if (!IsWellFormed(s) || KindOf(s) != KindString) return;
    }
    const bool given = options != nullptr && options->data != 0;
    const DataOptions read = DataOptionsOf(options, FormatComma);
    const DataFileInfo info =
        GetDataFileInfo(std::string(NarrowText(filename).view()), given ? &read : nullptr);
    StringAssignView(optionsOut, info.keys);
    StringAssignView(typeText, info.typeText);
    StringAssignView(message, info.stopped ? noInformation : info.message);
}

// ---- whole values ----

namespace {

// The rows of an open list or table in a file; null for another value.
const ListDescriptor* openRows(const void* value, Kind kind) {
    if (kind == KindTable)
        value = IsTable(static_cast<const TableDescriptor*>(value))
                    ? &HeaderOf(*static_cast<const TableDescriptor*>(value)).rows
                    : nullptr;
    else if (kind != KindList)
        return nullptr;
    const auto* const rows = static_cast<const ListDescriptor*>(value);
    return IsList(rows) && IsHeldInFile(*rows) && !RowFileName(*rows).empty() ? rows : nullptr;
}

bool isFormatOf(const ListDescriptor& rows, DataFormat format) {
    const RowFormat own = RowFormatOf(RowFileName(rows), rows.maxlength);
    return (own == RowsPlain && format == FormatBinary) || (own == RowsXbase && format == FormatXbase);
}

// Whether the value's own rows would be written over by another kind of file.
bool ruinsItsRows(const std::string& filename, DataFormat format, const void* value, Kind kind) {
    const ListDescriptor* const rows = openRows(value, kind);
    if (rows == nullptr || isFormatOf(*rows, format)) return false;
    const os::FileInfo file = os::infoOf(os::native(filename));
    const os::FileInfo own = os::infoOf(std::string(RowFileName(*rows)));
    return file.exists && own.exists && file.device == own.device && file.inode == own.inode;
}

DataResult fromXml(const XmlResult& xml, std::string& message) {
    message = xml.error.message;
    DataResult result;
    result.code = xml.error.code;
    result.line = xml.error.line;
    result.rows = xml.count;
    result.stopped = xml.stopped;
    result.rescueCopy = xml.rescueCopy;
    return result;
}

}  // namespace

DataResult LoadValue(const std::string& filename, DataFormat format, const DataOptions& options, void* value,
                     Kind kind, std::string& message) {
    message.clear();
    DataOptions lines = options;
    switch (format) {
    case FormatText: lines = DefaultDataOptions(FormatText); [[fallthrough]];
    case FormatComma:
    case FormatTab: return TabLoad(filename, lines, value, kind);
    case FormatBinary: return BinaryLoad(filename, value, kind);
    case FormatXbase: return XbaseLoad(filename, value, kind, message, options.maxdatarows);
    case FormatXml: return fromXml(XmlLoad(filename, value, kind), message);
    default: return {ERR_COMPONENT_UNREPRESENTABLE};
    }
}

DataResult LoadRows(const std::string& filename, DataFormat format, const DataOptions& options,
                    XmlRows::Form form, TableDescriptor* table, std::string& message) {
    if (format == FormatXml) return fromXml(XmlLoadRows(filename, form, table), message);
    return LoadValue(filename, format, options, table, KindTable, message);
}

DataResult SaveValue(const std::string& filename, DataFormat format, const DataOptions& options,
                     std::int32_t flags, const void* value, Kind kind, std::string_view names) {
    DataOptions lines = options;
    if (ruinsItsRows(filename, format, value, kind)) return {ERR_FILE_WRITE};
    switch (format) {
    case FormatText: lines = DefaultDataOptions(FormatText); [[fallthrough]];
    case FormatComma:
    case FormatTab: return TabSave(filename, lines, value, kind, names);
    case FormatBinary: return BinarySave(filename, value, kind);
    case FormatXbase: return XbaseSave(filename, value, kind, names);
    case FormatXml: {
        const XmlResult saved = XmlSave(filename, flags, value, kind, names);
        std::string message;
        DataResult result = fromXml(saved, message);
        result.message = std::move(message);
        return result;
    }
    default: return {ERR_COMPONENT_UNREPRESENTABLE};
    }
}

}  // namespace tarn
