# SPDX-License-Identifier: Apache-2.0
# The memory that programs took, at most, in KiB: a line for each command.
#   memory.py COMMAND...     ends with 1 at the first one that fails
import os
import subprocess
import sys

for command in sys.argv[1:]:
    with subprocess.Popen(command.split()) as child:
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode != 0:
        sys.exit(f'{command}: {child.returncode}')
    print(usage.ru_maxrss, command)
