// SPDX-License-Identifier: Apache-2.0
//
// What Xbase files and table files are as sources.
#include "kernel/data/typeinfo/typeinfo.h"
#include "tarn_data/base/codepage.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/base/xbase.h"
#include "tarn_data/sources/load.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

// ---- Xbase ----

// Reads all rows: how many are deleted.
class XbaseColumns {
public:
    XbaseColumns(XbaseFile& file, Source& source) : file_(file), source_(source) {}

    Problem look() {
        std::string_view row;
        Steps steps(file_.rows() * file_.header().recordSize);
        const std::int64_t most = source_.options.maxdatarows;
        file_.goToFirst(most < 0 ? file_.rows() : std::min(file_.rows(), most));
        while (file_.next(row)) {
            if (!steps.step(file_.header().recordSize)) return stoppedProblem();
            if (row[0] == DeletedRow) ++source_.deletedRows;
            if (row[0] == DeletedRow && !source_.deleted) continue;
            ++source_.rowsSeen;
            if (!isXbaseMark(row[0])) ++oddMarks_;
            foreign_ = foreign_ || std::any_of(row.begin(), row.end(),
                                               [](char c) { return static_cast<unsigned char>(c) > 127; });
        }
        const os::FileError error = file_.error();
        if (error == os::FileError::None) tell();
        return error == os::FileError::None ? Problem() : unreadable(source_.file, error);
    }
    // `declared` are the columns of the declaration, the mark of deletion first.
    [[nodiscard]] std::string columns(std::string_view declared) const {
        std::string text = source_.deleted ? "deleted : boolean\n" : "";
        for (std::int32_t n = 0; n < file_.header().fieldCount; ++n)
            text += TypeInfoName(declared, n + 2) + " : " + typeOf(n) + "\n";
        return text;
    }

private:
    void tell() {
        std::string head;
        const std::string page = foreign_ && file_.readHead(head) ? codePageOf(head) : std::string();
        if (!page.empty())
            note("The texts of '" + shown(source_.file) + "' are in " + page +
                 ", as its header says, and are taken byte for byte.");
        if (oddMarks_ > 0)
            note(counted(oddMarks_, "row") + " of '" + shown(source_.file) +
                 "' without a mark of deletion taken, too; 'tarn-data check' tells which.");
    }
    [[nodiscard]] std::string typeOf(std::int32_t n) const {
        const XbaseHeader& header = file_.header();
        switch (header.type[n]) {
        case 'L': return "boolean";
        case 'N': return "real";  // or what its digits are found to be
        default: return "string[" + std::to_string(std::max<int>(header.length[n], 1)) + "]";
        }
    }

    XbaseFile& file_;
    Source& source_;
    std::int64_t oddMarks_ = 0;
    bool foreign_ = false;  // some text is not of ASCII
};

// Bytes that are no rows.
void noteBehindRows(const Source& source, XbaseFile& file) {
    const std::int64_t bytes = file.behind() > 0 ? file.behind() : file.padding();
    if (bytes <= 0 || (file.behind() <= 0 && !file.hasTextBehindMark())) return;
    note("Left out of '" + shown(source.file) + "': " + std::to_string(bytes) +
         (bytes == 1 ? " byte" : " bytes") + " behind its rows; 'tarn-data check' tells more.");
}

}  // namespace

Problem identifyXbase(const Arguments& arguments, Source& source) {
    const Layout& from = arguments.from;
    if (from.separator || from.headerRows || from.footerRows)
        return {fileWord(source.file) + "is an Xbase file, which has no separator, header or footer.",
                "Leave the options of delimited text away.", WrongUsage};
    XbaseFile file;
    RowType declared;
    Problem problem = file.open(source.file);
    if (!problem.any()) problem = xbaseRowType(source.file, declared);
    if (problem.any()) return problem;
    if (file.counted() > file.whole())
        return {fileWord(source.file) + "counts " + std::to_string(file.counted()) +
                    " rows in its header and has " + std::to_string(file.whole()) + ".",
                "Take it from a copy, or let 'tarn-data rebuild' set the count to what is there."};
    if (file.behind() < 0)
        return {fileWord(source.file) + "ends in its header.",
                "Take it from a copy, or let 'tarn-data rebuild' complete the header."};
    if (file.replacing() != 0)
        return {fileWord(source.file) + "row " + std::to_string(file.replacing()) +
                    " was being replaced when a process died.",
                "Let 'tarn-data rebuild' finish it."};
    source.format = FormatXbase;
    source.options.maxdatarows = from.maxRows.value_or(-1);
    source.rowsSeen = 0;
    source.uncountedRows = static_cast<std::int32_t>(file.whole() - file.counted());
    noteBehindRows(source, file);
    source.headings = xbaseHeadings(file.header());
    if (source.deleted) source.headings.insert(source.headings.begin(), "deleted");
    XbaseColumns columns(file, source);
    problem = columns.look();
    source.columns = columns.columns(declared.columns);
    return problem;
}

// ---- table files ----

Problem identifyTable(const Arguments& arguments, Source& source) {
    const Layout& from = arguments.from;
    if (from.separator || from.headerRows || from.footerRows || arguments.text)
        return {fileWord(source.file) +
                    "is a table file, which holds values: it has no separator, header or footer.",
                "Leave the options of text away.", WrongUsage};
    TableFacts facts;
    Problem problem = readRowType(arguments.type, source.type);
    if (!problem.any()) problem = tableFacts(source.file, source.type, facts);
    if (problem.any()) return problem;
    if (!facts.good())
        return {fileWord(source.file) + "is not as long as its rows of " + std::to_string(facts.rowBytes) +
                    " bytes make it.",
                "Look whether the declaration is that of its rows; 'tarn-data check' tells more."};
    source.format = FormatBinary;
    source.options.maxdatarows = from.maxRows.value_or(-1);
    source.rowsSeen = static_cast<std::int32_t>(facts.rows());
    source.columns = source.type.columns;
    return {};
}

}  // namespace tarn::datatool
