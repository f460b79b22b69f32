// SPDX-License-Identifier: Apache-2.0
//
// Changes of several files that belong together: all of them are made, or none is. What cannot be done at once on a disk
// is made so by a note: before the first file is touched, the old and the new contents of all of them stand, synced, in
// one file of `changesFolder()`. It goes when the last file is written. A note that is found there later is that of a
// process that died between: `finishChanges` makes the rest of its changes. So
//
//   - a failure (a full disk, no permission) at any file puts those before it back, and nothing has changed;
//   - a death before the note is whole leaves all files old; a death behind it leaves what the next start finishes;
//   - a file that somebody has changed since is never written over.
//
// Each single file is written as saveFile does: links are written through, owner and permissions kept, the old or the new
// contents there at every moment.
//
// The note, lines ended by LF:
//
//     tarnwick changes 1
//     DIGEST                      of all that follows, decimal
//     PATH-SIZE OLD-SIZE NEW-SIZE for each file, sizes in bytes; -1 for a file that is not there
//     (empty line)
//     path, old contents, new contents of each file, nothing between
//
// Cost: reads every file, writes it twice, and waits for the disk some three times for each.
#pragma once

#include "os/files.h"

#include <string>
#include <vector>

namespace tarn::os {

struct FileChange {
    enum class Kind {
        Write,   // the whole new contents; made if it is not there
        Create,  // the same, but it must not exist yet: Exists
        Remove,  // one that is not there is no error
    };
    std::string path;  // full
    std::string bytes;
    Kind kind = Kind::Write;
};

struct ChangeResult {
    FileError error = FileError::None;
    std::string path;  // which file failed; of the note, if none of them is to blame
    bool pending =
        false;  // what was done could not be undone either: the note stays, and the next start finishes it
    [[nodiscard]] bool ok() const { return error == FileError::None; }
};

// Makes the changes in their order, each path at most once. A file whose contents are those already is left alone.
[[nodiscard]] ChangeResult changeFiles(const std::vector<FileChange>& changes);

struct FinishedChanges {
    std::vector<std::string> written;  // files that were brought to their new contents now
    std::vector<std::string> left;     // files that somebody had changed meanwhile; they stay as they are
    std::vector<std::string> failed;   // files that could not be written; their note stays for another time
    std::vector<std::string> damaged;  // notes that could not be read; they are kept under another name
};
// What processes that died have left. To be called at start, before any of the files is read.
FinishedChanges finishChanges();

std::string changesFolder();  // $XDG_STATE_HOME/tarnwick/changes/

}  // namespace tarn::os
