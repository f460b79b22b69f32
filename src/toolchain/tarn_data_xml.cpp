// SPDX-License-Identifier: Apache-2.0
//
// The tags of a well-formed file, and nothing else of it: what stands in comments, CDATA sections, processing
// instructions and the internal subset is passed over.
#include "os/files.h"
#include "toolchain/tarn_data.h"

#include <algorithm>

namespace tarn::data {

namespace {

constexpr std::string_view blanks = " \t\r\n";

struct Tag {
    std::string_view name;
    bool start = false, end = false;      // an empty element is both
    std::vector<std::string> attributes;  // without those that say how to read
    std::size_t line = 0;
};

class Tags {
public:
    explicit Tags(std::string_view text) : rest_(text) {}

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
            read(tag);
            return true;
        }
    }

private:
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
        pass(1);
        tag.end = rest_.starts_with('/');
        tag.start = !tag.end;
        if (tag.end) pass(1);
        const std::size_t length = std::min(rest_.find_first_of(" \t\r\n/>"), rest_.size());
        tag.name = rest_.substr(0, length);
        pass(length);
        while (!rest_.empty() && rest_[0] != '>') {
            const char c = rest_[0];
            if (c == '/') tag.end = true;
            if ((c == '"' || c == '\'') && passed(rest_.substr(0, 1), rest_.substr(0, 1))) continue;
            if (c == '=')
                takeAttribute(tag);
            else if (blanks.find(c) == std::string_view::npos && c != '/')
                attribute_ += c;
            pass(1);
        }
        pass(1);
    }
    // `type` and `index` say how to read an element and are no data.
    void takeAttribute(Tag& tag) {
        std::string name = attribute_;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
        if (name != "type" && name != "index") tag.attributes.push_back(attribute_);
        attribute_.clear();
    }

    std::string_view rest_;
    std::string attribute_;
    std::size_t line_ = 1;
};

// Follows the rows: elements whose attributes, or own children, are the columns.
class Order {
public:
    Order(const std::string& file, const std::vector<std::string>& columns, std::size_t rowDepth)
        : file_(file), columns_(columns), rowDepth_(rowDepth) {}

    Problem take(const Tag& tag) {
        Problem problem;
        if (tag.start) {
            ++depth_;
            if (depth_ == rowDepth_) open(tag);
            if (depth_ == rowDepth_ + 1) problem = element(tag);
        }
        if (tag.end && depth_ == rowDepth_) problem = close();
        if (tag.end) --depth_;
        return problem;
    }
    [[nodiscard]] std::int32_t rows() const { return rows_; }

private:
    void open(const Tag& tag) {
        ++rows_;
        next_ = 0;
        row_ = tag;
    }
    // The only attribute of a row without elements: the row itself is the column.
    Problem close() {
        Problem problem;
        if (row_.attributes.size() < 2) return problem;
        for (const std::string& name : row_.attributes) {
            if (!problem.any()) problem = field(row_, "attribute", name);
        }
        return problem;
    }
    Problem element(const Tag& tag) {
        if (row_.attributes.empty()) return field(tag, "element", tag.name);
        return {place(tag, "element", tag.name) + "stands in a row that has data in attributes, too.",
                "Put the data of rows into elements or into attributes, not both."};
    }
    Problem field(const Tag& tag, const char* what, std::string_view name) {
        if (next_ < columns_.size() && columns_[next_++] == name) return {};
        return {place(tag, what, name) + "does not stand in the place of its column.",
                "Every row must have the same fields in one order; write an empty one for what is missing."};
    }
    [[nodiscard]] std::string place(const Tag& tag, const char* what, std::string_view name) const {
        return "File '" + file_ + "' line " + std::to_string(tag.line) + ": " + what + " '" +
               std::string(name) + "' ";
    }

    const std::string& file_;
    const std::vector<std::string>& columns_;
    std::size_t rowDepth_, depth_ = 0, next_ = 0;
    std::int32_t rows_ = 0;
    Tag row_;  // the one that is open
};

}  // namespace

Problem checkXmlOrder(const std::string& file, const std::vector<std::string>& columns, std::size_t rowDepth,
                      std::int32_t& rows) {
    std::string text;
    const os::FileError error = os::readFile(os::native(file), text);
    if (error != os::FileError::None)
        return {"File '" + file + "' cannot be read.", std::string(os::describe(error))};
    Tags tags(text);
    Tag tag;
    Order order(file, columns, rowDepth);
    Problem problem;
    while (!problem.any() && tags.next(tag)) problem = order.take(tag);
    rows = order.rows();
    return problem;
}

}  // namespace tarn::data
