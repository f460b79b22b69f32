// SPDX-License-Identifier: Apache-2.0
//
// The windows of a class: those of the resource file that stands beside it under its name. Each becomes a
// declaration, and so do its controls and the items of its menu. The keys in the class's names hold a '#', which
// no name of the language has:
//
//   main#          the window Main
//   main#ok        its control OK
//
// A control array is a control of its own under the array's name; its element is given by an index.
#pragma once

#include "toolchain/language/tree.h"

#include <string>
#include <vector>

namespace tarn::toolchain {

struct NamedObject {
    std::string window;
    std::string control;  // empty: the window itself
    std::string type;     // its word: "Pushbutton"; "window"
    std::string array;    // of a member of a control array
};
// What the text of a resource file names, windows with their controls and menus' items. A statement with a fault
// names nothing. Cost: one pass over the text.
std::vector<NamedObject> namedObjects(std::string resources);
// The same as one text: it changes where a class could see it.
std::string windowNames(const std::string& resources);

void declareWindows(ClassTree& tree);
std::string windowKey(const std::string& window, const std::string& control = {});
// The resource file beside a class file; empty if there is none.
std::string twinOf(const std::string& file);

}  // namespace tarn::toolchain
