// SPDX-License-Identifier: Apache-2.0
//
// Symbol files: what the compiler tells of a class beside its source, "name.sym" for "name.cls". They are only read.
// docs/formats/sym.md describes them.
//
// A file that is missing, cannot be read or is no symbol file has no symbols, which is no error. Of a damaged one what
// can be read counts: a number that is none is 0, and a text is cut to the length that its field has.
//
// Cost: one pass over the file per call; nothing is kept between calls.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

inline constexpr int public_scope = 1, private_scope = 2, function_scope = 3;

struct SymbolRecord {
    std::string name;
    int scope = 0;
    std::string signature, sort;
    int decline = 0, impline = 0, useline = 0;  // lines
    std::string classname;
    int lb1 = 0, ub1 = 0, lb2 = 0, ub2 = 0, lb3 = 0, ub3 = 0;
    std::string disambig, typeName;  // the second is the field "typename"
    int compno = 0;                  // 0: the class itself; otherwise a class from which it is inherited
    int constvalue = 0;
    std::string comment;  // of the records that are no symbols their data, any bytes
};
std::vector<SymbolRecord> SYMLOAD(const std::string& file);

// The compiler's options when it compiled the class, empty if they are not known.
std::string SYMGETOPTIONS(const std::string& file);
int SYMGETDEBUGLEVEL(const std::string& classFile);  // 0, 1 or 2; -1 if it is not known
// The levels of a list of files, one a line; -1 for what is neither a class nor a symbol file.
std::string SYMGETDEBUGLEVELS(std::string_view files);

// What a list of levels has in common. `allKnown` alone: they are mixed; none: one is not known, or the list is empty.
struct DebugFlags {
    bool all0 = false, all1 = false, all2 = false, allKnown = false;
    bool operator==(const DebugFlags&) const = default;
};
DebugFlags SYMGETDEBUGFLAGS(std::string_view levels);

// A line made from a template, in which $NAME$, $SCOPE$, $SIGNATURE$, $SORT$, $DECLINE$, $CLASSNAME$ and
// $TYPENAME$ stand for the values of a symbol. A control character in a value becomes a blank, so that a line
// stays one.
std::string SYMFORMATSTR(const SymbolRecord& record, std::string_view format);
// Adds a line for each symbol of a sort that stands in `sortFilter`, words or "*" for all, to an icon list, which gets
// pictures too, or a list box; to nothing else. $FILENAME$ stands for the class file in double quotes. What is
// private in another class is left out.
void SYMADDSYMBOLS(const std::string& symFile, const std::string& classFile, std::string_view format,
                   std::string_view sortFilter, const Object& list);

}  // namespace tarn
