// SPDX-License-Identifier: Apache-2.0
#include "toolchain/setup/install.h"

#include "os/paths.h"
#include "toolchain/setup/work_internal.h"

#include <algorithm>

namespace tarn::setup {
namespace {

using os::FileError;

constexpr std::uint32_t Executable = 0755, Plain = 0644;
constexpr std::int64_t EntriesRoom = 1024 * 1024;  // bytes for what is written beside the files

std::string failed(const std::string& path, FileError error) {
    return "'" + path + "': " + std::string(os::describe(error));
}

// The folders that are missing on the way to one, the outermost first.
std::vector<std::string> missingFolders(std::string folder) {
    std::vector<std::string> missing;
    for (; folder.size() > 1 && !exists(folder); folder = os::folderOf(folder)) missing.push_back(folder);
    std::reverse(missing.begin(), missing.end());
    return missing;
}

// A new file, on the disk when it is finished.
class NewFile {
public:
    NewFile(const std::string& path, std::uint32_t mode) {
        error_ = os::files().open(path, os::OpenMode::CreateNew, mode, handle_);
    }
    ~NewFile() {
        try {
            if (handle_ >= 0) os::files().close(handle_);
        } catch (...) {  // the end of the process, in a test
        }
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    bool write(std::string_view bytes) {
        if (error_ == FileError::None) error_ = os::files().write(handle_, at_, bytes);
        at_ += static_cast<std::int64_t>(bytes.size());
        sum_ = addToSum(sum_, bytes);
        return error_ == FileError::None;
    }
    FileError finish() {
        if (error_ == FileError::None) error_ = os::files().sync(handle_);
        if (handle_ >= 0) {
            const FileError closed = os::files().close(handle_);
            if (error_ == FileError::None) error_ = closed;
        }
        handle_ = -1;
        return error_;
    }
    [[nodiscard]] FileError error() const { return error_; }
    [[nodiscard]] std::uint64_t sum() const { return sum_; }

private:
    os::Handle handle_ = -1;
    FileError error_ = FileError::None;
    std::int64_t at_ = 0;
    std::uint64_t sum_ = 0;
};

class Installation {
public:
    Installation(const Installer& installer, const Places& places, const GoesOn& goesOn)
        : installer_(installer), package_(installer.package), places_(places), goesOn_(goesOn),
          work_(places.app) {}

    std::string run() {
        using Step = std::string (Installation::*)();
        for (const Step step :
             {&Installation::checkPlace, &Installation::makeWorkFolder, &Installation::unpack,
              &Installation::copyUninstaller, &Installation::writeList}) {
            const std::string failure = (this->*step)();
            if (failure.empty()) continue;
            work_.remove();
            removeNotedFolders(places_.app);
            restorePlace();
            return failure;
        }
        return takePlace();
    }

private:
    // ---- before anything is made ----

    std::string checkPlace() {
        if (places_.app.find_first_of("\n\r\\") != std::string::npos || !places_.app.starts_with('/'))
            return "'" + places_.app + "' is no full path of a folder.";
        const os::FileInfo info = os::infoOf(places_.app);
        if (!info.exists) return {};
        if (!info.folder) return "'" + places_.app + "' is a file.";
        if (readInstalled(places_.app, before_))
            return before_.name == package_.name
                       ? std::string()
                       : "'" + places_.app + "' holds another program, '" + before_.name + "'.";
        // An empty folder may have been made for this; anything else is somebody's.
        wasEmpty_ = os::files().removeFolder(places_.app) == FileError::None;
        return wasEmpty_ ? std::string()
                         : "'" + places_.app + "' is there already and was not made by this installer.";
    }

    std::string makeWorkFolder() {
        const std::string parent = os::folderOf(places_.app);
        for (const std::string& folder : {parent, places_.menu})
            for (const std::string& missing : missingFolders(folder))
                if (std::find(list_.folders.begin(), list_.folders.end(), missing) == list_.folders.end())
                    list_.folders.push_back(missing);
        const std::string failure = makeNotedFolders(places_.app, list_.folders);
        if (!failure.empty()) return failure;
        std::int64_t free = 0;
        const std::int64_t needed = package_.size() + installer_.layout.program + EntriesRoom;
        if (os::files().freeSpace(parent, free) == FileError::None && free < needed)
            return "There is not enough space in '" + parent + "': " + std::to_string(needed) +
                   " bytes are needed, " + std::to_string(free) + " are free.";
        for (const std::string& folder : {work_.path(), work_.fresh()}) {
            const FileError error = os::files().makeFolder(folder);
            if (error != FileError::None) return failed(folder, error);
        }
        return {};
    }

