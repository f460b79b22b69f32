// SPDX-License-Identifier: Apache-2.0
//
// All windowing operations, under the names that the modules know them by. They work on the object model
// (model/model.h), with or without a screen. They return codes and texts and know no error cell; modules call
// the wrappers of kernel/windows/windowing.h, which set it.
//
// Captions, texts, rows and values are bytes. Positions in texts and rows are 1-based; lengths count bytes.
// An operation on a control that does not exist or is not loaded gives 702 or 727 and an empty value. One on
// a control that lacks the property gives an empty value and no error.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

// ---- resources of the application ----

// The compiled resource file from which `Load` takes windows; by default the executable's path with ".rcx".
void SetApplicationResources(const std::string& rcxFile);
const std::string& ApplicationResources();
// Binds a window to its window function; done once by the module that owns the window.
void RegisterWindow(const Object& window, WindowFunction function);

// ---- window life ----

// Makes the window from the application's resources and sends LOAD_EVENT. Loading a loaded window does
// nothing.
Code Load(const Object& window);
// From a given .rc or .rcx file, under its name there; a failure gives a text.
std::string Load(const Object& window, const std::string& resourceFile, const std::string& name);
// Shows and activates; `modal` returns when the window has been hidden or unloaded.
Code Show(const Object& window, bool modal);
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
void QuitMainLoop();  // ends every loop, modal ones too; for the halt

// Sends COMMAND_EVENT as if the user had pressed the control; the text reaches the window function.
Code Command(int windowHandle, int controlNumber, const std::string& text);
std::string commandText();  // of the COMMAND_EVENT that is being handled
// The window of another copy, or of this one: 0 if there is none. `windowClass` as in WindowClassName.
bool FindOtherWindow(const std::string& windowClass, const std::string& caption);
bool CommandOtherWindow(const std::string& windowClass, const std::string& caption, int control,
                        const std::string& text);
std::string WindowClassName(std::string_view typeWord);           // type name, ".", version, ".", build
std::vector<Object> WindowList();                                 // loaded windows in the order of loading
Object FindControl(const Object& window, std::string_view name);  // any case; empty if there is none
Object FindWindow(std::string_view name);  // a loaded window of that name, any case; else empty
Object FindHandle(int handle);             // empty if nothing has it
Answer<int> GetHandle(const Object& object);
Object ActiveWindow();  // empty if none of this program is active
Answer<std::string> GetName(const Object& object);
std::string GetTypeof(const Object& object);  // the type word; empty for what does not exist
// All controls of a window in the order of the resource file, menu items behind them.
Answer<std::vector<Object>> ControlList(const Object& window);

// ---- captions, text, values ----

Answer<std::string> GetCaption(const Object& object);
Code SetCaption(const Object& object, std::string_view caption);
Answer<std::string> GetText(const Object& object);
Code SetText(const Object& object, std::string_view text);
Answer<int> GetTextLength(const Object& object);
Answer<std::string> GetTokens(const Object& object);
Code SetTokens(const Object& object, std::string_view tokens);
Answer<std::string> GetSelText(const Object& object);
// Replaces the selection, in one undo step, and sends CHANGE_EVENT as a user's edit does (SetText sends
// none).
Code SetSelText(const Object& object, std::string_view text);
Answer<Selection> GetSelection(const Object& object);
Code SetSelection(const Object& object, int start, int length);  // scrolls it into view
Answer<int> GetValue(const Object& object);  // check box, radio button, scroll and progress bar
Code SetValue(const Object& object, int value);
Answer<bool> GetChecked(const Object& object);
Code SetChecked(const Object& object, bool checked);
Answer<bool> GetModify(const Object& object);
Code SetModify(const Object& object, bool modified);
Answer<bool> GetReadonly(const Object& object);
Answer<int> GetMaxLength(const Object& object);
Code SetMaxLength(const Object& object, int length);
Answer<int> GetPasswordChar(const Object& object);
Code SetPasswordChar(const Object& object, int character);
Answer<std::string> GetCombotext(const Object& object);
Code SetCombotext(const Object& object, std::string_view text);
Answer<int> GetCombostyle(const Object& object);  // 0 simple, 1 drop-down, 2 drop-down list
Answer<int> GetMin(const Object& object);
Code SetMin(const Object& object, int value);
Answer<int> GetMax(const Object& object);
Code SetMax(const Object& object, int value);
Answer<bool> GetEnabled(const Object& object);
Code SetEnabled(const Object& object, bool enabled);
Answer<int> GetFlags(const Object& object);
Code SetFlags(const Object& object, int flags);
Answer<int> GetBorderStyle(const Object& window);      // 0 none, 1 fixed, 2 sizable
Answer<std::string> GetPicture(const Object& object);  // a picture is named by its resource name or file
Code SetPicture(const Object& object, std::string_view picture);

