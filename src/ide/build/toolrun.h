// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one driver of the compiler and the make tool. Both leave a text (os/toolresults.h tells where); whoever starts one
// removes what an earlier run left, waits for it, and reads what it wrote.
#pragma once

#include "library/system/system.h"

#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::string_view CompilerProgram = "quarn.exe", MakeProgram = "ordo.exe";
// What they leave: the compiler's messages, also of a build, and what the make tool says.
inline constexpr std::string_view CompilerMessages = "sarn.err", MakeMessages = "ordo.err";

std::string GETCOMPILEREXE();
std::string GETORDOEXE();
// Where the messages stand when tools are called by these names.
std::string GETCOMPILERMESSAGES();
std::string GETMAKEMESSAGES();

// Whether a tool's messages tell of no error: there are none, or they hold the compiler's success mark.
bool ISCLEAN(const std::string& messages);

struct ToolRun {
    bool started = false;  // otherwise the error cell tells why (901 to 909)
    int exitCode = 0;
    std::string messages;  // what the tool wrote
    std::string fault;     // what it could not say itself: it was stopped, died, or failed without a word
};
// Runs a tool and waits for it, with the windows disabled and events pumped. `results` is removed before the run, and
// read behind it when it holds anything; so is `otherwise`, in which a tool that failed may have left its words when
// there are none in the first. `executable` as FINDTOOL gave it.
ToolRun RUNTOOL(const std::string& executable, const std::string& arguments, int windowMode,
                const std::string& results, const std::string& otherwise = {});
// What a run says beside the tool's messages; empty if it needs to say nothing.
std::string RUNFAULT(const ExecResult& run, const std::string& tool, bool hasMessages);

// The error handlers of modules that start tools: a tool that cannot be run (901 to 909) and a file that cannot be read or
// written (651 to 659) are told in a box, and the program goes on. The file is one of the user's for the first, and what a
// tool leaves for the second.
void TOOL_ONERROR(std::int32_t code);
void RESULTS_ONERROR(std::int32_t code);

}  // namespace tarn
