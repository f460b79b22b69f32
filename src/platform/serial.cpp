// SPDX-License-Identifier: Apache-2.0
//
// The serial port under the names of the operations (operations/serial.h), over os/serial.h: which ports are open, and
// how the failures of the device become codes.
#include "platform/operations/serial.h"

#include "os/serial.h"
#include "platform/text.h"

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

namespace tarn::platform {

namespace {

constexpr Code notOpen = 951, flushFailed = 952, readFailed = 953, writeFailed = 954, statusFailed = 955;
constexpr Code inUse = 956, openFailed = 957, noSuchPort = 958, badSettings = 959, badName = 960;

struct Port {
    std::unique_ptr<os::SerialPort> port;
    CommTimeouts timeouts;
};

std::map<int, Port>& ports() {
    static std::map<int, Port> all;
    return all;
}

Port* portOf(int handle) {
    const auto place = ports().find(handle);
    return place == ports().end() ? nullptr : &place->second;
}

std::string deviceOf(const std::string& name) {
    if (name.size() > 3 && sameText(std::string_view(name).substr(0, 3), "COM"))
        if (const auto number = wholeNumber(std::string_view(name).substr(3)); number && *number > 0)
            return "/dev/ttyS" + std::to_string(*number - 1);
    return name.starts_with('/') ? name : "/dev/" + name;
}

std::vector<std::string_view> partsOf(std::string_view text) {
    std::vector<std::string_view> parts;
    for (bool more = true; more;) {
        const std::size_t comma = text.find(',');
        parts.push_back(trim(text.substr(0, comma)));
        more = comma != std::string_view::npos;
        text.remove_prefix(more ? comma + 1 : text.size());
    }
    return parts;
}

bool setFlow(std::string_view word, os::SerialSettings& settings) {
    if (sameText(word, "RTS"))
        settings.flow = os::SerialFlow::Hardware;
    else if (sameText(word, "XON"))
        settings.flow = os::SerialFlow::Software;
    else
        return false;
    return true;
}

// "9600,N,8,1" with an optional fifth word. False if it is nothing like that.
bool parseSettings(std::string_view text, os::SerialSettings& settings) {
    const std::vector<std::string_view> parts = partsOf(text);
    if (parts.size() < 4 || parts.size() > 5 || parts[1].size() != 1) return false;
    const auto speed = wholeNumber(parts[0]), bits = wholeNumber(parts[2]), stops = wholeNumber(parts[3]);
    const char parity = upper(parts[1][0]);
    if (!speed || !bits || !stops || *bits < 5 || *bits > 8 || *stops < 1 || *stops > 2) return false;
    if (parity != 'N' && parity != 'E' && parity != 'O') return false;
    settings.speed = *speed;
    settings.dataBits = *bits;
    settings.stopBits = *stops;
    settings.parity = parity == 'N'   ? os::SerialParity::None
                      : parity == 'E' ? os::SerialParity::Even
                                      : os::SerialParity::Odd;
    return os::isSerialSpeed(*speed) && (parts.size() == 4 || setFlow(parts[4], settings));
}

Code codeOf(os::SerialError error) {
    switch (error) {
    case os::SerialError::None: return Ok;
    case os::SerialError::NotFound: return noSuchPort;
    case os::SerialError::InUse: return inUse;
    case os::SerialError::BadSettings: return badSettings;
    default: return openFailed;
    }
}

}  // namespace

Answer<int> CommOpen(const std::string& port, const std::string& text) {
    if (trim(port).empty()) return {0, badName};
    os::SerialSettings settings;
    if (!parseSettings(text, settings)) return {0, badSettings};
    os::SerialError error{};
    std::unique_ptr<os::SerialPort> opened =
        os::openSerial(deviceOf(std::string(trim(port))), settings, error);
    if (opened == nullptr) return {0, codeOf(error)};
    static int last = 0;
    ports()[++last].port = std::move(opened);
    return {last, Ok};
}

Code CommClose(int handle) {
    return ports().erase(handle) > 0 ? Ok : notOpen;
}

Code CommFlush(int handle) {
    const Port* const port = portOf(handle);
    return port == nullptr ? notOpen : port->port->flush(port->timeouts.write) ? Ok : flushFailed;
}

Answer<int> CommGetError(int handle) {
    const Port* const port = portOf(handle);
    if (port == nullptr) return {0, notOpen};
    int bits = 0;
    return port->port->errors(bits) ? Answer<int>{bits, Ok} : Answer<int>{0, statusFailed};
}

Answer<CommTimeouts> CommGetTimeouts(int handle) {
    const Port* const port = portOf(handle);
    return port == nullptr ? Answer<CommTimeouts>{{}, notOpen} : Answer<CommTimeouts>{port->timeouts, Ok};
}

Code CommSetTimeouts(int handle, const CommTimeouts& timeouts) {
    Port* const port = portOf(handle);
    if (port == nullptr) return notOpen;
    port->timeouts = {std::max(timeouts.read, 0), std::max(timeouts.write, 0)};
    return Ok;
}

Answer<int> CommReadByte(int handle) {
    const Answer<std::string> read = CommReadString(handle, 1);
    return {read.value.empty() ? -1 : static_cast<unsigned char>(read.value[0]), read.code};
}

Answer<std::string> CommReadString(int handle, int most) {
    const Port* const port = portOf(handle);
    if (port == nullptr) return {"", notOpen};
    std::string bytes;
    const bool read =
        port->port->read(bytes, static_cast<std::size_t>(std::max(most, 0)), port->timeouts.read);
    return {std::move(bytes), read ? Ok : readFailed};
}

Code CommWriteByte(int handle, int byte) {
    const char c = static_cast<char>(byte);
    return CommWriteString(handle, {&c, 1});
}

Code CommWriteString(int handle, std::string_view bytes) {
    const Port* const port = portOf(handle);
    return port == nullptr ? notOpen : port->port->write(bytes, port->timeouts.write) ? Ok : writeFailed;
}

}  // namespace tarn::platform
