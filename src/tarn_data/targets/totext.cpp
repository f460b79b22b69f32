// SPDX-License-Identifier: Apache-2.0
//
// Rows of cells as delimited text and as lines. With quotes, as RFC 4180 has them, every cell can be held;
// `--plain` writes the form of the system's own programs, which has none.
#include "kernel/data/datafile.h"
#include "os/text/ascii.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/targets/celltarget.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

// ---- with quotes ----

// What another reader might take for the end of the cell, or for nothing.
bool needsQuotes(const Cell& cell, char separator) {
    const std::string_view text = cell.text;
    if (text.empty()) return false;
    const auto ends = [&](char c) {
        return c == separator || c == '"' || c == '\n' || c == '\r' || c == '\0';
    };
    if (text.front() == ' ' || text.back() == ' ' || std::any_of(text.begin(), text.end(), ends)) return true;
    return cell.quoted && classOf({text, false}) != CellClass::Text;  // a text that looks like a number
}

void appendQuoted(std::string& line, std::string_view text) {
    line += '"';
    for (std::size_t quote = text.find('"'); quote != std::string_view::npos; quote = text.find('"')) {
        line.append(text.substr(0, quote + 1)).append(1, '"');
        text.remove_prefix(quote + 1);
    }
    line.append(text).append(1, '"');
}

std::string rowCount(std::int64_t rows) {
    return "(" + counted(rows, "row") + " affected)";
}

class DelimitedTarget : public CellTarget {
public:
    DelimitedTarget(const Source& source, const Target& target, const TargetColumns& columns)
        : target_(target), columns_(columns), separator_(static_cast<char>(target.options.separatorchar)),
          lineEnd_(source.crlf ? "\r\n" : "\n"), out_(target.file),
          headerRows_(target.headerRows.value_or(columns.named ? 1 : 0)) {}

    Problem begin() override {
        if (headerRows_ > 0) heading(columns_.headings);
        if (headerRows_ > 1) {
            std::vector<std::string> dashes;
            for (const std::string& name : columns_.headings) dashes.emplace_back(name.size(), '-');
            heading(dashes);
        }
        return {};
    }
    Problem put(const CellRow& row, std::int64_t) override {
        line_.clear();
        for (const Cell& cell : row) append(cell, false);
        // Bytes without quotes that would be taken for an empty line, or for another form of file.
        if (line_.size() == 1) line_.insert(0, "\"\"");
        write();
        return {};
    }
    Problem finish(std::int64_t rows) override {
        if (target_.options.numfooterrows > 1) out_.write(lineEnd_);
        if (target_.options.numfooterrows > 0) out_.write(rowCount(rows) + lineEnd_);
        return out_.finish();
    }

private:
    // A separator below 27 at both ends of the first line would be a frame; an empty name needs quotes there.
    void heading(const std::vector<std::string>& names) {
        line_.clear();
        for (const std::string& name : names) append({name, false}, name.empty());
        write();
    }
    void append(const Cell& cell, bool always) {
        const bool first = line_.empty() && first_;
        const bool otherForm = first && (cell.text.starts_with('<') || cell.text.starts_with('\xEF'));
        if (always || otherForm || needsQuotes(cell, separator_) || (cell.quoted && cell.text.empty()))
            appendQuoted(line_, cell.text);
        else
            line_.append(cell.text);
        line_ += separator_;
    }
    void write() {
        line_.pop_back();
        line_.append(lineEnd_);
        out_.write(line_);
        first_ = false;
    }

    const Target& target_;
    const TargetColumns& columns_;
    char separator_;
    std::string lineEnd_, line_;
    OutFile out_;
    std::int32_t headerRows_;
    bool first_ = true;
};

// ---- without ----

class PlainTarget : public CellTarget {
public:
    PlainTarget(const Target& target, const TargetColumns& columns)
        : target_(target), columns_(columns), out_(target.file) {}

