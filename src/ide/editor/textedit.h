// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Code window: one top-level edit window that shows one file at a time. Its caption is the document's name: "" no
// file, "<untitled>" a new one, else a full path, with " *" behind it while the text is changed. A file's bytes reach
// the disk again as they came unless they were edited; a save that fails leaves the old file whole and the text in the
// window.
//
// Lines count from 1, sizes are bytes. Cost: linear in the text where a line is looked for or a text is given; else that
// of a few windowing operations.
#pragma once

#include "kernel/windows/windowing.h"

#include <cstdint>
#include <string>

namespace tarn {

bool SDIEDIT(const Object& window, int event, const Object& control, int parameter);

void EDITWNDNEW(const Object& window, const std::string& text);
// Loads and shows; selects `line` unless it is 0. `reload`: a changed copy of the same file is asked about
// and read again.
void EDITWNDOPEN(const Object& window, const std::string& file, bool reload, int line);
// Shows a line without a question and without coming forward: for who follows a program that the user looks at. False
// where that cannot be: another text has changes, the file cannot be read, or has no such line.
bool EDITWNDFOLLOW(const Object& window, const std::string& file, int line);
void EDITWNDSAVE(const Object& window, bool saveAs);
// Asks about changes and empties the window. A window that still has a name afterwards was kept by the user.
void EDITWNDCLOSE(const Object& window, bool hide);
std::string EDITWNDGETFILENAME(const Object& window);
// Gives the window another name, without a mark; whoever sets the caption itself leaves the mark undecided.
void EDITWNDSETFILENAME(const Object& window, const std::string& name);
int EDITWNDGETMAXLENGTH(const Object& window);  // bytes; 0 if it is no edit window

// Gives the window another text by one edit that can be undone: the caret stays where it is, and only lines that differ
// are replaced.
void EDITWNDCHANGETEXT(const Object& window, const std::string& text);
// Whether the text may grow by so many bytes. If not, a sound and a word in the status bar until the next change: what is
// larger than the largest text could be saved and not be opened again. For commands that put text in; what the user
// types and pastes by keys is refused by the control.
bool EDITWNDHASROOM(const Object& window, std::int64_t bytes);
// The window shows what stands in its file.
void EDITWNDNOTELOADED(const Object& window, const std::string& file);

void EDITWNDSETSTATUS(const Object& window, bool on);
void EDITWNDSETNUMBERS(const Object& window, bool on);
void EDITWNDSETAUTOINDENT(const Object& window, bool on);
// The private mark: the text was changed since the last backup (backup.h), whether it was saved or not.
bool GETMODIFYPRIVATE(const Object& window);
void SETMODIFYPRIVATE(const Object& window, bool modified);
std::string FLAGSTOSTR(int flags);  // the names of an edit control's flags, such as "autoindent hilite"
int GETTOKENLEVEL();                // by the settings: 1 words are highlighted, 0 not
// Highlighting and blocks for the language of the window's file; any level but 1: no highlighting.
void EDITWNDSETTOKENS(const Object& window, int level);
void EDITWNDSELECTLINES(const Object& window);           // the whole lines of the selection, if there is one
void EDITWNDSELECTLINE(const Object& window, int line);  // beeps if the text does not have it
// Full screen as in the settings; else the window stays below the main window. Nothing for other kinds of windows.
void EDITWNDSETMAXSIZE(const Object& window, const Object& mainWindow);
void DRAWMODIFYINDICATOR(const Object& window);  // the " *" of the caption, as the text is changed or not
void INITFILE(const Object& window);             // no file, no text, no marks

// A file that cannot be read or written is told in a box; the text stays where it was and the program goes on.
void TEXTEDIT_ONERROR(std::int32_t code);

}  // namespace tarn
