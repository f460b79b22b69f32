// SPDX-License-Identifier: Apache-2.0
//
// What is wrong with an Xbase file. What a field holds that its type does not allow is no fault of the file:
// it is read as empty, and told as a note.
#include "kernel/index/index_filecheck.h"
#include "kernel/text/dates.h"
#include "os/text/ascii.h"
#include "tarn_data/base/codepage.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/base/xbase.h"
#include "tarn_data/commands/check_internal.h"
#include "tarn_data/commands/commands.h"

#include <algorithm>
#include <charconv>

namespace tarn::datatool {

namespace {

// ---- cells ----

std::int32_t numberIn(std::string_view digits) {
    std::int32_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

std::string oddDate(std::string_view field) {
    constexpr std::size_t length = 8;
    const std::string_view text = trimmedText(field);
    if (text.empty()) return {};
    const bool digits = std::all_of(text.begin(), text.end(), ascii::isDigit);
    const bool date = digits && text.size() == length &&
                      DateValid(numberIn(text.substr(0, 4)), numberIn(text.substr(4, 2)),
                                numberIn(text.substr(6)), 0, 0, 0, 0);
    return date ? "" : "is no date";
}

std::string oddLogical(std::string_view field) {
    const std::string_view text = trimmedText(field);
    const bool logical = text.empty() || (text.size() == 1 && std::string_view("TtFfYyNn?").find(text[0]) !=
                                                                  std::string_view::npos);
    return logical ? "" : "is no truth value";
}

std::string oddNumber(std::string_view field) {
    const std::string_view text = trimmedText(field);
    if (numberForm(text) != NumberForm::None) return {};
    const bool stars = text.find_first_not_of('*') == std::string_view::npos;
    return stars ? "stands for a number that did not fit" : "is no number";
}

std::string oddText(std::string_view field) {
    return xbaseText(field).find('\0') == std::string_view::npos ? "" : "holds a zero byte";
}

std::string oddCell(char type, std::string_view field) {
    switch (type) {
    case 'C': return oddText(field);
    case 'D': return oddDate(field);
    case 'L': return oddLogical(field);
    case 'N': return oddNumber(field);
    default: return {};
    }
}

// ---- the file ----

class XbaseCheck {
public:
    XbaseCheck(const std::string& name, XbaseFile& file, Findings& findings)
        : name_(name), file_(file), header_(file.header()), findings_(findings) {}

    void checkHeader() {
        std::string head;
        if (file_.readHead(head) && head.size() > 3) checkHead(head);
        for (std::int32_t n = 0; n < header_.fieldCount; ++n) {
            if (std::string_view("CDLN").find(header_.type[n]) == std::string_view::npos)
                findings_.note(name_, "Field " + nameOf(n) + " is of type " + header_.type[n] +
                                          ", which is not known here.");
        }
        if (file_.behind() < 0)
            return findings_.fault(name_, "It has " + bytes(file_.size()) + ", and its header alone has " +
                                              std::to_string(header_.headerSize) + ".");
        const std::int64_t whole = file_.whole(), counted = file_.counted();
        if (counted != whole)
            findings_.fault(name_, "Its header counts " + datatool::counted(counted, "row") +
                                       ", and it has " + std::to_string(whole) +
                                       (whole == 1 ? " whole one." : " whole ones."));
        checkNote(name_, file_.note(), file_.replacing(), findings_);
        if (file_.behind() != 0 && file_.note().offset < 0)
            findings_.fault(name_, "It has " + bytes(file_.behind()) + " behind its whole rows.");
        if (file_.padding() != 0 && file_.note().offset < 0)
            findings_.note(name_, "It has " + bytes(file_.padding()) +
                                      " behind its mark of the end (a byte 26), which are no rows; a rebuild "
                                      "cuts them off.");
    }
    void checkRows() {
        Steps steps(file_.whole() * header_.recordSize);
        std::string_view row;
        file_.goToFirst(file_.whole());
        for (std::int64_t number = 1; file_.next(row); ++number) {
            if (!steps.step(header_.recordSize)) return;
            if (number == file_.replacing()) row = file_.note().row;
            if (!isXbaseMark(row[0]))
                findings_.fault(name_, "Row " + std::to_string(number) + " has '" + shown(row.substr(0, 1)) +
                                           "' where its mark of deletion stands.");
            for (std::int32_t n = 0; n < header_.fieldCount; ++n) checkCell(row, number, n);
        }
        if (file_.error() != os::FileError::None)
            findings_.fault(name_, std::string(os::describe(file_.error())));
    }

private:
    static std::string bytes(std::int64_t n) { return std::to_string(n) + (n == 1 ? " byte" : " bytes"); }
    void checkHead(std::string_view head) {
        constexpr std::size_t part = 32, headAt = 12, pageAt = 29, fieldAt = 12, fieldEnd = 16, restAt = 18;
        constexpr char terminator = 13;
        const auto isZero = [&](std::size_t from, std::size_t to) {
            return head.substr(from, to - from).find_first_not_of('\0') == std::string_view::npos;
        };
        const auto fields = static_cast<std::size_t>(header_.fieldCount);
        if (!isDate(head)) findings_.note(name_, "The date of its last change is none.");
        const bool whole = head.size() == static_cast<std::size_t>(header_.headerSize);
        if (whole && (head.size() <= (fields + 1) * part || head[(fields + 1) * part] != terminator))
            findings_.fault(name_, "Its list of fields has no end (a byte 13).");
        const std::string page = codePageOf(head);
        if (!page.empty()) findings_.note(name_, "Its texts are in " + page + ".");
        if (!isZero(headAt, pageAt) || !isZero(pageAt + 1, part))
            findings_.note(name_, "Reserved bytes of its header are not 0.");
        for (std::size_t n = 1; n <= fields && head.size() >= (n + 1) * part; ++n) {
            if (isZero(n * part + fieldAt, n * part + fieldEnd) && isZero(n * part + restAt, (n + 1) * part))
                continue;
            findings_.note(name_, "Reserved bytes of field " + nameOf(static_cast<std::int32_t>(n) - 1) +
                                      " are not 0.");
            return;
        }
    }
    static bool isDate(std::string_view head) {
        const auto byte = [&](std::size_t at) {
            return static_cast<std::int32_t>(static_cast<unsigned char>(head[at]));
        };
        return DateValid(1900 + byte(1), byte(2), byte(3), 0, 0, 0, 0);
    }
    [[nodiscard]] std::string nameOf(std::int32_t n) const {
        return std::to_string(n + 1) + " ('" + shown(header_.name[n]) + "')";
    }
    void checkCell(std::string_view row, std::int64_t number, std::int32_t n) {
        const std::string_view field = file_.field(row, n);
        const std::string odd = oddCell(header_.type[n], field);
        if (!odd.empty())
            findings_.note(name_, "Row " + std::to_string(number) + ", field " + nameOf(n) + ": '" +
                                      shown(xbaseText(field)) + "' " + odd + ".");
    }

    const std::string& name_;
    XbaseFile& file_;
    const XbaseHeader& header_;
    Findings& findings_;
};

// Their number too, as indexCount has it. Fields of other types have no keys.
Problem checkXbaseIndexes(const Arguments& arguments, const XbaseFile& xbase, Findings& findings,
                          std::string& count) {
    const std::string& file = arguments.files[0];
    RowType type;
    if (xbaseRowType(file, type).any()) {
        if (os::infoOf(os::native(IndexFileName(file, 1))).exists)
            findings.note(file, "Its indexes are not looked at, as not all of its fields are known.");
        return {};
    }
    const std::vector<IndexBeside> indexes = indexesBeside(file, type);
    count = indexCount(indexes);
    Problem problem = checkWanted(arguments, type, indexes, findings);
    FileRows rows;
    if (problem.any()) return problem;
    if (!rows.open(file)) return unreadable(file, rows.error());
    XbaseRecord record(xbase.header(), type);
    checkIndexes(file, indexes,
                 {rows, xbase.header().headerSize, xbase.header().recordSize, xbase.rows(),
                  [&](std::string_view row) { return record.record(row); }},
                 findings);
    return {};
}

}  // namespace

int checkXbase(const Arguments& arguments) {
    const std::string& file = arguments.files[0];
    XbaseFile xbase;
    Findings findings;
    const Work work("checking " + file);
    Problem problem = xbase.open(file);
    if (problem.any()) {
        findings.fault(file, problem.what);
        return findings.print(file, {});
    }
    XbaseCheck check(file, xbase, findings);
    check.checkHeader();
    check.checkRows();
    std::string indexes;
    problem = checkXbaseIndexes(arguments, xbase, findings, indexes);
    if (problem.any()) return tell(problem);
    if (stopSignal() != 0) return tell(stoppedProblem());
    return findings.print(file, counted(xbase.rows(), "row") + indexes);
}

}  // namespace tarn::datatool
