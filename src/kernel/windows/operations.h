// SPDX-License-Identifier: Apache-2.0
//
// The list of all windowing operations: one line each, with its result, its name, its parameters and the
// arguments that hand them on. `TARN_WINDOW_OPERATIONS(X)` calls X with these four for each line. Whoever wants
// all of them makes them from here: the wrappers of windowing.h, and the interface to compiled programs.
//
// What each of them does is told in platform/operations/. The result is the bare value; a code goes to the
// error cell. An operation that stands here twice has two forms.
#pragma once

// clang-format off
#define TARN_LIFE_OPERATIONS(X)                                                                                      \
    X(void, Load, (const Object& window), (window))                                                                  \
    X(void, Load, (const Object& window, const std::vector<std::string>& values), (window, values))                  \
    X(std::string, Load, (const Object& window, const std::string& file, const std::string& name), (window, file, name)) \
    X(int, Show, (const Object& window, bool modal), (window, modal))                                                \
    X(void, Hide, (const Object& window), (window))                                                                  \
    X(void, Unload, (const Object& window), (window))                                                                \
    X(bool, IsLoaded, (const Object& object), (object))                                                              \
    X(bool, IsModal, (const Object& window), (window))                                                               \
    X(bool, GetVisible, (const Object& object), (object))                                                            \
    X(void, SetVisible, (const Object& object, bool visible), (object, visible))                                     \
    X(int, GetWindowState, (const Object& window), (window))                                                         \
    X(void, SetWindowState, (const Object& window, int state), (window, state))                                      \
    X(void, MainLoop, (const Object& main), (main))                                                                  \
    X(void, DoEvents, (), ())                                                                                        \
    X(int, GetUserBreak, (), ())                                                                                     \
    X(void, SetUserBreak, (int value), (value))                                                                      \
    X(void, Command, (int windowHandle, int control, const std::string& text), (windowHandle, control, text))        \
    X(int, FindWindowHandle, (const std::string& windowClass, const std::string& caption), (windowClass, caption))   \
    X(std::vector<Object>, WindowList, (), ())                                                                       \
    X(std::vector<std::string>, ApplicationList, (), ())                                                             \
    X(std::vector<platform::Process>, ProcessList, (), ())                                                           \
    X(int, GetHandle, (const Object& object), (object))                                                              \
    X(WindowFunction, GetFuncptr, (const Object& window), (window))                                                  \
    X(std::string, GetName, (const Object& object), (object))                                                        \
    X(std::string, GetTypeof, (const Object& object), (object))

#define TARN_VALUE_OPERATIONS(X)                                                                                     \
    X(std::string, GetCaption, (const Object& object), (object))                                                     \
    X(void, SetCaption, (const Object& object, std::string_view caption), (object, caption))                         \
    X(std::string, GetText, (const Object& object), (object))                                                        \
    X(void, SetText, (const Object& object, std::string_view text), (object, text))                                  \
    X(int, GetTextLength, (const Object& object), (object))                                                          \
    X(std::string, GetTokens, (const Object& object), (object))                                                      \
    X(void, SetTokens, (const Object& object, std::string_view tokens), (object, tokens))                            \
    X(std::string, GetSelText, (const Object& object), (object))                                                     \
    X(void, SetSelText, (const Object& object, std::string_view text), (object, text))                               \
    X(Selection, GetSelection, (const Object& object), (object))                                                     \
    X(void, SetSelection, (const Object& object, int start, int length), (object, start, length))                    \
    X(int, GetValue, (const Object& object), (object))                                                               \
    X(void, SetValue, (const Object& object, int value), (object, value))                                            \
    X(bool, GetChecked, (const Object& object), (object))                                                            \
    X(void, SetChecked, (const Object& object, bool checked), (object, checked))                                     \
    X(bool, GetModify, (const Object& object), (object))                                                             \
    X(void, SetModify, (const Object& object, bool modified), (object, modified))                                    \
    X(bool, GetReadonly, (const Object& object), (object))                                                           \
    X(int, GetMaxLength, (const Object& object), (object))                                                           \
    X(void, SetMaxLength, (const Object& object, int length), (object, length))                                      \
    X(int, GetPasswordChar, (const Object& object), (object))                                                        \
    X(void, SetPasswordChar, (const Object& object, int character), (object, character))                             \
    X(std::string, GetCombotext, (const Object& object), (object))                                                   \
    X(void, SetCombotext, (const Object& object, std::string_view text), (object, text))                             \
    X(int, GetCombostyle, (const Object& object), (object))                                                          \
    X(int, GetMin, (const Object& object), (object))                                                                 \
    X(void, SetMin, (const Object& object, int value), (object, value))                                              \
    X(int, GetMax, (const Object& object), (object))                                                                 \
    X(void, SetMax, (const Object& object, int value), (object, value))                                              \
    X(bool, GetEnabled, (const Object& object), (object))                                                            \
    X(void, SetEnabled, (const Object& object, bool enabled), (object, enabled))                                     \
    X(int, GetFlags, (const Object& object), (object))                                                               \
    X(void, SetFlags, (const Object& object, int flags), (object, flags))                                            \
    X(int, GetBorderStyle, (const Object& object), (object))                                                         \
    X(std::string, GetPicture, (const Object& object), (object))                                                     \
    X(void, SetPicture, (const Object& object, std::string_view picture), (object, picture))                         \
    X(void, SetPicture, (const Object& object, const Picture& picture), (object, picture))

