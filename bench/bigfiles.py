#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Converts large files of every form into every form, and tells the time and the memory that each took.

  bigfiles.py TARN-DATA [--mb 1024] [--most KIB] [--folder DIR] [--shape table|lines] [--only csv:xml,xml:csv] [--stop]
               [--table PAGE]

A csv file of so many MB is made, of eight columns, and another of one where lines of text take part. It is converted to
each form, and each form to all. What comes back as csv must be the bytes that it was made of. --stop also interrupts
each conversion in its middle and near its end: it must be gone within a second, with the old target whole and nothing
else left. --table writes the results as a page. Ends with 1 when a conversion takes more than --most KiB (65536) or fails. The disk must have room for seven
times --mb.
"""
import argparse
import hashlib
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROWS_OF_SAMPLE = 2000
LONGEST_STOP = 1.0  # seconds
FORMS = ['csv', 'tab', 'xml', 'dbf', 'bin']

TABLE_TYPE = '''t : table
\tr : record
\t\tid : integer
\t\tname : string[24]
\t\tprice : fixed
\t\tweight : real
\t\tstock : boolean
\t\tday : string[10]
\t\tcity : string[20]
\t\tremark : string[140]
\tend record
end table
'''
LINES_TYPE = 't : table\n\tr : record\n\t\tline : string[40]\n\tend record\nend table\n'


PAGE = '''<!-- SPDX-License-Identifier: Apache-2.0 -->
# Large files

What tarn-data takes for files of a gigabyte, from each form to each other: rows of eight columns (*table*) or lines of
text (*lines*), and at the end the memory of the process at its highest. What came back as csv was compared byte by
byte. `./dev bigfiles` measures anew and writes this page; a share of it with 20 MB is among the tests.

| from, to | MB | s | MB/s | MB of memory |
|---|---|---|---|---|
'''


def table_tails():
    """What stands behind the number of a row, in turn: quotes, doubled quotes, umlauts, nothing."""
    cities = ['Oslo', '"Rome, Italy"', 'K\u00f6ln', '"the ""old"" town"', '']
    filler = 'and what else there is to say of it word by word ' * 3
    tails = []
    for i in range(1000):
        day = f'20{i % 90 + 10}-{i % 12 + 1:02}-{i % 28 + 1:02}'
        numbers = f'{i % 500}.1{i % 9 + 1},{i * 37 % 1000}.{i % 9}25,{"True" if i % 3 else "False"}'
        remark = f'remark {i * 31 % 997} {filler[:i % 120]}.'
        tails.append(f',name {i * 7919 % 99991},{numbers},{day},{cities[i % 5]},{remark}\n')
    return tails


def line_tails():
    return [f' line {i * 7919 % 99991} of some length\n' for i in range(1000)]


class Shape:
    """A kind of rows: what its files begin with, and what they are made of."""

    def __init__(self, head, tails, declaration):
        self.head, self.tails, self.declaration = head, tails, declaration

    def write(self, path, rows):
        digest = hashlib.md5()
        with open(path, 'wb') as out:
            for start in range(0, rows, 20000):
                block = ''.join(f'{i}{self.tails[i % 1000]}' for i in range(start, min(start + 20000, rows)))
                if start == 0:
                    block = self.head + block
                data = block.encode()
                digest.update(data)
                out.write(data)
        return digest.hexdigest()


SHAPES = {
    'table': Shape('id,name,price,weight,stock,day,city,remark\n', table_tails(), TABLE_TYPE),
    'lines': Shape('line\n', line_tails(), LINES_TYPE),
}


def extension_of(path):
    return os.path.splitext(path)[1][1:]


def remove(path):
    if os.path.exists(path):  # not after a failure
        os.remove(path)


def digest_of(path):
    digest = hashlib.md5()
    with open(path, 'rb') as file:
        while block := file.read(1 << 20):
            digest.update(block)
    return digest.hexdigest()


def peak_of(pid):
    """The most memory that a process has taken so far, in KiB."""
    try:
        with open(f'/proc/{pid}/status') as status:
            for line in status:
                if line.startswith('VmHWM:'):
                    return int(line.split()[1])
    except OSError:
        pass
    return 0


class Bench:
    def __init__(self, program, folder, given):
        self.program, self.folder = os.path.abspath(program), folder
        self.limit, self.stops = given.most, given.stop
        self.only = [pair for pair in given.only.split(',') if pair]
        self.work = os.path.join(folder, 'work')
        self.failures, self.results = [], []
        for name, shape in SHAPES.items():
            with open(self.path(name + '.type'), 'w') as out:
                out.write(shape.declaration)

    def path(self, name):
        return os.path.join(self.folder, name)

    def start(self, words):
        os.makedirs(self.work, exist_ok=True)
        environment = {**os.environ, 'TMPDIR': self.work}
        return subprocess.Popen([self.program, *words], env=environment, stdout=subprocess.DEVNULL,
                                stderr=subprocess.PIPE)

    def run(self, words):
        """Seconds and KiB that a run took; it must succeed."""
        begin = time.monotonic()
        child = self.start(words)
        peak = 0
        while child.poll() is None:
            peak = max(peak, peak_of(child.pid))
            time.sleep(0.02)
        seconds = time.monotonic() - begin
        said = child.stderr.read().decode('utf-8', 'replace')
        child.stderr.close()
        if child.returncode != 0:
            self.fail(f'{words}: {child.returncode} {said}')
        return seconds, peak

    def fail(self, what):
        self.failures.append(what)
        print('FAILED', what, flush=True)

    def convert(self, source, target, shape):
        words = ['convert', source, target]
        if 'bin' in (extension_of(source), extension_of(target)):
            words.append('--type=' + self.path(shape + '.type'))
        return words

    def measure(self, source, target, shape):
        words = self.convert(source, target, shape)
        seconds, peak = self.run(words)
        size = os.path.getsize(source) >> 20 if os.path.exists(source) else 0
        name = f'{shape} {extension_of(source)} -> {extension_of(target)}'
        rate = size / max(seconds, 0.001)
        print(f'{name:22} {size:6} MB {seconds:8.1f} s {rate:7.0f} MB/s {peak:8} KiB', flush=True)
        self.results.append((name, size, seconds, peak))
        if peak > self.limit:
            self.fail(f'{name}: {peak} KiB, and {self.limit} are allowed')
        if self.stops:
            for share in (0.5, 0.97):
                self.stop(name, source, shape, seconds * share)

    def stop(self, name, source, shape, after):
        """An interrupted conversion ends soon, and leaves what was there."""
        target = self.path('stopped.' + name.split()[-1])
        with open(target, 'w') as out:
            out.write('as it was')
        before = sorted(os.listdir(self.folder))
        child = self.start(self.convert(source, target, shape))
        time.sleep(after)
        begin = time.monotonic()
        child.send_signal(signal.SIGINT)
        child.stderr.read()
        child.wait()
        child.stderr.close()
        seconds = time.monotonic() - begin
        print(f'{"":22} stopped after {after:.1f} s: gone in {seconds:.2f} s, status {child.returncode}', flush=True)
        if seconds > LONGEST_STOP:
            self.fail(f'{name}: stopped after {after:.1f} s, and gone only {seconds:.1f} s later')
        if child.returncode != 0:
            with open(target, 'rb') as file:
                whole = file.read(20) == b'as it was'
            if not whole or sorted(os.listdir(self.folder)) != before or os.listdir(self.work):
                self.fail(f'{name}: stopped after {after:.1f} s, and something is left')
        os.remove(target)

    def wanted(self, shape, source, target):
        return not self.only or f'{source}:{target}' in self.only

    def write_table(self, path):
        with open(path, 'w') as out:
            out.write(PAGE)
            for name, size, seconds, peak in self.results:
                out.write(f'| {name} | {size} | {seconds:.0f} | {size / max(seconds, 0.001):.0f} | {peak / 1024:.1f} |\n')

    def one_form(self, shape, form, csv, digest, targets):
        """From csv to the form, and from there to every target."""
        source = csv if form == 'csv' else self.path(f'{shape}-source.{form}')
        targets = [target for target in targets if self.wanted(shape, form, target)]
        if form != 'csv':
            if not targets and not self.wanted(shape, 'csv', form):
                return
            self.measure(csv, source, shape)
        for target in targets:
            if form == 'csv' and target != 'csv':
                continue  # the way to the other sources
            path = self.path(f'{shape}-target.{target}')
            self.measure(source, path, shape)
            if target == 'csv' and os.path.exists(path) and digest_of(path) != digest:
                self.fail(f'{shape} {form} -> csv: the rows that come back are others')
            remove(path)
        if form != 'csv':
            remove(source)

    def shape(self, shape, forms, targets_of, size):
        sample, csv = self.path('sample.csv'), self.path(f'{shape}.csv')
        SHAPES[shape].write(sample, ROWS_OF_SAMPLE)
        digest = SHAPES[shape].write(csv, max(1, size * ROWS_OF_SAMPLE // os.path.getsize(sample)))
        for form in forms:
            self.one_form(shape, form, csv, digest, targets_of(form))
        os.remove(csv)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('program')
    parser.add_argument('--mb', type=int, default=1024)
    parser.add_argument('--most', type=int, default=65536)
    parser.add_argument('--folder', default=None)
    parser.add_argument('--only', default='')
    parser.add_argument('--shape', choices=list(SHAPES), default=None)
    parser.add_argument('--stop', action='store_true')
    parser.add_argument('--table', default=None)
    given = parser.parse_args()
    signal.signal(signal.SIGINT, signal.default_int_handler)  # what a caller in the background ignores, too
    folder = tempfile.mkdtemp(prefix='tarnwick-bigfiles-', dir=given.folder)
    try:
        bench = Bench(given.program, folder, given)
        if given.shape != 'lines':
            bench.shape('table', FORMS, lambda form: FORMS, given.mb << 20)
        if given.shape != 'table':
            bench.shape('lines', ['txt'] + FORMS, lambda form: ['txt'] + (FORMS if form == 'txt' else []),
                        given.mb << 20)
        if given.table:
            bench.write_table(given.table)
    finally:
        shutil.rmtree(folder)
    sys.exit(1 if bench.failures else 0)


main()
