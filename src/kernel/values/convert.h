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
// A fixed or real number outside the integers gives 641 and 0, and so does a real outside the fixed numbers.
// "NULL" is 0 only for an integer.
#pragma once

#include "kernel/values/values.h"

namespace tarn {

// `ok` says whether the pair is one of the table. When it is false there is no error and the target is as it
// was; when it is true the conversion may still have failed, with one of these errors:
//
//   610       a null address; the target is as it was
//   641       as above; the target is 0
//   756       a source or target that must be a string and is none; the target is as it was
//   615       the text was cut to a fixed string's capacity
//   802, 804  memory for the text is short; the string is as StringAssign leaves it
//   983, 984, 985  a text that is no integer, fixed number or real (blanks around it and one NUL at its end
//   do
//                  not matter), or that none of them can hold; the target is as it was
//
// A string target must be initialised. No number needs alignment, and one may be converted where it stands.
void AdtConvert(const void* source, Kind sourceKind, void* target, Kind targetKind, bool& ok);

}  // namespace tarn
