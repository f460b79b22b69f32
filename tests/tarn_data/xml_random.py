# SPDX-License-Identifier: Apache-2.0
# Random XML documents that hold rows of text, and whether another document holds the same rows, as expat reads
# both. They keep to what docs/formats/xml.md takes: ASCII names, no carriage returns, character references of one
# byte, entities whose text is plain.
#   xml_random.py write COUNT            d0.xml, d1.xml, ...
#   xml_random.py compare COUNT          the rows of d0.xml are those of o0.xml, ...; 1 with the first difference
import random
import sys
import xml.parsers.expat

PLAIN = 'abc XYZ0189.,:;-_()[]#%/?!"\'='
TEXTS = [
    lambda r: ''.join(r.choice(PLAIN) for _ in range(r.randrange(1, 12))),
    lambda r: r.choice(['&amp;', '&lt;', '&gt;', '&apos;', '&quot;', '&own;', '&Own2;']),
    lambda r: r.choice(['&#{};', '&#x{:x};', '&#x{:X};']).format(r.randrange(32, 127)),
    lambda r: r.choice('\u00e4\u20ac\u4e2d'),
]
MARKUP = [
    lambda r: '<![CDATA[' + r.choice(['<b>', ']]', '&amp;', ' ', '<!-- no -->', 'x]>']) + ']]>',
    lambda r: '<!-- ' + r.choice(['', 'a comment', '<a>', '&none;', '"']) + ' -->',
    lambda r: '<?' + r.choice(['pi', 'pi a="b"', 'pi <a>', 'p ?']) + '?>',
]


def text(r, kinds):
    return ''.join(r.choice(kinds)(r) for _ in range(r.randrange(0, 6)))


def attribute(r, name):
    mark = r.choice('"\'')
    value = 'x' + text(r, TEXTS).replace(mark, '')
    return f' {name}{r.choice(["", " "])}={r.choice(["", " "])}{mark}{value}{mark}'


def gap(r):
    return r.choice(['', '\n', ' ', '\n\t', '<!-- between -->', '<?pi between?>\n'])


def row_of_attributes(r, columns, _):
    return '<row' + ''.join(attribute(r, c) for c in columns) + r.choice(['/>', ' />', '></row>'])


# The first row has text in each column, so that no column goes without a type.
def row_of_elements(r, columns, first):
    cells = [f'{gap(r)}<{c}>{first}{text(r, TEXTS + MARKUP)}</{c}{r.choice(["", " "])}>' for c in columns]
    return '<row>' + ''.join(cells) + gap(r) + '</row>'


def document(r):
    head = '<?xml version="1.0"' + r.choice(['', ' encoding="UTF-8"', " encoding='utf-8' standalone='yes'"]) + '?>\n'
    types = '<!DOCTYPE rows [<!ENTITY own "our own"> <!-- x --> <!ELEMENT row ANY><!ENTITY Own2 \'1 or 2\'>]>\n'
    columns = [f'c{i}' for i in range(1, r.randrange(3, 8))]
    row = r.choice([row_of_attributes, row_of_elements, row_of_elements])
    rows = [gap(r) + row(r, columns, 'x' if i == 0 else '') for i in range(r.randrange(2, 6))]
    return r.choice(['', head]) + types + '<rows>' + ''.join(rows) + gap(r) + '</rows>' + gap(r)


# The cells of the elements two levels down: their attributes, or the texts of what is in them.
def rows_of(name):
    rows, depth = [], 0

    def start(_, attributes):
        nonlocal depth
        depth += 1
        if depth == 2:
            rows.append([value for key, value in attributes.items() if key != 'type'])
        if depth == 3:
            rows[-1].append('')

    def end(_):
        nonlocal depth
        depth -= 1

    def data(characters):
        if depth == 3:
            rows[-1][-1] += characters

    parser = xml.parsers.expat.ParserCreate()
    parser.StartElementHandler, parser.EndElementHandler, parser.CharacterDataHandler = start, end, data
    with open(name, 'rb') as file:
        parser.ParseFile(file)
    return rows


def write(count):
    for n in range(int(count)):
        with open(f'd{n}.xml', 'w', encoding='utf-8') as file:
            file.write(document(random.Random(n)))


def compare(count):
    for n in range(int(count)):
        one, other = rows_of(f'd{n}.xml'), rows_of(f'o{n}.xml')
        if len(one) < 2 or one != other:
            sys.exit(f'd{n}.xml: {one} and {other}')


{'write': write, 'compare': compare}[sys.argv[1]](*sys.argv[2:])