    Problem begin() override {
        const std::int32_t rows = isLines() ? 0 : target_.headerRows.value_or(columns_.named ? 1 : 0);
        if (isLines() && columns_.headings.size() > 1) return manyColumns(columns_.headings.size());
        std::string line;
        for (const std::string& name : columns_.names) line += (line.empty() ? "" : separator()) + name;
        if (rows > 0) out_.write(line + "\n");
        for (char& c : line) c = separator() == std::string(1, c) ? c : '-';
        if (rows > 1) out_.write(line + "\n");
        return {};
    }
    Problem put(const CellRow& row, std::int64_t number) override {
        if (isLines() && row.size() != 1) return manyColumns(row.size());
        line_.clear();
        for (std::size_t n = 0; n < row.size(); ++n) {
            cell_ = row[n].text;
            Problem problem = fit(number, n);
            if (problem.any()) return problem;
            if (n > 0) line_ += separator();
            line_ += cell_;
        }
        Problem problem = fitLine(row.size(), number);
        if (!problem.any()) out_.write(line_ += '\n');
        return problem;
    }
    Problem finish(std::int64_t rows) override {
        if (target_.options.numfooterrows > 1) out_.write("\n");
        if (target_.options.numfooterrows > 0) out_.write(rowCount(rows) + "\n");
        Problem problem = out_.finish();
        const bool lost = isLines() && columns_.named && columns_.headings.size() == 1;
        if (!problem.any() && lost && columns_.headings[0] != nameOfLines)
            note("Lines of text have no heading: '" + shown(columns_.headings[0]) + "' stands nowhere in '" +
                 shown(target_.file) + "'.");
        return problem;
    }

private:
    static constexpr std::string_view nameOfLines = "line";

    [[nodiscard]] Problem manyColumns(std::size_t columns) const {
        return {"There are " + std::to_string(columns) + " columns, and lines of text hold one.",
                "--to-separator=C writes '" + target_.file + "' as delimited text."};
    }
    [[nodiscard]] bool isLines() const { return !IsDelimited(target_.format); }
    [[nodiscard]] std::string separator() const {
        return std::string(1, static_cast<char>(target_.options.separatorchar));
    }
    [[nodiscard]] std::string nameOf(std::size_t n) const {
        return n < columns_.headings.size() ? columns_.headings[n] : "FIELD" + std::to_string(n + 1);
    }
    [[nodiscard]] std::string otherForm() const {
        return isLines() ? "Write csv, which holds it, or " : "Leave --plain away, or ";
    }

    Problem fit(std::int64_t number, std::size_t n) {
        TextMisfit misfit = FindMisfit(target_.format, target_.options, cell_, 0);
        if (!misfit.any()) return {};
        const bool separator = misfit.way == TextMisfit::Way::OtherSeparator;
        if (!target_.replace)
            return {cellPlace(number, nameOf(n)) + std::string(misfit.why) + ".",
                    (separator ? "Choose another separator with --to-separator, leave --plain away, or "
                               : otherForm()) +
                        "write '?' instead with --replace."};
        for (; misfit.any(); misfit = FindMisfit(target_.format, target_.options, cell_, misfit.at + 1))
            cell_[misfit.at] = '?';
        return {};
    }
    // What no reader of such text would take as a row.
    [[nodiscard]] Problem fitLine(std::size_t cells, std::int64_t number) const {
        if (line_.size() > std::size_t{MaxTabLine})
            return {"Row " + std::to_string(number) + " would be a line of more than " +
                        std::to_string(MaxTabLine) + " characters.",
                    isLines() ? "Write csv, which holds it." : "Leave --plain away."};
        if (isLines() || target_.replace || cells != 1 || !line_.empty()) return {};
        return {"Row " + std::to_string(number) + " is empty, and would be an empty line.",
                otherForm() + "accept it with --replace."};
    }

    const Target& target_;
    const TargetColumns& columns_;
    OutFile out_;
    std::string line_, cell_;
};

}  // namespace

std::unique_ptr<CellTarget> textTarget(const Source& source, const Target& target,
                                       const TargetColumns& columns) {
    if (IsDelimited(target.format) && !target.plain)
        return std::make_unique<DelimitedTarget>(source, target, columns);
    return std::make_unique<PlainTarget>(target, columns);
}

std::unique_ptr<CellTarget> cellTargetOf(const Source& source, const Target& target,
                                         const TargetColumns& columns) {
    if (target.format == FormatXml) return xmlTarget(source, target, columns);
    if (target.format == FormatXbase) return xbaseTarget(target, columns);
    if (target.format == FormatBinary) return tableTarget(target, columns);
    return textTarget(source, target, columns);
}

}  // namespace tarn::datatool
