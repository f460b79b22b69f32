// SPDX-License-Identifier: Apache-2.0
//
// Whole Xbase files into values, row by row.
#include "kernel/data/elements.h"
#include "kernel/data/rowloading.h"
#include "kernel/data/tab/tab_fields.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xbase/xbase_access_internal.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/progress.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/table_access.h"
#include "kernel/tables/tables.h"
#include "kernel/values/sets.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"
#include "os/tinylimits.h"

#include <algorithm>
#include <new>

namespace tarn {

namespace {

constexpr std::int64_t blockBytes = limits::XbaseBlockBytes;

// The rows of a file that is open, in blocks.
class Rows {
public:
    Rows(TabFile& file, const XbaseHeader& header)
        : file_(file), size_(header.recordSize), counted_(header.records), at_(header.headerSize) {}

    // 0 or what is wrong.
    std::int32_t open() {
        if (file_.size() < at_) return ERR_FILE_SIZE;
        end_ = at_ + (file_.size() - at_) / size_ * size_;
        // The mark of the end could be a row of one byte, but is none.
        bool isEnd = false;
        std::int32_t code = 0;
        if (size_ == 1) code = readEnd(isEnd);
        if (isEnd) --end_;
        // Some programs fill the last block of a file with that mark.
        const std::int64_t counted = at_ + size_ * counted_;
        for (isEnd = true; code == 0 && isEnd && end_ > counted; end_ -= isEnd ? size_ : 0)
            code = readEnd(isEnd);
        return code;
    }
    // False behind the last one, and when `code` or `stopped` tells why.
    bool next(std::string_view& row) {
        if (unread_.empty() && !fill()) return false;
        row = unread_.substr(0, static_cast<std::size_t>(size_));
        unread_.remove_prefix(row.size());
        return true;
    }
    [[nodiscard]] std::int32_t code() const { return code_; }
    [[nodiscard]] bool stopped() const { return stopped_; }

private:
    // Whether the last row is made of marks of the end.
    std::int32_t readEnd(bool& is) {
        is = false;
        if (end_ == at_) return 0;
        block_.resize(static_cast<std::size_t>(size_));
        const std::int32_t code = file_.read(end_ - size_, block_.data(), block_.size());
        is = code == 0 && block_.find_first_not_of(XbaseFileEnd) == std::string::npos;
        return code;
    }
    bool fill() {
        if (code_ != 0 || stopped_ || at_ == end_) return false;
        const std::int64_t rows = std::max<std::int64_t>(blockBytes / size_, 1);
        block_.resize(static_cast<std::size_t>(std::min(rows * size_, end_ - at_)));
        code_ = file_.read(at_, block_.data(), block_.size());
        if (code_ != 0) return false;
        at_ += static_cast<std::int64_t>(block_.size());
        unread_ = block_;
        if (at_ - told_ < ProgressStep) return true;
        told_ = at_;
        stopped_ = !Progress(at_, file_.size());
        return !stopped_;
    }

    TabFile& file_;
    std::int64_t size_, counted_, at_, end_ = 0, told_ = 0;
    std::string block_;
    std::string_view unread_;
    std::int32_t code_ = 0;
    bool stopped_ = false;
};

class Loading : public RowLoading {
public:
    Loading(Rows& rows, const XbaseHeader& header, bool marked, std::int32_t mostRows)
        : RowLoading(mostRows), rows_(rows), header_(header), marked_(marked) {}

private:
    bool nextInFile(std::string_view& row) override { return rows_.next(row); }
    [[nodiscard]] std::int32_t fileCode() const override { return rows_.code(); }
    [[nodiscard]] bool stopped() const override { return rows_.stopped(); }

    std::int32_t fill(std::string_view row, void* value, Kind kind) override {
        const XbaseFault fault = XbaseReadRow(row, header_, value, kind, marked_);
        const std::int32_t code = TakeError();
        return IsMemoryError(code) ? code : fault.errorCode;
    }