#define TARN_LIST_OPERATIONS(X)                                                                                      \
    X(int, GetListCount, (const Object& list), (list))                                                               \
    X(int, GetListIndex, (const Object& list), (list))                                                               \
    X(void, SetListIndex, (const Object& list, int row), (list, row))                                                \
    X(std::string, GetList, (const Object& list, int row), (list, row))                                              \
    X(void, SetList, (const Object& list, int row, std::string_view text), (list, row, text))                        \
    X(void, SetList, (const Object& list, int row, std::string_view text, std::string_view picture), (list, row, text, picture)) \
    X(void, AddItem, (const Object& list, std::string_view text, std::string_view picture = {}), (list, text, picture)) \
    X(void, AddItem, (const Object& list, int row, std::string_view text, std::string_view picture = {}), (list, row, text, picture)) \
    X(void, RemoveItem, (const Object& list, int row), (list, row))                                                  \
    X(void, Clear, (const Object& object), (object))                                                                 \
    X(std::string, GetArrayValue, (const Object& window, std::string_view name), (window, name))                     \
    X(void, SetArrayValue, (const Object& window, std::string_view name, std::string_view value), (window, name, value)) \
    X(std::vector<std::string>, GetArrayValues, (const Object& window, std::string_view pattern), (window, pattern)) \
    X(void, SetArrayValues, (const Object& window, const std::vector<std::string>& values), (window, values))

#define TARN_POSITION_OPERATIONS(X)                                                                                  \
    X(Rect, GetPosition, (const Object& object, Unit unit), (object, unit))                                          \
    X(void, SetPosition, (const Object& object, Unit unit, const Rect& rect), (object, unit, rect))                  \
    X(Rect, GetMinPosition, (const Object& window), (window))                                                        \
    X(void, SetMinPosition, (const Object& window, const Rect& rect), (window, rect))                                \
    X(Rect, GetMaxPosition, (const Object& window), (window))                                                        \
    X(void, SetMaxPosition, (const Object& window, const Rect& rect), (window, rect))                                \
    X(int, WindowWidth, (const Object& object), (object))                                                            \
    X(int, WindowHeight, (const Object& object), (object))                                                           \
    X(int, GetPageWidth, (const Object& object), (object))                                                           \
    X(int, GetPageHeight, (const Object& object), (object))                                                          \
    X(void, AlignItems, (const Object& window), (window))                                                            \
    X(int, GetDpiX, (const Object& object), (object))                                                                \
    X(int, GetDpiY, (const Object& object), (object))                                                                \
    X(int, TextWidth, (const Object& window, std::string_view text), (window, text))                                 \
    X(int, TextHeight, (const Object& window, std::string_view text), (window, text))                                \
    X(Rect, TrackRect, (const Object& window, TrackMode mode, const TrackLimits& limits, const Rect& bounds, const Rect& rect), (window, mode, limits, bounds, rect))

