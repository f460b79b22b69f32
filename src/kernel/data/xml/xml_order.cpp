// SPDX-License-Identifier: Apache-2.0
//
// The tags of a well-formed file, and nothing else of it: what stands in comments, CDATA sections, processing
// instructions and the internal subset is passed over, and so is a '<' that begins none of these. A text has
// as many characters at most as there are bytes between its tags: references are longer than what they stand
// for, but for entities of the file's own.
#include "kernel/data/xml/xml_order.h"

#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/run/progress.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <algorithm>

namespace tarn {

namespace {

constexpr std::string_view blanks = " \t\r\n";

struct Tag {
    std::string_view name;
    bool start = false, end = false;      // an empty element is both
    std::vector<std::string> attributes;  // without those that say how to read
    std::vector<std::size_t> lengths;     // of the values of these
    std::size_t line = 0, from = 0, to = 0;
};

class Tags {
public:
    explicit Tags(std::string_view text) : rest_(text), size_(text.size()) {}
    [[nodiscard]] std::size_t passed() const { return size_ - rest_.size(); }

    bool next(Tag& tag) {
        for (;;) {
            const std::size_t open = rest_.find('<');
            if (open == std::string_view::npos) return false;
            pass(open);
            if (passed("<!--", "-->") || passed("<![CDATA[", "]]>") || passed("<?", "?>")) continue;
            if (rest_.starts_with("<!")) {
                passDeclaration();
                continue;
            }
            if (beginsTag()) {
                read(tag);
                return true;
            }
            pass(1);
        }
    }

private:
    [[nodiscard]] bool beginsTag() const {
        return rest_.size() > 1 && (rest_[1] == '/' || XmlIsNameStart(rest_[1]));
    }
    void pass(std::size_t bytes) {
        bytes = std::min(bytes, rest_.size());
        line_ += static_cast<std::size_t>(
            std::count(rest_.begin(), rest_.begin() + static_cast<std::ptrdiff_t>(bytes), '\n'));
        rest_.remove_prefix(bytes);
    }
    bool passed(std::string_view from, std::string_view to) {
        if (!rest_.starts_with(from)) return false;
        const std::size_t end = rest_.find(to, from.size());
        pass(end == std::string_view::npos ? rest_.size() : end + to.size());
        return true;
    }
    // A document type, with the declarations, strings and comments of its subset.
    void passDeclaration() {
        std::int32_t depth = 0;
        while (!rest_.empty()) {
            const char c = rest_[0];
            if (passed("<!--", "-->") || passed("<?", "?>")) continue;
            if ((c == '"' || c == '\'') && passed(rest_.substr(0, 1), rest_.substr(0, 1))) continue;
            pass(1);
            if (c == '<') ++depth;
            if (c == '>' && --depth == 0) return;
        }
    }
    void read(Tag& tag) {
        tag = {};
        tag.line = line_;
        tag.from = passed();
        pass(1);
        tag.end = rest_.starts_with('/');
        tag.start = !tag.end;
        if (tag.end) pass(1);
        const std::size_t length = std::min(rest_.find_first_of(" \t\r\n/>"), rest_.size());
        tag.name = rest_.substr(0, length);
        pass(length);
        while (!rest_.empty() && rest_[0] != '>') {
            const char c = rest_[0];
            const std::size_t start = passed();
            if (c == '/') tag.end = true;
            if ((c == '"' || c == '\'') && passed(rest_.substr(0, 1), rest_.substr(0, 1))) {
                if (tag.lengths.size() < tag.attributes.size()) tag.lengths.push_back(passed() - start - 2);
                continue;
            }
            if (c == '=')
                takeAttribute(tag);
            else if (blanks.find(c) == std::string_view::npos && c != '/')
                attribute_ += c;
            pass(1);
        }
        pass(1);
        tag.to = passed();
    }
    // `type` and `index` say how to read an element and are no data.
    void takeAttribute(Tag& tag) {
        if (!ascii::equal(attribute_, "type") && !ascii::equal(attribute_, "index"))
            tag.attributes.push_back(attribute_);
        attribute_.clear();
    }

    std::string_view rest_;
    std::size_t size_;
    std::string attribute_;
    std::size_t line_ = 1;
};

constexpr const char* completeRows =
    "Every row must have the same fields in one order; write an empty one for what is missing.";

// Follows the rows: elements whose attributes, or own children, are the columns.
class Order {
public:
    Order(const std::string& file, const std::vector<std::string>& columns, const XmlRows& rows)
        : file_(file), columns_(columns), rowDepth_(rows.depth), whole_(rows.form == XmlRows::Form::Rows) {
        result.longest.resize(columns.size());
    }

