// SPDX-License-Identifier: Apache-2.0
//
// The one table of conversions between kinds of value:
//
//   to       from boolean    enum     integer  fixed          real           string
//   integer  0 or 1          ordinal  copy     truncate       truncate       "NULL": 0; IntegerFromText
//   string   "True" "False"  decimal  decimal  format 1.4     exponent form  assign
//   fixed    0 or 1          ordinal  scale    copy           FixedFromReal  FixedFromText
//   real     0 or 1          ordinal  exact    FixedToReal    copy           RealFromText
//
// An integer that a fixed or real number cannot be is 641 and 0.
#pragma once

#include "kernel/values.h"

namespace tarn {

// `ok` false, without an error and with the target as it was, for a pair that is not in the table. A text
// that does not parse (blanks around it do not matter) sets the target kind's conversion error (983 integer,
// 984 fixed, 985 real) and leaves the target as it was; `ok` is true then, for the pair is one of the table.
// The target of a string is initialised; 756 when it or the source is no string, 610 for a null address.
void AdtConvert(const void* source, Kind sourceKind, void* target, Kind targetKind, bool& ok);

}  // namespace tarn
