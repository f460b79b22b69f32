// SPDX-License-Identifier: Apache-2.0
//
// The list of library functions that programs call as they are: one line each, with its result, its name, the word
// that tells it from its other forms, its parameters and the arguments that hand them on, as in
// kernel/windows/operations.h. What each of them does is told in the header of its family. Those that show a window
// or reach one stand apart: events are handled meanwhile.
#pragma once

// clang-format off
#define TARN_LIBRARY_FUNCTIONS(X)                                                                                    \
    X(std::int32_t, NEG, neg_integer, (std::int32_t n), (n))                                                         \
    X(FixedValue, NEG, neg_fixed, (FixedValue n), (n))                                                               \
    X(double, NEG, neg_real, (double n), (n))                                                                        \
    X(bool, ISBETWEEN, isbetween_integer, (std::int32_t n, std::int32_t lower, std::int32_t upper), (n, lower, upper))\
    X(bool, ISBETWEEN, isbetween_fixed, (FixedValue n, FixedValue lower, FixedValue upper), (n, lower, upper))       \
    X(std::int32_t, LOBYTE, lobyte, (std::int32_t n), (n))                                                           \
    X(std::int32_t, HIBYTE, hibyte, (std::int32_t n), (n))                                                           \
    X(std::int32_t, RGB, rgb, (std::int32_t red, std::int32_t green, std::int32_t blue), (red, green, blue))         \
    X(std::int32_t, GETRVALUE, getrvalue, (std::int32_t colour), (colour))                                           \
    X(std::int32_t, GETGVALUE, getgvalue, (std::int32_t colour), (colour))                                           \
    X(std::int32_t, GETBVALUE, getbvalue, (std::int32_t colour), (colour))                                           \
    X(bool, SUCCEEDED, succeeded, (std::int32_t number), (number))                                                   \
    X(bool, CVTB, cvtb_integer, (std::int32_t n), (n))                                                               \
    X(bool, CVTB, cvtb_fixed, (FixedValue n), (n))                                                                   \
    X(bool, CVTB, cvtb_real, (double n), (n))                                                                        \
    X(bool, CVTB, cvtb_string, (std::string_view text), (text))                                                      \
    X(std::string, HEXSTR, hexstr, (std::int32_t value, std::int32_t width), (value, width))                         \
    X(std::uint32_t, HEXVAL, hexval, (std::string_view text), (text))                                                \
    X(std::string, STRLTRIMCRLF, strltrimcrlf, (std::string_view text), (text))                                      \
    X(std::string, STRRTRIMCRLF, strrtrimcrlf, (std::string_view text), (text))                                      \
    X(std::string, STRNL2CRNL, strnl2crnl, (std::string_view text), (text))                                          \
    X(std::string, STRADDQUOTES, straddquotes, (std::string_view text), (text))                                      \
    X(std::string, STRREMOVEQUOTES, strremovequotes, (std::string_view text), (text))                                \
    X(std::string, STRNAMECASE, strnamecase, (std::string_view text), (text))                                        \
    X(bool, STREQUAL, strequal, (std::string_view a, std::string_view b), (a, b))                                    \
    X(bool, ISDIGITS, isdigits, (std::string_view text), (text))                                                     \
    X(std::string, KEYSTR, keystr, (std::int32_t keyCode), (keyCode))                                                \
    X(std::int32_t, STRWORDCOUNT, strwordcount, (std::string_view text), (text))                                     \
    X(std::string, STRWORD, strword, (std::string_view text, std::int32_t n), (text, n))                             \
    X(std::int32_t, STRTOKENCOUNT, strtokencount, (std::string_view text), (text))                                   \
    X(std::string, STRTOKEN, strtoken, (std::string_view text, std::int32_t n), (text, n))                           \
    X(std::string, FILEGETDRIVE, filegetdrive, (std::string_view path), (path))                                      \
    X(std::string, FILEGETDIR, filegetdir, (std::string_view path), (path))                                          \
    X(std::string, FILEGETFNAME, filegetfname, (std::string_view path), (path))                                      \
    X(std::string, FILEGETEXT, filegetext, (std::string_view path), (path))                                          \
    X(std::string, FILEBASENAME, filebasename, (std::string_view path), (path))                                      \
    X(std::string, FILECHANGEEXT, filechangeext, (std::string_view path, std::string_view extension), (path, extension))\
    X(bool, DIRCHK, dirchk, (std::string_view path), (path))                                                         \
    X(bool, FILECHK, filechk, (std::string_view path), (path))                                                       \
    X(std::string, FILEADDSEPARATOR, fileaddseparator, (std::string_view directory), (directory))                    \
    X(std::string, FILETIME, filetime, (const std::string& path), (path))                                            \
    X(std::string, GETCURDIR, getcurdir, (), ())                                                                     \
    X(void, SETCURDIR, setcurdir, (const std::string& directory), (directory))                                       \
    X(std::string, FILEFINDPATHNAME, filefindpathname, (std::string_view paths, std::string_view name), (paths, name))\
    X(void, FILEDELETE, filedelete, (const std::string& path), (path))                                               \
    X(bool, FILECREATESHORTCUT, filecreateshortcut, (const std::string& shortcut, const std::string& target), (shortcut, target))\
    X(bool, FILECREATESHORTCUT, filecreateshortcut_with, (const std::string& shortcut, const std::string& target, const std::string& arguments), (shortcut, target, arguments))\
    X(std::string, REGGETBROWSER, reggetbrowser, (), ())                                                             \
    X(std::string, REGGETCURRENTVERSION, reggetcurrentversion, (const std::string& name), (name))                    \
    X(std::string, APPRESOURCEFILE, appresourcefile, (), ())                                                         \
    X(std::string, LITERALTOBYTESTRING, literaltobytestring, (std::string_view text), (text))                        \
    X(std::string, RGBTOSTR, rgbtostr, (std::int32_t colour), (colour))                                              \
    X(std::string, RGBTOHEXSTR, rgbtohexstr, (std::int32_t colour), (colour))                                        \
    X(bool, ISMAPIINSTALLED, ismapiinstalled, (), ())                                                                \
    X(std::string, MAPIPROVIDERS, mapiproviders, (), ())                                                             \
    X(std::string, URLESCAPE, urlescape, (std::string_view text), (text))                                            \
    X(std::string, ERRORMESSAGE_SHELLEXECUTE, errormessage_shellexecute, (std::int32_t code), (code))                \
    X(bool, ISRESERVEDWORD, isreservedword, (std::string_view word), (word))                                         \
    X(bool, ISFUTURERESERVEDWORD, isfuturereservedword, (std::string_view word), (word))                             \
    X(std::string, STRTOIDENTIFIER, strtoidentifier_length, (std::string_view text, std::int32_t maxLength, std::string_view replacement), (text, maxLength, replacement))\
    X(std::string, STRTOIDENTIFIER, strtoidentifier_set, (std::string_view text, std::string_view firstSet, std::string_view replacement), (text, firstSet, replacement))\
    X(std::string, TYPEINFOFIXIDENTIFIERS, typeinfofixidentifiers, (std::string_view text, std::string_view replacement), (text, replacement))\
    X(std::string, PROFILESTRGET, profilestrget, (const std::string& path, std::string_view section, std::string_view key), (path, section, key))\
    X(std::int32_t, PROFILESTRGETINT, profilestrgetint, (const std::string& path, std::string_view section, std::string_view key), (path, section, key))\
    X(std::string, PROFILESTRKEYS, profilestrkeys, (const std::string& path, std::string_view section), (path, section))\
    X(std::string, PROFILESTRSECTIONS, profilestrsections, (const std::string& path), (path))                        \
    X(void, PROFILESTRPUT, profilestrput, (const std::string& path, std::string_view section, std::string_view key, std::string_view value), (path, section, key, value))\
    X(void, PROFILESTRDEL, profilestrdel, (const std::string& path, std::string_view section, std::string_view key), (path, section, key))\
    X(std::string, FORMATTIME, formattime, (std::string_view text, std::string_view pattern), (text, pattern))       \
    X(bool, ISGREGORIANLEAPYEAR, isgregorianleapyear, (std::int32_t year), (year))                                   \
    X(bool, ISDATEVALID, isdatevalid, (std::int32_t year, std::int32_t month, std::int32_t day), (year, month, day)) \
    X(bool, ISDATESTRVALID, isdatestrvalid, (std::string_view text), (text))                                         \
    X(std::string, TIMEMAKEFULLSTR, timemakefullstr, (std::string_view text), (text))                                \
    X(bool, CVTB, cvtb_enum, (std::uint8_t value), (value))                                                          \
    X(FixedValue, CVTF, cvtf_boolean, (bool value), (value))                                                         \
    X(double, CVTR, cvtr_boolean, (bool value), (value))                                                             \
    X(double, CVTR, cvtr_enum, (std::uint8_t value), (value))                                                        \
    X(double, CVTR, cvtr_integer, (std::int32_t n), (n))                                                             \
    X(std::string, STR, str_text, (std::string_view text), (text))                                                   \
    X(std::string, STR, str_boolean_integer, (bool value, std::int32_t format), (value, format))                     \
    X(std::string, STR, str_boolean_fixed, (bool value, FixedValue format), (value, format))                         \
    X(std::string, STR, str_boolean_real, (bool value, double format), (value, format))                              \
    X(std::string, STR, str_boolean_text, (bool value, std::string_view format), (value, format))                    \
    X(std::string, STR, str_enum_integer, (std::uint8_t value, std::int32_t format), (value, format))                \
    X(std::string, STR, str_enum_fixed, (std::uint8_t value, FixedValue format), (value, format))                    \
    X(std::string, STR, str_enum_real, (std::uint8_t value, double format), (value, format))                         \
    X(std::string, STR, str_enum_text, (std::uint8_t value, std::string_view format), (value, format))               \
    X(std::string, STR, str_text_integer, (std::string_view text, std::int32_t format), (text, format))              \
    X(std::string, STR, str_text_fixed, (std::string_view text, FixedValue format), (text, format))                  \
    X(std::string, STR, str_text_real, (std::string_view text, double format), (text, format))                       \
    X(std::string, STR, str_text_text, (std::string_view text, std::string_view format), (text, format))             \
    X(std::string, STR, str_fixed_real, (FixedValue n, double format), (n, format))                                  \
    X(std::string, STR, str_fixed_text, (FixedValue n, std::string_view format), (n, format))                        \
    X(std::string, STR, str_real_real, (double n, double format), (n, format))                                       \
    X(std::string, STR, str_real_text, (double n, std::string_view format), (n, format))                             \
    X(std::string, HEXSTR, hexstr_boolean_plain, (bool value), (value))                                              \
    X(std::string, HEXSTR, hexstr_boolean, (bool value, std::int32_t width), (value, width))                         \
    X(std::string, HEXSTR, hexstr_enum_plain, (std::uint8_t value), (value))                                         \
    X(std::string, HEXSTR, hexstr_enum, (std::uint8_t value, std::int32_t width), (value, width))                    \
    X(std::string, HEXSTR, hexstr_integer_plain, (std::int32_t value), (value))                                      \
    X(std::string, HEXSTR, hexstr_fixed_plain, (FixedValue value), (value))                                          \
    X(std::string, HEXSTR, hexstr_fixed, (FixedValue value, std::int32_t width), (value, width))                     \
    X(std::string, HEXSTR, hexstr_text, (std::string_view text), (text))                                             \
    X(void, SETVALUE, setvalue, (std::string_view text, SetDescriptor* s), (text, s))                                \
    X(std::string, STRREPLACE, strreplace_all, (std::string_view text, std::string_view what, std::string_view instead), (text, what, instead)) \
    X(std::string, STRREPLACE, strreplace_case, (std::string_view text, std::string_view what, std::string_view instead, bool ignorecase), (text, what, instead, ignorecase)) \
    X(std::string, STRREPLACE, strreplace_from, (std::string_view text, std::string_view what, std::string_view instead, bool ignorecase, std::int32_t first), (text, what, instead, ignorecase, first)) \
    X(std::string, STRREPLACE, strreplace_most, (std::string_view text, std::string_view what, std::string_view instead, bool ignorecase, std::int32_t first, std::int32_t most), (text, what, instead, ignorecase, first, most)) \
    X(std::vector<std::string>, STRSPLIT, strsplit_parts, (std::string_view text, std::string_view separator, std::int32_t most), (text, separator, most)) \
    X(void, STRSPLIT, strsplit_list, (std::string_view text, std::string_view separator, std::int32_t most, ListDescriptor* parts), (text, separator, most, parts)) \
    X(bool, FILECREATESHORTCUT, filecreateshortcut_whole, (const std::string& shortcut, const std::string& target, const std::string& arguments, const std::string& folder, const std::string& icon), (shortcut, target, arguments, folder, icon)) \
    X(RegInfo, REGGETSETTINGINFO, reggetsettinginfo_key, (const std::string& key), (key))                            \
    X(std::string, GETAPPLICATIONCOMPATIBILITYFLAGS, getapplicationcompatibilityflags, (const std::string& path), (path)) \
    X(bool, IS_RESOURCE_MEMORY_OPTS, is_resource_memory_opts, (const std::string& word), (word))                     \
    X(std::string, RESOURCEGETFILENAME, resourcegetfilename, (const std::string& path, const std::string& kind, const std::string& name), (path, kind, name)) \
    X(std::string, TYPEINFOFIXIDENTIFIERS, typeinfofixidentifiers_length, (std::string_view text, std::int32_t maxLength), (text, maxLength)) \
    X(std::string, TYPEINFOFIXIDENTIFIERS, typeinfofixidentifiers_drop, (std::string_view text, std::int32_t maxLength, bool dropDeleteFlag), (text, maxLength, dropDeleteFlag)) \
    X(void, TYPEINFOFIXIDENTIFIERS, typeinfofixidentifiers_list, (ListDescriptor* lines, std::int32_t maxLength, bool dropDeleteFlag), (lines, maxLength, dropDeleteFlag)) \
    X(std::int32_t, TIMEGETDAYNUMBER, timegetdaynumber, (std::string_view text), (text))                             \
    X(std::string, TIMEDAYNUMBERTOSTR, timedaynumbertostr, (std::int32_t n), (n))

