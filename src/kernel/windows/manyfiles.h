// SPDX-License-Identifier: Apache-2.0
//
// The choice of any number of files as modules call it; it cannot fail.
#pragma once

#include "platform/operations/manyfiles.h"

namespace tarn {

using platform::OpenFilesDialog;

}  // namespace tarn
