// SPDX-License-Identifier: Apache-2.0
//
// The rows of an XML file, one after another, as the cells that stand in each:
//
//   <row id="1">                  id         an attribute of the row
//     <name lang="en">Ann</name>  name_lang  an attribute of an element
//   </row>                        name       the text of an element
//   <row>Ann</row>                row        the text of a row without elements
//
// An element, or a row, that has attributes and no text has no cell for a text; blanks that lay out the file are no
// text, those that references and CDATA sections give are one. An attribute `type` that names a
// type of the system says how to read its element, and so does an `index` beside it: they are no data, nor are
// declarations of namespaces. Other data that stands around the rows has no place in a table, and is counted.
//
// Rules: character references give UTF-8. What is not well-formed, rows that no table takes and what the user
// stops end the reading with a problem.
//
// Cost: linear in the file; in memory a line of it, and one row.
#pragma once

#include "kernel/data/xml/xml_reader.h"
#include "kernel/data/xml/xml_rows.h"
#include "tarn_data/base/problem.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::datatool {

struct XmlCell {
    std::string name, text;
    bool declaredText = false;  // its `type` says so
};

// Data that is in no row: how often, and where first.
struct XmlLeftOut {
    std::int64_t count = 0;
    std::string first;
    std::int32_t line = 0;
};

class XmlRowReader : private XmlEvents {
public:
    // `file` is opened, messages tell `name`.
    XmlRowReader(std::string file, std::string name, XmlRows rows)
        : file_(std::move(file)), name_(std::move(name)), rows_(rows) {}

    // Goes ahead of the first row; again, too.
    void open();
    // False behind the last row, and when `problem` tells why.
    bool next();
    [[nodiscard]] const Problem& problem() const { return problem_; }

    // Of the row that was given last, valid until the next.
    [[nodiscard]] std::size_t cells() const { return used_; }
    [[nodiscard]] const XmlCell& cell(std::size_t n) const { return cells_[n]; }
    [[nodiscard]] std::int32_t line() const { return rowLine_; }
    [[nodiscard]] std::int64_t number() const { return number_; }  // of the row, from 1

    // So far: attributes and texts of elements around the rows, texts beside elements, elements beside the rows.
    [[nodiscard]] const XmlLeftOut& attributes() const { return outerAttributes_; }
    [[nodiscard]] const XmlLeftOut& texts() const { return looseTexts_; }
    [[nodiscard]] const XmlLeftOut& elements() const { return besideRows_; }

private:
    void start(std::string_view name, std::int32_t line) override;
    void attribute(std::string_view name, std::string_view value) override;
    void text(std::string_view part) override;
    void givenText(std::string_view part) override;
    void end() override;

    void startRow(std::string_view name);
    void endRow();
    void giveAttributes();
    XmlCell& addCell(std::string_view name, std::string_view attribute, std::string_view text);
    void note(XmlLeftOut& leftOut, std::string what) const;
    void fault(std::string what, std::string next);
    void endFile();

    std::string file_, name_;
    XmlRows rows_;
    XmlReader reader_;
    Problem problem_;
    std::int32_t depth_ = 0, line_ = 0;
    std::int32_t beside_ = 0;  // depth of the element beside the rows that is open; 0: none
    bool rowsSeen_ = false;    // the element that holds the rows has begun
    bool rowEnded_ = false;

    std::vector<XmlCell> cells_;
    std::size_t used_ = 0;
    std::int32_t rowLine_ = 0;
    std::int64_t number_ = 0;
    std::string rowName_, element_;  // that are open
    bool hasElements_ = false;       // the row
    bool hasAttributes_ = false;     // the element that is open, or the row while it has no elements
    std::string text_, rowText_;
    bool givenText_ = false;  // in the element that is open: a part of its text is no layout
    // Of the start tag that is being told: whether they are data is known at its end.
    std::vector<std::pair<std::string, std::string>> attributes_;
    std::size_t attributesUsed_ = 0;
    bool tagOpen_ = false;
    bool typed_ = false;         // the file tells types of the system
    bool declaredText_ = false;  // the element that is open, or the row

    XmlLeftOut outerAttributes_, looseTexts_, besideRows_;
};

}  // namespace tarn::datatool
