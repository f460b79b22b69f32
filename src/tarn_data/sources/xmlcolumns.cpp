// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/sources/xmlcolumns.h"

#include "tarn_data/base/shown.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1), mostColumns = 1000;

// Columns by name. Rows mostly have their cells in the order of the columns.
class Places {
public:
    explicit Places(std::vector<std::string>& names) : names_(names) {}

    void beginRow() { expected_ = 0; }
    // Of the next cell of a row; `none` for a name that is new.
    std::size_t find(std::string_view name) {
        std::size_t at = expected_;
        if (at >= names_.size() || names_[at] != name) {
            const auto found = std::find(names_.begin(), names_.end(), name);
            if (found == names_.end()) return none;
            at = static_cast<std::size_t>(found - names_.begin());
        }
        expected_ = at + 1;
        return at;
    }
    // Behind the cell that was found or added last.
    std::size_t add(std::string_view name) {
        const std::size_t at = expected_;
        names_.emplace(names_.begin() + static_cast<std::ptrdiff_t>(at), name);
        expected_ = at + 1;
        return at;
    }

private:
    std::vector<std::string>& names_;
    std::size_t expected_ = 0;
};

Problem repeatedCell(const Source& source, const XmlRowReader& rows, const std::string& name) {
    return {fileWord(source.file) + "line " + std::to_string(rows.line()) + ": row " +
                std::to_string(rows.number()) + " has '" + shown(name) + "' more than once.",
            "Only rows of simple columns can be converted."};
}

void addLeftOut(XmlColumns& columns, const XmlLeftOut& leftOut, const char* one, const char* many) {
    if (leftOut.count == 0) return;
    columns.leftOut.push_back(std::to_string(leftOut.count) + " " + (leftOut.count == 1 ? one : many) +
                              ", the first in line " + std::to_string(leftOut.line) + " (" +
                              shown(leftOut.first) + ")");
}

// ---- the columns ----

class Finder {
public:
    Finder(const Source& source, XmlColumns& columns)
        : source_(source), columns_(columns), rows_(source.path, source.file, source.xmlRows),
          places_(columns.names) {}

    Problem find() {
        rows_.open();
        while (rows_.next()) {
            ++columns_.rows;
            places_.beginRow();
            for (std::size_t n = 0; n < rows_.cells(); ++n)
                if (!take(rows_.cell(n))) return repeatedCell(source_, rows_, rows_.cell(n).name);
            if (columns_.names.size() > mostColumns)
                return {fileWord(source_.file) + "line " + std::to_string(rows_.line()) +
                            ": there are more than " + std::to_string(mostColumns) + " columns.",
                        "Look whether its elements are rows."};
        }
        addLeftOut(columns_, rows_.attributes(), "attribute around the rows", "attributes around the rows");
        addLeftOut(columns_, rows_.texts(), "text beside elements", "texts beside elements");
        addLeftOut(columns_, rows_.elements(), "element beside the rows", "elements beside the rows");
        return rows_.problem();
    }

private:
    // False: the row has the column already.
    bool take(const XmlCell& cell) {
        std::size_t at = places_.find(cell.name);
        if (at == none) {
            at = places_.add(cell.name);
            const auto place = static_cast<std::ptrdiff_t>(at);
            lastRows_.insert(lastRows_.begin() + place, 0);
            columns_.texts.insert(columns_.texts.begin() + place, false);
        }
        if (cell.declaredText) columns_.texts[at] = true;
        return std::exchange(lastRows_[at], columns_.rows) != columns_.rows;
    }

    const Source& source_;
    XmlColumns& columns_;
    XmlRowReader rows_;
    Places places_;
    std::vector<std::int64_t> lastRows_;  // of each column: the last one that has it
};

// ---- the rows ----

class XmlCells : public CellSource {
public:
    explicit XmlCells(const Source& source)
        : names_(source.headings), rows_(source.path, source.file, source.xmlRows), places_(names_) {}

    Problem open() override {
        rows_.open();
        return problem_ = rows_.problem();
    }
    bool next(CellRow& row) override {
        if (!rows_.next()) {
            problem_ = rows_.problem();
            return false;
        }
        row.assign(names_.size(), {});
        places_.beginRow();
        for (std::size_t n = 0; n < rows_.cells(); ++n) {
            const std::size_t at = places_.find(rows_.cell(n).name);
            if (at != none) row[at].text = rows_.cell(n).text;
        }
        return true;
    }

private:
    std::vector<std::string> names_;
    XmlRowReader rows_;
    Places places_;
};

}  // namespace

Problem findXmlColumns(const Source& source, XmlColumns& columns) {
    return Finder(source, columns).find();
}

std::unique_ptr<CellSource> xmlCells(const Source& source) {
    return std::make_unique<XmlCells>(source);
}

}  // namespace tarn::datatool
