// SPDX-License-Identifier: Apache-2.0
//
// Xbase, table and index files: info, convert, check and rebuild.
#include "tarn_data/tables_fixture.h"

#include <filesystem>
#include <unistd.h>

namespace tarn::datatool {
namespace {

TEST_F(Tables, WrongUsageIsTold) {
    write("t.bin", "12345678");
    write("d.dbf", dbf({}));
    makeTable();
    const Row rows[] = {
        {"info t.bin", "Give --type=FILE"},
        {"check t.bin", "Give --type=FILE"},
        {"rebuild t.bin", "Give --type=FILE"},
        {"convert t.bin b.csv", "Give --type=FILE"},
        {"convert a.csv b.bin", "Give --type=FILE"},
        {"convert a.csv b.csv --keys=id", "--keys means nothing"},
        {"convert a.csv b.bin --type=t.type --keys=none", "'none' in --keys is no field"},
        {"convert a.csv b.bin --type=t.type --keys=a,b,c,d,e", "cannot be the value"},
        {"convert a.csv b.dbf --to-table --type=t.type", "cannot be the name of a table file"},
        {"convert a.csv b.dbf --to-header-rows=1", "an Xbase file, which has no separator"},
        {"convert d.dbf b.csv --header-rows=1", "an Xbase file, which has no separator"},
        {"check a.csv", "there is nothing to check"},
        {"rebuild a.csv", "is no dbf file or table file"},
        {"rebuild t.i1", "is an index file"},
        {"info t.bin --keys=id", "'--keys' means nothing to 'info'"},
        {"check t.i1 --keys=id", "is an index file, so that --keys means nothing for it"},
        {"check t.bin --type=t.type --keys=none", "'none' in --keys is no field"},
        {"convert a.csv b.csv --dry-run", "'--dry-run' means nothing to 'convert'"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(tarnData(row.words), WrongUsage) << row.words;
        EXPECT_NE(errors.find(row.said), std::string::npos) << row.words << "\n" << errors;
    }
}

TEST_F(Tables, FilesThatCannotBeReadAreTold) {
    write("empty.dbf", "");
    write("short.dbf", dbf({}).substr(0, 40));
    write("sum.dbf", [] {
        std::string bytes = dbf({});
        bytes[10] = 11;
        return bytes;
    }());
    write("memo.dbf", [] {
        std::string bytes = dbf({});
        bytes[32 + 11] = 'M';
        return bytes;
    }());
    write("few.dbf", dbf({" Ann   1.5"}, 9));
    write("bad.type", "record\n\tid : number\nend record\n");
    write("open.type", "record\n\tname : string\nend record\n");
    write("none.type", "id : integer\n");
    write("t.bin", "123456789");
    const Row rows[] = {
        {"info none.dbf", "There is no such file"},
        {"check none.dbf", "There is no such file"},
        {"rebuild none.dbf", "There is no such file"},
        {"info empty.dbf", "does not start with a valid signature byte"},
        {"info short.dbf", "Xbase file"},
        {"convert sum.dbf b.csv", "Field sizes do not match the size stored in the header (calculated size = "
                                  "10, size in header = 11)"},
        {"convert memo.dbf b.csv", "which is not a standard Xbase type"},
        {"convert few.dbf b.csv", "counts 9 rows in its header and has 1"},
        {"info t.bin --type=none", "There is no such file"},
        {"info t.bin --type=bad.type", "declares nothing in line 2"},
        {"info t.bin --type=open.type", "the length of field 1 is not fixed"},
        {"info t.bin --type=none.type", "declares no record"},
        {"convert t.bin b.csv --type=t.type", "is not as long as its rows of 12 bytes make it"},
        {"convert a.csv none/b.dbf", "cannot be written"},
        {"convert a.csv none/b.bin --type=t.type", "cannot be written"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(tarnData(row.words), Failed) << row.words;
        EXPECT_NE(errors.find(row.said), std::string::npos) << row.words << "\n" << errors;
        EXPECT_EQ(output, "") << row.words;
    }
    expectFault("sum.dbf", "Field sizes do not match");
    EXPECT_FALSE(exists("b.csv"));
}

TEST_F(Tables, InfoOfXbaseTellsRowsDeletedOnesAndTheDeclaration) {
    write("d.dbf", dbf({" Ann   1.5", "*Bob      ", " Cy   12.0"}));
    EXPECT_EQ(tarnData("info d.dbf"), Well) << errors;
    EXPECT_EQ(output,
              "file: d.dbf\ntype: Xbase\nrows: 3 (1 marked as deleted)\ncolumns: 2\ndefault keys: NAME,N\n"
              "declaration:\nd : table\n\tTd : record\n\t\tdelete_flag : Tchar\n\t\tNAME : Tchars[1:5]\n"
              "\t\tN : Tnumeric[1:4]\n\tend record\nend table\n");
}

TEST_F(Tables, DeletedRowsAreLeftOutUnlessTheyAreWanted) {
    write("d.dbf", dbf({" Ann   1.5", "*Bob      ", " Cy   12.0"}));
    EXPECT_EQ(tarnData("convert d.dbf b.csv"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "NAME,N\nAnn,1.5\nCy,12.0\n");
    EXPECT_NE(errors.find("note: 1 row marked as deleted in 'd.dbf' left out; --deleted"), std::string::npos);
    EXPECT_EQ(tarnData("convert d.dbf b.csv --deleted"), Well);
    EXPECT_EQ(read("b.csv"), "deleted,NAME,N\nFalse,Ann,1.5\nTrue,Bob,\nFalse,Cy,12.0\n");
    EXPECT_EQ(errors, "");
    EXPECT_EQ(tarnData("convert d.dbf b.csv --text --max-rows=1"), Well);
    EXPECT_EQ(read("b.csv"), "NAME,N\nAnn,1.5\n");
    EXPECT_EQ(tarnData("convert d.dbf b.dbf"), Well);
    EXPECT_EQ(read("b.dbf"), dbf({" Ann   1.5", " Cy   12.0"}));
    EXPECT_EQ(tarnData("convert d.dbf b.dbf --deleted"), Well);
    EXPECT_EQ(read("b.dbf"), read("d.dbf"));
}

TEST_F(Tables, NumbersOfXbaseKeepAllTheirDigits) {
    std::string bytes = dbf({" Ann   1.5"});
    write("d.dbf", bytes);
    EXPECT_EQ(tarnData("convert d.dbf b.csv"), Well);
    EXPECT_EQ(read("b.csv"), "NAME,N\nAnn,1.5\n");
    write("d.dbf", dbf({" Ann  ****"}));
    EXPECT_EQ(tarnData("convert d.dbf b.csv"), Well);
    EXPECT_EQ(read("b.csv"), "NAME,N\nAnn,****\n");
    write("big.csv", "n,x\n123456789012345678,1\n");
    EXPECT_EQ(tarnData("convert big.csv b.dbf --text"), Well) << errors;
    EXPECT_EQ(tarnData("convert b.dbf c.csv"), Well) << errors;
    EXPECT_EQ(read("c.csv"), "n,x\n123456789012345678,1\n");
}

TEST_F(Tables, WhatXbaseCannotHoldIsAnErrorOrReplaced) {
    write("long.csv", "a\n" + std::string(256, 'x') + "\n");
    write("names.csv", "averylongname_1,averylongname_2\n1,2\n");
    write("decimals.csv", "a\n0.12345\n2.5\n");
    write("sets.tab", "a\tb\nx\t[1,2]\n");
    EXPECT_EQ(tarnData("convert long.csv b.dbf"), Failed);
    EXPECT_NE(errors.find("Row 1, column 'a' is longer than 255 characters."), std::string::npos) << errors;
    EXPECT_FALSE(exists("b.dbf"));
    EXPECT_EQ(tarnData("convert long.csv b.dbf --replace"), Well) << errors;
    EXPECT_EQ(tarnData("convert b.dbf b.csv"), Well);
    EXPECT_EQ(read("b.csv"), "a\n" + std::string(255, 'x') + "\n");
    EXPECT_EQ(tarnData("convert names.csv b.dbf && " + program() + " convert b.dbf b.csv"), Well);
    EXPECT_EQ(errors, "tarn-data: note: Names of fields have at most 11 characters: averylongname_1 to "
                      "averylongna, averylongname_2 to averylong_2.\n");
    EXPECT_EQ(read("b.csv"), "averylongna,averylong_2\n1,2\n");
    for (const char* file : {"decimals.csv", "sets.tab"}) {
        EXPECT_EQ(tarnData(std::string("convert ") + file + " b.dbf && " + program() + " convert b.dbf b." +
                           std::string(file).substr(std::string(file).size() - 3)),
                  Well)
            << errors;
        EXPECT_EQ(errors, "");
        EXPECT_EQ(read("b." + std::string(file).substr(std::string(file).size() - 3)), read(file));
    }
}

TEST_F(Tables, TableFilesBecomeOtherFormsAndComeFromThem) {
    makeTable();
    EXPECT_EQ(read("t.bin"),
              bytesOf("00000001 00000003 416E6E00 00000002 00000003 426F6200 00000003 00000002 43790000"));
    expectWhole("t.bin --type=t.type");
    expectWhole("t.i1");
    expectWhole("t.i2");
    for (const std::string form : {"csv", "xml", "dbf", "tab"}) {
        EXPECT_EQ(tarnData("convert t.bin b." + form + " --type=t.type"), Well) << form << errors;
        EXPECT_EQ(tarnData("convert b." + form + " c.bin --type=t.type"), Well) << form << errors;
        EXPECT_EQ(read("c.bin"), read("t.bin")) << form;
    }
    EXPECT_EQ(tarnData("convert t.bin other.tab --type=t.type --to-table --keys=id"), Well) << errors;
    EXPECT_EQ(read("other.tab"), read("t.bin"));
    EXPECT_EQ(tarnData("info other.tab"), Failed + 1);  // its index names it: it is a table file
    EXPECT_EQ(tarnData("convert other.tab b.csv --type=t.type"), Well) << errors;
    EXPECT_EQ(read("b.csv"), read("a.csv"));
}

TEST_F(Tables, TheRowsOfATableFileMustFitTheDeclaration) {
    write("names.csv", "id,nickname\n1,Ann\n");
    write("count.csv", "id,name,x\n1,Ann,2\n");
    write("long.csv", "id,name\n1,Annabel\n");
    write("twice.csv", "id,name\n1,Ann\n2,Bob\n1,Cy\n");
    write("fixed.type",
          "t : table[2]\n\tr : record\n\t\tid : integer\n\t\tname : string[4]\n\tend record\nend table\n");
    const Row rows[] = {
        {"convert names.csv t.bin --type=t.type",
         "Column 2 is 'nickname' in 'names.csv' and 'name' in the declaration."},
        {"convert count.csv t.bin --type=t.type", "has 3 columns, and the declaration 2."},
        {"convert long.csv t.bin --type=t.type",
         "Row 1, column 'name' holds Annabel, which its field in the declaration cannot hold."},
        {"convert twice.csv t.bin --type=t.type --keys=id", "Rows 1 and 3 have the same key (id)."},
        {"convert a.csv t.bin --type=fixed.type",
         "There are more rows than the 2 that the table is declared for."},
    };
    write("t.bin", "as it was");
    for (const Row& row : rows) {
        EXPECT_EQ(tarnData(row.words), Failed) << row.words;
        EXPECT_NE(errors.find(row.said), std::string::npos) << row.words << "\n" << errors;
        EXPECT_EQ(read("t.bin"), "as it was");
    }
    EXPECT_FALSE(exists("t.i1"));
}

TEST_F(Tables, InfoOfTableAndIndexFiles) {
    makeTable();
    EXPECT_EQ(tarnData("info t.bin --type=t.type"), Well) << errors;
    EXPECT_EQ(output,
              "file: t.bin\ntype: table file\nrows: 3\nrecord length: 12\ncolumns: 2\n"
              "index 1: t.i1, key id\nindex 2: t.i2, key name, id\ndefault keys: id,name\ndeclaration:\n"
              "t : table\n\tTt : record\n\t\tid : integer\n\t\tname : string[4]\n\tend record\nend table\n");
    EXPECT_EQ(tarnData("info t.i2"), Well) << errors;
    EXPECT_EQ(output,
              "file: t.i2\ntype: index file\ntable file: t.bin\nkey: name, id\nnodes: 3\nfree records: 0\n"
              "record length: 36\ndeclaration:\nIndex2 : record\n\tname : string[4]\n\tid : integer\n"
              "end record\n");
    EXPECT_EQ(tarnData("info t.bin --type=t.type >info.txt && " + program() + " info t.bin --type=info.txt"),
              Well);
}

// The examples of docs/formats/tablefile.md.
TEST_F(Tables, TheExamplesOfTheFormatStandByteForByte) {
    write("two.csv", "id,name\n2,Bob\n1,Ann\n");
    write("fixed.type",
          "t : table[3]\n\tr : record\n\t\tid : integer\n\t\tname : string[4]\n\tend record\nend table\n");
    ASSERT_EQ(tarnData("convert two.csv p.bin --type=t.type --keys=id"), Well) << errors;
    EXPECT_EQ(read("p.bin"), bytesOf("00000002 00000003 426F6200  00000001 00000003 416E6E00"));
    const std::string index = read("p.i1");
    ASSERT_EQ(index.size(), 1104U + 2 * 28);
    EXPECT_EQ(index.substr(0, 8), bytesOf("00000450 00000000"));
    EXPECT_EQ(index.substr(8, 41), "p.bin" + std::string(36, '\0'));
    const std::string text = "Index1 : record\n\tid : integer\nend record\n";
    EXPECT_EQ(index.substr(49, 1025), text + std::string(1025 - text.size(), '\0'));
    EXPECT_EQ(index.substr(1074, 30),
              bytesOf("000000000000 00000000 00000000 00000001 00000000 00000000 00000000"));
    EXPECT_EQ(index.substr(1104, 28),
              bytesOf("00000001 FFFFFFFF 00000000 00000000 00000002 00000000 00000002"));
    EXPECT_EQ(index.substr(1132, 28),
              bytesOf("00000002 00000000 00000000 00000000 00000000 00000000 00000001"));
    ASSERT_EQ(tarnData("convert two.csv f.bin --type=fixed.type"), Well) << errors;
    EXPECT_EQ(read("f.bin"), bytesOf("00000002  00000002 00000003 426F6200  00000001 00000003 416E6E00"
                                     "  00000000 00000000 00000000"));
}

TEST_F(Tables, EveryFlippedByteOfAnIndexFileIsFound) {
    makeTable();
    const std::string table = read("t.bin"), index = read("t.i1");
    for (std::size_t at = 0; at < index.size(); at += at == 110 ? 940 : at < 60 || at > 1060 ? 1 : 10) {
        std::string damaged = index;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x55);
        write("t.i1", damaged);
        const int status = tarnData("check t.bin --type=t.type");
        const bool noted = output.find("note: t.i1") != std::string::npos;
        EXPECT_TRUE(status == Failed || noted) << at << output << errors;
        EXPECT_LE(tarnData("info t.i1"), Failed) << at;
    }
}

TEST_F(Tables, FaultsOfTableFilesAreFound) {
    makeTable();
    const std::string table = read("t.bin"), index = read("t.i1");
    write("t.bin", table.substr(0, 30));
    expectFault("t.bin --type=t.type", "t.bin: It has 6 bytes behind its 2 whole rows of 12.");
    std::string damaged = table;
    damaged[7] = 9;
    write("t.bin", damaged);
    expectFault("t.bin --type=t.type", "t.bin: Row 1: its bytes are no value of field 'name'.");
    damaged = table;
    damaged[3] = 9;
    write("t.bin", damaged);
    expectFault("t.bin --type=t.type", "t.i1: The key of row 1 is not the one that the row has.");
    write("t.bin", table);
    write("t.i1", index.substr(0, index.size() - 1));
    expectFault("t.i1", "bytes too many for records of 28");
    std::filesystem::remove(dir / "t.i1");
    expectFault("t.bin --type=t.type", "t.i1: It is missing.");
    write("t.i1", "nothing");
    expectFault("t.i1", "It does not begin as an index file does.");
}

TEST_F(Tables, FaultsOfXbaseFilesAreFoundAndOddFieldsNoted) {
    write("d.dbf", dbf({" Ann   1.5"}));
    expectWhole("d.dbf");
    write("d.dbf", dbf({" Ann   1.5"}, 3));
    expectFault("d.dbf", "d.dbf: Its header counts 3 rows, and it has 1 whole one.");
    write("d.dbf", dbf({" Ann   1.5", " tor"}, 1));
    expectFault("d.dbf", "bytes behind its whole rows");
    write("d.dbf", dbf({"xAnn   1.5"}));
    expectFault("d.dbf", "Row 1 has 'x' where its mark of deletion stands.");
    write("d.dbf", dbf({" Ann   abc", " Bob  ****"}));
    expectWhole("d.dbf");
    EXPECT_NE(output.find("note: d.dbf: Row 1, field 2 ('N'): ' abc' is no number."), std::string::npos)
        << output;
    EXPECT_NE(output.find("Row 2, field 2 ('N'): '****' stands for a number that did not fit."),
              std::string::npos);
}

TEST_F(Tables, RebuildMendsTableFiles) {
    makeTable();
    const std::string table = read("t.bin");
    write("t.bin", table + "torn");
    write("t.i2", read("t.i2").substr(0, 1110));
    EXPECT_EQ(tarnData("rebuild --dry-run t.bin --type=t.type"), Well) << errors;
    EXPECT_NE(output.find("4 bytes behind the last whole row cut off; they stand in 't.bin.torn'"),
              std::string::npos)
        << output;
    EXPECT_EQ(read("t.bin"), table + "torn");
    EXPECT_FALSE(exists("t.bin.torn"));
    EXPECT_EQ(tarnData("rebuild t.bin --type=t.type"), Well) << errors;
    EXPECT_EQ(output,
              "t.bin: 4 bytes behind the last whole row cut off; they stand in 't.bin.torn'.\n"
              "t.bin: index 1 (id) made anew.\nt.bin: index 2 (name, id) made anew.\nt.bin: 3 rows.\n");
    EXPECT_EQ(read("t.bin"), table);
    EXPECT_EQ(read("t.bin.torn"), "torn");
    expectWhole("t.bin --type=t.type");
    // A deletion that did not end: the last row stands in the place of the deleted one, and at the end.
    write("t.bin", table.substr(24) + table.substr(12));
    EXPECT_EQ(tarnData("rebuild t.bin --type=t.type"), Well) << errors;
    EXPECT_NE(output.find("the last row, 3, was row 1 again: dropped."), std::string::npos) << output;
    expectWhole("t.bin --type=t.type");
    std::filesystem::rename(dir / "t.i1", dir / "t.~i1");
    EXPECT_EQ(tarnData("rebuild t.bin --type=t.type"), Well) << errors;
    expectWhole("t.bin --type=t.type");
    EXPECT_EQ(tarnData("rebuild t.bin --type=t.type --keys=name"), Well) << errors;
    EXPECT_FALSE(exists("t.i2"));
    expectWhole("t.bin --type=t.type");
}

// The one that stepped aside knows the key, and stays until the new one is made.
TEST_F(Tables, AnIndexThatHasOnlyBegunIsMadeByTheKeyOfTheOneBesideIt) {
    write("a.csv", "id,name\n1,b\n2,a\n");
    makeTable();
    for (const char* begun : {"", "half a header"}) {
        std::filesystem::rename(dir / "t.i1", dir / "t.~i1");
        write("t.i1", begun);
        expectFault("t.bin --type=t.type", "t.i1: It has only begun: the making of a new one did not end.");
        EXPECT_EQ(tarnData("rebuild t.bin --type=t.type"), Well) << errors;
        expectWhole("t.bin --type=t.type");
        EXPECT_FALSE(exists("t.~i1"));
    }
    write("t.i1", "");
    expectFault("t.bin --type=t.type", "t.i1: It does not begin as an index file does.");
}

// Whenever the death comes, all whole rows are there, and another run ends well.
TEST_F(Tables, AKilledRebuildCanBeStartedAgain) {
    std::string text = "id,name\n";
    for (int i = 1; i <= 20000; ++i) text += std::to_string(i) + ",n\n";
    write("a.csv", text);
    makeTable();
    const std::string table = read("t.bin");
    int killed = 0;
    for (int i = 0; i < 12; ++i) {
        write("t.bin", table + "torn");
        const std::string delay = "0.0" + std::to_string(10 + 7 * i);
        const int status =
            shell("timeout -s KILL " + delay + " " + program() + " rebuild t.bin --type=t.type");
        if (status != Well) ++killed;
        EXPECT_EQ(read("t.bin").substr(0, table.size()), table) << delay;
        EXPECT_EQ(tarnData("rebuild t.bin --type=t.type"), Well) << delay << errors;
        EXPECT_EQ(read("t.bin"), table);
        expectWhole("t.bin --type=t.type");
    }
    EXPECT_GT(killed, 0);
}

TEST_F(Tables, RebuildRefusesWhatWouldLoseRowsAndTellsDuplicates) {
    makeTable();
    const std::string table = read("t.bin");
    write("wrong.type", "record\n\tid : integer\n\tname : string[3]\n\tx : boolean\nend record\n");
    write("wider.type", "record\n\tid : integer\n\tname : string[9]\nend record\n");
    EXPECT_EQ(tarnData("rebuild t.bin --type=wider.type --keys=id"), Failed) << output;
    EXPECT_EQ(read("t.bin"), table);
    EXPECT_EQ(tarnData("rebuild t.bin --type=wrong.type"), Failed) << output;
    EXPECT_EQ(read("t.bin"), table);
    write("t.bin", table + bytesOf("00000001 00000001 58000000") + bytesOf("00000009 00000001 59000000"));
    EXPECT_EQ(tarnData("rebuild t.bin --type=t.type"), Failed);
    EXPECT_NE(output.find("rows 1 and 4 have the same key in index 1 (id), which lacks the second."),
              std::string::npos)
        << output;
    EXPECT_EQ(read("t.bin").size(), 60U);
}

TEST_F(Tables, RebuildMendsXbaseFiles) {
    const std::string whole = dbf({" Ann   1.5", " Bob   2.5"});
    write("d.dbf", whole);
    EXPECT_EQ(tarnData("rebuild d.dbf --keys=NAME"), Well) << errors;
    expectWhole("d.dbf");
    write("d.dbf", dbf({" Ann   1.5", " Bob   2.5"}, 1));
    EXPECT_EQ(tarnData("rebuild d.dbf"), Well) << errors;
    EXPECT_NE(output.find("1 row behind those that the header counted taken in."), std::string::npos)
        << output;
    expectWhole("d.dbf");
    write("d.dbf", dbf({" Ann   1.5", " Bob   2.5"}, 9).substr(0, 115));
    EXPECT_EQ(tarnData("rebuild d.dbf"), Well) << errors;
    EXPECT_NE(output.find("the count in the header was 9: set to 1."), std::string::npos) << output;
    expectWhole("d.dbf");
}

// Tests that run as the administrator can write everywhere.
TEST_F(Tables, AFolderThatCannotBeWrittenIsTold) {
    if (::geteuid() == 0) GTEST_SKIP() << "the administrator may write everywhere";
    makeTable();
    std::filesystem::permissions(dir.path(), std::filesystem::perms(0555));
    EXPECT_EQ(tarnData("rebuild t.bin --type=t.type"), Failed);
    std::filesystem::permissions(dir.path(), std::filesystem::perms(0755));
}

TEST_F(Tables, FilesOfPythonAndOursAreReadAlike) {
    if (shell("/usr/bin/python3 -c 'import dbf'") != 0) GTEST_SKIP() << "python3-dbf is not installed";
    write("rows", " |1|2.5000|0.5000|Ann|T|20240229\n*|-2|-0.1250|-0.1250|gone|F|19991231\n");
    ASSERT_EQ(python("dbf_peers.py", "write p.dbf rows"), 0) << errors;
    EXPECT_EQ(tarnData("convert p.dbf b.csv"), Well) << errors;
    EXPECT_EQ(read("b.csv"), "ID,PRICE,RATIO,NAME,OK,DAY\n1,2.5000,0.50000000,Ann,True,20240229\n");
    expectWhole("p.dbf");
    EXPECT_EQ(tarnData("convert p.dbf q.dbf"), Well) << errors;
    ASSERT_EQ(python("dbf_peers.py", "dump q.dbf"), 0) << errors;
    EXPECT_EQ(output, " |1|2.5000|0.5000|Ann|T|20240229\n");
}

}  // namespace
}  // namespace tarn::datatool
