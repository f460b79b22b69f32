// SPDX-License-Identifier: Apache-2.0
//
// The list of all windowing operations: one line each, with its result, its name, the word that tells it from
// its other forms, its parameters and the arguments that hand them on. `TARN_WINDOW_OPERATIONS(X)` calls X with
// these five for each line. Whoever wants all of them makes them from here: the wrappers of windowing.h, the
// interface to compiled programs (library/system/api_windows.cpp), and the heads that the language sees
// (toolchain/language/windowheads.cpp).
//
// What each of them does is told in platform/operations/. The result is the bare value; a code goes to the
// error cell. An operation that stands here twice has two forms.
#pragma once

// clang-format off
#define TARN_LIFE_OPERATIONS(X)                                                                                      \
    X(void, Load, load, (const Object& window), (window))                                                            \
    X(void, Load, load_values, (const Object& window, const std::vector<std::string>& values), (window, values))     \
    X(std::string, Load, load_from, (const Object& window, const std::string& file, const std::string& name), (window, file, name)) \
    X(int, Show, show, (const Object& window, bool modal), (window, modal))                                          \
    X(void, Hide, hide, (const Object& window), (window))                                                            \
    X(void, Unload, unload, (const Object& window), (window))                                                        \
    X(bool, IsLoaded, is_loaded, (const Object& object), (object))                                                   \
    X(bool, IsModal, is_modal, (const Object& window), (window))                                                     \
    X(bool, GetVisible, get_visible, (const Object& object), (object))                                               \
    X(void, SetVisible, set_visible, (const Object& object, bool visible), (object, visible))                        \
    X(int, GetWindowState, get_window_state, (const Object& window), (window))                                       \
    X(void, SetWindowState, set_window_state, (const Object& window, int state), (window, state))                    \
    X(void, MainLoop, main_loop, (const Object& main), (main))                                                       \
    X(void, DoEvents, do_events, (), ())                                                                             \
    X(int, GetUserBreak, get_user_break, (), ())                                                                     \
    X(void, SetUserBreak, set_user_break, (int value), (value))                                                      \
    X(void, Command, command, (int windowHandle, int control, const std::string& text), (windowHandle, control, text)) \
    X(int, FindWindowHandle, find_window_handle, (const std::string& windowClass, const std::string& caption), (windowClass, caption)) \
    X(std::vector<Object>, WindowList, window_list, (), ())                                                          \
    X(std::vector<std::string>, ApplicationList, application_list, (), ())                                           \
    X(std::vector<platform::Process>, ProcessList, process_list, (), ())                                             \
    X(int, GetHandle, get_handle, (const Object& object), (object))                                                  \
    X(WindowFunction, GetFuncptr, get_funcptr, (const Object& window), (window))                                     \
    X(std::string, GetName, get_name, (const Object& object), (object))                                              \
    X(std::string, GetTypeof, get_typeof, (const Object& object), (object))

