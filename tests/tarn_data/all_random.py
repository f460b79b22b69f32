#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
# Random tables in files of each form, written here without tarn-data, converted by it to every form and from there to csv.
# Each cell must come out as the file holds it; one that does not must be told of by a note that names its column.
#   all_random.py TARN-DATA COUNT [FIRST]    1 when a cell or a heading was changed in silence, or a run ended oddly
import csv
import os
import random
import re
import struct
import subprocess
import sys
import tempfile

NAMES = ['a', 'b', 'c3', 'Name', 'name', 'first name', '', ' lead', 'trail ', 'end', 'delete_flag', 'delete_flag_2', 'x-y',
         'straße', '2020', 'a_name_longer_than_eleven', 'a_name_longer_than_twelve', 'FIELD2', 'p.q', 'say "x"']
WORDS = ['x', 'Ann', 'two words', ' lead', 'trail ', 'a,b', 'a;b', 'q"q', '"', "it's", '<&>', 'ä€', '😀', 'line\nend', 'tab\tin', '#',
         'y' * 200, 'NULLx', 'no', '(1 row)', '[1,2]', '-', '--', '2024-01-05 10:00', 'T', '\x7f']
CELLS = {
    'integer': ['0', '7', '-12', '123456', '2147483647', '-2147483648'],
    'odd integer': ['1', '01', '+5', ' 5', '5 ', '2147483648', '99999999999999999999', '', 'NULL', '-0'],
    'decimal': ['0.5', '1.25', '-3.1250', '10.00', '1234.5678', '.5', '5.', '0.00001'],
    'real': ['1e5', '1.5E-3', '-2e300', '0.1234567890123', 'nan', '-inf', 'inf', '1e999'],
    'truth': ['True', 'False'],
    'odd truth': ['True', 'yes', 'NO', 'TRUE', 'f', '', ' True', 'null'],
    'date': ['2024-01-05', '1999-12-31 23:59:59', ''],
    'set': ['[1,2]', '[3..5]', '[]', ''],
    'blank': ['', ' ', '  ', 'NULL'],
    'text': WORDS,
}


def cells_of(r, kind, rows):
    some = CELLS[kind] if r.random() < 0.8 else CELLS[kind] + r.choice(list(CELLS.values()))
    return [r.choice(some) for _ in range(rows)]


def table(r, names=None):
    columns = r.randrange(1, 6)
    rows = r.choice([0, 1, 2, 3, 8])
    names = r.sample(names or NAMES, columns)
    grid = [cells_of(r, r.choice(list(CELLS)), rows) for _ in range(columns)]
    return names, [list(row) for row in zip(*grid)]


# ---- the forms ----

def write_delimited(r, path, separator):
    names, rows = table(r)
    heading = r.random() < 0.85
    with open(path, 'w', newline='', encoding='utf-8') as file:
        writer = csv.writer(file, delimiter=separator, quoting=r.choice([csv.QUOTE_MINIMAL, csv.QUOTE_ALL]),
                            lineterminator=r.choice(['\n', '\r\n']))
        if heading:
            writer.writerow(names)
        for row in rows:
            writer.writerow(row)
        if heading or rows:
            file.write(r.choice([''] * 9 + ['\x1a']))
    return (names if heading else None), rows


def escaped(text):
    text = text.replace('&', '&amp;').replace('<', '&lt;').replace('>', '&gt;').replace('"', '&quot;')
    return text.replace('\n', '&#10;').replace('\t', '&#9;')


def write_xml(r, path):
    names, rows = table(r, ['a', 'b', 'c3', 'Name', 'name', 'x-y', 'p.q', '_u', 'end', 'delete_flag', 'line'])
    attributes = r.random() < 0.3
    with open(path, 'w', encoding='utf-8', newline='') as file:
        file.write(r.choice(['', '<?xml version="1.0"?>\n']) + '<rows>' + r.choice(['', '\n']))
        for row in rows:
            if attributes:
                file.write('<row' + ''.join(f' {n}="{escaped(c)}"' for n, c in zip(names, row)) + '/>')
            else:
                file.write('<row>' + ''.join(f'<{n}>{escaped(c)}</{n}>' for n, c in zip(names, row)) + '</row>')
            file.write(r.choice(['', '\n']))
        file.write('</rows>' + r.choice(['', '\n', '\x1abehind']))
    return names, rows


XBASE = {
    'C': (lambda r: r.randrange(1, 20), lambda r, n: r.choice(WORDS[:9] + ['', ' ', '007', 'True'])),
    'N': (lambda r: r.randrange(2, 18), lambda r, n: r.choice(['', '0', '7', '-1', '1.5', '12345678901234', '.25', '*' * n])),
    'L': (lambda r: 1, lambda r, n: r.choice(['T', 'F', 'y', 'n', '?', ' '])),
    'D': (lambda r: 8, lambda r, n: r.choice(['20240105', '19991231', '']))}
