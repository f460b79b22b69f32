// SPDX-License-Identifier: GPL-3.0-or-later
//
// Example code: a text that holds one or several source files, each below a heading of its own,
//
//     // hello.cls
//
// a comment with nothing but the name of a class file or a resource file, in letters and digits. It is what the pages of
// the help hand over by the clipboard. The first line of the text that is not blank is a heading; what stands below a
// heading, up to the next, is that file. Lines end with LF or CR LF. Cost: linear in the text.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// The name in a heading; empty for any other line. Blanks and tabs may stand around "//" and behind the name.
std::string GETEXAMPLEFILENAME(std::string_view line);
// The names of all headings in their order, one a line.
std::string GETEXAMPLEFILENAMES(std::string_view text);
// The lines from the heading of that name, in any case, up to the next heading, the last of them ended as the text's
// first line is. Empty if there is no such heading. Of two with the same name the first counts.
std::string GETEXAMPLETEXT(std::string_view text, std::string_view name);
bool ISEXAMPLE(std::string_view text);

}  // namespace tarn
