// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/datafile_binary.h"

#include "kernel/data/fresh.h"
#include "kernel/data/packing.h"
#include "kernel/data/progress.h"
#include "kernel/data/tab_rows.h"
#include "kernel/errors.h"
#include "kernel/fileerrors.h"
#include "kernel/runtime.h"

#include <algorithm>
#include <new>

namespace tarn {

namespace {

std::int32_t countOf(const void* value, Kind kind) {
    if (kind == KindList) return ReadAt<ListDescriptor>(value).count;
    return kind == KindTable ? ReadAt<TableDescriptor>(value).count : 1;
}

TabResult load(const std::string& filename, void* value, Kind kind) {
    const std::int32_t refused = PackWholeError(value, kind);
    if (refused != 0) return {refused};
    TabFile file;
    const std::int32_t unreadable = file.open(filename);
    if (unreadable != 0) return {unreadable};
    std::string bytes(static_cast<std::size_t>(file.size()), '\0');
    for (std::int64_t done = 0; done < file.size();) {
        const std::int64_t step = std::min(ProgressStep, file.size() - done);
        const std::int32_t code = file.read(done, bytes.data() + done, static_cast<std::size_t>(step));
        if (code != 0) return {code};
        done += step;
        if (!Progress(done, file.size())) return {0, 0, 0, true};
    }
    FreshValue fresh(value, kind);
    const std::int32_t code = ErrorCell() != 0 ? ErrorCell() : UnpackWhole(bytes, fresh.get(), kind);
    if (code != 0) return {code};
    if (!fresh.replaceTarget()) return {ErrorCell()};
    return {0, 0, countOf(value, kind)};
}

TabResult save(const std::string& filename, const void* value, Kind kind) {
    std::string bytes;
    std::int32_t code = PackWhole(value, kind, bytes);
    if (code == 0) code = FileWriteCode(os::saveFile(filename, bytes).error);
    if (code != 0) return {code};
    return {0, 0, countOf(value, kind)};
}

}  // namespace

TabResult BinaryLoad(const std::string& filename, void* value, Kind kind) {
    const CellApart cell;
    try {
        return load(filename, value, kind);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

TabResult BinarySave(const std::string& filename, const void* value, Kind kind) {
    const CellApart cell;
    try {
        return save(filename, value, kind);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
