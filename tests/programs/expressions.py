# SPDX-License-Identifier: Apache-2.0
#
# Random well-typed expressions and places. An expression is its text in a program and a function that computes its value
# from the variables of a frame, as the program must.
import model
from model import machine

BOOL, INT, FIXED, REAL = (model.Type(kind, name, name) for kind, name in
                          (("bool", "boolean"), ("int", "integer"), ("fixed", "fixed"), ("real", "real")))
TEXT, SET, SMALLSET = model.TextType(), model.SetType(), model.SetType(40)
TEXT3, TEXT8 = model.TextType(3), model.TextType(8)
SCALARS = (BOOL, INT, FIXED, REAL, TEXT, TEXT3, TEXT8, SET, SMALLSET)


class Variable:
    def __init__(self, name, kind, shared=False, fixed=False):
        self.name, self.kind, self.shared, self.fixed = name, kind, shared, fixed

    def read(self, frame):
        return (machine.globals if self.shared else frame)[self.name]

    def write(self, frame, value):
        (machine.globals if self.shared else frame)[self.name] = value


class Place:
    """A variable or a part of one: fields and elements on the way to it."""

    def __init__(self, variable, kind, steps):
        self.variable, self.kind, self.steps = variable, kind, steps

    def text(self):
        return self.variable.name + "".join(step.text for step in self.steps)

    def indexes(self, frame):
        return [step.compute(frame) for step in self.steps]

    def follow(self, frame, indexes):
        """The value there; an empty one, which belongs to nobody, where there is none."""
        value = self.variable.read(frame)
        for step, index in zip(self.steps, indexes):
            value = step.get(value, index)
        return value

    def read(self, frame):
        return self.follow(frame, self.indexes(frame))

    def write(self, frame, indexes, value):
        if not self.steps:
            return self.variable.write(frame, self.kind.fit(value))
        holder = self.variable.read(frame)
        for step, index in zip(self.steps[:-1], indexes):
            holder = step.get(holder, index)
        return self.steps[-1].put(holder, indexes[-1], value)


class FieldStep:
    def __init__(self, record, number):
        self.number = number
        name, self.kind = record.fields[number]
        self.text = "." + name

    def compute(self, frame):
        return None

    def get(self, value, _):
        return value[self.number]

    def put(self, value, _, new):
        value[self.number] = self.kind.fit(new)


class ElementStep:
    def __init__(self, kind, indexes):
        self.kind, self.indexes = kind.element, indexes
        self.sure = kind.kind == "arr" and kind.bounds and all(index[0].lstrip("-").isdigit() for index in indexes)
        self.text = "[" + ", ".join(index[0] for index in indexes) + "]"

    def compute(self, frame):
        return [index[1](frame) for index in self.indexes]

    def get(self, value, index):
        at = self.place(value, index)
        return self.kind.empty() if at is None else self.elements(value)[at]

    def put(self, value, index, new):
        at = self.place(value, index)
        new = self.kind.fit(new)
        if at is not None:
            self.elements(value)[at] = new


class ArrayStep(ElementStep):
    def elements(self, value):
        return value[1]

    def place(self, value, index):
        if value[0] is None:
            return machine.fail(613)
        at = 0
        for (lower, upper), i in zip(value[0], index):
            if not lower <= i <= upper:
                return machine.fail(602)
            at = at * (upper - lower + 1) + i - lower
        return at


class ListStep(ElementStep):
    def elements(self, value):
        return value

    def place(self, value, index):
        return index[0] - 1 if 1 <= index[0] <= len(value) else machine.fail(603)


class Scope:
    """What can be named at a place of the program."""

    def __init__(self, chance, world, variables, light=False, result=None):
        self.chance, self.world, self.variables, self.light, self.result = chance, world, variables, light, result
        self.locked, self.loops, self.calls = set(), 0, True

    def changeable(self, variable):
        return not variable.fixed and variable.name not in self.locked


# ---- places ----

def steps_to(scope, kind, wanted, depth):
    """Ways from a value of a kind to parts of the wanted one."""
    if wanted.same(kind):
        yield []
    if depth == 0:
        return
    if kind.kind == "rec":
        for number, (_, part) in enumerate(kind.fields):
            for rest in steps_to(scope, part, wanted, depth - 1):
                yield [(FieldStep, number)] + rest
    elif kind.kind in ("arr", "list"):
        for rest in steps_to(scope, kind.element, wanted, depth - 1):
            yield [(ArrayStep if kind.kind == "arr" else ListStep, None)] + rest


