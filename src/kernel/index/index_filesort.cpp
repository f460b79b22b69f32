// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_filesort.h"

#include "kernel/run/fileerrors.h"
#include "os/text/bigendian.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarn {

namespace {

constexpr std::size_t headBytes = sizeof(std::uint64_t), rowBytes = sizeof(std::int32_t),
                      none = ~std::size_t{0};
constexpr std::uint64_t topBit = std::uint64_t{1} << 63U;

// A real as a number that orders as reals do, with all that are no numbers behind, and one zero.
std::uint64_t orderOfReal(const char* at) {
    const auto real = ReadAt<double>(at);
    if (real != real) return ~std::uint64_t{0};
    if (real == 0) return topBit;
    const auto bits = ReadAt<std::uint64_t>(at);
    return (bits & topBit) != 0 ? ~bits : bits | topBit;
}

// The first bytes of a field such that their order is that of the field's values, as far as they go.
std::size_t orderedBytes(const IndexKeyField& field, const char* at, char (&ordered)[headBytes]) {
    std::size_t bytes = static_cast<std::size_t>(std::min<std::int32_t>(field.bytes, headBytes));
    if (field.kind == KindReal) {
        bigendian::put(ordered, orderOfReal(at));
    } else {
        std::memcpy(ordered, at + (field.kind == KindString ? WordBytes : 0), bytes);
        if (field.kind == KindInteger || field.kind == KindFixed) ordered[0] ^= '\x80';
    }
    return bytes;
}

}  // namespace

KeySort::KeySort(const KeyLayout& layout, std::string beside, std::int32_t count, std::size_t mostBytes)
    : layout_(layout), beside_(std::move(beside)),
      keyBytes_(static_cast<std::size_t>(layout.recordSize - IndexNodeHeadBytes)),
      recordBytes_(keyBytes_ + rowBytes),
      perRun_(std::max<std::size_t>(mostBytes / (sizeof(Place) + keyBytes_), 2)),
      blockBytes_(std::max<std::size_t>(std::size_t{64} << 10, recordBytes_)) {
    const std::size_t most = std::min(perRun_, static_cast<std::size_t>(count));
    places_.reserve(most);
    keys_.reserve(most * keyBytes_);
}

// ---- comparing ----

// Wide characters do not order as their bytes do. Behind a string nothing counts: the bytes that fill it up
// tell it from a longer one as little as those that are cut off.
std::uint64_t KeySort::headOf(const char* key) const {
    char head[headBytes] = {}, ordered[headBytes];
    std::size_t used = 0;
    for (std::int32_t i = 0; i < layout_.count && used < headBytes; ++i) {
        const IndexKeyField& field = layout_.fields[i];
        if (field.kind == KindString && CharacterWidth != 1) break;
        const std::size_t bytes = std::min(orderedBytes(field, key, ordered), headBytes - used);
        std::memcpy(head + used, ordered, bytes);
        used += bytes;
        if (field.kind == KindString) break;
        key += PackedFieldBytes(field);
    }
    return bigendian::at<std::uint64_t>(head);
}

int KeySort::compare(const char* a, const char* b) const {
    DecodedKey left;
    DecodeKey(layout_, a, left);
    for (std::int32_t i = 0; i < layout_.count; ++i) {
        const int order = ComparePacked(left.view.parts[i], layout_.fields[i], b);
        if (order != 0) return order;
        b += PackedFieldBytes(layout_.fields[i]);
    }
    return 0;
}

// ---- gathering ----

bool KeySort::add(const KeyView& key, bool& fits) {
    if (places_.size() == perRun_ && !writeRun()) return false;
    const std::size_t at = keys_.size();
    fits = PackKey(layout_, key, keys_) && keys_.size() == at + keyBytes_;
    if (fits) places_.push_back({headOf(keys_.data() + at), static_cast<std::uint32_t>(places_.size())});
    return true;
}

