// SPDX-License-Identifier: Apache-2.0
#include "library/source/codewiz.h"

#include "kernel/run/runtime.h"
#include "library/designer/proputil.h"
#include "library/system/product.h"
#include "os/files.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <vector>

namespace tarn {
namespace {

// ---- constants ----

TEST(TemplateConstants, AreReplacedEverywhereInAnyCase) {
    const std::pair<const char*, std::string> constants[] = {
        {"%APPLICATION_ICON%", "mainicon.ico"},
        {"%APPLICATION_ID%", "tarnwick"},
        {"%BUSINESS_NAME%", "the developers of Tarnwick"},
        {"%DESCRIPTION_INFO%", std::string(ProductDescription)},
        {"%EMAIL_ADDRESS%", std::string(ProductEmail)},
        {"%MAX_COMMPORTS%", "256"},
        {"%MAX_ID%", "40"},
        {"%MAX_SEGMENTS%", "4"},
        {"%MAX_SYMBOLS%", "9999"},
        {"%PRODUCT_NAME%", std::string(ProductWord)},
        {"%RELEASE_NUMBER%", std::string(ProductBuild)},
        {"%SOURCE_EXT%", ".cls"},
        {"%VERSION_NUMBER%", std::string(ProductVersion)},
        {"%WEB_ADDRESS%", std::string(ProductWebAddress)},
        {"%MAX_FIELDS%", "48"},
        {"%max_fields%", "48"},
    };
    for (const auto& [name, value] : constants)
        EXPECT_EQ(REPLACECONSTANTS(name + std::string(" and\n") + name), value + " and\n" + value) << name;
}

TEST(TemplateConstants, OtherNamesStay) {
    for (const char* text :
         {"", "%", "%%", "%MAX_FIELDS", "MAX_FIELDS", "%MAX FIELDS%", "%NONE%", "100% of 5%"})
        EXPECT_EQ(REPLACECONSTANTS(text), text);
}

// ---- loop lines ----

TEST(ForLine, IsReadWithBlanksAnywhere) {
    constexpr struct {
        const char *line, *variable;
        int from, to;
    } lines[] = {
        {"#FOR %i% = 1 TO 4", "%i%", 1, 4},
        {"  #for%i%=1 to 4  ", "%i%", 1, 4},
        {"\t#For \t%Field_2%  =  10\tTo\t048\r\n", "%Field_2%", 10, 48},
        {"#FOR %i% = 3 TO 1", "%i%", 3, 1},
        {"#FOR %i% = 0 TO 0", "%i%", 0, 0},
        {"#FOR %i% = 1 TO 2147483647", "%i%", 1, 2147483647},
    };
    for (const auto& [line, variable, from, to] : lines) {
        const ForLoop loop = PARSEFORLOOP(line);
        EXPECT_EQ(loop.variable, variable) << line;
        EXPECT_EQ(loop.from, from) << line;
        EXPECT_EQ(loop.to, to) << line;
    }
}

TEST(ForLine, ThatIsNotUsedWholeIsMinusOneToMinusOne) {
    for (const char* line : {"",
                             "#",
                             "#FO",
                             "#FOR",
                             "FOR %i% = 1 TO 4",
                             "#FOR i = 1 TO 4",
                             "#FOR %i = 1 TO 4",
                             "#FOR %% = 1 TO 4",
                             "#FOR %i% 1 TO 4",
                             "#FOR %i% = 1TO 4",
                             "#FOR %i% = 1 TO4",
                             "#FOR %i% = 1 TO",
                             "#FOR %i% = TO 4",
                             "#FOR %i% = 1 TO 4 5",
                             "#FOR %i% = 1 TO 4 // text",
                             "#FOR %i% = -1 TO -1",
                             "#FOR %i% = 1 DOWNTO 4",
                             "#FOR %i% = 1 TO 2147483648",
                             "#FOR %i% = a TO b",
                             "#FOR %i% = 1.5 TO 2",
                             "#FOR % i% = 1 TO 2",
                             "#FOR %i% = 1 TO 99999999999999999999"}) {
        const ForLoop loop = PARSEFORLOOP(line);
        EXPECT_EQ(loop.from, -1) << line;
        EXPECT_EQ(loop.to, -1) << line;
    }
}

// ---- loading ----

class Loading : public ::testing::Test {
protected:
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    // Writes the lines as they stand in a settings file.
    void write(const std::string& text) {
        std::ofstream out(file, std::ios::binary);
        out << "[Other]\r\n1=other\r\n\r\n[Template.T.cls]\r\n; what it is\r\n";
        int number = 0;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            out << ++number << '=' << text.substr(at, end - at) << "\r\n";
            at = end + 1;
        }
        out << "\r\n[Template.Empty.cls]\r\n\r\n[TEMPLATE.Upper]\r\n1=x\r\n[Template]\r\n[MyTemplate.x]\r\n1="
               "y\r\n";
    }
    TemplateText load(const std::string& text) {
        write(text);
        return LOADTEMPLATE(file, "Template.T.cls");
    }
    std::string loaded(const std::string& text) {
        const TemplateText result = load(text);
        EXPECT_EQ(result.message, "");
        return result.text;
    }
    TempFolder folder;
    std::string file = folder / "templates.ini";
};

TEST_F(Loading, WithoutANameIsTold) {
    const TemplateText result = LOADTEMPLATE(file, "");
    EXPECT_EQ(result.message, "Cannot load template, no name was provided.");
    EXPECT_EQ(result.text, "");
}

TEST_F(Loading, OfWhatIsNotThereIsTold) {
    EXPECT_EQ(LOADTEMPLATE(file, "Template.T.cls").message,
              "Cannot create Template.T.cls, it was not in \"" + file + "\".");
    write("a");
    for (const char* section : {"Template.None", "Template.Empty.cls", "T.cls", "Template"})
        EXPECT_EQ(LOADTEMPLATE(file, section).message,
                  "Cannot create " + std::string(section) + ", it was not in \"" + file + "\".");
    EXPECT_EQ(LOADTEMPLATE("", "Template.T.cls").message,
              "Cannot create Template.T.cls, it was not in \"\".");
}

TEST_F(Loading, KeepsLinesAndEmptyLines) {
    EXPECT_EQ(loaded("a\n\n    b  \n; c\n"), "a\n\n    b  \n; c\n");
    EXPECT_EQ(LOADTEMPLATE(file, "template.t.CLS").text, "a\n\n    b  \n; c\n");
}

TEST_F(Loading, RepeatsTheBodyOfALoop) {
    const std::pair<const char*, const char*> cases[] = {
        {"a\n#FOR %i% = 1 TO 3\nx%i%y%i%\n#NEXT %i%\nb\n", "a\nx1y1\nx2y2\nx3y3\nb\n"},
        {"  #for%i%=0 to 1  \n%I%\n  #next   %i%  \nb\n", "0\n1\nb\n"},
        {"#FOR %i% = 9 TO 11\ni %i %i% i%\n#NEXT %i%\n", "i %i 9 i%\ni %i 10 i%\ni %i 11 i%\n"},
        {"a\n#FOR %i% = 3 TO 1\nx\n#NEXT %i%\nb\n", "a\nb\n"},
        {"#FOR %i% = 1 TO 2\n#NEXT %i%\nb\n", "b\n"},
        {"#FOR %i% = 1 TO 2\nx\n#NEXT %i%\n#FOR %i% = 5 TO 5\ny%i%\n#NEXT %i%\n", "x\nx\ny5\n"},
        {"#FOR %i% = 1 TO %MAX_SEGMENTS%\n$Keys%i%$\n#NEXT %i%\n", "$Keys1$\n$Keys2$\n$Keys3$\n$Keys4$\n"},
        // The end of the text ends the loop.
        {"#FOR %i% = 1 TO 2\nx%i%\n", "x1\nx2\n"},
        {"#FOR %i% = 1 TO 2\nx%i%\n#NEXT %j%\n", "x1\n#NEXT %j%\nx2\n#NEXT %j%\n"},
        {"#NEXT %i%\na\n", "#NEXT %i%\na\n"},
        // Loops that are not closed take each other's lines in; a loop line that was a body has no variable then.
        {"#FOR %i% = 1 TO 2\nx\n#FOR %j% = 1 TO 2\ny\n", "x\ny\nx\n"},
        {"#FOR %i% = 1 TO 2\n#FOR %i% = 1 TO 2\nx\n#NEXT %i%\ny\n", ""},
        // A bad line gives nothing, and takes its body along.
        {"a\n#FOR %i% = x TO 2\nx%i%\n#NEXT %i%\nb\n", "a\nb\n"},
        {"a\n#FOR rubbish\nx\n#NEXT %i%\nb\n", "a\nb\n"},
        {"a\n#FOR\nx\n", "a\n"},
    };
    for (const auto& [text, result] : cases) EXPECT_EQ(loaded(text), result) << text;
}

TEST_F(Loading, LoopsNestAndUseTheOuterVariableInTheirBounds) {
    EXPECT_EQ(loaded("#FOR %i% = 1 TO 2\n#FOR %j% = %i% TO 2\n%i%.%j%\n#NEXT %j%\n#NEXT %i%\n"),
              "1.1\n1.2\n2.2\n");
    EXPECT_EQ(loaded("#FOR %i% = 1 TO 2\n#FOR %j% = 1 TO 2\n#FOR %k% = 1 TO 2\n%i%%j%%k%\n"
                     "#NEXT %k%\n#NEXT %j%\n#NEXT %i%\n"),
              "111\n112\n121\n122\n211\n212\n221\n222\n");
}

TEST_F(Loading, ConstantsAndParametersInsideOfLoops) {
    EXPECT_EQ(loaded("%SOURCE_EXT%\n#FOR %i% = 1 TO 2\n$Db%i%=NAME(1:%MAX_ID%)$\n#NEXT %i%\n"),
              ".cls\n$Db1=NAME(1:40)$\n$Db2=NAME(1:40)$\n");
}

TEST_F(Loading, WhatGetsTooLongIsTold) {
    const std::string told = "Cannot create Template.T.cls, it was too complex and caused a string overflow.";
    const auto before = std::chrono::steady_clock::now();
    for (const char* text : {
             "#FOR %i% = 1 TO 2147483647\nx\n#NEXT %i%\n",
             "#FOR %i% = 0 TO 2147483647\n#FOR %j% = 0 TO 2147483647\n#NEXT %j%\n#NEXT %i%\n",
             "#FOR %i% = 1 TO 100000\n#FOR %j% = 1 TO 100000\n%i%%j%\n#NEXT %j%\n#NEXT %i%\n",
         }) {
        const TemplateText result = load(text);
        EXPECT_EQ(result.message, told) << text;
        EXPECT_EQ(result.text, "");
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - before;
    EXPECT_LT(taken.count(), 20);
    EXPECT_EQ(loaded("#FOR %i% = 1 TO 2147483647\n#NEXT %i%\na\n"), "a\n");
}

TEST_F(Loading, LoopsNestAHundredDeepAndNoDeeper) {
    const auto nested = [](int depth) {
        std::string text;
        for (int i = 1; i <= depth; ++i) text += "#FOR %v" + std::to_string(i) + "% = 1 TO 1\n";
        text += "x\n";
        for (int i = depth; i >= 1; --i) text += "#NEXT %v" + std::to_string(i) + "%\n";
        return text;
    };
    EXPECT_EQ(loaded(nested(MaxTemplateLoops)), "x\n");
    EXPECT_NE(load(nested(MaxTemplateLoops + 1)).message, "");
}

TEST_F(Loading, ATextAtTheLimitIsTooLongAndOneBelowIsNot) {
    const auto lines = [](std::size_t count) {
        return "#FOR %i% = 1 TO " + std::to_string(count) + "\n" + std::string(999, 'x') + "\n#NEXT %i%\n";
    };
    EXPECT_EQ(loaded(lines(3999)).size(), 3999000U);
    EXPECT_NE(load(lines(4000)).message, "");
}

TEST_F(Loading, SectionsAreTemplatesByTheirFirstNineLetters) {
    write("a");
    EXPECT_EQ(TEMPLATESECTIONS(file), "Template.T.cls\nTemplate.Empty.cls\nTEMPLATE.Upper\n");
    EXPECT_EQ(TEMPLATESECTIONS(folder / "none.ini"), "");
}

// ---- parameters ----

TEST(TemplateParameterList, HasNamesAndTypesInTheOrderOfTheirFirstUses) {
    const TemplateParameters list = TEMPLATETOPROPLIST(
        "$Name$ a $Kind=ENUM(one,two)$\n$ Port = INTEGER(1:9) $ $Name=NAME(1:40)$ $kind$ $X=$");
    EXPECT_EQ(list.names, "Name\nKind\nPort\nX\n");
    EXPECT_EQ(list.types, "STRING\nENUM(one,two)\nINTEGER(1:9)\nSTRING\n");
    EXPECT_EQ(list.values, "\n\n\n\n");
}

TEST(TemplateParameterList, OddTexts) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},         {"no sign", ""},          {"$", ""},        {"$$", ""},
        {"$ $", ""},      {"$=INTEGER$", ""},       {"$Name", ""},    {"$A$$B$", "A\nB\n"},
        {"$A$ $", "A\n"}, {"$5\n$Name$", "Name\n"}, {"$A$B$", "A\n"}, {"$a b=c=d$", "a b\n"},
    };
    for (const auto& [text, names] : cases) EXPECT_EQ(TEMPLATETOPROPLIST(text).names, names) << text;
    EXPECT_EQ(TEMPLATETOPROPLIST("$a=b=c$").types, "b=c\n");
}

