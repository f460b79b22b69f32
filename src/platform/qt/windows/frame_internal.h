// SPDX-License-Identifier: Apache-2.0
//
// What the files of the frame share.
#pragma once

#include "platform/qt/windows/frame.h"

#include <QMargins>

namespace tarn::platform::qt {

class Flag {  // sets a flag for a scope
public:
    explicit Flag(bool& flag) : flag_(flag), before_(flag) { flag = true; }
    ~Flag() { flag_ = before_; }
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;

private:
    bool& flag_;
    bool before_;
};

bool takesFocus(const Control& control);

// How wide frames are, by border style; learnt from the first window of a kind that the window system has framed.
QMargins& knownMargins(int borderStyle);

}  // namespace tarn::platform::qt