def array_index(scope, bounds, depth):
    chance = scope.chance
    lower, upper = bounds
    if chance.random() < 0.03:
        return expression(scope, INT, depth)
    if chance.random() < 0.6:
        number = chance.randint(lower, upper)
        return str(number), lambda frame: number
    inner, compute = expression(scope, INT, depth)
    count = upper - lower + 1
    return "%d + (%s) mod %d" % (lower, inner, count), lambda frame: model.wrap(lower + compute(frame) % count)


def list_index(scope, depth):
    chance = scope.chance
    if chance.random() < 0.9:
        number = chance.choice((1, 1, 1, 2, 2, 3, 0))
        return str(number), lambda frame: number
    return expression(scope, INT, depth)


def make_place(scope, variable, ways, depth):
    kind, steps, deep = variable.kind, [], depth - 2
    for maker, number in ways:
        if maker is FieldStep:
            step = FieldStep(kind, number)
        elif maker is ArrayStep:
            step = ArrayStep(kind, [array_index(scope, bounds, deep) for bounds in kind.bounds or ((1, 3),)])
        else:
            step = ListStep(kind, [list_index(scope, deep)])
        steps.append(step)
        kind = step.kind
    return Place(variable, kind, steps)


def place(scope, wanted, depth, change=False, local=False, without=()):
    found = []
    for variable in scope.variables:
        if (change and not scope.changeable(variable)) or (local and variable.shared) or variable.name in without:
            continue
        found += [(variable, ways) for ways in steps_to(scope, variable.kind, wanted, 3)]
    if not found:
        return None
    return make_place(scope, *scope.chance.choice(found), depth)


# ---- expressions ----

def expression(scope, kind, depth):
    chance = scope.chance
    if depth <= 0 or chance.random() < 0.25:
        return leaf(scope, kind)
    makers = list(MAKERS[kind.kind])
    if scope.calls and chance.random() < 0.3:
        made = call(scope, kind, depth - 1)
        if made:
            return made
    made = chance.choice(makers)(scope, kind, depth - 1)
    return made or leaf(scope, kind)


def leaf(scope, kind):
    if scope.chance.random() < 0.65:
        found = place(scope, kind, 0)
        if found:
            return found.text(), found.read
    return LITERALS[kind.kind](scope, kind)


def quoted(text):
    return '"' + text.replace('"', '""') + '"'


def number_text(value):
    return str(value) if value >= 0 else "(%d)" % value


def int_literal(scope, kind):
    chance = scope.chance
    value = chance.choice((0, 1, 2, 3, 5, 7, 10, 100, -1, -2, -7, 32767, 65536, 2147483647, -2147483648,
                           chance.randint(-1000, 1000)))
    return number_text(value), lambda frame: value


def fixed_literal(scope, kind):
    value = scope.chance.choice((0, 1, 5000, 10000, 12345, 25000, 1000001, 9999999, 12345678901234))
    return model.fixed_text(value), lambda frame: value


def real_literal(scope, kind):
    value = scope.chance.choice((0.0, 1.0, 0.5, 2.25, 1000.0, 0.125, 3.0, 1e10, 1e-3))
    return "%rE0" % value if "e" not in repr(value) else "%.1fE%d" % (1.0, round(__import__("math").log10(value))), \
        lambda frame: value


def text_literal(scope, kind):
    value = scope.chance.choice(("", "a", "b", "ab", "abc", "xyz", "Hello", "a\"b", "zz top", "0", "12", "-5 ",
                                 "a\nb", "\n", "one\n\ntwo\n"))
    return (quoted(value) if "\n" not in value else lined(value)), lambda frame: value


def lined(text):
    """A text of several lines, as it is written."""
    return "(" + " + CHR(10) + ".join(quoted(line) for line in text.split("\n")) + ")"


