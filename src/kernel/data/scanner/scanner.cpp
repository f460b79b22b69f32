// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/scanner/scanner.h"

#include "kernel/data/scanner/scanner_bytes.h"
#include "kernel/data/scanner/scanner_work_internal.h"

#include <algorithm>
#include <new>
#include <utility>

namespace tarn {

namespace {

constexpr std::size_t maxFilename = 255;

}  // namespace

void Scanner::EndWork::operator()(ScannerWork* work) const {
    delete work;
}

// The memory to work in, once. Without it the scanner stays closed.
bool Scanner::prepare() {
    if (work_ != nullptr) return true;
    work_.reset(new (std::nothrow) ScannerWork);
    lacksMemory_ = work_ == nullptr;
    if (lacksMemory_) return false;
    s_.symbolText = &work_->texts[0];
    s_.previousText = &work_->texts[1];
    s_.text = &work_->texts[2];
    clear();
    return true;
}

void Scanner::clear() {
    if (work_ == nullptr) return;
    work_->lines.close();
    work_->classIds.fill(SymbolUnknown);
    work_->matcher.forget();
    for (ScannerText& text : work_->texts) text.clear();
    s_.line = s_.at = s_.from = work_->lines.begin();
    s_.end = work_->lines.end();
    s_.filename.clear();
    s_.ignoreCase = false;
    s_.lineNumber = s_.symbol = s_.symbolLine = s_.openLine = 0;
}

ScanStatus Scanner::open(const std::string& filename, const SymbolTable* table, bool ignoreCase,
                         std::int32_t longestLine) {
    if (isOpen() || filename.empty() || table == nullptr || table->count < 1 || !prepare()) return ScanClean;
    clear();
    if (work_->lines.open(filename, longestLine) != os::FileError::None) return ScanClean;
    for (const SymbolClass c : {ClassId, ClassXmlId, ClassMlSqStr, ClassMlDqStr, ClassWhitespace, ClassEol})
        work_->classIds[c] = symbolClassId(table, c);
    s_.filename = filename.substr(0, maxFilename);
    s_.ignoreCase = ignoreCase;
    NextLine(s_, *work_);
    const bool cut = work_->lines.cut();
    const ScanStatus status = next(table);
    return status == ScanClean && cut ? ScanLineTooLong : status;
}

void Scanner::close() {
    clear();
}

ScanStatus Scanner::skipChar() {
    const std::int32_t line = s_.lineNumber;
    const unsigned char c = character();
    s_.status = ScanClean;
    if (c == LineEnd) {
        NextLine(s_, *work_);
        if (work_->lines.cut()) s_.note(ScanLineTooLong);
    } else if (c != EndOfFileMark && isOpen()) {
        ++s_.at;
    }
    if (s_.lineNumber != line) s_.note(ScanNewLine);
    s_.symbol = 0;
    if (s_.symbolText != nullptr) s_.symbolText->clear();
    return s_.status;
}

std::int64_t Scanner::bytesRead() const {
    return work_ != nullptr ? work_->lines.bytesRead() : 0;
}

os::FileError Scanner::fileError() const {
    if (lacksMemory_) return os::FileError::ReadFailed;
    return work_ != nullptr ? work_->lines.error() : os::FileError::None;
}

unsigned char Scanner::extraChar2() const {
    for (const unsigned char c : {character(), extraChar()})
        if (c == '\0' || c == LineEnd || c == EndOfFileMark) return '\0';
    return s_.byteAhead(2);
}

}  // namespace tarn
