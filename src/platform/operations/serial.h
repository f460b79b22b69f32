// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: serial ports. A port that is open has a handle above 0. Codes: 951 the handle is of
// no open port, 952 to 955 flushing, reading, writing or asking for the state failed, 956 to 958 it cannot be
// opened (in use, any other reason, there is none), 959 wrong settings, 960 no name. Cost: one or two system
// calls, and the wait.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

// `port`: "COM1" is the first serial port of the machine (/dev/ttyS0); any other name is a device, below /dev
// if it has no path. `settings`: "9600,N,8,1": speed, parity (N, E, O), data bits (5 to 8), stop bits (1, 2);
// behind them may stand ",RTS" or ",XON" for flow control.
Answer<int> CommOpen(const std::string& port, const std::string& settings);
Code CommClose(int handle);
Code CommFlush(int handle);            // waits until all is sent, and forgets what has come and was not read
Answer<int> CommGetError(int handle);  // bits of CommError since the last call
Answer<CommTimeouts> CommGetTimeouts(int handle);
Code CommSetTimeouts(int handle, const CommTimeouts& timeouts);
Answer<int> CommReadByte(int handle);  // 0 to 255; -1 if none came in time
// What comes until `most` bytes are there or the time is over.
Answer<std::string> CommReadString(int handle, int most);
Code CommWriteByte(int handle, int byte);
Code CommWriteString(int handle, std::string_view bytes);

}  // namespace tarn::platform
