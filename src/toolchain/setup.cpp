// SPDX-License-Identifier: Apache-2.0
//
// tarnwick-setup: the program in front of a package, which installs it, and without one the program that removes what was
// installed. It needs nothing but the C library, so that it starts wherever the installed program would.
//
//     NAME-install.exe [--quiet] [--home | --system | --folder FOLDER]
//     NAME-install.exe --check
//     uninstall [--quiet]
//
// Any other option is told with those that the program has, and so are options that contradict each other.
//
// What stands in front of it in an installer starts it from memory with `--of INSTALLER`: the file that carries it.
//
// Without a place the user is asked for it, with --quiet it is the home. The exit code is 0 when all was done, 1 when it
// could not be done (and then everything is as it was), 2 for arguments that it does not know, 3 when the user left.
#include "os/instance.h"
#include "os/paths.h"
#include "os/process.h"
#include "toolchain/setup/asking.h"

#include <algorithm>
#include <csignal>
#include <cstdio>

namespace {

using namespace tarn;

constexpr int Done = 0, Failed = 1, Usage = 2, Left = 3;

volatile std::sig_atomic_t stopped = 0;

constexpr const char* AllOptions = "--quiet, --home, --system, --folder FOLDER, --check";

struct Options {
    bool quiet = false, check = false;
    enum class Place { Ask, Home, System, Folder } place = Place::Ask;
    std::string folder, of;
    std::string problem;  // why they cannot be followed
};

// The word of a place that was not named before; else a problem.
bool takePlace(const std::string& word, Options& options) {
    using Place = Options::Place;
    constexpr std::pair<std::string_view, Place> places[] = {
        {"--home", Place::Home}, {"--system", Place::System}, {"--folder", Place::Folder}};
    const auto* row = std::find_if(std::begin(places), std::end(places),
                                   [&](const auto& place) { return place.first == word; });
    if (row == std::end(places)) return false;
    if (options.place != Place::Ask)
        options.problem = "It can be installed in one place only: give one of --home, --system and --folder.";
    options.place = row->second;
    return true;
}

// A folder that is called like an option is more likely a folder that was forgotten.
bool isFolder(const std::string& word) {
    return !word.empty() && !word.starts_with("--");
}

std::string noOption(const std::string& word) {
    return "There is no option '" + word + "'.";
}

Options readOptions(const std::vector<std::string>& arguments) {
    using Place = Options::Place;
    Options options;
    for (std::size_t i = 0; i < arguments.size() && options.problem.empty(); ++i) {
        const std::string& word = arguments[i];
        const std::string next = i + 1 < arguments.size() ? arguments[i + 1] : std::string();
        if (word == "--quiet")
            options.quiet = true;
        else if (word == "--check")
            options.check = true;
        else if (word == "--of" && !next.empty())
            options.of = arguments[++i];
        else if (!takePlace(word, options))
            options.problem = noOption(word);
        else if (word == "--folder" && !isFolder(next))
            options.problem = "The folder behind --folder is missing.";
        else if (word == "--folder")
            options.folder = arguments[++i];
    }
    if (options.check && options.place != Place::Ask && options.problem.empty())
        options.problem = "--check installs nothing, so it takes no place.";
    if (options.quiet && options.place == Place::Ask) options.place = Place::Home;
    return options;
}

int usage(const std::string& problem, const char* options) {
    std::fprintf(stderr, "%s\noptions: %s\n", problem.c_str(), options);
    return Usage;
}

// Installations of one user go one after the other: each takes what an earlier one has left for half done. A lock that
// cannot be made stops nobody.
bool waitForOthers() {
    constexpr int Patience = 60 * 1000;
    return os::acquireInstanceLock("tarnwick-setup", Patience) != os::LockState::Busy;
}
constexpr const char* OtherRuns = "Another installation is under way.";

// A path from the current folder on, unless it is a full one.
std::string fullPath(const std::string& path) {
    return path.starts_with('/') ? path : os::joined(os::files().currentFolder(), path);
}

std::string productOf(const setup::Package& package) {
    if (!package.product.empty()) return package.product;
    return package.title.empty() ? package.name : package.title;
}

// False if the user leaves.
bool askPlace(setup::User& user, const setup::Package& package, Options& options) {
    using Place = Options::Place;
    const std::string home = setup::placesInHome(package).app, system = setup::placesInSystem(package).app;
    const std::string title = "Install " + package.name;
    const std::string text = "Where shall '" + productOf(package) + "' be installed?\n\nFor me: " + home +
                             "\nFor everybody: " + system;
    constexpr Place places[] = {Place::Home, Place::System, Place::Folder};
    const std::size_t choice =
        user.ask(title, text, {"For &me", "For &everybody", "&Other folder", "&Cancel"});
    if (choice >= std::size(places)) return false;
    options.place = places[choice];
    if (options.place == Place::Folder) {
        options.folder = user.askFolder(title, os::folderOf(home));
        // The user names a folder for programs; this one gets its own in it.
        if (!options.folder.empty()) options.folder = os::joined(options.folder, package.name);
    }
    return options.place != Place::Folder || !options.folder.empty();
}

setup::Places placesOf(const Options& options, const setup::Package& package) {
    switch (options.place) {
    case Options::Place::System: return setup::placesInSystem(package);
    case Options::Place::Folder: return setup::placesInFolder(package, fullPath(options.folder));
    default: return setup::placesInHome(package);
    }
}

int install(const setup::Installer& installer, Options options) {
    const std::string title = "Install " + installer.package.name;
    setup::User user(options.quiet);
    if (options.place == Options::Place::Ask) {
        user.useWindowsOf(installer);
        if (!user.canAsk()) {
            user.tell(
                title,
                "There is no screen and no terminal to ask on. Use --home, --system, or --folder FOLDER.");
            return Usage;
        }
        if (!askPlace(user, installer.package, options)) return Left;
    }
    const setup::Places places = placesOf(options, installer.package);
    if (places.app.empty()) {
        user.tell(title, "There is no home folder: the variable HOME is not set.");
        return Failed;
    }
    const auto goesOn = [&user](std::int64_t done, std::int64_t total) {
        user.progress(done, total);
        return stopped == 0;
    };
    const std::string failure = waitForOthers() ? setup::install(installer, places, goesOn) : OtherRuns;
    if (!failure.empty())
        user.tell(title, installer.package.name + " was not installed.\n" + failure);
    else if (!options.quiet)
        user.tell(title, installer.package.name + " was installed in '" + places.app +
                             "'.\nTo remove it, run '" + places.app + "/" +
                             std::string(setup::UninstallName) + "'.");
    return failure.empty() ? Done : Failed;
}

// In a folder that has a list of what was installed, as the program that removes it.
int uninstall(const std::string& app) {
    const std::vector<std::string>& words = os::commandLine();
    const bool quiet = !words.empty();
    const auto other =
        std::find_if(words.begin(), words.end(), [](const std::string& word) { return word != "--quiet"; });
    if (other != words.end()) return usage(noOption(*other), "--quiet");
    const std::string name = setup::installedName(app);
    setup::User user(quiet);
    const std::string title = "Uninstall " + name;
    if (name.empty()) {
        user.tell("Uninstall", "Nothing can be removed from '" + app +
                                   "': the list of what was installed, '" + std::string(setup::ListName) +
                                   "', is missing or damaged.");
        return Failed;
    }
    if (!quiet) {
        user.useWindowsIn(app);
        if (!user.canAsk()) {
            user.tell(title, "There is no screen and no terminal to ask on. Use --quiet.");
            return Usage;
        }
        if (user.ask(title, "Shall " + name + " be removed from '" + app + "'?", {"&Remove", "&Cancel"}) != 0)
            return Left;
    }
    bool stayed = false;
    const std::string failure = waitForOthers() ? setup::uninstall(app, stayed) : OtherRuns;
    if (!failure.empty())
        user.tell(title, name + " was not removed.\n" + failure);
    else if (stayed)
        user.tell(title, "Files in '" + app + "' that were not installed have stayed.");
    return failure.empty() ? Done : Failed;
}

int damaged() {
    std::fputs("This installer is damaged or incomplete. Get it again.\n", stderr);
    return Failed;
}

}  // namespace

int main(int argc, char** argv) {
    os::setCommandLine(argc, argv);
    const Options options = readOptions(os::commandLine());
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, [](int) { stopped = 1; });
    std::string own;
    os::files().resolve(os::executablePath(), own);
    setup::Installer installer;
    setup::Layout layout;
    if (os::nameOf(own) == setup::UninstallName &&
        setup::checkInstaller(own, layout) == setup::Whole::NoPackage)
        return uninstall(os::folderOf(own));
    if (!options.problem.empty()) return usage(options.problem, AllOptions);
    const std::string self = options.of.empty() ? own : options.of;
    const setup::Whole whole = setup::checkInstaller(self, layout);
    if (whole != setup::Whole::Yes || !setup::openInstaller(self, layout, installer).empty())
        return damaged();
    return options.check ? Done : install(installer, options);
}
