#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""builds.py BUILD [ROUNDS]: milliseconds from a saved edit to the end of the run, for the toolchain and its peers.

The same program is written in each language: classes (units, packages, modules) of functions that count, each class
calling the one below it. Peers that are not installed are left out. Each figure is a median of ROUNDS rounds (7), each
with another edit, and all languages take turns in a round, so that what disturbs one disturbs the others as well. The time
counts from the saved file to the end of the program's run; where nothing changed, to the end of the build.
Every program's output is compared with what it has to be. Prints JSON: case, then language, then milliseconds; and the load of the machine, the average of the last minute.
"""
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

FUNCTION_LINES, LOOPS = 16, 2


class Language:
    """Texts of a program of `count` classes with `lines` lines each, and the commands that build and run it."""

    def __init__(self, folder):
        self.folder = os.path.join(folder, type(self).__name__)
        self.stamp = 0

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, text):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "w") as file:
            file.write(text)

    def fresh(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        os.makedirs(self.folder)

    def call(self, *command):
        subprocess.run(command, cwd=self.folder, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)

    def output(self, *command):
        return subprocess.run(command, cwd=self.folder, check=True, capture_output=True, text=True).stdout.strip()

    def save(self, count, lines, body, head):
        for i in range(count):
            self.unit(i, max(1, lines // FUNCTION_LINES), body if i == 0 else 1, head if i == 0 else 1)
        self.main(count)

    def changed(self, count, lines, body, head):
        self.unit(0, max(1, lines // FUNCTION_LINES), body, head)


class Tarnwick(Language):
    tool = None

    def unit(self, i, functions, body, head):
        uses = f"Uses k{i - 1}\n" if i else "\n"
        text = f"Tarnwick Class k{i}\n{uses}public const c{i} = {head}\n"
        for n in range(functions):
            below = f"f{i - 1}_0(x) + c{i - 1}" if i and n == 0 else body
            loop = ("    for i from 1 to 3 loop\n        s := (s + (x + i) * 3) mod 1000\n        if s > 500 then\n"
                    "            s := s - 250\n        end if\n    end loop\n")
            text += (f"public function f{i}_{n}(x : integer) return integer\n    var i, s : integer\n{loop * LOOPS}"
                     f"    return (s + {below}) mod 1000\nend function\n")
        self.write(f"k{i}.cls", text + "End class\n")

    def main(self, count):
        self.write("main.cls", f"Tarnwick Class main\nUses k{count - 1}\nfunction main()\n"
                               f"    PRINT(STR((f{count - 1}_0(7) + c{count - 1}) mod 1000))\nend function\nEnd class\n")

    def build(self, count, what):
        self.call(self.tool, "-fm", self.path("main.cls"), "-o" + self.path("answer"))

    def run(self):
        return self.output(self.path("main.exe"))


class Pascal(Language):
    needs = "fpc"
    clock = 0

    def write(self, name, text):
        """Its compiler sees a change by the time of the file, which counts in steps of two seconds."""
        super().write(name, text)
        Pascal.clock += 10
        os.utime(self.path(name), (time.time() + Pascal.clock,) * 2)

    def unit(self, i, functions, body, head):
        uses = f"uses k{i - 1};\n" if i else ""
        text = f"unit k{i};\ninterface\n{uses}const c{i} = {head};\n"
        text += "".join(f"function f{i}_{n}(x : longint) : longint;\n" for n in range(functions)) + "implementation\n"
        for n in range(functions):
            below = f"f{i - 1}_0(x) + c{i - 1}" if i and n == 0 else body
            loop = ("  for i := 1 to 3 do begin\n    s := (s + (x + i) * 3) mod 1000;\n    if s > 500 then\n"
                    "      s := s - 250;\n  end;\n")
            text += (f"function f{i}_{n}(x : longint) : longint;\nvar i, s : longint;\nbegin\n  s := 0;\n{loop * LOOPS}"
                     f"  f{i}_{n} := (s + {below}) mod 1000;\nend;\n")
        self.write(f"k{i}.pas", text + "end.\n")

    def main(self, count):
        self.write("main.pas", f"program main;\nuses k{count - 1};\nbegin\n"
                               f"  writeln((f{count - 1}_0(7) + c{count - 1}) mod 1000);\nend.\n")

    def build(self, count, what):
        self.call("fpc", "-v0", "-g", self.path("main.pas"))

    def run(self):
        return self.output(self.path("main"))


class C(Language):
    compiler = ("gcc", "-O0")
    needs = "gcc"

    def unit(self, i, functions, body, head):
        self.write(f"k{i}.h", f"#define c{i} {head}\n" + "".join(f"int f{i}_{n}(int x);\n" for n in range(functions)))
        text = f'#include "k{i}.h"\n' + (f'#include "k{i - 1}.h"\n' if i else "")
        for n in range(functions):
            below = f"f{i - 1}_0(x) + c{i - 1}" if i and n == 0 else body
            loop = ("    for (i = 1; i <= 3; ++i) {\n        s = (s + (x + i) * 3) % 1000;\n        if (s > 500)\n"
                    "            s -= 250;\n    }\n")
            text += (f"int f{i}_{n}(int x)\n{{\n    int i, s = 0;\n{loop * LOOPS}"
                     f"    return (s + {below}) % 1000;\n}}\n")
        self.write(f"k{i}.c", text)

    def main(self, count):
        self.write("main.c", f'#include <stdio.h>\n#include "k{count - 1}.h"\nint main(void)\n{{\n'
                             f'    printf("%d\\n", (f{count - 1}_0(7) + c{count - 1}) % 1000);\n    return 0;\n}}\n')

    def build(self, count, what):
        """As make would: the files that the edit concerns, then the link."""
        all_ = [f"k{i}.c" for i in range(count)] + ["main.c"]
        stale = {"all": all_, "body": ["k0.c"], "head": ["k0.c", "k1.c" if count > 1 else "main.c"], "none": []}[what]
        if stale:
            self.call(*self.compiler, "-c", *stale)
            self.call(self.compiler[0], "-o", "main", *(name[:-1] + "o" for name in all_))

    def run(self):
        return self.output("./main")


class CByTcc(C):
    compiler = ("tcc",)
    needs = "tcc"


class Go(Language):
    needs = "go"

    def unit(self, i, functions, body, head):
        # A text of each program's own: what the cache knows from an earlier round would not be compiled.
        text = f"package k{i}\n\n// {self.stamp}\n"
        text += f'import "main/k{i - 1}"\n' if i else ""
        text += f"const C = {head}\n"
        for n in range(functions):
            below = f"k{i - 1}.F0(x) + k{i - 1}.C" if i and n == 0 else body
            loop = ("\tfor i = 1; i <= 3; i++ {\n\t\ts = (s + (x + i) * 3) % 1000\n\t\tif s > 500 {\n\t\t\ts -= 250\n"
                    "\t\t}\n\t}\n")
            text += (f"func F{n}(x int32) int32 {{\n\tvar i, s int32\n{loop * LOOPS}"
                     f"\treturn (s + {below}) % 1000\n}}\n")
        self.write(f"k{i}/k.go", text)

    def main(self, count):
        self.write("go.mod", "module main\n\ngo 1.19\n")
        self.write("main.go", f'package main\n\nimport "main/k{count - 1}"\n\nfunc main() {{\n'
                              f"\tprintln((k{count - 1}.F0(7) + k{count - 1}.C) % 1000)\n}}\n")

    def build(self, count, what):
        self.call("go", "build", "-o", "main.bin", ".")

    def run(self):
        return subprocess.run(self.path("main.bin"), check=True, capture_output=True, text=True).stderr.strip()


class Python(Language):
    needs = "python3"

    def unit(self, i, functions, body, head):
        text = (f"import k{i - 1}\n\n" if i else "") + f"C = {head}\n\n"
        for n in range(functions):
            below = f"k{i - 1}.f0(x) + k{i - 1}.C" if i and n == 0 else body
            loop = ("    for i in range(1, 4):\n        s = (s + (x + i) * 3) % 1000\n        if s > 500:\n"
                    "            s -= 250\n")
            text += (f"def f{n}(x):\n    s = 0\n{loop * LOOPS}"
                     f"    return (s + {below}) % 1000\n\n\n")
        self.write(f"k{i}.py", text)

    def main(self, count):
        self.write("main.py", f"import k{count - 1}\n\nprint((k{count - 1}.f0(7) + k{count - 1}.C) % 1000)\n")

    def build(self, count, what):
        pass

    def run(self):
        return self.output("python3", "main.py")


# name, classes, lines a class, what is edited
CASES = [
    ("hello, edit to run", 1, 16, "body"),
    ("1 class of 200 lines", 1, 200, "body"),
    ("50 x 200 lines from nothing", 50, 200, "all"),
    ("the same, body of the bottom class", 50, 200, "body"),
    ("the same, head of the bottom class", 50, 200, "head"),
    ("the same, nothing changed", 50, 200, "none"),
    ("8,000 lines in one class", 1, 8000, "body"),
]


def expected(count, body, head):
    """What the functions compute."""
    def level(i, x):
        s = 0
        for n in list(range(1, 4)) * LOOPS:
            s = (s + (x + n) * 3) % 1000
            if s > 500:
                s -= 250
        return (s + (level(i - 1, x) + (head if i == 1 else 1) if i else body)) % 1000
    return str((level(count - 1, 7) + (head if count == 1 else 1)) % 1000)


def edit(language, case, round_):
    """Saves what the round changes; the numbers in the body and the head of the bottom class."""
    _, count, lines, what = case
    body = 1 if what in ("head", "none") else 2 + round_
    head = 2 + round_ if what == "head" else 1
    if what == "all":
        language.stamp = time.time_ns()
        language.fresh()
        language.save(count, lines, body, head)
    elif what != "none":
        language.changed(count, lines, body, head)
    return body, head


def timed(language, case):
    """Milliseconds to the end of the run, and its output. Where nothing changed it is the tool alone that counts."""
    _, count, _, what = case
    begin = time.perf_counter()
    language.build(count, what)
    built = time.perf_counter()
    result = language.run()
    end = built if what == "none" else time.perf_counter()
    return (end - begin) * 1000, result


def once(language, case, round_):
    body, head = edit(language, case, round_)
    took, result = timed(language, case)
    right = expected(case[1], body, head)
    if result != right:
        raise SystemExit(f"{type(language).__name__}, {case[0]}: '{result}' and not '{right}'")
    return took


def prepare(language, case):
    """The program as it is ahead of the first round, built."""
    _, count, lines, _ = case
    language.stamp = time.time_ns()
    language.fresh()
    language.save(count, lines, 1, 1)
    language.build(count, "all")


def measure(languages, case, rounds):
    for language in languages:
        prepare(language, case)
    times = {type(language).__name__: [] for language in languages}
    for round_ in range(rounds):
        for language in languages:
            times[type(language).__name__].append(once(language, case, round_))
    return {name: round(statistics.median(each), 1) for name, each in times.items()}


def use_private_folders(home):
    for name, folder in (("HOME", ""), ("XDG_CONFIG_HOME", "/c"), ("XDG_STATE_HOME", "/s"), ("XDG_RUNTIME_DIR", "/r"),
                         ("GOCACHE", "/go"), ("GOPATH", "/gopath")):
        os.makedirs(home + folder, exist_ok=True)
        os.environ[name] = home + folder
    os.environ.pop("TARNWICK_CC", None)


def tool_links(build, home):
    """The make tool by a name of our own, beside which the messages lie."""
    os.makedirs(home + "/tools")
    for tool in ("quarn.exe", "ordo.exe"):
        os.symlink(f"{build}/bin/{tool}", f"{home}/tools/{tool}")
    return home + "/tools/ordo.exe"


def installed_languages(home):
    return [kind(home) for kind in (Tarnwick, Pascal, C, CByTcc, Go, Python)
            if kind is Tarnwick or shutil.which(kind.needs)]


def main():
    build, rounds = os.path.abspath(sys.argv[1]), int(sys.argv[2]) if len(sys.argv) > 2 else 7
    home = tempfile.mkdtemp()
    try:
        use_private_folders(home)
        Tarnwick.tool = tool_links(build, home)
        languages = installed_languages(home)
        result = {case[0]: measure(languages, case, rounds) for case in CASES}
        result["load"] = round(os.getloadavg()[0], 1)
    finally:
        shutil.rmtree(home, ignore_errors=True)
    json.dump(result, sys.stdout, indent=1)


main()
