// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/filetext.h"

#include "kernel/run/fileerrors.h"
#include "kernel/run/progress.h"

#include <algorithm>
#include <utility>

namespace tarn {

FileText::FileText(const std::string& filename) : stream_(filename) {}

bool FileText::handOn(double share) {
    stream_.write(text);
    handedOn_ += static_cast<std::int64_t>(text.size());
    text.clear();
    if (handedOn_ - told_ >= ProgressStep && good()) {
        told_ = handedOn_;
        const auto expected = static_cast<std::int64_t>(static_cast<double>(told_) / share);
        stopped_ = !Progress(told_, std::max(told_, expected));
    }
    return good();
}

std::int32_t FileText::finish(std::string& rescueCopy) {
    stream_.write(text);
    os::SaveResult saved = stream_.finish();
    rescueCopy = std::move(saved.rescueCopy);
    return FileWriteCode(saved.error);
}

}  // namespace tarn
