// SPDX-License-Identifier: Apache-2.0
//
// The files of an instance in the user's run-time folder, for this layer's own use.
#pragma once

#include <string>
#include <utility>

namespace tarn::os {

// Owns a descriptor. Closing it takes back no lock that a copy of it in another process still holds.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor();
    [[nodiscard]] int number() const { return number_; }
    [[nodiscard]] bool valid() const { return number_ >= 0; }

private:
    int number_ = -1;
};

// The run-time folder, made if it is missing. Not valid if it belongs to someone else or cannot be closed to
// others.
Descriptor openRuntimeFolder();

// The name of a file of the instance `name`: at most 100 bytes, without separators, different for different
// names.
std::string runtimeFileName(const std::string& name, const char* extension);

bool holdsInstanceLock(const std::string& name);

}  // namespace tarn::os
