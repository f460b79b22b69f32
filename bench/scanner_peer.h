// SPDX-License-Identifier: Apache-2.0
// The lexer of scanner_peer.l.
#pragma once

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif
void peerOpen(FILE* file);
int peerToken(void);  // 0 at the end
#ifdef __cplusplus
}
#endif
