// SPDX-License-Identifier: Apache-2.0
// Bytes as source text: any text gives bytes, no more than it has characters, and any bytes come back from their text.
#include "library/source/bmptotxt.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string bytes = tarn::LITERALTOBYTESTRING(text);
    if (bytes.size() > text.size()) std::abort();
    if (tarn::LITERALTOBYTESTRING(tarn::BYTESTRINGTOLITERAL(text)) != text) std::abort();
    if (tarn::LITERALTOBYTESTRING(tarn::BYTESTRINGTOLITERAL(bytes)) != bytes) std::abort();
    return 0;
}
