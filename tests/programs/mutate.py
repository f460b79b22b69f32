#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
#
# Changes tokens of the programs of this folder at random: deletes, doubles, swaps and replaces them. Whatever comes of a
# class, the compiler must compile it or refuse it with messages that name a line: no crash, no hang, no message of the C
# compiler behind it, no failure without a message.
#
#   mutate.py BINARIES [--count N] [--seed N] [--jobs N] [--keep FOLDER]
#
# A mutant is told by its seed: `--seed S --count 1` makes it again, and --keep leaves its sources in FOLDER.
import argparse
import os
import random
import re
import shutil
import sys
import tempfile
import threading

import toolfolder

HERE = os.path.dirname(os.path.abspath(__file__))
TOKEN = re.compile(r'//[^\n]*|"(?:[^"\n]|"")*"|0[xX][0-9A-Fa-f]+L?|\d+(?:\.\d+)?(?:[eE][+-]?\d+)?|\w+|:=|<>|<=|>=|=>|\.\.|\s+|.',
                   re.S)
HANG_SECONDS = 10
MESSAGE = re.compile(r"\(\d+\) : error \d+ ")
# What stands in the messages of a mutant only when the compiler let something through that it should have refused.
BUGS = ("error 1904", "error 1908", "error 1909")
# What a token can be replaced by so that most programs still read well: the words of its row.
KINDS = [words.split() for words in (
    "+ - * / div mod and or = <> < <= > >= in",
    "boolean integer fixed real string enum set list",
    "list set table array",
    "in out inout",
    "to downto",
    "exit iterate",
    "record union",
    "true false",
    "private public",
    "const var type",
    ". , : :=",
    "not + -",
)]
NUMBERS = "0 1 2 3 9 -1 255 256 32767 32768 2147483647 0xFFFFFFFF 1.5 0.0001 1E0 1E308".split()
TEXTS = ['""', '"a"', '"x" + "y"']
VALUES = """0 1 1.5 1E0 "" "a" true [] [1] [1:5] {} {1} {{1}} STR(1) i s l t a r me main STR LENGTH(l) LENGTH(s) ORD(s) CHR(65)
integer system main.main""".split()
WORDS = """and or not in div mod if then else elseif end while loop for each from to downto by exit iterate when select case
return var type const function public private record union enum set array list table of index external boolean integer fixed
real string in out inout precond postcond through desc where callback onerror Uses class adt code ( ) [ ] { } , . : := => ..
PRINT LISTADD TABADD TABREAD REDIM OPEN RECORDADD SETINCLUDE Control""".split()
RESERVED = {word.lower() for word in WORDS} | {word for row in KINDS for word in row}


def programs():
    """The classes of each program: {name: {file: text}}."""
    found = []
    for name in sorted(os.listdir(HERE)):
        folder = os.path.join(HERE, name)
        if not os.path.exists(os.path.join(folder, "main.cls")):
            continue
        classes = {}
        for file in sorted(os.listdir(folder)):
            if file.endswith(".cls"):
                with open(os.path.join(folder, file), encoding="latin-1", newline="") as text:
                    classes[file] = text.read()
        if sum(len(text) for text in classes.values()) < 100000:
            found.append((name, classes))
    return found


def is_blank(token):
    return token.isspace() or token.startswith("//")


def lines_of(chance, tokens):
    """A stretch of whole lines: the numbers of its first token and of the one behind it."""
    ends = [0] + [n + 1 for n, token in enumerate(tokens) if "\n" in token]
    first = chance.randrange(len(ends))
    return ends[first], ends[min(first + chance.randint(1, 3), len(ends) - 1)]


def group_of(chance, tokens, opening, closing):
    """What stands in brackets somewhere, from the one to the other; nothing where there are none."""
    begins = [n for n, token in enumerate(tokens) if token == opening]
    if not begins:
        return None
    begin = chance.choice(begins)
    depth = 0
    for end in range(begin, len(tokens)):
        depth += (tokens[end] == opening) - (tokens[end] == closing)
        if depth == 0:
            return begin, end + 1
    return None


def replace_alike(chance, tokens, places):
    at = chance.choice(places)
    token = tokens[at]
    rows = [row for row in KINDS if token.lower() in row]
    if rows:
        tokens[at] = chance.choice(chance.choice(rows))
    elif token[0].isdigit():
        tokens[at] = chance.choice(NUMBERS + VALUES)
    elif token[0] == '"':
        tokens[at] = chance.choice(TEXTS + VALUES)
    elif token[0].isalpha() and token.lower() not in RESERVED:
        names = [t for t in (tokens[n] for n in places) if t[0].isalpha() and t.lower() not in RESERVED]
        tokens[at] = chance.choice(names) if chance.random() < 0.8 else chance.choice(VALUES)


