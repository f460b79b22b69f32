// SPDX-License-Identifier: Apache-2.0
//
// What 'check' finds and 'rebuild' refuses: declarations that are not those of the rows, mendings that fail,
// headers that lack something.
#include "tarn_data/tables_fixture.h"

#include <filesystem>

namespace tarn::datatool {
namespace {

class Mending : public Tables {
protected:
    void pipe(const std::string& name) { ASSERT_EQ(shell("mkfifo " + name), Well); }
    [[nodiscard]] bool kept() const {
        for (const auto& entry : std::filesystem::directory_iterator(dir.path()))
            if (entry.path().string().find(".torn") != std::string::npos) return true;
        return false;
    }
    // Nothing is changed, and nothing left over.
    void expectRefused(const std::string& file, const std::string& words, const std::string& reason) {
        const std::string before = read(file);
        EXPECT_EQ(tarnData("rebuild " + file + " " + words), Failed) << output;
        EXPECT_NE(errors.find(reason), std::string::npos) << errors;
        EXPECT_TRUE(read(file) == before) << file;
        EXPECT_FALSE(kept());
    }
    void expectNote(const std::string& words, const std::string& said) {
        EXPECT_EQ(tarnData("check " + words), Well) << words << "\n" << output;
        EXPECT_NE(output.find("note: " + said), std::string::npos) << output;
    }
};

// ---- Xbase files ----

TEST_F(Mending, OneStrayByteBehindTheRowsOfAnXbaseFileIsCutOff) {
    std::string whole = dbf({" Ann   1.5", " Bob   2.5"});
    whole.pop_back();  // the mark of the end
    for (const std::string stray : {"x", " ", "\x1B"}) {
        write("d.dbf", whole + stray);
        expectFault("d.dbf", "d.dbf: It has 1 byte behind its whole rows.");
        EXPECT_EQ(tarnData("info d.dbf"), Well) << errors;
        EXPECT_NE(output.find(" and 1 byte; 'tarn-data check' tells more\n"), std::string::npos) << output;
        EXPECT_EQ(output.find("the header counts"), std::string::npos) << output;
        EXPECT_EQ(tarnData("rebuild d.dbf --keys=NAME"), Well) << errors;
        EXPECT_NE(output.find("1 byte behind the last whole row cut off; it stands in 'd.dbf.torn'."),
                  std::string::npos)
            << output;
        EXPECT_EQ(read("d.dbf"), whole);
        EXPECT_EQ(read("d.dbf.torn"), stray);
        expectWhole("d.dbf");
        std::filesystem::remove(dir / "d.dbf.torn");
    }
    write("d.dbf", whole + "\x1A");
    EXPECT_EQ(tarnData("rebuild d.dbf --keys=NAME"), Well) << errors;
    EXPECT_FALSE(kept());
}

TEST_F(Mending, TheCountOfAnXbaseFileIsRaisedOnlyWhenItIsMended) {
    write("d.dbf", dbf({" Ann   1.5", " Bob   2.5", " Cy    3.5"}, 1));
    pipe("d.i1");
    expectRefused("d.dbf", "--keys=NAME", "rename what is in the way");
    EXPECT_EQ(output, "");
    std::filesystem::remove(dir / "d.i1");
    EXPECT_EQ(tarnData("rebuild d.dbf --keys=NAME"), Well) << errors;
    EXPECT_NE(output.find("2 rows behind those that the header counted taken in."), std::string::npos)
        << output;
    EXPECT_NE(output.find("d.dbf: 3 rows."), std::string::npos) << output;
    expectWhole("d.dbf");
}

TEST_F(Mending, WhatAnXbaseHeaderLacksIsFoundAndWhatItHasMoreIsNoted) {
    const std::string whole = dbf({" Ann   1.5"});
    const auto changed = [&](std::size_t at, char byte) {
        std::string bytes = whole;
        bytes[at] = byte;
        write("d.dbf", bytes);
    };
    changed(96, 0);
    expectFault("d.dbf", "d.dbf: Its list of fields has no end (a byte 13).");
    changed(28, 3);
    expectNote("d.dbf", "d.dbf: Reserved bytes of its header are not 0.");
    changed(29, 3);
    expectNote("d.dbf", "d.dbf: Its texts are in code page 1252.");
    changed(29, 0x5A);
    expectNote("d.dbf", "d.dbf: Its texts are in code page mark 5A.");
    EXPECT_EQ(output.find("Reserved"), std::string::npos) << output;
    changed(32 + 12, 1);
    expectNote("d.dbf", "d.dbf: Reserved bytes of field 1 ('NAME') are not 0.");
    changed(64 + 31, 1);
    expectNote("d.dbf", "d.dbf: Reserved bytes of field 2 ('N') are not 0.");
    write("d.dbf", whole);
    expectWhole("d.dbf");
    EXPECT_EQ(output.find("note"), std::string::npos);
}

TEST_F(Mending, TextsOfACodePageAndRowsWithoutAMarkAreNotTakenInSilence) {
    std::string file = dbf({" Ann   1.5", "xB\xE4r   2.5"});
    write("d.dbf", file);
    EXPECT_EQ(tarnData("convert d.dbf d.csv"), Well) << errors;
    EXPECT_NE(errors.find("1 row of 'd.dbf' without a mark of deletion taken, too"), std::string::npos)
        << errors;
    EXPECT_EQ(errors.find("code page"), std::string::npos) << errors;
    file[29] = 3;
    write("d.dbf", file);
    EXPECT_EQ(tarnData("convert d.dbf d.csv"), Well) << errors;
    EXPECT_NE(
        errors.find(
            "The texts of 'd.dbf' are in code page 1252, as its header says, and are taken byte for byte."),
        std::string::npos)
        << errors;
    EXPECT_NE(read("d.csv").find("B\xE4r"), std::string::npos);
}

TEST_F(Mending, MemosAreRefusedAndNamedAsSuch) {
    std::string file = dbf({" Ann   1.5"});
    file[32 + 11] = 'M';
    write("d.dbf", file);
    EXPECT_EQ(tarnData("convert d.dbf d.csv"), Failed);
    EXPECT_NE(errors.find("Xbase field number 1 is type M"), std::string::npos) << errors;
    EXPECT_NE(errors.find("Memos stand in a file of their own, which is not read"), std::string::npos)
        << errors;
    EXPECT_FALSE(exists("d.csv"));
}

TEST_F(Mending, NoDbfFileIsToBeConvertedToAnotherEncodingAsAWhole) {
    write("d.dbf", dbf({" B\xE4r   1.5"}));
    EXPECT_EQ(tarnData("convert d.dbf d.xml"), Failed);
    EXPECT_NE(errors.find("Write csv, and convert that to UTF-8 with iconv"), std::string::npos) << errors;
    EXPECT_EQ(errors.find("iconv -f"), std::string::npos) << errors;
}

// Some programs fill files up to whole blocks.
TEST_F(Mending, WhatStandsBehindTheMarkOfTheEndIsNoRowAndIsCutOff) {
    const std::string whole = dbf({" Ann   1.5", " Bob   2.5"});
    for (const std::string& fill : {std::string(31, '\0'), std::string(20, '\x1A'), std::string(3, '\0')}) {
        write("d.dbf", whole + fill);
        expectNote("d.dbf", "d.dbf: It has " + std::to_string(fill.size()) +
                                " bytes behind its mark of the end (a byte 26), which are no rows");
        EXPECT_NE(output.find("d.dbf: whole, 2 rows"), std::string::npos) << output;
        EXPECT_EQ(tarnData("convert d.dbf d.csv"), Well);
        EXPECT_EQ(errors.find("left out"), std::string::npos) << errors;
        EXPECT_EQ(tarnData("rebuild d.dbf"), Well) << errors;
        EXPECT_NE(output.find("bytes behind the mark of the end cut off."), std::string::npos) << output;
        EXPECT_FALSE(kept());
        EXPECT_EQ(read("d.dbf"), whole);
        expectWhole("d.dbf");
        EXPECT_EQ(output.find("note"), std::string::npos) << output;
    }
    write("d.dbf", whole + "who knows");
    EXPECT_EQ(tarnData("rebuild d.dbf"), Well) << errors;
    EXPECT_EQ(read("d.dbf.torn"), "who knows");
    EXPECT_EQ(read("d.dbf"), whole);
}

TEST_F(Mending, BytesBehindTheCountedRowsThatAreNoRowsAreCutOffToo) {
    std::string whole = dbf({" Ann   1.5", " Bob   2.5"});
    whole.pop_back();
    write("d.dbf", whole + std::string(25, 'x'));
    expectFault("d.dbf", "d.dbf: It has 25 bytes behind its whole rows.");
    EXPECT_EQ(tarnData("rebuild d.dbf"), Well) << errors;
    EXPECT_EQ(read("d.dbf"), whole);
    EXPECT_EQ(read("d.dbf.torn"), std::string(25, 'x'));
    expectWhole("d.dbf");
}

TEST_F(Mending, AFileThatEndsInItsHeaderIsToldSoAndCompleted) {
    const std::string head = dbf({}).substr(0, 97);
    ASSERT_EQ(head.back(), '\r');
    write("d.dbf", head.substr(0, 96));
    EXPECT_EQ(tarnData("check d.dbf"), Failed);
    EXPECT_EQ(output, "d.dbf: It has 96 bytes, and its header alone has 97.\n");
    EXPECT_EQ(tarnData("convert d.dbf d.csv"), Failed);
    EXPECT_NE(errors.find("File 'd.dbf' ends in its header."), std::string::npos) << errors;
    EXPECT_EQ(tarnData("rebuild d.dbf"), Well) << errors;
    EXPECT_NE(output.find("d.dbf: 1 byte at the end of its header missing: written."), std::string::npos)
        << output;
    EXPECT_EQ(read("d.dbf"), head);
    expectWhole("d.dbf");
    write("fixed.type", "t : table[6]\n\tr : record\n\t\tid : integer\n\tend record\nend table\n");
    write("f.bin", std::string(3, '\0'));
    EXPECT_EQ(tarnData("check f.bin --type=fixed.type"), Failed);
    EXPECT_EQ(output, "f.bin: It has 3 bytes, and its header alone has 4.\n");
    EXPECT_EQ(tarnData("rebuild f.bin --type=fixed.type"), Well) << errors;
    EXPECT_NE(output.find("f.bin: its header was not whole: written, for 0 rows."), std::string::npos)
        << output;
    expectWhole("f.bin --type=fixed.type");
}

TEST_F(Mending, AListOfFieldsWithoutItsEndGetsIt) {
    const std::string whole = dbf({" Ann   1.5"});
    std::string damaged = whole;
    damaged[96] = 'x';
    write("d.dbf", damaged);
    EXPECT_EQ(tarnData("rebuild --dry-run d.dbf"), Well) << errors;
    EXPECT_EQ(read("d.dbf"), damaged);
    EXPECT_EQ(tarnData("rebuild d.dbf"), Well) << errors;
    EXPECT_NE(output.find("d.dbf: its list of fields had no end (a byte 13): written."), std::string::npos);
    EXPECT_EQ(read("d.dbf"), whole);
    expectWhole("d.dbf");
}

TEST_F(Mending, OddMarksOfDeletionAreSetRightUnlessTheyTellOfMore) {
    const std::vector<std::string> rows = {" Ann   1.5", "*Bob   2.5", " Cy    3.5", " Dee   4.5",
                                           " Eve   5.5"};
    std::vector<std::string> damaged = rows;
    damaged[2][0] = 'x';
    damaged[3][0] = '\0';
    write("d.dbf", dbf(damaged));
    expectFault("d.dbf", "d.dbf: Row 3 has 'x' where its mark of deletion stands.");
    EXPECT_EQ(tarnData("rebuild d.dbf --keys=delete_flag,NAME"), Well) << errors;
    EXPECT_NE(
        output.find("d.dbf: row 3 had 'x' where its mark of deletion stands: set to a blank, so that the "
                    "row counts.\nd.dbf: 1 row had a zero byte where a mark of deletion stands: set to a "
                    "blank.\n"),
        std::string::npos)
        << output;
    EXPECT_EQ(read("d.dbf"), dbf(rows));
    expectWhole("d.dbf --keys=delete_flag,NAME");
    std::filesystem::remove(dir / "d.i1");
    // Rows that begin elsewhere.
    std::string moved = dbf(rows);
    moved[8] = 98;
    write("d.dbf", moved);
    expectRefused("d.dbf", "--keys=NAME", "5 of its 5 rows have no mark of deletion");
}

TEST_F(Mending, TruthValuesAreComparedAsTablesDo) {
    write("b.type", "record\n\tid : integer\n\tok : boolean\nend record\n");
    write("a.csv", "id,ok\n1,True\n2,False\n3,True\n4,False\n");
    ASSERT_EQ(tarnData("convert a.csv t.bin --type=b.type --keys=ok,id"), Well) << errors;
    std::string table = read("t.bin");
    table[4] = 2;
    write("t.bin", table);
    expectWhole("t.bin --type=b.type");
    table[4] = 0;
    write("t.bin", table);
    expectFault("t.bin --type=b.type", "t.i1: The key of row 1 is not the one that the row has.");
}

TEST_F(Mending, AFixedTableWithMoreRoomThanDeclaredIsWhole) {
    const auto type = [](int most) {
        return "t : table[" + std::to_string(most) +
               "]\n\tr : record\n\t\tid : integer\n\tend record\nend table\n";
    };
    write("six.type", type(6));
    write("three.type", type(3));
    write("two.type", type(2));
    write("a.csv", "id\n1\n2\n3\n");
    ASSERT_EQ(tarnData("convert a.csv t.bin --type=six.type --keys=id"), Well) << errors;
    expectNote("t.bin --type=three.type", "t.bin: It has room for 6 rows, and is declared for 3.");
    expectFault("t.bin --type=two.type", "t.bin: It has 3 rows, and is declared for 2.");
}

TEST_F(Mending, LinksThatLeadNowhereAndFoldersAreNamedAsSuch) {
    std::filesystem::create_symlink("loop.csv", dir / "loop.csv");
    std::filesystem::create_symlink("gone.csv", dir / "dangling.csv");
    std::filesystem::create_directory(dir / "folder.csv");
    for (const char* command : {"info ", "check "}) {
        EXPECT_EQ(tarnData(command + std::string("loop.csv")), Failed);
        EXPECT_NE(errors.find("It is a link that leads back to itself"), std::string::npos) << errors;
        EXPECT_EQ(tarnData(command + std::string("dangling.csv")), Failed);
        EXPECT_NE(errors.find("It is a link to 'gone.csv', which is not there."), std::string::npos)
            << errors;
        EXPECT_EQ(tarnData(command + std::string("folder.csv")), Failed);
        EXPECT_NE(errors.find("It is a folder"), std::string::npos) << errors;
    }
    EXPECT_EQ(tarnData("convert a.csv loop.csv"), Failed);
    EXPECT_NE(errors.find("File 'loop.csv' cannot be written."), std::string::npos) << errors;
    EXPECT_NE(errors.find("It is a link that leads back to itself"), std::string::npos) << errors;
    EXPECT_EQ(tarnData("convert a.csv folder.csv"), Failed);
    EXPECT_NE(errors.find("It is a folder: give the name of a file in it."), std::string::npos) << errors;
    EXPECT_EQ(tarnData("convert a.csv dangling.csv"), Well) << errors;  // written where it leads
    EXPECT_TRUE(exists("gone.csv"));
}

TEST_F(Mending, AnIndexedXbaseFileIsNoTableFile) {
    write("d.dbf", dbf({" Ann   1.5"}));
    ASSERT_EQ(tarnData("rebuild d.dbf --keys=NAME"), Well) << errors;
    write("d.type", "record\n\tNAME : string[5]\n\tN : fixed\nend record\n");
    EXPECT_EQ(tarnData("convert d.dbf e.bin --type=d.type --keys=NAME"), Well) << errors;
    expectWhole("e.bin --type=d.type");
}

TEST_F(Mending, AnXbaseFileUnderAnotherNameIsToldSo) {
    write("d.dat", dbf({" Ann   1.5"}));
    expectWhole("d.dat");
    EXPECT_EQ(tarnData("rebuild d.dat"), WrongUsage);
    EXPECT_NE(errors.find("has the form of a dbf file, but not its name"), std::string::npos) << errors;
}

// ---- declarations ----

const char* const fixedType =
    "t : table[6]\n\tr : record\n\t\tid : integer\n\t\tname : string[4]\n\tend record\nend table\n";

TEST_F(Mending, ADeclarationWithoutTheCapacityIsRefused) {
    write("fixed.type", fixedType);
    ASSERT_EQ(tarnData("convert a.csv t.bin --type=fixed.type --keys=id"), Well) << errors;
    expectRefused("t.bin", "--type=t.type",
                  "has 4 bytes behind its whole rows, and looks like a table with a capacity");
    EXPECT_NE(errors.find("Declare the capacity with --type, as in table[6]"), std::string::npos) << errors;
    expectRefused("t.bin", "--type=t.type --keys=id", "looks like a table with a capacity");
    EXPECT_EQ(tarnData("rebuild --dry-run t.bin --type=t.type"), Failed);
    expectWhole("t.bin --type=fixed.type");
    std::filesystem::remove(dir / "t.i1");  // without indexes, too
    expectRefused("t.bin", "--type=t.type", "looks like a table with a capacity");
    expectWhole("t.bin --type=fixed.type");
}

TEST_F(Mending, ADeclarationWithACapacityThatTheTableHasNotIsRefused) {
    write("fixed.type", fixedType);
    makeTable();
    expectRefused("t.bin", "--type=fixed.type", "looks like a table without a capacity");
    expectWhole("t.bin --type=t.type");
}

// The first word of the rows could be a count, and they are numbers in any case.
TEST_F(Mending, AnIndexTellsWhetherFourBytesAreTornOrACount) {
    write("two.type", "record\n\tid : integer\n\tx : integer\n\ty : integer\nend record\n");
    write("a.csv", "id,x,y\n3,10,1\n1,20,2\n2,30,3\n4,40,4\n5,50,5\n");
    ASSERT_EQ(tarnData("convert a.csv t.bin --type=two.type --keys=id"), Well) << errors;
    const std::string table = read("t.bin");
    write("t.bin", table + "torn");
    EXPECT_EQ(tarnData("rebuild t.bin --type=two.type"), Well) << errors;
    EXPECT_EQ(read("t.bin"), table);
    std::filesystem::remove(dir / "t.bin.torn");
    write("t.bin", table + "torn");
    std::filesystem::remove(dir / "t.i1");
    expectRefused("t.bin", "--type=two.type", "looks like a table with a capacity");
    EXPECT_NE(errors.find("if it has none, cut these bytes off first: truncate -s -4"), std::string::npos)
        << errors;
}

TEST_F(Mending, KeysThatAreNotThoseOfTheRowsAsDeclaredAreRefusedUnlessTheyAreGiven) {
    write("two.type", "record\n\tid : integer\n\tx : integer\nend record\n");
    write("turned.type", "record\n\tx : integer\n\tid : integer\nend record\n");
    write("a.csv", "id,x\n1,10\n2,20\n3,30\n4,40\n5,50\n");
    ASSERT_EQ(tarnData("convert a.csv t.bin --type=two.type --keys=id"), Well) << errors;
    const std::string index = read("t.i1");
    expectRefused("t.bin", "--type=turned.type", "The keys in 't.i1' are not those of the rows of 't.bin'");
    EXPECT_TRUE(read("t.i1") == index);
    EXPECT_EQ(tarnData("rebuild t.bin --type=turned.type --keys=id"), Well) << errors;
    expectWhole("t.bin --type=turned.type");
    EXPECT_EQ(tarnData("rebuild t.bin --type=two.type --keys=id"), Well) << errors;
    // A damaged index, and one that is a little behind its rows, are what a rebuild is for.
    write("t.i1", index.substr(0, index.size() - 1));
    EXPECT_EQ(tarnData("rebuild t.bin --type=two.type"), Well) << errors;
    std::string table = read("t.bin");
    table[3] = 9;
    table[11] = 8;
    write("t.bin", table);
    EXPECT_EQ(tarnData("rebuild t.bin --type=two.type"), Well) << errors;
    expectWhole("t.bin --type=two.type");
}

// ---- mendings that fail ----

TEST_F(Mending, WhatCannotBeRebuiltSaysWhatToDo) {
    makeTable();
    const std::string table = read("t.bin") + "torn";
    write("t.bin", table);
    std::filesystem::rename(dir / "t.i1", dir / "kept.i1");
    pipe("t.i1");
    expectRefused("t.bin", "--type=t.type --keys=id", "This file name is not allowed.\n");
    EXPECT_NE(errors.find("rename what is in the way, or the file. Its rows are whole"), std::string::npos)
        << errors;
    std::filesystem::remove(dir / "t.i1");
    ASSERT_EQ(tarnData("convert a.csv t.tab --to-table --type=t.type --keys=id"), Well) << errors;
    expectRefused("t.bin", "--type=t.type --keys=id", "belongs to another table beside it");
    std::filesystem::remove(dir / "t.tab");
    EXPECT_EQ(tarnData("rebuild t.bin --type=t.type --keys=id"), Well) << errors;
    EXPECT_EQ(read("t.bin.torn"), "torn");
}

// ---- checking ----

TEST_F(Mending, AskedForIndexesThatAreMissingOrOthersAreFaults) {
    makeTable();
    const std::string words = "t.bin --type=t.type";
    expectWhole(words + " --keys=id --keys=name,id");
    expectWhole(words + " --keys=ID");
    expectFault(words + " --keys=id --keys=name", "t.i2: Its key is name, id, and not name.");
    expectFault(words + " --keys=id --keys=name,id --keys=name", "t.i3: It is missing.");
    std::filesystem::remove(dir / "t.i2");
    expectWhole(words);  // nothing tells that there was one
    expectFault(words + " --keys=id --keys=name,id", "t.i2: It is missing.");
    write("d.dbf", dbf({" Ann   1.5"}));
    expectWhole("d.dbf");
    expectFault("d.dbf --keys=NAME", "d.i1: It is missing.");
}

TEST_F(Mending, BytesBehindATextAreNoted) {
    makeTable();
    std::string table = read("t.bin");
    table[23] = 'x';  // "Bob" and one more
    write("t.bin", table);
    // The second index has the text without it, and that is how texts compare.
    expectNote("t.bin --type=t.type", "t.bin: Row 2: there are bytes behind the text of field 'name'.");
}

TEST_F(Mending, OneByteIsOne) {
    makeTable();
    write("t.i1", read("t.i1") + "x");
    expectFault("t.i1", "The file has 1 byte too many for records of 28.");
    write("t.i1", read("t.i1") + "x");
    expectFault("t.i1", "The file has 2 bytes too many for records of 28.");
}

TEST_F(Mending, APipeIsNoTarget) {
    makeTable();
    write("d.dbf", dbf({" Ann   1.5"}));
    for (const std::string name : {"p.dbf", "p.csv", "p.xml", "p.bin"}) {
        pipe(name);
        const std::string line = "convert " + std::string(name == "p.bin" ? "a.csv" : "d.dbf") + " " + name +
                                 (name == "p.bin" ? " --type=t.type" : "");
        EXPECT_EQ(shell("timeout 20 " + program() + " " + line), Failed) << line;
        EXPECT_NE(errors.find("It is no regular file"), std::string::npos) << errors;
    }
}

}  // namespace
}  // namespace tarn::datatool
