// SPDX-License-Identifier: Apache-2.0
//
// Rows of cells as XML: an element for each row, in it one for each column, whose attribute tells the type
// that all cells of the column have. The cells are those of the source, byte for byte; an empty one of a column that is no
// text is an element without content, as programs of the system read no value of such a type in an empty text.
#include "kernel/data/datafile.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml_reader.h"
#include "kernel/run/runtime.h"
#include "kernel/text/dates.h"
#include "tarn_data/base/encoding.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/targets/celltarget.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

constexpr std::string_view lineEnd = "\r\n";
constexpr std::size_t toldLine = std::size_t{MaxScannerLine} - 1;     // that programs of the system read
constexpr std::size_t longestLine = std::size_t{LongestXmlLine} - 1;  // that this one reads

std::string typeWord(const ColumnFacts& column) {
    switch (column.type()) {
    case CellClass::Boolean: return "boolean";
    case CellClass::Integer: return "integer";
    case CellClass::Fixed: return "fixed";
    case CellClass::Real: return "real";
    case CellClass::Set:
        return "set[" + std::to_string(column.lower) + ":" + std::to_string(column.upper) + "]";
    default: return "string";
    }
}

// What a program's load makes of NULL in a column that is no text; "" for a text.
std::string_view readingOf(CellClass type) {
    switch (type) {
    case CellClass::Boolean: return "gets the error 981";
    case CellClass::Integer: return "reads 0";
    case CellClass::Fixed: return "gets the error 984";
    case CellClass::Real: return "gets the error 985";
    case CellClass::Set: return "gets the error 989";
    default: return {};
    }
}

class XmlTarget : public CellTarget {
public:
    XmlTarget(const Source& source, const Target& target, const TargetColumns& columns)
        : source_(source), target_(target), columns_(columns), out_(target.file) {
        for (std::size_t n = 0; n < columns.names.size(); ++n) {
            const CellClass type =
                n < columns.facts.columns.size() ? columns.facts.columns[n].type() : CellClass::Text;
            const std::string word =
                n < columns.facts.columns.size() ? typeWord(columns.facts.columns[n]) : "string";
            starts_.push_back("    <" + columns.names[n] + " type=\"" + word + "\"");
            ends_.push_back("</" + columns.names[n] + ">" + std::string(lineEnd));
            words_.push_back({readingOf(type), 0, 0, {}});
        }
    }

    Problem begin() override {
        char now[DateSize] = "";
        DateNow(now, DateSize);
        line(R"(<?xml version="1.0"?>)");
        line("<!-- \"" + std::string(ProductWord) + " XML file\" \"" + now + "\" -->");
        line(R"(<data type="table">)");
        return {};
    }
    Problem put(const CellRow& row, std::int64_t number) override {
        text_ = "  <component type=\"record\">" + std::string(lineEnd);
        for (std::size_t n = 0; n < starts_.size(); ++n) {
            cell_ = n < row.size() ? row[n].text : std::string_view();
            Problem problem = fit(number, n);
            if (problem.any()) return problem;
            const std::size_t start = text_.size();
            append(number, n);
            problem = fitLines(std::string_view(text_).substr(start), number, n);
            if (problem.any()) return problem;
        }
        out_.write(text_ += "  </component>" + std::string(lineEnd));
        return {};
    }
    Problem finish(std::int64_t rows) override {
        line("</data>");
        Problem problem = out_.finish();
        if (problem.any()) return problem;
        if (rows == 0 && !columns_.headings.empty())
            note("There are no rows, and XML names columns in its rows alone: " +
                 shown(joined(columns_.headings)) + " stands nowhere in '" + shown(target_.file) + "'.");
        for (std::size_t n = 0; n < words_.size(); ++n) noteWords(n);
        if (long_.count > 0)
            note(std::to_string(long_.count) + (long_.count == 1 ? " cell is" : " cells are") +
                 " longer than the " + std::to_string(toldLine) +
                 " bytes of a line that programs of the system read in XML (the first in row " +
                 std::to_string(long_.row) + ", column '" + shown(nameOf(long_.column)) + "').");
        return {};
    }

private:
    void line(const std::string& text) { out_.write(text + std::string(lineEnd)); }
    [[nodiscard]] const std::string& nameOf(std::size_t n) const { return columns_.headings[n]; }

