# SPDX-License-Identifier: Apache-2.0
# What other programs make of the same files.
#   peers.py cells A B [SEPARATOR]  the cells of the csv file A equal those of B: csv, tab or xml; 1 with the first difference
#   peers.py wellformed FILE...     a line for each XML file: its name, and "yes" or "no"
import csv
import sys
import xml.etree.ElementTree
import xml.parsers.expat


def rows_of(name, separator):
    if name.endswith('.xml'):
        root = xml.etree.ElementTree.parse(name).getroot()
        rows = [[cell.text or '' for cell in row] for row in root]
        return [[cell.tag for cell in root[0]]] + rows
    with open(name, newline='', encoding='utf-8') as file:
        return list(csv.reader(file, delimiter=separator))


def cells(a, b, separator=None):
    first = rows_of(a, ',')
    second = rows_of(b, separator or ('\t' if b.endswith('.tab') else ','))
    if len(first) != len(second):
        sys.exit(f'{len(first)} rows, and {len(second)}')
    for number, (one, other) in enumerate(zip(first, second)):
        if one != other:
            sys.exit(f'row {number}: {one} and {other}')


def wellformed(*names):
    for name in names:
        with open(name, 'rb') as file:
            try:
                xml.parsers.expat.ParserCreate().ParseFile(file)
                print(name, 'yes')
            except xml.parsers.expat.ExpatError:
                print(name, 'no')


{'cells': cells, 'wellformed': wellformed}[sys.argv[1]](*sys.argv[2:])
