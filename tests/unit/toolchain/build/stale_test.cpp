// SPDX-License-Identifier: Apache-2.0
//
// Which classes a build compiles, and that no program is ever older than its sources: whatever clocks, deaths and
// other builds did.
#include "support/rounds.h"
#include "support/toolchain_folder.h"
#include "toolchain/build/digest.h"
#include "toolchain/build/make.h"
#include "toolchain/language/parser.h"
#include "toolchain/output/generator.h"

#include <csignal>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace tarn::toolchain {
namespace {

constexpr std::int64_t Second = 1'000'000'000, Hour = 3600 * Second;

const char* const Bottom = "Tarnwick Class C\n"
                           "public const LETTER = \"c\"\n"
                           "const HIDDEN = 4\n"
                           "public const SHOWN = HIDDEN + 1\n"
                           "public type COUNT : integer\n"
                           "public var seen : integer\n"
                           "public function TWICE(x : integer) return COUNT\n"
                           "    return x * 2\n"
                           "end function\n"
                           "private function own() return integer\n"
                           "    return 1\n"
                           "end function\n"
                           "End class\n";

// main uses b, b uses c.
class Stale : public ToolchainTest {
protected:
    void SetUp() override {
        ToolchainTest::SetUp();
        write("c.cls", Bottom);
        write("b.cls", "Tarnwick Class B\nUses c\npublic function TEXT() return string\n"
                       "return LETTER + STR(SHOWN) + STR(TWICE(4))\nend function\nEnd class\n");
        write("main.cls",
              "Tarnwick Class Main\nUses b\nfunction main()\nPRINT(TEXT())\nend function\nEnd class\n");
    }
    std::string query() {
        EXPECT_EQ(ordo({"-fq", dir + "main.cls", "-n", "-o" + dir + "ordo.err"}), 0) << output;
        std::string answer = read("ordo.err");
        for (std::size_t at = 0; (at = answer.find(dir, at)) != std::string::npos;)
            answer.erase(at, dir.size());
        for (char& c : answer)
            if (c == '\n') c = ' ';
        return answer;
    }
    void build() { EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << errors(); }
    // Builds, and gives what the program prints.
    std::string built() {
        build();
        EXPECT_EQ(query(), "");
        EXPECT_EQ(run(dir + "main.exe", {}), 0);
        return output;
    }
    void replace(const std::string& file, const std::string& what, const std::string& with) {
        std::string text = read(file);
        ASSERT_NE(text.find(what), std::string::npos) << what;
        text.replace(text.find(what), what.size(), with);
        write(file, text);
    }
    void shift(const std::string& file, std::int64_t by) {
        EXPECT_EQ(os::files().setModified(dir + file, os::infoOf(dir + file).modified + by),
                  os::FileError::None);
    }
};

TEST_F(Stale, AnEditCompilesThoseThatSeeIt) {
    struct Row {
        const char *what, *with, *compiled, *printed;
    };
    for (const Row& row : std::vector<Row>{
             {"x * 2", "x * 3", "c.cls ", "c512\n"},
             {"return 1\n", "return 1 + 1\n", "c.cls ", "c58\n"},
             {"private function own() return integer", "private function own(a : integer) return integer",
              "c.cls ", "c58\n"},
             {"private function own()", "function other()\nend function\nprivate function own()", "c.cls ",
              "c58\n"},
             {"End class", "// nothing\nEnd class", "c.cls ", "c58\n"},
             {"public const LETTER", "public\n   const   LETTER", "c.cls ", "c58\n"},
             {"\"c\"", "\"d\"", "c.cls b.cls ", "d58\n"},
             {"HIDDEN = 4", "HIDDEN = 5", "c.cls b.cls ", "c68\n"},
             {"HIDDEN + 1", "HIDDEN + 3", "c.cls b.cls ", "c78\n"},
             {"TWICE(x : integer)", "TWICE(y : integer, x : integer)", "c.cls b.cls ", nullptr},
             {"return COUNT", "return list of string", "c.cls b.cls ", nullptr},
             {"public type COUNT : integer", "public type COUNT : list of string", "c.cls b.cls ", nullptr},
             {"public var seen : integer", "public var seen : string", "c.cls b.cls ", "c58\n"},
             {"private function own()", "public function own()", "c.cls b.cls ", "c58\n"},
             {"public function TWICE(x : integer) return COUNT",
              "public function TWICE(x : integer) return\n  COUNT", "c.cls ", "c58\n"},
         }) {
        write("c.cls", Bottom);
        EXPECT_EQ(built(), "c58\n");
        replace("c.cls", row.what, row.with);
        EXPECT_EQ(query(), row.compiled) << row.with;
        if (row.printed != nullptr) {
            EXPECT_EQ(built(), row.printed) << row.with;
        } else {
            EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 1) << row.with;
            EXPECT_NE(query().find("b.cls"), std::string::npos) << row.with;
        }
    }
}

