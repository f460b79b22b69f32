// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: how a document is printed, for programs that print texts with pages of a heading, a part of the
// pages, or several copies. The plain forms stand in drawing.h and dialogs.h.
#pragma once

#include "platform/object.h"

#include <string>

namespace tarn::platform {

namespace types {

struct PrintJob {
    // On top of each page, with the page's number at the right, over a line; empty: pages have no heading. One that is
    // too wide is shortened at its left.
    std::string heading;
    int from = 0, to = 0;  // the pages that go to paper; 0: from the first, to the last
    int copies = 1;
};

}  // namespace types

// As StartPrint. Pages outside of the part are counted and laid out like the others, and print nothing. A printer to a
// file makes one copy. Its file stands there whole when EndPrint has returned, or is as it was.
Code StartPrint(const Object& printer, const PrintJob& job);
// Ends a document of which nothing shall come out; what a printer has got before it may print. 924: not started.
Code CancelPrint(const Object& printer);

// As PrintDialog, with this printer chosen at first; one that is not there leaves the default one.
Answer<PrintChoice> PrintDialog(const Object& owner, int flags, const std::string& printer);

}  // namespace tarn::platform
