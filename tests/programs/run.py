#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
#
# Builds and runs the programs of this folder, and compares what they print. Each program is a folder:
#
#   main.cls    the program; main2.cls, main3.cls ... are programs that run behind it in the same folder
#   *.cls       the classes that they use
#   make.py     writes classes that are too long to be kept, if there is such a file
#   options     options of the compiler in place of /p2 and the debug level, if there is such a file
#   expected    the output of the programs, reports of errors included; or the messages, where a class is refused
#
#   run.py BINARIES [NAME]... [--setting NAME]... [--jobs N] [--update]
#
# BINARIES is the folder of quarn.exe and ordo.exe. `--setting all` runs under each setting.
# NAME picks the programs whose names begin so.
import argparse
import difflib
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import time

import toolfolder

HERE = os.path.dirname(os.path.abspath(__file__))


def program_names(prefixes):
    names = sorted(name for name in os.listdir(HERE) if os.path.exists(os.path.join(HERE, name, "expected")))
    return [name for name in names if not prefixes or any(name.startswith(prefix) for prefix in prefixes)]


def read(path):
    with open(path, encoding="latin-1", newline="") as file:
        return file.read()


def outcome(tools, source, folder):
    """What comes of the program in `source`, which is copied to `folder`."""
    shutil.copytree(source, folder)
    if os.path.exists(os.path.join(folder, "make.py")):
        subprocess.run([sys.executable, "make.py"], cwd=folder, check=True)
    options = os.path.join(folder, "options")
    tools.use_options(read(options).strip() if os.path.exists(options) else tools.options)
    mains = sorted(name for name in os.listdir(folder) if name.startswith("main") and name.endswith(".cls"))
    for name in mains:
        done, messages = tools.build(os.path.join(folder, name))
        if done.hung:
            return "The build of %s did not end.\n" % name
        if done.code != 0 or not os.path.exists(os.path.join(folder, name[:-4] + ".exe")):
            return messages.replace(folder + "/", "") or "The build of %s failed without a message.\n" % name
    text = ""
    for name in mains:
        # Away from its source a program runs without the debugger.
        os.remove(os.path.join(folder, name))
        run = tools.run(os.path.join(folder, name[:-4] + ".exe"))
        text += run.output.replace(folder + "/", "")
        if run.hung:
            text += "The program did not end.\n"
        elif run.code < 0:
            text += "The program died of signal %d.\n" % -run.code
    return text


class Report:
    def __init__(self, update):
        self.update, self.failed, self.done, self.lock = update, [], 0, threading.Lock()

    def add(self, setting, name, got):
        path = os.path.join(HERE, name, "expected")
        want = read(path)
        with self.lock:
            self.done += 1
            if got == want:
                return
            self.failed.append("%s (%s)" % (name, setting))
            print("FAILED %s (%s)" % (name, setting))
            print("".join(difflib.unified_diff(want.splitlines(True), got.splitlines(True), "expected", "got", n=1)))
            sys.stdout.flush()
            if self.update:
                with open(path, "w", encoding="latin-1", newline="") as file:
                    file.write(got)


def work(binaries, setting, names, folder, report):
    tools = toolfolder.ToolFolder(binaries, folder, setting)
    while True:
        try:
            name = names.pop()
        except IndexError:
            return
        place = os.path.join(folder, "program", name)
        report.add(setting, name, outcome(tools, os.path.join(HERE, name), place))
        shutil.rmtree(place)


def run_setting(binaries, setting, names, jobs, report):
    left = list(reversed(names))
    with tempfile.TemporaryDirectory(prefix="programs-") as top:
        threads = [threading.Thread(target=work, args=(binaries, setting, left, os.path.join(top, str(n)), report))
                   for n in range(jobs)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("binaries")
    parser.add_argument("--setting", action="append")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--update", action="store_true", help="write what came out as what is expected")
    parser.add_argument("names", nargs="*")
    given = parser.parse_args()
    settings = given.setting or ["d2"]
    if "all" in settings:
        settings = list(toolfolder.SETTINGS)
    report, names, began = Report(given.update), program_names(given.names), time.time()
    for setting in settings:
        run_setting(os.path.abspath(given.binaries), setting, names, given.jobs, report)
    print("%d programs, %d failed, %.1f s" % (report.done, len(report.failed), time.time() - began))
    sys.exit(1 if report.failed or not report.done else 0)


if __name__ == "__main__":
    main()
