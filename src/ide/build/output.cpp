// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/output.h"

#include "ide/build/outputtext.h"
#include "ide/build/toolrun.h"
#include "ide/debug/debugwatch.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windowplace.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/windows/quietly.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/system/piped.h"
#include "library/system/system.h"
#include "os/clock.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

MODULE("runexe", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

constexpr int TickMilliseconds = 50, GraceMilliseconds = 500;
constexpr int BusyMilliseconds = 10;                      // between two looks while much comes
constexpr std::size_t MuchBytes = std::size_t{1} << 18U;  // in one look
constexpr std::int64_t Millisecond = 1'000'000;           // nanoseconds
constexpr std::int64_t ReadTime = 20 * Millisecond;       // of a tick, so that windows stay alive
constexpr std::int64_t ShowTime = 150 * Millisecond;      // between two looks of the user
constexpr std::int64_t WaitTime = 3000 * Millisecond;     // of somebody who has started a program
constexpr std::size_t ReadBytes = std::size_t{1} << 16U, MostInput = 1'000'000;

// ---- what runs ----

struct Run {
    std::unique_ptr<os::Child> child;
    std::string name, command;
    std::string input;       // what its pipe has not taken yet
    bool inputEnds = false;  // behind that
    std::int64_t started = 0;
    bool wrote = false;
    bool stopped = false;  // by the user
    bool muted = false;    // the user has closed the window over it
};

// The processes that this one has to read from, and what the window shows of them. They cannot stand in a file or a control;
// all of it begins anew when the window is loaded.
struct Console {
    std::vector<std::unique_ptr<Run>> runs;
    Run* current = nullptr;  // which the window shows; null when it has ended
    OutputText text;
    std::size_t shownBytes = 0;  // of the text in the window
    std::int64_t shownCuts = 0, shownAt = 0;
    std::size_t came = 0;  // in this look
    int pace = 0;          // milliseconds to the next one
    bool changed = false, ticking = false;
};

Console& console() {
    static Console one;
    return one;
}

Object part(std::string_view name) {
    return FINDCONTROL(OutputDlg, name);
}

void enable(bool running) {
    for (const std::string_view name : {"edit2", "pushbutton1", "pushbutton2", "pushbutton3"})
        SetEnabled(part(name), running);
}

// ---- the text ----

void showText() {
    Console& c = console();
    const Object edit = part("edit1");
    const std::string now = c.text.text();
    const Selection marked = GetSelection(edit);
    const bool anew = c.text.cuts() != c.shownCuts || now.size() < c.shownBytes;
    if (anew) SetText(edit, now);
    SetSelection(edit, static_cast<int>(anew ? now.size() : c.shownBytes) + 1, 0);
    if (!anew) SetSelText(edit, std::string_view(now).substr(c.shownBytes));
    if (!anew && marked.length > 0) SetSelection(edit, marked.start, marked.length);  // the user copies it
    c.shownBytes = now.size();
    c.shownCuts = c.text.cuts();
    c.shownAt = os::clock().steady();
    c.changed = false;
}

void showState(const std::string& state) {
    SetCaption(part("label2"), state);
}

// The window turns to this program, unless one that it shows still runs and has written.
void turnTo(Run& run) {
    Console& c = console();
    if (c.current == &run) return;
    if (c.current != nullptr && c.current->wrote) {
        c.text.addLine("[" + run.name + ", process " + STR(run.child->id()) + "]");
    } else {
        c.text.clear();
        SetText(part("edit2"), "");
    }
    c.current = &run;
    c.changed = true;
    SetCaption(part("label1"), PLAINCAPTION(run.command));
    showState("Running, process " + STR(run.child->id()));
    enable(true);
}

// Who has started a program just now, and does nothing else, wants to see what it says and to answer it.
bool isAwaited(const Run& run) {
    return !ActiveWindow().empty() && os::clock().steady() - run.started < WaitTime;
}

// The user shall see what it has to say, and lose neither the focus of what he does meanwhile nor the sight of the
// debugger's window.
void comeUp(Run& run) {
    turnTo(run);
    if (std::exchange(run.wrote, true)) return;
    const bool debugged = ISDEBUGGED(run.child->id());
    if (!debugged && isAwaited(run))
        Show(OutputDlg, false);
    else
        ShowQuietly(OutputDlg, debugged);
    UPDATEMAINWINDOW();  // the menu leads there now
}

// ---- reading and writing ----

void write(Run& run) {
    if (!run.input.empty()) {
        const int taken = run.child->writeInput(run.input);
        run.input.erase(0, taken < 0 ? run.input.size() : static_cast<std::size_t>(taken));
    }
    if (run.input.empty() && run.inputEnds) run.child->endInput();
}

// Reads until there is nothing or the time is over; true if there may be more at once.
bool read(Run& run, std::int64_t until) {
    std::string bytes;
    while (os::clock().steady() < until) {
        bytes.clear();
        if (run.child->readOutput(bytes, ReadBytes) <= 0) return false;
        console().came += bytes.size();
        if (run.muted) continue;
        comeUp(run);
        console().text.add(bytes);
        console().changed = true;
    }
    return true;
}

std::string endOf(const Run& run, const os::ExitState& state) {
    if (run.stopped) return "Stopped";
    if (state.signal != 0) return "Ended by signal " + STR(state.signal);
    return "Ended with exit code " + STR(state.code);
}

void finish(Run& run, const os::ExitState& state) {
    Console& c = console();
    const bool failed = state.signal != 0 || state.code != 0;
    const bool free = c.current == nullptr || !c.current->wrote || c.current == &run;
    if (failed && !run.stopped && !run.muted && free) comeUp(run);
    if (c.current == &run) {
        c.text.end();
        showState(endOf(run, state));
        enable(false);
        c.current = nullptr;
        c.changed = true;
    } else if (failed && !run.stopped && !run.muted) {
        c.text.addLine("[" + run.name + ": " + endOf(run, state) + "]");
        c.changed = true;
    }
}

// True when the program has ended and all that it wrote is read.
bool hasEnded(Run& run, std::int64_t until) {
    const os::ExitState state = run.child->poll();
    write(run);
    if (!state.ended) FOLLOWPROGRAM(run.child->id(), run.name);
    if (read(run, until) || !state.ended) return false;
    finish(run, state);
    FORGETPROGRAM(run.child->id());
    return true;
}

// 0: nothing runs.
void setPace(int milliseconds) {
    if (std::exchange(console().pace, milliseconds) == milliseconds) return;
    if (milliseconds == 0)
        KILLTIMER(OutputDlg);
    else
        SETTIMER(OutputDlg, milliseconds);
}

// A window that comes up may ask something meanwhile, and time goes on then.
void tick() {
    Console& c = console();
    if (std::exchange(c.ticking, true)) return;
    const std::int64_t until = os::clock().steady() + ReadTime;
    std::erase_if(c.runs, [until](const auto& run) { return hasEnded(*run, until); });
    c.ticking = false;
    if (c.changed && (c.current == nullptr || os::clock().steady() - c.shownAt >= ShowTime)) showText();
    setPace(c.runs.empty() ? 0 : std::exchange(c.came, 0) > MuchBytes ? BusyMilliseconds : TickMilliseconds);
}

void stop(Run& run) {
    run.stopped = true;
    run.child->stop(GraceMilliseconds);
    tick();
}

// ---- the user ----

void send(const std::string& bytes) {
    Run* const run = console().current;
    if (run == nullptr || run->inputEnds || run->input.size() + bytes.size() > MostInput) return Sound();
    run->input += bytes;
    console().text.add(bytes);
    console().changed = true;
    write(*run);
}

void sendLine() {
    const Object line = part("edit2");
    send(GetText(line) + "\n");
    SetText(line, "");
}

void endInput() {
    Run* const run = console().current;
    if (run == nullptr) return Sound();
    run->inputEnds = true;
    write(*run);
    for (const std::string_view name : {"edit2", "pushbutton1", "pushbutton2"}) SetEnabled(part(name), false);
}

// Whether the window may go: the user decides what becomes of a program that runs.
bool mayClose(const Object& window) {
    tick();  // what has ended a moment ago runs no more
    Run* const run = console().current;
    if (run == nullptr || !run->wrote || !GetVisible(window)) return true;
    const std::string answer =
        MsgBox(GetCaption(window),
               "The program '" + run->name +
                   "' is still running.\nDo you want to stop it, or to let it run without "
                   "this window?",
               "&Stop It\n&Let It Run\n&Cancel", BoxIcon::Question);
    if (console().current != run) return true;  // it has ended meanwhile
    if (answer == "&Stop It") stop(*run);
    if (answer == "&Let It Run") run->muted = true;
    if (answer != "&Stop It" && answer != "&Let It Run") return false;
    console().current = nullptr;
    return true;
}

// True vetoes: what still runs is read on, behind a hidden window.
bool close(const Object& window) {
    if (!mayClose(window)) return true;
    SAVEINIFILE(GETIDEINIFILE(), window, true, false);
    if (console().runs.empty()) return false;
    Hide(window);
    return true;
}

bool press(const Object& window, const std::string& button) {
    if (button == "pushbutton1") sendLine();
    if (button == "pushbutton2") endInput();
    if (button == "pushbutton3" && console().current != nullptr) stop(*console().current);
    if (button == "pushbutton4") Unload(window);
    return true;
}

bool keyPressed(const Object& window, int key) {
    if (key == KEY_ESCAPE) Unload(window);
    if (key == KEY_F1) SHOWWINDOWHELP(window);
    return key == KEY_ESCAPE || key == KEY_F1;
}

// ---- place and size ----

// The text takes what the two lines above it and the row of the input below it leave.
void layOut(const Object& window) {
    const Rect page = GetPosition(window, CLIENT_UNIT);
    const auto placeOf = [](std::string_view name) { return GetPosition(part(name), CLIENT_UNIT); };
    const auto put = [](std::string_view name, const Rect& place) {
        SetPosition(part(name), CLIENT_UNIT, place);
    };
    const int margin = placeOf("edit1").x, gap = std::max(margin / 2, 1);
    const int row = page.h - margin - placeOf("pushbutton4").h;
    int right = page.w - margin;
    for (const std::string_view name : {"pushbutton4", "pushbutton3", "pushbutton2", "pushbutton1"}) {
        const Rect now = placeOf(name);
        put(name, {right - now.w, row, now.w, now.h});
        right -= now.w + gap;
    }
    const Rect label = placeOf("label3"), line = placeOf("edit2");
    put("label3", {label.x, row + (placeOf("pushbutton4").h - label.h) / 2, label.w, label.h});
    put("edit2", {line.x, row + (placeOf("pushbutton4").h - line.h) / 2, right - line.x, line.h});
    const Rect text = placeOf("edit1");
    put("edit1", {text.x, text.y, page.w - 2 * margin, row - gap - text.y});
    for (const std::string_view name : {"label1", "label2"}) {
        const Rect now = placeOf(name);
        put(name, {now.x, now.y, page.w - 2 * margin, now.h});
    }
}

// Where it was last; at first a little below the main window. It gets no smaller than it was drawn.
void load(const Object& window) {
    console() = Console();
    const std::string ini = GETIDEINIFILE();
    const Rect smallest = GetPosition(window, CLIENT_UNIT);
    SetMinPosition(window, Rect{0, 0, smallest.w, smallest.h});
    Rect frame = GetPosition(window, WINDOW_UNIT);
    if (IsLoaded(Main)) {
        const Rect main = GetPosition(Main, WINDOW_UNIT);
        frame.x = main.x + 60;
        frame.y = main.y + main.h + 60;
    }
    if (!HASPLACE("OutputDlg")) SetPosition(window, WINDOW_UNIT, frame);
    LOADINIFILE(ini, window, true, false);
    const std::string font = IsLoaded(SDIEdit) ? GetFontName(SDIEdit) : "";
    SetFontName(part("edit1"), font.empty() ? "monospace" : font);
    layOut(window);
    enable(false);
}

const RegisteredWindow registered("OutputDlg", OUTPUTDLG);

}  // namespace

