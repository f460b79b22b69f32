// SPDX-License-Identifier: Apache-2.0
//
// The class files that a compile reads, exactly as it read them: a file system in front of the one in force that
// keeps what passes through. A file that is saved while it is compiled can so not be noted with a digest of a text
// that was not compiled.
//
// It is the file system in force while an `InForce` of it lives.
#pragma once

#include "os/files.h"

#include <map>
#include <string>

namespace tarn::toolchain {

class ReadingFiles : public os::FileSystem {
public:
    ReadingFiles() : next_(os::files()) {}
    ReadingFiles(const ReadingFiles&) = delete;
    ReadingFiles& operator=(const ReadingFiles&) = delete;

    class InForce {
    public:
        explicit InForce(ReadingFiles& files) : before_(os::useFiles(&files)) {}
        ~InForce() { os::useFiles(before_); }
        InForce(const InForce&) = delete;
        InForce& operator=(const InForce&) = delete;

    private:
        os::FileSystem* before_;
    };

    // What was read of a class file when it was opened last; empty if it was not.
    const std::string& textOf(const std::string& path) { return texts_[path]; }

    os::FileError open(const std::string& path, os::OpenMode mode, std::uint32_t permissions,
                       os::Handle& handle) override;
    os::FileError read(os::Handle handle, std::int64_t offset, char* into, std::size_t count,
                       std::size_t& got) override;
    os::FileError close(os::Handle handle) override;

    os::FileError write(os::Handle handle, std::int64_t offset, std::string_view bytes) override {
        return next_.write(handle, offset, bytes);
    }
    os::FileError truncate(os::Handle handle, std::int64_t size) override {
        return next_.truncate(handle, size);
    }
    os::FileError size(os::Handle handle, std::int64_t& bytes) override { return next_.size(handle, bytes); }
    os::FileError sync(os::Handle handle) override { return next_.sync(handle); }
    void startSync(os::Handle handle) override { next_.startSync(handle); }
    os::FileError rename(const std::string& from, const std::string& to) override {
        return next_.rename(from, to);
    }
    os::FileError renameNew(const std::string& from, const std::string& to) override {
        return next_.renameNew(from, to);
    }
    os::FileError remove(const std::string& path) override { return next_.remove(path); }
    os::FileError makeFolder(const std::string& path) override { return next_.makeFolder(path); }
    os::FileError removeFolder(const std::string& path) override { return next_.removeFolder(path); }
    os::FileError syncFolder(const std::string& path) override { return next_.syncFolder(path); }
    os::FileError setMode(const std::string& path, std::uint32_t mode) override {
        return next_.setMode(path, mode);
    }
    os::FileError setOwner(const std::string& path, std::uint32_t owner, std::uint32_t group) override {
        return next_.setOwner(path, owner, group);
    }
    os::FileError setModified(const std::string& path, std::int64_t nanoseconds) override {
        return next_.setModified(path, nanoseconds);
    }
    os::FileError setModifiedOpen(os::Handle handle, std::int64_t nanoseconds) override {
        return next_.setModifiedOpen(handle, nanoseconds);
    }
    os::FileError link(const std::string& target, const std::string& path) override {
        return next_.link(target, path);
    }
    os::FileError info(const std::string& path, os::FileInfo& info) override {
        return next_.info(path, info);
    }
    os::FileError infoOpen(os::Handle handle, os::FileInfo& info) override {
        return next_.infoOpen(handle, info);
    }
    os::FileError list(const std::string& path, std::vector<std::string>& names) override {
        return next_.list(path, names);
    }
    os::FileError resolve(const std::string& path, std::string& resolved) override {
        return next_.resolve(path, resolved);
    }
    os::FileError freeSpace(const std::string& path, std::int64_t& bytes) override {
        return next_.freeSpace(path, bytes);
    }
    std::string currentFolder() override { return next_.currentFolder(); }
    os::FileError setCurrentFolder(const std::string& path) override { return next_.setCurrentFolder(path); }

private:
    os::FileSystem& next_;
    std::map<std::string, std::string> texts_;
    std::map<os::Handle, std::string*> open_;
};

}  // namespace tarn::toolchain
