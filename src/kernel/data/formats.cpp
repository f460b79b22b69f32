// SPDX-License-Identifier: Apache-2.0
//
// The table of formats stands at the end, behind what its rows name: how a file begins, what is in it, load,
// save, and what texts fit.
#include "kernel/data/formats.h"

#include "kernel/data/datafile_binary.h"
#include "kernel/data/tab/tab_rows.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xbase/xbase.h"
#include "kernel/data/xml/xml.h"
#include "kernel/index/index_file.h"
#include "os/paths.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tarn {

namespace {

constexpr std::int32_t rowsWithoutOptions = 100;

// ---- how files begin ----

bool beginsXml(std::string_view start) {
    constexpr std::string_view marks = "_:!?";
    if (start.starts_with(ByteOrderMark)) start.remove_prefix(ByteOrderMark.size());
    return start.size() >= 2 && start[0] == '<' &&
           (ascii::isLetter(start[1]) || marks.find(start[1]) != std::string_view::npos);
}

bool beginsXbase(std::string_view start) {
    const std::string_view head = start.substr(0, FormatHeadBytes);
    if (head.size() < FormatHeadBytes) return false;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(head[i]); };
    constexpr unsigned char versions[] = {3, 4, 5, 48, 131, 139};
    return std::find(std::begin(versions), std::end(versions), byte(0)) != std::end(versions) &&
           byte(2) >= 1 && byte(2) <= 12 && byte(3) >= 1 && byte(3) <= 31;
}

// A first line of fewer than four characters ends within them.
bool beginsText(std::string_view start) {
    const std::string_view head = start.substr(0, FormatHeadBytes);
    constexpr std::string_view marks = "\1\t \",-._";
    const auto isText = [&](char c) {
        return ascii::isLetter(c) || ascii::isDigit(c) || marks.find(c) != std::string_view::npos;
    };
    const auto isTextOrLineEnd = [&](char c) { return isText(c) || c == '\n' || c == '\r'; };
    return !head.empty() && isText(head[0]) && std::all_of(head.begin(), head.end(), isTextOrLineEnd);
}

// The size of its header, which an index file begins with.
bool beginsIndex(std::string_view start) {
    const std::string_view head = start.substr(0, FormatHeadBytes);
    static_assert(IndexHeaderBytes == 0x450);
    return head == std::string_view("\0\0\x04\x50", FormatHeadBytes);
}

// ---- what is in them ----

std::string placeOf(const ErrorRecord& error) {
    if (error.line == 0) return {};
    return " (Line " + std::to_string(error.line) + ", Position " + std::to_string(error.position) + ")";
}

void describeXml(const std::string& filename, const DataOptions*, DataFileInfo& info) {
    const XmlStructure found = XmlDiscover(filename, MaxTypeInfo);
    const ErrorRecord& error = found.error;
    info.stopped = found.stopped;
    info.typeText = TypeInfoFixAny(found.typeText);
    info.xmlRows = XmlRowsOf(found.typeText);
    if (!error.message.empty())
        info.message = error.message + placeOf(error);
    else if (info.typeText.empty())
        info.message = FileWord(filename) + "contains no XML data apart from the outermost element.";
    if (!TypeInfoIsPath(info.typeText, "/record/list/record") &&
        !TypeInfoIsPath(info.typeText, "/record/table/record"))
        return;
    TypeInfoDeleteLine(info.typeText, 1);
    const std::size_t lastLine = info.typeText.find_last_of('\n', info.typeText.size() - 2);
    info.typeText.resize(lastLine == std::string::npos ? 0 : lastLine + 1);
    TypeInfoChangeIndent(-1, info.typeText, MaxTypeInfo);
}

void describeText(const std::string& filename, const DataOptions* options, DataFileInfo& info) {
    DataOptions firstLine;
    firstLine.numheaderrows = 0;
    firstLine.separatorchar = NoTabSeparator;
    firstLine.skipMark = options != nullptr && options->skipMark;
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
}

void describeXbase(const std::string& filename, const DataOptions*, DataFileInfo& info) {
    info.typeText = XbaseTypeInfo(filename, info.message);
}

// The description that a file of the system's own tables holds; only index files have one.
void describeTableFile(const std::string& filename, const DataOptions*, DataFileInfo& info) {
    TabFile file;
    std::string header(IndexHeaderBytes, '\0');
    if (file.open(filename) != 0 || file.size() < IndexHeaderBytes) return;
    if (file.read(0, header.data(), header.size()) != 0) return;
    const std::string_view place = TextsOfIndexHeader(header).keyText;
    const std::size_t end = place.find('\0');
    if (end == std::string_view::npos) return;
    std::string text(place.substr(0, end));
    const auto isText = [](char c) { return c == '\n' || c == '\t' || (c >= ' ' && c <= '~'); };
    if (!std::all_of(text.begin(), text.end(), isText)) return;
    info.typeText = std::move(text);
    if (!info.typeText.empty() && info.typeText.back() != '\n') info.typeText += '\n';
}

// ---- load and save ----