// The constant of b has its value from c; main sees it without using c.
TEST_F(Stale, AConstantOfAConstantReachesThoseBehindIt) {
    write("b.cls", "Tarnwick Class B\nUses c\npublic const FAR = SHOWN * 10\nEnd class\n");
    write("main.cls",
          "Tarnwick Class Main\nUses b\nfunction main()\nPRINT(STR(FAR))\nend function\nEnd class\n");
    EXPECT_EQ(built(), "50\n");
    replace("c.cls", "HIDDEN = 4", "HIDDEN = 6");
    EXPECT_EQ(query(), "c.cls b.cls main.cls ");
    EXPECT_EQ(built(), "70\n");
    replace("c.cls", "x * 2", "x * 3");
    EXPECT_EQ(query(), "c.cls ");
}

TEST_F(Stale, OnlyWhatIsOutOfDateIsCompiledAndLinked) {
    build();
    const auto inode = [this](const char* file) { return os::infoOf(dir + file).inode; };
    const auto b = inode(".tarnwick/b.o");
    const std::string c = read(".tarnwick/c.o"), exe = read("main.exe");
    replace("c.cls", "x * 2", "x * 3");
    build();
    EXPECT_TRUE(read(".tarnwick/c.o") != c);
    EXPECT_EQ(inode(".tarnwick/b.o"), b);
    EXPECT_TRUE(read("main.exe") != exe);
    const auto after = inode("main.exe");
    replace("c.cls", "End class", "// only a comment\nEnd class");
    build();
    EXPECT_EQ(inode("main.exe"), after) << "the objects are what they were";
    EXPECT_EQ(query(), "");
}

TEST_F(Stale, AClassThatTakesTheNameOfAnotherIsSeen) {
    write("library/c.cls", Bottom);
    std::filesystem::remove(dir + "c.cls");
    const std::string path = "-i" + dir + "library";
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", path, "-o" + dir + "o"}), 0) << errors();
    write("c.cls", Bottom);
    replace("c.cls", "x * 2", "x * 5");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", path, "-o" + dir + "o"}), 0) << errors();
    EXPECT_EQ(run(dir + "main.exe", {}), 0);
    EXPECT_EQ(output, "c520\n");
}

TEST_F(Stale, TheTimesOfFilesDoNotMatter) {
    EXPECT_EQ(built(), "c58\n");
    // An older text comes back with its old time, as from an archive.
    replace("c.cls", "x * 2", "x * 3");
    shift("c.cls", -24 * Hour);
    EXPECT_EQ(query(), "c.cls ");
    EXPECT_EQ(built(), "c512\n");
    // The clock was ahead when the program was built, and has been set back.
    for (const char* file :
         {"main.exe", ".tarnwick/c.o", ".tarnwick/b.o", ".tarnwick/main.o", "c.sym", "b.sym"})
        shift(file, 24 * Hour);
    replace("c.cls", "x * 3", "x * 4");
    EXPECT_EQ(built(), "c516\n");
    // A source has a time in the future.
    replace("c.cls", "x * 4", "x * 6");
    shift("c.cls", 24 * Hour);
    EXPECT_EQ(built(), "c524\n");
    replace("c.cls", "x * 6", "x * 7");
    EXPECT_EQ(built(), "c528\n");
}

TEST_F(Stale, ATextOfTheSameLengthAndTimeIsSeen) {
    EXPECT_EQ(built(), "c58\n");
    const std::int64_t time = os::infoOf(dir + "c.cls").modified;
    replace("c.cls", "x * 2", "x * 9");
    os::files().setModified(dir + "c.cls", time);
    EXPECT_EQ(query(), "c.cls ");
    EXPECT_EQ(built(), "c536\n");
}

