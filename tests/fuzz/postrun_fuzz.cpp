// SPDX-License-Identifier: Apache-2.0
// The command line of the mail helper: a line that can be read is written so that the same mail is read again, and no
// text of it becomes an argument of the mail program that stands for something else.
#include "library/net/postrun.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string line(reinterpret_cast<const char*>(data), size);
    if (line.find('\0') != std::string::npos) return 0;  // no argument of a program holds one
    tarn::PostrunMail mail, again;
    if (!tarn::PARSEPOSTRUNLINE(line, mail).empty()) return 0;
    if (!tarn::PARSEPOSTRUNLINE(tarn::POSTRUNLINE(mail), again).empty() || again != mail) std::abort();
    const auto arguments = tarn::XDGEMAILARGUMENTS(mail);
    if (arguments.empty() || arguments.size() > 8 || arguments.size() % 2 != 0) std::abort();
    if (!arguments.back().starts_with("mailto:")) std::abort();
    if (arguments.back().find_first_of("?&= ") != std::string::npos) std::abort();
    return 0;
}