#define TARN_ARRAY_OPERATIONS(X)                                                                                     \
    X(std::string, Controlarray, (const Object& element), (element))                                                 \
    X(int, Controlarraypos, (const Object& element), (element))                                                      \
    X(int, ControlLbound, (const Object& element), (element))                                                        \
    X(int, ControlUbound, (const Object& element), (element))                                                        \
    X(std::vector<Object>, ControlList, (const Object& window), (window))                                            \
    X(Object, Controlselection, (const Object& element), (element))                                                  \
    X(int, Controlselectionpos, (const Object& element), (element))                                                  \
    X(void, AddMenuitem, (const Object& after, std::string_view caption), (after, caption))                          \
    X(void, AddMenuitems, (const Object& after, std::string_view captions), (after, captions))                       \
    X(void, RemoveMenuitem, (const Object& item), (item))                                                            \
    X(void, RemoveMenuitems, (const Object& first, const Object& last), (first, last))

#define TARN_LOOK_OPERATIONS(X)                                                                                      \
    X(std::string, GetFontName, (const Object& object), (object))                                                    \
    X(void, SetFontName, (const Object& object, std::string_view name), (object, name))                              \
    X(int, GetFontSize, (const Object& object), (object))                                                            \
    X(void, SetFontSize, (const Object& object, int points), (object, points))                                       \
    X(bool, GetFontBold, (const Object& object), (object))                                                           \
    X(void, SetFontBold, (const Object& object, bool bold), (object, bold))                                          \
    X(bool, GetFontItalic, (const Object& object), (object))                                                         \
    X(void, SetFontItalic, (const Object& object, bool italic), (object, italic))                                    \
    X(int, GetForeColour, (const Object& object), (object))                                                          \
    X(void, SetForeColour, (const Object& object, int colour), (object, colour))                                     \
    X(int, GetBackColour, (const Object& object), (object))                                                          \
    X(void, SetBackColour, (const Object& object, int colour), (object, colour))

#define TARN_DRAWING_OPERATIONS(X)                                                                                   \
    X(void, StartGraph, (const Object& object, int x = 0, int y = 0), (object, x, y))                                \
    X(void, EndGraph, (const Object& object), (object))                                                              \
    X(void, DrawLine, (const Object& object, int x1, int y1, int x2, int y2), (object, x1, y1, x2, y2))              \
    X(void, DrawPoint, (const Object& object, int x, int y), (object, x, y))                                         \
    X(void, DrawShape, (const Object& object, ShapeKind kind, int x, int y, int w, int h), (object, kind, x, y, w, h)) \
    X(void, DrawTextstr, (const Object& object, std::string_view text), (object, text))                              \
    X(void, DrawPicture, (const Object& object, std::string_view picture, int x, int y, int w = 0, int h = 0), (object, picture, x, y, w, h)) \
    X(void, DrawPicture, (const Object& object, const Picture& picture, int x, int y, int w = 0, int h = 0), (object, picture, x, y, w, h)) \
    X(void, DrawWindow, (const Object& object, const Object& window), (object, window))                              \
    X(int, GetCurrentX, (const Object& object), (object))                                                            \
    X(void, SetCurrentX, (const Object& object, int x), (object, x))                                                 \
    X(int, GetCurrentY, (const Object& object), (object))                                                            \
    X(void, SetCurrentY, (const Object& object, int y), (object, y))                                                 \
    X(Picture, LoadPicture, (std::string_view name), (name))                                                         \
    X(void, SavePicture, (const Picture& picture, const std::string& file), (picture, file))                         \
    X(int, PictureWidth, (const Picture& picture), (picture))                                                        \
    X(int, PictureHeight, (const Picture& picture), (picture))                                                       \
    X(Picture, GetBitmapInfo, (int handle), (handle))                                                                \
    X(Picture, TBITMAP, (int width, int height, std::string_view text, std::string_view iconFile), (width, height, text, iconFile)) \
    X(std::string, PictureName, (const Picture& picture), (picture))                                                 \
    X(std::vector<Object>, PrinterList, (), ())                                                                      \
    X(void, StartPrint, (const Object& printer), (printer))                                                          \
    X(void, EndPrint, (const Object& printer), (printer))                                                            \
    X(void, NewPage, (const Object& printer), (printer))                                                             \
    X(int, GetPage, (const Object& printer), (printer))                                                              \
    X(int, GetPrinterStatus, (const Object& printer), (printer))                                                     \
    X(int, GetPhysicalWidth, (const Object& printer), (printer))                                                     \
    X(int, GetPhysicalHeight, (const Object& printer), (printer))                                                    \
    X(int, GetPhysicalOffsetX, (const Object& printer), (printer))                                                   \
    X(int, GetPhysicalOffsetY, (const Object& printer), (printer))

