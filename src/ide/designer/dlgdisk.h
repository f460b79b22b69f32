// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the dialog editor saw of its dialog in the resource file when it read or wrote it last, so that a save does not
// take away in silence what another program has made of it since. What has changed elsewhere in the file stays there
// with every save and is nobody's question.
//
// Cost: a look at the file's date; it is read again only when that is another.
#pragma once

#include <string>

namespace tarn {

// The dialog and its menu are in the file as the editor has them.
void NOTEDIALOGSEEN(const std::string& file, const std::string& dialog);

// The user has taken the dialog out of the file here; nobody else has.
void NOTEDIALOGREMOVED(const std::string& file, const std::string& dialog);

enum class DialogOnDisk { AsSeen, Changed, Missing, FileMissing, Removed };
DialogOnDisk DIALOGONDISK(const std::string& file, const std::string& dialog);

}  // namespace tarn
