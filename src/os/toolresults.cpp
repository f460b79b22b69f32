// SPDX-License-Identifier: Apache-2.0
#include "os/toolresults.h"

#include "os/files.h"
#include "os/process.h"
#include "os/runtimefiles_internal.h"

#include <sys/stat.h>
#include <unistd.h>

namespace tarn::os {
namespace {

// In a folder such as /tmp only the owner of a file, or of the folder, can put another one in its place.
bool isReplaceable(const FileInfo& file, const FileInfo& folder) {
    const bool guarded = (folder.mode & S_ISVTX) != 0;
    const auto user = ::geteuid();
    return !file.exists || !guarded || user == 0 || file.owner == user || folder.owner == user;
}

}  // namespace

std::string resultFile(const std::string& folder, std::string_view name) {
    const std::string beside = folder + std::string(name);
    const FileInfo place = infoOf(folder);
    if (!place.folder || (place.writable && isReplaceable(infoOf(beside), place))) return beside;
    // Without a folder of one's own there is no second place; writing beside the tool then tells why it fails.
    return openRuntimeFolder().valid() ? runtimeFolder() + std::string(name) : beside;
}

}  // namespace tarn::os
