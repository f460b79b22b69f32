# SPDX-License-Identifier: Apache-2.0
# interrupt.py SECONDS PROGRAM ARGUMENTS: runs a program, interrupts it after a while, and ends as a shell would.
import signal
import subprocess
import sys
import time

signal.signal(signal.SIGINT, signal.default_int_handler)
child = subprocess.Popen(sys.argv[2:], preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
time.sleep(float(sys.argv[1]))
child.send_signal(signal.SIGINT)
status = child.wait()
sys.exit(status if status >= 0 else 128 - status)
