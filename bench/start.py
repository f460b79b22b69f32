#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""start.py BUILD: milliseconds from start to a mapped main window, for the environment, a bare Qt window and Geany.

Runs under a virtual display of its own. The environment's splash wait is ended by a key, as a user would, as soon as
the splash window is there; the time of the other programs ends when their window is mapped. Prints JSON.
"""
import json
import os
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time


def display():
    read, write = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1600x1000x24", "-nolisten", "tcp"],
                              pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(write)
    os.environ["DISPLAY"] = ":" + os.read(read, 16).decode().strip()
    manager = subprocess.Popen(["openbox"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(1)
    return [manager, server]


def windows(name):
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", name], capture_output=True, text=True)
    return found.stdout.split()


def once(command, title, splash=None):
    begin = time.monotonic()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        memory = 0
        while time.monotonic() - begin < 20:
            if splash and windows(splash):
                subprocess.run(["xdotool", "key", "space"])
                splash = None
            if not splash and windows(title):
                took = (time.monotonic() - begin) * 1000
                time.sleep(0.5)
                with open(f"/proc/{process.pid}/smaps_rollup") as rollup:
                    memory = next(int(line.split()[1]) for line in rollup if line.startswith("Pss:"))
                return took, memory / 1024
            time.sleep(0.002)
        raise SystemExit(f"{command[0]}: no window '{title}' within 20 s")
    finally:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        time.sleep(0.2)


def main():
    build = sys.argv[1]
    servers = display()
    home = tempfile.mkdtemp()
    os.environ.update(HOME=home, XDG_CONFIG_HOME=home + "/c", XDG_STATE_HOME=home + "/s", XDG_RUNTIME_DIR=home)
    rows = {
        "ide": ([build + "/bin/ide"], "Tarnwick Developer Studio", "^Tarnwick$"),
        "geany": (["geany"], "Geany", None),
        "qt": ([build + "/bin/bare_window"], "Bare window", None),
    }
    result = {}
    try:
        for name, (command, title, splash) in rows.items():
            if not (shutil.which(command[0]) or os.path.exists(command[0])):
                continue
            once(command, title, splash)  # warm
            runs = [once(command, title, splash) for _ in range(9)]
            result[name] = {"ms": statistics.median(r[0] for r in runs), "mb": statistics.median(r[1] for r in runs)}
    finally:
        for server in servers:
            server.terminate()
        shutil.rmtree(home)
    json.dump(result, sys.stdout, indent=1)


main()
