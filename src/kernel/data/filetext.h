// SPDX-License-Identifier: Apache-2.0
//
// A file that is made piece by piece and takes the place of the old one when all of it is there, so that a
// value which is saved is not in memory a second time. The guarantees are those of os/savestream.h; what was
// not finished is gone, and the old file is as it was.
//
// Only the modules of data files include this.
#pragma once

#include "os/savestream.h"
#include "os/tinylimits.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace tarn {

class FileText {
public:
    explicit FileText(const std::string& filename);

    // The bytes that come next. What stands here can be changed until the next `pass`.
    std::string text;
    // Behind each part of the value: hands the text on when there is enough of it, and tells progress.h how
    // far the work is. False when the saving is to end: the user stopped it, or the file cannot be written.
    bool pass(double done, double total = 1) { return text.size() < pieceBytes || handOn(done / total); }
    [[nodiscard]] bool stopped() const { return stopped_; }
    [[nodiscard]] bool good() const { return !stopped_ && stream_.ok(); }
    // Last; not after a stop. 0 or why the file was not replaced, and where the new bytes are if it may be
    // damaged.
    std::int32_t finish(std::string& rescueCopy);

private:
    bool handOn(double share);

    static constexpr std::size_t pieceBytes = limits::FilePieceBytes;
    os::SaveStream stream_;
    std::int64_t handedOn_ = 0, told_ = 0;  // bytes
    bool stopped_ = false;
};

}  // namespace tarn
