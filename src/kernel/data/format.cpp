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

namespace tarn {

DataFormat DataFormatOf(std::string_view filename) {
    constexpr struct {
        std::string_view extension;
        DataFormat format;
    } formats[] = {{".txt", FormatText},  {".csv", FormatComma}, {".tab", FormatTab}, {".bin", FormatBinary},
                   {".dbf", FormatXbase}, {".xbf", FormatXbase}, {".xml", FormatXml}};
    const std::string_view extension = paths::extension(filename);
    for (const auto& row : formats) {
        if (ascii::equal(row.extension, extension)) return row.format;
    }
    return FormatUnknown;
}

DataOptions DefaultDataOptions(std::int32_t format) {
    DataOptions options;
    if (format == FormatTab) {
        options.numheaderrows = 2;
        options.separatorchar = '\t';
    }
    if (format == FormatText) options.separatorchar = NoTabSeparator;
    return options;
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
