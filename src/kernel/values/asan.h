// SPDX-License-Identifier: Apache-2.0
//
// TARN_ASAN is defined when the address sanitizer looks at this build, whichever compiler made it.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#define TARN_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARN_ASAN 1
#endif
#endif
