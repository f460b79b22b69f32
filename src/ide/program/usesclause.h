// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Uses clause of a class, which ties the classes of a program together: names of classes, in any case, parted by
// blanks. Line ends stay as the text has them. Cost: linear in the text.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

struct UsesChange {
    std::string text;      // of the class, changed or as it was
    bool changed = false;  // also false when there was nothing to change
    std::string error;     // a text that cannot be changed; empty on success
};
// The text with a name added ("ADD") or taken out ("DEL"), both in any case; a name that is there already, and one that is
// not, change nothing. For commands that write several files at once (changes.h).
[[nodiscard]] UsesChange CHANGEUSESCLAUSE(const std::string& text, std::string_view operation,
                                          const std::string& name);

// The same on a file; true if it was changed. The text of a file in the Code window is changed there, and saved. A file
// without the extension of a class is left alone. What cannot be changed or written is told.
bool UPDATEUSESCLAUSE(const std::string& file, std::string_view operation, const std::string& name);

}  // namespace tarn
