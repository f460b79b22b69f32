// SPDX-License-Identifier: Apache-2.0
//
// A file is read into a fresh value, which takes the target's place when all went well. Only the modules of
// data files include this.
#pragma once

#include "kernel/adt.h"

#include <cstddef>
#include <cstring>

namespace tarn {

// An empty value of a target's shape; all zero, and an error in the cell, when there is no memory for it.
class FreshValue {
public:
    FreshValue(void* target, Kind kind) : target_(target), kind_(kind) { AdtInit(bytes_, target, kind); }
    ~FreshValue() { AdtFree(bytes_, kind_); }  // which of the two did not stay with the target
    FreshValue(const FreshValue&) = delete;
    FreshValue& operator=(const FreshValue&) = delete;

    void* get() { return bytes_; }
    void replaceTarget() {
        const auto size = static_cast<std::size_t>(KindSize[kind_]);
        char old[sizeof bytes_];
        std::memcpy(old, target_, size);
        std::memcpy(target_, bytes_, size);
        std::memcpy(bytes_, old, size);
    }

private:
    void* target_;
    Kind kind_;
    char bytes_[sizeof(ArrayDescriptor)];
};

}  // namespace tarn
