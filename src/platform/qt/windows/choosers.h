// SPDX-License-Identifier: Apache-2.0
//
// Boxes that choose a font, a colour or a printer. What is offered and what was chosen are texts, whose form
// model/dialogs.cpp describes.
#pragma once

#include "platform/model/view.h"

#include <memory>

class QDialog;
class QWidget;

namespace tarn::platform::qt {

bool isChooser(const Question& question);
std::unique_ptr<QDialog> makeChooser(const Question& question, QWidget* parent);
std::string chosenIn(const Question& question, QDialog& box);
// Puts the answer in as the user would and accepts it.
void chooseIn(const Question& question, QDialog& box, const std::string& answer);

}  // namespace tarn::platform::qt
