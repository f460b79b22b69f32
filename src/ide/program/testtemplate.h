// SPDX-License-Identifier: GPL-3.0-or-later
//
// Templates by hand: the user chooses a template of a settings file, fills its parameters in, and sees the text that
// comes of it. So whoever writes a template can try it, and any template serves to put text into the Code window.
// Cost: that of the template (library/source/codewiz.h).
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

struct TemplateChoice {
    std::string filename, section;  // both empty if nothing was chosen
};
// Asks for a settings file, unless `filename` names one, and for one of its templates. A file without any is told.
[[nodiscard]] TemplateChoice OPENTEMPLATEDIALOG(std::string filename = {});
// Asks for the parameters of the template and shows the text, modally. What is wrong with the template is told. The
// text; empty if the user has cancelled.
std::string TESTTEMPLATE(const std::string& filename, const std::string& section);

bool TEMPLATETEXTDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
