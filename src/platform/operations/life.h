// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: resources of the program, the life of windows, event loops, commands, and finding.
// Cost: a look-up walks the loaded windows and the controls of one; processes are read from the system anew.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

// ---- resources of the application ----

// The compiled resource file from which `Load` takes windows; by default the executable's path with ".rcx".
void SetApplicationResources(const std::string& rcxFile);
const std::string& ApplicationResources();
// Binds a window to its window function; done once by the module that owns the window.
void RegisterWindow(const Object& window, WindowFunction function);

// ---- life ----

// Makes the window from the application's resources and sends LOAD_EVENT. Loading a loaded window does
// nothing.
Code Load(const Object& window);
// The same, with named values that stand in the window before LOAD_EVENT; see SetArrayValues.
Code Load(const Object& window, const std::vector<std::string>& values);
// From a given .rc or .rcx file, under its name there; a failure gives a text.
std::string Load(const Object& window, const std::string& resourceFile, const std::string& name);
// Shows and activates; `modal` returns when the window has been hidden or unloaded. The answer of a modal
// window is the number of the control whose COMMAND_EVENT did that (IDOK is 1, IDCANCEL 2, ...), else 0.
Answer<int> Show(const Object& window, bool modal);
Code Hide(const Object& window);
// Sends CLOSE_EVENT; unless that vetoes, destroys the window.
Code Unload(const Object& window);
bool IsLoaded(const Object& object);
bool IsModal(const Object& window);
Answer<bool> GetVisible(const Object& object);
Code SetVisible(const Object& object, bool visible);
Answer<int> GetWindowState(const Object& window);  // 0 normal, 1 minimised, 2 maximised
Code SetWindowState(const Object& window, int state);

// Runs until the window `main` is gone. DoEvents pumps the queue once.
void MainLoop(const Object& main);
void DoEvents();
// Pumps events for that long, or until a key or a click when `inputEnds`; modal waits and EXEC use it.
void WaitEvents(int milliseconds, bool inputEnds);
void QuitMainLoop();       // ends every loop, modal ones too; for the halt
void DestroyAllWindows();  // for the halt: no events are sent

// ---- commands ----

// Sends COMMAND_EVENT as if the user had pressed the control; the text reaches the window function. A handle
// of FindWindowHandle may belong to another copy of the program. 702: no such window, 727: no such control.
Code Command(int windowHandle, int controlNumber, const std::string& text);
std::string commandText();  // of the COMMAND_EVENT that is being handled
// Has an event loop send the event to the window function, with the object as its sender; events so posted
// keep their order. A window that has gone by then gets none. 702: the window is not loaded.
Code PostMessage(const Object& object, int event, int parameter);

// ---- finding ----

// The loaded window of this program, else the one of another running copy, that has this class and this
// caption (exact); 0 if there is none. The handle of another copy's window is of use for `Command` alone.
int FindWindowHandle(const std::string& windowClass, const std::string& caption);
std::string WindowClassName(std::string_view typeWord);  // type name, ".", version, ".", build
std::vector<Object> WindowList();                        // loaded windows in the order of loading
// The captions of application windows that are shown. Only those of this program: neither X11 without a
// window manager nor Wayland tells a program of the windows of others.
std::vector<std::string> ApplicationList();
std::vector<Process> ProcessList();                               // all processes of the machine, by number
Object FindControl(const Object& window, std::string_view name);  // any case; empty if there is none
Object FindWindow(std::string_view name);  // a loaded window of that name, any case; else empty
Object FindHandle(int handle);             // empty if nothing has it
Answer<int> GetHandle(const Object& object);
Answer<WindowFunction> GetFuncptr(const Object& window);  // null if none is bound; 702 if it is not loaded
Object ActiveWindow();                                    // empty if none of this program is active
// Of a printer the name that the system knows it by.
Answer<std::string> GetName(const Object& object);
std::string GetTypeof(const Object& object);  // the type word; empty for what does not exist
// All controls of a window in the order of the resource file, menu items behind them.
Answer<std::vector<Object>> ControlList(const Object& window);

}  // namespace tarn::platform
