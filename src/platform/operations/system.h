// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: what belongs to the program or the desktop as a whole.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

void Sound();  // the desktop's beep
void PlaySound(const std::string& wavFile);
std::string SystemInfo();                                   // the name of the operating system
Answer<std::int64_t> DiskSpace(const std::string& folder);  // free bytes, -1 for a folder that does not exist
void AppIcon(const std::string& file);
void SetBusy(bool busy);  // the wait cursor, and all windows of the program disabled; nests
// Sends TIMER_EVENT to the owner's window again and again; 0 stops it.
void SetTimer(const Object& owner, int milliseconds);
bool OpenUrl(const std::string& url);  // with the desktop's program for it; false if there is none
// While a tool runs: shows a small window with `text` and a Stop button; see ToolStopPressed. Empty text
// hides it.
void ShowToolProgress(const std::string& text);
bool ToolStopPressed();
void SetTrace(int mode);  // the level that whoever traces reads with GetTrace; 0 is off
int GetTrace();
int GetUserBreak();
void SetUserBreak(int value);
// Gives the code back, so that whoever puts codes into the error cell does so with this one.
Code RaiseGuiRtx(Code code);

}  // namespace tarn::platform