#define TARN_VALUE_OPERATIONS(X)                                                                                     \
    X(std::string, GetCaption, get_caption, (const Object& object), (object))                                        \
    X(void, SetCaption, set_caption, (const Object& object, std::string_view caption), (object, caption))            \
    X(std::string, GetText, get_text, (const Object& object), (object))                                              \
    X(void, SetText, set_text, (const Object& object, std::string_view text), (object, text))                        \
    X(int, GetTextLength, get_text_length, (const Object& object), (object))                                         \
    X(std::string, GetTokens, get_tokens, (const Object& object), (object))                                          \
    X(void, SetTokens, set_tokens, (const Object& object, std::string_view tokens), (object, tokens))                \
    X(std::string, GetSelText, get_sel_text, (const Object& object), (object))                                       \
    X(void, SetSelText, set_sel_text, (const Object& object, std::string_view text), (object, text))                 \
    X(Selection, GetSelection, get_selection, (const Object& object), (object))                                      \
    X(void, SetSelection, set_selection, (const Object& object, int start, int length), (object, start, length))     \
    X(int, GetValue, get_value, (const Object& object), (object))                                                    \
    X(void, SetValue, set_value, (const Object& object, int value), (object, value))                                 \
    X(bool, GetChecked, get_checked, (const Object& object), (object))                                               \
    X(void, SetChecked, set_checked, (const Object& object, bool checked), (object, checked))                        \
    X(bool, GetModify, get_modify, (const Object& object), (object))                                                 \
    X(void, SetModify, set_modify, (const Object& object, bool modified), (object, modified))                        \
    X(bool, GetReadonly, get_readonly, (const Object& object), (object))                                             \
    X(int, GetMaxLength, get_max_length, (const Object& object), (object))                                           \
    X(void, SetMaxLength, set_max_length, (const Object& object, int length), (object, length))                      \
    X(int, GetPasswordChar, get_password_char, (const Object& object), (object))                                     \
    X(void, SetPasswordChar, set_password_char, (const Object& object, int character), (object, character))          \
    X(std::string, GetCombotext, get_combotext, (const Object& object), (object))                                    \
    X(void, SetCombotext, set_combotext, (const Object& object, std::string_view text), (object, text))              \
    X(int, GetCombostyle, get_combostyle, (const Object& object), (object))                                          \
    X(int, GetMin, get_min, (const Object& object), (object))                                                        \
    X(void, SetMin, set_min, (const Object& object, int value), (object, value))                                     \
    X(int, GetMax, get_max, (const Object& object), (object))                                                        \
    X(void, SetMax, set_max, (const Object& object, int value), (object, value))                                     \
    X(bool, GetEnabled, get_enabled, (const Object& object), (object))                                               \
    X(void, SetEnabled, set_enabled, (const Object& object, bool enabled), (object, enabled))                        \
    X(std::string, GetShortcut, get_shortcut, (const Object& object), (object))                                      \
    X(void, SetShortcut, set_shortcut, (const Object& object, std::string_view keys), (object, keys))                \
    X(std::string, ShortcutName, shortcut_name, (std::string_view keys), (keys))                                     \
    X(int, GetMenulevel, get_menulevel, (const Object& object), (object))                                            \
    X(std::string, GetHint, get_hint, (const Object& object), (object))                                              \
    X(void, SetHint, set_hint, (const Object& object, std::string_view hint), (object, hint))                        \
    X(int, GetFlags, get_flags, (const Object& object), (object))                                                    \
    X(void, SetFlags, set_flags, (const Object& object, int flags), (object, flags))                                 \
    X(int, GetBorderStyle, get_border_style, (const Object& object), (object))                                       \
    X(std::string, GetPicture, get_picture, (const Object& object), (object))                                        \
    X(void, SetPicture, set_picture, (const Object& object, std::string_view picture), (object, picture))            \
    X(void, SetPicture, set_picture_value, (const Object& object, const Picture& picture), (object, picture))

#define TARN_EDIT_OPERATIONS(X)                                                                                      \
    X(std::string, GetTextRange, get_text_range, (const Object& object, int start, int length), (object, start, length)) \
    X(int, GetLooks, get_looks, (const Object& window), (window))                                                    \
    X(void, SetLooks, set_looks, (const Object& window, int looks), (window, looks))                                 \
    X(int, GetTabWidth, get_tab_width, (const Object& window), (window))                                             \
    X(void, SetTabWidth, set_tab_width, (const Object& window, int columns), (window, columns))                      \
    X(int, GetZoom, get_zoom, (const Object& window), (window))                                                      \
    X(void, SetZoom, set_zoom, (const Object& window, int points), (window, points))                                 \
    X(int, GetLineEnds, get_line_ends, (const Object& window), (window))                                             \
    X(void, SetLineEnds, set_line_ends, (const Object& window, int ends), (window, ends))                            \
    X(std::string, GetBlocks, get_blocks, (const Object& window), (window))                                          \
    X(void, SetBlocks, set_blocks, (const Object& window, std::string_view rules), (window, rules))                  \
    X(void, FoldAll, fold_all, (const Object& window, bool folded), (window, folded))                                \
    X(void, ShowChoices, show_choices, (const Object& window, std::string_view rows, int typed), (window, rows, typed)) \
    X(std::string, GetChoices, get_choices, (const Object& window), (window))                                        \
    X(void, ShowCallTip, show_call_tip, (const Object& window, int position, std::string_view text, int markStart, int markLength), (window, position, text, markStart, markLength)) \
    X(std::string, GetCallTip, get_call_tip, (const Object& window), (window))

