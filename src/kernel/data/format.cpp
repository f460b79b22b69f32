// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/format.h"

#include "kernel/data/tab/tab_rows.h"
#include "kernel/data/tab/tabular.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/values/records.h"
#include "os/paths.h"
#include "os/text/ascii.h"

#include <cstring>
#include <iterator>

namespace tarn {

namespace {

constexpr DataOptions lines{0, 0, NoTabSeparator, -1}, commas{}, tabs{2, 0, '\t', -1};

// The one for unknown files is the last.
constexpr FormatFacts facts[] = {
    {FormatText, "lines of text", {".txt"}, false, lines},
    {FormatComma, "delimited text", {".csv"}, true, commas},
    {FormatTab, "delimited text", {".tab"}, true, tabs},
    {FormatBinary, "a table file", {".bin"}, false, commas},
    {FormatXbase, "an Xbase file", {".dbf", ".xbf"}, false, commas},
    {FormatXml, "XML", {".xml"}, false, commas},
    {FormatUnknown, "a file of unknown form", {}, false, commas},
};

}  // namespace

const FormatFacts& FactsOf(std::int32_t format) {
    const FormatFacts* row = std::begin(facts);
    while (row->format != format && row->format != FormatUnknown) ++row;
    return *row;
}

DataFormat DataFormatOf(std::string_view filename) {
    const std::string_view extension = paths::extension(filename);
    if (extension.empty()) return FormatUnknown;
    for (const FormatFacts& row : facts) {
        for (const std::string_view known : row.extensions)
            if (ascii::equal(known, extension)) return row.format;
    }
    return FormatUnknown;
}

DataOptions DefaultDataOptions(std::int32_t format) {
    return FactsOf(format).defaults;
}

DataOptions DataOptionsOf(const RecordDescriptor* options, std::int32_t format) {
    static constexpr DescriptorHead zero{};  // what is no record may be shorter than one
    const DataOptions defaults = DefaultDataOptions(format);
    if (options == nullptr || std::memcmp(options, &zero, sizeof zero) == 0) return defaults;
    if (options->tag != TagRecord || !IsWellFormed(options)) return SetError(ERR_UNIDENTIFIABLE), defaults;
    const std::int32_t fields = FieldCountOf(options->kinds);
    if (fields == 0) return defaults;
    static const FieldKinds expected = MakeFieldKinds({KindInteger, KindInteger, KindInteger, KindInteger});
    if (std::memcmp(&options->kinds, &expected, sizeof expected) != 0 ||
        options->size != FieldBytesOf(expected))
        return SetError(ERR_RECORD_TYPE), defaults;
    const char* field = At(options->data);
    DataOptions read;
    for (std::int32_t* into :
         {&read.numheaderrows, &read.numfooterrows, &read.separatorchar, &read.maxdatarows}) {
        *into = ReadAt<std::int32_t>(field);
        field += sizeof(std::int32_t);
    }
    return read;
}

std::int32_t ReadDataOptions(const RecordDescriptor* record, std::int32_t format, DataOptions& options) {
    const ErrorCellAside aside;
    options = DataOptionsOf(record, format);
    return ErrorCell();
}

}  // namespace tarn
