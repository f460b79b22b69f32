// SPDX-License-Identifier: Apache-2.0
//
// Serial ports. An open port belongs to this program alone; closing puts the settings back that it had. Cost:
// a system call or two for each operation, and the wait.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace tarn::os {

enum class SerialParity { None, Even, Odd };
enum class SerialFlow { None, Hardware, Software };

struct SerialSettings {
    int speed = 9600;  // bits a second; one of isSerialSpeed
    int dataBits = 8;  // 5 to 8
    int stopBits = 1;  // 1 or 2
    SerialParity parity = SerialParity::None;
    SerialFlow flow = SerialFlow::None;
};

enum class SerialError { None, NotFound, InUse, BadSettings, Other };

// What went wrong on the line, as bits.
inline constexpr int SerialOverrun = 1, SerialBadParity = 2, SerialBadFrame = 4, SerialBreak = 8;

class SerialPort {
public:
    virtual ~SerialPort() = default;
    // Appends what comes until `most` bytes have come or `milliseconds` are over. False if the port failed.
    virtual bool read(std::string& bytes, std::size_t most, int milliseconds) = 0;
    // Hands all bytes to the port. False if it failed or takes no more for that long.
    virtual bool write(std::string_view bytes, int milliseconds) = 0;
    // Waits at most that long until all is sent, then forgets what came and was not read. False if it could not
    // be sent.
    virtual bool flush(int milliseconds) = 0;
    // The errors since the last call; 0 for a device that does not count them. False if the port failed.
    virtual bool errors(int& bits) = 0;
};

bool isSerialSpeed(int bitsPerSecond);
// Null on failure, with the reason in `error`. Never waits for a carrier.
std::unique_ptr<SerialPort> openSerial(const std::string& device, const SerialSettings& settings,
                                       SerialError& error);

}  // namespace tarn::os
