// SPDX-License-Identifier: Apache-2.0
//
// The codes of the items of a compiled pattern; see propedit_patterns.h.
#pragma once

namespace tarn::detail {

inline constexpr char LITCHAR = 'L', ANY = '.', BOL = '^', EOL = '$', CCL = '[', NCCL = '!', CLOSURE = '*',
                      OPTIONAL = '?';

}  // namespace tarn::detail
