#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
#
# Random well-typed programs over all kinds of value, each with the output that the model (model.py) says it has. Many of
# them stand in one class, as functions that share types and helpers.
#
#   generate.py BINARIES [--count N] [--seed N] [--jobs N] [--setting NAME] [--keep FOLDER]
#
# --count is the number of functions; a class holds 20. A class is told by its seed: `--seed S --count 20` makes it again.
import argparse
import os
import random
import re
import shutil
import sys
import tempfile
import threading

import model
import toolfolder
from expressions import (BOOL, FIXED, INT, REAL, SET, SMALLSET, TEXT, TEXT3, TEXT8, Scope, Variable, aggregate, expression)
from model import machine
from statements import block, indented, plain_text

FUNCTIONS = 20
SCALARS = (BOOL, INT, FIXED, REAL, TEXT, TEXT3, TEXT8, SET, SMALLSET)


class Function:
    def __init__(self, name, parameters, result, light):
        self.name, self.parameters, self.result, self.light = name, parameters, result, light
        self.variables, self.lines, self.body = [], [], None

    def run(self, arguments):
        """The result, and what the parameters are at the end."""
        frame = {name: value for (_, name, _), value in zip(self.parameters, arguments)}
        for variable in self.variables:
            frame[variable.name] = variable.kind.empty()
        machine.depth += 1
        result = None
        try:
            self.body(frame)
        except model.Return as back:
            result = back.value
        machine.stamp()
        machine.depth -= 1
        return result, [frame[name] for _, name, _ in self.parameters]

    def invoke(self, arguments):
        return self.run(arguments)[0]

    def text(self):
        head = ", ".join("%s%s : %s" % (mode + " " if mode != "in" else "", name, model.reference(kind))
                         for mode, name, kind in self.parameters)
        lines = ["function %s(%s)%s" % (self.name, head, " return " + model.reference(self.result) if self.result else "")]
        if self.variables:
            lines.append("var")
            lines += ["  %s : %s" % (v.name, model.reference(v.kind)) for v in self.variables]
        return lines + indented(self.lines) + ["end function"]


