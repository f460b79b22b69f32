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
    if (temporary_.empty()) return;
    if (inPlace_)
        removeRescueCopy(temporary_);
    else
        files().remove(temporary_);
    temporary_.clear();
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
    gathersAll_ = ok() && target.info.special;
    if (!ok() || gathersAll_) return false;
    if (target.info.links > 1) return beginInPlace(target);
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
    if (error == FileError::Denied && replaces_) return beginInPlace(target);
    error_ = error;
    return false;
}

bool SaveStream::beginInPlace(const SaveTarget& target) {
    NewFile made;
    error_ = beginRescueCopy(target, durability_, made);
    if (!ok()) return false;
    inPlace_ = true;
    handle_ = made.handle;
    temporary_ = made.path;
    written_ = started_ = 0;
    return true;
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

// The file cannot be replaced after all: what was written goes to a rescue copy.
void SaveStream::copyTemporary() {
    const std::string written = std::exchange(temporary_, {});
    const std::int64_t size = written_;
    SaveTarget target;
    Handle from = -1;
    error_ = files().open(written, OpenMode::Read, 0, from);
    if (ok()) error_ = findSaveTarget(path_, target);
    std::string piece;
    for (bool begun = ok() && beginInPlace(target); begun && ok() && written_ < size;) {
        std::size_t got = 0;
        piece.resize(SaveStreamBytes);
        error_ = readUpTo(from, written_, piece.data(), piece.size(), got);
        if (ok() && got == 0) error_ = FileError::ReadFailed;
        if (ok()) put(std::string_view(piece).substr(0, got));
    }
    if (from >= 0) files().close(from);
    files().remove(written);
}

SaveResult SaveStream::finishInPlace() {
    SaveTarget target;
    if (ok()) error_ = finishFile(std::exchange(handle_, -1), durability_);
    if (ok() && durability_ == Durability::Synced) error_ = files().syncFolder(rescueFolder());
    if (ok()) error_ = findSaveTarget(path_, target);
    if (!ok()) {
        drop();
        return {error_, true, {}};
    }
    return saveFromRescueCopy(target, std::exchange(temporary_, {}), written_, durability_);
}

SaveResult SaveStream::finish() {
    if (ok() && handle_ < 0) return saveFile(path_, std::exchange(gathered_, {}), durability_);
    if (ok() && !gathered_.empty()) put(gathered_);
    if (ok() && inPlace_) return finishInPlace();
    if (ok()) {
        error_ = finishFile(std::exchange(handle_, -1), durability_);
        if (ok()) error_ = files().rename(temporary_, target_);
        if (error_ == FileError::NotFound) error_ = FileError::Vanished;
        if (error_ == FileError::Denied && replaces_) {
            copyTemporary();
            return finishInPlace();
        }
        if (ok()) temporary_.clear();
        if (ok() && durability_ == Durability::Synced) error_ = files().syncFolder(folderOf(target_));
    }
    drop();
    return {error_, false, {}};
}

}  // namespace tarn::os
