// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/fonts.h"

#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("toolmenu")

namespace tarn {

bool CHOOSEFONT(const Object& window, bool apply) {
    FRAME(CHOOSEFONT);
    STAMP();
    const Font before{GetFontName(window), GetFontSize(window), GetFontBold(window), GetFontItalic(window)};
    STAMP();
    const Font chosen = FontDialog(window, before);
    STAMP();
    if (chosen == before) return false;
    if (!apply) return true;
    SetFontName(window, chosen.name);
    SetFontSize(window, chosen.size);
    SetFontBold(window, chosen.bold);
    SetFontItalic(window, chosen.italic);
    STAMP();
    return true;
}

void FONTOPTIONSDIALOG() {
    FRAME(FONTOPTIONSDIALOG);
    STAMP();
    if (!CHOOSEFONT(SDIEdit, true)) return;
    SAVEINIFILE(GETIDEINIFILE(), SDIEdit, false, true);
    STAMP();
}

}  // namespace tarn
