// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/showfiles.h"

#include "ide/build/compiler.h"
#include "ide/build/toolrun.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

MODULE("progmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

struct FileList {
    const char *option, *word, *meaning;
};
constexpr FileList inputs{
    "/fs", "input",
    "(the input files are the source code files and\nresource files used when compiling the program)\n"};
constexpr FileList outputs{
    "/ft", "output",
    "(the output files are the binary files and\nfiles that must be distributed to run the program)\n"};

void SHOWFILES(const std::string& title, const std::string& file, const FileList& which) {
    FRAME(SHOWFILES);
    const std::string word = which.word;
    STAMP();
    const DependencyList list = LOADDEPLIST(file, which.option, true);
    STAMP();
    if (!list.error.empty())
        return MSGBOX(title, "It is not possible to view the list of " + word + " files.\n" + list.error);
    if (!ISMAINCLASS(file))
        return MSGBOX(title, "File '" + file + "' is not a main class.\nIt is only possible to view the " +
                                 word + " files of a main class.");
    STAMP();
    const std::string chosen =
        LISTBOX(title, "The program '" + file + "'\nhas the following " + word + " files:\n" + which.meaning,
                list.files);
    STAMP();
    if (!chosen.empty()) SetText(clipboard, STRNL2CRNL(chosen));
    STAMP();
}

}  // namespace

void SHOWINPUTFILES(const std::string& title, const std::string& mainFile) {
    FRAME(SHOWINPUTFILES);
    STAMP();
    SHOWFILES(title, mainFile, inputs);
}

void SHOWOUTPUTFILES(const std::string& title, const std::string& mainFile) {
    FRAME(SHOWOUTPUTFILES);
    STAMP();
    SHOWFILES(title, mainFile, outputs);
}

}  // namespace tarn
