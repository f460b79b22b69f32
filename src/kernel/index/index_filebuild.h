// SPDX-License-Identifier: Apache-2.0
//
// Writes the whole tree of an index at once, of keys that come in their order. Only the modules of index
// files and tables include this.
//
// All levels of the tree are full but the last, which is filled from the left: all balances are 0 but on one
// way down. Its levels are cut into layers, so few that the part of one layer below a node is what a search
// reads at once (IndexDisk); the first fits behind the header. The records of a layer stand together in the
// order of their keys. So each such part is one stretch of the file, a search reads it in one go, and a file
// of a million small keys is searched in four readings.
//
// Each layer is written from its start to its end, in long stretches. The root is written when all is there
// but the end of the file: a file whose writing was broken off is short of the rows.
#pragma once

#include "kernel/index/index_filedisk.h"
#include "kernel/index/index_filelayout.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// Results are those of IndexDisk. After a failure the file is empty again, as far as it can be written.
class IndexBuild {
public:
    // An empty index file, as CreateIndexFile makes it, and how many keys will come: at least 1.
    std::int32_t open(const std::string& path, const KeyLayout& layout, std::int32_t count);
    // A key as it stands in a node, above the one before.
    std::int32_t add(std::string_view key, std::int32_t row);
    // When all have come: closes the file.
    std::int32_t finish();
    // Empties the file again and closes it.
    void drop();

private:
    // A node by its level, from 0, and its place among those of that level if they were all there, from 0.
    struct Place {
        std::int32_t level = 0;
        std::int64_t index = 0;
        [[nodiscard]] Place child(int side) const { return {level + 1, 2 * index + side}; }
    };
    struct Layer {
        std::int32_t level;    // its first
        std::int64_t written;  // where the next bytes belong, in the file
        std::string bytes;     // that are not written yet
    };

    void makeLayers();
    [[nodiscard]] bool has(Place place) const;
    [[nodiscard]] std::int32_t heightAt(Place place) const;
    [[nodiscard]] std::int32_t numberOf(Place place) const;
    [[nodiscard]] std::size_t layerOf(std::int32_t level) const;
    [[nodiscard]] Place lowest(Place place) const;
    void step();
    std::int32_t flush(Layer& layer);
    std::int32_t writeRest();

    IndexDisk disk_;
    std::int32_t recordBytes_ = 0, levels_ = 0;
    std::int64_t inLastLevel_ = 0;
    Place next_;
    std::vector<Layer> layers_;
};

}  // namespace tarn
