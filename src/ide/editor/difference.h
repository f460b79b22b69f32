// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window that shows in which lines two texts differ (linediff.h).
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

struct Difference {
    std::string caption;        // of the window; F1 and Help show its topic
    std::string heading;        // above: what is compared
    std::string prompt;         // which lines bear "-" and which "+"
    std::string first, second;  // the texts
};
// Returns when the user has closed it.
void SHOWDIFFERENCE(const Difference& difference);
bool DIFFERENCEDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
