// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_filebuild.h"

#include "kernel/run/errors.h"
#include "os/tinylimits.h"

#include <algorithm>

namespace tarn {

namespace {

constexpr std::size_t stretchBytes = limits::BuiltStretchBytes;

// How many levels of a tree, at least one, fit in that many bytes.
std::int32_t levelsIn(std::int64_t bytes, std::int32_t recordBytes) {
    std::int32_t levels = 1;
    while (((std::int64_t{2} << levels) - 1) * recordBytes <= bytes) ++levels;
    return levels;
}

}  // namespace

// ---- the tree ----

bool IndexBuild::has(Place place) const {
    return place.level < levels_ - 1 || (place.level == levels_ - 1 && place.index < inLastLevel_);
}

std::int32_t IndexBuild::heightAt(Place place) const {
    if (!has(place)) return 0;
    const std::int32_t below = levels_ - 1 - place.level;
    return place.index << below < inLastLevel_ ? below + 1 : below;
}

std::size_t IndexBuild::layerOf(std::int32_t level) const {
    std::size_t layer = 0;
    while (layer + 1 < layers_.size() && layers_[layer + 1].level <= level) ++layer;
    return layer;
}

// Nodes of the layers above come first, then those of its own with lower keys.
std::int32_t IndexBuild::numberOf(Place place) const {
    const std::size_t layer = layerOf(place.level);
    const bool last = layer + 1 == layers_.size();
    const std::int32_t first = layers_[layer].level, end = last ? levels_ : layers_[layer + 1].level;
    const std::int32_t inside = place.level - first, height = end - first;
    const std::int64_t part = place.index >> inside, among = place.index - (part << inside);
    std::int64_t lower = part * ((std::int64_t{1} << height) - 1);
    lower += ((2 * among + 1) << (height - 1 - inside)) - 1;
    if (last) {
        const std::int32_t below = levels_ - 1 - place.level;
        const std::int64_t places = ((2 * place.index + 1) << below) >> 1;
        lower -= std::max<std::int64_t>(places - inLastLevel_, 0);
    }
    return static_cast<std::int32_t>((std::int64_t{1} << first) + lower);
}

IndexBuild::Place IndexBuild::lowest(Place place) const {
    while (has(place.child(0))) place = place.child(0);
    return place;
}

// To the node with the next key.
void IndexBuild::step() {
    if (has(next_.child(1))) {
        next_ = lowest(next_.child(1));
        return;
    }
    while (next_.index % 2 != 0) next_ = {next_.level - 1, next_.index / 2};
    next_ = {next_.level - 1, next_.index / 2};
}

// ---- the file ----

// A node stands in the middle of its part of a layer, so that half of the part is on each side of it.
void IndexBuild::makeLayers() {
    layers_.clear();
    std::int64_t bytes = IndexDisk::mostPeek - IndexHeaderBytes;
    for (std::int32_t level = 0; level < levels_;) {
        layers_.push_back({level, IndexRecordAt(1 << level, recordBytes_), {}});
        level += levelsIn(bytes, recordBytes_);
        bytes = IndexDisk::aroundBytes;
    }
}

std::int32_t IndexBuild::open(const std::string& path, const KeyLayout& layout, std::int32_t count) {
    recordBytes_ = layout.recordSize;
    levels_ = 0;
    while (count >> levels_ != 0) ++levels_;
    inLastLevel_ = count - ((std::int64_t{1} << (levels_ - 1)) - 1);
    makeLayers();
    next_ = lowest({});
    const std::int32_t code = disk_.open(path, os::OpenMode::ReadWrite);
    if (code != 0) return code;
    disk_.begin();
    return disk_.size() == IndexHeaderBytes ? 0 : std::int32_t{ERR_INDEX_FILE_SIZE};
}

std::int32_t IndexBuild::flush(Layer& layer) {
    const std::int32_t code = disk_.write(layer.written, layer.bytes, {});
    layer.written += static_cast<std::int64_t>(layer.bytes.size());
    layer.bytes.clear();
    return code;
}

// What is added stays in memory until more comes, so that the end of the file can be written last.
std::int32_t IndexBuild::add(std::string_view key, std::int32_t row) {
    Layer& layer = layers_[layerOf(next_.level)];
    if (layer.bytes.size() >= stretchBytes) {
        if (const std::int32_t code = flush(layer); code != 0) return code;
    }
    const Place left = next_.child(0), right = next_.child(1);
    const std::size_t at = layer.bytes.size();
    layer.bytes.resize(at + IndexNodeHeadBytes);
    char* const head = layer.bytes.data() + at;
    PutWord(head + WordRow * WordBytes, row);
    PutWord(head + WordBalance * WordBytes, heightAt(right) - heightAt(left));
    PutWord(head + WordLeft * WordBytes, has(left) ? numberOf(left) : 0);
    PutWord(head + WordRight * WordBytes, has(right) ? numberOf(right) : 0);
    layer.bytes += key;
    step();
    return 0;
}

std::int32_t IndexBuild::writeRest() {
    for (Layer& layer : layers_) {
        const bool last = &layer == &layers_.back();
        char control[IndexControlWords * WordBytes], before[IndexControlWords * WordBytes];
        PutControl(before, 0, 0);
        PutControl(control, numberOf({}), 0);
        std::int32_t code = 0;
        if (last) code = disk_.write(IndexControlAt, {control, sizeof control}, {before, sizeof before});
        if (code == 0) code = flush(layer);
        if (code != 0) return code;
    }
    return 0;
}

std::int32_t IndexBuild::finish() {
    std::int32_t code = writeRest();
    if (code == 0) code = disk_.close();
    if (code != 0) drop();
    return code;
}

void IndexBuild::drop() {
    if (disk_.isOpen() || disk_.reopen() == 0) disk_.takeBack();
    disk_.close();
}

}  // namespace tarn