class World:
    """The types, class variables and functions of one class."""

    def __init__(self, chance):
        self.chance, self.functions, self.makers, self.shared = chance, [], {}, []
        self.make_types()
        self.kinds = list(SCALARS) + self.enums + self.composites
        for kind in (INT, TEXT, BOOL, FIXED, self.enums[0], SET, self.composites[0], self.lists[0]):
            self.shared.append(Variable("G%d" % len(self.shared), kind, shared=True))

    def make_types(self):
        chance = self.chance
        self.enums = [model.EnumType("TE%d" % n, ["E%d_%d" % (n, i) for i in range(chance.randint(1, 5))])
                      for n in range(2)]
        inner = model.RecordType("TR0", [("f%d" % n, self.scalar()) for n in range(chance.randint(1, 4))])
        row = model.RecordType("TR1", [("k", INT), ("s", TEXT8), ("e", self.enums[0]), ("b", BOOL)] +
                               [("f%d" % n, self.scalar()) for n in range(chance.randint(0, 3))])
        either = model.RecordType("TU0", [("u%d" % n, self.scalar()) for n in range(2)], "union")
        lower = chance.randint(-2, 2)
        arrays = [model.ArrayType("TA0", [(lower, lower + 2)], self.scalar()),
                  model.ArrayType("TA1", [(0, 1), (1, 2)], self.scalar()),
                  model.ArrayType("TA2", [(1, 2)], inner), model.ArrayType("TA3", None, chance.choice((INT, TEXT, inner)))]
        if chance.random() < 0.5:
            arrays.append(model.ArrayType("TA4", [(0, 1), (-1, 0), (1, 2)], self.scalar()))
        self.lists = [model.ListType("TL0", None, INT), model.ListType("TL1", None, TEXT), model.ListType("TL2", None, inner),
                      model.ListType("TL3", 3, self.scalar()), model.ListType("TL4", None, arrays[0])]
        indexes = [("by_k", ["k"]), ("by_s", ["s"]), ("by_e", ["e", "b", "k"])]
        tables = [model.TableType("TT0", row, indexes[:chance.randint(1, 3)])]
        outer = model.RecordType("TR2", [("name", TEXT8), ("part", inner), ("all", self.lists[chance.randrange(5)]),
                                         ("some", chance.choice(arrays)), ("rows", tables[0])])
        outer.fields[2] = ("every", outer.fields[2][1])
        outer = model.RecordType("TR2", outer.fields)
        self.composites = [inner, row, either] + arrays + self.lists + tables + [outer, model.ListType("TL5", None, outer)]

    def scalar(self):
        return self.chance.choice(SCALARS + tuple(self.enums))

    # ---- helpers in the program ----

    def shown(self, kind, text):
        if kind.kind in model.COMPOSITE:
            return "SHOW_%s(%s)" % (kind.name, text)
        if kind.kind == "str":
            return text
        return "STR(%s, 1.8)" % text if kind is REAL else "STR(%s)" % text

    def show(self, kind, value):
        if kind.kind == "rec":
            return "(" + ",".join(self.show(part, v) for (_, part), v in zip(kind.fields, value)) + ")"
        if kind.kind in model.COMPOSITE:
            items = value[1] if kind.kind == "arr" else value
            if kind.kind == "tab":
                items = sorted(value, key=lambda row: model.key_of(row, kind.indexes[0][1]))
            return "<" + "".join(self.show(kind.element, item) + ";" for item in items) + ">"
        if kind.kind == "str":
            return value
        return model.real_text(value, 8) if kind is REAL else plain_text(kind, value)

    def show_function(self, kind):
        lines = ["function SHOW_%s(v : %s) return string" % (kind.name, kind.name)]
        if kind.kind == "rec":
            parts = " + \",\" + ".join(self.shown(part, "v." + name) for name, part in kind.fields)
            return lines + ["  return \"(\" + %s + \")\"" % parts, "end function"]
        return lines + ["var", "  e : %s" % model.reference(kind.element), "  t : string", "  for each e in v loop",
                        "    t := t + %s + \";\"" % self.shown(kind.element, "e"), "  end loop",
                        "  return \"<\" + t + \">\"", "end function"]

    # ---- functions ----

    def make_makers(self):
        """A function without arguments for each composite kind, so that each has a value that stands alone."""
        for kind in self.composites:
            function = Function("MAKE_" + kind.name, [], kind, True)
            function.variables = [Variable("v", kind)]
            self.makers[kind.name] = function
            self.fill(function, lambda scope, kind=kind: self.fill_value(scope, kind))

    def fill_value(self, scope, kind):
        if kind.kind == "arr" and kind.bounds and len(kind.bounds) > 1:
            return [], lambda frame: None
        scope.calls = False
        text, value = aggregate_only(scope, kind)
        return ["v := " + text], lambda frame: frame.__setitem__("v", kind.fit(value(frame)))

    def fill(self, function, make):
        scope = Scope(self.chance, self, function.variables[1:], True, None)
        lines, action = make(scope)
        function.lines = lines + ["return v"]

        def body(frame):
            machine.stamp()
            action(frame)
            machine.stamp()
            raise model.Return(function.result.fit(frame["v"]))
        function.body = body

    def make_function(self, name, light, result, parameters=None):
        chance = self.chance
        if parameters is None:
            modes = ("in", "in", "inout") if light else ("in", "inout", "out")
            parameters = []
            for n in range(chance.randint(1, 3)):
                mode = chance.choice(modes)
                kind = chance.choice((INT, TEXT, BOOL)) if light and mode != "in" else chance.choice(self.kinds)
                parameters.append((mode, "a%d" % n, kind))
        function = Function(name, parameters, result, light)
        count = 4 if light else 9
        function.variables = [Variable("i%d" % n, INT) for n in range(2)] + [Variable("t0", TEXT)] + \
            [Variable("v%d" % n, chance.choice(self.kinds)) for n in range(count)]
        variables = [Variable(n, kind, fixed=mode == "in") for mode, n, kind in parameters] + function.variables
        shared = [v if not light or v.kind.kind not in model.COMPOSITE else Variable(v.name, v.kind, True, True)
                  for v in self.shared]
        scope = Scope(chance, self, variables + shared, light, result)
        lines, body = block(scope, chance.randint(2, 4) if light else chance.randint(4, 9), 1 if light else 3)
        function.lines, function.body = lines, body
        if result is not None:
            self.end_with_result(function, scope, body)
        return function

    def end_with_result(self, function, scope, body):
        scope.calls = False
        text, value = aggregate(scope, function.result, 2)
        function.lines = function.lines + ["return " + text]

        def whole(frame):
            body(frame)
            machine.stamp()
            raise model.Return(function.result.fit(value(frame)))
        function.body = whole

    def make_change(self):
        """A function that changes the class variable that is a list: one more element, one fewer, another first one."""
        name = self.shared[-1].name
        self.change = Function("CHANGE", [("in", "n", INT)], None, False)
        self.change.lines = ["select n mod 3", "case 0 =>", "  LISTADD(%s, n)" % name, "case 1 =>",
                             "  LISTDELETE(%s, 1)" % name, "else", "  %s[1] := n" % name, "end select"]

        def body(frame):
            n, elements = frame["n"], machine.globals[name]
            machine.stamp()
            if n % 3 == 0:
                machine.globals[name] = elements + [n]
            elif not elements:
                machine.fail(603)
            else:
                machine.globals[name] = elements[1:] if n % 3 == 1 else [n] + elements[1:]
        self.change.body = body

    def make_recursive(self):
        """Functions that call themselves and one another, four deep at most: each call in front of a body of its own."""
        chance = self.chance
        result = chance.choice((INT, TEXT, FIXED, self.enums[0], chance.choice(self.composites)))
        parameters = [("in", "d", INT), ("in", "a1", chance.choice(self.kinds)),
                      ("inout", "a2", chance.choice((INT, TEXT, BOOL, self.lists[0])))]
        made = [self.make_function("R%d" % n, True, result, parameters) for n in range(2)]
        for function in made:
            for step in (1, 2)[:chance.randint(1, 2)]:
                self.add_call_ahead(function, chance.choice(made), step)
        self.functions += made

    def add_call_ahead(self, function, called, step):
        own = Variable("x%d" % step, function.result)
        scope = Scope(self.chance, self, [Variable("d", INT, fixed=True), Variable("a1", function.parameters[1][2], fixed=True)],
                      True, None)
        scope.calls = False
        text, value = expression(scope, function.parameters[1][2], 1)
        function.lines = ["if d > 0 and d < 5 then", "  %s := %s(d - %d, %s, a2)" % (own.name, called.name, step, text),
                          "end if"] + function.lines
        function.variables = function.variables + [own]
        inner = function.body

        def body(frame):
            machine.stamp()
            if 0 < frame["d"] < 5:
                machine.stamp()
                given = function.parameters[1][2].fit(value(frame))
                result, left = called.run([frame["d"] - step, given, function.parameters[2][2].fit(frame["a2"])])
                frame["a2"] = left[2]
                frame[own.name] = function.result.fit(result)
            return inner(frame)
        function.body = body

    def make_helpers(self):
        self.make_makers()
        self.make_change()
        for n in range(6):
            result = self.chance.choice((INT, INT, TEXT, BOOL, FIXED, self.enums[0], self.chance.choice(self.composites)))
            self.functions.append(self.make_function("F%d" % n, True, result))
        for n in range(4):
            self.functions.append(self.make_function("P%d" % n, False, None))
        self.make_recursive()

    def report(self, function):
        """PRINT lines for the variables of a function, and the class variables."""
        variables = function.variables + self.shared
        lines = ["PRINT(\"%s \" + %s)" % (v.name, self.shown(v.kind, v.name)) for v in variables]

        def run(frame):
            for v in variables:
                machine.stamp()
                machine.output.append(v.name + " " + self.show(v.kind, v.read(frame)))
        return lines, run


