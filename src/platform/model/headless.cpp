// SPDX-License-Identifier: Apache-2.0
//
// The view without a screen: fixed measures, timers, and loops that let whoever plays the user go on.
#include "platform/model/debugger/debugwindow.h"
#include "platform/model/debugger/terminal.h"
#include "platform/model/drawscale.h"
#include "platform/model/guides.h"
#include "platform/model/state.h"

#include "os/clock.h"
#include "os/files.h"
#include "os/process.h"
#include "os/text/utf8.h"
#include "platform/text.h"

#include <algorithm>
#include <map>
#include <poll.h>
#include <utility>

namespace tarn::platform {

namespace {

constexpr int letterWidth = 6, letterHeight = 13;
constexpr std::int64_t nanosecondsPerMillisecond = 1'000'000;
constexpr char filePrinter[] = "Print to file";

bool browser = true;
int beeps = 0;
HeadlessDebugger debugger;
std::string lastUrl;

// A document as plain text: the lines of each page, with a form feed between two pages.
class TextDocument : public Canvas {
public:
    explicit TextDocument(std::string file) : file_(std::move(file)) {}
    void line(int, int, int, int, Ink) override {}
    void point(int, int, Ink) override {}
    void shape(ShapeKind, const Rect&, Ink) override {}
    void text(int, int, std::string_view line, const Font&, Ink) override { text_.append(line).append("\n"); }
    void picture(const Rect&, const std::string&) override {}
    void window(int, int, const Window&) override {}
    void control(const Rect&, std::string_view, const Font&) override {}
    bool newPage() override { return text_ += '\f', true; }
    bool finish() override {
        return !discarded_ && os::saveFile(file_, text_, os::Durability::Unsynced).ok();
    }
    void discard() override { discarded_ = true; }

private:
    std::string file_, text_;
    bool discarded_ = false;
};

std::vector<std::string> sounds;  // played, of all headless views

struct Timer {
    int handle = 0, milliseconds = 0;
    std::int64_t due = 0;
    bool fired = false;  // since the loop began that runs now
};

class Headless : public View {
public:
    explicit Headless(std::function<std::string(const Question&)> answer) : answer_(std::move(answer)) {}

    void load(Window&) override {}
    void unload(Window& window) override {
        dropTimer(window.handle);
        for (const auto& control : window.controls) dropTimer(control->handle);
    }
    void show(Window&) override {}
    void hide(Window&) override {}
    void changed(Control&, Property) override {}

    void loop(const std::function<bool()>& until) override {
        for (Timer& timer : timers_) timer.fired = false;
        while (!until()) {
            step();
            if (until()) break;
            if (idle_)
                idle_();
            else if (!sleepToTimer())
                break;  // nobody can end this wait
        }
    }
    void pump() override { step(); }
    // What a key or a click may end is there to be looked at, and nobody looks.
    void wait(int milliseconds, bool inputEnds) override {
        if (!inputEnds) os::clock().sleep(milliseconds * nanosecondsPerMillisecond);
        step();
        if (idle_) idle_();
    }
    void setIdle(std::function<void()> idle) override { idle_ = std::move(idle); }

    std::string ask(const Question& question) override;
    const Question* asking() override { return asking_.empty() ? nullptr : asking_.back().question; }
    bool answer(const std::string& text) override;

    int textWidth(const Control&, std::string_view text) override;
    int textHeight(const Control&, std::string_view text) override {
        return letterHeight * static_cast<int>(1 + std::count(text.begin(), text.end(), '\n'));
    }
    Rect screen() override { return {0, 0, 1920, 1080}; }
    int dpi() override { return 96; }

    std::unique_ptr<Canvas> canvas(Control&) override { return nullptr; }
    void wipe(Control&) override {}
    Rect track(Window& window, Track track) override {
        const auto drag = std::exchange(state().drag, std::nullopt);
        if (!drag) return track.start;
        const int scale = drawScale(window);
        track.pressed = onDrawing(drag->first, scale);
        return tracked(track, onDrawing(drag->second, scale), dragGuides());
    }
    Picture measured(std::string_view) override { return {}; }
    std::string encoded(const std::string&, const std::string&) override { return {}; }
    std::vector<std::string> printers() override { return {filePrinter}; }
    PrinterStatus printerStatus(const std::string& printer) override {
        return printer == filePrinter ? PRINTER_READY : PRINTER_STOPPED;
    }
    Paper paper(const std::string&) override { return {698, 1027, 794, 1123, 48, 48, 96, 96}; }  // A4
    std::unique_ptr<Canvas> startDocument(const std::string& printer, const std::string& document,
                                          int) override {
        if (printer != filePrinter || document.empty()) return nullptr;
        return std::make_unique<TextDocument>(os::native(document) + ".txt");
    }
    std::string clipboard() override { return clipboard_; }
    void setClipboard(std::string_view text) override { clipboard_ = text; }

