# SPDX-License-Identifier: Apache-2.0
#
# What values do, said once more: the model that the random programs are compared with. Values are those of Python: bool,
# int, float, str (one character a byte), frozenset; a fixed number is an int of ten-thousandths, an enum its ordinal; records
# and lists are lists, an array is its bounds and a list of its elements in storage order, a table the list of its rows.
import copy

LEAST, MOST = -2 ** 31, 2 ** 31 - 1
FIXED_LEAST, FIXED_MOST = -2 ** 63, 2 ** 63 - 1
TEXT_LIMIT = 20000


class Discard(Exception):
    """The program does what the model does not follow; it is left out."""


class Exit(Exception):
    pass


class Iterate(Exception):
    pass


class Return(Exception):
    def __init__(self, value):
        super().__init__()
        self.value = value


class Machine:
    """The output and the error cell of a run."""

    def __init__(self):
        self.output, self.errors, self.steps, self.depth = [], [], 0, 0
        self.globals = {}

    def fail(self, code):
        if code not in self.errors:
            self.errors.append(code)

    def stamp(self):
        self.steps += 1
        if self.steps > 20000:
            raise Discard()
        if self.errors:
            # Of several errors of one statement the first is told; which operand of a place comes first is left open.
            self.output.append("|".join("E%d" % code for code in self.errors))
            self.errors = []


machine = Machine()


def wrap(value):
    return (value + 2 ** 31) % 2 ** 32 - 2 ** 31


def wrap_fixed(value):
    return (value + 2 ** 63) % 2 ** 64 - 2 ** 63


def saturate(value):
    return max(FIXED_LEAST, min(FIXED_MOST, value))


def truncated(a, b):
    quotient = abs(a) // abs(b)
    return quotient if (a < 0) == (b < 0) else -quotient