def aggregate_only(scope, kind):
    """A composite value of literals."""
    if kind.kind not in model.COMPOSITE:
        from expressions import LITERALS
        return LITERALS[kind.kind](scope, kind)
    if kind.kind == "arr" and kind.bounds and len(kind.bounds) > 1:
        maker = scope.world.makers[kind.name]
        return maker.name + "()", lambda frame: maker.invoke([])
    if kind.kind == "rec":
        kinds = [part for _, part in kind.fields]
    else:
        count = kind.count() if kind.kind == "arr" and kind.bounds else scope.chance.randint(1, 2)
        kinds = [kind.element] * count
    parts = [(part, aggregate_only(scope, part)) for part in kinds]

    def value(frame):
        if kind.kind == "tab":
            rows = []
            for row, made in parts:
                model.table_add(kind, rows, row.fit(made[1](frame)))
            return rows
        values = [part.fit(made[1](frame)) for part, made in parts]
        if kind.kind == "arr":
            return [list(kind.bounds) if kind.bounds else [(1, len(values))], values]
        return values
    return "{" + ", ".join(made[0] for _, made in parts) + "}", value


class Program:
    """A class of random functions: its text, and the output that it must have."""

    def __init__(self, seed, functions):
        chance = random.Random(seed)
        machine.__init__()
        self.world = World(chance)
        for v in self.world.shared:
            v.write({}, v.kind.empty())
        self.world.make_helpers()
        self.tests, tries = [], 0
        while len(self.tests) < functions and tries < functions * 10:
            tries += 1
            self.add_test(len(self.tests))
        self.expected = "".join(line + "\n" for line in machine.output)

    def add_test(self, number):
        test = self.world.make_function("TEST%d" % number, False, None, [])
        lines, shown = self.world.report(test)
        test.lines, inner = test.lines + lines, test.body

        def body(frame):
            inner(frame)
            shown(frame)
        test.body = body
        before = len(machine.output), model.copied(list(machine.globals.items()))
        machine.steps = machine.depth = 0
        try:
            machine.stamp()
            machine.output.append(test.name)
            machine.stamp()
            test.run([])
            if sum(len(line) for line in machine.output[before[0]:]) > 100000:
                raise model.Discard()
            self.tests.append(test)
        except (model.Discard, RecursionError):
            del machine.output[before[0]:]
            machine.globals = dict(before[1])
            machine.errors = []

    def text(self):
        world = self.world
        lines = ["Tarnwick Class Main"]
        for kind in world.enums + world.composites:
            lines += ("type %s : %s" % (kind.name, kind.source)).split("\n")
        lines.append("private var")
        lines += ["  %s : %s" % (v.name, model.reference(v.kind)) for v in world.shared]
        lines += ["function onerror(n : integer)", "  PRINT(\"E\" + STR(n))", "end function"]
        for kind in world.composites:
            lines += world.show_function(kind)
        for function in list(world.makers.values()) + [world.change] + world.functions + self.tests:
            lines += function.text()
        lines.append("function main()")
        for test in self.tests:
            lines += ["  PRINT(\"%s\")" % test.name, "  %s()" % test.name]
        return "\n".join(lines + ["end function", "End class"]) + "\n"


