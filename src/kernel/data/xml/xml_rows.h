// SPDX-License-Identifier: Apache-2.0
//
// The rows of XML files as those of a table.
#pragma once

#include "kernel/data/xml/xml.h"
#include "kernel/tables/tables.h"

#include <cstdint>
#include <string>
#include <string_view>

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

// XmlLoad of rows of that form. `table` has the columns of the file, and no index.
XmlResult XmlLoadRows(const std::string& filename, XmlRows::Form form, TableDescriptor* table);

}  // namespace tarn
