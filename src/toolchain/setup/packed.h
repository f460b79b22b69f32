// SPDX-License-Identifier: Apache-2.0
//
// The xz stream of a package: written piece by piece, and read from the start to its end. Cost: linear; some 60 MB of
// memory for writing, 10 MB for reading.
#pragma once

#include "os/files.h"
#include "toolchain/setup/package.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tarn::setup {

// Takes bytes; false: it can take no more.
using Sink = std::function<bool(std::string_view)>;

class Packer {
public:
    explicit Packer(Sink sink);
    ~Packer();
    Packer(const Packer&) = delete;
    Packer& operator=(const Packer&) = delete;

    bool write(std::string_view bytes);
    bool finish();

private:
    struct Stream;
    bool run(std::string_view bytes, bool last);

    std::unique_ptr<Stream> stream_;
    Sink sink_;
};

// A package within a file.
class Unpacker {
public:
    Unpacker(const std::string& file, const Layout& layout);
    ~Unpacker();
    Unpacker(const Unpacker&) = delete;
    Unpacker& operator=(const Unpacker&) = delete;

    // What is wrong, empty if nothing is. The head first, once; then the files in their order.
    std::string readHead(Package& package);
    // The next file's bytes go to the sink, or nowhere.
    std::string readFile(const PackedFile& file, const Sink& sink);
    // Behind the last file: whether the stream ends there and its own check holds.
    std::string end();

private:
    struct Stream;
    bool fill();

    std::unique_ptr<Stream> stream_;
    std::string ready_;
    bool ended_ = false, broken_ = false;
};

}  // namespace tarn::setup
