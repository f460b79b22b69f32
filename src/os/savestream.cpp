// SPDX-License-Identifier: Apache-2.0
#include "os/savestream.h"

#include "os/paths.h"
#include "os/save_parts.h"

#include <utility>

namespace tarn::os {

SaveStream::SaveStream(std::string path, Durability durability)
    : path_(std::move(path)), durability_(durability) {}

SaveStream::~SaveStream() {
    try {
        drop();
    } catch (...) {  // the end of the process, in a test
    }
}

void SaveStream::drop() {
    if (handle_ >= 0) files().close(std::exchange(handle_, -1));
    if (!temporary_.empty()) files().remove(std::exchange(temporary_, {}));
}

void SaveStream::write(std::string_view bytes) {
    constexpr std::size_t worthACall = SaveStreamBytes / 16;
    if (!ok()) return;
    if (handle_ >= 0 && gathered_.empty() && bytes.size() >= worthACall) return put(bytes);
    gathered_ += bytes;
    if (gathersAll_ || gathered_.size() < SaveStreamBytes) return;
    if (handle_ < 0 && !beginTemporary()) return;
    put(gathered_);
    gathered_.clear();
}

// False: everything is gathered, or an error was found.
bool SaveStream::beginTemporary() {
    SaveTarget target;
    error_ = findSaveTarget(path_, target);
    gathersAll_ = ok() && (target.info.special || target.info.links > 1);
    if (!ok() || gathersAll_) return false;
    replaces_ = target.info.exists;
    NewFile made;
    FileError error = makeUniqueFile(temporaryStart(target), TemporaryEnd,
                                     replaces_ ? PrivateFileMode : UsualFileMode, made);
    if (error == FileError::None) {
        handle_ = made.handle;
        temporary_ = made.path;
        target_ = target.path;
        if (replaces_) error = takeOver(target.info, made.path);
    }
    if (error == FileError::None) return true;
    drop();
    gathersAll_ = error == FileError::Denied && replaces_;
    if (!gathersAll_) error_ = error;
    return false;
}

void SaveStream::put(std::string_view bytes) {
    error_ = files().write(handle_, written_, bytes);
    written_ += static_cast<std::int64_t>(bytes.size());
    if (!ok()) return drop();
    // So that the sync at the end, which nothing can interrupt, finds little to wait for.
    if (durability_ != Durability::Synced || written_ - started_ < SaveStreamAhead) return;
    files().startSync(handle_);
    started_ = written_;
}

// The file cannot be replaced after all: what was written is read again, to be written over it.
SaveResult SaveStream::writeInPlace() {
    gathered_.resize(static_cast<std::size_t>(written_));
    error_ = files().open(temporary_, OpenMode::Read, 0, handle_);
    if (!ok()) return {error_, false, {}};
    std::size_t done = 0, got = 1;
    while (ok() && done < gathered_.size() && got != 0) {
        error_ = files().read(handle_, static_cast<std::int64_t>(done), gathered_.data() + done,
                              gathered_.size() - done, got);
        done += got;
    }
    if (ok() && done < gathered_.size()) error_ = FileError::ReadFailed;
    drop();
    return ok() ? saveFile(path_, std::exchange(gathered_, {}), durability_) : SaveResult{error_, false, {}};
}

SaveResult SaveStream::finish() {
    if (ok() && handle_ < 0) return saveFile(path_, std::exchange(gathered_, {}), durability_);
    if (ok() && !gathered_.empty()) put(gathered_);
    if (ok()) {
        error_ = finishFile(std::exchange(handle_, -1), durability_);
        if (ok()) error_ = files().rename(temporary_, target_);
        if (error_ == FileError::NotFound) error_ = FileError::Vanished;
        if (error_ == FileError::Denied && replaces_) return writeInPlace();
        if (ok()) temporary_.clear();
        if (ok() && durability_ == Durability::Synced) error_ = files().syncFolder(folderOf(target_));
    }
    drop();
    return {error_, false, {}};
}

}  // namespace tarn::os