def replace_group(chance, tokens):
    brackets = chance.choice(("()", "[]", "{}", "()"))
    group = group_of(chance, tokens, *brackets)
    if group is None:
        return
    begin, end = group
    other = group_of(chance, tokens, *chance.choice((brackets, brackets, "()", "[]", "{}")))
    kind = chance.randrange(4)
    if kind == 0 and other is not None:
        tokens[begin:end] = tokens[slice(*other)]
    elif kind == 1:
        tokens[begin + 1:end - 1] = [chance.choice(VALUES)]
    elif kind == 2:
        tokens[begin:end] = []
    else:
        tokens[end:end] = tokens[begin:end]


def move_lines(chance, tokens):
    begin, end = lines_of(chance, tokens)
    moved = tokens[begin:end]
    if chance.random() < 0.5:
        del tokens[begin:end]
    ends = [0] + [n + 1 for n, token in enumerate(tokens) if "\n" in token]
    where = chance.choice(ends)
    tokens[where:where] = moved


def damage(chance, tokens, places):
    """A change that most often breaks the grammar."""
    at, other = chance.choice(places), chance.choice(places)
    kind = chance.randrange(6)
    if kind == 0:
        tokens[at] = ""
    elif kind == 1:
        tokens[at] += " " + tokens[at]
    elif kind == 2:
        tokens[at], tokens[other] = tokens[other], tokens[at]
    elif kind == 3:
        tokens[at] = chance.choice(WORDS)
    elif kind == 4:
        tokens[at] = tokens[other]
    else:
        tokens[at] += " " + chance.choice(WORDS)


def mutate(chance, text):
    tokens = TOKEN.findall(text)
    for _ in range(chance.choice((1, 1, 1, 2, 3, 5))):
        places = [n for n, token in enumerate(tokens) if token and not is_blank(token)]
        if len(places) < 2:
            break
        kind = chance.randrange(12)
        if kind < 6:
            replace_alike(chance, tokens, places)
        elif kind < 8:
            replace_group(chance, tokens)
        elif kind < 9:
            move_lines(chance, tokens)
        elif kind < 11:
            begin, end = lines_of(chance, tokens)
            del tokens[begin:end]
        else:
            damage(chance, tokens, places)
    return "".join(tokens)


def fault(done, messages):
    """What is wrong with the answer of the compiler; empty if nothing is."""
    if done.hung:
        return "the compiler did not end"
    if done.code < 0:
        return "the compiler died of signal %d" % -done.code
    for bug in BUGS:
        if bug in messages:
            return messages.strip()
    if done.code != 0 and not MESSAGE.search(messages):
        return "it failed with code %d and no message: %s %s" % (done.code, messages.strip(), done.output.strip())
    if done.code == 0 and MESSAGE.search(messages):
        return "messages, but no failure: " + messages.strip()
    return ""


def one(tools, sources, seed, folder):
    """Makes the mutant of a seed, and compiles it: its program, the name of the changed class, what is wrong."""
    chance = random.Random(seed)
    name, classes = chance.choice(sources)
    os.makedirs(folder)
    changed = chance.choice(sorted(classes))
    for file, text in classes.items():
        with open(os.path.join(folder, file), "w", encoding="latin-1", newline="") as out:
            out.write(mutate(chance, text) if file == changed else text)
    return name, changed, fault(*tools.compile(os.path.join(folder, changed), HANG_SECONDS))


class Found:
    def __init__(self, keep):
        self.keep, self.count, self.refused, self.lock = keep, 0, 0, threading.Lock()

    def add(self, seed, name, changed, wrong, folder):
        with self.lock:
            self.count += 1
            print("FAILED seed %d, %s/%s: %s" % (seed, name, changed, wrong))
            sys.stdout.flush()
            if self.keep:
                shutil.copytree(folder, os.path.join(self.keep, str(seed)), dirs_exist_ok=True)


def work(binaries, sources, seeds, top, found):
    tools = toolfolder.ToolFolder(binaries, top)
    while True:
        try:
            seed = seeds.pop()
        except IndexError:
            return
        folder = os.path.join(top, "mutant", str(seed))
        name, changed, wrong = one(tools, sources, seed, folder)
        if wrong:
            found.add(seed, name, changed, wrong, folder)
        shutil.rmtree(folder)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("binaries")
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--keep")
    given = parser.parse_args()
    seeds = list(reversed(range(given.seed, given.seed + given.count)))
    found, sources = Found(given.keep), programs()
    with tempfile.TemporaryDirectory(prefix="mutants-") as top:
        threads = [threading.Thread(target=work, args=(os.path.abspath(given.binaries), sources, seeds,
                                                       os.path.join(top, str(n)), found)) for n in range(given.jobs)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    print("%d mutants from seed %d, %d failed" % (given.count, given.seed, found.count))
    sys.exit(1 if found.count else 0)


if __name__ == "__main__":
    main()
