// SPDX-License-Identifier: Apache-2.0
//
// A program under the debugger, in a folder of its own with a settings file, sources and symbols. Its user is a list of
// things to do, one for each stop; behind the last one the program runs on.
#pragma once

#include "unit/kernel/runtime_fixture.h"

#include "kernel/debug/debugsettings.h"
#include "kernel/debug/engine.h"
#include "kernel/run/debughooks.h"
#include "kernel/run/state.h"
#include "os/files.h"
#include "platform/model/view.h"
#include "platform/registry.h"
#include "support/tempfolder.h"

#include <deque>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace tarn {

// A function of a program, between its head and its end.
class Called {
public:
    Called(const char* className, const char* function, std::int32_t line) {
        FunctionEnter(className, function, line);
    }
    ~Called() { FunctionLeave(); }
    Called(const Called&) = delete;
    Called& operator=(const Called&) = delete;
};

inline void stampAt(std::int32_t line, std::int32_t action = ReportErrors, ErrorHandler handler = nullptr) {
    Stamp(line, action, handler);
}

// The record of a symbol file that has the lines with code.
inline std::string bitmapRecord(const std::vector<int>& lines, std::size_t bytes = 1000) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string bitmap(bytes, '\0');
    for (const int line : lines) {
        char& byte = bitmap[static_cast<std::size_t>(line - 1) / 8];
        byte = static_cast<char>(byte | (1 << ((line - 1) % 8)));
    }
    std::string cell;
    for (const char c : bitmap) {
        const auto code = static_cast<unsigned char>(c);
        cell.append("\\x").append(1, Digits[code >> 4]).append(1, Digits[code & 15]);
    }
    return "\"debug\",2,\"\",\"debug\",0,0,0,\"x\",0,0,0,0,0,0,\"\",\"\",0,0,\"" + cell + "\"\n";
}

class DebuggedProgram : public Runtime {
protected:
    using Hand = std::function<void(platform::DebugWindow&)>;

    struct Stop {
        std::string className;
        std::int32_t line = 0, depth = 0;
        std::string caption, status;
    };

    void SetUp() override {
        Runtime::SetUp();
        ::chmod(folder.path().c_str(), 0700);
        ASSERT_EQ(platform::RegSaveSetting("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ide.exe",
                                           "", folder / "ide"),
                  "");
        stops().clear();
        hands().clear();
        boxes().clear();
        answers().clear();
        view_ = platform::useView(platform::makeHeadlessView(reply));
        wait_ = UseDebugWait(wait);
        UseDebugger();
    }
    void TearDown() override {
        DebugEnd();
        UseDebuggerHooks({});
        UseDebugWait(wait_);
        platform::useView(std::move(view_));
        Runtime::TearDown();
    }

    // ---- the folder ----

    void write(const std::string& name, std::string_view text) {
        ASSERT_TRUE(os::saveFile(folder / name, text, os::Durability::Unsynced).ok()) << name;
    }
    std::string read(const std::string& name) {
        std::string text;
        os::readFile(folder / name, text);
        return text;
    }
    std::string setting(std::string_view key) { return DebugSetting(folder / "ide.ini", "debug", key); }
    void settings(const std::string& entries) { write("ide.ini", "[debug]\r\n" + entries); }

    // A class whose source has `lines` lines and which has code at `code`.
    void addClass(const std::string& name, int lines, const std::vector<int>& code) {
        std::string source;
        for (int line = 1; line <= lines; ++line) source += name + " " + std::to_string(line) + "\r\n";
        write(name + ".cls", source);
        write(name + ".sym", bitmapRecord(code));
        RegisterClass(folder / (name + ".cls"), name);
    }
    void start() {
        write("main.cls", "x");
        DebugStart(2, "Tarnwick", "1.3", "2207", folder / "main.cls");
        ASSERT_NE(tarn_debugger_window, nullptr);
    }

    // ---- the user ----

    static std::vector<Stop>& stops() {
        static std::vector<Stop> all;
        return all;
    }
    static std::deque<Hand>& hands() {
        static std::deque<Hand> all;
        return all;
    }
    // What boxes and questions for a text have said, "title|text|buttons or value".
    static std::vector<std::string>& boxes() {
        static std::vector<std::string> all;
        return all;
    }
    static std::deque<std::string>& answers() {
        static std::deque<std::string> all;
        return all;
    }
    static void command(platform::DebugWindow& window, int number) {
        OnDebugEvent(window, {platform::DebugMessage::Command, number, {}});
    }
    static void event(platform::DebugWindow& window, platform::DebugMessage message, int number,
                      const std::string& text = {}) {
        OnDebugEvent(window, {message, number, text});
    }
    // What the list holds, its lines with LF between.
    static std::string listOf(const platform::DebugWindow& window) {
        std::string text;
        for (int line = 1; line <= platform::DebugCount(window); ++line)
            text += (line > 1 ? "\n" : "") + platform::DebugLine(window, line);
        return text;
    }
    // "A3/1 B12/2": class, line and depth of all stops.
    static std::string stopsText() {
        std::string text;
        for (const Stop& stop : stops())
            text += (text.empty() ? "" : " ") + stop.className + std::to_string(stop.line) + "/" +
                    std::to_string(stop.depth);
        return text;
    }
    static platform::DebugWindow& window() {
        return *static_cast<platform::DebugWindow*>(tarn_debugger_window);
    }

    TempFolder folder;

private:
    static void wait(platform::DebugWindow& window) {
        stops().push_back({CurrentClassName(), tarn_current_line, FrameCount(),
                           platform::GetDebugCaption(window), platform::GetDebugStatus(window)});
        if (hands().empty()) return;
        const Hand hand = hands().front();
        hands().pop_front();
        hand(window);
    }
    static std::string reply(const platform::Question& question) {
        std::string buttons;
        for (const std::string& button : question.buttons) buttons += (buttons.empty() ? "" : " ") + button;
        boxes().push_back(question.title + "|" + question.text + "|" +
                          (question.buttons.empty() ? question.value : buttons));
        if (answers().empty()) return {};
        std::string text = answers().front();
        answers().pop_front();
        return text;
    }

    Variable config_{"XDG_CONFIG_HOME", folder.path()};
    Variable runtime_{"XDG_RUNTIME_DIR", folder.path()};
    std::unique_ptr<platform::View> view_;
    DebugWait wait_ = nullptr;
};

// Stops at the first statement. Class Sums has 40 lines, and code at 3, 5, 9 and 12.
class StoppedProgram : public DebuggedProgram {
protected:
    void SetUp() override {
        DebuggedProgram::SetUp();
        settings("SingleStep=1\r\n");
        start();
        addClass("Sums", 40, {3, 5, 9, 12});
    }
    // Runs to a stop at line 5 of a function, and does this there.
    void stopAndDo(Hand hand) {
        hands().push_back(std::move(hand));
        const Called f("Sums", "DO_ADD", 2);
        stampAt(5);
        ASSERT_FALSE(stops().empty());
    }
};

}  // namespace tarn