std::string updated(std::string_view text, const std::vector<std::pair<std::string, std::string>>& values,
                    bool crlf = false) {
    TemplateParameters list = TEMPLATETOPROPLIST(text);
    for (const auto& [name, value] : values) SETPROPVALUE(name, value, list.names, list.values);
    const TemplateText result = UPDATETEMPLATE(list, text, crlf);
    EXPECT_EQ(result.message, "");
    return result.text;
}

TEST(Updating, PutsTrimmedValuesInPlaceOfEveryUse) {
    EXPECT_EQ(updated("$A$$B$ $A=NAME$ $a$ $ B $", {{"A", "  one "}, {"b", "two"}}), "onetwo one one two");
    EXPECT_EQ(updated("$A=X$ $A=Y$ $A$", {{"A", "v"}}), "v v v");
    EXPECT_EQ(updated("$A$-$B$", {}), "-");
    EXPECT_EQ(updated("5$ and $\n$A", {{"A", "v"}}), "5\n$A");
}

TEST(Updating, LeavesParametersThatAreNotInTheList) {
    const TemplateText result = UPDATETEMPLATE({"B\n", "STRING\n", "v\n"}, "$A$ $B$ $A$B$", false);
    EXPECT_EQ(result.text, "$A$ v $Av");
    EXPECT_EQ(UPDATETEMPLATE({}, "$A$", false).text, "$A$");
    EXPECT_EQ(UPDATETEMPLATE({"A\nB\n", "", "v\n"}, "$A$$B$", false).text, "v");
}