    // ---- the files, in the work folder ----

    std::string unpack() {
        Unpacker unpacker(installer_.file, installer_.layout);
        Package again;
        std::string failure = unpacker.readHead(again);
        for (const PackedFile& file : package_.files)
            if (failure.empty()) failure = unpack(unpacker, file);
        return failure.empty() ? unpacker.end() : failure;
    }

    std::string unpack(Unpacker& unpacker, const PackedFile& file) {
        const std::string path = work_.fresh() + "/" + file.name;
        NewFile made(path, file.executable ? Executable : Plain);
        bool stopped = false;
        const std::string failure = unpacker.readFile(file, [&](std::string_view bytes) {
            done_ += static_cast<std::int64_t>(bytes.size());
            stopped = goesOn_ && !goesOn_(done_, package_.size());
            return !stopped && made.write(bytes);
        });
        if (stopped) return "The installation was stopped.";
        if (made.error() != FileError::None || (failure.empty() && made.finish() != FileError::None))
            return failed(path, made.error());
        list_.files.push_back({file.name, file.size, made.sum()});
        return failure;
    }

    // This program without its package removes what it has installed.
    std::string copyUninstaller() {
        constexpr std::size_t Piece = 64 * 1024;
        const std::string path = work_.fresh() + "/" + std::string(UninstallName);
        const Layout& layout = installer_.layout;
        NewFile made(path, Executable);
        os::Handle handle = -1;
        FileError error = os::files().open(installer_.file, os::OpenMode::Read, 0, handle);
        if (error != FileError::None) return failed(installer_.file, error);
        std::string piece(Piece, '\0');
        for (std::int64_t at = layout.first; at < layout.packageAt() && error == FileError::None;) {
            std::size_t got = 0;
            const auto count =
                static_cast<std::size_t>(std::min<std::int64_t>(Piece, layout.packageAt() - at));
            error = os::readUpTo(handle, at, piece.data(), count, got);
            if (error == FileError::None && got == 0) error = FileError::ReadFailed;
            if (error == FileError::None && !made.write({piece.data(), got})) error = made.error();
            at += static_cast<std::int64_t>(got);
        }
        os::files().close(handle);
        if (error == FileError::None) error = made.finish();
        return error == FileError::None ? std::string() : failed(path, error);
    }

    std::string writeList() {
        list_.name = package_.name;
        for (const Shortcut& shortcut : package_.shortcuts)
            if (const std::string file = entryFile(package_, shortcut, places_); !file.empty())
                list_.entries.push_back(file);
        // What an earlier version has made is this one's to remove.
        std::vector<std::string> folders = before_.folders;
        for (const std::string& folder : list_.folders)
            if (std::find(folders.begin(), folders.end(), folder) == folders.end()) folders.push_back(folder);
        Installed written = list_;
        written.folders = folders;
        const std::string path = work_.fresh() + "/" + std::string(ListName);
        NewFile made(path, Plain);
        made.write(textOf(written));
        FileError error = made.finish();
        if (error == FileError::None) error = os::files().syncFolder(work_.fresh());
        return error == FileError::None ? std::string() : failed(path, error);
    }

    // ---- into their place ----

    std::string takePlace() {
        std::string failure = beginJournal();
        if (failure.empty()) failure = swap();
        if (failure.empty()) failure = writeEntries();
        if (failure.empty() && !commit()) failure = failed(work_.journal(), FileError::WriteFailed);
        if (failure.empty()) {
            work_.remove();
            removeNotedFolders(places_.app);  // all of them are in use now
            return {};
        }
        const std::string also = undoUnfinished(places_.app);
        restorePlace();
        return also.empty() ? failure : failure + "\n" + also;
    }

