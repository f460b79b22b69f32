// SPDX-License-Identifier: Apache-2.0
//
// The rows of a file as a walk tells them.
#include "kernel/data/xml/xml_order.h"

#include "kernel/data/xml/xml_reader.h"
#include "os/text/ascii.h"

namespace tarn {

namespace {

constexpr const char* completeRows =
    "Every row must have the same fields in one order; write an empty one for what is missing.";

// Follows the rows: elements whose attributes, or own children, are the columns. Nothing behind the first
// fault counts.
class Order : public XmlEvents {
public:
    Order(const std::string& file, const std::vector<std::string>& columns, const XmlRows& rows)
        : file_(file), columns_(columns), rowDepth_(rows.depth), whole_(rows.form == XmlRows::Form::Rows) {}

    void start(std::string_view name, std::int32_t line) override {
        ++depth_;
        line_ = line;
        if (faulty()) return;
        if (depth_ == rowDepth_) open();
        if (depth_ == rowDepth_ + 1) element(name);
    }
    // `type` and `index` say how to read an element and are no data.
    void attribute(std::string_view name, std::string_view) override {
        if (depth_ != rowDepth_ || faulty() || ascii::equal(name, "type") || ascii::equal(name, "index"))
            return;
        attributes_.emplace_back(name);
    }
    void text(std::string_view) override {}
    void end() override {
        if (!faulty() && depth_ == rowDepth_) close();
        if (!faulty() && depth_ == rowDepth_) noteMissing();
        --depth_;
    }
    XmlOrder result;

private:
    [[nodiscard]] bool faulty() const { return !result.message.empty(); }
    void open() {
        ++result.rows;
        next_ = 0;
        rowLine_ = line_;
        attributes_.clear();
    }
    // The only attribute of a row of one column is the value of the row, whatever its name.
    [[nodiscard]] bool isValue() const { return attributes_.size() == 1 && columns_.size() == 1; }
    void close() {
        for (std::size_t i = 0; i < attributes_.size() && !isValue(); ++i)
            if (!field(rowLine_, "attribute", attributes_[i])) return;
    }
    // Of the row that was closed.
    void noteMissing() {
        if (!whole_ || isValue() || next_ >= columns_.size() || !result.missing.empty()) return;
        result.missing = place(rowLine_) + "the row has no '" + columns_[next_] + "'.";
        result.advice = completeRows;
    }
    void element(std::string_view name) {
        if (attributes_.empty())
            field(line_, "element", name);
        else
            fault(line_, "element", name, "stands in a row that has data in attributes, too.",
                  "Put the data of rows into elements or into attributes, not both.");
    }
    bool field(std::int32_t line, const char* what, std::string_view name) {
        if (next_ < columns_.size() && columns_[next_++] == name) return true;
        fault(line, what, name, "does not stand in the place of its column.", completeRows);
        return false;
    }
    [[nodiscard]] std::string place(std::int32_t line) const {
        return "File '" + file_ + "' line " + std::to_string(line) + ": ";
    }
    void fault(std::int32_t line, const char* what, std::string_view name, const char* message,
               const char* advice) {
        result.message = place(line) + what + " '" + std::string(name) + "' " + message;
        result.advice = advice;
    }

    const std::string& file_;
    const std::vector<std::string>& columns_;
    std::int32_t rowDepth_, depth_ = 0, line_ = 0;
    bool whole_;                // a row has all columns; the only one of a file has those that it has
    std::size_t next_ = 0;      // column
    std::int32_t rowLine_ = 0;  // of the row that is open, as are these
    std::vector<std::string> attributes_;
};

}  // namespace

XmlOrder XmlCheckOrder(const std::string& filename, const std::vector<std::string>& columns,
                       const XmlRows& rows) {
    Order order(filename, columns, rows);
    XmlReader reader;
    const XmlReadResult read = reader.walk(filename, order);
    order.result.stopped = read.stopped;
    if (read.fileError != os::FileError::None) {
        order.result.message = "File '" + filename + "' cannot be read.";
        order.result.advice = os::describe(read.fileError);
    }
    return order.result;
}

}  // namespace tarn
