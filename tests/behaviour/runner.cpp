// SPDX-License-Identifier: GPL-3.0-or-later
//
// Runs one behaviour case:  user_runner MODE CASE     (MODE: model, offscreen or screen)
// or a random user:         user_runner monkey SEED STEPS
// or one of dialogs alone:  user_runner designer-monkey SEED STEPS
//
// The case's folder is copied to a folder of its own. The program's folder (settings, resources, tools) is
// another one beside it, made of links, so that the case has its own settings; what lies in the case's
// `profile` folder replaces what is linked, and what lies in its `state` folder was left by an earlier run. A
// program that is started again is this process with itself in its place, told by the environment where the run
// stands. Exit status 0: as expected; 77: skipped; 1: not, with what was on screen.
#include "behaviour/designer_monkey.h"
#include "behaviour/hands.h"
#include "behaviour/monkey.h"
#include "ide/shell/ide.h"
#include "kernel/run/runtime.h"
#include "os/files.h"
#include "os/process.h"
#include "os/text/initext.h"
#include "platform/model/view.h"
#include "support/places.h"
#include "support/user_script.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace fs = std::filesystem;

namespace {

std::string root;  // of this run; removed at the end
tarn::UserDriver* driver = nullptr;
char** commandWords = nullptr;  // of this process

constexpr const char *rootName = "TARNWICK_CASE_ROOT", *lineName = "TARNWICK_CASE_LINE";

std::string readAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// The run ends in the middle of the program, without the end at which leaks are looked for.
bool leaks() {
#ifdef __SANITIZE_ADDRESS__
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

[[noreturn]] void end(int code) {
    if (code == 0 && leaks()) code = 1;
    std::fflush(nullptr);
    std::error_code ignored;
    if (!root.empty()) fs::remove_all(root, ignored);
    _exit(code);
}

// This process becomes the program that starts again.
[[noreturn]] void startAgain() {
    std::fflush(nullptr);
    setenv(rootName, root.c_str(), 1);
    setenv(lineName, std::to_string(driver->lineNumber()).c_str(), 1);
    execv("/proc/self/exe", commandWords);
    std::printf("The program could not be started again.\n");
    end(1);
}

// The program has halted: what is left of the script must need no program, or start it again.
void programEnded(int) {
    driver->programEnded();
    if (!driver->failed() && driver->restarts()) startAgain();
    if (driver->failed()) std::printf("%s", driver->failure().c_str());
    end(driver->failed() ? 1 : 0);
}

void prepareProfile(const std::string& profile, const std::string& files) {
    fs::create_directories(profile);
    for (const char* name : {"ide.rcx", "system.cls", "logo.bmp", "mainicon.ico", "mainicon.svg", "logo.svg",
                             "open2.bmp", "open3.bmp", "quarn.exe", "ordo.exe", "iscc.exe", "libtarnwick.so",
                             "libtarnwick-qt.so", "libtarnwick-edit.so", "libtarnwick-help.so", "help"}) {
        if (fs::exists(std::string(BINARY_DIR "/") + name))
            fs::create_symlink(std::string(BINARY_DIR "/") + name, profile + name);
    }
    // Examples are opened and saved where they lie: a case has its own.
    fs::copy(SOURCE_DIR "/examples", profile + "examples", fs::copy_options::recursive);
    // A name of this program, so that the folder counts as its own.
    fs::create_symlink(fs::read_symlink("/proc/self/exe"), profile + "ide");
    std::string settings = readAll(SOURCE_DIR "/src/ide/ide.ini");
    tarn::ini::put(settings, "Welcome", "AtStart", "0");  // it would stand in front of what a case is about
    for (const char* name : {"ide.ini", "ide.bak"}) std::ofstream(profile + name, std::ios::binary) << settings;
    if (!fs::exists(files + "profile")) return;
    for (const auto& entry : fs::directory_iterator(files + "profile")) {
        const std::string to = profile + entry.path().filename().string();
        fs::remove(to);
        fs::copy(entry.path(), to);
    }
}

void prepareEnvironment() {
    setenv("HOME", root.c_str(), 1);
    for (const auto& [name, folder] : {std::pair{"XDG_CONFIG_HOME", "config"},
                                       {"XDG_STATE_HOME", "state"},
                                       {"XDG_CACHE_HOME", "cache"},
                                       {"XDG_RUNTIME_DIR", "run"}}) {
        fs::create_directories(root + folder);
        fs::permissions(root + folder, fs::perms(0700));
        setenv(name, (root + folder).c_str(), 1);
    }
}

void prepareSettings(const std::string& file, const tarn::Script& script) {
    if (script.settings.empty()) return;
    std::string text = readAll(file);
    for (const auto& [section, key, value] : script.settings) tarn::ini::put(text, section, key, value);
    std::ofstream(file, std::ios::binary) << text;
}

// What earlier runs have left: the case's `state` folder, with {dir} in its names of files put in.
void prepareState(const std::string& from, const std::string& dir) {
    if (!fs::exists(from + "state")) return;
    for (const auto& entry : fs::recursive_directory_iterator(from + "state")) {
        const fs::path to = root + fs::relative(entry.path(), from).string();
        if (entry.is_directory()) {
            fs::create_directories(to);
            continue;
        }
        std::string text = readAll(entry.path().string());
        const std::size_t mark = to.extension() == ".name" ? text.find("{dir}") : std::string::npos;
        if (mark != std::string::npos) text = text.substr(0, mark) + dir + text.substr(mark + 5);
        std::ofstream(to, std::ios::binary) << text;
    }
}

// Leaves of the script what stands behind the line that has started the program again.
void continueAt(tarn::Script& script, int line) {
    while (!script.lines.empty() && script.lines.front().number < line)
        script.lines.erase(script.lines.begin());
    if (script.lines.empty()) return;
    const std::vector<std::string> words = script.lines.front().words;
    script.arguments.assign(words.begin() + 1, words.end());
    script.lines.erase(script.lines.begin());
}

void setProgram(const std::string& profile, const std::vector<std::string>& arguments) {
    static std::vector<std::string> words;
    words = {profile + "ide"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    static std::vector<char*> pointers;
    pointers.clear();
    for (std::string& word : words) pointers.push_back(word.data());
    tarn::os::setCommandLine(static_cast<int>(pointers.size()), pointers.data());
}

// A second copy: the model alone, its boxes written to a file and closed.
int runSecond(int argc, char** argv) {
    setProgram(getenv("TARNWICK_SECOND"), {argv + 2, argv + argc});
    tarn::platform::useView(tarn::platform::makeHeadlessView([](const tarn::platform::Question& question) {
        std::ofstream log(getenv("TARNWICK_SECOND_LOG"), std::ios::app);
        log << question.title << "\n" << question.text << "\n";
        return std::string();
    }));
    tarn::RunProtected(tarn::RUNIDE);
    return 0;
}

void monkeyEnded(int) {
    std::printf("The program ended before the last step; the steps are in %s\n", root.c_str());
    std::fflush(nullptr);
    _exit(1);
}

[[noreturn]] void runMonkey(unsigned seed, int steps, bool ofDialogs) {
    const std::string dir = root + "case/", profile = root + "profile/";
    prepareProfile(profile, dir);
    tarn::prepareMonkey(SOURCE_DIR "/examples/wordcount", dir, profile);
    if (ofDialogs) tarn::prepareDesignerMonkey(SOURCE_DIR, dir);
    prepareEnvironment();
    // No browser, no player and no compiler of the machine.
    setenv("PATH", root.c_str(), 1);
    fs::current_path(dir);
    setProgram(profile, {});
    tarn::os::useEndHook(monkeyEnded);
    const std::unique_ptr<tarn::Hands> hands = tarn::makeHands("offscreen");
    const std::string log = root + "steps.log";
    const std::unique_ptr<tarn::Monkey> monkey =
        ofDialogs ? std::make_unique<tarn::DesignerMonkey>(seed, steps, dir, log)
                  : std::make_unique<tarn::Monkey>(seed, steps, dir, log);
    std::printf("seed %u, %d steps, logged in %s\n", seed, steps, log.c_str());
    tarn::platform::view().setIdle([&monkey] {
        monkey->idle();
        if (!monkey->finished()) return;
        std::printf("%s\n", monkey->slowness().c_str());
        if (!monkey->failed()) end(0);
        std::printf("%s\n", monkey->failure().c_str());
        std::fflush(nullptr);
        _exit(1);
    });
    tarn::RunProtected(tarn::RUNIDE);
    _exit(1);
}

int skip(const char* why) {
    std::printf("skipped: %s\n", why);
    return 77;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc >= 2 && std::string(argv[1]) == "second") return runSecond(argc, argv);
    const bool ofDialogs = argc == 4 && std::string(argv[1]) == "designer-monkey";
    const bool isMonkey = ofDialogs || (argc == 4 && std::string(argv[1]) == "monkey");
    if (argc != 3 && !isMonkey)
        return std::fprintf(stderr, "usage: user_runner model|offscreen|screen CASE\n"
                                    "or monkey|designer-monkey SEED STEPS\n"),
               2;
    const char* const before = getenv(rootName);  // of the run that this one continues
    std::string pattern = (fs::temp_directory_path() / "tarnwick-case-XXXXXX").string();
    root = before != nullptr ? before : std::string(mkdtemp(pattern.data())) + "/";
    if (isMonkey) runMonkey(static_cast<unsigned>(std::atoi(argv[2])), std::atoi(argv[3]), ofDialogs);
    commandWords = argv;
    std::string folder = fs::absolute(argv[2]).string();
    argv[2] = folder.data();
    const std::string mode = argv[1], from = folder + "/";
    const std::string dir = root + "case/", profile = root + "profile/";
    if (before == nullptr) {
        fs::copy(from, dir, fs::copy_options::recursive);
        prepareProfile(profile, from);
    }
    tarn::Script script = tarn::parseScript(readAll(from + "script"), dir, profile, mode != "model");
    if (!script.error.empty()) return std::printf("%s: %s\n", from.c_str(), script.error.c_str()), end(1), 1;
    if (mode == "model" && script.needsRealInput) end(skip("it needs real input"));
    if (mode == "screen" && getenv("DISPLAY") == nullptr) end(skip("there is no display"));
    if (mode != "screen" && script.needsScreen) end(skip("it needs a screen"));
    prepareEnvironment();
    if (before != nullptr) {
        continueAt(script, std::atoi(getenv(lineName)));
        unsetenv(rootName);
    } else {
        prepareSettings(profile + "ide.ini", script);
        prepareState(from, dir);
    }
    fs::current_path(dir);
    setProgram(profile, script.arguments);
    tarn::os::useEndHook(programEnded);
    const std::unique_ptr<tarn::Hands> hands = tarn::makeHands(mode);
    if (script.hidesScreen)
        for (const char* screen : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) unsetenv(screen);
    tarn::UserDriver user(script, dir, profile, *hands);
    driver = &user;
    tarn::platform::view().setIdle([&user] {
        user.idle();
        if (!user.failed() && !user.finished()) return;
        std::printf("%s", user.failure().c_str());
        end(user.failed() ? 1 : 0);
    });
    tarn::RunProtected(tarn::RUNIDE);
    end(1);
}
