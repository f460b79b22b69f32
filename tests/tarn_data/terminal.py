# SPDX-License-Identifier: Apache-2.0
# terminal.py PROGRAM ARGUMENTS: runs a program on a terminal and prints what came there.
import os
import pty
import sys

sys.exit(os.waitstatus_to_exitcode(pty.spawn(sys.argv[1:])))
