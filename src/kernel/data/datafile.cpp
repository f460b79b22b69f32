// SPDX-License-Identifier: Apache-2.0
//
// What a file is, is told by its first four bytes, and then by its content: by the table of formats.h. The
// messages say what the user can do about it.
#include "kernel/data/datafile.h"

#include "kernel/data/formats.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/rowformat.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/tables/table_access.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <new>

namespace tarn {

namespace {

constexpr std::int32_t longestName = 40;
constexpr const char* noInformation = "Data File information cannot be obtained";

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
    start.resize(ByteOrderMark.size() + FormatHeadBytes);
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

std::string hexPairs(std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < FormatHeadBytes; ++i) {
        const unsigned byte = i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
        if (i > 0) text += ' ';
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

std::string_view withoutMark(std::string_view start, const DataOptions* options) {
    const bool skipped = options != nullptr && options->skipMark && start.starts_with(ByteOrderMark);
    return skipped ? start.substr(ByteOrderMark.size()) : start;
}

void readFile(const std::string& filename, const DataOptions* options, DataFileInfo& info) {
    std::string start;
    const os::FileError error = readStart(filename, start);
    const std::string_view head = std::string_view(start).substr(0, FormatHeadBytes);
    const bool nothing = std::all_of(head.begin(), head.end(), [](char c) { return c == '\0'; });
    if (isLocked(error)) {
        info.fault = DataFileFault::Locked;
        info.message =
            FileWord(filename) + "cannot be opened, it is currently locked by another application.";
    } else if (error != os::FileError::None || nothing) {
        info.fault = DataFileFault::Nothing;
        info.message = FileWord(filename) + "is invalid, does not exist or is empty.";
    } else if (const FormatRow* const format = FormatThatBegins(withoutMark(start, options));
               format != nullptr) {
        info.format = format->facts.format;
        format->describe(filename, options, info);
    } else {
        info.fault = DataFileFault::Unknown;
        info.message =
            FileWord(filename) + "is an unknown file type (first four bytes = " + hexPairs(head) + ").";
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
    if (!info.message.empty() && info.fault == DataFileFault::None) info.fault = DataFileFault::Content;
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
        info.fault = DataFileFault::Content;
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

}  // namespace

DataResult LoadValue(const std::string& filename, DataFormat format, const DataOptions& options, void* value,
                     Kind kind, std::string& message) {
    message.clear();
    const FormatRow* const row = RowOf(format);
    if (row == nullptr) return {ERR_COMPONENT_UNREPRESENTABLE};
    return row->load({filename, options, value, kind, message});
}

DataResult LoadRows(const std::string& filename, DataFormat format, const DataOptions& options,
                    XmlRows::Form form, TableDescriptor* table, std::string& message) {
    message.clear();
    const FormatRow* const row = RowOf(format);
    if (row == nullptr) return {ERR_COMPONENT_UNREPRESENTABLE};
    return row->load({filename, options, table, KindTable, message, &form});
}

TextMisfit FindMisfit(DataFormat format, const DataOptions& options, std::string_view text,
                      std::size_t from) {
    const FormatRow* const row = RowOf(format);
    return row != nullptr && row->misfit != nullptr ? row->misfit(options, text, from) : TextMisfit{};
}

DataResult SaveValue(const std::string& filename, DataFormat format, const DataOptions& options,
                     std::int32_t flags, const void* value, Kind kind, std::string_view names) {
    if (ruinsItsRows(filename, format, value, kind)) return {ERR_FILE_WRITE};
    const FormatRow* const row = RowOf(format);
    if (row == nullptr) return {ERR_COMPONENT_UNREPRESENTABLE};
    return row->save({filename, options, flags, value, kind, names});
}

}  // namespace tarn
