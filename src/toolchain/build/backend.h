// SPDX-License-Identifier: Apache-2.0
//
// The back end: generated C to the bytes of an object. Programs do the same whichever it was.
#pragma once

#include "toolchain/output/messages.h"

#include <string>

namespace tarn::toolchain {

enum class BackEnd {
    Unknown,  // TARNWICK_CC names none
    Quick,    // tcc: compiles 50 classes in the time in which the others compile one
    Plain,    // the machine's C compiler, -O0
    Best,     // the same, -O2
};

// Of a debug level: the quick one for 1 and 2 if the tools have it, else the plain one; the best one for 0. The
// variable TARNWICK_CC (tcc, gcc-O0, gcc-O2) names one for all levels, for tests and for the suspicious.
BackEnd chooseBackEnd(int debug);

struct CompiledObject {
    std::string bytes;  // empty on failure, which is a message
    bool quick = false;
};

// Compiles the C text of a class. Where the choice was free and the quick
// compiler fails, the plain one takes its place; where there is no C compiler on the path, the quick one that of
// the others.
CompiledObject compileObject(const std::string& classFile, const std::string& text, int debug,
                             Messages& messages);

}  // namespace tarn::toolchain