ERROR = re.compile(r"E\d{3}(\|E\d{3})*$")


def sections(text):
    """What each function printed: its name, its lines, and the errors that were told meanwhile."""
    found = [("", [], [])]
    for line in text.split("\n"):
        if line.startswith("TEST"):
            found.append((line, [], []))
        elif ERROR.match(line):
            found[-1][2].append(line)
        else:
            found[-1][1].append(line)
    return found


def difference(expected, got):
    """What differs; empty if nothing does.

    When an element is missing, the error may be noted before or behind another operand's call, whose statements report it:
    so the errors of a function are compared as a set, and its other lines one by one.
    """
    for (name, want, codes), (_, have, told) in zip(sections(expected), sections(got)):
        for a, b in zip(want + ["(nothing)"], have + ["(nothing)"]):
            if a != b:
                return "in %s: expected %.300r, got %.300r" % (name, a, b)
        possible = {code for line in codes for code in line.split("|")}
        surely = {line for line in codes if "|" not in line}
        if not set(told) <= possible or (surely and not told):
            return "in %s: expected the errors %s, got %s" % (name, sorted(possible), sorted(set(told)))
    count = len(sections(expected)), len(sections(got))
    return "" if count[0] == count[1] else "expected %d functions, got %d" % count


def fault(tools, program, folder):
    os.makedirs(folder)
    file = os.path.join(folder, "main.cls")
    with open(file, "w", encoding="latin-1") as out:
        out.write(program[0])
    done, messages = tools.build(file)
    if done.hung or done.code != 0 or not os.path.exists(os.path.join(folder, "main.exe")):
        return "not built: %.2000s" % messages
    os.rename(file, os.path.join(folder, "away.cls"))
    run = tools.run(os.path.join(folder, "main.exe"))
    if run.hung or run.code != 0:
        return "the program ended with code %d: %s" % (run.code, difference(program[1], run.output))
    return difference(program[1], run.output)