TEST_F(Stale, ResultsThatDoNotBelongTogetherAreMadeAgain) {
    EXPECT_EQ(built(), "c58\n");
    const std::string object = read(".tarnwick/c.o"), symbols = read("c.sym"), program = read("main.exe");
    const std::string note = read(".tarnwick/main.exe.note");
    replace("c.cls", "x * 2", "x * 3");
    EXPECT_EQ(built(), "c512\n");
    const std::string newObject = read(".tarnwick/c.o"), newSymbols = read("c.sym");
    // What is left by a compile that died between its two results, or by two at once.
    write(".tarnwick/c.o", object);
    EXPECT_EQ(query(), "c.cls ");
    EXPECT_EQ(built(), "c512\n");
    write("c.sym", symbols);
    EXPECT_EQ(query(), "c.cls ");
    write(".tarnwick/c.o", object);
    EXPECT_EQ(query(), "c.cls ") << "both are of the old text";
    EXPECT_EQ(built(), "c512\n");
    // The same of the program and its note.
    write("main.exe", program);
    EXPECT_EQ(query(), "main.exe ");
    write(".tarnwick/main.exe.note", note);
    EXPECT_EQ(query(), "main.exe ") << "both are of the old objects";
    EXPECT_EQ(built(), "c512\n");
    std::filesystem::remove(dir + ".tarnwick/main.exe.note");
    EXPECT_EQ(query(), "main.exe ");
    EXPECT_EQ(built(), "c512\n");
    write(".tarnwick/main.exe.note", "inputs=");
    EXPECT_EQ(built(), "c512\n");
    std::filesystem::remove_all(dir + ".tarnwick");
    EXPECT_EQ(built(), "c512\n");
}

TEST_F(Stale, DamagedObjectsAndSymbolFilesAreMadeAgain) {
    EXPECT_EQ(built(), "c58\n");
    for (const char* file : {".tarnwick/c.o", "c.sym"}) {
        const std::string whole = read(file);
        for (const std::size_t size : {std::size_t{0}, std::size_t{1}, whole.size() / 2, whole.size() - 1}) {
            write(file, whole.substr(0, size));
            EXPECT_EQ(built(), "c58\n") << file << " of " << size;
        }
    }
}

TEST_F(Stale, AMovedFolderIsCompiledSinceObjectsKnowTheirSources) {
    build();
    std::filesystem::create_directories(dir + "moved");
    for (const char* file : {"c.cls", "b.cls", "main.cls", "c.sym", "b.sym", "main.sym", ".tarnwick"})
        std::filesystem::rename(dir + file, dir + "moved/" + file);
    EXPECT_EQ(ordo({"-fq", dir + "moved/main.cls", "-n", "-o" + dir + "o"}), 0);
    EXPECT_EQ(read("o"), dir + "moved/c.cls\n" + dir + "moved/b.cls\n" + dir + "moved/main.cls\n");
}

class StaleSoak : public Stale {
protected:
    // As `built`; a compiler that lives on may still be at work then, so that something can be out of date again.
    std::string builtAndRun() {
        build();
        EXPECT_EQ(run(dir + "main.exe", {}), 0);
        return output;
    }
    // Another text for each round; what the program prints of it.
    std::string edit(int round) {
        write("c.cls", Bottom);
        replace("c.cls", "x * 2", "x * " + std::to_string(10 + round));
        return "c5" + std::to_string(4 * (10 + round)) + "\n";
    }
    std::unique_ptr<os::Child> start(const std::string& answer) {
        os::StartError error = os::StartError::None;
        return os::processes().start(
            {dir + "tools/ordo.exe", {"-fm", dir + "main.cls", "-o" + dir + answer}, dir, dir + "output"},
            error);
    }
};

// Builds die at moments all over their time, with the compilers that they started living on, and a source is edited
// before each.
TEST_F(StaleSoak, AKillAtAnyMomentLeavesNothingThatPassesForBuilt) {
    build();
    for (int round = 0; round < rounds(20); ++round) {
        const std::string expected = edit(round);
        const auto child = start("killed");
        ASSERT_NE(child, nullptr);
        ::usleep(static_cast<useconds_t>(round % 40) * 700);
        ::kill(child->id(), SIGKILL);
        child->wait(10000);
        ASSERT_EQ(builtAndRun(), expected) << "round " << round;
    }
}

// Builds from several run-time folders do not wait for each other, as those of several users do not.
TEST_F(StaleSoak, BuildsAtOnceLeaveAProgramOfTheNewestSources) {
    build();
    for (int round = 0; round < rounds(6); ++round) {
        const std::string expected = edit(round);
        std::vector<std::unique_ptr<os::Child>> builds;
        for (const char* user : {"one", "two", "three"}) {
            const Variable runtime("XDG_RUNTIME_DIR", dir + user);
            std::filesystem::create_directories(dir + user);
            builds.push_back(start(std::string(user) + "/o"));
            ASSERT_NE(builds.back(), nullptr);
        }
        for (const auto& one : builds) one->wait(60000);
        ASSERT_EQ(builtAndRun(), expected) << "round " << round;
    }
}

