// SPDX-License-Identifier: Apache-2.0
//
// The order of the fields in the rows of an XML file. Fields are bound by their number, whatever their names
// are, so a file whose rows leave elements out, or have them in another order, would be read into wrong
// columns: that is found here before it is read.
#pragma once

#include "kernel/data/xml/xml_rows.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn {

struct XmlOrder {
    std::string message;    // "", or which element is out of place; nothing behind it was looked at
    std::string missing;    // "", or the first row that ends ahead of its columns
    std::string advice;     // what can be done about either
    std::int32_t rows = 0;  // that are there
    bool stopped = false;   // by progress.h
};
// Whether every row has its fields in the order of the columns, and all of them. Where only the last ones are
// missing, the others are still read into their columns. `columns` with names as they are in the file, which
// must be well-formed. Cost: the file is read once, a line at a time.
XmlOrder XmlCheckOrder(const std::string& filename, const std::vector<std::string>& columns,
                       const XmlRows& rows);

}  // namespace tarn
