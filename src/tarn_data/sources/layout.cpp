// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/sources/layout.h"

#include "library/system/system.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/sources/columns.h"

#include <algorithm>
#include <map>
#include <set>

namespace tarn::datatool {

namespace {

constexpr std::size_t sampleBytes = std::size_t{64} * 1024, sampleLines = 100;
constexpr std::int32_t sampleRows = 200;

// ---- the first lines ----

struct Sample {
    std::string bytes;
    bool whole = false;                   // they are the whole file
    std::vector<std::string_view> lines;  // without comments at the head, and without empty ones
    std::size_t comments = 0;
};

Problem readSample(const Source& source, Sample& sample) {
    FileRows rows;
    if (!rows.open(source.path)) return unreadable(source.file, rows.error());
    if (!rows.read(source.begin, sampleBytes, sample.bytes)) return unreadable(source.file, rows.error());
    sample.whole = source.begin + static_cast<std::int64_t>(sampleBytes) >= rows.size();
    std::string_view rest = sample.bytes;
    while (!rest.empty() && sample.lines.size() < sampleLines) {
        const std::size_t end = rest.find('\n');
        const bool cut = end == std::string_view::npos && !sample.whole && !sample.lines.empty();
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end == std::string_view::npos ? end : end + 1, rest.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if ((line.starts_with('#') || line.starts_with("\"#")) && sample.lines.empty())
            ++sample.comments;
        else if (!line.empty() && !cut)
            sample.lines.push_back(line);
    }
    if (sample.lines.empty() && sample.comments > 0)
        sample.lines.push_back(std::string_view(sample.bytes).substr(0, sample.bytes.find('\n')));
    return {};
}

// "'d/a.csv' >'new-a.csv'", for a command that makes another file.
std::string inTo(const std::string& file) {
    return "'" + shown(file) + "' >'new-" + shown(paths::fileName(file)) + "'";
}

Problem checkLineEnds(const Source& source, const Sample& sample) {
    const std::size_t carriage = sample.bytes.find('\r');
    if (sample.bytes.find('\n') != std::string::npos || carriage >= sample.bytes.size() - 1) return {};
    return {fileWord(source.file) + "ends its lines with carriage returns alone.",
            "Make line feeds of them first: tr '\\r' '\\n' <" + inTo(source.file)};
}

// ---- the separator ----

// Cells of a line; separators in quotes do not count.
std::size_t cellsIn(std::string_view line, char separator) {
    std::size_t cells = 1;
    bool quoted = false;
    for (const char c : line) {
        if (c == '"') quoted = !quoted;
        if (c == separator && !quoted) ++cells;
    }
    return cells;
}

// How many lines it gives the same number of cells, of those numbers the most frequent.
std::size_t linesOfOneWidth(const std::vector<std::string_view>& lines, char separator) {
    std::map<std::size_t, std::size_t> widths;
    std::size_t most = 0;
    for (const std::string_view line : lines) {
        const std::size_t cells = cellsIn(line, separator);
        if (cells > 1) most = std::max(most, ++widths[cells]);
    }
    return most;
}

bool occurs(const std::vector<std::string_view>& lines, char separator) {
    return lines[0].find(separator) != std::string_view::npos &&
           (lines.size() < 2 || lines[1].find(separator) != std::string_view::npos);
}

// Of those that give every line as many cells the one that gives most; NUL for none. Times and dates hold
// colons, so these count only where there is no other.
char evenSeparator(const std::vector<std::string_view>& lines, const std::string& order) {
    char found = '\0';
    std::size_t most = 1;
    for (const char c : order) {
        const std::size_t cells = cellsIn(lines[0], c);
        if (linesOfOneWidth(lines, c) != lines.size() || cells <= most || (c == ':' && found != '\0'))
            continue;
        found = c;
        most = cells;
    }
    return found;
}

// The one that gives every line as many cells; else the first that stands in the first two lines; else the one
// that does so for most lines.
char separatorOf(const Source& source, const std::vector<std::string_view>& lines) {
    std::string order = DataFormatOf(source.file) == FormatTab ? "\t,;|~:" : ",;\t|~:";
    if (lines.empty()) return order[0];
    const char even = evenSeparator(lines, order);
    if (even != '\0') return even;
    for (const char c : order) {
        if (occurs(lines, c)) return c;
    }
    const char nearest = *std::max_element(order.begin(), order.end(), [&](char a, char b) {
        return linesOfOneWidth(lines, a) < linesOfOneWidth(lines, b);
    });
    return linesOfOneWidth(lines, nearest) * 2 > lines.size() ? nearest : order[0];
}

// 08:15 or 23:59:59, also with a fraction.
bool isTime(std::string_view line) {
    std::size_t groups = 0;
    for (std::string_view rest = line;; ++groups) {
        const std::size_t digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
        if (digits < 1 || digits > 2) return false;
        rest.remove_prefix(digits);
        const bool fraction = groups == 2 && rest.starts_with('.');
        if (fraction) return rest.find_first_not_of("0123456789", 1) == std::string_view::npos;
        if (rest.empty()) return groups >= 1 && groups <= 2;
        if (rest[0] != ':') return false;
        rest.remove_prefix(1);
    }
}

// A heading may stand above them.
bool areTimes(const std::vector<std::string_view>& lines) {
    const auto times = std::count_if(lines.begin(), lines.end(), isTime);
    return times > 0 && times + 1 >= static_cast<std::ptrdiff_t>(lines.size());
}

// ---- the heading ----

using TextRow = std::vector<std::string>;

constexpr int longestName = 40;

bool isColumnName(std::string_view cell) {
    std::string name(withoutBlanks(cell));
    std::replace(name.begin(), name.end(), ' ', '_');
    return STRTOIDENTIFIER(name, longestName, "_") == name;
}

bool onlyDashes(const TextRow& row) {
    bool dashes = false;
    for (const std::string& cell : row) {
        if (cell.find_first_not_of("- ") != std::string::npos) return false;
        dashes = dashes || cell.find('-') != std::string::npos;
    }
    return dashes;
}

// A year may name a column of numbers.
bool isYear(std::string_view cell) {
    cell = withoutBlanks(cell);
    return cell.size() == 4 && (cell[0] == '1' || cell[0] == '2') &&
           std::all_of(cell.begin(), cell.end(), ascii::isDigit);
}

// What the rows below say of a cell of the first line.
struct Below {
    bool any = false, texts = false, same = false;
};
Below belowOf(const std::vector<TextRow>& rows, std::size_t column) {
    Below below;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        if (column >= rows[i].size()) continue;
        const CellClass c = classOf({rows[i][column], false});
        below.any = below.any || c != CellClass::Nothing;
        below.texts = below.texts || c == CellClass::Text;
        below.same = below.same || rows[i][column] == rows[0][column];
    }
    return below;
}

// Whether the first line names the columns, though not by names of the language: its cells differ from each
// other and from those below, and where these are numbers or dates, it has texts.
bool differsFromRows(const std::vector<TextRow>& rows) {
    std::set<std::string> seen;
    std::size_t texts = 0, years = 0, evidence = 0;
    for (std::size_t n = 0; n < rows[0].size(); ++n) {
        const std::string& cell = rows[0][n];
        const CellClass c = classOf({cell, false});
        const Below below = belowOf(rows, n);
        if (c == CellClass::Nothing) continue;
        if (!seen.insert(cell).second || below.same) return false;
        if (c == CellClass::Text)
            ++texts;
        else if (isYear(cell))
            ++years;
        else
            return false;
        if (c == CellClass::Text && below.any && !below.texts) ++evidence;
    }
    if (texts == 0 || rows.size() < 2) return false;
    return evidence > 0 || (years == 0 && texts == rows[0].size() && texts > 1);
}

std::int32_t headerRowsOf(const std::vector<TextRow>& rows) {
    if (rows.empty()) return 0;
    const auto blank = [](const std::string& cell) { return withoutBlanks(cell).empty(); };
    const bool names = std::all_of(rows[0].begin(), rows[0].end(), isColumnName) &&
                       !std::all_of(rows[0].begin(), rows[0].end(), blank);
    if (!names && !differsFromRows(rows)) return 0;
    return rows.size() > 1 && onlyDashes(rows[1]) ? 2 : 1;
}

Problem firstRows(const Source& source, std::vector<TextRow>& rows) {
    DelimitedForm form = formOf(source);
    form.headerRows = 0;
    form.maxRows = sampleRows;
    DelimitedReader reader(form);
    Problem problem = reader.open();
    CellRow row;
    while (!problem.any() && reader.next(row)) {
        TextRow& texts = rows.emplace_back();
        for (const Cell& cell : row) texts.emplace_back(cell.text);
    }
    return problem.any() ? problem : reader.problem();
}

// The heading, widths, and how lines end.
Problem readHeading(Source& source) {
    DelimitedReader reader(formOf(source));
    Problem problem = reader.open();
    CellRow row;
    if (!problem.any() && reader.headers().empty() && !reader.next(row) && !reader.problem().any())
        problem = {fileWord(source.file) + "holds no rows.",
                   "Look whether there is anything but empty lines in it."};
    if (problem.any() || reader.problem().any()) return problem.any() ? problem : reader.problem();
    source.crlf = reader.crlf();
    if (!reader.headers().empty()) source.headings = reader.headers()[0];
    source.widths.clear();
    for (const std::string& cell : reader.headers().size() > 1 ? reader.headers()[1] : TextRow())
        source.widths.push_back(std::min(cell.find_first_not_of('-'), cell.size()));
    if (reader.framed())
        note(fileWord(source.file) +
             "has separators at both ends of its first line: they are taken as a frame around the lines.");
    return {};
}

void noteComments(const Source& source, const Sample& sample) {
    if (sample.comments == 0) return;
    note(fileWord(source.file) + "begins with " +
         (sample.comments == 1 ? "a line" : std::to_string(sample.comments) + " lines") +
         " that '#' begins, read like any other. If these are comments, take them out first: grep -v '^#' " +
         inTo(source.file));
}

}  // namespace

