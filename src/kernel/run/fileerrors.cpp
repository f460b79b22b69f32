// SPDX-License-Identifier: Apache-2.0
#include "kernel/run/fileerrors.h"

#include "kernel/run/errors.h"

namespace tarn {

std::int32_t FileReadCode(os::FileError error) {
    switch (error) {
    case os::FileError::None: return 0;
    case os::FileError::Vanished: return ERR_FILE_VANISHED;
    case os::FileError::BadName: return ERR_FILE_NAME;
    default: return ERR_FILE_READ;
    }
}

std::int32_t FileWriteCode(os::FileError error) {
    switch (error) {
    case os::FileError::None: return 0;
    case os::FileError::Vanished: return ERR_FILE_VANISHED;
    case os::FileError::DiskFull: return ERR_DISK_FULL;
    case os::FileError::BadName: return ERR_FILE_NAME;
    default: return ERR_FILE_WRITE;
    }
}

std::int32_t ReadWhole(os::Handle handle, std::int64_t offset, char* into, std::size_t count) {
    std::size_t got = 0;
    const os::FileError error = os::readUpTo(handle, offset, into, count, got);
    if (error != os::FileError::None) return FileReadCode(error);
    return got == count ? 0 : std::int32_t{ERR_FILE_READ};
}

bool IsFileFailure(std::int32_t code) {
    return code >= ERR_FILE_READ && code <= ERR_FILE_NAME;
}

bool IsMemoryError(std::int32_t code) {
    return code == ERR_OUT_OF_MEMORY || code == ERR_BLOCK_TOO_LARGE;
}

bool IsMissing(os::FileError error) {
    return error == os::FileError::NotFound || error == os::FileError::NotFolder;
}

}  // namespace tarn