TEST(Updating, AValueIsLookedThroughForTheParametersBehindItAlone) {
    EXPECT_EQ(updated("$A$ $B$", {{"A", "<$B$>"}, {"B", "b"}}), "<b> b");
    EXPECT_EQ(updated("$A$ $B$", {{"A", "a"}, {"B", "<$A$$B$>"}}), "a <$A$$B$>");
}

TEST(Updating, ValuesThatMultiplyAreTold) {
    std::string text;
    TemplateParameters list;
    for (int i = 0; i < 60; ++i) {
        const std::string next = "$v" + std::to_string(i + 1) + "$";
        list.names += "v" + std::to_string(i) + "\n";
        list.types += "STRING\n";
        list.values += i < 59 ? next + next + "\n" : "x\n";
    }
    const TemplateText result = UPDATETEMPLATE(list, "$v0$", false);
    EXPECT_EQ(result.message, "Cannot create the text, it was too complex and caused a string overflow.");
    EXPECT_EQ(result.text, "");
}

TEST(Updating, FormsOfFunctions) {
    const std::pair<const char*, const char*> cases[] = {
        {"a #UCASE(bc) d", "a BC d"},
        {"#LCASE(BC)#lcase(D)", "bcd"},
        {"#FILEGETFNAME(/home/me/a.b.csv)", "a.b.csv"},
        {"#FILEGETEXT(/home/me/a.b.csv)", ".csv"},
        {"#FILEGETEXT(/home.d/me)", ""},
        {"#STRESCAPE(a\"\\\t\x01\x7F\xC3~)", "a\\\"\\\\\\t\\x01\\x7F\\xC3~"},
        {"#UCASE(abc", "ABC"},
        {"#UCASE(abc\nd", "ABC\nD"},
        {"#UCASE()x", "x"},
        {"#UCASE(", ""},
        {"#UCASE (a)", "#UCASE (a)"},
        {"#UCASE", "#UCASE"},
        {"#UCASE((a)b)", "(Ab)"},
        // No nesting: the argument ends at the first bracket; the kinds follow each other.
        {"#UCASE(a#LCASE(Bc)d)", "Abcd"},
        {"#LCASE(#UCASE(a)b)", "ab"},
        // What has been put in is not looked at again by the same kind.
        {"#UCASE(#ucase(x)y)", "#UCASE(Xy)"},
        {"#LCASE(#LCASE(x)#LCASE(Y)", "#lcase(xy"},
        {"#STRESCAPE(#UCASE(a\")", "A\\\""},
    };
    for (const auto& [text, result] : cases) EXPECT_EQ(updated(text, {}), result) << text;
}

