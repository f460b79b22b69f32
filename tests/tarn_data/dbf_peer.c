// SPDX-License-Identifier: Apache-2.0
//
// What shapelib makes of Xbase files.
//   dbf_peer write FILE ROWS  a file of the fields id, price, ratio, name, ok, day from the rows of a text
//   dbf_peer nulls FILE       one row of the same fields in which nothing is known
//   dbf_peer fields FILE      a line for each field: its name, type, length and decimals
//   dbf_peer dump FILE        the rows as such a text: mark|id|price|ratio|name|ok|day
#include <shapefil.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { fields = 6 };

static DBFHandle create(const char* file) {
    const DBFHandle dbf = DBFCreate(file);
    if (dbf == NULL) exit(2);
    DBFAddField(dbf, "ID", FTInteger, 10, 0);
    DBFAddField(dbf, "PRICE", FTDouble, 20, 4);
    DBFAddField(dbf, "RATIO", FTDouble, 19, 8);
    DBFAddField(dbf, "NAME", FTString, 24, 0);
    DBFAddField(dbf, "OK", FTLogical, 1, 0);
    DBFAddNativeFieldType(dbf, "DAY", 'D', 8, 0);
    return dbf;
}

// An empty cell is not written: it stays blank.
static void putRow(DBFHandle dbf, int row, char* line) {
    char* cells[fields + 1];
    for (int i = 0; i <= fields; ++i) cells[i] = strsep(&line, "|");
    DBFWriteIntegerAttribute(dbf, row, 0, atoi(cells[1]));
    for (int i = 1; i <= 2; ++i) {
        if (*cells[i + 1] != 0) DBFWriteDoubleAttribute(dbf, row, i, atof(cells[i + 1]));
    }
    DBFWriteStringAttribute(dbf, row, 3, cells[4]);
    DBFWriteLogicalAttribute(dbf, row, 4, *cells[5]);
    if (*cells[6] != 0) DBFWriteAttributeDirectly(dbf, row, 5, cells[6]);
    if (*cells[0] == '*') DBFMarkRecordDeleted(dbf, row, 1);
}

static int writeFile(const char* file, const char* rows) {
    FILE* const in = fopen(rows, "rb");
    if (in == NULL) return 2;
    const DBFHandle dbf = create(file);
    char line[1000];
    for (int row = 0; fgets(line, sizeof line, in) != NULL; ++row) {
        line[strcspn(line, "\n")] = 0;
        putRow(dbf, row, line);
    }
    DBFClose(dbf);
    return fclose(in);
}

static int writeNulls(const char* file) {
    const DBFHandle dbf = create(file);
    for (int i = 0; i < fields; ++i) DBFWriteNULLAttribute(dbf, 0, i);
    DBFClose(dbf);
    return 0;
}

static int showFields(const char* file) {
    const DBFHandle dbf = DBFOpen(file, "rb");
    if (dbf == NULL) return 2;
    for (int i = 0; i < DBFGetFieldCount(dbf); ++i) {
        char name[12];
        int width = 0, decimals = 0;
        DBFGetFieldInfo(dbf, i, name, &width, &decimals);
        printf("%s %c %d %d\n", name, DBFGetNativeFieldType(dbf, i), width, decimals);
    }
    DBFClose(dbf);
    return 0;
}

// Its own text of a field has lost the blanks in front.
static void showName(DBFHandle dbf, int row) {
    const char* const name = DBFReadTuple(dbf, row) + dbf->panFieldOffset[3];
    int length = dbf->panFieldSize[3];
    while (length > 0 && name[length - 1] == ' ') --length;
    printf("%.*s|", length, name);
}

static int dump(const char* file) {
    const DBFHandle dbf = DBFOpen(file, "rb");
    if (dbf == NULL || DBFGetFieldCount(dbf) != fields) return 2;
    for (int row = 0; row < DBFGetRecordCount(dbf); ++row) {
        printf("%c|%d|%.4f|%.4f|", DBFIsRecordDeleted(dbf, row) ? '*' : ' ',
               DBFReadIntegerAttribute(dbf, row, 0), DBFReadDoubleAttribute(dbf, row, 1),
               DBFReadDoubleAttribute(dbf, row, 2));
        showName(dbf, row);
        printf("%s|", DBFReadLogicalAttribute(dbf, row, 4));
        printf("%s\n", DBFReadStringAttribute(dbf, row, 5));
    }
    DBFClose(dbf);
    return 0;
}

int main(int count, char** words) {
    if (count == 4 && strcmp(words[1], "write") == 0) return writeFile(words[2], words[3]);
    if (count == 3 && strcmp(words[1], "nulls") == 0) return writeNulls(words[2]);
    if (count == 3 && strcmp(words[1], "fields") == 0) return showFields(words[2]);
    if (count == 3 && strcmp(words[1], "dump") == 0) return dump(words[2]);
    return 2;
}
