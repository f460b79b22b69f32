// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: loading, showing, event loops, commands, and finding.
#include "platform/windowing.h"

#include "os/files.h"
#include "os/paths.h"
#include "os/process.h"
#include "platform/model/access_internal.h"
#include "platform/model/debugger/debugwindow.h"
#include "platform/model/debugger/userbreak.h"
#include "platform/model/showing.h"
#include "platform/operations/quietly.h"
#include "platform/text.h"

#include <utility>

namespace tarn::platform {

namespace {

Showing showing = Showing::InFront;

constexpr std::string_view version = "1.3", build = "2207";
constexpr Code resourceFileMissing = 704;

// The name by which copies of this program find each other.
std::string instanceName() {
    return upper(os::withoutExtension(os::nameOf(os::executablePath())));
}

Window* windowWith(const std::string& windowClass, const std::string& caption) {
    for (const auto& window : state().windows)
        if (window->caption == caption && WindowClassName(typeName(window->type)) == windowClass)
            return window.get();
    return nullptr;
}

void send(const Object& window, int control, const std::string& text) {
    const std::string before = std::exchange(state().commandText, text);
    sendEvent(window, COMMAND_EVENT, Object(window.window(), control), 1);
    state().commandText = before;
}

void serve() {
    os::InstanceServer server;
    server.knows = [](const std::string& windowClass, const std::string& caption) {
        return windowWith(windowClass, caption) != nullptr;
    };
    server.run = [](const os::InstanceCommand& command) {
        state().commands.push_back(command);
        runCommands();
    };
    if (os::startInstanceServer(instanceName(), std::move(server)))
        view().watch(os::instanceSocket(), [] { os::serveInstanceCommands(); });
}

void stopServing() {
    if (os::instanceSocket() >= 0) view().watch(os::instanceSocket(), {});
    os::stopInstanceServer();
}

// A modal wait that nobody can end any more is over: the window is closed as its close button would, or else
// hidden.
void endModal(int handle) {
    if (Window* const window = windowOfHandle(handle)) static_cast<void>(Unload(window->object));
    if (Window* const window = windowOfHandle(handle)) setShown(*window, false);
}

int waitModal(int handle) {
    const auto ended = [handle] {
        const Window* const window = windowOfHandle(handle);
        return window == nullptr || !window->shown;
    };
    // While the program is busy nobody could answer the window.
    const int busy = std::exchange(state().busy, 0);
    if (busy > 0) view().setBusy(false);
    if (!runLoop(ended)) endModal(handle);
    state().busy = busy;
    if (busy > 0) view().setBusy(true);
    std::erase(state().modal, handle);
    if (Window* const window = windowOfHandle(handle)) window->modal = false;
    const int result = state().results[handle];
    state().results.erase(handle);
    runCommands();
    return result;
}

}  // namespace

void RegisterWindow(const Object& object, WindowFunction function) {
    state().functions[&object.window()] = function;
    if (Window* const window = findWindow(object)) window->function = function;
}

Code Load(const Object& object) {
    return Load(object, std::vector<std::string>());
}

Code Load(const Object& object, const std::vector<std::string>& values) {
    if (object.empty()) return WindowNotInResources;
    const Object window = object.owner();
    if (findWindow(window) != nullptr) return Ok;
    WindowTemplate from;
    if (applicationResources().empty()) return resourceFileMissing;
    if (!applicationResources().window(window.window(), from)) return WindowNotInResources;
    return makeWindow(window, from, ApplicationResources(), values);
}

std::string Load(const Object& object, const std::string& file, const std::string& name) {
    const Object window = object.owner();
    if (window.empty()) return "There is no name for the window.";
    if (findWindow(window) != nullptr) return "The window '" + window.window() + "' is already loaded.";
    std::string bytes;
    const os::FileError error = os::readFile(file, bytes);
    if (error != os::FileError::None)
        return "'" + file + "' cannot be read. " + std::string(os::describe(error));
    WindowTemplate from;
    if (isCompiledResource(bytes)) {
        CompiledResources compiled;
        if (std::string fault = compiled.open(std::move(bytes)); !fault.empty())
            return "'" + file + "': " + fault;
        if (!compiled.window(name, from)) return "'" + name + "' was not found in '" + file + "'.";
    } else {
        const RcFile parsed = parseResourceText(std::move(bytes));
        const RcFault fault = !parsed.fault.empty() ? parsed.fault : makeTemplate(parsed, name, from);
        if (fault.number == WindowNotInResources) return "'" + name + "' was not found in '" + file + "'.";
        if (!fault.empty()) return "'" + file + "', line " + std::to_string(fault.line) + ": " + fault.text;
    }
    makeWindow(window, from, file);
    return "";
}

Answer<int> Show(const Object& object, bool modal) {
    Window* const window = findWindow(object.owner());
    if (window == nullptr || object.empty()) return {0, WindowNotLoaded};
    const int handle = window->handle;
    const bool newModal = modal && !(window->modal && window->shown);
    if (newModal) {
        window->modal = true;
        state().modal.push_back(handle);
        state().results[handle] = 0;
    }
    window->shown = window->visible = true;
    view().show(*window);
    if (windowOfHandle(handle) != nullptr) activate(*window);
    return {newModal ? waitModal(handle) : 0, Ok};
}

Code ShowQuietly(const Object& object, bool behind) {
    Window* const window = findWindow(object.owner());
    if (window == nullptr || object.empty()) return WindowNotLoaded;
    if (window->shown) return Ok;
    window->shown = window->visible = true;
    showing = behind ? Showing::Behind : Showing::Quietly;
    view().show(*window);
    showing = Showing::InFront;
    return Ok;
}

Showing howToShow() {
    return showing;
}

Code Hide(const Object& object) {
    Window* const window = findWindow(object.owner());
    if (window == nullptr || object.empty()) return WindowNotLoaded;
    setShown(*window, false);
    return Ok;
}

Code Unload(const Object& object) {
    Window* const window = findWindow(object.owner());
    if (window == nullptr || object.empty()) return WindowNotLoaded;
    if (window->closing) return Ok;
    const int handle = window->handle;
    window->closing = true;
    const bool veto = sendEvent(window->object, CLOSE_EVENT, window->object, 0);
    Window* const left = windowOfHandle(handle);
    if (left == nullptr) return Ok;
    left->closing = false;
    if (!veto) destroy(*left);
    return Ok;
}

bool IsLoaded(const Object& object) {
    return findControl(object) != nullptr;
}

bool IsModal(const Object& object) {
    const Window* const window = findWindow(object);
    return window != nullptr && window->modal && window->shown;
}

Answer<bool> GetVisible(const Object& object) {
    return ask<bool>(object, [](const Control& c) {
        return isWindowType(c.type) ? static_cast<const Window&>(c).shown : c.visible;
    });
}

Code SetVisible(const Object& object, bool visible) {
    if (object.isWindow()) return visible ? Show(object, false).code : Hide(object);
    return tell(object, Property::Visible, [&](Control& c) { return assign(c.visible, visible); });
}

Answer<int> GetWindowState(const Object& object) {
    const Window* const window = findWindow(object);
    return window == nullptr ? Answer<int>{0, WindowNotLoaded} : Answer<int>{window->state, Ok};
}

Code SetWindowState(const Object& object, int value) {
    Window* const window = findWindow(object);
    if (window == nullptr) return WindowNotLoaded;
    if (value < 0 || value > 2 || value == window->state) return Ok;
    window->state = value;
    view().changed(*window, Property::State);
    return Ok;
}

// ---- loops ----

void MainLoop(const Object& main) {
    const Window* const window = findWindow(main);
    if (window == nullptr) return;
    const int handle = window->handle;
    state().main = main.owner();
    serve();
    runLoop([handle] { return windowOfHandle(handle) == nullptr; });
    stopServing();
    state().main = Object();
    settle();
}

void DoEvents() {
    view().pump();
    noteUserHeard();
    settle();
    runCommands();
}

void WaitEvents(int milliseconds, bool inputEnds) {
    ++state().waiting;
    view().wait(milliseconds, inputEnds);
    noteUserHeard();
    --state().waiting;
}

void QuitMainLoop() {
    state().quit = state().loops > 0;
}

// ---- commands ----

namespace {

Code commandElsewhere(int handle, int control, const std::string& text) {
    const auto place = state().elsewhere.find(handle);
    if (place == state().elsewhere.end()) return WindowNotLoaded;
    const auto& [windowClass, caption] = place->second;
    const bool sent = os::sendInstanceCommand(instanceName(), {windowClass, caption, control, text});
    return sent ? Ok : WindowNotLoaded;
}

}  // namespace

Code Command(int windowHandle, int control, const std::string& text) {
    const Window* const window = windowOfHandle(windowHandle);
    if (window == nullptr) return commandElsewhere(windowHandle, control, text);
    const Object object = window->object;
    if (findControl(Object(object.window(), control)) == nullptr) return ControlInvalid;
    send(object, control, text);
    return Ok;
}

std::string commandText() {
    return state().commandText;
}

void runCommands() {
    State& s = state();
    while (s.depth == 0 && s.waiting == 0 && topModal() == nullptr && !programRests() &&
           !s.commands.empty()) {
        const os::InstanceCommand command = std::move(s.commands.front());
        s.commands.pop_front();
        Window* const window = windowWith(command.windowClass, command.caption);
        if (window == nullptr) continue;
        view().raise(*window);
        if (isAlive(*window)) activate(*window);  // for the command, which may look where its user is
        if (isAlive(*window)) send(window->object, command.control, command.text);
    }
}

int FindWindowHandle(const std::string& windowClass, const std::string& caption) {
    if (const Window* const window = windowWith(windowClass, caption)) return window->handle;
    if (!os::findInstanceWindow(instanceName(), windowClass, caption)) return 0;
    const std::pair wanted(windowClass, caption);
    for (const auto& [handle, name] : state().elsewhere)
        if (name == wanted) return handle;
    return state().elsewhere.emplace(newHandle(), wanted).first->first;
}

std::string WindowClassName(std::string_view typeWord) {
    return std::string(typeWord).append(".").append(version).append(".").append(build);
}

// ---- finding ----

std::vector<Object> WindowList() {
    std::vector<Object> list;
    for (const auto& window : state().windows) list.push_back(window->object);
    return list;
}

std::vector<std::string> ApplicationList() {
    std::vector<std::string> captions;
    for (const auto& window : state().windows)
        if (window->shown && !window->caption.empty()) captions.push_back(window->caption);
    return captions;
}

std::vector<Process> ProcessList() {
    std::vector<Process> list;
    for (os::RunningProcess& process : os::runningProcesses())
        list.push_back({process.id, std::move(process.name)});
    return list;
}

Object FindControl(const Object& object, std::string_view name) {
    const Window* const window = findWindow(object);
    if (window == nullptr || name.empty()) return {};
    const auto find = [&](std::string Control::*field) -> Object {
        for (const auto* controls : {&window->controls, &window->menuItems})
            for (const auto& control : *controls)
                if (sameText((*control).*field, name)) return control->object;
        return {};
    };
    const Object named = find(&Control::name);
    return named.empty() ? find(&Control::array) : named;  // an array stands for its first member
}

Object FindWindow(std::string_view name) {
    for (const auto& window : state().windows)
        if (sameText(window->object.window(), name)) return window->object;
    return {};
}

Object FindHandle(int handle) {
    const auto place = state().byHandle.find(handle);
    return place == state().byHandle.end() ? Object() : place->second->object;
}

Object ActiveWindow() {
    const std::vector<int>& order = state().activation;
    const Window* const window = order.empty() ? nullptr : windowOfHandle(order.back());
    return window == nullptr || !window->shown ? Object() : window->object;
}

Answer<int> GetHandle(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.handle; });
}

