// SPDX-License-Identifier: Apache-2.0
//
// How a debugged program that is busy hears its user. GetUserBreak and SetUserBreak stand in operations/system.h.
//
// Cost: without a debugger GetUserBreak reads a word; with one it counts, and reads a coarse clock every fourth time: some
// 3 ns. Every 50 ms in which no event loop ran the view looks for the user.
#pragma once

namespace tarn::platform {

// Begins or ends to take DebugBreakSignal as the user's break, and to look for the user. What the signal meant before
// comes back at the end.
void watchUserBreak(bool on);
// An event loop runs, or has just handed out an event: the user was heard.
void noteUserHeard();

// GetUserBreak without looking for the user; a signal handler may ask.
int userBreakWord();

}  // namespace tarn::platform
