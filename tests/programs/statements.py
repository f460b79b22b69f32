# SPDX-License-Identifier: Apache-2.0
#
# Random statements. A statement is its lines in a program, and a function that does with a frame what the program must.
# `machine.stamp()` stands before each, where the program reports the error that the statement before it left.
import model
from model import machine, Exit, Iterate, Return
from expressions import (BOOL, INT, FIXED, TEXT, SET, Place, Variable, aggregate, compare, expression, invoke, number_text, place,
                         plain_text, quoted)


def indented(lines):
    return ["  " + line for line in lines]


def block(scope, size, depth):
    made = [statement(scope, depth) for _ in range(size)]
    lines = [line for part, _ in made for line in part]
    actions = [action for _, action in made]

    def run(frame):
        for action in actions:
            machine.stamp()
            action(frame)
    return lines, run


def statement(scope, depth):
    chance = scope.chance
    while True:
        kinds = SIMPLE if depth <= 0 or chance.random() < 0.6 else NESTED
        made = chance.choice(kinds)(scope, depth)
        if made:
            return made


# ---- simple ones ----

def any_kind(scope):
    return scope.chance.choice(scope.world.kinds)


def assign(scope, depth):
    kind = any_kind(scope)
    target = place(scope, kind, 2, change=True)
    if not target:
        return None
    text, value = aggregate(scope, target.kind, 3)

    def run(frame):
        indexes = target.indexes(frame)
        new = value(frame)
        if target.kind.kind == "arr":
            new = model.taken(target.kind, target.follow(frame, indexes), new)
        target.write(frame, indexes, new)
    return ["%s := %s" % (target.text(), text)], run


def put_character(scope, depth):
    variables = [v for v in scope.variables if v.kind.kind == "str" and scope.changeable(v)]
    if not variables:
        return None
    v = scope.chance.choice(variables)
    at, code = scope.chance.randint(0, 4), scope.chance.randint(65, 90)

    def run(frame):
        text = v.read(frame)
        if 1 <= at <= len(text):
            v.write(frame, text[:at - 1] + chr(code) + text[at:])
    return ["%s[%d] := %d" % (v.name, at, code)], run


def show(scope, depth):
    kind = scope.chance.choice((INT, BOOL, FIXED, TEXT, SET))
    text, value = expression(scope, kind, 3)
    shown = "PRINT(%s)" % (text if kind is TEXT else "STR(%s)" % text)
    return [shown], lambda frame: machine.output.append(value(frame) if kind is TEXT else plain_text(kind, value(frame)))


def call_procedure(scope, depth):
    fitting = [f for f in scope.world.functions if f.result is None and (f.light or not scope.light)]
    made = invoke(scope, scope.chance.choice(fitting), 3) if fitting and scope.calls else None
    return ([made[0]], made[1]) if made else None


def include(scope, depth):
    target = place(scope, SET, 2, change=True)
    if not target:
        return None
    text, value = expression(scope, INT, 1)
    adds = scope.chance.random() < 0.6
    inside = scope.chance.random() < 0.8

    def run(frame):
        indexes = target.indexes(frame)
        member = value(frame) % 41 if inside else value(frame)
        members = target.follow(frame, indexes)
        upper = target.kind.upper
        if not -32768 <= member <= 32767 or (upper and not 0 <= member <= upper):
            if adds:
                return machine.fail(601)
            raise model.Discard()
        if not adds and not upper:
            raise_if_outside(members, member)
        return target.write(frame, indexes, members | {member} if adds else members - {member})
    return ["%s(%s, %s)" % ("SETINCLUDE" if adds else "SETEXCLUDE", target.text(),
                            "(%s) mod 41" % text if inside else text)], run


def raise_if_outside(members, member):
    """A set without bounds widens; what its bounds are is not followed here."""
    if member not in members:
        raise model.Discard()


def a_list(scope, change=True, kind=None):
    lists = [k for k in scope.world.kinds if k.kind == "list" and (kind is None or k.element.kind == kind)]
    return place(scope, scope.chance.choice(lists), 2, change=change)


def list_add(scope, depth):
    target = a_list(scope)
    if not target:
        return None
    text, value = aggregate(scope, target.kind.element, 3)

    def run(frame):
        indexes = target.indexes(frame)
        new = target.kind.element.fit(value(frame))
        elements = target.follow(frame, indexes)
        if target.kind.limit and len(elements) >= target.kind.limit:
            return machine.fail(618)
        return target.write(frame, indexes, elements + [new])
    return ["LISTADD(%s, %s)" % (target.text(), text)], run


