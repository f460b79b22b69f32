// SPDX-License-Identifier: Apache-2.0
//
// The rows of XML files as the columns of a table. Fields are bound by their number, whatever their names
// are, so a file whose rows leave elements out, or have them in another order, would be read into wrong
// columns: that is found here before it is read.
#pragma once

#include "kernel/data/xml/xml.h"
#include "kernel/tables/tables.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// Which elements of a file are its rows.
struct XmlRows {
    enum class Form {
        Rows,    // records in a list, in the outermost element or in the first one inside of it
        Values,  // in a list; each is the one field of a row
        Single,  // the outermost element is the only row
    } form = Form::Rows;
    std::int32_t depth = 2;  // of the elements that are rows; 1: the outermost
};
// `structure` as XmlRead gives it.
XmlRows XmlRowsOf(std::string_view structure);

struct XmlOrder {
    std::string message;    // "", or which element is out of place; nothing behind it was looked at
    std::string missing;    // "", or the first row that ends ahead of its columns
    std::string advice;     // what can be done about either
    std::int32_t rows = 0;  // that are there
    bool stopped = false;   // by progress.h
    // Of each column: the characters of its longest text.
    std::vector<std::int32_t> longest{};
};
// Whether every row has its fields in the order of the columns, and all of them. Where only the last ones are
// missing, the others are still read into their columns. `columns` with names as they are in the file, which
// must be well-formed. Cost: the file is read once, a line at a time.
XmlOrder XmlCheckOrder(const std::string& filename, const std::vector<std::string>& columns,
                       const XmlRows& rows);

// XmlLoad of rows of that form. `table` has the columns of the file, and no index.
XmlResult XmlLoadRows(const std::string& filename, XmlRows::Form form, TableDescriptor* table);

}  // namespace tarn
