// SPDX-License-Identifier: Apache-2.0
//
// Boxes that wait for the user. Each runs a loop of its own and gives the answer as view.h tells; a box that
// is closed gives the empty text. `asking` and `answerQuestion` are for whoever plays the user meanwhile.
#pragma once

#include "platform/model/view.h"

class QWidget;

namespace tarn::platform::qt {

std::string askUser(const Question& question, QWidget* parent);
const Question* asking();                      // the innermost open question; null if there is none
bool answerQuestion(const std::string& text);  // false if the box has no such button or row
void closeQuestions();                         // all of them, as the user would; for the end of the program

}  // namespace tarn::platform::qt
