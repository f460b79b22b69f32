// SPDX-License-Identifier: GPL-3.0-or-later
//
// The choice of a resource in a resource file. The file is typed or looked for; its resources show below it.
// What cannot be chosen is told when the user presses OK. Cost: each change of the file name reads the file.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

struct ResourceChoice {
    std::string file, name;  // both empty on Cancel
};
// `word` is the kind of resource in the words of the user, such as "dialog". The window begins with `file`, and with the
// resource `name` selected; both may be empty.
ResourceChoice OPENRESOURCEDIALOG(const std::string& title, const std::string& word, const std::string& file,
                                  const std::string& name);
bool OPENRESOURCEDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
