// SPDX-License-Identifier: Apache-2.0
//
// Changes of class texts that are taken back, on the examples and on generated classes: the text is what it was, with
// CR LF behind each line.
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/files.h"
#include "support/places.h"
#include "support/rounds.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

namespace tarn {
namespace {

#ifdef TARNWICK_TINY
constexpr int MaxLines = 80;
#else
constexpr int MaxLines = 8000;
#endif

// What a change by lines makes of a text that it leaves as it is.
std::string normal(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        out += STRRTRIMCRLF(text.substr(0, end)) + "\r\n";
        text.remove_prefix(end);
    }
    return out;
}

int lineCount(std::string_view text) {
    return STRLINES(text) + (!text.empty() && text.back() != '\n' ? 1 : 0);
}

// ---- a generated class ----

struct Place {
    std::string name;
    FunctionLines lines;
};

class MadeClass {
public:
    explicit MadeClass(unsigned seed) : random_(seed) { make(); }

    std::string text, name, uses;
    std::string oneUsesLine;  // the text, with the names on one line
    std::vector<Place> functions;
    bool hasUses = false;

private:
    int below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }
    bool chance(int percent) { return below(100) < percent; }

    void line(const std::string& content) {
        const std::string end = ends_ == 0 || (ends_ == 2 && chance(50)) ? "\r\n" : "\n";
        text += content + end;
        oneUsesLine += content + "\r\n";
        ++lines_;
    }

    std::string word() {
        static constexpr const char* Words[] = {
            "class",           "End class", "Uses X",   "function f()",
            "public",          "const c",   "callback", "\xC3\xA4\xFF\x80",
            "case a_event =>", ")",         "\"",       "'"};
        return Words[below(static_cast<int>(std::size(Words)))];
    }
    // A line that declares nothing.
    std::string filler() {
        switch (below(8)) {
        case 0: return "";
        case 1: return std::string(static_cast<std::size_t>(below(4)), ' ') + "// " + word() + " " + word();
        case 2: return "  s := \"" + STRREPLACE(word(), "\"", "\"\"") + " // class\"";
        case 3: return chance(5) ? "  x := " + std::string(20000, 'y') : "  x := 1";
        case 4: return "\tcall(" + std::string(static_cast<std::size_t>(below(3)), ' ') + "a, b)";
        case 5: return "  // \x80\xFE bytes \xC3\xA9";
        case 6: return "  case load_event =>";
        default: return "  end if";
        }
    }
    void fill(int most) {
        for (int n = below(most + 1); n > 0; --n) line(filler());
    }

    void head() {
        static constexpr const char* Heads[] = {"Tarnwick Class ", "TARNWICK\tclass ", "tarnwick  CLASS  "};
        if (chance(50)) line("// class Wrong uses Nothing End class");
        line(Heads[below(3)] + name + (chance(30) ? " // class Other" : ""));
        hasUses = chance(70);
        if (!hasUses) return;
        const int count = 1 + below(6);
        std::string clause = "uses";
        for (int n = 1; n <= count; ++n) {
            const std::string used = "Used" + STR(n);
            uses += (n == 1 ? "" : " ") + used;
            clause += " " + used;
            if (n == count || !chance(40)) continue;
            text += clause + (ends_ == 1 ? "\n" : "\r\n");  // the list goes on in the next line
            ++lines_;
            clause = "   ";
        }
        text += clause + (ends_ == 1 ? "\n" : "\r\n");
        ++lines_;
        oneUsesLine += "Uses " + uses + "\r\n";
    }

    std::string scope() {
        static constexpr const char* Scopes[] = {"", "public ", "PRIVATE\t", "  "};
        return Scopes[below(4)];
    }

    void declaration() {
        static constexpr const char* Heads[] = {"const other%=", "public const other% = 1",
                                                "type rec% : record", "private var v% : integer",
                                                "  Private type t% : integer"};
        line(STRREPLACE(Heads[below(5)], "%", STR(++others_)));
        if (chance(50)) line("   field : integer");
    }

