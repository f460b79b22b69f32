// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/literals.h"

#include "toolchain/output/names.h"

namespace tarn::toolchain {

std::string Literals::pointerTo(const std::string& text) {
    const auto [place, isNew] = numbers_.emplace(text, texts_.size());
    if (isNew) texts_.push_back(&place->first);
    return "&k[" + std::to_string(place->second) + "]";
}

std::string Literals::definition() const {
    if (texts_.empty()) return {};
    const std::string count = std::to_string(texts_.size());
    std::string result = "static tarn_string k[" + count +
                         "];\nstatic const struct { const char *bytes; int32_t count; } kb[" + count +
                         "] = {\n";
    for (const std::string* text : texts_)
        result += "    {" + cString(*text) + ", " + std::to_string(text->size()) + "},\n";
    return result + "};\n";
}

std::string Literals::initialisation() const {
    if (texts_.empty()) return {};
    return "    for (int i = 0; i < " + std::to_string(texts_.size()) +
           "; ++i) {\n        tarn_string_init(&k[i], TARN_UNBOUNDED);\n"
           "        tarn_string_assign_bytes(&k[i], kb[i].bytes, kb[i].count);\n    }\n";
}

std::string Literals::release() const {
    if (texts_.empty()) return {};
    return "    for (int i = " + std::to_string(texts_.size()) +
           "; i-- > 0;)\n        tarn_string_free(&k[i]);\n";
}

}  // namespace tarn::toolchain