class Work:
    def __init__(self, binaries, setting, keep):
        self.binaries, self.setting, self.keep = binaries, setting, keep
        self.waiting, self.failed, self.lock, self.ready = [], 0, threading.Lock(), threading.Semaphore(0)

    def give(self, item):
        self.waiting.insert(0, item)
        self.ready.release()

    def run(self, top):
        tools = toolfolder.ToolFolder(self.binaries, top, self.setting)
        while True:
            self.ready.acquire()
            item = self.waiting.pop()
            if item is None:
                return
            seed, program = item
            folder = os.path.join(top, "program", str(seed))
            wrong = fault(tools, program, folder)
            if wrong:
                self.tell(seed, program, wrong, folder)
            shutil.rmtree(folder)

    def tell(self, seed, program, wrong, folder):
        with self.lock:
            self.failed += 1
            print("FAILED seed %d: %s" % (seed, wrong))
            sys.stdout.flush()
            if self.keep:
                place = os.path.join(self.keep, str(seed))
                os.makedirs(place, exist_ok=True)
                for name, text in (("main.cls", program[0]), ("expected", program[1])):
                    with open(os.path.join(place, name), "w", encoding="latin-1") as out:
                        out.write(text)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("binaries")
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--setting", default="d2")
    parser.add_argument("--keep")
    given = parser.parse_args()
    work, classes = Work(os.path.abspath(given.binaries), given.setting, given.keep), -(-given.count // FUNCTIONS)
    with tempfile.TemporaryDirectory(prefix="generated-") as top:
        threads = [threading.Thread(target=work.run, args=(os.path.join(top, str(n)),)) for n in range(given.jobs)]
        for thread in threads:
            thread.start()
        try:
            for seed in range(given.seed, given.seed + classes):
                program = Program(seed, FUNCTIONS)
                work.give((seed, (program.text(), program.expected)))
        finally:
            for thread in threads:
                work.give(None)
        for thread in threads:
            thread.join()
    print("%d programs in %d classes from seed %d, %d classes failed" %
          (classes * FUNCTIONS, classes, given.seed, work.failed))
    sys.exit(1 if work.failed else 0)


if __name__ == "__main__":
    main()
