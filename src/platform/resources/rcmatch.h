// SPDX-License-Identifier: Apache-2.0
//
// Which block of a resource file each object that is to be written continues, so that its comments, its
// layout and its number stay with it. Objects are known by their places first, as far as all stand unchanged
// from the start and from the end, then by their names, then by equal content, then, between the neighbours
// that are known already, by what has not changed. A block is continued once at most.
//
// Cost: blocks times objects, in numbers; of more than 4096 blocks those behind are known by their names
// alone.
#pragma once

#include "platform/resources/properties.h"
#include "platform/resources/rctext.h"

#include <vector>

namespace tarn::platform {

// One for each of `wanted`; null for an object that is new.
std::vector<const RcObject*> matchObjects(const std::vector<RcObject>& blocks,
                                          const std::vector<ParsedList>& wanted);

}  // namespace tarn::platform
