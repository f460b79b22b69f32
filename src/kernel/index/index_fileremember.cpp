// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_fileremember.h"

#include "os/clock.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

namespace tarn {

// ---- records ----

namespace {

constexpr std::size_t firstPlaces = 256, growth = 4;

}  // namespace

void RememberedRecords::shape(std::int32_t recordSize, std::int32_t nearBytes) {
    if (recordSize == recordSize_ && nearBytes == nearBytes_) return;
    recordSize_ = recordSize;
    nearBytes_ = nearBytes;
    places_ = 0;
    hasControl_ = false;
    resize(std::min(firstPlaces, std::bit_floor(std::max(mostBytes_ / ways / slotBytes(), std::size_t{1}))));
}

// Those that are there move on. Without memory for more it stays as it is.
void RememberedRecords::resize(std::size_t places) {
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
        if (!enter(place, tag, slot + sizeof tag)) enter(place + slotBytes(), tag, slot + sizeof tag);
    }
}

void RememberedRecords::forget() {
    hasControl_ = false;
    if (++round_ != 0) return;
    round_ = 1;
    if (places_ != 0) std::memset(slots_.get(), 0, places_ * ways * slotBytes());
}

// The record that begins there; 0 for none of which so many bytes are remembered.
std::int32_t RememberedRecords::numberAt(std::int64_t offset, std::int32_t count) const {
    const std::int64_t behind = offset - IndexHeaderBytes;
    if (places_ == 0 || behind < 0 || count > nearBytes_ || behind % recordSize_ != 0) return 0;
    return static_cast<std::int32_t>(behind / recordSize_ + 1);
}

const char* RememberedRecords::find(std::int64_t offset, std::int32_t count) {
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
bool RememberedRecords::enter(char* slot, std::uint64_t tag, const char* bytes) const {
    const auto there = ReadAt<std::uint64_t>(slot);
    if (there != tag && there >> 32U == round_) return false;
    WriteAt(slot, tag);
    std::memcpy(slot + sizeof tag, bytes, static_cast<std::size_t>(nearBytes_));
    return true;
}

void RememberedRecords::put(std::int64_t offset, const char* bytes, std::int32_t count) {
    if (offset == IndexControlAt && count == static_cast<std::int32_t>(controlBytes)) {
        std::memcpy(control_, bytes, controlBytes);
        hasControl_ = true;
    }
    const std::int32_t number = count == nearBytes_ ? numberAt(offset, count) : 0;
    if (number == 0) return;
    if (++added_ > places_ * ways && places_ * growth * ways * slotBytes() <= mostBytes_)
        resize(places_ * growth);
    const std::uint64_t tag = tagOf(number);
    char* const slot = placeOf(number);
    if (enter(slot, tag, bytes)) return;
    WriteAt(slot + slotBytes(), std::uint64_t{0});
    enter(slot + slotBytes(), tag, bytes);
}

// What is written covers whole records, the beginnings of some, or the control record. A record that comes alone is
// one that the next operation may well look at.
void RememberedRecords::wrote(std::int64_t offset, std::string_view bytes) {
    if (offset == IndexControlAt && bytes.size() == controlBytes) {
        std::memcpy(control_, bytes.data(), controlBytes);
        return;
    }
    std::int32_t number = numberAt(offset, 0);
    if (number == 0) return forget();
    if (bytes.size() == static_cast<std::size_t>(recordSize_)) return put(offset, bytes.data(), nearBytes_);
    for (; !bytes.empty(); ++number) {
        const std::size_t count = std::min(bytes.size(), static_cast<std::size_t>(nearBytes_));
        char* slot = placeOf(number);
        for (std::size_t way = 0; way < ways; ++way, slot += slotBytes())
            if (ReadAt<std::uint64_t>(slot) == tagOf(number))
                std::memcpy(slot + sizeof(std::uint64_t), bytes.data(), count);
        bytes.remove_prefix(std::min(bytes.size(), static_cast<std::size_t>(recordSize_)));
    }
}

// ---- files that are not open ----

namespace {

// A file whose records are remembered, as it was then. They last when a change of it would show.
struct Remembered {
    const os::FileSystem* system = nullptr;
    os::FileInfo info;
    std::uint64_t used = 0;
    std::int32_t users = 0;  // operations
    bool lasts = false;
    RememberedRecords records{limits::RememberedIndexBytes};
};

bool isOf(const Remembered& file, const os::FileInfo& info) {
    return file.system == &os::files() && file.info.device == info.device && file.info.inode == info.inode;
}

using RememberedFiles = std::array<Remembered, 8>;  // more than the indexes of a table

RememberedFiles& rememberedFiles() {
    static RememberedFiles& files = *new RememberedFiles;  // used until the very end
    return files;
}

}  // namespace

bool IsSameState(const os::FileInfo& a, const os::FileInfo& b) {
    return a.size == b.size && a.modified == b.modified && a.changed == b.changed;
}

// Times without a part of a second are those of disks that count seconds, or two.
bool IsSettled(const os::FileInfo& info) {
    constexpr std::int64_t second = 1'000'000'000, leastAge = second / 10, leastCoarseAge = 3 * second;
    const std::int64_t last = std::max(info.modified, info.changed);
    return os::clock().now() - last >= (last % second != 0 ? leastAge : leastCoarseAge);
}

namespace {

// The place that the file has, or the one that was not used for the longest time.
Remembered* placeOf(const os::FileInfo& info) {
    Remembered* place = nullptr;
    for (Remembered& file : rememberedFiles()) {
        if (isOf(file, info)) return &file;
        if (file.users == 0 && (place == nullptr || file.used < place->used)) place = &file;
    }
    return place;
}

Remembered* fileOf(const RememberedRecords* records) {
    for (Remembered& file : rememberedFiles())
        if (&file.records == records) return &file;
    return nullptr;
}

// A time that this program has given to no other file. It is odd, so that disks that count no nanoseconds do not take it.
std::int64_t nextStamp() {
    static std::int64_t last = 0;
    return last = std::max(os::clock().now(), last + 1) | 1;
}

}  // namespace

bool StampFile(os::Handle handle, os::FileInfo& info) {
    const std::int64_t time = nextStamp();
    return os::files().setModifiedOpen(handle, time) == os::FileError::None &&
           os::files().infoOpen(handle, info) == os::FileError::None && info.modified == time &&
           info.changed != time;
}

RememberedRecords* RecallRecords(const os::FileInfo& info, bool mayWrite) {
    static std::uint64_t uses = 0;
    const bool settled = IsSettled(info);
    Remembered* const place = placeOf(info);
    if (place == nullptr) return nullptr;
    if (!place->lasts || !isOf(*place, info) || !IsSameState(place->info, info)) {
        if (place->users != 0 || !(settled || mayWrite)) return nullptr;
        place->records.forget();
        place->lasts = settled;
    }
    place->system = &os::files();
    place->info = info;
    place->used = ++uses;
    ++place->users;
    return &place->records;
}

void StampRecords(RememberedRecords* records, os::Handle handle) {
    Remembered* const file = fileOf(records);
    if (file != nullptr) file->lasts = StampFile(handle, file->info);
}

void ChangeRecords(RememberedRecords* records) {
    if (Remembered* const file = fileOf(records); file != nullptr) file->lasts = false;
}

void LeaveRecords(RememberedRecords* records) {
    Remembered* const file = fileOf(records);
    if (file == nullptr) return;
    --file->users;
    if (!file->lasts) records->forget();
}

}  // namespace tarn
