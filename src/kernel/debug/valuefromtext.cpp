// SPDX-License-Identifier: Apache-2.0
//
// A text is read into a fresh value, which takes the place of the old one when all of it fits.
#include "kernel/data/fresh.h"
#include "kernel/debug/valuereader_internal.h"
#include "kernel/debug/valuetext.h"
#include "kernel/lists/rowformat.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/values/adt_kinds.h"

namespace tarn {

namespace {

enum class Behind { Anything, Nothing };

bool readNumber(ValueReader& reader, void* value, std::string_view names, Kind kind, Behind behind) {
    char read[sizeof(double)] = {};
    if (!reader.outermost(read, {nullptr, names}, kind)) return false;
    if (behind == Behind::Nothing && !reader.ends()) return false;
    CopyNumber(read, value, kind);
    return true;
}

bool readDescriptor(ValueReader& reader, void* value, std::string_view names, Kind kind, Behind behind) {
    FreshValue fresh(value, kind);
    if (OwnErrors::code() != 0 || !reader.outermost(fresh.get(), {value, names}, kind)) return false;
    return (behind == Behind::Anything || reader.ends()) && fresh.replaceTarget();
}

bool readValue(std::string_view text, void* value, std::string_view names, std::int32_t kind, Behind behind,
               ValueMisfit& misfit) {
    const auto known = static_cast<Kind>(kind);
    std::int32_t& position = misfit.position;
    misfit.kind = kind;
    if (value == nullptr || !IsValueKind(kind) || !IsOfKind(value, known)) return Refuse(ERR_UNIDENTIFIABLE);
    text = text.substr(0, INT32_MAX - 1);  // positions are integers
    if (position < 1 || static_cast<std::size_t>(position) > text.size() + 1) return false;
    const OwnErrors errors;
    ValueReader reader(text, static_cast<std::size_t>(position) - 1, behind == Behind::Nothing);
    const bool read = WithMemory([&] {
        return IsAdtKind(kind) ? readDescriptor(reader, value, names, known, behind)
                               : readNumber(reader, value, names, known, behind);
    });
    position = static_cast<std::int32_t>(reader.position()) + 1;
    if (reader.wanted() != KindNone) misfit.kind = reader.wanted();
    misfit.capacity = reader.capacity();
    misfit.highest = reader.highest();
    misfit.kept = reader.kept();
    misfit.why = reader.why();
    // What does not fit is told by the result.
    const std::int32_t code = OwnErrors::code();
    if (code != ERR_OUT_OF_MEMORY && !IsFileFailure(code)) OwnErrors::forget();
    return read;
}

}  // namespace

bool ValueFromText(std::string_view text, std::int32_t& position, void* value, std::int32_t kind) {
    ValueMisfit misfit;
    misfit.position = position;
    const bool read = readValue(text, value, {}, kind, Behind::Anything, misfit);
    position = misfit.position;
    return read;
}

bool ValueFromWholeText(std::string_view text, void* value, std::int32_t kind, ValueMisfit& misfit,
                        std::string_view names) {
    misfit = {};
    return readValue(text, value, names, kind, Behind::Nothing, misfit);
}

}  // namespace tarn
