// SPDX-License-Identifier: Apache-2.0
//
// A wizard: dialogs, its pages, shown one after the other. A page is a dialog with the push buttons IDRETRY, which goes
// back, IDOK, which goes on, and IDCANCEL, which ends the wizard; each of them hides the page, which must not show
// itself. What the user enters goes from page to page as named values of the page's window (GetArrayValue), which are
// the business of the pages. Cost: that of loading the pages.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <vector>

namespace tarn {

// Shows the pages, beginning with the first, until the user has left the last one by its "Done", or any page by
// Cancel or its cross. `values` are "Name=value", and are those that the pages have left, whatever ended it. True if it
// was "Done".
bool WIZARDDIALOG(const std::string& title, const std::vector<Object>& pages,
                  std::vector<std::string>& values);

// False, and told, for a loaded window that cannot be a page.
bool CHECKALLOWEDINWIZARD(const Object& window);

}  // namespace tarn
