// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables.h"

#include "kernel/adt_kinds.h"

namespace tarn {

const KindOperations TableOperations{};

}  // namespace tarn
