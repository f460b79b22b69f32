// SPDX-License-Identifier: Apache-2.0
// Scripts of installers and heads of packages: any bytes are read or refused, and no name that leads out of the folder is
// ever taken.
#include "toolchain/setup/script.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

void checkNames(const tarn::setup::Package& package) {
    for (const tarn::setup::PackedFile& file : package.files)
        if (!tarn::setup::isPlainName(file.name)) std::abort();
    if (package.size() > tarn::MaxPackageSize) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    tarn::setup::Script script;
    const bool good = tarn::setup::readScript(text, script).empty();
    checkNames(script.package);
    if (script.sources.size() != script.package.files.size()) std::abort();
    tarn::setup::Package package, again;
    if (tarn::setup::readHead(text, package).empty()) checkNames(package);
    // What a good script says is read again as it was.
    if (good && !tarn::setup::readHead(tarn::setup::headOf(script.package), again).empty()) std::abort();
    return 0;
}