// ---- list controls ----

Answer<int> GetListCount(const Object& list);
Answer<int> GetListIndex(const Object& list);  // 0 for none
Code SetListIndex(const Object& list, int row);
Answer<std::string> GetList(const Object& list, int row);
Code SetList(const Object& list, int row, std::string_view text);
Code AddItem(const Object& list, std::string_view text, std::string_view picture = {});
Code AddItem(const Object& list, int row, std::string_view text, std::string_view picture = {});
Code RemoveItem(const Object& list, int row);
Code Clear(const Object& list);
Answer<std::string> GetArrayValue(const Object& window, std::string_view name);
Code SetArrayValue(const Object& window, std::string_view name, std::string_view value);

// ---- position ----

Answer<Rect> GetPosition(const Object& object, Unit unit);
Code SetPosition(const Object& object, Unit unit, const Rect& rect);
// Limits of a window: width and height of its client area, 0 for none; x and y only tell where a maximised
// window goes.
Answer<Rect> GetMinPosition(const Object& window);
Code SetMinPosition(const Object& window, const Rect& rect);
Answer<Rect> GetMaxPosition(const Object& window);  // all zero: the whole screen
Code SetMaxPosition(const Object& window, const Rect& rect);
Rect ScreenSize();  // the work area of the screen with the active window
Answer<int> TextWidth(const Object& window, std::string_view text);
Answer<int> TextHeight(const Object& window, std::string_view text);
int GetDpi();

// ---- control arrays ----

Answer<Bounds> ControlBounds(const Object& element);      // of the array that `element` belongs to
Object ControlElement(const Object& element, int index);  // another element; empty outside the bounds
Answer<int> ControlIndex(const Object& element);          // 707 if it is in no array
Answer<int> Controlselectionpos(const Object& element);   // which radio button of the array is set; 0 none
Code AddMenuitem(const Object& after, std::string_view caption);  // grows the control array of `after` by one
Code RemoveMenuitem(const Object& item);                          // shrinks its control array

// ---- fonts and colours ----

Answer<Font> GetFont(const Object& object);
Code SetFont(const Object& object, const Font& font);

// ---- common dialogs ----

// `buttons`: a caption on each line, empty for one "OK". The answer is the caption of the button pressed,
// with its
// "&", or empty if the box was closed. The first button is the default one, unless `defaultButton` (1-based).
std::string MsgBox(const std::string& title, const std::string& text, const std::string& buttons,
                   BoxIcon icon = BoxIcon::None, int defaultButton = 1);
// The numeric form. Flags: 0 OK, 1 OK Cancel, 3 Yes No Cancel, 4 Yes No, 5 Retry Cancel; 16 error, 32
// question, 48 warning, 64 information; 256 second button default, 512 third. Answers: 1 OK, 2 Cancel, 4
// Retry, 6 Yes, 7 No.
int MsgBoxEx(const std::string& title, const std::string& text, int flags);
std::string InputBox(const std::string& title, const std::string& prompt, const std::string& value);
std::string ListBox(const std::string& title, const std::string& prompt, const std::string& rows);
// `filter` rows have the form "Text (*.ext)|*.ext|". The answer is a full path, empty on Cancel.
std::string OpenFileDialog(const std::string& title, const std::string& start, const std::string& filter);
std::string SaveAsDialog(const std::string& title, const std::string& start, const std::string& filter);
std::string OpenFolderDialog(const std::string& title, const std::string& start);

// ---- system ----

void Sound();  // the desktop's beep
void PlaySound(const std::string& wavFile);
std::string SystemInfo();                                   // the name of the operating system
Answer<std::int64_t> DiskSpace(const std::string& folder);  // free bytes, -1 for a folder that does not exist
void AppIcon(const std::string& file);
void SetBusy(bool busy);  // the wait cursor, and all windows of the program disabled; nests
void SetTimer(const Object& owner,
              int milliseconds);       // sends TIMER_EVENT to its window again and again; 0 stops it
bool OpenUrl(const std::string& url);  // with the desktop's program for it; false if there is none
// While a tool runs: shows a small window with `text` and a Stop button; see ToolStopPressed. Empty text
// hides it.
void ShowToolProgress(const std::string& text);
bool ToolStopPressed();
// Splash picture: `lines` drawn over the picture file; shown until closed.
void ShowSplash(const std::string& pictureFile, const std::vector<std::string>& lines);
void CloseSplash();
void SetTrace(int mode);  // the level that whoever traces reads with GetTrace; 0 is off
int GetTrace();
int GetUserBreak();
void SetUserBreak(int value);
void DestroyAllWindows();  // for the halt: no events are sent

}  // namespace tarn::platform
