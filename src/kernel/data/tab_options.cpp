// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/datafile.h"
#include "kernel/data/tab_rows.h"
#include "kernel/data/tabular.h"
#include "kernel/errors.h"
#include "kernel/records.h"
#include "kernel/runtime.h"

#include <cstring>

namespace tarn {

TabOptions DefaultTabOptions(std::int32_t format) {
    TabOptions options;
    if (format == FormatTab) {
        options.numheaderrows = 2;
        options.separatorchar = '\t';
    }
    if (format == FormatText) options.separatorchar = NoTabSeparator;
    return options;
}

TabOptions TabOptionsOf(const RecordDescriptor* options, std::int32_t format) {
    static constexpr DescriptorHead zero{};  // what is no record may be shorter than one
    const TabOptions defaults = DefaultTabOptions(format);
    if (options == nullptr || std::memcmp(options, &zero, sizeof zero) == 0) return defaults;
    if (options->tag != TagRecord || !IsWellFormed(options)) return SetError(ERR_UNIDENTIFIABLE), defaults;
    const std::int32_t fields = FieldCountOf(options->kinds);
    if (fields == 0) return defaults;
    static const FieldKinds expected = MakeFieldKinds({KindInteger, KindInteger, KindInteger, KindInteger});
    if (std::memcmp(&options->kinds, &expected, sizeof expected) != 0 ||
        options->size != FieldBytesOf(expected))
        return SetError(ERR_RECORD_TYPE), defaults;
    const char* field = At(options->data);
    TabOptions read;
    for (std::int32_t* into :
         {&read.numheaderrows, &read.numfooterrows, &read.separatorchar, &read.maxdatarows}) {
        *into = ReadAt<std::int32_t>(field);
        field += sizeof(std::int32_t);
    }
    return read;
}

}  // namespace tarn
