// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/sources/xmlrows.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/run/errors.h"
#include "os/text/ascii.h"
#include "tarn_data/base/files.h"
#include "tarn_data/commands/commands.h"
#include "tarn_data/sources/load.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// What stands between two tags that say all.
bool isLayout(std::string_view text) {
    return text.empty() || (isBlank(text) && text.find('\n') != std::string_view::npos);
}

// KindNone for a word that names no type of the system.
std::int32_t kindOfType(std::string_view attribute) {
    const std::string type = TypeInfoParseLine(std::string("x : ").append(attribute), 1).typeName;
    if (ascii::equal(type, "array")) return KindArray;
    return ascii::equal(type, "table") ? KindTable : TypeInfoKind(type);
}

bool isNamespace(std::string_view attribute) {
    return attribute == "xmlns" || attribute.starts_with("xmlns:");
}

}  // namespace

// ---- the file ----

void XmlRowReader::open() {
    if (reader_.isReading()) reader_.endWalk();
    problem_ = {};
    depth_ = beside_ = 0;
    number_ = 0;
    rowsSeen_ = tagOpen_ = typed_ = false;
    rowName_.clear();
    outerAttributes_ = looseTexts_ = besideRows_ = {};
    const ErrorRecord error = reader_.startWalk(file_, *this, XmlCharacters::Utf8, XmlLengths::Long);
    if (error.code != 0) fault(fileWord(name_) + "cannot be read: " + error.message + ".", "");
}

bool XmlRowReader::next() {
    if (problem_.any() || !reader_.isReading()) return false;
    rowEnded_ = false;
    while (!rowEnded_ && !problem_.any() && reader_.walkOn(rows_.depth)) {}
    if (!problem_.any() && rowEnded_) return true;
    endFile();
    return false;
}

void XmlRowReader::endFile() {
    const XmlReadResult result = reader_.endWalk();
    if (problem_.any()) return;
    if (result.stopped || stopSignal() != 0) {
        problem_ = stoppedProblem();
    } else if (result.fileError != os::FileError::None) {
        problem_ = unreadable(name_, result.fileError);
    } else if (result.error.code != 0) {
        problem_ = xmlProblem(file_, name_, result.error);
    }
}

void XmlRowReader::fault(std::string what, std::string next) {
    if (!problem_.any()) problem_ = {std::move(what), std::move(next)};
}

void XmlRowReader::note(XmlLeftOut& leftOut, std::string what) const {
    if (leftOut.count++ > 0) return;
    leftOut.first = std::move(what);
    leftOut.line = line_;
}

// ---- what stands in it ----

void XmlRowReader::start(std::string_view name, std::int32_t line) {
    giveAttributes();
    ++depth_;
    line_ = line;
    if (beside_ != 0) return;
    if (depth_ < rows_.depth) {
        // Only the first element inside of the outermost holds rows.
        const bool beside = depth_ > 1 && std::exchange(rowsSeen_, true);
        if (beside) note(besideRows_, "element '" + std::string(name) + "'");
        if (beside) beside_ = depth_;
        element_ = name;
    } else if (depth_ == rows_.depth) {
        startRow(name);
    } else if (depth_ == rows_.depth + 1) {
        hasElements_ = true;
        element_ = name;
        text_.clear();
    } else {
        fault(fileWord(name_) + "line " + std::to_string(line_) + ": the element '" + element_ + "' of row " +
                  std::to_string(number_) + " holds other elements.",
              "Only rows of simple columns can be converted.");
    }
    hasAttributes_ = givenText_ = false;
    tagOpen_ = true;
}

void XmlRowReader::startRow(std::string_view name) {
    ++number_;
    if (rowName_.empty()) rowName_ = name;
    if (rowName_ != name)
        fault(fileWord(name_) + "line " + std::to_string(line_) + ": the rows are called '" + rowName_ +
                  "', and row " + std::to_string(number_) + " '" + std::string(name) + "'.",
              "Only rows of one name can be converted.");
    rowLine_ = line_;
    used_ = 0;
    hasElements_ = false;
    rowText_.clear();
}

void XmlRowReader::attribute(std::string_view name, std::string_view value) {
    if (beside_ != 0 || isNamespace(name)) return;
    if (attributesUsed_ == attributes_.size()) attributes_.emplace_back();
    auto& [attribute, text] = attributes_[attributesUsed_++];
    attribute = name;
    text = value;
}

// Of the start tag that has ended.
void XmlRowReader::giveAttributes() {
    if (!std::exchange(tagOpen_, false)) return;
    const std::size_t count = std::exchange(attributesUsed_, 0);
    const auto begin = attributes_.begin(), end = begin + static_cast<std::ptrdiff_t>(count);
    std::int32_t kind = KindNone;
    for (auto a = begin; a != end && kind == KindNone; ++a)
        if (ascii::equal(a->first, "type")) kind = kindOfType(a->second);
    // Other files use the words as well: only those of values begin with a type of several values.
    if (depth_ == 1) typed_ = kind > KindString;
    if (!typed_) kind = KindNone;
    declaredText_ = kind == KindString;
    for (auto a = begin; a != end; ++a) {
        const bool howToRead =
            kind != KindNone && (ascii::equal(a->first, "type") || ascii::equal(a->first, "index"));
        if (howToRead) continue;
        if (depth_ < rows_.depth)
            note(outerAttributes_, "'" + a->first + "' of '" + element_ + "'");
        else
            addCell(depth_ == rows_.depth ? std::string_view() : element_, a->first, a->second);
        hasAttributes_ = true;
    }
}

void XmlRowReader::text(std::string_view part) {
    giveAttributes();
    if (beside_ != 0) return;
    if (depth_ == rows_.depth + 1)
        text_ += part;
    else if (depth_ == rows_.depth && !hasElements_)
        rowText_ += part;
    else if (!isBlank(part))
        note(looseTexts_,
             depth_ < rows_.depth ? "text around the rows" : "text in row " + std::to_string(number_));
}

void XmlRowReader::givenText(std::string_view part) {
    givenText_ = true;
    text(part);
}

void XmlRowReader::end() {
    giveAttributes();
    if (beside_ == 0 && depth_ == rows_.depth) endRow();
    if (beside_ == 0 && depth_ == rows_.depth + 1 && (givenText_ || !hasAttributes_ || !isLayout(text_)))
        addCell(element_, {}, text_).declaredText = declaredText_;
    if (beside_ == depth_) beside_ = 0;
    --depth_;
}

void XmlRowReader::endRow() {
    rowEnded_ = true;
    const bool blank = isBlank(rowText_);
    if (hasElements_ && !blank) note(looseTexts_, "text in row " + std::to_string(number_));
    if (hasElements_) return;
    const bool value = rows_.form != XmlRows::Form::Rows && !hasAttributes_;
    if (value || givenText_ || !blank) addCell(rowName_, {}, rowText_).declaredText = declaredText_;
}

XmlCell& XmlRowReader::addCell(std::string_view name, std::string_view attribute, std::string_view text) {
    if (used_ == cells_.size()) cells_.emplace_back();
    XmlCell& cell = cells_[used_++];
    cell.name = name;
    if (!name.empty() && !attribute.empty()) cell.name += '_';
    cell.name += attribute;
    cell.text = text;
    cell.declaredText = false;
    return cell;
}

}  // namespace tarn::datatool
