// SPDX-License-Identifier: Apache-2.0
//
// Files that sqlite3 and csvkit write, read cell by cell; our files read by them, by python's csv and XML
// modules and by expat. None of them may be missing.
#include "kernel/data/xml/xml.h"
#include "kernel/run/errors.h"
#include "tarn_data/fixture.h"

#include <map>

namespace tarn::datatool {
namespace {

class Peers : public TarnData {
protected:
    // Texts that need quoting, numbers, and what is empty.
    void writeWithSqlite(const std::string& mode, const std::string& file) {
        write(
            "make.sql",
            "create table t (id integer, name text, price real, note text);\n"
            "insert into t values (1, 'Ann', 2.5, 'plain'), (2, 'O\"Brien, \"\"the\"\" first', -0.125, ''),\n"
            "(3, 'line' || char(10) || 'end', 1e10, 'a ''b'' <c> & d'), (4, ' blanks ', 0.1, 'NULL'),\n"
            "(5, 'h\xC3\xA4\xE2\x82\xAC', 12345678901, 'true'), (-6, 'x', null, '[1,2]');\n"
            ".headers on\n.mode " +
                mode + "\n.output " + file + "\nselect * from t;\n");
        ASSERT_EQ(shell("sqlite3 :memory: <make.sql && tr -d '\\r' <" + file + " >.n && mv .n " + file), 0)
            << errors;
        ASSERT_TRUE(exists(file));
    }
    int compare(const std::string& a, const std::string& b, const std::string& separator = {}) {
        return python("peers.py", "cells " + a + " " + b + " " + separator);
    }
};

TEST_F(Peers, FilesOfSqliteAreReadCellByCell) {
    writeWithSqlite("csv", "a.csv");
    ASSERT_EQ(tarnData("convert --text a.csv b.xml"), 0) << errors;
    EXPECT_EQ(compare("a.csv", "b.xml"), 0) << errors;
    write("plain.sql",
          "create table t (id integer, name text);\ninsert into t values (1, 'Ann'), (2, 'Bob x');\n"
          ".headers on\n.mode tabs\n.output p.tab\nselect * from t;\n.mode csv\n.output p.csv\nselect * from "
          "t;\n");
    ASSERT_EQ(shell("sqlite3 :memory: <plain.sql"), 0) << errors;
    ASSERT_EQ(tarnData("convert p.tab q.csv"), 0) << errors;
    EXPECT_EQ(compare("p.csv", "q.csv"), 0) << errors;
}

TEST_F(Peers, FilesOfCsvkitAreReadCellByCell) {
    writeWithSqlite("csv", "b.csv");
    // Blanks at the end of a cell without quotes are not part of it here.
    ASSERT_EQ(shell("sed 's/ blanks / blanks/' b.csv >a.csv"), 0);
    for (const char* options : {"", "-U 1", "-U 2", "-D ';'", "-T", "-D '|' -U 1"}) {
        ASSERT_EQ(shell(std::string("csvformat ") + options + " a.csv >c.csv"), 0) << options << errors;
        const bool tab = std::string(options) == "-T";
        ASSERT_EQ(tarnData(std::string("convert --text c.csv b.xml") + (tab ? " --separator='\\t'" : "")), 0)
            << options << errors;
        EXPECT_EQ(compare("a.csv", "b.xml"), 0) << options << errors;
    }
    ASSERT_EQ(shell("csvsort -c id a.csv >s.csv && csvcut -c name,id s.csv >c.csv"), 0) << errors;
    ASSERT_EQ(tarnData("convert --text c.csv b.xml"), 0) << errors;
    EXPECT_EQ(compare("c.csv", "b.xml"), 0) << errors;
}

TEST_F(Peers, OurFilesAreReadByOthersCellByCell) {
    const std::string text =
        "id,name,price,ok\n1,Ann,2.5000,True\n2,5\" disk,-0.1250,False\n3,h\xC3\xA4 <&>'x',0.0001,True\n";
    write("a.csv", text);
    for (const char* file : {"b.csv", "b.tab", "b.xml"}) {
        ASSERT_EQ(tarnData(std::string("convert a.csv ") + file), 0) << errors;
        EXPECT_EQ(compare("a.csv", file), 0) << file << errors;
    }
    ASSERT_EQ(tarnData("convert a.csv s.txt --to-separator='|'"), 0) << errors;
    EXPECT_EQ(compare("a.csv", "s.txt", "'|'"), 0) << errors;
    for (const char* words : {"b.csv", "-t b.tab", "-d '|' s.txt"}) {
        ASSERT_EQ(shell(std::string("csvformat ") + words + " >k.csv"), 0) << errors;
        EXPECT_EQ(compare("a.csv", "k.csv"), 0) << words << errors;
    }
    write("load.sql", ".mode csv\n.import b.csv t\nselect count(*), sum(id), max(name) from t;\n");
    ASSERT_EQ(shell("sqlite3 :memory: <load.sql"), 0) << errors;
    EXPECT_EQ(output, "3,6,\"h\xC3\xA4 <&>'x'\"\n");
    ASSERT_EQ(python("peers.py", "wellformed b.xml"), 0);
    EXPECT_EQ(output, "b.xml yes\n");
}

struct Document {
    const char* text;
    bool expat, ours;  // well-formed
};
// Ours is a reader of data: it takes more as text than a validator would, and knows neither names beyond
// ASCII nor entities of other files.
const Document documents[] = {
    {"<a/>", true, true},
    {"<a></a>", true, true},
    {"<a>x</a>", true, true},
    {"<a b='1' c=\"2\"/>", true, true},
    {"<?xml version='1.0'?><a/>", true, true},
    {"<!-- c --><a/><!-- d -->", true, true},
    {"<a><![CDATA[<>&]]></a>", true, true},
    {"<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", true, true},
    {"<a>&lt;&amp;&#65;&#x41;</a>", true, true},
    {"<a><?pi x?></a>", true, true},
    {"<a:b xmlns:a='u'/>", true, true},
    {"<a><b></a></b>", false, false},
    {"<a></b>", false, false},
    {"<a>", false, false},
    {"<a", false, false},
    {"<a/><b/>", false, false},
    {"<a/>text", false, false},
    {"<a>&none;</a>", false, false},
    {"<a>&#65</a>", false, false},
    {"<a b=1/>", false, false},
    {"<a b/>", false, false},
    {"< a/>", false, false},
    {"<a b='x/>", false, false},
    {"<a b='1' b='2'/>", false, true},
    {"<a b='<'/>", false, true},
    {"<a>x & y</a>", false, true},
    {"<a>x < y</a>", false, true},
    {"<a>]]></a>", false, true},
    {"<a><!-- x -- y --></a>", false, true},
    {"<a>\1</a>", false, true},
    {"<a>\xE9</a>", false, true},
    {"<a>&#0;</a>", false, true},
    {"<a><?xml version='1.0'?></a>", false, true},
    {"<?xml?><a/>", false, false},
    {"<?xml encoding='x'?><a/>", false, false},
    {" <?xml version='1.0'?><a/>", false, true},
    {"", false, false},
    {"\xEF\xBB\xBF<a/>", true, true},
    {"<\xC3\xA4/>", true, false},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 'f'>]><a>&e;</a>", true, false},
    {"<!DOCTYPE a [<!ENTITY e '<b/>'>]><a>&e;</a>", true, true},
    {"<!DOCTYPE a [<!ENTITY e '<b>'>]><a>&e;</a>", false, true},
    {"<a></a >", true, true},
    {"<a b = '1' />", true, true},
    {"<a / >1</a>", false, true},
    {"<a b='1' / />", false, true},
    {"<a>1</a> ?", false, true},
    {"<a>1</a>\n/\n", false, true},
    {"<a>1</a> x", false, false},
    {"<a b='1'c='2'/>", false, true},
    {"<a b='x & y'/>", false, true},
    {"<a b='x &y'/>", false, false},
    {"<?xml version='<1.0'?><a/>", false, true},
    {"<a>&#;</a>", false, true},
    {"<a>&#x;</a>", false, true},
    {"<a>&#4a;</a>", false, true},
    {"<a>&#g;</a>", false, false},
    {"<!DOCTYPE a [<!ENTITYe 'v'>]><a>&e;</a>", false, true},
};

TEST_F(Peers, WhatIsWellFormedIsJudgedAsByExpat) {
    std::string names, expected;
    int number = 0;
    for (const Document& document : documents) {
        const std::string name = "d" + std::to_string(number++) + ".xml";
        write(name, document.text);
        names += " " + name;
        expected += name + (document.expat ? " yes\n" : " no\n");
        const std::int32_t code = XmlRead(dir / name, 0, nullptr, KindNone, &output, 32768).code;
        EXPECT_EQ(code == 0, document.ours) << document.text << " " << code;
    }
    ASSERT_EQ(python("peers.py", "wellformed" + names), 0) << errors;
    EXPECT_EQ(output, expected);
}

TEST_F(Peers, TheCellsOfRandomRowsAreThoseOfPython) {
    ASSERT_EQ(python("csv_random.py", "write 150"), 0) << errors;
    ASSERT_EQ(shell("for n in $(seq 0 149); do " + program() + " convert d$n.csv o$n.csv && " + program() +
                    " convert d$n.csv t$n.tab && " + program() +
                    " convert t$n.tab --separator='\\t' b$n.csv || exit 1; done"),
              0)
        << errors;
    EXPECT_EQ(python("csv_random.py", "compare 150 d o"), 0) << errors;
    EXPECT_EQ(python("csv_random.py", "compare 150 d b"), 0) << errors;
}

TEST_F(Peers, TheRowsOfRandomDocumentsAreThoseOfExpat) {
    ASSERT_EQ(python("xml_random.py", "write 200"), 0) << errors;
    ASSERT_EQ(
        shell("for n in $(seq 0 199); do " + program() + " convert --text d$n.xml o$n.xml || exit 1; done"),
        0)
        << errors;
    EXPECT_EQ(python("xml_random.py", "compare 200"), 0) << errors;
}

}  // namespace
}  // namespace tarn::datatool
