// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a screen reader is told of an edit window: its text, caret and selection, and what a key has changed.
// Offsets count UTF-16 units, as the toolkit does; a byte that is no UTF-8 is one unit. While a screen reader
// is there the control keeps an index of the units in front of each line, so that an offset costs the length
// of its line. Cost without one: a test for each key.
#pragma once

#include <QString>

class QAccessibleInterface;
class QObject;

namespace tarn::platform::qt {

class TextArea;

// A factory for the toolkit; null for what is no text area.
QAccessibleInterface* makeTextAccessible(const QString& kind, QObject* object);

// Tells a screen reader, if there is one: the caret or the selection has moved, bytes were put in at a position,
// or will be taken out from there.
void tellCaret(TextArea& area);
void tellInsertion(TextArea& area, int position, int count);
void tellRemoval(TextArea& area, int position, int count);

}  // namespace tarn::platform::qt