    void sound() override { ++beeps; }
    void playSound(const std::string& file) override { sounds.push_back(file); }
    void setIcon(const std::string&) override {}
    void setBusy(bool) override {}
    void setTimer(Control& owner, int milliseconds) override {
        dropTimer(owner.handle);
        if (milliseconds > 0) timers_.push_back({owner.handle, milliseconds, dueAfter(milliseconds), false});
    }
    bool openUrl(const std::string& url) override {
        lastUrl = url;
        return browser;
    }
    void toolProgress(const std::string& text) override {
        progress_ = !text.empty();
        stopped_ = stopped_ && progress_;
    }
    bool toolStopPressed() override { return stopped_; }
    bool pressStop() { return stopped_ = progress_; }
    void watch(int descriptor, std::function<void()> ready) override {
        watched_.erase(descriptor);
        if (descriptor >= 0 && ready) watched_[descriptor] = std::move(ready);
    }
    void raise(Window&) override {}
    void debugChanged(DebugWindow&, DebugPart part) override {
        if (part == DebugPart::Made || part == DebugPart::Gone) hearInterrupt(part == DebugPart::Made);
    }
    void debugLoop(DebugWindow& window, const std::function<bool()>& until) override {
        if (const HeadlessDebugger play = debugger)
            play(window);
        else if (idle_)
            loop(until);
        else
            debugAtTerminal(window, until);
    }

private:
    struct Asked {
        const Question* question = nullptr;
        bool answered = false;
        std::string answer;
    };

    static std::int64_t dueAfter(int milliseconds) {
        return os::clock().steady() + milliseconds * nanosecondsPerMillisecond;
    }
    void dropTimer(int handle) {
        std::erase_if(timers_, [=](const Timer& timer) { return timer.handle == handle; });
    }
    void step();
    void fireTimers();
    bool sleepToTimer();

    std::function<std::string(const Question&)> answer_;
    std::function<void()> idle_;
    std::map<int, std::function<void()>> watched_;  // by descriptor
    std::string clipboard_;
    bool progress_ = false, stopped_ = false;  // of a tool
    std::vector<Timer> timers_;
    std::vector<Asked> asking_;
};

void Headless::fireTimers() {
    std::vector<int> due;
    for (Timer& timer : timers_) {
        if (timer.due > os::clock().steady()) continue;
        timer.due = dueAfter(timer.milliseconds);
        timer.fired = true;
        due.push_back(timer.handle);
    }
    for (const int handle : due) {
        const auto place = state().byHandle.find(handle);
        if (place != state().byHandle.end()) timerFired(*place->second);
    }
}

void Headless::step() {
    if (programRests()) return;
    std::vector<pollfd> descriptors;
    for (const auto& [descriptor, ready] : watched_) descriptors.push_back({descriptor, POLLIN, 0});
    const int patience = idle_ ? 1 : 0;  // milliseconds; an idle function may be waiting for another process
    ::poll(descriptors.data(), descriptors.size(), patience);
    for (const pollfd& one : descriptors) {
        const auto place = watched_.find(one.fd);
        if (one.revents == 0 || place == watched_.end()) continue;
        const auto ready = place->second;  // the watch may end inside
        ready();
    }
    fireTimers();
}

// Without a user only a timer can end a wait. One that has fired once in vain would do so for ever.
bool Headless::sleepToTimer() {
    const Timer* next = nullptr;
    for (const Timer& timer : timers_)
        if (!timer.fired && (next == nullptr || timer.due < next->due)) next = &timer;
    if (next == nullptr) return false;
    os::clock().sleep(std::max<std::int64_t>(next->due - os::clock().steady(), 0));
    return true;
}

std::string Headless::ask(const Question& question) {
    if (answer_) return answer_(question);
    if (isAtTerminal()) return askAtTerminal(question);
    if (!idle_) {
        // Nobody can answer: what a program says must not be lost all the same.
        os::debugOutput(question.title + (question.title.empty() ? "" : ": ") + question.text + "\n");
        return "";
    }
    asking_.push_back({&question, false, ""});
    const std::size_t level = asking_.size();
    while (asking_.size() == level && !asking_.back().answered && idle_) {
        step();
        if (idle_) idle_();
    }
    const std::string text = asking_.back().answer;
    asking_.pop_back();
    return text;
}

std::string withoutMark(std::string_view caption) {
    std::string text(caption);
    std::erase(text, '&');
    return text;
}

bool Headless::answer(const std::string& text) {
    if (asking_.empty()) return false;
    Asked& asked = asking_.back();
    const Question& question = *asked.question;
    std::string given = text;
    const auto choose = [&](const std::vector<std::string>& from) {
        const auto same = [&](const std::string& one) { return one == text || withoutMark(one) == text; };
        const auto place = std::find_if(from.begin(), from.end(), same);
        if (place == from.end()) return false;
        given = *place;
        return true;
    };
    if (!text.empty() && question.kind == Question::Kind::Message && !choose(question.buttons)) return false;
    if (!text.empty() && question.kind == Question::Kind::List && !choose(question.rows)) return false;
    asked.answer = given;
    return asked.answered = true;
}

int Headless::textWidth(const Control&, std::string_view text) {
    int widest = 0, letters = 0;
    for (const char c : text) {
        if (c == '\n')
            letters = 0;
        else if (!utf8::isFollowing(c))
            ++letters;  // a letter of several bytes is one
        widest = std::max(widest, letters);
    }
    return widest * letterWidth;
}

}  // namespace

std::unique_ptr<View> makeHeadlessView(std::function<std::string(const Question&)> answer) {
    return std::make_unique<Headless>(std::move(answer));
}

std::vector<std::string> takeHeadlessSounds() {
    return std::exchange(sounds, {});
}

HeadlessDebugger setHeadlessDebugger(HeadlessDebugger play) {
    return std::exchange(debugger, std::move(play));
}

int headlessBeeps() {
    return beeps;
}

bool setHeadlessBrowser(bool there) {
    return std::exchange(browser, there);
}

const std::string& lastHeadlessUrl() {
    return lastUrl;
}

bool pressToolStop() {
    auto* const headless = dynamic_cast<Headless*>(&view());
    return headless != nullptr && headless->pressStop();
}

}  // namespace tarn::platform