    void header(const std::string& kind, const std::string& function) {
        const std::string start = scope() + kind + function;
        if (kind.size() < 10) return line(start + "(a : integer)");
        const std::string in(start.size() + 1, ' ');
        line(start + "(in  w : Dialog, // (window)");
        line(in + "    e : integer,");
        line(in + "    c : Object,");
        line(in + "out r : boolean)");
    }

    // Behind it stands an item or the end of the class.
    void function() {
        const std::string function = "Fun" + STR(static_cast<int>(functions.size()) + 1);
        const std::string kind = chance(30) ? "callback function " : "function ";
        Place place{function, {}};
        if (chance(40)) {
            place.lines.declStart = lines_ + 1;
            header(kind, chance(50) ? function : STRUPPER(function));
            place.lines.declEnd = lines_;
            if (chance(50)) declaration();
        }
        place.lines.bodyStart = lines_ + 1;
        header(kind, function);
        fill(chance(5) ? 100 : 8);
        place.lines.bodyEnd = lines_;
        functions.push_back(place);
    }

    void make() {
        ends_ = below(3);
        name = "Made" + STR(below(1000));
        const int wanted[] = {1, 5, 20, 60, 100, 400, 2000, MaxLines - 1, MaxLines, MaxLines + 1};
        const int target = wanted[below(chance(10) ? 10 : 6)];
        if (target == 1) {
            line("Tarnwick Class " + name);
            return;
        }
        head();
        while (lines_ < target - 20) chance(70) ? function() : declaration();
        if (lines_ < target) declaration();
        while (lines_ < target - 1) line("  // class " + word());
        line(chance(50) ? "End class" : "  END \t Class // End class");
        if (chance(20)) line("function Behind() // class");
        if (chance(20)) text.resize(text.size() - (text.ends_with("\r\n") ? 2 : 1));  // no last line end
    }

    std::mt19937 random_;
    int ends_ = 0;  // CR LF, LF, or some of each
    int lines_ = 0, others_ = 0;
};

// ---- what is taken back ----

const std::string Added = "public function Added_here(x : integer)\n  y := x\nend function";

// The text is then `before` in its normal form, but for an empty line above the end of the class where there was none.
void addAndDelete(const std::string& before) {
    std::string text = before;
    const std::string error = SYMADDFUNCTION(Added, 0, text);
    if (!error.empty()) {
        EXPECT_EQ(text, before);
        return;
    }
    EXPECT_NE(SYMFINDFUNCTION("added_HERE", 0, text).bodyStart, 0);
    if (lineCount(text) > MaxLines) return;  // it can be read, and not be changed any more
    EXPECT_TRUE(SYMDELETEFUNCTION("ADDED_here", 0, text));
    std::string wanted = normal(before);
    if (text == wanted) return;
    const auto end = std::mismatch(wanted.begin(), wanted.end(), text.begin(), text.end()).first;
    wanted.insert(static_cast<std::size_t>(end - wanted.begin()), "\r\n");
    EXPECT_TRUE(text == wanted);
    EXPECT_EQ(SYMADDFUNCTION(Added, 0, text), "");
    if (lineCount(text) > MaxLines) return;
    EXPECT_TRUE(SYMDELETEFUNCTION("Added_here", 0, text));
    EXPECT_TRUE(text == wanted);
}

void renameThereAndBack(const std::string& before, const std::string& name) {
    std::string text = before;
    const std::string longer = name + "_with_a_longer_name";
    ASSERT_EQ(SYMRENAMEFUNCTION(name, longer, 0, text), "") << name;
    EXPECT_EQ(SYMFINDFUNCTION(name, 0, text).bodyStart, 0);
    const FunctionLines was = SYMFINDFUNCTION(name, 0, before), is = SYMFINDFUNCTION(longer, 0, text);
    EXPECT_EQ(is.bodyStart, was.bodyStart);
    EXPECT_EQ(is.declEnd, was.declEnd);
    EXPECT_EQ(SYMRENAMEFUNCTION(longer, name, 0, text), "");
    EXPECT_TRUE(STRUPPER(text) == STRUPPER(normal(before))) << name;
}

class SymbolsSoak : public ::testing::Test {
protected:
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
};

