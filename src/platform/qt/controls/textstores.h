// SPDX-License-Identifier: Apache-2.0
//
// Texts that stand in a widget of the toolkit: the control's TextStore is the widget's. All are safe when the widget is
// gone.
#pragma once

#include "platform/model/model.h"

#include <memory>

class QLineEdit;
class QPlainTextEdit;
class QString;

namespace tarn::platform::qt {

std::unique_ptr<TextStore> makeLineStore(QLineEdit& line);
std::unique_ptr<TextStore> makeLinesStore(QPlainTextEdit& lines);

void takeStore(Control& control,
               std::unique_ptr<TextStore> store);  // keeps the text that stood in the old one
void giveBackText(Control& control);               // puts a plain store in the place of the widget's

// Refuses, with a beep, what the user adds beyond `bytes`; 0: no limit. A text set by the program stays
// whole.
void limitLine(QLineEdit& line, int bytes);
void putLine(QLineEdit& line, const QString& text);  // as the program: no limit holds

}  // namespace tarn::platform::qt
