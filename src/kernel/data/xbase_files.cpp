// SPDX-License-Identifier: Apache-2.0
//
// Whole Xbase files. A file is read into a fresh value of the target's shape, which takes its place when the
// reading came to its end. A file is written to memory first and then put on disk in one step; a row that
// does not fit its fields is known before the old file is touched.
#include "kernel/data/elements.h"
#include "kernel/data/fresh.h"
#include "kernel/data/progress.h"
#include "kernel/data/tab_fields.h"
#include "kernel/data/typeinfo.h"
#include "kernel/data/xbase_access.h"
#include "kernel/errors.h"
#include "kernel/fileerrors.h"
#include "kernel/lists.h"
#include "kernel/runtime.h"
#include "kernel/sets.h"
#include "kernel/strings.h"
#include "kernel/table_access.h"
#include "kernel/tables.h"

#include <algorithm>
#include <new>

namespace tarn {

namespace {

#ifdef TARNWICK_TINY
constexpr std::int64_t blockBytes = 64;
#else
constexpr std::int64_t blockBytes = 256 * 1024;
#endif

std::int32_t takeError() {
    const std::int32_t code = tarn_error_cell;
    tarn_error_cell = 0;
    return code;
}

bool isMemoryError(std::int32_t code) {
    return code == ERR_OUT_OF_MEMORY || code == ERR_BLOCK_TOO_LARGE;
}

// The shape of a row.
struct RowShapeOf {
    const char* at = nullptr;
    Kind kind = KindNone;
};

RowShapeOf rowOf(const void* value, Kind kind) {
    if (kind == KindSet) return {nullptr, KindInteger};
    const ListDescriptor* const list = ElementList(value, kind);
    if (list == nullptr) return {static_cast<const char*>(value), kind};
    return {At(list->prototype), ElementKindOf(*list)};
}

// 0, or why such a value cannot be read from rows or written as rows.
std::int32_t refusal(const void* value, Kind kind) {
    const TabTarget target = MakeTabTarget(value, kind, '\t');
    if (target.code != 0) return target.code;
    if (kind < KindString || kind == KindArray) return ERR_COMPONENT_UNREPRESENTABLE;
    const RowShapeOf row = rowOf(value, kind);
    const auto hasField = [](const char*, Kind field) { return field != KindSet; };
    return EachXbaseField(row.at, row.kind, hasField) ? 0 : std::int32_t{ERR_COMPONENT_UNREPRESENTABLE};
}

// ---- loading ----

// The rows of a file that is open, in blocks.
class Rows {
public:
    Rows(TabFile& file, const XbaseHeader& header)
        : file_(file), size_(header.recordSize), at_(header.headerSize) {}

    // 0 or what is wrong.
    std::int32_t open() {
        if (file_.size() < at_) return ERR_FILE_SIZE;
        end_ = at_ + (file_.size() - at_) / size_ * size_;
        // The mark of the end could be a row of one byte, but is none.
        char last = 0;
        if (size_ != 1 || end_ == at_) return 0;
        const std::int32_t code = file_.read(end_ - 1, &last, 1);
        if (last == XbaseFileEnd) --end_;
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
    std::int64_t size_, at_, end_ = 0, told_ = 0;
    std::string block_;
    std::string_view unread_;
    std::int32_t code_ = 0;
    bool stopped_ = false;
};

class Loading {
public:
    Loading(Rows& rows, const XbaseHeader& header, std::int32_t mostRows)
        : rows_(rows), header_(header), mostRows_(mostRows < 0 ? INT32_MAX : mostRows) {}

