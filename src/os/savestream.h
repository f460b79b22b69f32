// SPDX-License-Identifier: Apache-2.0
//
// Whole-file saves whose bytes come in pieces, so that a file need not fit into memory. The guarantees are
// those of saveFile.
#pragma once

#include "os/files.h"
#include "os/tinylimits.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::os {

inline constexpr std::size_t SaveStreamBytes = limits::SaveStreamBytes;
// Bytes after which the disk begins with what was written.
inline constexpr std::int64_t SaveStreamAhead = std::int64_t{8 * SaveStreamBytes};

// Gathers bytes up to a bound, and then writes them to a temporary beside the target. Where no new file can
// take the place of the old one (saveFile tells where) all of them are gathered, or read again when that
// shows at the end only. What was not finished is gone, and the file is as it was.
class SaveStream {
public:
    explicit SaveStream(std::string path, Durability durability = Durability::Synced);
    ~SaveStream();
    SaveStream(const SaveStream&) = delete;
    SaveStream& operator=(const SaveStream&) = delete;

    void write(std::string_view bytes);  // nothing after a failure
    [[nodiscard]] bool ok() const { return error_ == FileError::None; }
    // Replaces the file. The first failure of all.
    [[nodiscard]] SaveResult finish();

private:
    bool beginTemporary();
    void put(std::string_view bytes);
    void drop();
    SaveResult writeInPlace();

    std::string path_, temporary_, gathered_, target_;
    Durability durability_;
    FileError error_ = FileError::None;
    Handle handle_ = -1;
    std::int64_t written_ = 0, started_ = 0;  // bytes; those that the disk has begun with
    bool gathersAll_ = false, replaces_ = false;
};

}  // namespace tarn::os
