// SPDX-License-Identifier: Apache-2.0
//
// A drawing that is going on: what StartGraph or StartPrint began and EndGraph or EndPrint ends. It hangs on
// its control and goes with it.
#pragma once

#include "platform/model/canvas.h"
#include "platform/model/model.h"
#include "platform/operations/printjob.h"

#include <memory>

namespace tarn::platform {

struct Graph {
    std::unique_ptr<Canvas> canvas;  // null: nothing shows
    int x = 0, y = 0;                // the current point, from the origin
    int originX = 0, originY = 0;
    int page = 0;         // printers: from 1
    bool failed = false;  // printers: a page could not be begun
    Font font;            // the object's own while it is drawn on
    int foreColour = -1, backColour = -1;
    PrintJob job;        // printers
    bool begun = false;  // printers: a page has gone to the canvas
    // Whether what is drawn now comes out.
    [[nodiscard]] bool shows() const {
        return canvas != nullptr && page >= job.from && (job.to == 0 || page <= job.to);
    }
};

// Begins a drawing on the control, and ends it; `finish` tells whether all could be written.
Graph& beginGraph(Control& control, std::unique_ptr<Canvas> canvas);
bool endGraph(Control& control);
// Begins the first page, and one where the page that is full ends, with its heading.
void beginPage(Control& control);

}  // namespace tarn::platform
