// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/format.h"

#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/values/records.h"

#include <cstring>

namespace tarn {

std::string DataFormatNames(std::string_view last) {
    const std::span<const DataFormat> formats = DataFormats();
    std::string names;
    for (std::size_t i = 0; i < formats.size(); ++i) {
        const bool isLast = i + 1 == formats.size();
        if (i > 0) names += isLast ? " " + std::string(last) + " " : ", ";
        names += FactsOf(formats[i]).extensions[0].substr(1);
    }
    return names;
}

std::string DataFilePatterns() {
    std::string patterns;
    for (const DataFormat format : DataFormats()) {
        const FormatFacts& facts = FactsOf(format);
        for (const std::string_view extension : facts.extensions) {
            if (facts.declared || extension.empty()) continue;
            if (!patterns.empty()) patterns += ';';
            patterns += '*';
            patterns += extension;
        }
    }
    return patterns;
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
