// SPDX-License-Identifier: Apache-2.0
//
// Whole Xbase files are written to memory first and then put on disk in one step; a row that does not fit its
// fields is known before the old file is touched.
#include "kernel/data/elements.h"
#include "kernel/data/progress.h"
#include "kernel/data/tab_fields.h"
#include "kernel/data/typeinfo.h"
#include "kernel/data/xbase_access.h"
#include "kernel/errors.h"
#include "kernel/fileerrors.h"
#include "kernel/filevalues.h"
#include "kernel/sets.h"
#include "kernel/strings.h"

#include <algorithm>
#include <new>

namespace tarn {

namespace {

std::string narrow(const StringDescriptor* s) {
    return CharacterWidth == 1 ? std::string(StringView(s)) : NarrowTabText(s);
}

// A declaration with a name and a type for each field of a row, from one that may lack some of both.
std::string completed(std::string_view typeText, const XbaseShape& row) {
    const std::vector<XbaseDeclared> declared = XbaseDeclaredFields(typeText);
    std::string text;
    const auto count = static_cast<std::size_t>(CountXbaseFields(row.at, row.kind));
    const bool marked = XbaseHoldsMark(row.at, row.kind, typeText);
    for (std::size_t n = 0; n < count; ++n) {
        XbaseDeclared field = n < declared.size() ? declared[n] : XbaseDeclared{};
        if (marked && n == 0) field = {std::string(DeleteFlagName), std::string(DeleteFlagType)};
        text += field.name.empty() ? "FIELD" + std::to_string(marked ? n : n + 1) : field.name;
        text += " : " + (field.typeName.empty() ? "Tchars" : field.typeName) + "\n";
    }
    return text;
}

bool isSameFile(const std::string& a, const std::string& b) {
    if (b.empty()) return false;
    const os::FileInfo one = os::infoOf(a), other = os::infoOf(b);
    return one.exists && other.exists && one.device == other.device && one.inode == other.inode;
}

// The fields of the file that is written.
struct Fields {
    XbaseHeader header;
    std::string bytes;
    bool marked = false;
};

// Of a value that is held in an Xbase file: those of that file.
std::int32_t attachedFields(const void* value, Kind kind, Fields& fields) {
    const std::string message = XbaseReadHeader(FileNameOf(value, kind), fields.header);
    const std::int32_t code = TakeCellError();
    if (!message.empty()) return code != 0 ? code : std::int32_t{ERR_FILE_NOT_OPEN};
    fields.bytes = XbaseHeaderBytes(fields.header, 0);
    fields.marked = true;
    return 0;
}

std::int32_t declaredFields(const void* value, Kind kind, std::string_view typeText, Fields& fields) {
    if (XbaseFileName(FileNameOf(value, kind))) return attachedFields(value, kind, fields);
    const XbaseShape row = XbaseShapeOf(value, kind);
    const std::string declaration = completed(XbaseDeclarationOf(value, kind, typeText), row);
    std::int32_t code = 0;
    fields.bytes = XbaseHeaderBytes(row.at, row.kind, declaration, 0, code);
    if (code == 0) code = XbaseBuildDescriptors(row.at, row.kind, declaration, fields.header);
    fields.marked = XbaseHoldsMark(row.at, row.kind, declaration);
    return code;
}

class Saving {
public:
    Saving(const XbaseHeader& header, bool marked, std::string& text)
        : header_(header), marked_(marked), text_(text) {}

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
        const XbaseFault fault = XbaseWriteRow(value, kind, header_, row_, marked_);
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
            if (element == nullptr) return finishRow(TakeCellError());
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
    bool marked_;
    std::string &text_, row_;
    std::int64_t told_ = 0;
    TabResult result_;
};

TabResult save(const std::string& filename, const void* value, Kind kind, std::string_view typeText) {
    const std::int32_t refused = XbaseRefusal(value, kind);
    if (refused != 0) return {refused};
    Fields fields;
    TabResult result{declaredFields(value, kind, typeText, fields)};
    if (result.code != 0) return result;
    std::string& bytes = fields.bytes;
    result = Saving(fields.header, fields.marked, bytes).run(value, kind);
    if (result.code != 0 || result.stopped) return {result.code, result.row, 0, result.stopped};
    // The value goes on with its own file, which has had its mark cut off when it was opened.
    if (!isSameFile(filename, FileNameOf(value, kind))) bytes += XbaseFileEnd;
    XbaseSetRecords(bytes, static_cast<std::uint32_t>(result.rows));
    os::SaveResult saved = os::saveFile(filename, bytes);
    if (!saved.ok()) result = {FileWriteCode(saved.error)};
    result.rescueCopy = std::move(saved.rescueCopy);
    return result;
}

}  // namespace

TabResult XbaseSave(const std::string& filename, const void* value, Kind kind, std::string_view typeText) {
    const CellApart cell;
    try {
        return save(filename, value, kind, typeText);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
