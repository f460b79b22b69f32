// SPDX-License-Identifier: Apache-2.0
//
// All windowing operations, under the names that the modules know them by. They work on the object model
// (model/model.h), with or without a screen. They return codes and texts and know no error cell; modules call
// the wrappers of kernel/windows/windowing.h, which set it.
//
// Captions, texts, rows and values are bytes. Positions in texts and rows are 1-based; lengths count bytes.
// An operation on a control that does not exist or is not loaded gives 702 or 727 and an empty value. One on
// a control that lacks the property gives an empty value and no error.
#pragma once

#include "platform/operations/arrays.h"
#include "platform/operations/dialogs.h"
#include "platform/operations/drawing.h"
#include "platform/operations/edits.h"
#include "platform/operations/life.h"
#include "platform/operations/lists.h"
#include "platform/operations/looks.h"
#include "platform/operations/position.h"
#include "platform/operations/serial.h"
#include "platform/operations/system.h"
#include "platform/operations/values.h"
#include "platform/registry.h"
