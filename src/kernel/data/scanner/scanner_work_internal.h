// SPDX-License-Identifier: Apache-2.0
//
// What a scanner works with: the lines of its file, the index of its table, and the room for texts.
#pragma once

#include "kernel/data/scanner/scanner.h"
#include "kernel/data/scanner/scanner_lines.h"
#include "kernel/data/scanner/scanner_match_internal.h"

#include <array>

namespace tarn {

struct ScannerWork {
    ScannerWork() { classIds.fill(SymbolUnknown); }

    LineReader lines;
    SymbolMatcher matcher;
    std::array<std::int32_t, SymbolClassCount> classIds;  // as they were when the file was opened
    ScannerText texts[3];
};

void NextLine(ScanState& s, ScannerWork& work);

}  // namespace tarn
