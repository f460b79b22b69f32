// SPDX-License-Identifier: Apache-2.0
//
// What newcomers bring from other languages: each habit gives one message, on its line, that names what is written
// here; and what only looks like such a habit stays free.
#include "unit/toolchain/checked_fixture.h"

#include <algorithm>
#include <string>
#include <vector>

namespace tarn::toolchain {
namespace {

std::string inClass(const std::string& declarations) {
    return "Tarnwick Class Main\n" + declarations + "\nEnd class\n";
}

class Teaching : public CheckedClass {
protected:
    std::string check(const std::string& source) {
        std::vector<Message> list = messagesOf(source);
        std::stable_sort(list.begin(), list.end(),
                         [](const Message& a, const Message& b) { return a.line < b.line; });
        return placesOf(list);
    }
};

struct Habit {
    const char* name;
    std::string source;
    std::string messages;  // "line number" of each
    std::string right;     // stands in the text
};

// clang-format off
const Habit Habits[] = {
    {"'text'", inMain("s := 'text'"), "6 1006", "double quotes around a text"},
    {"'it'", inMain("PRINT('it')"), "6 1006", "double quotes around a text"},
    {"!=", inMain("b := i != j"), "6 1006", "'<>'"},
    {"==", inMain("b := i == j"), "6 1006", "'='"},
    {"if ==", inMain("if i == j then\nend if"), "6 1006", "'='"},
    {"&&", inMain("b := b && b"), "6 1006", "'and'"},
    {"||", inMain("b := b || b"), "6 1006", "'or'"},
    {"!", inMain("b := !b"), "6 1006", "'not'"},
    {";", inMain("i := 1;"), "6 1006", "nothing: a line or a blank is enough"},
    {"; twice", inMain("i := 1;\nj := 2;"), "6 1006", "nothing: a line or a blank is enough"},
    {"%", inMain("i := j % 2"), "6 1006", "'mod'"},
    {"++", inMain("i++"), "6 1006", "'i := i + 1'"},
    {"i++;", inMain("i++;"), "6 1006, 6 1006", "nothing: a line or a blank is enough"},
    {"++i", inMain("++i"), "6 1006", "'i := i + 1'"},
    {"--", inMain("i--"), "6 1006", "'i := i - 1'"},
    {"+=", inMain("i += 2"), "6 1006", "'i := i + ...'"},
    {"-=", inMain("i -= 2"), "6 1006", "'i := i - ...'"},
    {"*=", inMain("i *= 2"), "6 1006", "'i := i * ...'"},
    {"/=", inMain("i /= 2"), "6 1006", "'i := i / ...'"},
    {"s += x", inMain("s += \"x\""), "6 1006", "'s := s + ...'"},
    {"break", inMain("loop\nbreak\nend loop"), "7 1006", "'exit'"},
    {"break;", inMain("loop\nbreak;\nend loop"), "7 1006, 7 1006", "nothing: a line or a blank is enough"},
    {"break oneline", inMain("loop break end loop"), "6 1006", "'exit'"},
    {"continue", inMain("loop\ncontinue\nend loop"), "7 1006", "'iterate'"},
    {"if b then break", inMain("loop\nif b then break end if\nend loop"), "7 1006", "'exit'"},
    {"else if", inMain("if b then\ni := 1\nelse if i = 2 then\ni := 3\nend if"), "8 1110", "the 'if' of line 6 is not closed: behind an 'else' of the same 'if' write 'elseif'"},
    {"else if chain", inMain("if b then\ni := 1\nelse if i = 2 then\ni := 3\nelse if i = 4 then\ni := 5\nelse\ni := 6\nend if"), "10 1110", "the 'if' of line 8 is not closed: behind an 'else' of the same 'if' write 'elseif'"},
    {"elif", inMain("if b then\ni := 1\nelif i = 2 then\ni := 3\nend if"), "8 1006", "'elseif'"},
    {"elif:", inMain("if b then\ni := 1\nelif i = 2:\ni := 3\nend if"), "8 1006", "'elseif'"},
    {"elsif", inMain("if b then\ni := 1\nelsif i = 2 then\ni := 3\nend if"), "8 1006", "'elseif'"},
    {"braces if", inMain("if (b) {\ni := 1\n}"), "6 1006", "'then', and 'end if' behind the block"},
    {"braces if 2", inMain("if (b) {\ni := 1\n} else {\ni := 2\n}"), "6 1006", "'then', and 'end if' behind the block"},
    {"braces if next line", inMain("if (b)\n{\ni := 1\n}"), "7 1006", "'then', and 'end if' behind the block"},
    {"while braces", inMain("while (b) {\ni := 1\n}"), "6 1006", "'loop', and 'end loop' behind the block"},
    {"function braces", inClass("function f() {\nPRINT(\"x\")\n}"), "2 1006", "nothing: the end is 'end function'"},
    {"for c", inMain("for (int i = 0; i < 10; i++) {\nPRINT(\"x\")\n}"), "6 1006", "'for i from 1 to 10 loop'"},
    {"return x without type", inClass("function f()\nreturn 1\nend function"), "3 1113", "the function 'f' gives no value: write 'return' and a type behind its parentheses"},
    {"return x without type arg", inClass("function f(x : integer)\nreturn x\nend function"), "3 1113", "the function 'f' gives no value: write 'return' and a type behind its parentheses"},
    {"return x+1 without type arg", inClass("function f(x : integer)\nreturn x + 1\nend function"), "3 1113", "the function 'f' gives no value: write 'return' and a type behind its parentheses"},
    {"return (x)", inClass("function f(x : integer)\nreturn (x)\nend function"), "3 1113", "the function 'f' gives no value: write 'return' and a type behind its parentheses"},
    {"function f() : integer", inClass("function f() : integer\nreturn 1\nend function"), "2 1101", "'return'"},
    {"function f() -> integer", inClass("function f() -> integer\nreturn 1\nend function"), "2 1101", "'return'"},
    {"function f() as integer", inClass("function f() as integer\nreturn 1\nend function"), "2 1101", "'return'"},
    {"int f()", inClass("int f()\nreturn 1\nend function"), "2 1006, 3 1113", "'function'"},
    {"if (x)", inMain("if (b)\ni := 1\nend if"), "6 1101", "'then'"},
    {"if x", inMain("if b\ni := 1\nend if"), "6 1101", "'then'"},
    {"if x:", inMain("if b:\ni := 1\nend if"), "6 1101", "'then'"},
    {"while no loop", inMain("while b\ni := 1\nend loop"), "6 1101", "'loop'"},
    {"for no loop", inMain("for i from 1 to 10\nj := 1\nend loop"), "6 1101", "'loop'"},
    {"while:", inMain("while b:\ni := 1\nend loop"), "6 1101", "'loop'"},
    {"end alone if", inMain("if b then\ni := 1\nend\nj := 1"), "8 1109", "'end if'"},
    {"end alone loop", inMain("loop\ni := 1\nend\nj := 1"), "8 1109", "'end loop'"},
    {"end alone function", inClass("function f()\nPRINT(\"x\")\nend\nfunction g()\nend function"), "4 1109", "'end function'"},
    {"end alone last function", inClass("function f()\nPRINT(\"x\")\nend"), "4 1109", "'end function'"},
    {"end alone nested", inMain("loop\nif b then\ni := 1\nend\nend loop"), "9 1109", "'end if'"},
    {"end while", inMain("while b loop\ni := 1\nend while"), "8 1109", "'end loop'"},
    {"end for", inMain("for i from 1 to 2 loop\nj := 1\nend for"), "8 1109", "'end loop'"},
    {"end while do", inMain("while b do\ni := 1\nend while"), "6 1101, 8 1109", "'loop'"},
    {"endif", inMain("if b then\ni := 1\nendif"), "8 1006", "'end if'"},
    {"endwhile", inMain("while b loop\ni := 1\nendwhile"), "8 1006", "'end loop'"},
    {"wend", inMain("while b loop\ni := 1\nwend"), "8 1006", "'end loop'"},
    {"next", inMain("for i from 1 to 3 loop\nj := i\nnext"), "8 1006", "'end loop'"},
    {"next i", inMain("for i = 1 to 3\nj := i\nnext i"), "6 1101, 8 1006", "'from'"},
    {"for :=", inMain("for i := 1 to 10 loop\nj := i\nend loop"), "6 1101", "'from'"},
    {"for := do", inMain("for i := 1 to 10 do\nj := i\nend loop"), "6 1101", "'from'"},
    {"for = ", inMain("for i = 1 to 10 loop\nj := i\nend loop"), "6 1101", "'from'"},
    {"for in range", inMain("for i in range(10):\nj := i\nend loop"), "6 1101", "'from', or 'each' behind 'for'"},
    {"for in", inMain("for i in s loop\nj := i\nend loop"), "6 1101", "'from', or 'each' behind 'for'"},
    {"foreach", inMain("foreach i in s loop\nj := i\nend loop"), "6 1006", "'for each'"},
    {"step", inMain("for i from 1 to 10 step 2 loop\nj := i\nend loop"), "6 1101", "'by'"},
    {"while do", inMain("while b do\ni := 1\nend loop"), "6 1101", "'loop'"},
    {"while do end", inMain("while b do\ni := 1\nend"), "6 1101, 8 1109", "'loop'"},
    {"do while", inMain("do\ni := 1\nwhile b"), "6 1006", "'loop', 'exit when' and 'end loop'"},
    {"repeat until", inMain("repeat\ni := 1\nuntil b"), "6 1006", "'loop', 'exit when' and 'end loop'"},
    {"do ... loop while", inMain("do\ni := i + 1\nloop while b"), "6 1006", "'loop', 'exit when' and 'end loop'"},
    {"f(a,b:integer)", inClass("function f(a, b : integer)\nend function"), "2 1101", "':' and a type, for each parameter of its own,"},
    {"f(a;b)", inClass("function f(a : integer; b : string)\nend function"), "2 1101", "','"},
    {"f(int a)", inClass("function f(int a)\nend function"), "2 1006", "'a : integer'"},
    {"f(integer a)", inClass("function f(integer a)\nend function"), "2 1006", "'a : integer'"},
    {"f(a)", inClass("function f(a)\nend function"), "2 1101", "':' and a type"},
    {"f(a,b)", inClass("function f(a, b)\nend function"), "2 1101", "':' and a type, for each parameter of its own,"},
    {"f", inClass("function f\nend function"), "2 1101", "'('"},
    {"f(var a:)", inClass("function f(var a : integer)\nend function"), "2 1101", "'inout'"},
    {"f(a as integer)", inClass("function f(a as integer)\nend function"), "2 1101", "':'"},
    {"f(const a)", inClass("function f(const a : integer)\nend function"), "2 1101", "'in'"},
    {"var x = 5", inClass("function f()\nvar x = 5\nx := 1\nend function"), "3 1101", "':' and a type"},
    {"x : integer = 5", inClass("function f()\nvar x : integer = 5\nx := 1\nend function"), "3 1101", "':='"},
    {"var x := 5", inClass("function f()\nvar x := 5\nx := 1\nend function"), "3 1101", "':' and a type"},
    {"var x", inClass("function f()\nvar x\nx := 1\nend function"), "3 1101", "':'"},
    {"missing var", inClass("function f()\nx : integer\nx := 1\nend function"), "3 1101", "'var'"},
    {"missing var :=", inClass("function f()\nx : integer := 5\nx := 1\nend function"), "3 1101", "'var'"},
    {"var later", inMain("i := 1\nvar k : integer\nk := 1"), "7 1111", "'var' does not stand here: the variables of a function stand between its head and its first statement"},
    {"var int x", inClass("function f()\nvar integer x\nx := 1\nend function"), "3 1006", "'x : integer'"},
    {"integer x", inClass("function f()\ninteger x\nx := 1\nend function"), "3 1006", "'var x : integer'"},
    {"int x", inClass("function f()\nint x\nx := 1\nend function"), "3 1006", "'var', a name, ':' and 'integer'"},
    {"int x = 5", inClass("function f()\nint x = 5\nx := 1\nend function"), "3 1006", "'var', a name, ':' and 'integer'"},
    {"dim x as integer", inClass("function f()\ndim x as integer\nx := 1\nend function"), "3 1006", "'var', between the head of the function and its statements"},
    {"let x = 5", inMain("let i = 5"), "6 1006", "the variable and ':='"},
    {"string x", inClass("function f()\nstring x\nend function"), "3 1006", "'var x : string'"},
    {"var x as", inClass("function f()\nvar x as integer\nx := 1\nend function"), "3 1101", "':'"},
    {"var x : int", inClass("function f()\nvar x : int\nx := 1\nend function"), "3 1006", "'integer'"},
    {"var x:float", inClass("function f()\nvar x : float\nx := 1\nend function"), "3 1006", "'real'"},
    {"var x:bool", inClass("function f()\nvar x : bool\nx := true\nend function"), "3 1006", "'boolean'"},
    {"var x:char", inClass("function f()\nvar x : char\nend function"), "3 1006", "'string'"},
    {"var x:double", inClass("function f()\nvar x : double\nend function"), "3 1006", "'real'"},
    {"x = 5", inMain("i = 5"), "6 1101", "':=' to assign"},
    {"if i := 1", inMain("if i := 1 then\nj := 1\nend if"), "6 1101", "'=' to compare"},
    {"while i:=1", inMain("while i := 1 loop\nj := 1\nend loop"), "6 1101", "'=' to compare"},
    {"/* */", inMain("/* hello there */\ni := 1"), "6 1006", "'//' in front of a comment, on each of its lines"},
    {"/* multi */", inMain("/* hello\n'there' it's\n*/\ni := 1"), "6 1006", "'//' in front of a comment, on each of its lines"},
    {"code /* */", inMain("i := 1 /* one */ + 2"), "6 1006", "'//' in front of a comment, on each of its lines"},
    {"/* open", inMain("i := 1\n/* hello"), "7 1006", "'//' in front of a comment, on each of its lines"},
    {"#", inMain("# a comment, it's\ni := 1"), "6 1006", "'//' in front of a comment, on each of its lines"},
    {"# behind", inMain("i := 1 # one"), "6 1006", "'//' in front of a comment, on each of its lines"},
    {"' comment", inMain("' a comment\ni := 1"), "6 1006", "'//' in front of a comment, on each of its lines"},
    {"' behind", inMain("i := 1 ' one"), "6 1006", "double quotes around a text, '//' in front of a comment"},
    {"-- comment", inMain("-- a comment here\ni := 1"), "6 1006", "'//' in front of a comment, on each of its lines"},
    {"-- behind", inMain("i := 1 -- one here"), "6 1006", "'//' in front of a comment, on each of its lines"},
    {"(* *)", inMain("(* a comment *)\ni := 1"), "6 1006", "'//' in front of a comment, on each of its lines"},
    {"{ }", inMain("{ a comment }\ni := 1"), "6 1006", "'//' in front of a comment; a block ends with 'end'"},
    {"rem", inMain("rem a comment\ni := 1"), "6 1006", "'//' in front of a comment"},
    {"#include", inClass("#include <stdio.h>\nfunction f()\nend function"), "2 1006", "'Uses' and names of classes behind the name of the class"},
    {"\\\"", inMain("s := \"a\\\"b\""), "6 1006", "'\"\"' for a quote in a text"},
    {"null", inMain("s := null"), "6 1006", "a value of the type, such as \"\", 0 or false"},
    {"nil", inMain("s := nil"), "6 1006", "a value of the type, such as \"\", 0 or false"},
    {"None", inMain("s := None"), "6 1006", "a value of the type, such as \"\", 0 or false"},
    {"NULL=", inMain("if s = null then\nend if"), "6 1006", "a value of the type, such as \"\", 0 or false"},
    {"print \"x\"", inMain("print \"x\""), "6 1006", "PRINT(...)"},
    {"println", inMain("println(\"x\")"), "6 1006", "PRINT(...)"},
    {"printf", inMain("printf(\"x\")"), "6 1006", "PRINT(...)"},
    {"writeln", inMain("writeln(\"x\")"), "6 1006", "PRINT(...)"},
    {"echo", inMain("echo \"x\""), "6 1006", "PRINT(...)"},
    {"puts", inMain("puts \"x\""), "6 1006", "PRINT(...)"},
    {"len", inMain("i := len(s)"), "6 1006", "LENGTH(...)"},
    {"import", inClass("import foo\nfunction f()\nend function"), "2 1006", "'Uses' and names of classes behind the name of the class"},
    {"import top", "import foo\nTarnwick Class Main\nEnd class\n", "1 1103", "a class begins with 'Tarnwick Class' and its name"},
    {"#include top", "#include <x.h>\nTarnwick Class Main\nEnd class\n", "1 1006", "'Uses' and names of classes behind the name of the class"},
    {"from import", inClass("from foo import bar\nfunction f()\nend function"), "2 1006", "'Uses' and names of classes behind the name of the class"},
    {"using", inClass("using foo\nfunction f()\nend function"), "2 1006", "'Uses' and names of classes behind the name of the class"},
    {"uses later", inClass("function f()\nend function\nUses a"), "4 1111", "'Uses' does not stand here: it follows the name of the class"},
    {"class twice", inClass("class B\nEnd class"), "2 1111", "'class' does not stand here: a file holds one class"},
    {"class two", inClass("End class\nTarnwick Class B"), "3 1104", "nothing but comments may stand behind 'End class'"},
    {"class alone", "class Main\nEnd class\n", "1 1103", "a class begins with 'Tarnwick Class' and its name"},
    {"program", "program Main\nEnd class\n", "1 1103", "a class begins with 'Tarnwick Class' and its name"},
    {"function first", "function main()\nend function\n", "1 1103", "a class begins with 'Tarnwick Class' and its name"},
    {"const :=", inClass("const X := 1\nfunction f()\nend function"), "2 1101", "'='"},
    {"const in f", inClass("function f()\nconst X = 1\nPRINT(STR(X))\nend function"), "3 1111", "'const' does not stand here: constants and types are declared in the class, outside of functions"},
    {"const after", inMain("i := 1\nconst X = 1\ni := X"), "7 1111", "'const' does not stand here: constants and types are declared in the class, outside of functions"},
    {"case no =>", inMain("select i\ncase 1\nj := 1\ncase 2\nj := 2\nend select"), "7 1101, 9 1101", "'=>'"},
    {"case :", inMain("select i\ncase 1:\nj := 1\ncase 2:\nj := 2\nend select"), "7 1101, 9 1101", "'=>'"},
    {"switch", inMain("switch (i) {\ncase 1:\nj := 1\nbreak\n}"), "6 1006, 7 1101, 9 1006", "'select'"},
    {"default", inMain("select i\ncase 1 =>\nj := 1\ndefault =>\nj := 2\nend select"), "9 1006", "'else'"},
    {"default:", inMain("select i\ncase 1 =>\nj := 1\ndefault:\nj := 2\nend select"), "9 1006", "'else'"},
    {"case else", inMain("select i\ncase 1 =>\nj := 1\ncase else\nj := 2\nend select"), "9 1101", "'else'"},
    {"select case", inMain("select case i\ncase 1 =>\nj := 1\nend select"), "6 1101", "the value"},
    {"case ->", inMain("select i\ncase 1 ->\nj := 1\nend select"), "7 1101", "'=>'"},
    {"select..of", inMain("select i of\ncase 1 =>\nj := 1\nend select"), "6 1101", "'case'"},
    {"def", inClass("def f():\nPRINT(\"x\")\n"), "2 1006, 5 1109", "'function'"},
    {"def end", inClass("def f()\nPRINT(\"x\")\nend function"), "2 1006", "'function'"},
    {"procedure", inClass("procedure f()\nPRINT(\"x\")\nend procedure"), "2 1006", "'function'"},
    {"sub", inClass("sub f()\nPRINT(\"x\")\nend sub"), "2 1006", "'function'"},
    {"void", inClass("void f()\nPRINT(\"x\")\nend function"), "2 1006", "'function'"},
    {"public void", inClass("public void f()\nPRINT(\"x\")\nend function"), "2 1006", "'function'"},
    {"func", inClass("func f()\nPRINT(\"x\")\nend function"), "2 1006", "'function'"},
    {"begin", inClass("function f()\nbegin\nPRINT(\"x\")\nend function"), "3 1006", "nothing: a block begins behind 'then' or 'loop'"},
    {"begin end", inMain("if b then begin\ni := 1\nend if"), "6 1006", "nothing: a block begins behind 'then' or 'loop'"},
    {"lexical oneline while", inMain("while i @ 1 loop j := 1 end loop\nj := 2"), "6 1001", "the character '@' has no meaning here"},
    {"lexical oneline if", inMain("if i @ 1 then j := 1 end if\nj := 2"), "6 1001", "the character '@' has no meaning here"},
    {"lexical oneline for", inMain("for i from 1 to @ loop j := 1 end loop\nj := 2"), "6 1001", "the character '@' has no meaning here"},
    {"lexical in body", inMain("while b loop i := @ end loop\nj := 2"), "6 1001", "the character '@' has no meaning here"},
    {"lexical in body if", inMain("if b then i := 1 @ 2 end if\nj := 2"), "6 1001", "the character '@' has no meaning here"},
    {"reserved variable", inClass("private var\n order : string\n code : string"), "3 1108", "'order' is reserved and cannot be a name"},
    {"reserved function", inClass("function run()\nend function"), "2 1108", "'run' is reserved and cannot be a name"},
    {"reserved local", inClass("function f()\nvar\n with : string\nend function"), "4 1108", "'with' is reserved and cannot be a name"},
    {"reserved argument", inClass("function f(code : string)\nend function"), "2 1108", "'code' is reserved and cannot be a name"},
    {"no value for a constant", inClass("function f()\nend function\nconst X : integer = f()\nconst Y : integer = \"a\"\nconst Z = Y + 1"), "4 1306, 5 1301", "this is a string: write CVTI(...)"},
    {"no value at the end", inMain("i :=\nj := 5\nj := 6"), "6 1101", "a value is expected, but 'j' follows"},
    {"no operand at the end", inMain("i := 3 +\n\nj := 5\nj := 6"), "6 1101", "a value is expected, but 'j' follows"},
    {"no operand at the end of two lines", inMain("i := 3 +\n 4 *\ns[1] := 5\nj := 6"), "7 1101", "a value is expected, but 's' follows"},
    {"? in a condition", inMain("while i ? 1 loop j := 1 end loop\nj := 2"), "6 1006", "write IIF(condition, a, b)"},
    {"? :", inMain("i := b ? 1 : 2\nj := 2"), "6 1006", "write IIF(condition, a, b)"},
    {"? : in a call", inMain("PRINT(STR(b ? 1 : 2))\nj := 2"), "6 1006", "write IIF(condition, a, b)"},
    {"if in a value", inMain("i := if b then 1 else 2\nj := 2"), "6 1006", "write IIF(condition, a, b)"},
    {"cast", inMain("i := integer(1.5)\nj := 2"), "6 1006", "write CVTI(...)"},
    {"(cast)", inMain("i := (integer) 1.5\nj := 2"), "6 1006", "write CVTI(...)"},
    {"slice", inMain("s := s[1:2]\nj := 2"), "6 1006", "write STRMID(text, place, count)"},
    {"|| of texts", inMain("s := s || \"a\"\nj := 2"), "6 1006", "write '+' to join texts"},
    {"~=", inMain("b := i ~= 2\nj := 2"), "6 1006", "write '<>'"},
    {"method", inMain("s := s.Trim()\nj := 2"), "6 1006", "write STRTRIM(s)"},
    {"property", inMain("i := s.length\nj := 2"), "6 1006", "write LENGTH(s)"},
    {"number to text", inMain("s := \"a\" + i\nj := 2"), "6 1302", "a string and an integer: write STR(...)"},
    {"text to number", inMain("i := s\nj := 2"), "6 1301", "this is a string: write CVTI(...)"},
    {"character", inMain("b := s[1] = \"a\"\nj := 2"), "6 1302", "write ORD(...) of the text"},
    {"end without if", inMain("i := 1\nend if\nj := 1"), "7 1112", "'end if' closes nothing: no block of that kind is open here"},
    {"end without loop", inMain("i := 1\nend loop\nj := 1"), "7 1112", "'end loop' closes nothing: no block of that kind is open here"},
    {"end end", inMain("if b then\ni := 1\nend if\nend\nj := 1"), "9 1112", "'end' closes nothing: no block of that kind is open here"},
    {"== for :=", inMain("i == 1"), "6 1006", "write ':=' to assign, '=' to compare"},
    {"== for := in a field", inMain("s[i] == 1"), "6 1006", "write ':=' to assign, '=' to compare"},
    {"== in a line that goes on", inMain("if b and\n b == (i = 1) then\nend if"), "7 1006", "write ':=' to assign, '=' to compare"},
    {"== in a call", inMain("PRINT(STR(i == 1))"), "6 1006", "write '='"},
    {"a(i) := x", inMain("s(i) := 1"), "6 1006", "'[' and ']' around the place of an element"},
    {"s.add(x)", inMain("s.add(1)"), "6 1208", "'s' is a variable, and the name of a class is needed here"},
    {"!= as a statement", inMain("i != 1"), "6 1006", "write '<>'"},
    {"try", inMain("try\ni := 1\ncatch\nend try"), "6 1006", "a function 'onerror', which gets the errors of its class"},
    {"goto", inMain("goto x"), "6 1006", "'loop', 'exit' and 'iterate'"},
    {"<> with =<", inMain("b := i =< j"), "6 1006", "'<='"},
    {"><", inMain("b := i >< j"), "6 1006", "'<>'"},
    {"^", inMain("i := 2 ^ 3"), "6 1006", "PWR(base, exponent)"},
    {"**", inMain("i := 2 ** 3"), "6 1006", "PWR(base, exponent)"},
    {"&", inMain("s := s & \"x\""), "6 1006", "'and', or '+' to join texts"},
    {"|", inMain("b := b | b"), "6 1006", "'or'"},
    {"<<", inMain("i := i << 2"), "6 1006", "'*' and a power of two"},
    {"\\", inMain("i := j \\ 2"), "6 1006", "'div'"},
    {"xor", inMain("b := b xor b"), "6 1006", "'<>' between two booleans"},
    {"-> ", inMain("s->x := 1"), "6 1101", "'.'"},
    {"#13", inMain("s := #13"), "6 1006", "CHR(...)"},
    {"'' ", inMain("s := ''"), "6 1006", "double quotes around a text"},
    {"this", inMain("this.x := 1"), "6 1006", "'me'"},
    {"self", inMain("self.x := 1"), "6 1006", "'me'"},
    {"unless", inMain("unless b then\nend if"), "6 1006", "'if not'"},
    {"until", inMain("until b loop\nend loop"), "6 1006", "'while not'"},
    {"array t[]", inClass("function f()\nvar a : integer[10]\nend function"), "3 1101", "'array[...] of' in front of the type"},
    {"var a[10]", inClass("function f()\nvar a[10] : integer\nend function"), "3 1101", "':'"},
    {"list<int>", inClass("function f()\nvar a : list<integer>\nend function"), "3 1101", "'of' and a type"},
    {"var only", inClass("function f()\nvar\nend function"), "4 1108", "'end' is reserved and cannot be a name"},
    {"call f", inMain("call f()"), "6 1105", "'call' is a reserved word that this version does not accept"},
    {"run f", inMain("run f"), "6 1105", "'run' is a reserved word that this version does not accept"},
    {"with", inMain("with s\nend with"), "6 1105", "'with' is a reserved word that this version does not accept"},
    {"until 2", inMain("loop\ni := 1\nuntil b\nend loop"), "8 1006", "'exit when' and 'end loop'"},
    {"exit for", inMain("for i from 1 to 2 loop\nexit for\nend loop"), "7 1101", "'when' or the next statement"},
    {"exit if", inMain("loop\nexit if b\nend loop"), "7 1101", "'when'"},
    {"exit loop", inMain("loop\nexit loop\nend loop"), "7 1101", "'when' or the next statement"},
    {"return;", inMain("return;"), "6 1006", "nothing: a line or a blank is enough"},
    {"x,y := ", inMain("i, j := 1"), "6 1101", "':' and a type"},
    {"record brace", inClass("type T : record {\na : integer\n}"), "2 1101", "a field or 'end record'"},
    {"struct", inClass("struct T\na : integer\nend struct"), "2 1006", "'type', a name, ':' and 'record'"},
    {"type T = ", inClass("type T = integer"), "2 1101", "':'"},
    {"type T is", inClass("type T is integer"), "2 1101", "':'"},
    {"enum brace", inClass("type T : enum {A, B}"), "2 1101", "'('"},
    {"enum no colon", inClass("enum T (A, B)"), "2 1101", "'type', a name and ':'"},
    {"assert", inMain("assert b"), "6 1006", "ASSERT(...)"},
    {"pass", inMain("if b then\npass\nend if"), "7 1006", "nothing: a block may be empty"},
    {"then newline no end", inMain("if b then i := 1\nj := 2"), "8 1109", "'end if'"},
};
// clang-format on

TEST_F(Teaching, EachHabitIsToldOnceWithItsRightForm) {
    for (const Habit& item : Habits) {
        EXPECT_EQ(check(item.source), item.messages) << item.name << "\n" << report;
        EXPECT_NE(report.find(item.right), std::string::npos) << item.name << "\n" << report;
    }
}

TEST_F(Teaching, WhatOnlyLooksLikeAHabitIsFree) {
    const Habit cases[] = {
        {"words of other languages as variables",
         inClass("function main()\nvar next, otherwise, continue, elif, print, none, len, self, def, int : "
                 "integer\n"
                 "loop\ncontinue := 1\nnext := 2\nif continue = 1 then\nelif := 4\nend if\nselect next\n"
                 "case 1 =>\notherwise := 5\nend select\nnone := len + self + def + int + print\nexit\nend "
                 "loop\nend function"),
         "", ""},
        {"functions of such names",
         inClass("function elif(a : integer)\nend function\nfunction println(a : string)\nend function\n"
                 "function main()\nif true then\nelif(1)\nprintln(\"x\")\nend if\nend function"),
         "", ""},
        {"such names declared behind their use",
         inClass("function main()\nvar i : float\ni := len(\"x\")\nend function\ntype float : integer\n"
                 "function len(s : string) return integer\nreturn 1\nend function"),
         "", ""},
        {"names of an enum",
         inClass("type t : enum (none, self)\nfunction main()\nvar x : t\nx := none\nend function"), "", ""},
        {"two signs in a row", inMain("i := 1 -- 2\nj := i--j\ni := j\n-- i\nj := 2 -- i j := 3"), "", ""},
        {"signs in front of a call", inMain("i := 1 -- i t := s"), "", ""},
        {"marks of comments in a text", inMain("s := \"/* # ' -- (* ; { } && \"\nPRINT(\"it's\")"), "", ""},
        {"a backslash in a text", inMain("s := \"C:\\new\\text\\n\""), "", ""},
        {"true and false in any case", inMain("b := True or FALSE and tRuE"), "", ""},
        {"print in any case", inMain("print(\"x\")\nPrint(\"y\")"), "", ""},
        {"parentheses around conditions", inMain("if (b) then\nend if\nwhile (i < 3) loop\ni := 4\nend loop"),
         "", ""},
        {"all on one line",
         inMain("if b then i := 1 elseif i = 2 then i := 3 else i := 4 end if while b loop exit end loop"),
         "", ""},
        {"ends over two lines", inMain("if b then\nend\nif\nloop\nexit\nend\nloop"), "", ""},
        {"return and a statement on one line", inMain("return i := 1"), "", ""},
        {"a result on its own line", inClass("function f()\nreturn integer\nreturn 1\nend function"), "", ""},
        {"a head ahead in front of a constant",
         inClass("function f()\nconst A = 1\ntype T : integer\nfunction f()\nend function"), "", ""},
        {"values in braces",
         inClass("const A : list of integer = {1, 2}\nfunction main()\nvar l : list of integer\nl := "
                 "{3}\nend function"),
         "", ""},
        {"sets with ranges", inMain("b := i in [1, 3:5, 7..9]"), "", ""},
    };
    for (const Habit& item : cases)
        EXPECT_EQ(check(item.source), item.messages) << item.name << "\n" << report;
}

TEST_F(Teaching, OtherMistakesOfTheSameClassAreToldToo) {
    EXPECT_EQ(check(inMain("if b {\ni := 1\n}\nj := \n")), "6 1006, 9 1101");
    EXPECT_EQ(check(inMain("loop\nbreak\nend loop\ni := := 2")), "7 1006, 9 1101");
    EXPECT_EQ(check(inClass("def f()\nend function\nfunction g()\ni := 1\nend function")), "2 1006, 5 1201");
    EXPECT_EQ(check(inMain("end if") + ""), "6 1112");
    EXPECT_EQ(check(inClass("function f()\nend if\nend function\nfunction g()\nend loop\nend function")),
              "3 1112, 6 1112");
}

TEST_F(Teaching, AnEndOfAWordThatIsKeptForLaterIsNoStatement) {
    EXPECT_EQ(check(inMain("end with")), "6 1112");
    EXPECT_EQ(check(inMain("if b then\nend call\nend if")), "7 1112");
    EXPECT_EQ(check(inMain("with s\nend with")), "6 1105") << "the statement has had its message";
}

TEST_F(Teaching, BracesAndSemicolonsAreToldOnceInAClass) {
    EXPECT_EQ(check(inMain("if b {\ni := 1;\n} else {\ni := 2;\n}\nwhile b {\ni := 3;\n}")),
              "6 1006, 7 1006");
    EXPECT_EQ(check(inClass("function f() {\nif (true) {\nPRINT(\"x\")\n}\n}\nfunction g() {\n}")), "2 1006");
}

TEST_F(Teaching, ANameThatAUsedClassMayHaveIsNotTaught) {
    write("other.cls", "Tarnwick Class other\npublic function len(s : string) return integer\nreturn 1\nend "
                       "function\nEnd class");
    EXPECT_EQ(check("Tarnwick Class Main\nUses other\nfunction main()\nvar i : integer\ni := len(\"x\")\nend "
                    "function\nEnd class"),
              "");
}

TEST_F(Teaching, AWordThatIsKeptForLaterIsCalledThat) {
    EXPECT_EQ(check(inClass("const file = 1")), "2 1108");
    EXPECT_NE(report.find("'file' is kept for later and cannot be a name"), std::string::npos) << report;
    EXPECT_EQ(check(inClass("const while = 1")), "2 1108");
    EXPECT_NE(report.find("'while' is reserved and cannot be a name"), std::string::npos) << report;
}

// However much of it there is, it is read in time and ends in messages.
TEST_F(Teaching, MuchOfAHabitCostsNoMoreThanItsLength) {
    const char* pieces[] = {"until x ",   "a,\n",    "null, ",     "end\n",          "const a\n", "{ ",
                            "} ",         "for (",   "elif x ",    "switch (i) {\n", "do\n",      "try\n",
                            "default:\n", "end x\n", "return 1\n", "var\n",          "-- a b\n",  "/* ",
                            "(* ",        "' ",      "class a\n",  "x : integer\n",  "int a\n",   "repeat "};
    for (const char* piece : pieces) {
        std::string text;
        while (text.size() < 300000) text += piece;
        EXPECT_NE(check(inMain(text)), "") << piece;
        EXPECT_NE(check(inClass(text)), "") << piece;
        EXPECT_NE(check(inMain("loop\nif b then\nf(" + text)), "") << piece;
    }
}

}  // namespace
}  // namespace tarn::toolchain
