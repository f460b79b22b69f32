// SPDX-License-Identifier: Apache-2.0
//
// The program family of the system library: other programs, the browser, help files, the registry and the
// resources of programs. Programs are started with lists of arguments, never through a shell, so that no
// character of an argument means anything to anybody but the program.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <vector>

namespace tarn {

// ---- running programs ----

struct ExecResult {
    bool started = false, stopped = false;  // stopped: by the user
    int code = 0, signal = 0;
    int process = 0;  // its number, for WAITFORSINGLEOBJECT_MSG
};
// Files in place of the standard input (empty: nothing is read) and of the standard output and error (empty:
// those of this program).
struct ExecFiles {
    std::string input, output;
};

// Runs a program in `folder`; an empty one is the current folder. `mode`: low four bits the window state; then
// 0 disable the windows and wait, 32 wait with the windows enabled, 16 and any other wait at most 5000 ms
// until the program waits for its user. A tool that is waited for can be stopped by the user. One that dies by
// a signal counts as failed: its code is then 128 + the signal; and one that cannot even be forced to end
// counts as killed.
//
// `arguments` is a line as SPLITARGUMENTS reads it. Behind the arguments " > file" sends the output to that
// file and " < file" reads the input from it, each once and in either order; in quotes both are characters. A
// program with a folder is taken from there, one without is sought on PATH; `x.exe` is also found as `x`.
//
//   901  there is no such program, or no such folder to run in
//   902  the file is no program, a damaged one, or empty
//   903  no memory for it
//   905  what it needs to run (its interpreter) is missing, or it is being written
//   906  a name or arguments that are too long, or hold a character 0; a quote without its partner in a line
//   907  a redirection without its one file, of one file both ways, or to one that cannot be used; a folder that
//        is too long
//   908  it may not be run
//   909  any other failure
ExecResult EXEC(const std::string& program, const std::string& arguments, int mode);
ExecResult EXEC(const std::string& program, const std::string& arguments, int mode,
                const std::string& folder);
// With the arguments as they are.
ExecResult EXEC(const std::string& program, const std::vector<std::string>& arguments, int mode,
                const std::string& folder = {}, const ExecFiles& redirected = {});
// Whether the process has ended, waiting at most that long; below 0 without an end. Windows live meanwhile.
// True for a number that is no process's.
bool WAITFORSINGLEOBJECT_MSG(int process, int milliseconds);
// The file to start for a tool's name: `x.exe`, else `x` beside it; empty if neither is there with content.
std::string FINDTOOL(const std::string& path);

// ---- pages and help ----

// Shows the page in the browser that the registry names, else in the desktop's, without waiting. A box tells
// when there is none.
void OPENBROWSER(int owner, const std::string& url);
// Pages of the web open in the browser at the topic's anchor, compiled help in the help window; all that
// cannot be shown is told in a box.
void MULTIHELP(int owner, const std::string& helpFile, int command, const std::string& topic);

// ---- registry: the first reads a named value, the second the default value of a key ----
RegInfo REGGETSETTINGINFO(const std::string& key, const std::string& name);
RegInfo REGGETSETTINGINFO(const std::string& key);
// The command of the browser: that of `http\shell\open\command` in the registry, else the variable BROWSER's
// first, else the desktop's opener; empty if none of them is there.
std::string REGGETBROWSER();
// The value of that name that the machine keeps for all versions of programs, under
// `SOFTWARE\Microsoft\Windows\CurrentVersion`; empty if nobody has set it.
std::string REGGETCURRENTVERSION(const std::string& name);
// The words that somebody has put down for the program, under the key `AppCompatFlags\Layers` of
// `SOFTWARE\Microsoft\Windows NT\CurrentVersion`; empty as a rule, since this system asks for none.
std::string GETAPPLICATIONCOMPATIBILITYFLAGS(const std::string& program);

// ---- resources ----

std::string APPRESOURCEFILE();  // the compiled resource file of this program
// Words such as PRELOAD or FIXED, which may stand between the kind and the path of a resource line.
bool IS_RESOURCE_MEMORY_OPTS(const std::string& word);
// The path of a BITMAP, an INCFILE or a DBFILE as the resource file tells it; empty if there is no such one.
std::string RESOURCEGETFILENAME(const std::string& file, const std::string& kind, const std::string& name);

}  // namespace tarn
