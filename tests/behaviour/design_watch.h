// SPDX-License-Identifier: GPL-3.0-or-later
//
// What must hold of the dialog editor whatever its user does: a dialog that is not marked as changed is in its file as
// the lists have it, and undo of all steps leads to the lists at the opening, redo back again.
#pragma once

#include "ide/designer/dlgstep.h"

#include <optional>
#include <string>

namespace tarn {

// All of these are for moments at which no window waits for an answer and no step is under way.
class DesignWatch {
public:
    // What does not hold; empty if all does. Cost: a read of the file; a few when it or the dialog has changed.
    [[nodiscard]] std::string look();
    // The same of undo and redo. The lists are as before afterwards. Cost: redraws, as many as there are steps.
    [[nodiscard]] std::string undoAll();
    // The file as it is now is not what the editor has left there.
    void fileIsForeign();

private:
    void meet();
    [[nodiscard]] std::string compare() const;

    int number_ = -1;  // of the dialog that is open
    bool wasChanged_ = false;
    std::optional<DesignLists> opening_;
    std::string bytes_;                   // of the file, at the last look
    std::optional<std::string> foreign_;  // bytes that tell nothing of a save
};

}  // namespace tarn
