// SPDX-License-Identifier: Apache-2.0
//
// The one limit that the packager and the installers that it makes share. Installers have nothing else of this layer.
#pragma once

#include <cstdint>

namespace tarn {

inline constexpr std::int64_t MaxPackageSize =
    600'000'000;  // bytes of all files of a folder, zip file or installer

}  // namespace tarn
