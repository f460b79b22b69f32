// SPDX-License-Identifier: GPL-3.0-or-later
//
// Dialogs in files: whether one survives being rewritten, how one runs, and what makes a copied one fit its new home.
// Errors are texts, empty on success. A test writes a file of its own, "~dlgtest1.tmp", into the folder of the resource
// file and deletes it at once; who lets it be kept deletes it.
//
//   dlgtest.cpp    the tests of properties        dlgfix.cpp    what makes a copied dialog fit
//   dlgtester.cpp  the window TestDlg             dlgmerge.cpp  joined texts
//
// Cost: each reads the resource file some times; a test makes all controls of the window, and does not show them.
#pragma once

#include "kernel/windows/resources.h"
#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// Whether the file has a resource of that kind and name, in any case; false for a file that cannot be read.
bool ISINRESOURCEFILE(const std::string& file, const std::string& kind, const std::string& name);

struct PropertyTest {
    std::string error;
    std::string scratchFile;  // with `keep`, the file that was written for the test; else empty
};
// Writes the dialog into a file of its own, reads it again, and tells what differs.
PropertyTest TESTPROPERTIES(const std::string& file, const std::string& dialog, bool keep = false);
std::string TESTFILEPROPERTIES(const std::string& file);  // of all dialogs of the file
// A dialog with the menu that it names; no first element of `menu` where it names none.
struct DialogObjects {
    ObjectArray dialog, menu;
};
// What differs, first in the numbers of objects, then in one of them; empty if nothing does.
std::string COMPAREOBJECTS(const DialogObjects& before, const DialogObjects& after);
// The first property in which two property lists differ, in words.
std::string FINDDIFFERENCE(const std::string& list1, const std::string& list2);

// Shows the dialog as its program will, modally, under the window TestDlg. An error is told in a box of that title. The
// result is the scratch file with `keep`.
std::string WINDOWTESTERDIALOG(const std::string& title, const std::string& file, const std::string& dialog,
                               bool keep = false);

// Escape and Return close it, arrows work as in the program, all other keys and its buttons do nothing but say so.
bool TESTDLG(const Object& window, int event, const Object& control, int parameter);

// These write the file only where something has to change.
std::string FIXPROPERTY_OWNER(const std::string& file, const std::string& dialog);
std::string FIXPROPERTY_POSITION(const std::string& file, const std::string& dialog);
std::string FIXPROPERTY_PICTURE(const std::string& file, const std::string& dialog,
                                const std::string& resourceFolder, const std::string& compilerFolder);
// A menu whose name is one of `names` (the first word of each line) gets a free one, in the place of the old menu if no
// other dialog of the file shows that.
std::string FIXPROPERTY_MENU(const std::string& file, const std::string& dialog, const std::string& names);

// Deletes a menu of the file that no dialog shows. One that may be shown stays, and no menu of that name is no error.
std::string DROPMENU(const std::string& file, const std::string& menu);

// The resource texts joined, dialog by dialog as they are written: of all dialogs, or of the last one alone.
std::string DIALOGMERGERCTEXT(const std::string& target, const std::string& source, bool fromFirst);

}  // namespace tarn