    TabResult run(void* value, Kind kind) {
        switch (kind) {
        case KindString: readText(*static_cast<StringDescriptor*>(value)); break;
        case KindSet: readSet(*static_cast<SetDescriptor*>(value)); break;
        case KindList: readList(*static_cast<ListDescriptor*>(value)); break;
        case KindTable: readTable(*static_cast<TableDescriptor*>(value)); break;
        default: readOne(value, kind);
        }
        result_.stopped = rows_.stopped();
        if (rows_.code() != 0) failWhole(rows_.code());
        return failed() ? TabResult{result_.code, 0, 0, result_.stopped} : result_;
    }
    // Nothing that was read counts.
    [[nodiscard]] bool failed() const { return failed_ || result_.stopped; }

private:
    bool next(std::string_view& row) {
        if (failed_ || row_ == mostRows_ || !rows_.next(row)) return false;
        ++row_;
        return true;
    }
    void failWhole(std::int32_t code) {
        result_ = {code};
        failed_ = true;
    }
    void note(std::int32_t code) {
        if (isMemoryError(code)) return failWhole(code);
        if (code == 0 || result_.code != 0) return;
        result_.code = code;
        result_.row = row_;
    }
    void readRow(std::string_view row, void* value, Kind kind) {
        const XbaseFault fault = XbaseReadRow(row, header_, value, kind);
        const std::int32_t code = takeError();
        note(isMemoryError(code) ? code : fault.errorCode);
    }

    void readOne(void* value, Kind kind) {
        std::string_view row;
        if (!next(row)) return;
        readRow(row, value, kind);
        result_.rows = row_;
    }

    void readList(ListDescriptor& list) {
        ElementSink elements(list);
        for (std::string_view row; next(row); result_.rows = list.count) {
            void* const element = elements.next();
            if (element == nullptr) return note(takeError());
            readRow(row, element, ElementKindOf(list));
            if (!failed_ && !elements.add()) return failWhole(takeError());
        }
    }

    void readTable(TableDescriptor& table) {
        RecordValue record;
        AdtInit(record.get(), &RowShape(HeaderOf(table)), KindRecord);
        note(takeError());
        const std::int32_t index = TableIndexCount(&table) > 0 ? 1 : 0;
        for (std::string_view row; next(row); result_.rows = table.count) {
            readRow(row, record.get(), KindRecord);
            if (failed_) return;
            TableAdd(&table, index, record.get());
            const std::int32_t code = takeError();
            if (IsFileFailure(code)) return failWhole(code);
            note(code);
            if (code == ERR_FIXED_TABLE) return;
        }
    }

    // The number of each row; a blank is none.
    void readSet(SetDescriptor& set) {
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
            const std::int32_t code = takeError();
            const bool included = number && code == 0;
            if (!included) note(isMemoryError(code) ? code : std::int32_t{ERR_COMPONENT_UNREPRESENTABLE});
        }
    }

    // The first field of each row in a line, as much as the string can hold.
    void readText(StringDescriptor& text) {
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
        note(takeError());
    }

    Rows& rows_;
    const XbaseHeader& header_;
    std::int32_t mostRows_, row_ = 0;
    bool failed_ = false;
    TabResult result_;
};

// The message of a file that is no Xbase file goes with 661.
TabResult load(const std::string& filename, std::int32_t mostRows, void* value, Kind kind,
               std::string& message) {
    TabResult result{refusal(value, kind)};
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
    FreshValue fresh(value, kind);
    result.code = takeError();
    if (result.code != 0) return result;
    Loading loading(rows, header, mostRows);
    result = loading.run(fresh.get(), kind);
    if (!loading.failed() && !fresh.replaceTarget()) return {takeError()};
    return result;
}

// ---- saving ----

std::string narrow(const StringDescriptor* s) {
    return CharacterWidth == 1 ? std::string(StringView(s)) : NarrowTabText(s);
}

// A declaration with a name and a type for each field of a row, from one that may lack some of both.
std::string completed(std::string_view typeText, const RowShapeOf& row) {
    const std::vector<XbaseDeclared> declared = XbaseDeclaredFields(typeText);
    std::string text;
    const auto count = static_cast<std::size_t>(CountXbaseFields(row.at, row.kind));
    for (std::size_t n = 0; n < count; ++n) {
        const XbaseDeclared field = n < declared.size() ? declared[n] : XbaseDeclared{};
        text += field.name.empty() ? "FIELD" + std::to_string(n + 1) : field.name;
        text += " : " + (field.typeName.empty() ? "Tchars" : field.typeName) + "\n";
    }
    return text;
}

class Saving {
public:
    Saving(const XbaseHeader& header, std::string& text) : header_(header), text_(text) {}