TEST(Updating, FormsStandInCommandsAndTakeParameters) {
    EXPECT_EQ(
        updated("#IF #UCASE($A$) = ABC\nx\n#END\n#FILEGETFNAME($F$)\n", {{"A", "abc"}, {"F", "/x/y.z"}}),
        "x\ny.z\n");
}

// ---- conditions ----

TEST(Relation, Operators) {
    const std::pair<const char*, bool> cases[] = {
        {"a = a", true},
        {"a = A", false},
        {"a <> b", true},
        {"a <> a", false},
        {"a IN x,a,y", true},
        {"a in x,a,y", true},
        {"ab IN abc,def", true},
        {"c,d IN abc,def", true},
        {"z IN abc,def", false},
        {", IN abc", true},
        {"a > b", false},
        {"a LIKE a", false},
        {"\"a b\" = 'a b'", true},
        {"'' = \"\"", true},
        {"\"\" <> x", true},
        {"\"\" IN a,b", false},
        {"a", false},
        {"", false},
        {"a =", false},
        {"=  = =", true},
        {"it's = it's", true},
        {"\"it's\" = \"it's\"", true},
        {"a=a", false},
        {"\"a\" = a", true},
    };
    for (const auto& [line, result] : cases) {
        std::size_t position = 1;
        EXPECT_EQ(PARSERELEXP(line, position), result) << line;
    }
}