#define TARN_LIST_OPERATIONS(X)                                                                                      \
    X(int, GetListCount, get_list_count, (const Object& list), (list))                                               \
    X(int, GetListIndex, get_list_index, (const Object& list), (list))                                               \
    X(void, SetListIndex, set_list_index, (const Object& list, int row), (list, row))                                \
    X(std::string, GetList, get_list, (const Object& list, int row), (list, row))                                    \
    X(void, SetList, set_list, (const Object& list, int row, std::string_view text), (list, row, text))              \
    X(void, SetList, set_list_with_picture, (const Object& list, int row, std::string_view text, std::string_view picture), (list, row, text, picture)) \
    X(void, AddItem, add_item, (const Object& list, std::string_view text, std::string_view picture = {}), (list, text, picture)) \
    X(void, AddItem, add_item_at, (const Object& list, int row, std::string_view text, std::string_view picture = {}), (list, row, text, picture)) \
    X(void, RemoveItem, remove_item, (const Object& list, int row), (list, row))                                     \
    X(void, Clear, clear, (const Object& object), (object))                                                          \
    X(std::string, GetArrayValue, get_array_value, (const Object& window, std::string_view name), (window, name))    \
    X(void, SetArrayValue, set_array_value, (const Object& window, std::string_view name, std::string_view value), (window, name, value)) \
    X(std::vector<std::string>, GetArrayValues, get_array_values, (const Object& window, std::string_view pattern), (window, pattern)) \
    X(void, SetArrayValues, set_array_values, (const Object& window, const std::vector<std::string>& values), (window, values))

#define TARN_POSITION_OPERATIONS(X)                                                                                  \
    X(Rect, GetPosition, get_position, (const Object& object, Unit unit), (object, unit))                            \
    X(void, SetPosition, set_position, (const Object& object, Unit unit, const Rect& rect), (object, unit, rect))    \
    X(Rect, GetMinPosition, get_min_position, (const Object& window), (window))                                      \
    X(void, SetMinPosition, set_min_position, (const Object& window, const Rect& rect), (window, rect))              \
    X(Rect, GetMaxPosition, get_max_position, (const Object& window), (window))                                      \
    X(void, SetMaxPosition, set_max_position, (const Object& window, const Rect& rect), (window, rect))              \
    X(int, WindowWidth, window_width, (const Object& object), (object))                                              \
    X(int, WindowHeight, window_height, (const Object& object), (object))                                            \
    X(int, GetPageWidth, get_page_width, (const Object& object), (object))                                           \
    X(int, GetPageHeight, get_page_height, (const Object& object), (object))                                         \
    X(void, AlignItems, align_items, (const Object& window), (window))                                               \
    X(int, GetDpiX, get_dpi_x, (const Object& object), (object))                                                     \
    X(int, GetDpiY, get_dpi_y, (const Object& object), (object))                                                     \
    X(int, TextWidth, text_width, (const Object& window, std::string_view text), (window, text))                     \
    X(int, TextHeight, text_height, (const Object& window, std::string_view text), (window, text))                   \
    X(Rect, TrackRect, track_rect, (const Object& window, TrackMode mode, const TrackLimits& limits, const Rect& bounds, const Rect& rect), (window, mode, limits, bounds, rect))

#define TARN_ARRAY_OPERATIONS(X)                                                                                     \
    X(std::string, Controlarray, controlarray, (const Object& element), (element))                                   \
    X(int, Controlarraypos, controlarraypos, (const Object& element), (element))                                     \
    X(int, ControlLbound, control_lbound, (const Object& element), (element))                                        \
    X(int, ControlUbound, control_ubound, (const Object& element), (element))                                        \
    X(std::vector<Object>, ControlList, control_list, (const Object& window), (window))                              \
    X(Object, Controlselection, controlselection, (const Object& element), (element))                                \
    X(int, Controlselectionpos, controlselectionpos, (const Object& element), (element))                             \
    X(void, AddMenuitem, add_menuitem, (const Object& after, std::string_view caption), (after, caption))            \
    X(void, AddMenuitems, add_menuitems, (const Object& after, std::string_view captions), (after, captions))        \
    X(void, RemoveMenuitem, remove_menuitem, (const Object& item), (item))                                           \
    X(void, RemoveMenuitems, remove_menuitems, (const Object& first, const Object& last), (first, last))

