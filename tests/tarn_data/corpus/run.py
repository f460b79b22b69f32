#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
# Data files that Debian packages bring, converted by tarn-data to every other form and back, and compared cell by cell
# with what python's modules read. A cell that differs must be told of by a note.
#   run.py TARN-DATA [--short] [--table FILE]    1 when a cell was changed in silence
import argparse
import collections
import os
import re
import subprocess
import sys
import tempfile

import readers

PACKAGES = ['gdal-data', 'iso-codes', 'tzdata', 'shared-mime-info', 'distro-info-data', 'python3-numpy',
            'golang-github-jonas-p-go-shp-dev']
FORMS = ['csv', 'tab', 'xml', 'dbf', 'bin']
SHORT = 8  # files of each form
Outcome = collections.namedtuple('Outcome', 'kind told')


def files_of(package):
    listed = subprocess.run(['dpkg', '-L', package], capture_output=True, text=True, check=False).stdout.split('\n')
    return sorted(name for name in listed if os.path.isfile(name) and re.search(r'\.(csv|tab|xml|dbf)$', name))


class Case:
    def __init__(self, program, source, folder):
        self.program, self.folder = program, folder
        self.form = source.rsplit('.', 1)[1]
        self.source = os.path.join(folder, 'source.' + self.form)
        with open(source, 'rb') as file, open(self.source, 'wb') as copy:
            copy.write(file.read())
        self.notes = ''

    def run(self, *words):
        done = subprocess.run([self.program, *words], capture_output=True, cwd=self.folder, check=False)
        self.notes = done.stderr.decode('utf-8', 'replace').strip()
        self.output = done.stdout.decode('utf-8', 'replace')
        return done.returncode == 0

    def path(self, name):
        return os.path.join(self.folder, name)

    # What the file is for tarn-data, and its rows for python: separator, heading, and those below.
    def look(self):
        if not self.run('info', 'source.' + self.form):
            return Outcome('refused', self.notes)
        with open(self.path('type'), 'w', encoding='utf-8') as file:
            file.write(self.output.replace(' : Any\n', ' : string[4]\n'))
        layout = re.search(r"separator (\\t|'.'), (\d) header", self.output)
        separator = layout.group(1).strip("'").replace('\\t', '\t') if layout else None
        rows = readers.delimited(self.source, separator) if layout else readers.READERS[self.form](self.source)
        headers = int(layout.group(2)) if layout else 1
        rows = [row for row in rows if row] if layout else rows
        self.heading, self.rows = rows[:headers], rows[headers:]
        return None

    def differs(self, name):
        rows = readers.READERS[name.rsplit('.', 1)[1]](self.path(name))
        told = rows[len(self.heading) if name.endswith(('csv', 'tab')) else 1:]
        return readers.difference(self.rows, told)

    # There, and back.
    def convert(self, form):
        there, back, typed = 'there.' + form, 'back.' + self.form, ['--type=type'] if form == 'bin' else []
        if not self.run('convert', 'source.' + self.form, there, *typed):
            return Outcome('refused', self.notes)
        noted, found = self.notes, self.differs(there) if form != 'bin' else None
        if found is None:
            back = 'back.csv' if self.form == 'dbf' or form == 'xml' or form == 'dbf' or form == 'bin' else back
            if not self.run('convert', there, back, *typed):
                return Outcome('refused', self.notes)
            noted = '\n'.join(filter(None, [noted, self.notes]))
            found = self.differs_back(back, form)
        if found is None:
            return Outcome('equal', noted)
        return Outcome('noted' if 'note: ' in noted else 'CHANGED', noted or f'row {found[0]}, column {found[1]}: {found[2]!r}, {found[3]!r}')

    # Other forms always have a heading, so that what comes back from them has one, too.
    def differs_back(self, name, form):
        rows = readers.READERS[name.rsplit('.', 1)[1]](self.path(name))
        headings = 1 if form not in ('csv', 'tab') or name.endswith('xml') else len(self.heading)
        return readers.difference(self.rows, rows[headings:])


