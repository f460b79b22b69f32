// SPDX-License-Identifier: Apache-2.0
#include "library/data/dbutil_remarks_internal.h"

#include "kernel/data/xbase/xbase.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/progress.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>

namespace tarn::detail {
namespace {

std::string rowCount(std::int64_t rows) {
    return std::to_string(rows) + (rows == 1 ? " row" : " rows");
}

std::vector<std::string> remarksOnXbase(const std::string& filename, int rows) {
    const ErrorCellAside aside;
    XbaseHeader header;
    if (!XbaseReadHeader(filename, header).empty() || std::int64_t{header.records} == rows) return {};
    const std::string counted = "Its header counts " + rowCount(header.records) + ", and ";
    if (std::int64_t{header.records} > rows)
        return {counted + rowCount(rows) + (rows == 1 ? " is" : " are") +
                " there: it may have been cut off."};
    return {counted + rowCount(rows) + (rows == 1 ? " is" : " are") +
            " shown: the last ones may be no rows."};
}

// What the bytes of a text are, block after block.
class TextLook {
public:
    void take(std::string_view bytes) {
        for (std::size_t at = 0; zeroLine_ == 0 && at < bytes.size();) {
            const std::size_t end = std::min(bytes.find('\n', at), bytes.size());
            if (bytes.substr(at, end - at).find('\0') != std::string_view::npos) zeroLine_ = line_;
            if (end < bytes.size()) ++line_;
            at = end + 1;
        }
        feeds_ = feeds_ || bytes.find('\n') != std::string_view::npos;
        // One at the end of the file ends nothing that another line would follow.
        returns_ =
            returns_ || lastReturn_ || bytes.substr(0, bytes.size() - 1).find('\r') != std::string_view::npos;
        lastReturn_ = bytes.back() == '\r';
    }
    [[nodiscard]] bool knowsAll() const { return feeds_ && zeroLine_ != 0; }
    [[nodiscard]] std::vector<std::string> remarks() const {
        std::vector<std::string> remarks;
        if (returns_ && !feeds_)
            remarks.emplace_back(
                "Its lines end with carriage returns alone, which end no line here: all of it is one.");
        if (zeroLine_ != 0)
            remarks.push_back(
                "Line " + std::to_string(zeroLine_) +
                " holds a byte 0, at which a cell without quotes ends: what follows in the cell is not "
                "shown.");
        return remarks;
    }

private:
    std::int64_t line_ = 1, zeroLine_ = 0;
    bool feeds_ = false, returns_ = false, lastReturn_ = false;
};

std::vector<std::string> remarksOnText(const std::string& filename) {
    constexpr std::size_t blockBytes = std::size_t{256} * 1024;
    os::Handle handle = -1;
    std::int64_t size = 0;
    if (os::files().open(os::native(filename), os::OpenMode::Read, 0, handle) != os::FileError::None)
        return {};
    os::files().size(handle, size);
    TextLook look;
    std::string block(blockBytes, '\0');
    std::size_t got = 1;
    bool stopped = false;
    for (std::int64_t at = 0; got != 0 && !stopped && !look.knowsAll();
         at += static_cast<std::int64_t>(got)) {
        if (os::files().read(handle, at, block.data(), block.size(), got) != os::FileError::None) break;
        if (got == 0) break;
        look.take(std::string_view(block).substr(0, got));
        stopped = !Progress(at, size);
    }
    os::files().close(handle);
    return stopped ? std::vector<std::string>() : look.remarks();
}

}  // namespace

std::vector<std::string> remarksOnFile(const std::string& filename, DataFormat format, int rows) {
    if (format == FormatXbase) return remarksOnXbase(filename, rows);
    return IsDelimited(format) ? remarksOnText(filename) : std::vector<std::string>();
}

}  // namespace tarn::detail