TRUTHS = {'T': 'True', 'Y': 'True', 'F': 'False', 'N': 'False', '?': '', ' ': ''}


def write_xbase(r, path):
    columns, count = r.randrange(1, 6), r.choice([0, 1, 2, 5])
    names = r.sample(['ID', 'NAME', 'name', 'B', 'DELETE_FLAG', 'delete_flag', 'X Y', 'END', 'LONGNAME_11'], columns)
    fields = []
    for name in names:
        kind = r.choice('CNLD')
        fields.append((name, kind, XBASE[kind][0](r)))
    size = 1 + sum(f[2] for f in fields)
    head = bytes([3, 126, 11, 22]) + struct.pack('<IHH', count, 32 * (columns + 1) + 1, size) + bytes(20)
    for name, kind, length in fields:
        head += name.encode().ljust(11, b'\0') + kind.encode() + bytes(4) + bytes([length, 0]) + bytes(14)
    body, rows = b'', []
    for _ in range(count):
        deleted = r.random() < 0.1
        body += b'*' if deleted else b' '
        row = []
        for _, kind, length in fields:
            text = XBASE[kind][1](r, length).encode()[:length].decode('utf-8', 'ignore')
            stored = text.encode().rjust(length) if kind == 'N' else text.encode().ljust(length)
            body += stored
            if kind == 'L':
                row.append(TRUTHS.get(text.upper(), text))
            else:
                row.append(text.rstrip(' ') if kind == 'C' else text.strip(' '))
        if not deleted:
            rows.append(row)
    with open(path, 'wb') as file:
        file.write(head + b'\r' + body + r.choice([b'\x1a', b'', b'\x1abehind', b'\x1a' * 30]))
    return names, rows


def real_text(value):
    return None if value in (float('inf'), float('-inf')) else value


def write_table(r, path):
    columns, count = r.randrange(1, 6), r.choice([0, 1, 2, 5])
    names = r.sample(['id', 'name', 'b', 'c', 'd', 'x_1', 'long_name_of_a_field'], columns)
    kinds = [r.choice(['integer', 'boolean', 'enum', 'string', 'fixed', 'real', 'Tchars', 'Tnumeric', 'Tlogical'])
             for _ in names]
    lengths = [r.randrange(1, 30) for _ in names]
    shapes = {'string': 'string[{}]', 'Tchars': 'Tchars[1:{}]', 'Tnumeric': 'Tnumeric[1:{}]', 'Tlogical': 'Tlogical[1:1]'}
    with open(path + '.type', 'w', encoding='utf-8') as file:
        file.write('record\n' + ''.join(f'\t{n} : {shapes.get(k, k).format(l)}\n'
                                        for n, k, l in zip(names, kinds, lengths)) + 'end record\n')
    body, rows = b'', []
    for _ in range(count):
        row = []
        for kind, length in zip(kinds, lengths):
            if kind == 'integer':
                value = r.choice([0, 5, -7, 2147483647, -2147483648])
                body += struct.pack('>i', value)
                row.append(str(value))
            elif kind == 'enum':
                value = r.randrange(256)
                body += bytes([value])
                row.append(str(value))
            elif kind == 'boolean':
                value = r.randrange(2)
                body += bytes([value])
                row.append(['False', 'True'][value])
            elif kind == 'fixed':
                value = r.choice([0, 12500, -1, 123456789012345])
                body += struct.pack('>q', value)
                sign, value = ('-' if value < 0 else ''), abs(value)
                row.append((sign + f'{value // 10000}.{value % 10000:04}').rstrip('0').rstrip('.'))
            elif kind == 'real':
                value = r.choice([0.0, 1.5, -2.25, 1e300, 0.1, 1 / 3])
                body += struct.pack('=d', value)
                row.append(value)
            elif kind == 'string':
                text = r.choice(WORDS + ['', '  ', '007']).encode()[:length]
                text = text.decode('utf-8', 'ignore').encode()
                body += struct.pack('>i', len(text)) + text.ljust(length, b'\0')
                row.append(text.decode())
            elif kind == 'Tlogical':
                letter = r.choice('TFtfyn? ')
                body += letter.encode()
                row.append(TRUTHS[letter.upper()])
            else:
                text = r.choice(['', '7', '-1.5', 'abc']).encode()[:length]
                stored = text.rjust(length) if kind == 'Tnumeric' else text.ljust(length)
                body += stored
                row.append(stored.decode().strip(' ') if kind == 'Tnumeric' else stored.decode().rstrip(' '))
        rows.append(row)
    with open(path, 'wb') as file:
        file.write(body)
    return names, rows


FORMS = {'csv': lambda r, p: write_delimited(r, p, ','), 'tab': lambda r, p: write_delimited(r, p, '\t'),
         'xml': write_xml, 'dbf': write_xbase, 'bin': write_table}