Problem findLayout(const Arguments& arguments, Source& source) {
    const Layout& given = arguments.from;
    Sample sample;
    Problem problem = readSample(source, sample);
    if (!problem.any()) problem = checkLineEnds(source, sample);
    if (problem.any()) return problem;
    DataOptions& options = source.options;
    options = {};
    options.separatorchar =
        given.separator.value_or(static_cast<unsigned char>(separatorOf(source, sample.lines)));
    if (!given.separator && options.separatorchar == ':' && areTimes(sample.lines)) {
        options.separatorchar = ',';
        note("The lines of '" + shown(source.file) +
             "' are taken as times, one in each; --separator=: splits them.");
    }
    options.numfooterrows = given.footerRows.value_or(0);
    options.maxdatarows = given.maxRows.value_or(-1);
    noteComments(source, sample);
    std::vector<TextRow> rows;
    if (!given.headerRows) problem = firstRows(source, rows);
    options.numheaderrows = given.headerRows.value_or(headerRowsOf(rows));
    return problem.any() ? problem : readHeading(source);
}

DelimitedForm formOf(const Source& source) {
    DelimitedForm form;
    form.file = source.path;
    form.name = source.file;
    form.begin = source.begin;
    form.endBytes = source.endBytes;
    form.separator = IsDelimited(source.format) ? source.options.separatorchar : -1;
    form.headerRows = source.options.numheaderrows;
    form.footerRows = source.options.numfooterrows;
    form.maxRows = source.options.maxdatarows;
    return form;
}

std::vector<std::string> headingNames(const Source& source) {
    std::vector<std::string> names;
    for (const std::string& heading : source.headings) {
        const std::string_view name = withoutBlanks(heading);
        names.push_back(name.empty() ? "FIELD" + std::to_string(names.size() + 1) : std::string(name));
    }
    return names;
}

std::string quotedName(std::string_view name) {
    const auto isPart = [](char c) { return ascii::isSymbol(c) || c == '.' || c == ':'; };
    const bool plain = !name.empty() && (ascii::isLetter(name[0]) || name[0] == '_');
    std::string made(name);
    if (plain && std::all_of(name.begin(), name.end(), isPart)) return made;
    for (char& c : made) {
        if (c < ' ' || c > '~' || c == '"') c = '_';
    }
    return '"' + made + '"';
}

}  // namespace tarn::datatool