def set_literal(scope, kind):
    chance = scope.chance
    parts, members = [], set()
    for _ in range(chance.choice((0, 1, 1, 2, 3))):
        first = chance.randint(0, 40)
        last = min(40, first + chance.choice((0, 0, 1, 5)))
        parts.append(str(first) if last == first else "%d %s %d" % (first, chance.choice((":", "..")), last))
        members.update(range(first, last + 1))
    value = frozenset(members)
    return "[" + ", ".join(parts) + "]", lambda frame: value


def enum_literal(scope, kind):
    value = scope.chance.randrange(len(kind.names))
    return kind.names[value], lambda frame: value


def bool_literal(scope, kind):
    value = scope.chance.random() < 0.5
    return ("true" if value else "false"), lambda frame: value


def composite_literal(scope, kind, depth=0):
    """A result of a function that makes a value of the kind: aggregates have no type where they stand alone."""
    maker = scope.world.makers[kind.name]
    return maker.name + "()", lambda frame: maker.invoke([])


LITERALS = {"int": int_literal, "fixed": fixed_literal, "real": real_literal, "str": text_literal, "set": set_literal,
            "enum": enum_literal, "bool": bool_literal, "rec": composite_literal, "arr": composite_literal,
            "list": composite_literal, "tab": composite_literal}


def two(operator, compute, left_kind=None, right_kind=None):
    def make(scope, kind, depth):
        a, left = expression(scope, left_kind or kind, depth)
        b, right = expression(scope, right_kind or kind, depth)

        def value(frame):
            first = left(frame)
            return compute(first, right(frame))
        return "(%s %s %s)" % (a, operator, b), value
    return make


def one(form, compute, inner=None):
    def make(scope, kind, depth):
        a, value = expression(scope, inner or kind, depth)
        return form % a, lambda frame: compute(value(frame))
    return make


def as_fixed(scope, kind, depth):
    a, value = expression(scope, INT, depth)
    return "CVTF(%s)" % a, lambda frame: value(frame) * 10000


def mixed(operator, compute, other, scale):
    """A number of another kind on one side, which is widened."""
    def make(scope, kind, depth):
        a, left = expression(scope, kind, depth)
        b, right = expression(scope, other, depth)
        if scope.chance.random() < 0.5:
            def value(frame):
                first = left(frame)
                return compute(first, scale(right(frame)))
            return "(%s %s %s)" % (a, operator, b), value

        def turned(frame):
            first = scale(right(frame))
            return compute(first, left(frame))
        return "(%s %s %s)" % (b, operator, a), turned
    return make


def choose(scope, kind, depth):
    a, test = expression(scope, BOOL, depth)
    b, first = expression(scope, kind, depth)
    c, second = expression(scope, kind, depth)

    def value(frame):
        decided, yes, no = test(frame), first(frame), second(frame)
        return yes if decided else no
    return "IIF(%s, %s, %s)" % (a, b, c), value


def any_length(scope, kind, depth):
    options = [v for v in scope.variables if v.kind.kind in ("str", "list", "arr", "tab") and
               (v.kind.kind != "arr" or v.kind.bounds)]
    if not options:
        return None
    v = scope.chance.choice(options)
    return "LENGTH(%s)" % v.name, lambda frame: len(v.read(frame)[1] if v.kind.kind == "arr" else v.read(frame))


def character(scope, kind, depth):
    found = place(scope, TEXT, depth)
    if not found:
        return None
    i, index = expression(scope, INT, depth - 1)

    def value(frame):
        indexes = found.indexes(frame)
        at = index(frame)
        text = found.follow(frame, indexes)
        return ord(text[at - 1]) if 1 <= at <= len(text) else 0
    return "%s[%s]" % (found.text(), i), value


def ordinal(scope, kind, depth):
    enum = scope.chance.choice(scope.world.enums)
    a, value = expression(scope, enum, depth)
    return "ORD(%s)" % a, value


def find(scope, kind, depth):
    a, text = expression(scope, TEXT, depth)
    b, what = expression(scope, TEXT, 0)

    def value(frame):
        first = text(frame)
        second = what(frame)
        if second == "":
            raise model.Discard()
        return first.find(second) + 1
    return "STRFIND(%s, %s)" % (a, b), value


def part(scope, kind, depth):
    a, text = expression(scope, TEXT, depth)
    i, n = scope.chance.randint(1, 5), scope.chance.randint(0, 5)
    return "STRMID(%s, %d, %d)" % (a, i, n), lambda frame: text(frame)[i - 1:i - 1 + n]


