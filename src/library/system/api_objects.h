// SPDX-License-Identifier: Apache-2.0
//
// Windows and controls as compiled programs hold them: a record of three integers, the number of the control
// (0 for the window itself), the number of the window's name in this process, and a place in a control array,
// which is always 0: the number of an element tells it already. Two are equal if they name the same control.
#pragma once

#include "kernel/api/api.h"
#include "platform/object.h"

namespace tarn::api {

platform::Object objectOf(const tarn_record* record);  // empty for a record that was never set
void putObject(const platform::Object& object, tarn_record* record);

}  // namespace tarn::api
