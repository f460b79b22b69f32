// SPDX-License-Identifier: Apache-2.0
//
// Controls that hold a text: one line, several lines, a combo box's line, an edit window. The text stands in
// the widget alone: the control's TextStore is the widget's.
#pragma once

#include "platform/qt/controls/widgets.h"

class QLineEdit;

namespace tarn::platform::qt {

// A store over a line, safe when the line is gone.
std::unique_ptr<TextStore> makeLineStore(QLineEdit& line);
void takeStore(Control& control,
               std::unique_ptr<TextStore> store);  // keeps the text that stood in the old one
void giveBackText(Control& control);               // puts a plain store in the place of the widget's

// Refuses, with a beep, what the user adds beyond `bytes`; 0: no limit. A text set by the program stays
// whole.
void limitLine(QLineEdit& line, int bytes);
void putLine(QLineEdit& line, const QString& text);  // as the program: no limit holds

Peer* makeLinePeer(Control& control, QWidget* parent);
Peer* makeLinesPeer(Control& control, QWidget* parent);
Peer* makeEditAreaPeer(Control& control, QWidget* parent);

}  // namespace tarn::platform::qt
