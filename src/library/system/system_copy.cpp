// SPDX-License-Identifier: Apache-2.0
//
// Copies of files. The bytes go through a temporary that takes the destination's place when all of them are
// there and as many as the source has, so that whatever fails leaves the destination as it was.
#include "library/system/copyfile.h"
#include "library/system/files.h"

#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/windows/windowing.h"
#include "library/system/longwork.h"
#include "library/system/savereport_internal.h"
#include "library/system/strings.h"
#include "os/files.h"
#include "os/savestream.h"

#include <optional>

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::size_t PieceBytes = ProgressStep;

bool isSameFile(const std::string& a, const std::string& b) {
    const os::FileInfo first = os::infoOf(a), second = os::infoOf(b);
    return first.exists && second.exists && first.device == second.device && first.inode == second.inode;
}

// A destination without a folder lies beside the source, whatever its drive; one that is a folder gets the
// source's name.
std::string completeDestination(const std::string& source, const std::string& dest) {
    const PathParts parts = SPLITPATH(dest);
    std::string out = parts.directory.empty() ? FILEGETDIR(source) + parts.name + parts.extension : dest;
    if (out.ends_with('/') || out.ends_with('\\')) out += FILEGETFNAME(source);
    return out;
}

// The source while it is read.
class Source {
public:
    explicit Source(const std::string& path)
        : error_(os::files().open(os::native(path), os::OpenMode::Read, 0, handle_)) {}
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    ~Source() {
        try {
            if (handle_ >= 0) os::files().close(handle_);
        } catch (...) {  // the end of the process, in a test
        }
    }
    [[nodiscard]] os::FileError error() const { return error_; }
    // Empty at the end and after a failure.
    std::string_view piece() {
        std::size_t got = 0;
        error_ = os::readUpTo(handle_, done_, bytes_.data(), bytes_.size(), got);
        if (error_ != os::FileError::None) got = 0;
        done_ += static_cast<std::int64_t>(got);
        return std::string_view(bytes_).substr(0, got);
    }
    [[nodiscard]] std::int64_t done() const { return done_; }
    [[nodiscard]] std::int64_t size() const {
        std::int64_t bytes = -1;
        return os::files().size(handle_, bytes) == os::FileError::None ? bytes : -1;
    }

private:
    std::string bytes_ = std::string(PieceBytes, '\0');
    std::int64_t done_ = 0;
    os::Handle handle_ = -1;
    os::FileError error_;
};

std::int32_t failedSave(const std::string& dest, const os::SaveResult& result) {
    detail::LastFailedSave() = {dest, std::string(os::describe(result.error)), result.rescueCopy, false};
    return FileWriteCode(result.error);
}

// The bytes alone: 0, or the code of the failure. A source that changes its size meanwhile is 659, and one
// that grows for ever is read no further than that.
std::int32_t copyBytes(const std::string& source, const std::string& dest, std::int64_t size) {
    Source from(source);
    if (from.error() != os::FileError::None) return FileReadCode(from.error());
    os::SaveStream to(dest);
    std::optional<LongWork> work;
    if (size > static_cast<std::int64_t>(PieceBytes)) work.emplace("Copying '" + FILEGETFNAME(source) + "'");
    for (std::string_view piece = from.piece(); !piece.empty() && to.ok(); piece = from.piece()) {
        if (from.done() > size) return ERR_FILE_COPY_SIZE;
        to.write(piece);
        if (work && !work->go(from.done(), size)) return ERR_FILE_WRITE;
    }
    if (from.error() != os::FileError::None) return FileReadCode(from.error());
    if (to.ok() && from.done() != from.size()) return ERR_FILE_COPY_SIZE;
    const os::SaveResult result = to.finish();
    return result.ok() ? 0 : failedSave(dest, result);
}

// The copy has the bytes and the time of the source, and its permissions where they can be given.
bool copyFile(const std::string& source, const std::string& dest) {
    detail::LastFailedSave() = {};
    const os::FileInfo info = os::infoOf(os::native(source));
    if (info.folder || info.special) return Refuse(ERR_FILE_READ);
    if (const std::int32_t code = copyBytes(source, dest, info.size)) return Refuse(code);
    if (FileSize(dest) != info.size) return Refuse(ERR_FILE_COPY_SIZE);
    // Some file systems have no permissions to set; the copy is good without them. A copy never runs as its
    // owner.
    constexpr std::uint32_t permissions = 0777;
    (void)os::files().setMode(os::native(dest), info.mode & permissions);
    const os::FileError time = os::files().setModified(os::native(dest), info.modified);
    SetError(FileWriteCode(time));
    return time == os::FileError::None;
}

}  // namespace

bool FILECOPY(const std::string& source, const std::string& dest, bool confirm) {
    FRAME(FILECOPY);
    const std::string target = completeDestination(source, dest);
    if (!FILECHK(source) || !FILECHK(target)) return false;
    STAMP();
    const bool exists = FileSize(target) >= 0;
    if (exists && confirm) {
        STAMP();
        const std::string question = "'" + target + "' already exists, do you want to replace it?";
        if (MsgBox("Copy File", question, "Replace\nCancel") != "Replace") return false;
    }
    STAMP();
    return COPYANYFILE(source, target);
}

bool COPYANYFILE(const std::string& source, const std::string& dest) {
    FRAME(COPYANYFILE);
    if (isSameFile(os::native(source), os::native(dest))) return true;
    if (STREQUAL(source, dest) && FileSize(dest) >= 0) return false;
    STAMP();
    return copyFile(source, dest);
}

}  // namespace tarn
