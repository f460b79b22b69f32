// SPDX-License-Identifier: Apache-2.0
#include "os/machine.h"

#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"

#include <cstdlib>
#include <string_view>
#include <sys/resource.h>
#include <vector>

namespace tarn::os {

namespace {

std::string textOf(const std::string& path) {
    std::string text;
    if (readFile(path, text) != FileError::None) text.clear();
    return text;
}

std::string firstLine(const std::string& path) {
    const std::string text = textOf(path);
    return text.substr(0, text.find('\n'));
}

// The next word of `rest`, which blanks end; empty at its end.
std::string_view takeWord(std::string_view& rest) {
    while (!rest.empty() && ascii::isSpace(rest.front())) rest.remove_prefix(1);
    std::size_t size = 0;
    while (size < rest.size() && !ascii::isSpace(rest[size])) ++size;
    const std::string_view word = rest.substr(0, size);
    rest.remove_prefix(size);
    return word;
}

// A line "Name:   1234 kB" of the list of memory, in bytes.
std::int64_t memoryLine(std::string_view text, std::string_view name) {
    while (!text.empty()) {
        std::string_view line = ascii::takeLine(text);
        if (takeWord(line) != name) continue;
        const std::string number(takeWord(line));
        return number.empty() ? -1 : std::strtoll(number.c_str(), nullptr, 10) * 1024;
    }
    return -1;
}

int octalDigit(char c) {
    return c >= '0' && c <= '7' ? c - '0' : -1;
}

// What the system writes for a blank and the like in the names of its lists: `\040`, or `\x20`.
std::string unescaped(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view code = text.substr(i, 4);
        int value = -1;
        if (code.size() == 4 && code.starts_with("\\x")) {
            const int high = ascii::hexDigit(code[2]), low = ascii::hexDigit(code[3]);
            if (high >= 0 && low >= 0) value = high * 16 + low;
        } else if (code.size() == 4 && code[0] == '\\') {
            const int a = octalDigit(code[1]), b = octalDigit(code[2]), c = octalDigit(code[3]);
            if (a >= 0 && b >= 0 && c >= 0) value = (a * 8 + b) * 8 + c;
        }
        out += value < 0 ? text[i] : static_cast<char>(value);
        if (value >= 0) i += 3;
    }
    return out;
}

bool liesBelow(const std::string& path, const std::string& mountPoint) {
    if (mountPoint == "/") return path.starts_with('/');
    return path.starts_with(mountPoint) &&
           (path.size() == mountPoint.size() || path[mountPoint.size()] == '/');
}

// The number of the device that holds the path, "8:1": that of the longest mount point above it, and of two
// equal ones the later, which hides the earlier.
std::string deviceOf(const std::string& path) {
    const std::string mounts = textOf("/proc/self/mountinfo");
    std::string device;
    std::size_t longest = 0;
    for (std::string_view rest = mounts; !rest.empty();) {
        std::string_view line = ascii::takeLine(rest);
        takeWord(line);  // the mount, and the one that it stands on
        takeWord(line);
        const std::string_view number = takeWord(line);
        takeWord(line);  // what of the device is mounted
        const std::string point = unescaped(takeWord(line));
        if (point.empty() || !liesBelow(path, point) || point.size() < longest) continue;
        device = number;
        longest = point.size();
    }
    return device;
}

// The value behind `name` at the beginning of a line.
std::string valueOf(std::string_view text, std::string_view name) {
    while (!text.empty()) {
        const std::string_view line = ascii::withoutLineEnd(ascii::takeLine(text));
        if (line.starts_with(name)) return unescaped(line.substr(name.size()));
    }
    return {};
}

// Whether the hexadecimal words of a list of bits, the highest first, have this bit.
bool hasBit(std::string_view words, unsigned bit) {
    std::vector<std::string> list;
    for (std::string_view word = takeWord(words); !word.empty(); word = takeWord(words))
        list.emplace_back(word);
    constexpr unsigned WordBits = 8 * sizeof(unsigned long);
    const std::size_t place = bit / WordBits;
    if (place >= list.size()) return false;
    const unsigned long word = std::strtoul(list[list.size() - 1 - place].c_str(), nullptr, 16);
    return (word >> bit % WordBits & 1) != 0;
}

}  // namespace

std::string computerName() {
    return firstLine("/proc/sys/kernel/hostname");
}

Memory memory() {
    const std::string text = textOf("/proc/meminfo");
    Memory memory;
    memory.physical = memoryLine(text, "MemTotal:");
    memory.available = memoryLine(text, "MemAvailable:");
    const std::int64_t swap = memoryLine(text, "SwapFree:");
    if (memory.available >= 0 && swap > 0) memory.available += swap;
    return memory;
}

std::int64_t stackLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_STACK, &limit) != 0) return -1;
    return limit.rlim_cur == RLIM_INFINITY ? Unlimited : static_cast<std::int64_t>(limit.rlim_cur);
}

Disk diskOf(const std::string& path) {
    std::string full;
    if (files().resolve(native(path), full) != FileError::None) return {};
    const std::string facts = textOf("/run/udev/data/b" + deviceOf(full));
    return {valueOf(facts, "E:ID_FS_LABEL_ENC="), valueOf(facts, "E:ID_FS_UUID=")};
}

// Each device of the list is a block of lines "H: Handlers=mouse0 event3" and "B: REL=103".
Pointing pointing() {
    constexpr unsigned WheelBit = 8;
    const std::string text = textOf("/proc/bus/input/devices");
    if (text.empty()) return {};
    Pointing found{0, 0};
    bool mouse = false;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view line = ascii::withoutLineEnd(ascii::takeLine(rest));
        if (line.empty()) mouse = false;
        if (line.starts_with("H: Handlers=")) mouse = line.find("mouse") != std::string_view::npos;
        if (mouse) found.mouse = 1;
        constexpr std::string_view Relative = "B: REL=";
        if (mouse && line.starts_with(Relative) && hasBit(line.substr(Relative.size()), WheelBit))
            found.wheel = 1;
    }
    return found;
}

int networkUp() {
    constexpr const char* Folder = "/sys/class/net";
    std::vector<std::string> names;
    if (files().list(Folder, names) != FileError::None) return -1;
    for (const std::string& name : names)
        if (name != "lo" && firstLine(joined(joined(Folder, name), "operstate")) == "up") return 1;
    return 0;
}

}  // namespace tarn::os
