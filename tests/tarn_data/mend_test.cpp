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
        EXPECT_EQ(tarnData("rebuild d.dbf --keys=NAME"), Well) << errors;
        EXPECT_NE(output.find("1 byte behind the last whole row cut off; they stand in 'd.dbf.torn'."),
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
    changed(29, 3);
    expectNote("d.dbf", "d.dbf: Reserved bytes of its header are not 0.");
    changed(32 + 12, 1);
    expectNote("d.dbf", "d.dbf: Reserved bytes of field 1 ('NAME') are not 0.");
    changed(64 + 31, 1);
    expectNote("d.dbf", "d.dbf: Reserved bytes of field 2 ('N') are not 0.");
    write("d.dbf", whole);
    expectWhole("d.dbf");
    EXPECT_EQ(output.find("note"), std::string::npos);
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
