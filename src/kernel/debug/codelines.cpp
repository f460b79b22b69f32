// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/codelines.h"

#include "kernel/data/tab/tabular.h"
#include "kernel/debug/symboltext.h"
#include "kernel/run/errorcell.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/process.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <span>
#include <string>

namespace tarn {

CodeLineTable* codeLineTable = nullptr;

namespace {

constexpr std::string_view DebugWord = "debug";

// Looks for the first record of which name and sort are both "debug".
class BitmapSearch {
public:
    void take(std::int32_t row, std::int32_t column, std::string_view cell) {
        if (row != row_) named_ = sorted_ = false;
        row_ = row;
        if (column == SymbolName) named_ = isDebug(cell);
        if (column == SymbolSort) sorted_ = isDebug(cell);
        if (column != SymbolComment || found_ || !named_ || !sorted_) return;
        found_ = true;
        bitmap_ = SymbolText(cell, CodeLineSet::Bytes + 1);
    }
    [[nodiscard]] const std::string& bitmap() const { return bitmap_; }

private:
    static bool isDebug(std::string_view cell) { return ascii::equal(SymbolText(cell, MaxName), DebugWord); }
    std::int32_t row_ = 0;
    bool named_ = false, sorted_ = false, found_ = false;
    std::string bitmap_;
};

const CodeLineEntry* entryOf(std::string_view className) {
    if (codeLineTable == nullptr) return nullptr;
    for (const CodeLineEntry& entry :
         std::span(codeLineTable->entries, static_cast<std::size_t>(codeLineTable->count)))
        if (ascii::equal(entry.className, className)) return &entry;
    return nullptr;
}

}  // namespace

std::int32_t CodeLineSet::next(std::int32_t line) const {
    for (std::int32_t at = std::max(line, 0); at < MaxCodeLine; ++at)
        if (has(at + 1)) return at + 1;
    return 0;
}

void CodeLineSet::assign(std::string_view bitmap) {
    bits_ = {};
    if (bitmap.size() == Bytes) std::copy(bitmap.begin(), bitmap.end(), bits_.begin());
}

std::string SymbolFileOf(std::string_view className, std::string_view sourcePath) {
    const std::string beside = os::native(std::string(paths::withoutExtension(sourcePath)) + ".sym");
    if (os::sizeOf(beside) >= 0) return beside;
    const std::string other = os::executableFolder() + std::string(className) + ".sym";
    return os::sizeOf(other) >= 0 ? other : std::string();
}

void LoadCodeLines(std::string_view className, std::string_view sourcePath, CodeLineSet& lines) {
    lines = {};
    const std::string file = SymbolFileOf(className, sourcePath);
    if (file.empty()) return;
    const ErrorCellAside aside;
    BitmapSearch search;
    static_cast<void>(
        TabVisitCells(file, DataOptions(), [&](std::int32_t row, std::int32_t column, std::string_view cell) {
            search.take(row, column, cell);
        }));
    lines.assign(search.bitmap());
}

void AddCodeLines(std::string_view className, std::string_view sourcePath) {
    if (codeLineTable == nullptr || codeLineTable->count >= MaxClasses) return;
    CodeLineEntry& entry = codeLineTable->entries[codeLineTable->count++];
    entry.className[className.copy(entry.className, MaxName)] = 0;
    LoadCodeLines(className, sourcePath, entry.lines);
}

bool LineHasCode(std::string_view className, std::int32_t line) {
    const CodeLineEntry* const entry = entryOf(className);
    return entry != nullptr && entry->lines.has(line);
}

std::int32_t NextCodeLine(std::string_view className, std::int32_t line) {
    const CodeLineEntry* const entry = entryOf(className);
    return entry != nullptr ? entry->lines.next(line) : 0;
}

}  // namespace tarn
