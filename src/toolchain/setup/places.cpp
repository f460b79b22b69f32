// SPDX-License-Identifier: Apache-2.0
#include "toolchain/setup/places.h"

#include "os/paths.h"
#include "os/process.h"

namespace tarn::setup {
namespace {

std::string homeFolder() {
    std::string home = os::environment("HOME");
    os::stripTrailingSlashes(home);
    return home.starts_with('/') ? home : std::string();
}

// $XDG_DATA_HOME, else its usual place.
std::string dataFolder(const std::string& home) {
    std::string folder = os::environment("XDG_DATA_HOME");
    os::stripTrailingSlashes(folder);
    return folder.starts_with('/') ? folder : home + "/.local/share";
}

// XDG_DESKTOP_DIR="$HOME/Desktop" in the user's list of folders, else that one; empty if it is not there.
std::string desktopFolder(const std::string& home) {
    constexpr std::string_view Key = "XDG_DESKTOP_DIR=\"", Home = "$HOME";
    std::string config = os::environment("XDG_CONFIG_HOME"), list, folder = home + "/Desktop";
    if (!config.starts_with('/')) config = home + "/.config";
    os::readFile(config + "/user-dirs.dirs", list);
    list.insert(0, "\n");
    if (const std::size_t at = list.find("\n" + std::string(Key)); at != std::string::npos) {
        const std::size_t begin = at + 1 + Key.size();
        folder = list.substr(begin, list.find('"', begin) - begin);
        if (folder.starts_with(Home)) folder.replace(0, Home.size(), home);
    }
    os::stripTrailingSlashes(folder);
    const os::FileInfo info = os::infoOf(folder);
    return folder.starts_with('/') && folder != home && info.exists && info.folder ? folder : std::string();
}

}  // namespace

Places placesInHome(const Package& package) {
    const std::string home = homeFolder();
    if (home.empty()) return {};
    return {home + "/.local/opt/" + package.name, dataFolder(home) + "/applications", desktopFolder(home)};
}

Places placesInSystem(const Package& package) {
    return {"/opt/" + package.name, "/usr/local/share/applications", ""};
}

Places placesInFolder(const Package& package, const std::string& folder) {
    Places places = placesInHome(package);
    places.app = folder;
    os::stripTrailingSlashes(places.app);
    return places;
}

// ---- desktop entries ----

namespace {

// A text as a value of an entry.
std::string value(std::string_view text) {
    std::string result;
    for (const char c : text) result += c == '\\' ? "\\\\" : std::string(1, c);
    return result;
}

// A path as the one word of a command: quoted for the command, "%" doubled, then written as a value.
std::string command(std::string_view path) {
    std::string quoted = "\"";
    for (const char c : path) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') quoted += '\\';
        if (c == '%') quoted += '%';
        quoted += c;
    }
    return value(quoted + "\"");
}

bool hasWindows(const Package& package) {
    const std::string companion = os::withoutExtension(package.program) + ".rcx";
    return package.holds(companion);
}

std::string start(const std::string& name, const std::string& program, const Places& places, bool terminal) {
    return "[Desktop Entry]\nType=Application\nVersion=1.0\nName=" + value(name) +
           "\nExec=" + command(places.app + "/" + program) + "\nPath=" + value(places.app) +
           "\nTerminal=" + (terminal ? "true\n" : "false\n");
}

}  // namespace

std::string entryFile(const Package& package, const Shortcut& shortcut, const Places& places) {
    const std::string& folder = shortcut.place == Shortcut::Place::Menu ? places.menu : places.desktop;
    const bool uninstalls = shortcut.kind == Shortcut::Kind::Uninstall;
    return folder.empty() ? std::string()
                          : folder + "/" + package.name + (uninstalls ? "-uninstall.desktop" : ".desktop");
}

std::string entryText(const Package& package, const Shortcut& shortcut, const Places& places) {
    if (shortcut.kind == Shortcut::Kind::Uninstall)
        return start("Uninstall " + package.name, std::string(UninstallName), places,
                     !package.holds(AskName)) +
               "Comment=Removes " + value(package.name) + " from this computer\n";
    std::string text = start(package.name, package.program, places, !hasWindows(package));
    if (!package.title.empty()) text += "Comment=" + value(package.title) + "\n";
    if (shortcut.kind == Shortcut::Kind::Icon)
        text += "Icon=" + value(places.app) + "/" + std::string(IconName) + "\n";
    return text;
}

}  // namespace tarn::setup
