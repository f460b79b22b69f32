// SPDX-License-Identifier: Apache-2.0
//
// Tables that are held in data files, as compiled programs see them.
#include "kernel/api/api.h"
#include "kernel/values/strings.h"
#include "library/data/dbutil.h"

using namespace tarn;

namespace {

std::string text(const tarn_string* s) {
    return std::string(StringView(reinterpret_cast<const StringDescriptor*>(s)));
}

}  // namespace

extern "C" {

void tarn_sys_tabopen_options(const tarn_string* path, const tarn_record* options, tarn_table* t) {
    TABOPEN(text(path), reinterpret_cast<const RecordDescriptor*>(options),
            reinterpret_cast<TableDescriptor*>(t));
}
void tarn_sys_tabopen(const tarn_string* path, tarn_table* t) {
    tarn_sys_tabopen_options(path, nullptr, t);
}
void tarn_sys_tabclose_options(const tarn_string* path, const tarn_record* options, int32_t save,
                               tarn_table* t) {
    TABCLOSE(text(path), reinterpret_cast<const RecordDescriptor*>(options), save != 0,
             reinterpret_cast<TableDescriptor*>(t));
}
void tarn_sys_tabclose(const tarn_string* path, tarn_table* t) {
    tarn_sys_tabclose_options(path, nullptr, 1, t);
}

}  // extern "C"