bool OUTPUTDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(OUTPUTDLG);
    STAMP();
    bool result = true;
    switch (event) {
    case LOAD_EVENT: load(window); break;
    case TIMER_EVENT: tick(); break;
    case RESIZE_EVENT: layOut(window); break;
    case COMMAND_EVENT: result = press(window, GetName(control)); break;
    case KEYPRESS_EVENT: result = keyPressed(window, parameter); break;
    case CLOSE_EVENT: result = close(window); break;
    default: result = false;
    }
    STAMP();
    return result;
}

// ---- starting ----

namespace {

// The program that the window shows makes room, if the user wants that.
bool mayStart(const std::string& title) {
    if (!IsLoaded(OutputDlg)) return true;
    tick();  // what has ended a moment ago runs no more
    Run* const run = console().current;
    if (run == nullptr || !run->wrote) return true;
    const std::string answer =
        MsgBox(title,
               "The program '" + run->name +
                   "' is still running, and its output is shown.\nDo you want to stop it and "
                   "start again?",
               "&Stop and Start\n&Cancel", BoxIcon::Question);
    if (answer != "&Stop and Start") return false;
    if (console().current != run) return true;
    stop(*run);
    return true;
}

}  // namespace

void RUNPROGRAM(const std::string& title, const std::string& exe, const std::string& arguments,
                const std::string& folder) {
    FRAME(RUNPROGRAM);
    STAMP();
    if (!mayStart(title)) return;
    STAMP();
    std::unique_ptr<os::Child> child = EXECPIPED(exe, arguments, folder);
    STAMP();
    if (child == nullptr) return;
    if (!IsLoaded(OutputDlg)) Load(OutputDlg);
    STAMP();
    auto run = std::make_unique<Run>();
    run->child = std::move(child);
    run->started = os::clock().steady();
    run->name = FILEGETFNAME(exe);
    run->command = arguments.empty() ? exe : exe + " " + arguments;
    // A window that is open leaves what an earlier program wrote.
    const Run* const shown = console().current;
    if (GetVisible(OutputDlg) && (shown == nullptr || !shown->wrote)) turnTo(*run);
    console().runs.push_back(std::move(run));
    // Not at once: the command that starts gives the focus back to the editor at its end.
    setPace(TickMilliseconds);
}

}  // namespace tarn
