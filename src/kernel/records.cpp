// SPDX-License-Identifier: Apache-2.0
#include "kernel/records.h"

#include "kernel/adt_kinds.h"

namespace tarn {

const KindOperations RecordOperations{};

}  // namespace tarn