    TabResult run(const void* value, Kind kind) {
        if (kind == KindString)
            putLines(*static_cast<const StringDescriptor*>(value));
        else if (kind == KindSet)
            putMembers(*static_cast<const SetDescriptor*>(value));
        else
            putRows(value, kind);
        return result_;
    }

private:
    [[nodiscard]] bool goesOn() const { return result_.code == 0 && !result_.stopped; }
    void put(const void* value, Kind kind) {
        const XbaseFault fault = XbaseWriteRow(value, kind, header_, row_);
        text_ += row_;
        finishRow(fault.errorCode);
    }
    void finishRow(std::int32_t code) {
        ++result_.rows;
        if (code == 0) return;
        result_.code = code;
        result_.row = result_.rows;
    }
    void tell(std::int64_t done, std::int64_t total) {
        if (static_cast<std::int64_t>(text_.size()) - told_ < ProgressStep) return;
        told_ = static_cast<std::int64_t>(text_.size());
        result_.stopped = !Progress(told_, std::max(told_ / done * total, told_));
    }

    void putRows(const void* value, Kind kind) {
        ElementSource elements(value, kind);
        const auto rows = static_cast<std::size_t>(elements.count());
        text_.reserve(text_.size() + rows * static_cast<std::size_t>(header_.recordSize) + 1);
        for (std::int32_t i = 0; i < elements.count() && goesOn(); ++i) {
            const void* const element = elements.at(i);
            if (element == nullptr) return finishRow(takeError());
            put(element, elements.kind());
            tell(i + 1, elements.count());
        }
    }
    void putMembers(const SetDescriptor& set) {
        const std::int32_t last = SetUpperBound(&set);
        for (std::int32_t i = SetLowerBound(&set); i <= last && goesOn(); ++i) {
            if (SetContains(i, &set)) put(&i, KindInteger);
        }
    }
    // A row for each line.
    void putLines(const StringDescriptor& s) {
        const std::string text = narrow(&s);
        const std::size_t length = header_.length[0];
        for (std::size_t at = 0; at < text.size() && goesOn();) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            std::string_view line = std::string_view(text).substr(at, end - at);
            line = WithoutXbaseFill(line.substr(0, line.find_last_not_of('\r') + 1));
            at = end + 1;
            text_ += XbaseLive;
            text_.append(line.substr(0, length)).append(length - std::min(length, line.size()), ' ');
            finishRow(line.size() > length ? std::int32_t{ERR_COMPONENT_UNREPRESENTABLE} : 0);
            tell(static_cast<std::int64_t>(at), static_cast<std::int64_t>(text.size()));
        }
    }

    const XbaseHeader& header_;
    std::string &text_, row_;
    std::int64_t told_ = 0;
    TabResult result_;
};

TabResult save(const std::string& filename, const void* value, Kind kind, std::string_view typeText) {
    const std::int32_t refused = refusal(value, kind);
    if (refused != 0) return {refused};
    std::string own;
    if (kind == KindTable) own = StringView(TableTypeInfo(static_cast<const TableDescriptor*>(value)));
    const RowShapeOf row = rowOf(value, kind);
    const std::string declaration = completed(own.empty() ? typeText : own, row);
    TabResult result;
    std::string bytes = XbaseHeaderBytes(row.at, row.kind, declaration, 0, result.code);
    if (result.code != 0) return result;
    XbaseHeader header;
    XbaseBuildDescriptors(row.at, row.kind, declaration, header);
    result = Saving(header, bytes).run(value, kind);
    if (result.code != 0 || result.stopped) return {result.code, result.row, 0, result.stopped};
    bytes += XbaseFileEnd;
    XbaseSetRecords(bytes, static_cast<std::uint32_t>(result.rows));
    const std::int32_t code = FileWriteCode(os::saveFile(filename, bytes).error);
    return code == 0 ? result : TabResult{code};
}

}  // namespace

TabResult XbaseLoad(const std::string& filename, void* value, Kind kind, std::string& message,
                    std::int32_t mostRows) {
    const CellApart cell;
    message.clear();
    try {
        return load(filename, mostRows, value, kind, message);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

TabResult XbaseSave(const std::string& filename, const void* value, Kind kind, std::string_view typeText) {
    const CellApart cell;
    try {
        return save(filename, value, kind, typeText);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