#define TARN_LOOK_OPERATIONS(X)                                                                                      \
    X(std::string, GetFontName, get_font_name, (const Object& object), (object))                                     \
    X(void, SetFontName, set_font_name, (const Object& object, std::string_view name), (object, name))               \
    X(int, GetFontSize, get_font_size, (const Object& object), (object))                                             \
    X(void, SetFontSize, set_font_size, (const Object& object, int points), (object, points))                        \
    X(bool, GetFontBold, get_font_bold, (const Object& object), (object))                                            \
    X(void, SetFontBold, set_font_bold, (const Object& object, bool bold), (object, bold))                           \
    X(bool, GetFontItalic, get_font_italic, (const Object& object), (object))                                        \
    X(void, SetFontItalic, set_font_italic, (const Object& object, bool italic), (object, italic))                   \
    X(int, GetForeColour, get_fore_colour, (const Object& object), (object))                                         \
    X(void, SetForeColour, set_fore_colour, (const Object& object, int colour), (object, colour))                    \
    X(int, GetBackColour, get_back_colour, (const Object& object), (object))                                         \
    X(void, SetBackColour, set_back_colour, (const Object& object, int colour), (object, colour))

#define TARN_DRAWING_OPERATIONS(X)                                                                                   \
    X(void, StartGraph, start_graph, (const Object& object, int x = 0, int y = 0), (object, x, y))                   \
    X(void, EndGraph, end_graph, (const Object& object), (object))                                                   \
    X(void, DrawLine, draw_line, (const Object& object, int x1, int y1, int x2, int y2), (object, x1, y1, x2, y2))   \
    X(void, DrawPoint, draw_point, (const Object& object, int x, int y), (object, x, y))                             \
    X(void, DrawShape, draw_shape, (const Object& object, ShapeKind kind, int x, int y, int w, int h), (object, kind, x, y, w, h)) \
    X(void, DrawTextstr, draw_textstr, (const Object& object, std::string_view text), (object, text))                \
    X(void, DrawPicture, draw_picture, (const Object& object, std::string_view picture, int x, int y, int w = 0, int h = 0), (object, picture, x, y, w, h)) \
    X(void, DrawPicture, draw_picture_value, (const Object& object, const Picture& picture, int x, int y, int w = 0, int h = 0), (object, picture, x, y, w, h)) \
    X(void, DrawWindow, draw_window, (const Object& object, const Object& window), (object, window))                 \
    X(void, DrawControl, draw_control, (const Object& object, std::string_view properties, int x, int y, int w, int h), (object, properties, x, y, w, h)) \
    X(int, GetCurrentX, get_current_x, (const Object& object), (object))                                             \
    X(void, SetCurrentX, set_current_x, (const Object& object, int x), (object, x))                                  \
    X(int, GetCurrentY, get_current_y, (const Object& object), (object))                                             \
    X(void, SetCurrentY, set_current_y, (const Object& object, int y), (object, y))                                  \
    X(Picture, LoadPicture, load_picture, (std::string_view name), (name))                                           \
    X(void, SavePicture, save_picture, (const Picture& picture, const std::string& file), (picture, file))           \
    X(int, PictureWidth, picture_width, (const Picture& picture), (picture))                                         \
    X(int, PictureHeight, picture_height, (const Picture& picture), (picture))                                       \
    X(Picture, GetBitmapInfo, get_bitmap_info, (int handle), (handle))                                               \
    X(Picture, TBITMAP, tbitmap, (int width, int height, std::string_view text, std::string_view iconFile), (width, height, text, iconFile)) \
    X(std::string, PictureName, picture_name, (const Picture& picture), (picture))                                   \
    X(std::vector<Object>, PrinterList, printer_list, (), ())                                                        \
    X(void, StartPrint, start_print, (const Object& printer), (printer))                                             \
    X(void, EndPrint, end_print, (const Object& printer), (printer))                                                 \
    X(void, NewPage, new_page, (const Object& printer), (printer))                                                   \
    X(int, GetPage, get_page, (const Object& printer), (printer))                                                    \
    X(int, GetPrinterStatus, get_printer_status, (const Object& printer), (printer))                                 \
    X(int, GetPhysicalWidth, get_physical_width, (const Object& printer), (printer))                                 \
    X(int, GetPhysicalHeight, get_physical_height, (const Object& printer), (printer))                               \
    X(int, GetPhysicalOffsetX, get_physical_offset_x, (const Object& printer), (printer))                            \
    X(int, GetPhysicalOffsetY, get_physical_offset_y, (const Object& printer), (printer))

