// SPDX-License-Identifier: Apache-2.0
//
// The library's named constants and predefined objects. Those of run-time errors stand in kernel/run/errors.h,
// those of events and of the keys of windows come with the windowing operations.
#pragma once

#include "kernel/run/errors.h"
#include "kernel/values/owned.h"
#include "kernel/windows/resources.h"
#include "kernel/windows/windowing.h"

#include <cstdint>
#include <string_view>

namespace tarn {

// ---- colours: blue in the high byte, red in the low one; RGB makes others ----
inline constexpr int BLACK = 0x000000;
inline constexpr int DARKBLUE = 0x800000;
inline constexpr int DARKGREEN = 0x008000;
inline constexpr int DARKCYAN = 0x808000;
inline constexpr int DARKRED = 0x000080;
inline constexpr int DARKMAGENTA = 0x800080;
inline constexpr int DARKYELLOW = 0x008080;
inline constexpr int DARKGREY = 0x808080;
inline constexpr int LIGHTGREY = 0xC0C0C0;
inline constexpr int LIGHTBLUE = 0xFF0000;
inline constexpr int LIGHTGREEN = 0x00FF00;
inline constexpr int LIGHTCYAN = 0xFFFF00;
inline constexpr int LIGHTRED = 0x0000FF;
inline constexpr int LIGHTMAGENTA = 0xFF00FF;
inline constexpr int LIGHTYELLOW = 0x00FFFF;
inline constexpr int WHITE = 0xFFFFFF;

// ---- keys that KEYSTR names, beside those of windows ----
inline constexpr int KEY_PAGEUP = 0x21, KEY_PAGEDOWN = 0x22, KEY_END = 0x23, KEY_HOME = 0x24;
inline constexpr int KEY_F12 = 0x7B;                            // F1 to F12 follow each other
inline constexpr int KEY_CTRL_A = 0x1141, KEY_CTRL_Z = 0x115A;  // and so do the letters

// ---- limits; MAX_CONTROLS, 255, is that of a window ----
inline constexpr int MAX_NAME = 255;   // characters of a file's or a column's name
inline constexpr int MAX_LINE = 1024;  // characters of a row or of one line of input
inline constexpr std::int32_t MAX_INTEGER = 0x7FFFFFFF;

// ---- extensions that the library knows ----
inline constexpr std::string_view EXT_BAK = ".bak", EXT_BIN = ".bin", EXT_BMP = ".bmp", EXT_CHM = ".chm",
                                  EXT_CSV = ".csv", EXT_DBF = ".dbf", EXT_EXE = ".exe", EXT_HLP = ".hlp",
                                  EXT_HTM = ".htm", EXT_HTML = ".html", EXT_ICO = ".ico",
                                  EXT_MANIFEST = ".manifest", EXT_RC = ".rc", EXT_RCX = ".rcx",
                                  EXT_LNK = ".lnk", EXT_LNTMP = ".ln~", EXT_SYM = ".sym", EXT_SYN = ".syn",
                                  EXT_TAB = ".tab", EXT_TXT = ".txt", EXT_WAV = ".wav", EXT_XBF = ".xbf",
                                  EXT_XHTML = ".xhtml", EXT_XML = ".xml", EXT_ZIP = ".zip";
inline constexpr std::string_view NULLWORD = "NULL";  // a value that a database does not have

// The characters of ASCII that may stand in a file name; see FILENAMECHAR for other bytes.
inline constexpr std::string_view FILENAMECHARS =
    " !#$%&'()+,-.0123456789;=@ABCDEFGHIJKLMNOPQRSTUVWXYZ[]^_`abcdefghijklmnopqrstuvwxyz{}~";
inline constexpr std::int32_t FirstNameChar = 32, LastNameChar = 126;
OwnedSet FILENAMESET();  // the same as a set of the language, with the bounds 32 to 126

// ---- the objects that every program has ----
inline const Object printer = Sysprinter, screen = Sysscreen, clipboard = Sysclipboard;
// The object of one of these words, in any case; empty for any other word.
Object PREDEFINEDOBJECT(std::string_view word);

}  // namespace tarn
