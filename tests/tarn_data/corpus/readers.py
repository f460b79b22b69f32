# SPDX-License-Identifier: Apache-2.0
# Rows of data files as python's own modules read them: lists of texts. Bytes that are no UTF-8 stay as they are.
import csv
import datetime
import warnings
import xml.etree.ElementTree

csv.field_size_limit(1 << 24)


def delimited(name, separator):
    with open(name, newline='', encoding='utf-8-sig', errors='surrogateescape') as file:
        return [row for row in csv.reader(file, delimiter=separator)]


# The names of all rows: one that a row adds stands behind the one ahead of it there.
def merged(rows):
    names, known = [], set()
    for row in rows:
        place = 0
        for name in row:
            if name not in known:
                names.insert(place, name)
                known.add(name)
            place = names.index(name) + 1
    return names


# A row is an element in the outermost one, or in the first one inside of it; its cells are its elements, or its
# attributes, by their names.
def marked(name):
    root = xml.etree.ElementTree.parse(name).getroot()
    rows = list(root)
    if len(rows) == 1 and len(rows[0]) and len(rows[0][0]):
        rows = list(rows[0])
    first = rows[0]
    if len(first):
        names = merged([cell.tag for cell in row] for row in rows)
        return [names] + [[row.findtext(n, '') for n in names] for row in rows]
    if first.attrib.keys() <= {'type', 'index'}:
        return [[first.tag]] + [[row.text or ''] for row in rows]
    names = merged(row.attrib for row in rows)
    return [names] + [[row.attrib.get(n, '') for n in names] for row in rows]


def xbase_cell(value):
    if value is None:
        return ''
    if isinstance(value, datetime.date):
        return value.strftime('%Y%m%d')
    if isinstance(value, bool):
        return 'True' if value else 'False'
    return value.rstrip() if isinstance(value, str) else value


def xbase(name):
    import dbf
    with warnings.catch_warnings():
        warnings.simplefilter('ignore')
        for codepage in ('utf8', 'cp1252', 'cp437'):
            try:
                table = dbf.Table(name, codepage=codepage)
                table.open()
                rows = [[xbase_cell(value) for value in record] for record in table if not dbf.is_deleted(record)]
                names = list(table.field_names)
                table.close()
                return [names] + rows
            except UnicodeDecodeError:
                table.close()
    return None


READERS = {'csv': lambda name: delimited(name, ','), 'tab': lambda name: delimited(name, '\t'), 'xml': marked,
           'dbf': xbase}


# Whether a cell of the source is what stands in the other file: numbers of dbf files are compared as such.
def same(cell, other):
    if isinstance(cell, (int, float)) and not isinstance(cell, bool):
        cell, other = other, cell
    if isinstance(cell, (int, float)):
        return cell == other
    if isinstance(other, str) or other is None:
        return cell == other
    try:
        return cell.strip() != '' and float(cell) == float(other)
    except (ValueError, AttributeError):
        return False


# The first cell that differs, as (row, column, cell, other), or None. Rows that end early have empty cells there.
def difference(rows, others):
    if len(rows) != len(others):
        return (min(len(rows), len(others)) + 1, 0, f'{len(rows)} rows', f'{len(others)} rows')
    for number, (row, other) in enumerate(zip(rows, others), 1):
        for n in range(max(len(row), len(other))):
            one = row[n] if n < len(row) else ''
            two = other[n] if n < len(other) else ''
            if not same(one, two):
                return (number, n + 1, one, two)
    return None
