// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: a window that tells something while the user works elsewhere. Programs of the language do not have
// them.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

// Shows a window, and the focus stays where it is, in this program or another one. `behind` puts it under all other
// windows. One that is shown already stays as it is. 702: it is not loaded.
Code ShowQuietly(const Object& window, bool behind);

}  // namespace tarn::platform
