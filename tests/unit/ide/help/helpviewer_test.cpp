// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the help has on a box.
#include "ide/help/helpviewer.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(BoxHelp, IsThePageOfTheNumberOrTheTopicOfTheTitle) {
    struct Case {
        const char *title, *text, *topic;
    };
    const Case cases[] = {
        {"File-Open", "The following file is too big.", "File_Open"},
        {"Error 807", "It runs already.", "807"},
        {"Error", "File: a.cls\nRun-time error 651 in line 3", "651"},
        {"Error", "a.cls(3) : error 1101 'then' is expected", "1101"},
        {"Error", "a.cls : fatal 1903", "1903"},
        {"View Errors", "an error 12 is no number of a page", "View Errors"},
        {"Save File", "no error here, but 651 pages", "Save File"},
        {"Print", "error 12, then error 922", "922"},
        {"Print", "Nothing to print", "File_Print"},  // PRINT is a function of the library
        {"", "", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(BOXTOPIC(c.title, c.text), c.topic) << c.title << " " << c.text;
}

}  // namespace
}  // namespace tarn
