// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/files/dlgtest.h"

#include "ide/designer/files/scratch.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>
#include <cstdlib>

MODULE("dlgedit")

namespace tarn {
namespace {

constexpr std::string_view ByteOrderMark = "\xef\xbb\xbf";

std::string textWithEnds(std::string_view text, const std::string& end) {
    return STRTRIM(text) + end + end;
}

bool isSymbol(const std::string& word) {
    std::size_t position = 1;
    return !word.empty() && NextWord(word, position) == word && !(word[0] >= '0' && word[0] <= '9');
}

std::string temporaryFolder() {
    const char* const folder = std::getenv("TMPDIR");
    return FILEADDSEPARATOR(folder == nullptr || *folder == '\0' ? "/tmp" : folder);
}

void NORMALISE(const std::string& file, bool fromFirst) {
    FRAME(NORMALISE);
    STAMP();
    const std::string names = RESOURCENAMES(file, "DIALOG").text;
    const int count = STRLINES(names);
    for (int n = fromFirst ? 1 : std::max(count, 1); n <= count; ++n) {
        STAMP();
        const std::string name = STRLINE(names, n);
        DialogObjects objects;
        if (isSymbol(name) && READOBJECTS(file, name, objects).empty())
            static_cast<void>(ResourceWrite(objects.dialog, objects.menu, file));
    }
}

}  // namespace

// A text that cannot be brought into form is joined as it stands: nothing of either is lost.
std::string DIALOGMERGERCTEXT(const std::string& target, const std::string& source, bool fromFirst) {
    FRAME(DIALOGMERGERCTEXT);
    STAMP();
    const std::string end = source.ends_with("\r\n") ? "\r\n" : "\n";
    std::string_view added = source;
    if (added.starts_with(ByteOrderMark)) added.remove_prefix(ByteOrderMark.size());
    std::string text = textWithEnds(target, end) + textWithEnds(added, end);
    const std::string file = FILETEMPNAME(temporaryFolder(), "~dlgmerge", ".tmp");
    if (os::saveNewFile(file, text, 0600) != os::FileError::None) return text;
    STAMP();
    NORMALISE(file, fromFirst);
    STAMP();
    std::string joined;
    if (os::readFile(file, joined) == os::FileError::None) text = joined;
    os::files().remove(file);
    return text;
}

}  // namespace tarn