def check(program, source):
    with tempfile.TemporaryDirectory() as folder:
        case = Case(program, source, folder)
        refused = case.look()
        if refused:
            return {form: refused for form in FORMS}
        return {form: case.convert(form) for form in FORMS}


def chosen(short):
    files = [(package, name) for package in PACKAGES for name in files_of(package)]
    if not short:
        return files
    kept = collections.Counter()
    return [f for f in files if not kept.update([f[1][-3:]]) and kept[f[1][-3:]] <= SHORT]


# Alike messages of many files are one line: what they name of a file is left away.
def pattern(line):
    line = re.sub(r"'[^']*'", "'...'", re.sub(r'"[^"]*"', '"..."', line))
    line = re.sub(r"'\.\.\.' to \w+(, '\.\.\.' to \w+)*", "'...' to ...", line)
    return re.sub(r'\b\w+ to \w+(, \w+ to \w+)*\.$', '... to ....', re.sub(r'\d+', 'n', line))


# A refusal stands behind the notes.
def told_lines(outcome):
    lines = [line.replace('tarn-data: ', '') for line in outcome.told.split('\n') if line.startswith('tarn-data: ')]
    notes = [line.replace('note: ', '') for line in lines if line.startswith('note: ')]
    wrong = [line for line in lines if not line.startswith('note: ')]
    return [pattern(line) for line in (wrong[:1] if outcome.kind == 'refused' else notes or [outcome.told])]


def table(results):
    kinds = collections.Counter(outcome.kind for row in results.values() for outcome in row.values())
    lines = ['<!-- SPDX-License-Identifier: Apache-2.0 -->', '# Files of other programs', '',
             'Data files that Debian packages bring, converted by tarn-data to each form and back, and compared cell by cell',
             "with what python's csv, xml.etree and dbf modules read. `./dev corpus` writes this page. *noted*: a cell",
             'differs, and a note told of it; *refused*: a message told why there is no such file.', '',
             f'{len(results)} files, {sum(kinds.values())} conversions there and back: '
             + ', '.join(f'{count} {kind}' for kind, count in sorted(kinds.items())) + '.', '',
             '| file | ' + ' | '.join(FORMS) + ' |', '|---' * (len(FORMS) + 1) + '|']
    told = {}
    for (package, name), row in results.items():
        cells = [row[form].kind for form in FORMS]
        lines.append(f'| {package}: {os.path.basename(name)} | ' + ' | '.join(cells) + ' |')
        for form in FORMS:
            if row[form].kind != 'equal':
                for line in dict.fromkeys(told_lines(row[form])):
                    told.setdefault(line, []).append(f'{os.path.basename(name)} ({form})')
    lines += ['', '## What was told', '']
    for text, names in sorted(told.items()):
        more = f' and {len(names) - 3} more' if len(names) > 3 else ''
        lines.append('- ' + text.replace('|', '\\|') + ' *' + ', '.join(names[:3]) + more + '*')
    return '\n'.join(lines) + '\n'


def main():
    words = argparse.ArgumentParser()
    words.add_argument('program')
    words.add_argument('--short', action='store_true')
    words.add_argument('--table')
    arguments = words.parse_args()
    results, changed = {}, 0
    for package, name in chosen(arguments.short):
        row = results[package, name] = check(os.path.abspath(arguments.program), name)
        for form, outcome in row.items():
            if outcome.kind == 'CHANGED':
                changed += 1
                print(f'{name} to {form} and back: {outcome.told}')
    print(f'{len(results)} files, {changed} conversions that changed a cell in silence')
    if arguments.table:
        with open(arguments.table, 'w', encoding='utf-8') as file:
            file.write(table(results))
    if not results:
        print('None of the packages is installed: ' + ', '.join(PACKAGES))
    return 1 if changed else 0


sys.exit(main())
