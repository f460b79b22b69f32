// SPDX-License-Identifier: Apache-2.0
//
// Bytes and positions: the model counts a text in bytes, a widget in UTF-16 units without the mark of UTF-8 at the start.
// Where `joinsEnds`, a widget has one position for CR LF. Bytes that are no UTF-8 are shown as Latin-1. Linear in the text.
#pragma once

#include <QString>

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::platform::qt {

std::size_t byteOf(std::string_view bytes, int position,
                   bool joinsEnds);                                // from 0; the end if there are not so many
int positionOf(std::string_view bytes, int byte, bool joinsEnds);  // both from 0

bool everyEndIsPair(std::string_view bytes);  // CR LF behind every line, and there is one

// The bytes of `now`, which the user made out of `before`, shown as `old`, in a widget that has one position
// for every line end: what stands before and behind the change keeps its bytes. New lines end with CR LF if
// all lines did, else with LF.
std::string merged(std::string_view before, const QString& old, const QString& now);

}  // namespace tarn::platform::qt