def shown(scope, kind, depth):
    other = scope.chance.choice((BOOL, INT, INT, FIXED, SET, scope.chance.choice(scope.world.enums)))
    a, value = expression(scope, other, depth)
    return "STR(%s)" % a, lambda frame: plain_text(other, value(frame))


def plain_text(kind, value):
    return {"bool": lambda: "True" if value else "False", "int": lambda: str(value), "enum": lambda: str(value),
            "fixed": lambda: model.fixed_text(value), "set": lambda: model.set_text(value)}[kind.kind]()


def compared(scope, kind, depth):
    chance = scope.chance
    kinds = [BOOL, INT, INT, FIXED, REAL, TEXT, SET] + scope.world.enums + scope.world.composites
    other = chance.choice(kinds)
    orders = ["=", "<>"] if other.kind == "bool" or other.kind in model.COMPOSITE else ["=", "<>", "<", "<=", ">", ">="]
    operator = chance.choice(orders)
    a, left = expression(scope, other, depth)
    b, right = expression(scope, other, depth)

    def value(frame):
        first = model.copied(left(frame))
        return compare(operator, other, first, right(frame))
    return "(%s %s %s)" % (a, operator, b), value


def compare(operator, kind, a, b):
    if kind.kind == "set":
        a, b = model.set_weight(a), model.set_weight(b)
    if operator == "=":
        return a == b
    if operator == "<>":
        return a != b
    return {"<": a < b, "<=": a <= b, ">": a > b, ">=": a >= b}[operator] if kind.kind not in model.COMPOSITE else False


def mixed_compare(scope, kind, depth):
    operator = scope.chance.choice(["=", "<>", "<", "<=", ">", ">="])
    a, left = expression(scope, INT, depth)
    b, right = expression(scope, FIXED, depth)

    def value(frame):
        first = left(frame) * 10000
        return compare(operator, FIXED, first, right(frame))
    return "(%s %s %s)" % (a, operator, b), value


def contains(scope, kind, depth):
    a, member = expression(scope, INT, depth)
    b, members = expression(scope, SET, depth)

    def value(frame):
        first = member(frame)
        return first in members(frame)
    return "(%s in %s)" % (a, b), value


def logic(operator):
    def make(scope, kind, depth):
        a, left = expression(scope, BOOL, depth)
        b, right = expression(scope, BOOL, depth)
        if operator == "and":
            return "(%s and %s)" % (a, b), lambda frame: left(frame) and right(frame)
        return "(%s or %s)" % (a, b), lambda frame: left(frame) or right(frame)
    return make


def computed_set(scope, kind, depth):
    a, value = expression(scope, INT, depth)
    return "[(%s) mod 41]" % a, lambda frame: frozenset((value(frame) % 41,))


def cut_enum(scope, kind, depth):
    a, value = expression(scope, INT, depth)
    count = len(kind.names)
    if scope.chance.random() < 0.1:
        return "%s(%s)" % (kind.name, a), lambda frame: model.enum(value(frame), count)
    return "%s((%s) mod %d)" % (kind.name, a, count), lambda frame: value(frame) % count