# ---- a case ----

class Case:
    def __init__(self, program, folder, seed):
        self.program, self.folder, self.seed = program, folder, seed
        self.runs, self.faults = 0, []

    def run(self, *words):
        self.runs += 1
        done = subprocess.run([self.program, *words], capture_output=True, cwd=self.folder, check=False)
        said = done.stderr.decode('utf-8', 'replace')
        if done.returncode not in (0, 1, 2) or (done.returncode != 0 and 'tarn-data: ' not in said):
            self.fault(f'{" ".join(words)} ended with {done.returncode}: {said}')
        return done.returncode == 0, said, done.stdout

    def fault(self, what):
        self.faults.append(f'seed {self.seed}: {what}')

    def rows_of(self, name):
        with open(os.path.join(self.folder, name), newline='', encoding='utf-8', errors='surrogateescape') as file:
            return [row for row in csv.reader(file) if row]

    # Cells of one column that differ are told of by a note that names it.
    def compare(self, expected, name, notes, way):
        names, rows = expected
        found = self.rows_of(name)
        told = [line for line in notes.split('\n') if 'note: ' in line]
        heading = found[0] if found else []
        if names is not None:
            found = found[1:]
            if heading != names and not (heading == [] and not rows):
                if not any('renamed' in t or 'Names of fields' in t or 'heading' in t or 'become the column' in t for t in told):
                    return self.fault(f'{way}: headings {names} became {heading}\n{notes}')
        elif found and len(found) == len(rows) + 1:
            found = found[1:]
        if len(found) != len(rows):
            if not any('row' in t or 'line' in t for t in told):
                self.fault(f'{way}: {len(rows)} rows became {len(found)}\n{notes}')
            return None
        added = max(0, len(heading) - len(names or heading)) if any('become the column' in t for t in told) else 0
        for number, (row, other) in enumerate(zip(rows, found), 1):
            other = other[added:]
            for n, cell in enumerate(row):
                value = other[n] if n < len(other) else ''
                if isinstance(cell, float):
                    if value != '' and float(value) == cell:
                        continue
                elif cell == value:
                    continue
                words = [names[n].strip() if names and names[n].strip() else f'FIELD{n + 1}', f'FIELD{n + 1}']
                if n < len(heading):
                    words.append(heading[n])
                if n + added < len(heading):
                    words.append(heading[n + added])
                if any(f"'{w}'" in t or f'Row {number} ' in t or 'blank fields' in t for t in told for w in words):
                    continue
                return self.fault(f'{way}: row {number} column {n + 1}: {cell!r} became {value!r}\n{notes}')
        return None

    def check(self):
        r = random.Random(self.seed)
        form = r.choice(list(FORMS))
        source = 'source.' + form
        expected = FORMS[form](r, os.path.join(self.folder, source))
        typed = ['--type=' + source + '.type'] if form == 'bin' else []
        heads = [] if form not in ('csv', 'tab') else [f'--header-rows={0 if expected[0] is None else 1}',
                                                       '--separator=' + (',' if form == 'csv' else '\\t')]
        read, said, told = self.run('info', source, *typed, *heads)
        if not read:
            return
        with open(os.path.join(self.folder, 'type'), 'wb') as file:
            file.write(told.replace(b' : Any\n', b' : string[4]\n'))
        for target in ['csv', 'tab', 'xml', 'dbf', 'bin', 'txt']:
            there, declared = 'there.' + target, []
            if target == 'bin':
                declared = typed or ['--type=type']
            good, said, _ = self.run('convert', source, there, *heads, *(declared or typed))
            if not good:
                continue
            if target == 'csv':
                self.compare(expected, there, said, f'{form} to csv')
                continue
            back = ['--type=' + declared[0][7:]] if declared else []
            again = ['--separator=\\t'] if target == 'tab' else []
            if target == 'tab':
                again.append(f'--header-rows={0 if expected[0] is None else 1}')
            read, more, _ = self.run('convert', there, 'end.csv', *back, *again)
            if read:
                self.compare(expected, 'end.csv', said + more, f'{form} to {target} and back')
            elif 'contains no XML data' not in more and 'is invalid, does not exist or is empty' not in more:
                self.fault(f'{form} to {target}: cannot be read back: {more}')


def main():
    program, count = os.path.abspath(sys.argv[1]), int(sys.argv[2])
    first = int(sys.argv[3]) if len(sys.argv) > 3 else 0
    runs, faults = 0, []
    for seed in range(first, first + count):
        with tempfile.TemporaryDirectory() as folder:
            case = Case(program, folder, seed)
            case.check()
            runs += case.runs
            faults += case.faults
    for fault in faults[:20]:
        print(fault)
    print(f'{runs} runs, {len(faults)} faults')
    return 1 if faults else 0


sys.exit(main())
