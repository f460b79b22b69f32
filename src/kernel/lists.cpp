// SPDX-License-Identifier: Apache-2.0
#include "kernel/lists.h"

#include "kernel/adt_kinds.h"

namespace tarn {

const KindOperations ListOperations{};

}  // namespace tarn
