// SPDX-License-Identifier: GPL-3.0-or-later
//
// Dialogs in files: whether one survives being rewritten, how one runs, and what makes a copied one fit its new home.
// Errors are texts, empty on success.
#pragma once

#include <string>

namespace tarn {

bool ISINRESOURCEFILE(const std::string& file, const std::string& kind, const std::string& name);

struct PropertyTest {
    std::string error;
    std::string scratchFile;  // with `keep`, the file that was written for the test; else empty
};
PropertyTest TESTPROPERTIES(const std::string& file, const std::string& dialog, bool keep = false);
std::string TESTFILEPROPERTIES(const std::string& file);  // of all dialogs of the file
std::string FINDDIFFERENCE(const std::string& list1, const std::string& list2);

// Shows the dialog as a real window, modally; the scratch file with `keep`.
std::string WINDOWTESTERDIALOG(const std::string& title, const std::string& file, const std::string& dialog,
                               bool keep = false);

// These write the file only where something has to change.
std::string FIXPROPERTY_OWNER(const std::string& file, const std::string& dialog);
std::string FIXPROPERTY_POSITION(const std::string& file, const std::string& dialog);
std::string FIXPROPERTY_PICTURE(const std::string& file, const std::string& dialog,
                                const std::string& resourceFolder, const std::string& compilerFolder);
std::string FIXPROPERTY_MENU(const std::string& file, const std::string& dialog, const std::string& names);

// The resource texts joined, dialog by dialog as they are written: of all dialogs, or of the last one alone.
std::string DIALOGMERGERCTEXT(const std::string& target, const std::string& source, bool fromFirst);

}  // namespace tarn
