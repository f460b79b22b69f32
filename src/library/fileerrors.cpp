// SPDX-License-Identifier: Apache-2.0
//
// See fileerrors.h. Pure mappings: no frames.
#include "library/fileerrors.h"

namespace tarn::detail {

std::int32_t readErrorCode(os::FileError error) {
    switch (error) {
    case os::FileError::None: return 0;
    case os::FileError::Vanished: return 653;
    case os::FileError::BadName: return 657;
    default: return 651;
    }
}

std::int32_t writeErrorCode(os::FileError error) {
    switch (error) {
    case os::FileError::None: return 0;
    case os::FileError::Vanished: return 653;
    case os::FileError::DiskFull: return 654;
    case os::FileError::BadName: return 657;
    default: return 652;
    }
}

bool isMissing(os::FileError error) {
    return error == os::FileError::NotFound || error == os::FileError::NotFolder;
}

}  // namespace tarn::detail
