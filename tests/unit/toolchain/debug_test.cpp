// SPDX-License-Identifier: Apache-2.0
//
// What compiled code tells the debugger: the lines where it can stop, its variables, and how the program starts.
#include "library/source/symbolfiles.h"
#include "support/toolchain_folder.h"
#include "toolchain/language/checker.h"
#include "toolchain/language/classes.h"
#include "toolchain/output/debuggen.h"
#include "toolchain/output/generator.h"
#include "toolchain/output/interface.h"
#include "toolchain/output/symfile.h"

#include <regex>
#include <set>
#include <string>

namespace tarn::toolchain {
namespace {

namespace fs = std::filesystem;

// The lines of all stamps of a C text but those of the class's onerror, which the debugger never reaches.
std::set<int> stampedLines(const std::string& text) {
    static const std::regex stamp("tarn_stamp\\((\\d+), ");
    std::string code = text.substr(text.find("#define H "));
    const std::size_t handler = code.find(std::string("\nstatic void ") + OnerrorSymbol + "(int32_t v_");
    if (handler != std::string::npos) code.erase(handler, code.find("\n}\n", handler) - handler);
    std::set<int> lines;
    for (std::sregex_iterator match(code.begin(), code.end(), stamp), none; match != none; ++match)
        if (const int number = std::stoi((*match)[1]); number != 0) lines.insert(number);
    return lines;
}

std::set<int> listedLines(const std::string& bitmap) {
    std::set<int> lines;
    for (int line = 1; line <= 8000; ++line) {
        const auto at = static_cast<std::size_t>(line - 1);
        if ((static_cast<unsigned char>(bitmap[at / 8]) >> (at % 8) & 1U) != 0) lines.insert(line);
    }
    return lines;
}

class ForDebugger : public ToolchainTest {
protected:
    struct Made {
        std::string text, bitmap;
        bool accepted = false;
    };
    // Of a class file with a debug level; not accepted if it has errors.
    static Made generate(const std::string& file, int debug, const std::vector<std::string>& path = {}) {
        Messages messages;
        ClassLoader loader(path);
        ClassTree* tree = loader.load(file, messages);
        if (tree == nullptr || tree->name.empty()) return {};
        checkClass(*tree, messages);
        if (!messages.empty()) return {};
        const Generated made = generateC(*tree, {2, debug});
        return {made.text, codeLineBitmap(made.codeLines), true};
    }
    Made compiled(const std::string& source, int debug = 2) {
        return generate(write("main.cls", source), debug);
    }
    static std::string inMain(const std::string& declarations, const std::string& statements) {
        return "Tarnwick Class Main\n" + declarations + "function main()\n" + statements +
               "\nend function\nEnd class\n";
    }
};

TEST_F(ForDebugger, TheLinesThatAreListedAreThoseWithAStampInEachClassOfThisSystem) {
    int classes = 0;
    for (const char* top : {SOURCE_DIR "/examples", SOURCE_DIR "/tests/programs"}) {
        for (const auto& entry : fs::recursive_directory_iterator(top)) {
            if (entry.path().extension() != ".cls") continue;
            const Made made = generate(entry.path().string(), 2, {entry.path().parent_path().string()});
            if (!made.accepted) continue;  // a case of a message
            ++classes;
            EXPECT_EQ(stampedLines(made.text), listedLines(made.bitmap)) << entry.path();
        }
    }
    EXPECT_GT(classes, 150);
}

TEST_F(ForDebugger, EachStatementHasItsLine) {
    const Made made = compiled("Tarnwick Class Main\n"               // 1
                               "private var total : integer := 3\n"  // 2: a value at the start
                               "    plain : integer\n"               // 3
                               "function add(a : integer) return integer\n"
                               "    precond a > 0\n"           // 5: a test
                               "    var i : integer\n"         // 6
                               "    for i from 1 to a loop\n"  // 7
                               "        total := total + 1\n"  // 8
                               "    end loop\n"                // 9
                               "    if a = 1 then\n"           // 10
                               "        return 1\n"            // 11
                               "    elseif a = 2 then\n"       // 12
                               "        return 2\n"            // 13
                               "    else\n"                    // 14
                               "        total :=\n"            // 15
                               "            4\n"               // 16
                               "    end if\n"                  // 17
                               "    return total\n"            // 18
                               "end function\n"                // 19
                               "function onerror(number : integer)\n"
                               "    total := number\n"  // 21: never in the debugger
                               "end function\n"
                               "function main()\n"
                               "    total := add(3)\n"  // 24
                               "end function\n"
                               "End class\n");
    ASSERT_TRUE(made.accepted);
    EXPECT_EQ(listedLines(made.bitmap), (std::set<int>{2, 5, 7, 8, 10, 11, 12, 13, 15, 18, 24}));
    EXPECT_EQ(stampedLines(made.text), listedLines(made.bitmap));
}

TEST_F(ForDebugger, LinesAbove8000AreNotListed) {
    const std::string empty(7997, '\n');
    const Made made = compiled("Tarnwick Class Main\nfunction main()\nvar i : integer\n" + empty.substr(1) +
                               "i := 1\ni := 2\nend function\nEnd class\n");
    ASSERT_TRUE(made.accepted);
    EXPECT_EQ(made.bitmap.size(), 1000U);
    EXPECT_EQ(listedLines(made.bitmap), std::set<int>{8000});
}

TEST_F(ForDebugger, TheSymbolFileHoldsTheBitmap) {
    write("main.cls", inMain("", "PRINT(\"x\")"));
    ASSERT_EQ(quarn({"/d2", dir + "main.cls"}), 0) << errors();
    std::string bitmap;
    int records = 0;
    for (const SymbolRecord& record : SYMLOAD(dir + "main.sym"))
        if (record.name == "debug" && record.sort == "debug") bitmap = record.comment, ++records;
    EXPECT_EQ(records, 1);
    ASSERT_EQ(bitmap.size(), 1000U);
    EXPECT_EQ(listedLines(bitmap), std::set<int>{3});
}

TEST_F(ForDebugger, VariablesAreToldWithTheirRolesAndKinds) {
    const Made made =
        compiled("Tarnwick Class Main\n"
                 "type PAIR : record\n    x, y : integer\nend record\n"
                 "private var level : fixed\n"
                 "function f(a : integer, in b : string, out c : real, inout d : PAIR) return boolean\n"
                 "    var e : list of PAIR\n        g : boolean\n        h : set[1:9]\n"
                 "    c := 1.0\n"
                 "    return g\n"
                 "end function\n"
                 "function main()\nend function\nEnd class\n");
    ASSERT_TRUE(made.accepted);
    std::string told;
    static const std::regex call("tarn_(register_variable|name_fields|register_result)\\(([^;]*)\\);");
    const std::size_t from = made.text.find("quarn_enter(\"Main\", \"f\"");
    const std::string body = made.text.substr(from, made.text.find("\n}\n", from) - from);
    for (std::sregex_iterator match(body.begin(), body.end(), call), none; match != none; ++match)
        told += (*match)[1].str() + " " + (*match)[2].str() + "\n";
    EXPECT_EQ(told, "register_variable \"a\", 'I', 3, (void *)&v_a\n"
                    "register_variable \"b\", 'I', 6, (void *)v_b\n"
                    "register_variable \"c\", 'O', 5, (void *)&(*v_c)\n"
                    "register_variable \"d\", 'N', 7, (void *)v_d\n"
                    "name_fields (void *)v_d, \"(x,y)\"\n"
                    "register_variable \"e\", 'V', 11, (void *)&v_e\n"
                    "name_fields (void *)&v_e, \"[(x,y)]\"\n"
                    "register_variable \"g\", 'V', 1, (void *)&v_g\n"
                    "register_variable \"h\", 'V', 9, (void *)&v_h\n"
                    "register_variable \"level\", 'C', 4, (void *)&g4main_level\n"
                    "register_result 1, &r\n");
}

TEST_F(ForDebugger, EnumsAreToldByHowManyNamesTheyHave) {
    const Made made = compiled("Tarnwick Class Main\n"
                               "type COLOUR : enum (red, green, blue)\n"
                               "type PAIR : record\n    x : integer\n    c : COLOUR\nend record\n"
                               "function main()\n"
                               "    var a : COLOUR\n        b : list of COLOUR\n        c : PAIR\n"
                               "        d : array[1:3] of PAIR\n        e : enum\n"
                               "    a := green\n"
                               "end function\nEnd class\n");
    ASSERT_TRUE(made.accepted);
    for (const char* told :
         {"v_a, \"#2\"", "v_b, \"[#2]\"", "v_c, \"(x,c#2)\"", "v_d, \"[(x,c#2)]\"", "v_e, \"\""})
        EXPECT_NE(made.text.find(told), std::string::npos) << told;
}

TEST_F(ForDebugger, InitialValuesShowTheVariablesOfTheClass) {
    const std::string source = inMain("private var level : integer := 3\n", "level := 4");
    const std::string text = compiled(source).text;
    const std::size_t from = text.find("\"initialise\"");
    ASSERT_NE(from, std::string::npos);
    EXPECT_NE(text.find("tarn_register_variable(\"level\", 'C'", from), std::string::npos);
}

TEST_F(ForDebugger, OtherLevelsTellFramesAndLinesAlone) {
    const std::string source =
        inMain("private var level : integer := 3\n", "var p : list of integer\nlevel := 4");
    for (const int debug : {0, 1}) {
        const Made made = compiled(source, debug);
        const std::size_t body = made.text.find("#define H ");
        for (const char* call : {"tarn_register_variable(", "tarn_name_fields(", "tarn_register_result("})
            EXPECT_EQ(made.text.find(call, body), std::string::npos) << debug << call;
        EXPECT_EQ(listedLines(made.bitmap), (std::set<int>{2, 5})) << debug;
        EXPECT_EQ(stampedLines(made.text), listedLines(made.bitmap)) << debug;
    }
}

TEST_F(ForDebugger, ProgramsStartInTheModeThatTheyWereBuiltForAndSayWhatTheyAre) {
    const std::string source = inMain("", "PRINT(\"x\")"), file = dir + "main.cls";
    for (const auto& [debug, mode] : {std::pair{0, "1, 0, 1, "}, {1, "1, 0, 1, "}, {2, "2, 1, 1, "}}) {
        const std::string text = compiled(source, debug).text;
        const std::string record = text.substr(text.find("const tarn_program c4main_program"));
        EXPECT_NE(record.find("{\"" + std::string(ProductVersion) + "\", \"" + file + "\", " + mode),
                  std::string::npos)
            << record;
        EXPECT_NE(
            record.find("\"" + std::string(ProductWord) + "\", \"" + std::string(ProductBuild) + "\"};"),
            std::string::npos)
            << record;
    }
}

TEST_F(ForDebugger, EachClassEntersItself) {
    write("part.cls", "Tarnwick Class Part\npublic function g()\nend function\nEnd class\n");
    const Made made = generate(
        write("main.cls", "Tarnwick Class Main\nUses part\nfunction main()\ng()\nend function\nEnd class\n"),
        2, {dir});
    ASSERT_TRUE(made.accepted);
    EXPECT_NE(made.text.find("tarn_register_class(\"" + dir + "main.cls\", \"Main\");"), std::string::npos);
    const Made part = generate(dir + "part.cls", 2);
    EXPECT_NE(part.text.find("tarn_register_class(\"" + dir + "part.cls\", \"Part\");"), std::string::npos);
}

TEST_F(ForDebugger, NamesOfFieldsAreNestedAndBounded) {
    const auto namesOf = [](const Type& type) { return fieldNames(type); };
    Type inner;
    inner.kind = Kind::Record;
    inner.fields = {{"a", plainType(Kind::Integer), 0}, {"b", plainType(Kind::Real), 4}};
    const Type* const record = internType(inner);
    Type list;
    list.kind = Kind::List;
    list.element = record;
    const Type* const records = internType(list);
    Type outer;
    outer.kind = Kind::Record;
    outer.fields = {{"one", record, 0}, {"many", records, 36}, {"n", plainType(Kind::Integer), 72}};
    EXPECT_EQ(namesOf(*record), "(a,b)");
    EXPECT_EQ(namesOf(*records), "[(a,b)]");
    EXPECT_EQ(namesOf(*internType(outer)), "(one(a,b),many[(a,b)],n)");
    EXPECT_EQ(namesOf(*plainType(Kind::Integer)), "");
    list.element = plainType(Kind::Integer);
    EXPECT_EQ(namesOf(*internType(list)), "");
    const Type* wide = record;
    for (int depth = 0; depth < 4; ++depth) {
        Type next;
        next.kind = Kind::Record;
        for (int i = 0; i < 40; ++i) next.fields.push_back({"field" + std::to_string(i), wide, 36 * i});
        wide = internType(next);
    }
    EXPECT_EQ(namesOf(*wide), "") << "more than anybody asks for";
}

}  // namespace
}  // namespace tarn::toolchain