    // Keeps the entries as they are, and tells what is about to change.
    std::string beginJournal() {
        Journal journal{before_.name == package_.name, {}};
        std::vector<std::string> paths = list_.entries;
        for (const std::string& entry : before_.entries)
            if (std::find(paths.begin(), paths.end(), entry) == paths.end()) paths.push_back(entry);
        for (const std::string& path : paths) {
            std::string text;
            const bool kept = os::readFile(path, text) == FileError::None;
            const std::string copy = work_.keptEntry(journal.entries.size());
            if (kept) {
                const os::SaveResult saved = os::saveFile(copy, text);
                if (!saved.ok()) return failed(copy, saved.error);
                os::files().setMode(copy, os::infoOf(path).mode & 0777U);
            }
            journal.entries.push_back({path, kept});
        }
        const os::SaveResult saved = os::saveFile(work_.journal(), textOf(journal));
        return saved.ok() ? std::string() : failed(work_.journal(), saved.error);
    }

    std::string swap() {
        if (before_.name == package_.name) {
            const FileError error = os::files().rename(places_.app, work_.old());
            if (error != FileError::None) return failed(places_.app, error);
        }
        FileError error = os::files().rename(work_.fresh(), places_.app);
        if (error == FileError::None && before_.name == package_.name)
            error = moveStrangers(work_.old(), before_, places_.app);
        return error == FileError::None ? std::string() : failed(places_.app, error);
    }

    std::string writeEntries() {
        for (const Shortcut& shortcut : package_.shortcuts) {
            const std::string file = entryFile(package_, shortcut, places_);
            if (file.empty()) continue;
            // Desktops start what lies on them only when it may be run.
            const std::uint32_t mode = shortcut.place == Shortcut::Place::Desktop ? Executable : Plain;
            const FileError error = writeEntry(file, entryText(package_, shortcut, places_), mode);
            if (error != FileError::None) return failed(file, error);
        }
        for (const std::string& entry : before_.entries)
            if (std::find(list_.entries.begin(), list_.entries.end(), entry) == list_.entries.end())
                os::files().remove(entry);
        return {};
    }

    bool commit() {
        os::files().syncFolder(os::folderOf(places_.app));
        return os::files().remove(work_.journal()) == FileError::None;
    }

    void restorePlace() {
        if (wasEmpty_) os::files().makeFolder(places_.app);
    }

    const Installer& installer_;
    const Package& package_;
    const Places& places_;
    const GoesOn& goesOn_;
    const WorkFolder work_;
    Installed before_, list_;
    std::int64_t done_ = 0;
    bool wasEmpty_ = false;  // the place was an empty folder
};

}  // namespace

std::string openInstaller(const std::string& file, const Layout& layout, Installer& installer) {
    installer.file = file;
    installer.layout = layout;
    Unpacker unpacker(file, layout);
    return unpacker.readHead(installer.package);
}

std::string install(const Installer& installer, const Places& places, const GoesOn& goesOn) {
    const std::string failure = undoUnfinished(places.app);
    return failure.empty() ? Installation(installer, places, goesOn).run() : failure;
}

std::string installedName(const std::string& app) {
    Installed installed;
    return readInstalled(app, installed) ? installed.name : std::string();
}

std::string uninstall(const std::string& app, bool& stayed) {
    Installed list;
    const bool wasThere = readInstalled(app, list);
    const std::string failure = undoUnfinished(app);
    stayed = false;
    if (!failure.empty()) return failure;
    list = {};
    if (!readInstalled(app, list))  // a first installation that was not finished is undone by now
        return wasThere ? std::string() : "There is nothing installed in '" + app + "'.";
    for (const std::string& entry : list.entries) {
        const FileError error = os::files().remove(entry);
        if (error != FileError::None && error != FileError::NotFound) return failed(entry, error);
    }
    const FileError error = removeInstalled(app, list);
    if (error != FileError::None) return failed(app, error);
    stayed = exists(app);
    for (auto folder = list.folders.rbegin(); folder != list.folders.rend(); ++folder)
        os::files().removeFolder(*folder);
    return {};
}

}  // namespace tarn::setup
