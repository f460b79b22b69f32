// SPDX-License-Identifier: Apache-2.0
//
// A folder of its own for a test, which goes with everything in it, and variables of the environment that
// come back.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

namespace tarn {

class TempFolder {
public:
    TempFolder() {
        std::string pattern = "/tmp/tarnwick-test-XXXXXX";
        const char* const made = ::mkdtemp(pattern.data());
        path_ = made != nullptr ? made : "";
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    // Without "/" at the end; empty if the folder could not be made.
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

class Variable {
public:
    Variable(const char* name, const std::string& value) : Variable(name, value.c_str()) {}
    Variable(const char* name, const char* value) : name_(name) {  // null: unset
        const char* const old = std::getenv(name);
        wasSet_ = old != nullptr;
        if (wasSet_) old_ = old;
        set(value);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { set(wasSet_ ? old_.c_str() : nullptr); }

private:
    void set(const char* value) {
        if (value != nullptr) {
            ::setenv(name_, value, 1);
        } else {
            ::unsetenv(name_);
        }
    }

    const char* name_;
    bool wasSet_ = false;
    std::string old_;
};

}  // namespace tarn
