// SPDX-License-Identifier: Apache-2.0
#include "kernel/arrays.h"

#include "kernel/adt_kinds.h"

namespace tarn {

const KindOperations ArrayOperations{};

}  // namespace tarn
