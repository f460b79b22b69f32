// SPDX-License-Identifier: Apache-2.0
//
// What SAVEFILEREPORT tells: the last save, if it failed. Only the system library includes this.
#pragma once

#include <string>

namespace tarn::detail {

struct FailedSave {
    std::string file;
    std::string why;         // "" when there is nothing to tell
    std::string rescueCopy;  // where the new bytes stand if the file may be damaged
    bool ofText = false;     // from an edit window, where it still is
};
FailedSave& LastFailedSave();

}  // namespace tarn::detail