void KeySort::sortRun() {
    std::sort(places_.begin(), places_.end(), [this](const Place& a, const Place& b) {
        if (a.head != b.head) return a.head < b.head;
        const int order = compare(keyAt(a.index), keyAt(b.index));
        return order != 0 ? order < 0 : a.index < b.index;
    });
}

bool KeySort::writeRun() {
    if (scratch_.handle < 0 && MakeFileBeside(beside_, scratch_) != os::FileError::None) return false;
    sortRun();
    std::string block;
    block.reserve(blockBytes_ + recordBytes_);
    const auto write = [&] {
        const os::FileError error = os::files().write(scratch_.handle, scratchBytes_, block);
        scratchBytes_ += static_cast<std::int64_t>(block.size());
        block.clear();
        return error == os::FileError::None;
    };
    for (const Place& place : places_) {
        const std::int32_t row = firstRow_ + static_cast<std::int32_t>(place.index);
        block.append(reinterpret_cast<const char*>(&row), rowBytes);
        block.append(keyAt(place.index), keyBytes_);
        if (block.size() >= blockBytes_ && !write()) return false;
    }
    if (!block.empty() && !write()) return false;
    runEnds_.push_back(scratchBytes_);
    firstRow_ += static_cast<std::int32_t>(places_.size());
    places_.clear();
    keys_.clear();
    return true;
}

// ---- reading ----

bool KeySort::start() {
    before_.clear();
    taken_ = 0;
    if (runEnds_.empty()) return sortRun(), true;
    if (!places_.empty() && !writeRun()) return false;
    runs_.clear();
    heap_.clear();
    given_ = none;
    for (std::int64_t at = 0; const std::int64_t end : runEnds_) {
        runs_.push_back({std::exchange(at, end), end, {}});
        if (!advance(runs_.size() - 1)) return false;
    }
    return true;
}

// Enters a run with the key that it stands at; one that has ended is left out.
bool KeySort::advance(std::size_t number) {
    Run& run = runs_[number];
    if (run.used == run.block.size()) {
        const auto whole = static_cast<std::int64_t>(blockBytes_ / recordBytes_ * recordBytes_);
        run.block.resize(static_cast<std::size_t>(std::min(run.end - run.at, whole)));
        run.used = 0;
        if (ReadWhole(scratch_.handle, run.at, run.block.data(), run.block.size()) != 0) return false;
        run.at += static_cast<std::int64_t>(run.block.size());
    }
    if (run.block.empty()) return true;
    run.head = headOf(keyOf(run));
    heap_.push_back(number);
    std::push_heap(heap_.begin(), heap_.end(), Later{*this});
    return true;
}

// Rows of a run come before those of the next.
bool KeySort::comesLater(std::size_t a, std::size_t b) const {
    if (runs_[a].head != runs_[b].head) return runs_[a].head > runs_[b].head;
    const int order = compare(keyOf(runs_[a]), keyOf(runs_[b]));
    return order != 0 ? order > 0 : a > b;
}

// The key that was given stays where it is until the next is asked for.
bool KeySort::nextMerged(Entry& entry, std::uint64_t& head) {
    if (given_ != none) {
        runs_[given_].used += recordBytes_;
        if (!advance(given_)) return false;
    }
    std::pop_heap(heap_.begin(), heap_.end(), Later{*this});
    given_ = heap_.back();
    heap_.pop_back();
    const Run& run = runs_[given_];
    head = run.head;
    entry.key = {keyOf(run), keyBytes_};
    entry.row = ReadAt<std::int32_t>(keyOf(run) - rowBytes);
    return true;
}

bool KeySort::next(Entry& entry) {
    std::uint64_t head = 0;
    if (runEnds_.empty()) {
        const Place& place = places_[taken_++];
        head = place.head;
        entry.key = {keyAt(place.index), keyBytes_};
        entry.row = firstRow_ + static_cast<std::int32_t>(place.index);
    } else if (!nextMerged(entry, head)) {
        return false;
    }
    entry.again = !before_.empty() && head == headBefore_ && compare(before_.data(), entry.key.data()) == 0;
    before_ = entry.key;
    headBefore_ = head;
    return true;
}

}  // namespace tarn
