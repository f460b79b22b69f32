// SPDX-License-Identifier: Apache-2.0
//
// Sorts the keys of the rows of a table, for an index that is written at once. Only the modules of tables in
// files include this.
//
// Memory is bounded: keys are gathered up to a number of bytes; where there are more, each such run is sorted
// and written to a scratch file beside the index, and the runs are merged when they are read. Besides that,
// one block of 64 KB for each run.
//
// Cost: n log n comparisons, nearly all of them of the first 8 bytes of keys.
#pragma once

#include "kernel/index/index_filelayout.h"
#include "kernel/lists/rowfile_names.h"
#include "os/tinylimits.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class KeySort {
public:
    static constexpr std::size_t usualBytes = limits::KeySortBytes;
    // A key of more bytes is none for this.
    static constexpr std::int32_t mostKeyBytes = 4096;

    struct Entry {
        std::string_view key;  // as it stands in a node, until the next is asked for
        std::int32_t row = 0;
        bool again = false;  // its key is that of the one before
    };

    // `beside` is the index file; `count` is how many keys will come.
    KeySort(const KeyLayout& layout, std::string beside, std::int32_t count, std::size_t mostBytes);
    KeySort(const KeySort&) = delete;
    KeySort& operator=(const KeySort&) = delete;

    // These give false when the scratch file cannot be written or read; no error is set. Memory that is short
    // throws.

    // The key of row 1, of row 2 and so on. `fits` tells whether it is one of this layout.
    bool add(const KeyView& key, bool& fits);
    // After the last; again when they are to be read from the lowest on once more.
    bool start();
    // The next one, of as many as came. Equal keys come in the order of their rows.
    bool next(Entry& entry);

private:
    struct Place {
        std::uint64_t head;   // of the key: what it is compared by first
        std::uint32_t index;  // in the run
    };
    struct Run {
        std::int64_t at, end;  // what is not read yet, in the scratch file
        std::string block;
        std::size_t used = 0;  // of the block
        std::uint64_t head = 0;
    };

    [[nodiscard]] std::uint64_t headOf(const char* key) const;
    [[nodiscard]] int compare(const char* a, const char* b) const;
    [[nodiscard]] const char* keyAt(std::uint32_t index) const {
        return keys_.data() + std::size_t{index} * keyBytes_;
    }
    [[nodiscard]] static const char* keyOf(const Run& run) {
        return run.block.data() + run.used + sizeof(std::int32_t);
    }
    void sortRun();
    bool writeRun();
    bool advance(std::size_t number);
    [[nodiscard]] bool comesLater(std::size_t a, std::size_t b) const;
    struct Later {
        const KeySort& sort;
        bool operator()(std::size_t a, std::size_t b) const { return sort.comesLater(a, b); }
    };
    bool nextMerged(Entry& entry, std::uint64_t& head);

    KeyLayout layout_;
    std::string beside_;
    std::size_t keyBytes_, recordBytes_, perRun_, blockBytes_;
    std::vector<Place> places_;
    std::string keys_;
    std::int32_t firstRow_ = 1;  // of the run in memory
    std::size_t taken_ = 0;      // of its places
    NewFile scratch_;
    std::int64_t scratchBytes_ = 0;
    std::vector<std::int64_t> runEnds_;  // in the scratch file
    std::vector<Run> runs_;
    std::vector<std::size_t> heap_;  // of runs; the lowest key on top
    std::size_t given_ = 0;          // the run of the key that was given last
    std::string before_;             // that key
    std::uint64_t headBefore_ = 0;
};

}  // namespace tarn