def list_delete(scope, depth):
    target = a_list(scope)
    if not target:
        return None
    at, count = scope.chance.choice((1, 1, 2, 0)), scope.chance.choice((None, 1, 2))

    def run(frame):
        indexes = target.indexes(frame)
        elements = target.follow(frame, indexes)
        if not 1 <= at <= len(elements):
            return machine.fail(603)
        return target.write(frame, indexes, elements[:at - 1] + elements[at - 1 + (count or 1):])
    return ["LISTDELETE(%s, %d%s)" % (target.text(), at, ", %d" % count if count else "")], run


def list_clear(scope, depth):
    target = a_list(scope)
    if not target:
        return None
    return ["LISTCLEAR(%s)" % target.text()], lambda frame: target.write(frame, target.indexes(frame), [])


def list_sort(scope, depth):
    target = a_list(scope, True, "str")
    if not target:
        return None

    def run(frame):
        indexes = target.indexes(frame)
        target.write(frame, indexes, sorted(target.follow(frame, indexes)))
    return ["LISTSORT(%s)" % target.text()], run


def table_place(scope, change):
    tables = [k for k in scope.world.kinds if k.kind == "tab"]
    return place(scope, scope.chance.choice(tables), 2, change=change)


def key(scope, table, places):
    """A text of a key is not cut to the field's capacity: a longer one is the key of no row."""
    kinds = [table.row.fields[n][1] for n in places]
    parts = [aggregate(scope, kind, 1) for kind in kinds]
    return "{" + ", ".join(part[0] for part in parts) + "}", lambda frame: tuple(
        part[1](frame) if kind.kind == "str" else kind.fit(part[1](frame)) for kind, part in zip(kinds, parts))


def table_add(scope, depth):
    target = table_place(scope, True)
    if not target:
        return None
    text, value = aggregate(scope, target.kind.row, 2)

    def run(frame):
        indexes = target.indexes(frame)
        new = target.kind.row.fit(value(frame))
        rows = list(target.follow(frame, indexes))
        model.table_add(target.kind, rows, new)
        target.write(frame, indexes, rows)
    return ["TABADD(%s, %s)" % (target.text(), text)], run


def table_change(scope, depth):
    target = table_place(scope, True)
    if not target:
        return None
    index, places = scope.chance.choice(target.kind.indexes)
    text, value = key(scope, target.kind, places)
    row_text, row = aggregate(scope, target.kind.row, 1)
    deletes = scope.chance.random() < 0.5

    def run(frame):
        indexes = target.indexes(frame)
        wanted = value(frame)
        new = None if deletes else target.kind.row.fit(row(frame))
        rows = list(target.follow(frame, indexes))
        if deletes:
            model.table_delete(rows, places, wanted)
        else:
            model.table_update(target.kind, rows, places, wanted, new)
        target.write(frame, indexes, rows)
    if deletes:
        return ["TABDELETE(%s, %s, %s)" % (target.text(), text, index)], run
    return ["TABUPDATE(%s, %s, %s, %s)" % (target.text(), text, row_text, index)], run


def table_look(scope, depth):
    source = table_place(scope, False)
    if not source:
        return None
    rows = [v for v in scope.variables if v.kind is source.kind.row and scope.changeable(v) and v is not source.variable]
    if not rows:
        return None
    into = scope.chance.choice(rows)
    index, places = scope.chance.choice(source.kind.indexes)
    text, value = key(scope, source.kind, places)
    op = scope.chance.choice((None, "EQ", "GE", "GT", "LE", "LT", "FIRST", "LAST"))

    def run(frame):
        indexes = source.indexes(frame)
        wanted = value(frame)
        row = model.table_find(op or "EQ", source.follow(frame, indexes), places, wanted)
        into.write(frame, source.kind.row.fit(row) if row is not None else source.kind.row.empty())
        if op is None and row is None:
            machine.fail(604)
        elif op is not None:
            machine.output.append(str(row is not None))
    if op is None:
        return ["TABREAD(%s, %s, %s, %s)" % (source.text(), text, into.name, index)], run
    return ["PRINT(STR(TABFIND(%s, %s, %s, %s, %s)))" % (quoted(op), source.text(), text, into.name, index)], run


def redim(scope, depth):
    arrays = [k for k in scope.world.kinds if k.kind == "arr" and not k.bounds]
    target = place(scope, scope.chance.choice(arrays), 2, change=True)
    if not target:
        return None
    lower = scope.chance.choice((1, 1, 0, -2))
    upper = lower + scope.chance.randint(0, 4)
    keeps = scope.chance.choice((None, True, False))

    def run(frame):
        indexes = target.indexes(frame)
        old = target.follow(frame, indexes)
        new = [[(lower, upper)], [target.kind.element.empty() for _ in range(upper - lower + 1)]]
        if keeps and old[0]:
            for n in range(max(lower, old[0][0][0]), min(upper, old[0][0][1]) + 1):
                new[1][n - lower] = old[1][n - old[0][0][0]]
        target.write(frame, indexes, new)
    words = "" if keeps is None else ", true" if keeps else ", false"
    return ["REDIM(%s, %d, %d%s)" % (target.text(), lower, upper, words)], run