MAKERS = {
    "bool": (compared, compared, mixed_compare, contains, logic("and"), logic("or"), one("(not %s)", lambda a: not a)),
    "int": (two("+", lambda a, b: model.wrap(a + b)), two("-", lambda a, b: model.wrap(a - b)),
            two("*", lambda a, b: model.wrap(a * b)), two("div", model.int_div), two("mod", model.int_mod),
            one("(-%s)", lambda a: model.wrap(-a)), any_length, character, ordinal, find, choose,
            one("CVTI(%s)", lambda a: model.to_integer(model.truncated(a, 10000)), FIXED),
            one("SETCOUNT(%s)", len, SET), one("LENGTH(%s)", len, TEXT)),
    "fixed": (two("+", lambda a, b: model.wrap_fixed(a + b)), two("-", lambda a, b: model.wrap_fixed(a - b)),
              two("*", model.fixed_mul), two("/", model.fixed_div), as_fixed,
              mixed("*", model.fixed_mul, INT, lambda i: i * 10000),
              mixed("+", lambda a, b: model.wrap_fixed(a + b), INT, lambda i: i * 10000),
              mixed("/", model.fixed_div, INT, lambda i: i * 10000),
              two("/", lambda a, b: model.fixed_div(a * 10000, b * 10000), INT, INT), choose),
    "real": (two("+", lambda a, b: model.real(a + b)), two("-", lambda a, b: model.real(a - b)),
             two("*", lambda a, b: model.real(a * b)), two("/", model.real_div),
             mixed("*", lambda a, b: model.real(a * b), INT, float),
             mixed("+", lambda a, b: model.real(a + b), FIXED, lambda f: f / 10000.0), choose),
    "str": (two("+", lambda a, b: model.text(a + b), TEXT, TEXT), two("+", lambda a, b: model.text(a + b), TEXT, TEXT),
            shown, shown, part, choose, one("STRUPPER(%s)", str.upper), one("STRTRIM(%s)", lambda a: a.strip(" \t\r\n"))),
    "set": (two("+", lambda a, b: a | b), two("*", lambda a, b: a & b), two("-", lambda a, b: a - b), computed_set),
    "enum": (cut_enum,),
    "rec": (composite_literal,), "arr": (composite_literal,), "list": (composite_literal,), "tab": (composite_literal,),
}


# ---- values in braces ----

def aggregate(scope, kind, depth):
    """A value where its type is known: in braces, or any other expression."""
    if kind.kind not in model.COMPOSITE or scope.chance.random() < 0.35 or (kind.kind == "arr" and kind.bounds and len(kind.bounds) > 1):
        return expression(scope, kind, depth)
    if kind.kind == "rec":
        parts = [(part, aggregate(scope, part, depth - 1)) for _, part in kind.fields]
    else:
        count = kind.count() if kind.kind == "arr" and kind.bounds else scope.chance.choice((0, 1, 2, 3))
        count = max(count, 1) if kind.kind == "arr" else count
        count = min(count, kind.limit or 3) if kind.kind == "list" else count
        parts = [(kind.element, aggregate(scope, kind.element, depth - 1)) for _ in range(count)]
    text = "{" + ", ".join(made[0] for _, made in parts) + "}"

    def value(frame):
        if kind.kind == "tab":
            rows = []
            for row, made in parts:
                model.table_add(kind, rows, row.fit(made[1](frame)))
            return rows
        values = [element.fit(made[1](frame)) for element, made in parts]
        if kind.kind == "arr":
            return [list(kind.bounds) if kind.bounds else [(1, len(values))], values]
        return values
    return text, value


# ---- calls ----

def call(scope, kind, depth):
    fitting = [f for f in scope.world.functions if f.result is not None and kind.same(f.result) and f.light]
    return invoke(scope, scope.chance.choice(fitting), depth) if fitting else None


def small_number(scope):
    number = scope.chance.randint(1, 4)
    return str(number), lambda frame: number


def invoke(scope, function, depth):
    """A call as an expression; None if there is no variable for an argument that is returned."""
    texts, values, used = [], [], set()
    for mode, name, kind in function.parameters:
        if mode == "in":
            # How deep a recursion goes: most often some calls.
            few = name == "d" and scope.chance.random() < 0.8
            text, value = small_number(scope) if few else aggregate(scope, kind, depth - 1)
            texts.append(text)
            values.append(value)
            continue
        found = place(scope, kind, depth, change=True, local=True, without=used)
        # An element that is not there may be told before the call or behind it.
        if found is None or found.kind is not kind or not all(getattr(step, "sure", True) for step in found.steps):
            return None
        used.add(found.variable.name)
        texts.append(found.text())
        values.append(found)

    def run(frame):
        given, back = [], []
        for (mode, _, kind), value in zip(function.parameters, values):
            if mode == "in":
                given.append(kind.fit(value(frame)))
                continue
            indexes = value.indexes(frame)
            back.append((len(given), value, indexes))
            given.append(kind.empty())
        # A variable that is changed is the caller's own: what a later argument does to it is seen.
        for at, found, indexes in back:
            mode, _, kind = function.parameters[at]
            if mode == "inout":
                given[at] = kind.fit(found.follow(frame, indexes))
        result, left = function.run(given)
        for at, found, indexes in back:
            found.write(frame, indexes, left[at])
        return result
    return "%s(%s)" % (function.name, ", ".join(texts)), run
