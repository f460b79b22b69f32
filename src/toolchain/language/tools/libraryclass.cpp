// SPDX-License-Identifier: Apache-2.0
//
// tarn-library-class FILE: writes the library's class, as the compiler sees it.
#include "toolchain/language/library.h"

#include <fstream>

int main(int count, char** arguments) {
    if (count != 2) return 2;
    std::ofstream file(arguments[1], std::ios::binary);
    file << tarn::toolchain::systemText();
    file.close();
    return file ? 0 : 1;
}