    // False, and the result has a message, when something is out of place.
    bool take(const Tag& tag) {
        bool good = true;
        if (tag.start) {
            ++depth_;
            if (depth_ == rowDepth_) open(tag);
            if (depth_ == rowDepth_ + 1) good = element(tag);
        }
        if (tag.end && depth_ == rowDepth_ + 1) measure(next_ - 1, element_, tag.from);
        if (tag.end && depth_ == rowDepth_) good = close(tag);
        if (good && tag.end && depth_ == rowDepth_) noteMissing();
        if (tag.end) --depth_;
        return good;
    }
    XmlOrder result;

private:
    void open(const Tag& tag) {
        ++result.rows;
        next_ = 0;
        row_ = tag;
    }
    // The only attribute of a row of one column is the value of the row, whatever its name.
    bool close(const Tag& tag) {
        if (next_ == 0) measure(0, row_.to, tag.from);
        for (std::size_t i = 0; i < row_.lengths.size(); ++i) measure(i, 0, row_.lengths[i]);
        if (row_.attributes.size() == 1 && columns_.size() == 1) return true;
        return std::all_of(row_.attributes.begin(), row_.attributes.end(),
                           [&](const std::string& name) { return field(row_, "attribute", name); });
    }
    // Of the row that was closed.
    void noteMissing() {
        const bool value = row_.attributes.size() == 1 && columns_.size() == 1;
        if (!whole_ || value || next_ >= columns_.size() || !result.missing.empty()) return;
        result.missing = place(row_) + "the row has no '" + columns_[next_] + "'.";
        result.advice = completeRows;
    }
    // A text of a column stands there; an empty element ends before its content begins.
    void measure(std::size_t column, std::size_t from, std::size_t to) {
        if (column >= columns_.size() || to <= from) return;
        const auto length = static_cast<std::int32_t>(std::min(to - from, std::size_t{INT32_MAX}));
        result.longest[column] = std::max(result.longest[column], length);
    }
    bool element(const Tag& tag) {
        element_ = tag.to;
        if (row_.attributes.empty()) return field(tag, "element", tag.name);
        return fault(tag, "element", tag.name, "stands in a row that has data in attributes, too.",
                     "Put the data of rows into elements or into attributes, not both.");
    }
    bool field(const Tag& tag, const char* what, std::string_view name) {
        if (next_ < columns_.size() && columns_[next_++] == name) return true;
        return fault(tag, what, name, "does not stand in the place of its column.", completeRows);
    }
    [[nodiscard]] std::string place(const Tag& tag) const {
        return "File '" + file_ + "' line " + std::to_string(tag.line) + ": ";
    }
    bool fault(const Tag& tag, const char* what, std::string_view name, const char* message,
               const char* advice) {
        result.message = place(tag) + what + " '" + std::string(name) + "' " + message;
        result.advice = advice;
        return false;
    }

    const std::string& file_;
    const std::vector<std::string>& columns_;
    std::int32_t rowDepth_, depth_ = 0;
    bool whole_;  // a row has all columns; the only one of a file has those that it has
    std::size_t next_ = 0, element_ = 0;  // element_: where the content of the last one began
    Tag row_;                             // the one that is open
};

}  // namespace

XmlOrder XmlCheckOrder(const std::string& filename, const std::vector<std::string>& columns,
                       const XmlRows& rows) {
    std::string text;
    Order order(filename, columns, rows);
    const os::FileError error = os::readFile(os::native(filename), text);
    if (error != os::FileError::None) {
        order.result.message = "File '" + filename + "' cannot be read.";
        order.result.advice = os::describe(error);
        return order.result;
    }
    Tags tags(text);
    Tag tag;
    const auto total = static_cast<std::int64_t>(text.size());
    for (std::int64_t told = 0; tags.next(tag) && order.take(tag);) {
        const auto done = static_cast<std::int64_t>(tags.passed());
        if (done - told < ProgressStep) continue;
        told = done;
        order.result.stopped = !Progress(done, total);
        if (order.result.stopped) break;
    }
    if (text.find("<!ENTITY") != std::string::npos) order.result.longest.clear();
    return order.result;
}

}  // namespace tarn
