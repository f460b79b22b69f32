// SPDX-License-Identifier: Apache-2.0
//
// Functions in class texts: found, added, deleted, renamed and laid out.
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "support/errorcell.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

#include <functional>

namespace tarn {
namespace {

#ifdef TARNWICK_TINY
constexpr int MaxLines = 80;
const char* const TooMany = "Class has too many lines, maximum is 80.";
#else
constexpr int MaxLines = 8000;
const char* const TooMany = "Class has too many lines, maximum is 8000.";
#endif

class SymbolsFunctions : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    os::SteeredFiles files;
    os::Steered steered{files};
};

std::string crlf(std::string_view text) {
    return STRNL2CRNL(text);
}

// ---- find ----

const char* const Found = "Tarnwick Class Demo\n"               // 1
                          "public const most = 3\n"             // 2
                          "private type Trow : record\n"        // 3
                          "  x : integer\n"                     // 4
                          "end record\n"                        // 5
                          "function Early(a : integer)\n"       // 6
                          "callback function DLG(in w : D,\n"   // 7
                          "  out r : boolean)\n"                // 8
                          "  case load_event =>\n"              // 9
                          "end function\n"                      // 10
                          "public function EARLY(a : integer)"  // 11
                          " return integer\n"                   //
                          "end function\n"                      // 12
                          "\n"                                  // 13
                          "private var total : integer\n"       // 14
                          "  other : integer\n"                 // 15
                          "Function early()\n"                  // 16
                          "// function Commented()\n"           // 17
                          "  \"function Quoted()\"\n"           // 18
                          "function Ahead()\n"                  // 19
                          "end class\n"                         // 20
                          "function Behind()\n";                // 21

struct FindCase {
    const char* name;
    FunctionLines lines;
    const char* kind;  // null: not found
};
const FindCase finds[] = {
    {"Early", {6, 6, 11, 13}, "public"},
    {"eARLY", {6, 6, 11, 13}, "public"},
    {"DLG", {0, 0, 7, 10}, "callback"},
    {"most", {0, 0, 2, 2}, "public"},
    {"Trow", {0, 0, 3, 5}, "private"},
    {"Ahead", {0, 0, 19, 19}, ""},  // only a declaration: it counts as the body
    {"DLG.load_event", {}, nullptr},
    {"DLG()", {}, nullptr},
    {"earl", {}, nullptr},
    {"arly", {}, nullptr},
    {"Commented", {}, nullptr},
    {"Quoted", {}, nullptr},
    {"total", {}, nullptr},
    {"Behind", {}, nullptr},
    {"Demo", {}, nullptr},
    {" DLG", {}, nullptr},
    {"DLG() 7 10\n   Early", {}, nullptr},
    {"", {}, nullptr},
};

void expectLines(const FunctionLines& is, const FunctionLines& wanted, const std::string& what) {
    EXPECT_EQ(is.declStart, wanted.declStart) << what;
    EXPECT_EQ(is.declEnd, wanted.declEnd) << what;
    EXPECT_EQ(is.bodyStart, wanted.bodyStart) << what;
    EXPECT_EQ(is.bodyEnd, wanted.bodyEnd) << what;
}

TEST_F(SymbolsFunctions, AreFoundByTheirLines) {
    files.put("/a/x.cls", crlf(Found));
    for (const FindCase& c : finds) {
        expectLines(SYMFINDFUNCTION(c.name, 0, Found), c.lines, c.name);
        expectLines(SYMFINDFUNCTION(c.name, 1, "/a/x.cls"), c.lines, c.name);
    }
    expectLines(SYMFINDFUNCTION("DLG", 0, ""), {}, "empty");
    expectLines(SYMFINDFUNCTION("DLG", 1, "/a/none.cls"), {}, "missing");
    expectLines(SYMFINDFUNCTION("f", 0, "function f"), {0, 0, 1, 1}, "no line end");
}

TEST_F(SymbolsFunctions, TellWhatStandsInFrontOfThem) {
    files.put("/a/x.cls", crlf(Found));
    for (const FindCase& c : finds) {
        std::string kind = "?", kindInFile = "?";
        EXPECT_EQ(SYMFINDFUNCTION(c.name, 0, Found, kind), c.kind != nullptr) << c.name;
        EXPECT_EQ(SYMFINDFUNCTION(c.name, 1, "/a/x.cls", kindInFile), c.kind != nullptr) << c.name;
        EXPECT_EQ(kind, c.kind == nullptr ? "" : c.kind) << c.name;
        EXPECT_EQ(kindInFile, kind) << c.name;
    }
    std::string kind;
    EXPECT_TRUE(SYMFINDFUNCTION("f", 0, "function f\n\tPublic  callback function f()\n", kind));
    EXPECT_EQ(kind, "Public callback");
}

// ---- add ----

struct AddCase {
    const char *what, *added, *before, *after;
};
const AddCase adds[] = {
    {"an empty line above and below", "function f()\nend function", "Class A\nconst c = 1\nEnd class\n",
     "Class A\nconst c = 1\n\nfunction f()\nend function\n\nEnd class\n"},
    {"no second empty line above", "function f()\nend function\n", "Class A\n\nEnd class\n",
     "Class A\n\nfunction f()\nend function\n\nEnd class\n"},
    {"blanks are an empty line", "function f()", "Class A\n \t\nEnd class\n",
     "Class A\n \t\nfunction f()\n\nEnd class\n"},
    {"right below the class", "f", "Class A\nEnd class", "Class A\n\nf\n\nEnd class\n"},
    {"line ends behind the text go", "f\r\n\r\n\n\n", "Class A\n\nEnd class", "Class A\n\nf\n\nEnd class\n"},
    {"those inside stay", "\nf\r\n\ng", "Class A\n\nEnd class", "Class A\n\n\nf\n\ng\n\nEnd class\n"},
    {"nothing but line ends", "\r\n", "Class A\nEnd class", "Class A\n\nEnd class\n"},
    {"the word in comments and texts", "f",
     "// this class is\nTarnwick\nClass A // a class\n// end class\n\"class\"\nEND  CLASS // class\n",
     "// this class is\nTarnwick\nClass A // a class\n// end class\n\"class\"\n\nf\n\nEND  CLASS // class\n"},
    {"what stands behind the end stays", "f", "Class A\n\n  end class\n\nrest",
     "Class A\n\nf\n\n  end class\n\nrest\n"},
    {"bytes from 128 up", "\xC3\xA9", "Class A\n\xFF\nEnd class", "Class A\n\xFF\n\n\xC3\xA9\n\nEnd class\n"},
};

TEST_F(SymbolsFunctions, AreAddedInFrontOfTheEnd) {
    for (const AddCase& c : adds) {
        std::string text = c.before, file = "/a/x.cls";
        EXPECT_EQ(SYMADDFUNCTION(c.added, 0, text), "") << c.what;
        EXPECT_EQ(text, crlf(c.after)) << c.what;
        files.put(file, c.before);
        EXPECT_EQ(SYMADDFUNCTION(c.added, 1, file), "") << c.what;
        EXPECT_EQ(file, "/a/x.cls");
        EXPECT_EQ(files.contents(file), crlf(c.after)) << c.what;
    }
}

TEST_F(SymbolsFunctions, AreNotAddedWithoutAClass) {
    const std::string none = "The text being modified does not contain a class.";
    const std::string syntax = "Class syntax is wrong, cannot find 'Class' or 'End class'.";
    struct Case {
        const char *added, *before;
        const std::string& error;
    };
    const Case cases[] = {
        {"", "Class A\nEnd class\n", none},
        {"f", "", none},
        {"f", "\n", syntax},
        {"f", "hello\n", syntax},
        {"f", "Class A\n", syntax},
        {"f", "Class A End class\n", syntax},
        {"f", "End class\n", syntax},
        {"f", "Class A\nend function end class\n", syntax},
        {"f", "Class A\nEnd\nclass\n", syntax},
        {"f", "Class A\n// End class\n", syntax},
        {"f", "// Class A\nEnd class\n", syntax},
    };
    for (const Case& c : cases) {
        std::string text = c.before;
        EXPECT_EQ(SYMADDFUNCTION(c.added, 0, text), c.error) << c.before;
        EXPECT_EQ(text, c.before);
    }
    std::string file = "/a/none.cls";
    EXPECT_EQ(SYMADDFUNCTION("f", 1, file), none);
    EXPECT_FALSE(files.has(file));
}

// ---- delete ----

struct DeleteCase {
    const char *what, *name, *before;
    const char* after;  // null: there is no such function
};
const DeleteCase deletes[] = {
    {"up to the next item", "f", "Class A\nfunction f()\nend function\n\n// of g\nfunction g()\nend class\n",
     "Class A\nfunction g()\nend class\n"},
    {"up to the end of the class", "F", "Class A\nfunction f()\nend function\n\nend class\n",
     "Class A\nend class\n"},
    {"declaration and body", "f",
     "Class A\nfunction f()\n\nconst c = 1\nfunction f()\nend function\ntype t : integer\nend class\n",
     "Class A\nconst c = 1\ntype t : integer\nend class\n"},
    {"a third one stays", "f", "function f\nfunction f\nfunction f\n", "function f\n"},
    {"side by side", "f", "Class A\nfunction f\nfunction f\nend class\n", "Class A\nend class\n"},
    {"variables of the class stay", "f",
     "Class A\nfunction f\n\nprivate var v : integer\n  w : integer\nend class\n",
     "Class A\nprivate var v : integer\n  w : integer\nend class\n"},
    {"a constant", "c", "Class A\nconst c = 1\nend class\n", "Class A\nend class\n"},
    {"to the end of the text", "f", "x\nfunction f", "x\n"},
    {"all there is", "f", "function f", ""},
    {"none", "g", "Class A\nfunction f\nend class\n", nullptr},
    {"no name", "", "Class A\nfunction f\nend class\n", nullptr},
    {"nothing", "f", "", nullptr},
};

TEST_F(SymbolsFunctions, AreDeletedWithTheirDeclaration) {
    for (const DeleteCase& c : deletes) {
        std::string text = c.before, file = "/a/x.cls";
        EXPECT_EQ(SYMDELETEFUNCTION(c.name, 0, text), c.after != nullptr) << c.what;
        EXPECT_EQ(text, c.after == nullptr ? c.before : c.after) << c.what;
        files.put(file, c.before);
        files.clearLog();
        EXPECT_EQ(SYMDELETEFUNCTION(c.name, 1, file), c.after != nullptr) << c.what;
        EXPECT_EQ(files.contents(file), c.after == nullptr ? c.before : crlf(c.after)) << c.what;
        EXPECT_EQ(files.log().empty(), c.after == nullptr) << c.what;
    }
}

TEST_F(SymbolsFunctions, DeletingFromATextKeepsTheOtherLineEnds) {
    std::string text = "Class A\r\nconst c = 1\nfunction f\r\n\nconst d = 2\r\r\nend class";
    EXPECT_TRUE(SYMDELETEFUNCTION("f", 0, text));
    EXPECT_EQ(text, "Class A\r\nconst c = 1\nconst d = 2\r\r\nend class");
}

// ---- rename ----

struct RenameCase {
    const char *what, *from, *to, *before, *after;
};
const RenameCase renames[] = {
    {"declaration and body", "f", "longer",
     "function F(a : integer)\nconst c = f\npublic function f(a : integer)\n f()\n",
     "function longer(a : integer)\nconst c = f\npublic function longer(a : integer)\n f()\n"},
    {"a longer name moves the arguments", "dlg", "dialog",
     "callback function dlg(in w : D,\n                      x : integer,\n  out r : boolean)\n  r := true\n",
     "callback function dialog(in w : D,\n                         x : integer,\n     out r : boolean)\n  r "
     ":= true\n"},
    {"a shorter one moves them back", "dialog", "d",
     "callback function dialog(in w : D,\n                         x : integer,\n     out r : boolean)\n",
     "callback function d(in w : D,\n                    x : integer,\nout r : boolean)\n"},
    {"with too little indent they stay", "dialog", "d",
     "callback function dialog(in w : D,\n    x : integer,\n\n   \n \ty : integer,\n     out r : boolean)\n",
     "callback function d(in w : D,\n    x : integer,\n\n   \n \ty : integer,\nout r : boolean)\n"},
    {"as long a name moves nothing", "abc", "xyz", "function abc(\n  x)\n", "function xyz(\n  x)\n"},
    {"the header ends with its first bracket", "f", "gg", "function f(x,\n y) // (\n z)\n",
     "function gg(x,\n  y) // (\n z)\n"},
    {"brackets in comments and texts do not count", "f", "gg",
     "function f(x, // (one)\n y = \")\",\n z)\n w\n", "function gg(x, // (one)\n  y = \")\",\n  z)\n w\n"},
    {"nor those of the next item", "f", "gg", "function f\n x\nfunction h()\n",
     "function gg\n x\nfunction h()\n"},
    {"a name that is part of a keyword", "unction", "f", "public function unction(function unction)\n",
     "public function f(function unction)\n"},
    {"the case of the source does not count", "TEST", "f", "  Public\tCallback function  Test()\n",
     "  Public\tCallback function  f()\n"},
    {"only a declaration", "f", "g", "Class A\nfunction f()\nend class",
     "Class A\nfunction g()\nend class\n"},
    {"a constant and what stands below it", "c", "longer", "const c = 1\n // (x)\n )\n",
     "const longer = 1\n // (x)\n )\n"},
};

TEST_F(SymbolsFunctions, AreRenamedInTheirHeads) {
    for (const RenameCase& c : renames) {
        std::string text = c.before, file = "/a/x.cls";
        EXPECT_EQ(SYMRENAMEFUNCTION(c.from, c.to, 0, text), "") << c.what;
        EXPECT_EQ(text, crlf(c.after)) << c.what;
        files.put(file, crlf(c.before));
        EXPECT_EQ(SYMRENAMEFUNCTION(c.from, c.to, 1, file), "") << c.what;
        EXPECT_EQ(files.contents(file), crlf(c.after)) << c.what;
    }
}

TEST_F(SymbolsFunctions, AreNotRenamedWhereNamesAreMissingOrTaken) {
    const std::string missing = "The function names are missing, or there are no functions to rename.";
    struct Case {
        const char *from, *to, *text;
        std::string error;
    };
    const Case cases[] = {
        {"", "g", "function f\n", missing},
        {"f", "", "function f\n", missing},
        {"f", "g", "", missing},
        {"f", "g", "hello", "Cannot rename, the text being modified does not contain 'f'"},
        {"h", "g", "function f\nfunction g\n", "Cannot rename, the text being modified does not contain 'h'"},
        {"f", "G", "function f\nfunction g\n", "Cannot rename, the text being modified already contains 'G'"},
        {"f", "g", "function f\nconst g = 1\n",
         "Cannot rename, the text being modified already contains 'g'"},
        {"f", "F", "function f\n", "Cannot rename, the text being modified already contains 'F'"},
    };
    for (const Case& c : cases) {
        std::string text = c.text;
        EXPECT_EQ(SYMRENAMEFUNCTION(c.from, c.to, 0, text), c.error) << c.text;
        EXPECT_EQ(text, c.text);
    }
}

// ---- indent ----

std::string blanks(int count) {
    return STRMAKE(count, ' ');
}

TEST_F(SymbolsFunctions, WindowFunctionsAreLinedUpUnderTheirFirstArgument) {
    struct Case {
        const char *what, *name, *head;
        int indent;  // of the last line; the others have four more
    };
    const Case cases[] = {
        {"public", "dlg", "public callback function dlg(in w : D,", 29},
        {"private", "DLG", "  PRIVATE callback function dlg(in w : D,", 30},
        {"neither", "dlg", "callback function dlg(in w : D,", 22},
        {"a plain function too", "*", "function dlg(in w : D,", 22},
        {"public, and plain", "*", "public function dlg(in w : D,", 29},
    };
    for (const Case& c : cases) {
        std::string text = std::string("Class A\n") + c.head + "\nx : integer,\n   \ty : integer,\n" +
                           blanks(60) + "out r : boolean)\n r := true\nend class\n";
        const std::string wanted = std::string("Class A\n") + c.head + "\n" + blanks(c.indent + 4) +
                                   "x : integer,\n" + blanks(c.indent + 4) + "y : integer,\n" +
                                   blanks(c.indent) + "out r : boolean)\n r := true\nend class\n";
        EXPECT_EQ(SYMINDENTFUNCHEADER(c.name, 0, text), "") << c.what;
        EXPECT_EQ(text, crlf(wanted)) << c.what;
        const std::string again = STRREPLACE(text, "\r\n", "\n");
        std::string same = again;
        EXPECT_EQ(SYMINDENTFUNCHEADER(c.name, 0, same), "") << c.what;
        EXPECT_EQ(same, again) << c.what;  // nothing to change, and so nothing is written
    }
}

TEST_F(SymbolsFunctions, AllOrThoseOfANameAreIndentedWithinTheirLines) {
    const std::string text = "Class A\nfunction f(\nfunction g(\nx\nfunction g(\ny\nz\nw\nv\nend class\n";
    const std::string in = blanks(24), last = blanks(20);
    struct Case {
        const char *name, *wanted;
    };
    const std::string g = "Class A\nfunction f(\nfunction g(\n" + in + "x\nfunction g(\n" + in + "y\n" + in +
                          "z\n" + last + "w\nv\nend class\n";
    for (const char* name : {"G", "*"}) {
        std::string result = text;
        EXPECT_EQ(SYMINDENTFUNCHEADER(name, 0, result), "");
        EXPECT_EQ(result, crlf(g)) << name;
    }
    for (const char* name : {"f", "none", "A"}) {
        std::string result = text;
        EXPECT_EQ(SYMINDENTFUNCHEADER(name, 0, result), "");
        EXPECT_EQ(result, text) << name;
    }
    const std::string error = "The function name is missing, or the source text does not contain a class.";
    std::string result = text, empty;
    EXPECT_EQ(SYMINDENTFUNCHEADER("", 0, result), error);
    EXPECT_EQ(result, text);
    EXPECT_EQ(SYMINDENTFUNCHEADER("*", 0, empty), error);
    files.put("/a/x.cls", text);
    std::string file = "/a/x.cls";
    EXPECT_EQ(SYMINDENTFUNCHEADER("*", 1, file), "");
    EXPECT_EQ(files.contents(file), crlf(g));
}

// ---- what holds for all changes ----

struct Change {
    const char* name;
    // Gives the error; one without a text is "failed".
    std::string (*make)(int mode, std::string& source);
};
const Change changes[] = {
    {"uses", [](int mode, std::string& source) { return SYMSETUSES("X Y", mode, source); }},
    {"add", [](int mode, std::string& source) { return SYMADDFUNCTION("function n()", mode, source); }},
    {"rename", [](int mode, std::string& source) { return SYMRENAMEFUNCTION("f", "longer", mode, source); }},
    {"indent", [](int mode, std::string& source) { return SYMINDENTFUNCHEADER("*", mode, source); }},
    {"delete",
     [](int mode, std::string& source) -> std::string {
         return SYMDELETEFUNCTION("f", mode, source) ? "" : "failed";
     }},
    {"class name", [](int mode, std::string& source) { return SYMSETCLASSNAME("B", mode, "", source); }},
};
const std::string Twice = "Class A\nfunction f(x)\nconst c = 1\nfunction f(x,\n y)\nend class\n";

TEST_F(SymbolsFunctions, AreChangedInATextAsInAFile) {
    for (const Change& change : changes) {
        std::string text = crlf(Twice), file = "/a/x.cls";
        files.put(file, text);
        EXPECT_EQ(change.make(0, text), "") << change.name;
        EXPECT_EQ(change.make(1, file), "") << change.name;
        EXPECT_NE(text, crlf(Twice)) << change.name;
        EXPECT_EQ(files.contents(file), text) << change.name;
    }
}

TEST_F(SymbolsFunctions, StayUntouchedInMoreThan8000Lines) {
    std::string most = Twice.substr(0, Twice.size() - std::string("end class\n").size());
    while (STRLINES(most) < MaxLines - 1) most += "\n";
    most += "end class\n";
    const std::string more = "\n" + most;
    for (const Change& change : changes) {
        std::string text = most, file = "/a/x.cls";
        EXPECT_EQ(change.make(0, text), "") << change.name;
        EXPECT_NE(text, most) << change.name;
        text = more;
        const std::string error = std::string_view(change.name) == "delete" ? "failed" : TooMany;
        EXPECT_EQ(change.make(0, text), error) << change.name;
        EXPECT_TRUE(text == more) << change.name;
        files.put(file, more);
        files.clearLog();
        EXPECT_EQ(change.make(1, file), error) << change.name;
        EXPECT_TRUE(files.contents(file) == more) << change.name;
        EXPECT_TRUE(files.log().empty()) << change.name;
    }
    std::string small = "Class A\nend class\n";
    EXPECT_EQ(SYMADDFUNCTION(more, 0, small), TooMany);
    EXPECT_EQ(small, "Class A\nend class\n");
    EXPECT_EQ(SYMFINDFUNCTION("f", 0, more).bodyStart, 5);  // reading has no limit
}

TEST_F(SymbolsFunctions, AFailureAtAnyCallLeavesTheFileWholeAndIsTold) {
    for (const Change& change : changes) {
        for (int call = 1;; ++call) {
            std::string file = "/a/x.cls";
            files.put(file, Twice);
            files.clearLog();
            files.failAt(call, os::FileError::DiskFull);
            const std::string error = change.make(1, file);
            const bool reached = files.calls() >= call;
            files.stopFailing();
            const bool byCell = std::string_view(change.name) == "delete" && !error.empty();
            EXPECT_EQ(takeError(), byCell ? 654 : 0) << change.name << call;
            if (!reached) {
                EXPECT_EQ(error, "") << change.name;
                break;
            }
            const std::string now = files.contents(file);
            std::string changed = Twice;
            EXPECT_EQ(change.make(0, changed), "");
            EXPECT_TRUE(now == Twice || crlf(now) == crlf(changed)) << change.name << call << "\n" << now;
            EXPECT_TRUE(now != Twice || !error.empty()) << change.name << call;
            EXPECT_EQ(files.allFiles().size(), 1U) << change.name << call;
        }
    }
}

TEST_F(SymbolsFunctions, AFileThatMayNotBeWrittenStays) {
    for (const Change& change : changes) {
        std::string file = "/a/x.cls";
        files.put(file, Twice, 0444);
        EXPECT_NE(change.make(1, file), "") << change.name;
        EXPECT_EQ(files.contents(file), Twice);
        ClearError();
    }
}

TEST_F(SymbolsFunctions, ZeroBytesAndLoneReturnsStay) {
    std::string text("Class A\r\nfunction f()\0 \r x\nend class", 36);
    EXPECT_EQ(SYMRENAMEFUNCTION("f", "g", 0, text), "");
    EXPECT_EQ(text, std::string("Class A\r\nfunction g()\0 \r x\r\nend class\r\n", 39));
}

}  // namespace
}  // namespace tarn