Answer<WindowFunction> GetFuncptr(const Object& object) {
    const Window* const window = findWindow(object);
    return window == nullptr ? Answer<WindowFunction>{nullptr, WindowNotLoaded}
                             : Answer<WindowFunction>{window->function, Ok};
}

Answer<std::string> GetName(const Object& object) {
    return ask<std::string>(
        object, [](const Control& c) { return isWindowType(c.type) ? c.object.window() : c.name; });
}

std::string GetTypeof(const Object& object) {
    const Control* const control = findControl(object);
    return control == nullptr ? "" : std::string(typeName(control->type));
}

Answer<std::vector<Object>> ControlList(const Object& object) {
    const Window* const window = findWindow(object);
    if (window == nullptr) return {{}, WindowNotLoaded};
    Answer<std::vector<Object>> answer;
    for (const auto* controls : {&window->controls, &window->menuItems})
        for (const auto& control : *controls) answer.value.push_back(control->object);
    return answer;
}

void DestroyAllWindows() {
    State& s = state();
    for (const auto& window : s.windows) window->function = nullptr;
    while (!s.windows.empty()) destroy(*s.windows.back());
    s.modal.clear();
    s.commands.clear();
    s.main = Object();
    if (s.busy > 0) view().setBusy(false);
    s.busy = 0;
    settle();
}

}  // namespace tarn::platform
