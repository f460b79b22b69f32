// SPDX-License-Identifier: Apache-2.0
//
// Values into whole Xbase files. The file is made beside the old one and takes its place when it is whole.
#include "kernel/data/elements.h"
#include "kernel/data/filetext.h"
#include "kernel/data/tab/tab_fields.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xbase/xbase_access_internal.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/tables/filevalues.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <new>
#include <utility>

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
    const std::int32_t code = TakeError();
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

std::int32_t linesOf(std::string_view text) {
    const bool open = !text.empty() && text.back() != '\n';
    return static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n')) + (open ? 1 : 0);
}

// The header counts the rows before they are written.
std::int32_t countRows(const void* value, Kind kind) {
    if (kind == KindString) return linesOf(narrow(static_cast<const StringDescriptor*>(value)));
    if (kind == KindSet) return SetCount(static_cast<const SetDescriptor*>(value));
    const ListDescriptor* const list = ElementList(value, kind);
    return list != nullptr ? list->count : 1;
}

class Saving {
public:
    Saving(const std::string& filename, const Fields& fields)
        : header_(fields.header), marked_(fields.marked), file_(filename) {
        file_.text = fields.bytes;
    }

    // `end` goes behind the rows.
    DataResult run(const void* value, Kind kind, std::string_view end) {
        total_ = countRows(value, kind);
        XbaseSetRecords(file_.text, static_cast<std::uint32_t>(total_));
        if (kind == KindString)
            putLines(*static_cast<const StringDescriptor*>(value));
        else if (kind == KindSet)
            putMembers(*static_cast<const SetDescriptor*>(value));
        else
            putRows(value, kind);
        if (result_.code != 0 || file_.stopped()) return {result_.code, result_.row, 0, file_.stopped()};
        file_.text += end;
        std::string rescueCopy;
        const std::int32_t code = file_.finish(rescueCopy);
        if (code != 0) result_ = {code};
        result_.rescueCopy = std::move(rescueCopy);
        return result_;
    }

private:
    [[nodiscard]] bool goesOn() const { return result_.code == 0 && file_.good(); }
    void put(const void* value, Kind kind) {
        const XbaseFault fault = XbaseWriteRow(value, kind, header_, row_, marked_);
        file_.text += row_;
        finishRow(fault.errorCode);
    }
    void finishRow(std::int32_t code) {
        ++result_.rows;
        file_.pass(result_.rows, total_);
        if (code == 0) return;
        result_.code = code;
        result_.row = result_.rows;
    }

    void putRows(const void* value, Kind kind) {
        ElementSource elements(value, kind);
        for (std::int32_t i = 0; i < elements.count() && goesOn(); ++i) {
            const void* const element = elements.at(i);
            if (element == nullptr) return finishRow(TakeError());
            put(element, elements.kind());
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
            file_.text += XbaseLive;
            file_.text.append(line.substr(0, length)).append(length - std::min(length, line.size()), ' ');
            finishRow(line.size() > length ? std::int32_t{ERR_COMPONENT_UNREPRESENTABLE} : 0);
        }
    }

    const XbaseHeader& header_;
    bool marked_;
    FileText file_;
    std::string row_;
    std::int32_t total_ = 0;
    DataResult result_;
};

DataResult save(const std::string& filename, const void* value, Kind kind, std::string_view typeText) {
    const std::int32_t refused = XbaseRefusal(value, kind);
    if (refused != 0) return {refused};
    Fields fields;
    DataResult result{declaredFields(value, kind, typeText, fields)};
    if (result.code != 0) return result;
    // The value goes on with its own file, which has had its mark cut off when it was opened.
    const bool own = isSameFile(filename, FileNameOf(value, kind));
    return Saving(filename, fields)
        .run(value, kind, own ? std::string_view() : std::string_view(&XbaseFileEnd, 1));
}

}  // namespace

DataResult XbaseSave(const std::string& filename, const void* value, Kind kind, std::string_view typeText) {
    const ErrorCellAside aside;
    try {
        return save(filename, value, kind, typeText);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
