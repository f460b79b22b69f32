// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the environment and the library of the help window, libtarnwick-help.so, know of each other: one function, and
// what it calls back.
#pragma once

#include <string>

namespace tarn::help {

// Where a page is printed: to a printer by its name, or into a PDF file.
struct PrintTarget {
    std::string printer, file;
    int from = 0, to = 0;  // pages; 0: from the first, to the last
    int copies = 1;
};

struct Request {
    const char* file;   // the compiled help
    const char* topic;  // empty: its first page
    // Where the window was when it was last seen, as `keepPlace` got it; empty for the first time.
    const char* place;
    void (*keepPlace)(const char* place);  // called when the window closes or has been moved
    // Asks the user where to print the page of that title, with the dialogs of the environment; false on Cancel.
    bool (*choosePrinter)(const char* title, PrintTarget& target);
};

// Shows the window, which is made by the first call, with the page of the topic, or with what a search for it finds.
// Null, or why it cannot be shown, as a text that holds until the next call.
using Show = const char* (*)(const Request& request);
constexpr char ShowName[] = "tarn_show_help";

}  // namespace tarn::help