def int_div(a, b):
    if b == 0:
        machine.fail(643)
        return 0
    return wrap(a // b)


def int_mod(a, b):
    if b == 0:
        machine.fail(643)
        return 0
    return a % b


def fixed_mul(a, b):
    return saturate(truncated(a * b, 10000)) if a and b else 0


def fixed_div(a, b):
    if b == 0:
        machine.fail(643)
        return 0
    return saturate(truncated(a * 10000, b))


def real(value):
    if value != value or abs(value) > 1e300 or (value and abs(value) < 1e-300):
        raise Discard()
    return value


def real_div(a, b):
    if b == 0:
        machine.fail(643)
        return 0.0
    return real(a / b)


def to_integer(value):
    """Of a number that was cut to a whole one."""
    if LEAST <= value <= MOST:
        return value
    machine.fail(641)
    return 0


def text(value):
    if len(value) > TEXT_LIMIT:
        raise Discard()
    return value


def enum(ordinal, count):
    if 0 <= ordinal < count:
        return ordinal
    machine.fail(682)
    return 0


def fixed_text(value):
    return "%s%d.%04d" % ("-" if value < 0 else "", abs(value) // 10000, abs(value) % 10000)


def real_text(value, decimals):
    mantissa, exponent = ("%+.*E" % (decimals, value)).split("E")
    return "%sE%s%04d" % (mantissa, exponent[0], int(exponent[1:]))


def set_text(members):
    runs, ordered = [], sorted(members)
    for member in ordered:
        if runs and runs[-1][1] == member - 1:
            runs[-1][1] = member
        else:
            runs.append([member, member])
    return "[" + ",".join(str(a) if a == b else "%d..%d" % (a, b) for a, b in runs) + "]"


def set_weight(members):
    return sum(1 << (member + 40000) for member in members)


class Type:
    """What the kinds have in common: a name, the text of the type in a program, and a copy that fits it."""

    def __init__(self, kind, name, source):
        self.kind, self.name, self.source = kind, name, source

    def empty(self):
        return {"bool": False, "int": 0, "fixed": 0, "real": 0.0, "enum": 0, "str": "", "set": frozenset()}[self.kind]

    def fit(self, value):
        """A value as a variable of this type takes it."""
        return value

    def same(self, other):
        return self is other


class TextType(Type):
    def __init__(self, limit=None):
        super().__init__("str", "S%s" % (limit or ""), "string[%d]" % limit if limit else "string")
        self.limit = limit

    def fit(self, value):
        if self.limit and len(value) > self.limit:
            machine.fail(615)
            return value[:self.limit]
        return value

    def same(self, other):
        return other.kind == "str"


class EnumType(Type):
    def __init__(self, name, names):
        super().__init__("enum", name, "enum (%s)" % ", ".join(names))
        self.names = names


class SetType(Type):
    def __init__(self, upper=None):
        super().__init__("set", "Set", "set [0:%d]" % upper if upper else "set")
        self.upper = upper

    def fit(self, value):
        if self.upper and any(not 0 <= member <= self.upper for member in value):
            machine.fail(616)
            return frozenset(member for member in value if 0 <= member <= self.upper)
        return value

    def same(self, other):
        return other.kind == "set"


class RecordType(Type):
    def __init__(self, name, fields, word="record"):
        lines = "".join("  %s : %s\n" % (field, kind.name if kind.kind in COMPOSITE or kind.kind == "enum" else kind.source)
                        for field, kind in fields)
        super().__init__("rec", name, word + "\n" + lines + "end " + word)
        self.fields, self.word = fields, word

    def empty(self):
        return [kind.empty() for _, kind in self.fields]

    def fit(self, value):
        return [kind.fit(part) for (_, kind), part in zip(self.fields, value)]


class ArrayType(Type):
    def __init__(self, name, bounds, element):
        shape = "[%s]" % ", ".join("%d:%d" % pair for pair in bounds) if bounds else "[*]"
        super().__init__("arr", name, "array %s of %s" % (shape, reference(element)))
        self.bounds, self.element = bounds, element

    def count(self):
        count = 1
        for lower, upper in self.bounds or ():
            count *= upper - lower + 1
        return count

    def empty(self):
        if not self.bounds:
            return [None, []]
        return [list(self.bounds), [self.element.empty() for _ in range(self.count())]]

    def fit(self, value):
        return [copy.copy(value[0]), [self.element.fit(part) for part in value[1]]]


class ListType(Type):
    def __init__(self, name, limit, element):
        super().__init__("list", name, "list%s of %s" % ("[%d]" % limit if limit else "", reference(element)))
        self.limit, self.element = limit, element

    def empty(self):
        return []

    def fit(self, value):
        return [self.element.fit(part) for part in value]


class TableType(Type):
    def __init__(self, name, row, indexes):
        words = "".join(" index %s (%s)" % (index, ", ".join(fields)) for index, fields in indexes)
        super().__init__("tab", name, "table of %s%s" % (row.name, words))
        self.row, self.element = row, row
        self.indexes = [(index, [[f for f, _ in row.fields].index(field) for field in fields]) for index, fields in indexes]

    def empty(self):
        return []

    def fit(self, value):
        return [self.row.fit(part) for part in value]


COMPOSITE = ("rec", "arr", "list", "tab")


def reference(kind):
    return kind.name if kind.kind in COMPOSITE or kind.kind == "enum" else kind.source


def copied(value):
    return copy.deepcopy(value) if isinstance(value, list) else value


def taken(kind, old, value):
    """What an assignment leaves: an array that has bounds takes nothing from one that has none."""
    if kind.kind == "arr" and not kind.bounds and old[0] and not value[0]:
        machine.fail(760)
        return old
    return value


# ---- tables ----

def key_of(row, places):
    return tuple(row[place] for place in places)


def clashes(kind, rows, row, leave=None):
    return any(other is not leave and key_of(other, places) == key_of(row, places)
               for _, places in kind.indexes for other in rows)


def table_add(kind, rows, row):
    if clashes(kind, rows, row):
        machine.fail(635)
    else:
        rows.append(row)


def table_row(rows, places, key):
    return next((n for n, row in enumerate(rows) if key_of(row, places) == key), -1)


def table_update(kind, rows, places, key, row):
    at = table_row(rows, places, key)
    if at < 0:
        machine.fail(604)
    elif clashes(kind, rows, row, rows[at]):
        machine.fail(635)
    else:
        rows[at] = row


def table_delete(rows, places, key):
    at = table_row(rows, places, key)
    if at < 0:
        return machine.fail(604)
    last = rows.pop()
    if at < len(rows):
        rows[at] = last
    return None


def table_find(op, rows, places, key):
    """The row, or None."""
    ordered = sorted(rows, key=lambda row: key_of(row, places))
    fits = {"EQ": lambda k: k == key, "GE": lambda k: k >= key, "GT": lambda k: k > key, "LE": lambda k: k <= key,
            "LT": lambda k: k < key, "FIRST": lambda k: True, "LAST": lambda k: True}[op]
    found = [row for row in ordered if fits(key_of(row, places))]
    if not found:
        return None
    return found[-1] if op in ("LE", "LT", "LAST") else found[0]
