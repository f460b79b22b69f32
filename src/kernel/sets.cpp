// SPDX-License-Identifier: Apache-2.0
#include "kernel/sets.h"

#include "kernel/adt_kinds.h"

namespace tarn {

const KindOperations SetOperations{};

}  // namespace tarn