TEST_F(Stale, ResourcesAreSeenWhateverTheirTime) {
    write("main.rc", "Main DIALOG\n    POSITION=20 20 240 160\nEND\n");
    build();
    const std::string companion = read("main.rcx");
    write("main.rc", "Main DIALOG\n    POSITION=20 20 240 161\nEND\n");
    shift("main.rc", -24 * Hour);
    EXPECT_EQ(query(), "main.rc ");
    build();
    EXPECT_EQ(query(), "");
    EXPECT_NE(read("main.rcx"), companion);
    write("main.rcx", companion);
    EXPECT_EQ(query(), "main.rc ");
}

TEST(Digests, TheRecordOfACompileComesBackAsItWas) {
    CompileRecord record;
    record.source = 0x123456789ABCDEF0U;
    record.heads = {~Digest{0}, true};
    record.reach = 1;
    record.object = 2;
    record.quick = record.isMain = true;
    record.name = "Main";
    record.uses = {"one", "two"};
    const auto read = findRecord("\"x\",1\n" + recordLine(record));
    ASSERT_TRUE(read);
    EXPECT_EQ(recordLine(*read), recordLine(record));
    EXPECT_EQ(read->uses, record.uses);
    record.uses.emplace();
    EXPECT_EQ(findRecord(recordLine(record))->uses, record.uses);
    record.uses = std::vector<std::string>(40, std::string(40, 'x'));
    EXPECT_LE(recordLine(record).size(), 1100U);
    EXPECT_FALSE(findRecord(recordLine(record))->uses) << "too many to be noted";
    const std::string line = recordLine(record);
    for (std::size_t size = 0; size < line.size(); ++size)
        EXPECT_FALSE(findRecord(line.substr(0, size))) << size;
}

TEST(Digests, HeadsAreOpenWhereTheyMayNameSomethingOfAnotherClass) {
    struct Row {
        const char* item;
        bool open;
    };
    for (const Row& row : {Row{"", false},
                           {"public const C = 1", false},
                           {"const D = 1\npublic const C = D + 1", false},
                           {"public const C = E + 1", true},
                           {"public const C = b.E", true},
                           {"public type T : U", true},
                           {"public type U : integer\npublic type T : U", false},
                           {"public var v : U", true},
                           {"public function F(x : integer) return string\nG(E)\nend function", false},
                           {"public function F(x : U)\nend function", true},
                           {"public function F() return U\nend function", true},
                           {"private function F() return U\nend function", false}})
        EXPECT_EQ(
            outlineOf(std::string("Tarnwick Class A\nUses b c\n") + row.item + "\nEnd class\n").heads.open,
            row.open)
            << row.item;
}

TEST(Digests, AnOutlineTellsWhatTheParserWould) {
    for (const char* text :
         {"", "Tarnwick", "Tarnwick Class", "Tarnwick Class A End class",
          "tarnwick CLASS a USES b C\nEnd class",
          "// Class X\nTarnwick Class A Uses b // c\n d\nfunction MAIN()\nend function\nEnd class",
          "Tarnwick Class A\npublic const b = 1\nfunction maine()\nend function\nEnd class",
          "Tarnwick Class A Uses b public const c = \"function main\"\nEnd class",
          "Tarnwick Class A Uses const main = 1\nEnd class",
          "Tarnwick Class A\nfunction main()\nfunction f()\nend function\nfunction main()\nend function\nEnd "
          "class"}) {
        Messages silent;
        const auto tree = parseClass(text, "a.cls", silent);
        const Outline outline = outlineOf(text);
        if (tree->complete) {
            EXPECT_EQ(outline.name, tree->name) << text;
            EXPECT_EQ(outline.isMain, hasMain(*tree)) << text;
        }
        std::vector<std::string> uses;
        for (const UsedClass& used : tree->uses) uses.push_back(used.name);
        EXPECT_EQ(outline.uses, uses) << text;
    }
}

TEST(Digests, EveryByteCounts) {
    const std::string text(100, 'a');
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string other = text;
        other[i] = 'b';
        EXPECT_NE(digestOf(other), digestOf(text)) << i;
        EXPECT_NE(digestOf(std::string_view(text).substr(0, i)), digestOf(text)) << i;
    }
    EXPECT_NE(digestOf(std::string(1, '\0')), digestOf(std::string()));
    EXPECT_NE(digestOf(Digest{1}, Digest{2}), digestOf(Digest{2}, Digest{1}));
}

}  // namespace
}  // namespace tarn::toolchain
