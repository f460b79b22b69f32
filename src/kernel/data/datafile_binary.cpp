// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/datafile_binary.h"

#include "kernel/data/fresh.h"
#include "kernel/data/packing_whole.h"
#include "kernel/data/tab/tab_rows.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/progress.h"
#include "kernel/run/runtime.h"

#include <algorithm>
#include <new>

namespace tarn {

namespace {

std::int32_t countOf(const void* value, Kind kind) {
    if (kind == KindList) return ReadAt<ListDescriptor>(value).count;
    return kind == KindTable ? ReadAt<TableDescriptor>(value).count : 1;
}

DataResult load(const std::string& filename, void* value, Kind kind) {
    const std::int32_t refused = PackWholeError(value, kind);
    if (refused != 0) return {refused};
    TabFile file;
    const std::int32_t unreadable = file.open(filename);
    if (unreadable != 0) return {unreadable};
    const std::int64_t size = std::min(file.size(), PackedRoom(value, kind));
    std::string bytes(static_cast<std::size_t>(size), '\0');
    for (std::int64_t done = 0; done < size;) {
        const std::int64_t step = std::min(ProgressStep, size - done);
        const std::int32_t code = file.read(done, bytes.data() + done, static_cast<std::size_t>(step));
        if (code != 0) return {code};
        done += step;
        if (!Progress(done, size)) return {0, 0, 0, true};
    }
    FreshValue fresh(value, kind);
    fresh.takeBounds();
    const std::int32_t code = ErrorCell() != 0 ? ErrorCell() : UnpackWhole(bytes, fresh.get(), kind);
    if (code != 0) return {code};
    if (!fresh.replaceTarget()) return {ErrorCell()};
    return {0, 0, countOf(value, kind)};
}

DataResult save(const std::string& filename, const void* value, Kind kind) {
    std::string bytes;
    DataResult result;
    result.code = PackWhole(value, kind, bytes, &result.stopped);
    if (result.code != 0 || result.stopped) return result;
    os::SaveResult saved = os::saveFile(filename, bytes);
    result.code = FileWriteCode(saved.error);
    result.rescueCopy = std::move(saved.rescueCopy);
    if (result.code == 0) result.rows = countOf(value, kind);
    return result;
}

}  // namespace

DataResult BinaryLoad(const std::string& filename, void* value, Kind kind) {
    const ErrorCellAside aside;
    try {
        return load(filename, value, kind);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

DataResult BinarySave(const std::string& filename, const void* value, Kind kind) {
    const ErrorCellAside aside;
    try {
        return save(filename, value, kind);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