void expectFound(const MadeClass& made) {
    EXPECT_EQ(SYMGETCLASSNAME(0, made.text, "Tarnwick"), made.name);
    EXPECT_TRUE(SYMISCLASS(0, made.text, "Tarnwick", "class"));
    if (!made.functions.empty()) {
        EXPECT_EQ(SYMGETUSES(0, made.text), made.uses);
    }
    for (const Place& place : made.functions) {
        const FunctionLines is = SYMFINDFUNCTION(place.name, 0, made.text);
        EXPECT_EQ(is.declStart, place.lines.declStart) << place.name;
        EXPECT_EQ(is.bodyStart, place.lines.bodyStart) << place.name;
        EXPECT_EQ(is.bodyEnd, place.lines.bodyEnd) << place.name;
    }
}

void usesThereAndBack(const MadeClass& made) {
    std::string text = made.text;
    ASSERT_EQ(SYMSETUSES("Somebody Else", 0, text), "");
    EXPECT_EQ(SYMGETUSES(0, text), "Somebody Else");
    if (lineCount(text) > MaxLines) return;
    EXPECT_EQ(SYMSETUSES(made.uses, 0, text), "");
    EXPECT_TRUE(text == normal(made.oneUsesLine));
}

void classNameThereAndBack(const MadeClass& made) {
    std::string text = made.text;
    if (lineCount(text) > MaxLines) return;
    EXPECT_EQ(SYMSETCLASSNAME("Another_name", 0, "Tarnwick", text), "");
    EXPECT_EQ(SYMGETCLASSNAME(0, text, "Tarnwick"), "Another_name");
    EXPECT_EQ(SYMSETCLASSNAME(made.name, 0, "Tarnwick", text), "");
    EXPECT_TRUE(text == made.text);
}

void indentTwice(const MadeClass& made) {
    std::string once = made.text;
    EXPECT_EQ(SYMINDENTFUNCHEADER("*", 0, once), "");
    std::string twice = once;
    EXPECT_EQ(SYMINDENTFUNCHEADER("*", 0, twice), "");
    EXPECT_TRUE(once == twice);
    EXPECT_EQ(lineCount(once), lineCount(made.text));
}

void refusesAll(const MadeClass& made) {
    std::string text = made.text;
    EXPECT_NE(SYMADDFUNCTION(Added, 0, text), "");
    EXPECT_NE(SYMSETUSES("X", 0, text), "");
    EXPECT_NE(SYMINDENTFUNCHEADER("*", 0, text), "");
    EXPECT_NE(SYMRENAMEFUNCTION("Fun1", "g", 0, text), "");
    EXPECT_FALSE(SYMDELETEFUNCTION("Fun1", 0, text));
    EXPECT_TRUE(text == made.text);
}

TEST_F(SymbolsSoak, WhatIsTakenBackLeavesAGeneratedClassAsItWas) {
    const int count = rounds(40);
    int large = 0;
    for (int seed = 1; seed <= count && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        const MadeClass made(static_cast<unsigned>(seed));
        expectFound(made);
        classNameThereAndBack(made);
        if (lineCount(made.text) > MaxLines) {
            ++large;
            refusesAll(made);
            continue;
        }
        addAndDelete(made.text);
        usesThereAndBack(made);
        indentTwice(made);
        const std::size_t most = std::min<std::size_t>(made.functions.size(), 5);
        for (std::size_t n = 0; n < most; ++n) renameThereAndBack(made.text, made.functions[n].name);
    }
    EXPECT_GT(large, 0);
}

TEST_F(SymbolsSoak, AFileChangesAsItsTextDoes) {
    os::SteeredFiles files;
    const os::Steered steered{files};
    const int count = rounds(10);
    for (int seed = 1000; seed < 1000 + count && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        const MadeClass made(static_cast<unsigned>(seed));
        std::string text = made.text, file = "/a/x.cls";
        files.put(file, text);
        for (int step = 0; step < 4; ++step) {
            const auto both = [&](auto change) { EXPECT_EQ(change(1, file), change(0, text)); };
            if (step == 0) both([](int mode, std::string& to) { return SYMADDFUNCTION(Added, mode, to); });
            if (step == 1) both([](int mode, std::string& to) { return SYMSETUSES("X", mode, to); });
            if (step == 2)
                both(
                    [](int mode, std::string& to) { return SYMRENAMEFUNCTION("Added_here", "g", mode, to); });
            if (step == 3)
                both([](int mode, std::string& to) { return SYMDELETEFUNCTION("g", mode, to) ? 1 : 0; });
            EXPECT_TRUE(files.contents(file) == text) << step;
        }
    }
}