TEST(Relation, MovesThePositionBehindIt) {
    std::size_t position = 4;
    const std::string line = "#IF 'a b' = \"a b\" #AND x = y";
    EXPECT_TRUE(PARSERELEXP(line, position));
    EXPECT_EQ(line.substr(position - 1), " #AND x = y");
    position = 1000;
    EXPECT_FALSE(PARSERELEXP(line, position));
}

TEST(Conditions, KeepOneOfTwoBlocks) {
    const auto kept = [](const std::string& condition) {
        return updated("#IF " + condition + "\nyes\n#ELSE\nno\n#END\n", {});
    };
    const std::pair<const char*, const char*> cases[] = {
        {"a = a", "yes\n"},
        {"a = b", "no\n"},
        {"a = b #OR b = b", "yes\n"},
        {"a = a #AND a = b", "no\n"},
        {"a = a #or a = a #and a = b", "no\n"},  // from left to right: (true or true) and false
        {"a = b #AND a = b #OR a = a", "yes\n"},
        {"a = a rubbish a = b", "yes\n"},
        {"", "no\n"},
    };
    for (const auto& [condition, result] : cases) EXPECT_EQ(kept(condition), result) << condition;
}

TEST(Conditions, Lines) {
    const std::pair<const char*, const char*> cases[] = {
        {"a\n#// b\n  #//\nc #// d\n", "a\nc #// d\n"},
        {"  #if a = a  \nx\n\t#End\ny\n", "x\ny\n"},
        {"#IF a = b\n#// c\n#END\n", ""},
        // Blocks in a block that is left out have no effect on it, whatever they say.
        {"#IF a = b\n#IF a = a\nx\n#ELSE\ny\n#END\nz\n#ELSE\nkept\n#END\nend\n", "kept\nend\n"},
        {"#IF a = a\n#IF a = b\nx\n#ELSE\ny\n#END\nz\n#ELSE\nleft\n#END\nend\n", "y\nz\nend\n"},
        {"#IF a = b\nx\n#ELSE\ny\n#ELSE\nz\n#END\n", "y\n"},
        // A block that is not closed goes to the end of the text.
        {"a\n#IF a = b\nx\n", "a\n"},
        {"a\n#IF a = a\nx\n", "a\nx\n"},
        {"a\n#ELSE\nb\n", "a\nb\n"},
        // Behind an END too many the depth is below 0, so that a block at depth 0 leaves nothing out.
        {"a\n#END\nb\n#IF a = b\nx\n#END\nc\n", "a\nb\nx\nc\n"},
        {"a\n#END\n#ELSE\nx\n#ELSE\nb\n", "a\nb\n"},
    };
    for (const auto& [text, result] : cases) EXPECT_EQ(updated(text, {}), result) << text;
}

