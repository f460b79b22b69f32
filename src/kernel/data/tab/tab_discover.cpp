// SPDX-License-Identifier: Apache-2.0
//
// Each row gives a declaration of its columns, and the declarations are merged into one that fits all rows. A
// row that declares what the merged text says already costs no merge, so that a long file is read at the
// speed of its cells.
#include "kernel/data/tab/tab_rows.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/value_line.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "os/paths.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <new>
#include <vector>

namespace tarn {

namespace {

constexpr std::string_view nullWord = "NULL";

bool isPrintable(char c) {
    return c >= ' ' && c <= '~';
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

// ---- the header ----

// A name as type information text holds it: one that is no identifier stands in quotes.
std::string quotedName(std::string_view name) {
    const auto isPart = [](char c) { return ascii::isSymbol(c) || c == '.' || c == ':'; };
    const bool plain = ascii::isLetter(name[0]) || name[0] == '_';
    const bool good = plain && std::all_of(name.begin(), name.end(), isPart);
    return good ? std::string(name) : '"' + std::string(name) + '"';
}

std::string nameOfCell(std::string_view cell, std::size_t number) {
    std::string name;
    for (const char c : cell) {
        if (isPrintable(c) && c != '"') name += c;
    }
    name = trimmed(name);
    if (name.size() > std::size_t{MaxTabName}) name = trimmed(std::string_view(name).substr(0, MaxTabName));
    return name.empty() ? "FIELD" + std::to_string(number) : quotedName(name);
}

std::size_t dashesOf(std::string_view cell) {
    return std::min(cell.find_first_not_of('-'), cell.size());
}

// ---- the columns ----

struct Column {
    std::string name;
    std::int32_t width = 0;  // of the dashes below the name
};

std::size_t cellsLeft(TabCells& cells) {
    std::size_t count = 0;
    for (; cells.more(); ++count) cells.next();
    return count;
}

// What the lines of one column say of its numbers.
enum class Number { None, Integer, Fixed, Real };

Number numberOf(const TypeInfoElement& element) {
    switch (TypeInfoKind(element.typeName)) {
    case KindInteger: return Number::Integer;
    case KindFixed: return Number::Fixed;
    case KindReal: return Number::Real;
    default: return Number::None;
    }
}

class Discovery {
public:
    explicit Discovery(std::int32_t textSize) : textSize_(textSize) {}

    void readHeader(const TabReader& rows, std::int32_t headerRows) {
        if (headerRows < 1) return;
        TabCells names(rows.header(0), rows.separator());
        TabCells dashes(headerRows >= 2 ? rows.header(1) : std::string_view(), rows.separator());
        while (names.more() && columns_.size() < std::size_t{MaxTabColumns}) {
            const std::string_view cell = names.next();
            const auto width = static_cast<std::int32_t>(dashesOf(dashes.nextPlain()));
            columns_.push_back({nameOfCell(cell, columns_.size() + 1), width});
        }
        named_ = columns_.size();
        seen_ = named_ + cellsLeft(names);
    }

    // False when the rows do not fit each other.
    bool addRow(std::string_view row, std::int32_t separator) {
        std::vector<std::string> lines;
        TabCells cells(row, separator);
        while (cells.more() && lines.size() < std::size_t{MaxTabColumns})
            lines.push_back(lineOf(cells.next(), cells.quoted(), lines.size()));
        seen_ = std::max(seen_, lines.size() + cellsLeft(cells));
        return rows_++ == 0 ? take(lines) : merge(lines);
    }
    // Of a row whose types do not matter any more.
    void countCells(std::string_view row, std::int32_t separator) {
        TabCells cells(row, separator);
        seen_ = std::max(seen_, cellsLeft(cells));
    }

    // The lines of all columns.
    std::string text() {
        std::string text;
        for (std::size_t i = 0; i < std::max(lines_.size(), named_); ++i)
            text += i < lines_.size() ? withWidth(i) : columns_[i].name + " : Any\n";
        return text;
    }

    [[nodiscard]] std::int32_t rows() const { return rows_; }
    [[nodiscard]] std::int32_t columns() const { return static_cast<std::int32_t>(std::max(seen_, named_)); }
    [[nodiscard]] const std::string& report() const { return report_; }

private:
    const std::string& nameOf(std::size_t column) {
        while (columns_.size() <= column)
            columns_.push_back({"FIELD" + std::to_string(columns_.size() + 1), 0});
        return columns_[column].name;
    }
    std::string lineOf(std::string_view cell, bool quoted, std::size_t column) {
        if (!quoted) cell = cell.substr(0, cell.find_last_not_of(' ') + 1);
        const std::string& name = nameOf(column);
        return DataValueLine(cell, name, nullWord, name + " : Any");
    }
    bool take(std::vector<std::string>& lines) {
        lines_.swap(lines);
        return true;
    }
    bool merge(std::vector<std::string>& lines) {
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (i == lines_.size())
                lines_.push_back(std::move(lines[i]));
            else if (lines_[i] != lines[i] && !mergeColumn(lines_[i], lines[i]))
                return false;
        }
        return true;
    }
    // Whole and decimal numbers in one column make it real: only what is decimal throughout is fixed.
    bool mergeColumn(std::string& line, std::string_view other) {
        const Number a = numberOf(TypeInfoParseLine(line, 1)), b = numberOf(TypeInfoParseLine(other, 1));
        if (a != Number::None && b != Number::None && a != b) {
            line = TypeInfoName(line, 1) + " : real\n";
            return true;
        }
        std::string merged = TypeInfoMerge(line, other, textSize_, report_);
        if (!report_.empty()) return false;
        line = std::move(merged);
        return true;
    }
    std::string withWidth(std::size_t i) {
        const TypeInfoElement element = TypeInfoParseLine(lines_[i], 1);
        if (TypeInfoKind(element.typeName) != KindString || element.bounds.lb1 >= columns_[i].width)
            return lines_[i];
        if (element.typeName != "string") return lines_[i];
        return element.name + " : string[" + std::to_string(columns_[i].width) + "]\n";
    }

    std::int32_t textSize_, rows_ = 0;
    std::size_t named_ = 0, seen_ = 0;
    std::vector<Column> columns_;
    std::vector<std::string> lines_;
    std::string report_;
};

// ---- the file ----

std::string recordName(std::string_view path) {
    std::string name(1, 'T');
    for (const char c : paths::stem(path)) name += isPrintable(c) && c != '"' ? c : '_';
    return quotedName(name);
}

std::string wrapped(std::string_view path, std::string_view lines) {
    std::string text = recordName(path) + " : record\n";
    while (!lines.empty()) {
        const std::size_t end = lines.find('\n') + 1;
        text.append("\t").append(lines.substr(0, end));
        lines.remove_prefix(end);
    }
    return text + "end record\n";
}

std::string noStructure(const std::string& filename) {
    return "Cannot find the structure of '" + std::string(paths::fileName(filename)) + "', ";
}

// Reads the rows up to the first empty line. Where two do not fit each other the rest is only counted.
void readRows(TabReader& rows, std::int32_t most, Discovery& discovery) {
    bool fits = true;
    std::string_view row;
    for (std::int32_t number = 1; (most < 0 || number <= most) && rows.next(row); ++number) {
        if (fits && row.empty()) return;
        if (fits)
            fits = discovery.addRow(row, rows.separator());
        else
            discovery.countCells(row, rows.separator());
    }
}

TabStructure discover(const std::string& filename, const DataOptions& options, std::int32_t typeTextSize) {
    TabStructure found;
    const std::int32_t separator = options.separatorchar;
    if (separator != NoTabSeparator && !IsTabSeparator(separator)) {
        found.message = noStructure(filename) + "the character with the code " + std::to_string(separator) +
                        " cannot be a separator";
        return found;
    }
    TabReader rows;
    Discovery discovery(typeTextSize);
    std::int32_t code = rows.open(filename, options);
    if (code == 0) {
        discovery.readHeader(rows, options.numheaderrows);
        readRows(rows, options.maxdatarows, discovery);
        code = rows.code();
    }
    if (code != 0) {
        found.message =
            noStructure(filename) + "the file cannot be read (error " + std::to_string(code) + ")";
        return found;
    }
    found.stopped = rows.stopped();
    if (found.stopped) return found;
    found.rowsSeen = discovery.rows();
    found.columnsSeen = discovery.columns();
    found.message = discovery.report();
    if (!found.message.empty()) return found;
    const std::string lines = discovery.text();
    if (lines.empty())
        found.message = noStructure(filename) + "there is no data in the file";
    else
        found.typeText = wrapped(filename, lines);
    if (found.typeText.size() >= static_cast<std::size_t>(std::max(typeTextSize, 1)))
        found.typeText.resize(static_cast<std::size_t>(std::max(typeTextSize, 1)) - 1);
    return found;
}

}  // namespace

TabStructure TabDiscover(const std::string& filename, const DataOptions& options, std::int32_t typeTextSize) {
    const ErrorCellAside aside;
    try {
        return discover(filename, options, typeTextSize);
    } catch (const std::bad_alloc&) {
        return {{}, ErrorText(ERR_OUT_OF_MEMORY), 0, 0};
    }
}

}  // namespace tarn