#define TARN_LIBRARY_WINDOW_FUNCTIONS(X)                                                                             \
    X(Object, ACTIVEWINDOW, activewindow, (), ())                                                                    \
    X(Object, FINDCONTROL, findcontrol, (const Object& window, std::string_view name), (window, name))               \
    X(Object, FINDCONTROL, findcontrol_place, (const Object& window, std::string_view array, std::int32_t place), (window, array, place))\
    X(Object, FINDWINDOW, findwindow, (std::string_view name), (name))                                               \
    X(Object, FINDWINDOW, findwindow_handle, (std::int32_t handle), (handle))                                        \
    X(std::int32_t, FINDWINDOWHANDLE, findwindowhandle, (const std::string& caption), (caption))                     \
    X(void, AddItem, additem_text, (const Object& list, std::string_view text), (list, text))                        \
    X(void, AddItem, additem_text_at, (const Object& list, std::int32_t row, std::string_view text), (list, row, text)) \
    X(Object, IIF, iif_object, (bool condition, const Object& yes, const Object& no), (condition, yes, no))          \
    X(void, MSGBOX, msgbox_text, (const std::string& text), (text))                                                  \
    X(std::string, MSGBOX, msgbox_buttons, (const std::string& title, const std::string& text, const std::string& buttons), (title, text, buttons))\
    X(std::string, MSGBOX, msgbox_icon, (const std::string& title, const std::string& text, const std::string& buttons, BoxIcon icon), (title, text, buttons, icon)) \
    X(std::int32_t, MSGBOX, msgbox_flags, (const std::string& title, const std::string& text, std::int32_t flags), (title, text, flags)) \
    X(std::string, INPUTBOX, inputbox, (const std::string& title, const std::string& prompt), (title, prompt))       \
    X(PrintChoice, PRINTDIALOG, printdialog, (const Object& owner), (owner))                                         \
    X(void, ADJUSTCONTROLPOS, adjustcontrolpos, (const Object& window, const Object& control, const Rect& before), (window, control, before)) \
    X(bool, FILECOPY, filecopy_plain, (const std::string& source, const std::string& dest), (source, dest))          \
    X(bool, WAITFORSINGLEOBJECT_MSG, waitforsingleobject_msg, (std::int32_t process, std::int32_t milliseconds), (process, milliseconds)) \
    X(std::string, PRINTERS, printers, (), ())                                                                       \
    X(bool, SETTIMER, settimer, (const Object& window, std::int32_t milliseconds), (window, milliseconds))           \
    X(bool, SETTIMER, settimer_number, (const Object& window, std::int32_t number, std::int32_t milliseconds), (window, number, milliseconds))\
    X(bool, KILLTIMER, killtimer, (const Object& window), (window))                                                  \
    X(bool, KILLTIMER, killtimer_number, (const Object& window, std::int32_t number), (window, number))              \
    X(void, POSTMESSAGE, postmessage, (const Object& object, std::int32_t event, std::int32_t parameter), (object, event, parameter))\
    X(void, SETWINDOWPOS, setwindowpos, (const Object& window, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height), (window, x, y, width, height))\
    X(void, STARTGRAPH, startgraph_all, (const Object& object), (object))                                            \
    X(bool, FILECOPY, filecopy, (const std::string& source, const std::string& dest, bool confirm), (source, dest, confirm))\
    X(void, OPENBROWSER, openbrowser, (std::int32_t owner, const std::string& url), (owner, url))                    \
    X(void, EMAIL_MAILTO, email_mailto, (std::int32_t owner, std::int32_t flags, const std::string& address, const std::string& subject, const std::string& attachment, const std::string& body), (owner, flags, address, subject, attachment, body)) \
    X(void, EMAIL_POSTRUN, email_postrun, (const std::string& provider, std::int32_t flags, const std::string& address, const std::string& subject, const std::string& attachment, const std::string& body), (provider, flags, address, subject, attachment, body)) \
    X(void, MULTIHELP, multihelp, (std::int32_t owner, const std::string& helpFile, std::int32_t command, const std::string& topic), (owner, helpFile, command, topic))\
    X(void, LOADINIFILE, loadinifile, (const std::string& path, const Object& window, bool withPosition, bool withFont), (path, window, withPosition, withFont))\
    X(void, SAVEINIFILE, saveinifile, (const std::string& path, const Object& window, bool withPosition, bool withFont), (path, window, withPosition, withFont))
// clang-format on
