# SPDX-License-Identifier: Apache-2.0
# What python's dbf module makes of Xbase files, with rows as in dbf_peer.c.
#   dbf_peers.py write FILE ROWS  a file from the rows of a text
#   dbf_peers.py dump FILE        the rows as such a text
#   dbf_peers.py csv FILE         the same of a csv file of the six fields, without the marks
import csv
import datetime
import sys


def line(mark, number, price, ratio, name, ok, day):
    text = '%s|%d|%.4f|%.4f|%s|%s|%s\n' % (mark, number or 0, price or 0, ratio or 0, name.rstrip(), 'T' if ok else 'F', day)
    sys.stdout.buffer.write(text.encode('cp1252'))


def write(file, rows):
    import dbf
    table = dbf.Table(file, 'id N(10,0); price N(19,4); ratio N(19,8); name C(24); ok L; day D', dbf_type='db3',
                      codepage='cp1252')
    table.open()
    with open(rows, encoding='cp1252', newline='\n') as text:
        for row in text:
            mark, number, price, ratio, name, ok, day = row.rstrip('\n').split('|')
            date = datetime.date(int(day[:4]), int(day[4:6]), int(day[6:])) if day else None
            table.append((int(number), float(price) if price else None, float(ratio) if ratio else None, name, ok == 'T', date))
            if mark == '*':
                dbf.delete(table[-1])
    table.close()


def dump(file):
    import dbf
    table = dbf.Table(file, codepage='cp1252')
    table.open()
    for record in table:
        number, price, ratio, name, ok, day = record
        line('*' if dbf.is_deleted(record) else ' ', number, price, ratio, name, ok, day.strftime('%Y%m%d') if day else '')
    table.close()


def cells(file):
    with open(file, newline='', encoding='cp1252') as text:
        for number, price, ratio, name, ok, day in list(csv.reader(text))[1:]:
            line(' ', int(number), float(price or 0), float(ratio or 0), name, ok in ('T', '1'), day.replace('/', '').replace('-', ''))


{'write': write, 'dump': dump, 'csv': cells}[sys.argv[1]](*sys.argv[2:])
