// SPDX-License-Identifier: Apache-2.0
// Class texts: any bytes are read, and each change is made or leaves the text as it is. What was renamed is
// found under its new name.
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool what) {
    if (!what) std::abort();
}

// Gives the changed text, empty if the change was refused.
template <class Operation>
std::string changed(const std::string& text, Operation operation) {
    std::string copy = text;
    const bool ok = operation(copy).empty();
    require(ok || copy == text);
    return ok ? copy : std::string();
}

std::string firstFunction(const std::string& text) {
    return tarn::STRLINE(tarn::SYMSCANSOURCE(text, 0), 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    tarn::SYMGETUSES(0, text);
    tarn::SYMISCLASS(0, text, "Tarnwick", "class");
    tarn::SYMSCANSOURCE(text, 1024 + 2048 + 4096 + 8192 + 16384);
    changed(text, [](std::string& to) { return tarn::SYMSETUSES("A b_1", 0, to); });
    changed(text, [](std::string& to) { return tarn::SYMSETUSES("", 0, to); });
    // A sign may stand where the name should; the name that takes its place then runs on into what follows.
    const std::string className = tarn::SYMGETCLASSNAME(0, text, "Tarnwick");
    const bool isWord = !className.empty() && tarn::ascii::isLetter(className[0]);
    const std::string named =
        changed(text, [](std::string& to) { return tarn::SYMSETCLASSNAME("Other", 0, "Tarnwick", to); });
    require(!isWord || tarn::SYMGETCLASSNAME(0, named, "Tarnwick") == "Other");

    const std::string indented =
        changed(text, [](std::string& to) { return tarn::SYMINDENTFUNCHEADER("*", 0, to); });
    require(changed(indented, [](std::string& to) { return tarn::SYMINDENTFUNCHEADER("*", 0, to); }) ==
            indented);

    const std::string name = firstFunction(text), other = "quite_another_name";
    const std::string renamed =
        changed(text, [&](std::string& to) { return tarn::SYMRENAMEFUNCTION(name, other, 0, to); });
    require(tarn::SYMFINDFUNCTION(other, 0, renamed).bodyStart ==
            (renamed.empty() ? 0 : tarn::SYMFINDFUNCTION(name, 0, text).bodyStart));

    const std::string added =
        changed(text, [](std::string& to) { return tarn::SYMADDFUNCTION("function added()", 0, to); });
    require(added.empty() || added.find("function added()\r\n\r\n") != std::string::npos);
    std::string cut = text;
    const bool there = tarn::SYMFINDFUNCTION(name, 0, text).bodyStart != 0;
    require(!tarn::SYMDELETEFUNCTION(name, 0, cut) || (there && cut.size() < text.size()));
    return 0;
}
