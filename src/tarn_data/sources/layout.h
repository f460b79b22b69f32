// SPDX-License-Identifier: Apache-2.0
//
// How a delimited file is laid out, where the user does not say: what separates the cells, and whether the
// first line names the columns. Lines that begin with '#' at the head of a file do not count for that.
//
// Cost: the first 64 KiB are looked at, and the first 200 rows.
#pragma once

#include "tarn_data/commands/commands.h"
#include "tarn_data/sources/delimited.h"

#include <string>
#include <string_view>

namespace tarn::datatool {

// Sets the options, the headings as they stand in the file, and the widths that a line of dashes tells. A
// file whose lines end with carriage returns alone is a problem; what looks like a mistake is noted.
Problem findLayout(const Arguments& arguments, Source& source);
// How the source is opened.
DelimitedForm formOf(const Source& source);
// The headings without blanks around them; FIELDn where there is none.
std::vector<std::string> headingNames(const Source& source);
// A name as type information text holds it, in quotes where it is none of the language.
std::string quotedName(std::string_view name);

}  // namespace tarn::datatool