    // The number of each row; a blank is none.
    void readSet(SetDescriptor& set) override {
        for (std::string_view row; next(row); result_.rows = row_) {
            if (header_.fieldCount == 0 || header_.type[0] != XbaseNumber) {
                note(ERR_COMPONENT_UNREPRESENTABLE);
                continue;
            }
            std::int32_t member = 0;
            const std::string_view text = row.substr(1, header_.length[0]);
            if (WithoutXbaseFill(text).empty()) continue;
            const bool number = ReadXbaseNumber(text, reinterpret_cast<char*>(&member), KindInteger);
            if (number) SetInclude(member, &set);
            const std::int32_t code = TakeError();
            const bool included = number && code == 0;
            if (!included) note(IsMemoryError(code) ? code : std::int32_t{ERR_COMPONENT_UNREPRESENTABLE});
        }
    }

    // The first field of each row in a line, as much as the string can hold.
    void readText(StringDescriptor& text) override {
        const std::int64_t most = text.maxlength == UNBOUNDED ? std::int64_t{MaxBlock} : text.maxlength;
        std::string lines;
        const bool readable =
            header_.fieldCount > 0 && (header_.type[0] == XbaseCharacters || header_.type[0] == XbaseDate);
        std::string_view row;
        while (static_cast<std::int64_t>(lines.size()) <= most && next(row)) {
            if (readable)
                lines += WithoutXbaseFill(row.substr(1, header_.length[0]));
            else
                note(ERR_COMPONENT_UNREPRESENTABLE);
            lines += '\n';
        }
        result_.rows = row_;
        StringAssignView(&text, lines);
        const std::int32_t code = TakeError();
        note(code == ERR_FIXED_STRING ? std::int32_t{ERR_COMPONENT_UNREPRESENTABLE} : code);
    }

    Rows& rows_;
    const XbaseHeader& header_;
    bool marked_;
};

// The message of a file that is no Xbase file goes with 661.
DataResult load(const std::string& filename, std::int32_t mostRows, void* value, Kind kind,
                std::string_view typeText, std::string& message) {
    DataResult result{XbaseRefusal(value, kind)};
    if (result.code != 0) return result;
    TabFile file;
    result.code = file.open(filename);
    if (result.code != 0) {
        message = XbaseOpenMessage(result.code);
        return result;
    }
    XbaseHeader header;
    message = ReadXbaseHeader(file, header, result.code);
    if (!message.empty()) return {result.code != 0 ? result.code : std::int32_t{ERR_FILE_NOT_OPEN}};
    Rows rows(file, header);
    result.code = rows.open();
    if (result.code != 0) return result;
    const XbaseShape row = XbaseShapeOf(value, kind);
    const bool marked = XbaseHoldsMark(row.at, row.kind, XbaseDeclarationOf(value, kind, typeText));
    return Loading(rows, header, marked, mostRows).into(value, kind);
}

}  // namespace

XbaseShape XbaseShapeOf(const void* value, Kind kind) {
    if (kind == KindSet) return {nullptr, KindInteger};
    const ListDescriptor* const list = ElementList(value, kind);
    if (list == nullptr) return {static_cast<const char*>(value), kind};
    return {At(list->prototype), ElementKindOf(*list)};
}

std::int32_t XbaseRefusal(const void* value, Kind kind) {
    const TabTarget target = MakeTabTarget(value, kind, '\t');
    if (target.code != 0) return target.code;
    if (kind < KindString || kind == KindArray) return ERR_COMPONENT_UNREPRESENTABLE;
    const XbaseShape row = XbaseShapeOf(value, kind);
    const auto hasField = [](const char*, Kind field) { return field != KindSet; };
    return EachXbaseField(row.at, row.kind, hasField) ? 0 : std::int32_t{ERR_COMPONENT_UNREPRESENTABLE};
}

std::string XbaseDeclarationOf(const void* value, Kind kind, std::string_view typeText) {
    if (kind != KindTable) return std::string(typeText);
    const NarrowText own(TableTypeInfo(static_cast<const TableDescriptor*>(value)));
    return std::string(own.view().empty() ? typeText : own.view());
}

DataResult XbaseLoad(const std::string& filename, void* value, Kind kind, std::string& message,
                     std::int32_t mostRows, std::string_view typeText) {
    const ErrorCellAside aside;
    message.clear();
    try {
        return load(filename, mostRows, value, kind, typeText, message);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
