// SPDX-License-Identifier: Apache-2.0
// Index files: any bytes are a tree or an error, for every operation, and what an operation leaves can be
// checked. The first byte chooses the fields of the key; the second how many whole records follow the header,
// or 255 for the bytes as they are; the next four are the key that is looked for. The header's first word is
// set, so that most inputs get beyond it.
#include "kernel/index/index_file.h"
#include "kernel/index/index_filecheck.h"
#include "kernel/index/index_tree.h"
#include "kernel/index/indexes.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"

#include "kernel/values/strings.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

using namespace tarn;

const std::string file = "/tmp/tarnwick-fuzz-index-" + std::to_string(getpid());
constexpr std::size_t orders = 6;  // bytes ahead of the file's

void require(bool holds) {
    if (!holds) std::abort();
}

bool write(const std::string& bytes) {
    std::FILE* const out = std::fopen(file.c_str(), "wb");
    if (out == nullptr) return false;
    std::fwrite(bytes.data(), 1, bytes.size(), out);
    return std::fclose(out) == 0;
}

// A key record of one of the shapes, with values made of four bytes.
void makeKey(RecordDescriptor* key, std::uint8_t shape, const std::uint8_t* values) {
    constexpr Kind shapes[][3] = {{KindInteger, KindNone, KindNone},
                                  {KindString, KindNone, KindNone},
                                  {KindArray, KindFixed, KindBoolean},
                                  {KindReal, KindEnum, KindString}};
    const auto& kinds = shapes[shape % 4];
    RecordInit(key, TagRecord, MakeFieldKinds({kinds[0], kinds[1], kinds[2]}));
    const std::string text(reinterpret_cast<const char*>(values), 4);
    for (std::int32_t n = 1; n <= 3 && kinds[n - 1] != KindNone; ++n) {
        void* const field = RecordFieldAddress(key, n);
        if (kinds[n - 1] == KindString) {
            auto* const s = static_cast<StringDescriptor*>(field);
            StringInit(s, shape % 4 == 1 ? 1500 : 4);
            StringAssignView(s, text);
        } else if (kinds[n - 1] == KindArray) {
            auto* const a = static_cast<ArrayDescriptor*>(field);
            ArrayInit(a, KindEnum, 1, 4);
            std::memcpy(At(a->data), text.data(), text.size());
        } else {
            std::memcpy(field, text.data(), kinds[n - 1] == KindInteger ? 4U : 1U);
        }
    }
}

std::string fileOf(const std::uint8_t* data, std::size_t size, std::int32_t recordSize) {
    std::string bytes(reinterpret_cast<const char*>(data) + orders, size - orders);
    if (data[1] != 255)
        bytes.resize(1104 + static_cast<std::size_t>(data[1]) % 32 * static_cast<std::size_t>(recordSize));
    if (bytes.size() >= 4) bytes.replace(0, 4, std::string("\0\0\4\x50", 4));
    return bytes;
}

class Use {
public:
    Use(const IndexBlock& block, const RecordDescriptor* key) : block_(block), key_(key) {
        KeyOfRecord(key, view_);
    }
    void read() {
        for (const char* op : {"EQ", "FIRST", "LAST", "GE", "LE", "GT", "LT"}) {
            RecordValue found;
            AdtCopy(key_, found.get(), KindRecord);
            IndexFind(op, &root_, block_, key_, found.get());
            require(AdtCheck(found.get(), KindRecord).empty());
            end();
        }
        IndexCount(&root_, block_);
        end();
        require(IndexHeight(&root_, block_).height <= MaxTreeDepth);
        end();
        String picture;
        IndexPrint(&root_, block_, picture.get());
        end();
    }
    // Changes of a whole tree leave a whole tree.
    void change() {
        for (int step = 0; step < 4; ++step) {
            const bool whole = check().empty();
            if (step % 2 == 0)
                IndexInsert(&root_, block_, key_, step);
            else
                IndexDelete(&root_, block_, key_);
            const bool good = end();
            require(!whole || (good && check().empty()));
        }
        IndexUpdateRow(&root_, block_, key_, 5);
        end();
        IndexClear(&root_, block_);
        if (end()) require(IndexCount(&root_, block_) == 0 && end());
    }

private:
    std::string check() { return CheckIndexFile(file, view_, -1); }
    static bool end() {
        const std::int32_t error = ErrorCell();
        ClearError();
        require(error == 0 || error == 604 || error == 651 || error == 656 || error == 763);
        return error == 0 || error == 604;
    }

    const IndexBlock& block_;
    const RecordDescriptor* key_;
    KeyView view_;
    RecordDescriptor root_{};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < orders) return 0;
    {
        RecordValue key;
        makeKey(key.get(), data[0], data + 2);
        const IndexBlock block = IndexFileBlock(file, key.get());
        if (!write(fileOf(data, size, block.recordSize))) return 0;
        Use use(block, key.get());
        use.read();
        use.change();
    }
    require(LiveBlocks() == 0);
    std::remove(file.c_str());
    return 0;
}