    void append(std::int64_t number, std::size_t n) {
        text_ += starts_[n];
        Words& words = words_[n];
        if (!words.reading.empty() && cell_.empty()) {
            text_.append("/>").append(lineEnd);
            return;
        }
        if (!words.reading.empty() && isNothing(cell_) && words.count++ == 0) {
            words.row = number;
            words.cell = cell_;
        }
        text_ += '>';
        appendEscaped();
        text_ += ends_[n];
    }
    void noteWords(std::size_t n) const {
        const Words& words = words_[n];
        if (words.count == 0) return;
        note("Column '" + shown(nameOf(n)) + "': " + counted(words.count, "cell") +
             (words.count == 1 ? " says" : " say") + " in words that there is nothing (the first in row " +
             std::to_string(words.row) + ": '" + shownCell(words.cell) +
             "'). A program that loads the file into such fields " + std::string(words.reading) +
             "; --null='" + shownCell(words.cell) + "' leaves them empty.");
    }
    // A carriage return would be read as a line feed.
    void appendEscaped() {
        std::string_view rest = cell_;
        for (std::size_t at = rest.find('\r'); at != std::string_view::npos; at = rest.find('\r')) {
            text_.append(XmlEscape(rest.substr(0, at))).append("&#13;");
            rest.remove_prefix(at + 1);
        }
        text_ += XmlEscape(rest);
    }
    [[nodiscard]] TextMisfit misfitFrom(std::size_t from) const {
        TextMisfit misfit = FindMisfit(FormatXml, target_.options, cell_, from);
        while (misfit.any() && cell_[misfit.at] == '\r')
            misfit = FindMisfit(FormatXml, target_.options, cell_, misfit.at + 1);
        return misfit;
    }
    Problem fit(std::int64_t number, std::size_t n) {
        TextMisfit misfit = misfitFrom(0);
        if (!misfit.any()) return {};
        if (!target_.replace)
            return {cellPlace(number, nameOf(n)) + std::string(misfit.why) + ".",
                    (misfit.way == TextMisfit::Way::OtherEncoding ? otherEncoding()
                                                                  : "Write csv, which holds it, or ") +
                        "write '?' instead with --replace."};
        for (; misfit.any(); misfit = misfitFrom(misfit.at + 1)) cell_[misfit.at] = '?';
        return {};
    }
    [[nodiscard]] std::string otherEncoding() const {
        // The lengths of fields would not be those of the new texts.
        if (source_.format == FormatXbase) return "Write csv, and convert that to UTF-8 with iconv, or ";
        EncodingFacts facts;
        if (findEncoding(source_.file, facts).any() || facts.firstBad < 0) return "Write csv, or ";
        return "Convert the file that is read to UTF-8 first, if this is its encoding: " +
               iconvCommand(shown(source_.file), facts.encoding) + "\nOr ";
    }
    [[nodiscard]] Problem fitLines(std::string_view lines, std::int64_t number, std::size_t n) {
        bool isLong = false;
        while (!lines.empty()) {
            const std::size_t end = std::min(lines.find('\n'), lines.size());
            isLong = isLong || end > toldLine || cell_.size() > toldLine;
            if (end > longestLine || cell_.size() > longestLine)
                return {cellPlace(number, nameOf(n)) +
                            "is too long for XML, where a text and a line have at most " +
                            std::to_string(longestLine) + " bytes.",
                        "Write csv, which holds it."};
            lines.remove_prefix(std::min(end + 1, lines.size()));
        }
        if (isLong && long_.count++ == 0) long_ = {1, number, n};
        return {};
    }

    const Source& source_;
    const Target& target_;
    const TargetColumns& columns_;
    OutFile out_;
    std::vector<std::string> starts_, ends_;  // up to the '>', and from behind the text
    struct Words {
        std::string_view reading;  // what a program makes of a word for nothing; "" where it is a text
        std::int64_t count = 0, row = 0;
        std::string cell;
    };
    std::vector<Words> words_;
    std::string text_, cell_;
    struct Long {
        std::int64_t count = 0, row = 0;
        std::size_t column = 0;
    } long_;  // cells that need longer lines than programs of the system read
};

}  // namespace

std::unique_ptr<CellTarget> xmlTarget(const Source& source, const Target& target,
                                      const TargetColumns& columns) {
    return std::make_unique<XmlTarget>(source, target, columns);
}

}  // namespace tarn::datatool