// ---- lines that go on ----

TEST(LinesThatGoOn, AreJoinedOnce) {
    const std::pair<const char*, const char*> cases[] = {
        {"a\\\nb\n", "ab\n"},       {"a\\\\\nb\n", "a\\b\n"},          {"a\\\nb\\\nc\n", "abc\n"},
        {"a\\ \nb\n", "a\\ \nb\n"}, {"a\\\n#// dropped\nb\n", "ab\n"}, {"a\\\n", "a"},
        {"\\\n\\\n", ""},           {"a\\\r\nb\r\n", "ab\n"},
    };
    for (const auto& [text, result] : cases) EXPECT_EQ(updated(text, {}), result) << text;
    EXPECT_EQ(updated("$A$\\\nb\n", {{"A", "x\\"}}), "x\\b\n");
    EXPECT_EQ(updated("$A$\nb\n", {{"A", "x\\"}}), "xb\n");
}

TEST(LinesThatGoOn, EndsOfLines) {
    EXPECT_EQ(updated("a\n\nb\\\nc\nd", {}, true), "a\r\n\r\nbc\r\nd\r\n");
    EXPECT_EQ(updated("a\r\nb\n", {}, true), "a\r\nb\r\n");
    EXPECT_EQ(updated("a\n\nb\nd", {}, false), "a\n\nb\nd");
    EXPECT_EQ(updated("", {}, true), "");
}

// ---- functions ----

TEST(FunctionText, HasItsArgumentsBelowTheHead) {
    const TemplateText result =
        FUNCTIONFROMTEMPLATE("Main", "#// $Name=NAME(1:40)$\nf $Name$(a,\n   b,\n   c,\n   d)\n   e\nend\n");
    EXPECT_EQ(result.message, "");
    EXPECT_EQ(result.text, "f Main(a,\n       b,\n       c,\n       d)\n   e\nend\n");
    EXPECT_EQ(FUNCTIONFROMTEMPLATE("Main", "f $Name$()").text, "f Main()");
    EXPECT_EQ(FUNCTIONFROMTEMPLATE("Main", "").text, "");
    EXPECT_EQ(FUNCTIONFROMTEMPLATE("Ab", "no name\nline\n").text, "no name\n  line\n");
}

// ---- hostile texts ----

TEST(HostileTemplate, OfAMegabyteIsDoneInTime) {
    const auto repeated = [](const std::string& part) {
        std::string text;
        for (std::size_t i = 0; text.size() < 1'000'000; ++i) text += part;
        return text;
    };
    std::string distinct;
    for (int i = 0; distinct.size() < 1'000'000; ++i) distinct += "$name" + std::to_string(i) + "$\n";
    const auto before = std::chrono::steady_clock::now();
    for (const std::string& text :
         {distinct, repeated("$"), repeated("$x"), repeated("#UCASE("), repeated("#"),
          repeated("#IF a = a\n"), repeated("#END\n"), repeated("#ELSE\n"), repeated("\\\n"), repeated("\n"),
          repeated("'"), "#IF " + repeated("a = a #OR "), "#IF " + repeated("\" "),
          repeated("#STRESCAPE(\x80)")}) {
        const TemplateText result = UPDATETEMPLATE(TEMPLATETOPROPLIST(text), text, true);
        EXPECT_LT(result.text.size(), MaxTemplateText);
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - before;
    EXPECT_LT(taken.count(), 30);
}

}  // namespace
}  // namespace tarn
