// SPDX-License-Identifier: Apache-2.0
//
// The library class that every module sees without naming it, a header for each of its families:
//
//   constants.h   colours, keys, limits, extensions, the objects printer, screen and clipboard
//   numbers.h     arithmetic, bytes and colours
//   conversion.h  from one kind of value to another, and to and from text
//   strings.h     texts
//   words.h       words of the language, tokens, identifiers
//   files.h       paths, files, whole values in files
//   windows.h     windows, boxes, timers
//   programs.h    other programs, help, registry, resources
//
// Functions that can fail leave their error in the cell for the caller's next stamp and raise no report of
// their own. Positions are 1-based byte positions.
#pragma once

#include "library/system/constants.h"
#include "library/system/conversion.h"
#include "library/system/files.h"
#include "library/system/numbers.h"
#include "library/system/programs.h"
#include "library/system/strings.h"
#include "library/system/windows.h"
#include "library/system/words.h"
