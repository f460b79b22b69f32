// SPDX-License-Identifier: Apache-2.0
//
// Held files stand in a chain; there are hardly ever more than five.
#include "kernel/index/index_filehold.h"

#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"

#include <utility>

namespace tarn {

namespace {

HeldIndex* first = nullptr;

}  // namespace

std::int32_t IndexOpenCode(os::FileError error, os::OpenMode mode) {
    if (IsMissing(error)) return ERR_FILE_VANISHED;
    return mode == os::OpenMode::Read ? FileReadCode(error) : FileWriteCode(error);
}

HeldIndex::HeldIndex(std::string path) : path_(std::move(path)), next_(first) {
    first = this;
}

HeldIndex::~HeldIndex() {
    try {
        (void)close();
    } catch (...) {  // the end of the process, in a test
    }
    HeldIndex** link = &first;
    while (*link != this) link = &(*link)->next_;
    *link = next_;
}

HeldIndex* HeldIndex::of(std::string_view path) {
    HeldIndex* held = first;
    while (held != nullptr && held->path_ != path) held = held->next_;
    return held != nullptr && !held->inUse_ ? held : nullptr;
}

void HeldIndex::letGo() {
    for (HeldIndex* held = first; held != nullptr; held = held->next_)
        if (!held->inUse_) (void)held->close();
}

void HeldIndex::letGo(std::string_view path) {
    for (HeldIndex* held = first; held != nullptr; held = held->next_)
        if (held->path_ == path && !held->inUse_) (void)held->close();
}

std::int32_t HeldIndex::close() {
    records_.forget();
    const os::Handle handle = std::exchange(handle_, -1);
    if (handle < 0 || system_ != &os::files()) return 0;
    const std::int32_t code = FileWriteCode(os::files().close(handle));
    return mode_ == os::OpenMode::Read ? 0 : code;
}

void HeldIndex::look(const os::FileInfo& info) {
    info_ = info;
    lasts_ = IsSettled(info);
}

// Whether the handle is still of use; forgets records that may have changed.
bool HeldIndex::isAsItWas() {
    os::FileInfo info;
    if (handle_ < 0 || system_ != &os::files()) return handle_ = -1, false;
    if (os::files().infoOpen(handle_, info) != os::FileError::None || info.links == 0) return false;
    if (lasts_ && IsSameState(info, info_)) return true;
    records_.forget();
    look(info);
    return true;
}

// For writing where that is allowed, since another operation may want to.
std::int32_t HeldIndex::openFile(os::OpenMode mode) {
    (void)close();
    system_ = &os::files();
    mode_ = os::OpenMode::ReadWrite;
    os::FileError error = os::files().open(path_, mode_, 0, handle_);
    if (error != os::FileError::None && mode == os::OpenMode::Read)
        error = os::files().open(path_, mode_ = os::OpenMode::Read, 0, handle_);
    os::FileInfo info;
    if (error == os::FileError::None) error = os::files().infoOpen(handle_, info);
    look(info);
    return IndexOpenCode(error, mode);
}

std::int32_t HeldIndex::take(os::OpenMode& mode, os::Handle& handle, std::int64_t& size) {
    const bool serves = isAsItWas() && (mode == os::OpenMode::Read || mode_ == os::OpenMode::ReadWrite);
    if (const std::int32_t code = serves ? 0 : openFile(mode); code != 0) return (void)close(), code;
    inUse_ = true;
    mode = mode_;
    handle = handle_;
    size = info_.size;
    return 0;
}

void HeldIndex::giveBack(bool changed) {
    inUse_ = false;
    if (changed && handle_ >= 0) lasts_ = StampFile(handle_, info_);
}

}  // namespace tarn
