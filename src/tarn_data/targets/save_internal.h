// SPDX-License-Identifier: Apache-2.0
//
// What the modules share that write targets.
#pragma once

#include "os/savestream.h"
#include "tarn_data/commands/commands.h"

#include <string>
#include <string_view>

namespace tarn::datatool {

Problem unwritable(const std::string& file, std::string_view why);
Problem stoppedAhead(const std::string& file);  // of the replacing

// A file that comes in pieces, and takes the target's place when all of it is there.
class OutFile {
public:
    explicit OutFile(const std::string& file) : file_(file), stream_(os::native(file)) {}
    void write(std::string_view bytes) { stream_.write(bytes); }
    [[nodiscard]] bool good() const { return stream_.ok(); }
    [[nodiscard]] Problem stopped() const { return stoppedAhead(file_); }
    Problem finish();

private:
    std::string file_;
    os::SaveStream stream_;
};

}  // namespace tarn::datatool