// A text of pieces that mean something, in any order.
std::string soup(std::mt19937& random) {
    static const std::string pieces[] = {"class",
                                         "End",
                                         " class ",
                                         "Uses",
                                         "function",
                                         "public ",
                                         "callback ",
                                         "case",
                                         "x_event =>",
                                         "f",
                                         "G",
                                         "(",
                                         ")",
                                         "//",
                                         "\"",
                                         "'",
                                         "\n",
                                         "\r\n",
                                         "\r",
                                         std::string(1, '\0'),
                                         " ",
                                         "\t",
                                         "\xFF",
                                         "[",
                                         "1E+",
                                         "<",
                                         "const",
                                         "type",
                                         "private var",
                                         "\n\n",
                                         "\nfunction f(",
                                         "\nEnd class\n",
                                         "Class A\n"};
    std::string text;
    for (auto n = random() % 60; n > 0; --n) text += pieces[random() % std::size(pieces)];
    return text;
}

TEST_F(SymbolsSoak, AnyTextIsChangedOrLeftAsItIs) {
    std::mt19937 random(7);
    const int count = rounds(2000);
    for (int n = 0; n < count && !HasFailure(); ++n) {
        const std::string text = soup(random);
        SCOPED_TRACE(text);
        const auto change = [&](auto operation) {
            std::string changed = text;
            const std::string error = operation(changed);
            EXPECT_TRUE(error.empty() || changed == text);
            return error.empty() ? changed : std::string();
        };
        change([](std::string& to) { return SYMSETUSES("X", 0, to); });
        change([](std::string& to) { return SYMSETUSES("", 0, to); });
        change([](std::string& to) { return SYMSETCLASSNAME("B", 0, "", to); });
        change([](std::string& to) { return SYMINDENTFUNCHEADER("*", 0, to); });
        const std::string added = change([](std::string& to) { return SYMADDFUNCTION(Added, 0, to); });
        EXPECT_TRUE(added.empty() || added.find(STRREPLACE(Added, "\n", "\r\n")) != std::string::npos);
        const FunctionLines was = SYMFINDFUNCTION("f", 0, text);
        const std::string renamed =
            change([](std::string& to) { return SYMRENAMEFUNCTION("f", "new_name", 0, to); });
        EXPECT_EQ(SYMFINDFUNCTION("new_name", 0, renamed).bodyStart, renamed.empty() ? 0 : was.bodyStart);
        std::string cut = text;
        EXPECT_EQ(SYMDELETEFUNCTION("f", 0, cut), was.bodyStart != 0);
        const int gone = was.bodyStart == 0 ? 0
                                            : was.bodyEnd - was.bodyStart + 1 +
                                                  (was.declStart == 0 ? 0 : was.declEnd - was.declStart + 1);
        EXPECT_EQ(lineCount(text) - lineCount(cut), gone);
    }
}

TEST_F(SymbolsSoak, TheExamplesAreAsTheyWereWhenAChangeIsTakenBack) {
    int classes = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SOURCE_DIR "/examples")) {
        if (entry.path().extension() != ".cls") continue;
        SCOPED_TRACE(entry.path().string());
        std::string text;
        ASSERT_EQ(os::readFile(entry.path().string(), text), os::FileError::None);
        ++classes;
        addAndDelete(text);
        const std::string scan = SYMSCANSOURCE(text, 0);
        EXPECT_GT(STRLINES(scan), 0);
        for (int n = 1; n <= STRLINES(scan); ++n) renameThereAndBack(text, STRLINE(scan, n));
        std::string changed = text;
        EXPECT_EQ(SYMSETUSES("A B", 0, changed), "");
        EXPECT_EQ(SYMSETUSES(SYMGETUSES(0, text), 0, changed), "");
        EXPECT_EQ(changed, normal(text));
    }
    EXPECT_GE(classes, 4);
}

}  // namespace
}  // namespace tarn
