// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/systeminfo.h"

#include "kernel/text/dates.h"
#include "kernel/text/numbers.h"
#include "kernel/windows/windowing.h"
#include "os/files.h"
#include "os/machine.h"
#include "os/paths.h"
#include "os/process.h"
#include "os/text/arguments.h"

namespace tarn {

namespace {

constexpr std::int64_t Kilobyte = 1024, Megabyte = 1024 * Kilobyte;

std::string told(std::string text) {
    return text.empty() ? std::string(NotTold) : text;
}

std::string answer(int known) {
    return known < 0 ? std::string(NotTold) : BooleanToText(known != 0);
}

std::string amount(std::int64_t bytes, std::int64_t unit, std::string_view word) {
    return bytes < 0 ? std::string(NotTold) : std::to_string(bytes / unit).append(" ").append(word);
}

std::string sides(int width, int height) {
    if (width <= 0 || height <= 0) return std::string(NotTold);
    return std::to_string(width) + " x " + std::to_string(height);
}

std::string variable(const char* name) {
    const std::string value = os::environment(name);
    return value.empty() ? std::string(NotOnThisSystem) : value;
}

// A value that the registry may hold; the system has none of its own.
std::string registered(const std::string& key, const std::string& name) {
    const std::string value = platform::RegGetSetting(key, name);
    return value.empty() ? std::string(NotOnThisSystem) : value;
}
std::string ofThisVersion(const std::string& name) {
    return registered("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", name);
}

std::string applicationFolder() {
    return told(os::executableFolder());
}
std::string applicationName() {
    return told(std::string(paths::fileName(os::executablePath())));
}
std::string absent() {
    return std::string(NotOnThisSystem);
}
std::string unknown() {
    return std::string(NotTold);
}
// The variable of other systems, if somebody has set it, else the user's shell.
std::string commandProcessor() {
    const std::string named = os::environment("COMSPEC");
    return told(named.empty() ? os::environment("SHELL") : named);
}
std::string computer() {
    return told(os::computerName());
}
std::string currentFolder() {
    return told(os::files().currentFolder());
}
std::string dateAndTime() {
    constexpr std::size_t ToSeconds = 19;
    char text[DateSize];
    DateNow(text, sizeof text);
    return std::string(text).substr(0, ToSeconds);
}
std::string freeSpace() {
    std::int64_t bytes = -1;
    if (os::files().freeSpace(os::files().currentFolder(), bytes) != os::FileError::None) bytes = -1;
    return amount(bytes, Megabyte, "MB");
}
std::string diskLabel() {
    return told(os::diskOf(os::files().currentFolder()).label);
}
std::string diskSerial() {
    return told(os::diskOf(os::files().currentFolder()).serial);
}
std::string iconSize() {
    const int side = DesktopInfo().iconSize;
    return sides(side, side);
}
std::string physicalMemory() {
    return amount(os::memory().physical, Kilobyte, "KB");
}
std::string stackSpace() {
    const std::int64_t bytes = os::stackLimit();
    return bytes == os::Unlimited ? "unlimited" : amount(bytes, Kilobyte, "KB");
}
std::string availableMemory() {
    return amount(os::memory().available, Kilobyte, "KB");
}
std::string monitors() {
    return std::to_string(DesktopInfo().monitors);
}
std::string mouse() {
    return answer(os::pointing().mouse);
}
std::string wheel() {
    return answer(os::pointing().wheel);
}
std::string network() {
    return answer(os::networkUp());
}
std::string shortNames() {
    return registered("SYSTEM\\CurrentControlSet\\Control\\FileSystem", "NtfsDisable8dot3NameCreation");
}
std::string operatingSystem() {
    return told(platform::SystemInfo());
}
std::string arguments() {
    return os::joinedArguments(os::commandLine());
}
std::string organization() {
    return ofThisVersion("RegisteredOrganization");
}
std::string owner() {
    return ofThisVersion("RegisteredOwner");
}
std::string screenSize() {
    const Rect screen = DesktopInfo().screen;
    return sides(screen.w, screen.h);
}
std::string workArea() {
    if (DesktopInfo().monitors == 0) return std::string(NotTold);
    const Rect area = platform::ScreenSize();
    return sides(area.w, area.h);
}
std::string systemFolder() {
    return variable("WINDIR");
}
std::string product() {
    return ofThisVersion("ProductId");
}

// Wallpapers and screen savers are the desktops' own, and each keeps them elsewhere.
struct Line {
    std::string_view name;  // with what stands between it and the value
    std::string (*value)();
};
constexpr Line lines[] = {{"Application directory = ", applicationFolder},
                          {"Application name = ", applicationName},
                          {"Clean boot = ", absent},
                          {"Command processor = ", commandProcessor},
                          {"Computer name = ", computer},
                          {"Current disk and directory = ", currentFolder},
                          {"Date/Time = ", dateAndTime},
                          {"Debug Windows = ", absent},
                          {"Desktop wallpaper = ", unknown},
                          {"Disk free space = ", freeSpace},
                          {"Disk label = ", diskLabel},
                          {"Disk serial number = ", diskSerial},
                          {"Icon size = ", iconSize},
                          {"Memory (physical) = ", physicalMemory},
                          {"Memory (stack space) = ", stackSpace},
                          {"Memory (total available) = ", availableMemory},
                          {"Monitor count = ", monitors},
                          {"Mouse present = ", mouse},
                          {"Mouse wheel present = ", wheel},
                          {"Network = ", network},
                          {"NtfsDisable8dot3NameCreation = ", shortNames},
                          {"Operating system = ", operatingSystem},
                          {"Program arguments = ", arguments},
                          {"Registered Organization = ", organization},
                          {"Registered Owner = ", owner},
                          {"Screen size = ", screenSize},
                          {"Screen saver available = ", unknown},
                          {"Screen saver running = ", unknown},
                          {"Screen saver timeout = ", unknown},
                          {"Screen work area = ", workArea},
                          {"Windows directory = ", systemFolder},
                          {"Windows Product Id = ", product}};

}  // namespace

std::string SystemInformation() {
    std::string text;
    for (const Line& line : lines) {
        std::string value = line.value();
        for (char& c : value)
            if (c == '\n' || c == '\r') c = ' ';
        text.append(line.name).append(value) += '\n';
    }
    return text;
}

}  // namespace tarn
