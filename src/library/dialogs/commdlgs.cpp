// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/commdlgs.h"

#include "library/system/system.h"
#include "os/process.h"

MODULE("commdlgs")

namespace tarn {

void SPLASHDLG_SPLASHTEXT(const std::string& line1, const std::string& line2, const std::string& line3) {
    FRAME(SPLASHDLG_SPLASHTEXT);
    STAMP();
    ShowSplash(os::executableFolder() + "logo.bmp", {line1, line2, line3});
}

void SPLASHDLG_SHOWWITHBUTTONS() {
    FRAME(SPLASHDLG_SHOWWITHBUTTONS);
    const std::string product(ProductWord);
    STAMP();
    SPLASHDLG_SPLASHTEXT(product, "Developer Studio", product + " v" + std::string(ProductVersion));
    STAMP();
    WaitEvents(3000, true);
}

void SPLASHDLG_UNLOAD() {
    FRAME(SPLASHDLG_UNLOAD);
    STAMP();
    CloseSplash();
}

}  // namespace tarn
