// SPDX-License-Identifier: Apache-2.0
//
// Held files stand in a chain; there are hardly ever more than five.
#include "kernel/index/index_filehold.h"

#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "os/clock.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>
#include <utility>

namespace tarn {

// ---- records ----

namespace {

constexpr std::size_t firstPlaces = 256, growth = 4;

}  // namespace

void HeldRecords::shape(std::int32_t recordSize, std::int32_t kept) {
    if (recordSize == recordSize_ && kept == kept_) return;
    recordSize_ = recordSize;
    kept_ = kept;
    places_ = 0;
    hasControl_ = false;
    resize(std::min(firstPlaces, std::bit_floor(std::max(mostBytes_ / ways / slotBytes(), std::size_t{1}))));
}

// Those that are there move on. Without memory for more it stays as it is.
void HeldRecords::resize(std::size_t places) {
    Bytes before(static_cast<char*>(std::calloc(places * ways, slotBytes())));
    added_ = 0;
    if (before == nullptr) return;
    before.swap(slots_);
    const std::size_t slots = std::exchange(places_, places) * ways;
    for (std::size_t i = 0; i < slots; ++i) {
        const char* const slot = before.get() + i * slotBytes();
        const auto tag = ReadAt<std::uint64_t>(slot);
        if (tag >> 32U != round_) continue;
        char* const place = placeOf(static_cast<std::int32_t>(tag & 0xFFFFFFFFU));
        if (!hold(place, tag, slot + sizeof tag)) hold(place + slotBytes(), tag, slot + sizeof tag);
    }
}

void HeldRecords::forget() {
    hasControl_ = false;
    if (++round_ != 0) return;
    round_ = 1;
    if (places_ != 0) std::memset(slots_.get(), 0, places_ * ways * slotBytes());
}

// The record that begins there; 0 for none of which so many bytes are kept.
std::int32_t HeldRecords::numberAt(std::int64_t offset, std::int32_t count) const {
    const std::int64_t behind = offset - IndexHeaderBytes;
    if (places_ == 0 || behind < 0 || count > kept_ || behind % recordSize_ != 0) return 0;
    return static_cast<std::int32_t>(behind / recordSize_ + 1);
}

const char* HeldRecords::find(std::int64_t offset, std::int32_t count) {
    if (offset == IndexControlAt && count <= static_cast<std::int32_t>(controlBytes))
        return hasControl_ ? control_ : nullptr;
    const std::int32_t number = numberAt(offset, count);
    if (number == 0) return nullptr;
    const std::uint64_t tag = tagOf(number);
    char *const slot = placeOf(number), *const second = slot + slotBytes();
    if (ReadAt<std::uint64_t>(slot) == tag) return slot + sizeof tag;
    if (ReadAt<std::uint64_t>(second) != tag) return nullptr;
    std::swap_ranges(slot, second, second);
    return slot + sizeof tag;
}

// Into a slot that has this record, or none. False when it has another.
bool HeldRecords::hold(char* slot, std::uint64_t tag, const char* bytes) const {
    const auto there = ReadAt<std::uint64_t>(slot);
    if (there != tag && there >> 32U == round_) return false;
    WriteAt(slot, tag);
    std::memcpy(slot + sizeof tag, bytes, static_cast<std::size_t>(kept_));
    return true;
}

void HeldRecords::put(std::int64_t offset, const char* bytes, std::int32_t count) {
    if (offset == IndexControlAt && count == static_cast<std::int32_t>(controlBytes)) {
        std::memcpy(control_, bytes, controlBytes);
        hasControl_ = true;
    }
    const std::int32_t number = count == kept_ ? numberAt(offset, count) : 0;
    if (number == 0) return;
    if (++added_ > places_ * ways && places_ * growth * ways * slotBytes() <= mostBytes_)
        resize(places_ * growth);
    const std::uint64_t tag = tagOf(number);
    char* const slot = placeOf(number);
    if (hold(slot, tag, bytes)) return;
    WriteAt(slot + slotBytes(), std::uint64_t{0});
    hold(slot + slotBytes(), tag, bytes);
}

// What is written covers whole records, the beginnings of some, or the control record.
void HeldRecords::wrote(std::int64_t offset, std::string_view bytes) {
    if (offset == IndexControlAt && bytes.size() == controlBytes) {
        std::memcpy(control_, bytes.data(), controlBytes);
        return;
    }
    std::int32_t number = numberAt(offset, 0);
    if (number == 0) return forget();
    for (; !bytes.empty(); ++number) {
        const std::size_t count = std::min(bytes.size(), static_cast<std::size_t>(kept_));
        char* slot = placeOf(number);
        for (std::size_t way = 0; way < ways; ++way, slot += slotBytes())
            if (ReadAt<std::uint64_t>(slot) == tagOf(number))
                std::memcpy(slot + sizeof(std::uint64_t), bytes.data(), count);
        bytes.remove_prefix(std::min(bytes.size(), static_cast<std::size_t>(recordSize_)));
    }
}

// ---- files that are not open ----

namespace {

// A file whose records are remembered, as it was then.
struct Remembered {
    const os::FileSystem* system = nullptr;
    os::FileInfo info;
    std::uint64_t used = 0;
    std::int32_t users = 0;  // operations
    HeldRecords records{limits::KnownIndexBytes};
};

bool isSame(const os::FileInfo& a, const os::FileInfo& b) {
    return a.size == b.size && a.modified == b.modified && a.changed == b.changed;
}

// Whether a later change would give the file another time. Times without a part of a second are those of disks that
// count seconds, or two.
bool isSettled(const os::FileInfo& info) {
    constexpr std::int64_t second = 1'000'000'000, leastAge = second / 10, leastCoarseAge = 3 * second;
    const std::int64_t last = std::max(info.modified, info.changed);
    return os::clock().now() - last >= (last % second != 0 ? leastAge : leastCoarseAge);
}

bool isOf(const Remembered& file, const os::FileInfo& info) {
    return file.system == &os::files() && file.info.device == info.device && file.info.inode == info.inode;
}

using RememberedFiles = std::array<Remembered, 8>;  // more than the indexes of a table

RememberedFiles& rememberedFiles() {
    static RememberedFiles& files = *new RememberedFiles;  // used until the very end
    return files;
}

}  // namespace

// In the place that the file has, or in the one that was not used for the longest time.
HeldRecords* RememberedRecords(const os::FileInfo& info) {
    static std::uint64_t uses = 0;
    if (!isSettled(info)) return nullptr;
    Remembered* place = nullptr;
    for (Remembered& file : rememberedFiles()) {
        const bool own = isOf(file, info);
        if (own || (file.users == 0 && (place == nullptr || file.used < place->used))) place = &file;
        if (own) break;
    }
    if (place == nullptr) return nullptr;
    if (!isOf(*place, info) || !isSame(place->info, info)) {
        if (place->users != 0) return nullptr;
        place->records.forget();
    }
    place->system = &os::files();
    place->info = info;
    place->used = ++uses;
    ++place->users;
    return &place->records;
}

void LeaveRecords(const HeldRecords* records) {
    for (Remembered& file : rememberedFiles())
        if (&file.records == records) --file.users;
}

// ---- files that are held open ----

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

// Whether the handle is still of use; forgets records that may have changed.
bool HeldIndex::isAsItWas() {
    os::FileInfo info;
    if (handle_ < 0 || system_ != &os::files()) return handle_ = -1, false;
    if (os::files().infoOpen(handle_, info) != os::FileError::None || info.links == 0) return false;
    if (!isSame(info, info_)) records_.forget();
    info_ = info;
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
    info_ = info;
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
    if (!changed || handle_ < 0) return;
    if (os::files().infoOpen(handle_, info_) != os::FileError::None) records_.forget();
}

}  // namespace tarn