#define TARN_DIALOG_OPERATIONS(X)                                                                                    \
    X(std::string, MsgBox, msg_box, (const std::string& title, const std::string& text, const std::string& buttons, BoxIcon icon = BoxIcon::None, int defaultButton = 1), (title, text, buttons, icon, defaultButton)) \
    X(int, MsgBoxEx, msg_box_ex, (const std::string& title, const std::string& text, int flags), (title, text, flags)) \
    X(std::string, InputBox, input_box, (const std::string& title, const std::string& prompt, const std::string& value), (title, prompt, value)) \
    X(std::string, ListBox, list_box, (const std::string& title, const std::string& prompt, const std::string& rows), (title, prompt, rows)) \
    X(std::string, OpenFileDialog, open_file_dialog, (const std::string& title, const std::string& start, const std::string& filter), (title, start, filter)) \
    X(std::string, SaveAsDialog, save_as_dialog, (const std::string& title, const std::string& start, const std::string& filter), (title, start, filter)) \
    X(std::string, OpenFolderDialog, open_folder_dialog, (const std::string& title, const std::string& start), (title, start)) \
    X(Font, FontDialog, font_dialog, (const Object& owner, const Font& font), (owner, font))                         \
    X(int, ColourDialog, colour_dialog, (const Object& owner, int colour), (owner, colour))                          \
    X(PrintChoice, PrintDialog, print_dialog, (const Object& owner, int flags), (owner, flags))                      \
    X(bool, HtmlHelpApi, html_help_api, (const std::string& file, const std::string& key), (file, key))

#define TARN_SYSTEM_OPERATIONS(X)                                                                                    \
    X(void, Sound, sound, (), ())                                                                                    \
    X(std::string, SystemInfo, system_info, (), ())                                                                  \
    X(std::int64_t, DiskSpace, disk_space, (const std::string& folder), (folder))                                    \
    X(void, AppIcon, app_icon, (const std::string& file), (file))                                                    \
    X(void, SetTrace, set_trace, (int mode), (mode))                                                                 \
    X(void, RaiseGuiRtx, raise_gui_rtx, (platform::Code code), (code))                                               \
    X(bool, RegKeyExists, reg_key_exists, (const std::string& key), (key))                                           \
    X(std::string, RegGetSetting, reg_get_setting, (const std::string& key, const std::string& name), (key, name))   \
    X(std::string, RegSaveSetting, reg_save_setting, (const std::string& key, const std::string& name, const std::string& value), (key, name, value)) \
    X(std::string, RegDeleteSetting, reg_delete_setting, (const std::string& key, const std::string& name), (key, name)) \
    X(std::string, RegGetAllSections, reg_get_all_sections, (const std::string& key), (key))                         \
    X(std::string, RegGetAllSettings, reg_get_all_settings, (const std::string& key), (key))                         \
    X(RegInfo, RegGetSettingInfo, reg_get_setting_info, (const std::string& key, const std::string& name), (key, name)) \
    X(int, CommOpen, comm_open, (const std::string& port, const std::string& settings), (port, settings))            \
    X(void, CommClose, comm_close, (int handle), (handle))                                                           \
    X(void, CommFlush, comm_flush, (int handle), (handle))                                                           \
    X(int, CommGetError, comm_get_error, (int handle), (handle))                                                     \
    X(CommTimeouts, CommGetTimeouts, comm_get_timeouts, (int handle), (handle))                                      \
    X(void, CommSetTimeouts, comm_set_timeouts, (int handle, const CommTimeouts& timeouts), (handle, timeouts))      \
    X(int, CommReadByte, comm_read_byte, (int handle), (handle))                                                     \
    X(std::string, CommReadString, comm_read_string, (int handle, int most), (handle, most))                         \
    X(void, CommWriteByte, comm_write_byte, (int handle, int byte), (handle, byte))                                  \
    X(void, CommWriteString, comm_write_string, (int handle, std::string_view bytes), (handle, bytes))

#define TARN_WINDOW_OPERATIONS(X)                                                                                    \
    TARN_LIFE_OPERATIONS(X)                                                                                          \
    TARN_VALUE_OPERATIONS(X)                                                                                         \
    TARN_EDIT_OPERATIONS(X)                                                                                          \
    TARN_LIST_OPERATIONS(X)                                                                                          \
    TARN_POSITION_OPERATIONS(X)                                                                                      \
    TARN_ARRAY_OPERATIONS(X)                                                                                         \
    TARN_LOOK_OPERATIONS(X)                                                                                          \
    TARN_DRAWING_OPERATIONS(X)                                                                                       \
    TARN_DIALOG_OPERATIONS(X)                                                                                        \
    TARN_SYSTEM_OPERATIONS(X)
// clang-format on