def leave(scope, depth):
    """exit, iterate or return, where they may stand."""
    choices = []
    if scope.loops:
        choices += [("exit", Exit), ("iterate", Iterate)]
    if scope.result is not None:
        choices.append(("return", None))
    if not choices:
        return None
    word, raised = scope.chance.choice(choices)
    test, decided = expression(scope, BOOL, 2)
    if word == "return":
        text, value = aggregate(scope, scope.result, 2)

        def back(frame):
            if decided(frame):
                machine.stamp()
                raise Return(scope.result.fit(value(frame)))
        return ["if %s then" % test, "  return " + text, "end if"], back

    def run(frame):
        if decided(frame):
            raise raised()
    return ["%s when %s" % (word, test)], run


SIMPLE = (assign, assign, assign, assign, assign, put_character, show, call_procedure, call_procedure, include, list_add,
          list_add, list_delete, list_clear, list_sort, table_add, table_add, table_change, table_look, redim, leave)


# ---- those with blocks ----

def condition(scope, depth):
    arms, other = [], None
    for _ in range(scope.chance.choice((1, 1, 2))):
        test, decided = expression(scope, BOOL, 3)
        arms.append((test, decided, block(scope, scope.chance.randint(1, 2), depth - 1)))
    if scope.chance.random() < 0.5:
        other = block(scope, 1, depth - 1)
    lines = []
    for n, (test, _, inner) in enumerate(arms):
        lines += ["%s %s then" % ("elseif" if n else "if", test)] + indented(inner[0])
    if other:
        lines += ["else"] + indented(other[0])

    def run(frame):
        for n, (_, decided, inner) in enumerate(arms):
            if n:
                machine.stamp()
            if decided(frame):
                return inner[1](frame)
        return other[1](frame) if other else None
    return lines + ["end if"], run


def rounds(items, action, inner, frame):
    """Runs a body for each item; the loop ends where it is left."""
    for item in items:
        action(item)
        try:
            inner(frame)
        except Iterate:
            pass
        except Exit:
            return
        machine.stamp()


def loop_body(scope, depth, locked):
    added = [name for name in locked if name not in scope.locked]
    scope.locked.update(added)
    scope.loops += 1
    made = block(scope, scope.chance.randint(1, 3), depth - 1)
    scope.loops -= 1
    scope.locked.difference_update(added)
    return made


def a_variable(scope, kind, without=None):
    """A variable of its own for a loop: local, whole."""
    found = [v for v in scope.variables if v.kind is kind and not v.shared and scope.changeable(v) and v is not without]
    return scope.chance.choice(found) if found else None


def count(scope, depth):
    v = a_variable(scope, INT)
    if not v:
        return None
    first, last = scope.chance.randint(-2, 5), scope.chance.randint(-2, 5)
    step, down = scope.chance.choice((None, 1, 2, 3)), scope.chance.random() < 0.4
    text, value = expression(scope, INT, 1)
    lines, inner = loop_body(scope, depth, [])
    head = "for %s from (%s) mod 4 + %s %s %s%s loop" % (v.name, text, number_text(first), "downto" if down else "to",
                                                        number_text(last), " by %d" % step if step else "")

    def run(frame):
        begin = model.wrap(value(frame) % 4 + first)
        by = -(step or 1) if down else step or 1
        rounds(range(begin, last + (-1 if down else 1), by), lambda n: v.write(frame, n), inner, frame)
    return [head] + indented(lines) + ["end loop"], run


def elements_of(kind, value, index):
    if kind.kind == "arr":
        return value[1]
    if kind.kind == "set":
        return sorted(value)
    if kind.kind == "str":
        lines = value.split("\n")
        return lines[:-1] if lines[-1] == "" else lines
    if kind.kind == "tab":
        places = (index or kind.indexes[0])[1]
        return sorted(value, key=lambda row: model.key_of(row, places))
    return value


