// SPDX-License-Identifier: Apache-2.0
//
// The text of one window or menu as it is written: the bytes that it had where they say what it shall say, new
// lines for the rest.
//
// Cost: linear in the text of the file and of the statement, and a matching of its objects (rcmatch.h).
#pragma once

#include "platform/resources/rctext.h"
#include "platform/resources/resource.h"

#include <string>
#include <vector>

namespace tarn::platform {

// The property lists up to the first empty element; those without a type are of the usual one.
std::vector<ParsedList> parseAll(const ObjectArray& objects, Type usual);

// The statement for the objects, in the place of `old`; null if the file has none yet. The first element must
// not be empty. An object that `old` does not have gets the block that a text of `past` has for it, the last of them
// first. `loses`: `old` has a block that no object continues.
struct StatementText {
    std::string text;
    bool loses = false;
};
StatementText statementText(const RcFile& file, const RcStatement* old, const ObjectArray& objects, bool menu,
                            const std::vector<std::string>& past = {});

}  // namespace tarn::platform