#define TARN_DIALOG_OPERATIONS(X)                                                                                    \
    X(std::string, MsgBox, (const std::string& title, const std::string& text, const std::string& buttons, BoxIcon icon = BoxIcon::None, int defaultButton = 1), (title, text, buttons, icon, defaultButton)) \
    X(int, MsgBoxEx, (const std::string& title, const std::string& text, int flags), (title, text, flags))           \
    X(std::string, InputBox, (const std::string& title, const std::string& prompt, const std::string& value), (title, prompt, value)) \
    X(std::string, ListBox, (const std::string& title, const std::string& prompt, const std::string& rows), (title, prompt, rows)) \
    X(std::string, OpenFileDialog, (const std::string& title, const std::string& start, const std::string& filter), (title, start, filter)) \
    X(std::string, SaveAsDialog, (const std::string& title, const std::string& start, const std::string& filter), (title, start, filter)) \
    X(std::string, OpenFolderDialog, (const std::string& title, const std::string& start), (title, start))           \
    X(Font, FontDialog, (const Object& owner, const Font& font), (owner, font))                                      \
    X(int, ColourDialog, (const Object& owner, int colour), (owner, colour))                                         \
    X(PrintChoice, PrintDialog, (const Object& owner, int flags), (owner, flags))                                    \
    X(bool, HtmlHelpApi, (const std::string& file, const std::string& key), (file, key))

#define TARN_SYSTEM_OPERATIONS(X)                                                                                    \
    X(void, Sound, (), ())                                                                                           \
    X(std::string, SystemInfo, (), ())                                                                               \
    X(std::int64_t, DiskSpace, (const std::string& folder), (folder))                                                \
    X(void, AppIcon, (const std::string& file), (file))                                                              \
    X(void, SetTrace, (int mode), (mode))                                                                            \
    X(void, RaiseGuiRtx, (platform::Code code), (code))                                                              \
    X(bool, RegKeyExists, (const std::string& key), (key))                                                           \
    X(std::string, RegGetSetting, (const std::string& key, const std::string& name), (key, name))                    \
    X(std::string, RegSaveSetting, (const std::string& key, const std::string& name, const std::string& value), (key, name, value)) \
    X(std::string, RegDeleteSetting, (const std::string& key, const std::string& name), (key, name))                 \
    X(std::string, RegGetAllSections, (const std::string& key), (key))                                               \
    X(std::string, RegGetAllSettings, (const std::string& key), (key))                                               \
    X(RegInfo, RegGetSettingInfo, (const std::string& key, const std::string& name), (key, name))                    \
    X(int, CommOpen, (const std::string& port, const std::string& settings), (port, settings))                       \
    X(void, CommClose, (int handle), (handle))                                                                       \
    X(void, CommFlush, (int handle), (handle))                                                                       \
    X(int, CommGetError, (int handle), (handle))                                                                     \
    X(CommTimeouts, CommGetTimeouts, (int handle), (handle))                                                         \
    X(void, CommSetTimeouts, (int handle, const CommTimeouts& timeouts), (handle, timeouts))                         \
    X(int, CommReadByte, (int handle), (handle))                                                                     \
    X(std::string, CommReadString, (int handle, int most), (handle, most))                                           \
    X(void, CommWriteByte, (int handle, int byte), (handle, byte))                                                   \
    X(void, CommWriteString, (int handle, std::string_view bytes), (handle, bytes))

#define TARN_WINDOW_OPERATIONS(X)                                                                                    \
    TARN_LIFE_OPERATIONS(X)                                                                                          \
    TARN_VALUE_OPERATIONS(X)                                                                                         \
    TARN_LIST_OPERATIONS(X)                                                                                          \
    TARN_POSITION_OPERATIONS(X)                                                                                      \
    TARN_ARRAY_OPERATIONS(X)                                                                                         \
    TARN_LOOK_OPERATIONS(X)                                                                                          \
    TARN_DRAWING_OPERATIONS(X)                                                                                       \
    TARN_DIALOG_OPERATIONS(X)                                                                                        \
    TARN_SYSTEM_OPERATIONS(X)
// clang-format on