DataResult loadDelimited(const LoadRequest& r) {
    return TabLoad(r.filename, r.options, r.value, r.kind);
}
DataResult saveDelimited(const SaveRequest& r) {
    return TabSave(r.filename, r.options, r.value, r.kind, r.names);
}

// Lines have no options.
DataResult loadLines(const LoadRequest& r) {
    return TabLoad(r.filename, DefaultDataOptions(FormatText), r.value, r.kind);
}
DataResult saveLines(const SaveRequest& r) {
    return TabSave(r.filename, DefaultDataOptions(FormatText), r.value, r.kind, r.names);
}

DataResult loadBinary(const LoadRequest& r) {
    return BinaryLoad(r.filename, r.value, r.kind);
}
DataResult saveBinary(const SaveRequest& r) {
    return BinarySave(r.filename, r.value, r.kind);
}

DataResult loadXbase(const LoadRequest& r) {
    return XbaseLoad(r.filename, r.value, r.kind, r.message, r.options.maxdatarows);
}
DataResult saveXbase(const SaveRequest& r) {
    return XbaseSave(r.filename, r.value, r.kind, r.names);
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

DataResult loadXml(const LoadRequest& r) {
    if (r.rows != nullptr)
        return fromXml(XmlLoadRows(r.filename, *r.rows, static_cast<TableDescriptor*>(r.value)), r.message);
    return fromXml(XmlLoad(r.filename, r.value, r.kind), r.message);
}
DataResult saveXml(const SaveRequest& r) {
    std::string message;
    DataResult result = fromXml(XmlSave(r.filename, r.flags, r.value, r.kind, r.names), message);
    result.message = std::move(message);
    return result;
}

// ---- what texts fit ----

TextMisfit misfitOfCell(const DataOptions& options, std::string_view text, std::size_t from) {
    return MisfitOfCell(text, from, static_cast<char>(options.separatorchar));
}
TextMisfit misfitOfLine(const DataOptions&, std::string_view text, std::size_t from) {
    return MisfitOfLine(text, from);
}
TextMisfit misfitOfXml(const DataOptions&, std::string_view text, std::size_t from) {
    return MisfitOfXml(text, from);
}
TextMisfit misfitOfXbase(const DataOptions&, std::string_view text, std::size_t from) {
    return MisfitOfXbase(text, from);
}

// ---- the table ----

constexpr DataOptions lines{0, 0, NoTabSeparator, -1}, commas{}, tabs{2, 0, '\t', -1};

// In the order in which files are looked at, and in which lists name the formats. Whether delimited text has
// commas or tabs is told by its description.
constexpr FormatRow formats[] = {
    {{FormatXml, "XML", {".xml"}, RowForm::Marked, false, commas},
     beginsXml,
     describeXml,
     loadXml,
     saveXml,
     misfitOfXml},
    {{FormatXbase, "an Xbase file", {".dbf", ".xbf"}, RowForm::Records, false, commas},
     beginsXbase,
     describeXbase,
     loadXbase,
     saveXbase,
     misfitOfXbase},
    {{FormatComma, "delimited text", {".csv"}, RowForm::Cells, false, commas},
     beginsText,
     describeText,
     loadDelimited,
     saveDelimited,
     misfitOfCell},
    {{FormatTab, "delimited text", {".tab"}, RowForm::Cells, false, tabs},
     nullptr,
     describeText,
     loadDelimited,
     saveDelimited,
     misfitOfCell},
    {{FormatText, "lines of text", {".txt"}, RowForm::Lines, false, lines},
     nullptr,
     describeText,
     loadLines,
     saveLines,
     misfitOfLine},
    {{FormatBinary, "a table file", {".bin"}, RowForm::Records, true, commas},
     beginsIndex,
     describeTableFile,
     loadBinary,
     saveBinary,
     nullptr},
};
constexpr FormatFacts unknown = {FormatUnknown, "a file of unknown form", {}, RowForm::Records, false,
                                 commas};

constexpr auto numbers = [] {
    std::array<DataFormat, std::size(formats)> all{};
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = formats[i].facts.format;
    return all;
}();

}  // namespace

const FormatRow* RowOf(DataFormat format) {
    const auto* const row = std::find_if(std::begin(formats), std::end(formats),
                                         [=](const FormatRow& f) { return f.facts.format == format; });
    return row != std::end(formats) ? row : nullptr;
}

const FormatRow* FormatThatBegins(std::string_view start) {
    const auto* const row = std::find_if(std::begin(formats), std::end(formats), [=](const FormatRow& f) {
        return f.begins != nullptr && f.begins(start);
    });
    return row != std::end(formats) ? row : nullptr;
}

const FormatFacts& FactsOf(std::int32_t format) {
    const FormatRow* const row = RowOf(static_cast<DataFormat>(format));
    return row != nullptr ? row->facts : unknown;
}

std::span<const DataFormat> DataFormats() {
    return numbers;
}

DataFormat DataFormatOf(std::string_view filename) {
    const std::string_view extension = paths::extension(filename);
    if (extension.empty()) return FormatUnknown;
    for (const FormatRow& row : formats) {
        for (const std::string_view known : row.facts.extensions)
            if (ascii::equal(known, extension)) return row.facts.format;
    }
    return FormatUnknown;
}

}  // namespace tarn
