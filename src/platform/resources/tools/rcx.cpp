// SPDX-License-Identifier: Apache-2.0
//
// tarn-rcx OUT.rcx IN.rc...: compiles resource files. Messages go to standard error; the exit code is 1 if
// there is one, 2 if the command line is wrong.
#include "platform/resources/resource.h"

#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("Usage: tarn-rcx OUT.rcx IN.rc...\n", stderr);
        return 2;
    }
    const std::string errors = tarn::platform::CompileResources({argv + 2, argv + argc}, argv[1]);
    std::fputs(errors.c_str(), stderr);
    return errors.empty() ? 0 : 1;
}
