# SPDX-License-Identifier: Apache-2.0
# Random rows as python's csv module writes them, in files d0.csv, d1.csv, ..., and whether other files hold the same
# cells, as that module reads both.
#   csv_random.py write COUNT
#   csv_random.py compare COUNT A B      the cells of A0.csv are those of B0.csv, ...; 1 with the first difference
import csv
import random
import sys

# A carriage return alone is left away: that module writes it without quotes and reads it as the end of a row.
PIECES = ['', 'a', 'xyz', '0', '01', '1.50', '-3', '1e5', 'NULL', 'True', '2024-01-05', ' ', '  ', ',', ';', '\t', '"',
          '""', '\n', '\r\n', "'", '\\', '#', '<', '[1,2]', '\u00e4', '\u20ac', '\U0001F600', '(', 'n/a']


def cell(r):
    return ''.join(r.choice(PIECES) for _ in range(r.choice([0, 1, 1, 1, 2, 5])))


def write(count):
    for n in range(int(count)):
        r = random.Random(n)
        columns = r.randrange(2, 9)
        with open(f'd{n}.csv', 'w', newline='', encoding='utf-8') as file:
            writer = csv.writer(file, quoting=r.choice([csv.QUOTE_MINIMAL, csv.QUOTE_ALL, csv.QUOTE_NONNUMERIC]),
                                lineterminator=r.choice(['\n', '\r\n']))
            writer.writerow([f'c{i}' for i in range(columns)])
            for _ in range(r.randrange(1, 40)):
                writer.writerow(['x'] + [cell(r) for _ in range(columns - 1)])


def rows_of(name):
    with open(name, newline='', encoding='utf-8') as file:
        return list(csv.reader(file))


def compare(count, one, other):
    for n in range(int(count)):
        a, b = rows_of(f'{one}{n}.csv'), rows_of(f'{other}{n}.csv')
        if a != b:
            sys.exit(f'{n}: {[pair for pair in zip(a, b) if pair[0] != pair[1]][:1]}')


{'write': write, 'compare': compare}[sys.argv[1]](*sys.argv[2:])