def walk(scope, depth):
    chance = scope.chance
    kinds = [k for k in scope.world.kinds if k.kind in ("list", "arr", "set", "tab", "str")]
    kind = chance.choice(kinds)
    element = {"set": INT, "str": TEXT}.get(kind.kind) or kind.element
    source = place(scope, kind, 2) if chance.random() < 0.8 else None
    if chance.random() < 0.15:
        shared = scope.world.shared[-1]
        kind, element, source = shared.kind, shared.kind.element, Place(shared, shared.kind, [])
    v = a_variable(scope, element, source and source.variable)
    # An element that is not there would be told again in each round.
    if not v or (source and any(hasattr(step, "indexes") for step in source.steps)):
        return None
    kind = source.kind if source else kind
    text, value = (source.text(), source.read) if source else expression(scope, kind, 2)
    index = chance.choice(kind.indexes) if kind.kind == "tab" and chance.random() < 0.6 else None
    backwards = chance.random() < 0.4
    calls, scope.calls = scope.calls, False
    where = expression(scope, BOOL, 2) if chance.random() < 0.4 else None
    scope.calls = calls
    # Whatever the walked expression reads is left alone in the body.
    read = [u for u in scope.variables if u.name in text]
    # What a called function changes is followed where a class variable is walked that is a list; else there are no calls.
    live = source and source.variable.shared and not source.steps and kind.kind == "list"
    scope.calls = calls and (live or not any(u.shared for u in read))
    lines, inner = loop_body(scope, depth, [u.name for u in read] + [v.name])
    if live and calls and not scope.light and chance.random() < 0.5:
        lines, inner = with_change(scope, v, lines, inner)
    scope.calls = calls
    head = "for each %s in %s%s%s%s loop" % (v.name, text, " through " + index[0] if index else "",
                                             " desc" if backwards else "", " where " + where[0] if where else "")

    def run(frame):
        if live:
            return rounds_where(live_elements(value, frame, backwards), v, where, inner, frame, False)
        items = list(elements_of(kind, model.copied(value(frame)), index))
        if backwards:
            items.reverse()
        rounds_where(items, v, where, inner, frame, kind.kind in ("str", "tab"))
        if kind.kind == "tab":
            machine.stamp()
            v.write(frame, v.kind.fit(scope.world.makers[v.kind.name].invoke([])))
        return None
    after = ["%s := MAKE_%s()" % (v.name, v.kind.name)] if kind.kind == "tab" else []
    return [head] + indented(lines) + ["end loop"] + after, run


def live_elements(value, frame, backwards):
    """The elements of a list that may change meanwhile: as they are at their round; the end where their number changes."""
    count = len(value(frame))
    for n in reversed(range(count)) if backwards else range(count):
        now = value(frame)
        if len(now) != count:
            return
        yield now[n]


def with_change(scope, v, lines, inner):
    """A body and, behind it, a function that changes the list that is walked."""
    change = scope.world.change

    def run(frame):
        inner(frame)
        machine.stamp()
        change.run([v.read(frame)])
    return lines + ["%s(%s)" % (change.name, v.name)], run


def rounds_where(items, v, where, inner, frame, early):
    """The rounds of `for each`. Early: what the head left is reported at the beginning of a round, else at its end."""
    for item in items:
        v.write(frame, v.kind.fit(model.taken(v.kind, v.read(frame), item)))
        if early:
            machine.stamp()
        try:
            if not where or where[1](frame):
                inner(frame)
        except Iterate:
            pass
        except Exit:
            return
        if not early:
            machine.stamp()


def repeat(scope, depth):
    v = a_variable(scope, INT)
    if not v:
        return None
    times = scope.chance.randint(0, 4)
    lines, inner = loop_body(scope, depth, [v.name])

    def run(frame):
        machine.stamp()
        n = 0
        v.write(frame, 0)
        while True:
            machine.stamp()
            if not v.read(frame) < times:
                return
            machine.stamp()
            n += 1
            v.write(frame, n)
            try:
                inner(frame)
            except Iterate:
                pass
            except Exit:
                return
    return (["%s := 0" % v.name, "while %s < %d loop" % (v.name, times), "  %s := %s + 1" % (v.name, v.name)] +
            indented(lines) + ["end loop"]), run


def select(scope, depth):
    chance = scope.chance
    kind = chance.choice((INT, TEXT, chance.choice(scope.world.enums)))
    text, value = expression(scope, kind, 3)
    if kind is INT:
        labels = [("-100 to -1", lambda x: -100 <= x <= -1), ("0, 7", lambda x: x in (0, 7)),
                  ("1 to 6", lambda x: 1 <= x <= 6), ("100 to 2147483647", lambda x: x >= 100)]
    elif kind is TEXT:
        labels = [('""', lambda x: x == ""), ('"a", "b"', lambda x: x in ("a", "b")), ('"abc"', lambda x: x == "abc")]
    else:
        labels = [(name, lambda x, n=n: x == n) for n, name in enumerate(kind.names)]
    labels = chance.sample(labels, chance.randint(1, min(3, len(labels))))
    arms = [(label, test, block(scope, 1, depth - 1)) for label, test in labels]
    other = block(scope, 1, depth - 1) if chance.random() < 0.5 else None
    lines = ["select " + text]
    for label, _, inner in arms:
        lines += ["case %s =>" % label] + indented(inner[0])
    if other:
        lines += ["else"] + indented(other[0])

    def run(frame):
        decided = value(frame)
        for _, test, inner in arms:
            if test(decided):
                return inner[1](frame)
        return other[1](frame) if other else None
    return lines + ["end select"], run


NESTED = (condition, condition, count, walk, walk, walk, repeat, select)
