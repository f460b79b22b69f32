// SPDX-License-Identifier: Apache-2.0
//
// Lists and tables in files under the names that compiled programs use.
#include "kernel/api/api.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/filevalues.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"

namespace {

// The file operations look at the kind before they look at the value.
tarn::Kind kindOf(int32_t kind) {
    return tarn::IsValueKind(kind) ? static_cast<tarn::Kind>(kind) : tarn::KindNone;
}

}  // namespace

void tarn_file_open(void* value, int32_t kind, const tarn_string* name) {
    const auto* const text = reinterpret_cast<const tarn::StringDescriptor*>(name);
    if (text != nullptr && tarn::KindOf(text) != tarn::KindString)
        return tarn::SetError(tarn::ERR_STRING_TYPE);
    const tarn::NarrowText narrow(text);
    tarn::FileOpen(value, kindOf(kind), narrow.view());
}
void tarn_file_close(void* value, int32_t kind) {
    tarn::FileClose(value, kindOf(kind));
}
int32_t tarn_file_exists(const void* value, int32_t kind) {
    return tarn::FileExists(value, kindOf(kind)) ? 1 : 0;
}
int32_t tarn_file_record_length(const void* value, int32_t kind) {
    return tarn::FileRecordLength(value, kindOf(kind));
}
int32_t tarn_file_header_size(const void* value, int32_t kind) {
    return tarn::FileHeaderSize(value, kindOf(kind));
}
int32_t tarn_file_format(const void* value, int32_t kind) {
    return tarn::FileFormat(value, kindOf(kind));
}
