// SPDX-License-Identifier: Apache-2.0
//
// See fileerrors.h. Pure mappings: no frames.
#include "library/fileerrors.h"

#include "kernel/errors.h"

namespace tarn::detail {

std::int32_t readErrorCode(os::FileError error) {
    switch (error) {
    case os::FileError::None: return 0;
    case os::FileError::Vanished: return ERR_FILE_VANISHED;
    case os::FileError::BadName: return ERR_FILE_NAME;
    default: return ERR_FILE_READ;
    }
}

std::int32_t writeErrorCode(os::FileError error) {
    switch (error) {
    case os::FileError::None: return 0;
    case os::FileError::Vanished: return ERR_FILE_VANISHED;
    case os::FileError::DiskFull: return ERR_DISK_FULL;
    case os::FileError::BadName: return ERR_FILE_NAME;
    default: return ERR_FILE_WRITE;
    }
}

bool isMissing(os::FileError error) {
    return error == os::FileError::NotFound || error == os::FileError::NotFolder;
}

}  // namespace tarn::detail
