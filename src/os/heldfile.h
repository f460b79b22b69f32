// SPDX-License-Identifier: Apache-2.0
//
// A file that tells whether the process it belongs to lives: a lock (flock) on it, which ends with the process, however
// that ends. Programs that are started do not get it. It counts for all processes that see the file, whatever names
// they have for it.
//
// Cost: four system calls.
#pragma once

#include <string>

namespace tarn::os {

class HeldFile {
public:
    enum class Taken {
        Yes,
        No,      // somebody holds it, or has removed or replaced it meanwhile
        Failed,  // it is no file, cannot be opened, or its disk has no locks
    };

    HeldFile() = default;
    ~HeldFile();
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

    // Takes the lock of a file that is there, without waiting; of a link it takes none. Once for each object.
    [[nodiscard]] Taken take(const std::string& path);

private:
    int descriptor_ = -1;
};

}  // namespace tarn::os
