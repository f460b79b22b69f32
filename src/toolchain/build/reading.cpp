// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/reading.h"

#include "toolchain/language/classes.h"

namespace tarn::toolchain {

os::FileError ReadingFiles::open(const std::string& path, os::OpenMode mode, std::uint32_t permissions,
                                 os::Handle& handle) {
    const os::FileError error = next_.open(path, mode, permissions, handle);
    if (error != os::FileError::None || mode != os::OpenMode::Read || !isClassFile(path)) return error;
    std::string& text = texts_[path];
    text.clear();
    open_[handle] = &text;
    return error;
}

os::FileError ReadingFiles::read(os::Handle handle, std::int64_t offset, char* into, std::size_t count,
                                 std::size_t& got) {
    const os::FileError error = next_.read(handle, offset, into, count, got);
    const auto place = open_.find(handle);
    if (error == os::FileError::None && place != open_.end() &&
        offset == static_cast<std::int64_t>(place->second->size()))
        place->second->append(into, got);
    return error;
}

os::FileError ReadingFiles::close(os::Handle handle) {
    open_.erase(handle);
    return next_.close(handle);
}

}  // namespace tarn::toolchain
